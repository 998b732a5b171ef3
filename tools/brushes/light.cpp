#include "tools/brushes/light.h"

#include "tools/brushes/series.h"

namespace vireon::brushes {

double Glow(Position p, double sigma, double share) {
    constexpr double kTwoPi = 6.283185307179586476925;
    return share / (kTwoPi * sigma * sigma) * Spot(p, {0.0, 0.0}, sigma);
}

double RimFade(Position p, double from) {
    return 1.0 - SmoothRamp(from, 1.0, Distance(p));
}

double Ring(Position p, Position centre, double radius, double sigma) {
    const Position off{Distance({p.x - centre.x, p.y - centre.y}) - radius, 0.0};
    return 0.8 * Spot(off, {0.0, 0.0}, sigma) + 0.2 * Spot(off, {0.0, 0.0}, 2.2 * sigma);
}

double Disc(Position p, Position centre, double radius, double softness) {
    const double distance = Distance({p.x - centre.x, p.y - centre.y});
    return 1.0 - SmoothRamp(radius - softness, radius + softness, distance);
}

}  // namespace vireon::brushes
