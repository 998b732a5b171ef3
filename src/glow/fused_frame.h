#pragma once

#include <cstdint>

#include "image/raster_layout.h"

namespace vireon {

namespace simd {
struct KernelTable;
}
struct GlowKernel;
struct GlowSettings;
class PluginHost_API;
class PluginRaster_API;

/// The host's own pixels of one frame, in the host's depth. Only `output` is written.
struct FrameLayouts {
    RasterLayout source;  ///< what the glow is grown from
    RasterLayout input;   ///< what the glow is composited over; gives the frame its size
    RasterLayout output;
};

/// Whether the stages that the settings ask for can be taken together: the finished picture is
/// wanted, the light is worked out pixel by pixel (no blur, no mask, no widening), and the effect
/// composites by itself. \param settings  filled, untouched by any stage
bool CanFuseStages(PluginHost_API& host, const GlowSettings& settings);

/// Whether the host's pixels can be read and written as they are: alpha first, source and input of
/// one format, the output apart from both.
bool CanFusePixels(const FrameLayouts& layouts);

/// Renders one frame as `RenderGlow` does, but without full-size working rasters: the light is
/// extracted at the resolution at which the shapes are stamped, and each output row goes from the
/// reduced glow to the host's pixels in one pass. The result is that of the stages one after the
/// other to float rounding: the enlargement is rounded once where they round twice.
///
/// A value of the glow that is not finite, which would spread along its line, sends the frame
/// through the full-size stages after the convolution.
/// Both `CanFuseStages` and `CanFusePixels` must hold.
/// \param settings  changed while the render runs: progress and the radius scale
/// \param shape  has texels
/// \param output  the host's output raster, cleared when there is no memory for a working raster
/// \return 0 or the first stage's result that is not 0; the output is then as it was
/// \throws std::bad_alloc
std::int32_t RenderFusedFrame(PluginHost_API& host, const simd::KernelTable& kernels,
                              GlowSettings& settings, const FrameLayouts& layouts,
                              const GlowKernel& shape, PluginRaster_API& output);

}  // namespace vireon
