// Every transfer mode by kernels gives the bits of its plain routine, at every level.

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "composite/transfer_codes.h"
#include "composite/transfer_pixels.h"
#include "tests/unit/support/levels.h"
#include "tests/unit/support/light_data.h"
#include "tests/unit/support/picture.h"

namespace vireon::test {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

/// Every routine by one of its codes.
constexpr std::array kModes = {
    kTransferBehind,     kTransferNormal,    kTransferAdd,        kTransferMultiply,
    kTransferScreen,     kTransferOverlay,   kTransferSoftLight,  kTransferHardLight,
    kTransferDarken,     kTransferLighten,   kTransferDifference, kTransferHue,
    kTransferSaturation, kTransferColor,     kTransferLuminosity, kTransferColorDodge,
    kTransferColorBurn,  kTransferExclusion,
};

/// How the alphas of a picture are.
enum class Coverage { kOpaque, kClear, kMixed, kAnything };
constexpr std::array kCoverage = {Coverage::kOpaque, Coverage::kClear, Coverage::kMixed,
                                  Coverage::kAnything};

constexpr std::array kOpacities = {1.0f, 0.37f, 0.0f};

void SetAlphas(Picture& picture, Coverage coverage, Random& random) {
    constexpr float kMixed[] = {0.0f, 1.0f, 0.5f, 0.37f, 1.0f, -0.0f};
    // Of -1 and 0.5, and of 2 and 2, nothing remains to divide by.
    constexpr float kOdd[] = {-0.5f, 1.7f, 1e-30f, 1e-42f, kNaN, kInfinity,
                              1.0f,  0.0f, -1.0f,  0.5f,   2.0f};
    for (std::int32_t y = 0; y < picture.height(); ++y) {
        for (std::int32_t x = 0; x < picture.width(); ++x) {
            float& alpha = picture.at(x, y, kAlpha);
            switch (coverage) {
                case Coverage::kOpaque: alpha = 1.0f; break;
                case Coverage::kClear: alpha = 0.0f; break;
                case Coverage::kMixed: alpha = kMixed[random.whole(0, 5)]; break;
                case Coverage::kAnything: alpha = kOdd[random.whole(0, 10)]; break;
            }
        }
    }
}

/// Whether the bits are the same, those of NaN with them: the blends have one NaN only.
testing::AssertionResult SameBits(const Picture& got, const Picture& want) {
    for (std::int32_t y = 0; y < want.height(); ++y) {
        for (std::int32_t x = 0; x < want.width(); ++x) {
            for (std::int32_t c = 0; c < kChannels; ++c) {
                const float a = got.at(x, y, c);
                const float b = want.at(x, y, c);
                if (std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b)) continue;
                return testing::AssertionFailure() << a << " instead of " << b << " at (" << x
                                                   << ", " << y << "), channel " << c;
            }
        }
    }
    return testing::AssertionSuccess();
}

class BlendKernels : public testing::TestWithParam<simd::Level> {
  protected:
    const simd::KernelTable& kernels() const { return *simd::KernelsOf(GetParam()); }

    void check(std::int32_t mode, const Picture& glow, const Picture& source,
               const BlendSettings& settings) {
        Picture got(glow);
        Picture want(glow);
        Picture backdrop(source);
        BlendRoutineOf(mode)(want.view(), source.view(), settings);
        BlendImages(kernels(), mode, got.view(), backdrop.view(), settings);
        ASSERT_TRUE(SameBits(got, want))
            << "mode " << mode << ", " << glow.width() << 'x' << glow.height() << ", opacities "
            << settings.glowOpacity << " and " << settings.sourceOpacity << ", force opaque "
            << settings.forceOpaque;
        ASSERT_TRUE(got.paddingIntact());
        ASSERT_TRUE(SameBits(backdrop, source)) << "the source was written";
    }

    void checkAll(const Picture& glow, const Picture& source, const BlendSettings& settings) {
        for (const std::int32_t mode : kModes) {
            check(mode, glow, source, settings);
            if (HasFatalFailure()) return;
        }
    }

    Random random_{311};
};

TEST_P(BlendKernels, EveryWidthWithOddRowsGoingDownAndUp) {
    for (std::int32_t width = 1; width <= 33; ++width) {
        for (const Coverage coverage : kCoverage) {
            Picture glow(width, 3, width % 5, width % 2 == 0);
            Picture source(width, 3, (width + 2) % 7, width % 3 == 0);
            FillWith(glow, LightData::kRandom, random_);
            FillWith(source, LightData::kRandom, random_);
            SetAlphas(glow, coverage, random_);
            SetAlphas(source, coverage, random_);
            const float opacity =
                kOpacities[static_cast<std::size_t>(random_.whole(0, 2)) % kOpacities.size()];
            checkAll(glow, source, {1.0f, opacity, width % 4 == 0});
            if (HasFatalFailure()) return;
        }
    }
}

TEST_P(BlendKernels, EveryOpacityOnEveryKindOfLight) {
    for (const LightData data : kAllLight) {
        for (const Coverage coverage : kCoverage) {
            for (const float glowOpacity : kOpacities) {
                for (const float sourceOpacity : kOpacities) {
                    for (const bool forceOpaque : {false, true}) {
                        Picture glow(37, 2, 1);
                        Picture source(37, 2, 2, true);
                        FillWith(glow, data, random_);
                        FillWith(source, random_.whole(0, 1) == 0 ? data : LightData::kRandom,
                                 random_);
                        SetAlphas(glow, coverage, random_);
                        SetAlphas(source, random_.whole(0, 1) == 0 ? coverage : Coverage::kMixed,
                                  random_);
                        checkAll(glow, source, {glowOpacity, sourceOpacity, forceOpaque});
                        if (HasFatalFailure()) return;
                    }
                }
            }
        }
    }
}

TEST_P(BlendKernels, LargeOddPictures) {
    for (const std::int32_t width : {257, 1021}) {
        Picture glow(width, 7, 3);
        Picture source(width, 7, 0, true);
        glow.randomize(random_, 0.0f, 1.2f);
        source.randomize(random_, 0.0f, 1.0f);
        checkAll(glow, source, {0.37f, 1.0f, false});
        if (HasFatalFailure()) return;
        SetAlphas(glow, Coverage::kOpaque, random_);
        SetAlphas(source, Coverage::kOpaque, random_);
        checkAll(glow, source, {1.0f, 1.0f, false});
        if (HasFatalFailure()) return;
    }
}

/// Colours at which the blends turn from one case to another, each with each.
TEST_P(BlendKernels, ColoursAtTheBordersOfTheCases) {
    const std::vector<float> values = {0.0f,
                                       -0.0f,
                                       0.5f,
                                       std::nextafter(0.5f, 0.0f),
                                       1.0f,
                                       std::nextafter(1.0f, 0.0f),
                                       std::nextafter(1.0f, 2.0f),
                                       0.0001f,
                                       std::nextafter(0.0001f, 0.0f),
                                       0.3f,
                                       2.0f,
                                       2.5f,
                                       -1.0f,
                                       kInfinity,
                                       -kInfinity,
                                       kNaN};
    const auto count = static_cast<std::int32_t>(values.size());
    Picture glow(count * count, count, 0);
    Picture source(count * count, count, 0);
    // Colours of the one layer: all triples. Those of the other: the same ones in another order.
    const auto value = [&](std::int32_t i) { return values[static_cast<std::size_t>(i % count)]; };
    for (std::int32_t y = 0; y < count; ++y) {
        for (std::int32_t x = 0; x < count * count; ++x) {
            const std::int32_t other = random_.whole(0, count * count * count - 1);
            glow.set(x, y, {1.0f, value(x), value(x / count), value(y)});
            source.set(x, y,
                       {1.0f, value(other), value(other / count), value(other / count / count)});
        }
    }
    for (const float opacity : kOpacities) {
        checkAll(glow, source, {1.0f, opacity, false});
        if (HasFatalFailure()) return;
        checkAll(source, glow, {opacity, 1.0f, false});
        if (HasFatalFailure()) return;
    }
    SetAlphas(glow, Coverage::kAnything, random_);
    checkAll(glow, source, {1.0f, 1.0f, false});
    if (HasFatalFailure()) return;
    checkAll(source, glow, {1.0f, 1.0f, false});
}

/// Pure and mixed hues around the whole circle, greys, and saturations of all sizes.
TEST_P(BlendKernels, EveryHueOnEveryHue) {
    constexpr std::int32_t kSteps = 96;
    const auto channel = [](float hue) {
        const float distance = std::fabs(std::fmod(hue + 6.0f, 6.0f) - 3.0f);
        return std::clamp(2.0f - distance, 0.0f, 1.0f);
    };
    Picture glow(kSteps, kSteps, 1);
    Picture source(kSteps, kSteps, 2);
    for (std::int32_t y = 0; y < kSteps; ++y) {
        for (std::int32_t x = 0; x < kSteps; ++x) {
            for (Picture* const picture : {&glow, &source}) {
                const float hue = static_cast<float>(picture == &glow ? x : y) / 16.0f;
                const float strength = random_.real(0.0f, 1.5f);
                const float grey = random_.whole(0, 2) == 0 ? 0.0f : random_.real(0.0f, 0.5f);
                picture->set(
                    x, y,
                    {1.0f, grey + strength * channel(hue + 3.0f),
                     grey + strength * channel(hue + 1.0f), grey + strength * channel(hue - 1.0f)});
            }
        }
    }
    for (const std::int32_t mode :
         {kTransferHue, kTransferSaturation, kTransferColor, kTransferLuminosity}) {
        check(mode, glow, source, {1.0f, 1.0f, false});
        if (HasFatalFailure()) return;
        check(mode, glow, source, {0.37f, 0.5f, false});
        if (HasFatalFailure()) return;
    }
}

/// Colours of all bit patterns: every exponent, subnormal ones, infinities and NaN with them.
TEST_P(BlendKernels, AnyBits) {
    Picture glow(255, 33, 0);
    Picture source(255, 33, 1);
    for (Picture* const picture : {&glow, &source}) {
        ForEachFloat(*picture, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
            picture->at(x, y, c) = std::bit_cast<float>(random_.bits());
        });
    }
    checkAll(glow, source, {1.0f, 1.0f, false});
    if (HasFatalFailure()) return;
    SetAlphas(glow, Coverage::kMixed, random_);
    SetAlphas(source, Coverage::kMixed, random_);
    checkAll(glow, source, {1.0f, 0.37f, false});
}

TEST_P(BlendKernels, AllCodesHaveTheKernelOfTheirRoutine) {
    Picture glow(19, 1);
    Picture source(19, 1);
    glow.randomize(random_, 0.0f, 1.0f);
    source.randomize(random_, 0.0f, 1.0f);
    for (std::int32_t mode = -1; mode <= 40; ++mode) {
        if (BlendRoutineOf(mode) != nullptr) {
            check(mode, glow, source, {1.0f, 1.0f, false});
            if (HasFatalFailure()) return;
            continue;
        }
        EXPECT_EQ(BlendRowOf(kernels(), mode), nullptr) << mode;
        Picture got(glow);
        BlendImages(kernels(), mode, got.view(), source.view(), {1.0f, 1.0f, true});
        EXPECT_TRUE(SameBits(got, glow)) << mode;
    }
}

INSTANTIATE_TEST_SUITE_P(Levels, BlendKernels, testing::ValuesIn(KernelLevels()), LevelOfTest);

}  // namespace
}  // namespace vireon::test
