// Masked norms, mean with deviation and extremes against the peer's norm,
// meanStdDev and minMaxLoc with the same mask (about three pixels in four).
#include "benchutil.h"

namespace {

using namespace rvbench;

template <class T> struct Fns {
    using Norm = RvpStatus (*)(const T*, int, const Rvp8u*, int, RvpiSize, Rvp64f*);
    using Diff = RvpStatus (*)(const T*, int, const T*, int, const Rvp8u*, int, RvpiSize, Rvp64f*);
    const char* tag;
    Norm norm[3];
    Diff diff[3];
    RvpStatus (*meanStd)(const T*, int, const Rvp8u*, int, RvpiSize, Rvp64f*, Rvp64f*);
    RvpStatus (*minMax)(const T*, int, const Rvp8u*, int, RvpiSize, Rvp32f*, Rvp32f*, RvpiPoint*, RvpiPoint*);
};
#define RVB_FNS(TAG)                                                                                   \
    Fns<Rvp##TAG> {                                                                                    \
        #TAG, {rvpiNorm_Inf_##TAG##_C1MR, rvpiNorm_L1_##TAG##_C1MR, rvpiNorm_L2_##TAG##_C1MR},         \
            {rvpiNormDiff_Inf_##TAG##_C1MR, rvpiNormDiff_L1_##TAG##_C1MR, rvpiNormDiff_L2_##TAG##_C1MR}, \
            rvpiMean_StdDev_##TAG##_C1MR, rvpiMinMaxIndx_##TAG##_C1MR                                  \
    }

template <class T> void addType(const Fns<T>& f) {
    const Size s = hd()[0];
    auto a = std::make_shared<Plane<T>>(s, 1, 1), b = std::make_shared<Plane<T>>(s, 1, 2);
    auto mask = std::make_shared<Plane<Rvp8u>>(s, 1, 3);
    for (size_t i = 0; i < mask->bytes(); ++i) mask->ptr()[i] = mask->ptr()[i] & 3 ? 1 : 0;
    const RvpiSize roi = a->size();
    const size_t one = a->bytes() + mask->bytes(), two = one + b->bytes();
    const std::string tag = f.tag;
    static const char* const kinds[3] = {"Inf", "L1", "L2"};
    for (int k = 0; k < 3; ++k) {
        const std::string op = std::string("Norm_") + kinds[k] + "_" + tag, dop = "NormDiff_" + op.substr(5);
        add(op, "rvp", s, one, [=](benchmark::State& st) {
            Rvp64f v;
            for (auto _ : st) f.norm[k](a->ptr(), a->step, mask->ptr(), mask->step, roi, &v);
        });
        add(dop, "rvp", s, two, [=](benchmark::State& st) {
            Rvp64f v;
            for (auto _ : st) f.diff[k](a->ptr(), a->step, b->ptr(), b->step, mask->ptr(), mask->step, roi, &v);
        });
#ifdef RVPCV_HAVE_OPENCV
        const int kind = k == 0 ? cv::NORM_INF : k == 1 ? cv::NORM_L1 : cv::NORM_L2;
        add(op, "cv", s, one, [=](benchmark::State& st) {
            const cv::Mat m = a->mat(), mk = mask->mat();
            for (auto _ : st) benchmark::DoNotOptimize(cv::norm(m, kind, mk));
        });
        add(dop, "cv", s, two, [=](benchmark::State& st) {
            const cv::Mat m = a->mat(), m2 = b->mat(), mk = mask->mat();
            for (auto _ : st) benchmark::DoNotOptimize(cv::norm(m, m2, kind, mk));
        });
#endif
    }
    add("MeanStdDev_" + tag, "rvp", s, one, [=](benchmark::State& st) {
        Rvp64f m, d;
        for (auto _ : st) f.meanStd(a->ptr(), a->step, mask->ptr(), mask->step, roi, &m, &d);
    });
    add("MinMaxIndx_" + tag, "rvp", s, one, [=](benchmark::State& st) {
        Rvp32f lo, hi;
        RvpiPoint l, h;
        for (auto _ : st) f.minMax(a->ptr(), a->step, mask->ptr(), mask->step, roi, &lo, &hi, &l, &h);
    });
#ifdef RVPCV_HAVE_OPENCV
    add("MeanStdDev_" + tag, "cv", s, one, [=](benchmark::State& st) {
        const cv::Mat m = a->mat(), mk = mask->mat();
        cv::Scalar mean, dev;
        for (auto _ : st) cv::meanStdDev(m, mean, dev, mk);
    });
    add("MinMaxIndx_" + tag, "cv", s, one, [=](benchmark::State& st) {
        const cv::Mat m = a->mat(), mk = mask->mat();
        double lo, hi;
        cv::Point l, h;
        for (auto _ : st) cv::minMaxLoc(m, &lo, &hi, &l, &h, mk);
    });
#endif
}

void addRuns() {
    addType(RVB_FNS(8u));
    addType(RVB_FNS(16u));
    addType(RVB_FNS(32f));
}

const int kRegistered = (addRuns(), 0);

}  // namespace
