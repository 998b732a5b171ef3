#pragma once

#include <cstdint>

#include "glow/convolution_report.h"
#include "simd/level.h"

namespace vireon {

struct GlowKernel;
struct GlowSettings;
class PluginHost_API;
class PluginRaster_API;

/// How a convolution is to run, and what it tells.
struct ConvolutionOptions {
    /// Null runs the plain definition, `SplatRow`.
    const simd::KernelTable* kernels = simd::ActiveKernels();
    /// Filled in unless null; complete when the convolution succeeds.
    ConvolutionReport* report = nullptr;
};

/// Makes the glow: clears the destination, adds the stamps of every source pixel to it (see
/// `SplatRow`) and evens out the resolution it works at.
///
/// With kernels, and unless the settings ask for stamps of several channels at once, the stamps are
/// added by `StampConvolution`, whose work is spread evenly over the rows. Its result is that of
/// `SplatRow` to the bit or no further from the exact sum; which, depends on the pixels alone.
///
/// A stamp of value 1 has the radius glowRadius x radiusScale x m pixels, m being the smaller of
/// the render's two downsample factors, and the weight glowIntensity / 100. The finished glow is
/// multiplied by f^2 / m^2, f the quality factor, so that neither changes its brightness.
///
/// Each source row reports `progressCount` of `progressTotal` to the host, counts it up, and takes
/// a scratch block of (2 R + 1)^2 pixels from the host for its length.
/// \param source, destination  float rasters of one size
/// \param shape  null or without texels ends with 1
/// \param qualityFactor  1 at full resolution
/// \return 0; 1 without a shape or when a host call threw; 4 when there is no memory; the host's
///         answer when it aborts. The destination is then cleared or half done.
std::int32_t ConvolveShape(PluginHost_API& host, PluginRaster_API& source,
                           PluginRaster_API& destination, const GlowKernel* shape,
                           GlowSettings& settings, float qualityFactor,
                           const ConvolutionOptions& options = {});

}  // namespace vireon
