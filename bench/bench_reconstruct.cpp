// Reconstruction by dilation (h-domes: the marker is the image lowered by a
// height) on a smooth, textured scene at 1920x1080 for every sample type and
// both norms, against a straightforward queue-based hybrid reconstruction
// (one raster and one anti-raster sweep, then a FIFO) as the baseline.
#include <algorithm>
#include <cmath>
#include <deque>

#include "benchutil.h"

namespace {

using namespace rvbench;

// Terrain of waves and blobs with a little noise, spanning [0, top].
template <class T> std::vector<T> scene(Size s, double top) {
    std::mt19937 rng(11);
    std::vector<T> v(static_cast<size_t>(s.w) * s.h);
    for (int y = 0; y < s.h; ++y)
        for (int x = 0; x < s.w; ++x) {
            double a = 0.5 + 0.2 * std::sin(x * 0.011) * std::cos(y * 0.017) + 0.15 * std::sin((x + 2 * y) * 0.045);
            a += 0.1 * std::sin(x * 0.13 + std::sin(y * 0.07) * 3);
            a += 0.04 * (static_cast<double>(rng() % 1000) / 1000.0);
            a = a < 0 ? 0 : a > 1 ? 1 : a;
            v[static_cast<size_t>(y) * s.w + x] = static_cast<T>(a * top);
        }
    return v;
}

// The baseline: hybrid reconstruction by dilation, in place on the marker.
template <class T> void hybrid(const T* mask, T* img, int w, int h, bool eight) {
    auto at = [&](T* p, int x, int y) -> T& { return p[static_cast<size_t>(y) * w + x]; };
    auto m = [&](int x, int y) { return mask[static_cast<size_t>(y) * w + x]; };
    const int nb8[4][2] = {{-1, -1}, {0, -1}, {1, -1}, {-1, 0}};
    const int nb4[2][2] = {{0, -1}, {-1, 0}};
    const int (*nb)[2] = eight ? nb8 : nb4;
    const int nn = eight ? 4 : 2;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            T v = at(img, x, y);
            for (int k = 0; k < nn; ++k) {
                const int nx = x + nb[k][0], ny = y + nb[k][1];
                if (nx >= 0 && ny >= 0 && nx < w) v = std::max(v, at(img, nx, ny));
            }
            at(img, x, y) = std::min(v, m(x, y));
        }
    std::deque<int> fifo;
    for (int y = h - 1; y >= 0; --y)
        for (int x = w - 1; x >= 0; --x) {
            T v = at(img, x, y);
            for (int k = 0; k < nn; ++k) {
                const int nx = x - nb[k][0], ny = y - nb[k][1];
                if (nx >= 0 && ny < h && nx < w) v = std::max(v, at(img, nx, ny));
            }
            v = std::min(v, m(x, y));
            at(img, x, y) = v;
            for (int k = 0; k < nn; ++k) {
                const int nx = x - nb[k][0], ny = y - nb[k][1];
                if (nx >= 0 && ny < h && nx < w && at(img, nx, ny) < v && at(img, nx, ny) < m(nx, ny)) {
                    fifo.push_back(y * w + x);
                    break;
                }
            }
        }
    while (!fifo.empty()) {
        const int p = fifo.front();
        fifo.pop_front();
        const int px = p % w, py = p / w;
        const T v = img[p];
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx) {
                if ((dx == 0 && dy == 0) || (!eight && dx != 0 && dy != 0)) continue;
                const int nx = px + dx, ny = py + dy;
                if (nx < 0 || ny < 0 || nx >= w || ny >= h) continue;
                T& q = at(img, nx, ny);
                if (q < v && q != m(nx, ny)) {
                    q = std::min(v, m(nx, ny));
                    fifo.push_back(ny * w + nx);
                }
            }
    }
}

template <class T>
void addType(const char* type, double top, double height, RvpStatus (*sizeFn)(RvpiSize, int*),
             RvpStatus (*fn)(const T*, int, T*, int, RvpiSize, Rvp8u*, int)) {
    const Size s = hd()[0];
    auto mask = std::make_shared<std::vector<T>>(scene<T>(s, top));
    auto marker = std::make_shared<std::vector<T>>(*mask);
    for (T& v : *marker) v = static_cast<T>(static_cast<double>(v) > height ? static_cast<double>(v) - height : 0);
    auto work = std::make_shared<std::vector<T>>(*marker);
    int bytes = 0;
    sizeFn({s.w, s.h}, &bytes);
    auto buffer = std::make_shared<std::vector<Rvp8u>>(static_cast<size_t>(bytes));
    const size_t rowBytes = sizeof(T) * s.w;
    const double pixels = static_cast<double>(s.w) * s.h;
    for (int norm : {0, 1}) {
        const std::string op = std::string("Reconstruct") + (norm == 0 ? "8" : "4") + "_" + type;
        auto rate = [=](benchmark::State& b) {
            b.counters["MP/s"] = benchmark::Counter(pixels * b.iterations() / 1e6, benchmark::Counter::kIsRate);
        };
        add(op, "rvp", s, 0, [=](benchmark::State& b) {
            for (auto _ : b) {
                std::memcpy(work->data(), marker->data(), marker->size() * sizeof(T));
                fn(mask->data(), static_cast<int>(rowBytes), work->data(), static_cast<int>(rowBytes), {s.w, s.h},
                   buffer->data(), norm);
                benchmark::ClobberMemory();
            }
            rate(b);
        });
        add(op, "queue", s, 0, [=](benchmark::State& b) {
            for (auto _ : b) {
                std::memcpy(work->data(), marker->data(), marker->size() * sizeof(T));
                hybrid(mask->data(), work->data(), s.w, s.h, norm == 0);
                benchmark::ClobberMemory();
            }
            rate(b);
        });
    }
}

const int kRegistered = [] {
    addType<Rvp8u>("8u", 255, 40, rvpiMorphReconstructGetBufferSize_8u_C1, rvpiMorphReconstructDilate_8u_C1IR);
    addType<Rvp16u>("16u", 65535, 10000, rvpiMorphReconstructGetBufferSize_16u_C1,
                    rvpiMorphReconstructDilate_16u_C1IR);
    addType<Rvp32f>("32f", 1, 0.15, rvpiMorphReconstructGetBufferSize_32f_C1, rvpiMorphReconstructDilate_32f_C1IR);
    addType<Rvp64f>("64f", 1, 0.15, rvpiMorphReconstructGetBufferSize_64f_C1, rvpiMorphReconstructDilate_64f_C1IR);
    return 0;
}();

}  // namespace
