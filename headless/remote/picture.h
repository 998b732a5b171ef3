#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vireon::headless {

/// Pixels between a program and a worker: straight colour in the memory order of the host's worlds,
/// alpha, red, green, blue, rows without padding, top row first. Channels are bytes (0..255),
/// 16-bit words (0..32768) or floats (white at 1), copied bit by bit.
struct Picture {
    std::int32_t width = 0;    ///< 1 to 30000
    std::int32_t height = 0;   ///< 1 to 30000
    std::int32_t bits = 8;     ///< bits a channel: 8, 16 or 32
    std::int32_t originX = 0;  ///< layer column of the first pixel
    std::int32_t originY = 0;
    std::vector<std::uint8_t> pixels;

    Picture() = default;
    /// A picture of zeros.
    Picture(std::int32_t newWidth, std::int32_t newHeight, std::int32_t newBits)
        : width(newWidth), height(newHeight), bits(newBits), pixels(rowBytes() * rows()) {}

    std::size_t rowBytes() const {
        return static_cast<std::size_t>(width) * static_cast<std::size_t>(bits / 2);
    }
    std::size_t rows() const { return static_cast<std::size_t>(height); }

    /// Channels of a row. `Channel` must be the type that belongs to `bits`.
    template <typename Channel>
    Channel* row(std::int32_t y) {
        return reinterpret_cast<Channel*>(pixels.data() + rowBytes() * static_cast<std::size_t>(y));
    }
    template <typename Channel>
    const Channel* row(std::int32_t y) const {
        return reinterpret_cast<const Channel*>(pixels.data() +
                                                rowBytes() * static_cast<std::size_t>(y));
    }

    bool operator==(const Picture&) const = default;
};

}  // namespace vireon::headless
