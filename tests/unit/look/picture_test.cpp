#include "tools/look/picture.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

#include "tools/look/tables.h"

namespace vireon::look {
namespace {

TEST(Picture, LiesOverBlack) {
    headless::World world(2, 1, headless::Depth::kFloat);
    world.setColor(0, 0, {1.0f, 0.25f, 0.5f, 2.0f});
    world.setColor(1, 0, {0.5f, 1.0f, 0.5f, 0.0f});
    const std::vector<float> expected{0.25f, 0.5f, 2.0f, 0.5f, 0.25f, 0.0f};
    EXPECT_EQ(PictureOf(world).samples, expected);
}

TEST(Picture, CountsLightAboveOneAsWhite) {
    const Picture picture{1, 2, {0.5f, 3.0f, 0.99f, 0.25f, 0.98f, 0.0f}};
    const Brightness brightness = BrightnessOf(picture);
    EXPECT_NEAR(brightness.mean, (0.5 + 1.0 + 0.99 + 0.25 + 0.98) / 6.0, 1e-7);
    EXPECT_NEAR(brightness.white, 2.0 / 6.0, 1e-12);
    EXPECT_NEAR(LightOf(picture), 5.72, 1e-6);
}

TEST(Picture, DifferencesAreThoseThatADisplayShows) {
    const Picture a{1, 1, {0.5f, 3.0f, 0.0f}};
    const Picture b{1, 1, {0.25f, 1.0f, 0.5f}};
    const Difference difference = DifferenceOf(a, b);
    EXPECT_NEAR(difference.mean, 0.25, 1e-12);
    EXPECT_NEAR(difference.most, 0.5, 1e-12);
    EXPECT_THROW(DifferenceOf(a, {1, 2, std::vector<float>(6)}), std::invalid_argument);
}

TEST(Picture, IsReducedToMeansWithoutTheRest) {
    Picture picture{3, 2, {}};
    for (int i = 0; i < 6; ++i) {
        for (int c = 0; c < 3; ++c) picture.samples.push_back(static_cast<float>(i + 10 * c));
    }
    const Picture reduced = Reduced(picture, 2);
    EXPECT_EQ(reduced.width, 1);
    EXPECT_EQ(reduced.height, 1);
    // The pixels 0, 1, 3 and 4.
    EXPECT_EQ(reduced.samples, (std::vector<float>{2.0f, 12.0f, 22.0f}));
}

TEST(Picture, ALayerIsReducedWithItsAlpha) {
    headless::World layer(2, 2, headless::Depth::kFloat);
    layer.setColor(0, 0, {1.0f, 0.8f, 0.4f, 0.2f});
    layer.setColor(1, 0, {1.0f, 0.4f, 0.4f, 0.2f});
    layer.setColor(0, 1, {0.0f, 1.0f, 1.0f, 1.0f});
    const auto reduced = Reduced(layer, 2);
    const sdk::PF_PixelFloat pixel = reduced->color(0, 0);
    EXPECT_FLOAT_EQ(pixel.alpha, 0.5f);
    EXPECT_FLOAT_EQ(pixel.red, 0.6f);
    EXPECT_FLOAT_EQ(pixel.green, 0.4f);
    EXPECT_FLOAT_EQ(pixel.blue, 0.2f);
}

TEST(Picture, LightInARingIsAMean) {
    Picture picture{5, 5, std::vector<float>(75, 0.0f)};
    for (int c = 0; c < 3; ++c)
        picture.samples[static_cast<std::size_t>((2 * 5 + 4) * 3 + c)] = 1.0f;
    // Four pixels lie two pixels from the middle one, and one of them is lit.
    EXPECT_NEAR(LightInRing(picture, {2.5, 2.5}, 1.9, 2.1), 0.25, 1e-12);
    EXPECT_EQ(LightInRing(picture, {2.5, 2.5}, 20.0, 30.0), 0.0);
}

TEST(Tables, SayTheFiguresInBothForms) {
    Measures measures;
    measures.brightness.push_back({"night, 8 bits", {0.1, 0.01}, {0.125, 0.05}});
    measures.shapes = {{"night"}, {{"Tent", {0.98}}, {"Zig", {1.02}}}, {1.02 / 0.98 - 1.0}};
    const Subject subject{nullptr, 960, 540};
    const std::string text = MarkdownOf(measures, subject);
    EXPECT_NE(text.find("960x540 pixels, Glow Radius 50.0, Glow Intensity 40.0 %"),
              std::string::npos);
    EXPECT_NE(text.find("| night, 8 bits | 0.1000 | 0.1250 | 1.250 | 1.00 % | 5.00 % |"),
              std::string::npos);
    EXPECT_NE(text.find("| largest over smallest | +4.08 % |"), std::string::npos);
    const auto json = JsonOf(measures, subject);
    EXPECT_EQ(json["brightness"][0]["meanAfter"], 0.125);
    EXPECT_EQ(json["shapes"][0]["light"]["Zig"], 1.02);
}

TEST(Tables, ARatioToNoGlowIsNoNumber) {
    const double none = std::numeric_limits<double>::quiet_NaN();
    Measures measures;
    measures.flicker.push_back({"16:1 (fastest)", none, none});
    measures.shapes = {{"night"}, {{"Tent", {none}}}, {none}};
    const Subject subject{nullptr, 480, 270};
    const std::string text = MarkdownOf(measures, subject);
    EXPECT_NE(text.find("| 16:1 (fastest) | none | none |"), std::string::npos);
    EXPECT_NE(text.find("| largest over smallest | none |"), std::string::npos);
    EXPECT_EQ(text.find("nan"), std::string::npos);
    EXPECT_NE(JsonOf(measures, subject).dump().find("\"meanChange\":null"), std::string::npos);
}

}  // namespace
}  // namespace vireon::look
