// Min/max and direct morphology kernels for the SSE3 baseline.
#define RVCV_ISA_NS m7
#include "rvcvminmax_k.h"
