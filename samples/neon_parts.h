#pragma once

#include <vector>

#include "samples/canvas.h"
#include "samples/stage.h"

namespace vireon::scenes {

/// A bent glass tube of a neon sign, in units of the design.
struct NeonTube {
    std::vector<Point> points;
    double width;
    Colour light;  ///< of its middle; the glass at its edges is deeper in colour
};

/// A bare lamp of the sign's arrow.
struct NeonLamp {
    Point place;
    double radius;
    Colour light;
};

/// The sign: writing, a moon with its stars, and the arrow with its tin tray.
struct NeonSign {
    std::vector<NeonTube> tubes;
    std::vector<NeonLamp> lamps;
    std::vector<Point> arrow;  ///< middle line of the tray, the tip last
};

/// The sign around the middle of a picture of this width, in units of the design.
NeonSign MakeNeonSign(double width);

/// Half the width of the arrow's tray.
inline constexpr double kTrayHalfWidth = 31.0;

/// Paints the brick wall with the light that the sign throws on it, over the whole canvas.
void PaintNeonWall(const Stage& stage, const NeonSign& sign);

/// Paints the sign itself.
void PaintNeonSign(const Stage& stage, const NeonSign& sign);

}  // namespace vireon::scenes
