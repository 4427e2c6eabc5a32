// Pyramids with any ratio between levels (just above 1 up to 10): level
// geometry, pyramid records, and layer states that filter with a normalised
// separable kernel and resample one level down or up.
//
// Down: the source is filtered at the source positions nearest to
// x * rate (rows first, then columns) and the filtered samples are taken
// there. Up: the source is filtered (columns first, then rows) and the
// destination takes bilinear samples of it at x / rate. Integer layers keep
// 13-bit weights and round each pass; float layers sum in order.
#include <cfloat>
#include <cmath>
#include <cstring>
#include <algorithm>
#include <vector>

#include "rvcvframe.h"
#include "rvcvsampler.h"

namespace rvcv {
namespace {

constexpr float kTiny = 1.1754944e-38f;

bool rateOk(Rvp32f rate) { return rate > 1.0f && rate <= 10.0f; }  // NaN fails

// ---- Geometry --------------------------------------------------------------------
struct Range {
    int64_t lo, hi;
};

Range upRange(int n, Rvp32f rate) {
    const int64_t big = static_cast<int64_t>(static_cast<float>(n) * rate);
    const int64_t lo = n == 1 ? 1 : std::max<int64_t>(static_cast<int64_t>(static_cast<float>(n - 1) * rate) + 1, int64_t{n} + 1);
    return {lo, std::max<int64_t>(big, int64_t{n} + 1)};
}

// The size whose upward range holds the source: start at n / rate rounded,
// then step the height and the width until both ranges hold it.
RvpiSize downSize(RvpiSize src, Rvp32f rate) {
    const auto first = [&](int n) {
        const int v = static_cast<int>(static_cast<float>(n) / rate + 0.5f);
        return v < 1 ? 1 : v;
    };
    RvpiSize d{first(src.width), first(src.height)};
    for (;;) {
        const Range rw = upRange(d.width, rate), rh = upRange(d.height, rate);
        bool heightSettled = false;
        if (src.height < rh.lo) --d.height;
        else if (src.height > rh.hi) ++d.height;
        else heightSettled = true;
        if (src.width < rw.lo) { --d.width; continue; }
        if (src.width > rw.hi) { ++d.width; continue; }
        if (heightSettled) return d;
    }
}

RvpStatus sizeArgs(RvpiSize s, Rvp32f rate) {
    if (s.width < 1 || s.height < 1) return rvpStsSizeErr;
    return rateOk(rate) ? rvpStsNoErr : rvpStsBadArgErr;
}

// Every level size from src down to 1 x 1 (at most `cap` steps); the number
// of steps taken.
template <class Sink> int walkDown(RvpiSize src, Rvp32f rate, int64_t cap, Sink&& sink) {
    int steps = 0;
    sink(0, src);
    while ((src.width > 1 || src.height > 1) && steps < cap) {
        src = downSize(src, rate);
        sink(++steps, src);
    }
    return steps;
}

inline int64_t align32(int64_t v) { return (v + 31) & ~int64_t{31}; }

// ---- Layer states --------------------------------------------------------------
template <class T> struct Sample;
template <> struct Sample<Rvp8u> { using K = Rvp16s; using A = int64_t; static constexpr int kType = 1; };
template <> struct Sample<Rvp16u> { using K = Rvp16s; using A = int64_t; static constexpr int kType = 5; };
template <> struct Sample<Rvp32f> { using K = Rvp32f; using A = float; static constexpr int kType = 13; };

struct ThreadRecord {
    int ratio2;         // rate strictly between 1.99998 and 2.00002 (first record only)
    int reserved;
    void* pRepeatRows;  // each weight 8 (16s) or 4 (32f) times, for the row pass
    void* pRepeatCols;  // the same, for the column pass
    void* pRows;        // this thread's row of filtered samples
};

// Both blocks start with the public record and the direction (Head), so that
// a state of the other direction is told apart before anything else is read.
enum Direction : int { kDown = 0x444f574e, kUp = 0x55502020 };

struct Head {
    RvpiPyramidDownState pub;
    int direction;
    int channels, threads;
};

struct DownBlock : Head {
    Rvp8u* pRows;      // one row of filtered samples per thread
    int64_t rowBytes;
};
struct UpBlock : Head {
    Rvp8u* pRows;  // two rows of filtered samples per thread
    int64_t rowBytes;
    int maxDstWidth;
    void* pFilt;  // the source filtered along its rows
    void* pCols;  // per destination column: first source column and 14-bit fraction
};

// Normalised kernels. Integer layers: down ((k << 14) / S) >> 1 with a
// 64-bit division, up int((4 k) / (S / 2) * 8192 + 0.5) narrowed and halved;
// a zero sum keeps the weights. Float layers: k / S; a sum that is zero or
// denormal keeps the weights, the centre then being the byte at offset h.
template <class K>
RvpStatus normalise(const K* k, int size, bool up, K* out) {
    const int h = size >> 1;
    RvpStatus st = rvpStsNoErr;
    for (int i = 0; i < h; ++i) {
        if constexpr (std::is_same<K, Rvp32f>::value) {
            if (std::fabs(k[h - 1 - i] - k[h + 1 + i]) > kTiny) st = rvpStsSymKernelWrn;
        } else if (k[h - 1 - i] != k[h + 1 + i]) {
            st = rvpStsSymKernelWrn;
        }
    }
    if constexpr (std::is_same<K, Rvp32f>::value) {
        float side = 0.0f;
        for (int i = 0; i < h; ++i) side += k[i];
        const float s = k[h] + 2.0f * side;
        for (int i = 0; i <= h; ++i) {
            float v = k[i];
            if (std::fabs(s) <= kTiny) {
                if (i == h) v = static_cast<float>(reinterpret_cast<const Rvp8u*>(k)[h]);
            } else {
                v = k[i] / s;
            }
            out[i] = out[size - 1 - i] = v;
        }
    } else if (!up) {
        int64_t side = 0;
        for (int i = 0; i < h; ++i) side += k[i];
        const int64_t s = k[h] + 2 * side;
        for (int i = 0; i <= h; ++i) {
            const int64_t v = s == 0 ? k[i] : ((int64_t{k[i]} * 16384) / s) >> 1;
            out[i] = out[size - 1 - i] = static_cast<K>(static_cast<uint16_t>(v));
        }
    } else {
        float side = 0.0f;
        for (int i = 0; i < h; ++i) side += static_cast<float>(k[i]);
        float s = 4.0f * static_cast<float>(k[h]) + 8.0f * side;
        if (std::fabs(s) <= kTiny) s = 0.0f;
        const float s2 = s * 0.5f;
        for (int i = 0; i <= h; ++i) {
            K v = k[i];
            if (s != 0.0f) {
                const double q = static_cast<double>(static_cast<float>(4 * k[i]) / s2) * 8192.0 + 0.5;
                // Out-of-range quotients wrap like the 16-bit narrowing of an int.
                const int64_t t = std::fabs(q) < 9.0e18 ? static_cast<int64_t>(q) : 0;
                v = static_cast<K>(static_cast<int16_t>(static_cast<uint16_t>(t)) >> 1);
            }
            out[i] = out[size - 1 - i] = v;
        }
    }
    return st;
}

// One block: the state's record, then the kernel, then the scratch, each at a
// 32-byte boundary. Sizes past an int are an allocation that fails.
template <class T, class State, class Block, class Layout>
RvpStatus makeBlock(State** pp, RvpiSize roi, Rvp32f rate, const typename Sample<T>::K* pKernel, int kernelSize,
                    int mode, int channels, bool up, Layout&& layout) {
    using K = typename Sample<T>::K;
    if (!pp || !pKernel) return rvpStsNullPtrErr;
    if (roi.width < 1 || roi.height < 1) return rvpStsSizeErr;
    if (mode != 2 || !rateOk(rate) || kernelSize < 3 || (kernelSize & 1) == 0) return rvpStsBadArgErr;
    if (channels != 1 && channels != 3) return rvpStsChannelErr;
    const int64_t kernelAt = align32(sizeof(Block));
    const int64_t workAt = align32(kernelAt + int64_t{kernelSize} * static_cast<int64_t>(sizeof(K)));
    const int64_t total = layout(workAt, nullptr);
    if (!fitsInt(total)) return rvpStsMemAllocErr;
    Rvp8u* p = rvpsMalloc_8u(static_cast<int>(total));
    if (!p) return rvpStsMemAllocErr;
    std::memset(p, 0xFF, static_cast<size_t>(total));
    Block* b = reinterpret_cast<Block*>(p);
    std::memset(b, 0, sizeof(Block));
    K* kernel = reinterpret_cast<K*>(p + kernelAt);
    const RvpStatus st = normalise(pKernel, kernelSize, up, kernel);
    b->pub.pKernel = kernel;
    b->pub.pWork = p + workAt;
    b->pub.kernelSize = kernelSize;
    b->pub.sampleType = Sample<T>::kType;
    b->pub.srcWidth = roi.width;
    b->pub.srcHeight = roi.height;
    b->pub.mode = mode;
    b->pub.rate = rate;
    b->direction = up ? kUp : kDown;
    b->channels = channels;
    layout(workAt, b);
    *pp = &b->pub;
    return st;
}

int permittedThreads() {
    const int n = ownGetNumThreads();
    return n < 1 ? 1 : n;
}

template <class T>
RvpStatus downInit(RvpiPyramidDownState** pp, RvpiSize roi, Rvp32f rate, const typename Sample<T>::K* pKernel,
                   int kernelSize, int mode, int channels) {
    using A = typename Sample<T>::A;
    using K = typename Sample<T>::K;
    const bool records = kernelSize < roi.width && kernelSize < roi.height;
    const int threads = records ? permittedThreads() : 1;
    int levels = 0;
    if (roi.width >= 1 && roi.height >= 1 && rateOk(rate))
        levels = walkDown(roi, rate, INT32_MAX, [](int, RvpiSize) {});
    const int64_t rowElems = (int64_t{roi.width} + kernelSize) * channels;
    const int repeat = std::is_same<K, Rvp32f>::value ? 4 : 8;
    return makeBlock<T, RvpiPyramidDownState, DownBlock>(
        pp, roi, rate, pKernel, kernelSize, mode, channels, false, [&](int64_t at, DownBlock* b) -> int64_t {
            const int64_t levelAt = align32(at + int64_t{roi.width} * 4);  // column positions first
            const int64_t recAt = align32(levelAt + (int64_t{levels} + 1) * static_cast<int64_t>(sizeof(RvpiSize)));
            const int64_t tabAt = align32(recAt + (records ? threads * static_cast<int64_t>(sizeof(ThreadRecord)) : 0));
            const int64_t tabBytes = records ? align32(int64_t{kernelSize} * repeat * static_cast<int64_t>(sizeof(K))) : 0;
            const int64_t rowsAt = align32(tabAt + 2 * tabBytes);
            const int64_t rowBytes = align32(rowElems * static_cast<int64_t>(sizeof(A)));
            const int64_t end = rowsAt + threads * rowBytes;
            if (!b) return end;
            Rvp8u* base = reinterpret_cast<Rvp8u*>(b);
            b->threads = threads;
            b->pRows = base + rowsAt;
            b->rowBytes = rowBytes;
            b->pub.pLevelRoi = reinterpret_cast<RvpiSize*>(base + levelAt);
            b->pub.levelCount = levels;
            walkDown(roi, rate, levels, [&](int i, RvpiSize s) { b->pub.pLevelRoi[i] = s; });
            ThreadRecord* rec = records ? reinterpret_cast<ThreadRecord*>(base + recAt) : nullptr;
            b->pub.pThreadWork = rec;
            const K* kernel = static_cast<const K*>(b->pub.pKernel);
            if (rec) {
                K* rows = reinterpret_cast<K*>(base + tabAt);
                K* cols = reinterpret_cast<K*>(base + tabAt + tabBytes);
                for (int i = 0; i < kernelSize; ++i)
                    for (int r = 0; r < repeat; ++r) rows[i * repeat + r] = cols[i * repeat + r] = kernel[i];
                for (int t = 0; t < threads; ++t)
                    rec[t] = ThreadRecord{t == 0 && rate > 1.99998f && rate < 2.00002f, 0, rows, cols, nullptr};
            }
            if (rec)
                for (int t = 0; t < threads; ++t) rec[t].pRows = base + rowsAt + t * rowBytes;
            return end;
        });
}

template <class T>
RvpStatus upInit(RvpiPyramidUpState** pp, RvpiSize roi, Rvp32f rate, const typename Sample<T>::K* pKernel,
                 int kernelSize, int mode, int channels) {
    using A = typename Sample<T>::A;
    using F = typename std::conditional<std::is_same<A, float>::value, float, int32_t>::type;
    const int threads = permittedThreads();
    const int64_t maxDst = rateOk(rate) && roi.width >= 1 ? upRange(roi.width, rate).hi : 0;
    const int64_t rowElems = int64_t{roi.width} * channels;
    return makeBlock<T, RvpiPyramidUpState, UpBlock>(
        pp, roi, rate, pKernel, kernelSize, mode, channels, true, [&](int64_t at, UpBlock* b) -> int64_t {
            // A filtered source past an int is an allocation that fails.
            if (rowElems * static_cast<int64_t>(sizeof(F)) > INT32_MAX / roi.height) return INT64_MAX;
            const int64_t filtBytes = align32(rowElems * roi.height * static_cast<int64_t>(sizeof(F)));
            const int64_t colsAt = at + filtBytes;
            const int64_t rowsAt = align32(colsAt + maxDst * 8);
            const int64_t rowBytes = align32(rowElems * static_cast<int64_t>(sizeof(F)));
            const int64_t end = rowsAt + 2 * threads * rowBytes;
            if (!b) return end;
            Rvp8u* base = reinterpret_cast<Rvp8u*>(b);
            b->threads = threads;
            b->pRows = base + rowsAt;
            b->rowBytes = rowBytes;
            b->maxDstWidth = static_cast<int>(maxDst);
            b->pFilt = base + at;
            b->pCols = base + colsAt;
            return end;
        });
}

// ---- Resampling ------------------------------------------------------------------
// Weighted sum of n samples `stride` elements apart. Integer sums wrap in 64
// bits (only kernels of more than 2^17 taps could reach that) and are
// brought back with (sum + 4096) >> 13; float sums go in tap order.
template <class A, class K, class S>
inline A tapSum(const K* w, int n, const S* s, ptrdiff_t stride) {
    if constexpr (std::is_same<A, float>::value) {
        float acc = w[0] * static_cast<float>(s[0]);
        for (int i = 1; i < n; ++i) acc += w[i] * static_cast<float>(s[i * stride]);
        return acc;
    } else {
        uint64_t acc = 0;
        for (int i = 0; i < n; ++i)
            acc += static_cast<uint64_t>(static_cast<int64_t>(w[i]) * static_cast<int64_t>(s[i * stride]));
        return (static_cast<int64_t>(acc) + 4096) >> 13;
    }
}

template <class T, class A> inline T toSample(A v) {
    if constexpr (std::is_same<T, float>::value) return v;
    else return saturate<T>(v);
}

int downPos(int64_t x, Rvp32f rate, bool two, int limit) {
    const int64_t p = two ? 2 * x : static_cast<int64_t>(std::floor(static_cast<double>(x) * rate + 0.5));
    return static_cast<int>(p < limit ? p : limit - 1);
}

template <class T, int C>
void downRows(const T* src, int srcStep, RvpiSize s, T* dst, int dstStep, RvpiSize d, const DownBlock* b,
              const int* cols, bool two, int y0, int rows, typename Sample<T>::A* row) {
    using A = typename Sample<T>::A;
    using K = typename Sample<T>::K;
    const K* w = static_cast<const K*>(b->pub.pKernel);
    const int n = b->pub.kernelSize, h = n >> 1;
    const T* pick[64];
    std::vector<const T*> heap;
    const T** rp = pick;
    if (n > 64) heap.resize(static_cast<size_t>(n)), rp = heap.data();
    A* pad = row + static_cast<ptrdiff_t>(h) * C;
    for (int y = y0; y < y0 + rows; ++y) {
        const int cy = downPos(y, b->pub.rate, two, s.height);
        for (int j = 0; j < n; ++j) rp[j] = rowPtr(src, srcStep, sampler::clampTo(int64_t{cy} + j - h, s.height));
        for (int x = 0; x < s.width * C; ++x) {
            if constexpr (std::is_same<A, float>::value) {
                float acc = w[0] * static_cast<float>(rp[0][x]);
                for (int j = 1; j < n; ++j) acc += w[j] * static_cast<float>(rp[j][x]);
                pad[x] = acc;
            } else {
                uint64_t acc = 0;
                for (int j = 0; j < n; ++j) acc += static_cast<uint64_t>(int64_t{w[j]} * int64_t{rp[j][x]});
                pad[x] = (static_cast<int64_t>(acc) + 4096) >> 13;
            }
        }
        for (int i = 0; i < h; ++i)
            for (int c = 0; c < C; ++c) {
                row[i * C + c] = pad[c];
                pad[(s.width + i) * C + c] = pad[(s.width - 1) * C + c];
            }
        T* o = rowPtr(dst, dstStep, y);
        for (int x = 0; x < d.width; ++x)
            for (int c = 0; c < C; ++c) o[x * C + c] = toSample<T>(tapSum<A>(w, n, row + cols[x] * C + c, C));
    }
}

// The tests both directions share: pointers, sizes, steps, then the state:
// its direction, type, channels and rate, and a source within its size.
template <class T, int C, class Block>
RvpStatus checkLayer(const T* pSrc, int srcStep, RvpiSize srcRoi, T* pDst, int dstStep, RvpiSize dstRoi,
                     const Block* pState, Direction dir) {
    Check c;
    c.ptrs(pSrc, pDst, pState).size(srcRoi).size(dstRoi);
    c.step(srcStep, wmul(srcRoi.width, static_cast<int>(sizeof(T)) * C))
        .step(dstStep, wmul(dstRoi.width, static_cast<int>(sizeof(T)) * C))
        .evenSteps(static_cast<int>(sizeof(T)), srcStep, dstStep);
    if (c != rvpStsNoErr) return c;
    const Head* h = reinterpret_cast<const Head*>(pState);
    const RvpiPyramidDownState& st = h->pub;
    if (h->direction != dir || st.sampleType != Sample<T>::kType || h->channels != C || st.mode != 2) return rvpStsBadArgErr;
    if (!rateOk(st.rate)) return rvpStsBadArgErr;
    if (srcRoi.width > st.srcWidth || srcRoi.height > st.srcHeight) return rvpStsSizeErr;
    return rvpStsNoErr;
}

template <class T, int C>
RvpStatus layerDown(const T* pSrc, int srcStep, RvpiSize srcRoi, T* pDst, int dstStep, RvpiSize dstRoi,
                    RvpiPyramidDownState* pState) {
    if (RvpStatus e = checkLayer<T, C>(pSrc, srcStep, srcRoi, pDst, dstStep, dstRoi, pState, kDown)) return e;
    const DownBlock* b = reinterpret_cast<const DownBlock*>(pState);
    const RvpiPyramidDownState& st = b->pub;
    RvpiSize want{0, 0};
    bool found = false;
    for (int i = 0; i < st.levelCount && !found; ++i)
        if (st.pLevelRoi[i].height == srcRoi.height) want = st.pLevelRoi[i + 1], found = true;
    if (!found) want = downSize(srcRoi, st.rate);
    if (dstRoi.width != want.width || dstRoi.height != want.height) return rvpStsSizeErr;

    const ThreadRecord* rec = static_cast<const ThreadRecord*>(st.pThreadWork);
    const bool two = st.rate > 1.99998f && st.rate < 2.00002f;
    int* cols = static_cast<int*>(st.pWork);
    for (int x = 0; x < dstRoi.width; ++x) cols[x] = downPos(x, st.rate, two, srcRoi.width);
    using A = typename Sample<T>::A;
    const auto band = [&](int y0, int rows, int id) {
        A* row = reinterpret_cast<A*>(b->pRows + id * b->rowBytes);
        downRows<T, C>(pSrc, srcStep, srcRoi, pDst, dstStep, dstRoi, b, cols, two, y0, rows, row);
    };
    const int threads = std::min(b->threads, permittedThreads());
    if (!rec || threads <= 1 || int64_t{srcRoi.width} * dstRoi.height < 65536) {
        band(0, dstRoi.height, 0);
    } else {
        splitRegion(dstRoi.height, threads, [&](int id, const BandSplit& s) {
            if (s.rows(id) > 0) band(s.firstRow(id), s.rows(id), id);
        });
    }
    return rvpStsNoErr;
}

template <class T, int C>
RvpStatus layerUp(const T* pSrc, int srcStep, RvpiSize srcRoi, T* pDst, int dstStep, RvpiSize dstRoi,
                  RvpiPyramidUpState* pState) {
    using A = typename Sample<T>::A;
    using K = typename Sample<T>::K;
    using F = typename std::conditional<std::is_same<A, float>::value, float, int32_t>::type;
    if (RvpStatus e = checkLayer<T, C>(pSrc, srcStep, srcRoi, pDst, dstStep, dstRoi, pState, kUp)) return e;
    const UpBlock* b = reinterpret_cast<const UpBlock*>(pState);
    const RvpiPyramidUpState& st = b->pub;
    const Range rw = upRange(srcRoi.width, st.rate), rh = upRange(srcRoi.height, st.rate);
    if (dstRoi.width < rw.lo || dstRoi.width > rw.hi || dstRoi.height < rh.lo || dstRoi.height > rh.hi ||
        dstRoi.width > b->maxDstWidth)
        return rvpStsSizeErr;

    const K* w = static_cast<const K*>(st.pKernel);
    const int n = st.kernelSize, h = n >> 1;
    const int W = srcRoi.width, H = srcRoi.height;
    F* filt = static_cast<F*>(b->pFilt);
    const ptrdiff_t pitch = static_cast<ptrdiff_t>(W) * C;
    // Positions: u = x / rate, its floor and 14-bit fraction (a fraction that
    // rounds to 1 moves to the next sample).
    const auto place = [&](int x, int limit, int& i0, int& a) {
        const double u = static_cast<double>(x) / static_cast<double>(st.rate);
        const double f = std::floor(u);
        i0 = static_cast<int>(f);
        a = static_cast<int>((u - f) * 16384.0 + 0.5);
        if (a == 16384) ++i0, a = 0;
        if (i0 > limit - 1) i0 = limit - 1;
    };
    int* cols = static_cast<int*>(b->pCols);
    for (int x = 0; x < dstRoi.width; ++x) place(x, W, cols[2 * x], cols[2 * x + 1]);

    const int threads = std::min(b->threads, permittedThreads());
    const bool many = threads > 1 && int64_t{dstRoi.width} * dstRoi.height >= 65536;
    // Rows filtered along x into filt.
    const auto rowPass = [&](int y0, int rows) {
        for (int y = y0; y < y0 + rows; ++y) {
            const T* s = rowPtr(pSrc, srcStep, y);
            F* o = filt + y * pitch;
            for (int x = 0; x < W; ++x)
                for (int ch = 0; ch < C; ++ch) {
                    A acc{};
                    if constexpr (std::is_same<A, float>::value) {
                        acc = w[0] * s[sampler::clampTo(int64_t{x} - h, W) * C + ch];
                        for (int i = 1; i < n; ++i) acc += w[i] * s[sampler::clampTo(int64_t{x} + i - h, W) * C + ch];
                        o[x * C + ch] = acc;
                    } else {
                        uint64_t u = 0;
                        for (int i = 0; i < n; ++i)
                            u += static_cast<uint64_t>(int64_t{w[i]} * s[sampler::clampTo(int64_t{x} + i - h, W) * C + ch]);
                        const int64_t v = (static_cast<int64_t>(u) + 4096) >> 13;
                        o[x * C + ch] = saturate<int32_t>(v);
                    }
                }
        }
    };
    if (many) bandRegion(H, threads, rowPass);
    else rowPass(0, H);

    // Destination rows: the two filtered source rows around y / rate, then
    // bilinear samples between them.
    const auto colPass = [&](int y0, int rows, int id) {
        F* line[2] = {reinterpret_cast<F*>(b->pRows + 2 * id * b->rowBytes),
                      reinterpret_cast<F*>(b->pRows + (2 * id + 1) * b->rowBytes)};
        int held[2] = {-1, -1};
        const auto fill = [&](int r, F* out) {
            for (ptrdiff_t x = 0; x < pitch; ++x) {
                A acc{};
                if constexpr (std::is_same<A, float>::value) {
                    acc = w[0] * filt[sampler::clampTo(int64_t{r} - h, H) * pitch + x];
                    for (int j = 1; j < n; ++j) acc += w[j] * filt[sampler::clampTo(int64_t{r} + j - h, H) * pitch + x];
                    out[x] = acc;
                } else {
                    uint64_t u = 0;
                    for (int j = 0; j < n; ++j)
                        u += static_cast<uint64_t>(int64_t{w[j]} * filt[sampler::clampTo(int64_t{r} + j - h, H) * pitch + x]);
                    out[x] = saturate<T>((static_cast<int64_t>(u) + 4096) >> 13);
                }
            }
        };
        const auto rowOf = [&](int r) -> const F* {
            for (int k = 0; k < 2; ++k)
                if (held[k] == r) return line[k];
            const int k = held[0] == r - 1 ? 1 : 0;  // keep the row just above
            fill(r, line[k]);
            held[k] = r;
            return line[k];
        };
        for (int y = y0; y < y0 + rows; ++y) {
            int r0, bw;
            place(y, H, r0, bw);
            const int r1 = r0 + 1 < H ? r0 + 1 : H - 1;
            const F* g0 = rowOf(r0);
            const F* g1 = rowOf(r1);
            T* o = rowPtr(pDst, dstStep, y);
            for (int x = 0; x < dstRoi.width; ++x) {
                const int c0 = cols[2 * x], c1 = c0 + 1 < W ? c0 + 1 : W - 1;
                const sampler::Weights wt = sampler::weights14(cols[2 * x + 1], bw);
                for (int ch = 0; ch < C; ++ch) {
                    const F p00 = g0[c0 * C + ch], p01 = g0[c1 * C + ch], p10 = g1[c0 * C + ch], p11 = g1[c1 * C + ch];
                    if constexpr (std::is_same<F, float>::value) {
                        const float f0 = static_cast<float>(wt.w[0]) * (1.0f / 16384.0f), f1 = static_cast<float>(wt.w[1]) * (1.0f / 16384.0f);
                        const float f2 = static_cast<float>(wt.w[2]) * (1.0f / 16384.0f), f3 = static_cast<float>(wt.w[3]) * (1.0f / 16384.0f);
                        o[x * C + ch] = f0 * p00 + f1 * p01 + (f2 * p10 + f3 * p11);
                    } else {
                        const int64_t v = int64_t{wt.w[0]} * p00 + int64_t{wt.w[1]} * p01 + int64_t{wt.w[2]} * p10 +
                                          int64_t{wt.w[3]} * p11;
                        o[x * C + ch] = saturate<T>(scaleRound(v, 14));
                    }
                }
            }
        }
    };
    if (many) {
        splitRegion(dstRoi.height, threads, [&](int id, const BandSplit& s) {
            if (s.rows(id) > 0) colPass(s.firstRow(id), s.rows(id), id);
        });
    } else {
        colPass(0, dstRoi.height, 0);
    }
    return rvpStsNoErr;
}

RvpStatus releaseBlock(void* p) {
    if (!p) return rvpStsNullPtrErr;
    rvpsFree(p);
    return rvpStsNoErr;
}

}  // namespace
}  // namespace rvcv

using namespace rvcv;

RVCV_EXPORT RvpStatus rvpiGetPyramidDownROI(RvpiSize srcRoi, RvpiSize* pDstRoi, Rvp32f rate) {
    if (!pDstRoi) return rvpStsNullPtrErr;
    const RvpStatus st = sizeArgs(srcRoi, rate);
    if (st != rvpStsNoErr) return st;
    *pDstRoi = downSize(srcRoi, rate);
    return rvpStsNoErr;
}

RVCV_EXPORT RvpStatus rvpiGetPyramidUpROI(RvpiSize srcRoi, RvpiSize* pDstRoiMin, RvpiSize* pDstRoiMax, Rvp32f rate) {
    if (!pDstRoiMin || !pDstRoiMax) return rvpStsNullPtrErr;
    const RvpStatus st = sizeArgs(srcRoi, rate);
    if (st != rvpStsNoErr) return st;
    const Range w = upRange(srcRoi.width, rate), h = upRange(srcRoi.height, rate);
    if (w.hi > INT32_MAX || h.hi > INT32_MAX) return rvpStsSizeErr;
    *pDstRoiMin = RvpiSize{static_cast<int>(w.lo), static_cast<int>(h.lo)};
    *pDstRoiMax = RvpiSize{static_cast<int>(w.hi), static_cast<int>(h.hi)};
    return rvpStsNoErr;
}

RVCV_EXPORT RvpStatus rvpiPyramidInitAlloc(RvpiPyramid** ppPyr, int level, RvpiSize roiSize, Rvp32f rate) {
    if (!ppPyr) return rvpStsNullPtrErr;
    if (roiSize.width < 1 || roiSize.height < 1) return rvpStsSizeErr;
    if (!rateOk(rate) || level < 1) return rvpStsBadArgErr;
    const int levels = walkDown(roiSize, rate, level, [](int, RvpiSize) {});
    const int64_t bytes = 52 * int64_t{levels} + 152;
    if (!fitsInt(bytes)) return rvpStsMemAllocErr;
    Rvp8u* p = rvpsMalloc_8u(static_cast<int>(bytes));
    if (!p) return rvpStsMemAllocErr;
    std::memset(p, 0, static_cast<size_t>(bytes));
    RvpiPyramid* pyr = reinterpret_cast<RvpiPyramid*>(p);
    const int64_t n = int64_t{levels} + 1;
    // The arrays follow the record, each at an 8-byte boundary, 16 bytes apart.
    const int64_t imageAt = (sizeof(RvpiPyramid) + 7) & ~7;
    const int64_t roiAt = imageAt + n * 8 + 16, rateAt = roiAt + n * 8 + 16, stepAt = rateAt + n * 8 + 16;
    pyr->pImage = reinterpret_cast<void**>(p + imageAt);
    pyr->pRoi = reinterpret_cast<RvpiSize*>(p + roiAt);
    pyr->pRate = reinterpret_cast<Rvp64f*>(p + rateAt);
    pyr->pStep = reinterpret_cast<int*>(p + stepAt);
    pyr->pState = nullptr;
    pyr->level = levels;
    walkDown(roiSize, rate, levels, [&](int i, RvpiSize s) {
        pyr->pImage[i] = nullptr;
        pyr->pRoi[i] = s;
        pyr->pRate[i] = i == 0 ? 1.0 : pyr->pRate[i - 1] * (1.0 / static_cast<double>(rate));
    });
    *ppPyr = pyr;
    return rvpStsNoErr;
}

RVCV_EXPORT RvpStatus rvpiPyramidFree(RvpiPyramid* pPyr) { return releaseBlock(pPyr); }
RVCV_EXPORT RvpStatus rvpiPyramidLayerDownFree(RvpiPyramidDownState* pState) { return releaseBlock(pState); }
RVCV_EXPORT RvpStatus rvpiPyramidLayerUpFree(RvpiPyramidUpState* pState) { return releaseBlock(pState); }

#define RVCV_PYR_LAYER(SUF, T, K, C)                                                                                    \
    RVCV_EXPORT RvpStatus rvpiPyramidLayerDownInitAlloc_##SUF(RvpiPyramidDownState** ppState, RvpiSize roiSize,     \
                                                              Rvp32f rate, const K* pKernel, int kernelSize,         \
                                                              int mode) {                                            \
        return downInit<T>(ppState, roiSize, rate, pKernel, kernelSize, mode, C);                                    \
    }                                                                                                                \
    RVCV_EXPORT RvpStatus rvpiPyramidLayerUpInitAlloc_##SUF(RvpiPyramidUpState** ppState, RvpiSize roiSize,         \
                                                            Rvp32f rate, const K* pKernel, int kernelSize,           \
                                                            int mode) {                                              \
        return upInit<T>(ppState, roiSize, rate, pKernel, kernelSize, mode, C);                                      \
    }                                                                                                                \
    RVCV_EXPORT RvpStatus rvpiPyramidLayerDownFree_##SUF(RvpiPyramidDownState* pState) { return releaseBlock(pState); } \
    RVCV_EXPORT RvpStatus rvpiPyramidLayerUpFree_##SUF(RvpiPyramidUpState* pState) { return releaseBlock(pState); }     \
    RVCV_EXPORT RvpStatus rvpiPyramidLayerDown_##SUF(const T* pSrc, int srcStep, RvpiSize srcRoi, T* pDst,           \
                                                     int dstStep, RvpiSize dstRoi, RvpiPyramidDownState* pState) {    \
        return layerDown<T, C>(pSrc, srcStep, srcRoi, pDst, dstStep, dstRoi, pState);                                \
    }                                                                                                                \
    RVCV_EXPORT RvpStatus rvpiPyramidLayerUp_##SUF(const T* pSrc, int srcStep, RvpiSize srcRoi, T* pDst,             \
                                                   int dstStep, RvpiSize dstRoi, RvpiPyramidUpState* pState) {        \
        return layerUp<T, C>(pSrc, srcStep, srcRoi, pDst, dstStep, dstRoi, pState);                                  \
    }

RVCV_PYR_LAYER(8u_C1R, Rvp8u, Rvp16s, 1)
RVCV_PYR_LAYER(8u_C3R, Rvp8u, Rvp16s, 3)
RVCV_PYR_LAYER(16u_C1R, Rvp16u, Rvp16s, 1)
RVCV_PYR_LAYER(16u_C3R, Rvp16u, Rvp16s, 3)
RVCV_PYR_LAYER(32f_C1R, Rvp32f, Rvp32f, 1)
RVCV_PYR_LAYER(32f_C3R, Rvp32f, Rvp32f, 3)
