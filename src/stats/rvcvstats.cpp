// Masked norms and statistics: Inf, L1 and L2 norms of an image, of a
// difference and relative, mean, mean with standard deviation, and the
// extremes with their first positions. Each band of rows is reduced into a
// slot of its thread and the slots are combined in thread order (the
// reduction region), so one team size gives one result. Integer samples are
// summed exactly in 64-bit integers row by row; floats in double, in four
// partial sums a row by position, combined in a fixed order.
#include <cmath>
#include <initializer_list>
#include <utility>
#include <type_traits>

#include "rvcvcpu.h"
#include "rvcvframe.h"
#include "rvcvstats.h"

namespace rvcv {
namespace {

template <class T> constexpr int typeIndex() {
    return std::is_same<T, Rvp8u>::value ? 0 : std::is_same<T, Rvp8s>::value ? 1 : std::is_same<T, Rvp16u>::value ? 2 : 3;
}

const StatsKernels& kernels() { return pick(m7::kStats, avx2::kStats, avx512::kStats); }

// One channel of a source, less a second source's or less `center`.
template <class T> struct Plane {
    const T* a;
    int aStep;
    const T* b;  // null: subtract `center`
    int bStep;
    int C;
    double center;
};

struct MaskPlane {
    const Rvp8u* p;  // null: every pixel
    int step;
};

inline StatSums add(StatSums a, const StatSums& b) {
    a.sum += b.sum;
    a.abs += b.abs;
    a.sq += b.sq;
    a.inf = b.inf > a.inf ? b.inf : a.inf;  // a NaN never wins
    a.count += b.count;
    return a;
}

// Bands over threads for images of maxThreads * 131072 pixels and more.
template <class T> StatSums reduce(const Plane<T>& v, const MaskPlane& m, RvpiSize roi) {
    const StatSumBand k = kernels().sums[typeIndex<T>()][v.C == 3][m.p != nullptr][v.b != nullptr];
    const auto band = [&](int y0, int rows, StatSums& s) {
        k(v.a, v.aStep, v.b, v.bStep, m.p, m.step, y0, rows, roi.width, v.center, s);
    };
    const int maxThreads = owncvGetMaxNumThreads();
    if (static_cast<int64_t>(roi.width) * roi.height < static_cast<int64_t>(maxThreads) * 131072 || maxThreads <= 1) {
        StatSums s{};
        band(0, roi.height, s);
        return s;
    }
    return reductionRegion(roi.height, maxThreads, StatSums{}, band, add);
}

// The usual tests: null pointers, size, steps (each source's row bytes, the
// mask's width), step multiples of the sample size, then the channel.
template <class T, class... P>
RvpStatus validate(RvpiSize roi, int C, int coi, const Rvp8u* mask, bool masked, int maskStep,
                   std::initializer_list<std::pair<const void*, int>> sources, const P*... outs) {
    Check c;
    for (const auto& s : sources) c.ptr(s.first);
    if (masked) c.ptr(mask);
    c.ptrs(outs...).size(roi);
    const int64_t rowBytes = static_cast<int64_t>(roi.width) * C * static_cast<int64_t>(sizeof(T));
    c.fail(c == rvpStsNoErr && rowBytes > INT32_MAX, rvpStsStepErr);
    for (const auto& s : sources) c.step(s.second, static_cast<int>(rowBytes > INT32_MAX ? INT32_MAX : rowBytes));
    if (masked) c.step(maskStep, roi.width);
    for (const auto& s : sources) c.evenSteps(static_cast<int>(sizeof(T)), s.second);
    c.fail(C == 3 && (coi < 1 || coi > 3), rvpStsCOIErr);
    return c;
}

template <int K> double normOf(const StatSums& s) {
    return K == 0 ? s.inf : K == 1 ? s.abs : std::sqrt(s.sq);
}

// Norm (two == false) or the norm of a difference.
template <class T, int K>
RvpStatus norm(const T* a, int aStep, const T* b, int bStep, bool two, const Rvp8u* mask, int maskStep, bool masked,
               RvpiSize roi, int C, int coi, Rvp64f* out) {
    if (RvpStatus st = two ? validate<T>(roi, C, coi, mask, masked, maskStep, {{a, aStep}, {b, bStep}}, out)
                           : validate<T>(roi, C, coi, mask, masked, maskStep, {{a, aStep}}, out))
        return st;
    const int ch = C == 3 ? coi - 1 : 0;
    const StatSums s = reduce(Plane<T>{a + ch, aStep, two ? b + ch : nullptr, bStep, C, 0.0}, MaskPlane{mask, maskStep}, roi);
    if (s.count == 0) return rvpStsSizeErr;
    *out = normOf<K>(s);
    return rvpStsNoErr;
}

template <class T, int K>
RvpStatus normRel(const T* a, int aStep, const T* b, int bStep, const Rvp8u* mask, int maskStep, RvpiSize roi, int C,
                  int coi, Rvp64f* out) {
    if (RvpStatus st = validate<T>(roi, C, coi, mask, true, maskStep, {{a, aStep}, {b, bStep}}, out)) return st;
    const int ch = C == 3 ? coi - 1 : 0;
    const MaskPlane m{mask, maskStep};
    const StatSums diff = reduce(Plane<T>{a + ch, aStep, b + ch, bStep, C, 0.0}, m, roi);
    if (diff.count == 0) return rvpStsSizeErr;
    const StatSums den = reduce(Plane<T>{b + ch, bStep, nullptr, 0, C, 0.0}, m, roi);
    const double d = normOf<K>(den);
    *out = normOf<K>(diff) / d;
    return d == 0.0 ? rvpStsDivByZero : rvpStsNoErr;
}

template <class T>
RvpStatus meanStd(const T* a, int aStep, const Rvp8u* mask, int maskStep, bool masked, RvpiSize roi, int C, int coi,
                  Rvp64f* mean, Rvp64f* stdDev, bool wantStd) {
    if (RvpStatus st = wantStd ? validate<T>(roi, C, coi, mask, masked, maskStep, {{a, aStep}}, mean, stdDev)
                              : validate<T>(roi, C, coi, mask, masked, maskStep, {{a, aStep}}, mean))
        return st;
    const int ch = C == 3 ? coi - 1 : 0;
    const MaskPlane m{masked ? mask : nullptr, maskStep};
    const StatSums s = reduce(Plane<T>{a + ch, aStep, nullptr, 0, C, 0.0}, m, roi);
    if (s.count == 0) return rvpStsSizeErr;
    const double n = static_cast<double>(s.count), mu = s.sum / n;
    double var;
    if constexpr (std::is_integral<T>::value) {
        var = (s.sq - s.sum * mu) / n;  // the sums are exact integers
    } else {
        // Floats: a second pass around the mean.
        var = reduce(Plane<T>{a + ch, aStep, nullptr, 0, C, mu}, m, roi).sq / n;
    }
    *mean = mu;
    if (wantStd) *stdDev = std::sqrt(var > 0.0 ? var : 0.0);
    return rvpStsNoErr;
}

// ---- Extremes ----------------------------------------------------------------
// Earlier bands first: a later band wins only with a strictly better value.
inline StatExtremes better(StatExtremes a, const StatExtremes& b) {
    if (!b.any) return a;
    if (!a.any) return b;
    if (b.lo < a.lo) a.lo = b.lo, a.loX = b.loX, a.loY = b.loY;
    if (b.hi > a.hi) a.hi = b.hi, a.hiX = b.hiX, a.hiY = b.hiY;
    return a;
}

template <class T>
RvpStatus minMax(const T* a, int aStep, const Rvp8u* mask, int maskStep, bool masked, RvpiSize roi, int C, int coi,
                 Rvp32f* lo, Rvp32f* hi, RvpiPoint* loAt, RvpiPoint* hiAt) {
    if (RvpStatus st = validate<T>(roi, C, coi, mask, masked, maskStep, {{a, aStep}}, lo, hi, loAt, hiAt)) return st;
    const T* src = a + (C == 3 ? coi - 1 : 0);
    const Rvp8u* m = masked ? mask : nullptr;
    const StatExtBand k = kernels().extremes[typeIndex<T>()][C == 3][masked];
    const auto band = [&](int y0, int rows, StatExtremes& e) { k(src, aStep, m, maskStep, y0, rows, roi.width, e); };
    StatExtremes e{};
    const int threads = owncvGetMaxNumThreads();
    if (static_cast<int64_t>(roi.width) * roi.height < 16384 || threads <= 1) band(0, roi.height, e);
    else e = reductionRegion(roi.height, threads, StatExtremes{}, band, better);
    if (!e.any) {
        // No sample but NaN: the values are NaN at the first selected pixel.
        int x = 0, y = 0;
        if (m) {
            for (; y < roi.height; ++y) {
                const Rvp8u* r = rowPtr(m, maskStep, y);
                for (x = 0; x < roi.width && !r[x]; ++x) {
                }
                if (x < roi.width) break;
            }
            if (y == roi.height) return rvpStsSizeErr;
        }
        *lo = *hi = static_cast<Rvp32f>(NAN);
        *loAt = *hiAt = RvpiPoint{x, y};
        return rvpStsNoErr;
    }
    *lo = static_cast<Rvp32f>(e.lo);
    *hi = static_cast<Rvp32f>(e.hi);
    *loAt = RvpiPoint{e.loX, e.loY};
    *hiAt = RvpiPoint{e.hiX, e.hiY};
    return rvpStsNoErr;
}

}  // namespace
}  // namespace rvcv

using namespace rvcv;

#define RVCV_NORMS(KIND, K, TAG, T)                                                                                    \
    RVCV_EXPORT RvpStatus rvpiNorm_##KIND##_##TAG##_C1MR(const T* pSrc, int srcStep, const Rvp8u* pMask,               \
                                                          int maskStep, RvpiSize roiSize, Rvp64f* pValue) {            \
        return norm<T, K>(pSrc, srcStep, pSrc, srcStep, false, pMask, maskStep, true, roiSize, 1, 1, pValue);          \
    }                                                                                                                  \
    RVCV_EXPORT RvpStatus rvpiNorm_##KIND##_##TAG##_C3CMR(const T* pSrc, int srcStep, const Rvp8u* pMask,              \
                                                           int maskStep, RvpiSize roiSize, int coi,                    \
                                                           Rvp64f* pValue) {                                           \
        return norm<T, K>(pSrc, srcStep, pSrc, srcStep, false, pMask, maskStep, true, roiSize, 3, coi, pValue);        \
    }                                                                                                                  \
    RVCV_EXPORT RvpStatus rvpiNormDiff_##KIND##_##TAG##_C1MR(const T* pSrc1, int src1Step, const T* pSrc2,             \
                                                              int src2Step, const Rvp8u* pMask, int maskStep,          \
                                                              RvpiSize roiSize, Rvp64f* pValue) {                      \
        return norm<T, K>(pSrc1, src1Step, pSrc2, src2Step, true, pMask, maskStep, true, roiSize, 1, 1, pValue);       \
    }                                                                                                                  \
    RVCV_EXPORT RvpStatus rvpiNormDiff_##KIND##_##TAG##_C3CMR(const T* pSrc1, int src1Step, const T* pSrc2,            \
                                                               int src2Step, const Rvp8u* pMask, int maskStep,         \
                                                               RvpiSize roiSize, int coi, Rvp64f* pValue) {            \
        return norm<T, K>(pSrc1, src1Step, pSrc2, src2Step, true, pMask, maskStep, true, roiSize, 3, coi, pValue);     \
    }                                                                                                                  \
    RVCV_EXPORT RvpStatus rvpiNormRel_##KIND##_##TAG##_C1MR(const T* pSrc1, int src1Step, const T* pSrc2,              \
                                                             int src2Step, const Rvp8u* pMask, int maskStep,           \
                                                             RvpiSize roiSize, Rvp64f* pValue) {                       \
        return normRel<T, K>(pSrc1, src1Step, pSrc2, src2Step, pMask, maskStep, roiSize, 1, 1, pValue);                \
    }                                                                                                                  \
    RVCV_EXPORT RvpStatus rvpiNormRel_##KIND##_##TAG##_C3CMR(const T* pSrc1, int src1Step, const T* pSrc2,             \
                                                              int src2Step, const Rvp8u* pMask, int maskStep,          \
                                                              RvpiSize roiSize, int coi, Rvp64f* pValue) {             \
        return normRel<T, K>(pSrc1, src1Step, pSrc2, src2Step, pMask, maskStep, roiSize, 3, coi, pValue);              \
    }

#define RVCV_STATS(TAG, T)                                                                                             \
    RVCV_NORMS(Inf, 0, TAG, T)                                                                                         \
    RVCV_NORMS(L1, 1, TAG, T)                                                                                          \
    RVCV_NORMS(L2, 2, TAG, T)                                                                                          \
    RVCV_EXPORT RvpStatus rvpiMean_##TAG##_C1MR(const T* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,          \
                                                 RvpiSize roiSize, Rvp64f* pMean) {                                    \
        return meanStd(pSrc, srcStep, pMask, maskStep, true, roiSize, 1, 1, pMean, nullptr, false);                    \
    }                                                                                                                  \
    RVCV_EXPORT RvpStatus rvpiMean_##TAG##_C3CMR(const T* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,         \
                                                  RvpiSize roiSize, int coi, Rvp64f* pMean) {                          \
        return meanStd(pSrc, srcStep, pMask, maskStep, true, roiSize, 3, coi, pMean, nullptr, false);                  \
    }                                                                                                                  \
    RVCV_EXPORT RvpStatus rvpiMean_StdDev_##TAG##_C1MR(const T* pSrc, int srcStep, const Rvp8u* pMask,                 \
                                                        int maskStep, RvpiSize roiSize, Rvp64f* pMean,                 \
                                                        Rvp64f* pStdDev) {                                             \
        return meanStd(pSrc, srcStep, pMask, maskStep, true, roiSize, 1, 1, pMean, pStdDev, true);                     \
    }                                                                                                                  \
    RVCV_EXPORT RvpStatus rvpiMean_StdDev_##TAG##_C3CMR(const T* pSrc, int srcStep, const Rvp8u* pMask,                \
                                                         int maskStep, RvpiSize roiSize, int coi, Rvp64f* pMean,       \
                                                         Rvp64f* pStdDev) {                                            \
        return meanStd(pSrc, srcStep, pMask, maskStep, true, roiSize, 3, coi, pMean, pStdDev, true);                   \
    }                                                                                                                  \
    RVCV_EXPORT RvpStatus rvpiMean_StdDev_##TAG##_C1R(const T* pSrc, int srcStep, RvpiSize roiSize, Rvp64f* pMean,     \
                                                       Rvp64f* pStdDev) {                                              \
        return meanStd(pSrc, srcStep, nullptr, 0, false, roiSize, 1, 1, pMean, pStdDev, true);                         \
    }                                                                                                                  \
    RVCV_EXPORT RvpStatus rvpiMean_StdDev_##TAG##_C3CR(const T* pSrc, int srcStep, RvpiSize roiSize, int coi,          \
                                                        Rvp64f* pMean, Rvp64f* pStdDev) {                              \
        return meanStd(pSrc, srcStep, nullptr, 0, false, roiSize, 3, coi, pMean, pStdDev, true);                       \
    }                                                                                                                  \
    RVCV_EXPORT RvpStatus rvpiMinMaxIndx_##TAG##_C1MR(const T* pSrc, int srcStep, const Rvp8u* pMask,                  \
                                                       int maskStep, RvpiSize roiSize, Rvp32f* pMinVal,                \
                                                       Rvp32f* pMaxVal, RvpiPoint* pMinIndex,                          \
                                                       RvpiPoint* pMaxIndex) {                                         \
        return minMax(pSrc, srcStep, pMask, maskStep, true, roiSize, 1, 1, pMinVal, pMaxVal, pMinIndex, pMaxIndex);    \
    }                                                                                                                  \
    RVCV_EXPORT RvpStatus rvpiMinMaxIndx_##TAG##_C3CMR(const T* pSrc, int srcStep, const Rvp8u* pMask,                 \
                                                        int maskStep, RvpiSize roiSize, int coi, Rvp32f* pMinVal,      \
                                                        Rvp32f* pMaxVal, RvpiPoint* pMinIndex,                         \
                                                        RvpiPoint* pMaxIndex) {                                        \
        return minMax(pSrc, srcStep, pMask, maskStep, true, roiSize, 3, coi, pMinVal, pMaxVal, pMinIndex,              \
                      pMaxIndex);                                                                                      \
    }                                                                                                                  \
    RVCV_EXPORT RvpStatus rvpiMinMaxIndx_##TAG##_C1R(const T* pSrc, int srcStep, RvpiSize roiSize, Rvp32f* pMinVal,    \
                                                      Rvp32f* pMaxVal, RvpiPoint* pMinIndex, RvpiPoint* pMaxIndex) {   \
        return minMax(pSrc, srcStep, nullptr, 0, false, roiSize, 1, 1, pMinVal, pMaxVal, pMinIndex, pMaxIndex);        \
    }                                                                                                                  \
    RVCV_EXPORT RvpStatus rvpiMinMaxIndx_##TAG##_C3CR(const T* pSrc, int srcStep, RvpiSize roiSize, int coi,           \
                                                       Rvp32f* pMinVal, Rvp32f* pMaxVal, RvpiPoint* pMinIndex,         \
                                                       RvpiPoint* pMaxIndex) {                                         \
        return minMax(pSrc, srcStep, nullptr, 0, false, roiSize, 3, coi, pMinVal, pMaxVal, pMinIndex, pMaxIndex);      \
    }

RVCV_STATS(8u, Rvp8u)
RVCV_STATS(8s, Rvp8s)
RVCV_STATS(16u, Rvp16u)
RVCV_STATS(32f, Rvp32f)
