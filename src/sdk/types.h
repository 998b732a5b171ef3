/// @file
/// Scalar types, geometry and pixels of the host interface.
/// Everything is naturally aligned; booleans are one byte, enumerations 32-bit words.
#pragma once

#include <cstdint>

#include "sdk/layout.h"

namespace vireon::sdk {

/// Result of every callback and of the entry point; 0 is success.
using PF_Err = std::int32_t;
/// One-byte truth value, in records and as an argument.
using PF_Boolean = std::int8_t;
/// Signed 16.16 fixed point.
using PF_Fixed = std::int32_t;
/// Opaque reference to the effect instance.
using PF_ProgPtr = void*;
/// Block of host memory: points to the address of its bytes.
using PF_Handle = void**;
/// Identity of a mask path; 0 is none.
using PF_PathID = std::uint32_t;

/// Four-character code as host applications are named: the first character is the most significant.
constexpr std::int32_t HostCode(const char (&text)[5]) {
    std::uint32_t code = 0;
    for (int i = 0; i < 4; ++i) {
        code = code << 8 | static_cast<unsigned char>(text[i]);
    }
    return static_cast<std::int32_t>(code);
}

/// Four-character code as pixel formats are named: the first character is the least significant.
constexpr std::int32_t PixelFormatCode(const char (&text)[5]) {
    std::uint32_t code = 0;
    for (int i = 3; i >= 0; --i) {
        code = code << 8 | static_cast<unsigned char>(text[i]);
    }
    return static_cast<std::int32_t>(code);
}

/// Version of the effect interface that the host speaks.
struct PF_SpecVersion {
    std::int16_t major;
    std::int16_t minor;
};
VIREON_SDK_RECORD(PF_SpecVersion, 4, 2);
VIREON_SDK_FIELD(PF_SpecVersion, major, 0);
VIREON_SDK_FIELD(PF_SpecVersion, minor, 2);

/// Old 16-bit point, vertical first.
struct PF_LegacyPoint {
    std::int16_t v;
    std::int16_t h;
};
VIREON_SDK_RECORD(PF_LegacyPoint, 4, 2);
VIREON_SDK_FIELD(PF_LegacyPoint, v, 0);
VIREON_SDK_FIELD(PF_LegacyPoint, h, 2);

/// Old 16-bit rectangle: top first, and no host record holds one any more.
struct PF_LegacyRect {
    std::int16_t top;
    std::int16_t left;
    std::int16_t bottom;
    std::int16_t right;
};
VIREON_SDK_RECORD(PF_LegacyRect, 8, 2);
VIREON_SDK_FIELD(PF_LegacyRect, top, 0);
VIREON_SDK_FIELD(PF_LegacyRect, left, 2);
VIREON_SDK_FIELD(PF_LegacyRect, bottom, 4);
VIREON_SDK_FIELD(PF_LegacyRect, right, 6);

/// Integer point, horizontal first.
struct PF_Point {
    std::int32_t h;
    std::int32_t v;
};
VIREON_SDK_RECORD(PF_Point, 8, 4);
VIREON_SDK_FIELD(PF_Point, h, 0);
VIREON_SDK_FIELD(PF_Point, v, 4);

/// Rectangle; left and top are inside, right and bottom are outside.
struct PF_LRect {
    std::int32_t left;
    std::int32_t top;
    std::int32_t right;
    std::int32_t bottom;
};
VIREON_SDK_RECORD(PF_LRect, 16, 4);
VIREON_SDK_FIELD(PF_LRect, left, 0);
VIREON_SDK_FIELD(PF_LRect, top, 4);
VIREON_SDK_FIELD(PF_LRect, right, 8);
VIREON_SDK_FIELD(PF_LRect, bottom, 12);
using PF_Rect = PF_LRect;

/// A factor num / den. Some hosts leave den at 0: test before dividing.
struct PF_RationalScale {
    std::int32_t num;
    std::uint32_t den;  ///< unsigned, may be 0
};
VIREON_SDK_RECORD(PF_RationalScale, 8, 4);
VIREON_SDK_FIELD(PF_RationalScale, num, 0);
VIREON_SDK_FIELD(PF_RationalScale, den, 4);

/// Point in 16.16 fixed point.
struct PF_FixedPoint {
    PF_Fixed x;
    PF_Fixed y;
};
VIREON_SDK_RECORD(PF_FixedPoint, 8, 4);
VIREON_SDK_FIELD(PF_FixedPoint, x, 0);
VIREON_SDK_FIELD(PF_FixedPoint, y, 4);

/// Rectangle in 16.16 fixed point.
struct PF_FixedRect {
    PF_Fixed left;
    PF_Fixed top;
    PF_Fixed right;
    PF_Fixed bottom;
};
VIREON_SDK_RECORD(PF_FixedRect, 16, 4);
VIREON_SDK_FIELD(PF_FixedRect, left, 0);
VIREON_SDK_FIELD(PF_FixedRect, top, 4);
VIREON_SDK_FIELD(PF_FixedRect, right, 8);
VIREON_SDK_FIELD(PF_FixedRect, bottom, 12);

/// 3 x 3 matrix in 16.16 fixed point.
struct PF_Matrix {
    std::int32_t mat[3][3];
};
VIREON_SDK_RECORD(PF_Matrix, 36, 4);
VIREON_SDK_FIELD(PF_Matrix, mat, 0);

/// 3 x 3 matrix of doubles, row by row.
struct PF_FloatMatrix {
    double mat[3][3];
};
VIREON_SDK_RECORD(PF_FloatMatrix, 72, 8);
VIREON_SDK_FIELD(PF_FloatMatrix, mat, 0);

/// 8-bit pixel, 0 to 255, straight colour.
struct PF_Pixel {
    std::uint8_t alpha;  ///< alpha lies first in memory
    std::uint8_t red;
    std::uint8_t green;
    std::uint8_t blue;
};
VIREON_SDK_RECORD(PF_Pixel, 4, 1);
VIREON_SDK_FIELD(PF_Pixel, alpha, 0);
VIREON_SDK_FIELD(PF_Pixel, red, 1);
VIREON_SDK_FIELD(PF_Pixel, green, 2);
VIREON_SDK_FIELD(PF_Pixel, blue, 3);
using PF_Pixel8 = PF_Pixel;

/// 16-bit pixel, 0 to 32768 (PF_MAX_CHAN16), straight colour.
struct PF_Pixel16 {
    std::uint16_t alpha;
    std::uint16_t red;
    std::uint16_t green;
    std::uint16_t blue;
};
VIREON_SDK_RECORD(PF_Pixel16, 8, 2);
VIREON_SDK_FIELD(PF_Pixel16, alpha, 0);
VIREON_SDK_FIELD(PF_Pixel16, red, 2);
VIREON_SDK_FIELD(PF_Pixel16, green, 4);
VIREON_SDK_FIELD(PF_Pixel16, blue, 6);

/// Float pixel; white is 1, values outside 0 to 1 are legal.
struct PF_PixelFloat {
    float alpha;
    float red;
    float green;
    float blue;
};
VIREON_SDK_RECORD(PF_PixelFloat, 16, 4);
VIREON_SDK_FIELD(PF_PixelFloat, alpha, 0);
VIREON_SDK_FIELD(PF_PixelFloat, red, 4);
VIREON_SDK_FIELD(PF_PixelFloat, green, 8);
VIREON_SDK_FIELD(PF_PixelFloat, blue, 12);
using PF_Pixel32 = PF_PixelFloat;

/// A time of value / scale seconds.
struct A_Time {
    std::int32_t value;
    std::uint32_t scale;  ///< units a second
};
VIREON_SDK_RECORD(A_Time, 8, 4);
VIREON_SDK_FIELD(A_Time, value, 0);
VIREON_SDK_FIELD(A_Time, scale, 4);

/// A plain ratio.
struct A_Ratio {
    std::int32_t num;
    std::uint32_t den;
};
VIREON_SDK_RECORD(A_Ratio, 8, 4);
VIREON_SDK_FIELD(A_Ratio, num, 0);
VIREON_SDK_FIELD(A_Ratio, den, 4);

/// Point in doubles.
struct A_FloatPoint {
    double x;
    double y;
};
VIREON_SDK_RECORD(A_FloatPoint, 16, 8);
VIREON_SDK_FIELD(A_FloatPoint, x, 0);
VIREON_SDK_FIELD(A_FloatPoint, y, 8);

/// Point in space, in doubles.
struct A_FloatPoint3 {
    double x;
    double y;
    double z;
};
VIREON_SDK_RECORD(A_FloatPoint3, 24, 8);
VIREON_SDK_FIELD(A_FloatPoint3, x, 0);
VIREON_SDK_FIELD(A_FloatPoint3, y, 8);
VIREON_SDK_FIELD(A_FloatPoint3, z, 16);

/// Integer point of the general host headers.
struct A_LPoint {
    std::int32_t x;
    std::int32_t y;
};
VIREON_SDK_RECORD(A_LPoint, 8, 4);
VIREON_SDK_FIELD(A_LPoint, x, 0);
VIREON_SDK_FIELD(A_LPoint, y, 4);

}  // namespace vireon::sdk
