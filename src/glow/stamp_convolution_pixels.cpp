#include "glow/stamp_convolution_pixels.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

#include "simd/kernel_table.h"

namespace vireon {
namespace {

// Of a band of one channel. Rows in work at a time are few, so that it need not stay in a cache;
// the larger it is, the fewer source rows are looked at for two bands.
constexpr std::ptrdiff_t kBandBytes = std::ptrdiff_t{1} << 20;

// Of the planes of all channels when bands slide: all of it is in work at a time, for one channel
// after the other, and has to stay in a cache.
constexpr std::ptrdiff_t kSlidingBytes = std::ptrdiff_t{3} << 19;

// Of a band that slides.
constexpr std::int32_t kSlidingRows = kTileRows;

// A picture that the caches of many processors do not hold: writing it past them spares reading it.
constexpr std::ptrdiff_t kStreamedBytes = std::ptrdiff_t{16} << 20;

// Looking at the source is done by this share of the whole.
constexpr double kCensusShare = 1.0 / 16.0;

// Costs in units of one texel that is added from a stamp in the cache, as `kEvaluateCost` is.
constexpr double kCornerTexelCost = 4.0;
constexpr double kIntegrateCost = 15.0;
constexpr double kQuadraticCost = 2.5;
constexpr double kCoefficientsCost = 60.0;
constexpr double kWriteCost = 10.0;
constexpr double kSparedCost = 0.35;
constexpr double kSumRunCost = 4.0;

// Below this many texels a pixel the sums of ranges have no fewer roundings than plain ones.
constexpr double kFewestTexelsOfRanges = 8.0;

}  // namespace

StampConvolution::StampConvolution(const simd::KernelTable& kernels, const FloatImage& source,
                                   const FloatImage& destination, const Splat& splat,
                                   const ChannelFlags& channels,
                                   std::optional<ConvolutionForm> forced)
    : kernels_(kernels),
      source_(source),
      destination_(destination),
      splat_(splat),
      channels_(channels),
      forced_(forced),
      cache_(std::in_place, kernels, splat),
      blocks_(source.width, channels),
      streams_(static_cast<std::ptrdiff_t>(destination.width) * destination.height * kChannels *
                   static_cast<std::ptrdiff_t>(sizeof(float)) >
               kStreamedBytes) {
    const auto enabled = static_cast<std::int32_t>(
        std::count(std::begin(channels.enabled), std::end(channels.enabled), true));
    for (std::int32_t c = 0; c < kChannels; ++c) {
        if (!channels_.enabled[c]) continue;
        work_[c].census =
            std::make_unique<StampCensus>(splat, source.width, source.height, c, enabled);
    }
}

StampConvolution::~StampConvolution() {
    clearFrom(writtenRows_);
}

StampSource StampConvolution::sourceOf(std::int32_t channel) const {
    return {kernels_, source_, channel, splat_, *work_[channel].census};
}

void StampConvolution::advance(double share) {
    const auto height = static_cast<double>(source_.height);
    const double looked = std::min(share / kCensusShare, 1.0);
    takeCensus(static_cast<std::int32_t>(std::ceil(looked * height)));
    if (censusRow_ < source_.height || share <= kCensusShare) return;
    const double target = totalCost_ * (share - kCensusShare) / (1.0 - kCensusShare);
    const bool all = share >= 1.0;
    while (!bandsDone_ && (all || doneCost_ < target)) workOnBands();
    while (bandsDone_ && !rangesDone_ && (all || doneCost_ < target)) workOnRanges();
}

void StampConvolution::takeCensus(std::int32_t endRow) {
    if (censusRow_ >= source_.height) return;
    for (; censusRow_ < endRow; ++censusRow_) {
        for (std::int32_t x = 0; x < source_.width; x += kStretchPixels) {
            FindLights(kernels_, source_, censusRow_, x, splat_, blocks_);
            if (blocks_.places.empty()) continue;
            for (ChannelWork& work : work_) {
                if (work.census) work.census->addStretch(source_.row(censusRow_), blocks_);
            }
        }
        for (ChannelWork& work : work_) {
            if (work.census) work.census->endRow(blocks_);
        }
    }
    if (censusRow_ == source_.height) {
        chooseForms();
        startForms();
    }
}

void StampConvolution::chooseForms() {
    runsAreExact_ = RunsAreExact(splat_);
    for (std::int32_t c = 0; c < kChannels; ++c) {
        if (!work_[c].census) continue;
        const StampCensus& census = *work_[c].census;
        ConvolutionReport::Channel& channel = report_.channels[c];
        channel.stamps = census.stamps();
        channel.texels = census.texels();
        channel.form = choose(census);
        if (channel.form == ConvolutionForm::kNone) work_[c].census.reset();
    }
}

ConvolutionForm StampConvolution::choose(const StampCensus& census) const {
    if (census.stamps() == 0.0) return ConvolutionForm::kNone;
    if (forced_ && std::isfinite(costOf(census, *forced_))) return *forced_;
    ConvolutionForm best = ConvolutionForm::kDirect;
    for (const ConvolutionForm form : {ConvolutionForm::kCache, ConvolutionForm::kRunCache,
                                       ConvolutionForm::kRuns, ConvolutionForm::kRanges}) {
        const double pixels = static_cast<double>(source_.width) * source_.height;
        if (form == ConvolutionForm::kRanges && census.texels() < kFewestTexelsOfRanges * pixels) {
            continue;
        }
        if (costOf(census, form) < costOf(census, best)) best = form;
    }
    return best;
}

// Infinite where a form cannot be had.
double StampConvolution::costOf(const StampCensus& census, ConvolutionForm form) const {
    constexpr double kNever = std::numeric_limits<double>::infinity();
    const double pixels = static_cast<double>(source_.width) * source_.height;
    switch (form) {
        case ConvolutionForm::kCache:
            if (!census.hasSizes()) return kNever;
            return census.texels() + kEvaluateCost * census.stampTexels();
        case ConvolutionForm::kRunCache:
            if (!census.hasRunSums()) return kNever;
            return costOf(census, ConvolutionForm::kCache) - kSparedCost * census.sparedTexels() +
                   kSumRunCost * static_cast<double>(census.runSumFloats());
        case ConvolutionForm::kDirect: return census.texels() + kEvaluateCost * census.runTexels();
        case ConvolutionForm::kRuns:
            if (!census.hasCorners() || !runsAreExact_) return kNever;
            return kCornerTexelCost * census.cornerTexels() + kEvaluateCost * census.stampTexels() +
                   kIntegrateCost * pixels;
        case ConvolutionForm::kRanges: {
            if (!runsAreExact_) return kNever;
            const double parts =
                std::ceil(census.stamps() / static_cast<double>(RangesForm::kMostRecords));
            const double ranges =
                std::min(parts * RangesForm::RangesUpTo(census.largestScale(), *splat_.kernel),
                         census.stamps());
            return kQuadraticCost * census.texels() +
                   kCoefficientsCost * census.texels() / census.stamps() * ranges;
        }
        default: return kNever;
    }
}

// Chooses whether bands slide and the rows of one. Returns the rows of its plane.
std::int32_t StampConvolution::shapeBands(std::ptrdiff_t stride) {
    const std::ptrdiff_t rowBytes = stride * static_cast<std::ptrdiff_t>(sizeof(float));
    const std::int32_t imageRows = WholeTiles(source_.height);
    std::int32_t reach = 0;
    std::ptrdiff_t planes = 0;
    for (std::int32_t c = 0; c < kChannels; ++c) {
        const ConvolutionForm form = report_.channels[c].form;
        if (form == ConvolutionForm::kNone || form == ConvolutionForm::kRanges) continue;
        ++planes;
        if (form == ConvolutionForm::kRuns) continue;
        reach = std::max(reach, work_[c].census->largestReach());
    }
    const std::int32_t slidingRows = WholeTiles(kSlidingRows + 2 * std::min(reach, imageRows));
    slides_ = slidingRows < imageRows && slidingRows * rowBytes * planes <= kSlidingBytes;
    if (slides_) {
        bandRows_ = kSlidingRows;
        return slidingRows;
    }
    bandRows_ = static_cast<std::int32_t>(std::clamp<std::ptrdiff_t>(
        kBandBytes / rowBytes / kTileRows * kTileRows, kTileRows, imageRows));
    return bandRows_;
}

void StampConvolution::startForms() {
    const double pixels = static_cast<double>(source_.width) * source_.height;
    const std::ptrdiff_t stride = BandStride(source_.width);
    const std::int32_t planeRows = shapeBands(stride);
    bool bands = false;
    for (std::int32_t c = 0; c < kChannels; ++c) {
        ChannelWork& work = work_[c];
        const ConvolutionForm form = report_.channels[c].form;
        if (form == ConvolutionForm::kNone) continue;
        const double cost = costOf(*work.census, form);
        totalCost_ += cost;
        if (form == ConvolutionForm::kRuns || form == ConvolutionForm::kRanges) {
            work.census->dropRuns();
        }
        if (form != ConvolutionForm::kRuns) work.census->dropCorners();
        switch (form) {
            case ConvolutionForm::kCache:
            case ConvolutionForm::kRunCache:
                work.form = MakeCacheForm(sourceOf(c), *cache_,
                                          {bandRows_, slides_, form == ConvolutionForm::kRunCache});
                break;
            case ConvolutionForm::kDirect: work.form = MakeDirectForm(sourceOf(c)); break;
            case ConvolutionForm::kRuns: work.form = MakeRunsForm(sourceOf(c)); break;
            default:
                work.census->dropSizes();
                work.unitCost = cost;
                continue;
        }
        bands = true;
        work.plane.resize(static_cast<std::size_t>(stride * planeRows));
        work.tiles.resize(static_cast<std::size_t>(TilesAcross(source_.width)) *
                          static_cast<std::size_t>(TilesDown(planeRows)));
        work.band.values = work.plane.data();
        work.band.tiles = work.tiles.data();
        work.band.stride = stride;
        work.band.planeRows = planeRows;
        work.band.width = source_.width;
        work.band.slides = slides_;
        double units = 0.0;
        for (std::int32_t y = 0; y < source_.height; y += bandRows_) {
            work.band.start(y, bandRows_, source_.height);
            const std::int32_t steps = work.form->steps(work.band);
            for (std::int32_t i = 0; i < steps; ++i) units += work.form->work(work.band, i);
        }
        work.unitCost = cost / units;
    }
    if (bands) {
        writeCost_ = kWriteCost * pixels * bandRows_ / source_.height;
        totalCost_ += kWriteCost * pixels;
        startBand(0);
    } else {
        bandsDone_ = true;
        clearFrom(0);
    }
}

void StampConvolution::startBand(std::int32_t firstRow) {
    bandRow_ = firstRow;
    channel_ = 0;
    step_ = 0;
    for (ChannelWork& work : work_) {
        if (work.form) work.band.start(firstRow, bandRows_, source_.height);
    }
}

void StampConvolution::workOnBands() {
    if (channel_ == kChannels) {
        writeBand();
        doneCost_ += writeCost_;
        if (bandRow_ + bandRows_ < source_.height) {
            startBand(bandRow_ + bandRows_);
            return;
        }
        bandsDone_ = true;
        channel_ = 0;
        for (ChannelWork& work : work_) {
            if (!work.form) continue;
            work.form.reset();
            work.plane = {};
            work.tiles = {};
        }
        cache_.reset();
        return;
    }
    ChannelWork& work = work_[channel_];
    if (!work.form || step_ == work.form->steps(work.band)) {
        ++channel_;
        step_ = 0;
        return;
    }
    doneCost_ += work.form->work(work.band, step_) * work.unitCost;
    work.form->step(work.band, step_++);
}

// Channels of other forms become 0. Leaves the planes 0.
void StampConvolution::writeBand() {
    const std::int32_t rows = std::min(bandRows_, source_.height - bandRow_);
    const std::int32_t across = TilesAcross(source_.width);
    for (std::int32_t row = 0; row < rows; row += kTileRows) {
        writeTiles(bandRow_ + row, std::min(kTileRows, rows - row));
        for (ChannelWork& work : work_) {
            if (work.form) std::fill_n(work.band.tileRow(bandRow_ + row), across, std::uint8_t{0});
        }
    }
    kernels_.stamps.endStreams();
    writtenRows_ = bandRow_ + rows;
}

void StampConvolution::writeTiles(std::int32_t firstRow, std::int32_t rows) {
    const std::int32_t width = destination_.width;
    stretches_.clear();
    for (std::int32_t column = 0; column < width; column += kTileColumns) {
        TileStretch next{column, std::min(kTileColumns, width - column), {}};
        for (std::int32_t c = 0; c < kChannels; ++c) {
            next.holds[c] =
                work_[c].form && work_[c].band.tileRow(firstRow)[column / kTileColumns] != 0;
        }
        if (stretches_.empty() || stretches_.back().isEmpty() != next.isEmpty()) {
            stretches_.push_back(next);
            continue;
        }
        TileStretch& last = stretches_.back();
        last.columns += next.columns;
        for (std::int32_t c = 0; c < kChannels; ++c) last.holds[c] |= next.holds[c];
    }
    for (std::int32_t y = firstRow; y < firstRow + rows; ++y) {
        for (const TileStretch& stretch : stretches_) {
            float* const pixels = destination_.pixel(stretch.firstColumn, y);
            if (stretch.isEmpty()) {
                kernels_.stamps.clearPixels(pixels, stretch.columns, streams_);
                continue;
            }
            float* planes[kChannels];
            for (std::int32_t c = 0; c < kChannels; ++c) {
                planes[c] = stretch.holds[c] ? work_[c].band.row(y) + stretch.firstColumn : nullptr;
            }
            kernels_.stamps.writePixels(planes, pixels, stretch.columns, streams_);
            if (stretch.firstColumn + stretch.columns < width) continue;
            // What vectors have left right of the picture.
            for (float* plane : planes) {
                if (plane == nullptr) continue;
                plane += stretch.columns;
                std::fill_n(plane, PlaneStride(width) - width, 0.0f);
            }
        }
    }
}

void StampConvolution::clearFrom(std::int32_t firstRow) {
    for (std::int32_t y = firstRow; y < destination_.height; ++y) {
        kernels_.stamps.clearPixels(destination_.row(y), destination_.width, streams_);
    }
    kernels_.stamps.endStreams();
    writtenRows_ = destination_.height;
}

void StampConvolution::workOnRanges() {
    if (!ranges_) {
        while (channel_ < kChannels &&
               report_.channels[channel_].form != ConvolutionForm::kRanges) {
            ++channel_;
        }
        if (channel_ == kChannels) {
            rangesDone_ = true;
            return;
        }
        ranges_ = std::make_unique<RangesForm>(sourceOf(channel_), destination_);
    }
    doneCost_ += ranges_->step() / ranges_->totalWork() * work_[channel_].unitCost;
    if (!ranges_->finished()) return;
    ranges_.reset();
    work_[channel_].census.reset();
    ++channel_;
}

}  // namespace vireon
