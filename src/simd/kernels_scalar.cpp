#define VIREON_SIMD_NAMESPACE scalar
#define VIREON_SIMD_LANES 4
#define VIREON_SIMD_SCALAR
#include "simd/kernels.inc"
