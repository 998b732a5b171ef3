#include "composite/brightness_pixels.h"

#include "composite/finite_light.h"
#include "image/exact_math.h"
#include "image/tolerance.h"

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

}  // namespace vireon
