#include <algorithm>

#include "samples/random.h"
#include "samples/scenes.h"

namespace vireon::scenes {

Colour DisplayColour(Colour light) {
    // Level from which light is compressed; the curve leaves it with slope 1 and nears 1.
    constexpr double kShoulder = 0.85;
    constexpr double kRoom = 1.0 - kShoulder;
    // The share of white that a colour of twenty times the display's white has taken on.
    constexpr double kWhitest = 0.35;
    constexpr double kBrightest = 20.0;
    const double largest = std::max({light.red, light.green, light.blue});
    if (largest <= kShoulder) {
        return light;
    }
    const double above = largest - kShoulder;
    const double level = kShoulder + kRoom * above / (above + kRoom);
    const double white = kWhitest * std::clamp((largest - 1.0) / (kBrightest - 1.0), 0.0, 1.0);
    return Mix(light * (1.0 / largest), {1.0f, 1.0f, 1.0f}, white) * level;
}

Canvas DrawLights(int width, int height, LightRange range, bool companions) {
    Canvas canvas(width, height);
    FillRectangle(canvas, {0.0, 0.0}, {static_cast<double>(width), static_cast<double>(height)},
                  {0.014f, 0.016f, 0.028f});
    // Sizes are given for a picture 320 pixels high.
    const double unit = height / 320.0;
    // A glow that works on a map reduced 4:1 sees every fourth pixel only. The light in the middle
    // is centred on such a pixel, the others between four of them, so that each is seen whole.
    constexpr int kGrid = 4;
    constexpr double kBetween = kGrid * 0.5;
    const auto onGrid = [](double pixel) { return static_cast<int>(pixel / kGrid) * kGrid + 0.5; };
    const auto lamp = [&](double x, double y, double offGrid, double radius, Colour light) {
        FillDisc(canvas, {onGrid(x * width) + offGrid, onGrid(y * height) + offGrid}, radius * unit,
                 range == LightRange::kDisplay ? DisplayColour(light) : light);
    };
    lamp(0.50, 0.50, 0.0, 4.6, Colour{1.0f, 0.95f, 0.88f} * 8.0);
    if (companions) {
        constexpr double kStrength = 2.6;
        lamp(0.17, 0.21, kBetween, 3.5, Colour{1.0f, 0.09f, 0.06f} * kStrength);
        lamp(0.84, 0.27, kBetween, 3.5, Colour{0.08f, 1.0f, 0.18f} * kStrength);
        lamp(0.73, 0.85, kBetween, 3.5, Colour{0.07f, 0.18f, 1.0f} * kStrength);
    }
    return canvas;
}

Canvas DrawNoise(int width, int height) {
    Canvas canvas(width, height);
    Random random(0x6E6F697365u);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const float red = static_cast<float>(random.unit());
            const float green = static_cast<float>(random.unit());
            const float blue = static_cast<float>(random.unit());
            canvas.set(x, y, {red, green, blue});
        }
    }
    return canvas;
}

}  // namespace vireon::scenes
