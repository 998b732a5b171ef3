#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "tests/conformance/model_check.h"

namespace vireon::conformance {
namespace {

TEST(GlowPicture, IsTheModelsAtEveryQuality) {
    for (const bool highQuality : {true, false}) {
        for (std::int32_t quality = 1; quality <= 5; ++quality) {
            for (const std::int32_t shape : {1, 2}) {
                SCOPED_TRACE(::testing::Message() << "quality " << quality << ", shape " << shape
                                                  << (highQuality ? ", best" : ", draft"));
                Scene scene = PlainScene();
                scene.controls.quality = quality;
                scene.controls.shape = shape;
                scene.controls.glowRadius = 9 + 6 * quality;
                scene.controls.transferMode = kModeNone;
                scene.highQuality = highQuality;
                ExpectModel(scene);
            }
        }
    }
}

TEST(GlowPicture, IsTheModelsForSizesThatTheQualityDoesNotDivide) {
    for (const auto& [width, height] :
         std::vector<std::pair<int, int>>{{45, 31}, {50, 27}, {33, 35}}) {
        for (const bool highQuality : {true, false}) {
            for (std::int32_t quality = 2; quality <= 4; ++quality) {
                SCOPED_TRACE(::testing::Message() << width << " x " << height << ", quality "
                                                  << quality << (highQuality ? "" : ", draft"));
                Scene scene = PlainScene();
                scene.input = OpaquePicture(width, height);
                scene.controls.quality = quality;
                scene.controls.glowRadius = 20;
                scene.controls.transferMode = kModeNone;
                scene.highQuality = highQuality;
                ExpectModel(scene);
            }
        }
    }
}

TEST(GlowPicture, FallsBackToFullResolutionForFramesSmallerThanTheReduction) {
    for (const auto& [width, height] : std::vector<std::pair<int, int>>{
             {1, 1}, {1, 9}, {9, 1}, {2, 2}, {3, 40}, {40, 7}, {15, 15}}) {
        for (std::int32_t quality = 1; quality <= 5; ++quality) {
            for (const std::int32_t view : {kViewOutput, kViewBrightness, kViewMask}) {
                SCOPED_TRACE(::testing::Message() << width << " x " << height << ", quality "
                                                  << quality << ", view " << view);
                Scene scene = PlainScene();
                scene.input = MakePicture(width, height, [](int x, int y) {
                    return PixelValues{1.0f, 0.9f - 0.01f * static_cast<float>(x), 0.8f,
                                       0.6f + 0.005f * static_cast<float>(y)};
                });
                scene.controls.threshold = 5;
                scene.controls.quality = quality;
                scene.controls.view = view;
                ExpectModel(scene);
            }
        }
    }
}

TEST(GlowPicture, HasTheChosenChannels) {
    for (const bool transparent : {false, true}) {
        for (const std::int32_t mode : {kModeNone, kModeAdd}) {
            for (const std::int32_t quality : {1, 3}) {
                for (std::int32_t channels = 1; channels <= 6; ++channels) {
                    SCOPED_TRACE(::testing::Message()
                                 << "channels " << channels << ", mode " << mode << ", quality "
                                 << quality << (transparent ? ", transparent" : ", opaque"));
                    Scene scene = PlainScene();
                    if (transparent) {
                        scene.input = TransparentPicture(48, 32);
                        scene.controls.threshold = 5;
                        scene.controls.glowRadius = 16;
                    }
                    scene.controls.channels = channels;
                    scene.controls.quality = quality;
                    scene.controls.transferMode = mode;
                    if (transparent && channels == 6 && mode == kModeNone) {
                        // Alpha takes the intensity of the colours, and there are none.
                        EXPECT_TRUE(RenderScene(scene) == Picture(48, 32));
                        continue;
                    }
                    ExpectModel(scene);
                }
            }
        }
    }
}

TEST(GlowPicture, GrowsFromTheChosenSourceChannels) {
    for (const bool transparent : {false, true}) {
        for (std::int32_t channels = 1; channels <= 7; ++channels) {
            SCOPED_TRACE(::testing::Message() << "source channels " << channels
                                              << (transparent ? ", transparent" : ", opaque"));
            Scene scene = PlainScene();
            if (transparent) {
                scene.input = TransparentPicture(48, 32);
                scene.controls.glowRadius = 16;
            }
            scene.controls.threshold = 10;
            scene.controls.inputChannels = channels;
            ExpectModel(scene);
        }
    }
}

TEST(GlowPicture, IsClippedSoftlyByThePreventionOfOverbrights) {
    for (const bool prevent : {true, false}) {
        for (const double clamp : {100.0, 50.0, 1.0, 0.0}) {
            for (const double intensity : {1.0, 2.2, 4.0, 40.0}) {
                SCOPED_TRACE(::testing::Message() << (prevent ? "prevented, " : "let through, ")
                                                  << clamp << " %, intensity " << intensity);
                Scene scene = PlainScene();
                scene.controls.preventOverbrights = prevent;
                scene.controls.overbrightClamp = clamp;
                scene.controls.glowIntensity = intensity;
                scene.controls.transferMode = kModeNone;
                ExpectModel(scene);
            }
        }
    }
}

TEST(GlowPicture, StaysBelowWhiteWhenOverbrightsArePrevented) {
    Scene scene = PlainScene();
    scene.controls.transferMode = kModeNone;
    scene.controls.glowIntensity = 4;
    scene.controls.preventOverbrights = false;
    const double open = Peak(RenderScene(scene));
    ASSERT_GT(open, 1.2);
    ASSERT_LT(open, 2.0) << "the exact value below needs a peak between 1 and 2";
    scene.controls.preventOverbrights = true;
    const Picture clipped = RenderScene(scene);
    double brightest = 0;
    for (const PixelValues& pixel : clipped.pixels()) {
        brightest =
            std::max({brightest, static_cast<double>(pixel[kRed]),
                      static_cast<double>(pixel[kGreen]), static_cast<double>(pixel[kBlue])});
    }
    EXPECT_NEAR(brightest, 1 - (open - 1) / 16, 1e-5);
}

TEST(GlowPicture, IsScaledAndMixedByTheTwoOpacities) {
    for (const std::int32_t mode : {kModeNone, 2, kModeNormal, kModeAdd, 6}) {
        for (const double source : {100.0, 60.0, 0.0}) {
            for (const double glow : {100.0, 35.0}) {
                SCOPED_TRACE(::testing::Message() << "mode " << mode << ", source " << source
                                                  << " %, glow " << glow << " %");
                Scene scene = PlainScene();
                scene.controls.transferMode = mode;
                scene.controls.sourceOpacity = source;
                scene.controls.glowOpacity = glow;
                ExpectModel(scene);
            }
        }
    }
}

TEST(GlowPicture, KeepsItsLookAtReducedResolutions) {
    struct Resolution {
        sdk::PF_RationalScale x, y;
    };
    for (const Resolution& resolution : {Resolution{{1, 2}, {1, 2}}, Resolution{{1, 3}, {1, 2}},
                                         Resolution{{1, 1}, {1, 2}}, Resolution{{0, 0}, {1, 2}}}) {
        for (const std::int32_t quality : {1, 2, 3}) {
            SCOPED_TRACE(::testing::Message()
                         << resolution.x.num << "/" << resolution.x.den << ", " << resolution.y.num
                         << "/" << resolution.y.den << ", quality " << quality);
            Scene scene = PlainScene();
            scene.downsampleX = resolution.x;
            scene.downsampleY = resolution.y;
            scene.controls.glowRadius = 20 * quality;
            scene.controls.quality = quality;
            scene.controls.glowIntensity = 1;
            scene.controls.blurInput = 0.2;
            scene.controls.transferMode = kModeNone;
            headless::HostSettings settings;
            settings.fullWidth = 48 * 2;
            settings.fullHeight = 32 * 2;
            const bool wholeLayer = resolution.x.num == 1 && resolution.x.den == 2;
            if (wholeLayer) {
                ExpectModel(scene, settings);
            } else {
                // The frame is given by the worlds alone.
                const Picture expected = ModelRender(scene);
                const Picture actual = RenderScene(scene, headless::Depth::kFloat, Path::kPlain);
                const Difference difference = Compare(expected, actual);
                EXPECT_LE(difference.largest, kModelTolerance * std::max(1.0, Peak(expected)))
                    << difference.text;
            }
        }
    }
}

TEST(GlowPicture, MultipliesReducedWorkByTheAreaThatWasSaved) {
    // One bright block, large enough to survive every reduction: a quarter of the resolution has a
    // sixteenth of the stamps, so each counts sixteenfold and the total light stays the same.
    Scene scene = PlainScene();
    scene.input = MakePicture(96, 96, [](int x, int y) {
        const bool bright = x >= 40 && x < 56 && y >= 40 && y < 56;
        return bright ? PixelValues{1, 1, 1, 1} : PixelValues{1, 0, 0, 0};
    });
    scene.controls.threshold = 0;
    scene.controls.glowFalloff = 1;
    scene.controls.glowRadius = 32;
    scene.controls.glowIntensity = 1;
    scene.controls.preventOverbrights = false;
    scene.controls.transferMode = kModeNone;
    std::vector<double> totals;
    for (const std::int32_t quality : {1, 2, 3}) {
        scene.controls.quality = quality;
        double total = 0;
        const Picture picture = RenderScene(scene);
        for (const PixelValues& pixel : picture.pixels()) {
            total += static_cast<double>(pixel[kRed]);
        }
        totals.push_back(total);
    }
    EXPECT_NEAR(totals[1] / totals[0], 1, 0.1);
    EXPECT_NEAR(totals[2] / totals[0], 1, 0.1);
}

TEST(GlowPicture, SurvivesAHighRadiusThatCoversTheFrame) {
    Scene scene = PlainScene();
    scene.input = OpaquePicture(20, 16);
    scene.controls.glowRadius = 200;
    scene.controls.glowIntensity = 0.5;
    ExpectModel(scene);
}

TEST(GlowPicture, OfTheDefaultControlsIsTheModels) {
    Scene scene;
    scene.input = OpaquePicture(48, 32);
    ExpectModel(scene);
    scene.input = TransparentPicture(48, 32);
    ExpectModel(scene);
}

TEST(GlowPicture, HasNoGlowWhereNoLightPassesTheThreshold) {
    Scene scene = PlainScene();
    scene.controls.threshold = 200;
    scene.controls.transferMode = kModeNone;
    const Picture picture = RenderScene(scene);
    for (const PixelValues& pixel : picture.pixels()) {
        EXPECT_EQ(pixel[kRed] + pixel[kGreen] + pixel[kBlue], 0.0f);
    }
    scene.controls.transferMode = kModeNormal;
    ExpectModel(scene);
}

TEST(GlowPicture, StampsNothingForLightOfLessThanAPixel) {
    // Radius 10 and light of 0.0999 and 0.1001: below and above one pixel.
    Scene scene = PlainScene();
    scene.controls.threshold = 0;
    scene.controls.glowFalloff = 1;
    scene.controls.glowRadius = 10;
    scene.controls.transferMode = kModeNone;
    scene.input = MakePicture(9, 9, [](int, int) { return PixelValues{1, 0.0999f, 0.0f, 0.0f}; });
    EXPECT_EQ(RenderScene(scene).at(4, 4)[kRed], 0.0f);
    scene.input = MakePicture(9, 9, [](int, int) { return PixelValues{1, 0.1001f, 0.0f, 0.0f}; });
    EXPECT_GT(RenderScene(scene).at(4, 4)[kRed], 0.0f);
    ExpectModel(scene);
}

TEST(GlowPicture, OfOnePixelIsTheBrushItself) {
    Scene scene = PlainScene();
    scene.input = Picture(65, 65);
    for (PixelValues& pixel : scene.input.pixels()) {
        pixel[kAlpha] = 1;
    }
    scene.input.at(32, 32) = {1, 1, 0, 0};
    scene.controls.shape = 2;
    scene.controls.threshold = 0;
    scene.controls.glowFalloff = 1;
    scene.controls.glowRadius = 32;
    scene.controls.glowIntensity = 100;
    scene.controls.preventOverbrights = false;
    scene.controls.transferMode = kModeNone;
    const Picture picture = RenderScene(scene);
    const Kernel& brush = ModelBrush(2);
    for (int y = 1; y < 64; ++y) {
        for (int x = 1; x < 64; ++x) {
            // 32 pixels to 128 texels: each pixel meets one texel.
            ASSERT_EQ(picture.at(x, y)[kRed], brush.at(128 + 4 * (x - 32), 128 + 4 * (y - 32)))
                << x << ", " << y;
            ASSERT_EQ(picture.at(x, y)[kGreen], 0.0f);
        }
    }
}

}  // namespace
}  // namespace vireon::conformance
