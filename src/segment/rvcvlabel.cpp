// Marker labelling: the connected components of the nonzero pixels, each
// labelled in the raster order of its first pixel. Two passes over runs of
// nonzero pixels: the first joins each run to the runs it touches in the row
// above in a union-find forest whose roots are the smallest run numbers
// (runs are numbered in raster order, so a root is its component's first
// run); the roots then take the labels in order and the second pass writes
// them. This is what filling each unlabelled pixel met in raster order with
// the next label gives, in two sweeps. The forest lives in pBuffer.
#include <algorithm>
#include <emmintrin.h>

#include "segment/rvcvfill.h"

namespace rvcv {
namespace fill {
namespace {

// Bits of the nonzero samples of r[0..n), n <= 64: bit i for sample i.
template <class T> uint64_t nonzeroBits(const T* r, int n) {
    uint64_t bits = 0;
    int i = 0;
    for (; i + 16 <= n; i += 16) {
        __m128i z;
        if constexpr (sizeof(T) == 1) {
            z = _mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(r + i)), _mm_setzero_si128());
        } else {
            const __m128i a = _mm_cmpeq_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(r + i)), _mm_setzero_si128());
            const __m128i b = _mm_cmpeq_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(r + i + 8)), _mm_setzero_si128());
            z = _mm_packs_epi16(a, b);
        }
        bits |= static_cast<uint64_t>(~_mm_movemask_epi8(z) & 0xFFFF) << i;
    }
    for (; i < n; ++i) bits |= static_cast<uint64_t>(r[i] != 0) << i;
    return bits;
}

struct Run {
    int32_t left, right;
};

// Calls f(left, right) for each run of nonzero samples of a row, left to
// right, from the edges between zero and nonzero found 64 samples at a time.
template <class T, class F> void forRuns(const T* r, int w, F&& f) {
    int start = 0;
    uint64_t carry = 0;  // the sample before the block was nonzero
    for (int x = 0; x < w; x += 64) {
        const int n = w - x < 64 ? w - x : 64;
        const uint64_t bits = nonzeroBits(r + x, n);
        for (uint64_t edges = bits ^ ((bits << 1) | carry); edges; edges &= edges - 1) {
            const int i = __builtin_ctzll(edges);
            if (bits >> i & 1) start = x + i;
            else f(start, x + i - 1);
        }
        carry = n == 64 ? bits >> 63 : 0;  // a short last block closed its run at bit n
    }
    if (carry) f(start, w - 1);
}

inline int32_t root(int32_t* parent, int32_t i) {
    while (parent[i] != i) i = parent[i] = parent[parent[i]];
    return i;
}

template <class T>
RvpStatus labelMarkers(T* m, int step, RvpiSize roi, int minLabel, int maxLabel, int norm, int* pNumber,
                       Rvp8u* pBuffer) {
    constexpr int top = std::numeric_limits<T>::max();
    Check c;
    c.ptrs(m, pBuffer, pNumber).size(roi);
    const int64_t bytes = roi.width > 0 && roi.height > 0 ? stackBytes(roi) : 0;
    c.fail(!fitsInt(bytes), rvpStsSizeErr);
    checkImage<T>(c, roi, 1, step);
    if (RvpStatus st = c.fail(minLabel < 1 || maxLabel >= top || minLabel > maxLabel || (norm != 0 && norm != 1),
                              rvpStsBadArgErr))
        return st;
    const int w = roi.width, h = roi.height, e = norm == 0 ? 1 : 0;
    // Room: at most h * ceil(w / 2) runs of 4 bytes, and the runs of two rows
    // of 8 bytes each, within the 6 * w * h + 32 bytes of the buffer.
    const int64_t rowRuns = (int64_t{w} + 1) / 2;
    int32_t* parent = reinterpret_cast<int32_t*>(alignStack(pBuffer));
    Run* rows[2] = {reinterpret_cast<Run*>(parent + rowRuns * h), reinterpret_cast<Run*>(parent + rowRuns * h) + rowRuns};
    int32_t runs = 0;
    int prevCount = 0;
    int32_t prevFirst = 0;
    for (int y = 0; y < h; ++y) {
        Run* cur = rows[y & 1];
        const Run* prev = rows[(y & 1) ^ 1];
        const bool keep = y + 1 < h;  // the next row needs this row's runs
        const int32_t first = runs;
        int j = 0, count = 0;
        forRuns(rowPtr(m, step, y), w, [&](int left, int right) {
            const int32_t id = runs++;
            parent[id] = id;
            if (keep) cur[count] = Run{left, right};
            ++count;
            if (y == 0) return;
            while (j < prevCount && prev[j].right < left - e) ++j;
            for (int k = j; k < prevCount && prev[k].left <= right + e; ++k) {
                const int32_t a = root(parent, prevFirst + k), b = root(parent, id);
                if (a < b) parent[b] = a;
                else parent[a] = b;
            }
        });
        prevCount = count;
        prevFirst = first;
    }
    // Roots in run order take the labels; every other run, whose parent has
    // a smaller number, takes its parent's label, already resolved.
    int label = minLabel, components = 0;
    for (int32_t i = 0; i < runs; ++i) {
        if (parent[i] == i) {
            parent[i] = label;
            label = label == maxLabel ? minLabel : label + 1;
            ++components;
        } else {
            parent[i] = parent[parent[i]];
        }
    }
    int32_t id = 0;
    for (int y = 0; y < h; ++y) {
        T* r = rowPtr(m, step, y);
        forRuns(r, w, [&](int left, int right) { std::fill(r + left, r + right + 1, static_cast<T>(parent[id++])); });
    }
    *pNumber = components;
    return rvpStsNoErr;
}

RvpStatus querySize(RvpiSize roi, int* pSize) {
    if (RvpStatus st = Check().ptr(pSize).size(roi)) return st;
    return storeSize(stackBytes(roi), pSize);
}

}  // namespace
}  // namespace fill
}  // namespace rvcv

using namespace rvcv;

RVCV_EXPORT RvpStatus rvpiLabelMarkers_8u_C1IR(Rvp8u* pMarker, int markerStep, RvpiSize roiSize, int minLabel,
                                               int maxLabel, int norm, int* pNumber, Rvp8u* pBuffer) {
    return fill::labelMarkers(pMarker, markerStep, roiSize, minLabel, maxLabel, norm, pNumber, pBuffer);
}
RVCV_EXPORT RvpStatus rvpiLabelMarkers_16u_C1IR(Rvp16u* pMarker, int markerStep, RvpiSize roiSize, int minLabel,
                                                int maxLabel, int norm, int* pNumber, Rvp8u* pBuffer) {
    return fill::labelMarkers(pMarker, markerStep, roiSize, minLabel, maxLabel, norm, pNumber, pBuffer);
}
RVCV_EXPORT RvpStatus rvpiLabelMarkersGetBufferSize_8u_C1R(RvpiSize roiSize, int* pBufferSize) {
    return fill::querySize(roiSize, pBufferSize);
}
RVCV_EXPORT RvpStatus rvpiLabelMarkersGetBufferSize_16u_C1R(RvpiSize roiSize, int* pBufferSize) {
    return fill::querySize(roiSize, pBufferSize);
}
