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

// A step at the rim would draw a circle, a cut branch an edge. The cone of Tent is the steepest.
TEST_P(EveryShape, FadesTowardsTheRimWithoutAnEdge) {
    const double peak = Peak(samples());
    for (int row = 1; row < kBrushSize; ++row) {
        for (int column = 1; column < kBrushSize; ++column) {
            if (std::hypot(column - 128, row - 128) >= 120.0) {
                const double here = At(samples(), column, row);
                ASSERT_LE(std::abs(here - At(samples(), column - 1, row)), 0.009 * peak);
                ASSERT_LE(std::abs(here - At(samples(), column, row - 1)), 0.009 * peak);
            }
        }
    }
}

TEST_P(EveryShape, CarriesTheCommonAmountOfLight) {
    EXPECT_NEAR(std::accumulate(samples().begin(), samples().end(), 0.0), kBrushEnergy, 1e-6);
}

TEST_P(EveryShape, HasItsCentroidOnTheCentre) {
    double x = 0.0;
    double y = 0.0;
    for (int row = 0; row < kBrushSize; ++row) {
        for (int column = 0; column < kBrushSize; ++column) {
            x += column * At(samples(), column, row);
            y += row * At(samples(), column, row);
        }
    }
    EXPECT_NEAR(x / kBrushEnergy, 128.0, 1e-6);
    EXPECT_NEAR(y / kBrushEnergy, 128.0, 1e-6);
}

// The light itself stays the brightest place; beads of a splash or arms of a whirl that outshone it
// would look like lights of their own. The ring of Hoop is the exception: it is the shape.
TEST_P(EveryShape, IsBrightestAtItsCentre) {
    EXPECT_GE(At(samples(), 128, 128), 0.92 * Peak(samples()));
}

// A stamp reads single points of the brush. Nothing in a shape may be so fine that a small stamp
// misses it, or catches too much of it, whatever the radius.
TEST_P(EveryShape, KeepsItsLightInSmallStamps) {
    const auto gain = [&](double radius) { return StampEnergy(samples(), radius) / kBrushEnergy; };
    for (double radius = 2.0; radius < 3.0; radius += 0.05) {
        EXPECT_NEAR(gain(radius), 1.05, 0.22) << radius;
    }
    for (double radius = 3.0; radius < 8.0; radius *= 1.01) {
        EXPECT_NEAR(gain(radius), 1.01, 0.11) << radius;
    }
    for (double radius = 8.0; radius < 20.0; radius *= 1.02) {
        EXPECT_NEAR(gain(radius), 1.0, 0.035) << radius;
    }
    for (const double radius : {25.0, 35.4, 100.0, 500.0}) {
        EXPECT_NEAR(gain(radius), 1.0, 0.002) << radius;
    }
}

// The smallest stamps are little more than the shape's middle texel, so they show how needle-like
// it is.
TEST_P(EveryShape, IsNoNeedle) {
    EXPECT_LE(StampEnergy(samples(), 1.2) / kBrushEnergy, 2.4);
    EXPECT_LE(StampEnergy(samples(), 1.5) / kBrushEnergy, 1.8);
}

// Neighbouring texels of a line that is drawn without enough points differ by most of its light.
TEST_P(EveryShape, HasNoJaggedLines) {
    const double peak = Peak(samples());
    for (int row = 1; row < kBrushSize; ++row) {
        for (int column = 1; column < kBrushSize; ++column) {
            const double here = At(samples(), column, row);
            ASSERT_LE(std::abs(here - At(samples(), column - 1, row)), 0.06 * peak);
            ASSERT_LE(std::abs(here - At(samples(), column, row - 1)), 0.06 * peak);
        }
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

TEST(Shapes, RoundOnesAreEvenInEveryDirection) {
    for (const char* name : {"Gaussian", "Hoop", "Mass", "Tent"}) {
        const Samples& samples = Drawn(Named(name));
        const double tolerance = 1e-9;
        for (int i = 1; i <= 127; ++i) {
            EXPECT_NEAR(At(samples, 128 + i, 128), At(samples, 128 - i, 128), tolerance) << name;
            EXPECT_NEAR(At(samples, 128 + i, 128), At(samples, 128, 128 + i), tolerance) << name;
        }
        for (int i = 1; i <= 89; ++i) {
            EXPECT_NEAR(At(samples, 128 + i, 128 + i), At(samples, 128 - i, 128 + i), tolerance)
                << name;
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

// Samples at the six directions of even spikes, between which they are dark.
TEST(Shapes, EvenSpikesAreSixAndAlike) {
    constexpr double kOut = 90.0;
    const auto at = [](const Samples& samples, double turns) {
        const double angle = turns * 2.0 * std::acos(-1.0);
        return At(samples, static_cast<int>(std::lround(128.0 + kOut * std::cos(angle))),
                  static_cast<int>(std::lround(128.0 + kOut * std::sin(angle))));
    };
    const std::map<std::string, double> firsts{
        {"Six Flare", 1.0 / 24.0}, {"Six Spike Horizontal", 0.0}, {"Six Spike Vertical", 0.25}};
    for (const auto& [name, first] : firsts) {
        const Samples& samples = Drawn(Named(name));
        const double on = at(samples, first);
        for (int i = 0; i < 6; ++i) {
            EXPECT_NEAR(at(samples, first + i / 6.0), on, 0.15 * on) << name << " " << i;
            EXPECT_LT(at(samples, first + (i + 0.5) / 6.0), 0.4 * on) << name << " " << i;
        }
    }
}

TEST(Shapes, VerticalSpikesAreTheHorizontalOnesTurned) {
    const Samples& horizontal = Drawn(Named("Six Spike Horizontal"));
    const Samples& vertical = Drawn(Named("Six Spike Vertical"));
    const double tolerance = 1e-6 * Peak(horizontal);
    for (int y = -127; y <= 127; ++y) {
        for (int x = -127; x <= 127; ++x) {
            ASSERT_NEAR(At(vertical, 128 - y, 128 + x), At(horizontal, 128 + x, 128 + y), tolerance)
                << x << ", " << y;
        }
    }
}

TEST(Shapes, TurnedByHalfACircleTheBoltIsTheSame) {
    for (const char* name : {"Zig", "Six Flare", "Six Spike Horizontal"}) {
        const Samples& samples = Drawn(Named(name));
        for (int y = -127; y <= 127; ++y) {
            for (int x = -127; x <= 127; ++x) {
                ASSERT_NEAR(At(samples, 128 - x, 128 - y), At(samples, 128 + x, 128 + y),
                            1e-6 * Peak(samples))
                    << name << " " << x << ", " << y;
            }
        }
    }
}

TEST(Shapes, GaussianFallsFromItsSoftCoreWithoutEverRising) {
    const Samples& gaussian = Drawn(Named("Gaussian"));
    EXPECT_GT(At(gaussian, 128 + 6, 128), 0.9 * At(gaussian, 128, 128));
    EXPECT_GT(At(gaussian, 128 + 64, 128), 0.05 * At(gaussian, 128, 128));
    for (int i = 1; i <= 127; ++i) {
        EXPECT_LE(At(gaussian, 128 + i, 128), At(gaussian, 127 + i, 128)) << i;
    }
}

TEST(Shapes, HoopIsARingAroundADimmerInside) {
    const Samples& hoop = Drawn(Named("Hoop"));
    EXPECT_GT(At(hoop, 128 + 83, 128), 2.4 * At(hoop, 128 + 50, 128));
    EXPECT_GT(At(hoop, 128 + 83, 128), 10.0 * At(hoop, 128 + 116, 128));
}

TEST(Shapes, MassIsEvenOverItsBodyAndSoftAtItsEdge) {
    const Samples& mass = Drawn(Named("Mass"));
    EXPECT_GT(At(mass, 128 + 38, 128), 0.80 * At(mass, 128, 128));
    EXPECT_LT(At(mass, 128 + 110, 128), 0.02 * At(mass, 128, 128));
}

TEST(Shapes, TentFallsInAStraightLineToTheRim) {
    const Samples& tent = Drawn(Named("Tent"));
    const double slope = (At(tent, 128 + 10, 128) - At(tent, 128 + 110, 128)) / 100.0;
    for (int i = 4; i < 124; ++i) {
        EXPECT_NEAR(At(tent, 128 + i, 128) - At(tent, 129 + i, 128), slope, 0.01 * slope) << i;
    }
}

}  // namespace
}  // namespace vireon::brushes
