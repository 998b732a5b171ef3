#include "tools/vireon/pixel_aspect.h"

#include <cmath>

namespace vireon::tool {

headless::Ratio PixelAspectRatio(double aspect) {
    constexpr double kMaxDenominator = 1000;
    constexpr double kMaxAspect = 1000;
    if (!(aspect >= 1 / kMaxAspect && aspect <= kMaxAspect)) {
        return {};
    }
    // Files hold single floats; an error below that is none.
    const double tolerance = aspect * 1e-6;
    // Continued fraction: each convergent is the best ratio for its denominator.
    double numerator = std::floor(aspect);
    double denominator = 1;
    double previousNumerator = 1;
    double previousDenominator = 0;
    double rest = aspect - numerator;
    while (std::abs(numerator / denominator - aspect) > tolerance) {
        const double inverse = 1 / rest;
        const double term = std::floor(inverse);
        const double nextNumerator = term * numerator + previousNumerator;
        const double nextDenominator = term * denominator + previousDenominator;
        if (nextDenominator > kMaxDenominator) {
            break;
        }
        previousNumerator = numerator;
        previousDenominator = denominator;
        numerator = nextNumerator;
        denominator = nextDenominator;
        rest = inverse - term;
    }
    if (numerator < 1) {
        return {1, static_cast<std::uint32_t>(std::lround(1 / aspect))};
    }
    return {static_cast<std::int32_t>(numerator), static_cast<std::uint32_t>(denominator)};
}

}  // namespace vireon::tool
