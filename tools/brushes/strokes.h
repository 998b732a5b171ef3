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

/// A round spot of light, exp(-d^2 / (2 sigma^2)) of the distance from `centre`.
double Spot(Position p, Position centre, double sigma);

/// The cross profile of a line of light, 1 in its middle: a Gaussian with a skirt of 2.3 times its
/// width at a fifth of its height, as a line without one would look drawn. `widthsSquared` is the
/// square of the distance from the line in standard deviations of the Gaussian.
double LineProfile(double widthsSquared);

/// A straight line of light whose softness and level change evenly from one end to the other.
struct Stroke {
    Position from;
    Position to;
    double sigmaFrom;  ///< standard deviation of the cross profile at `from`, in radii, > 0
    double sigmaTo;    ///< the same at `to`, > 0
    double levelFrom;  ///< intensity on the line at `from`, >= 0
    double levelTo;    ///< intensity on the line at `to`, >= 0
};

/// Intensity of one stroke at `p`: level x LineProfile, level and sigma those of the nearest point
/// of the line. Both ends are round.
double StrokeIntensity(const Stroke& stroke, Position p);

/// Strokes as one figure of light: where two meet the light is hardly more than that of the
/// brighter, without a bright knot and without a crease between them.
class Drawing {
  public:
    /// Strokes each of which begins where the one before ends, with its sigma and level.
    using Line = std::vector<Stroke>;

    explicit Drawing(const std::vector<Line>& lines);

    /// The light at `p`: of each line the brightest stroke, and of the lines the eighth root of the
    /// sum of the eighth powers.
    double intensity(Position p) const;

  private:
    struct Bounded {
        Line line;
        Position middle;
        double reachSquared;  // nothing of the line is further from its middle
    };

    std::vector<Bounded> lines_;
};

}  // namespace vireon::brushes
