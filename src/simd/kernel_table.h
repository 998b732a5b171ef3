#pragma once

#include "simd/blend_kernels.h"
#include "simd/frame_kernels.h"
#include "simd/mask_kernels.h"
#include "simd/pass_kernels.h"
#include "simd/power_kernels.h"
#include "simd/stamp_kernels.h"
#include "simd/tent_kernels.h"
#include "simd/widening_kernels.h"

namespace vireon::simd {

/// The inner loops of the stages, compiled for one level. They take plain pointers and counts, know
/// no host, allocate nothing and keep no state.
struct KernelTable {
    BlendKernels blend;
    FrameKernels frame;
    MaskKernels mask;
    PassKernels pass;
    PowerKernels power;
    StampKernels stamps;
    TentKernels tent;
    WideningKernels widening;
};

namespace scalar {
extern const KernelTable kKernels;
}
namespace sse2 {
extern const KernelTable kKernels;
}
namespace avx2 {
extern const KernelTable kKernels;
}
namespace avx512 {
extern const KernelTable kKernels;
}

}  // namespace vireon::simd
