#include "glow/shape_convolution.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <optional>

#include "glow/shape_splat_pixels.h"
#include "glow/stamp_convolution_pixels.h"
#include "host/plugin_host_api.h"
#include "host/result_codes.h"
#include "image/tolerance.h"
#include "render/glow_settings.h"
#include "render/raster_ops.h"

namespace vireon {
namespace {

// A radius that no host has the scratch memory for; below it nothing overflows.
constexpr float kRadiusLimit = 16777216.0f;

Splat MakeSplat(const GlowKernel& shape, const GlowSettings& settings, double downsample) {
    Splat splat{};
    splat.kernel = &shape;
    splat.weight = static_cast<float>(settings.glowIntensity / 100.0);
    const auto scaled = static_cast<float>(
        static_cast<double>(static_cast<float>(settings.glowRadius)) * settings.radiusScale);
    splat.radius = static_cast<float>(static_cast<double>(scaled) * downsample);
    const float rounded = splat.radius + 0.5f;
    splat.maxRadius =
        rounded >= 1.0f ? static_cast<std::int32_t>(std::min(rounded, kRadiusLimit)) : 0;
    return splat;
}

SplatMember ChooseMember(const GlowSettings& settings) {
    if (settings.fastSplat) {
        switch (settings.outputChannelCount()) {
            case 4: return SplatMember::kFourChannel;
            case 3: return SplatMember::kThreeChannel;
            case 1: return SplatMember::kSingleChannel;
            default: break;
        }
    }
    return SplatMember::kGeneral;
}

void Clear(const FloatImage& image) {
    const auto bytes = static_cast<std::size_t>(image.width) * kChannels * sizeof(float);
    for (std::int32_t y = 0; y < image.height; ++y) std::memset(image.row(y), 0, bytes);
}

void Scale(const FloatImage& image, float factor) {
    for (std::int32_t y = 0; y < image.height; ++y) {
        float* value = image.row(y);
        for (std::int32_t i = 0; i < image.width * kChannels; ++i) value[i] *= factor;
    }
}

// A locked block of the host's memory for one source row.
class ScratchBlock {
  public:
    // Delegates, so that the destructor runs when the lock throws.
    ScratchBlock(PluginHost_API& host, std::int32_t maxRadius) : ScratchBlock(host) {
        const std::int64_t side = 2 * static_cast<std::int64_t>(maxRadius) + 1;
        handle_ =
            host_.newHandle(side * side * kChannels * static_cast<std::int64_t>(sizeof(float)));
        if (handle_ != nullptr) locked_ = host_.lockHandle(handle_) != nullptr;
    }
    ScratchBlock(const ScratchBlock&) = delete;
    ScratchBlock& operator=(const ScratchBlock&) = delete;
    ~ScratchBlock() {
        if (handle_ == nullptr) return;
        if (locked_) host_.unlockHandle(handle_);
        host_.disposeHandle(handle_);
    }
    explicit operator bool() const { return locked_; }

  private:
    explicit ScratchBlock(PluginHost_API& host) : host_(host) {}

    PluginHost_API& host_;
    void** handle_ = nullptr;
    bool locked_ = false;
};

ConvolutionReport PlainReport(const ChannelFlags& channels) {
    ConvolutionReport report;
    for (std::int32_t c = 0; c < kChannels; ++c) {
        if (channels.enabled[c]) report.channels[c].form = ConvolutionForm::kPlain;
    }
    return report;
}

std::int32_t SplatRows(PluginHost_API& host, const FloatImage& source,
                       const FloatImage& destination, const Splat& splat,
                       const ChannelFlags& channels, GlowSettings& settings,
                       const ConvolutionOptions& options) {
    const SplatMember member = ChooseMember(settings);
    std::optional<StampConvolution> stamps;
    if (options.kernels != nullptr && member == SplatMember::kGeneral && source.height > 0) {
        stamps.emplace(*options.kernels, source, destination, splat, channels);
    }
    if (!stamps) Clear(destination);
    for (std::int32_t y = 0; y < source.height; ++y) {
        const std::int32_t answer = host.progress(settings.progressCount, settings.progressTotal);
        ++settings.progressCount;
        if (answer != 0) return answer;
        const ScratchBlock scratch(host, splat.maxRadius);
        if (!scratch) return kOutOfMemory;
        if (stamps) {
            stamps->advance(static_cast<double>(y + 1) / source.height);
        } else {
            SplatRow(source, y, destination, splat, member, channels);
        }
    }
    if (options.report != nullptr) {
        *options.report = stamps ? stamps->report() : PlainReport(channels);
    }
    return kSuccess;
}

}  // namespace

std::int32_t ConvolveShape(PluginHost_API& host, PluginRaster_API& source,
                           PluginRaster_API& destination, const GlowKernel* shape,
                           GlowSettings& settings, float qualityFactor,
                           const ConvolutionOptions& options) try {
    if (shape == nullptr || !shape->hasTexels()) return kRenderFailed;
    const FloatImage from = ViewRaster(host, source);
    const FloatImage to = ViewRaster(host, destination);
    const double downsample = std::min(host.downsampleX(), host.downsampleY());

    const std::int32_t result = SplatRows(host, from, to, MakeSplat(*shape, settings, downsample),
                                          OutputChannels(settings), settings, options);
    if (result != kSuccess) return result;

    const auto resolution = static_cast<float>(downsample);
    if (std::fabs(resolution - 1.0f) < kTolerance && std::fabs(qualityFactor - 1.0f) < kTolerance) {
        return kSuccess;
    }
    Scale(to, qualityFactor * qualityFactor / (resolution * resolution));
    return kSuccess;
} catch (const std::bad_alloc&) {
    return kOutOfMemory;
} catch (...) {
    return kRenderFailed;
}

}  // namespace vireon
