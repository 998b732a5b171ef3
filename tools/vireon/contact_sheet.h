#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/vireon/stage_folder.h"

namespace vireon::tool {

/// A PNG with all stages side by side, each with its title over it, over black; a stage whose
/// largest value is above 1 is divided by it, which its title says. Without a font the titles are
/// left out and a note says so. Throws ToolError (kOutputFailed).
std::vector<std::uint8_t> ContactSheet(const std::vector<StagePicture>& stages,
                                       std::vector<std::string>& notes);

}  // namespace vireon::tool
