#pragma once

#include <cstddef>
#include <cstdint>

namespace vireon::simd {

/// Zero texels before the first row of a stamp, between its rows and after the last one: what the
/// kernels may read beyond a row's ends.
inline constexpr std::int32_t kStampMargin = 16;

/// Floats that the rows of a plane are a multiple of, so that whole vectors may be written up to
/// the row's end.
inline constexpr std::int32_t kPlaneBlock = 16;

/// The same texels added at this many neighbouring columns, at most.
inline constexpr std::int32_t kMostCopies = 8;

/// Pixels that are looked at together, to pass over dark ones.
inline constexpr std::int32_t kLightBlock = 16;

/// Where a stamp meets a plane of one channel. The plane's rows are a multiple of `kPlaneBlock`
/// long and what lies right of `width` is nobody's; the stamp's rows are parted by `kStampMargin`.
struct StampSpan {
    float* plane;                ///< column 0 of the first row that the stamp touches
    std::ptrdiff_t planeStride;  ///< floats from row to row
    const float* texels;         ///< first texel of the first row that is added
    std::ptrdiff_t texelStride;  ///< floats from row to row
    std::int32_t rows;           ///< rows to add
    std::int32_t wrappedRows;    ///< of these, the last, that lie `wrap` floats before their place
    std::ptrdiff_t wrap;         ///< for planes whose rows lie round and round
    std::int32_t left;           ///< column of the first texel, may lie outside the plane
    std::int32_t columns;        ///< texels a row
    std::int32_t width;          ///< columns of the plane; texels beyond it are left out
};

struct StampKernels {
    /// For every `kLightBlock` pixels of a row, and for the rest of it, be it none: bit c is set
    /// when a float of channel c that is chosen, times `radius`, is at least 1. \param chosen  four
    /// masks, all bits set for a channel that counts \param flags  pixels / kLightBlock + 1
    void (*flagLights)(const float* row, std::ptrdiff_t pixels, float radius,
                       const std::int32_t* chosen, std::uint8_t* flags);

    /// Which floats of some blocks of `kLightBlock` pixels of a row differ from the same channel of
    /// the pixel before, NaN from anything: bit 4 i + c of a block's word for channel c of its pixel
    /// i. The row's first pixel differs. \param pixels  of the row, at whose end a block may end
    /// \param places  of the blocks, 0 for the row's first \param changes  one word a block
    void (*flagChanges)(const float* row, std::ptrdiff_t pixels, const std::int32_t* places,
                        std::ptrdiff_t blocks, std::uint64_t* changes);

    /// Adds the stamp at `left`, then at the column right of it, and so on: 1 to
    /// `kMostCopies` of it, texel by texel in that order.
    void (*addCopies)(const StampSpan& span, std::int32_t copies);

    /// out[i] = texels[i] + texels[i - 1] + ..., as many as `copies`, 1 to `kMostCopies`: what the
    /// same row adds at neighbouring columns. Summed in double precision and rounded once. The
    /// row lies between `kStampMargin` zeros; up to seven floats behind `out` may be written.
    void (*sumCopies)(const float* texels, std::int32_t copies, float* out, std::ptrdiff_t columns);

    /// Adds A + p (B + p C), A being the span's texels and B and C planes of the same layout.
    void (*addQuadratic)(const StampSpan& span, const float* linear, const float* square, float p);

    /// out[i] = (1 - fraction) top[i] + fraction bottom[i].
    void (*blendRows)(const float* top, const float* bottom, float fraction, float* out,
                      std::ptrdiff_t texels);
    /// out[i] = ((1 - f) row[left[i]] + f row[right[i]]) weight, f = fractions[i].
    void (*sampleRow)(const float* row, const std::int32_t* left, const std::int32_t* right,
                      const float* fractions, float weight, float* out, std::ptrdiff_t texels);
    /// The same of the row that `blendRows` would make.
    void (*sampleRows)(const float* top, const float* bottom, float fraction,
                       const std::int32_t* left, const std::int32_t* right, const float* fractions,
                       float weight, float* out, std::ptrdiff_t texels);

    /// sums[i] += factor x texels[i] in double precision.
    void (*addToSums)(const float* texels, double factor, double* sums, std::ptrdiff_t columns);

    /// Writes pixels from four planes and leaves the planes 0; a null plane is 0.
    /// \param streams  passes the caches by where the pixels lie at a multiple of 16 bytes, for
    ///        pictures that do not fit them
    void (*writePixels)(float* const* planes, float* pixels, std::ptrdiff_t count, bool streams);
    /// Writes pixels that are 0.
    void (*clearPixels)(float* pixels, std::ptrdiff_t count, bool streams);
    /// Lets other threads see what was streamed.
    void (*endStreams)();
};

}  // namespace vireon::simd
