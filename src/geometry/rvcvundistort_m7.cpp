// Lens undistortion kernels for the SSE3 baseline.
#define RVCV_ISA_NS m7
#include "rvcvundistort_k.h"
