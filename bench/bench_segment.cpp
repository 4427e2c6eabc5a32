// Watershed and gradient segmentation against the peer's watershed (which
// takes a colour picture and 32-bit markers) with the same seeds, on a
// scene of touching discs with a marker in each and on the background.
#include "benchutil.h"

namespace {

using namespace rvbench;

struct Scene {
    std::shared_ptr<Plane<Rvp8u>> gray, colour, markers;
};

Scene scene(Size s) {
    Scene sc{std::make_shared<Plane<Rvp8u>>(s, 1, 1), std::make_shared<Plane<Rvp8u>>(s, 3, 2),
             std::make_shared<Plane<Rvp8u>>(s, 1, 3)};
    std::memset(sc.markers->ptr(), 0, sc.markers->bytes());
    for (int y = 0; y < s.h; ++y)
        for (int x = 0; x < s.w; ++x) {
            // Discs of radius 90 on a grid of 160, some touching.
            const int gx = x % 160 - 80, gy = y % 160 - 80, d2 = gx * gx + gy * gy;
            const size_t i = static_cast<size_t>(y) * s.w + x;
            const Rvp8u v = static_cast<Rvp8u>(d2 < 90 * 90 ? 120 + (8100 - d2) / 80 : 30 + (x + 3 * y) % 11);
            sc.gray->ptr()[i] = v;
            for (int c = 0; c < 3; ++c) sc.colour->ptr()[3 * i + c] = static_cast<Rvp8u>(v + 20 * c);
            if (d2 < 100) sc.markers->ptr()[i] = static_cast<Rvp8u>(2 + (x / 160 + 7 * (y / 160)) % 250);
            if (y == 0) sc.markers->ptr()[i] = 1;
        }
    return sc;
}

void addRuns() {
    const Size s = hd()[0];
    const Scene sc = scene(s);
    const RvpiSize roi{s.w, s.h};
    for (int flag : {RVP_WATERSHED_QUEUE, RVP_WATERSHED_DISTANCE}) {
        const std::string op = flag == RVP_WATERSHED_QUEUE ? "WatershedQueue_8u" : "WatershedDistance_8u";
        add(op, "rvp", s, sc.gray->bytes() * 2, [=](benchmark::State& st) {
            int bytes = 0;
            rvpiSegmentWatershedGetBufferSize_8u_C1R(roi, &bytes);
            std::vector<Rvp8u> buf(bytes), m(sc.markers->bytes());
            for (auto _ : st) {
                std::memcpy(m.data(), sc.markers->ptr(), m.size());
                rvpiSegmentWatershed_8u_C1IR(sc.gray->ptr(), s.w, m.data(), s.w, roi, 0, flag, buf.data());
            }
        });
    }
    add("SegmentGradient_8u_C3", "rvp", s, sc.colour->bytes(), [=](benchmark::State& st) {
        int bytes = 0;
        rvpiSegmentGradientGetBufferSize_8u_C3R(roi, &bytes);
        std::vector<Rvp8u> buf(bytes), m(sc.markers->bytes());
        for (auto _ : st) {
            std::memcpy(m.data(), sc.markers->ptr(), m.size());
            rvpiSegmentGradient_8u_C3IR(sc.colour->ptr(), 3 * s.w, m.data(), s.w, roi, 0, 0, buf.data());
        }
    });
#ifdef RVPCV_HAVE_OPENCV
    // The peer's watershed for both rows: markers converted to 32 bits in the loop.
    for (const char* op : {"WatershedQueue_8u", "WatershedDistance_8u", "SegmentGradient_8u_C3"})
        add(op, "cv", s, sc.gray->bytes() * 2, [=](benchmark::State& st) {
            cv::Mat img = sc.colour->mat(), m8 = sc.markers->mat(), m32;
            for (auto _ : st) {
                m8.convertTo(m32, CV_32S);
                cv::watershed(img, m32);
            }
        });
#endif
}

const int kRegistered = (addRuns(), 0);

}  // namespace
