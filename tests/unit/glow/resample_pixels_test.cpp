#include "glow/resample_pixels.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>

#include <gtest/gtest.h>

#include "tests/unit/support/picture.h"

namespace vireon::test {
namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

/// Runs `check` with sources of many sizes and every reduction that Quality makes of them.
void OnEveryReduction(
    const std::function<void(const Picture& source, std::int32_t w, std::int32_t h)>& check) {
    Random random(110);
    for (std::int32_t width = 2; width <= 37; width += 3) {
        for (std::int32_t height = 2; height <= 23; height += 5) {
            for (const std::int32_t f : {2, 4, 8, 16}) {
                if (width / f == 0 || height / f == 0) continue;
                Picture source(width, height, width % 3, height % 2 == 0);
                source.randomize(random, -1.0f, 4.0f);
                check(source, width / f, height / f);
            }
        }
    }
}

/// Position of a destination pixel in the source, in single precision.
float PlaceIn(std::int32_t position, std::int32_t sourceSize, std::int32_t size) {
    return static_cast<float>(position) *
           (static_cast<float>(sourceSize) / static_cast<float>(size));
}

std::int32_t Nearest(std::int32_t position, std::int32_t sourceSize, std::int32_t size) {
    return std::min(static_cast<std::int32_t>(PlaceIn(position, sourceSize, size) + 0.5f),
                    sourceSize - 1);
}

TEST(ReduceNearest, TakesThePixelNearestToTheScaledPosition) {
    OnEveryReduction([](const Picture& source, std::int32_t w, std::int32_t h) {
        Picture got(w, h, 2);
        Picture want(w, h);
        ForEachFloat(want, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
            want.at(x, y, c) =
                source.at(Nearest(x, source.width(), w), Nearest(y, source.height(), h), c);
        });
        ReduceNearest(source.view(), got.view());
        EXPECT_TRUE(SamePixels(got, want)) << source.width() << 'x' << source.height();
    });
}

TEST(ExpandNearest, TakesThePixelNearestToTheScaledPosition) {
    OnEveryReduction([](const Picture& large, std::int32_t w, std::int32_t h) {
        Random random(111);
        Picture source(w, h, 1);
        source.randomize(random, -1.0f, 4.0f);
        Picture got(large.width(), large.height(), 2, true);
        Picture want(large.width(), large.height());
        ForEachFloat(want, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
            want.at(x, y, c) =
                source.at(Nearest(x, w, want.width()), Nearest(y, h, want.height()), c);
        });
        ExpandNearest(source.view(), got.view());
        EXPECT_TRUE(SamePixels(got, want)) << large.width() << 'x' << large.height();
    });
}

TEST(ReduceBilinear, InterpolatesAtTheScaledPositionWithoutAHalfPixelOffset) {
    for (const bool colourOnly : {false, true}) {
        OnEveryReduction([&](const Picture& source, std::int32_t w, std::int32_t h) {
            Picture got(w, h, 2);
            got.fill(9.0f);
            Picture want(w, h);
            ForEachFloat(want, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
                const float u = PlaceIn(x, source.width(), w);
                const float v = PlaceIn(y, source.height(), h);
                const auto left = static_cast<std::int32_t>(u);
                const auto top = static_cast<std::int32_t>(v);
                const std::int32_t right = std::min(left + 1, source.width() - 1);
                const std::int32_t bottom = std::min(top + 1, source.height() - 1);
                const auto fx = static_cast<double>(u) - left;
                const auto fy = static_cast<double>(v) - top;
                const auto at = [&](std::int32_t column, std::int32_t row) {
                    return static_cast<double>(source.at(column, row, c));
                };
                const double sum = (1.0 - fy) * ((1.0 - fx) * at(left, top) + fx * at(right, top)) +
                                   fy * ((1.0 - fx) * at(left, bottom) + fx * at(right, bottom));
                want.at(x, y, c) = colourOnly && c == kAlpha ? 0.0f : static_cast<float>(sum);
            });
            ReduceBilinear(source.view(), got.view(), colourOnly);
            EXPECT_TRUE(NearPixels(got, want, kRounding, 4.0))
                << source.width() << 'x' << source.height() << ' ' << w << 'x' << h;
        });
    }
}

TEST(ReduceBilinear, ExactMultiplesReadSinglePixels) {
    Picture source(16, 8);
    source.fill(kNaN);
    for (std::int32_t y = 0; y < 8; y += 4) {
        for (std::int32_t x = 0; x < 16; x += 4) {
            const auto value = static_cast<float>(x + 100 * y);
            source.set(x, y, {value, value, value, value});
        }
    }
    Picture got(4, 2);
    ReduceBilinear(source.view(), got.view(), false);
    ForEachFloat(got, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
        EXPECT_EQ(got.at(x, y, c), static_cast<float>(4 * x + 400 * y));
    });
}

TEST(Resample, FlatImagesStayFlat) {
    OnEveryReduction([](const Picture& shape, std::int32_t w, std::int32_t h) {
        Picture source(shape.width(), shape.height());
        source.fill(0.7f);
        Picture small(w, h);
        Picture want(w, h);
        want.fill(0.7f);
        ReduceBilinear(source.view(), small.view(), false);
        EXPECT_TRUE(NearPixels(small, want, kRounding));
        ReduceNearest(source.view(), small.view());
        EXPECT_TRUE(SamePixels(small, want));
        Picture large(shape.width(), shape.height());
        ExpandNearest(small.view(), large.view());
        EXPECT_TRUE(SamePixels(large, source));
    });
}

TEST(Resample, SameSizeIsACopy) {
    Random random(112);
    Picture source(9, 7, 1);
    source.randomize(random, -1.0f, 4.0f);
    Picture got(9, 7);
    ReduceNearest(source.view(), got.view());
    EXPECT_TRUE(SamePixels(got, source));
    got.fill(0.0f);
    ReduceBilinear(source.view(), got.view(), false);
    EXPECT_TRUE(SamePixels(got, source));
    got.fill(0.0f);
    ExpandNearest(source.view(), got.view());
    EXPECT_TRUE(SamePixels(got, source));
}

}  // namespace
}  // namespace vireon::test
