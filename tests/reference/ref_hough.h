// Naive model of the Hough line transform: a full accumulator over every
// angle and distance bin, then the peak test and the bounded list, angle by
// angle, straight from the header's rules.
#ifndef RVTEST_REF_HOUGH_H
#define RVTEST_REF_HOUGH_H

#include <cmath>
#include <cstdint>
#include <vector>

#include "rvpcv.h"

namespace ref {

struct HoughRegion {
    bool on = false;
    float thetaLo = 0, thetaHi = 0, rhoLo = 0, rhoHi = 0;
};

inline std::vector<RvpPointPolar> hough(const std::vector<uint8_t>& img, int W, int H, RvpPointPolar delta, int threshold,
                                        int maxLines, const HoughRegion& region) {
    const int numRho = static_cast<int>(static_cast<float>(2 * (W + H) + 1) / delta.rho);
    const int numTheta = static_cast<int>(3.14159 / static_cast<double>(delta.theta)) + 1;
    const int half = numRho < 1 ? numRho >> 1 : (numRho - 1) >> 1;
    const double scale = static_cast<double>(1.0f / delta.rho) * 1024.0;
    std::vector<int> cosT(numTheta), sinT(numTheta);
    std::vector<float> angle(numTheta);
    for (int t = 0; t < numTheta; ++t) {
        angle[t] = t == 0 ? 0.0f : t == 1 ? delta.theta : angle[t - 2] + delta.theta * 2.0f;
        cosT[t] = static_cast<int>(std::cos(static_cast<double>(angle[t])) * scale);
        sinT[t] = static_cast<int>(std::sin(static_cast<double>(angle[t])) * scale);
    }
    const auto inside = [&](int t) {
        if (t < 0 || t >= numTheta) return false;
        const float a = static_cast<float>(t) * delta.theta;
        return !region.on || (region.thetaLo <= a && a <= region.thetaHi);
    };
    const int64_t binLo = static_cast<int64_t>(region.rhoLo / delta.rho + static_cast<float>(half));
    const int64_t binHi = static_cast<int64_t>(static_cast<float>(half) + region.rhoHi / delta.rho);
    std::vector<std::vector<int>> votes(numTheta, std::vector<int>(numRho, 0));
    for (int t = 0; t < numTheta; ++t) {
        if (!inside(t)) continue;
        for (int y = 0; y < H; ++y)
            for (int x = 0; x < W; ++x) {
                if (!img[static_cast<size_t>(y) * W + x]) continue;
                int64_t bin;
                if (!region.on) {
                    const float v = static_cast<float>(x) * static_cast<float>(cosT[t]) + static_cast<float>(y) * static_cast<float>(sinT[t]);
                    bin = ((static_cast<int64_t>(static_cast<int32_t>(v)) + 512) >> 10) + half;
                } else {
                    const int32_t v = static_cast<int32_t>(static_cast<uint32_t>(x) * static_cast<uint32_t>(cosT[t]) +
                                                           static_cast<uint32_t>(y) * static_cast<uint32_t>(sinT[t]) + 512u);
                    bin = (v >> 10) + half;
                    if (bin < binLo || bin > binHi) continue;
                }
                if (bin >= 0 && bin < numRho) ++votes[t][bin];
            }
    }
    struct Entry { int bin, t, votes; };
    std::vector<Entry> list(maxLines, Entry{0, 0, 0});
    int count = 0, cutoff = 0;
    const auto at = [&](int t, int r) { return inside(t) && r >= 0 && r < numRho ? votes[t][r] : 0; };
    for (int t = 0; t < numTheta; ++t) {
        if (!inside(t)) continue;
        std::vector<Entry> found;
        for (int r = 0; r < numRho; ++r) {
            const int v = votes[t][r];
            if (v > threshold && v >= cutoff && at(t, r - 1) < v && at(t - 1, r) < v && at(t, r + 1) <= v && at(t + 1, r) <= v)
                found.push_back({r, t, v});
        }
        for (const Entry& e : found) {
            if (count < maxLines) ++count;
            else if (t != numTheta - 1) cutoff = list[count - 1].votes;
            int p = 0;
            while (p < maxLines && list[p].votes >= e.votes) ++p;
            if (p == maxLines) continue;
            list.insert(list.begin() + p, e);
            list.pop_back();
        }
    }
    std::vector<RvpPointPolar> out;
    for (int i = 0; i < count; ++i)
        out.push_back({static_cast<float>(list[i].bin - half) * delta.rho, static_cast<float>(list[i].t) * delta.theta});
    return out;
}

}  // namespace ref

#endif  // RVTEST_REF_HOUGH_H
