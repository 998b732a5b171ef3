#pragma once

#include <cstddef>
#include <cstdint>

namespace vireon::simd {

struct FrameKernels {};

}  // namespace vireon::simd
