#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "glow/stamp_geometry_pixels.h"
#include "image/float_image.h"
#include "simd/stamp_kernels.h"

namespace vireon {

namespace simd {
struct KernelTable;
}

/// Blocks of `simd::kLightBlock` pixels of a row of a width, the pixel right of it included.
std::size_t LightBlocks(std::int32_t width);

/// The blocks of a source row that hold pixels with a stamp in a channel, and those of its stretch
/// that was looked at last.
struct LitBlocks {
    LitBlocks(std::int32_t width, const ChannelFlags& channels);

    std::int32_t chosen[kChannels];      ///< all bits set for a channel that is looked at
    std::vector<std::uint8_t> flags;     ///< of each of the `LightBlocks`: bit c for channel c
    bool any = false;                    ///< whether any flag of the row is set
    std::vector<std::int32_t> places;    ///< in the stretch: of those with any flag, from the left
    std::vector<std::uint64_t> changes;  ///< of each of these; see `simd::StampKernels`
};

/// Pixels of a stretch: few enough for the next ones to arrive from memory while they are counted.
inline constexpr std::int32_t kStretchPixels = 16 * simd::kLightBlock;

/// Looks at the stretch of row y from column `begin`, a multiple of `kStretchPixels`.
void FindLights(const simd::KernelTable& kernels, const FloatImage& source, std::int32_t y,
                std::int32_t begin, const Splat& splat, LitBlocks& blocks);

/// Neighbouring pixels of a row that make stamps of one size, or none.
struct StampRun {
    std::uint16_t length;  ///< pixels
    std::uint16_t size;    ///< place of its size in the census and 1, 0 for no stamp
};

/// Where the areas of one size have a corner: the sum of these, over all corners above and to the
/// left of a pixel, itself included, is 1 within the areas of that size and 0 elsewhere.
struct StampCorner {
    std::int32_t x;     ///< 0 to the image's width, included
    std::int32_t size;  ///< place of its size in the census
    float sign;         ///< 1 or -1
};

/// What one channel of a source holds.
class StampCensus {
  public:
    /// \param width, height  of the source
    /// \param channel  which is looked at
    /// \param channels  that are looked at in all, which share the memory
    StampCensus(const Splat& splat, std::int32_t width, std::int32_t height, std::int32_t channel,
                std::int32_t channels);

    /// Takes in the next stretch of a row, from the left. Stretches without lit blocks may be left
    /// out.
    /// \param row  its first pixel
    /// \throws std::bad_alloc
    void addStretch(const float* row, const LitBlocks& blocks);
    /// Ends a row, the rows being taken from the top.
    /// \param blocks  of the whole row
    /// \throws std::bad_alloc
    void endRow(const LitBlocks& blocks);

    double stamps() const { return stamps_; }
    double texels() const { return texels_; }
    /// Texels of the stamps at the starts of runs of equal size.
    double runTexels() const { return runTexels_; }
    /// The same of one row each.
    std::int32_t largestReachOfRow(std::int32_t y) const {
        return rowReaches_[static_cast<std::size_t>(y)];
    }
    double texelsOfRow(std::int32_t y) const { return rowTexels_[static_cast<std::size_t>(y)]; }
    double runTexelsOfRow(std::int32_t y) const {
        return rowRunTexels_[static_cast<std::size_t>(y)];
    }
    float largestScale() const { return largestScale_; }
    std::int32_t largestReach() const { return largestReach_; }

    /// Whether the stamps of all sizes fit the cache.
    bool hasSizes() const { return hasSizes_ && stampsFit(); }
    const std::vector<StampSize>& sizes() const { return sizes_; }
    /// Floats that the stamps of all sizes take.
    std::size_t stampFloats() const { return stampFloats_; }
    double stampTexels() const { return stampTexels_; }
    /// Place of a value's size, -1 when it makes no stamp. The value was in the source.
    std::int32_t sizeOf(float value) const;

    /// Whether runs of a size's place and of a length, 1 to `simd::kMostCopies`, recur so often
    /// that their stamps are worth being summed once. Longer runs count as several.
    bool isRecurring(std::int32_t place, std::int32_t length) const {
        return length > 1 && runCounts_[runIndex(place, length)] >= kFewestRecurring;
    }
    /// Whether a size's place makes up more than one run.
    bool isShared(std::int32_t place) const;
    /// Floats that the sums of all recurring runs take, and whether they are few enough.
    std::size_t runSumFloats() const { return runSumFloats_; }
    bool hasRunSums() const;
    /// Texels that need not be added when these sums are.
    double sparedTexels() const { return sparedTexels_; }

    /// Whether there are few enough corners, that is large enough areas, to keep them; they are
    /// complete after the last row.
    bool hasCorners() const { return hasSizes() && hasCorners_; }
    double corners() const { return static_cast<double>(corners_.size()); }
    double cornerTexels() const { return cornerTexels_; }
    /// Corners of a row, 0 to height, included.
    const StampCorner* cornersBegin(std::int32_t y) const;
    const StampCorner* cornersEnd(std::int32_t y) const;

    /// Whether there are few enough runs to keep them.
    bool hasRuns() const { return hasRuns_; }
    /// Calls visit(x, length, place of the size) for the runs of a row, from the left.
    template <typename Visit>
    void forEachRun(std::int32_t y, Visit visit) const {
        const StampRun* const end = runs_.data() + runRows_[static_cast<std::size_t>(y) + 1];
        std::int32_t x = 0;
        for (const StampRun* run = runs_.data() + runRows_[static_cast<std::size_t>(y)]; run != end;
             ++run) {
            if (run->size != 0) visit(x, std::int32_t{run->length}, std::int32_t{run->size} - 1);
            x += run->length;
        }
    }
    /// The size at a place that a run names.
    StampSize sizeAt(std::int32_t place) const { return sizes_[static_cast<std::size_t>(place)]; }

    /// Give back what a form does not need.
    void dropCorners();
    void dropRuns();
    void dropSizes();

  private:
    struct Slot {
        std::uint32_t key;
        std::int32_t place;
    };
    /// Where a run begins in the row that is taken in, those without a stamp included. The next one
    /// ends it.
    struct Mark {
        std::int32_t x;
        std::uint32_t key;        ///< of the size, see `StampKeyOf`
        std::int32_t place = -1;  ///< of its size while there are sizes, -1 for no stamp
    };

    static constexpr std::int32_t kFewestRecurring = 16;

    static std::size_t runIndex(std::int32_t place, std::int32_t length) {
        return static_cast<std::size_t>(place + 1) * (simd::kMostCopies + 1) +
               static_cast<std::size_t>(length);
    }
    std::size_t slotOf(std::uint32_t key) const;
    std::int32_t placeOf(std::uint32_t key);
    bool stampsFit() const;
    void mark(std::int32_t x, std::uint32_t key, std::int32_t place);
    void keepRuns();
    void sumRecurring();
    void addRowOfCorners(const LitBlocks& blocks);
    void addCorners();
    void addCornersOfBlock(std::int32_t begin);

    const Splat& splat_;
    std::int32_t width_;
    std::int32_t height_;
    std::int32_t channel_;
    std::size_t mostCorners_;
    std::size_t mostRuns_;
    double stamps_ = 0.0;
    double texels_ = 0.0;
    double runTexels_ = 0.0;
    double cornerTexels_ = 0.0;
    double stampTexels_ = 0.0;
    double sparedTexels_ = 0.0;
    float largestScale_ = 0.0f;
    std::int32_t largestReach_ = 0;
    std::size_t stampFloats_ = 0;
    std::size_t runSumFloats_ = 0;
    bool hasSizes_ = true;
    bool hasCorners_ = true;
    bool hasRuns_ = true;
    std::int32_t rows_ = 0;
    std::int32_t blocksEnd_ = 0;  ///< right of the row's last lit block
    std::vector<Mark> marks_;     ///< the first is that of column 0, the last one is open
    std::size_t lastMark_ = 0;
    std::vector<std::int32_t> rowReaches_;
    std::vector<double> rowTexels_;
    std::vector<double> rowRunTexels_;
    std::vector<Slot> slots_;
    std::vector<StampSize> sizes_;
    std::vector<std::int32_t> runCounts_;  ///< of no stamp and of each size, by length
    std::vector<std::int32_t> above_;      ///< places of the row before, -1 for no stamp
    std::vector<std::int32_t> row_;
    std::vector<std::uint8_t> blocksAbove_;
    std::vector<std::uint8_t> blocks_;
    bool litAbove_ = false;  ///< whether any block of the row before is flagged
    std::vector<StampCorner> corners_;
    std::vector<std::size_t> cornerRows_{0};
    std::vector<StampRun> runs_;
    std::vector<std::size_t> runRows_{0};
};

/// Memory that the stamps of one channel may take together.
inline constexpr std::size_t kMostStampBytes = std::size_t{8} << 20;

/// The same of the sums of its recurring runs. More of them would not stay in a processor's cache,
/// and adding them would take longer than adding the stamps.
inline constexpr std::size_t kMostRunBytes = std::size_t{2} << 20;

inline bool StampCensus::hasRunSums() const {
    return hasSizes() && runSumFloats_ <= kMostRunBytes / sizeof(float);
}

inline bool StampCensus::stampsFit() const {
    return stampFloats_ <= kMostStampBytes / sizeof(float);
}

}  // namespace vireon
