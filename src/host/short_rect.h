#pragma once

#include <cstdint>

namespace vireon {

/// A rectangle in pixels as the image code names it, in the order and width of the oldest hosts:
/// `bottom` and `right` are the first row and column outside unless an operation says otherwise.
struct ShortRect {
    std::int16_t top = 0;
    std::int16_t left = 0;
    std::int16_t bottom = 0;
    std::int16_t right = 0;
};

}  // namespace vireon
