// Row kernels of the summed-area tables, one table per instruction set.
#ifndef RVCV_INTEGRAL_H
#define RVCV_INTEGRAL_H

#include "rvpcv.h"

namespace rvcv {

// Upright: cur and prev point at column 1 of two consecutive table rows.
template <class T> using UprightRow = void (*)(const Rvp8u* s, int w, const T* prev, T* cur);
// Tilted: whole rows (column 0 on), the two rows above and the new one.
template <class T> using TiltedRow = void (*)(const Rvp8u* s, int w, const T* prev2, const T* prev, T* cur);

struct IntegralKernels {
    UprightRow<Rvp32s> sum32s, sqr32s;
    UprightRow<Rvp32f> sum32f;
    UprightRow<Rvp64f> sqr64f;
    // past: the inner rule also covers column W, reading s(W).
    TiltedRow<Rvp32s> tiltSum32s, tiltSqr32s, tiltSum32sPast, tiltSqr32sPast;
    TiltedRow<Rvp32f> tiltSum32f;
    TiltedRow<Rvp64f> tiltSqr64f;
};

namespace m7 { extern const IntegralKernels kIntegral; }
namespace avx2 { extern const IntegralKernels kIntegral; }

}  // namespace rvcv

#endif
