#pragma once

/// What `Exp2` and its vector form share, so that they cannot differ: the Taylor series of 2^f - 1
/// in single precision, f between -1/2 and 1/2, without its first factor f.
namespace vireon::exp2f {

inline constexpr int kCount = 7;
/// ln(2)^k / k!, k from 1.
inline constexpr float kTerms[kCount] = {
    6.93147180559945309417e-1f, 2.40226506959100712334e-1f, 5.55041086648215799531e-2f,
    9.61812910762847716198e-3f, 1.33335581464284434234e-3f, 1.54035303933816099544e-4f,
    1.52527338040598402800e-5f,
};
/// Adding it and taking it off again rounds a float below 2^22 to a whole number, halves to even.
inline constexpr float kRounder = 12582912.0f;

}  // namespace vireon::exp2f
