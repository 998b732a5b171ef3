#include "glow/resample_pixels.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace vireon {
namespace {

float Ratio(std::int32_t sourceSize, std::int32_t size) {
    return static_cast<float>(sourceSize) / static_cast<float>(size);
}

void ResampleNearest(const FloatImage& source, const FloatImage& destination) {
    std::vector<std::int32_t> columns(static_cast<std::size_t>(destination.width));
    for (std::int32_t x = 0; x < destination.width; ++x) {
        columns[static_cast<std::size_t>(x)] = NearestSample(x, source.width, destination.width);
    }
    for (std::int32_t y = 0; y < destination.height; ++y) {
        const std::int32_t row = NearestSample(y, source.height, destination.height);
        float* out = destination.row(y);
        for (const std::int32_t column : columns) {
            out = std::copy_n(source.pixel(column, row), kChannels, out);
        }
    }
}

}  // namespace

SampleTap SampleTapAt(std::int32_t position, std::int32_t sourceSize, std::int32_t size) {
    const float sample = static_cast<float>(position) * Ratio(sourceSize, size);
    const std::int32_t first = std::min(static_cast<std::int32_t>(sample), sourceSize - 1);
    return {first, std::min(first + 1, sourceSize - 1), sample - static_cast<float>(first)};
}

std::int32_t NearestSample(std::int32_t position, std::int32_t sourceSize, std::int32_t size) {
    const auto index =
        static_cast<std::int32_t>(static_cast<float>(position) * Ratio(sourceSize, size) + 0.5f);
    return std::min(index, sourceSize - 1);
}

void ReduceNearest(const FloatImage& source, const FloatImage& destination) {
    ResampleNearest(source, destination);
}

void ReduceBilinear(const FloatImage& source, const FloatImage& destination, bool colourOnly) {
    std::vector<SampleTap> taps(static_cast<std::size_t>(destination.width));
    for (std::int32_t x = 0; x < destination.width; ++x) {
        taps[static_cast<std::size_t>(x)] = SampleTapAt(x, source.width, destination.width);
    }
    for (std::int32_t y = 0; y < destination.height; ++y) {
        const SampleTap vertical = SampleTapAt(y, source.height, destination.height);
        const float* top = source.row(vertical.first);
        const float* bottom = source.row(vertical.second);
        float* out = destination.row(y);
        for (const SampleTap& tap : taps) {
            const std::ptrdiff_t left = static_cast<std::ptrdiff_t>(tap.first) * kChannels;
            const std::ptrdiff_t right = static_cast<std::ptrdiff_t>(tap.second) * kChannels;
            if (colourOnly) out[kAlpha] = 0.0f;
            for (std::int32_t c = colourOnly ? kRed : kAlpha; c < kChannels; ++c) {
                const float above = BlendSamples(top[left + c], top[right + c], tap.fraction);
                const float below = BlendSamples(bottom[left + c], bottom[right + c], tap.fraction);
                out[c] = BlendSamples(above, below, vertical.fraction);
            }
            out += kChannels;
        }
    }
}

void ExpandNearest(const FloatImage& source, const FloatImage& destination) {
    ResampleNearest(source, destination);
}

}  // namespace vireon
