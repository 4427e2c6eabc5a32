// Absolute difference against the reference model: all seven forms, sizes
// from 1x1 to past the parallel threshold, exact and padded steps, in-place
// use, every dispatch level and thread counts 1, 2, 3, 8.
#include <cmath>
#include <functional>

#include "reference/ref_absdiff.h"
#include "rvcvabsdiff.h"
#include "support/rvtest.h"

using namespace rvtest;

namespace {

struct Case { int w, h, pad; };
const Case kCases[] = {{1, 1, 0}, {1, 9, 4}, {7, 1, 0}, {15, 3, 8}, {16, 2, 0}, {17, 5, 12}, {31, 4, 4},
                       {32, 3, 0}, {33, 7, 20}, {63, 2, 0}, {65, 9, 36}, {100, 37, 0}, {127, 3, 0}, {129, 4, 4},
                       {511, 513, 8}, {512, 512, 0}};

template <class T> using Fn2 = RvpStatus (*)(const T*, int, const T*, int, T*, int, RvpiSize);

// The constant forms as two-source calls whose second source is ignored.
template <class T, class V>
auto constForm(RvpStatus (*fn)(const T*, int, T*, int, RvpiSize, V), V value) {
    return [fn, value](const T* s, int ss, const T*, int, T* d, int ds, RvpiSize r) { return fn(s, ss, d, ds, r, value); };
}

// The model reads the second source, or `clamped` everywhere for the constant
// forms; the two-source forms are also run in place over the first source.
template <class T, class Fn>
void check(Fn fn, int channels, uint32_t seed, const T* clamped = nullptr) {
    for (const Case& c : kCases) {
        SCOPED_TRACE(testing::Message() << c.w << "x" << c.h << " pad " << c.pad << " seed " << seed);
        Random<T> rnd(seed + c.w * 131 + c.h);
        Image<T> a(c.w, c.h, channels, c.pad), b(c.w, c.h, channels, c.pad + 4), d(c.w, c.h, channels, c.pad + 8);
        a.fill(rnd);
        b.fill([&] { return clamped ? *clamped : rnd(); });
        ASSERT_EQ(fn(a.ptr(), a.step(), b.ptr(), b.step(), d.ptr(), d.step(), RvpiSize{c.w, c.h}), rvpStsNoErr);
        ASSERT_TRUE(d.guardsIntact());
        for (int y = 0; y < c.h; ++y)
            for (int x = 0; x < c.w * channels; ++x) {
                T want = ref::absDiff(a.row(y)[x], b.row(y)[x]);
                ASSERT_TRUE(sameBits(&want, &d.row(y)[x], sizeof(T))) << "at " << x << "," << y;
            }
        if (clamped) continue;
        Image<T> in = a;
        ASSERT_EQ(fn(in.ptr(), in.step(), b.ptr(), b.step(), in.ptr(), in.step(), RvpiSize{c.w, c.h}), rvpStsNoErr);
        ASSERT_EQ(in.bytes(), d.bytes());
    }
}

class AbsDiffAcross : public AcrossPaths {};

TEST_P(AbsDiffAcross, MatchesReference) {
    check<Rvp8u>(rvpiAbsDiff_8u_C1R, 1, 1);
    check<Rvp8u>(rvpiAbsDiff_8u_C3R, 3, 2);
    check<Rvp16u>(rvpiAbsDiff_16u_C1R, 1, 3);
    check<Rvp32f>(rvpiAbsDiff_32f_C1R, 1, 4);
    // Out-of-range constants clamp: 300 acts as 255, -7 as 0 (a copy).
    const Rvp8u c8[] = {255, 0};
    const Rvp16u c16[] = {65535, 1234};
    const Rvp32f c32 = -2.5f;
    check(constForm(rvpiAbsDiffC_8u_C1R, 300), 1, 5, &c8[0]);
    check(constForm(rvpiAbsDiffC_8u_C1R, -7), 1, 6, &c8[1]);
    check(constForm(rvpiAbsDiffC_16u_C1R, 70000), 1, 8, &c16[0]);
    check(constForm(rvpiAbsDiffC_16u_C1R, 1234), 1, 9, &c16[1]);
    check(constForm(rvpiAbsDiffC_32f_C1R, c32), 1, 10, &c32);
}

INSTANTIATE_TEST_SUITE_P(Paths, AbsDiffAcross, testing::ValuesIn(pathConfigs()), pathName);

// The cache-bypassing kernels give the same bits as the plain ones, for
// aligned and unaligned rows (where they fall back to plain stores).
TEST(AbsDiffKernels, BypassingStoresGiveSameBits) {
    for (rvcv::Isa isa : isaLevels()) {
        ScopedIsa scoped(isa);
        const rvcv::AbsDiffKernels* k = &rvcv::pick(rvcv::m7::kAbsDiff, rvcv::avx2::kAbsDiff, rvcv::avx512::kAbsDiff);
        for (int pad : {0, 4}) {
            Image<Rvp32f> a(77, 5, 1, pad), b(77, 5, 1, pad), d1(77, 5, 1, pad), d2(77, 5, 1, pad);
            Random<Rvp32f> rnd(11);
            a.fill(rnd);
            b.fill(rnd);
            k->diff32f(a.ptr(), a.step(), b.ptr(), b.step(), d1.ptr(), d1.step(), 5, 77, false);
            k->diff32f(a.ptr(), a.step(), b.ptr(), b.step(), d2.ptr(), d2.step(), 5, 77, true);
            EXPECT_EQ(d1.bytes(), d2.bytes());
            Rvp16u v = 999;
            Image<Rvp16u> s(45, 3, 1, pad), e1(45, 3, 1, pad), e2(45, 3, 1, pad);
            s.fill(Random<Rvp16u>(12));
            k->diffC16u(s.ptr(), s.step(), e1.ptr(), e1.step(), 3, 45, &v, false);
            k->diffC16u(s.ptr(), s.step(), e2.ptr(), e2.step(), 3, 45, &v, true);
            EXPECT_EQ(e1.bytes(), e2.bytes());
            EXPECT_TRUE(e2.guardsIntact());
        }
    }
}

TEST(AbsDiff, FloatSpecialValues) {
    const float inf = INFINITY, nan = NAN;
    const float a[8] = {-0.0f, 0.0f, inf, -inf, nan, -nan, 1e-45f, 3.0f};
    const float b[8] = {0.0f, -0.0f, inf, 1.0f, 2.0f, 0.0f, -1e-45f, nan};
    for (rvcv::Isa isa : isaLevels()) {
        ScopedIsa scoped(isa);
        float d[8];
        ASSERT_EQ(rvpiAbsDiff_32f_C1R(a, 32, b, 32, d, 32, {8, 1}), rvpStsNoErr);
        EXPECT_EQ(std::signbit(d[0]), false);
        EXPECT_TRUE(std::isnan(d[2]) && !std::signbit(d[2]));  // inf - inf
        EXPECT_EQ(d[3], inf);
        EXPECT_TRUE(std::isnan(d[4]) && !std::signbit(d[4]));
        EXPECT_TRUE(std::isnan(d[5]) && !std::signbit(d[5]));
        EXPECT_EQ(d[6], 2.8e-45f);
        EXPECT_TRUE(std::isnan(d[7]) && !std::signbit(d[7]));
    }
}

// Each row: a bad argument set, the status it must give, and nothing written.
TEST(AbsDiff, ValidationOrder) {
    Image<Rvp16u> a(8, 4), b(8, 4), d(8, 4);
    a.fill(Random<Rvp16u>(1));
    b.fill(Random<Rvp16u>(2));
    const auto before = d.raw();
    const Rvp16u* pa = a.ptr();
    const Rvp16u* pb = b.ptr();
    Rvp16u* pd = d.ptr();
    struct Row { const char* what; std::function<RvpStatus()> call; RvpStatus want; };
    const Row rows[] = {
        {"null src1", [&] { return rvpiAbsDiff_16u_C1R(nullptr, 16, pb, 16, pd, 16, {8, 4}); }, rvpStsNullPtrErr},
        {"null src2", [&] { return rvpiAbsDiff_16u_C1R(pa, 16, nullptr, 16, pd, 16, {8, 4}); }, rvpStsNullPtrErr},
        {"null dst", [&] { return rvpiAbsDiff_16u_C1R(pa, 16, pb, 16, nullptr, 16, {8, 4}); }, rvpStsNullPtrErr},
        {"null before size", [&] { return rvpiAbsDiff_16u_C1R(nullptr, 16, pb, 16, pd, 16, {0, 4}); }, rvpStsNullPtrErr},
        {"zero width", [&] { return rvpiAbsDiff_16u_C1R(pa, 16, pb, 16, pd, 16, {0, 4}); }, rvpStsSizeErr},
        {"negative height", [&] { return rvpiAbsDiff_16u_C1R(pa, 16, pb, 16, pd, 16, {8, -1}); }, rvpStsSizeErr},
        {"size before step", [&] { return rvpiAbsDiff_16u_C1R(pa, 1, pb, 16, pd, 16, {8, 0}); }, rvpStsSizeErr},
        {"src1 step short", [&] { return rvpiAbsDiff_16u_C1R(pa, 15, pb, 16, pd, 16, {8, 4}); }, rvpStsStepErr},
        {"dst step negative", [&] { return rvpiAbsDiff_16u_C1R(pa, 16, pb, 16, pd, -16, {8, 4}); }, rvpStsStepErr},
        {"step before evenness", [&] { return rvpiAbsDiff_16u_C1R(pa, 17, pb, 15, pd, 16, {8, 4}); }, rvpStsStepErr},
        {"odd step", [&] { return rvpiAbsDiff_16u_C1R(pa, 17, pb, 16, pd, 16, {8, 4}); }, rvpStsNotEvenStepErr},
        {"odd dst step", [&] { return rvpiAbsDiff_16u_C1R(pa, 16, pb, 16, pd, 17, {8, 4}); }, rvpStsNotEvenStepErr},
        {"32f step not x4", [&] {
             return rvpiAbsDiffC_32f_C1R(reinterpret_cast<const Rvp32f*>(pa), 34, reinterpret_cast<Rvp32f*>(pd), 32,
                                         {8, 1}, 1.0f); }, rvpStsNotEvenStepErr},
        {"C3 counts tripled width", [&] {
             return rvpiAbsDiff_8u_C3R(reinterpret_cast<const Rvp8u*>(pa), 23, reinterpret_cast<const Rvp8u*>(pb), 24,
                                       reinterpret_cast<Rvp8u*>(pd), 24, {8, 2}); }, rvpStsStepErr},
        {"C null", [&] { return rvpiAbsDiffC_16u_C1R(pa, 16, nullptr, 16, {8, 4}, 3); }, rvpStsNullPtrErr},
        {"C step", [&] { return rvpiAbsDiffC_16u_C1R(pa, 16, pd, 15, {8, 4}, 3); }, rvpStsStepErr},
    };
    for (const Row& r : rows) {
        EXPECT_EQ(r.call(), r.want) << r.what;
        EXPECT_EQ(d.raw(), before) << r.what << " wrote to the destination";
    }
    // An 8-bit odd step that is long enough is fine; an exact step passes.
    Image<Rvp8u> s8(5, 2, 1, 2), d8(5, 2, 1, 2);
    EXPECT_EQ(rvpiAbsDiffC_8u_C1R(s8.ptr(), 7, d8.ptr(), 7, {5, 2}, 1), rvpStsNoErr);
    EXPECT_EQ(rvpiAbsDiffC_8u_C1R(s8.ptr(), 5, d8.ptr(), 5, {5, 2}, 1), rvpStsNoErr);
}

}  // namespace
