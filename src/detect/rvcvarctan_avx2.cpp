// Fast arctangent for processors with AVX2 (built with -mavx2).
#define RVCV_ISA_NS avx2
#include "rvcvarctan_k.h"
