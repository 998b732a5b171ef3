// The mask by kernels gives the bits of its plain definition, at every level.

#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

#include "composite/glow_mask_pixels.h"
#include "tests/unit/support/levels.h"
#include "tests/unit/support/light_data.h"
#include "tests/unit/support/picture.h"

namespace vireon::test {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

class MaskKernels : public testing::TestWithParam<simd::Level> {
  protected:
    const simd::KernelTable& kernels() const { return *simd::KernelsOf(GetParam()); }

    void checkEllipse(const Picture& light, const EllipseMask& ellipse, std::int32_t width,
                      std::int32_t height) {
        for (const bool alphaOnly : {false, true}) {
            Picture got(light);
            Picture want(light);
            MultiplyByEllipse(want.view(), ellipse, width, height, alphaOnly);
            MultiplyByEllipse(kernels(), got.view(), ellipse, width, height, alphaOnly);
            ASSERT_TRUE(SamePixels(got, want))
                << width << 'x' << height << " around " << ellipse.centreX << ", "
                << ellipse.centreY << ", radius " << ellipse.radius << ", scales " << ellipse.scaleX
                << ", " << ellipse.scaleY << ", softness " << ellipse.softness << ", alpha only "
                << alphaOnly;
            ASSERT_TRUE(got.paddingIntact());
        }
    }

    Random random_{97};
};

TEST_P(MaskKernels, AlphaOfEveryKindOnEveryKindOfLight) {
    for (std::int32_t width = 1; width <= 34; ++width) {
        for (const LightData data : kAllLight) {
            for (const bool alphaOnly : {false, true}) {
                const std::int32_t columns = width == 34 ? 1021 : width;
                Picture light(columns, 3, width % 5, width % 2 == 0);
                Picture mask(columns + 2, 3, width % 3, width % 3 == 0);
                FillWith(light, width % 2 == 0 ? data : LightData::kRandom, random_);
                FillWith(mask, data, random_);
                mask.at(columns / 2, 1, kAlpha) = -kInfinity;
                Picture got(light);
                Picture want(light);
                MultiplyByAlpha(want.view(), mask.view(), columns, 3, alphaOnly);
                MultiplyByAlpha(kernels(), got.view(), mask.view(), columns, 3, alphaOnly);
                ASSERT_TRUE(SamePixels(got, want)) << columns << " pixels";
                ASSERT_TRUE(got.paddingIntact());
            }
        }
    }
}

TEST_P(MaskKernels, EllipsesOnEverySmallSize) {
    for (std::int32_t width = 1; width <= 33; ++width) {
        Picture light(width, 9, width % 5, width % 2 == 0);
        FillWith(light, kAllLight[static_cast<std::size_t>(width) % kAllLight.size()], random_);
        const float w = static_cast<float>(width);
        for (const float softness : {1.0f, 0.5f, 0.01f, 2.7f}) {
            checkEllipse(light, {w / 2.0f, 4.5f, w / 2.0f, 1.0f, 1.0f, softness}, width, 9);
            checkEllipse(light, {0.0f, 0.0f, 3.0f, 0.25f, 2.0f, softness}, width, 9);
            checkEllipse(light, {w, 4.0f, 100.0f, 1.0f, 0.3f, softness}, width - width / 3, 7);
            if (HasFatalFailure()) return;
        }
    }
}

TEST_P(MaskKernels, EllipsesOfEverySoftnessOnALargePicture) {
    Picture light(517, 61, 3);
    light.randomize(random_, 0.0f, 3.0f);
    for (const float softness : {1.0f, 0.99999f, 1.00002f, 0.9f, 0.75f, 0.3f, 0.1f, 1e-3f, 1e-30f,
                                 1e-42f, 1.5f, 10.0f, 1e6f, 3e38f}) {
        checkEllipse(light, {258.3f, 30.1f, 200.0f, 1.0f, 30.0f, softness}, 517, 61);
        if (HasFatalFailure()) return;
    }
}

/// What no slider gives: the plain form has an answer to it, and so the kernels must.
TEST_P(MaskKernels, EllipsesOfOddNumbers) {
    Picture light(41, 5, 0);
    light.randomize(random_, -1.0f, 3.0f);
    const float odd[] = {0.0f,  -0.0f, -3.0f,     1e-42f,     1e-20f,
                         1e20f, 3e38f, kInfinity, -kInfinity, kNaN};
    for (const float value : odd) {
        for (const float softness : {1.0f, 0.5f}) {
            checkEllipse(light, {value, 2.0f, 9.0f, 1.0f, 1.0f, softness}, 41, 5);
            checkEllipse(light, {20.0f, value, 9.0f, 1.0f, 1.0f, softness}, 41, 5);
            checkEllipse(light, {20.0f, 2.0f, value, 1.0f, 1.0f, softness}, 41, 5);
            checkEllipse(light, {20.0f, 2.0f, 9.0f, value, 1.0f, softness}, 41, 5);
            checkEllipse(light, {20.0f, 2.0f, 9.0f, 1.0f, value, softness}, 41, 5);
        }
        checkEllipse(light, {20.0f, 2.0f, 9.0f, 1.0f, 1.0f, value}, 41, 5);
        if (HasFatalFailure()) return;
    }
}

/// Light that is not finite goes out beyond the rim as well.
TEST_P(MaskKernels, NothingIsLeftBeyondTheRim) {
    Picture light(64, 64, 1);
    light.fill(kInfinity);
    MultiplyByEllipse(kernels(), light.view(), {32.0f, 32.0f, 10.0f, 1.0f, 1.0f, 0.5f}, 64, 64,
                      false);
    EXPECT_EQ(light.at(32, 32, kRed), kInfinity);
    EXPECT_EQ(light.at(32, 41, kRed), kInfinity);
    EXPECT_EQ(light.at(32, 42, kRed), 0.0f);
    EXPECT_EQ(light.at(21, 32, kAlpha), 0.0f);
    EXPECT_EQ(light.at(0, 63, kBlue), 0.0f);
}

INSTANTIATE_TEST_SUITE_P(Levels, MaskKernels, testing::ValuesIn(KernelLevels()), LevelOfTest);

}  // namespace
}  // namespace vireon::test
