#include "shapes/glow_kernel.h"

#include <algorithm>

namespace vireon {

void GlowKernel::allocate(std::int32_t newWidth, std::int32_t newHeight) {
    // The flags first: a kernel counts as usable as soon as it has texels.
    emptyRows.assign(static_cast<std::size_t>(newHeight), 0);
    values.assign(static_cast<std::size_t>(newWidth) * static_cast<std::size_t>(newHeight), 0.0f);
    width = newWidth;
    height = newHeight;
}

void GlowKernel::flagEmptyRows() {
    for (std::int32_t y = 0; y < height; ++y) {
        const float* texels = row(y);
        const bool empty = std::all_of(texels, texels + width, [](float v) { return v == 0.0f; });
        emptyRows[static_cast<std::size_t>(y)] = empty ? 1 : 0;
    }
}

}  // namespace vireon
