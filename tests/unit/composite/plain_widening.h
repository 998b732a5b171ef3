#pragma once

#include <algorithm>
#include <cstdint>

#include "tests/unit/support/picture.h"

namespace vireon::test {

/// The running maximum as its definition says, position by position: full strength up to n - 2
/// pixels away, `fraction` of the values at the offset where that loop ends.
inline void PlainWiden(Picture& picture, std::int32_t n, float fraction, bool alongRows,
                       const ChannelFlags& channels) {
    if (n == 0) return;
    const Picture source(picture);
    const std::int32_t length = alongRows ? picture.width() : picture.height();
    ForEachFloat(picture, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
        if (!channels.enabled[c]) return;
        const auto value = [&](std::int32_t position) {
            const std::int32_t inside = std::clamp(position, 0, length - 1);
            return alongRows ? source.at(inside, y, c) : source.at(x, inside, c);
        };
        const std::int32_t p = alongRows ? x : y;
        float m = value(p);
        std::int32_t k = 1;
        for (; k < n - 1; ++k) {
            if (value(p - k) > m) m = value(p - k);
            if (value(p + k) > m) m = value(p + k);
        }
        const float before = fraction * value(p - k);
        if (before > m) m = before;
        const float after = fraction * value(p + k);
        if (after > m) m = after;
        picture.at(x, y, c) = m;
    });
}

}  // namespace vireon::test
