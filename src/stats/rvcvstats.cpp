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

#include "rvcvframe.h"

namespace rvcv {
namespace {

// A pixel's value: channel `coi` of the first source, less that of the
// second source or less `center`.
template <class T> struct Value {
    const T* a;
    int aStep;
    const T* b;  // null: subtract `center`
    int bStep;
    int C, coi;
    double center;
};

struct MaskPlane {
    const Rvp8u* p;
    int step;
    const Rvp8u* row(int y) const { return p ? rowPtr(p, step, y) : nullptr; }
};

// Partial results of a band: sum, sum of |x|, sum of squares, largest |x|.
struct Sums {
    double sum = 0, abs = 0, sq = 0, inf = 0;
    int64_t count = 0;
};

inline Sums add(Sums a, const Sums& b) {
    a.sum += b.sum;
    a.abs += b.abs;
    a.sq += b.sq;
    a.inf = b.inf > a.inf ? b.inf : a.inf;  // a NaN never wins
    a.count += b.count;
    return a;
}

template <class T> void sumRow(const Value<T>& v, const MaskPlane& m, int y, int w, Sums& s) {
    const Rvp8u* mk = m.row(y);
    const T* a = rowPtr(v.a, v.aStep, y) + v.coi;
    const T* b = v.b ? rowPtr(v.b, v.bStep, y) + v.coi : nullptr;
    const int C = v.C;
    if constexpr (std::is_integral<T>::value) {
        // Exact: |x| < 2^16, x^2 < 2^32, a row of them well inside 2^63.
        int64_t s1 = 0, sa = 0, s2 = 0, inf = 0, n = 0;
        const int64_t c = static_cast<int64_t>(v.center);
        for (int x = 0; x < w; ++x) {
            const int64_t on = mk ? (mk[x] != 0) : 1;
            const int64_t d = (static_cast<int64_t>(a[x * C]) - (b ? static_cast<int64_t>(b[x * C]) : c)) * on;
            const int64_t ad = d < 0 ? -d : d;
            s1 += d;
            sa += ad;
            s2 += d * d;
            inf = ad > inf ? ad : inf;
            n += on;
        }
        s.sum += static_cast<double>(s1);
        s.abs += static_cast<double>(sa);
        s.sq += static_cast<double>(s2);
        s.inf = static_cast<double>(inf) > s.inf ? static_cast<double>(inf) : s.inf;
        s.count += n;
    } else {
        double p1[4] = {0, 0, 0, 0}, pa[4] = {0, 0, 0, 0}, p2[4] = {0, 0, 0, 0};
        double inf = s.inf;
        int64_t n = 0;
        for (int x = 0; x < w; ++x) {
            if (mk && !mk[x]) continue;
            const double d = static_cast<double>(a[x * C]) - (b ? static_cast<double>(b[x * C]) : v.center);
            const double ad = std::fabs(d);
            p1[x & 3] += d;
            pa[x & 3] += ad;
            p2[x & 3] += d * d;
            inf = ad > inf ? ad : inf;
            ++n;
        }
        s.sum += (p1[0] + p1[1]) + (p1[2] + p1[3]);
        s.abs += (pa[0] + pa[1]) + (pa[2] + pa[3]);
        s.sq += (p2[0] + p2[1]) + (p2[2] + p2[3]);
        s.inf = inf;
        s.count += n;
    }
}

// Bands over threads for images of maxThreads * 131072 pixels and more.
template <class T> Sums reduce(const Value<T>& v, const MaskPlane& m, RvpiSize roi) {
    const auto band = [&](int y0, int rows, Sums& s) {
        for (int y = y0; y < y0 + rows; ++y) sumRow(v, m, y, roi.width, s);
    };
    const int maxThreads = owncvGetMaxNumThreads();
    if (static_cast<int64_t>(roi.width) * roi.height < static_cast<int64_t>(maxThreads) * 131072 || maxThreads <= 1) {
        Sums s;
        band(0, roi.height, s);
        return s;
    }
    return reductionRegion(roi.height, maxThreads, Sums{}, band, add);
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

template <int K> double normOf(const Sums& s) {
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
    const Sums s = reduce(Value<T>{a, aStep, two ? b : nullptr, bStep, C, ch, 0.0}, MaskPlane{mask, maskStep}, roi);
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
    const Sums diff = reduce(Value<T>{a, aStep, b, bStep, C, ch, 0.0}, m, roi);
    if (diff.count == 0) return rvpStsSizeErr;
    const Sums den = reduce(Value<T>{b, bStep, nullptr, 0, C, ch, 0.0}, m, roi);
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
    const MaskPlane m{mask, masked ? maskStep : 0};
    const Sums s = reduce(Value<T>{a, aStep, nullptr, 0, C, ch, 0.0}, m, roi);
    if (s.count == 0) return rvpStsSizeErr;
    const double n = static_cast<double>(s.count), mu = s.sum / n;
    double var;
    if constexpr (std::is_integral<T>::value) {
        var = (s.sq - s.sum * mu) / n;  // the sums are exact integers
    } else {
        // Floats: a second pass around the mean.
        var = reduce(Value<T>{a, aStep, nullptr, 0, C, ch, mu}, m, roi).sq / n;
    }
    *mean = mu;
    if (wantStd) *stdDev = std::sqrt(var > 0.0 ? var : 0.0);
    return rvpStsNoErr;
}

// ---- Extremes ----------------------------------------------------------------
struct Extremes {
    double lo = 0, hi = 0;
    int loX = 0, loY = 0, hiX = 0, hiY = 0;
    bool any = false;   // a sample that is not NaN was met
    bool seen = false;  // any selected pixel was met
    int firstX = 0, firstY = 0;
};

// Earlier bands first: a later band wins only with a strictly better value.
inline Extremes better(Extremes a, const Extremes& b) {
    if (!a.seen) return b;
    if (!b.any) return a;
    if (!a.any) {
        Extremes r = b;
        r.firstX = a.firstX, r.firstY = a.firstY;
        return r;
    }
    if (b.lo < a.lo) a.lo = b.lo, a.loX = b.loX, a.loY = b.loY;
    if (b.hi > a.hi) a.hi = b.hi, a.hiX = b.hiX, a.hiY = b.hiY;
    return a;
}

template <class T>
RvpStatus minMax(const T* a, int aStep, const Rvp8u* mask, int maskStep, bool masked, RvpiSize roi, int C, int coi,
                 Rvp32f* lo, Rvp32f* hi, RvpiPoint* loAt, RvpiPoint* hiAt) {
    if (RvpStatus st = validate<T>(roi, C, coi, mask, masked, maskStep, {{a, aStep}}, lo, hi, loAt, hiAt)) return st;
    const int ch = C == 3 ? coi - 1 : 0;
    const MaskPlane m{mask, masked ? maskStep : 0};
    const auto band = [&](int y0, int rows, Extremes& e) {
        for (int y = y0; y < y0 + rows; ++y) {
            const T* r = rowPtr(a, aStep, y) + ch;
            const Rvp8u* mk = m.row(y);
            for (int x = 0; x < roi.width; ++x) {
                if (mk && !mk[x]) continue;
                if (!e.seen) e.seen = true, e.firstX = x, e.firstY = y;
                const double v = static_cast<double>(r[x * C]);
                if (v != v) continue;  // NaN is no candidate
                if (!e.any) {
                    e.any = true;
                    e.lo = e.hi = v;
                    e.loX = e.hiX = x, e.loY = e.hiY = y;
                    continue;
                }
                if (v < e.lo) e.lo = v, e.loX = x, e.loY = y;
                if (v > e.hi) e.hi = v, e.hiX = x, e.hiY = y;
            }
        }
    };
    Extremes e;
    const int threads = owncvGetMaxNumThreads();
    if (static_cast<int64_t>(roi.width) * roi.height < 16384 || threads <= 1) band(0, roi.height, e);
    else e = reductionRegion(roi.height, threads, Extremes{}, band, better);
    if (!e.seen) return rvpStsSizeErr;
    if (!e.any) {
        // Only NaN: the values are NaN at the first selected pixel.
        *lo = *hi = static_cast<Rvp32f>(NAN);
        *loAt = *hiAt = RvpiPoint{e.firstX, e.firstY};
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
