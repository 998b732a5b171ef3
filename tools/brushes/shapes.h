#pragma once

#include <span>

#include "tools/brushes/strokes.h"

namespace vireon::brushes {

/// The glow shapes as functions from a place to the light there. Intensities are relative (the
/// rasteriser settles the amount of light), finite and not negative; each function is pure.

double Gaussian(Position p);
double Hoop(Position p);
double Kuplah(Position p);
double Mass(Position p);
double SixFlare(Position p);
double SixSpikeHorizontal(Position p);
double SixSpikeVertical(Position p);
double SixSpikeWhack(Position p);
double Spectacle(Position p);
double Tent(Position p);
double Tree(Position p);
double Whoopy(Position p);
double Zig(Position p);

/// One glow shape and the names under which it is known.
struct Shape {
    const char* fileName;  ///< name of its brush file, case included
    const char* name;      ///< entry in the effect's Shape menu
    double (*intensity)(Position p);
};

/// The thirteen shapes in the order of the effect's Shape menu.
std::span<const Shape> Shapes();

}  // namespace vireon::brushes
