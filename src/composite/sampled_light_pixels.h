#pragma once

#include <cstdint>

#include "image/float_image.h"
#include "image/raster_layout.h"

namespace vireon {

namespace simd {
struct KernelTable;
}

/// How a brightness map is sampled from a frame.
enum class LightSampling {
    kNearest,   ///< as `ReduceNearest`
    kBilinear,  ///< as `ReduceBilinear`
};

/// The extraction whose stages work pixel by pixel.
struct SampledLight {
    std::int32_t frameWidth;  ///< pixels of the frame that the map stands for
    std::int32_t frameHeight;
    std::int32_t inputChannels;  ///< a choice that fills the map
    float threshold;             ///< fraction
    float exponent;
    float gain;
    LightSampling sampling;
    bool colourOnly;  ///< bilinear sampling: alpha becomes 0
};

/// Fills a brightness map of any size up to the frame's straight from the host's pixels: the same
/// bits as conversion to float, `MapBrightness`, `SubtractThreshold`, `ShapeLight` and reduction
/// one after the other over whole frames, but only the pixels that are sampled are ever worked out.
/// \param source  alpha first, of a known depth; where it is smaller than the frame, the frame is
///        transparent black
/// \param map  float, overwritten; as large as the frame it takes every pixel as it is
/// \throws std::bad_alloc
void ExtractSampledLight(const simd::KernelTable& kernels, const RasterLayout& source,
                         const SampledLight& light, const FloatImage& map);

}  // namespace vireon
