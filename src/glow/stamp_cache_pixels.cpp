#include "glow/stamp_cache_pixels.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace vireon {

std::vector<std::int32_t> StampCache::add(const std::vector<StampSize>& sizes) {
    std::vector<std::int32_t> places;
    places.reserve(sizes.size());
    for (const StampSize size : sizes) {
        const auto next = static_cast<std::int32_t>(sizes_.size());
        const auto [found, isNew] =
            places_.try_emplace(std::bit_cast<std::uint32_t>(size.scale), next);
        places.push_back(found->second);
        if (!isNew) continue;
        sizes_.push_back(size);
        floats_ += StampFloats(size);
    }
    boxes_.resize(sizes_.size());
    return places;
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
