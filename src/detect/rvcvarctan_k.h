// The fast arctangent, written once and compiled per instruction set: the
// same float operations in the same order on every lane, so every level
// gives the same bits (the reciprocal is an exact quotient, then refined).
#include "detect/rvcvarctan.h"
#include "rvcvsimd.h"

namespace rvcv {
namespace RVCV_ISA_NS {
namespace {

using V = Vec<float>;
using M = Vec<int32_t>;

inline V absv(V v) { return bitcast<V>(bitcast<M>(v) & 0x7fffffff); }
inline V pick(M m, V yes, V no) { return bitcast<V>((m & bitcast<M>(yes)) | (~m & bitcast<M>(no))); }

void arctan(const float* py, const float* px, float* pd, int n, bool nt) {
    constexpr int L = lanes<float>();
    const V tiny = splat<V>(1e-8f), one = splat<V>(1.0f), two = splat<V>(2.0f), zero = splat<V>(0.0f);
    for (int i = 0; i < n; i += L) {
        const V y = loadv<V>(py + i), x = loadv<V>(px + i);
        const V ax = absv(x), ay = absv(y);
        V d = ax > ay ? ax : ay;  // the vector max: the second operand on NaN
        d = d > tiny ? d : tiny;
        const V m = ax < ay ? ax : ay;
        const V r0 = one / d;
        const V r = two * r0 - d * r0 * r0;
        const V t = m * r;
        V a = (t * splat<V>(-15.8131895f) + splat<V>(61.09419632f)) * t - splat<V>(0.14050041f);
        a = pick(ax < ay, splat<V>(90.0f) - a, a);
        a = pick(x < zero, splat<V>(180.0f) - a, a);
        a = pick(y < zero, splat<V>(360.0f) - a, a);
        if (nt) streamv(pd + i, a);
        else storev(pd + i, a);
    }
    if (nt) _mm_sfence();
}

}  // namespace

extern const ArctanKernel kArctan = arctan;

}  // namespace RVCV_ISA_NS
}  // namespace rvcv
