#pragma once

#include <cstdint>

namespace vireon {

/// Places of the channels within a pixel of four values.
struct ChannelOrder {
    std::int32_t red;
    std::int32_t green;
    std::int32_t blue;
    std::int32_t alpha;

    friend constexpr bool operator==(const ChannelOrder&, const ChannelOrder&) = default;
};

inline constexpr ChannelOrder kAlphaFirst{1, 2, 3, 0};
inline constexpr ChannelOrder kBlueFirst{2, 1, 0, 3};
inline constexpr ChannelOrder kRedFirst{0, 1, 2, 3};

/// Channel places of a pixel-format code. Codes beyond the table count as alpha first, the order
/// of the host's own worlds.
constexpr ChannelOrder ChannelOrderOf(std::int32_t formatCode) {
    switch (formatCode) {
        case 1:
        case 4:
        case 6:
        case 11:
        case 12:
        case 13:
        case 14:
        case 15:
        case 16:
        case 17:
        case 18: return kBlueFirst;
        case 2:
        case 8:
        case 10: return kRedFirst;
        default: return kAlphaFirst;
    }
}

}  // namespace vireon
