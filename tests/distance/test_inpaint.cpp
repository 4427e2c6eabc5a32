// Inpainting against the reference model (both methods, gray and colour,
// several radii, masks touching the image's edges); on a textured picture:
// pixels outside the mask unchanged and the isophote method's values within
// the range of the known neighbourhood; empty and full masks; validation.
#include "reference/ref_inpaint.h"
#include "support/rvtest.h"

using namespace rvtest;

namespace {

// City-block distance to the nearest known pixel, 0 outside the mask.
std::vector<float> distanceMap(const std::vector<uint8_t>& mask, int w, int h) {
    std::vector<float> d(mask.size());
    for (size_t i = 0; i < d.size(); ++i) d[i] = mask[i] ? 1e9f : 0.0f;
    for (int pass = 0; pass < 2; ++pass)
        for (int k = 0; k < w * h; ++k) {
            const int i = pass ? w * h - 1 - k : k, x = i % w, y = i / w, s = pass ? 1 : -1;
            if (x + s >= 0 && x + s < w) d[i] = std::min(d[i], d[i + s] + 1);
            if (y + s >= 0 && y + s < h) d[i] = std::min(d[i], d[i + s * w] + 1);
        }
    return d;
}

std::vector<uint8_t> blobMask(int w, int h, uint32_t seed) {
    std::mt19937 rng(seed);
    std::vector<uint8_t> m(static_cast<size_t>(w) * h, 0);
    for (int k = 0; k < 4; ++k) {
        const int cx = rng() % w, cy = rng() % h, r = 1 + rng() % 4;
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                if ((x - cx) * (x - cx) + (y - cy) * (y - cy) <= r * r) m[static_cast<size_t>(y) * w + x] = 255;
    }
    return m;
}

using Init = RvpStatus (*)(RvpiInpaintState**, const Rvp32f*, int, const Rvp8u*, int, RvpiSize, Rvp32f, int);
using Run = RvpStatus (*)(const Rvp8u*, int, Rvp8u*, int, RvpiSize, RvpiInpaintState*);

// Inpaints img (packed) through the library; pDst is a padded image.
std::vector<uint8_t> inpaint(int C, const std::vector<uint8_t>& img, int w, int h, const std::vector<uint8_t>& mask,
                             const std::vector<float>& dist, float radius, int method) {
    RvpiInpaintState* s = nullptr;
    const Init init = C == 1 ? rvpiInpaintInitAlloc_8u_C1R : rvpiInpaintInitAlloc_8u_C3R;
    const Run run = C == 1 ? rvpiInpaint_8u_C1R : rvpiInpaint_8u_C3R;
    EXPECT_EQ(init(&s, dist.data(), 4 * w, mask.data(), w, {w, h}, radius, method), rvpStsNoErr);
    Image<Rvp8u> out(w, h, C, 5);
    for (int pass = 0; pass < 2; ++pass)  // a state serves any number of calls
        EXPECT_EQ(run(img.data(), w * C, out.ptr(), out.step(), {w, h}, s), rvpStsNoErr);
    EXPECT_TRUE(out.guardsIntact());
    EXPECT_EQ(rvpiInpaintFree_8u_C1R(s), rvpStsNoErr);
    return out.bytes();
}

TEST(Inpaint, MatchesReference) {
    std::mt19937 rng(1);
    for (int C : {1, 3})
        for (int method : {0, 1})
            for (float radius : {1.0f, 2.5f, 5.0f}) {
                SCOPED_TRACE(testing::Message() << "C" << C << " method " << method << " radius " << radius);
                const int w = 29, h = 21;
                std::vector<uint8_t> img(static_cast<size_t>(w) * h * C);
                for (int y = 0; y < h; ++y)
                    for (int x = 0; x < w * C; ++x) img[y * w * C + x] = static_cast<uint8_t>(x * 5 + y * 3 + rng() % 40);
                const std::vector<uint8_t> mask = blobMask(w, h, static_cast<uint32_t>(C * 10 + method + radius));
                const std::vector<float> dist = distanceMap(mask, w, h);
                std::vector<uint8_t> want = img;
                ref::inpaint(want, w, h, C, mask, dist, radius, method);
                EXPECT_NE(want, img);  // something was filled
                EXPECT_EQ(inpaint(C, img, w, h, mask, dist, radius, method), want);
            }
}

TEST(Inpaint, KnownPixelsStayAndValuesStayInRange) {
    const int w = 120, h = 90;
    std::vector<uint8_t> img(static_cast<size_t>(w) * h), mask(img.size(), 0);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            img[y * w + x] = static_cast<uint8_t>(128 + 60 * std::sin(x * 0.2) * std::cos(y * 0.13) + (x * y) % 7);
    for (int x = 10; x < 110; ++x) mask[45 * w + x] = mask[46 * w + x] = 255;  // a scratch
    for (int y = 20; y < 30; ++y)
        for (int x = 60; x < 75; ++x) mask[y * w + x] = 255;  // a block
    const std::vector<float> dist = distanceMap(mask, w, h);
    for (int method : {0, 1}) {
        const std::vector<uint8_t> out = inpaint(1, img, w, h, mask, dist, 5.0f, method);
        int lo = 255, hi = 0;
        for (size_t i = 0; i < img.size(); ++i)
            if (!mask[i]) lo = std::min<int>(lo, img[i]), hi = std::max<int>(hi, img[i]);
        for (size_t i = 0; i < img.size(); ++i) {
            if (!mask[i]) {
                ASSERT_EQ(out[i], img[i]);
            } else if (method == 1) {
                ASSERT_TRUE(out[i] >= lo && out[i] <= hi);
            }
        }
    }
    // Empty mask: a copy. Full mask: nothing known, all zero.
    const std::vector<uint8_t> none(img.size(), 0), all(img.size(), 255);
    EXPECT_EQ(inpaint(1, img, w, h, none, distanceMap(none, w, h), 3.0f, 0), img);
    std::vector<float> flat(img.size(), 1.0f);
    EXPECT_EQ(inpaint(1, img, w, h, all, flat, 3.0f, 1), std::vector<uint8_t>(img.size(), 0));
}

TEST(Inpaint, Validation) {
    Image<Rvp8u> m(8, 4), src(8, 4), dst(8, 4);
    std::vector<float> d(32, 1.0f);
    RvpiInpaintState* s = nullptr;
    const struct { const Rvp32f* d; int ds, ms; RvpiSize r; float radius; int flags; RvpStatus st; } rows[] = {
        {nullptr, 32, 8, {8, 4}, 2, 0, rvpStsNullPtrErr}, {d.data(), 32, 8, {0, 4}, 2, 0, rvpStsSizeErr},
        {d.data(), 32, 7, {8, 4}, 2, 0, rvpStsStepErr},   {d.data(), 30, 8, {8, 4}, 2, 0, rvpStsStepErr},
        {d.data(), 34, 8, {8, 4}, 2, 0, rvpStsNotEvenStepErr}, {d.data(), 32, 8, {8, 4}, 2, 2, rvpStsBadArgErr},
        {d.data(), 32, 8, {8, 4}, 0.5f, 0, rvpStsBadArgErr}, {d.data(), 32, 8, {8, 4}, NAN, 0, rvpStsBadArgErr},
    };
    for (const auto& r : rows)
        EXPECT_EQ(rvpiInpaintInitAlloc_8u_C1R(&s, r.d, r.ds, m.ptr(), r.ms, r.r, r.radius, r.flags), r.st);
    EXPECT_EQ(s, nullptr);
    ASSERT_EQ(rvpiInpaintInitAlloc_8u_C1R(&s, d.data(), 32, m.ptr(), 8, {8, 4}, 2, 0), rvpStsNoErr);
    const auto kept = dst.raw();
    EXPECT_EQ(rvpiInpaint_8u_C1R(src.ptr(), 8, dst.ptr(), 8, {8, 3}, s), rvpStsSizeErr);
    EXPECT_EQ(rvpiInpaint_8u_C3R(src.ptr(), 24, dst.ptr(), 24, {8, 4}, s), rvpStsSizeErr);
    EXPECT_EQ(rvpiInpaint_8u_C1R(src.ptr(), 7, dst.ptr(), 8, {8, 4}, s), rvpStsStepErr);
    EXPECT_EQ(rvpiInpaint_8u_C1R(src.ptr(), 8, dst.ptr(), 8, {8, 4}, nullptr), rvpStsNullPtrErr);
    EXPECT_EQ(dst.raw(), kept);
    EXPECT_EQ(rvpiInpaintFree_8u_C3R(s), rvpStsNoErr);
    EXPECT_EQ(rvpiInpaintFree_8u_C1R(nullptr), rvpStsNullPtrErr);
}

}  // namespace
