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

template <class T> struct VecOf;
template <> struct VecOf<uint8_t>  { typedef u8x32 type; };
template <> struct VecOf<int8_t>   { typedef s8x32 type; };
template <> struct VecOf<uint16_t> { typedef u16x16 type; };
template <> struct VecOf<int16_t>  { typedef s16x16 type; };
template <> struct VecOf<uint32_t> { typedef u32x8 type; };
template <> struct VecOf<int32_t>  { typedef s32x8 type; };
template <> struct VecOf<float>    { typedef f32x8 type; };
template <> struct VecOf<double>   { typedef f64x4 type; };
template <class T> using Vec = typename VecOf<T>::type;
template <class T> constexpr int lanes() { return 32 / static_cast<int>(sizeof(T)); }

template <class V> inline V loadv(const void* p) { V v; std::memcpy(&v, p, sizeof v); return v; }
template <class V> inline void storev(void* p, V v) { std::memcpy(p, &v, sizeof v); }
template <class V> inline V splat(decltype(V{}[0]) x) { V v; for (unsigned i = 0; i < sizeof(V) / sizeof(x); ++i) v[i] = x; return v; }

// Store that bypasses the cache; p must be 16-byte aligned.
template <class V> inline void streamv(void* p, V v) {
    __m128i lo, hi;
    std::memcpy(&lo, &v, 16);
    std::memcpy(&hi, reinterpret_cast<const char*>(&v) + 16, 16);
    _mm_stream_si128(static_cast<__m128i*>(p), lo);
    _mm_stream_si128(static_cast<__m128i*>(p) + 1, hi);
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
