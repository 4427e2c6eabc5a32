// Gaussian 5x5 pyramid kernels for processors with AVX2 (built with -mavx2).
#define RVCV_ISA_NS avx2
#include "rvcvgauss5_k.h"
