// Exact distance transform against a brute-force search for the nearest
// zero (small images, sparse and dense zeros, rows and columns without one,
// widths past the threading threshold at every thread count); an image
// without zeros; validation.
#include <cfloat>
#include <cmath>

#include "support/rvtest.h"

using namespace rvtest;

namespace {

std::vector<float> bruteForce(const Image<Rvp8u>& src) {
    const int w = src.width(), h = src.height();
    std::vector<float> out(static_cast<size_t>(w) * h);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            int64_t best = -1;
            for (int yy = 0; yy < h; ++yy)
                for (int xx = 0; xx < w; ++xx)
                    if (src.at(xx, yy) == 0) {
                        const int64_t d = int64_t(xx - x) * (xx - x) + int64_t(yy - y) * (yy - y);
                        if (best < 0 || d < best) best = d;
                    }
            out[static_cast<size_t>(y) * w + x] = std::sqrt(static_cast<float>(best));
        }
    return out;
}

RvpStatus run(const Image<Rvp8u>& src, Image<Rvp32f>& dst) {
    int bytes = 0;
    if (RvpStatus st = rvpiTrueDistanceTransformGetBufferSize_8u32f_C1R(src.size(), &bytes)) return st;
    std::vector<Rvp8u> buf(static_cast<size_t>(bytes));
    return rvpiTrueDistanceTransform_8u32f_C1R(src.ptr(), src.step(), dst.ptr(), dst.step(), src.size(), buf.data());
}

TEST(TrueDistance, MatchesBruteForce) {
    std::mt19937 rng(11);
    const RvpiSize sizes[] = {{1, 1}, {1, 9}, {9, 1}, {7, 5}, {33, 17}, {300, 24}};
    for (int threads : threadCounts()) {
        ScopedThreads team(threads);
        for (const RvpiSize sz : sizes)
            for (int density : {2, 40, 400}) {
                Image<Rvp8u> src(sz.width, sz.height, 1, 3);
                src.fill([&] { return static_cast<Rvp8u>(rng() % density == 0 ? 0 : 1 + rng() % 255); });
                src.at(sz.width / 2, sz.height / 2) = 0;  // at least one zero
                Image<Rvp32f> dst(sz.width, sz.height, 1, 8);
                ASSERT_EQ(run(src, dst), rvpStsNoErr);
                ASSERT_TRUE(dst.guardsIntact());
                const std::vector<float> want = bruteForce(src);
                for (int y = 0; y < sz.height; ++y)
                    for (int x = 0; x < sz.width; ++x)
                        ASSERT_EQ(dst.at(x, y), want[static_cast<size_t>(y) * sz.width + x])
                            << x << "," << y << " of " << sz.width << "x" << sz.height << " threads " << threads;
            }
    }
    // No zero at all: the root of the largest float everywhere.
    Image<Rvp8u> ones(5, 4);
    ones.fill([] { return Rvp8u{1}; });
    Image<Rvp32f> dst(5, 4);
    ASSERT_EQ(run(ones, dst), rvpStsNoErr);
    EXPECT_EQ(dst.at(4, 3), std::sqrt(FLT_MAX));
}

TEST(TrueDistance, Validation) {
    Image<Rvp8u> src(8, 4);
    Image<Rvp32f> dst(8, 4);
    std::vector<Rvp8u> buf(1 << 16);
    const auto kept = dst.raw();
    const struct { const Rvp8u* s; int ss; Rvp32f* d; int ds; RvpiSize r; Rvp8u* b; RvpStatus want; } rows[] = {
        {nullptr, 8, dst.ptr(), 32, {8, 4}, buf.data(), rvpStsNullPtrErr},
        {src.ptr(), 8, dst.ptr(), 32, {8, 4}, nullptr, rvpStsNullPtrErr},
        {src.ptr(), 8, dst.ptr(), 32, {0, 4}, buf.data(), rvpStsSizeErr},
        {src.ptr(), 7, dst.ptr(), 32, {8, 4}, buf.data(), rvpStsStepErr},
        {src.ptr(), 8, dst.ptr(), 31, {8, 4}, buf.data(), rvpStsStepErr},
        {src.ptr(), 8, dst.ptr(), 34, {8, 4}, buf.data(), rvpStsNotEvenStepErr},
    };
    for (const auto& r : rows) EXPECT_EQ(rvpiTrueDistanceTransform_8u32f_C1R(r.s, r.ss, r.d, r.ds, r.r, r.b), r.want);
    EXPECT_EQ(dst.raw(), kept);
    int n = 7;
    EXPECT_EQ(rvpiTrueDistanceTransformGetBufferSize_8u32f_C1R({0, 1}, &n), rvpStsSizeErr);
    EXPECT_EQ(rvpiTrueDistanceTransformGetBufferSize_8u32f_C1R({1 << 30, 1 << 30}, &n), rvpStsSizeErr);
    EXPECT_EQ(n, 7);
}

}  // namespace
