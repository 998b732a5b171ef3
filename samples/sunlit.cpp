#include <algorithm>
#include <cmath>

#include "samples/paint.h"
#include "samples/scenes.h"
#include "samples/sunlit_parts.h"

namespace vireon::scenes {

namespace {

double Ease(double from, double to, double x) {
    const double t = std::clamp((x - from) / (to - from), 0.0, 1.0);
    return t * t * (3.0 - 2.0 * t);
}

Colour Sky(double x, double y) {
    const double t = y / kSeaHorizon;
    Colour sky = Mix({0.100f, 0.305f, 0.655f}, {0.410f, 0.530f, 0.735f}, t * (0.55 + 0.45 * t));
    // Brighter and warmer below the sun.
    const double dx = (x - kSunOffset) / 620.0;
    const double dy = (y + 150.0) / 560.0;
    const double sun = 1.0 / (1.0 + dx * dx + dy * dy);
    sky = sky + Colour{0.16f, 0.13f, 0.09f} * (sun * sun);
    // Fair-weather clouds: their lower edges are flat and in shade.
    const double shape = FractalNoise(x / 330.0 + 9.0, y / 105.0, 6, 0x636C6472u);
    const double above = FractalNoise(x / 330.0 + 9.0 - 0.05, (y - 16.0) / 105.0, 6, 0x636C6472u);
    const double belt = Ease(90.0, 230.0, y) * (1.0 - 0.75 * Ease(330.0, 430.0, y));
    const double cover = Ease(0.52, 0.70, shape) * belt;
    const double lit = Ease(-0.10, 0.13, shape - above);
    const Colour cloud = Mix({0.62f, 0.70f, 0.79f}, {0.985f, 0.965f, 0.93f}, lit);
    return Mix(sky, cloud, 0.92 * cover);
}

// Islands in the haze: height above the horizon at a place.
double Island(double x, double from, double to, double height, std::uint64_t seed) {
    const double t = (x - from) / (to - from);
    if (t <= 0.0 || t >= 1.0) return 0.0;
    const double mass = 4.0 * t * (1.0 - t);
    return height * mass * (0.35 + 0.9 * FractalNoise(x / 150.0, 0.5, 5, seed));
}

Colour Sea(double x, double y) {
    const double below = y - kSeaHorizon;
    const double depth = below / (Stage::kHeight - kSeaHorizon);
    // Rows are measured by their distance, so that waves shorten towards the horizon.
    const double far = 5200.0 / (below + 16.0);
    const double spread = 1.0 + 0.040 * below;
    const double swell =
        FractalNoise(x / (26.0 * spread) + 0.35 * far, far * 1.9, 4, 0x7377656Cu) - 0.5;
    const double ripple =
        FractalNoise(x / (7.0 * spread), far * 6.5 + x / 900.0, 3, 0x72697070u) - 0.5;
    const double tilt = swell + 0.8 * ripple;
    Colour water = Mix({0.235f, 0.445f, 0.585f}, {0.016f, 0.165f, 0.300f}, Ease(0.0, 0.75, depth));
    water =
        Mix(water, {0.020f, 0.260f, 0.330f}, 0.6 * Ease(0.35, 1.0, depth) * Ease(0.0, 0.35, swell));
    water = water * (1.0 + 0.95 * tilt * (0.35 + 0.65 * depth));
    // Waves that face the viewer show the bright sky low over the horizon.
    water = water + Colour{0.22f, 0.25f, 0.25f} * Ease(0.12, 0.42, tilt);

    // The sun's glitter: each small face either shows the sun or does not. Near the line below the
    // sun nearly flat faces do, further from it only steep ones.
    const double off = (x - kSunOffset) / (95.0 + 0.50 * below);
    const double share = 1.0 / (1.0 + off * off);
    const double near = share * share;
    const double facets = FractalNoise(x / (3.1 * spread), far * 13.0, 2, 0x676C6974u);
    const double steep = facets + 0.30 * tilt;
    const double limit = 0.87 - 0.335 * near;
    const double glint = Ease(limit, limit + 0.10, steep) * Ease(0.03, 0.30, near);
    const double sheen = near * near * (0.16 + 0.28 * (1.0 - depth));
    return water + Colour{0.90f, 0.84f, 0.70f} * sheen +
           Colour{1.0f, 0.93f, 0.78f} * (glint * (1.2 + 15.0 * glint * near * near));
}

}  // namespace

void PaintSeaAndSky(const Stage& stage) {
    const double middle = stage.middle();
    PaintAll(stage, [&](Point p) {
        const double x = p.x - middle;
        const double nearIsland = Island(x, -420.0, 300.0, 118.0, 0x69736C31u);
        const double farIsland = Island(x, -1080.0, -330.0, 70.0, 0x69736C32u);
        if (p.y >= kSeaHorizon) return Sea(x, p.y);
        const double up = kSeaHorizon - p.y;
        const Colour sky = Sky(x, p.y);
        if (up < nearIsland) {
            const double slope = FractalNoise(x / 40.0, p.y / 26.0, 4, 0x726F636Bu);
            return Mix({0.225f, 0.345f, 0.455f}, {0.335f, 0.445f, 0.520f}, slope);
        }
        if (up < farIsland) return Mix({0.40f, 0.525f, 0.625f}, sky, 0.35);
        return sky;
    });
}

Canvas DrawSunlitCoast(int width, int height, LightRange range) {
    Canvas canvas(width, height);
    const Stage stage(canvas, range);
    PaintSeaAndSky(stage);
    PaintVillage(stage);
    FinishWithGrain(stage, 1.2, 0x73756E6Cu);
    return canvas;
}

}  // namespace vireon::scenes
