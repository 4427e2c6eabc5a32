// Gaussian 5x5 pyramid kernels, written once over sample type and channel
// count and compiled per instruction set (see rvcvsimd.h). Rows go in column
// chunks. Down: vertical sums of the chunk's source pixels, kept as even and
// odd pixels apart (one channel: parted as they are summed; three: parted by
// constant shuffles), then the five horizontal taps on plain loads. Up:
// vertical sums for the even and odd output rows, then even and odd outputs
// on plain loads, interleaved by constant shuffles. Replicated columns are
// copied into the pads; scalar code, with the same operations in the same
// order, only for the vertical passes' last samples.
#include <algorithm>
#include <type_traits>
#include <utility>

#include "pyramid/rvcvgauss5.h"
#include "rvcvsimd.h"

namespace rvcv {
namespace RVCV_ISA_NS {
namespace {

template <class T> struct Acc { using type = uint16_t; };
template <> struct Acc<float> { using type = float; };

// The tap arithmetic, for a scalar or a vector of accumulators. Integer sums
// are exact in 16 bits (at most 255 * 256 before rounding); float sums follow
// the order written.
template <class A> constexpr bool isInt() { return std::is_integral<A>::value || std::is_same<A, Vec<uint16_t>>::value; }
template <class A> A sum5(A a, A b, A c, A d, A e) {  // 1 4 6 4 1
    if constexpr (isInt<A>()) return static_cast<A>(static_cast<A>(a + e) + static_cast<A>((b + d) << 2) + static_cast<A>(c * 6));
    else return ((a + e) + (b + d) * 4.0f) + c * 6.0f;
}
template <class A> A sum161(A a, A b, A c) {  // 1 6 1
    if constexpr (isInt<A>()) return static_cast<A>(static_cast<A>(a + c) + static_cast<A>(b * 6));
    else return (a + c) + b * 6.0f;
}
template <class A> A sum44(A b, A c) {  // 4 4
    if constexpr (isInt<A>()) return static_cast<A>((b + c) << 2);
    else return (b + c) * 4.0f;
}

// ---- Vertical passes over `count` samples of the source rows -----------------
// N samples from p, widened to accumulators.
template <class T> Vec<typename Acc<T>::type> widen(const T* p) {
    using VA = Vec<typename Acc<T>::type>;
    typedef T VT __attribute__((vector_size(sizeof(VA) / sizeof(typename Acc<T>::type) * sizeof(T))));
    return __builtin_convertvector(loadv<VT>(p), VA);
}

template <class T>
void vertDown(const T* r0, const T* r1, const T* r2, const T* r3, const T* r4, typename Acc<T>::type* out, int count) {
    constexpr int N = lanes<typename Acc<T>::type>();
    int s = 0;
    for (; s + N <= count; s += N)
        storev(out + s, sum5(widen(r0 + s), widen(r1 + s), widen(r2 + s), widen(r3 + s), widen(r4 + s)));
    for (; s < count; ++s) out[s] = sum5<typename Acc<T>::type>(r0[s], r1[s], r2[s], r3[s], r4[s]);
}

template <class T>
void vertUp(const T* r0, const T* r1, const T* r2, typename Acc<T>::type* ev, typename Acc<T>::type* od, int count) {
    using A = typename Acc<T>::type;
    constexpr int N = lanes<A>();
    int s = 0;
    for (; s + N <= count; s += N) {
        const auto a = widen(r0 + s), b = widen(r1 + s), c = widen(r2 + s);
        storev(ev + s, sum161(a, b, c));
        storev(od + s, sum44(b, c));
    }
    for (; s < count; ++s) {
        ev[s] = sum161<A>(r0[s], r1[s], r2[s]);
        od[s] = sum44<A>(r1[s], r2[s]);
    }
}

// Replicated columns: pixel slots [p0, p1) of a row of C-sample pixels take
// the value of pixel `from`.
template <class A> void replicate(A* row, int c, int p0, int p1, int from) {
    for (int p = p0; p < p1; ++p)
        for (int k = 0; k < c; ++k) row[p * c + k] = row[from * c + k];
}

// ---- Horizontal passes ---------------------------------------------------------
// Lanes advance by S: a whole number of pixels (down) or pixel pairs (up); the
// lanes past S repeat the last one and are overwritten by the next store.
template <int N, int C> constexpr int downStep() { return N / C * C; }
template <int N, int C> constexpr int upStep() { return N / (2 * C) * 2 * C; }
// Down: lane j (pixel j / C, channel j % C) reads sample 2 * j - j % C past
// the tap's base.
template <int N, int C> constexpr int downIdx(int j) {
    if (j >= downStep<N, C>()) j = downStep<N, C>() - 1;
    return 2 * j - j % C;
}

template <int N, int C, class V, std::size_t... I>
V gatherDown(V a, V b, std::index_sequence<I...>) { return __builtin_shufflevector(a, b, downIdx<N, C>(I)...); }
template <class V, std::size_t... I>
V oddLanes(V a, V b, std::index_sequence<I...>) { return __builtin_shufflevector(a, b, (2 * I + 1)...); }

// Final rounding: 8u (sum + half) >> shift, 32f times 2^-shift.
template <class T, int Shift, class V> auto finish(V v) {
    using A = typename Acc<T>::type;
    constexpr int N = sizeof(V) / sizeof(A);
    typedef T VT __attribute__((vector_size(N * sizeof(T))));
    if constexpr (sizeof(T) == 1) return __builtin_convertvector((v + static_cast<A>(1 << (Shift - 1))) >> Shift, VT);
    else return v * (1.0f / (1 << Shift));
}

// Stores lanes [0, count) of v at d: the whole vector when `room` samples
// are writable there, else count lanes through a copy.
template <class T, class V> void put(T* d, V v, int count, int room) {
    if (room >= static_cast<int>(sizeof(V) / sizeof(T))) storev(d, v);
    else std::memcpy(d, &v, sizeof(T) * count);
}

// One channel, down: the vertical sums of source pixels [lo, hi) straight
// into E (even pixels counted from `first`, an even position) and O (odd).
template <class T>
void vertDownPairs(const T* const r[5], int first, int lo, int hi, typename Acc<T>::type* E,
                   typename Acc<T>::type* O) {
    using A = typename Acc<T>::type;
    using VA = Vec<A>;
    constexpr int N = lanes<A>();
    int p = lo;
    for (; p + 2 * N <= hi; p += 2 * N) {
        const int k = (p - first) / 2;
        if constexpr (sizeof(T) == 1) {
            VA ev[5], od[5];
            for (int t = 0; t < 5; ++t) {
                const VA v = loadv<VA>(r[t] + p);  // pixel pairs, the even one in the low byte
                ev[t] = v & 0xFF;
                od[t] = v >> 8;
            }
            storev(E + k, sum5(ev[0], ev[1], ev[2], ev[3], ev[4]));
            storev(O + k, sum5(od[0], od[1], od[2], od[3], od[4]));
        } else {  // summed as they lie, then parted (lane-wise sums: the same bits)
            auto col = [&](int o) {
                return sum5(loadv<VA>(r[0] + o), loadv<VA>(r[1] + o), loadv<VA>(r[2] + o), loadv<VA>(r[3] + o),
                            loadv<VA>(r[4] + o));
            };
            const VA a = col(p), b = col(p + N);
            storev(E + k, gatherDown<N, 1>(a, b, std::make_index_sequence<N>()));
            storev(O + k, oddLanes(a, b, std::make_index_sequence<N>()));
        }
    }
    for (; p < hi; ++p) {
        const A v = sum5<A>(r[0][p], r[1][p], r[2][p], r[3][p], r[4][p]);
        const int q = p - first;
        if (q & 1) O[q >> 1] = v;
        else E[q >> 1] = v;
    }
}

// Down, first half: the even and odd pixels of V (the vertical sums of a
// chunk's 2n + 3 source pixels) apart, n + 2 pixels each.
template <class A, int C>
void splitDown(const A* V, A* E, A* O, int n) {
    using VA = Vec<A>;
    constexpr int N = lanes<A>(), S = downStep<N, C>();
    const int total = (n + 2) * C;
    for (int j = 0; j < total; j += S) {  // lane j's pixel is 2 * (j / C) source pixels on
        const A* b = V + 2 * j;
        storev(E + j, gatherDown<N, C>(loadv<VA>(b), loadv<VA>(b + N), std::make_index_sequence<N>()));
        storev(O + j, gatherDown<N, C>(loadv<VA>(b + C), loadv<VA>(b + C + N), std::make_index_sequence<N>()));
    }
}

// Down, second half: outputs [0, n) of the chunk; output x has E[x], O[x],
// E[x + 1], O[x + 1], E[x + 2] as its taps.
template <class T, int C>
void horzDown(const typename Acc<T>::type* E, const typename Acc<T>::type* O, T* d, int n) {
    using A = typename Acc<T>::type;
    using VA = Vec<A>;
    constexpr int N = lanes<A>();
    const int total = n * C;
    for (int j = 0; j < total; j += N) {
        const VA r = sum5(loadv<VA>(E + j), loadv<VA>(O + j), loadv<VA>(E + j + C), loadv<VA>(O + j + C),
                          loadv<VA>(E + j + 2 * C));
        put(d + j, finish<T, 8>(r), std::min(N, total - j), total - j);
    }
}

// Up: output pixels [0, 2n) of a chunk from V, the vertical sums of its
// n + 2 source pixels (V[0] is the pixel left of the first one). Each step
// takes S source samples: their even outputs (1 6 1) and odd outputs (4 4)
// on plain loads, then interleaved pixel by pixel into two vectors.
template <int N, int C> constexpr int zipIdx(int j, int half) {
    constexpr int S = upStep<N, C>();
    if (j >= S) j = S - 1;
    const int P = j / C;
    return (P % 2 ? N : 0) + (P / 2) * C + j % C + half * (S / 2);
}
template <int N, int C, int Half, class V, std::size_t... I>
V zipUp(V e, V o, std::index_sequence<I...>) { return __builtin_shufflevector(e, o, zipIdx<N, C>(I, Half)...); }

template <class T, int C>
void horzUp(const typename Acc<T>::type* V, T* d, int n) {
    using A = typename Acc<T>::type;
    using VA = Vec<A>;
    constexpr int N = lanes<A>(), S = upStep<N, C>();
    const int total = 2 * n * C;
    for (int s = 0; s < n * C; s += S) {
        const VA a = loadv<VA>(V + s), b = loadv<VA>(V + s + C), c = loadv<VA>(V + s + 2 * C);
        const VA e = sum161(a, b, c), o = sum44(b, c);
        const int j = 2 * s;
        put(d + j, finish<T, 6>(zipUp<N, C, 0>(e, o, std::make_index_sequence<N>())), std::min(S, total - j), total - j);
        if (j + S < total)
            put(d + j + S, finish<T, 6>(zipUp<N, C, 1>(e, o, std::make_index_sequence<N>())),
                std::min(S, total - j - S), total - j - S);
    }
}

template <class T> const T* srcRow(const void* src, int64_t step, int y) {
    return reinterpret_cast<const T*>(static_cast<const char*>(src) + step * y);
}
template <class T> T* dstRow(void* dst, int64_t step, int y) {
    return reinterpret_cast<T*>(static_cast<char*>(dst) + step * y);
}
inline int clampi(int v, int lo, int hi) { return v < lo ? lo : v > hi ? hi : v; }
template <class A> A* align32(uint8_t* p) {
    return reinterpret_cast<A*>((reinterpret_cast<uintptr_t>(p) + 31) & ~uintptr_t{31});
}

// ---- Band routines ---------------------------------------------------------------
template <class T, int C>
void down(const void* src, int64_t srcStep, int w, int h, void* dst, int64_t dstStep, int y0, int rows,
          uint8_t* scratch, int chunk) {
    using A = typename Acc<T>::type;
    A* L = align32<A>(scratch);
    A* E = align32<A>(reinterpret_cast<uint8_t*>(L + gauss5DownSamples(chunk, C)));
    A* O = align32<A>(reinterpret_cast<uint8_t*>(E + gauss5UpSamples(chunk, C)));
    const int outW = (w + 1) / 2;
    for (int y = y0; y < y0 + rows; ++y) {
        const T* r[5];
        for (int t = 0; t < 5; ++t) r[t] = srcRow<T>(src, srcStep, clampi(2 * y - 2 + t, 0, h - 1));
        T* d = dstRow<T>(dst, dstStep, y);
        for (int x0 = 0; x0 < outW; x0 += chunk) {
            const int n = std::min(chunk, outW - x0);
            // Source pixels [first, first + 2n + 3) with first = 2 * x0 - 2;
            // those inside the image are summed, the rest copy the edge pixel.
            const int first = 2 * x0 - 2, lo = std::max(first, 0), hi = std::min(first + 2 * n + 3, w);
            if constexpr (C == 1) {
                vertDownPairs<T>(r, first, lo, hi, E, O);
                // Pads: the left edge pixel is even (lo - first is), the right one either.
                const A left = E[(lo - first) >> 1];
                const int last = hi - first - 1;
                const A right = last & 1 ? O[last >> 1] : E[last >> 1];
                for (int q = 0; q < lo - first; ++q) {
                    if (q & 1) O[q >> 1] = left;
                    else E[q >> 1] = left;
                }
                for (int q = last + 1; q < 2 * n + 3; ++q) {
                    if (q & 1) O[q >> 1] = right;
                    else E[q >> 1] = right;
                }
            } else {
                const int a = lo * C, count = (hi - lo) * C;
                vertDown<T>(r[0] + a, r[1] + a, r[2] + a, r[3] + a, r[4] + a, L + (lo - first) * C, count);
                replicate(L, C, 0, lo - first, lo - first);
                replicate(L, C, hi - first, 2 * n + 3, hi - first - 1);
                splitDown<A, C>(L, E, O, n);
            }
            horzDown<T, C>(E, O, d + x0 * C, n);
        }
    }
}

template <class T, int C>
void up(const void* src, int64_t srcStep, int w, int h, void* dst, int64_t dstStep, int y0, int rows,
        uint8_t* scratch, int chunk) {
    using A = typename Acc<T>::type;
    A* ev = align32<A>(scratch);
    A* od = align32<A>(reinterpret_cast<uint8_t*>(ev + gauss5UpSamples(chunk, C)));
    for (int y = y0; y < y0 + rows; ++y) {
        const T* r0 = srcRow<T>(src, srcStep, std::max(y - 1, 0));
        const T* r1 = srcRow<T>(src, srcStep, y);
        const T* r2 = srcRow<T>(src, srcStep, std::min(y + 1, h - 1));
        T* d0 = dstRow<T>(dst, dstStep, 2 * y);
        T* d1 = dstRow<T>(dst, dstStep, 2 * y + 1);
        for (int x0 = 0; x0 < w; x0 += chunk) {
            const int n = std::min(chunk, w - x0);
            const int first = x0 - 1, lo = std::max(first, 0), hi = std::min(first + n + 2, w);
            const int a = lo * C, at = (lo - first) * C;
            vertUp<T>(r0 + a, r1 + a, r2 + a, ev + at, od + at, (hi - lo) * C);
            replicate(ev, C, 0, lo - first, lo - first);
            replicate(od, C, 0, lo - first, lo - first);
            replicate(ev, C, hi - first, n + 2, hi - first - 1);
            replicate(od, C, hi - first, n + 2, hi - first - 1);
            horzUp<T, C>(ev, d0 + 2 * x0 * C, n);
            horzUp<T, C>(od, d1 + 2 * x0 * C, n);
        }
    }
}

}  // namespace

extern const Gauss5Kernels kGauss5 = {
    down<uint8_t, 1>, down<uint8_t, 3>, down<float, 1>, down<float, 3>,
    up<uint8_t, 1>,   up<uint8_t, 3>,   up<float, 1>,   up<float, 3>,
};

}  // namespace RVCV_ISA_NS
}  // namespace rvcv
