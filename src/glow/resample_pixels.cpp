#include "glow/resample_pixels.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace vireon {
namespace {

float Ratio(std::int32_t sourceSize, std::int32_t destinationSize) {
    return static_cast<float>(sourceSize) / static_cast<float>(destinationSize);
}

std::int32_t NearestIndex(std::int32_t position, float ratio, std::int32_t sourceSize) {
    const auto index = static_cast<std::int32_t>(static_cast<float>(position) * ratio + 0.5f);
    return std::min(index, sourceSize - 1);
}

void ResampleNearest(const FloatImage& source, const FloatImage& destination) {
    const float ratioX = Ratio(source.width, destination.width);
    const float ratioY = Ratio(source.height, destination.height);
    std::vector<std::int32_t> columns(static_cast<std::size_t>(destination.width));
    for (std::int32_t x = 0; x < destination.width; ++x) {
        columns[static_cast<std::size_t>(x)] = NearestIndex(x, ratioX, source.width);
    }
    for (std::int32_t y = 0; y < destination.height; ++y) {
        const std::int32_t row = NearestIndex(y, ratioY, source.height);
        float* out = destination.row(y);
        for (const std::int32_t column : columns) {
            out = std::copy_n(source.pixel(column, row), kChannels, out);
        }
    }
}

// Two neighbours and how far the sample lies from the first to the second.
struct Tap {
    std::int32_t first;
    std::int32_t second;
    float fraction;
};

Tap TapAt(std::int32_t position, float ratio, std::int32_t sourceSize) {
    const float sample = static_cast<float>(position) * ratio;
    const std::int32_t first = std::min(static_cast<std::int32_t>(sample), sourceSize - 1);
    return {first, std::min(first + 1, sourceSize - 1), sample - static_cast<float>(first)};
}

// A fraction of exactly 0 or 1 reads one sample only, so that what lies beside it, however large
// or undefined, cannot reach the result.
float Blend(float first, float second, float fraction) {
    if (fraction == 0.0f) return first;
    if (fraction == 1.0f) return second;
    return (1.0f - fraction) * first + fraction * second;
}

}  // namespace

void ReduceNearest(const FloatImage& source, const FloatImage& destination) {
    ResampleNearest(source, destination);
}

void ReduceBilinear(const FloatImage& source, const FloatImage& destination, bool colourOnly) {
    const float ratioX = Ratio(source.width, destination.width);
    const float ratioY = Ratio(source.height, destination.height);
    std::vector<Tap> taps(static_cast<std::size_t>(destination.width));
    for (std::int32_t x = 0; x < destination.width; ++x) {
        taps[static_cast<std::size_t>(x)] = TapAt(x, ratioX, source.width);
    }
    for (std::int32_t y = 0; y < destination.height; ++y) {
        const Tap vertical = TapAt(y, ratioY, source.height);
        const float* top = source.row(vertical.first);
        const float* bottom = source.row(vertical.second);
        float* out = destination.row(y);
        for (const Tap& tap : taps) {
            const std::ptrdiff_t left = static_cast<std::ptrdiff_t>(tap.first) * kChannels;
            const std::ptrdiff_t right = static_cast<std::ptrdiff_t>(tap.second) * kChannels;
            if (colourOnly) out[kAlpha] = 0.0f;
            for (std::int32_t c = colourOnly ? kRed : kAlpha; c < kChannels; ++c) {
                const float above = Blend(top[left + c], top[right + c], tap.fraction);
                const float below = Blend(bottom[left + c], bottom[right + c], tap.fraction);
                out[c] = Blend(above, below, vertical.fraction);
            }
            out += kChannels;
        }
    }
}

void ExpandNearest(const FloatImage& source, const FloatImage& destination) {
    ResampleNearest(source, destination);
}

}  // namespace vireon
