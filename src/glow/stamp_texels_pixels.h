#pragma once

#include <cstdint>
#include <vector>

#include "glow/stamp_geometry_pixels.h"

namespace vireon {

namespace simd {
struct KernelTable;
}

/// Evaluates stamps row by row, texels already weighted, in the arithmetic of `SplatRow`: what the
/// plain definition adds to a pixel, but for the sign of a zero.
class StampTexels {
  public:
    /// Refers to both and to the splat's kernel.
    /// \throws std::bad_alloc
    StampTexels(const simd::KernelTable& kernels, const Splat& splat);

    /// Turns to the stamps of one size, and to their columns `first` to `last` from the centre.
    void select(StampSize size, std::int32_t first, std::int32_t last);

    /// Evaluates the row at `dy` from the centre; `out` gets last - first + 1 texels.
    /// \return false when the whole row is 0, of which nothing is written
    bool row(std::int32_t dy, float* out);

  private:
    const simd::KernelTable& kernels_;
    const Splat& splat_;
    StampAxis down_;
    std::vector<float> emptyRow_;
    std::vector<float> blended_;
    std::vector<std::int32_t> left_;
    std::vector<std::int32_t> right_;
    std::vector<float> fractions_;
};

/// Texels of one stamp size as the kernels of the convolution read them: the box that holds all
/// texels other than 0, rows parted by zeros.
struct StampBox {
    const float* texels = nullptr;  ///< the box's first texel
    std::ptrdiff_t stride = 0;      ///< floats from row to row
    std::int32_t firstRow = 0;      ///< from the stamp's centre
    std::int32_t rows = 0;          ///< 0 when every texel is 0
    std::int32_t firstColumn = 0;   ///< from the stamp's centre
    std::int32_t columns = 0;
};

/// Floats that a stamp of a size takes with its margins.
std::size_t StampFloats(StampSize size);

/// Evaluates a whole stamp into `memory` of `StampFloats`.
StampBox MakeStamp(StampTexels& texels, StampSize size, float* memory);

/// Floats that the sum of stamps of a size at so many neighbouring columns takes with its margins.
std::size_t RunFloats(StampSize size, std::int32_t copies);

/// Adds up a stamp at so many neighbouring columns, 1 to `simd::kMostCopies`, into `memory` of
/// `RunFloats`. Each sum is rounded once. The box's columns are counted from the centre of
/// the leftmost.
StampBox SumRun(const simd::KernelTable& kernels, const StampBox& stamp, std::int32_t copies,
                float* memory);

}  // namespace vireon
