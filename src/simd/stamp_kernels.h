#pragma once

#include <cstddef>
#include <cstdint>

namespace vireon::simd {

struct StampKernels {};

}  // namespace vireon::simd
