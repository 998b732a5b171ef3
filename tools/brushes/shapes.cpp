#include "tools/brushes/shapes.h"

#include <array>

namespace vireon::brushes {

std::span<const Shape> Shapes() {
    static constexpr std::array<Shape, 13> kShapes{{
        {"gaussian.brush", "Gaussian", Gaussian},
        {"hoop.brush", "Hoop", Hoop},
        {"kuplah.brush", "Kuplah", Kuplah},
        {"mass.brush", "Mass", Mass},
        {"sixFlare.brush", "Six Flare", SixFlare},
        {"sixSpikeHoriz.brush", "Six Spike Horizontal", SixSpikeHorizontal},
        {"sixSpikeVert.brush", "Six Spike Vertical", SixSpikeVertical},
        {"sixSpikeWhack.brush", "Six Spike Whack", SixSpikeWhack},
        {"spectacle.brush", "Spectacle", Spectacle},
        {"Tent.brush", "Tent", Tent},
        {"Tree.brush", "Tree", Tree},
        {"Whoopy.brush", "Whoopy", Whoopy},
        {"Zig.brush", "Zig", Zig},
    }};
    return kShapes;
}

}  // namespace vireon::brushes
