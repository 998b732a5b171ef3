#include "tools/vireon/samples.h"

#include <limits>

#include <gtest/gtest.h>

namespace vireon::tool {
namespace {

using headless::Picture;

TEST(Samples, QuantisedRoundsAndClamps) {
    EXPECT_EQ(Quantised(0.5, 255), 128u);
    EXPECT_EQ(Quantised(1.0, 32768), 32768u);
    EXPECT_EQ(Quantised(7.0, 32768), 32768u);
    EXPECT_EQ(Quantised(-0.25, 255), 0u);
    EXPECT_EQ(Quantised(std::numeric_limits<double>::quiet_NaN(), 255), 0u);
    EXPECT_EQ(Quantised(std::numeric_limits<double>::infinity(), 255), 255u);
    EXPECT_EQ(Quantised(-std::numeric_limits<double>::infinity(), 255), 0u);
}

TEST(Samples, AssociationGoesBothWays) {
    const Color straight{0.5, 1.0, 0.25, 0.5};
    EXPECT_EQ(Associated(straight), (Color{0.25, 0.5, 0.125, 0.5}));
    EXPECT_EQ(Straight(Associated(straight)), straight);
    EXPECT_EQ(Straight({0.3, 0.2, 0.1, 0.0}), (Color{0.3, 0.2, 0.1, 0.0}));
}

TEST(Samples, PixelsAreAlphaFirst) {
    Picture picture(2, 1, 8);
    SetPixel(picture, 1, 0, {1.0, 0.0, 0.2, 0.6});
    const std::uint8_t* const row = picture.row<std::uint8_t>(0);
    EXPECT_EQ(row[4], 153);
    EXPECT_EQ(row[5], 255);
    EXPECT_EQ(row[6], 0);
    EXPECT_EQ(row[7], 51);
    EXPECT_EQ(PixelAt(picture, 1, 0), (Color{1.0, 0.0, 0.2, 0.6}));
    EXPECT_EQ(PixelAt(picture, 0, 0), (Color{0, 0, 0, 0}));
}

TEST(Samples, SixteenBitsGoTo32768) {
    Picture picture(1, 1, 16);
    SetPixel(picture, 0, 0, {1.0, 0.5, 0.0, 2.0});
    const std::uint16_t* const row = picture.row<std::uint16_t>(0);
    EXPECT_EQ(row[0], 32768);
    EXPECT_EQ(row[1], 32768);
    EXPECT_EQ(row[2], 16384);
    EXPECT_EQ(row[3], 0);
}

TEST(Samples, FloatsKeepOverbrightAndNegativeLight) {
    Picture picture(1, 1, 32);
    SetPixel(picture, 0, 0, {7.5, -1.0, 0.0, 1.0});
    EXPECT_EQ(PixelAt(picture, 0, 0), (Color{7.5, -1.0, 0.0, 1.0}));
}

TEST(Reduced, AveragesBoxesAndRoundsTheSizeUp) {
    Picture picture(5, 3, 32);
    for (std::int32_t y = 0; y < 3; ++y) {
        for (std::int32_t x = 0; x < 5; ++x) {
            SetPixel(picture, x, y, {static_cast<double>(x), static_cast<double>(y), 1.0, 1.0});
        }
    }
    const Picture half = Reduced(picture, 2);
    ASSERT_EQ(half.width, 3);
    ASSERT_EQ(half.height, 2);
    EXPECT_EQ(PixelAt(half, 0, 0), (Color{0.5, 0.5, 1.0, 1.0}));
    EXPECT_EQ(PixelAt(half, 1, 0), (Color{2.5, 0.5, 1.0, 1.0}));
    EXPECT_EQ(PixelAt(half, 2, 0), (Color{4.0, 0.5, 1.0, 1.0}));
    EXPECT_EQ(PixelAt(half, 2, 1), (Color{4.0, 2.0, 1.0, 1.0}));
    EXPECT_EQ(Reduced(picture, 1), picture);
    EXPECT_EQ(Reduced(picture, 10).width, 1);
}

TEST(Reduced, TransparentPixelsHaveNoSayInTheColour) {
    Picture picture(2, 2, 32);
    SetPixel(picture, 0, 0, {1.0, 0.0, 0.0, 1.0});
    SetPixel(picture, 1, 0, {0.0, 1.0, 0.0, 0.0});
    SetPixel(picture, 0, 1, {0.0, 0.0, 1.0, 1.0});
    SetPixel(picture, 1, 1, {0.0, 1.0, 0.0, 0.0});
    EXPECT_EQ(PixelAt(Reduced(picture, 2), 0, 0), (Color{0.5, 0.0, 0.5, 0.5}));
    Picture clear(2, 1, 32);
    SetPixel(clear, 0, 0, {1.0, 0.0, 0.0, 0.0});
    SetPixel(clear, 1, 0, {0.0, 1.0, 0.0, 0.0});
    EXPECT_EQ(PixelAt(Reduced(clear, 2), 0, 0), (Color{0.5, 0.5, 0.0, 0.0}));
}

}  // namespace
}  // namespace vireon::tool
