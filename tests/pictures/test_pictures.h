#pragma once

#include <cstdint>

#include "headless/remote/picture.h"

namespace vireon::pictures {

/// A small picture in which no two samples of a row are the same, alpha included.
inline headless::Picture TestPicture(std::int32_t bits, std::int32_t width = 7,
                                     std::int32_t height = 5) {
    headless::Picture picture(width, height, bits);
    for (std::int32_t y = 0; y < height; ++y) {
        for (std::int32_t i = 0; i < width * 4; ++i) {
            const std::int32_t value = 3 + 5 * i + 2 * y;
            switch (bits) {
                case 8: picture.row<std::uint8_t>(y)[i] = static_cast<std::uint8_t>(value); break;
                case 16:
                    picture.row<std::uint16_t>(y)[i] = static_cast<std::uint16_t>(value * 151);
                    break;
                default: picture.row<float>(y)[i] = static_cast<float>(value) / 37.0f; break;
            }
        }
    }
    return picture;
}

}  // namespace vireon::pictures
