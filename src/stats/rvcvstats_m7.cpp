// Statistics kernels for the baseline (SSE3).
#define RVCV_ISA_NS m7
#include "rvcvstats_k.h"
