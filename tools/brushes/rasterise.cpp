#include "tools/brushes/rasterise.h"

#include <cstddef>

#include "tools/brushes/series.h"

namespace vireon::brushes {

namespace {

// Points along one side of a texel whose mean is the texel's sample.
constexpr int kSubdivision = 3;

// The window is 1 inside this distance from the centre (in radii) and falls to 0 at the rim.
constexpr double kWindowStart = 0.60;

// The points of a texel reach half a texel further out than its centre; the shape ends this much
// inside the rim, so that the last texels fade instead of being cut.
constexpr double kDrawnRadius = kBrushRadius - 1.0;

double TexelMean(const Shape& shape, int column, int row) {
    double sum = 0.0;
    for (int j = 0; j < kSubdivision; ++j) {
        const double y = row - kBrushCentre + (j + 0.5) / kSubdivision - 0.5;
        for (int i = 0; i < kSubdivision; ++i) {
            const double x = column - kBrushCentre + (i + 0.5) / kSubdivision - 0.5;
            const Position p{x / kDrawnRadius, y / kDrawnRadius};
            const double window = 1.0 - SmoothRamp(kWindowStart, 1.0, Distance(p));
            if (window > 0.0) {
                sum += window * shape.intensity(p);
            }
        }
    }
    return sum / (kSubdivision * kSubdivision);
}

}  // namespace

std::vector<double> RasteriseShape(const Shape& shape) {
    std::vector<double> samples(static_cast<std::size_t>(kBrushSize) * kBrushSize, 0.0);
    double energy = 0.0;
    std::size_t index = 0;
    for (int row = 0; row < kBrushSize; ++row) {
        for (int column = 0; column < kBrushSize; ++column, ++index) {
            const int dx = column - kBrushCentre;
            const int dy = row - kBrushCentre;
            if (dx * dx + dy * dy < kBrushRadius * kBrushRadius) {
                samples[index] = TexelMean(shape, column, row);
                energy += samples[index];
            }
        }
    }
    for (double& sample : samples) {
        sample *= kBrushEnergy / energy;
    }
    return samples;
}

}  // namespace vireon::brushes
