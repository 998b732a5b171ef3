#pragma once

#include <cstddef>
#include <cstdint>

namespace vireon {

/// View of a raster of 32-bit float pixels, four floats a pixel in the order alpha, red, green,
/// blue. It owns nothing. Rows follow each other at `rowBytes`, which may exceed the pixels of a
/// row and may be negative (rows going up in memory); `pixels` is always the first pixel of row 0.
/// Pixels are aligned as floats are, no further.
struct FloatImage {
    float* pixels = nullptr;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::ptrdiff_t rowBytes = 0;

    /// First float of row `y`; `y` must lie in 0 to height - 1.
    float* row(std::int32_t y) const {
        return reinterpret_cast<float*>(reinterpret_cast<std::byte*>(pixels) + y * rowBytes);
    }
    /// First float of the pixel (x, y).
    float* pixel(std::int32_t x, std::int32_t y) const {
        return row(y) + static_cast<std::ptrdiff_t>(x) * 4;
    }
};

/// Places of the channels in every working pixel.
inline constexpr std::int32_t kAlpha = 0;
inline constexpr std::int32_t kRed = 1;
inline constexpr std::int32_t kGreen = 2;
inline constexpr std::int32_t kBlue = 3;
inline constexpr std::int32_t kChannels = 4;

/// Which of a pixel's four floats a pass works on, by their place in the pixel.
struct ChannelFlags {
    bool enabled[kChannels] = {true, true, true, true};

    std::int32_t count() const {
        std::int32_t n = 0;
        for (const bool on : enabled) n += on ? 1 : 0;
        return n;
    }
};

}  // namespace vireon
