// Local extrema of a response image, colour gradients folded to one channel,
// and a fast arctangent in degrees.
#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstring>

#include "detect/rvcvarctan.h"
#include "rvcvcpu.h"
#include "rvcvframe.h"

namespace rvcv {
namespace {

// ---- Peaks ------------------------------------------------------------------------
int64_t peakBufferBytes(int roiWidth) { return ((int64_t{roiWidth} + 5) & ~int64_t{3}) * 32 + 32; }

// A positive value is a peak at the maximum of its neighbourhood, a
// non-positive one at the minimum; |v| must exceed the threshold.
inline bool isPeak(Rvp32f v, Rvp32f mx, Rvp32f mn, Rvp32f threshold) {
    if (!(std::fabs(v) > threshold)) return false;
    return v > 0 ? std::fabs(v - mx) <= FLT_MIN : std::fabs(v - mn) <= FLT_MIN;
}
inline bool isPeak(Rvp32s v, Rvp32s mx, Rvp32s mn, Rvp32s threshold) {
    const int32_t a = v < 0 ? static_cast<int32_t>(0u - static_cast<uint32_t>(v)) : v;  // |INT_MIN| stays negative
    if (!(a > threshold)) return false;
    return v >= 1 ? v == mx : v == mn;
}

template <class T>
RvpStatus findPeaks(const T* pSrc, int srcStep, RvpiSize roi, T threshold, RvpiPoint* pPeak, int maxPeakCount,
                    int* pPeakCount, int norm, int border, Rvp8u* pBuffer) {
    if (!pSrc || !pPeak || !pPeakCount || !pBuffer) return rvpStsNullPtrErr;
    const int W = roi.width, H = roi.height;
    if (W < 1 || H < 1 || maxPeakCount < 1 || border < 1 || static_cast<float>(border) > static_cast<float>(W) * 0.5f ||
        static_cast<float>(border) > static_cast<float>(H) * 0.5f)
        return rvpStsSizeErr;
    if (srcStep / 4 < W) return rvpStsStepErr;
    if (srcStep % 4 != 0) return rvpStsNotEvenStepErr;
    if (norm != 0 && norm != 1) return rvpStsBadArgErr;
    if (!fitsInt(peakBufferBytes(W))) return rvpStsSizeErr;
    *pPeakCount = 0;
    // Rotating rows of three-wide maxima and minima (index x for column x),
    // then the combined rows: eight rows of Wp elements from the buffer.
    const int64_t wp = (int64_t{W} + 3) & ~int64_t{3};
    T* base = reinterpret_cast<T*>((reinterpret_cast<uintptr_t>(pBuffer) + 31) & ~uintptr_t{31});
    T* rmax[3] = {base, base + wp, base + 2 * wp};
    T* rmin[3] = {base + 4 * wp, base + 5 * wp, base + 6 * wp};
    const auto three = [&](int y, T* mx, T* mn) {
        const T* s = rowPtr(pSrc, srcStep, y);
        for (int x = border; x < W - border; ++x) {
            const T a = s[x - 1], b = s[x], c = s[x + 1];
            T hi = a > b ? a : b, lo = a < b ? a : b;
            hi = hi > c ? hi : c, lo = lo < c ? lo : c;
            mx[x] = hi, mn[x] = lo;
        }
    };
    int held[3] = {-1, -1, -1};
    const auto rows = [&](int y) {
        const int k = y % 3;
        if (held[k] != y) three(y, rmax[k], rmin[k]), held[k] = y;
        return k;
    };
    int count = 0;
    for (int y = border; y < H - border; ++y) {
        const T* s = rowPtr(pSrc, srcStep, y);
        const T* up = rowPtr(pSrc, srcStep, y - 1);
        const T* down = rowPtr(pSrc, srcStep, y + 1);
        const int c = rows(y);
        int a = -1, b = -1;
        if (norm == 0) a = rows(y - 1), b = rows(y + 1);
        for (int x = border; x < W - border; ++x) {
            T mx = rmax[c][x], mn = rmin[c][x];
            if (norm == 0) {
                mx = mx > rmax[a][x] ? mx : rmax[a][x], mx = mx > rmax[b][x] ? mx : rmax[b][x];
                mn = mn < rmin[a][x] ? mn : rmin[a][x], mn = mn < rmin[b][x] ? mn : rmin[b][x];
            } else {
                mx = mx > up[x] ? mx : up[x], mx = mx > down[x] ? mx : down[x];
                mn = mn < up[x] ? mn : up[x], mn = mn < down[x] ? mn : down[x];
            }
            if (isPeak(s[x], mx, mn, threshold)) {
                pPeak[count] = RvpiPoint{x, y};
                *pPeakCount = ++count;
                if (count == maxPeakCount) return rvpStsNoErr;
            }
        }
    }
    return rvpStsNoErr;
}

// ---- Colour gradient ----------------------------------------------------------------
inline Rvp8u gradPixel(const Rvp8u* p, int norm) {
    const uint32_t a = p[0], b = p[1], c = p[2];
    if (norm == 0) return static_cast<Rvp8u>(a > b ? (a > c ? a : c) : (b > c ? b : c));
    if (norm == 1) return static_cast<Rvp8u>(((a + b + c) * 0x555u + 0x800u) >> 12);
    return static_cast<Rvp8u>(std::sqrt(static_cast<double>(a * a + b * b + c * c) / 3.0) + 0.5);
}
inline Rvp16u gradPixel(const Rvp16u* p, int norm) {
    const uint32_t a = p[0], b = p[1], c = p[2];
    if (norm == 0) return static_cast<Rvp16u>(a > b ? (a > c ? a : c) : (b > c ? b : c));
    if (norm == 1) return static_cast<Rvp16u>(((a + b + c) * 0x1555u + 0x2000u) >> 14);
    const double da = a, db = b, dc = c;
    return static_cast<Rvp16u>(std::sqrt((da * da + db * db + dc * dc) / 3.0) + 0.5);
}
// Floats: the plain norms. The largest magnitude keeps the first operand on
// a NaN comparison, so a NaN in the first channel gives NaN and one in the
// others is passed over.
inline Rvp32f gradPixel(const Rvp32f* p, int norm) {
    const float a = std::fabs(p[0]), b = std::fabs(p[1]), c = std::fabs(p[2]);
    if (norm == 0) {
        float m = a;
        if (b > m) m = b;
        if (c > m) m = c;
        return m;
    }
    if (norm == 1) return a + b + c;
    return std::sqrt(p[0] * p[0] + p[1] * p[1] + p[2] * p[2]);
}

template <class T>
RvpStatus gradientColorToGray(const T* pSrc, int srcStep, T* pDst, int dstStep, RvpiSize roi, int norm) {
    constexpr int e = static_cast<int>(sizeof(T));
    if (!pSrc || !pDst) return rvpStsNullPtrErr;
    if (roi.width < 1 || roi.height < 1) return rvpStsSizeErr;
    if (srcStep < wmul(wmul(3, roi.width), e) || dstStep < wmul(roi.width, e) || int64_t{roi.width} * 3 * e > INT32_MAX)
        return rvpStsStepErr;
    if (srcStep % e != 0 || dstStep % e != 0) return rvpStsNotEvenStepErr;
    if (norm < 0 || norm > 2) return rvpStsBadArgErr;
    const auto rows = [&](int y0, int y1) {
        for (int y = y0; y < y1; ++y) {
            const T* s = rowPtr(pSrc, srcStep, y);
            T* d = rowPtr(pDst, dstStep, y);
            for (int x = 0; x < roi.width; ++x) d[x] = gradPixel(s + 3 * x, norm);
        }
    };
    // The team: the smaller of the calling region's, H / 16 and W * H / 1024;
    // bands of float(H) / n rows, the products truncated.
    int n = static_cast<int>(std::min<int64_t>(owncvGetNumThreads(),
                                               std::min<int64_t>(roi.height >> 4, (int64_t{roi.width} * roi.height) >> 10)));
    if (n < 2) {
        rows(0, roi.height);
        return rvpStsNoErr;
    }
    n = std::min(n, ownGetNumThreads());
    const float per = static_cast<float>(roi.height) / static_cast<float>(n);
    // Band i is taken by thread i; a smaller team than asked takes the
    // bands in turn, so the bands never change.
#pragma omp parallel num_threads(n)
    {
        const int team = owncvGetNumThreads();
        for (int i = owncvGetIdThreads(); i < n; i += team) {
            const int y0 = static_cast<int>(static_cast<float>(i) * per);
            const int y1 = i == n - 1 ? roi.height : static_cast<int>(static_cast<float>(i + 1) * per);
            rows(y0, std::min(y1, roi.height));
        }
    }
    return rvpStsNoErr;
}

}  // namespace
}  // namespace rvcv

using namespace rvcv;

RVCV_EXPORT RvpStatus rvpiFindPeaks3x3GetBufferSize_32f_C1R(int roiWidth, int* pBufferSize) {
    if (!pBufferSize) return rvpStsNullPtrErr;
    if (roiWidth < 1) return rvpStsSizeErr;
    return storeSize(peakBufferBytes(roiWidth), pBufferSize);
}
RVCV_EXPORT RvpStatus rvpiFindPeaks3x3GetBufferSize_32s_C1R(int roiWidth, int* pBufferSize) {
    return rvpiFindPeaks3x3GetBufferSize_32f_C1R(roiWidth, pBufferSize);
}
RVCV_EXPORT RvpStatus rvpiFindPeaks3x3_32f_C1R(const Rvp32f* pSrc, int srcStep, RvpiSize roiSize, Rvp32f threshold,
                                              RvpiPoint* pPeak, int maxPeakCount, int* pPeakCount, int norm, int border,
                                              Rvp8u* pBuffer) {
    return findPeaks(pSrc, srcStep, roiSize, threshold, pPeak, maxPeakCount, pPeakCount, norm, border, pBuffer);
}
RVCV_EXPORT RvpStatus rvpiFindPeaks3x3_32s_C1R(const Rvp32s* pSrc, int srcStep, RvpiSize roiSize, Rvp32s threshold,
                                              RvpiPoint* pPeak, int maxPeakCount, int* pPeakCount, int norm, int border,
                                              Rvp8u* pBuffer) {
    return findPeaks(pSrc, srcStep, roiSize, threshold, pPeak, maxPeakCount, pPeakCount, norm, border, pBuffer);
}

RVCV_EXPORT RvpStatus rvpiGradientColorToGray_8u_C3C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                                      RvpiSize roiSize, int norm) {
    return gradientColorToGray(pSrc, srcStep, pDst, dstStep, roiSize, norm);
}
RVCV_EXPORT RvpStatus rvpiGradientColorToGray_16u_C3C1R(const Rvp16u* pSrc, int srcStep, Rvp16u* pDst, int dstStep,
                                                       RvpiSize roiSize, int norm) {
    return gradientColorToGray(pSrc, srcStep, pDst, dstStep, roiSize, norm);
}
RVCV_EXPORT RvpStatus rvpiGradientColorToGray_32f_C3C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                                       RvpiSize roiSize, int norm) {
    return gradientColorToGray(pSrc, srcStep, pDst, dstStep, roiSize, norm);
}

// Blocks of 16 pairs go to the kernel of the active instruction set; the
// rest through a block of 16 filled with 1.0.
RVCV_EXPORT RvpStatus rvpibFastArctan_32f(const Rvp32f* pSrcY, const Rvp32f* pSrcX, Rvp32f* pDst, int length) {
    if (!pSrcY || !pSrcX || !pDst) return rvpStsNullPtrErr;
    if (length < 1) return rvpStsSizeErr;
    const ArctanKernel k = pick(m7::kArctan, avx2::kArctan, avx512::kArctan);
    const int body = length & ~15;
    // Arrays larger than the cache are written past it.
    const bool nt = (reinterpret_cast<uintptr_t>(pDst) & 15) == 0 && int64_t{length} * 12 > maxCacheBytes();
    if (body) k(pSrcY, pSrcX, pDst, body, nt);
    if (body < length) {
        const size_t rest = static_cast<size_t>(length - body) * 4;
        alignas(64) float y[16], x[16], d[16];
        for (int i = 0; i < 16; ++i) y[i] = x[i] = 1.0f;
        std::memcpy(y, pSrcY + body, rest);
        std::memcpy(x, pSrcX + body, rest);
        k(y, x, d, 16, false);
        std::memcpy(pDst + body, d, rest);
    }
    return rvpStsNoErr;
}
