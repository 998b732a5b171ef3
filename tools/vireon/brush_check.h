#pragma once

#include <filesystem>
#include <string>

namespace vireon::tool {

/// The folder in which the effect looks for its brush files: the one that the environment variable
/// ORVANTE_QUILLON_SVG_DIR names, else Vireon/Brush beside the plug-in.
std::filesystem::path BrushFolder(const std::filesystem::path& plugin);

/// What is wrong with a brush file; empty when the effect can use it as a whole.
std::string BrushFault(const std::filesystem::path& file);

}  // namespace vireon::tool
