// Dilation and erosion by a two-valued structuring element, replicated
// border. The mask is classified once, when the state is built: a filled
// rectangle runs the separable min/max filter, rows that are single runs
// through the anchor column are reduced once per distinct run and combined
// over rows, any other mask visits every cell through expanded masks (which
// clamp 32f infinities to the largest finite value), and an empty mask copies.
#include "rvcvmorph.h"

#include <cfloat>

#include "rvcvframe.h"
#include "rvcvminmax.h"

namespace rvcv {

MorphAnalysis ownCheckKernel(const Rvp8u* mask, int W, int H, int ax, int ay, int* rows, Rvp8u* shape) {
    MorphAnalysis a{};
    a.kind = kMorphGeneral;
    int* rowNum = rows;
    int* rowLen = rows + H;
    int* rowOff = rows + 2 * static_cast<size_t>(H);
    int* rowIndex = reinterpret_cast<int*>(shape + 64);
    int* rowRun = rowIndex + H;
    int* runLen = rowRun + H;
    int* runOff = runLen + H;

    int n = 0, minFirst = W, maxEnd = 0, violations = 0;
    for (int r = 0; r < H; ++r) {
        const Rvp8u* row = mask + static_cast<size_t>(r) * W;
        int f = 0;
        while (f < W && !row[f]) ++f;
        if (f == W) continue;
        int e = f;
        while (e < W && row[e]) ++e;
        for (int c = e; c < W; ++c)
            if (row[c]) return a;  // two runs in one row
        rowNum[n] = r;
        rowLen[n] = e - f;
        rowOff[n] = ax - f;
        if (!(f <= ax && ax < e)) ++violations;
        if (f < minFirst) minFirst = f;
        if (e > maxEnd) maxEnd = e;
        ++n;
    }
    if (n == 0) {
        a.kind = kMorphEmpty;
        a.width = a.height = 1;
        return a;
    }
    const int first = rowNum[0], last = rowNum[n - 1];
    if (ay < first || ay > last) ++violations;
    bool same = true;
    for (int i = 1; i < n; ++i) same = same && rowLen[i] == rowLen[0] && rowOff[i] == rowOff[0];
    a.width = maxEnd - minFirst;
    a.anchorX = ax - minFirst;
    a.anchorY = ay - first;
    if (same && last - first + 1 == n) {  // a rectangle, wherever the anchor lies
        a.kind = kMorphRect;
        a.height = n;
        return a;
    }
    if (violations) return a;

    // Distinct runs by decreasing length; one length must keep one offset.
    int m = 0;
    for (int i = 0; i < n; ++i) {
        int t = 0;
        while (t < m && runLen[t] > rowLen[i]) ++t;
        if (t < m && runLen[t] == rowLen[i]) {
            if (runOff[t] != rowOff[i]) return a;
            continue;
        }
        for (int u = m; u > t; --u) {
            runLen[u] = runLen[u - 1];
            runOff[u] = runOff[u - 1];
        }
        runLen[t] = rowLen[i];
        runOff[t] = rowOff[i];
        ++m;
    }
    for (int i = 0; i < n; ++i) {
        rowIndex[i] = rowNum[i] - first;
        int t = 0;
        while (runLen[t] != rowLen[i]) ++t;
        rowRun[i] = t;
    }
    a.kind = kMorphRuns;
    a.height = last - first + 1;
    a.rowCount = n;
    a.runCount = m;
    a.rowIndex = rowIndex;
    a.rowRun = rowRun;
    a.runLength = runLen;
    a.runOffset = runOff;
    return a;
}

namespace {

Rvp8u* alignUp(Rvp8u* p, uintptr_t a) {
    return reinterpret_cast<Rvp8u*>((reinterpret_cast<uintptr_t>(p) + a - 1) & ~(a - 1));
}

// Each cell becomes 16 bytes of one value, so the direct kernels apply a
// cell to a vector without a branch.
void expandMasks(const Rvp8u* mask, int cells, int M, bool isFloat, Rvp8u* erode, Rvp8u* dilate) {
    std::memset(erode, 0, 16 * static_cast<size_t>(M));
    std::memset(dilate, 0, 16 * static_cast<size_t>(M));
    for (int i = 0; i < cells; ++i) {
        const bool set = mask[i] != 0;
        Rvp8u* e = erode + 16 * static_cast<size_t>(i);
        Rvp8u* d = dilate + 16 * static_cast<size_t>(i);
        if (isFloat) {
            const float hi = FLT_MAX, lo = -FLT_MAX;
            for (int j = 0; j < 4; ++j) {
                std::memcpy(d + 4 * j, set ? &hi : &lo, 4);
                std::memcpy(e + 4 * j, set ? &lo : &hi, 4);
            }
        } else {
            std::memset(d, set ? 0xFF : 0, 16);
            std::memset(e, set ? 0 : 0xFF, 16);
        }
    }
}

RvpStatus buildState(int sampleType, int C, int roiWidth, const Rvp8u* pMask, int W, int H, RvpiPoint anchor,
                     RvpiMorphState** ppState, int* pSize, int mode, const MorphAnalysis& a) {
    const bool isFloat = sampleType == kSample32f;
    const int P = (isFloat ? 4 : 1) * C;
    // Sizes in 64 bits; a state whose size would not fit an int is refused.
    const int64_t cells = static_cast<int64_t>(W) * H;
    const int64_t M = (cells + 15) & ~int64_t{15};
    int64_t padStep = 0, size64 = 0;
    switch (a.kind) {
    case kMorphGeneral:
        padStep = ((static_cast<int64_t>(roiWidth) + W) * P + 15) & ~int64_t{15};
        size64 = 33 * M + 112 + 2 * static_cast<int64_t>(H) * padStep;
        break;
    case kMorphRect: size64 = M + 128 + minMaxBufferSize(roiWidth, P, a.height); break;
    case kMorphRuns: {
        const int64_t E = (static_cast<int64_t>(a.height) * a.runCount + 1) * (static_cast<int64_t>(roiWidth) * P + 32) +
                          40 + 40 * static_cast<int64_t>(a.height);
        size64 = M + 160 + 8 * (static_cast<int64_t>(a.rowCount) + a.runCount) + E;
        break;
    }
    default: size64 = M + 96; break;
    }
    if (!fitsInt(size64)) return rvpStsSizeErr;
    const int size = static_cast<int>(size64);

    Rvp8u* block = nullptr;
    if (mode == 0) {
        if (!pSize) return rvpStsNullPtrErr;
        *pSize = size;
        return rvpStsNoErr;
    }
    if (!ppState || (mode == 1 && !*ppState)) return rvpStsNullPtrErr;
    block = mode == 1 ? reinterpret_cast<Rvp8u*>(*ppState) : rvpsMalloc_8u(size);
    if (!block) return rvpStsMemAllocErr;

    RvpiMorphState* s = reinterpret_cast<RvpiMorphState*>(block);
    std::memset(s, 0, sizeof *s);
    s->stateSize = size;
    s->sampleType = sampleType;
    s->channels = C;
    s->roiWidth = roiWidth;
    s->reserved = -1;
    s->shapeKind = a.kind;
    Rvp8u* maskCopy = nullptr;
    switch (a.kind) {
    case kMorphGeneral: {
        maskCopy = alignUp(block + sizeof(RvpiMorphState), 16);
        Rvp8u* erode = maskCopy + M;
        Rvp8u* dilate = erode + 16 * static_cast<size_t>(M);
        expandMasks(pMask, cells, M, isFloat, erode, dilate);
        s->pErodeMask = erode;
        s->pDilateMask = dilate;
        s->pWork = dilate + 16 * static_cast<size_t>(M);
        s->maskWidth = W;
        s->maskHeight = H;
        s->anchorX = anchor.x;
        s->anchorY = anchor.y;
        s->rightSpan = W - anchor.x - 1;
        s->bottomSpan = H - anchor.y - 1;
        s->padStep = padStep;
        break;
    }
    case kMorphRect: {
        const int head[6] = {a.width, a.height, a.anchorX, a.anchorY, 0, 0};
        std::memcpy(block + sizeof(RvpiMorphState), head, sizeof head);
        s->pShape = reinterpret_cast<RvpiMorphShape*>(block + sizeof(RvpiMorphState));
        maskCopy = block + 128;
        s->pWork = maskCopy + M;
        break;
    }
    case kMorphRuns: {
        RvpiMorphShape* sh = reinterpret_cast<RvpiMorphShape*>(block + sizeof(RvpiMorphState));
        const int n = a.rowCount, m = a.runCount;
        int* arrays = reinterpret_cast<int*>(block + 160);
        *sh = RvpiMorphShape{a.width, a.height, a.anchorX, a.anchorY, 0, 0, n, m,
                             arrays, arrays + n, arrays + 2 * n, arrays + 2 * n + m};
        std::memcpy(sh->pRowIndex, a.rowIndex, sizeof(int) * n);
        std::memcpy(sh->pRowRun, a.rowRun, sizeof(int) * n);
        std::memcpy(sh->pRunLength, a.runLength, sizeof(int) * m);
        std::memcpy(sh->pRunOffset, a.runOffset, sizeof(int) * m);
        s->pShape = sh;
        maskCopy = block + 160 + 8 * static_cast<size_t>(n + m);
        s->pWork = maskCopy + M;
        break;
    }
    default:
        maskCopy = block + sizeof(RvpiMorphState);
        s->maskWidth = W;
        s->maskHeight = H;
        break;
    }
    if (a.kind == kMorphRect || a.kind == kMorphRuns) {
        s->maskWidth = a.width;
        s->maskHeight = a.height;
        s->anchorX = a.anchorX;
        s->anchorY = a.anchorY;
    }
    std::memset(maskCopy, 0, static_cast<size_t>(M));
    if (a.kind != kMorphEmpty) std::memcpy(maskCopy, pMask, static_cast<size_t>(cells));
    s->pMaskCopy = maskCopy;
    if (mode == 2) *ppState = s;
    return rvpStsNoErr;
}

}  // namespace

RvpStatus ownMorphologyInitAlloc(int sampleType, int channels, int roiWidth, const Rvp8u* pMask, RvpiSize maskSize,
                                 RvpiPoint anchor, RvpiMorphState** ppState, int* pSize, int mode) {
    if (!pMask) return rvpStsNullPtrErr;
    const int W = maskSize.width, H = maskSize.height;
    if (roiWidth < 1 || W < 1 || H < 1) return rvpStsSizeErr;
    if (anchor.x < 0 || anchor.x >= W || anchor.y < 0 || anchor.y >= H) return rvpStsAnchorErr;
    Rvp32s* rows = rvpsMalloc_32s(wmul(6, H));
    Rvp8u* shape = rvpsMalloc_8u(wadd(wmul(16, H), 64));
    RvpStatus st = rvpStsMemAllocErr;
    if (rows && shape) {
        MorphAnalysis a = ownCheckKernel(pMask, W, H, anchor.x, anchor.y, rows, shape);
        // Few cells of many channels: the direct kernels beat the run decomposition.
        const int area = wmul(W, H);
        if (a.kind == kMorphRuns && sampleType == kSample32f && ((channels == 3 && area < 17) || (channels == 4 && area < 49)))
            a.kind = kMorphGeneral;
        st = buildState(sampleType, channels, roiWidth, pMask, W, H, anchor, ppState, pSize, mode, a);
    }
    if (rows) rvpsFree(rows);
    if (shape) rvpsFree(shape);
    return st;
}

namespace {

// ---- Applying a state ----------------------------------------------------------
void copyRows(const char* s, int ss, char* d, int ds, size_t rowBytes, int h) {
    for (int y = 0; y < h; ++y) std::memcpy(d + rowOffset(ds, y), s + rowOffset(ss, y), rowBytes);
}

// Fills an outer image around its computed inner part by replicating the
// part's edge pixels: left and right first, then whole rows above and below.
void replicateAround(char* inner, int step, int pix, int iw, int ih, int ow, int oh, int top, int left) {
    const int right = ow - iw - left;
    for (int y = 0; y < ih; ++y) {
        char* r = inner + rowOffset(step, y);
        for (int x = 1; x <= left; ++x) std::memcpy(r - static_cast<ptrdiff_t>(x) * pix, r, pix);
        char* lastPix = r + static_cast<ptrdiff_t>(iw - 1) * pix;
        for (int x = 1; x <= right; ++x) std::memcpy(lastPix + static_cast<ptrdiff_t>(x) * pix, lastPix, pix);
    }
    char* origin = inner - rowOffset(step, top) - static_cast<ptrdiff_t>(left) * pix;
    const size_t outerBytes = static_cast<size_t>(ow) * pix;
    for (int y = 0; y < top; ++y) std::memcpy(origin + rowOffset(step, y), origin + rowOffset(step, top), outerBytes);
    for (int y = top + ih; y < oh; ++y)
        std::memcpy(origin + rowOffset(step, y), origin + rowOffset(step, top + ih - 1), outerBytes);
}

// Rectangle and empty mask: bring the anchor into the rectangle by shifting
// the source (cells all to the right or below) or the destination (cells all
// to the left or above), run the filter or the copy on the reduced size, and
// replicate the computed part into the strip left out.
template <class T>
RvpStatus rectOrCopy(bool dilate, int C, const T* src, int ss, T* dst, int ds, RvpiSize roi, const RvpiMorphState* st) {
    const int w = roi.width, h = roi.height;
    int ax = st->anchorX, ay = st->anchorY;
    const int W = st->maskWidth, H = st->maskHeight;
    int pw = w, ph = h, left = 0, top = 0;
    bool shifted = false;
    if (ax < 0) {
        const int s = ax > 1 - w ? ax : 1 - w;
        src += static_cast<ptrdiff_t>(-s) * C;
        pw = w + s;
        ax = 0;
        shifted = true;
    } else if (ax >= W) {
        const int s = ax - W + 1 < w - 1 ? ax - W + 1 : w - 1;
        dst += static_cast<ptrdiff_t>(s) * C;
        pw = w - s;
        left = s;
        ax = W - 1;
        shifted = true;
    }
    if (ay < 0) {
        const int s = ay > 1 - h ? ay : 1 - h;
        src = rowPtr(src, ss, -s);
        ph = h + s;
        ay = 0;
        shifted = true;
    } else if (ay >= H) {
        const int s = ay - H + 1 < h - 1 ? ay - H + 1 : h - 1;
        dst = rowPtr(dst, ds, s);
        ph = h - s;
        top = s;
        ay = H - 1;
        shifted = true;
    }
    RvpStatus status = rvpStsNoErr;
    if (st->shapeKind == kMorphRect) {
        status = filterMinMax<T>(dilate ? kOpMax : kOpMin, C, src, ss, dst, ds, RvpiSize{pw, ph}, RvpiSize{W, H},
                                 RvpiPoint{ax, ay}, static_cast<Rvp8u*>(st->pWork));
    } else {
        copyRows(reinterpret_cast<const char*>(src), ss, reinterpret_cast<char*>(dst), ds,
                 sizeof(T) * C * static_cast<size_t>(pw), ph);
    }
    if (status == rvpStsNoErr && shifted)
        replicateAround(reinterpret_cast<char*>(dst), ds, static_cast<int>(sizeof(T)) * C, pw, ph, w, h, top, left);
    return status;
}

// Run decomposition: each source row is reduced once per distinct run into
// a ring slot of m rows; an output row folds the n shape rows, each read
// from the slot of its source row and the row of its run.
template <class T>
void runs(bool dilate, int C, const T* src, int ss, T* dst, int ds, int w, int h, const RvpiMorphState* st) {
    const RvpiMorphShape* sh = st->pShape;
    const MinMaxKernels& k = minMaxKernels();
    const int op = dilate ? kOpMax : kOpMin;
    const bool isFloat = sizeof(T) == 4;
    const int hh = sh->height, m = sh->runCount, n = sh->rowCount, ay = sh->anchorY;
    Rvp8u* work = static_cast<Rvp8u*>(st->pWork);
    MinMaxRowFn* fns = reinterpret_cast<MinMaxRowFn*>(alignUp(work, 8));
    const T** list = reinterpret_cast<const T**>(alignUp(reinterpret_cast<Rvp8u*>(fns + hh), 8));
    size_t stride = 0;
    Rvp8u* store = reinterpret_cast<Rvp8u*>(
        ringLayout(reinterpret_cast<char*>(list + 4 * static_cast<size_t>(hh)),
                   reinterpret_cast<const char*>(st) + static_cast<uint32_t>(st->stateSize),
                   sizeof(T) * C * static_cast<size_t>(w), static_cast<size_t>(hh) * m, &stride));
    for (int r = 0; r < m; ++r) {
        const int len = sh->pRunLength[r];
        // A run of one pixel is the source row itself: read it in place.
        fns[r] = len == 1 ? nullptr : k.row[op][layoutIndex(isFloat, C)][(w >= 2 * len && len < 16) ? len : 0];
    }
    auto slot = [&](int j) { return store + static_cast<size_t>(j % hh) * m * stride; };
    const MorphGrowFn grow = k.grow[op][layoutIndex(isFloat, C)];
    int next = 0;
    for (int y = 0; y < h; ++y) {
        const int last = y - ay + hh - 1 < h - 1 ? y - ay + hh - 1 : h - 1;
        for (; next <= last; ++next) {
            const T* row = rowPtr(src, ss, next);
            Rvp8u* base = slot(next);
            // Shortest first, so a run one pixel wider on each side than the
            // next shorter one grows from it.
            for (int r = m - 1; r >= 0; --r) {
                if (!fns[r]) continue;
                const int len = sh->pRunLength[r], off = sh->pRunOffset[r];
                if (r + 1 < m && sh->pRunLength[r + 1] == len - 2 && sh->pRunOffset[r + 1] == off - 1)
                    grow(row, fns[r + 1] ? static_cast<const void*>(base + (r + 1) * stride) : row, base + r * stride, w,
                         len, off);
                else
                    fns[r](row, base + r * stride, w, len, off);
            }
        }
        for (int i = 0; i < n; ++i) {
            int j = y - ay + sh->pRowIndex[i];
            j = j < 0 ? 0 : j > h - 1 ? h - 1 : j;
            list[i] = fns[sh->pRowRun[i]] ? reinterpret_cast<const T*>(slot(j) + sh->pRowRun[i] * stride)
                                          : rowPtr(src, ss, j);
        }
        k.fold[op][isFloat ? 1 : 0](reinterpret_cast<const void* const*>(list), n, rowPtr(dst, ds, y), w * C);
    }
}

template <class T> T extremum(bool dilate, T a, T b) { return dilate ? (a > b ? a : b) : (a < b ? a : b); }

// General mask. Rows whose rectangle leaves the image, or all rows when the
// image is smaller than the mask, read a padded copy in pWork; the others
// run the kernel on the source and compute their first anchorX and last
// rightSpan pixels cell by cell with clamped columns.
template <class T>
void general(bool dilate, int C, const T* src, int ss, T* dst, int ds, int w, int h, const RvpiMorphState* st) {
    const int W = st->maskWidth, H = st->maskHeight, ax = st->anchorX, ay = st->anchorY;
    const int rs = st->rightSpan, bs = st->bottomSpan, padStep = st->padStep;
    const void* cells = dilate ? st->pDilateMask : st->pErodeMask;
    const MorphDirectFn fn = minMaxKernels().direct[dilate ? 1 : 0][layoutIndex(sizeof(T) == 4, C)];
    char* work = static_cast<char*>(st->pWork);
    const size_t pix = sizeof(T) * C;

    auto band = [&](int y0, int nb) {
        for (int r = 0; r < nb + H - 1; ++r) {
            int sr = y0 - ay + r;
            sr = sr < 0 ? 0 : sr > h - 1 ? h - 1 : sr;
            const char* s = reinterpret_cast<const char*>(rowPtr(src, ss, sr));
            char* p = work + rowOffset(padStep, r);
            for (int x = 0; x < ax; ++x) std::memcpy(p + x * pix, s, pix);
            std::memcpy(p + ax * pix, s, w * pix);
            for (int x = 0; x < W - 1 - ax; ++x) std::memcpy(p + (ax + w + x) * pix, s + (w - 1) * pix, pix);
        }
        for (int i = 0; i < nb; ++i) fn(work + rowOffset(padStep, i), padStep, rowPtr(dst, ds, y0 + i), w, cells, W, H);
    };
    if (h < H) {
        band(0, h);
        return;
    }
    if (w < W) {
        for (int y0 = 0; y0 < h; y0 += H) band(y0, H < h - y0 ? H : h - y0);
        return;
    }
    if (ay > 0) band(0, ay);
    if (bs > 0) band(h - bs, bs);
    const Rvp8u* mask = st->pMaskCopy;
    for (int y = ay; y < h - bs; ++y) {
        T* d = rowPtr(dst, ds, y);
        fn(rowPtr(src, ss, y - ay), ss, d + static_cast<ptrdiff_t>(ax) * C, w - W + 1, cells, W, H);
        auto frame = [&](int x) {
            for (int ch = 0; ch < C; ++ch) {
                bool any = false;
                T acc{};
                for (int r = 0; r < H; ++r) {
                    const T* s = rowPtr(src, ss, y - ay + r);
                    for (int c = 0; c < W; ++c) {
                        if (!mask[r * W + c]) continue;
                        int sx = x - ax + c;
                        sx = sx < 0 ? 0 : sx > w - 1 ? w - 1 : sx;
                        const T v = s[sx * C + ch];
                        acc = any ? extremum(dilate, acc, v) : v;
                        any = true;
                    }
                }
                d[x * C + ch] = acc;
            }
        };
        for (int x = 0; x < ax; ++x) frame(x);
        for (int x = w - rs; x < w; ++x) frame(x);
    }
}

template <class T>
RvpStatus morph(bool dilate, int C, const T* src, int ss, T* dst, int ds, RvpiSize roi, int borderType,
                RvpiMorphState* st) {
    const int sample = sizeof(T) == 4 ? kSample32f : kSample8u;
    Check c;
    c.ptrs(src, dst, st);  // a null state is refused like any other pointer
    if (c != rvpStsNoErr) return c;
    checkImage<T>(c, roi, C, ss, ds)
        .fail(borderType != rvpBorderRepl, rvpStsBadArgErr)
        .fail(st->sampleType != sample || st->channels != C, rvpStsBadArgErr)
        .fail(roi.width > st->roiWidth, rvpStsSizeErr);
    if (RvpStatus s = c) return s;
    const int kind = st->shapeKind;
    switch (kind) {
    case kMorphRuns: runs<T>(dilate, C, src, ss, dst, ds, roi.width, roi.height, st); return rvpStsNoErr;
    case kMorphGeneral: general<T>(dilate, C, src, ss, dst, ds, roi.width, roi.height, st); return rvpStsNoErr;
    default: return rectOrCopy<T>(dilate, C, src, ss, dst, ds, roi, st);
    }
}

}  // namespace
}  // namespace rvcv

using namespace rvcv;

#define RVCV_MORPH_FORMS(T, TAG, CH, SAMPLE)                                                                       \
    RVCV_EXPORT RvpStatus rvpiMorphologyGetSize_##TAG##_C##CH##R(int roiWidth, const Rvp8u* pMask,                 \
                                                                 RvpiSize maskSize, int* pSize) {                  \
        return ownMorphologyInitAlloc(SAMPLE, CH, roiWidth, pMask, maskSize,                                       \
                                      RvpiPoint{maskSize.width >> 1, maskSize.height >> 1}, nullptr, pSize, 0);    \
    }                                                                                                              \
    RVCV_EXPORT RvpStatus rvpiMorphologyInit_##TAG##_C##CH##R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, \
                                                              RvpiPoint anchor, RvpiMorphState* pState) {          \
        return ownMorphologyInitAlloc(SAMPLE, CH, roiWidth, pMask, maskSize, anchor, &pState, nullptr, 1);         \
    }                                                                                                              \
    RVCV_EXPORT RvpStatus rvpiMorphologyInitAlloc_##TAG##_C##CH##R(                                                \
        int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, RvpiPoint anchor, RvpiMorphState** ppState) {         \
        return ownMorphologyInitAlloc(SAMPLE, CH, roiWidth, pMask, maskSize, anchor, ppState, nullptr, 2);         \
    }                                                                                                              \
    RVCV_EXPORT RvpStatus rvpiDilateBorderReplicate_##TAG##_C##CH##R(                                              \
        const T* pSrc, int srcStep, T* pDst, int dstStep, RvpiSize roiSize, int borderType, RvpiMorphState* pState) { \
        return morph<T>(true, CH, pSrc, srcStep, pDst, dstStep, roiSize, borderType, pState);                      \
    }                                                                                                              \
    RVCV_EXPORT RvpStatus rvpiErodeBorderReplicate_##TAG##_C##CH##R(                                               \
        const T* pSrc, int srcStep, T* pDst, int dstStep, RvpiSize roiSize, int borderType, RvpiMorphState* pState) { \
        return morph<T>(false, CH, pSrc, srcStep, pDst, dstStep, roiSize, borderType, pState);                     \
    }

RVCV_MORPH_FORMS(Rvp8u, 8u, 1, kSample8u)
RVCV_MORPH_FORMS(Rvp8u, 8u, 3, kSample8u)
RVCV_MORPH_FORMS(Rvp8u, 8u, 4, kSample8u)
RVCV_MORPH_FORMS(Rvp32f, 32f, 1, kSample32f)
RVCV_MORPH_FORMS(Rvp32f, 32f, 3, kSample32f)
RVCV_MORPH_FORMS(Rvp32f, 32f, 4, kSample32f)

RVCV_EXPORT RvpStatus rvpiMorphologyFree(RvpiMorphState* pState) {
    if (!pState) return rvpStsNullPtrErr;
    rvpsFree(pState);
    return rvpStsNoErr;
}
