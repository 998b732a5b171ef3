#pragma once

#include <vector>

#include "samples/canvas.h"

namespace vireon::scenes {

/// A light of the moving scene: a disc or, with two different ends, a line with round ends.
struct MovingLight {
    Point from;  ///< in units of the design, see stage.h
    Point to;
    double radius;  ///< half the width of the line, in units of the design
    Colour light;
};

/// All lights of a picture of this width (in units of the design) in one frame, in the same order
/// for every frame. No light moves further than 4 units from a frame to the next, save those that
/// leave on one side and come in again on the other. `frame` may be any number: the scene repeats
/// after kMovingFrames.
std::vector<MovingLight> MovingLightsAt(double width, int frame);

}  // namespace vireon::scenes
