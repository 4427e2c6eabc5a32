// Standard deviation under a sliding rectangle, read from a sum table and a
// square table (upright or 45-degree). The precision of every step differs
// between the six forms and is part of the result, so each form has its own
// element rule; the float-table upright form also runs in row bands.
#include <emmintrin.h>

#include "detect/rvcvrectstddev.h"
#include "rvcvcpu.h"
#include "rvcvframe.h"

namespace rvcv {
namespace {

inline float sqrtF(float v) { return _mm_cvtss_f32(_mm_sqrt_ss(_mm_set_ss(v))); }
inline double sqrtD(double v) { return _mm_cvtsd_f64(_mm_sqrt_sd(_mm_setzero_pd(), _mm_set_sd(v))); }

// Truncation to 32 bits as the processor does it: a value out of range, or
// NaN, gives the most negative integer.
inline Rvp32s truncate32(double v) {
    return (v > -2147483649.0 && v < 2147483648.0) ? static_cast<Rvp32s>(v) : INT32_MIN;
}

// Corner element offsets, in the order c0, c1, c2, c3 of the corner sum
// (c0 - c1) - (c2 - c3): BR, TR, BL, TL upright; A, B, C, D tilted.
struct Corners {
    int o[4];
};

Corners uprightCorners(RvpiRect r, int step) {
    const int top = wadd(wmul(r.y, step), r.x);
    const int bottom = wadd(wmul(wadd(r.y, r.height), step), r.x);
    return {{wadd(bottom, r.width), wadd(top, r.width), bottom, top}};
}

Corners tiltedCorners(RvpiRect r, int step) {
    const int row = wadd(r.x, r.y), col = wsub(r.x, r.y);
    auto at = [&](int dr, int dc) { return wadd(wmul(wadd(row, dr), step), wadd(col, dc)); };
    const int w = r.width, h = r.height;
    return {{at(wadd(w, h), wsub(w, h)), at(h, -h), at(w, w), at(0, 0)}};
}

template <class T> inline int32_t intSum(const T* p, const Corners& c) {
    return wsub(wsub(p[c.o[0]], p[c.o[1]]), wsub(p[c.o[2]], p[c.o[3]]));
}
inline double doubleSum(const Rvp64f* p, const Corners& c) {
    return ((p[c.o[0]] - p[c.o[1]]) - p[c.o[2]]) + p[c.o[3]];
}
inline double widenedSum(const Rvp32f* p, const Corners& c) {
    return ((static_cast<double>(p[c.o[0]]) - static_cast<double>(p[c.o[1]])) - static_cast<double>(p[c.o[2]])) +
           static_cast<double>(p[c.o[3]]);
}

// Negative variances from rounding read as zero; NaN passes through.
template <class T> inline T clampVariance(T v) { return v < 0 ? T(0) : v; }

// Element rules, one per form. Each takes the two tables at the output
// position and gives the output element.
struct Params {
    Corners s, q;
    float area;
    double scale;
};

// The Sfs forms: Var is the precision of the means' product, the
// subtraction and the clamp, Root that of the square root.
inline float rootOf(float v) { return sqrtF(v); }
inline double rootOf(double v) { return sqrtD(v); }

template <class Var, class Root> struct SfsRule {
    using S = Rvp32s; using Q = Rvp32s; using D = Rvp32s;
    static D at(const S* s, const Q* q, const Params& p) {
        const Var mean = static_cast<float>(intSum(s, p.s)) / p.area;
        const Var meanSqr = static_cast<float>(intSum(q, p.q)) / p.area;
        const Root root = rootOf(static_cast<Root>(clampVariance(meanSqr - mean * mean)));
        return truncate32(static_cast<double>(root) * p.scale + 0.5);
    }
};
using UprightSfs = SfsRule<float, double>;
using TiltedSfs = SfsRule<double, float>;

// Upright and tilted alike: the corner order in Params does the difference.
struct Int32f {
    using S = Rvp32s; using Q = Rvp64f; using D = Rvp32f;
    static D at(const S* s, const Q* q, const Params& p) {
        const double mean = static_cast<float>(intSum(s, p.s)) / p.area;
        const double meanSqr = doubleSum(q, p.q) / static_cast<double>(p.area);
        return sqrtF(static_cast<float>(clampVariance(meanSqr - mean * mean)));
    }
};

struct Upright32f {  // element rule in rvcvrectstddev_k.h
    using S = Rvp32f; using Q = Rvp64f; using D = Rvp32f;
};

struct Tilted32f {
    using S = Rvp32f; using Q = Rvp64f; using D = Rvp32f;
    static D at(const S* s, const Q* q, const Params& p) {
        const double area = p.area;
        const double mean = widenedSum(s, p.s) / area;
        const double meanSqr = doubleSum(q, p.q) / area;
        return sqrtF(static_cast<float>(clampVariance(meanSqr - mean * mean)));
    }
};

template <class M> struct Tables {
    const typename M::S* src;
    int srcStep;
    const typename M::Q* sqr;
    int sqrStep;
    typename M::D* dst;
    int dstStep;
};

template <class M> void deviationRows(const Tables<M>& t, int width, int y0, int rows, const Params& p) {
    for (int j = y0; j < y0 + rows; ++j) {
        const typename M::S* s = rowPtr(t.src, t.srcStep, j);
        const typename M::Q* q = rowPtr(t.sqr, t.sqrStep, j);
        typename M::D* d = rowPtr(t.dst, t.dstStep, j);
        for (int i = 0; i < width; ++i) d[i] = M::at(s + i, q + i, p);
    }
}

// The float-table upright rule runs through the per-instruction-set kernel.
template <> void deviationRows<Upright32f>(const Tables<Upright32f>& t, int width, int y0, int rows, const Params& p) {
    const RectStdDevKernels& k = pick(m7::kRectStdDev, avx2::kRectStdDev);
    for (int j = y0; j < y0 + rows; ++j) {
        const Rvp32f* s = rowPtr(t.src, t.srcStep, j);
        const Rvp64f* q = rowPtr(t.sqr, t.sqrStep, j);
        const Rvp32f* sc[4] = {s + p.s.o[0], s + p.s.o[1], s + p.s.o[2], s + p.s.o[3]};
        const Rvp64f* qc[4] = {q + p.q.o[0], q + p.q.o[1], q + p.q.o[2], q + p.q.o[3]};
        k.row32f(sc, qc, rowPtr(t.dst, t.dstStep, j), width, p.area);
    }
}

// ---- Validation and entry ----------------------------------------------------------
template <class M>
RvpStatus rectStdDev(const Tables<M>& t, RvpiSize roi, RvpiRect rect, int scaleFactor, bool tilted,
                     bool threaded) {
    using S = typename M::S;
    using Q = typename M::Q;
    constexpr int qBytes = static_cast<int>(sizeof(Q));
    const int n = tilted ? wsub(wadd(wadd(roi.width, rect.x), wadd(wadd(rect.y, rect.width), rect.height)), 1)
                         : wadd(wadd(roi.width, rect.x), rect.width);
    Check c;
    c.ptrs(t.src, t.dst, t.sqr).size(roi);
    c.step(t.srcStep, wmul(n, 4)).step(t.dstStep, wmul(roi.width, 4)).step(t.sqrStep, wmul(n, qBytes));
    c.evenSteps(4, t.srcStep, t.dstStep).evenSteps(qBytes, t.sqrStep);
    c.fail(rect.x < 0 || rect.y < 0 || rect.width < 1 || rect.height < 1, rvpStsSizeErr);
    if (RvpStatus st = c) return st;

    const int srcEl = t.srcStep / static_cast<int>(sizeof(S)), sqrEl = t.sqrStep / qBytes;
    Params p;
    p.s = tilted ? tiltedCorners(rect, srcEl) : uprightCorners(rect, srcEl);
    p.q = tilted ? tiltedCorners(rect, sqrEl) : uprightCorners(rect, sqrEl);
    const int area = wmul(rect.width, rect.height);
    p.area = static_cast<float>(tilted ? wmul(area, 2) : area);
    // 2^-scaleFactor from a 32-bit shift whose count wraps at 32.
    const uint32_t count = scaleFactor < 0 ? 0u - static_cast<uint32_t>(scaleFactor) : static_cast<uint32_t>(scaleFactor);
    const int32_t shifted = static_cast<int32_t>(1u << (count & 31));
    const float scale = scaleFactor < 0 ? static_cast<float>(shifted) : 1.0f / static_cast<float>(shifted);
    p.scale = scale;

    int threads = threaded ? owncvGetMaxNumThreads() : 1;
    const int work = wmul(roi.width, roi.height) >> 10;
    if (work < threads) threads = work;
    if (threads < 2) {
        deviationRows(t, roi.width, 0, roi.height, p);
    } else {
        if (threads > 32) threads = 32;
        if (ownGetNumThreads() < threads) threads = ownGetNumThreads();
        bandRegion(roi.height, threads, [&](int y0, int rows) { deviationRows(t, roi.width, y0, rows, p); });
    }
    return rvpStsNoErr;
}

}  // namespace
}  // namespace rvcv

using namespace rvcv;

RVCV_EXPORT RvpStatus rvpiRectStdDev_32s_C1RSfs(const Rvp32s* pSrc, int srcStep, const Rvp32s* pSqr, int sqrStep,
                                                Rvp32s* pDst, int dstStep, RvpiSize roiSize, RvpiRect rect,
                                                int scaleFactor) {
    return rectStdDev(Tables<UprightSfs>{pSrc, srcStep, pSqr, sqrStep, pDst, dstStep}, roiSize, rect, scaleFactor,
                      false, false);
}

RVCV_EXPORT RvpStatus rvpiRectStdDev_32s32f_C1R(const Rvp32s* pSrc, int srcStep, const Rvp64f* pSqr, int sqrStep,
                                                Rvp32f* pDst, int dstStep, RvpiSize roiSize, RvpiRect rect) {
    return rectStdDev(Tables<Int32f>{pSrc, srcStep, pSqr, sqrStep, pDst, dstStep}, roiSize, rect, 0, false, false);
}

RVCV_EXPORT RvpStatus rvpiRectStdDev_32f_C1R(const Rvp32f* pSrc, int srcStep, const Rvp64f* pSqr, int sqrStep,
                                             Rvp32f* pDst, int dstStep, RvpiSize roiSize, RvpiRect rect) {
    return rectStdDev(Tables<Upright32f>{pSrc, srcStep, pSqr, sqrStep, pDst, dstStep}, roiSize, rect, 0, false,
                      true);
}

RVCV_EXPORT RvpStatus rvpiTiltedRectStdDev_32s_C1RSfs(const Rvp32s* pSrc, int srcStep, const Rvp32s* pSqr,
                                                      int sqrStep, Rvp32s* pDst, int dstStep, RvpiSize roiSize,
                                                      RvpiRect rect, int scaleFactor) {
    return rectStdDev(Tables<TiltedSfs>{pSrc, srcStep, pSqr, sqrStep, pDst, dstStep}, roiSize, rect, scaleFactor,
                      true, false);
}

RVCV_EXPORT RvpStatus rvpiTiltedRectStdDev_32s32f_C1R(const Rvp32s* pSrc, int srcStep, const Rvp64f* pSqr,
                                                      int sqrStep, Rvp32f* pDst, int dstStep, RvpiSize roiSize,
                                                      RvpiRect rect) {
    return rectStdDev(Tables<Int32f>{pSrc, srcStep, pSqr, sqrStep, pDst, dstStep}, roiSize, rect, 0, true, false);
}

RVCV_EXPORT RvpStatus rvpiTiltedRectStdDev_32f_C1R(const Rvp32f* pSrc, int srcStep, const Rvp64f* pSqr,
                                                   int sqrStep, Rvp32f* pDst, int dstStep, RvpiSize roiSize,
                                                   RvpiRect rect) {
    return rectStdDev(Tables<Tilted32f>{pSrc, srcStep, pSqr, sqrStep, pDst, dstStep}, roiSize, rect, 0, true,
                      false);
}
