// Kernel tables of the rectangular minimum/maximum filter and of the
// structuring-element morphology built on it. Row functions reduce one row
// horizontally; column functions own the loop over rows and reduce across a
// ring of reduced rows. Reconstruction reuses the 16u and 64f row kernels.
#ifndef RVCV_MINMAX_H
#define RVCV_MINMAX_H

#include <cstddef>
#include <cstdint>

#include "rvpcv.h"

extern "C" int owncvGetCacheSize(void);

namespace rvcv {

// (source row, destination row, width in pixels, mask width, anchor column)
using MinMaxRowFn = void (*)(const void* src, void* dst, int width, int maskWidth, int anchor);
// Owns the loop over rows; rowPtrs is the ring list laid out in the caller's buffer.
// exactRows: row gives the exact clamped window, so rows may be reduced in
// bands instead.
using MinMaxColumnFn = void (*)(const void* src, int srcStep, void* dst, int dstStep, RvpiSize roi, int channels,
                                RvpiSize mask, RvpiPoint anchor, MinMaxRowFn row, void** rowPtrs, int exactRows);
// dst = extremum of n >= 1 rows of `samples` samples each.
using MinMaxFoldFn = void (*)(const void* const* rows, int n, void* dst, int samples);
// One output row of the direct structuring-element kernel: topLeft is the
// padded source under mask cell (0, 0) for output 0; cells hold 16 bytes each.
// dst = the run (len, off) of src from prev, the row of the run (len - 2,
// off - 1) of the same source row.
using MorphGrowFn = void (*)(const void* src, const void* prev, void* dst, int width, int len, int off);
using MorphDirectFn = void (*)(const void* topLeft, int step, void* dst, int width, const void* cells, int maskW,
                               int maskH);

enum MinMaxOp { kOpMin = 0, kOpMax = 1 };
// Layout index: 8u C1, C3, C4, then 32f C1, C3, C4.
inline int layoutIndex(bool isFloat, int channels) { return (isFloat ? 3 : 0) + (channels == 1 ? 0 : channels == 3 ? 1 : 2); }

struct MinMaxKernels {
    MinMaxRowFn row[2][6][16];        // [op][layout][index]: 0 running extremum, 1..15 fixed lengths
    MinMaxRowFn rowSmall[2][2][16];   // [op][0: 8u C4, 1: 32f C1] for images of at most 16384 bytes
    MinMaxColumnFn column[2][2][8];   // [op][0: 8u, 1: 32f][index]
    MinMaxFoldFn fold[2][2];          // [op][0: 8u, 1: 32f]
    MinMaxRowFn row16u[2][2];         // [op][0: length 3, 1: running extremum]
    MinMaxRowFn row64f[2][2];
    MorphGrowFn grow[2][6];           // [op][layout]
    MorphDirectFn direct[2][6];       // [0 erode, 1 dilate][layout]
};

namespace m7 { extern const MinMaxKernels kMinMax; }
namespace avx2 { extern const MinMaxKernels kMinMax; }
namespace avx512 { extern const MinMaxKernels kMinMax; }

const MinMaxKernels& minMaxKernels();

// Separable filter entry shared by the exported forms and the rectangle path
// of the structuring-element morphology. Validates in the documented order.
template <class T>
RvpStatus filterMinMax(int op, int channels, const T* src, int srcStep, T* dst, int dstStep, RvpiSize roi,
                       RvpiSize mask, RvpiPoint anchor, Rvp8u* buffer);

// Ring rows of rowBytes laid out from `from`, ending by `end`: on 64-byte
// boundaries with a 64-byte multiple stride where the slack allows, so the
// widest vectors never split a cache line; else on 32-byte boundaries.
char* ringLayout(char* from, const char* end, size_t rowBytes, size_t rows, size_t* stride);

// 2*H*(roiWidth*P + 32) + 32 + 32*H, in 64 bits (callers refuse sizes
// that do not fit an int).
int64_t minMaxBufferSize(int roiWidth, int pixelBytes, int maskHeight);

}  // namespace rvcv

#endif
