// Reference model of the separable filters, computed pixel by pixel from the
// definitions: a source extended by the border rule (or read from memory on
// sides flagged as existing), taps in stored order, and the rounding and
// saturation of each form. Images are given as a plane with margins so that
// memory beyond the region can be read.
#ifndef RVPCV_REF_FILTER_H
#define RVPCV_REF_FILTER_H

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <vector>

namespace ref {

// Index of position p on an axis of n samples, -1 for the constant border.
inline int reflect(long long p, int n, int type) {
    if (p >= 0 && p < n) return static_cast<int>(p);
    switch (type) {
    case 0: return -1;
    case 1: return p < 0 ? 0 : n - 1;
    case 2: return static_cast<int>(((p % n) + n) % n);
    case 3:
        if (n == 1) return 0;
        while (p < 0 || p >= n) p = p < 0 ? -p : 2LL * n - 2 - p;
        return static_cast<int>(p);
    default:
        while (p < 0 || p >= n) p = p < 0 ? -p - 1 : 2LL * n - 1 - p;
        return static_cast<int>(p);
    }
}

// A region of w x h pixels (C channels) at (ox, oy) of a plane whose rows
// hold `pitch` samples.
template <class T> struct Plane {
    const T* data; int pitch, ox, oy, w, h, C;
    T at(int x, int y, int c = 0) const { return data[static_cast<long>(oy + y) * pitch + (ox + x) * C + c]; }
};

// Sample x of row y (y may lie outside the region when its row is real),
// extended horizontally: flags 0x40 / 0x80 read the memory beside the row.
template <class T> T rowSample(const Plane<T>& img, int y, int x, int c, int type, int flags, T bv) {
    if ((x < 0 && (flags & 0x40)) || (x >= img.w && (flags & 0x80))) return img.at(x, y, c);
    const int i = reflect(x, img.w, type);
    return i < 0 ? bv : img.at(i, y, c);
}

template <class D> D roundSat(double v) {
    const double lo = std::numeric_limits<D>::min(), hi = std::numeric_limits<D>::max();
    v = std::nearbyint(v);
    return static_cast<D>(v < lo ? lo : v > hi ? hi : v);
}
template <class D> D sat(long long v) {
    const long long lo = std::numeric_limits<D>::min(), hi = std::numeric_limits<D>::max();
    return static_cast<D>(v < lo ? lo : v > hi ? hi : v);
}

// Float sum in tap order; zero taps are skipped and the first nonzero tap
// starts the sum.
template <class G> float dotSkip(const std::vector<int>& taps, G get) {
    float s = 0.0f;
    bool first = true;
    for (size_t k = 0; k < taps.size(); ++k) {
        if (taps[k] == 0) continue;
        const float t = static_cast<float>(taps[k]) * get(static_cast<int>(k));
        if (first) s = t; else s += t;
        first = false;
    }
    return s;
}
template <class G> long long dotInt(const std::vector<int>& taps, G get) {
    long long s = 0;
    for (size_t k = 0; k < taps.size(); ++k) s += static_cast<long long>(taps[k]) * get(static_cast<int>(k));
    return s;
}

// ---- Pipelines ----------------------------------------------------------------

enum class RowKind { U8to16, S16, Low, F32 };

// Low forms: 16-bit wrapping products and sums, shifted right by log2 of
// |divisor|'s highest bit, negated for a negative divisor.
template <class G> int16_t lowSum(const std::vector<double>& kernel, int divisor, G e) {
    int16_t acc = 0;
    for (size_t k = 0; k < kernel.size(); ++k)
        acc = static_cast<int16_t>(acc + static_cast<int16_t>(static_cast<int>(kernel[k]) * e(static_cast<int>(k))));
    int sh = 0;
    for (long long m = std::llabs(divisor); m > 1; m >>= 1) ++sh;
    return static_cast<int16_t>(divisor < 0 ? -(acc >> sh) : acc >> sh);
}

// Float sum of t[k] * e(k) in tap order.
template <class G> float tapOrder(const std::vector<float>& t, G e) {
    float s = t[0] * static_cast<float>(e(0));
    for (size_t k = 1; k < t.size(); ++k) s += t[k] * static_cast<float>(e(static_cast<int>(k)));
    return s;
}

// Mirrored pairs added first: (e0 + e4) t0 + (e1 + e3) t1 + e2 t2, or the
// 3-tap (e0 + e2) t0 + e1 t1.
template <class G> float symSum(const std::vector<float>& t, G e) {
    if (t.size() == 3) return t[0] * (float(e(0)) + float(e(2))) + t[1] * float(e(1));
    float s = t[0] * (float(e(0)) + float(e(4)));
    s += t[1] * (float(e(1)) + float(e(3)));
    return s + t[2] * float(e(2));
}

// One row of the row stage for every form. e(k) is sample x - a + k of the
// row extended by the border rule.
template <class S, class D>
std::vector<D> pipelineRow(RowKind kind, const std::vector<S>& row, int w, int C, const std::vector<double>& kernel,
                           int a, int type, S bv, int divisor) {
    const int n = static_cast<int>(kernel.size());
    std::vector<D> out(static_cast<size_t>(w) * C);
    const float inv = kind == RowKind::F32 ? 1.0f : 1.0f / static_cast<float>(divisor);
    std::vector<float> t(n), raw(n);
    for (int k = 0; k < n; ++k) raw[k] = static_cast<float>(kernel[k]), t[k] = raw[k] * inv;
    const bool sym = (n == 3 && kernel[0] == kernel[2]) || (n == 5 && kernel[0] == kernel[4] && kernel[1] == kernel[3]);
    for (int x = 0; x < w; ++x)
        for (int c = 0; c < C; ++c) {
            auto e = [&](int k) -> S {
                const int i = reflect(x - a + k, w, type);
                return i < 0 ? bv : row[static_cast<size_t>(i) * C + c];
            };
            const bool middle = x >= a && x <= w - n + a;
            D& o = out[static_cast<size_t>(x) * C + c];
            if (kind == RowKind::Low) {
                o = lowSum(kernel, divisor, e);
            } else if (kind == RowKind::U8to16 && C == 1 && n != 3) {  // exact integer sum, scaled once
                long long acc = 0;
                for (int k = 0; k < n; ++k) acc += static_cast<long long>(kernel[k]) * e(k);
                o = roundSat<D>(static_cast<float>(acc) * inv);
            } else if (kind == RowKind::S16 && C == 1 && !middle) {  // ends: raw taps, scaled, truncated
                float v = tapOrder(raw, e) * inv;
                v = v < -32768.0f ? -32768.0f : v > 32767.0f ? 32767.0f : v;
                o = static_cast<D>(static_cast<int>(v));
            } else if (kind == RowKind::S16 && C == 1 && sym && n <= 5) {
                o = roundSat<D>(symSum(t, e));
            } else if (kind != RowKind::F32) {
                o = roundSat<D>(tapOrder(t, e));
            } else if (C == 1 && n == 5 && w >= 17 && a == 2 && sym) {  // whole-image 5-tap routine
                o = static_cast<D>(symSum(t, e));
            } else if (C == 1 && n > 8 && w >= 17 && w > n && middle) {  // eight partial sums
                float part[8];
                for (int k = 0; k < n; ++k) part[k % 8] = k < 8 ? t[k] * float(e(k)) : part[k % 8] + t[k] * float(e(k));
                float s = part[0];
                for (int i = 1; i < 8; ++i) s += part[i];
                o = static_cast<D>(s);
            } else {
                o = static_cast<D>(tapOrder(t, e));
            }
        }
    return out;
}

// One output row of the column stage; rows[k] points to input row y + k.
template <class S, class D>
std::vector<D> pipelineColumn(RowKind kind, const std::vector<const S*>& rows, int samples,
                              const std::vector<double>& kernel, int divisor) {
    const int n = static_cast<int>(kernel.size());
    std::vector<D> out(samples);
    const float inv = kind == RowKind::F32 ? 1.0f : 1.0f / static_cast<float>(divisor);
    std::vector<float> t(n);
    for (int k = 0; k < n; ++k) t[k] = static_cast<float>(kernel[k]) * inv;
    for (int x = 0; x < samples; ++x) {
        auto e = [&](int k) { return rows[k][x]; };
        if (kind == RowKind::Low) out[x] = static_cast<D>(lowSum(kernel, divisor, e));
        else if (kind == RowKind::F32) out[x] = static_cast<D>(tapOrder(t, e));
        else out[x] = roundSat<D>(tapOrder(t, e));
    }
    return out;
}

// ---- Fixed-kernel filters -------------------------------------------------------

enum class Fixed { SobelHoriz, SobelVert, SobelNegVert, SobelHorizSecond, SobelVertSecond, SobelCross,
                   ScharrHoriz, ScharrVert, Laplacian, Lowpass, Gauss };

struct Sep { std::vector<int> row, col; };

// Row and column taps; the 5x5 Laplacian's first pass (its second is the
// vertical second derivative).
inline Sep separable(Fixed f, int n) {
    enum { Bin, Dif, NegDif, Dif2, NegBin, Scharr };
    static const std::vector<int> taps[2][6] = {
        {{1, 2, 1}, {-1, 0, 1}, {1, 0, -1}, {1, -2, 1}, {-1, -2, -1}, {3, 10, 3}},
        {{1, 4, 6, 4, 1}, {-1, -2, 0, 2, 1}, {1, 2, 0, -2, -1}, {1, 0, -2, 0, 1}, {-1, -4, -6, -4, -1}, {}}};
    static const int pairs[][2] = {{Bin, Dif},   {NegDif, Bin}, {NegDif, NegBin}, {Bin, Dif2},  {Dif2, Bin},
                                   {NegDif, Dif}, {Scharr, Dif}, {Dif, Scharr},    {Bin, Dif2}};
    if (f == Fixed::Lowpass) return {std::vector<int>(n, 1), std::vector<int>(n, 1)};
    const auto& t = taps[n == 5];
    return {t[pairs[static_cast<int>(f)][0]], t[pairs[static_cast<int>(f)][1]]};
}

// Source row for vertical position p: memory inside the region and beyond
// sides flagged 0x10 (top) / 0x20 (bottom), else the border rule; false for
// a row of the constant border.
inline bool sourceRow(int p, int h, int bt, int& y) {
    const bool mem = (p >= 0 && p < h) || (p < 0 && (bt & 0x10)) || (p >= h && (bt & 0x20));
    y = mem ? p : reflect(p, h, bt & 0xF);
    return mem || y >= 0;
}

// The intermediate row at vertical position p (relative to the region):
// real rows are filtered along the row; a constant border row is the tap sum
// times the border value.
template <class S, class I>
std::vector<I> intermediate(const Plane<S>& img, int p, const std::vector<int>& taps, int bt, S bv) {
    const int type = bt & 0xF, n = static_cast<int>(taps.size()), a = n / 2;
    int y;
    const bool real = sourceRow(p, img.h, bt, y);
    std::vector<I> r(img.w);
    long long tapSum = 0;
    for (int v : taps) tapSum += v;
    for (int x = 0; x < img.w; ++x) {
        auto get = [&](int k) { return rowSample(img, y, x - a + k, 0, type, bt, bv); };
        if constexpr (std::is_same<I, float>::value) r[x] = real ? dotSkip(taps, get) : static_cast<float>(tapSum) * bv;
        else r[x] = real ? static_cast<int16_t>(dotInt(taps, get)) : sat<int16_t>(tapSum * bv);
    }
    return r;
}

template <class D, class A> D store(A v) {
    if constexpr (std::is_same<D, int8_t>::value) return sat<int8_t>(static_cast<long long>(v));
    else return static_cast<D>(v);
}

// The Gaussian: normalised float taps, rows by the float row stage (constant
// border rows hold the border value), columns in tap order.
inline std::vector<float> gauss(const Plane<float>& img, int k, float sigma, int bt, float bv) {
    std::vector<double> kern(k);
    float sum = 0;
    std::vector<float> t(k);
    for (int i = 0; i < k; ++i) {
        const float d = static_cast<float>(i - k / 2);
        sum += t[i] = std::exp(-(d * d) / (2.0f * sigma * sigma));
    }
    for (int i = 0; i < k; ++i) kern[i] = t[i] / sum;
    const int w = img.w, h = img.h;
    std::vector<std::vector<float>> rows;
    for (int p = -k / 2, y; p < h + k / 2; ++p) {
        std::vector<float> src(w, bv);
        if (!sourceRow(p, h, bt, y)) {
            rows.push_back(src);
            continue;
        }
        for (int x = 0; x < w; ++x) src[x] = img.at(x, y);
        rows.push_back(pipelineRow<float, float>(RowKind::F32, src, w, 1, kern, k / 2, bt & 0xF, bv, 1));
    }
    std::vector<float> out;
    for (int y = 0; y < h; ++y) {
        std::vector<const float*> win;
        for (int i = 0; i < k; ++i) win.push_back(rows[y + i].data());
        const auto o = pipelineColumn<float, float>(RowKind::F32, win, w, kern, 1);
        out.insert(out.end(), o.begin(), o.end());
    }
    return out;
}

// Whole filter; bt already has code 6 turned into 0xF0.
template <class S, class D>
std::vector<D> fixedFilter(Fixed f, const Plane<S>& img, int n, int bt, S bv, float sigma) {
    using I = typename std::conditional<std::is_same<S, float>::value, float, int16_t>::type;
    if constexpr (std::is_same<S, float>::value)
        if (f == Fixed::Gauss) return gauss(img, n, sigma, bt, bv);
    const int w = img.w, h = img.h, half = n / 2;
    std::vector<D> out(static_cast<size_t>(w) * h);
    auto rowsFor = [&](const std::vector<int>& taps) {
        std::vector<std::vector<I>> rows;
        for (int p = -half; p < h + half; ++p) rows.push_back(intermediate<S, I>(img, p, taps, bt, bv));
        return rows;  // rows[p + half]
    };
    auto colDot = [&](const std::vector<std::vector<I>>& rows, const std::vector<int>& taps, int x, int y) {
        auto get = [&](int k) { return rows[y + k][x]; };
        if constexpr (std::is_same<I, float>::value) return dotSkip(taps, get);
        else return dotInt(taps, get);
    };
    if (f == Fixed::Laplacian && n == 3) {
        const auto A = rowsFor({1, 0, 1});
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                out[y * w + x] = store<D>(static_cast<I>(2 * (A[y][x] + A[y + 2][x]) - 8 * img.at(x, y)));
        return out;
    }
    const Sep sep = separable(f, n);
    const auto R = rowsFor(sep.row);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const auto v = colDot(R, sep.col, x, y);
            D& o = out[y * w + x];
            if (f != Fixed::Lowpass) o = store<D>(static_cast<I>(v));
            else if constexpr (std::is_same<I, float>::value) o = static_cast<D>(v * (1.0f / static_cast<float>(n * n)));
            else o = sat<D>(n == 3 ? ((v + 5) * 7280) >> 16 : (v * 2621) >> 16);  // fixed-point division by 9 or 25
        }
    if (f == Fixed::Laplacian) {  // 5x5: a second pass added to the first
        const Sep s2 = separable(Fixed::SobelVertSecond, 5);
        const auto R2 = rowsFor(s2.row);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                D& o = out[y * w + x];
                if constexpr (!std::is_same<D, int8_t>::value) {
                    o = store<D>(o + colDot(R2, s2.col, x, y));
                } else {
                    // The 8u8s second pass runs the 3x3 Laplacian column
                    // routine on the 5-row window; its second row is read
                    // one ring row on, a zero row after ring slot 19.
                    const int16_t a0 = R2[y][x], a2 = R2[y + 2][x];
                    const int16_t b = ((y - 1) % 20 + 20) % 20 == 19 ? 0 : R2[y + 2][x];
                    o = sat<int8_t>(static_cast<int16_t>(2 * (a0 + a2) - b));
                }
            }
    }
    return out;
}

}  // namespace ref

#endif
