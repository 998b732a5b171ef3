// The widening by kernels gives the bits of the plain definition, at every level.

#include <algorithm>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "composite/widening_pixels.h"
#include "tests/unit/support/levels.h"
#include "tests/unit/support/light_data.h"
#include "tests/unit/support/picture.h"

namespace vireon::test {
namespace {

class WideningKernels : public testing::TestWithParam<simd::Level> {
  protected:
    const simd::KernelTable& kernels() const { return *simd::KernelsOf(GetParam()); }

    /// Both forms on the same part of two equal pictures, the scratch memory with a canary behind.
    void widen(const FloatImage& got, const FloatImage& want, WideningReach reach, bool alongRows,
               const ChannelFlags& channels) {
        constexpr float kCanary = -1e30f;
        const std::size_t floats =
            WideningScratchBytes(alongRows ? got.width : got.height, reach) / sizeof(float);
        std::vector<float> scratch(floats + 16, kCanary);
        WidenLight(want, reach, alongRows, channels, scratch.data());
        std::fill(scratch.begin(), scratch.end(), kCanary);
        WidenLight(kernels(), got, reach, alongRows, channels, scratch.data());
        EXPECT_EQ(std::count(scratch.end() - 16, scratch.end(), kCanary), 16);
    }

    void check(std::int32_t width, std::int32_t height, WideningReach reach,
               const ChannelFlags& channels, LightData data) {
        for (const bool alongRows : {true, false}) {
            Picture got(width, height, height % 5, width % 2 == 0);
            FillWith(got, data, random_);
            Picture want(got);
            widen(got.view(), want.view(), reach, alongRows, channels);
            ASSERT_TRUE(SamePixels(got, want))
                << width << 'x' << height << " reach " << reach.whole << " + " << reach.fraction
                << " rows " << alongRows << " data " << static_cast<int>(data);
            ASSERT_TRUE(got.paddingIntact());
        }
    }

    Random random_{171};
};

TEST_P(WideningKernels, EverySmallSize) {
    for (std::int32_t width = 1; width <= 33; ++width) {
        for (std::int32_t height = 1; height <= 33; ++height) {
            const WideningReach reach{1 + (width * 5 + height * 3) % 21, random_.real(0.0f, 1.0f)};
            check(width, height, reach, {},
                  kNumberLight[static_cast<std::size_t>(width + 2 * height) % kNumberLight.size()]);
            if (HasFatalFailure()) return;
        }
    }
}

TEST_P(WideningKernels, EveryReachOfEveryKindOfLight) {
    for (std::int32_t whole = 0; whole <= 20; ++whole) {
        for (const LightData data : kNumberLight) {
            for (const float fraction : {0.0f, 0.3f, 1.0f}) {
                check(37, 29, {whole, fraction}, {}, data);
                if (HasFatalFailure()) return;
            }
        }
    }
}

TEST_P(WideningKernels, EveryChannelSubset) {
    for (int flags = 0; flags < 16; ++flags) {
        ChannelFlags channels;
        for (int c = 0; c < 4; ++c) channels.enabled[c] = ((flags >> c) & 1) != 0;
        for (const std::int32_t whole : {1, 2, 5, 30}) {
            check(23, 35, {whole, 0.7f}, channels, LightData::kRandom);
            check(35, 23, {whole, 0.7f}, channels, LightData::kZeros);
        }
    }
}

TEST_P(WideningKernels, ReachesAcrossTheImageAndLargerPictures) {
    for (const std::int32_t whole : {3, 60, 127, 300, 1000000}) {
        check(211, 103, {whole, 0.5f}, {}, LightData::kRandom);
        check(67, 131, {whole, 0.5f}, {}, LightData::kSparse);
        check(7, 5, {whole, 0.5f}, {}, LightData::kRandom);
        if (HasFatalFailure()) return;
    }
}

TEST_P(WideningKernels, PartOfAPictureLeavesTheRestAlone) {
    for (const bool bottomUp : {false, true}) {
        for (const bool alongRows : {true, false}) {
            Picture got(40, 30, 3, bottomUp);
            FillWith(got, LightData::kRandom, random_);
            Picture want(got);
            widen(PartOf(got, 3, 5, 31, 19), PartOf(want, 3, 5, 31, 19), {6, 0.4f}, alongRows, {});
            EXPECT_TRUE(SamePixels(got, want));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Levels, WideningKernels, testing::ValuesIn(KernelLevels()), LevelOfTest);

}  // namespace
}  // namespace vireon::test
