// Canny row kernels, written once and compiled per instruction set (the file
// including this one names the namespace). Suppression runs on groups of four
// columns: a group whose four magnitudes are 0 is passed over; otherwise all
// four sector tests are formed and selected by mask, with no branch on the
// direction. Leftover columns run the same rule one at a time.
#ifndef RVCV_ISA_NS
#error "define RVCV_ISA_NS before including rvcvcanny_k.h"
#endif

#include <emmintrin.h>
#include <pmmintrin.h>

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

// ---- Magnitude ------------------------------------------------------------------

inline __m128i loadi(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
inline void storei(void* p, __m128i v) { _mm_storeu_si128(static_cast<__m128i*>(p), v); }

inline __m128i absEpi16(__m128i v) {
    const __m128i s = _mm_srai_epi16(v, 15);
    return _mm_sub_epi16(_mm_xor_si128(v, s), s);
}

// Whole groups of eight add with unsigned 16-bit saturation; the last w mod 8
// columns add in 32 bits, so 32768 + 32768 gives 65535 there and 65536 here.
void mag16s(const Rvp16s* dx, const Rvp16s* dy, Rvp32s* mag, int w, Rvp32s low) {
    const __m128i lowv = _mm_set1_epi32(low), zero = _mm_setzero_si128();
    int x = 0;
    for (; x + 8 <= w; x += 8) {
        const __m128i s = _mm_adds_epu16(absEpi16(loadi(dx + x)), absEpi16(loadi(dy + x)));
        const __m128i lo = _mm_unpacklo_epi16(s, zero), hi = _mm_unpackhi_epi16(s, zero);
        storei(mag + x, _mm_and_si128(lo, _mm_cmpgt_epi32(lo, lowv)));
        storei(mag + x + 4, _mm_and_si128(hi, _mm_cmpgt_epi32(hi, lowv)));
    }
    for (; x < w; ++x) {
        const Rvp32s s = abs16(dx[x]) + abs16(dy[x]);
        mag[x] = s > low ? s : 0;
    }
}

void mag32f(const Rvp32f* dx, const Rvp32f* dy, Rvp32f* mag, int w, Rvp32f low) {
    const __m128 lowv = _mm_set1_ps(low), absMask = _mm_castsi128_ps(_mm_set1_epi32(0x7fffffff));
    int x = 0;
    for (; x + 4 <= w; x += 4) {
        __m128 s = _mm_add_ps(_mm_and_ps(_mm_loadu_ps(dx + x), absMask), _mm_and_ps(_mm_loadu_ps(dy + x), absMask));
        s = _mm_and_ps(s, absMask);
        _mm_storeu_ps(mag + x, _mm_andnot_ps(_mm_cmplt_ps(s, lowv), s));
    }
    for (; x < w; ++x) {
        const float s = absf(absf(dx[x]) + absf(dy[x]));
        mag[x] = s < low ? 0.0f : s;
    }
}

// ---- Suppression ------------------------------------------------------------------

inline __m128i select(__m128i mask, __m128i a, __m128i b) {
    return _mm_or_si128(_mm_and_si128(mask, a), _mm_andnot_si128(mask, b));
}

// Per form: four derivatives as |v| in float and their sign masks, and the
// comparisons of magnitudes (lt: a < b, le: a <= b) as all-ones lanes.
struct Int32Form {
    using M = Rvp32s;
    static __m128i load(const Rvp32s* p) { return loadi(p); }
    static __m128i lt(__m128i a, __m128i b) { return _mm_cmpgt_epi32(b, a); }
    static __m128i le(__m128i a, __m128i b) { return _mm_xor_si128(_mm_cmpgt_epi32(a, b), _mm_set1_epi32(-1)); }
    static __m128i splatM(Rvp32s v) { return _mm_set1_epi32(v); }
    static void derivs(const Rvp16s* dx, const Rvp16s* dy, __m128& a, __m128& b, __m128i& opposite) {
        const __m128i gx = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(dx));
        const __m128i gy = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(dy));
        const __m128i sx = _mm_srai_epi32(_mm_unpacklo_epi16(gx, gx), 16);
        const __m128i sy = _mm_srai_epi32(_mm_unpacklo_epi16(gy, gy), 16);
        const __m128i mx = _mm_srai_epi32(sx, 31), my = _mm_srai_epi32(sy, 31);
        a = _mm_cvtepi32_ps(_mm_sub_epi32(_mm_xor_si128(sx, mx), mx));
        b = _mm_cvtepi32_ps(_mm_sub_epi32(_mm_xor_si128(sy, my), my));
        opposite = _mm_xor_si128(mx, my);
    }
};

struct FloatForm {
    using M = Rvp32f;
    static __m128i load(const Rvp32f* p) { return _mm_castps_si128(_mm_loadu_ps(p)); }
    static __m128i lt(__m128i a, __m128i b) { return _mm_castps_si128(_mm_cmplt_ps(_mm_castsi128_ps(a), _mm_castsi128_ps(b))); }
    static __m128i le(__m128i a, __m128i b) { return _mm_castps_si128(_mm_cmple_ps(_mm_castsi128_ps(a), _mm_castsi128_ps(b))); }
    static __m128i splatM(Rvp32f v) { return _mm_castps_si128(_mm_set1_ps(v)); }
    static void derivs(const Rvp32f* dx, const Rvp32f* dy, __m128& a, __m128& b, __m128i& opposite) {
        const __m128i gx = loadi(dx), gy = loadi(dy), absMask = _mm_set1_epi32(0x7fffffff);
        a = _mm_castsi128_ps(_mm_and_si128(gx, absMask));
        b = _mm_castsi128_ps(_mm_and_si128(gy, absMask));
        opposite = _mm_srai_epi32(_mm_xor_si128(gx, gy), 31);
    }
};

template <class T> struct FormOf;
template <> struct FormOf<Rvp16s> { using type = Int32Form; };
template <> struct FormOf<Rvp32f> { using type = FloatForm; };

// Four all-ones or zero lanes as four bytes, kept where `keep` has bits.
inline uint32_t bytes4(__m128i lanes, uint32_t keep) {
    const __m128i bytes = _mm_packs_epi16(_mm_packs_epi32(lanes, lanes), lanes);
    return static_cast<uint32_t>(_mm_cvtsi128_si32(bytes)) & keep;
}

// Writes the whole map row (with its two frame bytes) and the whole output
// row, so neither needs clearing beforehand. Seeds are marked as edges in the
// map too.
template <class T, class M, class E>
E* nms(const T* dx, const T* dy, const M* up, const M* mid, const M* down, Rvp8u* map, E* top, M high, Rvp8u* dst,
       int w, int y) {
    using F = typename FormOf<T>::type;
    const __m128 k1 = _mm_set1_ps(kCannyTan22), k2 = _mm_set1_ps(kCannyTan67);
    const __m128i highv = F::splatM(high), zero = _mm_setzero_si128();
    map[-1] = 0;
    map[w] = 0;
    int x = 0;
    for (; x + 4 <= w; x += 4) {
        const __m128i m = F::load(mid + x);
        if (_mm_movemask_epi8(_mm_cmpeq_epi32(m, zero)) == 0xffff) {
            std::memset(map + x, 0, 4);
            std::memset(dst + x, 0, 4);
            continue;
        }
        __m128 a, b;
        __m128i opposite;
        F::derivs(dx + x, dy + x, a, b, opposite);
        const __m128i vert = _mm_castps_si128(_mm_cmplt_ps(_mm_mul_ps(k2, a), b));
        const __m128i horz = _mm_castps_si128(_mm_cmplt_ps(b, _mm_mul_ps(k1, a)));
        const __m128i passV = _mm_and_si128(F::lt(F::load(up + x), m), F::le(F::load(down + x), m));
        const __m128i passH = _mm_and_si128(F::lt(F::load(mid + x - 1), m), F::le(F::load(mid + x + 1), m));
        const __m128i passS = _mm_and_si128(F::lt(F::load(up + x - 1), m), F::lt(F::load(down + x + 1), m));
        const __m128i passO = _mm_and_si128(F::lt(F::load(up + x + 1), m), F::lt(F::load(down + x - 1), m));
        const __m128i pass = select(vert, passV, select(horz, passH, select(opposite, passO, passS)));
        const __m128i seed = _mm_and_si128(pass, F::lt(highv, m));
        const uint32_t mapWord = bytes4(pass, 0x80808080u) | bytes4(seed, kCannyEdge * 0x01010101u);
        const uint32_t dstWord = bytes4(seed, 0xffffffffu);
        std::memcpy(map + x, &mapWord, 4);
        std::memcpy(dst + x, &dstWord, 4);
        int seeds = _mm_movemask_ps(_mm_castsi128_ps(seed));
        while (seeds != 0) {
            top = push(top, y, x + __builtin_ctz(static_cast<unsigned>(seeds)));
            seeds &= seeds - 1;
        }
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
    mag16s,
    mag32f,
    nms<Rvp16s, Rvp32s, Rvp16u>,
    nms<Rvp16s, Rvp32s, Rvp32s>,
    nms<Rvp32f, Rvp32f, Rvp16u>,
    nms<Rvp32f, Rvp32f, Rvp32s>,
};

}  // namespace RVCV_ISA_NS
}  // namespace rvcv
