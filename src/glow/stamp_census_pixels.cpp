#include "glow/stamp_census_pixels.h"

#include <algorithm>
#include <bit>

#include "glow/stamp_texels_pixels.h"
#include "simd/kernel_table.h"

namespace vireon {
namespace {

constexpr int kSlotBits = 13;
constexpr std::size_t kSlots = std::size_t{1} << kSlotBits;
constexpr std::size_t kMostSizes = kSlots / 2;
constexpr std::int32_t kNoStamp = -1;

}  // namespace

std::size_t LightBlocks(std::int32_t width) {
    return static_cast<std::size_t>(width / kLightBlock) + 1;
}

void FindLights(const simd::KernelTable& kernels, const FloatImage& source, std::int32_t y,
                const Splat& splat, const ChannelFlags& channels,
                std::vector<std::uint8_t>& blocks) {
    std::int32_t chosen[kChannels];
    for (std::int32_t c = 0; c < kChannels; ++c) chosen[c] = channels.enabled[c] ? -1 : 0;
    std::fill(blocks.begin(), blocks.end(), std::uint8_t{0});
    std::ptrdiff_t x = 0;
    for (;;) {
        x = kernels.stamps.nextLight(source.row(y), x, source.width, splat.radius, chosen);
        if (x >= source.width) return;
        const std::ptrdiff_t block = x / kLightBlock;
        blocks[static_cast<std::size_t>(block)] = 1;
        x = (block + 1) * kLightBlock;
        if (x >= source.width) return;
    }
}

StampCensus::StampCensus(const Splat& splat, std::int32_t width, std::int32_t height)
    : splat_(splat),
      width_(width),
      height_(height),
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
    hasSizes_ = false;
    slots_ = {};
    sizes_ = {};
    above_ = {};
    row_ = {};
    dropCorners();
    dropLights();
}

void StampCensus::dropCorners() {
    hasCorners_ = false;
    corners_ = {};
}

void StampCensus::dropLights() {
    hasLights_ = false;
    lights_ = {};
}

void StampCensus::addRow(const float* pixels, const std::vector<std::uint8_t>& blocks) {
    float lastValue = 0.0f;
    StampSize size{0.0f, 0};
    std::int32_t place = kNoStamp;
    for (std::size_t block = 0; block < blocks.size(); ++block) {
        if (blocks[block] == 0) {
            lastValue = 0.0f;
            size = {0.0f, 0};
            place = kNoStamp;
            continue;
        }
        const std::int32_t begin = static_cast<std::int32_t>(block) * kLightBlock;
        const std::int32_t end = std::min(begin + kLightBlock, width_);
        for (std::int32_t x = begin; x < end; ++x) {
            const float value = pixels[static_cast<std::ptrdiff_t>(x) * kChannels];
            if (value != lastValue) {  // NaN never equals and makes no stamp
                const StampSize before = size;
                lastValue = value;
                size = StampSizeOf(value, splat_);
                place = kNoStamp;
                if (size.reach != 0) {
                    if (before.reach == 0 || before.scale != size.scale) {
                        runTexels_ += size.texels();
                    }
                    largestScale_ = std::max(largestScale_, size.scale);
                    largestReach_ = std::max(largestReach_, size.reach);
                    if (hasSizes_) place = placeOf(size);
                }
            }
            if (hasSizes_) row_[static_cast<std::size_t>(x)] = place;
            if (size.reach == 0) continue;
            stamps_ += 1.0;
            texels_ += size.texels();
            if (!hasSizes_ || !hasLights_) continue;
            if (lights_.size() == mostKept_) {
                dropLights();
            } else {
                lights_.push_back({x, place});
            }
        }
    }
    ++rows_;
    if (!hasSizes_) return;
    if (hasLights_) lightRows_.push_back(lights_.size());
    std::copy(blocks.begin(), blocks.end(), blocks_.begin());
    addCorners();
    if (rows_ == height_) addCorners();
}

// Of the row against the one above; leaves a row without stamps.
void StampCensus::addCorners() {
    if (hasCorners_) {
        for (std::size_t block = 0; block < blocks_.size(); ++block) {
            const bool here = blocks_[block] != 0 || blocksAbove_[block] != 0;
            // The first pixel of a block ends what the block before it holds.
            const bool before =
                block > 0 && (blocks_[block - 1] != 0 || blocksAbove_[block - 1] != 0);
            if (here || before) addCornersOfBlock(static_cast<std::int32_t>(block) * kLightBlock);
        }
        if (corners_.size() > mostKept_) dropCorners();
    }
    if (hasCorners_) cornerRows_.push_back(corners_.size());
    above_.swap(row_);
    blocksAbove_.swap(blocks_);
    std::fill(row_.begin(), row_.end(), kNoStamp);
    std::fill(blocks_.begin(), blocks_.end(), std::uint8_t{0});
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
const StampLight* StampCensus::lightsBegin(std::int32_t y) const {
    return lights_.data() + lightRows_[static_cast<std::size_t>(y)];
}
const StampLight* StampCensus::lightsEnd(std::int32_t y) const {
    return lights_.data() + lightRows_[static_cast<std::size_t>(y) + 1];
}

}  // namespace vireon
