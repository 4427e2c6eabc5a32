// Lens undistortion against the reference model (every form, with and
// without the column buffer, every dispatch level), maps against the model
// and against the radial coordinates, the unwritten-pixel rule, a distorted
// grid made straight again, and the validation order.
#include <cmath>

#include "reference/ref_undistort.h"
#include "support/rvtest.h"

using namespace rvtest;

namespace {

template <class T>
using UndistortFn = RvpStatus (*)(const T*, int, T*, int, RvpiSize, Rvp32f, Rvp32f, Rvp32f, Rvp32f, Rvp32f, Rvp32f,
                                  Rvp8u*);

struct Case { int w, h, pad; };
const Case kCases[] = {{1, 1, 0}, {2, 2, 4}, {3, 7, 0}, {9, 4, 12}, {16, 3, 0}, {17, 9, 8}, {33, 20, 4}, {130, 67, 0}};

ref::Lens lensFor(const Case& c, uint32_t seed) {
    std::mt19937 rng(seed);
    std::uniform_real_distribution<float> k(-0.6f, 0.6f), off(-0.2f, 0.2f);
    const float f = 0.6f * static_cast<float>(c.w > c.h ? c.w : c.h) + 1.0f;
    return {f * (1 + off(rng)), f * (1 + off(rng)), c.w * (0.5f + off(rng)), c.h * (0.5f + off(rng)),
            k(rng), 0.3f * k(rng), 0.05f * k(rng), 0.05f * k(rng)};
}

std::vector<uint8_t> scratch(RvpiSize roi) {
    int n = 0;
    EXPECT_EQ(rvpiUndistortGetSize(roi, &n), rvpStsNoErr);
    EXPECT_EQ(n, ((roi.width + 3) & ~3) * 24 + 32);
    return std::vector<uint8_t>(static_cast<size_t>(n) + 1);  // +1: an odd start is aligned inside
}

template <class T>
void checkRadial(UndistortFn<T> fn, int channels, uint32_t seed) {
    for (const Case& c : kCases)
        for (bool withBuffer : {false, true}) {
            SCOPED_TRACE(testing::Message() << c.w << "x" << c.h << " C" << channels << " buffer " << withBuffer);
            const ref::Lens l = lensFor(c, seed + c.w);
            Image<T> src(c.w, c.h, channels, c.pad), dst(c.w, c.h, channels, c.pad + 4);
            Random<T> rnd(seed + c.h);
            src.fill(rnd);
            dst.fill(rnd);
            const Image<T> before = dst;
            std::vector<uint8_t> buf = scratch(src.size());
            ASSERT_EQ(fn(src.ptr(), src.step(), dst.ptr(), dst.step(), src.size(), l.fx, l.fy, l.cx, l.cy, l.k1, l.k2,
                         withBuffer ? buf.data() + 1 : nullptr),
                      rvpStsNoErr);
            ASSERT_TRUE(dst.guardsIntact());
            const auto at = [&](int x, int y, int ch) { return src.at(x, y, ch); };
            for (int y = 0; y < c.h; ++y)
                for (int x = 0; x < c.w; ++x) {
                    T want[3];
                    const bool written = ref::undistortPixel<T>(l, c.w, c.h, x, y, channels, at, want);
                    for (int ch = 0; ch < channels; ++ch) {
                        const T expect = written ? want[ch] : before.at(x, y, ch);
                        ASSERT_TRUE(sameBits(&expect, &dst.at(x, y, ch), sizeof(T))) << x << "," << y << " ch " << ch;
                    }
                }
        }
}

TEST(Undistort, RadialMatchesReferenceAtEveryLevel) {
    for (rvcv::Isa isa : isaLevels()) {
        ScopedIsa level(isa);
        SCOPED_TRACE(rvcv::isaName(isa));
        checkRadial<Rvp8u>(rvpiUndistortRadial_8u_C1R, 1, 1);
        checkRadial<Rvp8u>(rvpiUndistortRadial_8u_C3R, 3, 2);
        checkRadial<Rvp16u>(rvpiUndistortRadial_16u_C1R, 1, 3);
        checkRadial<Rvp16u>(rvpiUndistortRadial_16u_C3R, 3, 4);
        checkRadial<Rvp32f>(rvpiUndistortRadial_32f_C1R, 1, 5);
        checkRadial<Rvp32f>(rvpiUndistortRadial_32f_C3R, 3, 6);
    }
}

// Maps: the tangential model; with p1 = p2 = 0 the radial coordinates
// themselves. 600x240 passes the size at which stores bypass the cache.
TEST(Undistort, MapsMatchReferenceAtEveryLevel) {
    const Case cases[] = {{1, 1, 0}, {5, 3, 4}, {17, 9, 0}, {600, 240, 0}};
    for (rvcv::Isa isa : isaLevels()) {
        ScopedIsa level(isa);
        for (const Case& c : cases)
            for (int model = 0; model < 2; ++model)
                for (bool withBuffer : {false, true}) {
                    SCOPED_TRACE(testing::Message() << rvcv::isaName(isa) << " " << c.w << "x" << c.h << " model "
                                                    << model << " buffer " << withBuffer);
                    ref::Lens l = lensFor(c, 7 + c.w);
                    if (model == 0) l.p1 = l.p2 = 0;
                    Image<Rvp32f> mx(c.w, c.h, 1, c.pad), my(c.w, c.h, 1, c.pad + 8);
                    std::vector<uint8_t> buf = scratch(mx.size());
                    ASSERT_EQ(rvpiCreateMapCameraUndistort_32f_C1R(mx.ptr(), mx.step(), my.ptr(), my.step(), mx.size(),
                                                                   l.fx, l.fy, l.cx, l.cy, l.k1, l.k2, l.p1, l.p2,
                                                                   withBuffer ? buf.data() : nullptr),
                              rvpStsNoErr);
                    ASSERT_TRUE(mx.guardsIntact() && my.guardsIntact());
                    for (int y = 0; y < c.h; ++y)
                        for (int x = 0; x < c.w; ++x) {
                            float u, v;
                            if (model == 0) ref::radialPoint(l, x, y, u, v);
                            else ref::tangentialPoint(l, x, y, u, v);
                            ASSERT_TRUE(sameBits(&u, &mx.at(x, y), 4) && sameBits(&v, &my.at(x, y), 4)) << x << "," << y;
                        }
                }
    }
}

// No distortion: the interior is copied, the last row and column keep
// their old values; a NaN coefficient writes nothing.
TEST(Undistort, ZeroCoefficientsCopyTheInterior) {
    Image<Rvp8u> src(37, 11, 3), dst(37, 11, 3);
    Random<Rvp8u> rnd(9);
    src.fill(rnd);
    dst.fill([] { return Rvp8u{7}; });
    ASSERT_EQ(rvpiUndistortRadial_8u_C3R(src.ptr(), src.step(), dst.ptr(), dst.step(), src.size(), 30, 20, 18, 5, 0, 0,
                                         nullptr),
              rvpStsNoErr);
    for (int y = 0; y < 11; ++y)
        for (int x = 0; x < 37; ++x)
            for (int c = 0; c < 3; ++c)
                ASSERT_EQ(dst.at(x, y, c), x == 36 || y == 10 ? 7 : src.at(x, y, c)) << x << "," << y;
    const Image<Rvp8u> kept = dst;
    ASSERT_EQ(rvpiUndistortRadial_8u_C3R(src.ptr(), src.step(), dst.ptr(), dst.step(), src.size(), 30, 20, 18, 5, NAN, 0,
                                         nullptr),
              rvpStsNoErr);
    EXPECT_EQ(dst.bytes(), kept.bytes());
}

// A grid of lines every 16 pixels, seen through a barrel lens (each source
// pixel takes the grid value at the point the lens maps onto it), comes out
// with straight lines again: bright along the grid, dark between.
TEST(Undistort, StraightensADistortedGrid) {
    const int w = 257, h = 193;
    const ref::Lens l{160, 160, 128, 96, -0.25f, 0.05f, 0, 0};
    Image<Rvp32f> seen(w, h), out(w, h);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            // Invert the lens by fixed-point iteration: find p with lens(p) = (x, y).
            double px = x, py = y;
            for (int i = 0; i < 50; ++i) {
                const double dx = (px - l.cx) / l.fx, dy = (py - l.cy) / l.fy, r2 = dx * dx + dy * dy;
                const double m = l.k1 * r2 + l.k2 * r2 * r2;
                px = x - (px - l.cx) * m;
                py = y - (py - l.cy) * m;
            }
            const double gx = std::fabs(std::remainder(px, 16.0)), gy = std::fabs(std::remainder(py, 16.0));
            seen.at(x, y) = std::min(gx, gy) < 1.0 ? 255.0f : 0.0f;
        }
    out.fill([] { return 0.0f; });
    ASSERT_EQ(rvpiUndistortRadial_32f_C1R(seen.ptr(), seen.step(), out.ptr(), out.step(), seen.size(), l.fx, l.fy, l.cx,
                                          l.cy, l.k1, l.k2, nullptr),
              rvpStsNoErr);
    for (int x = 32; x <= 224; x += 16) {
        double on = 0, off = 0;
        for (int y = 24; y < 168; ++y) {
            on += out.at(x, y);
            off += out.at(x + 8, y);
        }
        EXPECT_GT(on / 144, 160.0) << "column " << x;
        EXPECT_LT(off / 144, 60.0) << "column " << x + 8;
    }
}

TEST(Undistort, ValidationOrder) {
    Image<Rvp16u> src(8, 4), dst(8, 4);
    const RvpiSize roi{8, 4};
    struct Row { const char* what; const Rvp16u* s; int ss; Rvp16u* d; int ds; RvpiSize r; float fx; RvpStatus st; };
    const Row rows[] = {
        {"null source", nullptr, 16, dst.ptr(), 16, {0, 0}, 0, rvpStsNullPtrErr},
        {"null destination", src.ptr(), 16, nullptr, 16, roi, 1, rvpStsNullPtrErr},
        {"zero width", src.ptr(), 16, dst.ptr(), 16, {0, 4}, 0, rvpStsSizeErr},
        {"negative height", src.ptr(), 16, dst.ptr(), 16, {8, -1}, 1, rvpStsSizeErr},
        {"short source step", src.ptr(), 14, dst.ptr(), 16, roi, 0, rvpStsStepErr},
        {"row bytes past any step", src.ptr(), 16, dst.ptr(), 16, {1 << 30, 4}, 1, rvpStsStepErr},
        {"odd step", src.ptr(), 16, dst.ptr(), 17, roi, 0, rvpStsNotEvenStepErr},
        {"fx zero", src.ptr(), 16, dst.ptr(), 16, roi, 0, rvpStsBadArgErr},
    };
    const auto untouched = dst.raw();
    for (const Row& r : rows) {
        EXPECT_EQ(rvpiUndistortRadial_16u_C1R(r.s, r.ss, r.d, r.ds, r.r, r.fx, 1, 0, 0, 0.1f, 0, nullptr), r.st) << r.what;
        EXPECT_EQ(dst.raw(), untouched) << r.what;
    }
    int n = -1;
    Rvp8u b[64];
    EXPECT_EQ(rvpiUndistortGetSize(roi, nullptr), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiUndistortGetSize({INT32_MAX / 24, 1}, &n), rvpStsSizeErr);
    EXPECT_EQ(n, -1);
    EXPECT_EQ(rvpiUndistortRadial_8u_C1R(b, INT32_MAX, b, INT32_MAX, {INT32_MAX / 24, 1}, 1, 1, 0, 0, 0, 0, b),
              rvpStsSizeErr);
    Rvp32f m[4];
    EXPECT_EQ(rvpiCreateMapCameraUndistort_32f_C1R(m, 8, m, 6, {2, 1}, 1, 1, 0, 0, 0, 0, 0, 0, nullptr), rvpStsStepErr);
    EXPECT_EQ(rvpiCreateMapCameraUndistort_32f_C1R(m, 8, m, 10, {2, 1}, 1, 1, 0, 0, 0, 0, 0, 0, nullptr),
              rvpStsNotEvenStepErr);
    EXPECT_EQ(rvpiCreateMapCameraUndistort_32f_C1R(m, 8, m, 8, {2, 1}, 1, 0, 0, 0, 0, 0, 0, 0, nullptr), rvpStsBadArgErr);
}

}  // namespace
