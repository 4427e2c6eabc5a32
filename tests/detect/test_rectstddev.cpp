// Rectangle deviation against the reference model: the six readers over
// tables built from images and over arbitrary tables (wrapping sums,
// negative variances, out-of-range scaled results), the scale rule, the
// threaded float reader at several thread counts, and the validation order.
#include "reference/ref_integral.h"
#include "support/rvtest.h"

using namespace rvtest;

namespace {

// Tables of every kind; steps carry slack for the tilted step minimum,
// which counts the rectangle twice. q64i pairs with the 32s sum table.
struct Tables {
    Tables(int w, int h, int slack = 64)
        : s32(w + 2, h + 2, 1, 4 * slack), q32(w + 2, h + 2, 1, 4 * slack), s32f(w + 2, h + 2, 1, 4 * slack),
          q64(w + 2, h + 2, 1, 8 * slack), q64i(w + 2, h + 2, 1, 8 * slack) {}
    Image<Rvp32s> s32, q32;
    Image<Rvp32f> s32f;
    Image<Rvp64f> q64, q64i;

    void build(const Image<Rvp8u>& src, bool tilted) {
        const RvpiSize roi = src.size();
        if (!tilted) {
            ASSERT_EQ(rvpiSqrIntegral_8u32s_C1R(src.ptr(), src.step(), s32.ptr(), s32.step(), q32.ptr(), q32.step(), roi, 0, 0), 0);
            ASSERT_EQ(rvpiSqrIntegral_8u32f64f_C1R(src.ptr(), src.step(), s32f.ptr(), s32f.step(), q64.ptr(), q64.step(), roi, 0, 0), 0);
            q64i = q64;
            return;
        }
        // Build the 32s/32s square table first: its sum table reads past the row.
        ASSERT_EQ(rvpiTiltedSqrIntegral_8u32s_C1R(src.ptr(), src.step(), s32.ptr(), s32.step(), q32.ptr(), q32.step(), roi, 0, 0), 0);
        ASSERT_EQ(rvpiTiltedSqrIntegral_8u32s64f_C1R(src.ptr(), src.step(), s32.ptr(), s32.step(), q64i.ptr(), q64i.step(), roi, 0, 0), 0);
        s32f.fill([] { return 0.0f; });
        ASSERT_EQ(rvpiTiltedSqrIntegral_8u32f64f_C1R(src.ptr(), src.step(), s32f.ptr(), s32f.step(), q64.ptr(), q64.step(), roi, 0, 0), 0);
    }
};

template <class T> ref::View<T> view(const Image<T>& img) { return {img.ptr(), img.step() / static_cast<int>(sizeof(T))}; }

// Runs the three readers of one orientation and compares every element.
void checkReaders(const Tables& t, RvpiSize out, RvpiRect r, bool tilted, int sf) {
    SCOPED_TRACE(testing::Message() << (tilted ? "tilted " : "upright ") << out.width << "x" << out.height << " rect "
                                    << r.x << "," << r.y << "," << r.width << "," << r.height << " sf " << sf);
    Image<Rvp32s> di(out.width, out.height, 1, 12);
    Image<Rvp32f> d1(out.width, out.height, 1, 4), d2(out.width, out.height);
    ASSERT_EQ((tilted ? rvpiTiltedRectStdDev_32s_C1RSfs : rvpiRectStdDev_32s_C1RSfs)(
                  t.s32.ptr(), t.s32.step(), t.q32.ptr(), t.q32.step(), di.ptr(), di.step(), out, r, sf), 0);
    ASSERT_EQ((tilted ? rvpiTiltedRectStdDev_32s32f_C1R : rvpiRectStdDev_32s32f_C1R)(
                  t.s32.ptr(), t.s32.step(), t.q64i.ptr(), t.q64i.step(), d1.ptr(), d1.step(), out, r), 0);
    ASSERT_EQ((tilted ? rvpiTiltedRectStdDev_32f_C1R : rvpiRectStdDev_32f_C1R)(
                  t.s32f.ptr(), t.s32f.step(), t.q64.ptr(), t.q64.step(), d2.ptr(), d2.step(), out, r), 0);
    ASSERT_TRUE(di.guardsIntact() && d1.guardsIntact() && d2.guardsIntact());
    for (int j = 0; j < out.height; ++j)
        for (int i = 0; i < out.width; ++i) {
            const Rvp32s wi = ref::stdDevSfs(view(t.s32), view(t.q32), i, j, r.x, r.y, r.width, r.height, tilted, sf);
            const Rvp32f w1 = ref::stdDev32f(view(t.s32), view(t.q64i), i, j, r.x, r.y, r.width, r.height, tilted);
            const Rvp32f w2 = ref::stdDev32f(view(t.s32f), view(t.q64), i, j, r.x, r.y, r.width, r.height, tilted);
            ASSERT_EQ(di.at(i, j), wi) << "Sfs at " << i << "," << j;
            ASSERT_TRUE(sameBits(&d1.at(i, j), &w1, 4)) << "32s32f at " << i << "," << j << ": " << d1.at(i, j) << " vs " << w1;
            ASSERT_TRUE(sameBits(&d2.at(i, j), &w2, 4)) << "32f at " << i << "," << j << ": " << d2.at(i, j) << " vs " << w2;
        }
}

TEST(RectStdDev, TablesFromImagesMatchReference) {
    std::mt19937 rng(42);
    auto pick = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); };
    for (int trial = 0; trial < 60; ++trial) {
        const int w0 = pick(1, 70), h0 = pick(1, 30);
        Image<Rvp8u> src(w0, h0, 1, pick(0, 5));
        Random<Rvp8u> rnd(trial);
        // Half the images are nearly flat, so that the variance is small and
        // its rounding (and the clamp) matters.
        const int base = pick(0, 200);
        src.fill([&] { return trial % 2 ? rnd() : static_cast<Rvp8u>(base + rnd() % 3); });
        Tables t(w0, h0);
        for (bool tilted : {false, true}) {
            t.build(src, tilted);
            RvpiRect r{pick(0, 4), pick(0, 4), pick(1, 6), pick(1, 6)};
            if (tilted) r.x = r.y + r.height + pick(0, 2);  // keeps every corner right of column 0
            const RvpiSize out = tilted ? RvpiSize{w0 + 2 - (r.x - r.y + r.width), h0 + 2 - (r.x + r.y + r.width + r.height)}
                                        : RvpiSize{w0 + 1 - r.x - r.width, h0 + 1 - r.y - r.height};
            if (out.width > 0 && out.height > 0) checkReaders(t, out, r, tilted, trial % 7 - 3);
        }
    }
}

TEST(RectStdDev, ArbitraryTablesMatchReference) {
    for (int trial = 0; trial < 8; ++trial) {
        const int w = 13 + trial * 5, h = 9 + trial;
        Tables t(w, h);
        std::mt19937 rng(trial);
        std::uniform_int_distribution<int32_t> anyInt(INT32_MIN, INT32_MAX);
        std::uniform_real_distribution<double> wide(-1e6, 1e6);
        t.s32.fill([&] { return trial % 2 ? anyInt(rng) : anyInt(rng) % 50000; });
        t.q32.fill([&] { return trial % 2 ? anyInt(rng) : anyInt(rng) % 5000000; });
        t.s32f.fill([&] { return static_cast<float>(wide(rng) / 100); });
        t.q64.fill([&] { return wide(rng) * 100; });
        t.q64i.fill([&] { return wide(rng) * 100; });
        const int sf = trial % 4 == 0 ? -31 : trial - 4;
        checkReaders(t, {w - 5, h - 4}, {1, 2, 3, 2}, false, sf);
        checkReaders(t, {w - 4, h - 8}, {4, 1, 2, 2}, true, sf);
    }
}

TEST(RectStdDev, ScaleRule) {
    // Pixels 0 and 10 under a 2x1 rectangle: deviation exactly 5. The shift
    // count wraps at 32; 1 << 31 is negative, and results out of range give INT_MIN.
    const Rvp8u img[2] = {0, 10};
    Rvp32s s[2][3], q[2][3];
    ASSERT_EQ(rvpiSqrIntegral_8u32s_C1R(img, 2, &s[0][0], 12, &q[0][0], 12, {2, 1}, 0, 0), 0);
    const int rows[][2] = {{0, 5}, {-1, 10}, {1, 3}, {2, 1}, {32, 5}, {-33, 10}, {-28, 1342177280}, {-29, INT32_MIN}, {-31, INT32_MIN}};
    for (const auto& r : rows) {
        Rvp32s d = 77;
        ASSERT_EQ(rvpiRectStdDev_32s_C1RSfs(&s[0][0], 12, &q[0][0], 12, &d, 4, {1, 1}, {0, 0, 2, 1}, r[0]), 0);
        EXPECT_EQ(d, r[1]) << "scaleFactor " << r[0];
    }
}

// A constant image has deviation 0 under a tilted rectangle only if the four
// corners enclose exactly 2wh pixels: a check of the tilted corner geometry
// that does not rest on the reference.
TEST(RectStdDev, TiltedConstantImageHasNoDeviation) {
    Image<Rvp8u> src(24, 20);
    src.fill([] { return Rvp8u(37); });
    Tables t(24, 20);
    t.build(src, true);
    for (RvpiRect r : {RvpiRect{2, 1, 3, 1}, RvpiRect{4, 0, 2, 4}, RvpiRect{5, 2, 4, 3}}) {
        // Corners stay within columns 0..W: column W+1 is only a copy.
        const RvpiSize out{25 - (r.x - r.y + r.width), 22 - (r.x + r.y + r.width + r.height)};
        Image<Rvp32f> d(out.width, out.height), f(out.width, out.height);
        ASSERT_EQ(rvpiTiltedRectStdDev_32s32f_C1R(t.s32.ptr(), t.s32.step(), t.q64i.ptr(), t.q64i.step(), d.ptr(), d.step(), out, r), 0);
        ASSERT_EQ(rvpiTiltedRectStdDev_32f_C1R(t.s32f.ptr(), t.s32f.step(), t.q64.ptr(), t.q64.step(), f.ptr(), f.step(), out, r), 0);
        for (int y = 0; y < out.height; ++y)
            for (int x = 0; x < out.width; ++x) ASSERT_TRUE(d.at(x, y) == 0.0f && f.at(x, y) == 0.0f) << x << "," << y;
    }
}

// The threaded float reader gives the reference bits at every thread count and level.
TEST(RectStdDev, ThreadCountsGiveSerialResult) {
    Image<Rvp8u> src(211, 173, 1, 3);
    src.fill(Random<Rvp8u>(9));
    Tables t(211, 173, 8);
    t.build(src, false);
    const RvpiRect r{3, 2, 17, 11};
    const RvpiSize out{211 + 1 - 20, 173 + 1 - 13};
    for (rvcv::Isa isa : isaLevels())
        for (int n : {1, 2, 3, 8, 64}) {
            ScopedIsa level(isa);
            ScopedThreads threads(n);
            SCOPED_TRACE(testing::Message() << n << " threads at " << rvcv::isaName(isa));
            checkReaders(t, out, r, false, 0);
        }
}

TEST(RectStdDev, ValidationOrder) {
    Image<Rvp32s> s(20, 10), q(20, 10), d(10, 5);
    Image<Rvp64f> q64(20, 10);
    const auto before = d.raw();
    const Rvp32s *ps = s.ptr(), *pq = q.ptr();
    const Rvp32f* pfs = reinterpret_cast<const Rvp32f*>(ps);
    const Rvp64f* p64 = q64.ptr();
    Rvp32s* pd = d.ptr();
    Rvp32f* pf = reinterpret_cast<Rvp32f*>(pd);
    const RvpiRect ok{1, 1, 2, 2};  // upright N = 10 + 3 = 13; tilted N = 10 + 1 + 1 + 2 + 2 - 1 = 15
    const struct { const char* what; RvpStatus got, want; } rows[] = {
        {"null src", rvpiRectStdDev_32s_C1RSfs(nullptr, 80, pq, 80, pd, 40, {10, 5}, ok, 0), rvpStsNullPtrErr},
        {"null dst before size", rvpiTiltedRectStdDev_32s32f_C1R(ps, 80, p64, 160, nullptr, 40, {0, 5}, ok), rvpStsNullPtrErr},
        {"size", rvpiRectStdDev_32s_C1RSfs(ps, 1, pq, 1, pd, 1, {10, 0}, {-1, 0, 0, 0}, 0), rvpStsSizeErr},
        {"src step below N*4", rvpiRectStdDev_32s_C1RSfs(ps, 48, pq, 80, pd, 40, {10, 5}, ok, 0), rvpStsStepErr},
        {"tilted N", rvpiTiltedRectStdDev_32s_C1RSfs(ps, 56, pq, 80, pd, 40, {10, 5}, ok, 0), rvpStsStepErr},
        {"dst step", rvpiRectStdDev_32s32f_C1R(ps, 80, p64, 160, pf, 36, {10, 5}, ok), rvpStsStepErr},
        {"64f square step N*8", rvpiRectStdDev_32s32f_C1R(ps, 80, p64, 100, pf, 40, {10, 5}, ok), rvpStsStepErr},
        {"a bad rectangle fails the steps first", rvpiRectStdDev_32f_C1R(pfs, 80, p64, 160, pf, 40, {10, 5}, {-1, 0, 100, 1}), rvpStsStepErr},
        {"dst step not x4", rvpiTiltedRectStdDev_32f_C1R(pfs, 80, p64, 160, pf, 42, {10, 5}, ok), rvpStsNotEvenStepErr},
        {"64f step not x8", rvpiRectStdDev_32f_C1R(pfs, 80, p64, 156, pf, 40, {10, 5}, ok), rvpStsNotEvenStepErr},
        {"evenness before rectangle", rvpiRectStdDev_32f_C1R(pfs, 82, p64, 160, pf, 40, {10, 5}, {-1, 0, 1, 1}), rvpStsNotEvenStepErr},
        {"exact steps, rect x", rvpiRectStdDev_32s_C1RSfs(ps, 52, pq, 52, pd, 40, {10, 5}, {-1, 1, 3, 2}, 0), rvpStsSizeErr},
        {"rect y", rvpiTiltedRectStdDev_32f_C1R(pfs, 80, p64, 160, pf, 40, {10, 5}, {3, -1, 1, 1}), rvpStsSizeErr},
        {"rect width", rvpiTiltedRectStdDev_32s_C1RSfs(ps, 80, pq, 80, pd, 40, {10, 5}, {3, 0, 0, 1}, 0), rvpStsSizeErr},
        {"rect height", rvpiRectStdDev_32s32f_C1R(ps, 80, p64, 160, pf, 40, {10, 5}, {0, 0, 1, 0}), rvpStsSizeErr},
    };
    for (const auto& r : rows) EXPECT_EQ(r.got, r.want) << r.what;
    EXPECT_EQ(d.raw(), before) << "a refused call wrote to the destination";
}

}  // namespace
