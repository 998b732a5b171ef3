#pragma once

#include <cstdint>

namespace vireon::tool {

/// A letter is 5 x 7 dots and takes a cell of 6 x 9.
inline constexpr int kLetterWidth = 5;
inline constexpr int kLetterHeight = 7;
inline constexpr int kLetterAdvance = 6;

/// The seven rows of dots of a letter from the top, the leftmost dot in bit 4. Small letters are
/// drawn as capitals, what the font lacks as a box.
const std::uint8_t* LetterRows(char letter);

}  // namespace vireon::tool
