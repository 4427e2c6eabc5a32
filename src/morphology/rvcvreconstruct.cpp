// Grey-scale reconstruction by dilation or erosion, in place on the marker and
// bounded by the mask: raster and anti-raster sweeps whose running in-row scans
// carry a value across a whole row in one visit, per-row flags that let later
// sweeps skip rows that cannot change, and a two-thread form cut at the middle row.
#include <type_traits>

#include "rvcvframe.h"
#include "rvcvminmax.h"
#include "rvcvprim.h"

namespace rvcv {
namespace {

// Element-wise extremum primitives of each sample type.
template <class T> struct Every;
#define RVCV_EVERY(T, S)                                                              \
    template <> struct Every<T> {                                                     \
        static constexpr auto max = rvpsMaxEvery_##S, min = rvpsMinEvery_##S;         \
        static constexpr auto maxI = rvpsMaxEvery_##S##_I, minI = rvpsMinEvery_##S##_I; \
    };
RVCV_EVERY(Rvp8u, 8u)
RVCV_EVERY(Rvp16u, 16u)
RVCV_EVERY(Rvp32f, 32f)
RVCV_EVERY(Rvp64f, 64f)
#undef RVCV_EVERY

// The 3-wide extremum, anchor 1: the fixed-length kernel from 4 columns up,
// the running-extremum kernel below that.
template <class T> MinMaxRowFn rowKernel(int op, int width) {
    const MinMaxKernels& k = minMaxKernels();
    const bool vh = width < 4;
    if constexpr (std::is_same<T, Rvp8u>::value) return k.row[op][0][vh ? 0 : 3];
    else if constexpr (std::is_same<T, Rvp32f>::value) return k.row[op][3][vh ? 0 : 3];
    else if constexpr (std::is_same<T, Rvp16u>::value) return k.row16u[op][vh ? 1 : 0];
    else return k.row64f[op][vh ? 1 : 0];
}

// Dilate grows the running value with the image and bounds it by the mask;
// Erode exchanges the two.
template <class T, bool Dilate> struct Rule {
    static T grow(T a, T b) { return Dilate ? (a > b ? a : b) : (a < b ? a : b); }
    static T bound(T a, T b) { return Dilate ? (a < b ? a : b) : (a > b ? a : b); }
    static void combine(const T* a, const T* b, T* d, int n) { (Dilate ? Every<T>::max : Every<T>::min)(a, b, d, n); }
    static void combineI(const T* s, T* sd, int n) { (Dilate ? Every<T>::maxI : Every<T>::minI)(s, sd, n); }
    static void widen(const T* s, T* d, int n) { rowKernel<T>(Dilate ? kOpMax : kOpMin, n)(s, d, n, 3, 1); }
};

// Two NaNs count as equal so that a NaN in the data cannot keep the sweeps going.
template <class T> inline bool differs(T a, T b) { return !(a == b) && (a == a || b == b); }

// Running scan of one row in direction Dir: v starts at the first sample met
// of `in`, takes in each input sample, is bounded by the mask and stored.
template <class T, bool D, int Dir> bool scan(const T* in, const T* mask, T* img, int w) {
    int x = Dir > 0 ? 0 : w - 1;
    T v = in[x];
    bool changed = false;
    for (int i = 0; i < w; ++i, x += Dir) {
        v = Rule<T, D>::bound(Rule<T, D>::grow(v, in[x]), mask[x]);
        changed |= differs(img[x], v);
        img[x] = v;
    }
    return changed;
}

// work = the image row combined with the neighbour row (4 neighbours) or with
// its 3-wide extremum (8 neighbours).
template <class T, bool D, bool Inf> void takeIn(const T* prev, const T* row, T* work, int w) {
    if (Inf) {
        Rule<T, D>::widen(prev, work, w);
        Rule<T, D>::combineI(row, work, w);
    } else {
        Rule<T, D>::combine(row, prev, work, w);
    }
}

inline int rowCount(int firstRow, int endRow, int dir) { return (endRow - firstRow) * dir + 1; }

// Full sweep over rows firstRow .. endRow (inclusive) in direction Dir; the
// pointers are those of firstRow. Each row takes in the row before it (unless
// it is the first and hasPrev is 0), then is scanned both ways.
template <class T, bool D, int Dir, bool Inf>
void fullSweep(const T* mask, int maskStep, T* img, int imgStep, int width, int firstRow, int endRow, int hasPrev,
               T* work) {
    const int n = rowCount(firstRow, endRow, Dir);
    for (int i = 0; i < n; ++i) {
        const T* m = rowPtr(mask, maskStep, Dir * i);
        T* r = rowPtr(img, imgStep, Dir * i);
        if (i > 0 || hasPrev) {
            takeIn<T, D, Inf>(rowPtr(r, imgStep, -Dir), r, work, width);
            scan<T, D, Dir>(work, m, r, width);
        } else {
            scan<T, D, Dir>(r, m, r, width);
        }
        scan<T, D, -Dir>(r, m, r, width);
    }
}

inline void raise(Rvp8u& flag) { __atomic_store_n(&flag, Rvp8u(1), __ATOMIC_RELAXED); }

// Checked sweep: visits a row only when the row before it changed in this
// sweep or its flag is set; returns the number of rows changed. A positive
// mode scans once (in the sweep's direction), zero and negative modes scan
// both ways. An odd mode gives the first row a neighbour row; an even mode
// does not, and then the first row is scanned alone (positive: if flagged,
// counted; zero: always, not counted) or skipped (negative).
template <class T, bool D, int Dir, bool Inf>
int checkSweep(const T* mask, int maskStep, T* img, int imgStep, int width, int firstRow, int endRow, int mode,
               Rvp8u* flags, T* work) {
    const int n = rowCount(firstRow, endRow, Dir);
    const bool twoScans = mode <= 0;
    const bool firstHasPrev = (mode & 1) != 0;
    int count = 0;
    bool prevChanged = false;
    for (int i = 0, y = firstRow; i < n; ++i, y += Dir) {
        const T* m = rowPtr(mask, maskStep, Dir * i);
        T* r = rowPtr(img, imgStep, Dir * i);
        bool ch = false;
        if (i == 0 && !firstHasPrev) {
            if (mode < 0 || (mode > 0 && !flags[y])) continue;
            ch = scan<T, D, Dir>(r, m, r, width);
            if (mode > 0) {
                flags[y] = ch;
                count += ch;
            } else {
                flags[y] |= ch;
            }
        } else {
            if (!prevChanged && !flags[y]) {
                prevChanged = false;
                continue;
            }
            takeIn<T, D, Inf>(rowPtr(r, imgStep, -Dir), r, work, width);
            ch = scan<T, D, Dir>(work, m, r, width);
            if (twoScans) ch |= scan<T, D, -Dir>(r, m, r, width);
            flags[y] = ch;
            count += ch;
        }
        // The next sweep runs the other way and must take this change up in the row behind.
        if (ch) raise(flags[y - Dir]);
        prevChanged = ch;
    }
    return count;
}

template <class T> using FullFn = void (*)(const T*, int, T*, int, int, int, int, int, T*);
template <class T> using CheckFn = int (*)(const T*, int, T*, int, int, int, int, int, Rvp8u*, T*);

// Sweep tables of one sample type and operation; entry 0 is the 4-neighbour
// form, entry 1 the 8-neighbour form.
template <class T, bool D> struct SweepTable {
    FullFn<T> down[2], up[2];
    CheckFn<T> downCheck[2], upCheck[2];
};
template <class T, bool D>
constexpr SweepTable<T, D> kSweeps = {
    {fullSweep<T, D, 1, false>, fullSweep<T, D, 1, true>},
    {fullSweep<T, D, -1, false>, fullSweep<T, D, -1, true>},
    {checkSweep<T, D, 1, false>, checkSweep<T, D, 1, true>},
    {checkSweep<T, D, -1, false>, checkSweep<T, D, -1, true>},
};

// Middle row of the two-thread form: takes in the rows above and below, then
// scans both ways. wa and wb are two work rows.
template <class T, bool D>
bool middleRow(const T* mask, T* img, int imgStep, int w, bool inf, T* wa, T* wb) {
    const T* above = rowPtr(img, imgStep, -1);
    const T* below = rowPtr(img, imgStep, 1);
    if (inf) {
        Rule<T, D>::widen(above, wa, w);
        Rule<T, D>::combine(img, wa, wb, w);
        Rule<T, D>::widen(below, wa, w);
        Rule<T, D>::combineI(wa, wb, w);
    } else {
        Rule<T, D>::combine(img, above, wb, w);
        Rule<T, D>::combineI(below, wb, w);
    }
    bool ch = scan<T, D, 1>(wb, mask, img, w);
    ch |= scan<T, D, -1>(img, mask, img, w);
    return ch;
}

struct Layout {
    char* rows[4];
    Rvp8u* flags;
};

// Four work rows at 32-byte boundaries, then the flags one byte past the next
// boundary so that the flag before row 0 (and the one after the last) exist.
Layout carve(Rvp8u* buffer, int width, int sampleBytes) {
    Layout l{};
    char* base = reinterpret_cast<char*>((reinterpret_cast<uintptr_t>(buffer) + 31) & ~uintptr_t(31));
    const size_t stride = (static_cast<size_t>(width) * sampleBytes + 31) & ~size_t(31);
    for (int i = 0; i < 4; ++i) l.rows[i] = base + stride * i;
    l.flags = reinterpret_cast<Rvp8u*>(base + 4 * stride + 1);
    return l;
}

template <class T, bool D>
void singleThread(const T* mask, int ms, T* img, int is, int w, int h, int k, T* wa, Rvp8u* flags) {
    const SweepTable<T, D>& t = kSweeps<T, D>;
    t.down[k](mask, ms, img, is, w, 0, h - 1, 0, wa);
    if (h > 1) t.up[k](rowPtr(mask, ms, h - 2), ms, rowPtr(img, is, h - 2), is, w, h - 2, 0, 1, wa);
    int mode = 2, up = 1;
    while (up != 0) {
        const int down = t.downCheck[k](mask, ms, img, is, w, 0, h - 1, mode, flags, wa);
        if (down == 0) break;
        up = t.upCheck[k](rowPtr(mask, ms, h - 1), ms, rowPtr(img, is, h - 1), is, w, h - 1, 0, mode, flags, wa);
        // The double scan starts to pay once Up changes nearly as many rows as Down.
        if (up > 0.9 * static_cast<double>(down)) mode = wsub(mode, 2);
    }
}

// Thread 0 owns rows 0 .. m and thread 1 rows m + 1 .. h - 1; they meet at a
// barrier after each step. Returns false when fewer than two threads came.
template <class T, bool D>
bool twoThreads(const T* mask, int ms, T* img, int is, int w, int h, int k, T* const* work, Rvp8u* flags,
                int team) {
    const SweepTable<T, D>& t = kSweeps<T, D>;
    const int m = h / 2;
    const T* maskM = rowPtr(mask, ms, m);
    T* imgM = rowPtr(img, is, m);
    bool ran = false;
    int counts[4] = {0, 0, 0, 0};
    int sharedFirst = 0, sharedTotal = 1, mode = 2;
#pragma omp parallel num_threads(team)
    {
        if (owncvGetNumThreads() >= 2) {
            const int id = owncvGetIdThreads();
            if (id == 0) ran = true;
            if (id == 0) t.down[k](mask, ms, img, is, w, 0, m - 1, 0, work[0]);
            if (id == 1) t.up[k](rowPtr(mask, ms, h - 1), ms, rowPtr(img, is, h - 1), is, w, h - 1, m + 1, 0, work[2]);
#pragma omp barrier
            if (id == 0) middleRow<T, D>(maskM, imgM, is, w, k == 1, work[0], work[1]);
#pragma omp barrier
            if (id == 0)
                t.up[k](rowPtr(mask, ms, m - 1), ms, rowPtr(img, is, m - 1), is, w, m - 1, 0, 1, work[0]);
            if (id == 1)
                t.down[k](rowPtr(mask, ms, m + 1), ms, rowPtr(img, is, m + 1), is, w, m + 1, h - 1, 1, work[2]);
#pragma omp barrier
            int total = 1;
            while (total != 0) {
                if (id == 0) counts[0] = t.downCheck[k](mask, ms, img, is, w, 0, m - 1, mode, flags, work[0]);
                if (id == 1)
                    counts[1] = t.upCheck[k](rowPtr(mask, ms, h - 1), ms, rowPtr(img, is, h - 1), is, w, h - 1,
                                             m + 1, mode, flags, work[2]);
#pragma omp barrier
                if (id == 0) {
                    const bool ch = middleRow<T, D>(maskM, imgM, is, w, k == 1, work[0], work[1]);
                    if (ch) flags[m - 1] = flags[m] = flags[m + 1] = 1;
                    sharedFirst = counts[0] + counts[1] + (ch ? 1 : 0);
                }
#pragma omp barrier
                if (id == 0)
                    counts[2] = sharedFirst ? t.upCheck[k](rowPtr(mask, ms, m - 1), ms, rowPtr(img, is, m - 1), is, w,
                                                           m - 1, 0, mode - 1, flags, work[0])
                                            : 0;
                if (id == 1)
                    counts[3] = sharedFirst ? t.downCheck[k](rowPtr(mask, ms, m + 1), ms, rowPtr(img, is, m + 1),
                                                             is, w, m + 1, h - 1, mode - 1, flags, work[2])
                                            : 0;
#pragma omp barrier
                if (id == 0) {
                    sharedTotal = counts[2] + counts[3];
                    // Unlike the one-thread control, mode 0 is left only for -2.
                    if (sharedTotal > 0.9 * static_cast<double>(sharedFirst)) mode = wsub(mode, 2);
                    else if (mode == 0) mode = -2;
                }
#pragma omp barrier
                total = sharedTotal;
            }
        }
    }
    return ran;
}

// Scratch bytes: 8u 4w + h + 161, 16u 2(4w + h) + 322, 32f 16w + h + 164,
// 64f 32w + h + 168, in 64 bits.
int64_t reconstructBytes(RvpiSize roi, int sampleBytes) {
    const int64_t w = roi.width, h = roi.height;
    switch (sampleBytes) {
    case 1: return 4 * w + h + 161;
    case 2: return 2 * (4 * w + h) + 322;
    case 4: return 16 * w + h + 164;
    default: return 32 * w + h + 168;
    }
}

template <class T> bool hasNaN(const T* p, int step, int w, int h) {
    if constexpr (std::is_floating_point<T>::value) {
        for (int y = 0; y < h; ++y) {
            const T* r = rowPtr(p, step, y);
            bool nan = false;
            for (int x = 0; x < w; ++x) nan |= r[x] != r[x];
            if (nan) return true;
        }
    }
    (void)p, (void)step, (void)w, (void)h;
    return false;
}

template <class T, bool D>
RvpStatus reconstruct(const T* pSrc, int srcStep, T* pSrcDst, int srcDstStep, RvpiSize roi, Rvp8u* pBuffer,
                      int norm) {
    Check c;
    c.ptrs(pSrc, pSrcDst, pBuffer);
    c.size(roi).fail(!fitsInt(reconstructBytes(roi, static_cast<int>(sizeof(T)))), rvpStsSizeErr);
    checkImage<T>(c, roi, 1, srcStep, srcDstStep).fail(norm != 0 && norm != 1, rvpStsBadArgErr);
    if (RvpStatus st = c) return st;

    const int w = roi.width, h = roi.height;
    const int k = norm == 0 ? 1 : 0;  // norm 0 (Inf) is the 8-neighbour form
    const Layout l = carve(pBuffer, w, static_cast<int>(sizeof(T)));
    T* work[4];
    for (int i = 0; i < 4; ++i) work[i] = reinterpret_cast<T*>(l.rows[i]);
    std::memset(l.flags - 1, 1, static_cast<size_t>(h) + 2);

    // A NaN compares false with everything, so where it stands in the order of
    // the scans decides what it does: images holding NaN take the single-thread
    // scans at every thread count, and give their result.
    const int threads = ownGetNumThreads();
    if (h > 10 && w > 10 && threads > 1 && !hasNaN(pSrc, srcStep, w, h) && !hasNaN(pSrcDst, srcDstStep, w, h) &&
        twoThreads<T, D>(pSrc, srcStep, pSrcDst, srcDstStep, w, h, k, work, l.flags, threads < 2 ? threads : 2))
        return rvpStsNoErr;
    singleThread<T, D>(pSrc, srcStep, pSrcDst, srcDstStep, w, h, k, work[0], l.flags);
    return rvpStsNoErr;
}

RvpStatus bufferSize(RvpiSize roi, int* pSize, int sampleBytes) {
    Check c;
    c.ptr(pSize).size(roi);
    if (RvpStatus st = c) return st;
    return storeSize(reconstructBytes(roi, sampleBytes), pSize);
}

}  // namespace
}  // namespace rvcv

using namespace rvcv;

RVCV_EXPORT RvpStatus rvpiMorphReconstructGetBufferSize_8u_C1(RvpiSize roiSize, int* pBufferSize) {
    return bufferSize(roiSize, pBufferSize, 1);
}
RVCV_EXPORT RvpStatus rvpiMorphReconstructGetBufferSize_16u_C1(RvpiSize roiSize, int* pBufferSize) {
    return bufferSize(roiSize, pBufferSize, 2);
}
RVCV_EXPORT RvpStatus rvpiMorphReconstructGetBufferSize_32f_C1(RvpiSize roiSize, int* pBufferSize) {
    return bufferSize(roiSize, pBufferSize, 4);
}
RVCV_EXPORT RvpStatus rvpiMorphReconstructGetBufferSize_64f_C1(RvpiSize roiSize, int* pBufferSize) {
    return bufferSize(roiSize, pBufferSize, 8);
}

#define RVCV_RECONSTRUCT(OP, D, S, T)                                                                              \
    RVCV_EXPORT RvpStatus rvpiMorphReconstruct##OP##_##S##_C1IR(const T* pSrc, int srcStep, T* pSrcDst,         \
                                                                  int srcDstStep, RvpiSize roiSize, Rvp8u* pBuffer, \
                                                                  int norm) {                                     \
        return reconstruct<T, D>(pSrc, srcStep, pSrcDst, srcDstStep, roiSize, pBuffer, norm);                     \
    }
RVCV_RECONSTRUCT(Dilate, true, 8u, Rvp8u)
RVCV_RECONSTRUCT(Dilate, true, 16u, Rvp16u)
RVCV_RECONSTRUCT(Dilate, true, 32f, Rvp32f)
RVCV_RECONSTRUCT(Dilate, true, 64f, Rvp64f)
RVCV_RECONSTRUCT(Erode, false, 8u, Rvp8u)
RVCV_RECONSTRUCT(Erode, false, 16u, Rvp16u)
RVCV_RECONSTRUCT(Erode, false, 32f, Rvp32f)
RVCV_RECONSTRUCT(Erode, false, 64f, Rvp64f)
