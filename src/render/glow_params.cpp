#include "render/glow_params.h"

#include "host/application_codes.h"
#include "host/plugin_host_api.h"
#include "render/parameter_ids.h"

namespace vireon {

GlowParams ReadGlowParams(PluginHost_API& host, std::int32_t layerWidth, std::int32_t layerHeight) {
    constexpr std::int32_t kFixedPoint = 0;
    constexpr std::int32_t kFloatingPoint = -1;
    // Final Cut Pro knows no float sliders: there they are registered as fixed ones.
    const std::int32_t sliderKind = host.isApplication(kFinalCutPro) ? kFixedPoint : kFloatingPoint;
    const auto slider = [&](std::int32_t index, std::int32_t kind) {
        double value = 0.0;
        host.sliderValue(index, kind, value);
        return value;
    };
    const auto popup = [&](std::int32_t index) {
        std::int32_t value = 0;
        host.popupValue(index, value);
        return value;
    };

    GlowParams params;
    params.shape = popup(kParamShape);
    params.glowRadius = slider(kParamGlowRadius, sliderKind);
    params.glowIntensity = slider(kParamGlowIntensity, sliderKind);
    params.glowFalloff = slider(kParamGlowFalloff, sliderKind);
    params.threshold = slider(kParamThreshold, sliderKind);
    params.blurInput = slider(kParamBlurInput, sliderKind);
    params.quality = popup(kParamQuality);
    params.inputChannels = popup(kParamInputChannels);
    params.enableMask = host.checkboxValue(kParamEnableMask);
    double centerX = 0.0;
    double centerY = 0.0;
    host.pointValue(kParamMaskCenter, centerX, centerY);
    params.maskCenterX = layerWidth > 0 ? centerX / layerWidth : 0.0;
    params.maskCenterY = layerHeight > 0 ? centerY / layerHeight : 0.0;
    params.maskRadius = slider(kParamMaskRadius, sliderKind);
    params.maskFalloff = slider(kParamMaskFalloff, sliderKind);
    params.widthAspect = slider(kParamMaskWidthAspect, sliderKind);
    params.heightAspect = slider(kParamMaskHeightAspect, sliderKind);
    params.view = popup(kParamView);
    params.preventOverbrights = host.checkboxValue(kParamPreventOverbrights);
    params.overbrightClamp = slider(kParamOverbrightClamp, sliderKind);
    params.outputChannels = popup(kParamOutputChannels);
    params.sourceOpacity = slider(kParamSourceOpacity, kFixedPoint);
    params.glowOpacity = slider(kParamGlowOpacity, kFixedPoint);
    params.transferMode = popup(kParamTransferMode);
    return params;
}

}  // namespace vireon
