// Summed-area table row kernels for the SSE3 baseline.
#define RVCV_ISA_NS m7
#include "detect/rvcvintegral_k.h"
