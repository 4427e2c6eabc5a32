// Row kernels of the Canny detector, one table per instruction set. The
// entry file owns the buffer layout and the row sequence; kernels see one
// image row and the three magnitude rows around it.
#ifndef RVCV_CANNY_H
#define RVCV_CANNY_H

#include <cstdint>

#include "rvpcv.h"

namespace rvcv {

// Sector slopes: tan(22.5) and tan(67.5) rounded to float.
constexpr float kCannyTan22 = 0.41421357f;  // bits 0x3ED413CD
constexpr float kCannyTan67 = 2.4142137f;   // bits 0x401A827A

// Candidate map bytes: 0x80 survived suppression; 0x01 is already an edge,
// set together with 0xFF in the output, so the growing of edges reads only
// the map to find candidates not yet reached.
constexpr Rvp8u kCannyCandidate = 0x80;
constexpr Rvp8u kCannyEdge = 0x01;

// Magnitude of one row into a ring row (pointer at image column 0); elements
// not above (16s) or below (32f) the low threshold become 0.
using CannyMag16s = void (*)(const Rvp16s* dx, const Rvp16s* dy, Rvp32s* mag, int w, Rvp32s low);
using CannyMag32f = void (*)(const Rvp32f* dx, const Rvp32f* dy, Rvp32f* mag, int w, Rvp32f low);

// Suppression of row y. up, mid, down are ring rows at image column 0 (their
// columns -1 and w are the zero frame); map is the candidate row at column 0.
// Seeds are pushed as (y, x) pairs from top, and the new top is returned.
template <class T, class M, class E>
using CannyNms = E* (*)(const T* dx, const T* dy, const M* up, const M* mid, const M* down, Rvp8u* map, E* top,
                        M high, Rvp8u* dst, int w, int y);

struct CannyKernels {
    CannyMag16s mag16s;
    CannyMag32f mag32f;
    CannyNms<Rvp16s, Rvp32s, Rvp16u> nms16s16u;
    CannyNms<Rvp16s, Rvp32s, Rvp32s> nms16s32s;
    CannyNms<Rvp32f, Rvp32f, Rvp16u> nms32f16u;
    CannyNms<Rvp32f, Rvp32f, Rvp32s> nms32f32s;
};

namespace m7 { extern const CannyKernels kCanny; }
namespace avx2 { extern const CannyKernels kCanny; }

}  // namespace rvcv

#endif
