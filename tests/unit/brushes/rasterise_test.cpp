#include "tools/brushes/rasterise.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <map>
#include <numeric>
#include <stdexcept>
#include <string>
#include <vector>

#include "tools/brushes/shapes.h"

namespace vireon::brushes {
namespace {

using Samples = std::vector<double>;

double At(const Samples& samples, int column, int row) {
    return samples[static_cast<std::size_t>(row) * kBrushSize + static_cast<std::size_t>(column)];
}

double Peak(const Samples& samples) {
    return *std::max_element(samples.begin(), samples.end());
}

// Every shape is drawn once for all tests.
const Samples& Drawn(const Shape& shape) {
    static std::map<std::string, Samples> drawn;
    Samples& samples = drawn[shape.fileName];
    if (samples.empty()) {
        samples = RasteriseShape(shape);
    }
    return samples;
}

const Shape& Named(const std::string& name) {
    const auto shapes = Shapes();
    const auto found = std::find_if(shapes.begin(), shapes.end(),
                                    [&](const Shape& shape) { return shape.name == name; });
    if (found == shapes.end()) {
        throw std::invalid_argument("no shape " + name);
    }
    return *found;
}

// The sum of a stamp of the given radius as a glow lays it: the brush read between its texels at
// every pixel around the light, times the brush area that a pixel stands for.
double StampEnergy(const Samples& samples, double radius) {
    const double step = 0.5 * kBrushSize / radius;
    const int reach = static_cast<int>(radius) + 1;
    const auto texel = [&](int offset) {
        return std::clamp(offset * step + kBrushCentre, 0.0, kBrushSize - 1.0);
    };
    double sum = 0.0;
    for (int dy = -reach; dy <= reach; ++dy) {
        const double v = texel(dy);
        const int top = static_cast<int>(v);
        const int bottom = std::min(top + 1, kBrushSize - 1);
        for (int dx = -reach; dx <= reach; ++dx) {
            const double u = texel(dx);
            const int left = static_cast<int>(u);
            const int right = std::min(left + 1, kBrushSize - 1);
            const double above =
                std::lerp(At(samples, left, top), At(samples, right, top), u - left);
            const double below =
                std::lerp(At(samples, left, bottom), At(samples, right, bottom), u - left);
            sum += std::lerp(above, below, v - top);
        }
    }
    return sum * step * step;
}

class EveryShape : public testing::TestWithParam<std::size_t> {
  protected:
    const Shape& shape() const { return Shapes()[GetParam()]; }
    const Samples& samples() const { return Drawn(shape()); }
};

TEST_P(EveryShape, HasFiniteSamplesThatAreNotNegative) {
    ASSERT_EQ(samples().size(), 65536u);
    for (const double sample : samples()) {
        ASSERT_TRUE(std::isfinite(sample));
        ASSERT_GE(sample, 0.0);
    }
}

TEST_P(EveryShape, IsExactlyZeroAtTheRimAndBeyond) {
    for (int i = 0; i < kBrushSize; ++i) {
        EXPECT_EQ(At(samples(), i, 0), 0.0);
        EXPECT_EQ(At(samples(), 0, i), 0.0);
        EXPECT_EQ(At(samples(), i, kBrushSize - 1), 0.0);
        EXPECT_EQ(At(samples(), kBrushSize - 1, i), 0.0);
    }
    for (int row = 0; row < kBrushSize; ++row) {
        for (int column = 0; column < kBrushSize; ++column) {
            if (std::hypot(column - 128, row - 128) >= 127.0) {
                ASSERT_EQ(At(samples(), column, row), 0.0) << column << ", " << row;
            }
        }
    }
}

TEST_P(EveryShape, FadesTowardsTheRimWithoutAnEdge) {
    const double peak = Peak(samples());
    for (int row = 0; row < kBrushSize; ++row) {
        for (int column = 0; column < kBrushSize; ++column) {
            if (std::hypot(column - 128, row - 128) >= 122.0) {
                ASSERT_LE(At(samples(), column, row), 0.001 * peak) << column << ", " << row;
            }
        }
    }
}

TEST_P(EveryShape, CarriesTheCommonAmountOfLight) {
    EXPECT_NEAR(std::accumulate(samples().begin(), samples().end(), 0.0), kBrushEnergy, 1e-6);
}

TEST_P(EveryShape, IsBrightestAtItsCentre) {
    EXPECT_GE(At(samples(), 128, 128), 0.95 * Peak(samples()));
}

// A stamp reads single points of the brush. Nothing in a shape may be so fine that a small stamp
// misses it, or catches too much of it.
TEST_P(EveryShape, KeepsItsLightInSmallStamps) {
    for (const double radius : {8.0, 8.84, 10.5, 12.0, 16.0, 25.0, 35.4, 100.0}) {
        EXPECT_NEAR(StampEnergy(samples(), radius) / kBrushEnergy, 1.0, 0.06) << radius;
    }
}

TEST_P(EveryShape, IsDrawnTheSameTwice) {
    const Samples again = RasteriseShape(shape());
    ASSERT_EQ(again.size(), samples().size());
    EXPECT_EQ(std::memcmp(again.data(), samples().data(), again.size() * sizeof(double)), 0);
}

INSTANTIATE_TEST_SUITE_P(Brushes, EveryShape, testing::Range<std::size_t>(0, 13),
                         [](const testing::TestParamInfo<std::size_t>& param) {
                             std::string name = Shapes()[param.param].name;
                             std::erase(name, ' ');
                             return name;
                         });

TEST(Shapes, BalancedOnesHaveTheirCentroidOnTheCentre) {
    for (const char* name : {"Gaussian", "Hoop", "Mass", "Six Flare", "Six Spike Horizontal",
                             "Six Spike Vertical", "Tent", "Whoopy", "Zig"}) {
        const Samples& samples = Drawn(Named(name));
        double x = 0.0;
        double y = 0.0;
        for (int row = 0; row < kBrushSize; ++row) {
            for (int column = 0; column < kBrushSize; ++column) {
                x += column * At(samples, column, row);
                y += row * At(samples, column, row);
            }
        }
        EXPECT_NEAR(x / kBrushEnergy, 128.0, 0.01) << name;
        EXPECT_NEAR(y / kBrushEnergy, 128.0, 0.01) << name;
    }
}

TEST(Shapes, RoundOnesAreEvenInEveryDirection) {
    for (const char* name : {"Gaussian", "Hoop", "Mass", "Tent"}) {
        const Samples& samples = Drawn(Named(name));
        const double tolerance = 1e-9;
        for (int i = 1; i <= 127; ++i) {
            EXPECT_NEAR(At(samples, 128 + i, 128), At(samples, 128 - i, 128), tolerance) << name;
            EXPECT_NEAR(At(samples, 128 + i, 128), At(samples, 128, 128 + i), tolerance) << name;
        }
        // (60, 80) lies as far out as (100, 0).
        EXPECT_NEAR(At(samples, 128 + 60, 128 + 80), At(samples, 228, 128), 0.01 * Peak(samples))
            << name;
    }
}

TEST(Shapes, SpikesLieAlongTheAxesTheyAreNamedFor) {
    constexpr int kOut = 80;
    const Samples& horizontal = Drawn(Named("Six Spike Horizontal"));
    EXPECT_GT(At(horizontal, 128 + kOut, 128), 5.0 * At(horizontal, 128, 128 + kOut));
    EXPECT_GT(At(horizontal, 128 - kOut, 128), 5.0 * At(horizontal, 128, 128 - kOut));
    const Samples& vertical = Drawn(Named("Six Spike Vertical"));
    EXPECT_GT(At(vertical, 128, 128 + kOut), 5.0 * At(vertical, 128 + kOut, 128));
    EXPECT_GT(At(vertical, 128, 128 - kOut), 5.0 * At(vertical, 128 - kOut, 128));
}

TEST(Shapes, HoopIsDarkBetweenItsCoreAndItsRing) {
    const Samples& hoop = Drawn(Named("Hoop"));
    EXPECT_GT(At(hoop, 128 + 88, 128), 4.0 * At(hoop, 128 + 56, 128));
}

TEST(Shapes, MassIsEvenOverItsBody) {
    const Samples& mass = Drawn(Named("Mass"));
    EXPECT_GT(At(mass, 128 + 38, 128), 0.70 * At(mass, 128, 128));
}

TEST(Shapes, TentFallsInAStraightLine) {
    // Outside the core and inside the window.
    const Samples& tent = Drawn(Named("Tent"));
    const double slope = (At(tent, 128 + 45, 128) - At(tent, 128 + 70, 128)) / 25.0;
    for (int i = 45; i < 70; ++i) {
        EXPECT_NEAR(At(tent, 128 + i, 128) - At(tent, 129 + i, 128), slope, 0.02 * slope) << i;
    }
}

}  // namespace
}  // namespace vireon::brushes
