// Fast arctangent on 64-byte blocks for processors with the 512-bit level.
#define RVCV_ISA_NS avx512
#define RVCV_VEC_BYTES 64
#include "rvcvarctan_k.h"
