#pragma once

#include <cstddef>
#include <cstdint>

namespace vireon {

/// Where the pixels of a raster lie and what they mean.
struct RasterLayout {
    void* pixels = nullptr;          ///< first pixel of row 0; not owned by this record
    std::int32_t formatCode = 0;     ///< depth and channel order, see image/pixel_format.h
    std::int32_t width = 0;          ///< pixels
    std::int32_t height = 0;         ///< rows
    std::int32_t rowBytes = 0;       ///< from row to row, may exceed the pixels and may be negative
    std::int32_t bytesPerPixel = 0;  ///< 4, 8 or 16
    float pixelAspectRatio = 1.0f;   ///< width of a pixel over its height; 1.0 for memory rasters
    float valueScale = 1.0f;         ///< 1.0 but for 16-bit host worlds
    std::int32_t reserved = 0;

    /// First byte of row `y`; `y` must lie in 0 to height - 1.
    std::byte* row(std::int32_t y) const {
        return static_cast<std::byte*>(pixels) + static_cast<std::ptrdiff_t>(y) * rowBytes;
    }
};

}  // namespace vireon
