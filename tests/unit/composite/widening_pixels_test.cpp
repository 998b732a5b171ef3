#include "composite/widening_pixels.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "tests/unit/composite/plain_widening.h"
#include "tests/unit/support/light_data.h"
#include "tests/unit/support/picture.h"

namespace vireon::test {
namespace {

/// The pass with scratch memory of exactly the size that it asks for.
void Widen(Picture& picture, std::int32_t n, float fraction, bool alongRows,
           const ChannelFlags& channels) {
    const WideningReach reach{n, fraction};
    const std::int32_t length = alongRows ? picture.width() : picture.height();
    std::vector<float> scratch((WideningScratchBytes(length, reach) + 3) / 4, -1e30f);
    WidenLight(picture.view(), reach, alongRows, channels, scratch.data());
}

TEST(WidenLight, IsTheRunningMaximumOfItsDefinitionForEveryReachAndLength) {
    Random random(40);
    const ChannelFlags all;
    for (std::int32_t n = 0; n <= 12; ++n) {
        for (std::int32_t length = 1; length <= 27; ++length) {
            for (const bool alongRows : {true, false}) {
                Picture picture(alongRows ? length : 3, alongRows ? 3 : length, length % 4,
                                length % 2 == 0);
                FillWith(picture, length % 3 == 0 ? LightData::kZeros : LightData::kRandom, random);
                const float fraction = random.real(0.0f, 1.0f);
                Picture want(picture);
                PlainWiden(want, n, fraction, alongRows, all);
                Widen(picture, n, fraction, alongRows, all);
                ASSERT_TRUE(SamePixels(picture, want))
                    << "n " << n << " length " << length << " rows " << alongRows;
            }
        }
    }
}

TEST(WidenLight, ReachesBeyondTheLineOnBothSides) {
    Random random(41);
    for (const std::int32_t n : {20, 33, 100}) {
        for (const bool alongRows : {true, false}) {
            Picture picture(7, 5);
            picture.randomize(random, 0.0f, 1.0f);
            Picture want(picture);
            PlainWiden(want, n, 0.5f, alongRows, {});
            Widen(picture, n, 0.5f, alongRows, {});
            EXPECT_TRUE(SamePixels(picture, want)) << n;
        }
    }
}

TEST(WidenLight, OfZerosOfBothSignsTheNearestCountsAndTheOneBeforeOfTwoAsNear) {
    const auto widened = [](std::array<float, 7> values) {
        Picture picture(7, 1);
        for (std::int32_t x = 0; x < 7; ++x) {
            const float value = values[static_cast<std::size_t>(x)];
            picture.set(x, 0, {value, value, value, value});
        }
        Widen(picture, 5, 0.5f, true, {});
        return picture.at(3, 0, kRed);
    };
    EXPECT_TRUE(std::signbit(widened({0.0f, -1.0f, -0.0f, -1.0f, -1.0f, 0.0f, 0.0f})));
    EXPECT_FALSE(std::signbit(widened({-0.0f, -0.0f, -1.0f, -1.0f, 0.0f, -0.0f, -0.0f})));
    EXPECT_TRUE(std::signbit(widened({0.0f, 0.0f, -0.0f, -1.0f, 0.0f, 0.0f, 0.0f})));
    EXPECT_TRUE(std::signbit(widened({0.0f, 0.0f, 0.0f, -0.0f, 0.0f, 0.0f, 0.0f})));
}

TEST(WidenLight, EveryChannelSubsetLeavesTheOtherChannelsAlone) {
    Random random(42);
    for (int flags = 0; flags < 16; ++flags) {
        ChannelFlags channels;
        for (int c = 0; c < 4; ++c) channels.enabled[c] = ((flags >> c) & 1) != 0;
        for (const bool alongRows : {true, false}) {
            for (const std::int32_t n : {1, 2, 3, 6}) {
                Picture picture(11, 9, 2);
                picture.randomize(random, -0.5f, 1.5f);
                Picture want(picture);
                PlainWiden(want, n, 0.7f, alongRows, channels);
                Widen(picture, n, 0.7f, alongRows, channels);
                EXPECT_TRUE(SamePixels(picture, want)) << flags << ' ' << n;
            }
        }
    }
}

TEST(WidenLight, ReachOfZeroChangesNothing) {
    Random random(43);
    Picture picture(9, 7);
    picture.randomize(random, -1.0f, 1.0f);
    const Picture before(picture);
    Widen(picture, 0, 0.9f, true, {});
    Widen(picture, 0, 0.9f, false, {});
    EXPECT_TRUE(SamePixels(picture, before));
}

TEST(WidenLight, FullStrengthEndsTwoPixelsBeforeTheReachAndTheFractionOneBefore) {
    Picture picture(21, 1);
    picture.set(10, 0, {1.0f, 1.0f, 1.0f, 1.0f});
    Widen(picture, 6, 0.25f, true, {});
    for (std::int32_t x = 0; x < 21; ++x) {
        const std::int32_t distance = std::abs(x - 10);
        const float want = distance <= 4 ? 1.0f : distance == 5 ? 0.25f : 0.0f;
        EXPECT_EQ(picture.at(x, 0, kRed), want) << x;
    }
}

TEST(WidenLight, ReachesOfOneAndTwoTouchTheNextPixelByTheFraction) {
    for (const std::int32_t n : {1, 2}) {
        Picture picture(5, 1);
        picture.set(2, 0, {1.0f, 1.0f, 1.0f, 1.0f});
        Widen(picture, n, 0.25f, true, {});
        const float want[] = {0.0f, 0.25f, 1.0f, 0.25f, 0.0f};
        for (std::int32_t x = 0; x < 5; ++x) EXPECT_EQ(picture.at(x, 0, kAlpha), want[x]) << n;
    }
}

TEST(WidenLight, NegativeLightIsRaisedByTheFractionOfItsNeighbours) {
    Picture picture(5, 1);
    picture.fill(-1.0f);
    Widen(picture, 3, 0.25f, true, {});
    for (std::int32_t x = 0; x < 5; ++x) EXPECT_EQ(picture.at(x, 0, kGreen), -0.25f);
}

TEST(WidenLight, FlatLightStaysFlat) {
    for (std::int32_t n = 0; n <= 12; ++n) {
        Picture picture(13, 6);
        picture.fill(0.375f);
        const Picture before(picture);
        Widen(picture, n, 0.5f, true, {});
        Widen(picture, n, 0.5f, false, {});
        EXPECT_TRUE(SamePixels(picture, before)) << n;
    }
}

}  // namespace
}  // namespace vireon::test
