#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <set>
#include <utility>
#include <vector>

#include "tests/conformance/model_check.h"

namespace vireon::conformance {
namespace {

using headless::Depth;
using headless::Host;
using headless::RenderOutcome;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kLargest = std::numeric_limits<float>::max();

/// An ordinary picture with single pixels of every kind that breaks arithmetic.
Picture HostilePicture() {
    Picture picture = TransparentPicture(40, 30);
    const std::vector<float> values{kNan,      -kNan,   kInfinity, -kInfinity, kLargest,
                                    -kLargest, 1e30f,   -1e30f,    70000.0f,   -70000.0f,
                                    1e-40f,    -1e-40f, -0.0f};
    int place = 0;
    for (const float value : values) {
        for (std::size_t channel = 0; channel < 4; ++channel) {
            PixelValues& pixel = picture.at(place % 40, place / 40 * 3 + 2);
            pixel[channel] = value;
            place += 7;
        }
    }
    return picture;
}

bool Finite(const PixelValues& pixel) {
    return std::isfinite(pixel[0]) && std::isfinite(pixel[1]) && std::isfinite(pixel[2]) &&
           std::isfinite(pixel[3]);
}

bool Ordinary(const PixelValues& pixel) {
    for (const float value : pixel) {
        if (!(std::abs(value) <= 2.0f)) {
            return false;
        }
    }
    return true;
}

/// Where the source pixel is an ordinary one, the result must be finite.
void ExpectContained(const Scene& scene) {
    const Picture picture = RenderScene(scene);
    ASSERT_EQ(picture.width(), scene.input.width());
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (Ordinary(scene.input.at(x, y))) {
                ASSERT_TRUE(Finite(picture.at(x, y)))
                    << x << ", " << y << ": " << ::testing::PrintToString(picture.at(x, y));
            }
        }
    }
}

TEST(HostileInput, DoesNotSpreadAtAnyQualityOrSourceChannel) {
    for (const bool highQuality : {true, false}) {
        for (std::int32_t quality = 1; quality <= 5; ++quality) {
            for (std::int32_t channels = 1; channels <= 7; ++channels) {
                SCOPED_TRACE(::testing::Message() << "quality " << quality << ", channels "
                                                  << channels << (highQuality ? "" : ", draft"));
                Scene scene = PlainScene();
                scene.input = HostilePicture();
                scene.controls.quality = quality;
                scene.controls.inputChannels = channels;
                scene.highQuality = highQuality;
                ExpectContained(scene);
            }
        }
    }
}

TEST(HostileInput, DoesNotSpreadThroughBlurMaskOrFalloff) {
    for (const double falloff : {0.1, 1.0, 10.0}) {
        for (const double threshold : {0.0, 50.0}) {
            for (const bool mask : {false, true}) {
                SCOPED_TRACE(::testing::Message()
                             << falloff << ", " << threshold << (mask ? ", mask" : ""));
                Scene scene = PlainScene();
                scene.input = HostilePicture();
                scene.controls.blurInput = 0.4;
                scene.controls.threshold = threshold;
                scene.controls.glowFalloff = falloff;
                scene.controls.quality = 2;
                scene.controls.enableMask = mask;
                ExpectContained(scene);
            }
        }
    }
}

TEST(HostileInput, DoesNotSpreadInTheTransferModesWithoutPoles) {
    for (const std::int32_t mode : {1, 2, 3, 5, 6, 8, 9, 10, 13, 15, 16, 17, 18}) {
        SCOPED_TRACE(mode);
        Scene scene = PlainScene();
        scene.input = HostilePicture();
        scene.controls.transferMode = mode;
        ExpectContained(scene);
    }
}

TEST(HostileInput, DoesNotSpreadFromAGlowLayer) {
    Scene scene = PlainScene();
    scene.input = OpaquePicture(40, 30);
    scene.glowLayer = HostilePicture();
    for (const std::int32_t quality : {1, 3}) {
        scene.controls.quality = quality;
        EXPECT_TRUE(AllFinite(RenderScene(scene)));
    }
}

TEST(HostileInput, DoesNotSpreadFromAShapeLayer) {
    Scene scene = PlainScene();
    scene.controls.shape = kShapeCustom;
    scene.shapeLayer = HostilePicture();
    for (const std::int32_t quality : {1, 2}) {
        scene.controls.quality = quality;
        const Picture picture = RenderScene(scene);
        for (const PixelValues& pixel : picture.pixels()) {
            for (const float value : pixel) {
                ASSERT_FALSE(std::isnan(value));
            }
        }
    }
}

TEST(HostileInput, NanIsDarkAndInfinityAsBrightAsTheBrightestHalfFloat) {
    Scene scene = PlainScene();
    scene.controls.view = kViewBrightness;
    scene.controls.threshold = 0;
    scene.controls.glowFalloff = 1;
    scene.input.at(4, 4) = {1, kNan, kInfinity, -kInfinity};
    const Picture picture = RenderScene(scene);
    EXPECT_EQ(picture.at(4, 4)[kRed], 0.0f);
    EXPECT_EQ(picture.at(4, 4)[kGreen], 65504.0f);
    EXPECT_EQ(picture.at(4, 4)[kBlue], -65504.0f);
    EXPECT_EQ(picture.at(5, 4)[kRed], scene.input.at(5, 4)[kRed]);
}

TEST(HostileInput, NegativeLightGivesNoGlow) {
    Scene scene = PlainScene();
    scene.input = MakePicture(20, 20, [](int, int) { return PixelValues{1, -3, -0.5f, -1e30f}; });
    scene.controls.threshold = 0;
    scene.controls.transferMode = kModeNone;
    for (const double falloff : {1.0, 1.5, 2.0}) {
        scene.controls.glowFalloff = falloff;
        const Picture picture = RenderScene(scene);
        if (falloff == 2.0) {
            // An even power turns negative light into light.
            EXPECT_GT(Peak(picture), 0);
            EXPECT_TRUE(AllFinite(picture));
            continue;
        }
        for (const PixelValues& pixel : picture.pixels()) {
            ASSERT_EQ(pixel, (PixelValues{1, 0, 0, 0}));
        }
    }
}

TEST(HostileInput, HugeLightIsAsWideAsTheGlowRadiusAllows) {
    // Whatever the value, a stamp is at most the radius wide and adds the same light.
    Scene scene = PlainScene();
    scene.controls.threshold = 0;
    scene.controls.glowFalloff = 1;
    scene.controls.transferMode = kModeNone;
    scene.input = Picture(31, 31);
    for (PixelValues& pixel : scene.input.pixels()) {
        pixel[kAlpha] = 1;
    }
    scene.input.at(15, 15)[kRed] = 1.0f;
    const Picture expected = RenderScene(scene);
    for (const float value : {2.0f, 1e6f, 1e30f, kLargest, kInfinity}) {
        scene.input.at(15, 15)[kRed] = value;
        EXPECT_TRUE(RenderScene(scene) == expected) << value;
    }
}

/// Codes that a render may end with.
bool Legal(sdk::PF_Err code) {
    static const std::set<sdk::PF_Err> codes{0, 1, 4, 512, 516};
    return codes.contains(code);
}

TEST(HostileControls, AnyNumberInAFloatSliderIsSurvived) {
    const std::vector<double> numbers{std::numeric_limits<double>::quiet_NaN(),
                                      std::numeric_limits<double>::infinity(),
                                      -std::numeric_limits<double>::infinity(),
                                      -1,
                                      -1e6,
                                      -1e30,
                                      1e30,
                                      1e300,
                                      1e-300,
                                      0};
    const auto host = ReadyHost();
    Scene scene = PlainScene();
    scene.input = TransparentPicture(12, 9);
    scene.maskLayer = AlphaPicture(12, 9);
    scene.controls.enableMask = true;
    scene.controls.blurInput = 0.3;
    scene.controls.quality = 2;
    for (const std::int32_t index :
         {kGlowRadius, kGlowIntensity, kGlowFalloff, kThreshold, kBlurInput, kMaskRadius,
          kMaskFalloff, kWidthAspect, kHeightAspect, kOverbrightClamp}) {
        for (const double number : numbers) {
            for (const Depth depth : {Depth::k8, Depth::kFloat}) {
                SCOPED_TRACE(::testing::Message() << "control " << index << " at " << number);
                Apply(scene, *host, depth);
                host->setFloatSlider(index, number);
                const RenderOutcome outcome = Render(*host, depth);
                EXPECT_TRUE(Legal(outcome.error())) << outcome.report();
                EXPECT_TRUE(outcome.clean()) << outcome.report();
            }
        }
    }
    Apply(scene, *host, Depth::k8);
    EXPECT_EQ(Render(*host, Depth::k8).error(), 0);
}

TEST(HostileControls, AnyPopupOrFixedValueIsSurvived) {
    headless::HostSettings settings;
    std::int32_t index = 0;
    std::int32_t value = 0;
    settings.onCheckout = [&](std::int32_t checked, const headless::LayerTime&,
                              sdk::PF_ParamDef& def) {
        if (checked != index) {
            return;
        }
        // Popup, checkbox and fixed slider have their value at the same place.
        def.u.pd.value = value;
    };
    const auto host = ReadyHost(settings);
    Scene scene = PlainScene();
    scene.input = TransparentPicture(12, 9);
    for (const std::int32_t control :
         {kShape, kQuality, kInputChannels, kEnableMask, kView, kPreventOverbrights, kChannels,
          kSourceOpacity, kGlowOpacity, kTransferMode}) {
        for (const std::int32_t number : {0, -1, 25, 1000, std::numeric_limits<std::int32_t>::max(),
                                          std::numeric_limits<std::int32_t>::min()}) {
            SCOPED_TRACE(::testing::Message() << "control " << control << " at " << number);
            index = 0;
            Apply(scene, *host, Depth::kFloat);
            index = control;
            value = number;
            const RenderOutcome outcome = Render(*host, Depth::kFloat);
            EXPECT_TRUE(Legal(outcome.error())) << outcome.report();
            EXPECT_TRUE(outcome.clean()) << outcome.report();
        }
    }
}

TEST(HostileRequests, PartlyOutsideNegativeAndEmptyOnesAreSurvived) {
    const auto host = ReadyHost();
    Scene scene = PlainScene();
    Apply(scene, *host, Depth::kFloat);
    for (const sdk::PF_LRect& rect :
         {sdk::PF_LRect{-20, -10, 30, 20}, sdk::PF_LRect{10, 10, 30, 20},
          sdk::PF_LRect{40, 20, 400, 300}, sdk::PF_LRect{-50, -50, -10, -10},
          sdk::PF_LRect{0, 0, 0, 0}, sdk::PF_LRect{20, 20, 10, 10},
          sdk::PF_LRect{47, 31, 48, 32}}) {
        for (const bool crop : {false, true}) {
            SCOPED_TRACE(::testing::Message() << rect.left << ", " << rect.top << ", " << rect.right
                                              << ", " << rect.bottom);
            host->settings().cropCheckouts = crop;
            headless::RenderRequest request;
            request.rect = rect;
            headless::PreRender preRender = host->smartPreRender(request);
            EXPECT_EQ(preRender.result.error, 0);
            EXPECT_TRUE(preRender.result.clean()) << preRender.result.report();
            const RenderOutcome outcome = host->smartRender(preRender);
            EXPECT_EQ(outcome.error(), 0) << outcome.report();
            EXPECT_TRUE(outcome.clean()) << outcome.report();
        }
    }
}

TEST(HostileSizes, ThinFramesRenderAtEveryDepth) {
    for (const auto& [width, height] :
         {std::pair{1, 1}, std::pair{1, 64}, std::pair{64, 1}, std::pair{2, 2}, std::pair{3, 17}}) {
        for (const Depth depth : {Depth::k8, Depth::k16, Depth::kFloat}) {
            for (const Path path : {Path::kSmart, Path::kPlain}) {
                Scene scene = PlainScene();
                scene.input = TransparentPicture(width, height);
                scene.controls.blurInput = 0.5;
                scene.controls.quality = 3;
                EXPECT_EQ(RenderScene(scene, depth, path).width(), width);
            }
        }
    }
}

}  // namespace
}  // namespace vireon::conformance
