// Pyramidal optical flow: each point is followed from the coarsest level to
// level 0 by the iterative gradient method. A window around the point in the
// first image, its derivatives, and a window around the guess in the second
// image give a 2x2 system whose solution moves the guess.
//
// Levels smaller than the state's size take the derivatives from two Scharr
// planes of the whole level, made once per level on the calling thread;
// larger levels take them from each point's own patch. The 8u form keeps
// patches with 7 fractional bits and sums each row in 32 bits; the 16u and
// 32f forms work in floats and sum in double.
#include <emmintrin.h>

#include <cfloat>
#include <cmath>

#include "rvcvframe.h"
#include "rvcvprim.h"
#include "rvcvsampler.h"

struct RvpiOptFlowPyrLKState {
    Rvp32s roiWidth, roiHeight;
    Rvp32s numThreads;  // the team of the call that made the state
    Rvp32s dataType;    // 1 for 8u, 5 for 16u, 13 for 32f
    Rvp32s hint;        // kept, never read
    Rvp32s winSize;
    Rvp8u* pBuffer;
    Rvp32s scharrBytes;  // the filter scratch inside pBuffer, as the queries gave it then
};

namespace rvcv {
namespace {

template <class T> struct Kinds;
template <> struct Kinds<Rvp8u> {
    using P = int16_t;  // patch samples, 7 fractional bits (at most 32640)
    using G = int16_t;  // derivatives
    static constexpr int kType = 1;
};
template <> struct Kinds<Rvp16u> {
    using P = float;
    using G = float;
    static constexpr int kType = 5;
};
template <> struct Kinds<Rvp32f> {
    using P = float;
    using G = float;
    static constexpr int kType = 13;
};

// ---- Patch sampling -----------------------------------------------------------
using sampler::Axis;
using sampler::axis;

// n x n patch with its top-left sample at (ax.i0, ay.i0), 14-bit weights
// (8u: 7 fractional bits kept).
template <class T, class P>
void samplePatch(P* out, int n, const T* img, int step, int w, int h, const Axis& ax, const Axis& ay) {
    sampler::bilinear(out, n, n, n, img, step, w, h, ax.i0, ay.i0, sampler::weights14(ax.a, ay.a).w, 7);
}

// 16-bit derivative planes sampled with 15-bit weights at the window's
// corner v = origin - (n - 1) / 2 per axis.
struct Fixed15 {
    int start, a;
};

Fixed15 fixed15(float origin, int n) {
    const float v = origin - static_cast<float>(n - 1) * 0.5f;
    if (!(v > -1e8f && v < 1e8f)) return {v < 0 ? -2 * n : 1 << 28, 0};
    const int t = static_cast<int>(v);
    float frac = v - static_cast<float>(t);
    if (frac < 0) frac += 1.0f;
    // The plane column is the integer part, plus 1 when v >= 0, on planes
    // that start one sample before the image.
    return {t + (v >= 0 ? 1 : 0) - 1, static_cast<int>(frac * 32768.0f + 0.5f)};
}

void samplePlane15(int16_t* out, int n, const Rvp16s* plane, int pitch, int w, int h, Fixed15 fx, Fixed15 fy) {
    const int a = fx.a, b = fy.a;
    const int wt[4] = {((32768 - a) * (32768 - b) + 16384) >> 15, (a * (32768 - b) + 16384) >> 15,
                       ((32768 - a) * b + 16384) >> 15, (a * b + 16384) >> 15};
    // The plane holds the filter's values; x4 (exact: at most 4080 x 4) is
    // applied to the sum, the same as to every sample before it.
    sampler::bilinear(out, n, n, n, plane, 2 * pitch, w, h, fx.start, fy.start, wt, 15, 2);
}

// Scharr derivatives inside a patch of n x n samples, written at the
// patch's inner positions (the outer ring is left alone):
// r = s[x + 2] - s[x], q = 0.09375 s[x] + 0.3125 s[x + 1] + 0.09375 s[x + 2],
// Ix = 0.09375 r[y] + 0.3125 r[y + 1] + 0.09375 r[y + 2], Iy = q[y + 2] - q[y].
template <class P, class G> void patchDerivatives(const P* s, int n, G* dx, G* dy, float* r, float* q) {
    const int m = n - 2;
    for (int y = 0; y < n; ++y) {
        const P* row = s + static_cast<ptrdiff_t>(y) * n;
        for (int x = 0; x < m; ++x) {
            const float s0 = static_cast<float>(row[x]), s1 = static_cast<float>(row[x + 1]),
                        s2 = static_cast<float>(row[x + 2]);
            r[y * m + x] = s2 - s0;
            q[y * m + x] = 0.09375f * s0 + 0.3125f * s1 + 0.09375f * s2;
        }
    }
    for (int y = 0; y < m; ++y)
        for (int x = 0; x < m; ++x) {
            const float ix = 0.09375f * r[y * m + x] + 0.3125f * r[(y + 1) * m + x] + 0.09375f * r[(y + 2) * m + x];
            const float iy = q[(y + 2) * m + x] - q[y * m + x];
            const ptrdiff_t at = static_cast<ptrdiff_t>(y + 1) * n + x + 1;
            if constexpr (std::is_integral<G>::value) {
                const long vx = std::lrint(ix), vy = std::lrint(iy);
                dx[at] = static_cast<G>(vx < -32768 ? -32768 : vx > 32767 ? 32767 : vx);
                dy[at] = static_cast<G>(vy < -32768 ? -32768 : vy > 32767 ? 32767 : vy);
            } else {
                dx[at] = ix;
                dy[at] = iy;
            }
        }
}

// ---- State layout -------------------------------------------------------------
// What the Scharr filters need for a size: it grows with the permitted
// thread count, so it is asked again before each level.
template <class T> void scharrNeed(RvpiSize size, int& a, int& b) {
    a = b = 0;
    if (std::is_same<T, Rvp8u>::value) {
        rvpiFilterScharrHorizGetBufferSize_8u16s_C1R(size, &a);
        rvpiFilterScharrVertGetBufferSize_8u16s_C1R(size, &b);
    } else {
        rvpiFilterScharrHorizGetBufferSize_32f_C1R(size, &a);
        rvpiFilterScharrVertGetBufferSize_32f_C1R(size, &b);
    }
}

struct Sizes {
    int64_t planeBytes, scharrBytes, threadBytes, total;
};

// The filters' scratch (scharrBytes) as the state holds it, or queried now.
template <class T> Sizes sizes(int width, int height, int winSize, int threads, int scharrBytes = -1) {
    const int64_t p = static_cast<int64_t>(winSize) + 3, t = threads;
    const int64_t W = static_cast<int64_t>(width) + 5, H = static_cast<int64_t>(height) + 5;
    int a = 0, b = 0;
    const RvpiSize planeSize{static_cast<int>(W > INT32_MAX ? INT32_MAX : W), static_cast<int>(H > INT32_MAX ? INT32_MAX : H)};
    if (scharrBytes < 0) scharrNeed<T>(planeSize, a, b);
    Sizes s{};
    s.scharrBytes = scharrBytes >= 0 ? scharrBytes : a > b ? a : b;
    const int64_t size = (std::is_same<T, Rvp16u>::value ? 3 : 2) * W * H + s.scharrBytes;
    if (std::is_same<T, Rvp8u>::value)
        s.total = 8 * p * p + 32 * p * p + 10 + 2 * size + 3 * t * (8 * p * p + 4) + 64 * t + 16 * t + 16 * t * p * p;
    else
        s.total = 4 * (4 * p * p + 8 * p * p) + 4 + 4 * size + t * (4 * (4 * p * p + 8 * p * p) + 4) + 64 * t +
                  16 * t + 16 * t * p * p;
    s.planeBytes = W * H * (std::is_same<T, Rvp8u>::value ? 2 : 4);
    // Per thread: four patches of (winSize + 2)^2 samples and two float work
    // planes, each rounded to 64 bytes.
    s.threadBytes = 6 * (((p - 1) * (p - 1) * 4 + 63) & ~int64_t{63});
    return s;
}

template <class T>
RvpStatus initAlloc(RvpiOptFlowPyrLKState** pp, RvpiSize roi, int winSize, int hint) {
    if (!pp) return rvpStsNullPtrErr;
    if (winSize < 1 || roi.height < 1 || roi.width < 1) return rvpStsSizeErr;
    const int threads = owncvGetNumThreads();
    const Sizes s = sizes<T>(roi.width, roi.height, winSize, threads);
    if (!fitsInt(s.total)) return rvpStsSizeErr;
    auto* st = reinterpret_cast<RvpiOptFlowPyrLKState*>(rvpsMalloc_8u(static_cast<int>(sizeof(RvpiOptFlowPyrLKState))));
    if (!st) return rvpStsMemAllocErr;
    st->roiWidth = roi.width;
    st->roiHeight = roi.height;
    st->numThreads = threads;
    st->dataType = Kinds<T>::kType;
    st->hint = hint;
    st->winSize = winSize;
    st->scharrBytes = static_cast<Rvp32s>(s.scharrBytes);
    st->pBuffer = rvpsMalloc_8u(static_cast<int>(s.total));
    if (!st->pBuffer) {
        rvpsFree(st);
        return rvpStsMemAllocErr;
    }
    *pp = st;
    return rvpStsNoErr;
}

RvpStatus release(RvpiOptFlowPyrLKState* st) {
    if (!st) return rvpStsNullPtrErr;
    if (st->pBuffer) rvpsFree(st->pBuffer);
    rvpsFree(st);
    return rvpStsNoErr;
}

// ---- Tracking -------------------------------------------------------------------
struct Corner {
    int x, y;
};

template <class T> struct Tracker {
    using P = typename Kinds<T>::P;
    using G = typename Kinds<T>::G;

    const RvpiPyramid* pyr1;
    const RvpiPyramid* pyr2;
    const RvpiPoint32f* prev;
    RvpiPoint32f* next;
    Rvp8s* status;
    Rvp32f* error;
    int n;  // window side
    int maxIter;
    float thr2;
    // Gradient planes of the plane level in hand.
    const void* planeX = nullptr;
    const void* planeY = nullptr;
    int pitch = 0;
    char* threadArea = nullptr;
    int64_t threadBytes = 0;

    struct Work {
        P *p1, *p2;  // first patch (n + 2)^2, second patch n^2
        G *dx, *dy;  // derivative patches (n + 2)^2, aligned with p1
        float *r, *q;
    };
    Work work(int id) const {
        char* base = threadArea + threadBytes * id;
        const int64_t part = threadBytes / 6;
        return {reinterpret_cast<P*>(base), reinterpret_cast<P*>(base + part), reinterpret_cast<G*>(base + 2 * part),
                reinterpret_cast<G*>(base + 3 * part), reinterpret_cast<float*>(base + 4 * part),
                reinterpret_cast<float*>(base + 5 * part)};
    }

    const T* image(const RvpiPyramid* p, int lev) const { return static_cast<const T*>(p->pImage[lev]); }

    // The first patch around the origin, and the window's corners inside it.
    void firstPatch(Work& wk, int lev, float ox, float oy, Corner& mn, Corner& mx) const {
        const RvpiSize sz = pyr1->pRoi[lev];
        const int m = n + 2;
        const Axis ax = axis(ox, m, sz.width), ay = axis(oy, m, sz.height);
        samplePatch(wk.p1, m, image(pyr1, lev), pyr1->pStep[lev], sz.width, sz.height, ax, ay);
        mn = {ax.lo > 0 ? ax.lo - 1 : ax.lo, ay.lo > 0 ? ay.lo - 1 : ay.lo};
        mx = {ax.hi > n ? ax.hi - 2 : ax.hi - 1, ay.hi > n ? ay.hi - 2 : ay.hi - 1};
    }

    // Derivative patches from the level's planes at the origin.
    void planeDerivatives(Work& wk, int lev, float ox, float oy) const {
        const RvpiSize sz = pyr1->pRoi[lev];
        const int m = n + 2;
        if constexpr (std::is_integral<G>::value) {
            const Fixed15 fx = fixed15(ox, m), fy = fixed15(oy, m);
            samplePlane15(wk.dx, m, static_cast<const Rvp16s*>(planeX), pitch, sz.width, sz.height, fx, fy);
            samplePlane15(wk.dy, m, static_cast<const Rvp16s*>(planeY), pitch, sz.width, sz.height, fx, fy);
        } else {
            const Axis ax = axis(ox, m, sz.width), ay = axis(oy, m, sz.height);
            const int step = pitch * 4;
            samplePatch(wk.dx, m, static_cast<const Rvp32f*>(planeX), step, sz.width, sz.height, ax, ay);
            samplePatch(wk.dy, m, static_cast<const Rvp32f*>(planeY), step, sz.width, sz.height, ax, ay);
        }
    }

    // The iterations of one level; false when the point is lost (left set
    // when its windows no longer met). lo and hi: the last intersection.
    bool iterate(Work& wk, int lev, float& gx, float& gy, Corner mn, Corner mx, Corner& lo, Corner& hi,
                 bool& left) const {
        const RvpiSize sz = pyr1->pRoi[lev];
        const int m = n + 2;
        double prevDx = static_cast<double>(sz.width + sz.height), prevDy = prevDx;
        double gxx = 0, gyy = 0, gxy = 0;
        Corner plo{0, 0}, phi{-1, -1};
        const double e = static_cast<double>(std::sqrt(1.1920929e-07f));  // sqrt(2^-23)
        for (int iter = 0; iter < maxIter; ++iter) {
            const Axis ax = axis(gx, n, sz.width), ay = axis(gy, n, sz.height);
            samplePatch(wk.p2, n, image(pyr2, lev), pyr2->pStep[lev], sz.width, sz.height, ax, ay);
            lo = {ax.lo > mn.x ? ax.lo : mn.x, ay.lo > mn.y ? ay.lo : mn.y};
            hi = {ax.hi < mx.x ? ax.hi : mx.x, ay.hi < mx.y ? ay.hi : mx.y};
            if (hi.x < lo.x || hi.y < lo.y) {
                left = true;
                return false;
            }
            const bool newG = iter == 0 || lo.x != plo.x || lo.y != plo.y || hi.x != phi.x || hi.y != phi.y;
            double bx = 0, by = 0;
            if (newG) gxx = gyy = gxy = 0;
            for (int y = lo.y; y <= hi.y; ++y) {
                const P* a = wk.p1 + static_cast<ptrdiff_t>(y + 1) * m + 1;
                const P* b = wk.p2 + static_cast<ptrdiff_t>(y) * n;
                const G* ix = wk.dx + static_cast<ptrdiff_t>(y + 1) * m + 1;
                const G* iy = wk.dy + static_cast<ptrdiff_t>(y + 1) * m + 1;
                if constexpr (std::is_integral<P>::value) {
                    // Rows in 32 bits (wrapping), row sums in double. Differences and
                    // derivatives fit 16 bits, and a pair of products fits 31:
                    // eight at a time by multiply-add, then the rest.
                    __m128i vbx = _mm_setzero_si128(), vby = vbx, vxx = vbx, vyy = vbx, vxy = vbx;
                    int x = lo.x;
                    const auto ld = [](const int16_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); };
                    for (; x + 8 <= hi.x + 1; x += 8) {
                        const __m128i d = _mm_sub_epi16(ld(a + x), ld(b + x)), vx = ld(ix + x), vy = ld(iy + x);
                        vbx = _mm_add_epi32(vbx, _mm_madd_epi16(vx, d));
                        vby = _mm_add_epi32(vby, _mm_madd_epi16(vy, d));
                        if (newG) {
                            vxx = _mm_add_epi32(vxx, _mm_madd_epi16(vx, vx));
                            vyy = _mm_add_epi32(vyy, _mm_madd_epi16(vy, vy));
                            vxy = _mm_add_epi32(vxy, _mm_madd_epi16(vx, vy));
                        }
                    }
                    const auto total = [](__m128i v) {
                        alignas(16) uint32_t l[4];
                        _mm_store_si128(reinterpret_cast<__m128i*>(l), v);
                        return l[0] + l[1] + l[2] + l[3];
                    };
                    uint32_t sbx = total(vbx), sby = total(vby), sxx = total(vxx), syy = total(vyy), sxy = total(vxy);
                    for (; x <= hi.x; ++x) {
                        const uint32_t d = static_cast<uint32_t>(a[x] - b[x]);
                        const uint32_t vx = static_cast<uint32_t>(ix[x]), vy = static_cast<uint32_t>(iy[x]);
                        sbx += vx * d, sby += vy * d;
                        if (newG) sxx += vx * vx, syy += vy * vy, sxy += vx * vy;
                    }
                    bx += static_cast<int32_t>(sbx), by += static_cast<int32_t>(sby);
                    if (newG)
                        gxx += static_cast<int32_t>(sxx), gyy += static_cast<int32_t>(syy), gxy += static_cast<int32_t>(sxy);
                } else {
                    for (int x = lo.x; x <= hi.x; ++x) {
                        const double d = static_cast<double>(a[x]) - static_cast<double>(b[x]);
                        const double vx = ix[x], vy = iy[x];
                        bx += vx * d, by += vy * d;
                        if (newG) gxx += vx * vx, gyy += vy * vy, gxy += vx * vy;
                    }
                }
            }
            const double det = gxx * gyy - gxy * gxy;
            if (!(det >= DBL_EPSILON)) return false;
            const double dx = (gyy * bx - gxy * by) / det, dy = (gxx * by - gxy * bx) / det;
            gx = static_cast<float>(static_cast<double>(gx) + dx);
            gy = static_cast<float>(static_cast<double>(gy) + dy);
            if (dx * dx + dy * dy < static_cast<double>(thr2)) break;
            if (std::fabs(dx + prevDx) < e && std::fabs(dy + prevDy) < e) {  // the step undid the last one
                gx = static_cast<float>(static_cast<double>(gx) - 0.5 * dx);
                gy = static_cast<float>(static_cast<double>(gy) - 0.5 * dy);
                break;
            }
            plo = lo, phi = hi;
            prevDx = dx, prevDy = dy;
        }
        return true;
    }

    // Root mean square difference of the windows over lo <= . < hi.
    float windowError(const Work& wk, Corner lo, Corner hi) const {
        const int m = n + 2;
        double sum = 0;
        for (int y = lo.y; y < hi.y; ++y)
            for (int x = lo.x; x < hi.x; ++x) {
                const double d = static_cast<double>(wk.p1[static_cast<ptrdiff_t>(y + 1) * m + x + 1]) -
                                 static_cast<double>(wk.p2[static_cast<ptrdiff_t>(y) * n + x]);
                sum += d * d;
            }
        if (!(sum > 0)) return 0;
        const double rms = std::sqrt(sum / (static_cast<double>(hi.y - lo.y) * (hi.x - lo.x)));
        return static_cast<float>(std::is_integral<P>::value ? rms * 0.0078125 : rms);
    }

    static float scaled(float v, double rate) { return static_cast<float>(static_cast<double>(v) * rate); }

    // One plane level for points i0 .. i1 - 1.
    void planeLevel(int id, int lev, int i0, int i1) const {
        Work wk = work(id);
        const double rate = pyr1->pRate[lev];
        for (int i = i0; i < i1; ++i) {
            if (status[i] != static_cast<Rvp8s>(lev + 1)) continue;
            float gx = scaled(next[i].x, rate), gy = scaled(next[i].y, rate);
            const float ox = scaled(prev[i].x, rate), oy = scaled(prev[i].y, rate);
            status[i] = static_cast<Rvp8s>(lev);
            Corner mn, mx, lo{0, 0}, hi{-1, -1};
            firstPatch(wk, lev, ox, oy, mn, mx);
            planeDerivatives(wk, lev, ox, oy);
            bool left = false;
            const bool ok = iterate(wk, lev, gx, gy, mn, mx, lo, hi, left);
            if (ok) {
                if (lev < 1) status[i] = 0, next[i] = {gx, gy};
                else next[i] = {static_cast<float>(gx / rate), static_cast<float>(gy / rate)};
            } else {
                status[i] = static_cast<Rvp8s>(lev + 1);
                if (left) next[i] = {static_cast<float>(gx / rate), static_cast<float>(gy / rate)};
            }
            error[i] = ok ? windowError(wk, lo, hi) : 0.0f;
        }
    }

    // Levels first - 1 .. 0 from each point's own patches, points i0 .. i1 - 1.
    void patchLevels(int id, int first, double invRate, int i0, int i1) const {
        Work wk = work(id);
        const int m = n + 2;
        for (int i = i0; i < i1; ++i) {
            if (status[i] != static_cast<Rvp8s>(first)) continue;
            float gx = scaled(next[i].x, pyr1->pRate[first - 1]), gy = scaled(next[i].y, pyr1->pRate[first - 1]);
            bool ok = true;
            Corner lo{0, 0}, hi{-1, -1};
            for (int lev = first - 1; lev >= 0; --lev) {
                const double rate = pyr1->pRate[lev];
                status[i] = static_cast<Rvp8s>(lev);
                const float ox = scaled(prev[i].x, rate), oy = scaled(prev[i].y, rate);
                Corner mn, mx;
                firstPatch(wk, lev, ox, oy, mn, mx);
                patchDerivatives(wk.p1, m, wk.dx, wk.dy, wk.r, wk.q);
                bool left = false;
                ok = iterate(wk, lev, gx, gy, mn, mx, lo, hi, left);
                if (!ok) {
                    status[i] = static_cast<Rvp8s>(lev + 1);
                    if (left) next[i] = {static_cast<float>(gx / rate), static_cast<float>(gy / rate)};
                    break;
                }
                if (lev > 0) {
                    gx = scaled(gx, invRate), gy = scaled(gy, invRate);
                } else {
                    status[i] = 0;
                    next[i] = {gx, gy};
                }
            }
            error[i] = ok ? windowError(wk, lo, hi) : 0.0f;
        }
    }
};

// Band region over the points: team capped at the state's, equal shares,
// the last thread taking the rest.
template <class Body> void pointBands(int numFeat, int stateThreads, Body&& body) {
    const int want = ownGetNumThreads();
    if (want <= 1 || stateThreads <= 1) {
        body(0, 0, numFeat);
        return;
    }
    splitRegion(numFeat, want, [&](int id, const BandSplit& s) {
        const int n = s.n < stateThreads ? s.n : stateThreads;
        if (id >= n) return;
        const int per = numFeat / n;
        body(id, id * per, id == n - 1 ? numFeat : (id + 1) * per);
    });
}

template <class T>
RvpStatus gradientPlanes(const RvpiPyramid* pyr, int lev, void* gx, void* gy, int pitch, Rvp8u* scharr,
                         int scharrAvailable, float* wide) {
    const RvpiSize sz = pyr->pRoi[lev];
    // Scratch for the filters: the state's, unless the permitted threads have
    // grown since it was made and the filters now ask for more.
    int a = 0, b = 0;
    scharrNeed<T>(sz, a, b);
    const int need = a > b ? a : b;
    struct Scratch {
        Rvp8u* p = nullptr;
        ~Scratch() { if (p) rvpsFree(p); }
    } extra;
    if (need > scharrAvailable) {
        extra.p = rvpsMalloc_8u(need);
        if (!extra.p) return rvpStsMemAllocErr;
        scharr = extra.p;
    }
    const int len = wmul(pitch, sz.height);
    if constexpr (std::is_same<T, Rvp8u>::value) {
        const auto* src = static_cast<const Rvp8u*>(pyr->pImage[lev]);
        auto* px = static_cast<Rvp16s*>(gx);
        auto* py = static_cast<Rvp16s*>(gy);
        RvpStatus st = rvpiFilterScharrVertBorder_8u16s_C1R(src, pyr->pStep[lev], px, 2 * pitch, sz, rvpBorderRepl, 0, scharr);
        if (st == rvpStsNoErr)
            st = rvpiFilterScharrHorizBorder_8u16s_C1R(src, pyr->pStep[lev], py, 2 * pitch, sz, rvpBorderRepl, 0, scharr);
        if (st != rvpStsNoErr) return st;  // the x4 scale is taken when the planes are sampled
    } else {
        const Rvp32f* src;
        int step;
        if constexpr (std::is_same<T, Rvp16u>::value) {
            for (int y = 0; y < sz.height; ++y) {
                float* row = wide + static_cast<ptrdiff_t>(y) * pitch;
                rvpsConvert_16u32f(rowPtr(static_cast<const Rvp16u*>(pyr->pImage[lev]), pyr->pStep[lev], y), row, sz.width);
                rvpsMulC_32f(row, 0.03125f, row, sz.width);
            }
            src = wide, step = 4 * pitch;
        } else {
            src = static_cast<const Rvp32f*>(pyr->pImage[lev]), step = pyr->pStep[lev];
        }
        auto* px = static_cast<Rvp32f*>(gx);
        auto* py = static_cast<Rvp32f*>(gy);
        RvpStatus st = rvpiFilterScharrVertBorder_32f_C1R(src, step, px, 4 * pitch, sz, rvpBorderRepl, 0, scharr);
        if (st == rvpStsNoErr)
            st = rvpiFilterScharrHorizBorder_32f_C1R(src, step, py, 4 * pitch, sz, rvpBorderRepl, 0, scharr);
        if (st != rvpStsNoErr) return st;
        if constexpr (std::is_same<T, Rvp32f>::value) {  // the 16u plane was scaled before filtering
            rvpsMulC_32f(px, 0.03125f, px, len);
            rvpsMulC_32f(py, 0.03125f, py, len);
        }
    }
    return rvpStsNoErr;
}

// The levels a call reads must hold images of positive size with steps that
// cover a row.
template <class T> RvpStatus checkLevels(const RvpiPyramid* p, int maxLev) {
    if (!p->pImage || !p->pRoi || !p->pStep) return rvpStsNullPtrErr;
    if (maxLev > p->level) return rvpStsBadArgErr;
    for (int l = 0; l <= maxLev; ++l) {
        if (!p->pImage[l]) return rvpStsNullPtrErr;
        if (p->pRoi[l].width < 1 || p->pRoi[l].height < 1) return rvpStsSizeErr;
        if (p->pStep[l] < static_cast<int64_t>(p->pRoi[l].width) * static_cast<int64_t>(sizeof(T))) return rvpStsStepErr;
    }
    return rvpStsNoErr;
}

template <class T>
RvpStatus track(const RvpiPyramid* pyr1, const RvpiPyramid* pyr2, const RvpiPoint32f* prev, RvpiPoint32f* next,
                Rvp8s* status, Rvp32f* error, int numFeat, int winSize, int maxLev, int maxIter, Rvp32f threshold,
                RvpiOptFlowPyrLKState* st) {
    Check c;
    c.ptrs(pyr1, pyr2, st).ptrs(prev, next).ptrs(status, error);
    c.fail(numFeat < 1, rvpStsSizeErr).fail(winSize < 1 || (st && winSize != st->winSize), rvpStsSizeErr);
    c.fail(maxLev < 0, rvpStsBadArgErr).fail(maxIter < 1, rvpStsBadArgErr).fail(threshold < 0, rvpStsBadArgErr);
    if (RvpStatus s = c) return s;
    // Beyond the fixed checks: the state's type and the pyramids' levels.
    if (st->dataType != Kinds<T>::kType || !st->pBuffer) return rvpStsBadArgErr;
    if (!pyr1->pRate) return rvpStsNullPtrErr;
    if (RvpStatus s = checkLevels<T>(pyr1, maxLev)) return s;
    if (RvpStatus s = checkLevels<T>(pyr2, maxLev)) return s;
    for (int l = 0; l <= maxLev; ++l)
        if (pyr2->pStep[l] < static_cast<int64_t>(pyr1->pRoi[l].width) * static_cast<int64_t>(sizeof(T)))
            return rvpStsStepErr;

    Tracker<T> tr{pyr1, pyr2, prev, next, status, error, winSize, maxIter, threshold * threshold};
    const double invRate = maxLev > 1 ? 1.0 / pyr1->pRate[1] : 1.0;
    int lev = maxLev;
    while (lev >= 0 && pyr1->pRoi[lev].width < st->roiWidth && pyr1->pRoi[lev].height < st->roiHeight) --lev;
    const int firstPlane = lev + 1;
    rvpsSet_8u(static_cast<Rvp8u>(maxLev + 1), reinterpret_cast<Rvp8u*>(status), numFeat);

    const Sizes s = sizes<T>(st->roiWidth, st->roiHeight, winSize, st->numThreads, st->scharrBytes);
    char* base = reinterpret_cast<char*>((reinterpret_cast<uintptr_t>(st->pBuffer) + 63) & ~uintptr_t{63});
    char* planes = base;
    Rvp8u* scharr = reinterpret_cast<Rvp8u*>(planes + 2 * s.planeBytes);
    float* wide = reinterpret_cast<float*>(reinterpret_cast<char*>(scharr) + ((s.scharrBytes + 63) & ~int64_t{63}));
    tr.threadArea = reinterpret_cast<char*>(wide) +
                    (std::is_same<T, Rvp16u>::value ? ((s.planeBytes + 63) & ~int64_t{63}) : 0);
    tr.threadBytes = s.threadBytes;
    const int teamCap = st->numThreads > 0 ? st->numThreads : 1;

    for (int l = maxLev; l >= firstPlane; --l) {
        tr.pitch = pyr1->pRoi[l].width + 5;
        tr.planeX = planes;
        tr.planeY = planes + s.planeBytes;
        if (gradientPlanes<T>(pyr1, l, planes, planes + s.planeBytes, tr.pitch, scharr, st->scharrBytes, wide) != rvpStsNoErr) continue;
        pointBands(numFeat, teamCap, [&](int id, int i0, int i1) { tr.planeLevel(id, l, i0, i1); });
    }
    if (firstPlane > 0)
        pointBands(numFeat, teamCap, [&](int id, int i0, int i1) { tr.patchLevels(id, firstPlane, invRate, i0, i1); });
    return rvpStsNoErr;
}

}  // namespace
}  // namespace rvcv

using namespace rvcv;

#define RVCV_OPTFLOW(SUF, T)                                                                                       \
    RVCV_EXPORT RvpStatus rvpiOpticalFlowPyrLKInitAlloc_##SUF##_C1R(RvpiOptFlowPyrLKState** ppState,              \
                                                                    RvpiSize roiSize, int winSize, int hint) {    \
        return initAlloc<T>(ppState, roiSize, winSize, hint);                                                      \
    }                                                                                                              \
    RVCV_EXPORT RvpStatus rvpiOpticalFlowPyrLKFree_##SUF##_C1R(RvpiOptFlowPyrLKState* pState) {                  \
        return release(pState);                                                                                    \
    }                                                                                                              \
    RVCV_EXPORT RvpStatus rvpiOpticalFlowPyrLK_##SUF##_C1R(                                                        \
        const RvpiPyramid* pPyr1, const RvpiPyramid* pPyr2, const RvpiPoint32f* pPrev, RvpiPoint32f* pNext,       \
        Rvp8s* pStatus, Rvp32f* pError, int numFeat, int winSize, int maxLev, int maxIter, Rvp32f threshold,      \
        RvpiOptFlowPyrLKState* pState) {                                                                           \
        return track<T>(pPyr1, pPyr2, pPrev, pNext, pStatus, pError, numFeat, winSize, maxLev, maxIter, threshold, \
                        pState);                                                                                   \
    }

RVCV_OPTFLOW(8u, Rvp8u)
RVCV_OPTFLOW(16u, Rvp16u)
RVCV_OPTFLOW(32f, Rvp32f)
