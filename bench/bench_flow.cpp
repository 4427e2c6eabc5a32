// Pyramidal optical flow: 500 points of a smooth textured scene followed to
// the scene shifted by (2.3, -1.6), window 21, 3 levels above the image,
// pyramids built beforehand on both sides (2x2 means here, the peer's own
// pyramid for the peer).
#include <cmath>

#include "benchutil.h"
#ifdef RVPCV_HAVE_OPENCV
#include <opencv2/video/tracking.hpp>
#endif

namespace {

using namespace rvbench;

constexpr int kPoints = 500, kWindow = 21, kLevels = 3;

struct Scene {
    std::vector<std::vector<Rvp8u>> a, b;  // levels
    std::vector<RvpiSize> rois;
    std::vector<Rvp64f> rates;
    std::vector<int> steps;
    std::vector<void*> pa, pb;
    std::vector<RvpiPoint32f> pts;
    RvpiPyramid ra{}, rb{};
};

double texture(double x, double y) {
    return 128 + 30 * std::sin(x / 11.0 + std::cos(y / 17.0)) * std::cos(y / 13.0 - std::sin(x / 23.0)) +
           20 * std::sin((x + y) / 5.3) * std::sin((x - y) / 7.1);
}

std::shared_ptr<Scene> makeScene(Size s) {
    auto sc = std::make_shared<Scene>();
    for (const double shift : {0.0, 1.0}) {
        std::vector<std::vector<Rvp8u>>& lv = shift == 0 ? sc->a : sc->b;
        std::vector<Rvp8u> img(static_cast<size_t>(s.w) * s.h);
        for (int y = 0; y < s.h; ++y)
            for (int x = 0; x < s.w; ++x)
                img[static_cast<size_t>(y) * s.w + x] =
                    static_cast<Rvp8u>(std::lround(texture(x - 2.3 * shift, y + 1.6 * shift)));
        lv.push_back(std::move(img));
        for (int l = 1, w = s.w, h = s.h; l <= kLevels; ++l) {
            const std::vector<Rvp8u>& up = lv.back();
            const int nw = w / 2, nh = h / 2;
            std::vector<Rvp8u> d(static_cast<size_t>(nw) * nh);
            for (int y = 0; y < nh; ++y)
                for (int x = 0; x < nw; ++x) {
                    const Rvp8u* q = up.data() + static_cast<size_t>(2 * y) * w + 2 * x;
                    d[static_cast<size_t>(y) * nw + x] = static_cast<Rvp8u>((q[0] + q[1] + q[w] + q[w + 1] + 2) / 4);
                }
            lv.push_back(std::move(d));
            w = nw, h = nh;
        }
    }
    for (int l = 0, w = s.w, h = s.h; l <= kLevels; ++l, w /= 2, h /= 2) {
        sc->rois.push_back({w, h});
        sc->rates.push_back(std::ldexp(1.0, -l));
        sc->steps.push_back(w);
        sc->pa.push_back(sc->a[l].data());
        sc->pb.push_back(sc->b[l].data());
    }
    sc->ra = {sc->pa.data(), sc->rois.data(), sc->rates.data(), sc->steps.data(), nullptr, kLevels};
    sc->rb = {sc->pb.data(), sc->rois.data(), sc->rates.data(), sc->steps.data(), nullptr, kLevels};
    std::mt19937 rng(3);
    for (int i = 0; i < kPoints; ++i)
        sc->pts.push_back({static_cast<float>(40 + rng() % (s.w - 80)), static_cast<float>(40 + rng() % (s.h - 80))});
    return sc;
}

void addRuns() {
    const Size s = hd()[0];
    const auto sc = makeScene(s);
    add("OpticalFlowPyrLK_8u_500pts", "rvp", s, 0, [=](benchmark::State& st) {
        // The state takes the team of the call that makes it: made inside a
        // region of the permitted threads, the points go in bands over them.
        RvpiOptFlowPyrLKState* state = nullptr;
        int threads = 1;
        rvpGetNumThreads(&threads);
#pragma omp parallel num_threads(threads)
        {
#pragma omp master
            rvpiOpticalFlowPyrLKInitAlloc_8u_C1R(&state, sc->rois[0], kWindow, 0);
        }
        std::vector<RvpiPoint32f> next(sc->pts.size());
        std::vector<Rvp8s> status(sc->pts.size());
        std::vector<Rvp32f> error(sc->pts.size());
        for (auto _ : st) {
            next = sc->pts;
            rvpiOpticalFlowPyrLK_8u_C1R(&sc->ra, &sc->rb, sc->pts.data(), next.data(), status.data(), error.data(),
                                        kPoints, kWindow, kLevels, 30, 0.01f, state);
        }
        rvpiOpticalFlowPyrLKFree_8u_C1R(state);
    });
#ifdef RVPCV_HAVE_OPENCV
    add("OpticalFlowPyrLK_8u_500pts", "cv", s, 0, [=](benchmark::State& st) {
        const cv::Mat a(s.h, s.w, CV_8UC1, sc->a[0].data()), b(s.h, s.w, CV_8UC1, sc->b[0].data());
        std::vector<cv::Mat> pa, pb;
        cv::buildOpticalFlowPyramid(a, pa, cv::Size(kWindow, kWindow), kLevels);
        cv::buildOpticalFlowPyramid(b, pb, cv::Size(kWindow, kWindow), kLevels);
        std::vector<cv::Point2f> prev, next;
        for (const RvpiPoint32f& p : sc->pts) prev.push_back({p.x, p.y});
        std::vector<uchar> status;
        std::vector<float> error;
        const cv::TermCriteria term(cv::TermCriteria::COUNT | cv::TermCriteria::EPS, 30, 0.01);
        for (auto _ : st) cv::calcOpticalFlowPyrLK(pa, pb, prev, next, status, error, cv::Size(kWindow, kWindow), kLevels, term);
    });
#endif
}

const int kRegistered = (addRuns(), 0);

}  // namespace
