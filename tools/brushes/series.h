#pragma once

namespace vireon::brushes {

/// Elementary functions from + - * / and exact power-of-two scaling only. The C library's exp and
/// sin differ in the last bit from one system to the next; the brush files must not.

/// e^x. Relative error below 1e-14; 0 for x below -700. Larger arguments than 700 are not expected.
double Exp(double x);

/// Sine of an angle in turns (1 = a full circle), any finite value. Absolute error below 1e-13.
double SinTurns(double turns);

/// Cosine of an angle in turns (1 = a full circle), any finite value. Absolute error below 1e-13.
double CosTurns(double turns);

/// 0 at or below `from`, 1 at or above `to`, between them the fifth-degree curve whose first and
/// second derivatives vanish at both ends. `from` < `to`.
double SmoothRamp(double from, double to, double x);

}  // namespace vireon::brushes
