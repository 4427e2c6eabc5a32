// Sub-pixel patches: 500 patches of 21 x 21 samples centred on random points
// of a 1920x1080 picture (8u to 16u with 7 fractional bits, and 32f), against
// the peer's rectangle sampler (8u to 8u, 32f to 32f).
#include "benchutil.h"
#ifdef RVPCV_HAVE_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace {

using namespace rvbench;

constexpr int kPatches = 500, kSide = 21;

std::vector<RvpiPoint32f> centres(Size s) {
    std::mt19937 rng(7);
    std::uniform_real_distribution<float> x(0.0f, static_cast<float>(s.w)), y(0.0f, static_cast<float>(s.h));
    std::vector<RvpiPoint32f> v;
    for (int i = 0; i < kPatches; ++i) v.push_back({x(rng), y(rng)});
    return v;
}

template <class T> std::shared_ptr<std::vector<T>> picture(Size s) {
    auto v = std::make_shared<std::vector<T>>(static_cast<size_t>(s.w) * s.h);
    std::mt19937 rng(5);
    for (T& p : *v) p = static_cast<T>(rng() % 256);
    return v;
}

void addRuns() {
    const Size s = hd()[0];
    const auto pts = centres(s);
    const auto g8 = picture<Rvp8u>(s);
    const auto g32 = picture<Rvp32f>(s);
    add("GetRectSubPix_8u_21x21_500", "rvp", s, 0, [=](benchmark::State& st) {
        std::vector<Rvp16u> out(kSide * kSide);
        RvpiPoint lo, hi;
        for (auto _ : st)
            for (const RvpiPoint32f& p : pts)
                rvpiCopySubpixIntersect_8u16u_C1R_Sfs(g8->data(), s.w, {s.w, s.h}, out.data(), 2 * kSide, {kSide, kSide}, p,
                                                      &lo, &hi, -7);
    });
    add("GetRectSubPix_32f_21x21_500", "rvp", s, 0, [=](benchmark::State& st) {
        std::vector<Rvp32f> out(kSide * kSide);
        RvpiPoint lo, hi;
        for (auto _ : st)
            for (const RvpiPoint32f& p : pts)
                rvpiCopySubpixIntersect_32f_C1R(g32->data(), 4 * s.w, {s.w, s.h}, out.data(), 4 * kSide, {kSide, kSide}, p,
                                                &lo, &hi);
    });
#ifdef RVPCV_HAVE_OPENCV
    add("GetRectSubPix_8u_21x21_500", "cv", s, 0, [=](benchmark::State& st) {
        const cv::Mat m(s.h, s.w, CV_8UC1, g8->data());
        cv::Mat out;
        for (auto _ : st)
            for (const RvpiPoint32f& p : pts) cv::getRectSubPix(m, cv::Size(kSide, kSide), cv::Point2f(p.x, p.y), out);
    });
    add("GetRectSubPix_32f_21x21_500", "cv", s, 0, [=](benchmark::State& st) {
        const cv::Mat m(s.h, s.w, CV_32FC1, g32->data());
        cv::Mat out;
        for (auto _ : st)
            for (const RvpiPoint32f& p : pts) cv::getRectSubPix(m, cv::Size(kSide, kSide), cv::Point2f(p.x, p.y), out);
    });
#endif
}

const int kRegistered = (addRuns(), 0);

}  // namespace
