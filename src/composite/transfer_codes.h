#pragma once

#include <cstdint>

namespace vireon {

/// Transfer-mode codes in the host's numbering, as far as the image code names them.
inline constexpr std::int32_t kTransferBehind = 1;
inline constexpr std::int32_t kTransferNormal = 2;
inline constexpr std::int32_t kTransferDissolve = 3;
inline constexpr std::int32_t kTransferAdd = 4;
inline constexpr std::int32_t kTransferMultiply = 5;
inline constexpr std::int32_t kTransferScreen = 6;
inline constexpr std::int32_t kTransferOverlay = 7;
inline constexpr std::int32_t kTransferSoftLight = 8;
inline constexpr std::int32_t kTransferHardLight = 9;
inline constexpr std::int32_t kTransferDarken = 10;
inline constexpr std::int32_t kTransferLighten = 11;
inline constexpr std::int32_t kTransferDifference = 12;
inline constexpr std::int32_t kTransferHue = 13;
inline constexpr std::int32_t kTransferSaturation = 14;
inline constexpr std::int32_t kTransferColor = 15;
inline constexpr std::int32_t kTransferLuminosity = 16;
inline constexpr std::int32_t kTransferColorDodge = 23;
inline constexpr std::int32_t kTransferColorBurn = 24;
inline constexpr std::int32_t kTransferExclusion = 25;

/// The host's variants of alpha and premultiplied compositing.
inline constexpr std::int32_t kTransferFirstAlphaVariant = 17;
inline constexpr std::int32_t kTransferLastAlphaVariant = 22;
inline constexpr std::int32_t kTransferLighterColor = 35;

}  // namespace vireon
