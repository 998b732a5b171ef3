#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "glow/stamp_cache_pixels.h"
#include "glow/stamp_census_pixels.h"

namespace vireon {

/// Size of the tiles by which a band knows where it holds anything.
inline constexpr std::int32_t kTileColumns = 64;
inline constexpr std::int32_t kTileRows = 8;

/// Tiles side by side that hold so many columns.
inline constexpr std::int32_t TilesAcross(std::int32_t width) {
    return (width + kTileColumns - 1) / kTileColumns;
}
/// Tiles above each other that hold so many rows.
inline constexpr std::int32_t TilesDown(std::int32_t rows) {
    return (rows + kTileRows - 1) / kTileRows;
}

/// Rows of these tiles.
inline constexpr std::int32_t WholeTiles(std::int32_t rows) {
    return TilesDown(rows) * kTileRows;
}

/// Tiles of a band; the ends lie behind the last.
struct TileRange {
    std::int32_t firstRow = 0;
    std::int32_t endRow = 0;
    std::int32_t firstColumn = 0;
    std::int32_t endColumn = 0;

    bool contains(const TileRange& other) const {
        return firstRow <= other.firstRow && other.endRow <= endRow &&
               firstColumn <= other.firstColumn && other.endColumn <= endColumn;
    }
};

/// Some rows of one channel of the glow while stamps are added to them, in a plane in which the
/// rows of the image lie round and round. Bands follow each other from the top.
///
/// Either stamps are cut off below a band, and the source rows that reach further are looked at
/// again for the next one. Or bands slide: each source row is looked at once, as soon as the band
/// takes in all rows that it reaches upwards, and what it adds below the band stays in the plane.
struct GlowBand {
    float* values = nullptr;
    std::ptrdiff_t stride = 0;   ///< floats from row to row, a multiple of `simd::kPlaneBlock`
    std::int32_t planeRows = 0;  ///< a multiple of `kTileRows`
    std::int32_t width = 0;
    bool slides = false;
    std::int32_t firstRow = 0;  ///< of the image, a multiple of `kTileRows`
    std::int32_t rows = 0;
    std::int32_t endRow = 0;  ///< of the image: stamps may be added from `firstRow` to above it
    /// For each tile of the plane, row by row: 1 when anything may have been added to it, else 0.
    std::uint8_t* tiles = nullptr;
    /// Flagged last: stamps near each other mostly touch the same tiles. Rows are the band's.
    TileRange touched;

    /// Turns to the rows from one on, which were 0 or were added to as rows below the last band.
    void start(std::int32_t first, std::int32_t most, std::int32_t imageHeight);
    /// Where row y, `firstRow` to above `endRow`, lies in the plane.
    std::int32_t planeRow(std::int32_t y) const {
        const std::int32_t place = firstPlaneRow_ + (y - firstRow);
        return place < planeRows ? place : place - planeRows;
    }
    float* row(std::int32_t y) const { return values + planeRow(y) * stride; }
    std::uint8_t* tileRow(std::int32_t y) const {
        return tiles + planeRow(y) / kTileRows * TilesAcross(width);
    }
    /// Flags the tiles of rows, first to before the last, and of columns that may lie outside it.
    void touch(std::int32_t firstTouched, std::int32_t lastTouched, std::int32_t left,
               std::int32_t right) {
        const TileRange range{
            (firstTouched - firstRow) / kTileRows, (lastTouched - 1 - firstRow) / kTileRows + 1,
            std::max(left, 0) / kTileColumns, TilesAcross(std::min(right, width))};
        if (!touched.contains(range)) flag(range);
    }

  private:
    void flag(const TileRange& range);

    std::int32_t firstPlaneRow_ = 0;
};

/// Floats from row to row of a plane of a width; no multiple of a page, so that the rows of a stamp
/// do not push each other out of the cache.
std::ptrdiff_t PlaneStride(std::int32_t width);

/// The same of a band, where stamps follow each other closely: rows near each other also lie apart
/// within a page, for processors take a load for dependent on a store at the same place of another
/// page.
std::ptrdiff_t BandStride(std::int32_t width);

/// What the forms work on. All of it outlives them.
struct StampSource {
    const simd::KernelTable& kernels;
    const FloatImage& image;
    std::int32_t channel;
    const Splat& splat;
    const StampCensus& census;
};

/// Cost of a texel that is evaluated, in units of one that is added from a stamp in the cache.
inline constexpr double kEvaluateCost = 10.0;

/// A form that fills the glow band by band from the top, each band in steps.
class BandForm {
  public:
    virtual ~BandForm() = default;
    virtual std::int32_t steps(const GlowBand& band) const = 0;
    /// The work of a step, in a unit of the form's own.
    virtual double work(const GlowBand& band, std::int32_t index) const = 0;
    /// Steps 0 to steps - 1 of a band that starts as zeros, or as what the bands above have left in
    /// it where they slide, in order.
    /// \throws std::bad_alloc
    virtual void step(GlowBand& band, std::int32_t index) = 0;
};

/// How a form goes through the stamps of a cache.
struct CacheUse {
    std::int32_t bandRows;  ///< rows of a band, at most
    bool slides;            ///< whether bands slide
    bool sumsRuns;          ///< whether the stamps of recurring runs are summed once
};

/// Every size's stamp is evaluated once and added pixel by pixel in the source's order, which gives
/// the bits of `SplatRow`. Where runs are summed each is added as one, which gives other bits and
/// no more roundings. Needs the census's sizes, and its sums of runs for these; refers to the
/// cache.
/// \throws std::bad_alloc
std::unique_ptr<BandForm> MakeCacheForm(const StampSource& source, StampCache& cache,
                                        const CacheUse& use);

/// Every run of equal stamps is evaluated row by row and added in the source's order, which gives
/// the bits of `SplatRow`.
std::unique_ptr<BandForm> MakeDirectForm(const StampSource& source);

/// Adds the stamps of the corners of areas of equal size and integrates them along both axes.
/// Texels are rounded to a fixed step that makes all sums exact in double precision, in any order;
/// each value is rounded to float once. Needs the census's corners and `RunsAreExact`.
std::unique_ptr<BandForm> MakeRunsForm(const StampSource& source);

/// Whether the texels are of a size that sums can be kept exact with.
bool RunsAreExact(const Splat& splat);

}  // namespace vireon
