#include "image/exact_math.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include "image/exp2_terms.h"

namespace vireon {
namespace {

// ln(2)^k / k!, the Taylor series of 2^f. At |f| <= 1/2 the first term left out is below 2^-46.
constexpr double kExp2Terms[] = {
    1.0,
    6.93147180559945309417e-1,
    2.40226506959100712334e-1,
    5.55041086648215799531e-2,
    9.61812910762847716198e-3,
    1.33335581464284434234e-3,
    1.54035303933816099544e-4,
    1.52527338040598402800e-5,
    1.32154867901443094884e-6,
    1.01780860092396997275e-7,
    7.05491162080112332988e-9,
    4.44553827187081149760e-10,
};

// 2 / (ln(2) (2k + 1)): log2(m) = sum of term[k] s^(2k+1) with s = (m - 1) / (m + 1). With m
// between sqrt(1/2) and sqrt(2), |s| < 0.1716 and the first term left out is below 2^-52 of the
// sum.
constexpr double kLog2Terms[] = {
    2.88539008177792681472e+0, 9.61796693925975604907e-1, 5.77078016355585362944e-1,
    4.12198583111132402103e-1, 3.20598897975325201636e-1, 2.62308189252538801338e-1,
    2.21953083213686678055e-1, 1.92359338785195120981e-1, 1.69728828339878047925e-1,
    1.51862635883048779722e-1,
};

template <std::size_t kCount>
double Horner(const double (&terms)[kCount], double x) {
    double sum = terms[kCount - 1];
    for (std::size_t k = kCount - 1; k-- > 0;) sum = sum * x + terms[k];
    return sum;
}

// 2^n for n in the range of normal doubles.
double PowerOfTwo(std::int64_t n) {
    return std::bit_cast<double>(static_cast<std::uint64_t>(n + 1023) << 52);
}

// 2^x for |x| <= 1000; the caller rounds to single precision.
double Exp2Double(double x) {
    const auto whole = static_cast<std::int64_t>(x < 0.0 ? x - 0.5 : x + 0.5);
    const double fraction = x - static_cast<double>(whole);
    return Horner(kExp2Terms, fraction) * PowerOfTwo(whole);
}

// log2 of a positive, finite float.
double Log2Double(float value) {
    const auto bits = std::bit_cast<std::uint64_t>(static_cast<double>(value));
    auto exponent = static_cast<std::int64_t>(bits >> 52) - 1023;
    auto mantissa = std::bit_cast<double>((bits & 0x000FFFFFFFFFFFFFu) | 0x3FF0000000000000u);
    if (mantissa > 1.41421356237309504880) {
        mantissa *= 0.5;
        ++exponent;
    }
    const double s = (mantissa - 1.0) / (mantissa + 1.0);
    return static_cast<double>(exponent) + s * Horner(kLog2Terms, s * s);
}

// Rounding 2^x to single precision: beyond these bounds every result is infinite or zero.
float RoundedExp2(double x) {
    if (x >= 129.0) return std::numeric_limits<float>::infinity();
    if (x <= -151.0) return 0.0f;
    return static_cast<float>(Exp2Double(x));
}

// 2^n for n in the range of normal floats.
float SinglePowerOfTwo(std::int32_t n) {
    return std::bit_cast<float>(static_cast<std::uint32_t>(n + 127) << 23);
}

bool IsWhole(float value) {
    return std::trunc(value) == value;
}

bool IsOdd(float value) {
    // Floats of 2^24 and more are all even.
    return IsWhole(value) && std::fabs(value) < 16777216.0f &&
           (static_cast<std::int64_t>(value) & 1) != 0;
}

}  // namespace

float Exp2(float x) {
    if (std::isnan(x)) return x;
    if (x >= 128.0f) return std::numeric_limits<float>::infinity();
    if (x <= -151.0f) return 0.0f;
    // Adding and taking off 1.5 x 2^23 rounds to a whole number.
    const float whole = (x + exp2f::kRounder) - exp2f::kRounder;
    const float f = x - whole;
    float tail = exp2f::kTerms[exp2f::kCount - 1];
    for (int k = exp2f::kCount - 2; k >= 1; --k) tail = tail * f + exp2f::kTerms[k];
    // 1 + linear, with what the addition rounds away kept for the tail.
    const float linear = f * exp2f::kTerms[0];
    const float head = 1.0f + linear;
    const float lost = linear - (head - 1.0f);
    const float power = head + ((f * f) * tail + lost);
    // In two steps, so that results too small for a normal float are rounded once.
    const auto n = static_cast<std::int32_t>(whole);
    const std::int32_t half = n >> 1;
    return power * SinglePowerOfTwo(half) * SinglePowerOfTwo(n - half);
}

float Pow(float base, float exponent) {
    if (exponent == 0.0f || base == 1.0f) return 1.0f;
    if (std::isnan(base) || std::isnan(exponent)) return std::numeric_limits<float>::quiet_NaN();

    const float magnitude = std::fabs(base);
    if (std::isinf(exponent)) {
        if (magnitude == 1.0f) return 1.0f;
        return (magnitude > 1.0f) == (exponent > 0.0f) ? std::numeric_limits<float>::infinity()
                                                       : 0.0f;
    }
    const bool negative = std::signbit(base) && IsOdd(exponent);
    if (magnitude == 0.0f || std::isinf(magnitude)) {
        const bool vanishes = (magnitude == 0.0f) == (exponent > 0.0f);
        const float limit = vanishes ? 0.0f : std::numeric_limits<float>::infinity();
        return negative ? -limit : limit;
    }
    if (base < 0.0f && !IsWhole(exponent)) return std::numeric_limits<float>::quiet_NaN();

    const float power = RoundedExp2(static_cast<double>(exponent) * Log2Double(magnitude));
    return negative ? -power : power;
}

}  // namespace vireon
