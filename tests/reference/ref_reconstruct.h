// Reference model of grey-scale reconstruction: start from the marker clamped
// by the mask, then replace each pixel by the extremum of its neighbourhood,
// clamped by the mask, until nothing changes.
#ifndef RVPCV_REF_RECONSTRUCT_H
#define RVPCV_REF_RECONSTRUCT_H

#include <algorithm>
#include <vector>

namespace ref {

// marker and mask are packed w * h images; dilate grows (max under the mask),
// erode shrinks (min above it); eight selects the 8-neighbourhood.
template <class T>
std::vector<T> reconstruct(std::vector<T> r, const std::vector<T>& mask, int w, int h, bool dilate, bool eight) {
    auto ext = [&](T a, T b) { return dilate ? std::max(a, b) : std::min(a, b); };
    auto lim = [&](T a, T b) { return dilate ? std::min(a, b) : std::max(a, b); };
    for (size_t i = 0; i < r.size(); ++i) r[i] = lim(r[i], mask[i]);
    for (bool changed = true; changed;) {
        changed = false;
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                T v = r[static_cast<size_t>(y) * w + x];
                for (int dy = -1; dy <= 1; ++dy)
                    for (int dx = -1; dx <= 1; ++dx) {
                        const int nx = x + dx, ny = y + dy;
                        if (nx < 0 || ny < 0 || nx >= w || ny >= h || (!eight && dx != 0 && dy != 0)) continue;
                        v = ext(v, r[static_cast<size_t>(ny) * w + nx]);
                    }
                v = lim(v, mask[static_cast<size_t>(y) * w + x]);
                if (v != r[static_cast<size_t>(y) * w + x]) {
                    r[static_cast<size_t>(y) * w + x] = v;
                    changed = true;
                }
            }
    }
    return r;
}

}  // namespace ref

#endif
