#pragma once

#include <array>
#include <cstdint>
#include <limits>

#include "tests/unit/support/picture.h"

namespace vireon::test {

/// Kinds of light that a stage may meet.
enum class LightData { kRandom, kFlat, kSparse, kHdr, kZeros, kInfinite, kNoNumber };

inline constexpr std::array kNumberLight = {LightData::kRandom, LightData::kFlat,
                                            LightData::kSparse, LightData::kHdr,
                                            LightData::kZeros,  LightData::kInfinite};
inline constexpr std::array kAllLight = {
    LightData::kRandom, LightData::kFlat,     LightData::kSparse,  LightData::kHdr,
    LightData::kZeros,  LightData::kInfinite, LightData::kNoNumber};

/// Fills a picture with one kind of light.
inline void FillWith(Picture& picture, LightData data, Random& random) {
    const float flat = random.real(0.0f, 1.0f);
    const auto rarely = [&] { return random.bits() % 23 == 0; };
    const auto value = [&]() -> float {
        switch (data) {
            case LightData::kRandom: return random.real(-0.5f, 2.0f);
            case LightData::kFlat: return flat;
            case LightData::kSparse: return rarely() ? random.real(0.0f, 4.0f) : 0.0f;
            case LightData::kHdr: {
                const float size = random.real(-4.0f, 4.0f);
                return size * size * size * (rarely() ? 1e30f : rarely() ? 1e-40f : 100.0f);
            }
            case LightData::kZeros:
                return rarely()                 ? 1.0f
                       : random.bits() % 3 == 0 ? -1.0f
                       : random.bits() % 2 == 0 ? 0.0f
                                                : -0.0f;
            case LightData::kInfinite:
                return rarely() ? (random.bits() % 2 == 0 ? 1.0f : -1.0f) *
                                      std::numeric_limits<float>::infinity()
                                : random.real(-1.0f, 1.0f);
            case LightData::kNoNumber:
                return rarely() ? std::numeric_limits<float>::quiet_NaN()
                                : random.real(-1.0f, 1.0f);
        }
        return 0.0f;
    };
    ForEachFloat(picture, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
        picture.at(x, y, c) = value();
    });
}

/// The pixels from (x, y) on of a picture.
inline FloatImage PartOf(Picture& picture, std::int32_t x, std::int32_t y, std::int32_t width,
                         std::int32_t height) {
    const FloatImage whole = picture.view();
    return {whole.pixel(x, y), width, height, whole.rowBytes};
}

}  // namespace vireon::test
