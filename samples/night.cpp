#include <algorithm>
#include <cmath>

#include "samples/random.h"
#include "samples/scenes.h"
#include "samples/stage.h"

namespace vireon::scenes {

namespace {

double LatticeValue(double x, double y, std::uint64_t seed) {
    const auto column = static_cast<std::uint64_t>(static_cast<std::int64_t>(x));
    const auto row = static_cast<std::uint64_t>(static_cast<std::int64_t>(y));
    return Random(seed ^ (column * 0x9E3779B97F4A7C15u) ^ (row * 0xC2B2AE3D27D4EB4Fu)).unit();
}

}  // namespace

double ValueNoise(double x, double y, std::uint64_t seed) {
    const double left = std::floor(x);
    const double top = std::floor(y);
    const auto ease = [](double t) { return t * t * (3.0 - 2.0 * t); };
    const double right = ease(x - left);
    const double down = ease(y - top);
    const auto across = [&](double row) {
        return LatticeValue(left, row, seed) * (1.0 - right) +
               LatticeValue(left + 1.0, row, seed) * right;
    };
    return across(top) * (1.0 - down) + across(top + 1.0) * down;
}

Canvas DrawNightCity(int width, int height, LightRange range) {
    const auto paintAboveStreet = [](Canvas& canvas, LightRange lights) {
        const Stage stage(canvas, lights);
        PaintSky(stage);
        PaintBuildings(stage);
        PaintSigns(stage);
        PaintStreetLife(stage);
        return stage;
    };
    Canvas overbright(width, height);
    const Stage overbrightStage = paintAboveStreet(overbright, LightRange::kOverbright);
    if (range == LightRange::kOverbright) {
        PaintWetStreet(overbrightStage, overbright);
        return overbright;
    }
    Canvas display(width, height);
    PaintWetStreet(paintAboveStreet(display, LightRange::kDisplay), overbright);
    // Soft lights add up; a wall near a lamp may have passed white by a little.
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const Colour colour = display.at(x, y);
            display.set(x, y,
                        {std::min(colour.red, 1.0f), std::min(colour.green, 1.0f),
                         std::min(colour.blue, 1.0f)});
        }
    }
    return display;
}

}  // namespace vireon::scenes
