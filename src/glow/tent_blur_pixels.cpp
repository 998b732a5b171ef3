#include "glow/tent_blur_pixels.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <vector>

#include "simd/kernel_table.h"

namespace vireon {
namespace {

// One channel of one line, its neighbours `step` bytes apart.
struct ChannelLine {
    std::byte* first;
    std::ptrdiff_t step;

    float& operator[](std::int32_t i) const { return *reinterpret_cast<float*>(first + i * step); }
};

void BlurLine(ChannelLine source, ChannelLine destination, std::int32_t length,
              std::int32_t radius) {
    const std::int32_t m = radius + 1;
    const double factor = 1.0 / (static_cast<double>(m) * m);
    const std::int32_t last = length - 1;
    const auto value = [&](std::int32_t i) { return static_cast<double>(source[i]); };

    // Position 0: the first pixel stands for the whole left half.
    const double first = value(0);
    double sum = first * m;
    double slope = -first * m;
    for (std::int32_t k = 1; k <= radius; ++k) {
        sum += first * (m - k);
        sum += value(k) * (m - k);
        slope += value(k);
    }
    slope += value(m);

    const auto step = [&](std::int32_t i, double entering, double middle, double leaving) {
        destination[i] = static_cast<float>(sum * factor);
        sum += slope;
        slope += entering - 2.0 * middle + leaving;
    };
    // Three stretches, so that the long middle one needs no test of its indices.
    const std::int32_t headEnd = std::min(radius + 2, length);
    const std::int32_t tailBegin = std::max(headEnd, length - (radius + 2));
    std::int32_t i = 0;
    for (; i < headEnd; ++i) {
        step(i, value(std::min(i + m + 1, last)), value(std::min(i + 1, last)),
             value(std::max(i - radius, 0)));
    }
    for (; i < tailBegin; ++i) step(i, value(i + m + 1), value(i + 1), value(i - radius));
    for (; i < length; ++i) {
        step(i, value(std::min(i + m + 1, last)), value(std::min(i + 1, last)), value(i - radius));
    }
}

std::int32_t BlurChannels(const FloatImage& source, const FloatImage& destination,
                          std::int32_t radius, std::int32_t firstChannel, std::int32_t lastChannel,
                          std::int32_t direction) {
    const bool alongRows = direction == kAlongRows;
    const std::int32_t length = alongRows ? source.width : source.height;
    const std::int32_t lines = alongRows ? source.height : source.width;
    const std::int32_t clamped = ClampTentRadius(radius, length);
    if (clamped <= 0) return 0;

    constexpr std::ptrdiff_t pixelBytes = kChannels * sizeof(float);
    const auto line = [&](const FloatImage& image, std::int32_t index, std::int32_t channel) {
        float* first = alongRows ? image.row(index) : image.pixel(index, 0);
        return ChannelLine{reinterpret_cast<std::byte*>(first + channel),
                           alongRows ? pixelBytes : image.rowBytes};
    };
    for (std::int32_t index = 0; index < lines; ++index) {
        for (std::int32_t channel = firstChannel; channel <= lastChannel; ++channel) {
            BlurLine(line(source, index, channel), line(destination, index, channel), length,
                     clamped);
        }
    }
    return 0;
}

// A pass on no channel yet.
simd::TentPass PassOf(const FloatImage& source, const FloatImage& destination,
                      std::int32_t radius) {
    return {source.pixels, destination.pixels, source.rowBytes, destination.rowBytes,
            source.width,  source.height,      radius,          {},
            source.height, source.height};
}

std::int32_t BlurChannels(const simd::KernelTable& kernels, const FloatImage& source,
                          const FloatImage& destination, std::int32_t radius,
                          std::int32_t firstChannel, std::int32_t lastChannel,
                          std::int32_t direction) {
    const bool alongRows = direction == kAlongRows;
    const std::int32_t clamped = ClampTentRadius(radius, alongRows ? source.width : source.height);
    if (clamped <= 0) return 0;
    simd::TentPass pass = PassOf(source, destination, clamped);
    for (std::int32_t c = firstChannel; c <= lastChannel; ++c) pass.channels[c] = true;
    (alongRows ? kernels.tent.alongRows : kernels.tent.alongColumns)(pass);
    return 0;
}

}  // namespace

std::int32_t ClampTentRadius(std::int32_t radius, std::int32_t length) {
    return 2 * static_cast<std::int64_t>(radius) + 2 >= length ? length / 2 - 2 : radius;
}

std::int32_t TentBlurRGB(const FloatImage& source, const FloatImage& destination,
                         std::int32_t radius, std::int32_t direction) {
    return BlurChannels(source, destination, radius, kRed, kBlue, direction);
}

std::int32_t TentBlurRGBA(const FloatImage& source, const FloatImage& destination,
                          std::int32_t radius, std::int32_t direction) {
    return BlurChannels(source, destination, radius, kAlpha, kBlue, direction);
}

std::int32_t TentBlurChannel(const FloatImage& source, const FloatImage& destination,
                             std::int32_t radius, std::int32_t channel, std::int32_t direction) {
    return BlurChannels(source, destination, radius, channel, channel, direction);
}

std::int32_t TentBlurRGB(const simd::KernelTable& kernels, const FloatImage& source,
                         const FloatImage& destination, std::int32_t radius,
                         std::int32_t direction) {
    return BlurChannels(kernels, source, destination, radius, kRed, kBlue, direction);
}

std::int32_t TentBlurRGBA(const simd::KernelTable& kernels, const FloatImage& source,
                          const FloatImage& destination, std::int32_t radius,
                          std::int32_t direction) {
    return BlurChannels(kernels, source, destination, radius, kAlpha, kBlue, direction);
}

std::int32_t TentBlurChannel(const simd::KernelTable& kernels, const FloatImage& source,
                             const FloatImage& destination, std::int32_t radius,
                             std::int32_t channel, std::int32_t direction) {
    return BlurChannels(kernels, source, destination, radius, channel, channel, direction);
}

bool TentBlur(const simd::KernelTable& kernels, const FloatImage& image, const FloatImage& scratch,
              std::int32_t radius, const ChannelFlags& channels) {
    const std::int32_t alongRows = ClampTentRadius(radius, image.width);
    const std::int32_t alongColumns = ClampTentRadius(radius, image.height);
    if (alongRows <= 0 || alongColumns <= 0) return false;
    // Rows that nothing needs any more make room for the next ones, which stay in the caches so.
    const std::int32_t rows = std::min(2 * (alongColumns + 1) + simd::kTentBand, image.height);
    std::vector<double> columns(2 * static_cast<std::size_t>(image.width) * kChannels);
    simd::TentBoth passes{PassOf(image, scratch, alongRows), PassOf(scratch, image, alongColumns),
                          columns.data()};
    passes.alongRows.destinationRows = rows;
    passes.alongColumns.sourceRows = rows;
    std::copy(std::begin(channels.enabled), std::end(channels.enabled),
              passes.alongColumns.channels);
    kernels.tent.both(passes);
    return true;
}

}  // namespace vireon
