#include <algorithm>
#include <array>
#include <cmath>

#include "samples/stage.h"

namespace vireon::scenes {

namespace {

constexpr Colour kIron{0.030f, 0.030f, 0.040f};

void PaintLamp(const Stage& stage, double x) {
    constexpr double kTop = 640.0;
    const Colour light = Colour{1.0f, 0.70f, 0.06f} * 20.0;
    stage.line({x, kStreetLine}, {x, kTop + 26.0}, 5.0, kIron);
    stage.polyline({{x, kTop + 28.0}, {x + 6.0, kTop + 10.0}, {x + 20.0, kTop}, {x + 38.0, kTop}},
                   4.0, kIron);
    stage.line({x + 32.0, kTop}, {x + 52.0, kTop}, 6.0, kIron);
    stage.line({x + 37.0, kTop + 5.0}, {x + 48.0, kTop + 5.0}, 9.0, light);
    stage.softLight({x + 42.0, kStreetLine}, 120.0, {0.17f, 0.12f, 0.055f});
}

// A car in profile with its middle at x, driving to the right for direction 1, to the left for -1.
void PaintCar(const Stage& stage, double x, double direction, Colour paint) {
    const double ground = kStreetLine;
    const auto at = [&](double along, double above) {
        return Point{x + direction * along, ground - above};
    };
    stage.convex({at(-84.0, 10.0), at(-82.0, 34.0), at(-70.0, 38.0), at(66.0, 36.0), at(84.0, 26.0),
                  at(84.0, 10.0)},
                 paint);
    stage.convex({at(-62.0, 36.0), at(-40.0, 58.0), at(14.0, 59.0), at(46.0, 36.0)}, paint);
    const Colour glass{0.075f, 0.085f, 0.12f};
    stage.convex({at(-54.0, 38.0), at(-37.0, 54.0), at(-14.0, 55.0), at(-14.0, 38.0)}, glass);
    stage.convex({at(-9.0, 38.0), at(-9.0, 55.0), at(12.0, 55.0), at(36.0, 38.0)}, glass);
    for (const double wheel : {-52.0, 50.0}) {
        stage.disc(at(wheel, 13.0), 14.0, {0.008f, 0.008f, 0.010f});
        stage.disc(at(wheel, 13.0), 6.0, {0.05f, 0.05f, 0.06f});
    }
    stage.disc(at(80.0, 27.0), 4.4, Colour{1.0f, 0.97f, 0.90f} * 16.0);
    stage.line(at(-83.0, 31.0), at(-81.0, 25.0), 6.0, Colour{1.0f, 0.07f, 0.05f} * 7.0);
    // What the headlight throws on the street ahead.
    stage.softLight(at(150.0, 0.0), 90.0, {0.10f, 0.095f, 0.08f});
}

void PaintTrafficLight(const Stage& stage, double x) {
    stage.line({x, kStreetLine}, {x, 780.0}, 4.5, kIron);
    stage.rectangle({x - 10.0, 730.0}, {x + 10.0, 790.0}, kIron);
    stage.disc({x, 742.0}, 6.5, Colour{1.0f, 0.10f, 0.07f} * 5.0);
    stage.disc({x, 760.0}, 6.5, {0.06f, 0.045f, 0.012f});
    stage.disc({x, 778.0}, 6.5, {0.012f, 0.05f, 0.025f});
}

}  // namespace

void PaintStreetLife(const Stage& stage) {
    const double middle = stage.middle();
    for (double x = std::fmod(middle, 300.0) - 150.0; x < stage.furnishedWidth(); x += 300.0) {
        PaintLamp(stage, x);
    }
    PaintTrafficLight(stage, middle + 205.0);
    struct Car {
        double offset;
        double direction;
        Colour paint;
    };
    static constexpr std::array<Car, 5> kCars{{{-770.0, 1.0, {0.085f, 0.030f, 0.034f}},
                                               {-395.0, -1.0, {0.046f, 0.052f, 0.075f}},
                                               {-70.0, 1.0, {0.036f, 0.055f, 0.090f}},
                                               {405.0, -1.0, {0.070f, 0.066f, 0.060f}},
                                               {690.0, -1.0, {0.030f, 0.060f, 0.058f}}}};
    for (const Car& car : kCars) {
        PaintCar(stage, middle + car.offset, car.direction, car.paint);
    }
}

void PaintWetStreet(const Stage& stage, const Canvas& scene) {
    Canvas& canvas = stage.canvas();
    const double mirror = kStreetLine * stage.scale();
    const Colour asphalt{0.024f, 0.025f, 0.036f};
    for (int y = static_cast<int>(std::ceil(mirror)); y < canvas.height(); ++y) {
        const double depth = (y + 0.5) / stage.scale() - kStreetLine;
        // Rough water draws lights out towards the viewer: the mirror picture is compressed, so
        // that the street shows more than its own height of houses, and blurred along the vertical
        // more and more with the distance from what it mirrors.
        const double mirrored = kStreetLine - 2.75 * depth;
        const double blur = 3.0 + 0.80 * depth;
        for (int x = 0; x < canvas.width(); ++x) {
            const double column = (x + 0.5) / stage.scale();
            const double ripple = ValueNoise(column / 34.0, depth / 3.2, 0x726970u) - 0.5;
            const double shift = ripple * (1.5 + 0.085 * depth);
            const double puddle = ValueNoise(column / 190.0, depth / 30.0, 0x77657475u);
            const double mirroring =
                (0.32 + 0.50 * puddle) * (1.0 - 0.30 * depth / (Stage::kHeight - kStreetLine));
            const int sourceX = std::clamp(static_cast<int>((column + shift) * stage.scale()), 0,
                                           canvas.width() - 1);
            // A mean along the vertical whose weights fall evenly to both ends.
            constexpr int kReach = 12;
            Colour sum{0.0f, 0.0f, 0.0f};
            for (int tap = -kReach; tap <= kReach; ++tap) {
                const double offset = blur * tap / (kReach + 1.0);
                const double line = std::clamp(mirrored + offset, 0.0, kStreetLine - 1.0);
                const int sourceY =
                    std::clamp(static_cast<int>(line * stage.scale()), 0, canvas.height() - 1);
                sum = sum + scene.at(sourceX, sourceY) * (kReach + 1.0 - std::abs(tap));
            }
            const Colour reflection = sum * (mirroring / ((kReach + 1.0) * (kReach + 1.0)));
            canvas.set(x, y, stage.shown(asphalt + reflection));
        }
    }
}

}  // namespace vireon::scenes
