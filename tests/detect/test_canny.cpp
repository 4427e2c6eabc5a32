// Canny detector against the reference model: random derivatives rich in
// ties and sector-boundary slopes, derivatives of a generated scene, both
// stack widths (tall and wide regions), the scratch buffer guarded on both
// sides, hand-checkable tie and threshold cases, and validation order.
#include <cmath>
#include <functional>

#include "reference/ref_canny.h"
#include "support/rvtest.h"

using namespace rvtest;

namespace {

template <class T> using CannyFn = RvpStatus (*)(const T*, int, const T*, int, Rvp8u*, int, RvpiSize, Rvp32f, Rvp32f, Rvp8u*);
CannyFn<Rvp16s> api(Rvp16s) { return rvpiCanny_16s8u_C1R; }
CannyFn<Rvp32f> api(Rvp32f) { return rvpiCanny_32f8u_C1R; }

// Runs the detector with its buffer at a chosen misalignment between canary
// bytes, on an output pre-filled with junk; checks every guard.
template <class T>
std::vector<uint8_t> run(const Image<T>& dx, const Image<T>& dy, float low, float high, int shift = 0, int pad = 0) {
    int size = 0;
    EXPECT_EQ(rvpiCannyGetSize(dx.size(), &size), rvpStsNoErr);
    std::vector<uint8_t> buf(static_cast<size_t>(size) + shift + kGuard, kCanary);
    Image<Rvp8u> dst(dx.width(), dx.height(), 1, pad);
    dst.fill([] { return Rvp8u{0x5A}; });
    EXPECT_EQ(api(T{})(dx.ptr(), dx.step(), dy.ptr(), dy.step(), dst.ptr(), dst.step(), dx.size(), low, high,
                       buf.data() + shift), rvpStsNoErr);
    EXPECT_TRUE(dst.guardsIntact());
    for (int i = 0; i < shift; ++i) EXPECT_EQ(buf[i], kCanary) << "before the buffer";
    for (int i = 0; i < kGuard; ++i) EXPECT_EQ(buf[buf.size() - 1 - i], kCanary) << "past the buffer";
    return dst.bytes();
}

template <class T>
std::vector<uint8_t> reference(const Image<T>& dx, const Image<T>& dy, float low, float high) {
    return ref::canny<T>(dx.width(), dx.height(), [&](int x, int y) { return dx.at(x, y); },
                         [&](int x, int y) { return dy.at(x, y); }, low, high);
}

// Derivative values: small (many ties), full range, or a pool of Pell
// numbers, whose ratios sit on either side of tan 22.5 and tan 67.5, plus
// extremes and (floats) signed zeros, infinities and NaN.
template <class T> struct Deriv {
    explicit Deriv(uint32_t seed, int kind) : rng(seed), kind(kind) {}
    std::mt19937 rng;
    int kind;
    T operator()() {
        static const int pell[] = {0, 1, 2, 5, 12, 29, 70, 169, 408, 985, 2378, 5741, 13860, 32767};
        const int sign = rng() & 1 ? -1 : 1;
        if (kind == 0) return static_cast<T>(static_cast<int>(rng() % 7) - 3);
        if (kind == 1) {
            if constexpr (std::is_same<T, Rvp16s>::value) return static_cast<T>(rng());
            else return std::uniform_real_distribution<float>(-3e4f, 3e4f)(rng);
        }
        const unsigned r = rng() % 20;
        if constexpr (std::is_same<T, Rvp32f>::value) {
            if (r == 17) return sign * 0.0f;
            if (r == 18) return sign * INFINITY;
            if (r == 19) return rng() % 4 == 0 ? NAN : 1.5f;
        } else if (r >= 17) {
            return r == 17 ? Rvp16s{-32768} : static_cast<T>(sign * static_cast<int>(rng() % 40));
        }
        return static_cast<T>(sign * pell[r % 14]);
    }
};

struct Thresholds { float low, high; };

template <class T> void compareRandom(uint32_t seed) {
    const int widths[] = {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 33, 70};
    const Thresholds ths[] = {{0, 0}, {2, 2}, {2.5f, 4}, {1, 6}, {500, 3000}, {30, 20000}, {0, 65535}, {3, NAN}};
    int n = 0;
    for (int w : widths)
        for (int h = 1; h <= 9; h += (h < 4 ? 1 : 4)) {
            const int kind = n % 3, pad = (n % 4) * 2 * static_cast<int>(sizeof(T));
            const Thresholds th = ths[n % 8];
            ++n;
            SCOPED_TRACE(testing::Message() << w << "x" << h << " kind " << kind << " thresholds " << th.low << ","
                                            << th.high << " seed " << seed);
            Image<T> dx(w, h, 1, pad), dy(w, h, 1, pad + 2 * static_cast<int>(sizeof(T)));
            Deriv<T> gen(seed + n, kind);
            dx.fill(std::ref(gen));
            dy.fill(std::ref(gen));
            ASSERT_EQ(run(dx, dy, th.low, th.high, n % 32, n % 5), reference(dx, dy, th.low, th.high));
        }
}

// Every dispatch level gives the same bits.
class CannyPaths : public testing::TestWithParam<rvcv::Isa> {
protected:
    ScopedIsa isa_{GetParam()};
};
INSTANTIATE_TEST_SUITE_P(Canny, CannyPaths, testing::ValuesIn(isaLevels()),
                         [](const auto& info) { return std::string(info.param == rvcv::Isa::Avx2 ? "avx2" : "m7"); });

TEST_P(CannyPaths, RandomDerivativesMatchReference) {
    for (uint32_t seed : {1u, 2u, 3u}) {
        compareRandom<Rvp16s>(seed);
        compareRandom<Rvp32f>(seed * 7);
    }
}

// A generated scene: shaded background, discs, boxes and mild noise, then
// 3x3 Sobel derivatives with replicated border (the float form of a smoothed
// copy, so its derivatives carry fractions).
template <class T> void sceneDerivatives(int w, int h, uint32_t seed, Image<T>& dx, Image<T>& dy) {
    std::mt19937 rng(seed);
    std::vector<float> img(static_cast<size_t>(w) * h);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) img[static_cast<size_t>(y) * w + x] = 40.0f + 100.0f * x / w + 30.0f * y / h;
    for (int k = 0; k < 12; ++k) {
        const int cx = rng() % w, cy = rng() % h, r = 5 + rng() % (w / 6), v = rng() % 256, box = k % 3 == 0;
        for (int y = std::max(0, cy - r); y < std::min(h, cy + r); ++y)
            for (int x = std::max(0, cx - r); x < std::min(w, cx + r); ++x)
                if (box || (x - cx) * (x - cx) + (y - cy) * (y - cy) < r * r) img[static_cast<size_t>(y) * w + x] = v;
    }
    for (float& p : img) p = std::floor(p) + static_cast<float>(rng() % 7) - 3.0f;
    auto I = [&](int x, int y) {
        x = std::clamp(x, 0, w - 1), y = std::clamp(y, 0, h - 1);
        if (std::is_same<T, Rvp16s>::value) return img[static_cast<size_t>(y) * w + x];
        float s = 0;  // 3x3 box in float
        for (int j = -1; j <= 1; ++j)
            for (int i = -1; i <= 1; ++i)
                s += img[static_cast<size_t>(std::clamp(y + j, 0, h - 1)) * w + std::clamp(x + i, 0, w - 1)];
        return s / 9.0f;
    };
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            dx.at(x, y) = static_cast<T>(I(x + 1, y - 1) + 2 * I(x + 1, y) + I(x + 1, y + 1) - I(x - 1, y - 1) -
                                         2 * I(x - 1, y) - I(x - 1, y + 1));
            dy.at(x, y) = static_cast<T>(I(x - 1, y + 1) + 2 * I(x, y + 1) + I(x + 1, y + 1) - I(x - 1, y - 1) -
                                         2 * I(x, y - 1) - I(x + 1, y - 1));
        }
}

template <class T> void compareScene(int w, int h, uint32_t seed, Thresholds th) {
    SCOPED_TRACE(testing::Message() << w << "x" << h << " seed " << seed << " thresholds " << th.low << "," << th.high);
    Image<T> dx(w, h, 1, 8), dy(w, h);
    sceneDerivatives(w, h, seed, dx, dy);
    const std::vector<uint8_t> got = run(dx, dy, th.low, th.high, 5, 3);
    EXPECT_EQ(got, reference(dx, dy, th.low, th.high));
    EXPECT_GT(std::count(got.begin(), got.end(), 0xFF), w);  // the scene does have edges
}

TEST_P(CannyPaths, SceneDerivativesMatchReference) {
    compareScene<Rvp16s>(640, 480, 11, {60, 180});
    compareScene<Rvp16s>(333, 201, 12, {20, 60});
    compareScene<Rvp32f>(640, 480, 13, {60, 180});
    compareScene<Rvp32f>(333, 201, 14, {12.5f, 40});
}

// Sides of 0xfffd or more take 32-bit stack entries and the larger buffer.
// A one-column image of horizontal-sector pixels makes every pixel a seed,
// so the stack fills to one entry a pixel: it must fit the reported size.
TEST_P(CannyPaths, WideStackBranch) {
    int small = 0, large = 0;
    ASSERT_EQ(rvpiCannyGetSize({1, 0xfffc}, &small), rvpStsNoErr);
    ASSERT_EQ(rvpiCannyGetSize({1, 0xfffd}, &large), rvpStsNoErr);
    EXPECT_EQ(small, 3 * 0xfffe * 5 + 160 + 16);
    EXPECT_EQ(large, 3 * 0xffff * 9 + 160 + 16);
    for (int h : {0xfffc, 0xfffd}) {
        Image<Rvp16s> dx(1, h), dy(1, h);
        dx.fill([] { return Rvp16s{-9}; });
        dy.fill([] { return Rvp16s{2}; });
        const std::vector<uint8_t> got = run(dx, dy, 1, 5, 7);
        EXPECT_EQ(std::count(got.begin(), got.end(), 0xFF), h);
    }
    const RvpiSize shapes[] = {{3, 0xfffd}, {0xfffd, 2}, {0x10003, 1}};
    for (RvpiSize s : shapes) {
        SCOPED_TRACE(testing::Message() << s.width << "x" << s.height);
        Image<Rvp16s> dx(s.width, s.height), dy(s.width, s.height);
        Image<Rvp32f> fx(s.width, s.height), fy(s.width, s.height);
        Deriv<Rvp16s> gen(s.width + s.height, 2);
        dx.fill(std::ref(gen));
        dy.fill(std::ref(gen));
        for (int y = 0; y < s.height; ++y)
            for (int x = 0; x < s.width; ++x) fx.at(x, y) = dx.at(x, y) * 0.25f, fy.at(x, y) = dy.at(x, y) * 0.25f;
        EXPECT_EQ(run(dx, dy, 20, 200, 3), reference(dx, dy, 20, 200));
        EXPECT_EQ(run(fx, fy, 5, 50, 9), reference(fx, fy, 5, 50));
    }
}

// Slopes at the sector boundaries. Each test pixel sits in an odd column of
// the middle row with zeros beside, above and below it and large magnitudes
// at its four corners, so it survives exactly when its slope is taken as an
// axis sector: every boundary decision shows in the output.
template <class T> void compareBoundaries(const std::vector<std::pair<T, T>>& pairs) {
    const int w = 2 * static_cast<int>(pairs.size()) + 1;
    Image<T> dx(w, 3), dy(w, 3);
    for (int x = 0; x < w; ++x)
        for (int y = 0; y < 3; ++y) {
            const bool corner = y != 1 && x % 2 == 0;
            dx.at(x, y) = static_cast<T>(corner ? 30000 : 0);
            dy.at(x, y) = static_cast<T>(corner ? 30000 : 0);
        }
    for (size_t i = 0; i < pairs.size(); ++i) {
        const bool flip = i % 3 == 1;
        dx.at(2 * static_cast<int>(i) + 1, 1) = flip ? -pairs[i].first : pairs[i].first;
        dy.at(2 * static_cast<int>(i) + 1, 1) = i % 2 ? pairs[i].second : -pairs[i].second;
    }
    const std::vector<uint8_t> got = run(dx, dy, 0, 0);
    EXPECT_EQ(got, reference(dx, dy, 0, 0));
    int kept = 0;
    for (int x = 1; x < w; x += 2) kept += got[static_cast<size_t>(w) + x] != 0;
    EXPECT_GT(kept, 0);
    EXPECT_LT(kept, static_cast<int>(pairs.size()));
}

TEST_P(CannyPaths, SectorBoundaries) {
    std::vector<std::pair<Rvp16s, Rvp16s>> ints;
    std::vector<std::pair<Rvp32f, Rvp32f>> floats;
    for (int a = 1; a <= 32767; a += (a < 200 ? 1 : 37)) {
        for (const double k : {0.41421356237309503, 2.4142135623730949}) {
            const int b = static_cast<int>(k * a);
            for (int c = b; c <= b + 1 && c <= 32767; ++c) ints.push_back({static_cast<Rvp16s>(a), static_cast<Rvp16s>(c)});
        }
        const float fa = static_cast<float>(a) * 0.37f;
        for (const float k : {0.41421357f, 2.4142137f}) {
            const float b = k * fa;
            for (const float c : {std::nextafter(b, 0.0f), b, std::nextafter(b, INFINITY)}) floats.push_back({fa, c});
        }
    }
    for (const float c : {0.4142135f, 0.41421357f, 0.4142136f, 2.4142136f, 2.4142137f, 2.4142139f})
        floats.push_back({1.0f, c});
    compareBoundaries(ints);
    compareBoundaries(floats);
}

// Small cases a reader can check by hand. Each image is one row unless said
// otherwise; with dy = 0 pixels are in the horizontal sector, with dx = 0 in
// the vertical one (whose neighbours above and below are the zero frame).
template <class T> std::vector<uint8_t> row(std::vector<T> dx, std::vector<T> dy, float low, float high, int h = 1) {
    const int w = static_cast<int>(dx.size()) / h;
    Image<T> ix(w, h), iy(w, h);
    for (int i = 0; i < w * h; ++i) ix.at(i % w, i / w) = dx[i], iy.at(i % w, i / w) = dy[i];
    return run(ix, iy, low, high);
}
using V = std::vector<uint8_t>;

TEST_P(CannyPaths, TiesAndThresholds) {
    // A lone pixel above high is an edge; exactly high is not.
    EXPECT_EQ(row<Rvp16s>({3}, {-4}, 1, 6), V{0xFF});
    EXPECT_EQ(row<Rvp32f>({3}, {-4}, 1, 7), V{0});
    // Equal neighbours along the gradient: the left one passes, the right not.
    EXPECT_EQ(row<Rvp16s>({0, 5, 5, 0}, {0, 0, 0, 0}, 1, 2), (V{0, 0xFF, 0, 0}));
    // The same down a column: the upper one passes.
    EXPECT_EQ(row<Rvp32f>({0, 0, 0, 0}, {0, 5, 5, 0}, 1, 2, 4), (V{0, 0xFF, 0, 0}));
    // Diagonal equal maxima, same and opposite signs: neither passes.
    EXPECT_EQ(row<Rvp16s>({5, 0, 0, 5}, {5, 0, 0, 5}, 1, 2, 2), (V{0, 0, 0, 0}));
    EXPECT_EQ(row<Rvp16s>({0, 5, 5, 0}, {0, -5, -5, 0}, 1, 2, 2), (V{0, 0, 0, 0}));
    // A candidate at exactly high is reached from a seed beside it.
    EXPECT_EQ(row<Rvp32f>({0, 0, 0}, {9, 6, 6}, 1, 6), (V{0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(row<Rvp32f>({0, 0, 0}, {6, 0, 6}, 1, 6), (V{0, 0, 0}));
    // Magnitude exactly low: kept by the float form, dropped by the integer
    // form, whose thresholds are truncated (10.5 acts as 10).
    EXPECT_EQ(row<Rvp32f>({0, 0, 0}, {20, 11, 10}, 10, 15), (V{0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(row<Rvp16s>({0, 0, 0}, {20, 11, 10}, 10, 15), (V{0xFF, 0xFF, 0}));
    EXPECT_EQ(row<Rvp16s>({0, 0, 0}, {20, 11, 10}, 10.5f, 15), (V{0xFF, 0xFF, 0}));
    EXPECT_EQ(row<Rvp16s>({0, 0, 0}, {20, 15, 11}, 10.5f, 15.9f), (V{0xFF, 0xFF, 0xFF}));
    // Both derivatives -32768: whole groups of eight saturate at 65535, the
    // leftover columns reach 65536, which alone exceeds high = 65535.
    std::vector<Rvp16s> d(25, 0);
    d[0] = d[12] = d[20] = d[24] = -32768;
    V want(25, 0);
    want[24] = 0xFF;
    EXPECT_EQ(row<Rvp16s>(d, d, 0, 65535), want);
}

TEST(Canny, GetSizeAndValidation) {
    int size = -1;
    EXPECT_EQ(rvpiCannyGetSize({4, 3}, &size), rvpStsNoErr);
    EXPECT_EQ(size, 5 * 6 * 5 + 160 + 64);
    EXPECT_EQ(rvpiCannyGetSize({0xfffc, 0xfffd}, &size), rvpStsNoErr);
    EXPECT_EQ(size, static_cast<int>(0xfffeu * 0xffffu * 9u + 160u + 16u * 0xfffcu));  // wraps, undetected
    EXPECT_EQ(rvpiCannyGetSize({4, 3}, nullptr), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiCannyGetSize({0, 3}, nullptr), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiCannyGetSize({4, -1}, &size), rvpStsSizeErr);

    Image<Rvp16s> dx(8, 4), dy(8, 4);
    Image<Rvp8u> dst(8, 4);
    std::vector<uint8_t> buf(4096, kCanary);
    const auto dst0 = dst.raw();
    const auto buf0 = buf;
    Rvp16s* x = dx.ptr();
    Rvp16s* y = dy.ptr();
    Rvp8u* d = dst.ptr();
    Rvp8u* b = buf.data();
    auto c16 = [&](const Rvp16s* px, int sx, const Rvp16s* py, int sy, Rvp8u* pd, int sd, RvpiSize s, float lo,
                   float hi, Rvp8u* pb) { return rvpiCanny_16s8u_C1R(px, sx, py, sy, pd, sd, s, lo, hi, pb); };
    auto c32 = [&](int sx, int sy, int sd, float lo, float hi) {
        return rvpiCanny_32f8u_C1R(reinterpret_cast<Rvp32f*>(x), sx, reinterpret_cast<Rvp32f*>(y), sy, d, sd, {4, 4}, lo,
                                   hi, b);
    };
    struct Row { const char* what; std::function<RvpStatus()> call; RvpStatus want; };
    const Row rows[] = {
        {"null dx", [&] { return c16(nullptr, 16, y, 16, d, 8, {8, 4}, 1, 2, b); }, rvpStsNullPtrErr},
        {"null dy", [&] { return c16(x, 16, nullptr, 16, d, 8, {8, 4}, 1, 2, b); }, rvpStsNullPtrErr},
        {"null dst", [&] { return c16(x, 16, y, 16, nullptr, 8, {8, 4}, 1, 2, b); }, rvpStsNullPtrErr},
        {"null buffer before size", [&] { return c16(x, 16, y, 16, d, 8, {0, 4}, 1, 2, nullptr); }, rvpStsNullPtrErr},
        {"zero width", [&] { return c16(x, 16, y, 16, d, 8, {0, 4}, 1, 2, b); }, rvpStsSizeErr},
        {"negative height before step", [&] { return c16(x, 1, y, 16, d, 8, {8, -4}, 1, 2, b); }, rvpStsSizeErr},
        {"dx step short", [&] { return c16(x, 14, y, 16, d, 8, {8, 4}, 1, 2, b); }, rvpStsStepErr},
        {"dy step short", [&] { return c16(x, 16, y, 15, d, 8, {8, 4}, 1, 2, b); }, rvpStsStepErr},
        {"dst step short", [&] { return c16(x, 16, y, 16, d, 7, {8, 4}, 1, 2, b); }, rvpStsStepErr},
        {"step before evenness", [&] { return c16(x, 17, y, 16, d, 7, {8, 4}, 1, 2, b); }, rvpStsStepErr},
        {"odd dx step", [&] { return c16(x, 17, y, 16, d, 8, {8, 4}, 1, 2, b); }, rvpStsNotEvenStepErr},
        {"odd dy step before thresholds", [&] { return c16(x, 16, y, 17, d, 8, {8, 4}, -1, 2, b); }, rvpStsNotEvenStepErr},
        {"32f step not x4", [&] { return c32(16, 18, 4, 1, 2); }, rvpStsNotEvenStepErr},
        {"negative low", [&] { return c16(x, 16, y, 16, d, 9, {8, 4}, -0.5f, 2, b); }, rvpStsBadArgErr},
        {"high below low", [&] { return c32(16, 16, 4, 3, 2.9f); }, rvpStsBadArgErr},
    };
    for (const Row& r : rows) {
        EXPECT_EQ(r.call(), r.want) << r.what;
        EXPECT_EQ(dst.raw(), dst0) << r.what << " wrote to the output";
        EXPECT_EQ(buf, buf0) << r.what << " wrote to the buffer";
    }
    // Odd output steps are fine; NaN thresholds pass validation.
    EXPECT_EQ(c16(x, 16, y, 16, d, 9, {8, 3}, 1, 2, b), rvpStsNoErr);
    EXPECT_EQ(c32(16, 16, 8, NAN, 2), rvpStsNoErr);
    EXPECT_EQ(c32(16, 16, 8, 1, NAN), rvpStsNoErr);
}

}  // namespace
