#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "glow/stamp_texels_pixels.h"
#include "simd/stamp_kernels.h"

namespace vireon {

/// Stamps of some sizes, each evaluated when it is first asked for. Channels whose values are alike
/// share one cache, so that less of it has to stay in the processor's.
class StampCache {
  public:
    /// Refers to both.
    /// \throws std::bad_alloc
    StampCache(const simd::KernelTable& kernels, const Splat& splat)
        : kernels_(kernels), texels_(kernels, splat) {}

    /// Takes in a size, if it is new. All sizes come before the first stamp is asked for.
    /// \return its place in the cache, one after the other from 0 for new ones
    /// \throws std::bad_alloc
    std::int32_t add(StampSize size);

    /// The stamp at a place; stays where it is as long as the cache does.
    /// \throws std::bad_alloc
    const StampBox& stamp(std::int32_t place) {
        const StampBox& box = boxes_[static_cast<std::size_t>(place)];
        return box.stride != 0 ? box : make(static_cast<std::size_t>(place));
    }

    /// A stamp that is not kept, where it lies until the next one is asked for.
    /// \throws std::bad_alloc
    StampBox passingStamp(StampSize size);

    /// Makes room for the runs that a channel will ask for, before the first one.
    void reserveRuns(std::size_t floats) { runFloats_ += floats; }

    /// The sum of the stamp at a place at so many neighbouring columns, 2 to `simd::kMostCopies`;
    /// see `SumRun`. Stays where it is as long as the cache does. Goes with texels that are not
    /// rounded.
    /// \throws std::bad_alloc
    const StampBox& run(std::int32_t place, std::int32_t copies) {
        const std::size_t index = static_cast<std::size_t>(place) * simd::kMostCopies +
                                  static_cast<std::size_t>(copies - 1);
        if (runs_.empty()) runs_.resize(sizes_.size() * simd::kMostCopies);
        const StampBox& box = runs_[index];
        return box.stride != 0 ? box : runs_[index] = makeRun(place, copies);
    }

    /// Rounds the texels of stamps that are made from now on to multiples of a power of two.
    void setStep(double step) { step_ = step; }

  private:
    const StampBox& make(std::size_t place);
    StampBox makeRun(std::int32_t place, std::int32_t copies);

    const simd::KernelTable& kernels_;
    StampTexels texels_;
    std::unordered_map<std::uint32_t, std::int32_t> places_;  ///< by the bits of the scale
    std::vector<StampSize> sizes_;
    std::vector<StampBox> boxes_;  ///< of a stride of 0 until they are made
    std::size_t floats_ = 0;
    std::unique_ptr<float[]> memory_;
    std::size_t used_ = 0;
    std::vector<StampBox> runs_;  ///< of each place and length, of a stride of 0 until it is made
    std::size_t runFloats_ = 0;
    std::unique_ptr<float[]> runMemory_;
    std::size_t runsUsed_ = 0;
    std::vector<float> passing_;
    double step_ = 0.0;
};

}  // namespace vireon
