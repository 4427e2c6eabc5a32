// Rectangular min/max filters against the reference: every layout, both
// extrema, every dispatch level, masks from 1 to past the 63-column block
// of the running extremum, anchors at both ends, masks larger than the
// image, odd widths and padded steps; the shortened masks of the small
// tables; buffer sizes and the validation order.
#include <cfloat>

#include "../../src/morphology/rvcvminmax.h"
#include "morph_support.h"
#include "reference/ref_morphology.h"
#include "support/rvtest.h"

using namespace rvtest;
using morphtest::planeOf;

namespace {

template <class T> using FilterFn = RvpStatus (*)(const T*, int, T*, int, RvpiSize, RvpiSize, RvpiPoint, Rvp8u*);
using SizeFn = RvpStatus (*)(int, RvpiSize, int*);

template <class T> struct Form {
    FilterFn<T> fn;
    SizeFn size;
    int channels;
    bool isMax;
    bool smallTable;
};

const Form<Rvp8u> k8u[] = {
    {rvpiFilterMinBorderReplicate_8u_C1R, rvpiFilterMinGetBufferSize_8u_C1R, 1, false, false},
    {rvpiFilterMaxBorderReplicate_8u_C1R, rvpiFilterMaxGetBufferSize_8u_C1R, 1, true, false},
    {rvpiFilterMinBorderReplicate_8u_C3R, rvpiFilterMinGetBufferSize_8u_C3R, 3, false, false},
    {rvpiFilterMaxBorderReplicate_8u_C3R, rvpiFilterMaxGetBufferSize_8u_C3R, 3, true, false},
    {rvpiFilterMinBorderReplicate_8u_C4R, rvpiFilterMinGetBufferSize_8u_C4R, 4, false, true},
    {rvpiFilterMaxBorderReplicate_8u_C4R, rvpiFilterMaxGetBufferSize_8u_C4R, 4, true, true},
};
const Form<Rvp32f> k32f[] = {
    {rvpiFilterMinBorderReplicate_32f_C1R, rvpiFilterMinGetBufferSize_32f_C1R, 1, false, true},
    {rvpiFilterMaxBorderReplicate_32f_C1R, rvpiFilterMaxGetBufferSize_32f_C1R, 1, true, true},
    {rvpiFilterMinBorderReplicate_32f_C3R, rvpiFilterMinGetBufferSize_32f_C3R, 3, false, false},
    {rvpiFilterMaxBorderReplicate_32f_C3R, rvpiFilterMaxGetBufferSize_32f_C3R, 3, true, false},
    {rvpiFilterMinBorderReplicate_32f_C4R, rvpiFilterMinGetBufferSize_32f_C4R, 4, false, false},
    {rvpiFilterMaxBorderReplicate_32f_C4R, rvpiFilterMaxGetBufferSize_32f_C4R, 4, true, false},
};

// Runs one filter on a random image and compares it with the reference.
template <class T>
void runCase(const Form<T>& f, int w, int h, int pad, int W, int H, int ax, int ay, uint32_t seed) {
    SCOPED_TRACE(testing::Message() << "C" << f.channels << (f.isMax ? " max " : " min ") << w << "x" << h
                                    << " mask " << W << "x" << H << " anchor " << ax << "," << ay << " seed " << seed);
    Image<T> src(w, h, f.channels, pad), dst(w, h, f.channels, pad + 4 * (seed % 3));
    src.fill(Random<T>(seed));
    int bytes = 0;
    ASSERT_EQ(f.size(w, RvpiSize{W, H}, &bytes), rvpStsNoErr);
    std::vector<Rvp8u> buffer(static_cast<size_t>(bytes) + 1);
    ASSERT_EQ(f.fn(src.ptr(), src.step(), dst.ptr(), dst.step(), {w, h}, {W, H}, {ax, ay}, buffer.data() + 1),
              rvpStsNoErr);
    ASSERT_TRUE(dst.guardsIntact());
    const ref::Plane<T> want = ref::minMaxFilter(planeOf(src, f.channels), W, H, ax, ay, f.isMax, f.smallTable);
    morphtest::expectSame(dst, want);
}

struct Geometry { int w, h, pad; };
// 1111 x 3: rows longer than the stack blocks the row kernels work in;
// 600 x 20: bands of rows reduced together, several passes along each row.
const Geometry kSizes[] = {{1, 1, 0}, {2, 3, 4}, {7, 5, 0}, {16, 9, 8}, {31, 17, 4}, {40, 40, 0},
                           {65, 12, 12}, {129, 70, 0}, {70, 129, 20}, {1111, 3, 4}, {600, 20, 4}};
const int kLengths[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 20, 21, 41, 63, 64, 70, 131};

template <class T>
void sweep(const Form<T>& f, uint32_t seed) {
    std::mt19937 rng(seed);
    for (const Geometry& g : kSizes) {
        for (int W : kLengths) {
            const int H = kLengths[rng() % (sizeof kLengths / sizeof *kLengths)];
            const int ax = std::vector<int>{0, W / 2, W - 1}[rng() % 3];
            const int ay = std::vector<int>{0, H / 2, H - 1}[rng() % 3];
            runCase(f, g.w, g.h, g.pad, W, H, ax, ay, rng());
            if (testing::Test::HasFatalFailure()) return;
        }
    }
}

class MinMaxFilterIsa : public testing::TestWithParam<rvcv::Isa> {};

TEST_P(MinMaxFilterIsa, MatchesReference) {
    ScopedIsa isa(GetParam());
    uint32_t seed = 100;
    for (const auto& f : k8u) sweep(f, ++seed);
    for (const auto& f : k32f) sweep(f, ++seed + 100);
}

template <class T>
void checkRowKernels(rvcv::MinMaxRowFn const (&fns)[2][2]) {
    std::mt19937 rng(7);
    for (int w : {1, 2, 5, 33, 200, 601})
        for (int W : {3, 9, 17, 64, 150})
            for (int op = 0; op < 2; ++op) {
                const int a = static_cast<int>(rng() % W);
                std::vector<T> src(w), dst(w);
                for (T& v : src) v = static_cast<T>(rng() % 60000);
                fns[op][W == 3 ? 0 : 1](src.data(), dst.data(), w, W, a);
                for (int x = 0; x < w; ++x) {
                    T want = src[std::min(std::max(x - a, 0), w - 1)];
                    for (int i = 1; i < W; ++i) want = ref::ext(op == 1, want, src[std::min(std::max(x - a + i, 0), w - 1)]);
                    ASSERT_EQ(dst[x], want) << "w " << w << " W " << W << " anchor " << a << " x " << x;
                }
            }
}

TEST_P(MinMaxFilterIsa, SixteenBitAndDoubleRows) {
    ScopedIsa isa(GetParam());
    checkRowKernels<Rvp16u>(rvcv::minMaxKernels().row16u);
    checkRowKernels<Rvp64f>(rvcv::minMaxKernels().row64f);
}

INSTANTIATE_TEST_SUITE_P(Levels, MinMaxFilterIsa, testing::ValuesIn(isaLevels()),
                         [](const auto& info) { return std::string(rvcv::isaName(info.param)); });

// The small tables shorten masks on purpose; a filter that kept all
// columns would give other results.
TEST(MinMaxFilter, SmallTableShortensMasks) {
    // 32f C1, 40 x 40: width 20 becomes 15 columns, width 21 is too wide for
    // the fixed kernels and stays exact.
    Image<Rvp32f> src(40, 40), dst(40, 40);
    for (int y = 0; y < 40; ++y)
        for (int x = 0; x < 40; ++x) src.at(x, y) = static_cast<float>(x);
    std::vector<Rvp8u> buf(200000);
    ASSERT_EQ(rvpiFilterMaxBorderReplicate_32f_C1R(src.ptr(), src.step(), dst.ptr(), dst.step(), {40, 40}, {20, 1},
                                                   {0, 0}, buf.data()), rvpStsNoErr);
    EXPECT_EQ(dst.at(0, 5), 14.0f);
    ASSERT_EQ(rvpiFilterMaxBorderReplicate_32f_C1R(src.ptr(), src.step(), dst.ptr(), dst.step(), {40, 40}, {21, 1},
                                                   {0, 0}, buf.data()), rvpStsNoErr);
    EXPECT_EQ(dst.at(0, 5), 20.0f);
    // 8u C4, width 8 with the anchor on its last column: the first output is
    // the neutral value, later ones cover x - 7 .. x - 1.
    Image<Rvp8u> s4(20, 1, 4), d4(20, 1, 4);
    for (int x = 0; x < 20; ++x) s4.at(x, 0, x % 4) = static_cast<Rvp8u>(100 + x);
    ASSERT_EQ(rvpiFilterMinBorderReplicate_8u_C4R(s4.ptr(), s4.step(), d4.ptr(), d4.step(), {20, 1}, {8, 1}, {7, 0},
                                                  buf.data()), rvpStsNoErr);
    EXPECT_EQ(d4.at(0, 0, 3), 255);
    EXPECT_EQ(d4.at(10, 0, 2), 106);
}

TEST(MinMaxFilter, BufferSize) {
    int n = 0;
    EXPECT_EQ(rvpiFilterMinGetBufferSize_8u_C1R(100, {5, 3}, &n), rvpStsNoErr);
    EXPECT_EQ(n, 2 * 3 * (100 + 32) + 32 + 32 * 3);
    EXPECT_EQ(rvpiFilterMaxGetBufferSize_32f_C3R(100, {1, 7}, &n), rvpStsNoErr);
    EXPECT_EQ(n, 2 * 7 * (1200 + 32) + 32 + 32 * 7);
    EXPECT_EQ(rvpiFilterMaxGetBufferSize_8u_C4R(9, {99, 2}, &n), rvpStsNoErr);
    EXPECT_EQ(n, 2 * 2 * (36 + 32) + 32 + 64);
    EXPECT_EQ(rvpiFilterMinGetBufferSize_32f_C1R(0, {0, 0}, nullptr), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiFilterMinGetBufferSize_32f_C1R(0, {0, 0}, &n), rvpStsSizeErr);
    EXPECT_EQ(rvpiFilterMinGetBufferSize_32f_C1R(1, {0, 1}, &n), rvpStsMaskSizeErr);
    EXPECT_EQ(rvpiFilterMinGetBufferSize_32f_C1R(1, {1, 0}, &n), rvpStsMaskSizeErr);
}

TEST(MinMaxFilter, ValidationOrder) {
    Image<Rvp32f> s(8, 4), d(8, 4);
    s.fill(Random<Rvp32f>(1));
    std::vector<Rvp8u> buf(4096);
    const auto before = d.raw();
    const Rvp32f* ps = s.ptr();
    Rvp32f* pd = d.ptr();
    Rvp8u* pb = buf.data();
    auto* const f = rvpiFilterMinBorderReplicate_32f_C1R;
    const struct { const char* what; RvpStatus got, want; } rows[] = {
        {"null src", f(nullptr, 32, pd, 32, {8, 4}, {3, 3}, {1, 1}, pb), rvpStsNullPtrErr},
        {"null dst", f(ps, 32, nullptr, 32, {8, 4}, {3, 3}, {1, 1}, pb), rvpStsNullPtrErr},
        {"null buffer", f(ps, 32, pd, 32, {0, 4}, {3, 3}, {1, 1}, nullptr), rvpStsNullPtrErr},
        {"size", f(ps, 32, pd, 32, {0, 4}, {0, 3}, {1, 1}, pb), rvpStsSizeErr},
        {"mask before anchor", f(ps, 2, pd, 32, {8, 4}, {3, 0}, {9, 1}, pb), rvpStsMaskSizeErr},
        {"anchor x", f(ps, 2, pd, 32, {8, 4}, {3, 3}, {3, 1}, pb), rvpStsAnchorErr},
        {"src step", f(ps, 28, pd, 30, {8, 4}, {3, 3}, {1, 1}, pb), rvpStsStepErr},
        {"src odd before dst short", f(ps, 34, pd, 28, {8, 4}, {3, 3}, {1, 1}, pb), rvpStsNotEvenStepErr},
        {"dst step", f(ps, 36, pd, 28, {8, 4}, {3, 3}, {1, 1}, pb), rvpStsStepErr},
        {"dst odd", f(ps, 32, pd, 34, {8, 4}, {3, 3}, {1, 1}, pb), rvpStsNotEvenStepErr},
    };
    for (const auto& r : rows) EXPECT_EQ(r.got, r.want) << r.what;
    EXPECT_EQ(d.raw(), before) << "a refused call wrote the destination";
    Image<Rvp8u> s8(5, 2, 1, 1), d8(5, 2, 1, 1);
    EXPECT_EQ(rvpiFilterMaxBorderReplicate_8u_C1R(s8.ptr(), 5, d8.ptr(), 4, {5, 2}, {1, 1}, {0, 0}, pb), rvpStsStepErr);
    EXPECT_EQ(rvpiFilterMaxBorderReplicate_8u_C1R(s8.ptr(), 5, d8.ptr(), 5, {5, 2}, {1, 1}, {0, 0}, pb), rvpStsNoErr);
}

}  // namespace
