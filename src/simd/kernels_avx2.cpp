#define VIREON_SIMD_NAMESPACE avx2
#define VIREON_SIMD_LANES 8
#include "simd/kernels.inc"
