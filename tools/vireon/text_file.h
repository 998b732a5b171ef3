#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace vireon::tool {

/// The bytes of a small text file that somebody gave us: an ordinary file of at most `maxBytes`
/// bytes, without a byte order mark of UTF-8. Folders, devices and pipes are refused and never
/// waited for. Throws ToolError (kInputUnreadable), also for UTF-16.
std::string ReadTextFile(const std::filesystem::path& path, std::size_t maxBytes);

/// A text from such a file as part of a message: in double quotes, on one line, and shortened when
/// it is long.
std::string Quoted(std::string_view text);

}  // namespace vireon::tool
