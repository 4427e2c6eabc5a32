// 32-byte vector blocks for kernels written once and compiled per instruction
// set. A kernel file defines RVCV_ISA_NS (m7 for the SSE3 baseline, avx2 in a
// file built with -mavx2) before including this header, so every helper here
// lives in that file's own namespace and no inline copy is shared between
// files built with different flags. GCC lowers a 32-byte vector to two SSE
// registers or one AVX2 register; element rules are the same either way.
#ifndef RVCV_ISA_NS
#error "define RVCV_ISA_NS before including rvcvsimd.h"
#endif
#ifndef RVCV_SIMD_H
#define RVCV_SIMD_H

#include <immintrin.h>
#include <cstdint>
#include <cstring>

namespace rvcv {
namespace RVCV_ISA_NS {

typedef uint8_t  u8x32  __attribute__((vector_size(32)));
typedef int8_t   s8x32  __attribute__((vector_size(32)));
typedef uint16_t u16x16 __attribute__((vector_size(32)));
typedef int16_t  s16x16 __attribute__((vector_size(32)));
typedef uint32_t u32x8  __attribute__((vector_size(32)));
typedef int32_t  s32x8  __attribute__((vector_size(32)));
typedef float    f32x8  __attribute__((vector_size(32)));
typedef double   f64x4  __attribute__((vector_size(32)));

// Vec<T> is the kernel's working block: 32 bytes, or 64 in a file that
// defines RVCV_VEC_BYTES 64 (the 512-bit level). The named types above stay
// 32 bytes for code that needs that width.
#ifndef RVCV_VEC_BYTES
#define RVCV_VEC_BYTES 32
#endif
constexpr int kVecBytes = RVCV_VEC_BYTES;
template <class T> struct VecOf { typedef T type __attribute__((vector_size(RVCV_VEC_BYTES))); };
template <class T> using Vec = typename VecOf<T>::type;
template <class T> constexpr int lanes() { return kVecBytes / static_cast<int>(sizeof(T)); }

template <class V> inline V loadv(const void* p) { V v; std::memcpy(&v, p, sizeof v); return v; }
template <class V> inline void storev(void* p, V v) { std::memcpy(p, &v, sizeof v); }
template <class V, class S> inline V splat(S x) {
    V v;
    for (unsigned i = 0; i < sizeof(V) / sizeof(v[0]); ++i) v[i] = x;
    return v;
}

// Store that bypasses the cache; p must be 16-byte aligned.
template <class V> inline void streamv(void* p, V v) {
    for (unsigned i = 0; i < sizeof(V) / 16; ++i) {
        __m128i part;
        std::memcpy(&part, reinterpret_cast<const char*>(&v) + 16 * i, 16);
        _mm_stream_si128(static_cast<__m128i*>(p) + i, part);
    }
}

template <class V> inline V vmax(V a, V b) { return a > b ? a : b; }
template <class V> inline V vmin(V a, V b) { return a < b ? a : b; }

// Reinterpret the bits of one vector type as another of the same size.
template <class To, class From> inline To bitcast(From f) {
    static_assert(sizeof(To) == sizeof(From), "same size");
    To t;
    std::memcpy(&t, &f, sizeof t);
    return t;
}

inline bool aligned16(const void* p) { return (reinterpret_cast<uintptr_t>(p) & 15u) == 0; }

}  // namespace RVCV_ISA_NS
}  // namespace rvcv

#endif
