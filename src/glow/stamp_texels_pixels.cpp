#include "glow/stamp_texels_pixels.h"

#include <algorithm>
#include <cstddef>

#include "simd/kernel_table.h"

namespace vireon {
namespace {

std::ptrdiff_t RunStride(std::int32_t columns, std::int32_t copies) {
    return columns + copies - 1 + simd::kStampMargin;
}

}  // namespace

StampTexels::StampTexels(const simd::KernelTable& kernels, const Splat& splat)
    : kernels_(kernels),
      splat_(splat),
      down_(splat.kernel->height, 1.0f),
      emptyRow_(static_cast<std::size_t>(splat.kernel->width), 0.0f),
      blended_(emptyRow_.size()) {}

void StampTexels::select(StampSize size, std::int32_t first, std::int32_t last) {
    const StampAxis across(splat_.kernel->width, size.scale);
    down_ = StampAxis(splat_.kernel->height, size.scale);
    const std::int32_t columns = last - first + 1;
    const auto count = static_cast<std::size_t>(columns);
    left_.resize(count);
    right_.resize(count);
    fractions_.resize(count);
    for (std::size_t i = 0; i < count; ++i) {
        const StampTap tap = across.tap(first + static_cast<std::int32_t>(i));
        left_[i] = tap.first;
        right_[i] = tap.second;
        fractions_[i] = tap.fraction;
    }
}

bool StampTexels::row(std::int32_t dy, float* out) {
    const GlowKernel& kernel = *splat_.kernel;
    const StampTap tap = down_.tap(dy);
    const bool upperEmpty = kernel.rowIsEmpty(tap.first);
    // A row that counts for nothing is not read.
    const bool lowerEmpty = tap.fraction == 0.0f || kernel.rowIsEmpty(tap.second);
    if (upperEmpty && lowerEmpty) return false;
    const float* upper = upperEmpty ? emptyRow_.data() : kernel.row(tap.first);
    const float* lower = lowerEmpty ? emptyRow_.data() : kernel.row(tap.second);

    const std::int32_t from = left_.front();
    const std::ptrdiff_t span = right_.back() - from + 1;
    const auto count = static_cast<std::ptrdiff_t>(left_.size());
    const simd::StampKernels& stamps = kernels_.stamps;
    if (span <= 2 * count) {
        stamps.blendRows(upper + from, lower + from, tap.fraction, blended_.data() + from, span);
        stamps.sampleRow(blended_.data(), left_.data(), right_.data(), fractions_.data(),
                         splat_.weight, out, count);
    } else {
        stamps.sampleRows(upper, lower, tap.fraction, left_.data(), right_.data(),
                          fractions_.data(), splat_.weight, out, count);
    }
    return true;
}

std::size_t StampFloats(StampSize size) {
    const auto side = static_cast<std::size_t>(size.side());
    return simd::kStampMargin + side * (side + simd::kStampMargin);
}

StampBox MakeStamp(StampTexels& texels, StampSize size, float* memory) {
    const std::int32_t side = size.side();
    StampBox box;
    box.stride = side + simd::kStampMargin;
    float* const first = memory + simd::kStampMargin;
    texels.select(size, -size.reach, size.reach);
    std::int32_t top = side;
    std::int32_t bottom = -1;
    std::int32_t left = side;
    std::int32_t right = -1;
    std::fill_n(memory, simd::kStampMargin, 0.0f);
    for (std::int32_t y = 0; y < side; ++y) {
        float* row = first + y * box.stride;
        std::fill_n(row + side, simd::kStampMargin, 0.0f);
        if (!texels.row(y - size.reach, row)) {
            std::fill_n(row, side, 0.0f);
            continue;
        }
        const auto isSet = [](float texel) { return texel != 0.0f; };
        const float* begin = std::find_if(row, row + side, isSet);
        if (begin == row + side) continue;
        const float* end = row + side;
        while (end[-1] == 0.0f) --end;
        top = std::min(top, y);
        bottom = y;
        left = std::min(left, static_cast<std::int32_t>(begin - row));
        right = std::max(right, static_cast<std::int32_t>(end - row) - 1);
    }
    if (bottom < 0) return box;
    box.texels = first + top * box.stride + left;
    box.firstRow = top - size.reach;
    box.rows = bottom - top + 1;
    box.firstColumn = left - size.reach;
    box.columns = right - left + 1;
    return box;
}

std::size_t RunFloats(StampSize size, std::int32_t copies) {
    const std::ptrdiff_t stride = RunStride(size.side(), copies);
    return static_cast<std::size_t>(stride * size.side() + simd::kStampMargin);
}

StampBox SumRun(const simd::KernelTable& kernels, const StampBox& stamp, std::int32_t copies,
                float* memory) {
    StampBox run = stamp;
    run.columns = stamp.columns + copies - 1;
    run.stride = RunStride(stamp.columns, copies);
    run.texels = memory + simd::kStampMargin;
    std::fill_n(memory, simd::kStampMargin, 0.0f);
    for (std::int32_t y = 0; y < run.rows; ++y) {
        float* const row = memory + simd::kStampMargin + y * run.stride;
        kernels.stamps.sumCopies(stamp.texels + y * stamp.stride, copies, row, run.columns);
        std::fill_n(row + run.columns, simd::kStampMargin, 0.0f);
    }
    return run;
}

}  // namespace vireon
