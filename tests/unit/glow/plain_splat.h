#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "shapes/glow_kernel.h"
#include "tests/unit/support/picture.h"

namespace vireon::test {

/// A kernel of random texels, of which some rows are black.
inline GlowKernel RandomKernel(Random& random, std::int32_t width, std::int32_t height,
                               float low = 0.0f, float high = 1.0f) {
    GlowKernel kernel;
    kernel.allocate(width, height);
    for (std::int32_t y = 0; y < height; ++y) {
        const bool black = random.whole(0, 3) == 0;
        for (std::int32_t x = 0; x < width; ++x) {
            if (!black) {
                kernel.values[static_cast<std::size_t>(y * width + x)] = random.real(low, high);
            }
        }
    }
    kernel.flagEmptyRows();
    return kernel;
}

/// A stamp as it is defined: texel by texel, single precision, two rows before two columns.
inline float PlainTexel(const GlowKernel& kernel, std::int32_t dx, std::int32_t dy, float s) {
    const auto place = [](std::int32_t distance, std::int32_t size, float radius) {
        const float step = (static_cast<float>(size) * 0.5f) / radius;
        const float u = static_cast<float>(distance) * step + static_cast<float>(size) * 0.5f;
        return std::clamp(u, 0.0f, static_cast<float>(size - 1));
    };
    const float u = place(dx, kernel.width, s);
    const float t = place(dy, kernel.height, s);
    const auto left = static_cast<std::int32_t>(std::floor(u));
    const auto top = static_cast<std::int32_t>(std::floor(t));
    const float fx = u - static_cast<float>(left);
    const float ft = t - static_cast<float>(top);
    const auto texel = [&](std::int32_t x, std::int32_t y) {
        const std::int32_t row = std::min(y, kernel.height - 1);
        if (kernel.rowIsEmpty(row)) return 0.0f;
        return kernel.row(row)[std::min(x, kernel.width - 1)];
    };
    const auto column = [&](std::int32_t x) {
        if (ft == 0.0f) return texel(x, top);
        return (1.0f - ft) * texel(x, top) + ft * texel(x, top + 1);
    };
    if (fx == 0.0f) return column(left);
    return (1.0f - fx) * column(left) + fx * column(left + 1);
}

/// Adds one stamp of a source value to the channels first to last.
inline void PlainStamp(Picture& destination, const GlowKernel& kernel, float weight, float radius,
                       std::int32_t maxRadius, std::int32_t x, std::int32_t y, float value,
                       std::int32_t first, std::int32_t last) {
    float s = value * radius;
    if (std::isnan(s) || !(s >= 1.0f) || maxRadius <= 0) return;
    std::int32_t r = 0;
    if (s >= static_cast<float>(maxRadius)) {
        r = maxRadius;
        s = static_cast<float>(maxRadius);
    } else {
        r = static_cast<std::int32_t>(s) + 1;
    }
    for (std::int32_t row = std::max(0, y - r); row <= std::min(destination.height() - 1, y + r);
         ++row) {
        for (std::int32_t column = std::max(0, x - r);
             column <= std::min(destination.width() - 1, x + r); ++column) {
            const float k = PlainTexel(kernel, column - x, row - y, s);
            for (std::int32_t c = first; c <= last; ++c) {
                destination.at(column, row, c) += k * weight;
            }
        }
    }
}

/// The general splat of a whole picture.
inline void PlainSplat(const Picture& source, Picture& destination, const GlowKernel& kernel,
                       float weight, float radius, std::int32_t maxRadius,
                       const ChannelFlags& channels) {
    for (std::int32_t y = 0; y < source.height(); ++y) {
        for (std::int32_t x = 0; x < source.width(); ++x) {
            for (std::int32_t c = 0; c < kChannels; ++c) {
                if (!channels.enabled[c]) continue;
                PlainStamp(destination, kernel, weight, radius, maxRadius, x, y, source.at(x, y, c),
                           c, c);
            }
        }
    }
}

}  // namespace vireon::test
