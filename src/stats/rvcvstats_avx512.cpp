// Statistics kernels for processors with AVX-512 (built with -mavx512f/bw/dq/vl).
#define RVCV_ISA_NS avx512
#include "rvcvstats_k.h"
