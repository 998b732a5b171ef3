#include "tools/brushes/rasterise.h"

#include <cstddef>
#include <numeric>

namespace vireon::brushes {

namespace {

// Points along one side of a texel whose mean is the texel's sample.
constexpr int kSubdivision = 3;

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
            if (p.x * p.x + p.y * p.y < 1.0) {
                sum += shape.intensity(p);
            }
        }
    }
    return sum / (kSubdivision * kSubdivision);
}

// Leans the light evenly to one side, each texel by a factor 1 - ax - by that is 1 at the centre,
// so that its centroid comes to lie on the centre: a shape that is heavier on one side must not
// push the glow off its light. a and b make both first moments vanish.
void Balance(std::vector<double>& samples) {
    double mx = 0.0;
    double my = 0.0;
    double mxx = 0.0;
    double mxy = 0.0;
    double myy = 0.0;
    const auto eachTexel = [&](auto&& visit) {
        std::size_t index = 0;
        for (int row = 0; row < kBrushSize; ++row) {
            for (int column = 0; column < kBrushSize; ++column, ++index) {
                visit(samples[index], column - kBrushCentre, row - kBrushCentre);
            }
        }
    };
    eachTexel([&](double sample, double x, double y) {
        mx += sample * x;
        my += sample * y;
        mxx += sample * x * x;
        mxy += sample * x * y;
        myy += sample * y * y;
    });
    const double determinant = mxx * myy - mxy * mxy;
    const double a = (mx * myy - my * mxy) / determinant;
    const double b = (my * mxx - mx * mxy) / determinant;
    eachTexel([&](double& sample, double x, double y) { sample *= 1.0 - a * x - b * y; });
}

}  // namespace

std::vector<double> RasteriseShape(const Shape& shape) {
    std::vector<double> samples(static_cast<std::size_t>(kBrushSize) * kBrushSize, 0.0);
    std::size_t index = 0;
    for (int row = 0; row < kBrushSize; ++row) {
        for (int column = 0; column < kBrushSize; ++column, ++index) {
            const int dx = column - kBrushCentre;
            const int dy = row - kBrushCentre;
            if (dx * dx + dy * dy < kBrushRadius * kBrushRadius) {
                samples[index] = TexelMean(shape, column, row);
            }
        }
    }
    Balance(samples);
    const double energy = std::accumulate(samples.begin(), samples.end(), 0.0);
    for (double& sample : samples) {
        sample *= kBrushEnergy / energy;
    }
    return samples;
}

}  // namespace vireon::brushes
