// Float pipeline kernels written once and compiled per instruction set; the
// including file names the namespace. Plain loops that the compiler turns
// into vector code of the file's width.
#include "filter/rvcvfloatk.h"

namespace rvcv {
namespace filt {
namespace RVCV_ISA_NS {
namespace {

void row3(const float* p, float* __restrict d, int total, int C, const float* t) {
    const float t0 = t[0], t1 = t[1], t2 = t[2];
    const float *p1 = p + C, *p2 = p + 2 * C;
    for (int j = 0; j < total; ++j) d[j] = t0 * p[j] + t1 * p1[j] + t2 * p2[j];
}

void row5(const float* p, float* __restrict d, int total, int C, const float* t) {
    const float t0 = t[0], t1 = t[1], t2 = t[2], t3 = t[3], t4 = t[4];
    const float *p1 = p + C, *p2 = p + 2 * C, *p3 = p + 3 * C, *p4 = p + 4 * C;
    for (int j = 0; j < total; ++j) d[j] = t0 * p[j] + t1 * p1[j] + t2 * p2[j] + t3 * p3[j] + t4 * p4[j];
}

void rowSym5(const float* p, float* __restrict d, int total, int C, const float* t) {
    const float t0 = t[0], t1 = t[1], t2 = t[2];
    const float *p1 = p + C, *p2 = p + 2 * C, *p3 = p + 3 * C, *p4 = p + 4 * C;
    for (int j = 0; j < total; ++j) {
        float s = t0 * (p[j] + p4[j]);
        s += t1 * (p1[j] + p3[j]);
        d[j] = s + t2 * p2[j];
    }
}

void col3(const float* const* r, float* __restrict d, int w, const float* t) {
    const float t0 = t[0], t1 = t[1], t2 = t[2];
    const float *q0 = r[0], *q1 = r[1], *q2 = r[2];
    for (int x = 0; x < w; ++x) d[x] = t0 * q0[x] + t1 * q1[x] + t2 * q2[x];
}

void col5(const float* const* r, float* __restrict d, int w, const float* t) {
    const float t0 = t[0], t1 = t[1], t2 = t[2], t3 = t[3], t4 = t[4];
    const float *q0 = r[0], *q1 = r[1], *q2 = r[2], *q3 = r[3], *q4 = r[4];
    for (int x = 0; x < w; ++x) d[x] = t0 * q0[x] + t1 * q1[x] + t2 * q2[x] + t3 * q3[x] + t4 * q4[x];
}

}  // namespace

extern const FloatKernels kFloat = {row3, row5, rowSym5, col3, col5};

}  // namespace RVCV_ISA_NS
}  // namespace filt
}  // namespace rvcv
