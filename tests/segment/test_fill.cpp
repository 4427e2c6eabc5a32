// Flood fills and marker labelling: every fill form against the step-by-step
// model on blocky, noisy and ramp images with seeds anywhere (edges, tiny
// and one-row images included), the exact fills also against a breadth-first
// component; the hand-checkable cases a reader should see; stacks that
// outgrow the buffer; the labelling compared as a partition with a
// union-find labelling; validation tables.
#include <functional>

#include "reference/ref_fill.h"
#include "segment/rvcvfill.h"
#include "support/rvtest.h"

using namespace rvtest;

namespace {

// One fill entry point behind a uniform call: value and deltas as arrays of
// three (C1 forms read the first).
template <class T> struct Form {
    const char* name;
    ref::FillRule rule;
    bool eight;
    int ch;
    std::function<RvpStatus(T*, int, RvpiSize, RvpiPoint, const T*, const T*, const T*, RvpiConnectedComp*, Rvp8u*)>
        call;
};

template <class T>
using ExactC1 = RvpStatus (*)(T*, int, RvpiSize, RvpiPoint, T, RvpiConnectedComp*, Rvp8u*);
template <class T>
using ExactC3 = RvpStatus (*)(T*, int, RvpiSize, RvpiPoint, const T*, RvpiConnectedComp*, Rvp8u*);
template <class T>
using DeltaC1 = RvpStatus (*)(T*, int, RvpiSize, RvpiPoint, T, T, T, RvpiConnectedComp*, Rvp8u*);
template <class T>
using DeltaC3 = RvpStatus (*)(T*, int, RvpiSize, RvpiPoint, const T*, const T*, const T*, RvpiConnectedComp*, Rvp8u*);

template <class T>
std::vector<Form<T>> forms(ExactC1<T> e4, ExactC3<T> e4c3, ExactC1<T> e8, ExactC3<T> e8c3, DeltaC1<T> g4,
                           DeltaC3<T> g4c3, DeltaC1<T> g8, DeltaC3<T> g8c3, DeltaC1<T> r4, DeltaC3<T> r4c3,
                           DeltaC1<T> r8, DeltaC3<T> r8c3) {
    using R = ref::FillRule;
    auto ec1 = [](ExactC1<T> f) {
        return [f](T* p, int s, RvpiSize z, RvpiPoint q, const T* v, const T*, const T*, RvpiConnectedComp* c,
                   Rvp8u* b) { return f(p, s, z, q, v[0], c, b); };
    };
    auto ec3 = [](ExactC3<T> f) {
        return [f](T* p, int s, RvpiSize z, RvpiPoint q, const T* v, const T*, const T*, RvpiConnectedComp* c,
                   Rvp8u* b) { return f(p, s, z, q, v, c, b); };
    };
    auto dc1 = [](DeltaC1<T> f) {
        return [f](T* p, int s, RvpiSize z, RvpiPoint q, const T* v, const T* lo, const T* hi, RvpiConnectedComp* c,
                   Rvp8u* b) { return f(p, s, z, q, v[0], lo[0], hi[0], c, b); };
    };
    return {{"4Con C1", R::Exact, false, 1, ec1(e4)},    {"4Con C3", R::Exact, false, 3, ec3(e4c3)},
            {"8Con C1", R::Exact, true, 1, ec1(e8)},     {"8Con C3", R::Exact, true, 3, ec3(e8c3)},
            {"Grad4Con C1", R::Grad, false, 1, dc1(g4)}, {"Grad4Con C3", R::Grad, false, 3, g4c3},
            {"Grad8Con C1", R::Grad, true, 1, dc1(g8)},  {"Grad8Con C3", R::Grad, true, 3, g8c3},
            {"Range4Con C1", R::Range, false, 1, dc1(r4)}, {"Range4Con C3", R::Range, false, 3, r4c3},
            {"Range8Con C1", R::Range, true, 1, dc1(r8)},  {"Range8Con C3", R::Range, true, 3, r8c3}};
}

#define RVT_FORMS(S)                                                                                             \
    forms<Rvp##S>(                                                                                               \
        rvpiFloodFill_4Con_##S##_C1IR, rvpiFloodFill_4Con_##S##_C3IR, rvpiFloodFill_8Con_##S##_C1IR,             \
        rvpiFloodFill_8Con_##S##_C3IR, rvpiFloodFill_Grad4Con_##S##_C1IR, rvpiFloodFill_Grad4Con_##S##_C3IR,     \
        rvpiFloodFill_Grad8Con_##S##_C1IR, rvpiFloodFill_Grad8Con_##S##_C3IR, rvpiFloodFill_Range4Con_##S##_C1IR, \
        rvpiFloodFill_Range4Con_##S##_C3IR, rvpiFloodFill_Range8Con_##S##_C1IR, rvpiFloodFill_Range8Con_##S##_C3IR)

int bufferBytes(ref::FillRule rule, RvpiSize sz) {
    int n = 0;
    EXPECT_EQ(rule == ref::FillRule::Grad ? rvpiFloodFillGetSize_Grad(sz, &n) : rvpiFloodFillGetSize(sz, &n),
              rvpStsNoErr);
    return n;
}

template <class T> ref::Plane<T> planeOf(const Image<T>& img, int ch) {
    ref::Plane<T> p{img.width(), img.height(), ch, {}};
    for (int y = 0; y < img.height(); ++y) p.v.insert(p.v.end(), img.row(y), img.row(y) + img.width() * ch);
    return p;
}

// Image kinds: few-valued blocks (exact and range fills find regions),
// ramps with noise and columns of random levels (gradient fills: runs that
// continue only through the row they were reached from), and a NaN now and
// then for floats.
template <class T> void paintScene(Image<T>& img, int ch, int kind, std::mt19937& rng) {
    const int w = img.width(), h = img.height();
    const int bw = 1 + static_cast<int>(rng() % 6), bh = 1 + static_cast<int>(rng() % 6);
    std::vector<int> blocks(64);
    for (int& b : blocks) b = static_cast<int>(rng() % 3);
    const double gx = static_cast<double>(rng() % 9) - 4, gy = static_cast<double>(rng() % 9) - 4;
    std::vector<int> cols(static_cast<size_t>(w));
    int level = 60;  // a walk of small steps and a steep one now and then
    for (int& c : cols) c = level = (level + (rng() % 3 == 0 ? 25 : static_cast<int>(rng() % 3) - 1)) % 120;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            for (int c = 0; c < ch; ++c) {
                double v;
                if (kind == 0) v = 10 * blocks[(y / bh * 7 + x / bw) % 64] + (rng() % 16 == 0 ? 1 : 0);
                else if (kind == 1) v = 100 + gx * x + gy * y + static_cast<double>(rng() % 3) + c;
                else v = cols[(x + (bw % 2) * y) % w] + static_cast<double>(rng() % 3);  // steep across, gentle down or diagonally
                if constexpr (std::is_floating_point<T>::value) {
                    img.at(x, y, c) = rng() % 97 == 0 ? std::numeric_limits<T>::quiet_NaN() : static_cast<T>(v);
                } else {
                    img.at(x, y, c) = static_cast<T>(std::clamp(v, 0.0, double(std::numeric_limits<T>::max())));
                }
            }
}

bool sameRegion(const RvpiConnectedComp& got, const ref::Comp& want, int ch, const std::vector<double>& nv) {
    if (got.area != want.area || got.rect.x != want.x || got.rect.y != want.y || got.rect.width != want.width ||
        got.rect.height != want.height)
        return false;
    for (int c = 0; c < 3; ++c)
        if (!(got.value[c] == (c < ch ? nv[c] : 0.0) || (std::isnan(got.value[c]) && std::isnan(nv[c])))) return false;
    return true;
}

template <class T> void checkAgainstModel(const std::vector<Form<T>>& fs, uint32_t seed) {
    std::mt19937 rng(seed);
    const RvpiSize sizes[] = {{1, 1}, {1, 2}, {1, 3}, {2, 2}, {2, 3}, {3, 2}, {1, 9}, {13, 1}, {5, 4}, {17, 11}, {33, 29}, {64, 48}, {150, 9}};
    for (const Form<T>& f : fs)
        for (const RvpiSize sz : sizes)
            for (int rep = 0; rep < 6; ++rep) {
                const int kind = f.rule == ref::FillRule::Grad ? rep % 3 : rep % 3 == 2;
                Image<T> img(sz.width, sz.height, f.ch, static_cast<int>(sizeof(T)) * (rep % 3));
                paintScene(img, f.ch, kind, rng);
                // Seeds on the corners and edges first, then anywhere.
                const int sx = rep == 0 ? 0 : rep == 1 ? sz.width - 1 : static_cast<int>(rng() % sz.width);
                const int sy = rep == 0 ? sz.height - 1 : rep == 1 ? 0 : static_cast<int>(rng() % sz.height);
                T nv[3], lo[3], hi[3];
                for (int c = 0; c < 3; ++c) {
                    // New values inside the range now and then; the seed's own value now and then.
                    nv[c] = rep == 5 ? img.at(sx, sy, c) : static_cast<T>(rng() % 4 == 0 ? 11 : 200 + c);
                    lo[c] = static_cast<T>(rng() % 12);
                    hi[c] = static_cast<T>(rng() % 12);
                }
                SCOPED_TRACE(testing::Message() << f.name << " " << sz.width << "x" << sz.height << " rep " << rep
                                                << " seed " << sx << "," << sy);
                ref::Plane<T> want = planeOf(img, f.ch);
                const std::vector<T> vnv(nv, nv + f.ch), vlo(lo, lo + f.ch), vhi(hi, hi + f.ch);
                const ref::Comp comp = ref::fill(want, {f.rule, f.eight, sx, sy}, vnv, vlo, vhi);
                std::vector<Rvp8u> buf(static_cast<size_t>(bufferBytes(f.rule, sz)) + 1);
                RvpiConnectedComp got;
                std::memset(&got, 0x5A, sizeof got);
                const RvpiConnectedComp untouched = got;
                // An odd buffer address: the stack's own rounding is exercised.
                ASSERT_EQ(f.call(img.ptr(), img.step(), sz, {sx, sy}, nv, lo, hi, &got, buf.data() + 1), rvpStsNoErr);
                ASSERT_TRUE(img.guardsIntact());
                ASSERT_TRUE(sameBits(planeOf(img, f.ch).v.data(), want.v.data(), want.v.size() * sizeof(T)));
                if (!comp.written) {
                    ASSERT_TRUE(sameBits(&got, &untouched, sizeof got));
                    continue;
                }
                ASSERT_TRUE(sameRegion(got, comp, f.ch, std::vector<double>(nv, nv + 3)))
                    << got.area << " " << got.rect.x << "," << got.rect.y << " " << got.rect.width << "x"
                    << got.rect.height << " want " << comp.area;
            }
}

TEST(FloodFill, EveryFormMatchesModel8u) { checkAgainstModel(RVT_FORMS(8u), 1); }
TEST(FloodFill, EveryFormMatchesModel16u) { checkAgainstModel(RVT_FORMS(16u), 2); }
TEST(FloodFill, EveryFormMatchesModel32f) { checkAgainstModel(RVT_FORMS(32f), 3); }

// Without a bounded stack or an asymmetric rule the exact fill is just the
// seed's component: compare with a breadth-first search, on noise that
// makes many short runs and deep stacks (8-connected checkerboards pass the
// stack beyond the buffer's w * h / 4 records).
TEST(FloodFill, ExactFillIsTheSeedsComponent) {
    std::mt19937 rng(5);
    for (const RvpiSize sz : {RvpiSize{64, 64}, RvpiSize{301, 97}, RvpiSize{128, 128}})
        for (bool eight : {false, true})
            for (int pattern = 0; pattern < 3; ++pattern) {
                Image<Rvp8u> img(sz.width, sz.height, 1, 5);
                img.fill([&] { return static_cast<Rvp8u>(rng() % 5 < 3); });
                if (pattern == 2)
                    for (int y = 0; y < sz.height; ++y)
                        for (int x = 0; x < sz.width; ++x) img.at(x, y) = static_cast<Rvp8u>((x + y) % 2);
                const RvpiPoint seed{pattern == 2 ? 1 : 0, 0};
                img.at(seed.x, seed.y) = 1;
                const ref::Plane<Rvp8u> before = planeOf(img, 1);
                const auto want = ref::component(sz.width, sz.height, seed.x, seed.y, eight, [&](int x, int y) {
                    return before.v[static_cast<size_t>(y) * sz.width + x] == 1;
                });
                std::vector<Rvp8u> buf(static_cast<size_t>(bufferBytes(ref::FillRule::Exact, sz)));
                RvpiConnectedComp got;
                auto fn = eight ? rvpiFloodFill_8Con_8u_C1IR : rvpiFloodFill_4Con_8u_C1IR;
                ASSERT_EQ(fn(img.ptr(), img.step(), sz, seed, 9, &got, buf.data()), rvpStsNoErr);
                ASSERT_TRUE(img.guardsIntact());
                long long n = 0;
                for (int y = 0; y < sz.height; ++y)
                    for (int x = 0; x < sz.width; ++x) {
                        const bool in = want[static_cast<size_t>(y) * sz.width + x];
                        n += in;
                        ASSERT_EQ(img.at(x, y), in ? 9 : before.v[static_cast<size_t>(y) * sz.width + x]);
                    }
                EXPECT_EQ(got.area, static_cast<double>(n));
            }
}

// Records beyond the room in the buffer move to the heap in order; the
// bounded form restarts its index at the wrap count.
TEST(FloodFill, SpanStackGrowsAndWraps) {
    alignas(8) Rvp8u room[3 * 24];
    for (bool compact : {false, true}) {
        rvcv::fill::SpanStack grown(room, sizeof room, 0, compact);
        for (int i = 0; i < 5000; ++i) ASSERT_TRUE(grown.push({i % 60000, i % 7, 9, 60001, 3, i % 2 ? 1 : -1}));
        for (int i = 4999; i >= 0; --i) {
            const rvcv::fill::Span s = grown.pop();
            ASSERT_TRUE(s.y == i % 60000 && s.left == i % 7 && s.right == 9 && s.parentLeft == 60001 &&
                        s.parentRight == 3 && s.dir == (i % 2 ? 1 : -1));
        }
        EXPECT_TRUE(grown.empty());
        rvcv::fill::SpanStack bounded(room, sizeof room, 2, compact);
        ASSERT_TRUE(bounded.push({1, 0, 0, 0, 0, 1}));
        ASSERT_TRUE(bounded.push({2, 0, 0, 0, 0, 1}));
        EXPECT_TRUE(bounded.empty());
        ASSERT_TRUE(bounded.push({3, 0, 0, 0, 0, 1}));
        EXPECT_EQ(bounded.pop().y, 3);
    }
}

// Cases to read by eye.
TEST(FloodFill, HandCheckedCases) {
    std::vector<Rvp8u> buf(4096);
    RvpiConnectedComp r;
    // A diagonal gap: 8 neighbours cross it, 4 do not.
    Rvp8u diag[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    ASSERT_EQ(rvpiFloodFill_4Con_8u_C1IR(&diag[0][0], 3, {3, 3}, {0, 0}, 5, &r, buf.data()), rvpStsNoErr);
    EXPECT_EQ(r.area, 1);
    diag[0][0] = 1;
    ASSERT_EQ(rvpiFloodFill_8Con_8u_C1IR(&diag[0][0], 3, {3, 3}, {1, 1}, 5, &r, buf.data()), rvpStsNoErr);
    EXPECT_EQ(r.area, 3);
    EXPECT_EQ(r.rect.width, 3);
    EXPECT_EQ(r.rect.height, 3);

    // A 2x2 range fill keeps one span: the row below is never scanned.
    Rvp16u sq[2][2] = {{4, 4}, {4, 4}};
    ASSERT_EQ(rvpiFloodFill_Range4Con_16u_C1IR(&sq[0][0], 4, {2, 2}, {0, 0}, 9, 1, 1, &r, buf.data()), rvpStsNoErr);
    EXPECT_EQ(sq[0][0] + sq[0][1] + sq[1][0] + sq[1][1], 9 + 9 + 4 + 4);
    EXPECT_EQ(r.area, 2);
    EXPECT_EQ(r.rect.height, 1);

    // A NaN seed paints itself only.
    const float nan = std::numeric_limits<float>::quiet_NaN();
    float f[1][3] = {{nan, nan, nan}};
    ASSERT_EQ(rvpiFloodFill_4Con_32f_C1IR(&f[0][0], 12, {3, 1}, {1, 0}, 2.0f, &r, buf.data()), rvpStsNoErr);
    EXPECT_EQ(r.area, 1);
    EXPECT_EQ(f[0][1], 2.0f);
    EXPECT_TRUE(std::isnan(f[0][0]) && std::isnan(f[0][2]));

    // A seed already holding the new value: success, record unwritten; the
    // gradient fill has no such test and repaints.
    Rvp8u one[1][4] = {{3, 3, 3, 8}};
    std::memset(&r, 0x77, sizeof r);
    const RvpiConnectedComp marker = r;
    ASSERT_EQ(rvpiFloodFill_Range8Con_8u_C1IR(&one[0][0], 4, {4, 1}, {0, 0}, 3, 1, 1, &r, buf.data()), rvpStsNoErr);
    EXPECT_TRUE(sameBits(&r, &marker, sizeof r));
    ASSERT_EQ(rvpiFloodFill_Grad4Con_8u_C1IR(&one[0][0], 4, {4, 1}, {0, 0}, 3, 0, 0, &r, buf.data()), rvpStsNoErr);
    EXPECT_EQ(r.area, 3);

    // A ramp rising by 3 a column: with maxDelta 2 and minDelta 0 the fill
    // stops on both sides (right a - b = 3, left -3); with minDelta 3 and
    // maxDelta 0 it runs down the ramp to the left and not up to the right.
    Rvp8u ramp[1][5] = {{0, 3, 6, 9, 12}};
    ASSERT_EQ(rvpiFloodFill_Grad4Con_8u_C1IR(&ramp[0][0], 5, {5, 1}, {2, 0}, 50, 0, 2, &r, buf.data()), rvpStsNoErr);
    EXPECT_EQ(r.area, 1);
    ramp[0][2] = 6;
    ASSERT_EQ(rvpiFloodFill_Grad4Con_8u_C1IR(&ramp[0][0], 5, {5, 1}, {3, 0}, 50, 3, 0, &r, buf.data()), rvpStsNoErr);
    EXPECT_EQ(r.area, 4);  // leftwards each step is -3: allowed by minDelta 3
    EXPECT_EQ(ramp[0][4], 12);
}

// ---- Labelling ---------------------------------------------------------------

template <class T>
void checkLabels(RvpStatus (*fn)(T*, int, RvpiSize, int, int, int, int*, Rvp8u*),
                 RvpStatus (*query)(RvpiSize, int*)) {
    std::mt19937 rng(7);
    for (const RvpiSize sz : {RvpiSize{1, 1}, RvpiSize{1, 7}, RvpiSize{9, 1}, RvpiSize{31, 17}, RvpiSize{120, 90}})
        for (int norm : {0, 1})
            for (int density : {0, 30, 55, 80}) {
                Image<T> m(sz.width, sz.height, 1, 3 * static_cast<int>(sizeof(T)));
                m.fill([&] { return static_cast<T>(static_cast<int>(rng() % 100) < density ? 1 + rng() % 300 : 0); });
                std::vector<int> bin;
                for (int y = 0; y < sz.height; ++y)
                    for (int x = 0; x < sz.width; ++x) bin.push_back(m.at(x, y) != 0);
                const int minLabel = 1 + static_cast<int>(rng() % 5);
                const int maxLabel = density == 55 ? minLabel + 3 : static_cast<int>(std::numeric_limits<T>::max()) - 1;
                int wantCount = 0;
                const auto want = ref::labelComponents(bin, sz.width, sz.height, norm == 0, minLabel, maxLabel, &wantCount);
                int size = 0, count = -1;
                ASSERT_EQ(query(sz, &size), rvpStsNoErr);
                std::vector<Rvp8u> buf(static_cast<size_t>(size));
                ASSERT_EQ(fn(m.ptr(), m.step(), sz, minLabel, maxLabel, norm, &count, buf.data()), rvpStsNoErr);
                ASSERT_TRUE(m.guardsIntact());
                EXPECT_EQ(count, wantCount);
                for (int y = 0; y < sz.height; ++y)
                    for (int x = 0; x < sz.width; ++x)
                        ASSERT_EQ(m.at(x, y), want[static_cast<size_t>(y) * sz.width + x]) << x << "," << y;
            }
    // Validation: pointers, size, step, odd step (16u), labels and norm.
    Image<T> m(4, 3);
    m.fill([] { return T{1}; });
    std::vector<Rvp8u> buf(512);
    int count = -3;
    const auto kept = m.raw();
    const struct { T* p; int step; RvpiSize sz; int lo, hi, norm; int* n; Rvp8u* b; RvpStatus st; } rows[] = {
        {nullptr, m.step(), {4, 3}, 1, 9, 0, &count, buf.data(), rvpStsNullPtrErr},
        {m.ptr(), m.step(), {4, 3}, 1, 9, 0, nullptr, buf.data(), rvpStsNullPtrErr},
        {m.ptr(), m.step(), {4, 3}, 1, 9, 0, &count, nullptr, rvpStsNullPtrErr},
        {m.ptr(), m.step(), {0, 3}, 1, 9, 0, &count, buf.data(), rvpStsSizeErr},
        {m.ptr(), m.step(), {4, 0}, 1, 9, 0, &count, buf.data(), rvpStsSizeErr},
        {m.ptr(), m.step(), {1 << 16, 1 << 15}, 1, 9, 0, &count, buf.data(), rvpStsSizeErr},
        {m.ptr(), m.step() - 1, {4, 3}, 1, 9, 0, &count, buf.data(), rvpStsStepErr},
        {m.ptr(), m.step(), {4, 3}, 0, 9, 0, &count, buf.data(), rvpStsBadArgErr},
        {m.ptr(), m.step(), {4, 3}, 10, 9, 0, &count, buf.data(), rvpStsBadArgErr},
        {m.ptr(), m.step(), {4, 3}, 1, std::numeric_limits<T>::max(), 0, &count, buf.data(), rvpStsBadArgErr},
        {m.ptr(), m.step(), {4, 3}, 1, 9, 2, &count, buf.data(), rvpStsBadArgErr},
    };
    for (const auto& r : rows) EXPECT_EQ(fn(r.p, r.step, r.sz, r.lo, r.hi, r.norm, r.n, r.b), r.st);
    if (sizeof(T) == 2) {
        EXPECT_EQ(fn(m.ptr(), 9, {4, 3}, 1, 9, 0, &count, buf.data()), rvpStsNotEvenStepErr);
    }
    EXPECT_EQ(m.raw(), kept);
    EXPECT_EQ(count, -3);
    // The top value minus one is the highest label; all labels equal still count every component.
    ASSERT_EQ(fn(m.ptr(), m.step(), {4, 3}, 5, 5, 1, &count, buf.data()), rvpStsNoErr);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(fn(m.ptr(), m.step(), {4, 3}, 1, std::numeric_limits<T>::max() - 1, 0, &count, buf.data()), rvpStsNoErr);
}

TEST(LabelMarkers, PartitionMatchesUnionFind8u) {
    checkLabels<Rvp8u>(rvpiLabelMarkers_8u_C1IR, rvpiLabelMarkersGetBufferSize_8u_C1R);
}
TEST(LabelMarkers, PartitionMatchesUnionFind16u) {
    checkLabels<Rvp16u>(rvpiLabelMarkers_16u_C1IR, rvpiLabelMarkersGetBufferSize_16u_C1R);
}

// ---- Validation ------------------------------------------------------------------

TEST(FloodFill, SizeQueries) {
    int n = -1;
    EXPECT_EQ(rvpiFloodFillGetSize({3, 5}, &n), rvpStsNoErr);
    EXPECT_EQ(n, 6 * 15 + 32);
    EXPECT_EQ(rvpiFloodFillGetSize_Grad({3, 5}, &n), rvpStsNoErr);
    EXPECT_EQ(n, 5 * 7 + 6 * 15 + 32);
    EXPECT_EQ(rvpiLabelMarkersGetBufferSize_16u_C1R({3, 5}, &n), rvpStsNoErr);
    EXPECT_EQ(n, 6 * 15 + 32);
    n = -1;
    for (auto q : {rvpiFloodFillGetSize, rvpiFloodFillGetSize_Grad, rvpiLabelMarkersGetBufferSize_8u_C1R}) {
        EXPECT_EQ(q({3, 5}, nullptr), rvpStsNullPtrErr);
        EXPECT_EQ(q({0, 5}, &n), rvpStsSizeErr);
        EXPECT_EQ(q({3, -1}, &n), rvpStsSizeErr);
        EXPECT_EQ(q({1 << 15, 1 << 14}, &n), rvpStsSizeErr);  // 6 * 2^29: beyond an int
    }
    EXPECT_EQ(n, -1);
}

// One bad argument per row, in the documented order, for a form of each
// kind; the image and the record stay as they were.
template <class T, int C> void checkValidation(const Form<T>& f) {
    Image<T> img(4, 3, C);
    img.fill([] { return T{1}; });
    std::vector<Rvp8u> buf(4096);
    RvpiConnectedComp r;
    std::memset(&r, 0x33, sizeof r);
    const RvpiConnectedComp keptR = r;
    const auto kept = img.raw();
    T v[3] = {2, 2, 2}, d[3] = {1, 1, 1}, neg[3] = {1, static_cast<T>(-1), 1};
    const int minStep = sizeof(T) == 2 ? 2 * C * 4 : static_cast<int>(sizeof(T)) * 4;
    struct Row { T* p; int step; RvpiSize sz; RvpiPoint seed; const T* v; const T* lo; RvpiConnectedComp* r; Rvp8u* b; RvpStatus st; };
    std::vector<Row> rows = {
        {nullptr, img.step(), {4, 3}, {0, 0}, v, d, &r, buf.data(), rvpStsNullPtrErr},
        {img.ptr(), img.step(), {4, 3}, {0, 0}, v, d, nullptr, buf.data(), rvpStsNullPtrErr},
        {img.ptr(), img.step(), {4, 3}, {0, 0}, v, d, &r, nullptr, rvpStsNullPtrErr},
        {img.ptr(), img.step(), {0, 3}, {0, 0}, v, d, &r, buf.data(), rvpStsSizeErr},
        {img.ptr(), img.step(), {4, -2}, {0, 0}, v, d, &r, buf.data(), rvpStsSizeErr},
        {img.ptr(), img.step(), {1 << 15, 1 << 14}, {0, 0}, v, d, &r, buf.data(), rvpStsSizeErr},
        {img.ptr(), minStep - static_cast<int>(sizeof(T)), {4, 3}, {0, 0}, v, d, &r, buf.data(), rvpStsStepErr},
        {img.ptr(), img.step(), {4, 3}, {-1, 0}, v, d, &r, buf.data(), rvpStsOutOfRangeErr},
        {img.ptr(), img.step(), {4, 3}, {4, 0}, v, d, &r, buf.data(), rvpStsOutOfRangeErr},
        {img.ptr(), img.step(), {4, 3}, {0, 3}, v, d, &r, buf.data(), rvpStsOutOfRangeErr},
        {img.ptr(), img.step(), {4, 3}, {0, -1}, v, d, &r, buf.data(), rvpStsOutOfRangeErr},
    };
    if (C == 3) {
        rows.push_back({img.ptr(), img.step(), {4, 3}, {0, 0}, nullptr, d, &r, buf.data(), rvpStsNullPtrErr});
        if (f.rule != ref::FillRule::Exact)
            rows.push_back({img.ptr(), img.step(), {4, 3}, {0, 0}, v, nullptr, &r, buf.data(), rvpStsNullPtrErr});
    }
    if (sizeof(T) > 1)  // a step one byte longer than the image's
        rows.push_back({img.ptr(), img.step() + 1, {4, 3}, {0, 0}, v, d, &r, buf.data(), rvpStsNotEvenStepErr});
    if (std::is_floating_point<T>::value && f.rule == ref::FillRule::Grad) {
        rows.push_back({img.ptr(), img.step(), {4, 3}, {0, 0}, v, C == 3 ? neg : neg + 1, &r, buf.data(),
                        rvpStsOutOfRangeErr});
    }
    for (const Row& row : rows)
        EXPECT_EQ(f.call(row.p, row.step, row.sz, row.seed, row.v, row.lo, d, row.r, row.b), row.st)
            << f.name << " seed " << row.seed.x << "," << row.seed.y;
    EXPECT_EQ(img.raw(), kept) << f.name;
    EXPECT_TRUE(sameBits(&r, &keptR, sizeof r)) << f.name;
    // The minimum step passes (overlapping rows for C3 8u and 32f).
    EXPECT_EQ(f.call(img.ptr(), minStep, {4, 3}, {0, 0}, v, d, d, &r, buf.data()), rvpStsNoErr) << f.name;
    if (std::is_floating_point<T>::value && f.rule == ref::FillRule::Grad) {
        const T nan[3] = {std::numeric_limits<T>::quiet_NaN(), 1, 1};
        EXPECT_EQ(f.call(img.ptr(), img.step(), {4, 3}, {0, 0}, v, nan, d, &r, buf.data()), rvpStsNoErr) << f.name;
    }
}

TEST(FloodFill, ValidationTables) {
    for (const auto& f : RVT_FORMS(8u)) f.ch == 1 ? checkValidation<Rvp8u, 1>(f) : checkValidation<Rvp8u, 3>(f);
    for (const auto& f : RVT_FORMS(16u)) f.ch == 1 ? checkValidation<Rvp16u, 1>(f) : checkValidation<Rvp16u, 3>(f);
    for (const auto& f : RVT_FORMS(32f)) f.ch == 1 ? checkValidation<Rvp32f, 1>(f) : checkValidation<Rvp32f, 3>(f);
}

}  // namespace
