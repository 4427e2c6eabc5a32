// Absolute-difference kernels on 64-byte blocks for processors with the
// 512-bit level (built with the AVX-512 F/BW/DQ/VL flags).
#define RVCV_ISA_NS avx512
#define RVCV_VEC_BYTES 64
#include "rvcvabsdiff_k.h"
