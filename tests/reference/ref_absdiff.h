// Reference model of the absolute difference, straight from the element rules.
#ifndef RVPCV_REF_ABSDIFF_H
#define RVPCV_REF_ABSDIFF_H

#include <cstdint>
#include <cstring>

namespace ref {

// The integer forms: the sum of the two saturating differences.
template <class T> inline T absDiff(T a, T b) {
    const int d1 = a - b < 0 ? 0 : a - b, d2 = b - a < 0 ? 0 : b - a;
    return static_cast<T>(d1 + d2);
}
inline float absDiff(float a, float b) {
    float d = a - b;
    uint32_t u;
    std::memcpy(&u, &d, 4);
    u &= 0x7fffffffu;
    std::memcpy(&d, &u, 4);
    return d;
}

}  // namespace ref

#endif
