#pragma once

#include <vector>

namespace vireon::brushes {

/// A place in a shape, measured from its centre in radii of the shape: x to the right, y downwards,
/// the rim at distance 1.
struct Position {
    double x;
    double y;
};

/// Distance of `p` from the centre.
double Distance(Position p);

/// The point at `radius` from the centre in the direction `turns` (1 = a full circle, 0 = to the
/// right, growing clockwise as y points down).
Position Polar(double radius, double turns);

/// A straight line of light whose softness and level change evenly from one end to the other.
struct Stroke {
    Position from;
    Position to;
    double sigmaFrom;  ///< standard deviation of the cross profile at `from`, in radii, > 0
    double sigmaTo;    ///< the same at `to`, > 0
    double levelFrom;  ///< intensity on the line at `from`, >= 0
    double levelTo;    ///< intensity on the line at `to`, >= 0
};

/// Intensity of one stroke at `p`: level x exp(-d^2 / (2 sigma^2)), d the distance to the line,
/// level and sigma those of the nearest point of the line. Both ends are round.
double StrokeIntensity(const Stroke& stroke, Position p);

/// The brightest of the strokes at `p`; strokes that meet join without a bright knot.
double BrightestStroke(const std::vector<Stroke>& strokes, Position p);

/// A round spot of light, exp(-d^2 / (2 sigma^2)) of the distance from `centre`.
double Spot(Position p, Position centre, double sigma);

}  // namespace vireon::brushes
