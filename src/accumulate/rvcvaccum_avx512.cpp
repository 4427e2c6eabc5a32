// Accumulation kernels for processors with AVX-512 F, BW, DQ and VL (built
// with those flags): 64-byte blocks for the 8-bit forms, the AVX2 rows for
// the others.
#define RVCV_ISA_NS avx512
#include "rvcvaccum_k.h"
