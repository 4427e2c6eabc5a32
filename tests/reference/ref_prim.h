// Reference models of the shared primitives, from the rules: the scaled
// result by exact division with ties to even, then saturation; replicated
// and constant borders by position.
#ifndef RVPCV_REF_PRIM_H
#define RVPCV_REF_PRIM_H

#include <cmath>
#include <cstdint>

namespace ref {

// v / 2^s rounded to nearest, ties to the even neighbour; s < 0 multiplies.
inline long double scaled(int64_t v, int s) {
    const long double q = ldexpl(static_cast<long double>(v), -s);  // exact for these magnitudes
    const long double f = floorl(q), frac = q - f;
    if (frac != 0.5L) return frac > 0.5L ? f + 1 : f;
    return static_cast<int64_t>(f) % 2 == 0 ? f : f + 1;
}

template <class T> inline T saturateTo(long double v, long double lo, long double hi) {
    return static_cast<T>(v < lo ? lo : v > hi ? hi : v);
}

inline uint8_t sub8uSfs(uint8_t a, uint8_t b, int s) {
    const int d = b > a ? b - a : 0;
    return saturateTo<uint8_t>(scaled(d, s), 0, 255);
}

inline int16_t mulC16sSfs(int16_t a, int16_t c, int s) {
    return saturateTo<int16_t>(scaled(static_cast<int64_t>(a) * c, s), -32768, 32767);
}

// Source position read for destination position p of an axis, the source
// starting at `begin` with length n: the nearest source sample.
inline int replicated(int p, int begin, int n) {
    const int q = p - begin;
    return q < 0 ? 0 : q >= n ? n - 1 : q;
}

}  // namespace ref

#endif
