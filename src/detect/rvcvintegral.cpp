// Summed-area tables of an 8-bit image: upright (W+1 by H+1) and 45-degree
// (W+2 by H+2), of the samples and of their squares. Each table row is built
// from the rows already written, so one top-to-bottom pass suffices. Two
// quirks are kept on purpose: the 32f tilted tables add column W onto what
// the destination held before the call, and the 32s/32s tilted square form
// reads the sample just right of the region in column W.
#include "detect/rvcvintegral.h"
#include "rvcvcpu.h"
#include "rvcvframe.h"

namespace rvcv {
namespace {

const IntegralKernels& kernels() { return pick(m7::kIntegral, avx2::kIntegral, avx512::kIntegral); }

template <class T> void fillRow(T* row, int n, T v) {
    for (int i = 0; i < n; ++i) row[i] = v;
}

// One table in caller memory: first element, step in bytes, start value.
template <class T> struct TableArg {
    T* p;
    int step;
    T v;
};

template <class T> UprightPair<T> uprightKernel(const IntegralKernels& k, bool squares);
template <> UprightPair<Rvp32s> uprightKernel(const IntegralKernels& k, bool sq) { return sq ? k.sqr32s : k.sum32s; }
template <> UprightPair<Rvp32f> uprightKernel(const IntegralKernels& k, bool) { return k.sum32f; }
template <> UprightPair<Rvp64f> uprightKernel(const IntegralKernels& k, bool) { return k.sqr64f; }

template <class T> TiltedRow<T> tiltedKernel(const IntegralKernels& k, bool squares, bool past);
template <> TiltedRow<Rvp32s> tiltedKernel(const IntegralKernels& k, bool sq, bool past) {
    return past ? (sq ? k.tiltSqr32sPast : k.tiltSum32sPast) : (sq ? k.tiltSqr32s : k.tiltSum32s);
}
template <> TiltedRow<Rvp32f> tiltedKernel(const IntegralKernels& k, bool, bool) { return k.tiltSum32f; }
template <> TiltedRow<Rvp64f> tiltedKernel(const IntegralKernels& k, bool, bool) { return k.tiltSqr64f; }

// Upright: row 0 and column 0 hold the start value; each row is the row
// above plus the running sum of the source row. Rows go in pairs, the
// second row of a pair built from the first in registers; the square table
// follows the sum table pair by pair, so the source is read while cached.
template <class T> void uprightPair(const Rvp8u* const* s, int n, int y, int w, TableArg<T> t, UprightPair<T> k) {
    T* rows[2] = {rowPtr(t.p, t.step, y + 1), rowPtr(t.p, t.step, y + n)};
    rows[0][0] = rows[1][0] = t.v;
    T* out[2] = {rows[0] + 1, rows[1] + 1};
    (n == 2 ? k.two : k.one)(s, w, rowPtr(t.p, t.step, y) + 1, out);
}

template <class S, class Q>
void buildUpright(const Rvp8u* src, int srcStep, RvpiSize roi, TableArg<S> sum, TableArg<Q>* sqr) {
    const IntegralKernels& k = kernels();
    const UprightPair<S> sumRows = uprightKernel<S>(k, false);
    const UprightPair<Q> sqrRows = uprightKernel<Q>(k, true);
    fillRow(sum.p, roi.width + 1, sum.v);
    if (sqr) fillRow(sqr->p, roi.width + 1, sqr->v);
    for (int y = 0; y < roi.height; y += 2) {
        const int n = roi.height - y >= 2 ? 2 : 1;
        const Rvp8u* s[2] = {rowPtr(src, srcStep, y), rowPtr(src, srcStep, y + n - 1)};
        uprightPair(s, n, y, roi.width, sum, sumRows);
        if (sqr) uprightPair(s, n, y, roi.width, *sqr, sqrRows);
    }
}

// Tilted: rows 0 and 1 hold the start value; row y+2 comes from rows y and
// y+1. past: the 32s/32s square form, whose inner rule runs through column W.
template <class S, class Q>
void buildTilted(const Rvp8u* src, int srcStep, RvpiSize roi, TableArg<S> sum, TableArg<Q>* sqr, bool past) {
    const int w = roi.width;
    const IntegralKernels& k = kernels();
    const TiltedRow<S> sumRow = tiltedKernel<S>(k, false, past);
    const TiltedRow<Q> sqrRow = tiltedKernel<Q>(k, true, past);
    for (int r = 0; r < 2; ++r) {
        fillRow(rowPtr(sum.p, sum.step, r), w + 2, sum.v);
        if (sqr) fillRow(rowPtr(sqr->p, sqr->step, r), w + 2, sqr->v);
    }
    for (int y = 0; y < roi.height; ++y) {
        const Rvp8u* s = rowPtr(src, srcStep, y);
        sumRow(s, w, rowPtr(sum.p, sum.step, y), rowPtr(sum.p, sum.step, y + 1), rowPtr(sum.p, sum.step, y + 2));
        if (sqr)
            sqrRow(s, w, rowPtr(sqr->p, sqr->step, y), rowPtr(sqr->p, sqr->step, y + 1), rowPtr(sqr->p, sqr->step, y + 2));
    }
}

// ---- Validation ------------------------------------------------------------------
// Table steps have a minimum of (W + extra) elements; extra is 1 upright, 2 tilted.
template <class T> int minStep(int w, int extra) {
    constexpr int n = static_cast<int>(sizeof(T));
    return wadd(wmul(w, n), n * extra);
}

template <class S>
RvpStatus integral(const Rvp8u* src, int srcStep, S* dst, int dstStep, RvpiSize roi, S val, bool tilted) {
    const int extra = tilted ? 2 : 1;
    Check c;
    c.ptrs(src, dst).size(roi).step(srcStep, roi.width).step(dstStep, minStep<S>(roi.width, extra));
    if (RvpStatus st = c.evenSteps(4, dstStep)) return st;
    TableArg<S> sum{dst, dstStep, val};
    if (tilted) buildTilted<S, S>(src, srcStep, roi, sum, nullptr, false);
    else buildUpright<S, S>(src, srcStep, roi, sum, nullptr);
    return rvpStsNoErr;
}

template <class S, class Q>
RvpStatus sqrIntegral(const Rvp8u* src, int srcStep, S* dst, int dstStep, Q* sqr, int sqrStep, RvpiSize roi,
                      S val, Q valSqr, bool tilted) {
    const int extra = tilted ? 2 : 1;
    Check c;
    c.ptrs(src, dst, sqr).size(roi).step(srcStep, roi.width).step(dstStep, minStep<S>(roi.width, extra));
    c.step(sqrStep, minStep<Q>(roi.width, extra)).evenSteps(4, dstStep);
    if (RvpStatus st = c.evenSteps(static_cast<int>(sizeof(Q)), sqrStep)) return st;
    TableArg<S> sum{dst, dstStep, val};
    TableArg<Q> sq{sqr, sqrStep, valSqr};
    const bool past = tilted && std::is_same<Q, Rvp32s>::value;
    if (tilted) buildTilted<S, Q>(src, srcStep, roi, sum, &sq, past);
    else buildUpright<S, Q>(src, srcStep, roi, sum, &sq);
    return rvpStsNoErr;
}

}  // namespace
}  // namespace rvcv

using namespace rvcv;

RVCV_EXPORT RvpStatus rvpiIntegral_8u32s_C1R(const Rvp8u* pSrc, int srcStep, Rvp32s* pDst, int dstStep,
                                             RvpiSize roiSize, Rvp32s val) {
    return integral(pSrc, srcStep, pDst, dstStep, roiSize, val, false);
}

RVCV_EXPORT RvpStatus rvpiIntegral_8u32f_C1R(const Rvp8u* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                             RvpiSize roiSize, Rvp32f val) {
    return integral(pSrc, srcStep, pDst, dstStep, roiSize, val, false);
}

RVCV_EXPORT RvpStatus rvpiSqrIntegral_8u32s_C1R(const Rvp8u* pSrc, int srcStep, Rvp32s* pDst, int dstStep,
                                                Rvp32s* pSqr, int sqrStep, RvpiSize roiSize, Rvp32s val,
                                                Rvp32s valSqr) {
    return sqrIntegral(pSrc, srcStep, pDst, dstStep, pSqr, sqrStep, roiSize, val, valSqr, false);
}

RVCV_EXPORT RvpStatus rvpiSqrIntegral_8u32s64f_C1R(const Rvp8u* pSrc, int srcStep, Rvp32s* pDst, int dstStep,
                                                   Rvp64f* pSqr, int sqrStep, RvpiSize roiSize, Rvp32s val,
                                                   Rvp64f valSqr) {
    return sqrIntegral(pSrc, srcStep, pDst, dstStep, pSqr, sqrStep, roiSize, val, valSqr, false);
}

RVCV_EXPORT RvpStatus rvpiSqrIntegral_8u32f64f_C1R(const Rvp8u* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                                   Rvp64f* pSqr, int sqrStep, RvpiSize roiSize, Rvp32f val,
                                                   Rvp64f valSqr) {
    return sqrIntegral(pSrc, srcStep, pDst, dstStep, pSqr, sqrStep, roiSize, val, valSqr, false);
}

RVCV_EXPORT RvpStatus rvpiTiltedIntegral_8u32s_C1R(const Rvp8u* pSrc, int srcStep, Rvp32s* pDst, int dstStep,
                                                   RvpiSize roiSize, Rvp32s val) {
    return integral(pSrc, srcStep, pDst, dstStep, roiSize, val, true);
}

RVCV_EXPORT RvpStatus rvpiTiltedIntegral_8u32f_C1R(const Rvp8u* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                                   RvpiSize roiSize, Rvp32f val) {
    return integral(pSrc, srcStep, pDst, dstStep, roiSize, val, true);
}

RVCV_EXPORT RvpStatus rvpiTiltedSqrIntegral_8u32s_C1R(const Rvp8u* pSrc, int srcStep, Rvp32s* pDst, int dstStep,
                                                      Rvp32s* pSqr, int sqrStep, RvpiSize roiSize, Rvp32s val,
                                                      Rvp32s valSqr) {
    return sqrIntegral(pSrc, srcStep, pDst, dstStep, pSqr, sqrStep, roiSize, val, valSqr, true);
}

RVCV_EXPORT RvpStatus rvpiTiltedSqrIntegral_8u32s64f_C1R(const Rvp8u* pSrc, int srcStep, Rvp32s* pDst,
                                                         int dstStep, Rvp64f* pSqr, int sqrStep, RvpiSize roiSize,
                                                         Rvp32s val, Rvp64f valSqr) {
    return sqrIntegral(pSrc, srcStep, pDst, dstStep, pSqr, sqrStep, roiSize, val, valSqr, true);
}

RVCV_EXPORT RvpStatus rvpiTiltedSqrIntegral_8u32f64f_C1R(const Rvp8u* pSrc, int srcStep, Rvp32f* pDst,
                                                         int dstStep, Rvp64f* pSqr, int sqrStep, RvpiSize roiSize,
                                                         Rvp32f val, Rvp64f valSqr) {
    return sqrIntegral(pSrc, srcStep, pDst, dstStep, pSqr, sqrStep, roiSize, val, valSqr, true);
}
