#pragma once

#include "tools/brushes/strokes.h"

namespace vireon::brushes {

/// The parts that shapes are put together from. Each is a density of light over the shape's disc of
/// radius 1; where a `share` is asked for, the part's integral over the plane is that share, so
/// that the shares of a shape add up to about 1.

/// A round spot of light with a Gaussian profile; `sigma` in radii, > 0.
double Glow(Position p, double sigma, double share);

/// 1 inside `from`, smoothly down to 0 at the rim (distance 1), 0 beyond. 0 <= `from` < 1.
double RimFade(Position p, double from);

/// A soft circle round `centre`: `radius` of its brightest line, `sigma` of its cross profile, both
/// in radii of the shape. The profile has wider wings at a fifth of its height, as the circles that
/// a lens throws have. 1 on the line.
double Ring(Position p, Position centre, double radius, double sigma);

/// A round patch of even light, 1 inside, smoothly down to 0 from `radius` - `softness` to
/// `radius` + `softness` around `centre`.
double Disc(Position p, Position centre, double radius, double softness);

}  // namespace vireon::brushes
