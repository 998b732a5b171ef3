#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// The few things that differ between systems.
namespace vireon::headless::platform {

/// Loads a library; throws HeadlessError with the system's explanation. `path` is UTF-8.
void* OpenLibrary(const std::string& path);
/// Null when the library does not export the name.
void* FindSymbol(void* library, const char* name);
void CloseLibrary(void* library);

/// A resource by type name and number; nothing when there is none.
std::optional<std::vector<std::uint8_t>> ReadResource(void* library, const char* type,
                                                      std::int32_t id);

/// Text as the narrow path selectors give it: the system's own 8-bit encoding.
std::string NarrowPath(const std::string& utf8);

}  // namespace vireon::headless::platform
