// The passes over finished glow by kernels give the bits of their plain definitions, at every
// level.

#include <cstdint>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "composite/output_passes.h"
#include "render/glow_settings.h"
#include "tests/unit/support/levels.h"
#include "tests/unit/support/light_data.h"
#include "tests/unit/support/picture.h"

namespace vireon::test {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

class PassKernels : public testing::TestWithParam<simd::Level> {
  protected:
    const simd::KernelTable& kernels() const { return *simd::KernelsOf(GetParam()); }

    /// Calls `test` with pictures of every kind of light, of every width up to a few vectors and of
    /// a large odd one, on rows that go down and up.
    template <typename Test>
    void onPictures(Test&& test) {
        for (std::int32_t width = 1; width <= 34; ++width) {
            for (const LightData data : kAllLight) {
                Picture picture(width == 34 ? 1021 : width, 3, width % 5, width % 2 == 0);
                FillWith(picture, data, random_);
                SCOPED_TRACE("width " + std::to_string(picture.width()) + ", light " +
                             std::to_string(static_cast<int>(data)));
                test(picture);
                if (HasFatalFailure()) return;
            }
        }
    }

    template <typename Plain, typename Fast>
    void check(const Picture& picture, Plain&& plain, Fast&& fast) {
        Picture got(picture);
        Picture want(picture);
        plain(want.view());
        fast(got.view());
        ASSERT_TRUE(SamePixels(got, want));
        ASSERT_TRUE(got.paddingIntact());
    }

    Random random_{733};
};

TEST_P(PassKernels, ScaledAndLimitedColour) {
    onPictures([&](const Picture& picture) {
        for (const float factor : {0.37f, 0.0f, -2.0f, 1e30f}) {
            check(
                picture, [&](const FloatImage& image) { ScaleColour(image, factor); },
                [&](const FloatImage& image) { ScaleColour(kernels(), image, factor); });
        }
        check(
            picture, [](const FloatImage& image) { ClampColour(image); },
            [&](const FloatImage& image) { ClampColour(kernels(), image); });
    });
}

TEST_P(PassKernels, ColourTimesAlphaAndBack) {
    onPictures([&](const Picture& picture) {
        check(
            picture, [](const FloatImage& image) { Premultiply(image); },
            [&](const FloatImage& image) { Premultiply(kernels(), image); });
        check(
            picture, [](const FloatImage& image) { Unpremultiply(image); },
            [&](const FloatImage& image) { Unpremultiply(kernels(), image); });
    });
}

TEST_P(PassKernels, OpaqueImagesHaveNoAlphaBelowOne) {
    onPictures([&](const Picture& light) {
        Picture picture(light);
        EXPECT_EQ(IsOpaque(kernels(), picture.view()), IsOpaque(picture.view()));
        for (std::int32_t y = 0; y < picture.height(); ++y) {
            for (std::int32_t x = 0; x < picture.width(); ++x) {
                picture.at(x, y, kAlpha) = x % 3 == 0 ? 1.0f : x % 3 == 1 ? kNaN : 2.0f;
            }
        }
        EXPECT_TRUE(IsOpaque(kernels(), picture.view()));
        picture.at(picture.width() - 1, picture.height() - 1, kAlpha) = 0.999f;
        EXPECT_FALSE(IsOpaque(kernels(), picture.view()));
    });
    EXPECT_TRUE(IsOpaque(kernels(), FloatImage{}));
}

TEST_P(PassKernels, FinishedGlowOfEveryKindOfSettings) {
    constexpr double kClamps[] = {100.0, 40.0, 0.0};
    onPictures([&](const Picture& light) {
        for (int i = 0; i < 6; ++i) {
            GlowSettings settings;
            settings.outputRed = random_.whole(0, 3) != 0;
            settings.outputGreen = random_.whole(0, 3) != 0;
            settings.outputBlue = random_.whole(0, 3) != 0;
            settings.outputAlpha = random_.whole(0, 1) == 0;
            settings.preventOverbrights = random_.whole(0, 3) != 0;
            settings.overbrightClamp = kClamps[random_.whole(0, 2)];
            const bool opaque = random_.whole(0, 2) == 0;
            Picture source(light.width(), light.height(), 2);
            source.randomize(random_, -0.2f, 1.2f);
            check(
                light,
                [&](const FloatImage& image) {
                    FinishGlow(image, source.view(), settings, opaque);
                },
                [&](const FloatImage& image) {
                    FinishGlow(kernels(), image, source.view(), settings, opaque);
                });
        }
    });
}

/// A colour that is no output channel does not count as the largest, and alpha does not either.
TEST_P(PassKernels, SoftClipLooksAtOutputColoursAlone) {
    for (const float hidden : {1.5f, 8.0f, kInfinity, kNaN}) {
        for (const float shown : {0.7f, 1.25f, 1.999f, 2.0f, 6.0f}) {
            Picture light(23, 4, 1, true);
            light.randomize(random_, 0.0f, 0.9f);
            light.set(5, 2, {9.0f, hidden, shown, 0.5f});
            Picture source(23, 4);
            source.fill(1.0f);
            GlowSettings settings;
            settings.outputRed = false;
            settings.outputAlpha = true;
            check(
                light,
                [&](const FloatImage& image) { FinishGlow(image, source.view(), settings, false); },
                [&](const FloatImage& image) {
                    FinishGlow(kernels(), image, source.view(), settings, false);
                });
            if (HasFatalFailure()) return;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Levels, PassKernels, testing::ValuesIn(KernelLevels()), LevelOfTest);

TEST(FinishGlow, IsThePassesOneAfterTheOther) {
    Random random(734);
    for (const bool outputAlpha : {false, true}) {
        for (const bool opaque : {false, true}) {
            Picture glow(31, 5);
            glow.randomize(random, -0.5f, 2.5f);
            Picture source(31, 5);
            source.randomize(random, 0.0f, 1.0f);
            GlowSettings settings;
            settings.outputAlpha = outputAlpha;
            settings.outputGreen = opaque;
            Picture want(glow);
            ChannelMaskPass(want.view(), source.view(), settings, 1.0f, opaque);
            OverbrightSoftClip(want.view(), settings);
            ClampAlpha(want.view());
            if (outputAlpha) IntensityToAlpha(want.view());
            FinishGlow(glow.view(), source.view(), settings, opaque);
            EXPECT_TRUE(SamePixels(glow, want));
        }
    }
}

}  // namespace
}  // namespace vireon::test
