// Summed-area tables against the reference model: all ten builders over
// widths around the eight-pixel blocks, padded steps, start values that make
// the 32-bit tables wrap and the float tables round, and the two kept quirks
// (column W of the 32f tilted tables, the extra sample of the 32s/32s tilted
// square form).
#include <functional>

#include "reference/ref_integral.h"
#include "support/rvtest.h"

using namespace rvtest;

namespace {

struct Case { int w, h, pad; };
const Case kCases[] = {{1, 1, 0},  {1, 6, 3},  {2, 3, 0},  {7, 1, 5},   {8, 2, 0},    {9, 3, 4},   {15, 4, 0},
                       {16, 5, 8}, {17, 9, 1}, {31, 2, 0}, {33, 7, 0}, {48, 3, 4}, {64, 3, 12}, {100, 37, 2}, {257, 13, 0}};

template <class T> void expectTable(const Image<T>& img, const ref::Table<T>& t) {
    ASSERT_TRUE(img.guardsIntact());
    for (int y = 0; y < t.h; ++y)
        for (int x = 0; x < t.w; ++x)
            ASSERT_TRUE(sameBits(&img.at(x, y), &t.at(x, y), sizeof(T)))
                << "at " << x << "," << y << ": " << img.at(x, y) << " vs " << t.at(x, y);
}

template <class T> ref::Table<T> contents(const Image<T>& img) {
    ref::Table<T> t(img.width(), img.height());
    for (int y = 0; y < t.h; ++y)
        for (int x = 0; x < t.w; ++x) t.at(x, y) = img.at(x, y);
    return t;
}

// Table image for a source of c.w x c.h; extra = 1 upright, 2 tilted.
template <class T> Image<T> table(const Case& c, int extra) {
    return Image<T>(c.w + extra, c.h + extra, 1, static_cast<int>(sizeof(T)) * (c.pad % 3));
}

struct Vals { int32_t i; float f; double d; };

std::vector<Vals> valsFor(uint32_t seed) {
    std::mt19937 rng(seed);
    std::uniform_int_distribution<int32_t> anyInt(INT32_MIN, INT32_MAX);
    std::uniform_real_distribution<double> big(-1e9, 1e9);
    return {{0, 0.0f, 0.0}, {INT32_MAX - 1000, 3.25f, -7.5}, {anyInt(rng), static_cast<float>(big(rng)), big(rng) * 1e6}};
}

class IntegralAcross : public testing::TestWithParam<rvcv::Isa> {
protected:
    void SetUp() override { isa_ = std::make_unique<ScopedIsa>(GetParam()); }
    std::unique_ptr<ScopedIsa> isa_;
};

TEST_P(IntegralAcross, UprightMatchesReference) {
    for (const Case& c : kCases) {
        Image<Rvp8u> src(c.w, c.h, 1, c.pad);
        src.fill(Random<Rvp8u>(c.w * 31 + c.h));
        const ref::Src s{src.ptr(), src.step(), c.w, c.h};
        for (const Vals& v : valsFor(c.w + c.h)) {
            SCOPED_TRACE(testing::Message() << c.w << "x" << c.h << " pad " << c.pad << " val " << v.i << "/" << v.f);
            auto d32s = table<Rvp32s>(c, 1), q32s = table<Rvp32s>(c, 1);
            auto d32f = table<Rvp32f>(c, 1);
            auto q64f = table<Rvp64f>(c, 1);
            ASSERT_EQ(rvpiIntegral_8u32s_C1R(src.ptr(), src.step(), d32s.ptr(), d32s.step(), {c.w, c.h}, v.i), 0);
            expectTable(d32s, ref::upright32s(s, v.i, false));
            ASSERT_EQ(rvpiIntegral_8u32f_C1R(src.ptr(), src.step(), d32f.ptr(), d32f.step(), {c.w, c.h}, v.f), 0);
            expectTable(d32f, ref::upright32f(s, v.f));

            ASSERT_EQ(rvpiSqrIntegral_8u32s_C1R(src.ptr(), src.step(), d32s.ptr(), d32s.step(), q32s.ptr(),
                                                q32s.step(), {c.w, c.h}, v.i, ~v.i), 0);
            expectTable(d32s, ref::upright32s(s, v.i, false));
            expectTable(q32s, ref::upright32s(s, ~v.i, true));
            ASSERT_EQ(rvpiSqrIntegral_8u32s64f_C1R(src.ptr(), src.step(), d32s.ptr(), d32s.step(), q64f.ptr(),
                                                   q64f.step(), {c.w, c.h}, v.i, v.d), 0);
            expectTable(d32s, ref::upright32s(s, v.i, false));
            expectTable(q64f, ref::uprightSqr64f(s, v.d));
            auto q64f2 = table<Rvp64f>(c, 1);
            ASSERT_EQ(rvpiSqrIntegral_8u32f64f_C1R(src.ptr(), src.step(), d32f.ptr(), d32f.step(), q64f2.ptr(),
                                                   q64f2.step(), {c.w, c.h}, v.f, -v.d), 0);
            expectTable(d32f, ref::upright32f(s, v.f));
            expectTable(q64f2, ref::uprightSqr64f(s, -v.d));
        }
    }
}

TEST_P(IntegralAcross, TiltedMatchesReference) {
    for (const Case& c : kCases) {
        // The image buffer has canary bytes past the region, so the form that
        // reads s(W) sees real memory, and the reference reads the same.
        Image<Rvp8u> src(c.w, c.h, 1, c.pad);
        src.fill(Random<Rvp8u>(c.w * 17 + c.h));
        const ref::Src s{src.ptr(), src.step(), c.w, c.h};
        for (const Vals& v : valsFor(c.w * c.h)) {
            SCOPED_TRACE(testing::Message() << c.w << "x" << c.h << " pad " << c.pad << " val " << v.i << "/" << v.f);
            auto d32s = table<Rvp32s>(c, 2), q32s = table<Rvp32s>(c, 2);
            auto q64f = table<Rvp64f>(c, 2);
            ASSERT_EQ(rvpiTiltedIntegral_8u32s_C1R(src.ptr(), src.step(), d32s.ptr(), d32s.step(), {c.w, c.h}, v.i), 0);
            expectTable(d32s, ref::tilted32s(s, v.i, false, false));
            ASSERT_EQ(rvpiTiltedSqrIntegral_8u32s_C1R(src.ptr(), src.step(), d32s.ptr(), d32s.step(), q32s.ptr(),
                                                      q32s.step(), {c.w, c.h}, v.i, ~v.i), 0);
            expectTable(d32s, ref::tilted32s(s, v.i, false, true));
            expectTable(q32s, ref::tilted32s(s, ~v.i, true, true));
            ASSERT_EQ(rvpiTiltedSqrIntegral_8u32s64f_C1R(src.ptr(), src.step(), d32s.ptr(), d32s.step(), q64f.ptr(),
                                                         q64f.step(), {c.w, c.h}, v.i, v.d), 0);
            expectTable(d32s, ref::tilted32s(s, v.i, false, false));
            expectTable(q64f, ref::tiltedSqr64f(s, v.d));

            // The float tables add column W onto the old content: try a zeroed
            // destination and one full of noise.
            for (bool noise : {false, true}) {
                auto d32f = table<Rvp32f>(c, 2), e32f = table<Rvp32f>(c, 2);
                auto q2 = table<Rvp64f>(c, 2);
                Random<Rvp32f> rnd(7);
                d32f.fill([&] { return noise ? rnd() : 0.0f; });
                e32f.fill([&] { return noise ? rnd() : 0.0f; });
                const auto oldD = contents(d32f), oldE = contents(e32f);
                ASSERT_EQ(rvpiTiltedIntegral_8u32f_C1R(src.ptr(), src.step(), d32f.ptr(), d32f.step(), {c.w, c.h}, v.f), 0);
                expectTable(d32f, ref::tilted32f(s, v.f, oldD));
                ASSERT_EQ(rvpiTiltedSqrIntegral_8u32f64f_C1R(src.ptr(), src.step(), e32f.ptr(), e32f.step(), q2.ptr(),
                                                             q2.step(), {c.w, c.h}, v.f, v.d), 0);
                expectTable(e32f, ref::tilted32f(s, v.f, oldE));
                expectTable(q2, ref::tiltedSqr64f(s, v.d));
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Isa, IntegralAcross, testing::ValuesIn(isaLevels()), [](const auto& info) {
    return std::string(info.param == rvcv::Isa::Avx2 ? "avx2" : "m7");
});

TEST(Integral, SmallCasesByHand) {
    // 1x1 with val 0: only table[1][1] is non-zero.
    const Rvp8u one = 9;
    Rvp32s t[4] = {5, 5, 5, 5};
    ASSERT_EQ(rvpiIntegral_8u32s_C1R(&one, 1, t, 8, {1, 1}, 0), 0);
    EXPECT_EQ(t[0], 0); EXPECT_EQ(t[1], 0); EXPECT_EQ(t[2], 0); EXPECT_EQ(t[3], 9);

    // W = 1 tilted: cur[0] = prev[1], cur[1] = prev[0] + prev[2] - prev2[1] + s(0), cur[2] = prev[1].
    const Rvp8u col[2] = {3, 4};
    Rvp32s tt[4][3];
    ASSERT_EQ(rvpiTiltedIntegral_8u32s_C1R(col, 1, &tt[0][0], 12, {1, 2}, 10), 0);
    const Rvp32s want[4][3] = {{10, 10, 10}, {10, 10, 10}, {10, 13, 10}, {13, 14, 13}};
    for (int r = 0; r < 4; ++r)
        for (int x = 0; x < 3; ++x) EXPECT_EQ(tt[r][x], want[r][x]) << r << "," << x;

    // A constant image keeps the tilted table's first two rows at val, and a
    // 1.0 left in column W adds to the first computed row's column W (and
    // from there spreads into the rows below).
    Rvp8u img[3 * 4];
    for (Rvp8u& p : img) p = 2;
    Rvp32f z[6][5] = {}, o[6][5] = {};
    for (auto& row : o) row[3] = 1.0f;
    ASSERT_EQ(rvpiTiltedIntegral_8u32f_C1R(img, 3, &z[0][0], 20, {3, 4}, 1.5f), 0);
    ASSERT_EQ(rvpiTiltedIntegral_8u32f_C1R(img, 3, &o[0][0], 20, {3, 4}, 1.5f), 0);
    for (int x = 0; x < 5; ++x) EXPECT_TRUE(z[0][x] == 1.5f && z[1][x] == 1.5f);
    EXPECT_EQ(o[2][3], z[2][3] + 1.0f);
    for (int x = 0; x < 5; ++x)
        EXPECT_TRUE(x == 3 || o[2][x] == z[2][x]) << x;
    for (int r = 3; r < 6; ++r) EXPECT_GT(o[r][3], z[r][3]) << r;
}

// The 32s/32s tilted square form adds s(W) in column W; its siblings do not.
TEST(Integral, TiltedSqr32sReadsOneSamplePastTheRow) {
    const Rvp8u img[2][4] = {{1, 2, 3, 7}, {4, 5, 6, 8}};  // region 3 wide, step 4
    Rvp32s a[4][5], b[4][5], qa[4][5];
    Rvp64f qb[4][5];
    ASSERT_EQ(rvpiTiltedSqrIntegral_8u32s_C1R(&img[0][0], 4, &a[0][0], 20, &qa[0][0], 20, {3, 2}, 0, 0), 0);
    ASSERT_EQ(rvpiTiltedSqrIntegral_8u32s64f_C1R(&img[0][0], 4, &b[0][0], 20, &qb[0][0], 40, {3, 2}, 0, 0.0), 0);
    EXPECT_EQ(a[2][3], b[2][3] + 7);
    EXPECT_EQ(qa[2][3], static_cast<Rvp32s>(qb[2][3]) + 49);
    EXPECT_EQ(a[2][2], b[2][2]);
}

TEST(Integral, ValidationOrder) {
    Image<Rvp8u> src(8, 4);
    Image<Rvp32s> d(10, 6);
    Image<Rvp64f> q(10, 6);
    const auto before = d.raw();
    const auto beforeQ = q.raw();
    const Rvp8u* s = src.ptr();
    Rvp32s* pd = d.ptr();
    Rvp64f* pq = q.ptr();
    Rvp32s* pq32 = reinterpret_cast<Rvp32s*>(q.ptr());
    struct Row { const char* what; std::function<RvpStatus()> call; RvpStatus want; };
    const Row rows[] = {
        {"null src", [&] { return rvpiIntegral_8u32s_C1R(nullptr, 8, pd, 36, {8, 4}, 0); }, rvpStsNullPtrErr},
        {"null dst", [&] { return rvpiIntegral_8u32s_C1R(s, 8, nullptr, 36, {0, 4}, 0); }, rvpStsNullPtrErr},
        {"null sqr", [&] { return rvpiSqrIntegral_8u32s64f_C1R(s, 8, pd, 36, nullptr, 72, {8, 4}, 0, 0); }, rvpStsNullPtrErr},
        {"zero width", [&] { return rvpiIntegral_8u32s_C1R(s, 0, pd, 1, {0, 4}, 0); }, rvpStsSizeErr},
        {"zero height", [&] { return rvpiTiltedIntegral_8u32s_C1R(s, 8, pd, 40, {8, 0}, 0); }, rvpStsSizeErr},
        {"src step", [&] { return rvpiIntegral_8u32s_C1R(s, 7, pd, 36, {8, 4}, 0); }, rvpStsStepErr},
        {"upright step W*4+4", [&] { return rvpiIntegral_8u32s_C1R(s, 8, pd, 35, {8, 4}, 0); }, rvpStsStepErr},
        {"tilted step W*4+8", [&] { return rvpiTiltedIntegral_8u32s_C1R(s, 8, pd, 36, {8, 4}, 0); }, rvpStsStepErr},
        {"upright 64f W*8+8", [&] { return rvpiSqrIntegral_8u32s64f_C1R(s, 8, pd, 36, pq, 64, {8, 4}, 0, 0); }, rvpStsStepErr},
        {"tilted 64f W*8+16", [&] { return rvpiTiltedSqrIntegral_8u32f64f_C1R(s, 8, reinterpret_cast<Rvp32f*>(pd), 40, pq, 72, {8, 4}, 0, 0); }, rvpStsStepErr},
        {"tilted 32s sqr", [&] { return rvpiTiltedSqrIntegral_8u32s_C1R(s, 8, pd, 40, pq32, 39, {8, 4}, 0, 0); }, rvpStsStepErr},
        {"step before evenness", [&] { return rvpiIntegral_8u32s_C1R(s, 7, pd, 37, {8, 4}, 0); }, rvpStsStepErr},
        {"dst step not x4", [&] { return rvpiIntegral_8u32s_C1R(s, 8, pd, 38, {8, 4}, 0); }, rvpStsNotEvenStepErr},
        {"64f step not x8", [&] { return rvpiSqrIntegral_8u32s64f_C1R(s, 8, pd, 36, pq, 76, {8, 4}, 0, 0); }, rvpStsNotEvenStepErr},
    };
    for (const Row& r : rows) {
        EXPECT_EQ(r.call(), r.want) << r.what;
        EXPECT_EQ(d.raw(), before) << r.what << " wrote to the table";
        EXPECT_EQ(q.raw(), beforeQ) << r.what << " wrote to the square table";
    }
    // The source step has no evenness test, and exact minimum steps pass.
    EXPECT_EQ(rvpiIntegral_8u32s_C1R(s, 9, pd, 36, {8, 3}, 0), rvpStsNoErr);
    EXPECT_EQ(rvpiSqrIntegral_8u32f64f_C1R(s, 8, reinterpret_cast<Rvp32f*>(pd), 36, pq, 72, {8, 4}, 0, 0), rvpStsNoErr);
}

}  // namespace
