#pragma once

#include <cstdint>

#include "tests/conformance/brush_folder.h"
#include "tests/conformance/picture.h"
#include "tests/conformance/scene.h"

namespace vireon::conformance {

/// The brushes of the executables that link this: the Shape popup's entries 1 and 2 are the round
/// and the lopsided brush, the other shapes have no file. The files are written, and the effect
/// pointed at them, before the first test.
const Kernel& ModelBrush(std::int32_t shape);

/// What the model makes of a scene with those brushes.
Picture ModelRender(const Scene& scene);

}  // namespace vireon::conformance
