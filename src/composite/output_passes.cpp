#include "composite/output_passes.h"

#include <algorithm>
#include <cmath>

#include "image/exact_math.h"
#include "image/tolerance.h"
#include "render/glow_settings.h"

namespace vireon {
namespace {

template <typename Pass>
void ForEachPixel(const FloatImage& image, Pass&& pass) {
    for (std::int32_t y = 0; y < image.height; ++y) {
        float* pixel = image.row(y);
        for (std::int32_t x = 0; x < image.width; ++x, pixel += kChannels) pass(pixel);
    }
}

float Limited(float value) {
    return value < 0.0f ? 0.0f : value > 1.0f ? 1.0f : value;
}

float LargestColour(const float* pixel) {
    return std::max({pixel[kRed], pixel[kGreen], pixel[kBlue]});
}

}  // namespace

void OverbrightSoftClip(const FloatImage& image, const GlowSettings& settings) {
    if (!settings.preventOverbrights) return;
    const auto clamp = static_cast<float>(settings.overbrightClamp / 100.0);
    if (NearZero(clamp)) return;

    float largest = 0.0f;
    ForEachPixel(image, [&](const float* pixel) {
        for (std::int32_t c = kRed; c <= kBlue; ++c) {
            if (pixel[c] > largest) largest = pixel[c];
        }
    });
    if (largest <= 1.0f) return;

    const float excess = std::min(largest - 1.0f, 1.0f);
    const float knee = 1.0f - excess;
    const bool fullClamp = NearOne(clamp);
    ForEachPixel(image, [&](float* pixel) {
        for (std::int32_t c = kRed; c <= kBlue; ++c) {
            const float value = pixel[c];
            if (!(value > knee)) continue;
            const float x = (value - knee) / excess;
            if (x <= 0.5f) continue;
            const float soft = 1.0f - Exp2(-2.0f * x);
            const float bent =
                (fullClamp ? soft : soft * clamp + x * (1.0f - clamp)) * excess + knee;
            pixel[c] = bent < 0.0f ? 0.0f : bent;
        }
    });
}

void ChannelMaskPass(const FloatImage& glow, const FloatImage& source, const GlowSettings& settings,
                     float factor, bool forceOpaque) {
    if (std::fabs(factor - 1.0f) >= kTolerance) {
        ForEachPixel(glow, [&](float* pixel) {
            for (std::int32_t c = 0; c < kChannels; ++c) pixel[c] *= factor;
        });
    }
    if (forceOpaque) {
        FillAlpha(glow);
    } else if (!settings.outputAlpha) {
        for (std::int32_t y = 0; y < glow.height; ++y) {
            for (std::int32_t x = 0; x < glow.width; ++x) {
                glow.pixel(x, y)[kAlpha] = source.pixel(x, y)[kAlpha];
            }
        }
    }
    if (settings.outputRed && settings.outputGreen && settings.outputBlue) return;
    ForEachPixel(glow, [&](float* pixel) {
        if (!settings.outputRed) pixel[kRed] = 0.0f;
        if (!settings.outputGreen) pixel[kGreen] = 0.0f;
        if (!settings.outputBlue) pixel[kBlue] = 0.0f;
    });
}

void IntensityToAlpha(const FloatImage& image) {
    ForEachPixel(image, [](float* pixel) {
        const float intensity = LargestColour(pixel);
        pixel[kAlpha] *= intensity;
        for (std::int32_t c = kRed; c <= kBlue; ++c) {
            pixel[c] = intensity == 0.0f ? 0.0f : pixel[c] / intensity;
        }
    });
}

void ScaleColour(const FloatImage& image, float factor) {
    ForEachPixel(image, [factor](float* pixel) {
        for (std::int32_t c = kRed; c <= kBlue; ++c) pixel[c] *= factor;
    });
}

void ClampColour(const FloatImage& image) {
    ForEachPixel(image, [](float* pixel) {
        for (std::int32_t c = kRed; c <= kBlue; ++c) pixel[c] = Limited(pixel[c]);
    });
}

void ClampAlpha(const FloatImage& image) {
    ForEachPixel(image, [](float* pixel) { pixel[kAlpha] = Limited(pixel[kAlpha]); });
}

bool IsOpaque(const FloatImage& image) {
    for (std::int32_t y = 0; y < image.height; ++y) {
        const float* pixel = image.row(y);
        for (std::int32_t x = 0; x < image.width; ++x, pixel += kChannels) {
            if (pixel[kAlpha] < 1.0f) return false;
        }
    }
    return true;
}

void FillAlpha(const FloatImage& image) {
    ForEachPixel(image, [](float* pixel) { pixel[kAlpha] = 1.0f; });
}

void ClearAlpha(const FloatImage& image) {
    ForEachPixel(image, [](float* pixel) { pixel[kAlpha] = 0.0f; });
}

void Premultiply(const FloatImage& image) {
    ForEachPixel(image, [](float* pixel) {
        for (std::int32_t c = kRed; c <= kBlue; ++c) pixel[c] *= pixel[kAlpha];
    });
}

void Unpremultiply(const FloatImage& image) {
    ForEachPixel(image, [](float* pixel) {
        if (!(pixel[kAlpha] > 0.0f)) return;
        for (std::int32_t c = kRed; c <= kBlue; ++c) pixel[c] /= pixel[kAlpha];
    });
}

}  // namespace vireon
