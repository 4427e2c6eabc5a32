// Gray-scale dilation and erosion by a structuring element with a value in
// every cell, replicated border: dilation takes the maximum over the cells
// of sample + value, erosion the minimum of sample - value, saturating for
// 8u. Each source row is padded once into a ring of mask-height rows; an
// output row then folds one shifted padded row per cell.
#include <cmath>
#include <cstring>

#include "rvcvframe.h"

struct RvpiMorphGrayState {
    int stateSize;
    int sampleType;  // 1: 8u, 13: 32f
    int roiWidth;
    int maskWidth, maskHeight, anchorX, anchorY;
    int cellCount;  // cells that take part, in raster order
    int padStep;    // bytes of one padded row
    int reserved;
    int64_t cellOffset, ringOffset;
};

namespace rvcv {
namespace {

constexpr int kSample8u = 1, kSample32f = 13;

// A cell: its column and row in the mask, its value (8u: clamped to
// -255..255, which saturating sums cannot tell from a larger magnitude).
struct GrayCell {
    int col, row;
    float value;
};

template <class V> bool takesPart(V v) {
    if constexpr (sizeof(V) == 4 && std::is_floating_point<V>::value) return !(std::isinf(v) && v < 0);
    else return true;
}

template <class V>
RvpStatus grayInit(int sampleType, int roiWidth, const V* pMask, RvpiSize maskSize, RvpiPoint anchor,
                   RvpiMorphGrayState** ppState, int* pSize, int mode) {
    if (!pMask) return rvpStsNullPtrErr;
    const int W = maskSize.width, H = maskSize.height;
    if (roiWidth < 1 || W < 1 || H < 1) return rvpStsSizeErr;
    if (anchor.x < 0 || anchor.x >= W || anchor.y < 0 || anchor.y >= H) return rvpStsAnchorErr;
    const int64_t cells = static_cast<int64_t>(W) * H;
    int64_t n = 0;
    for (int64_t i = 0; i < cells; ++i) n += takesPart(pMask[i]);
    if (n == 0) return rvpStsBadArgErr;
    for (int64_t i = 0; i < cells; ++i)
        if (pMask[i] != pMask[i]) return rvpStsBadArgErr;  // NaN values
    const int64_t pix = sampleType == kSample32f ? 4 : 1;
    const int64_t padStep = ((static_cast<int64_t>(roiWidth) + W - 1) * pix + 63) & ~int64_t{63};
    const int64_t cellOffset = 64, ringOffset = (cellOffset + n * static_cast<int64_t>(sizeof(GrayCell)) + 63) & ~int64_t{63};
    const int64_t size = ringOffset + H * padStep + pix * (static_cast<int64_t>(roiWidth) + 64);
    if (!fitsInt(size) || !fitsInt(padStep)) return rvpStsSizeErr;
    if (mode == 0) {
        if (!pSize) return rvpStsNullPtrErr;
        *pSize = static_cast<int>(size);
        return rvpStsNoErr;
    }
    if (!ppState || (mode == 1 && !*ppState)) return rvpStsNullPtrErr;
    Rvp8u* block = mode == 1 ? reinterpret_cast<Rvp8u*>(*ppState) : rvpsMalloc_8u(static_cast<int>(size));
    if (!block) return rvpStsMemAllocErr;
    RvpiMorphGrayState* s = reinterpret_cast<RvpiMorphGrayState*>(block);
    *s = RvpiMorphGrayState{static_cast<int>(size), sampleType, roiWidth, W, H, anchor.x, anchor.y,
                            static_cast<int>(n), static_cast<int>(padStep), 0, cellOffset, ringOffset};
    GrayCell* list = reinterpret_cast<GrayCell*>(block + cellOffset);
    for (int r = 0, k = 0; r < H; ++r)
        for (int c = 0; c < W; ++c) {
            const V v = pMask[static_cast<int64_t>(r) * W + c];
            if (!takesPart(v)) continue;
            float f = static_cast<float>(v);
            if (sampleType == kSample8u) f = f < -255 ? -255.0f : f > 255 ? 255.0f : f;
            list[k++] = GrayCell{c, r, f};
        }
    if (mode == 2) *ppState = s;
    return rvpStsNoErr;
}

// acc = max (dilate) or min (erode) of acc and p + v (dilate) or p - v.
template <bool Dilate>
void foldRow(const Rvp8u* p, int v, Rvp8u* acc, int w) {
    const int d = Dilate ? v : -v;
    for (int x = 0; x < w; ++x) {
        int t = p[x] + d;
        t = t < 0 ? 0 : t > 255 ? 255 : t;
        const Rvp8u u = static_cast<Rvp8u>(t);
        acc[x] = Dilate ? (u > acc[x] ? u : acc[x]) : (u < acc[x] ? u : acc[x]);
    }
}
template <bool Dilate>
void foldRow(const Rvp32f* p, float v, Rvp32f* acc, int w) {
    if (v == 0) {  // the sample itself, a negative zero kept
        for (int x = 0; x < w; ++x) acc[x] = Dilate ? (p[x] > acc[x] ? p[x] : acc[x]) : (p[x] < acc[x] ? p[x] : acc[x]);
        return;
    }
    for (int x = 0; x < w; ++x) {
        const float t = Dilate ? p[x] + v : p[x] - v;
        acc[x] = Dilate ? (t > acc[x] ? t : acc[x]) : (t < acc[x] ? t : acc[x]);
    }
}

template <class T>
RvpStatus grayApply(bool dilate, const T* src, int ss, T* dst, int ds, RvpiSize roi, int borderType,
                    RvpiMorphGrayState* st) {
    const int sample = sizeof(T) == 4 ? kSample32f : kSample8u;
    Check c;
    c.ptrs(src, dst, st);
    if (c != rvpStsNoErr) return c;
    checkImage<T>(c, roi, 1, ss, ds)
        .fail(borderType != rvpBorderRepl, rvpStsBadArgErr)
        .fail(st->sampleType != sample, rvpStsBadArgErr)
        .fail(roi.width > st->roiWidth, rvpStsSizeErr);
    if (RvpStatus s = c) return s;
    Rvp8u* block = reinterpret_cast<Rvp8u*>(st);
    const GrayCell* cells = reinterpret_cast<const GrayCell*>(block + st->cellOffset);
    char* ring = reinterpret_cast<char*>(block + st->ringOffset);
    T* acc = reinterpret_cast<T*>(ring + static_cast<int64_t>(st->maskHeight) * st->padStep);
    const int w = roi.width, h = roi.height, W = st->maskWidth, H = st->maskHeight;
    const int ax = st->anchorX, ay = st->anchorY;
    // Padded row of source row y lives in ring slot y mod H (rows above and
    // below the image are the clamped ones, padded again).
    const auto slot = [&](int y) { return reinterpret_cast<T*>(ring + static_cast<int64_t>((y % H + H) % H) * st->padStep); };
    const auto pad = [&](int y) {
        const T* s = rowPtr(src, ss, y < 0 ? 0 : y > h - 1 ? h - 1 : y);
        T* p = slot(y);
        for (int x = 0; x < ax; ++x) p[x] = s[0];
        std::memcpy(p + ax, s, sizeof(T) * static_cast<size_t>(w));
        for (int x = 0; x < W - 1 - ax; ++x) p[ax + w + x] = s[w - 1];
    };
    T init;
    if constexpr (sizeof(T) == 1) init = dilate ? 0 : 255;
    else init = dilate ? -INFINITY : INFINITY;
    for (int r = 0; r < H - 1; ++r) pad(r - ay);
    for (int y = 0; y < h; ++y) {
        pad(y - ay + H - 1);
        for (int x = 0; x < w; ++x) acc[x] = init;
        for (int k = 0; k < st->cellCount; ++k) {
            const GrayCell& cell = cells[k];
            const T* p = slot(y - ay + cell.row) + cell.col;
            if constexpr (sizeof(T) == 1) {
                if (dilate) foldRow<true>(p, static_cast<int>(cell.value), acc, w);
                else foldRow<false>(p, static_cast<int>(cell.value), acc, w);
            } else {
                if (dilate) foldRow<true>(p, cell.value, acc, w);
                else foldRow<false>(p, cell.value, acc, w);
            }
        }
        std::memcpy(rowPtr(dst, ds, y), acc, sizeof(T) * static_cast<size_t>(w));
    }
    return rvpStsNoErr;
}

}  // namespace
}  // namespace rvcv

using namespace rvcv;

#define RVCV_GRAY_FORMS(T, V, TAG, SAMPLE)                                                                        \
    RVCV_EXPORT RvpStatus rvpiMorphGrayGetSize_##TAG##_C1R(int roiWidth, const V* pMask, RvpiSize maskSize,       \
                                                           int* pSize) {                                          \
        return grayInit<V>(SAMPLE, roiWidth, pMask, maskSize, RvpiPoint{maskSize.width >> 1, maskSize.height >> 1}, \
                           nullptr, pSize, 0);                                                                    \
    }                                                                                                             \
    RVCV_EXPORT RvpStatus rvpiMorphGrayInit_##TAG##_C1R(int roiWidth, const V* pMask, RvpiSize maskSize,          \
                                                        RvpiPoint anchor, RvpiMorphGrayState* pState) {           \
        return grayInit<V>(SAMPLE, roiWidth, pMask, maskSize, anchor, &pState, nullptr, 1);                       \
    }                                                                                                             \
    RVCV_EXPORT RvpStatus rvpiMorphGrayInitAlloc_##TAG##_C1R(int roiWidth, const V* pMask, RvpiSize maskSize,     \
                                                             RvpiPoint anchor, RvpiMorphGrayState** ppState) {    \
        return grayInit<V>(SAMPLE, roiWidth, pMask, maskSize, anchor, ppState, nullptr, 2);                       \
    }                                                                                                             \
    RVCV_EXPORT RvpStatus rvpiGrayDilateBorder_##TAG##_C1R(const T* pSrc, int srcStep, T* pDst, int dstStep,      \
                                                           RvpiSize roiSize, int borderType,                      \
                                                           RvpiMorphGrayState* pState) {                          \
        return grayApply<T>(true, pSrc, srcStep, pDst, dstStep, roiSize, borderType, pState);                     \
    }                                                                                                             \
    RVCV_EXPORT RvpStatus rvpiGrayErodeBorder_##TAG##_C1R(const T* pSrc, int srcStep, T* pDst, int dstStep,       \
                                                          RvpiSize roiSize, int borderType,                       \
                                                          RvpiMorphGrayState* pState) {                           \
        return grayApply<T>(false, pSrc, srcStep, pDst, dstStep, roiSize, borderType, pState);                    \
    }

RVCV_GRAY_FORMS(Rvp8u, Rvp32s, 8u, kSample8u)
RVCV_GRAY_FORMS(Rvp32f, Rvp32f, 32f, kSample32f)

RVCV_EXPORT RvpStatus rvpiMorphGrayFree(RvpiMorphGrayState* pState) {
    if (!pState) return rvpStsNullPtrErr;
    rvpsFree(pState);
    return rvpStsNoErr;
}
