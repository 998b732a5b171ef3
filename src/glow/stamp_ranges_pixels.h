#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "glow/stamp_bands_pixels.h"

namespace vireon {

/// Stamps in order of their size instead of their place.
///
/// While no texel index changes, a texel of the stamp of scale s is a quadratic in q = 1 / s, for
/// it is bilinear in coordinates that are linear in q. Stamps within such a range of scales share
/// the three coefficients of every texel, made in double precision about a q0 within the range:
/// k = A + (q - q0) (B + (q - q0) C). Several stamps of one scale share that stamp; what is left is
/// evaluated by itself.
///
/// Sums run over parts: a plane takes some stamps, then it is added to the destination's channel
/// and starts anew, so that the roundings of a long sum stay below those of `SplatRow`.
class RangesForm {
  public:
    /// Takes a plane of the image's size, three stamps and `kMostRecords` records twice.
    /// \param destination  its channel is 0
    /// \throws std::bad_alloc
    RangesForm(const StampSource& source, const FloatImage& destination);

    bool finished() const { return finished_; }
    /// Does some work, texels that take about a millisecond at most unless a single stamp has more.
    /// \return how much was done of `totalWork`
    double step();
    /// In texels that are added; reading the source counts for some.
    double totalWork() const;

    /// Stamps that are ordered at a time.
    static constexpr std::size_t kMostRecords = std::size_t{1} << 17;

    /// About how many ranges the scales from 1 up to one fall into.
    static double RangesUpTo(float scale, const GlowKernel& kernel);

  private:
    struct Record {
        std::uint32_t scaleBits;
        std::uint32_t position;  ///< pixels from the first one of firstRow_
    };
    enum class Kind { kSingle, kShared, kQuadratic };

    double load();
    void sort();
    void chooseGroup();
    void makeQuadratic(double low, double high);
    double rangeEnd(float scale) const;
    StampSize sizeOf(const Record& record) const;
    void addSingle(std::int32_t x, std::int32_t y, StampSize size);
    void addShared(std::int32_t x, std::int32_t y, float scale);
    void touch(std::int32_t top, std::int32_t bottom);
    void flush();
    float* row(std::int32_t y);

    StampSource source_;
    FloatImage destination_;
    StampTexels texels_;
    std::ptrdiff_t stride_;
    std::vector<float> plane_;
    std::vector<float> stamps_;  ///< A, B and C
    std::vector<float> row_;
    std::vector<float> emptyRow_;
    std::vector<Record> records_;
    std::vector<Record> sorted_;
    std::int32_t firstRow_ = 0;
    std::int32_t nextRow_ = 0;
    std::size_t next_ = 0;
    std::size_t groupEnd_ = 0;
    Kind kind_ = Kind::kSingle;
    StampBox box_;
    std::ptrdiff_t planeFloats_ = 0;
    double centre_ = 0.0;
    std::int32_t touchedTop_;
    std::int32_t touchedBottom_ = 0;
    double texelsInPlane_ = 0.0;
    bool loading_ = false;
    bool finished_ = false;
};

}  // namespace vireon
