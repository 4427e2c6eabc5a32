// Mixture-of-Gaussians background model: creation from the first frame,
// the per-frame update (threaded over rows: pixels are independent, so the
// result is the same for any team), and release. The state's numbers are
// fixed defaults; none comes from the caller.
#include "motion/rvcvfgauss.h"
#include "rvcvcpu.h"
#include "rvcvframe.h"

#include <cmath>

struct RvpiFGGaussianState {
    Rvp8u* pBackground;
    Rvp32s backgroundStep;
    Rvp8u* pForeground;
    Rvp32s foregroundStep;
    Rvp32s history;
    Rvp32s gaussianCount;
    Rvp64f backgroundRatio;
    Rvp64f matchFactor;
    Rvp64f initialSigma;    // held, not read by the update
    Rvp64f initialWeight;   // held, not read by the update
    Rvp64f initialVariance;
    rvcv::GaussPlanes planes;
    Rvp32s frameCount;
    int width, height, channels;
};

namespace rvcv {

namespace {
struct Reciprocals {
    double v[kReciprocals];
    constexpr Reciprocals() : v() {
        v[0] = 0.0;  // never read: zero takes the division
        for (int i = 1; i < kReciprocals; ++i) v[i] = 1.0 / i;
    }
};
constexpr Reciprocals kReciprocalValues;
}  // namespace

// Filled by the compiler, which rounds each quotient as the division does.
const double* reciprocalTable() { return kReciprocalValues.v; }

namespace {

const GaussKernels& kernels() { return pick(m7::kGauss, avx2::kGauss, avx512::kGauss); }

// Every block of the state, from rvpMalloc; sizes in 64 bits.
struct Blocks {
    void* p[5] = {};
    void release() {
        for (void*& b : p) {
            rvpFree(b);
            b = nullptr;
        }
    }
};

RvpStatus allocate(Blocks& b, const int64_t bytes[5]) {
    for (int j = 0; j < 5; ++j) {
        if (bytes[j] > INT32_MAX) {
            b.release();
            return rvpStsSizeErr;
        }
        b.p[j] = rvpMalloc(static_cast<int>(bytes[j]));
        if (!b.p[j]) {
            b.release();
            return rvpStsMemAllocErr;
        }
    }
    return rvpStsNoErr;
}

RvpStatus initAlloc(int C, const Rvp8u* src, int srcStep, RvpiSize roi, const void* model,
                    RvpiFGGaussianState** pp) {
    Check c;
    c.ptrs(src, model, pp).size(roi);
    if (RvpStatus st = c.fail(c == rvpStsNoErr && static_cast<int64_t>(roi.width) * C > srcStep, rvpStsStepErr))
        return st;
    const int64_t w = roi.width, h = roi.height, pix = w * h, n = (pix + 7) & ~int64_t{7};
    const int64_t bytes[5] = {static_cast<int64_t>(sizeof(RvpiFGGaussianState)), n * kGaussians * 4,
                              n * kGaussians * 8, (n * kGaussians * C * 2 + n * kGaussians) * 8, pix * (C + 1)};
    Blocks b;
    if (RvpStatus st = allocate(b, bytes)) return st;
    auto* s = static_cast<RvpiFGGaussianState*>(b.p[0]);
    s->pBackground = static_cast<Rvp8u*>(b.p[4]);
    s->backgroundStep = static_cast<Rvp32s>(w * C);
    s->pForeground = s->pBackground + pix * C;
    s->foregroundStep = static_cast<Rvp32s>(w);
    s->history = 200;
    s->gaussianCount = kGaussians;
    s->backgroundRatio = 0.7;
    s->matchFactor = 2.5;
    s->initialSigma = 15.0;
    s->initialWeight = 0.05;
    s->initialVariance = 900.0;
    s->frameCount = 0;
    s->width = roi.width;
    s->height = roi.height;
    s->channels = C;
    GaussPlanes& p = s->planes;
    p.n = static_cast<size_t>(n);
    p.count = static_cast<uint32_t*>(b.p[1]);
    p.weight = static_cast<double*>(b.p[2]);
    p.variance = static_cast<double*>(b.p[3]);
    p.mean = p.variance + n * kGaussians * C;
    p.invRoot = p.mean + n * kGaussians * C;
    // Gaussian 0 takes the pixel, the others are empty; padding lanes hold 0.
    const auto setPixel = [&](int64_t i, const Rvp8u* px) {
        for (int k = 0; k < kGaussians; ++k) {
            p.count[k * n + i] = k == 0 ? 1u : 0u;
            p.weight[k * n + i] = k == 0 ? 1.0 : 0.0;
            p.invRoot[k * n + i] = 1.0 / std::sqrt(12.5 * C);  // any estimate within 2^-11 serves
            for (int ch = 0; ch < C; ++ch) {
                p.variance[(k * C + ch) * n + i] = 12.5;
                p.mean[(k * C + ch) * n + i] = k == 0 && px ? px[ch] : 0.0;
            }
        }
    };
    for (int64_t y = 0; y < h; ++y) {
        const Rvp8u* row = rowPtr(src, srcStep, static_cast<int>(y));
        for (int64_t x = 0; x < w; ++x) setPixel(y * w + x, row + x * C);
        std::memcpy(s->pBackground + y * w * C, row, static_cast<size_t>(w * C));
    }
    for (int64_t i = pix; i < n; ++i) setPixel(i, nullptr);
    std::memset(s->pForeground, 0, static_cast<size_t>(pix));
    *pp = s;
    return rvpStsNoErr;
}

void copyPlane(const Rvp8u* from, int rowBytes, int h, Rvp8u* to, int step) {
    for (int y = 0; y < h; ++y) std::memcpy(rowPtr(to, step, y), from + static_cast<ptrdiff_t>(rowBytes) * y, rowBytes);
}

RvpStatus update(int C, const Rvp8u* src, int srcStep, Rvp8u* ref, int refStep, Rvp8u* dst, int dstStep, RvpiSize roi,
                 RvpiFGGaussianState* s) {
    Check c;
    c.ptrs(src, ref, dst, s).size(roi);
    if (c == rvpStsNoErr && (roi.width != s->width || roi.height != s->height || C != s->channels))
        c.fail(true, rvpStsSizeErr);
    if (RvpStatus st = c.fail(c == rvpStsNoErr && static_cast<int64_t>(roi.width) * C > srcStep, rvpStsStepErr))
        return st;
    s->frameCount = wadd(s->frameCount, 1);
    GaussFrame f;
    f.historyRule = s->frameCount == s->history;
    f.history = s->history;
    f.invHistory = 1.0 / f.history;
    f.fade = 1.0 - f.invHistory;
    f.matchFactor = s->matchFactor;
    f.backgroundRatio = s->backgroundRatio;
    f.initialVariance = s->initialVariance;
    f.reciprocal = reciprocalTable();
    const GaussRowFn row = kernels().row[C == 1 ? 0 : 1];
    const int w = roi.width;
    const auto rows = [&](int y0, int count) {
        for (int y = y0; y < y0 + count; ++y) {
            const size_t i = static_cast<size_t>(y) * w;
            row(s->planes, i, rowPtr(src, srcStep, y), w, s->pBackground + i * C, s->pForeground + i, f);
        }
    };
    const int threads = ownGetNumThreads();
    if (wmul(w, roi.height) < kPixelwiseParallelMin || threads <= 1) rows(0, roi.height);
    else bandRegion(roi.height, threads, rows);
    copyPlane(s->pBackground, s->backgroundStep, roi.height, ref, refStep);
    copyPlane(s->pForeground, s->foregroundStep, roi.height, dst, dstStep);
    return rvpStsNoErr;
}

// Either form releases either state: the state knows its own blocks.
RvpStatus release(RvpiFGGaussianState* s) {
    if (!s) return rvpStsNullPtrErr;
    rvpFree(s->planes.count);
    rvpFree(s->planes.weight);
    rvpFree(s->planes.variance);
    rvpFree(s->pBackground);
    rvpFree(s);
    return rvpStsNoErr;
}

}  // namespace
}  // namespace rvcv

using namespace rvcv;

RVCV_EXPORT RvpStatus rvpiForegroundGaussianInitAlloc_8u_C1R(const Rvp8u* pSrc, int srcStep, RvpiSize roiSize,
                                                             const void* pModel, RvpiFGGaussianState** ppState) {
    return initAlloc(1, pSrc, srcStep, roiSize, pModel, ppState);
}
RVCV_EXPORT RvpStatus rvpiForegroundGaussianInitAlloc_8u_C3R(const Rvp8u* pSrc, int srcStep, RvpiSize roiSize,
                                                             const void* pModel, RvpiFGGaussianState** ppState) {
    return initAlloc(3, pSrc, srcStep, roiSize, pModel, ppState);
}
RVCV_EXPORT RvpStatus rvpiForegroundGaussian_8u_C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pRef, int refStep,
                                                    Rvp8u* pDst, int dstStep, RvpiSize roiSize,
                                                    RvpiFGGaussianState* pState) {
    return update(1, pSrc, srcStep, pRef, refStep, pDst, dstStep, roiSize, pState);
}
RVCV_EXPORT RvpStatus rvpiForegroundGaussian_8u_C3R(const Rvp8u* pSrc, int srcStep, Rvp8u* pRef, int refStep,
                                                    Rvp8u* pDst, int dstStep, RvpiSize roiSize,
                                                    RvpiFGGaussianState* pState) {
    return update(3, pSrc, srcStep, pRef, refStep, pDst, dstStep, roiSize, pState);
}
RVCV_EXPORT RvpStatus rvpiForegroundGaussianFree_8u_C1R(RvpiFGGaussianState* pState) { return release(pState); }
RVCV_EXPORT RvpStatus rvpiForegroundGaussianFree_8u_C3R(RvpiFGGaussianState* pState) { return release(pState); }
