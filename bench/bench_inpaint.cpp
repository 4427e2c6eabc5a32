// Inpainting against the peer's distance-directed inpainting (radius 5) at
// 1920x1080 with 1% and 5% of the pixels masked (scattered scratches); the
// counter "per_px" is the time per masked pixel, which should stay flat as
// the mask grows. The state (fill order) is built outside the timed loop on
// this side; the peer has no such split and builds it on every call.
#include "benchutil.h"

#ifdef RVPCV_HAVE_OPENCV
#include <opencv2/photo.hpp>
#endif

namespace {

using namespace rvbench;

struct Damage {
    std::vector<Rvp8u> mask;
    std::vector<float> dist;
    size_t count = 0;
};

// Horizontal scratches 3 pixels high until `share` of the image is masked,
// with the city-block distance to the known pixels.
Damage damage(Size s, double share) {
    Damage d;
    d.mask.assign(static_cast<size_t>(s.w) * s.h, 0);
    std::mt19937 rng(7);
    while (d.count < share * s.w * s.h) {
        const int y = 2 + rng() % (s.h - 6), x0 = rng() % (s.w - 200), len = 50 + rng() % 150;
        for (int t = 0; t < 3; ++t)
            for (int x = x0; x < x0 + len; ++x) {
                Rvp8u& m = d.mask[static_cast<size_t>(y + t) * s.w + x];
                d.count += !m;
                m = 255;
            }
    }
    d.dist.assign(d.mask.size(), 0.0f);
    for (size_t i = 0; i < d.mask.size(); ++i) d.dist[i] = d.mask[i] ? 1e9f : 0.0f;
    for (int pass = 0; pass < 2; ++pass)
        for (int k = 0; k < s.w * s.h; ++k) {
            const int i = pass ? s.w * s.h - 1 - k : k, x = i % s.w, y = i / s.w, o = pass ? 1 : -1;
            if (x + o >= 0 && x + o < s.w) d.dist[i] = std::min(d.dist[i], d.dist[i + o] + 1);
            if (y + o >= 0 && y + o < s.h) d.dist[i] = std::min(d.dist[i], d.dist[i + o * s.w] + 1);
        }
    return d;
}

void addInpaint(double share) {
    const Size s = hd()[0];
    auto img = std::make_shared<Plane<Rvp8u>>(s, 3, 1), out = std::make_shared<Plane<Rvp8u>>(s, 3, 2);
    auto d = std::make_shared<Damage>(damage(s, share));
    const std::string op = "Inpaint_8u_C3_" + std::to_string(static_cast<int>(share * 100)) + "pct";
    add(op, "rvp", s, img->bytes(), [=](benchmark::State& st) {
        RvpiInpaintState* state = nullptr;
        rvpiInpaintInitAlloc_8u_C3R(&state, d->dist.data(), 4 * s.w, d->mask.data(), s.w, {s.w, s.h}, 5.0f, 0);
        for (auto _ : st) rvpiInpaint_8u_C3R(img->ptr(), img->step, out->ptr(), out->step, {s.w, s.h}, state);
        rvpiInpaintFree_8u_C3R(state);
        st.counters["per_px"] = benchmark::Counter(static_cast<double>(d->count), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    });
#ifdef RVPCV_HAVE_OPENCV
    add(op, "cv", s, img->bytes(), [=](benchmark::State& st) {
        cv::Mat src = img->mat(), dst = out->mat(), m(s.h, s.w, CV_8U, d->mask.data());
        for (auto _ : st) cv::inpaint(src, m, dst, 5.0, cv::INPAINT_TELEA);
        st.counters["per_px"] = benchmark::Counter(static_cast<double>(d->count), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    });
#endif
}

const int kRegistered = (addInpaint(0.01), addInpaint(0.05), 0);

}  // namespace
