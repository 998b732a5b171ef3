#include "composite/widening_pixels.h"

#include <algorithm>
#include <iterator>

#include "simd/kernel_table.h"

namespace vireon {
namespace {

// Half width of the window that counts in full.
std::int32_t FullReach(WideningReach reach) {
    return std::max(reach.whole - 2, 0);
}

// Lines side by side need their blocks side by side; beyond this many lengths of the line that is
// much memory for little.
bool SuitsKernels(std::int32_t length, WideningReach reach) {
    constexpr std::int64_t kLongestBlocks = 4;
    return 2 * static_cast<std::int64_t>(FullReach(reach)) + 1 <= kLongestBlocks * length;
}

// As many columns at once as keep their blocks within the second cache of common processors.
std::int32_t ColumnFloats(WideningReach reach) {
    constexpr std::int32_t kCachedFloats = 1 << 17;
    const std::int32_t rows = 2 * (2 * FullReach(reach) + 1) + 1;
    return std::clamp(kCachedFloats / rows / simd::kLeastWideningFloats, 1,
                      simd::kMostWideningFloats / simd::kLeastWideningFloats) *
           simd::kLeastWideningFloats;
}

std::size_t KernelScratchBytes(WideningReach reach) {
    const std::size_t rows = 2 * (2 * static_cast<std::size_t>(FullReach(reach)) + 1) + 1;
    return rows * static_cast<std::size_t>(ColumnFloats(reach)) * sizeof(float);
}

// Three lines of the padded length: the values, and their running maxima up to and from the borders
// of blocks as long as the window.
struct LineBuffers {
    float* values;
    float* fromBlockStart;
    float* toBlockEnd;
};

// Any window of one block's length spans at most two blocks, so its maximum is that of one running
// maximum of each. Source: M. van Herk, "A fast algorithm for local minimum and maximum filters on
// rectangular and octagonal kernels", 1992.
void RunningMaxima(const LineBuffers& line, std::int32_t length, std::int32_t block) {
    for (std::int32_t i = 0; i < length; ++i) {
        const float value = line.values[i];
        line.fromBlockStart[i] =
            i % block == 0 ? value : std::max(line.fromBlockStart[i - 1], value);
    }
    for (std::int32_t i = length - 1; i >= 0; --i) {
        const float value = line.values[i];
        const bool blockEnd = i == length - 1 || (i + 1) % block == 0;
        line.toBlockEnd[i] = blockEnd ? value : std::max(line.toBlockEnd[i + 1], value);
    }
}

float Larger(float current, float candidate) {
    return candidate > current ? candidate : current;
}

void WidenLine(std::byte* first, std::ptrdiff_t step, std::int32_t length, WideningReach reach,
               const LineBuffers& line) {
    const auto at = [&](std::int32_t i) -> float& {
        return *reinterpret_cast<float*>(first + i * step);
    };
    const std::int32_t n = reach.whole;
    const std::int32_t padded = length + 2 * n;
    for (std::int32_t i = 0; i < padded; ++i) {
        line.values[i] = at(std::clamp(i - n, 0, length - 1));
    }
    const std::int32_t full = FullReach(reach);
    RunningMaxima(line, padded, 2 * full + 1);

    const std::int32_t rim = n >= 2 ? n - 1 : 1;
    for (std::int32_t x = 0; x < length; ++x) {
        const std::int32_t p = x + n;
        float largest = line.values[p];
        largest = Larger(largest, line.toBlockEnd[p - full]);
        largest = Larger(largest, line.fromBlockStart[p + full]);
        largest = Larger(largest, reach.fraction * line.values[p - rim]);
        largest = Larger(largest, reach.fraction * line.values[p + rim]);
        at(x) = largest;
    }
}

}  // namespace

std::size_t WideningScratchBytes(std::int32_t length, WideningReach reach) {
    const auto padded =
        static_cast<std::size_t>(length) + 2 * static_cast<std::size_t>(reach.whole);
    const std::size_t plain = 3 * padded * sizeof(float);
    return SuitsKernels(length, reach) ? std::max(plain, KernelScratchBytes(reach)) : plain;
}

void WidenLight(const FloatImage& map, WideningReach reach, bool alongRows,
                const ChannelFlags& channels, void* scratch) {
    if (reach.whole == 0) return;
    const std::int32_t length = alongRows ? map.width : map.height;
    const std::int32_t lines = alongRows ? map.height : map.width;
    const std::ptrdiff_t padded = length + 2 * static_cast<std::ptrdiff_t>(reach.whole);
    auto* values = static_cast<float*>(scratch);
    const LineBuffers buffers{values, values + padded, values + 2 * padded};
    const std::ptrdiff_t step =
        alongRows ? static_cast<std::ptrdiff_t>(kChannels * sizeof(float)) : map.rowBytes;

    for (std::int32_t index = 0; index < lines; ++index) {
        float* first = alongRows ? map.row(index) : map.pixel(index, 0);
        for (std::int32_t c = 0; c < kChannels; ++c) {
            if (!channels.enabled[c]) continue;
            WidenLine(reinterpret_cast<std::byte*>(first + c), step, length, reach, buffers);
        }
    }
}

void WidenLight(const simd::KernelTable& kernels, const FloatImage& map, WideningReach reach,
                bool alongRows, const ChannelFlags& channels, void* scratch) {
    if (reach.whole == 0 || map.width <= 0 || map.height <= 0) return;
    if (!SuitsKernels(alongRows ? map.width : map.height, reach)) {
        WidenLight(map, reach, alongRows, channels, scratch);
        return;
    }
    simd::WideningPass pass{
        map.pixels,  map.rowBytes,   map.width, map.height,          FullReach(reach),
        reach.whole, reach.fraction, {},        ColumnFloats(reach), static_cast<float*>(scratch)};
    std::copy(std::begin(channels.enabled), std::end(channels.enabled), pass.channels);
    (alongRows ? kernels.widening.alongRows : kernels.widening.alongColumns)(pass);
}

}  // namespace vireon
