// Min/max kernels written once over sample type, channel count and the
// extremum, compiled per instruction set (see rvcvsimd.h). A row runs a
// scalar running extremum at both edges and vectors over samples in the
// middle: direct for short masks, doubling windows in a stack block for
// longer ones. Wide single-channel masks reduce bands of rows at once in a
// transposed layout instead, at a cost that no longer grows with the width.
// Columns keep a ring of reduced rows; short masks fold it directly, long
// ones use a block-wise running extremum (about three comparisons a sample
// whatever the height).
#include <cstddef>
#include <algorithm>
#include <cstring>
#include <limits>
#include <type_traits>

#include "rvcvminmax.h"
#include "rvcvsimd.h"
#include "rvpcore.h"

namespace rvcv {
namespace RVCV_ISA_NS {
namespace {

// Vector width of this build: 32 bytes, or 64 in the 512-bit build.
#ifndef RVCV_MINMAX_VBYTES
#define RVCV_MINMAX_VBYTES 32
#endif
// Samples of 1 and 2 bytes keep 32-byte vectors there: their rows ran no
// faster on 64 bytes.
template <class T> constexpr int kbytes() { return sizeof(T) <= 2 ? 32 : RVCV_MINMAX_VBYTES; }
template <class T> struct KVecOf { typedef T type __attribute__((vector_size(kbytes<T>()))); };
template <class T> using KVec = typename KVecOf<T>::type;
template <class T> constexpr int klanes() { return kbytes<T>() / static_cast<int>(sizeof(T)); }

// Store that bypasses the cache; p must be 16-byte aligned.
template <class V> inline void streamk(void* p, V v) {
    for (unsigned i = 0; i < sizeof v; i += 16) {
        __m128i part;
        std::memcpy(&part, reinterpret_cast<const char*>(&v) + i, 16);
        _mm_stream_si128(reinterpret_cast<__m128i*>(static_cast<char*>(p) + i), part);
    }
}

#ifdef __AVX__
struct OpMin { template <class X> static X f(X a, X b) { return a < b ? a : b; } };
struct OpMax { template <class X> static X f(X a, X b) { return a > b ? a : b; } };
#else
// Without AVX the compiler takes a float vector's select apart sample by
// sample; MINPS and MAXPS are exactly a < b ? a : b and a > b ? a : b.
template <class V, class H, class F> inline V byHalves(V a, V b, F op) {
    static_assert(sizeof(V) == 2 * sizeof(H), "two halves");
    H x[2], y[2];
    std::memcpy(x, &a, sizeof a);
    std::memcpy(y, &b, sizeof b);
    x[0] = op(x[0], y[0]);
    x[1] = op(x[1], y[1]);
    V r;
    std::memcpy(&r, x, sizeof r);
    return r;
}
template <bool IsMax> struct OpSse {
    template <class X> static X f(X a, X b) {
        if constexpr (IsMax) return a > b ? a : b;
        else return a < b ? a : b;
    }
    static __m128 ps(__m128 x, __m128 y) { return IsMax ? _mm_max_ps(x, y) : _mm_min_ps(x, y); }
    static __m128d pd(__m128d x, __m128d y) { return IsMax ? _mm_max_pd(x, y) : _mm_min_pd(x, y); }
    static KVec<float> f(KVec<float> a, KVec<float> b) {
        return byHalves<KVec<float>, __m128>(a, b, [](__m128 x, __m128 y) { return ps(x, y); });
    }
    static KVec<double> f(KVec<double> a, KVec<double> b) {
        return byHalves<KVec<double>, __m128d>(a, b, [](__m128d x, __m128d y) { return pd(x, y); });
    }
    typedef float F4 __attribute__((vector_size(16)));
    static F4 f(F4 a, F4 b) { return bitcast<F4>(ps(bitcast<__m128>(a), bitcast<__m128>(b))); }
};
using OpMin = OpSse<false>;
using OpMax = OpSse<true>;
#endif

// Extremum of N values as a balanced tree, so independent comparisons can
// run side by side instead of in one chain.
template <class Op, int N> struct TreeExt {
    template <class V> static V of(const V* v) {
        return Op::f(TreeExt<Op, N / 2>::of(v), TreeExt<Op, N - N / 2>::of(v + N / 2));
    }
};
template <class Op> struct TreeExt<Op, 1> {
    template <class V> static V of(const V* v) { return v[0]; }
};

// The value that leaves every sample unchanged: 255 or +FLT_MAX for Min, 0 or -FLT_MAX for Max.
template <class T, class Op> T neutral() {
    return std::is_same<Op, OpMin>::value ? std::numeric_limits<T>::max() : std::numeric_limits<T>::lowest();
}

template <class T> inline T* rowAt(T* base, int step, int y) {
    using B = typename std::conditional<std::is_const<T>::value, const char, char>::type;
    return reinterpret_cast<T*>(reinterpret_cast<B*>(base) + static_cast<ptrdiff_t>(step) * y);
}

// out[j] = ext(a[j], b[j]) walking forward, so out == a with b above a is a safe in-place update.
template <class T, class Op, bool NT = false>
inline void ext2(T* out, const T* a, const T* b, int n) {
    constexpr int L = klanes<T>();
    int j = 0;
    for (; j + L <= n; j += L) {
        const KVec<T> v = Op::f(loadv<KVec<T>>(a + j), loadv<KVec<T>>(b + j));
        if (NT) streamk(out + j, v); else storev(out + j, v);
    }
    for (; j < n; ++j) out[j] = Op::f(a[j], b[j]);
}

template <class T, class Op, int N, bool NT>
inline void foldN(const T* const* r, T* d, int n) {
    constexpr int L = klanes<T>();
    int j = 0;
    for (; j + L <= n; j += L) {
        KVec<T> v[N];
        for (int i = 0; i < N; ++i) v[i] = loadv<KVec<T>>(r[i] + j);
        const KVec<T> acc = TreeExt<Op, N>::of(v);
        if (NT) streamk(d + j, acc); else storev(d + j, acc);
    }
    for (; j < n; ++j) {
        T acc = Op::f(r[0][j], r[1][j]);
        for (int i = 2; i < N; ++i) acc = Op::f(acc, r[i][j]);
        d[j] = acc;
    }
}

template <class T, bool NT> inline void copyRow(const T* s, T* d, int n) {
    if (!NT) { std::memcpy(d, s, sizeof(T) * static_cast<size_t>(n)); return; }
    constexpr int L = klanes<T>();
    int j = 0;
    for (; j + L <= n; j += L) streamk(d + j, loadv<KVec<T>>(s + j));
    for (; j < n; ++j) d[j] = s[j];
}

// Extremum of rows[0..count) into d; rows 0 and 1 first, then the others.
template <class T, class Op, bool NT>
void foldRows(const T* const* r, int count, T* d, int n) {
    switch (count) {
    case 1: copyRow<T, NT>(r[0], d, n); return;
    case 2: foldN<T, Op, 2, NT>(r, d, n); return;
    case 3: foldN<T, Op, 3, NT>(r, d, n); return;
    case 4: foldN<T, Op, 4, NT>(r, d, n); return;
    case 5: foldN<T, Op, 5, NT>(r, d, n); return;
    default: break;
    }
    foldN<T, Op, 5, NT>(r, d, n);
    for (int i = 5; i < count; ++i) ext2<T, Op, false>(d, d, r[i], n);
}

template <class T, class Op> void foldEntry(const void* const* rows, int n, void* dst, int samples) {
    foldRows<T, Op, false>(reinterpret_cast<const T* const*>(rows), n, static_cast<T*>(dst), samples);
}

// ---- Rows ----------------------------------------------------------------------
// Extremum of cnt >= 1 samples step apart, in four independent chains.
template <class T, class Op>
inline T reduceStrided(const T* p, int cnt, int step) {
    T r0 = p[0], r1 = r0, r2 = r0, r3 = r0;
    int i = 1;
    for (; i + 4 <= cnt; i += 4) {
        r0 = Op::f(r0, p[i * step]);
        r1 = Op::f(r1, p[(i + 1) * step]);
        r2 = Op::f(r2, p[(i + 2) * step]);
        r3 = Op::f(r3, p[(i + 3) * step]);
    }
    for (; i < cnt; ++i) r0 = Op::f(r0, p[i * step]);
    return Op::f(Op::f(r0, r1), Op::f(r2, r3));
}

// Outputs whose rectangle passes an end of the row: the first rectangle at
// each end is reduced at once, then a running extremum widens it by one
// sample per output, from sample 0 for the left ones and from the last
// sample backwards for the right ones.
template <class T, class Op, int C>
void rowEdges(const T* s, T* d, int w, int W, int a) {
    const int xl = a < w ? a : w;
    const long long xr0 = static_cast<long long>(w) - W + a + 1;
    const int xr = static_cast<int>(xr0 > a ? xr0 : a);
    for (int ch = 0; ch < C; ++ch) {
        if (xl > 0) {
            int j = W - 1 - a < w - 1 ? W - 1 - a : w - 1;
            T run = reduceStrided<T, Op>(s + ch, j + 1, C);
            d[ch] = run;
            for (int x = 1; x < xl; ++x) {
                if (j < w - 1) run = Op::f(run, s[++j * C + ch]);
                d[x * C + ch] = run;
            }
        }
        if (xr < w) {
            int j = w - 1 - a;  // at least 0: xr >= a
            T run = reduceStrided<T, Op>(s + j * C + ch, w - j, C);
            d[(w - 1) * C + ch] = run;
            for (int x = w - 2; x >= xr; --x) {
                if (j > x - a) run = Op::f(run, s[--j * C + ch]);
                d[x * C + ch] = run;
            }
        }
    }
}

// Short windows read every sample, on 32-byte vectors at every level: a
// 64-byte vector at an unaligned address always splits a cache line, and
// with up to five loads a vector that costs more than it saves.
template <class T, class Op, int C, int W>
inline void directAt(const T* s, T* d, int j) {
    Vec<T> v[W];
    for (int i = 0; i < W; ++i) v[i] = loadv<Vec<T>>(s + j + i * C);
    storev(d + j, TreeExt<Op, W>::of(v));
}

template <class T, class Op, int C, int W>
void middleDirect(const T* s, T* d, int n) {
    constexpr int L = lanes<T>();
    int j = 0;
    for (; j + L <= n; j += L) directAt<T, Op, C, W>(s, d, j);
    if (j < n && n >= L) {
        directAt<T, Op, C, W>(s, d, n - L);  // the last vector again, overlapping: same values
        return;
    }
    for (; j < n; ++j) {
        T acc = s[j];
        for (int i = 1; i < W; ++i) acc = Op::f(acc, s[j + i * C]);
        d[j] = acc;
    }
}

// ext2 out of place: a short end is one more vector overlapping the last.
template <class T, class Op>
inline void ext2Apart(T* out, const T* a, const T* b, int n) {
    constexpr int L = klanes<T>();
    if (n < L) {
        ext2<T, Op>(out, a, b, n);
        return;
    }
    int j = 0;
    for (; j + L <= n; j += L) storev(out + j, Op::f(loadv<KVec<T>>(a + j), loadv<KVec<T>>(b + j)));
    if (j < n) storev(out + n - L, Op::f(loadv<KVec<T>>(a + n - L), loadv<KVec<T>>(b + n - L)));
}

// ext2 in a stack block with room past n: whole vectors only; lanes past n
// hold values nothing reads.
template <class T, class Op>
inline void ext2Whole(T* out, const T* a, const T* b, int n) {
    constexpr int L = klanes<T>();
    for (int j = 0; j < n; j += L) storev(out + j, Op::f(loadv<KVec<T>>(a + j), loadv<KVec<T>>(b + j)));
}

#if RVCV_MINMAX_VBYTES == 64
#define RVCV_MINMAX_PIPE 1
// (b:a) shifted down by S bytes, a being the lower 64-byte vector: the
// vector that starts S bytes into a, taken from registers instead of a
// split load.
template <int S, class V> inline V shiftCat(V a, V b) {
    constexpr int q = S / 16, r = S % 16;
    const __m512i ia = bitcast<__m512i>(a), ib = bitcast<__m512i>(b);
    __m512i lo = ia, hi = ib;
    if constexpr (q > 0) lo = _mm512_mask_alignr_epi32(ia, 0xFFFF, ib, ia, 4 * q);
    if constexpr (r != 0 && q < 3) hi = _mm512_mask_alignr_epi32(ia, 0xFFFF, ib, ia, 4 * q + 4);
    if constexpr (r == 0) return bitcast<V>(lo);
    else return bitcast<V>(_mm512_alignr_epi8(hi, lo, r));
}

// Levels of the doubling held in registers: prev[t] is the newest vector of
// windows of 2^t pixels; a new vector x of level t gives, with prev[t], the
// next vector of level t + 1.
template <class T, class Op, int C, int t, int M>
inline void climb(KVec<T>* prev, KVec<T> x, KVec<T>& top) {
    if constexpr (t == M) {
        top = x;
    } else {
        const KVec<T> next = Op::f(prev[t], shiftCat<(1 << t) * C * static_cast<int>(sizeof(T))>(prev[t], x));
        prev[t] = x;
        climb<T, Op, C, t + 1, M>(prev, next, top);
    }
}

// The first M vectors fill the levels below k.
template <class T, class Op, int C, int t, int M>
inline void prime(KVec<T>* prev, KVec<T> x, int k) {
    if constexpr (t < M) {
        if (t == k) {
            prev[t] = x;
            return;
        }
        const KVec<T> next = Op::f(prev[t], shiftCat<(1 << t) * C * static_cast<int>(sizeof(T))>(prev[t], x));
        prev[t] = x;
        prime<T, Op, C, t + 1, M>(prev, next, k);
    }
}

// out = windows of 2^M pixels over p (lenIn samples), nv whole vectors;
// lanes past the input's end see copies of its last sample and are unused.
template <class T, class Op, int C, int M>
void pipeline(const T* p, int lenIn, T* out, int nv) {
    using Vt = KVec<T>;
    constexpr int L = klanes<T>();
    const int full = lenIn / L, last = nv - 1 + M;
    alignas(64) T tail[(M + 3) * L];
    for (int i = 0; i < (last + 1 - full) * L; ++i) {
        const int k = full * L + i;
        tail[i] = p[k < lenIn ? k : lenIn - 1];
    }
    auto X = [&](int k) { return k < full ? loadv<Vt>(p + k * L) : loadv<Vt>(tail + (k - full) * L); };
    Vt prev[M];
    for (int k = 0; k < M; ++k) prime<T, Op, C, 0, M>(prev, X(k), k);
    for (int k = M; k <= last; ++k) {
        Vt top;
        climb<T, Op, C, 0, M>(prev, X(k), top);
        storev(out + (k - M) * L, top);
    }
}

// Register levels whose shift stays inside one vector.
template <class T, int C> constexpr int pipeLevels() {
    int m = 0;
    while ((1 << m) * C * static_cast<int>(sizeof(T)) < 64 && m < 6) ++m;
    return m;
}

template <class T, class Op, int C, int Mv>
void pipeDispatch(int M, const T* p, int lenIn, T* out, int nv) {
    if constexpr (Mv >= 1) {
        if (M == Mv) pipeline<T, Op, C, Mv>(p, lenIn, out, nv);
        else pipeDispatch<T, Op, C, Mv - 1>(M, p, lenIn, out, nv);
    }
}
#endif

// Windows of 2, 4, 8 ... pixels built in a stack block, then two
// overlapping windows of the largest power of two give the W-pixel window.
// W is 2 to 63. Where the instruction set shifts across a vector pair, the
// levels up to one vector's width are built in registers in one pass.
template <class T, class Op, int C>
void middleDoubling(const T* s, T* d, int n, int W) {
    constexpr int CH = 2048 / static_cast<int>(sizeof(T));
    constexpr int L = klanes<T>();
    alignas(64) T buf[CH + 64 * C + 3 * L];
    int m = 1;
    while ((2 << m) <= W) ++m;
    const int span = (W - (1 << m)) * C;
    for (int s0 = 0; s0 < n; s0 += CH) {
        const int cnt = n - s0 < CH ? n - s0 : CH;
        int len = cnt + (W - 2) * C;
        int t = 2;
#ifdef RVCV_MINMAX_PIPE
        if constexpr (L * sizeof(T) == 64) {
            constexpr int Mmax = pipeLevels<T, C>();
            const int M = m < Mmax ? m : Mmax;
            len = cnt + (W - (1 << M)) * C;
            const int nv = (len + L - 1) / L;
            pipeDispatch<T, Op, C, Mmax>(M, s + s0, cnt + (W - 1) * C, buf, nv);
            std::fill(buf + nv * L, buf + len + 2 * L, T(0));
            t = M + 1;
        } else
#endif
        {
            ext2Apart<T, Op>(buf, s + s0, s + s0 + C, len);
            std::fill(buf + len, buf + len + 2 * L, T(0));
        }
        for (; t <= m; ++t) {
            const int shift = (1 << (t - 1)) * C;
            len -= shift;
            ext2Whole<T, Op>(buf, buf, buf + shift, len);
        }
        ext2Apart<T, Op>(d + s0, buf, buf + span, cnt);
    }
}

// Exact extremum over columns x - a .. x - a + W - 1 clamped to the row; W up to 63.
template <class T, class Op, int C>
void exactRow(const T* s, T* d, int w, int W, int a) {
    if (W == 1) {
        std::memcpy(d, s, sizeof(T) * C * static_cast<size_t>(w));
        return;
    }
    rowEdges<T, Op, C>(s, d, w, W, a);
    const int n = w - W + 1;
    if (n <= 0) return;
    T* dm = d + a * C;
    const int ns = n * C;
    switch (W) {
    case 2: middleDirect<T, Op, C, 2>(s, dm, ns); break;
    case 3: middleDirect<T, Op, C, 3>(s, dm, ns); break;
    case 4: middleDirect<T, Op, C, 4>(s, dm, ns); break;
    case 5: middleDirect<T, Op, C, 5>(s, dm, ns); break;
    default: middleDoubling<T, Op, C>(s, dm, ns, W); break;
    }
}

// Running extremum for any width: exact up to 63 columns, then the row grows
// in place by doubling, first to the left until the anchor is covered, then
// to the right.
template <class T, class Op, int C>
void rowVH(const void* sv, void* dv, int w, int W, int a) {
    const T* s = static_cast<const T*>(sv);
    T* d = static_cast<T*>(dv);
    if (W < 64) {
        exactRow<T, Op, C>(s, d, w, W, a);
        return;
    }
    int k = 63;
    exactRow<T, Op, C>(s, d, w, 63, a < 62 ? a : 62);
    const int n = w * C;
    constexpr int L = klanes<T>();
    while (a >= k) {
        const int dd = a - k + 1 < k ? a - k + 1 : k;
        const int sh = dd < w ? dd * C : n;
        int j = n;
        for (; j - L >= sh; j -= L) storev(d + j - L, Op::f(loadv<KVec<T>>(d + j - L), loadv<KVec<T>>(d + j - L - sh)));
        for (--j; j >= sh; --j) d[j] = Op::f(d[j], d[j - sh]);
        for (; j >= 0; --j) d[j] = Op::f(d[j], d[j % C]);
        k += dd;
    }
    while (k < W) {
        const int dd = W - k < k ? W - k : k;
        const int sh = dd < w ? dd * C : n;
        ext2<T, Op>(d, d, d + sh, n - sh);
        for (int j = n - sh; j < n; ++j) d[j] = Op::f(d[j], d[n - C + j % C]);
        k += dd;
    }
}

// Kernels of fixed length N. Lengths 2 to 6 assume a mask of exactly N.
// Lengths 7 to 13 shorten a wider mask to N columns; when the anchor lay
// beyond column N - 1 the first output is the neutral value and the rest is
// the row of one pixel less with the anchor at N - 1. Length 15 caps the
// mask at 15 columns and the anchor at 14.
template <class T, class Op, int C, int N>
void rowFixed(const void* sv, void* dv, int w, int W, int a) {
    const T* s = static_cast<const T*>(sv);
    T* d = static_cast<T*>(dv);
    if (N == 1) {
        std::memcpy(d, s, sizeof(T) * C * static_cast<size_t>(w));
    } else if (N <= 6) {
        exactRow<T, Op, C>(s, d, w, N, a);
    } else if (N == 15) {
        if (W > 15) {
            W = 15;
            if (a > 14) a = 14;
        }
        exactRow<T, Op, C>(s, d, w, W, a);
    } else {
        if (W > N) {
            W = N;
            if (a > N - 1) {
                for (int ch = 0; ch < C; ++ch) d[ch] = neutral<T, Op>();
                a = N - 1;
                d += C;
                --w;
            }
        }
        exactRow<T, Op, C>(s, d, w, W, a);
    }
}

// ---- Bands of rows -------------------------------------------------------------
// Single-channel rows of a band are reduced together: tiles of E samples
// from each row are transposed in 16-byte lanes so that one vector holds one
// column of every row of the band, and a block-wise running extremum along
// the row (suffix and prefix extrema over blocks of W columns) then costs
// about three comparisons a sample whatever the mask width. Edges replicate
// the first and last column, so every output is the exact clamped window.
#ifdef __AVX512BW__
constexpr int kBandBytes = 64;
// Narrowest mask for which a band beats the row kernels, by sample size;
// 4-byte rows keep the doubling kernels at this level, which are faster.
template <class T> constexpr int bandMinWidth() { return sizeof(T) == 1 ? 10 : 1 << 30; }
#elif defined(__AVX2__)
constexpr int kBandBytes = 32;
template <class T> constexpr int bandMinWidth() { return sizeof(T) == 1 ? 16 : 32; }
#else
constexpr int kBandBytes = 16;
template <class T> constexpr int bandMinWidth() { return 8; }
#endif
template <class T> constexpr int bandRows() { return kBandBytes / static_cast<int>(sizeof(T)); }

// Output columns of a pass along the row: the pass's two working arrays
// stay within about 24 KB, half of L1, whatever the mask width.
inline int bandChunk(int E, int W) {
    const int fit = 24576 / (2 * kBandBytes) - (W - 1);
    return fit > 4 * E ? fit / E * E : 4 * E;
}

// Working vectors of one band: two edge vectors and two arrays of
// bandChunk + W - 1 columns.
inline size_t bandWorkBytes(int E, int W) {
    return static_cast<size_t>(kBandBytes) * (2 + 2 * (static_cast<size_t>(bandChunk(E, W)) + static_cast<size_t>(W - 1)));
}

template <int BV> struct LaneInt;
template <> struct LaneInt<16> { using type = __m128i; };
inline __m128i unpackLo(__m128i a, __m128i b, std::integral_constant<int, 1>) { return _mm_unpacklo_epi8(a, b); }
inline __m128i unpackHi(__m128i a, __m128i b, std::integral_constant<int, 1>) { return _mm_unpackhi_epi8(a, b); }
inline __m128i unpackLo(__m128i a, __m128i b, std::integral_constant<int, 4>) { return _mm_unpacklo_epi32(a, b); }
inline __m128i unpackHi(__m128i a, __m128i b, std::integral_constant<int, 4>) { return _mm_unpackhi_epi32(a, b); }
inline __m128i loadLanes(const char* const* p, int t, __m128i*) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p[0] + t)); }
inline void storeLanes(char* const* p, int t, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p[0] + t), v); }
#ifdef __AVX2__
template <> struct LaneInt<32> { using type = __m256i; };
inline __m256i unpackLo(__m256i a, __m256i b, std::integral_constant<int, 1>) { return _mm256_unpacklo_epi8(a, b); }
inline __m256i unpackHi(__m256i a, __m256i b, std::integral_constant<int, 1>) { return _mm256_unpackhi_epi8(a, b); }
inline __m256i unpackLo(__m256i a, __m256i b, std::integral_constant<int, 4>) { return _mm256_unpacklo_epi32(a, b); }
inline __m256i unpackHi(__m256i a, __m256i b, std::integral_constant<int, 4>) { return _mm256_unpackhi_epi32(a, b); }
inline __m256i loadLanes(const char* const* p, int t, __m256i*) {
    const __m128i lo = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p[0] + t));
    return _mm256_inserti128_si256(_mm256_zextsi128_si256(lo), _mm_loadu_si128(reinterpret_cast<const __m128i*>(p[1] + t)), 1);
}
inline void storeLanes(char* const* p, int t, __m256i v) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p[0] + t), _mm256_castsi256_si128(v));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p[1] + t), _mm256_extracti128_si256(v, 1));
}
#endif
#ifdef __AVX512BW__
// The masked forms where a plain one exists: GCC 12's plain ones trip its
// maybe-uninitialized warning.
template <> struct LaneInt<64> { using type = __m512i; };
inline __m512i unpackLo(__m512i a, __m512i b, std::integral_constant<int, 1>) { return _mm512_unpacklo_epi8(a, b); }
inline __m512i unpackHi(__m512i a, __m512i b, std::integral_constant<int, 1>) { return _mm512_unpackhi_epi8(a, b); }
inline __m512i unpackLo(__m512i a, __m512i b, std::integral_constant<int, 4>) { return _mm512_mask_unpacklo_epi32(a, 0xFFFF, a, b); }
inline __m512i unpackHi(__m512i a, __m512i b, std::integral_constant<int, 4>) { return _mm512_mask_unpackhi_epi32(a, 0xFFFF, a, b); }
inline __m512i loadLanes(const char* const* p, int t, __m512i*) {
    auto q = [&](int i) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p[i] + t)); };
    // masked broadcasts load into their lanes without a shuffle
    __m512i v = _mm512_zextsi128_si512(q(0));
    v = _mm512_mask_broadcast_i32x4(v, 0x00F0, q(1));
    v = _mm512_mask_broadcast_i32x4(v, 0x0F00, q(2));
    return _mm512_mask_broadcast_i32x4(v, 0xF000, q(3));
}
inline void storeLanes(char* const* p, int t, __m512i v) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p[0] + t), _mm512_mask_extracti32x4_epi32(_mm_setzero_si128(), 0xF, v, 0));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p[1] + t), _mm512_mask_extracti32x4_epi32(_mm_setzero_si128(), 0xF, v, 1));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p[2] + t), _mm512_mask_extracti32x4_epi32(_mm_setzero_si128(), 0xF, v, 2));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p[3] + t), _mm512_mask_extracti32x4_epi32(_mm_setzero_si128(), 0xF, v, 3));
}
#endif

// Transposes E x E samples inside every 16-byte lane: log2(E) rounds of
// interleaving vector i with vector i + E/2; each round rotates the bits of
// (vector index, position) by one, so log2(E) rounds exchange the two.
template <int ES, class V> inline void transposeLanes(V* v) {
    constexpr int E = 16 / ES;
    for (int round = 1; round < E; round *= 2) {
        V t[E];
        for (int i = 0; i < E / 2; ++i) {
            t[2 * i] = unpackLo(v[i], v[i + E / 2], std::integral_constant<int, ES>());
            t[2 * i + 1] = unpackHi(v[i], v[i + E / 2], std::integral_constant<int, ES>());
        }
        for (int i = 0; i < E; ++i) v[i] = t[i];
    }
}

// Rows src[r] -> dst[r] for the bandRows<T>() rows of a band; w >= 16 / sizeof(T).
template <class T, class Op>
void rowBand(const T* const* src, T* const* dst, int w, int W, int a, void* work) {
    constexpr int ES = static_cast<int>(sizeof(T)), E = 16 / ES, G = kBandBytes / 16, R = E * G;
    using V = typename LaneInt<kBandBytes>::type;
    typedef T VT __attribute__((vector_size(kBandBytes)));
    const int span = W - 1, Kmax = bandChunk(E, W);
    VT* const edge = static_cast<VT*>(work);
    VT* const P = edge + 2;
    VT* const Hh = P + Kmax + span;
    for (int r = 0; r < R; ++r) {
        edge[0][r] = src[r][0];
        edge[1][r] = src[r][w - 1];
    }
    // lane g of vector i holds row g E + i
    const char* sp[E][G];
    char* dp[E][G];
    for (int i = 0; i < E; ++i)
        for (int g = 0; g < G; ++g) {
            sp[i][g] = reinterpret_cast<const char*>(src[g * E + i]);
            dp[i][g] = reinterpret_cast<char*>(dst[g * E + i]);
        }
    for (int j0 = 0;; j0 += Kmax) {
        if (j0 + Kmax > w) j0 = w > Kmax ? w - Kmax : 0;  // the last pass overlaps the one before
        const int K = w - j0 < Kmax ? w - j0 : Kmax, len = K + span;
        // P[q] is column j0 - a + q clamped; columns [sb, se) come from the rows
        const int lo = j0 - a, sb = lo > 0 ? lo : 0, se = lo + len < w ? lo + len : w;
        for (int q = 0; q < sb - lo; ++q) P[q] = edge[0];
        for (int q = se - lo; q < len; ++q) P[q] = edge[1];
        for (int t = sb; t < se; t += E) {
            if (t + E > se) t = se - E;
            V v[E];
            for (int i = 0; i < E; ++i) v[i] = loadLanes(sp[i], t * ES, static_cast<V*>(nullptr));
            transposeLanes<ES>(v);
            for (int i = 0; i < E; ++i) P[t - lo + i] = bitcast<VT>(v[i]);
        }
        // Suffix extrema per block of W columns into Hh, then prefix extrema
        // of the same blocks: output q meets the suffix from q and the prefix
        // up to q + span. The running value stays in a register; a chain
        // through memory would wait on store forwarding every step.
        for (int b = 0; b < len; b += W) {
            const int e = b + W < len ? b + W : len;
            VT run = P[e - 1];
            for (int q = e - 1; q >= b; --q) Hh[q] = run = Op::f(run, P[q]);
        }
        for (int b = 0; b < len; b += W) {
            const int e = b + W < len ? b + W : len;
            VT run = P[b];
            int q = b;
            for (; q < e && q < span; ++q) run = Op::f(run, P[q]);
            for (; q < e; ++q) {
                run = Op::f(run, P[q]);
                Hh[q - span] = Op::f(Hh[q - span], run);
            }
        }
        for (int u = 0; u < K; u += E) {
            if (u + E > K) u = K - E;
            V v[E];
            for (int i = 0; i < E; ++i) v[i] = bitcast<V>(Hh[u + i]);
            transposeLanes<ES>(v);
            for (int i = 0; i < E; ++i) storeLanes(dp[i], (j0 + u) * ES, v[i]);
        }
        if (j0 + K >= w) break;
    }
}

// ---- Columns -------------------------------------------------------------------
// Two output rows share the H - 1 reduced rows common to both windows; the
// row above the pair completes the first, the row below the second.
template <class T, class Op, int NC, bool NT>
void foldPairN(const T* const* c, const T* top, const T* bot, T* o0, T* o1, int n) {
    constexpr int L = klanes<T>();
    int j = 0;
    for (; j + L <= n; j += L) {
        KVec<T> acc = loadv<KVec<T>>(c[0] + j);
        for (int i = 1; i < NC; ++i) acc = Op::f(acc, loadv<KVec<T>>(c[i] + j));
        const KVec<T> v0 = Op::f(acc, loadv<KVec<T>>(top + j)), v1 = Op::f(acc, loadv<KVec<T>>(bot + j));
        if (NT) { streamk(o0 + j, v0); streamk(o1 + j, v1); }
        else { storev(o0 + j, v0); storev(o1 + j, v1); }
    }
    for (; j < n; ++j) {
        T acc = c[0][j];
        for (int i = 1; i < NC; ++i) acc = Op::f(acc, c[i][j]);
        o0[j] = Op::f(acc, top[j]);
        o1[j] = Op::f(acc, bot[j]);
    }
}

template <class T, class Op, bool NT>
void foldPair(const T* const* c, int nc, const T* top, const T* bot, T* o0, T* o1, int n) {
    switch (nc) {
    case 1: foldPairN<T, Op, 1, NT>(c, top, bot, o0, o1, n); return;
    case 2: foldPairN<T, Op, 2, NT>(c, top, bot, o0, o1, n); return;
    case 3: foldPairN<T, Op, 3, NT>(c, top, bot, o0, o1, n); return;
    default: foldPairN<T, Op, 4, NT>(c, top, bot, o0, o1, n); return;
    }
}

struct ColumnArgs {
    const char* src;
    int srcStep;
    char* dst;
    int dstStep;
    int w, h, C, W, ax, H, ay;
    MinMaxRowFn row;
    void** ptrs;
    bool exact;  // the row function gives the exact clamped window
};

// Reduced rows on request, rows 1 .. h - 2 each once in increasing order:
// from the row function into the caller's slot, or from bands computed into
// a ring of rows of its own. The ring keeps the last 2H + 1 rows handed out
// while a new band is written, so a column pass may keep pointers to them
// and update them in place.
template <class T, class Op> class RowFeed {
public:
    static constexpr int R = bandRows<T>(), E = 16 / static_cast<int>(sizeof(T));
    explicit RowFeed(const ColumnArgs& g) : g_(g) {
        // A band of few real rows would mostly reduce copies of the last.
        if (!g.exact || g.C != 1 || g.W < bandMinWidth<T>() || g.w < E || g.h < R / 4) return;
        stride_ = (sizeof(T) * static_cast<size_t>(g.w) + 63) & ~size_t(63);
        cap_ = g.H == 1 ? R : (2 * g.H + 1 + R + R - 1) / R * R;  // one-row masks write straight out
        const size_t bytes = stride_ * static_cast<size_t>(cap_) + bandWorkBytes(E, g.W);
        if (bytes > static_cast<size_t>(std::numeric_limits<int>::max() - 64)) return;
        heap_ = rvpMalloc(static_cast<int>(bytes) + 32);
        if (!heap_) return;
        // whole vectors of the widest level are 64 bytes; the allocator gives 32
        block_ = reinterpret_cast<char*>((reinterpret_cast<uintptr_t>(heap_) + 63) & ~uintptr_t(63));
        band_ = rowBand<T, Op>;
    }
    ~RowFeed() { if (heap_) rvpFree(heap_); }
    RowFeed(const RowFeed&) = delete;
    RowFeed& operator=(const RowFeed&) = delete;

    bool banded() const { return band_ != nullptr; }

    // Reduced row i: in slot, or in the ring.
    T* fetch(int i, T* slot) {
        if (!band_) {
            g_.row(rowAt(g_.src, g_.srcStep, i), slot, g_.w, g_.W, g_.ax);
            return slot;
        }
        if (i >= next_) {
            T* out[R];
            for (int r = 0; r < R; ++r) out[r] = row(i + r);
            run(i, out);
            next_ = i + R;
        }
        return row(i);
    }

    // Reduced row i copied into slot.
    void get(int i, T* slot) {
        const T* r = fetch(i, slot);
        if (r != slot) std::memcpy(slot, r, sizeof(T) * static_cast<size_t>(g_.w));
    }

    // Reduced rows straight into the destination (masks one row high).
    void toDestination() {
        for (int y = 0; y < g_.h; y += R) {
            T* out[R];
            for (int r = 0; r < R; ++r) out[r] = y + r < g_.h ? reinterpret_cast<T*>(rowAt(g_.dst, g_.dstStep, y + r)) : row(r);
            run(y, out);
        }
    }

private:
    T* row(int i) const { return reinterpret_cast<T*>(block_ + stride_ * static_cast<size_t>(i % cap_)); }
    void run(int y, T* const* out) {
        const T* in[R];
        for (int r = 0; r < R; ++r) in[r] = rowAt(reinterpret_cast<const T*>(g_.src), g_.srcStep, y + r < g_.h ? y + r : g_.h - 1);
        band_(in, out, g_.w, g_.W, g_.ax, block_ + stride_ * static_cast<size_t>(cap_));
    }

    const ColumnArgs& g_;
    void (*band_)(const T* const*, T* const*, int, int, int, void*) = nullptr;
    void* heap_ = nullptr;
    char* block_ = nullptr;
    size_t stride_ = 0;
    int cap_ = R;
    int next_ = 0;
};

template <class T> bool streamingWorthIt(int w, int C, int h) {
    const long long samples = static_cast<long long>(w) * C * h;
    const long long cache = owncvGetCacheSize();
    return samples >= (sizeof(T) == 1 ? cache / 2 : cache / 4);
}

template <class T, class Op> struct Emit {
    bool big;
    int n;
    void fold(T* o, const T* const* r, int count) const {
        if (big && aligned16(o)) foldRows<T, Op, true>(r, count, o, n);
        else foldRows<T, Op, false>(r, count, o, n);
    }
    void pair(const T* const* c, int nc, const T* top, const T* bot, T* o0, T* o1) const {
        if (big && aligned16(o0) && aligned16(o1)) foldPair<T, Op, true>(c, nc, top, bot, o0, o1, n);
        else foldPair<T, Op, false>(c, nc, top, bot, o0, o1, n);
    }
    void two(T* o, const T* a, const T* b) const {
        const T* r[2] = {a, b};
        fold(o, r, 2);
    }
};

// Short masks (H up to 5): a ring of H + 1 reduced rows, real row j in slot
// j % (H + 1), rows outside the image read the nearest real row; output rows
// are made two at a time.
template <class T, class Op>
void columnDirect(const ColumnArgs& g, const Emit<T, Op>& emit, RowFeed<T, Op>& feed) {
    const int R = g.H + 1;
    int next = 0;
    const T* ring[8];
    auto rowOf = [&](int j) { return ring[(j < 0 ? 0 : j > g.h - 1 ? g.h - 1 : j) % R]; };
    const T* common[8];
    for (int y = 0; y < g.h; y += 2) {
        const int last = y - g.ay + g.H < g.h - 1 ? y - g.ay + g.H : g.h - 1;
        for (; next <= last; ++next) ring[next % R] = feed.fetch(next, static_cast<T*>(g.ptrs[next % R]));
        for (int i = 1; i < g.H; ++i) common[i - 1] = rowOf(y - g.ay + i);
        const T* top = rowOf(y - g.ay);
        T* o0 = reinterpret_cast<T*>(rowAt(g.dst, g.dstStep, y));
        if (y + 1 < g.h) {
            emit.pair(common, g.H - 1, top, rowOf(y - g.ay + g.H), o0, reinterpret_cast<T*>(rowAt(g.dst, g.dstStep, y + 1)));
        } else {
            common[g.H - 1] = top;
            emit.fold(o0, common, g.H);
        }
    }
}

// Block-wise running extremum down the columns (H >= 6). A block of H
// reduced rows p .. p+H-1 is turned in place into suffix extrema; a forward
// running row F over rows p+H, p+H+1 ... completes each window, and every
// row read for F goes into the slot its suffix just freed, ready for the next
// block, which starts at p + H + 1. Rows above and below the image are
// copies of the first and last reduced rows, kept in two spare slots.
template <class T, class Op>
void columnRunning(const ColumnArgs& g, const Emit<T, Op>& emit, RowFeed<T, Op>& feed) {
    const int H = g.H, h = g.h, ns = g.w * g.C;
    const size_t rb = sizeof(T) * static_cast<size_t>(ns);
    T** blk = reinterpret_cast<T**>(g.ptrs) + 2 * H;
    for (int i = 0; i < H; ++i) blk[i] = static_cast<T*>(g.ptrs[i]);
    T* F = static_cast<T*>(g.ptrs[H]);
    T* top = static_cast<T*>(g.ptrs[H + 1]);
    T* bottom = h == 1 ? top : static_cast<T*>(g.ptrs[H + 2]);
    feed.get(0, top);
    // A row from the feed may live in its ring: the slot pointer moves there
    // and the slot it left is not used again. Copies of the edge rows only
    // come before the first ring row or after the last band.
    auto load = [&](long long i, T*& slot) {
        if (i <= 0) {
            std::memcpy(slot, top, rb);
        } else if (i < h - 1) {
            slot = feed.fetch(static_cast<int>(i), slot);
        } else if (i == h - 1) {
            feed.get(static_cast<int>(i), bottom);
            std::memcpy(slot, bottom, rb);
        } else {
            std::memcpy(slot, bottom, rb);
        }
    };
    auto out = [&](int y) { return reinterpret_cast<T*>(rowAt(g.dst, g.dstStep, y)); };
    long long p = -g.ay;
    int y = 0;
    for (int j = 0; j < H; ++j) load(p + j, blk[j]);
    for (;;) {
        for (int j = H - 2; j >= 1; --j) ext2<T, Op>(blk[j], blk[j], blk[j + 1], ns);
        emit.two(out(y), blk[1], blk[0]);
        if (++y == h) return;
        load(p + H, F);
        for (int j = 1; j < H; ++j) {
            emit.two(out(y), blk[j], F);
            if (++y == h) return;
            load(p + H + j, blk[j]);
            if (j < H - 1) {
                ext2<T, Op>(F, F, blk[j], ns);
            } else {
                emit.two(out(y), F, blk[j]);
                if (++y == h) return;
            }
        }
        T* t = blk[0];
        for (int j = 0; j < H - 1; ++j) blk[j] = blk[j + 1];
        blk[H - 1] = t;
        load(p + 2 * H, blk[H - 1]);
        p += H + 1;
    }
}

// Index 1: the row function straight from each source row to its output row.
template <class T, class Op, int Kind>
void column(const void* src, int srcStep, void* dst, int dstStep, RvpiSize roi, int channels, RvpiSize mask,
            RvpiPoint anchor, MinMaxRowFn row, void** ptrs, int exactRows) {
    const ColumnArgs g{static_cast<const char*>(src), srcStep, static_cast<char*>(dst), dstStep, roi.width,
                       roi.height, channels, mask.width, anchor.x, mask.height, anchor.y, row, ptrs, exactRows != 0};
    RowFeed<T, Op> feed(g);
    if (Kind == 1 || g.H == 1) {
        if (feed.banded()) feed.toDestination();
        else for (int y = 0; y < g.h; ++y) row(rowAt(g.src, srcStep, y), rowAt(g.dst, dstStep, y), g.w, g.W, g.ax);
        return;
    }
    const Emit<T, Op> emit{streamingWorthIt<T>(g.w, g.C, g.h), g.w * g.C};
    if (g.H <= 5) columnDirect<T, Op>(g, emit, feed);
    else columnRunning<T, Op>(g, emit, feed);
    if (emit.big) _mm_sfence();
}

// ---- Runs of the run decomposition --------------------------------------------
// A run one pixel longer on each side than a shorter run of the same row:
// the shorter run's row and two more source columns (disks, diamonds).
// Pixels where the longer run leaves the row use clamped columns.
template <class T, class Op, int C>
void growRun(const void* sv, const void* pv, void* dv, int w, int len, int off) {
    const T* s = static_cast<const T*>(sv);
    const T* prev = static_cast<const T*>(pv);
    T* d = static_cast<T*>(dv);
    constexpr int VL = klanes<T>();
    const int lo = -off * C, hi = (len - 1 - off) * C;
    const int xb = off, xe = w - len + off;
    int t = xb * C;
    const int t1 = (xe + 1) * C;
    for (; t + VL <= t1; t += VL)
        storev(d + t, Op::f(loadv<KVec<T>>(prev + t), Op::f(loadv<KVec<T>>(s + t + lo), loadv<KVec<T>>(s + t + hi))));
    for (; t < t1; ++t) d[t] = Op::f(prev[t], Op::f(s[t + lo], s[t + hi]));
    auto edge = [&](int x) {
        for (int ch = 0; ch < C; ++ch) {
            T acc = neutral<T, Op>();
            for (int i = 0; i < len; ++i) {
                const int c = x - off + i;
                acc = Op::f(acc, s[(c < 0 ? 0 : c > w - 1 ? w - 1 : c) * C + ch]);
            }
            d[x * C + ch] = acc;
        }
    };
    for (int x = 0; x < xb && x < w; ++x) edge(x);
    for (int x = xe + 1 > xb ? xe + 1 : xb; x < w; ++x) edge(x);
}

// ---- Direct structuring-element kernels ------------------------------------------
// 8u: dilation is the maximum of (sample AND cell), erosion the minimum of
// (sample OR cell). 32f: dilation the maximum of min(sample, cell), erosion
// the minimum of max(sample, cell); a set cell thus clamps infinities to the
// largest finite value.
template <class T, bool Dilate> struct DirectOp;
template <bool Dilate> struct DirectOp<uint8_t, Dilate> {
    template <class X> static X cell(X s, X c) { return Dilate ? (s & c) : (s | c); }
    template <class X> static X ext(X a, X b) { return Dilate ? OpMax::f(a, b) : OpMin::f(a, b); }
    static uint8_t start() { return Dilate ? 0 : 255; }
};
template <bool Dilate> struct DirectOp<float, Dilate> {
    template <class X> static X cell(X s, X c) { return Dilate ? OpMin::f(s, c) : OpMax::f(s, c); }
    template <class X> static X ext(X a, X b) { return Dilate ? OpMax::f(a, b) : OpMin::f(a, b); }
    static float start() { return Dilate ? -std::numeric_limits<float>::infinity() : std::numeric_limits<float>::infinity(); }
};

template <class T, int C, bool Dilate>
void direct(const void* topLeft, int step, void* dv, int width, const void* cells, int mW, int mH) {
    using O = DirectOp<T, Dilate>;
    constexpr int L = klanes<T>();
    const char* base = static_cast<const char*>(topLeft);
    const uint8_t* cb = static_cast<const uint8_t*>(cells);
    T* d = static_cast<T*>(dv);
    const int n = width * C;
    auto cellValue = [&](int r, int c) {
        T v;
        std::memcpy(&v, cb + (static_cast<size_t>(r) * mW + c) * 16, sizeof v);
        return v;
    };
    int j = 0;
    for (; j + L <= n; j += L) {
        KVec<T> acc = splat<KVec<T>>(O::start());
        for (int r = 0; r < mH; ++r) {
            const T* row = reinterpret_cast<const T*>(base + static_cast<ptrdiff_t>(step) * r) + j;
            for (int c = 0; c < mW; ++c)
                acc = O::ext(acc, O::cell(loadv<KVec<T>>(row + c * C), splat<KVec<T>>(cellValue(r, c))));
        }
        storev(d + j, acc);
    }
    for (; j < n; ++j) {
        T acc = O::start();
        for (int r = 0; r < mH; ++r) {
            const T* row = reinterpret_cast<const T*>(base + static_cast<ptrdiff_t>(step) * r) + j;
            for (int c = 0; c < mW; ++c) acc = O::ext(acc, O::cell(row[c * C], cellValue(r, c)));
        }
        d[j] = acc;
    }
}

// ---- Tables ----------------------------------------------------------------------
template <class T, class Op, int C>
constexpr void fillRows(MinMaxRowFn* plain, MinMaxRowFn* small) {
    MinMaxRowFn vh = rowVH<T, Op, C>;
    const MinMaxRowFn p[16] = {vh, rowFixed<T, Op, C, 1>, rowFixed<T, Op, C, 2>, rowFixed<T, Op, C, 3>,
                               rowFixed<T, Op, C, 4>, rowFixed<T, Op, C, 5>, rowFixed<T, Op, C, 6>,
                               rowFixed<T, Op, C, 7>, vh, rowFixed<T, Op, C, 9>, vh, rowFixed<T, Op, C, 11>, vh,
                               rowFixed<T, Op, C, 13>, vh, rowFixed<T, Op, C, 15>};
    for (int i = 0; i < 16; ++i) plain[i] = p[i];
    if (small) {
        for (int i = 0; i < 16; ++i) small[i] = p[i];
        for (int i = 8; i <= 14; i += 2) small[i] = p[i - 1];
    }
}

template <class T, class Op>
constexpr void fillColumns(MinMaxColumnFn* c) {
    MinMaxColumnFn vh = column<T, Op, 0>;
    const MinMaxColumnFn t[8] = {vh, column<T, Op, 1>, vh, column<T, Op, 3>, vh, column<T, Op, 5>, vh, vh};
    for (int i = 0; i < 8; ++i) c[i] = t[i];
}

template <class Op, int O>
constexpr void fillOp(MinMaxKernels& k) {
    fillRows<uint8_t, Op, 1>(k.row[O][0], nullptr);
    fillRows<uint8_t, Op, 3>(k.row[O][1], nullptr);
    fillRows<uint8_t, Op, 4>(k.row[O][2], k.rowSmall[O][0]);
    fillRows<float, Op, 1>(k.row[O][3], k.rowSmall[O][1]);
    fillRows<float, Op, 3>(k.row[O][4], nullptr);
    fillRows<float, Op, 4>(k.row[O][5], nullptr);
    fillColumns<uint8_t, Op>(k.column[O][0]);
    fillColumns<float, Op>(k.column[O][1]);
    k.grow[O][0] = growRun<uint8_t, Op, 1>;
    k.grow[O][1] = growRun<uint8_t, Op, 3>;
    k.grow[O][2] = growRun<uint8_t, Op, 4>;
    k.grow[O][3] = growRun<float, Op, 1>;
    k.grow[O][4] = growRun<float, Op, 3>;
    k.grow[O][5] = growRun<float, Op, 4>;
    k.fold[O][0] = foldEntry<uint8_t, Op>;
    k.fold[O][1] = foldEntry<float, Op>;
    k.row16u[O][0] = rowFixed<uint16_t, Op, 1, 3>;
    k.row16u[O][1] = rowVH<uint16_t, Op, 1>;
    k.row64f[O][0] = rowFixed<double, Op, 1, 3>;
    k.row64f[O][1] = rowVH<double, Op, 1>;
}

template <bool D>
constexpr void fillDirect(MorphDirectFn* t) {
    t[0] = direct<uint8_t, 1, D>;
    t[1] = direct<uint8_t, 3, D>;
    t[2] = direct<uint8_t, 4, D>;
    t[3] = direct<float, 1, D>;
    t[4] = direct<float, 3, D>;
    t[5] = direct<float, 4, D>;
}

constexpr MinMaxKernels build() {
    MinMaxKernels k{};
    fillOp<OpMin, kOpMin>(k);
    fillOp<OpMax, kOpMax>(k);
    fillDirect<false>(k.direct[0]);
    fillDirect<true>(k.direct[1]);
    return k;
}

}  // namespace

// Constant-initialised: a table filled at load would run this unit's wider
// instructions before the processor check.
extern constexpr MinMaxKernels kMinMax = build();

}  // namespace RVCV_ISA_NS
}  // namespace rvcv
