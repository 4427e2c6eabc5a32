// Corner responses: eigenvalues (and eigenvectors) of the box-smoothed
// structure tensor, built as a pipeline over the library's border filters
// (replicated border) inside one caller buffer. Threads come only from the
// filters; the product and finishing passes run on the calling thread.
#include <emmintrin.h>

#include <cmath>

#include "rvcvframe.h"

namespace rvcv {
namespace {

constexpr int kBorderRepl = rvpBorderRepl;
constexpr float kMinNorm = 1.1920929e-07f;

template <class P> P* alignUp32(P* p) {
    return reinterpret_cast<P*>((reinterpret_cast<uintptr_t>(p) + 31) & ~static_cast<uintptr_t>(31));
}

// Elements per padded intermediate row.
inline int paddedWidth(int w) { return wadd(w, 15) & ~15; }

// The filter set of one source type S, derivatives in D (16s for 8u, 32f
// for 32f); the border value has the source's type.
template <class S_, class D_> struct FilterSet {
    using S = S_;
    using D = D_;
    RvpStatus (*sobelVert)(const S*, int, D*, int, RvpiSize, int, int, S, Rvp8u*);
    RvpStatus (*sobelHoriz)(const S*, int, D*, int, RvpiSize, int, int, S, Rvp8u*);
    RvpStatus (*scharrVert)(const S*, int, D*, int, RvpiSize, int, S, Rvp8u*);
    RvpStatus (*scharrHoriz)(const S*, int, D*, int, RvpiSize, int, S, Rvp8u*);
    RvpStatus (*sobelVertSize)(RvpiSize, int, int*);
    RvpStatus (*sobelHorizSize)(RvpiSize, int, int*);
    RvpStatus (*scharrVertSize)(RvpiSize, int*);
    RvpStatus (*scharrHorizSize)(RvpiSize, int*);
    int bytesPerPixel;  // dx, dy and the three float products
};

constexpr FilterSet<Rvp8u, Rvp16s> kFilters8u{
    rvpiFilterSobelVertBorder_8u16s_C1R,         rvpiFilterSobelHorizBorder_8u16s_C1R,
    rvpiFilterScharrVertBorder_8u16s_C1R,        rvpiFilterScharrHorizBorder_8u16s_C1R,
    rvpiFilterSobelVertGetBufferSize_8u16s_C1R,  rvpiFilterSobelHorizGetBufferSize_8u16s_C1R,
    rvpiFilterScharrVertGetBufferSize_8u16s_C1R, rvpiFilterScharrHorizGetBufferSize_8u16s_C1R,
    16};
constexpr FilterSet<Rvp32f, Rvp32f> kFilters32f{
    rvpiFilterSobelVertBorder_32f_C1R,         rvpiFilterSobelHorizBorder_32f_C1R,
    rvpiFilterScharrVertBorder_32f_C1R,        rvpiFilterScharrHorizBorder_32f_C1R,
    rvpiFilterSobelVertGetBufferSize_32f_C1R,  rvpiFilterSobelHorizGetBufferSize_32f_C1R,
    rvpiFilterScharrVertGetBufferSize_32f_C1R, rvpiFilterScharrHorizGetBufferSize_32f_C1R,
    20};

// Four derivatives as floats.
inline __m128 load4(const Rvp16s* p) {
    const __m128i v = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p));
    return _mm_cvtepi32_ps(_mm_srai_epi32(_mm_unpacklo_epi16(v, v), 16));
}
inline __m128 load4(const Rvp32f* p) { return _mm_load_ps(p); }

template <class F>
RvpStatus bufferSize(const F& f, RvpiSize roi, int apertureSize, int avgWindow, int* pBufferSize) {
    Check c;
    c.ptr(pBufferSize).size(roi);
    c.fail((apertureSize != 3 && apertureSize != 5) || (avgWindow != 3 && avgWindow != 5), rvpStsSizeErr);
    if (RvpStatus st = c) return st;
    int largest = 0, n = 0;
    auto keep = [&](RvpStatus st) {
        if (st == rvpStsNoErr && n > largest) largest = n;
        return st;
    };
    if (RvpStatus st = keep(f.sobelVertSize(roi, apertureSize * 11, &n))) return st;
    if (RvpStatus st = keep(f.sobelHorizSize(roi, apertureSize * 11, &n))) return st;
    // Scharr is asked on the smoothing window, not on the aperture; a Scharr
    // call with a 5x5 window lives on the Sobel sizes.
    if (avgWindow == 3) {
        if (RvpStatus st = keep(f.scharrVertSize(roi, &n))) return st;
        if (RvpStatus st = keep(f.scharrHorizSize(roi, &n))) return st;
    }
    if (RvpStatus st = keep(rvpiFilterLowpassGetBufferSize_32f_C1R(roi, avgWindow * 11, &n))) return st;
    const int64_t area = ((static_cast<int64_t>(roi.width) + 15) & ~int64_t{15}) * roi.height * f.bytesPerPixel;
    return storeSize(area + 224 + largest, pBufferSize);
}

float scaleOf(int kernType, int apertureSize) {
    float s = 1.0f / static_cast<float>((1 << (2 * apertureSize - 2)) * 255);
    if (kernType == 1) s *= 0.6125f;
    return s;
}

// Smoothed products, by role, wherever the smoothing put them.
struct Tensor {
    const Rvp32f* xx;
    const Rvp32f* yy;
    const Rvp32f* xy;
    int wr;
};

// out = ((a + b) - sqrt((a - b)^2 + c c 4)) k, four pixels at a time.
inline __m128 minEigen4(__m128 a, __m128 b, __m128 c, __m128 k) {
    const __m128 dif = _mm_sub_ps(a, b);
    const __m128 cc4 = _mm_mul_ps(_mm_mul_ps(c, c), _mm_set1_ps(4.0f));
    const __m128 root = _mm_sqrt_ps(_mm_add_ps(_mm_mul_ps(dif, dif), cc4));
    return _mm_mul_ps(_mm_sub_ps(_mm_add_ps(a, b), root), k);
}

// The smoothed rows are padded, so whole vectors are computed; the last
// vector of a row is stored lane by lane.
void owncalcMinValues_M7(const Tensor& t, Rvp32f* pDst, int dstStep, RvpiSize roi, float s) {
    const __m128 k = _mm_set1_ps(s * 0.5f);
    for (int y = 0; y < roi.height; ++y) {
        const ptrdiff_t o = static_cast<ptrdiff_t>(y) * t.wr;
        Rvp32f* d = rowPtr(pDst, dstStep, y);
        int x = 0;
        for (; x + 4 <= roi.width; x += 4)
            _mm_storeu_ps(d + x, minEigen4(_mm_load_ps(t.xx + o + x), _mm_load_ps(t.yy + o + x),
                                           _mm_load_ps(t.xy + o + x), k));
        if (x < roi.width) {
            alignas(16) float r[4];
            _mm_store_ps(r, minEigen4(_mm_load_ps(t.xx + o + x), _mm_load_ps(t.yy + o + x),
                                      _mm_load_ps(t.xy + o + x), k));
            for (int i = 0; x + i < roi.width; ++i) d[x + i] = r[i];
        }
    }
}

inline float raise(float n) { return n < kMinNorm ? kMinNorm : n; }

// Eigenvalues and unit eigenvectors of [[a c] [c b]] per pixel; g is the
// sign the vectors carry (-1 for Sobel, 1 for Scharr), never the tests.
void calcValues(const Tensor& t, Rvp32f* pDst, int dstStep, RvpiSize roi, float s, float g) {
    for (int y = 0; y < roi.height; ++y) {
        const ptrdiff_t o = static_cast<ptrdiff_t>(y) * t.wr;
        Rvp32f* d = rowPtr(pDst, dstStep, y);
        for (int x = 0; x < roi.width; ++x, d += 6) {
            const float a = t.xx[o + x] * s, b = t.yy[o + x] * s, c = t.xy[o + x] * s;
            const float e = (a > b ? a : b) * 0.01f;
            const float dif = a - b;
            const float root = _mm_cvtss_f32(_mm_sqrt_ss(_mm_set_ss(c * 4.0f * c + dif * dif)));
            const float l2 = ((a + b) - root) * 0.5f, l1 = ((a + b) + root) * 0.5f;
            if ((a < b ? a : b) < e || a * b - c * c < e) {
                for (int i = 0; i < 6; ++i) d[i] = 0.0f;
            } else if (std::fabs(c) < e) {
                d[0] = l1, d[1] = l2, d[2] = 1.0f, d[3] = 0.0f, d[4] = 0.0f, d[5] = 1.0f;
            } else {
                const float cs = c * g, v1 = -(a - l1), v2 = -(a - l2);
                const float n1 = raise(_mm_cvtss_f32(_mm_sqrt_ss(_mm_set_ss(v1 * v1 + cs * cs))));
                const float n2 = raise(_mm_cvtss_f32(_mm_sqrt_ss(_mm_set_ss(cs * cs + v2 * v2))));
                const float r1 = 1.0f / n1, r2 = 1.0f / n2;
                d[0] = l1, d[1] = l2, d[2] = cs * r1, d[3] = v1 * r1, d[4] = cs * r2, d[5] = v2 * r2;
            }
        }
    }
}

// Derivatives to float, then the three products, over whole padded rows.
template <class D>
void ownMinEigenVal_C1R_M7(const D* dx, const D* dy, Rvp32f* xx, Rvp32f* xy, Rvp32f* yy,
                           ptrdiff_t count) {
    for (ptrdiff_t i = 0; i < count; i += 4) {
        const __m128 fx = load4(dx + i), fy = load4(dy + i);
        _mm_store_ps(xx + i, _mm_mul_ps(fx, fx));
        _mm_store_ps(xy + i, _mm_mul_ps(fx, fy));
        _mm_store_ps(yy + i, _mm_mul_ps(fy, fy));
    }
}

enum class Finish { MinEigen, EigenVecs };

template <Finish K, class F>
RvpStatus corners(const F& f, const typename F::S* pSrc, int srcStep, Rvp32f* pDst, int dstStep, RvpiSize roi,
                  int kernType, int apertureSize, int avgWindow, Rvp8u* pBuffer) {
    using S = typename F::S;
    using D = typename F::D;
    constexpr int srcBytes = static_cast<int>(sizeof(S));
    // The 8u eigenvector form asks for its six floats; the 32f form only one.
    constexpr int dstBytes = (K == Finish::EigenVecs && srcBytes == 1) ? 24 : 4;
    Check c;
    c.ptrs(pSrc, pDst, pBuffer).size(roi);
    c.step(srcStep, wmul(roi.width, srcBytes)).step(dstStep, wmul(roi.width, dstBytes));
    if (srcBytes == 4)
        c.evenSteps(4, dstStep, srcStep);
    else
        c.evenSteps(4, dstStep);
    if (kernType == 0)
        c.fail(apertureSize != 3 && apertureSize != 5, rvpStsSizeErr);
    else if (kernType == 1)
        c.fail(apertureSize != 3, rvpStsSizeErr);
    else
        c.fail(true, rvpStsBadArgErr);
    c.fail(avgWindow != 3 && avgWindow != 5, rvpStsSizeErr);
    if (RvpStatus st = c) return st;
    // Arguments whose buffer size would not fit an int (the query refuses them too).
    int need = 0;
    if (RvpStatus st = bufferSize(f, roi, apertureSize, avgWindow, &need)) return st;

    // Areas: dx, dy, xx, xy, yy, filter scratch; each starts on 32 bytes
    // since padded rows make every area a multiple of 32 bytes.
    const int wr = paddedWidth(roi.width);
    const ptrdiff_t count = static_cast<ptrdiff_t>(wr) * roi.height;
    D* dx = reinterpret_cast<D*>(alignUp32(pBuffer));
    D* dy = dx + count;
    Rvp32f* xx = reinterpret_cast<Rvp32f*>(dy + count);
    Rvp32f* xy = xx + count;
    Rvp32f* yy = xy + count;
    Rvp8u* scratch = reinterpret_cast<Rvp8u*>(yy + count);
    const int derivStep = wmul(wr, static_cast<int>(sizeof(D))), floatStep = wmul(wr, 4);
    const bool threaded = owncvGetMaxNumThreads() > 1;

    RvpStatus st;
    if (kernType == 0) {
        st = f.sobelVert(pSrc, srcStep, dx, derivStep, roi, apertureSize * 11, kBorderRepl, 0, scratch);
        if (st == rvpStsNoErr)
            st = f.sobelHoriz(pSrc, srcStep, dy, derivStep, roi, apertureSize * 11, kBorderRepl, 0, scratch);
    } else {
        st = f.scharrVert(pSrc, srcStep, dx, derivStep, roi, kBorderRepl, 0, scratch);
        if (st == rvpStsNoErr) st = f.scharrHoriz(pSrc, srcStep, dy, derivStep, roi, kBorderRepl, 0, scratch);
    }
    if (st != rvpStsNoErr) return st;
    ownMinEigenVal_C1R_M7(dx, dy, xx, xy, yy, count);

    // In place on one thread; with more, out of place so the filter may run
    // bands: xx over dx (dx and dy together hold one float image), xy over
    // the old xx, yy over the old xy.
    Rvp32f* sxx = threaded ? reinterpret_cast<Rvp32f*>(dx) : xx;
    Rvp32f* sxy = threaded ? xx : xy;
    Rvp32f* syy = threaded ? xy : yy;
    const int mask = avgWindow * 11;
    st = rvpiFilterLowpassBorder_32f_C1R(xx, floatStep, sxx, floatStep, roi, mask, kBorderRepl, 0, scratch);
    if (st == rvpStsNoErr)
        st = rvpiFilterLowpassBorder_32f_C1R(xy, floatStep, sxy, floatStep, roi, mask, kBorderRepl, 0, scratch);
    if (st == rvpStsNoErr)
        st = rvpiFilterLowpassBorder_32f_C1R(yy, floatStep, syy, floatStep, roi, mask, kBorderRepl, 0, scratch);
    if (st != rvpStsNoErr) return st;

    const Tensor t{sxx, syy, sxy, wr};
    const float s = scaleOf(kernType, apertureSize);
    if (K == Finish::MinEigen)
        owncalcMinValues_M7(t, pDst, dstStep, roi, s);
    else
        calcValues(t, pDst, dstStep, roi, s, kernType == 0 ? -1.0f : 1.0f);
    return rvpStsNoErr;
}

}  // namespace
}  // namespace rvcv

using namespace rvcv;

RVCV_EXPORT RvpStatus rvpiEigenValsVecsGetBufferSize_8u32f_C1R(RvpiSize roiSize, int apertureSize, int avgWindow,
                                                               int* pBufferSize) {
    return bufferSize(kFilters8u, roiSize, apertureSize, avgWindow, pBufferSize);
}
RVCV_EXPORT RvpStatus rvpiEigenValsVecsGetBufferSize_32f_C1R(RvpiSize roiSize, int apertureSize, int avgWindow,
                                                             int* pBufferSize) {
    return bufferSize(kFilters32f, roiSize, apertureSize, avgWindow, pBufferSize);
}
RVCV_EXPORT RvpStatus rvpiMinEigenValGetBufferSize_8u32f_C1R(RvpiSize roiSize, int apertureSize, int avgWindow,
                                                             int* pBufferSize) {
    return bufferSize(kFilters8u, roiSize, apertureSize, avgWindow, pBufferSize);
}
RVCV_EXPORT RvpStatus rvpiMinEigenValGetBufferSize_32f_C1R(RvpiSize roiSize, int apertureSize, int avgWindow,
                                                           int* pBufferSize) {
    return bufferSize(kFilters32f, roiSize, apertureSize, avgWindow, pBufferSize);
}

RVCV_EXPORT RvpStatus rvpiEigenValsVecs_8u32f_C1R(const Rvp8u* pSrc, int srcStep, Rvp32f* pEigenVV, int eigenVVStep,
                                                  RvpiSize roiSize, int kernType, int apertureSize, int avgWindow,
                                                  Rvp8u* pBuffer) {
    return corners<Finish::EigenVecs>(kFilters8u, pSrc, srcStep, pEigenVV, eigenVVStep, roiSize, kernType,
                                                 apertureSize, avgWindow, pBuffer);
}
RVCV_EXPORT RvpStatus rvpiEigenValsVecs_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pEigenVV, int eigenVVStep,
                                                RvpiSize roiSize, int kernType, int apertureSize, int avgWindow,
                                                Rvp8u* pBuffer) {
    return corners<Finish::EigenVecs>(kFilters32f, pSrc, srcStep, pEigenVV, eigenVVStep, roiSize, kernType,
                                                  apertureSize, avgWindow, pBuffer);
}
RVCV_EXPORT RvpStatus rvpiMinEigenVal_8u32f_C1R(const Rvp8u* pSrc, int srcStep, Rvp32f* pMinEigenVal, int minValStep,
                                                RvpiSize roiSize, int kernType, int apertureSize, int avgWindow,
                                                Rvp8u* pBuffer) {
    return corners<Finish::MinEigen>(kFilters8u, pSrc, srcStep, pMinEigenVal, minValStep, roiSize, kernType,
                                                apertureSize, avgWindow, pBuffer);
}
RVCV_EXPORT RvpStatus rvpiMinEigenVal_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pMinEigenVal, int minValStep,
                                              RvpiSize roiSize, int kernType, int apertureSize, int avgWindow,
                                              Rvp8u* pBuffer) {
    return corners<Finish::MinEigen>(kFilters32f, pSrc, srcStep, pMinEigenVal, minValStep, roiSize, kernType,
                                                 apertureSize, avgWindow, pBuffer);
}
