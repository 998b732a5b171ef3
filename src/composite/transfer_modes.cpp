#include "composite/transfer_modes.h"

#include <cstddef>
#include <iterator>

#include "composite/transfer_pixels.h"
#include "host/plugin_host_api.h"
#include "host/result_codes.h"
#include "render/raster_ops.h"
#include "simd/level.h"

namespace vireon {
namespace {

constexpr std::int32_t kModeOfLine[] = {
    kTransferNormal,  // None, which never composites
    kTransferBehind,
    kTransferNormal,
    kTransferNormal,  // separator
    kTransferAdd,
    kTransferMultiply,
    kTransferScreen,
    kTransferOverlay,
    kTransferSoftLight,
    kTransferHardLight,
    kTransferNormal,  // separator
    kTransferColorDodge,
    kTransferColorBurn,
    kTransferNormal,  // separator
    kTransferDarken,
    kTransferLighten,
    kTransferDifference,
    kTransferExclusion,
    kTransferNormal,  // separator
    kTransferHue,
    kTransferSaturation,
    kTransferColor,
    kTransferLuminosity,
    0,
};

constexpr std::int32_t kModeOfEntry[] = {
    kTransferNormal,  // None, which never composites
    kTransferBehind,
    kTransferNormal,
    kTransferAdd,
    kTransferMultiply,
    kTransferScreen,
    kTransferOverlay,
    kTransferSoftLight,
    kTransferHardLight,
    kTransferColorDodge,
    kTransferColorBurn,
    kTransferDarken,
    kTransferLighten,
    kTransferDifference,
    kTransferExclusion,
    kTransferHue,
    kTransferSaturation,
    kTransferColor,
    kTransferLuminosity,
    0,
};

template <std::size_t kCount>
std::int32_t LookUp(const std::int32_t (&table)[kCount], std::int32_t choice) {
    return choice >= 0 && static_cast<std::size_t>(choice) < kCount
               ? table[static_cast<std::size_t>(choice)]
               : 0;
}

}  // namespace

std::int32_t TransferModeCodes(std::int32_t choice, bool keepsSeparators) {
    return keepsSeparators ? LookUp(kModeOfLine, choice) : LookUp(kModeOfEntry, choice);
}

std::int32_t PipelineTransferMode(std::int32_t choice, bool keepsSeparators) {
    const std::int32_t mode = TransferModeCodes(choice, keepsSeparators);
    return mode == kTransferScreen ? kTransferAdd : mode;
}

std::int32_t TransferCompose(PluginHost_API& host, std::int32_t mode, float glowOpacity,
                             float sourceOpacity, PluginRaster_API& glow, PluginRaster_API& source,
                             bool forceOpaque, bool ownCompositor) {
    if (host.offersTransfer() && !ownCompositor) {
        return host.transfer(mode, glowOpacity, sourceOpacity, glow, source, forceOpaque);
    }
    const BlendSettings settings{glowOpacity, sourceOpacity, forceOpaque};
    const FloatImage top = ViewRaster(host, glow);
    const FloatImage backdrop = ViewRaster(host, source);
    simd::AtActiveLevel(
        [&](const auto&... kernels) { BlendImages(kernels..., mode, top, backdrop, settings); });
    return kSuccess;
}

}  // namespace vireon
