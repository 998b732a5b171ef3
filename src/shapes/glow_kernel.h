#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vireon {

/// A glow shape: width x height texels in rows, top row first. An empty kernel has no texels; its
/// width and height may still say what a rejected file claimed.
struct GlowKernel {
    std::vector<float> values;            ///< width x height texels
    std::vector<std::uint8_t> emptyRows;  ///< one flag a row: 1 when every texel of it is 0
    std::int32_t width = 0;
    std::int32_t height = 0;

    bool hasTexels() const { return !values.empty(); }
    const float* row(std::int32_t y) const {
        return values.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width);
    }
    bool rowIsEmpty(std::int32_t y) const { return emptyRows[static_cast<std::size_t>(y)] != 0; }

    /// Gives the kernel its size and zeroes every texel.
    void allocate(std::int32_t newWidth, std::int32_t newHeight);
    /// Sets each row's flag from its texels; -0.0 counts as 0.
    void flagEmptyRows();
};

}  // namespace vireon
