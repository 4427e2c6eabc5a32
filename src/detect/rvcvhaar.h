// Compiled stage of a boosted cascade of rectangle features. The state is
// one block: this header, the classifier records, then the rectangle
// records. Opaque to callers; the tests read it to check record order.
#ifndef RVCV_HAAR_H
#define RVCV_HAAR_H

#include <cstdint>

#include "rvpcv.h"

namespace rvcv {

// Corners in the order of the corner sum (A - B) - (C - D).
template <class V> struct HaarRect {
    int32_t ax, ay, bx, by, cx, cy, dx, dy;
    V weight;
};

template <class V> struct HaarRecord {
    int32_t numRects;
    HaarRect<V>* pRects;
    V threshold;
    V val1, val2;    // contribution below / at or above threshold x norm
    uint32_t info;   // caller's index << 8, tilt flag in bit 0
};

}  // namespace rvcv

struct RvpiHaarClassifier_32s {
    int32_t numClassifiers;
    int32_t numRects;
    rvcv::HaarRecord<Rvp32s>* pClassifiers;
    int32_t boundX, boundY, boundWidth, boundHeight;
    uint32_t flags;  // bit 0: holds tilted rectangles
    int32_t numRectsUsed;
    int32_t numTwoRect;
    int32_t numTwoThreeRect;
};

struct RvpiHaarClassifier_32f {
    int32_t numClassifiers;
    int32_t numRects;
    rvcv::HaarRecord<Rvp32f>* pClassifiers;
    int32_t boundX, boundY, boundWidth, boundHeight;
    uint32_t flags;
    int32_t numTwoRect;
    int32_t numTwoThreeRect;
    int32_t numRectsUsed;
    int32_t allFirstWeightsMinusOne;  // every first weight truncates to -1
};

#endif
