// Image primitives shared by the families: region copies and fills, copies
// into a larger image with a replicated or constant border, subtraction and
// thresholds. They run on the calling thread (so a band may call them),
// except the subtraction, which opens its own region.
#include <emmintrin.h>

#include "rvcvframe.h"
#include "rvcvprim.h"

namespace rvcv {
namespace {

// Bytes before the first 16-byte boundary of d, at most n.
size_t headBytes(const uint8_t* d, size_t n) {
    const size_t head = (16 - (reinterpret_cast<uintptr_t>(d) & 15)) & 15;
    return head > n ? n : head;
}

// Byte copy or fill of one long row; with nt the 16-byte aligned middle is
// written with stores that bypass the cache.
void copyBytes(const uint8_t* s, uint8_t* d, size_t n, bool nt) {
    if (!nt) {
        std::memmove(d, s, n);
        return;
    }
    const size_t head = headBytes(d, n);
    std::memmove(d, s, head);
    size_t i = head;
    for (; i + 16 <= n; i += 16)
        _mm_stream_si128(reinterpret_cast<__m128i*>(d + i), _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i)));
    std::memmove(d + i, s + i, n - i);
    _mm_sfence();
}

void fillBytes(uint8_t* d, uint8_t v, size_t n, bool nt) {
    if (!nt) {
        std::memset(d, v, n);
        return;
    }
    const size_t head = headBytes(d, n);
    std::memset(d, v, head);
    const __m128i vv = _mm_set1_epi8(static_cast<char>(v));
    size_t i = head;
    for (; i + 16 <= n; i += 16) _mm_stream_si128(reinterpret_cast<__m128i*>(d + i), vv);
    std::memset(d + i, v, n - i);
    _mm_sfence();
}

// Row copier; a tightly packed region is one row of width * height samples.
void copyRegion(const void* src, int ss, void* dst, int ds, int rowBytes, int h, bool nt) {
    auto s = static_cast<const uint8_t*>(src);
    auto d = static_cast<uint8_t*>(dst);
    if (ss == rowBytes && ds == rowBytes) {
        copyBytes(s, d, static_cast<size_t>(rowBytes) * static_cast<size_t>(h), nt);
        return;
    }
    for (int y = 0; y < h; ++y) copyBytes(rowPtr(s, ss, y), rowPtr(d, ds, y), static_cast<size_t>(rowBytes), nt);
}

template <class T, int C>
RvpStatus copy(const T* s, int ss, T* d, int ds, RvpiSize roi, bool ntAllowed) {
    Check c;
    c.ptrs(s, d).size(roi).steps(wmul(roi.width, static_cast<int>(sizeof(T)) * C), ss, ds);
    if (c != rvpStsNoErr) return c;
    const int rowBytes = roi.width * static_cast<int>(sizeof(T)) * C;
    copyRegion(s, ss, d, ds, rowBytes, roi.height, ntAllowed && wmul(roi.width, roi.height) > 1048576);
    return rvpStsNoErr;
}

// ---- Copies into a larger image ---------------------------------------------

RvpStatus checkBorderCopy(const void* s, int ss, RvpiSize sr, const void* d, int ds, RvpiSize dr, int top, int left) {
    Check c;
    c.ptrs(s, d).fail(ss < 1 || ds < 1, rvpStsStepErr).size(sr).size(dr);
    c.fail(top < 0 || left < 0, rvpStsSizeErr);
    c.fail(wadd(left, sr.width) > dr.width || wadd(top, sr.height) > dr.height, rvpStsSizeErr);
    return c;
}

// Fills `count` pixels of `pb` bytes with the pixel at `px`.
inline void repeatPixel(uint8_t* d, const uint8_t* px, int pb, int count) {
    for (int i = 0; i < count; ++i) std::memcpy(d + static_cast<size_t>(i) * pb, px, pb);
}

// dst is the destination's origin; in place, the source rows are already at
// (left, top) and only the border is written.
void replicate(const uint8_t* src, int ss, RvpiSize sr, uint8_t* dst, int ds, RvpiSize dr, int top, int left, int pb,
               bool inPlace) {
    const size_t lb = static_cast<size_t>(left) * pb, sb = static_cast<size_t>(sr.width) * pb;
    const int right = dr.width - left - sr.width;
    for (int y = 0; y < sr.height; ++y) {
        uint8_t* row = rowPtr(dst, ds, top + y);
        if (!inPlace) std::memmove(row + lb, rowPtr(src, ss, y), sb);
        repeatPixel(row, row + lb, pb, left);
        repeatPixel(row + lb + sb, row + lb + sb - pb, pb, right);
    }
    const size_t full = static_cast<size_t>(dr.width) * pb;
    for (int y = 0; y < top; ++y) std::memcpy(rowPtr(dst, ds, y), rowPtr(dst, ds, top), full);
    const int last = top + sr.height - 1;
    for (int y = last + 1; y < dr.height; ++y) std::memcpy(rowPtr(dst, ds, y), rowPtr(dst, ds, last), full);
}

template <class T, int C>
RvpStatus replicateInPlace(const T* s, int step, RvpiSize sr, RvpiSize dr, int top, int left) {
    if (RvpStatus st = checkBorderCopy(s, step, sr, s, step, dr, top, left)) return st;
    const int pb = static_cast<int>(sizeof(T)) * C;
    auto origin = const_cast<uint8_t*>(reinterpret_cast<const uint8_t*>(s)) - rowOffset(step, top) -
                  static_cast<ptrdiff_t>(wmul(left, pb));
    replicate(reinterpret_cast<const uint8_t*>(s), step, sr, origin, step, dr, top, left, pb, true);
    return rvpStsNoErr;
}

template <class T, int C>
RvpStatus replicateCopy(const T* s, int ss, RvpiSize sr, T* d, int ds, RvpiSize dr, int top, int left) {
    if (static_cast<const void*>(s) == static_cast<const void*>(d) && s != nullptr)
        return replicateInPlace<T, C>(s, ss, sr, dr, top, left);
    if (RvpStatus st = checkBorderCopy(s, ss, sr, d, ds, dr, top, left)) return st;
    replicate(reinterpret_cast<const uint8_t*>(s), ss, sr, reinterpret_cast<uint8_t*>(d), ds, dr, top, left,
              static_cast<int>(sizeof(T)) * C, false);
    return rvpStsNoErr;
}

template <class T>
RvpStatus constCopy(const T* s, int ss, RvpiSize sr, T* d, int ds, RvpiSize dr, int top, int left, T value) {
    if (RvpStatus st = checkBorderCopy(s, ss, sr, d, ds, dr, top, left)) return st;
    auto fill = [value](T* p, int n) { for (int i = 0; i < n; ++i) p[i] = value; };
    for (int y = 0; y < top; ++y) fill(rowPtr(d, ds, y), dr.width);
    for (int y = 0; y < sr.height; ++y) {
        T* row = rowPtr(d, ds, top + y);
        fill(row, left);
        std::memmove(row + left, rowPtr(s, ss, y), static_cast<size_t>(sr.width) * sizeof(T));
        fill(row + left + sr.width, dr.width - left - sr.width);
    }
    for (int y = top + sr.height; y < dr.height; ++y) fill(rowPtr(d, ds, y), dr.width);
    return rvpStsNoErr;
}

// ---- Subtraction --------------------------------------------------------------

// Rows shared out by a static schedule over the permitted team.
template <class Row>
void rowsStatic(int height, bool parallel, Row&& row) {
    if (!parallel) {
        for (int y = 0; y < height; ++y) row(y);
        return;
    }
#pragma omp parallel for schedule(static) num_threads(ownGetNumThreads() > 0 ? ownGetNumThreads() : 1)
    for (int y = 0; y < height; ++y) row(y);
}

// One row of the 8-bit scaled difference: the clamped difference, then the
// scaled-result rule. The factor is below 9 here (larger ones zero the image).
void subRow8u(const Rvp8u* a, const Rvp8u* b, Rvp8u* d, int w, int sf) {
    if (sf == 0) {
        for (int x = 0; x < w; ++x) d[x] = static_cast<Rvp8u>(b[x] > a[x] ? b[x] - a[x] : 0);
        return;
    }
    for (int x = 0; x < w; ++x) {
        const int v = b[x] > a[x] ? b[x] - a[x] : 0;
        d[x] = saturate<Rvp8u>(scaleRound(v, sf));
    }
}

RvpStatus sub8u(const Rvp8u* a, int sa, const Rvp8u* b, int sb, Rvp8u* d, int sd, RvpiSize roi, int sf) {
    Check c;
    if (RvpStatus st = c.ptrs(a, b, d).size(roi)) return st;
    if (sf > 8) return rvpiSet_8u_C1R(0, d, sd, roi);
    const int w = roi.width;
    rowsStatic(roi.height, true, [&](int y) { subRow8u(rowPtr(a, sa, y), rowPtr(b, sb, y), rowPtr(d, sd, y), w, sf); });
    return rvpStsNoErr;
}

RvpStatus sub32f(const Rvp32f* a, int sa, const Rvp32f* b, int sb, Rvp32f* d, int sd, RvpiSize roi) {
    Check c;
    if (RvpStatus st = c.ptrs(a, b, d).size(roi)) return st;
    const int w = roi.width;
    rowsStatic(roi.height, roi.height >= 256, [&](int y) {
        const Rvp32f* ra = rowPtr(a, sa, y);
        const Rvp32f* rb = rowPtr(b, sb, y);
        Rvp32f* rd = rowPtr(d, sd, y);
        for (int x = 0; x < w; ++x) rd[x] = rb[x] - ra[x];
    });
    return rvpStsNoErr;
}

// ---- Thresholds -----------------------------------------------------------------

template <class T> struct ThresholdRule {
    bool greater;
    T threshold;
    T value;
    bool val;  // replace by value (Val forms) or clip to the threshold
    T operator()(T x) const {
        const bool hit = greater ? x > threshold : x < threshold;
        return hit ? (val ? value : threshold) : x;
    }
};

template <class T>
RvpStatus threshold(const T* s, int ss, T* d, int ds, RvpiSize roi, ThresholdRule<T> rule, int cmpOp, bool ntTest) {
    Check c;
    c.fail(cmpOp != rvpCmpLess && cmpOp != rvpCmpGreater, rvpStsUnsupportedModeErr);
    c.ptrs(s, d).size(roi).fail(ss < 1 || ds < 1, rvpStsStepErr);
    if (c != rvpStsNoErr) return c;
    rule.greater = cmpOp == rvpCmpGreater;
    bool nt = false;
    if (ntTest) {
        const int bytes = wmul(2, roi.width, roi.height);
        int cache = 0;
        nt = bytes > 262144 && rvpGetMaxCacheSizeB(&cache) == rvpStsNoErr && bytes > (cache >> 1);
    }
    constexpr int kChunk = 16 / static_cast<int>(sizeof(T));
    for (int y = 0; y < roi.height; ++y) {
        const T* rs = rowPtr(s, ss, y);
        T* rd = rowPtr(d, ds, y);
        int x = 0;
        if (nt && (reinterpret_cast<uintptr_t>(rd) & 15) == 0) {
            for (; x + kChunk <= roi.width; x += kChunk) {
                alignas(16) T out[kChunk];
                for (int i = 0; i < kChunk; ++i) out[i] = rule(rs[x + i]);
                _mm_stream_si128(reinterpret_cast<__m128i*>(rd + x), _mm_load_si128(reinterpret_cast<const __m128i*>(out)));
            }
        }
        for (; x < roi.width; ++x) rd[x] = rule(rs[x]);
    }
    if (nt) _mm_sfence();
    return rvpStsNoErr;
}

}  // namespace
}  // namespace rvcv

using namespace rvcv;

extern "C" {

#define RVCV_COPY(suffix, T, C, nt)                                                               \
    RvpStatus rvpiCopy_##suffix(const T* pSrc, int srcStep, T* pDst, int dstStep, RvpiSize roiSize) { \
        return copy<T, C>(pSrc, srcStep, pDst, dstStep, roiSize, nt);                               \
    }
RVCV_COPY(8u_C1R, Rvp8u, 1, true)
RVCV_COPY(8u_C3R, Rvp8u, 3, false)
RVCV_COPY(8u_C4R, Rvp8u, 4, false)
RVCV_COPY(16s_C1R, Rvp16s, 1, false)
RVCV_COPY(16u_C1R, Rvp16u, 1, false)
RVCV_COPY(32f_C1R, Rvp32f, 1, false)
RVCV_COPY(32f_C3R, Rvp32f, 3, false)
RVCV_COPY(32f_C4R, Rvp32f, 4, false)
#undef RVCV_COPY

RvpStatus rvpiSet_8u_C1R(Rvp8u value, Rvp8u* pDst, int dstStep, RvpiSize roiSize) {
    Check c;
    if (RvpStatus st = c.ptr(pDst).size(roiSize).step(dstStep, roiSize.width)) return st;
    const int pixels = wmul(roiSize.width, roiSize.height);
    int cache = 0;
    const bool nt = pixels > 524288 && rvpGetMaxCacheSizeB(&cache) == rvpStsNoErr && pixels >= cache;
    if (dstStep == roiSize.width) {
        fillBytes(pDst, value, static_cast<size_t>(roiSize.width) * static_cast<size_t>(roiSize.height), nt);
        return rvpStsNoErr;
    }
    for (int y = 0; y < roiSize.height; ++y)
        fillBytes(rowPtr(pDst, dstStep, y), value, static_cast<size_t>(roiSize.width), nt);
    return rvpStsNoErr;
}

#define RVCV_REPLICATE(suffix, T, C)                                                                       \
    RvpStatus rvpiCopyReplicateBorder_##suffix##R(const T* pSrc, int srcStep, RvpiSize srcRoiSize, T* pDst,   \
                                                  int dstStep, RvpiSize dstRoiSize, int top, int left) {      \
        return replicateCopy<T, C>(pSrc, srcStep, srcRoiSize, pDst, dstStep, dstRoiSize, top, left);         \
    }                                                                                                       \
    RvpStatus rvpiCopyReplicateBorder_##suffix##IR(const T* pSrc, int srcDstStep, RvpiSize srcRoiSize,        \
                                                   RvpiSize dstRoiSize, int top, int left) {                 \
        return replicateInPlace<T, C>(pSrc, srcDstStep, srcRoiSize, dstRoiSize, top, left);                   \
    }
RVCV_REPLICATE(8u_C1, Rvp8u, 1)
RVCV_REPLICATE(8u_C3, Rvp8u, 3)
RVCV_REPLICATE(8u_C4, Rvp8u, 4)
RVCV_REPLICATE(32s_C1, Rvp32s, 1)
RVCV_REPLICATE(32s_C3, Rvp32s, 3)
RVCV_REPLICATE(32s_C4, Rvp32s, 4)
#undef RVCV_REPLICATE

#define RVCV_CONST(suffix, T)                                                                              \
    RvpStatus rvpiCopyConstBorder_##suffix(const T* pSrc, int srcStep, RvpiSize srcRoiSize, T* pDst,         \
                                           int dstStep, RvpiSize dstRoiSize, int top, int left, T value) {   \
        return constCopy<T>(pSrc, srcStep, srcRoiSize, pDst, dstStep, dstRoiSize, top, left, value);        \
    }
RVCV_CONST(8u_C1R, Rvp8u)
RVCV_CONST(16s_C1R, Rvp16s)
RVCV_CONST(16u_C1R, Rvp16u)
#undef RVCV_CONST

RvpStatus rvpiSub_8u_C1RSfs(const Rvp8u* pSrc1, int src1Step, const Rvp8u* pSrc2, int src2Step, Rvp8u* pDst,
                            int dstStep, RvpiSize roiSize, int scaleFactor) {
    return sub8u(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep, roiSize, scaleFactor);
}
RvpStatus rvpiSub_8u_C3RSfs(const Rvp8u* pSrc1, int src1Step, const Rvp8u* pSrc2, int src2Step, Rvp8u* pDst,
                            int dstStep, RvpiSize roiSize, int scaleFactor) {
    return sub8u(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep, {wmul(roiSize.width, 3), roiSize.height}, scaleFactor);
}
RvpStatus rvpiSub_8u_C4RSfs(const Rvp8u* pSrc1, int src1Step, const Rvp8u* pSrc2, int src2Step, Rvp8u* pDst,
                            int dstStep, RvpiSize roiSize, int scaleFactor) {
    return sub8u(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep, {wmul(roiSize.width, 4), roiSize.height}, scaleFactor);
}
RvpStatus rvpiSub_32f_C1R(const Rvp32f* pSrc1, int src1Step, const Rvp32f* pSrc2, int src2Step, Rvp32f* pDst,
                          int dstStep, RvpiSize roiSize) {
    return sub32f(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep, roiSize);
}
RvpStatus rvpiSub_32f_C3R(const Rvp32f* pSrc1, int src1Step, const Rvp32f* pSrc2, int src2Step, Rvp32f* pDst,
                          int dstStep, RvpiSize roiSize) {
    return sub32f(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep, {wmul(roiSize.width, 3), roiSize.height});
}
RvpStatus rvpiSub_32f_C4R(const Rvp32f* pSrc1, int src1Step, const Rvp32f* pSrc2, int src2Step, Rvp32f* pDst,
                          int dstStep, RvpiSize roiSize) {
    return sub32f(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep, {wmul(roiSize.width, 4), roiSize.height});
}

RvpStatus rvpiThreshold_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep, RvpiSize roiSize,
                                Rvp32f thr, int cmpOp) {
    return threshold<Rvp32f>(pSrc, srcStep, pDst, dstStep, roiSize, {false, thr, thr, false}, cmpOp, false);
}
RvpStatus rvpiThreshold_LT_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep, RvpiSize roiSize,
                                   Rvp32f thr) {
    return rvpiThreshold_32f_C1R(pSrc, srcStep, pDst, dstStep, roiSize, thr, rvpCmpLess);
}
RvpStatus rvpiThreshold_Val_8u_C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep, RvpiSize roiSize,
                                   Rvp8u thr, Rvp8u value, int cmpOp) {
    return threshold<Rvp8u>(pSrc, srcStep, pDst, dstStep, roiSize, {false, thr, value, true}, cmpOp, false);
}
RvpStatus rvpiThreshold_Val_16u_C1R(const Rvp16u* pSrc, int srcStep, Rvp16u* pDst, int dstStep, RvpiSize roiSize,
                                    Rvp16u thr, Rvp16u value, int cmpOp) {
    return threshold<Rvp16u>(pSrc, srcStep, pDst, dstStep, roiSize, {false, thr, value, true}, cmpOp, true);
}
RvpStatus rvpiThreshold_GTVal_8u_C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep, RvpiSize roiSize,
                                     Rvp8u thr, Rvp8u value) {
    return rvpiThreshold_Val_8u_C1R(pSrc, srcStep, pDst, dstStep, roiSize, thr, value, rvpCmpGreater);
}
RvpStatus rvpiThreshold_GTVal_16u_C1R(const Rvp16u* pSrc, int srcStep, Rvp16u* pDst, int dstStep,
                                      RvpiSize roiSize, Rvp16u thr, Rvp16u value) {
    return rvpiThreshold_Val_16u_C1R(pSrc, srcStep, pDst, dstStep, roiSize, thr, value, rvpCmpGreater);
}

}  // extern "C"
