#include <algorithm>
#include <array>

#include "samples/random.h"
#include "samples/stage.h"

namespace vireon::scenes {

namespace {

// One row of houses, all lengths in units of the design.
struct Layer {
    std::uint64_t seed;
    Colour wall;
    double lowest;
    double highest;
    double narrowest;
    double widest;
    double windowWidth;
    double windowHeight;
    double pitchX;
    double pitchY;
    double litShare;
    double dimmest;  // level of lit windows
    double brightest;
};

constexpr std::array<Layer, 3> kLayers{{
    {0x666172u,
     {0.150f, 0.096f, 0.158f},
     300.0,
     520.0,
     55.0,
     115.0,
     3.2,
     4.4,
     8.5,
     12.0,
     0.24,
     0.26,
     0.62},
    {0x6D6964u,
     {0.066f, 0.052f, 0.098f},
     230.0,
     600.0,
     95.0,
     170.0,
     6.0,
     8.5,
     14.0,
     20.0,
     0.32,
     0.34,
     1.20},
    {0x6E656172u,
     {0.026f, 0.024f, 0.044f},
     150.0,
     380.0,
     150.0,
     255.0,
     12.0,
     18.0,
     27.0,
     38.0,
     0.40,
     0.36,
     1.90},
}};

constexpr std::array<Colour, 6> kHomeTints{{{1.0f, 0.78f, 0.46f},
                                            {1.0f, 0.70f, 0.36f},
                                            {1.0f, 0.86f, 0.62f},
                                            {1.0f, 0.62f, 0.30f},
                                            {0.98f, 0.90f, 0.74f},
                                            {0.72f, 0.84f, 1.0f}}};
constexpr std::array<Colour, 3> kOfficeTints{
    {{0.72f, 0.90f, 1.0f}, {0.84f, 0.96f, 0.94f}, {0.62f, 0.80f, 1.0f}}};

struct House {
    double left;
    double right;
    double top;
};

void PaintWindow(const Stage& stage, const Layer& layer, Point corner, Colour light) {
    const Point opposite{corner.x + layer.windowWidth, corner.y + layer.windowHeight};
    stage.rectangle(corner, opposite, light);
    // Large windows have a darker lower half, as a room has, and a bar in the middle.
    if (layer.windowWidth > 10.0) {
        stage.rectangle({corner.x, corner.y + layer.windowHeight * 0.62}, opposite, light * 0.72);
        const double middle = corner.x + layer.windowWidth * 0.5;
        stage.rectangle({middle - 0.7, corner.y}, {middle + 0.7, opposite.y}, layer.wall);
    }
}

void PaintWindows(const Stage& stage, const Layer& layer, const House& house, Random& random) {
    const bool office = random.chance(0.4);
    const double margin = layer.pitchX * 0.6;
    const int columns = static_cast<int>((house.right - house.left - 2.0 * margin) / layer.pitchX);
    const double rest = house.right - house.left - columns * layer.pitchX;
    const double firstLeft = house.left + (rest + layer.pitchX - layer.windowWidth) * 0.5;
    const Colour officeTint = kOfficeTints[static_cast<std::size_t>(random.below(3))];
    for (double y = house.top + layer.pitchY * 0.7; y < kStreetLine - layer.pitchY * 1.9;
         y += layer.pitchY) {
        // In an office whole floors are lit or dark.
        const double share = office ? (random.chance(0.28) ? 0.78 : 0.05) : layer.litShare;
        for (int column = 0; column < columns; ++column) {
            if (!random.chance(share)) {
                continue;
            }
            const Colour tint =
                office ? officeTint : kHomeTints[static_cast<std::size_t>(random.below(6))];
            // Most lit windows are dim; a few are bright.
            const double t = random.unit();
            const double level = layer.dimmest + (layer.brightest - layer.dimmest) * t * t;
            PaintWindow(stage, layer, {firstLeft + column * layer.pitchX, y}, tint * level);
        }
    }
}

void PaintRoof(const Stage& stage, const Layer& layer, const House& house, Random& random) {
    const double width = house.right - house.left;
    const double middle = house.left + width * random.between(0.3, 0.7);
    if (random.chance(0.55)) {
        const double half = width * random.between(0.10, 0.22);
        const double rise = width * random.between(0.08, 0.20);
        stage.rectangle({middle - half, house.top - rise}, {middle + half, house.top + 1.0},
                        layer.wall);
    }
    if (random.chance(0.35)) {
        const double mast = width * random.between(0.30, 0.55);
        const double thickness = std::max(1.6, layer.windowWidth * 0.25);
        const Point tip{middle, house.top - mast};
        stage.line({middle, house.top}, tip, thickness, layer.wall);
        // The aircraft warning light.
        stage.disc(tip, 1.4 + layer.windowWidth * 0.16, {7.0f, 0.55f, 0.42f});
    }
}

void PaintLayer(const Stage& stage, const Layer& layer) {
    Random random(layer.seed);
    double left = -random.between(0.0, layer.narrowest);
    while (left < stage.furnishedWidth()) {
        const double right = left + random.between(layer.narrowest, layer.widest);
        const double top = kStreetLine - random.between(layer.lowest, layer.highest);
        const House house{left, right, top};
        // A little over the neighbour's wall, so that no light shows through the seam.
        stage.rectangle({left - 1.5, top}, {right, kStreetLine}, layer.wall);
        PaintRoof(stage, layer, house, random);
        PaintWindows(stage, layer, house, random);
        left = right + (random.chance(0.4) ? random.between(0.0, layer.narrowest * 0.35) : 0.0);
    }
}

}  // namespace

void PaintBuildings(const Stage& stage) {
    for (const Layer& layer : kLayers) {
        PaintLayer(stage, layer);
    }
}

}  // namespace vireon::scenes
