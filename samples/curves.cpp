#include "samples/curves.h"

#include <cstddef>

#include "tools/brushes/series.h"

namespace vireon::scenes {

std::vector<Point> Arc(Point centre, double radiusX, double radiusY, double fromTurns,
                       double toTurns, int pieces) {
    std::vector<Point> points;
    for (int i = 0; i <= pieces; ++i) {
        const double turns = fromTurns + (toTurns - fromTurns) * i / pieces;
        points.push_back({centre.x + radiusX * brushes::CosTurns(turns),
                          centre.y + radiusY * brushes::SinTurns(turns)});
    }
    return points;
}

std::vector<Point> SmoothCurve(const std::vector<Point>& through, int piecesBetween) {
    if (through.size() < 2) {
        return through;
    }
    std::vector<Point> points;
    for (std::size_t i = 0; i + 1 < through.size(); ++i) {
        // A Catmull-Rom piece; at the ends the neighbour that is missing is the end itself.
        const Point a = through[i == 0 ? 0 : i - 1];
        const Point b = through[i];
        const Point c = through[i + 1];
        const Point d = through[i + 2 < through.size() ? i + 2 : i + 1];
        for (int k = 0; k < piecesBetween; ++k) {
            const double t = static_cast<double>(k) / piecesBetween;
            const auto along = [t](double p, double q, double r, double s) {
                return q + 0.5 * t *
                               ((r - p) + t * ((2.0 * p - 5.0 * q + 4.0 * r - s) +
                                               t * (3.0 * (q - r) + s - p)));
            };
            points.push_back({along(a.x, b.x, c.x, d.x), along(a.y, b.y, c.y, d.y)});
        }
    }
    points.push_back(through.back());
    return points;
}

}  // namespace vireon::scenes
