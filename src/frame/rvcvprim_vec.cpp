// Vector primitives shared by the families: copies, fills, element-wise
// minimum and maximum, widening, scaling by a constant, square roots and an
// ascending sort. Each tests its pointers, then len < 1, and runs on the
// calling thread.
#include <cmath>

#include "rvcvframe.h"
#include "rvcvprim.h"

namespace rvcv {
namespace {

template <class... P>
RvpStatus checkVec(int len, const P*... p) {
    Check c;
    return c.ptrs(p...).fail(len < 1, rvpStsSizeErr);
}

template <class T>
RvpStatus copyVec(const T* s, T* d, int len) {
    if (RvpStatus st = checkVec(len, s, d)) return st;
    std::memmove(d, s, static_cast<size_t>(len) * sizeof(T));
    return rvpStsNoErr;
}

template <class T>
RvpStatus setVec(T v, T* d, int len) {
    if (RvpStatus st = checkVec(len, d)) return st;
    for (int i = 0; i < len; ++i) d[i] = v;
    return rvpStsNoErr;
}

// b < a ? b : a keeps a NaN in a, and drops a NaN in b.
template <class T> inline T minKeepFirst(T a, T b) { return b < a ? b : a; }
template <class T> inline T maxKeepFirst(T a, T b) { return b > a ? b : a; }

template <class T, bool Max>
RvpStatus everyVec(const T* a, const T* b, T* d, int len) {
    if (RvpStatus st = checkVec(len, a, b, d)) return st;
    for (int i = 0; i < len; ++i) d[i] = Max ? maxKeepFirst(a[i], b[i]) : minKeepFirst(a[i], b[i]);
    return rvpStsNoErr;
}

// In place: the accumulator is the first operand.
template <class T, bool Max>
RvpStatus everyVecI(const T* s, T* sd, int len) {
    if (RvpStatus st = checkVec(len, s, sd)) return st;
    for (int i = 0; i < len; ++i) sd[i] = Max ? maxKeepFirst(sd[i], s[i]) : minKeepFirst(sd[i], s[i]);
    return rvpStsNoErr;
}

// Quicksort on [lo, hi] with the median of first, middle and last as pivot;
// parts of at most 9 elements finish by insertion. The smaller part recurses,
// so the stack stays logarithmic. No NaN reaches here.
void insertionSort(double* v, int lo, int hi) {
    for (int i = lo + 1; i <= hi; ++i) {
        const double x = v[i];
        int j = i - 1;
        while (j >= lo && v[j] > x) {
            v[j + 1] = v[j];
            --j;
        }
        v[j + 1] = x;
    }
}

void quickSort(double* v, int lo, int hi) {
    while (hi - lo + 1 > 9) {
        const int mid = lo + (hi - lo) / 2;
        if (v[mid] < v[lo]) std::swap(v[mid], v[lo]);
        if (v[hi] < v[lo]) std::swap(v[hi], v[lo]);
        if (v[hi] < v[mid]) std::swap(v[hi], v[mid]);
        const double pivot = v[mid];
        int i = lo, j = hi;
        while (i <= j) {
            while (v[i] < pivot) ++i;
            while (v[j] > pivot) --j;
            if (i <= j) std::swap(v[i++], v[j--]);
        }
        if (j - lo < hi - i) {
            quickSort(v, lo, j);
            lo = i;
        } else {
            quickSort(v, i, hi);
            hi = j;
        }
    }
    insertionSort(v, lo, hi);
}

}  // namespace
}  // namespace rvcv

using namespace rvcv;

extern "C" {

RvpStatus rvpsCopy_8u(const Rvp8u* pSrc, Rvp8u* pDst, int len) { return copyVec(pSrc, pDst, len); }
RvpStatus rvpsCopy_16s(const Rvp16s* pSrc, Rvp16s* pDst, int len) { return copyVec(pSrc, pDst, len); }
RvpStatus rvpsCopy_32f(const Rvp32f* pSrc, Rvp32f* pDst, int len) { return copyVec(pSrc, pDst, len); }
RvpStatus rvpsSet_8u(Rvp8u val, Rvp8u* pDst, int len) { return setVec(val, pDst, len); }
RvpStatus rvpsSet_32s(Rvp32s val, Rvp32s* pDst, int len) { return setVec(val, pDst, len); }
RvpStatus rvpsSet_32f(Rvp32f val, Rvp32f* pDst, int len) { return setVec(val, pDst, len); }
RvpStatus rvpsZero_8u(Rvp8u* pDst, int len) { return setVec<Rvp8u>(0, pDst, len); }
RvpStatus rvpsZero_16s(Rvp16s* pDst, int len) { return setVec<Rvp16s>(0, pDst, len); }
RvpStatus rvpsZero_32s(Rvp32s* pDst, int len) { return setVec<Rvp32s>(0, pDst, len); }
RvpStatus rvpsZero_32f(Rvp32f* pDst, int len) { return setVec<Rvp32f>(0.0f, pDst, len); }

#define RVCV_EVERY(suffix, T)                                                                                     \
    RvpStatus rvpsMinEvery_##suffix(const T* pSrc1, const T* pSrc2, T* pDst, int len) {                          \
        return everyVec<T, false>(pSrc1, pSrc2, pDst, len);                                                       \
    }                                                                                                             \
    RvpStatus rvpsMaxEvery_##suffix(const T* pSrc1, const T* pSrc2, T* pDst, int len) {                          \
        return everyVec<T, true>(pSrc1, pSrc2, pDst, len);                                                        \
    }                                                                                                             \
    RvpStatus rvpsMinEvery_##suffix##_I(const T* pSrc, T* pSrcDst, int len) { return everyVecI<T, false>(pSrc, pSrcDst, len); } \
    RvpStatus rvpsMaxEvery_##suffix##_I(const T* pSrc, T* pSrcDst, int len) { return everyVecI<T, true>(pSrc, pSrcDst, len); }
RVCV_EVERY(8u, Rvp8u)
RVCV_EVERY(16u, Rvp16u)
RVCV_EVERY(32f, Rvp32f)
RVCV_EVERY(64f, Rvp64f)
#undef RVCV_EVERY

RvpStatus rvpsConvert_16u32f(const Rvp16u* pSrc, Rvp32f* pDst, int len) {
    if (RvpStatus st = checkVec(len, pSrc, pDst)) return st;
    for (int i = 0; i < len; ++i) pDst[i] = static_cast<Rvp32f>(pSrc[i]);
    return rvpStsNoErr;
}

RvpStatus rvpsMulC_32f(const Rvp32f* pSrc, Rvp32f val, Rvp32f* pDst, int len) {
    if (RvpStatus st = checkVec(len, pSrc, pDst)) return st;
    if (val == 1.0f) return rvpsCopy_32f(pSrc, pDst, len);
    if (val == 0.0f) return rvpsZero_32f(pDst, len);
    for (int i = 0; i < len; ++i) pDst[i] = pSrc[i] * val;
    return rvpStsNoErr;
}

// Every case (copy, zero, scaled, shifted left, bound) is the scaled-result
// rule applied to the exact 32-bit product.
RvpStatus rvpsMulC_16s_Sfs(const Rvp16s* pSrc, Rvp16s val, Rvp16s* pDst, int len, int scaleFactor) {
    if (RvpStatus st = checkVec(len, pSrc, pDst)) return st;
    if (val == 0 || scaleFactor > 30) return rvpsZero_16s(pDst, len);
    if (scaleFactor == 0 && val == 1) return rvpsCopy_16s(pSrc, pDst, len);
    for (int i = 0; i < len; ++i) pDst[i] = saturate<Rvp16s>(scaleRound(int32_t(pSrc[i]) * val, scaleFactor));
    return rvpStsNoErr;
}

RvpStatus rvpsSqrt_32f(const Rvp32f* pSrc, Rvp32f* pDst, int len) {
    if (RvpStatus st = checkVec(len, pSrc, pDst)) return st;
    bool negative = false;
    for (int i = 0; i < len; ++i) {
        negative |= pSrc[i] < 0.0f;
        pDst[i] = std::sqrt(pSrc[i]);
    }
    return negative ? rvpStsSqrtNegArg : rvpStsNoErr;
}

RvpStatus rvpsSortAscend_64f_I(Rvp64f* pSrcDst, int len) {
    if (RvpStatus st = checkVec(len, pSrcDst)) return st;
    if (len < 2) return rvpStsNoErr;
    // NaNs move to the end first, so the comparisons below see a total order.
    int n = 0;
    for (int i = 0; i < len; ++i)
        if (!std::isnan(pSrcDst[i])) std::swap(pSrcDst[n++], pSrcDst[i]);
    quickSort(pSrcDst, 0, n - 1);
    return rvpStsNoErr;
}

}  // extern "C"
