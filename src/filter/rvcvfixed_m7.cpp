// Fixed-kernel filter routines for the SSE3 baseline.
#define RVCV_ISA_NS m7
#include "filter/rvcvfixed_k.h"
