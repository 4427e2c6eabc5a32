// Exact Euclidean distance transform: a column pass gives each pixel the
// squared distance to the nearest zero in its column (the largest float
// when the column has none), a row pass takes the lower envelope of the
// parabolas of each row (single precision, in a fixed order of operations)
// and the square root. The row pass runs in bands over threads, each with
// its own envelope arrays; the squares and half-reciprocals are shared.
#include <cfloat>
#include <cmath>

#include "rvcvframe.h"
#include "rvcvprim.h"

namespace rvcv {
namespace {

struct Layout {
    int64_t w4, h4, perThread, bytes;
};

Layout layout(RvpiSize roi, int threads) {
    Layout l{};
    l.w4 = (static_cast<int64_t>(roi.width) + 3) & ~int64_t{3};
    l.h4 = (static_cast<int64_t>(roi.height) + 3) & ~int64_t{3};
    l.perThread = (l.w4 > l.h4 ? l.w4 : l.h4) * 24 + 56;
    l.bytes = l.perThread * threads;
    return l;
}

RvpStatus bufferSize(RvpiSize roi, int* pSize) {
    if (!pSize) return rvpStsNullPtrErr;
    if (roi.width <= 0 || roi.height <= 0) return rvpStsSizeErr;
    return storeSize(layout(roi, owncvGetMaxNumThreads()).bytes, pSize);
}

// Column pass, row by row over all columns at once (the same values as a
// walk down each column): an upward scan keeps the distance to the nearest
// zero below in g and parks it in dst's row as an integer, a downward scan
// takes the smaller of that and the distance from above and looks up the
// square (the largest float when no zero is in reach).
void columns(const Rvp8u* src, int ss, Rvp32f* dst, int ds, int w, int h, int32_t* g, int32_t* d,
             const Rvp32f* table) {
    for (int x = 0; x < w; ++x) g[x] = h - 1, d[x] = h - 1;
    for (int y = h - 1; y >= 0; --y) {
        const Rvp8u* s = rowPtr(src, ss, y);
        int32_t* down = reinterpret_cast<int32_t*>(rowPtr(dst, ds, y));
        for (int x = 0; x < w; ++x) down[x] = g[x] = s[x] != 0 ? g[x] + 1 : 0;
    }
    for (int y = 0; y < h; ++y) {
        Rvp32f* row = rowPtr(dst, ds, y);
        const int32_t* down = reinterpret_cast<const int32_t*>(row);
        for (int x = 0; x < w; ++x) {
            d[x] = d[x] + 1 < down[x] ? d[x] + 1 : down[x];
            row[x] = table[d[x]];
        }
    }
}

// Lower envelope of the parabolas f[q] + (x - q)^2 of one row, written back.
void envelope(Rvp32f* row, int w, const Rvp32f* sq, const Rvp32f* recip, Rvp32f* f, Rvp32f* z, int32_t* v) {
    std::memcpy(f, row, sizeof(Rvp32f) * static_cast<size_t>(w));
    int k = 0;
    v[0] = 0;
    z[0] = -FLT_MAX;
    z[1] = FLT_MAX;
    for (int q = 1; q < w; ++q) {
        Rvp32f s;
        for (;;) {
            s = (((f[q] + sq[q]) - f[v[k]]) - sq[v[k]]) * recip[q - v[k]];
            if (s > z[k]) break;
            --k;
        }
        ++k;
        v[k] = q;
        z[k] = s;
        z[k + 1] = FLT_MAX;
    }
    k = 0;
    for (int x = 0; x < w; ++x) {
        while (z[k + 1] < static_cast<Rvp32f>(x)) ++k;
        const int dx = x > v[k] ? x - v[k] : v[k] - x;
        row[x] = sq[dx] + f[v[k]];
    }
    rvpsSqrt_32f(row, row, w);
}

RvpStatus trueDistance(const Rvp8u* src, int ss, Rvp32f* dst, int ds, RvpiSize roi, Rvp8u* buffer) {
    Check c;
    c.ptrs(src, dst, buffer).size(roi);
    if (c == rvpStsNoErr) {
        const int64_t rowBytes = 4 * static_cast<int64_t>(roi.width);
        c.fail(ss < roi.width || ds < rowBytes, rvpStsStepErr).evenSteps(4, ds);
    }
    if (RvpStatus st = c) return st;
    const int maxThreads = owncvGetMaxNumThreads();
    const Layout l = layout(roi, maxThreads);
    if (!fitsInt(l.bytes)) return rvpStsSizeErr;  // the query refuses these sizes
    const int w = roi.width, h = roi.height;
    char* base = reinterpret_cast<char*>((reinterpret_cast<uintptr_t>(buffer) + 15) & ~uintptr_t{15});

    // Column pass: squares, then the largest float for "no zero in reach".
    Rvp32f* table = reinterpret_cast<Rvp32f*>(base);
    int32_t* g = reinterpret_cast<int32_t*>(table + 2 * l.h4);
    for (int i = 0; i < h; ++i) table[i] = static_cast<Rvp32f>(i) * static_cast<Rvp32f>(i);
    for (int i = h; i < 2 * h; ++i) table[i] = FLT_MAX;
    columns(src, ss, dst, ds, w, h, g, g + l.w4, table);

    // Row pass: shared squares and half-reciprocals, then each thread's arrays.
    Rvp32f* sq = reinterpret_cast<Rvp32f*>(base);
    Rvp32f* recip = sq + l.w4;
    for (int i = 0; i < w; ++i) sq[i] = static_cast<Rvp32f>(i) * static_cast<Rvp32f>(i);
    for (int i = 1; i < w; ++i) recip[i] = 0.5f / static_cast<Rvp32f>(i);
    recip[0] = 0;
    char* slots = reinterpret_cast<char*>(recip + l.w4);
    const int64_t slotBytes = 12 * l.w4 + 16;
    const auto rows = [&](int id, int y0, int n) {
        Rvp32f* f = reinterpret_cast<Rvp32f*>(slots + slotBytes * id);
        Rvp32f* z = f + l.w4;
        int32_t* v = reinterpret_cast<int32_t*>(z + l.w4 + 1);
        for (int y = y0; y < y0 + n; ++y) envelope(rowPtr(dst, ds, y), w, sq, recip, f, z, v);
    };
    const bool threaded = maxThreads > 1 && (runomp() != 0 || (static_cast<int64_t>(maxThreads) * h >= 256 && w >= 256));
    if (!threaded) {
        rows(0, 0, h);
        return rvpStsNoErr;
    }
    splitRegion(h, ownGetNumThreads(), [&](int id, const BandSplit& s) {
        if (s.rows(id) > 0) rows(id, s.firstRow(id), s.rows(id));
    });
    return rvpStsNoErr;
}

}  // namespace
}  // namespace rvcv

using namespace rvcv;

RVCV_EXPORT RvpStatus rvpiTrueDistanceTransformGetBufferSize_8u32f_C1R(RvpiSize roiSize, int* pBufferSize) {
    return bufferSize(roiSize, pBufferSize);
}

RVCV_EXPORT RvpStatus rvpiTrueDistanceTransform_8u32f_C1R(const Rvp8u* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                                          RvpiSize roiSize, Rvp8u* pBuffer) {
    return trueDistance(pSrc, srcStep, pDst, dstStep, roiSize, pBuffer);
}
