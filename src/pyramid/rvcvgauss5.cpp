// 2:1 Gaussian pyramid steps with the binomial kernel 1 4 6 4 1, replicated
// border. Both steps filter each source row once along x into a small ring
// of rows, then combine the ring's rows along y; 8u sums stay exact in 16
// bits, 32f sums follow one written order in every path.
#include <emmintrin.h>

#include <algorithm>
#include <cstring>

#include "rvcvframe.h"

namespace rvcv {
namespace {

constexpr int kType8u = 1, kType32f = 13;

template <class T> struct Acc;
template <> struct Acc<Rvp8u> { using type = uint16_t; };
template <> struct Acc<Rvp32f> { using type = float; };

inline int clampTo(int v, int n) { return v < 0 ? 0 : v >= n ? n - 1 : v; }

// ---- Five and three taps ------------------------------------------------------
// Down: (a + e) + 4 (b + d) + 6 c. Up, even: (a + c) + 6 b; odd: 4 (b + c).
inline uint16_t tap5(uint16_t a, uint16_t b, uint16_t c, uint16_t d, uint16_t e) {
    return static_cast<uint16_t>(a + e + 4 * (b + d) + 6 * c);
}
inline float tap5(float a, float b, float c, float d, float e) { return (a + e) + 4.0f * (b + d) + 6.0f * c; }
inline __m128i tap5(__m128i a, __m128i b, __m128i c, __m128i d, __m128i e) {
    const __m128i bd = _mm_add_epi16(b, d);
    return _mm_add_epi16(_mm_add_epi16(_mm_add_epi16(a, e), _mm_slli_epi16(bd, 2)),
                         _mm_add_epi16(_mm_slli_epi16(c, 2), _mm_slli_epi16(c, 1)));
}
inline __m128 tap5(__m128 a, __m128 b, __m128 c, __m128 d, __m128 e) {
    return _mm_add_ps(_mm_add_ps(_mm_add_ps(a, e), _mm_mul_ps(_mm_set1_ps(4.0f), _mm_add_ps(b, d))),
                      _mm_mul_ps(_mm_set1_ps(6.0f), c));
}
inline uint16_t tapEven(uint16_t a, uint16_t b, uint16_t c) { return static_cast<uint16_t>(a + c + 6 * b); }
inline float tapEven(float a, float b, float c) { return (a + c) + 6.0f * b; }
inline __m128i tapEven(__m128i a, __m128i b, __m128i c) {
    return _mm_add_epi16(_mm_add_epi16(a, c), _mm_add_epi16(_mm_slli_epi16(b, 2), _mm_slli_epi16(b, 1)));
}
inline __m128 tapEven(__m128 a, __m128 b, __m128 c) { return _mm_add_ps(_mm_add_ps(a, c), _mm_mul_ps(_mm_set1_ps(6.0f), b)); }
inline uint16_t tapOdd(uint16_t b, uint16_t c) { return static_cast<uint16_t>(4 * (b + c)); }
inline float tapOdd(float b, float c) { return 4.0f * (b + c); }
inline __m128i tapOdd(__m128i b, __m128i c) { return _mm_slli_epi16(_mm_add_epi16(b, c), 2); }
inline __m128 tapOdd(__m128 b, __m128 c) { return _mm_mul_ps(_mm_set1_ps(4.0f), _mm_add_ps(b, c)); }

// Final scaling: 8u (sum + 2^(s-1)) >> s, 32f times 2^-s.
template <int S> inline Rvp8u finish(uint16_t v) { return static_cast<Rvp8u>((v + (1 << (S - 1))) >> S); }
template <int S> inline Rvp32f finish(float v) { return v * (1.0f / (1 << S)); }

// ---- Rows along x ----------------------------------------------------------------
// Down: h[x] = tap5 of s at 2x - 2 .. 2x + 2 (clamped), x < dw.
template <class T, int C> void rowDown(const T* s, int w, typename Acc<T>::type* h, int dw) {
    using A = typename Acc<T>::type;
    const auto at = [&](int x, int c) { return static_cast<A>(s[clampTo(x, w) * C + c]); };
    const auto one = [&](int x) {
        for (int c = 0; c < C; ++c) h[x * C + c] = tap5(at(2 * x - 2, c), at(2 * x - 1, c), at(2 * x, c), at(2 * x + 1, c), at(2 * x + 2, c));
    };
    int x = 0;
    if constexpr (C == 3) {
        // Colour: one vector of taps per pixel, at its first sample (the
        // neighbours 3 and 6 samples away); its three leading lanes are the
        // pixel's, the rest are overwritten by the next pixel's store.
        if (dw > 0) one(x++);
        if constexpr (sizeof(T) == 1) {
            // Eight pixels a step: taps at 48 samples in six vectors, then
            // the three samples of every second pixel picked out by shifts.
            const __m128i z = _mm_setzero_si128();
            const auto taps16 = [&](int k, __m128i& lo, __m128i& hi) {
                const auto ld = [&](int o) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + k + o)); };
                const __m128i a = ld(-6), b = ld(-3), c = ld(0), d = ld(3), e = ld(6);
                lo = tap5(_mm_unpacklo_epi8(a, z), _mm_unpacklo_epi8(b, z), _mm_unpacklo_epi8(c, z), _mm_unpacklo_epi8(d, z),
                          _mm_unpacklo_epi8(e, z));
                hi = tap5(_mm_unpackhi_epi8(a, z), _mm_unpackhi_epi8(b, z), _mm_unpackhi_epi8(c, z), _mm_unpackhi_epi8(d, z),
                          _mm_unpackhi_epi8(e, z));
            };
            const __m128i m012 = _mm_setr_epi16(-1, -1, -1, 0, 0, 0, 0, 0), m34 = _mm_setr_epi16(0, 0, 0, -1, -1, 0, 0, 0);
            const __m128i m5 = _mm_setr_epi16(0, 0, 0, 0, 0, -1, 0, 0), m67 = _mm_setr_epi16(0, 0, 0, 0, 0, 0, -1, -1);
            const __m128i m0 = _mm_setr_epi16(-1, 0, 0, 0, 0, 0, 0, 0), m123 = _mm_setr_epi16(0, -1, -1, -1, 0, 0, 0, 0);
            // Samples 0-23 in a, b, c: those of pixels 0, 2, 4, 6 (0-2, 6-8, 12-14, 18-20) to 12 outputs.
            const auto pick = [&](__m128i a, __m128i b, __m128i c, A* out) {
                const __m128i lo = _mm_or_si128(_mm_or_si128(_mm_and_si128(a, m012), _mm_and_si128(_mm_srli_si128(a, 6), m34)),
                                                _mm_or_si128(_mm_and_si128(_mm_slli_si128(b, 10), m5), _mm_and_si128(_mm_slli_si128(b, 4), m67)));
                const __m128i hi = _mm_or_si128(_mm_and_si128(_mm_srli_si128(b, 12), m0), _mm_and_si128(_mm_srli_si128(c, 2), m123));
                _mm_storeu_si128(reinterpret_cast<__m128i*>(out), lo);
                _mm_storel_epi64(reinterpret_cast<__m128i*>(out + 8), hi);
            };
            for (; x + 8 <= dw && 6 * x + 53 <= 3 * w - 1; x += 8) {
                __m128i v[6];
                taps16(6 * x, v[0], v[1]);
                taps16(6 * x + 16, v[2], v[3]);
                taps16(6 * x + 32, v[4], v[5]);
                pick(v[0], v[1], v[2], h + 3 * x);
                pick(v[3], v[4], v[5], h + 3 * x + 12);
            }
        } else {
            for (; 6 * x + 9 <= 3 * w - 1 && 3 * x + 4 <= 3 * dw; ++x) {
                const int i = 6 * x;
                _mm_storeu_ps(h + 3 * x, tap5(_mm_loadu_ps(s + i - 6), _mm_loadu_ps(s + i - 3), _mm_loadu_ps(s + i),
                                              _mm_loadu_ps(s + i + 3), _mm_loadu_ps(s + i + 6)));
            }
        }
        for (; x < dw; ++x) one(x);
        return;
    }
    for (; x < dw && 2 * x - 2 < 0; ++x) one(x);
    if constexpr (C == 1) {
        if constexpr (sizeof(T) == 1) {
            // Sixteen samples from 2x - 2, 2x and 2x + 2 give eight results.
            const __m128i lo = _mm_set1_epi16(0xFF);
            for (; x + 8 <= dw && 2 * x + 17 <= w - 1; x += 8) {
                const __m128i p = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + 2 * x - 2));
                const __m128i q = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + 2 * x));
                const __m128i r = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + 2 * x + 2));
                const __m128i v = tap5(_mm_and_si128(p, lo), _mm_srli_epi16(p, 8), _mm_and_si128(q, lo), _mm_srli_epi16(q, 8),
                                       _mm_and_si128(r, lo));
                _mm_storeu_si128(reinterpret_cast<__m128i*>(h + x), v);
            }
        } else {
            const auto even = [](const float* p) { return _mm_shuffle_ps(_mm_loadu_ps(p), _mm_loadu_ps(p + 4), 0x88); };
            const auto odd = [](const float* p) { return _mm_shuffle_ps(_mm_loadu_ps(p), _mm_loadu_ps(p + 4), 0xDD); };
            for (; x + 4 <= dw && 2 * x + 9 <= w - 1; x += 4)
                _mm_storeu_ps(h + x, tap5(even(s + 2 * x - 2), odd(s + 2 * x - 2), even(s + 2 * x), odd(s + 2 * x), even(s + 2 * x + 2)));
        }
    }
    for (; x < dw; ++x) one(x);
}

// Up: u[2x] = tapEven of s at x - 1, x, x + 1; u[2x + 1] = tapOdd of s at x,
// x + 1 (clamped), x < w.
template <class T, int C> void rowUp(const T* s, int w, typename Acc<T>::type* u, typename Acc<T>::type* full) {
    using A = typename Acc<T>::type;
    const auto at = [&](int x, int c) { return static_cast<A>(s[clampTo(x, w) * C + c]); };
    const auto one = [&](int x) {
        for (int c = 0; c < C; ++c) {
            u[2 * x * C + c] = tapEven(at(x - 1, c), at(x, c), at(x + 1, c));
            u[(2 * x + 1) * C + c] = tapOdd(at(x, c), at(x + 1, c));
        }
    };
    int x = 0;
    if constexpr (C == 3) {
        // Colour: even and odd taps at every sample (neighbours 3 away) into
        // two rows of `full`, then each pixel's three of each into place.
        const int n = 3 * w;
        A* even = full;
        A* odd = full + n;
        int i = 0;
        const auto edge = [&](int k) {
            const int p = k / 3, c = k % 3;
            even[k] = tapEven(at(p - 1, c), at(p, c), at(p + 1, c));
            odd[k] = tapOdd(at(p, c), at(p + 1, c));
        };
        for (; i < n && i < 3; ++i) edge(i);
        if constexpr (sizeof(T) == 1) {
            const __m128i z = _mm_setzero_si128();
            const auto ld = [&](int k) { return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(s + k)), z); };
            for (; i + 11 <= n; i += 8) {
                const __m128i a = ld(i - 3), b = ld(i), c = ld(i + 3);
                _mm_storeu_si128(reinterpret_cast<__m128i*>(even + i), tapEven(a, b, c));
                _mm_storeu_si128(reinterpret_cast<__m128i*>(odd + i), tapOdd(b, c));
            }
        } else {
            for (; i + 7 <= n; i += 4) {
                const __m128 a = _mm_loadu_ps(s + i - 3), b = _mm_loadu_ps(s + i), c = _mm_loadu_ps(s + i + 3);
                _mm_storeu_ps(even + i, tapEven(a, b, c));
                _mm_storeu_ps(odd + i, tapOdd(b, c));
            }
        }
        for (; i < n; ++i) edge(i);
        for (; x < w; ++x) {
            std::memcpy(u + 6 * x, even + 3 * x, 3 * sizeof(A));
            std::memcpy(u + 6 * x + 3, odd + 3 * x, 3 * sizeof(A));
        }
        return;
    }
    if (w > 0) one(x++);
    if constexpr (C == 1) {
        if constexpr (sizeof(T) == 1) {
            const __m128i z = _mm_setzero_si128();
            const auto ld = [&](int i) { return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(s + i)), z); };
            for (; x + 9 <= w; x += 8) {
                const __m128i a = ld(x - 1), b = ld(x), c = ld(x + 1);
                const __m128i e = tapEven(a, b, c), o = tapOdd(b, c);
                _mm_storeu_si128(reinterpret_cast<__m128i*>(u + 2 * x), _mm_unpacklo_epi16(e, o));
                _mm_storeu_si128(reinterpret_cast<__m128i*>(u + 2 * x + 8), _mm_unpackhi_epi16(e, o));
            }
        } else {
            for (; x + 5 <= w; x += 4) {
                const __m128 a = _mm_loadu_ps(s + x - 1), b = _mm_loadu_ps(s + x), c = _mm_loadu_ps(s + x + 1);
                const __m128 e = tapEven(a, b, c), o = tapOdd(b, c);
                _mm_storeu_ps(u + 2 * x, _mm_unpacklo_ps(e, o));
                _mm_storeu_ps(u + 2 * x + 4, _mm_unpackhi_ps(e, o));
            }
        }
    }
    for (; x < w; ++x) one(x);
}

// ---- Rows along y ------------------------------------------------------------------
template <class T, int S, class Combine, class VecCombine>
void column(T* d, int n, Combine&& one, VecCombine&& vec) {
    int i = 0;
    if constexpr (sizeof(T) == 1) {
        const __m128i half = _mm_set1_epi16(1 << (S - 1));
        for (; i + 16 <= n; i += 16) {
            const __m128i a = _mm_srli_epi16(_mm_add_epi16(vec(i), half), S);
            const __m128i b = _mm_srli_epi16(_mm_add_epi16(vec(i + 8), half), S);
            _mm_storeu_si128(reinterpret_cast<__m128i*>(d + i), _mm_packus_epi16(a, b));
        }
    } else {
        const __m128 k = _mm_set1_ps(1.0f / (1 << S));
        for (; i + 4 <= n; i += 4) _mm_storeu_ps(d + i, _mm_mul_ps(vec(i), k));
    }
    for (; i < n; ++i) d[i] = finish<S>(one(i));
}

template <class A> inline auto load(const A* p) {
    if constexpr (sizeof(A) == 2) return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    else return _mm_loadu_ps(p);
}

// ---- Scratch -----------------------------------------------------------------------
// A ring of rows for one thread: 5 rows of the down step's width, or 3 of the
// up step's, each rounded to 64 bytes.
template <class A> int64_t ringRowBytes(int64_t samples) { return (samples * static_cast<int64_t>(sizeof(A)) + 63) & ~int64_t{63}; }

// Colour up steps add two rows of taps at every sample.
int64_t ringBytes(int64_t width, int sampleBytes, int channels, bool up) {
    const int64_t samples = up ? 2 * width * channels : (width + 1) / 2 * channels;
    const auto bytes = [&](int64_t n) { return (n * sampleBytes + 63) & ~int64_t{63}; };
    return (up ? 3 : 5) * bytes(samples) + (channels == 3 && up ? 2 * bytes(width * channels) : 0);
}

int64_t bufBytes(int width, int dataType, int channels, bool up) {
    return ringBytes(width, dataType == kType8u ? 2 : 4, channels, up) + 64;
}

RvpStatus bufSize(int roiWidth, int dataType, int channels, int* pBufferSize, bool up) {
    if (!pBufferSize) return rvpStsNullPtrErr;
    if (roiWidth < 1) return rvpStsSizeErr;
    if (dataType != kType8u && dataType != kType32f) return rvpStsInterpolationErr;
    if (channels != 1 && channels != 3) return rvpStsChannelErr;
    return storeSize(bufBytes(roiWidth, dataType, channels, up), pBufferSize);
}

// Runs body(y0, rows, ring) over bands of `rows` with one ring per thread: the
// caller's buffer for the first, the heap for the others (one block; if it
// cannot be had, one thread does every band). Same bytes for any team.
template <class Body> void bands(int rows, int64_t pixels, Rvp8u* buffer, int64_t ringBytes, Body&& body) {
    Rvp8u* first = reinterpret_cast<Rvp8u*>((reinterpret_cast<uintptr_t>(buffer) + 63) & ~uintptr_t{63});
    int team = ownGetNumThreads();
    if (team > rows) team = rows;
    if (team <= 1 || pixels < 0x20000) {
        body(0, rows, first);
        return;
    }
    void* heap = fitsInt((team - 1) * ringBytes + 64) ? rvpMalloc(static_cast<int>((team - 1) * ringBytes + 64)) : nullptr;
    if (!heap) {
        body(0, rows, first);
        return;
    }
    Rvp8u* rest = reinterpret_cast<Rvp8u*>((reinterpret_cast<uintptr_t>(heap) + 63) & ~uintptr_t{63});
    bandRegion(rows, team, [&](int y0, int n) {
        const int id = owncvGetIdThreads();
        body(y0, n, id == 0 ? first : rest + (id - 1) * ringBytes);
    });
    rvpFree(heap);
}

template <class T, int C>
RvpStatus pyrDown(const T* pSrc, int srcStep, T* pDst, int dstStep, RvpiSize roi, Rvp8u* pBuffer) {
    using A = typename Acc<T>::type;
    Check c;
    c.ptrs(pSrc, pDst, pBuffer).size(roi);
    const int dw = (roi.width + 1) / 2, dh = (roi.height + 1) / 2;
    c.step(srcStep, wmul(roi.width, static_cast<int>(sizeof(T)) * C)).step(dstStep, wmul(dw, static_cast<int>(sizeof(T)) * C));
    c.evenSteps(static_cast<int>(sizeof(T)), srcStep, dstStep);
    c.fail(!fitsInt(bufBytes(roi.width, sizeof(T) == 1 ? kType8u : kType32f, C, false)), rvpStsSizeErr);
    if (c != rvpStsNoErr) return c;
    const int n = dw * C;
    const int64_t rowBytes = ringRowBytes<A>(n);
    bands(dh, int64_t{dw} * dh, pBuffer, ringBytes(roi.width, sizeof(A), C, false), [&](int y0, int rows, Rvp8u* ring) {
        // Source row sy lives in slot sy % 5: five consecutive rows (clamped
        // ones repeat) never evict each other.
        int held[5] = {-1, -1, -1, -1, -1};
        const auto get = [&](int sy) -> const A* {
            sy = clampTo(sy, roi.height);
            A* row = reinterpret_cast<A*>(ring + (sy % 5) * rowBytes);
            if (held[sy % 5] != sy) rowDown<T, C>(rowPtr(pSrc, srcStep, sy), roi.width, row, dw), held[sy % 5] = sy;
            return row;
        };
        for (int y = y0; y < y0 + rows; ++y) {
            const A* r[5];
            for (int j = 0; j < 5; ++j) r[j] = get(2 * y - 2 + j);
            column<T, 8>(rowPtr(pDst, dstStep, y), n, [&](int i) { return tap5(r[0][i], r[1][i], r[2][i], r[3][i], r[4][i]); },
                         [&](int i) { return tap5(load(r[0] + i), load(r[1] + i), load(r[2] + i), load(r[3] + i), load(r[4] + i)); });
        }
    });
    return rvpStsNoErr;
}

template <class T, int C>
RvpStatus pyrUp(const T* pSrc, int srcStep, T* pDst, int dstStep, RvpiSize roi, Rvp8u* pBuffer) {
    using A = typename Acc<T>::type;
    Check c;
    c.ptrs(pSrc, pDst, pBuffer).size(roi);
    c.step(srcStep, wmul(roi.width, static_cast<int>(sizeof(T)) * C)).step(dstStep, wmul(wmul(roi.width, 2), static_cast<int>(sizeof(T)) * C));
    c.evenSteps(static_cast<int>(sizeof(T)), srcStep, dstStep);
    c.fail(!fitsInt(bufBytes(roi.width, sizeof(T) == 1 ? kType8u : kType32f, C, true)) || roi.width > INT32_MAX / 2 ||
               roi.height > INT32_MAX / 2,
           rvpStsSizeErr);
    if (c != rvpStsNoErr) return c;
    const int n = 2 * roi.width * C;
    const int64_t rowBytes = ringRowBytes<A>(n);
    bands(roi.height, 4 * int64_t{roi.width} * roi.height, pBuffer, ringBytes(roi.width, sizeof(A), C, true),
          [&](int y0, int rows, Rvp8u* ring) {
        A* full = reinterpret_cast<A*>(ring + 3 * rowBytes);
        int held[3] = {-1, -1, -1};  // as for the down step, slot sy % 3
        const auto get = [&](int sy) -> const A* {
            sy = clampTo(sy, roi.height);
            const int k = sy % 3;
            A* row = reinterpret_cast<A*>(ring + k * rowBytes);
            if (held[k] != sy) rowUp<T, C>(rowPtr(pSrc, srcStep, sy), roi.width, row, full), held[k] = sy;
            return row;
        };
        for (int y = y0; y < y0 + rows; ++y) {
            const A* a = get(y - 1);
            const A* b = get(y);
            const A* e = get(y + 1);
            column<T, 6>(rowPtr(pDst, dstStep, 2 * y), n, [&](int i) { return tapEven(a[i], b[i], e[i]); },
                         [&](int i) { return tapEven(load(a + i), load(b + i), load(e + i)); });
            column<T, 6>(rowPtr(pDst, dstStep, 2 * y + 1), n, [&](int i) { return tapOdd(b[i], e[i]); },
                         [&](int i) { return tapOdd(load(b + i), load(e + i)); });
        }
    });
    return rvpStsNoErr;
}

}  // namespace
}  // namespace rvcv

using namespace rvcv;

RVCV_EXPORT RvpStatus rvpiPyrDownGetBufSize_Gauss5x5(int roiWidth, int dataType, int channels, int* pBufferSize) {
    return bufSize(roiWidth, dataType, channels, pBufferSize, false);
}
RVCV_EXPORT RvpStatus rvpiPyrUpGetBufSize_Gauss5x5(int roiWidth, int dataType, int channels, int* pBufferSize) {
    return bufSize(roiWidth, dataType, channels, pBufferSize, true);
}

#define RVCV_GAUSS5(SUF, T, C)                                                                                     \
    RVCV_EXPORT RvpStatus rvpiPyrDown_Gauss5x5_##SUF(const T* pSrc, int srcStep, T* pDst, int dstStep,           \
                                                     RvpiSize roiSize, Rvp8u* pBuffer) {                          \
        return pyrDown<T, C>(pSrc, srcStep, pDst, dstStep, roiSize, pBuffer);                                     \
    }                                                                                                             \
    RVCV_EXPORT RvpStatus rvpiPyrUp_Gauss5x5_##SUF(const T* pSrc, int srcStep, T* pDst, int dstStep,             \
                                                   RvpiSize roiSize, Rvp8u* pBuffer) {                            \
        return pyrUp<T, C>(pSrc, srcStep, pDst, dstStep, roiSize, pBuffer);                                       \
    }

RVCV_GAUSS5(8u_C1R, Rvp8u, 1)
RVCV_GAUSS5(8u_C3R, Rvp8u, 3)
RVCV_GAUSS5(32f_C1R, Rvp32f, 1)
RVCV_GAUSS5(32f_C3R, Rvp32f, 3)
