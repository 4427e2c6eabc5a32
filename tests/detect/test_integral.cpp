// Summed-area tables against the reference model: all ten builders over
// widths around the vector blocks, padded steps, start values that make the
// 32-bit tables wrap and the float tables round, every dispatch level, and
// the two kept quirks (column W of the 32f tilted tables, the extra sample
// of the 32s/32s tilted square form).
#include "reference/ref_integral.h"
#include "support/rvtest.h"

using namespace rvtest;

namespace {

struct Case { int w, h, pad; };
const Case kCases[] = {{1, 1, 0}, {1, 6, 3}, {2, 3, 0},  {7, 1, 5},  {8, 2, 0},   {9, 3, 4},    {15, 4, 0}, {16, 5, 8},
                       {17, 9, 1}, {31, 2, 0}, {33, 7, 0}, {48, 3, 4}, {64, 3, 12}, {100, 37, 2}, {257, 13, 0},
                       {131, 3, 0}};  // white: the largest block sums, held in 16-bit lanes before widening

template <class T> void expectTable(const Image<T>& img, const ref::Table<T>& t) {
    ASSERT_TRUE(img.guardsIntact());
    for (int y = 0; y < t.h; ++y)
        for (int x = 0; x < t.w; ++x)
            ASSERT_TRUE(sameBits(&img.at(x, y), &t.at(x, y), sizeof(T))) << x << "," << y << ": " << img.at(x, y) << " vs " << t.at(x, y);
}

// A table for a source of c.w x c.h (extra = 1 upright, 2 tilted); the float
// tables start as noise when asked, which column W of the tilted ones keeps.
template <class T> Image<T> table(const Case& c, int extra, bool noise = false) {
    Image<T> img(c.w + extra, c.h + extra, 1, static_cast<int>(sizeof(T)) * (c.pad % 3));
    Random<T> rnd(c.w);
    if (noise) img.fill(rnd);
    return img;
}
template <class T> ref::Table<T> contents(const Image<T>& img) {
    ref::Table<T> t(img.width(), img.height());
    for (int y = 0; y < t.h; ++y)
        for (int x = 0; x < t.w; ++x) t.at(x, y) = img.at(x, y);
    return t;
}

class IntegralAcross : public testing::TestWithParam<rvcv::Isa> {
    ScopedIsa isa_{GetParam()};
};

TEST_P(IntegralAcross, MatchesReference) {
    for (const Case& c : kCases) {
        // The canaries past the image are the s(W) of the last row.
        Image<Rvp8u> src(c.w, c.h, 1, c.pad);
        if (c.w == 131) src.fill([] { return Rvp8u(255); });
        else src.fill(Random<Rvp8u>(c.w * 31 + c.h));
        const ref::Src s{src.ptr(), src.step(), c.w, c.h};
        const RvpiSize roi{c.w, c.h};
        std::mt19937 rng(c.w + c.h);
        const int32_t vi[] = {0, INT32_MAX - 1000, static_cast<int32_t>(rng())};
        const float vf[] = {0.0f, 3.25f, static_cast<float>(rng() % 2000000000) - 1e9f};
        const double vd[] = {0.0, -7.5, 1e15 * static_cast<double>(rng())};
        for (int k = 0; k < 3; ++k) {
            SCOPED_TRACE(testing::Message() << c.w << "x" << c.h << " pad " << c.pad << " val " << vi[k] << "/" << vf[k]);
            auto d = table<Rvp32s>(c, 1), q = table<Rvp32s>(c, 1);
            auto f = table<Rvp32f>(c, 1);
            auto qd = table<Rvp64f>(c, 1);
            ASSERT_EQ(rvpiIntegral_8u32s_C1R(src.ptr(), src.step(), d.ptr(), d.step(), roi, vi[k]), 0);
            expectTable(d, ref::upright(s, vi[k], false));
            ASSERT_EQ(rvpiIntegral_8u32f_C1R(src.ptr(), src.step(), f.ptr(), f.step(), roi, vf[k]), 0);
            expectTable(f, ref::upright(s, vf[k], false));
            ASSERT_EQ(rvpiSqrIntegral_8u32s_C1R(src.ptr(), src.step(), d.ptr(), d.step(), q.ptr(), q.step(), roi, vi[k], ~vi[k]), 0);
            expectTable(q, ref::upright(s, ~vi[k], true));
            ASSERT_EQ(rvpiSqrIntegral_8u32s64f_C1R(src.ptr(), src.step(), d.ptr(), d.step(), qd.ptr(), qd.step(), roi, vi[k], vd[k]), 0);
            expectTable(d, ref::upright(s, vi[k], false));
            expectTable(qd, ref::upright(s, vd[k], true));
            ASSERT_EQ(rvpiSqrIntegral_8u32f64f_C1R(src.ptr(), src.step(), f.ptr(), f.step(), qd.ptr(), qd.step(), roi, vf[k], -vd[k]), 0);
            expectTable(f, ref::upright(s, vf[k], false));
            expectTable(qd, ref::upright(s, -vd[k], true));

            auto td = table<Rvp32s>(c, 2), tq = table<Rvp32s>(c, 2);
            auto tqd = table<Rvp64f>(c, 2);
            ASSERT_EQ(rvpiTiltedIntegral_8u32s_C1R(src.ptr(), src.step(), td.ptr(), td.step(), roi, vi[k]), 0);
            expectTable(td, ref::tilted(s, vi[k], false, false));
            ASSERT_EQ(rvpiTiltedSqrIntegral_8u32s_C1R(src.ptr(), src.step(), td.ptr(), td.step(), tq.ptr(), tq.step(), roi, vi[k], ~vi[k]), 0);
            expectTable(td, ref::tilted(s, vi[k], false, true));
            expectTable(tq, ref::tilted(s, ~vi[k], true, true));
            ASSERT_EQ(rvpiTiltedSqrIntegral_8u32s64f_C1R(src.ptr(), src.step(), td.ptr(), td.step(), tqd.ptr(), tqd.step(), roi, vi[k], vd[k]), 0);
            expectTable(td, ref::tilted(s, vi[k], false, false));
            expectTable(tqd, ref::tilted(s, vd[k], true, false));
            for (bool noise : {false, true}) {
                auto tf = table<Rvp32f>(c, 2, noise), tf2 = table<Rvp32f>(c, 2, noise);
                const auto old = contents(tf);
                ASSERT_EQ(rvpiTiltedIntegral_8u32f_C1R(src.ptr(), src.step(), tf.ptr(), tf.step(), roi, vf[k]), 0);
                expectTable(tf, ref::tilted(s, vf[k], false, false, &old));
                ASSERT_EQ(rvpiTiltedSqrIntegral_8u32f64f_C1R(src.ptr(), src.step(), tf2.ptr(), tf2.step(), tqd.ptr(), tqd.step(), roi, vf[k], vd[k]), 0);
                expectTable(tf2, ref::tilted(s, vf[k], false, false, &old));
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Isa, IntegralAcross, testing::ValuesIn(isaLevels()),
                         [](const auto& info) { return std::string(rvcv::isaName(info.param)); });

TEST(Integral, TiltedByHand) {
    // W = 1: cur[0] = prev[1], cur[1] = prev[0] + prev[2] - prev2[1] + s(0), cur[2] = prev[1].
    const Rvp8u col[2] = {3, 4};
    Rvp32s t[4][3];
    ASSERT_EQ(rvpiTiltedIntegral_8u32s_C1R(col, 1, &t[0][0], 12, {1, 2}, 10), 0);
    EXPECT_EQ((std::vector<Rvp32s>(&t[0][0], &t[0][0] + 12)), (std::vector<Rvp32s>{10, 10, 10, 10, 10, 10, 10, 13, 10, 13, 14, 13}));
    // The 32s/32s square form adds s(W) (7 here) in column W; its siblings do not.
    const Rvp8u img[2][4] = {{1, 2, 3, 7}, {4, 5, 6, 8}};
    Rvp32s a[4][5], b[4][5], qa[4][5];
    Rvp64f qb[4][5];
    ASSERT_EQ(rvpiTiltedSqrIntegral_8u32s_C1R(&img[0][0], 4, &a[0][0], 20, &qa[0][0], 20, {3, 2}, 0, 0), 0);
    ASSERT_EQ(rvpiTiltedSqrIntegral_8u32s64f_C1R(&img[0][0], 4, &b[0][0], 20, &qb[0][0], 40, {3, 2}, 0, 0.0), 0);
    EXPECT_TRUE(a[2][3] == b[2][3] + 7 && qa[2][3] == qb[2][3] + 49 && a[2][2] == b[2][2]);
    // A 1.0 left in column W of a float table is added to the first computed row.
    Rvp32f z[4][5] = {}, o[4][5] = {};
    for (auto& row : o) row[3] = 1.0f;
    ASSERT_EQ(rvpiTiltedIntegral_8u32f_C1R(&img[0][0], 4, &z[0][0], 20, {3, 2}, 1.5f), 0);
    ASSERT_EQ(rvpiTiltedIntegral_8u32f_C1R(&img[0][0], 4, &o[0][0], 20, {3, 2}, 1.5f), 0);
    EXPECT_TRUE(z[0][3] == 1.5f && o[2][3] == z[2][3] + 1.0f && o[2][2] == z[2][2]);
}

TEST(Integral, ValidationOrder) {
    Image<Rvp8u> src(8, 4);
    Image<Rvp32s> d(10, 6);
    Image<Rvp64f> q(10, 6);
    const auto before = d.raw(), beforeQ = q.raw();
    const Rvp8u* s = src.ptr();
    Rvp32s* pd = d.ptr();
    Rvp32f* pf = reinterpret_cast<Rvp32f*>(pd);
    Rvp64f* pq = q.ptr();
    const struct { const char* what; RvpStatus got, want; } rows[] = {
        {"null src", rvpiIntegral_8u32s_C1R(nullptr, 8, pd, 36, {8, 4}, 0), rvpStsNullPtrErr},
        {"null sqr before size", rvpiSqrIntegral_8u32s64f_C1R(s, 8, pd, 36, nullptr, 72, {0, 4}, 0, 0), rvpStsNullPtrErr},
        {"size before steps", rvpiIntegral_8u32s_C1R(s, 0, pd, 1, {0, 4}, 0), rvpStsSizeErr},
        {"src step", rvpiIntegral_8u32s_C1R(s, 7, pd, 36, {8, 4}, 0), rvpStsStepErr},
        {"upright W*4+4", rvpiIntegral_8u32s_C1R(s, 8, pd, 35, {8, 4}, 0), rvpStsStepErr},
        {"tilted W*4+8", rvpiTiltedIntegral_8u32s_C1R(s, 8, pd, 36, {8, 4}, 0), rvpStsStepErr},
        {"upright 64f W*8+8", rvpiSqrIntegral_8u32s64f_C1R(s, 8, pd, 36, pq, 64, {8, 4}, 0, 0), rvpStsStepErr},
        {"tilted 64f W*8+16", rvpiTiltedSqrIntegral_8u32f64f_C1R(s, 8, pf, 40, pq, 72, {8, 4}, 0, 0), rvpStsStepErr},
        {"step before evenness", rvpiIntegral_8u32s_C1R(s, 7, pd, 37, {8, 4}, 0), rvpStsStepErr},
        {"table step not x4", rvpiIntegral_8u32f_C1R(s, 8, pf, 38, {8, 4}, 0), rvpStsNotEvenStepErr},
        {"64f step not x8", rvpiSqrIntegral_8u32s64f_C1R(s, 8, pd, 36, pq, 76, {8, 4}, 0, 0), rvpStsNotEvenStepErr},
    };
    for (const auto& r : rows) EXPECT_EQ(r.got, r.want) << r.what;
    EXPECT_TRUE(d.raw() == before && q.raw() == beforeQ) << "a refused call wrote a table";
    // The source step has no evenness test.
    EXPECT_EQ(rvpiIntegral_8u32s_C1R(s, 9, pd, 36, {8, 3}, 0), rvpStsNoErr);
}

}  // namespace
