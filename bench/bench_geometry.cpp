// Lens undistortion against the peer's undistort (bilinear, the same radial
// coefficients) and its undistortion map in single-precision planes.
#include "benchutil.h"

#ifdef RVPCV_HAVE_OPENCV
#include <opencv2/calib3d.hpp>
#endif

namespace {

using namespace rvbench;

constexpr float kFx = 1400, kFy = 1380, kCx = 960, kCy = 540, kK1 = -0.28f, kK2 = 0.07f, kP1 = 0.001f, kP2 = -0.0005f;

template <class T>
void addUndistort(const std::string& op, int channels,
                  RvpStatus (*fn)(const T*, int, T*, int, RvpiSize, Rvp32f, Rvp32f, Rvp32f, Rvp32f, Rvp32f, Rvp32f,
                                  Rvp8u*)) {
    const Size s = hd()[0];
    auto a = std::make_shared<Plane<T>>(s, channels, 1), d = std::make_shared<Plane<T>>(s, channels, 2);
    int n = 0;
    rvpiUndistortGetSize(a->size(), &n);
    auto buf = std::make_shared<std::vector<Rvp8u>>(n);
    add(op, "rvp", s, 2 * a->bytes(), [=](benchmark::State& st) {
        for (auto _ : st) fn(a->ptr(), a->step, d->ptr(), d->step, a->size(), kFx, kFy, kCx, kCy, kK1, kK2, buf->data());
    });
#ifdef RVPCV_HAVE_OPENCV
    add(op, "cv", s, 2 * a->bytes(), [=](benchmark::State& st) {
        const cv::Matx33f k(kFx, 0, kCx, 0, kFy, kCy, 0, 0, 1);
        const cv::Vec4f dist(kK1, kK2, 0, 0);
        cv::Mat ma = a->mat(), md = d->mat();
        for (auto _ : st) cv::undistort(ma, md, k, dist);
    });
#endif
}

void addMap() {
    const Size s = hd()[0];
    auto mx = std::make_shared<Plane<Rvp32f>>(s, 1, 1), my = std::make_shared<Plane<Rvp32f>>(s, 1, 2);
    int n = 0;
    rvpiUndistortGetSize(mx->size(), &n);
    auto buf = std::make_shared<std::vector<Rvp8u>>(n);
    add("UndistortMap_32f", "rvp", s, 2 * mx->bytes(), [=](benchmark::State& st) {
        for (auto _ : st)
            rvpiCreateMapCameraUndistort_32f_C1R(mx->ptr(), mx->step, my->ptr(), my->step, mx->size(), kFx, kFy, kCx,
                                                 kCy, kK1, kK2, kP1, kP2, buf->data());
    });
#ifdef RVPCV_HAVE_OPENCV
    add("UndistortMap_32f", "cv", s, 2 * mx->bytes(), [=](benchmark::State& st) {
        const cv::Matx33f k(kFx, 0, kCx, 0, kFy, kCy, 0, 0, 1);
        const cv::Vec4f dist(kK1, kK2, kP1, kP2);
        cv::Mat x = mx->mat(), y = my->mat();
        for (auto _ : st) cv::initUndistortRectifyMap(k, dist, cv::noArray(), k, x.size(), CV_32FC1, x, y);
    });
#endif
}

const int kRegistered = [] {
    addUndistort<Rvp8u>("Undistort_8u_C1", 1, rvpiUndistortRadial_8u_C1R);
    addUndistort<Rvp8u>("Undistort_8u_C3", 3, rvpiUndistortRadial_8u_C3R);
    addUndistort<Rvp16u>("Undistort_16u_C1", 1, rvpiUndistortRadial_16u_C1R);
    addUndistort<Rvp32f>("Undistort_32f_C1", 1, rvpiUndistortRadial_32f_C1R);
    addMap();
    return 0;
}();

}  // namespace
