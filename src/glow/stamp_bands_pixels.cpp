#include "glow/stamp_bands_pixels.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <optional>
#include <utility>

#include "simd/kernel_table.h"

namespace vireon {
namespace {

using simd::kMostCopies;
using simd::kStampMargin;

// Source rows whose stamps may reach into a band; those that no band above looked at where they
// slide.
struct RowRange {
    std::int32_t first;
    std::int32_t last;  // may lie before the first
};

RowRange RowsThatReach(const GlowBand& band, const StampSource& source) {
    const std::int64_t reach = source.census.largestReach();
    const std::int64_t first = band.slides && band.firstRow > 0
                                   ? band.firstRow + reach
                                   : std::max<std::int64_t>(band.firstRow - reach, 0);
    const std::int64_t last =
        std::min<std::int64_t>(band.firstRow + band.rows - 1 + reach, source.image.height - 1);
    return {static_cast<std::int32_t>(first), static_cast<std::int32_t>(last)};
}

// Steps that go through the source rows that reach into a band, one at a time.
class RowByRowForm : public BandForm {
  public:
    explicit RowByRowForm(const StampSource& source) : source_(source) {}

    std::int32_t steps(const GlowBand& band) const final {
        const RowRange rows = RowsThatReach(band, source_);
        return std::max(rows.last - rows.first + 1, 0);
    }

    double work(const GlowBand& band, std::int32_t index) const final {
        // As if all stamps were as high as the row's largest; looking at it counts for little.
        constexpr double kLook = 100.0;
        const std::int32_t y = rowOfStep(band, index);
        const std::int32_t reach = source_.census.largestReachOfRow(y);
        const std::int32_t top = std::max(y - reach, band.firstRow);
        const std::int32_t bottom = std::min(y + reach + 1, band.endRow);
        if (top >= bottom) return kLook;
        return kLook + rowWork(y) * (bottom - top) / (2.0 * reach + 1.0);
    }

    void step(GlowBand& band, std::int32_t index) final {
        const std::int32_t y = rowOfStep(band, index);
        const std::int32_t reach = source_.census.largestReachOfRow(y);
        if (reach == 0 || y + reach < band.firstRow || y - reach >= band.endRow) return;
        addRow(band, y);
    }

  protected:
    /// The work of all stamps of a source row.
    virtual double rowWork(std::int32_t y) const = 0;
    /// Adds the stamps of a source row that reach into the band.
    virtual void addRow(GlowBand& band, std::int32_t y) = 0;
    const StampSource& source() const { return source_; }

  private:
    std::int32_t rowOfStep(const GlowBand& band, std::int32_t index) const {
        return RowsThatReach(band, source_).first + index;
    }

    StampSource source_;
};

// The places of the sizes of the source's pixels in the census, for some rows at a time: bands that
// follow each other look at the same rows.
class StampPlaces {
  public:
    static constexpr std::int16_t kNone = -1;

    /// \param rows  that are kept
    StampPlaces(const StampSource& source, std::int32_t rows)
        : source_(source),
          width_(static_cast<std::size_t>(source.image.width)),
          kept_(static_cast<std::size_t>(rows), kNoRow),
          values_(kept_.size() * width_) {}

    /// One place a pixel.
    const std::int16_t* row(std::int32_t y) {
        const std::size_t slot = static_cast<std::size_t>(y) % kept_.size();
        std::int16_t* const row = values_.data() + slot * width_;
        if (kept_[slot] != y) read(y, row);
        kept_[slot] = y;
        return row;
    }

  private:
    static constexpr std::int32_t kNoRow = -1;

    void read(std::int32_t y, std::int16_t* row) const {
        const float* value = source_.image.row(y) + source_.channel;
        float last = 0.0f;
        std::int16_t place = kNone;
        for (std::size_t x = 0; x < width_; ++x, value += kChannels) {
            if (*value != last) {
                last = *value;
                place = static_cast<std::int16_t>(source_.census.sizeOf(last));
            }
            row[x] = place;
        }
    }

    StampSource source_;
    std::size_t width_;
    std::vector<std::int32_t> kept_;  ///< which row each place holds
    std::vector<std::int16_t> values_;
};

class CacheForm final : public RowByRowForm {
  public:
    CacheForm(const StampSource& source, StampCache& cache, const CacheUse& use)
        : RowByRowForm(source),
          cache_(cache),
          places_(source.census.sizes().size(), kPassing),
          pieces_(places_.size() * kMostCopies),
          sumsRuns_(use.sumsRuns) {
        const StampCensus& census = source.census;
        for (std::size_t i = 0; i < places_.size(); ++i) {
            // Where bands slide, every run is looked at once.
            const bool isKept = !use.slides || census.isShared(static_cast<std::int32_t>(i));
            if (isKept) places_[i] = cache.add(census.sizes()[i]);
        }
        if (use.sumsRuns) cache.reserveRuns(census.runSumFloats());
        if (census.hasRuns()) return;
        // Half a byte a pixel of each channel, at most.
        const std::int32_t reached = use.bandRows + 2 * census.largestReach();
        const bool keepsRows = !use.slides && reached <= source.image.height / 4;
        rows_.emplace(source, keepsRows ? reached : 1);
    }

  protected:
    double rowWork(std::int32_t y) const override { return source().census.texelsOfRow(y); }

    void addRow(GlowBand& band, std::int32_t y) override {
        if (rows_) {
            addPlaces(band, y, rows_->row(y));
            return;
        }
        source().census.forEachRun(y, [&](std::int32_t x, std::int32_t length, std::int32_t size) {
            addRun(band, y, x, length, size);
        });
    }

  private:
    static constexpr std::int32_t kPassing = -1;

    /// How a run of a size and length is added.
    struct Piece {
        const StampBox* box = nullptr;
        std::int32_t copies = 0;
    };

    void addPlaces(GlowBand& band, std::int32_t y, const std::int16_t* places) {
        const std::int32_t width = band.width;
        for (std::int32_t x = 0; x < width;) {
            const std::int16_t place = places[x];
            const std::int32_t begin = x;
            do ++x;
            while (x < width && places[x] == place);
            if (place == StampPlaces::kNone) continue;
            addRun(band, y, begin, x - begin, place);
        }
    }

    void addRun(GlowBand& band, std::int32_t y, std::int32_t x, std::int32_t run,
                std::int32_t size) {
        if (places_[static_cast<std::size_t>(size)] == kPassing) {
            const StampBox box = cache_.passingStamp(source().census.sizeAt(size));
            for (std::int32_t copies = 0; run > 0; x += copies, run -= copies) {
                copies = std::min(run, kMostCopies);
                addCopies(band, y, x, copies, box);
            }
            return;
        }
        while (run > 0) {
            const std::int32_t length = std::min(run, kMostCopies);
            Piece& piece = pieces_[static_cast<std::size_t>(size * kMostCopies + length - 1)];
            if (piece.box == nullptr) piece = makePiece(size, length);
            addCopies(band, y, x, piece.copies, *piece.box);
            x += length;
            run -= length;
        }
    }

    Piece makePiece(std::int32_t size, std::int32_t length) {
        const std::int32_t place = places_[static_cast<std::size_t>(size)];
        const bool isSummed = sumsRuns_ && source().census.isRecurring(size, length);
        if (isSummed) return {&cache_.run(place, length), 1};
        return {&cache_.stamp(place), length};
    }

    void addCopies(GlowBand& band, std::int32_t y, std::int32_t x, std::int32_t copies,
                   const StampBox& box) const {
        const std::int32_t top = std::max(y + box.firstRow, band.firstRow);
        const std::int32_t bottom = std::min(y + box.firstRow + box.rows, band.endRow);
        if (top >= bottom) return;
        band.touch(top, bottom, x + box.firstColumn,
                   x + copies - 1 + box.firstColumn + box.columns);
        simd::StampSpan span{};
        const std::int32_t planeRow = band.planeRow(top);
        span.plane = band.values + planeRow * band.stride;
        span.planeStride = band.stride;
        span.texels = box.texels + (top - y - box.firstRow) * box.stride;
        span.texelStride = box.stride;
        span.rows = bottom - top;
        span.wrappedRows = std::max(span.rows - (band.planeRows - planeRow), 0);
        span.wrap = band.planeRows * band.stride;
        span.columns = box.columns;
        span.left = x + box.firstColumn;
        span.width = band.width;
        source().kernels.stamps.addCopies(span, copies);
    }

    StampCache& cache_;
    std::vector<std::int32_t> places_;  ///< in the cache, of the census's sizes, or kPassing
    std::vector<Piece> pieces_;         ///< of each size and length, made when first asked for
    bool sumsRuns_;
    std::optional<StampPlaces> rows_;  ///< where the census has kept no runs
};

class DirectForm final : public RowByRowForm {
  public:
    explicit DirectForm(const StampSource& source)
        : RowByRowForm(source), texels_(source.kernels, source.splat) {}

  protected:
    double rowWork(std::int32_t y) const override {
        return source().census.texelsOfRow(y) + kEvaluateCost * source().census.runTexelsOfRow(y);
    }

    void addRow(GlowBand& band, std::int32_t y) override {
        const FloatImage& image = source().image;
        if (source().census.hasRuns()) {
            source().census.forEachRun(
                y, [&](std::int32_t x, std::int32_t length, std::int32_t place) {
                    addRun(band, y, x, length, source().census.sizeAt(place));
                });
            return;
        }
        for (std::int32_t x = 0; x < image.width;) {
            const StampSize size = sizeAt(x, y);
            if (size.reach == 0) {
                ++x;
                continue;
            }
            std::int32_t end = x + 1;
            while (end < image.width && same(sizeAt(end, y), size)) ++end;
            addRun(band, y, x, end - x, size);
            x = end;
        }
    }

  private:
    StampSize sizeAt(std::int32_t x, std::int32_t y) const {
        return StampSizeOf(source().image.pixel(x, y)[source().channel], source().splat);
    }
    static bool same(StampSize a, StampSize b) { return a.reach == b.reach && a.scale == b.scale; }

    void addRun(GlowBand& band, std::int32_t y, std::int32_t x, std::int32_t run, StampSize size) {
        const std::int32_t top = std::max(y - size.reach, band.firstRow);
        const std::int32_t bottom = std::min(y + size.reach + 1, band.endRow);
        if (top >= bottom) return;
        // Only the columns that any stamp of the run has within the image.
        const std::int32_t first = std::max(-size.reach, 0 - (x + run - 1));
        const std::int32_t last = std::min(size.reach, band.width - 1 - x);
        const std::int32_t columns = last - first + 1;
        texels_.select(size, first, last);
        const std::int32_t floats = columns + 2 * kStampMargin;
        row_.assign(static_cast<std::size_t>(floats), 0.0f);
        simd::StampSpan span{};
        span.texels = row_.data() + kStampMargin;
        span.rows = 1;
        span.columns = columns;
        span.width = band.width;
        for (std::int32_t row = top; row < bottom; ++row) {
            if (!texels_.row(row - y, row_.data() + kStampMargin)) continue;
            band.touch(row, row + 1, x + first, x + run - 1 + last + 1);
            span.plane = band.row(row);
            for (std::int32_t done = 0; done < run;) {
                const std::int32_t copies = std::min(run - done, kMostCopies);
                span.left = x + done + first;
                if (span.left < span.width && span.left + columns + copies > 0) {
                    source().kernels.stamps.addCopies(span, copies);
                }
                done += copies;
            }
        }
    }

    StampTexels texels_;
    std::vector<float> row_;
};

// No texel is larger; the rounding of its interpolation included.
double LargestTexel(const Splat& splat) {
    // As whole numbers magnitudes have the order of their values, and vectors compare them.
    std::int32_t largest = 0;
    for (const float texel : splat.kernel->values) {
        const std::int32_t magnitude = std::bit_cast<std::int32_t>(texel) & 0x7fffffff;
        largest = std::max(largest, magnitude);
    }
    return static_cast<double>(std::bit_cast<float>(largest)) *
           std::fabs(static_cast<double>(splat.weight)) * 1.00001;
}

class RunsForm final : public BandForm {
  public:
    explicit RunsForm(const StampSource& source)
        : source_(source),
          cache_(source.kernels, source.splat),
          margin_(source.census.largestReach()),
          sums_(static_cast<std::size_t>(margin_) + static_cast<std::size_t>(source.image.width)),
          row_(static_cast<std::size_t>(source.image.width)) {
        const double side = 2.0 * margin_ + 1.0;
        const double pixels = static_cast<double>(source.image.width) * source.image.height;
        // Four differences of a pixel's sum at most are under way at a time.
        const double bound = 4.0 * std::min(side * side, pixels) * LargestTexel(source.splat);
        for (const StampSize size : source.census.sizes()) cache_.add(size);
        cache_.setStep(std::ldexp(1.0, std::ilogb(bound) + 1 - 52));
    }

    // The rows above the image come before those of the first band.
    std::int32_t steps(const GlowBand& band) const override {
        return band.rows + (band.firstRow == 0 ? margin_ : 0);
    }
    double work(const GlowBand&, std::int32_t) const override { return 1.0; }

    void step(GlowBand& band, std::int32_t index) override {
        const std::int32_t y = band.firstRow + index - (band.firstRow == 0 ? margin_ : 0);
        changed_ = addCorners(y) || changed_;
        if (y < 0 || !started_) return;
        band.touch(y, y + 1, 0, band.width);
        if (changed_) integrate();
        changed_ = false;
        std::copy(row_.begin(), row_.end(), band.row(y));
    }

  private:
    // Turns the sums of the row above into those of row y, both differences along the row.
    bool addCorners(std::int32_t y) {
        const StampCensus& census = source_.census;
        bool added = false;
        const std::int32_t first = std::max(y - margin_, 0);
        const std::int32_t last = std::min(y + margin_, source_.image.height);
        for (std::int32_t from = first; from <= last; ++from) {
            const StampCorner* end = census.cornersEnd(from);
            for (const StampCorner* corner = census.cornersBegin(from); corner != end; ++corner) {
                const StampBox& box = cache_.stamp(corner->size);
                const std::int32_t row = y - from - box.firstRow;
                if (row < 0 || row >= box.rows) continue;
                const std::int32_t left = corner->x + box.firstColumn;
                const std::int32_t columns = std::min(box.columns, source_.image.width - left);
                if (columns <= 0) continue;
                added = true;
                source_.kernels.stamps.addToSums(box.texels + row * box.stride,
                                                 static_cast<double>(corner->sign),
                                                 sums_.data() + margin_ + left, columns);
            }
        }
        started_ = started_ || added;
        return added;
    }

    void integrate() {
        double sum = 0.0;
        for (std::int32_t i = 0; i < margin_; ++i) sum += sums_[static_cast<std::size_t>(i)];
        const double* column = sums_.data() + margin_;
        for (std::size_t x = 0; x < row_.size(); ++x) {
            sum += column[x];
            row_[x] = static_cast<float>(sum);
        }
    }

    StampSource source_;
    StampCache cache_;
    std::int32_t margin_;
    std::vector<double> sums_;
    std::vector<float> row_;  ///< of the glow, of the sums as they were when last integrated
    bool started_ = false;
    bool changed_ = false;
};

}  // namespace

void GlowBand::start(std::int32_t first, std::int32_t most, std::int32_t imageHeight) {
    firstRow = first;
    rows = std::min(most, imageHeight - first);
    endRow = slides ? std::min(first + planeRows, imageHeight) : first + rows;
    touched = {};
    firstPlaneRow_ = first % planeRows;
}

void GlowBand::flag(const TileRange& range) {
    if (range.firstColumn >= range.endColumn) return;
    touched = range;
    for (std::int32_t row = range.firstRow; row < range.endRow; ++row) {
        std::uint8_t* const flags = tileRow(firstRow + row * kTileRows);
        std::fill(flags + range.firstColumn, flags + range.endColumn, std::uint8_t{1});
    }
}

std::ptrdiff_t PlaneStride(std::int32_t width) {
    const std::ptrdiff_t blocks =
        (static_cast<std::ptrdiff_t>(width) + simd::kPlaneBlock - 1) / simd::kPlaneBlock;
    return (blocks | 1) * simd::kPlaneBlock;
}

std::ptrdiff_t BandStride(std::int32_t width) {
    constexpr std::ptrdiff_t kBlocksOfPage = 64;
    constexpr std::ptrdiff_t kRowsApart = 12;
    constexpr std::ptrdiff_t kBlocksApart = 4;
    const auto liesApart = [](std::ptrdiff_t blocks) {
        for (std::ptrdiff_t rows = 1; rows <= kRowsApart; ++rows) {
            const std::ptrdiff_t place = rows * blocks % kBlocksOfPage;
            if (std::min(place, kBlocksOfPage - place) < kBlocksApart) return false;
        }
        return true;
    };
    std::ptrdiff_t blocks = PlaneStride(width) / simd::kPlaneBlock;
    while (!liesApart(blocks)) ++blocks;
    return blocks * simd::kPlaneBlock;
}

std::unique_ptr<BandForm> MakeCacheForm(const StampSource& source, StampCache& cache,
                                        const CacheUse& use) {
    return std::make_unique<CacheForm>(source, cache, use);
}

std::unique_ptr<BandForm> MakeDirectForm(const StampSource& source) {
    return std::make_unique<DirectForm>(source);
}

std::unique_ptr<BandForm> MakeRunsForm(const StampSource& source) {
    return std::make_unique<RunsForm>(source);
}

bool RunsAreExact(const Splat& splat) {
    const double largest = LargestTexel(splat);
    return largest > 1e-20 && largest < 1e20;
}

}  // namespace vireon
