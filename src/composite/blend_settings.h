#pragma once

namespace vireon {

/// What every pixel of one compositing shares.
struct BlendSettings {
    float glowOpacity;    ///< fraction; factor of the glow's alpha
    float sourceOpacity;  ///< fraction; factor of the source's alpha
    bool forceOpaque;     ///< the result's alpha is 1.0
};

}  // namespace vireon
