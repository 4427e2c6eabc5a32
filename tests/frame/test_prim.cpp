// Shared primitives: copies and fills on padded and packed regions, border
// copies (including in place), the scaled subtraction over every factor,
// thresholds, and the vector primitives with their special values.
#include <algorithm>
#include <cmath>
#include <functional>

#include "reference/ref_prim.h"
#include "rvcvprim.h"
#include "support/rvtest.h"

using namespace rvtest;

namespace {

template <class T, int C>
void checkCopy(RvpStatus (*fn)(const T*, int, T*, int, RvpiSize), int w, int h) {
    for (int pad : {0, 5 * static_cast<int>(sizeof(T))}) {  // pad 0: the rows merge into one
        Image<T> s(w, h, C, pad), d(w, h, C, pad);
        s.fill(Random<T>(w + h));
        ASSERT_EQ(fn(s.ptr(), s.step(), d.ptr(), d.step(), s.size()), rvpStsNoErr);
        EXPECT_EQ(d.bytes(), s.bytes()) << w << "x" << h << " C" << C;
        EXPECT_TRUE(d.guardsIntact());
    }
    EXPECT_EQ(fn(nullptr, 64, nullptr, 64, {1, 1}), rvpStsNullPtrErr);
}

TEST(Primitives, CopyAndSet) {
    checkCopy<Rvp8u, 1>(rvpiCopy_8u_C1R, 1100, 1000);  // past 1048576 bytes: stores around the cache
    checkCopy<Rvp8u, 3>(rvpiCopy_8u_C3R, 17, 9);
    checkCopy<Rvp8u, 4>(rvpiCopy_8u_C4R, 3, 5);
    checkCopy<Rvp16s, 1>(rvpiCopy_16s_C1R, 33, 4);
    checkCopy<Rvp16u, 1>(rvpiCopy_16u_C1R, 1, 1);
    checkCopy<Rvp32f, 1>(rvpiCopy_32f_C1R, 100, 7);
    checkCopy<Rvp32f, 3>(rvpiCopy_32f_C3R, 16, 2);
    checkCopy<Rvp32f, 4>(rvpiCopy_32f_C4R, 5, 3);
    for (int pad : {0, 3}) {
        Image<Rvp8u> d(1100, 1000, 1, pad);
        ASSERT_EQ(rvpiSet_8u_C1R(0x3C, d.ptr(), d.step(), d.size()), rvpStsNoErr);
        const auto b = d.bytes();
        EXPECT_TRUE(std::all_of(b.begin(), b.end(), [](uint8_t v) { return v == 0x3C; }));
        EXPECT_TRUE(d.guardsIntact());
    }
    Rvp8u one[4];
    EXPECT_EQ(rvpiSet_8u_C1R(1, one, 3, {4, 1}), rvpStsStepErr);
}

struct Border { int sw, sh, dw, dh, top, left; };
const Border kBorders[] = {{1, 1, 1, 1, 0, 0}, {1, 1, 5, 4, 2, 3}, {4, 3, 9, 8, 0, 5}, {4, 3, 9, 8, 5, 0},
                           {33, 17, 40, 30, 6, 7}};

template <class T, int C>
void expectReplicated(const Image<T>& src, const Image<T>& dst, const Border& b) {
    for (int y = 0; y < b.dh; ++y)
        for (int x = 0; x < b.dw * C; ++x)
            ASSERT_EQ(dst.at(x / C, y, x % C), src.at(ref::replicated(x / C, b.left, b.sw), ref::replicated(y, b.top, b.sh), x % C))
                << "at " << x / C << "," << y << " border " << b.top << "/" << b.left;
}

// Copied into a new image, through the in-place form, and through equal
// pointers (the source region already sits inside the destination).
template <class T, int C>
void checkReplicate(RvpStatus (*fn)(const T*, int, RvpiSize, T*, int, RvpiSize, int, int),
                    RvpStatus (*inPlace)(const T*, int, RvpiSize, RvpiSize, int, int)) {
    for (const Border& b : kBorders)
        for (int mode : {0, 1, 2}) {
            Image<T> s(b.sw, b.sh, C, 4), e(b.dw, b.dh, C, 8);
            s.fill(Random<T>(b.dw * 7 + b.dh));
            e.fill(Random<T>(99));
            if (mode) for (int y = 0; y < b.sh; ++y) std::memcpy(&e.at(b.left, b.top + y), s.row(y), sizeof(T) * C * b.sw);
            T* inner = &e.at(b.left, b.top);
            ASSERT_EQ(mode == 0   ? fn(s.ptr(), s.step(), {b.sw, b.sh}, e.ptr(), e.step(), {b.dw, b.dh}, b.top, b.left)
                      : mode == 1 ? inPlace(inner, e.step(), {b.sw, b.sh}, {b.dw, b.dh}, b.top, b.left)
                                  : fn(inner, e.step(), {b.sw, b.sh}, inner, e.step(), {b.dw, b.dh}, b.top, b.left),
                      rvpStsNoErr);
            EXPECT_TRUE(e.guardsIntact());
            expectReplicated<T, C>(s, e, b);
        }
}

TEST(Primitives, BorderCopies) {
    checkReplicate<Rvp8u, 1>(rvpiCopyReplicateBorder_8u_C1R, rvpiCopyReplicateBorder_8u_C1IR);
    checkReplicate<Rvp8u, 3>(rvpiCopyReplicateBorder_8u_C3R, rvpiCopyReplicateBorder_8u_C3IR);
    checkReplicate<Rvp8u, 4>(rvpiCopyReplicateBorder_8u_C4R, rvpiCopyReplicateBorder_8u_C4IR);
    checkReplicate<Rvp32s, 1>(rvpiCopyReplicateBorder_32s_C1R, rvpiCopyReplicateBorder_32s_C1IR);
    checkReplicate<Rvp32s, 3>(rvpiCopyReplicateBorder_32s_C3R, rvpiCopyReplicateBorder_32s_C3IR);
    checkReplicate<Rvp32s, 4>(rvpiCopyReplicateBorder_32s_C4R, rvpiCopyReplicateBorder_32s_C4IR);
    // Constant border: top rows, then left part, source, right part, then bottom rows.
    const Border b{3, 2, 6, 5, 1, 2};
    Image<Rvp16s> s(3, 2), d(6, 5, 1, 4);
    s.fill([v = 0]() mutable { return static_cast<Rvp16s>(++v); });
    ASSERT_EQ(rvpiCopyConstBorder_16s_C1R(s.ptr(), s.step(), {3, 2}, d.ptr(), d.step(), {6, 5}, b.top, b.left, -9), rvpStsNoErr);
    const std::vector<Rvp16s> want = {-9, -9, -9, -9, -9, -9, -9, -9, 1, 2, 3, -9, -9, -9, 4, 5, 6, -9,
                                      -9, -9, -9, -9, -9, -9, -9, -9, -9, -9, -9, -9};
    for (int i = 0; i < 30; ++i) EXPECT_EQ(d.at(i % 6, i / 6), want[i]) << i;
    EXPECT_TRUE(d.guardsIntact());
}

// Steps come before sizes here, and only their sign is tested.
TEST(Primitives, BorderCopyValidation) {
    Image<Rvp8u> s(4, 4), d(8, 8);
    const auto before = d.raw();
    const Rvp8u* ps = s.ptr();
    Rvp8u* pd = d.ptr();
    struct Row { std::function<RvpStatus()> call; RvpStatus want; };
    const Row rows[] = {
        {[&] { return rvpiCopyReplicateBorder_8u_C1IR(nullptr, 8, {4, 4}, {8, 8}, 1, 1); }, rvpStsNullPtrErr},
        {[&] { return rvpiCopyReplicateBorder_8u_C1R(ps, 0, {0, 4}, pd, 8, {8, 8}, 1, 1); }, rvpStsStepErr},
        {[&] { return rvpiCopyConstBorder_8u_C1R(ps, 1, {4, 0}, pd, 1, {8, 8}, 1, 1, 0); }, rvpStsSizeErr},
        {[&] { return rvpiCopyReplicateBorder_8u_C1R(ps, 4, {4, 4}, pd, 8, {8, 8}, -1, 1); }, rvpStsSizeErr},
        {[&] { return rvpiCopyReplicateBorder_8u_C1R(ps, 4, {4, 4}, pd, 8, {8, 8}, 0, 5); }, rvpStsSizeErr},
        {[&] { return rvpiCopyConstBorder_8u_C1R(ps, 4, {4, 4}, pd, 8, {8, 8}, 5, 0, 0); }, rvpStsSizeErr},
    };
    for (const Row& r : rows) {
        EXPECT_EQ(r.call(), r.want);
        EXPECT_EQ(d.raw(), before);
    }
}

TEST(Primitives, SubScaled) {
    for (int threads : {1, 3}) {
        ScopedThreads scoped(threads);
        for (int sf = -10; sf <= 10; ++sf) {
            Image<Rvp8u> a(37, 9, 3, 3), b(37, 9, 3, 0), d(37, 9, 3, 5);
            a.fill(Random<Rvp8u>(sf + 50));
            b.fill(Random<Rvp8u>(sf + 80));
            ASSERT_EQ(rvpiSub_8u_C3RSfs(a.ptr(), a.step(), b.ptr(), b.step(), d.ptr(), d.step(), {37, 9}, sf), rvpStsNoErr);
            ASSERT_TRUE(d.guardsIntact());
            for (int y = 0; y < 9; ++y)
                for (int x = 0; x < 37 * 3; ++x)
                    ASSERT_EQ(d.row(y)[x], ref::sub8uSfs(a.row(y)[x], b.row(y)[x], sf)) << "factor " << sf;
        }
        Image<Rvp32f> a(29, 300, 4, 4), b(29, 300, 4, 8), d(29, 300, 4, 0);  // 300 rows open a region
        a.fill(Random<Rvp32f>(1));
        b.fill(Random<Rvp32f>(2));
        ASSERT_EQ(rvpiSub_32f_C4R(a.ptr(), a.step(), b.ptr(), b.step(), d.ptr(), d.step(), {29, 300}), rvpStsNoErr);
        for (int y = 0; y < 300; ++y)
            for (int x = 0; x < 29 * 4; ++x) ASSERT_EQ(d.row(y)[x], b.row(y)[x] - a.row(y)[x]);
    }
}

TEST(Primitives, Thresholds) {
    const Rvp8u s8[6] = {0, 9, 10, 11, 200, 255};
    Rvp8u d8[6];
    ASSERT_EQ(rvpiThreshold_Val_8u_C1R(s8, 6, d8, 6, {6, 1}, 10, 77, rvpCmpLess), rvpStsNoErr);
    EXPECT_EQ(std::vector<Rvp8u>(d8, d8 + 6), (std::vector<Rvp8u>{77, 77, 10, 11, 200, 255}));
    ASSERT_EQ(rvpiThreshold_GTVal_8u_C1R(s8, 6, d8, 6, {6, 1}, 10, 1), rvpStsNoErr);
    EXPECT_EQ(std::vector<Rvp8u>(d8, d8 + 6), (std::vector<Rvp8u>{0, 9, 10, 1, 1, 1}));
    const float sf[4] = {-1.0f, 2.5f, 3.0f, NAN};
    float df[4];
    ASSERT_EQ(rvpiThreshold_LT_32f_C1R(sf, 16, df, 16, {4, 1}, 2.5f), rvpStsNoErr);
    EXPECT_EQ(std::vector<float>(df, df + 3), (std::vector<float>{2.5f, 2.5f, 3.0f}));
    ASSERT_EQ(rvpiThreshold_32f_C1R(sf, 16, df, 16, {4, 1}, 2.5f, rvpCmpGreater), rvpStsNoErr);
    EXPECT_EQ(std::vector<float>(df, df + 3), (std::vector<float>{-1.0f, 2.5f, 2.5f}));
    EXPECT_TRUE(std::isnan(df[3]));
    // Large enough for stores around the cache; odd pad leaves rows unaligned.
    for (int pad : {0, 6}) {
        Image<Rvp16u> s(700, 400, 1, pad), d(700, 400, 1, pad);
        s.fill(Random<Rvp16u>(3));
        ASSERT_EQ(rvpiThreshold_GTVal_16u_C1R(s.ptr(), s.step(), d.ptr(), d.step(), s.size(), 30000, 5), rvpStsNoErr);
        EXPECT_TRUE(d.guardsIntact());
        for (int y = 0; y < 400; ++y)
            for (int x = 0; x < 700; ++x) ASSERT_EQ(d.at(x, y), s.at(x, y) > 30000 ? 5 : s.at(x, y));
    }
    // The comparison code is tested before anything else; steps only for sign.
    EXPECT_EQ(rvpiThreshold_Val_8u_C1R(nullptr, 6, d8, 6, {6, 1}, 1, 1, 2), rvpStsUnsupportedModeErr);
    EXPECT_EQ(rvpiThreshold_Val_16u_C1R(nullptr, 6, nullptr, 6, {0, 1}, 1, 1, 4), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiThreshold_Val_8u_C1R(s8, 6, d8, 6, {0, 1}, 1, 1, 0), rvpStsSizeErr);
    EXPECT_EQ(rvpiThreshold_Val_8u_C1R(s8, 0, d8, 6, {6, 1}, 1, 1, 0), rvpStsStepErr);
    EXPECT_EQ(rvpiThreshold_Val_8u_C1R(s8, 1, d8, 1, {6, 1}, 1, 1, 0), rvpStsNoErr);
}

TEST(Primitives, VectorSpecialValues) {
    // Minimum and maximum: a NaN in the first operand stays, in the second it loses.
    const float a[3] = {1.0f, NAN, 3.0f}, b[3] = {2.0f, 0.0f, NAN};
    float mn[3], mx[3] = {0.5f, NAN, 4.0f};
    ASSERT_EQ(rvpsMinEvery_32f(a, b, mn, 3), rvpStsNoErr);
    EXPECT_TRUE(mn[0] == 1.0f && std::isnan(mn[1]) && mn[2] == 3.0f);
    ASSERT_EQ(rvpsMaxEvery_32f_I(b, mx, 3), rvpStsNoErr);
    EXPECT_TRUE(mx[0] == 2.0f && std::isnan(mx[1]) && mx[2] == 4.0f);
    const Rvp16u p[3] = {1, 60000, 7}, q[3] = {5, 100, 7};
    Rvp16u o[3];
    ASSERT_EQ(rvpsMaxEvery_16u(p, q, o, 3), rvpStsNoErr);
    EXPECT_EQ(std::vector<Rvp16u>(o, o + 3), (std::vector<Rvp16u>{5, 60000, 7}));
    EXPECT_EQ(rvpsMinEvery_8u(nullptr, nullptr, nullptr, 0), rvpStsNullPtrErr);

    // Multiplying by 0 zeroes even NaN and infinity; by 1 copies.
    const float s[2] = {NAN, -INFINITY};
    float m[2];
    ASSERT_EQ(rvpsMulC_32f(s, 0.0f, m, 2), rvpStsNoErr);
    EXPECT_TRUE(m[0] == 0.0f && m[1] == 0.0f);
    const Rvp16s v[8] = {-32768, -32767, -3, -1, 0, 1, 3, 32767};
    for (Rvp16s c : {Rvp16s(0), Rvp16s(1), Rvp16s(-1), Rvp16s(3), Rvp16s(-32768), Rvp16s(32767)})
        for (int sf = -20; sf <= 35; ++sf) {
            Rvp16s out[8];
            ASSERT_EQ(rvpsMulC_16s_Sfs(v, c, out, 8, sf), rvpStsNoErr);
            for (int i = 0; i < 8; ++i) ASSERT_EQ(out[i], ref::mulC16sSfs(v[i], c, sf)) << v[i] << "*" << c << " factor " << sf;
        }

    const Rvp16u u[2] = {65535, 1};
    float fu[2];
    ASSERT_EQ(rvpsConvert_16u32f(u, fu, 2), rvpStsNoErr);
    EXPECT_TRUE(fu[0] == 65535.0f && fu[1] == 1.0f);
    EXPECT_EQ(rvpsSet_32s(1, reinterpret_cast<Rvp32s*>(fu), 0), rvpStsSizeErr);

    // A negative element gives NaN there and a warning; the rest stand.
    const float n[3] = {4.0f, -1.0f, -0.0f};
    float r[3];
    EXPECT_EQ(rvpsSqrt_32f(n, r, 3), rvpStsSqrtNegArg);
    EXPECT_TRUE(r[0] == 2.0f && std::isnan(r[1]) && r[2] == 0.0f);
    EXPECT_EQ(rvpsSqrt_32f(n, r, 1), rvpStsNoErr);
}

TEST(Primitives, SortAscend) {
    std::mt19937 rng(7);
    for (int len : {2, 9, 10, 100, 5000}) {
        std::vector<double> v(len);
        for (double& x : v) x = static_cast<double>(rng() % 50) - 25;  // many duplicates
        std::vector<double> want = v;
        std::sort(want.begin(), want.end());
        ASSERT_EQ(rvpsSortAscend_64f_I(v.data(), len), rvpStsNoErr);
        EXPECT_EQ(v, want) << len;
    }
    double nans[6] = {3.0, NAN, -1.0, NAN, 2.0, -INFINITY};
    ASSERT_EQ(rvpsSortAscend_64f_I(nans, 6), rvpStsNoErr);
    EXPECT_TRUE(nans[0] == -INFINITY && nans[1] == -1.0 && nans[3] == 3.0 && std::isnan(nans[4]) && std::isnan(nans[5]));
    double one = 5;
    EXPECT_EQ(rvpsSortAscend_64f_I(&one, 1), rvpStsNoErr);
    EXPECT_EQ(rvpsSortAscend_64f_I(&one, 0), rvpStsSizeErr);
}

}  // namespace
