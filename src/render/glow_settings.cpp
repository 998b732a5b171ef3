#include "render/glow_settings.h"

#include "render/glow_params.h"

namespace vireon {

void GlowSettings::setOutputChannels(std::int32_t choice) {
    outputRed = choice == 0 || choice == 1 || choice == 2;
    outputGreen = choice == 0 || choice == 1 || choice == 3;
    outputBlue = choice == 0 || choice == 1 || choice == 4;
    outputAlpha = choice == 1 || choice == 5;
}

std::int32_t GlowSettings::outputChannelCount() const {
    return OutputChannels(*this).count();
}

void GlowSettings::fill(const GlowParams& params) {
    setOutputChannels(params.outputChannels);
    inputChannels = params.inputChannels;
    glowRadius = params.glowRadius;
    glowIntensity = params.glowIntensity;
    glowFalloff = params.glowFalloff;
    shape = params.shape;
    sourceOpacity = params.sourceOpacity;
    glowOpacity = params.glowOpacity;
    transferMode = params.transferMode;
    view = params.view;
    blurInput = params.blurInput;
    threshold = params.threshold;
    enableMask = params.enableMask;
    maskRadius = params.maskRadius;
    maskFalloff = params.maskFalloff;
    widthAspect = params.widthAspect;
    maskCenterX = params.maskCenterX;
    maskCenterY = params.maskCenterY;
    heightAspect = params.heightAspect;
    preventOverbrights = params.preventOverbrights;
    overbrightClamp = params.overbrightClamp;
    quality = params.quality;
    driverFlag = true;
}

ChannelFlags OutputChannels(const GlowSettings& settings) {
    ChannelFlags channels;
    channels.enabled[kAlpha] = settings.outputAlpha;
    channels.enabled[kRed] = settings.outputRed;
    channels.enabled[kGreen] = settings.outputGreen;
    channels.enabled[kBlue] = settings.outputBlue;
    return channels;
}

}  // namespace vireon
