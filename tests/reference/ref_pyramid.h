// Naive models of the pyramid layers and the sub-pixel samplers, one sample
// at a time, straight from the header's rules.
#ifndef RVTEST_REF_PYRAMID_H
#define RVTEST_REF_PYRAMID_H

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <vector>

namespace ref {

inline int clampi(int64_t v, int n) { return static_cast<int>(v < 0 ? 0 : v >= n ? n - 1 : v); }

template <class T> T satTo(int64_t v) {
    const int64_t lo = std::numeric_limits<T>::min(), hi = std::numeric_limits<T>::max();
    return static_cast<T>(std::min(hi, std::max(lo, v)));
}

inline int64_t roundEven(int64_t v, int s) {  // v / 2^s to nearest, ties to even
    if (s <= 0) return v * (int64_t{1} << -s);
    const int64_t q = v >> s, r = v - (q << s), half = int64_t{1} << (s - 1);
    return r > half || (r == half && (q & 1)) ? q + 1 : q;
}

// The four 14-bit weights of fractions a, b.
inline void weights14(int a, int b, int64_t w[4]) {
    const int64_t x0 = 16384 - a, y0 = 16384 - b;
    w[0] = (y0 * x0 + 8192) >> 14, w[1] = (y0 * a + 8192) >> 14, w[2] = (b * x0 + 8192) >> 14, w[3] = (int64_t{b} * a + 8192) >> 14;
}

// One bilinear sample of img (w x h, pitch in elements) with top-left (x0, y0).
template <class T, class D>
D bilinearAt(const T* img, int pitch, int w, int h, int64_t x0, int64_t y0, int a, int b, int scaleFactor) {
    int64_t wt[4];
    weights14(a, b, wt);
    const auto at = [&](int64_t x, int64_t y) { return img[static_cast<size_t>(clampi(y, h)) * pitch + clampi(x, w)]; };
    if constexpr (std::is_integral<D>::value) {
        const int64_t v = wt[0] * at(x0, y0) + wt[1] * at(x0 + 1, y0) + wt[2] * at(x0, y0 + 1) + wt[3] * at(x0 + 1, y0 + 1);
        return satTo<D>(roundEven(v, 14 + scaleFactor));
    } else {
        const float f0 = wt[0] / 16384.0f, f1 = wt[1] / 16384.0f, f2 = wt[2] / 16384.0f, f3 = wt[3] / 16384.0f;
        return f0 * static_cast<float>(at(x0, y0)) + f1 * static_cast<float>(at(x0 + 1, y0)) +
               (f2 * static_cast<float>(at(x0, y0 + 1)) + f3 * static_cast<float>(at(x0 + 1, y0 + 1)));
    }
}

// A layer's kernel as stored (K weights), applied with the layer's arithmetic.
template <class T> using Acc = typename std::conditional<std::is_same<T, float>::value, float, int64_t>::type;

template <class T, class K, class Get>
Acc<T> taps(const K* w, int n, Get&& get) {
    if constexpr (std::is_same<T, float>::value) {
        float acc = w[0] * get(0);
        for (int i = 1; i < n; ++i) acc += w[i] * get(i);
        return acc;
    } else {
        int64_t acc = 0;
        for (int i = 0; i < n; ++i) acc += int64_t{w[i]} * get(i);
        return (acc + 4096) >> 13;
    }
}
template <class T> T toT(Acc<T> v) {
    if constexpr (std::is_same<T, float>::value) return v;
    else return satTo<T>(v);
}

inline int downPos(int x, float rate, int limit) {
    const bool two = rate > 1.99998f && rate < 2.00002f;
    const int64_t p = two ? 2 * int64_t{x} : static_cast<int64_t>(std::floor(double(x) * rate + 0.5));
    return static_cast<int>(std::min<int64_t>(p, limit - 1));
}

// Down: filtered at the nearest source positions, rows of columns first.
template <class T, class K>
std::vector<T> layerDown(const std::vector<T>& s, int W, int H, int C, const K* w, int n, float rate, int dw, int dh) {
    std::vector<T> out(static_cast<size_t>(dw) * dh * C);
    const int h = n / 2;
    for (int y = 0; y < dh; ++y)
        for (int x = 0; x < dw; ++x)
            for (int c = 0; c < C; ++c) {
                const int cx = downPos(x, rate, W), cy = downPos(y, rate, H);
                const auto col = [&](int i) {
                    const int xs = clampi(int64_t{cx} + i - h, W);
                    return taps<T>(w, n, [&](int j) { return s[(static_cast<size_t>(clampi(int64_t{cy} + j - h, H)) * W + xs) * C + c]; });
                };
                out[(static_cast<size_t>(y) * dw + x) * C + c] = toT<T>(taps<T>(w, n, col));
            }
    return out;
}

// Up: filtered along rows then columns (saturated), then bilinear at x / rate.
template <class T, class K>
std::vector<T> layerUp(const std::vector<T>& s, int W, int H, int C, const K* w, int n, float rate, int dw, int dh) {
    using F = typename std::conditional<std::is_same<T, float>::value, float, int64_t>::type;
    const int h = n / 2;
    std::vector<F> rows(static_cast<size_t>(W) * H * C), g(rows.size());
    for (int y = 0; y < H; ++y)
        for (int x = 0; x < W; ++x)
            for (int c = 0; c < C; ++c) {
                F v = taps<T>(w, n, [&](int i) { return s[(static_cast<size_t>(y) * W + clampi(int64_t{x} + i - h, W)) * C + c]; });
                if constexpr (!std::is_same<T, float>::value) v = std::min<int64_t>(INT32_MAX, std::max<int64_t>(INT32_MIN, v));
                rows[(static_cast<size_t>(y) * W + x) * C + c] = v;
            }
    for (int y = 0; y < H; ++y)
        for (int x = 0; x < W * C; ++x)
            g[static_cast<size_t>(y) * W * C + x] =
                toT<T>(taps<T>(w, n, [&](int j) { return rows[static_cast<size_t>(clampi(int64_t{y} + j - h, H)) * W * C + x]; }));
    const auto place = [&](int x, int limit, int& i0, int& a) {
        const double u = double(x) / double(rate), f = std::floor(u);
        i0 = static_cast<int>(f);
        a = static_cast<int>((u - f) * 16384.0 + 0.5);
        if (a == 16384) ++i0, a = 0;
        i0 = std::min(i0, limit - 1);
    };
    std::vector<T> out(static_cast<size_t>(dw) * dh * C);
    for (int y = 0; y < dh; ++y)
        for (int x = 0; x < dw; ++x) {
            int i0, a, j0, b;
            place(x, W, i0, a);
            place(y, H, j0, b);
            for (int c = 0; c < C; ++c) {
                // A plane of one channel, read through the sampler model.
                std::vector<F> p(4);
                const int i1 = std::min(i0 + 1, W - 1), j1 = std::min(j0 + 1, H - 1);
                p[0] = g[(static_cast<size_t>(j0) * W + i0) * C + c], p[1] = g[(static_cast<size_t>(j0) * W + i1) * C + c];
                p[2] = g[(static_cast<size_t>(j1) * W + i0) * C + c], p[3] = g[(static_cast<size_t>(j1) * W + i1) * C + c];
                out[(static_cast<size_t>(y) * dw + x) * C + c] = bilinearAt<F, T>(p.data(), 2, 2, 2, 0, 0, a, b, 0);
            }
        }
    return out;
}

}  // namespace ref

#endif  // RVTEST_REF_PYRAMID_H
