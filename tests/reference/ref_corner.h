// Reference corner responses: derivatives and box means from the library's
// own public filters (replicated border, each into its own image), then the
// finishing formulas written out pixel by pixel in float.
#ifndef RVPCV_REF_CORNER_H
#define RVPCV_REF_CORNER_H

#include <cmath>
#include <vector>

#include "rvpcv.h"

namespace ref {

struct Corner {
    int kernType, aperture, avg;
};

inline float cornerScale(const Corner& k) {
    float s = 1.0f / static_cast<float>((1 << (2 * k.aperture - 2)) * 255);
    return k.kernType == 1 ? s * 0.6125f : s;
}

// Smoothed dx^2, dy^2, dx dy of a w x h image (tight rows).
struct Tensor {
    std::vector<float> a, b, c;
};

template <class T>
Tensor cornerTensor(const T* src, int srcStep, int w, int h, const Corner& k) {
    using D = typename std::conditional<std::is_same<T, Rvp8u>::value, Rvp16s, Rvp32f>::type;
    const RvpiSize roi{w, h};
    const size_t n = static_cast<size_t>(w) * h;
    std::vector<D> dx(n), dy(n);
    std::vector<Rvp8u> buf(1 << 22);
    const int ds = w * static_cast<int>(sizeof(D)), m = k.aperture * 11;
    if constexpr (std::is_same<T, Rvp8u>::value) {
        if (k.kernType == 0) {
            rvpiFilterSobelVertBorder_8u16s_C1R(src, srcStep, dx.data(), ds, roi, m, 1, 0, buf.data());
            rvpiFilterSobelHorizBorder_8u16s_C1R(src, srcStep, dy.data(), ds, roi, m, 1, 0, buf.data());
        } else {
            rvpiFilterScharrVertBorder_8u16s_C1R(src, srcStep, dx.data(), ds, roi, 1, 0, buf.data());
            rvpiFilterScharrHorizBorder_8u16s_C1R(src, srcStep, dy.data(), ds, roi, 1, 0, buf.data());
        }
    } else {
        if (k.kernType == 0) {
            rvpiFilterSobelVertBorder_32f_C1R(src, srcStep, dx.data(), ds, roi, m, 1, 0, buf.data());
            rvpiFilterSobelHorizBorder_32f_C1R(src, srcStep, dy.data(), ds, roi, m, 1, 0, buf.data());
        } else {
            rvpiFilterScharrVertBorder_32f_C1R(src, srcStep, dx.data(), ds, roi, 1, 0, buf.data());
            rvpiFilterScharrHorizBorder_32f_C1R(src, srcStep, dy.data(), ds, roi, 1, 0, buf.data());
        }
    }
    std::vector<float> xx(n), yy(n), xy(n);
    for (size_t i = 0; i < n; ++i) {
        const float fx = static_cast<float>(dx[i]), fy = static_cast<float>(dy[i]);
        xx[i] = fx * fx, yy[i] = fy * fy, xy[i] = fx * fy;
    }
    Tensor t{std::vector<float>(n), std::vector<float>(n), std::vector<float>(n)};
    const int fs = w * 4, am = k.avg * 11;
    rvpiFilterLowpassBorder_32f_C1R(xx.data(), fs, t.a.data(), fs, roi, am, 1, 0, buf.data());
    rvpiFilterLowpassBorder_32f_C1R(yy.data(), fs, t.b.data(), fs, roi, am, 1, 0, buf.data());
    rvpiFilterLowpassBorder_32f_C1R(xy.data(), fs, t.c.data(), fs, roi, am, 1, 0, buf.data());
    return t;
}

// Smaller eigenvalue, scaled once at the end.
inline std::vector<float> minEigenVal(const Tensor& t, const Corner& k) {
    const float half = cornerScale(k) * 0.5f;
    std::vector<float> out(t.a.size());
    for (size_t i = 0; i < out.size(); ++i) {
        const float a = t.a[i], b = t.b[i], c = t.c[i];
        out[i] = ((a + b) - std::sqrt((a - b) * (a - b) + c * c * 4.0f)) * half;
    }
    return out;
}

// l1, l2, x1, y1, x2, y2 per pixel, on the scaled tensor.
inline std::vector<float> eigenValsVecs(const Tensor& t, const Corner& k) {
    const float s = cornerScale(k), g = k.kernType == 0 ? -1.0f : 1.0f, eps = 1.1920929e-07f;
    std::vector<float> out(t.a.size() * 6, 0.0f);
    for (size_t i = 0; i < t.a.size(); ++i) {
        float* o = &out[i * 6];
        const float a = t.a[i] * s, b = t.b[i] * s, c = t.c[i] * s;
        const float e = std::max(a, b) * 0.01f;
        const float d = std::sqrt(c * 4.0f * c + (a - b) * (a - b));
        const float l2 = ((a + b) - d) * 0.5f, l1 = ((a + b) + d) * 0.5f;
        if (std::min(a, b) < e || a * b - c * c < e) continue;
        if (std::fabs(c) < e) {
            o[0] = l1, o[1] = l2, o[2] = 1, o[5] = 1;
            continue;
        }
        const float cs = c * g, v1 = -(a - l1), v2 = -(a - l2);
        float n1 = std::sqrt(v1 * v1 + cs * cs), n2 = std::sqrt(cs * cs + v2 * v2);
        if (n1 < eps) n1 = eps;
        if (n2 < eps) n2 = eps;
        o[0] = l1, o[1] = l2, o[2] = cs * (1 / n1), o[3] = v1 * (1 / n1), o[4] = cs * (1 / n2), o[5] = v2 * (1 / n2);
    }
    return out;
}

}  // namespace ref

#endif
