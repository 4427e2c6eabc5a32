// Reference models of the boundary rules and of the watershed's queue
// flooding, one pixel at a time on a plain vector image.
#ifndef RVPCV_REF_SEGMENT_H
#define RVPCV_REF_SEGMENT_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

namespace ref {

template <class T> struct Labels {
    int w, h;
    std::vector<T> v;
    T& at(int x, int y) { return v[static_cast<size_t>(y) * w + x]; }
};

// Plain boundary rule in scan order.
template <class T> void bound(Labels<T>& m, T val, bool four) {
    four = four || m.w == 1;
    for (int y = 0; y < m.h; ++y)
        for (int x = 0; x < m.w; ++x) {
            if (y == 0) {
                if (x > 0 && m.at(x - 1, 0) != val && m.at(x - 1, 0) != m.at(x, 0)) m.at(x, 0) = val;
                continue;
            }
            const T c = m.at(x, y);
            const auto differs = [&](int dx, int dy) {
                const int nx = x + dx;
                return nx >= 0 && nx < m.w && m.at(nx, y + dy) != val && m.at(nx, y + dy) != c;
            };
            if (differs(-1, 0) || differs(0, -1) || (!four && (differs(-1, -1) || differs(1, -1)))) m.at(x, y) = val;
        }
}

// Queue flooding: seeds below the boundary label with an unlabelled
// neighbour, levels 0..255, neighbours left, right, up, down, diagonals.
template <class T>
void flood(const std::vector<uint8_t>& gray, Labels<T>& m, bool four, int border) {
    const T B = static_cast<T>(~T{});
    const int dx[8] = {-1, 1, 0, 0, -1, 1, -1, 1}, dy[8] = {0, 0, -1, 1, -1, -1, 1, 1};
    const int n = four ? 4 : 8;
    const auto lab = [&](int x, int y) -> T { return x < 0 || y < 0 || x >= m.w || y >= m.h ? B : m.at(x, y); };
    std::deque<int> q[256];
    for (int y = 0; y < m.h; ++y)
        for (int x = 0; x < m.w; ++x) {
            const T l = m.at(x, y);
            if (!l) continue;
            bool open = false;
            for (int k = 0; k < n; ++k) open = open || lab(x + dx[k], y + dy[k]) == 0;
            if (open && l != B) q[gray[static_cast<size_t>(y) * m.w + x]].push_back(y * m.w + x);
            if (!border || l == B) continue;
            for (int k = 0; k < border; ++k) {
                const T v = lab(x + dx[k], y + dy[k]);
                if (v && v != B && v != l) { m.at(x, y) = B; break; }
            }
        }
    for (int level = 0; level < 256;) {
        if (q[level].empty()) { ++level; continue; }
        const int p = q[level].front();
        q[level].pop_front();
        const int px = p % m.w, py = p / m.w;
        const T l = m.at(px, py);
        for (int k = 0; k < n; ++k) {
            const int x = px + dx[k], y = py + dy[k];
            if (lab(x, y) != 0) continue;
            const int g = gray[static_cast<size_t>(y) * m.w + x];
            q[g > level ? g : level].push_back(y * m.w + x);
            T out = l;
            for (int j = 0; border && j < border; ++j) {
                const int ax = x + dx[j], ay = y + dy[j];
                if (ax == px && ay == py) continue;
                const T v = lab(ax, ay);
                if (!v || v == B || v == out) continue;
                if (out < B) { out = B; break; }
                out = v;
            }
            m.at(x, y) = out;
        }
    }
}

}  // namespace ref

#endif
