// Float pipeline kernels for the SSE3 baseline.
#define RVCV_ISA_NS m7
#include "filter/rvcvfloatk_k.h"
