// Exact distance transform against the peer's precise Euclidean transform,
// on a thresholded scene (about one pixel in five zero).
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
}

const int kRegistered = (addRuns(), 0);

}  // namespace
