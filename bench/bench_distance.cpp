// Distance transforms on a thresholded scene (about one pixel in five zero):
// exact against the peer's precise Euclidean transform, chamfer 3x3 and 5x5
// against the peer's mask transforms (city block in 8 bits, Euclidean-like
// in floats), and fast marching (its peer is timed by python_peers.py).
#include "benchutil.h"

namespace {

using namespace rvbench;

void addRuns() {
    const Size s = hd()[0];
    auto src = std::make_shared<Plane<Rvp8u>>(s, 1, 1);
    for (size_t i = 0; i < src->bytes(); ++i) {
        const int x = static_cast<int>(i % s.w), y = static_cast<int>(i / s.w);
        const int gx = x % 97 - 48, gy = y % 89 - 44;
        src->ptr()[i] = gx * gx + gy * gy < 400 ? 0 : 255;  // discs of radius 20
    }
    auto dst = std::make_shared<Plane<Rvp32f>>(s, 1, 2);
    add("TrueDistance_8u32f", "rvp", s, src->bytes() * 5, [=](benchmark::State& st) {
        int bytes = 0;
        rvpiTrueDistanceTransformGetBufferSize_8u32f_C1R(src->size(), &bytes);
        std::vector<Rvp8u> buf(static_cast<size_t>(bytes));
        for (auto _ : st)
            rvpiTrueDistanceTransform_8u32f_C1R(src->ptr(), src->step, dst->ptr(), dst->step, src->size(), buf.data());
    });
#ifdef RVPCV_HAVE_OPENCV
    add("TrueDistance_8u32f", "cv", s, src->bytes() * 5, [=](benchmark::State& st) {
        cv::Mat a = src->mat(), b = dst->mat();
        for (auto _ : st) cv::distanceTransform(a, b, cv::DIST_L2, cv::DIST_MASK_PRECISE, CV_32F);
    });
#endif
    auto dst8 = std::make_shared<Plane<Rvp8u>>(s, 1, 2);
    const Rvp32s l1[2] = {1, 2};
    add("Chamfer_3x3_L1_8u", "rvp", s, src->bytes() * 2, [=](benchmark::State& st) {
        for (auto _ : st)
            rvpiDistanceTransform_3x3_8u_C1R(src->ptr(), src->step, dst8->ptr(), dst8->step, src->size(), l1);
    });
    for (const int mask : {3, 5}) {
        const std::string name = mask == 3 ? "Chamfer_3x3_L2_8u32f" : "Chamfer_5x5_L2_8u32f";
        add(name, "rvp", s, src->bytes() * 5, [=](benchmark::State& st) {
            Rvp32f m[3];
            rvpiGetDistanceTransformMask_32f(mask, 2, m);
            const auto f = mask == 3 ? rvpiDistanceTransform_3x3_8u32f_C1R : rvpiDistanceTransform_5x5_8u32f_C1R;
            for (auto _ : st) f(src->ptr(), src->step, dst->ptr(), dst->step, src->size(), m);
        });
#ifdef RVPCV_HAVE_OPENCV
        add(name, "cv", s, src->bytes() * 5, [=](benchmark::State& st) {
            cv::Mat a = src->mat(), b = dst->mat();
            for (auto _ : st) cv::distanceTransform(a, b, cv::DIST_L2, mask, CV_32F);
        });
#endif
    }
#ifdef RVPCV_HAVE_OPENCV
    add("Chamfer_3x3_L1_8u", "cv", s, src->bytes() * 2, [=](benchmark::State& st) {
        cv::Mat a = src->mat(), b = dst8->mat();
        for (auto _ : st) cv::distanceTransform(a, b, cv::DIST_L1, 3, CV_8U);
    });
#endif
    add("FastMarching_8u32f", "rvp", s, src->bytes() * 5, [=](benchmark::State& st) {
        int bytes = 0;
        rvpiFastMarchingGetBufferSize_8u32f_C1R(src->size(), &bytes);
        std::vector<Rvp8u> buf(static_cast<size_t>(bytes));
        for (auto _ : st)
            rvpiFastMarching_8u32f_C1R(src->ptr(), src->step, dst->ptr(), dst->step, src->size(), 0.0f, buf.data());
    });
}

const int kRegistered = (addRuns(), 0);

}  // namespace
