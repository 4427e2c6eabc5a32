// Row kernel of the float-table upright deviation, one per instruction set.
#ifndef RVCV_RECTSTDDEV_H
#define RVCV_RECTSTDDEV_H

#include "rvpcv.h"

namespace rvcv {

struct RectStdDevKernels {
    // s, q: the four corner rows (BR, TR, BL, TL) of the sum and square
    // tables for one output row; area as a float.
    void (*row32f)(const Rvp32f* const* s, const Rvp64f* const* q, Rvp32f* d, int width, float area);
};

namespace m7 { extern const RectStdDevKernels kRectStdDev; }
namespace avx2 { extern const RectStdDevKernels kRectStdDev; }

}  // namespace rvcv

#endif
