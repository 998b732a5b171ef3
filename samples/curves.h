#pragma once

#include <vector>

#include "samples/canvas.h"

namespace vireon::scenes {

/// Points along an arc of an upright ellipse, from one angle to another in turns (1 = a full
/// circle, 0 to the right, 0.25 downwards), both ends included. `pieces` >= 1.
std::vector<Point> Arc(Point centre, double radiusX, double radiusY, double fromTurns,
                       double toTurns, int pieces = 28);

/// Points along a smooth curve through all given points in turn, both ends included.
/// `piecesBetween` >= 1 counts the straight pieces between two given points.
std::vector<Point> SmoothCurve(const std::vector<Point>& through, int piecesBetween);

}  // namespace vireon::scenes
