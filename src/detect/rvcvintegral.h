// Row kernels of the summed-area tables, one table per instruction set.
#ifndef RVCV_INTEGRAL_H
#define RVCV_INTEGRAL_H

#include "rvpcv.h"

namespace rvcv {

// Upright: rows[k] (k < 1 or 2) follow prev, each pointing at column 1;
// src[k] is the source row of rows[k].
template <class T> using UprightRows = void (*)(const Rvp8u* const* src, int w, const T* prev, T* const* rows);
template <class T> struct UprightPair {
    UprightRows<T> one, two;
};
// Tilted: whole rows (column 0 on), the two rows above and the new one.
template <class T> using TiltedRow = void (*)(const Rvp8u* s, int w, const T* prev2, const T* prev, T* cur);

struct IntegralKernels {
    UprightPair<Rvp32s> sum32s, sqr32s;
    UprightPair<Rvp32f> sum32f;
    UprightPair<Rvp64f> sqr64f;
    // past: the inner rule also covers column W, reading s(W).
    TiltedRow<Rvp32s> tiltSum32s, tiltSqr32s, tiltSum32sPast, tiltSqr32sPast;
    TiltedRow<Rvp32f> tiltSum32f;
    TiltedRow<Rvp64f> tiltSqr64f;
};

namespace m7 { extern const IntegralKernels kIntegral; }
namespace avx2 { extern const IntegralKernels kIntegral; }
namespace avx512 { extern const IntegralKernels kIntegral; }

}  // namespace rvcv

#endif
