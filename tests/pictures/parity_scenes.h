#pragma once

#include <string>
#include <vector>

#include "headless/remote/messages.h"

namespace vireon::pictures {

/// One picture with its settings, at any depth.
struct ParityScene {
    std::string name;
    headless::RenderJob job;  ///< input and layers at `job.bits`
};

/// A dozen scenes that between them reach every stage of the effect.
/// \param bits  8, 16 or 32
std::vector<ParityScene> ParityScenes(std::int32_t bits);

/// A few scenes that are large enough for whatever the effect does otherwise with large pictures:
/// many lights, few, and one even light.
/// \param bits  8, 16 or 32
std::vector<ParityScene> LargeScenes(std::int32_t bits);

}  // namespace vireon::pictures
