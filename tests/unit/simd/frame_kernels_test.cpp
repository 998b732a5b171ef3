// Every row kernel gives the bits of the plain definition that it stands for, at every level that
// the machine has, for every row length from one pixel to a few vectors, wherever the row begins.

#include "simd/frame_kernels.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "composite/output_passes.h"
#include "composite/transfer_codes.h"
#include "composite/transfer_pixels.h"
#include "image/convert_pixels.h"
#include "image/pixel_format.h"
#include "render/glow_settings.h"
#include "tests/unit/support/levels.h"
#include "tests/unit/support/picture.h"

namespace vireon::test {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kCanary = -77.25f;
constexpr std::int32_t kLongestRow = 33;

/// The kinds of footage that a row may hold.
enum class Footage { kOrdinary, kFlat, kSparse, kBright, kNegative, kBroken };
constexpr Footage kFootage[] = {Footage::kOrdinary, Footage::kFlat,     Footage::kSparse,
                                Footage::kBright,   Footage::kNegative, Footage::kBroken};

float Sample(Footage footage, Random& random) {
    constexpr float kOdd[] = {kNaN, kInfinity, -kInfinity, -0.0f, 1e-42f, 3e38f, 0.0f, 1.0f};
    switch (footage) {
        case Footage::kOrdinary: return random.real(0.0f, 1.0f);
        case Footage::kFlat: return 0.75f;
        case Footage::kSparse: return random.whole(0, 5) == 0 ? random.real(0.0f, 1.5f) : 0.0f;
        case Footage::kBright: return random.real(0.0f, 20.0f);
        case Footage::kNegative: return random.real(-2.0f, 2.0f);
        case Footage::kBroken: return kOdd[random.whole(0, 7)];
    }
    return 0.0f;
}

/// A row of floats that begins a few floats into its memory, with canaries on both sides.
struct Row {
    Row(std::int32_t pixels, std::int32_t offset)
        : floats(static_cast<std::size_t>(pixels * kChannels + 2 * kMargin), kCanary),
          begin(kMargin / 2 + offset),
          width(pixels) {}
    Row(std::int32_t pixels, std::int32_t offset, Footage footage, Random& random)
        : Row(pixels, offset) {
        for (std::int32_t i = 0; i < pixels * kChannels; ++i) data()[i] = Sample(footage, random);
    }
    float* data() { return floats.data() + begin; }
    std::ptrdiff_t values() const { return static_cast<std::ptrdiff_t>(width) * kChannels; }
    FloatImage view() { return {data(), width, 1, 0}; }
    bool canariesIntact() const {
        for (std::ptrdiff_t i = 0; i < static_cast<std::ptrdiff_t>(floats.size()); ++i) {
            const bool inside = i >= begin && i < begin + values();
            if (!inside && floats[static_cast<std::size_t>(i)] != kCanary) return false;
        }
        return true;
    }

    static constexpr std::int32_t kMargin = 16;
    std::vector<float> floats;
    std::ptrdiff_t begin;
    std::int32_t width;
};

testing::AssertionResult SameBits(Row got, Row want) {
    for (std::ptrdiff_t i = 0; i < want.values(); ++i) {
        const float a = got.data()[i];
        const float b = want.data()[i];
        const bool same = std::isnan(b)
                              ? std::isnan(a)
                              : std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b);
        if (!same) {
            return testing::AssertionFailure() << a << " instead of " << b << " at float " << i;
        }
    }
    if (!got.canariesIntact()) return testing::AssertionFailure() << "wrote beside the row";
    return testing::AssertionSuccess();
}

/// Calls `test` with the kernels, a row length and a first float, and names them on failure.
template <typename Test>
void AtEveryLevelAndLength(Test&& test) {
    for (const simd::Level level : KernelLevels()) {
        for (std::int32_t pixels = 1; pixels <= kLongestRow; ++pixels) {
            const std::int32_t offset = pixels % 4;
            SCOPED_TRACE(std::string(simd::LevelName(level)) + ", " + std::to_string(pixels) +
                         " pixels");
            test(simd::KernelsOf(level)->frame, pixels, offset);
            if (testing::Test::HasFailure()) return;
        }
    }
}

template <typename Channel>
RasterLayout LayoutOf(std::vector<Channel>& pixels, std::int32_t format) {
    RasterLayout layout;
    layout.pixels = pixels.data();
    layout.formatCode = format;
    layout.width = static_cast<std::int32_t>(pixels.size()) / kChannels;
    layout.height = 1;
    layout.bytesPerPixel = static_cast<std::int32_t>(kChannels * sizeof(Channel));
    layout.rowBytes = layout.width * layout.bytesPerPixel;
    return layout;
}

TEST(FrameKernels, IntegerPixelsBecomeTheSameFloats) {
    Random random(1);
    AtEveryLevelAndLength(
        [&](const simd::FrameKernels& kernels, std::int32_t pixels, std::int32_t offset) {
            std::vector<std::uint8_t> bytes(static_cast<std::size_t>(pixels) * kChannels);
            for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random.whole(0, 255));
            Row got(pixels, offset);
            Row want(pixels, offset);
            kernels.from8(bytes.data(), got.data(), got.values());
            ConvertPixelsToFloat(LayoutOf(bytes, kFormat8), want.view());
            EXPECT_TRUE(SameBits(got, want));

            std::vector<std::uint16_t> words(bytes.size());
            for (auto& word : words) word = static_cast<std::uint16_t>(random.whole(0, 65535));
            kernels.from16(words.data(), got.data(), got.values());
            ConvertPixelsToFloat(LayoutOf(words, kFormatWorld16), want.view());
            EXPECT_TRUE(SameBits(got, want));
        });
}

TEST(FrameKernels, FloatsBecomeTheSameIntegerPixels) {
    Random random(2);
    for (const Footage footage : kFootage) {
        AtEveryLevelAndLength([&](const simd::FrameKernels& kernels, std::int32_t pixels,
                                  std::int32_t offset) {
            Row row(pixels, offset, footage, random);
            std::vector<std::uint8_t> bytes(static_cast<std::size_t>(pixels) * kChannels + 1, 99);
            std::vector<std::uint8_t> plainBytes(bytes.size() - 1);
            kernels.to8(row.data(), bytes.data(), row.values());
            ConvertPixelsFromFloat(row.view(), LayoutOf(plainBytes, kFormat8));
            EXPECT_EQ(bytes.back(), 99) << "wrote beside the row";
            bytes.pop_back();
            EXPECT_EQ(bytes, plainBytes);

            std::vector<std::uint16_t> words(bytes.size() + 1, 9999);
            std::vector<std::uint16_t> plainWords(bytes.size());
            kernels.to16(row.data(), words.data(), row.values());
            ConvertPixelsFromFloat(row.view(), LayoutOf(plainWords, kFormatWorld16));
            EXPECT_EQ(words.back(), 9999) << "wrote beside the row";
            words.pop_back();
            EXPECT_EQ(words, plainWords);
        });
    }
}

TEST(FrameKernels, EveryByteAndEveryRoundingBorderSurvivesTheWayThereAndBack) {
    std::vector<std::uint8_t> bytes(256);
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(i);
    std::vector<float> floats(bytes.size());
    std::vector<float> borders;
    for (int i = 0; i < 256; ++i) {
        const float border = (static_cast<float>(i) + 0.5f) / 255.0f;
        borders.insert(borders.end(), {border, std::nextafter(border, 0.0f),
                                       std::nextafter(border, 2.0f), border * 1.001f});
    }
    for (const simd::Level level : KernelLevels()) {
        const simd::FrameKernels& kernels = simd::KernelsOf(level)->frame;
        std::vector<std::uint8_t> back(bytes.size());
        kernels.from8(bytes.data(), floats.data(), 256);
        kernels.to8(floats.data(), back.data(), 256);
        EXPECT_EQ(back, bytes) << simd::LevelName(level);

        std::vector<std::uint8_t> got(borders.size());
        std::vector<std::uint8_t> want(borders.size());
        kernels.to8(borders.data(), got.data(), static_cast<std::ptrdiff_t>(borders.size()));
        ConvertPixelsFromFloat({borders.data(), 256, 1, 0}, LayoutOf(want, kFormat8));
        EXPECT_EQ(got, want) << simd::LevelName(level);
    }
}

TEST(FrameKernels, OpaqueIsWhatHasNoAlphaBelowWhite) {
    AtEveryLevelAndLength(
        [&](const simd::FrameKernels& kernels, std::int32_t pixels, std::int32_t offset) {
            const auto values = static_cast<std::size_t>(pixels) * kChannels;
            // Colours are never looked at.
            std::vector<std::uint8_t> bytes(values, 7);
            std::vector<std::uint16_t> words(values, 7);
            Row row(pixels, offset);
            std::fill_n(row.data(), values, -3.0f);
            for (std::size_t i = 0; i < values; i += kChannels) {
                bytes[i] = 255;
                words[i] = 32768;
                row.data()[i] = i % 3 == 0 ? 1.0f : i % 3 == 1 ? kNaN : 5.0f;
            }
            const auto count = static_cast<std::ptrdiff_t>(values);
            EXPECT_TRUE(kernels.isOpaque8(bytes.data(), count));
            EXPECT_TRUE(kernels.isOpaque16(words.data(), count));
            EXPECT_TRUE(kernels.isOpaqueFloat(row.data(), count));
            EXPECT_TRUE(IsOpaque(row.view()));
            for (std::size_t i = 0; i < values; i += kChannels) {
                bytes[i] = 254;
                words[i] = 32767;
                const float former = row.data()[i];
                row.data()[i] = std::nextafter(1.0f, 0.0f);
                EXPECT_FALSE(kernels.isOpaque8(bytes.data(), count));
                EXPECT_FALSE(kernels.isOpaque16(words.data(), count));
                EXPECT_FALSE(kernels.isOpaqueFloat(row.data(), count));
                bytes[i] = 255;
                words[i] = 32768;
                row.data()[i] = former;
            }
        });
}

TEST(FrameKernels, ZeroAndFiniteRowsAreToldByEveryValue) {
    AtEveryLevelAndLength(
        [&](const simd::FrameKernels& kernels, std::int32_t pixels, std::int32_t offset) {
            Row row(pixels, offset);
            std::fill_n(row.data(), row.values(), -0.0f);
            EXPECT_TRUE(kernels.isZero(row.data(), row.values()));
            EXPECT_TRUE(kernels.isFinite(row.data(), row.values()));
            for (std::ptrdiff_t i = 0; i < row.values(); ++i) {
                for (const float odd : {kNaN, kInfinity, -kInfinity}) {
                    row.data()[i] = odd;
                    EXPECT_FALSE(kernels.isFinite(row.data(), row.values())) << i;
                    EXPECT_FALSE(kernels.isZero(row.data(), row.values())) << i;
                }
                for (const float small : {1e-45f, -1e-45f, 3e38f}) {
                    row.data()[i] = small;
                    EXPECT_TRUE(kernels.isFinite(row.data(), row.values())) << i;
                    EXPECT_FALSE(kernels.isZero(row.data(), row.values())) << i;
                }
                row.data()[i] = 0.0f;
            }
        });
}

TEST(FrameKernels, TheLargestColourPassesOverAlphaAndNaN) {
    Random random(3);
    for (const Footage footage : kFootage) {
        AtEveryLevelAndLength(
            [&](const simd::FrameKernels& kernels, std::int32_t pixels, std::int32_t offset) {
                Row row(pixels, offset, footage, random);
                float want = 0.25f;
                for (std::int32_t x = 0; x < pixels; ++x) {
                    row.data()[x * kChannels] = 1000.0f;
                    for (std::int32_t c = kRed; c <= kBlue; ++c) {
                        const float value = row.data()[x * kChannels + c];
                        if (value > want) want = value;
                    }
                }
                EXPECT_EQ(kernels.largestColour(row.data(), row.values(), 0.25f), want);
            });
    }
}

TEST(FrameKernels, FinishedGlowIsThatOfThePassesOneAfterTheOther) {
    Random random(4);
    for (const Footage footage : kFootage) {
        AtEveryLevelAndLength(
            [&](const simd::FrameKernels& kernels, std::int32_t pixels, std::int32_t offset) {
                GlowSettings settings;
                settings.outputRed = random.whole(0, 3) != 0;
                settings.outputGreen = random.whole(0, 3) != 0;
                settings.outputBlue = random.whole(0, 3) != 0;
                settings.outputAlpha = random.whole(0, 1) == 0;
                settings.preventOverbrights = random.whole(0, 3) != 0;
                const double clamps[] = {100.0, 40.0, 0.0};
                settings.overbrightClamp = clamps[random.whole(0, 2)];
                const bool opaque = !settings.outputAlpha && random.whole(0, 1) == 0;

                Row glow(pixels, offset, footage, random);
                Row source(pixels, offset, Footage::kOrdinary, random);
                Row want = glow;
                ChannelMaskPass(want.view(), source.view(), settings, 1.0f, opaque);
                float largest = 0.0f;
                for (std::int32_t i = 0; i < want.values(); ++i) {
                    if (i % kChannels != 0 && want.data()[i] > largest) largest = want.data()[i];
                }
                OverbrightSoftClip(want.view(), settings);
                ClampAlpha(want.view());
                if (settings.outputAlpha) IntensityToAlpha(want.view());

                simd::GlowRowSettings row{};
                row.keepColour[0] = settings.outputRed;
                row.keepColour[1] = settings.outputGreen;
                row.keepColour[2] = settings.outputBlue;
                row.opaque = opaque;
                row.keepAlpha = settings.outputAlpha;
                row.intensityToAlpha = settings.outputAlpha;
                row.softClip =
                    settings.preventOverbrights && settings.overbrightClamp > 0.0 && largest > 1.0f;
                row.excess = std::min(largest - 1.0f, 1.0f);
                row.knee = 1.0f - row.excess;
                row.clamp = static_cast<float>(settings.overbrightClamp / 100.0);
                row.fullClamp = settings.overbrightClamp == 100.0;
                Row got = glow;
                kernels.finishGlow(got.data(), source.data(), got.values(), row);
                EXPECT_TRUE(SameBits(got, want));
            });
    }
}

TEST(FrameKernels, TheSoftClipBendsEveryBrightnessAsThePlainOneDoes) {
    // The largest value fixes the knee; below it a fine sweep, and values far above white.
    for (const float largest : {1.0001f, 1.3f, 1.99f, 2.0f, 50.0f, 1e30f}) {
        std::vector<float> sweep(16384);
        for (std::size_t i = 0; i < sweep.size(); ++i) {
            sweep[i] = static_cast<float>(i) / 16384.0f * std::min(largest, 60.0f);
        }
        sweep[1] = largest;
        for (std::size_t i = 0; i < sweep.size(); i += kChannels) sweep[i] = 1.0f;
        const auto pixels = static_cast<std::int32_t>(sweep.size()) / kChannels;
        const GlowSettings settings;
        std::vector<float> want = sweep;
        OverbrightSoftClip({want.data(), pixels, 1, 0}, settings);
        simd::GlowRowSettings row{
            {true, true, true}, true, false, false, true, 0.0f, 0.0f, 1.0f, true};
        row.excess = std::min(largest - 1.0f, 1.0f);
        row.knee = 1.0f - row.excess;
        for (const simd::Level level : KernelLevels()) {
            std::vector<float> got = sweep;
            simd::KernelsOf(level)->frame.finishGlow(got.data(), sweep.data(),
                                                     static_cast<std::ptrdiff_t>(got.size()), row);
            EXPECT_EQ(got, want) << simd::LevelName(level) << ", largest " << largest;
        }
    }
}

TEST(FrameKernels, OpaqueGlowIsFinishedAndAddedInOneGo) {
    Random random(7);
    for (const Footage footage : kFootage) {
        AtEveryLevelAndLength(
            [&](const simd::FrameKernels& kernels, std::int32_t pixels, std::int32_t offset) {
                Row glow(pixels, offset, footage, random);
                Row source(pixels, offset, footage, random);
                for (std::int32_t x = 0; x < pixels; ++x) source.data()[x * kChannels] = 1.0f;
                simd::GlowRowSettings row{};
                for (bool& keep : row.keepColour) keep = random.whole(0, 3) != 0;
                row.opaque = true;
                row.softClip = random.whole(0, 1) == 0;
                row.excess = random.whole(0, 1) == 0 ? 1.0f : 0.4f;
                row.knee = 1.0f - row.excess;
                row.clamp = random.whole(0, 1) == 0 ? 1.0f : 0.6f;
                row.fullClamp = row.clamp == 1.0f;
                Row want = glow;
                kernels.finishGlow(want.data(), source.data(), want.values(), row);
                BlendImages(kTransferAdd, want.view(), source.view(), {1.0f, 1.0f, false});
                Row got = glow;
                kernels.finishAndAddOpaque(got.data(), source.data(), got.values(), row);
                EXPECT_TRUE(SameBits(got, want));
            });
    }
}

TEST(FrameKernels, ExpandedAndCombinedRowsAreTheirWeightedSums) {
    Random random(6);
    for (std::int32_t taps = 1; taps <= 6; ++taps) {
        AtEveryLevelAndLength([&](const simd::FrameKernels& kernels, std::int32_t pixels,
                                  std::int32_t offset) {
            Random same(static_cast<std::uint32_t>(pixels * 10 + taps));
            Row from(7 + taps, offset, Footage::kNegative, same);
            std::vector<std::int32_t> first;
            std::vector<double> weights;
            for (std::int32_t x = 0; x < pixels; ++x) {
                first.push_back(same.whole(0, 7));
                for (std::int32_t t = 0; t < taps; ++t) weights.push_back(same.whole(0, 9));
            }
            const auto values = static_cast<std::size_t>(pixels) * kChannels;
            std::vector<double> to(values + 1, -1.0);
            kernels.expandRow(from.data(), first.data(), weights.data(), taps, to.data(), pixels);
            for (std::size_t i = 0; i < values; ++i) {
                const std::size_t x = i / kChannels;
                double want = 0.0;
                for (std::int32_t t = 0; t < taps; ++t) {
                    want +=
                        weights[x * static_cast<std::size_t>(taps) + static_cast<std::size_t>(t)] *
                        static_cast<double>(from.data()[(first[x] + t) * kChannels +
                                                        static_cast<std::int32_t>(i % kChannels)]);
                }
                ASSERT_EQ(to[i], want) << i;
            }
            EXPECT_EQ(to.back(), -1.0) << "wrote beside the row";

            std::vector<const double*> rows(static_cast<std::size_t>(taps), to.data());
            Row combined(pixels, offset);
            kernels.combineRows(rows.data(), weights.data(), taps, 0.125, combined.data(),
                                combined.values());
            Row want(pixels, offset);
            for (std::size_t i = 0; i < values; ++i) {
                double sum = weights[0] * to[i];
                for (std::int32_t t = 1; t < taps; ++t) {
                    sum += weights[static_cast<std::size_t>(t)] * to[i];
                }
                want.data()[i] = static_cast<float>(sum * 0.125);
            }
            EXPECT_TRUE(SameBits(combined, want));

            double largest = -50.0;
            for (std::size_t i = 0; i < values; ++i) {
                double sum = weights[0] * to[i];
                for (std::int32_t t = 1; t < taps; ++t) {
                    sum += weights[static_cast<std::size_t>(t)] * to[i];
                }
                if (i % kChannels != 0) largest = std::max(largest, sum);
            }
            EXPECT_EQ(kernels.largestCombined(rows.data(), weights.data(), taps,
                                              static_cast<std::ptrdiff_t>(values), -50.0),
                      largest);
        });
    }
}

}  // namespace
}  // namespace vireon::test
