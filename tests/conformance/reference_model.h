#pragma once

#include <array>

#include "tests/conformance/brush_folder.h"
#include "tests/conformance/picture.h"
#include "tests/conformance/scene.h"

/// A plain model of the effect's picture, written for clarity and nothing else. Each step is the
/// definition: a filter is a weighted sum, a stamp a loop over the pixels that it covers.
namespace vireon::conformance {

/// Which of alpha, red, green and blue a step works on.
using ChannelFlags = std::array<bool, 4>;

/// What the frame's settings come to before any pixel is looked at.
struct GlowPlan {
    ChannelFlags channels{};  ///< output channels; alpha is off for an opaque input
    float resolution = 1;     ///< the smaller downsample factor
    bool highQuality = true;  ///< bilinear reduction and smoothing
    int qualityIndex = 0;     ///< 0 to 4 for 1:1 to 16:1
    bool brightnessOnly = false;
};

/// Separable tent filter of a radius in pixels with the edge pixels repeated, in place. A line of n
/// pixels takes at most n / 2 - 2 once 2 radius + 2 reaches n; what is then below 1 leaves the
/// direction alone.
void BlurTent(Picture& picture, int radius, const ChannelFlags& channels);

/// The light that glows, mask and falloff included.
Picture ExtractLight(const Scene& scene, const Picture& source, const ChannelFlags& channels);

/// The light spread by the kernel at the chosen quality, or for `brightnessOnly` the light as it
/// was worked at.
Picture SpreadLight(const Picture& light, const Kernel& kernel, const Controls& controls,
                    const GlowPlan& plan);

/// Lays the glow over the source by a transfer mode other than None. `mode` is the popup's value
/// less one.
void Composite(Picture& glow, const Picture& source, int mode, float glowOpacity,
               float sourceOpacity);

/// The finished frame in float. `brush` is the shape that the Shape popup names; not looked at for
/// a custom shape. `gain` multiplies the glow's red, green and blue before they are composed over
/// the source; values beside 1 show how much a small error of the glow changes the frame.
Picture ReferenceRender(const Scene& scene, const Kernel& brush,
                        const std::array<float, 3>& gain = {1, 1, 1});

}  // namespace vireon::conformance
