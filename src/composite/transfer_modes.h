#pragma once

#include <cstdint>

#include "composite/transfer_codes.h"

namespace vireon {

class PluginHost_API;
class PluginRaster_API;

/// The last choice of "Transfer Mode" that a host which composites itself keeps to itself.
inline constexpr std::int32_t kLastSelfCompositedChoice = 2;

/// Mode code of a choice of the "Transfer Mode" popup, counted from 0. Separator lines are Normal.
/// \param keepsSeparators  whether the host's popup numbers separator lines
/// \return 0 for a choice beyond the popup
std::int32_t TransferModeCodes(std::int32_t choice, bool keepsSeparators);

/// The code by which the pipeline composites a choice: that of `TransferModeCodes`, but Screen
/// composites as Add.
std::int32_t PipelineTransferMode(std::int32_t choice, bool keepsSeparators);

/// Lays the glow over the source by a transfer mode; the result takes the glow's place.
///
/// The host does it when it offers the service and `ownCompositor` is not set. Otherwise codes
/// outside 1 to 35, and 26 to 34, change nothing; 3 blends as Hue, 17 to 22 as Exclusion and 35 as
/// Screen.
/// \param glowOpacity, sourceOpacity  fractions, 1.0 is full
/// \param glow, source  float rasters of one size, straight colour, unlimited
/// \param forceOpaque  makes the result's alpha 1.0
/// \return 0, or the host's code
std::int32_t TransferCompose(PluginHost_API& host, std::int32_t mode, float glowOpacity,
                             float sourceOpacity, PluginRaster_API& glow, PluginRaster_API& source,
                             bool forceOpaque, bool ownCompositor);

}  // namespace vireon
