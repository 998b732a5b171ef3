#pragma once

#include "samples/canvas.h"

namespace vireon::scenes {

/// How far the lights of a scene go.
enum class LightRange {
    kDisplay,     ///< no value above 1: what an 8-bit picture holds
    kOverbright,  ///< lights keep their strength, up to about 20
};

/// Each scene is drawn from its size alone, the same for every call; everything in it scales with
/// the height. Values are display values, never negative, alpha 1. Sizes are those of Canvas.

/// A city at dusk after rain: stars, a moon, lit windows, neon signs, street lamps and cars over a
/// wet street. It is composed for 16:9 and fills any other size.
Canvas DrawNightCity(int width, int height, LightRange range);

/// One warm white light in the middle of a dark picture and, with `companions`, three smaller
/// coloured ones around it: for showing the shape of a glow.
Canvas DrawLights(int width, int height, LightRange range, bool companions = true);

/// Independent random values from 0 to 1 in every channel of every pixel: the densest picture that
/// a glow can meet.
Canvas DrawNoise(int width, int height);

/// The colour that a display shows for a light: below 1 as in a photograph. Colours whose largest
/// channel exceeds 0.85 are compressed by that channel, so that they keep their hue, and take on
/// some white the further they exceeded 1.
Colour DisplayColour(Colour light);

}  // namespace vireon::scenes
