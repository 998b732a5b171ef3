#pragma once

#include <filesystem>

namespace vireon::tool {

/// The folder in which the effect looks for its brush files: the one that the environment variable
/// ORVANTE_QUILLON_SVG_DIR names, else Vireon/Brush beside the plug-in.
std::filesystem::path BrushFolder(const std::filesystem::path& plugin);

}  // namespace vireon::tool
