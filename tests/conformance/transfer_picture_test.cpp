#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tests/conformance/model_check.h"
#include "tests/conformance/reference_model.h"

namespace vireon::conformance {
namespace {

constexpr std::int32_t kModeScreen = 7;

Scene TransferScene(bool transparent, std::int32_t mode) {
    Scene scene = PlainScene();
    if (transparent) {
        scene.input = TransparentPicture(48, 32);
    }
    scene.controls.glowRadius = 14;
    scene.controls.glowIntensity = 1;
    scene.controls.threshold = 5;
    scene.controls.transferMode = mode;
    return scene;
}

/// The blends that divide by what a bright colour leaves over, or that ask for the hue of a nearly
/// grey one, multiply the glow's rounding errors. They may be away from the model by as much as an
/// error of three millionths of the glow moves the model itself, beside the usual tolerance.
void ExpectModelOfBlend(const Scene& scene) {
    const std::int32_t mode = scene.controls.transferMode;
    if (mode != 12 && mode != 13 && mode < 20) {
        ExpectModel(scene);
        return;
    }
    const Kernel& brush = ModelBrush(scene.controls.shape);
    const Picture expected = ReferenceRender(scene, brush);
    const Picture moved = ReferenceRender(scene, brush, {1 + 3e-6f, 1 + 1e-6f, 1 + 2e-6f});
    const Picture actual = RenderScene(scene);
    const double usual = kModelTolerance * std::max(1.0, Peak(expected));
    int strict = 0;
    for (int y = 0; y < expected.height(); ++y) {
        for (int x = 0; x < expected.width(); ++x) {
            double allowed = usual;
            for (std::size_t channel = 0; channel < 4; ++channel) {
                allowed += std::abs(static_cast<double>(moved.at(x, y)[channel]) -
                                    static_cast<double>(expected.at(x, y)[channel]));
            }
            strict += allowed < 3 * usual ? 1 : 0;
            for (std::size_t channel = 0; channel < 4; ++channel) {
                ASSERT_NEAR(actual.at(x, y)[channel], expected.at(x, y)[channel], allowed)
                    << x << ", " << y << ", channel " << channel;
            }
        }
    }
    EXPECT_GT(strict, expected.width() * expected.height() * 3 / 4)
        << "most pixels are to be compared closely";
}

class TransferMode : public ::testing::TestWithParam<std::int32_t> {};

TEST_P(TransferMode, IsTheModelsOverAnOpaqueSource) {
    Scene scene = TransferScene(false, GetParam());
    ExpectModelOfBlend(scene);
    scene.controls.glowOpacity = 70;
    ExpectModelOfBlend(scene);
    scene.controls.sourceOpacity = 40;
    ExpectModelOfBlend(scene);
    scene.controls.channels = 1;
    ExpectModelOfBlend(scene);
}

TEST_P(TransferMode, IsTheModelsOverATransparentSource) {
    Scene scene = TransferScene(true, GetParam());
    ExpectModelOfBlend(scene);
    scene.controls.glowOpacity = 70;
    scene.controls.sourceOpacity = 40;
    ExpectModelOfBlend(scene);
    scene.controls.channels = 1;
    ExpectModelOfBlend(scene);
    scene.controls.sourceOpacity = 0;
    ExpectModelOfBlend(scene);
}

TEST_P(TransferMode, IsTheModelsForOverbrightAndNegativeColours) {
    Scene scene = TransferScene(false, GetParam());
    for (int y = 0; y < 32; ++y) {
        for (int x = 0; x < 48; x += 7) {
            scene.input.at(x, y)[kRed] *= 2.5f;
            scene.input.at((x + 3) % 48, y)[kBlue] = -0.3f;
        }
    }
    scene.controls.glowIntensity = 3;
    ExpectModelOfBlend(scene);
}

TEST_P(TransferMode, IsTheModelsForANegativeGlow) {
    // A shape with a dark ring below black takes light away round each bright pixel.
    Scene scene = TransferScene(false, GetParam());
    scene.controls.shape = kShapeCustom;
    scene.shapeLayer = MakePicture(17, 17, [](int x, int y) {
        const float distance = static_cast<float>((x - 8) * (x - 8) + (y - 8) * (y - 8)) / 64;
        const float value = (0.1f - distance) * std::max(0.0f, 1 - distance);
        return PixelValues{1, value, value, value};
    });
    scene.controls.channels = 1;
    for (const bool transparent : {false, true}) {
        if (transparent) {
            scene.input = TransparentPicture(48, 32);
        }
        scene.controls.transferMode = kModeNone;
        float darkest = 0;
        const Picture glow = RenderScene(scene);
        for (const PixelValues& pixel : glow.pixels()) {
            darkest = std::min({darkest, pixel[kRed], pixel[kGreen], pixel[kBlue]});
        }
        ASSERT_LT(darkest, -0.1f);
        scene.controls.transferMode = GetParam();
        ExpectModelOfBlend(scene);
    }
}

INSTANTIATE_TEST_SUITE_P(Popup, TransferMode, ::testing::Range(1, 24));

TEST(TransferModes, ScreenIsAddBitForBit) {
    for (const bool transparent : {false, true}) {
        EXPECT_TRUE(RenderScene(TransferScene(transparent, kModeScreen)) ==
                    RenderScene(TransferScene(transparent, kModeAdd)));
    }
}

TEST(TransferModes, LinesBetweenTheEntriesAreNormalBitForBit) {
    for (const bool transparent : {false, true}) {
        const Picture normal = RenderScene(TransferScene(transparent, kModeNormal));
        for (const std::int32_t line : {4, 11, 14, 19}) {
            EXPECT_TRUE(RenderScene(TransferScene(transparent, line)) == normal) << line;
        }
    }
}

TEST(TransferModes, AllEntriesButThoseDiffer) {
    const std::int32_t entries[] = {1,  2,  3,  5,  6,  8,  9,  10, 12,
                                    13, 15, 16, 17, 18, 20, 21, 22, 23};
    for (const std::int32_t first : entries) {
        const Picture picture = RenderScene(TransferScene(true, first));
        for (const std::int32_t second : entries) {
            if (second > first) {
                EXPECT_FALSE(picture == RenderScene(TransferScene(true, second)))
                    << first << " and " << second;
            }
        }
    }
}

TEST(TransferModes, AreComposedAlikeByHostsWithAndWithoutWorldsOfTheirOwn) {
    headless::HostSettings settings;
    settings.applicationId = sdk::kHostPremierePro;
    for (std::int32_t mode = 1; mode <= 23; ++mode) {
        const Scene scene = TransferScene(true, mode);
        EXPECT_TRUE(RenderScene(scene) ==
                    RenderScene(scene, headless::Depth::kFloat, Path::kPlain, settings))
            << mode;
    }
}

TEST(TransferModes, ColorBurnStaysWithinBlackAndWhite) {
    Scene scene = TransferScene(false, 13);
    scene.controls.preventOverbrights = false;
    scene.controls.glowIntensity = 20;
    const Picture picture = RenderScene(scene);
    for (const PixelValues& pixel : picture.pixels()) {
        for (std::size_t channel = kRed; channel <= kBlue; ++channel) {
            ASSERT_GE(pixel[channel], 0.0f);
            ASSERT_LE(pixel[channel], 1.0f);
        }
    }
}

TEST(TransferModes, BehindAnOpaqueSourceNothingOfTheGlowIsSeen) {
    Scene scene = TransferScene(false, 2);
    EXPECT_TRUE(RenderScene(scene) == scene.input);
}

TEST(TransferModes, NormalIsTheGlowItself) {
    const Picture glow = RenderScene(TransferScene(false, kModeNone));
    EXPECT_TRUE(RenderScene(TransferScene(false, kModeNormal)) == glow);
}

}  // namespace
}  // namespace vireon::conformance
