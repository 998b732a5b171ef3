#include "composite/brightness_pixels.h"

#include <algorithm>
#include <cmath>

#include "composite/finite_light.h"
#include "image/exact_math.h"
#include "image/tolerance.h"
#include "simd/kernel_table.h"

namespace vireon {
namespace {

template <typename Value>
void MapOneChannel(const FloatImage& input, const FloatImage& map, Value&& value) {
    for (std::int32_t y = 0; y < map.height; ++y) {
        const float* from = input.row(y);
        float* to = map.row(y);
        for (std::int32_t x = 0; x < map.width; ++x, from += kChannels, to += kChannels) {
            to[kAlpha] = FiniteLight(value(from));
        }
    }
}

void MapWholePixels(const FloatImage& input, const FloatImage& map) {
    for (std::int32_t y = 0; y < map.height; ++y) {
        const float* from = input.row(y);
        float* to = map.row(y);
        for (std::int32_t i = 0; i < map.width * kChannels; ++i) to[i] = FiniteLight(from[i]);
    }
}

// Both steps of a stretch of one row that the kernels have left alone.
void ShapePlainly(const FloatImage& map, std::int32_t x, std::int32_t y, std::int32_t width,
                  const simd::LightShaping& shaping) {
    const FloatImage part{map.pixel(x, y), width, 1, map.rowBytes};
    if (shaping.subtracts) SubtractThreshold(part, shaping.threshold, shaping.alphaOnly);
    ShapeLight(part, shaping.exponent, shaping.gain, shaping.alphaOnly);
}

void ShapeByKernels(const simd::PowerKernels& power, const FloatImage& map,
                    const simd::LightShaping& shaping) {
    for (std::int32_t y = 0; y < map.height; ++y) {
        for (std::int32_t x = 0; x < map.width;) {
            x += power.shape(map.pixel(x, y), map.width - x, shaping);
            const std::int32_t left = std::min(power.blockPixels, map.width - x);
            ShapePlainly(map, x, y, left, shaping);
            x += left;
        }
    }
}

bool TakesKernelPower(float exponent) {
    return !NearOne(exponent) && exponent > 0.0f && std::isfinite(exponent);
}

simd::LightShaping ShapingOf(float exponent, float gain, bool alphaOnly) {
    const bool whole = std::trunc(exponent) == exponent;
    return {false, 0.0f,     exponent, whole, whole && std::fmod(exponent, 2.0f) != 0.0f,
            gain,  alphaOnly};
}

}  // namespace

float Luminance(const float* pixel) {
    constexpr float kOverSumOfWeights = 0.0025974025f;
    return (204.0f * pixel[kGreen] + 117.0f * pixel[kRed] + 64.0f * pixel[kBlue]) * pixel[kAlpha] *
           kOverSumOfWeights;
}

void MapBrightness(const FloatImage& input, const FloatImage& map, std::int32_t choice) {
    switch (choice) {
        case 0: MapWholePixels(input, map); break;
        case 1: MapOneChannel(input, map, [](const float* p) { return p[kAlpha]; }); break;
        case 2:
            MapOneChannel(input, map, [](const float* p) {
                return (p[kGreen] + p[kRed] + p[kBlue]) * p[kAlpha] * 0.33333334f;
            });
            break;
        case 3: MapOneChannel(input, map, Luminance); break;
        case 4:
            MapOneChannel(input, map, [](const float* p) { return p[kRed] * p[kAlpha]; });
            break;
        case 5:
            MapOneChannel(input, map, [](const float* p) { return p[kGreen] * p[kAlpha]; });
            break;
        case 6:
            MapOneChannel(input, map, [](const float* p) { return p[kBlue] * p[kAlpha]; });
            break;
        default: break;
    }
}

void SubtractThreshold(const FloatImage& map, float threshold, bool alphaOnly) {
    const std::int32_t last = alphaOnly ? kAlpha : kBlue;
    for (std::int32_t y = 0; y < map.height; ++y) {
        float* pixel = map.row(y);
        for (std::int32_t x = 0; x < map.width; ++x, pixel += kChannels) {
            for (std::int32_t c = kAlpha; c <= last; ++c) {
                pixel[c] = pixel[c] >= threshold ? pixel[c] - threshold : 0.0f;
            }
        }
    }
}

void ShapeLight(const FloatImage& map, float exponent, float gain, bool alphaOnly) {
    const bool straight = NearOne(exponent);
    if (straight && NearOne(gain) && !alphaOnly) return;
    const auto shaped = [&](float value) {
        if (straight) return NearOne(gain) ? value : gain * value;
        return FiniteLight(Pow(value, exponent)) * gain;
    };
    for (std::int32_t y = 0; y < map.height; ++y) {
        float* pixel = map.row(y);
        for (std::int32_t x = 0; x < map.width; ++x, pixel += kChannels) {
            if (alphaOnly) {
                const float value = shaped(pixel[kAlpha]);
                for (std::int32_t c = kAlpha; c < kChannels; ++c) pixel[c] = value;
            } else {
                for (std::int32_t c = kAlpha; c < kChannels; ++c) pixel[c] = shaped(pixel[c]);
            }
        }
    }
}

void SubtractThreshold(const simd::KernelTable& kernels, const FloatImage& map, float threshold,
                       bool alphaOnly) {
    for (std::int32_t y = 0; y < map.height; ++y) {
        kernels.power.subtractThreshold(map.row(y), map.width, threshold, alphaOnly);
    }
}

void ShapeLight(const simd::KernelTable& kernels, const FloatImage& map, float exponent, float gain,
                bool alphaOnly) {
    if (TakesKernelPower(exponent)) {
        ShapeByKernels(kernels.power, map, ShapingOf(exponent, gain, alphaOnly));
    } else if (NearOne(exponent)) {
        if (NearOne(gain) && !alphaOnly) return;
        const float factor = NearOne(gain) ? 1.0f : gain;
        for (std::int32_t y = 0; y < map.height; ++y) {
            kernels.power.scale(map.row(y), map.width, factor, alphaOnly);
        }
    } else {
        ShapeLight(map, exponent, gain, alphaOnly);
    }
}

void SubtractThresholdAndShapeLight(const simd::KernelTable& kernels, const FloatImage& map,
                                    float threshold, float exponent, float gain, bool alphaOnly) {
    if (!TakesKernelPower(exponent)) {
        SubtractThreshold(kernels, map, threshold, alphaOnly);
        ShapeLight(kernels, map, exponent, gain, alphaOnly);
        return;
    }
    simd::LightShaping shaping = ShapingOf(exponent, gain, alphaOnly);
    shaping.subtracts = true;
    shaping.threshold = threshold;
    ShapeByKernels(kernels.power, map, shaping);
}

}  // namespace vireon
