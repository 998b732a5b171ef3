#pragma once

#include <filesystem>
#include <string>

#include "headless/remote/picture.h"

namespace vireon::pictures {

/// Name of the file that keeps a picture: PNG for 8 and 16 bits, EXR for float.
std::string ReferenceName(const std::string& name, std::int32_t bits);

/// Keeps a picture with all of its bits, alpha straight as a host has it (in EXR too, where other
/// programs expect it multiplied in). The file is the old one or the whole new one. Throws
/// tool::ToolError when it cannot be written.
void WriteReference(const std::filesystem::path& file, const headless::Picture& picture);

/// The picture that WriteReference kept. Throws tool::ToolError (kInputUnreadable) for a file that
/// is missing, damaged or was not written at this depth.
headless::Picture ReadReference(const std::filesystem::path& file, std::int32_t bits);

}  // namespace vireon::pictures
