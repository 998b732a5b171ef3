#pragma once

#include <cstdint>

namespace vireon {

/// A moment of the layer in the host's units.
struct HostTime {
    std::int32_t time = 0;    ///< units since the layer's start; may be negative
    std::int32_t step = 0;    ///< units of one frame
    std::uint32_t scale = 1;  ///< units a second
};

}  // namespace vireon
