#pragma once

#include <cstddef>
#include <cstdint>

namespace vireon::simd {

struct WideningKernels {};

}  // namespace vireon::simd
