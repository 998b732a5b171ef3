#include "glow/shape_splat_pixels.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

#include "tests/unit/glow/plain_splat.h"
#include "tests/unit/support/picture.h"

namespace vireon::test {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

/// Equal stamps may be added in another order than one by one; with some hundred stamps over a
/// pixel that may lose a few more roundings than one formula does.
constexpr double kSumTolerance = 8.0 * kRounding;

void SplatAll(Picture& source, Picture& destination, const Splat& splat, SplatMember member,
              const ChannelFlags& channels) {
    for (std::int32_t y = 0; y < source.height(); ++y) {
        SplatRow(source.view(), y, destination.view(), splat, member, channels);
    }
}

struct KernelSize {
    std::int32_t width, height;
};
constexpr KernelSize kKernelSizes[] = {{8, 8}, {5, 7}, {16, 4}, {1, 1}, {2, 3}, {256, 256}};

TEST(SplatRow, GeneralSplatIsTheStampOfItsDefinition) {
    Random random(90);
    for (const KernelSize& size : kKernelSizes) {
        const GlowKernel kernel = RandomKernel(random, size.width, size.height);
        for (const float radius : {0.4f, 1.0f, 1.7f, 3.0f, 5.5f, 12.0f}) {
            const std::int32_t maxRadius = static_cast<std::int32_t>(radius + 0.5f);
            Picture source(11, 9, 1);
            source.randomize(random, -0.5f, 1.5f);
            Picture got(11, 9, 2, true);
            got.randomize(random, 0.0f, 1.0f);
            Picture want(got);
            PlainSplat(source, want, kernel, 0.1f, radius, maxRadius, {});
            SplatAll(source, got, {&kernel, 0.1f, radius, maxRadius}, SplatMember::kGeneral, {});
            EXPECT_TRUE(NearPixels(got, want, kSumTolerance)) << size.width << ' ' << radius;
        }
    }
}

TEST(SplatRow, RunsOfEqualValuesAreTheSameAsSingleStamps) {
    Random random(91);
    const GlowKernel kernel = RandomKernel(random, 8, 8, -0.5f, 1.0f);
    for (const float value : {0.3f, 0.5f, 1.0f, 2.0f}) {
        Picture source(19, 7);
        source.fill(value);
        for (std::int32_t y = 0; y < 7; ++y) source.set(9, y, {0.0f, 0.7f, value, 1.0f});
        Picture got(19, 7);
        Picture want(19, 7);
        PlainSplat(source, want, kernel, 0.25f, 4.0f, 4, {});
        SplatAll(source, got, {&kernel, 0.25f, 4.0f, 4}, SplatMember::kGeneral, {});
        EXPECT_TRUE(NearPixels(got, want, kSumTolerance, 20.0)) << value;
    }
}

TEST(SplatRow, EveryChannelSubsetLeavesTheOtherChannelsAlone) {
    Random random(92);
    const GlowKernel kernel = RandomKernel(random, 9, 6);
    for (int flags = 0; flags < 16; ++flags) {
        ChannelFlags channels;
        for (int c = 0; c < 4; ++c) channels.enabled[c] = ((flags >> c) & 1) != 0;
        Picture source(9, 8);
        source.randomize(random, 0.0f, 1.2f);
        Picture got(9, 8);
        got.fill(0.5f);
        Picture want(got);
        PlainSplat(source, want, kernel, 0.5f, 4.0f, 4, channels);
        SplatAll(source, got, {&kernel, 0.5f, 4.0f, 4}, SplatMember::kGeneral, channels);
        EXPECT_TRUE(NearPixels(got, want, kSumTolerance)) << flags;
    }
}

TEST(SplatRow, ValueTimesRadiusBelowOneMakesNoStamp) {
    Random random(93);
    const GlowKernel kernel = RandomKernel(random, 8, 8);
    for (const float value : {0.249999f, 0.1f, 0.0f, -0.0f, -1.0f, -100.0f}) {
        Picture source(9, 9);
        source.fill(value);
        Picture got(9, 9);
        SplatAll(source, got, {&kernel, 1.0f, 4.0f, 4}, SplatMember::kGeneral, {});
        EXPECT_TRUE(SamePixels(got, Picture(9, 9))) << value;
    }
}

Picture StampOf(float value, const GlowKernel& kernel, float radius, std::int32_t maxRadius,
                std::int32_t x = 10, std::int32_t y = 10) {
    Picture source(21, 21);
    source.set(x, y, {0.0f, value, 0.0f, 0.0f});
    Picture got(21, 21);
    SplatAll(source, got, {&kernel, 1.0f, radius, maxRadius}, SplatMember::kGeneral, {});
    return got;
}

TEST(SplatRow, ValueSizesTheStampAndIsNoFactorOfIt) {
    GlowKernel kernel;
    kernel.allocate(4, 4);
    kernel.values.assign(16, 0.5f);
    kernel.flagEmptyRows();
    for (const float value : {0.25f, 0.5f, 0.75f, 1.0f}) {
        const Picture got = StampOf(value, kernel, 8.0f, 8);
        const std::int32_t r = std::min(static_cast<std::int32_t>(value * 8.0f) + 1, 8);
        for (std::int32_t y = 0; y < 21; ++y) {
            for (std::int32_t x = 0; x < 21; ++x) {
                const bool inside = std::abs(x - 10) <= r && std::abs(y - 10) <= r;
                EXPECT_EQ(got.at(x, y, kRed), inside ? 0.5f : 0.0f) << x << ' ' << y;
            }
        }
    }
}

TEST(SplatRow, ValueTimesRadiusOfExactlyOneMakesAStampOfTwoPixels) {
    GlowKernel kernel;
    kernel.allocate(4, 4);
    kernel.values.assign(16, 0.5f);
    kernel.flagEmptyRows();
    const Picture got = StampOf(0.25f, kernel, 4.0f, 4);
    EXPECT_EQ(got.at(10, 10, kRed), 0.5f);
    EXPECT_EQ(got.at(12, 8, kRed), 0.5f);
    EXPECT_EQ(got.at(13, 10, kRed), 0.0f);
}

TEST(SplatRow, LargerStampsAreCutDownToTheLargestRadiusTexelStepsIncluded) {
    Random random(94);
    const GlowKernel kernel = RandomKernel(random, 16, 16);
    const Picture largest = StampOf(1.0f, kernel, 5.0f, 5);
    for (const float value : {1.01f, 2.0f, 100.0f, 1e9f, 3e38f}) {
        EXPECT_TRUE(SamePixels(StampOf(value, kernel, 5.0f, 5), largest)) << value;
    }
    EXPECT_EQ(largest.at(4, 10, kRed), 0.0f);
    EXPECT_EQ(largest.at(16, 10, kRed), 0.0f);
}

TEST(SplatRow, NaNMakesNoStampAndInfinityOneOfTheLargestSize) {
    Random random(95);
    const GlowKernel kernel = RandomKernel(random, 16, 16);
    EXPECT_TRUE(SamePixels(StampOf(kNaN, kernel, 5.0f, 5), Picture(21, 21)));
    EXPECT_TRUE(SamePixels(StampOf(-kInfinity, kernel, 5.0f, 5), Picture(21, 21)));
    EXPECT_TRUE(SamePixels(StampOf(kInfinity, kernel, 5.0f, 5), StampOf(1.0f, kernel, 5.0f, 5)));
}

TEST(SplatRow, LargestRadiusOfZeroMakesNoStamp) {
    Random random(96);
    const GlowKernel kernel = RandomKernel(random, 8, 8);
    EXPECT_TRUE(SamePixels(StampOf(100.0f, kernel, 0.4f, 0), Picture(21, 21)));
    EXPECT_TRUE(SamePixels(StampOf(kInfinity, kernel, 0.0f, 0), Picture(21, 21)));
}

TEST(SplatRow, StampsAreCutAtTheBorderAndNotWrapped) {
    Random random(97);
    GlowKernel kernel = RandomKernel(random, 16, 16, 0.1f, 1.0f);
    const Picture whole = StampOf(1.0f, kernel, 6.0f, 6);
    for (const std::int32_t x : {0, 2, 20}) {
        for (const std::int32_t y : {0, 3, 19, 20}) {
            const Picture got = StampOf(1.0f, kernel, 6.0f, 6, x, y);
            for (std::int32_t row = 0; row < 21; ++row) {
                for (std::int32_t column = 0; column < 21; ++column) {
                    const std::int32_t dx = column - x;
                    const std::int32_t dy = row - y;
                    const float want = std::abs(dx) <= 6 && std::abs(dy) <= 6
                                           ? whole.at(10 + dx, 10 + dy, kRed)
                                           : 0.0f;
                    EXPECT_EQ(got.at(column, row, kRed), want);
                }
            }
            EXPECT_TRUE(got.paddingIntact());
        }
    }
}

TEST(SplatRow, RowsOfTheKernelFlaggedEmptyAreNeverRead) {
    Random random(98);
    for (const KernelSize& size : {KernelSize{8, 8}, KernelSize{7, 5}, KernelSize{3, 2}}) {
        GlowKernel kernel = RandomKernel(random, size.width, size.height, 0.1f, 1.0f);
        kernel.values[0] = 1.0f;
        kernel.flagEmptyRows();
        GlowKernel poisoned = kernel;
        // Every other row is declared empty, whatever it holds.
        for (std::int32_t y = 1; y < size.height; y += 2) {
            const auto row = static_cast<std::size_t>(y);
            kernel.emptyRows[row] = poisoned.emptyRows[row] = 1;
            for (std::int32_t x = 0; x < size.width; ++x) {
                poisoned.values[static_cast<std::size_t>(y * size.width + x)] = kNaN;
            }
        }
        for (const float radius : {2.3f, 4.0f, 6.0f}) {
            Picture source(13, 11);
            source.randomize(random, 0.0f, 1.3f);
            Picture got(13, 11);
            Picture want(13, 11);
            const auto maxRadius = static_cast<std::int32_t>(radius + 0.5f);
            PlainSplat(source, want, kernel, 0.2f, radius, maxRadius, {});
            SplatAll(source, got, {&poisoned, 0.2f, radius, maxRadius}, SplatMember::kGeneral, {});
            EXPECT_TRUE(NearPixels(got, want, kSumTolerance)) << size.width << ' ' << radius;
        }
    }
}

TEST(SplatRow, NegativeTexelsSubtract) {
    GlowKernel kernel;
    kernel.allocate(4, 4);
    kernel.values.assign(16, -2.0f);
    kernel.flagEmptyRows();
    EXPECT_EQ(StampOf(0.5f, kernel, 8.0f, 8).at(10, 10, kRed), -2.0f);
}

TEST(SplatRow, FourChannelMemberStampsTheFirstFloatIntoAllFour) {
    Random random(99);
    const GlowKernel kernel = RandomKernel(random, 8, 8);
    Picture source(9, 8);
    source.randomize(random, 0.0f, 1.2f);
    Picture got(9, 8);
    Picture want(9, 8);
    for (std::int32_t y = 0; y < 8; ++y) {
        for (std::int32_t x = 0; x < 9; ++x) {
            PlainStamp(want, kernel, 0.5f, 4.0f, 4, x, y, source.at(x, y, 0), 0, 3);
        }
    }
    SplatAll(source, got, {&kernel, 0.5f, 4.0f, 4}, SplatMember::kFourChannel, {});
    EXPECT_TRUE(NearPixels(got, want, kSumTolerance));
}

TEST(SplatRow, ThreeChannelMemberStampsOneSizeIntoTheThreeColours) {
    Random random(100);
    const GlowKernel kernel = RandomKernel(random, 8, 8);
    Picture source(9, 8);
    source.randomize(random, 0.0f, 1.2f);
    Picture got(9, 8);
    got.fill(0.25f, 0.0f, 0.0f, 0.0f);
    Picture want(got);
    for (std::int32_t y = 0; y < 8; ++y) {
        for (std::int32_t x = 0; x < 9; ++x) {
            const float value =
                std::max({source.at(x, y, 1), source.at(x, y, 2), source.at(x, y, 3)});
            PlainStamp(want, kernel, 0.5f, 4.0f, 4, x, y, value, 1, 3);
        }
    }
    SplatAll(source, got, {&kernel, 0.5f, 4.0f, 4}, SplatMember::kThreeChannel,
             {{false, true, true, true}});
    EXPECT_TRUE(NearPixels(got, want, kSumTolerance));
}

TEST(SplatRow, SingleChannelMemberStampsTheOneEnabledChannel) {
    Random random(101);
    const GlowKernel kernel = RandomKernel(random, 8, 8);
    for (std::int32_t channel = 0; channel < 4; ++channel) {
        ChannelFlags channels{{false, false, false, false}};
        channels.enabled[channel] = true;
        Picture source(9, 8);
        source.randomize(random, 0.0f, 1.2f);
        Picture got(9, 8);
        Picture want(9, 8);
        PlainSplat(source, want, kernel, 0.5f, 4.0f, 4, channels);
        SplatAll(source, got, {&kernel, 0.5f, 4.0f, 4}, SplatMember::kSingleChannel, channels);
        EXPECT_TRUE(NearPixels(got, want, kSumTolerance)) << channel;
    }
}

}  // namespace
}  // namespace vireon::test
