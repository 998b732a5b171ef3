#include "samples/canvas.h"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

#include "samples/random.h"

namespace vireon::scenes {
namespace {

constexpr Colour kWhite{1.0f, 1.0f, 1.0f};

// White light on the canvas in pixels.
double CoveredArea(const Canvas& canvas) {
    double sum = 0.0;
    for (int y = 0; y < canvas.height(); ++y) {
        for (int x = 0; x < canvas.width(); ++x) {
            sum += static_cast<double>(canvas.at(x, y).green);
        }
    }
    return sum;
}

TEST(Canvas, StartsBlackAndOpaque) {
    const Canvas canvas(3, 2);
    EXPECT_EQ(canvas.width(), 3);
    EXPECT_EQ(canvas.height(), 2);
    ASSERT_EQ(canvas.samples().size(), 24u);
    for (std::size_t i = 0; i < canvas.samples().size(); ++i) {
        EXPECT_EQ(canvas.samples()[i], i % 4 == 3 ? 1.0f : 0.0f);
    }
}

TEST(Canvas, RefusesImpossibleSizes) {
    EXPECT_THROW(Canvas(0, 5), std::invalid_argument);
    EXPECT_THROW(Canvas(5, -1), std::invalid_argument);
    EXPECT_THROW(Canvas(32769, 1), std::invalid_argument);
}

TEST(Canvas, RowsRunFromTheTopInRedGreenBlue) {
    Canvas canvas(3, 2);
    canvas.set(1, 1, {0.25f, 0.5f, 0.75f});
    EXPECT_EQ(canvas.samples()[(1 * 3 + 1) * 4 + 0], 0.25f);
    EXPECT_EQ(canvas.samples()[(1 * 3 + 1) * 4 + 1], 0.5f);
    EXPECT_EQ(canvas.samples()[(1 * 3 + 1) * 4 + 2], 0.75f);
}

TEST(Canvas, RectangleCoversPixelsByTheirShare) {
    Canvas canvas(4, 4);
    FillRectangle(canvas, {0.5, 1.0}, {2.25, 2.5}, kWhite);
    EXPECT_FLOAT_EQ(canvas.at(0, 1).red, 0.5f);
    EXPECT_FLOAT_EQ(canvas.at(1, 1).red, 1.0f);
    EXPECT_FLOAT_EQ(canvas.at(2, 1).red, 0.25f);
    EXPECT_FLOAT_EQ(canvas.at(2, 2).red, 0.125f);
    EXPECT_EQ(canvas.at(3, 1).red, 0.0f);
    EXPECT_EQ(canvas.at(0, 0).red, 0.0f);
    EXPECT_NEAR(CoveredArea(canvas), 1.75 * 1.5, 1e-6);
}

TEST(Canvas, FiguresCoverTheirArea) {
    const double pi = std::acos(-1.0);
    Canvas disc(64, 64);
    FillDisc(disc, {31.3, 32.7}, 20.0, kWhite);
    EXPECT_NEAR(CoveredArea(disc), pi * 400.0, 0.003 * pi * 400.0);

    Canvas ring(64, 64);
    DrawCircle(ring, {32.0, 32.0}, 20.0, 3.0, kWhite);
    EXPECT_NEAR(CoveredArea(ring), 2.0 * pi * 20.0 * 3.0, 0.005 * 2.0 * pi * 20.0 * 3.0);

    Canvas line(64, 64);
    DrawLine(line, {10.0, 10.0}, {40.0, 50.0}, 4.0, kWhite);
    const double lineArea = 50.0 * 4.0 + pi * 4.0;
    EXPECT_NEAR(CoveredArea(line), lineArea, 0.01 * lineArea);

    for (const bool turned : {false, true}) {
        Canvas triangle(64, 64);
        const Point a{5.0, 5.0};
        const Point b{55.0, 9.0};
        const Point c{20.0, 60.0};
        FillConvex(triangle, turned ? std::vector<Point>{a, c, b} : std::vector<Point>{a, b, c},
                   kWhite);
        const double area = 0.5 * (50.0 * 55.0 - 4.0 * 15.0);
        EXPECT_NEAR(CoveredArea(triangle), area, 0.01 * area);
    }
}

TEST(Canvas, DrawingOutsideDoesNothing) {
    Canvas canvas(8, 8);
    FillDisc(canvas, {-100.0, 4.0}, 20.0, kWhite);
    FillRectangle(canvas, {9.0, -50.0}, {400.0, 50.0}, kWhite);
    DrawLine(canvas, {-5.0, 90.0}, {90.0, 90.0}, 6.0, kWhite);
    AddSoftLight(canvas, {4.0, -30.0}, 10.0, kWhite);
    AddSoftLight(canvas, {4.0, 4.0}, 0.0, kWhite);
    canvas.blend(8, 0, kWhite, 1.0);
    canvas.add(-1, 0, kWhite);
    EXPECT_EQ(CoveredArea(canvas), 0.0);
    // Larger than the canvas: all of it is covered, nothing else is touched.
    FillDisc(canvas, {4.0, 4.0}, 1e6, kWhite);
    EXPECT_EQ(CoveredArea(canvas), 64.0);
}

TEST(Canvas, SoftLightAddsUpAndEndsAtItsRadius) {
    Canvas canvas(41, 41);
    AddSoftLight(canvas, {20.5, 20.5}, 10.0, {2.0f, 1.0f, 0.5f});
    AddSoftLight(canvas, {20.5, 20.5}, 10.0, {2.0f, 1.0f, 0.5f});
    EXPECT_FLOAT_EQ(canvas.at(20, 20).red, 4.0f);
    EXPECT_FLOAT_EQ(canvas.at(20, 20).blue, 1.0f);
    EXPECT_GT(canvas.at(25, 20).red, canvas.at(28, 20).red);
    EXPECT_EQ(canvas.at(30, 20).red, 0.0f);
}

TEST(Canvas, TransparentGroundKeepsStraightColour) {
    Canvas canvas(2, 1, Ground::kTransparent);
    EXPECT_EQ(canvas.alphaAt(0, 0), 0.0f);
    canvas.blend(0, 0, {0.8f, 0.4f, 0.2f}, 0.25);
    EXPECT_FLOAT_EQ(canvas.alphaAt(0, 0), 0.25f);
    EXPECT_FLOAT_EQ(canvas.at(0, 0).red, 0.8f);
    // Half of something else over it: 0.5 + 0.25 * 0.5 in all, 0.5 of that the new colour.
    canvas.blend(0, 0, {0.0f, 0.4f, 1.0f}, 0.5);
    EXPECT_FLOAT_EQ(canvas.alphaAt(0, 0), 0.625f);
    EXPECT_NEAR(canvas.at(0, 0).red, 0.8 * 0.125 / 0.625, 1e-6);
    EXPECT_FLOAT_EQ(canvas.at(0, 0).green, 0.4f);
    canvas.blend(0, 0, kWhite, 1.0);
    EXPECT_EQ(canvas.alphaAt(0, 0), 1.0f);
    EXPECT_FLOAT_EQ(canvas.at(0, 0).red, 1.0f);
    EXPECT_EQ(canvas.alphaAt(1, 0), 0.0f);
}

TEST(Random, IsEvenAndRepeats) {
    Random a(7);
    Random b(7);
    Random other(8);
    double sum = 0.0;
    int same = 0;
    for (int i = 0; i < 10000; ++i) {
        const double value = a.unit();
        ASSERT_GE(value, 0.0);
        ASSERT_LT(value, 1.0);
        ASSERT_EQ(value, b.unit());
        same += value == other.unit() ? 1 : 0;
        sum += value;
    }
    EXPECT_NEAR(sum / 10000.0, 0.5, 0.02);
    EXPECT_EQ(same, 0);
    // The first number of seed 0 of the mixing function (SplitMix64).
    EXPECT_EQ(Random(0).bits(), 0xE220A8397B1DCDAFu);
}

}  // namespace
}  // namespace vireon::scenes
