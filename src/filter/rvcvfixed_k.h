// Row and column routines of the fixed-kernel filters, written once over the
// sample types and compiled per instruction set; the including file names
// the namespace. Only code of this file's own namespace runs inside, so no
// inline helper is shared between files built with different flags.
#include <emmintrin.h>

#include <cstdint>
#include <type_traits>

#include "filter/rvcvfilter.h"
#include "filter/rvcvfixed.h"

namespace rvcv {
namespace filt {
namespace RVCV_ISA_NS {
namespace {

template <class T> inline T* nextRow(T* p, int step) {
    return reinterpret_cast<T*>(reinterpret_cast<char*>(p) + static_cast<ptrdiff_t>(step));
}

// ---- Tap sums unrolled at compile time -----------------------------------
// g(i) yields sample i; the first nonzero tap starts the sum, the others add
// in tap order.
template <class T, int Idx, int... K> struct Dot {
    template <class G> static T add(T s, const G&) { return s; }
};
template <class T, int Idx, int K0, int... K> struct Dot<T, Idx, K0, K...> {
    template <class G> static T add(T s, const G& g) {
        if constexpr (K0 == 0) return Dot<T, Idx + 1, K...>::add(s, g);
        else return Dot<T, Idx + 1, K...>::add(s + static_cast<T>(K0) * static_cast<T>(g(Idx)), g);
    }
    template <class G> static T sum(const G& g) {
        if constexpr (K0 == 0) return Dot<T, Idx + 1, K...>::sum(g);
        else return Dot<T, Idx + 1, K...>::add(static_cast<T>(K0) * static_cast<T>(g(Idx)), g);
    }
};

// Writes one output row from value(x). 8-bit results are made as 16-bit
// values first and then packed with saturation, 16 at a time; 16-bit and
// float results are stored as they come.
template <class D, class F> inline void emitRow(D* dst, int w, const F& value) {
    if constexpr (sizeof(D) == 1) {
        constexpr int kT = 256;
        alignas(16) Rvp16s tmp[kT];
        for (int x0 = 0; x0 < w; x0 += kT) {
            const int m = w - x0 < kT ? w - x0 : kT;
            for (int x = 0; x < m; ++x) tmp[x] = static_cast<Rvp16s>(value(x0 + x));
            int x = 0;
            for (; x + 16 <= m; x += 16) {
                const __m128i a = _mm_load_si128(reinterpret_cast<const __m128i*>(tmp + x));
                const __m128i b = _mm_load_si128(reinterpret_cast<const __m128i*>(tmp + x + 8));
                const __m128i v = std::is_signed<D>::value ? _mm_packs_epi16(a, b) : _mm_packus_epi16(a, b);
                _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + x0 + x), v);
            }
            for (; x < m; ++x) {
                constexpr int lo = std::is_signed<D>::value ? -128 : 0, hi = std::is_signed<D>::value ? 127 : 255;
                dst[x0 + x] = static_cast<D>(tmp[x] < lo ? lo : tmp[x] > hi ? hi : tmp[x]);
            }
        }
    } else {
        D* __restrict d = dst;
        for (int x = 0; x < w; ++x) d[x] = static_cast<D>(value(x));
    }
}

// Integer sums are made in int; they never leave the 16-bit range for 8-bit
// sources, so wrapping and saturating 16-bit arithmetic agree with them.
template <class S> using Acc = typename std::conditional<std::is_same<S, Rvp32f>::value, float, int>::type;

// ---- Row routines ----------------------------------------------------------
template <class S, class I, int... K> struct TapsRow {
    void operator()(const S* p, I* d, int count, bool) const {
        for (int j = 0; j < count; ++j)
            d[j] = static_cast<I>(Dot<Acc<S>, 0, K...>::sum([p, j](int k) { return p[j + k]; }));
    }
};

template <class S, class I, int... K>
void rowTaps(const S* src, I* dst, int w, int type, int flags, S bv, S* work, int) {
    constexpr int n = sizeof...(K);
    filterRow(src, dst, w, 1, n, n / 2, type, flags, bv, TapsRow<S, I, K...>{}, work);
}

// Laplacian rows come in twins: the pair sum s[x-1] + s[x+1], and 8 s[x]
// `twin` samples further on.
template <class S, class I> struct LapRow {
    int twin;
    void operator()(const S* p, I* d, int count, bool) const {
        using T = Acc<S>;
        for (int j = 0; j < count; ++j) {
            d[j] = static_cast<I>(static_cast<T>(p[j]) + static_cast<T>(p[j + 2]));
            d[j + twin] = static_cast<I>(static_cast<T>(8) * static_cast<T>(p[j + 1]));
        }
    }
};

template <class S, class I>
void rowLap(const S* src, I* dst, int w, int type, int flags, S bv, S* work, int twin) {
    filterRow(src, dst, w, 1, 3, 1, type, flags, bv, LapRow<S, I>{twin}, work);
}

template <class S, class I> constexpr RowEntry<S, I> kRowTable[11] = {
    {rowTaps<S, I, -1, 0, 1>, 3, 0, false},        {rowTaps<S, I, 3, 10, 3>, 3, 16, false},
    {rowTaps<S, I, 1, 0, -1>, 3, 0, false},        {rowTaps<S, I, 1, 2, 0, -2, -1>, 5, 0, false},
    {rowTaps<S, I, 1, -2, 1>, 3, 0, false},        {rowTaps<S, I, 1, 0, -2, 0, 1>, 5, 0, false},
    {rowTaps<S, I, 1, 2, 1>, 3, 4, false},         {rowTaps<S, I, 1, 4, 6, 4, 1>, 5, 16, false},
    {rowTaps<S, I, 1, 1, 1>, 3, 3, false},         {rowTaps<S, I, 1, 1, 1, 1, 1>, 5, 5, false},
    {rowLap<S, I>, 3, 2, true},
};

// ---- Column routines ---------------------------------------------------------
// count output rows; output row y reads r[y .. y + n - 1].
template <class I, class D, int... K>
void colTaps(I* const* r, D* d, int dstStep, int count, int w, int) {
    constexpr int n = sizeof...(K);
    for (int y = 0; y < count; ++y, d = nextRow(d, dstStep)) {
        const I* q[n];
        for (int k = 0; k < n; ++k) q[k] = r[y + k];
        emitRow(d, w, [&q](int x) { return Dot<Acc<I>, 0, K...>::sum([&q, x](int k) { return q[k][x]; }); });
    }
}

// 2 (A[y-1] + A[y+1]) - B[y], B read `twin` samples past A.
template <class I, class D>
void colLap3(I* const* r, D* d, int dstStep, int count, int w, int twin) {
    using T = Acc<I>;
    for (int y = 0; y < count; ++y, d = nextRow(d, dstStep)) {
        const I *a0 = r[y], *b = r[y + 1] + twin, *a2 = r[y + 2];
        emitRow(d, w, [=](int x) {
            return static_cast<T>(2) * (static_cast<T>(a0[x]) + static_cast<T>(a2[x])) - static_cast<T>(b[x]);
        });
    }
}

// Second pass of the 5x5 Laplacian: the Sobel column sum added to what the
// destination holds (16-bit: wrapping).
template <class I, class D>
void colLap5(I* const* r, D* d, int dstStep, int count, int w, int) {
    using T = Acc<I>;
    for (int y = 0; y < count; ++y, d = nextRow(d, dstStep)) {
        const I *q0 = r[y], *q1 = r[y + 1], *q2 = r[y + 2], *q3 = r[y + 3], *q4 = r[y + 4];
        for (int x = 0; x < w; ++x) {
            const T s = Dot<T, 0, 1, 4, 6, 4, 1>::sum([&](int k) {
                return k == 0 ? q0[x] : k == 1 ? q1[x] : k == 2 ? q2[x] : k == 3 ? q3[x] : q4[x];
            });
            d[x] = static_cast<D>(static_cast<T>(d[x]) + s);
        }
    }
}

// Float box: the sum of n rows times 1/9 or 1/25 in single precision.
template <int N> void colAvr32f(Rvp32f* const* r, Rvp32f* d, int dstStep, int count, int w, int) {
    constexpr float scale = 1.0f / static_cast<float>(N * N);
    for (int y = 0; y < count; ++y, d = nextRow(d, dstStep)) {
        const Rvp32f* q[N];
        for (int k = 0; k < N; ++k) q[k] = r[y + k];
        for (int x = 0; x < w; ++x) {
            float s = q[0][x];
            for (int k = 1; k < N; ++k) s += q[k][x];
            d[x] = s * scale;
        }
    }
}

// 8-bit box: division without a divide, high half of a signed 16-bit
// product. 3x3: ((sum + 5) * 7280) >> 16; 5x5: (sum * 2621) >> 16, which
// comes out one level low on flat areas.
template <int N> void colAvr8u(Rvp16s* const* r, Rvp8u* d, int dstStep, int count, int w, int) {
    constexpr int mul = N == 3 ? 7280 : 2621, add = N == 3 ? 5 : 0;
    for (int y = 0; y < count; ++y, d = nextRow(d, dstStep)) {
        const Rvp16s* q[N];
        for (int k = 0; k < N; ++k) q[k] = r[y + k];
        emitRow(d, w, [&q](int x) {
            Rvp16s s = q[0][x];
            for (int k = 1; k < N; ++k) s = static_cast<Rvp16s>(s + q[k][x]);
            s = static_cast<Rvp16s>(s + add);
            return static_cast<Rvp16s>((static_cast<int>(s) * mul) >> 16);
        });
    }
}

// Indices 0-8 are shared; the integer tables hold the negated Sobel at 9-12,
// the float table the box at 9 and 10. The 8u8s table keeps its 3x3
// Laplacian at index 8, where the others hold the 5x5 one.
template <class I, class D> constexpr ColFn<I, D> kColCommon[9] = {
    colTaps<I, D, 3, 10, 3>, colTaps<I, D, -1, 0, 1>, colTaps<I, D, 1, 2, 1>, colTaps<I, D, 1, 4, 6, 4, 1>,
    colTaps<I, D, -1, -2, 0, 2, 1>, colTaps<I, D, 1, -2, 1>, colTaps<I, D, 1, 0, -2, 0, 1>, colLap3<I, D>,
    colLap5<I, D>,
};
template <class I, class D> constexpr ColTable<I, D> intColumns(ColFn<I, D> at8) {
    return {{kColCommon<I, D>[0], kColCommon<I, D>[1], kColCommon<I, D>[2], kColCommon<I, D>[3], kColCommon<I, D>[4],
             kColCommon<I, D>[5], kColCommon<I, D>[6], kColCommon<I, D>[7], at8, colTaps<I, D, -1, -2, -1>,
             colTaps<I, D, -1, -4, -6, -4, -1>,
             colTaps<I, D, -1, -2, -1>, colTaps<I, D, -1, -4, -6, -4, -1>}};
}
constexpr ColTable<Rvp16s, Rvp16s> owntabColumn_8u16s = intColumns<Rvp16s, Rvp16s>(colLap5<Rvp16s, Rvp16s>);
constexpr ColTable<Rvp16s, Rvp8s> owntabColumn_8u8s = intColumns<Rvp16s, Rvp8s>(colLap3<Rvp16s, Rvp8s>);
constexpr ColTable<Rvp32f, Rvp32f> owntabColumn_32f = {
    {kColCommon<Rvp32f, Rvp32f>[0], kColCommon<Rvp32f, Rvp32f>[1], kColCommon<Rvp32f, Rvp32f>[2],
     kColCommon<Rvp32f, Rvp32f>[3], kColCommon<Rvp32f, Rvp32f>[4], kColCommon<Rvp32f, Rvp32f>[5],
     kColCommon<Rvp32f, Rvp32f>[6], kColCommon<Rvp32f, Rvp32f>[7], kColCommon<Rvp32f, Rvp32f>[8], colAvr32f<3>,
     colAvr32f<5>, colTaps<Rvp32f, Rvp32f, -1, -2, -1>, colTaps<Rvp32f, Rvp32f, -1, -4, -6, -4, -1>}};
constexpr ColTable<Rvp16s, Rvp8u> owntabColumn_8u = {{colAvr8u<3>, colAvr8u<5>}};

}  // namespace

extern const FixedTables kFixed = {
    {kRowTable<Rvp8u, Rvp16s>[0], kRowTable<Rvp8u, Rvp16s>[1], kRowTable<Rvp8u, Rvp16s>[2], kRowTable<Rvp8u, Rvp16s>[3],
     kRowTable<Rvp8u, Rvp16s>[4], kRowTable<Rvp8u, Rvp16s>[5], kRowTable<Rvp8u, Rvp16s>[6], kRowTable<Rvp8u, Rvp16s>[7],
     kRowTable<Rvp8u, Rvp16s>[8], kRowTable<Rvp8u, Rvp16s>[9], kRowTable<Rvp8u, Rvp16s>[10]},
    {kRowTable<Rvp32f, Rvp32f>[0], kRowTable<Rvp32f, Rvp32f>[1], kRowTable<Rvp32f, Rvp32f>[2],
     kRowTable<Rvp32f, Rvp32f>[3], kRowTable<Rvp32f, Rvp32f>[4], kRowTable<Rvp32f, Rvp32f>[5],
     kRowTable<Rvp32f, Rvp32f>[6], kRowTable<Rvp32f, Rvp32f>[7], kRowTable<Rvp32f, Rvp32f>[8],
     kRowTable<Rvp32f, Rvp32f>[9], kRowTable<Rvp32f, Rvp32f>[10]},
    owntabColumn_8u16s, owntabColumn_8u8s, owntabColumn_32f, owntabColumn_8u,
};

}  // namespace RVCV_ISA_NS
}  // namespace filt
}  // namespace rvcv
