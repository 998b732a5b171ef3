#include "composite/brightness_extraction.h"

#include <algorithm>

#include "composite/brightness_pixels.h"
#include "composite/glow_mask.h"
#include "composite/widening_pixels.h"
#include "glow/tent_blur.h"
#include "host/plugin_host_api.h"
#include "host/result_codes.h"
#include "image/tolerance.h"
#include "render/glow_settings.h"
#include "render/raster_ops.h"
#include "simd/level.h"

namespace vireon {
namespace {

constexpr std::int32_t kInputChannelsChoices = 7;

WideningReach ReachOf(PluginHost_API& host, const GlowSettings& settings, const FloatImage& map) {
    const auto smaller = static_cast<float>(std::min(map.width, map.height));
    const float radius =
        std::min(static_cast<float>(settings.glowRadius * settings.lightGain), smaller);
    // Beyond this no line has another pixel; it keeps wild downsample factors within integers.
    constexpr float kLongestReach = 1e6f;
    const float reach =
        std::min(static_cast<float>(settings.reachScale) * radius *
                     static_cast<float>(std::min(host.downsampleX(), host.downsampleY())),
                 kLongestReach);
    if (!(reach >= 1.0f)) return {0, reach};
    const auto whole = static_cast<std::int32_t>(reach);
    return {whole, reach - static_cast<float>(whole)};
}

// On a one-channel map only its own channel is widened, whatever the output channels are.
ChannelFlags WidenedChannels(const GlowSettings& settings) {
    if (!settings.singleChannel) return OutputChannels(settings);
    ChannelFlags channels{{false, false, false, false}};
    channels.enabled[kAlpha] = true;
    return channels;
}

std::int32_t Widen(PluginHost_API& host, const GlowSettings& settings, PluginRaster_API& map) {
    const FloatImage image = ViewRaster(host, map);
    const WideningReach reach = ReachOf(host, settings, image);
    if (reach.whole == 0) return kSuccess;
    const ChannelFlags channels = WidenedChannels(settings);

    for (const bool alongRows : {true, false}) {
        const std::size_t bytes =
            WideningScratchBytes(alongRows ? image.width : image.height, reach);
        void** handle = host.newHandle(static_cast<std::int64_t>(bytes));
        if (handle == nullptr) return kOutOfMemory;
        void* scratch = host.lockHandle(handle);
        if (scratch != nullptr) {
            if (const simd::KernelTable* kernels = simd::ActiveKernels()) {
                WidenLight(*kernels, image, reach, alongRows, channels, scratch);
            } else {
                WidenLight(image, reach, alongRows, channels, scratch);
            }
            host.unlockHandle(handle);
        }
        host.disposeHandle(handle);
        if (scratch == nullptr) return kOutOfMemory;
    }
    return kSuccess;
}

}  // namespace

bool IsInputChannelsChoice(std::int32_t choice) {
    return choice >= 0 && choice < kInputChannelsChoices;
}

std::int32_t ExtractBrightness(PluginHost_API& host, GlowSettings& settings,
                               PluginRaster_API& input, PluginRaster_API& map,
                               PluginRaster_API* mask) {
    const FloatImage light = ViewRaster(host, map);
    settings.singleChannel = settings.inputChannels != kInputRgba;
    MapBrightness(ViewRaster(host, input), light, settings.inputChannels);

    std::int32_t result = kSuccess;
    if (settings.driverFlag) {
        result = Widen(host, settings, map);
        if (result != kSuccess) return result;
    }
    const auto threshold = static_cast<float>(settings.threshold / 100.0);
    const auto exponent = static_cast<float>(settings.glowFalloff);
    const auto gain = static_cast<float>(settings.lightGain);
    const bool subtracts = !NearZero(threshold);
    const bool blurs = !NearZero(settings.blurInput);
    const bool masks = settings.enableMask || settings.view == kViewMask;
    const simd::KernelTable* kernels = simd::ActiveKernels();

    if (kernels != nullptr && subtracts && !blurs && !masks) {
        SubtractThresholdAndShapeLight(*kernels, light, threshold, exponent, gain,
                                       settings.singleChannel);
        return result;
    }
    if (subtracts && kernels != nullptr) {
        SubtractThreshold(*kernels, light, threshold, settings.singleChannel);
    } else if (subtracts) {
        SubtractThreshold(light, threshold, settings.singleChannel);
    }
    if (blurs) {
        result = BlurRaster(host, map, std::nullopt, settings, settings.singleChannel);
    }
    if (masks) {
        result = ApplyGlowMask(host, settings, map, mask, settings.singleChannel);
    }
    if (kernels != nullptr) {
        ShapeLight(*kernels, light, exponent, gain, settings.singleChannel);
    } else {
        ShapeLight(light, exponent, gain, settings.singleChannel);
    }
    return result;
}

}  // namespace vireon
