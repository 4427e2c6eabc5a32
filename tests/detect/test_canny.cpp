// Canny detector against the reference model: random derivatives rich in
// ties, extremes and sector-boundary slopes, derivatives of a generated
// scene, both stack widths, the scratch buffer guarded on both sides, hand-
// checkable tie and threshold cases, and validation order.
#include <algorithm>
#include <cmath>
#include <functional>

#include "reference/ref_canny.h"
#include "support/rvtest.h"

using namespace rvtest;

namespace {

template <class T>
RvpStatus canny(const T* x, int sx, const T* y, int sy, Rvp8u* d, int sd, RvpiSize s, float lo, float hi, Rvp8u* b) {
    if constexpr (std::is_integral<T>::value) return rvpiCanny_16s8u_C1R(x, sx, y, sy, d, sd, s, lo, hi, b);
    else return rvpiCanny_32f8u_C1R(x, sx, y, sy, d, sd, s, lo, hi, b);
}

// Runs the detector with its buffer misaligned by `shift` between canaries
// and full of stale candidate marks, on an output pre-filled with junk, and
// compares with the reference.
template <class T>
std::vector<uint8_t> run(const Image<T>& dx, const Image<T>& dy, float low, float high, int shift = 0) {
    int size = 0;
    EXPECT_EQ(rvpiCannyGetSize(dx.size(), &size), rvpStsNoErr);
    std::vector<uint8_t> buf(static_cast<size_t>(size) + shift + kGuard, kCanary);
    std::fill(buf.begin() + shift, buf.end() - kGuard, 0x80);  // stale candidates everywhere
    Image<Rvp8u> dst(dx.width(), dx.height(), 1, shift % 5);
    dst.fill([] { return Rvp8u{0x5A}; });
    Rvp8u* b = buf.data() + shift;
    EXPECT_EQ(canny(dx.ptr(), dx.step(), dy.ptr(), dy.step(), dst.ptr(), dst.step(), dx.size(), low, high, b), rvpStsNoErr);
    EXPECT_TRUE(dst.guardsIntact());
    auto intact = [](auto from, auto to) { return std::all_of(from, to, [](uint8_t v) { return v == kCanary; }); };
    EXPECT_TRUE(intact(buf.begin(), buf.begin() + shift) && intact(buf.end() - kGuard, buf.end()));
    auto at = [](const Image<T>& im) { return [&im](int x, int y) { return im.at(x, y); }; };
    EXPECT_EQ(dst.bytes(), ref::canny<T>(dx.width(), dx.height(), at(dx), at(dy), low, high));
    return dst.bytes();
}

// Derivatives: small (ties), full range, or a pool of extremes and Pell
// numbers, whose ratios straddle tan 22.5 and tan 67.5 (floats: also signed
// zeros, infinities and NaN).
template <class T> std::function<T()> derivs(uint32_t seed, int kind) {
    static const float pool[] = {0, 1, 2, 5, 12, 29, 70, 169, 408, 985, 2378, 5741, 13860, 32767, -32768,
                                 -0.0f, INFINITY, NAN, 1.5f, 0.25f};
    return [rng = std::make_shared<std::mt19937>(seed), kind]() -> T {
        const unsigned r = (*rng)();
        if (kind == 0) return static_cast<T>(static_cast<int>(r % 7) - 3);
        if (kind == 1) return std::is_integral<T>::value ? static_cast<T>(r) : static_cast<T>(static_cast<int>(r) / 1e5f);
        return static_cast<T>((r & 1 ? -1.0f : 1.0f) * pool[(r >> 1) % (std::is_integral<T>::value ? 15 : 20)]);
    };
}

class CannyPaths : public testing::TestWithParam<rvcv::Isa> {
protected:
    ScopedIsa isa_{GetParam()};
};
INSTANTIATE_TEST_SUITE_P(Canny, CannyPaths, testing::ValuesIn(isaLevels()),
                         [](const auto& info) { return std::string(rvcv::isaName(info.param)); });

template <class T> void compareRandom(uint32_t seed) {
    const float ths[][2] = {{0, 0}, {2, 2}, {2.5f, 4}, {1, 6}, {500, 3000}, {30, 20000}, {0, 65535}, {3, NAN}};
    int n = 0;
    for (int w : {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 24, 31, 33, 70})
        for (int h : {1, 2, 3, 4, 9}) {
            const float* th = ths[n % 8];
            SCOPED_TRACE(testing::Message() << w << "x" << h << " case " << n << " seed " << seed);
            Image<T> dx(w, h, 1, (n % 3) * 4), dy(w, h, 1, 4);
            dx.fill(derivs<T>(seed + n, n % 3));
            dy.fill(derivs<T>(seed + n + 1000, n % 3));
            run(dx, dy, th[0], th[1], n++ % 32);
        }
}

TEST_P(CannyPaths, RandomDerivatives) {
    for (uint32_t seed : {1u, 2u, 3u}) compareRandom<Rvp16s>(seed), compareRandom<Rvp32f>(seed * 7);
}

// A shaded background with noise and discs, then 3x3 Sobel derivatives
// (replicated border); the float form gets them scaled by 1/8.
template <class T> void compareScene(int w, int h, uint32_t seed, float low, float high) {
    std::mt19937 rng(seed);
    std::vector<int> img(static_cast<size_t>(w) * h);
    for (int i = 0; i < w * h; ++i) img[i] = 40 + 100 * (i % w) / w + 30 * (i / w) / h + rng() % 7;
    for (int k = 0; k < 12; ++k) {
        const int cx = rng() % w, cy = rng() % h, r = 5 + rng() % (w / 6), v = rng() % 256;
        for (int i = 0; i < w * h; ++i)
            if ((i % w - cx) * (i % w - cx) + (i / w - cy) * (i / w - cy) < r * r) img[i] = v;
    }
    auto I = [&](int x, int y) { return img[std::clamp(y, 0, h - 1) * size_t(w) + std::clamp(x, 0, w - 1)]; };
    const float scale = std::is_integral<T>::value ? 1.0f : 0.125f;
    Image<T> dx(w, h, 1, 8), dy(w, h);
    dx.fill([] { return T(0); }), dy.fill([] { return T(0); });
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            for (int j = -1; j <= 1; ++j) {  // smoothing 1 2 1 across the difference
                dx.at(x, y) += static_cast<T>(scale * (2 - j * j) * (I(x + 1, y + j) - I(x - 1, y + j)));
                dy.at(x, y) += static_cast<T>(scale * (2 - j * j) * (I(x + j, y + 1) - I(x + j, y - 1)));
            }
    const std::vector<uint8_t> got = run(dx, dy, low, high, 5);
    EXPECT_GT(std::count(got.begin(), got.end(), 0xFF), w);  // the scene does have edges
}

TEST_P(CannyPaths, SceneDerivatives) {
    compareScene<Rvp16s>(640, 480, 11, 60, 180);
    compareScene<Rvp32f>(333, 201, 14, 2.5f, 7.5f);
}

// Sides of 0xfffd or more take 32-bit stack entries and the larger buffer.
// A one-column image of horizontal-sector pixels makes every pixel a seed,
// so the stack fills to one entry a pixel: it must fit the reported size.
TEST_P(CannyPaths, WideStackBranch) {
    for (int h : {0xfffc, 0xfffd}) {
        Image<Rvp16s> dx(1, h), dy(1, h);
        dx.fill([] { return Rvp16s{-9}; });
        dy.fill([] { return Rvp16s{2}; });
        const std::vector<uint8_t> got = run(dx, dy, 1, 5, 7);
        EXPECT_EQ(std::count(got.begin(), got.end(), 0xFF), h);
    }
    for (RvpiSize s : {RvpiSize{3, 0xfffd}, RvpiSize{0xfffd, 2}, RvpiSize{0x10003, 1}}) {
        Image<Rvp32f> dx(s.width, s.height), dy(s.width, s.height);
        dx.fill(derivs<Rvp32f>(s.width, 2)), dy.fill(derivs<Rvp32f>(s.height, 2));
        run(dx, dy, 5, 50, 9);
    }
}

// Slopes at the sector boundaries. Each test pixel sits in an odd column of
// the middle row with zeros beside, above and below it and large magnitudes
// at its corners, so it survives exactly when its slope is taken as an axis.
template <class T> void compareBoundaries(const std::vector<std::pair<T, T>>& pairs) {
    const int w = 2 * static_cast<int>(pairs.size()) + 1;
    Image<T> dx(w, 3), dy(w, 3);
    for (int i = 0; i < w * 3; ++i)
        dx.at(i % w, i / w) = dy.at(i % w, i / w) = static_cast<T>(i / w != 1 && i % 2 == 0 ? 30000 : 0);
    for (size_t i = 0; i < pairs.size(); ++i) {
        dx.at(2 * static_cast<int>(i) + 1, 1) = static_cast<T>(i % 3 == 1 ? -pairs[i].first : pairs[i].first);
        dy.at(2 * static_cast<int>(i) + 1, 1) = static_cast<T>(i % 2 ? pairs[i].second : -pairs[i].second);
    }
    const std::vector<uint8_t> got = run(dx, dy, 0, 0);
    const long kept = std::count(got.begin() + w, got.begin() + 2 * w, 0xFF);
    EXPECT_TRUE(kept > 0 && kept < static_cast<long>(pairs.size()));
}

TEST_P(CannyPaths, SectorBoundaries) {
    std::vector<std::pair<Rvp16s, Rvp16s>> ints;
    std::vector<std::pair<Rvp32f, Rvp32f>> floats{{1.0f, 0.4142135f}, {1.0f, 0.41421357f}, {1.0f, 2.4142134f}};
    for (int a = 1; a <= 32767; a += (a < 200 ? 1 : 37))
        for (const float k : {0.41421357f, 2.4142137f}) {
            const int b = static_cast<int>(k * a);
            for (int c = b; c <= std::min(b + 1, 32767); ++c)
                ints.push_back({static_cast<Rvp16s>(a), static_cast<Rvp16s>(c)});
            const float fa = a * 0.37f, fb = k * fa;
            for (const float c : {std::nextafter(fb, 0.0f), fb, std::nextafter(fb, INFINITY)})
                floats.push_back({fa, c});
        }
    compareBoundaries(ints);
    compareBoundaries(floats);
}

// Hand-checkable rows: with dy = 0 pixels are in the horizontal sector, with
// dx = 0 in the vertical one (the zero frame lies above and below a row).
template <class T> std::vector<uint8_t> grid(std::vector<T> dx, std::vector<T> dy, float low, float high, int h = 1) {
    const int w = static_cast<int>(dx.size()) / h;
    Image<T> ix(w, h), iy(w, h);
    for (int i = 0; i < w * h; ++i) ix.at(i % w, i / w) = dx[i], iy.at(i % w, i / w) = dy[i];
    return run(ix, iy, low, high);
}
using V = std::vector<uint8_t>;

TEST_P(CannyPaths, TiesAndThresholds) {
    EXPECT_EQ(grid<Rvp16s>({3}, {-4}, 1, 6), V{0xFF});  // every neighbour is outside
    EXPECT_EQ(grid<Rvp32f>({3}, {-4}, 1, 7), V{0});     // exactly high is no seed
    // Equal maxima along the gradient: the first in scan order passes.
    EXPECT_EQ(grid<Rvp16s>({0, 5, 5, 0}, {0, 0, 0, 0}, 1, 2), (V{0, 0xFF, 0, 0}));
    EXPECT_EQ(grid<Rvp32f>({0, 0, 0, 0}, {0, 5, 5, 0}, 1, 2, 4), (V{0, 0xFF, 0, 0}));
    // Diagonal equal maxima, same and opposite signs: neither passes.
    EXPECT_EQ(grid<Rvp16s>({5, 0, 0, 5}, {5, 0, 0, 5}, 1, 2, 2), V(4, 0));
    EXPECT_EQ(grid<Rvp16s>({0, 5, 5, 0}, {0, -5, -5, 0}, 1, 2, 2), V(4, 0));
    // A candidate at exactly high is reached from a seed beside it.
    EXPECT_EQ(grid<Rvp32f>({0, 0, 0}, {9, 6, 6}, 1, 6), V(3, 0xFF));
    // Exactly low stays in the float form and goes in the integer form,
    // whose thresholds are truncated (10.5 acts as 10).
    EXPECT_EQ(grid<Rvp32f>({0, 0, 0}, {20, 11, 10}, 10, 15), V(3, 0xFF));
    EXPECT_EQ(grid<Rvp16s>({0, 0, 0}, {20, 11, 10}, 10.5f, 15), (V{0xFF, 0xFF, 0}));
    // Both derivatives -32768: whole groups of eight saturate at 65535, the
    // leftover columns reach 65536, which alone exceeds high = 65535.
    std::vector<Rvp16s> d(25, 0);
    d[0] = d[12] = d[20] = d[24] = -32768;
    EXPECT_EQ(grid<Rvp16s>(d, d, 0, 65535), [] { V v(25, 0); v[24] = 0xFF; return v; }());
}

TEST(Canny, GetSizeAndValidation) {
    int size = -1;
    const std::pair<RvpiSize, int> sizes[] = {
        {{4, 3}, 6 * 5 * 5 + 160 + 64}, {{1, 0xfffc}, 3 * 0xfffe * 5 + 176}, {{1, 0xfffd}, 3 * 0xffff * 9 + 176}};
    for (const auto& s : sizes) EXPECT_TRUE(rvpiCannyGetSize(s.first, &size) == rvpStsNoErr && size == s.second);
    // A size past an int is refused, by the query and by the detector alike.
    size = -1;
    EXPECT_EQ(rvpiCannyGetSize({0xfffc, 0xfffd}, &size), rvpStsSizeErr);
    EXPECT_EQ(size, -1);
    EXPECT_EQ(rvpiCannyGetSize({0, 3}, nullptr), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiCannyGetSize({4, -1}, &size), rvpStsSizeErr);

    Image<Rvp16s> dx(8, 4), dy(8, 4);
    Image<Rvp8u> dst(8, 4);
    std::vector<uint8_t> buf(4096, kCanary);
    const auto dst0 = dst.raw(), buf0 = buf;
    Rvp16s *x = dx.ptr(), *y = dy.ptr();
    Rvp8u *d = dst.ptr(), *b = buf.data();
    auto f32 = [](Rvp16s* p) { return reinterpret_cast<Rvp32f*>(p); };
    struct Row { std::function<RvpStatus()> call; RvpStatus want; };
    const Row rows[] = {
        {[&] { return canny<Rvp16s>(nullptr, 16, y, 16, d, 8, {8, 4}, 1, 2, b); }, rvpStsNullPtrErr},
        {[&] { return canny(x, 16, y, 16, nullptr, 8, {8, 4}, 1, 2, b); }, rvpStsNullPtrErr},
        {[&] { return canny(x, 16, y, 16, d, 8, {0, 4}, 1, 2, nullptr); }, rvpStsNullPtrErr},
        {[&] { return canny(x, 1, y, 16, d, 8, {8, -4}, 1, 2, b); }, rvpStsSizeErr},
        {[&] { return canny(x, 14, y, 16, d, 8, {8, 4}, 1, 2, b); }, rvpStsStepErr},
        {[&] { return canny(x, 17, y, 16, d, 7, {8, 4}, 1, 2, b); }, rvpStsStepErr},
        {[&] { return canny(x, 16, y, 17, d, 8, {8, 4}, -1, 2, b); }, rvpStsNotEvenStepErr},
        {[&] { return canny(f32(x), 16, f32(y), 18, d, 4, {4, 4}, 1, 2, b); }, rvpStsNotEvenStepErr},
        {[&] { return canny(x, 16, y, 16, d, 9, {8, 4}, -0.5f, 2, b); }, rvpStsBadArgErr},
        {[&] { return canny(f32(x), 16, f32(y), 16, d, 4, {4, 4}, 3, 2.9f, b); }, rvpStsBadArgErr},
    };
    for (size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(rows[i].call(), rows[i].want) << "row " << i;
        EXPECT_TRUE(dst.raw() == dst0 && buf == buf0) << "row " << i << " wrote";
    }
    // An odd output step is fine; NaN thresholds pass validation.
    EXPECT_EQ(canny(x, 16, y, 16, d, 9, {8, 3}, 1, 2, b), rvpStsNoErr);
    EXPECT_EQ(canny(f32(x), 16, f32(y), 16, d, 8, {4, 4}, NAN, 2, b), rvpStsNoErr);
    EXPECT_EQ(canny(f32(x), 16, f32(y), 16, d, 8, {4, 4}, 1, NAN, b), rvpStsNoErr);
}

}  // namespace
