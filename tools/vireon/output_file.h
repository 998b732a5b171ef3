#pragma once

#include <cstdint>
#include <filesystem>
#include <span>

namespace vireon::tool {

/// Finds out before the work begins whether a file can be written: throws ToolError
/// (kOutputFolderMissing or kOutputFailed) when its folder does not exist or does not allow it.
void CheckOutputPlace(const std::filesystem::path& path);

/// Writes a file so that it is either the old one or the complete new one: the bytes go to a
/// temporary file beside it, with the same extension, which takes its place once they have reached
/// the disk. Links are followed; devices and pipes are written directly. Throws ToolError
/// (kDiskFull or kOutputFailed); nothing is left behind then.
void WriteFileWhole(const std::filesystem::path& path, std::span<const std::uint8_t> bytes);

}  // namespace vireon::tool
