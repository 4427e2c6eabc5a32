// Accumulation kernels for processors with AVX-512 F, BW, DQ and VL (built
// with those flags): 16-lane blocks whose lane masks take the row ends.
#define RVCV_ISA_NS avx512
#include "rvcvaccum_k.h"
