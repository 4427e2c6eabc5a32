// Gaussian 5x5 pyramid kernels for the SSE3 baseline.
#define RVCV_ISA_NS m7
#include "rvcvgauss5_k.h"
