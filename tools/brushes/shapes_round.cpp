#include <algorithm>
#include <array>

#include "tools/brushes/light.h"
#include "tools/brushes/series.h"
#include "tools/brushes/shapes.h"

// The shapes made of circles.

namespace vireon::brushes {

namespace {

constexpr Position kCentre{0.0, 0.0};

}  // namespace

// A true soft core whose light runs out in a long smooth tail: three bells one inside the other, so
// that each halving of the light takes further than the one before.
double Gaussian(Position p) {
    const double light = Glow(p, 0.115, 0.06) + Glow(p, 0.20, 0.43) + Glow(p, 0.36, 0.51);
    return light * RimFade(p, 0.60);
}

// A ring around the light, with a breath of light inside it and a soft spot in the middle.
double Hoop(Position p) {
    const double veil = Glow(p, 0.15, 0.11) + Glow(p, 0.30, 0.25);
    return veil * RimFade(p, 0.50) + 0.60 * Ring(p, kCentre, 0.655, 0.083) * RimFade(p, 0.80);
}

// A dense round body, even across and soft at its edge.
double Mass(Position p) {
    return Disc(p, kCentre, 0.60, 0.30) + Glow(p, 0.30, 0.04);
}

// What a lens makes of a light: rings around it, and a chain of ghosts on a slanting axis.
double Spectacle(Position p) {
    struct Ghost {
        double place;  // along the axis, from the centre
        double radius;
        double level;
    };
    static constexpr std::array<Ghost, 6> kGhosts{{{-0.74, 0.15, 0.26},
                                                   {-0.47, 0.085, 0.34},
                                                   {-0.25, 0.050, 0.30},
                                                   {0.29, 0.065, 0.30},
                                                   {0.54, 0.120, 0.26},
                                                   {0.79, 0.090, 0.34}}};
    // The chain lies along this direction.
    static const Position kAxis = Polar(1.0, 0.09);
    double light = (Glow(p, 0.13, 0.08) + Glow(p, 0.30, 0.36)) * RimFade(p, 0.50) +
                   0.42 * Ring(p, kCentre, 0.40, 0.055) + 0.30 * Ring(p, kCentre, 0.63, 0.060) +
                   0.17 * Ring(p, kCentre, 0.86, 0.050);
    for (const Ghost& ghost : kGhosts) {
        const Position centre{ghost.place * kAxis.x, ghost.place * kAxis.y};
        light += ghost.level * (0.75 * Disc(p, centre, ghost.radius, 0.045) +
                                0.35 * Ring(p, centre, ghost.radius, 0.030));
    }
    return light * RimFade(p, 0.86);
}

// A cone: light that falls in a straight line from the centre to the rim.
double Tent(Position p) {
    return std::max(0.0, 1.0 - Distance(p));
}

}  // namespace vireon::brushes
