#pragma once

#include <cstdint>

namespace vireon {

struct GlowKernel;
struct GlowSettings;
class PluginHost_API;
class PluginRaster_API;

/// The rasters of one render, all float and none owned. All but the mask have the frame's size.
struct GlowRasters {
    PluginRaster_API& source;  ///< what the glow is grown from
    PluginRaster_API& input;   ///< what the glow is composited over
    PluginRaster_API& output;  ///< receives the finished frame
    PluginRaster_API* mask;    ///< limits where light may arise; null when there is none
};

/// The shape of a render: the host's custom shape when there is one, else the library's; null when
/// the library has none.
const GlowKernel* FindShape(PluginHost_API& host, const GlowSettings& settings);

/// Turns one input frame into the finished output frame: extracts the light, spreads it into the
/// glow, and composites the glow over the input, or shows the stage that View asks for.
/// Straight colour, alpha 1.0 opaque, values above 1.0 legal.
/// \param settings  changed while the render runs: progress, and `blurInput`, which becomes pixels
/// \return 0; the first stage's result that is not 0; 1 when a raster is not float. The working
///         rasters are released in any case.
/// \throws std::bad_alloc
std::int32_t RenderGlow(PluginHost_API& host, GlowSettings& settings, const GlowRasters& rasters);

}  // namespace vireon
