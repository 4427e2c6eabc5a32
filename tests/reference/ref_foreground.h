// Reference models of the mixture-of-Gaussians background model (records
// per pixel, an insertion sort, one pixel at a time, straight from the
// rules) and of the motion-history rule.
#ifndef RVPCV_REF_FOREGROUND_H
#define RVPCV_REF_FOREGROUND_H

#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

namespace ref {

template <int C> struct Gaussian {
    int32_t count = 0;
    double weight = 0, variance[C], mean[C];
};

template <int C> class GaussModel {
public:
    GaussModel(const uint8_t* src, int w, int h) : w_(w), h_(h), px_(static_cast<size_t>(w) * h) {
        for (size_t i = 0; i < px_.size(); ++i)
            for (int k = 0; k < 5; ++k) {
                Gaussian<C>& g = px_[i][k];
                g.count = k == 0;
                g.weight = k == 0 ? 1.0 : 0.0;
                for (int c = 0; c < C; ++c) {
                    g.variance[c] = 12.5;
                    g.mean[c] = k == 0 ? src[i * C + c] : 0.0;
                }
            }
    }
    // One frame of packed samples; writes the background and the mask.
    void frame(const uint8_t* src, uint8_t* bg, uint8_t* mask) {
        ++frames_;
        for (size_t i = 0; i < px_.size(); ++i) pixel(px_[i].data(), src + i * C, bg + i * C, mask[i]);
    }

private:
    static constexpr int H = 200;
    void pixel(Gaussian<C>* g, const uint8_t* I, uint8_t* bg, uint8_t& mask) {
        int match[5] = {};
        for (int k = 0; k < 5; ++k) {
            bool all = true;
            for (int c = 0; c < C; ++c) {
                const double d = g[k].mean[c] - I[c];
                all = all && d * d < g[k].variance[c] * 2.5 * 2.5;
            }
            if (all) { match[k] = 1; break; }
        }
        const auto move = [&](Gaussian<C>& q, double rho) {
            for (int c = 0; c < C; ++c) {
                const double d = I[c] - q.mean[c];
                q.mean[c] += d * rho;
                q.variance[c] += rho * (d * d - q.variance[c]);
            }
        };
        if (frames_ == H) {
            for (int k = 0; k < 5; ++k) {
                g[k].weight += (match[k] - g[k].weight) * (1.0 / H);
                if (match[k]) move(g[k], match[k] / (static_cast<double>(H) * g[k].weight));
            }
        } else {
            int n = 0;
            for (int k = 0; k < 5; ++k) n += g[k].count;
            for (int k = 0; k < 5; ++k) {
                g[k].count += match[k];
                g[k].weight += (match[k] - g[k].weight) * (1.0 / (n + 1));
                if (g[k].count > 0 && match[k]) move(g[k], 1.0 / g[k].count);
            }
        }
        if (!(match[0] | match[1] | match[2] | match[3] | match[4])) {
            g[4].count = 1;
            int n = 0;
            for (int k = 0; k < 5; ++k) n += g[k].count;
            g[4].weight = 1.0 / n;
            for (int c = 0; c < C; ++c) {
                g[4].variance[c] = 900.0;
                g[4].mean[c] = I[c];
            }
            for (int k = 0; k < 4; ++k) g[k].weight *= 1.0 - 1.0 / H;
        }
        double key[5];
        for (int k = 0; k < 5; ++k) {
            double v = g[k].variance[0];
            for (int c = 1; c < C; ++c) v = v + g[k].variance[c];
            key[k] = g[k].count >= 1 ? g[k].weight / std::sqrt(v) : 0.0;
        }
        for (int j = 1; j < 5; ++j)
            for (int m = j; m > 0 && key[m - 1] < key[m]; --m) {
                std::swap(key[m - 1], key[m]);
                std::swap(g[m - 1], g[m]);
            }
        for (int c = 0; c < C; ++c) bg[c] = static_cast<uint8_t>(static_cast<int>(g[0].mean[c] + 0.5));
        mask = 255;
        double sum = 0;
        for (int r = 0; r < 5; ++r) {
            sum += g[r].weight;
            if (match[r]) mask = 0;
            if (sum > 0.7) break;
        }
    }
    int w_, h_, frames_ = 0;
    std::vector<std::array<Gaussian<C>, 5>> px_;
};

inline float motionHistory(float s, float h, float timeStamp, float limit) {
    if (s != 0) return timeStamp;
    return limit <= h ? h : 0.0f;
}

}  // namespace ref

#endif
