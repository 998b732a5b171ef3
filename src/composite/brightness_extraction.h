#pragma once

#include <cstdint>

namespace vireon {

struct GlowSettings;
class PluginHost_API;
class PluginRaster_API;

/// Whether a choice of "Input Source Channels" is one of the seven that fill the map.
bool IsInputChannelsChoice(std::int32_t choice);

/// Turns the input into the light that will glow: picks the light by "Input Source Channels",
/// widens it when `driverFlag` is set, takes the threshold off, blurs and masks it, and raises it
/// to the falloff exponent. Afterwards all four channels of the map are usable.
///
/// Light that is not finite does not spread: in the map, and again after the power, NaN counts as 0
/// and an infinity as plus or minus 65504.
/// \param input  float, straight colour; not changed
/// \param map  float, same size; overwritten
/// \param mask  float raster of any size, or null
/// \param settings  `singleChannel` is set for the later stages
/// \return 0; the widening's result when it fails, at once; else the blur's and the mask's (the
///         later one wins)
std::int32_t ExtractBrightness(PluginHost_API& host, GlowSettings& settings,
                               PluginRaster_API& input, PluginRaster_API& map,
                               PluginRaster_API* mask);

}  // namespace vireon
