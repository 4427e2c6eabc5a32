// Row and column pipelines: the two stages of a separable filter, joined by
// an array of row pointers that the caller owns. The row stage extends only
// the two ends of each row; the column stage has no border logic at all.
// Band threads work on private copies of their slice of the pointer array.
#include "filter/rvcvfilter.h"
#include "filter/rvcvfloatk.h"
#include "rvcvcpu.h"

namespace rvcv {
namespace filt {
namespace {

constexpr int kChunk = 256;  // outputs accumulated at once, on the stack

template <class S> inline float f(S v) { return static_cast<float>(v); }

// acc[j] = sum over k of t[k] * p[j + k * C], added in tap order.
template <class S>
inline void accumulate(const S* p, int m, int C, const float* t, int n, float* acc) {
    const float t0 = t[0];
    for (int j = 0; j < m; ++j) acc[j] = t0 * f(p[j]);
    for (int k = 1; k < n; ++k) {
        const S* q = p + k * C;
        const float tk = t[k];
        for (int j = 0; j < m; ++j) acc[j] += tk * f(q[j]);
    }
}

// ---- Row operations (see filterRow for the calling convention) -------------

// Taps scaled by 1/divisor, float sum in tap order, nearest-even, saturated.
template <class S> struct RowScaled {
    const float* t; int n, C;
    void operator()(const S* p, Rvp16s* d, int count, bool) const {
        float acc[kChunk];
        for (int j0 = 0, total = count * C; j0 < total; j0 += kChunk) {
            const int m = std::min(kChunk, total - j0);
            accumulate(p + j0, m, C, t, n, acc);
            roundSatRow(acc, d + j0, m);
        }
    }
};

// 8-bit rows with 5 or more taps: exact 32-bit sums, then one scaling.
struct RowInt8u {
    const Rvp16s* k; float inv; int n;
    void operator()(const Rvp8u* p, Rvp16s* d, int count, bool) const {
        uint32_t acc[kChunk];
        float fa[kChunk];
        for (int j0 = 0; j0 < count; j0 += kChunk) {
            const int m = std::min(kChunk, count - j0);
            const Rvp8u* q = p + j0;
            for (int j = 0; j < m; ++j) acc[j] = static_cast<uint32_t>(k[0] * q[j]);
            for (int i = 1; i < n; ++i) {
                const uint32_t ki = static_cast<uint32_t>(static_cast<int32_t>(k[i]));
                for (int j = 0; j < m; ++j) acc[j] += ki * q[j + i];
            }
            for (int j = 0; j < m; ++j) fa[j] = static_cast<float>(static_cast<int32_t>(acc[j])) * inv;
            roundSatRow(fa, d + j0, m);
        }
    }
};

// 16-bit one-channel rows: the middle may add mirrored samples first (sym
// kernels of 3 and 5 taps); head and tail sum the raw taps, scale, and
// truncate toward zero.
struct Row16s {
    const Rvp16s* k; const float* t; float inv; int n; bool sym;
    void operator()(const Rvp16s* p, Rvp16s* d, int count, bool edge) const {
        if (edge) {
            for (int j = 0; j < count; ++j) {
                float s = f(k[0]) * f(p[j]);
                for (int i = 1; i < n; ++i) s += f(k[i]) * f(p[j + i]);
                d[j] = truncSat16(s * inv);
            }
            return;
        }
        if (!sym) return RowScaled<Rvp16s>{t, n, 1}(p, d, count, false);
        float acc[kChunk];
        for (int j0 = 0; j0 < count; j0 += kChunk) {
            const int m = std::min(kChunk, count - j0);
            const Rvp16s* q = p + j0;
            if (n == 3) {
                for (int j = 0; j < m; ++j) acc[j] = t[0] * (f(q[j]) + f(q[j + 2])) + t[1] * f(q[j + 1]);
            } else {
                for (int j = 0; j < m; ++j) {
                    float s = t[0] * (f(q[j]) + f(q[j + 4]));
                    s += t[1] * (f(q[j + 1]) + f(q[j + 3]));
                    acc[j] = s + t[2] * f(q[j + 2]);
                }
            }
            roundSatRow(acc, d + j0, m);
        }
    }
};

// 16-bit products and sums that wrap, then a shift to divide.
struct RowLow {
    const Rvp16s* k; int n, C, shift; bool neg;
    void operator()(const Rvp16s* p, Rvp16s* d, int count, bool) const {
        for (int j = 0, total = count * C; j < total; ++j) {
            uint16_t s = 0;
            for (int i = 0; i < n; ++i) s = static_cast<uint16_t>(s + static_cast<uint16_t>(k[i] * p[j + i * C]));
            int v = static_cast<Rvp16s>(s) >> shift;
            d[j] = static_cast<Rvp16s>(neg ? -v : v);
        }
    }
};

// Float rows in tap order. With sym5 the 5-tap whole-image routine adds
// mirrored samples first; with wide the middle keeps eight partial sums,
// tap k going to sum k % 8, combined in order at the end.
struct Row32f {
    const float* t; int n, C; bool sym5, wide;
    void operator()(const Rvp32f* p, Rvp32f* dst, int count, bool edge) const {
        const int total = count * C;
        Rvp32f* __restrict d = dst;
        const FloatKernels& k = pick(m7::kFloat, avx2::kFloat);
        if (sym5) {
            k.rowSym5(p, d, total, C, t);
        } else if (n == 3) {
            k.row3(p, d, total, C, t);
        } else if (n == 5) {
            k.row5(p, d, total, C, t);
        } else if (wide && !edge && n > 8) {
            constexpr int kW = 64;
            float part[8][kW];
            for (int j0 = 0; j0 < total; j0 += kW) {
                const int m = std::min(kW, total - j0);
                const Rvp32f* q = p + j0;
                for (int i = 0; i < 8; ++i)
                    for (int j = 0; j < m; ++j) part[i][j] = t[i] * q[j + i];
                for (int i = 8; i < n; ++i)
                    for (int j = 0; j < m; ++j) part[i & 7][j] += t[i] * q[j + i];
                for (int j = 0; j < m; ++j) {
                    float s = part[0][j];
                    for (int i = 1; i < 8; ++i) s += part[i][j];
                    d[j0 + j] = s;
                }
            }
        } else {
            float acc[kChunk];
            for (int j0 = 0; j0 < total; j0 += kChunk) {
                const int m = std::min(kChunk, total - j0);
                accumulate(p + j0, m, C, t, n, acc);
                std::memcpy(d + j0, acc, sizeof(float) * m);
            }
        }
    }
};

// ---- Column operations: one output row from n row pointers ----------------

template <class D> struct ColScaled {
    const float* t; int n;
    void operator()(const Rvp16s* const* r, D* d, int width, void* work) const {
        float* acc = static_cast<float*>(work);
        const float t0 = t[0];
        for (int x = 0; x < width; ++x) acc[x] = t0 * f(r[0][x]);
        for (int k = 1; k < n; ++k) {
            const Rvp16s* q = r[k];
            const float tk = t[k];
            for (int x = 0; x < width; ++x) acc[x] += tk * f(q[x]);
        }
        roundSatRow(acc, d, width);
    }
};

struct Col32f {
    const float* t; int n;
    void operator()(const Rvp32f* const* r, Rvp32f* dst, int width, void*) const {
        Rvp32f* __restrict d = dst;
        if (n == 3 || n == 5) {
            const FloatKernels& k = pick(m7::kFloat, avx2::kFloat);
            (n == 3 ? k.col3 : k.col5)(r, d, width, t);
            return;
        }
        float acc[kChunk];
        for (int x0 = 0; x0 < width; x0 += kChunk) {
            const int m = std::min(kChunk, width - x0);
            const float t0 = t[0];
            const Rvp32f* q0 = r[0] + x0;
            for (int x = 0; x < m; ++x) acc[x] = t0 * q0[x];
            for (int k = 1; k < n; ++k) {
                const Rvp32f* q = r[k] + x0;
                const float tk = t[k];
                for (int x = 0; x < m; ++x) acc[x] += tk * q[x];
            }
            std::memcpy(d + x0, acc, sizeof(float) * m);
        }
    }
};

struct ColLow {
    const Rvp16s* k; int n, shift; bool neg;
    void operator()(const Rvp16s* const* r, Rvp16s* d, int width, void* work) const {
        uint16_t* acc = static_cast<uint16_t*>(work);
        for (int x = 0; x < width; ++x) acc[x] = static_cast<uint16_t>(k[0] * r[0][x]);
        for (int i = 1; i < n; ++i)
            for (int x = 0; x < width; ++x) acc[x] = static_cast<uint16_t>(acc[x] + static_cast<uint16_t>(k[i] * r[i][x]));
        for (int x = 0; x < width; ++x) {
            int v = static_cast<Rvp16s>(acc[x]) >> shift;
            d[x] = static_cast<Rvp16s>(neg ? -v : v);
        }
    }
};

// ---- Divisors --------------------------------------------------------------

void scaledTaps(const Rvp16s* k, int n, int divisor, float* t) {
    const float inv = 1.0f / static_cast<float>(divisor);
    for (int i = 0; i < n; ++i) t[i] = static_cast<float>(k[i]) * inv;
}

// _Low divides by shifting right by the position of the highest set bit of
// |divisor| (exact for powers of two); a negative divisor negates the result.
int lowShift(int divisor) {
    const uint32_t m = divisor < 0 ? 0u - static_cast<uint32_t>(divisor) : static_cast<uint32_t>(divisor);
    return 31 - __builtin_clz(m);
}

// Taps live on the stack up to this count, beyond it in an allocation that
// the call releases; kernels that long are rare.
class TapStore {
public:
    explicit TapStore(int n) : heap_(n > kStack ? rvpsMalloc_32f(n) : nullptr) {}
    ~TapStore() { if (heap_) rvpsFree(heap_); }
    float* get() { return heap_ ? heap_ : stack_; }
    bool ok(int n) const { return n <= kStack || heap_ != nullptr; }
private:
    static constexpr int kStack = 64;
    float stack_[kStack];
    float* heap_;
};

Rvp8u* alignUp(Rvp8u* p, uintptr_t a) {
    return reinterpret_cast<Rvp8u*>((reinterpret_cast<uintptr_t>(p) + a - 1) & ~(a - 1));
}

// ---- Per-thread layout -------------------------------------------------------

// Sizes in 64 bits: where the documented 32-bit formulas fit they give the
// same numbers; where they would wrap the callers refuse the arguments.
int64_t rowPerThread(RowForm f, int64_t k) {
    switch (f) {
    case RowForm::P8u16s_C1: return 36 * k + 112;
    case RowForm::P8u16s_C3: return 3 * (36 * k + 112);
    case RowForm::P16s_C1: return 48 * k + 80;
    case RowForm::P16s_C3: return 3 * (48 * k + 80);
    case RowForm::Low_C1: return 24 * k + 64;
    case RowForm::Low_C3: return 3 * (24 * k + 64);
    case RowForm::P32f_C1: return 128 * k + 64;
    case RowForm::P32f_C3: return 192 * k + 32;
    }
    return 0;
}

int64_t colPerThread(ColForm f, int64_t w) {
    switch (f) {
    case ColForm::P16s_C1: return ((w + 3) & ~int64_t{3}) * 12 + 32;
    case ColForm::P16s_C3: return ((w + 3) & ~int64_t{3}) * 36 + 32;
    case ColForm::Low_C1: return ((w + 7) & ~int64_t{7}) * 12 + 32;
    case ColForm::Low_C3: return ((w + 7) & ~int64_t{7}) * 36 + 32;
    case ColForm::P32f: return 0;
    }
    return 0;
}

int64_t regionBytes(int64_t maxThreads, int64_t height, int64_t k, int64_t perThread) {
    return maxThreads * 32 + (height + k) * maxThreads * 8 + maxThreads * perThread;
}

// Pipeline region: band threads with private copies of their slice of the
// row-pointer array (`extra` entries beyond their rows: k - 1 for columns)
// and work areas carved from pBuffer. The last status written is returned.
template <class P, class Body>
RvpStatus pipelineRegion(int height, int k, int extra, int64_t perThread64, Rvp8u* pBuffer, P* const* pp,
                         Body&& body) {
    const int perThread = static_cast<int>(perThread64);  // the whole size fits an int: checked first
    RvpStatus status = rvpStsNoErr;
    bandRegion(height, ownGetNumThreads(), [&](int y0, int rows) {
        const int n = owncvGetNumThreads(), id = owncvGetIdThreads();
        P** mine = reinterpret_cast<P**>(alignUp(pBuffer + rowOffset(wadd(height, k), wmul(id, 8)), 16));
        Rvp8u* start = pBuffer + wadd(wmul(n, 32), wmul(n, wadd(height, k), 8));
        Rvp8u* work = alignUp(start + rowOffset(perThread, id), 32);
        std::memcpy(mine, pp + y0, sizeof(P*) * static_cast<size_t>(rows + extra));
        const RvpStatus s = body(y0, rows, mine, work);
#pragma omp atomic write
        status = s;
    });
    return status;
}

bool rowSerial(RowForm f, RvpiSize roi, int k) {
    const int maxThreads = owncvGetMaxNumThreads();
    if (wmul(roi.width, roi.height) < wmul(maxThreads, 32768)) return true;
    if (f == RowForm::P16s_C1 && k < 4) return true;
    if (f == RowForm::P32f_C1 && runsepomp(k) == 0) return true;
    return false;
}

// ---- Row stage ---------------------------------------------------------------

template <class S, class D, class Op>
RvpStatus rowRoutine(const S* pSrc, int srcStep, D* const* ppDst, RvpiSize roi, int C, int k, int a, int type,
                     S bv, const Op& op, Rvp8u* work) {
    S* ext = reinterpret_cast<S*>(work);
    for (int y = 0; y < roi.height; ++y) {
        if (ppDst[y] == nullptr) return rvpStsNullPtrErr;
        filterRow(pSrc, ppDst[y], roi.width, C, k, a, type, 0, bv, op, ext);
        pSrc = advance(pSrc, srcStep);
    }
    return rvpStsNoErr;
}

template <class S, class D, class Op>
RvpStatus runRows(RowForm form, const S* pSrc, int srcStep, D* const* ppDst, RvpiSize roi, int C, int k, int a,
                  int type, S bv, const Op& op, Rvp8u* pBuffer) {
    if (rowSerial(form, roi, k))
        return rowRoutine(pSrc, srcStep, ppDst, roi, C, k, a, type, bv, op, alignUp(pBuffer, 32));
    return pipelineRegion(roi.height, k, 0, rowPerThread(form, k), pBuffer, ppDst,
                          [&](int y0, int rows, D** mine, Rvp8u* work) {
                              return rowRoutine(rowPtr(pSrc, srcStep, y0), srcStep, mine, RvpiSize{roi.width, rows},
                                                C, k, a, type, bv, op, work);
                          });
}

template <class S>
RvpStatus checkRow(RowForm form, const S* pSrc, int srcStep, const void* ppDst, RvpiSize roi, const void* pKernel,
                   int k, int xAnchor, int borderType, const void* pBuffer, int C, bool evenTest) {
    Check c;
    c.ptrs(pSrc, ppDst, pKernel, pBuffer);
    c.fail(roi.height < 1 || roi.width < 1 || k < 1, rvpStsSizeErr);
    c.fail(rowPipelineBytes(form, roi, k, owncvGetMaxNumThreads()) > INT32_MAX, rvpStsSizeErr);
    c.fail(xAnchor < 0 || xAnchor >= k, rvpStsAnchorErr);
    c.step(srcStep, wmul(roi.width, C * static_cast<int>(sizeof(S))));
    c.fail(static_cast<int64_t>(roi.width) * C * static_cast<int64_t>(sizeof(S)) > INT32_MAX, rvpStsStepErr);
    if (evenTest) c.evenSteps(static_cast<int>(sizeof(S)), srcStep);
    c.fail(!validPipelineBorder(borderType), rvpStsBadArgErr);
    return c;
}

RvpStatus row8u16s(int C, const Rvp8u* pSrc, int srcStep, Rvp16s** ppDst, RvpiSize roi, const Rvp16s* pKernel,
                   int k, int a, int borderType, Rvp8u bv, int divisor, Rvp8u* pBuffer) {
    const RowForm form = C == 1 ? RowForm::P8u16s_C1 : RowForm::P8u16s_C3;
    if (RvpStatus st = checkRow(form, pSrc, srcStep, ppDst, roi, pKernel, k, a, borderType, pBuffer, C, false))
        return st;
    if (divisor == 0) return rvpStsBadArgErr;
    TapStore taps(k);
    if (!taps.ok(k)) return rvpStsMemAllocErr;
    scaledTaps(pKernel, k, divisor, taps.get());
    if (C == 1 && k != 3)
        return runRows(form, pSrc, srcStep, ppDst, roi, C, k, a, borderType, bv,
                       RowInt8u{pKernel, 1.0f / static_cast<float>(divisor), k}, pBuffer);
    return runRows(form, pSrc, srcStep, ppDst, roi, C, k, a, borderType, bv, RowScaled<Rvp8u>{taps.get(), k, C},
                   pBuffer);
}

RvpStatus row16s(int C, const Rvp16s* pSrc, int srcStep, Rvp16s** ppDst, RvpiSize roi, const Rvp16s* pKernel,
                 int k, int a, int borderType, Rvp16s bv, int divisor, Rvp8u* pBuffer) {
    if (RvpStatus st = checkRow(C == 1 ? RowForm::P16s_C1 : RowForm::P16s_C3, pSrc, srcStep, ppDst, roi, pKernel, k,
                                a, borderType, pBuffer, C, true))
        return st;
    if (divisor == 0) return rvpStsBadArgErr;
    TapStore taps(k);
    if (!taps.ok(k)) return rvpStsMemAllocErr;
    scaledTaps(pKernel, k, divisor, taps.get());
    if (C == 3)
        return runRows(RowForm::P16s_C3, pSrc, srcStep, ppDst, roi, 3, k, a, borderType, bv,
                       RowScaled<Rvp16s>{taps.get(), k, 3}, pBuffer);
    const bool sym = (k == 3 && pKernel[0] == pKernel[2]) ||
                     (k == 5 && pKernel[0] == pKernel[4] && pKernel[1] == pKernel[3]);
    return runRows(RowForm::P16s_C1, pSrc, srcStep, ppDst, roi, 1, k, a, borderType, bv,
                   Row16s{pKernel, taps.get(), 1.0f / static_cast<float>(divisor), k, sym}, pBuffer);
}

RvpStatus rowLow(int C, const Rvp16s* pSrc, int srcStep, Rvp16s** ppDst, RvpiSize roi, const Rvp16s* pKernel,
                 int k, int a, int borderType, Rvp16s bv, int divisor, Rvp8u* pBuffer) {
    if (RvpStatus st = checkRow(C == 1 ? RowForm::Low_C1 : RowForm::Low_C3, pSrc, srcStep, ppDst, roi, pKernel, k, a,
                                borderType, pBuffer, C, true))
        return st;
    if (divisor == 0) return rvpStsBadArgErr;
    return runRows(C == 1 ? RowForm::Low_C1 : RowForm::Low_C3, pSrc, srcStep, ppDst, roi, C, k, a, borderType, bv,
                   RowLow{pKernel, k, C, lowShift(divisor), divisor < 0}, pBuffer);
}

RvpStatus row32f(int C, const Rvp32f* pSrc, int srcStep, Rvp32f** ppDst, RvpiSize roi, const Rvp32f* pKernel,
                 int k, int a, int borderType, Rvp32f bv, Rvp8u* pBuffer) {
    if (RvpStatus st = checkRow(C == 1 ? RowForm::P32f_C1 : RowForm::P32f_C3, pSrc, srcStep, ppDst, roi, pKernel, k,
                                a, borderType, pBuffer, C, true))
        return st;
    Row32f op{pKernel, k, C, false, false};
    if (C == 1 && k == 5 && roi.width >= 17 && a == 2)
        op.sym5 = pKernel[0] == pKernel[4] && pKernel[1] == pKernel[3];
    if (C == 1 && k != 3 && k != 5) op.wide = roi.width >= 17 && roi.width > k;
    if (op.sym5) {
        // The whole-image routine: every output, ends included, takes the
        // mirrored-pair sum.
        Row32f all = op;
        auto whole = [all](const Rvp32f* p, Rvp32f* d, int count, bool) { all(p, d, count, false); };
        return runRows(RowForm::P32f_C1, pSrc, srcStep, ppDst, roi, 1, k, a, borderType, bv, whole, pBuffer);
    }
    return runRows(C == 1 ? RowForm::P32f_C1 : RowForm::P32f_C3, pSrc, srcStep, ppDst, roi, C, k, a, borderType, bv,
                   op, pBuffer);
}

// ---- Column stage ------------------------------------------------------------

template <class S, class D, class Op>
RvpStatus colRoutine(const S* const* pp, D* pDst, int dstStep, RvpiSize roi, int C, const Op& op, Rvp8u* work) {
    for (int y = 0; y < roi.height; ++y) {
        op(pp + y, pDst, roi.width * C, work);
        pDst = advance(pDst, dstStep);
    }
    return rvpStsNoErr;
}

template <class S, class D, class Op>
RvpStatus runCols(ColForm form, const S* const* pp, D* pDst, int dstStep, RvpiSize roi, int C, int k, const Op& op,
                  Rvp8u* pBuffer) {
    const int maxThreads = owncvGetMaxNumThreads();
    if (form == ColForm::P32f || wmul(roi.width, roi.height) < wmul(maxThreads, 32768) || runsepomp(k) == 0)
        return colRoutine(pp, pDst, dstStep, roi, C, op, alignUp(pBuffer, 32));
    return pipelineRegion(roi.height, k, k - 1, colPerThread(form, roi.width), pBuffer, pp,
                          [&](int y0, int rows, const S** mine, Rvp8u* work) {
                              return colRoutine(mine, rowPtr(pDst, dstStep, y0), dstStep, RvpiSize{roi.width, rows},
                                                C, op, work);
                          });
}

template <class S, class D>
RvpStatus checkCol(ColForm form, const S* const* pp, D* pDst, int dstStep, RvpiSize roi, const void* pKernel, int k,
                   const void* pBuffer, int C, bool divisorZero) {
    Check c;
    c.ptrs(pp, pDst, pKernel);
    c.fail(roi.height < 1 || roi.width < 1 || k < 1, rvpStsSizeErr);
    c.fail(colPipelineBytes(form, roi, k, owncvGetMaxNumThreads()) > INT32_MAX ||
               static_cast<int64_t>(roi.height) + k - 1 > INT32_MAX, rvpStsSizeErr);
    c.step(dstStep, wmul(roi.width, C * static_cast<int>(sizeof(D)))).evenSteps(static_cast<int>(sizeof(D)), dstStep);
    c.fail(static_cast<int64_t>(roi.width) * C * static_cast<int64_t>(sizeof(D)) > INT32_MAX, rvpStsStepErr);
    c.ptr(pBuffer);
    c.fail(divisorZero, rvpStsBadArgErr);
    if (c == rvpStsNoErr)
        for (int i = 0, n = wsub(wadd(roi.height, k), 1); i < n; ++i)
            if (pp[i] == nullptr) return rvpStsNullPtrErr;
    return c;
}

template <class D>
RvpStatus col16s(int C, const Rvp16s** ppSrc, D* pDst, int dstStep, RvpiSize roi, const Rvp16s* pKernel, int k,
                 int divisor, Rvp8u* pBuffer) {
    if (RvpStatus st = checkCol(C == 1 ? ColForm::P16s_C1 : ColForm::P16s_C3, ppSrc, pDst, dstStep, roi, pKernel, k,
                                pBuffer, C, divisor == 0))
        return st;
    TapStore taps(k);
    if (!taps.ok(k)) return rvpStsMemAllocErr;
    scaledTaps(pKernel, k, divisor, taps.get());
    return runCols(C == 1 ? ColForm::P16s_C1 : ColForm::P16s_C3, ppSrc, pDst, dstStep, roi, C, k,
                   ColScaled<D>{taps.get(), k}, pBuffer);
}

RvpStatus colLow(int C, const Rvp16s** ppSrc, Rvp16s* pDst, int dstStep, RvpiSize roi, const Rvp16s* pKernel, int k,
                 int divisor, Rvp8u* pBuffer) {
    if (RvpStatus st = checkCol(C == 1 ? ColForm::Low_C1 : ColForm::Low_C3, ppSrc, pDst, dstStep, roi, pKernel, k,
                                pBuffer, C, divisor == 0))
        return st;
    return runCols(C == 1 ? ColForm::Low_C1 : ColForm::Low_C3, ppSrc, pDst, dstStep, roi, C, k,
                   ColLow{pKernel, k, lowShift(divisor), divisor < 0}, pBuffer);
}

RvpStatus col32f(int C, const Rvp32f** ppSrc, Rvp32f* pDst, int dstStep, RvpiSize roi, const Rvp32f* pKernel, int k,
                 Rvp8u* pBuffer) {
    if (RvpStatus st = checkCol(ColForm::P32f, ppSrc, pDst, dstStep, roi, pKernel, k, pBuffer, C, false)) return st;
    return runCols(ColForm::P32f, ppSrc, pDst, dstStep, roi, C, k, Col32f{pKernel, k}, pBuffer);
}

RvpStatus querySize(RvpiSize roi, int k, int* pBufferSize) {
    if (pBufferSize == nullptr) return rvpStsNullPtrErr;
    if (roi.width < 1 || roi.height < 1 || k < 1) return rvpStsSizeErr;
    return rvpStsNoErr;
}

RvpStatus rowQuery(RowForm f, RvpiSize roi, int k, int* pBufferSize) {
    if (RvpStatus st = querySize(roi, k, pBufferSize)) return st;
    return storeSize(rowPipelineBytes(f, roi, k, owncvGetMaxNumThreads()), pBufferSize);
}

RvpStatus colQuery(ColForm f, RvpiSize roi, int k, int* pBufferSize) {
    if (RvpStatus st = querySize(roi, k, pBufferSize)) return st;
    return storeSize(colPipelineBytes(f, roi, k, owncvGetMaxNumThreads()), pBufferSize);
}

}  // namespace

// Positions [p0, p0 + count) of an extended row of w pixels with C
// interleaved channels, each channel on its own.
template <class S>
void fillRange(const S* src, int w, int C, int p0, int count, int type, int flags, S bv, S* out) {
    for (int i = 0; i < count; ++i) {
        const int p = p0 + i;
        const bool mem = (p >= 0 && p < w) || (p < 0 && (flags & kMemLeft)) || (p >= w && (flags & kMemRight));
        const int idx = mem ? p : borderIndex(p, w, type);
        for (int c = 0; c < C; ++c)
            out[i * C + c] = idx < 0 && !mem ? bv : src[static_cast<ptrdiff_t>(idx) * C + c];
    }
}

template <class S>
int fillBorder(const S* src, int w, int C, int n, int a, int type, int flags, S bv, S* head, S*& tail) {
    if (w < n) {
        fillRange(src, w, C, -a, w + n - 1, type, flags, bv, head);
        tail = head;
        return 0;
    }
    tail = head + (a + n - 1) * C;
    fillRange(src, w, C, -a, a + n - 1, type, flags, bv, head);
    fillRange(src, w, C, w - n + 1, 2 * n - 2 - a, type, flags, bv, tail);
    return w - n + 1;
}

template int fillBorder<Rvp8u>(const Rvp8u*, int, int, int, int, int, int, Rvp8u, Rvp8u*, Rvp8u*&);
template int fillBorder<Rvp16s>(const Rvp16s*, int, int, int, int, int, int, Rvp16s, Rvp16s*, Rvp16s*&);
template int fillBorder<Rvp32f>(const Rvp32f*, int, int, int, int, int, int, Rvp32f, Rvp32f*, Rvp32f*&);

int64_t rowPipelineBytes(RowForm f, RvpiSize roi, int k, int maxThreads) {
    const int64_t bytes = regionBytes(maxThreads, roi.height, k, rowPerThread(f, k));
    return f == RowForm::P32f_C1 ? bytes + int64_t{16} * maxThreads : bytes;
}

int64_t colPipelineBytes(ColForm f, RvpiSize roi, int k, int maxThreads) {
    if (f == ColForm::P32f) return 32;
    return regionBytes(maxThreads, roi.height, k, colPerThread(f, roi.width));
}

}  // namespace filt
}  // namespace rvcv

using namespace rvcv;
using namespace rvcv::filt;

// ---- Entry points ------------------------------------------------------------------

#define RVCV_ROW(suffix, T, impl, C)                                                                             \
    RVCV_EXPORT RvpStatus rvpiFilterRowBorderPipeline_##suffix(const T* pSrc, int srcStep, Rvp16s** ppDst,        \
                                                               RvpiSize roiSize, const Rvp16s* pKernel,           \
                                                               int kernelSize, int xAnchor, int borderType,       \
                                                               T borderValue, int divisor, Rvp8u* pBuffer) {      \
        return impl(C, pSrc, srcStep, ppDst, roiSize, pKernel, kernelSize, xAnchor, borderType, borderValue,       \
                    divisor, pBuffer);                                                                             \
    }
#define RVCV_ROW32F(suffix, C)                                                                                   \
    RVCV_EXPORT RvpStatus rvpiFilterRowBorderPipeline_##suffix(const Rvp32f* pSrc, int srcStep, Rvp32f** ppDst,   \
                                                               RvpiSize roiSize, const Rvp32f* pKernel,           \
                                                               int kernelSize, int xAnchor, int borderType,       \
                                                               Rvp32f borderValue, Rvp8u* pBuffer) {              \
        return row32f(C, pSrc, srcStep, ppDst, roiSize, pKernel, kernelSize, xAnchor, borderType, borderValue,     \
                      pBuffer);                                                                                    \
    }
#define RVCV_COL(suffix, D, impl, C)                                                                             \
    RVCV_EXPORT RvpStatus rvpiFilterColumnPipeline_##suffix(const Rvp16s** ppSrc, D* pDst, int dstStep,           \
                                                            RvpiSize roiSize, const Rvp16s* pKernel,              \
                                                            int kernelSize, int divisor, Rvp8u* pBuffer) {        \
        return impl(C, ppSrc, pDst, dstStep, roiSize, pKernel, kernelSize, divisor, pBuffer);                      \
    }
#define RVCV_COL32F(suffix, C)                                                                                   \
    RVCV_EXPORT RvpStatus rvpiFilterColumnPipeline_##suffix(const Rvp32f** ppSrc, Rvp32f* pDst, int dstStep,      \
                                                            RvpiSize roiSize, const Rvp32f* pKernel,              \
                                                            int kernelSize, Rvp8u* pBuffer) {                     \
        return col32f(C, ppSrc, pDst, dstStep, roiSize, pKernel, kernelSize, pBuffer);                             \
    }

RVCV_ROW(8u16s_C1R, Rvp8u, row8u16s, 1)
RVCV_ROW(8u16s_C3R, Rvp8u, row8u16s, 3)
RVCV_ROW(16s_C1R, Rvp16s, row16s, 1)
RVCV_ROW(16s_C3R, Rvp16s, row16s, 3)
RVCV_ROW(Low_16s_C1R, Rvp16s, rowLow, 1)
RVCV_ROW(Low_16s_C3R, Rvp16s, rowLow, 3)
RVCV_ROW32F(32f_C1R, 1)
RVCV_ROW32F(32f_C3R, 3)
RVCV_COL(16s_C1R, Rvp16s, col16s, 1)
RVCV_COL(16s_C3R, Rvp16s, col16s, 3)
RVCV_COL(16s8s_C1R, Rvp8s, col16s, 1)
RVCV_COL(16s8s_C3R, Rvp8s, col16s, 3)
RVCV_COL(16s8u_C1R, Rvp8u, col16s, 1)
RVCV_COL(16s8u_C3R, Rvp8u, col16s, 3)
RVCV_COL(Low_16s_C1R, Rvp16s, colLow, 1)
RVCV_COL(Low_16s_C3R, Rvp16s, colLow, 3)
RVCV_COL32F(32f_C1R, 1)
RVCV_COL32F(32f_C3R, 3)

// ---- Buffer queries --------------------------------------------------------------

#define RVCV_ROW_QUERY(suffix, form)                                                                         \
    RVCV_EXPORT RvpStatus rvpiFilterRowBorderPipelineGetBufferSize_##suffix(RvpiSize roiSize, int kernelSize, \
                                                                            int* pBufferSize) {             \
        return rowQuery(RowForm::form, roiSize, kernelSize, pBufferSize);                                    \
    }
#define RVCV_COL_QUERY(suffix, form)                                                                     \
    RVCV_EXPORT RvpStatus rvpiFilterColumnPipelineGetBufferSize_##suffix(RvpiSize roiSize, int kernelSize, \
                                                                         int* pBufferSize) {             \
        return colQuery(ColForm::form, roiSize, kernelSize, pBufferSize);                                \
    }

RVCV_ROW_QUERY(8u16s_C1R, P8u16s_C1)
RVCV_ROW_QUERY(8u16s_C3R, P8u16s_C3)
RVCV_ROW_QUERY(16s_C1R, P16s_C1)
RVCV_ROW_QUERY(16s_C3R, P16s_C3)
RVCV_ROW_QUERY(Low_16s_C1R, Low_C1)
RVCV_ROW_QUERY(Low_16s_C3R, Low_C3)
RVCV_ROW_QUERY(32f_C1R, P32f_C1)
RVCV_ROW_QUERY(32f_C3R, P32f_C3)
RVCV_COL_QUERY(16s_C1R, P16s_C1)
RVCV_COL_QUERY(16s_C3R, P16s_C3)
RVCV_COL_QUERY(16s8s_C1R, P16s_C1)
RVCV_COL_QUERY(16s8s_C3R, P16s_C3)
RVCV_COL_QUERY(16s8u_C1R, P16s_C1)
RVCV_COL_QUERY(16s8u_C3R, P16s_C3)
RVCV_COL_QUERY(Low_16s_C1R, Low_C1)
RVCV_COL_QUERY(Low_16s_C3R, Low_C3)
RVCV_COL_QUERY(32f_C1R, P32f)
RVCV_COL_QUERY(32f_C3R, P32f)
