// Kernel table of the absolute-difference family, one per instruction set.
#ifndef RVCV_ABSDIFF_H
#define RVCV_ABSDIFF_H

#include <cstdint>

namespace rvcv {

// Kernels walk h rows of w samples; steps are in bytes. nt asks for stores
// that bypass the cache, used only when every pointer and step is a multiple
// of 16; otherwise plain stores. Both give the same bits.
using AbsDiffKernel = void (*)(const void* s1, int64_t st1, const void* s2, int64_t st2, void* d,
                               int64_t sd, int h, int w, bool nt);
using AbsDiffCKernel = void (*)(const void* s, int64_t ss, void* d, int64_t sd, int h, int w,
                                const void* value, bool nt);

struct AbsDiffKernels {
    AbsDiffKernel diff8u, diff16u, diff32f;
    AbsDiffCKernel diffC8u, diffC16u, diffC32f;
};

namespace m7 { extern const AbsDiffKernels kAbsDiff; }
namespace avx2 { extern const AbsDiffKernels kAbsDiff; }
namespace avx512 { extern const AbsDiffKernels kAbsDiff; }

}  // namespace rvcv

#endif
