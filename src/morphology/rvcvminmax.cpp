// Rectangular minimum and maximum filters with replicated borders: a row
// function reduces each source row once into a ring in the caller's buffer,
// a column function reduces across the ring. On images of at most 16384
// bytes the 8u C4 and 32f C1 forms take the small row table, whose kernels
// shorten masks of even width 8 to 14 and of 16 or more; that is intended.
#include "rvcvminmax.h"

#include "rvcvcpu.h"
#include "rvcvframe.h"

namespace rvcv {

const MinMaxKernels& minMaxKernels() { return pick(m7::kMinMax, avx2::kMinMax, avx512::kMinMax); }

char* ringLayout(char* from, const char* end, size_t rowBytes, size_t rows, size_t* stride) {
    const uintptr_t f = reinterpret_cast<uintptr_t>(from), e = reinterpret_cast<uintptr_t>(end);
    uintptr_t at = (f + 63) & ~uintptr_t(63);
    *stride = (rowBytes + 63) & ~size_t(63);
    if (at + *stride * rows > e) *stride = (rowBytes + 31) & ~size_t(31);
    if (at + *stride * rows > e) at = (f + 31) & ~uintptr_t(31);
    return reinterpret_cast<char*>(at);
}

int64_t minMaxBufferSize(int roiWidth, int pixelBytes, int maskHeight) {
    const int64_t h = maskHeight;
    return 2 * h * (static_cast<int64_t>(roiWidth) * pixelBytes + 32) + 32 + 32 * h;
}

template <class T>
RvpStatus filterMinMax(int op, int channels, const T* src, int srcStep, T* dst, int dstStep, RvpiSize roi,
                       RvpiSize mask, RvpiPoint anchor, Rvp8u* buffer) {
    constexpr int B = static_cast<int>(sizeof(T));
    const int rowBytes = wmul(roi.width, B * channels);
    Check c;
    c.ptrs(src, dst, buffer)
        .size(roi)
        .fail(mask.width < 1 || mask.height < 1, rvpStsMaskSizeErr)
        .fail(anchor.x < 0 || anchor.x >= mask.width || anchor.y < 0 || anchor.y >= mask.height, rvpStsAnchorErr)
        .fail(!fitsInt(minMaxBufferSize(roi.width, B * channels, mask.height)), rvpStsSizeErr)
        .step(srcStep, rowBytes)
        .evenSteps(B, srcStep)
        .step(dstStep, rowBytes)
        .evenSteps(B, dstStep);
    if (RvpStatus st = c) return st;

    // The part of a mask more than one image length away adds nothing.
    const int w = roi.width, h = roi.height;
    int W = mask.width, H = mask.height, ax = anchor.x, ay = anchor.y;
    if (ax >= w) { W = W + w - ax - 1; ax = w - 1; }
    if (w < W - ax) W = w + ax;
    if (ay >= h) { H = H + h - ay - 1; ay = h - 1; }
    if (h < H - ay) H = h + ay;

    const bool isFloat = B == 4;
    const MinMaxKernels& k = minMaxKernels();
    const MinMaxRowFn* rows = k.row[op][layoutIndex(isFloat, channels)];
    int ri = (w >= 2 * W && W < 16) ? W : 0;
    const bool hasSmall = isFloat ? channels == 1 : channels == 4;
    const bool small = hasSmall && wmul(wmul(w, h), 4) <= 16384;
    if (small) {
        rows = k.rowSmall[op][isFloat ? 1 : 0];
        if (w >= 2 * W && W >= 16) ri = 15;
    }
    const int ci = (h >= 2 * H && (H == 1 || H == 3 || H == 5)) ? H : 0;

    // Row pointers at the first 8-byte boundary, then the ring rows; the list
    // names the ring twice so a walk needs no modulo.
    void** ptrs = reinterpret_cast<void**>((reinterpret_cast<uintptr_t>(buffer) + 7) & ~uintptr_t(7));
    const int R = (ci == 3 || ci == 5) ? H + 1 : 2 * H;
    size_t stride = 0;
    char* store = ringLayout(reinterpret_cast<char*>(ptrs + 4 * static_cast<size_t>(H)),
                             reinterpret_cast<char*>(buffer) + static_cast<uint32_t>(minMaxBufferSize(w, B * channels, H)),
                             static_cast<size_t>(w) * channels * B, R, &stride);
    for (int i = 0; i < 4 * H; ++i) ptrs[i] = store + stride * static_cast<size_t>(i % R);

    k.column[op][isFloat ? 1 : 0][ci](src, srcStep, dst, dstStep, RvpiSize{w, h}, channels, RvpiSize{W, H},
                                      RvpiPoint{ax, ay}, rows[ri], ptrs, !small);
    return rvpStsNoErr;
}

template RvpStatus filterMinMax<Rvp8u>(int, int, const Rvp8u*, int, Rvp8u*, int, RvpiSize, RvpiSize, RvpiPoint,
                                       Rvp8u*);
template RvpStatus filterMinMax<Rvp32f>(int, int, const Rvp32f*, int, Rvp32f*, int, RvpiSize, RvpiSize, RvpiPoint,
                                        Rvp8u*);

namespace {

RvpStatus bufferSize(int roiWidth, RvpiSize mask, int pixelBytes, int* pSize) {
    Check c;
    c.ptr(pSize).fail(roiWidth < 1, rvpStsSizeErr).fail(mask.width < 1 || mask.height < 1, rvpStsMaskSizeErr);
    if (RvpStatus st = c) return st;
    return storeSize(minMaxBufferSize(roiWidth, pixelBytes, mask.height), pSize);
}

}  // namespace
}  // namespace rvcv

using namespace rvcv;

#define RVCV_MINMAX_FORMS(NAME, OP, T, TAG, CH)                                                                   \
    RVCV_EXPORT RvpStatus rvpiFilter##NAME##BorderReplicate_##TAG##_C##CH##R(                                      \
        const T* pSrc, int srcStep, T* pDst, int dstStep, RvpiSize roiSize, RvpiSize maskSize, RvpiPoint anchor,   \
        Rvp8u* pBuffer) {                                                                                          \
        return filterMinMax<T>(OP, CH, pSrc, srcStep, pDst, dstStep, roiSize, maskSize, anchor, pBuffer);          \
    }                                                                                                              \
    RVCV_EXPORT RvpStatus rvpiFilter##NAME##GetBufferSize_##TAG##_C##CH##R(int roiWidth, RvpiSize maskSize,        \
                                                                           int* pBufferSize) {                     \
        return bufferSize(roiWidth, maskSize, static_cast<int>(sizeof(T)) * CH, pBufferSize);                      \
    }

#define RVCV_MINMAX_LAYOUTS(NAME, OP)          \
    RVCV_MINMAX_FORMS(NAME, OP, Rvp8u, 8u, 1)  \
    RVCV_MINMAX_FORMS(NAME, OP, Rvp8u, 8u, 3)  \
    RVCV_MINMAX_FORMS(NAME, OP, Rvp8u, 8u, 4)  \
    RVCV_MINMAX_FORMS(NAME, OP, Rvp32f, 32f, 1) \
    RVCV_MINMAX_FORMS(NAME, OP, Rvp32f, 32f, 3) \
    RVCV_MINMAX_FORMS(NAME, OP, Rvp32f, 32f, 4)

RVCV_MINMAX_LAYOUTS(Min, kOpMin)
RVCV_MINMAX_LAYOUTS(Max, kOpMax)
