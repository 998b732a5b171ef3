#include "glow/stamp_census_pixels.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <numeric>

#include "glow/stamp_texels_pixels.h"
#include "simd/kernel_table.h"

namespace vireon {
namespace {

constexpr int kSlotBits = 13;
constexpr std::size_t kSlots = std::size_t{1} << kSlotBits;
constexpr std::size_t kMostSizes = kSlots / 2;
static_assert(kMostSizes <= std::numeric_limits<std::uint16_t>::max());
constexpr std::int32_t kNoStamp = -1;
constexpr std::int32_t kEmpty = -2;  // of a slot

// Corners are dropped once there are some and their stamps have this share of all texels.
constexpr std::size_t kFewCorners = 2048;
constexpr double kMostCornerTexels = 0.5;

}  // namespace

using simd::kLightBlock;
using simd::kMostCopies;

std::size_t LightBlocks(std::int32_t width) {
    return static_cast<std::size_t>(width / kLightBlock) + 1;
}

LitBlocks::LitBlocks(std::int32_t width, const ChannelFlags& channels)
    : flags(LightBlocks(width), 0), changes(LightBlocks(kStretchPixels)) {
    for (std::int32_t c = 0; c < kChannels; ++c) chosen[c] = channels.enabled[c] ? -1 : 0;
    places.reserve(changes.size());
}

void FindLights(const simd::KernelTable& kernels, const FloatImage& source, std::int32_t y,
                std::int32_t begin, const Splat& splat, LitBlocks& blocks) {
    const std::int32_t pixels = std::min(kStretchPixels, source.width - begin);
    const auto first = static_cast<std::size_t>(begin / kLightBlock);
    kernels.stamps.flagLights(source.pixel(begin, y), pixels, splat.radius, blocks.chosen,
                              blocks.flags.data() + first);
    blocks.places.clear();
    // Most are dark: eight at a look.
    const std::size_t end = first + LightBlocks(pixels);
    for (std::size_t eight = first; eight < end; eight += sizeof(std::uint64_t)) {
        std::uint64_t flags = 0;
        const std::size_t some = std::min(end - eight, sizeof flags);
        std::memcpy(&flags, blocks.flags.data() + eight, some);
        if (flags == 0) continue;
        for (std::size_t i = eight; i < eight + some; ++i) {
            if (blocks.flags[i] != 0) blocks.places.push_back(static_cast<std::int32_t>(i));
        }
    }
    blocks.any = !blocks.places.empty() || (begin > 0 && blocks.any);
    kernels.stamps.flagChanges(source.row(y), source.width, blocks.places.data(),
                               static_cast<std::ptrdiff_t>(blocks.places.size()),
                               blocks.changes.data());
}

StampCensus::StampCensus(const Splat& splat, std::int32_t width, std::int32_t height,
                         std::int32_t channel, std::int32_t channels)
    : splat_(splat),
      width_(width),
      height_(height),
      channel_(channel),
      // Both lists of all channels together stay below one float a pixel.
      mostCorners_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) / 64 + 64),
      mostRuns_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3 / 5 /
                    static_cast<std::size_t>(channels) +
                64),
      // The first mark of a row, one a pixel and one right of the last.
      marks_(static_cast<std::size_t>(width) + 2),
      slots_(kSlots, Slot{0, kEmpty}),
      runCounts_(runIndex(0, 0), 0),
      above_(static_cast<std::size_t>(width), kNoStamp),
      row_(static_cast<std::size_t>(width), kNoStamp),
      blocksAbove_(LightBlocks(width), 0),
      blocks_(LightBlocks(width), 0) {
    slots_[slotOf(0)] = {0, kNoStamp};
    if (width > std::numeric_limits<decltype(StampRun::length)>::max()) dropRuns();
    if (hasRuns_) runs_.reserve(mostRuns_);
}

std::size_t StampCensus::slotOf(std::uint32_t key) const {
    std::size_t slot = (key * 2654435769u) >> (32 - kSlotBits);
    while (slots_[slot].key != key && slots_[slot].place != kEmpty) slot = (slot + 1) % kSlots;
    return slot;
}

std::int32_t StampCensus::sizeOf(float value) const {
    return slots_[slotOf(StampKeyOf(value, splat_))].place;
}

std::int32_t StampCensus::placeOf(std::uint32_t key) {
    Slot& slot = slots_[slotOf(key)];
    if (slot.place != kEmpty) return slot.place;
    const StampSize size = StampSizeOfKey(key, splat_);
    stampFloats_ += StampFloats(size);
    if (sizes_.size() == kMostSizes) {
        dropSizes();
        return kNoStamp;
    }
    if (!stampsFit()) dropCorners();
    stampTexels_ += size.texels();
    slot = {key, static_cast<std::int32_t>(sizes_.size())};
    sizes_.push_back(size);
    runCounts_.resize(runIndex(static_cast<std::int32_t>(sizes_.size()), 0));
    return slot.place;
}

void StampCensus::dropSizes() {
    hasSizes_ = false;
    slots_ = {};
    sizes_ = {};
    runCounts_ = {};
    dropCorners();
    dropRuns();
}

void StampCensus::dropCorners() {
    hasCorners_ = false;
    corners_ = {};
    above_ = {};
    row_ = {};
}

void StampCensus::dropRuns() {
    hasRuns_ = false;
    runs_ = {};
}

void StampCensus::addStretch(const float* row, const LitBlocks& blocks) {
    constexpr std::uint64_t kOneChannel = 0x1111111111111111;
    const float* const values = row + channel_;
    for (std::size_t i = 0; i < blocks.places.size(); ++i) {
        const std::int32_t block = blocks.places[i];
        if ((blocks.flags[static_cast<std::size_t>(block)] >> channel_ & 1) == 0) continue;
        const std::int32_t begin = block * kLightBlock;
        if (begin != blocksEnd_) mark(blocksEnd_, 0, kNoStamp);
        blocksEnd_ = std::min(begin + kLightBlock, width_);
        // What equals a pixel without a stamp has none either, be that one of another block.
        std::uint64_t changes = blocks.changes[i] >> channel_ & kOneChannel;
        for (; changes != 0; changes &= changes - 1) {
            const std::int32_t x = begin + std::countr_zero(changes) / kChannels;
            const std::uint32_t key =
                StampKeyOf(values[static_cast<std::ptrdiff_t>(x) * kChannels], splat_);
            mark(x, key, hasSizes_ ? placeOf(key) : kNoStamp);
        }
    }
}

// Values that make no stamp, or stamps of the largest size, differ without ending a run.
void StampCensus::mark(std::int32_t x, std::uint32_t key, std::int32_t place) {
    const bool isNew = marks_[lastMark_].key != key;
    lastMark_ += isNew ? 1 : 0;
    Mark& last = marks_[lastMark_];
    last = {isNew ? x : last.x, key, place};
}

void StampCensus::endRow(const LitBlocks& blocks) {
    mark(blocksEnd_, 0, kNoStamp);
    blocksEnd_ = 0;
    std::int64_t stamps = 0;
    double texels = 0.0;
    double runTexels = 0.0;
    std::int32_t largestReach = 0;
    for (std::size_t i = 0; i < lastMark_; ++i) {
        const StampSize size = StampSizeOfKey(marks_[i].key, splat_);
        const std::int32_t length = size.reach != 0 ? marks_[i + 1].x - marks_[i].x : 0;
        const double texelsOfOne = size.reach != 0 ? size.texels() : 0.0;
        stamps += length;
        texels += length * texelsOfOne;
        runTexels += texelsOfOne;
        largestReach = std::max(largestReach, size.reach);
        largestScale_ = std::max(largestScale_, size.scale);
    }
    stamps_ += static_cast<double>(stamps);
    texels_ += texels;
    runTexels_ += runTexels;
    largestReach_ = std::max(largestReach_, largestReach);
    rowReaches_.push_back(largestReach);
    rowTexels_.push_back(texels);
    rowRunTexels_.push_back(runTexels);
    ++rows_;
    if (hasSizes_) keepRuns();
    if (hasCorners_) addRowOfCorners(blocks);
    if (hasSizes_ && rows_ == height_) sumRecurring();
    lastMark_ = 0;
}

void StampCensus::keepRuns() {
    if (hasRuns_ && runs_.size() + lastMark_ > mostRuns_) dropRuns();
    if (hasRuns_) runs_.resize(runs_.size() + lastMark_);
    StampRun* const kept = hasRuns_ ? runs_.data() + runs_.size() - lastMark_ : nullptr;
    for (std::size_t i = 0; i < lastMark_; ++i) {
        const std::int32_t place = marks_[i].place;
        const std::int32_t length = marks_[i + 1].x - marks_[i].x;
        runCounts_[runIndex(place, length % kMostCopies)] += 1;
        runCounts_[runIndex(place, kMostCopies)] += length / kMostCopies;
        if (hasRuns_) {
            kept[i] = {static_cast<std::uint16_t>(length), static_cast<std::uint16_t>(place + 1)};
        }
    }
    if (hasRuns_) runRows_.push_back(runs_.size());
}

bool StampCensus::isShared(std::int32_t place) const {
    const auto counts = runCounts_.begin() + static_cast<std::ptrdiff_t>(runIndex(place, 0));
    return std::accumulate(counts, counts + kMostCopies, 0) > 1;
}

void StampCensus::sumRecurring() {
    for (std::int32_t place = 0; place < static_cast<std::int32_t>(sizes_.size()); ++place) {
        const StampSize size = sizeAt(place);
        for (std::int32_t length = 2; length <= kMostCopies; ++length) {
            if (!isRecurring(place, length)) continue;
            const double times = runCounts_[runIndex(place, length)];
            runSumFloats_ += RunFloats(size, length);
            sparedTexels_ += times * (length - 1) * size.texels();
        }
    }
}

void StampCensus::addRowOfCorners(const LitBlocks& blocks) {
    if (!blocks.any && !litAbove_ && rows_ < height_) {
        // Dark upon dark has no corners.
        cornerRows_.push_back(corners_.size());
        return;
    }
    litAbove_ = blocks.any;
    std::copy(blocks.flags.begin(), blocks.flags.end(), blocks_.begin());
    for (std::size_t i = 0; i < lastMark_; ++i) {
        std::fill(row_.begin() + marks_[i].x, row_.begin() + marks_[i + 1].x, marks_[i].place);
    }
    addCorners();
    if (hasCorners_ && rows_ == height_) addCorners();
}

// Of the row against the one above; leaves a row without stamps.
void StampCensus::addCorners() {
    const bool same = std::memcmp(row_.data(), above_.data(), row_.size() * sizeof(row_[0])) == 0;
    for (std::size_t block = 0; block < blocks_.size() && !same; ++block) {
        const bool here = blocks_[block] != 0 || blocksAbove_[block] != 0;
        // The first pixel of a block ends what the block before it holds.
        const bool before = block > 0 && (blocks_[block - 1] != 0 || blocksAbove_[block - 1] != 0);
        if (here || before) addCornersOfBlock(static_cast<std::int32_t>(block) * kLightBlock);
    }
    // Not worth it where the areas are small.
    const bool small = corners_.size() > kFewCorners && cornerTexels_ > kMostCornerTexels * texels_;
    if (corners_.size() > mostCorners_ || small) {
        dropCorners();
        return;
    }
    cornerRows_.push_back(corners_.size());
    above_.swap(row_);
    blocksAbove_.swap(blocks_);
    for (std::size_t block = 0; block < blocks_.size(); ++block) {
        if (blocks_[block] == 0) continue;
        blocks_[block] = 0;
        const std::int32_t begin = static_cast<std::int32_t>(block) * kLightBlock;
        std::fill_n(row_.begin() + begin, std::min(kLightBlock, width_ - begin), kNoStamp);
    }
}

void StampCensus::addCornersOfBlock(std::int32_t begin) {
    // One pixel right of the image belongs to its last block.
    const std::int32_t end = std::min(begin + kLightBlock, width_ + 1);
    std::int32_t left = begin > 0 ? row_[static_cast<std::size_t>(begin) - 1] : kNoStamp;
    std::int32_t aboveLeft = begin > 0 ? above_[static_cast<std::size_t>(begin) - 1] : kNoStamp;
    for (std::int32_t x = begin; x < end; ++x) {
        const auto i = static_cast<std::size_t>(x);
        std::int32_t here = x < width_ ? row_[i] : kNoStamp;
        std::int32_t above = x < width_ ? above_[i] : kNoStamp;
        const std::int32_t nextLeft = here;
        const std::int32_t nextAboveLeft = above;
        // Pairs of opposite sign cancel.
        if (here == left) {
            here = left = kNoStamp;
        } else if (here == above) {
            here = above = kNoStamp;
        }
        if (aboveLeft == left) {
            aboveLeft = left = kNoStamp;
        } else if (aboveLeft == above) {
            aboveLeft = above = kNoStamp;
        }
        const auto add = [&](std::int32_t place, float sign) {
            if (place == kNoStamp) return;
            corners_.push_back({x, place, sign});
            cornerTexels_ += sizes_[static_cast<std::size_t>(place)].texels();
        };
        add(here, 1.0f);
        add(left, -1.0f);
        add(above, -1.0f);
        add(aboveLeft, 1.0f);
        left = nextLeft;
        aboveLeft = nextAboveLeft;
    }
}

const StampCorner* StampCensus::cornersBegin(std::int32_t y) const {
    return corners_.data() + cornerRows_[static_cast<std::size_t>(y)];
}
const StampCorner* StampCensus::cornersEnd(std::int32_t y) const {
    return corners_.data() + cornerRows_[static_cast<std::size_t>(y) + 1];
}

}  // namespace vireon
