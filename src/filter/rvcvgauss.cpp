// Gaussian filter over the public pipelines, in strips of at most
// kernelSize rows, and the Sobel kernel generator. Rows above and below the
// image follow the border rule unless flags 0x10 / 0x20 say they are real;
// a constant border contributes rows of the border value itself.
#include "filter/rvcvfilter.h"

namespace rvcv {
namespace filt {
namespace {

Rvp8u* alignUp(Rvp8u* p, uintptr_t a) {
    return reinterpret_cast<Rvp8u*>((reinterpret_cast<uintptr_t>(p) + a - 1) & ~(a - 1));
}

int64_t gaussBytes(RvpiSize roi, int k, int maxThreads) {
    const int64_t w = roi.width, kk = k;
    const int64_t a = (kk + 3 + w) & ~int64_t{3}, b = (kk + 7 + w) & ~int64_t{7};
    int64_t s = a * 4 * (kk * 2);
    s += 2 * (b * 4 * kk / 2);
    s += 96 + ((kk + 3) & ~int64_t{3}) * 4;
    s += rowPipelineBytes(RowForm::P32f_C1, RvpiSize{roi.width, k}, k, maxThreads) + 32;
    s += colPipelineBytes(ColForm::P32f, RvpiSize{roi.width, k}, k, maxThreads) + 64;
    return s + (kk + kk) * 8;
}

bool badGaussArgs(int k, int borderType) {
    const int type = borderType & ~0x30;
    return k < 3 || (k & 1) == 0 || type < 0 || type > 4;
}

RvpStatus gauss(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep, RvpiSize roi, int k, Rvp32f sigma,
                int borderType, Rvp32f bv, Rvp8u* pBuffer) {
    Check c;
    c.ptrs(pSrc, pDst, pBuffer);
    c.fail(roi.height < 1 || roi.width < 1, rvpStsSizeErr);
    c.fail(srcStep < roi.width || dstStep < roi.width, rvpStsStepErr);
    c.fail(badGaussArgs(k, borderType), rvpStsBadArgErr);
    // Arguments whose buffer size would not fit an int (the query refuses them too).
    c.fail(!fitsInt(gaussBytes(roi, k, owncvGetMaxNumThreads())), rvpStsSizeErr);
    if (c != rvpStsNoErr) return c;

    const int w = roi.width, H = roi.height, r = k / 2, type = borderType & 0xF;
    const int a = (k + 3 + w) & ~3;
    float* taps = reinterpret_cast<float*>(alignUp(pBuffer, 32));
    float* ring = reinterpret_cast<float*>(alignUp(reinterpret_cast<Rvp8u*>(taps + ((k + 3) & ~3)), 32));
    float** ptrs = reinterpret_cast<float**>(ring + static_cast<ptrdiff_t>(a) * 2 * k);
    Rvp8u* rowBuf = reinterpret_cast<Rvp8u*>(ptrs + 2 * k);
    Rvp8u* colBuf = rowBuf + static_cast<int>(rowPipelineBytes(RowForm::P32f_C1, RvpiSize{w, k}, k, owncvGetMaxNumThreads()));

    // A zero or NaN sigma would make every tap NaN; it takes the width
    // that suits the kernel size instead. A negative sigma acts by its square.
    if (!(sigma * sigma > 0.0f)) sigma = 0.3f * (static_cast<float>(k - 1) * 0.5f - 1.0f) + 0.8f;
    float sum = 0.0f;
    const float twoSigma2 = 2.0f * sigma * sigma;
    for (int i = 0; i < k; ++i) {
        const float d = static_cast<float>(i - r);
        taps[i] = std::exp(-(d * d) / twoSigma2);
        sum += taps[i];
    }
    for (int i = 0; i < k; ++i) taps[i] /= sum;

    auto slotOf = [&](int p) { return ring + static_cast<ptrdiff_t>(positiveMod(p, 2 * k)) * a; };
    // Source row of position p, or -1 for a row of the border value.
    auto sourceRow = [&](int p, bool& mem) {
        mem = (p >= 0 && p < H) || (p < 0 && (borderType & 0x10)) || (p >= H && (borderType & 0x20));
        return mem ? p : borderIndex(p, H, type);
    };

    const int strip = std::min(k, H);
    int next = -r;  // next position to filter
    for (int y = 0; y < H; y += strip) {
        const int cnt = std::min(strip, H - y);
        const int last = y + cnt - 1 + r;
        while (next <= last) {
            bool mem = false;
            const int src = sourceRow(next, mem);
            if (!mem && src < 0) {
                std::fill(slotOf(next), slotOf(next) + w, bv);
                ++next;
                continue;
            }
            // A run of positions whose source rows follow each other.
            int run = 1;
            while (run < k && next + run <= last) {
                bool m2 = false;
                if (sourceRow(next + run, m2) != src + run) break;
                ++run;
            }
            for (int i = 0; i < run; ++i) ptrs[i] = slotOf(next + i);
            const RvpStatus st = rvpiFilterRowBorderPipeline_32f_C1R(rowPtr(pSrc, srcStep, src), srcStep, ptrs,
                                                                     RvpiSize{w, run}, taps, k, r, type, bv, rowBuf);
            if (st != rvpStsNoErr) return st;
            next += run;
        }
        for (int i = 0; i < cnt + k - 1; ++i) ptrs[i] = slotOf(y - r + i);
        const RvpStatus st = rvpiFilterColumnPipeline_32f_C1R(const_cast<const Rvp32f**>(ptrs),
                                                              rowPtr(pDst, dstStep, y), dstStep, RvpiSize{w, cnt},
                                                              taps, k, colBuf);
        if (st != rvpStsNoErr) return st;
    }
    return rvpStsNoErr;
}

// Binomial smoothing (sum of neighbours), then differences, in place from
// the left; the sample past the end counts as 0.
template <class T>
RvpStatus genSobel(T* pDst, int k, int dx, int sign) {
    if (pDst == nullptr) return rvpStsNullPtrErr;
    if (k < 1 || (k & 1) == 0 || dx < 0 || dx >= k) return rvpStsSizeErr;
    for (int i = 0; i < k; ++i) pDst[i] = 0;
    pDst[k - 1] = 1;
    for (int s = 0; s < k - 1 - dx; ++s)
        for (int i = 0; i + 1 < k; ++i) pDst[i] = static_cast<T>(pDst[i] + pDst[i + 1]);
    for (int s = 0; s < dx; ++s)
        for (int i = 0; i + 1 < k; ++i) pDst[i] = static_cast<T>(pDst[i] - pDst[i + 1]);
    if (sign < 0)
        for (int i = 0; i < k; ++i) pDst[i] = static_cast<T>(0 - pDst[i]);
    return rvpStsNoErr;
}

}  // namespace
}  // namespace filt
}  // namespace rvcv

using namespace rvcv;
using namespace rvcv::filt;

RVCV_EXPORT RvpStatus rvpiFilterGaussBorder_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                                    RvpiSize roiSize, int kernelSize, Rvp32f sigma, int borderType,
                                                    Rvp32f borderValue, Rvp8u* pBuffer) {
    return gauss(pSrc, srcStep, pDst, dstStep, roiSize, kernelSize, sigma, borderType, borderValue, pBuffer);
}

RVCV_EXPORT RvpStatus rvpiFilterGaussGetBufferSize_32f_C1R(RvpiSize roiSize, int kernelSize, int* pBufferSize) {
    if (pBufferSize == nullptr) return rvpStsNullPtrErr;
    if (roiSize.width < 1 || roiSize.height < 1) return rvpStsSizeErr;
    if (badGaussArgs(kernelSize, 0)) return rvpStsBadArgErr;
    return storeSize(gaussBytes(roiSize, kernelSize, owncvGetMaxNumThreads()), pBufferSize);
}

RVCV_EXPORT RvpStatus rvpiGenSobelKernel_16s(Rvp16s* pDst, int kernelSize, int dx, int sign) {
    return genSobel(pDst, kernelSize, dx, sign);
}

RVCV_EXPORT RvpStatus rvpiGenSobelKernel_32f(Rvp32f* pDst, int kernelSize, int dx, int sign) {
    return genSobel(pDst, kernelSize, dx, sign);
}
