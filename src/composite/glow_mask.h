#pragma once

#include <cstdint>

namespace vireon {

struct GlowSettings;
class PluginHost_API;
class PluginRaster_API;

/// Limits where the glow may arise: multiplies the brightness map by the alpha of the mask layer
/// and by a soft ellipse. In the Mask view the map becomes plain white first.
/// \param map  float, changed in place
/// \param mask  float raster of any size, of which alpha is used, or null; its size limits the area
///        in which the ellipse is drawn
/// \param singleChannel  the map is one value a pixel, in alpha's place
/// \return 0
std::int32_t ApplyGlowMask(PluginHost_API& host, const GlowSettings& settings,
                           PluginRaster_API& map, PluginRaster_API* mask, bool singleChannel);

}  // namespace vireon
