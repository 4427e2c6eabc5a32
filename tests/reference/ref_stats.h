// Reference statistics: one plain pass in long double over the selected
// pixels of one channel, the deviation in a second pass around the mean.
#ifndef RVPCV_REF_STATS_H
#define RVPCV_REF_STATS_H

#include <cmath>
#include <cstdint>

namespace ref {

struct Stats {
    long double inf = 0, l1 = 0, l2sq = 0, sum = 0;
    double mean = 0, stdDev = 0;
    double lo = 0, hi = 0;
    int loX = -1, loY = -1, hiX = -1, hiY = -1;
    int64_t count = 0;
};

// a(x, y) and b(x, y) give the channel's samples (b null: zero); on(x, y)
// whether the pixel is selected.
template <class A, class B, class On> Stats stats(int w, int h, A a, B b, On on) {
    Stats s;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            if (!on(x, y)) continue;
            const long double d = static_cast<long double>(a(x, y)) - static_cast<long double>(b(x, y));
            ++s.count;
            s.sum += d;
            s.l1 += std::fabs(d);
            s.l2sq += d * d;
            if (std::fabs(d) > s.inf) s.inf = std::fabs(d);
            const double v = static_cast<double>(a(x, y));
            if (v != v) continue;
            if (s.loX < 0 || v < s.lo) s.lo = v, s.loX = x, s.loY = y;
            if (s.hiX < 0 || v > s.hi) s.hi = v, s.hiX = x, s.hiY = y;
        }
    if (s.count == 0) return s;
    const long double mu = s.sum / s.count;
    long double sq = 0;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            if (on(x, y)) {
                const long double d = static_cast<long double>(a(x, y)) - mu;
                sq += d * d;
            }
    s.mean = static_cast<double>(mu);
    s.stdDev = static_cast<double>(std::sqrt(sq / s.count));
    return s;
}

}  // namespace ref

#endif
