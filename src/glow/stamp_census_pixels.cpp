#include "glow/stamp_census_pixels.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "glow/stamp_texels_pixels.h"
#include "simd/kernel_table.h"

namespace vireon {
namespace {

constexpr int kSlotBits = 13;
constexpr std::size_t kSlots = std::size_t{1} << kSlotBits;
constexpr std::size_t kMostSizes = kSlots / 2;
constexpr std::int32_t kNoStamp = -1;

// Corners are dropped once there are some and their stamps have this share of all texels.
constexpr std::size_t kFewCorners = 2048;
constexpr double kMostCornerTexels = 0.5;

}  // namespace

using simd::kLightBlock;

std::size_t LightBlocks(std::int32_t width) {
    return static_cast<std::size_t>(width / kLightBlock) + 1;
}

LitBlocks::LitBlocks(std::int32_t width) : flags(LightBlocks(width), 0) {
    places.reserve(flags.size());
}

void FindLights(const simd::KernelTable& kernels, const FloatImage& source, std::int32_t y,
                const Splat& splat, const ChannelFlags& channels, LitBlocks& blocks) {
    std::int32_t chosen[kChannels];
    for (std::int32_t c = 0; c < kChannels; ++c) chosen[c] = channels.enabled[c] ? -1 : 0;
    kernels.stamps.flagLights(source.row(y), source.width, splat.radius, chosen,
                              blocks.flags.data());
    blocks.places.clear();
    // Most are dark: eight at a look.
    const std::size_t count = blocks.flags.size();
    for (std::size_t first = 0; first < count; first += sizeof(std::uint64_t)) {
        std::uint64_t flags = 0;
        const std::size_t some = std::min(count - first, sizeof flags);
        std::memcpy(&flags, blocks.flags.data() + first, some);
        if (flags == 0) continue;
        for (std::size_t i = first; i < first + some; ++i) {
            if (blocks.flags[i] != 0) blocks.places.push_back(static_cast<std::int32_t>(i));
        }
    }
}

StampCensus::StampCensus(const Splat& splat, std::int32_t width, std::int32_t height,
                         std::int32_t channel)
    : splat_(splat),
      width_(width),
      height_(height),
      channel_(channel),
      // Both lists of all channels together stay below one float a pixel.
      mostKept_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) / 32 + 64),
      slots_(kSlots, Slot{0, kNoStamp}),
      above_(static_cast<std::size_t>(width), kNoStamp),
      row_(static_cast<std::size_t>(width), kNoStamp),
      blocksAbove_(LightBlocks(width), 0),
      blocks_(LightBlocks(width), 0) {}

std::size_t StampCensus::slotOf(float scale) const {
    const auto bits = std::bit_cast<std::uint32_t>(scale);
    std::size_t slot = (bits * 2654435769u) >> (32 - kSlotBits);
    while (slots_[slot].place != kNoStamp && slots_[slot].scaleBits != bits) {
        slot = (slot + 1) % kSlots;
    }
    return slot;
}

std::int32_t StampCensus::sizeOf(float value) const {
    const StampSize size = StampSizeOf(value, splat_);
    return size.reach == 0 ? kNoStamp : slots_[slotOf(size.scale)].place;
}

std::int32_t StampCensus::placeOf(StampSize size) {
    Slot& slot = slots_[slotOf(size.scale)];
    if (slot.place != kNoStamp) return slot.place;
    stampFloats_ += StampFloats(size);
    if (sizes_.size() == kMostSizes || stampFloats_ * sizeof(float) > kMostStampBytes) {
        dropSizes();
        return kNoStamp;
    }
    stampTexels_ += size.texels();
    slot = {std::bit_cast<std::uint32_t>(size.scale), static_cast<std::int32_t>(sizes_.size())};
    sizes_.push_back(size);
    return slot.place;
}

void StampCensus::dropSizes() {
    for (StampRun& run : runs_) run.size = std::bit_cast<std::int32_t>(sizeOf(run).scale);
    hasSizes_ = false;
    slots_ = {};
    sizes_ = {};
    dropCorners();
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

void StampCensus::addRow(const float* row, const LitBlocks& blocks) {
    const float* const values = row + channel_;
    const int flag = 1 << channel_;
    float lastValue = 0.0f;
    StampSize size{0.0f, 0};
    StampRun run{0, 0, kNoStamp};
    const double texelsAbove = texels_;
    const double runTexelsAbove = runTexels_;
    rowReach_ = 0;
    std::int32_t x = 0;
    for (const std::int32_t block : blocks.places) {
        if ((blocks.flags[static_cast<std::size_t>(block)] & flag) == 0) continue;
        const std::int32_t begin = block * kLightBlock;
        if (size.reach != 0 && begin != x) {
            run.length = x - run.x;
            endRun(run, size);
            size = {0.0f, 0};
        }
        if (begin != x) lastValue = 0.0f;
        const std::int32_t end = std::min(begin + kLightBlock, width_);
        for (x = begin; x < end; ++x) {
            const float value = values[static_cast<std::ptrdiff_t>(x) * kChannels];
            if (value == lastValue) continue;  // NaN never equals and makes no stamp
            lastValue = value;
            const StampSize next = StampSizeOf(value, splat_);
            if (next.reach == size.reach && (next.reach == 0 || next.scale == size.scale)) continue;
            if (size.reach != 0) {
                run.length = x - run.x;
                endRun(run, size);
            }
            size = next;
            if (size.reach != 0) run = {x, 0, hasSizes_ ? placeOf(size) : kNoStamp};
        }
    }
    if (size.reach != 0) {
        run.length = x - run.x;
        endRun(run, size);
    }
    ++rows_;
    rowReaches_.push_back(rowReach_);
    rowTexels_.push_back(texels_ - texelsAbove);
    rowRunTexels_.push_back(runTexels_ - runTexelsAbove);
    if (hasRuns_) runRows_.push_back(runs_.size());
    if (hasCorners_) addRowOfCorners(blocks);
}

void StampCensus::addRowOfCorners(const LitBlocks& blocks) {
    if (blocks.places.empty() && !litAbove_ && rows_ < height_) {
        // Dark upon dark has no corners.
        cornerRows_.push_back(corners_.size());
        return;
    }
    litAbove_ = !blocks.places.empty();
    std::copy(blocks.flags.begin(), blocks.flags.end(), blocks_.begin());
    addCorners();
    if (hasCorners_ && rows_ == height_) addCorners();
}

void StampCensus::endRun(StampRun& run, StampSize size) {
    const double texels = size.texels();
    stamps_ += run.length;
    texels_ += run.length * texels;
    runTexels_ += texels;
    largestScale_ = std::max(largestScale_, size.scale);
    largestReach_ = std::max(largestReach_, size.reach);
    rowReach_ = std::max(rowReach_, size.reach);
    if (hasCorners_) std::fill_n(row_.begin() + run.x, run.length, run.size);
    if (!hasSizes_) run.size = std::bit_cast<std::int32_t>(size.scale);
    if (!hasRuns_) return;
    if (runs_.size() == mostKept_) {
        dropRuns();
    } else {
        runs_.push_back(run);
    }
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
    if (corners_.size() > mostKept_ || small) {
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
StampSize StampCensus::sizeOf(const StampRun& run) const {
    if (hasSizes_) return sizes_[static_cast<std::size_t>(run.size)];
    const auto scale = std::bit_cast<float>(run.size);
    const std::int32_t limit = splat_.maxRadius;
    if (scale >= static_cast<float>(limit)) return {scale, limit};
    return {scale, static_cast<std::int32_t>(scale) + 1};
}

const StampRun* StampCensus::runsBegin(std::int32_t y) const {
    return runs_.data() + runRows_[static_cast<std::size_t>(y)];
}
const StampRun* StampCensus::runsEnd(std::int32_t y) const {
    return runs_.data() + runRows_[static_cast<std::size_t>(y) + 1];
}

}  // namespace vireon
