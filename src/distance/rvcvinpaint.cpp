// Inpainting: fills the pixels a mask marks, from the outer edge of the
// masked area inward, in the order of a caller's distance map. A state holds
// everything that depends only on mask, distances and radius (the work
// region around the mask, its planes, the neighbour table and the sorted
// fill list); each call copies the image, computes gradients in the band
// around the mask and fills pixel by pixel, each filled pixel becoming known
// to the ones after it.
#include <algorithm>
#include <cmath>

#include "rvcvframe.h"
#include "rvcvprim.h"

namespace {

// Neighbour table entry, seven 32-bit words.
struct Offset {
    int32_t ndx, ndy;  // the vector from the neighbour to the pixel
    float weight;      // 1 / r^3 (distance-directed) or 1 / ((r^4 + 1) r) (isophote)
    int32_t mask;      // byte-plane offset
    int32_t dist;      // float-plane offset
    int32_t grad;      // gradient-plane offset, in 16-bit entries
    int32_t image;     // image offset, set at each call
};

}  // namespace

struct RvpiInpaintState {
    Rvp8u* pMaskPlane;
    Rvp8u* pBandPlane;
    Rvp16s* pImageGrad;  // x and y per channel and pixel
    Rvp16s* pDistGrad;   // x and y per pixel; distance-directed method only
    Rvp32f* pDistPlane;
    Rvp64f* pOrder;
    Offset* pOffsets;
    RvpiMorphState* pMorphDisk;
    RvpiMorphState* pMorphCross;
    RvpiSize roiSize;
    RvpiSize workSize;
    Rvp32s channels;
    Rvp32s method;
    Rvp32s fillCount;
    Rvp32s workX, workY;
    Rvp32s extendedWidth, extendedHeight;
    Rvp32f radius;
    Rvp32s offsetCount;
    Rvp32s maskStep, distStep, gradStep, distGradStep;
    Rvp8u* pScratch;  // the mask as the fill clears it
    Rvp8u* pTemp;     // dilation output
    Rvp32s r;
    Rvp8u* block;     // the allocation, which base rounds up to 64 bytes
};

namespace rvcv {
namespace {

constexpr float kMaxRadius = 4096.0f;

// 1 / sqrt(s) refined by one Newton step, y * -0.5 * (s * y * y - 3), from
// the correctly rounded quotient, so that every processor gives the same.
inline float refinedRsqrt(float s) {
    const float y = 1.0f / std::sqrt(s);
    return y * -0.5f * (s * y * y - 3.0f);
}

int64_t roundUp(int64_t v, int64_t a) { return (v + a - 1) / a * a; }

RvpStatus initAlloc(int C, RvpiInpaintState** pp, const Rvp32f* dist, int distStep, const Rvp8u* mask, int maskStep,
                    RvpiSize roi, Rvp32f radius, int flags) {
    Check c;
    c.ptrs(mask, dist, pp).size(roi).step(maskStep, roi.width);
    c.step(distStep, static_cast<int64_t>(roi.width) * 4 > INT32_MAX ? INT32_MAX : roi.width * 4);
    c.fail(static_cast<int64_t>(roi.width) * 4 > INT32_MAX, rvpStsStepErr).evenSteps(4, distStep);
    c.fail(flags != 0 && flags != 1, rvpStsBadArgErr).fail(!(radius >= 1.0f && radius < kMaxRadius), rvpStsBadArgErr);
    if (c != rvpStsNoErr) return c;
    const int r = static_cast<int>(radius);

    // The masked pixels and their box.
    int64_t count = 0;
    int x0 = roi.width, y0 = roi.height, x1 = -1, y1 = -1;
    for (int y = 0; y < roi.height; ++y) {
        const Rvp8u* m = rowPtr(mask, maskStep, y);
        for (int x = 0; x < roi.width; ++x)
            if (m[x]) {
                ++count;
                x0 = std::min(x0, x), x1 = std::max(x1, x), y0 = std::min(y0, y), y1 = std::max(y1, y);
            }
    }
    // The work region: the box grown by r + 1, clamped to the image.
    int wx = 0, wy = 0, ww = 0, wh = 0;
    if (count) {
        wx = std::max(0, x0 - r - 1), wy = std::max(0, y0 - r - 1);
        ww = std::min(roi.width - 1, x1 + r + 1) - wx + 1, wh = std::min(roi.height - 1, y1 + r + 1) - wy + 1;
    }
    const int64_t maskStep64 = roundUp(std::max(ww, 1), 64), distStep64 = roundUp(4 * static_cast<int64_t>(ww), 64);
    const int64_t gradStep64 = roundUp(4 * static_cast<int64_t>(C) * ww, 64);
    const int64_t dgStep64 = flags == 0 ? roundUp(4 * static_cast<int64_t>(ww), 64) : 0;
    const int64_t side = 2 * static_cast<int64_t>(r) + 1;
    const int64_t pix = static_cast<int64_t>(ww) * wh;
    int64_t at = roundUp(sizeof(RvpiInpaintState), 64);
    const auto take = [&](int64_t bytes) {
        const int64_t o = at;
        at = roundUp(at + bytes, 64);
        return o;
    };
    const int64_t oMask = take(maskStep64 * wh), oBand = take(maskStep64 * wh), oScratch = take(maskStep64 * wh),
                  oTemp = take(maskStep64 * wh), oGrad = take(gradStep64 * wh), oDistGrad = take(dgStep64 * wh),
                  oDist = take(distStep64 * wh), oOrder = take(8 * count), oOffsets = take(side * side * 28);
    if (at + 64 > INT32_MAX || pix >= (int64_t{1} << 28)) return rvpStsSizeErr;

    // The square and the cross for the dilations of the mask plane.
    Rvp8u* square = rvpsMalloc_8u(static_cast<int>(side * side));
    if (!square) return rvpStsMemAllocErr;
    std::memset(square, 1, static_cast<size_t>(side * side));
    const Rvp8u cross[9] = {0, 1, 0, 1, 1, 1, 0, 1, 0};
    RvpiMorphState *disk = nullptr, *crossState = nullptr;
    const int morphWidth = std::max(ww, 1);
    const RvpStatus sq = rvpiMorphologyInitAlloc_8u_C1R(morphWidth, square, {static_cast<int>(side), static_cast<int>(side)},
                                                        {r, r}, &disk);
    rvpsFree(square);
    if (sq != rvpStsNoErr) return sq == rvpStsMemAllocErr ? sq : rvpStsBadArgErr;
    if (RvpStatus st = rvpiMorphologyInitAlloc_8u_C1R(morphWidth, cross, {3, 3}, {1, 1}, &crossState)) {
        rvpiMorphologyFree(disk);
        return st == rvpStsMemAllocErr ? st : rvpStsBadArgErr;
    }
    Rvp8u* block = rvpsMalloc_8u(static_cast<int>(at + 64));
    if (!block) {
        rvpiMorphologyFree(disk);
        rvpiMorphologyFree(crossState);
        return rvpStsMemAllocErr;
    }
    Rvp8u* base = reinterpret_cast<Rvp8u*>((reinterpret_cast<uintptr_t>(block) + 63) & ~uintptr_t{63});
    auto* s = reinterpret_cast<RvpiInpaintState*>(base);
    *s = RvpiInpaintState{};
    s->pMaskPlane = base + oMask;
    s->pBandPlane = base + oBand;
    s->pScratch = base + oScratch;
    s->pTemp = base + oTemp;
    s->pImageGrad = reinterpret_cast<Rvp16s*>(base + oGrad);
    s->pDistGrad = flags == 0 ? reinterpret_cast<Rvp16s*>(base + oDistGrad) : nullptr;
    s->pDistPlane = reinterpret_cast<Rvp32f*>(base + oDist);
    s->pOrder = reinterpret_cast<Rvp64f*>(base + oOrder);
    s->pOffsets = reinterpret_cast<Offset*>(base + oOffsets);
    s->pMorphDisk = disk;
    s->pMorphCross = crossState;
    s->roiSize = roi;
    s->workSize = {ww, wh};
    s->channels = C;
    s->method = flags;
    s->workX = wx, s->workY = wy;
    s->extendedWidth = ww, s->extendedHeight = wh;
    s->radius = radius;
    s->r = r;
    s->maskStep = static_cast<Rvp32s>(maskStep64);
    s->distStep = static_cast<Rvp32s>(distStep64);
    s->gradStep = static_cast<Rvp32s>(gradStep64);
    s->distGradStep = static_cast<Rvp32s>(dgStep64);
    s->block = block;
    if (!count) {
        s->fillCount = 0;
        *pp = s;
        return rvpStsNoErr;
    }
    for (int y = 0; y < wh; ++y) {
        const Rvp8u* m = rowPtr(mask, maskStep, wy + y) + wx;
        Rvp8u* mp = s->pMaskPlane + static_cast<int64_t>(y) * s->maskStep;
        for (int x = 0; x < ww; ++x) mp[x] = m[x] ? 255 : 0;
        std::memcpy(reinterpret_cast<Rvp8u*>(s->pDistPlane) + static_cast<int64_t>(y) * s->distStep,
                    rowPtr(dist, distStep, wy + y) + wx, 4 * static_cast<size_t>(ww));
    }
    // The neighbours within the radius, with their weights.
    int n = 0;
    for (int dy = -r; dy <= r; ++dy)
        for (int dx = -r; dx <= r; ++dx) {
            const float sq = static_cast<float>(dx * dx + dy * dy);
            if ((dx == 0 && dy == 0) || sq > radius * radius) continue;
            const float inv = refinedRsqrt(sq);
            Offset& o = s->pOffsets[n++];
            o.ndx = -dx;
            o.ndy = -dy;
            o.weight = flags == 0 ? inv * inv * inv : inv / (sq * sq + 1.0f);
            o.mask = dy * s->maskStep + dx;
            o.dist = dy * (s->distStep / 4) + dx;
            o.grad = dy * (s->gradStep / 2) + 2 * C * dx;
            o.image = 0;
        }
    s->offsetCount = n;
    // The fill list: masked pixels of positive distance, ordered by distance
    // and then by index (the index sits in the low 28 bits of the double).
    int64_t k = 0;
    for (int y = 0; y < wh; ++y)
        for (int x = 0; x < ww; ++x) {
            const float d = s->pDistPlane[static_cast<int64_t>(y) * (s->distStep / 4) + x];
            if (!(d > 0.0f) || !s->pMaskPlane[static_cast<int64_t>(y) * s->maskStep + x]) continue;
            const double dd = d;
            uint64_t bits;
            std::memcpy(&bits, &dd, 8);
            bits = (bits & ~uint64_t{0x0FFFFFFF}) | static_cast<uint64_t>(static_cast<int64_t>(y) * ww + x);
            std::memcpy(&s->pOrder[k++], &bits, 8);
        }
    s->fillCount = static_cast<Rvp32s>(k);
    rvpsSortAscend_64f_I(s->pOrder, s->fillCount);
    *pp = s;
    return rvpStsNoErr;
}

// One call's fill over the work region: dst holds the image (the source
// copied), the planes hold the state's mask, distances and gradients.
template <int C> class Filler {
public:
    Filler(RvpiInpaintState* s, Rvp8u* dst, int dstStep)
        : s_(s), img_(dst + rowOffset(dstStep, s->workY) + static_cast<ptrdiff_t>(s->workX) * C), step_(dstStep),
          w_(s->workSize.width), h_(s->workSize.height) {}

    void run() {
        const RvpiSize work = s_->workSize;
        const int ms = s_->maskStep;
        // The scratch mask: known pixels are 0; the fill clears it pixel by pixel.
        rvpiCopy_8u_C1R(s_->pMaskPlane, ms, s_->pScratch, ms, work);
        for (int y = 0; y < h_; ++y) std::memset(grad(0, y), 0, sizeof(Rvp16s) * 2 * C * w_);
        // The band within the radius of the mask: gradients of the known image.
        band(s_->pMorphDisk);
        for (int y = 0; y < h_; ++y)
            for (int x = 0; x < w_; ++x)
                if (s_->pBandPlane[static_cast<int64_t>(y) * ms + x]) full(x, y);
        // The pixels next to the mask: gradients from known pixels only, and
        // for the distance-directed method the gradient of the distances.
        band(s_->pMorphCross);
        for (int y = 0; y < h_; ++y)
            for (int x = 0; x < w_; ++x) {
                if (s_->pBandPlane[static_cast<int64_t>(y) * ms + x]) knownOnly(x, y);
                if (s_->method == 0 && s_->pMaskPlane[static_cast<int64_t>(y) * ms + x]) distanceGradient(x, y);
            }
        for (int k = 0; k < s_->fillCount; ++k) {
            uint64_t bits;
            std::memcpy(&bits, &s_->pOrder[k], 8);
            const int index = static_cast<int>(bits & 0x0FFFFFFF), y = index / w_, x = index - y * w_;
            fill(x, y);
            s_->pScratch[static_cast<int64_t>(y) * ms + x] = 0;
            knownOnly(x, y);
            if (x > 0) knownOnly(x - 1, y);
            if (x + 1 < w_) knownOnly(x + 1, y);
            if (y > 0) knownOnly(x, y - 1);
            if (y + 1 < h_) knownOnly(x, y + 1);
        }
    }

private:
    Rvp8u* px(int x, int y) const { return img_ + rowOffset(step_, y) + static_cast<ptrdiff_t>(x) * C; }
    int I(int x, int y, int c) const { return px(x, y)[c]; }
    Rvp16s* grad(int x, int y) const {
        return s_->pImageGrad + static_cast<int64_t>(y) * (s_->gradStep / 2) + static_cast<int64_t>(x) * 2 * C;
    }
    bool known(int x, int y) const { return s_->pScratch[static_cast<int64_t>(y) * s_->maskStep + x] == 0; }
    float T(int x, int y) const { return s_->pDistPlane[static_cast<int64_t>(y) * (s_->distStep / 4) + x]; }

    // band = dilate(mask) - mask, into the band plane.
    void band(RvpiMorphState* element) {
        const int ms = s_->maskStep;
        rvpiDilateBorderReplicate_8u_C1R(s_->pMaskPlane, ms, s_->pTemp, ms, s_->workSize, rvpBorderRepl, element);
        rvpiSub_8u_C1RSfs(s_->pMaskPlane, ms, s_->pTemp, ms, s_->pBandPlane, ms, s_->workSize, 0);
    }

    // Difference along one axis at position i of n, by the rules of the
    // method: signed (inner: twice the central difference, edges: one-sided)
    // or absolute (inner: the two one-sided, edges: twice the one). get(j)
    // reads the sample at j.
    template <class Get> int axisFull(int i, int n, Get get) const {
        if (n == 1) return 0;
        if (s_->method == 0) {
            if (i == 0) return get(1) - get(0);
            if (i == n - 1) return get(n - 1) - get(n - 2);
            return (get(i + 1) - get(i - 1)) * 2;
        }
        if (i == 0) return 2 * std::abs(get(1) - get(0));
        if (i == n - 1) return 2 * std::abs(get(n - 1) - get(n - 2));
        return std::abs(get(i + 1) - get(i)) + std::abs(get(i) - get(i - 1));
    }
    // The same from known samples only; an unknown centre takes the central
    // difference of two known neighbours or nothing.
    template <class Get, class Known> int axisKnown(int i, int n, Get get, Known kn) const {
        const bool l = i > 0 && kn(i - 1), r = i + 1 < n && kn(i + 1), c = kn(i);
        if (s_->method == 0) {
            if (l && r) return (get(i + 1) - get(i - 1)) * 2;
            if (!c) return 0;
            if (r) return get(i + 1) - get(i);
            if (l) return get(i) - get(i - 1);
            return 0;
        }
        if (!c) return l && r ? std::abs(get(i + 1) - get(i - 1)) : 0;
        if (l && r) return std::abs(get(i + 1) - get(i)) + std::abs(get(i) - get(i - 1));
        if (r) return 2 * std::abs(get(i + 1) - get(i));
        if (l) return 2 * std::abs(get(i) - get(i - 1));
        return 0;
    }
    void full(int x, int y) {
        Rvp16s* g = grad(x, y);
        for (int c = 0; c < C; ++c) {
            g[2 * c] = static_cast<Rvp16s>(axisFull(x, w_, [&](int j) { return I(j, y, c); }));
            g[2 * c + 1] = static_cast<Rvp16s>(axisFull(y, h_, [&](int j) { return I(x, j, c); }));
        }
    }
    void knownOnly(int x, int y) {
        Rvp16s* g = grad(x, y);
        for (int c = 0; c < C; ++c) {
            g[2 * c] = static_cast<Rvp16s>(
                axisKnown(x, w_, [&](int j) { return I(j, y, c); }, [&](int j) { return known(j, y); }));
            g[2 * c + 1] = static_cast<Rvp16s>(
                axisKnown(y, h_, [&](int j) { return I(x, j, c); }, [&](int j) { return known(x, j); }));
        }
    }
    // Gradient of the distances by the signed rule, times 64, rounded.
    void distanceGradient(int x, int y) {
        const auto axis = [&](int i, int n, auto get) {
            float d = 0.0f;
            if (n > 1) d = i == 0 ? get(1) - get(0) : i == n - 1 ? get(n - 1) - get(n - 2) : (get(i + 1) - get(i - 1)) * 2.0f;
            const float v = d * 64.0f;
            return static_cast<Rvp16s>(!(v == v) ? 0 : v >= 32767.0f ? 32767 : v <= -32768.0f ? -32768 : std::lrint(v));
        };
        Rvp16s* g = s_->pDistGrad + static_cast<int64_t>(y) * (s_->distGradStep / 2) + 2 * static_cast<int64_t>(x);
        g[0] = axis(x, w_, [&](int j) { return T(j, y); });
        g[1] = axis(y, h_, [&](int j) { return T(x, j); });
    }

    void fill(int x, int y) {
        const int r = s_->r;
        const bool inner = x >= r && y >= r && x < w_ - r && y < h_ - r;
        float sum = 1e-30f, ia[C] = {}, jx[C] = {}, jy[C] = {};
        float gx = 0, gy = 0;
        int gsq = 0;
        if (s_->method == 0) {
            const Rvp16s* g = s_->pDistGrad + static_cast<int64_t>(y) * (s_->distGradStep / 2) + 2 * static_cast<int64_t>(x);
            gx = g[0], gy = g[1];
        } else {
            int sx = 0, sy = 0;
            for (int c = 0; c < C; ++c) sx += grad(x, y)[2 * c], sy += grad(x, y)[2 * c + 1];
            gx = static_cast<float>(sx), gy = static_cast<float>(sy);
            gsq = sx * sx + sy * sy;
        }
        const float tp = T(x, y);
        const float invGrad = gsq ? refinedRsqrt(static_cast<float>(gsq)) : 0.0f;
        for (int k = 0; k < s_->offsetCount; ++k) {
            const Offset& o = s_->pOffsets[k];
            const int qx = x - o.ndx, qy = y - o.ndy;
            if (!inner && (qx < 0 || qy < 0 || qx >= w_ || qy >= h_)) continue;
            if (!known(qx, qy)) continue;
            float w;
            if (s_->method == 0) {
                float dot = gx * static_cast<float>(o.ndx) + gy * static_cast<float>(o.ndy);
                if (std::fabs(dot) < 2.5e-25f) dot = 2.5e-25f;
                w = std::fabs((0.00024414062f / (std::fabs(T(qx, qy) - tp) + 1.0f)) * o.weight * dot);
            } else {
                const int dot = std::abs(o.ndx * static_cast<int>(gx) + o.ndy * static_cast<int>(gy));
                w = dot == 0 ? 1e-6f : static_cast<float>(dot) * invGrad * o.weight;
            }
            sum += w;
            const Rvp8u* q = px(qx, qy);
            const Rvp16s* gq = grad(qx, qy);
            for (int c = 0; c < C; ++c) {
                ia[c] += static_cast<float>(q[c]) * w;
                if (s_->method == 0) {
                    jx[c] -= static_cast<float>(gq[2 * c]) * static_cast<float>(o.ndx) * w;
                    jy[c] -= static_cast<float>(gq[2 * c + 1]) * static_cast<float>(o.ndy) * w;
                }
            }
        }
        if (sum < 0.0001f) {
            // Too little weight: the mean of the known 4-neighbours.
            int n = 0;
            float a[C] = {};
            const int nx[4] = {x, x - 1, x + 1, x}, ny[4] = {y - 1, y, y, y + 1};
            for (int k = 0; k < 4; ++k) {
                if (nx[k] < 0 || ny[k] < 0 || nx[k] >= w_ || ny[k] >= h_ || !known(nx[k], ny[k])) continue;
                ++n;
                for (int c = 0; c < C; ++c) a[c] += static_cast<float>(I(nx[k], ny[k], c));
            }
            sum = n ? static_cast<float>(n) : 1e-30f;
            for (int c = 0; c < C; ++c) ia[c] = a[c], jx[c] = jy[c] = 0.0f;
        }
        Rvp8u* out = px(x, y);
        for (int c = 0; c < C; ++c) {
            float v = ia[c] / sum + 0.5f;
            if (s_->method == 0) v += (jx[c] + jy[c]) / (std::sqrt(jx[c] * jx[c] + jy[c] * jy[c]) + 1e-20f);
            out[c] = static_cast<Rvp8u>(!(v > 0.0f) ? 0 : v >= 255.0f ? 255 : static_cast<int>(v));
        }
    }

    RvpiInpaintState* s_;
    Rvp8u* img_;
    int step_, w_, h_;
};

RvpStatus inpaint(int C, const Rvp8u* src, int srcStep, Rvp8u* dst, int dstStep, RvpiSize roi, RvpiInpaintState* s) {
    Check c;
    c.ptrs(src, dst, s).size(roi);
    if (c == rvpStsNoErr && (roi.width != s->roiSize.width || roi.height != s->roiSize.height || C != s->channels))
        c.fail(true, rvpStsSizeErr);
    const int64_t rowBytes = static_cast<int64_t>(roi.width) * C;
    if (RvpStatus st = c.fail(c == rvpStsNoErr && (srcStep < rowBytes || dstStep < rowBytes), rvpStsStepErr)) return st;
    for (int y = 0; y < roi.height; ++y)
        std::memmove(rowPtr(dst, dstStep, y), rowPtr(src, srcStep, y), static_cast<size_t>(rowBytes));
    if (s->fillCount == 0) return rvpStsNoErr;
    if (C == 1) Filler<1>(s, dst, dstStep).run();
    else Filler<3>(s, dst, dstStep).run();
    return rvpStsNoErr;
}

RvpStatus release(RvpiInpaintState* s) {
    if (!s) return rvpStsNullPtrErr;
    rvpiMorphologyFree(s->pMorphDisk);
    rvpiMorphologyFree(s->pMorphCross);
    rvpsFree(s->block);
    return rvpStsNoErr;
}

}  // namespace
}  // namespace rvcv

using namespace rvcv;

RVCV_EXPORT RvpStatus rvpiInpaintInitAlloc_8u_C1R(RvpiInpaintState** ppState, const Rvp32f* pDist, int distStep,
                                                  const Rvp8u* pMask, int maskStep, RvpiSize roiSize, Rvp32f radius,
                                                  int flags) {
    return initAlloc(1, ppState, pDist, distStep, pMask, maskStep, roiSize, radius, flags);
}
RVCV_EXPORT RvpStatus rvpiInpaintInitAlloc_8u_C3R(RvpiInpaintState** ppState, const Rvp32f* pDist, int distStep,
                                                  const Rvp8u* pMask, int maskStep, RvpiSize roiSize, Rvp32f radius,
                                                  int flags) {
    return initAlloc(3, ppState, pDist, distStep, pMask, maskStep, roiSize, radius, flags);
}
RVCV_EXPORT RvpStatus rvpiInpaint_8u_C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep, RvpiSize roiSize,
                                         RvpiInpaintState* pState) {
    return inpaint(1, pSrc, srcStep, pDst, dstStep, roiSize, pState);
}
RVCV_EXPORT RvpStatus rvpiInpaint_8u_C3R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep, RvpiSize roiSize,
                                         RvpiInpaintState* pState) {
    return inpaint(3, pSrc, srcStep, pDst, dstStep, roiSize, pState);
}
RVCV_EXPORT RvpStatus rvpiInpaintFree_8u_C1R(RvpiInpaintState* pState) { return release(pState); }
RVCV_EXPORT RvpStatus rvpiInpaintFree_8u_C3R(RvpiInpaintState* pState) { return release(pState); }
