// Canny from 3x3 Sobel derivatives of a generated scene and of noise,
// against the peer's Canny given the same derivative images (L1 gradient,
// same thresholds).
#include <cmath>

#include "benchutil.h"

namespace {

using namespace rvbench;

// Shaded background, discs, boxes, stripes and noise; 8-bit values.
std::vector<int> scene(Size s) {
    std::vector<int> img(static_cast<size_t>(s.w) * s.h);
    std::mt19937 rng(7);
    for (int y = 0; y < s.h; ++y)
        for (int x = 0; x < s.w; ++x) {
            double v = 60 + 100.0 * x / s.w + 40.0 * y / s.h;
            for (int k = 0; k < 6; ++k) {
                const double cx = s.w * (0.1 + 0.15 * k), cy = s.h * (0.3 + 0.08 * k), r = s.h * (0.05 + 0.02 * k);
                if (std::hypot(x - cx, y - cy) < r) v = 40 + 35 * k;
            }
            if (y > s.h * 0.7 && y < s.h * 0.9 && x > s.w * 0.55 && x < s.w * 0.9) v = (x / 5) % 2 ? 200 : 70;
            if (y > s.h * 0.05 && y < s.h * 0.2 && x > s.w * 0.05 && x < s.w * 0.3) v = ((x + y) / 8) % 2 ? 230 : 20;
            v += static_cast<int>(rng() % 9) - 4;
            img[static_cast<size_t>(y) * s.w + x] = static_cast<int>(v);
        }
    return img;
}

// 3x3 Sobel with replicated border, into 16-bit and float planes.
void sobel(Size s, const std::vector<int>& img, Plane<Rvp16s>& dx, Plane<Rvp16s>& dy, Plane<Rvp32f>& fx,
           Plane<Rvp32f>& fy) {
    auto I = [&](int x, int y) {
        x = std::min(std::max(x, 0), s.w - 1), y = std::min(std::max(y, 0), s.h - 1);
        return img[static_cast<size_t>(y) * s.w + x];
    };
    for (int y = 0; y < s.h; ++y)
        for (int x = 0; x < s.w; ++x) {
            const int gx = I(x + 1, y - 1) + 2 * I(x + 1, y) + I(x + 1, y + 1) - I(x - 1, y - 1) - 2 * I(x - 1, y) -
                           I(x - 1, y + 1);
            const int gy = I(x - 1, y + 1) + 2 * I(x, y + 1) + I(x + 1, y + 1) - I(x - 1, y - 1) - 2 * I(x, y - 1) -
                           I(x + 1, y - 1);
            const size_t i = static_cast<size_t>(y) * s.w + x;
            dx.ptr()[i] = static_cast<Rvp16s>(gx), dy.ptr()[i] = static_cast<Rvp16s>(gy);
            fx.ptr()[i] = static_cast<float>(gx), fy.ptr()[i] = static_cast<float>(gy);
        }
}

constexpr float kLow = 60, kHigh = 180;

// Two inputs: the scene (sparse edges, typical use) and uniform noise, whose
// derivatives make most pixels candidates (the dense worst case).
void addCanny(const std::string& name, Size s, const std::vector<int>& img) {
    auto dx = std::make_shared<Plane<Rvp16s>>(s), dy = std::make_shared<Plane<Rvp16s>>(s);
    auto fx = std::make_shared<Plane<Rvp32f>>(s), fy = std::make_shared<Plane<Rvp32f>>(s);
    auto edges = std::make_shared<Plane<Rvp8u>>(s);
    sobel(s, img, *dx, *dy, *fx, *fy);
    int size = 0;
    rvpiCannyGetSize(dx->size(), &size);
    auto buf = std::make_shared<std::vector<Rvp8u>>(static_cast<size_t>(size));
    const size_t moved = 5 * edges->bytes();
    add("Canny_16s8u_" + name, "rvp", s, moved, [=](benchmark::State& st) {
        for (auto _ : st)
            rvpiCanny_16s8u_C1R(dx->ptr(), dx->step, dy->ptr(), dy->step, edges->ptr(), edges->step, dx->size(), kLow,
                                kHigh, buf->data());
    });
    add("Canny_32f8u_" + name, "rvp", s, 9 * edges->bytes(), [=](benchmark::State& st) {
        for (auto _ : st)
            rvpiCanny_32f8u_C1R(fx->ptr(), fx->step, fy->ptr(), fy->step, edges->ptr(), edges->step, fx->size(), kLow,
                                kHigh, buf->data());
    });
#ifdef RVPCV_HAVE_OPENCV
    add("Canny_16s8u_" + name, "cv", s, moved, [=](benchmark::State& st) {
        cv::Mat mx = dx->mat(), my = dy->mat(), me = edges->mat();
        for (auto _ : st) cv::Canny(mx, my, me, kLow, kHigh, false);
    });
#endif
}

const int kRegistered = [] {
    for (Size s : hd()) {
        addCanny("scene", s, scene(s));
        std::vector<int> noise(static_cast<size_t>(s.w) * s.h);
        std::mt19937 rng(9);
        for (int& v : noise) v = static_cast<int>(rng() % 256);
        addCanny("noise", s, noise);
    }
    return 0;
}();

}  // namespace
