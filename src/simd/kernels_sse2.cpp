#define VIREON_SIMD_NAMESPACE sse2
#define VIREON_SIMD_LANES 4
#include "simd/kernels.inc"
