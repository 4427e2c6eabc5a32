// Shared pieces of the separable filter engine: the head-and-tail row scheme
// (FillBorder plus one row walker), the float-to-integer rule of the scaled
// forms, and the buffer-size queries that the fixed-kernel filters add up.
// A row is extended only at its two ends; its middle is read in place.
#ifndef RVCV_FILTER_H
#define RVCV_FILTER_H

#include <emmintrin.h>

#include <algorithm>
#include <cmath>

#include "rvcvborder.h"
#include "rvcvframe.h"

namespace rvcv {
namespace filt {

constexpr int kMemLeft = rvpBorderInMemLeft;
constexpr int kMemRight = rvpBorderInMemRight;


// FillBorder: the head holds positions -a .. n-2, the tail positions
// w-n+1 .. w+n-2-a of the row extended by the border rule (sides flagged
// 0x40 / 0x80 are read from memory); a row narrower than the kernel becomes
// one extended row. Returns the index at which the tail begins (0 for a
// merged row). Compiled once for 8u, 16s and 32f rows, outside the
// per-instruction-set files.
template <class S>
int fillBorder(const S* src, int w, int C, int n, int a, int type, int flags, S bv, S* head, S*& tail);

// One row of a row stage. op(p, d, count, edge) writes count pixels d[j]
// (j < count * C) from p[j + k * C]; edge tells the head and tail outputs
// apart from the middle ones, which some forms compute differently.
template <class S, class D, class Op>
void filterRow(const S* src, D* dst, int w, int C, int n, int a, int type, int flags, S bv, const Op& op, S* work) {
    S* tail = nullptr;
    const int tailStart = fillBorder(src, w, C, n, a, type, flags, bv, work, tail);
    if (w < n) {
        op(work, dst, w, true);
        return;
    }
    if (a > 0) op(work, dst, a, true);
    op(src, dst + a * C, w - n + 1, false);
    if (n - 1 - a > 0) op(tail, dst + (tailStart + a) * C, n - 1 - a, true);
}

// ---- Float results to integers: nearest, ties to even, then saturated. ----
template <class D> inline D roundSat(float v) {
    constexpr float lo = static_cast<float>(std::numeric_limits<D>::min());
    constexpr float hi = static_cast<float>(std::numeric_limits<D>::max());
    v = v < lo ? lo : v > hi ? hi : v;
    return static_cast<D>(_mm_cvtss_si32(_mm_set_ss(v)));
}

template <class D> inline void roundSatRow(const float* a, D* d, int m) {
    const __m128 lo = _mm_set1_ps(static_cast<float>(std::numeric_limits<D>::min()));
    const __m128 hi = _mm_set1_ps(static_cast<float>(std::numeric_limits<D>::max()));
    int j = 0;
    alignas(16) int32_t t[8];
    for (; j + 8 <= m; j += 8) {
        __m128i i0 = _mm_cvtps_epi32(_mm_min_ps(_mm_max_ps(_mm_loadu_ps(a + j), lo), hi));
        __m128i i1 = _mm_cvtps_epi32(_mm_min_ps(_mm_max_ps(_mm_loadu_ps(a + j + 4), lo), hi));
        if constexpr (sizeof(D) == 2) {
            _mm_storeu_si128(reinterpret_cast<__m128i*>(d + j), _mm_packs_epi32(i0, i1));
        } else {
            _mm_store_si128(reinterpret_cast<__m128i*>(t), i0);
            _mm_store_si128(reinterpret_cast<__m128i*>(t + 4), i1);
            for (int k = 0; k < 8; ++k) d[j + k] = static_cast<D>(t[k]);
        }
    }
    for (; j < m; ++j) d[j] = roundSat<D>(a[j]);
}

// Head and tail outputs of the 16s one-channel row stage: scaled, clamped,
// truncated toward zero.
inline Rvp16s truncSat16(float v) {
    v = v < -32768.0f ? -32768.0f : v > 32767.0f ? 32767.0f : v;
    return static_cast<Rvp16s>(static_cast<int>(v));
}

inline bool validPipelineBorder(int borderType) { return borderType >= 0 && borderType <= 4; }

// Pipeline size queries, shared with the fixed-kernel filters' queries.
enum class RowForm { P8u16s_C1, P8u16s_C3, P16s_C1, P16s_C3, Low_C1, Low_C3, P32f_C1, P32f_C3 };
enum class ColForm { P16s_C1, P16s_C3, Low_C1, Low_C3, P32f };
int64_t rowPipelineBytes(RowForm f, RvpiSize roi, int kernelSize, int maxThreads);
int64_t colPipelineBytes(ColForm f, RvpiSize roi, int kernelSize, int maxThreads);

}  // namespace filt
}  // namespace rvcv

#endif
