#include "glow/enlarged_rows_pixels.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <limits>

#include "glow/resample_pixels.h"
#include "glow/tent_blur_pixels.h"
#include "simd/kernel_table.h"

namespace vireon {
namespace {

// Below every sum of floats.
constexpr double kSmallestSum = -1e300;

}  // namespace

EnlargementTaps MakeEnlargementTaps(std::int32_t size, std::int32_t sourceSize,
                                    std::int32_t radius) {
    const std::int32_t reach = radius > 0 ? std::max(ClampTentRadius(radius, size), 0) : 0;
    const auto sourceOf = [&](std::int32_t position) {
        return NearestSample(std::clamp(position, 0, size - 1), sourceSize, size);
    };

    EnlargementTaps taps;
    taps.divisor = static_cast<double>(reach + 1) * (reach + 1);
    taps.first.resize(static_cast<std::size_t>(size));
    for (std::int32_t i = 0; i < size; ++i) {
        taps.count = std::max(taps.count, sourceOf(i + reach) - sourceOf(i - reach) + 1);
    }
    taps.weights.assign(taps.first.size() * static_cast<std::size_t>(taps.count), 0.0);
    for (std::int32_t i = 0; i < size; ++i) {
        // Positions near the end start earlier, so that no tap lies beyond the source.
        const std::int32_t first = std::min(sourceOf(i - reach), sourceSize - taps.count);
        taps.first[static_cast<std::size_t>(i)] = first;
        double* weights = taps.weights.data() +
                          static_cast<std::size_t>(i) * static_cast<std::size_t>(taps.count);
        for (std::int32_t k = -reach; k <= reach; ++k) {
            weights[sourceOf(i + k) - first] += reach + 1 - std::abs(k);
        }
    }
    return taps;
}

EnlargedRows::EnlargedRows(const simd::KernelTable& kernels, const FloatImage& source,
                           std::int32_t width, std::int32_t height, std::int32_t radius)
    : kernels_(kernels),
      source_(source),
      width_(width),
      height_(height),
      across_(MakeEnlargementTaps(width, source.width, radius)),
      down_(MakeEnlargementTaps(height, source.height, radius)),
      factor_(1.0 / (across_.divisor * down_.divisor)),
      ring_(static_cast<std::size_t>(down_.count)),
      rows_(ring_.size()),
      at_(ring_.size()) {
    for (ExpandedRow& row : ring_) {
        row.values.resize(static_cast<std::size_t>(width) * kChannels);
    }
}

const EnlargedRows::ExpandedRow& EnlargedRows::expanded(std::int32_t sourceRow) {
    ExpandedRow& row = ring_[static_cast<std::size_t>(sourceRow % down_.count)];
    if (row.sourceRow == sourceRow) return row;
    const float* from = source_.row(sourceRow);
    const std::ptrdiff_t values = static_cast<std::ptrdiff_t>(source_.width) * kChannels;
    const bool wasZero = row.isZero;
    row.isZero = kernels_.frame.isZero(from, values);
    if (!row.isZero) {
        kernels_.frame.expandRow(from, across_.first.data(), across_.weights.data(), across_.count,
                                 row.values.data(), width_);
    } else if (!wasZero) {
        std::fill(row.values.begin(), row.values.end(), 0.0);
    }
    row.sourceRow = sourceRow;
    return row;
}

std::int32_t EnlargedRows::prepare(std::int32_t y) {
    const std::int32_t first = down_.first[static_cast<std::size_t>(y)];
    allZero_ = true;
    for (std::int32_t t = 0; t < down_.count; ++t) {
        const ExpandedRow& row = expanded(first + t);
        allZero_ = allZero_ && row.isZero;
        rows_[static_cast<std::size_t>(t)] = row.values.data();
    }
    return alike(y);
}

std::int32_t EnlargedRows::alike(std::int32_t y) const {
    const std::int32_t first = down_.first[static_cast<std::size_t>(y)];
    std::int32_t end = y + 1;
    while (end < height_ && down_.first[static_cast<std::size_t>(end)] == first) ++end;
    return end - y;
}

float EnlargedRows::colourLimit(std::int32_t y) {
    if (sourceLimits_.empty()) {
        constexpr float kSmallest = std::numeric_limits<float>::lowest();
        const std::ptrdiff_t values = static_cast<std::ptrdiff_t>(source_.width) * kChannels;
        for (std::int32_t row = 0; row < source_.height; ++row) {
            sourceLimits_.push_back(
                kernels_.frame.largestColour(source_.row(row), values, kSmallest));
        }
    }
    // A mean with positive weights, rounded once, is no larger than the largest of what it is made
    // of.
    const auto first = sourceLimits_.begin() + down_.first[static_cast<std::size_t>(y)];
    return *std::max_element(first, first + down_.count);
}

void EnlargedRows::read(std::int32_t x, std::int32_t y, std::int32_t pixels, float* to) {
    const std::ptrdiff_t values = static_cast<std::ptrdiff_t>(pixels) * kChannels;
    if (allZero_) {
        std::fill_n(to, values, 0.0f);
        return;
    }
    for (std::size_t t = 0; t < rows_.size(); ++t) {
        at_[t] = rows_[t] + static_cast<std::ptrdiff_t>(x) * kChannels;
    }
    kernels_.frame.combineRows(at_.data(), weightsOf(y), down_.count, factor_, to, values);
}

float EnlargedRows::largestColour(std::int32_t y, float largest) const {
    if (allZero_) return std::max(largest, 0.0f);
    // Scaling and rounding keep the order of values, so the largest sum makes the largest value.
    const std::ptrdiff_t values = static_cast<std::ptrdiff_t>(width_) * kChannels;
    const double sum = kernels_.frame.largestCombined(rows_.data(), weightsOf(y), down_.count,
                                                      values, kSmallestSum);
    return std::max(largest, static_cast<float>(sum * factor_));
}

const double* EnlargedRows::weightsOf(std::int32_t y) const {
    return down_.weights.data() +
           static_cast<std::size_t>(y) * static_cast<std::size_t>(down_.count);
}

}  // namespace vireon
