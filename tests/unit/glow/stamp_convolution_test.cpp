// The fast forms of the convolution against `SplatRow` and against the exact sum. The exact sum is
// that of the plain definition's own texels, weighted in single precision as it adds them, in
// double precision.

#include "glow/stamp_convolution_pixels.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "glow/shape_convolution.h"
#include "render/glow_settings.h"
#include "simd/level.h"
#include "tests/unit/glow/plain_splat.h"
#include "tests/unit/support/fake_host.h"
#include "tests/unit/support/picture.h"

namespace vireon::test {
namespace {

using Form = ConvolutionForm;

constexpr Form kForms[] = {Form::kCache, Form::kRunCache, Form::kDirect, Form::kRuns,
                           Form::kRanges};
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

std::vector<simd::Level> FastLevels() {
    std::vector<simd::Level> levels;
    for (const simd::Level level : simd::kLevels) {
        if (level != simd::Level::kPlain && simd::HasLevel(level)) levels.push_back(level);
    }
    return levels;
}

Splat SplatOf(const GlowKernel& kernel, float radius) {
    return {&kernel, 0.13f, radius, static_cast<std::int32_t>(radius + 0.5f)};
}

Picture PlainGlow(const Picture& source, const Splat& splat, const ChannelFlags& channels) {
    Picture glow(source.width(), source.height());
    for (std::int32_t y = 0; y < source.height(); ++y) {
        SplatRow(source.view(), y, glow.view(), splat, SplatMember::kGeneral, channels);
    }
    return glow;
}

struct Fast {
    Picture glow;
    ConvolutionReport report;
};

/// In as many parts as there are rows.
Fast FastGlow(simd::Level level, std::optional<Form> form, const Picture& source,
              const Splat& splat, const ChannelFlags& channels) {
    Fast result{Picture(source.width(), source.height()), {}};
    result.glow.fill(kNaN);
    {
        StampConvolution stamps(*simd::KernelsOf(level), source.view(), result.glow.view(), splat,
                                channels, form);
        for (std::int32_t y = 0; y < source.height(); ++y) {
            stamps.advance(static_cast<double>(y + 1) / source.height());
        }
        result.report = stamps.report();
    }
    EXPECT_TRUE(result.glow.paddingIntact());
    return result;
}

/// A weighted texel of the stamp of a scale at (dx, dy) from its centre.
using TexelOf = std::function<double(std::int32_t dx, std::int32_t dy, float scale)>;

TexelOf PlainTexels(const Splat& splat) {
    return [&splat](std::int32_t dx, std::int32_t dy, float scale) {
        return static_cast<double>(PlainTexel(*splat.kernel, dx, dy, scale) * splat.weight);
    };
}

TexelOf DefinedTexels(const Splat& splat) {
    return [&splat](std::int32_t dx, std::int32_t dy, float scale) {
        const GlowKernel& kernel = *splat.kernel;
        const auto place = [&](std::int32_t distance, std::int32_t size) {
            const double centre = 0.5 * size;
            return std::clamp(distance * centre / static_cast<double>(scale) + centre, 0.0,
                              static_cast<double>(size - 1));
        };
        const double u = place(dx, kernel.width);
        const double t = place(dy, kernel.height);
        const auto left = static_cast<std::int32_t>(u);
        const auto top = static_cast<std::int32_t>(t);
        const auto texel = [&](std::int32_t x, std::int32_t y) {
            return static_cast<double>(
                kernel.row(std::min(y, kernel.height - 1))[std::min(x, kernel.width - 1)]);
        };
        const auto column = [&](std::int32_t x) {
            return texel(x, top) + (t - top) * (texel(x, top + 1) - texel(x, top));
        };
        return (column(left) + (u - left) * (column(left + 1) - column(left))) *
               static_cast<double>(splat.weight);
    };
}

/// Pixel by pixel and channel by channel, as the picture's floats.
std::vector<double> ExactGlow(const Picture& source, const Splat& splat,
                              const ChannelFlags& channels, const TexelOf& texelOf) {
    const std::int32_t width = source.width();
    const std::int32_t height = source.height();
    std::vector<double> sums(static_cast<std::size_t>(width * height * kChannels), 0.0);
    for (std::int32_t y = 0; y < height; ++y) {
        for (std::int32_t x = 0; x < width; ++x) {
            for (std::int32_t c = 0; c < kChannels; ++c) {
                if (!channels.enabled[c]) continue;
                const StampSize size = StampSizeOf(source.at(x, y, c), splat);
                if (size.reach == 0) continue;
                for (std::int32_t row = std::max(0, y - size.reach);
                     row <= std::min(height - 1, y + size.reach); ++row) {
                    for (std::int32_t column = std::max(0, x - size.reach);
                         column <= std::min(width - 1, x + size.reach); ++column) {
                        sums[static_cast<std::size_t>((row * width + column) * kChannels + c)] +=
                            texelOf(column - x, row - y, size.scale);
                    }
                }
            }
        }
    }
    return sums;
}

double LargestOf(const std::vector<double>& values) {
    double largest = 0.0;
    for (const double value : values) largest = std::max(largest, std::fabs(value));
    return largest;
}

double LargestError(const Picture& glow, const std::vector<double>& exact) {
    double largest = 0.0;
    std::size_t i = 0;
    for (std::int32_t y = 0; y < glow.height(); ++y) {
        for (std::int32_t x = 0; x < glow.width(); ++x) {
            for (std::int32_t c = 0; c < kChannels; ++c, ++i) {
                const double error = std::fabs(static_cast<double>(glow.at(x, y, c)) - exact[i]);
                if (!(error <= largest)) largest = error;
            }
        }
    }
    return largest;
}

double LargestDifference(const Picture& a, const Picture& b) {
    double largest = 0.0;
    ForEachFloat(a, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
        const double difference =
            std::fabs(static_cast<double>(a.at(x, y, c)) - static_cast<double>(b.at(x, y, c)));
        if (!(difference <= largest)) largest = difference;
    });
    return largest;
}

testing::AssertionResult SameBits(const Picture& got, const Picture& want) {
    const FloatImage a = got.view();
    const FloatImage b = want.view();
    for (std::int32_t y = 0; y < a.height; ++y) {
        if (std::memcmp(a.row(y), b.row(y),
                        static_cast<std::size_t>(a.width) * kChannels * sizeof(float)) != 0) {
            return testing::AssertionFailure() << "row " << y;
        }
    }
    return testing::AssertionSuccess();
}

/// What double precision itself may lose, of the largest value.
constexpr double kDoubleRounding = 1e-12;

/// Every form at every level against the plain form: the same bits at all levels, those of the
/// plain form from the cache and from the direct form. Runs are no further from the exact sum than
/// plain sums are; ranges and the run cache lie within 1e-5 of the largest value from them. Forms
/// that cannot be had are passed over.
void CheckAllForms(const Picture& source, const Splat& splat, const ChannelFlags& channels) {
    const Picture plain = PlainGlow(source, splat, channels);
    const std::vector<double> exact = ExactGlow(source, splat, channels, PlainTexels(splat));
    const double peak = LargestOf(exact);
    for (const Form form : kForms) {
        const Fast first = FastGlow(simd::Level::kScalar, form, source, splat, channels);
        const std::string what = std::string(FormName(form)) + ' ' +
                                 std::to_string(source.width()) + 'x' +
                                 std::to_string(source.height());
        for (const simd::Level level : FastLevels()) {
            const Fast fast = FastGlow(level, form, source, splat, channels);
            EXPECT_TRUE(SameBits(fast.glow, first.glow)) << what << ' ' << simd::LevelName(level);
        }
        EXPECT_LE(LargestDifference(first.glow, plain), 1e-5 * peak) << what;
        bool only = true;
        for (const auto& channel : first.report.channels) {
            only = only && (channel.form == form || channel.form == Form::kNone);
        }
        if (!only) continue;
        if (form == Form::kCache || form == Form::kDirect) {
            EXPECT_TRUE(SameBits(first.glow, plain)) << what;
        } else if (form == Form::kRuns) {
            EXPECT_LE(LargestError(first.glow, exact),
                      LargestError(plain, exact) + kDoubleRounding * peak)
                << what;
        }
    }
}

/// Forms give the bits of the plain form at every level, and every channel with stamps takes them.
void ExpectPlainBits(const Picture& source, const Splat& splat, const ChannelFlags& channels,
                     std::initializer_list<Form> forms) {
    const Picture plain = PlainGlow(source, splat, channels);
    for (const Form form : forms) {
        for (const simd::Level level : FastLevels()) {
            const Fast fast = FastGlow(level, form, source, splat, channels);
            const std::string what = std::string(FormName(form)) + ' ' + simd::LevelName(level) +
                                     ' ' + std::to_string(source.width()) + 'x' +
                                     std::to_string(source.height()) + " radius " +
                                     std::to_string(splat.radius);
            double stamps = 0.0;
            for (const auto& channel : fast.report.channels) {
                if (channel.stamps == 0.0) continue;
                stamps += channel.stamps;
                EXPECT_EQ(channel.form, form) << what;
            }
            EXPECT_GT(stamps, 0.0) << what;
            EXPECT_TRUE(SameBits(fast.glow, plain)) << what;
        }
    }
}

struct Content {
    const char* name;
    std::function<void(Picture&, Random&)> paint;
};

const std::vector<Content>& Contents() {
    static const std::vector<Content> contents = {
        {"random", [](Picture& p, Random& random) { p.randomize(random, 0.0f, 1.0f); }},
        {"eight bits",
         [](Picture& p, Random& random) {
             ForEachFloat(p, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
                 p.at(x, y, c) = static_cast<float>(random.whole(0, 255)) / 255.0f;
             });
         }},
        {"flat", [](Picture& p, Random&) { p.fill(0.7f, 1.0f, 0.5f, 0.31f); }},
        {"areas",
         [](Picture& p, Random& random) {
             p.fill(0.0f);
             for (int i = 0; i < 6; ++i) {
                 const float value = random.real(0.0f, 1.0f);
                 const std::int32_t left = random.whole(0, p.width() - 1);
                 const std::int32_t top = random.whole(0, p.height() - 1);
                 const std::int32_t right = random.whole(left, p.width() - 1);
                 const std::int32_t bottom = random.whole(top, p.height() - 1);
                 for (std::int32_t y = top; y <= bottom; ++y) {
                     for (std::int32_t x = left; x <= right; ++x) {
                         p.set(x, y, {value, value, 1.0f - value, value * 0.5f});
                     }
                 }
             }
         }},
        {"sparse",
         [](Picture& p, Random& random) {
             p.fill(0.0f);
             for (int i = 0; i < 7; ++i) {
                 p.at(random.whole(0, p.width() - 1), random.whole(0, p.height() - 1),
                      random.whole(0, 3)) = random.real(0.2f, 1.0f);
             }
         }},
        {"overbright", [](Picture& p, Random& random) { p.randomize(random, 0.0f, 20.0f); }},
        {"negative", [](Picture& p, Random& random) { p.randomize(random, -1.0f, 0.6f); }},
        {"not finite",
         [](Picture& p, Random& random) {
             p.randomize(random, -0.2f, 1.0f);
             for (int i = 0; i < 9; ++i) {
                 const float values[] = {kNaN, std::numeric_limits<float>::infinity(),
                                         -std::numeric_limits<float>::infinity()};
                 p.at(random.whole(0, p.width() - 1), random.whole(0, p.height() - 1),
                      random.whole(0, 3)) = values[i % 3];
             }
         }},
    };
    return contents;
}

/// Green and red in runs of 1 to 9 pixels of so many values and 0.
void PaintShortRuns(Picture& source, Random& random, std::int32_t values) {
    source.fill(0.0f);
    for (std::int32_t y = 0; y < source.height(); ++y) {
        for (std::int32_t x = 0; x < source.width();) {
            const float value =
                static_cast<float>(random.whole(0, values)) / static_cast<float>(values);
            const std::int32_t end = std::min(x + random.whole(1, 9), source.width());
            for (; x < end; ++x) source.at(x, y, kGreen) = source.at(x, y, kRed) = value;
        }
    }
}

GlowKernel LibraryKernel() {
    GlowKernel kernel;
    kernel.allocate(256, 256);
    for (std::int32_t y = 20; y < 250; ++y) {
        for (std::int32_t x = 0; x < 256; ++x) {
            const double distance = std::hypot(x - 120.0, (y - 140.0) * 1.2) / 120.0;
            kernel.values[static_cast<std::size_t>(y * 256 + x)] =
                static_cast<float>(std::max(0.0, 1.0 - distance));
        }
    }
    kernel.flagEmptyRows();
    return kernel;
}

GlowKernel ConstantKernel(float value) {
    GlowKernel kernel;
    kernel.allocate(1, 1);
    kernel.values[0] = value;
    kernel.flagEmptyRows();
    return kernel;
}

TEST(StampConvolution, EveryFormOfEveryContentAndKernel) {
    Random random(5);
    const GlowKernel kernels[] = {ConstantKernel(0.6f), RandomKernel(random, 2, 3, -1.0f, 1.0f),
                                  RandomKernel(random, 23, 9), RandomKernel(random, 40, 31, -0.5f),
                                  LibraryKernel()};
    for (const Content& content : Contents()) {
        for (const GlowKernel& kernel : kernels) {
            SCOPED_TRACE(std::string(content.name) + ' ' + std::to_string(kernel.width));
            Picture source(37, 21, 5, kernel.width == 2);
            content.paint(source, random);
            CheckAllForms(source, SplatOf(kernel, 4.7f), {});
        }
    }
}

TEST(StampConvolution, EveryWidthAndHeightUpToThirtyThree) {
    Random random(6);
    const GlowKernel kernel = RandomKernel(random, 7, 6);
    const Splat splat = SplatOf(kernel, 2.6f);
    const ChannelFlags channels{{true, false, false, true}};
    for (std::int32_t width = 1; width <= 33; ++width) {
        for (std::int32_t height = 1; height <= 33; ++height) {
            Picture source(width, height, (width + height) % 4, height % 2 == 0);
            Contents()[static_cast<std::size_t>((width + height) % 4)].paint(source, random);
            CheckAllForms(source, splat, channels);
        }
    }
}

TEST(StampConvolution, LargeOddSizesAndStampsLargerThanTheImage) {
    Random random(7);
    const GlowKernel kernel = LibraryKernel();
    const struct {
        std::int32_t width;
        std::int32_t height;
        float radius;
    } cases[] = {
        {1921, 7, 6.0f}, {11, 1081, 5.3f}, {131, 67, 8.5f}, {30, 23, 61.7f}, {9, 131, 140.0f}};
    for (const auto& size : cases) {
        for (const std::size_t content : {1u, 3u}) {
            Picture source(size.width, size.height);
            Contents()[content].paint(source, random);
            CheckAllForms(source, SplatOf(kernel, size.radius), {{false, true, true, false}});
        }
    }
}

TEST(StampConvolution, RangesAreNoFurtherFromTheDefinitionThanPlainSums) {
    Random random(8);
    const GlowKernel library = LibraryKernel();
    const GlowKernel rough = RandomKernel(random, 64, 48);
    const ChannelFlags channels{{false, true, true, true}};
    for (const GlowKernel* kernel : {&library, &rough}) {
        for (const float radius : {3.0f, 5.0f, 7.5f, 12.0f, 16.0f}) {
            const Splat splat = SplatOf(*kernel, radius);
            Picture source(110, 90);
            source.randomize(random, radius == 5.0f ? -2.0f : 0.0f, 1.0f);
            const std::vector<double> exact =
                ExactGlow(source, splat, channels, DefinedTexels(splat));
            const Picture plain = PlainGlow(source, splat, channels);
            const Fast fast =
                FastGlow(simd::Level::kScalar, Form::kRanges, source, splat, channels);
            EXPECT_EQ(fast.report.channels[kRed].form, Form::kRanges);
            EXPECT_LE(LargestDifference(fast.glow, plain), 1e-5 * LargestOf(exact));
            EXPECT_LE(LargestError(fast.glow, exact), LargestError(plain, exact))
                << kernel->width << ' ' << radius;
            for (const simd::Level level : FastLevels()) {
                EXPECT_TRUE(SameBits(FastGlow(level, Form::kRanges, source, splat, channels).glow,
                                     fast.glow));
            }
        }
    }
}

TEST(StampConvolution, TheRunCacheIsNoFurtherFromTheExactSumThanPlainSums) {
    Random random(19);
    const GlowKernel library = LibraryKernel();
    const GlowKernel rough = RandomKernel(random, 64, 48);
    const ChannelFlags channels{{false, true, true, false}};
    for (const GlowKernel* kernel : {&library, &rough}) {
        for (const float radius : {3.0f, 5.0f, 8.0f, 12.0f}) {
            for (const std::int32_t values : {3, 10, 20}) {
                const Splat splat = SplatOf(*kernel, radius);
                Picture source(160, 110);
                PaintShortRuns(source, random, values);
                const std::vector<double> exact =
                    ExactGlow(source, splat, channels, PlainTexels(splat));
                const Picture plain = PlainGlow(source, splat, channels);
                const Fast fast =
                    FastGlow(simd::Level::kScalar, Form::kRunCache, source, splat, channels);
                EXPECT_EQ(fast.report.channels[kRed].form, Form::kRunCache);
                EXPECT_FALSE(SameBits(fast.glow, plain)) << "no run was summed";
                EXPECT_LE(LargestDifference(fast.glow, plain), 1e-5 * LargestOf(exact));
                EXPECT_LE(LargestError(fast.glow, exact), LargestError(plain, exact))
                    << kernel->width << ' ' << radius << ' ' << values;
                for (const simd::Level level : FastLevels()) {
                    const Fast same = FastGlow(level, Form::kRunCache, source, splat, channels);
                    EXPECT_TRUE(SameBits(same.glow, fast.glow)) << simd::LevelName(level);
                }
            }
        }
    }
}

TEST(StampConvolution, PixelsRoundTheImageAreNeitherReadNorWritten) {
    Random random(9);
    const GlowKernel kernel = RandomKernel(random, 12, 12);
    const Splat splat = SplatOf(kernel, 5.2f);
    constexpr std::int32_t kBorder = 3;
    const auto inner = [](const Picture& whole) {
        FloatImage view = whole.view();
        view.pixels = view.pixel(kBorder, kBorder);
        view.width -= 2 * kBorder;
        view.height -= 2 * kBorder;
        return view;
    };
    Picture alone(26, 19);
    alone.randomize(random, 0.0f, 1.0f);
    Picture source(32, 25);
    source.fill(1.0f);
    ForEachFloat(alone, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
        source.at(x + kBorder, y + kBorder, c) = alone.at(x, y, c);
    });
    for (const Form form : kForms) {
        for (const simd::Level level : FastLevels()) {
            Picture glow(32, 25);
            glow.fill(-7.0f);
            StampConvolution stamps(*simd::KernelsOf(level), inner(source), inner(glow), splat, {},
                                    form);
            stamps.advance(1.0);
            const Fast want = FastGlow(level, form, alone, splat, {});
            ForEachFloat(glow, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
                const bool inside = x >= kBorder && x < 29 && y >= kBorder && y < 22;
                const float expected = inside ? want.glow.at(x - kBorder, y - kBorder, c) : -7.0f;
                EXPECT_EQ(glow.at(x, y, c), expected) << FormName(form) << ' ' << x << ' ' << y;
            });
            EXPECT_TRUE(glow.paddingIntact());
        }
    }
}

TEST(StampConvolution, FewLightsFarApartInPicturesOfSeveralBands) {
    Random random(13);
    const GlowKernel kernel = RandomKernel(random, 12, 12);
    const ChannelFlags channels{{false, true, true, true}};
    for (const std::int32_t width : {64, 129, 1500}) {
        Picture source(width, 400);
        for (int i = 0; i < 40; ++i) {
            const std::int32_t x = random.whole(0, width - 1);
            const std::int32_t y = random.whole(0, 399);
            const std::int32_t c = random.whole(0, 3);
            const float value = random.real(0.2f, 1.0f);
            for (std::int32_t right = x; right < std::min(x + i, width); ++right) {
                source.at(right, y, c) = value;
            }
        }
        const Splat splat = SplatOf(kernel, 9.0f);
        ExpectPlainBits(source, splat, channels, {Form::kCache, Form::kDirect});
    }
}

TEST(StampConvolution, ShortRunsEverywhereInPicturesOfSeveralBands) {
    Random random(17);
    const GlowKernel kernel = RandomKernel(random, 12, 12);
    const ChannelFlags channels{{false, false, true, false}};
    Picture source(1501, 300);
    PaintShortRuns(source, random, 50);
    const Splat splat = SplatOf(kernel, 3.0f);
    const Picture plain = PlainGlow(source, splat, channels);
    const std::vector<double> exact = ExactGlow(source, splat, channels, PlainTexels(splat));
    ExpectPlainBits(source, splat, channels, {Form::kCache, Form::kDirect});
    const Fast first = FastGlow(simd::Level::kScalar, Form::kRunCache, source, splat, channels);
    EXPECT_EQ(first.report.channels[kGreen].form, Form::kRunCache);
    EXPECT_FALSE(SameBits(first.glow, plain)) << "no run was summed";
    EXPECT_LE(LargestDifference(first.glow, plain), 1e-5 * LargestOf(exact));
    EXPECT_LE(LargestError(first.glow, exact), LargestError(plain, exact));
    for (const simd::Level level : FastLevels()) {
        const Fast fast = FastGlow(level, Form::kRunCache, source, splat, channels);
        EXPECT_TRUE(SameBits(fast.glow, first.glow)) << simd::LevelName(level);
    }
}

TEST(StampConvolution, RunsAndGapsOfAnyLength) {
    Random random(18);
    const GlowKernel kernel = RandomKernel(random, 9, 9);
    const ChannelFlags channels{{false, false, false, true}};
    const std::int32_t lengths[] = {1, 8, 254, 255, 256, 257, 509, 510, 511, 765, 766, 1020};
    Picture source(2300, 144);
    std::int32_t y = 0;
    for (const std::int32_t gap : lengths) {
        for (const std::int32_t run : lengths) {
            for (std::int32_t i = 0; i < run; ++i) {
                source.at(gap + i, y, kBlue) = 0.8f;
                if (gap + run + gap + i < source.width()) {
                    source.at(gap + run + gap + i, y, kBlue) = 0.5f;
                }
            }
            ++y;
        }
    }
    ASSERT_EQ(y, source.height());
    ExpectPlainBits(source, SplatOf(kernel, 2.6f), channels, {Form::kCache, Form::kDirect});
    // Stamps too large for the cache.
    Picture few(source.width(), 3);
    ForEachFloat(few, [&](std::int32_t x, std::int32_t row, std::int32_t c) {
        few.at(x, row, c) = source.at(x, 12 * row + 9, c);
    });
    ExpectPlainBits(few, SplatOf(kernel, 900.0f), channels, {Form::kDirect});
}

// Runs of more pixels than a kept run can count. Instead, rows that several bands reach are kept of
// the higher picture; of the other one they are read again.
TEST(StampConvolution, RowsTooLongForKeptRuns) {
    Random random(20);
    const GlowKernel kernel = RandomKernel(random, 9, 9);
    const ChannelFlags channels{{false, true, false, true}};
    const Splat splat = SplatOf(kernel, 3.0f);
    for (const std::int32_t height : {60, 40}) {
        Picture source(66001, height);
        for (std::int32_t x = 0; x < source.width(); ++x) source.at(x, 13, kRed) = 1.0f;
        for (int i = 0; i < 2000; ++i) {
            source.at(random.whole(0, 66000), random.whole(0, height - 1), kBlue) =
                static_cast<float>(random.whole(0, 9)) / 9.0f;
        }
        ExpectPlainBits(source, splat, channels, {Form::kCache, Form::kDirect});
    }
}

// Stamps so large that bands do not slide.
TEST(StampConvolution, LargeStampsInPicturesOfSeveralBands) {
    Random random(21);
    const GlowKernel kernel = RandomKernel(random, 12, 12);
    const ChannelFlags channels{{false, false, true, false}};
    Picture source(1501, 450);
    for (int i = 0; i < 12; ++i) {
        const std::int32_t x = random.whole(0, 1490);
        const std::int32_t y = random.whole(0, 449);
        for (std::int32_t right = x; right < x + i; ++right) source.at(right, y, kGreen) = 0.9f;
    }
    ExpectPlainBits(source, SplatOf(kernel, 150.0f), channels, {Form::kCache, Form::kDirect});
}

// Too many runs to be kept.
TEST(StampConvolution, NoiseInPicturesOfSeveralBands) {
    Random random(16);
    const GlowKernel kernel = RandomKernel(random, 12, 12);
    const ChannelFlags channels{{false, false, true, true}};
    for (const std::int32_t height : {300, 800}) {
        Picture source(1501, height);
        for (std::int32_t y = 0; y < height; ++y) {
            for (std::int32_t x = 0; x < source.width(); ++x) {
                source.at(x, y, kGreen) = static_cast<float>(random.whole(0, 50)) / 50.0f;
            }
        }
        ExpectPlainBits(source, SplatOf(kernel, 3.0f), channels, {Form::kCache});
    }
}

TEST(StampConvolution, PicturesTooLargeForTheCachesAreWrittenAlike) {
    Random random(14);
    const GlowKernel kernel = RandomKernel(random, 6, 6);
    Picture source(1501, 800, 3);
    for (int i = 0; i < 50; ++i) {
        source.at(random.whole(0, 1500), random.whole(0, 799), random.whole(0, 3)) = 1.0f;
    }
    ExpectPlainBits(source, SplatOf(kernel, 3.0f), {}, {Form::kCache});
}

TEST(StampConvolution, WhatIsNotReachedIsCleared) {
    Random random(10);
    const GlowKernel kernel = RandomKernel(random, 12, 12);
    const Splat splat = SplatOf(kernel, 4.0f);
    Picture source(20, 150);
    source.randomize(random, 0.0f, 1.0f);
    const simd::KernelTable& kernels = *simd::KernelsOf(simd::Level::kScalar);
    for (const Form form : kForms) {
        const Fast whole = FastGlow(simd::Level::kScalar, form, source, splat, {});
        for (const double share : {0.0, 0.05, 0.3, 0.6}) {
            Picture glow(20, 150);
            glow.fill(kNaN);
            {
                StampConvolution stamps(kernels, source.view(), glow.view(), splat, {}, form);
                if (share > 0.0) stamps.advance(share);
            }
            ForEachFloat(glow, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
                // Ranges add to all rows in parts.
                const float got = glow.at(x, y, c);
                const bool known = got == 0.0f || got == whole.glow.at(x, y, c);
                const bool ranges = whole.report.channels[c].form == Form::kRanges;
                EXPECT_TRUE(ranges ? std::isfinite(got) : known);
                if (y == 149 && !ranges) {
                    EXPECT_EQ(got, 0.0f) << FormName(form) << ' ' << share;
                }
            });
        }
    }
}

TEST(StampConvolution, ChoosesByWhatTheSourceHolds) {
    Random random(11);
    const GlowKernel kernel = LibraryKernel();
    const Splat splat = SplatOf(kernel, 12.0f);
    const auto formOf = [&](const Picture& source) {
        Form form = Form::kNone;
        for (const simd::Level level : FastLevels()) {
            const Fast fast =
                FastGlow(level, std::nullopt, source, splat, {{false, true, false, false}});
            EXPECT_EQ(fast.report.channels[kBlue].form, Form::kNone);
            if (form != Form::kNone) {
                EXPECT_EQ(fast.report.channels[kRed].form, form);
            }
            form = fast.report.channels[kRed].form;
        }
        return form;
    };
    Picture source(200, 160);
    EXPECT_EQ(formOf(source), Form::kNone);
    source.fill(0.5f);
    EXPECT_EQ(formOf(source), Form::kRuns);
    Contents()[1].paint(source, random);
    EXPECT_EQ(formOf(source), Form::kCache);
    PaintShortRuns(source, random, 20);
    EXPECT_EQ(formOf(source), Form::kRunCache);
    source.randomize(random, 0.0f, 1.0f);
    EXPECT_EQ(formOf(source), Form::kRanges);
    source.randomize(random, -20.0f, 0.8f);
    EXPECT_EQ(formOf(source), Form::kDirect);
}

TEST(StampConvolution, CountsStampsAndTheirTexels) {
    const GlowKernel kernel = ConstantKernel(1.0f);
    Picture source(5, 4);
    source.at(2, 1, kRed) = 0.5f;
    source.at(3, 1, kRed) = 2.0f;
    source.at(0, 0, kBlue) = 0.01f;
    const Fast fast =
        FastGlow(simd::Level::kScalar, std::nullopt, source, SplatOf(kernel, 6.0f), {});
    EXPECT_EQ(fast.report.channels[kRed].stamps, 2.0);
    EXPECT_EQ(fast.report.channels[kRed].texels, 9.0 * 9.0 + 13.0 * 13.0);
    EXPECT_EQ(fast.report.channels[kBlue].stamps, 0.0);
    EXPECT_EQ(fast.report.channels[kBlue].form, Form::kNone);
}

TEST(FormName, OfEveryForm) {
    EXPECT_STREQ(FormName(Form::kNone), "none");
    EXPECT_STREQ(FormName(Form::kPlain), "plain");
    EXPECT_STREQ(FormName(Form::kCache), "stamp cache");
    EXPECT_STREQ(FormName(Form::kRunCache), "run cache");
    EXPECT_STREQ(FormName(Form::kDirect), "direct");
    EXPECT_STREQ(FormName(Form::kRuns), "runs");
    EXPECT_STREQ(FormName(Form::kRanges), "ranges");
}

TEST(ConvolveShapeWithKernels, ProgressAbortAndScratchAreThoseOfThePlainForm) {
    Random random(12);
    const GlowKernel kernel = RandomKernel(random, 9, 9);
    for (const simd::Level level : FastLevels()) {
        for (const int row : {0, 1, 40, 69, FakeHost::kNever}) {
            FakeHost host;
            host.progressAnswer = [=](int call) { return call == row ? 517 : 0; };
            Picture source(30, 70);
            source.randomize(random, 0.0f, 1.0f);
            Picture got(30, 70);
            got.fill(kNaN);
            GlowSettings settings;
            settings.glowRadius = 5.0;
            settings.progressCount = 3;
            settings.progressTotal = 99;
            ConvolutionReport report;
            const ConvolutionOptions options{simd::KernelsOf(level), &report};
            const bool aborts = row != FakeHost::kNever;
            EXPECT_EQ(ConvolveShape(host, source, got, &kernel, settings, 1.0f, options),
                      aborts ? 517 : 0);
            const int polls = aborts ? row + 1 : 70;
            EXPECT_EQ(host.count("progress"), polls);
            EXPECT_EQ(settings.progressCount, 3 + polls);
            for (int i = 0; i < polls; ++i) {
                EXPECT_EQ(host.progressReports[static_cast<std::size_t>(i)],
                          std::make_pair(3 + i, 99));
            }
            for (const char* operation :
                 {"newHandle", "lockHandle", "unlockHandle", "disposeHandle"}) {
                EXPECT_EQ(host.count(operation), aborts ? row : 70) << operation;
            }
            EXPECT_EQ(host.misuses, 0);
            ForEachFloat(got, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
                EXPECT_TRUE(std::isfinite(got.at(x, y, c)));
            });
            if (aborts) continue;
            EXPECT_NE(report.channels[kRed].form, Form::kNone);
            ConvolutionOptions plainOptions{nullptr, &report};
            Picture plain(30, 70);
            EXPECT_EQ(ConvolveShape(host, source, plain, &kernel, settings, 1.0f, plainOptions), 0);
            EXPECT_EQ(report.channels[kRed].form, Form::kPlain);
            EXPECT_TRUE(NearPixels(got, plain, 1e-5));
        }
    }
}

}  // namespace
}  // namespace vireon::test
