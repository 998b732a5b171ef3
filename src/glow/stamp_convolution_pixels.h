#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "glow/convolution_report.h"
#include "glow/stamp_bands_pixels.h"
#include "glow/stamp_census_pixels.h"
#include "glow/stamp_ranges_pixels.h"

namespace vireon {

/// The general splat of a whole image in parts. It looks at the source first and chooses for each
/// channel how its stamps are added; the choice depends on pixels and settings alone.
///
/// Besides tables of constant size, and `kMostStampBytes` of stamps and `kMostRunBytes` of sums of
/// them a channel, it takes at most one float a pixel, of `kTileRows` rows at least.
class StampConvolution {
  public:
    /// Source and destination are float images of the same size that do not overlap. Refers to the
    /// kernels and to the splat.
    /// \param forced  the form of every channel that has stamps, where it can be had
    StampConvolution(const simd::KernelTable& kernels, const FloatImage& source,
                     const FloatImage& destination, const Splat& splat,
                     const ChannelFlags& channels,
                     std::optional<ConvolutionForm> forced = std::nullopt);

    StampConvolution(const StampConvolution&) = delete;
    StampConvolution& operator=(const StampConvolution&) = delete;
    /// Clears what was not written.
    ~StampConvolution();

    /// Does the work up to a share of the whole, from 0 to 1, at which the destination is complete.
    /// \throws std::bad_alloc
    void advance(double share);

    /// Complete once the source has been looked at.
    const ConvolutionReport& report() const { return report_; }

  private:
    struct ChannelWork {
        std::unique_ptr<StampCensus> census;
        std::unique_ptr<BandForm> form;
        std::vector<float> plane;
        std::vector<std::uint8_t> tiles;
        GlowBand band;
        double unitCost = 0.0;  ///< of a unit of the form's work, or of all ranges
    };

    /// Tiles side by side that hold something, or that hold nothing.
    struct TileStretch {
        std::int32_t firstColumn;
        std::int32_t columns;
        bool holds[kChannels];
        bool isEmpty() const { return !holds[0] && !holds[1] && !holds[2] && !holds[3]; }
    };

    StampSource sourceOf(std::int32_t channel) const;
    void takeCensus(std::int32_t endRow);
    void chooseForms();
    ConvolutionForm choose(const StampCensus& census) const;
    double costOf(const StampCensus& census, ConvolutionForm form) const;
    std::int32_t shapeBands(std::ptrdiff_t stride);
    void startForms();
    void workOnBands();
    void workOnRanges();
    void startBand(std::int32_t firstRow);
    void writeBand();
    void writeTiles(std::int32_t firstRow, std::int32_t rows);
    void clearFrom(std::int32_t firstRow);

    const simd::KernelTable& kernels_;
    FloatImage source_;
    FloatImage destination_;
    const Splat& splat_;
    ChannelFlags channels_;
    std::optional<ConvolutionForm> forced_;
    ConvolutionReport report_;
    std::optional<StampCache> cache_;
    ChannelWork work_[kChannels];
    LitBlocks blocks_;
    std::int32_t censusRow_ = 0;
    bool runsAreExact_ = false;
    double totalCost_ = 0.0;
    double doneCost_ = 0.0;
    bool bandsDone_ = false;
    bool rangesDone_ = false;
    std::int32_t bandRow_ = 0;
    std::int32_t bandRows_ = 0;
    bool slides_ = false;
    std::int32_t channel_ = 0;
    std::int32_t step_ = 0;
    double writeCost_ = 0.0;
    bool streams_ = false;
    std::vector<TileStretch> stretches_;
    std::int32_t writtenRows_ = 0;
    std::unique_ptr<RangesForm> ranges_;
};

}  // namespace vireon
