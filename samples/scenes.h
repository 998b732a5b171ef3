#pragma once

#include "samples/canvas.h"

namespace vireon::scenes {

/// How far the lights of a scene go.
enum class LightRange {
    kDisplay,     ///< no value above 1: what an 8-bit picture holds
    kOverbright,  ///< lights keep their strength, up to about 20
};

/// Each scene is drawn from its size alone, the same for every call; everything in it scales with
/// the height. Values are display values, never negative; alpha is 1 unless the scene says
/// otherwise. Sizes are those of Canvas. catalogue.h names them all.

/// A city at dusk after rain: stars, a moon, lit windows, neon signs, street lamps and cars over a
/// wet street. It is composed for 16:9 and fills any other size.
Canvas DrawNightCity(int width, int height, LightRange range);

/// A neon sign on a brick wall at night: writing in tubes, and an arrow of lamps.
Canvas DrawNeonSign(int width, int height, LightRange range);

/// A field of stars of several colours and strengths over faint dust and a nebula.
Canvas DrawStarField(int width, int height, LightRange range);

/// A film's title on a transparent ground: colour is straight, alpha 0 beside the letters, 1 in
/// them, and between in their antialiased edges.
Canvas DrawTitle(int width, int height, LightRange range);

/// A sculptural head with a scarf and an earring: a soft light from one side, a lit rim from the
/// other, over a dark ground.
Canvas DrawPortrait(int width, int height, LightRange range);

/// A glass flask with hard highlights on white: nearly all of it is brighter than a glow's usual
/// threshold.
Canvas DrawProduct(int width, int height, LightRange range);

/// White houses in sun and shade over a sea with the sun's glitter: values over the whole range.
Canvas DrawSunlitCoast(int width, int height, LightRange range);

/// Frames of the moving scene.
inline constexpr int kMovingFrames = 48;

/// Small lights on dark that move by parts of a pixel from frame to frame, at several speeds and
/// in several directions, for judging how steady a glow is. `frame` counts from 0 to
/// kMovingFrames - 1 and goes on with 0 after that. Throws std::out_of_range for any other.
Canvas DrawMovingLights(int width, int height, LightRange range, int frame);

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
