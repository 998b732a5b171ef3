#pragma once

#include <cstdint>

#include "image/raster_layout.h"

namespace vireon {

/// A layout together with the host's memory block that its pixels lie in. Whoever owns the record
/// owns the block, and gives both back.
struct OwnedLayout {
    RasterLayout layout;
    void** memory = nullptr;
};

/// Class of a layout's format code: 0 for the formats that an 8-bit host world can take the place
/// of, 1 to 4 for those of other channel orders and depths.
constexpr std::int32_t LayoutClass(std::int32_t formatCode) {
    switch (formatCode) {
        case 3:
        case 4:
        case 13: return 1;
        case 5:
        case 6:
        case 17:
        case 18: return 2;
        case 7:
        case 8: return 3;
        case 9:
        case 10:
        case 11:
        case 14:
        case 20: return 4;
        default: return 0;
    }
}

}  // namespace vireon
