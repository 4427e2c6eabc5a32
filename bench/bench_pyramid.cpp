// Gaussian 5x5 pyramid steps against the peer's pyrDown / pyrUp at
// 1920x1080 (down: from 1920x1080; up: to 1920x1080), 8u gray and colour,
// 32f gray.
#include "benchutil.h"
#ifdef RVPCV_HAVE_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace {

using namespace rvbench;

template <class T> std::shared_ptr<std::vector<T>> picture(int w, int h, int c) {
    auto v = std::make_shared<std::vector<T>>(static_cast<size_t>(w) * h * c);
    std::mt19937 rng(3);
    for (T& p : *v) p = static_cast<T>(rng() % 256);
    return v;
}


template <class T, int C>
void addStep(const std::string& op, bool isUp, RvpStatus (*fn)(const T*, int, T*, int, RvpiSize, Rvp8u*), int dataType,
             int cvType) {
    const Size s = hd()[0];
    const int sw = isUp ? s.w / 2 : s.w, sh = isUp ? s.h / 2 : s.h;
    const int dw = isUp ? s.w : (s.w + 1) / 2, dh = isUp ? s.h : (s.h + 1) / 2;
    const auto src = picture<T>(sw, sh, C);
    add(op, "rvp", s, 0, [=](benchmark::State& st) {
        int bytes = 0;
        (isUp ? rvpiPyrUpGetBufSize_Gauss5x5 : rvpiPyrDownGetBufSize_Gauss5x5)(sw, dataType, C, &bytes);
        std::vector<Rvp8u> buf(static_cast<size_t>(bytes));
        std::vector<T> dst(static_cast<size_t>(dw) * dh * C);
        for (auto _ : st)
            fn(src->data(), sw * C * static_cast<int>(sizeof(T)), dst.data(), dw * C * static_cast<int>(sizeof(T)), {sw, sh}, buf.data());
    });
#ifdef RVPCV_HAVE_OPENCV
    add(op, "cv", s, 0, [=](benchmark::State& st) {
        const cv::Mat m(sh, sw, cvType, src->data());
        cv::Mat out(dh, dw, cvType);
        for (auto _ : st) {
            if (isUp) cv::pyrUp(m, out, cv::Size(dw, dh));
            else cv::pyrDown(m, out, cv::Size(dw, dh));
        }
    });
#else
    (void)cvType;
#endif
}

void addRuns() {
#ifndef RVPCV_HAVE_OPENCV
    constexpr int CV_8UC1 = 0, CV_8UC3 = 0, CV_32FC1 = 0;
#endif
    addStep<Rvp8u, 1>("PyrDown_8u_C1", false, rvpiPyrDown_Gauss5x5_8u_C1R, RVP_SAMPLE_8U, CV_8UC1);
    addStep<Rvp8u, 3>("PyrDown_8u_C3", false, rvpiPyrDown_Gauss5x5_8u_C3R, RVP_SAMPLE_8U, CV_8UC3);
    addStep<Rvp32f, 1>("PyrDown_32f_C1", false, rvpiPyrDown_Gauss5x5_32f_C1R, RVP_SAMPLE_32F, CV_32FC1);
    addStep<Rvp8u, 1>("PyrUp_8u_C1", true, rvpiPyrUp_Gauss5x5_8u_C1R, RVP_SAMPLE_8U, CV_8UC1);
    addStep<Rvp8u, 3>("PyrUp_8u_C3", true, rvpiPyrUp_Gauss5x5_8u_C3R, RVP_SAMPLE_8U, CV_8UC3);
    addStep<Rvp32f, 1>("PyrUp_32f_C1", true, rvpiPyrUp_Gauss5x5_32f_C1R, RVP_SAMPLE_32F, CV_32FC1);
}

const int kRegistered = (addRuns(), 0);

}  // namespace
