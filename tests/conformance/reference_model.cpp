#include "tests/conformance/reference_model.h"

#include <algorithm>
#include <cmath>

namespace vireon::conformance {
namespace {

constexpr float kTolerance = 1e-5f;

bool Near(float value, float target) {
    return std::abs(value - target) <= kTolerance;
}

double Factor(const sdk::PF_RationalScale& scale) {
    return scale.den == 0 ? 1.0 : static_cast<double>(scale.num) / scale.den;
}

/// Light that is not finite must not spread.
float FiniteLight(float value) {
    if (std::isnan(value)) {
        return 0;
    }
    return std::isinf(value) ? std::copysign(65504.0f, value) : value;
}

ChannelFlags SelectedChannels(int popup) {
    switch (popup) {
        case 1: return {false, true, true, true};
        case 2: return {true, true, true, true};
        case 3: return {false, true, false, false};
        case 4: return {false, false, true, false};
        case 5: return {false, false, false, true};
        default: return {true, false, false, false};
    }
}

float OneChannelLight(const PixelValues& pixel, int popup) {
    const float alpha = pixel[kAlpha];
    const float red = pixel[kRed];
    const float green = pixel[kGreen];
    const float blue = pixel[kBlue];
    switch (popup) {
        case 2: return alpha;
        case 3: return (green + red + blue) * alpha * 0.33333334f;
        case 4: return (204 * green + 117 * red + 64 * blue) * alpha * (1.0f / 385.0f);
        case 5: return red * alpha;
        case 6: return green * alpha;
        default: return blue * alpha;
    }
}

void ApplyMask(const Scene& scene, Picture& light) {
    const Controls& controls = scene.controls;
    if (controls.view == kViewMask) {
        for (PixelValues& pixel : light.pixels()) {
            pixel = {1, 1, 1, 1};
        }
    }
    if (!controls.enableMask) {
        return;
    }
    int width = light.width();
    int height = light.height();
    if (scene.maskLayer && controls.maskRadius != 0) {
        width = std::min(width, scene.maskLayer->width());
        height = std::min(height, scene.maskLayer->height());
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                for (float& value : light.at(x, y)) {
                    value *= scene.maskLayer->at(x, y)[kAlpha];
                }
            }
        }
    }
    const auto radius = static_cast<float>(controls.maskRadius);
    const auto stretchX = static_cast<float>(Factor(scene.pixelAspect) * controls.widthAspect);
    const auto stretchY = static_cast<float>(controls.heightAspect);
    if (Near(radius, 0) || Near(stretchX, 0) || Near(stretchY, 0)) {
        return;
    }
    const float exponent = 1 - static_cast<float>(controls.maskFalloff);
    const auto [centerX, centerY] = controls.maskCenter.value_or(
        std::pair{0.5 * scene.input.width(), 0.5 * scene.input.height()});
    const auto placeX = static_cast<float>(width * (centerX / scene.input.width()));
    const auto placeY = static_cast<float>(height * (centerY / scene.input.height()));
    const double dx = Factor(scene.downsampleX);
    const double dy = Factor(scene.downsampleY);
    const auto weightX = static_cast<float>(1 / (dx * dx * static_cast<double>(stretchX)));
    const auto weightY = static_cast<float>(1 / (dy * dy * static_cast<double>(stretchY)));
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const float offX = static_cast<float>(x) - placeX;
            const float offY = static_cast<float>(y) - placeY;
            const float square = offX * offX * weightX + offY * offY * weightY;
            float mask = 0;
            if (square < radius * radius) {
                const float distance = std::sqrt(square) / radius;
                mask = Near(exponent, 1) ? 1 - distance : 1 - std::pow(distance, exponent);
            }
            for (float& value : light.at(x, y)) {
                value *= mask;
            }
        }
    }
}

void ClipOverbright(const Controls& controls, Picture& glow) {
    const auto amount = static_cast<float>(controls.overbrightClamp / 100);
    if (!controls.preventOverbrights || Near(amount, 0)) {
        return;
    }
    float brightest = 0;
    for (const PixelValues& pixel : glow.pixels()) {
        brightest = std::max({brightest, pixel[kRed], pixel[kGreen], pixel[kBlue]});
    }
    if (brightest <= 1) {
        return;
    }
    const float range = std::min(brightest - 1, 1.0f);
    const float knee = 1 - range;
    for (PixelValues& pixel : glow.pixels()) {
        for (std::size_t channel = kRed; channel <= kBlue; ++channel) {
            const float x = (pixel[channel] - knee) / range;
            if (pixel[channel] <= knee || x <= 0.5f) {
                continue;
            }
            const float soft = 1 - std::exp2(-2 * x);
            const float blend = Near(amount, 1) ? soft : soft * amount + x * (1 - amount);
            pixel[channel] = std::max(0.0f, blend * range + knee);
        }
    }
}

void MoveIntensityToAlpha(Picture& glow) {
    for (PixelValues& pixel : glow.pixels()) {
        const float intensity = std::max({pixel[kRed], pixel[kGreen], pixel[kBlue]});
        pixel[kAlpha] *= intensity;
        for (std::size_t channel = kRed; channel <= kBlue; ++channel) {
            pixel[channel] = intensity == 0 ? 0 : pixel[channel] / intensity;
        }
    }
}

void ClampColor(Picture& picture) {
    for (PixelValues& pixel : picture.pixels()) {
        for (std::size_t channel = kRed; channel <= kBlue; ++channel) {
            pixel[channel] = std::clamp(pixel[channel], 0.0f, 1.0f);
        }
    }
}

/// The layer's luminance, times its alpha, as a glow shape.
Kernel LayerKernel(const Picture& layer) {
    Kernel kernel{layer.width(), layer.height(), {}};
    for (const PixelValues& pixel : layer.pixels()) {
        const float value = (pixel[kGreen] * 204 + pixel[kRed] * 117 + pixel[kBlue] * 64) *
                            pixel[kAlpha] * (1.0f / 385.0f);
        kernel.values.push_back(std::isfinite(value) ? value : 0);
    }
    return kernel;
}

/// The picture that the glow grows from, brought to the input's size by cropping and padding.
Picture GlowSource(const Scene& scene) {
    if (!scene.glowLayer) {
        return scene.input;
    }
    const Picture& layer = *scene.glowLayer;
    return MakePicture(scene.input.width(), scene.input.height(), [&](int x, int y) {
        return x < layer.width() && y < layer.height() ? layer.at(x, y) : PixelValues{};
    });
}

}  // namespace

Picture ExtractLight(const Scene& scene, const Picture& source, const ChannelFlags& channels) {
    const Controls& controls = scene.controls;
    const bool oneChannel = controls.inputChannels != 1;
    Picture light = source;
    for (PixelValues& pixel : light.pixels()) {
        if (oneChannel) {
            pixel.fill(OneChannelLight(pixel, controls.inputChannels));
        }
        for (float& value : pixel) {
            value = FiniteLight(value);
        }
    }

    const auto threshold = static_cast<float>(controls.threshold / 100);
    if (std::abs(threshold) > kTolerance) {
        for (PixelValues& pixel : light.pixels()) {
            for (float& value : pixel) {
                value = value >= threshold ? value - threshold : 0;
            }
        }
    }

    double blur = controls.blurInput * controls.glowRadius;
    if (std::abs(blur) > 1e-5) {
        blur = std::min(blur, static_cast<double>(std::min(light.width(), light.height())));
        blur *= std::min(Factor(scene.downsampleX), Factor(scene.downsampleY));
        BlurTent(light, static_cast<int>(blur), {oneChannel || channels[kAlpha], true, true, true});
    }

    if (controls.enableMask || controls.view == kViewMask) {
        ApplyMask(scene, light);
    }

    const auto falloff = static_cast<float>(controls.glowFalloff);
    if (!Near(falloff, 1)) {
        for (PixelValues& pixel : light.pixels()) {
            for (float& value : pixel) {
                value = std::pow(value, falloff);
                value = std::isnan(value) ? 0 : value;
            }
        }
    }
    return light;
}

Picture ReferenceRender(const Scene& scene, const Kernel& brush, const std::array<float, 3>& gain) {
    const Controls& controls = scene.controls;
    const Picture& input = scene.input;
    const Picture nothing(input.width(), input.height());
    const bool custom = controls.shape == kShapeCustom;
    if (custom && !scene.shapeLayer) {
        return nothing;
    }

    const auto glowOpacity = static_cast<float>(controls.glowOpacity * 0.01);
    const auto sourceOpacity = static_cast<float>(controls.sourceOpacity * 0.01);
    const int mode = controls.transferMode - 1;
    if (std::abs(glowOpacity) <= kTolerance) {
        return mode == 0 ? nothing : input;
    }

    GlowPlan plan;
    plan.channels = SelectedChannels(controls.channels);
    plan.resolution =
        static_cast<float>(std::min(Factor(scene.downsampleX), Factor(scene.downsampleY)));
    plan.highQuality = scene.highQuality;
    plan.qualityIndex = controls.quality - 1;
    plan.brightnessOnly = controls.view == kViewBrightness;

    bool opaque = false;
    if (plan.channels[kAlpha]) {
        opaque = std::none_of(input.pixels().begin(), input.pixels().end(),
                              [](const PixelValues& pixel) { return pixel[kAlpha] < 1; });
        plan.channels[kAlpha] = !opaque;
    }

    const Picture light = ExtractLight(scene, GlowSource(scene), plan.channels);
    if (controls.view == kViewMask) {
        return light;
    }
    Picture glow =
        SpreadLight(light, custom ? LayerKernel(*scene.shapeLayer) : brush, controls, plan);
    if (controls.view == kViewBrightness) {
        for (PixelValues& pixel : glow.pixels()) {
            pixel[kAlpha] = 1;
        }
        return glow;
    }

    for (std::size_t i = 0; i < glow.pixels().size(); ++i) {
        PixelValues& pixel = glow.pixels()[i];
        if (opaque) {
            pixel[kAlpha] = 1;
        } else if (!plan.channels[kAlpha]) {
            pixel[kAlpha] = input.pixels()[i][kAlpha];
        }
        for (std::size_t channel = kRed; channel <= kBlue; ++channel) {
            if (!plan.channels[channel]) {
                pixel[channel] = 0;
            }
        }
    }
    ClipOverbright(controls, glow);
    for (PixelValues& pixel : glow.pixels()) {
        pixel[kAlpha] = std::clamp(pixel[kAlpha], 0.0f, 1.0f);
    }
    if (plan.channels[kAlpha]) {
        MoveIntensityToAlpha(glow);
    }

    if (mode == 0) {
        for (PixelValues& pixel : glow.pixels()) {
            for (std::size_t channel = kRed; channel <= kBlue; ++channel) {
                pixel[channel] *= glowOpacity;
            }
        }
        return glow;
    }
    const bool colorBurn = mode == 12;
    for (PixelValues& pixel : glow.pixels()) {
        for (std::size_t i = 0; i < gain.size(); ++i) {
            pixel[kRed + i] *= gain[i];
        }
    }
    if (colorBurn) {
        ClampColor(glow);
    }
    Composite(glow, input, mode, glowOpacity, sourceOpacity);
    if (colorBurn) {
        ClampColor(glow);
    }
    return glow;
}

}  // namespace vireon::conformance
