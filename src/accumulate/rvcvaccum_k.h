// Accumulation kernels, written once over source type, operation and mask,
// compiled per instruction set. A row runs 32 (8-bit sources), 16 and 8
// pixels a step (AVX2) or 4 (SSE), then groups of 4; with AVX-512 the 8-bit
// forms run 64-pixel blocks, the unmasked float forms of images up to 11 MiB
// 32-pixel ones, and 16-lane blocks with lane masks at both ends. Larger
// unmasked float images run as two interleaved streams.
// All of it is branch-free; only the last width % 4 pixels go one by one.
// So which pixels take the single-sample path (where a masked-out pixel is
// left alone, negative zero included) is the same on every instruction set.
#include <algorithm>
#include <cstdint>
#include <type_traits>

#include "rvcvaccum.h"
#include "rvcvsimd.h"

namespace rvcv {
namespace RVCV_ISA_NS {
namespace {

template <class T> inline T* nextRow(T* p, int64_t bytes) {
    using B = typename std::conditional<std::is_const<T>::value, const char, char>::type;
    return reinterpret_cast<T*>(reinterpret_cast<B*>(p) + bytes);
}

// ---- Four pixels (SSE) --------------------------------------------------------
// Samples widened exactly to float.
inline __m128i load4bytes(const void* p) {
    int32_t v;
    std::memcpy(&v, p, 4);
    return _mm_cvtsi32_si128(v);
}
inline __m128 widen4(const uint8_t* p) {
    const __m128i z = _mm_setzero_si128();
    return _mm_cvtepi32_ps(_mm_unpacklo_epi16(_mm_unpacklo_epi8(load4bytes(p), z), z));
}
inline __m128 widen4(const int8_t* p) {
    const __m128i x = load4bytes(p);
    const __m128i y = _mm_unpacklo_epi8(x, x);
    return _mm_cvtepi32_ps(_mm_srai_epi32(_mm_unpacklo_epi16(y, y), 24));
}
inline __m128 widen4(const uint16_t* p) {
    return _mm_cvtepi32_ps(_mm_unpacklo_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)), _mm_setzero_si128()));
}
inline __m128 widen4(const float* p) { return _mm_loadu_ps(p); }
// Clears the term's bits where the mask byte is zero.
inline __m128 select4(const uint8_t* m, __m128 t) {
    const __m128i off = _mm_cmpeq_epi8(load4bytes(m), _mm_setzero_si128());
    const __m128i y = _mm_unpacklo_epi8(off, off);
    return _mm_andnot_ps(_mm_castsi128_ps(_mm_unpacklo_epi16(y, y)), t);
}
inline void store(float* p, __m128 v, bool nt) {
    if (nt) _mm_stream_ps(p, v);
    else _mm_storeu_ps(p, v);
}
inline __m128 broadcast4(float a) { return _mm_set1_ps(a); }

#ifdef __AVX2__
// ---- Eight pixels (AVX2) ------------------------------------------------------
inline __m128i load8bytes(const void* p) { return _mm_loadl_epi64(static_cast<const __m128i*>(p)); }
inline __m256 widen8(const uint8_t* p) { return _mm256_cvtepi32_ps(_mm256_cvtepu8_epi32(load8bytes(p))); }
inline __m256 widen8(const int8_t* p) { return _mm256_cvtepi32_ps(_mm256_cvtepi8_epi32(load8bytes(p))); }
inline __m256 widen8(const uint16_t* p) {
    return _mm256_cvtepi32_ps(_mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))));
}
inline __m256 widen8(const float* p) { return _mm256_loadu_ps(p); }
// Sixteen samples as two halves of eight.
inline void widenBytes(__m128i b, uint8_t, __m256& lo, __m256& hi) {
    lo = _mm256_cvtepi32_ps(_mm256_cvtepu8_epi32(b));
    hi = _mm256_cvtepi32_ps(_mm256_cvtepu8_epi32(_mm_unpackhi_epi64(b, b)));
}
inline void widenBytes(__m128i b, int8_t, __m256& lo, __m256& hi) {
    lo = _mm256_cvtepi32_ps(_mm256_cvtepi8_epi32(b));
    hi = _mm256_cvtepi32_ps(_mm256_cvtepi8_epi32(_mm_unpackhi_epi64(b, b)));
}
// Products of unsigned 8-bit samples are exact in 16 bits (and in float), so
// one 16-bit multiply gives the same term as two conversions and a float
// multiply. Not for signed samples: 0 * -5 is -0 in float, +0 in integers.
inline void productBytes(__m128i a, __m128i b, __m256& lo, __m256& hi) {
    const __m256i p = _mm256_mullo_epi16(_mm256_cvtepu8_epi16(a), _mm256_cvtepu8_epi16(b));
    lo = _mm256_cvtepi32_ps(_mm256_cvtepu16_epi32(_mm256_castsi256_si128(p)));
    hi = _mm256_cvtepi32_ps(_mm256_cvtepu16_epi32(_mm256_extracti128_si256(p, 1)));
}
inline __m128i load16bytes(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
inline void widen16(const uint8_t* p, __m256& lo, __m256& hi) { widenBytes(load16bytes(p), uint8_t(), lo, hi); }
inline void widen16(const int8_t* p, __m256& lo, __m256& hi) { widenBytes(load16bytes(p), int8_t(), lo, hi); }
template <class T> inline void widen16(const T* p, __m256& lo, __m256& hi) {
    lo = widen8(p);
    hi = widen8(p + 8);
}
// All ones where the mask byte is zero: the lanes whose term is cleared.
inline __m256 maskedOut8(const uint8_t* m) {
    return _mm256_castsi256_ps(_mm256_cmpeq_epi32(_mm256_cvtepu8_epi32(load8bytes(m)), _mm256_setzero_si256()));
}
inline void maskedOut16(const uint8_t* m, __m256& lo, __m256& hi) {
    const __m128i off = _mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(m)), _mm_setzero_si128());
    lo = _mm256_castsi256_ps(_mm256_cvtepi8_epi32(off));
    hi = _mm256_castsi256_ps(_mm256_cvtepi8_epi32(_mm_unpackhi_epi64(off, off)));
}
// Rows bypassing the cache are 16-byte aligned, so two 16-byte streams.
inline void store(float* p, __m256 v, bool nt) {
    if (nt) {
        _mm_stream_ps(p, _mm256_castps256_ps128(v));
        _mm_stream_ps(p + 4, _mm256_extractf128_ps(v, 1));
    } else {
        _mm256_storeu_ps(p, v);
    }
}
inline __m256 broadcast8(float a) { return _mm256_set1_ps(a); }
#endif

// The term added to the accumulator, in the family's exact operation order.
template <int Op> struct Term {
    template <class V> static V of(V s1, V s2, V acc, V alpha) {
        (void)s2; (void)acc; (void)alpha;
        if constexpr (Op == kAccAdd) return s1;
        else if constexpr (Op == kAccSquare) return s1 * s1;
        else if constexpr (Op == kAccProduct) return s1 * s2;
        else return (s1 - acc) * alpha;
    }
};

#ifdef __AVX2__
template <int Op, bool Masked>
inline void finish8(__m256 x, __m256 y, __m256 off, const float* acc, float* d, __m256 alpha, bool nt) {
    const __m256 a = _mm256_loadu_ps(acc);
    __m256 t = Term<Op>::of(x, y, a, alpha);
    if (Masked) t = _mm256_andnot_ps(off, t);
    store(d, a + t, nt);
}

template <class T, int Op, bool Masked>
inline void group8(const T* s1, const T* s2, const uint8_t* m, const float* acc, float* d, __m256 alpha, bool nt) {
    const __m256 x = widen8(s1);
    finish8<Op, Masked>(x, Op == kAccProduct ? widen8(s2) : x, Masked ? maskedOut8(m) : x, acc, d, alpha, nt);
}

// Thirty-two pixels of an 8-bit source: one 32-byte load of each row, and
// all four accumulator blocks read before any is written. Sums, squares and
// products clear the samples, weighted averages the term (as in group16).
template <class T, int Op, bool Masked>
inline void group32(const T* s1, const T* s2, const uint8_t* m, const float* acc, float* d, __m256 alpha, bool nt) {
    constexpr bool clearTerm = Masked && Op == kAccWeighted;
    const __m256i zero = _mm256_setzero_si256();
    __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(s1)), b = a, off = zero;
    if (Op == kAccProduct) b = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(s2));
    if (Masked) off = _mm256_cmpeq_epi8(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(m)), zero);
    if (Masked && !clearTerm) {
        a = _mm256_andnot_si256(off, a);
        b = _mm256_andnot_si256(off, b);
    }
    __m256 x[4], y[4], k[4], v[4];
    const __m128i alo = _mm256_castsi256_si128(a), ahi = _mm256_extracti128_si256(a, 1);
    const __m128i blo = _mm256_castsi256_si128(b), bhi = _mm256_extracti128_si256(b, 1);
    if constexpr (Op == kAccProduct && std::is_same<T, uint8_t>::value) {
        productBytes(alo, blo, x[0], x[1]);
        productBytes(ahi, bhi, x[2], x[3]);
    } else {
        widenBytes(alo, T(), x[0], x[1]);
        widenBytes(ahi, T(), x[2], x[3]);
        if (Op == kAccProduct) {
            widenBytes(blo, T(), y[0], y[1]);
            widenBytes(bhi, T(), y[2], y[3]);
        }
    }
    if (clearTerm) {
        const __m128i olo = _mm256_castsi256_si128(off), ohi = _mm256_extracti128_si256(off, 1);
        const __m128i parts[4] = {olo, _mm_unpackhi_epi64(olo, olo), ohi, _mm_unpackhi_epi64(ohi, ohi)};
        for (int i = 0; i < 4; ++i) k[i] = _mm256_castsi256_ps(_mm256_cvtepi8_epi32(parts[i]));
    }
    for (int i = 0; i < 4; ++i) v[i] = _mm256_loadu_ps(acc + 8 * i);
    for (int i = 0; i < 4; ++i) {
        // A u8 product arrives formed: it is added as it stands.
        constexpr bool formed = Op == kAccProduct && std::is_same<T, uint8_t>::value;
        __m256 t = formed ? x[i] : Term<Op>::of(x[i], Op == kAccProduct ? y[i] : x[i], v[i], alpha);
        if (clearTerm) t = _mm256_andnot_ps(k[i], t);
        v[i] = v[i] + t;
    }
    for (int i = 0; i < 4; ++i) store(d + 8 * i, v[i], nt);
}

// Sixteen pixels from one load of each 8-bit row.
template <class T, int Op, bool Masked>
inline void group16(const T* s1, const T* s2, const uint8_t* m, const float* acc, float* d, __m256 alpha, bool nt) {
    __m256 x0, x1, y0, y1, k0, k1;
    if constexpr (sizeof(T) == 1 && Op != kAccWeighted) {
        // Integer samples: clearing the samples instead of the term gives the
        // same +0 term (both factors cleared for a product), one step sooner.
        __m128i a = load16bytes(s1), b = Op == kAccProduct ? load16bytes(s2) : a;
        if (Masked) {
            const __m128i off = _mm_cmpeq_epi8(load16bytes(m), _mm_setzero_si128());
            a = _mm_andnot_si128(off, a);
            b = _mm_andnot_si128(off, b);
        }
        if (Op == kAccProduct && std::is_same<T, uint8_t>::value) {
            productBytes(a, b, x0, x1);
            finish8<kAccAdd, false>(x0, x0, x0, acc, d, alpha, nt);
            finish8<kAccAdd, false>(x1, x1, x1, acc + 8, d + 8, alpha, nt);
        } else {
            widenBytes(a, T(), x0, x1);
            if (Op == kAccProduct) widenBytes(b, T(), y0, y1);
            else y0 = x0, y1 = x1;
            finish8<Op, false>(x0, y0, x0, acc, d, alpha, nt);
            finish8<Op, false>(x1, y1, x1, acc + 8, d + 8, alpha, nt);
        }
        return;
    }
    widen16(s1, x0, x1);
    if (Op == kAccProduct) widen16(s2, y0, y1);
    else y0 = x0, y1 = x1;
    if (Masked) maskedOut16(m, k0, k1);
    else k0 = x0, k1 = x1;
    finish8<Op, Masked>(x0, y0, k0, acc, d, alpha, nt);
    finish8<Op, Masked>(x1, y1, k1, acc + 8, d + 8, alpha, nt);
}
#endif

// Branch-free: the term is cleared after it is formed, so a NaN or infinity
// of an unselected source pixel never reaches the sum, which becomes acc + 0.
template <class T, int Op, bool Masked>
inline void group4(const T* s1, const T* s2, const uint8_t* m, const float* acc, float* d, __m128 alpha, bool nt) {
    const __m128 a = _mm_loadu_ps(acc);
    const __m128 x = widen4(s1);
    const __m128 y = Op == kAccProduct ? widen4(s2) : x;
    __m128 t = Term<Op>::of(x, y, a, alpha);
    if (Masked) t = select4(m, t);
    store(d, a + t, nt);
}

#ifdef __AVX512F__
// ---- Sixteen pixels (AVX-512) -------------------------------------------------
// 64-byte accumulator accesses pay where the sources are 8-bit, and for
// unmasked float sources when each accumulator block is read once, except in
// large images (data streaming from beyond the inner caches measured faster
// with 32-byte accesses). 16-bit sources and masked float sources measured
// faster with the AVX2 row.
template <class T, bool Masked> constexpr bool kWide512 = sizeof(T) == 1 || (sizeof(T) == 4 && !Masked);

// Exact conversions. The zero-masking forms with every lane set are the plain
// instructions; the plain intrinsics' undefined pass-through operand trips
// GCC's uninitialised-value warning. Part: only the lanes of k are read.
constexpr __mmask16 kAll16 = 0xffff;
inline __m512 toFloat(__m512i v) { return _mm512_maskz_cvtepi32_ps(kAll16, v); }
template <bool Part> inline __m128i bytes16(const void* p, __mmask16 k) {
    if constexpr (Part) return _mm_maskz_loadu_epi8(k, p);
    else return _mm_loadu_si128(static_cast<const __m128i*>(p));
}
template <bool Part> inline __m512 samples16(const uint8_t* p, __mmask16 k) {
    return toFloat(_mm512_maskz_cvtepu8_epi32(kAll16, bytes16<Part>(p, k)));
}
template <bool Part> inline __m512 samples16(const int8_t* p, __mmask16 k) {
    return toFloat(_mm512_maskz_cvtepi8_epi32(kAll16, bytes16<Part>(p, k)));
}
template <bool Part> inline __m512 samples16(const float* p, __mmask16 k) {
    if constexpr (Part) return _mm512_maskz_loadu_ps(k, p);
    else return _mm512_loadu_ps(p);
}

// Sixteen pixels, or the lanes of `lanes` when Part; `sel` holds the lanes
// whose mask byte is set. Masked-out samples are read as zero where that alone
// makes the term +0 (sums, squares, products: both factors are cleared, so a
// signed 0 * -5 cannot give -0); the weighted term is cleared after it is
// formed. Either way the pixel becomes acc + 0.
template <class T, int Op, bool Masked, bool Part, bool NT>
inline void block16(const T* s1, const T* s2, const float* acc, float* d, __m512 alpha, __mmask16 lanes,
                    __mmask16 sel) {
    constexpr bool zeroSamples = Masked && Op != kAccWeighted;
    const __mmask16 k = zeroSamples ? sel : lanes;
    const __m512 x = samples16<Part || zeroSamples>(s1, k);
    const __m512 y = Op == kAccProduct ? samples16<Part || zeroSamples>(s2, k) : x;
    const __m512 a = samples16<Part>(acc, lanes);
    __m512 t = Term<Op>::of(x, y, a, alpha);
    if constexpr (Masked && Op == kAccWeighted) t = _mm512_maskz_mov_ps(sel, t);
    const __m512 r = a + t;
    if constexpr (Part) _mm512_mask_storeu_ps(d, lanes, r);
    else if constexpr (NT) _mm512_stream_ps(d, r);
    else _mm512_storeu_ps(d, r);
}

// The lanes of `lanes` whose mask byte is set.
template <bool Masked, bool Part> inline __mmask16 selected16(const uint8_t* m, __mmask16 lanes) {
    if constexpr (!Masked) return lanes;
    else {
        const __m128i mv = bytes16<Part>(m, lanes);
        return _mm_test_epi8_mask(mv, mv) & lanes;
    }
}

template <class T, int Op, bool Masked>
inline void part16(const T* s1, const T* s2, const uint8_t* m, const float* acc, float* d, __m512 alpha, int n) {
    const __mmask16 lanes = static_cast<__mmask16>((1u << n) - 1u);
    block16<T, Op, Masked, true, false>(s1, s2, acc, d, alpha, lanes, selected16<Masked, true>(m, lanes));
}

// Sixty-four pixels: one test of 64 mask bytes serves four blocks.
template <class T, int Op, bool Masked, bool NT>
inline void block64(const T* s1, const T* s2, const uint8_t* m, const float* acc, float* d, __m512 alpha) {
    uint64_t sel = ~uint64_t{0};
    if constexpr (Masked) {
        const __m512i mv = _mm512_loadu_si512(m);
        sel = _mm512_test_epi8_mask(mv, mv);
    }
    for (int i = 0; i < 4; ++i, sel >>= 16)
        block16<T, Op, Masked, false, NT>(s1 + 16 * i, s2 + 16 * i, acc + 16 * i, d + 16 * i, alpha, kAll16,
                                          static_cast<__mmask16>(sel));
}

// The branch-free part of a row, [0, n) with n a multiple of 4. A partial
// block first brings the stores to a 64-byte boundary (so none straddles a
// cache line, and bypassing stores are aligned), another ends the row.
template <class T, int Op, bool Masked, bool NT>
inline void wideRow(const T* s1, const T* s2, const uint8_t* m, const float* acc, float* d, int n, float alpha) {
    const __m512 alpha16 = _mm512_set1_ps(alpha);
    const uintptr_t addr = reinterpret_cast<uintptr_t>(d);
    int x = 0;
    if ((addr & 3) == 0 && (addr & 63) != 0) {
        x = std::min(n, static_cast<int>((64 - (addr & 63)) / 4));
        part16<T, Op, Masked>(s1, s2, m, acc, d, alpha16, x);
    }
    if constexpr (sizeof(T) == 4 && !Masked) {
        // Float sources: two blocks a step, each accumulator block read once.
        for (; x + 32 <= n; x += 32) {
            const __m512 a0 = _mm512_loadu_ps(acc + x), a1 = _mm512_loadu_ps(acc + x + 16);
            const __m512 x0 = samples16<false>(s1 + x, kAll16), x1 = samples16<false>(s1 + x + 16, kAll16);
            const __m512 y0 = Op == kAccProduct ? samples16<false>(s2 + x, kAll16) : x0;
            const __m512 y1 = Op == kAccProduct ? samples16<false>(s2 + x + 16, kAll16) : x1;
            const __m512 r0 = a0 + Term<Op>::of(x0, y0, a0, alpha16), r1 = a1 + Term<Op>::of(x1, y1, a1, alpha16);
            if constexpr (NT) { _mm512_stream_ps(d + x, r0); _mm512_stream_ps(d + x + 16, r1); }
            else { _mm512_storeu_ps(d + x, r0); _mm512_storeu_ps(d + x + 16, r1); }
        }
    }
    for (; x + 64 <= n; x += 64)
        block64<T, Op, Masked, NT>(s1 + x, s2 + x, Masked ? m + x : m, acc + x, d + x, alpha16);
    for (; x + 16 <= n; x += 16)
        block16<T, Op, Masked, false, NT>(s1 + x, s2 + x, acc + x, d + x, alpha16, kAll16,
                                          selected16<Masked, false>(Masked ? m + x : m, kAll16));
    if (x < n) part16<T, Op, Masked>(s1 + x, s2 + x, Masked ? m + x : m, acc + x, d + x, alpha16, n - x);
}
#endif

#ifdef __AVX2__
// The groups of 16 and 8 at the start of a row; returns the first pixel left.
template <class T, int Op, bool Masked, bool NT>
inline int groups256(const T* s1, const T* s2, const uint8_t* m, const float* acc, float* d, int w, float alpha) {
    const __m256 alpha8 = broadcast8(alpha);
    int x = 0;
    // A 16-byte aligned row starts with one group of 4 so that the wide
    // stores don't straddle cache lines; the groups stay the same.
    if ((reinterpret_cast<uintptr_t>(d) & 31) == 16 && w >= 4) {
        group4<T, Op, Masked>(s1, s2, m, acc, d, broadcast4(alpha), NT);
        x = 4;
    }
    if constexpr (sizeof(T) == 1)
        for (; x + 32 <= w; x += 32)
            group32<T, Op, Masked>(s1 + x, s2 + x, Masked ? m + x : m, acc + x, d + x, alpha8, NT);
    for (; x + 16 <= w; x += 16)
        group16<T, Op, Masked>(s1 + x, s2 + x, Masked ? m + x : m, acc + x, d + x, alpha8, NT);
    if (x + 8 <= w) {
        group8<T, Op, Masked>(s1 + x, s2 + x, Masked ? m + x : m, acc + x, d + x, alpha8, NT);
        x += 8;
    }
    return x;
}
#endif

// One row; NT: stores bypass the cache (the row is 16-byte aligned). large:
// float rows keep to 32-byte accesses.
template <class T, int Op, bool Masked, bool NT>
void row(const T* s1, const T* s2, const uint8_t* m, const float* acc, float* d, int w, float alpha, bool large) {
    (void)large;
    const __m128 alpha4 = broadcast4(alpha);
    int x = 0;
#if defined(__AVX512F__)
    if (kWide512<T, Masked> && !(sizeof(T) == 4 && large)) {
        x = w - w % 4;
        if constexpr (kWide512<T, Masked>) wideRow<T, Op, Masked, NT>(s1, s2, m, acc, d, x, alpha);
    } else {
        x = groups256<T, Op, Masked, NT>(s1, s2, m, acc, d, w, alpha);
    }
#elif defined(__AVX2__)
    x = groups256<T, Op, Masked, NT>(s1, s2, m, acc, d, w, alpha);
#endif
    for (; x + 4 <= w; x += 4)
        group4<T, Op, Masked>(s1 + x, s2 + x, Masked ? m + x : m, acc + x, d + x, alpha4, NT);
    for (; x < w; ++x) {
        if (Masked && m[x] == 0) continue;
        const float a = acc[x], u = static_cast<float>(s1[x]);
        const float v = Op == kAccProduct ? static_cast<float>(s2[x]) : u;
        d[x] = a + Term<Op>::of(u, v, a, alpha);
    }
}

// Large float images without a mask run as two streams, kChunk pixels of one
// and then of the other: the two halves of a single row, or rows y and
// y + rows / 2. Twice the memory requests are in flight: measured 10-15%
// faster than one stream from 1920x1080 up, with chunks of 1 to 4 KiB (512
// bytes and 16 KiB gained nothing). On smaller images two streams gained
// nothing (and lost 5% with 64-byte accesses).
constexpr int kChunk = 512;

// One pixel of every image of a band.
struct Spot {
    const float* s1;
    const float* s2;
    const float* acc;
    float* d;
};

template <int Op> inline void stretch(const Spot& p, int n, float alpha, bool large) {
    row<float, Op, false, false>(p.s1, p.s2, nullptr, p.acc, p.d, n, alpha, large);
}

template <int Op>
void twoStreams(const AccumArgs& g, const Spot& top, int rows, int w) {
    const auto at = [&](int64_t y, int x) {
        const float* s1 = nextRow(top.s1, y * g.st1) + x;
        return Spot{s1, Op == kAccProduct ? nextRow(top.s2, y * g.st2) + x : s1, nextRow(top.acc, y * g.sa) + x,
                    nextRow(top.d, y * g.sd) + x};
    };
    const auto pair = [&](const Spot& a, const Spot& b, int n) {
        for (int x = 0; x < n; x += kChunk) {
            const int len = std::min(kChunk, n - x);
            stretch<Op>(Spot{a.s1 + x, a.s2 + x, a.acc + x, a.d + x}, len, g.alpha, g.large);
            stretch<Op>(Spot{b.s1 + x, b.s2 + x, b.acc + x, b.d + x}, len, g.alpha, g.large);
        }
    };
    if (rows == 1) {
        const int half = w / 32 * 16;  // whole groups of 16
        pair(top, at(0, half), half);
        stretch<Op>(at(0, 2 * half), w - 2 * half, g.alpha, g.large);
        return;
    }
    const int half = rows / 2;
    for (int y = 0; y < half; ++y) pair(at(y, 0), at(y + half, 0), w);
    if (rows % 2) stretch<Op>(at(rows - 1, 0), w, g.alpha, g.large);
}

template <class T, int Op, bool Masked>
void accumulate(const AccumArgs& g, int rows, int w) {
    auto s1 = static_cast<const T*>(g.s1);
    auto s2 = static_cast<const T*>(g.s2);
    const uint8_t* m = g.mask;
    const float* acc = g.acc;
    float* d = g.d;
    // Rows without gaps between them and without single-sample pixels form one
    // long row of the same branch-free groups: no per-row start and end work.
    const int64_t bytes = static_cast<int64_t>(w) * static_cast<int64_t>(sizeof(T));
    if (rows > 1 && w % 4 == 0 && static_cast<int64_t>(w) * rows <= INT32_MAX && g.st1 == bytes &&
        (Op != kAccProduct || g.st2 == bytes) && (!Masked || g.sm == w) && g.sa == 4 * int64_t{w} &&
        g.sd == 4 * int64_t{w}) {
        w *= rows;
        rows = 1;
    }
    if constexpr (sizeof(T) == 4 && !Masked) {
        if (g.large && !g.nt) {
            twoStreams<Op>(g, Spot{s1, s2, acc, d}, rows, w);
            return;
        }
    }
    for (int y = 0; y < rows; ++y) {
        if (g.nt && aligned16(d)) row<T, Op, Masked, true>(s1, s2, m, acc, d, w, g.alpha, g.large);
        else row<T, Op, Masked, false>(s1, s2, m, acc, d, w, g.alpha, g.large);
        s1 = nextRow(s1, g.st1);
        if (Op == kAccProduct) s2 = nextRow(s2, g.st2);
        if (Masked) m = nextRow(m, g.sm);
        acc = nextRow(acc, g.sa);
        d = nextRow(d, g.sd);
    }
    if (g.nt) _mm_sfence();
}

}  // namespace

#define RVCV_ACC_ROW(op)                                                                                           \
    {{accumulate<uint8_t, op, false>, accumulate<uint8_t, op, true>},                                               \
     {accumulate<int8_t, op, false>, accumulate<int8_t, op, true>},                                                 \
     {accumulate<uint16_t, op, false>, accumulate<uint16_t, op, true>},                                             \
     {accumulate<float, op, false>, accumulate<float, op, true>}}
extern const AccumKernels kAccum = {{RVCV_ACC_ROW(kAccAdd), RVCV_ACC_ROW(kAccSquare), RVCV_ACC_ROW(kAccProduct),
                                     RVCV_ACC_ROW(kAccWeighted)}};
#undef RVCV_ACC_ROW

}  // namespace RVCV_ISA_NS
}  // namespace rvcv
