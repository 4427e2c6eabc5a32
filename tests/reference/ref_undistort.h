// Reference models of lens undistortion and the super-resolution loops,
// straight from the element rules, one pixel or one sample at a time.
#ifndef RVPCV_REF_UNDISTORT_H
#define RVPCV_REF_UNDISTORT_H

#include <cstdint>
#include <vector>

namespace ref {

struct Lens { float fx, fy, cx, cy, k1, k2, p1, p2; };

// Source point of destination pixel (x, y) under the radial model.
inline void radialPoint(const Lens& l, int x, int y, float& u, float& v) {
    const float a = 1.0f / (l.fx * l.fx), b = 1.0f / (l.fy * l.fy);
    const float fy_ = static_cast<float>(y), fx_ = static_cast<float>(x);
    const float dy = fy_ - l.cy;
    const float yy = b * dy * dy;
    const float A = 2.0f * l.k2 * yy;
    const float B = (l.k2 * yy + l.k1) * yy;
    const float dx = fx_ - l.cx;
    const float xx = a * dx * dx;
    const float m = (l.k2 * xx + l.k1) * xx + A * xx + B;
    u = dx * m + fx_;
    v = dy * m + fy_;
}

inline void tangentialPoint(const Lens& l, int x, int y, float& u, float& v) {
    const float ifx = 1.0f / l.fx, ify = 1.0f / l.fy, Fx = l.fx * l.p2, Fy = l.fy * l.p1;
    const float fy_ = static_cast<float>(y), fx_ = static_cast<float>(x);
    const float dy = fy_ - l.cy, yn = dy * ify, yy = yn * yn, T = yn * (2.0f * l.p1);
    const float dx = fx_ - l.cx, xn = dx * ifx;
    const float r2 = xn * xn + yy;
    const float m = (l.k2 * r2 + l.k1) * r2 + xn * (2.0f * l.p2) + T;
    u = m * dx + (Fx * r2 + fx_);
    v = m * dy + r2 * Fy + fy_;
}

// One destination pixel of the radial resampling; false: not written.
// at(x, y, c) reads the source.
template <class T, class At>
bool undistortPixel(const Lens& l, int w, int h, int x, int y, int channels, At at, T* out) {
    float u, v;
    radialPoint(l, x, y, u, v);
    if (!(0.0f <= u && 0.0f <= v && u < static_cast<float>(w - 1) && v < static_cast<float>(h - 1))) return false;
    const int iu = static_cast<int>(u), iv = static_cast<int>(v);
    const float fu = u - static_cast<float>(iu), fv = v - static_cast<float>(iv);
    for (int c = 0; c < channels; ++c) {
        const float s00 = static_cast<float>(at(iu, iv, c)), s10 = static_cast<float>(at(iu + 1, iv, c));
        const float s01 = static_cast<float>(at(iu, iv + 1, c)), s11 = static_cast<float>(at(iu + 1, iv + 1, c));
        const float t11 = s11 * fv * fu, t01 = s01 * (1 - fu) * fv;
        const float t10 = s10 * fu * (1 - fv), t00 = s00 * (1 - fv) * (1 - fu);
        if (sizeof(T) == 4) out[c] = static_cast<T>(t11 + t01 + t10 + t00);
        else out[c] = static_cast<T>(static_cast<int>((t11 + t01) + (t10 + t00) + 0.5f));
    }
    return true;
}

// Super-resolution: taps per side n (2 or 3), coefficients of an entry given
// row by row (n * n floats).
inline float srResidual(const float* h, int64_t s, int n, const float* c, float sample) {
    float sum = 0.0f;
    bool first = true;
    for (int j = 0; j < n; ++j)
        for (int k = 0; k < n; ++k) {
            const float t = h[j * s + k] * c[j * n + k];
            sum = first ? t : sum + t;
            first = false;
        }
    return sum - sample;
}

inline void srUpdate(float* g, int64_t s, int n, const float* c, float f) {
    for (int j = 0; j < n; ++j)
        for (int k = 0; k < n; ++k) g[j * s + k] = c[j * n + k] * f + g[j * s + k];
}

}  // namespace ref

#endif
