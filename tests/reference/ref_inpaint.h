// Reference model of inpainting, straight from the rules: whole-image
// planes, the work region ignored (it cannot change a result), a fill list
// sorted by (distance, index) and the two weightings written out.
#ifndef RVPCV_REF_INPAINT_H
#define RVPCV_REF_INPAINT_H

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <tuple>
#include <vector>

namespace ref {

inline float refinedRsqrt(float s) {
    const float y = 1.0f / std::sqrt(s);
    return y * -0.5f * (s * y * y - 3.0f);
}

// img: w x h x C packed, edited in place; mask nonzero = to fill; dist: w x h.
inline void inpaint(std::vector<uint8_t>& img, int w, int h, int C, const std::vector<uint8_t>& mask,
                    const std::vector<float>& dist, float radius, int method) {
    int x0 = w, y0 = h, x1 = -1, y1 = -1;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            if (mask[y * w + x]) x0 = std::min(x0, x), x1 = std::max(x1, x), y0 = std::min(y0, y), y1 = std::max(y1, y);
    if (x1 < 0) return;
    const int r = static_cast<int>(radius);
    const int wx = std::max(0, x0 - r - 1), wy = std::max(0, y0 - r - 1);
    const int ww = std::min(w - 1, x1 + r + 1) - wx + 1, wh = std::min(h - 1, y1 + r + 1) - wy + 1;
    std::vector<uint8_t> known(static_cast<size_t>(ww) * wh);
    for (int y = 0; y < wh; ++y)
        for (int x = 0; x < ww; ++x) known[y * ww + x] = !mask[(wy + y) * w + wx + x];
    const auto I = [&](int x, int y, int c) { return static_cast<int>(img[((wy + y) * w + wx + x) * C + c]); };
    const auto T = [&](int x, int y) { return dist[(wy + y) * w + wx + x]; };
    const auto K = [&](int x, int y) { return x >= 0 && y >= 0 && x < ww && y < wh && known[y * ww + x]; };
    // Gradient along an axis from known samples (all samples with `all`).
    const auto axis = [&](auto get, auto kn, int i, int n, bool all) {
        const bool l = i > 0 && (all || kn(i - 1)), r2 = i + 1 < n && (all || kn(i + 1)), c = all || kn(i);
        if (n == 1) return 0;
        if (method == 0) {
            if (l && r2) return (get(i + 1) - get(i - 1)) * 2;
            if (!c) return 0;
            return r2 ? get(i + 1) - get(i) : l ? get(i) - get(i - 1) : 0;
        }
        if (!c) return l && r2 ? std::abs(get(i + 1) - get(i - 1)) : 0;
        if (l && r2) return std::abs(get(i + 1) - get(i)) + std::abs(get(i) - get(i - 1));
        return r2 ? 2 * std::abs(get(i + 1) - get(i)) : l ? 2 * std::abs(get(i) - get(i - 1)) : 0;
    };
    std::vector<int> gx(static_cast<size_t>(ww) * wh * C), gy(gx.size());
    const auto gradAt = [&](int x, int y, bool all) {
        for (int c = 0; c < C; ++c) {
            gx[(y * ww + x) * C + c] = axis([&](int j) { return I(j, y, c); }, [&](int j) { return K(j, y); }, x, ww, all);
            gy[(y * ww + x) * C + c] = axis([&](int j) { return I(x, j, c); }, [&](int j) { return K(x, j); }, y, wh, all);
        }
    };
    const auto nearMask = [&](int x, int y, int d, bool square) {
        for (int dy = -d; dy <= d; ++dy)
            for (int dx = -d; dx <= d; ++dx) {
                if (!square && dx && dy) continue;
                const int qx = std::clamp(x + dx, 0, ww - 1), qy = std::clamp(y + dy, 0, wh - 1);
                if (!known[qy * ww + qx]) return true;
            }
        return false;
    };
    for (int y = 0; y < wh; ++y)
        for (int x = 0; x < ww; ++x)
            if (known[y * ww + x] && nearMask(x, y, r, true)) gradAt(x, y, true);
    for (int y = 0; y < wh; ++y)
        for (int x = 0; x < ww; ++x)
            if (known[y * ww + x] && nearMask(x, y, 1, false)) gradAt(x, y, false);
    const auto distGrad = [&](int x, int y, bool horizontal) {
        const int i = horizontal ? x : y, n = horizontal ? ww : wh;
        const auto t = [&](int j) { return horizontal ? T(j, y) : T(x, j); };
        const float d = n == 1 ? 0.0f : i == 0 ? t(1) - t(0) : i == n - 1 ? t(n - 1) - t(n - 2) : (t(i + 1) - t(i - 1)) * 2.0f;
        const float v = d * 64.0f;
        return !(v == v) ? 0.0f : v >= 32767.0f ? 32767.0f : v <= -32768.0f ? -32768.0f : static_cast<float>(std::lrint(v));
    };
    std::vector<std::tuple<float, int>> order;
    for (int y = 0; y < wh; ++y)
        for (int x = 0; x < ww; ++x)
            if (!known[y * ww + x] && T(x, y) > 0) order.emplace_back(T(x, y), y * ww + x);
    std::sort(order.begin(), order.end());
    for (const auto& e : order) {
        const int x = std::get<1>(e) % ww, y = std::get<1>(e) / ww;
        float g0 = 0, g1 = 0;
        int sx = 0, sy = 0;
        for (int c = 0; c < C; ++c) sx += gx[(y * ww + x) * C + c], sy += gy[(y * ww + x) * C + c];
        if (method == 0) g0 = distGrad(x, y, true), g1 = distGrad(x, y, false);
        else g0 = static_cast<float>(sx), g1 = static_cast<float>(sy);
        const int gsq = sx * sx + sy * sy;
        const float invGrad = gsq ? refinedRsqrt(static_cast<float>(gsq)) : 0.0f;
        float s = 1e-30f, ia[3] = {}, jx[3] = {}, jy[3] = {};
        for (int dy = -r; dy <= r; ++dy)
            for (int dx = -r; dx <= r; ++dx) {
                const float sq = static_cast<float>(dx * dx + dy * dy);
                if ((!dx && !dy) || sq > radius * radius || !K(x + dx, y + dy)) continue;
                const float inv = refinedRsqrt(sq);
                const int ndx = -dx, ndy = -dy;
                float wgt;
                if (method == 0) {
                    float dot = g0 * static_cast<float>(ndx) + g1 * static_cast<float>(ndy);
                    if (std::fabs(dot) < 2.5e-25f) dot = 2.5e-25f;
                    wgt = std::fabs((0.00024414062f / (std::fabs(T(x + dx, y + dy) - T(x, y)) + 1.0f)) * (inv * inv * inv) * dot);
                } else {
                    const int dot = std::abs(ndx * sx + ndy * sy);
                    wgt = dot == 0 ? 1e-6f : static_cast<float>(dot) * invGrad * (inv / (sq * sq + 1.0f));
                }
                s += wgt;
                for (int c = 0; c < C; ++c) {
                    ia[c] += static_cast<float>(I(x + dx, y + dy, c)) * wgt;
                    if (method == 0) {
                        const size_t q = ((y + dy) * ww + x + dx) * C + c;
                        jx[c] -= static_cast<float>(gx[q]) * static_cast<float>(ndx) * wgt;
                        jy[c] -= static_cast<float>(gy[q]) * static_cast<float>(ndy) * wgt;
                    }
                }
            }
        if (s < 0.0001f) {
            int n = 0;
            float a[3] = {};
            const int nx[4] = {x, x - 1, x + 1, x}, ny[4] = {y - 1, y, y, y + 1};
            for (int k = 0; k < 4; ++k)
                if (K(nx[k], ny[k])) {
                    ++n;
                    for (int c = 0; c < C; ++c) a[c] += static_cast<float>(I(nx[k], ny[k], c));
                }
            s = n ? static_cast<float>(n) : 1e-30f;
            for (int c = 0; c < C; ++c) ia[c] = a[c], jx[c] = jy[c] = 0;
        }
        for (int c = 0; c < C; ++c) {
            float v = ia[c] / s + 0.5f;
            if (method == 0) v += (jx[c] + jy[c]) / (std::sqrt(jx[c] * jx[c] + jy[c] * jy[c]) + 1e-20f);
            img[((wy + y) * w + wx + x) * C + c] = static_cast<uint8_t>(!(v > 0) ? 0 : v >= 255 ? 255 : static_cast<int>(v));
        }
        known[y * ww + x] = 1;
        gradAt(x, y, false);
        if (x > 0) gradAt(x - 1, y, false);
        if (x + 1 < ww) gradAt(x + 1, y, false);
        if (y > 0) gradAt(x, y - 1, false);
        if (y + 1 < wh) gradAt(x, y + 1, false);
    }
}

}  // namespace ref

#endif
