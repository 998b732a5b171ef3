#include "glow/shape_splat_pixels.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>

namespace vireon {
namespace {

// Between which texels of a row a destination column lies, and how far from the left one.
struct Column {
    std::int32_t left;
    std::int32_t right;
    float fraction;
};

// A stamp's size: pixels from its centre to its rim, and to the last pixel that it covers.
struct StampSize {
    float scale;
    std::int32_t reach;
};

// A reach of 0 is no stamp.
StampSize SizeOf(float value, const Splat& splat) {
    const float scale = value * splat.radius;
    const auto limit = static_cast<float>(splat.maxRadius);
    if (std::isnan(scale) || scale < 1.0f) return {scale, 0};
    // trunc(scale) + 1 > limit, without a conversion that a huge scale would overflow.
    if (scale >= limit) return {limit, splat.maxRadius};
    return {scale, static_cast<std::int32_t>(scale) + 1};
}

float Texel(const float* top, const float* bottom, float fraction, std::int32_t column) {
    const auto c = static_cast<std::size_t>(column);
    if (fraction == 0.0f) return top ? top[c] : 0.0f;
    if (fraction == 1.0f) return bottom ? bottom[c] : 0.0f;
    return (1.0f - fraction) * (top ? top[c] : 0.0f) + fraction * (bottom ? bottom[c] : 0.0f);
}

float Interpolate(const float* top, const float* bottom, float fraction, const Column& column) {
    if (column.fraction == 0.0f) return Texel(top, bottom, fraction, column.left);
    if (column.fraction == 1.0f) return Texel(top, bottom, fraction, column.right);
    return (1.0f - column.fraction) * Texel(top, bottom, fraction, column.left) +
           column.fraction * Texel(top, bottom, fraction, column.right);
}

// Adds one stamp to the channels firstChannel to lastChannel of the pixels round (x, y).
void AddStamp(std::int32_t x, std::int32_t y, StampSize size, const FloatImage& destination,
              const Splat& splat, std::int32_t firstChannel, std::int32_t lastChannel) {
    const GlowKernel& kernel = *splat.kernel;
    const float centreX = static_cast<float>(kernel.width) * 0.5f;
    const float centreY = static_cast<float>(kernel.height) * 0.5f;
    const float stepX = centreX / size.scale;
    const float stepY = centreY / size.scale;
    const auto lastColumn = static_cast<float>(kernel.width - 1);
    const auto lastRow = static_cast<float>(kernel.height - 1);

    const std::int32_t left = std::max(x - size.reach, 0);
    const std::int32_t right = std::min(x + size.reach, destination.width - 1);
    const std::int32_t top = std::max(y - size.reach, 0);
    const std::int32_t bottom = std::min(y + size.reach, destination.height - 1);

    const std::unique_ptr<Column[]> columns(
        new Column[static_cast<std::size_t>(destination.width) + 1]);
    for (std::int32_t column = left; column <= right; ++column) {
        const float u =
            std::clamp(static_cast<float>(column - x) * stepX + centreX, 0.0f, lastColumn);
        const float whole = std::floor(u);
        const auto index = static_cast<std::int32_t>(whole);
        columns[static_cast<std::size_t>(column - left)] = {
            index, std::min(index + 1, kernel.width - 1), u - whole};
    }

    for (std::int32_t row = top; row <= bottom; ++row) {
        const float t = std::clamp(static_cast<float>(row - y) * stepY + centreY, 0.0f, lastRow);
        const float whole = std::floor(t);
        const auto upper = static_cast<std::int32_t>(whole);
        const std::int32_t lower = std::min(upper + 1, kernel.height - 1);
        const float fraction = t - whole;
        const float* upperTexels = kernel.rowIsEmpty(upper) ? nullptr : kernel.row(upper);
        const float* lowerTexels = kernel.rowIsEmpty(lower) ? nullptr : kernel.row(lower);
        if (!upperTexels && (!lowerTexels || fraction == 0.0f)) continue;

        float* out = destination.pixel(left, row);
        for (std::int32_t i = 0; i <= right - left; ++i, out += kChannels) {
            const float added = Interpolate(upperTexels, lowerTexels, fraction,
                                            columns[static_cast<std::size_t>(i)]) *
                                splat.weight;
            for (std::int32_t c = firstChannel; c <= lastChannel; ++c) out[c] += added;
        }
    }
}

}  // namespace

void SplatRow(const FloatImage& source, std::int32_t y, const FloatImage& destination,
              const Splat& splat, SplatMember member, const ChannelFlags& channels) {
    const auto stamp = [&](std::int32_t x, float value, std::int32_t first, std::int32_t last) {
        const StampSize size = SizeOf(value, splat);
        if (size.reach > 0) AddStamp(x, y, size, destination, splat, first, last);
    };
    for (std::int32_t x = 0; x < source.width; ++x) {
        const float* pixel = source.pixel(x, y);
        switch (member) {
            case SplatMember::kFourChannel: stamp(x, pixel[kAlpha], kAlpha, kBlue); break;
            case SplatMember::kThreeChannel:
                stamp(x, std::max({pixel[kRed], pixel[kGreen], pixel[kBlue]}), kRed, kBlue);
                break;
            case SplatMember::kSingleChannel:
            case SplatMember::kGeneral:
                for (std::int32_t c = kAlpha; c < kChannels; ++c) {
                    if (channels.enabled[c]) stamp(x, pixel[c], c, c);
                }
                break;
        }
    }
}

}  // namespace vireon
