// Accumulation into a float image: sums, squares, products and weighted
// averages, with and without a mask. Pixel-wise: validation, then one kernel
// call on the caller's thread below 262144 pixels, else one per band. The
// 16u32f forms test each image's step alignment right after its size; the
// others test all sizes first, then the alignment of their float steps.
#include <initializer_list>

#include "rvcvaccum.h"
#include "rvcvcpu.h"
#include "rvcvframe.h"

namespace rvcv {
namespace {

const AccumKernels& kernels() { return pick(m7::kAccum, avx2::kAccum, avx512::kAccum); }

template <class T> struct Source;
template <> struct Source<Rvp8u>  { static constexpr AccumType type = kAcc8u;  static constexpr int align = 0; };
template <> struct Source<Rvp8s>  { static constexpr AccumType type = kAcc8s;  static constexpr int align = 0; };
template <> struct Source<Rvp16u> { static constexpr AccumType type = kAcc16u; static constexpr int align = 1; };
template <> struct Source<Rvp32f> { static constexpr AccumType type = kAcc32f; static constexpr int align = 3; };

// An image's step, the bytes of its row, and the low step bits that must be
// clear (0: no alignment test).
struct StepTest { int step, rowBytes, align; };

RvpStatus checkSteps(Check& c, bool eachImage, std::initializer_list<StepTest> images) {
    int alignedSteps = 0;
    for (const StepTest& t : images) {
        c.step(t.step, t.rowBytes);
        if (eachImage && t.align) c.fail((t.step & t.align) != 0, rvpStsNotEvenStepErr);
        if (t.align) alignedSteps |= t.step;
    }
    if (!eachImage) c.fail((alignedSteps & 3) != 0, rvpStsNotEvenStepErr);
    return c;
}

// Factor for the store choice of the masked forms (0: one store path): the
// bytes the images add up to per pixel, except that the 8-bit weighted forms
// keep 5 and the 32f sum of squares keeps 12.
constexpr int storeFactor(AccumOp op, AccumType t, bool masked) {
    if (!masked) return 0;
    switch (op) {
    case kAccProduct: return t == kAcc16u ? 9 : t == kAcc32f ? 13 : 7;
    case kAccSquare: return t == kAcc32f ? 12 : 0;
    case kAccWeighted: return t == kAcc16u ? 7 : t == kAcc32f ? 9 : 5;
    default: return 0;
    }
}

// Images count as large once the images of a call add up to more than 11 MiB:
// float rows without a mask then run as two streams, with 32-byte accesses at
// the 512-bit level. 64-byte accesses measured up to 40% faster on data the
// inner caches hold, but 5-12% slower once part of it streams from memory: in
// place with alternating source frames, the crossing lay between 1.3 and 1.6
// megapixels (1920x1080 is past it).
bool largeImages(RvpiSize roi, int bytesPerPixel) {
    return int64_t{roi.width} * roi.height * bytesPerPixel > (int64_t{11} << 20);
}

template <class T, AccumOp Op, bool Masked>
RvpStatus accumulate(const T* s1, int st1, const T* s2, int st2, const Rvp8u* m, int sm, Rvp32f* d, int sd,
                     RvpiSize roi, Rvp32f alpha) {
    constexpr bool two = Op == kAccProduct;
    Check c;
    c.ptr(s1);
    if (two) c.ptr(s2);
    if (Masked) c.ptr(m);
    c.ptr(d).size(roi);
    const int w = roi.width;
    const StepTest src1{st1, wmul(w, static_cast<int>(sizeof(T))), Source<T>::align};
    const StepTest src2{st2, src1.rowBytes, Source<T>::align};
    const StepTest mask{sm, w, 0};
    const StepTest acc{sd, wmul(w, 4), 3};
    const bool eachImage = Source<T>::type == kAcc16u;
    if (c == rvpStsNoErr) {
        if (two && Masked) checkSteps(c, eachImage, {src1, src2, mask, acc});
        else if (two) checkSteps(c, eachImage, {src1, src2, acc});
        else if (Masked) checkSteps(c, eachImage, {src1, mask, acc});
        else checkSteps(c, eachImage, {src1, acc});
    }
    if (c != rvpStsNoErr) return c;

    const AccumKernel k = kernels().k[Op][Source<T>::type][Masked];
    constexpr int factor = storeFactor(Op, Source<T>::type, Masked);
    const bool large = largeImages(roi, (two ? 2 : 1) * static_cast<int>(sizeof(T)) + (Masked ? 1 : 0) + 4);
    pixelwise(w, roi.height, [&](int y0, int rows) {
        AccumArgs a{rowPtr(s1, st1, y0), st1, two ? rowPtr(s2, st2, y0) : s1, st2,
                    Masked ? rowPtr(m, sm, y0) : m, sm, rowPtr(d, sd, y0), sd, rowPtr(d, sd, y0), sd,
                    alpha, factor != 0 && wmul(factor, w, rows) >= maxCacheBytes(), large};
        k(a, rows, w);
    });
    return rvpStsNoErr;
}

}  // namespace
}  // namespace rvcv

using namespace rvcv;

#define RVCV_ADD(op, name, sfx, T)                                                                                 \
    RVCV_EXPORT RvpStatus name##_##sfx##_C1IR(const T* pSrc, int srcStep, Rvp32f* pSrcDst, int srcDstStep,         \
                                              RvpiSize roiSize) {                                                 \
        return accumulate<T, op, false>(pSrc, srcStep, nullptr, 0, nullptr, 0, pSrcDst, srcDstStep, roiSize, 0.0f); \
    }
#define RVCV_ADD_M(op, name, sfx, T)                                                                               \
    RVCV_EXPORT RvpStatus name##_##sfx##_C1IMR(const T* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,       \
                                               Rvp32f* pSrcDst, int srcDstStep, RvpiSize roiSize) {               \
        return accumulate<T, op, true>(pSrc, srcStep, nullptr, 0, pMask, maskStep, pSrcDst, srcDstStep, roiSize,   \
                                       0.0f);                                                                     \
    }
#define RVCV_PRODUCT(sfx, T)                                                                                       \
    RVCV_EXPORT RvpStatus rvpiAddProduct_##sfx##_C1IR(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step,  \
                                                      Rvp32f* pSrcDst, int srcDstStep, RvpiSize roiSize) {        \
        return accumulate<T, kAccProduct, false>(pSrc1, src1Step, pSrc2, src2Step, nullptr, 0, pSrcDst, srcDstStep, \
                                                 roiSize, 0.0f);                                                  \
    }                                                                                                             \
    RVCV_EXPORT RvpStatus rvpiAddProduct_##sfx##_C1IMR(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, \
                                                       const Rvp8u* pMask, int maskStep, Rvp32f* pSrcDst,         \
                                                       int srcDstStep, RvpiSize roiSize) {                        \
        return accumulate<T, kAccProduct, true>(pSrc1, src1Step, pSrc2, src2Step, pMask, maskStep, pSrcDst,        \
                                                srcDstStep, roiSize, 0.0f);                                       \
    }
#define RVCV_WEIGHTED(sfx, T)                                                                                      \
    RVCV_EXPORT RvpStatus rvpiAddWeighted_##sfx##_C1IR(const T* pSrc, int srcStep, Rvp32f* pSrcDst, int srcDstStep, \
                                                       RvpiSize roiSize, Rvp32f alpha) {                          \
        return accumulate<T, kAccWeighted, false>(pSrc, srcStep, nullptr, 0, nullptr, 0, pSrcDst, srcDstStep,      \
                                                  roiSize, alpha);                                                \
    }                                                                                                             \
    RVCV_EXPORT RvpStatus rvpiAddWeighted_##sfx##_C1IMR(const T* pSrc, int srcStep, const Rvp8u* pMask,            \
                                                        int maskStep, Rvp32f* pSrcDst, int srcDstStep,            \
                                                        RvpiSize roiSize, Rvp32f alpha) {                         \
        return accumulate<T, kAccWeighted, true>(pSrc, srcStep, nullptr, 0, pMask, maskStep, pSrcDst, srcDstStep,  \
                                                 roiSize, alpha);                                                 \
    }

RVCV_ADD(kAccAdd, rvpiAdd, 8u32f, Rvp8u)
RVCV_ADD(kAccAdd, rvpiAdd, 8s32f, Rvp8s)
RVCV_ADD(kAccAdd, rvpiAdd, 16u32f, Rvp16u)
RVCV_ADD_M(kAccAdd, rvpiAdd, 8u32f, Rvp8u)
RVCV_ADD_M(kAccAdd, rvpiAdd, 8s32f, Rvp8s)
RVCV_ADD_M(kAccAdd, rvpiAdd, 16u32f, Rvp16u)
RVCV_ADD_M(kAccAdd, rvpiAdd, 32f, Rvp32f)
RVCV_ADD(kAccSquare, rvpiAddSquare, 8u32f, Rvp8u)
RVCV_ADD(kAccSquare, rvpiAddSquare, 8s32f, Rvp8s)
RVCV_ADD(kAccSquare, rvpiAddSquare, 16u32f, Rvp16u)
RVCV_ADD(kAccSquare, rvpiAddSquare, 32f, Rvp32f)
RVCV_ADD_M(kAccSquare, rvpiAddSquare, 8u32f, Rvp8u)
RVCV_ADD_M(kAccSquare, rvpiAddSquare, 8s32f, Rvp8s)
RVCV_ADD_M(kAccSquare, rvpiAddSquare, 16u32f, Rvp16u)
RVCV_ADD_M(kAccSquare, rvpiAddSquare, 32f, Rvp32f)
RVCV_PRODUCT(8u32f, Rvp8u)
RVCV_PRODUCT(8s32f, Rvp8s)
RVCV_PRODUCT(16u32f, Rvp16u)
RVCV_PRODUCT(32f, Rvp32f)
RVCV_WEIGHTED(8u32f, Rvp8u)
RVCV_WEIGHTED(8s32f, Rvp8s)
RVCV_WEIGHTED(16u32f, Rvp16u)
RVCV_WEIGHTED(32f, Rvp32f)

// Out of place, on the caller's thread: pDst = pSrc2 + (pSrc1 - pSrc2) * alpha.
RVCV_EXPORT RvpStatus rvpiAddWeighted_32f_C1R(const Rvp32f* pSrc1, int src1Step, const Rvp32f* pSrc2, int src2Step,
                                              Rvp32f* pDst, int dstStep, RvpiSize roiSize, Rvp32f alpha) {
    Check c;
    c.ptrs(pSrc1, pSrc2, pDst).size(roiSize);
    const int rowBytes = wmul(roiSize.width, 4);
    if (c == rvpStsNoErr) checkSteps(c, false, {{src1Step, rowBytes, 3}, {src2Step, rowBytes, 3}, {dstStep, rowBytes, 3}});
    if (c != rvpStsNoErr) return c;
    AccumArgs a{pSrc1, src1Step, pSrc1, src1Step, nullptr, 0, pSrc2, src2Step, pDst, dstStep, alpha, false,
                largeImages(roiSize, 12)};
    kernels().k[kAccWeighted][kAcc32f][0](a, roiSize.height, roiSize.width);
    return rvpStsNoErr;
}
