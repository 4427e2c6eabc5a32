// Canny edge detector over caller-computed derivatives: L1 magnitude, four-
// sector non-maximum suppression and hysteresis from a stack of seeds, all in
// one caller buffer and on the calling thread. The candidate map carries a
// one-byte frame of zeros, which is the whole treatment of the image's edges.
#include <emmintrin.h>

#include <cstring>

#include "rvcvcanny.h"
#include "rvcvcpu.h"
#include "rvcvframe.h"

namespace rvcv {
namespace {

// Stack entries are 16-bit while both sides stay below this, else 32-bit.
constexpr int kCannyWideLimit = 0xfffd;

bool narrowStack(RvpiSize roi) { return roi.width < kCannyWideLimit && roi.height < kCannyWideLimit; }

template <class P> P* alignUp32(P* p) {
    return reinterpret_cast<P*>((reinterpret_cast<uintptr_t>(p) + 31) & ~static_cast<uintptr_t>(31));
}

// Thresholds of the 16s form are truncated to integers the way the
// processor converts (a NaN or an out-of-range value gives INT_MIN); the
// 32f form compares with the floats as given.
inline Rvp32s threshold(Rvp32f t, const Rvp16s*) { return _mm_cvtt_ss2si(_mm_set_ss(t)); }
inline Rvp32f threshold(Rvp32f t, const Rvp32f*) { return t; }

// The kernels of a form (derivative type) and stack entry type.
inline CannyMag16s magKernel(const CannyKernels& k, const Rvp16s*) { return k.mag16s; }
inline CannyMag32f magKernel(const CannyKernels& k, const Rvp32f*) { return k.mag32f; }
inline auto nmsKernel(const CannyKernels& k, const Rvp16s*, const Rvp16u*) { return k.nms16s16u; }
inline auto nmsKernel(const CannyKernels& k, const Rvp16s*, const Rvp32s*) { return k.nms16s32s; }
inline auto nmsKernel(const CannyKernels& k, const Rvp32f*, const Rvp16u*) { return k.nms32f16u; }
inline auto nmsKernel(const CannyKernels& k, const Rvp32f*, const Rvp32s*) { return k.nms32f32s; }

// Grows edges from the seeds on the stack through 8-connected candidates.
// A pixel is pushed only when first reached, so each pixel enters the stack
// once at most. The 3x3 neighbourhood is tested at once: a map byte equal to
// a bare candidate is a neighbour to take; usually there is none.
template <class E>
void ownHysteresisThresholding(const E* base, E* top, Rvp8u* map, ptrdiff_t mapStep, Rvp8u* dst,
                               int dstStep) {
    const __m128i candidate = _mm_set1_epi8(static_cast<char>(kCannyCandidate));
    while (top != base) {
        top -= 2;
        const int y = top[0], x = top[1];
        Rvp8u* m = map + y * mapStep + x;  // top-left neighbour; 4 bytes read per row, the 4th ignored
        uint32_t r0, r1, r2;
        std::memcpy(&r0, m, 4);
        std::memcpy(&r1, m + mapStep, 4);
        std::memcpy(&r2, m + 2 * mapStep, 4);
        const __m128i rows = _mm_set_epi32(0, static_cast<int>(r2), static_cast<int>(r1), static_cast<int>(r0));
        unsigned take = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(rows, candidate))) & 0x757u;
        while (take != 0) {  // bits 4k + j: row y - 1 + k, column x - 1 + j, in scan order
            const int bitIndex = __builtin_ctz(take);
            take &= take - 1;
            const int k = bitIndex >> 2, j = bitIndex & 3;
            m[k * mapStep + j] |= kCannyEdge;
            const int ny = y - 1 + k, nx = x - 1 + j;
            rowPtr(dst, dstStep, ny)[nx] = 0xFF;
            top[0] = static_cast<E>(ny);
            top[1] = static_cast<E>(nx);
            top += 2;
        }
    }
}

template <class T, class E, class M>
void detect(const T* pDx, int dxStep, const T* pDy, int dyStep, Rvp8u* pDst, int dstStep, RvpiSize roi, M low,
            M high, Rvp8u* pBuffer) {
    const CannyKernels& k = pick(m7::kCanny, avx2::kCanny);
    const auto mag = magKernel(k, pDx);
    const auto nms = nmsKernel(k, pDx, static_cast<const E*>(nullptr));
    const int w = roi.width, h = roi.height;
    const ptrdiff_t mapStep = static_cast<ptrdiff_t>(w) + 2;
    const ptrdiff_t mapBytes = mapStep * (static_cast<ptrdiff_t>(h) + 2);

    Rvp8u* map = alignUp32(pBuffer);
    M* ring = reinterpret_cast<M*>(alignUp32(map + mapBytes) + 12);
    E* stack = reinterpret_cast<E*>(reinterpret_cast<Rvp8u*>(ring) + 16 * mapStep);
    M* rows[4];
    for (int i = 0; i < 4; ++i) rows[i] = ring + i * mapStep + 1;  // image column 0

    // Suppression writes every map row and output row whole, so only the
    // map's top and bottom frame rows and the ring need clearing here.
    std::memset(map, 0, static_cast<size_t>(mapStep));
    std::memset(map + mapBytes - mapStep, 0, static_cast<size_t>(mapStep));
    std::memset(ring, 0, static_cast<size_t>(16 * mapStep));

    auto magRow = [&](int y) {
        mag(rowPtr(pDx, dxStep, y), rowPtr(pDy, dyStep, y), rows[(y + 1) & 3], w, low);
    };
    E* top = stack;
    auto suppressRow = [&](int y) {
        top = nms(rowPtr(pDx, dxStep, y), rowPtr(pDy, dyStep, y), rows[y & 3], rows[(y + 1) & 3],
                  rows[(y + 2) & 3], map + (y + 1) * mapStep + 1, top, high, rowPtr(pDst, dstStep, y), w, y);
    };

    // Magnitude runs two rows ahead of suppression; ring row 0 starts as the
    // zero row above the image, and the row after the last one is cleared to
    // serve as the zero row below it.
    magRow(0);
    if (h > 1) magRow(1);
    for (int y = 2; y < h; ++y) {
        magRow(y);
        suppressRow(y - 2);
    }
    std::memset(rows[(h + 1) & 3] - 1, 0, static_cast<size_t>(mapStep) * sizeof(M));
    for (int y = h > 2 ? h - 2 : 0; y < h; ++y) suppressRow(y);

    ownHysteresisThresholding(stack, top, map, mapStep, pDst, dstStep);
}

// Map of (H+2)(W+2) bytes, a ring of four rows of W+2 four-byte elements,
// and a stack with room for every pixel (4 or 8 bytes each), with slack for
// the alignment of the map and the ring; in 64 bits.
int64_t cannyBytes(RvpiSize roi) {
    const int64_t perPixel = narrowStack(roi) ? 5 : 9;
    const int64_t frame = (static_cast<int64_t>(roi.height) + 2) * (static_cast<int64_t>(roi.width) + 2);
    return frame * perPixel + 160 + 16 * static_cast<int64_t>(roi.width);
}

template <class T>
RvpStatus canny(const T* pDx, int dxStep, const T* pDy, int dyStep, Rvp8u* pDst, int dstStep, RvpiSize roi,
                Rvp32f lowThresh, Rvp32f highThresh, Rvp8u* pBuffer) {
    constexpr int e = static_cast<int>(sizeof(T));
    Check c;
    c.ptrs(pDx, pDy, pDst, pBuffer).size(roi).fail(!fitsInt(cannyBytes(roi)), rvpStsSizeErr);
    c.steps(wmul(roi.width, e), dxStep, dyStep).step(dstStep, roi.width).evenSteps(e, dxStep, dyStep);
    // Only the two ordered comparisons: a NaN threshold passes.
    c.fail(lowThresh < 0 || highThresh < lowThresh, rvpStsBadArgErr);
    if (RvpStatus st = c) return st;
    const auto low = threshold(lowThresh, pDx), high = threshold(highThresh, pDx);
    if (narrowStack(roi))
        detect<T, Rvp16u>(pDx, dxStep, pDy, dyStep, pDst, dstStep, roi, low, high, pBuffer);
    else
        detect<T, Rvp32s>(pDx, dxStep, pDy, dyStep, pDst, dstStep, roi, low, high, pBuffer);
    return rvpStsNoErr;
}

}  // namespace
}  // namespace rvcv

using namespace rvcv;

RVCV_EXPORT RvpStatus rvpiCannyGetSize(RvpiSize roiSize, int* pBufferSize) {
    if (RvpStatus st = Check().ptr(pBufferSize).size(roiSize)) return st;
    return storeSize(cannyBytes(roiSize), pBufferSize);
}

RVCV_EXPORT RvpStatus rvpiCanny_16s8u_C1R(const Rvp16s* pSrcDx, int srcDxStep, const Rvp16s* pSrcDy, int srcDyStep,
                                          Rvp8u* pDstEdges, int dstEdgeStep, RvpiSize roiSize, Rvp32f lowThresh,
                                          Rvp32f highThresh, Rvp8u* pBuffer) {
    return canny(pSrcDx, srcDxStep, pSrcDy, srcDyStep, pDstEdges, dstEdgeStep, roiSize, lowThresh, highThresh, pBuffer);
}

RVCV_EXPORT RvpStatus rvpiCanny_32f8u_C1R(const Rvp32f* pSrcDx, int srcDxStep, const Rvp32f* pSrcDy, int srcDyStep,
                                          Rvp8u* pDstEdges, int dstEdgeStep, RvpiSize roiSize, Rvp32f lowThresh,
                                          Rvp32f highThresh, Rvp8u* pBuffer) {
    return canny(pSrcDx, srcDxStep, pSrcDy, srcDyStep, pDstEdges, dstEdgeStep, roiSize, lowThresh, highThresh, pBuffer);
}
