#include "tools/brushes/strokes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tools/brushes/light.h"

namespace vireon::brushes {
namespace {

const Drawing::Line kBent{{{-0.5, 0.0}, {0.0, 0.0}, 0.05, 0.04, 1.0, 0.8},
                          {{0.0, 0.0}, {0.0, 0.5}, 0.04, 0.02, 0.8, 0.3}};

TEST(Strokes, LineProfileIsOneOnTheLineAndFalls) {
    EXPECT_DOUBLE_EQ(LineProfile(0.0), 1.0);
    double before = 1.0;
    for (double q = 0.1; q < 100.0; q += 0.1) {
        EXPECT_LT(LineProfile(q), before) << q;
        before = LineProfile(q);
    }
}

TEST(Strokes, SigmaAndLevelChangeAlongTheStroke) {
    const Stroke stroke{{0.0, 0.0}, {1.0, 0.0}, 0.1, 0.2, 1.0, 0.5};
    EXPECT_DOUBLE_EQ(StrokeIntensity(stroke, {0.0, 0.0}), 1.0);
    EXPECT_DOUBLE_EQ(StrokeIntensity(stroke, {0.5, 0.0}), 0.75);
    EXPECT_DOUBLE_EQ(StrokeIntensity(stroke, {1.0, 0.0}), 0.5);
    EXPECT_DOUBLE_EQ(StrokeIntensity(stroke, {1.0, 0.2}), 0.5 * LineProfile(1.0));
    EXPECT_DOUBLE_EQ(StrokeIntensity(stroke, {-0.1, 0.0}), LineProfile(1.0));
}

// What a drawing leaves out for speed must not be missed.
TEST(Drawing, OfOneLineIsItsBrightestStroke) {
    const Drawing drawing({kBent});
    for (double y = -1.0; y <= 1.0; y += 0.013) {
        for (double x = -1.0; x <= 1.0; x += 0.017) {
            const double expected =
                std::max(StrokeIntensity(kBent[0], {x, y}), StrokeIntensity(kBent[1], {x, y}));
            ASSERT_NEAR(drawing.intensity({x, y}), expected, 1e-6) << x << ", " << y;
        }
    }
}

TEST(Drawing, LinesThatMeetAreHardlyBrighterThanTheBrighter) {
    const Stroke stroke{{-0.5, 0.0}, {0.5, 0.0}, 0.05, 0.05, 1.0, 1.0};
    const Stroke crossing{{0.0, -0.5}, {0.0, 0.5}, 0.05, 0.05, 1.0, 1.0};
    const Drawing drawing({{stroke}, {crossing}});
    EXPECT_NEAR(drawing.intensity({0.3, 0.0}), 1.0, 1e-9);
    EXPECT_NEAR(drawing.intensity({0.0, 0.0}), 1.0905, 1e-4);
}

// The share of a glow is its integral.
TEST(Light, GlowHoldsItsShare) {
    constexpr double kStep = 0.01;
    double sum = 0.0;
    for (int j = -150; j <= 150; ++j) {
        for (int i = -150; i <= 150; ++i) {
            sum += Glow({i * kStep, j * kStep}, 0.2, 0.3) * kStep * kStep;
        }
    }
    EXPECT_NEAR(sum, 0.3, 1e-6);
}

TEST(Light, RimFadeEndsAtTheRim) {
    EXPECT_EQ(RimFade({0.5, 0.0}, 0.6), 1.0);
    EXPECT_EQ(RimFade({0.0, 1.0}, 0.6), 0.0);
    EXPECT_EQ(RimFade({0.8, 0.8}, 0.6), 0.0);
    EXPECT_DOUBLE_EQ(RimFade({0.8, 0.0}, 0.6), 0.5);
}

TEST(Light, RingIsBrightestOnItsLine) {
    EXPECT_DOUBLE_EQ(Ring({0.5, 0.1}, {0.0, 0.1}, 0.5, 0.05), 1.0);
    EXPECT_LT(Ring({0.0, 0.0}, {0.0, 0.0}, 0.5, 0.05), 1e-3);
}

}  // namespace
}  // namespace vireon::brushes
