// Float kernels of the pipelines' 3- and 5-tap stages, one table per
// instruction set (see rvcvfloatk_k.h). Both tables give the same bits: every
// sum is made in the same order, with no fused multiply-add.
#ifndef RVCV_FLOATK_H
#define RVCV_FLOATK_H

namespace rvcv {
namespace filt {

struct FloatKernels {
    // d[j] = sum over k of t[k] * p[j + k * C], j < total, in tap order.
    void (*row3)(const float* p, float* d, int total, int C, const float* t);
    void (*row5)(const float* p, float* d, int total, int C, const float* t);
    // (p0 + p4) t0 + (p1 + p3) t1 + p2 t2.
    void (*rowSym5)(const float* p, float* d, int total, int C, const float* t);
    // d[x] = sum over k of t[k] * r[k][x], in tap order.
    void (*col3)(const float* const* r, float* d, int w, const float* t);
    void (*col5)(const float* const* r, float* d, int w, const float* t);
};

namespace m7 { extern const FloatKernels kFloat; }
namespace avx2 { extern const FloatKernels kFloat; }

}  // namespace filt
}  // namespace rvcv

#endif
