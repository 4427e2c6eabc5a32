// Fast marching: the eikonal equation with unit grid step solved by row
// sweeps instead of a heap. A first sweep assigns every row from the row
// before it, a second sweep in the other direction takes the smaller values,
// then sweeps down and up repeat where a mark plane says something may still
// improve, until no mark is left. Every change marks the pixels whose update
// reads it: the pixel below for the downward sweeps, the one above for the
// upward sweeps, the row neighbours for both.
//
// Images of 6 rows or more are cut at a seam row chosen by the count of
// nonzero pixels; the rows above it and the rows below it are swept by one
// thread each, toward the seam first, and the seam row on its own between
// barriers. One thread runs the two halves in turn, so the result does not
// depend on the thread count.
#include <cmath>

#include "rvcvframe.h"

namespace rvcv {
namespace {

constexpr float kSeed = 999999.0f;       // 0x497423F0: a first pixel with no zero before it
constexpr float kJustInside = -1e-10f;   // 0xAEDBE6FF: a zero-set pixel next to the border

// Mark bits, one per kind of sweep.
constexpr Rvp8u kDownL2R = 1, kDownR2L = 2, kUpL2R = 4, kUpR2L = 8;

inline float max0(float v) { return v > 0 ? v : 0; }

// The update of two neighbours, single precision with the hardware's root.
inline float update(float a, float b) {
    const float d = a - b;
    if (std::fabs(d) >= 1.0f) return (a < b ? a : b) + 1.0f;
    return (a + b + std::sqrt(2.0f - d * d)) * 0.5f;
}

// Candidates at a pixel from one neighbour n, or from a neighbour u of the
// next row and l of its own row. With a radius (Ext) values are signed: the
// zero set takes negative distances down to -R, and 0 beyond.
template <bool Ext> inline float cand1(bool nonzero, float n, float R) {
    if (nonzero) return (Ext ? max0(n) : n) + 1.0f;
    if (!Ext) return 0;
    const float v = n > 0 ? kJustInside : n == 0 ? 0.0f : n - 1.0f;
    return v >= -R ? v : 0.0f;
}

template <bool Ext> inline float cand2(bool nonzero, float u, float l, float R) {
    if (nonzero) return Ext ? update(max0(u), max0(l)) : update(u, l);
    if (!Ext) return 0;
    float v;
    if (u > 0 || l > 0) {
        v = kJustInside;
    } else if (!(u < 0) && !(l < 0)) {
        v = 0;
    } else if (u == 0 || l == 0) {
        v = (u < l ? u : l) - 1.0f;
    } else {
        const float d = u - l;
        v = std::fabs(d) >= 1.0f ? (u > l ? u : l) - 1.0f : (u + l - std::sqrt(2.0f - d * d)) * 0.5f;
    }
    return v >= -R ? v : 0.0f;
}

// Whether a new value replaces the stored one: smaller for positive values;
// nearer to 0 for negative ones, which also replace a stored 0 outright.
template <bool Ext> inline bool accept(float v, float old) {
    if (!Ext) return v < old;
    if (v < 0) return old == 0 || v > old;
    return v > 0 && v < old;
}

struct Marching {
    const Rvp8u* src;
    int ss;
    Rvp32f* dst;
    int ds, w, h;
    float R;
    Rvp8u* marks;  // row -1 .. h, pitch bytes each
    Rvp8u* flags;  // row -1 .. h
    int pitch;
    int seam = -1;  // the row both threads mark; -1 without a seam
    int* more = nullptr;  // the team's verdict of the check loop

    const Rvp8u* s(int y) const { return rowPtr(src, ss, y); }
    float* d(int y) const { return rowPtr(dst, ds, y); }
    Rvp8u* mk(int y) const { return marks + static_cast<ptrdiff_t>(y + 1) * pitch; }

    void orMark(int y, int x, Rvp8u bits) const {
        if (y == seam) __atomic_fetch_or(mk(y) + x, bits, __ATOMIC_RELAXED);
        else mk(y)[x] |= bits;
    }
    void setFlag(int y) const {
        if (y == seam) __atomic_store_n(flags + y + 1, Rvp8u{1}, __ATOMIC_RELAXED);
        else flags[y + 1] = 1;
    }
    bool flagged(int y) const { return flags[y + 1] != 0; }

    // A pixel changed: mark every update that reads it. The first row is
    // never swept downward and the last never upward.
    void changed(int y, int x) const {
        const Rvp8u own = (y > 0 ? kDownL2R : 0) | (y < h - 1 ? kUpL2R : 0);
        if (y + 1 < h) orMark(y + 1, x, kDownL2R | kDownR2L), setFlag(y + 1);
        if (y > 0) orMark(y - 1, x, kUpL2R | kUpR2L), setFlag(y - 1);
        if (x + 1 < w) mk(y)[x + 1] |= own;
        if (x > 0) mk(y)[x - 1] |= static_cast<Rvp8u>(own << 1);  // the right-to-left bits
        setFlag(y);
    }

    // A row of its own (the first or the last): a pass each way along it.
    template <bool Ext> void initRow(int y) const {
        const Rvp8u* sr = s(y);
        float* dr = d(y);
        dr[0] = sr[0] != 0 ? kSeed : 0.0f;
        for (int x = 1; x < w; ++x) dr[x] = cand1<Ext>(sr[x] != 0, dr[x - 1], R);
        for (int x = w - 2; x >= 0; --x) {
            const float v = cand1<Ext>(sr[x] != 0, dr[x + 1], R);
            if (accept<Ext>(v, dr[x])) dr[x] = v;
        }
    }

    // First sweep of a row from the row n before it: assigned left to right,
    // improved right to left.
    template <bool Ext> void assignRow(int y, int n) const {
        const Rvp8u* sr = s(y);
        const float* nr = d(n);
        float* dr = d(y);
        dr[0] = cand1<Ext>(sr[0] != 0, nr[0], R);
        for (int x = 1; x < w; ++x) dr[x] = cand2<Ext>(sr[x] != 0, nr[x], dr[x - 1], R);
        for (int x = w - 2; x >= 0; --x) {
            const float v = cand2<Ext>(sr[x] != 0, nr[x], dr[x + 1], R);
            if (accept<Ext>(v, dr[x])) dr[x] = v;
        }
    }

    // Later sweeps of a row from the row n before it: every pixel (All) or
    // the marked ones, left to right then right to left; changes mark.
    template <bool Ext, bool All> void relaxRow(int y, int n, Rvp8u l2r, Rvp8u r2l) const {
        const Rvp8u* sr = s(y);
        const float* nr = d(n);
        float* dr = d(y);
        Rvp8u* m = mk(y);
        for (int x = 0; x < w; ++x) {
            if (!All && !(m[x] & l2r)) continue;
            m[x] &= static_cast<Rvp8u>(~l2r);
            const float v = x == 0 ? cand1<Ext>(sr[0] != 0, nr[0], R) : cand2<Ext>(sr[x] != 0, nr[x], dr[x - 1], R);
            if (accept<Ext>(v, dr[x])) dr[x] = v, changed(y, x);
        }
        m[w - 1] &= static_cast<Rvp8u>(~r2l);
        for (int x = w - 2; x >= 0; --x) {
            if (!All && !(m[x] & r2l)) continue;
            m[x] &= static_cast<Rvp8u>(~r2l);
            const float v = cand2<Ext>(sr[x] != 0, nr[x], dr[x + 1], R);
            if (accept<Ext>(v, dr[x])) dr[x] = v, changed(y, x);
        }
        Rvp8u any = 0;
        for (int x = 0; x < w; ++x) any |= m[x];
        flags[y + 1] = any != 0;
    }

    template <bool Ext, bool All> void down(int y0, int y1) const {  // rows y0 .. y1 - 1
        for (int y = y0; y < y1; ++y)
            if (All || flagged(y)) relaxRow<Ext, All>(y, y - 1, kDownL2R, kDownR2L);
    }
    template <bool Ext, bool All> void up(int y0, int y1) const {  // rows y1 - 1 down to y0
        for (int y = y1 - 1; y >= y0; --y)
            if (All || flagged(y)) relaxRow<Ext, All>(y, y + 1, kUpL2R, kUpR2L);
    }
    bool pending() const {
        for (int y = 0; y < h; ++y)
            if (flagged(y)) return true;
        return false;
    }

    // Fewer than 6 rows: one sweep order over the whole image.
    template <bool Ext> void single() const {
        initRow<Ext>(0);
        for (int y = 1; y < h; ++y) assignRow<Ext>(y, y - 1);
        up<Ext, true>(0, h - 1);
        while (pending()) {
            down<Ext, false>(1, h);
            if (!pending()) break;
            up<Ext, false>(0, h - 1);
        }
    }

    // Two halves around the seam: half 0 owns rows 0 .. seam - 1, half 1 rows
    // seam + 1 .. h - 1. `stage(work)` runs work(p) for the thread's half (both
    // halves in turn on a team of one); the team meets at a barrier after each
    // stage, and `once` runs on thread 0 alone.
    template <bool Ext> void halves(int id, int n) const {
        const auto stage = [&](auto&& work) {
            if (n == 1) work(0), work(1);
            else work(id);
#pragma omp barrier
        };
        const auto once = [&](auto&& work) {
            if (id == 0) work();
#pragma omp barrier
        };
        const int sm = seam;
        stage([&](int p) { initRow<Ext>(p == 0 ? 0 : h - 1); });
        stage([&](int p) {
            if (p == 0)
                for (int y = 1; y < sm; ++y) assignRow<Ext>(y, y - 1);
            else
                for (int y = h - 2; y > sm; --y) assignRow<Ext>(y, y + 1);
        });
        once([&] {
            assignRow<Ext>(sm, sm - 1);
            relaxRow<Ext, true>(sm, sm + 1, kUpL2R, kUpR2L);
        });
        stage([&](int p) {
            if (p == 0) up<Ext, true>(0, sm);
            else down<Ext, true>(sm + 1, h);
        });
        once([&] {
            relaxRow<Ext, true>(sm, sm - 1, kDownL2R, kDownR2L);
            relaxRow<Ext, true>(sm, sm + 1, kUpL2R, kUpR2L);
        });
        // The check loop: both halves, then the seam row, in one direction,
        // then the other, until no row holds a mark.
        for (int dir = 0;; dir ^= 1) {
            stage([&](int p) {
                if (dir == 0) p == 0 ? down<Ext, false>(1, sm) : down<Ext, false>(sm + 1, h);
                else p == 0 ? up<Ext, false>(0, sm) : up<Ext, false>(sm + 1, h - 1);
            });
            once([&] {
                if (flagged(sm)) {
                    if (dir == 0) relaxRow<Ext, false>(sm, sm - 1, kDownL2R, kDownR2L);
                    else relaxRow<Ext, false>(sm, sm + 1, kUpL2R, kUpR2L);
                }
                *more = pending();
            });
            if (!*more) break;
        }
    }
};

struct Layout {
    int64_t pitch, bytes;
};

Layout layout(RvpiSize roi) {
    const int64_t pitch = (static_cast<int64_t>(roi.width) + 31) & ~int64_t{31};
    return {pitch, (static_cast<int64_t>(roi.height) + 34) * (pitch + 5) + 40};
}

// The seam: the first row at which the running count of nonzero pixels
// passes half the total, kept 3 rows from either edge.
int chooseSeam(const Marching& m, int32_t* counts) {
    int64_t total = 0;
    for (int y = 0; y < m.h; ++y) {
        const Rvp8u* sr = m.s(y);
        int32_t c = 0;
        for (int x = 0; x < m.w; ++x) c += sr[x] != 0;
        counts[y] = c;
        total += c;
    }
    int seam = m.h - 1;
    int64_t run = 0;
    for (int y = 0; y < m.h; ++y) {
        run += counts[y];
        if (2 * run > total) {
            seam = y;
            break;
        }
    }
    if (seam < 3) seam = 3;
    if (seam > m.h - 3) seam = m.h - 3;
    return seam;
}

template <bool Ext> void march(Marching& m, int32_t* counts) {
    if (m.h < 6) {
        m.single<Ext>();
        return;
    }
    m.seam = chooseSeam(m, counts);
    int more = 1;
    m.more = &more;
    const int threads = ownGetNumThreads();
    const int team = threads > 1 && m.w >= 1 ? 2 : 1;
    if (team == 1) {
        m.halves<Ext>(0, 1);
        return;
    }
    splitRegion(m.h, team, [&](int id, const BandSplit& s) { m.halves<Ext>(id, s.n); });
}

RvpStatus fastMarching(const Rvp8u* src, int ss, Rvp32f* dst, int ds, RvpiSize roi, Rvp32f radius, Rvp8u* buffer) {
    Check c;
    c.ptrs(src, dst, buffer).size(roi);
    if (c == rvpStsNoErr)
        c.fail(ss < roi.width || ds < 4 * static_cast<int64_t>(roi.width), rvpStsStepErr).evenSteps(4, ds);
    c.fail(radius < 0.0f, rvpStsBadArgErr);
    if (RvpStatus st = c) return st;
    const Layout l = layout(roi);
    if (!fitsInt(l.bytes)) return rvpStsSizeErr;  // the query refuses these sizes
    Rvp8u* base = reinterpret_cast<Rvp8u*>((reinterpret_cast<uintptr_t>(buffer) + 31) & ~uintptr_t{31});
    const int h = roi.height;
    Marching m{src, ss, dst, ds, roi.width, h, radius + 1e-5f, base, nullptr, static_cast<int>(l.pitch)};
    const size_t markBytes = static_cast<size_t>(l.pitch) * (static_cast<size_t>(h) + 2);
    int32_t* counts = reinterpret_cast<int32_t*>(base + markBytes);
    m.flags = reinterpret_cast<Rvp8u*>(counts + h);
    std::memset(base, 0, markBytes);
    std::memset(m.flags, 0, static_cast<size_t>(h) + 2);
    if (radius > 0.0f) march<true>(m, counts);
    else march<false>(m, counts);  // also a NaN radius
    return rvpStsNoErr;
}

}  // namespace
}  // namespace rvcv

using namespace rvcv;

RVCV_EXPORT RvpStatus rvpiFastMarchingGetBufferSize_8u32f_C1R(RvpiSize roiSize, int* pBufferSize) {
    if (!pBufferSize) return rvpStsNullPtrErr;
    if (roiSize.width <= 0 || roiSize.height <= 0) return rvpStsSizeErr;
    return storeSize(layout(roiSize).bytes, pBufferSize);
}

RVCV_EXPORT RvpStatus rvpiFastMarching_8u32f_C1R(const Rvp8u* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                                 RvpiSize roiSize, Rvp32f radius, Rvp8u* pBuffer) {
    return fastMarching(pSrc, srcStep, pDst, dstStep, roiSize, radius, pBuffer);
}
