// Fixed-kernel filters, the Gaussian and the Sobel kernel generator against
// the reference model: every filter and type, both masks, every border code
// with and without the in-memory flags (the region sits inside a larger
// random plane so that flagged sides read real memory), sizes from 1x1 past
// the ring length, and thread counts 1, 2, 3, 8 on images that go to threads.
#include <functional>

#include "reference/ref_filter.h"
#include "support/rvtest.h"

using namespace rvtest;

namespace {

constexpr int kMargin = 6;  // covers the Gaussian of 11 taps

// A region of w x h inside a plane with kMargin samples all around.
template <class T> struct Framed {
    Framed(int w, int h, uint32_t seed) : plane(w + 2 * kMargin, h + 2 * kMargin, 1, 4), w(w), h(h) {
        plane.fill(Random<T>(seed));
    }
    const T* region() { return &plane.at(kMargin, kMargin); }
    ref::Plane<T> view() const {
        return {plane.ptr(), plane.step() / static_cast<int>(sizeof(T)), kMargin, kMargin, w, h, 1};
    }
    Image<T> plane;
    int w, h;
};

// Every form runs as (src, step, dst, step, size, mask 11 * n, border,
// value, buffer); the Scharr and Gaussian forms are adapted to that shape.
template <class S, class D> struct FixedForm {
    using Fn = RvpStatus (*)(const S*, int, D*, int, RvpiSize, int, int, S, Rvp8u*);
    using Query = RvpStatus (*)(RvpiSize, int, int*);
    ref::Fixed kind; Fn fn; Query query;
};

#define FORM(name, T) {ref::Fixed::name, rvpiFilter##name##Border_##T, rvpiFilter##name##GetBufferSize_##T}
#define SCHARR(name, T, S, D)                                                                              \
    {ref::Fixed::name,                                                                                     \
     [](const S* s, int ss, D* d, int ds, RvpiSize r, int, int bt, S bv, Rvp8u* b) {                       \
         return rvpiFilter##name##Border_##T(s, ss, d, ds, r, bt, bv, b);                                  \
     },                                                                                                    \
     [](RvpiSize r, int, int* b) { return rvpiFilter##name##GetBufferSize_##T(r, b); }}
#define FORMS(T, S, D)                                                                                     \
    FORM(SobelHoriz, T), FORM(SobelVert, T), FORM(SobelNegVert, T), FORM(SobelHorizSecond, T),             \
    FORM(SobelVertSecond, T), FORM(SobelCross, T), FORM(Laplacian, T), SCHARR(ScharrHoriz, T, S, D),       \
    SCHARR(ScharrVert, T, S, D)

float sigmaFor(int n) { return 0.6f + static_cast<float>(n) / 4; }

const FixedForm<Rvp8u, Rvp16s> k8u16s[] = {FORMS(8u16s_C1R, Rvp8u, Rvp16s)};
const FixedForm<Rvp8u, Rvp8s> k8u8s[] = {FORMS(8u8s_C1R, Rvp8u, Rvp8s)};
const FixedForm<Rvp32f, Rvp32f> k32f[] = {FORMS(32f_C1R, Rvp32f, Rvp32f), FORM(Lowpass, 32f_C1R)};
const FixedForm<Rvp8u, Rvp8u> kLowpass8u = FORM(Lowpass, 8u_C1R);
const FixedForm<Rvp32f, Rvp32f> kGauss = {
    ref::Fixed::Gauss,
    [](const Rvp32f* s, int ss, Rvp32f* d, int ds, RvpiSize r, int m, int bt, Rvp32f bv, Rvp8u* b) {
        return rvpiFilterGaussBorder_32f_C1R(s, ss, d, ds, r, m / 11, sigmaFor(m / 11), bt, bv, b);
    },
    [](RvpiSize r, int m, int* b) { return rvpiFilterGaussGetBufferSize_32f_C1R(r, m / 11, b); }};

const std::vector<int> kBorders = {0, 1, 2, 3, 4, 6, 0x10 | 1, 0x20 | 3, 0x40 | 2, 0x80 | 4, 0x30 | 0, 0xC0 | 3, 0xF0 | 1};

struct Size { int w, h; };
const std::vector<Size> kSizes = {{1, 1}, {1, 7}, {9, 1}, {2, 2}, {5, 4}, {15, 9}, {16, 17}, {17, 3}, {33, 41}};

std::vector<int> masks(ref::Fixed f) {
    if (f == ref::Fixed::Gauss) return {3, 5, 7, 11};
    if (f == ref::Fixed::ScharrHoriz || f == ref::Fixed::ScharrVert) return {3};
    return {3, 5};
}

template <class S, class D>
void sweep(const FixedForm<S, D>& f, uint32_t seed, const std::vector<Size>& sizes, const std::vector<int>& borders = kBorders) {
    for (int n : masks(f.kind))
        for (const Size sz : sizes)
            for (int bt : borders) {
                SCOPED_TRACE(testing::Message() << "filter " << static_cast<int>(f.kind) << " " << sz.w << "x" << sz.h
                                                << " n" << n << " border 0x" << std::hex << bt << std::dec << " seed " << seed);
                Framed<S> src(sz.w, sz.h, seed);
                std::mt19937 rng(seed++);
                const S bv = std::is_floating_point<S>::value ? static_cast<S>(static_cast<int>(rng() % 200) - 100)
                                                              : static_cast<S>(rng());
                int bytes = 0;
                ASSERT_EQ(f.query({sz.w, sz.h}, 11 * n, &bytes), rvpStsNoErr);
                std::vector<Rvp8u> buf(bytes);
                Image<D> dst(sz.w, sz.h, 1, 8);
                ASSERT_EQ(f.fn(src.region(), src.plane.step(), dst.ptr(), dst.step(), {sz.w, sz.h}, 11 * n, bt, bv, buf.data()),
                          rvpStsNoErr);
                ASSERT_TRUE(dst.guardsIntact());
                const auto want = ref::fixedFilter<S, D>(f.kind, src.view(), n, (bt & 0xF) == 6 ? 0xF0 : bt, bv, sigmaFor(n));
                for (int y = 0; y < sz.h; ++y)
                    ASSERT_TRUE(sameBits(&want[static_cast<size_t>(y) * sz.w], dst.row(y), sizeof(D) * sz.w)) << "row " << y;
            }
}

template <class Forms> void sweepAll(const Forms& forms, uint32_t seed) {
    for (const auto& f : forms) sweep(f, seed += 1000, kSizes);
}

TEST(FixedFilters, MatchReference) {
    for (rvcv::Isa isa : isaLevels()) {
        ScopedIsa scoped(isa);
        sweepAll(k8u16s, 1);
        sweepAll(k8u8s, 2);
        sweepAll(k32f, 3);
        sweep(kLowpass8u, 4, kSizes);
        sweep(kGauss, 5, kSizes, {0, 1, 2, 3, 4, 0x10 | 2, 0x20 | 0, 0x30 | 3});  // no side flags
    }
}

// Images of 300 rows go to a team; band seams read real rows, so every
// thread count gives the reference result.
class FixedThreads : public testing::TestWithParam<int> {};

TEST_P(FixedThreads, SameResultAtEveryThreadCount) {
    ScopedThreads threads(GetParam());
    const std::vector<Size> big{{260, 300}};
    sweep(k8u16s[0], 40, big, {1, 0x40 | 3});
    sweep(k8u16s[6], 45, big, {1, 0x40 | 3});
    sweep(k8u8s[6], 50, big);  // the 8u8s 5x5 Laplacian's ring-dependent pass
    sweep(k32f[0], 60, big);
    sweep(kLowpass8u, 70, big);
    sweep(k8u16s[8], 80, big);
}

INSTANTIATE_TEST_SUITE_P(Threads, FixedThreads, testing::ValuesIn(threadCounts()));

// One thread's part for width 20 (w16 32), height 10, 3x3, at 2 threads,
// plus the row (8u16s) and column (16s) pipeline sizes; SobelHoriz 8u16s
// adds 64 per thread, the others 32.
TEST(FixedFilters, BufferSizes) {
    ScopedThreads threads(2);
    const int rowP = 64 + 13 * 16 + 2 * (36 * 3 + 112), colP = 64 + 13 * 16 + 2 * (20 * 12 + 32);
    const int rowF = 64 + 13 * 16 + 2 * (128 * 3 + 64) + 32, one = 32 * 2 * 21 + 368 + 72;
    int bytes = 0;
    ASSERT_EQ(rvpiFilterSobelHorizGetBufferSize_8u16s_C1R({20, 10}, 33, &bytes), rvpStsNoErr);
    EXPECT_EQ(bytes, 2 * (one + rowP + colP + 64));
    ASSERT_EQ(rvpiFilterScharrVertGetBufferSize_8u16s_C1R({20, 10}, &bytes), rvpStsNoErr);
    EXPECT_EQ(bytes, 2 * (32 * 42 + 376 + rowP + colP + 32));
    ASSERT_EQ(rvpiFilterLaplacianGetBufferSize_8u16s_C1R({20, 10}, 33, &bytes), rvpStsNoErr);
    EXPECT_EQ(bytes, 2 * (32 * 4 * 21 + 576 + 144 + rowP + colP + 32));
    ASSERT_EQ(rvpiFilterSobelCrossGetBufferSize_32f_C1R({20, 10}, 33, &bytes), rvpStsNoErr);
    EXPECT_EQ(bytes, 2 * (32 * 4 * 21 + 368 + 72 + rowF + 32 + 32));
    EXPECT_EQ(rvpiFilterSobelCrossGetBufferSize_32f_C1R({20, 10}, 35, &bytes), rvpStsMaskSizeErr);
    EXPECT_EQ(rvpiFilterSobelCrossGetBufferSize_32f_C1R({0, 10}, 35, &bytes), rvpStsSizeErr);
    EXPECT_EQ(rvpiFilterSobelCrossGetBufferSize_32f_C1R({0, 10}, 35, nullptr), rvpStsNullPtrErr);
}

TEST(FixedFilters, ValidationOrder) {
    Image<Rvp8u> src(8, 4);
    Image<Rvp16s> dst(8, 4);
    std::vector<Rvp8u> buf(1 << 16);
    const Rvp8u* s = src.ptr();
    Rvp16s* d = dst.ptr();
    Rvp8u* b = buf.data();
    const auto* sf = reinterpret_cast<const Rvp32f*>(s);
    auto* df = reinterpret_cast<Rvp32f*>(d);
    auto* d8 = reinterpret_cast<Rvp8s*>(d);
    const auto before = dst.raw();
    struct Row { const char* what; std::function<RvpStatus()> call; RvpStatus want; };
    const Row rows[] = {
        {"null src", [&] { return rvpiFilterSobelHorizBorder_8u16s_C1R(nullptr, 8, d, 16, {8, 4}, 35, 9, 0, b); }, rvpStsNullPtrErr},
        {"size", [&] { return rvpiFilterSobelHorizBorder_8u16s_C1R(s, 1, d, 16, {8, 0}, 35, 9, 0, b); }, rvpStsSizeErr},
        {"src step", [&] { return rvpiFilterSobelHorizBorder_8u16s_C1R(s, 7, d, 17, {8, 4}, 35, 9, 0, b); }, rvpStsStepErr},
        {"8u16s tests only dst evenness", [&] { return rvpiFilterSobelHorizBorder_8u16s_C1R(s, 9, d, 17, {8, 4}, 35, 9, 0, b); }, rvpStsNotEvenStepErr},
        {"8u8s has no evenness test", [&] { return rvpiFilterSobelHorizBorder_8u8s_C1R(s, 9, d8, 9, {8, 4}, 35, 9, 0, b); }, rvpStsBadArgErr},
        {"32f src evenness", [&] { return rvpiFilterSobelVertBorder_32f_C1R(sf, 10, df, 8, {2, 4}, 35, 9, 0, b); }, rvpStsNotEvenStepErr},
        {"border 5", [&] { return rvpiFilterSobelHorizBorder_8u16s_C1R(s, 8, d, 16, {8, 4}, 35, 5, 0, b); }, rvpStsBadArgErr},
        {"stray bit alone", [&] { return rvpiFilterSobelHorizBorder_8u16s_C1R(s, 8, d, 16, {8, 4}, 33, 0x100, 0, b); }, rvpStsBadArgErr},
        {"mask after border", [&] { return rvpiFilterSobelHorizBorder_8u16s_C1R(s, 8, d, 16, {8, 4}, 35, 1, 0, b); }, rvpStsMaskSizeErr},
        {"stray bit beside a flag passes to mask", [&] { return rvpiFilterLaplacianBorder_8u16s_C1R(s, 8, d, 16, {8, 4}, 34, 0x110, 0, b); }, rvpStsMaskSizeErr},
        {"lowpass mask", [&] { return rvpiFilterLowpassBorder_8u_C1R(s, 8, reinterpret_cast<Rvp8u*>(d), 9, {8, 4}, 3, 1, 0, b); }, rvpStsMaskSizeErr},
        {"gauss height first", [&] { return rvpiFilterGaussBorder_32f_C1R(sf, 0, df, 8, {0, 0}, 2, 1.0f, 9, 0, b); }, rvpStsSizeErr},
        {"gauss step in samples", [&] { return rvpiFilterGaussBorder_32f_C1R(sf, 1, df, 8, {2, 4}, 2, 1.0f, 9, 0, b); }, rvpStsStepErr},
        {"gauss kernel 2", [&] { return rvpiFilterGaussBorder_32f_C1R(sf, 8, df, 8, {2, 4}, 2, 1.0f, 1, 0, b); }, rvpStsBadArgErr},
        {"gauss flag 0x40", [&] { return rvpiFilterGaussBorder_32f_C1R(sf, 8, df, 8, {2, 4}, 3, 1.0f, 0x41, 0, b); }, rvpStsBadArgErr},
        // The weak step test lets a 2-byte step through; the row pipeline refuses it.
        {"gauss pipeline step", [&] { return rvpiFilterGaussBorder_32f_C1R(sf, 2, df, 8, {2, 4}, 3, 1.0f, 0x31, 0, b); }, rvpStsStepErr},
        {"sobel kernel even", [&] { return rvpiGenSobelKernel_16s(d, 4, 0, 1); }, rvpStsSizeErr},
        {"sobel kernel dx", [&] { return rvpiGenSobelKernel_32f(df, 3, 3, 1); }, rvpStsSizeErr},
    };
    for (const Row& r : rows) {
        EXPECT_EQ(r.call(), r.want) << r.what;
        EXPECT_EQ(dst.raw(), before) << r.what << " wrote";
    }
    int bytes = 0;
    EXPECT_EQ(rvpiFilterGaussGetBufferSize_32f_C1R({8, 4}, 4, &bytes), rvpStsBadArgErr);
}

// Sigma 0 takes the size's default width rather than giving NaN.
TEST(Gauss, ZeroSigmaTakesTheDefaultWidth) {
    Framed<float> src(9, 7, 5);
    Image<float> a(9, 7), b(9, 7);
    int bytes = 0;
    ASSERT_EQ(rvpiFilterGaussGetBufferSize_32f_C1R({9, 7}, 5, &bytes), rvpStsNoErr);
    std::vector<Rvp8u> buf(bytes);
    ASSERT_EQ(rvpiFilterGaussBorder_32f_C1R(src.region(), src.plane.step(), a.ptr(), a.step(), {9, 7}, 5, 0.0f, 1, 0,
                                            buf.data()), rvpStsNoErr);
    ASSERT_EQ(rvpiFilterGaussBorder_32f_C1R(src.region(), src.plane.step(), b.ptr(), b.step(), {9, 7}, 5, 1.1f, 1, 0,
                                            buf.data()), rvpStsNoErr);
    EXPECT_EQ(a.bytes(), b.bytes());
}

TEST(GenSobelKernel, BinomialAndDifferences) {
    struct Case { int k, dx, sign; std::vector<int> want; };
    const Case cases[] = {{3, 0, 1, {1, 2, 1}},          {3, 1, 1, {-1, 0, 1}},     {3, 2, 1, {1, -2, 1}},
                          {5, 1, 1, {-1, -2, 0, 2, 1}},  {5, 0, 1, {1, 4, 6, 4, 1}}, {5, 2, -1, {-1, 0, 2, 0, -1}},
                          {1, 0, 1, {1}},                {7, 3, 1, {-1, 0, 3, 0, -3, 0, 1}}};
    for (const Case& c : cases) {
        Rvp16s a[8];
        Rvp32f f[8];
        ASSERT_EQ(rvpiGenSobelKernel_16s(a, c.k, c.dx, c.sign), rvpStsNoErr);
        ASSERT_EQ(rvpiGenSobelKernel_32f(f, c.k, c.dx, c.sign), rvpStsNoErr);
        for (int i = 0; i < c.k; ++i) {
            EXPECT_EQ(a[i], c.want[i]) << c.k << " " << c.dx << " at " << i;
            EXPECT_EQ(f[i], static_cast<float>(c.want[i]));
        }
    }
}

}  // namespace
