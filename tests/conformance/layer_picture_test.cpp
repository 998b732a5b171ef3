#include <gtest/gtest.h>

#include <utility>

#include "tests/conformance/model_check.h"

namespace vireon::conformance {
namespace {

TEST(GlowLayerPicture, GrowsTheGlowFromTheLayerOverTheInput) {
    for (const auto& [width, height] : {std::pair{48, 32}, std::pair{30, 20}, std::pair{60, 40},
                                        std::pair{48, 9}, std::pair{70, 12}}) {
        for (const std::int32_t view : {kViewOutput, kViewBrightness}) {
            SCOPED_TRACE(::testing::Message() << width << " x " << height << ", view " << view);
            Scene scene = PlainScene();
            scene.glowLayer = MakePicture(width, height, [](int x, int y) {
                return PixelValues{1.0f, 0.3f + 0.01f * static_cast<float>(y),
                                   0.9f - 0.01f * static_cast<float>(x), 0.5f};
            });
            scene.controls.view = view;
            ExpectModel(scene);
        }
    }
}

TEST(GlowLayerPicture, TakesItsAlphaFromTheInputNotFromTheLayer) {
    Scene scene = PlainScene();
    scene.glowLayer = TransparentPicture(48, 32);
    scene.controls.transferMode = kModeNone;
    ExpectModel(scene);
    const Picture picture = RenderScene(scene);
    for (const PixelValues& pixel : picture.pixels()) {
        ASSERT_EQ(pixel[kAlpha], 1.0f) << "the input is opaque, so is the glow";
    }
    scene.input = TransparentPicture(48, 32);
    scene.glowLayer = OpaquePicture(48, 32);
    ExpectModel(scene);
}

TEST(GlowLayerPicture, IsCroppedInEveryHost) {
    Scene scene = PlainScene();
    scene.glowLayer = OpaquePicture(70, 20);
    headless::HostSettings settings;
    settings.applicationId = sdk::kHostMotion;
    ExpectModel(scene, settings);
}

TEST(CustomShapePicture, WithoutALayerIsTransparentBlack) {
    for (const headless::Depth depth :
         {headless::Depth::k8, headless::Depth::k16, headless::Depth::kFloat}) {
        for (const std::int32_t view : {kViewOutput, kViewBrightness, kViewMask}) {
            Scene scene = PlainScene();
            scene.controls.shape = kShapeCustom;
            scene.controls.view = view;
            EXPECT_TRUE(RenderScene(scene, depth) == Picture(48, 32));
            EXPECT_TRUE(RenderScene(scene, depth, Path::kPlain) == Picture(48, 32));
        }
    }
}

TEST(CustomShapePicture, IsTheLayersLuminanceTimesItsAlpha) {
    for (const auto& [width, height] : {std::pair{9, 7}, std::pair{48, 32}, std::pair{1, 1},
                                        std::pair{2, 5}, std::pair{100, 3}}) {
        for (const std::int32_t quality : {1, 2}) {
            SCOPED_TRACE(::testing::Message()
                         << width << " x " << height << ", quality " << quality);
            Scene scene = PlainScene();
            scene.controls.shape = kShapeCustom;
            scene.controls.quality = quality;
            scene.controls.glowIntensity = 0.7;
            // Dark at its edge, so that a stamp's size may change by a pixel without a jump.
            scene.shapeLayer = MakePicture(width, height, [w = width, h = height](int x, int y) {
                const float inX = static_cast<float>(x * (w - 1 - x) * 4) /
                                  static_cast<float>((w - 1) * (w - 1) + 1);
                const float inY = static_cast<float>(y * (h - 1 - y) * 4) /
                                  static_cast<float>((h - 1) * (h - 1) + 1);
                const float value = w == 1 ? 1.0f : inX * inY;
                return PixelValues{0.5f + 0.5f * static_cast<float>(x) / static_cast<float>(w),
                                   value, value * 0.5f, value * 0.25f};
            });
            ExpectModel(scene);
        }
    }
}

TEST(CustomShapePicture, OfATransparentLayerGivesNoGlow) {
    Scene scene = PlainScene();
    scene.controls.shape = kShapeCustom;
    scene.controls.transferMode = kModeNone;
    scene.shapeLayer = MakePicture(9, 7, [](int, int) { return PixelValues{0, 1, 1, 1}; });
    const Picture picture = RenderScene(scene);
    for (const PixelValues& pixel : picture.pixels()) {
        ASSERT_EQ(pixel, (PixelValues{1, 0, 0, 0}));
    }
}

TEST(CustomShapePicture, IsForgottenByTheNextRender) {
    const auto host = ReadyHost();
    Scene scene = PlainScene();
    Apply(scene, *host, headless::Depth::kFloat);
    const auto before = Render(*host, headless::Depth::kFloat);
    ASSERT_EQ(before.error(), 0);
    scene.controls.shape = kShapeCustom;
    scene.shapeLayer = AlphaPicture(9, 7);
    Apply(scene, *host, headless::Depth::kFloat);
    ASSERT_EQ(Render(*host, headless::Depth::kFloat).error(), 0);
    scene.shapeLayer.reset();
    scene.controls.shape = 1;
    Apply(scene, *host, headless::Depth::kFloat);
    const auto after = Render(*host, headless::Depth::kFloat);
    ASSERT_EQ(after.error(), 0);
    EXPECT_EQ(before.output->checksum(), after.output->checksum());
}

TEST(ShapeLayerPicture, ReplacesTheBrushOnlyForTheCustomShape) {
    // A layer left in the control is not checked out for the other shapes.
    Scene scene = PlainScene();
    const Picture without = RenderScene(scene);
    scene.shapeLayer = AlphaPicture(9, 7);
    EXPECT_TRUE(RenderScene(scene) == without);
}

TEST(AbsentLayers, AreThoseThatComeEmpty) {
    Scene scene = PlainScene();
    const Picture without = RenderScene(scene);
    scene.glowLayer = OpaquePicture(20, 20);
    scene.maskLayer = AlphaPicture(20, 20);
    headless::HostSettings settings;
    settings.layersInSmartRender = headless::LayerAnswer::kZeroed;
    EXPECT_TRUE(RenderScene(scene, headless::Depth::kFloat, Path::kSmart, settings) == without);
}

}  // namespace
}  // namespace vireon::conformance
