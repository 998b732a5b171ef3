#pragma once

namespace vireon::platform {

/// Loads a library by its path or name in the system's narrow encoding. Returns the system's module
/// handle, or null; it stays loaded until the process ends.
void* LoadLibraryByName(const char* name);

}  // namespace vireon::platform
