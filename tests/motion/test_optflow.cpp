// Pyramidal optical flow on smooth textures shifted by known sub-pixel
// amounts (each level sampled from the same analytic texture, so the true
// motion is exact): accuracy of the tracked points in every sample type, the
// same bytes for every team, flat windows and windows leaving the image
// lost, an identical pair standing still, validation.
#include <cmath>

#include "support/rvtest.h"

using namespace rvtest;

namespace {

struct Texture {
    double fx[6], fy[6], ph[6];
    explicit Texture(uint32_t seed) {
        std::mt19937 rng(seed);
        std::uniform_real_distribution<double> f(2 * M_PI / 60, 2 * M_PI / 22), p(0, 2 * M_PI);
        for (int i = 0; i < 6; ++i) fx[i] = f(rng) * (i % 2 ? 1 : -1), fy[i] = f(rng), ph[i] = p(rng);
    }
    double at(double x, double y) const {
        double v = 0;
        for (int i = 0; i < 6; ++i) v += std::sin(fx[i] * x + fy[i] * y + ph[i]);
        return 128 + 18 * v;
    }
};

// A pyramid of three levels at rate 2 sampled from the texture moved by (sx, sy).
template <class T> struct Pyr {
    std::vector<Image<T>> levels;
    std::vector<void*> images;
    std::vector<RvpiSize> rois;
    std::vector<Rvp64f> rates;
    std::vector<int> steps;
    RvpiPyramid rec{};
    Pyr(const Texture& tx, int w, int h, double sx, double sy, bool flat = false) {
        for (int l = 0; l < 3; ++l) {
            const double scale = std::pow(2.0, l);
            levels.emplace_back(w >> l, h >> l, 1, 8);
            Image<T>& im = levels.back();
            for (int y = 0; y < im.height(); ++y)
                for (int x = 0; x < im.width(); ++x) {
                    const double v = flat ? 100 : tx.at(x * scale - sx, y * scale - sy);
                    im.at(x, y) = static_cast<T>(std::is_floating_point<T>::value ? v : std::lround(v * (sizeof(T) == 2 ? 200 : 1)));
                }
        }
        for (auto& im : levels) images.push_back(im.ptr()), rois.push_back(im.size()), steps.push_back(im.step());
        rates = {1.0, 0.5, 0.25};
        rec = {images.data(), rois.data(), rates.data(), steps.data(), nullptr, 2};
    }
};

template <class T> struct Api;
#define RVT_API(T, SUF)                                                                                        \
    template <> struct Api<T> {                                                                                \
        static constexpr auto init = rvpiOpticalFlowPyrLKInitAlloc_##SUF##_C1R;                              \
        static constexpr auto run = rvpiOpticalFlowPyrLK_##SUF##_C1R;                                         \
        static constexpr auto free = rvpiOpticalFlowPyrLKFree_##SUF##_C1R;                                    \
    };
RVT_API(Rvp8u, 8u)
RVT_API(Rvp16u, 16u)
RVT_API(Rvp32f, 32f)

struct Tracked {
    std::vector<RvpiPoint32f> next;
    std::vector<Rvp8s> status;
    std::vector<Rvp32f> error;
};

template <class T>
Tracked track(const Pyr<T>& a, const Pyr<T>& b, const std::vector<RvpiPoint32f>& pts, int win, int maxLev,
              RvpiOptFlowPyrLKState* st) {
    Tracked t{pts, std::vector<Rvp8s>(pts.size()), std::vector<Rvp32f>(pts.size())};
    EXPECT_EQ(Api<T>::run(&a.rec, &b.rec, pts.data(), t.next.data(), t.status.data(), t.error.data(),
                          static_cast<int>(pts.size()), win, maxLev, 30, 0.01f, st),
              rvpStsNoErr);
    return t;
}

std::vector<RvpiPoint32f> grid(int w, int h, int margin, int stepPx) {
    std::vector<RvpiPoint32f> p;
    for (int y = margin; y < h - margin; y += stepPx)
        for (int x = margin; x < w - margin; x += stepPx) p.push_back({x + 0.3f, y + 0.6f});
    return p;
}

template <class T> void accuracy() {
    const Texture tx(7);
    const int w = 240, h = 160;
    const Pyr<T> a(tx, w, h, 0, 0);
    const std::vector<RvpiPoint32f> pts = grid(w, h, 24, 9);
    for (const auto& shift : {std::pair{1.3, -0.7}, std::pair{3.25, 2.5}, std::pair{-6.6, 4.1}}) {
        const Pyr<T> b(tx, w, h, shift.first, shift.second);
        for (const bool planes : {false, true}) {  // state of the image's size, or larger than every level
            RvpiOptFlowPyrLKState* st = nullptr;
            ASSERT_EQ(Api<T>::init(&st, planes ? RvpiSize{w + 1, h + 1} : RvpiSize{w, h}, 15, 0), rvpStsNoErr);
            const Tracked t = track(a, b, pts, 15, 2, st);
            Api<T>::free(st);
            std::vector<double> errs;
            for (size_t i = 0; i < pts.size(); ++i)
                if (t.status[i] == 0)
                    errs.push_back(std::hypot(t.next[i].x - pts[i].x - shift.first, t.next[i].y - pts[i].y - shift.second));
            ASSERT_GE(errs.size(), pts.size() * 9 / 10) << "shift " << shift.first << "," << shift.second;
            std::sort(errs.begin(), errs.end());
            const size_t within = std::lower_bound(errs.begin(), errs.end(), 0.1) - errs.begin();
            EXPECT_GE(within, errs.size() * 9 / 10) << "shift " << shift.first << "," << shift.second << " planes " << planes;
            EXPECT_LT(errs[errs.size() / 2], 0.03) << "shift " << shift.first << "," << shift.second << " planes " << planes;
        }
    }
}

TEST(OpticalFlow, TracksKnownShifts) {
    accuracy<Rvp8u>();
    accuracy<Rvp16u>();
    accuracy<Rvp32f>();
}

TEST(OpticalFlow, SameResultsForEveryTeamAndEdgeCases) {
    const Texture tx(3);
    const Pyr<Rvp8u> a(tx, 200, 120, 0, 0), b(tx, 200, 120, 2.2, -1.4);
    std::vector<RvpiPoint32f> pts = grid(200, 120, 4, 13);
    pts.push_back({-30.0f, 50.0f});  // starts far outside: lost
    RvpiOptFlowPyrLKState* st = nullptr;
#pragma omp parallel num_threads(3)
    {
#pragma omp master
        Api<Rvp8u>::init(&st, RvpiSize{201, 121}, 11, 0);  // a state for a team of 3
    }
    ASSERT_NE(st, nullptr);
    Tracked first;
    for (const int threads : threadCounts()) {
        ScopedThreads team(threads);
        const Tracked t = track(a, b, pts, 11, 2, st);
        if (first.next.empty()) first = t;
        ASSERT_EQ(0, std::memcmp(t.next.data(), first.next.data(), pts.size() * sizeof(RvpiPoint32f))) << threads;
        ASSERT_EQ(t.status, first.status);
        ASSERT_EQ(0, std::memcmp(t.error.data(), first.error.data(), pts.size() * sizeof(Rvp32f)));
    }
    EXPECT_GT(first.status.back(), 0);

    // A flat pair: every window's gradient is zero, lost at the top level.
    const Pyr<Rvp8u> flat(tx, 200, 120, 0, 0, true);
    const Tracked f = track(flat, flat, pts, 11, 2, st);
    for (size_t i = 0; i < pts.size(); ++i) {
        EXPECT_EQ(f.status[i], 3);
        EXPECT_EQ(f.error[i], 0.0f);
    }
    // An identical pair with the guess at the start: no motion, no error.
    const Tracked same = track(a, a, grid(200, 120, 20, 17), 11, 2, st);
    for (size_t i = 0; i < same.next.size(); ++i)
        if (same.status[i] == 0) {
            EXPECT_EQ(same.error[i], 0.0f);
        }
    Api<Rvp8u>::free(st);
}

TEST(OpticalFlow, Validation) {
    const Texture tx(1);
    const Pyr<Rvp32f> a(tx, 40, 30, 0, 0);
    RvpiOptFlowPyrLKState* st = nullptr;
    ASSERT_EQ(rvpiOpticalFlowPyrLKInitAlloc_32f_C1R(&st, {40, 30}, 7, 0), rvpStsNoErr);
    const RvpiPoint32f prev[1] = {{20, 15}};
    RvpiPoint32f next[1] = {{20, 15}};
    Rvp8s status[1] = {77};
    Rvp32f error[1] = {5};
    const RvpiPyramid* p = &a.rec;
    const struct { const RvpiPyramid* p1; const RvpiPoint32f* pv; Rvp8s* s; int n, win, lev, iter; float thr; RvpStatus want; } rows[] = {
        {nullptr, prev, status, 1, 7, 1, 5, 0.1f, rvpStsNullPtrErr},
        {p, nullptr, status, 1, 7, 1, 5, 0.1f, rvpStsNullPtrErr},
        {p, prev, nullptr, 1, 7, 1, 5, 0.1f, rvpStsNullPtrErr},
        {p, prev, status, 0, 7, 1, 5, 0.1f, rvpStsSizeErr},
        {p, prev, status, 1, 9, 1, 5, 0.1f, rvpStsSizeErr},
        {p, prev, status, 1, 7, -1, 5, 0.1f, rvpStsBadArgErr},
        {p, prev, status, 1, 7, 1, 0, 0.1f, rvpStsBadArgErr},
        {p, prev, status, 1, 7, 1, 5, -0.1f, rvpStsBadArgErr},
        {p, prev, status, 1, 7, 3, 5, 0.1f, rvpStsBadArgErr},  // past the pyramid's last level
    };
    for (const auto& r : rows)
        EXPECT_EQ(rvpiOpticalFlowPyrLK_32f_C1R(r.p1, p, r.pv, next, r.s, error, r.n, r.win, r.lev, r.iter, r.thr, st), r.want);
    EXPECT_EQ(status[0], 77);
    EXPECT_EQ(error[0], 5.0f);
    EXPECT_EQ(rvpiOpticalFlowPyrLK_8u_C1R(p, p, prev, next, status, error, 1, 7, 1, 5, 0.1f, st), rvpStsBadArgErr);  // another type's state
    RvpiOptFlowPyrLKState* none = nullptr;
    EXPECT_EQ(rvpiOpticalFlowPyrLKInitAlloc_32f_C1R(nullptr, {4, 4}, 3, 0), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiOpticalFlowPyrLKInitAlloc_32f_C1R(&none, {4, 0}, 3, 0), rvpStsSizeErr);
    EXPECT_EQ(rvpiOpticalFlowPyrLKInitAlloc_32f_C1R(&none, {4, 4}, 0, 0), rvpStsSizeErr);
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(rvpiOpticalFlowPyrLKFree_32f_C1R(nullptr), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiOpticalFlowPyrLKFree_32f_C1R(st), rvpStsNoErr);
}

}  // namespace
