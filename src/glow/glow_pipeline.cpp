#include "glow/glow_pipeline.h"

#include <new>

#include "composite/brightness_extraction.h"
#include "composite/output_passes.h"
#include "composite/transfer_modes.h"
#include "glow/glow_pass.h"
#include "host/application_codes.h"
#include "host/plugin_host_api.h"
#include "host/result_codes.h"
#include "image/pixel_format.h"
#include "image/tolerance.h"
#include "render/glow_settings.h"
#include "render/raster_ops.h"
#include "shapes/shape_library.h"
#include "simd/level.h"

namespace vireon {
namespace {

// Pixels whose alpha or colours need another form while the effect works: they get it for the
// length of the scope and have their own again afterwards, however the render ends.
class PixelStateScope {
  public:
    PixelStateScope(PluginHost_API& host, const GlowRasters& rasters)
        : input_(ViewRaster(host, rasters.input)),
          source_(ViewRaster(host, rasters.source)),
          output_(ViewRaster(host, rasters.output)),
          fillsAlpha_(host.alphaIsUndefined() || host.alphaIsIgnored()),
          premultiplied_(host.isPremultiplied()) {
        if (fillsAlpha_) {
            FillAlpha(input_);
            FillAlpha(source_);
        }
        if (premultiplied_) {
            simd::AtActiveLevel([&](const auto&... kernels) { Unpremultiply(kernels..., input_); });
        }
    }
    PixelStateScope(const PixelStateScope&) = delete;
    PixelStateScope& operator=(const PixelStateScope&) = delete;
    ~PixelStateScope() {
        if (fillsAlpha_) {
            ClearAlpha(input_);
            ClearAlpha(output_);
            ClearAlpha(source_);
        }
        if (premultiplied_) {
            simd::AtActiveLevel([&](const auto&... kernels) {
                Premultiply(kernels..., input_);
                Premultiply(kernels..., output_);
            });
        }
    }

  private:
    FloatImage input_;
    FloatImage source_;
    FloatImage output_;
    bool fillsAlpha_;
    bool premultiplied_;
};

// Takes alpha out of the glow of an opaque layer, and puts the setting back afterwards.
class OpaqueLayerScope {
  public:
    OpaqueLayerScope(GlowSettings& settings, const FloatImage& input) : settings_(settings) {
        if (!settings.outputAlpha) return;
        simd::AtActiveLevel([&](const auto&... kernels) { opaque_ = IsOpaque(kernels..., input); });
        if (opaque_) settings_.outputAlpha = false;
    }
    OpaqueLayerScope(const OpaqueLayerScope&) = delete;
    OpaqueLayerScope& operator=(const OpaqueLayerScope&) = delete;
    ~OpaqueLayerScope() {
        if (opaque_) settings_.outputAlpha = true;
    }
    bool isOpaque() const { return opaque_; }

  private:
    GlowSettings& settings_;
    bool opaque_ = false;
};

std::int32_t CompositeGlow(PluginHost_API& host, const GlowSettings& settings,
                           PluginRaster_API& glow, PluginRaster_API& input, float glowOpacity) {
    const std::int32_t choice = settings.transferMode;
    const bool byHostLater = host.compositesItself() && choice <= kLastSelfCompositedChoice;
    if (choice == kTransferNone || byHostLater) {
        if (NearOne(glowOpacity)) return kSuccess;
        const FloatImage image = ViewRaster(host, glow);
        simd::AtActiveLevel(
            [&](const auto&... kernels) { ScaleColour(kernels..., image, glowOpacity); });
        return kSuccess;
    }
    const std::int32_t mode = PipelineTransferMode(choice, host.keepsSeparators());
    const auto sourceOpacity = static_cast<float>(settings.sourceOpacity * 0.01);
    const bool ownCompositor = !host.isApplication(kAfterEffects);

    const auto limitColour = [&] {
        const FloatImage image = ViewRaster(host, glow);
        simd::AtActiveLevel([&](const auto&... kernels) { ClampColour(kernels..., image); });
    };
    if (mode == kTransferColorBurn) limitColour();
    const std::int32_t result = TransferCompose(host, mode, glowOpacity, sourceOpacity, glow, input,
                                                /*forceOpaque=*/false, ownCompositor);
    if (mode == kTransferColorBurn) limitColour();
    return result;
}

std::int32_t ShowBrightnessMap(PluginHost_API& host, const GlowSettings& settings,
                               const GlowRasters& rasters, PluginRaster_API& map,
                               PluginRaster_API& glow) {
    const bool fullSize = EffectiveQuality(settings, map.width(), map.height()) == 0;
    const std::int32_t result = CopyRaster(host, rasters.output, fullSize ? map : glow);
    if (result == kSuccess) FillAlpha(ViewRaster(host, rasters.output));
    return result;
}

std::int32_t RenderFrame(PluginHost_API& host, GlowSettings& settings, const GlowRasters& rasters,
                         float glowOpacity) {
    const FloatImage input = ViewRaster(host, rasters.input);
    std::int32_t error = 0;
    // Nothing writes the map when no source channel is chosen.
    const bool clearMap = !IsInputChannelsChoice(settings.inputChannels);
    const ScopedRaster map =
        CreateWorkingRaster(host, input.width, input.height, kDepthFloat, clearMap, error);
    ScopedRaster glow;
    if (map) {
        glow = CreateWorkingRaster(host, input.width, input.height, kDepthFloat, false, error);
    }
    if (!map || !glow) {
        ClearRaster(host, rasters.output);
        return error != 0 ? error : kRenderFailed;
    }

    const OpaqueLayerScope layer(settings, input);
    settings.progressCount = 0;
    settings.progressTotal = settings.countProgressTwice != 0 ? 2 * input.height : input.height;
    const GlowKernel* shape = FindShape(host, settings);

    std::int32_t result = ExtractBrightness(host, settings, rasters.source, *map, rasters.mask);
    if (result != kSuccess) return result;
    if (settings.view == kViewMask) return CopyRaster(host, rasters.output, *map);

    result = GlowPass(host, *map, *glow, shape, settings);
    if (result != kSuccess) return result;
    if (settings.view == kViewBrightnessMap) {
        return ShowBrightnessMap(host, settings, rasters, *map, *glow);
    }

    const FloatImage light = ViewRaster(host, *glow);
    simd::AtActiveLevel([&](const auto&... kernels) {
        FinishGlow(kernels..., light, input, settings, layer.isOpaque());
    });

    result = CompositeGlow(host, settings, *glow, rasters.input, glowOpacity);
    const std::int32_t copied = CopyRaster(host, rasters.output, *glow);
    return result != kSuccess ? result : copied;
}

}  // namespace

const GlowKernel* FindShape(PluginHost_API& host, const GlowSettings& settings) {
    if (const GlowKernel* custom = host.customShape()) return custom;
    return LibraryShape(settings.shape);
}

std::int32_t RenderGlow(PluginHost_API& host, GlowSettings& settings, const GlowRasters& rasters) {
    settings.blurInput *= settings.glowRadius;
    if (settings.driverFlag && settings.pipelineMode == 1) settings.driverFlag = false;

    const bool allFloat = IsFloatRaster(host, rasters.source) &&
                          IsFloatRaster(host, rasters.input) &&
                          IsFloatRaster(host, rasters.output) &&
                          (rasters.mask == nullptr || IsFloatRaster(host, *rasters.mask));
    if (!allFloat) return kRenderFailed;

    std::int32_t result = kSuccess;
    try {
        const auto glowOpacity = static_cast<float>(settings.glowOpacity * 0.01);
        if (NearZero(glowOpacity)) {
            return settings.transferMode == kTransferNone
                       ? ClearRaster(host, rasters.output)
                       : CopyRaster(host, rasters.output, rasters.input);
        }
        const PixelStateScope pixelState(host, rasters);
        result = RenderFrame(host, settings, rasters, glowOpacity);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        // What the host threw ends the render; the rasters are released by now.
    }
    return result;
}

}  // namespace vireon
