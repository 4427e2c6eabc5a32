// Summed-area tables of an 8-bit image: upright (W+1 by H+1) and 45-degree
// (W+2 by H+2), of the samples and of their squares. Each table row is built
// from the rows already written, so one top-to-bottom pass suffices. Two
// quirks are kept on purpose: the 32f tilted tables add column W onto what
// the destination held before the call, and the 32s/32s tilted square form
// reads the sample just right of the region in column W.
#include <emmintrin.h>

#include "rvcvframe.h"

namespace rvcv {
namespace {

// ---- Upright rows ------------------------------------------------------------
// A row of the table is the row above plus the running sum of the source row.
// Blocks of eight pixels take their running sums from shifted adds; the total
// carried between blocks is the last lane. The running sums of the 32-bit
// and float tables are wrapping 32-bit integers; the double square table
// carries a double, which holds the exact integer sum.

inline __m128i loadPixels8(const Rvp8u* s) {
    return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(s)), _mm_setzero_si128());
}

// Inclusive running sums of eight pixels (at most 2040: 16 bits suffice).
inline void blockSums(const Rvp8u* s, __m128i& lo, __m128i& hi) {
    __m128i v = loadPixels8(s);
    v = _mm_add_epi16(v, _mm_slli_si128(v, 2));
    v = _mm_add_epi16(v, _mm_slli_si128(v, 4));
    v = _mm_add_epi16(v, _mm_slli_si128(v, 8));
    lo = _mm_unpacklo_epi16(v, _mm_setzero_si128());
    hi = _mm_unpackhi_epi16(v, _mm_setzero_si128());
}

// Inclusive running sums of eight squares (a square fits 16 unsigned bits).
inline void blockSquareSums(const Rvp8u* s, __m128i& lo, __m128i& hi) {
    const __m128i v = loadPixels8(s);
    const __m128i q = _mm_mullo_epi16(v, v);
    lo = _mm_unpacklo_epi16(q, _mm_setzero_si128());
    hi = _mm_unpackhi_epi16(q, _mm_setzero_si128());
    lo = _mm_add_epi32(lo, _mm_slli_si128(lo, 4));
    lo = _mm_add_epi32(lo, _mm_slli_si128(lo, 8));
    hi = _mm_add_epi32(hi, _mm_slli_si128(hi, 4));
    hi = _mm_add_epi32(hi, _mm_slli_si128(hi, 8));
    hi = _mm_add_epi32(hi, _mm_shuffle_epi32(lo, 0xFF));
}

inline void storeRow(Rvp32s* cur, const Rvp32s* prev, __m128i run) {
    const __m128i p = _mm_loadu_si128(reinterpret_cast<const __m128i*>(prev));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(cur), _mm_add_epi32(p, run));
}
inline void storeRow(Rvp32f* cur, const Rvp32f* prev, __m128i run) {
    _mm_storeu_ps(cur, _mm_add_ps(_mm_loadu_ps(prev), _mm_cvtepi32_ps(run)));
}
inline Rvp32s addRun(Rvp32s prev, int32_t run) { return wadd(prev, run); }
inline Rvp32f addRun(Rvp32f prev, int32_t run) { return prev + static_cast<Rvp32f>(run); }

// One row of a 32-bit or float table over 32-bit wrapping running sums;
// Squares selects the table of squares. cur and prev point at column 1.
template <bool Squares, class T>
void uprightRow32(const Rvp8u* s, int w, const T* prev, T* cur) {
    __m128i run = _mm_setzero_si128();
    int x = 0;
    for (; x + 8 <= w; x += 8) {
        __m128i lo, hi;
        if (Squares) blockSquareSums(s + x, lo, hi);
        else blockSums(s + x, lo, hi);
        lo = _mm_add_epi32(lo, run);
        hi = _mm_add_epi32(hi, run);
        run = _mm_shuffle_epi32(hi, 0xFF);
        storeRow(cur + x, prev + x, lo);
        storeRow(cur + x + 4, prev + x + 4, hi);
    }
    int32_t r = _mm_cvtsi128_si32(run);
    for (; x < w; ++x) {
        r = wadd(r, Squares ? s[x] * s[x] : s[x]);
        cur[x] = addRun(prev[x], r);
    }
}

// One row of a double square table; cur and prev point at column 1.
void uprightRowSqr64f(const Rvp8u* s, int w, const Rvp64f* prev, Rvp64f* cur) {
    __m128d run = _mm_setzero_pd();
    int x = 0;
    for (; x + 8 <= w; x += 8) {
        __m128i lo, hi;
        blockSquareSums(s + x, lo, hi);
        const __m128d d[4] = {_mm_cvtepi32_pd(lo), _mm_cvtepi32_pd(_mm_shuffle_epi32(lo, 0x0E)),
                              _mm_cvtepi32_pd(hi), _mm_cvtepi32_pd(_mm_shuffle_epi32(hi, 0x0E))};
        for (int k = 0; k < 4; ++k)
            _mm_storeu_pd(cur + x + 2 * k, _mm_add_pd(_mm_loadu_pd(prev + x + 2 * k), _mm_add_pd(d[k], run)));
        const __m128d last = _mm_add_pd(d[3], run);
        run = _mm_unpackhi_pd(last, last);
    }
    double r = _mm_cvtsd_f64(run);
    for (; x < w; ++x) {
        r += static_cast<double>(s[x] * s[x]);
        cur[x] = prev[x] + r;
    }
}

template <class T> void fillRow(T* row, int n, T v) {
    for (int i = 0; i < n; ++i) row[i] = v;
}

template <class T> struct UprightTable {
    T* p;
    int step;
    T v;
};

template <class S, class Q>
void buildUpright(const Rvp8u* src, int srcStep, RvpiSize roi, UprightTable<S> sum, UprightTable<Q>* sqr) {
    const int w = roi.width;
    fillRow(sum.p, w + 1, sum.v);
    if (sqr) fillRow(sqr->p, w + 1, sqr->v);
    for (int y = 0; y < roi.height; ++y) {
        const Rvp8u* s = rowPtr(src, srcStep, y);
        S* cur = rowPtr(sum.p, sum.step, y + 1);
        cur[0] = sum.v;
        uprightRow32<false>(s, w, rowPtr(sum.p, sum.step, y) + 1, cur + 1);
        if (!sqr) continue;
        Q* curQ = rowPtr(sqr->p, sqr->step, y + 1);
        curQ[0] = sqr->v;
        if constexpr (std::is_same<Q, Rvp64f>::value)
            uprightRowSqr64f(s, w, rowPtr(sqr->p, sqr->step, y) + 1, curQ + 1);
        else
            uprightRow32<true>(s, w, rowPtr(sqr->p, sqr->step, y) + 1, curQ + 1);
    }
}

// ---- Tilted rows ---------------------------------------------------------------
// cur[x] = prev[x-1] + prev[x+1] - prev2[x] + s(x-1) + s(x) for 1 <= x < W;
// column W adds s(W-1) only (unless ReadPastEdge); column 0 copies prev[1]
// and column W+1 copies prev[W]. Every element depends on earlier rows only.

inline uint32_t term(Rvp8u v, bool sq) { return sq ? static_cast<uint32_t>(v * v) : v; }

template <bool Sq, bool ReadPastEdge>
void tiltedRow32s(const Rvp8u* __restrict s, int w, const Rvp32s* __restrict prev2,
                  const Rvp32s* __restrict prev, Rvp32s* __restrict cur) {
    auto u = [](Rvp32s v) { return static_cast<uint32_t>(v); };
    const int last = ReadPastEdge ? w + 1 : w;
    cur[0] = prev[1];
    for (int x = 1; x < last; ++x)
        cur[x] = static_cast<Rvp32s>(u(prev[x - 1]) + u(prev[x + 1]) - u(prev2[x]) + term(s[x - 1], Sq) +
                                     term(s[x], Sq));
    if (!ReadPastEdge)
        cur[w] = static_cast<Rvp32s>(u(prev[w - 1]) + u(prev[w + 1]) - u(prev2[w]) + term(s[w - 1], Sq));
    cur[w + 1] = prev[w];
}

// Float table in double from the single-precision neighbours, rounded once.
// Column W is added onto the element the destination held before.
void tiltedRow32f(const Rvp8u* __restrict s, int w, const Rvp32f* __restrict prev2,
                  const Rvp32f* __restrict prev, Rvp32f* __restrict cur) {
    cur[0] = prev[1];
    for (int x = 1; x < w; ++x) {
        const double t = ((static_cast<double>(prev[x - 1]) - static_cast<double>(prev2[x])) +
                          static_cast<double>(prev[x + 1])) + static_cast<double>(s[x - 1]);
        cur[x] = static_cast<Rvp32f>(t + static_cast<double>(s[x]));
    }
    const double e = ((static_cast<double>(s[w - 1]) + static_cast<double>(prev[w - 1])) +
                      static_cast<double>(prev[w + 1])) - static_cast<double>(prev2[w]);
    cur[w] = cur[w] + static_cast<Rvp32f>(e);
    cur[w + 1] = prev[w];
}

void tiltedRowSqr64f(const Rvp8u* __restrict s, int w, const Rvp64f* __restrict prev2,
                     const Rvp64f* __restrict prev, Rvp64f* __restrict cur) {
    cur[0] = prev[1];
    for (int x = 1; x < w; ++x) {
        const double q = static_cast<double>(s[x - 1] * s[x - 1] + s[x] * s[x]);
        cur[x] = ((q + prev[x - 1]) - prev2[x]) + prev[x + 1];
    }
    cur[w] = ((static_cast<double>(s[w - 1] * s[w - 1]) + prev[w - 1]) + prev[w + 1]) - prev2[w];
    cur[w + 1] = prev[w];
}

template <class T> struct TiltedRows {
    static void run(const Rvp8u* s, int w, const T* p2, const T* p, T* c, bool sq, bool past);
};
template <> void TiltedRows<Rvp32s>::run(const Rvp8u* s, int w, const Rvp32s* p2, const Rvp32s* p, Rvp32s* c,
                                          bool sq, bool past) {
    if (past) (sq ? tiltedRow32s<true, true> : tiltedRow32s<false, true>)(s, w, p2, p, c);
    else (sq ? tiltedRow32s<true, false> : tiltedRow32s<false, false>)(s, w, p2, p, c);
}
template <> void TiltedRows<Rvp32f>::run(const Rvp8u* s, int w, const Rvp32f* p2, const Rvp32f* p, Rvp32f* c,
                                          bool, bool) {
    tiltedRow32f(s, w, p2, p, c);
}
template <> void TiltedRows<Rvp64f>::run(const Rvp8u* s, int w, const Rvp64f* p2, const Rvp64f* p, Rvp64f* c,
                                          bool, bool) {
    tiltedRowSqr64f(s, w, p2, p, c);
}

// past: the 32s/32s square form, whose inner step runs through column W.
template <class S, class Q>
void buildTilted(const Rvp8u* src, int srcStep, RvpiSize roi, UprightTable<S> sum, UprightTable<Q>* sqr,
                 bool past) {
    const int w = roi.width;
    for (int r = 0; r < 2; ++r) {
        fillRow(rowPtr(sum.p, sum.step, r), w + 2, sum.v);
        if (sqr) fillRow(rowPtr(sqr->p, sqr->step, r), w + 2, sqr->v);
    }
    for (int y = 0; y < roi.height; ++y) {
        const Rvp8u* s = rowPtr(src, srcStep, y);
        TiltedRows<S>::run(s, w, rowPtr(sum.p, sum.step, y), rowPtr(sum.p, sum.step, y + 1),
                           rowPtr(sum.p, sum.step, y + 2), false, past);
        if (sqr)
            TiltedRows<Q>::run(s, w, rowPtr(sqr->p, sqr->step, y), rowPtr(sqr->p, sqr->step, y + 1),
                               rowPtr(sqr->p, sqr->step, y + 2), true, past);
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
    UprightTable<S> sum{dst, dstStep, val};
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
    UprightTable<S> sum{dst, dstStep, val};
    UprightTable<Q> sq{sqr, sqrStep, valSqr};
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
