#pragma once

namespace vireon {

/// Powers in single precision that give the same bits from every build: the C runtimes of the
/// systems round theirs differently. Both have a fixed order of operations.

/// 2 to the power `x`, within 1 unit in the last place, in single precision throughout: whole
/// frames go through it. Overflows to infinity, underflows gradually to 0; NaN gives NaN.
float Exp2(float x);

/// `base` to the power `exponent`, in double precision and rounded once, to within 0.501 units in
/// the last place; with the special cases of the C function of that name: anything to the power 0
/// and 1 to any power are 1, a negative base with an exponent that is no whole number is NaN.
float Pow(float base, float exponent);

}  // namespace vireon
