// Bilinear patch sampling with fixed-point weights, shared by the sub-pixel
// copies and the optical flow.
//
// A patch of n samples on an axis centred on c: f = c - (n - 1) / 2, i0 the
// floor of f, a the 14-bit fraction. Patch indices lo..hi have both of their
// samples inside the image; positions outside take the nearest sample.
#ifndef RVCV_SAMPLER_H
#define RVCV_SAMPLER_H

#include <emmintrin.h>

#include <type_traits>

#include "rvcvframe.h"

namespace rvcv {
namespace sampler {

struct Axis {
    int i0, a, lo, hi;
};

// The window is clamped when it lies wholly outside (or c is NaN): all its
// samples then take the same edge sample, and lo/hi come out as the rule
// gives them for any such window.
inline Axis axis(float c, int n, int size) {
    Axis r{};
    const double f = static_cast<double>(c) - (n - 1) * 0.5;
    if (!(f < static_cast<double>(size))) {  // wholly to the right, or NaN
        r.i0 = size, r.lo = 0, r.hi = -1;
        return r;
    }
    if (!(f > -static_cast<double>(n) - 1.0)) {  // wholly to the left
        r.i0 = -n - 1, r.lo = n, r.hi = n - 1;
        return r;
    }
    r.i0 = static_cast<int>(static_cast<int64_t>(static_cast<double>(n) + f) - n);
    r.a = static_cast<int>((f - r.i0) * 16384.0 + 0.5);
    r.lo = r.i0 < 0 ? (-r.i0 < n ? -r.i0 : n) : 0;
    r.hi = n - 1;
    if (int64_t{r.i0} + n - 1 > size - 2) r.hi = size - r.i0 - 2;
    return r;
}

inline int clampTo(int64_t v, int size) { return v < 0 ? 0 : v >= size ? size - 1 : static_cast<int>(v); }

// The four weights of fractions a (x) and b (y), 14 bits each: the products
// of the axis weights, rounded to 14 bits. Fractions of 0 give 16384, 0, 0, 0.
struct Weights {
    int w[4];
};
inline Weights weights14(int a, int b) {
    const int wx0 = 16384 - a, wx1 = a, wy0 = 16384 - b, wy1 = b;
    return {{(wy0 * wx0 + 8192) >> 14, (wy0 * wx1 + 8192) >> 14, (wy1 * wx0 + 8192) >> 14, (wy1 * wx1 + 8192) >> 14}};
}

// How a fixed-point sum is brought to its scale: half up, or to nearest with
// ties to even (the library's scaled integer results).
enum class Round { HalfUp, Even };

template <Round R> inline __m128i shiftRound(__m128i v, int shift) {
    const __m128i s = _mm_cvtsi32_si128(shift);
    if constexpr (R == Round::HalfUp) {
        return _mm_sra_epi32(_mm_add_epi32(v, _mm_set1_epi32(1 << (shift - 1))), s);
    } else {
        const __m128i odd = _mm_and_si128(_mm_sra_epi32(v, s), _mm_set1_epi32(1));
        return _mm_sra_epi32(_mm_add_epi32(_mm_add_epi32(v, _mm_set1_epi32((1 << (shift - 1)) - 1)), odd), s);
    }
}

// Pairs of neighbouring 16-bit samples times pairs of weights, eight
// results: the top row's pair (wTop) plus the bottom row's pair (wBot),
// times 2^gain, rounded, shifted, stored as 16 bits (the caller has made
// sure every result fits).
template <Round R>
inline void madd8(void* o, __m128i t0, __m128i t1, __m128i b0, __m128i b1, __m128i wTop, __m128i wBot, int shift,
                  int gain) {
    const __m128i g = _mm_cvtsi32_si128(gain);
    const __m128i lo = _mm_sll_epi32(_mm_add_epi32(_mm_madd_epi16(_mm_unpacklo_epi16(t0, t1), wTop),
                                                   _mm_madd_epi16(_mm_unpacklo_epi16(b0, b1), wBot)), g);
    const __m128i hi = _mm_sll_epi32(_mm_add_epi32(_mm_madd_epi16(_mm_unpackhi_epi16(t0, t1), wTop),
                                                   _mm_madd_epi16(_mm_unpackhi_epi16(b0, b1), wBot)), g);
    _mm_storeu_si128(static_cast<__m128i*>(o), _mm_packs_epi32(shiftRound<R>(lo, shift), shiftRound<R>(hi, shift)));
}

inline __m128i pairOf(int a, int b) {
    return _mm_set1_epi32(static_cast<int>((static_cast<uint32_t>(b) << 16) | static_cast<uint16_t>(a)));
}

// Four float results: w0 a + w1 b + (w2 c + w3 d), in that order, with the
// weights divided by 16384 (exact).
inline __m128 blend4(__m128 a, __m128 b, __m128 c, __m128 d, const __m128 (&w)[4]) {
    const __m128 top = _mm_add_ps(_mm_mul_ps(w[0], a), _mm_mul_ps(w[1], b));
    const __m128 bottom = _mm_add_ps(_mm_mul_ps(w[2], c), _mm_mul_ps(w[3], d));
    return _mm_add_ps(top, bottom);
}

template <class T> inline __m128 load4f(const T* p) {
    if constexpr (std::is_same<T, float>::value) {
        return _mm_loadu_ps(p);
    } else {
        const __m128i v = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p));
        return _mm_cvtepi32_ps(_mm_unpacklo_epi16(v, _mm_setzero_si128()));
    }
}

// nw x nh samples (rows pitch elements apart), sample (k, j) from the 2x2
// neighbourhood whose top-left sample is (x0 + k, y0 + j), with four integer
// weights: integers (sum * 2^gain) scaled by 2^-shift with rounding R and
// saturated to P; floats w0 a + w1 b + (w2 c + w3 d) with the weights
// divided by 16384, so that weights 16384, 0, 0, 0 copy a sample. Positions
// outside the w x h image take the nearest sample. Columns whose samples all
// lie inside go eight (integers) or four (floats) at a time with the same
// arithmetic.
template <class T, class P, Round R = Round::HalfUp>
void bilinear(P* out, int pitch, int nw, int nh, const T* img, int step, int w, int h, int x0, int y0,
              const int (&wt)[4], int shift, int gain = 0) {
    constexpr bool kInt = std::is_integral<P>::value;
    // Eight integer results fit 16 bits when every weight fits and an 8-bit
    // sum (at most 255 x 16385 x 2^gain) scaled down stays below 2^15.
    bool fast = x0 >= 0 && !(kInt && (sizeof(T) > 2 || (sizeof(T) == 2 && std::is_unsigned<T>::value)));
    if constexpr (kInt) {
        fast = fast && shift >= 1 && shift <= 30 && wt[0] < 32768 && wt[1] < 32768 && wt[2] < 32768 && wt[3] < 32768;
        if (sizeof(T) == 1) fast = fast && ((int64_t{255} * 16385) << gain) >> shift < 32768;
    }
    const __m128i wTop = pairOf(wt[0], wt[1]), wBot = pairOf(wt[2], wt[3]);
    const float f[4] = {static_cast<float>(wt[0]) * (1.0f / 16384.0f), static_cast<float>(wt[1]) * (1.0f / 16384.0f),
                        static_cast<float>(wt[2]) * (1.0f / 16384.0f), static_cast<float>(wt[3]) * (1.0f / 16384.0f)};
    const __m128 wf[4] = {_mm_set1_ps(f[0]), _mm_set1_ps(f[1]), _mm_set1_ps(f[2]), _mm_set1_ps(f[3])};
    const auto load = [](const T* p) {
        if constexpr (sizeof(T) == 1)
            return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)), _mm_setzero_si128());
        else
            return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    };
    constexpr int kLanes = kInt ? 8 : 4;
    // Columns k with x0 + k + kLanes <= w - 1 read only inside the image.
    const int vecEnd = fast ? (w - 1 - x0 < nw ? w - 1 - x0 : nw) : 0;
    for (int j = 0; j < nh; ++j) {
        const T* r0 = rowPtr(img, step, clampTo(int64_t{y0} + j, h));
        const T* r1 = rowPtr(img, step, clampTo(int64_t{y0} + j + 1, h));
        P* o = out + static_cast<ptrdiff_t>(j) * pitch;
        int k = 0;
        if (vecEnd >= kLanes) {
            const T* a = r0 + x0;
            const T* b = r1 + x0;
            if constexpr (kInt) {
                if constexpr (sizeof(T) <= 2) {
                    for (; k + 8 <= vecEnd; k += 8)
                        madd8<R>(o + k, load(a + k), load(a + k + 1), load(b + k), load(b + k + 1), wTop, wBot, shift, gain);
                }
            } else {
                for (; k + 4 <= vecEnd; k += 4)
                    _mm_storeu_ps(o + k, blend4(load4f(a + k), load4f(a + k + 1), load4f(b + k), load4f(b + k + 1), wf));
            }
            if (k < nw && nw <= vecEnd) {  // the last lanes again, overlapping
                k = nw - kLanes;
                if constexpr (kInt) {
                    if constexpr (sizeof(T) <= 2)
                        madd8<R>(o + k, load(a + k), load(a + k + 1), load(b + k), load(b + k + 1), wTop, wBot, shift, gain);
                } else {
                    _mm_storeu_ps(o + k, blend4(load4f(a + k), load4f(a + k + 1), load4f(b + k), load4f(b + k + 1), wf));
                }
                k = nw;
            }
        }
        for (; k < nw; ++k) {
            const int xa = clampTo(int64_t{x0} + k, w), xb = clampTo(int64_t{x0} + k + 1, w);
            if constexpr (kInt) {
                const int64_t v = (int64_t{wt[0]} * r0[xa] + int64_t{wt[1]} * r0[xb] + int64_t{wt[2]} * r1[xa] +
                                   int64_t{wt[3]} * r1[xb]) * (int64_t{1} << gain);
                if constexpr (R == Round::HalfUp)
                    o[k] = saturate<P>((v + (int64_t{1} << (shift - 1))) >> shift);
                else
                    o[k] = saturate<P>(scaleRound(v, shift));
            } else {
                const float top = f[0] * static_cast<float>(r0[xa]) + f[1] * static_cast<float>(r0[xb]);
                const float bottom = f[2] * static_cast<float>(r1[xa]) + f[3] * static_cast<float>(r1[xb]);
                o[k] = top + bottom;
            }
        }
    }
}

}  // namespace sampler
}  // namespace rvcv

#endif  // RVCV_SAMPLER_H
