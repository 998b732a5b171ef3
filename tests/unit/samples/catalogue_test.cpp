#include "samples/catalogue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "samples/scenes.h"

namespace vireon::scenes {
namespace {

float Largest(Colour colour) {
    return std::max({colour.red, colour.green, colour.blue});
}

float LargestColour(const Canvas& canvas) {
    float largest = 0.0f;
    for (int y = 0; y < canvas.height(); ++y) {
        for (int x = 0; x < canvas.width(); ++x) {
            largest = std::max(largest, Largest(canvas.at(x, y)));
        }
    }
    return largest;
}

// Share of the picture whose largest channel lies between two levels.
double ShareBetween(const Canvas& canvas, float low, float high) {
    int count = 0;
    for (int y = 0; y < canvas.height(); ++y) {
        for (int x = 0; x < canvas.width(); ++x) {
            const float value = Largest(canvas.at(x, y));
            count += value >= low && value <= high ? 1 : 0;
        }
    }
    return static_cast<double>(count) / canvas.width() / canvas.height();
}

Canvas Draw(const char* name, int width, int height, LightRange range) {
    const Scene* scene = FindScene(name);
    if (scene == nullptr) throw std::logic_error("no such scene");
    return scene->draw({width, height, range});
}

// The mean of the brightest channel over squares of the picture, 16 by 9 of them.
std::vector<double> Composition(const Canvas& canvas) {
    std::vector<double> sums(16 * 9);
    std::vector<int> counts(16 * 9);
    for (int y = 0; y < canvas.height(); ++y) {
        for (int x = 0; x < canvas.width(); ++x) {
            const auto cell =
                static_cast<std::size_t>(y * 9 / canvas.height() * 16 + x * 16 / canvas.width());
            sums[cell] += static_cast<double>(Largest(canvas.at(x, y)) * canvas.alphaAt(x, y));
            ++counts[cell];
        }
    }
    for (std::size_t i = 0; i < sums.size(); ++i) sums[i] /= counts[i];
    return sums;
}

TEST(Catalogue, NamesEveryScene) {
    std::set<std::string> names;
    for (const Scene& scene : Scenes()) {
        EXPECT_TRUE(names.insert(std::string(scene.name)).second) << scene.name;
        EXPECT_FALSE(scene.description.empty()) << scene.name;
        EXPECT_EQ(FindScene(scene.name), &scene);
        EXPECT_GE(scene.frames, 1);
        EXPECT_GE(scene.defaultWidth, 320);
        EXPECT_GE(scene.defaultHeight, 320);
    }
    const std::set<std::string> expected{"night",   "neon",   "stars",  "title",  "portrait",
                                         "product", "sunlit", "moving", "lights", "noise"};
    EXPECT_EQ(names, expected);
    EXPECT_EQ(FindScene("nights"), nullptr);
    EXPECT_EQ(FindScene(""), nullptr);
}

TEST(Catalogue, ScenesKeepTheirRangeAtEverySize) {
    for (const Scene& scene : Scenes()) {
        for (const auto& [width, height] :
             {std::pair{1, 1}, {2, 3}, {16, 9}, {37, 200}, {400, 61}, {160, 90}}) {
            for (const LightRange range : {LightRange::kDisplay, LightRange::kOverbright}) {
                const Canvas canvas = scene.draw({width, height, range});
                ASSERT_EQ(canvas.width(), width);
                ASSERT_EQ(canvas.height(), height);
                const float most = range == LightRange::kDisplay ? 1.0f : 20.5f;
                const std::vector<float>& samples = canvas.samples();
                for (std::size_t i = 0; i < samples.size(); ++i) {
                    ASSERT_TRUE(std::isfinite(samples[i])) << scene.name;
                    ASSERT_GE(samples[i], 0.0f) << scene.name;
                    ASSERT_LE(samples[i], i % 4 == 3 ? 1.0f : most)
                        << scene.name << " " << width << "x" << height;
                    if (i % 4 == 3 && !scene.hasAlpha) {
                        ASSERT_EQ(samples[i], 1.0f) << scene.name;
                    }
                }
            }
        }
    }
}

TEST(Catalogue, ThinPicturesOfTheLargestSideAreDrawn) {
    for (const Scene& scene : Scenes()) {
        for (const auto& [width, height] : {std::pair{32768, 1}, {1, 32768}}) {
            const Canvas canvas = scene.draw({width, height, LightRange::kDisplay});
            EXPECT_EQ(canvas.width(), width) << scene.name;
            EXPECT_EQ(canvas.height(), height) << scene.name;
        }
        EXPECT_THROW(scene.draw({32769, 1, LightRange::kDisplay}), std::invalid_argument);
        EXPECT_THROW(scene.draw({1, 0, LightRange::kDisplay}), std::invalid_argument);
    }
}

TEST(Catalogue, ScenesAreDrawnTheSameTwice) {
    for (const Scene& scene : Scenes()) {
        const SceneView view{160, 90, LightRange::kOverbright, scene.frames - 1};
        EXPECT_EQ(scene.draw(view).samples(), scene.draw(view).samples()) << scene.name;
    }
}

TEST(Catalogue, LightsGoFarAboveDisplayWhiteWhenAsked) {
    for (const char* name : {"night", "neon", "stars", "title", "product", "sunlit"}) {
        EXPECT_GT(LargestColour(Draw(name, 640, 360, LightRange::kOverbright)), 10.0f) << name;
        EXPECT_GT(LargestColour(Draw(name, 640, 360, LightRange::kDisplay)), 0.95f) << name;
    }
    for (const char* name : {"portrait", "moving"}) {
        EXPECT_GT(LargestColour(Draw(name, 640, 360, LightRange::kOverbright)), 3.0f) << name;
    }
}

TEST(Catalogue, ScenesScaleWithTheHeight) {
    for (const Scene& scene : Scenes()) {
        // Random values have no composition; lights keep to a grid of pixels.
        if (scene.name == "noise" || scene.name == "lights") continue;
        const std::vector<double> small = Composition(scene.draw({320, 180, LightRange::kDisplay}));
        const std::vector<double> large = Composition(scene.draw({640, 360, LightRange::kDisplay}));
        for (std::size_t i = 0; i < small.size(); ++i) {
            EXPECT_NEAR(small[i], large[i], 0.04) << scene.name << " cell " << i;
        }
    }
}

TEST(Title, HasAlphaFromNoneToFull) {
    const Canvas canvas = Draw("title", 640, 360, LightRange::kDisplay);
    int none = 0;
    int between = 0;
    int full = 0;
    for (int y = 0; y < canvas.height(); ++y) {
        for (int x = 0; x < canvas.width(); ++x) {
            const float alpha = canvas.alphaAt(x, y);
            none += alpha == 0.0f ? 1 : 0;
            full += alpha == 1.0f ? 1 : 0;
            between += alpha > 0.02f && alpha < 0.98f ? 1 : 0;
            if (alpha == 0.0f) {
                ASSERT_EQ(Largest(canvas.at(x, y)), 0.0f);
            } else {
                // Straight colour: the edge of a letter is as bright as its inside.
                ASSERT_GT(Largest(canvas.at(x, y)), 0.4f) << x << "," << y << " " << alpha;
            }
        }
    }
    EXPECT_GT(none, 150000);
    EXPECT_GT(full, 3000);
    EXPECT_GT(between, 1000);
}

TEST(Title, FitsIntoPicturesOfOtherProportions) {
    for (const auto& [width, height] : {std::pair{300, 400}, {400, 300}, {700, 300}}) {
        const Canvas canvas = Draw("title", width, height, LightRange::kDisplay);
        int lettered = 0;
        for (int y = 0; y < height; ++y) {
            EXPECT_EQ(canvas.alphaAt(0, y), 0.0f);
            EXPECT_EQ(canvas.alphaAt(width - 1, y), 0.0f);
            for (int x = 0; x < width; ++x) lettered += canvas.alphaAt(x, y) == 1.0f ? 1 : 0;
        }
        EXPECT_GT(lettered, 500) << width << "x" << height;
    }
}

TEST(Product, IsMostlyWhite) {
    const Canvas canvas = Draw("product", 480, 270, LightRange::kDisplay);
    EXPECT_GT(ShareBetween(canvas, 0.6f, 1.0f), 0.85);
    EXPECT_GT(ShareBetween(canvas, 0.0f, 0.6f), 0.005);
}

TEST(Sunlit, HasValuesOverTheWholeRange) {
    const Canvas canvas = Draw("sunlit", 320, 180, LightRange::kDisplay);
    std::array<int, 10> tenths{};
    for (int y = 0; y < canvas.height(); ++y) {
        for (int x = 0; x < canvas.width(); ++x) {
            const Colour colour = canvas.at(x, y);
            const float mean = (colour.red + colour.green + colour.blue) / 3.0f;
            ++tenths[static_cast<std::size_t>(std::min(mean * 10.0f, 9.0f))];
        }
    }
    for (const int count : tenths) {
        EXPECT_GT(count, 320 * 180 / 200);
    }
}

TEST(DarkScenes, AreMostlyBelowTheUsualThreshold) {
    for (const char* name : {"neon", "stars", "portrait", "moving"}) {
        const Canvas canvas = Draw(name, 640, 360, LightRange::kDisplay);
        EXPECT_LT(ShareBetween(canvas, 0.5f, 1.0f), 0.12) << name;
        EXPECT_GT(ShareBetween(canvas, 0.7f, 1.0f), 0.0005) << name;
    }
}

}  // namespace
}  // namespace vireon::scenes
