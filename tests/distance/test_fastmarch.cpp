// Fast marching against a plain fixed-point model (every pixel relaxed in
// raster order until nothing changes), with and without a radius; the same
// bytes at every thread count, seams included; loosely against the exact
// Euclidean distance; images with no zero or only zeros; validation.
#include <cfloat>
#include <cmath>

#include "support/rvtest.h"

using namespace rvtest;

namespace {

float update(float a, float b) {
    const float d = a - b;
    if (std::fabs(d) >= 1.0f) return std::min(a, b) + 1.0f;
    return (a + b + std::sqrt(2.0f - d * d)) * 0.5f;
}

// Candidate from a neighbour u of the next row and, when present, l of the
// pixel's own row.
float candidate(bool nonzero, float u, const float* l, float radius) {
    const bool ext = radius > 0;
    if (nonzero) {
        if (!ext) return l ? update(u, *l) : u + 1.0f;
        return l ? update(std::max(u, 0.0f), std::max(*l, 0.0f)) : std::max(u, 0.0f) + 1.0f;
    }
    if (!ext) return 0;
    float v;
    if (u > 0 || (l && *l > 0)) v = -1e-10f;
    else if (u == 0 && (!l || *l == 0)) v = 0;
    else if (!l) v = u - 1.0f;
    else if (u == 0 || *l == 0) v = std::min(u, *l) - 1.0f;
    else if (std::fabs(u - *l) >= 1.0f) v = std::max(u, *l) - 1.0f;
    else v = (u + *l - std::sqrt(2.0f - (u - *l) * (u - *l))) * 0.5f;
    return v >= -(radius + 1e-5f) ? v : 0.0f;
}

bool accept(float v, float old, bool ext) {
    if (!ext) return v < old;
    return v < 0 ? (old == 0 || v > old) : (v > 0 && v < old);
}

// Every pixel takes the best candidate over its vertical neighbours, each
// alone in the first column and paired with either row neighbour elsewhere;
// a one-row image pairs nothing and steps along the row.
std::vector<float> model(const Image<Rvp8u>& src, float radius) {
    const int w = src.width(), h = src.height();
    std::vector<float> d(static_cast<size_t>(w) * h);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) d[y * w + x] = src.at(x, y) ? FLT_MAX : 0.0f;
    for (bool changed = true; changed;) {
        changed = false;
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                float& v = d[y * w + x];
                const bool nz = src.at(x, y) != 0;
                const auto offer = [&](float c) {
                    if (accept(c, v, radius > 0)) v = c, changed = true;
                };
                if (h == 1) {
                    if (x > 0) offer(candidate(nz, d[x - 1], nullptr, radius));
                    if (x < w - 1) offer(candidate(nz, d[x + 1], nullptr, radius));
                }
                for (const int ny : {y - 1, y + 1}) {
                    if (ny < 0 || ny >= h) continue;
                    const float u = d[ny * w + x];
                    if (x == 0) offer(candidate(nz, u, nullptr, radius));
                    if (x > 0) offer(candidate(nz, u, &d[y * w + x - 1], radius));
                    if (x < w - 1) offer(candidate(nz, u, &d[y * w + x + 1], radius));
                }
            }
    }
    return d;
}

RvpStatus march(const Image<Rvp8u>& src, Image<Rvp32f>& dst, float radius) {
    int bytes = 0;
    if (RvpStatus st = rvpiFastMarchingGetBufferSize_8u32f_C1R(src.size(), &bytes)) return st;
    std::vector<Rvp8u> buf(static_cast<size_t>(bytes), 0xCD);  // the call clears what it needs
    return rvpiFastMarching_8u32f_C1R(src.ptr(), src.step(), dst.ptr(), dst.step(), src.size(), radius, buf.data());
}

// Blobs of zeros on a nonzero ground (the shapes a thresholded photo gives).
Image<Rvp8u> blobs(int w, int h, int count, std::mt19937& rng) {
    Image<Rvp8u> src(w, h, 1, 5);
    src.fill([] { return Rvp8u{200}; });
    for (int i = 0; i < count; ++i) {
        const int cx = rng() % w, cy = rng() % h, r = 1 + rng() % 6;
        for (int y = std::max(0, cy - r); y < std::min(h, cy + r + 1); ++y)
            for (int x = std::max(0, cx - r); x < std::min(w, cx + r + 1); ++x)
                if ((x - cx) * (x - cx) + (y - cy) * (y - cy) <= r * r) src.at(x, y) = 0;
    }
    src.at(0, h - 1) = 0;
    return src;
}

TEST(FastMarching, MatchesFixedPointAtEveryThreadCount) {
    std::mt19937 rng(5);
    const RvpiSize sizes[] = {{1, 1}, {9, 1}, {1, 9}, {2, 5}, {7, 6}, {31, 17}, {64, 40}};
    for (const RvpiSize sz : sizes)
        for (const float radius : {0.0f, 2.0f, 6.5f}) {
            const Image<Rvp8u> src = blobs(sz.width, sz.height, 1 + sz.width * sz.height / 150, rng);
            const std::vector<float> want = model(src, radius);
            std::vector<Rvp8u> first;
            for (const int threads : threadCounts()) {
                ScopedThreads team(threads);
                Image<Rvp32f> dst(sz.width, sz.height, 1, 4);
                ASSERT_EQ(march(src, dst, radius), rvpStsNoErr);
                ASSERT_TRUE(dst.guardsIntact());
                if (first.empty()) first = dst.raw();
                ASSERT_EQ(dst.raw(), first) << sz.width << "x" << sz.height << " threads " << threads;
                // Rounding makes the update not quite monotone, so the order in
                // which pixels settle can move the last bits: 4e-7 relative.
                for (int y = 0; y < sz.height; ++y)
                    for (int x = 0; x < sz.width; ++x)
                        ASSERT_NEAR(dst.at(x, y), want[y * sz.width + x], 4e-7f * std::fabs(want[y * sz.width + x]))
                            << x << "," << y << " of " << sz.width << "x" << sz.height << " radius " << radius;
            }
        }
}

TEST(FastMarching, CloseToEuclideanAndEdgeCases) {
    // Loosely the exact distance: the first-order scheme overestimates
    // along diagonals by up to about 10% plus a pixel.
    std::mt19937 rng(9);
    const Image<Rvp8u> src = blobs(300, 120, 12, rng);
    Image<Rvp32f> fmm(300, 120), exact(300, 120);
    ASSERT_EQ(march(src, fmm, 0), rvpStsNoErr);
    int bytes = 0;
    ASSERT_EQ(rvpiTrueDistanceTransformGetBufferSize_8u32f_C1R(src.size(), &bytes), rvpStsNoErr);
    std::vector<Rvp8u> buf(static_cast<size_t>(bytes));
    ASSERT_EQ(rvpiTrueDistanceTransform_8u32f_C1R(src.ptr(), src.step(), exact.ptr(), exact.step(), src.size(), buf.data()),
              rvpStsNoErr);
    for (int y = 0; y < 120; ++y)
        for (int x = 0; x < 300; ++x) ASSERT_NEAR(fmm.at(x, y), exact.at(x, y), 1.0f + 0.1f * exact.at(x, y)) << x << "," << y;

    // No zero: everything grows from the seed at the first pixel.
    Image<Rvp8u> ones(6, 8);
    ones.fill([] { return Rvp8u{1}; });
    Image<Rvp32f> dst(6, 8);
    ASSERT_EQ(march(ones, dst, 0), rvpStsNoErr);
    EXPECT_EQ(dst.at(0, 0), 999999.0f);
    EXPECT_GT(dst.at(5, 7), 999999.0f);
    // Only zeros: 0 everywhere, with a radius or without.
    Image<Rvp8u> zeros(6, 8);
    zeros.fill([] { return Rvp8u{0}; });
    for (const float radius : {0.0f, 3.0f}) {
        ASSERT_EQ(march(zeros, dst, radius), rvpStsNoErr);
        for (int y = 0; y < 8; ++y)
            for (int x = 0; x < 6; ++x) ASSERT_EQ(dst.at(x, y), 0.0f);
    }
    // A radius of 2: next to the border -1e-10, three pixels in still 0.
    Image<Rvp8u> half(12, 7);
    half.fill([] { return Rvp8u{0}; });
    for (int y = 0; y < 7; ++y)
        for (int x = 0; x < 4; ++x) half.at(x, y) = 9;
    Image<Rvp32f> signedDst(12, 7);
    ASSERT_EQ(march(half, signedDst, 2.0f), rvpStsNoErr);
    EXPECT_EQ(signedDst.at(4, 3), -1e-10f);
    EXPECT_LT(signedDst.at(5, 3), 0.0f);
    EXPECT_EQ(signedDst.at(7, 3), 0.0f);
    EXPECT_EQ(signedDst.at(3, 3), 1.0f);
}

TEST(FastMarching, Validation) {
    Image<Rvp8u> src(8, 4);
    Image<Rvp32f> dst(8, 4);
    std::vector<Rvp8u> buf(1 << 16);
    const auto kept = dst.raw();
    const struct { const Rvp8u* s; int ss; Rvp32f* d; int ds; RvpiSize r; float radius; Rvp8u* b; RvpStatus want; } rows[] = {
        {nullptr, 8, dst.ptr(), 32, {8, 4}, 0, buf.data(), rvpStsNullPtrErr},
        {src.ptr(), 8, dst.ptr(), 32, {8, 4}, 0, nullptr, rvpStsNullPtrErr},
        {src.ptr(), 8, dst.ptr(), 32, {8, -1}, 0, buf.data(), rvpStsSizeErr},
        {src.ptr(), 7, dst.ptr(), 32, {8, 4}, 0, buf.data(), rvpStsStepErr},
        {src.ptr(), 8, dst.ptr(), 28, {8, 4}, 0, buf.data(), rvpStsStepErr},
        {src.ptr(), 8, dst.ptr(), 34, {8, 4}, 0, buf.data(), rvpStsNotEvenStepErr},
        {src.ptr(), 8, dst.ptr(), 32, {8, 4}, -0.5f, buf.data(), rvpStsBadArgErr},
    };
    for (const auto& r : rows) EXPECT_EQ(rvpiFastMarching_8u32f_C1R(r.s, r.ss, r.d, r.ds, r.r, r.radius, r.b), r.want);
    EXPECT_EQ(dst.raw(), kept);
    int n = 7;
    EXPECT_EQ(rvpiFastMarchingGetBufferSize_8u32f_C1R({1, 0}, &n), rvpStsSizeErr);
    EXPECT_EQ(rvpiFastMarchingGetBufferSize_8u32f_C1R({1 << 30, 1 << 20}, &n), rvpStsSizeErr);
    EXPECT_EQ(n, 7);
    ASSERT_EQ(rvpiFastMarchingGetBufferSize_8u32f_C1R({33, 10}, &n), rvpStsNoErr);
    EXPECT_EQ(n, 44 * 69 + 40);
}

}  // namespace
