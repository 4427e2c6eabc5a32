// Opening, closing, top-hat, black-hat and morphological gradient by a
// two-valued structuring element, replicated border. The state holds a
// structuring-element state for the mask and two band images: the image is
// processed in bands of output rows, each pass run on the rows it needs
// (a pass over rows [a, b) of an image is exact on the rows whose mask reach
// stays inside [a, b) or meets the image's own edge), so no intermediate
// image of the full size is made. The differences use the saturating
// subtraction primitive.
#include <algorithm>
#include <cstring>

#include "rvcvframe.h"
#include "rvcvmorph.h"
#include "rvcvprim.h"

struct RvpiMorphAdvState {
    int stateSize;
    int sampleType, channels, roiWidth;
    int above, below;  // rows the mask reaches above and below its anchor
    int bandRows;      // output rows of one band, at least (more for narrow images)
    int reserved;
    int64_t morphOffset, firstOffset, secondOffset;
};

namespace rvcv {
namespace {

enum AdvOp { kOpen, kClose, kTophat, kBlackhat, kGradient };
constexpr int64_t kSmallPixels = 4096;

struct AdvLayout {
    int bandRows;
    int64_t morphOffset, firstOffset, secondOffset, size;
};

// Bands of at least 32 rows and four times the mask's reach, so the rows a
// pass computes beyond its band stay a small share, and of more than 4096
// pixels: a pass over a band then takes the same kernels as over the whole
// image (the min/max filter has a separate rule for images of at most 4096
// pixels). Band images are packed; narrower images get more rows.
RvpStatus layout(int sampleType, int C, int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, RvpiPoint anchor,
                 AdvLayout& l) {
    int morphBytes = 0;
    if (RvpStatus st = ownMorphologyInitAlloc(sampleType, C, roiWidth, pMask, maskSize, anchor, nullptr, &morphBytes, 0))
        return st;
    const int64_t reach = static_cast<int64_t>(maskSize.height) - 1;
    const int64_t pix = (sampleType == kSample32f ? 4 : 1) * static_cast<int64_t>(C), w = roiWidth;
    // As many rows as 256 KiB hold (the band images stay in the second-level cache).
    const int64_t cached = (int64_t{1} << 18) / (w * pix);
    const int64_t rows = std::max({reach * 4, int64_t{32}, cached < 512 ? cached : int64_t{512}});
    const int64_t band = (rows * w > kSmallPixels + w ? rows * w : kSmallPixels + w) * pix;
    l.morphOffset = 64;
    l.firstOffset = (l.morphOffset + morphBytes + 63) & ~int64_t{63};
    l.secondOffset = (l.firstOffset + band + 2 * reach * w * pix + 63) & ~int64_t{63};
    l.size = l.secondOffset + band + reach * w * pix;
    if (!fitsInt(l.size)) return rvpStsSizeErr;
    l.bandRows = static_cast<int>(rows);
    return rvpStsNoErr;
}

// mode 0 reports the size, 1 builds in *ppState, 2 allocates and builds.
RvpStatus advInit(int sampleType, int C, int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, RvpiPoint anchor,
                  RvpiMorphAdvState** ppState, int* pSize, int mode) {
    AdvLayout l{};
    if (RvpStatus st = layout(sampleType, C, roiWidth, pMask, maskSize, anchor, l)) return st;
    if (mode == 0) {
        if (!pSize) return rvpStsNullPtrErr;
        *pSize = static_cast<int>(l.size);
        return rvpStsNoErr;
    }
    if (!ppState || (mode == 1 && !*ppState)) return rvpStsNullPtrErr;
    Rvp8u* block = mode == 1 ? reinterpret_cast<Rvp8u*>(*ppState) : rvpsMalloc_8u(static_cast<int>(l.size));
    if (!block) return rvpStsMemAllocErr;
    RvpiMorphState* morph = reinterpret_cast<RvpiMorphState*>(block + l.morphOffset);
    if (RvpStatus st = ownMorphologyInitAlloc(sampleType, C, roiWidth, pMask, maskSize, anchor, &morph, nullptr, 1)) {
        if (mode == 2) rvpsFree(block);
        return st;
    }
    RvpiMorphAdvState* s = reinterpret_cast<RvpiMorphAdvState*>(block);
    *s = RvpiMorphAdvState{static_cast<int>(l.size), sampleType, C, roiWidth, anchor.y, maskSize.height - 1 - anchor.y,
                           l.bandRows, 0, l.morphOffset, l.firstOffset, l.secondOffset};
    if (mode == 2) *ppState = s;
    return rvpStsNoErr;
}

// One erosion or dilation of rows [a, b) of an image into rows [0, b - a) of out.
template <class T>
void pass(bool dilate, int C, const T* src, int ss, int a, int b, T* out, int os, int w, RvpiMorphState* m) {
    RvpStatus (*fn)(const T*, int, T*, int, RvpiSize, int, RvpiMorphState*);
    if constexpr (sizeof(T) == 1)
        fn = dilate ? (C == 1 ? rvpiDilateBorderReplicate_8u_C1R : C == 3 ? rvpiDilateBorderReplicate_8u_C3R
                                                                          : rvpiDilateBorderReplicate_8u_C4R)
                    : (C == 1 ? rvpiErodeBorderReplicate_8u_C1R : C == 3 ? rvpiErodeBorderReplicate_8u_C3R
                                                                         : rvpiErodeBorderReplicate_8u_C4R);
    else
        fn = dilate ? (C == 1 ? rvpiDilateBorderReplicate_32f_C1R : C == 3 ? rvpiDilateBorderReplicate_32f_C3R
                                                                           : rvpiDilateBorderReplicate_32f_C4R)
                    : (C == 1 ? rvpiErodeBorderReplicate_32f_C1R : C == 3 ? rvpiErodeBorderReplicate_32f_C3R
                                                                          : rvpiErodeBorderReplicate_32f_C4R);
    fn(rowPtr(src, ss, a), ss, out, os, RvpiSize{w, b - a}, rvpBorderRepl, m);
}

// pDst = minuend - subtrahend over h rows, saturating for 8u.
template <class T>
void subtract(int C, const T* subtrahend, int s1, const T* minuend, int s2, T* dst, int ds, int w, int h) {
    const RvpiSize r{w, h};
    if constexpr (sizeof(T) == 1)
        (C == 1 ? rvpiSub_8u_C1RSfs : C == 3 ? rvpiSub_8u_C3RSfs : rvpiSub_8u_C4RSfs)(subtrahend, s1, minuend, s2, dst,
                                                                                      ds, r, 0);
    else
        (C == 1 ? rvpiSub_32f_C1R : C == 3 ? rvpiSub_32f_C3R : rvpiSub_32f_C4R)(subtrahend, s1, minuend, s2, dst, ds,
                                                                                r);
}

template <class T>
RvpStatus advApply(AdvOp op, int C, const T* src, int ss, T* dst, int ds, RvpiSize roi, int borderType,
                   RvpiMorphAdvState* st) {
    const int sample = sizeof(T) == 4 ? kSample32f : kSample8u;
    Check c;
    c.ptrs(src, dst, st);
    if (c != rvpStsNoErr) return c;
    checkImage<T>(c, roi, C, ss, ds)
        .fail(borderType != rvpBorderRepl, rvpStsBadArgErr)
        .fail(st->sampleType != sample || st->channels != C, rvpStsBadArgErr)
        .fail(roi.width > st->roiWidth, rvpStsSizeErr);
    if (RvpStatus s = c) return s;
    Rvp8u* block = reinterpret_cast<Rvp8u*>(st);
    RvpiMorphState* m = reinterpret_cast<RvpiMorphState*>(block + st->morphOffset);
    T* first = reinterpret_cast<T*>(block + st->firstOffset);
    T* second = reinterpret_cast<T*>(block + st->secondOffset);
    const int w = roi.width, h = roi.height, up = st->above, down = st->below;
    const int bs = w * C * static_cast<int>(sizeof(T));
    const int64_t minRows = kSmallPixels / w + 1;
    const int rows = static_cast<int>(st->bandRows > minRows ? st->bandRows : minRows < h ? minRows : h);
    const auto clampRow = [h](int y) { return y < 0 ? 0 : y > h ? h : y; };
    for (int next = 0; next < h; next += rows) {
        // The last band ends at the image's end and keeps its full height.
        const int y0 = next + rows <= h ? next : (h > rows ? h - rows : 0), y1 = y0 + rows < h ? y0 + rows : h;
        if (op == kGradient) {
            // Both passes on the source rows the band reaches.
            const int a = clampRow(y0 - up), b = clampRow(y1 + down);
            pass(true, C, src, ss, a, b, first, bs, w, m);
            pass(false, C, src, ss, a, b, second, bs, w, m);
            subtract(C, rowPtr(second, bs, y0 - a), bs, rowPtr(first, bs, y0 - a), bs, rowPtr(dst, ds, y0), ds, w,
                     y1 - y0);
            continue;
        }
        // Opening erodes then dilates; closing the reverse. The second pass
        // needs first-pass rows [ia, ib), exact from source rows [a, b).
        const bool dilateFirst = op == kClose || op == kBlackhat;
        const int ia = clampRow(y0 - up), ib = clampRow(y1 + down);
        const int a = clampRow(ia - up), b = clampRow(ib + down);
        pass(dilateFirst, C, src, ss, a, b, first, bs, w, m);
        const T* mid = rowPtr(first, bs, ia - a);
        T* out = rowPtr(second, bs, y0 - ia);
        pass(!dilateFirst, C, mid, bs, 0, ib - ia, second, bs, w, m);
        const T* s = rowPtr(src, ss, y0);
        T* d = rowPtr(dst, ds, y0);
        switch (op) {
        case kTophat: subtract(C, static_cast<const T*>(out), bs, s, ss, d, ds, w, y1 - y0); break;
        case kBlackhat: subtract(C, s, ss, static_cast<const T*>(out), bs, d, ds, w, y1 - y0); break;
        default:
            for (int y = 0; y < y1 - y0; ++y)
                std::memcpy(rowPtr(d, ds, y), rowPtr(out, bs, y), sizeof(T) * C * static_cast<size_t>(w));
        }
    }
    return rvpStsNoErr;
}

}  // namespace
}  // namespace rvcv

using namespace rvcv;

#define RVCV_ADV_OP(NAME, OP, T, TAG, CH)                                                                         \
    RVCV_EXPORT RvpStatus rvpiMorph##NAME##Border_##TAG##_C##CH##R(const T* pSrc, int srcStep, T* pDst,          \
                                                                   int dstStep, RvpiSize roiSize, int borderType, \
                                                                   RvpiMorphAdvState* pState) {                   \
        return advApply<T>(OP, CH, pSrc, srcStep, pDst, dstStep, roiSize, borderType, pState);                    \
    }

#define RVCV_ADV_FORMS(T, TAG, CH, SAMPLE)                                                                        \
    RVCV_EXPORT RvpStatus rvpiMorphAdvGetSize_##TAG##_C##CH##R(int roiWidth, const Rvp8u* pMask,                  \
                                                               RvpiSize maskSize, int* pSize) {                   \
        return advInit(SAMPLE, CH, roiWidth, pMask, maskSize,                                                     \
                       RvpiPoint{maskSize.width >> 1, maskSize.height >> 1}, nullptr, pSize, 0);                  \
    }                                                                                                             \
    RVCV_EXPORT RvpStatus rvpiMorphAdvInit_##TAG##_C##CH##R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize,  \
                                                            RvpiPoint anchor, RvpiMorphAdvState* pState) {        \
        return advInit(SAMPLE, CH, roiWidth, pMask, maskSize, anchor, &pState, nullptr, 1);                       \
    }                                                                                                             \
    RVCV_EXPORT RvpStatus rvpiMorphAdvInitAlloc_##TAG##_C##CH##R(                                                 \
        int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, RvpiPoint anchor, RvpiMorphAdvState** ppState) {     \
        return advInit(SAMPLE, CH, roiWidth, pMask, maskSize, anchor, ppState, nullptr, 2);                       \
    }                                                                                                             \
    RVCV_ADV_OP(Open, kOpen, T, TAG, CH)                                                                          \
    RVCV_ADV_OP(Close, kClose, T, TAG, CH)                                                                        \
    RVCV_ADV_OP(Tophat, kTophat, T, TAG, CH)                                                                      \
    RVCV_ADV_OP(Blackhat, kBlackhat, T, TAG, CH)                                                                  \
    RVCV_ADV_OP(Gradient, kGradient, T, TAG, CH)

RVCV_ADV_FORMS(Rvp8u, 8u, 1, kSample8u)
RVCV_ADV_FORMS(Rvp8u, 8u, 3, kSample8u)
RVCV_ADV_FORMS(Rvp8u, 8u, 4, kSample8u)
RVCV_ADV_FORMS(Rvp32f, 32f, 1, kSample32f)
RVCV_ADV_FORMS(Rvp32f, 32f, 3, kSample32f)
RVCV_ADV_FORMS(Rvp32f, 32f, 4, kSample32f)

RVCV_EXPORT RvpStatus rvpiMorphAdvFree(RvpiMorphAdvState* pState) {
    if (!pState) return rvpStsNullPtrErr;
    rvpsFree(pState);
    return rvpStsNoErr;
}
