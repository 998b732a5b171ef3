#include "glow/enlarged_rows_pixels.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "glow/resample_pixels.h"
#include "glow/tent_blur_pixels.h"
#include "tests/unit/support/levels.h"
#include "tests/unit/support/picture.h"

namespace vireon::test {
namespace {

struct Size {
    std::int32_t width;
    std::int32_t height;
};

/// Expansion, then the tent along rows, then along columns, as the stages do it.
Picture PlainEnlargement(const Picture& small, Size size, std::int32_t radius) {
    Picture full(size.width, size.height);
    ExpandNearest(small.view(), full.view());
    Picture between = full;
    TentBlurRGBA(full.view(), between.view(), radius, kAlongRows);
    Picture result = between;
    TentBlurRGBA(between.view(), result.view(), radius, kAlongColumns);
    return result;
}

/// The same sums in double precision throughout, from the definition of the tent filter.
std::vector<double> ExactEnlargement(const Picture& small, Size size, std::int32_t radius) {
    Picture full(size.width, size.height);
    ExpandNearest(small.view(), full.view());
    const auto reachOf = [&](std::int32_t length) {
        return radius > 0 ? std::max(ClampTentRadius(radius, length), 0) : 0;
    };
    const std::int32_t reachX = reachOf(size.width);
    const std::int32_t reachY = reachOf(size.height);
    const double divisor = std::pow(reachX + 1.0, 2) * std::pow(reachY + 1.0, 2);
    std::vector<double> exact;
    for (std::int32_t y = 0; y < size.height; ++y) {
        for (std::int32_t x = 0; x < size.width; ++x) {
            for (std::int32_t c = 0; c < kChannels; ++c) {
                double sum = 0.0;
                for (std::int32_t j = -reachY; j <= reachY; ++j) {
                    for (std::int32_t i = -reachX; i <= reachX; ++i) {
                        const double weight =
                            (reachX + 1.0 - std::abs(i)) * (reachY + 1.0 - std::abs(j));
                        sum += weight * static_cast<double>(
                                            full.at(std::clamp(x + i, 0, size.width - 1),
                                                    std::clamp(y + j, 0, size.height - 1), c));
                    }
                }
                exact.push_back(sum / divisor);
            }
        }
    }
    return exact;
}

Picture ReadAll(EnlargedRows& rows, Size size, std::int32_t span) {
    Picture picture(size.width, size.height);
    for (std::int32_t y = 0; y < size.height;) {
        const std::int32_t count = rows.prepare(y);
        EXPECT_GE(count, 1);
        EXPECT_LE(y + count, size.height);
        for (std::int32_t row = y; row < y + count; ++row) {
            for (std::int32_t x = 0; x < size.width; x += span) {
                const std::int32_t pixels = std::min(span, size.width - x);
                rows.read(x, row, pixels, picture.view().pixel(x, row));
            }
        }
        y += count;
    }
    EXPECT_TRUE(picture.paddingIntact());
    return picture;
}

double LargestError(const Picture& picture, const std::vector<double>& exact) {
    double largest = 0.0;
    std::size_t i = 0;
    for (std::int32_t y = 0; y < picture.height(); ++y) {
        for (std::int32_t x = 0; x < picture.width(); ++x) {
            for (std::int32_t c = 0; c < kChannels; ++c, ++i) {
                largest = std::max(largest,
                                   std::fabs(static_cast<double>(picture.at(x, y, c)) - exact[i]));
            }
        }
    }
    return largest;
}

void CheckEnlargement(const Picture& small, Size size, std::int32_t radius, double peak) {
    SCOPED_TRACE(std::to_string(small.width()) + " x " + std::to_string(small.height()) + " to " +
                 std::to_string(size.width) + " x " + std::to_string(size.height) + ", radius " +
                 std::to_string(radius));
    const Picture plain = PlainEnlargement(small, size, radius);
    const std::vector<double> exact = ExactEnlargement(small, size, radius);
    std::vector<Picture> pictures;
    for (const simd::Level level : KernelLevels()) {
        EnlargedRows rows(*simd::KernelsOf(level), small.view(), size.width, size.height, radius);
        pictures.push_back(ReadAll(rows, size, 1 + size.width / 3));
        EXPECT_TRUE(SamePixels(pictures.back(), pictures.front())) << simd::LevelName(level);
    }
    EXPECT_LE(LargestError(pictures.front(), exact), LargestError(plain, exact) + 1e-15 * peak)
        << "further from the exact sum than the stages";
    EXPECT_LE(LargestError(pictures.front(), exact), 1.2e-7 * peak) << "more than one rounding";
}

TEST(EnlargedRows, AreNoFurtherFromTheExactSumThanTheStagesAtAnySize) {
    constexpr std::int32_t kFactors[] = {2, 4, 8, 16};
    constexpr std::int32_t kRadii[] = {1, 4, 5, 6};
    Random random(20);
    for (std::int32_t width = 1; width <= 33; ++width) {
        const std::int32_t height = 34 - width;
        for (std::size_t i = 0; i < std::size(kFactors); ++i) {
            const std::int32_t factor = kFactors[i];
            if (width / factor == 0 || height / factor == 0) continue;
            Picture small(width / factor, height / factor);
            small.randomize(random, 0.0f, 1.0f);
            CheckEnlargement(small, {width, height}, kRadii[i], 1.0);
        }
    }
}

TEST(EnlargedRows, HoldForLargeOddSizesAndEveryRadius) {
    Random random(21);
    for (std::int32_t radius = 0; radius <= 9; ++radius) {
        Picture small(31, 13);
        small.randomize(random, -3.0f, 20.0f);
        CheckEnlargement(small, {127, 53}, radius, 20.0);
    }
}

TEST(EnlargedRows, TheLargestColourOfARowIsThatOfItsPixels) {
    Random random(23);
    for (const float low : {-3.0f, 0.0f}) {
        Picture small(11, 7);
        small.randomize(random, low, low + 2.5f);
        for (const simd::Level level : KernelLevels()) {
            EnlargedRows rows(*simd::KernelsOf(level), small.view(), 45, 31, 4);
            const Picture picture = ReadAll(rows, {45, 31}, 8);
            for (std::int32_t y = 0; y < 31; ++y) {
                const float limit = rows.colourLimit(y);
                EXPECT_EQ(rows.prepare(y), rows.alike(y));
                float want = -100.0f;
                for (std::int32_t x = 0; x < 45; ++x) {
                    for (std::int32_t c = kRed; c <= kBlue; ++c) {
                        want = std::max(want, picture.at(x, y, c));
                    }
                }
                EXPECT_EQ(rows.largestColour(y, -100.0f), want) << simd::LevelName(level);
                EXPECT_EQ(rows.largestColour(y, 100.0f), 100.0f);
                EXPECT_LE(want, limit) << simd::LevelName(level);
            }
        }
    }
}

TEST(EnlargedRows, TheLimitOfARowIsTheLargestColourThatItIsMadeOf) {
    Picture small(8, 20);
    small.fill(0.25f);
    small.set(3, 10, {9.0f, 0.5f, 1.5f, 0.75f});  // alpha does not count
    for (const simd::Level level : KernelLevels()) {
        EnlargedRows rows(*simd::KernelsOf(level), small.view(), 32, 80, 3);
        EXPECT_EQ(rows.colourLimit(0), 0.25f);
        EXPECT_EQ(rows.colourLimit(42), 1.5f);
        EXPECT_EQ(rows.colourLimit(79), 0.25f);
    }
}

TEST(EnlargedRows, FlatImagesStayFlatToTheBit) {
    Picture small(12, 9);
    small.fill(0.7f);
    Picture want(49, 37);
    want.fill(0.7f);
    for (const simd::Level level : KernelLevels()) {
        EnlargedRows rows(*simd::KernelsOf(level), small.view(), 49, 37, 4);
        EXPECT_TRUE(SamePixels(ReadAll(rows, {49, 37}, 7), want)) << simd::LevelName(level);
    }
}

TEST(EnlargedRows, RowsWithoutLightBetweenRowsWithSomeAreZero) {
    Picture small(6, 20);
    small.fill(0.0f);
    small.set(2, 1, {0.0f, 1.0f, 2.0f, 3.0f});
    small.set(4, 17, {0.0f, 3.0f, 2.0f, 1.0f});
    for (const simd::Level level : KernelLevels()) {
        EnlargedRows rows(*simd::KernelsOf(level), small.view(), 24, 80, 4);
        const Picture got = ReadAll(rows, {24, 80}, 24);
        const Picture want = PlainEnlargement(small, {24, 80}, 4);
        EXPECT_TRUE(NearPixels(got, want, 1e-6, 3.0)) << simd::LevelName(level);
        for (std::int32_t x = 0; x < 24; ++x) {
            for (std::int32_t c = 0; c < kChannels; ++c) EXPECT_EQ(got.at(x, 40, c), 0.0f);
        }
    }
}

TEST(EnlargedRows, WithoutSmoothingAreTheNearestSamples) {
    Random random(22);
    Picture small(11, 7);
    small.randomize(random, -1.0f, 9.0f);
    Picture want(45, 31);
    ExpandNearest(small.view(), want.view());
    for (const simd::Level level : KernelLevels()) {
        EnlargedRows rows(*simd::KernelsOf(level), small.view(), 45, 31, 0);
        EXPECT_TRUE(SamePixels(ReadAll(rows, {45, 31}, 8), want)) << simd::LevelName(level);
    }
}

TEST(EnlargementTaps, EveryPositionsWeightsAddUpToTheDivisor) {
    for (std::int32_t size = 1; size <= 70; ++size) {
        for (std::int32_t sourceSize = 1; sourceSize <= size; sourceSize += 3) {
            const EnlargementTaps taps = MakeEnlargementTaps(size, sourceSize, 4);
            for (std::int32_t i = 0; i < size; ++i) {
                const auto at = static_cast<std::size_t>(i);
                EXPECT_GE(taps.first[at], 0);
                EXPECT_LE(taps.first[at] + taps.count, sourceSize);
                double sum = 0.0;
                for (std::int32_t t = 0; t < taps.count; ++t) {
                    sum += taps.weights[at * static_cast<std::size_t>(taps.count) +
                                        static_cast<std::size_t>(t)];
                }
                EXPECT_EQ(sum, taps.divisor) << size << ", " << sourceSize << ", " << i;
            }
        }
    }
}

}  // namespace
}  // namespace vireon::test
