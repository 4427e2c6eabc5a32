// Absolute difference |a - b| and |a - c|: the model of a pixel-wise family.
// Validation in the usual order, then one kernel call on the caller's thread
// below 262144 pixels, else one call per band. The 16-bit and 32-bit forms
// choose stores that bypass the cache when the band's working size reaches
// the largest cache; the 8-bit forms always store normally.
#include "rvcvabsdiff.h"
#include "rvcvcpu.h"
#include "rvcvframe.h"

namespace rvcv {
namespace {

const AbsDiffKernels& kernels() { return pick(m7::kAbsDiff, avx2::kAbsDiff, avx512::kAbsDiff); }

// Bytes a band touches per pixel, for the store choice; 0: no cache test.
// The constant 16-bit form keeps the three-image factor of 6 although it
// touches two images.
template <class T> struct Traits;
template <> struct Traits<Rvp8u>  { static constexpr int diff = 0,  diffC = 0; };
template <> struct Traits<Rvp16u> { static constexpr int diff = 6,  diffC = 6; };
template <> struct Traits<Rvp32f> { static constexpr int diff = 12, diffC = 8; };

bool bypassCache(int factor, int width, int rows) {
    return factor != 0 && wmul(factor, width, rows) >= maxCacheBytes();
}

template <class T>
RvpStatus absDiff(AbsDiffKernel k, const T* s1, int st1, const T* s2, int st2, T* d, int sd, RvpiSize roi) {
    Check c;
    c.ptrs(s1, s2, d);
    if (RvpStatus st = checkImage<T>(c, roi, 1, st1, st2, sd)) return st;
    pixelwise(roi.width, roi.height, [&](int y0, int rows) {
        k(rowPtr(s1, st1, y0), st1, rowPtr(s2, st2, y0), st2, rowPtr(d, sd, y0), sd, rows, roi.width,
          bypassCache(Traits<T>::diff, roi.width, rows));
    });
    return rvpStsNoErr;
}

template <class T>
RvpStatus absDiffC(AbsDiffCKernel k, const T* s, int ss, T* d, int sd, RvpiSize roi, T value) {
    Check c;
    c.ptrs(s, d);
    if (RvpStatus st = checkImage<T>(c, roi, 1, ss, sd)) return st;
    pixelwise(roi.width, roi.height, [&](int y0, int rows) {
        k(rowPtr(s, ss, y0), ss, rowPtr(d, sd, y0), sd, rows, roi.width, &value,
          bypassCache(Traits<T>::diffC, roi.width, rows));
    });
    return rvpStsNoErr;
}

template <class T> T clampTo(int v) {
    constexpr int hi = std::numeric_limits<T>::max();
    return static_cast<T>(v < 0 ? 0 : v > hi ? hi : v);
}

}  // namespace
}  // namespace rvcv

using namespace rvcv;

RVCV_EXPORT RvpStatus rvpiAbsDiff_8u_C1R(const Rvp8u* pSrc1, int src1Step, const Rvp8u* pSrc2, int src2Step,
                                         Rvp8u* pDst, int dstStep, RvpiSize roiSize) {
    return absDiff(kernels().diff8u, pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep, roiSize);
}

// Three channels are one row of 3 * width samples; the threshold counts samples.
RVCV_EXPORT RvpStatus rvpiAbsDiff_8u_C3R(const Rvp8u* pSrc1, int src1Step, const Rvp8u* pSrc2, int src2Step,
                                         Rvp8u* pDst, int dstStep, RvpiSize roiSize) {
    return rvpiAbsDiff_8u_C1R(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep,
                              RvpiSize{wmul(roiSize.width, 3), roiSize.height});
}

RVCV_EXPORT RvpStatus rvpiAbsDiff_16u_C1R(const Rvp16u* pSrc1, int src1Step, const Rvp16u* pSrc2, int src2Step,
                                          Rvp16u* pDst, int dstStep, RvpiSize roiSize) {
    return absDiff(kernels().diff16u, pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep, roiSize);
}

RVCV_EXPORT RvpStatus rvpiAbsDiff_32f_C1R(const Rvp32f* pSrc1, int src1Step, const Rvp32f* pSrc2, int src2Step,
                                          Rvp32f* pDst, int dstStep, RvpiSize roiSize) {
    return absDiff(kernels().diff32f, pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep, roiSize);
}

RVCV_EXPORT RvpStatus rvpiAbsDiffC_8u_C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                          RvpiSize roiSize, int value) {
    return absDiffC(kernels().diffC8u, pSrc, srcStep, pDst, dstStep, roiSize, clampTo<Rvp8u>(value));
}

RVCV_EXPORT RvpStatus rvpiAbsDiffC_16u_C1R(const Rvp16u* pSrc, int srcStep, Rvp16u* pDst, int dstStep,
                                           RvpiSize roiSize, int value) {
    return absDiffC(kernels().diffC16u, pSrc, srcStep, pDst, dstStep, roiSize, clampTo<Rvp16u>(value));
}

RVCV_EXPORT RvpStatus rvpiAbsDiffC_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                           RvpiSize roiSize, Rvp32f value) {
    return absDiffC(kernels().diffC32f, pSrc, srcStep, pDst, dstStep, roiSize, value);
}
