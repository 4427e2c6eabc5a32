// Summed-area tables against the peer's integral (sum; sum and squares;
// sum, squares and tilted in one call), and the float rectangle deviation,
// which has no peer, at one thread and all threads.
#include "benchutil.h"

namespace {

using namespace rvbench;

template <class T> std::shared_ptr<std::vector<T>> tableOf(Size s, int extra) {
    return std::make_shared<std::vector<T>>(static_cast<size_t>(s.w + extra) * (s.h + extra), T(0));
}

void addIntegrals() {
    for (Size s : hd()) {
        auto src = std::make_shared<Plane<Rvp8u>>(s, 1, 1);
        auto sum = tableOf<Rvp32s>(s, 2);
        auto sumf = tableOf<Rvp32f>(s, 2);
        auto sqr = tableOf<Rvp64f>(s, 2);
        auto tilt = tableOf<Rvp32s>(s, 2);
        const int w = s.w;
        const size_t px = static_cast<size_t>(s.w) * s.h;
        add("Integral_8u32s", "rvp", s, px * 5, [=](benchmark::State& st) {
            for (auto _ : st) rvpiIntegral_8u32s_C1R(src->ptr(), src->step, sum->data(), (w + 1) * 4, src->size(), 0);
        });
        add("Integral_8u32f", "rvp", s, px * 5, [=](benchmark::State& st) {
            for (auto _ : st) rvpiIntegral_8u32f_C1R(src->ptr(), src->step, sumf->data(), (w + 1) * 4, src->size(), 0);
        });
        add("SqrIntegral_8u32s64f", "rvp", s, px * 13, [=](benchmark::State& st) {
            for (auto _ : st)
                rvpiSqrIntegral_8u32s64f_C1R(src->ptr(), src->step, sum->data(), (w + 1) * 4, sqr->data(), (w + 1) * 8,
                                             src->size(), 0, 0);
        });
        add("TiltedIntegral_8u32s", "rvp", s, px * 5, [=](benchmark::State& st) {
            for (auto _ : st)
                rvpiTiltedIntegral_8u32s_C1R(src->ptr(), src->step, tilt->data(), (w + 2) * 4, src->size(), 0);
        });
        // The peer builds the tilted table only together with the other two,
        // so the like-for-like comparison is all three tables.
        add("SumSqrTilted_8u32s64f", "rvp", s, px * 17, [=](benchmark::State& st) {
            for (auto _ : st) {
                rvpiSqrIntegral_8u32s64f_C1R(src->ptr(), src->step, sum->data(), (w + 1) * 4, sqr->data(), (w + 1) * 8,
                                             src->size(), 0, 0);
                rvpiTiltedIntegral_8u32s_C1R(src->ptr(), src->step, tilt->data(), (w + 2) * 4, src->size(), 0);
            }
        });
#ifdef RVPCV_HAVE_OPENCV
        auto mats = std::make_shared<std::vector<cv::Mat>>(4);
        add("Integral_8u32s", "cv", s, px * 5, [=](benchmark::State& st) {
            cv::Mat m = src->mat();
            for (auto _ : st) cv::integral(m, (*mats)[0], CV_32S);
        });
        add("Integral_8u32f", "cv", s, px * 5, [=](benchmark::State& st) {
            cv::Mat m = src->mat();
            for (auto _ : st) cv::integral(m, (*mats)[3], CV_32F);
        });
        add("SqrIntegral_8u32s64f", "cv", s, px * 13, [=](benchmark::State& st) {
            cv::Mat m = src->mat();
            for (auto _ : st) cv::integral(m, (*mats)[0], (*mats)[1], CV_32S, CV_64F);
        });
        for (const char* op : {"TiltedIntegral_8u32s", "SumSqrTilted_8u32s64f"})
            add(op, "cv", s, px * 17, [=](benchmark::State& st) {
                cv::Mat m = src->mat();
                for (auto _ : st) cv::integral(m, (*mats)[0], (*mats)[1], (*mats)[2], CV_32S, CV_64F);
            });
#endif
    }
}

void addRectStdDev() {
    for (Size s : hd()) {
        auto src = std::make_shared<Plane<Rvp8u>>(s, 1, 2);
        auto sum = tableOf<Rvp32f>(s, 1);
        auto sqr = tableOf<Rvp64f>(s, 1);
        const int w = s.w;
        rvpiSqrIntegral_8u32f64f_C1R(src->ptr(), src->step, sum->data(), (w + 1) * 4, sqr->data(), (w + 1) * 8,
                                     src->size(), 0, 0);
        const RvpiRect r{0, 0, 24, 24};
        const RvpiSize out{s.w + 1 - 24, s.h + 1 - 24};
        auto dst = std::make_shared<std::vector<Rvp32f>>(static_cast<size_t>(out.width) * out.height);
        add("RectStdDev_32f", "rvp", s, static_cast<size_t>(out.width) * out.height * 28, [=](benchmark::State& st) {
            for (auto _ : st)
                rvpiRectStdDev_32f_C1R(sum->data(), (w + 1) * 4, sqr->data(), (w + 1) * 8, dst->data(), out.width * 4,
                                       out, r);
        });
    }
}

const int kRegistered = [] {
    addIntegrals();
    addRectStdDev();
    return 0;
}();

}  // namespace
