// Background models against the peer's mixture-of-Gaussians subtractor
// (shadows off) per frame, on a noisy scene with moving blocks, and motion
// history against a numpy-style select written out here.
#include "benchutil.h"

#ifdef RVPCV_HAVE_OPENCV
#include <opencv2/video.hpp>
#endif

namespace {

using namespace rvbench;

// Frames of a scene: a fixed texture, noise, a bright block that moves.
std::shared_ptr<std::vector<Plane<Rvp8u>>> frames(Size s, int channels) {
    auto v = std::make_shared<std::vector<Plane<Rvp8u>>>();
    Plane<Rvp8u> base(s, channels, 3);
    for (int t = 0; t < 8; ++t) {
        v->emplace_back(s, channels, 10 + t);
        Plane<Rvp8u>& f = v->back();
        for (int y = 0; y < s.h; ++y)
            for (int x = 0; x < s.w * channels; ++x) {
                const size_t i = static_cast<size_t>(y) * f.step + x;
                const bool block = x / channels >= 100 * t && x / channels < 100 * t + 200 && y >= 400 && y < 600;
                f.ptr()[i] = block ? 240 : static_cast<Rvp8u>(base.ptr()[i] / 2 + f.ptr()[i] % 5);
            }
    }
    return v;
}

void addGauss(int channels) {
    const Size s = hd()[0];
    auto fs = frames(s, channels);
    const std::string op = channels == 1 ? "ForegroundGauss_8u_C1" : "ForegroundGauss_8u_C3";
    const size_t moved = (*fs)[0].bytes();
    add(op, "rvp", s, moved, [=](benchmark::State& st) {
        RvpiFGGaussianState* g = nullptr;
        const Plane<Rvp8u>& f0 = (*fs)[0];
        (channels == 1 ? rvpiForegroundGaussianInitAlloc_8u_C1R : rvpiForegroundGaussianInitAlloc_8u_C3R)(
            f0.ptr(), f0.step, f0.size(), &g, &g);
        std::vector<Rvp8u> bg(f0.bytes()), mask(static_cast<size_t>(s.w) * s.h);
        size_t t = 0;
        for (auto _ : st) {
            const Plane<Rvp8u>& f = (*fs)[++t % fs->size()];
            (channels == 1 ? rvpiForegroundGaussian_8u_C1R : rvpiForegroundGaussian_8u_C3R)(
                f.ptr(), f.step, bg.data(), f.step, mask.data(), s.w, f.size(), g);
        }
        rvpiForegroundGaussianFree_8u_C1R(g);
    });
#ifdef RVPCV_HAVE_OPENCV
    add(op, "cv", s, moved, [=](benchmark::State& st) {
        auto mog = cv::createBackgroundSubtractorMOG2(200, 16, false);
        cv::Mat mask;
        mog->apply((*fs)[0].mat(), mask);
        size_t t = 0;
        for (auto _ : st) mog->apply((*fs)[++t % fs->size()].mat(), mask);
    });
#endif
}

void addHistory() {
    const Size s = hd()[0];
    auto sil = std::make_shared<Plane<Rvp8u>>(s, 1, 1);
    auto hist = std::make_shared<Plane<Rvp32f>>(s, 1, 2);
    for (size_t i = 0; i < static_cast<size_t>(s.w) * s.h; ++i) sil->ptr()[i] &= 1;
    const size_t moved = sil->bytes() + 2 * hist->bytes();
    add("MotionHistory_8u32f", "rvp", s, moved, [=](benchmark::State& st) {
        float ts = 1;
        for (auto _ : st) rvpiUpdateMotionHistory_8u32f_C1IR(sil->ptr(), sil->step, hist->ptr(), hist->step, sil->size(), ts++, 3);
    });
    add("MotionHistory_8u32f", "plain", s, moved, [=](benchmark::State& st) {
        float ts = 1;
        const size_t n = static_cast<size_t>(s.w) * s.h;
        for (auto _ : st) {
            const float limit = ts - 3;
            float* h = hist->ptr();
            const Rvp8u* m = sil->ptr();
            for (size_t i = 0; i < n; ++i) h[i] = m[i] ? ts : (limit <= h[i] ? h[i] : 0.0f);
            ts++;
            benchmark::ClobberMemory();
        }
    });
    addMemcpy("MotionHistory_8u32f", s, moved);
}

const int kRegistered = [] {
    addGauss(1);
    addGauss(3);
    addHistory();
    return 0;
}();

}  // namespace
