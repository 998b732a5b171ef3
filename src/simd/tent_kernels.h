#pragma once

#include <cstddef>
#include <cstdint>

namespace vireon::simd {

/// One line pass of the tent filter over pixels of four floats. Source and destination must not
/// overlap; row bytes may be negative.
struct TentPass {
    const float* source;
    float* destination;
    std::ptrdiff_t sourceRowBytes;
    std::ptrdiff_t destinationRowBytes;
    std::int32_t width;
    std::int32_t height;
    std::int32_t radius;  ///< pixels, 1 or more, already clamped to the length of the lines
    bool channels[4];     ///< which floats of a pixel are written
    /// Rows that the memory holds, the height or less: row y lies in the place of row y modulo
    /// these.
    std::int32_t sourceRows;
    std::int32_t destinationRows;
};

/// Rows that the pass along the columns of `TentBoth` goes down at once.
inline constexpr std::int32_t kTentBand = 8;

/// Both passes in place, the one along the columns as few rows behind the other as it can be.
struct TentBoth {
    TentPass alongRows;     ///< from the image to the rows between; takes all channels
    TentPass alongColumns;  ///< from the rows between to the image
    double* columns;        ///< 2 doubles for each float of a row
};

struct TentKernels {
    void (*alongRows)(const TentPass& pass);
    void (*alongColumns)(const TentPass& pass);
    /// The memory between holds 2 (alongColumns.radius + 1) + kTentBand rows or the whole height.
    void (*both)(const TentBoth& passes);
};

}  // namespace vireon::simd
