// Mixture-of-Gaussians kernels for the SSE3 baseline.
#define RVCV_ISA_NS m7
#include "rvcvfgauss_k.h"
