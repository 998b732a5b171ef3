#include "glow/shape_splat_pixels.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>

#include "glow/stamp_geometry_pixels.h"

namespace vireon {
namespace {

float Texel(const float* top, const float* bottom, float fraction, std::int32_t column) {
    const auto c = static_cast<std::size_t>(column);
    if (fraction == 0.0f) return top ? top[c] : 0.0f;
    if (fraction == 1.0f) return bottom ? bottom[c] : 0.0f;
    return (1.0f - fraction) * (top ? top[c] : 0.0f) + fraction * (bottom ? bottom[c] : 0.0f);
}

float Interpolate(const float* top, const float* bottom, float fraction, const StampTap& column) {
    if (column.fraction == 0.0f) return Texel(top, bottom, fraction, column.first);
    if (column.fraction == 1.0f) return Texel(top, bottom, fraction, column.second);
    return (1.0f - column.fraction) * Texel(top, bottom, fraction, column.first) +
           column.fraction * Texel(top, bottom, fraction, column.second);
}

// Adds one stamp to the channels firstChannel to lastChannel of the pixels round (x, y).
void AddStamp(std::int32_t x, std::int32_t y, StampSize size, const FloatImage& destination,
              const Splat& splat, std::int32_t firstChannel, std::int32_t lastChannel) {
    const GlowKernel& kernel = *splat.kernel;
    const StampAxis across(kernel.width, size.scale);
    const StampAxis down(kernel.height, size.scale);

    const std::int32_t left = std::max(x - size.reach, 0);
    const std::int32_t right = std::min(x + size.reach, destination.width - 1);
    const std::int32_t top = std::max(y - size.reach, 0);
    const std::int32_t bottom = std::min(y + size.reach, destination.height - 1);

    const std::unique_ptr<StampTap[]> columns(
        new StampTap[static_cast<std::size_t>(destination.width) + 1]);
    for (std::int32_t column = left; column <= right; ++column) {
        columns[static_cast<std::size_t>(column - left)] = across.tap(column - x);
    }

    for (std::int32_t row = top; row <= bottom; ++row) {
        const auto [upper, lower, fraction] = down.tap(row - y);
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
        const StampSize size = StampSizeOf(value, splat);
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
