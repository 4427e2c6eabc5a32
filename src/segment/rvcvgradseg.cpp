// Gradient segmentation: the watershed's queue flooding over a gradient
// image computed here, so that regions grow from the markers through smooth
// areas first and meet along edges. The gradient of a pixel is the largest
// absolute difference to a neighbour in the flooding neighbourhood, over the
// channels, which for colour images follows edges of hue as well as of
// brightness.
#include <algorithm>

#include "segment/rvcvsegment.h"

namespace rvcv {
namespace seg {
namespace {

int64_t gradientBytes(RvpiSize roi) {
    return static_cast<int64_t>(roi.width) * roi.height + queueBytes(roi, 1) + 16;
}

template <int C> void gradient(const Rvp8u* src, int srcStep, RvpiSize roi, Rvp8u* g) {
    const int w = roi.width, h = roi.height;
    for (int y = 0; y < h; ++y) {
        const Rvp8u* r = rowPtr(src, srcStep, y);
        const Rvp8u* up = y > 0 ? rowPtr(src, srcStep, y - 1) : nullptr;
        const Rvp8u* down = y + 1 < h ? rowPtr(src, srcStep, y + 1) : nullptr;
        Rvp8u* out = g + static_cast<int64_t>(y) * w;
        // Largest |n - p| over the channels, for the neighbour n at column x + dx of row q.
        const auto diff = [&](const Rvp8u* q, int x, int dx, int best) {
            for (int c = 0; c < C; ++c) {
                const int d = q[(x + dx) * C + c] - r[x * C + c];
                best = std::max(best, d < 0 ? -d : d);
            }
            return best;
        };
        const auto pixel = [&](int x, int lo, int hi) {
            int best = 0;
            for (int dx = lo; dx <= hi; ++dx) {
                if (up) best = diff(up, x, dx, best);
                if (down) best = diff(down, x, dx, best);
                if (dx != 0) best = diff(r, x, dx, best);
            }
            out[x] = static_cast<Rvp8u>(best);
        };
        if (w == 1) {
            pixel(0, 0, 0);
            continue;
        }
        pixel(0, 0, 1);
        for (int x = 1; x + 1 < w; ++x) pixel(x, -1, 1);
        pixel(w - 1, -1, 0);
    }
}

template <int C>
RvpStatus segmentGradient(const Rvp8u* src, int srcStep, Rvp8u* marker, int markerStep, RvpiSize roi, int norm,
                          int flag, Rvp8u* buffer) {
    Check c;
    c.ptrs(src, marker, buffer).size(roi);
    if (c == rvpStsNoErr && gradientBytes(roi) > INT32_MAX) c.fail(true, rvpStsSizeErr);
    c.step(srcStep, wmul(roi.width, C)).step(markerStep, roi.width);
    if (RvpStatus st = c.fail((norm != 0 && norm != 1) || (flag & ~(kBorder4 | kBorder8)) != 0, rvpStsBadArgErr))
        return st;
    Rvp8u* g = buffer;
    gradient<C>(src, srcStep, roi, g);
    floodQueue(g, roi.width, marker, markerStep, roi, norm == 1, flag, g + static_cast<int64_t>(roi.width) * roi.height);
    return rvpStsNoErr;
}

RvpStatus query(RvpiSize roi, int* size) {
    Check c;
    if (RvpStatus st = c.ptr(size).size(roi).fail(gradientBytes(roi) > INT32_MAX, rvpStsSizeErr)) return st;
    *size = static_cast<int>(gradientBytes(roi));
    return rvpStsNoErr;
}

}  // namespace
}  // namespace seg
}  // namespace rvcv

using namespace rvcv;

RVCV_EXPORT RvpStatus rvpiSegmentGradient_8u_C1IR(const Rvp8u* pSrc, int srcStep, Rvp8u* pMarker, int markerStep,
                                                  RvpiSize roiSize, int norm, int flag, Rvp8u* pBuffer) {
    return seg::segmentGradient<1>(pSrc, srcStep, pMarker, markerStep, roiSize, norm, flag, pBuffer);
}
RVCV_EXPORT RvpStatus rvpiSegmentGradient_8u_C3IR(const Rvp8u* pSrc, int srcStep, Rvp8u* pMarker, int markerStep,
                                                  RvpiSize roiSize, int norm, int flag, Rvp8u* pBuffer) {
    return seg::segmentGradient<3>(pSrc, srcStep, pMarker, markerStep, roiSize, norm, flag, pBuffer);
}
RVCV_EXPORT RvpStatus rvpiSegmentGradientGetBufferSize_8u_C1R(RvpiSize roiSize, int* pBufferSize) {
    return seg::query(roiSize, pBufferSize);
}
RVCV_EXPORT RvpStatus rvpiSegmentGradientGetBufferSize_8u_C3R(RvpiSize roiSize, int* pBufferSize) {
    return seg::query(roiSize, pBufferSize);
}
