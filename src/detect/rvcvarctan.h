// Kernel table of the fast arctangent, one per instruction set.
#ifndef RVCV_ARCTAN_H
#define RVCV_ARCTAN_H

namespace rvcv {

// dst[i] for i < n, n a multiple of the kernel's block (16); nt: stores that
// bypass the cache (dst 16-byte aligned), the same values.
using ArctanKernel = void (*)(const float* y, const float* x, float* dst, int n, bool nt);

namespace m7 { extern const ArctanKernel kArctan; }
namespace avx2 { extern const ArctanKernel kArctan; }
namespace avx512 { extern const ArctanKernel kArctan; }

}  // namespace rvcv

#endif
