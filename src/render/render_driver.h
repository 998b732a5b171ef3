#pragma once

#include <cstdint>

namespace vireon {

class PluginHost_API;

/// Turns one render call into one run of the glow pipeline: reads the parameters, gathers the
/// layers, brings them to float where the frame is not, makes the custom shape, renders, and writes
/// the result back at the host's depth. Must be called under the render lock.
/// \return 0; the host's code, or 1, when a raster could not be made; else the pipeline's result
/// \throws std::bad_alloc
std::int32_t DriveRender(PluginHost_API& host);

}  // namespace vireon
