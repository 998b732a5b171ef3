#include "tools/brushes/series.h"

#include <gtest/gtest.h>

#include <cmath>

namespace vireon::brushes {
namespace {

TEST(Series, ExpAgreesWithTheLibrary) {
    for (double x = -60.0; x <= 20.0; x += 0.0371) {
        EXPECT_NEAR(Exp(x) / std::exp(x), 1.0, 1e-14) << x;
    }
    EXPECT_EQ(Exp(0.0), 1.0);
    EXPECT_EQ(Exp(-701.0), 0.0);
}

TEST(Series, SineAndCosineAgreeWithTheLibrary) {
    const double twoPi = 2.0 * std::acos(-1.0);
    for (double turns = -3.0; turns <= 3.0; turns += 0.00713) {
        EXPECT_NEAR(SinTurns(turns), std::sin(twoPi * turns), 1e-13) << turns;
        EXPECT_NEAR(CosTurns(turns), std::cos(twoPi * turns), 1e-13) << turns;
    }
}

TEST(Series, QuarterTurnsAreExact) {
    EXPECT_EQ(SinTurns(0.0), 0.0);
    EXPECT_EQ(SinTurns(0.25), 1.0);
    EXPECT_EQ(SinTurns(0.5), 0.0);
    EXPECT_EQ(CosTurns(0.0), 1.0);
    EXPECT_EQ(CosTurns(-0.5), -1.0);
}

TEST(Series, SmoothRampRisesFromZeroToOne) {
    EXPECT_EQ(SmoothRamp(2.0, 4.0, 2.0), 0.0);
    EXPECT_EQ(SmoothRamp(2.0, 4.0, 4.0), 1.0);
    EXPECT_DOUBLE_EQ(SmoothRamp(2.0, 4.0, 3.0), 0.5);
    double before = 0.0;
    for (double x = 2.0; x <= 4.0; x += 0.01) {
        const double now = SmoothRamp(2.0, 4.0, x);
        EXPECT_GE(now, before) << x;
        before = now;
    }
}

}  // namespace
}  // namespace vireon::brushes
