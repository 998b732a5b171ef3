#include "samples/scenes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace vireon::scenes {
namespace {

struct NamedScene {
    std::string name;
    std::function<Canvas(int, int, LightRange)> draw;
};

std::vector<NamedScene> AllScenes() {
    return {{"night", DrawNightCity},
            {"lights", [](int w, int h, LightRange range) { return DrawLights(w, h, range); }},
            {"noise", [](int w, int h, LightRange) { return DrawNoise(w, h); }}};
}

float LargestColour(const Canvas& canvas) {
    float largest = 0.0f;
    for (int y = 0; y < canvas.height(); ++y) {
        for (int x = 0; x < canvas.width(); ++x) {
            const Colour colour = canvas.at(x, y);
            largest = std::max({largest, colour.red, colour.green, colour.blue});
        }
    }
    return largest;
}

// Pixels whose largest channel exceeds the level, as a share of the picture.
double ShareAbove(const Canvas& canvas, float level) {
    int count = 0;
    for (int y = 0; y < canvas.height(); ++y) {
        for (int x = 0; x < canvas.width(); ++x) {
            const Colour colour = canvas.at(x, y);
            count += std::max({colour.red, colour.green, colour.blue}) > level ? 1 : 0;
        }
    }
    return static_cast<double>(count) / canvas.width() / canvas.height();
}

TEST(Scenes, AreFiniteOpaqueAndNotNegativeAtEverySize) {
    for (const NamedScene& scene : AllScenes()) {
        for (const auto& [width, height] :
             {std::pair{1, 1}, {2, 3}, {16, 9}, {37, 200}, {400, 61}, {320, 180}}) {
            for (const LightRange range : {LightRange::kDisplay, LightRange::kOverbright}) {
                const Canvas canvas = scene.draw(width, height, range);
                ASSERT_EQ(canvas.width(), width);
                ASSERT_EQ(canvas.height(), height);
                const std::vector<float>& samples = canvas.samples();
                for (std::size_t i = 0; i < samples.size(); ++i) {
                    ASSERT_TRUE(std::isfinite(samples[i])) << scene.name;
                    ASSERT_GE(samples[i], 0.0f) << scene.name;
                    if (i % 4 == 3) {
                        ASSERT_EQ(samples[i], 1.0f) << scene.name;
                    }
                }
            }
        }
    }
}

TEST(Scenes, AreDrawnTheSameTwice) {
    for (const NamedScene& scene : AllScenes()) {
        const Canvas once = scene.draw(320, 180, LightRange::kOverbright);
        const Canvas again = scene.draw(320, 180, LightRange::kOverbright);
        EXPECT_EQ(once.samples(), again.samples()) << scene.name;
    }
}

TEST(Scenes, ExceedDisplayWhiteOnlyWhenAsked) {
    for (const NamedScene& scene : AllScenes()) {
        const float display = LargestColour(scene.draw(640, 360, LightRange::kDisplay));
        EXPECT_LE(display, 1.0f) << scene.name;
        EXPECT_GT(display, 0.9f) << scene.name;
    }
    const float night = LargestColour(DrawNightCity(640, 360, LightRange::kOverbright));
    EXPECT_GT(night, 15.0f);
    EXPECT_LE(night, 20.5f);
    const float lights = LargestColour(DrawLights(640, 360, LightRange::kOverbright));
    EXPECT_GT(lights, 7.0f);
    EXPECT_LE(lights, 20.5f);
}

TEST(NightCity, IsMostlyDarkWithSomeLight) {
    const Canvas canvas = DrawNightCity(960, 540, LightRange::kDisplay);
    EXPECT_GT(ShareAbove(canvas, 0.8f), 0.005);
    EXPECT_LT(ShareAbove(canvas, 0.5f), 0.10);
}

TEST(NightCity, KeepsItsComposition) {
    // The moon stands at the same place in pictures of any size.
    for (const int height : {180, 540}) {
        const Canvas canvas = DrawNightCity(height * 16 / 9, height, LightRange::kDisplay);
        const double scale = height / 1080.0;
        const Colour moon =
            canvas.at(static_cast<int>(1505.0 * scale), static_cast<int>(210.0 * scale));
        EXPECT_GT(moon.red, 0.75f) << height;
        const Colour beside =
            canvas.at(static_cast<int>(1505.0 * scale), static_cast<int>(260.0 * scale));
        EXPECT_LT(beside.red, 0.3f) << height;
    }
}

TEST(NightCity, StreetMirrorsTheLights) {
    // Below the street line nothing shines of itself; what is brighter than wet asphalt there is a
    // reflection.
    const Canvas canvas = DrawNightCity(960, 540, LightRange::kOverbright);
    float brightest = 0.0f;
    for (int y = 470; y < 540; ++y) {
        for (int x = 0; x < 960; ++x) {
            brightest = std::max(brightest, canvas.at(x, y).red);
        }
    }
    EXPECT_GT(brightest, 0.5f);
    EXPECT_LT(brightest, 20.0f);
}

TEST(Lights, StandWhereAReducedMapSeesThem) {
    const Canvas canvas = DrawLights(320, 320, LightRange::kDisplay);
    const Colour middle = canvas.at(160, 160);
    EXPECT_GT(middle.red, 0.9f);
    EXPECT_GT(middle.green, 0.8f);
    // Every fourth pixel of both axes: the light covers the middle one and its four neighbours.
    for (const auto& [x, y] : {std::pair{156, 160}, {164, 160}, {160, 156}, {160, 164}}) {
        EXPECT_GT(canvas.at(x, y).red, 0.9f);
    }
    EXPECT_LT(canvas.at(168, 160).red, 0.05f);
    EXPECT_LT(ShareAbove(canvas, 0.1f), 0.005);
}

TEST(Lights, CompanionsAreColouredAndCanBeLeftOut) {
    const auto dominant = [](const Canvas& canvas, auto channel) {
        int count = 0;
        for (int y = 0; y < canvas.height(); ++y) {
            for (int x = 0; x < canvas.width(); ++x) {
                count += channel(canvas.at(x, y)) ? 1 : 0;
            }
        }
        return count;
    };
    const auto red = [](Colour c) { return c.red > 0.8f && c.green < 0.4f && c.blue < 0.4f; };
    const auto green = [](Colour c) { return c.green > 0.8f && c.red < 0.4f && c.blue < 0.4f; };
    const auto blue = [](Colour c) { return c.blue > 0.8f && c.red < 0.4f && c.green < 0.4f; };
    const Canvas together = DrawLights(320, 320, LightRange::kDisplay);
    EXPECT_GE(dominant(together, red), 16);
    EXPECT_GE(dominant(together, green), 16);
    EXPECT_GE(dominant(together, blue), 16);
    const Canvas alone = DrawLights(320, 320, LightRange::kDisplay, false);
    EXPECT_EQ(dominant(alone, red) + dominant(alone, green) + dominant(alone, blue), 0);
    EXPECT_GT(alone.at(160, 160).red, 0.9f);
}

TEST(Noise, IsEven) {
    const Canvas canvas = DrawNoise(256, 256);
    double sum = 0.0;
    double squares = 0.0;
    for (int y = 0; y < 256; ++y) {
        for (int x = 0; x < 256; ++x) {
            const Colour colour = canvas.at(x, y);
            for (const float value : {colour.red, colour.green, colour.blue}) {
                ASSERT_GE(value, 0.0f);
                ASSERT_LE(value, 1.0f);
                sum += static_cast<double>(value);
                squares += static_cast<double>(value) * static_cast<double>(value);
            }
        }
    }
    constexpr double kCount = 256.0 * 256.0 * 3.0;
    EXPECT_NEAR(sum / kCount, 0.5, 0.005);
    EXPECT_NEAR(squares / kCount, 1.0 / 3.0, 0.005);
}

TEST(DisplayColour, CompressesOnlyWhatIsBright) {
    const Colour dim = DisplayColour({0.84f, 0.40f, 0.10f});
    EXPECT_EQ(dim.red, 0.84f);
    EXPECT_EQ(dim.green, 0.40f);
    EXPECT_EQ(dim.blue, 0.10f);
    // The hue is kept while the light stays below 1.
    const Colour bright = DisplayColour({0.95f, 0.475f, 0.19f});
    EXPECT_LT(bright.red, 0.95f);
    EXPECT_GT(bright.red, 0.85f);
    EXPECT_NEAR(bright.green / bright.red, 0.5f, 1e-6f);
    EXPECT_NEAR(bright.blue / bright.red, 0.2f, 1e-6f);
    // Far above 1 it takes on white.
    const Colour strong = DisplayColour({20.0f, 10.0f, 1.0f});
    EXPECT_GT(strong.red, 0.99f);
    EXPECT_GT(strong.blue, 0.3f);
    EXPECT_LE(strong.red, 1.0f);
    const Colour extreme = DisplayColour({1e6f, 0.0f, 0.0f});
    EXPECT_LE(extreme.red, 1.0f);
    EXPECT_NEAR(extreme.green, 0.35f, 0.01f);
}

}  // namespace
}  // namespace vireon::scenes
