// Fixed-kernel border filters: Sobel, Scharr, Laplacian and lowpass. Each is
// a row routine and a column routine taken from index tables, run by one band
// routine over a ring of kH + 15 intermediate rows. Float sums follow tap
// order with zero taps skipped; integer forms are exact for 8-bit sources.
#include "filter/rvcvfilter.h"
#include "filter/rvcvfixed.h"
#include "rvcvcpu.h"

namespace rvcv {
namespace filt {
namespace {

// The tables of one sample-type combination, from the set of the active
// instruction set.
struct Pick {
    const FixedTables& t;
    void get(const RowEntry<Rvp8u, Rvp16s>*& r, const ColTable<Rvp16s, Rvp16s>*& c) const { r = t.row8u; c = &t.col8u16s; }
    void get(const RowEntry<Rvp8u, Rvp16s>*& r, const ColTable<Rvp16s, Rvp8s>*& c) const { r = t.row8u; c = &t.col8u8s; }
    void get(const RowEntry<Rvp8u, Rvp16s>*& r, const ColTable<Rvp16s, Rvp8u>*& c) const { r = t.row8u; c = &t.col8u; }
    void get(const RowEntry<Rvp32f, Rvp32f>*& r, const ColTable<Rvp32f, Rvp32f>*& c) const { r = t.row32f; c = &t.col32f; }
};

template <class I, class S> I constantRow(int tapSum, S bv) {
    if constexpr (std::is_same<I, Rvp32f>::value) return static_cast<float>(tapSum) * bv;
    else return saturate<Rvp16s>(static_cast<int64_t>(tapSum) * bv);
}

Rvp8u* alignUp(Rvp8u* p, uintptr_t a) {
    return reinterpret_cast<Rvp8u*>((reinterpret_cast<uintptr_t>(p) + a - 1) & ~(a - 1));
}

// ---- The band routine ----------------------------------------------------------
// Rows of the band and kH - 1 rows around it are filtered once each into a
// ring of kH + 15 rows; the pointer array holds each ring row twice, so any
// run of kH + 15 entries from the first half is a window with no modulus.
// Ring slots follow the absolute row position, so bands of any split lay the
// ring out alike. A spare zero row follows the ring.
template <class S, class I, class D>
void ownFilterConvolution(const RowEntry<S, I>& re, ColFn<I, D> col, int kH, const S* base, int srcStep, int fullH,
                          int y0, int rows, D* dst, int dstStep, int w, int borderType, S bv, Rvp8u* buf) {
    const int type = borderType & 0xF;
    const int aW = (w + 7) & ~7;
    const int stride = re.twin ? 2 * aW : aW;
    const int R = kH + 15;
    I* ring = reinterpret_cast<I*>(alignUp(buf, 32));
    I** ptrs = reinterpret_cast<I**>(ring + static_cast<ptrdiff_t>(R + 1) * stride);
    S* work = reinterpret_cast<S*>(ptrs + 2 * R);
    std::memset(ring + static_cast<ptrdiff_t>(R) * stride, 0, sizeof(I) * stride);
    for (int i = 0; i < R; ++i) ptrs[i] = ptrs[i + R] = ring + static_cast<ptrdiff_t>(i) * stride;
    const I cA = constantRow<I>(re.tapSum, bv), cB = constantRow<I>(8, bv);

    const int p0 = y0 - kH / 2;
    int filled = 0;
    for (int done = 0; done < rows;) {
        const int batch = std::min(16, rows - done);
        for (const int need = done + batch + kH - 1; filled < need; ++filled) {
            const int p = p0 + filled;
            I* slot = ptrs[positiveMod(p, R)];
            const bool mem = (p >= 0 && p < fullH) || (p < 0 && (borderType & kSeamAbove)) ||
                             (p >= fullH && (borderType & kSeamBelow));
            const int idx = mem ? p : borderIndex(p, fullH, type);
            if (!mem && idx < 0) {
                std::fill(slot, slot + w, cA);
                if (re.twin) std::fill(slot + aW, slot + aW + w, cB);
            } else {
                re.fn(rowPtr(base, srcStep, idx), slot, w, type, borderType, bv, work, aW);
            }
        }
        col(ptrs + positiveMod(p0 + done, R), rowPtr(dst, dstStep, done), dstStep, batch, w, aW);
        done += batch;
    }
}

// ---- Public functions ------------------------------------------------------------

struct Stage { int row, col; };
struct FilterDef {
    Stage s3, s5;          // row and column table indices per mask
    Stage second5;         // second pass of the 5x5 mask (col < 0: none)
};

enum class SizeKind { Sobel8u, Sobel32f, Lap8u, Lap32f, Scharr8u, Scharr32f };

int64_t fixedBytes(SizeKind kind, RvpiSize roi, int n, int maxThreads, int tail) {
    const int64_t w16 = (static_cast<int64_t>(roi.width) + 15) & ~int64_t{15};
    int64_t one = 0;
    bool isFloat = false;
    switch (kind) {
    case SizeKind::Sobel8u: one = w16 * 2 * (2 * n + 15) + 368 + 24 * n; break;
    case SizeKind::Sobel32f: one = w16 * 4 * (2 * n + 15) + 368 + 24 * n; isFloat = true; break;
    case SizeKind::Lap8u: one = w16 * 4 * (2 * n + 15) + 576 + 48 * n; break;
    case SizeKind::Lap32f: one = w16 * 8 * (2 * n + 15) + 576 + 48 * n; isFloat = true; break;
    case SizeKind::Scharr8u: one = w16 * 42 + 376; break;
    case SizeKind::Scharr32f: one = w16 * 84 + 376; isFloat = true; break;
    }
    const int64_t rowBytes = rowPipelineBytes(isFloat ? RowForm::P32f_C1 : RowForm::P8u16s_C1, roi, n, maxThreads);
    const int64_t colBytes = colPipelineBytes(isFloat ? ColForm::P32f : ColForm::P16s_C1, roi, n, maxThreads);
    return maxThreads * (one + rowBytes + colBytes + tail);
}

int maskN(int maskSize) { return maskSize == 33 ? 3 : maskSize == 55 ? 5 : 0; }

bool badFilterBorder(int borderType) {
    const int low = borderType & 0xF;
    if (!(low <= 4 || low == 6)) return true;
    return (borderType & 0xFFF0) != 0 && (borderType & 0xF0) == 0;
}

template <class S, class I, class D>
RvpStatus fixedFilter(const FilterDef& def, SizeKind kind, int tail, const S* pSrc, int srcStep, D* pDst, int dstStep,
                      RvpiSize roi, int maskSize, int borderType, S bv, Rvp8u* pBuffer) {
    const int maxThreads = owncvGetMaxNumThreads();
    Check c;
    c.ptrs(pSrc, pDst, pBuffer).size(roi);
    c.step(srcStep, wmul(roi.width, static_cast<int>(sizeof(S)))).step(dstStep, wmul(roi.width, static_cast<int>(sizeof(D))));
    c.fail(static_cast<int64_t>(roi.width) * 4 > INT32_MAX, rvpStsStepErr);  // rows longer than any step
    c.evenSteps(static_cast<int>(sizeof(S)), srcStep).evenSteps(static_cast<int>(sizeof(D)), dstStep);
    c.fail(badFilterBorder(borderType), rvpStsBadArgErr);
    c.fail(maskN(maskSize) == 0, rvpStsMaskSizeErr);
    // Arguments whose buffer size would not fit an int (the query refuses them too).
    c.fail(!fitsInt(fixedBytes(kind, roi, maskN(maskSize), maxThreads, tail)), rvpStsSizeErr);
    if (c != rvpStsNoErr) return c;
    if ((borderType & 0xF) == rvpBorderInMem) borderType = 0xF0;
    const int n = maskN(maskSize);
    const Stage first = n == 3 ? def.s3 : def.s5;
    const bool second = n == 5 && def.second5.col >= 0;
    const RowEntry<S, I>* rowTab = nullptr;
    const ColTable<I, D>* colTab = nullptr;
    Pick{pick(m7::kFixed, avx2::kFixed)}.get(rowTab, colTab);
    const int width = roi.width, height = roi.height;
    auto band = [&](int y0, int rows, Rvp8u* slice, int seam) {
        D* d = rowPtr(pDst, dstStep, y0);
        ownFilterConvolution<S, I, D>(rowTab[first.row], colTab->fn[first.col], n, pSrc, srcStep, height, y0,
                                      rows, d, dstStep, width, borderType | seam, bv, slice);
        if (second)
            ownFilterConvolution<S, I, D>(rowTab[def.second5.row], colTab->fn[def.second5.col], n, pSrc, srcStep,
                                          height, y0, rows, d, dstStep, width, borderType | seam, bv, slice);
    };
    if (maxThreads * 5 <= height && width >= 256 && maxThreads > 1 && height >= 256 && runomp() != 0) {
        int team = height / 128;
        if (rvpGetNumCoresOnDie() < team) team = rvpGetNumCoresOnDie();
        if (ownGetNumThreads() < team) team = ownGetNumThreads();
        filterRegion(height, team, pBuffer, static_cast<int>(fixedBytes(kind, roi, n, maxThreads, tail)), band);
    } else {
        band(0, height, pBuffer, 0);
    }
    return rvpStsNoErr;
}

RvpStatus fixedQuery(SizeKind kind, int tail, RvpiSize roi, int maskSize, int* pBufferSize) {
    if (pBufferSize == nullptr) return rvpStsNullPtrErr;
    if (roi.width < 1 || roi.height < 1) return rvpStsSizeErr;
    const int n = maskN(maskSize);
    if (n == 0) return rvpStsMaskSizeErr;
    return storeSize(fixedBytes(kind, roi, n, owncvGetMaxNumThreads(), tail), pBufferSize);
}

// Row and column indices: {3x3}, {5x5}, {second 5x5 pass}.
constexpr FilterDef kSobelHoriz{{6, 1}, {7, 4}, {0, -1}};
constexpr FilterDef kSobelVert{{2, 2}, {3, 3}, {0, -1}};
constexpr FilterDef kSobelNegVert{{2, 11}, {3, 12}, {0, -1}};
constexpr FilterDef kSobelHorizSecond{{6, 5}, {7, 6}, {0, -1}};
constexpr FilterDef kSobelVertSecond{{4, 2}, {5, 3}, {0, -1}};
constexpr FilterDef kSobelCross{{2, 1}, {3, 4}, {0, -1}};
constexpr FilterDef kScharrHoriz{{1, 1}, {1, 1}, {0, -1}};
constexpr FilterDef kScharrVert{{0, 0}, {0, 0}, {0, -1}};
constexpr FilterDef kLaplacian{{10, 7}, {7, 6}, {5, 8}};
constexpr FilterDef kLowpass8u{{8, 0}, {9, 1}, {0, -1}};
constexpr FilterDef kLowpass32f{{8, 9}, {9, 10}, {0, -1}};

}  // namespace
}  // namespace filt
}  // namespace rvcv

using namespace rvcv;
using namespace rvcv::filt;

#define RVCV_FIXED(Name, def, kind8, kind32f, tail16s)                                                              \
    RVCV_EXPORT RvpStatus rvpiFilter##Name##Border_8u16s_C1R(const Rvp8u* pSrc, int srcStep, Rvp16s* pDst,          \
                                                             int dstStep, RvpiSize roiSize, int maskSize,           \
                                                             int borderType, Rvp8u borderValue, Rvp8u* pBuffer) {   \
        return fixedFilter<Rvp8u, Rvp16s, Rvp16s>(def, kind8, tail16s, pSrc, srcStep, pDst, dstStep, roiSize,       \
                                                  maskSize, borderType, borderValue, pBuffer);                      \
    }                                                                                                               \
    RVCV_EXPORT RvpStatus rvpiFilter##Name##Border_8u8s_C1R(const Rvp8u* pSrc, int srcStep, Rvp8s* pDst,            \
                                                            int dstStep, RvpiSize roiSize, int maskSize,            \
                                                            int borderType, Rvp8u borderValue, Rvp8u* pBuffer) {    \
        return fixedFilter<Rvp8u, Rvp16s, Rvp8s>(def, kind8, 32, pSrc, srcStep, pDst, dstStep, roiSize, maskSize,   \
                                                 borderType, borderValue, pBuffer);                                 \
    }                                                                                                               \
    RVCV_EXPORT RvpStatus rvpiFilter##Name##Border_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst,           \
                                                           int dstStep, RvpiSize roiSize, int maskSize,             \
                                                           int borderType, Rvp32f borderValue, Rvp8u* pBuffer) {    \
        return fixedFilter<Rvp32f, Rvp32f, Rvp32f>(def, kind32f, 32, pSrc, srcStep, pDst, dstStep, roiSize,         \
                                                   maskSize, borderType, borderValue, pBuffer);                     \
    }                                                                                                               \
    RVCV_EXPORT RvpStatus rvpiFilter##Name##GetBufferSize_8u16s_C1R(RvpiSize roiSize, int maskSize,                 \
                                                                    int* pBufferSize) {                             \
        return fixedQuery(kind8, tail16s, roiSize, maskSize, pBufferSize);                                          \
    }                                                                                                               \
    RVCV_EXPORT RvpStatus rvpiFilter##Name##GetBufferSize_8u8s_C1R(RvpiSize roiSize, int maskSize,                  \
                                                                   int* pBufferSize) {                              \
        return fixedQuery(kind8, 32, roiSize, maskSize, pBufferSize);                                               \
    }                                                                                                               \
    RVCV_EXPORT RvpStatus rvpiFilter##Name##GetBufferSize_32f_C1R(RvpiSize roiSize, int maskSize,                   \
                                                                  int* pBufferSize) {                               \
        return fixedQuery(kind32f, 32, roiSize, maskSize, pBufferSize);                                             \
    }

RVCV_FIXED(SobelHoriz, kSobelHoriz, SizeKind::Sobel8u, SizeKind::Sobel32f, 64)
RVCV_FIXED(SobelVert, kSobelVert, SizeKind::Sobel8u, SizeKind::Sobel32f, 32)
RVCV_FIXED(SobelNegVert, kSobelNegVert, SizeKind::Sobel8u, SizeKind::Sobel32f, 32)
RVCV_FIXED(SobelHorizSecond, kSobelHorizSecond, SizeKind::Sobel8u, SizeKind::Sobel32f, 32)
RVCV_FIXED(SobelVertSecond, kSobelVertSecond, SizeKind::Sobel8u, SizeKind::Sobel32f, 32)
RVCV_FIXED(SobelCross, kSobelCross, SizeKind::Sobel8u, SizeKind::Sobel32f, 32)
RVCV_FIXED(Laplacian, kLaplacian, SizeKind::Lap8u, SizeKind::Lap32f, 32)

// Scharr is 3x3 only and takes no mask size.
#define RVCV_SCHARR(Name, def)                                                                                     \
    RVCV_EXPORT RvpStatus rvpiFilter##Name##Border_8u16s_C1R(const Rvp8u* pSrc, int srcStep, Rvp16s* pDst,         \
                                                             int dstStep, RvpiSize roiSize, int borderType,        \
                                                             Rvp8u borderValue, Rvp8u* pBuffer) {                  \
        return fixedFilter<Rvp8u, Rvp16s, Rvp16s>(def, SizeKind::Scharr8u, 32, pSrc, srcStep, pDst, dstStep,       \
                                                  roiSize, 33, borderType, borderValue, pBuffer);                  \
    }                                                                                                              \
    RVCV_EXPORT RvpStatus rvpiFilter##Name##Border_8u8s_C1R(const Rvp8u* pSrc, int srcStep, Rvp8s* pDst,           \
                                                            int dstStep, RvpiSize roiSize, int borderType,         \
                                                            Rvp8u borderValue, Rvp8u* pBuffer) {                   \
        return fixedFilter<Rvp8u, Rvp16s, Rvp8s>(def, SizeKind::Scharr8u, 32, pSrc, srcStep, pDst, dstStep,        \
                                                 roiSize, 33, borderType, borderValue, pBuffer);                   \
    }                                                                                                              \
    RVCV_EXPORT RvpStatus rvpiFilter##Name##Border_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst,          \
                                                           int dstStep, RvpiSize roiSize, int borderType,          \
                                                           Rvp32f borderValue, Rvp8u* pBuffer) {                   \
        return fixedFilter<Rvp32f, Rvp32f, Rvp32f>(def, SizeKind::Scharr32f, 32, pSrc, srcStep, pDst, dstStep,     \
                                                   roiSize, 33, borderType, borderValue, pBuffer);                 \
    }                                                                                                              \
    RVCV_EXPORT RvpStatus rvpiFilter##Name##GetBufferSize_8u16s_C1R(RvpiSize roiSize, int* pBufferSize) {          \
        return fixedQuery(SizeKind::Scharr8u, 32, roiSize, 33, pBufferSize);                                       \
    }                                                                                                              \
    RVCV_EXPORT RvpStatus rvpiFilter##Name##GetBufferSize_8u8s_C1R(RvpiSize roiSize, int* pBufferSize) {           \
        return fixedQuery(SizeKind::Scharr8u, 32, roiSize, 33, pBufferSize);                                       \
    }                                                                                                              \
    RVCV_EXPORT RvpStatus rvpiFilter##Name##GetBufferSize_32f_C1R(RvpiSize roiSize, int* pBufferSize) {            \
        return fixedQuery(SizeKind::Scharr32f, 32, roiSize, 33, pBufferSize);                                      \
    }

RVCV_SCHARR(ScharrHoriz, kScharrHoriz)
RVCV_SCHARR(ScharrVert, kScharrVert)

RVCV_EXPORT RvpStatus rvpiFilterLowpassBorder_8u_C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                                     RvpiSize roiSize, int maskSize, int borderType,
                                                     Rvp8u borderValue, Rvp8u* pBuffer) {
    return fixedFilter<Rvp8u, Rvp16s, Rvp8u>(kLowpass8u, SizeKind::Sobel8u, 32, pSrc, srcStep, pDst, dstStep, roiSize,
                                             maskSize, borderType, borderValue, pBuffer);
}
RVCV_EXPORT RvpStatus rvpiFilterLowpassBorder_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                                      RvpiSize roiSize, int maskSize, int borderType,
                                                      Rvp32f borderValue, Rvp8u* pBuffer) {
    return fixedFilter<Rvp32f, Rvp32f, Rvp32f>(kLowpass32f, SizeKind::Sobel32f, 32, pSrc, srcStep, pDst, dstStep,
                                               roiSize, maskSize, borderType, borderValue, pBuffer);
}
RVCV_EXPORT RvpStatus rvpiFilterLowpassGetBufferSize_8u_C1R(RvpiSize roiSize, int maskSize, int* pBufferSize) {
    return fixedQuery(SizeKind::Sobel8u, 32, roiSize, maskSize, pBufferSize);
}
RVCV_EXPORT RvpStatus rvpiFilterLowpassGetBufferSize_32f_C1R(RvpiSize roiSize, int maskSize, int* pBufferSize) {
    return fixedQuery(SizeKind::Sobel32f, 32, roiSize, maskSize, pBufferSize);
}
