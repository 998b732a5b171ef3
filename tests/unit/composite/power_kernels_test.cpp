// Threshold and power by kernels give the bits of the plain definitions, at every level.

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

#include "composite/brightness_pixels.h"
#include "tests/unit/support/levels.h"
#include "tests/unit/support/light_data.h"
#include "tests/unit/support/picture.h"

namespace vireon::test {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kExponents[] = {0.1f,       0.5f,      0.99f,      1.0f,  1.00002f,   1.5f,
                                2.0f,       3.0f,      3.7f,       10.0f, 1e6f,       3e38f,
                                16777217.f, 1e-30f,    -1.0f,      -2.5f, 0.0f,       -0.0f,
                                999.0f,     kInfinity, -kInfinity, kNaN,  0.9999999f, 1000001.f};

class PowerKernels : public testing::TestWithParam<simd::Level> {
  protected:
    const simd::KernelTable& kernels() const { return *simd::KernelsOf(GetParam()); }

    /// Threshold alone, power alone, and both, on the whole of a picture.
    void check(const Picture& light, float threshold, float exponent, float gain, bool alphaOnly) {
        const auto same = [&](const char* what, auto&& plain, auto&& fast) {
            Picture got(light);
            Picture want(light);
            plain(want.view());
            fast(got.view());
            ASSERT_TRUE(SamePixels(got, want))
                << what << ' ' << light.width() << 'x' << light.height() << " threshold "
                << threshold << " exponent " << exponent << " gain " << gain << " alpha only "
                << alphaOnly;
            ASSERT_TRUE(got.paddingIntact());
        };
        same(
            "threshold", [&](const FloatImage& m) { SubtractThreshold(m, threshold, alphaOnly); },
            [&](const FloatImage& m) { SubtractThreshold(kernels(), m, threshold, alphaOnly); });
        same(
            "power", [&](const FloatImage& m) { ShapeLight(m, exponent, gain, alphaOnly); },
            [&](const FloatImage& m) { ShapeLight(kernels(), m, exponent, gain, alphaOnly); });
        same(
            "both",
            [&](const FloatImage& m) {
                SubtractThreshold(m, threshold, alphaOnly);
                ShapeLight(m, exponent, gain, alphaOnly);
            },
            [&](const FloatImage& m) {
                SubtractThresholdAndShapeLight(kernels(), m, threshold, exponent, gain, alphaOnly);
            });
    }

    Random random_{172};
};

TEST_P(PowerKernels, EverySmallSize) {
    for (std::int32_t width = 1; width <= 33; ++width) {
        for (std::int32_t height = 1; height <= 33; height += 1 + width % 4) {
            Picture light(width, height, height % 5, width % 2 == 0);
            FillWith(light, kAllLight[static_cast<std::size_t>(width + height) % kAllLight.size()],
                     random_);
            check(light, 0.35f, 1.5f, 1.25f, (width + height) % 3 == 0);
            if (HasFatalFailure()) return;
        }
    }
}

TEST_P(PowerKernels, EveryExponentOfEveryKindOfLight) {
    for (const float exponent : kExponents) {
        for (const LightData data : kAllLight) {
            for (const bool alphaOnly : {false, true}) {
                Picture light(37, 11, 2);
                FillWith(light, data, random_);
                check(light, 0.1f, exponent, 0.75f, alphaOnly);
                if (HasFatalFailure()) return;
            }
        }
    }
}

TEST_P(PowerKernels, EveryGainAndThreshold) {
    for (const float gain : {1.0f, 1.000001f, 0.0f, -2.0f, 3e38f, kInfinity, kNaN}) {
        for (const float threshold : {0.0f, -0.5f, 0.5f, 1e30f, kInfinity, -kInfinity, kNaN}) {
            for (const float exponent : {1.0f, 3.0f, 0.7f}) {
                for (const bool alphaOnly : {false, true}) {
                    for (const LightData data : {LightData::kZeros, LightData::kHdr}) {
                        Picture light(21, 5, 1);
                        FillWith(light, data, random_);
                        check(light, threshold, exponent, gain, alphaOnly);
                        if (HasFatalFailure()) return;
                    }
                }
            }
        }
    }
}

/// Floats of all bit patterns: every exponent, subnormal ones, infinities and NaN with them.
TEST_P(PowerKernels, AnyBits) {
    for (const float exponent : {0.1f, 0.5f, 1.5f, 2.0f, 2.2f, 3.0f, 7.3f, 1.0001f}) {
        Picture light(255, 65, 0);
        ForEachFloat(light, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
            const std::uint32_t bits = random_.bits();
            // Rows of finite light alone, too.
            light.at(x, y, c) = std::bit_cast<float>(y % 2 == 0 ? bits : bits & 0xBF7FFFFFu);
        });
        check(light, 0.0f, exponent, 1.0f, false);
        if (HasFatalFailure()) return;
    }
}

/// Where 2^x turns from one whole exponent to the next: halves and their neighbours.
TEST_P(PowerKernels, PowersNearHalves) {
    Picture light(256, 4, 0);
    ForEachFloat(light, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
        const float power = std::bit_cast<float>(static_cast<std::uint32_t>(x) << 23);
        light.at(x, y, c) = std::nextafter(power, y < 2 ? 0.0f : kInfinity);
        if (y % 2 == 0) light.at(x, y, c) = power * (c < 2 ? 1.0f : 1.41421356f);
    });
    for (const float exponent : {0.5f, 1.5f, 2.5f, 0.25f, 2.0f}) {
        check(light, 0.0f, exponent, 1.0f, false);
        if (HasFatalFailure()) return;
    }
}

TEST_P(PowerKernels, PartOfAPictureLeavesTheRestAlone) {
    for (const bool bottomUp : {false, true}) {
        Picture got(40, 30, 3, bottomUp);
        FillWith(got, LightData::kRandom, random_);
        Picture want(got);
        SubtractThreshold(PartOf(want, 3, 5, 31, 19), 0.25f, false);
        ShapeLight(PartOf(want, 3, 5, 31, 19), 1.5f, 2.0f, false);
        SubtractThresholdAndShapeLight(kernels(), PartOf(got, 3, 5, 31, 19), 0.25f, 1.5f, 2.0f,
                                       false);
        EXPECT_TRUE(SamePixels(got, want));
    }
}

INSTANTIATE_TEST_SUITE_P(Levels, PowerKernels, testing::ValuesIn(KernelLevels()), LevelOfTest);

}  // namespace
}  // namespace vireon::test
