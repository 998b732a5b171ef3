#pragma once

#include <cstddef>
#include <cstdint>

namespace vireon::simd {

struct TentKernels {};

}  // namespace vireon::simd
