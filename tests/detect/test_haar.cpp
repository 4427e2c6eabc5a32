// Haar stages: the constructors' record order and fields, the size query,
// tilting after the fact, the six apply functions against the reference
// evaluator on random stages, a three-stage cascade on a known pattern, and
// the validation orders.
#include <algorithm>
#include <functional>
#include <memory>

#include "../../src/detect/rvcvhaar.h"
#include "reference/ref_haar.h"
#include "support/rvtest.h"

using namespace rvtest;

namespace {

template <class V> using Input = ref::HaarInput<V>;

// States freed on scope exit; empty arrays still get non-null pointers.
struct Free {
    void operator()(RvpiHaarClassifier_32f* s) const { rvpiHaarClassifierFree_32f(s); }
    void operator()(RvpiHaarClassifier_32s* s) const { rvpiHaarClassifierFree_32s(s); }
};
template <class T> const T* data(const std::vector<T>& v) {
    static const T dummy[1] = {};
    return v.empty() ? dummy : v.data();
}
template <class V, class S = std::conditional_t<std::is_same<V, float>::value, RvpiHaarClassifier_32f, RvpiHaarClassifier_32s>>
std::unique_ptr<S, Free> make(const Input<V>& in, bool tilted) {
    S* s = nullptr;
    RvpStatus (*f)(S**, const RvpiRect*, const V*, const V*, const V*, const V*, const int*, int);
    if constexpr (std::is_same<V, float>::value) f = tilted ? rvpiTiltedHaarClassifierInitAlloc_32f : rvpiHaarClassifierInitAlloc_32f;
    else f = tilted ? rvpiTiltedHaarClassifierInitAlloc_32s : rvpiHaarClassifierInitAlloc_32s;
    EXPECT_EQ(f(&s, data(in.feature), data(in.weight), data(in.thr), data(in.val1), data(in.val2), data(in.num),
                static_cast<int>(in.num.size())), rvpStsNoErr);
    return std::unique_ptr<S, Free>(s);
}

// Random stage of `count` classifiers inside a win x win window. Tilted
// rectangles keep x + 1 >= h so that they pass the tilted test.
template <class V> Input<V> randomStage(std::mt19937& rng, int count, int win, bool tilted) {
    auto pick = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); };
    Input<V> in;
    for (int c = 0; c < count; ++c) {
        const int n = std::vector<int>{1, 2, 2, 3, 3, 4, 5}[pick(0, 6)];
        in.num.push_back(n);
        for (int k = 0; k < n; ++k) {
            RvpiRect r;
            r.width = pick(1, win / 2);
            r.height = pick(1, win / 2);
            r.x = pick(tilted ? r.height - 1 : 0, win - r.width);
            r.y = pick(0, win - r.height - (tilted ? r.width : 0));
            in.feature.push_back(r);
            in.weight.push_back(k == 0 ? V(-1) : V(pick(-300, 300)) / V(100));  // integers: -3..3
        }
        in.thr.push_back(V(pick(-4000, 4000)) / V(10));
        in.val1.push_back(V(pick(-100, 100)) / V(10));
        in.val2.push_back(V(pick(-100, 100)) / V(10));
    }
    return in;
}

template <class H> std::array<int, 8> cornersOf(const H& h) { return {h.ax, h.ay, h.bx, h.by, h.cx, h.cy, h.dx, h.dy}; }

TEST(Haar, RecordOrderAndHeader) {
    Input<float> in;
    const int nums[] = {1, 3, 2, 4, 2, 3};
    for (int c = 0, r = 0; c < 6; ++c) {
        in.num.push_back(nums[c]);
        in.thr.push_back(static_cast<float>(c));
        in.val1.push_back(1);
        in.val2.push_back(2);
        for (int k = 0; k < nums[c]; ++k, ++r) {
            in.feature.push_back({r % 5 + 3, r % 3 + 1, 2, 3});
            in.weight.push_back(k == 0 ? -1.5f : 2.0f);
        }
    }
    for (bool tilted : {false, true}) {
        auto s = make(in, tilted);
        const auto want = ref::records(in, tilted);
        EXPECT_EQ((std::array<int, 7>{s->numClassifiers, s->numRects, s->numRectsUsed, static_cast<int>(s->flags), s->numTwoRect,
                                      s->numTwoThreeRect, s->allFirstWeightsMinusOne}),
                  (std::array<int, 7>{6, 15, 15, tilted, tilted ? 0 : 2, tilted ? 0 : 4, 1}));
        const int order[6] = {2, 4, 1, 5, 0, 3};
        for (int c = 0; c < 6; ++c) {
            const auto& rec = s->pClassifiers[c];
            EXPECT_EQ(want[c].index, tilted ? c : order[c]);
            EXPECT_EQ(rec.info, static_cast<uint32_t>(want[c].index) * 256 + (tilted ? 1 : 0)) << c;
            EXPECT_EQ(rec.threshold, in.thr[want[c].index]);
            ASSERT_EQ(rec.numRects, nums[want[c].index]);
            for (int k = 0; k < rec.numRects; ++k) EXPECT_EQ(cornersOf(rec.pRects[k]), want[c].corners[k]);
        }
    }
    // Tilted corners by hand: (3, 1, 2, 3) gives A (2, 6), B (0, 4), C (5, 3), D (3, 1).
    EXPECT_EQ(ref::haarCorners({3, 1, 2, 3}, true), (std::array<int, 8>{2, 6, 0, 4, 5, 3, 3, 1}));
    in.weight[0] = -0.5f;
    EXPECT_EQ(make(in, false)->allFirstWeightsMinusOne, 0);
}

TEST(Haar, BoundingBoxAndSize) {
    // boundWidth takes corner A's x only when boundWidth + boundX falls short
    // of it, and loses boundX at the end: 3 - 5 = -2 for one rectangle at x = 5.
    using Box = std::array<int, 4>;
    auto s = make(Input<int>{{{5, 2, 3, 4}}, {1}, {0}, {0}, {0}, {1}}, false);
    EXPECT_EQ((Box{s->boundX, s->boundY, s->boundWidth, s->boundHeight}), (Box{5, 2, -2, 2}));
    s = make(Input<int>{{{5, 2, 3, 4}, {1, 7, 4, 1}}, {1, 1}, {0}, {0}, {0}, {2}}, false);
    EXPECT_EQ((Box{s->boundX, s->boundY, s->boundWidth, s->boundHeight}), (Box{1, 2, 5 - 1, 8 - 2}));
    RvpiSize size;
    ASSERT_EQ(rvpiGetHaarClassifierSize_32f(make(Input<float>{{{1, 2, 3, 4}}, {1}, {0}, {0}, {0}, {1}}, false).get(), &size), 0);
    EXPECT_TRUE(size.width == 4 && size.height == 6);
}

TEST(Haar, TiltAfterTheFact) {
    // Classifier 0 is a w = 2, h = 1 rectangle at (4, 3), stored behind the
    // two-rectangle classifier 1; the 32s rule uses w where the 32f uses h.
    // The random stages cover the corners of flag 1; flag 0 differs here.
    const Input<float> f{{{4, 3, 2, 1}, {0, 0, 1, 1}, {1, 1, 1, 1}}, {1, 1, 1}, {0, 0}, {0, 0}, {0, 0}, {1, 2}};
    const Rvp8u none[2] = {0, 0}, first[2] = {1, 0};
    auto sf = make(f, false);
    auto si = make(Input<int>{f.feature, {1, 1, 1}, {0, 0}, {0, 0}, {0, 0}, {1, 2}}, false);
    ASSERT_EQ(rvpiTiltHaarFeatures_32f(none, 0, sf.get()), 0);  // selects nothing: no lock
    ASSERT_EQ(rvpiTiltHaarFeatures_32f(first, 0, sf.get()), 0);
    ASSERT_EQ(rvpiTiltHaarFeatures_32s(first, 0, si.get()), 0);
    EXPECT_EQ(cornersOf(sf->pClassifiers[1].pRects[0]), (std::array<int, 8>{4, 4, 3, 3, 6, 2, 5, 1}));
    EXPECT_EQ(cornersOf(si->pClassifiers[1].pRects[0]), (std::array<int, 8>{4, 4, 2, 2, 6, 2, 4, 0}));
    EXPECT_TRUE(sf->pClassifiers[1].info == 1u && sf->pClassifiers[0].info == 1u << 8 && sf->flags == 1u);
    EXPECT_EQ(rvpiTiltHaarFeatures_32f(first, 0, sf.get()), rvpStsBadArgErr);
    EXPECT_EQ(rvpiTiltHaarFeatures_32s(none, 0, si.get()), rvpStsBadArgErr);
    EXPECT_EQ(rvpiTiltHaarFeatures_32f(none, 0, make(f, true).get()), rvpStsBadArgErr);
}

// Integer and float tables of one random image, upright and tilted, with
// the region's first position at element (1, 1) so that tilted corners
// reaching column -1 stay in memory; the mixed forms step one row and one
// element further into the tilted table themselves.
struct Scene {
    static constexpr int kWin = 12;
    int w, h;
    Image<Rvp32s> sum, tilt, normi;
    Image<Rvp32f> sumf, tiltf, normf;
    Scene(int w_, int h_, uint32_t seed)
        : w(w_), h(h_), sum(w + 3 * kWin, h + 3 * kWin), tilt(sum), normi(w, h), sumf(sum.width(), sum.height()),
          tiltf(sumf), normf(w, h) {
        Image<Rvp8u> img(sum.width() - 2, sum.height() - 2);
        img.fill(Random<Rvp8u>(seed));
        EXPECT_EQ(rvpiIntegral_8u32s_C1R(img.ptr(), img.step(), sum.ptr(), sum.step(), img.size(), 0), 0);
        EXPECT_EQ(rvpiIntegral_8u32f_C1R(img.ptr(), img.step(), sumf.ptr(), sumf.step(), img.size(), 0), 0);
        EXPECT_EQ(rvpiTiltedIntegral_8u32s_C1R(img.ptr(), img.step(), tilt.ptr(), tilt.step(), img.size(), 0), 0);
        tiltf.fill([] { return 0.0f; });
        EXPECT_EQ(rvpiTiltedIntegral_8u32f_C1R(img.ptr(), img.step(), tiltf.ptr(), tiltf.step(), img.size(), 0), 0);
        std::mt19937 rng(seed);
        normf.fill([&] { return std::uniform_real_distribution<float>(0.5f, 40.0f)(rng); });
        normi.fill([&] { return std::uniform_int_distribution<int>(-5, 60)(rng); });
    }
};

template <class T> const T* at(const Image<T>& t, int x, int y) { return t.ptr() + y * (t.step() / 4) + x; }
template <class T> ref::Grid<T> grid(const Image<T>& t, int x, int y) { return {at(t, x, y), t.step() / 4}; }

TEST(Haar, ApplyMatchesReference) {
    for (uint32_t seed = 1; seed <= 12; ++seed) {
        std::mt19937 rng(seed);
        const Scene sc(17 + seed * 3, 9 + seed, seed);
        const RvpiSize roi{sc.w, sc.h};
        const int count = seed == 1 ? 0 : static_cast<int>(rng() % 24 + 1), sf = -static_cast<int>(seed % 3);
        const bool tilted = seed % 3 == 0;  // a tilted state read through the plain forms too
        const Input<float> inF = randomStage<float>(rng, count, Scene::kWin, tilted);
        const Input<int> inI = randomStage<int>(rng, count, Scene::kWin, tilted);
        auto sF = make(inF, tilted);
        auto sI = make(inI, tilted);
        auto recF = ref::records(inF, tilted);
        auto recI = ref::records(inI, tilted);
        if (seed % 3 == 1) {  // tilt some classifiers afterwards: mixed stages, both corner rules
            std::vector<Rvp8u> sel(count + 1);
            for (auto& b : sel) b = rng() % 2;
            ASSERT_EQ(rvpiTiltHaarFeatures_32f(sel.data(), 1, sF.get()), 0);
            ASSERT_EQ(rvpiTiltHaarFeatures_32s(sel.data(), 1, sI.get()), 0);
            auto retilt = [&](auto& recs, bool intRule) {
                for (auto& r : recs) {
                    if (!sel[r.index]) continue;
                    r.tilted = true;
                    for (auto& c : r.corners) {
                        const int x = c[6], y = c[7], w = c[0] - x, h = c[1] - y;
                        c = intRule ? std::array<int, 8>{x, y + 2 * w, x - w, y + w, x + w, y + w, x, y}
                                    : std::array<int, 8>{x + w - h, y + w + h, x - h, y + h, x + w, y + w, x, y};
                    }
                }
            };
            retilt(recF, false);
            retilt(recI, true);
        }
        // Stage thresholds near the middle of the possible scores.
        float stF = std::uniform_real_distribution<float>(-3, 3)(rng);
        int stI = static_cast<int>(rng() % 7) - 3;
        for (int c = 0; c < count; ++c) {
            stF += (inF.val1[c] + inF.val2[c]) / 2;
            stI += (inI.val1[c] + inI.val2[c]) / 2;
        }
        const Rvp32f *sumf = at(sc.sumf, 1, 1), *tiltf = at(sc.tiltf, 1, 1), *nf = sc.normf.ptr();
        const Rvp32s *sum = at(sc.sum, 1, 1), *tilt = at(sc.tilt, 1, 1), *ni = sc.normi.ptr();
        const int ss = sc.sum.step(), nfs = sc.normf.step(), nis = sc.normi.step();
        using Call = std::function<RvpStatus(Rvp8u*, int, int*)>;
        const struct { const char* what; ref::HaarKind kind; bool floatTables, mixed; Call call; } members[] = {
            {"32f", ref::HaarKind::Float, true, false, [&](Rvp8u* m, int ms, int* p) { return rvpiApplyHaarClassifier_32f_C1R(sumf, ss, nf, nfs, m, ms, roi, p, stF, sF.get()); }},
            {"32s32f", ref::HaarKind::Float, false, false, [&](Rvp8u* m, int ms, int* p) { return rvpiApplyHaarClassifier_32s32f_C1R(sum, ss, nf, nfs, m, ms, roi, p, stF, sF.get()); }},
            {"32s", ref::HaarKind::Int, false, false, [&](Rvp8u* m, int ms, int* p) { return rvpiApplyHaarClassifier_32s_C1RSfs(sum, ss, ni, nis, m, ms, roi, p, stI, sI.get(), sf); }},
            {"mixed 32f", ref::HaarKind::Float, true, true, [&](Rvp8u* m, int ms, int* p) { return rvpiApplyMixedHaarClassifier_32f_C1R(sumf, ss, tiltf, ss, nf, nfs, m, ms, roi, p, stF, sF.get()); }},
            {"mixed 32s32f", ref::HaarKind::Float, false, true, [&](Rvp8u* m, int ms, int* p) { return rvpiApplyMixedHaarClassifier_32s32f_C1R(sum, ss, tilt, ss, nf, nfs, m, ms, roi, p, stF, sF.get()); }},
            {"mixed 32s", ref::HaarKind::MixedInt, false, true, [&](Rvp8u* m, int ms, int* p) { return rvpiApplyMixedHaarClassifier_32s_C1RSfs(sum, ss, tilt, ss, ni, nis, m, ms, roi, p, stI, sI.get(), sf); }},
        };
        for (const auto& mb : members) {
            SCOPED_TRACE(testing::Message() << mb.what << " seed " << seed);
            // A random mask of live positions, in a buffer whose padding must stay.
            const int maskStep = sc.w + 3;
            std::vector<uint8_t> mask(static_cast<size_t>(maskStep) * sc.h), want(static_cast<size_t>(sc.w) * sc.h);
            for (size_t k = 0; k < mask.size(); ++k) mask[k] = rng() % 4 ? static_cast<uint8_t>(1 + rng() % 200) : 0;
            for (int j = 0; j < sc.h; ++j) std::copy_n(mask.begin() + j * maskStep, sc.w, want.begin() + j * sc.w);
            const std::vector<uint8_t> before = mask;
            int positive = -1, wantPositive;
            ASSERT_EQ(mb.call(mask.data(), maskStep, &positive), rvpStsNoErr);
            if (mb.floatTables)
                wantPositive = ref::stage(mb.kind, recF, grid(sc.sumf, 1, 1), grid(sc.tiltf, 2, 2), mb.mixed, grid(sc.normf, 0, 0), want, sc.w, sc.h, stF, sf);
            else if (mb.kind == ref::HaarKind::Float)
                wantPositive = ref::stage(mb.kind, recF, grid(sc.sum, 1, 1), grid(sc.tilt, 2, 2), mb.mixed, grid(sc.normf, 0, 0), want, sc.w, sc.h, stF, sf);
            else
                wantPositive = ref::stage(mb.kind, recI, grid(sc.sum, 1, 1), grid(sc.tilt, 2, 2), mb.mixed, grid(sc.normi, 0, 0), want, sc.w, sc.h, stI, sf);
            EXPECT_EQ(positive, wantPositive);
            for (int j = 0; j < sc.h; ++j)
                for (int i = 0; i < maskStep; ++i)
                    ASSERT_EQ(mask[j * maskStep + i], i < sc.w ? want[j * sc.w + i] : before[j * maskStep + i]) << i << "," << j;
        }
    }
}

// Boundaries by hand: a 5x1 region (four positions side by side, then one
// alone) whose one-pixel sums are 10, weighted 3 (further rectangles weigh
// 0), norm 2. Every t = 30 = threshold 15 x norm takes val2 (7), in the two-
// and three-rectangle groups and in the general loop alike, and a stage
// threshold equal to the score passes.
TEST(Haar, DecisionsAtTheBoundaries) {
    const Rvp32s table[2][6] = {{0, 0, 0, 0, 0, 0}, {0, 10, 20, 30, 40, 50}}, normI[5] = {2, 2, 2, 2, 2};
    const Rvp32f tablef[2][6] = {{0, 0, 0, 0, 0, 0}, {0, 10, 20, 30, 40, 50}}, normF[5] = {2, 2, 2, 2, 2};
    Input<int> in;
    for (int n : {2, 2, 2, 2, 3, 3, 3, 3, 1}) {
        in.num.push_back(n);
        for (int k = 0; k < n; ++k) {
            in.feature.push_back({0, 0, 1, 1});
            in.weight.push_back(k ? 0 : 3);
        }
        in.thr.push_back(15);
        in.val1.push_back(1);
        in.val2.push_back(7);
    }
    auto f = [](const std::vector<int>& v) { return std::vector<float>(v.begin(), v.end()); };
    auto s = make(in, false);
    auto sF = make(Input<float>{in.feature, f(in.weight), f(in.thr), f(in.val1), f(in.val2), in.num}, false);
    for (int passes : {1, 0}) {
        Rvp8u m[3][5] = {{1, 1, 1, 1, 1}, {1, 1, 1, 1, 1}, {1, 1, 1, 1, 1}};
        int pos[3] = {-1, -1, -1};
        const Rvp32f stage = passes ? 63.0f : 63.5f;
        ASSERT_EQ(rvpiApplyHaarClassifier_32s_C1RSfs(&table[0][0], 24, normI, 20, m[0], 5, {5, 1}, &pos[0], 64 - passes, s.get(), 5), 0);
        ASSERT_EQ(rvpiApplyHaarClassifier_32f_C1R(&tablef[0][0], 24, normF, 20, m[1], 5, {5, 1}, &pos[1], stage, sF.get()), 0);
        ASSERT_EQ(rvpiApplyHaarClassifier_32s32f_C1R(&table[0][0], 24, normF, 20, m[2], 5, {5, 1}, &pos[2], stage, sF.get()), 0);
        for (int k = 0; k < 3; ++k)
            EXPECT_TRUE(pos[k] == 5 * passes && std::count(m[k], m[k] + 5, passes) == 5) << k << " " << passes;
    }
}

// Three stages with an 8x8 window whose centre 6x6 is the object, on an
// image with two bright 6x6 squares, one with a bright pixel beside it: the
// first stage keeps windows at least half over a square, the second windows
// exactly on a square, the third needs a dark ring around it.
TEST(Haar, CascadeFindsTheIsolatedSquare) {
    const int W = 48, H = 32, PW = W - 7, PH = H - 7;
    Image<Rvp8u> img(W, H);
    img.fill([] { return Rvp8u(0); });
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 6; ++x) img.at(30 + x, 12 + y) = img.at(6 + x, 5 + y) = 255;
    img.at(5, 8) = 255;
    Image<Rvp32s> sum(W + 1, H + 1);
    Image<Rvp32f> sumf(W + 1, H + 1), norm(PW, PH);
    ASSERT_EQ(rvpiIntegral_8u32s_C1R(img.ptr(), img.step(), sum.ptr(), sum.step(), img.size(), 0), 0);
    ASSERT_EQ(rvpiIntegral_8u32f_C1R(img.ptr(), img.step(), sumf.ptr(), sumf.step(), img.size(), 0), 0);
    norm.fill([] { return 1.0f; });
    const Input<float> stages[3] = {
        {{{1, 1, 6, 6}}, {1}, {18 * 255}, {0}, {1}, {1}},
        {{{1, 1, 6, 6}}, {1}, {36 * 255}, {0}, {1}, {1}},
        {{{0, 0, 8, 8}, {1, 1, 6, 6}}, {1, -1}, {1}, {1}, {0}, {2}},  // ring sum below 1
    };
    for (bool floatTable : {false, true}) {
        Image<Rvp8u> mask(PW, PH, 1, 5);
        mask.fill([] { return Rvp8u(1); });
        int survivors[3];
        for (int k = 0; k < 3; ++k) {
            auto s = make(stages[k], false);
            ASSERT_EQ(floatTable ? rvpiApplyHaarClassifier_32f_C1R(sumf.ptr(), sumf.step(), norm.ptr(), norm.step(), mask.ptr(),
                                                                  mask.step(), {PW, PH}, &survivors[k], 1.0f, s.get())
                                 : rvpiApplyHaarClassifier_32s32f_C1R(sum.ptr(), sum.step(), norm.ptr(), norm.step(), mask.ptr(),
                                                                     mask.step(), {PW, PH}, &survivors[k], 1.0f, s.get()), 0);
        }
        ASSERT_TRUE(mask.guardsIntact());
        EXPECT_TRUE(survivors[0] > 2 && survivors[1] == 2 && survivors[2] == 1);
        for (int j = 0; j < PH; ++j)
            for (int i = 0; i < PW; ++i) EXPECT_EQ(mask.at(i, j) != 0, i == 29 && j == 11) << i << "," << j;
    }
}

TEST(Haar, ConstructorValidation) {
    const RvpiRect good[2] = {{0, 0, 2, 2}, {2, 1, 1, 1}}, bad[2] = {{0, 0, 2, 2}, {1, -1, 1, 1}};
    const RvpiRect tiltBad[2] = {{0, 0, 1, 1}, {1, 0, 1, 3}};  // x + 1 < h
    const float wf[2] = {1, 1}, vf[1] = {0};
    const int wi[2] = {1, 1}, vi[1] = {0}, num2[1] = {2}, num0[1] = {0};
    auto* const sentinelF = reinterpret_cast<RvpiHaarClassifier_32f*>(0x1000);
    auto* const sentinelS = reinterpret_cast<RvpiHaarClassifier_32s*>(0x1000);
    RvpiHaarClassifier_32f* pf = sentinelF;
    RvpiHaarClassifier_32s* ps = sentinelS;
    const struct { const char* what; RvpStatus got, want; } rows[] = {
        {"null state pointer", rvpiHaarClassifierInitAlloc_32f(nullptr, good, wf, vf, vf, vf, num2, -1), rvpStsNullPtrErr},
        {"null val2", rvpiHaarClassifierInitAlloc_32f(&pf, good, wf, vf, vf, nullptr, num2, 1), rvpStsNullPtrErr},
        {"length before rectangles", rvpiHaarClassifierInitAlloc_32f(&pf, bad, wf, vf, vf, vf, num2, -1), rvpStsSizeErr},
        {"count 0", rvpiHaarClassifierInitAlloc_32s(&ps, bad, wi, vi, vi, vi, num0, 1), rvpStsSizeErr},
        // The 32f upright constructor refuses before allocating: *ppState untouched.
        {"32f bad rectangle", rvpiHaarClassifierInitAlloc_32f(&pf, bad, wf, vf, vf, vf, num2, 1), rvpStsBadArgErr},
    };
    for (const auto& r : rows) EXPECT_EQ(r.got, r.want) << r.what;
    EXPECT_TRUE(pf == sentinelF && ps == sentinelS);
    // The others refuse while copying and leave a null state.
    EXPECT_EQ(rvpiHaarClassifierInitAlloc_32s(&ps, bad, wi, vi, vi, vi, num2, 1), rvpStsBadArgErr);
    EXPECT_EQ(ps, nullptr);
    ps = sentinelS;
    EXPECT_EQ(rvpiTiltedHaarClassifierInitAlloc_32s(&ps, tiltBad, wi, vi, vi, vi, num2, 1), rvpStsBadArgErr);
    EXPECT_EQ(rvpiTiltedHaarClassifierInitAlloc_32f(&pf, tiltBad, wf, vf, vf, vf, num2, 1), rvpStsBadArgErr);
    EXPECT_TRUE(ps == nullptr && pf == nullptr);
    EXPECT_EQ(rvpiHaarClassifierInitAlloc_32f(&pf, tiltBad, wf, vf, vf, vf, num2, 1), rvpStsNoErr);  // fine upright
    EXPECT_EQ(rvpiHaarClassifierFree_32f(pf), rvpStsNoErr);
    RvpiSize size;
    EXPECT_EQ(rvpiHaarClassifierFree_32s(nullptr), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiGetHaarClassifierSize_32s(nullptr, &size), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiTiltHaarFeatures_32f(nullptr, 0, pf), rvpStsNullPtrErr);
}

TEST(Haar, ApplyValidation) {
    auto sF = make(Input<float>{{{0, 0, 1, 1}}, {1}, {0}, {0}, {0}, {1}}, false);
    auto sI = make(Input<int>{{{0, 0, 1, 1}}, {1}, {0}, {0}, {0}, {1}}, false);
    Image<Rvp32f> t(9, 5), n(8, 4);
    Image<Rvp8u> mask(8, 4);
    mask.fill([] { return Rvp8u(1); });
    const auto before = mask.raw();
    const Rvp32f *pt = t.ptr(), *pn = n.ptr();
    const Rvp32s *it = reinterpret_cast<const Rvp32s*>(pt), *in = reinterpret_cast<const Rvp32s*>(pn);
    Rvp8u* m = mask.ptr();
    int pos = 12345;
    const struct { const char* what; RvpStatus got, want; } rows[] = {
        {"null src", rvpiApplyHaarClassifier_32f_C1R(nullptr, 36, pn, 32, m, 8, {8, 4}, &pos, 0, sF.get()), rvpStsNullPtrErr},
        {"null count", rvpiApplyHaarClassifier_32s32f_C1R(it, 36, pn, 32, m, 8, {8, 4}, nullptr, 0, sF.get()), rvpStsNullPtrErr},
        {"null state before size", rvpiApplyHaarClassifier_32s_C1RSfs(it, 36, in, 32, m, 8, {0, 4}, &pos, 0, nullptr, 0), rvpStsNullPtrErr},
        {"mixed null tilt", rvpiApplyMixedHaarClassifier_32f_C1R(pt, 36, nullptr, 36, pn, 32, m, 8, {8, 4}, &pos, 0, sF.get()), rvpStsNullPtrErr},
        {"size", rvpiApplyHaarClassifier_32f_C1R(pt, 1, pn, 1, m, 1, {8, 0}, &pos, 0, sF.get()), rvpStsSizeErr},
        {"src step", rvpiApplyHaarClassifier_32f_C1R(pt, 28, pn, 32, m, 8, {8, 4}, &pos, 0, sF.get()), rvpStsStepErr},
        {"mask step", rvpiApplyHaarClassifier_32s_C1RSfs(it, 36, in, 32, m, 7, {8, 4}, &pos, 0, sI.get(), 0), rvpStsStepErr},
        {"mixed tilt step", rvpiApplyMixedHaarClassifier_32s32f_C1R(it, 36, it, 28, pn, 32, m, 8, {8, 4}, &pos, 0, sF.get()), rvpStsStepErr},
        {"norm step not x4, odd mask step fine", rvpiApplyHaarClassifier_32f_C1R(pt, 36, pn, 33, m, 9, {8, 4}, &pos, 0, sF.get()), rvpStsNotEvenStepErr},
        {"evenness before scale", rvpiApplyMixedHaarClassifier_32s_C1RSfs(it, 36, it, 38, in, 32, m, 8, {8, 4}, &pos, 0, sI.get(), 1), rvpStsNotEvenStepErr},
        {"positive scale", rvpiApplyMixedHaarClassifier_32s_C1RSfs(it, 36, it, 36, in, 32, m, 8, {8, 4}, &pos, 0, sI.get(), 1), rvpStsBadArgErr},
    };
    for (const auto& r : rows) EXPECT_EQ(r.got, r.want) << r.what;
    EXPECT_TRUE(mask.raw() == before && pos == 12345) << "a refused call wrote the mask or the count";
}

}  // namespace
