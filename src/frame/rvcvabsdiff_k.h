// Absolute-difference kernels, written once over the sample type and
// compiled per instruction set (see rvcvsimd.h). Each row runs two vector
// blocks a step, then single samples, so no read passes the row's last sample.
#include "rvcvabsdiff.h"
#include "rvcvsimd.h"

namespace rvcv {
namespace RVCV_ISA_NS {
namespace {

// Element rules. Integers: max - min, which equals the sum of the two
// saturating differences. Floats: the difference with its sign bit cleared,
// so a NaN stays a NaN with a clear sign.
template <class T> struct AbsDiffOp {
    static T one(T a, T b) { return a > b ? static_cast<T>(a - b) : static_cast<T>(b - a); }
    static Vec<T> vec(Vec<T> a, Vec<T> b) { return vmax(a, b) - vmin(a, b); }
};
template <> struct AbsDiffOp<float> {
    static float one(float a, float b) {
        float d = a - b;
        uint32_t u;
        std::memcpy(&u, &d, 4);
        u &= 0x7fffffffu;
        std::memcpy(&d, &u, 4);
        return d;
    }
    static Vec<float> vec(Vec<float> a, Vec<float> b) { return bitcast<Vec<float>>(bitcast<Vec<uint32_t>>(a - b) & 0x7fffffffu); }
};

template <class T, bool NT>
void rows2(const T* a, int64_t sa, const T* b, int64_t sb, T* d, int64_t sd, int h, int w) {
    constexpr int L = lanes<T>();
    for (int y = 0; y < h; ++y) {
        int x = 0;
        for (; x + 2 * L <= w; x += 2 * L) {  // two blocks a step keep more loads in flight
            Vec<T> r0 = AbsDiffOp<T>::vec(loadv<Vec<T>>(a + x), loadv<Vec<T>>(b + x));
            Vec<T> r1 = AbsDiffOp<T>::vec(loadv<Vec<T>>(a + x + L), loadv<Vec<T>>(b + x + L));
            if (NT) { streamv(d + x, r0); streamv(d + x + L, r1); }
            else { storev(d + x, r0); storev(d + x + L, r1); }
        }
        for (; x + L <= w; x += L) {
            Vec<T> r = AbsDiffOp<T>::vec(loadv<Vec<T>>(a + x), loadv<Vec<T>>(b + x));
            if (NT) streamv(d + x, r); else storev(d + x, r);
        }
        for (; x < w; ++x) d[x] = AbsDiffOp<T>::one(a[x], b[x]);
        a = reinterpret_cast<const T*>(reinterpret_cast<const char*>(a) + sa);
        b = reinterpret_cast<const T*>(reinterpret_cast<const char*>(b) + sb);
        d = reinterpret_cast<T*>(reinterpret_cast<char*>(d) + sd);
    }
    if (NT) _mm_sfence();
}

template <class T, bool NT>
void rowsC(const T* a, int64_t sa, T* d, int64_t sd, int h, int w, T c) {
    constexpr int L = lanes<T>();
    const Vec<T> cv = splat<Vec<T>>(c);
    for (int y = 0; y < h; ++y) {
        int x = 0;
        for (; x + L <= w; x += L) {
            Vec<T> r = AbsDiffOp<T>::vec(loadv<Vec<T>>(a + x), cv);
            if (NT) streamv(d + x, r); else storev(d + x, r);
        }
        for (; x < w; ++x) d[x] = AbsDiffOp<T>::one(a[x], c);
        a = reinterpret_cast<const T*>(reinterpret_cast<const char*>(a) + sa);
        d = reinterpret_cast<T*>(reinterpret_cast<char*>(d) + sd);
    }
    if (NT) _mm_sfence();
}

inline bool all16(const void* a, const void* b, const void* c, int64_t s1, int64_t s2, int64_t s3) {
    return ((reinterpret_cast<uintptr_t>(a) | reinterpret_cast<uintptr_t>(b) | reinterpret_cast<uintptr_t>(c) |
             static_cast<uintptr_t>(s1) | static_cast<uintptr_t>(s2) | static_cast<uintptr_t>(s3)) & 15u) == 0;
}

template <class T>
void diff(const void* s1, int64_t st1, const void* s2, int64_t st2, void* d, int64_t sd, int h, int w, bool nt) {
    auto a = static_cast<const T*>(s1);
    auto b = static_cast<const T*>(s2);
    auto o = static_cast<T*>(d);
    if (nt && all16(s1, s2, d, st1, st2, sd)) rows2<T, true>(a, st1, b, st2, o, sd, h, w);
    else rows2<T, false>(a, st1, b, st2, o, sd, h, w);
}

template <class T>
void diffC(const void* s, int64_t ss, void* d, int64_t sd, int h, int w, const void* value, bool nt) {
    T c;
    std::memcpy(&c, value, sizeof c);
    auto a = static_cast<const T*>(s);
    auto o = static_cast<T*>(d);
    if (nt && all16(s, d, d, ss, sd, sd)) rowsC<T, true>(a, ss, o, sd, h, w, c);
    else rowsC<T, false>(a, ss, o, sd, h, w, c);
}

}  // namespace

extern const AbsDiffKernels kAbsDiff = {
    diff<uint8_t>, diff<uint16_t>, diff<float>, diffC<uint8_t>, diffC<uint16_t>, diffC<float>,
};

}  // namespace RVCV_ISA_NS
}  // namespace rvcv
