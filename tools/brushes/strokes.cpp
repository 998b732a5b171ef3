#include "tools/brushes/strokes.h"

#include <algorithm>
#include <cmath>

#include "tools/brushes/series.h"

namespace vireon::brushes {

namespace {

// Beyond this exponent a profile adds less than a billionth of its peak.
constexpr double kNegligibleExponent = 21.0;

double Profile(double distanceSquared, double sigma) {
    const double exponent = distanceSquared / (2.0 * sigma * sigma);
    return exponent > kNegligibleExponent ? 0.0 : Exp(-exponent);
}

}  // namespace

double Distance(Position p) {
    return std::sqrt(p.x * p.x + p.y * p.y);
}

Position Polar(double radius, double turns) {
    return {radius * CosTurns(turns), radius * SinTurns(turns)};
}

double StrokeIntensity(const Stroke& stroke, Position p) {
    const double dx = stroke.to.x - stroke.from.x;
    const double dy = stroke.to.y - stroke.from.y;
    const double px = p.x - stroke.from.x;
    const double py = p.y - stroke.from.y;
    const double lengthSquared = dx * dx + dy * dy;
    const double along =
        lengthSquared > 0.0 ? std::clamp((px * dx + py * dy) / lengthSquared, 0.0, 1.0) : 0.0;
    const double ex = px - along * dx;
    const double ey = py - along * dy;
    const double sigma = stroke.sigmaFrom + along * (stroke.sigmaTo - stroke.sigmaFrom);
    const double level = stroke.levelFrom + along * (stroke.levelTo - stroke.levelFrom);
    return level * Profile(ex * ex + ey * ey, sigma);
}

double BrightestStroke(const std::vector<Stroke>& strokes, Position p) {
    double brightest = 0.0;
    for (const Stroke& stroke : strokes) {
        brightest = std::max(brightest, StrokeIntensity(stroke, p));
    }
    return brightest;
}

double Spot(Position p, Position centre, double sigma) {
    const double dx = p.x - centre.x;
    const double dy = p.y - centre.y;
    return Profile(dx * dx + dy * dy, sigma);
}

}  // namespace vireon::brushes
