// Histogram background model: per pixel, a fine and a coarse table of
// weighted colour bins. Classification asks whether the pixel's colour has
// weight in the tables; the update fades all weights and feeds the pixel's
// bins. Tables are stored slot by slot across all pixels (slot j of every
// pixel side by side), so memory is only touched for the slots pixels use.
// Pixels are independent: rows are split over threads with the same result.
#include "rvcvframe.h"

struct RvpiFGHistogramState {
    Rvp8u* used;          // per pixel: bins in use in the fine, then the coarse table
    Rvp32u* fineKey;      // [slot][pixel]
    Rvp32f* fineWeight;
    Rvp32u* coarseKey;
    Rvp32f* coarseWeight;
    Rvp32s fineDivisor;   // bin width 256 * scale / divisor
    Rvp32s reserved0;     // held, not read
    Rvp32s fineEntries;
    Rvp32s coarseDivisor;
    Rvp32s reserved1;     // held, not read
    Rvp32s coarseEntries;
    Rvp32s reserved2;     // held, not read
    Rvp32s reserved3;     // held, not read
    Rvp32f fineThreshold;
    Rvp32f rate;          // default learning rate
    Rvp32f coarseThreshold;
    Rvp32f scale;
    Rvp32f reserved4;     // held, not read
    Rvp32f reserved5;     // held, not read
    int width, height, channels;
};

namespace rvcv {
namespace {

// A colour's bin: one 8-bit index per channel, channel 0 lowest.
inline uint32_t binOf(const Rvp8u* px, int C, int width) {
    uint32_t key = 0;
    for (int c = 0; c < C; ++c) key |= static_cast<uint32_t>(px[c] / width) << (8 * c);
    return key;
}

// Within one bin of each other in every channel.
inline bool near(uint32_t a, uint32_t b, int C) {
    for (int c = 0; c < C; ++c) {
        const int d = static_cast<int>((a >> (8 * c)) & 0xff) - static_cast<int>((b >> (8 * c)) & 0xff);
        if (d < -1 || d > 1) return false;
    }
    return true;
}

struct Table {
    Rvp32u* key;
    Rvp32f* weight;
    size_t n;  // pixels: the distance between slots
    int size;
    Rvp32u keyAt(int j, size_t i) const { return key[j * n + i]; }
    Rvp32f& weightAt(int j, size_t i) const { return weight[j * n + i]; }
};

struct Model {
    Table fine, coarse;
    int fineWidth, coarseWidth, C, w;
};

Model modelOf(const RvpiFGHistogramState* s) {
    const size_t n = static_cast<size_t>(s->width) * s->height;
    Model m;
    m.fine = {s->fineKey, s->fineWeight, n, s->fineEntries};
    m.coarse = {s->coarseKey, s->coarseWeight, n, s->coarseEntries};
    m.fineWidth = static_cast<int>(256.0f * s->scale / static_cast<float>(s->fineDivisor));
    m.coarseWidth = static_cast<int>(256.0f * s->scale / static_cast<float>(s->coarseDivisor));
    m.C = s->channels;
    m.w = s->width;
    return m;
}

// Fades every bin of pixel i, then adds `rate` to the bin `key`, taking a
// new slot or the lightest bin's (the later one on a tie) when it is new.
void feed(const Table& t, Rvp8u& used, size_t i, uint32_t key, Rvp32f rate) {
    const Rvp32f keep = 1.0f - rate;
    int hit = -1, lightest = 0;
    for (int j = 0; j < used; ++j) {
        Rvp32f& wgt = t.weightAt(j, i);
        wgt = wgt * keep;
        if (t.keyAt(j, i) == key) hit = j;
        if (wgt <= t.weightAt(lightest, i)) lightest = j;
    }
    if (hit >= 0) {
        t.weightAt(hit, i) = t.weightAt(hit, i) + rate;
        return;
    }
    const int slot = used < t.size ? used++ : lightest;
    t.key[slot * t.n + i] = key;
    t.weightAt(slot, i) = rate;
}

RvpStatus initAlloc(int C, const Rvp8u* src, int srcStep, RvpiSize roi, const void* model,
                    RvpiFGHistogramState** pp) {
    Check c;
    c.ptrs(src, model, pp).size(roi);
    if (RvpStatus st = c.fail(c == rvpStsNoErr && static_cast<int64_t>(roi.width) * C > srcStep, rvpStsStepErr))
        return st;
    constexpr int kFine = 25, kCoarse = 40;
    const int64_t n = static_cast<int64_t>(roi.width) * roi.height;
    const int64_t bytes[6] = {static_cast<int64_t>(sizeof(RvpiFGHistogramState)), 2 * n, kFine * 4 * n,
                              kFine * 4 * n, kCoarse * 4 * n, kCoarse * 4 * n};
    void* b[6] = {};
    RvpStatus st = rvpStsNoErr;
    for (int j = 0; j < 6 && st == rvpStsNoErr; ++j) {
        if (bytes[j] > INT32_MAX) st = rvpStsSizeErr;
        else if (!(b[j] = rvpMalloc(static_cast<int>(bytes[j])))) st = rvpStsMemAllocErr;
    }
    if (st != rvpStsNoErr) {
        for (void* p : b) rvpFree(p);
        return st;
    }
    auto* s = static_cast<RvpiFGHistogramState*>(b[0]);
    *s = RvpiFGHistogramState{static_cast<Rvp8u*>(b[1]), static_cast<Rvp32u*>(b[2]), static_cast<Rvp32f*>(b[3]),
                              static_cast<Rvp32u*>(b[4]), static_cast<Rvp32f*>(b[5]),
                              128, 15, kFine, 64, 25, kCoarse, 1, 1,
                              0.1f, 0.005f, 0.1f, 2.0f, 0.9f, 15.0f,
                              roi.width, roi.height, C};
    const Model m = modelOf(s);
    for (int y = 0; y < roi.height; ++y) {
        const Rvp8u* row = rowPtr(src, srcStep, y);
        for (int x = 0; x < roi.width; ++x) {
            const size_t i = static_cast<size_t>(y) * roi.width + x;
            s->used[2 * i] = 1;
            s->used[2 * i + 1] = 1;
            m.fine.key[i] = binOf(row + x * C, C, m.fineWidth);
            m.fine.weight[i] = 1.0f;
            m.coarse.key[i] = binOf(row + x * C, C, m.coarseWidth);
            m.coarse.weight[i] = 1.0f;
        }
    }
    *pp = s;
    return rvpStsNoErr;
}

// Size (also against the state's), then the source step.
Check& checkFrame(Check& c, int C, int srcStep, RvpiSize roi, const RvpiFGHistogramState* s) {
    c.size(roi);
    if (c == rvpStsNoErr && (roi.width != s->width || roi.height != s->height || C != s->channels))
        c.fail(true, rvpStsSizeErr);
    return c.fail(c == rvpStsNoErr && static_cast<int64_t>(roi.width) * C > srcStep, rvpStsStepErr);
}

// Runs body(y) for every row, over threads for large frames.
template <class Body> void rows(RvpiSize roi, Body&& body) {
    const auto band = [&](int y0, int count) {
        for (int y = y0; y < y0 + count; ++y) body(y);
    };
    const int threads = ownGetNumThreads();
    if (wmul(roi.width, roi.height) < kPixelwiseParallelMin || threads <= 1) band(0, roi.height);
    else bandRegion(roi.height, threads, band);
}

RvpStatus classify(int C, const Rvp8u* src, int srcStep, Rvp8u* dst, int dstStep, RvpiSize roi,
                   RvpiFGHistogramState* s) {
    Check c;
    c.ptrs(src, dst, s);
    if (c != rvpStsNoErr) return c;
    if (RvpStatus st = checkFrame(c, C, srcStep, roi, s).fail(dstStep < roi.width, rvpStsStepErr)) return st;
    const Model m = modelOf(s);
    rows(roi, [&](int y) {
        const Rvp8u* row = rowPtr(src, srcStep, y);
        Rvp8u* out = rowPtr(dst, dstStep, y);
        for (int x = 0; x < roi.width; ++x) {
            const size_t i = static_cast<size_t>(y) * roi.width + x;
            const uint32_t fk = binOf(row + x * C, C, m.fineWidth), ck = binOf(row + x * C, C, m.coarseWidth);
            bool background = false;
            for (int j = 0; j < s->used[2 * i] && !background; ++j)
                background = m.fine.keyAt(j, i) == fk && m.fine.weightAt(j, i) >= s->fineThreshold;
            Rvp32f near1 = 0.0f;
            for (int j = 0; j < s->used[2 * i + 1] && !background; ++j)
                if (near(m.coarse.keyAt(j, i), ck, C)) near1 = near1 + m.coarse.weightAt(j, i);
            out[x] = background || near1 >= s->coarseThreshold ? 0 : 255;
        }
    });
    return rvpStsNoErr;
}

RvpStatus learn(int C, const Rvp8u* src, int srcStep, RvpiSize roi, RvpiFGHistogramState* s, Rvp32f rate) {
    Check c;
    c.ptrs(src, s);
    if (c != rvpStsNoErr) return c;
    if (RvpStatus st = checkFrame(c, C, srcStep, roi, s).fail(!(rate < 0.0f || (rate > 0.0f && rate <= 1.0f)),
                                                                 rvpStsBadArgErr))
        return st;
    if (rate < 0.0f) rate = s->rate;
    const Model m = modelOf(s);
    rows(roi, [&](int y) {
        const Rvp8u* row = rowPtr(src, srcStep, y);
        for (int x = 0; x < roi.width; ++x) {
            const size_t i = static_cast<size_t>(y) * roi.width + x;
            feed(m.fine, s->used[2 * i], i, binOf(row + x * C, C, m.fineWidth), rate);
            feed(m.coarse, s->used[2 * i + 1], i, binOf(row + x * C, C, m.coarseWidth), rate);
        }
    });
    return rvpStsNoErr;
}

RvpStatus release(RvpiFGHistogramState* s) {
    if (!s) return rvpStsNullPtrErr;
    rvpFree(s->used);
    rvpFree(s->fineKey);
    rvpFree(s->fineWeight);
    rvpFree(s->coarseKey);
    rvpFree(s->coarseWeight);
    rvpFree(s);
    return rvpStsNoErr;
}

}  // namespace
}  // namespace rvcv

using namespace rvcv;

RVCV_EXPORT RvpStatus rvpiForegroundHistogramInitAlloc_8u_C1R(const Rvp8u* pSrc, int srcStep, RvpiSize roiSize,
                                                              const void* pModel, RvpiFGHistogramState** ppState) {
    return initAlloc(1, pSrc, srcStep, roiSize, pModel, ppState);
}
RVCV_EXPORT RvpStatus rvpiForegroundHistogramInitAlloc_8u_C3R(const Rvp8u* pSrc, int srcStep, RvpiSize roiSize,
                                                              const void* pModel, RvpiFGHistogramState** ppState) {
    return initAlloc(3, pSrc, srcStep, roiSize, pModel, ppState);
}
RVCV_EXPORT RvpStatus rvpiForegroundHistogram_8u_C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                                     RvpiSize roiSize, RvpiFGHistogramState* pState) {
    return classify(1, pSrc, srcStep, pDst, dstStep, roiSize, pState);
}
RVCV_EXPORT RvpStatus rvpiForegroundHistogram_8u_C3R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                                     RvpiSize roiSize, RvpiFGHistogramState* pState) {
    return classify(3, pSrc, srcStep, pDst, dstStep, roiSize, pState);
}
RVCV_EXPORT RvpStatus rvpiForegroundHistogramUpdate_8u_C1R(const Rvp8u* pSrc, int srcStep, RvpiSize roiSize,
                                                           RvpiFGHistogramState* pState, Rvp32f rate) {
    return learn(1, pSrc, srcStep, roiSize, pState, rate);
}
RVCV_EXPORT RvpStatus rvpiForegroundHistogramUpdate_8u_C3R(const Rvp8u* pSrc, int srcStep, RvpiSize roiSize,
                                                           RvpiFGHistogramState* pState, Rvp32f rate) {
    return learn(3, pSrc, srcStep, roiSize, pState, rate);
}
RVCV_EXPORT RvpStatus rvpiForegroundHistogramFree_8u_C1R(RvpiFGHistogramState* pState) { return release(pState); }
RVCV_EXPORT RvpStatus rvpiForegroundHistogramFree_8u_C3R(RvpiFGHistogramState* pState) { return release(pState); }
