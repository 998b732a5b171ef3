#define VIREON_SIMD_NAMESPACE avx512
#define VIREON_SIMD_LANES 16
#include "simd/kernels.inc"
