// Chamfer distance transforms: a forward pass (rows down, columns left to
// right) and a backward pass (rows up, right to left) over small integer or
// float weights for the side, diagonal and, in the 5x5 forms, knight steps.
// Each row is done in chunks: the terms of the rows already passed are
// gathered for a chunk at once, then a short serial scan adds the term of the
// neighbour just written. Everything runs on the calling thread and uses the
// stack only.
#include <cfloat>

#include "rvcvframe.h"

namespace rvcv {
namespace {

template <class T> struct Sample;
template <> struct Sample<Rvp8u> {
    using Acc = int32_t;
    using Weight = Rvp32s;
    using Wide = int64_t;
    static constexpr Acc kMax = 255;
};
template <> struct Sample<Rvp16u> {
    using Acc = int32_t;
    using Weight = Rvp32s;
    using Wide = int64_t;
    static constexpr Acc kMax = 65535;
};
template <> struct Sample<Rvp32f> {
    using Acc = float;
    using Weight = Rvp32f;
    using Wide = float;
    static constexpr Acc kMax = FLT_MAX;
};

// A term replaces the running minimum only when it is smaller, so a NaN sum
// never wins.
template <class A> inline A lo(A a, A b) { return b < a ? b : a; }

// Integer weights above MAX + 1 act exactly like MAX + 1 (a sum with them
// never beats the clamp at MAX), so they are capped before the passes and no
// sum can overflow.
template <class T, class W> inline typename Sample<T>::Acc cap(W w) {
    using A = typename Sample<T>::Acc;
    if constexpr (std::is_integral<A>::value)
        return static_cast<A>(w > Sample<T>::kMax + 1 ? Sample<T>::kMax + 1 : w);
    else
        return w;
}

enum Kind { kSides, kDiagonals, kKnights };

template <class A> struct Weights {
    Kind kind = kDiagonals;
    A side = 0, diag = 0, knight = 0, two = 0, thr = 0;
    bool twoFirst = false, twoLast = false;  // (2, 0) steps of cost `two` along the first / last row
    bool settle = false;                     // passes repeat until nothing changes
};

template <class T> Weights<typename Sample<T>::Acc> setup3(const typename Sample<T>::Weight* m, RvpiSize roi) {
    using Wide = typename Sample<T>::Wide;
    const Wide m0 = m[0], m1 = m[1];
    Weights<typename Sample<T>::Acc> k;
    k.kind = m1 >= 2 * m0 ? kSides : kDiagonals;
    k.side = cap<T>(m0);
    k.diag = cap<T>(m1);
    k.thr = cap<T>(m0);
    if (m0 > m1 && (roi.width < roi.height ? roi.width : roi.height) >= 2) {
        // A diagonal is cheaper than a side step: a way along the last row
        // that leaves it upward and comes back is offered as one term.
        k.thr = cap<T>(m1);
        k.twoLast = true;
        k.two = cap<T>(2 * m1);
    }
    return k;
}

template <class T> Weights<typename Sample<T>::Acc> setup5(const typename Sample<T>::Weight* m, RvpiSize roi) {
    using Wide = typename Sample<T>::Wide;
    const Wide a = m[0], b = m[1], c = m[2];
    const Wide bd = lo<Wide>(2 * a, b);
    if (c >= a + bd) return setup3<T>(m, roi);  // a knight step never wins
    Weights<typename Sample<T>::Acc> k;
    k.kind = kKnights;
    if (a < bd && 2 * a < c && 3 * bd < 2 * c) {
        k.side = cap<T>(a);
        k.diag = cap<T>(bd);
        k.knight = cap<T>(c);
        k.thr = cap<T>(lo(lo(bd, a), c));
        return k;
    }
    // Cheap steps that leave a row and return: effective weights, (2, 0)
    // steps along the outer rows, and passes repeated to the fixed point.
    const Wide a1 = lo<Wide>(3 * c, a), b1 = lo<Wide>(2 * c, bd);
    k.side = cap<T>(a1);
    k.diag = cap<T>(b1);
    k.knight = cap<T>(c);
    k.two = cap<T>(lo(lo<Wide>(2 * b1, 2 * a1), 2 * c));
    k.thr = cap<T>(lo(lo(b1, a1), c));
    k.twoFirst = k.twoLast = k.settle = true;
    return k;
}

constexpr int kChunk = 64;

// The terms of one neighbouring row r (the row above in the forward pass,
// below in the backward pass; r2 the one beyond it, R2 when it exists),
// folded into v.
template <Kind K, bool Edge, bool R2, class T, class A>
inline A rowTerms(A v, const T* r, const T* r2, int x, int w, const Weights<A>& k) {
    v = lo(v, static_cast<A>(r[x]) + k.side);
    if (K != kSides) {
        if (!Edge || x > 0) v = lo(v, static_cast<A>(r[x - 1]) + k.diag);
        if (!Edge || x < w - 1) v = lo(v, static_cast<A>(r[x + 1]) + k.diag);
    }
    if (K == kKnights) {
        if (!Edge || x > 1) v = lo(v, static_cast<A>(r[x - 2]) + k.knight);
        if (!Edge || x < w - 2) v = lo(v, static_cast<A>(r[x + 2]) + k.knight);
        if (R2) {
            if (!Edge || x > 0) v = lo(v, static_cast<A>(r2[x - 1]) + k.knight);
            if (!Edge || x < w - 1) v = lo(v, static_cast<A>(r2[x + 1]) + k.knight);
        }
    }
    return v;
}

template <Kind K, bool R2, class T, class A>
void gatherRows(A* t, const A* own, const T* r, const T* r2, int x0, int x1, int w, const Weights<A>& k) {
    const int inner0 = x0 > 2 ? x0 : 2, inner1 = x1 < w - 2 ? x1 : w - 2;
    int x = x0;
    for (; x < x1 && x < inner0; ++x) t[x - x0] = rowTerms<K, true, R2>(own[x - x0], r, r2, x, w, k);
    for (; x < inner1; ++x) t[x - x0] = rowTerms<K, false, R2>(own[x - x0], r, r2, x, w, k);
    for (; x < x1; ++x) t[x - x0] = rowTerms<K, true, R2>(own[x - x0], r, r2, x, w, k);
}

// t[x - x0] = min(own value, terms of r and r2) for x in [x0, x1).
template <Kind K, class T, class A>
void gather(A* t, const A* own, const T* r, const T* r2, int x0, int x1, int w, const Weights<A>& k) {
    if (!r) std::memcpy(t, own, sizeof(A) * static_cast<size_t>(x1 - x0));
    else if (K == kKnights && r2) gatherRows<K, true>(t, own, r, r2, x0, x1, w, k);
    else gatherRows<K, false>(t, own, r, r2, x0, x1, w, k);
}

// Forward row: the first pass starts from 0 at zero pixels and MAX elsewhere,
// later passes from the values in place. Returns whether anything changed.
template <Kind K, bool First, class T, class A>
bool forwardRow(const Rvp8u* s, T* d, const T* u1, const T* u2, int w, const Weights<A>& k, bool twoRow) {
    A own[kChunk], t[kChunk];
    A prev = 0, prev2 = 0;
    bool changed = false;
    for (int x0 = 0; x0 < w; x0 += kChunk) {
        const int x1 = w - x0 > kChunk ? x0 + kChunk : w;
        for (int x = x0; x < x1; ++x)
            own[x - x0] = First ? (s[x] != 0 ? Sample<T>::kMax : A(0)) : static_cast<A>(d[x]);
        gather<K>(t, own, u1, u2, x0, x1, w, k);
        for (int x = x0; x < x1; ++x) {
            A v = t[x - x0];
            if (x > 0) v = lo(v, prev + k.side);
            if (twoRow && x > 1) v = lo(v, prev2 + k.two);
            if (!First) changed |= v != own[x - x0];
            d[x] = static_cast<T>(v);
            prev2 = prev;
            prev = v;
        }
    }
    return changed;
}

template <Kind K, class T, class A>
bool backwardRow(T* d, const T* b1, const T* b2, int w, const Weights<A>& k, bool twoRow) {
    A own[kChunk], t[kChunk];
    A next = 0, next2 = 0;
    bool changed = false;
    for (int x1 = w; x1 > 0; x1 -= kChunk) {
        const int x0 = x1 > kChunk ? x1 - kChunk : 0;
        for (int x = x0; x < x1; ++x) own[x - x0] = static_cast<A>(d[x]);
        gather<K>(t, own, b1, b2, x0, x1, w, k);
        for (int x = x1 - 1; x >= x0; --x) {
            A v = t[x - x0];
            if (x < w - 1) v = lo(v, next + k.side);
            if (twoRow && x < w - 2) v = lo(v, next2 + k.two);
            changed |= v != own[x - x0];
            d[x] = static_cast<T>(v);
            next2 = next;
            next = v;
        }
    }
    return changed;
}

template <Kind K, bool First, class T, class A>
bool forwardPass(const Rvp8u* src, int ss, T* dst, int ds, int w, int h, const Weights<A>& k) {
    bool changed = false;
    for (int y = 0; y < h; ++y) {
        const T* u1 = y >= 1 ? rowPtr(static_cast<const T*>(dst), ds, y - 1) : nullptr;
        const T* u2 = y >= 2 ? rowPtr(static_cast<const T*>(dst), ds, y - 2) : nullptr;
        const bool twoRow = (k.twoFirst && y == 0) || (k.twoLast && y == h - 1);
        changed |= forwardRow<K, First>(First ? rowPtr(src, ss, y) : nullptr, rowPtr(dst, ds, y), u1, u2, w, k,
                                        twoRow);
    }
    return changed;
}

template <Kind K, class T, class A> bool backwardPass(T* dst, int ds, int w, int h, const Weights<A>& k) {
    bool changed = false;
    for (int y = h - 1; y >= 0; --y) {
        const T* b1 = y + 1 < h ? rowPtr(static_cast<const T*>(dst), ds, y + 1) : nullptr;
        const T* b2 = y + 2 < h ? rowPtr(static_cast<const T*>(dst), ds, y + 2) : nullptr;
        const bool twoRow = (k.twoFirst && y == 0) || (k.twoLast && y == h - 1);
        changed |= backwardRow<K>(rowPtr(dst, ds, y), b1, b2, w, k, twoRow);
    }
    return changed;
}

// ---- Rows four at a time --------------------------------------------------------
// The serial scans of neighbouring rows are independent once their gathered
// terms are known, and a row's chunk needs only the chunk before it in the
// previous row and the first columns of the one after. So up to four rows go
// as a wavefront, each two chunks behind the row before it, and their scans
// are interleaved: four dependency chains in flight instead of one. Same
// operations, same results.
template <class T, class A> struct Lane {
    const A* t;  // gathered terms at the lane's first position
    T* d;        // result at the lane's first position
    int n;       // positions left
    A prev;
};

template <int M, int Inc, class T, class A> inline void scanInterleaved(Lane<T, A>* l, A side) {
    int n = l[0].n;
    for (int i = 1; i < M; ++i) n = l[i].n < n ? l[i].n : n;
    A p[M];
    const A* t[M];
    T* d[M];
    for (int i = 0; i < M; ++i) p[i] = l[i].prev, t[i] = l[i].t, d[i] = l[i].d;
    for (int j = 0; j < n; ++j)
        for (int i = 0; i < M; ++i) p[i] = lo(t[i][Inc * j], p[i] + side), d[i][Inc * j] = static_cast<T>(p[i]);
    for (int i = 0; i < M; ++i) l[i].prev = p[i], l[i].t += Inc * n, l[i].d += Inc * n, l[i].n -= n;
}

template <int Inc, class T, class A> inline void scanLanes(Lane<T, A>* l, int m, A side) {
    switch (m) {
    case 4: scanInterleaved<4, Inc>(l, side); break;
    case 3: scanInterleaved<3, Inc>(l, side); break;
    case 2: scanInterleaved<2, Inc>(l, side); break;
    default: break;
    }
    for (int i = 0; i < m; ++i) {  // what is left of lanes longer than the shortest
        A p = l[i].prev;
        const A* t = l[i].t;
        T* d = l[i].d;
        for (int j = 0; j < l[i].n; ++j) p = lo(t[Inc * j], p + side), d[Inc * j] = static_cast<T>(p);
    }
}

// Rows ya, ya + 1, ... (Fwd, the first pass) or ya, ya - 1, ... (the
// backward pass), n of them.
template <Kind K, bool Fwd, class T, class A>
void wavefront(const Rvp8u* src, int ss, T* dst, int ds, int w, int h, int ya, int n, const Weights<A>& k) {
    A own[4][kChunk], t[4][kChunk];
    const int chunks = (w + kChunk - 1) / kChunk;
    for (int step = 0; step < chunks + 2 * (n - 1); ++step) {
        Lane<T, A> lanes[4];
        int m = 0;
        for (int i = 0; i < n; ++i) {
            const int c = step - 2 * i;
            if (c < 0 || c >= chunks) continue;
            const int y = Fwd ? ya + i : ya - i;
            const int x0 = Fwd ? c * kChunk : (w - c * kChunk > kChunk ? w - (c + 1) * kChunk : 0);
            const int x1 = Fwd ? (w - x0 > kChunk ? x0 + kChunk : w) : w - c * kChunk;
            T* d = rowPtr(dst, ds, y);
            const int y1 = Fwd ? y - 1 : y + 1, y2 = Fwd ? y - 2 : y + 2;
            const T* r1 = y1 >= 0 && y1 < h ? rowPtr(static_cast<const T*>(dst), ds, y1) : nullptr;
            const T* r2 = y2 >= 0 && y2 < h ? rowPtr(static_cast<const T*>(dst), ds, y2) : nullptr;
            if (Fwd) {
                const Rvp8u* sr = rowPtr(src, ss, y);
                for (int x = x0; x < x1; ++x) own[i][x - x0] = sr[x] != 0 ? Sample<T>::kMax : A(0);
            } else {
                for (int x = x0; x < x1; ++x) own[i][x - x0] = static_cast<A>(d[x]);
            }
            gather<K>(t[i], own[i], r1, r2, x0, x1, w, k);
            // The scan starts after the neighbour written last, or at the
            // row's first position, which has none.
            Lane<T, A>& l = lanes[m++];
            const int first = Fwd ? x0 : x1 - 1;
            l.t = t[i] + (first - x0);
            l.d = d + first;
            l.n = x1 - x0;
            if (Fwd ? first == 0 : first == w - 1) {
                l.prev = *l.t;
                *l.d = static_cast<T>(l.prev);
                l.t += Fwd ? 1 : -1, l.d += Fwd ? 1 : -1, --l.n;
            } else {
                l.prev = static_cast<A>(d[Fwd ? first - 1 : first + 1]);
            }
        }
        scanLanes<Fwd ? 1 : -1>(lanes, m, k.side);
    }
}

template <Kind K, class T, class A>
void passes(const Rvp8u* src, int ss, T* dst, int ds, RvpiSize roi, const Weights<A>& k) {
    const int w = roi.width, h = roi.height;
    const bool gate = k.thr == k.thr;  // a NaN gate passes nothing backward
    if (!k.settle) {
        // Rows with (2, 0) steps go one by one, the others four at a time.
        const auto twoRow = [&](int y) { return (k.twoFirst && y == 0) || (k.twoLast && y == h - 1); };
        const auto row = [&](int y) { return rowPtr(static_cast<const T*>(dst), ds, y); };
        for (int y = 0; y < h;) {
            if (twoRow(y)) {
                forwardRow<K, true>(rowPtr(src, ss, y), rowPtr(dst, ds, y), y >= 1 ? row(y - 1) : nullptr,
                                    y >= 2 ? row(y - 2) : nullptr, w, k, true);
                ++y;
                continue;
            }
            int n = 1;
            while (n < 4 && y + n < h && !twoRow(y + n)) ++n;
            wavefront<K, true>(src, ss, dst, ds, w, h, y, n, k);
            y += n;
        }
        if (!gate) return;
        for (int y = h - 1; y >= 0;) {
            if (twoRow(y)) {
                backwardRow<K>(rowPtr(dst, ds, y), y + 1 < h ? row(y + 1) : nullptr, y + 2 < h ? row(y + 2) : nullptr, w,
                               k, true);
                --y;
                continue;
            }
            int n = 1;
            while (n < 4 && y - n >= 0 && !twoRow(y - n)) ++n;
            wavefront<K, false>(src, ss, dst, ds, w, h, y, n, k);
            y -= n;
        }
        return;
    }
    // Irregular weights: passes one row at a time until nothing changes.
    forwardPass<K, true>(src, ss, dst, ds, w, h, k);
    if (!gate) return;
    bool changed = backwardPass<K>(dst, ds, w, h, k);
    while (changed) {
        changed = forwardPass<K, false>(src, ss, dst, ds, w, h, k);
        if (changed) changed = backwardPass<K>(dst, ds, w, h, k);
    }
}

template <class T>
RvpStatus transform(int kernelSize, const Rvp8u* src, int ss, T* dst, int ds, RvpiSize roi,
                    const typename Sample<T>::Weight* m) {
    Check c;
    c.ptrs(src, dst, m).size(roi);
    if (c == rvpStsNoErr)
        c.fail(ss < roi.width || ds < static_cast<int64_t>(roi.width) * static_cast<int64_t>(sizeof(T)), rvpStsStepErr)
            .evenSteps(sizeof(T), ds);
    // Weights below 1 (integers) or not above 0 (floats; a NaN passes).
    if (c == rvpStsNoErr)
        for (int i = 0; i < (kernelSize == 3 ? 2 : 3); ++i) c.fail(m[i] <= 0, rvpStsMetricErr);
    if (RvpStatus st = c) return st;
    const auto k = kernelSize == 3 ? setup3<T>(m, roi) : setup5<T>(m, roi);
    switch (k.kind) {
    case kSides: passes<kSides>(src, ss, dst, ds, roi, k); break;
    case kDiagonals: passes<kDiagonals>(src, ss, dst, ds, roi, k); break;
    case kKnights: passes<kKnights>(src, ss, dst, ds, roi, k); break;
    }
    return rvpStsNoErr;
}

// Standard weights by mask size (3, 5) and norm (0, 1, 2).
constexpr Rvp32s kMask32s[2][3][3] = {{{1, 1, 0}, {1, 2, 0}, {2, 3, 0}}, {{1, 1, 2}, {1, 2, 3}, {5, 7, 11}}};
constexpr Rvp32f kMask32f[2][3][3] = {{{1.0f, 1.0f, 0}, {1.0f, 2.0f, 0}, {0.955f, 1.3693f, 0}},
                                      {{1.0f, 1.0f, 2.0f}, {1.0f, 2.0f, 3.0f}, {1.0f, 1.4f, 2.1969f}}};

template <class W>
RvpStatus getMask(int kernelSize, int norm, W* metrics, const W (&table)[2][3][3]) {
    Check c;
    c.ptr(metrics).fail(kernelSize != 3 && kernelSize != 5, rvpStsSizeErr).fail(norm < 0 || norm > 2, rvpStsBadArgErr);
    if (RvpStatus st = c) return st;
    const W* w = table[kernelSize == 5][norm];
    for (int i = 0; i < (kernelSize == 3 ? 2 : 3); ++i) metrics[i] = w[i];
    return rvpStsNoErr;
}

}  // namespace
}  // namespace rvcv

using namespace rvcv;

RVCV_EXPORT RvpStatus rvpiGetDistanceTransformMask_32s(int kernelSize, int norm, Rvp32s* pMetrics) {
    return getMask(kernelSize, norm, pMetrics, kMask32s);
}

RVCV_EXPORT RvpStatus rvpiGetDistanceTransformMask_32f(int kernelSize, int norm, Rvp32f* pMetrics) {
    return getMask(kernelSize, norm, pMetrics, kMask32f);
}

RVCV_EXPORT RvpStatus rvpiGetDistanceTransformMask(int maskType, Rvp32f* pMetrics) {
    const int norm = maskType % 10, kernelSize = maskType / 10;
    if (norm < 0 || norm > 2) return rvpStsBadArgErr;  // the norm is tested before the pointer here
    if (!pMetrics) return rvpStsNullPtrErr;
    if (kernelSize != 3 && kernelSize != 5) return rvpStsSizeErr;
    return getMask(kernelSize, norm, pMetrics, kMask32f);
}

#define RVCV_CHAMFER(K, SUF, T, W)                                                                                 \
    RVCV_EXPORT RvpStatus rvpiDistanceTransform_##K##x##K##_##SUF##_C1R(                                           \
        const Rvp8u* pSrc, int srcStep, T* pDst, int dstStep, RvpiSize roiSize, const W* pMetrics) {               \
        return transform<T>(K, pSrc, srcStep, pDst, dstStep, roiSize, pMetrics);                                   \
    }

RVCV_CHAMFER(3, 8u, Rvp8u, Rvp32s)
RVCV_CHAMFER(5, 8u, Rvp8u, Rvp32s)
RVCV_CHAMFER(3, 8u16u, Rvp16u, Rvp32s)
RVCV_CHAMFER(5, 8u16u, Rvp16u, Rvp32s)
RVCV_CHAMFER(3, 8u32f, Rvp32f, Rvp32f)
RVCV_CHAMFER(5, 8u32f, Rvp32f, Rvp32f)

// In place: each pass reads a source pixel before it writes it, and the
// source rows below are still unchanged.
RVCV_EXPORT RvpStatus rvpiDistanceTransform_3x3_8u_C1IR(Rvp8u* pSrcDst, int srcDstStep, RvpiSize roiSize,
                                                        const Rvp32s* pMetrics) {
    return transform<Rvp8u>(3, pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize, pMetrics);
}

RVCV_EXPORT RvpStatus rvpiDistanceTransform_5x5_8u_C1IR(Rvp8u* pSrcDst, int srcDstStep, RvpiSize roiSize,
                                                        const Rvp32s* pMetrics) {
    return transform<Rvp8u>(5, pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize, pMetrics);
}
