// Kernel table of the fast arctangent, one per instruction set.
#ifndef RVCV_ARCTAN_H
#define RVCV_ARCTAN_H

namespace rvcv {

// pDst[i] for i < n, n a multiple of the kernel's block (16).
using ArctanKernel = void (*)(const float* y, const float* x, float* dst, int n);

namespace m7 { extern const ArctanKernel kArctan; }
namespace avx2 { extern const ArctanKernel kArctan; }
namespace avx512 { extern const ArctanKernel kArctan; }

}  // namespace rvcv

#endif
