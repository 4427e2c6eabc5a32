// Reference model of the absolute difference, straight from the element rules.
#ifndef RVPCV_REF_ABSDIFF_H
#define RVPCV_REF_ABSDIFF_H

#include <cstdint>
#include <cstring>

namespace ref {

inline uint8_t absDiff(uint8_t a, uint8_t b) {
    int d1 = a - b < 0 ? 0 : a - b, d2 = b - a < 0 ? 0 : b - a;  // two saturating differences
    return static_cast<uint8_t>(d1 + d2);
}
inline uint16_t absDiff(uint16_t a, uint16_t b) {
    int d1 = a - b < 0 ? 0 : a - b, d2 = b - a < 0 ? 0 : b - a;
    return static_cast<uint16_t>(d1 + d2);
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
