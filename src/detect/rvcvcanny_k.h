// Canny row kernels, written once over the lane count and compiled per
// instruction set (the including file names the namespace): groups of four
// columns on the SSE3 baseline, eight with AVX2. A group whose magnitudes are
// all 0 is passed over; otherwise all four sector tests are formed and chosen
// by mask, with no branch on the direction. Leftover columns run the same
// rule one at a time.
#ifndef RVCV_ISA_NS
#error "define RVCV_ISA_NS before including rvcvcanny_k.h"
#endif

#include <immintrin.h>

#include <cstring>

#include "rvcvcanny.h"

namespace rvcv {
namespace RVCV_ISA_NS {
namespace {

// ---- Element rules ------------------------------------------------------------

// |v| of a 16-bit derivative as an unsigned 16-bit value: -32768 gives 32768.
inline int abs16(Rvp16s v) { return v < 0 ? -static_cast<int>(v) : v; }

inline float absf(float v) {
    uint32_t u;
    std::memcpy(&u, &v, 4);
    u &= 0x7fffffffu;
    std::memcpy(&v, &u, 4);
    return v;
}
inline bool signBit(Rvp16s v) { return v < 0; }
inline bool signBit(float v) {
    uint32_t u;
    std::memcpy(&u, &v, 4);
    return (u >> 31) != 0;
}
inline float absAsFloat(Rvp16s v) { return static_cast<float>(abs16(v)); }
inline float absAsFloat(float v) { return absf(v); }

// One pixel of suppression. Axis sectors let a tie with the later neighbour
// (right, below) pass and not one with the earlier; diagonal ties never pass.
template <class T, class M>
inline bool survives(T gx, T gy, M m, const M* up, const M* mid, const M* down, int x) {
    const float a = absAsFloat(gx), b = absAsFloat(gy);
    if (kCannyTan67 * a < b) return up[x] < m && down[x] <= m;
    if (b < kCannyTan22 * a) return mid[x - 1] < m && mid[x + 1] <= m;
    if (signBit(gx) == signBit(gy)) return up[x - 1] < m && down[x + 1] < m;
    return up[x + 1] < m && down[x - 1] < m;
}

template <class E> inline E* push(E* top, int y, int x) {
    top[0] = static_cast<E>(y);
    top[1] = static_cast<E>(x);
    return top + 2;
}

// ---- Lanes ------------------------------------------------------------------------
// The few operations the kernels use, over 128-bit registers on the baseline
// and 256-bit ones with AVX2; the kernels below are written once over them.

#ifdef __AVX2__
constexpr int kLanes = 8;
typedef __m256i VI;
typedef __m256 VF;
inline VI loadI(const void* p) { return _mm256_loadu_si256(static_cast<const __m256i*>(p)); }
inline void storeI(void* p, VI v) { _mm256_storeu_si256(static_cast<__m256i*>(p), v); }
inline VI splatI(int32_t v) { return _mm256_set1_epi32(v); }
inline VF splatF(float v) { return _mm256_set1_ps(v); }
inline VI andI(VI a, VI b) { return _mm256_and_si256(a, b); }
inline VI andNotI(VI a, VI b) { return _mm256_andnot_si256(a, b); }  // ~a & b
inline VI orI(VI a, VI b) { return _mm256_or_si256(a, b); }
inline VI xorI(VI a, VI b) { return _mm256_xor_si256(a, b); }
inline VI gtI(VI a, VI b) { return _mm256_cmpgt_epi32(a, b); }
inline VI eqI(VI a, VI b) { return _mm256_cmpeq_epi32(a, b); }
inline VI signI(VI a) { return _mm256_srai_epi32(a, 31); }
inline VI absI(VI a) { return _mm256_abs_epi32(a); }
inline VI ltF(VF a, VF b) { return _mm256_castps_si256(_mm256_cmp_ps(a, b, _CMP_LT_OQ)); }
inline VI leF(VF a, VF b) { return _mm256_castps_si256(_mm256_cmp_ps(a, b, _CMP_LE_OQ)); }
inline VF mulF(VF a, VF b) { return _mm256_mul_ps(a, b); }
inline VF addF(VF a, VF b) { return _mm256_add_ps(a, b); }
inline VF toF(VI a) { return _mm256_cvtepi32_ps(a); }
inline VI select(VI m, VI a, VI b) { return _mm256_blendv_epi8(b, a, m); }
inline unsigned laneBits(VI m) { return static_cast<unsigned>(_mm256_movemask_ps(_mm256_castsi256_ps(m))); }
inline VI widen16(const Rvp16s* p) {
    return _mm256_cvtepi16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
}
inline __m128i packLanes(VI v) {  // all-ones or zero lanes to bytes 0..7
    const __m128i w = _mm_packs_epi32(_mm256_castsi256_si128(v), _mm256_extracti128_si256(v, 1));
    return _mm_packs_epi16(w, w);
}
#else
constexpr int kLanes = 4;
typedef __m128i VI;
typedef __m128 VF;
inline VI loadI(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
inline void storeI(void* p, VI v) { _mm_storeu_si128(static_cast<__m128i*>(p), v); }
inline VI splatI(int32_t v) { return _mm_set1_epi32(v); }
inline VF splatF(float v) { return _mm_set1_ps(v); }
inline VI andI(VI a, VI b) { return _mm_and_si128(a, b); }
inline VI andNotI(VI a, VI b) { return _mm_andnot_si128(a, b); }
inline VI orI(VI a, VI b) { return _mm_or_si128(a, b); }
inline VI xorI(VI a, VI b) { return _mm_xor_si128(a, b); }
inline VI gtI(VI a, VI b) { return _mm_cmpgt_epi32(a, b); }
inline VI eqI(VI a, VI b) { return _mm_cmpeq_epi32(a, b); }
inline VI signI(VI a) { return _mm_srai_epi32(a, 31); }
inline VI absI(VI a) { return _mm_sub_epi32(_mm_xor_si128(a, signI(a)), signI(a)); }
inline VI ltF(VF a, VF b) { return _mm_castps_si128(_mm_cmplt_ps(a, b)); }
inline VI leF(VF a, VF b) { return _mm_castps_si128(_mm_cmple_ps(a, b)); }
inline VF mulF(VF a, VF b) { return _mm_mul_ps(a, b); }
inline VF addF(VF a, VF b) { return _mm_add_ps(a, b); }
inline VF toF(VI a) { return _mm_cvtepi32_ps(a); }
inline VI select(VI m, VI a, VI b) { return orI(andI(m, a), andNotI(m, b)); }
inline unsigned laneBits(VI m) { return static_cast<unsigned>(_mm_movemask_ps(_mm_castsi128_ps(m))); }
inline VI widen16(const Rvp16s* p) {
    const __m128i g = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p));
    return _mm_srai_epi32(_mm_unpacklo_epi16(g, g), 16);
}
inline __m128i packLanes(VI v) {  // all-ones or zero lanes to bytes 0..3
    const __m128i w = _mm_packs_epi32(v, v);
    return _mm_packs_epi16(w, w);
}
#endif

inline VF asF(VI v) {
    VF f;
    std::memcpy(&f, &v, sizeof f);
    return f;
}
inline VI asI(VF v) {
    VI i;
    std::memcpy(&i, &v, sizeof i);
    return i;
}

// Stores the bytes of one group, as packLanes leaves them.
inline void storeBytes(Rvp8u* p, __m128i bytes) {
    if constexpr (kLanes == 8) {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(p), bytes);
    } else {
        const int word = _mm_cvtsi128_si32(bytes);
        std::memcpy(p, &word, 4);
    }
}

// ---- Magnitude ------------------------------------------------------------------

inline __m128i abs16x8(__m128i v) {
    const __m128i s = _mm_srai_epi16(v, 15);
    return _mm_sub_epi16(_mm_xor_si128(v, s), s);
}

// Whole groups of eight add with unsigned 16-bit saturation; the last w mod 8
// columns add in 32 bits, so 32768 + 32768 gives 65535 there and 65536 here.
void ownCanny_16s8u_C1R_Mag(const Rvp16s* dx, const Rvp16s* dy, Rvp32s* mag, int w, Rvp32s low) {
    const __m128i low4 = _mm_set1_epi32(low), zero = _mm_setzero_si128();
    const int whole = w & ~7;
    int x = 0;
#ifdef __AVX2__
    const __m256i low8 = _mm256_set1_epi32(low);
    for (; x + 16 <= whole; x += 16) {
        const __m256i s = _mm256_adds_epu16(_mm256_abs_epi16(loadI(dx + x)), _mm256_abs_epi16(loadI(dy + x)));
        const __m256i lo = _mm256_cvtepu16_epi32(_mm256_castsi256_si128(s));
        const __m256i hi = _mm256_cvtepu16_epi32(_mm256_extracti128_si256(s, 1));
        storeI(mag + x, _mm256_and_si256(lo, _mm256_cmpgt_epi32(lo, low8)));
        storeI(mag + x + 8, _mm256_and_si256(hi, _mm256_cmpgt_epi32(hi, low8)));
    }
#endif
    for (; x < whole; x += 8) {
        const __m128i s = _mm_adds_epu16(abs16x8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(dx + x))),
                                         abs16x8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(dy + x))));
        const __m128i lo = _mm_unpacklo_epi16(s, zero), hi = _mm_unpackhi_epi16(s, zero);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(mag + x), _mm_and_si128(lo, _mm_cmpgt_epi32(lo, low4)));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(mag + x + 4), _mm_and_si128(hi, _mm_cmpgt_epi32(hi, low4)));
    }
    for (; x < w; ++x) {
        const Rvp32s s = abs16(dx[x]) + abs16(dy[x]);
        mag[x] = s > low ? s : 0;
    }
}

// |dx| + |dy| with the sign bit cleared; 0 where below low.
void ownCanny_32f8u_C1R_Mag(const Rvp32f* dx, const Rvp32f* dy, Rvp32f* mag, int w, Rvp32f low) {
    const VI absMask = splatI(0x7fffffff);
    const VF lowv = splatF(low);
    int x = 0;
    for (; x + kLanes <= w; x += kLanes) {
        const VF sum = addF(asF(andI(loadI(dx + x), absMask)), asF(andI(loadI(dy + x), absMask)));
        const VI s = andI(asI(sum), absMask);
        storeI(mag + x, andNotI(ltF(asF(s), lowv), s));
    }
    for (; x < w; ++x) {
        const float s = absf(absf(dx[x]) + absf(dy[x]));
        mag[x] = s < low ? 0.0f : s;
    }
}

// ---- Suppression ------------------------------------------------------------------

// Per form: comparisons of magnitudes as all-ones lanes, and per group the
// derivatives as |v| in float with a mask of lanes whose two signs differ.
struct IntForm {
    static VI lt(VI a, VI b) { return gtI(b, a); }
    static VI le(VI a, VI b) { return xorI(gtI(a, b), splatI(-1)); }
    static VI splat(Rvp32s v) { return splatI(v); }
    static void derivs(const Rvp16s* dx, const Rvp16s* dy, VF& a, VF& b, VI& opposite) {
        const VI gx = widen16(dx), gy = widen16(dy);
        a = toF(absI(gx));
        b = toF(absI(gy));
        opposite = signI(xorI(gx, gy));
    }
};
struct FloatForm {
    static VI lt(VI a, VI b) { return ltF(asF(a), asF(b)); }
    static VI le(VI a, VI b) { return leF(asF(a), asF(b)); }
    static VI splat(Rvp32f v) { return asI(splatF(v)); }
    static void derivs(const Rvp32f* dx, const Rvp32f* dy, VF& a, VF& b, VI& opposite) {
        const VI gx = loadI(dx), gy = loadI(dy), absMask = splatI(0x7fffffff);
        a = asF(andI(gx, absMask));
        b = asF(andI(gy, absMask));
        opposite = signI(xorI(gx, gy));
    }
};
template <class T> struct FormOf;
template <> struct FormOf<Rvp16s> { typedef IntForm type; };
template <> struct FormOf<Rvp32f> { typedef FloatForm type; };

// Writes the whole map row (with its two frame bytes) and the whole output
// row, so neither needs clearing beforehand. Seeds are marked as edges in the
// map too.
template <class T, class M, class E>
E* ownCanny_C1R_Suppress(const T* dx, const T* dy, const M* up, const M* mid, const M* down, Rvp8u* map, E* top,
                         M high, Rvp8u* dst, int w, int y) {
    typedef typename FormOf<T>::type F;
    const VF k1 = splatF(kCannyTan22), k2 = splatF(kCannyTan67);
    const VI highv = F::splat(high), zero = splatI(0);
    const __m128i candidate = _mm_set1_epi8(static_cast<char>(kCannyCandidate));
    const __m128i edge = _mm_set1_epi8(static_cast<char>(kCannyEdge));
    map[-1] = 0;
    map[w] = 0;
    int x = 0;
    for (; x + kLanes <= w; x += kLanes) {
        const VI m = loadI(mid + x);
        if (laneBits(eqI(m, zero)) == (1u << kLanes) - 1) {
            std::memset(map + x, 0, kLanes);
            std::memset(dst + x, 0, kLanes);
            continue;
        }
        VF a, b;
        VI opposite;
        F::derivs(dx + x, dy + x, a, b, opposite);
        const VI vert = ltF(mulF(k2, a), b), horz = ltF(b, mulF(k1, a));
        const VI passV = andI(F::lt(loadI(up + x), m), F::le(loadI(down + x), m));
        const VI passH = andI(F::lt(loadI(mid + x - 1), m), F::le(loadI(mid + x + 1), m));
        const VI passS = andI(F::lt(loadI(up + x - 1), m), F::lt(loadI(down + x + 1), m));
        const VI passO = andI(F::lt(loadI(up + x + 1), m), F::lt(loadI(down + x - 1), m));
        const VI pass = select(vert, passV, select(horz, passH, select(opposite, passO, passS)));
        const VI seed = andI(pass, F::lt(highv, m));
        const __m128i seedBytes = packLanes(seed);
        storeBytes(map + x, _mm_or_si128(_mm_and_si128(packLanes(pass), candidate), _mm_and_si128(seedBytes, edge)));
        storeBytes(dst + x, seedBytes);
        for (unsigned s = laneBits(seed); s != 0; s &= s - 1) top = push(top, y, x + __builtin_ctz(s));
    }
    for (; x < w; ++x) {
        const M m = mid[x];
        const bool pass = m != 0 && survives(dx[x], dy[x], m, up, mid, down, x);
        const bool seed = pass && m > high;
        map[x] = static_cast<Rvp8u>((pass ? kCannyCandidate : 0) | (seed ? kCannyEdge : 0));
        dst[x] = seed ? 0xFF : 0;
        if (seed) top = push(top, y, x);
    }
    return top;
}

}  // namespace

extern const CannyKernels kCanny = {
    ownCanny_16s8u_C1R_Mag,
    ownCanny_32f8u_C1R_Mag,
    ownCanny_C1R_Suppress<Rvp16s, Rvp32s, Rvp16u>,
    ownCanny_C1R_Suppress<Rvp16s, Rvp32s, Rvp32s>,
    ownCanny_C1R_Suppress<Rvp32f, Rvp32f, Rvp16u>,
    ownCanny_C1R_Suppress<Rvp32f, Rvp32f, Rvp32s>,
};

}  // namespace RVCV_ISA_NS
}  // namespace rvcv
