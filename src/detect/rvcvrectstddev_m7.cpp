// Rectangle deviation row kernel for the SSE3 baseline.
#define RVCV_ISA_NS m7
#include "detect/rvcvrectstddev_k.h"
