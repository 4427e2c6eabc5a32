// Reference model of the summed-area tables and the rectangle deviation,
// element by element from the rules, on plain row-major vectors.
#ifndef RVPCV_REF_INTEGRAL_H
#define RVPCV_REF_INTEGRAL_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

namespace ref {

// A table of w columns and h rows, row-major.
template <class T> struct Table {
    int w = 0, h = 0;
    std::vector<T> v;
    Table() = default;
    Table(int w_, int h_, T fill = T()) : w(w_), h(h_), v(static_cast<size_t>(w_) * h_, fill) {}
    T& at(int x, int y) { return v[static_cast<size_t>(y) * w + x]; }
    const T& at(int x, int y) const { return v[static_cast<size_t>(y) * w + x]; }
};

// Source sample (x, y); x may be W for the form that reads past the row.
struct Src {
    const uint8_t* p;
    int step, w, h;
    int operator()(int x, int y) const { return p[static_cast<ptrdiff_t>(y) * step + x]; }
};

inline int32_t wrap(int64_t v) { return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(v))); }

// ---- Builders ---------------------------------------------------------------------
// Upright table of T (int32_t wraps, float adds the integer row sum in float,
// double carries a double row sum).
template <class T> Table<T> upright(const Src& s, T val, bool squares) {
    Table<T> t(s.w + 1, s.h + 1, val);
    for (int y = 0; y < s.h; ++y) {
        int32_t run = 0;
        double runD = 0;
        for (int x = 0; x < s.w; ++x) {
            const int q = squares ? s(x, y) * s(x, y) : s(x, y);
            run = wrap(int64_t(run) + q);
            runD += q;
            T& out = t.at(x + 1, y + 1);
            const T above = t.at(x + 1, y);
            if constexpr (std::is_same<T, double>::value) out = above + runD;
            else if constexpr (std::is_same<T, float>::value) out = above + static_cast<float>(run);
            else out = wrap(int64_t(above) + run);
        }
    }
    return t;
}

// Tilted table. pastEdge: the inner rule runs through column W (reads s(W)).
// old: the float destination before the call, whose column W is added to.
template <class T> Table<T> tilted(const Src& s, T val, bool squares, bool pastEdge, const Table<T>* old = nullptr) {
    const int W = s.w;
    Table<T> t(W + 2, s.h + 2, val);
    for (int y = 0; y < s.h; ++y) {
        const int r = y + 2;
        auto P = [&](int x) { return t.at(x, r - 1); };
        auto P2 = [&](int x) { return t.at(x, r - 2); };
        auto f = [&](int x) { return squares ? s(x, y) * s(x, y) : s(x, y); };
        t.at(0, r) = P(1);
        for (int x = 1; x <= W; ++x) {
            const bool inner = x < W || pastEdge;
            T& out = t.at(x, r);
            if constexpr (std::is_same<T, int32_t>::value) {
                out = wrap(int64_t(P(x - 1)) + P(x + 1) - P2(x) + f(x - 1) + (inner ? f(x) : 0));
            } else if constexpr (std::is_same<T, float>::value) {
                const double dp = P(x - 1), dn = P(x + 1), d2 = P2(x);
                out = inner ? static_cast<float>((((dp - d2) + dn) + f(x - 1)) + f(x))
                            : old->at(W, r) + static_cast<float>(((f(W - 1) + dp) + dn) - d2);
            } else {
                out = inner ? ((static_cast<double>(f(x - 1) + f(x)) + P(x - 1)) - P2(x)) + P(x + 1)
                            : ((static_cast<double>(f(W - 1)) + P(W - 1)) + P(W + 1)) - P2(W);
            }
        }
        t.at(W + 1, r) = P(W);
    }
    return t;
}

// ---- Rectangle deviation --------------------------------------------------------
// Tables are read through (base, step in elements) so that tilted corners may
// fall left of a row start as the rules allow.
template <class T> struct View {
    const T* p;
    int stepEl;
    T operator()(int col, int row) const { return p[static_cast<ptrdiff_t>(row) * stepEl + col]; }
};

// Corner values c0..c3: BR, TR, BL, TL upright, A, B, C, D tilted, for output (i, j).
template <class T> void corners(const View<T>& t, int i, int j, int x, int y, int w, int h, bool tilted, T c[4]) {
    const int bx = i + (tilted ? x - y : x), by = j + (tilted ? x + y : y);  // TL or D
    const int wx = w, wy = tilted ? w : 0, hx = tilted ? -h : 0, hy = h;       // the width and height edges
    c[0] = t(bx + wx + hx, by + wy + hy);
    c[1] = tilted ? t(bx + hx, by + hy) : t(bx + wx, by);
    c[2] = tilted ? t(bx + wx, by + wy) : t(bx, by + hy);
    c[3] = t(bx, by);
}

inline int32_t cvtt(double v) { return (v > -2147483649.0 && v < 2147483648.0) ? static_cast<int32_t>(v) : INT32_MIN; }

inline double sfsScale(int sf) {
    const uint32_t n = (sf < 0 ? 0u - static_cast<uint32_t>(sf) : static_cast<uint32_t>(sf)) & 31u;
    const float one = static_cast<float>(static_cast<int32_t>(1u << n));
    return sf < 0 ? one : 1.0f / one;
}

inline int32_t isum(const int32_t c[4]) { return wrap(int64_t(wrap(int64_t(c[0]) - c[1])) - wrap(int64_t(c[2]) - c[3])); }

// rvpiRectStdDev_32s_C1RSfs (tilted = false) and its tilted sibling.
inline int32_t stdDevSfs(const View<int32_t>& s, const View<int32_t>& q, int i, int j, int x, int y, int w, int h,
                         bool tilted, int sf) {
    int32_t cs[4], cq[4];
    corners(s, i, j, x, y, w, h, tilted, cs);
    corners(q, i, j, x, y, w, h, tilted, cq);
    const float area = static_cast<float>(wrap(int64_t(w) * h * (tilted ? 2 : 1)));
    const float mean = static_cast<float>(isum(cs)) / area, meanSqr = static_cast<float>(isum(cq)) / area;
    const double scale = sfsScale(sf);
    if (!tilted) {
        float var = meanSqr - mean * mean;
        if (var < 0) var = 0;
        return cvtt(std::sqrt(static_cast<double>(var)) * scale + 0.5);
    }
    double var = static_cast<double>(meanSqr) - static_cast<double>(mean) * static_cast<double>(mean);
    if (var < 0) var = 0;
    return cvtt(static_cast<double>(std::sqrt(static_cast<float>(var))) * scale + 0.5);
}

// The three float-result forms; T is the sum table's element.
template <class T>
float stdDev32f(const View<T>& s, const View<double>& q, int i, int j, int x, int y, int w, int h, bool tilted) {
    T cs[4];
    double cq[4];
    corners(s, i, j, x, y, w, h, tilted, cs);
    corners(q, i, j, x, y, w, h, tilted, cq);
    const float areaF = static_cast<float>(wrap(int64_t(w) * h * (tilted ? 2 : 1)));
    const double areaD = areaF;
    double mean;
    if constexpr (sizeof(T) == 4 && std::is_integral<T>::value) {
        mean = static_cast<float>(isum(cs)) / areaF;
    } else if (!tilted) {
        mean = (((cs[0] - cs[1]) - cs[2]) + cs[3]) / areaF;
    } else {
        mean = (((double(cs[0]) - double(cs[1])) - double(cs[2])) + double(cs[3])) / areaD;
    }
    const double meanSqr = (((cq[0] - cq[1]) - cq[2]) + cq[3]) / areaD;
    double var = meanSqr - mean * mean;
    if (var < 0) var = 0;
    return std::sqrt(static_cast<float>(var));
}

}  // namespace ref

#endif
