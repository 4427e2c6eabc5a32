// Summed-area table row kernels for processors with AVX-512 F, BW, DQ and VL.
// Only the upright sum tables have a 512-bit form; the rest is the AVX2 code.
#define RVCV_ISA_NS avx512
#include "detect/rvcvintegral_k.h"
