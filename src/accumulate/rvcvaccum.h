// Kernel tables of the accumulation family, one per instruction set.
#ifndef RVCV_ACCUM_H
#define RVCV_ACCUM_H

#include <cstdint>

namespace rvcv {

// One band of an accumulation: d = acc + term(s1, s2, acc, alpha) per pixel.
// The in-place forms pass acc == d; the two-source weighted form reads its
// accumulator from the second source. Steps are in bytes. nt asks for stores
// that bypass the cache on rows whose destination is 16-byte aligned; large
// marks images past the size where float rows without a mask run as two
// streams, with 32-byte accesses at the 512-bit level (never set with nt).
struct AccumArgs {
    const void* s1;
    int64_t st1;
    const void* s2;
    int64_t st2;
    const uint8_t* mask;
    int64_t sm;
    const float* acc;
    int64_t sa;
    float* d;
    int64_t sd;
    float alpha;
    bool nt;
    bool large;
};
using AccumKernel = void (*)(const AccumArgs& a, int rows, int width);

enum AccumOp { kAccAdd, kAccSquare, kAccProduct, kAccWeighted, kAccOps };
enum AccumType { kAcc8u, kAcc8s, kAcc16u, kAcc32f, kAccTypes };

// [op][source type][masked]
struct AccumKernels {
    AccumKernel k[kAccOps][kAccTypes][2];
};

namespace m7 { extern const AccumKernels kAccum; }
namespace avx2 { extern const AccumKernels kAccum; }
namespace avx512 { extern const AccumKernels kAccum; }

}  // namespace rvcv

#endif
