// Reference Canny detector, straight from the rules: a framed magnitude
// plane, the four-sector test pixel by pixel, seeds above the high
// threshold, and a breadth-first walk through 8-connected candidates.
#ifndef RVPCV_REF_CANNY_H
#define RVPCV_REF_CANNY_H

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <deque>
#include <type_traits>
#include <vector>

namespace ref {

// Float to int32 by truncation; NaN and out-of-range values give INT_MIN.
inline int32_t truncate32(float t) { return std::fabs(t) < 2147483648.0f ? static_cast<int32_t>(t) : INT_MIN; }

// Edge map (0xFF / 0) of a w x h image with derivatives dx(x, y), dy(x, y).
// Magnitudes are held as doubles, which keep every int32 and float value.
template <class T, class F>
std::vector<uint8_t> canny(int w, int h, F dx, F dy, float lowThresh, float highThresh) {
    constexpr bool integer = std::is_integral<T>::value;
    const double low = integer ? truncate32(lowThresh) : lowThresh;
    const double high = integer ? truncate32(highThresh) : highThresh;
    std::vector<double> mag(static_cast<size_t>(w + 2) * (h + 2), 0.0);
    auto M = [&](int x, int y) -> double& { return mag[static_cast<size_t>(y + 1) * (w + 2) + (x + 1)]; };
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const float a = std::fabs(static_cast<float>(dx(x, y))), b = std::fabs(static_cast<float>(dy(x, y)));
            if (integer) {
                const double s = x < (w & ~7) ? std::min(a + b, 65535.0f) : a + b;  // saturating columns
                M(x, y) = s > low ? s : 0.0;
            } else {
                M(x, y) = a + b < static_cast<float>(low) ? 0.0 : std::fabs(a + b);
            }
        }
    float k1, k2;  // tan 22.5 and tan 67.5 as float bits
    const uint32_t b1 = 0x3ED413CDu, b2 = 0x401A827Au;
    std::memcpy(&k1, &b1, 4), std::memcpy(&k2, &b2, 4);
    std::vector<uint8_t> cand(static_cast<size_t>(w) * h, 0), out(cand.size(), 0);
    std::deque<std::pair<int, int>> queue;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const double m = M(x, y);
            const float a = std::fabs(static_cast<float>(dx(x, y))), b = std::fabs(static_cast<float>(dy(x, y)));
            bool pass;
            if (k2 * a < b) pass = M(x, y - 1) < m && M(x, y + 1) <= m;
            else if (b < k1 * a) pass = M(x - 1, y) < m && M(x + 1, y) <= m;
            else if (std::signbit(static_cast<float>(dx(x, y))) == std::signbit(static_cast<float>(dy(x, y))))
                pass = M(x - 1, y - 1) < m && M(x + 1, y + 1) < m;
            else pass = M(x + 1, y - 1) < m && M(x - 1, y + 1) < m;
            cand[static_cast<size_t>(y) * w + x] = pass;
            if (pass && m > high) out[static_cast<size_t>(y) * w + x] = 0xFF, queue.push_back({x, y});
        }
    for (; !queue.empty(); queue.pop_front())
        for (int ny = queue.front().second - 1; ny <= queue.front().second + 1; ++ny)
            for (int nx = queue.front().first - 1; nx <= queue.front().first + 1; ++nx) {
                const size_t i = static_cast<size_t>(ny) * w + nx;
                if (nx < 0 || ny < 0 || nx >= w || ny >= h || !cand[i] || out[i]) continue;
                out[i] = 0xFF;
                queue.push_back({nx, ny});
            }
    return out;
}

}  // namespace ref

#endif
