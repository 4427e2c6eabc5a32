// Statistics kernels, compiled once per instruction set (RVCV_ISA_NS) from
// 32-byte vector blocks (rvcvsimd.h) on one-channel rows, single samples for
// the rest: integer sums in 32-bit lanes over chunks short enough not to
// overflow, float sums in eight double lanes, extremes with unselected and
// NaN samples replaced by the neutral value.
#include <cmath>
#include <limits>
#include <type_traits>

#include "rvcvsimd.h"
#include "rvcvstats.h"

namespace rvcv {
namespace RVCV_ISA_NS {
namespace {

template <class T> const T* rowOf(const void* p, int step, int y) {
    return reinterpret_cast<const T*>(static_cast<const char*>(p) + static_cast<int64_t>(step) * y);
}

typedef uint8_t u8x8 __attribute__((vector_size(8)));
typedef uint8_t u8x16 __attribute__((vector_size(16)));
typedef float f32x4 __attribute__((vector_size(16)));
typedef uint64_t u64x4 __attribute__((vector_size(32)));
typedef int64_t s64x4 __attribute__((vector_size(32)));
typedef int8_t s8x16 __attribute__((vector_size(16)));
typedef int16_t s16x8 __attribute__((vector_size(16)));
typedef int32_t s32x4 __attribute__((vector_size(16)));

// A 32-byte block of samples and the signed integer lanes of its width.
template <class T> struct Lanes;
template <> struct Lanes<uint8_t> { using V = u8x32; using I = s8x32; };
template <> struct Lanes<int8_t> { using V = s8x32; using I = s8x32; };
template <> struct Lanes<uint16_t> { using V = u16x16; using I = s16x16; };
template <> struct Lanes<float> { using V = f32x8; using I = s32x8; };

// The mask bytes of one block as all-ones lanes of the samples' width.
template <class T> inline typename Lanes<T>::I maskLanes(const uint8_t* m) {
    if constexpr (sizeof(T) == 1) {
        return loadv<s8x32>(m) != 0;
    } else if constexpr (sizeof(T) == 2) {
        const u8x16 v = loadv<u8x16>(m);
        return bitcast<s16x16>(__builtin_shufflevector(v, v, 0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 5, 5, 6, 6, 7, 7, 8, 8, 9, 9,
                                                       10, 10, 11, 11, 12, 12, 13, 13, 14, 14, 15, 15)) != 0;
    } else {
        s8x16 v = bitcast<s8x16>(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(m)));
        v = v != 0;
        const s16x8 b = bitcast<s16x8>(__builtin_shufflevector(v, v, 0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 5, 5, 6, 6, 7, 7));
        const s32x4 lo = bitcast<s32x4>(__builtin_shufflevector(b, b, 0, 0, 1, 1, 2, 2, 3, 3));
        const s32x4 hi = bitcast<s32x4>(__builtin_shufflevector(b, b, 4, 4, 5, 5, 6, 6, 7, 7));
        return __builtin_shufflevector(lo, hi, 0, 1, 2, 3, 4, 5, 6, 7);
    }
}

// Interleaves within each 16-byte half, as the unpack instructions do; the
// sums do not care about lane order, data and mask go through the same ones.
inline s8x32 zipLo8(s8x32 a, s8x32 b) {
    return __builtin_shufflevector(a, b, 0, 32, 1, 33, 2, 34, 3, 35, 4, 36, 5, 37, 6, 38, 7, 39, 16, 48, 17, 49, 18, 50,
                                   19, 51, 20, 52, 21, 53, 22, 54, 23, 55);
}
inline s8x32 zipHi8(s8x32 a, s8x32 b) {
    return __builtin_shufflevector(a, b, 8, 40, 9, 41, 10, 42, 11, 43, 12, 44, 13, 45, 14, 46, 15, 47, 24, 56, 25, 57,
                                   26, 58, 27, 59, 28, 60, 29, 61, 30, 62, 31, 63);
}
inline s16x16 zipLo16(s16x16 a, s16x16 b) {
    return __builtin_shufflevector(a, b, 0, 16, 1, 17, 2, 18, 3, 19, 8, 24, 9, 25, 10, 26, 11, 27);
}
inline s16x16 zipHi16(s16x16 a, s16x16 b) {
    return __builtin_shufflevector(a, b, 4, 20, 5, 21, 6, 22, 7, 23, 12, 28, 13, 29, 14, 30, 15, 31);
}
inline u32x8 zipLo32(u32x8 a, u32x8 b) { return __builtin_shufflevector(a, b, 0, 8, 1, 9, 4, 12, 5, 13); }
inline u32x8 zipHi32(u32x8 a, u32x8 b) { return __builtin_shufflevector(a, b, 2, 10, 3, 11, 6, 14, 7, 15); }

// 16-bit lanes to 32, sign-extended.
inline void widen16(s16x16 v, s32x8* out) {
    const s16x16 sg = v >> 15;
    out[0] = bitcast<s32x8>(zipLo16(v, sg));
    out[1] = bitcast<s32x8>(zipHi16(v, sg));
}
// 32 bytes of samples as 32-bit lanes (4 blocks for bytes, 2 for 16-bit
// samples), unsigned samples zero-extended, signed sign-extended.
template <class T> inline int widen(const T* p, s32x8* out) {
    if constexpr (sizeof(T) == 1) {
        const s8x32 v = loadv<s8x32>(p);
        const s8x32 ext = std::is_signed<T>::value ? v >> 7 : s8x32{};
        widen16(bitcast<s16x16>(zipLo8(v, ext)), out);
        widen16(bitcast<s16x16>(zipHi8(v, ext)), out + 2);
        return 4;
    } else {
        const s16x16 v = loadv<s16x16>(p);
        out[0] = bitcast<s32x8>(zipLo16(v, s16x16{}));
        out[1] = bitcast<s32x8>(zipHi16(v, s16x16{}));
        return 2;
    }
}
// The mask bytes of the same samples as all-ones lanes, in the same order.
template <class T> inline void widenOn(const uint8_t* m, s32x8* out) {
    const auto on = maskLanes<T>(m);
    if constexpr (sizeof(T) == 1) {
        widen16(bitcast<s16x16>(zipLo8(on, on)), out);
        widen16(bitcast<s16x16>(zipHi8(on, on)), out + 2);
    } else {
        out[0] = bitcast<s32x8>(zipLo16(on, on));
        out[1] = bitcast<s32x8>(zipHi16(on, on));
    }
}

// Integers: |d| < 2^16, so 2^14 of them keep 32-bit sums exact; squares of
// 16-bit differences need 64 bits.
template <class T, int C, bool M, bool D>
void intRow(const T* a, const T* b, const uint8_t* m, int w, StatSums& s) {
    using Sq = typename std::conditional<sizeof(T) == 1, uint32_t, uint64_t>::type;
    constexpr int kChunk = 1 << 14;
    constexpr int kBlock = 32 / sizeof(T);
    uint32_t inf = 0;
    for (int x0 = 0; x0 < w; x0 += kChunk) {
        const int end = w - x0 < kChunk ? w : x0 + kChunk;
        int x = x0;
        int32_t s1 = 0, cnt = 0;
        uint32_t sa = 0;
        Sq s2 = 0;
        if constexpr (C == 1) {
            s32x8 v1 = {}, vc = {};
            u32x8 va = {}, vi = {}, vq = {};
            u64x4 vq64 = {};
            for (; x + kBlock <= end; x += kBlock) {
                s32x8 d[4], db[4], on[4];
                const int k = widen(a + x, d);
                if (D) {
                    widen(b + x, db);
                    for (int i = 0; i < k; ++i) d[i] -= db[i];
                }
                if (M) {
                    widenOn<T>(m + x, on);
                    for (int i = 0; i < k; ++i) {
                        d[i] &= on[i];
                        vc -= on[i];
                    }
                }
                for (int i = 0; i < k; ++i) {
                    const s32x8 sg = d[i] >> 31;
                    const u32x8 ad = bitcast<u32x8>((d[i] ^ sg) - sg), sq = ad * ad;
                    v1 += d[i];
                    va += ad;
                    vi = vmax(vi, ad);
                    if constexpr (sizeof(T) == 1) {
                        vq += sq;
                    } else {  // squares up to 2^32 - 1
                        vq64 += bitcast<u64x4>(zipLo32(sq, u32x8{}));
                        vq64 += bitcast<u64x4>(zipHi32(sq, u32x8{}));
                    }
                }
            }
            for (int j = 0; j < 8; ++j) {
                s1 += v1[j];
                cnt += vc[j];
                sa += va[j];
                inf = vi[j] > inf ? vi[j] : inf;
                if constexpr (sizeof(T) == 1) s2 += vq[j];
                else if (j < 4) s2 += vq64[j];
            }
        }
        for (; x < end; ++x) {
            int32_t d = static_cast<int32_t>(a[x * C]) - (D ? static_cast<int32_t>(b[x * C]) : 0);
            if (M) {
                const int32_t on = -static_cast<int32_t>(m[x] != 0);
                d &= on;
                cnt -= on;
            }
            const uint32_t ad = static_cast<uint32_t>(d < 0 ? -d : d);
            s1 += d;
            sa += ad;
            s2 += static_cast<Sq>(ad) * ad;
            inf = ad > inf ? ad : inf;
        }
        s.sum += s1;
        s.abs += sa;
        s.sq += static_cast<double>(s2);
        s.count += M ? cnt : end - x0;
    }
    s.inf = inf > s.inf ? inf : s.inf;
}

inline double tree8(const double* p) { return ((p[0] + p[1]) + (p[2] + p[3])) + ((p[4] + p[5]) + (p[6] + p[7])); }

// Floats: lane x mod 8 of each sum, whatever the width of the registers.
template <int C, bool M, bool D>
void floatRow(const float* a, const float* b, const uint8_t* m, int w, double center, StatSums& s) {
    double p1[8] = {}, pa[8] = {}, p2[8] = {}, pi[8] = {};
    int32_t cnt = 0;
    int x = 0;
    if constexpr (C == 1) {
        f64x4 v1[2] = {}, va[2] = {}, v2[2] = {}, vi[2] = {};
        s64x4 vc = {};
        const f64x4 c4 = {center, center, center, center};
        const s64x4 absMask = {INT64_MAX, INT64_MAX, INT64_MAX, INT64_MAX};
        for (; x + 8 <= w; x += 8) {
            s64x4 on[2];
            if (M) {
                const s32x8 on32 = maskLanes<float>(m + x);
                on[0] = bitcast<s64x4>(__builtin_shufflevector(on32, on32, 0, 0, 1, 1, 2, 2, 3, 3));
                on[1] = bitcast<s64x4>(__builtin_shufflevector(on32, on32, 4, 4, 5, 5, 6, 6, 7, 7));
            }
            for (int h = 0; h < 2; ++h) {
                f64x4 d = __builtin_convertvector(loadv<f32x4>(a + x + 4 * h), f64x4);
                d -= D ? __builtin_convertvector(loadv<f32x4>(b + x + 4 * h), f64x4) : c4;
                if (M) {
                    d = bitcast<f64x4>(bitcast<s64x4>(d) & on[h]);
                    vc -= on[h];
                }
                const f64x4 ad = bitcast<f64x4>(bitcast<s64x4>(d) & absMask);
                v1[h] += d;
                va[h] += ad;
                v2[h] += d * d;
                vi[h] = ad > vi[h] ? ad : vi[h];
            }
        }
        for (int j = 0; j < 8; ++j) {
            p1[j] = v1[j >> 2][j & 3];
            pa[j] = va[j >> 2][j & 3];
            p2[j] = v2[j >> 2][j & 3];
            pi[j] = vi[j >> 2][j & 3];
        }
        cnt = static_cast<int32_t>((vc[0] + vc[1]) + (vc[2] + vc[3]));
    }
    for (; x < w; ++x) {
        const int j = x & 7;
        double d = static_cast<double>(a[x * C]) - (D ? static_cast<double>(b[x * C]) : center);
        if (M) {
            const bool on = m[x] != 0;
            d = on ? d : 0.0;
            cnt += on;
        }
        const double ad = std::fabs(d);
        p1[j] += d;
        pa[j] += ad;
        p2[j] += d * d;
        pi[j] = ad > pi[j] ? ad : pi[j];
    }
    s.sum += tree8(p1);
    s.abs += tree8(pa);
    s.sq += tree8(p2);
    for (double v : pi) s.inf = v > s.inf ? v : s.inf;
    s.count += M ? cnt : w;
}

template <class T, int C, bool M, bool D>
void sumBand(const void* a, int aStep, const void* b, int bStep, const uint8_t* m, int mStep, int y0, int rows, int w,
             double center, StatSums& s) {
    for (int y = y0; y < y0 + rows; ++y) {
        const T* ra = rowOf<T>(a, aStep, y);
        const T* rb = D ? rowOf<T>(b, bStep, y) : nullptr;
        const uint8_t* rm = M ? rowOf<uint8_t>(m, mStep, y) : nullptr;
        if constexpr (std::is_integral<T>::value) intRow<T, C, M, D>(ra, rb, rm, w, s);
        else floatRow<C, M, D>(ra, rb, rm, w, center, s);
    }
}

// Per row: the extremes over selected samples that are not NaN, and how
// many there are; a row that improves on the band's extreme (strictly)
// becomes its row, and the column is found in that row at the end.
template <class T, int C, bool M>
void extBand(const void* a, int aStep, const uint8_t* m, int mStep, int y0, int rows, int w, StatExtremes& e) {
    using L = std::numeric_limits<T>;
    const T top = L::has_infinity ? L::infinity() : L::max();
    const T bottom = L::has_infinity ? -L::infinity() : L::lowest();
    for (int y = y0; y < y0 + rows; ++y) {
        const T* r = rowOf<T>(a, aStep, y);
        const uint8_t* mk = M ? rowOf<uint8_t>(m, mStep, y) : nullptr;
        T lo = top, hi = bottom;
        int32_t n = 0;
        int x = 0;
        if constexpr (C == 1) {
            using V = typename Lanes<T>::V;
            using I = typename Lanes<T>::I;
            constexpr int kL = 32 / sizeof(T);
            const I topBits = bitcast<I>(splat<V>(top)), bottomBits = bitcast<I>(splat<V>(bottom));
            V vlo = splat<V>(top), vhi = splat<V>(bottom);
            I any = {};
            for (; x + kL <= w; x += kL) {
                const V v = loadv<V>(r + x);
                I on = M ? maskLanes<T>(mk + x) : ~I{};
                if constexpr (std::is_floating_point<T>::value) on &= (v == v);
                const I bits = bitcast<I>(v);
                vlo = vmin(vlo, bitcast<V>((bits & on) | (topBits & ~on)));
                vhi = vmax(vhi, bitcast<V>((bits & on) | (bottomBits & ~on)));
                any |= on;
            }
            for (int j = 0; j < kL; ++j) {
                lo = vlo[j] < lo ? vlo[j] : lo;
                hi = vhi[j] > hi ? vhi[j] : hi;
                n |= any[j] != 0;
            }
        }
        for (; x < w; ++x) {
            const T v = r[x * C];
            const bool on = (!M || mk[x] != 0) && v == v;
            const T vl = on ? v : top, vh = on ? v : bottom;
            lo = vl < lo ? vl : lo;
            hi = vh > hi ? vh : hi;
            n += on;
        }
        if (n == 0) continue;
        if (!e.any || lo < e.lo) e.lo = lo, e.loY = y;
        if (!e.any || hi > e.hi) e.hi = hi, e.hiY = y;
        e.any = true;
    }
    if (!e.any) return;
    const auto firstX = [&](int y, double v) {
        const T* r = rowOf<T>(a, aStep, y);
        const uint8_t* mk = M ? rowOf<uint8_t>(m, mStep, y) : nullptr;
        int x = 0;
        while ((M && mk[x] == 0) || static_cast<double>(r[x * C]) != v) ++x;
        return x;
    };
    e.loX = firstX(e.loY, e.lo);
    e.hiX = firstX(e.hiY, e.hi);
}

template <class T, int C3> constexpr StatSumBand sumsOf(int M, int D) {
    constexpr int C = C3 ? 3 : 1;
    return M ? (D ? sumBand<T, C, true, true> : sumBand<T, C, true, false>)
             : (D ? sumBand<T, C, false, true> : sumBand<T, C, false, false>);
}

template <class T> constexpr void fill(StatsKernels& k, int t) {
    for (int M = 0; M < 2; ++M)
        for (int D = 0; D < 2; ++D) {
            k.sums[t][0][M][D] = sumsOf<T, 0>(M, D);
            k.sums[t][1][M][D] = sumsOf<T, 1>(M, D);
        }
    k.extremes[t][0][0] = extBand<T, 1, false>;
    k.extremes[t][0][1] = extBand<T, 1, true>;
    k.extremes[t][1][0] = extBand<T, 3, false>;
    k.extremes[t][1][1] = extBand<T, 3, true>;
}

constexpr StatsKernels build() {
    StatsKernels k{};
    fill<uint8_t>(k, 0);
    fill<int8_t>(k, 1);
    fill<uint16_t>(k, 2);
    fill<float>(k, 3);
    return k;
}

}  // namespace

extern constexpr StatsKernels kStats = build();

}  // namespace RVCV_ISA_NS
}  // namespace rvcv
