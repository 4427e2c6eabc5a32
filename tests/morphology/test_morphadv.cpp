// Composite morphology against the composition of the reference erosion and
// dilation (bands over many rows, the last band, masks of every kind, all
// layouts and dispatch levels); gray-scale morphology against its reference
// and, with a flat element, against the binary-mask operations; validation.
#include <cmath>

#include "morph_support.h"
#include "reference/ref_morphology.h"
#include "support/rvtest.h"

using namespace rvtest;
using morphtest::planeOf;

namespace {

using Mask = std::vector<unsigned char>;

template <class T> struct AdvLayout {
    int channels;
    bool smallTable;
    RvpStatus (*initAlloc)(int, const Rvp8u*, RvpiSize, RvpiPoint, RvpiMorphAdvState**);
    RvpStatus (*op[5])(const T*, int, T*, int, RvpiSize, int, RvpiMorphAdvState*);
};
#define RVT_ADV(TAG, CH, SMALL)                                                                                     \
    {CH, SMALL, rvpiMorphAdvInitAlloc_##TAG##_C##CH##R,                                                            \
     {rvpiMorphOpenBorder_##TAG##_C##CH##R, rvpiMorphCloseBorder_##TAG##_C##CH##R,                                 \
      rvpiMorphTophatBorder_##TAG##_C##CH##R, rvpiMorphBlackhatBorder_##TAG##_C##CH##R,                            \
      rvpiMorphGradientBorder_##TAG##_C##CH##R}}
const AdvLayout<Rvp8u> k8u[] = {RVT_ADV(8u, 1, false), RVT_ADV(8u, 3, false), RVT_ADV(8u, 4, true)};
const AdvLayout<Rvp32f> k32f[] = {RVT_ADV(32f, 1, true), RVT_ADV(32f, 3, false), RVT_ADV(32f, 4, false)};

// minuend - subtrahend, saturating at 0 for 8u.
template <class T> ref::Plane<T> minus(const ref::Plane<T>& a, const ref::Plane<T>& b) {
    ref::Plane<T> d = a;
    for (size_t i = 0; i < d.v.size(); ++i) {
        if (std::is_integral<T>::value) d.v[i] = static_cast<T>(a.v[i] > b.v[i] ? a.v[i] - b.v[i] : 0);
        else d.v[i] = a.v[i] - b.v[i];
    }
    return d;
}

struct MaskCase { int W, H, ax, ay; Mask m; };

std::vector<MaskCase> masks() {
    std::vector<MaskCase> v{{3, 3, 1, 1, Mask(9, 1)}, {16, 5, 3, 4, Mask(80, 1)}, {1, 1, 0, 0, Mask(1, 1)}};
    MaskCase disk{9, 9, 4, 4, {}}, cross{7, 7, 3, 3, {}}, random{5, 4, 3, 1, {}};
    for (int y = -4; y <= 4; ++y)
        for (int x = -4; x <= 4; ++x) disk.m.push_back(x * x + y * y <= 16);
    for (int y = -3; y <= 3; ++y)
        for (int x = -3; x <= 3; ++x) cross.m.push_back(x == 0 || y == 0);
    for (const char c : std::string("10110011011100100111")) random.m.push_back(c == '1');
    v.insert(v.end(), {disk, cross, random});
    return v;
}

template <class T> void compareAdv(const AdvLayout<T>& L, const MaskCase& mc, int w, int h, uint32_t seed) {
    RvpiMorphAdvState* st = nullptr;
    ASSERT_EQ(L.initAlloc(w + 5, mc.m.data(), {mc.W, mc.H}, {mc.ax, mc.ay}, &st), rvpStsNoErr);
    Image<T> src(w, h, L.channels, 8);
    src.fill(Random<T>(seed));
    const ref::Plane<T> s = planeOf(src, L.channels);
    const auto morph = [&](const ref::Plane<T>& p, bool dilate) {
        return ref::morphology(p, mc.m, mc.W, mc.H, mc.ax, mc.ay, dilate, L.smallTable);
    };
    const ref::Plane<T> er = morph(s, false), di = morph(s, true), open = morph(er, true), close = morph(di, false);
    const ref::Plane<T> want[5] = {open, close, minus(s, open), minus(close, s), minus(di, er)};
    for (int op = 0; op < 5; ++op) {
        SCOPED_TRACE(testing::Message() << "op " << op << " C" << L.channels << " " << w << "x" << h << " mask "
                                        << mc.W << "x" << mc.H << " seed " << seed);
        Image<T> dst(w, h, L.channels, 4);
        ASSERT_EQ(L.op[op](src.ptr(), src.step(), dst.ptr(), dst.step(), {w, h}, rvpBorderRepl, st), rvpStsNoErr);
        ASSERT_TRUE(dst.guardsIntact());
        morphtest::expectSame(dst, want[op]);
    }
    rvpiMorphAdvFree(st);
}

class MorphAdvIsa : public testing::TestWithParam<rvcv::Isa> {};

TEST_P(MorphAdvIsa, CompositesMatchReference) {
    ScopedIsa isa(GetParam());
    uint32_t seed = 1;
    // 150 rows of 130 are five bands and a last one that overlaps.
    const RvpiSize sizes[] = {{1, 1}, {7, 3}, {33, 21}, {130, 150}};
    for (const MaskCase& mc : masks())
        for (const RvpiSize sz : sizes) {
            for (const auto& L : k8u) compareAdv(L, mc, sz.width, sz.height, ++seed);
            for (const auto& L : k32f) compareAdv(L, mc, sz.width, sz.height, ++seed);
        }
}

INSTANTIATE_TEST_SUITE_P(Levels, MorphAdvIsa, testing::ValuesIn(isaLevels()),
                         [](const testing::TestParamInfo<rvcv::Isa>& i) { return std::string(rvcv::isaName(i.param)); });

template <class T, class V>
void compareGray(RvpStatus (*initAlloc)(int, const V*, RvpiSize, RvpiPoint, RvpiMorphGrayState**),
                 RvpStatus (*dil)(const T*, int, T*, int, RvpiSize, int, RvpiMorphGrayState*),
                 RvpStatus (*ero)(const T*, int, T*, int, RvpiSize, int, RvpiMorphGrayState*), const std::vector<V>& v,
                 int W, int H, int ax, int ay, int w, int h, uint32_t seed) {
    RvpiMorphGrayState* st = nullptr;
    ASSERT_EQ(initAlloc(w, v.data(), {W, H}, {ax, ay}, &st), rvpStsNoErr);
    Image<T> src(w, h, 1, 4);
    src.fill(Random<T>(seed));
    for (bool dilate : {false, true}) {
        Image<T> dst(w, h, 1, 8);
        ASSERT_EQ((dilate ? dil : ero)(src.ptr(), src.step(), dst.ptr(), dst.step(), {w, h}, rvpBorderRepl, st),
                  rvpStsNoErr);
        ASSERT_TRUE(dst.guardsIntact());
        SCOPED_TRACE(testing::Message() << W << "x" << H << " " << w << "x" << h << (dilate ? " dilate" : " erode"));
        morphtest::expectSame(dst, ref::grayMorphology<T, V>(planeOf(src, 1), v, W, H, ax, ay, dilate));
    }
    rvpiMorphGrayFree(st);
}

TEST(MorphGray, MatchesReferenceAndFlatEqualsBinary) {
    std::mt19937 rng(7);
    for (const RvpiSize m : {RvpiSize{3, 3}, RvpiSize{5, 2}, RvpiSize{1, 1}}) {
        std::vector<Rvp32s> v8(m.width * m.height);
        std::vector<Rvp32f> v32(v8.size());
        for (auto& x : v8) x = static_cast<int>(rng() % 700) - 350;  // beyond +-255 too
        for (auto& x : v32) x = rng() % 5 == 0 ? -INFINITY : static_cast<float>(rng() % 2001) / 10 - 100;
        v32[0] = 0;
        for (const RvpiSize sz : {RvpiSize{1, 1}, RvpiSize{6, 4}, RvpiSize{45, 31}}) {
            compareGray<Rvp8u, Rvp32s>(rvpiMorphGrayInitAlloc_8u_C1R, rvpiGrayDilateBorder_8u_C1R,
                                       rvpiGrayErodeBorder_8u_C1R, v8, m.width, m.height, m.width - 1, 0, sz.width,
                                       sz.height, rng());
            compareGray<Rvp32f, Rvp32f>(rvpiMorphGrayInitAlloc_32f_C1R, rvpiGrayDilateBorder_32f_C1R,
                                        rvpiGrayErodeBorder_32f_C1R, v32, m.width, m.height, m.width / 2,
                                        m.height / 2, sz.width, sz.height, rng());
        }
    }
    // Zeros, with -inf cells left out, give the binary-mask operations.
    const int W = 5, H = 5, w = 70, h = 90;
    std::vector<Rvp32f> flat(W * H);
    Mask bin(W * H);
    for (int i = 0; i < W * H; ++i) bin[i] = (i * 7) % 3 != 0, flat[i] = bin[i] ? 0.0f : -INFINITY;
    RvpiMorphGrayState* g = nullptr;
    RvpiMorphState* b = nullptr;
    ASSERT_EQ(rvpiMorphGrayInitAlloc_32f_C1R(w, flat.data(), {W, H}, {1, 3}, &g), rvpStsNoErr);
    ASSERT_EQ(rvpiMorphologyInitAlloc_32f_C1R(w, bin.data(), {W, H}, {1, 3}, &b), rvpStsNoErr);
    Image<Rvp32f> src(w, h), d1(w, h), d2(w, h);
    src.fill(Random<Rvp32f>(3));
    ASSERT_EQ(rvpiGrayErodeBorder_32f_C1R(src.ptr(), src.step(), d1.ptr(), d1.step(), {w, h}, rvpBorderRepl, g), 0);
    ASSERT_EQ(rvpiErodeBorderReplicate_32f_C1R(src.ptr(), src.step(), d2.ptr(), d2.step(), {w, h}, rvpBorderRepl, b), 0);
    EXPECT_EQ(d1.bytes(), d2.bytes());
    rvpiMorphGrayFree(g);
    rvpiMorphologyFree(b);
}

TEST(MorphAdv, Validation) {
    const Mask m(9, 1);
    RvpiMorphAdvState* st8 = nullptr;
    RvpiMorphAdvState* st32 = nullptr;
    ASSERT_EQ(rvpiMorphAdvInitAlloc_8u_C1R(8, m.data(), {3, 3}, {1, 1}, &st8), rvpStsNoErr);
    ASSERT_EQ(rvpiMorphAdvInitAlloc_32f_C1R(8, m.data(), {3, 3}, {1, 1}, &st32), rvpStsNoErr);
    Image<Rvp32f> src(8, 4), dst(8, 4);
    const auto kept = dst.raw();
    const struct {
        const Rvp32f* s;
        int ss;
        Rvp32f* d;
        int ds;
        RvpiSize r;
        int border;
        RvpiMorphAdvState* st;
        RvpStatus want;
    } rows[] = {
        {nullptr, 32, dst.ptr(), 32, {8, 4}, rvpBorderRepl, st32, rvpStsNullPtrErr},
        {src.ptr(), 32, dst.ptr(), 32, {8, 4}, rvpBorderRepl, nullptr, rvpStsNullPtrErr},
        {src.ptr(), 32, dst.ptr(), 32, {0, 4}, rvpBorderRepl, st32, rvpStsSizeErr},
        {src.ptr(), 31, dst.ptr(), 32, {8, 4}, rvpBorderRepl, st32, rvpStsStepErr},
        {src.ptr(), 34, dst.ptr(), 32, {8, 4}, rvpBorderRepl, st32, rvpStsNotEvenStepErr},
        {src.ptr(), 32, dst.ptr(), 32, {8, 4}, rvpBorderConst, st32, rvpStsBadArgErr},
        {src.ptr(), 32, dst.ptr(), 32, {8, 4}, rvpBorderRepl, st8, rvpStsBadArgErr},
        {src.ptr(), 36, dst.ptr(), 36, {9, 4}, rvpBorderRepl, st32, rvpStsSizeErr},
    };
    for (const auto& r : rows) {
        EXPECT_EQ(rvpiMorphOpenBorder_32f_C1R(r.s, r.ss, r.d, r.ds, r.r, r.border, r.st), r.want);
        EXPECT_EQ(rvpiMorphGradientBorder_32f_C1R(r.s, r.ss, r.d, r.ds, r.r, r.border, r.st), r.want);
    }
    EXPECT_EQ(dst.raw(), kept);
    int size = 0;
    RvpiMorphAdvState* none = nullptr;
    EXPECT_EQ(rvpiMorphAdvGetSize_8u_C3R(8, nullptr, {3, 3}, &size), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiMorphAdvGetSize_8u_C3R(0, m.data(), {3, 3}, &size), rvpStsSizeErr);
    EXPECT_EQ(rvpiMorphAdvInitAlloc_8u_C3R(8, m.data(), {3, 3}, {3, 0}, &none), rvpStsAnchorErr);
    EXPECT_EQ(rvpiMorphAdvInit_8u_C3R(8, m.data(), {3, 3}, {1, 1}, nullptr), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiMorphAdvGetSize_8u_C3R(1 << 30, m.data(), {3, 3}, &size), rvpStsSizeErr);
    EXPECT_TRUE(size == 0 && none == nullptr);
    rvpiMorphAdvFree(st8);
    rvpiMorphAdvFree(st32);
    // Gray states: a NaN value or no cell left is refused.
    const Rvp32f nan[1] = {NAN}, out[2] = {-INFINITY, -INFINITY};
    RvpiMorphGrayState* g = nullptr;
    EXPECT_EQ(rvpiMorphGrayInitAlloc_32f_C1R(8, nan, {1, 1}, {0, 0}, &g), rvpStsBadArgErr);
    EXPECT_EQ(rvpiMorphGrayInitAlloc_32f_C1R(8, out, {2, 1}, {0, 0}, &g), rvpStsBadArgErr);
    EXPECT_EQ(rvpiMorphGrayGetSize_32f_C1R(8, out, {0, 1}, &size), rvpStsSizeErr);
    EXPECT_EQ(g, nullptr);
}

}  // namespace
