#include "composite/transfer_modes.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "composite/transfer_pixels.h"
#include "tests/unit/composite/plain_blend.h"
#include "tests/unit/support/fake_host.h"
#include "tests/unit/support/picture.h"

namespace vireon::test {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

/// Every code that blends.
std::vector<std::int32_t> BlendingModes() {
    std::vector<std::int32_t> modes;
    for (std::int32_t mode = 1; mode <= 25; ++mode) modes.push_back(mode);
    modes.push_back(35);
    return modes;
}

Picture Pixel(float a, float r, float g, float b) {
    Picture picture(1, 1);
    picture.set(0, 0, {a, r, g, b});
    return picture;
}

Picture Compose(std::int32_t mode, const Picture& glow, const Picture& source,
                float glowOpacity = 1.0f, float sourceOpacity = 1.0f, bool forceOpaque = false) {
    FakeHost host;
    Picture result(glow);
    Picture backdrop(source);
    EXPECT_EQ(TransferCompose(host, mode, glowOpacity, sourceOpacity, result, backdrop, forceOpaque,
                              false),
              0);
    EXPECT_TRUE(SamePixels(backdrop, source));
    EXPECT_TRUE(EverythingReturned(host));
    return result;
}

template <class Real>
PlainPixel<Real> PixelOf(const Picture& picture, std::int32_t x, std::int32_t y) {
    return {static_cast<Real>(picture.at(x, y, kAlpha)),
            {static_cast<Real>(picture.at(x, y, kRed)), static_cast<Real>(picture.at(x, y, kGreen)),
             static_cast<Real>(picture.at(x, y, kBlue))}};
}

/// Compares a compositing with the plain formula in double precision. Where the formula itself
/// amplifies rounding (poles, small alphas, jumps between its cases), the same formula in single
/// precision moves away from the one in double precision; that distance is allowed on top, and
/// pixels where it is large must be rare.
class Comparison {
  public:
    void check(std::int32_t mode, const Picture& glow, const Picture& source, float glowOpacity,
               float sourceOpacity, bool forceOpaque) {
        const Picture got = Compose(mode, glow, source, glowOpacity, sourceOpacity, forceOpaque);
        EXPECT_TRUE(got.paddingIntact());
        const PlainBlend<double> exact{static_cast<double>(glowOpacity),
                                       static_cast<double>(sourceOpacity), forceOpaque};
        const PlainBlend<float> single{glowOpacity, sourceOpacity, forceOpaque};
        for (std::int32_t y = 0; y < glow.height(); ++y) {
            for (std::int32_t x = 0; x < glow.width(); ++x) {
                const auto want = PlainCompose(mode, PixelOf<double>(glow, x, y),
                                               PixelOf<double>(source, x, y), exact);
                const auto rough = PlainCompose(mode, PixelOf<float>(glow, x, y),
                                                PixelOf<float>(source, x, y), single);
                checkValue(mode, got.at(x, y, kAlpha), want.a, static_cast<double>(rough.a));
                for (std::size_t i = 0; i < 3; ++i) {
                    checkValue(mode, got.at(x, y, static_cast<std::int32_t>(i) + 1), want.c[i],
                               static_cast<double>(rough.c[i]));
                }
            }
        }
    }
    void expectMostlyWellConditioned() const {
        EXPECT_GT(values_, 0);
        EXPECT_LT(static_cast<double>(loose_), 0.01 * static_cast<double>(values_));
    }

  private:
    void checkValue(std::int32_t mode, float got, double want, double rough) {
        ++values_;
        if (!std::isfinite(want) || !std::isfinite(rough)) {
            ++loose_;
            return;
        }
        const double size = std::max(1.0, std::fabs(want));
        const double spread = std::fabs(rough - want);
        if (spread > 1e-4 * size) ++loose_;
        EXPECT_NEAR(static_cast<double>(got), want, kRounding * size + 4.0 * spread)
            << "mode " << mode;
    }

    long values_ = 0;
    long loose_ = 0;
};

void RandomPair(Random& random, Picture& glow, Picture& source, float low, float high) {
    glow.randomize(random, low, high);
    source.randomize(random, low, high);
    const float alphas[] = {0.0f, 1.0f, 0.5f, 0.25f, -1.0f};
    for (Picture* const picture : {&glow, &source}) {
        for (std::int32_t y = 0; y < picture->height(); ++y) {
            for (std::int32_t x = 0; x < picture->width(); ++x) {
                const float chosen = alphas[random.whole(0, 4)];
                picture->at(x, y, kAlpha) = chosen < 0.0f ? random.real(0.01f, 0.99f) : chosen;
            }
        }
    }
}

void ComparePictures(float low, float high, bool conditioned) {
    Random random(30);
    for (const std::int32_t mode : BlendingModes()) {
        Comparison comparison;
        for (const float glowOpacity : {1.0f, 0.5f, 0.0f}) {
            for (const float sourceOpacity : {1.0f, 0.3f, 0.0f}) {
                for (const bool forceOpaque : {false, true}) {
                    Picture glow(13, 9, 1);
                    Picture source(13, 9, 6, true);
                    RandomPair(random, glow, source, low, high);
                    comparison.check(mode, glow, source, glowOpacity, sourceOpacity, forceOpaque);
                }
            }
        }
        if (conditioned) comparison.expectMostlyWellConditioned();
    }
}

TEST(TransferCompose, EveryModeFollowsItsFormulaOnStandardColours) {
    ComparePictures(0.0f, 1.0f, true);
}

TEST(TransferCompose, EveryModeFollowsItsFormulaOnNegativeAndOverbrightColours) {
    ComparePictures(-0.5f, 2.5f, false);
}

TEST(TransferCompose, EveryModeFollowsItsFormulaOnGreys) {
    Random random(31);
    for (const std::int32_t mode : BlendingModes()) {
        Comparison comparison;
        for (int i = 0; i < 50; ++i) {
            const float t = random.real(0.0f, 1.0f);
            const float k = random.real(0.0f, 1.0f);
            comparison.check(mode, Pixel(random.real(0.1f, 1.0f), t, t, t),
                             Pixel(random.real(0.1f, 1.0f), k, k, k), 1.0f, 1.0f, false);
        }
        comparison.expectMostlyWellConditioned();
    }
}

TEST(TransferCompose, EveryModeOnBlackAndWhiteAndFullColours) {
    for (const std::int32_t mode : BlendingModes()) {
        Comparison comparison;
        for (int t = 0; t < 8; ++t) {
            for (int k = 0; k < 8; ++k) {
                for (const float ta : {1.0f, 0.5f}) {
                    for (const float ka : {1.0f, 0.5f}) {
                        const auto channel = [](int bits, int place) {
                            return static_cast<float>((bits >> place) & 1);
                        };
                        comparison.check(mode,
                                         Pixel(ta, channel(t, 0), channel(t, 1), channel(t, 2)),
                                         Pixel(ka, channel(k, 0), channel(k, 1), channel(k, 2)),
                                         1.0f, 1.0f, false);
                    }
                }
            }
        }
    }
}

TEST(TransferCompose, TransparentGlowYieldsTheSourceColourUnchangedEvenIfNegative) {
    const Picture source = Pixel(0.75f, -0.5f, 3.0f, 0.25f);
    for (const std::int32_t mode : BlendingModes()) {
        if (mode == kTransferBehind) continue;
        const Picture got = Compose(mode, Pixel(0.0f, 0.9f, -2.0f, 5.0f), source);
        EXPECT_TRUE(SamePixels(got, source)) << mode;
        const Picture faded = Compose(mode, Pixel(1.0f, 0.9f, -2.0f, 5.0f), source, 0.0f, 1.0f);
        EXPECT_TRUE(SamePixels(faded, source)) << mode;
        const Picture opaque =
            Compose(mode, Pixel(0.0f, 0.9f, -2.0f, 5.0f), source, 1.0f, 1.0f, true);
        EXPECT_TRUE(SamePixels(opaque, Pixel(1.0f, -0.5f, 3.0f, 0.25f))) << mode;
    }
}

TEST(TransferCompose, TransparentGlowTakesTheSourceAlphaTimesItsOpacity) {
    for (const std::int32_t mode : BlendingModes()) {
        if (mode == kTransferBehind) continue;
        const Picture got =
            Compose(mode, Pixel(0.0f, 0.9f, 0.2f, 0.1f), Pixel(0.5f, 0.4f, 0.3f, 0.2f), 1.0f, 0.5f);
        EXPECT_TRUE(SamePixels(got, Pixel(0.25f, 0.4f, 0.3f, 0.2f))) << mode;
    }
}

TEST(TransferCompose, TransparentSourceYieldsTheGlowColourClampedAtZeroWithItsAlpha) {
    for (const std::int32_t mode : BlendingModes()) {
        if (mode == kTransferBehind) continue;
        const Picture got =
            Compose(mode, Pixel(0.5f, 0.9f, -2.0f, 5.0f), Pixel(0.0f, 0.7f, 0.3f, -0.2f));
        EXPECT_TRUE(SamePixels(got, Pixel(0.5f, 0.9f, 0.0f, 5.0f))) << mode;

        // Exactly, for alphas and colours that are no round numbers.
        Random random(36);
        Picture glow(16, 16);
        glow.randomize(random, 0.01f, 2.0f);
        Picture source(16, 16);
        source.randomize(random, 0.0f, 1.0f);
        EXPECT_TRUE(SamePixels(Compose(mode, glow, source, 1.0f, 0.0f), glow)) << mode;
    }
}

TEST(TransferCompose, BothOpaqueNormalGivesTheGlowAndBehindTheSource) {
    const Picture glow = Pixel(1.0f, 0.9f, 0.1f, 2.5f);
    const Picture source = Pixel(1.0f, 0.2f, 0.7f, 0.4f);
    EXPECT_TRUE(SamePixels(Compose(kTransferNormal, glow, source), glow));
    EXPECT_TRUE(SamePixels(Compose(kTransferBehind, glow, source), source));
}

TEST(TransferCompose, BehindOverATransparentSourceGivesTheGlowUnchanged) {
    const Picture glow = Pixel(0.5f, -0.9f, 0.1f, 2.5f);
    const Picture got = Compose(kTransferBehind, glow, Pixel(0.0f, 0.2f, 0.7f, 0.4f));
    EXPECT_TRUE(SamePixels(got, glow));
}

TEST(TransferCompose, BehindUnderAnOpaqueSourceCopiesAllFourChannelsOfIt) {
    const Picture source = Pixel(1.0f, -0.2f, 0.7f, 3.0f);
    EXPECT_TRUE(
        SamePixels(Compose(kTransferBehind, Pixel(0.5f, 9.0f, 9.0f, 9.0f), source), source));
    // The source's own alpha, not the product with its opacity.
    EXPECT_TRUE(SamePixels(Compose(kTransferBehind, Pixel(0.5f, 9.0f, 9.0f, 9.0f),
                                   Pixel(2.0f, -0.2f, 0.7f, 3.0f), 1.0f, 0.5f),
                           Pixel(2.0f, -0.2f, 0.7f, 3.0f)));
}

TEST(TransferCompose, OverlayWithASourceOfExactlyAHalfReturnsTheGlow) {
    const Picture got =
        Compose(kTransferOverlay, Pixel(1.0f, 0.3f, 0.75f, 1.5f), Pixel(1.0f, 0.5f, 0.5f, 0.5f));
    EXPECT_TRUE(NearPixels(got, Pixel(1.0f, 0.3f, 0.75f, 1.5f), kRounding));
}

TEST(TransferCompose, HardLightWithAGlowOfExactlyAHalfReturnsTheSource) {
    const Picture got =
        Compose(kTransferHardLight, Pixel(1.0f, 0.5f, 0.5f, 0.5f), Pixel(1.0f, 0.3f, 0.75f, 1.5f));
    EXPECT_TRUE(NearPixels(got, Pixel(1.0f, 0.3f, 0.75f, 1.5f), kRounding));
}

TEST(TransferCompose, ColorDodgePassesAGlowOfOneOrMore) {
    const Picture got = Compose(kTransferColorDodge, Pixel(1.0f, 1.5f, 1.0f, 0.5f),
                                Pixel(1.0f, 0.25f, 0.25f, 0.25f));
    EXPECT_TRUE(SamePixels(got, Pixel(1.0f, 1.5f, 1.0f, 0.5f)));
}

TEST(TransferCompose, ColorBurnPassesAGlowOfZeroAndMayGoNegative) {
    const Picture got = Compose(kTransferColorBurn, Pixel(1.0f, 0.0f, 0.25f, 1.0f),
                                Pixel(1.0f, 0.25f, 0.5f, 0.25f));
    EXPECT_TRUE(SamePixels(got, Pixel(1.0f, 0.0f, -1.0f, 0.25f)));
}

TEST(TransferCompose, HueOfAGreyGlowIsRed) {
    // Saturation and luma of the source, hue 0: s = 0.3 / 0.5, hi = 0.8, lo = 0.2.
    const Picture source = Pixel(1.0f, 0.1f, 0.4f, 0.2f);
    const double luma = 0.299 * 0.1 + 0.587 * 0.4 + 0.114 * 0.2;
    const double y = 0.299 * 0.8 + 0.587 * 0.2 + 0.114 * 0.2;
    const auto red = static_cast<float>(0.8 * luma / y);
    const auto low = static_cast<float>(0.2 * luma / y);
    ASSERT_GE(y, luma);
    const Picture grey = Compose(kTransferHue, Pixel(1.0f, 0.5f, 0.5f, 0.5f), source);
    EXPECT_TRUE(NearPixels(grey, Pixel(1.0f, red, low, low), kRounding));
    const Picture nearGrey = Compose(kTransferHue, Pixel(1.0f, 0.5f, 0.50009f, 0.5f), source);
    EXPECT_TRUE(NearPixels(nearGrey, Pixel(1.0f, red, low, low), kRounding));
    const Picture black = Compose(kTransferHue, Pixel(1.0f, 0.0f, 0.00009f, 0.0f), source);
    EXPECT_TRUE(NearPixels(black, Pixel(1.0f, red, low, low), kRounding));
}

TEST(TransferCompose, SaturationOfABrightColourDividesByTwoMinusTheSpread) {
    // Glow 0.9, 0.3: s = 0.6 / 1.4. Source pure red of luma 0.299.
    const double s = 0.6 / 1.4;
    const double hi = 0.5 * s + 0.5;
    const double lo = 1.0 - hi;
    const double y = 0.299 * hi + 0.587 * lo + 0.114 * lo;
    ASSERT_GE(y, 0.299);
    const Picture got =
        Compose(kTransferSaturation, Pixel(1.0f, 0.9f, 0.3f, 0.5f), Pixel(1.0f, 1.0f, 0.0f, 0.0f));
    const auto low = static_cast<float>(lo * 0.299 / y);
    EXPECT_TRUE(
        NearPixels(got, Pixel(1.0f, static_cast<float>(hi * 0.299 / y), low, low), kRounding));
}

TEST(TransferCompose, LumaAndSaturationOfAnAlmostBlackSourceAreZero) {
    const Picture source = Pixel(1.0f, 0.00009f, 0.0f, 0.00005f);
    for (const std::int32_t mode : {kTransferHue, kTransferSaturation, kTransferColor}) {
        const Picture got = Compose(mode, Pixel(1.0f, 0.9f, 0.3f, 0.5f), source);
        EXPECT_TRUE(SamePixels(got, Pixel(1.0f, 0.0f, 0.0f, 0.0f))) << mode;
    }
}

TEST(TransferCompose, AddAndDifferenceDivideThePremultipliedSumByTheAlpha) {
    const Picture glow = Pixel(0.5f, 0.8f, 0.2f, 1.0f);
    const Picture source = Pixel(0.5f, 0.4f, 0.6f, 1.0f);
    const Picture add = Compose(kTransferAdd, glow, source);
    EXPECT_TRUE(NearPixels(add, Pixel(0.75f, 0.8f, 0.4f / 0.75f, 1.0f / 0.75f), kRounding));
    const Picture difference = Compose(kTransferDifference, glow, source);
    EXPECT_TRUE(NearPixels(difference, Pixel(0.75f, 0.2f / 0.75f, 0.2f / 0.75f, 0.0f), kRounding));
}

TEST(TransferCompose, AddOfOpaqueLayersIsTheSumWithoutALimit) {
    const Picture got =
        Compose(kTransferAdd, Pixel(1.0f, 0.75f, 2.0f, -1.0f), Pixel(1.0f, 0.5f, 1.0f, 0.25f));
    EXPECT_TRUE(SamePixels(got, Pixel(1.0f, 1.25f, 3.0f, 0.25f)));
}

TEST(TransferCompose, CodesOutsideTheRangeLeaveTheBuffersUntouched) {
    Random random(32);
    Picture glow(5, 4);
    Picture source(5, 4);
    RandomPair(random, glow, source, -1.0f, 2.0f);
    for (const std::int32_t mode :
         {-1, 0, 26, 27, 28, 29, 30, 31, 32, 33, 34, 36, 100, std::numeric_limits<int>::min(),
          std::numeric_limits<int>::max()}) {
        EXPECT_TRUE(SamePixels(Compose(mode, glow, source, 0.5f, 0.5f, true), glow)) << mode;
        EXPECT_EQ(BlendRoutineOf(mode), nullptr) << mode;
    }
}

TEST(TransferCompose, DissolveBlendsAsHueAndTheAlphaVariantsAsExclusion) {
    Random random(33);
    Picture glow(8, 8);
    Picture source(8, 8);
    RandomPair(random, glow, source, 0.0f, 1.0f);
    EXPECT_TRUE(SamePixels(Compose(3, glow, source), Compose(13, glow, source)));
    EXPECT_TRUE(SamePixels(Compose(35, glow, source), Compose(6, glow, source)));
    for (std::int32_t mode = 17; mode <= 22; ++mode) {
        EXPECT_TRUE(SamePixels(Compose(mode, glow, source), Compose(25, glow, source))) << mode;
    }
}

TEST(TransferCompose, ForceOpaqueMakesEveryAlphaOneAndNoColourDifferent) {
    Random random(34);
    for (const std::int32_t mode : BlendingModes()) {
        Picture glow(8, 8);
        Picture source(8, 8);
        RandomPair(random, glow, source, 0.0f, 1.0f);
        Picture want = Compose(mode, glow, source, 0.5f, 0.7f, false);
        for (std::int32_t y = 0; y < 8; ++y) {
            for (std::int32_t x = 0; x < 8; ++x) want.at(x, y, kAlpha) = 1.0f;
        }
        EXPECT_TRUE(SamePixels(Compose(mode, glow, source, 0.5f, 0.7f, true), want)) << mode;
    }
}

TEST(TransferCompose, ValuesThatAreNotFiniteStayAtTheirOwnPlace) {
    Random random(35);
    for (const std::int32_t mode : BlendingModes()) {
        Picture glow(9, 3);
        Picture source(9, 3);
        RandomPair(random, glow, source, 0.0f, 1.0f);
        const Picture want = Compose(mode, glow, source);
        for (const float bad : {kNaN, kInfinity, -kInfinity}) {
            Picture badGlow(glow);
            Picture badSource(source);
            badGlow.set(4, 1, {bad, bad, bad, bad});
            badSource.set(5, 1, {bad, bad, bad, bad});
            Picture got = Compose(mode, badGlow, source);
            got.set(4, 1, {want.at(4, 1, 0), want.at(4, 1, 1), want.at(4, 1, 2), want.at(4, 1, 3)});
            EXPECT_TRUE(SamePixels(got, want)) << mode;
            FakeHost host;
            Picture besideSource(glow);
            EXPECT_EQ(TransferCompose(host, mode, 1.0f, 1.0f, besideSource, badSource, false, true),
                      0);
            besideSource.set(
                5, 1, {want.at(5, 1, 0), want.at(5, 1, 1), want.at(5, 1, 2), want.at(5, 1, 3)});
            EXPECT_TRUE(SamePixels(besideSource, want)) << mode;
        }
    }
}

TEST(TransferCompose, IsForwardedToAHostThatOffersTheService) {
    FakeHost host;
    host.transferService = true;
    host.transferAnswer = 77;
    Picture glow = Pixel(0.5f, 0.1f, 0.2f, 0.3f);
    Picture source = Pixel(0.5f, 0.4f, 0.5f, 0.6f);
    const Picture before(glow);
    for (const std::int32_t mode : {2, 24, 0, 99}) {
        EXPECT_EQ(TransferCompose(host, mode, 0.25f, 0.75f, glow, source, true, false), 77);
        ASSERT_FALSE(host.transfers.empty());
        const FakeHost::TransferCall& call = host.transfers.back();
        EXPECT_EQ(call.mode, mode);
        EXPECT_EQ(call.glowOpacity, 0.25f);
        EXPECT_EQ(call.sourceOpacity, 0.75f);
        EXPECT_EQ(call.glow, &glow);
        EXPECT_EQ(call.source, &source);
        EXPECT_TRUE(call.forceOpaque);
    }
    EXPECT_EQ(host.count("transfer"), 4);
    EXPECT_TRUE(SamePixels(glow, before));
}

TEST(TransferCompose, OwnCompositorFlagKeepsTheHostOut) {
    FakeHost host;
    host.transferService = true;
    host.transferAnswer = 77;
    Picture glow = Pixel(1.0f, 0.1f, 0.2f, 0.3f);
    Picture source = Pixel(1.0f, 0.4f, 0.5f, 0.6f);
    EXPECT_EQ(TransferCompose(host, 1, 1.0f, 1.0f, glow, source, false, true), 0);
    EXPECT_EQ(host.count("transfer"), 0);
    EXPECT_TRUE(SamePixels(glow, source));
}

TEST(TransferCompose, WorksOnHostWorldsByTheirLayouts) {
    FakeHost host;
    host.application = kAfterEffects;
    const auto glow = host.makeLayer(2, 2, 4);
    const auto source = host.makeLayer(2, 2, 4, 48);
    for (FakeWorld* const world : {glow.get(), source.get()}) {
        for (std::int32_t y = 0; y < 2; ++y) {
            auto* const row =
                static_cast<float*>(world->layout().pixels) + y * world->layout().rowBytes / 4;
            for (int i = 0; i < 8; ++i) row[i] = 1.0f;
        }
    }
    EXPECT_EQ(TransferCompose(host, kTransferAdd, 1.0f, 1.0f, *glow, *source, false, false), 0);
    const auto* const pixels = static_cast<const float*>(glow->layout().pixels);
    EXPECT_EQ(pixels[0], 1.0f);
    EXPECT_EQ(pixels[1], 2.0f);
    EXPECT_EQ(pixels[glow->layout().rowBytes / 4 + 7], 2.0f);
}

TEST(TransferModeCodes, PopupWithSeparators) {
    const std::int32_t codes[] = {2,  1, 2,  2,  4,  5,  6, 7,  8,  9,  2,  23,
                                  24, 2, 10, 11, 12, 25, 2, 13, 14, 15, 16, 0};
    for (std::int32_t i = 0; i < 24; ++i) EXPECT_EQ(TransferModeCodes(i, true), codes[i]) << i;
}

TEST(TransferModeCodes, PopupWithoutSeparators) {
    const std::int32_t codes[] = {2,  1,  2,  4,  5,  6,  7,  8,  9,  23,
                                  24, 10, 11, 12, 25, 13, 14, 15, 16, 0};
    for (std::int32_t i = 0; i < 20; ++i) EXPECT_EQ(TransferModeCodes(i, false), codes[i]) << i;
}

TEST(TransferModeCodes, ChoicesBeyondThePopupGiveNoMode) {
    for (const std::int32_t choice :
         {-1, 24, 1000, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        EXPECT_EQ(TransferModeCodes(choice, true), 0) << choice;
        EXPECT_EQ(TransferModeCodes(choice, false), 0) << choice;
    }
}

TEST(PipelineTransferMode, ScreenIsAddAndSeparatorsAreNormal) {
    for (std::int32_t i = 0; i < 24; ++i) {
        for (const bool separators : {true, false}) {
            const std::int32_t code = TransferModeCodes(i, separators);
            EXPECT_EQ(PipelineTransferMode(i, separators), code == 6 ? 4 : code);
        }
    }
    EXPECT_EQ(PipelineTransferMode(6, true), kTransferAdd);
    EXPECT_EQ(PipelineTransferMode(3, true), kTransferNormal);
    EXPECT_EQ(PipelineTransferMode(10, true), kTransferNormal);
}

}  // namespace
}  // namespace vireon::test
