#include "image/convert_pixels.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "image/channel_order.h"
#include "image/pixel_format.h"
#include "tests/unit/support/picture.h"

namespace vireon::test {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr std::int32_t kFormats[] = {kFormat8, kFormat8Bgra, kFormatWorld16, kFormat16,
                                     kFormatFloat};
constexpr std::byte kUntouched{0xA5};

/// Pixels of any format with rows of any length, one byte off any alignment, going up or down.
class ByteRaster {
  public:
    ByteRaster(std::int32_t format, std::int32_t width, std::int32_t height,
               std::int32_t paddingBytes, bool bottomUp) {
        const std::int32_t bytesPerPixel = BytesPerPixel(DepthOfFormat(format));
        layout.formatCode = format;
        layout.width = width;
        layout.height = height;
        layout.bytesPerPixel = bytesPerPixel;
        const std::int32_t rowBytes = width * bytesPerPixel + paddingBytes;
        bytes_.assign(static_cast<std::size_t>(rowBytes) * static_cast<std::size_t>(height) + 1,
                      kUntouched);
        std::byte* const first = bytes_.data() + (paddingBytes % 2);
        layout.pixels = bottomUp ? first + rowBytes * (height - 1) : first;
        layout.rowBytes = bottomUp ? -rowBytes : rowBytes;
        channelBytes_ = bytesPerPixel / 4;
        paddingBytes_ = paddingBytes;
    }

    /// The stored value of a place within a pixel; float formats give the float's bits.
    std::uint32_t stored(std::int32_t x, std::int32_t y, std::int32_t place) const {
        std::uint32_t value = 0;
        std::memcpy(&value, address(x, y, place), static_cast<std::size_t>(channelBytes_));
        return value;
    }
    void store(std::int32_t x, std::int32_t y, std::int32_t place, std::uint32_t value) {
        std::memcpy(address(x, y, place), &value, static_cast<std::size_t>(channelBytes_));
    }
    bool paddingIntact() const {
        for (std::int32_t y = 0; y < layout.height; ++y) {
            for (std::int32_t i = 0; i < paddingBytes_; ++i) {
                if (address(layout.width, y, 0)[i] != kUntouched) return false;
            }
        }
        return true;
    }
    bool pixelUntouched(std::int32_t x, std::int32_t y) const {
        for (std::int32_t i = 0; i < layout.bytesPerPixel; ++i) {
            if (address(x, y, 0)[i] != kUntouched) return false;
        }
        return true;
    }

    RasterLayout layout;

  private:
    std::byte* address(std::int32_t x, std::int32_t y, std::int32_t place) const {
        return static_cast<std::byte*>(layout.pixels) +
               static_cast<std::ptrdiff_t>(y) * layout.rowBytes + x * layout.bytesPerPixel +
               place * channelBytes_;
    }

    std::vector<std::byte> bytes_;
    std::int32_t channelBytes_;
    std::int32_t paddingBytes_;
};

/// Place of alpha, red, green, blue within a stored pixel.
std::int32_t PlaceOf(std::int32_t format, std::int32_t channel) {
    if (format == kFormat8Bgra) return 3 - channel;
    return channel;
}

std::uint32_t BitsOf(float value) {
    std::uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

float FloatOf(std::uint32_t bits) {
    float value = 0.0f;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

std::uint32_t RandomStored(Random& random, std::int32_t format) {
    switch (DepthOfFormat(format)) {
        case kDepth8: return random.bits() & 0xFF;
        case kDepth16: return static_cast<std::uint32_t>(random.whole(0, kWhite16));
        default: return BitsOf(random.real(-2.0f, 5.0f));
    }
}

float PlainToFloat(std::int32_t format, std::uint32_t stored) {
    switch (DepthOfFormat(format)) {
        case kDepth8: return static_cast<float>(stored) * 0.003921569f;
        case kDepth16: return static_cast<float>(stored) / 32768.0f;
        default: return FloatOf(stored);
    }
}

std::uint32_t PlainFromFloat(std::int32_t format, float value) {
    if (DepthOfFormat(format) == kDepthFloat) return BitsOf(value);
    const float white = DepthOfFormat(format) == kDepth8 ? 255.0f : 32768.0f;
    const float scaled = white * value;
    const float rounded = scaled + 0.5f;
    if (std::isnan(rounded) || rounded <= 0.0f) return 0;
    if (rounded >= white) return static_cast<std::uint32_t>(white);
    return static_cast<std::uint32_t>(rounded);
}

TEST(ChannelMaximum, OfEveryBitCount) {
    EXPECT_EQ(ChannelMaximum(8), 255);
    EXPECT_EQ(ChannelMaximum(10), 1023);
    EXPECT_EQ(ChannelMaximum(12), 4095);
    EXPECT_EQ(ChannelMaximum(14), 16384);
    EXPECT_EQ(ChannelMaximum(15), 32768);
    EXPECT_EQ(ChannelMaximum(16), 65535);
    EXPECT_EQ(ChannelMaximum(1), 1);
}

TEST(ChannelOrder, OfEveryFormatCode) {
    for (const std::int32_t code : {0, 3, 5, 7, 9, 19, 20}) {
        EXPECT_EQ(ChannelOrderOf(code), (ChannelOrder{1, 2, 3, 0})) << code;
    }
    for (const std::int32_t code : {1, 4, 6, 11, 12, 13, 14, 15, 16, 17, 18}) {
        EXPECT_EQ(ChannelOrderOf(code), (ChannelOrder{2, 1, 0, 3})) << code;
    }
    for (const std::int32_t code : {2, 8, 10}) {
        EXPECT_EQ(ChannelOrderOf(code), (ChannelOrder{0, 1, 2, 3})) << code;
    }
}

TEST(PixelFormat, DepthsAndBytes) {
    EXPECT_EQ(BytesPerPixel(0), 4);
    EXPECT_EQ(BytesPerPixel(1), 8);
    EXPECT_EQ(BytesPerPixel(4), 16);
    EXPECT_EQ(BytesPerPixel(2), 0);
    EXPECT_EQ(MemoryFormatOfDepth(0), 0);
    EXPECT_EQ(MemoryFormatOfDepth(1), 7);
    EXPECT_EQ(MemoryFormatOfDepth(4), 9);
    EXPECT_EQ(MemoryFormatOfDepth(3), -1);
    EXPECT_EQ(DepthOfFormat(0), 0);
    EXPECT_EQ(DepthOfFormat(1), 0);
    EXPECT_EQ(DepthOfFormat(3), 1);
    EXPECT_EQ(DepthOfFormat(7), 1);
    EXPECT_EQ(DepthOfFormat(9), 4);
    EXPECT_EQ(DepthOfFormat(13), -1);
}

TEST(ConvertPixels, EveryFormatToFloatByItsFactorAndOrder) {
    Random random(10);
    for (const std::int32_t format : kFormats) {
        for (const std::int32_t padding : {0, 1, 7, 16}) {
            for (const bool bottomUp : {false, true}) {
                ByteRaster source(format, 7, 5, padding, bottomUp);
                Picture got(7, 5);
                Picture want(7, 5);
                ForEachFloat(want, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
                    const std::uint32_t stored = RandomStored(random, format);
                    source.store(x, y, PlaceOf(format, c), stored);
                    want.at(x, y, c) = PlainToFloat(format, stored);
                });
                ConvertPixelsToFloat(source.layout, got.view());
                EXPECT_TRUE(SamePixels(got, want)) << format << ' ' << padding << ' ' << bottomUp;
            }
        }
    }
}

TEST(ConvertPixels, EveryFormatFromFloatRoundedAndLimited) {
    Random random(11);
    for (const std::int32_t format : kFormats) {
        for (const std::int32_t padding : {0, 1, 7, 16}) {
            for (const bool bottomUp : {false, true}) {
                Picture source(9, 6);
                source.randomize(random, -0.3f, 1.3f);
                ByteRaster got(format, 9, 6, padding, bottomUp);
                ConvertPixelsFromFloat(source.view(), got.layout);
                ForEachFloat(source, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
                    ASSERT_EQ(got.stored(x, y, PlaceOf(format, c)),
                              PlainFromFloat(format, source.at(x, y, c)))
                        << format << " value " << source.at(x, y, c);
                });
                EXPECT_TRUE(got.paddingIntact());
            }
        }
    }
}

std::uint32_t ConvertOne(std::int32_t format, float value) {
    Picture source(1, 1);
    source.fill(value);
    ByteRaster got(format, 1, 1, 0, false);
    ConvertPixelsFromFloat(source.view(), got.layout);
    return got.stored(0, 0, 2);
}

TEST(ConvertPixels, WhiteWritesTheMaximumAndNegativesZero) {
    EXPECT_EQ(ConvertOne(kFormat8, 1.0f), 255u);
    EXPECT_EQ(ConvertOne(kFormat16, 1.0f), 32768u);
    EXPECT_EQ(ConvertOne(kFormatWorld16, 1.0f), 32768u);
    EXPECT_EQ(ConvertOne(kFormat8, -0.7f), 0u);
    EXPECT_EQ(ConvertOne(kFormat16, -0.7f), 0u);
    EXPECT_EQ(ConvertOne(kFormat8, 1.5f), 255u);
    EXPECT_EQ(ConvertOne(kFormat16, 1.5f), 32768u);
}

TEST(ConvertPixels, RoundsHalvesUpInSinglePrecision) {
    EXPECT_EQ(ConvertOne(kFormat8, 0.5f), 128u);
    EXPECT_EQ(ConvertOne(kFormat8, 0.4999f / 255.0f), 0u);
    EXPECT_EQ(ConvertOne(kFormat8, 0.5001f / 255.0f), 1u);
    EXPECT_EQ(ConvertOne(kFormat16, 0.5f / 32768.0f), 1u);
    EXPECT_EQ(ConvertOne(kFormat16, 0.49f / 32768.0f), 0u);
}

TEST(ConvertPixels, ValuesThatAreNotFiniteOrHugeStayWithinTheRange) {
    for (const std::int32_t format : {kFormat8, kFormat8Bgra, kFormatWorld16, kFormat16}) {
        const std::uint32_t white = DepthOfFormat(format) == kDepth8 ? 255 : 32768;
        EXPECT_EQ(ConvertOne(format, kNaN), 0u);
        EXPECT_EQ(ConvertOne(format, kInfinity), white);
        EXPECT_EQ(ConvertOne(format, -kInfinity), 0u);
        EXPECT_EQ(ConvertOne(format, 3e38f), white);
        EXPECT_EQ(ConvertOne(format, -3e38f), 0u);
        EXPECT_EQ(ConvertOne(format, 1e10f), white);
    }
}

TEST(ConvertPixels, FloatIsCopiedAsItStands) {
    for (const float value : {kNaN, kInfinity, -kInfinity, -3.5f, 1e30f, -0.0f}) {
        EXPECT_EQ(ConvertOne(kFormatFloat, value), BitsOf(value));
        ByteRaster source(kFormatFloat, 1, 1, 1, false);
        for (std::int32_t c = 0; c < 4; ++c) source.store(0, 0, c, BitsOf(value));
        Picture got(1, 1);
        ConvertPixelsToFloat(source.layout, got.view());
        EXPECT_EQ(BitsOf(got.at(0, 0, 3)), BitsOf(value));
    }
}

TEST(ConvertPixels, EveryStoredValueSurvivesTheWayThere) {
    for (const std::int32_t format : {kFormat8, kFormat8Bgra, kFormatWorld16, kFormat16}) {
        const std::int32_t white = DepthOfFormat(format) == kDepth8 ? 255 : kWhite16;
        ByteRaster source(format, white + 1, 1, 0, false);
        for (std::int32_t x = 0; x <= white; ++x) {
            for (std::int32_t c = 0; c < 4; ++c) {
                source.store(x, 0, c, static_cast<std::uint32_t>(x));
            }
        }
        Picture between(white + 1, 1);
        ConvertPixelsToFloat(source.layout, between.view());
        ByteRaster got(format, white + 1, 1, 0, false);
        ConvertPixelsFromFloat(between.view(), got.layout);
        for (std::int32_t x = 0; x <= white; ++x) {
            ASSERT_EQ(got.stored(x, 0, 0), static_cast<std::uint32_t>(x));
            ASSERT_EQ(got.stored(x, 0, 3), static_cast<std::uint32_t>(x));
        }
    }
}

TEST(ConvertPixels, ValueScaleOfTheLayoutIsNoFactor) {
    ByteRaster source(kFormatWorld16, 1, 1, 0, false);
    source.layout.valueScale = 2.0f;
    for (std::int32_t c = 0; c < 4; ++c) source.store(0, 0, c, 16384);
    Picture got(1, 1);
    ConvertPixelsToFloat(source.layout, got.view());
    EXPECT_EQ(got.at(0, 0, kRed), 0.5f);
}

TEST(ConvertPixels, WalksOnlyWhatBothHave) {
    for (const std::int32_t format : kFormats) {
        Picture small(3, 2);
        small.fill(0.25f);
        ByteRaster large(format, 5, 4, 2, false);
        ConvertPixelsFromFloat(small.view(), large.layout);
        for (std::int32_t y = 0; y < 4; ++y) {
            for (std::int32_t x = 0; x < 5; ++x) {
                EXPECT_EQ(large.pixelUntouched(x, y), x >= 3 || y >= 2) << x << ' ' << y;
            }
        }
        EXPECT_TRUE(large.paddingIntact());

        ByteRaster source(format, 2, 3, 0, false);
        for (std::int32_t y = 0; y < 3; ++y) {
            for (std::int32_t x = 0; x < 2; ++x) {
                for (std::int32_t c = 0; c < 4; ++c) source.store(x, y, c, BitsOf(0.0f));
            }
        }
        Picture got(4, 2);
        got.fill(7.0f);
        ConvertPixelsToFloat(source.layout, got.view());
        ForEachFloat(got, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
            EXPECT_EQ(got.at(x, y, c), x < 2 ? 0.0f : 7.0f);
        });
    }
}

TEST(ConvertPixels, FormatsWithoutADepthAreLeftAlone) {
    ByteRaster raster(kFormat8, 2, 2, 0, false);
    raster.layout.formatCode = 13;
    Picture picture(2, 2);
    picture.fill(0.5f);
    const Picture before(picture);
    ConvertPixelsFromFloat(picture.view(), raster.layout);
    EXPECT_TRUE(raster.pixelUntouched(0, 0));
    ConvertPixelsToFloat(raster.layout, picture.view());
    EXPECT_TRUE(SamePixels(picture, before));
}

TEST(FloatView, TakesAlignedFloatLayoutsOnly) {
    Picture picture(3, 2, 1, true);
    const RasterLayout layout = *picture.layoutRecord();
    EXPECT_TRUE(IsFloatView(layout));
    const FloatImage view = FloatView(layout);
    EXPECT_EQ(view.pixels, layout.pixels);
    EXPECT_EQ(view.width, 3);
    EXPECT_EQ(view.height, 2);
    EXPECT_EQ(view.rowBytes, layout.rowBytes);

    RasterLayout other = layout;
    other.formatCode = kFormat8;
    EXPECT_FALSE(IsFloatView(other));
    other = layout;
    other.rowBytes = 49;
    EXPECT_FALSE(IsFloatView(other));
    other = layout;
    other.pixels = static_cast<std::byte*>(layout.pixels) + 1;
    EXPECT_FALSE(IsFloatView(other));
}

}  // namespace
}  // namespace vireon::test
