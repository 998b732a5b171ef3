#include "composite/brightness_extraction.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

#include "composite/brightness_pixels.h"
#include "composite/glow_mask.h"
#include "glow/tent_blur.h"
#include "render/glow_settings.h"
#include "tests/unit/composite/plain_widening.h"
#include "tests/unit/support/fake_host.h"
#include "tests/unit/support/picture.h"

namespace vireon::test {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr std::int32_t kLightness = 2;
constexpr std::int32_t kLuminance = 3;

/// One pixel through the whole stage.
Picture Extract(const Picture& input, GlowSettings& settings) {
    FakeHost host;
    Picture from(input);
    Picture map(input.width(), input.height(), 2, true);
    map.fill(-77.0f);
    EXPECT_EQ(ExtractBrightness(host, settings, from, map, nullptr), 0);
    EXPECT_TRUE(SamePixels(from, input));
    EXPECT_TRUE(EverythingReturned(host));
    return map;
}

double PlainMapValue(const Picture& p, std::int32_t x, std::int32_t y, std::int32_t choice) {
    const auto a = static_cast<double>(p.at(x, y, kAlpha));
    const auto r = static_cast<double>(p.at(x, y, kRed));
    const auto g = static_cast<double>(p.at(x, y, kGreen));
    const auto b = static_cast<double>(p.at(x, y, kBlue));
    switch (choice) {
        case 1: return a;
        case 2: return (g + r + b) * a / 3.0;
        case 3: return (204.0 * g + 117.0 * r + 64.0 * b) * a / 385.0;
        case 4: return r * a;
        case 5: return g * a;
        default: return b * a;
    }
}

TEST(MapBrightness, RgbaCopiesThePixels) {
    Random random(50);
    Picture input(7, 5, 1, true);
    input.randomize(random, -2.0f, 5.0f);
    Picture map(7, 5);
    MapBrightness(input.view(), map.view(), 0);
    EXPECT_TRUE(SamePixels(map, input));
}

TEST(MapBrightness, EveryOneChannelChoiceWritesItsValueIntoAlphasPlaceOnly) {
    Random random(51);
    for (std::int32_t choice = 1; choice <= 6; ++choice) {
        for (std::int32_t width = 1; width <= 9; ++width) {
            Picture input(width, 3, 1);
            input.randomize(random, -2.0f, 5.0f);
            Picture map(width, 3, 2, true);
            map.fill(9.0f);
            Picture want(map);
            for (std::int32_t y = 0; y < 3; ++y) {
                for (std::int32_t x = 0; x < width; ++x) {
                    want.at(x, y, kAlpha) = static_cast<float>(PlainMapValue(input, x, y, choice));
                }
            }
            MapBrightness(input.view(), map.view(), choice);
            EXPECT_TRUE(NearPixels(map, want, kRounding, 25.0)) << choice << ' ' << width;
        }
    }
}

TEST(MapBrightness, ChoicesOutsideTheRangeWriteNothing) {
    Picture input(3, 2);
    input.fill(0.5f);
    Picture map(3, 2);
    map.fill(9.0f);
    const Picture before(map);
    for (const std::int32_t choice : {-1, 7, 100}) {
        MapBrightness(input.view(), map.view(), choice);
        EXPECT_TRUE(SamePixels(map, before));
        EXPECT_FALSE(IsInputChannelsChoice(choice));
    }
    for (std::int32_t choice = 0; choice <= 6; ++choice) {
        EXPECT_TRUE(IsInputChannelsChoice(choice));
    }
}

TEST(MapBrightness, LightThatIsNotFiniteBecomesFinite) {
    Picture input(5, 1);
    input.set(0, 0, {1.0f, kNaN, kInfinity, -kInfinity});
    input.set(1, 0, {kInfinity, 1.0f, 1.0f, 1.0f});
    input.set(2, 0, {0.0f, kInfinity, 0.0f, 0.0f});
    input.set(3, 0, {1.0f, kInfinity, -kInfinity, 0.0f});
    input.set(4, 0, {-1.0f, 3e38f, 3e38f, 3e38f});
    Picture map(5, 1);
    MapBrightness(input.view(), map.view(), 0);
    EXPECT_EQ(map.at(0, 0, kAlpha), 1.0f);
    EXPECT_EQ(map.at(0, 0, kRed), 0.0f);
    EXPECT_EQ(map.at(0, 0, kGreen), 65504.0f);
    EXPECT_EQ(map.at(0, 0, kBlue), -65504.0f);
    EXPECT_EQ(map.at(1, 0, kAlpha), 65504.0f);
    EXPECT_EQ(map.at(4, 0, kRed), 3e38f);
    MapBrightness(input.view(), map.view(), kLightness);
    EXPECT_EQ(map.at(0, 0, kAlpha), 0.0f);
    EXPECT_EQ(map.at(1, 0, kAlpha), 65504.0f);
    EXPECT_EQ(map.at(2, 0, kAlpha), 0.0f);
    EXPECT_EQ(map.at(3, 0, kAlpha), 0.0f);
    EXPECT_EQ(map.at(4, 0, kAlpha), -65504.0f);
    MapBrightness(input.view(), map.view(), 1);
    EXPECT_EQ(map.at(1, 0, kAlpha), 65504.0f);
}

TEST(ExtractBrightness, LuminanceOfOpaqueGreenAndOfWhite) {
    Picture input(2, 1);
    input.set(0, 0, {1.0f, 0.0f, 1.0f, 0.0f});
    input.set(1, 0, {1.0f, 1.0f, 1.0f, 1.0f});
    GlowSettings settings;
    settings.inputChannels = kLuminance;
    const Picture map = Extract(input, settings);
    for (std::int32_t c = 0; c < 4; ++c) {
        EXPECT_NEAR(map.at(0, 0, c), 204.0f / 385.0f, 1e-6f);
        EXPECT_NEAR(map.at(1, 0, c), 1.0f, 1e-6f);
    }
    EXPECT_TRUE(settings.singleChannel);
}

TEST(ExtractBrightness, LightnessOfHalfTransparentWhiteIsAHalf) {
    Picture input(1, 1);
    input.set(0, 0, {0.5f, 1.0f, 1.0f, 1.0f});
    GlowSettings settings;
    settings.inputChannels = kLightness;
    const Picture map = Extract(input, settings);
    for (std::int32_t c = 0; c < 4; ++c) EXPECT_NEAR(map.at(0, 0, c), 0.5f, 1e-6f);
}

TEST(ExtractBrightness, ThresholdIsTakenOffLightThatReachesItAndBlacksTheRest) {
    Picture input(3, 1);
    input.set(0, 0, {0.5f, 0.5f, 0.19f, 0.2f});
    input.set(1, 0, {0.1f, 3.0f, -1.0f, 0.0f});
    input.set(2, 0, {1.0f, 1.0f, 1.0f, 1.0f});
    GlowSettings settings;
    settings.threshold = 20.0;
    const Picture map = Extract(input, settings);
    Picture want(3, 1);
    want.set(0, 0, {0.3f, 0.3f, 0.0f, 0.0f});
    want.set(1, 0, {0.0f, 2.8f, 0.0f, 0.0f});
    want.set(2, 0, {0.8f, 0.8f, 0.8f, 0.8f});
    EXPECT_TRUE(NearPixels(map, want, kRounding));
    EXPECT_FALSE(settings.singleChannel);

    settings.inputChannels = 1;
    const Picture alpha = Extract(input, settings);
    EXPECT_NEAR(alpha.at(0, 0, kRed), 0.3f, 1e-6f);
    EXPECT_EQ(alpha.at(1, 0, kRed), 0.0f);
}

TEST(ExtractBrightness, ThresholdOfZeroIsSkippedNegativeLightIncluded) {
    Picture input(1, 1);
    input.set(0, 0, {-0.5f, -2.0f, 0.25f, 3.0f});
    for (const double threshold : {0.0, 0.0009, -0.0009}) {
        GlowSettings settings;
        settings.threshold = threshold;
        EXPECT_TRUE(SamePixels(Extract(input, settings), input)) << threshold;
    }
}

TEST(ExtractBrightness, NegativeThresholdAddsLight) {
    Picture input(1, 1);
    input.set(0, 0, {-0.6f, -0.25f, 0.0f, 1.0f});
    GlowSettings settings;
    settings.threshold = -50.0;
    Picture want(1, 1);
    want.set(0, 0, {0.0f, 0.25f, 0.5f, 1.5f});
    EXPECT_TRUE(NearPixels(Extract(input, settings), want, kRounding));
}

TEST(SubtractThreshold, TreatsAllChannelsOrAlphasPlaceOnly) {
    Random random(52);
    for (std::int32_t width = 1; width <= 9; ++width) {
        for (const bool alphaOnly : {false, true}) {
            Picture map(width, 3, 1);
            map.randomize(random, -1.0f, 2.0f);
            map.at(0, 0, kAlpha) = 0.35f;
            Picture want(map);
            ForEachFloat(want, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
                if (alphaOnly && c != kAlpha) return;
                const float v = want.at(x, y, c);
                want.at(x, y, c) = v >= 0.35f ? v - 0.35f : 0.0f;
            });
            SubtractThreshold(map.view(), 0.35f, alphaOnly);
            EXPECT_TRUE(NearPixels(map, want, 0.0));
        }
    }
}

TEST(ExtractBrightness, FalloffOfOneAndTwoOnAOneChannelMap) {
    Picture input(1, 1);
    input.set(0, 0, {0.05f, 0.9f, 0.8f, 0.7f});
    GlowSettings settings;
    settings.inputChannels = 1;
    const Picture one = Extract(input, settings);
    for (std::int32_t c = 0; c < 4; ++c) EXPECT_EQ(one.at(0, 0, c), 0.05f);
    settings.glowFalloff = 2.0;
    const Picture two = Extract(input, settings);
    for (std::int32_t c = 0; c < 4; ++c) EXPECT_NEAR(two.at(0, 0, c), 0.0025f, 1e-9f);
}

TEST(ExtractBrightness, RgbaPassesFalloffOfOneUnchanged) {
    Random random(53);
    Picture input(6, 4);
    input.randomize(random, -2.0f, 5.0f);
    GlowSettings settings;
    for (const double falloff : {1.0, 1.000005, 0.999995}) {
        settings.glowFalloff = falloff;
        EXPECT_TRUE(SamePixels(Extract(input, settings), input));
    }
}

TEST(ShapeLight, RaisesToTheExponentTimesTheGain) {
    Random random(54);
    for (const float exponent : {0.1f, 0.5f, 1.0f, 2.0f, 3.7f, 10.0f}) {
        for (const float gain : {1.0f, 0.5f, 3.0f}) {
            for (const bool alphaOnly : {false, true}) {
                Picture map(7, 3);
                map.randomize(random, 0.0f, 2.0f);
                Picture want(map);
                ForEachFloat(want, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
                    const auto v = static_cast<double>(map.at(x, y, alphaOnly ? kAlpha : c));
                    want.at(x, y, c) = static_cast<float>(
                        std::pow(v, static_cast<double>(exponent)) * static_cast<double>(gain));
                });
                ShapeLight(map.view(), exponent, gain, alphaOnly);
                EXPECT_TRUE(NearPixels(map, want, kRounding)) << exponent << ' ' << gain;
            }
        }
    }
}

TEST(ShapeLight, PowerThatIsNoNumberIsZero) {
    Picture map(1, 1);
    map.set(0, 0, {-0.5f, -2.0f, 0.25f, 0.0f});
    Picture same(map);
    ShapeLight(map.view(), 0.5f, 1.0f, false);
    Picture want(1, 1);
    want.set(0, 0, {0.0f, 0.0f, 0.5f, 0.0f});
    EXPECT_TRUE(SamePixels(map, want));
    ShapeLight(same.view(), 2.0f, 1.0f, false);
    want.set(0, 0, {0.25f, 4.0f, 0.0625f, 0.0f});
    EXPECT_TRUE(SamePixels(same, want));
}

TEST(ExtractBrightness, ChoiceOutsideTheRangeLeavesTheMapWithOneChannel) {
    FakeHost host;
    Picture input(3, 2);
    input.fill(0.5f);
    for (const std::int32_t choice : {-1, 7}) {
        Picture map(3, 2);
        map.fill(0.25f, 0.1f, 0.2f, 0.3f);
        GlowSettings settings;
        settings.inputChannels = choice;
        EXPECT_EQ(ExtractBrightness(host, settings, input, map, nullptr), 0);
        EXPECT_TRUE(settings.singleChannel);
        Picture want(3, 2);
        want.fill(0.25f);
        EXPECT_TRUE(SamePixels(map, want));
    }
}

TEST(ExtractBrightness, StepsRunInOrderThresholdBlurMaskShaping) {
    Random random(55);
    for (std::int32_t choice = 0; choice <= 6; ++choice) {
        for (const bool outputAlpha : {false, true}) {
            FakeHost host;
            Picture input(17, 12);
            input.randomize(random, 0.0f, 1.0f);
            Picture mask(15, 14, 1);
            mask.randomize(random, 0.0f, 1.0f);
            GlowSettings settings;
            settings.inputChannels = choice;
            settings.threshold = 20.0;
            settings.blurInput = 3.0;
            settings.enableMask = true;
            settings.maskRadius = 9.0;
            settings.glowFalloff = 1.5;
            settings.outputAlpha = outputAlpha;
            Picture got(17, 12, 1);
            got.fill(0.0f);
            Picture want(got);
            EXPECT_EQ(ExtractBrightness(host, settings, input, got, &mask), 0);

            const bool single = choice != 0;
            MapBrightness(input.view(), want.view(), choice);
            SubtractThreshold(want.view(), 0.2f, single);
            EXPECT_EQ(BlurRaster(host, want, std::nullopt, settings, single), 0);
            EXPECT_EQ(ApplyGlowMask(host, settings, want, &mask, single), 0);
            ShapeLight(want.view(), 1.5f, 1.0f, single);
            EXPECT_TRUE(SamePixels(got, want)) << choice;
            EXPECT_TRUE(EverythingReturned(host));
        }
    }
}

TEST(ExtractBrightness, BlurFailureIsKeptUnlessTheMaskRunsAfterIt) {
    Picture input(16, 16);
    input.fill(0.5f);
    for (const bool enableMask : {false, true}) {
        FakeHost host;
        host.newHandleFailsFrom = 0;
        GlowSettings settings;
        settings.blurInput = 3.0;
        settings.enableMask = enableMask;
        settings.maskRadius = 0.0;
        settings.glowFalloff = 2.0;
        Picture map(16, 16);
        EXPECT_EQ(ExtractBrightness(host, settings, input, map, nullptr), enableMask ? 0 : 1);
        // The steps after the failure still run.
        EXPECT_NEAR(map.at(8, 8, kRed), 0.25f, 1e-6f);
        EXPECT_TRUE(EverythingReturned(host));
    }
}

TEST(ExtractBrightness, BlurOfLessThanTheToleranceIsSkipped) {
    FakeHost host;
    Picture input(16, 16);
    input.fill(0.5f);
    GlowSettings settings;
    settings.blurInput = 0.000009;
    Picture map(16, 16);
    EXPECT_EQ(ExtractBrightness(host, settings, input, map, nullptr), 0);
    EXPECT_EQ(host.count("newHandle"), 0);
}

TEST(ExtractBrightness, MaskViewRunsTheMaskWithoutEnableMask) {
    FakeHost host;
    Picture input(3, 3);
    input.fill(0.1f);
    GlowSettings settings;
    settings.view = kViewMask;
    settings.inputChannels = kLuminance;
    Picture map(3, 3);
    EXPECT_EQ(ExtractBrightness(host, settings, input, map, nullptr), 0);
    Picture want(3, 3);
    want.fill(1.0f);
    EXPECT_TRUE(SamePixels(map, want));
}

/// The widening of a whole map: rows, then columns.
void PlainWidenBoth(Picture& map, double glowRadius, double gain, double factor,
                    const ChannelFlags& channels) {
    const float limited = std::min(static_cast<float>(glowRadius * gain),
                                   static_cast<float>(std::min(map.width(), map.height())));
    const float reach = 1.25f * limited * static_cast<float>(factor);
    const auto n = static_cast<std::int32_t>(reach);
    const float fraction = reach - static_cast<float>(n);
    PlainWiden(map, n, fraction, true, channels);
    PlainWiden(map, n, fraction, false, channels);
}

TEST(ExtractBrightness, WideningRunsAlongRowsThenColumnsWhenItsFlagIsSet) {
    Random random(56);
    for (const double radius : {0.0, 0.5, 0.8, 1.0, 1.6, 2.5, 4.0, 7.0, 9.6, 500.0}) {
        for (const double factor : {1.0, 0.5, 0.25}) {
            FakeHost host;
            host.factorX = factor;
            host.factorY = 1.0;
            Picture input(15, 13);
            input.randomize(random, -0.5f, 2.0f);
            GlowSettings settings;
            settings.glowRadius = radius;
            settings.driverFlag = true;
            Picture map(15, 13, 1);
            EXPECT_EQ(ExtractBrightness(host, settings, input, map, nullptr), 0);
            Picture want(input);
            PlainWidenBoth(want, radius, 1.0, factor, {});
            EXPECT_TRUE(NearPixels(map, want, 0.0)) << radius << ' ' << factor;
            EXPECT_TRUE(EverythingReturned(host));
        }
    }
}

TEST(ExtractBrightness, WideningTakesTheSmallerDownsampleFactorOfBothAxes) {
    Random random(57);
    FakeHost host;
    host.factorX = 1.0;
    host.factorY = 0.5;
    Picture input(15, 13);
    input.randomize(random, 0.0f, 1.0f);
    GlowSettings settings;
    settings.glowRadius = 6.0;
    settings.driverFlag = true;
    Picture map(15, 13);
    EXPECT_EQ(ExtractBrightness(host, settings, input, map, nullptr), 0);
    Picture want(input);
    PlainWidenBoth(want, 6.0, 1.0, 0.5, {});
    EXPECT_TRUE(NearPixels(map, want, 0.0));
}

TEST(ExtractBrightness, WideningTreatsTheOutputChannelsOfAnRgbaMapOnly) {
    Random random(58);
    for (std::int32_t choice = 0; choice <= 6; ++choice) {
        FakeHost host;
        Picture input(11, 10);
        input.randomize(random, -0.5f, 2.0f);
        GlowSettings settings;
        settings.glowRadius = 4.5;
        settings.driverFlag = true;
        settings.setOutputChannels(choice);
        Picture map(11, 10);
        EXPECT_EQ(ExtractBrightness(host, settings, input, map, nullptr), 0);
        Picture want(input);
        PlainWidenBoth(want, 4.5, 1.0, 1.0,
                       {{settings.outputAlpha, settings.outputRed, settings.outputGreen,
                         settings.outputBlue}});
        EXPECT_TRUE(NearPixels(map, want, 0.0)) << choice;
        EXPECT_TRUE(EverythingReturned(host));
    }
}

TEST(ExtractBrightness, WideningOfAOneChannelMapTakesAlphaAndRestoresTheFlags) {
    Random random(59);
    for (std::int32_t outputChannels = 0; outputChannels <= 5; ++outputChannels) {
        FakeHost host;
        Picture input(11, 10);
        input.randomize(random, 0.0f, 1.0f);
        GlowSettings settings;
        settings.inputChannels = 4;
        settings.glowRadius = 3.3;
        settings.driverFlag = true;
        settings.setOutputChannels(outputChannels);
        const GlowSettings before = settings;
        Picture map(11, 10);
        EXPECT_EQ(ExtractBrightness(host, settings, input, map, nullptr), 0);
        EXPECT_EQ(settings.outputRed, before.outputRed);
        EXPECT_EQ(settings.outputGreen, before.outputGreen);
        EXPECT_EQ(settings.outputBlue, before.outputBlue);
        EXPECT_EQ(settings.outputAlpha, before.outputAlpha);
        Picture want(11, 10);
        MapBrightness(input.view(), want.view(), 4);
        PlainWidenBoth(want, 3.3, 1.0, 1.0, {});
        for (std::int32_t y = 0; y < 10; ++y) {
            for (std::int32_t x = 0; x < 11; ++x) {
                const float v = want.at(x, y, kAlpha);
                want.set(x, y, {v, v, v, v});
            }
        }
        EXPECT_TRUE(NearPixels(map, want, 0.0));
    }
}

TEST(ExtractBrightness, WideningComesBeforeTheThreshold) {
    FakeHost host;
    Picture input(9, 9);
    input.set(4, 4, {1.0f, 1.0f, 1.0f, 1.0f});
    GlowSettings settings;
    settings.glowRadius = 2.0;  // reach 2.5: half strength one pixel away
    settings.threshold = 40.0;
    settings.driverFlag = true;
    Picture map(9, 9);
    EXPECT_EQ(ExtractBrightness(host, settings, input, map, nullptr), 0);
    EXPECT_NEAR(map.at(4, 4, kRed), 0.6f, 1e-6f);
    EXPECT_NEAR(map.at(5, 4, kRed), 0.1f, 1e-6f);
    EXPECT_EQ(map.at(5, 5, kRed), 0.0f);
}

TEST(ExtractBrightness, WideningIsOffWithoutItsFlag) {
    FakeHost host;
    Picture input(9, 9);
    input.set(4, 4, {1.0f, 1.0f, 1.0f, 1.0f});
    GlowSettings settings;
    Picture map(9, 9);
    EXPECT_EQ(ExtractBrightness(host, settings, input, map, nullptr), 0);
    EXPECT_TRUE(SamePixels(map, input));
    EXPECT_EQ(host.count("newHandle"), 0);
}

TEST(ExtractBrightness, WideningWithoutMemoryEndsTheStageAtOnceAndRestoresTheFlags) {
    for (const bool lockFails : {false, true}) {
        FakeHost host;
        (lockFails ? host.lockFailsFrom : host.newHandleFailsFrom) = 0;
        Picture input(9, 9);
        input.fill(0.5f);
        GlowSettings settings;
        settings.inputChannels = 1;
        settings.glowRadius = 3.0;
        settings.driverFlag = true;
        settings.glowFalloff = 2.0;
        settings.setOutputChannels(0);
        Picture map(9, 9);
        EXPECT_NE(ExtractBrightness(host, settings, input, map, nullptr), 0);
        EXPECT_EQ(map.at(4, 4, kAlpha), 0.5f) << "a later step ran";
        EXPECT_TRUE(settings.outputRed);
        EXPECT_FALSE(settings.outputAlpha);
        EXPECT_TRUE(EverythingReturned(host));
    }
}

}  // namespace
}  // namespace vireon::test
