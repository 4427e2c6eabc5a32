// Rectangle deviation against the reference model: the six readers over
// tables built from images and over arbitrary tables (wrapping sums,
// negative variances, out-of-range scaled results), the scale rule, the
// threaded float reader at several thread counts, and the validation order
// with the rectangle tests after the step tests.
#include <functional>

#include "reference/ref_integral.h"
#include "support/rvtest.h"

using namespace rvtest;

namespace {

// Tables of every kind for one source image; steps carry slack so that the
// tilted readers' step minimum (which counts the rectangle twice) is met.
struct Tables {
    Tables(int w, int h, int slack)
        : s32(w + 2, h + 2, 1, 4 * slack), q32(w + 2, h + 2, 1, 4 * slack), s32f(w + 2, h + 2, 1, 4 * slack),
          q64(w + 2, h + 2, 1, 8 * slack), q64b(w + 2, h + 2, 1, 8 * slack) {}
    Image<Rvp32s> s32, q32;
    Image<Rvp32f> s32f;
    Image<Rvp64f> q64, q64b;
};

void buildFrom(const Image<Rvp8u>& src, Tables& t, bool tilted) {
    const RvpiSize roi = src.size();
    if (!tilted) {
        ASSERT_EQ(rvpiSqrIntegral_8u32s_C1R(src.ptr(), src.step(), t.s32.ptr(), t.s32.step(), t.q32.ptr(),
                                            t.q32.step(), roi, 0, 0), 0);
        ASSERT_EQ(rvpiSqrIntegral_8u32f64f_C1R(src.ptr(), src.step(), t.s32f.ptr(), t.s32f.step(), t.q64.ptr(),
                                               t.q64.step(), roi, 0, 0), 0);
    } else {
        // The 32s64f form, so that column W holds one pixel as in the 32f table.
        ASSERT_EQ(rvpiTiltedSqrIntegral_8u32s64f_C1R(src.ptr(), src.step(), t.s32.ptr(), t.s32.step(), t.q64b.ptr(),
                                                     t.q64b.step(), roi, 0, 0), 0);
        Image<Rvp32s> unused(src.width() + 2, src.height() + 2);
        ASSERT_EQ(rvpiTiltedSqrIntegral_8u32s_C1R(src.ptr(), src.step(), unused.ptr(), unused.step(), t.q32.ptr(),
                                                  t.q32.step(), roi, 0, 0), 0);
        t.s32f.fill([] { return 0.0f; });
        ASSERT_EQ(rvpiTiltedSqrIntegral_8u32f64f_C1R(src.ptr(), src.step(), t.s32f.ptr(), t.s32f.step(), t.q64.ptr(),
                                                     t.q64.step(), roi, 0, 0), 0);
    }
}

template <class T> ref::View<T> view(const Image<T>& img) { return {img.ptr(), img.step() / static_cast<int>(sizeof(T))}; }

// Runs the three readers of one orientation and compares every element.
void checkReaders(const Tables& t, RvpiSize out, RvpiRect r, bool tilted, int sf) {
    SCOPED_TRACE(testing::Message() << (tilted ? "tilted " : "upright ") << out.width << "x" << out.height << " rect "
                                    << r.x << "," << r.y << "," << r.width << "," << r.height << " sf " << sf);
    Image<Rvp32s> di(out.width, out.height, 1, 12);
    Image<Rvp32f> d1(out.width, out.height, 1, 4), d2(out.width, out.height);
    auto sfs = tilted ? rvpiTiltedRectStdDev_32s_C1RSfs : rvpiRectStdDev_32s_C1RSfs;
    auto i32f = tilted ? rvpiTiltedRectStdDev_32s32f_C1R : rvpiRectStdDev_32s32f_C1R;
    auto f32f = tilted ? rvpiTiltedRectStdDev_32f_C1R : rvpiRectStdDev_32f_C1R;
    const Image<Rvp64f>& qInt = tilted ? t.q64b : t.q64;
    ASSERT_EQ(sfs(t.s32.ptr(), t.s32.step(), t.q32.ptr(), t.q32.step(), di.ptr(), di.step(), out, r, sf), 0);
    ASSERT_EQ(i32f(t.s32.ptr(), t.s32.step(), qInt.ptr(), qInt.step(), d1.ptr(), d1.step(), out, r), 0);
    ASSERT_EQ(f32f(t.s32f.ptr(), t.s32f.step(), t.q64.ptr(), t.q64.step(), d2.ptr(), d2.step(), out, r), 0);
    ASSERT_TRUE(di.guardsIntact() && d1.guardsIntact() && d2.guardsIntact());
    for (int j = 0; j < out.height; ++j)
        for (int i = 0; i < out.width; ++i) {
            const Rvp32s wi = ref::stdDevSfs(view(t.s32), view(t.q32), i, j, r.x, r.y, r.width, r.height, tilted, sf);
            const Rvp32f w1 = ref::stdDev32f(view(t.s32), view(qInt), i, j, r.x, r.y, r.width, r.height, tilted);
            const Rvp32f w2 = ref::stdDev32f(view(t.s32f), view(t.q64), i, j, r.x, r.y, r.width, r.height, tilted);
            ASSERT_EQ(di.at(i, j), wi) << "Sfs at " << i << "," << j;
            ASSERT_TRUE(sameBits(&d1.at(i, j), &w1, 4)) << "32s32f at " << i << "," << j << ": " << d1.at(i, j) << " vs " << w1;
            ASSERT_TRUE(sameBits(&d2.at(i, j), &w2, 4)) << "32f at " << i << "," << j << ": " << d2.at(i, j) << " vs " << w2;
        }
}

TEST(RectStdDev, TablesFromImagesMatchReference) {
    std::mt19937 rng(42);
    auto pick = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); };
    const int sfs[] = {0, 0, -1, 1, 3, -5};
    for (int trial = 0; trial < 60; ++trial) {
        const int w0 = pick(1, 70), h0 = pick(1, 30);
        Image<Rvp8u> src(w0, h0, 1, pick(0, 5));
        Random<Rvp8u> rnd(trial);
        // Half the images are smooth, so that the variance is small and its
        // rounding (and the clamp) matters.
        const int base = pick(0, 200);
        src.fill([&] { return trial % 2 ? rnd() : static_cast<Rvp8u>(base + rnd() % 3); });
        Tables t(w0, h0, 64);
        for (bool tilted : {false, true}) {
            buildFrom(src, t, tilted);
            RvpiRect r{pick(0, 4), pick(0, 4), pick(1, 6), pick(1, 6)};
            RvpiSize out;
            if (!tilted) {
                out = {w0 + 1 - r.x - r.width, h0 + 1 - r.y - r.height};
            } else {
                r.x = r.y + r.height + pick(0, 2);  // keeps every corner right of column 0
                out = {w0 + 2 - (r.x - r.y + r.width), h0 + 2 - (r.x + r.y + r.width + r.height)};
            }
            if (out.width < 1 || out.height < 1) continue;
            checkReaders(t, out, r, tilted, sfs[trial % 6]);
        }
    }
}

// Arbitrary table contents: wrapping integer sums, scaled results out of
// range, negative variances and float rounding in every step.
TEST(RectStdDev, ArbitraryTablesMatchReference) {
    for (int trial = 0; trial < 8; ++trial) {
        const int w = 13 + trial * 5, h = 9 + trial;
        Tables t(w, h, 64);
        std::mt19937 rng(trial);
        std::uniform_int_distribution<int32_t> anyInt(INT32_MIN, INT32_MAX);
        std::uniform_real_distribution<double> wide(-1e6, 1e6);
        t.s32.fill([&] { return trial % 2 ? anyInt(rng) : anyInt(rng) % 50000; });
        t.q32.fill([&] { return trial % 2 ? anyInt(rng) : anyInt(rng) % 5000000; });
        t.s32f.fill([&] { return static_cast<float>(wide(rng) / 100); });
        t.q64.fill([&] { return wide(rng) * 100; });
        t.q64b.fill([&] { return wide(rng) * 100; });
        const int sf = trial % 4 == 0 ? -31 : trial - 4;
        checkReaders(t, {w - 5, h - 4}, {1, 2, 3, 2}, false, sf);
        checkReaders(t, {w - 4, h - 8}, {4, 1, 2, 2}, true, sf);
    }
}

TEST(RectStdDev, ScaleAndSinglePixels) {
    // Pixels 0 and 10 under a 2x1 rectangle: deviation exactly 5.
    const Rvp8u img[2] = {0, 10};
    Rvp32s s[2][3], q[2][3];
    ASSERT_EQ(rvpiSqrIntegral_8u32s_C1R(img, 2, &s[0][0], 12, &q[0][0], 12, {2, 1}, 0, 0), 0);
    struct { int sf; Rvp32s want; } rows[] = {{0, 5}, {-1, 10}, {1, 3}, {2, 1}, {32, 5}, {-33, 10},
                                              {-28, 1342177280}, {-29, INT32_MIN}, {-31, INT32_MIN}};
    for (const auto& r : rows) {
        Rvp32s d = 77;
        ASSERT_EQ(rvpiRectStdDev_32s_C1RSfs(&s[0][0], 12, &q[0][0], 12, &d, 4, {1, 1}, {0, 0, 2, 1}, r.sf), 0);
        EXPECT_EQ(d, r.want) << "scaleFactor " << r.sf;
    }
    // One-pixel rectangles over exact tables give 0 everywhere.
    Image<Rvp8u> src(9, 7);
    src.fill(Random<Rvp8u>(3));
    Tables t(9, 7, 64);
    buildFrom(src, t, false);
    Image<Rvp32f> d(9, 7);
    ASSERT_EQ(rvpiRectStdDev_32f_C1R(t.s32f.ptr(), t.s32f.step(), t.q64.ptr(), t.q64.step(), d.ptr(), d.step(),
                                     {9, 7}, {0, 0, 1, 1}), 0);
    for (int y = 0; y < 7; ++y)
        for (int x = 0; x < 9; ++x) EXPECT_EQ(d.at(x, y), 0.0f);
}

// A constant image has deviation 0 under any tilted rectangle only if the
// four corners enclose exactly 2wh pixels: an independent check of the
// tilted corner geometry against the tilted tables.
TEST(RectStdDev, TiltedConstantImageHasNoDeviation) {
    Image<Rvp8u> src(24, 20);
    src.fill([] { return Rvp8u(37); });
    Tables t(24, 20, 64);
    buildFrom(src, t, true);
    for (RvpiRect r : {RvpiRect{2, 1, 3, 1}, RvpiRect{4, 0, 2, 4}, RvpiRect{5, 2, 4, 3}}) {
        // Corners stay within columns 0..W: column W+1 is only a copy.
        const RvpiSize out{25 - (r.x - r.y + r.width), 22 - (r.x + r.y + r.width + r.height)};
        Image<Rvp32f> d(out.width, out.height), f(out.width, out.height);
        ASSERT_EQ(rvpiTiltedRectStdDev_32s32f_C1R(t.s32.ptr(), t.s32.step(), t.q64b.ptr(), t.q64b.step(), d.ptr(),
                                                  d.step(), out, r), 0);
        ASSERT_EQ(rvpiTiltedRectStdDev_32f_C1R(t.s32f.ptr(), t.s32f.step(), t.q64.ptr(), t.q64.step(), f.ptr(),
                                               f.step(), out, r), 0);
        for (int y = 0; y < out.height; ++y)
            for (int x = 0; x < out.width; ++x) {
                ASSERT_EQ(d.at(x, y), 0.0f) << x << "," << y;
                ASSERT_EQ(f.at(x, y), 0.0f) << x << "," << y;
            }
    }
}

// The threaded reader gives the serial bits at every thread count.
TEST(RectStdDev, ThreadCountsGiveSameResult) {
    Image<Rvp8u> src(211, 173, 1, 3);
    src.fill(Random<Rvp8u>(9));
    Tables t(211, 173, 8);
    buildFrom(src, t, false);
    const RvpiRect r{3, 2, 17, 11};
    const RvpiSize out{211 + 1 - 20, 173 + 1 - 13};
    std::vector<uint8_t> first;
    for (int n : {1, 2, 3, 8, 64}) {
        ScopedThreads threads(n);
        Image<Rvp32f> d(out.width, out.height, 1, 8);
        ASSERT_EQ(rvpiRectStdDev_32f_C1R(t.s32f.ptr(), t.s32f.step(), t.q64.ptr(), t.q64.step(), d.ptr(), d.step(),
                                         out, r), 0);
        ASSERT_TRUE(d.guardsIntact());
        if (first.empty()) {
            first = d.bytes();
            for (int j = 0; j < out.height; ++j)
                for (int i = 0; i < out.width; ++i) {
                    const float w = ref::stdDev32f(view(t.s32f), view(t.q64), i, j, r.x, r.y, r.width, r.height, false);
                    ASSERT_TRUE(sameBits(&w, &d.at(i, j), 4)) << i << "," << j;
                }
        }
        EXPECT_EQ(d.bytes(), first) << n << " threads";
    }
}

TEST(RectStdDev, ValidationOrder) {
    Image<Rvp32s> s(20, 10), q(20, 10);
    Image<Rvp64f> q64(20, 10);
    Image<Rvp32s> d(10, 5);
    const auto before = d.raw();
    const Rvp32s *ps = s.ptr(), *pq = q.ptr();
    const Rvp64f* p64 = q64.ptr();
    Rvp32s* pd = d.ptr();
    Rvp32f* pf = reinterpret_cast<Rvp32f*>(pd);
    const Rvp32f* pfs = reinterpret_cast<const Rvp32f*>(ps);
    const RvpiRect ok{1, 1, 2, 2};  // upright N = 10 + 3 = 13; tilted N = 10 + 1 + 1 + 2 + 2 - 1 = 15
    struct Row { const char* what; std::function<RvpStatus()> call; RvpStatus want; };
    const Row rows[] = {
        {"null src", [&] { return rvpiRectStdDev_32s_C1RSfs(nullptr, 80, pq, 80, pd, 40, {10, 5}, ok, 0); }, rvpStsNullPtrErr},
        {"null sqr", [&] { return rvpiRectStdDev_32f_C1R(pfs, 80, nullptr, 160, pf, 40, {10, 5}, ok); }, rvpStsNullPtrErr},
        {"null dst", [&] { return rvpiTiltedRectStdDev_32s32f_C1R(ps, 80, p64, 160, nullptr, 40, {0, 5}, ok); }, rvpStsNullPtrErr},
        {"size", [&] { return rvpiRectStdDev_32s_C1RSfs(ps, 1, pq, 1, pd, 1, {10, 0}, {-1, 0, 0, 0}, 0); }, rvpStsSizeErr},
        {"src step below N*4", [&] { return rvpiRectStdDev_32s_C1RSfs(ps, 48, pq, 80, pd, 40, {10, 5}, ok, 0); }, rvpStsStepErr},
        {"exact src step", [&] { return rvpiRectStdDev_32s_C1RSfs(ps, 52, pq, 52, pd, 40, {10, 5}, {1, 1, 2, -5}, 0); }, rvpStsSizeErr},
        {"tilted N", [&] { return rvpiTiltedRectStdDev_32s_C1RSfs(ps, 56, pq, 80, pd, 40, {10, 5}, ok, 0); }, rvpStsStepErr},
        {"dst step", [&] { return rvpiRectStdDev_32s32f_C1R(ps, 80, p64, 160, pf, 36, {10, 5}, ok); }, rvpStsStepErr},
        {"sqr 64f step N*8", [&] { return rvpiRectStdDev_32s32f_C1R(ps, 80, p64, 100, pf, 40, {10, 5}, ok); }, rvpStsStepErr},
        {"huge rect fails the steps first", [&] { return rvpiRectStdDev_32f_C1R(pfs, 80, p64, 160, pf, 40, {10, 5}, {-1, 0, 100, 1}); }, rvpStsStepErr},
        {"src step not x4", [&] { return rvpiRectStdDev_32s_C1RSfs(ps, 78, pq, 80, pd, 40, {10, 5}, ok, 0); }, rvpStsNotEvenStepErr},
        {"dst step not x4", [&] { return rvpiTiltedRectStdDev_32f_C1R(pfs, 80, p64, 160, pf, 42, {10, 5}, ok); }, rvpStsNotEvenStepErr},
        {"64f step not x8", [&] { return rvpiRectStdDev_32f_C1R(pfs, 80, p64, 156, pf, 40, {10, 5}, ok); }, rvpStsNotEvenStepErr},
        {"evenness before rect", [&] { return rvpiRectStdDev_32f_C1R(pfs, 82, p64, 160, pf, 40, {10, 5}, {-1, 0, 1, 1}); }, rvpStsNotEvenStepErr},
        {"rect x", [&] { return rvpiRectStdDev_32f_C1R(pfs, 80, p64, 160, pf, 40, {10, 5}, {-1, 0, 1, 1}); }, rvpStsSizeErr},
        {"rect y", [&] { return rvpiTiltedRectStdDev_32f_C1R(pfs, 80, p64, 160, pf, 40, {10, 5}, {3, -1, 1, 1}); }, rvpStsSizeErr},
        {"rect width", [&] { return rvpiTiltedRectStdDev_32s_C1RSfs(ps, 80, pq, 80, pd, 40, {10, 5}, {3, 0, 0, 1}, 0); }, rvpStsSizeErr},
        {"rect height", [&] { return rvpiRectStdDev_32s32f_C1R(ps, 80, p64, 160, pf, 40, {10, 5}, {0, 0, 1, 0}); }, rvpStsSizeErr},
    };
    for (const Row& r : rows) {
        EXPECT_EQ(r.call(), r.want) << r.what;
        EXPECT_EQ(d.raw(), before) << r.what << " wrote to the destination";
    }
}

}  // namespace
