// Foreground models: the mixture of Gaussians frame by frame against the
// reference (through frame 200, where the history rule applies once, with
// jumps that force replacements and re-rankings), across dispatch levels and
// thread counts; both models on a synthetic video with a moving square; the
// histogram model's rate and capacity rules; validation.
#include <cmath>

#include "motion/rvcvfgauss.h"
#include "reference/ref_foreground.h"
#include "support/rvtest.h"

using namespace rvtest;

namespace {

using InitG = RvpStatus (*)(const Rvp8u*, int, RvpiSize, const void*, RvpiFGGaussianState**);
using RunG = RvpStatus (*)(const Rvp8u*, int, Rvp8u*, int, Rvp8u*, int, RvpiSize, RvpiFGGaussianState*);

// A frame: smooth texture, noise, and now and then a jump far away.
void makeFrame(std::vector<uint8_t>& f, int frame, std::mt19937& rng) {
    std::uniform_int_distribution<int> noise(-4, 4), pick(0, 99);
    for (size_t i = 0; i < f.size(); ++i) {
        int v = 60 + static_cast<int>(i * 7 % 90) + noise(rng);
        if (pick(rng) < 6) v = (v + 128 + frame) & 255;
        f[i] = static_cast<uint8_t>(v < 0 ? 0 : v > 255 ? 255 : v);
    }
}

template <int C>
void checkAgainstReference(InitG init, RunG run, int w, int h, int frames, uint32_t seed) {
    std::mt19937 rng(seed);
    std::vector<uint8_t> f(static_cast<size_t>(w) * h * C), bg(f.size()), mk(static_cast<size_t>(w) * h);
    makeFrame(f, 0, rng);
    Image<Rvp8u> src(w, h, C, 3), ref(w, h, C, 5), dst(w, h, 1, 2);
    const auto put = [&] {
        for (int y = 0; y < h; ++y) std::memcpy(src.row(y), f.data() + static_cast<size_t>(y) * w * C, w * C);
    };
    put();
    RvpiFGGaussianState* st = nullptr;
    ASSERT_EQ(init(src.ptr(), src.step(), src.size(), &st, &st), rvpStsNoErr);
    ref::GaussModel<C> model(f.data(), w, h);
    for (int t = 1; t <= frames; ++t) {
        makeFrame(f, t, rng);
        put();
        ASSERT_EQ(run(src.ptr(), src.step(), ref.ptr(), ref.step(), dst.ptr(), dst.step(), src.size(), st), rvpStsNoErr);
        model.frame(f.data(), bg.data(), mk.data());
        ASSERT_TRUE(ref.guardsIntact() && dst.guardsIntact());
        for (int y = 0; y < h; ++y) {
            ASSERT_EQ(0, std::memcmp(ref.row(y), bg.data() + static_cast<size_t>(y) * w * C, w * C)) << "frame " << t;
            ASSERT_EQ(0, std::memcmp(dst.row(y), mk.data() + static_cast<size_t>(y) * w, w)) << "frame " << t;
        }
    }
    EXPECT_EQ(rvpiForegroundGaussianFree_8u_C1R(st), rvpStsNoErr);
}

TEST(ForegroundGaussian, MatchesReferenceThroughTheHistoryFrame) {
    for (rvcv::Isa isa : isaLevels()) {
        ScopedIsa level(isa);
        SCOPED_TRACE(rvcv::isaName(isa));
        checkAgainstReference<1>(rvpiForegroundGaussianInitAlloc_8u_C1R, rvpiForegroundGaussian_8u_C1R, 19, 5, 205, 1);
        checkAgainstReference<3>(rvpiForegroundGaussianInitAlloc_8u_C3R, rvpiForegroundGaussian_8u_C3R, 13, 3, 205, 2);
    }
}

// Counts divide by table look-up: every entry is the quotient itself.
TEST(ForegroundGaussian, ReciprocalTableIsTheDivision) {
    const double* t = rvcv::reciprocalTable();
    volatile double one = 1.0;
    for (int i = 1; i < rvcv::kReciprocals; ++i) ASSERT_EQ(t[i], one / i) << i;
}

// Past the size at which rows go to threads: the same as the reference for
// every thread count.
TEST(ForegroundGaussian, SameResultForEveryThreadCount) {
    for (int threads : threadCounts()) {
        ScopedThreads scope(threads);
        SCOPED_TRACE(threads);
        checkAgainstReference<1>(rvpiForegroundGaussianInitAlloc_8u_C1R, rvpiForegroundGaussian_8u_C1R, 643, 409, 3, 3);
    }
}

// A textured scene with sensor noise and a square moving across it.
struct Video {
    int w = 160, h = 120, C;
    explicit Video(int channels) : C(channels) {}
    int side = 24;
    void frame(int t, std::vector<uint8_t>& f, std::vector<uint8_t>& truth, std::mt19937& rng) const {
        // Sensor noise mostly shared by the channels (luminance), a little
        // of it per channel.
        std::normal_distribution<float> noise(0.0f, 2.0f), chroma(0.0f, 0.5f);
        f.assign(static_cast<size_t>(w) * h * C, 0);
        truth.assign(static_cast<size_t>(w) * h, 0);
        const int sx = 10 + 3 * t, sy = 40 + t;
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                const float luma = noise(rng);
                const bool in = t > 0 && x >= sx && x < sx + side && y >= sy && y < sy + side;
                truth[static_cast<size_t>(y) * w + x] = in;
                for (int c = 0; c < C; ++c) {
                    const float base = 70 + 40 * std::sin(x * 0.15f + c) * std::cos(y * 0.11f) + 0.2f * x;
                    const float v = (in ? 230.0f - 40 * c : base) + luma + chroma(rng);
                    f[(static_cast<size_t>(y) * w + x) * C + c] = static_cast<uint8_t>(std::lround(std::fmin(255, std::fmax(0, v))));
                }
            }
    }
};

// Fraction of square pixels marked and of other pixels marked, over the
// moving frames after the learning ones, against the bound for the rest.
template <class Step> void checkQuality(int C, double falseBound, Step&& step) {
    Video v(C);
    std::mt19937 rng(7);
    std::vector<uint8_t> f, truth, mask(static_cast<size_t>(v.w) * v.h);
    double hit = 0, square = 0, false_ = 0, rest = 0;
    for (int t = -30; t <= 30; ++t) {
        v.frame(t < 0 ? 0 : t, f, truth, rng);
        step(t, f.data(), v, mask.data());
        if (t < 5) continue;
        for (size_t i = 0; i < mask.size(); ++i) {
            if (truth[i]) { square += 1; hit += mask[i] == 255; }
            else { rest += 1; false_ += mask[i] == 255; }
        }
    }
    EXPECT_GE(hit / square, 0.90);
    EXPECT_LE(false_ / rest, falseBound);
}

TEST(Foreground, BothModelsFindAMovingSquare) {
    for (int C : {1, 3}) {
        SCOPED_TRACE(C);
        // A colour pixel of the mixture matches only when all three channels
        // are within 2.5 deviations, so noise misses add up over the channels
        // (about 1.5% of the pixels a frame for gray, 3% for colour here).
        RvpiFGGaussianState* g = nullptr;
        checkQuality(C, C == 1 ? 0.02 : 0.04, [&](int t, const uint8_t* f, const Video& v, uint8_t* mask) {
            const RvpiSize roi{v.w, v.h};
            std::vector<uint8_t> bg(static_cast<size_t>(v.w) * v.h * C);
            if (t == -30) {
                ASSERT_EQ((C == 1 ? rvpiForegroundGaussianInitAlloc_8u_C1R : rvpiForegroundGaussianInitAlloc_8u_C3R)(
                              f, v.w * C, roi, &g, &g), rvpStsNoErr);
                return;
            }
            ASSERT_EQ((C == 1 ? rvpiForegroundGaussian_8u_C1R : rvpiForegroundGaussian_8u_C3R)(
                          f, v.w * C, bg.data(), v.w * C, mask, v.w, roi, g), rvpStsNoErr);
        });
        rvpiForegroundGaussianFree_8u_C3R(g);
        RvpiFGHistogramState* hs = nullptr;
        checkQuality(C, 0.02, [&](int t, const uint8_t* f, const Video& v, uint8_t* mask) {
            const RvpiSize roi{v.w, v.h};
            if (t == -30) {
                ASSERT_EQ((C == 1 ? rvpiForegroundHistogramInitAlloc_8u_C1R : rvpiForegroundHistogramInitAlloc_8u_C3R)(
                              f, v.w * C, roi, &hs, &hs), rvpStsNoErr);
                return;
            }
            ASSERT_EQ((C == 1 ? rvpiForegroundHistogram_8u_C1R : rvpiForegroundHistogram_8u_C3R)(f, v.w * C, mask, v.w,
                                                                                                  roi, hs), rvpStsNoErr);
            ASSERT_EQ((C == 1 ? rvpiForegroundHistogramUpdate_8u_C1R : rvpiForegroundHistogramUpdate_8u_C3R)(
                          f, v.w * C, roi, hs, -1.0f), rvpStsNoErr);
        });
        rvpiForegroundHistogramFree_8u_C1R(hs);
    }
}

// A new colour needs 1 - 0.995^k >= 0.1 of the weight: 22 updates at the
// default rate. Its first 25 fine bins are kept; a 26th takes the lightest.
TEST(ForegroundHistogram, RateAndCapacity) {
    const RvpiSize one{1, 1};
    const Rvp8u start = 10, fresh = 200;
    RvpiFGHistogramState* s = nullptr;
    ASSERT_EQ(rvpiForegroundHistogramInitAlloc_8u_C1R(&start, 1, one, &s, &s), rvpStsNoErr);
    Rvp8u m = 0;
    ASSERT_EQ(rvpiForegroundHistogram_8u_C1R(&start, 1, &m, 1, one, s), rvpStsNoErr);
    EXPECT_EQ(m, 0);
    for (int k = 1; k <= 22; ++k) {
        ASSERT_EQ(rvpiForegroundHistogramUpdate_8u_C1R(&fresh, 1, one, s, -1.0f), rvpStsNoErr);
        ASSERT_EQ(rvpiForegroundHistogram_8u_C1R(&fresh, 1, &m, 1, one, s), rvpStsNoErr);
        EXPECT_EQ(m, k < 22 ? 255 : 0) << k;
    }
    // Forty more colours far from both: the start colour keeps its bins (it is
    // the heaviest), so it is still background.
    for (int k = 0; k < 40; ++k) {
        const Rvp8u c = static_cast<Rvp8u>(40 + 3 * k);
        ASSERT_EQ(rvpiForegroundHistogramUpdate_8u_C1R(&c, 1, one, s, 0.01f), rvpStsNoErr);
    }
    ASSERT_EQ(rvpiForegroundHistogram_8u_C1R(&start, 1, &m, 1, one, s), rvpStsNoErr);
    EXPECT_EQ(m, 0);
    const Rvp8u bad[1] = {0};
    for (float rate : {0.0f, 1.5f, NAN})
        EXPECT_EQ(rvpiForegroundHistogramUpdate_8u_C1R(bad, 1, one, s, rate), rvpStsBadArgErr);
    EXPECT_EQ(rvpiForegroundHistogramUpdate_8u_C3R(bad, 3, one, s, 0.5f), rvpStsSizeErr);  // a C1 state
    EXPECT_EQ(rvpiForegroundHistogramFree_8u_C1R(s), rvpStsNoErr);
}

TEST(Foreground, Validation) {
    Image<Rvp8u> src(8, 4, 3), out(8, 4, 3), mask(8, 4);
    RvpiFGGaussianState* g = nullptr;
    RvpiFGHistogramState* hs = nullptr;
    const int model = 0;
    EXPECT_EQ(rvpiForegroundGaussianInitAlloc_8u_C1R(src.ptr(), 24, {8, 4}, nullptr, &g), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiForegroundGaussianInitAlloc_8u_C1R(src.ptr(), 24, {0, 4}, &model, &g), rvpStsSizeErr);
    EXPECT_EQ(rvpiForegroundGaussianInitAlloc_8u_C3R(src.ptr(), 23, {8, 4}, &model, &g), rvpStsStepErr);
    EXPECT_EQ(rvpiForegroundGaussianInitAlloc_8u_C1R(src.ptr(), INT32_MAX, {1 << 16, 1 << 15}, &model, &g),
              rvpStsSizeErr);
    EXPECT_EQ(g, nullptr);
    ASSERT_EQ(rvpiForegroundGaussianInitAlloc_8u_C3R(src.ptr(), src.step(), {8, 4}, &model, &g), rvpStsNoErr);
    ASSERT_EQ(rvpiForegroundHistogramInitAlloc_8u_C3R(src.ptr(), src.step(), {8, 4}, &model, &hs), rvpStsNoErr);
    const auto untouched = out.raw();
    const auto mUntouched = mask.raw();
    struct Row { RvpiSize r; int step; RvpStatus st; };
    for (const Row& r : {Row{{8, 4}, 23, rvpStsStepErr}, Row{{0, 4}, 24, rvpStsSizeErr}, Row{{7, 4}, 24, rvpStsSizeErr}}) {
        EXPECT_EQ(rvpiForegroundGaussian_8u_C3R(src.ptr(), r.step, out.ptr(), 24, mask.ptr(), 8, r.r, g), r.st);
        EXPECT_EQ(rvpiForegroundHistogram_8u_C3R(src.ptr(), r.step, mask.ptr(), 8, r.r, hs), r.st);
    }
    EXPECT_EQ(rvpiForegroundGaussian_8u_C3R(src.ptr(), 24, out.ptr(), 24, mask.ptr(), 8, {8, 4}, nullptr),
              rvpStsNullPtrErr);
    EXPECT_EQ(rvpiForegroundGaussian_8u_C1R(src.ptr(), 24, out.ptr(), 24, mask.ptr(), 8, {8, 4}, g), rvpStsSizeErr);
    EXPECT_EQ(out.raw(), untouched);
    EXPECT_EQ(mask.raw(), mUntouched);
    EXPECT_EQ(rvpiForegroundGaussianFree_8u_C3R(nullptr), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiForegroundHistogramFree_8u_C3R(nullptr), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiForegroundGaussianFree_8u_C3R(g), rvpStsNoErr);
    EXPECT_EQ(rvpiForegroundHistogramFree_8u_C3R(hs), rvpStsNoErr);
}

// Motion history: the element rule on random values with NaN, -0 and ties
// at the limit, for the three silhouette types; then the validation order.
template <class T> void checkHistory(RvpStatus (*fn)(const T*, int, Rvp32f*, int, RvpiSize, Rvp32f, Rvp32f)) {
    std::mt19937 rng(5);
    for (const auto& sz : {RvpiSize{1, 1}, RvpiSize{7, 3}, RvpiSize{33, 9}}) {
        Image<T> sil(sz.width, sz.height, 1, 4);
        Image<Rvp32f> hist(sz.width, sz.height, 1, 8);
        const float ts = 10.0f, dur = 3.0f;
        const float specials[] = {7.0f, 6.999f, NAN, -0.0f, 10.0f, 0.0f, 12.0f};
        sil.fill([&] { return rng() % 3 == 0 ? static_cast<T>(rng() % 2 ? -0.0f : 0.0f) : static_cast<T>(rng() % 5); });
        if constexpr (std::is_floating_point<T>::value) sil.at(0, 0) = NAN;
        hist.fill([&] { return specials[rng() % 7]; });
        const Image<Rvp32f> before = hist;
        ASSERT_EQ(fn(sil.ptr(), sil.step(), hist.ptr(), hist.step(), sz, ts, dur), rvpStsNoErr);
        ASSERT_TRUE(hist.guardsIntact());
        for (int y = 0; y < sz.height; ++y)
            for (int x = 0; x < sz.width; ++x) {
                const float want = ref::motionHistory(static_cast<float>(sil.at(x, y)), before.at(x, y), ts, ts - dur);
                ASSERT_TRUE(sameBits(&want, &hist.at(x, y), 4)) << x << "," << y;
            }
    }
    Image<T> sil(4, 2);
    Image<Rvp32f> hist(4, 2);
    const int ss = sil.step(), hs = hist.step();
    const struct { const T* s; Rvp32f* h; RvpiSize r; int ss, hs; float dur; RvpStatus st; } rows[] = {
        {nullptr, hist.ptr(), {0, 0}, 0, 0, -1, rvpStsNullPtrErr},
        {sil.ptr(), hist.ptr(), {0, 2}, ss, hs, -1, rvpStsSizeErr},
        {sil.ptr(), hist.ptr(), {4, 2}, ss - 1, hs, -1, rvpStsStepErr},
        {sil.ptr(), hist.ptr(), {4, 2}, ss, hs - 4, -1, rvpStsStepErr},
        {sil.ptr(), hist.ptr(), {4, 2}, ss, hs + 2, -1, rvpStsNotEvenStepErr},
        {sil.ptr(), hist.ptr(), {4, 2}, ss, hs, -1, rvpStsOutOfRangeErr},
    };
    const auto untouched = hist.raw();
    for (const auto& r : rows) EXPECT_EQ(fn(r.s, r.ss, r.h, r.hs, r.r, 1.0f, r.dur), r.st);
    EXPECT_EQ(hist.raw(), untouched);
    EXPECT_EQ(fn(sil.ptr(), ss, hist.ptr(), hs, {4, 2}, 1.0f, NAN), rvpStsNoErr);
}

TEST(MotionHistory, ElementRuleAndValidation) {
    checkHistory<Rvp8u>(rvpiUpdateMotionHistory_8u32f_C1IR);
    checkHistory<Rvp16u>(rvpiUpdateMotionHistory_16u32f_C1IR);
    checkHistory<Rvp32f>(rvpiUpdateMotionHistory_32f_C1IR);
}

}  // namespace
