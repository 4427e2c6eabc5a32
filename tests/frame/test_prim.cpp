// Shared primitives: copies and fills on padded and packed regions, border
// copies (including in place), the scaled subtraction over every factor,
// thresholds, and the vector primitives, with their validation orders.
#include <algorithm>
#include <cmath>
#include <functional>

#include "reference/ref_prim.h"
#include "rvcvprim.h"
#include "support/rvtest.h"

using namespace rvtest;

namespace {

struct Case { int w, h, pad; };
const Case kCases[] = {{1, 1, 0}, {3, 5, 4}, {16, 2, 0}, {17, 9, 12}, {33, 4, 0}, {100, 7, 8}, {257, 300, 4}};

template <class T, int C>
void checkCopy(RvpStatus (*fn)(const T*, int, T*, int, RvpiSize)) {
    for (const Case& c : kCases) {
        for (int pad : {0, c.pad}) {  // pad 0 on both sides: one merged row
            Image<T> s(c.w, c.h, C, pad), d(c.w, c.h, C, pad);
            s.fill(Random<T>(c.w + c.h));
            ASSERT_EQ(fn(s.ptr(), s.step(), d.ptr(), d.step(), s.size()), rvpStsNoErr);
            EXPECT_EQ(d.bytes(), s.bytes()) << c.w << "x" << c.h << " C" << C;
            EXPECT_TRUE(d.guardsIntact());
        }
    }
    Image<T> s(4, 2, C), d(4, 2, C);
    EXPECT_EQ(fn(nullptr, s.step(), d.ptr(), d.step(), {4, 2}), rvpStsNullPtrErr);
    EXPECT_EQ(fn(s.ptr(), s.step(), d.ptr(), d.step(), {0, 2}), rvpStsSizeErr);
    EXPECT_EQ(fn(s.ptr(), s.step(), d.ptr(), d.step() - 1, {4, 2}), rvpStsStepErr);
}

TEST(Primitives, CopyEveryMember) {
    checkCopy<Rvp8u, 1>(rvpiCopy_8u_C1R);
    checkCopy<Rvp8u, 3>(rvpiCopy_8u_C3R);
    checkCopy<Rvp8u, 4>(rvpiCopy_8u_C4R);
    checkCopy<Rvp16s, 1>(rvpiCopy_16s_C1R);
    checkCopy<Rvp16u, 1>(rvpiCopy_16u_C1R);
    checkCopy<Rvp32f, 1>(rvpiCopy_32f_C1R);
    checkCopy<Rvp32f, 3>(rvpiCopy_32f_C3R);
    checkCopy<Rvp32f, 4>(rvpiCopy_32f_C4R);
    // Past 1048576 bytes the 8-bit copy stores around the cache: same bytes.
    for (int pad : {0, 5}) {
        Image<Rvp8u> s(1100, 1000, 1, pad), d(1100, 1000, 1, pad);
        s.fill(Random<Rvp8u>(9));
        ASSERT_EQ(rvpiCopy_8u_C1R(s.ptr(), s.step(), d.ptr(), d.step(), s.size()), rvpStsNoErr);
        EXPECT_EQ(d.bytes(), s.bytes());
        EXPECT_TRUE(d.guardsIntact());
    }
}

TEST(Primitives, Set) {
    for (Case c : {Case{1, 1, 0}, Case{19, 7, 5}, Case{64, 3, 0}, Case{1100, 1000, 0}, Case{1100, 1000, 3}}) {
        Image<Rvp8u> d(c.w, c.h, 1, c.pad);
        ASSERT_EQ(rvpiSet_8u_C1R(0x3C, d.ptr(), d.step(), d.size()), rvpStsNoErr);
        const auto b = d.bytes();
        EXPECT_TRUE(std::all_of(b.begin(), b.end(), [](uint8_t v) { return v == 0x3C; })) << c.w << "x" << c.h;
        EXPECT_TRUE(d.guardsIntact());
    }
    Image<Rvp8u> d(4, 2);
    EXPECT_EQ(rvpiSet_8u_C1R(1, nullptr, 4, {4, 2}), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiSet_8u_C1R(1, d.ptr(), 4, {4, 0}), rvpStsSizeErr);
    EXPECT_EQ(rvpiSet_8u_C1R(1, d.ptr(), 3, {4, 2}), rvpStsStepErr);
}

// ---- Border copies -------------------------------------------------------------

struct Border { int sw, sh, dw, dh, top, left; };
const Border kBorders[] = {{1, 1, 1, 1, 0, 0}, {1, 1, 5, 4, 2, 3}, {4, 3, 9, 8, 0, 5}, {4, 3, 9, 8, 5, 0},
                           {7, 5, 10, 9, 2, 1}, {33, 17, 40, 30, 6, 7}};

template <class T, int C>
void expectReplicated(const Image<T>& src, const Image<T>& dst, const Border& b) {
    for (int y = 0; y < b.dh; ++y)
        for (int x = 0; x < b.dw; ++x)
            for (int ch = 0; ch < C; ++ch)
                ASSERT_EQ(dst.at(x, y, ch), src.at(ref::replicated(x, b.left, b.sw), ref::replicated(y, b.top, b.sh), ch))
                    << "at " << x << "," << y << " border " << b.top << "/" << b.left;
}

template <class T, int C>
void checkReplicate(RvpStatus (*fn)(const T*, int, RvpiSize, T*, int, RvpiSize, int, int),
                    RvpStatus (*inPlace)(const T*, int, RvpiSize, RvpiSize, int, int)) {
    for (const Border& b : kBorders) {
        Image<T> s(b.sw, b.sh, C, 4), d(b.dw, b.dh, C, 8);
        s.fill(Random<T>(b.dw * 7 + b.dh));
        ASSERT_EQ(fn(s.ptr(), s.step(), {b.sw, b.sh}, d.ptr(), d.step(), {b.dw, b.dh}, b.top, b.left), rvpStsNoErr);
        EXPECT_TRUE(d.guardsIntact());
        expectReplicated<T, C>(s, d, b);
        // In place, through the in-place form and through equal pointers: the
        // source region already sits inside the destination.
        for (int viaEqual : {0, 1}) {
            Image<T> e(b.dw, b.dh, C, 8);
            e.fill(Random<T>(99));
            for (int y = 0; y < b.sh; ++y)
                for (int x = 0; x < b.sw * C; ++x) e.row(b.top + y)[b.left * C + x] = s.row(y)[x];
            T* inner = &e.at(b.left, b.top);
            const RvpStatus st = viaEqual ? fn(inner, e.step(), {b.sw, b.sh}, inner, e.step(), {b.dw, b.dh}, b.top, b.left)
                                          : inPlace(inner, e.step(), {b.sw, b.sh}, {b.dw, b.dh}, b.top, b.left);
            ASSERT_EQ(st, rvpStsNoErr);
            EXPECT_TRUE(e.guardsIntact());
            expectReplicated<T, C>(s, e, b);
        }
    }
}

TEST(Primitives, CopyReplicateBorder) {
    checkReplicate<Rvp8u, 1>(rvpiCopyReplicateBorder_8u_C1R, rvpiCopyReplicateBorder_8u_C1IR);
    checkReplicate<Rvp8u, 3>(rvpiCopyReplicateBorder_8u_C3R, rvpiCopyReplicateBorder_8u_C3IR);
    checkReplicate<Rvp8u, 4>(rvpiCopyReplicateBorder_8u_C4R, rvpiCopyReplicateBorder_8u_C4IR);
    checkReplicate<Rvp32s, 1>(rvpiCopyReplicateBorder_32s_C1R, rvpiCopyReplicateBorder_32s_C1IR);
    checkReplicate<Rvp32s, 3>(rvpiCopyReplicateBorder_32s_C3R, rvpiCopyReplicateBorder_32s_C3IR);
    checkReplicate<Rvp32s, 4>(rvpiCopyReplicateBorder_32s_C4R, rvpiCopyReplicateBorder_32s_C4IR);
}

template <class T>
void checkConstBorder(RvpStatus (*fn)(const T*, int, RvpiSize, T*, int, RvpiSize, int, int, T), T value) {
    for (const Border& b : kBorders) {
        Image<T> s(b.sw, b.sh, 1, 2), d(b.dw, b.dh, 1, 6);
        s.fill(Random<T>(b.sw + 5));
        ASSERT_EQ(fn(s.ptr(), s.step(), {b.sw, b.sh}, d.ptr(), d.step(), {b.dw, b.dh}, b.top, b.left, value), rvpStsNoErr);
        EXPECT_TRUE(d.guardsIntact());
        for (int y = 0; y < b.dh; ++y)
            for (int x = 0; x < b.dw; ++x) {
                const bool inside = x >= b.left && x < b.left + b.sw && y >= b.top && y < b.top + b.sh;
                ASSERT_EQ(d.at(x, y), inside ? s.at(x - b.left, y - b.top) : value) << x << "," << y;
            }
    }
}

TEST(Primitives, CopyConstBorder) {
    checkConstBorder<Rvp8u>(rvpiCopyConstBorder_8u_C1R, 200);
    checkConstBorder<Rvp16s>(rvpiCopyConstBorder_16s_C1R, -3);
    checkConstBorder<Rvp16u>(rvpiCopyConstBorder_16u_C1R, 60000);
}

// Steps come before sizes here, and only their sign is tested.
TEST(Primitives, BorderCopyValidation) {
    Image<Rvp8u> s(4, 4), d(8, 8);
    const auto before = d.raw();
    const Rvp8u* ps = s.ptr();
    Rvp8u* pd = d.ptr();
    struct Row { const char* what; std::function<RvpStatus()> call; RvpStatus want; };
    const Row rows[] = {
        {"null src", [&] { return rvpiCopyReplicateBorder_8u_C1R(nullptr, 4, {4, 4}, pd, 8, {8, 8}, 1, 1); }, rvpStsNullPtrErr},
        {"null in place", [&] { return rvpiCopyReplicateBorder_8u_C1IR(nullptr, 8, {4, 4}, {8, 8}, 1, 1); }, rvpStsNullPtrErr},
        {"step before size", [&] { return rvpiCopyReplicateBorder_8u_C1R(ps, 0, {0, 4}, pd, 8, {8, 8}, 1, 1); }, rvpStsStepErr},
        {"dst step", [&] { return rvpiCopyConstBorder_8u_C1R(ps, 4, {4, 4}, pd, -8, {8, 8}, 1, 1, 0); }, rvpStsStepErr},
        {"short step passes to sizes", [&] { return rvpiCopyConstBorder_8u_C1R(ps, 1, {4, 0}, pd, 1, {8, 8}, 1, 1, 0); }, rvpStsSizeErr},
        {"dst size", [&] { return rvpiCopyReplicateBorder_8u_C1R(ps, 4, {4, 4}, pd, 8, {8, -1}, 1, 1); }, rvpStsSizeErr},
        {"negative top", [&] { return rvpiCopyReplicateBorder_8u_C1R(ps, 4, {4, 4}, pd, 8, {8, 8}, -1, 1); }, rvpStsSizeErr},
        {"negative left", [&] { return rvpiCopyConstBorder_8u_C1R(ps, 4, {4, 4}, pd, 8, {8, 8}, 0, -1, 0); }, rvpStsSizeErr},
        {"too wide", [&] { return rvpiCopyReplicateBorder_8u_C1R(ps, 4, {4, 4}, pd, 8, {8, 8}, 0, 5); }, rvpStsSizeErr},
        {"too tall", [&] { return rvpiCopyConstBorder_8u_C1R(ps, 4, {4, 4}, pd, 8, {8, 8}, 5, 0, 0); }, rvpStsSizeErr},
    };
    for (const Row& r : rows) {
        EXPECT_EQ(r.call(), r.want) << r.what;
        EXPECT_EQ(d.raw(), before) << r.what;
    }
}

// ---- Subtraction -------------------------------------------------------------------

TEST(Primitives, SubScaledEveryFactor) {
    // Hand cases: 5 / 2 and 7 / 2 tie to even; negative differences clamp.
    auto one = [](Rvp8u a, Rvp8u b, int sf) {
        Rvp8u d = 0;
        EXPECT_EQ(rvpiSub_8u_C1RSfs(&a, 1, &b, 1, &d, 1, {1, 1}, sf), rvpStsNoErr);
        return static_cast<int>(d);
    };
    EXPECT_EQ(one(3, 8, 1), 2);
    EXPECT_EQ(one(3, 9, 1), 3);
    EXPECT_EQ(one(3, 10, 1), 4);
    EXPECT_EQ(one(9, 3, 1), 0);
    EXPECT_EQ(one(3, 4, -8), 255);
    EXPECT_EQ(one(0, 255, 9), 0);
    for (int threads : {1, 3}) {
        ScopedThreads scoped(threads);
        for (int sf = -10; sf <= 10; ++sf)
            for (int ch : {1, 3, 4}) {
                Image<Rvp8u> a(37, 9, ch, 3), b(37, 9, ch, 0), d(37, 9, ch, 5);
                a.fill(Random<Rvp8u>(sf + 50));
                b.fill(Random<Rvp8u>(sf + 80));
                auto fn = ch == 1 ? rvpiSub_8u_C1RSfs : ch == 3 ? rvpiSub_8u_C3RSfs : rvpiSub_8u_C4RSfs;
                ASSERT_EQ(fn(a.ptr(), a.step(), b.ptr(), b.step(), d.ptr(), d.step(), {37, 9}, sf), rvpStsNoErr);
                ASSERT_TRUE(d.guardsIntact());
                for (int y = 0; y < 9; ++y)
                    for (int x = 0; x < 37 * ch; ++x)
                        ASSERT_EQ(d.row(y)[x], ref::sub8uSfs(a.row(y)[x], b.row(y)[x], sf)) << "factor " << sf;
            }
        for (int h : {5, 300}) {  // 300 rows open a region
            for (int ch : {1, 3, 4}) {
                Image<Rvp32f> a(29, h, ch, 4), b(29, h, ch, 8), d(29, h, ch, 0);
                a.fill(Random<Rvp32f>(h));
                b.fill(Random<Rvp32f>(h + 1));
                auto fn = ch == 1 ? rvpiSub_32f_C1R : ch == 3 ? rvpiSub_32f_C3R : rvpiSub_32f_C4R;
                ASSERT_EQ(fn(a.ptr(), a.step(), b.ptr(), b.step(), d.ptr(), d.step(), {29, h}), rvpStsNoErr);
                ASSERT_TRUE(d.guardsIntact());
                for (int y = 0; y < h; ++y)
                    for (int x = 0; x < 29 * ch; ++x) ASSERT_EQ(d.row(y)[x], b.row(y)[x] - a.row(y)[x]);
            }
        }
    }
    Rvp8u v = 0;
    EXPECT_EQ(rvpiSub_8u_C1RSfs(&v, 1, nullptr, 1, &v, 1, {1, 1}, 0), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiSub_8u_C1RSfs(&v, 1, &v, 1, &v, 1, {1, 0}, 0), rvpStsSizeErr);
}

// ---- Thresholds ----------------------------------------------------------------------

TEST(Primitives, Thresholds) {
    const Rvp8u s8[6] = {0, 9, 10, 11, 200, 255};
    Rvp8u d8[6];
    ASSERT_EQ(rvpiThreshold_Val_8u_C1R(s8, 6, d8, 6, {6, 1}, 10, 77, rvpCmpLess), rvpStsNoErr);
    EXPECT_EQ(std::vector<Rvp8u>(d8, d8 + 6), (std::vector<Rvp8u>{77, 77, 10, 11, 200, 255}));
    ASSERT_EQ(rvpiThreshold_GTVal_8u_C1R(s8, 6, d8, 6, {6, 1}, 10, 1), rvpStsNoErr);
    EXPECT_EQ(std::vector<Rvp8u>(d8, d8 + 6), (std::vector<Rvp8u>{0, 9, 10, 1, 1, 1}));
    const float sf[5] = {-1.0f, 2.0f, 2.5f, 3.0f, NAN};
    float df[5];
    ASSERT_EQ(rvpiThreshold_LT_32f_C1R(sf, 20, df, 20, {5, 1}, 2.5f), rvpStsNoErr);
    EXPECT_EQ(std::vector<float>(df, df + 4), (std::vector<float>{2.5f, 2.5f, 2.5f, 3.0f}));
    ASSERT_EQ(rvpiThreshold_32f_C1R(sf, 20, df, 20, {5, 1}, 2.5f, rvpCmpGreater), rvpStsNoErr);
    EXPECT_EQ(std::vector<float>(df, df + 4), (std::vector<float>{-1.0f, 2.0f, 2.5f, 2.5f}));
    EXPECT_TRUE(std::isnan(df[4]));
    // 16 bits, large enough for stores around the cache, padded and packed.
    for (int pad : {0, 6}) {
        Image<Rvp16u> s(700, 400, 1, pad), d(700, 400, 1, pad);
        s.fill(Random<Rvp16u>(3));
        ASSERT_EQ(rvpiThreshold_GTVal_16u_C1R(s.ptr(), s.step(), d.ptr(), d.step(), s.size(), 30000, 5), rvpStsNoErr);
        ASSERT_EQ(rvpiThreshold_Val_16u_C1R(s.ptr(), s.step(), d.ptr(), d.step(), {3, 1}, 30000, 9, rvpCmpLess), rvpStsNoErr);
        EXPECT_TRUE(d.guardsIntact());
        for (int y = 0; y < 400; ++y)
            for (int x = 0; x < 700; ++x) {
                const Rvp16u v = s.at(x, y);
                const Rvp16u want = y == 0 && x < 3 ? (v < 30000 ? 9 : v) : (v > 30000 ? 5 : v);
                ASSERT_EQ(d.at(x, y), want) << x << "," << y;
            }
    }
    // The comparison code is tested before anything else; steps only for sign.
    EXPECT_EQ(rvpiThreshold_Val_8u_C1R(nullptr, 6, d8, 6, {6, 1}, 1, 1, 2), rvpStsUnsupportedModeErr);
    EXPECT_EQ(rvpiThreshold_Val_16u_C1R(nullptr, 6, nullptr, 6, {0, 1}, 1, 1, 4), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiThreshold_Val_8u_C1R(s8, 6, d8, 6, {0, 1}, 1, 1, 0), rvpStsSizeErr);
    EXPECT_EQ(rvpiThreshold_Val_8u_C1R(s8, 0, d8, 6, {6, 1}, 1, 1, 0), rvpStsStepErr);
    EXPECT_EQ(rvpiThreshold_32f_C1R(sf, 20, df, 20, {5, 1}, 1.0f, 1), rvpStsUnsupportedModeErr);
}

// ---- Vector primitives ------------------------------------------------------------------

TEST(Primitives, VectorCopySetZero) {
    std::vector<Rvp8u> a(37), b(37, 0);
    std::vector<Rvp16s> c(5, -7), e(5, 0);
    std::vector<Rvp32f> f(9, 1.5f), g(9, 0);
    for (int i = 0; i < 37; ++i) a[i] = static_cast<Rvp8u>(i * 7);
    EXPECT_EQ(rvpsCopy_8u(a.data(), b.data(), 37), rvpStsNoErr);
    EXPECT_EQ(a, b);
    EXPECT_EQ(rvpsCopy_16s(c.data(), e.data(), 5), rvpStsNoErr);
    EXPECT_EQ(c, e);
    EXPECT_EQ(rvpsCopy_32f(f.data(), g.data(), 9), rvpStsNoErr);
    EXPECT_EQ(f, g);
    std::vector<Rvp32s> i32(6, 1);
    EXPECT_EQ(rvpsSet_32s(-9, i32.data(), 5), rvpStsNoErr);
    EXPECT_EQ(i32, (std::vector<Rvp32s>{-9, -9, -9, -9, -9, 1}));
    EXPECT_EQ(rvpsZero_32s(i32.data(), 6), rvpStsNoErr);
    EXPECT_EQ(i32, std::vector<Rvp32s>(6, 0));
    EXPECT_EQ(rvpsSet_8u(3, b.data(), 2), rvpStsNoErr);
    EXPECT_EQ(b[1], 3);
    EXPECT_EQ(rvpsSet_32f(-0.5f, g.data(), 9), rvpStsNoErr);
    EXPECT_EQ(rvpsZero_8u(b.data(), 37), rvpStsNoErr);
    EXPECT_EQ(rvpsZero_16s(e.data(), 5), rvpStsNoErr);
    EXPECT_EQ(rvpsZero_32f(g.data(), 9), rvpStsNoErr);
    EXPECT_EQ(b, std::vector<Rvp8u>(37, 0));
    EXPECT_EQ(g, std::vector<Rvp32f>(9, 0.0f));
    EXPECT_EQ(rvpsZero_32f(nullptr, 9), rvpStsNullPtrErr);
    EXPECT_EQ(rvpsCopy_8u(a.data(), nullptr, 0), rvpStsNullPtrErr);
    EXPECT_EQ(rvpsSet_32s(1, i32.data(), 0), rvpStsSizeErr);
}

TEST(Primitives, MinMaxEvery) {
    const float a[4] = {1.0f, NAN, 3.0f, -2.0f}, b[4] = {2.0f, 0.0f, NAN, -5.0f};
    float mn[4], mx[4];
    ASSERT_EQ(rvpsMinEvery_32f(a, b, mn, 4), rvpStsNoErr);
    ASSERT_EQ(rvpsMaxEvery_32f(a, b, mx, 4), rvpStsNoErr);
    // A NaN in the first operand stays, a NaN in the second loses.
    EXPECT_EQ(mn[0], 1.0f);
    EXPECT_TRUE(std::isnan(mn[1]));
    EXPECT_EQ(mn[2], 3.0f);
    EXPECT_EQ(mn[3], -5.0f);
    EXPECT_EQ(mx[0], 2.0f);
    EXPECT_TRUE(std::isnan(mx[1]));
    EXPECT_EQ(mx[2], 3.0f);
    EXPECT_EQ(mx[3], -2.0f);
    float acc[4] = {1.0f, NAN, 3.0f, -2.0f};
    ASSERT_EQ(rvpsMinEvery_32f_I(b, acc, 4), rvpStsNoErr);
    EXPECT_TRUE(std::isnan(acc[1]));
    EXPECT_EQ(acc[2], 3.0f);
    EXPECT_EQ(acc[3], -5.0f);

    Random<Rvp16u> r16(4);
    std::vector<Rvp16u> x(33), y(33), z(33);
    for (int i = 0; i < 33; ++i) x[i] = r16(), y[i] = r16();
    ASSERT_EQ(rvpsMaxEvery_16u(x.data(), y.data(), z.data(), 33), rvpStsNoErr);
    for (int i = 0; i < 33; ++i) EXPECT_EQ(z[i], std::max(x[i], y[i]));
    const std::vector<Rvp16u> y0 = y;
    ASSERT_EQ(rvpsMinEvery_16u_I(x.data(), y.data(), 33), rvpStsNoErr);
    for (int i = 0; i < 33; ++i) EXPECT_EQ(y[i], std::min(x[i], y0[i]));
    const Rvp8u p[3] = {1, 200, 7}, q[3] = {5, 100, 7};
    Rvp8u o[3];
    ASSERT_EQ(rvpsMinEvery_8u(p, q, o, 3), rvpStsNoErr);
    EXPECT_EQ(std::vector<Rvp8u>(o, o + 3), (std::vector<Rvp8u>{1, 100, 7}));
    ASSERT_EQ(rvpsMaxEvery_8u(p, q, o, 3), rvpStsNoErr);
    EXPECT_EQ(std::vector<Rvp8u>(o, o + 3), (std::vector<Rvp8u>{5, 200, 7}));
    Rvp8u io[3] = {9, 9, 9};
    ASSERT_EQ(rvpsMaxEvery_8u_I(p, io, 3), rvpStsNoErr);
    EXPECT_EQ(std::vector<Rvp8u>(io, io + 3), (std::vector<Rvp8u>{9, 200, 9}));
    const double d1[2] = {1.0, -1.0}, d2[2] = {0.5, 4.0};
    double dm[2], dI[2] = {0.75, 0.75};
    ASSERT_EQ(rvpsMinEvery_64f(d1, d2, dm, 2), rvpStsNoErr);
    EXPECT_EQ(dm[0], 0.5);
    EXPECT_EQ(dm[1], -1.0);
    ASSERT_EQ(rvpsMaxEvery_64f(d1, d2, dm, 2), rvpStsNoErr);
    EXPECT_EQ(dm[1], 4.0);
    ASSERT_EQ(rvpsMaxEvery_64f_I(d1, dI, 2), rvpStsNoErr);
    EXPECT_EQ(dI[0], 1.0);
    ASSERT_EQ(rvpsMinEvery_64f_I(d2, dI, 2), rvpStsNoErr);
    EXPECT_EQ(dI[0], 0.5);
    EXPECT_EQ(dI[1], 0.75);
    float fI[1] = {2.0f};
    ASSERT_EQ(rvpsMaxEvery_32f_I(a, fI, 1), rvpStsNoErr);
    EXPECT_EQ(fI[0], 2.0f);
    EXPECT_EQ(rvpsMinEvery_8u(p, nullptr, o, 3), rvpStsNullPtrErr);
    EXPECT_EQ(rvpsMaxEvery_64f_I(d1, dI, -1), rvpStsSizeErr);
}

TEST(Primitives, ConvertMulSqrt) {
    const Rvp16u u[3] = {0, 1, 65535};
    float f[3];
    ASSERT_EQ(rvpsConvert_16u32f(u, f, 3), rvpStsNoErr);
    EXPECT_EQ(f[2], 65535.0f);

    const float s[3] = {2.0f, NAN, -INFINITY};
    float m[3];
    ASSERT_EQ(rvpsMulC_32f(s, 0.0f, m, 3), rvpStsNoErr);  // zeroes, NaN and infinity too
    EXPECT_EQ(std::vector<float>(m, m + 3), std::vector<float>(3, 0.0f));
    ASSERT_EQ(rvpsMulC_32f(s, 1.0f, m, 3), rvpStsNoErr);
    EXPECT_TRUE(std::isnan(m[1]));
    ASSERT_EQ(rvpsMulC_32f(s, -1.5f, m, 3), rvpStsNoErr);
    EXPECT_EQ(m[0], -3.0f);
    EXPECT_EQ(m[2], INFINITY);

    const Rvp16s v[8] = {-32768, -32767, -3, -1, 0, 1, 3, 32767};
    for (Rvp16s c : {Rvp16s(0), Rvp16s(1), Rvp16s(-1), Rvp16s(3), Rvp16s(-32768), Rvp16s(32767)})
        for (int sf = -20; sf <= 35; ++sf) {
            Rvp16s o[8];
            ASSERT_EQ(rvpsMulC_16s_Sfs(v, c, o, 8, sf), rvpStsNoErr);
            for (int i = 0; i < 8; ++i) ASSERT_EQ(o[i], ref::mulC16sSfs(v[i], c, sf)) << v[i] << "*" << c << " factor " << sf;
        }

    const float q[4] = {4.0f, -0.0f, 2.0f, 9.0f};
    float r[4];
    EXPECT_EQ(rvpsSqrt_32f(q, r, 4), rvpStsNoErr);
    EXPECT_EQ(r[0], 2.0f);
    EXPECT_EQ(r[2], std::sqrt(2.0f));
    const float n[3] = {4.0f, -1.0f, 16.0f};
    EXPECT_EQ(rvpsSqrt_32f(n, r, 3), rvpStsSqrtNegArg);
    EXPECT_EQ(r[0], 2.0f);
    EXPECT_TRUE(std::isnan(r[1]));
    EXPECT_EQ(r[2], 4.0f);
    EXPECT_EQ(rvpsSqrt_32f(n, nullptr, 3), rvpStsNullPtrErr);
}

TEST(Primitives, SortAscend) {
    std::mt19937 rng(7);
    for (int len : {2, 3, 9, 10, 11, 100, 1000, 5000}) {
        std::vector<double> v(len);
        for (double& x : v) x = static_cast<double>(rng() % 50) - 25;  // many duplicates
        std::vector<double> want = v;
        std::sort(want.begin(), want.end());
        ASSERT_EQ(rvpsSortAscend_64f_I(v.data(), len), rvpStsNoErr);
        EXPECT_EQ(v, want) << len;
    }
    std::vector<double> sorted(300), reversed(300);
    for (int i = 0; i < 300; ++i) sorted[i] = i, reversed[i] = 299 - i;
    ASSERT_EQ(rvpsSortAscend_64f_I(reversed.data(), 300), rvpStsNoErr);
    EXPECT_EQ(reversed, sorted);
    double nans[6] = {3.0, NAN, -1.0, NAN, 2.0, -INFINITY};
    ASSERT_EQ(rvpsSortAscend_64f_I(nans, 6), rvpStsNoErr);
    EXPECT_EQ(nans[0], -INFINITY);
    EXPECT_EQ(nans[1], -1.0);
    EXPECT_EQ(nans[3], 3.0);
    EXPECT_TRUE(std::isnan(nans[4]) && std::isnan(nans[5]));
    double one = NAN;
    EXPECT_EQ(rvpsSortAscend_64f_I(&one, 1), rvpStsNoErr);
    EXPECT_EQ(rvpsSortAscend_64f_I(&one, 0), rvpStsSizeErr);
    EXPECT_EQ(rvpsSortAscend_64f_I(nullptr, 0), rvpStsNullPtrErr);
}

}  // namespace
