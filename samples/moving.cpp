#include "samples/moving.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>

#include "samples/paint.h"
#include "samples/scenes.h"
#include "tools/brushes/series.h"

namespace vireon::scenes {

namespace {

using Lights = std::vector<MovingLight>;

constexpr double kWheelX = -430.0;  // from the middle
constexpr double kWheelY = 452.0;
constexpr double kHorizon = 850.0;

Point OnCircle(Point centre, double radius, double turns) {
    return {centre.x + radius * brushes::CosTurns(turns),
            centre.y + radius * brushes::SinTurns(turns)};
}

void AddDot(Lights& lights, Point place, double radius, Colour light) {
    lights.push_back({place, place, radius, light});
}

// A wheel of lights turns by the angle between two of them in the course of the loop.
void AddWheel(Lights& lights, Point centre, double phase) {
    struct Ring {
        double radius;
        int count;
        double turning;  // lights passed in a loop
        double size;
    };
    static constexpr std::array<Ring, 3> kRings{
        {{318.0, 48, 1.0, 4.6}, {286.0, 48, 1.0, 2.0}, {96.0, 24, -1.0, 3.0}}};
    static constexpr std::array<Colour, 3> kColours{
        {{1.0f, 0.62f, 0.20f}, {1.0f, 0.24f, 0.42f}, {0.34f, 0.62f, 1.0f}}};
    for (std::size_t r = 0; r < kRings.size(); ++r) {
        const Ring& ring = kRings[r];
        for (int i = 0; i < ring.count; ++i) {
            const double turns = (i + ring.turning * phase) / ring.count;
            AddDot(lights, OnCircle(centre, ring.radius, turns), ring.size, kColours[r] * 2.6);
        }
    }
    // Spokes of light between the rings.
    constexpr int kSpokes = 48;
    for (int i = 0; i < kSpokes; ++i) {
        const double turns = (i + phase) / kSpokes;
        lights.push_back({OnCircle(centre, 128.0, turns), OnCircle(centre, 262.0, turns), 0.8,
                          Colour{0.60f, 0.50f, 0.95f} * 0.62});
    }
}

// Cars on a road: every lane moves by the distance between two cars in a loop.
void AddRoad(Lights& lights, double width, double phase) {
    struct Lane {
        double y;
        double spacing;
        double direction;
        double size;
        Colour light;
    };
    static constexpr std::array<Lane, 6> kLanes{{{872.0, 31.0, -1.0, 1.3, {2.2f, 0.22f, 0.14f}},
                                                 {884.0, 43.0, 1.0, 1.6, {2.6f, 2.3f, 1.8f}},
                                                 {904.0, 67.0, -1.0, 2.2, {3.0f, 0.30f, 0.18f}},
                                                 {930.0, 89.0, 1.0, 2.8, {4.4f, 3.9f, 3.0f}},
                                                 {968.0, 127.0, -1.0, 3.6, {4.0f, 0.36f, 0.22f}},
                                                 {1020.0, 179.0, 1.0, 4.8, {9.0f, 8.2f, 6.6f}}}};
    for (const Lane& lane : kLanes) {
        const int count = static_cast<int>(std::min(width, Stage::kWidest) / lane.spacing) + 3;
        for (int i = 0; i < count; ++i) {
            const double x = (i - 1 + lane.direction * phase) * lane.spacing;
            AddDot(lights, {x, lane.y}, lane.size, lane.light);
            AddDot(lights, {x + 3.2 * lane.size, lane.y}, lane.size, lane.light);
        }
    }
}

// Paper lanterns rise on slanting paths.
void AddLanterns(Lights& lights, double middle, double phase) {
    struct Path {
        double x;  // of the lowest lantern, from the middle
        double y;
        double stepX;
        double stepY;
        int count;
        double size;
    };
    static constexpr std::array<Path, 5> kPaths{{{230.0, 862.0, 13.0, -58.0, 17, 3.2},
                                                 {330.0, 864.0, 24.0, -83.0, 12, 4.8},
                                                 {480.0, 862.0, 9.0, -47.0, 20, 2.6},
                                                 {560.0, 866.0, 29.0, -97.0, 10, 6.2},
                                                 {760.0, 864.0, 12.0, -71.0, 14, 3.8}}};
    for (const Path& path : kPaths) {
        for (int i = 0; i < path.count; ++i) {
            const double along = i + phase;
            // The lowest one comes up from behind the horizon, so it needs no way to appear.
            const double dim = 1.0 / (1.0 + 0.05 * along);
            AddDot(lights, {middle + path.x + path.stepX * along, path.y + path.stepY * along},
                   path.size * dim, Colour{1.0f, 0.50f, 0.13f} * (4.2 * dim));
        }
    }
}

// Slow lights on small closed ways, for steps far below a pixel.
void AddFloats(Lights& lights, double middle, double phase) {
    struct Float {
        double x;
        double y;
        double reachX;
        double reachY;
        double turns;  // in a loop
        double size;
        Colour light;
    };
    static constexpr std::array<Float, 9> kFloats{
        {{-20.0, 300.0, 1.0, 1.0, 1.0, 2.2, {1.4f, 2.9f, 3.2f}},
         {60.0, 372.0, 2.0, 2.0, -1.0, 2.2, {1.4f, 2.9f, 3.2f}},
         {-6.0, 452.0, 4.0, 2.0, 1.0, 2.8, {1.2f, 2.8f, 2.2f}},
         {84.0, 530.0, 7.0, 7.0, -1.0, 2.8, {1.2f, 2.8f, 2.2f}},
         {10.0, 612.0, 0.0, 5.0, 2.0, 3.4, {2.0f, 2.9f, 1.0f}},
         {98.0, 690.0, 6.0, 0.0, 2.0, 3.4, {2.0f, 2.9f, 1.0f}},
         {20.0, 180.0, 15.0, 4.0, 1.0, 2.6, {1.6f, 1.9f, 3.6f}},
         {150.0, 250.0, 3.0, 12.0, -1.0, 2.6, {1.6f, 1.9f, 3.6f}},
         {40.0, 766.0, 18.0, 9.0, 1.0, 4.0, {2.4f, 2.8f, 0.8f}}}};
    for (const Float& f : kFloats) {
        const double turns = f.turns * phase;
        AddDot(lights,
               {middle + f.x + f.reachX * brushes::CosTurns(turns),
                f.y + f.reachY * brushes::SinTurns(turns)},
               f.size, f.light);
    }
}

Colour Ground(double y) {
    const Colour top{0.010f, 0.016f, 0.040f};
    const Colour low{0.070f, 0.050f, 0.092f};
    if (y < kHorizon) {
        const double t = y / kHorizon;
        return Mix(top, low, t * t);
    }
    return Mix({0.016f, 0.015f, 0.024f}, {0.026f, 0.024f, 0.034f}, (y - kHorizon) / 230.0);
}

// What stands still: hills and the legs of the wheel.
void PaintGround(const Stage& stage) {
    PaintAll(stage, [&](Point p) {
        const double hill = kHorizon - 70.0 * FractalNoise(p.x / 380.0, 2.5, 4, 0x68696C6Cu) + 20.0;
        return p.y > hill && p.y < kHorizon ? Colour{0.020f, 0.019f, 0.034f} : Ground(p.y);
    });
    const Point hub{stage.middle() + kWheelX, kWheelY};
    const Colour iron{0.075f, 0.068f, 0.105f};
    for (const double foot : {-150.0, 150.0}) {
        stage.line(hub, {hub.x + foot, kHorizon + 4.0}, 6.0, iron);
    }
    stage.circle(hub, 302.0, 3.0, iron);
    stage.circle(hub, 268.0, 2.0, iron);
    stage.circle(hub, 120.0, 3.0, iron);
}

}  // namespace

std::vector<MovingLight> MovingLightsAt(double width, int frame) {
    const double phase = static_cast<double>(frame % kMovingFrames) / kMovingFrames;
    const double middle = 0.5 * width;
    Lights lights;
    AddLanterns(lights, middle, phase);
    AddWheel(lights, {middle + kWheelX, kWheelY}, phase);
    AddFloats(lights, middle, phase);
    AddRoad(lights, width, phase);
    return lights;
}

Canvas DrawMovingLights(int width, int height, LightRange range, int frame) {
    if (frame < 0 || frame >= kMovingFrames) {
        throw std::out_of_range("the moving scene has the frames 0 to 47");
    }
    Canvas canvas(width, height);
    const Stage stage(canvas, range);
    PaintGround(stage);
    FinishWithGrain(stage, 1.0, 0x6D6F7665u);
    for (const MovingLight& light : MovingLightsAt(stage.width(), frame)) {
        stage.line(light.from, light.to, 2.0 * light.radius, light.light);
    }
    return canvas;
}

}  // namespace vireon::scenes
