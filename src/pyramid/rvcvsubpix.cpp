// Sub-pixel copies and line sampling. The copies take bilinear samples with
// 14-bit weights (the products of the axis weights, rounded to 14 bits);
// fractions of 0 copy the samples exactly. The whole work stays on the
// calling thread: a patch is small, and a copy is a single pass.
#include <cmath>

#include "rvcvframe.h"
#include "rvcvsampler.h"

namespace rvcv {
namespace {

using sampler::Round;

// The 14-bit fraction of an offset in [0, 1); -1 for anything else (NaN too).
int fraction14(Rvp32f d) {
    if (!(d >= 0.0f && d < 1.0f)) return -1;
    return static_cast<int>(static_cast<double>(d) * 16384.0 + 0.5);
}

// Integer results are scaled by 2^-scaleFactor (to nearest, ties to even) and
// saturated; float results are the weighted sums.
template <class T, class D>
void sample(D* dst, int dstStep, int nw, int nh, const T* src, int srcStep, int w, int h, int x0, int y0, int a,
            int b, int scaleFactor) {
    const sampler::Weights wt = sampler::weights14(a, b);
    if constexpr (std::is_integral<D>::value) {
        // A shift of 14 + scaleFactor, held within what a 64-bit sum can need.
        const int64_t s = int64_t{14} + scaleFactor;
        const int shift = s > 62 ? 62 : s < -62 ? -62 : static_cast<int>(s);
        sampler::bilinear<T, D, Round::Even>(dst, dstStep / static_cast<int>(sizeof(D)), nw, nh, src, srcStep, w, h,
                                             x0, y0, wt.w, shift);
    } else {
        (void)scaleFactor;
        sampler::bilinear(dst, dstStep / static_cast<int>(sizeof(D)), nw, nh, src, srcStep, w, h, x0, y0, wt.w, 0);
    }
}

template <class T, class D>
RvpStatus copySubpix(const T* pSrc, int srcStep, D* pDst, int dstStep, RvpiSize roi, Rvp32f dx, Rvp32f dy,
                     int scaleFactor) {
    const int a = fraction14(dx), b = fraction14(dy);
    // A column (row) beyond the region is read only when its weight is not 0.
    const int w = roi.width + (a > 0 ? 1 : 0), h = roi.height + (b > 0 ? 1 : 0);
    Check c;
    c.ptrs(pSrc, pDst).size(roi);
    c.step(srcStep, wmul(w, static_cast<int>(sizeof(T)))).step(dstStep, wmul(roi.width, static_cast<int>(sizeof(D))));
    c.evenSteps(static_cast<int>(sizeof(T)), srcStep).evenSteps(static_cast<int>(sizeof(D)), dstStep);
    c.fail(a < 0 || b < 0, rvpStsBadArgErr);
    if (c != rvpStsNoErr) return c;
    sample(pDst, dstStep, roi.width, roi.height, pSrc, srcStep, w, h, 0, 0, a, b, scaleFactor);
    return rvpStsNoErr;
}

template <class T, class D>
RvpStatus copySubpixIntersect(const T* pSrc, int srcStep, RvpiSize srcRoi, D* pDst, int dstStep, RvpiSize dstRoi,
                              RvpiPoint32f point, RvpiPoint* pMin, RvpiPoint* pMax, int scaleFactor) {
    Check c;
    c.ptrs(pSrc, pDst, pMin, pMax).size(srcRoi).size(dstRoi);
    c.step(srcStep, wmul(srcRoi.width, static_cast<int>(sizeof(T))))
        .step(dstStep, wmul(dstRoi.width, static_cast<int>(sizeof(D))));
    c.evenSteps(static_cast<int>(sizeof(T)), srcStep).evenSteps(static_cast<int>(sizeof(D)), dstStep);
    if (c != rvpStsNoErr) return c;
    const sampler::Axis ax = sampler::axis(point.x, dstRoi.width, srcRoi.width);
    const sampler::Axis ay = sampler::axis(point.y, dstRoi.height, srcRoi.height);
    sample(pDst, dstStep, dstRoi.width, dstRoi.height, pSrc, srcStep, srcRoi.width, srcRoi.height, ax.i0, ay.i0, ax.a,
           ay.a, scaleFactor);
    *pMin = RvpiPoint{ax.lo, ay.lo};
    *pMax = RvpiPoint{ax.hi, ay.hi};
    return rvpStsNoErr;
}

// Samples along the line from pt1 to pt2: m + 1 of them, m the longer of the
// two extents; sample i lies i steps along the longer axis, and
// round(i * |d| / m) (halves away from pt1) along the other.
template <class T>
RvpStatus sampleLine(const T* pSrc, int srcStep, RvpiSize roi, T* pDst, RvpiPoint pt1, RvpiPoint pt2) {
    Check c;
    c.ptrs(pSrc, pDst);
    checkImage<T>(c, roi, 1, srcStep);
    // The count as a 32-bit sum: the longer extent (differences wrap) plus 1.
    const int ex = static_cast<int>(static_cast<uint32_t>(pt2.x) - static_cast<uint32_t>(pt1.x));
    const int ey = static_cast<int>(static_cast<uint32_t>(pt2.y) - static_cast<uint32_t>(pt1.y));
    const int ax = ex < 0 ? static_cast<int>(0u - static_cast<uint32_t>(ex)) : ex;
    const int ay = ey < 0 ? static_cast<int>(0u - static_cast<uint32_t>(ey)) : ey;
    c.fail(wadd(ax > ay ? ax : ay, 1) < 0, rvpStsLineLengthErr);
    const auto inside = [&](RvpiPoint p) { return p.x >= 0 && p.y >= 0 && p.x < roi.width && p.y < roi.height; };
    c.fail(!inside(pt1) || !inside(pt2), rvpStsOutOfRangeErr);
    if (c != rvpStsNoErr) return c;
    const int64_t dx = int64_t{pt2.x} - pt1.x, dy = int64_t{pt2.y} - pt1.y;
    const int64_t adx = dx < 0 ? -dx : dx, ady = dy < 0 ? -dy : dy;
    const int64_t m = adx > ady ? adx : ady;
    const int sx = dx < 0 ? -1 : 1, sy = dy < 0 ? -1 : 1;
    for (int64_t i = 0; i <= m; ++i) {
        int64_t x = pt1.x, y = pt1.y;
        if (m > 0) {
            x += sx * ((2 * i * adx + m) / (2 * m));
            y += sy * ((2 * i * ady + m) / (2 * m));
        }
        pDst[i] = rowPtr(pSrc, srcStep, static_cast<int>(y))[x];
    }
    return rvpStsNoErr;
}

}  // namespace
}  // namespace rvcv

using namespace rvcv;

RVCV_EXPORT RvpStatus rvpiCopySubpix_8u16u_C1R_Sfs(const Rvp8u* pSrc, int srcStep, Rvp16u* pDst, int dstStep,
                                                   RvpiSize roiSize, Rvp32f dx, Rvp32f dy, int scaleFactor) {
    return copySubpix(pSrc, srcStep, pDst, dstStep, roiSize, dx, dy, scaleFactor);
}
RVCV_EXPORT RvpStatus rvpiCopySubpix_16u32f_C1R(const Rvp16u* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                                RvpiSize roiSize, Rvp32f dx, Rvp32f dy) {
    return copySubpix(pSrc, srcStep, pDst, dstStep, roiSize, dx, dy, 0);
}
RVCV_EXPORT RvpStatus rvpiCopySubpix_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                             RvpiSize roiSize, Rvp32f dx, Rvp32f dy) {
    return copySubpix(pSrc, srcStep, pDst, dstStep, roiSize, dx, dy, 0);
}

RVCV_EXPORT RvpStatus rvpiCopySubpixIntersect_8u16u_C1R_Sfs(const Rvp8u* pSrc, int srcStep, RvpiSize srcRoiSize,
                                                            Rvp16u* pDst, int dstStep, RvpiSize dstRoiSize,
                                                            RvpiPoint32f point, RvpiPoint* pMin, RvpiPoint* pMax,
                                                            int scaleFactor) {
    return copySubpixIntersect(pSrc, srcStep, srcRoiSize, pDst, dstStep, dstRoiSize, point, pMin, pMax, scaleFactor);
}
RVCV_EXPORT RvpStatus rvpiCopySubpixIntersect_16u32f_C1R(const Rvp16u* pSrc, int srcStep, RvpiSize srcRoiSize,
                                                         Rvp32f* pDst, int dstStep, RvpiSize dstRoiSize,
                                                         RvpiPoint32f point, RvpiPoint* pMin, RvpiPoint* pMax) {
    return copySubpixIntersect(pSrc, srcStep, srcRoiSize, pDst, dstStep, dstRoiSize, point, pMin, pMax, 0);
}
RVCV_EXPORT RvpStatus rvpiCopySubpixIntersect_32f_C1R(const Rvp32f* pSrc, int srcStep, RvpiSize srcRoiSize,
                                                      Rvp32f* pDst, int dstStep, RvpiSize dstRoiSize,
                                                      RvpiPoint32f point, RvpiPoint* pMin, RvpiPoint* pMax) {
    return copySubpixIntersect(pSrc, srcStep, srcRoiSize, pDst, dstStep, dstRoiSize, point, pMin, pMax, 0);
}

RVCV_EXPORT RvpStatus rvpiSampleLine_8u_C1R(const Rvp8u* pSrc, int srcStep, RvpiSize roiSize, Rvp8u* pDst,
                                            RvpiPoint pt1, RvpiPoint pt2) {
    return sampleLine(pSrc, srcStep, roiSize, pDst, pt1, pt2);
}
RVCV_EXPORT RvpStatus rvpiSampleLine_32f_C1R(const Rvp32f* pSrc, int srcStep, RvpiSize roiSize, Rvp32f* pDst,
                                             RvpiPoint pt1, RvpiPoint pt2) {
    return sampleLine(pSrc, srcStep, roiSize, pDst, pt1, pt2);
}
