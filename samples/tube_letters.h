#pragma once

#include <vector>

#include "samples/canvas.h"

namespace vireon::scenes {

/// The tubes of one capital letter as a neon sign bends them, in a box one unit wide and two high
/// with its corner at (0, 0); an I has no width. Empty for any other than A B E I N O R V.
std::vector<std::vector<Point>> LetterTubes(char letter);

}  // namespace vireon::scenes
