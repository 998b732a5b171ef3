#pragma once

#include <cstdint>

namespace vireon {

/// Pixel depth of a raster, as the host interface speaks of it. No other value is produced, and
/// operations that are given another one fail.
inline constexpr std::int32_t kDepth8 = 0;      ///< four bytes a pixel, 0 to 255
inline constexpr std::int32_t kDepth16 = 1;     ///< four 16-bit words a pixel, 0 to 32768
inline constexpr std::int32_t kDepthFloat = 4;  ///< four floats a pixel, 1.0 is white, no limits

/// Pixel-format code of a raster's layout record. Beside the depth it tells the channel order; see
/// `ChannelOrder` for the whole range of codes. These are the ones that occur.
inline constexpr std::int32_t kFormat8 = 0;        ///< 8 bits, alpha first
inline constexpr std::int32_t kFormat8Bgra = 1;    ///< 8 bits, blue first
inline constexpr std::int32_t kFormatWorld16 = 3;  ///< 16 bits, alpha first, a host world
inline constexpr std::int32_t kFormat16 = 7;       ///< 16 bits, alpha first, a memory raster
inline constexpr std::int32_t kFormatFloat = 9;    ///< 32-bit float, alpha first

/// White of the host's 16-bit pixels.
inline constexpr std::int32_t kWhite16 = 32768;

/// Bytes of one pixel of the given depth code, or 0 for a code that is no depth.
constexpr std::int32_t BytesPerPixel(std::int32_t depth) {
    switch (depth) {
        case kDepth8: return 4;
        case kDepth16: return 8;
        case kDepthFloat: return 16;
        default: return 0;
    }
}

/// Depth code of a layout's format code, or -1 for a format that no raster of ours has.
constexpr std::int32_t DepthOfFormat(std::int32_t formatCode) {
    switch (formatCode) {
        case kFormat8:
        case kFormat8Bgra: return kDepth8;
        case kFormatWorld16:
        case kFormat16: return kDepth16;
        case kFormatFloat: return kDepthFloat;
        default: return -1;
    }
}

/// Format code of a memory raster of the given depth, or -1 for a code that is no depth.
constexpr std::int32_t MemoryFormatOfDepth(std::int32_t depth) {
    switch (depth) {
        case kDepth8: return kFormat8;
        case kDepth16: return kFormat16;
        case kDepthFloat: return kFormatFloat;
        default: return -1;
    }
}

}  // namespace vireon
