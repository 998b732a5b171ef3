#pragma once

#include <cstdint>

namespace vireon {

/// Four-character code as the host writes it in a word: first character in the highest byte.
constexpr std::int32_t FourCharacterCode(const char (&text)[5]) {
    std::uint32_t code = 0;
    for (int i = 0; i < 4; ++i) code = (code << 8) | static_cast<unsigned char>(text[i]);
    return static_cast<std::int32_t>(code);
}

inline constexpr std::int32_t kAfterEffects = FourCharacterCode("FXTC");
inline constexpr std::int32_t kPremierePro = FourCharacterCode("PrMr");
inline constexpr std::int32_t kFinalCutPro = FourCharacterCode("KeyG");
/// No behaviour of its own: named so that tests can play it.
inline constexpr std::int32_t kMotion = FourCharacterCode("MOTN");
/// Marks 16-bit worlds by the world's own flag.
inline constexpr std::int32_t kCbst = FourCharacterCode("Cbst");

}  // namespace vireon
