#include "composite/widening_pixels.h"

#include <algorithm>
#include <iterator>

#include "simd/kernel_table.h"

namespace vireon {
namespace {

// Positions outside a line take its end pixel: a reach beyond the line's length finds no more than
// one that ends right behind it.
WideningReach WithinLine(WideningReach reach, std::int32_t length) {
    return {std::min(reach.whole, length + 1), reach.fraction};
}

// Half width of the window that counts in full.
std::int32_t FullReach(WideningReach reach) {
    return std::max(reach.whole - 2, 0);
}

// Distance of the two pixels that count by the fraction.
std::int32_t RimOf(WideningReach reach) {
    return FullReach(reach) + 1;
}

// Rows of scratch memory that the kernels need: two blocks as long as the window, and one more.
std::int32_t ScratchRows(WideningReach reach) {
    return 2 * (2 * FullReach(reach) + 1) + 1;
}

// As many columns at once as keep their blocks within the second cache of common processors.
std::int32_t ColumnFloats(WideningReach reach) {
    constexpr std::int32_t kCachedFloats = 1 << 17;
    return std::clamp(kCachedFloats / ScratchRows(reach) / simd::kLeastWideningFloats, 1,
                      simd::kMostWideningFloats / simd::kLeastWideningFloats) *
           simd::kLeastWideningFloats;
}

float Larger(float current, float candidate) {
    return candidate > current ? candidate : current;
}

// `values` takes the line's values with its end pixels repeated on both sides.
void WidenLine(std::byte* first, std::ptrdiff_t step, std::int32_t length, WideningReach reach,
               float* values) {
    const auto at = [&](std::int32_t i) -> float& {
        return *reinterpret_cast<float*>(first + i * step);
    };
    const std::int32_t rim = RimOf(reach);
    for (std::int32_t i = 0; i < length + 2 * rim; ++i) {
        values[i] = at(std::clamp(i - rim, 0, length - 1));
    }
    for (std::int32_t x = 0; x < length; ++x) {
        const float* const here = values + x + rim;
        float largest = *here;
        std::int32_t k = 1;
        for (; k < reach.whole - 1; ++k) {
            largest = Larger(largest, here[-k]);
            largest = Larger(largest, here[k]);
        }
        largest = Larger(largest, reach.fraction * here[-k]);
        largest = Larger(largest, reach.fraction * here[k]);
        at(x) = largest;
    }
}

}  // namespace

std::size_t WideningScratchBytes(std::int32_t length, WideningReach reach) {
    const WideningReach within = WithinLine(reach, length);
    const auto plain =
        static_cast<std::size_t>(length) + 2 * static_cast<std::size_t>(RimOf(within));
    const auto kernels = static_cast<std::size_t>(ScratchRows(within)) *
                         static_cast<std::size_t>(ColumnFloats(within));
    return std::max(plain, kernels) * sizeof(float);
}

void WidenLight(const FloatImage& map, WideningReach reach, bool alongRows,
                const ChannelFlags& channels, void* scratch) {
    if (reach.whole == 0) return;
    const std::int32_t length = alongRows ? map.width : map.height;
    const std::int32_t lines = alongRows ? map.height : map.width;
    const WideningReach within = WithinLine(reach, length);
    const std::ptrdiff_t step =
        alongRows ? static_cast<std::ptrdiff_t>(kChannels * sizeof(float)) : map.rowBytes;

    for (std::int32_t index = 0; index < lines; ++index) {
        float* first = alongRows ? map.row(index) : map.pixel(index, 0);
        for (std::int32_t c = 0; c < kChannels; ++c) {
            if (!channels.enabled[c]) continue;
            WidenLine(reinterpret_cast<std::byte*>(first + c), step, length, within,
                      static_cast<float*>(scratch));
        }
    }
}

void WidenLight(const simd::KernelTable& kernels, const FloatImage& map, WideningReach reach,
                bool alongRows, const ChannelFlags& channels, void* scratch) {
    if (reach.whole == 0 || map.width <= 0 || map.height <= 0) return;
    const WideningReach within = WithinLine(reach, alongRows ? map.width : map.height);
    simd::WideningPass pass{map.pixels, map.rowBytes,         map.width,
                            map.height, FullReach(within),    within.fraction,
                            {},         ColumnFloats(within), static_cast<float*>(scratch)};
    std::copy(std::begin(channels.enabled), std::end(channels.enabled), pass.channels);
    (alongRows ? kernels.widening.alongRows : kernels.widening.alongColumns)(pass);
}

}  // namespace vireon
