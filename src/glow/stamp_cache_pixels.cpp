#include "glow/stamp_cache_pixels.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace vireon {

std::int32_t StampCache::add(StampSize size) {
    const auto next = static_cast<std::int32_t>(sizes_.size());
    const auto [found, isNew] = places_.try_emplace(std::bit_cast<std::uint32_t>(size.scale), next);
    if (isNew) {
        sizes_.push_back(size);
        boxes_.emplace_back();
        floats_ += StampFloats(size);
    }
    return found->second;
}

const StampBox& StampCache::make(std::size_t place) {
    if (!memory_) memory_ = std::make_unique_for_overwrite<float[]>(floats_);
    float* const memory = memory_.get() + used_;
    const std::size_t floats = StampFloats(sizes_[place]);
    boxes_[place] = MakeStamp(texels_, sizes_[place], memory);
    used_ += floats;
    if (step_ == 0.0) return boxes_[place];
    for (float* texel = memory; texel != memory + floats; ++texel) {
        *texel = static_cast<float>(std::nearbyint(static_cast<double>(*texel) / step_) * step_);
    }
    return boxes_[place];
}

StampBox StampCache::passingStamp(StampSize size) {
    const std::size_t floats = StampFloats(size);
    if (passing_.size() < floats) passing_.resize(floats);
    return MakeStamp(texels_, size, passing_.data());
}

StampBox StampCache::makeRun(std::int32_t place, std::int32_t copies) {
    if (!runMemory_) runMemory_ = std::make_unique_for_overwrite<float[]>(runFloats_);
    const StampBox run = SumRun(kernels_, stamp(place), copies, runMemory_.get() + runsUsed_);
    runsUsed_ += RunFloats(sizes_[static_cast<std::size_t>(place)], copies);
    return run;
}

}  // namespace vireon
