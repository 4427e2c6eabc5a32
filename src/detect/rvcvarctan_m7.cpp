// Fast arctangent for the SSE3 baseline.
#define RVCV_ISA_NS m7
#include "rvcvarctan_k.h"
