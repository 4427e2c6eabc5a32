// Accumulation kernels, written once over source type, operation and mask,
// compiled per instruction set. A row runs 8 pixels a step, then at most one
// group of 4, both branch-free; only the last width % 4 pixels go one by one.
// So which pixels take the single-sample path (where a masked-out pixel is
// left alone, negative zero included) is the same on every instruction set.
#include <type_traits>

#include "rvcvaccum.h"
#include "rvcvsimd.h"

namespace rvcv {
namespace RVCV_ISA_NS {
namespace {

template <class T, int N> struct Lanes {
    typedef T type __attribute__((vector_size(N * sizeof(T))));
};
template <int N> using F = typename Lanes<float, N>::type;
template <int N> using I = typename Lanes<int32_t, N>::type;

template <class T> inline T* nextRow(T* p, int64_t bytes) {
    using B = typename std::conditional<std::is_const<T>::value, const char, char>::type;
    return reinterpret_cast<T*>(reinterpret_cast<B*>(p) + bytes);
}

// N samples of T, widened exactly to float.
template <class T, int N> inline F<N> loadf(const T* p) {
    typename Lanes<T, N>::type v;
    std::memcpy(&v, p, sizeof v);
    if constexpr (std::is_same<T, float>::value) return v;
    else return __builtin_convertvector(__builtin_convertvector(v, I<N>), F<N>);
}

// All ones where the mask byte is not zero.
template <int N> inline I<N> loadMask(const uint8_t* p) {
    typename Lanes<uint8_t, N>::type v;
    std::memcpy(&v, p, sizeof v);
    return __builtin_convertvector(v, I<N>) != 0;
}

template <int N> inline void storef(float* p, F<N> v, bool nt) {
    if constexpr (N == 8) {
        if (nt) return streamv(p, v);
    } else {
        __m128 x;
        std::memcpy(&x, &v, 16);
        if (nt) return _mm_stream_ps(p, x);
    }
    std::memcpy(p, &v, sizeof v);
}

// The term added to the accumulator, in the family's exact operation order.
template <int Op> struct Term {
    template <class V> static V of(V s1, V s2, V acc, V alpha) {
        (void)s2; (void)acc; (void)alpha;
        if constexpr (Op == kAccAdd) return s1;
        else if constexpr (Op == kAccSquare) return s1 * s1;
        else if constexpr (Op == kAccProduct) return s1 * s2;
        else return (s1 - acc) * alpha;
    }
};

template <class T, int Op, bool Masked, int N>
inline void group(const T* s1, const T* s2, const uint8_t* m, const float* acc, float* d, float alpha, bool nt) {
    const F<N> a = loadf<float, N>(acc);
    const F<N> x = loadf<T, N>(s1);
    const F<N> y = Op == kAccProduct ? loadf<T, N>(s2) : x;
    F<N> t = Term<Op>::of(x, y, a, F<N>{} + alpha);
    // Cleared after the term is formed: a NaN or infinity of an unselected
    // source pixel never reaches the sum, which becomes acc + 0.
    if (Masked) t = reinterpret_cast<F<N>>(reinterpret_cast<I<N>>(t) & loadMask<N>(m));
    storef<N>(d, a + t, nt);
}

template <class T, int Op, bool Masked>
void accumulate(const AccumArgs& g, int rows, int w) {
    auto s1 = static_cast<const T*>(g.s1);
    auto s2 = static_cast<const T*>(g.s2);
    const uint8_t* m = g.mask;
    const float* acc = g.acc;
    float* d = g.d;
    const float alpha = g.alpha;
    for (int y = 0; y < rows; ++y) {
        const bool nt = g.nt && aligned16(d);
        int x = 0;
        for (; x + 8 <= w; x += 8) group<T, Op, Masked, 8>(s1 + x, s2 + x, Masked ? m + x : m, acc + x, d + x, alpha, nt);
        if (x + 4 <= w) {
            group<T, Op, Masked, 4>(s1 + x, s2 + x, Masked ? m + x : m, acc + x, d + x, alpha, nt);
            x += 4;
        }
        for (; x < w; ++x) {
            if (Masked && m[x] == 0) continue;
            const float a = acc[x], u = static_cast<float>(s1[x]);
            const float v = Op == kAccProduct ? static_cast<float>(s2[x]) : u;
            d[x] = a + Term<Op>::of(u, v, a, alpha);
        }
        s1 = nextRow(s1, g.st1);
        if (Op == kAccProduct) s2 = nextRow(s2, g.st2);
        if (Masked) m = nextRow(m, g.sm);
        acc = nextRow(acc, g.sa);
        d = nextRow(d, g.sd);
    }
    if (g.nt) _mm_sfence();
}

}  // namespace

#define RVCV_ACC_ROW(op)                                                                                           \
    {{accumulate<uint8_t, op, false>, accumulate<uint8_t, op, true>},                                               \
     {accumulate<int8_t, op, false>, accumulate<int8_t, op, true>},                                                 \
     {accumulate<uint16_t, op, false>, accumulate<uint16_t, op, true>},                                             \
     {accumulate<float, op, false>, accumulate<float, op, true>}}
extern const AccumKernels kAccum = {{RVCV_ACC_ROW(kAccAdd), RVCV_ACC_ROW(kAccSquare), RVCV_ACC_ROW(kAccProduct),
                                     RVCV_ACC_ROW(kAccWeighted)}};
#undef RVCV_ACC_ROW

}  // namespace RVCV_ISA_NS
}  // namespace rvcv
