#include "tools/brushes/strokes.h"

#include <algorithm>
#include <cmath>

#include "tools/brushes/series.h"

namespace vireon::brushes {

namespace {

// Beyond this exponent a profile adds less than a millionth of its peak.
constexpr double kNegligibleExponent = 14.0;

constexpr double kSkirtShare = 0.22;
constexpr double kSkirtWidth = 2.3;

double Bell(double exponent) {
    return exponent > kNegligibleExponent ? 0.0 : Exp(-exponent);
}

// What the nearest point of a stroke gives to a place.
struct Nearest {
    double widthsSquared;
    double level;
};

Nearest NearestOf(const Stroke& stroke, Position p) {
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
    return {(ex * ex + ey * ey) / (sigma * sigma), level};
}

double BrightestOf(const Drawing::Line& line, Position p) {
    double brightest = 0.0;
    Nearest best{0.0, 0.0};
    for (const Stroke& stroke : line) {
        const Nearest nearest = NearestOf(stroke, p);
        // The profile falls at least as fast as its skirt, and ln(x) <= x - 1: most strokes are
        // seen to be dimmer without an exponential.
        const double drop =
            (nearest.widthsSquared - best.widthsSquared) / (2.0 * kSkirtWidth * kSkirtWidth);
        if (drop >= 0.0 && nearest.level - best.level <= drop * best.level) {
            continue;
        }
        const double light = nearest.level * LineProfile(nearest.widthsSquared);
        if (light > brightest) {
            brightest = light;
            best = nearest;
        }
    }
    return brightest;
}

}  // namespace

double Distance(Position p) {
    return std::sqrt(p.x * p.x + p.y * p.y);
}

Position Polar(double radius, double turns) {
    return {radius * CosTurns(turns), radius * SinTurns(turns)};
}

double Spot(Position p, Position centre, double sigma) {
    const double dx = p.x - centre.x;
    const double dy = p.y - centre.y;
    return Bell((dx * dx + dy * dy) / (2.0 * sigma * sigma));
}

double LineProfile(double widthsSquared) {
    return (1.0 - kSkirtShare) * Bell(0.5 * widthsSquared) +
           kSkirtShare * Bell(widthsSquared / (2.0 * kSkirtWidth * kSkirtWidth));
}

double StrokeIntensity(const Stroke& stroke, Position p) {
    const Nearest nearest = NearestOf(stroke, p);
    return nearest.level * LineProfile(nearest.widthsSquared);
}

Drawing::Drawing(const std::vector<Line>& lines) {
    const double widths = kSkirtWidth * std::sqrt(2.0 * kNegligibleExponent);
    for (const Line& line : lines) {
        const Position first = line.front().from;
        const Position last = line.back().to;
        const Position middle{0.5 * (first.x + last.x), 0.5 * (first.y + last.y)};
        double reach = 0.0;
        for (const Stroke& stroke : line) {
            for (const Position end : {stroke.from, stroke.to}) {
                const double away = Distance({end.x - middle.x, end.y - middle.y});
                reach = std::max(reach, away + widths * std::max(stroke.sigmaFrom, stroke.sigmaTo));
            }
        }
        lines_.push_back({line, middle, reach * reach});
    }
}

double Drawing::intensity(Position p) const {
    double sum = 0.0;
    for (const Bounded& bounded : lines_) {
        const double dx = p.x - bounded.middle.x;
        const double dy = p.y - bounded.middle.y;
        if (dx * dx + dy * dy >= bounded.reachSquared) {
            continue;
        }
        const double light = BrightestOf(bounded.line, p);
        const double square = light * light;
        sum += square * square * square * square;
    }
    return std::sqrt(std::sqrt(std::sqrt(sum)));
}

}  // namespace vireon::brushes
