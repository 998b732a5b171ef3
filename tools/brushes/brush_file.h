#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace vireon::brushes {

/// Text of a brush file: the width, the height and a title, each on its own line, then one sample a
/// line, row by row. `samples` holds kBrushSize x kBrushSize values. Samples are written with six
/// significant digits and a point whatever the locale; those too small to show are written "0".
std::string BrushFileText(std::string_view title, const std::vector<double>& samples);

/// Writes `text` to `path` so that the file is either the old one or the complete new one: a
/// temporary file beside it is written first and then renamed. Throws std::runtime_error, with the
/// path and the system's reason, when a step fails; the temporary file is then removed.
void WriteFileWhole(const std::filesystem::path& path, std::string_view text);

/// Draws the thirteen brushes into `directory`, which is made when it does not exist. Throws
/// std::runtime_error as WriteFileWhole does.
void WriteBrushes(const std::filesystem::path& directory);

}  // namespace vireon::brushes
