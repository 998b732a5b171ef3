#include "glow/stamp_ranges_pixels.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

#include "simd/kernel_table.h"

namespace vireon {
namespace {

using simd::kStampMargin;

// Fewer stamps than this are cheaper one by one than the coefficients that they would share.
constexpr std::size_t kFewestInRange = 8;

// The plane is added to the destination after this many texels a pixel.
constexpr double kTexelsInPlane = 40.0;

// Texels of one step.
constexpr double kTexelsOfStep = 2e6;

// Pixels that are read in one step, and what one costs in texels.
constexpr double kPixelsOfStep = 262144.0;
constexpr double kTexelsPerPixelRead = 10.0;

// Where a column or row of the stamp lies on the kernel, as a line over q.
struct Line {
    std::int32_t first;
    std::int32_t second;
    double fraction;  ///< at q0
    double slope;
};

Line LineOf(std::int32_t distance, std::int32_t texels, double q) {
    const double centre = 0.5 * texels;
    const double place = distance * centre * q + centre;
    if (place <= 0.0) return {0, 0, 0.0, 0.0};
    if (place >= texels - 1) return {texels - 1, texels - 1, 0.0, 0.0};
    const double whole = std::floor(place);
    const auto first = static_cast<std::int32_t>(whole);
    return {first, first + 1, place - whole, distance * centre};
}

// The smallest scale above `scale` at which a column's texel index changes.
double AxisRangeEnd(double scale, std::int32_t reach, std::int32_t texels) {
    const double centre = 0.5 * texels;
    double end = static_cast<double>(reach) + 1.0;
    for (std::int32_t distance = 1; distance <= reach; ++distance) {
        const double arm = distance * centre;
        const double offset = arm / scale;
        const double right = centre + offset;
        const double rightEdge = right > texels - 1 ? texels - 1 : std::ceil(right) - 1.0;
        if (rightEdge > centre) end = std::min(end, arm / (rightEdge - centre));
        const double left = centre - offset;
        const double leftEdge = left < 0.0 ? 0.0 : std::floor(left) + 1.0;
        if (leftEdge < centre) end = std::min(end, arm / (centre - leftEdge));
    }
    return end;
}

}  // namespace

RangesForm::RangesForm(const StampSource& source, const FloatImage& destination)
    : source_(source),
      destination_(destination),
      texels_(source.kernels, source.splat),
      stride_(PlaneStride(destination.width)),
      plane_(static_cast<std::size_t>(stride_) * static_cast<std::size_t>(destination.height)),
      emptyRow_(static_cast<std::size_t>(source.splat.kernel->width)),
      touchedTop_(destination.height) {
    const std::int32_t reach = source.census.largestReach();
    const std::size_t floats = StampFloats({static_cast<float>(reach), reach});
    if (floats * sizeof(float) * 3 <= kMostStampBytes) {
        stamps_.resize(floats * 3);
    } else if (floats * sizeof(float) <= kMostStampBytes) {
        stamps_.resize(floats);
    }
    const auto most = static_cast<std::size_t>(
        std::min(source.census.stamps(),
                 static_cast<double>(kMostRecords) + static_cast<double>(destination.width)));
    records_.reserve(most);
    sorted_.reserve(most);
}

double RangesForm::RangesUpTo(float scale, const GlowKernel& kernel) {
    const double centre =
        0.5 * (kernel.width == kernel.height ? kernel.width : kernel.width + kernel.height);
    return std::max(0.5 * centre * (static_cast<double>(scale) - 1.0), 1.0);
}

float* RangesForm::row(std::int32_t y) {
    return plane_.data() + y * stride_;
}

StampSize RangesForm::sizeOf(const Record& record) const {
    const auto scale = std::bit_cast<float>(record.scaleBits);
    const std::int32_t limit = source_.splat.maxRadius;
    if (scale >= static_cast<float>(limit)) return {scale, limit};
    return {scale, static_cast<std::int32_t>(scale) + 1};
}

double RangesForm::step() {
    if (loading_) return load();
    if (next_ == records_.size()) {
        if (nextRow_ == source_.image.height) {
            flush();
            finished_ = true;
            return 0.0;
        }
        records_.clear();
        next_ = groupEnd_ = 0;
        firstRow_ = nextRow_;
        loading_ = true;
        return load();
    }
    if (next_ == groupEnd_) chooseGroup();
    const auto width = static_cast<std::uint32_t>(source_.image.width);
    double texels = 0.0;
    while (next_ < groupEnd_ && texels < kTexelsOfStep) {
        const Record& record = records_[next_++];
        const std::int32_t y = firstRow_ + static_cast<std::int32_t>(record.position / width);
        const auto x = static_cast<std::int32_t>(record.position % width);
        const StampSize size = sizeOf(record);
        if (kind_ == Kind::kSingle) {
            addSingle(x, y, size);
        } else {
            addShared(x, y, size.scale);
        }
        texels += size.texels();
    }
    texelsInPlane_ += texels;
    const double area = static_cast<double>(touchedBottom_ - touchedTop_) * source_.image.width;
    if (texelsInPlane_ > kTexelsInPlane * area) flush();
    return texels;
}

double RangesForm::totalWork() const {
    return source_.census.texels() +
           kTexelsPerPixelRead * source_.image.width * static_cast<double>(source_.image.height);
}

// Reads rows until the records are full, some pixels at a time, then orders them.
double RangesForm::load() {
    const std::int32_t width = source_.image.width;
    constexpr std::int64_t kMostPixels = std::int64_t{1} << 31;
    const auto isFull = [&] {
        return nextRow_ == source_.image.height || records_.size() >= kMostRecords ||
               static_cast<std::int64_t>(nextRow_ + 1 - firstRow_) * width > kMostPixels;
    };
    double pixels = 0.0;
    while (!isFull() && pixels < kPixelsOfStep) {
        const float* value = source_.image.row(nextRow_) + source_.channel;
        auto position =
            static_cast<std::uint32_t>(nextRow_ - firstRow_) * static_cast<std::uint32_t>(width);
        for (std::int32_t x = 0; x < width; ++x, value += kChannels, ++position) {
            const StampSize size = StampSizeOf(*value, source_.splat);
            if (size.reach == 0) continue;
            records_.push_back({std::bit_cast<std::uint32_t>(size.scale), position});
        }
        ++nextRow_;
        pixels += width;
    }
    if (isFull()) {
        sort();
        loading_ = false;
    }
    return pixels * kTexelsPerPixelRead;
}

// By scale, then by place. Positive floats are in the order of their bits.
void RangesForm::sort() {
    for (int shift = 0; shift < 32; shift += 8) {
        std::array<std::size_t, 257> starts{};
        for (const Record& record : records_) ++starts[((record.scaleBits >> shift) & 255u) + 1];
        for (std::size_t i = 1; i < starts.size(); ++i) starts[i] += starts[i - 1];
        sorted_.resize(records_.size());
        for (const Record& record : records_) {
            sorted_[starts[(record.scaleBits >> shift) & 255u]++] = record;
        }
        records_.swap(sorted_);
    }
}

double RangesForm::rangeEnd(float scale) const {
    const GlowKernel& kernel = *source_.splat.kernel;
    const auto s = static_cast<double>(scale);
    const auto reach = static_cast<std::int32_t>(scale) + 1;
    double end = std::min(static_cast<double>(reach), static_cast<double>(source_.splat.maxRadius));
    end = std::min(end, AxisRangeEnd(s, reach, kernel.width));
    if (kernel.height != kernel.width) end = std::min(end, AxisRangeEnd(s, reach, kernel.height));
    return end;
}

void RangesForm::chooseGroup() {
    const std::uint32_t bits = records_[next_].scaleBits;
    const auto scale = std::bit_cast<float>(bits);
    const double end = rangeEnd(scale);
    std::size_t same = next_ + 1;
    while (same < records_.size() && records_[same].scaleBits == bits) ++same;
    std::size_t range = same;
    while (range < records_.size() &&
           static_cast<double>(std::bit_cast<float>(records_[range].scaleBits)) < end) {
        ++range;
    }
    const StampSize size = sizeOf(records_[next_]);
    const std::size_t floats = StampFloats(size);
    if (range > same && range - next_ >= kFewestInRange && stamps_.size() >= floats * 3) {
        kind_ = Kind::kQuadratic;
        groupEnd_ = range;
        makeQuadratic(static_cast<double>(scale),
                      static_cast<double>(std::bit_cast<float>(records_[range - 1].scaleBits)));
        return;
    }
    groupEnd_ = same;
    if (same - next_ == 1 || stamps_.size() < floats) {
        kind_ = Kind::kSingle;
        return;
    }
    kind_ = Kind::kShared;
    std::fill_n(stamps_.begin(), floats, 0.0f);
    box_ = MakeStamp(texels_, size, stamps_.data());
}

void RangesForm::makeQuadratic(double low, double high) {
    const GlowKernel& kernel = *source_.splat.kernel;
    const auto weight = static_cast<double>(source_.splat.weight);
    const std::int32_t reach = static_cast<std::int32_t>(low) + 1;
    const std::int32_t side = 2 * reach + 1;
    const StampSize size{static_cast<float>(low), reach};
    planeFloats_ = static_cast<std::ptrdiff_t>(StampFloats(size));
    std::fill_n(stamps_.begin(), planeFloats_ * 3, 0.0f);
    centre_ = 0.5 * (1.0 / low + 1.0 / high);

    std::vector<Line> across(static_cast<std::size_t>(side));
    for (std::int32_t i = 0; i < side; ++i) {
        across[static_cast<std::size_t>(i)] = LineOf(i - reach, kernel.width, centre_);
    }
    box_.stride = side + kStampMargin;
    std::int32_t top = side;
    std::int32_t bottom = -1;
    for (std::int32_t y = 0; y < side; ++y) {
        const Line down = LineOf(y - reach, kernel.height, centre_);
        const bool upperEmpty = kernel.rowIsEmpty(down.first);
        const bool lowerEmpty = kernel.rowIsEmpty(down.second);
        if (upperEmpty && lowerEmpty) continue;
        top = std::min(top, y);
        bottom = y;
        const float* upper = upperEmpty ? emptyRow_.data() : kernel.row(down.first);
        const float* lower = lowerEmpty ? emptyRow_.data() : kernel.row(down.second);
        float* a = stamps_.data() + kStampMargin + y * box_.stride;
        float* b = a + planeFloats_;
        float* c = b + planeFloats_;
        for (std::size_t x = 0; x < across.size(); ++x) {
            const Line& line = across[x];
            const auto first = static_cast<std::size_t>(line.first);
            const auto second = static_cast<std::size_t>(line.second);
            const double upperStep =
                static_cast<double>(upper[second]) - static_cast<double>(upper[first]);
            const double lowerStep =
                static_cast<double>(lower[second]) - static_cast<double>(lower[first]);
            const double upperAt = static_cast<double>(upper[first]) + line.fraction * upperStep;
            const double lowerAt = static_cast<double>(lower[first]) + line.fraction * lowerStep;
            const double difference = lowerAt - upperAt;
            const double twist = line.slope * (lowerStep - upperStep);
            a[x] = static_cast<float>(weight * (upperAt + down.fraction * difference));
            b[x] = static_cast<float>(weight * (line.slope * upperStep + down.fraction * twist +
                                                down.slope * difference));
            c[x] = static_cast<float>(weight * (down.slope * twist));
        }
    }
    box_.rows = bottom < 0 ? 0 : bottom - top + 1;
    box_.firstRow = top - reach;
    box_.firstColumn = -reach;
    box_.columns = side;
    box_.texels = stamps_.data() + kStampMargin + (bottom < 0 ? 0 : top) * box_.stride;
}

void RangesForm::touch(std::int32_t top, std::int32_t bottom) {
    touchedTop_ = std::min(touchedTop_, top);
    touchedBottom_ = std::max(touchedBottom_, bottom);
}

void RangesForm::addShared(std::int32_t x, std::int32_t y, float scale) {
    const std::int32_t top = std::max(y + box_.firstRow, 0);
    const std::int32_t bottom = std::min(y + box_.firstRow + box_.rows, destination_.height);
    if (top >= bottom) return;
    touch(top, bottom);
    simd::StampSpan span{};
    span.plane = row(top);
    span.planeStride = stride_;
    const std::ptrdiff_t skipped = (top - y - box_.firstRow) * box_.stride;
    span.texels = box_.texels + skipped;
    span.texelStride = box_.stride;
    span.rows = bottom - top;
    span.left = x + box_.firstColumn;
    span.columns = box_.columns;
    span.width = destination_.width;
    if (kind_ == Kind::kShared) {
        source_.kernels.stamps.addCopies(span, 1);
        return;
    }
    const auto p = static_cast<float>(1.0 / static_cast<double>(scale) - centre_);
    source_.kernels.stamps.addQuadratic(span, span.texels + planeFloats_,
                                        span.texels + 2 * planeFloats_, p);
}

void RangesForm::addSingle(std::int32_t x, std::int32_t y, StampSize size) {
    const std::int32_t top = std::max(y - size.reach, 0);
    const std::int32_t bottom = std::min(y + size.reach + 1, destination_.height);
    touch(top, bottom);
    const std::int32_t first = std::max(-size.reach, -x);
    const std::int32_t last = std::min(size.reach, destination_.width - 1 - x);
    texels_.select(size, first, last);
    const std::int32_t floats = last - first + 1 + 2 * kStampMargin;
    row_.assign(static_cast<std::size_t>(floats), 0.0f);
    simd::StampSpan span{};
    span.texels = row_.data() + kStampMargin;
    span.rows = 1;
    span.left = x + first;
    span.columns = last - first + 1;
    span.width = destination_.width;
    for (std::int32_t y2 = top; y2 < bottom; ++y2) {
        if (!texels_.row(y2 - y, row_.data() + kStampMargin)) continue;
        span.plane = row(y2);
        source_.kernels.stamps.addCopies(span, 1);
    }
}

void RangesForm::flush() {
    for (std::int32_t y = touchedTop_; y < touchedBottom_; ++y) {
        float* from = row(y);
        float* to = destination_.row(y) + source_.channel;
        for (std::int32_t x = 0; x < destination_.width; ++x, to += kChannels) *to += from[x];
        std::fill_n(from, stride_, 0.0f);
    }
    touchedTop_ = destination_.height;
    touchedBottom_ = 0;
    texelsInPlane_ = 0.0;
}

}  // namespace vireon
