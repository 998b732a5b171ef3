#include "tools/brushes/series.h"

#include <cmath>

namespace vireon::brushes {

namespace {

constexpr double kTwoPi = 6.283185307179586476925;

// sin(x) for |x| <= pi / 4 by the Taylor series up to x^19.
double SinSmall(double x) {
    const double x2 = x * x;
    double term = x;
    double sum = x;
    for (int n = 2; n <= 18; n += 2) {
        term = -term * x2 / (n * (n + 1));
        sum += term;
    }
    return sum;
}

// cos(x) for |x| <= pi / 4 by the Taylor series up to x^18.
double CosSmall(double x) {
    const double x2 = x * x;
    double term = 1.0;
    double sum = 1.0;
    for (int n = 1; n <= 17; n += 2) {
        term = -term * x2 / (n * (n + 1));
        sum += term;
    }
    return sum;
}

}  // namespace

double Exp(double x) {
    if (x < -700.0) {
        return 0.0;
    }
    // x = n ln 2 + r with |r| <= ln 2 / 2. ln 2 is split in two so that n times the first part is
    // exact.
    constexpr double kLog2E = 1.44269504088896340736;
    constexpr double kLn2High = 6.93147180369123816490e-01;
    constexpr double kLn2Low = 1.90821492927058770002e-10;
    const int n = static_cast<int>(std::floor(x * kLog2E + 0.5));
    const double r = (x - n * kLn2High) - n * kLn2Low;
    double sum = 1.0;
    for (int k = 14; k >= 1; --k) {
        sum = 1.0 + sum * r / k;
    }
    return std::ldexp(sum, n);
}

double SinTurns(double turns) {
    const double quarter = std::floor(turns * 4.0 + 0.5);
    const double angle = (turns - quarter * 0.25) * kTwoPi;
    switch (static_cast<int>(quarter - 4.0 * std::floor(quarter * 0.25))) {
        case 0: return SinSmall(angle);
        case 1: return CosSmall(angle);
        case 2: return -SinSmall(angle);
        default: return -CosSmall(angle);
    }
}

double CosTurns(double turns) {
    return SinTurns(turns + 0.25);
}

double SmoothRamp(double from, double to, double x) {
    if (x <= from) {
        return 0.0;
    }
    if (x >= to) {
        return 1.0;
    }
    const double t = (x - from) / (to - from);
    return t * t * t * (t * (t * 6.0 - 15.0) + 10.0);
}

}  // namespace vireon::brushes
