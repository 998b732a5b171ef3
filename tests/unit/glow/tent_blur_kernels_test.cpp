// The blur by kernels gives the bits of the plain definition, at every level.

#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

#include "glow/tent_blur_pixels.h"
#include "tests/unit/support/levels.h"
#include "tests/unit/support/light_data.h"
#include "tests/unit/support/picture.h"

namespace vireon::test {
namespace {

/// All channels, the colours, or one channel.
constexpr std::int32_t kAllChannels = -1;
constexpr std::int32_t kColours = -2;

void BlurPlain(const FloatImage& source, const FloatImage& destination, std::int32_t radius,
               std::int32_t channels, std::int32_t direction) {
    if (channels == kAllChannels) {
        EXPECT_EQ(TentBlurRGBA(source, destination, radius, direction), 0);
    } else if (channels == kColours) {
        EXPECT_EQ(TentBlurRGB(source, destination, radius, direction), 0);
    } else {
        EXPECT_EQ(TentBlurChannel(source, destination, radius, channels, direction), 0);
    }
}

void BlurFast(const simd::KernelTable& kernels, const FloatImage& source,
              const FloatImage& destination, std::int32_t radius, std::int32_t channels,
              std::int32_t direction) {
    if (channels == kAllChannels) {
        EXPECT_EQ(TentBlurRGBA(kernels, source, destination, radius, direction), 0);
    } else if (channels == kColours) {
        EXPECT_EQ(TentBlurRGB(kernels, source, destination, radius, direction), 0);
    } else {
        EXPECT_EQ(TentBlurChannel(kernels, source, destination, radius, channels, direction), 0);
    }
}

ChannelFlags FlagsOf(std::int32_t channels) {
    ChannelFlags flags;
    for (std::int32_t c = 0; c < kChannels; ++c) {
        flags.enabled[c] =
            channels == kAllChannels || (channels == kColours ? c != kAlpha : c == channels);
    }
    return flags;
}

class TentBlurKernels : public testing::TestWithParam<simd::Level> {
  protected:
    const simd::KernelTable& kernels() const { return *simd::KernelsOf(GetParam()); }

    void check(std::int32_t width, std::int32_t height, std::int32_t radius, std::int32_t channels,
               LightData data) {
        Picture source(width, height, width % 5, height % 2 == 0);
        FillWith(source, data, random_);
        const Picture before(source);
        for (const std::int32_t direction : {kAlongRows, kAlongColumns}) {
            Picture got(width, height, height % 4, width % 2 == 0);
            got.fill(5.0f, -6.0f, 7.0f, 8.0f);
            Picture want(got);
            BlurPlain(source.view(), want.view(), radius, channels, direction);
            BlurFast(kernels(), source.view(), got.view(), radius, channels, direction);
            ASSERT_TRUE(SamePixels(got, want))
                << width << 'x' << height << " radius " << radius << " channels " << channels
                << " direction " << direction << " data " << static_cast<int>(data);
            ASSERT_TRUE(got.paddingIntact());
            ASSERT_TRUE(SamePixels(source, before));
        }
        checkBoth(source, radius, channels);
    }

    /// Both passes in one go against one after the other by the plain definition.
    void checkBoth(const Picture& source, std::int32_t radius, std::int32_t channels) {
        const std::int32_t width = source.width();
        const std::int32_t height = source.height();
        const bool works =
            ClampTentRadius(radius, width) > 0 && ClampTentRadius(radius, height) > 0;
        Picture want(source);
        Picture got(source);
        Picture scratch(width, height, height % 3, width % 2 == 0);
        // What lies in the scratch memory must not show.
        scratch.fill(kNoNumber, kNoNumber, kNoNumber, kNoNumber);
        if (works) {
            Picture between(width, height);
            BlurPlain(want.view(), between.view(), radius, channels, kAlongRows);
            BlurPlain(between.view(), want.view(), radius, channels, kAlongColumns);
        }
        ASSERT_EQ(TentBlur(kernels(), got.view(), scratch.view(), radius, FlagsOf(channels)),
                  works);
        ASSERT_TRUE(SamePixels(got, want)) << width << 'x' << height << " radius " << radius
                                           << " channels " << channels << " both directions";
        ASSERT_TRUE(got.paddingIntact());
        ASSERT_TRUE(scratch.paddingIntact());
    }

    static constexpr float kNoNumber = std::numeric_limits<float>::quiet_NaN();

    Random random_{170};
};

TEST_P(TentBlurKernels, EverySmallSize) {
    for (std::int32_t width = 1; width <= 33; ++width) {
        for (std::int32_t height = 1; height <= 33; ++height) {
            const std::int32_t radius = 1 + (width * 7 + height * 3) % 20;
            check(width, height, radius, (width + height) % 2 == 0 ? kAllChannels : kColours,
                  kAllLight[static_cast<std::size_t>(width + 2 * height) % kAllLight.size()]);
            if (HasFatalFailure()) return;
        }
    }
}

TEST_P(TentBlurKernels, EveryRadiusOfEveryKindOfLightAndChannels) {
    for (std::int32_t radius = 0; radius <= 20; ++radius) {
        for (const LightData data : kAllLight) {
            for (std::int32_t channels = kColours; channels < kChannels; ++channels) {
                check(37, 45, radius, channels, data);
                if (HasFatalFailure()) return;
            }
        }
    }
}

TEST_P(TentBlurKernels, RadiiAcrossTheImageAndLinesLongerThanAStrip) {
    for (const std::int32_t radius : {1, 40, 200, 1000000, -3}) {
        for (const std::int32_t channels : {kColours, kAllChannels, 2}) {
            check(211, 103, radius, channels, LightData::kRandom);
            check(129, 67, radius, channels, LightData::kHdr);
            check(1053, 27, radius, channels, LightData::kSparse);
            check(31, 517, radius, channels, LightData::kRandom);
        }
    }
}

TEST_P(TentBlurKernels, RowsLongerThanTheStripOfABand) {
    // The rows that are gathered together and the ones left over, in both strips.
    for (const std::int32_t radius : {3, 17, 18}) {
        for (const std::int32_t channels : {kColours, kAllChannels, 2}) {
            check(2063, 45, radius, channels, LightData::kRandom);
            check(2063, 45, radius, channels, LightData::kNoNumber);
        }
    }
}

TEST_P(TentBlurKernels, PartOfAPictureLeavesTheRestAlone) {
    for (const bool bottomUp : {false, true}) {
        Picture source(40, 30, 1, bottomUp);
        FillWith(source, LightData::kRandom, random_);
        for (const std::int32_t direction : {kAlongRows, kAlongColumns}) {
            Picture got(40, 30, 3, !bottomUp);
            FillWith(got, LightData::kRandom, random_);
            Picture want(got);
            BlurPlain(PartOf(source, 3, 5, 31, 19), PartOf(want, 7, 2, 31, 19), 4, kColours,
                      direction);
            BlurFast(kernels(), PartOf(source, 3, 5, 31, 19), PartOf(got, 7, 2, 31, 19), 4,
                     kColours, direction);
            EXPECT_TRUE(SamePixels(got, want));
        }
        Picture got(source);
        Picture want(source);
        Picture between(31, 19);
        const FloatImage part = PartOf(want, 3, 5, 31, 19);
        BlurPlain(part, between.view(), 2, kColours, kAlongRows);
        BlurPlain(between.view(), part, 2, kColours, kAlongColumns);
        EXPECT_TRUE(
            TentBlur(kernels(), PartOf(got, 3, 5, 31, 19), between.view(), 2, FlagsOf(kColours)));
        EXPECT_TRUE(SamePixels(got, want));
    }
}

INSTANTIATE_TEST_SUITE_P(Levels, TentBlurKernels, testing::ValuesIn(KernelLevels()), LevelOfTest);

}  // namespace
}  // namespace vireon::test
