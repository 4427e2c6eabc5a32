// Row kernels of the summed-area tables, written once and compiled per
// instruction set (RVCV_ISA_NS is m7, avx2 or avx512). The upright rows form running
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

inline Rvp32s addRun(Rvp32s above, int32_t run) { return wrapAdd(above, static_cast<uint32_t>(run)); }
inline Rvp32f addRun(Rvp32f above, int32_t run) { return above + static_cast<Rvp32f>(run); }

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

// Adds a vector of running sums onto the row above (acc) and stores it.
inline __m128i addStore(Rvp32s* cur, __m128i acc, __m128i run) {
    acc = _mm_add_epi32(acc, run);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(cur), acc);
    return acc;
}
inline __m128 addStore(Rvp32f* cur, __m128 acc, __m128i run) {
    acc = _mm_add_ps(acc, _mm_cvtepi32_ps(run));
    _mm_storeu_ps(cur, acc);
    return acc;
}
inline __m128i load4(const Rvp32s* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
inline __m128 load4(const Rvp32f* p) { return _mm_loadu_ps(p); }

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
        a = prefix8(a);
        b = prefix8(b);
    } else {  // eight-pixel running sums fit 16 bits: shifted adds on 16 lanes at once
        __m256i v = _mm256_cvtepu8_epi16(raw);
        v = _mm256_add_epi16(v, _mm256_slli_si256(v, 2));
        v = _mm256_add_epi16(v, _mm256_slli_si256(v, 4));
        v = _mm256_add_epi16(v, _mm256_slli_si256(v, 8));
        a = _mm256_cvtepu16_epi32(_mm256_castsi256_si128(v));
        b = _mm256_cvtepu16_epi32(_mm256_extracti128_si256(v, 1));
    }
    b = _mm256_add_epi32(b, _mm256_permutevar8x32_epi32(a, _mm256_set1_epi32(7)));
}

inline __m256i addStore(Rvp32s* cur, __m256i acc, __m256i run) {
    acc = _mm256_add_epi32(acc, run);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(cur), acc);
    return acc;
}
inline __m256 addStore(Rvp32f* cur, __m256 acc, __m256i run) {
    acc = _mm256_add_ps(acc, _mm256_cvtepi32_ps(run));
    _mm256_storeu_ps(cur, acc);
    return acc;
}
inline __m256i load8(const Rvp32s* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
inline __m256 load8(const Rvp32f* p) { return _mm256_loadu_ps(p); }
#endif

#if defined(__AVX512BW__) && defined(__AVX512DQ__)
// Thirty-two pixels a step in 16-bit lanes (a running sum of 32 pixels is at
// most 8160, so exact): one 64-bit multiply by 0x0001000100010001 sums each
// group of four words into its upper words, a byte shuffle carries within
// 128-bit blocks, and two word permutes carry across blocks. Word permutes
// with zeroed odd lanes then widen to 32 bits, and the last one broadcasts
// the total, so the carry between steps is a single add.
struct WordIdx {
    alignas(64) int16_t fromPrev[32], fromPrev2[32], lo[32], hi[32], total[32];
    alignas(64) int8_t carry4[64];  // per 128-bit block: word 3 into words 4 to 7
    constexpr WordIdx() : fromPrev(), fromPrev2(), lo(), hi(), total(), carry4() {
        for (int i = 0; i < 64; ++i) carry4[i] = static_cast<int8_t>(i % 16 < 8 ? -1 : 6 + (i & 1));
        for (int i = 0; i < 32; ++i) {
            const int b = i / 8;
            fromPrev[i] = static_cast<int16_t>(b >= 1 ? (b - 1) * 8 + 7 : 0);
            fromPrev2[i] = static_cast<int16_t>(b >= 2 ? (b - 2) * 8 + 7 : 0);
            lo[i] = static_cast<int16_t>(i & 1 ? 0 : i / 2);
            hi[i] = static_cast<int16_t>(i & 1 ? 0 : 16 + i / 2);
            total[i] = 31;
        }
    }
};
constexpr WordIdx kWordIdx{};

struct Prefix32 {
    __m512i m4 = _mm512_set1_epi64(0x0001000100010001LL);
    __m512i carry4 = _mm512_load_si512(kWordIdx.carry4);
    __m512i fromPrev = _mm512_load_si512(kWordIdx.fromPrev), fromPrev2 = _mm512_load_si512(kWordIdx.fromPrev2);
    __m512i lo = _mm512_load_si512(kWordIdx.lo), hi = _mm512_load_si512(kWordIdx.hi);
    __m512i total = _mm512_load_si512(kWordIdx.total);

    // Running sums of the 32 pixels at s (zeros past the mask) as two vectors
    // of sixteen, plus the total in every lane.
    void operator()(const Rvp8u* s, __mmask32 m, __m512i& a, __m512i& b, __m512i& t) const {
        __m512i v = _mm512_cvtepu8_epi16(_mm256_maskz_loadu_epi8(m, s));
        v = _mm512_mullo_epi64(v, m4);
        v = _mm512_add_epi16(v, _mm512_shuffle_epi8(v, carry4));
        v = _mm512_add_epi16(v, _mm512_maskz_permutexvar_epi16(0xFFFFFF00u, fromPrev, v));
        v = _mm512_add_epi16(v, _mm512_maskz_permutexvar_epi16(0xFFFF0000u, fromPrev2, v));
        a = _mm512_maskz_permutexvar_epi16(0x55555555u, lo, v);
        b = _mm512_maskz_permutexvar_epi16(0x55555555u, hi, v);
        t = _mm512_maskz_permutexvar_epi16(0x55555555u, total, v);
    }
};

// (A vector conversion rather than the intrinsic, whose undefined pass-through
// operand trips GCC 12's uninitialised-value warning.)
inline __m512 toFloat(__m512i v) {
    typedef int32_t s32x16 __attribute__((vector_size(64)));
    typedef float f32x16 __attribute__((vector_size(64)));
    return reinterpret_cast<__m512>(__builtin_convertvector(reinterpret_cast<s32x16>(v), f32x16));
}
inline void addStore16(const Rvp32s* prev, Rvp32s* cur, __m512i run, __mmask16 m) {
    const __m512i above = _mm512_maskz_loadu_epi32(m, prev);
    _mm512_mask_storeu_epi32(cur, m, _mm512_add_epi32(above, run));
}
inline void addStore16(const Rvp32f* prev, Rvp32f* cur, __m512i run, __mmask16 m) {
    const __m512 above = _mm512_maskz_loadu_ps(m, prev);
    _mm512_mask_storeu_ps(cur, m, _mm512_add_ps(above, toFloat(run)));
}
inline void addStore16(const Rvp32s* prev, Rvp32s* cur, __m512i run) {
    _mm512_storeu_si512(cur, _mm512_add_epi32(_mm512_loadu_si512(prev), run));
}
inline void addStore16(const Rvp32f* prev, Rvp32f* cur, __m512i run) {
    _mm512_storeu_ps(cur, _mm512_add_ps(_mm512_loadu_ps(prev), toFloat(run)));
}

// One row of the sum table. Rows go one at a time: the row above is still in
// the first-level cache, and a single output stream beats two interleaved.
// Two blocks a step, both prefixed before the carry joins them.
template <class T> void uprightRow512(const Rvp8u* s, int w, const T* prev, T* cur) {
    const Prefix32 pre;  // local, so that the stores cannot alias it and the constants stay in registers
    __m512i run = _mm512_setzero_si512(), a, b, t;
    int x = 0;
    for (; x + 64 <= w; x += 64) {
        __m512i a2, b2, t2;
        pre(s + x, ~0u, a, b, t);
        pre(s + x + 32, ~0u, a2, b2, t2);
        const __m512i run2 = _mm512_add_epi32(run, t);
        addStore16(prev + x, cur + x, _mm512_add_epi32(a, run));
        addStore16(prev + x + 16, cur + x + 16, _mm512_add_epi32(b, run));
        addStore16(prev + x + 32, cur + x + 32, _mm512_add_epi32(a2, run2));
        addStore16(prev + x + 48, cur + x + 48, _mm512_add_epi32(b2, run2));
        run = _mm512_add_epi32(run2, t2);
    }
    for (; x < w; x += 32) {  // up to 63 pixels left, masked past the row's end
        const int n = w - x;
        pre(s + x, n >= 32 ? ~0u : (1u << n) - 1, a, b, t);
        const __mmask16 ma = static_cast<__mmask16>(n >= 16 ? 0xFFFF : (1u << n) - 1);
        const __mmask16 mb = static_cast<__mmask16>(n >= 32 ? 0xFFFF : n > 16 ? (1u << (n - 16)) - 1 : 0);
        addStore16(prev + x, cur + x, _mm512_add_epi32(a, run), ma);
        if (mb) addStore16(prev + x + 16, cur + x + 16, _mm512_add_epi32(b, run), mb);
        run = _mm512_add_epi32(run, t);
    }
}

template <int R, class T> void uprightRows512(const Rvp8u* const* s, int w, const T* prev, T* const* cur) {
    for (int k = 0; k < R; ++k) uprightRow512(s[k], w, k ? cur[k - 1] : prev, cur[k]);
}
#endif

// R consecutive rows of a 32-bit or float table over wrapping 32-bit running
// sums: row r is row r-1 (prev for the first) plus the running sums of
// source row r. Keeping the row above in registers, rather than reading it
// back, is what makes two rows at a time pay.
template <int R, bool Sq, class T>
void uprightRows32(const Rvp8u* const* s, int w, const T* prev, T* const* cur) {
    int x = 0;
    int32_t r[R] = {};
#if defined(__AVX2__)
    {
        __m256i run[R];
        for (int k = 0; k < R; ++k) run[k] = _mm256_setzero_si256();
        const __m256i last = _mm256_set1_epi32(7);
        for (; x + 16 <= w; x += 16) {
            auto acc0 = load8(prev + x);
            auto acc1 = load8(prev + x + 8);
            for (int k = 0; k < R; ++k) {
                __m256i a, b;
                block16<Sq>(s[k] + x, a, b);
                acc0 = addStore(cur[k] + x, acc0, _mm256_add_epi32(a, run[k]));
                acc1 = addStore(cur[k] + x + 8, acc1, _mm256_add_epi32(b, run[k]));
                run[k] = _mm256_add_epi32(run[k], _mm256_permutevar8x32_epi32(b, last));
            }
        }
        for (int k = 0; k < R; ++k) r[k] = _mm256_cvtsi256_si32(run[k]);
    }
#endif
    __m128i run[R];
    for (int k = 0; k < R; ++k) run[k] = _mm_set1_epi32(r[k]);
    for (; x + 8 <= w; x += 8) {
        auto acc0 = load4(prev + x);
        auto acc1 = load4(prev + x + 4);
        for (int k = 0; k < R; ++k) {
            __m128i lo, hi;
            block8<Sq>(s[k] + x, lo, hi);
            acc0 = addStore(cur[k] + x, acc0, _mm_add_epi32(lo, run[k]));
            acc1 = addStore(cur[k] + x + 4, acc1, _mm_add_epi32(hi, run[k]));
            run[k] = _mm_add_epi32(run[k], _mm_shuffle_epi32(hi, 0xFF));
        }
    }
    for (int k = 0; k < R; ++k) r[k] = _mm_cvtsi128_si32(run[k]);
    for (; x < w; ++x) {
        T above = prev[x];
        for (int k = 0; k < R; ++k) {
            r[k] = wrapAdd(r[k], Sq ? static_cast<uint32_t>(s[k][x] * s[k][x]) : s[k][x]);
            above = cur[k][x] = addRun(above, r[k]);
        }
    }
}

// R consecutive rows of a double square table. The double running sum
// holds an exact integer, so adding block totals gives the same value as
// adding squares one by one.
template <int R> void uprightRowsSqr64f(const Rvp8u* const* s, int w, const Rvp64f* prev, Rvp64f* const* cur) {
    int x = 0;
    double r[R] = {};
#if defined(__AVX2__)
    {
        __m256d run[R];
        for (int k = 0; k < R; ++k) run[k] = _mm256_setzero_pd();
        for (; x + 16 <= w; x += 16) {
            __m256d acc[4];
            for (int q = 0; q < 4; ++q) acc[q] = _mm256_loadu_pd(prev + x + 4 * q);
            for (int k = 0; k < R; ++k) {
                __m256i a, b;
                block16<true>(s[k] + x, a, b);
                const __m256d d[4] = {_mm256_cvtepi32_pd(_mm256_castsi256_si128(a)),
                                      _mm256_cvtepi32_pd(_mm256_extracti128_si256(a, 1)),
                                      _mm256_cvtepi32_pd(_mm256_castsi256_si128(b)),
                                      _mm256_cvtepi32_pd(_mm256_extracti128_si256(b, 1))};
                for (int q = 0; q < 4; ++q) {
                    acc[q] = _mm256_add_pd(acc[q], _mm256_add_pd(d[q], run[k]));
                    _mm256_storeu_pd(cur[k] + x + 4 * q, acc[q]);
                }
                run[k] = _mm256_add_pd(run[k], _mm256_permute4x64_pd(d[3], 0xFF));
            }
        }
        for (int k = 0; k < R; ++k) r[k] = _mm256_cvtsd_f64(run[k]);
    }
#endif
    __m128d run[R];
    for (int k = 0; k < R; ++k) run[k] = _mm_set1_pd(r[k]);
    for (; x + 8 <= w; x += 8) {
        __m128d acc[4];
        for (int q = 0; q < 4; ++q) acc[q] = _mm_loadu_pd(prev + x + 2 * q);
        for (int k = 0; k < R; ++k) {
            __m128i lo, hi;
            block8<true>(s[k] + x, lo, hi);
            const __m128d d[4] = {_mm_cvtepi32_pd(lo), _mm_cvtepi32_pd(_mm_shuffle_epi32(lo, 0x0E)),
                                  _mm_cvtepi32_pd(hi), _mm_cvtepi32_pd(_mm_shuffle_epi32(hi, 0x0E))};
            for (int q = 0; q < 4; ++q) {
                acc[q] = _mm_add_pd(acc[q], _mm_add_pd(d[q], run[k]));
                _mm_storeu_pd(cur[k] + x + 2 * q, acc[q]);
            }
            run[k] = _mm_add_pd(run[k], _mm_unpackhi_pd(d[3], d[3]));
        }
    }
    for (int k = 0; k < R; ++k) r[k] = _mm_cvtsd_f64(run[k]);
    for (; x < w; ++x) {
        double above = prev[x];
        for (int k = 0; k < R; ++k) {
            r[k] += static_cast<double>(s[k][x] * s[k][x]);
            above = cur[k][x] = above + r[k];
        }
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
#if defined(__AVX512BW__) && defined(__AVX512DQ__)
    {uprightRows512<1, Rvp32s>, uprightRows512<2, Rvp32s>},
    {uprightRows32<1, true, Rvp32s>, uprightRows32<2, true, Rvp32s>},
    {uprightRows512<1, Rvp32f>, uprightRows512<2, Rvp32f>},
#else
    {uprightRows32<1, false, Rvp32s>, uprightRows32<2, false, Rvp32s>},
    {uprightRows32<1, true, Rvp32s>, uprightRows32<2, true, Rvp32s>},
    {uprightRows32<1, false, Rvp32f>, uprightRows32<2, false, Rvp32f>},
#endif
    {uprightRowsSqr64f<1>, uprightRowsSqr64f<2>},
    tiltedRow32s<false, false>,  tiltedRow32s<true, false>,  tiltedRow32s<false, true>,   tiltedRow32s<true, true>,
    tiltedRow32f,                tiltedSqr64f,
};

}  // namespace RVCV_ISA_NS
}  // namespace rvcv
