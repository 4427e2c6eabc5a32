// Standard Hough transform for lines. The angles are walked one at a time
// with three accumulator rows (previous, current, next angle); the local
// maxima of the middle row go into a list bounded by the caller's maximum,
// sorted by votes. Votes come from per-row lists of set pixels, so the cost
// follows set pixels times angles. Everything runs on the calling thread in
// the caller's buffer.
#include <emmintrin.h>

#include <cmath>
#include <cstring>

#include "rvcvframe.h"

namespace rvcv {
namespace {

constexpr double kPiLimit = 3.14159;  // the angle range stops short of pi

// Sizes derived from the region and the steps; counts too large for the
// buffer come out above INT32_MAX and are refused by the callers.
struct Dims {
    int64_t numRho, numTheta, half;
};

Dims dims(RvpiSize roi, RvpPointPolar delta) {
    const float q = static_cast<float>(2 * (int64_t{roi.width} + roi.height) + 1) / delta.rho;
    const double t = kPiLimit / static_cast<double>(delta.theta);
    Dims d{};
    d.numRho = q < 4.0e12f ? static_cast<int64_t>(q) : int64_t{1} << 42;
    d.numTheta = (t < 4.0e12 ? static_cast<int64_t>(t) : int64_t{1} << 42) + 1;
    d.half = d.numRho < 1 ? d.numRho >> 1 : (d.numRho - 1) >> 1;
    return d;
}

int64_t bufferBytes(RvpiSize roi, const Dims& d, int64_t maxLineCount) {
    return int64_t{roi.height} * (4 * int64_t{roi.width} + 64) + 16 * maxLineCount + 8 * d.numTheta + 16 * d.numRho + 288;
}

// Layout inside the buffer (within the queried size): three accumulator
// rows (bin r at element r + 4 of a row; the four elements ahead of bin 0
// stay zero), the line list, the cosine and sine tables, the peak row, and
// the per-row lists of set pixels.
struct Layout {
    int32_t* acc[3];
    int64_t accBytes;
    int32_t* list;  // rho bin, theta index, votes, spare
    int32_t *cosT, *sinT;
    int32_t* peaks;
    Rvp8u* rows;  // per source row: count, 3 spare, then the x of the set pixels
    int64_t rowStride;
};

inline int64_t up32(int64_t v) { return (v + 31) & ~int64_t{31}; }

Layout layout(Rvp8u* buffer, RvpiSize roi, const Dims& d, int maxLineCount) {
    Layout l{};
    const int64_t base = static_cast<int64_t>(reinterpret_cast<uintptr_t>(buffer));
    int64_t at = up32(base) - base;
    l.accBytes = (4 * d.numRho + 47) & ~int64_t{31};
    for (int k = 0; k < 3; ++k) l.acc[k] = reinterpret_cast<int32_t*>(buffer + at + k * l.accBytes) + 4;
    at = up32(base + at + 3 * l.accBytes) - base;
    l.list = reinterpret_cast<int32_t*>(buffer + at);
    at += 16 * int64_t{maxLineCount};
    l.cosT = reinterpret_cast<int32_t*>(buffer + at);
    l.sinT = l.cosT + d.numTheta;
    at = up32(base + at + 8 * d.numTheta) - base;
    l.peaks = reinterpret_cast<int32_t*>(buffer + at);
    at = ((base + at + 4 * d.numRho + 15) & ~int64_t{15}) - base;
    l.rows = buffer + at;
    l.rowStride = (4 * int64_t{roi.width} + 31) & ~int64_t{15};
    return l;
}

struct Region {
    bool on = false;
    float thetaLo = 0, thetaHi = 0;
    int64_t binLo = 0, binHi = -1;
};

class Kernel {
public:
    Kernel(const Layout& l, const Dims& d, RvpPointPolar delta, int threshold, int maxLineCount, const Region& region,
           RvpiSize roi)
        : l_(l), d_(d), delta_(delta), threshold_(threshold), max_(maxLineCount), region_(region), roi_(roi) {}

    int run() {
        const int n = static_cast<int>(d_.numTheta);
        for (int k = 0; k < 3; ++k) std::memset(l_.acc[k] - 4, 0, static_cast<size_t>(l_.accBytes));
        std::memset(l_.list, 0, static_cast<size_t>(16) * max_);
        int lo[3] = {0, 0, 0}, hi[3] = {-1, -1, -1};
        bool inside[3] = {false, false, false};
        // A row of an angle outside the region, or none, is a zero row.
        const auto row = [&](int t) -> const int32_t* { return t >= 0 && t < n && inside[t % 3] ? l_.acc[t % 3] : nullptr; };
        for (int t = 0; t < n; ++t) {
            const int k = t % 3;
            std::memset(l_.acc[k], 0, static_cast<size_t>(4 * d_.numRho));
            inside[k] = included(t);
            lo[k] = static_cast<int>(d_.numRho - 1), hi[k] = 0;
            if (inside[k]) vote(t, l_.acc[k], lo[k], hi[k]);
            if (t > 0 && inside[(t - 1) % 3]) scan(t - 1, row(t - 2), l_.acc[(t - 1) % 3], row(t), lo[(t - 1) % 3], hi[(t - 1) % 3], false);
        }
        if (inside[(n - 1) % 3]) scan(n - 1, row(n - 2), l_.acc[(n - 1) % 3], nullptr, lo[(n - 1) % 3], hi[(n - 1) % 3], true);
        return count_;
    }

private:
    bool included(int t) const {
        if (!region_.on) return true;
        const float a = static_cast<float>(t) * delta_.theta;
        return region_.thetaLo <= a && a <= region_.thetaHi;
    }

    // Votes of angle t; lo and hi become the lowest and highest bins that
    // received a vote (the first and last non-zero bins).
    void vote(int t, int32_t* acc, int& lo, int& hi) const {
        const int32_t c = l_.cosT[t], s = l_.sinT[t];
        const float cf = static_cast<float>(c), sf = static_cast<float>(s);
        const int64_t half = d_.half, numRho = d_.numRho;
        const __m128 vc = _mm_set1_ps(cf), limit = _mm_set1_ps(1073741824.0f);
        const __m128i round = _mm_set1_epi32(512), vhalf = _mm_set1_epi32(static_cast<int32_t>(half));
        for (int y = 0; y < roi_.height; ++y) {
            const int32_t* rec = reinterpret_cast<const int32_t*>(l_.rows + y * l_.rowStride);
            const int count = rec[0];
            const int32_t* xs = rec + 4;
            const float ys = static_cast<float>(y) * sf;
            int i = 0;
            if (!region_.on) {
                // Four at a time while every sum lies well inside the int range.
                const __m128 vys = _mm_set1_ps(ys);
                alignas(16) int32_t bins[4];
                for (; i + 4 <= count; i += 4) {
                    const __m128 v = _mm_add_ps(_mm_mul_ps(_mm_cvtepi32_ps(_mm_loadu_si128(reinterpret_cast<const __m128i*>(xs + i))), vc), vys);
                    const __m128 mag = _mm_andnot_ps(_mm_set1_ps(-0.0f), v);
                    if (_mm_movemask_ps(_mm_cmplt_ps(mag, limit)) != 0xF) break;
                    _mm_store_si128(reinterpret_cast<__m128i*>(bins),
                                    _mm_add_epi32(_mm_srai_epi32(_mm_add_epi32(_mm_cvttps_epi32(v), round), 10), vhalf));
                    for (int k = 0; k < 4; ++k)
                        if (static_cast<uint32_t>(bins[k]) < static_cast<uint64_t>(numRho)) ++acc[bins[k]];
                }
            }
            for (; i < count; ++i) {
                int64_t bin;
                if (!region_.on) {
                    const float v = static_cast<float>(xs[i]) * cf + ys;
                    if (!(v > -2147483648.0f && v < 2147483648.0f)) continue;
                    bin = ((static_cast<int64_t>(static_cast<int32_t>(v)) + 512) >> 10) + half;
                } else {
                    const uint32_t v = static_cast<uint32_t>(xs[i]) * static_cast<uint32_t>(c) +
                                       static_cast<uint32_t>(y) * static_cast<uint32_t>(s) + 512u;
                    bin = (static_cast<int64_t>(static_cast<int32_t>(v)) >> 10) + half;
                    if (bin < region_.binLo || bin > region_.binHi) continue;
                }
                if (bin < 0 || bin >= numRho) continue;  // outside the accumulator: never counted
                ++acc[bin];
            }
        }
        int a = 0, b = static_cast<int>(numRho) - 1;
        while (a < numRho && acc[a] == 0) ++a;
        while (b >= 0 && acc[b] == 0) --b;
        if (a <= b) lo = a, hi = b;
    }

    // Peaks of row t (cur) between its earlier (prev) and later (next)
    // neighbours, null for zero rows: every bin is tested against the cut-off
    // as it stands, the votes of the peaks go to the peak row, and they are
    // inserted from there in ascending bin order.
    void scan(int t, const int32_t* prev, const int32_t* cur, const int32_t* next, int lo, int hi, bool last) {
        if (hi < lo) return;
        const int from = lo & ~3, lastBin = static_cast<int>(d_.numRho - 1);
        int32_t* peak = l_.peaks;
        for (int r = from; r <= hi; ++r) {
            const int32_t v = cur[r];
            peak[r] = 0;
            if (v <= threshold_ || v < cutoff_) continue;
            const int32_t right = r < lastBin ? cur[r + 1] : 0;
            if (cur[r - 1] < v && (prev ? prev[r] : 0) < v && right <= v && (next ? next[r] : 0) <= v) peak[r] = v;
        }
        for (int r = from; r <= hi; ++r)
            if (peak[r]) insert(r, t, peak[r], last);
    }

    void insert(int bin, int t, int32_t votes, bool last) {
        int32_t* list = l_.list;
        if (count_ < max_) ++count_;
        else if (!last) cutoff_ = list[4 * (count_ - 1) + 2];
        int p = 0;
        while (p < max_ && list[4 * p + 2] >= votes) ++p;
        if (p == max_) return;
        std::memmove(list + 4 * (p + 1), list + 4 * p, static_cast<size_t>(16) * (max_ - p - 1));
        list[4 * p] = bin, list[4 * p + 1] = t, list[4 * p + 2] = votes, list[4 * p + 3] = 0;
    }

    Layout l_;
    Dims d_;
    RvpPointPolar delta_;
    int threshold_, max_;
    Region region_;
    RvpiSize roi_;
    int count_ = 0;
    int32_t cutoff_ = 0;
};

RvpStatus checkArgs(const Rvp8u* pSrc, int srcStep, RvpiSize roi, RvpPointPolar delta, int threshold,
                    const RvpPointPolar* pLine, int maxLineCount, const int* pLineCount, const Rvp8u* pBuffer) {
    if (!pSrc || !pLine || !pLineCount || !pBuffer) return rvpStsNullPtrErr;
    if (srcStep < 1) return rvpStsStepErr;
    if (roi.width < 1 || roi.height < 1 || maxLineCount < 1) return rvpStsSizeErr;
    if (!(delta.rho > 0) || delta.rho > static_cast<float>(int64_t{roi.width} + roi.height) || !(delta.theta > 0) ||
        static_cast<double>(delta.theta) > kPiLimit || threshold < 1)
        return rvpStsBadArgErr;
    // Memory: the rows the lists are built from, and a buffer that fits an int.
    if (srcStep < roi.width) return rvpStsStepErr;
    if (bufferBytes(roi, dims(roi, delta), maxLineCount) > INT32_MAX) return rvpStsSizeErr;
    return rvpStsNoErr;
}

int houghLines(const Rvp8u* pSrc, int srcStep, RvpiSize roi, RvpPointPolar delta, int threshold, RvpPointPolar* pLine,
               int maxLineCount, Rvp8u* pBuffer, const Region& region) {
    const Dims d = dims(roi, delta);
    const Layout l = layout(pBuffer, roi, d, maxLineCount);
    // Angles: entry 0 is 0, entry 1 delta.theta, each later one two steps
    // after the one before it, added in float.
    const float two = delta.theta * 2.0f;
    const double scale = static_cast<double>(1.0f / delta.rho) * 1024.0;
    float even = 0.0f, odd = delta.theta;
    for (int64_t t = 0; t < d.numTheta; ++t) {
        float& a = (t & 1) ? odd : even;
        if (t >= 2) a += two;
        l.cosT[t] = static_cast<int32_t>(std::cos(static_cast<double>(a)) * scale);
        l.sinT[t] = static_cast<int32_t>(std::sin(static_cast<double>(a)) * scale);
    }
    for (int y = 0; y < roi.height; ++y) {
        int32_t* rec = reinterpret_cast<int32_t*>(l.rows + y * l.rowStride);
        const Rvp8u* s = rowPtr(pSrc, srcStep, y);
        int n = 0;
        for (int x = 0; x < roi.width; ++x)
            if (s[x]) rec[4 + n++] = x;
        rec[0] = n;
    }
    const int count = Kernel(l, d, delta, threshold, maxLineCount, region, roi).run();
    for (int i = 0; i < count; ++i) {
        pLine[i].rho = static_cast<float>(l.list[4 * i] - d.half) * delta.rho;
        pLine[i].theta = static_cast<float>(l.list[4 * i + 1]) * delta.theta;
    }
    return count;
}

// The float of a quotient as a bin, NaN and far values held to a range that
// admits no bin when the limits make no sense.
int64_t binOf(float v) {
    if (!(v == v)) return 0;
    if (v > 4.0e12f) return int64_t{1} << 42;
    if (v < -4.0e12f) return -(int64_t{1} << 42);
    return static_cast<int64_t>(v);
}

}  // namespace
}  // namespace rvcv

using namespace rvcv;

RVCV_EXPORT RvpStatus rvpiHoughLineGetSize_8u_C1R(RvpiSize roiSize, RvpPointPolar delta, int maxLineCount, int* pBufSize) {
    if (!pBufSize) return rvpStsNullPtrErr;
    if (roiSize.width < 1 || roiSize.height < 1) return rvpStsSizeErr;
    if (!(delta.rho > 0) || !(delta.theta > 0)) return rvpStsBadArgErr;
    const int64_t bytes = bufferBytes(roiSize, dims(roiSize, delta), maxLineCount);
    *pBufSize = static_cast<int>(static_cast<uint32_t>(static_cast<uint64_t>(bytes)));
    return bytes > INT32_MAX ? rvpStsBufferSizeWrn : rvpStsNoErr;
}

RVCV_EXPORT RvpStatus rvpiHoughLine_8u32f_C1R(const Rvp8u* pSrc, int srcStep, RvpiSize roiSize, RvpPointPolar delta,
                                             int threshold, RvpPointPolar* pLine, int maxLineCount, int* pLineCount,
                                             Rvp8u* pBuffer) {
    if (RvpStatus st = checkArgs(pSrc, srcStep, roiSize, delta, threshold, pLine, maxLineCount, pLineCount, pBuffer)) return st;
    *pLineCount = houghLines(pSrc, srcStep, roiSize, delta, threshold, pLine, maxLineCount, pBuffer, Region{});
    return rvpStsNoErr;
}

RVCV_EXPORT RvpStatus rvpiHoughLine_Region_8u32f_C1R(const Rvp8u* pSrc, int srcStep, RvpiSize roiSize,
                                                    RvpPointPolar* pLine, RvpPointPolar dstRoi[2], int maxLineCount,
                                                    int* pLineCount, RvpPointPolar delta, int threshold,
                                                    Rvp8u* pBuffer) {
    if (RvpStatus st = checkArgs(pSrc, srcStep, roiSize, delta, threshold, pLine, maxLineCount, pLineCount, pBuffer)) return st;
    if (!dstRoi) return rvpStsNullPtrErr;
    if (dstRoi[0].theta > dstRoi[1].theta || dstRoi[0].rho > dstRoi[1].rho) {
        *pLineCount = 0;
        return rvpStsRangeErr;
    }
    for (int k = 0; k < 2; ++k) {
        if (dstRoi[k].theta < 0.0f) dstRoi[k].theta = 0.0f;
        if (static_cast<double>(dstRoi[k].theta) > kPiLimit) dstRoi[k].theta = static_cast<float>(kPiLimit);
    }
    const Dims d = dims(roiSize, delta);
    Region region;
    region.on = true;
    region.thetaLo = dstRoi[0].theta, region.thetaHi = dstRoi[1].theta;
    const float half = static_cast<float>(d.half);
    region.binLo = binOf(dstRoi[0].rho / delta.rho + half);
    region.binHi = binOf(half + dstRoi[1].rho / delta.rho);
    if (dstRoi[0].rho != dstRoi[0].rho || dstRoi[1].rho != dstRoi[1].rho) region.binLo = 1, region.binHi = 0;
    *pLineCount = houghLines(pSrc, srcStep, roiSize, delta, threshold, pLine, maxLineCount, pBuffer, region);
    return rvpStsNoErr;
}
