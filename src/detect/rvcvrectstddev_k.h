// Row kernel of the float-table upright deviation, written once and compiled
// per instruction set (RVCV_ISA_NS is m7 or avx2): four or eight outputs a
// step with the same operations in the same order as one output, so every
// path gives the same bits.
#ifndef RVCV_ISA_NS
#error "define RVCV_ISA_NS before including rvcvrectstddev_k.h"
#endif
#include <immintrin.h>

#include "detect/rvcvrectstddev.h"

namespace rvcv {
namespace RVCV_ISA_NS {
namespace {

// One output: float corner sum and mean, double square sum and mean, double
// variance (negative reads as zero, NaN passes), float root.
inline Rvp32f one(const Rvp32f* const* s, const Rvp64f* const* q, int i, float area) {
    const double mean = (((s[0][i] - s[1][i]) - s[2][i]) + s[3][i]) / area;
    const double meanSqr = (((q[0][i] - q[1][i]) - q[2][i]) + q[3][i]) / static_cast<double>(area);
    double var = meanSqr - mean * mean;
    if (var < 0) var = 0;
    return _mm_cvtss_f32(_mm_sqrt_ss(_mm_set_ss(static_cast<float>(var))));
}

// zero > v ? zero : v keeps NaN, like the scalar clamp.
inline __m128 variance2x2(__m128 mean, const Rvp64f* const* q, int i, __m128d areaD) {
    __m128 out[2];
    for (int k = 0; k < 2; ++k) {
        const int o = i + 2 * k;
        __m128d sq = _mm_sub_pd(_mm_loadu_pd(q[0] + o), _mm_loadu_pd(q[1] + o));
        sq = _mm_add_pd(_mm_sub_pd(sq, _mm_loadu_pd(q[2] + o)), _mm_loadu_pd(q[3] + o));
        const __m128d m = _mm_cvtps_pd(k ? _mm_movehl_ps(mean, mean) : mean);
        const __m128d v = _mm_sub_pd(_mm_div_pd(sq, areaD), _mm_mul_pd(m, m));
        out[k] = _mm_cvtpd_ps(_mm_max_pd(_mm_setzero_pd(), v));
    }
    return _mm_movelh_ps(out[0], out[1]);
}

// s and q: the four corner rows (BR, TR, BL, TL) of the output row.
void row32f(const Rvp32f* const* s, const Rvp64f* const* q, Rvp32f* d, int width, float area) {
    int i = 0;
#if defined(__AVX2__)
    {
        const __m256 areaF = _mm256_set1_ps(area);
        const __m256d areaD = _mm256_set1_pd(static_cast<double>(area));
        for (; i + 8 <= width; i += 8) {
            __m256 sum = _mm256_sub_ps(_mm256_loadu_ps(s[0] + i), _mm256_loadu_ps(s[1] + i));
            sum = _mm256_add_ps(_mm256_sub_ps(sum, _mm256_loadu_ps(s[2] + i)), _mm256_loadu_ps(s[3] + i));
            const __m256 mean = _mm256_div_ps(sum, areaF);
            __m128 var[2];
            for (int k = 0; k < 2; ++k) {
                const int o = i + 4 * k;
                __m256d sq = _mm256_sub_pd(_mm256_loadu_pd(q[0] + o), _mm256_loadu_pd(q[1] + o));
                sq = _mm256_add_pd(_mm256_sub_pd(sq, _mm256_loadu_pd(q[2] + o)), _mm256_loadu_pd(q[3] + o));
                const __m256d m = _mm256_cvtps_pd(k ? _mm256_extractf128_ps(mean, 1) : _mm256_castps256_ps128(mean));
                const __m256d v = _mm256_sub_pd(_mm256_div_pd(sq, areaD), _mm256_mul_pd(m, m));
                var[k] = _mm256_cvtpd_ps(_mm256_max_pd(_mm256_setzero_pd(), v));
            }
            _mm256_storeu_ps(d + i, _mm256_sqrt_ps(_mm256_set_m128(var[1], var[0])));
        }
    }
#endif
    const __m128 areaF = _mm_set1_ps(area);
    const __m128d areaD = _mm_set1_pd(static_cast<double>(area));
    for (; i + 4 <= width; i += 4) {
        __m128 sum = _mm_sub_ps(_mm_loadu_ps(s[0] + i), _mm_loadu_ps(s[1] + i));
        sum = _mm_add_ps(_mm_sub_ps(sum, _mm_loadu_ps(s[2] + i)), _mm_loadu_ps(s[3] + i));
        _mm_storeu_ps(d + i, _mm_sqrt_ps(variance2x2(_mm_div_ps(sum, areaF), q, i, areaD)));
    }
    for (; i < width; ++i) d[i] = one(s, q, i, area);
}

}  // namespace

extern const RectStdDevKernels kRectStdDev = {row32f};

}  // namespace RVCV_ISA_NS
}  // namespace rvcv
