// Reference model of a Haar stage: the record order and corners built from
// the caller's arrays, and a stage evaluator that indexes the tables
// directly, with the arithmetic of each member.
#ifndef RVPCV_REF_HAAR_H
#define RVPCV_REF_HAAR_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

#include "rvpcv.h"

namespace ref {

template <class V> struct HaarInput {
    std::vector<RvpiRect> feature;
    std::vector<V> weight, thr, val1, val2;
    std::vector<int> num;
};

template <class V> struct Record {
    int index;
    bool tilted;
    std::vector<std::array<int, 8>> corners;  // ax, ay, bx, by, cx, cy, dx, dy
    std::vector<V> weight;
    V thr, val1, val2;
};

inline std::array<int, 8> haarCorners(const RvpiRect& r, bool tilted) {
    const int x = r.x, y = r.y, w = r.width, h = r.height;
    if (!tilted) return {x + w, y + h, x, y + h, x + w, y, x, y};
    return {x + w - h, y + w + h, x - h, y + h, x + w, y + w, x, y};
}

// Upright stages keep two-rectangle classifiers first, then three, then the
// rest; tilted stages keep the caller's order.
template <class V> std::vector<Record<V>> records(const HaarInput<V>& in, bool tilted) {
    std::vector<int> first(in.num.size() + 1, 0);
    for (size_t i = 0; i < in.num.size(); ++i) first[i + 1] = first[i] + in.num[i];
    std::vector<Record<V>> out;
    auto take = [&](size_t i) {
        Record<V> r{static_cast<int>(i), tilted, {}, {}, in.thr[i], in.val1[i], in.val2[i]};
        for (int k = first[i]; k < first[i + 1]; ++k) {
            r.corners.push_back(haarCorners(in.feature[k], tilted));
            r.weight.push_back(in.weight[k]);
        }
        out.push_back(r);
    };
    for (int group : {2, 3, 0})  // 0: the rest
        for (size_t i = 0; i < in.num.size(); ++i)
            if (tilted ? group == 0 : group ? in.num[i] == group : in.num[i] != 2 && in.num[i] != 3) take(i);
    return out;
}

enum class HaarKind { Int, MixedInt, Float };

inline int32_t w32(int64_t v) { return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(v))); }

// A table seen from the region's first position.
template <class T> struct Grid {
    const T* p;
    int stepEl;
    T at(int x, int y) const { return p[static_cast<ptrdiff_t>(y) * stepEl + x]; }
};

// Evaluates a stage. T: table element; N: norm element; V: values. For the
// mixed forms, tilted records read `tilt` (already moved one row down and
// one element right); otherwise every record reads `src`.
template <class T, class N, class V>
int stage(HaarKind kind, const std::vector<Record<V>>& recs, Grid<T> src, Grid<T> tilt, bool mixed, Grid<N> norm,
          std::vector<uint8_t>& mask, int width, int height, V stageThr, int scaleFactor) {
    int positive = 0;
    for (int j = 0; j < height; ++j)
        for (int i = 0; i < width; ++i) {
            uint8_t& m = mask[static_cast<size_t>(j) * width + i];
            if (!m) continue;
            V score = 0;
            for (const Record<V>& r : recs) {
                const Grid<T>& g = mixed && r.tilted ? tilt : src;
                int64_t ti = 0;
                float tf = 0;
                for (size_t k = 0; k < r.corners.size(); ++k) {
                    const auto& c = r.corners[k];
                    const T a = g.at(i + c[0], j + c[1]), b = g.at(i + c[2], j + c[3]), cc = g.at(i + c[4], j + c[5]),
                            d = g.at(i + c[6], j + c[7]);
                    if constexpr (std::is_same<T, float>::value) {
                        tf = tf + (((a - b) - cc) + d) * static_cast<float>(r.weight[k]);
                    } else {
                        const int32_t rs = w32(int64_t(w32(int64_t(a) - b)) - w32(int64_t(cc) - d));
                        if (kind == HaarKind::Float) tf = tf + static_cast<float>(rs) * static_cast<float>(r.weight[k]);
                        else if (kind == HaarKind::Int) ti = w32(ti + w32(int64_t(rs) * int64_t(r.weight[k])));
                        else ti += w32(int64_t(rs) * int64_t(r.weight[k]));
                    }
                }
                const N n = norm.at(i, j);
                bool below;
                if (kind == HaarKind::Float) below = !(static_cast<float>(r.thr) * static_cast<float>(n) <= tf);
                else if (kind == HaarKind::Int) below = ti < w32(int64_t(r.thr) * int64_t(n));
                else below = int64_t(uint64_t(ti) << (-scaleFactor)) < int64_t(r.thr) * int64_t(n);
                const V v = below ? r.val1 : r.val2;
                if constexpr (std::is_same<V, float>::value) score = score + v;
                else score = w32(int64_t(score) + v);
            }
            const bool pass = std::is_same<V, float>::value ? (stageThr <= score) : !(score < stageThr);
            if (pass) ++positive;
            else m = 0;
        }
    return positive;
}

}  // namespace ref

#endif
