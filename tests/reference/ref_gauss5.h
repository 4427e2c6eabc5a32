// Reference model of the 2:1 Gaussian 5x5 pyramid steps, straight from the
// rules: each output sample on its own, with clamped (replicated) indices.
#ifndef RVPCV_REF_GAUSS5_H
#define RVPCV_REF_GAUSS5_H

#include <algorithm>
#include <cstdint>
#include <vector>

namespace ref {

inline int clampTo(int i, int n) { return std::min(std::max(i, 0), n - 1); }

// 1 4 6 4 1, 1 6 1 and 4 4: exact integers, or the float order of the rules.
inline int g5(int a, int b, int c, int d, int e) { return a + 4 * b + 6 * c + 4 * d + e; }
inline float g5(float a, float b, float c, float d, float e) { return ((a + e) + (b + d) * 4.0f) + c * 6.0f; }
inline int g161(int a, int b, int c) { return a + 6 * b + c; }
inline float g161(float a, float b, float c) { return (a + c) + b * 6.0f; }
inline int g44(int b, int c) { return 4 * b + 4 * c; }
inline float g44(float b, float c) { return (b + c) * 4.0f; }

template <class T> using Acc = typename std::conditional<sizeof(T) == 1, int, float>::type;

// Samples of the source, row-major with `step` bytes between rows.
template <class T> struct Src {
    const T* p; int step, w, h, c;
    Acc<T> at(int x, int y, int ch) const {
        const T* row = reinterpret_cast<const T*>(reinterpret_cast<const uint8_t*>(p) + static_cast<size_t>(step) * clampTo(y, h));
        return row[clampTo(x, w) * c + ch];
    }
};

// Dense ((w + 1) / 2) x ((h + 1) / 2) result, C samples a pixel.
template <class T> std::vector<T> pyrDown(const Src<T>& s) {
    const int ow = (s.w + 1) / 2, oh = (s.h + 1) / 2;
    std::vector<T> out(static_cast<size_t>(ow) * oh * s.c);
    for (int y = 0; y < oh; ++y)
        for (int x = 0; x < ow; ++x)
            for (int ch = 0; ch < s.c; ++ch) {
                Acc<T> v[5];
                for (int i = 0; i < 5; ++i) {
                    const int cx = 2 * x - 2 + i;
                    v[i] = g5(s.at(cx, 2 * y - 2, ch), s.at(cx, 2 * y - 1, ch), s.at(cx, 2 * y, ch),
                              s.at(cx, 2 * y + 1, ch), s.at(cx, 2 * y + 2, ch));
                }
                const Acc<T> r = g5(v[0], v[1], v[2], v[3], v[4]);
                T& o = out[(static_cast<size_t>(y) * ow + x) * s.c + ch];
                if constexpr (sizeof(T) == 1) o = static_cast<T>((r + 128) >> 8);
                else o = r * 0.00390625f;
            }
    return out;
}

// Dense 2w x 2h result.
template <class T> std::vector<T> pyrUp(const Src<T>& s) {
    const int ow = 2 * s.w, oh = 2 * s.h;
    std::vector<T> out(static_cast<size_t>(ow) * oh * s.c);
    auto vert = [&](int x, int Y, int ch) {
        const int y = Y / 2;
        return Y % 2 == 0 ? g161(s.at(x, y - 1, ch), s.at(x, y, ch), s.at(x, y + 1, ch))
                          : g44(s.at(x, y, ch), s.at(x, y + 1, ch));
    };
    for (int Y = 0; Y < oh; ++Y)
        for (int X = 0; X < ow; ++X)
            for (int ch = 0; ch < s.c; ++ch) {
                const int x = X / 2;
                const Acc<T> r = X % 2 == 0 ? g161(vert(x - 1, Y, ch), vert(x, Y, ch), vert(x + 1, Y, ch))
                                            : g44(vert(x, Y, ch), vert(x + 1, Y, ch));
                T& o = out[(static_cast<size_t>(Y) * ow + X) * s.c + ch];
                if constexpr (sizeof(T) == 1) o = static_cast<T>((r + 32) >> 6);
                else o = r * 0.015625f;
            }
    return out;
}

}  // namespace ref

#endif
