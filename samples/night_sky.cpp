#include <algorithm>
#include <array>
#include <cmath>

#include "samples/random.h"
#include "samples/stage.h"

namespace vireon::scenes {

namespace {

struct ColourStop {
    double height;  // design line
    Colour colour;
};

// Night above, the last of the dusk over the roofs.
constexpr std::array<ColourStop, 5> kSkyStops{{{0.0, {0.012f, 0.020f, 0.060f}},
                                               {260.0, {0.034f, 0.044f, 0.130f}},
                                               {440.0, {0.110f, 0.076f, 0.190f}},
                                               {590.0, {0.270f, 0.130f, 0.210f}},
                                               {760.0, {0.430f, 0.230f, 0.180f}}}};

Colour SkyColour(double line) {
    for (std::size_t i = 1; i < kSkyStops.size(); ++i) {
        if (line < kSkyStops[i].height) {
            const ColourStop& above = kSkyStops[i - 1];
            const ColourStop& below = kSkyStops[i];
            return Mix(above.colour, below.colour,
                       (line - above.height) / (below.height - above.height));
        }
    }
    return kSkyStops.back().colour;
}

void PaintGradient(const Stage& stage) {
    Canvas& canvas = stage.canvas();
    Random grain(0x677261696Eu);
    for (int y = 0; y < canvas.height(); ++y) {
        const double line = (y + 0.5) / stage.scale();
        const Colour sky = SkyColour(line);
        for (int x = 0; x < canvas.width(); ++x) {
            // Thin clouds in long streaks, and a grain of half an 8-bit step against banding.
            const double column = (x + 0.5) / stage.scale();
            const double streaks = 0.65 * ValueNoise(column / 420.0, line / 62.0, 0x636C6F7564u) +
                                   0.35 * ValueNoise(column / 150.0, line / 25.0, 0x77697370u);
            const double cloud = std::max(0.0, streaks - 0.5);
            const double noise = (grain.unit() - 0.5) / 255.0;
            const Colour colour = sky * (1.0 + 1.1 * cloud);
            const float n = static_cast<float>(noise);
            canvas.set(x, y,
                       {std::max(0.0f, colour.red + n), std::max(0.0f, colour.green + n),
                        std::max(0.0f, colour.blue + n)});
        }
    }
}

void PaintStars(const Stage& stage) {
    Random random(0x7374617273u);
    const int count = static_cast<int>(stage.furnishedWidth() * 0.19);
    for (int i = 0; i < count; ++i) {
        const Point place{random.unit() * stage.furnishedWidth(),
                          640.0 * random.unit() * random.unit()};
        const double magnitude = random.unit() * random.unit() * random.unit();
        const double strength = (0.16 + 0.75 * magnitude) * (1.0 - place.y / 760.0);
        const Colour tint = Mix({0.75f, 0.84f, 1.0f}, {1.0f, 0.90f, 0.76f}, random.unit());
        stage.disc(place, 0.7 + 0.9 * magnitude, SkyColour(place.y) + tint * strength);
    }
}

void PaintMoon(const Stage& stage) {
    const Point centre{stage.middle() + 545.0, 178.0};
    constexpr double kRadius = 45.0;
    stage.disc(centre, kRadius, {1.05f, 0.99f, 0.86f});
    struct Mare {
        double x;
        double y;
        double radius;
        float depth;
    };
    static constexpr std::array<Mare, 7> kMaria{{{-14.0, -13.0, 13.0, 0.32f},
                                                 {6.0, -18.0, 8.0, 0.26f},
                                                 {15.0, -4.0, 10.0, 0.32f},
                                                 {-19.0, 9.0, 9.0, 0.22f},
                                                 {4.0, 8.0, 6.0, 0.19f},
                                                 {-4.0, 27.0, 5.0, 0.16f},
                                                 {22.0, 16.0, 6.0, 0.22f}}};
    for (const Mare& mare : kMaria) {
        const Colour shade{-mare.depth, -mare.depth, -0.8f * mare.depth};
        stage.softLight({centre.x + mare.x, centre.y + mare.y}, mare.radius * 1.5, shade);
    }
}

}  // namespace

void PaintSky(const Stage& stage) {
    PaintGradient(stage);
    PaintStars(stage);
    PaintMoon(stage);
}

}  // namespace vireon::scenes
