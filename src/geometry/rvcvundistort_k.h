// Lens undistortion kernels, written once over sample type and channel count
// and compiled per instruction set. Coordinates are computed a vector of
// pixels at a time; the four samples of each pixel are fetched lane by lane
// and mixed again as vectors. The per-pixel formulas are templates over the
// float type, so the vector body and the single-pixel tail evaluate the same
// expressions in the same order and give the same bits.
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "geometry/rvcvundistort.h"
#include "rvcvsimd.h"

namespace rvcv {
namespace RVCV_ISA_NS {
namespace {

using VF = Vec<float>;
using VI = Vec<int32_t>;
constexpr int L = lanes<float>();

// ---- Radial model -------------------------------------------------------------
// Per-row terms: dy = y - cy, yy = b*dy*dy, A = 2*k2*yy, B = (k2*yy + k1)*yy.
struct RadialRow {
    float y, dy, A, B;
    RadialRow(int row, const UndistortCam& c) : y(static_cast<float>(row)) {
        dy = y - c.cy;
        const float yy = c.b * dy * dy;
        A = 2.0f * c.k2 * yy;
        B = (c.k2 * yy + c.k1) * yy;
    }
};

// Per-column terms: dx = x - cx, xx = a*dx*dx, p = (k2*xx + k1)*xx.
template <class V> struct RadialCol { V x, dx, xx, p; };
template <class V> inline RadialCol<V> radialCol(V x, const UndistortCam& c) {
    const V dx = x - c.cx;
    const V xx = c.a * dx * dx;
    return {x, dx, xx, (c.k2 * xx + c.k1) * xx};
}

// m = (k2*xx + k1)*xx + A*xx + B; u = dx*m + x; v = dy*m + y.
template <class V> inline void radialUV(const RadialCol<V>& col, const RadialRow& r, V& u, V& v) {
    const V m = col.p + r.A * col.xx + r.B;
    u = col.dx * m + col.x;
    v = r.dy * m + r.y;
}

// Bilinear mix. Floats sum the four terms left to right; integer samples sum
// them in pairs and round by adding 0.5 before the truncation.
template <class T, class V> inline V mix(V s00, V s10, V s01, V s11, V fu, V fv) {
    const V gu = 1.0f - fu, gv = 1.0f - fv;
    const V t11 = s11 * fv * fu, t01 = s01 * gu * fv, t10 = s10 * fu * gv, t00 = s00 * gv * gu;
    if constexpr (sizeof(T) == 4) return t11 + t01 + t10 + t00;
    else return (t11 + t01) + (t10 + t00) + 0.5f;
}

template <class T> inline T toSample(float r) {
    if constexpr (sizeof(T) == 4) return r;
    else return static_cast<T>(static_cast<int32_t>(r));  // truncation; 0.5 <= r < max + 0.5
}

// Column terms of the whole row, once per call, in the caller's buffer.
struct ColumnPlanes {
    float *x, *dx, *xx, *p;
    ColumnPlanes(float* cols, int w) {
        const int64_t wp = (static_cast<int64_t>(w) + 3) & ~int64_t{3};
        x = cols; dx = cols + wp; xx = cols + 2 * wp; p = cols + 3 * wp;
    }
};

inline VI laneIndex(int x) {
    VI v;
    for (int l = 0; l < L; ++l) v[l] = x + l;
    return v;
}
inline VF toFloat(VI v) { return __builtin_convertvector(v, VF); }

template <class V> inline RadialCol<V> loadCol(const ColumnPlanes& cp, int x);
template <> inline RadialCol<VF> loadCol<VF>(const ColumnPlanes& cp, int x) {
    return {loadv<VF>(cp.x + x), loadv<VF>(cp.dx + x), loadv<VF>(cp.xx + x), loadv<VF>(cp.p + x)};
}
template <> inline RadialCol<float> loadCol<float>(const ColumnPlanes& cp, int x) {
    return {cp.x[x], cp.dx[x], cp.xx[x], cp.p[x]};
}

void fillColumns(const ColumnPlanes& cp, int w, const UndistortCam& c) {
    int x = 0;
    for (; x + L <= w; x += L) {
        const RadialCol<VF> col = radialCol(toFloat(laneIndex(x)), c);
        storev(cp.x + x, col.x); storev(cp.dx + x, col.dx); storev(cp.xx + x, col.xx); storev(cp.p + x, col.p);
    }
    for (; x < w; ++x) {
        const RadialCol<float> col = radialCol(static_cast<float>(x), c);
        cp.x[x] = col.x; cp.dx[x] = col.dx; cp.xx[x] = col.xx; cp.p[x] = col.p;
    }
}

// Writes destination pixel x of a row from source point (u, v) when
// 0 <= u < W - 1 and 0 <= v < H - 1. The integer test on the truncated
// coordinates repeats the float one wherever W - 1 and H - 1 are exact
// floats, and keeps reads inside the image where they are not.
template <class T, int C> struct Sampler {
    const char* src;
    int64_t srcStep;
    int w, h;
    float wLast, hLast;

    bool inside(float u, float v, int32_t& iu, int32_t& iv) const {
        if (!(u >= 0.0f && v >= 0.0f && u < wLast && v < hLast)) return false;
        iu = static_cast<int32_t>(u);
        iv = static_cast<int32_t>(v);
        return iu < w - 1 && iv < h - 1;
    }
    const T* at(int32_t iu, int32_t iv) const {
        return reinterpret_cast<const T*>(src + iv * srcStep) + static_cast<int64_t>(iu) * C;
    }

    void one(float u, float v, T* d) const {
        int32_t iu, iv;
        if (!inside(u, v, iu, iv)) return;
        const float fu = u - static_cast<float>(iu), fv = v - static_cast<float>(iv);
        const T* p = at(iu, iv);
        const T* q = reinterpret_cast<const T*>(reinterpret_cast<const char*>(p) + srcStep);
        for (int c = 0; c < C; ++c)
            d[c] = toSample<T>(mix<T>(static_cast<float>(p[c]), static_cast<float>(p[C + c]),
                                      static_cast<float>(q[c]), static_cast<float>(q[C + c]), fu, fv));
    }

    // Four lanes: the coordinates and weights as vectors, the samples
    // fetched lane by lane (a lane outside reads pixel (0, 0), which exists
    // whenever any lane is inside), the mix as vectors.
    void quad(__m128 u, __m128 v, T* d) const {
        const __m128 zero = _mm_setzero_ps();
        __m128 in = _mm_and_ps(_mm_and_ps(_mm_cmpge_ps(u, zero), _mm_cmpge_ps(v, zero)),
                               _mm_and_ps(_mm_cmplt_ps(u, _mm_set1_ps(wLast)), _mm_cmplt_ps(v, _mm_set1_ps(hLast))));
        if (_mm_movemask_ps(in) == 0) return;
        const __m128 uc = _mm_and_ps(in, u), vc = _mm_and_ps(in, v);
        const __m128i iu = _mm_cvttps_epi32(uc), iv = _mm_cvttps_epi32(vc);
        in = _mm_and_ps(in, _mm_castsi128_ps(_mm_and_si128(_mm_cmplt_epi32(iu, _mm_set1_epi32(w - 1)),
                                                           _mm_cmplt_epi32(iv, _mm_set1_epi32(h - 1)))));
        const int valid = _mm_movemask_ps(in);
        if (valid == 0) return;
        const __m128 fu = _mm_sub_ps(uc, _mm_cvtepi32_ps(iu)), fv = _mm_sub_ps(vc, _mm_cvtepi32_ps(iv));
        alignas(16) int32_t cu[4], cv[4];
        _mm_store_si128(reinterpret_cast<__m128i*>(cu), iu);
        _mm_store_si128(reinterpret_cast<__m128i*>(cv), iv);
        const T* p[4];
        for (int l = 0; l < 4; ++l) p[l] = at(cu[l], cv[l]);
        if constexpr (sizeof(T) == 1 && C == 3) {
            __m128 t[2][6];
            triples(p, 0, t[0]);
            triples(p, srcStep, t[1]);
            __m128i r[3];
            for (int c = 0; c < 3; ++c) r[c] = _mm_cvttps_epi32(mix<T>(t[0][c], t[0][3 + c], t[1][c], t[1][3 + c], fu, fv));
            // Lane l holds the pixel's three bytes in its low 24 bits.
            alignas(16) uint32_t px[4];
            _mm_store_si128(reinterpret_cast<__m128i*>(px),
                            _mm_or_si128(r[0], _mm_or_si128(_mm_slli_epi32(r[1], 8), _mm_slli_epi32(r[2], 16))));
            if (valid == 15) {
                // Four-byte stores overlap the next pixel, which is written after.
                for (int l = 0; l < 3; ++l) std::memcpy(d + 3 * l, &px[l], 4);
                std::memcpy(d + 9, &px[3], 3);
            } else {
                for (int l = 0; l < 4; ++l)
                    if (valid & (1 << l)) std::memcpy(d + 3 * l, &px[l], 3);
            }
        } else {
            for (int c = 0; c < C; ++c) {
                __m128 s00, s10, s01, s11;
                pair(p, c, 0, s00, s10);
                pair(p, c, srcStep, s01, s11);
                put(mix<T>(s00, s10, s01, s11, fu, fv), d, c, valid);
            }
        }
    }

    // 8-bit three-channel pixels: the six bytes of a pixel and its right
    // neighbour, from two four-byte loads (at 0 and at 2) that stay inside
    // those six bytes. t: channels 0..2 of the pixel, then of the neighbour.
    void triples(const T* const* p, int64_t down, __m128* t) const {
        const auto word = [&](int l, int at) {
            int32_t v;
            std::memcpy(&v, reinterpret_cast<const char*>(p[l]) + down + at, 4);
            return v;
        };
        const __m128i a = _mm_set_epi32(word(3, 0), word(2, 0), word(1, 0), word(0, 0));
        const __m128i b = _mm_set_epi32(word(3, 2), word(2, 2), word(1, 2), word(0, 2));
        const __m128i lo = _mm_set1_epi32(0xff);
        t[0] = _mm_cvtepi32_ps(_mm_and_si128(a, lo));
        t[1] = _mm_cvtepi32_ps(_mm_and_si128(_mm_srli_epi32(a, 8), lo));
        t[2] = _mm_cvtepi32_ps(_mm_and_si128(_mm_srli_epi32(a, 16), lo));
        t[3] = _mm_cvtepi32_ps(_mm_srli_epi32(a, 24));
        t[4] = _mm_cvtepi32_ps(_mm_and_si128(_mm_srli_epi32(b, 16), lo));
        t[5] = _mm_cvtepi32_ps(_mm_srli_epi32(b, 24));
    }

    // The samples at channel c of the pixel and of its right neighbour, in
    // the row `down` bytes below, for the four lanes.
    void pair(const T* const* p, int c, int64_t down, __m128& left, __m128& right) const {
        const auto lane = [&](int l) { return reinterpret_cast<const T*>(reinterpret_cast<const char*>(p[l]) + down); };
        if constexpr (sizeof(T) == 4) {
            left = _mm_set_ps(lane(3)[c], lane(2)[c], lane(1)[c], lane(0)[c]);
            right = _mm_set_ps(lane(3)[C + c], lane(2)[C + c], lane(1)[C + c], lane(0)[C + c]);
        } else if constexpr (C == 1) {
            // Both samples in one load of two samples.
            using Two = typename std::conditional<sizeof(T) == 1, uint16_t, uint32_t>::type;
            const auto two = [&](int l) {
                Two t;
                std::memcpy(&t, lane(l), sizeof t);
                return static_cast<int32_t>(t);
            };
            const __m128i t = _mm_set_epi32(two(3), two(2), two(1), two(0));
            constexpr int bits = 8 * sizeof(T);
            left = _mm_cvtepi32_ps(_mm_and_si128(t, _mm_set1_epi32((1 << bits) - 1)));
            right = _mm_cvtepi32_ps(_mm_srli_epi32(t, bits));
        } else {
            left = _mm_cvtepi32_ps(_mm_set_epi32(lane(3)[c], lane(2)[c], lane(1)[c], lane(0)[c]));
            right = _mm_cvtepi32_ps(_mm_set_epi32(lane(3)[C + c], lane(2)[C + c], lane(1)[C + c], lane(0)[C + c]));
        }
    }

    // Stores channel c of the four results where `valid` has the lane's bit.
    static void put(__m128 r, T* d, int c, int valid) {
        alignas(16) T out[4];
        if constexpr (sizeof(T) == 4) {
            if (C == 1 && valid == 15) return _mm_storeu_ps(d, r);
            _mm_store_ps(out, r);
        } else {
            const __m128i ri = _mm_cvttps_epi32(r);  // truncation
            if constexpr (sizeof(T) == 1) {
                const __m128i b = _mm_packus_epi16(_mm_packs_epi32(ri, ri), ri);
                const int32_t four = _mm_cvtsi128_si32(b);
                std::memcpy(C == 1 && valid == 15 ? static_cast<void*>(d) : out, &four, 4);
                if (C == 1 && valid == 15) return;
            } else {
                // 0..65535 through the signed pack: offset by 32768, then back.
                const __m128i h = _mm_xor_si128(_mm_packs_epi32(_mm_sub_epi32(ri, _mm_set1_epi32(32768)), ri),
                                                _mm_set1_epi16(-32768));
                if (C == 1 && valid == 15) return _mm_storel_epi64(reinterpret_cast<__m128i*>(d), h);
                _mm_storel_epi64(reinterpret_cast<__m128i*>(out), h);
            }
        }
        for (int l = 0; l < 4; ++l)
            if (valid & (1 << l)) d[l * C + c] = out[l];
    }

    void block(VF u, VF v, T* d) const {
        for (int q = 0; q < L / 4; ++q) {
            __m128 uq, vq;
            std::memcpy(&uq, reinterpret_cast<const char*>(&u) + 16 * q, 16);
            std::memcpy(&vq, reinterpret_cast<const char*>(&v) + 16 * q, 16);
            quad(uq, vq, d + 4 * q * C);
        }
    }
};

template <class T, int C>
void radial(const void* src, int64_t srcStep, void* dst, int64_t dstStep, int w, int h, const UndistortCam& cam,
            float* cols) {
    const Sampler<T, C> smp{static_cast<const char*>(src), srcStep, w, h, static_cast<float>(w - 1),
                            static_cast<float>(h - 1)};
    ColumnPlanes cp(cols, w);
    if (cols) fillColumns(cp, w, cam);
    char* drow = static_cast<char*>(dst);
    for (int y = 0; y < h; ++y, drow += dstStep) {
        T* d = reinterpret_cast<T*>(drow);
        const RadialRow r(y, cam);
        int x = 0;
        for (; x + L <= w; x += L) {
            VF u, v;
            radialUV(cols ? loadCol<VF>(cp, x) : radialCol(toFloat(laneIndex(x)), cam), r, u, v);
            smp.block(u, v, d + static_cast<int64_t>(x) * C);
        }
        for (; x < w; ++x) {
            float u, v;
            radialUV(cols ? loadCol<float>(cp, x) : radialCol(static_cast<float>(x), cam), r, u, v);
            smp.one(u, v, d + static_cast<int64_t>(x) * C);
        }
    }
}

// ---- Maps -----------------------------------------------------------------------
// Radial and tangential: yn = dy*ify, yy = yn*yn, T = yn*(2*p1) per row;
// xn = dx*ifx, r2 = xn*xn + yy, m = (k2*r2 + k1)*r2 + xn*(2*p2) + T,
// x map = m*dx + (Fx*r2 + x), y map = m*dy + r2*Fy + y.
struct TangentialRow {
    float y, dy, yy, T;
    TangentialRow(int row, const UndistortCam& c) : y(static_cast<float>(row)) {
        dy = y - c.cy;
        const float yn = dy * c.ify;
        yy = yn * yn;
        T = yn * (2.0f * c.p1);
    }
};
template <class V> struct TangentialCol { V x, dx, xnSq, xnP2; };
template <class V> inline TangentialCol<V> tangentialCol(V x, const UndistortCam& c) {
    const V dx = x - c.cx;
    const V xn = dx * c.ifx;
    return {x, dx, xn * xn, xn * (2.0f * c.p2)};
}
template <class V> inline void tangentialUV(const TangentialCol<V>& col, const TangentialRow& r,
                                            const UndistortCam& c, V& u, V& v) {
    const V r2 = col.xnSq + r.yy;
    const V m = (c.k2 * r2 + c.k1) * r2 + col.xnP2 + r.T;
    u = m * col.dx + (c.Fx * r2 + col.x);
    v = m * r.dy + r2 * c.Fy + r.y;
}

template <bool Tangential>
void mapRows(float* xMap, int64_t xStep, float* yMap, int64_t yStep, int w, int h, const UndistortCam& cam,
             float* cols, bool nt) {
    // The column planes hold the radial or the tangential column terms.
    ColumnPlanes cp(cols, w);
    if (cols) {
        if constexpr (Tangential) {
            for (int x = 0; x < w; ++x) {
                const TangentialCol<float> col = tangentialCol(static_cast<float>(x), cam);
                cp.x[x] = col.x; cp.dx[x] = col.dx; cp.xx[x] = col.xnSq; cp.p[x] = col.xnP2;
            }
        } else {
            fillColumns(cp, w, cam);
        }
    }
    const auto column = [&](auto x, int at) {
        using V = decltype(x);
        if constexpr (Tangential) {
            if (!cols) return tangentialCol(x, cam);
            if constexpr (std::is_same<V, float>::value)
                return TangentialCol<V>{cp.x[at], cp.dx[at], cp.xx[at], cp.p[at]};
            else
                return TangentialCol<V>{loadv<V>(cp.x + at), loadv<V>(cp.dx + at), loadv<V>(cp.xx + at),
                                        loadv<V>(cp.p + at)};
        } else {
            return cols ? loadCol<V>(cp, at) : radialCol(x, cam);
        }
    };
    for (int y = 0; y < h; ++y) {
        float* xm = reinterpret_cast<float*>(reinterpret_cast<char*>(xMap) + y * xStep);
        float* ym = reinterpret_cast<float*>(reinterpret_cast<char*>(yMap) + y * yStep);
        const bool stream = nt && aligned16(xm) && aligned16(ym);
        typename std::conditional<Tangential, TangentialRow, RadialRow>::type r(y, cam);
        int x = 0;
        for (; x + L <= w; x += L) {
            VF u, v;
            if constexpr (Tangential) tangentialUV(column(toFloat(laneIndex(x)), x), r, cam, u, v);
            else radialUV(column(toFloat(laneIndex(x)), x), r, u, v);
            if (stream) { streamv(xm + x, u); streamv(ym + x, v); }
            else { storev(xm + x, u); storev(ym + x, v); }
        }
        for (; x < w; ++x) {
            float u, v;
            if constexpr (Tangential) tangentialUV(column(static_cast<float>(x), x), r, cam, u, v);
            else radialUV(column(static_cast<float>(x), x), r, u, v);
            xm[x] = u;
            ym[x] = v;
        }
    }
    if (nt) _mm_sfence();
}

void map(float* xMap, int64_t xStep, float* yMap, int64_t yStep, int w, int h, const UndistortCam& cam,
         float* cols, bool tangential, bool nt) {
    if (tangential) mapRows<true>(xMap, xStep, yMap, yStep, w, h, cam, cols, nt);
    else mapRows<false>(xMap, xStep, yMap, yStep, w, h, cam, cols, nt);
}

}  // namespace

extern constexpr UndistortKernels kUndistort = {
    {{radial<uint8_t, 1>, radial<uint8_t, 3>},
     {radial<uint16_t, 1>, radial<uint16_t, 3>},
     {radial<float, 1>, radial<float, 3>}},
    map,
};

}  // namespace RVCV_ISA_NS
}  // namespace rvcv
