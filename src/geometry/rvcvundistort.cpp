// Lens undistortion: whole-image resampling under a two-coefficient radial
// model, and coordinate maps under a radial and tangential one. Everything
// runs on the calling thread; the optional buffer only saves the column
// terms from being recomputed on every row.
#include "geometry/rvcvundistort.h"
#include "rvcvcpu.h"
#include "rvcvframe.h"

namespace rvcv {
namespace {

const UndistortKernels& kernels() { return pick(m7::kUndistort, avx2::kUndistort); }

// ((W + 3) & ~3) * 24 + 32, in 64 bits.
int64_t bufferBytes(int width) { return ((static_cast<int64_t>(width) + 3) & ~int64_t{3}) * 24 + 32; }

// The usual image test with the row's bytes taken in 64 bits: a row longer
// than any step can be fails the step test instead of wrapping past it.
template <class T, class... S> Check& checkRows(Check& c, RvpiSize roi, int channels, S... steps) {
    c.size(roi);
    const int64_t rowBytes = static_cast<int64_t>(roi.width) * channels * static_cast<int64_t>(sizeof(T));
    const int clamped = rowBytes > INT32_MAX ? INT32_MAX : static_cast<int>(rowBytes);
    c.fail(rowBytes > INT32_MAX, rvpStsStepErr);
    return c.steps(clamped, steps...).evenSteps(static_cast<int>(sizeof(T)), steps...);
}

UndistortCam camera(Rvp32f fx, Rvp32f fy, Rvp32f cx, Rvp32f cy, Rvp32f k1, Rvp32f k2, Rvp32f p1, Rvp32f p2) {
    UndistortCam c;
    c.cx = cx; c.cy = cy; c.k1 = k1; c.k2 = k2; c.p1 = p1; c.p2 = p2;
    c.a = 1.0f / (fx * fx);
    c.b = 1.0f / (fy * fy);
    c.ifx = 1.0f / fx;
    c.ify = 1.0f / fy;
    c.Fx = fx * p2;
    c.Fy = fy * p1;
    return c;
}

float* columnPlanes(Rvp8u* buffer) {
    if (!buffer) return nullptr;
    const uintptr_t a = (reinterpret_cast<uintptr_t>(buffer) + 31) & ~uintptr_t{31};
    return reinterpret_cast<float*>(a);
}

template <class T, int C>
RvpStatus undistort(int type, const T* src, int srcStep, T* dst, int dstStep, RvpiSize roi, Rvp32f fx, Rvp32f fy,
                    Rvp32f cx, Rvp32f cy, Rvp32f k1, Rvp32f k2, Rvp8u* buffer) {
    Check c;
    c.ptrs(src, dst).size(roi).fail(buffer && bufferBytes(roi.width) > INT32_MAX, rvpStsSizeErr);
    if (RvpStatus st = checkRows<T>(c, roi, C, srcStep, dstStep).fail(fx == 0.0f || fy == 0.0f, rvpStsBadArgErr))
        return st;
    const UndistortCam cam = camera(fx, fy, cx, cy, k1, k2, 0.0f, 0.0f);
    kernels().radial[type][C == 1 ? 0 : 1](src, srcStep, dst, dstStep, roi.width, roi.height, cam,
                                           columnPlanes(buffer));
    return rvpStsNoErr;
}

}  // namespace
}  // namespace rvcv

using namespace rvcv;

RVCV_EXPORT RvpStatus rvpiUndistortGetSize(RvpiSize roiSize, int* pBufSize) {
    Check c;
    if (RvpStatus st = c.ptr(pBufSize).size(roiSize).fail(bufferBytes(roiSize.width) > INT32_MAX, rvpStsSizeErr))
        return st;
    *pBufSize = static_cast<int>(bufferBytes(roiSize.width));
    return rvpStsNoErr;
}

#define RVCV_UNDISTORT(suffix, T, type, C)                                                                         \
    RVCV_EXPORT RvpStatus rvpiUndistortRadial_##suffix(const T* pSrc, int srcStep, T* pDst, int dstStep,          \
                                                       RvpiSize roiSize, Rvp32f fx, Rvp32f fy, Rvp32f cx,         \
                                                       Rvp32f cy, Rvp32f k1, Rvp32f k2, Rvp8u* pBuffer) {         \
        return undistort<T, C>(type, pSrc, srcStep, pDst, dstStep, roiSize, fx, fy, cx, cy, k1, k2, pBuffer);    \
    }
RVCV_UNDISTORT(8u_C1R, Rvp8u, 0, 1)
RVCV_UNDISTORT(8u_C3R, Rvp8u, 0, 3)
RVCV_UNDISTORT(16u_C1R, Rvp16u, 1, 1)
RVCV_UNDISTORT(16u_C3R, Rvp16u, 1, 3)
RVCV_UNDISTORT(32f_C1R, Rvp32f, 2, 1)
RVCV_UNDISTORT(32f_C3R, Rvp32f, 2, 3)
#undef RVCV_UNDISTORT

RVCV_EXPORT RvpStatus rvpiCreateMapCameraUndistort_32f_C1R(Rvp32f* pxMap, int xStep, Rvp32f* pyMap, int yStep,
                                                           RvpiSize roiSize, Rvp32f fx, Rvp32f fy, Rvp32f cx,
                                                           Rvp32f cy, Rvp32f k1, Rvp32f k2, Rvp32f p1, Rvp32f p2,
                                                           Rvp8u* pBuffer) {
    Check c;
    c.ptrs(pxMap, pyMap).size(roiSize).fail(pBuffer && bufferBytes(roiSize.width) > INT32_MAX, rvpStsSizeErr);
    if (RvpStatus st = checkRows<Rvp32f>(c, roiSize, 1, xStep, yStep).fail(fx == 0.0f || fy == 0.0f, rvpStsBadArgErr))
        return st;
    // A NaN coefficient compares unequal to zero, so it takes the tangential path.
    const bool tangential = p1 != 0.0f || p2 != 0.0f;
    const bool nt = static_cast<int64_t>(roiSize.width) * roiSize.height >= 131072;
    kernels().map(pxMap, xStep, pyMap, yStep, roiSize.width, roiSize.height, camera(fx, fy, cx, cy, k1, k2, p1, p2),
                  columnPlanes(pBuffer), tangential, nt);
    return rvpStsNoErr;
}
