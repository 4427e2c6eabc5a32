// Row kernels of the summed-area tables, written once and compiled per
// instruction set (RVCV_ISA_NS is m7 or avx2). The upright rows form running
// sums of blocks of pixels with shifted adds and carry the block total to the
// next block; the tilted rows depend on earlier rows only and vectorise as
// plain loops. Sums are integers until the final conversion, so every path
// gives the same bits.
#ifndef RVCV_ISA_NS
#error "define RVCV_ISA_NS before including rvcvintegral_k.h"
#endif
#include <immintrin.h>

#include <cstdint>

#include "detect/rvcvintegral.h"

namespace rvcv {
namespace RVCV_ISA_NS {
namespace {

inline int32_t wrapAdd(int32_t a, uint32_t b) { return static_cast<int32_t>(static_cast<uint32_t>(a) + b); }

inline void storeRun(Rvp32s* cur, const Rvp32s* prev, __m128i run) {
    const __m128i p = _mm_loadu_si128(reinterpret_cast<const __m128i*>(prev));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(cur), _mm_add_epi32(p, run));
}
inline void storeRun(Rvp32f* cur, const Rvp32f* prev, __m128i run) {
    _mm_storeu_ps(cur, _mm_add_ps(_mm_loadu_ps(prev), _mm_cvtepi32_ps(run)));
}
inline Rvp32s addRun(Rvp32s prev, int32_t run) { return wrapAdd(prev, static_cast<uint32_t>(run)); }
inline Rvp32f addRun(Rvp32f prev, int32_t run) { return prev + static_cast<Rvp32f>(run); }

inline __m128i pixels8(const Rvp8u* s) {
    return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(s)), _mm_setzero_si128());
}

// Inclusive running sums of eight pixels or of their squares, as two
// vectors of four 32-bit sums (a square fits 16 unsigned bits).
template <bool Sq> inline void block8(const Rvp8u* s, __m128i& lo, __m128i& hi) {
    __m128i v = pixels8(s);
    if (!Sq) {  // at most 2040: the running sums fit 16 bits
        v = _mm_add_epi16(v, _mm_slli_si128(v, 2));
        v = _mm_add_epi16(v, _mm_slli_si128(v, 4));
        v = _mm_add_epi16(v, _mm_slli_si128(v, 8));
        lo = _mm_unpacklo_epi16(v, _mm_setzero_si128());
        hi = _mm_unpackhi_epi16(v, _mm_setzero_si128());
        return;
    }
    v = _mm_mullo_epi16(v, v);
    lo = _mm_unpacklo_epi16(v, _mm_setzero_si128());
    hi = _mm_unpackhi_epi16(v, _mm_setzero_si128());
    lo = _mm_add_epi32(lo, _mm_slli_si128(lo, 4));
    lo = _mm_add_epi32(lo, _mm_slli_si128(lo, 8));
    hi = _mm_add_epi32(hi, _mm_slli_si128(hi, 4));
    hi = _mm_add_epi32(hi, _mm_slli_si128(hi, 8));
    hi = _mm_add_epi32(hi, _mm_shuffle_epi32(lo, 0xFF));
}

#if defined(__AVX2__)
inline __m256i prefix8(__m256i x) {
    x = _mm256_add_epi32(x, _mm256_slli_si256(x, 4));
    x = _mm256_add_epi32(x, _mm256_slli_si256(x, 8));
    const __m256i t = _mm256_shuffle_epi32(x, 0xFF);
    return _mm256_add_epi32(x, _mm256_permute2x128_si256(t, t, 0x08));  // low lane's total into the high lane
}

// Running sums of sixteen pixels (or squares) as two vectors of eight; the
// second already includes the first's total.
template <bool Sq> inline void block16(const Rvp8u* s, __m256i& a, __m256i& b) {
    const __m128i raw = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s));
    if (Sq) {
        __m256i v = _mm256_cvtepu8_epi16(raw);
        v = _mm256_mullo_epi16(v, v);
        a = _mm256_cvtepu16_epi32(_mm256_castsi256_si128(v));
        b = _mm256_cvtepu16_epi32(_mm256_extracti128_si256(v, 1));
    } else {
        a = _mm256_cvtepu8_epi32(raw);
        b = _mm256_cvtepu8_epi32(_mm_srli_si128(raw, 8));
    }
    a = prefix8(a);
    b = _mm256_add_epi32(prefix8(b), _mm256_permutevar8x32_epi32(a, _mm256_set1_epi32(7)));
}

inline void storeRun8(Rvp32s* cur, const Rvp32s* prev, __m256i run) {
    const __m256i p = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(prev));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(cur), _mm256_add_epi32(p, run));
}
inline void storeRun8(Rvp32f* cur, const Rvp32f* prev, __m256i run) {
    _mm256_storeu_ps(cur, _mm256_add_ps(_mm256_loadu_ps(prev), _mm256_cvtepi32_ps(run)));
}
#endif

#if defined(__AVX2__)
// Lane-local running sums of 8 + 8 pixels in 16 bits (at most 2040).
inline __m256i prefix16x8(__m256i v) {
    v = _mm256_add_epi16(v, _mm256_slli_si256(v, 2));
    v = _mm256_add_epi16(v, _mm256_slli_si256(v, 4));
    return _mm256_add_epi16(v, _mm256_slli_si256(v, 8));
}
#endif

// A row of a 32-bit or float table over wrapping 32-bit running sums.
template <bool Sq, class T> void uprightRow32(const Rvp8u* s, int w, const T* prev, T* cur) {
    int x = 0;
    int32_t r = 0;
#if defined(__AVX2__)
    {
        __m256i run = _mm256_setzero_si256();
        const __m256i last = _mm256_set1_epi32(7);
        if (!Sq) {
            // 32 pixels a step: four groups of eight, each with its own
            // running sums, then the group totals carried along.
            for (; x + 32 <= w; x += 32) {
                const __m256i a = prefix16x8(_mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(s + x))));
                const __m256i b = prefix16x8(_mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(s + x + 16))));
                __m256i g[4] = {_mm256_cvtepu16_epi32(_mm256_castsi256_si128(a)),
                                _mm256_cvtepu16_epi32(_mm256_extracti128_si256(a, 1)),
                                _mm256_cvtepu16_epi32(_mm256_castsi256_si128(b)),
                                _mm256_cvtepu16_epi32(_mm256_extracti128_si256(b, 1))};
                for (int k = 0; k < 4; ++k) {
                    const __m256i total = _mm256_permutevar8x32_epi32(g[k], last);
                    storeRun8(cur + x + 8 * k, prev + x + 8 * k, _mm256_add_epi32(g[k], run));
                    run = _mm256_add_epi32(run, total);
                }
            }
        }
        for (; x + 16 <= w; x += 16) {
            __m256i a, b;
            block16<Sq>(s + x, a, b);
            storeRun8(cur + x, prev + x, _mm256_add_epi32(a, run));
            storeRun8(cur + x + 8, prev + x + 8, _mm256_add_epi32(b, run));
            run = _mm256_add_epi32(run, _mm256_permutevar8x32_epi32(b, last));
        }
        r = _mm256_cvtsi256_si32(run);
    }
#endif
    __m128i run = _mm_cvtsi32_si128(r);
    run = _mm_shuffle_epi32(run, 0);
    for (; x + 8 <= w; x += 8) {
        __m128i lo, hi;
        block8<Sq>(s + x, lo, hi);
        storeRun(cur + x, prev + x, _mm_add_epi32(lo, run));
        storeRun(cur + x + 4, prev + x + 4, _mm_add_epi32(hi, run));
        run = _mm_add_epi32(run, _mm_shuffle_epi32(hi, 0xFF));
    }
    r = _mm_cvtsi128_si32(run);
    for (; x < w; ++x) {
        r = wrapAdd(r, Sq ? static_cast<uint32_t>(s[x] * s[x]) : s[x]);
        cur[x] = addRun(prev[x], r);
    }
}

// A row of a double square table. The double running sum holds an exact
// integer, so adding block totals gives the same value as adding squares
// one by one.
void uprightSqr64f(const Rvp8u* s, int w, const Rvp64f* prev, Rvp64f* cur) {
    int x = 0;
    double r = 0;
#if defined(__AVX2__)
    {
        __m256d run = _mm256_setzero_pd();
        for (; x + 16 <= w; x += 16) {
            __m256i a, b;
            block16<true>(s + x, a, b);
            const __m256d d[4] = {_mm256_cvtepi32_pd(_mm256_castsi256_si128(a)),
                                  _mm256_cvtepi32_pd(_mm256_extracti128_si256(a, 1)),
                                  _mm256_cvtepi32_pd(_mm256_castsi256_si128(b)),
                                  _mm256_cvtepi32_pd(_mm256_extracti128_si256(b, 1))};
            for (int k = 0; k < 4; ++k)
                _mm256_storeu_pd(cur + x + 4 * k, _mm256_add_pd(_mm256_loadu_pd(prev + x + 4 * k), _mm256_add_pd(d[k], run)));
            run = _mm256_add_pd(run, _mm256_permute4x64_pd(d[3], 0xFF));
        }
        r = _mm256_cvtsd_f64(run);
    }
#endif
    __m128d run = _mm_set1_pd(r);
    for (; x + 8 <= w; x += 8) {
        __m128i lo, hi;
        block8<true>(s + x, lo, hi);
        const __m128d d[4] = {_mm_cvtepi32_pd(lo), _mm_cvtepi32_pd(_mm_shuffle_epi32(lo, 0x0E)),
                              _mm_cvtepi32_pd(hi), _mm_cvtepi32_pd(_mm_shuffle_epi32(hi, 0x0E))};
        for (int k = 0; k < 4; ++k)
            _mm_storeu_pd(cur + x + 2 * k, _mm_add_pd(_mm_loadu_pd(prev + x + 2 * k), _mm_add_pd(d[k], run)));
        run = _mm_add_pd(run, _mm_unpackhi_pd(d[3], d[3]));
    }
    r = _mm_cvtsd_f64(run);
    for (; x < w; ++x) {
        r += static_cast<double>(s[x] * s[x]);
        cur[x] = prev[x] + r;
    }
}

// ---- Tilted rows ---------------------------------------------------------------
// cur[x] = prev[x-1] + prev[x+1] - prev2[x] + s(x-1) + s(x) for 1 <= x < W;
// column W adds s(W-1) only (unless Past); column 0 copies prev[1] and
// column W+1 copies prev[W].

template <bool Sq> inline uint32_t term(Rvp8u v) { return Sq ? static_cast<uint32_t>(v * v) : v; }

template <bool Sq, bool Past>
void tiltedRow32s(const Rvp8u* __restrict s, int w, const Rvp32s* __restrict prev2, const Rvp32s* __restrict prev,
                  Rvp32s* __restrict cur) {
    auto u = [](Rvp32s v) { return static_cast<uint32_t>(v); };
    const int last = Past ? w + 1 : w;
    cur[0] = prev[1];
    for (int x = 1; x < last; ++x)
        cur[x] = static_cast<Rvp32s>(u(prev[x - 1]) + u(prev[x + 1]) - u(prev2[x]) + term<Sq>(s[x - 1]) + term<Sq>(s[x]));
    if (!Past) cur[w] = static_cast<Rvp32s>(u(prev[w - 1]) + u(prev[w + 1]) - u(prev2[w]) + term<Sq>(s[w - 1]));
    cur[w + 1] = prev[w];
}

// Float table in double from the single-precision neighbours, rounded once;
// column W is added onto what the destination held before.
void tiltedRow32f(const Rvp8u* __restrict s, int w, const Rvp32f* __restrict prev2, const Rvp32f* __restrict prev,
                  Rvp32f* __restrict cur) {
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

void tiltedSqr64f(const Rvp8u* __restrict s, int w, const Rvp64f* __restrict prev2, const Rvp64f* __restrict prev,
                  Rvp64f* __restrict cur) {
    cur[0] = prev[1];
    for (int x = 1; x < w; ++x) {
        const double q = static_cast<double>(s[x - 1] * s[x - 1] + s[x] * s[x]);
        cur[x] = ((q + prev[x - 1]) - prev2[x]) + prev[x + 1];
    }
    cur[w] = ((static_cast<double>(s[w - 1] * s[w - 1]) + prev[w - 1]) + prev[w + 1]) - prev2[w];
    cur[w + 1] = prev[w];
}

}  // namespace

extern const IntegralKernels kIntegral = {
    uprightRow32<false, Rvp32s>, uprightRow32<true, Rvp32s>, uprightRow32<false, Rvp32f>, uprightSqr64f,
    tiltedRow32s<false, false>,  tiltedRow32s<true, false>,  tiltedRow32s<false, true>,   tiltedRow32s<true, true>,
    tiltedRow32f,                tiltedSqr64f,
};

}  // namespace RVCV_ISA_NS
}  // namespace rvcv
