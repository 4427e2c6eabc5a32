// Reference Canny detector, straight from the rules: a framed magnitude
// plane, the four-sector test pixel by pixel, seeds above the high
// threshold, and a breadth-first walk through 8-connected candidates.
#ifndef RVPCV_REF_CANNY_H
#define RVPCV_REF_CANNY_H

#include <cmath>
#include <cstdint>
#include <cstring>
#include <deque>
#include <functional>
#include <vector>

namespace ref {

inline float floatFromBits(uint32_t u) {
    float f;
    std::memcpy(&f, &u, 4);
    return f;
}
inline bool signOf(float v) { return std::signbit(v); }
inline bool signOf(int16_t v) { return v < 0; }

// Float to int32 by truncation; NaN and out-of-range values give INT32_MIN.
inline int32_t truncate32(float t) {
    if (!(t > -2147483648.5f && t < 2147483648.0f)) return INT32_MIN;
    return static_cast<int32_t>(t);
}

// Edge map (0xFF / 0) of a w x h image whose derivatives are read through
// dx(x, y) and dy(x, y). Magnitudes are held as doubles: every int32 and
// float value and every comparison between them survives unchanged.
template <class T>
std::vector<uint8_t> canny(int w, int h, const std::function<T(int, int)>& dx, const std::function<T(int, int)>& dy,
                           float lowThresh, float highThresh) {
    constexpr bool integer = sizeof(T) == 2;
    const double low = integer ? truncate32(lowThresh) : lowThresh;
    const double high = integer ? truncate32(highThresh) : highThresh;
    std::vector<double> mag(static_cast<size_t>(w + 2) * (h + 2), 0.0);
    auto M = [&](int x, int y) -> double& { return mag[static_cast<size_t>(y + 1) * (w + 2) + (x + 1)]; };
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            if (integer) {
                long s = std::labs(static_cast<long>(dx(x, y))) + std::labs(static_cast<long>(dy(x, y)));
                if (x < (w & ~7) && s > 65535) s = 65535;  // saturating columns
                M(x, y) = s > low ? static_cast<double>(s) : 0.0;
            } else {
                const float s = std::fabs(std::fabs(static_cast<float>(dx(x, y))) + std::fabs(static_cast<float>(dy(x, y))));
                M(x, y) = s < static_cast<float>(low) ? 0.0 : s;
            }
        }
    const float k1 = floatFromBits(0x3ED413CDu), k2 = floatFromBits(0x401A827Au);
    std::vector<uint8_t> cand(static_cast<size_t>(w) * h, 0), out(static_cast<size_t>(w) * h, 0);
    std::deque<std::pair<int, int>> queue;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const double m = M(x, y);
            const float a = std::fabs(static_cast<float>(dx(x, y))), b = std::fabs(static_cast<float>(dy(x, y)));
            const float ka = k2 * a, kb = k1 * a;
            bool pass;
            if (ka < b) pass = M(x, y - 1) < m && M(x, y + 1) <= m;
            else if (b < kb) pass = M(x - 1, y) < m && M(x + 1, y) <= m;
            else if (signOf(dx(x, y)) == signOf(dy(x, y))) pass = M(x - 1, y - 1) < m && M(x + 1, y + 1) < m;
            else pass = M(x + 1, y - 1) < m && M(x - 1, y + 1) < m;
            if (!pass) continue;
            cand[static_cast<size_t>(y) * w + x] = 1;
            if (m > high) {
                out[static_cast<size_t>(y) * w + x] = 0xFF;
                queue.push_back({x, y});
            }
        }
    while (!queue.empty()) {
        const auto [x, y] = queue.front();
        queue.pop_front();
        for (int ny = y - 1; ny <= y + 1; ++ny)
            for (int nx = x - 1; nx <= x + 1; ++nx) {
                if (nx < 0 || ny < 0 || nx >= w || ny >= h) continue;
                const size_t i = static_cast<size_t>(ny) * w + nx;
                if (cand[i] && !out[i]) {
                    out[i] = 0xFF;
                    queue.push_back({nx, ny});
                }
            }
    }
    return out;
}

}  // namespace ref

#endif
