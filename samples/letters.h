#pragma once

#include <string_view>

#include "samples/canvas.h"

namespace vireon::scenes {

/// Capital letters of even strokes with flat ends, in a measure of their own: y from 0 at the top
/// to 1 at the base line, x from 0. The letters are A E F G H I L N O R T V W and the space.

/// Width of a letter; that of a space for any other sign.
double LetterWidth(char letter);

/// Distance of a place from the edge of a letter whose strokes are `stroke` thick, negative inside,
/// exact near straight edges; a large number for a space or any other sign.
double LetterDistance(char letter, double stroke, Point place);

/// Width of a line of text with `spacing` between letters.
double TextWidth(std::string_view text, double spacing);

/// As LetterDistance for a line of text that begins at x = 0.
double TextDistance(std::string_view text, double spacing, double stroke, Point place);

}  // namespace vireon::scenes
