// Haar stages: the constructors' record order and fields, the size query,
// tilting after the fact, the six apply functions against the reference
// evaluator on random stages, a three-stage cascade on a known pattern, and
// the validation orders.
#include <functional>
#include <memory>

#include "../../src/detect/rvcvhaar.h"
#include "reference/ref_haar.h"
#include "support/rvtest.h"

using namespace rvtest;

namespace {

template <class V> using Input = ref::HaarInput<V>;

template <class S> struct StateDeleter;
template <> struct StateDeleter<RvpiHaarClassifier_32f> {
    void operator()(RvpiHaarClassifier_32f* s) const { rvpiHaarClassifierFree_32f(s); }
};
template <> struct StateDeleter<RvpiHaarClassifier_32s> {
    void operator()(RvpiHaarClassifier_32s* s) const { rvpiHaarClassifierFree_32s(s); }
};
template <class S> using Owned = std::unique_ptr<S, StateDeleter<S>>;

// Arrays of an empty stage still need non-null pointers.
template <class T> const T* data(const std::vector<T>& v) {
    static const T dummy[1] = {};
    return v.empty() ? dummy : v.data();
}

Owned<RvpiHaarClassifier_32f> make(const Input<float>& in, bool tilted) {
    RvpiHaarClassifier_32f* s = nullptr;
    auto f = tilted ? rvpiTiltedHaarClassifierInitAlloc_32f : rvpiHaarClassifierInitAlloc_32f;
    EXPECT_EQ(f(&s, data(in.feature), data(in.weight), data(in.thr), data(in.val1), data(in.val2), data(in.num),
                static_cast<int>(in.num.size())), rvpStsNoErr);
    return Owned<RvpiHaarClassifier_32f>(s);
}
Owned<RvpiHaarClassifier_32s> make(const Input<int>& in, bool tilted) {
    RvpiHaarClassifier_32s* s = nullptr;
    auto f = tilted ? rvpiTiltedHaarClassifierInitAlloc_32s : rvpiHaarClassifierInitAlloc_32s;
    EXPECT_EQ(f(&s, data(in.feature), data(in.weight), data(in.thr), data(in.val1), data(in.val2), data(in.num),
                static_cast<int>(in.num.size())), rvpStsNoErr);
    return Owned<RvpiHaarClassifier_32s>(s);
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
            if constexpr (std::is_same<V, float>::value) in.weight.push_back(k == 0 ? -1.0f : pick(-300, 300) / 100.0f);
            else in.weight.push_back(k == 0 ? -1 : pick(-3, 3));
        }
        if constexpr (std::is_same<V, float>::value) {
            in.thr.push_back(pick(-4000, 4000) / 10.0f);
            in.val1.push_back(pick(-100, 100) / 10.0f);
            in.val2.push_back(pick(-100, 100) / 10.0f);
        } else {
            in.thr.push_back(pick(-400, 400));
            in.val1.push_back(pick(-10, 10));
            in.val2.push_back(pick(-10, 10));
        }
    }
    return in;
}

TEST(Haar, RecordOrderAndHeader) {
    Input<float> in;
    const int nums[] = {1, 3, 2, 4, 2, 3};
    int r = 0;
    for (int n : nums) {
        in.num.push_back(n);
        in.thr.push_back(static_cast<float>(r));
        in.val1.push_back(1);
        in.val2.push_back(2);
        for (int k = 0; k < n; ++k, ++r) {
            in.feature.push_back({r % 5 + 3, r % 3 + 1, 2, 3});
            in.weight.push_back(k == 0 ? -1.5f : 2.0f);
        }
    }
    auto s = make(in, false);
    ASSERT_TRUE(s);
    EXPECT_EQ(s->numClassifiers, 6);
    EXPECT_EQ(s->numRects, 15);
    EXPECT_EQ(s->numRectsUsed, 15);
    EXPECT_EQ(s->numTwoRect, 2);
    EXPECT_EQ(s->numTwoThreeRect, 4);
    EXPECT_EQ(s->flags, 0u);
    EXPECT_EQ(s->allFirstWeightsMinusOne, 1);
    const auto want = ref::records(in, false);
    const int order[] = {2, 4, 1, 5, 0, 3};
    for (int c = 0; c < 6; ++c) {
        const auto& rec = s->pClassifiers[c];
        EXPECT_EQ(want[c].index, order[c]);
        EXPECT_EQ(rec.info, static_cast<uint32_t>(order[c]) << 8) << c;
        EXPECT_EQ(rec.threshold, in.thr[order[c]]);
        ASSERT_EQ(rec.numRects, nums[order[c]]);
        for (int k = 0; k < rec.numRects; ++k) {
            const auto& h = rec.pRects[k];
            EXPECT_EQ((std::array<int, 8>{h.ax, h.ay, h.bx, h.by, h.cx, h.cy, h.dx, h.dy}), want[c].corners[k]);
            EXPECT_EQ(h.weight, want[c].weight[k]);
        }
    }
    // The tilted constructor keeps the caller's order and marks every record.
    in.weight[0] = -0.5f;
    auto t = make(in, true);
    ASSERT_TRUE(t);
    EXPECT_EQ(t->flags, 1u);
    EXPECT_EQ(t->numTwoRect, 0);
    EXPECT_EQ(t->numTwoThreeRect, 0);
    EXPECT_EQ(t->allFirstWeightsMinusOne, 0);
    for (int c = 0; c < 6; ++c) EXPECT_EQ(t->pClassifiers[c].info, static_cast<uint32_t>(c) * 256 + 1);
    const auto& h = t->pClassifiers[0].pRects[0];  // (3, 1, 2, 3): A (2, 6), B (0, 4), C (5, 3), D (3, 1)
    EXPECT_EQ((std::array<int, 8>{h.ax, h.ay, h.bx, h.by, h.cx, h.cy, h.dx, h.dy}), (std::array<int, 8>{2, 6, 0, 4, 5, 3, 3, 1}));
}

TEST(Haar, BoundingBoxAndSize) {
    // Width follows corner A's x only when boundWidth + boundX falls short,
    // then loses boundX at the end: 3 - 5 = -2 for one rectangle at x = 5.
    Input<int> in{{{5, 2, 3, 4}}, {1}, {0}, {0}, {0}, {1}};
    auto s = make(in, false);
    EXPECT_EQ(s->boundX, 5);
    EXPECT_EQ(s->boundY, 2);
    EXPECT_EQ(s->boundWidth, -2);
    EXPECT_EQ(s->boundHeight, 2);
    in = {{{5, 2, 3, 4}, {1, 7, 4, 1}}, {1, 1}, {0}, {0}, {0}, {2}};
    s = make(in, false);
    EXPECT_EQ(s->boundX, 1);
    EXPECT_EQ(s->boundWidth, 5 - 1);   // 3 + 1 < 5 (A of the second): takes A's x
    EXPECT_EQ(s->boundHeight, 8 - 2);  // 4 + 2 < 8: takes A's y
    RvpiSize size{-1, -1};
    Input<float> one{{{1, 2, 3, 4}}, {1}, {0}, {0}, {0}, {1}};
    auto f = make(one, false);
    ASSERT_EQ(rvpiGetHaarClassifierSize_32f(f.get(), &size), 0);
    EXPECT_EQ(size.width, 4);
    EXPECT_EQ(size.height, 6);
    ASSERT_EQ(rvpiGetHaarClassifierSize_32s(s.get(), &size), 0);
    EXPECT_EQ(size.width, 8);
    EXPECT_EQ(size.height, 8);
}

template <class H> std::array<int, 8> cornersOf(const H& h) { return {h.ax, h.ay, h.bx, h.by, h.cx, h.cy, h.dx, h.dy}; }

TEST(Haar, TiltAfterTheFact) {
    // A w = 2, h = 1 rectangle at (4, 3): the two types disagree.
    Input<float> f{{{4, 3, 2, 1}, {0, 0, 1, 1}, {1, 1, 1, 1}}, {1, 1, 1}, {0, 0}, {0, 0}, {0, 0}, {1, 2}};
    Input<int> n{{{4, 3, 2, 1}, {0, 0, 1, 1}, {1, 1, 1, 1}}, {1, 1, 1}, {0, 0}, {0, 0}, {0, 0}, {1, 2}};
    const struct { int flag; std::array<int, 8> f32, s32; } rows[] = {
        {0, {4, 4, 3, 3, 6, 2, 5, 1}, {4, 4, 2, 2, 6, 2, 4, 0}},
        {1, {5, 6, 3, 4, 6, 5, 4, 3}, {4, 7, 2, 5, 6, 5, 4, 3}},
    };
    const Rvp8u none[2] = {0, 0}, first[2] = {1, 0};
    for (const auto& r : rows) {
        auto sf = make(f, false);
        auto si = make(n, false);
        ASSERT_EQ(rvpiTiltHaarFeatures_32f(none, r.flag, sf.get()), 0);  // selects nothing: no lock
        EXPECT_EQ(sf->flags, 0u);
        ASSERT_EQ(rvpiTiltHaarFeatures_32f(first, r.flag, sf.get()), 0);
        ASSERT_EQ(rvpiTiltHaarFeatures_32s(first, r.flag, si.get()), 0);
        // Classifier 0 (one rectangle) sits behind the two-rectangle one.
        EXPECT_EQ(cornersOf(sf->pClassifiers[1].pRects[0]), r.f32) << r.flag;
        EXPECT_EQ(cornersOf(si->pClassifiers[1].pRects[0]), r.s32) << r.flag;
        EXPECT_EQ(sf->pClassifiers[1].info, 1u);
        EXPECT_EQ(sf->pClassifiers[0].info, 1u << 8);
        EXPECT_EQ(cornersOf(sf->pClassifiers[0].pRects[0]), (std::array<int, 8>{1, 1, 0, 1, 1, 0, 0, 0}));
        EXPECT_EQ(sf->flags, 1u);
        EXPECT_EQ(rvpiTiltHaarFeatures_32f(first, r.flag, sf.get()), rvpStsBadArgErr);
        EXPECT_EQ(rvpiTiltHaarFeatures_32s(none, r.flag, si.get()), rvpStsBadArgErr);
    }
    auto t = make(f, true);
    EXPECT_EQ(rvpiTiltHaarFeatures_32f(none, 0, t.get()), rvpStsBadArgErr);
}

// Tables of one image, with the region's first position one element in from
// the table's corner so that tilted corners reaching column -1 stay in memory.
struct Scene {
    int w, h;  // positions
    Image<Rvp32s> sum, tilt;
    Image<Rvp32f> sumf, tiltf, normf;
    Image<Rvp32s> normi;
    Scene(int w_, int h_, int win, uint32_t seed)
        : w(w_), h(h_), sum(w_ + win + 3, h_ + 2 * win + 3), tilt(w_ + 2 * win + 4, h_ + 2 * win + 4),
          sumf(sum.width(), sum.height()), tiltf(tilt.width(), tilt.height()), normf(w_, h_), normi(w_, h_) {
        Image<Rvp8u> img(sum.width() - 1, sum.height() - 1);
        img.fill(Random<Rvp8u>(seed));
        const RvpiSize roi = img.size(), troi{tilt.width() - 2, tilt.height() - 2};
        Image<Rvp8u> timg(troi.width, troi.height);
        timg.fill(Random<Rvp8u>(seed + 1));
        EXPECT_EQ(rvpiIntegral_8u32s_C1R(img.ptr(), img.step(), sum.ptr(), sum.step(), roi, 0), 0);
        EXPECT_EQ(rvpiIntegral_8u32f_C1R(img.ptr(), img.step(), sumf.ptr(), sumf.step(), roi, 0), 0);
        EXPECT_EQ(rvpiTiltedIntegral_8u32s_C1R(timg.ptr(), timg.step(), tilt.ptr(), tilt.step(), troi, 0), 0);
        tiltf.fill([] { return 0.0f; });
        EXPECT_EQ(rvpiTiltedIntegral_8u32f_C1R(timg.ptr(), timg.step(), tiltf.ptr(), tiltf.step(), troi, 0), 0);
        std::mt19937 rng(seed);
        normf.fill([&] { return std::uniform_real_distribution<float>(0.5f, 40.0f)(rng); });
        normi.fill([&] { return std::uniform_int_distribution<int>(-5, 60)(rng); });
    }
    template <class T> static const T* at(const Image<T>& t, int x, int y) { return t.ptr() + y * (t.step() / 4) + x; }
};

template <class T> ref::Grid<T> grid(const T* p, int step) { return {p, step / 4}; }

std::vector<uint8_t> randomMask(int w, int h, uint32_t seed) {
    std::mt19937 rng(seed);
    std::vector<uint8_t> m(static_cast<size_t>(w) * h);
    for (auto& b : m) b = rng() % 4 ? static_cast<uint8_t>(1 + rng() % 200) : 0;
    return m;
}

// One member on one stage: library against reference, mask and count.
template <class V, class Call>
void compare(const char* what, ref::HaarKind kind, const std::vector<ref::Record<V>>& recs, const Scene& sc,
             bool useFloatTables, bool mixed, V stageThr, int sf, uint32_t seed, Call&& call) {
    SCOPED_TRACE(testing::Message() << what << " seed " << seed << " stage " << stageThr);
    const int maskStep = sc.w + 3;
    std::vector<uint8_t> mask(static_cast<size_t>(maskStep) * sc.h, 0xEE);
    std::vector<uint8_t> want = randomMask(sc.w, sc.h, seed);
    for (int j = 0; j < sc.h; ++j) std::copy(want.begin() + j * sc.w, want.begin() + (j + 1) * sc.w, mask.begin() + j * maskStep);
    int positive = -1, wantPositive;
    ASSERT_EQ(call(mask.data(), maskStep, &positive), rvpStsNoErr);
    if (useFloatTables) {
        wantPositive = ref::stage<float, float, V>(kind, recs, grid(Scene::at(sc.sumf, 1, 1), sc.sumf.step()),
                                                   grid(Scene::at(sc.tiltf, 2, 2), sc.tiltf.step()), mixed,
                                                   grid(sc.normf.ptr(), sc.normf.step()), want, sc.w, sc.h, stageThr, sf);
    } else if constexpr (std::is_same<V, float>::value) {
        wantPositive = ref::stage<Rvp32s, float, V>(kind, recs, grid(Scene::at(sc.sum, 1, 1), sc.sum.step()),
                                                    grid(Scene::at(sc.tilt, 2, 2), sc.tilt.step()), mixed,
                                                    grid(sc.normf.ptr(), sc.normf.step()), want, sc.w, sc.h, stageThr, sf);
    } else {
        wantPositive = ref::stage<Rvp32s, Rvp32s, V>(kind, recs, grid(Scene::at(sc.sum, 1, 1), sc.sum.step()),
                                                     grid(Scene::at(sc.tilt, 2, 2), sc.tilt.step()), mixed,
                                                     grid(sc.normi.ptr(), sc.normi.step()), want, sc.w, sc.h, stageThr, sf);
    }
    EXPECT_EQ(positive, wantPositive);
    for (int j = 0; j < sc.h; ++j) {
        for (int i = 0; i < sc.w; ++i) ASSERT_EQ(mask[j * maskStep + i], want[j * sc.w + i]) << i << "," << j;
        for (int i = sc.w; i < maskStep; ++i) ASSERT_EQ(mask[j * maskStep + i], 0xEE) << "padding written";
    }
}

TEST(Haar, ApplyMatchesReference) {
    const int win = 12;
    for (uint32_t seed = 1; seed <= 12; ++seed) {
        std::mt19937 rng(seed);
        Scene sc(17 + seed * 3, 9 + seed, win, seed);
        const int count = seed == 1 ? 0 : static_cast<int>(rng() % 9 + 1);
        const bool tiltedState = seed % 3 == 0;
        const Input<float> inF = randomStage<float>(rng, count, win, tiltedState);
        const Input<int> inI = randomStage<int>(rng, count, win, tiltedState);
        auto sF = make(inF, tiltedState);
        auto sI = make(inI, tiltedState);
        const auto recF = ref::records(inF, tiltedState);
        const auto recI = ref::records(inI, tiltedState);
        // Stage thresholds near the middle of the possible scores.
        float stF = std::uniform_real_distribution<float>(-3, 3)(rng);
        int stI = static_cast<int>(rng() % 7) - 3;
        for (int c = 0; c < count; ++c) {
            stF += (inF.val1[c] + inF.val2[c]) / 2;
            stI += (inI.val1[c] + inI.val2[c]) / 2;
        }
        const Rvp32f* sumf = Scene::at(sc.sumf, 1, 1);
        const Rvp32s* sum = Scene::at(sc.sum, 1, 1);
        const Rvp32f* tiltf = Scene::at(sc.tiltf, 1, 1);  // the mixed forms step one row and element further in
        const Rvp32s* tilt = Scene::at(sc.tilt, 1, 1);
        const RvpiSize roi{sc.w, sc.h};
        const int sf = -static_cast<int>(seed % 3);

        compare<float>("32f", ref::HaarKind::Float, recF, sc, true, false, stF, 0, seed, [&](Rvp8u* m, int ms, int* pos) {
            return rvpiApplyHaarClassifier_32f_C1R(sumf, sc.sumf.step(), sc.normf.ptr(), sc.normf.step(), m, ms, roi, pos, stF, sF.get());
        });
        compare<float>("32s32f", ref::HaarKind::Float, recF, sc, false, false, stF, 0, seed, [&](Rvp8u* m, int ms, int* pos) {
            return rvpiApplyHaarClassifier_32s32f_C1R(sum, sc.sum.step(), sc.normf.ptr(), sc.normf.step(), m, ms, roi, pos, stF, sF.get());
        });
        compare<int>("32s", ref::HaarKind::Int, recI, sc, false, false, stI, 0, seed, [&](Rvp8u* m, int ms, int* pos) {
            return rvpiApplyHaarClassifier_32s_C1RSfs(sum, sc.sum.step(), sc.normi.ptr(), sc.normi.step(), m, ms, roi, pos, stI, sI.get(), sf);
        });
        compare<float>("mixed 32f", ref::HaarKind::Float, recF, sc, true, true, stF, 0, seed, [&](Rvp8u* m, int ms, int* pos) {
            return rvpiApplyMixedHaarClassifier_32f_C1R(sumf, sc.sumf.step(), tiltf, sc.tiltf.step(), sc.normf.ptr(), sc.normf.step(), m, ms, roi, pos, stF, sF.get());
        });
        compare<float>("mixed 32s32f", ref::HaarKind::Float, recF, sc, false, true, stF, 0, seed, [&](Rvp8u* m, int ms, int* pos) {
            return rvpiApplyMixedHaarClassifier_32s32f_C1R(sum, sc.sum.step(), tilt, sc.tilt.step(), sc.normf.ptr(), sc.normf.step(), m, ms, roi, pos, stF, sF.get());
        });
        compare<int>("mixed 32s", ref::HaarKind::MixedInt, recI, sc, false, true, stI, sf, seed, [&](Rvp8u* m, int ms, int* pos) {
            return rvpiApplyMixedHaarClassifier_32s_C1RSfs(sum, sc.sum.step(), tilt, sc.tilt.step(), sc.normi.ptr(), sc.normi.step(), m, ms, roi, pos, stI, sI.get(), sf);
        });
    }
}

// Edge decisions by hand: equality takes val2 and passes the stage; an
// empty stage scores 0; a dead mask reads nothing; the mixed Sfs scale.
TEST(Haar, DecisionsAtTheBoundaries) {
    // 1x1 region over a 2x2 table whose one-pixel sum is 10.
    const Rvp32s table[2][2] = {{0, 0}, {0, 10}};
    const Rvp32f tablef[2][2] = {{0, 0}, {0, 10}};
    const Rvp32s normI = 2;
    const Rvp32f normF = 2;
    Input<int> in{{{0, 0, 1, 1}}, {3}, {15}, {1}, {7}, {1}};  // t = 30 = 15 x 2: val2
    Input<float> inF{{{0, 0, 1, 1}}, {3}, {15}, {1}, {7}, {1}};
    auto s = make(in, false);
    auto sF = make(inF, false);
    for (int sf : {0, -3, 5}) {
        Rvp8u m = 1;
        int pos = -1;
        ASSERT_EQ(rvpiApplyHaarClassifier_32s_C1RSfs(&table[0][0], 8, &normI, 4, &m, 1, {1, 1}, &pos, 7, s.get(), sf), 0);
        EXPECT_TRUE(m == 1 && pos == 1) << "stage threshold equal to the score passes, sf " << sf;
    }
    Rvp8u m = 1;
    int pos = -1;
    ASSERT_EQ(rvpiApplyHaarClassifier_32f_C1R(&tablef[0][0], 8, &normF, 4, &m, 1, {1, 1}, &pos, 7.0f, sF.get()), 0);
    EXPECT_TRUE(m == 1 && pos == 1);
    ASSERT_EQ(rvpiApplyHaarClassifier_32f_C1R(&tablef[0][0], 8, &normF, 4, &m, 1, {1, 1}, &pos, 7.5f, sF.get()), 0);
    EXPECT_TRUE(m == 0 && pos == 0);
    // Mixed Sfs: scaleFactor -2 makes t = 120, still val2; with threshold 16
    // (32 > 30) the unscaled sum would take val1, the scaled one val2.
    in.thr = {16};
    auto s16 = make(in, false);
    for (const auto& c : {std::pair<int, int>{0, 0}, {-2, 1}}) {
        m = 1;
        ASSERT_EQ(rvpiApplyMixedHaarClassifier_32s_C1RSfs(&table[0][0], 8, &table[0][0], 8, &normI, 4, &m, 1, {1, 1}, &pos, 7,
                                                         s16.get(), c.first), 0);
        EXPECT_EQ(m, c.second) << "scaleFactor " << c.first;
    }
    // An empty stage scores 0 and passes exactly when 0 is not below the threshold.
    RvpiHaarClassifier_32f* e = nullptr;
    ASSERT_EQ(rvpiHaarClassifierInitAlloc_32f(&e, &inF.feature[0], &inF.weight[0], &inF.thr[0],
                                              &inF.val1[0], &inF.val2[0], &in.num[0], 0), 0);
    Owned<RvpiHaarClassifier_32f> empty(e);
    for (const auto& c : {std::pair<float, int>{0.0f, 1}, {-1.0f, 1}, {0.5f, 0}}) {
        m = 1;
        ASSERT_EQ(rvpiApplyHaarClassifier_32f_C1R(&tablef[0][0], 8, &normF, 4, &m, 1, {1, 1}, &pos, c.first, empty.get()), 0);
        EXPECT_EQ(pos, c.second);
    }
    // A dead mask gives 0 and reads no table (null-free but bogus table pointer).
    Rvp8u dead[4] = {0, 0, 0, 0};
    const Rvp32f* bogus = reinterpret_cast<const Rvp32f*>(16);
    ASSERT_EQ(rvpiApplyHaarClassifier_32f_C1R(bogus, 16, &normF, 16, dead, 4, {4, 1}, &pos, 0.0f, sF.get()), 0);
    EXPECT_EQ(pos, 0);
}

// Three stages on an image with two bright 6x6 squares, one of them with a
// bright pixel beside it, searched with an 8x8 window whose centre 6x6 is
// the object: the coarse stage keeps windows half over a square, the second
// only windows exactly on a square, the third needs a dark ring around it.
TEST(Haar, CascadeFindsTheIsolatedSquare) {
    const int W = 48, H = 32;
    Image<Rvp8u> img(W, H);
    img.fill([] { return Rvp8u(0); });
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 6; ++x) {
            img.at(30 + x, 12 + y) = 255;
            img.at(6 + x, 5 + y) = 255;
        }
    img.at(5, 8) = 255;  // touches the second square's ring
    Image<Rvp32s> sum(W + 1, H + 1);
    Image<Rvp32f> sumf(W + 1, H + 1);
    ASSERT_EQ(rvpiIntegral_8u32s_C1R(img.ptr(), img.step(), sum.ptr(), sum.step(), img.size(), 0), 0);
    ASSERT_EQ(rvpiIntegral_8u32f_C1R(img.ptr(), img.step(), sumf.ptr(), sumf.step(), img.size(), 0), 0);
    const int PW = W - 8 + 1, PH = H - 8 + 1;  // window positions
    Image<Rvp32f> normf(PW, PH);
    Image<Rvp32s> normi(PW, PH);
    normf.fill([] { return 1.0f; });
    normi.fill([] { return 1; });

    // Stage 1: inner sum >= 18 x 255. Stage 2: inner sum >= 36 x 255.
    // Stage 3: ring (whole window minus inner) below 1.
    Input<int> stages[3] = {
        {{{1, 1, 6, 6}}, {1}, {18 * 255}, {0}, {1}, {1}},
        {{{1, 1, 6, 6}}, {1}, {36 * 255}, {0}, {1}, {1}},
        {{{0, 0, 8, 8}, {1, 1, 6, 6}}, {1, -1}, {1}, {1}, {0}, {2}},
    };
    for (int member = 0; member < 3; ++member) {
        SCOPED_TRACE(member);
        Image<Rvp8u> mask(PW, PH, 1, 5);
        mask.fill([] { return Rvp8u(1); });
        int survivors[3];
        for (int k = 0; k < 3; ++k) {
            Input<float> f;
            f.feature = stages[k].feature;
            f.num = stages[k].num;
            for (int v : stages[k].weight) f.weight.push_back(static_cast<float>(v));
            f.thr = {static_cast<float>(stages[k].thr[0])};
            f.val1 = {static_cast<float>(stages[k].val1[0])};
            f.val2 = {static_cast<float>(stages[k].val2[0])};
            RvpStatus st;
            if (member == 0) {
                auto s = make(stages[k], false);
                st = rvpiApplyHaarClassifier_32s_C1RSfs(sum.ptr(), sum.step(), normi.ptr(), normi.step(), mask.ptr(),
                                                        mask.step(), {PW, PH}, &survivors[k], 1, s.get(), 0);
            } else {
                auto s = make(f, false);
                st = member == 1 ? rvpiApplyHaarClassifier_32s32f_C1R(sum.ptr(), sum.step(), normf.ptr(), normf.step(),
                                                                      mask.ptr(), mask.step(), {PW, PH}, &survivors[k], 1.0f, s.get())
                                 : rvpiApplyHaarClassifier_32f_C1R(sumf.ptr(), sumf.step(), normf.ptr(), normf.step(),
                                                                   mask.ptr(), mask.step(), {PW, PH}, &survivors[k], 1.0f, s.get());
            }
            ASSERT_EQ(st, rvpStsNoErr);
        }
        ASSERT_TRUE(mask.guardsIntact());
        // Stage 1: inner square overlaps a bright square by >= 18 pixels
        // (with the stray pixel counted); checked against a direct count.
        int coarse = 0;
        for (int j = 0; j < PH; ++j)
            for (int i = 0; i < PW; ++i) {
                int bright = 0;
                for (int y = 1; y < 7; ++y)
                    for (int x = 1; x < 7; ++x) bright += img.at(i + x, j + y) == 255;
                coarse += bright >= 18;
            }
        EXPECT_EQ(survivors[0], coarse);
        EXPECT_EQ(survivors[1], 2);
        EXPECT_EQ(survivors[2], 1);
        for (int j = 0; j < PH; ++j)
            for (int i = 0; i < PW; ++i) EXPECT_EQ(mask.at(i, j) != 0, i == 29 && j == 11) << i << "," << j;
    }
}

TEST(Haar, ConstructorValidation) {
    const RvpiRect good[2] = {{0, 0, 2, 2}, {2, 1, 1, 1}}, bad[2] = {{0, 0, 2, 2}, {1, -1, 1, 1}};
    const RvpiRect tiltBad[2] = {{0, 0, 1, 1}, {1, 0, 1, 3}};  // x + 1 < h
    const float wf[2] = {1, 1}, tf[1] = {0}, v1[1] = {0}, v2[1] = {0};
    const int wi[2] = {1, 1}, ti[1] = {0}, i1[1] = {0}, i2[1] = {0};
    const int num2[1] = {2}, num0[1] = {0};
    RvpiHaarClassifier_32f* const sentinelF = reinterpret_cast<RvpiHaarClassifier_32f*>(0x1000);
    RvpiHaarClassifier_32s* const sentinelS = reinterpret_cast<RvpiHaarClassifier_32s*>(0x1000);
    RvpiHaarClassifier_32f* pf = sentinelF;
    RvpiHaarClassifier_32s* ps = sentinelS;
    // Null pointers, then length, then counts, then rectangles.
    EXPECT_EQ(rvpiHaarClassifierInitAlloc_32f(nullptr, good, wf, tf, v1, v2, num2, -1), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiHaarClassifierInitAlloc_32f(&pf, good, wf, tf, v1, nullptr, num2, 1), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiHaarClassifierInitAlloc_32s(&ps, good, wi, ti, i1, i2, nullptr, 1), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiHaarClassifierInitAlloc_32f(&pf, bad, wf, tf, v1, v2, num2, -1), rvpStsSizeErr);
    EXPECT_EQ(rvpiHaarClassifierInitAlloc_32s(&ps, bad, wi, ti, i1, i2, num0, 1), rvpStsSizeErr);
    EXPECT_EQ(rvpiTiltedHaarClassifierInitAlloc_32f(&pf, bad, wf, tf, v1, v2, num0, 1), rvpStsSizeErr);
    EXPECT_TRUE(pf == sentinelF && ps == sentinelS);
    // The 32f upright constructor refuses before allocating: *ppState untouched.
    EXPECT_EQ(rvpiHaarClassifierInitAlloc_32f(&pf, bad, wf, tf, v1, v2, num2, 1), rvpStsBadArgErr);
    EXPECT_EQ(pf, sentinelF);
    // The others refuse while copying and leave a null state.
    EXPECT_EQ(rvpiHaarClassifierInitAlloc_32s(&ps, bad, wi, ti, i1, i2, num2, 1), rvpStsBadArgErr);
    EXPECT_EQ(ps, nullptr);
    ps = sentinelS;
    EXPECT_EQ(rvpiTiltedHaarClassifierInitAlloc_32s(&ps, tiltBad, wi, ti, i1, i2, num2, 1), rvpStsBadArgErr);
    EXPECT_EQ(ps, nullptr);
    EXPECT_EQ(rvpiTiltedHaarClassifierInitAlloc_32f(&pf, tiltBad, wf, tf, v1, v2, num2, 1), rvpStsBadArgErr);
    EXPECT_EQ(pf, nullptr);
    // The same rectangle is fine upright.
    EXPECT_EQ(rvpiHaarClassifierInitAlloc_32f(&pf, tiltBad, wf, tf, v1, v2, num2, 1), rvpStsNoErr);
    EXPECT_EQ(rvpiHaarClassifierFree_32f(pf), rvpStsNoErr);
    EXPECT_EQ(rvpiHaarClassifierFree_32f(nullptr), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiHaarClassifierFree_32s(nullptr), rvpStsNullPtrErr);
    RvpiSize size;
    EXPECT_EQ(rvpiGetHaarClassifierSize_32f(nullptr, &size), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiGetHaarClassifierSize_32s(ps, &size), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiTiltHaarFeatures_32s(nullptr, 0, ps), rvpStsNullPtrErr);
}

TEST(Haar, ApplyValidation) {
    Input<float> inF{{{0, 0, 1, 1}}, {1}, {0}, {0}, {0}, {1}};
    Input<int> inI{{{0, 0, 1, 1}}, {1}, {0}, {0}, {0}, {1}};
    auto sF = make(inF, false);
    auto sI = make(inI, false);
    Image<Rvp32f> t(9, 5), n(8, 4);
    Image<Rvp8u> mask(8, 4);
    mask.fill([] { return Rvp8u(1); });
    const auto before = mask.raw();
    const Rvp32f *pt = t.ptr(), *pn = n.ptr();
    const Rvp32s *it = reinterpret_cast<const Rvp32s*>(pt), *in = reinterpret_cast<const Rvp32s*>(pn);
    Rvp8u* m = mask.ptr();
    int pos = 12345;
    struct Row { const char* what; std::function<RvpStatus()> call; RvpStatus want; };
    const Row rows[] = {
        {"null src", [&] { return rvpiApplyHaarClassifier_32f_C1R(nullptr, 36, pn, 32, m, 8, {8, 4}, &pos, 0, sF.get()); }, rvpStsNullPtrErr},
        {"null positive", [&] { return rvpiApplyHaarClassifier_32s32f_C1R(it, 36, pn, 32, m, 8, {8, 4}, nullptr, 0, sF.get()); }, rvpStsNullPtrErr},
        {"null state", [&] { return rvpiApplyHaarClassifier_32s_C1RSfs(it, 36, in, 32, m, 8, {0, 4}, &pos, 0, nullptr, 0); }, rvpStsNullPtrErr},
        {"mixed null tilt", [&] { return rvpiApplyMixedHaarClassifier_32f_C1R(pt, 36, nullptr, 36, pn, 32, m, 8, {8, 4}, &pos, 0, sF.get()); }, rvpStsNullPtrErr},
        {"size", [&] { return rvpiApplyHaarClassifier_32f_C1R(pt, 1, pn, 1, m, 1, {8, 0}, &pos, 0, sF.get()); }, rvpStsSizeErr},
        {"src step", [&] { return rvpiApplyHaarClassifier_32f_C1R(pt, 28, pn, 32, m, 8, {8, 4}, &pos, 0, sF.get()); }, rvpStsStepErr},
        {"norm step", [&] { return rvpiApplyHaarClassifier_32s_C1RSfs(it, 36, in, 30, m, 8, {8, 4}, &pos, 0, sI.get(), 0); }, rvpStsStepErr},
        {"mask step", [&] { return rvpiApplyHaarClassifier_32f_C1R(pt, 36, pn, 32, m, 7, {8, 4}, &pos, 0, sF.get()); }, rvpStsStepErr},
        {"mixed tilt step", [&] { return rvpiApplyMixedHaarClassifier_32s32f_C1R(it, 36, it, 28, pn, 32, m, 8, {8, 4}, &pos, 0, sF.get()); }, rvpStsStepErr},
        {"src step not x4", [&] { return rvpiApplyHaarClassifier_32f_C1R(pt, 34, pn, 32, m, 8, {8, 4}, &pos, 0, sF.get()); }, rvpStsNotEvenStepErr},
        {"norm step not x4 (an odd mask step is fine)", [&] { return rvpiApplyHaarClassifier_32f_C1R(pt, 36, pn, 33, m, 9, {8, 4}, &pos, 0, sF.get()); }, rvpStsNotEvenStepErr},
        {"mixed tilt not x4", [&] { return rvpiApplyMixedHaarClassifier_32s_C1RSfs(it, 36, it, 38, in, 32, m, 8, {8, 4}, &pos, 0, sI.get(), 1); }, rvpStsNotEvenStepErr},
        {"mixed positive scale", [&] { return rvpiApplyMixedHaarClassifier_32s_C1RSfs(it, 36, it, 36, in, 32, m, 8, {8, 4}, &pos, 0, sI.get(), 1); }, rvpStsBadArgErr},
    };
    for (const Row& r : rows) {
        EXPECT_EQ(r.call(), r.want) << r.what;
        EXPECT_EQ(mask.raw(), before) << r.what << " wrote to the mask";
        EXPECT_EQ(pos, 12345) << r.what << " wrote the count";
    }
}

}  // namespace
