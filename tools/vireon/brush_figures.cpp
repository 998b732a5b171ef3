#include "tools/vireon/brush_figures.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace vireon::tool {

BrushFigures FiguresOf(const GlowKernel& kernel) {
    BrushFigures figures;
    figures.peak = static_cast<double>(kernel.row(0)[0]);
    figures.smallest = figures.peak;
    double momentX = 0;
    double momentY = 0;
    std::array<double, 3> within{};
    for (std::int32_t y = 0; y < kernel.height; ++y) {
        figures.zeroRows += kernel.rowIsEmpty(y) ? 1 : 0;
        for (std::int32_t x = 0; x < kernel.width; ++x) {
            const auto value = static_cast<double>(kernel.row(y)[x]);
            const int dx = x - kBrushCentre;
            const int dy = y - kBrushCentre;
            const int square = dx * dx + dy * dy;
            figures.sum += value;
            momentX += value * dx;
            momentY += value * dy;
            if (value > figures.peak) {
                figures.peak = value;
                figures.peakX = x;
                figures.peakY = y;
            }
            figures.smallest = std::min(figures.smallest, value);
            if (square >= kBrushRim * kBrushRim) {
                figures.rim = std::max(figures.rim, std::abs(value));
            }
            for (std::size_t i = 0; i < within.size(); ++i) {
                within[i] += square <= kShareRadii[i] * kShareRadii[i] ? value : 0.0;
            }
        }
    }
    if (figures.sum > 0) {
        // Below a millionth of a texel there is only rounding, whose sign would be shown.
        constexpr double kRounding = 1e-6;
        const auto offset = [&figures](double moment) {
            const double texels = moment / figures.sum;
            return std::abs(texels) < kRounding ? 0.0 : texels;
        };
        figures.offsetX = offset(momentX);
        figures.offsetY = offset(momentY);
        for (std::size_t i = 0; i < within.size(); ++i) {
            figures.share[i] = within[i] / figures.sum;
        }
    }
    return figures;
}

std::array<double, kBrushRim + 1> RadialMean(const GlowKernel& kernel) {
    std::array<double, kBrushRim + 1> sums{};
    std::array<int, kBrushRim + 1> counts{};
    for (std::int32_t y = 0; y < kernel.height; ++y) {
        for (std::int32_t x = 0; x < kernel.width; ++x) {
            const double dx = x - kBrushCentre;
            const double dy = y - kBrushCentre;
            const auto ring = static_cast<std::size_t>(std::sqrt(dx * dx + dy * dy) + 0.5);
            if (ring < sums.size()) {
                sums[ring] += static_cast<double>(kernel.row(y)[x]);
                ++counts[ring];
            }
        }
    }
    for (std::size_t i = 0; i < sums.size(); ++i) {
        sums[i] /= counts[i];
    }
    return sums;
}

}  // namespace vireon::tool
