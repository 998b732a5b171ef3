#pragma once

#include "samples/solid.h"

namespace vireon::scenes {

/// What a place of the portrait's figure is made of.
enum class Matter { kSkin, kScarf, kDress, kCollar, kPearl };

/// Distance of a place from the figure's surface, negative inside, and what the nearest part is.
struct FigurePlace {
    double distance;
    Matter matter;
};

/// The figure: a head three quarters in profile, turned to the left, with a scarf around it, and
/// shoulders. A head is about 2.2 units high with its middle at the origin.
FigurePlace FigureAt(Vec3 place);

/// A place or direction in the frame of the head, whose face looks along its z axis.
Vec3 ToHead(Vec3 place);

}  // namespace vireon::scenes
