// Reference models of the flood fills and the labelling: the scan-line
// fills written step by step on a plain interleaved vector image (one
// std::vector stack, pixel tests spelled out per channel), a breadth-first
// component search and a union-find labelling as independent checks.
#ifndef RVPCV_REF_FILL_H
#define RVPCV_REF_FILL_H

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <deque>
#include <limits>
#include <numeric>
#include <type_traits>
#include <vector>

namespace ref {

template <class T> struct Plane {
    int w, h, c;
    std::vector<T> v;
    T* px(int x, int y) { return &v[(static_cast<size_t>(y) * w + x) * c]; }
};

struct Comp {
    bool written = false;
    double area = 0;
    int x = 0, y = 0, width = 0, height = 0;
};

enum class FillRule { Exact, Grad, Range };

struct FillArgs {
    FillRule rule;
    bool eight;
    int seedX, seedY;
};

// Per-channel pixel tests of the three rules.
template <class T> struct Tests {
    int c;
    std::vector<T> seed, minD, maxD;
    bool exact(const T* p) const {
        for (int k = 0; k < c; ++k)
            if (!(p[k] == seed[k])) return false;
        return true;
    }
    bool range(const T* p) const {
        for (int k = 0; k < c; ++k) {
            if constexpr (std::is_floating_point<T>::value) {
                const float lo = seed[k] - minD[k], hi = seed[k] + maxD[k];
                if (!(lo <= p[k] && p[k] <= hi)) return false;
            } else {
                const long long top = std::numeric_limits<T>::max();
                const long long lo = std::max<long long>(0, (long long)seed[k] - minD[k]);
                const long long hi = std::min<long long>(top, (long long)seed[k] + maxD[k]);
                if (p[k] < lo || p[k] > hi) return false;
            }
        }
        return true;
    }
    // a joins next to b
    bool near(const T* a, const T* b) const {
        for (int k = 0; k < c; ++k) {
            if constexpr (std::is_floating_point<T>::value) {
                const float half = (minD[k] - maxD[k]) * 0.5f, r = (minD[k] + maxD[k]) * 0.5f;
                if (!(std::fabs((a[k] + half) - b[k]) <= r)) return false;
            } else {
                const long long d = (long long)a[k] - b[k];
                if (d < -(long long)minD[k] || d > (long long)maxD[k]) return false;
            }
        }
        return true;
    }
};

struct Rec {
    int y, l, r, pl, pr, dir;
};

// Exact and range fills: paint as found; the range fill's stack index
// restarts at 0 when a push brings it to w * h / 4. `limit`: the range fill's
// budget of counted pixels when its new value keeps matching.
template <class T>
Comp scanFill(Plane<T>& img, const FillArgs& a, const std::vector<T>& nv, const Tests<T>& t, long long limit) {
    Comp out;
    const int w = img.w, h = img.h;
    const bool range = a.rule == FillRule::Range;
    auto match = [&](int x, int y) { return range ? t.range(img.px(x, y)) : t.exact(img.px(x, y)); };
    auto paint = [&](int x, int y) { std::copy(nv.begin(), nv.end(), img.px(x, y)); };
    bool same = true;
    for (int k = 0; k < img.c; ++k) same = same && img.px(a.seedX, a.seedY)[k] == nv[k];
    if (same) return out;
    const int cap = range ? (w * h) / 4 : -1;
    std::vector<Rec> st(static_cast<size_t>(w) * h * 2 + 8);
    int top = 0;
    auto push = [&](Rec r) {
        st[top++] = r;
        if (top == cap) top = 0;
    };
    paint(a.seedX, a.seedY);
    int l = a.seedX, r = a.seedX;
    while (l - 1 >= 0 && match(l - 1, a.seedY)) paint(--l, a.seedY);
    while (r + 1 <= w - 1 && match(r + 1, a.seedY)) paint(++r, a.seedY);
    int32_t area = r - l + 1;
    long long counted = area;
    int x0 = l, x1 = r, y0 = a.seedY, y1 = a.seedY;
    auto scanRow = [&](int y, int from, int to, const Rec& s, int dir) {
        for (int x = from; x <= to; ++x) {
            if (!match(x, y)) continue;
            paint(x, y);
            int L = x, R = x;
            while (L - 1 >= 0 && match(L - 1, y)) paint(--L, y);
            while (R + 1 <= w - 1 && match(R + 1, y)) paint(++R, y);
            push({y, L, R, s.l, s.r, dir});
            area = static_cast<int32_t>(static_cast<uint32_t>(area) + static_cast<uint32_t>(R - L + 1));
            counted += R - L + 1;
            x = R + 1;
        }
    };
    if (h > 1) {
        push({a.seedY, l, r, r + 1, r, a.seedY == h - 1 ? -1 : 1});
        while (top > 0 && counted <= limit) {
            const Rec s = st[--top];
            x0 = std::min(x0, s.l), x1 = std::max(x1, s.r), y0 = std::min(y0, s.y), y1 = std::max(y1, s.y);
            const int lo = a.eight ? std::max(s.l - 1, 0) : s.l, hi = a.eight ? std::min(s.r + 1, w - 1) : s.r;
            if (s.y - s.dir >= 0 && s.y - s.dir < h) scanRow(s.y - s.dir, lo, hi, s, s.dir);
            scanRow(s.y + s.dir, lo, s.pl - 1, s, -s.dir);
            scanRow(s.y + s.dir, s.pr + 1, hi, s, -s.dir);
        }
    }
    out.written = true;
    out.area = area;
    out.x = x0, out.y = y0, out.width = x1 - x0 + 1, out.height = y1 - y0 + 1;
    return out;
}

// Gradient fill: a visited set, runs growing left by their own neighbours
// and right also by the row they were reached from, painting at pop.
template <class T> Comp gradFill(Plane<T>& img, const FillArgs& a, const std::vector<T>& nv, const Tests<T>& t) {
    const int w = img.w, h = img.h;
    Plane<T> src = img;  // every test reads values from before the fill
    std::vector<char> seen(static_cast<size_t>(w) * h, 0);
    auto inside = [&](int x, int y) { return x >= 0 && x < w && y >= 0 && y < h; };
    auto free = [&](int x, int y) { return inside(x, y) && !seen[static_cast<size_t>(y) * w + x]; };
    auto mark = [&](int x, int y) { seen[static_cast<size_t>(y) * w + x] = 1; };
    auto near = [&](int xa, int ya, int xb, int yb) { return t.near(src.px(xa, ya), src.px(xb, yb)); };
    auto joins = [&](int x, int y, const Rec& s) {
        for (int k = a.eight ? x - 1 : x; k <= (a.eight ? x + 1 : x); ++k)
            if (k >= s.l && k <= s.r && near(x, y, k, s.y)) return true;
        return false;
    };
    std::vector<Rec> st;
    int l = a.seedX, r = a.seedX;
    mark(a.seedX, a.seedY);
    while (free(r + 1, a.seedY) && near(r + 1, a.seedY, r, a.seedY)) mark(++r, a.seedY);
    while (free(l - 1, a.seedY) && near(l - 1, a.seedY, l, a.seedY)) mark(--l, a.seedY);
    if (a.eight) st.push_back({a.seedY, l, r, std::min(r + 2, w), r + 2, 1});
    else st.push_back({a.seedY, l, r, r + 1, r, 1});
    int32_t area = 0;
    int x0 = l, x1 = r, y0 = a.seedY, y1 = a.seedY;
    const int e = a.eight ? 1 : 0;
    auto scanRow = [&](int y, int from, int to, const Rec& s, int dir) {
        for (int x = from; x <= to; ++x) {
            if (!free(x, y) || !joins(x, y, s)) continue;
            mark(x, y);
            int L = x, R = x;
            while (free(L - 1, y) && near(L - 1, y, L, y)) mark(--L, y);
            while (free(R + 1, y) && (near(R + 1, y, R, y) || joins(R + 1, y, s))) mark(++R, y);
            st.push_back({y, L, R, s.l, s.r, dir});
            x = R + 1;
        }
    };
    while (!st.empty()) {
        const Rec s = st.back();
        st.pop_back();
        x0 = std::min(x0, s.l), x1 = std::max(x1, s.r), y0 = std::min(y0, s.y), y1 = std::max(y1, s.y);
        scanRow(s.y - s.dir, s.l - e, s.r + e, s, s.dir);
        scanRow(s.y + s.dir, s.l - e, s.pl - 1, s, -s.dir);
        scanRow(s.y + s.dir, s.pr + 1, s.r + e, s, -s.dir);
        for (int x = s.l; x <= s.r; ++x) std::copy(nv.begin(), nv.end(), img.px(x, s.y));
        area += s.r - s.l + 1;
    }
    Comp out;
    out.written = true;
    out.area = area;
    out.x = x0, out.y = y0, out.width = x1 - x0 + 1, out.height = y1 - y0 + 1;
    return out;
}

template <class T>
Comp fill(Plane<T>& img, const FillArgs& a, const std::vector<T>& nv, const std::vector<T>& minD,
          const std::vector<T>& maxD) {
    Tests<T> t{img.c, std::vector<T>(img.px(a.seedX, a.seedY), img.px(a.seedX, a.seedY) + img.c), minD, maxD};
    if (a.rule == FillRule::Grad) return gradFill(img, a, nv, t);
    long long limit = std::numeric_limits<long long>::max();
    if (a.rule == FillRule::Range && t.range(nv.data())) limit = 16LL * img.w * img.h;
    return scanFill(img, a, nv, t, limit);
}

// Breadth-first component of the pixels passing `in`, from the seed.
template <class In> std::vector<char> component(int w, int h, int sx, int sy, bool eight, In&& in) {
    std::vector<char> got(static_cast<size_t>(w) * h, 0);
    std::deque<std::pair<int, int>> q{{sx, sy}};
    got[static_cast<size_t>(sy) * w + sx] = 1;
    while (!q.empty()) {
        const auto [x, y] = q.front();
        q.pop_front();
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx) {
                const int nx = x + dx, ny = y + dy;
                if ((!eight && dx && dy) || nx < 0 || ny < 0 || nx >= w || ny >= h) continue;
                char& g = got[static_cast<size_t>(ny) * w + nx];
                if (!g && in(nx, ny)) g = 1, q.push_back({nx, ny});
            }
    }
    return got;
}

// Labels of the nonzero pixels by union-find, numbered by the raster order
// of each component's first pixel, wrapping from maxLabel to minLabel.
inline std::vector<int> labelComponents(const std::vector<int>& bin, int w, int h, bool eight, int minLabel,
                                        int maxLabel, int* count) {
    std::vector<int> parent(bin.size());
    std::iota(parent.begin(), parent.end(), 0);
    auto find = [&](int i) {
        while (parent[i] != i) i = parent[i] = parent[parent[i]];
        return i;
    };
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            if (!bin[y * w + x]) continue;
            const int nb[4][2] = {{-1, 0}, {0, -1}, {-1, -1}, {1, -1}};
            for (int k = 0; k < (eight ? 4 : 2); ++k) {
                const int nx = x + nb[k][0], ny = y + nb[k][1];
                if (nx >= 0 && ny >= 0 && nx < w && bin[ny * w + nx]) parent[find(ny * w + nx)] = find(y * w + x);
            }
        }
    std::vector<int> out(bin.size(), 0), labelOf(bin.size(), -1);
    int n = 0, next = minLabel;
    for (size_t i = 0; i < bin.size(); ++i) {
        if (!bin[i]) continue;
        const int root = find(static_cast<int>(i));
        if (labelOf[root] < 0) {
            labelOf[root] = next;
            next = next == maxLabel ? minLabel : next + 1;
            ++n;
        }
        out[i] = labelOf[root];
    }
    *count = n;
    return out;
}

}  // namespace ref

#endif
