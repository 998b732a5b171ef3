#include "composite/glow_mask.h"

#include <algorithm>

#include "composite/glow_mask_pixels.h"
#include "host/plugin_host_api.h"
#include "host/result_codes.h"
#include "image/tolerance.h"
#include "render/glow_settings.h"
#include "render/raster_ops.h"
#include "simd/level.h"

namespace vireon {
namespace {

// Factor of a squared distance in pixels of the render: the distance is measured at full
// resolution, and the aspect stretches the ellipse by its square root.
float DistanceScale(double downsample, float aspect) {
    return static_cast<float>(1.0 / (downsample * downsample * static_cast<double>(aspect)));
}

}  // namespace

std::int32_t ApplyGlowMask(PluginHost_API& host, const GlowSettings& settings,
                           PluginRaster_API& map, PluginRaster_API* mask, bool singleChannel) {
    std::int32_t error = 0;
    const float pixelAspectRatio = DescribeRaster(host, map, error).pixelAspectRatio;
    const FloatImage light = ViewRaster(host, map);
    if (settings.view == kViewMask) FillWhite(light);
    if (!settings.enableMask) return kSuccess;

    std::int32_t width = light.width;
    std::int32_t height = light.height;
    if (mask != nullptr) {
        const FloatImage layer = ViewRaster(host, *mask);
        width = std::min(width, layer.width);
        height = std::min(height, layer.height);
        simd::AtActiveLevel([&](const auto&... kernels) {
            MultiplyByAlpha(kernels..., light, layer, width, height, singleChannel);
        });
    }

    const auto radius = static_cast<float>(settings.maskRadius);
    const float aspectX = pixelAspectRatio * static_cast<float>(settings.widthAspect);
    const auto aspectY = static_cast<float>(settings.heightAspect);
    if (NearZero(radius) || NearZero(aspectX) || NearZero(aspectY)) return kSuccess;

    EllipseMask ellipse{};
    ellipse.centreX = static_cast<float>(width * settings.maskCenterX);
    ellipse.centreY = static_cast<float>(height * settings.maskCenterY);
    ellipse.radius = radius;
    ellipse.scaleX = DistanceScale(host.downsampleX(), aspectX);
    ellipse.scaleY = DistanceScale(host.downsampleY(), aspectY);
    ellipse.softness = 1.0f - static_cast<float>(settings.maskFalloff);
    simd::AtActiveLevel([&](const auto&... kernels) {
        MultiplyByEllipse(kernels..., light, ellipse, width, height, singleChannel);
    });
    return kSuccess;
}

}  // namespace vireon
