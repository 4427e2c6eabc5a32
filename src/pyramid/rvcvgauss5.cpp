// The 2:1 Gaussian 5x5 pyramid steps: 1 4 6 4 1 smoothing with decimation
// (down) or zero insertion and the kernel times 4 (up), replicated border.
// The calling thread's band keeps whole rows of intermediates in pBuffer;
// the bands of other threads use a fixed block of their own stack in column
// chunks, so the buffer's size never depends on the thread count.
#include <algorithm>

#include "pyramid/rvcvgauss5.h"
#include "rvcvcpu.h"
#include "rvcvframe.h"

namespace rvcv {
namespace {

const Gauss5Kernels& kernels() { return pick(m7::kGauss5, avx2::kGauss5); }

constexpr int kSample8u = RVP_SAMPLE_8U, kSample32f = RVP_SAMPLE_32F;
constexpr int kStackScratch = 16384;
// Threads only for images with this many output samples and 16 rows a band.
constexpr int64_t kParallelMin = 0x20000;
constexpr int kRowsPerBand = 16;

int accBytes(int dataType) { return dataType == kSample8u ? 2 : 4; }

int64_t downBytes(int64_t w, int channels, int dataType) {
    return gauss5DownBytes((w + 1) / 2, channels, accBytes(dataType));
}
int64_t upBytes(int64_t w, int channels, int dataType) { return gauss5UpBytes(w, channels, accBytes(dataType)); }

RvpStatus query(bool down, int w, int dataType, int channels, int* pSize) {
    if (pSize == nullptr) return rvpStsNullPtrErr;
    if (w < 1) return rvpStsSizeErr;
    if (dataType != kSample8u && dataType != kSample32f) return rvpStsInterpolationErr;
    if (channels != 1 && channels != 3) return rvpStsChannelErr;
    return storeSize(down ? downBytes(w, channels, dataType) : upBytes(w, channels, dataType), pSize);
}

template <class T> constexpr int sampleType() { return sizeof(T) == 1 ? kSample8u : kSample32f; }

// down: destination ((w + 1) / 2) x ((h + 1) / 2); up: 2w x 2h.
template <class T, int C>
RvpStatus step(bool down, Gauss5Band band, const T* pSrc, int srcStep, T* pDst, int dstStep, RvpiSize roi,
               Rvp8u* pBuffer) {
    constexpr int64_t px = sizeof(T) * C;
    Check c;
    c.ptrs(pSrc, pDst, pBuffer).size(roi);
    if (c != rvpStsNoErr) return c;
    const int64_t dstW = down ? (int64_t{roi.width} + 1) / 2 : 2 * int64_t{roi.width};
    c.fail(srcStep < roi.width * px || dstStep < dstW * px, rvpStsStepErr);
    c.evenSteps(static_cast<int>(sizeof(T)), srcStep, dstStep);
    const int64_t bytes = down ? downBytes(roi.width, C, sampleType<T>()) : upBytes(roi.width, C, sampleType<T>());
    c.fail(!fitsInt(bytes), rvpStsSizeErr);
    if (c != rvpStsNoErr) return c;

    const int w = roi.width, h = roi.height;
    // Down bands count output rows, up bands source rows (two output rows each).
    const int rows = down ? (h + 1) / 2 : h;
    const int acc = accBytes(sampleType<T>());
    const int whole = down ? (w + 1) / 2 : w;
    const int stackChunk = down ? gauss5DownChunk(kStackScratch, C, acc) : gauss5UpChunk(kStackScratch, C, acc);
    auto run = [&](int y0, int n) {
        if (y0 == 0) {
            band(pSrc, srcStep, w, h, pDst, dstStep, 0, n, pBuffer, whole);
        } else {
            alignas(32) Rvp8u local[kStackScratch];
            band(pSrc, srcStep, w, h, pDst, dstStep, y0, n, local, std::min(whole, stackChunk));
        }
    };
    const int64_t outSamples = dstW * C * (down ? rows : 2 * int64_t{h});
    int team = std::min({ownGetNumThreads(), rvpGetNumCoresOnDie(), rows / kRowsPerBand});
    if (outSamples >= kParallelMin && team > 1) bandRegion(rows, team, run);
    else run(0, rows);
    return rvpStsNoErr;
}

}  // namespace
}  // namespace rvcv

using namespace rvcv;

RVCV_EXPORT RvpStatus rvpiPyrDownGetBufSize_Gauss5x5(int roiWidth, int dataType, int channels, int* pBufferSize) {
    return query(true, roiWidth, dataType, channels, pBufferSize);
}
RVCV_EXPORT RvpStatus rvpiPyrUpGetBufSize_Gauss5x5(int roiWidth, int dataType, int channels, int* pBufferSize) {
    return query(false, roiWidth, dataType, channels, pBufferSize);
}

#define RVCV_GAUSS5(Dir, down, T, type, C, field)                                                                    \
    RVCV_EXPORT RvpStatus rvpiPyr##Dir##_Gauss5x5_##type##_C##C##R(const T* pSrc, int srcStep, T* pDst, int dstStep, \
                                                                  RvpiSize roiSize, Rvp8u* pBuffer) {             \
        return step<T, C>(down, kernels().field, pSrc, srcStep, pDst, dstStep, roiSize, pBuffer);                  \
    }
RVCV_GAUSS5(Down, true, Rvp8u, 8u, 1, down8uC1)
RVCV_GAUSS5(Down, true, Rvp8u, 8u, 3, down8uC3)
RVCV_GAUSS5(Down, true, Rvp32f, 32f, 1, down32fC1)
RVCV_GAUSS5(Down, true, Rvp32f, 32f, 3, down32fC3)
RVCV_GAUSS5(Up, false, Rvp8u, 8u, 1, up8uC1)
RVCV_GAUSS5(Up, false, Rvp8u, 8u, 3, up8uC3)
RVCV_GAUSS5(Up, false, Rvp32f, 32f, 1, up32fC1)
RVCV_GAUSS5(Up, false, Rvp32f, 32f, 3, up32fC3)
