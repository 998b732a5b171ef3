#include "composite/output_passes.h"

#include <algorithm>
#include <cmath>

#include "image/exact_math.h"
#include "image/tolerance.h"
#include "render/glow_settings.h"
#include "simd/kernel_table.h"

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

// Calls `pass` with every row and the number of its channels.
template <typename Pass>
void ForEachRow(const FloatImage& image, Pass&& pass) {
    const std::ptrdiff_t values = static_cast<std::ptrdiff_t>(image.width) * kChannels;
    for (std::int32_t y = 0; y < image.height; ++y) pass(image.row(y), values);
}

void FinishRows(const simd::KernelTable& kernels, const FloatImage& glow, const FloatImage& source,
                const simd::GlowRowSettings& passes) {
    const std::ptrdiff_t values = static_cast<std::ptrdiff_t>(glow.width) * kChannels;
    for (std::int32_t y = 0; y < glow.height; ++y) {
        kernels.frame.finishGlow(glow.row(y), source.row(y), values, passes);
    }
}

// The largest colour as far as the soft clip asks: 1 stands for anything less, 2 or more for
// anything that is not less.
float LargestAboveWhite(const simd::KernelTable& kernels, const FloatImage& image) {
    const std::ptrdiff_t values = static_cast<std::ptrdiff_t>(image.width) * kChannels;
    float largest = 1.0f;
    for (std::int32_t y = 0; y < image.height && largest < 2.0f; ++y) {
        largest = kernels.frame.largestColour(image.row(y), values, largest);
    }
    return largest;
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

void FinishGlow(const FloatImage& glow, const FloatImage& source, const GlowSettings& settings,
                bool forceOpaque) {
    ChannelMaskPass(glow, source, settings, 1.0f, forceOpaque);
    OverbrightSoftClip(glow, settings);
    ClampAlpha(glow);
    if (settings.outputAlpha) IntensityToAlpha(glow);
}

simd::GlowRowSettings RowPasses(const GlowSettings& settings, bool forceOpaque) {
    simd::GlowRowSettings row{};
    row.keepColour[0] = settings.outputRed;
    row.keepColour[1] = settings.outputGreen;
    row.keepColour[2] = settings.outputBlue;
    row.opaque = forceOpaque;
    row.keepAlpha = settings.outputAlpha;
    row.intensityToAlpha = settings.outputAlpha;
    return row;
}

void AddSoftClip(simd::GlowRowSettings& row, const GlowSettings& settings, float largest) {
    const auto clamp = static_cast<float>(settings.overbrightClamp / 100.0);
    if (!settings.preventOverbrights || NearZero(clamp) || largest <= 1.0f) return;
    row.softClip = true;
    row.excess = std::min(largest - 1.0f, 1.0f);
    row.knee = 1.0f - row.excess;
    row.clamp = clamp;
    row.fullClamp = NearOne(clamp);
}

void FinishGlow(const simd::KernelTable& kernels, const FloatImage& glow, const FloatImage& source,
                const GlowSettings& settings, bool forceOpaque) {
    simd::GlowRowSettings passes = RowPasses(settings, forceOpaque);
    if (settings.preventOverbrights) {
        // Colours that are no output channels must be gone before the largest is looked for.
        if (!settings.outputRed || !settings.outputGreen || !settings.outputBlue) {
            simd::GlowRowSettings maskOnly = passes;
            maskOnly.intensityToAlpha = false;
            FinishRows(kernels, glow, source, maskOnly);
        }
        AddSoftClip(passes, settings, LargestAboveWhite(kernels, glow));
    }
    FinishRows(kernels, glow, source, passes);
}

void ScaleColour(const FloatImage& image, float factor) {
    ForEachPixel(image, [factor](float* pixel) {
        for (std::int32_t c = kRed; c <= kBlue; ++c) pixel[c] *= factor;
    });
}

void ScaleColour(const simd::KernelTable& kernels, const FloatImage& image, float factor) {
    ForEachRow(image, [&](float* row, std::ptrdiff_t values) {
        kernels.pass.scaleColour(row, values, factor);
    });
}

void ClampColour(const FloatImage& image) {
    ForEachPixel(image, [](float* pixel) {
        for (std::int32_t c = kRed; c <= kBlue; ++c) pixel[c] = Limited(pixel[c]);
    });
}

void ClampColour(const simd::KernelTable& kernels, const FloatImage& image) {
    ForEachRow(image, kernels.pass.clampColour);
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

bool IsOpaque(const simd::KernelTable& kernels, const FloatImage& image) {
    const std::ptrdiff_t values = static_cast<std::ptrdiff_t>(image.width) * kChannels;
    for (std::int32_t y = 0; y < image.height; ++y) {
        if (!kernels.frame.isOpaqueFloat(image.row(y), values)) return false;
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

void Premultiply(const simd::KernelTable& kernels, const FloatImage& image) {
    ForEachRow(image, kernels.pass.premultiply);
}

void Unpremultiply(const FloatImage& image) {
    ForEachPixel(image, [](float* pixel) {
        if (!(pixel[kAlpha] > 0.0f)) return;
        for (std::int32_t c = kRed; c <= kBlue; ++c) pixel[c] /= pixel[kAlpha];
    });
}

void Unpremultiply(const simd::KernelTable& kernels, const FloatImage& image) {
    ForEachRow(image, kernels.pass.unpremultiply);
}

}  // namespace vireon
