// Min/max and direct morphology kernels on 64-byte vectors for processors
// with AVX-512 F, BW, DQ and VL (built with those flags).
#define RVCV_ISA_NS avx512
#define RVCV_MINMAX_VBYTES 64
#include "rvcvminmax_k.h"
