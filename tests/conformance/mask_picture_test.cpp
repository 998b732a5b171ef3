#include <gtest/gtest.h>

#include <optional>
#include <utility>

#include "tests/conformance/model_check.h"

namespace vireon::conformance {
namespace {

/// The mask alone, straight.
Scene MaskScene(int width, int height) {
    Scene scene = PlainScene();
    scene.input = OpaquePicture(width, height);
    scene.controls.view = kViewMask;
    scene.controls.glowFalloff = 1;
    scene.controls.enableMask = true;
    scene.controls.maskRadius = 14;
    return scene;
}

TEST(MaskPicture, IsWhiteWithoutAMask) {
    Scene scene = MaskScene(20, 10);
    scene.controls.enableMask = false;
    scene.maskLayer = AlphaPicture(20, 10);
    const Picture picture = RenderScene(scene);
    for (const PixelValues& pixel : picture.pixels()) {
        ASSERT_EQ(pixel, (PixelValues{1, 1, 1, 1}));
    }
}

TEST(MaskPicture, FallsLinearlyFromTheCentreToTheRim) {
    Scene scene = MaskScene(240, 8);
    scene.controls.maskRadius = 100;
    const Picture picture = RenderScene(scene);
    for (std::size_t channel = 0; channel < 4; ++channel) {
        EXPECT_EQ(picture.at(120, 4)[channel], 1.0f);
        EXPECT_NEAR(picture.at(170, 4)[channel], 0.5, 1e-6);
        EXPECT_EQ(picture.at(220, 4)[channel], 0.0f);
        EXPECT_EQ(picture.at(230, 4)[channel], 0.0f);
        EXPECT_NEAR(picture.at(70, 4)[channel], 0.5, 1e-6);
    }
}

TEST(MaskPicture, IsTheModelsEllipse) {
    struct Ellipse {
        double radius, falloff, widthAspect, heightAspect;
        std::optional<std::pair<double, double>> center;
    };
    for (const Ellipse& ellipse :
         {Ellipse{14, 0, 1, 1, {}}, Ellipse{14, 0.5, 1, 1, {}}, Ellipse{14, 1, 1, 1, {}},
          Ellipse{10, 0.25, 4, 0.5, {}}, Ellipse{10, 0, 0.1, 3, {{7.5, 21.25}}},
          Ellipse{500, 0, 1, 1, {{-20, 40}}}, Ellipse{5, 0.9, 100, 1, {{47, 0}}}}) {
        for (const std::int32_t channels : {1, 3}) {
            SCOPED_TRACE(::testing::Message()
                         << ellipse.radius << ", " << ellipse.falloff << ", " << ellipse.widthAspect
                         << " : " << ellipse.heightAspect << ", channels " << channels);
            Scene scene = MaskScene(48, 32);
            scene.controls.inputChannels = channels;
            scene.controls.maskRadius = ellipse.radius;
            scene.controls.maskFalloff = ellipse.falloff;
            scene.controls.widthAspect = ellipse.widthAspect;
            scene.controls.heightAspect = ellipse.heightAspect;
            scene.controls.maskCenter = ellipse.center;
            if (ellipse.falloff == 1) {
                // The exponent 0 makes the mask 0 everywhere.
                EXPECT_EQ(Peak(RenderScene(scene)), Peak(ModelRender(scene)));
                continue;
            }
            ExpectModel(scene);
        }
    }
}

TEST(MaskPicture, AnAspectOfFourStretchesByTwo) {
    Scene scene = MaskScene(120, 8);
    scene.controls.maskRadius = 20;
    scene.controls.widthAspect = 4;
    const Picture picture = RenderScene(scene);
    EXPECT_NEAR(picture.at(80, 4)[kRed], 0.5, 1e-6);
    EXPECT_EQ(picture.at(100, 4)[kRed], 0.0f);
    EXPECT_GT(picture.at(99, 4)[kRed], 0.0f);
}

TEST(MaskPicture, OfRadiusZeroIsNone) {
    Scene scene = MaskScene(20, 10);
    scene.controls.maskRadius = 0;
    const Picture picture = RenderScene(scene);
    for (const PixelValues& pixel : picture.pixels()) {
        ASSERT_EQ(pixel, (PixelValues{1, 1, 1, 1}));
    }
}

TEST(MaskPicture, FollowsTheResolution) {
    Scene scene = MaskScene(48, 32);
    scene.downsampleX = {1, 2};
    scene.downsampleY = {1, 2};
    scene.controls.maskRadius = 25;
    scene.controls.maskCenter = {{30, 12}};
    ExpectModel(scene);
    const Picture picture = RenderScene(scene);
    EXPECT_EQ(picture.at(30, 12)[kRed], 1.0f);
    EXPECT_NEAR(picture.at(35, 12)[kRed], 1 - 10.0 / 25, 1e-5) << "five pixels stand for ten";
}

TEST(MaskPicture, FollowsThePixelAspectRatioOfTheHostsWorlds) {
    Scene scene = MaskScene(48, 32);
    scene.pixelAspect = {4, 1};
    ExpectModel(scene);
    const Picture picture = RenderScene(scene);
    EXPECT_NEAR(picture.at(38, 16)[kRed], 0.5, 1e-6);
    scene.pixelAspect = {10, 11};
    ExpectModel(scene);
}

TEST(MaskPicture, HasSquarePixelsWhereTheWorkIsDoneInMemory) {
    Scene scene = MaskScene(48, 32);
    headless::HostSettings settings;
    settings.applicationId = sdk::kHostMotion;
    settings.adjustInData = [](sdk::PF_InData& inData) { inData.pixel_aspect_ratio = {4, 1}; };
    ExpectModel(scene, settings);
}

TEST(MaskPicture, IsRaisedToTheFalloffOfTheGlow) {
    Scene scene = MaskScene(48, 32);
    scene.controls.glowFalloff = 2;
    ExpectModel(scene);
}

TEST(MaskLayerPicture, MultipliesByTheLayersAlpha) {
    for (const auto& [width, height] : {std::pair{48, 32}, std::pair{30, 20}, std::pair{60, 50},
                                        std::pair{48, 10}, std::pair{70, 16}}) {
        for (const double radius : {14.0, 200.0}) {
            for (const std::int32_t channels : {1, 4}) {
                SCOPED_TRACE(::testing::Message() << width << " x " << height << ", radius "
                                                  << radius << ", channels " << channels);
                Scene scene = MaskScene(48, 32);
                scene.controls.maskRadius = radius;
                scene.controls.inputChannels = channels;
                scene.maskLayer = AlphaPicture(width, height);
                ExpectModel(scene);
            }
        }
    }
}

TEST(MaskLayerPicture, LeavesTheUncoveredPartOfTheMapAlone) {
    Scene scene = MaskScene(48, 32);
    scene.controls.maskRadius = 3;
    scene.maskLayer = MakePicture(20, 20, [](int, int) { return PixelValues{0, 1, 1, 1}; });
    const Picture picture = RenderScene(scene);
    EXPECT_EQ(picture.at(10, 10), (PixelValues{0, 0, 0, 0}));
    EXPECT_EQ(picture.at(25, 10), (PixelValues{1, 1, 1, 1}));
    EXPECT_EQ(picture.at(10, 25), (PixelValues{1, 1, 1, 1}));
}

TEST(MaskLayerPicture, NeedsTheMaskToBeOn) {
    Scene scene = PlainScene();
    const Picture without = RenderScene(scene);
    scene.maskLayer = AlphaPicture(48, 32);
    EXPECT_TRUE(RenderScene(scene) == without);
}

TEST(MaskLayerPicture, IsNotAskedForAtRadiusZero) {
    Scene scene = MaskScene(48, 32);
    scene.controls.maskRadius = 0;
    scene.maskLayer = AlphaPicture(48, 32);
    const Picture picture = RenderScene(scene);
    EXPECT_EQ(picture.at(5, 5), (PixelValues{1, 1, 1, 1}));
}

TEST(MaskPicture, GivesTheModelsGlow) {
    for (const bool layer : {false, true}) {
        for (const bool transparent : {false, true}) {
            for (const std::int32_t quality : {1, 3}) {
                SCOPED_TRACE(::testing::Message()
                             << (layer ? "layer" : "ellipse") << ", quality " << quality
                             << (transparent ? ", transparent" : ", opaque"));
                Scene scene = PlainScene();
                if (transparent) {
                    scene.input = TransparentPicture(48, 32);
                    scene.controls.transferMode = kModeAdd;
                }
                scene.controls.quality = quality;
                scene.controls.glowRadius = 18;
                scene.controls.threshold = 5;
                scene.controls.enableMask = true;
                scene.controls.maskRadius = 60;
                if (layer) {
                    scene.maskLayer = AlphaPicture(48, 32);
                }
                ExpectModel(scene);
            }
        }
    }
}

}  // namespace
}  // namespace vireon::conformance
