#include "image/exact_math.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "tests/unit/support/picture.h"

namespace vireon::test {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kSmallest = std::numeric_limits<float>::denorm_min();
constexpr float kLargest = std::numeric_limits<float>::max();

/// Distance between a result and the exact value, in units in the last place of a float of the
/// exact value's size. Exact values beyond the largest float count as 2^128, as infinity does, so
/// that rounding at the edge of the range is measured like everywhere else.
double UlpError(float got, long double exact) {
    const long double edge = 0x1p128L;
    const long double wanted = std::fabs(exact) > edge ? std::copysign(edge, exact) : exact;
    const long double value = std::isinf(got) ? std::copysign(edge, static_cast<long double>(got))
                                              : static_cast<long double>(got);
    int exponent = 0;
    std::frexp(wanted, &exponent);
    const int ulpExponent = std::max(std::min(exponent, 128) - 24, -149);
    return static_cast<double>(std::fabs(value - wanted) / std::ldexp(1.0L, ulpExponent));
}

/// Largest error over a sweep, and where it was.
class Worst {
  public:
    void add(double error, float x, float y = 0.0f) {
        ++count_;
        if (std::isnan(error) || error > error_) {
            error_ = error;
            x_ = x;
            y_ = y;
        }
    }
    double error() const { return error_; }
    void report(const char* name) const {
        std::printf("%s: largest error %.6f ulp at (%a, %a) of %ld values\n", name, error_,
                    static_cast<double>(x_), static_cast<double>(y_), count_);
        testing::Test::RecordProperty("ulp", std::to_string(error_));
    }

  private:
    double error_ = 0.0;
    float x_ = 0.0f;
    float y_ = 0.0f;
    long count_ = 0;
};

TEST(Exp2, IsWithinOneUlpOverTheWholeRange) {
    Worst worst;
    Random random(1);
    for (int step = -153 * 512; step <= 130 * 512; ++step) {
        const float x = static_cast<float>(step) / 512.0f + random.real(0.0f, 1.0f / 512.0f);
        worst.add(UlpError(Exp2(x), std::exp2(static_cast<long double>(x))), x);
    }
    for (int exponent = -149; exponent <= 7; ++exponent) {
        for (int i = 0; i < 200; ++i) {
            const float x = std::ldexp(random.real(1.0f, 2.0f), exponent);
            worst.add(UlpError(Exp2(x), std::exp2(static_cast<long double>(x))), x);
            worst.add(UlpError(Exp2(-x), std::exp2(static_cast<long double>(-x))), -x);
        }
    }
    worst.report("Exp2");
    EXPECT_LE(worst.error(), 1.0);
}

TEST(Exp2, WholeNumbersAreExact) {
    for (int n = -149; n <= 127; ++n) {
        EXPECT_EQ(Exp2(static_cast<float>(n)), std::ldexp(1.0f, n)) << n;
    }
}

TEST(Exp2, OverflowsToInfinityAndUnderflowsToZero) {
    EXPECT_EQ(Exp2(128.0f), kInfinity);
    EXPECT_EQ(Exp2(1e30f), kInfinity);
    EXPECT_EQ(Exp2(kInfinity), kInfinity);
    EXPECT_EQ(Exp2(-151.0f), 0.0f);
    EXPECT_EQ(Exp2(-1e30f), 0.0f);
    EXPECT_EQ(Exp2(-kInfinity), 0.0f);
    EXPECT_FALSE(std::signbit(Exp2(-kInfinity)));
    EXPECT_EQ(Exp2(-149.0f), kSmallest);
    EXPECT_TRUE(std::isfinite(Exp2(std::nextafter(128.0f, 0.0f))));
}

TEST(Exp2, NaNGivesNaNAndZeroGivesOne) {
    EXPECT_TRUE(std::isnan(Exp2(kNaN)));
    EXPECT_EQ(Exp2(0.0f), 1.0f);
    EXPECT_EQ(Exp2(-0.0f), 1.0f);
}

void AddPower(Worst& worst, float base, float exponent) {
    const long double exact =
        std::pow(static_cast<long double>(base), static_cast<long double>(exponent));
    worst.add(UlpError(Pow(base, exponent), exact), base, exponent);
}

TEST(Pow, IsWithinOneUlpForEveryExponentOfTheBase) {
    Worst worst;
    Random random(2);
    for (int binade = -149; binade <= 127; ++binade) {
        for (int i = 0; i < 20; ++i) {
            const float base = std::ldexp(random.real(1.0f, 2.0f), binade);
            for (int tenths = 1; tenths <= 100; ++tenths) {
                AddPower(worst, base, static_cast<float>(tenths) / 10.0f);
            }
        }
    }
    worst.report("Pow, all binades");
    EXPECT_LE(worst.error(), 1.0);
}

TEST(Pow, IsWithinOneUlpForLightAndAnyExponent) {
    Worst worst;
    Random random(3);
    for (int i = 0; i < 300000; ++i) {
        AddPower(worst, random.real(0.0f, 4.0f), random.real(0.01f, 10.0f));
    }
    for (int i = 0; i < 100000; ++i) {
        AddPower(worst, random.real(0.0f, 4.0f), random.real(-10.0f, 0.0f));
    }
    worst.report("Pow, light");
    EXPECT_LE(worst.error(), 1.0);
}

TEST(Pow, IsWithinOneUlpNearOneWhereTheLogarithmCancels) {
    Worst worst;
    const float exponents[] = {0.1f, 0.5f, 1.0f, 1.5f, 2.2f, 10.0f, 1e3f, 1e6f, 1e9f, -1.7f, -1e7f};
    float above = 1.0f;
    float below = 1.0f;
    for (int i = 0; i < 20000; ++i) {
        above = std::nextafter(above, 2.0f);
        below = std::nextafter(below, 0.0f);
        for (const float exponent : exponents) {
            AddPower(worst, above, exponent);
            AddPower(worst, below, exponent);
        }
    }
    worst.report("Pow, near 1");
    EXPECT_LE(worst.error(), 1.0);
}

TEST(Pow, IsWithinOneUlpForSubnormalBasesAndResults) {
    Worst worst;
    Random random(4);
    for (int i = 0; i < 50000; ++i) {
        const float base = std::ldexp(static_cast<float>(random.whole(1, 0x7FFFFF)), -149);
        AddPower(worst, base, random.real(0.05f, 1.1f));
        AddPower(worst, random.real(1e-6f, 1e-3f), random.real(6.0f, 16.0f));
    }
    worst.report("Pow, subnormal");
    EXPECT_LE(worst.error(), 1.0);
}

TEST(Pow, IsWithinOneUlpForNegativeBasesWithWholeExponents) {
    Worst worst;
    Random random(5);
    for (int i = 0; i < 50000; ++i) {
        AddPower(worst, -random.real(1e-3f, 1e3f), static_cast<float>(random.whole(-12, 12)));
    }
    worst.report("Pow, negative bases");
    EXPECT_LE(worst.error(), 1.0);
}

TEST(Pow, ExponentOneReturnsTheBase) {
    Random random(6);
    for (int i = 0; i < 10000; ++i) {
        const float base = random.real(-1e4f, 1e4f);
        EXPECT_EQ(Pow(base, 1.0f), base);
    }
}

struct PowerCase {
    float base;
    float exponent;
    float result;
};

void ExpectPower(const PowerCase& c) {
    const float got = Pow(c.base, c.exponent);
    if (std::isnan(c.result)) {
        EXPECT_TRUE(std::isnan(got)) << c.base << " ^ " << c.exponent << " = " << got;
        return;
    }
    EXPECT_EQ(got, c.result) << c.base << " ^ " << c.exponent;
    EXPECT_EQ(std::signbit(got), std::signbit(c.result)) << c.base << " ^ " << c.exponent;
}

TEST(Pow, AnythingToThePowerZeroIsOne) {
    for (const float base : {0.0f, -0.0f, 1.0f, -1.0f, 5.5f, -5.5f, kInfinity, -kInfinity, kNaN}) {
        ExpectPower({base, 0.0f, 1.0f});
        ExpectPower({base, -0.0f, 1.0f});
    }
}

TEST(Pow, OneToAnyPowerIsOne) {
    for (const float exponent : {0.5f, -3.0f, 1e30f, kInfinity, -kInfinity, kNaN}) {
        ExpectPower({1.0f, exponent, 1.0f});
    }
}

TEST(Pow, ZeroBases) {
    for (const PowerCase& c :
         {PowerCase{0.0f, 3.0f, 0.0f}, PowerCase{-0.0f, 3.0f, -0.0f}, PowerCase{0.0f, 2.0f, 0.0f},
          PowerCase{-0.0f, 2.0f, 0.0f}, PowerCase{0.0f, 0.5f, 0.0f}, PowerCase{-0.0f, 0.5f, 0.0f},
          PowerCase{0.0f, -3.0f, kInfinity}, PowerCase{-0.0f, -3.0f, -kInfinity},
          PowerCase{0.0f, -2.0f, kInfinity}, PowerCase{-0.0f, -2.0f, kInfinity},
          PowerCase{-0.0f, -0.5f, kInfinity}, PowerCase{0.0f, kInfinity, 0.0f},
          PowerCase{-0.0f, kInfinity, 0.0f}, PowerCase{-0.0f, -kInfinity, kInfinity}}) {
        ExpectPower(c);
    }
}

TEST(Pow, InfiniteExponents) {
    for (const PowerCase& c :
         {PowerCase{-1.0f, kInfinity, 1.0f}, PowerCase{-1.0f, -kInfinity, 1.0f},
          PowerCase{0.5f, kInfinity, 0.0f}, PowerCase{-0.5f, kInfinity, 0.0f},
          PowerCase{0.5f, -kInfinity, kInfinity}, PowerCase{-0.5f, -kInfinity, kInfinity},
          PowerCase{2.0f, kInfinity, kInfinity}, PowerCase{-2.0f, kInfinity, kInfinity},
          PowerCase{2.0f, -kInfinity, 0.0f}, PowerCase{-2.0f, -kInfinity, 0.0f}}) {
        ExpectPower(c);
    }
}

TEST(Pow, InfiniteBases) {
    for (const PowerCase& c :
         {PowerCase{kInfinity, 2.5f, kInfinity}, PowerCase{kInfinity, -2.5f, 0.0f},
          PowerCase{kInfinity, kInfinity, kInfinity}, PowerCase{kInfinity, -kInfinity, 0.0f},
          PowerCase{-kInfinity, 3.0f, -kInfinity}, PowerCase{-kInfinity, 2.0f, kInfinity},
          PowerCase{-kInfinity, 2.5f, kInfinity}, PowerCase{-kInfinity, -3.0f, -0.0f},
          PowerCase{-kInfinity, -2.0f, 0.0f}, PowerCase{-kInfinity, -2.5f, 0.0f},
          PowerCase{-kInfinity, kInfinity, kInfinity}, PowerCase{-kInfinity, -kInfinity, 0.0f}}) {
        ExpectPower(c);
    }
}

TEST(Pow, NegativeBaseWithAnExponentThatIsNoWholeNumberIsNaN) {
    for (const float exponent : {0.5f, -0.5f, 2.5f, 1e-10f, 8388607.5f, 4194304.5f}) {
        ExpectPower({-1.0f, exponent, kNaN});
        ExpectPower({-3.0f, exponent, kNaN});
        ExpectPower({-kSmallest, exponent, kNaN});
    }
}

TEST(Pow, SignOfANegativeBaseFollowsTheParityOfHugeExponents) {
    ExpectPower({-1.0f, 8388609.0f, -1.0f});
    ExpectPower({-1.0f, 16777215.0f, -1.0f});
    ExpectPower({-1.0f, 16777216.0f, 1.0f});
    ExpectPower({-1.0f, 1e20f, 1.0f});
    ExpectPower({-2.0f, 1e20f, kInfinity});
    ExpectPower({-2.0f, 8388609.0f, -kInfinity});
    ExpectPower({-0.5f, 8388609.0f, -0.0f});
}

TEST(Pow, NaNOtherwiseGivesNaN) {
    ExpectPower({kNaN, 1.0f, kNaN});
    ExpectPower({kNaN, -2.0f, kNaN});
    ExpectPower({kNaN, kInfinity, kNaN});
    ExpectPower({2.0f, kNaN, kNaN});
    ExpectPower({0.0f, kNaN, kNaN});
    ExpectPower({-1.0f, kNaN, kNaN});
    ExpectPower({kInfinity, kNaN, kNaN});
}

TEST(Pow, OverflowAndUnderflow) {
    ExpectPower({kLargest, 1.5f, kInfinity});
    ExpectPower({2.0f, 128.0f, kInfinity});
    ExpectPower({2.0f, 127.0f, 0x1p127f});
    ExpectPower({0.5f, 149.0f, kSmallest});
    ExpectPower({0.5f, 151.0f, 0.0f});
    ExpectPower({kSmallest, 1e30f, 0.0f});
    ExpectPower({kSmallest, -1e30f, kInfinity});
    ExpectPower({kLargest, -1e30f, 0.0f});
    ExpectPower({-kLargest, 3.0f, -kInfinity});
    ExpectPower({-kSmallest, 3.0f, -0.0f});
}

}  // namespace
}  // namespace vireon::test
