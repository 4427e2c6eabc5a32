// Fixed-kernel border filters: Sobel, Scharr, Laplacian and lowpass. Each is
// a row routine and a column routine taken from index tables, run by one band
// routine over a ring of kH + 15 intermediate rows. Float sums follow tap
// order with zero taps skipped; integer forms are exact for 8-bit sources.
#include "filter/rvcvfilter.h"

#include <utility>

namespace rvcv {
namespace filt {
namespace {

// ---- Tap sums unrolled at compile time -----------------------------------
// g(i) yields sample i; the first nonzero tap starts the sum, the others add
// in tap order.
template <class T, int Idx, int... K> struct Dot {
    template <class G> static T add(T s, const G&) { return s; }
};
template <class T, int Idx, int K0, int... K> struct Dot<T, Idx, K0, K...> {
    template <class G> static T add(T s, const G& g) {
        if constexpr (K0 == 0) return Dot<T, Idx + 1, K...>::add(s, g);
        else return Dot<T, Idx + 1, K...>::add(s + static_cast<T>(K0) * static_cast<T>(g(Idx)), g);
    }
    template <class G> static T sum(const G& g) {
        if constexpr (K0 == 0) return Dot<T, Idx + 1, K...>::sum(g);
        else return Dot<T, Idx + 1, K...>::add(static_cast<T>(K0) * static_cast<T>(g(Idx)), g);
    }
};

// Integer sums are made in int; they never leave the 16-bit range for 8-bit
// sources, so wrapping and saturating 16-bit arithmetic agree with them.
// Writes one output row from value(x). 8-bit results are made as 16-bit
// values first and then packed with saturation, 16 at a time; 16-bit and
// float results are stored as they come.
template <class D, class F> inline void emitRow(D* dst, int w, const F& value) {
    if constexpr (sizeof(D) == 1) {
        constexpr int kT = 256;
        alignas(16) Rvp16s tmp[kT];
        for (int x0 = 0; x0 < w; x0 += kT) {
            const int m = std::min(kT, w - x0);
            for (int x = 0; x < m; ++x) tmp[x] = static_cast<Rvp16s>(value(x0 + x));
            int x = 0;
            for (; x + 16 <= m; x += 16) {
                const __m128i a = _mm_load_si128(reinterpret_cast<const __m128i*>(tmp + x));
                const __m128i b = _mm_load_si128(reinterpret_cast<const __m128i*>(tmp + x + 8));
                const __m128i v = std::is_signed<D>::value ? _mm_packs_epi16(a, b) : _mm_packus_epi16(a, b);
                _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + x0 + x), v);
            }
            for (; x < m; ++x) dst[x0 + x] = saturate<D>(tmp[x]);
        }
    } else {
        D* __restrict d = dst;
        for (int x = 0; x < w; ++x) d[x] = static_cast<D>(value(x));
    }
}

template <class S> using Acc = typename std::conditional<std::is_same<S, Rvp32f>::value, float, int>::type;

// ---- Row routines ----------------------------------------------------------
template <class S, class I> using RowFn = void (*)(const S* src, I* dst, int w, int type, int flags, S bv, S* work,
                                                  int twin);

template <class S, class I, int... K> struct TapsRow {
    void operator()(const S* p, I* d, int count, bool) const {
        for (int j = 0; j < count; ++j)
            d[j] = static_cast<I>(Dot<Acc<S>, 0, K...>::sum([p, j](int k) { return p[j + k]; }));
    }
};

template <class S, class I, int... K>
void rowTaps(const S* src, I* dst, int w, int type, int flags, S bv, S* work, int) {
    constexpr int n = sizeof...(K);
    filterRow(src, dst, w, 1, n, n / 2, type, flags, bv, TapsRow<S, I, K...>{}, work);
}

// Laplacian rows come in twins: the pair sum s[x-1] + s[x+1], and 8 s[x]
// `twin` samples further on.
template <class S, class I> struct LapRow {
    int twin;
    void operator()(const S* p, I* d, int count, bool) const {
        using T = Acc<S>;
        for (int j = 0; j < count; ++j) {
            d[j] = static_cast<I>(static_cast<T>(p[j]) + static_cast<T>(p[j + 2]));
            d[j + twin] = static_cast<I>(static_cast<T>(8) * static_cast<T>(p[j + 1]));
        }
    }
};

template <class S, class I>
void rowLap(const S* src, I* dst, int w, int type, int flags, S bv, S* work, int twin) {
    filterRow(src, dst, w, 1, 3, 1, type, flags, bv, LapRow<S, I>{twin}, work);
}

template <class S, class I> struct RowEntry {
    RowFn<S, I> fn;
    int n;        // taps
    int tapSum;   // a constant row of v filters to tapSum * v
    bool twin;    // Laplacian twin rows (tap sum 8 for the second)
};

template <class S, class I> constexpr RowEntry<S, I> kRowTable[11] = {
    {rowTaps<S, I, -1, 0, 1>, 3, 0, false},        {rowTaps<S, I, 3, 10, 3>, 3, 16, false},
    {rowTaps<S, I, 1, 0, -1>, 3, 0, false},        {rowTaps<S, I, 1, 2, 0, -2, -1>, 5, 0, false},
    {rowTaps<S, I, 1, -2, 1>, 3, 0, false},        {rowTaps<S, I, 1, 0, -2, 0, 1>, 5, 0, false},
    {rowTaps<S, I, 1, 2, 1>, 3, 4, false},         {rowTaps<S, I, 1, 4, 6, 4, 1>, 5, 16, false},
    {rowTaps<S, I, 1, 1, 1>, 3, 3, false},         {rowTaps<S, I, 1, 1, 1, 1, 1>, 5, 5, false},
    {rowLap<S, I>, 3, 2, true},
};

// ---- Column routines ---------------------------------------------------------
// count output rows; output row y reads r[y .. y + n - 1].
template <class I, class D> using ColFn = void (*)(I* const* r, D* d, int dstStep, int count, int w, int twin);

template <class I, class D, int... K>
void colTaps(I* const* r, D* d, int dstStep, int count, int w, int) {
    constexpr int n = sizeof...(K);
    for (int y = 0; y < count; ++y, d = advance(d, dstStep)) {
        const I* q[n];
        for (int k = 0; k < n; ++k) q[k] = r[y + k];
        emitRow(d, w, [&q](int x) { return Dot<Acc<I>, 0, K...>::sum([&q, x](int k) { return q[k][x]; }); });
    }
}

// 2 (A[y-1] + A[y+1]) - B[y], B read `twin` samples past A.
template <class I, class D>
void colLap3(I* const* r, D* d, int dstStep, int count, int w, int twin) {
    using T = Acc<I>;
    for (int y = 0; y < count; ++y, d = advance(d, dstStep)) {
        const I *a0 = r[y], *b = r[y + 1] + twin, *a2 = r[y + 2];
        emitRow(d, w, [=](int x) {
            return static_cast<T>(2) * (static_cast<T>(a0[x]) + static_cast<T>(a2[x])) - static_cast<T>(b[x]);
        });
    }
}

// Second pass of the 5x5 Laplacian: the Sobel column sum added to what the
// destination holds (16-bit: wrapping).
template <class I, class D>
void colLap5(I* const* r, D* d, int dstStep, int count, int w, int) {
    using T = Acc<I>;
    for (int y = 0; y < count; ++y, d = advance(d, dstStep)) {
        const I *q0 = r[y], *q1 = r[y + 1], *q2 = r[y + 2], *q3 = r[y + 3], *q4 = r[y + 4];
        for (int x = 0; x < w; ++x) {
            const T s = Dot<T, 0, 1, 4, 6, 4, 1>::sum([&](int k) {
                return k == 0 ? q0[x] : k == 1 ? q1[x] : k == 2 ? q2[x] : k == 3 ? q3[x] : q4[x];
            });
            d[x] = static_cast<D>(static_cast<T>(d[x]) + s);
        }
    }
}

// Float box: the sum of n rows times 1/9 or 1/25 in single precision.
template <int N> void colAvr32f(Rvp32f* const* r, Rvp32f* d, int dstStep, int count, int w, int) {
    constexpr float scale = 1.0f / static_cast<float>(N * N);
    for (int y = 0; y < count; ++y, d = advance(d, dstStep)) {
        const Rvp32f* q[N];
        for (int k = 0; k < N; ++k) q[k] = r[y + k];
        for (int x = 0; x < w; ++x) {
            float s = q[0][x];
            for (int k = 1; k < N; ++k) s += q[k][x];
            d[x] = s * scale;
        }
    }
}

// 8-bit box: division without a divide, high half of a signed 16-bit
// product. 3x3: ((sum + 5) * 7280) >> 16; 5x5: (sum * 2621) >> 16, which
// comes out one level low on flat areas.
template <int N> void colAvr8u(Rvp16s* const* r, Rvp8u* d, int dstStep, int count, int w, int) {
    constexpr int mul = N == 3 ? 7280 : 2621, add = N == 3 ? 5 : 0;
    for (int y = 0; y < count; ++y, d = advance(d, dstStep)) {
        const Rvp16s* q[N];
        for (int k = 0; k < N; ++k) q[k] = r[y + k];
        emitRow(d, w, [&q](int x) {
            Rvp16s s = q[0][x];
            for (int k = 1; k < N; ++k) s = static_cast<Rvp16s>(s + q[k][x]);
            s = static_cast<Rvp16s>(s + add);
            return static_cast<Rvp16s>((static_cast<int>(s) * mul) >> 16);
        });
    }
}

template <class I, class D> struct ColTable { ColFn<I, D> fn[13]; };

// Indices 0-8 are shared; the integer tables hold the negated Sobel at 9-12,
// the float table the box at 9 and 10. The 8u8s table keeps its 3x3
// Laplacian at index 8, where the others hold the 5x5 one.
template <class I, class D> constexpr ColFn<I, D> kColCommon[9] = {
    colTaps<I, D, 3, 10, 3>, colTaps<I, D, -1, 0, 1>, colTaps<I, D, 1, 2, 1>, colTaps<I, D, 1, 4, 6, 4, 1>,
    colTaps<I, D, -1, -2, 0, 2, 1>, colTaps<I, D, 1, -2, 1>, colTaps<I, D, 1, 0, -2, 0, 1>, colLap3<I, D>,
    colLap5<I, D>,
};
template <class I, class D> constexpr ColTable<I, D> intColumns(ColFn<I, D> at8) {
    return {{kColCommon<I, D>[0], kColCommon<I, D>[1], kColCommon<I, D>[2], kColCommon<I, D>[3], kColCommon<I, D>[4],
             kColCommon<I, D>[5], kColCommon<I, D>[6], kColCommon<I, D>[7], at8, colTaps<I, D, -1, -2, -1>,
             colTaps<I, D, -1, -4, -6, -4, -1>,
             colTaps<I, D, -1, -2, -1>, colTaps<I, D, -1, -4, -6, -4, -1>}};
}
constexpr ColTable<Rvp16s, Rvp16s> owntabColumn_8u16s = intColumns<Rvp16s, Rvp16s>(colLap5<Rvp16s, Rvp16s>);
constexpr ColTable<Rvp16s, Rvp8s> owntabColumn_8u8s = intColumns<Rvp16s, Rvp8s>(colLap3<Rvp16s, Rvp8s>);
constexpr ColTable<Rvp32f, Rvp32f> owntabColumn_32f = {
    {kColCommon<Rvp32f, Rvp32f>[0], kColCommon<Rvp32f, Rvp32f>[1], kColCommon<Rvp32f, Rvp32f>[2],
     kColCommon<Rvp32f, Rvp32f>[3], kColCommon<Rvp32f, Rvp32f>[4], kColCommon<Rvp32f, Rvp32f>[5],
     kColCommon<Rvp32f, Rvp32f>[6], kColCommon<Rvp32f, Rvp32f>[7], kColCommon<Rvp32f, Rvp32f>[8], colAvr32f<3>,
     colAvr32f<5>, colTaps<Rvp32f, Rvp32f, -1, -2, -1>, colTaps<Rvp32f, Rvp32f, -1, -4, -6, -4, -1>}};
constexpr ColTable<Rvp16s, Rvp8u> owntabColumn_8u = {{colAvr8u<3>, colAvr8u<5>}};

template <class S, class I, class D> struct Tables;
template <> struct Tables<Rvp8u, Rvp16s, Rvp16s> {
    static constexpr const RowEntry<Rvp8u, Rvp16s>* row = kRowTable<Rvp8u, Rvp16s>;
    static constexpr const ColTable<Rvp16s, Rvp16s>* col = &owntabColumn_8u16s;
};
template <> struct Tables<Rvp8u, Rvp16s, Rvp8s> {
    static constexpr const RowEntry<Rvp8u, Rvp16s>* row = kRowTable<Rvp8u, Rvp16s>;
    static constexpr const ColTable<Rvp16s, Rvp8s>* col = &owntabColumn_8u8s;
};
template <> struct Tables<Rvp8u, Rvp16s, Rvp8u> {
    static constexpr const RowEntry<Rvp8u, Rvp16s>* row = kRowTable<Rvp8u, Rvp16s>;
    static constexpr const ColTable<Rvp16s, Rvp8u>* col = &owntabColumn_8u;
};
template <> struct Tables<Rvp32f, Rvp32f, Rvp32f> {
    static constexpr const RowEntry<Rvp32f, Rvp32f>* row = kRowTable<Rvp32f, Rvp32f>;
    static constexpr const ColTable<Rvp32f, Rvp32f>* col = &owntabColumn_32f;
};

template <class I, class S> I constantRow(int tapSum, S bv) {
    if constexpr (std::is_same<I, Rvp32f>::value) return static_cast<float>(tapSum) * bv;
    else return saturate<Rvp16s>(static_cast<int64_t>(tapSum) * bv);
}

Rvp8u* alignUp(Rvp8u* p, uintptr_t a) {
    return reinterpret_cast<Rvp8u*>((reinterpret_cast<uintptr_t>(p) + a - 1) & ~(a - 1));
}

// ---- The band routine ----------------------------------------------------------
// Rows of the band and kH - 1 rows around it are filtered once each into a
// ring of kH + 15 rows; the pointer array holds each ring row twice, so any
// run of kH + 15 entries from the first half is a window with no modulus.
// Ring slots follow the absolute row position, so bands of any split lay the
// ring out alike. A spare zero row follows the ring.
template <class S, class I, class D>
void ownFilterConvolution(const RowEntry<S, I>& re, ColFn<I, D> col, int kH, const S* base, int srcStep, int fullH,
                          int y0, int rows, D* dst, int dstStep, int w, int borderType, S bv, Rvp8u* buf) {
    const int type = borderType & 0xF;
    const int aW = (w + 7) & ~7;
    const int stride = re.twin ? 2 * aW : aW;
    const int R = kH + 15;
    I* ring = reinterpret_cast<I*>(alignUp(buf, 32));
    I** ptrs = reinterpret_cast<I**>(ring + static_cast<ptrdiff_t>(R + 1) * stride);
    S* work = reinterpret_cast<S*>(ptrs + 2 * R);
    std::memset(ring + static_cast<ptrdiff_t>(R) * stride, 0, sizeof(I) * stride);
    for (int i = 0; i < R; ++i) ptrs[i] = ptrs[i + R] = ring + static_cast<ptrdiff_t>(i) * stride;
    const I cA = constantRow<I>(re.tapSum, bv), cB = constantRow<I>(8, bv);

    const int p0 = y0 - kH / 2;
    int filled = 0;
    for (int done = 0; done < rows;) {
        const int batch = std::min(16, rows - done);
        for (const int need = done + batch + kH - 1; filled < need; ++filled) {
            const int p = p0 + filled;
            I* slot = ptrs[positiveMod(p, R)];
            const bool mem = (p >= 0 && p < fullH) || (p < 0 && (borderType & kSeamAbove)) ||
                             (p >= fullH && (borderType & kSeamBelow));
            const int idx = mem ? p : borderIndex(p, fullH, type);
            if (!mem && idx < 0) {
                std::fill(slot, slot + w, cA);
                if (re.twin) std::fill(slot + aW, slot + aW + w, cB);
            } else {
                re.fn(rowPtr(base, srcStep, idx), slot, w, type, borderType, bv, work, aW);
            }
        }
        col(ptrs + positiveMod(p0 + done, R), rowPtr(dst, dstStep, done), dstStep, batch, w, aW);
        done += batch;
    }
}

// ---- Public functions ------------------------------------------------------------

struct Stage { int row, col; };
struct FilterDef {
    Stage s3, s5;          // row and column table indices per mask
    Stage second5;         // second pass of the 5x5 mask (col < 0: none)
};

enum class SizeKind { Sobel8u, Sobel32f, Lap8u, Lap32f, Scharr8u, Scharr32f };

int fixedBytes(SizeKind kind, RvpiSize roi, int n, int maxThreads, int tail) {
    const int w16 = (roi.width + 15) & ~15;
    int one = 0;
    bool isFloat = false;
    switch (kind) {
    case SizeKind::Sobel8u: one = wadd(wmul(w16, 2, 2 * n + 15), 368 + 24 * n); break;
    case SizeKind::Sobel32f: one = wadd(wmul(w16, 4, 2 * n + 15), 368 + 24 * n); isFloat = true; break;
    case SizeKind::Lap8u: one = wadd(wmul(w16, 4, 2 * n + 15), 576 + 48 * n); break;
    case SizeKind::Lap32f: one = wadd(wmul(w16, 8, 2 * n + 15), 576 + 48 * n); isFloat = true; break;
    case SizeKind::Scharr8u: one = wadd(wmul(w16, 42), 376); break;
    case SizeKind::Scharr32f: one = wadd(wmul(w16, 84), 376); isFloat = true; break;
    }
    const int rowBytes = rowPipelineBytes(isFloat ? RowForm::P32f_C1 : RowForm::P8u16s_C1, roi, n, maxThreads);
    const int colBytes = colPipelineBytes(isFloat ? ColForm::P32f : ColForm::P16s_C1, roi, n, maxThreads);
    return wmul(maxThreads, wadd(wadd(wadd(one, rowBytes), colBytes), tail));
}

int maskN(int maskSize) { return maskSize == 33 ? 3 : maskSize == 55 ? 5 : 0; }

bool badFilterBorder(int borderType) {
    const int low = borderType & 0xF;
    if (!(low <= 4 || low == 6)) return true;
    return (borderType & 0xFFF0) != 0 && (borderType & 0xF0) == 0;
}

template <class S, class I, class D>
RvpStatus fixedFilter(const FilterDef& def, SizeKind kind, int tail, const S* pSrc, int srcStep, D* pDst, int dstStep,
                      RvpiSize roi, int maskSize, int borderType, S bv, Rvp8u* pBuffer) {
    const int maxThreads = owncvGetMaxNumThreads();
    Check c;
    c.ptrs(pSrc, pDst, pBuffer).size(roi);
    c.step(srcStep, wmul(roi.width, static_cast<int>(sizeof(S)))).step(dstStep, wmul(roi.width, static_cast<int>(sizeof(D))));
    c.evenSteps(static_cast<int>(sizeof(S)), srcStep).evenSteps(static_cast<int>(sizeof(D)), dstStep);
    c.fail(badFilterBorder(borderType), rvpStsBadArgErr);
    c.fail(maskN(maskSize) == 0, rvpStsMaskSizeErr);
    if (c != rvpStsNoErr) return c;
    if ((borderType & 0xF) == rvpBorderInMem) borderType = 0xF0;
    const int n = maskN(maskSize);
    const Stage first = n == 3 ? def.s3 : def.s5;
    const bool second = n == 5 && def.second5.col >= 0;
    using Tab = Tables<S, I, D>;
    const int width = roi.width, height = roi.height;
    auto band = [&](int y0, int rows, Rvp8u* slice, int seam) {
        D* d = rowPtr(pDst, dstStep, y0);
        ownFilterConvolution<S, I, D>(Tab::row[first.row], Tab::col->fn[first.col], n, pSrc, srcStep, height, y0,
                                      rows, d, dstStep, width, borderType | seam, bv, slice);
        if (second)
            ownFilterConvolution<S, I, D>(Tab::row[def.second5.row], Tab::col->fn[def.second5.col], n, pSrc, srcStep,
                                          height, y0, rows, d, dstStep, width, borderType | seam, bv, slice);
    };
    if (maxThreads * 5 <= height && width >= 256 && maxThreads > 1 && height >= 256 && runomp() != 0) {
        int team = height / 128;
        if (rvpGetNumCoresOnDie() < team) team = rvpGetNumCoresOnDie();
        if (ownGetNumThreads() < team) team = ownGetNumThreads();
        filterRegion(height, team, pBuffer, fixedBytes(kind, roi, n, maxThreads, tail), band);
    } else {
        band(0, height, pBuffer, 0);
    }
    return rvpStsNoErr;
}

RvpStatus fixedQuery(SizeKind kind, int tail, RvpiSize roi, int maskSize, int* pBufferSize) {
    if (pBufferSize == nullptr) return rvpStsNullPtrErr;
    if (roi.width < 1 || roi.height < 1) return rvpStsSizeErr;
    const int n = maskN(maskSize);
    if (n == 0) return rvpStsMaskSizeErr;
    *pBufferSize = fixedBytes(kind, roi, n, owncvGetMaxNumThreads(), tail);
    return rvpStsNoErr;
}

// Row and column indices: {3x3}, {5x5}, {second 5x5 pass}.
constexpr FilterDef kSobelHoriz{{6, 1}, {7, 4}, {0, -1}};
constexpr FilterDef kSobelVert{{2, 2}, {3, 3}, {0, -1}};
constexpr FilterDef kSobelNegVert{{2, 11}, {3, 12}, {0, -1}};
constexpr FilterDef kSobelHorizSecond{{6, 5}, {7, 6}, {0, -1}};
constexpr FilterDef kSobelVertSecond{{4, 2}, {5, 3}, {0, -1}};
constexpr FilterDef kSobelCross{{2, 1}, {3, 4}, {0, -1}};
constexpr FilterDef kScharrHoriz{{1, 1}, {1, 1}, {0, -1}};
constexpr FilterDef kScharrVert{{0, 0}, {0, 0}, {0, -1}};
constexpr FilterDef kLaplacian{{10, 7}, {7, 6}, {5, 8}};
constexpr FilterDef kLowpass8u{{8, 0}, {9, 1}, {0, -1}};
constexpr FilterDef kLowpass32f{{8, 9}, {9, 10}, {0, -1}};

}  // namespace
}  // namespace filt
}  // namespace rvcv

using namespace rvcv;
using namespace rvcv::filt;

#define RVCV_FIXED(Name, def, kind8, kind32f, tail16s)                                                              \
    RVCV_EXPORT RvpStatus rvpiFilter##Name##Border_8u16s_C1R(const Rvp8u* pSrc, int srcStep, Rvp16s* pDst,          \
                                                             int dstStep, RvpiSize roiSize, int maskSize,           \
                                                             int borderType, Rvp8u borderValue, Rvp8u* pBuffer) {   \
        return fixedFilter<Rvp8u, Rvp16s, Rvp16s>(def, kind8, tail16s, pSrc, srcStep, pDst, dstStep, roiSize,       \
                                                  maskSize, borderType, borderValue, pBuffer);                      \
    }                                                                                                               \
    RVCV_EXPORT RvpStatus rvpiFilter##Name##Border_8u8s_C1R(const Rvp8u* pSrc, int srcStep, Rvp8s* pDst,            \
                                                            int dstStep, RvpiSize roiSize, int maskSize,            \
                                                            int borderType, Rvp8u borderValue, Rvp8u* pBuffer) {    \
        return fixedFilter<Rvp8u, Rvp16s, Rvp8s>(def, kind8, 32, pSrc, srcStep, pDst, dstStep, roiSize, maskSize,   \
                                                 borderType, borderValue, pBuffer);                                 \
    }                                                                                                               \
    RVCV_EXPORT RvpStatus rvpiFilter##Name##Border_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst,           \
                                                           int dstStep, RvpiSize roiSize, int maskSize,             \
                                                           int borderType, Rvp32f borderValue, Rvp8u* pBuffer) {    \
        return fixedFilter<Rvp32f, Rvp32f, Rvp32f>(def, kind32f, 32, pSrc, srcStep, pDst, dstStep, roiSize,         \
                                                   maskSize, borderType, borderValue, pBuffer);                     \
    }                                                                                                               \
    RVCV_EXPORT RvpStatus rvpiFilter##Name##GetBufferSize_8u16s_C1R(RvpiSize roiSize, int maskSize,                 \
                                                                    int* pBufferSize) {                             \
        return fixedQuery(kind8, tail16s, roiSize, maskSize, pBufferSize);                                          \
    }                                                                                                               \
    RVCV_EXPORT RvpStatus rvpiFilter##Name##GetBufferSize_8u8s_C1R(RvpiSize roiSize, int maskSize,                  \
                                                                   int* pBufferSize) {                              \
        return fixedQuery(kind8, 32, roiSize, maskSize, pBufferSize);                                               \
    }                                                                                                               \
    RVCV_EXPORT RvpStatus rvpiFilter##Name##GetBufferSize_32f_C1R(RvpiSize roiSize, int maskSize,                   \
                                                                  int* pBufferSize) {                               \
        return fixedQuery(kind32f, 32, roiSize, maskSize, pBufferSize);                                             \
    }

RVCV_FIXED(SobelHoriz, kSobelHoriz, SizeKind::Sobel8u, SizeKind::Sobel32f, 64)
RVCV_FIXED(SobelVert, kSobelVert, SizeKind::Sobel8u, SizeKind::Sobel32f, 32)
RVCV_FIXED(SobelNegVert, kSobelNegVert, SizeKind::Sobel8u, SizeKind::Sobel32f, 32)
RVCV_FIXED(SobelHorizSecond, kSobelHorizSecond, SizeKind::Sobel8u, SizeKind::Sobel32f, 32)
RVCV_FIXED(SobelVertSecond, kSobelVertSecond, SizeKind::Sobel8u, SizeKind::Sobel32f, 32)
RVCV_FIXED(SobelCross, kSobelCross, SizeKind::Sobel8u, SizeKind::Sobel32f, 32)
RVCV_FIXED(Laplacian, kLaplacian, SizeKind::Lap8u, SizeKind::Lap32f, 32)

// Scharr is 3x3 only and takes no mask size.
#define RVCV_SCHARR(Name, def)                                                                                     \
    RVCV_EXPORT RvpStatus rvpiFilter##Name##Border_8u16s_C1R(const Rvp8u* pSrc, int srcStep, Rvp16s* pDst,         \
                                                             int dstStep, RvpiSize roiSize, int borderType,        \
                                                             Rvp8u borderValue, Rvp8u* pBuffer) {                  \
        return fixedFilter<Rvp8u, Rvp16s, Rvp16s>(def, SizeKind::Scharr8u, 32, pSrc, srcStep, pDst, dstStep,       \
                                                  roiSize, 33, borderType, borderValue, pBuffer);                  \
    }                                                                                                              \
    RVCV_EXPORT RvpStatus rvpiFilter##Name##Border_8u8s_C1R(const Rvp8u* pSrc, int srcStep, Rvp8s* pDst,           \
                                                            int dstStep, RvpiSize roiSize, int borderType,         \
                                                            Rvp8u borderValue, Rvp8u* pBuffer) {                   \
        return fixedFilter<Rvp8u, Rvp16s, Rvp8s>(def, SizeKind::Scharr8u, 32, pSrc, srcStep, pDst, dstStep,        \
                                                 roiSize, 33, borderType, borderValue, pBuffer);                   \
    }                                                                                                              \
    RVCV_EXPORT RvpStatus rvpiFilter##Name##Border_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst,          \
                                                           int dstStep, RvpiSize roiSize, int borderType,          \
                                                           Rvp32f borderValue, Rvp8u* pBuffer) {                   \
        return fixedFilter<Rvp32f, Rvp32f, Rvp32f>(def, SizeKind::Scharr32f, 32, pSrc, srcStep, pDst, dstStep,     \
                                                   roiSize, 33, borderType, borderValue, pBuffer);                 \
    }                                                                                                              \
    RVCV_EXPORT RvpStatus rvpiFilter##Name##GetBufferSize_8u16s_C1R(RvpiSize roiSize, int* pBufferSize) {          \
        return fixedQuery(SizeKind::Scharr8u, 32, roiSize, 33, pBufferSize);                                       \
    }                                                                                                              \
    RVCV_EXPORT RvpStatus rvpiFilter##Name##GetBufferSize_8u8s_C1R(RvpiSize roiSize, int* pBufferSize) {           \
        return fixedQuery(SizeKind::Scharr8u, 32, roiSize, 33, pBufferSize);                                       \
    }                                                                                                              \
    RVCV_EXPORT RvpStatus rvpiFilter##Name##GetBufferSize_32f_C1R(RvpiSize roiSize, int* pBufferSize) {            \
        return fixedQuery(SizeKind::Scharr32f, 32, roiSize, 33, pBufferSize);                                      \
    }

RVCV_SCHARR(ScharrHoriz, kScharrHoriz)
RVCV_SCHARR(ScharrVert, kScharrVert)

RVCV_EXPORT RvpStatus rvpiFilterLowpassBorder_8u_C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                                     RvpiSize roiSize, int maskSize, int borderType,
                                                     Rvp8u borderValue, Rvp8u* pBuffer) {
    return fixedFilter<Rvp8u, Rvp16s, Rvp8u>(kLowpass8u, SizeKind::Sobel8u, 32, pSrc, srcStep, pDst, dstStep, roiSize,
                                             maskSize, borderType, borderValue, pBuffer);
}
RVCV_EXPORT RvpStatus rvpiFilterLowpassBorder_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                                      RvpiSize roiSize, int maskSize, int borderType,
                                                      Rvp32f borderValue, Rvp8u* pBuffer) {
    return fixedFilter<Rvp32f, Rvp32f, Rvp32f>(kLowpass32f, SizeKind::Sobel32f, 32, pSrc, srcStep, pDst, dstStep,
                                               roiSize, maskSize, borderType, borderValue, pBuffer);
}
RVCV_EXPORT RvpStatus rvpiFilterLowpassGetBufferSize_8u_C1R(RvpiSize roiSize, int maskSize, int* pBufferSize) {
    return fixedQuery(SizeKind::Sobel8u, 32, roiSize, maskSize, pBufferSize);
}
RVCV_EXPORT RvpStatus rvpiFilterLowpassGetBufferSize_32f_C1R(RvpiSize roiSize, int maskSize, int* pBufferSize) {
    return fixedQuery(SizeKind::Sobel32f, 32, roiSize, maskSize, pBufferSize);
}
