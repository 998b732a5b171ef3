#include "composite/output_passes.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

#include <gtest/gtest.h>

#include "render/glow_settings.h"
#include "tests/unit/support/picture.h"

namespace vireon::test {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

/// Pictures of every width around the steps of an unrolled loop, with and without padding, going
/// down and up.
void OnManySizes(float low, float high, const std::function<void(Picture&)>& check) {
    Random random(20);
    for (std::int32_t width = 1; width <= 9; ++width) {
        for (std::int32_t height : {1, 3}) {
            for (const bool bottomUp : {false, true}) {
                Picture picture(width, height, width % 3, bottomUp);
                picture.randomize(random, low, high);
                check(picture);
            }
        }
    }
}

/// The soft clip of a whole picture as its definition says, in double precision.
void PlainSoftClip(Picture& picture, double c) {
    double m = 0.0;
    ForEachFloat(picture, [&](std::int32_t x, std::int32_t y, std::int32_t channel) {
        const auto v = static_cast<double>(picture.at(x, y, channel));
        if (channel != kAlpha && v > m) m = v;
    });
    if (m <= 1.0) return;
    const double e = std::clamp(m - 1.0, 0.0, 1.0);
    const double knee = 1.0 - e;
    ForEachFloat(picture, [&](std::int32_t x, std::int32_t y, std::int32_t channel) {
        if (channel == kAlpha) return;
        const auto v = static_cast<double>(picture.at(x, y, channel));
        if (!(v > knee)) return;
        const double position = (v - knee) / e;
        if (position <= 0.5) return;
        const double curve = 1.0 - std::exp2(-2.0 * position);
        const double bent = (curve * c + position * (1.0 - c)) * e + knee;
        picture.at(x, y, channel) = static_cast<float>(std::max(bent, 0.0));
    });
}

TEST(OverbrightSoftClip, FollowsTheCurveForEveryBrightnessAndClamp) {
    for (const float high : {1.05f, 1.5f, 2.0f, 3.0f, 20.0f}) {
        for (const double percent : {100.0, 70.0, 30.0, 1.0}) {
            OnManySizes(-0.5f, high, [&](Picture& picture) {
                Picture want(picture);
                PlainSoftClip(want, percent / 100.0);
                GlowSettings settings;
                settings.overbrightClamp = percent;
                OverbrightSoftClip(picture.view(), settings);
                EXPECT_TRUE(NearPixels(picture, want, kRounding)) << high << ' ' << percent;
            });
        }
    }
}

TEST(OverbrightSoftClip, LeavesTheBufferAloneWhenSwitchedOff) {
    Random random(21);
    Picture picture(7, 3);
    picture.randomize(random, -1.0f, 4.0f);
    const Picture before(picture);
    GlowSettings settings;
    settings.preventOverbrights = false;
    OverbrightSoftClip(picture.view(), settings);
    EXPECT_TRUE(SamePixels(picture, before));
}

TEST(OverbrightSoftClip, ClampOfZeroPercentLeavesTheBufferAlone) {
    Random random(22);
    Picture picture(7, 3);
    picture.randomize(random, -1.0f, 4.0f);
    const Picture before(picture);
    GlowSettings settings;
    for (const double percent : {0.0, 0.0009, -0.0009}) {
        settings.overbrightClamp = percent;
        OverbrightSoftClip(picture.view(), settings);
        EXPECT_TRUE(SamePixels(picture, before)) << percent;
    }
}

TEST(OverbrightSoftClip, BrightestColourOfExactlyOneLeavesTheBufferAlone) {
    Random random(23);
    Picture picture(7, 3);
    picture.randomize(random, -1.0f, 0.99f);
    picture.set(3, 1, {5.0f, 1.0f, 0.9f, 0.2f});
    const Picture before(picture);
    OverbrightSoftClip(picture.view(), GlowSettings{});
    EXPECT_TRUE(SamePixels(picture, before));
}

TEST(OverbrightSoftClip, BrightestOfOneAndAHalfLandsBelowOneAndTheKneeIsAHalf) {
    Picture picture(2, 1);
    picture.set(0, 0, {1.0f, 1.5f, 0.7f, 0.3f});
    picture.set(1, 0, {0.2f, 0.75f, 0.5f, -0.5f});
    OverbrightSoftClip(picture.view(), GlowSettings{});
    EXPECT_NEAR(picture.at(0, 0, kRed), 0.96875f, 1e-6f);
    EXPECT_EQ(picture.at(0, 0, kGreen), 0.7f);
    EXPECT_EQ(picture.at(0, 0, kBlue), 0.3f);
    EXPECT_EQ(picture.at(1, 0, kRed), 0.75f);
    EXPECT_EQ(picture.at(1, 0, kGreen), 0.5f);
    EXPECT_EQ(picture.at(1, 0, kBlue), -0.5f);
    EXPECT_EQ(picture.at(1, 0, kAlpha), 0.2f);
}

TEST(OverbrightSoftClip, BrightestOfTwoOrMoreCompressesEverythingAboveAHalf) {
    Picture picture(2, 1);
    picture.set(0, 0, {1.0f, 4.0f, 0.5f, 0.51f});
    picture.set(1, 0, {1.0f, 1.0f, 0.49f, 0.0f});
    OverbrightSoftClip(picture.view(), GlowSettings{});
    EXPECT_NEAR(picture.at(0, 0, kRed), 1.0f - std::exp2(-8.0f), 1e-6f);
    EXPECT_EQ(picture.at(0, 0, kGreen), 0.5f);
    EXPECT_NEAR(picture.at(0, 0, kBlue), 1.0f - std::exp2(-1.02f), 1e-6f);
    EXPECT_NEAR(picture.at(1, 0, kRed), 0.75f, 1e-6f);
    EXPECT_EQ(picture.at(1, 0, kGreen), 0.49f);
}

TEST(OverbrightSoftClip, AlphaNeitherCountsNorChanges) {
    Picture picture(4, 2);
    picture.fill(9.0f, 0.9f, 0.5f, 0.1f);
    const Picture before(picture);
    OverbrightSoftClip(picture.view(), GlowSettings{});
    EXPECT_TRUE(SamePixels(picture, before));
}

TEST(OverbrightSoftClip, NaNStaysAtItsOwnPlace) {
    Random random(24);
    Picture want(9, 3);
    want.randomize(random, 0.0f, 1.8f);
    want.at(4, 1, kGreen) = 0.0f;
    Picture picture(want);
    picture.at(4, 1, kGreen) = kNaN;
    OverbrightSoftClip(want.view(), GlowSettings{});
    OverbrightSoftClip(picture.view(), GlowSettings{});
    EXPECT_TRUE(std::isnan(picture.at(4, 1, kGreen)));
    picture.at(4, 1, kGreen) = 0.0f;
    EXPECT_TRUE(SamePixels(picture, want));
}

TEST(OverbrightSoftClip, InfinityCountsAsVeryBrightAndMakesNoNaNElsewhere) {
    Picture picture(3, 1);
    picture.set(0, 0, {1.0f, kInfinity, 0.25f, 1.0f});
    picture.set(1, 0, {1.0f, -kInfinity, 0.5f, 2.0f});
    OverbrightSoftClip(picture.view(), GlowSettings{});
    EXPECT_EQ(picture.at(0, 0, kGreen), 0.25f);
    EXPECT_NEAR(picture.at(0, 0, kBlue), 0.75f, 1e-6f);
    EXPECT_EQ(picture.at(1, 0, kGreen), 0.5f);
    EXPECT_NEAR(picture.at(1, 0, kBlue), 0.9375f, 1e-6f);
}

TEST(ChannelMaskPass, FactorOfOneWithinTheToleranceMultipliesNothing) {
    OnManySizes(-2.0f, 2.0f, [](Picture& picture) {
        const Picture before(picture);
        for (const float factor : {1.0f, 1.000005f, 0.999995f}) {
            ChannelMaskPass(picture.view(), before.view(), GlowSettings{}, factor, false);
            EXPECT_TRUE(SamePixels(picture, before)) << factor;
        }
    });
}

TEST(ChannelMaskPass, OtherFactorsMultiplyAllFourChannels) {
    OnManySizes(-2.0f, 2.0f, [](Picture& picture) {
        Picture want(picture);
        ForEachFloat(want, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
            want.at(x, y, c) *= 0.3f;
        });
        ChannelMaskPass(picture.view(), picture.view(), GlowSettings{}, 0.3f, false);
        EXPECT_TRUE(SamePixels(picture, want));
    });
}

TEST(ChannelMaskPass, EveryChannelSelectionAndForceOpaque) {
    Random random(25);
    for (int flags = 0; flags < 16; ++flags) {
        for (const bool forceOpaque : {false, true}) {
            OnManySizes(-2.0f, 2.0f, [&](Picture& picture) {
                Picture source(picture.width(), picture.height(), 5);
                source.randomize(random, -1.0f, 1.0f);
                const Picture sourceBefore(source);
                GlowSettings settings;
                settings.outputRed = (flags & 1) != 0;
                settings.outputGreen = (flags & 2) != 0;
                settings.outputBlue = (flags & 4) != 0;
                settings.outputAlpha = (flags & 8) != 0;
                Picture want(picture);
                for (std::int32_t y = 0; y < want.height(); ++y) {
                    for (std::int32_t x = 0; x < want.width(); ++x) {
                        if (forceOpaque) {
                            want.at(x, y, kAlpha) = 1.0f;
                        } else if (!settings.outputAlpha) {
                            want.at(x, y, kAlpha) = source.at(x, y, kAlpha);
                        }
                        if (!settings.outputRed) want.at(x, y, kRed) = 0.0f;
                        if (!settings.outputGreen) want.at(x, y, kGreen) = 0.0f;
                        if (!settings.outputBlue) want.at(x, y, kBlue) = 0.0f;
                    }
                }
                ChannelMaskPass(picture.view(), source.view(), settings, 1.0f, forceOpaque);
                EXPECT_TRUE(SamePixels(picture, want)) << flags << ' ' << forceOpaque;
                EXPECT_TRUE(SamePixels(source, sourceBefore));
            });
        }
    }
}

TEST(ChannelMaskPass, NaNOfAChannelThatIsNotSelectedIsZeroed) {
    Picture picture(5, 1);
    picture.fill(kNaN);
    GlowSettings settings;
    settings.setOutputChannels(5);
    ChannelMaskPass(picture.view(), picture.view(), settings, 1.0f, true);
    for (std::int32_t x = 0; x < 5; ++x) {
        EXPECT_EQ(picture.at(x, 0, kAlpha), 1.0f);
        EXPECT_EQ(picture.at(x, 0, kRed), 0.0f);
        EXPECT_EQ(picture.at(x, 0, kBlue), 0.0f);
    }
}

TEST(IntensityToAlpha, MovesTheBrightestColourIntoAlpha) {
    OnManySizes(0.0f, 3.0f, [](Picture& picture) {
        Picture want(picture);
        for (std::int32_t y = 0; y < want.height(); ++y) {
            for (std::int32_t x = 0; x < want.width(); ++x) {
                const float m =
                    std::max({want.at(x, y, kRed), want.at(x, y, kGreen), want.at(x, y, kBlue)});
                want.at(x, y, kAlpha) *= m;
                for (std::int32_t c = kRed; c <= kBlue; ++c) {
                    want.at(x, y, c) = m == 0.0f ? 0.0f : want.at(x, y, c) / m;
                }
            }
        }
        IntensityToAlpha(picture.view());
        EXPECT_TRUE(NearPixels(picture, want, kRounding));
    });
}

TEST(IntensityToAlpha, OverbrightPixelAndBlackPixel) {
    Picture picture(2, 1);
    picture.set(0, 0, {1.0f, 2.0f, 1.0f, 0.5f});
    picture.set(1, 0, {1.0f, 0.0f, 0.0f, 0.0f});
    IntensityToAlpha(picture.view());
    Picture want(2, 1);
    want.set(0, 0, {2.0f, 1.0f, 0.5f, 0.25f});
    want.set(1, 0, {0.0f, 0.0f, 0.0f, 0.0f});
    EXPECT_TRUE(SamePixels(picture, want));
}

TEST(IntensityToAlpha, NegativeColoursAreDividedByTheLargestOfThem) {
    Picture picture(2, 1);
    picture.set(0, 0, {0.5f, -1.0f, -2.0f, -4.0f});
    picture.set(1, 0, {0.5f, 0.0f, -2.0f, -4.0f});
    IntensityToAlpha(picture.view());
    EXPECT_EQ(picture.at(0, 0, kAlpha), -0.5f);
    EXPECT_EQ(picture.at(0, 0, kRed), 1.0f);
    EXPECT_EQ(picture.at(0, 0, kGreen), 2.0f);
    EXPECT_EQ(picture.at(0, 0, kBlue), 4.0f);
    EXPECT_EQ(picture.at(1, 0, kAlpha), 0.0f);
    EXPECT_EQ(picture.at(1, 0, kGreen), 0.0f);
    EXPECT_EQ(picture.at(1, 0, kBlue), 0.0f);
}

TEST(ScaleColour, MultipliesTheColoursAndLeavesAlpha) {
    OnManySizes(-2.0f, 2.0f, [](Picture& picture) {
        Picture want(picture);
        ForEachFloat(want, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
            if (c != kAlpha) want.at(x, y, c) *= 1.7f;
        });
        ScaleColour(picture.view(), 1.7f);
        EXPECT_TRUE(SamePixels(picture, want));
    });
}

TEST(ClampColour, LimitsTheColoursAndLeavesAlpha) {
    OnManySizes(-2.0f, 2.0f, [](Picture& picture) {
        Picture want(picture);
        ForEachFloat(want, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
            if (c != kAlpha) want.at(x, y, c) = std::clamp(want.at(x, y, c), 0.0f, 1.0f);
        });
        ClampColour(picture.view());
        EXPECT_TRUE(SamePixels(picture, want));
    });
}

TEST(ClampColour, InfinitiesAreLimitedToo) {
    Picture picture(1, 1);
    picture.set(0, 0, {kInfinity, kInfinity, -kInfinity, 0.5f});
    ClampColour(picture.view());
    Picture want(1, 1);
    want.set(0, 0, {kInfinity, 1.0f, 0.0f, 0.5f});
    EXPECT_TRUE(SamePixels(picture, want));
}

TEST(ClampAlpha, LimitsAlphaAndLeavesTheColours) {
    OnManySizes(-2.0f, 2.0f, [](Picture& picture) {
        Picture want(picture);
        ForEachFloat(want, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
            if (c == kAlpha) want.at(x, y, c) = std::clamp(want.at(x, y, c), 0.0f, 1.0f);
        });
        ClampAlpha(picture.view());
        EXPECT_TRUE(SamePixels(picture, want));
    });
}

TEST(IsOpaque, OnlyWhenNoAlphaLiesBelowOne) {
    OnManySizes(-2.0f, 2.0f, [](Picture& picture) {
        FillAlpha(picture.view());
        EXPECT_TRUE(IsOpaque(picture.view()));
        for (std::int32_t y = 0; y < picture.height(); ++y) {
            for (std::int32_t x = 0; x < picture.width(); ++x) {
                picture.at(x, y, kAlpha) = 0.99999994f;
                EXPECT_FALSE(IsOpaque(picture.view())) << x << ' ' << y;
                picture.at(x, y, kAlpha) = 1.5f;
                EXPECT_TRUE(IsOpaque(picture.view())) << x << ' ' << y;
            }
        }
    });
}

TEST(IsOpaque, EmptyBufferCountsAsOpaque) {
    EXPECT_TRUE(IsOpaque(FloatImage{nullptr, 5, 0, 80}));
    EXPECT_TRUE(IsOpaque(FloatImage{nullptr, 0, 0, 0}));
}

TEST(AlphaFillAndClear, SetAlphaAndLeaveTheColours) {
    OnManySizes(-2.0f, 2.0f, [](Picture& picture) {
        for (const float alpha : {1.0f, 0.0f}) {
            Picture want(picture);
            ForEachFloat(want, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
                if (c == kAlpha) want.at(x, y, c) = alpha;
            });
            alpha == 1.0f ? FillAlpha(picture.view()) : ClearAlpha(picture.view());
            EXPECT_TRUE(SamePixels(picture, want));
        }
    });
}

TEST(Premultiply, MultipliesTheColoursByAlpha) {
    OnManySizes(-2.0f, 2.0f, [](Picture& picture) {
        Picture want(picture);
        ForEachFloat(want, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
            if (c != kAlpha) want.at(x, y, c) *= want.at(x, y, kAlpha);
        });
        Premultiply(picture.view());
        EXPECT_TRUE(SamePixels(picture, want));
    });
}

TEST(Unpremultiply, DividesWhereAlphaIsAboveZero) {
    OnManySizes(-2.0f, 2.0f, [](Picture& picture) {
        Picture want(picture);
        ForEachFloat(want, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
            if (c != kAlpha && want.at(x, y, kAlpha) > 0.0f) {
                want.at(x, y, c) /= want.at(x, y, kAlpha);
            }
        });
        Unpremultiply(picture.view());
        EXPECT_TRUE(NearPixels(picture, want, kRounding));
    });
}

TEST(Unpremultiply, PixelsWithAlphaZeroOrLessStayExactlyAsTheyWere) {
    Picture picture(4, 1);
    picture.set(0, 0, {0.0f, 0.5f, -1.0f, 3.0f});
    picture.set(1, 0, {-0.5f, 0.5f, -1.0f, 3.0f});
    picture.set(2, 0, {-0.0f, 0.5f, kNaN, kInfinity});
    picture.set(3, 0, {kNaN, 0.5f, -1.0f, 3.0f});
    const Picture before(picture);
    Unpremultiply(picture.view());
    EXPECT_TRUE(SamePixels(picture, before));
}

}  // namespace
}  // namespace vireon::test
