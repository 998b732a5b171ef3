#include "glow/tent_blur.h"

#include <algorithm>
#include <limits>

#include "glow/tent_blur_pixels.h"
#include "host/plugin_host_api.h"
#include "host/result_codes.h"
#include "image/pixel_format.h"
#include "render/glow_settings.h"
#include "render/raster_ops.h"
#include "simd/level.h"

namespace vireon {
namespace {

std::int32_t RadiusFromSettings(PluginHost_API& host, const FloatImage& image,
                                const GlowSettings& settings) {
    const double smaller = std::min(image.width, image.height);
    double radius = settings.blurInput > smaller ? smaller : settings.blurInput;
    radius *= std::min(host.downsampleX(), host.downsampleY());
    constexpr double kLargest = std::numeric_limits<std::int32_t>::max();
    return radius > 0.0 ? static_cast<std::int32_t>(std::min(radius, kLargest)) : 0;
}

enum class BlurredChannels { kRgb, kRgba, kAlpha };

ChannelFlags FlagsOf(BlurredChannels channels) {
    const bool alpha = channels != BlurredChannels::kRgb;
    const bool colours = channels != BlurredChannels::kAlpha;
    return {{alpha, colours, colours, colours}};
}

void BlurPass(const FloatImage& source, const FloatImage& destination, std::int32_t radius,
              BlurredChannels channels, std::int32_t direction) {
    if (const simd::KernelTable* kernels = simd::ActiveKernels()) {
        switch (channels) {
            case BlurredChannels::kRgb:
                TentBlurRGB(*kernels, source, destination, radius, direction);
                break;
            case BlurredChannels::kRgba:
                TentBlurRGBA(*kernels, source, destination, radius, direction);
                break;
            case BlurredChannels::kAlpha:
                TentBlurChannel(*kernels, source, destination, radius, kAlpha, direction);
                break;
        }
        return;
    }
    switch (channels) {
        case BlurredChannels::kRgb: TentBlurRGB(source, destination, radius, direction); break;
        case BlurredChannels::kRgba: TentBlurRGBA(source, destination, radius, direction); break;
        case BlurredChannels::kAlpha:
            TentBlurChannel(source, destination, radius, kAlpha, direction);
            break;
    }
}

void CopyChannels(const FloatImage& source, const FloatImage& destination,
                  BlurredChannels channels) {
    const std::int32_t first = channels == BlurredChannels::kRgb ? kRed : kAlpha;
    const std::int32_t last = channels == BlurredChannels::kAlpha ? kAlpha : kBlue;
    for (std::int32_t y = 0; y < source.height; ++y) {
        for (std::int32_t x = 0; x < source.width; ++x) {
            std::copy(source.pixel(x, y) + first, source.pixel(x, y) + last + 1,
                      destination.pixel(x, y) + first);
        }
    }
}

}  // namespace

std::int32_t BlurRaster(PluginHost_API& host, PluginRaster_API& raster,
                        std::optional<std::int32_t> explicitRadius, const GlowSettings& settings,
                        bool alphaOnly) try {
    const FloatImage image = ViewRaster(host, raster);
    const std::int32_t radius =
        explicitRadius ? *explicitRadius : RadiusFromSettings(host, image, settings);
    if (radius == 0) return kSuccess;

    std::int32_t error = 0;
    const ScopedRaster scratch =
        CreateWorkingRaster(host, image.width, image.height, kDepthFloat, /*clear=*/false, error);
    if (!scratch) return kRenderFailed;
    const FloatImage between = ViewRaster(host, *scratch);

    const BlurredChannels channels = alphaOnly ? BlurredChannels::kAlpha
                                     : settings.outputAlpha || settings.fastSplat
                                         ? BlurredChannels::kRgba
                                         : BlurredChannels::kRgb;
    const simd::KernelTable* kernels = simd::ActiveKernels();
    if (kernels != nullptr && TentBlur(*kernels, image, between, radius, FlagsOf(channels))) {
        return kSuccess;
    }
    // A line pass that has nothing to do writes nothing, so the other one works in its stead.
    const bool alongRows = ClampTentRadius(radius, image.width) > 0;
    const bool alongColumns = ClampTentRadius(radius, image.height) > 0;
    if (alongRows) {
        BlurPass(image, between, radius, channels, kAlongRows);
    } else if (alongColumns) {
        CopyChannels(image, between, channels);
    }
    if (alongColumns) {
        BlurPass(between, image, radius, channels, kAlongColumns);
    } else if (alongRows) {
        CopyChannels(between, image, channels);
    }
    return kSuccess;
} catch (...) {
    return kRenderFailed;
}

}  // namespace vireon
