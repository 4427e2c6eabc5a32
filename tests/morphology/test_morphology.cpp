// Structuring-element morphology: the mask classification on a table of
// masks and anchors, state sizes, results against the reference for masks
// of every kind (rectangles, diamonds, disks, rings, crosses, single cells
// off the anchor, empty and random masks, masks larger than the image) in
// all layouts and dispatch levels, the clamping of infinities by the direct
// kernels, and the validation orders.
#include <array>
#include <cfloat>
#include <cmath>
#include <functional>

#include "../../src/morphology/rvcvmorph.h"
#include "morph_support.h"
#include "reference/ref_morphology.h"
#include "support/rvtest.h"

using namespace rvtest;
using morphtest::planeOf;

namespace {

using Mask = std::vector<unsigned char>;

struct MaskCase {
    std::string name;
    int W, H, ax, ay;
    Mask m;
};

Mask fromRows(std::initializer_list<const char*> rows) {
    Mask m;
    for (const char* r : rows)
        for (const char* p = r; *p; ++p) m.push_back(*p == '1' ? static_cast<unsigned char>(1 + (m.size() * 37) % 255) : 0);
    return m;
}

MaskCase shaped(const std::string& name, int r, const std::function<bool(int, int)>& in) {
    MaskCase c{name, 2 * r + 1, 2 * r + 1, r, r, {}};
    for (int y = -r; y <= r; ++y)
        for (int x = -r; x <= r; ++x) c.m.push_back(in(x, y) ? 1 : 0);
    return c;
}

std::vector<MaskCase> maskCases() {
    std::vector<MaskCase> v;
    auto rect = [&](int W, int H, int ax, int ay) {
        v.push_back({"rect" + std::to_string(W) + "x" + std::to_string(H), W, H, ax, ay, Mask(W * H, 1)});
    };
    rect(3, 3, 1, 1);
    rect(1, 1, 0, 0);
    rect(8, 2, 7, 0);
    rect(16, 5, 3, 4);
    rect(41, 3, 20, 1);
    // Radius 1 is the same plus shape for all three, and disk 2 is diamond 2.
    for (int r : {1, 2, 4}) v.push_back(shaped("diamond" + std::to_string(r), r, [r](int x, int y) { return std::abs(x) + std::abs(y) <= r; }));
    for (int r : {4, 9}) v.push_back(shaped("disk" + std::to_string(r), r, [r](int x, int y) { return x * x + y * y <= r * r; }));
    v.push_back(shaped("cross3", 3, [](int x, int y) { return x == 0 || y == 0; }));
    v.push_back(shaped("ring3", 3, [](int x, int y) { return x * x + y * y <= 9 && x * x + y * y >= 4; }));
    v.push_back({"cornerCell", 5, 5, 2, 2, fromRows({"10000", "00000", "00000", "00000", "00000"})});
    v.push_back({"farCell", 7, 3, 0, 0, fromRows({"0000000", "0000000", "0000001"})});
    v.push_back({"blockLeftAbove", 6, 6, 5, 5, fromRows({"110000", "110000", "000000", "000000", "000000", "000000"})});
    v.push_back({"empty", 3, 3, 1, 1, Mask(9, 0)});
    v.push_back({"gapRows", 3, 5, 1, 2, fromRows({"111", "000", "010", "000", "111"})});
    v.push_back({"parallelogram", 4, 2, 1, 0, fromRows({"1100", "0110"})});
    v.push_back({"random", 5, 4, 3, 1, fromRows({"10110", "01101", "11001", "00111"})});
    return v;
}

template <class T> struct Layout {
    int channels;
    bool smallTable;
    RvpStatus (*initAlloc)(int, const Rvp8u*, RvpiSize, RvpiPoint, RvpiMorphState**);
    RvpStatus (*dilate)(const T*, int, T*, int, RvpiSize, int, RvpiMorphState*);
    RvpStatus (*erode)(const T*, int, T*, int, RvpiSize, int, RvpiMorphState*);
};

const Layout<Rvp8u> k8u[] = {
    {1, false, rvpiMorphologyInitAlloc_8u_C1R, rvpiDilateBorderReplicate_8u_C1R, rvpiErodeBorderReplicate_8u_C1R},
    {3, false, rvpiMorphologyInitAlloc_8u_C3R, rvpiDilateBorderReplicate_8u_C3R, rvpiErodeBorderReplicate_8u_C3R},
    {4, true, rvpiMorphologyInitAlloc_8u_C4R, rvpiDilateBorderReplicate_8u_C4R, rvpiErodeBorderReplicate_8u_C4R},
};
const Layout<Rvp32f> k32f[] = {
    {1, true, rvpiMorphologyInitAlloc_32f_C1R, rvpiDilateBorderReplicate_32f_C1R, rvpiErodeBorderReplicate_32f_C1R},
    {3, false, rvpiMorphologyInitAlloc_32f_C3R, rvpiDilateBorderReplicate_32f_C3R, rvpiErodeBorderReplicate_32f_C3R},
    {4, false, rvpiMorphologyInitAlloc_32f_C4R, rvpiDilateBorderReplicate_32f_C4R, rvpiErodeBorderReplicate_32f_C4R},
};

template <class T>
void compare(const Layout<T>& L, const MaskCase& mc, int w, int h, int pad, uint32_t seed) {
    RvpiMorphState* st = nullptr;
    ASSERT_EQ(L.initAlloc(w + 3, mc.m.data(), {mc.W, mc.H}, {mc.ax, mc.ay}, &st), rvpStsNoErr);
    Image<T> src(w, h, L.channels, pad);
    src.fill(Random<T>(seed));
    const ref::Plane<T> sp = planeOf(src, L.channels);
    for (bool dilate : {false, true}) {
        SCOPED_TRACE(testing::Message() << mc.name << " kind " << st->shapeKind << " C" << L.channels << " " << w
                                        << "x" << h << (dilate ? " dilate" : " erode") << " seed " << seed);
        Image<T> dst(w, h, L.channels, pad + 4);
        ASSERT_EQ((dilate ? L.dilate : L.erode)(src.ptr(), src.step(), dst.ptr(), dst.step(), {w, h}, rvpBorderRepl, st),
                  rvpStsNoErr);
        ASSERT_TRUE(dst.guardsIntact());
        const auto want = ref::morphology(sp, mc.m, mc.W, mc.H, mc.ax, mc.ay, dilate, L.smallTable);
        morphtest::expectSame(dst, want);
    }
    EXPECT_EQ(rvpiMorphologyFree(st), rvpStsNoErr);
}

struct Geometry { int w, h, pad; };
const Geometry kSizes[] = {{1, 1, 0}, {2, 5, 4}, {7, 3, 0}, {13, 9, 8}, {33, 21, 4}, {40, 40, 0}, {97, 50, 12}};

class MorphologyIsa : public testing::TestWithParam<rvcv::Isa> {};

TEST_P(MorphologyIsa, MatchesReference) {
    ScopedIsa isa(GetParam());
    uint32_t seed = 1;
    for (const MaskCase& mc : maskCases())
        for (const Geometry& g : kSizes) {
            for (const auto& L : k8u) compare(L, mc, g.w, g.h, g.pad, ++seed);
            for (const auto& L : k32f) compare(L, mc, g.w, g.h, g.pad, ++seed);
            if (HasFatalFailure()) return;
        }
}

INSTANTIATE_TEST_SUITE_P(Levels, MorphologyIsa, testing::ValuesIn(isaLevels()),
                         [](const auto& info) { return std::string(rvcv::isaName(info.param)); });

struct KindRow {
    const char* what;
    int sample, channels, W, H, ax, ay;
    Mask m;
    int kind, sw, sh, sax, say, runs;  // shape fields checked for kinds 1 and 2
};

RvpStatus initAny(int sample, int channels, int roiWidth, const Mask& m, RvpiSize ms, RvpiPoint a, RvpiMorphState** st) {
    return rvcv::ownMorphologyInitAlloc(sample, channels, roiWidth, m.data(), ms, a, st, nullptr, 2);
}

TEST(Morphology, Classification) {
    const int u8 = rvcv::kSample8u, f32 = rvcv::kSample32f;
    const Mask diamond3 = fromRows({"010", "111", "010"});
    const Mask diamond5 = fromRows({"00100", "01110", "11111", "01110", "00100"});
    const Mask disk7 = fromRows({"0001000", "0111110", "0111110", "1111111", "0111110", "0111110", "0001000"});
    const KindRow rows[] = {
        {"empty", u8, 1, 3, 3, 2, 0, Mask(9, 0), 3, 0, 0, 0, 0, 0},
        {"full square", u8, 1, 3, 3, 1, 1, Mask(9, 1), 1, 3, 3, 1, 1, 0},
        {"corner cell, centred anchor", u8, 1, 5, 5, 2, 2, fromRows({"10000", "00000", "00000", "00000", "00000"}),
         1, 1, 1, 2, 2, 0},
        {"rectangle below the anchor", u8, 3, 3, 3, 1, 0, fromRows({"000", "111", "111"}), 1, 3, 2, 1, -1, 0},
        {"diamond centred", u8, 1, 3, 3, 1, 1, diamond3, 2, 3, 3, 1, 1, 2},
        {"diamond anchored in a corner", u8, 1, 3, 3, 0, 0, diamond3, 0, 0, 0, 0, 0, 0},
        {"empty row between runs", u8, 1, 3, 3, 1, 0, fromRows({"111", "000", "010"}), 2, 3, 3, 1, 0, 2},
        {"same run split by a gap", u8, 1, 3, 3, 1, 1, fromRows({"010", "000", "010"}), 2, 1, 3, 0, 1, 1},
        {"parallelogram", u8, 1, 4, 2, 1, 0, fromRows({"1100", "0110"}), 0, 0, 0, 0, 0, 0},
        {"two runs in a row", u8, 1, 3, 1, 1, 0, fromRows({"101"}), 0, 0, 0, 0, 0, 0},
        {"run missing the anchor column", u8, 1, 3, 2, 1, 0, fromRows({"111", "100"}), 0, 0, 0, 0, 0, 0},
        {"anchor row below the runs", u8, 1, 3, 3, 1, 2, fromRows({"010", "111", "000"}), 0, 0, 0, 0, 0, 0},
        {"runs off the mask's left", u8, 1, 5, 3, 3, 1, fromRows({"00010", "00111", "00010"}), 2, 3, 3, 1, 1, 2},
        {"32f C3 diamond 3x3", f32, 3, 3, 3, 1, 1, diamond3, 0, 0, 0, 0, 0, 0},
        {"32f C3 diamond 5x5", f32, 3, 5, 5, 2, 2, diamond5, 2, 5, 5, 2, 2, 3},
        {"32f C4 diamond 5x5", f32, 4, 5, 5, 2, 2, diamond5, 0, 0, 0, 0, 0, 0},
        {"32f C4 disk 7x7", f32, 4, 7, 7, 3, 3, disk7, 2, 7, 7, 3, 3, 3},
        {"8u C4 diamond 3x3", u8, 4, 3, 3, 1, 1, diamond3, 2, 3, 3, 1, 1, 2},
    };
    for (const KindRow& r : rows) {
        RvpiMorphState* st = nullptr;
        ASSERT_EQ(initAny(r.sample, r.channels, 10, r.m, {r.W, r.H}, {r.ax, r.ay}, &st), rvpStsNoErr) << r.what;
        EXPECT_EQ(st->shapeKind, r.kind) << r.what;
        const RvpiMorphShape* s = st->pShape;
        if (st->shapeKind == 1 || st->shapeKind == 2) {
            EXPECT_EQ((std::array<int, 6>{s->width, s->height, s->anchorX, s->anchorY, st->anchorX, st->maskWidth}),
                      (std::array<int, 6>{r.sw, r.sh, r.sax, r.say, r.sax, r.sw})) << r.what;
        }
        if (st->shapeKind == 2) {
            EXPECT_EQ(s->runCount, r.runs) << r.what;
        }
        rvpiMorphologyFree(st);
    }
}

TEST(Morphology, StateSizes) {
    int n = 0;
    const Mask full(9, 1), none(9, 0), diamond = fromRows({"010", "111", "010"}), x = fromRows({"101", "010", "101"});
    EXPECT_EQ(rvpiMorphologyGetSize_8u_C1R(100, full.data(), {3, 3}, &n), rvpStsNoErr);
    EXPECT_EQ(n, 16 + 128 + 2 * 3 * (100 + 32) + 32 + 32 * 3);
    EXPECT_EQ(rvpiMorphologyGetSize_32f_C4R(100, none.data(), {3, 3}, &n), rvpStsNoErr);
    EXPECT_EQ(n, 16 + 96);
    EXPECT_EQ(rvpiMorphologyGetSize_8u_C3R(50, x.data(), {3, 3}, &n), rvpStsNoErr);
    EXPECT_EQ(n, 33 * 16 + 112 + 2 * 3 * (((50 + 3) * 3 + 15) & ~15));
    EXPECT_EQ(rvpiMorphologyGetSize_8u_C1R(10, diamond.data(), {3, 3}, &n), rvpStsNoErr);
    EXPECT_EQ(n, 16 + 160 + 8 * (3 + 2) + (3 * 2 + 1) * (10 + 32) + 40 + 40 * 3);
    // The size query analyses with the centred anchor; the state records it.
    RvpiMorphState* st = nullptr;
    ASSERT_EQ(rvpiMorphologyInitAlloc_8u_C1R(10, diamond.data(), {3, 3}, {1, 1}, &st), rvpStsNoErr);
    EXPECT_EQ(st->stateSize, n);
    rvpiMorphologyFree(st);
}

// Init in the caller's memory gives the same results as InitAlloc.
TEST(Morphology, InitInCallerMemory) {
    const Mask disk = fromRows({"01110", "11111", "11111", "11111", "01110"});
    int n = 0;
    ASSERT_EQ(rvpiMorphologyGetSize_32f_C1R(30, disk.data(), {5, 5}, &n), rvpStsNoErr);
    std::vector<uint64_t> mem(static_cast<size_t>(n) / 8 + 1);
    auto* st = reinterpret_cast<RvpiMorphState*>(mem.data());
    ASSERT_EQ(rvpiMorphologyInit_32f_C1R(30, disk.data(), {5, 5}, {2, 2}, st), rvpStsNoErr);
    Image<Rvp32f> src(30, 20), dst(30, 20);
    src.fill(Random<Rvp32f>(3));
    ASSERT_EQ(rvpiErodeBorderReplicate_32f_C1R(src.ptr(), src.step(), dst.ptr(), dst.step(), {30, 20}, 1, st), rvpStsNoErr);
    morphtest::expectSame(dst, ref::morphCells(planeOf(src, 1), disk, 5, 5, 2, 2, false));
}

// A set cell passes through min/max with FLT_MAX in the direct kernels, so
// infinities become the largest finite value there; the scalar frame loop
// keeps them.
TEST(Morphology, DirectKernelsClampInfinities) {
    const Mask x = fromRows({"101", "010", "101"});
    RvpiMorphState* st = nullptr;
    ASSERT_EQ(rvpiMorphologyInitAlloc_32f_C1R(10, x.data(), {3, 3}, {1, 1}, &st), rvpStsNoErr);
    ASSERT_EQ(st->shapeKind, 0);
    Image<Rvp32f> src(10, 10), dst(10, 10);
    src.fill([] { return 1.0f; });
    src.at(0, 5) = INFINITY;
    src.at(6, 6) = -INFINITY;
    ASSERT_EQ(rvpiDilateBorderReplicate_32f_C1R(src.ptr(), src.step(), dst.ptr(), dst.step(), {10, 10}, 1, st), rvpStsNoErr);
    EXPECT_EQ(dst.at(0, 5), INFINITY);  // frame pixel
    EXPECT_EQ(dst.at(1, 4), FLT_MAX);   // kernel pixel over (0, 5)
    EXPECT_EQ(dst.at(1, 6), FLT_MAX);
    ASSERT_EQ(rvpiErodeBorderReplicate_32f_C1R(src.ptr(), src.step(), dst.ptr(), dst.step(), {10, 10}, 1, st), rvpStsNoErr);
    EXPECT_EQ(dst.at(6, 6), -FLT_MAX);
    EXPECT_EQ(dst.at(0, 5), 1.0f);
    rvpiMorphologyFree(st);
}

TEST(Morphology, ConstructorValidation) {
    const Mask m(9, 1);
    int n = 0;
    const struct { const char* what; RvpStatus got, want; } rows[] = {
        {"null mask", rvpiMorphologyInitAlloc_8u_C1R(0, nullptr, {0, 0}, {5, 5}, nullptr), rvpStsNullPtrErr},
        {"roi width", rvpiMorphologyInitAlloc_8u_C1R(0, m.data(), {3, 3}, {5, 5}, nullptr), rvpStsSizeErr},
        {"mask width is a size error", rvpiMorphologyInit_32f_C3R(4, m.data(), {0, 3}, {5, 5}, nullptr), rvpStsSizeErr},
        {"mask height", rvpiMorphologyGetSize_8u_C4R(4, m.data(), {3, -1}, nullptr), rvpStsSizeErr},
        {"anchor before state pointer", rvpiMorphologyInitAlloc_8u_C1R(4, m.data(), {3, 3}, {3, 0}, nullptr), rvpStsAnchorErr},
        {"anchor y", rvpiMorphologyInit_8u_C1R(4, m.data(), {3, 3}, {0, -1}, nullptr), rvpStsAnchorErr},
        {"null size", rvpiMorphologyGetSize_8u_C1R(4, m.data(), {3, 3}, nullptr), rvpStsNullPtrErr},
        {"null state", rvpiMorphologyInit_8u_C1R(4, m.data(), {3, 3}, {1, 1}, nullptr), rvpStsNullPtrErr},
        {"null state address", rvpiMorphologyInitAlloc_32f_C1R(4, m.data(), {3, 3}, {1, 1}, nullptr), rvpStsNullPtrErr},
        {"free null", rvpiMorphologyFree(nullptr), rvpStsNullPtrErr},
        {"size query ignores the anchor", rvpiMorphologyGetSize_8u_C1R(4, m.data(), {3, 3}, &n), rvpStsNoErr},
    };
    for (const auto& r : rows) EXPECT_EQ(r.got, r.want) << r.what;
}

TEST(Morphology, ImageValidation) {
    const Mask m = fromRows({"010", "111", "010"});
    RvpiMorphState *st = nullptr, *st8 = nullptr;
    ASSERT_EQ(rvpiMorphologyInitAlloc_32f_C1R(8, m.data(), {3, 3}, {1, 1}, &st), rvpStsNoErr);
    ASSERT_EQ(rvpiMorphologyInitAlloc_8u_C1R(8, m.data(), {3, 3}, {1, 1}, &st8), rvpStsNoErr);
    Image<Rvp32f> s(9, 4), d(9, 4);
    s.fill(Random<Rvp32f>(4));
    const auto before = d.raw();
    const Rvp32f* ps = s.ptr();
    Rvp32f* pd = d.ptr();
    auto* const f = rvpiDilateBorderReplicate_32f_C1R;
    const struct { const char* what; RvpStatus got, want; } rows[] = {
        {"null src", f(nullptr, 36, pd, 36, {8, 4}, 1, st), rvpStsNullPtrErr},
        {"null dst", f(ps, 36, nullptr, 36, {0, 4}, 1, st), rvpStsNullPtrErr},
        {"size", f(ps, 2, pd, 36, {8, 0}, 1, st), rvpStsSizeErr},
        {"src step", f(ps, 30, pd, 33, {8, 4}, 1, st), rvpStsStepErr},
        {"dst step before evenness", f(ps, 34, pd, 30, {8, 4}, 1, st), rvpStsStepErr},
        {"odd step", f(ps, 34, pd, 36, {8, 4}, 1, st), rvpStsNotEvenStepErr},
        {"border before width", f(ps, 36, pd, 36, {9, 4}, 0, st), rvpStsBadArgErr},
        {"wider than the state", f(ps, 36, pd, 36, {9, 4}, 1, st), rvpStsSizeErr},
        {"state of another layout", f(ps, 36, pd, 36, {8, 4}, 1, st8), rvpStsBadArgErr},
    };
    for (const auto& r : rows) EXPECT_EQ(r.got, r.want) << r.what;
    EXPECT_EQ(d.raw(), before) << "a refused call wrote the destination";
    EXPECT_EQ(f(ps, 36, pd, 36, {8, 4}, 1, st), rvpStsNoErr);
    EXPECT_EQ(f(ps, 36, pd, 36, {3, 4}, 1, st), rvpStsNoErr);
    rvpiMorphologyFree(st);
    rvpiMorphologyFree(st8);
}

}  // namespace
