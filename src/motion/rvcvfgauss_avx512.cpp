// Mixture-of-Gaussians kernels for processors with AVX-512 F, BW, DQ and VL
// (built with those flags): eight pixels a vector.
#define RVCV_ISA_NS avx512
#define RVCV_VEC_BYTES 64
#include "rvcvfgauss_k.h"
