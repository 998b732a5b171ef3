#pragma once

namespace vireon {

/// Powers in single precision that give the same bits from every build: the C runtimes of the
/// systems round theirs differently. Both work in double precision with a fixed order of
/// operations and round once, to within 0.501 units in the last place of the exact result.

/// 2 to the power `x`. Overflows to infinity, underflows gradually to 0; NaN gives NaN.
float Exp2(float x);

/// `base` to the power `exponent`, with the special cases of the C function of that name: anything
/// to the power 0 and 1 to any power are 1, a negative base with an exponent that is no whole
/// number is NaN.
float Pow(float base, float exponent);

}  // namespace vireon
