// Kernel table of the lens undistortion family, one per instruction set.
#ifndef RVCV_UNDISTORT_H
#define RVCV_UNDISTORT_H

#include <cstdint>

namespace rvcv {

// Camera terms of one call. a = 1/(fx*fx), b = 1/(fy*fy) serve the radial
// model; ifx = 1/fx, ify = 1/fy, Fx = fx*p2, Fy = fy*p1 the tangential map.
struct UndistortCam {
    float cx, cy, k1, k2, p1, p2;
    float a, b, ifx, ify, Fx, Fy;
};

// cols: null, or a 32-byte aligned scratch of at least 4 arrays of `w`
// floats rounded up to a multiple of 4, for the column terms. Results are the
// same either way.
using UndistortFn = void (*)(const void* src, int64_t srcStep, void* dst, int64_t dstStep, int w, int h,
                             const UndistortCam& cam, float* cols);
// tangential: the radial-and-tangential model, else the radial one. nt:
// stores bypass the cache where both map rows are 16-byte aligned.
using UndistortMapFn = void (*)(float* xMap, int64_t xStep, float* yMap, int64_t yStep, int w, int h,
                                const UndistortCam& cam, float* cols, bool tangential, bool nt);

struct UndistortKernels {
    UndistortFn radial[3][2];  // [8u, 16u, 32f][C1, C3]
    UndistortMapFn map;
};

namespace m7 { extern const UndistortKernels kUndistort; }
namespace avx2 { extern const UndistortKernels kUndistort; }

}  // namespace rvcv

#endif
