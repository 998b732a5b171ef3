#pragma once

#include <string>

#include "samples/canvas.h"

namespace vireon::scenes {

/// How a picture file holds its samples.
enum class FileDepth { k8, k16, kFloat };

/// The depth for a file by its extension (.png or .exr, in any case) and the asked bits a channel,
/// 0 for the usual: 8 for PNG, 32 for EXR. Throws std::invalid_argument for any other extension and
/// for bits that its format does not have.
FileDepth DepthFor(const std::string& path, int bits);

/// Finds out before the work begins whether the folder of a file is there. Throws
/// std::runtime_error.
void CheckPlace(const std::string& path);

/// Writes a picture, with alpha or without: straight into PNG, multiplied into the colour for EXR,
/// as the formats want it. An older file is replaced once the new one is whole. Throws
/// std::runtime_error; the older file is kept and nothing else left behind then.
void WritePicture(const Canvas& canvas, bool withAlpha, FileDepth depth, const std::string& path);

}  // namespace vireon::scenes
