// Summed-area tables against the peer's integral (sum; sum and squares;
// sum, squares and tilted in one call), and the float rectangle deviation
// and one Haar stage, which have no peer, at one thread and all threads.
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

// A stage of 36 weak classifiers in a 24x24 window, shaped like trained
// ones: 24 two-rectangle edge features, 12 three-rectangle line features.
// The stage threshold lets every position pass, so the mask stays full and
// each call evaluates all positions; the counter gives time per position.
template <class V> struct HaarStage {
    std::vector<RvpiRect> feature;
    std::vector<V> weight, thr, val1, val2;
    std::vector<int> num;
    HaarStage() {
        std::mt19937 rng(7);
        auto pick = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); };
        for (int c = 0; c < 36; ++c) {
            const int parts = c < 24 ? 2 : 3, w = pick(2, 7), h = pick(2, 7);
            const int x = pick(0, 24 - parts * w), y = pick(0, 24 - h);
            feature.push_back({x, y, parts * w, h});  // whole area, weight -1
            feature.push_back({x + w, y, w, h});      // one part, weight `parts`
            weight.push_back(V(-1));
            weight.push_back(V(parts));
            if (parts == 3) {
                feature.push_back({x + 2 * w, y, w, h});
                weight.push_back(V(0));
            }
            num.push_back(parts);
            thr.push_back(V(pick(-40, 40)));
            val1.push_back(V(pick(-10, 10)));
            val2.push_back(V(pick(-10, 10)));
        }
    }
};

void addHaar() {
    for (Size s : hd()) {
        auto src = std::make_shared<Plane<Rvp8u>>(s, 1, 3);
        auto sumf = tableOf<Rvp32f>(s, 1);
        auto sum = tableOf<Rvp32s>(s, 1);
        const int w = s.w, step = (w + 1) * 4;
        rvpiIntegral_8u32f_C1R(src->ptr(), src->step, sumf->data(), step, src->size(), 0);
        rvpiIntegral_8u32s_C1R(src->ptr(), src->step, sum->data(), step, src->size(), 0);
        const RvpiSize out{s.w + 1 - 24, s.h + 1 - 24};
        const size_t positions = static_cast<size_t>(out.width) * out.height;
        auto norm = std::make_shared<std::vector<Rvp32f>>(positions, 20.0f);
        auto normi = std::make_shared<std::vector<Rvp32s>>(positions, 20);
        auto mask = std::make_shared<std::vector<Rvp8u>>(positions, 1);
        const HaarStage<Rvp32f> f;
        const HaarStage<Rvp32s> i;
        RvpiHaarClassifier_32f* sf = nullptr;
        RvpiHaarClassifier_32s* si = nullptr;
        rvpiHaarClassifierInitAlloc_32f(&sf, f.feature.data(), f.weight.data(), f.thr.data(), f.val1.data(),
                                        f.val2.data(), f.num.data(), 36);
        rvpiHaarClassifierInitAlloc_32s(&si, i.feature.data(), i.weight.data(), i.thr.data(), i.val1.data(),
                                        i.val2.data(), i.num.data(), 36);
        auto perPosition = [positions](benchmark::State& st) {
            st.counters["per_position"] = benchmark::Counter(
                static_cast<double>(positions), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
        };
        // The states live as long as the process, like the registered closures.
        add("HaarStage_32f", "rvp", s, positions * 36 * 8 * 4, [=](benchmark::State& st) {
            int positive = 0;
            for (auto _ : st)
                rvpiApplyHaarClassifier_32f_C1R(sumf->data(), step, norm->data(), out.width * 4, mask->data(), out.width,
                                                out, &positive, -1e30f, sf);
            perPosition(st);
        });
        add("HaarStage_32s", "rvp", s, positions * 36 * 8 * 4, [=](benchmark::State& st) {
            int positive = 0;
            for (auto _ : st)
                rvpiApplyHaarClassifier_32s_C1RSfs(sum->data(), step, normi->data(), out.width * 4, mask->data(),
                                                   out.width, out, &positive, INT32_MIN, si, 0);
            perPosition(st);
        });
    }
}

const int kRegistered = [] {
    addIntegrals();
    addRectStdDev();
    addHaar();
    return 0;
}();

}  // namespace
