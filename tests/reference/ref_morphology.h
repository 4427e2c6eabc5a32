// Reference models of the minimum/maximum filter and of structuring-element
// morphology, written from the definitions: extrema over clamped
// coordinates, plus the shortened rectangle of the small-image row tables.
#ifndef RVPCV_REF_MORPHOLOGY_H
#define RVPCV_REF_MORPHOLOGY_H

#include <algorithm>
#include <limits>
#include <type_traits>
#include <vector>

namespace ref {

// A packed image: w * h pixels of c samples.
template <class T> struct Plane {
    int w = 0, h = 0, c = 1;
    std::vector<T> v;
    Plane() = default;
    Plane(int w_, int h_, int c_) : w(w_), h(h_), c(c_), v(static_cast<size_t>(w_) * h_ * c_) {}
    T& at(int x, int y, int ch) { return v[(static_cast<size_t>(y) * w + x) * c + ch]; }
    const T& at(int x, int y, int ch) const { return v[(static_cast<size_t>(y) * w + x) * c + ch]; }
    const T& clamped(int x, int y, int ch) const {
        return at(std::min(std::max(x, 0), w - 1), std::min(std::max(y, 0), h - 1), ch);
    }
};

template <class T> T ext(bool isMax, T a, T b) { return isMax ? (a > b ? a : b) : (a < b ? a : b); }

// Rectangle extremum with replicated border. smallTable: the layout has the
// small row table (8u C4, 32f C1); on an image of at most 16384 bytes at
// least twice as wide as the mask, even widths 8..14 lose their rightmost
// column (or, with the anchor on the last column, the first output column
// holds the neutral value and the others cover x - (W-1) .. x - 1), and widths
// of 16 or more become 15 with the anchor capped at 14.
template <class T>
Plane<T> minMaxFilter(const Plane<T>& s, int W, int H, int ax, int ay, bool isMax, bool smallTable) {
    const int w = s.w, h = s.h;
    const bool shorten = smallTable && w * h * 4 <= 16384 && w >= 2 * W && W >= 8 && (W >= 16 || W % 2 == 0);
    const T neutral = isMax ? std::numeric_limits<T>::lowest() : std::numeric_limits<T>::max();
    bool neutralFirst = false;
    int lo = -ax, span = W;  // columns x + lo .. x + lo + span - 1
    if (shorten && W >= 16) {
        span = 15;
        lo = -std::min(ax, 14);
    } else if (shorten) {
        span = W - 1;
        if (ax > W - 2) {
            neutralFirst = true;
            lo = -(W - 1);
        }
    }
    Plane<T> rows(w, h, s.c), out(w, h, s.c);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            for (int ch = 0; ch < s.c; ++ch) {
                if (neutralFirst && x == 0) {
                    rows.at(x, y, ch) = neutral;
                    continue;
                }
                T acc = s.clamped(x + lo, y, ch);
                for (int i = 1; i < span; ++i) acc = ext(isMax, acc, s.clamped(x + lo + i, y, ch));
                rows.at(x, y, ch) = acc;
            }
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            for (int ch = 0; ch < s.c; ++ch) {
                T acc = rows.clamped(x, y - ay, ch);
                for (int j = 1; j < H; ++j) acc = ext(isMax, acc, rows.clamped(x, y - ay + j, ch));
                out.at(x, y, ch) = acc;
            }
    return out;
}

// Extremum over the set cells of a W x H mask at clamped coordinates; an
// empty mask copies.
template <class T>
Plane<T> morphCells(const Plane<T>& s, const std::vector<unsigned char>& mask, int W, int H, int ax, int ay,
                    bool dilate) {
    Plane<T> out = s;
    for (int y = 0; y < s.h; ++y)
        for (int x = 0; x < s.w; ++x)
            for (int ch = 0; ch < s.c; ++ch) {
                bool any = false;
                T acc{};
                for (int r = 0; r < H; ++r)
                    for (int c = 0; c < W; ++c)
                        if (mask[r * W + c]) {
                            const T v = s.clamped(x + c - ax, y + r - ay, ch);
                            acc = any ? ext(dilate, acc, v) : v;
                            any = true;
                        }
                if (any) out.at(x, y, ch) = acc;
            }
    return out;
}

// Bounding box of the set cells when they form one filled rectangle.
inline bool filledRect(const std::vector<unsigned char>& mask, int W, int H, int& bx, int& by, int& bw, int& bh) {
    int x0 = W, y0 = H, x1 = -1, y1 = -1;
    for (int r = 0; r < H; ++r)
        for (int c = 0; c < W; ++c)
            if (mask[r * W + c]) {
                x0 = std::min(x0, c), y0 = std::min(y0, r), x1 = std::max(x1, c), y1 = std::max(y1, r);
            }
    if (x1 < 0) return false;
    for (int r = y0; r <= y1; ++r)
        for (int c = x0; c <= x1; ++c)
            if (!mask[r * W + c]) return false;
    bx = x0, by = y0, bw = x1 - x0 + 1, bh = y1 - y0 + 1;
    return true;
}

// Morphology as the library defines it: the cell model, except that a filled
// rectangle in a small-table layout goes through the rectangle filter on the
// part of the image left once the anchor is brought into the rectangle, and
// the rest is that part's edge replicated.
template <class T>
Plane<T> morphology(const Plane<T>& s, const std::vector<unsigned char>& mask, int W, int H, int ax, int ay,
                    bool dilate, bool smallTable) {
    int bx, by, bw, bh;
    if (!smallTable || !filledRect(mask, W, H, bx, by, bw, bh)) return morphCells(s, mask, W, H, ax, ay, dilate);
    int rax = ax - bx, ray = ay - by;
    int x0 = 0, y0 = 0, pw = s.w, ph = s.h, dx = 0, dy = 0;  // source part and destination offset
    if (rax < 0) { const int sh = std::max(rax, 1 - s.w); x0 = -sh; pw = s.w + sh; rax = 0; }
    else if (rax >= bw) { const int sh = std::min(rax - bw + 1, s.w - 1); dx = sh; pw = s.w - sh; rax = bw - 1; }
    if (ray < 0) { const int sh = std::max(ray, 1 - s.h); y0 = -sh; ph = s.h + sh; ray = 0; }
    else if (ray >= bh) { const int sh = std::min(ray - bh + 1, s.h - 1); dy = sh; ph = s.h - sh; ray = bh - 1; }
    Plane<T> part(pw, ph, s.c);
    for (int y = 0; y < ph; ++y)
        for (int x = 0; x < pw; ++x)
            for (int ch = 0; ch < s.c; ++ch) part.at(x, y, ch) = s.at(x0 + x, y0 + y, ch);
    const Plane<T> f = minMaxFilter(part, bw, bh, rax, ray, dilate, true);
    Plane<T> out(s.w, s.h, s.c);
    for (int y = 0; y < s.h; ++y)
        for (int x = 0; x < s.w; ++x)
            for (int ch = 0; ch < s.c; ++ch) out.at(x, y, ch) = f.clamped(x - dx, y - dy, ch);
    return out;
}

// Gray-scale morphology: max of s + v (dilation) or min of s - v (erosion)
// over the cells, clamped coordinates; 8u sums saturate; a 32f cell of
// -infinity is left out and a value of 0 takes the sample itself.
template <class T, class V>
Plane<T> grayMorphology(const Plane<T>& s, const std::vector<V>& values, int W, int H, int ax, int ay, bool dilate) {
    Plane<T> out(s.w, s.h, 1);
    for (int y = 0; y < s.h; ++y)
        for (int x = 0; x < s.w; ++x) {
            bool any = false;
            double acc = 0;
            for (int r = 0; r < H; ++r)
                for (int c = 0; c < W; ++c) {
                    const V v = values[static_cast<size_t>(r) * W + c];
                    if (std::is_floating_point<V>::value && v == -std::numeric_limits<V>::infinity()) continue;
                    const T p = s.clamped(x + c - ax, y + r - ay, 0);
                    double t;
                    if (std::is_floating_point<T>::value) {
                        t = v == 0 ? p : static_cast<float>(dilate ? p + static_cast<float>(v) : p - static_cast<float>(v));
                    } else {
                        t = dilate ? static_cast<double>(p) + v : static_cast<double>(p) - v;
                        t = t < 0 ? 0 : t > 255 ? 255 : t;
                    }
                    if (t != t) continue;
                    if (!any || (dilate ? t > acc : t < acc)) acc = t;
                    any = true;
                }
            if (!any) acc = dilate ? -std::numeric_limits<double>::infinity() : std::numeric_limits<double>::infinity();
            out.at(x, y, 0) = static_cast<T>(acc);
        }
    return out;
}

}  // namespace ref

#endif
