#pragma once

#include <memory>

#include "headless/host.h"
#include "samples/canvas.h"

namespace vireon::bench {

/// The scene as a layer of the host at a depth.
std::shared_ptr<headless::World> MakeLayer(const scenes::Canvas& canvas, headless::Depth depth);

/// The plug-in library, loaded once.
const headless::EffectLibrary& Plugin();

}  // namespace vireon::bench
