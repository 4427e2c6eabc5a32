// Hough lines (rho 1, theta 1 degree, 32 lines) on the Canny edge map of a
// photo-like 1920x1080 scene against the peer's HoughLines, and the fast
// arctangent over a vector of 1920x1080 pairs against the peer's.
#include <cmath>

#include "benchutil.h"
#ifdef RVPCV_HAVE_OPENCV
#include <opencv2/core/hal/hal.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace {

using namespace rvbench;

// Shaded scene with discs, bars and a few straight edges at odd angles.
std::shared_ptr<std::vector<Rvp8u>> edges(Size s) {
    std::vector<Rvp8u> img(static_cast<size_t>(s.w) * s.h);
    for (int y = 0; y < s.h; ++y)
        for (int x = 0; x < s.w; ++x) {
            double v = 90 + 40 * std::sin(x / 300.0) * std::cos(y / 210.0);
            for (int k = 0; k < 8; ++k) {
                const int cx = (k * 397) % s.w, cy = (k * 241) % s.h, r = 60 + 15 * k;
                if ((x - cx) * (x - cx) + (y - cy) * (y - cy) < r * r) v = 170 + 3 * k;
            }
            for (int k = 0; k < 6; ++k)
                if (x * std::cos(0.3 + 0.45 * k) + y * std::sin(0.3 + 0.45 * k) > 300 + 120 * k) v += 25;
            img[static_cast<size_t>(y) * s.w + x] = static_cast<Rvp8u>(std::min(255.0, v));
        }
    auto e = std::make_shared<std::vector<Rvp8u>>(img.size(), 0);
    for (int y = 1; y + 1 < s.h; ++y)  // a thin gradient-magnitude edge map
        for (int x = 1; x + 1 < s.w; ++x) {
            const size_t i = static_cast<size_t>(y) * s.w + x;
            const int gx = img[i + 1] - img[i - 1], gy = img[i + s.w] - img[i - s.w];
            if (std::abs(gx) + std::abs(gy) > 20 && (x + y) % 2 == 0) (*e)[i] = 255;
        }
    return e;
}

void addRuns() {
    const Size s = hd()[0];
    const auto e = edges(s);
    constexpr int kLines = 32, kThreshold = 150;
    add("HoughLines_8u", "rvp", s, 0, [=](benchmark::State& st) {
        const RvpPointPolar delta{1.0f, static_cast<float>(M_PI / 180)};
        int bytes = 0;
        rvpiHoughLineGetSize_8u_C1R({s.w, s.h}, delta, kLines, &bytes);
        std::vector<Rvp8u> buf(static_cast<size_t>(bytes));
        std::vector<RvpPointPolar> lines(kLines);
        int n = 0;
        for (auto _ : st)
            rvpiHoughLine_8u32f_C1R(e->data(), s.w, {s.w, s.h}, delta, kThreshold, lines.data(), kLines, &n, buf.data());
    });
    const size_t n = static_cast<size_t>(s.w) * s.h;
    auto y = std::make_shared<std::vector<float>>(n), x = std::make_shared<std::vector<float>>(n);
    std::mt19937 rng(1);
    for (size_t i = 0; i < n; ++i) (*y)[i] = static_cast<float>(static_cast<int>(rng() % 2001) - 1000), (*x)[i] = static_cast<float>(static_cast<int>(rng() % 2001) - 1000);
    add("FastArctan_32f", "rvp", s, n * 12, [=](benchmark::State& st) {
        std::vector<float> out(n);
        for (auto _ : st) rvpibFastArctan_32f(y->data(), x->data(), out.data(), static_cast<int>(n));
    });
#ifdef RVPCV_HAVE_OPENCV
    add("HoughLines_8u", "cv", s, 0, [=](benchmark::State& st) {
        const cv::Mat m(s.h, s.w, CV_8UC1, e->data());
        std::vector<cv::Vec2f> lines;
        for (auto _ : st) {
            cv::HoughLines(m, lines, 1, CV_PI / 180, kThreshold);
            if (lines.size() > kLines) lines.resize(kLines);
        }
    });
    add("FastArctan_32f", "cv", s, n * 12, [=](benchmark::State& st) {
        std::vector<float> out(n);
        for (auto _ : st) cv::hal::fastAtan32f(y->data(), x->data(), out.data(), static_cast<int>(n), true);
    });
#endif
}

const int kRegistered = (addRuns(), 0);

}  // namespace
