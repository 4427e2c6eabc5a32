// Sub-pixel copies, centred patches with their inside corners, and line
// sampling against the naive models; integer offsets copy exactly;
// validation.
#include <cmath>

#include "reference/ref_pyramid.h"
#include "support/rvtest.h"

using namespace rvtest;

namespace {

template <class T> std::vector<T> plain(const Image<T>& im) {
    std::vector<T> v;
    for (int y = 0; y < im.height(); ++y) v.insert(v.end(), im.row(y), im.row(y) + im.width());
    return v;
}

template <class T, class D, class Copy, class Intersect>
void matchesModel(uint32_t seed, Copy copy, Intersect intersect) {
  for (rvcv::Isa isa : isaLevels()) {
    ScopedIsa level(isa);
    std::mt19937 rng(seed);
    std::uniform_real_distribution<float> frac(0.0f, 1.0f);
    for (int t = 0; t < 60; ++t) {
        const int W = std::uniform_int_distribution<int>(1, 70)(rng), H = std::uniform_int_distribution<int>(1, 50)(rng);
        const int pw = std::uniform_int_distribution<int>(1, 40)(rng), ph = std::uniform_int_distribution<int>(1, 30)(rng);
        Image<T> src(W + 1, H + 1, 1, (t % 3) * 8);
        Random<T> gen(seed + t);
        if constexpr (std::is_floating_point<T>::value) src.fill(gen);
        else src.fill([&] { return static_cast<T>(gen()); });
        const std::vector<T> s = plain(src);
        const int sf = t % 4 == 0 ? 0 : -std::uniform_int_distribution<int>(0, 9)(rng);
        // The copy of a W x H region moved by a fraction (t % 6 == 0: by none).
        const float dx = t % 6 == 0 ? 0.0f : frac(rng), dy = t % 6 == 0 ? 0.0f : frac(rng);
        Image<D> dst(W, H, 1, 4);
        ASSERT_EQ(copy(src.ptr(), src.step(), dst.ptr(), dst.step(), RvpiSize{W, H}, dx, dy, sf), rvpStsNoErr);
        const int a = static_cast<int>(double(dx) * 16384.0 + 0.5), b = static_cast<int>(double(dy) * 16384.0 + 0.5);
        for (int y = 0; y < H; ++y)
            for (int x = 0; x < W; ++x) {
                const D want = ref::bilinearAt<T, D>(s.data(), W + 1, W + (a > 0), H + (b > 0), x, y, a, b, sf);
                ASSERT_TRUE(sameBits(&dst.at(x, y), &want, sizeof(D))) << t << " at " << x << "," << y;
                if (a == 0 && b == 0 && sf == 0) { ASSERT_EQ(dst.at(x, y), static_cast<D>(src.at(x, y))); }
            }
        // A centred patch anywhere near the image, sometimes far outside.
        const float cx = t % 10 == 9 ? 1e9f : std::uniform_real_distribution<float>(-pw - 3.0f, W + pw + 3.0f)(rng);
        const float cy = t % 10 == 8 ? NAN : std::uniform_real_distribution<float>(-ph - 3.0f, H + ph + 3.0f)(rng);
        Image<D> patch(pw, ph, 1, 8);
        RvpiPoint lo{-7, -7}, hi{-7, -7};
        ASSERT_EQ(intersect(src.ptr(), src.step(), RvpiSize{W, H}, patch.ptr(), patch.step(), RvpiSize{pw, ph},
                            RvpiPoint32f{cx, cy}, &lo, &hi, sf), rvpStsNoErr);
        const auto axisOf = [](float c, int n, int size, int& i0, int& fr, int& mn, int& mx) {
            const double f = double(c) - (n - 1) * 0.5;
            if (!(f < size)) return void((i0 = size, fr = 0, mn = 0, mx = -1));
            if (!(f > -n - 1.0)) return void((i0 = -n - 1, fr = 0, mn = n, mx = n - 1));
            i0 = static_cast<int>(static_cast<int64_t>(n + f) - n);
            fr = static_cast<int>((f - i0) * 16384.0 + 0.5);
            mn = i0 < 0 ? std::min(-i0, n) : 0;
            mx = int64_t{i0} + n - 1 > size - 2 ? size - (i0 + n - 1) - 3 + n : n - 1;
        };
        int ix, fx, mnx, mxx, iy, fy, mny, mxy;
        axisOf(cx, pw, W, ix, fx, mnx, mxx);
        axisOf(cy, ph, H, iy, fy, mny, mxy);
        EXPECT_TRUE(lo.x == mnx && lo.y == mny && hi.x == mxx && hi.y == mxy) << t;
        for (int y = 0; y < ph; ++y)
            for (int x = 0; x < pw; ++x) {
                const D want = ref::bilinearAt<T, D>(s.data(), W + 1, W, H, int64_t{ix} + x, int64_t{iy} + y, fx, fy, sf);
                ASSERT_TRUE(sameBits(&patch.at(x, y), &want, sizeof(D))) << t << " patch at " << x << "," << y;
            }
        ASSERT_TRUE(dst.guardsIntact() && patch.guardsIntact());
    }
  }
}

TEST(Subpix, MatchesModel8u16u) {
    matchesModel<Rvp8u, Rvp16u>(1, rvpiCopySubpix_8u16u_C1R_Sfs, rvpiCopySubpixIntersect_8u16u_C1R_Sfs);
}
TEST(Subpix, MatchesModel16u32f) {
    matchesModel<Rvp16u, Rvp32f>(
        2, [](auto... a) { return [](const Rvp16u* s, int ss, Rvp32f* d, int ds, RvpiSize r, float x, float y, int) {
               return rvpiCopySubpix_16u32f_C1R(s, ss, d, ds, r, x, y); }(a...); },
        [](auto... a) { return [](const Rvp16u* s, int ss, RvpiSize sr, Rvp32f* d, int ds, RvpiSize dr, RvpiPoint32f p,
                                  RvpiPoint* lo, RvpiPoint* hi, int) {
               return rvpiCopySubpixIntersect_16u32f_C1R(s, ss, sr, d, ds, dr, p, lo, hi); }(a...); });
}
TEST(Subpix, MatchesModel32f) {
    matchesModel<Rvp32f, Rvp32f>(
        3, [](auto... a) { return [](const Rvp32f* s, int ss, Rvp32f* d, int ds, RvpiSize r, float x, float y, int) {
               return rvpiCopySubpix_32f_C1R(s, ss, d, ds, r, x, y); }(a...); },
        [](auto... a) { return [](const Rvp32f* s, int ss, RvpiSize sr, Rvp32f* d, int ds, RvpiSize dr, RvpiPoint32f p,
                                  RvpiPoint* lo, RvpiPoint* hi, int) {
               return rvpiCopySubpixIntersect_32f_C1R(s, ss, sr, d, ds, dr, p, lo, hi); }(a...); });
}

TEST(SampleLine, BresenhamSamplesAndStatuses) {
    Image<Rvp32f> im(23, 17);
    for (int y = 0; y < 17; ++y)
        for (int x = 0; x < 23; ++x) im.at(x, y) = static_cast<float>(100 * y + x);
    std::mt19937 rng(9);
    for (int t = 0; t < 200; ++t) {
        const RvpiPoint a{std::uniform_int_distribution<int>(0, 22)(rng), std::uniform_int_distribution<int>(0, 16)(rng)};
        const RvpiPoint b{std::uniform_int_distribution<int>(0, 22)(rng), std::uniform_int_distribution<int>(0, 16)(rng)};
        std::vector<Rvp32f> line(30, -1.0f);
        ASSERT_EQ(rvpiSampleLine_32f_C1R(im.ptr(), im.step(), im.size(), line.data(), a, b), rvpStsNoErr);
        const int m = std::max(std::abs(b.x - a.x), std::abs(b.y - a.y));
        for (int i = 0; i <= m; ++i) {
            // The point nearest the exact line, halves away from the start.
            const auto along = [&](int p, int q) {
                const int d = std::abs(q - p);
                return p + (q < p ? -1 : 1) * (m ? (2 * i * d + m) / (2 * m) : 0);
            };
            ASSERT_EQ(line[i], static_cast<float>(100 * along(a.y, b.y) + along(a.x, b.x))) << t << " " << i;
        }
        EXPECT_EQ(line[m + 1], -1.0f);
        if (t == 0) {  // the 8u form samples the same points
            Image<Rvp8u> g(23, 17);
            for (int y = 0; y < 17; ++y)
                for (int x = 0; x < 23; ++x) g.at(x, y) = static_cast<Rvp8u>(y * 23 + x);
            std::vector<Rvp8u> l8(30);
            ASSERT_EQ(rvpiSampleLine_8u_C1R(g.ptr(), g.step(), g.size(), l8.data(), a, b), rvpStsNoErr);
            for (int i = 0; i <= m; ++i)
                EXPECT_EQ(l8[i], static_cast<Rvp8u>(static_cast<int>(line[i]) / 100 * 23 + static_cast<int>(line[i]) % 100));
        }
    }
    Rvp32f out[4] = {5, 5, 5, 5};
    struct Row { RvpStatus want; RvpiPoint a, b; };
    const Row rows[] = {{rvpStsOutOfRangeErr, {23, 0}, {0, 0}}, {rvpStsOutOfRangeErr, {0, 0}, {0, -1}},
                        {rvpStsLineLengthErr, {0, 0}, {INT32_MAX, 0}}};
    for (const Row& r : rows) EXPECT_EQ(rvpiSampleLine_32f_C1R(im.ptr(), im.step(), im.size(), out, r.a, r.b), r.want);
    EXPECT_EQ(rvpiSampleLine_32f_C1R(nullptr, im.step(), im.size(), out, {0, 0}, {1, 1}), rvpStsNullPtrErr);
    EXPECT_EQ(out[0], 5.0f);
}

TEST(Subpix, Validation) {
    Image<Rvp8u> src(10, 10);
    Image<Rvp16u> dst(9, 9);
    RvpiPoint lo{}, hi{};
    struct Row { RvpStatus want; const Rvp8u* s; int ss; Rvp16u* d; int ds; RvpiSize r; float dx, dy; };
    const Row rows[] = {
        {rvpStsNullPtrErr, nullptr, src.step(), dst.ptr(), dst.step(), {9, 9}, 0.5f, 0.5f},
        {rvpStsSizeErr, src.ptr(), src.step(), dst.ptr(), dst.step(), {0, 9}, 0.5f, 0.5f},
        {rvpStsStepErr, src.ptr(), 9, dst.ptr(), dst.step(), {9, 9}, 0.5f, 0.5f},  // the column after the region
        {rvpStsNotEvenStepErr, src.ptr(), src.step(), dst.ptr(), 19, {9, 9}, 0.5f, 0.5f},
        {rvpStsBadArgErr, src.ptr(), src.step(), dst.ptr(), dst.step(), {9, 9}, 1.0f, 0.5f},
        {rvpStsBadArgErr, src.ptr(), src.step(), dst.ptr(), dst.step(), {9, 9}, 0.5f, NAN},
        {rvpStsBadArgErr, src.ptr(), src.step(), dst.ptr(), dst.step(), {9, 9}, -0.25f, 0.0f},
    };
    for (const Row& r : rows) {
        const auto before = dst.raw();
        EXPECT_EQ(rvpiCopySubpix_8u16u_C1R_Sfs(r.s, r.ss, r.d, r.ds, r.r, r.dx, r.dy, 0), r.want) << (&r - rows);
        EXPECT_EQ(dst.raw(), before);
    }
    EXPECT_EQ(rvpiCopySubpix_8u16u_C1R_Sfs(src.ptr(), 9, dst.ptr(), dst.step(), {9, 9}, 0.0f, 0.0f, 0), rvpStsNoErr);
    EXPECT_EQ(rvpiCopySubpixIntersect_8u16u_C1R_Sfs(src.ptr(), src.step(), src.size(), dst.ptr(), dst.step(), {9, 9},
                                                    {4, 4}, nullptr, &hi, 0), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiCopySubpixIntersect_8u16u_C1R_Sfs(src.ptr(), 5, src.size(), dst.ptr(), dst.step(), {9, 9}, {4, 4},
                                                    &lo, &hi, 0), rvpStsStepErr);
}

}  // namespace
