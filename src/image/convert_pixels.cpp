#include "image/convert_pixels.h"

#include <algorithm>
#include <cstring>

#include "image/channel_order.h"
#include "image/pixel_format.h"
#include "simd/kernel_table.h"

namespace vireon {
namespace {

constexpr float kFrom8 = 0.003921569f;

float ToFloat(std::uint8_t value) {
    return static_cast<float>(value) * kFrom8;
}
float ToFloat(std::uint16_t value) {
    return static_cast<float>(value) / static_cast<float>(ChannelMaximum(15));
}
float ToFloat(float value) {
    return value;
}

template <typename Channel>
constexpr std::int32_t kMaximum = ChannelMaximum(sizeof(Channel) == 1 ? 8 : 15);

template <typename Channel>
Channel FromFloat(float value) {
    constexpr auto maximum = static_cast<float>(kMaximum<Channel>);
    const float scaled = maximum * value + 0.5f;
    // The limits come first: a float beyond the integers' range, NaN included, has no conversion.
    if (scaled >= maximum) return static_cast<Channel>(kMaximum<Channel>);
    if (!(scaled >= 1.0f)) return 0;
    return static_cast<Channel>(static_cast<std::int32_t>(scaled));
}
template <>
float FromFloat<float>(float value) {
    return value;
}

// Pixels go through a local copy: rows of integer worlds may begin at any address.
template <typename Channel>
void RowToFloat(const std::byte* source, float* destination, std::int32_t width,
                ChannelOrder order) {
    for (std::int32_t x = 0; x < width; ++x) {
        Channel pixel[kChannels];
        std::memcpy(pixel, source, sizeof pixel);
        destination[kAlpha] = ToFloat(pixel[order.alpha]);
        destination[kRed] = ToFloat(pixel[order.red]);
        destination[kGreen] = ToFloat(pixel[order.green]);
        destination[kBlue] = ToFloat(pixel[order.blue]);
        source += sizeof pixel;
        destination += kChannels;
    }
}

template <typename Channel>
void RowFromFloat(const float* source, std::byte* destination, std::int32_t width,
                  ChannelOrder order) {
    for (std::int32_t x = 0; x < width; ++x) {
        Channel pixel[kChannels];
        pixel[order.alpha] = FromFloat<Channel>(source[kAlpha]);
        pixel[order.red] = FromFloat<Channel>(source[kRed]);
        pixel[order.green] = FromFloat<Channel>(source[kGreen]);
        pixel[order.blue] = FromFloat<Channel>(source[kBlue]);
        std::memcpy(destination, pixel, sizeof pixel);
        source += kChannels;
        destination += sizeof pixel;
    }
}

// Integer rows whose channels need no sorting and that begin where their channels may.
bool HasFastRows(const RasterLayout& layout) {
    const std::int32_t depth = DepthOfFormat(layout.formatCode);
    if (depth != kDepth8 && depth != kDepth16) return false;
    const std::int32_t alignment = depth == kDepth8 ? 1 : 2;
    return ChannelOrderOf(layout.formatCode) == kAlphaFirst && layout.rowBytes % alignment == 0 &&
           reinterpret_cast<std::uintptr_t>(layout.pixels) %
                   static_cast<std::uintptr_t>(alignment) ==
               0;
}

}  // namespace

FloatImage FloatView(const RasterLayout& layout) {
    return {static_cast<float*>(layout.pixels), layout.width, layout.height, layout.rowBytes};
}

bool IsFloatView(const RasterLayout& layout) {
    return layout.pixels != nullptr && layout.formatCode == kFormatFloat &&
           reinterpret_cast<std::uintptr_t>(layout.pixels) % alignof(float) == 0 &&
           layout.rowBytes % static_cast<std::int32_t>(alignof(float)) == 0;
}

void ConvertPixelsToFloat(const RasterLayout& source, const FloatImage& destination) {
    const ChannelOrder order = ChannelOrderOf(source.formatCode);
    const std::int32_t width = std::min(source.width, destination.width);
    const std::int32_t height = std::min(source.height, destination.height);
    for (std::int32_t y = 0; y < height; ++y) {
        const std::byte* from = source.row(y);
        float* to = destination.row(y);
        switch (DepthOfFormat(source.formatCode)) {
            case kDepth8: RowToFloat<std::uint8_t>(from, to, width, order); break;
            case kDepth16: RowToFloat<std::uint16_t>(from, to, width, order); break;
            case kDepthFloat: RowToFloat<float>(from, to, width, order); break;
            default: return;
        }
    }
}

void ConvertPixelsFromFloat(const FloatImage& source, const RasterLayout& destination) {
    const ChannelOrder order = ChannelOrderOf(destination.formatCode);
    const std::int32_t width = std::min(source.width, destination.width);
    const std::int32_t height = std::min(source.height, destination.height);
    for (std::int32_t y = 0; y < height; ++y) {
        const float* from = source.row(y);
        std::byte* to = destination.row(y);
        switch (DepthOfFormat(destination.formatCode)) {
            case kDepth8: RowFromFloat<std::uint8_t>(from, to, width, order); break;
            case kDepth16: RowFromFloat<std::uint16_t>(from, to, width, order); break;
            case kDepthFloat: RowFromFloat<float>(from, to, width, order); break;
            default: return;
        }
    }
}

void ConvertPixelsToFloat(const simd::KernelTable& kernels, const RasterLayout& source,
                          const FloatImage& destination) {
    if (!HasFastRows(source)) {
        ConvertPixelsToFloat(source, destination);
        return;
    }
    const std::ptrdiff_t values =
        static_cast<std::ptrdiff_t>(std::min(source.width, destination.width)) * kChannels;
    const std::int32_t height = std::min(source.height, destination.height);
    const bool narrow = DepthOfFormat(source.formatCode) == kDepth8;
    for (std::int32_t y = 0; y < height; ++y) {
        const std::byte* from = source.row(y);
        if (narrow) {
            kernels.frame.from8(reinterpret_cast<const std::uint8_t*>(from), destination.row(y),
                                values);
        } else {
            kernels.frame.from16(reinterpret_cast<const std::uint16_t*>(from), destination.row(y),
                                 values);
        }
    }
}

void ConvertPixelsFromFloat(const simd::KernelTable& kernels, const FloatImage& source,
                            const RasterLayout& destination) {
    if (!HasFastRows(destination)) {
        ConvertPixelsFromFloat(source, destination);
        return;
    }
    const std::ptrdiff_t values =
        static_cast<std::ptrdiff_t>(std::min(source.width, destination.width)) * kChannels;
    const std::int32_t height = std::min(source.height, destination.height);
    const bool narrow = DepthOfFormat(destination.formatCode) == kDepth8;
    for (std::int32_t y = 0; y < height; ++y) {
        std::byte* to = destination.row(y);
        if (narrow) {
            kernels.frame.to8(source.row(y), reinterpret_cast<std::uint8_t*>(to), values);
        } else {
            kernels.frame.to16(source.row(y), reinterpret_cast<std::uint16_t*>(to), values);
        }
    }
}

}  // namespace vireon
