#include "glow/tent_blur.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string_view>

#include <gtest/gtest.h>

#include "glow/tent_blur_pixels.h"
#include "render/glow_settings.h"
#include "tests/unit/support/fake_host.h"
#include "tests/unit/support/picture.h"

namespace vireon::test {
namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

std::int32_t PlainRadius(std::int32_t radius, std::int32_t length) {
    return 2 * radius + 2 >= length ? length / 2 - 2 : radius;
}

/// The weighted sum of the definition, pixel by pixel, for the channels first to last.
void PlainTent(const Picture& source, Picture& destination, std::int32_t radius,
               std::int32_t direction, std::int32_t first, std::int32_t last) {
    const std::int32_t length = direction == kAlongRows ? source.width() : source.height();
    const std::int32_t r = PlainRadius(radius, length);
    if (r <= 0) return;
    const double m = r + 1;
    for (std::int32_t y = 0; y < source.height(); ++y) {
        for (std::int32_t x = 0; x < source.width(); ++x) {
            for (std::int32_t c = first; c <= last; ++c) {
                double sum = 0.0;
                for (std::int32_t k = -r; k <= r; ++k) {
                    const std::int32_t i =
                        std::clamp((direction == kAlongRows ? x : y) + k, 0, length - 1);
                    const float v =
                        direction == kAlongRows ? source.at(i, y, c) : source.at(x, i, c);
                    sum += (m - std::abs(k)) * static_cast<double>(v);
                }
                destination.at(x, y, c) = static_cast<float>(sum / (m * m));
            }
        }
    }
}

Picture Shaped(std::int32_t direction, std::int32_t length, std::int32_t lines) {
    return direction == kAlongRows ? Picture(length, lines, length % 5, length % 2 == 0)
                                   : Picture(lines, length, length % 5, length % 2 == 0);
}

TEST(TentBlur, RadiusThatReachesHalfTheLineIsCutToHalfTheLengthMinusTwo) {
    EXPECT_EQ(ClampTentRadius(3, 10), 3);
    for (const std::int32_t radius : {4, 5, 9, 1000}) EXPECT_EQ(ClampTentRadius(radius, 10), 3);
    for (std::int32_t length = 1; length <= 40; ++length) {
        for (std::int32_t radius = 0; radius <= 30; ++radius) {
            EXPECT_EQ(ClampTentRadius(radius, length), PlainRadius(radius, length));
        }
    }
}

TEST(TentBlur, AllFourChannelsAreTheDirectWeightedSumForEveryLengthAndRadius) {
    Random random(70);
    for (const std::int32_t direction : {kAlongRows, kAlongColumns}) {
        for (std::int32_t length = 1; length <= 33; ++length) {
            for (std::int32_t radius = 0; radius <= 20; ++radius) {
                Picture source = Shaped(direction, length, 2);
                source.randomize(random, -2.0f, 8.0f);
                const Picture before(source);
                Picture got = Shaped(direction, length, 2);
                got.fill(5.0f);
                Picture want(got);
                PlainTent(source, want, radius, direction, 0, 3);
                EXPECT_EQ(TentBlurRGBA(source.view(), got.view(), radius, direction), 0);
                ASSERT_TRUE(NearPixels(got, want, kRounding, 8.0))
                    << direction << ' ' << length << ' ' << radius;
                ASSERT_TRUE(SamePixels(source, before));
            }
        }
    }
}

TEST(TentBlur, ColoursOnlyNeitherReadsNorWritesAlpha) {
    Random random(71);
    for (const std::int32_t direction : {kAlongRows, kAlongColumns}) {
        for (std::int32_t length = 1; length <= 33; ++length) {
            for (const std::int32_t radius : {1, 2, 3, 7, 20}) {
                Picture source = Shaped(direction, length, 3);
                source.randomize(random, -2.0f, 8.0f);
                for (std::int32_t y = 0; y < source.height(); ++y) {
                    for (std::int32_t x = 0; x < source.width(); ++x) {
                        source.at(x, y, kAlpha) = kNaN;
                    }
                }
                Picture got = Shaped(direction, length, 3);
                got.fill(5.0f);
                Picture want(got);
                PlainTent(source, want, radius, direction, 1, 3);
                EXPECT_EQ(TentBlurRGB(source.view(), got.view(), radius, direction), 0);
                ASSERT_TRUE(NearPixels(got, want, kRounding, 8.0)) << length << ' ' << radius;
            }
        }
    }
}

TEST(TentBlur, OneChannelLeavesTheOtherThreeAlone) {
    Random random(72);
    for (const std::int32_t direction : {kAlongRows, kAlongColumns}) {
        for (std::int32_t channel = 0; channel < 4; ++channel) {
            for (std::int32_t length = 1; length <= 33; ++length) {
                for (const std::int32_t radius : {1, 2, 5, 20}) {
                    Picture source = Shaped(direction, length, 3);
                    source.randomize(random, -2.0f, 8.0f);
                    Picture got = Shaped(direction, length, 3);
                    got.fill(5.0f);
                    Picture want(got);
                    PlainTent(source, want, radius, direction, channel, channel);
                    EXPECT_EQ(
                        TentBlurChannel(source.view(), got.view(), radius, channel, direction), 0);
                    ASSERT_TRUE(NearPixels(got, want, kRounding, 8.0)) << length << ' ' << radius;
                }
            }
        }
    }
}

TEST(TentBlur, ManyLinesOfEveryCount) {
    Random random(73);
    for (const std::int32_t direction : {kAlongRows, kAlongColumns}) {
        for (std::int32_t lines = 1; lines <= 20; ++lines) {
            Picture source = Shaped(direction, 15, lines);
            source.randomize(random, -2.0f, 8.0f);
            Picture got = Shaped(direction, 15, lines);
            Picture want(got);
            PlainTent(source, want, 4, direction, 0, 3);
            TentBlurRGBA(source.view(), got.view(), 4, direction);
            EXPECT_TRUE(NearPixels(got, want, kRounding, 8.0)) << direction << ' ' << lines;
        }
    }
}

TEST(TentBlur, UniformImageStaysUniformEdgesIncluded) {
    for (const float value : {1.0f, 0.1f, -3.0f, 60000.0f}) {
        for (const std::int32_t direction : {kAlongRows, kAlongColumns}) {
            Picture source(17, 14);
            source.fill(value);
            Picture got(17, 14);
            Picture want(17, 14);
            want.fill(value);
            TentBlurRGBA(source.view(), got.view(), 4, direction);
            EXPECT_TRUE(NearPixels(got, want, kRounding)) << value;
        }
    }
}

TEST(TentBlur, LongBrightLinesDoNotDrift) {
    Random random(74);
    Picture source(6000, 1);
    source.randomize(random, 0.0f, 60000.0f);
    for (std::int32_t x = 3000; x < 6000; ++x) source.set(x, 0, {0.5f, 0.5f, 0.5f, 0.5f});
    Picture got(6000, 1);
    TentBlurRGBA(source.view(), got.view(), 200, kAlongRows);
    for (std::int32_t x = 3300; x < 6000; ++x) {
        EXPECT_NEAR(got.at(x, 0, kRed), 0.5f, 0.5f * 1e-6f);
    }
}

TEST(TentBlur, ImpulseBecomesATent) {
    Picture source(21, 1);
    source.set(10, 0, {1.0f, 1.0f, 1.0f, 1.0f});
    Picture got(21, 1);
    TentBlurRGBA(source.view(), got.view(), 3, kAlongRows);
    for (std::int32_t x = 0; x < 21; ++x) {
        const auto want = static_cast<float>(std::max(0, 4 - std::abs(x - 10))) / 16.0f;
        EXPECT_NEAR(got.at(x, 0, kRed), want, 1e-7f);
    }
}

TEST(TentBlur, LinesShorterThanSixPixelsAreLeftUnchanged) {
    for (std::int32_t length = 1; length <= 5; ++length) {
        for (const std::int32_t radius : {2, 3, 50}) {
            Picture source(length, 2);
            source.fill(1.0f);
            Picture got(length, 2);
            got.fill(5.0f);
            const Picture before(got);
            EXPECT_EQ(TentBlurRGBA(source.view(), got.view(), radius, kAlongRows), 0);
            EXPECT_EQ(TentBlurRGB(source.view(), got.view(), radius, kAlongRows), 0);
            EXPECT_EQ(TentBlurChannel(source.view(), got.view(), radius, 2, kAlongRows), 0);
            EXPECT_TRUE(SamePixels(got, before)) << length << ' ' << radius;
        }
    }
}

TEST(TentBlur, EmptyImagesAreNoError) {
    const FloatImage empty{nullptr, 0, 0, 0};
    EXPECT_EQ(TentBlurRGBA(empty, empty, 3, kAlongRows), 0);
    EXPECT_EQ(TentBlurRGB(empty, empty, 3, kAlongColumns), 0);
    EXPECT_EQ(TentBlurChannel(empty, empty, 3, 0, kAlongColumns), 0);
}

/// Both passes by the plain sum; a direction without a radius stays as it is.
Picture PlainBlur(const Picture& picture, std::int32_t radius, std::int32_t first,
                  std::int32_t last) {
    Picture between(picture);
    PlainTent(picture, between, radius, kAlongRows, first, last);
    Picture result(between);
    PlainTent(between, result, radius, kAlongColumns, first, last);
    return result;
}

TEST(BlurRaster, RadiusIsBlurInputTimesTheSmallerDownsampleFactorTruncated) {
    struct Case {
        double blurInput, factorX, factorY;
        std::int32_t radius;
    };
    for (const Case& c : {Case{3.0, 1.0, 1.0, 3}, Case{3.99, 1.0, 1.0, 3}, Case{7.0, 0.5, 1.0, 3},
                          Case{7.0, 1.0, 0.25, 1}, Case{0.9, 1.0, 1.0, 0},
                          // Limited to the smaller dimension of 16 before the factor.
                          Case{500.0, 0.25, 0.25, 4}, Case{16.1, 0.5, 1.0, 8}}) {
        Random random(75);
        FakeHost host;
        host.factorX = c.factorX;
        host.factorY = c.factorY;
        Picture picture(24, 16, 1);
        picture.randomize(random, 0.0f, 2.0f);
        const Picture want = PlainBlur(picture, c.radius, 0, 3);
        GlowSettings settings;
        settings.blurInput = c.blurInput;
        EXPECT_EQ(BlurRaster(host, picture, std::nullopt, settings, false), 0);
        EXPECT_TRUE(NearPixels(picture, want, kRounding, 2.0)) << c.blurInput;
        EXPECT_TRUE(EverythingReturned(host));
    }
}

TEST(BlurRaster, ExplicitRadiusBypassesBlurInputAndTheDownsampleFactors) {
    Random random(76);
    FakeHost host;
    host.factorX = 0.25;
    host.factorY = 0.25;
    Picture picture(24, 16);
    picture.randomize(random, 0.0f, 2.0f);
    const Picture want = PlainBlur(picture, 5, 0, 3);
    GlowSettings settings;
    settings.blurInput = 2.0;
    EXPECT_EQ(BlurRaster(host, picture, 5, settings, false), 0);
    EXPECT_TRUE(NearPixels(picture, want, kRounding, 2.0));
}

TEST(BlurRaster, RadiusOfZeroReturnsAtOnceWithoutAScratchRaster) {
    Random random(77);
    FakeHost host;
    Picture picture(24, 16);
    picture.randomize(random, 0.0f, 2.0f);
    const Picture before(picture);
    GlowSettings settings;
    settings.blurInput = 0.99;
    EXPECT_EQ(BlurRaster(host, picture, std::nullopt, settings, false), 0);
    EXPECT_EQ(BlurRaster(host, picture, 0, settings, false), 0);
    EXPECT_TRUE(SamePixels(picture, before));
    EXPECT_EQ(host.count("newHandle"), 0);
    EXPECT_EQ(host.count("newWorld"), 0);
}

TEST(BlurRaster, ChannelsFollowAlphaOnlyOutputAlphaAndFastSplat) {
    Random random(78);
    for (const bool alphaOnly : {false, true}) {
        for (const bool outputAlpha : {false, true}) {
            for (const bool fastSplat : {false, true}) {
                FakeHost host;
                Picture picture(24, 16, 3, true);
                picture.randomize(random, 0.0f, 2.0f);
                const bool withAlpha = alphaOnly || outputAlpha || fastSplat;
                const Picture want = PlainBlur(picture, 4, withAlpha ? 0 : 1, alphaOnly ? 0 : 3);
                GlowSettings settings;
                settings.outputAlpha = outputAlpha;
                settings.fastSplat = fastSplat;
                EXPECT_EQ(BlurRaster(host, picture, 4, settings, alphaOnly), 0);
                EXPECT_TRUE(NearPixels(picture, want, kRounding, 2.0))
                    << alphaOnly << outputAlpha << fastSplat;
            }
        }
    }
}

TEST(BlurRaster, ColoursOnlyLeavesTheAlphaOfTheRasterUnchanged) {
    Random random(79);
    FakeHost host;
    Picture picture(24, 16);
    picture.randomize(random, 0.0f, 2.0f);
    picture.at(3, 3, kAlpha) = kNaN;
    const Picture before(picture);
    GlowSettings settings;
    settings.outputAlpha = false;
    EXPECT_EQ(BlurRaster(host, picture, 4, settings, false), 0);
    for (std::int32_t y = 0; y < 16; ++y) {
        for (std::int32_t x = 0; x < 24; ++x) {
            if (x == 3 && y == 3) continue;
            EXPECT_EQ(picture.at(x, y, kAlpha), before.at(x, y, kAlpha));
            EXPECT_FALSE(std::isnan(picture.at(x, y, kRed)));
        }
    }
}

TEST(BlurRaster, DirectionTooShortToBlurStaysWhileTheOtherIsBlurred) {
    Random random(80);
    for (std::int32_t length = 1; length <= 5; ++length) {
        for (const bool wide : {false, true}) {
            for (const bool outputAlpha : {false, true}) {
                FakeHost host;
                Picture picture(wide ? 20 : length, wide ? length : 20);
                picture.randomize(random, 0.0f, 2.0f);
                const Picture want = PlainBlur(picture, 3, outputAlpha ? 0 : 1, 3);
                GlowSettings settings;
                settings.outputAlpha = outputAlpha;
                EXPECT_EQ(BlurRaster(host, picture, 3, settings, false), 0);
                EXPECT_TRUE(NearPixels(picture, want, kRounding, 2.0)) << length << wide;
            }
        }
    }
}

TEST(BlurRaster, TooSmallInBothDirectionsStaysAsItIs) {
    Random random(81);
    FakeHost host;
    Picture picture(4, 5);
    picture.randomize(random, 0.0f, 2.0f);
    const Picture before(picture);
    EXPECT_EQ(BlurRaster(host, picture, 9, GlowSettings{}, false), 0);
    EXPECT_TRUE(SamePixels(picture, before));
    EXPECT_TRUE(EverythingReturned(host));
}

TEST(BlurRaster, WithoutAScratchRasterReturnsOneAndLeavesTheRasterUnchanged) {
    Random random(82);
    Picture picture(24, 16);
    picture.randomize(random, 0.0f, 2.0f);
    const Picture before(picture);
    {
        FakeHost host;
        host.newHandleFailsFrom = 0;
        EXPECT_EQ(BlurRaster(host, picture, 4, GlowSettings{}, false), 1);
        EXPECT_TRUE(EverythingReturned(host));
    }
    {
        FakeHost host;
        host.lockFailsFrom = 0;
        EXPECT_EQ(BlurRaster(host, picture, 4, GlowSettings{}, false), 1);
        EXPECT_TRUE(EverythingReturned(host));
    }
    {
        FakeHost host;
        host.application = kAfterEffects;
        host.newWorldFailsFrom = 0;
        host.newWorldError = 4;
        EXPECT_EQ(BlurRaster(host, picture, 4, GlowSettings{}, false), 1);
        EXPECT_TRUE(EverythingReturned(host));
    }
    EXPECT_TRUE(SamePixels(picture, before));
}

TEST(BlurRaster, ExceptionOfAHostCallGivesOneAndReleasesTheScratchRaster) {
    for (const std::string_view operation : {"newHandle", "newWorld", "rasterLayout"}) {
        for (const std::int32_t application : {0, kAfterEffects}) {
            FakeHost host;
            host.application = application;
            bool thrown = false;
            host.onCall = [&](std::string_view name) {
                if (name == operation) {
                    thrown = true;
                    throw std::runtime_error("host");
                }
            };
            Picture picture(24, 16);
            const std::int32_t result = BlurRaster(host, picture, 4, GlowSettings{}, false);
            EXPECT_EQ(result, thrown ? 1 : 0) << operation;
            host.onCall = nullptr;
            EXPECT_TRUE(EverythingReturned(host)) << operation;
        }
    }
}

TEST(BlurRaster, ScratchIsAHostWorldInAfterEffects) {
    Random random(83);
    FakeHost host;
    host.application = kAfterEffects;
    Picture picture(24, 16);
    picture.randomize(random, 0.0f, 2.0f);
    const Picture want = PlainBlur(picture, 4, 0, 3);
    EXPECT_EQ(BlurRaster(host, picture, 4, GlowSettings{}, false), 0);
    EXPECT_TRUE(NearPixels(picture, want, kRounding, 2.0));
    EXPECT_EQ(host.worldsMade, 1);
    EXPECT_TRUE(EverythingReturned(host));
}

}  // namespace
}  // namespace vireon::test
