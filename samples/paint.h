#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "samples/random.h"
#include "samples/stage.h"

namespace vireon::scenes {

/// Covers the stage's whole canvas with the colours that `colourAt` gives for places of the design
/// (Point to Colour, a light of any strength). A pixel takes the colour of its middle; where it
/// differs much from its neighbours, the mean of sixteen places. Colours are limited for the
/// display before they are averaged, so edges of strong lights stay smooth.
template <typename ColourAt>
void PaintAll(const Stage& stage, const ColourAt& colourAt) {
    Canvas& canvas = stage.canvas();
    const double unit = 1.0 / stage.scale();
    const auto shown = [&](double x, double y) {
        return stage.shown(colourAt(Point{x * unit, y * unit}));
    };
    for (int y = 0; y < canvas.height(); ++y) {
        for (int x = 0; x < canvas.width(); ++x) {
            canvas.set(x, y, shown(x + 0.5, y + 0.5));
        }
    }
    constexpr float kContrast = 0.035f;
    const auto differ = [&](int x, int y, int otherX, int otherY) {
        const Colour a = canvas.at(x, y);
        const Colour b = canvas.at(otherX, otherY);
        return std::max({std::abs(a.red - b.red), std::abs(a.green - b.green),
                         std::abs(a.blue - b.blue)}) > kContrast;
    };
    const auto width = static_cast<std::size_t>(canvas.width());
    std::vector<bool> edge(width * static_cast<std::size_t>(canvas.height()));
    for (int y = 0; y < canvas.height(); ++y) {
        for (int x = 0; x < canvas.width(); ++x) {
            const std::size_t at =
                static_cast<std::size_t>(y) * width + static_cast<std::size_t>(x);
            if (x + 1 < canvas.width() && differ(x, y, x + 1, y)) {
                edge[at] = edge[at + 1] = true;
            }
            if (y + 1 < canvas.height() && differ(x, y, x, y + 1)) {
                edge[at] = edge[at + width] = true;
            }
        }
    }
    constexpr int kSide = 4;
    for (int y = 0; y < canvas.height(); ++y) {
        for (int x = 0; x < canvas.width(); ++x) {
            if (!edge[static_cast<std::size_t>(y) * width + static_cast<std::size_t>(x)]) {
                continue;
            }
            Colour sum{0.0f, 0.0f, 0.0f};
            for (int i = 0; i < kSide * kSide; ++i) {
                sum = sum + shown(x + (i % kSide + 0.5) / kSide, y + (i / kSide + 0.5) / kSide);
            }
            canvas.set(x, y, sum * (1.0 / (kSide * kSide)));
        }
    }
}

/// Adds a grain of `steps` 8-bit steps against banding, and holds every value at 0 or above and,
/// for a display, at 1 or below.
void FinishWithGrain(const Stage& stage, double steps, std::uint64_t seed);

/// Random relief in 0..1 with hills of several sizes, the largest about one unit of (x, y) apart
/// and each further one of `octaves` half as wide and half as high.
double FractalNoise(double x, double y, int octaves, std::uint64_t seed);

}  // namespace vireon::scenes
