#include "glow/shape_convolution.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string_view>

#include <gtest/gtest.h>

#include "render/glow_settings.h"
#include "tests/unit/glow/plain_splat.h"
#include "tests/unit/support/fake_host.h"
#include "tests/unit/support/picture.h"

namespace vireon::test {
namespace {

constexpr double kSumTolerance = 8.0 * kRounding;

GlowKernel TestKernel() {
    Random random(120);
    return RandomKernel(random, 10, 8);
}

GlowSettings SmallGlow() {
    GlowSettings settings;
    settings.glowRadius = 4.3;
    settings.glowIntensity = 25.0;
    return settings;
}

Picture Light(std::int32_t width = 12, std::int32_t height = 9) {
    Random random(121);
    Picture picture(width, height, 1);
    picture.randomize(random, -0.3f, 1.5f);
    return picture;
}

/// The finished convolution by the general splat.
Picture PlainConvolution(const Picture& source, const GlowKernel& kernel,
                         const GlowSettings& settings, double downsample, float f) {
    Picture result(source.width(), source.height());
    const auto m = static_cast<float>(downsample);
    const float scaled = static_cast<float>(
        static_cast<double>(static_cast<float>(settings.glowRadius)) * settings.radiusScale);
    const float radius = scaled * m;
    const auto weight = static_cast<float>(settings.glowIntensity / 100.0);
    PlainSplat(
        source, result, kernel, weight, radius, static_cast<std::int32_t>(radius + 0.5f),
        {{settings.outputAlpha, settings.outputRed, settings.outputGreen, settings.outputBlue}});
    const float factor = f * f / (m * m);
    if (std::fabs(m - 1.0f) >= 1e-5f || std::fabs(f - 1.0f) >= 1e-5f) {
        ForEachFloat(result, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
            result.at(x, y, c) *= factor;
        });
    }
    return result;
}

TEST(ConvolveShape, ClearsTheDestinationAndAddsEveryStamp) {
    const GlowKernel kernel = TestKernel();
    for (std::int32_t channels = 0; channels <= 6; ++channels) {
        FakeHost host;
        Picture source = Light();
        const Picture before(source);
        GlowSettings settings = SmallGlow();
        settings.setOutputChannels(channels);
        Picture got(12, 9, 5, true);
        got.fill(std::numeric_limits<float>::quiet_NaN());
        EXPECT_EQ(ConvolveShape(host, source, got, &kernel, settings, 1.0f), 0);
        EXPECT_TRUE(
            NearPixels(got, PlainConvolution(source, kernel, settings, 1.0, 1.0f), kSumTolerance))
            << channels;
        EXPECT_TRUE(SamePixels(source, before));
        EXPECT_TRUE(EverythingReturned(host));
    }
}

TEST(ConvolveShape, RadiusIsGlowRadiusTimesRadiusScaleTimesTheSmallerDownsampleFactor) {
    const GlowKernel kernel = TestKernel();
    for (const double radius : {0.0, 0.3, 0.6, 2.5, 6.5, 13.0}) {
        for (const double radiusScale : {1.0, 0.5, 0.0625}) {
            for (const double factorX : {1.0, 0.5}) {
                FakeHost host;
                host.factorX = factorX;
                host.factorY = 0.8;
                Picture source = Light();
                GlowSettings settings = SmallGlow();
                settings.glowRadius = radius;
                settings.radiusScale = radiusScale;
                Picture got(12, 9);
                EXPECT_EQ(ConvolveShape(host, source, got, &kernel, settings, 1.0f), 0);
                const Picture want =
                    PlainConvolution(source, kernel, settings, std::min(factorX, 0.8), 1.0f);
                EXPECT_TRUE(NearPixels(got, want, kSumTolerance)) << radius << ' ' << radiusScale;
                const auto r =
                    static_cast<std::int64_t>(radius * radiusScale * std::min(factorX, 0.8) + 0.5);
                ASSERT_FALSE(host.handleSizes.empty());
                for (const std::int64_t bytes : host.handleSizes) {
                    EXPECT_EQ(bytes, (2 * r + 1) * (2 * r + 1) * 16);
                }
            }
        }
    }
}

TEST(ConvolveShape, FullQualityAndResolutionIsNotRescaled) {
    const GlowKernel kernel = TestKernel();
    FakeHost host;
    Picture source = Light();
    Picture got(12, 9);
    Picture almost(12, 9);
    GlowSettings settings = SmallGlow();
    EXPECT_EQ(ConvolveShape(host, source, got, &kernel, settings, 1.0f), 0);
    EXPECT_EQ(ConvolveShape(host, source, almost, &kernel, settings, 1.000005f), 0);
    EXPECT_TRUE(SamePixels(almost, got));
}

TEST(ConvolveShape, FourToOneAtHalfResolutionIsMultipliedBySixtyFour) {
    const GlowKernel kernel = TestKernel();
    FakeHost host;
    Picture source = Light();
    GlowSettings settings = SmallGlow();
    Picture full(12, 9);
    EXPECT_EQ(ConvolveShape(host, source, full, &kernel, settings, 1.0f), 0);

    host.factorX = 0.5;
    host.factorY = 0.5;
    settings.glowRadius *= 2.0;
    Picture reduced(12, 9);
    EXPECT_EQ(ConvolveShape(host, source, reduced, &kernel, settings, 4.0f), 0);
    ForEachFloat(
        full, [&](std::int32_t x, std::int32_t y, std::int32_t c) { full.at(x, y, c) *= 64.0f; });
    EXPECT_TRUE(NearPixels(reduced, full, kSumTolerance));
}

TEST(ConvolveShape, RescalesByTheQualityFactorAlone) {
    const GlowKernel kernel = TestKernel();
    for (const float f : {2.0f, 8.0f, 16.0f}) {
        FakeHost host;
        Picture source = Light();
        GlowSettings settings = SmallGlow();
        Picture got(12, 9);
        EXPECT_EQ(ConvolveShape(host, source, got, &kernel, settings, f), 0);
        EXPECT_TRUE(
            NearPixels(got, PlainConvolution(source, kernel, settings, 1.0, f), kSumTolerance));
    }
}

TEST(ConvolveShape, FastSplatStampsAlikeForFourThreeAndOneChannel) {
    const GlowKernel kernel = TestKernel();
    for (const std::int32_t channels : {0, 1, 2, 3, 4, 5, 6}) {
        FakeHost host;
        Picture source = Light();
        GlowSettings settings = SmallGlow();
        settings.setOutputChannels(channels);
        const Picture general = PlainConvolution(source, kernel, settings, 1.0, 1.0f);
        settings.fastSplat = true;
        Picture got(12, 9);
        EXPECT_EQ(ConvolveShape(host, source, got, &kernel, settings, 1.0f), 0);
        if (channels >= 2) {
            EXPECT_TRUE(NearPixels(got, general, kSumTolerance)) << channels;
            continue;
        }
        Picture want(12, 9);
        const auto radius = static_cast<float>(settings.glowRadius);
        for (std::int32_t y = 0; y < 9; ++y) {
            for (std::int32_t x = 0; x < 12; ++x) {
                const float value =
                    channels == 1
                        ? source.at(x, y, 0)
                        : std::max({source.at(x, y, 1), source.at(x, y, 2), source.at(x, y, 3)});
                PlainStamp(want, kernel, 0.25f, radius, 4, x, y, value, channels == 1 ? 0 : 1, 3);
            }
        }
        EXPECT_TRUE(NearPixels(got, want, kSumTolerance)) << channels;
    }
}

TEST(ConvolveShape, TwoOfFourChannelsTakeTheGeneralSplatEvenWithFastSplat) {
    const GlowKernel kernel = TestKernel();
    FakeHost host;
    Picture source = Light();
    GlowSettings settings = SmallGlow();
    settings.outputRed = false;
    settings.outputAlpha = false;
    settings.fastSplat = true;
    Picture got(12, 9);
    EXPECT_EQ(ConvolveShape(host, source, got, &kernel, settings, 1.0f), 0);
    EXPECT_TRUE(
        NearPixels(got, PlainConvolution(source, kernel, settings, 1.0, 1.0f), kSumTolerance));
}

TEST(ConvolveShape, MissingShapeOrTexelsGivesOne) {
    FakeHost host;
    Picture source = Light();
    Picture got(12, 9);
    GlowSettings settings = SmallGlow();
    EXPECT_EQ(ConvolveShape(host, source, got, nullptr, settings, 1.0f), 1);
    GlowKernel empty;
    empty.width = 128;
    empty.height = 128;
    EXPECT_EQ(ConvolveShape(host, source, got, &empty, settings, 1.0f), 1);
    EXPECT_EQ(host.count("progress"), 0);
    EXPECT_TRUE(EverythingReturned(host));
}

TEST(ConvolveShape, ReportsProgressOnceARowAndCountsItUp) {
    const GlowKernel kernel = TestKernel();
    FakeHost host;
    Picture source = Light();
    Picture got(12, 9);
    GlowSettings settings = SmallGlow();
    settings.progressCount = 5;
    settings.progressTotal = 40;
    EXPECT_EQ(ConvolveShape(host, source, got, &kernel, settings, 1.0f), 0);
    ASSERT_EQ(host.progressReports.size(), 9u);
    for (std::int32_t y = 0; y < 9; ++y) {
        EXPECT_EQ(host.progressReports[static_cast<std::size_t>(y)].first, 5 + y);
        EXPECT_EQ(host.progressReports[static_cast<std::size_t>(y)].second, 40);
    }
    EXPECT_EQ(settings.progressCount, 14);
    EXPECT_EQ(settings.progressTotal, 40);
}

TEST(ConvolveShape, TakesAndGivesBackOneScratchBlockARow) {
    const GlowKernel kernel = TestKernel();
    FakeHost host;
    std::size_t most = 0;
    host.onCall = [&](std::string_view) { most = std::max(most, host.liveHandles()); };
    Picture source = Light();
    Picture got(12, 9);
    GlowSettings settings = SmallGlow();
    EXPECT_EQ(ConvolveShape(host, source, got, &kernel, settings, 1.0f), 0);
    for (const std::string_view operation :
         {"newHandle", "lockHandle", "unlockHandle", "disposeHandle"}) {
        EXPECT_EQ(host.count(operation), 9) << operation;
    }
    EXPECT_EQ(most, 1u);
    EXPECT_TRUE(EverythingReturned(host));
}

TEST(ConvolveShape, AbortStopsAtItsRowAndIsTheResult) {
    const GlowKernel kernel = TestKernel();
    for (const int row : {0, 3, 8}) {
        FakeHost host;
        host.progressAnswer = [=](int call) { return call == row ? 517 : 0; };
        Picture source = Light();
        Picture got(12, 9);
        GlowSettings settings = SmallGlow();
        ConvolutionOptions plain;
        plain.kernels = nullptr;
        EXPECT_EQ(ConvolveShape(host, source, got, &kernel, settings, 1.0f, plain), 517);
        EXPECT_EQ(host.count("progress"), row + 1);
        EXPECT_EQ(host.count("newHandle"), row);
        EXPECT_EQ(settings.progressCount, row + 1);
        EXPECT_TRUE(EverythingReturned(host));
        // Rows from the abort on have made no stamp.
        Picture done(source);
        for (std::int32_t y = row; y < 9; ++y) {
            for (std::int32_t x = 0; x < 12; ++x) done.set(x, y, {0.0f, 0.0f, 0.0f, 0.0f});
        }
        EXPECT_TRUE(
            NearPixels(got, PlainConvolution(done, kernel, settings, 1.0, 1.0f), kSumTolerance));
    }
}

TEST(ConvolveShape, WithoutAScratchBlockTheResultIsFour) {
    const GlowKernel kernel = TestKernel();
    for (const int row : {0, 4}) {
        for (const bool lockFails : {false, true}) {
            FakeHost host;
            (lockFails ? host.lockFailsFrom : host.newHandleFailsFrom) = row;
            Picture source = Light();
            Picture got(12, 9);
            GlowSettings settings = SmallGlow();
            EXPECT_EQ(ConvolveShape(host, source, got, &kernel, settings, 1.0f), 4);
            EXPECT_EQ(host.count("progress"), row + 1);
            EXPECT_TRUE(EverythingReturned(host));
        }
    }
}

TEST(ConvolveShape, ExceptionOfAHostCallGivesOneAndTheScratchBlockBack) {
    const GlowKernel kernel = TestKernel();
    for (const std::string_view operation : {"progress", "newHandle", "lockHandle"}) {
        for (const int when : {0, 2}) {
            FakeHost host;
            int calls = 0;
            host.onCall = [&](std::string_view name) {
                if (name == operation && calls++ == when) throw std::runtime_error("host");
            };
            Picture source = Light();
            Picture got(12, 9);
            GlowSettings settings = SmallGlow();
            EXPECT_EQ(ConvolveShape(host, source, got, &kernel, settings, 1.0f), 1) << operation;
            host.onCall = nullptr;
            EXPECT_TRUE(EverythingReturned(host)) << operation;
        }
    }
}

TEST(ConvolveShape, LightThatIsNotFiniteDoesNotReachTheGlow) {
    const GlowKernel kernel = TestKernel();
    FakeHost host;
    Picture source(12, 9);
    source.set(6, 4,
               {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
                -std::numeric_limits<float>::infinity(), 3e38f});
    Picture got(12, 9);
    GlowSettings settings = SmallGlow();
    EXPECT_EQ(ConvolveShape(host, source, got, &kernel, settings, 1.0f), 0);
    ForEachFloat(got, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
        EXPECT_TRUE(std::isfinite(got.at(x, y, c)));
    });
    EXPECT_EQ(got.at(6, 4, kAlpha), 0.0f);
    EXPECT_EQ(got.at(6, 4, kRed), got.at(6, 4, kBlue));
}

}  // namespace
}  // namespace vireon::test
