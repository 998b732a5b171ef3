#include "glow/glow_pass.h"

#include <iterator>

#include "glow/resample_pixels.h"
#include "glow/shape_convolution.h"
#include "glow/tent_blur.h"
#include "host/plugin_host_api.h"
#include "host/result_codes.h"
#include "image/pixel_format.h"
#include "render/glow_settings.h"
#include "render/raster_ops.h"

namespace vireon {
namespace {

// Tent radii in pixels that hide the blocks of the enlargement, by Quality choice.
constexpr std::int32_t kSmoothingRadii[] = {1, 2, 4, 5, 6};
// A shape is smooth by itself: at 2:1 the least smoothing will do.
constexpr std::int32_t kShapeSmoothingRadius = 1;
constexpr std::int32_t kShapeSmoothingQuality = 1;
// Softening of the reduced rasters in place of a missing shape.
constexpr std::int32_t kReducedBlurRadius = 2;

}  // namespace

ScopedRadiusScale::ScopedRadiusScale(GlowSettings& settings, float qualityFactor)
    : settings_(settings), former_(static_cast<float>(settings.radiusScale)) {
    settings_.radiusScale *= 1.0 / static_cast<double>(qualityFactor);
}

ScopedRadiusScale::~ScopedRadiusScale() {
    settings_.radiusScale = static_cast<double>(former_);
}

bool SamplesColourOnly(const GlowSettings& settings) {
    return settings.outputChannelCount() == 3 && !settings.outputAlpha && !settings.fastSplat;
}

std::int32_t SmoothingRadius(std::int32_t quality, bool hasShape) {
    return hasShape && quality <= kShapeSmoothingQuality ? kShapeSmoothingRadius
                                                         : kSmoothingRadii[quality];
}

std::int32_t EffectiveQuality(const GlowSettings& settings, std::int32_t width,
                              std::int32_t height) {
    const std::int32_t quality = settings.quality;
    if (quality < 0 || quality >= static_cast<std::int32_t>(std::size(kQualityFactors))) return 0;
    const auto factor = static_cast<std::int32_t>(kQualityFactors[quality]);
    return width / factor == 0 || height / factor == 0 ? 0 : quality;
}

std::int32_t GlowPass(PluginHost_API& host, PluginRaster_API& map, PluginRaster_API& glow,
                      const GlowKernel* shape, GlowSettings& settings) {
    const FloatImage full = ViewRaster(host, map);
    const std::int32_t quality = EffectiveQuality(settings, full.width, full.height);
    const float factor = kQualityFactors[quality];
    const bool brightnessMap = settings.view == kViewBrightnessMap;
    if (quality == 0) {
        return brightnessMap ? kSuccess : ConvolveShape(host, map, glow, shape, settings, factor);
    }

    const bool resample = host.isHighQuality() || host.isPremultiplied();
    const ScopedRadiusScale reducedRadius(settings, factor);
    const auto width = static_cast<std::int32_t>(static_cast<float>(full.width) / factor);
    const auto height = static_cast<std::int32_t>(static_cast<float>(full.height) / factor);

    std::int32_t error = 0;
    const auto makeReduced = [&] {
        return CreateWorkingRaster(host, width, height, kDepthFloat, /*clear=*/false, error);
    };
    const ScopedRaster reducedMap = makeReduced();
    if (!reducedMap) return error != 0 ? error : kRenderFailed;
    const FloatImage small = ViewRaster(host, *reducedMap);
    if (resample) {
        ReduceBilinear(full, small, SamplesColourOnly(settings));
    } else {
        ReduceNearest(full, small);
    }
    const bool blurInstead = resample && shape == nullptr;
    if (blurInstead) BlurRaster(host, *reducedMap, kReducedBlurRadius, settings, false);

    // The Brightness Map view enlarges the reduced map as it is.
    ScopedRaster reducedGlow;
    if (!brightnessMap) {
        reducedGlow = makeReduced();
        if (!reducedGlow) return error != 0 ? error : kRenderFailed;
        const std::int32_t result =
            ConvolveShape(host, *reducedMap, *reducedGlow, shape, settings, factor);
        if (result != kSuccess) return result;
    }
    const ScopedRaster& reduced = brightnessMap ? reducedMap : reducedGlow;
    if (blurInstead) BlurRaster(host, *reduced, kReducedBlurRadius, settings, false);

    ExpandNearest(ViewRaster(host, *reduced), ViewRaster(host, glow));
    if (!resample) return kSuccess;
    return BlurRaster(host, glow, SmoothingRadius(quality, shape != nullptr), settings, false);
}

}  // namespace vireon
