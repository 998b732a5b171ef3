#include <gtest/gtest.h>

#include <utility>

#include "tests/conformance/model_check.h"

namespace vireon::conformance {
namespace {

TEST(BrightnessPicture, IsTheModelsForEverySourceChannelAndQuality) {
    for (const bool transparent : {false, true}) {
        for (std::int32_t channels = 1; channels <= 7; ++channels) {
            for (const std::int32_t quality : {1, 2, 3, 5}) {
                SCOPED_TRACE(::testing::Message()
                             << "source channels " << channels << ", quality " << quality
                             << (transparent ? ", transparent" : ", opaque"));
                Scene scene = PlainScene();
                scene.input = transparent ? TransparentPicture(48, 32) : OpaquePicture(48, 32);
                scene.controls.view = kViewBrightness;
                scene.controls.inputChannels = channels;
                scene.controls.quality = quality;
                scene.controls.threshold = 8;
                ExpectModel(scene);
            }
        }
    }
}

TEST(BrightnessPicture, IsOpaque) {
    Scene scene = PlainScene();
    scene.input = TransparentPicture(20, 20);
    scene.controls.view = kViewBrightness;
    for (const std::int32_t quality : {1, 3}) {
        scene.controls.quality = quality;
        const Picture picture = RenderScene(scene);
        for (const PixelValues& pixel : picture.pixels()) {
            ASSERT_EQ(pixel[kAlpha], 1.0f);
        }
    }
}

TEST(BrightnessPicture, LosesTheThresholdWithoutRescaling) {
    Scene scene = PlainScene();
    scene.input = MakePicture(8, 8, [](int x, int) {
        return PixelValues{1.0f, 0.5f, 0.19f, x == 0 ? 3.0f : -0.5f};
    });
    scene.controls.view = kViewBrightness;
    scene.controls.glowFalloff = 1;
    scene.controls.threshold = 20;
    Picture picture = RenderScene(scene);
    EXPECT_NEAR(picture.at(3, 3)[kRed], 0.3, 1e-6);
    EXPECT_EQ(picture.at(3, 3)[kGreen], 0.0f);
    EXPECT_EQ(picture.at(3, 3)[kBlue], 0.0f);
    EXPECT_NEAR(picture.at(0, 3)[kBlue], 2.8, 1e-6);
    for (const double none : {0.0, 0.0009}) {
        scene.controls.threshold = none;
        picture = RenderScene(scene);
        EXPECT_EQ(picture.at(3, 3)[kBlue], -0.5f) << "without a threshold nothing is cut";
        EXPECT_EQ(picture.at(3, 3)[kGreen], 0.19f);
    }
}

TEST(BrightnessPicture, IsRaisedToTheFalloff) {
    for (const double falloff : {0.1, 0.5, 1.0, 2.0, 10.0}) {
        for (const std::int32_t channels : {1, 4}) {
            SCOPED_TRACE(::testing::Message() << falloff << ", source channels " << channels);
            Scene scene = PlainScene();
            scene.controls.view = kViewBrightness;
            scene.controls.glowFalloff = falloff;
            scene.controls.inputChannels = channels;
            ExpectModel(scene);
        }
    }
}

TEST(BrightnessPicture, WeighsTheColoursByItsOwnLuminance) {
    Scene scene = PlainScene();
    scene.controls.view = kViewBrightness;
    scene.controls.glowFalloff = 1;
    scene.controls.threshold = 0;
    scene.controls.inputChannels = 4;
    scene.input = MakePicture(4, 1, [](int x, int) {
        return PixelValues{1.0f, x == 0 ? 1.0f : 0.0f, x == 1 ? 1.0f : 0.0f, x == 2 ? 1.0f : 0.0f};
    });
    const Picture picture = RenderScene(scene);
    EXPECT_NEAR(picture.at(0, 0)[kRed], 117.0 / 385, 1e-6);
    EXPECT_NEAR(picture.at(1, 0)[kGreen], 204.0 / 385, 1e-6);
    EXPECT_NEAR(picture.at(2, 0)[kBlue], 64.0 / 385, 1e-6);
    EXPECT_EQ(picture.at(3, 0)[kRed], 0.0f);
}

TEST(BrightnessPicture, IsPremultipliedInTheOneChannelChoicesOnly) {
    Scene scene = PlainScene();
    scene.controls.view = kViewBrightness;
    scene.controls.glowFalloff = 1;
    scene.controls.threshold = 0;
    scene.input = MakePicture(4, 4, [](int, int) { return PixelValues{0.5f, 1.0f, 1.0f, 1.0f}; });
    for (std::int32_t channels = 1; channels <= 7; ++channels) {
        scene.controls.inputChannels = channels;
        const Picture picture = RenderScene(scene);
        EXPECT_NEAR(picture.at(1, 1)[kRed], channels == 1 ? 1.0 : 0.5, 1e-6) << channels;
    }
}

TEST(BrightnessPicture, IsBlurredByAPartOfTheGlowRadius) {
    for (const bool transparent : {false, true}) {
        for (const std::int32_t channels : {1, 3}) {
            for (const double blur : {0.05, 0.3, 1.0}) {
                for (const double radius : {9.0, 20.0, 300.0}) {
                    SCOPED_TRACE(::testing::Message()
                                 << blur << " x " << radius << ", source channels " << channels
                                 << (transparent ? ", transparent" : ", opaque"));
                    Scene scene = PlainScene();
                    scene.input = transparent ? TransparentPicture(48, 32) : OpaquePicture(48, 32);
                    scene.controls.view = kViewBrightness;
                    scene.controls.inputChannels = channels;
                    scene.controls.blurInput = blur;
                    scene.controls.glowRadius = radius;
                    ExpectModel(scene);
                }
            }
        }
    }
}

TEST(BrightnessPicture, IsBlurredInTheDirectionsThatAreLongEnough) {
    for (const auto& [width, height] :
         {std::pair{40, 3}, std::pair{3, 40}, std::pair{5, 6}, std::pair{6, 6}, std::pair{4, 4}}) {
        SCOPED_TRACE(::testing::Message() << width << " x " << height);
        Scene scene = PlainScene();
        scene.input = OpaquePicture(width, height);
        scene.controls.view = kViewBrightness;
        scene.controls.threshold = 5;
        scene.controls.blurInput = 1;
        scene.controls.glowRadius = 30;
        ExpectModel(scene);
    }
}

TEST(BrightnessPicture, BlurInputGivesTheModelsGlowToo) {
    for (const bool transparent : {false, true}) {
        Scene scene = PlainScene();
        scene.input = transparent ? TransparentPicture(48, 32) : OpaquePicture(48, 32);
        scene.controls.blurInput = 0.5;
        scene.controls.glowRadius = 16;
        scene.controls.threshold = 5;
        ExpectModel(scene);
    }
}

}  // namespace
}  // namespace vireon::conformance
