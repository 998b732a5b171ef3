#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

#include "tests/conformance/model_brushes.h"
#include "tests/conformance/support.h"

namespace vireon::conformance {

/// Allowed distance from the model, as a part of the frame's peak (at least 1). The model adds up
/// stamps in double precision and the effect in float: a pixel is the sum of up to some thousand
/// terms, whose rounding errors of 6e-8 each grow like the square root of their number to about
/// 4e-6; the power functions and the divisions after it take a small factor more.
inline constexpr double kModelTolerance = 2e-5;

/// Renders a scene through the effect in float and by the model and compares them. Also demands
/// that there is something to compare.
inline void ExpectModel(const Scene& scene, headless::HostSettings settings = {}) {
    const Picture expected = ModelRender(scene);
    const Picture actual =
        RenderScene(scene, headless::Depth::kFloat, Path::kSmart, std::move(settings));
    const double peak = Peak(expected);
    EXPECT_GT(peak, 0) << "an empty picture proves nothing";
    const Difference difference = Compare(expected, actual);
    EXPECT_LE(difference.largest, kModelTolerance * std::max(1.0, peak)) << difference.text;
}

}  // namespace vireon::conformance
