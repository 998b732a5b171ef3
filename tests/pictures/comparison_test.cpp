// The comparison that all golden pictures rely on must see everything.

#include "tests/pictures/comparison.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "tests/pictures/test_pictures.h"

namespace vireon::pictures {
namespace {

using headless::Picture;

class ComparisonAtDepth : public testing::TestWithParam<int> {
  protected:
    int bits() const { return GetParam(); }

    /// Changes one sample by a step, in float by its smallest possible amount.
    void nudge(Picture& picture, std::int32_t x, std::int32_t y, int channel) const {
        const std::int32_t at = x * 4 + channel;
        switch (bits()) {
            case 8: ++picture.row<std::uint8_t>(y)[at]; break;
            case 16: ++picture.row<std::uint16_t>(y)[at]; break;
            default: {
                float& sample = picture.row<float>(y)[at];
                sample = std::nextafter(sample, 1e9f);
            }
        }
    }
};

TEST_P(ComparisonAtDepth, APictureAgreesWithItself) {
    const Picture picture = TestPicture(bits());
    const Comparison found = Compare(picture, picture, kSameBits);
    EXPECT_TRUE(found.agrees()) << found.problem;
    EXPECT_EQ(found.differing, 0u);
    EXPECT_EQ(found.x, -1);
}

TEST_P(ComparisonAtDepth, EverySampleCounts) {
    const char* const names[] = {"alpha", "red", "green", "blue"};
    const Picture reference = TestPicture(bits());
    for (std::int32_t y = 0; y < reference.height; ++y) {
        for (std::int32_t x = 0; x < reference.width; ++x) {
            for (int c = 0; c < 4; ++c) {
                Picture now = reference;
                nudge(now, x, y, c);
                const Comparison found = Compare(now, reference, kSameBits);
                EXPECT_FALSE(found.agrees());
                EXPECT_EQ(found.differing, 1u);
                EXPECT_EQ(found.x, x);
                EXPECT_EQ(found.y, y);
                EXPECT_EQ(found.channel, names[c]);
                EXPECT_EQ(found.now, SampleAt(now, x, y, c));
                EXPECT_EQ(found.reference, SampleAt(reference, x, y, c));
            }
        }
    }
}

TEST_P(ComparisonAtDepth, RoundingIsToleratedAndNoMore) {
    const Picture reference = TestPicture(bits());
    Picture now = reference;
    nudge(now, 2, 3, 1);
    EXPECT_TRUE(Compare(now, reference, kRounding).agrees());
    EXPECT_EQ(Compare(now, reference, kRounding).differing, 1u);
    if (bits() == 32) {
        // 27 * 5 + 3 + 8 is the largest number that the picture is made of.
        constexpr float kPeak = 146.0f / 37.0f;
        now.row<float>(3)[9] += kPeak * 0.9e-5f;
        EXPECT_TRUE(Compare(now, reference, kRounding).agrees());
        now.row<float>(3)[9] += kPeak * 0.2e-5f;
    } else {
        nudge(now, 2, 3, 1);
    }
    const Comparison found = Compare(now, reference, kRounding);
    EXPECT_FALSE(found.agrees());
    EXPECT_NEAR(found.largest, bits() == 32 ? 1.1e-5 : 2.0, 1e-6);
}

TEST_P(ComparisonAtDepth, TheLargestDifferenceIsTheOneThatIsNamed) {
    const Picture reference = TestPicture(bits());
    Picture now = reference;
    nudge(now, 1, 1, 2);
    for (int i = 0; i < 5; ++i) nudge(now, 4, 2, 3);
    nudge(now, 6, 4, 0);
    const Comparison found = Compare(now, reference, kSameBits);
    EXPECT_EQ(found.differing, 3u);
    EXPECT_EQ(found.x, 4);
    EXPECT_EQ(found.y, 2);
    EXPECT_EQ(found.channel, "blue");
    EXPECT_NE(found.problem.find("blue at 4,2"), std::string::npos) << found.problem;
}

TEST_P(ComparisonAtDepth, OtherSizesPlacesAndDepthsNeverAgree) {
    const Picture reference = TestPicture(bits());
    Picture moved = reference;
    moved.originX = 1;
    // As many pixels, in other rows.
    const Picture turned = TestPicture(bits(), 5, 7);
    const Picture deeper = TestPicture(bits() == 8 ? 16 : 8);
    for (const Picture& other : {moved, turned, deeper, TestPicture(bits(), 7, 4), Picture()}) {
        EXPECT_FALSE(Compare(other, reference, kRounding).agrees());
        EXPECT_FALSE(Compare(reference, other, kRounding).agrees());
    }
}

TEST_P(ComparisonAtDepth, NoPictureAtAllAgreesWithNothing) {
    Picture empty(7, 5, bits());
    empty.pixels.clear();
    EXPECT_FALSE(Compare(empty, empty, kSameBits).agrees());
    EXPECT_FALSE(Compare(TestPicture(bits()), empty, kSameBits).agrees());
}

INSTANTIATE_TEST_SUITE_P(Depths, ComparisonAtDepth, testing::Values(8, 16, 32));

TEST(FloatComparison, WhatIsNotFiniteNeverAgrees) {
    const Picture sound = TestPicture(32);
    for (const float bad :
         {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
          -std::numeric_limits<float>::infinity()}) {
        Picture spoiled = sound;
        spoiled.row<float>(2)[4 * 3 + 2] = bad;
        for (const Tolerance& tolerance : {kSameBits, kRounding}) {
            const Comparison found = Compare(spoiled, sound, tolerance);
            EXPECT_FALSE(found.agrees());
            EXPECT_TRUE(std::isinf(found.largest));
            EXPECT_EQ(found.x, 3);
            EXPECT_EQ(found.y, 2);
            EXPECT_NE(found.problem.find("not finite"), std::string::npos) << found.problem;
            EXPECT_FALSE(Compare(sound, spoiled, tolerance).agrees());
            EXPECT_FALSE(Compare(spoiled, spoiled, tolerance).agrees());
        }
    }
}

TEST(FloatComparison, TheSignOfZeroIsABit) {
    Picture reference = TestPicture(32);
    reference.row<float>(0)[1] = 0.0f;
    Picture now = reference;
    now.row<float>(0)[1] = -0.0f;
    EXPECT_FALSE(Compare(now, reference, kSameBits).agrees());
    EXPECT_TRUE(Compare(now, reference, kRounding).agrees());
}

TEST(FloatComparison, ABlackReferenceIsMeasuredByWhite) {
    const Picture black(4, 4, 32);
    Picture now = black;
    now.row<float>(1)[5] = 2e-5f;
    const Comparison found = Compare(now, black, kRounding);
    EXPECT_FALSE(found.agrees());
    EXPECT_NEAR(found.largest, 2e-5, 1e-9);
    now.row<float>(1)[5] = 0.5e-5f;
    EXPECT_TRUE(Compare(now, black, kRounding).agrees());
}

TEST(Tolerances, OnlyThePlainDefinitionsMayRound) {
    for (const char* const level : {"scalar", "sse2", "avx2", "avx512", "something new"}) {
        EXPECT_EQ(ToleranceOf(level).steps, 0.0) << level;
        EXPECT_EQ(ToleranceOf(level).ofPeak, 0.0) << level;
    }
    EXPECT_EQ(ToleranceOf("plain").steps, kRounding.steps);
}

}  // namespace
}  // namespace vireon::pictures
