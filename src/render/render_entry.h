#pragma once

#include <cstdint>

namespace vireon {

class PluginHost_API;

/// Renders one frame for a host object: under the render lock, with the shapes loaded. The one way
/// from the shell into the image code.
/// \return the driver's result, 0 on success
/// \throws what the driver throws, with the lock released
std::int32_t RenderEntry(PluginHost_API& host);

}  // namespace vireon
