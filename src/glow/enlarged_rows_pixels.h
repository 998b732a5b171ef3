#pragma once

#include <cstdint>
#include <vector>

#include "image/float_image.h"

namespace vireon {

namespace simd {
struct KernelTable;
}

/// Weights of one direction of an enlargement by nearest samples that a tent filter then smooths:
/// output position i = sum over t of weight(i, t) x source position first[i] + t, divided by
/// `divisor`. The weights are whole numbers.
struct EnlargementTaps {
    std::int32_t count = 0;           ///< taps of every position
    double divisor = 1.0;             ///< sum of every position's weights
    std::vector<std::int32_t> first;  ///< a position's first source position
    std::vector<double> weights;      ///< `count` a position; 0 where a position needs fewer
};

/// \param size  positions of the output
/// \param sourceSize  positions of the source, at least 1
/// \param radius  of the tent in output positions; 0 for none. It is clamped as the tent filter
///        clamps it, and a line that it cannot smooth has one tap a position.
/// \throws std::bad_alloc
EnlargementTaps MakeEnlargementTaps(std::int32_t size, std::int32_t sourceSize,
                                    std::int32_t radius);

/// Gives the rows of a smoothed enlargement from top to bottom: what `ExpandNearest` and the tent
/// filter make, all channels alike, without ever holding more than a few rows. Each value is
/// rounded once, from a sum in double precision.
class EnlargedRows {
  public:
    /// \param source  reduced image whose values are all finite; must outlive this object
    /// \param radius  of the tent in output pixels; 0 for none
    /// \throws std::bad_alloc
    EnlargedRows(const simd::KernelTable& kernels, const FloatImage& source, std::int32_t width,
                 std::int32_t height, std::int32_t radius);

    /// Makes the rows from `y` on readable.
    /// \return how many, at least 1: those that are made of the same source rows
    std::int32_t prepare(std::int32_t y);

    /// Writes `pixels` pixels from (x, y) on to `to`; row `y` must be prepared.
    void read(std::int32_t x, std::int32_t y, std::int32_t pixels, float* to);

    /// How many rows from `y` on are made of the same source rows, at least 1.
    std::int32_t alike(std::int32_t y) const;

    /// No colour of row `y`, prepared or not, is larger.
    float colourLimit(std::int32_t y);

    /// The larger of `largest` and every colour of a prepared row.
    float largestColour(std::int32_t y, float largest) const;

  private:
    struct ExpandedRow {
        std::int32_t sourceRow = -1;
        bool isZero = false;
        std::vector<double> values;
    };
    const double* weightsOf(std::int32_t y) const;
    const ExpandedRow& expanded(std::int32_t sourceRow);

    const simd::KernelTable& kernels_;
    FloatImage source_;
    std::int32_t width_;
    std::int32_t height_;
    EnlargementTaps across_;
    EnlargementTaps down_;
    double factor_;
    std::vector<ExpandedRow> ring_;
    std::vector<const double*> rows_;  ///< the prepared rows' sources, a tap each
    std::vector<const double*> at_;    ///< the same from one column on
    std::vector<float> sourceLimits_;  ///< largest colour of every source row, once asked for
    bool allZero_ = false;
};

}  // namespace vireon
