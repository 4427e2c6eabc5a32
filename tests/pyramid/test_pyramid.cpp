// Pyramid geometry, records, layer kernels and the down/up layers against
// the naive model: random sizes, rates and kernels in every type, padded
// steps, several teams; validation.
#include <cfloat>

#include "reference/ref_pyramid.h"
#include "support/rvtest.h"

using namespace rvtest;

namespace {

TEST(PyramidGeometry, RangesHoldTheSourceAndEdgesOfTheRate) {
    RvpiSize lo{}, hi{}, d{};
    ASSERT_EQ(rvpiGetPyramidUpROI({1, 1}, &lo, &hi, 2.0f), rvpStsNoErr);
    EXPECT_EQ(lo.width, 1); EXPECT_EQ(lo.height, 1); EXPECT_EQ(hi.width, 2); EXPECT_EQ(hi.height, 2);
    EXPECT_EQ(rvpiGetPyramidDownROI({8, 8}, &d, 1.0f), rvpStsBadArgErr);
    EXPECT_EQ(rvpiGetPyramidDownROI({8, 8}, &d, NAN), rvpStsBadArgErr);
    EXPECT_EQ(rvpiGetPyramidDownROI({8, 8}, &d, 10.0f), rvpStsNoErr);
    EXPECT_EQ(rvpiGetPyramidDownROI({0, 8}, &d, 2.0f), rvpStsSizeErr);
    EXPECT_EQ(rvpiGetPyramidDownROI({8, 8}, nullptr, 2.0f), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiGetPyramidUpROI({8, 8}, &lo, nullptr, 2.0f), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiGetPyramidUpROI({INT32_MAX, 8}, &lo, &hi, 2.0f), rvpStsSizeErr);
    // Going down and up again is consistent, for any size and rate.
    std::mt19937 rng(5);
    for (int t = 0; t < 3000; ++t) {
        const float rate = std::uniform_real_distribution<float>(1.0001f, 10.0f)(rng);
        const RvpiSize s{std::uniform_int_distribution<int>(1, 5000)(rng), std::uniform_int_distribution<int>(1, 5000)(rng)};
        ASSERT_EQ(rvpiGetPyramidDownROI(s, &d, rate), rvpStsNoErr);
        ASSERT_EQ(rvpiGetPyramidUpROI(d, &lo, &hi, rate), rvpStsNoErr);
        ASSERT_TRUE(lo.width <= s.width && s.width <= hi.width && lo.height <= s.height && s.height <= hi.height)
            << s.width << "x" << s.height << " at " << rate;
    }
}

TEST(PyramidRecord, LevelsScalesAndLayout) {
    RvpiPyramid* p = nullptr;
    ASSERT_EQ(rvpiPyramidInitAlloc(&p, 100, {37, 5}, 2.0f), rvpStsNoErr);
    RvpiSize s{37, 5};
    int levels = 0;
    for (; s.width > 1 || s.height > 1; ++levels) {
        EXPECT_EQ(p->pRoi[levels].width, s.width); EXPECT_EQ(p->pRoi[levels].height, s.height);
        rvpiGetPyramidDownROI(s, &s, 2.0f);
    }
    EXPECT_EQ(p->level, levels);  // fewer than asked for
    double scale = 1.0;
    const auto* base = reinterpret_cast<const uint8_t*>(p);
    const auto* end = base + 52 * p->level + 152;
    for (int i = 0; i <= p->level; ++i, scale *= 1.0 / 2.0) {
        EXPECT_EQ(p->pRate[i], scale); EXPECT_EQ(p->pImage[i], nullptr); EXPECT_EQ(p->pStep[i], 0);
    }
    const uint8_t* arrays[] = {reinterpret_cast<uint8_t*>(p->pImage), reinterpret_cast<uint8_t*>(p->pRoi),
                               reinterpret_cast<uint8_t*>(p->pRate), reinterpret_cast<uint8_t*>(p->pStep)};
    const size_t sizes[] = {8, 8, 8, 4};
    for (int a = 0; a < 4; ++a) {
        EXPECT_EQ(reinterpret_cast<uintptr_t>(arrays[a]) % 8, 0u);
        EXPECT_TRUE(arrays[a] >= base + sizeof(RvpiPyramid) && arrays[a] + sizes[a] * (p->level + 1) <= end);
        if (a) { EXPECT_EQ(arrays[a] - (arrays[a - 1] + sizes[a - 1] * (p->level + 1)), 16); }
    }
    EXPECT_EQ(rvpiPyramidFree(p), rvpStsNoErr);
    p = nullptr;
    EXPECT_EQ(rvpiPyramidInitAlloc(&p, 0, {8, 8}, 2.0f), rvpStsBadArgErr);
    EXPECT_EQ(rvpiPyramidInitAlloc(&p, 3, {8, 0}, 2.0f), rvpStsSizeErr);
    EXPECT_EQ(rvpiPyramidInitAlloc(nullptr, 3, {8, 8}, 2.0f), rvpStsNullPtrErr);
    EXPECT_EQ(p, nullptr);
    EXPECT_EQ(rvpiPyramidFree(nullptr), rvpStsNullPtrErr);
}

TEST(PyramidKernel, NormalisedAsymmetricAndZeroSum) {
    const Rvp16s k5[] = {1, 4, 6, 4, 1};
    RvpiPyramidDownState* d = nullptr;
    ASSERT_EQ(rvpiPyramidLayerDownInitAlloc_8u_C1R(&d, {64, 64}, 2.0f, k5, 5, 2), rvpStsNoErr);
    const Rvp16s* w = static_cast<const Rvp16s*>(d->pKernel);
    EXPECT_EQ(w[0], 512); EXPECT_EQ(w[1], 2048); EXPECT_EQ(w[2], 3072); EXPECT_EQ(w[4], 512);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(d->pKernel) % 32, 0u);
    EXPECT_EQ(d->levelCount, 6);
    EXPECT_EQ(d->pLevelRoi[1].width, 32);
    rvpiPyramidLayerDownFree_8u_C1R(d);
    RvpiPyramidUpState* u = nullptr;
    ASSERT_EQ(rvpiPyramidLayerUpInitAlloc_16u_C1R(&u, {64, 64}, 2.0f, k5, 5, 2), rvpStsNoErr);
    w = static_cast<const Rvp16s*>(u->pKernel);
    EXPECT_EQ(w[0], 512); EXPECT_EQ(w[2], 3072);  // int(4 / 32 * 8192 + 0.5) >> 1 and int(24 / 32 ...) >> 1
    rvpiPyramidLayerUpFree(u);
    const Rvp16s skew[] = {1, 2, 6, 4, 1};  // mirrored from the left half
    ASSERT_EQ(rvpiPyramidLayerDownInitAlloc_16u_C3R(&d, {64, 64}, 3.0f, skew, 5, 2), rvpStsSymKernelWrn);
    w = static_cast<const Rvp16s*>(d->pKernel);
    EXPECT_EQ(w[3], w[1]);
    rvpiPyramidLayerDownFree(d);
    const Rvp16s zero[] = {1, -2, 1};
    ASSERT_EQ(rvpiPyramidLayerDownInitAlloc_8u_C1R(&d, {64, 64}, 2.0f, zero, 3, 2), rvpStsNoErr);
    w = static_cast<const Rvp16s*>(d->pKernel);
    EXPECT_EQ(w[0], 1); EXPECT_EQ(w[1], -2);
    rvpiPyramidLayerDownFree(d);
    const Rvp32f fz[] = {1.0f, -2.0f, 1.0f};
    ASSERT_EQ(rvpiPyramidLayerUpInitAlloc_32f_C1R(&u, {64, 64}, 2.0f, fz, 3, 2), rvpStsNoErr);
    const Rvp32f* f = static_cast<const Rvp32f*>(u->pKernel);
    EXPECT_EQ(f[0], 1.0f); EXPECT_EQ(f[1], static_cast<float>(reinterpret_cast<const Rvp8u*>(fz)[1]));
    rvpiPyramidLayerUpFree(u);
}

template <class T> struct Layers;
#define RVT_LAYERS(T, K, SUF)                                                                            \
    template <> struct Layers<T> {                                                                       \
        using Kern = K;                                                                                  \
        static constexpr auto downInit1 = rvpiPyramidLayerDownInitAlloc_##SUF##_C1R;                    \
        static constexpr auto downInit3 = rvpiPyramidLayerDownInitAlloc_##SUF##_C3R;                    \
        static constexpr auto upInit1 = rvpiPyramidLayerUpInitAlloc_##SUF##_C1R;                        \
        static constexpr auto upInit3 = rvpiPyramidLayerUpInitAlloc_##SUF##_C3R;                        \
        static constexpr auto down1 = rvpiPyramidLayerDown_##SUF##_C1R;                                  \
        static constexpr auto down3 = rvpiPyramidLayerDown_##SUF##_C3R;                                  \
        static constexpr auto up1 = rvpiPyramidLayerUp_##SUF##_C1R;                                      \
        static constexpr auto up3 = rvpiPyramidLayerUp_##SUF##_C3R;                                      \
    };
RVT_LAYERS(Rvp8u, Rvp16s, 8u)
RVT_LAYERS(Rvp16u, Rvp16s, 16u)
RVT_LAYERS(Rvp32f, Rvp32f, 32f)

template <class T> std::vector<T> pixels(const Image<T>& im, int C) {
    std::vector<T> v;
    for (int y = 0; y < im.height(); ++y) v.insert(v.end(), im.row(y), im.row(y) + im.width() * C);
    return v;
}

template <class T> void layersMatchModel(uint32_t seed) {
    using L = Layers<T>;
    using K = typename L::Kern;
    std::mt19937 rng(seed);
    for (int t = 0; t < 24; ++t) {
        const int C = t % 2 ? 3 : 1;
        const int W = t < 4 ? 1 + t : std::uniform_int_distribution<int>(1, t > 20 ? 700 : 90)(rng);
        const int H = t < 4 ? 1 + 3 * t : std::uniform_int_distribution<int>(1, t > 20 ? 400 : 70)(rng);
        const float rate = t % 5 == 0 ? 2.00001f : std::uniform_real_distribution<float>(1.05f, t > 20 ? 2.5f : 10.0f)(rng);
        const int n = 3 + 2 * std::uniform_int_distribution<int>(0, 3)(rng);
        std::vector<K> kern(static_cast<size_t>(n));
        for (int i = 0; i <= n / 2; ++i)  // symmetric, mostly positive; some with negative lobes
            kern[i] = kern[n - 1 - i] = static_cast<K>(std::uniform_int_distribution<int>(t % 7 == 3 ? -40 : 0, 60)(rng) + (i == n / 2 ? 20 : 0));
        Image<T> src(W, H, C, (t % 3) * 4 * static_cast<int>(sizeof(T)));
        Random<T> gen(seed + t);
        if constexpr (std::is_floating_point<T>::value) src.fill(gen);
        else src.fill([&] { return static_cast<T>(gen()); });
        const std::vector<T> s = pixels(src, C);
        RvpiSize dq{};
        ASSERT_EQ(rvpiGetPyramidDownROI(src.size(), &dq, rate), rvpStsNoErr);
        RvpiSize ulo{}, uhi{};
        ASSERT_EQ(rvpiGetPyramidUpROI(src.size(), &ulo, &uhi, rate), rvpStsNoErr);
        const RvpiSize u{std::uniform_int_distribution<int>(ulo.width, uhi.width)(rng),
                         std::uniform_int_distribution<int>(ulo.height, uhi.height)(rng)};
        for (int threads : threadCounts()) {
            ScopedThreads scope(threads);
            RvpiPyramidDownState* ds = nullptr;
            RvpiPyramidUpState* us = nullptr;
            // States made for a larger source serve this one.
            const RvpiSize big{W + t % 2, H + t % 3};
            ASSERT_GE((C == 1 ? L::downInit1 : L::downInit3)(&ds, big, rate, kern.data(), n, 2), 0);
            ASSERT_GE((C == 1 ? L::upInit1 : L::upInit3)(&us, big, rate, kern.data(), n, 2), 0);
            // The level after the source's height in the state's table, else the size query's.
            RvpiSize d = dq;
            for (int i = 0; i < ds->levelCount; ++i)
                if (ds->pLevelRoi[i].height == H) {
                    d = ds->pLevelRoi[i + 1];
                    break;
                }
            const K* wd = static_cast<const K*>(ds->pKernel);
            const K* wu = static_cast<const K*>(us->pKernel);
            Image<T> down(d.width, d.height, C, 8), up(u.width, u.height, C, 4);
            ASSERT_EQ((C == 1 ? L::down1 : L::down3)(src.ptr(), src.step(), src.size(), down.ptr(), down.step(), d, ds), rvpStsNoErr);
            ASSERT_EQ((C == 1 ? L::up1 : L::up3)(src.ptr(), src.step(), src.size(), up.ptr(), up.step(), u, us), rvpStsNoErr);
            const auto wantDown = ref::layerDown<T>(s, W, H, C, wd, n, rate, d.width, d.height);
            const auto wantUp = ref::layerUp<T>(s, W, H, C, wu, n, rate, u.width, u.height);
            ASSERT_TRUE(sameBits(pixels(down, C).data(), wantDown.data(), wantDown.size() * sizeof(T)))
                << W << "x" << H << "x" << C << " rate " << rate << " n " << n << " threads " << threads;
            ASSERT_TRUE(sameBits(pixels(up, C).data(), wantUp.data(), wantUp.size() * sizeof(T)))
                << W << "x" << H << "x" << C << " -> " << u.width << "x" << u.height << " rate " << rate << " threads " << threads;
            ASSERT_TRUE(down.guardsIntact() && up.guardsIntact());
            rvpiPyramidLayerDownFree(ds);
            rvpiPyramidLayerUpFree(us);
        }
    }
}

TEST(PyramidLayer, MatchesModel8u) { layersMatchModel<Rvp8u>(11); }
TEST(PyramidLayer, MatchesModel16u) { layersMatchModel<Rvp16u>(12); }
TEST(PyramidLayer, MatchesModel32f) { layersMatchModel<Rvp32f>(13); }

TEST(PyramidLayer, RateTwoFlagAndStateTeam) {
    const Rvp16s k[] = {1, 4, 6, 4, 1};
    Image<Rvp8u> src(301, 203);
    Random<Rvp8u> gen(3);
    src.fill(gen);
    RvpiSize d{};
    rvpiGetPyramidDownROI(src.size(), &d, 2.0f);
    std::vector<uint8_t> first;
    for (float rate : {2.0f, 2.00001f, 1.99999f}) {
        RvpiPyramidDownState* s = nullptr;
        ScopedThreads one(1);  // a state made for one thread, used by a team of eight
        ASSERT_EQ(rvpiPyramidLayerDownInitAlloc_8u_C1R(&s, src.size(), rate, k, 5, 2), rvpStsNoErr);
        EXPECT_EQ(static_cast<int*>(s->pThreadWork)[0], 1);
        ScopedThreads eight(8);
        Image<Rvp8u> dst(d.width, d.height);
        ASSERT_EQ(rvpiPyramidLayerDown_8u_C1R(src.ptr(), src.step(), src.size(), dst.ptr(), dst.step(), d, s), rvpStsNoErr);
        if (first.empty()) first = dst.bytes();
        EXPECT_EQ(dst.bytes(), first) << rate;
        rvpiPyramidLayerDownFree(s);
    }
}

TEST(PyramidLayer, Validation) {
    const Rvp16s k[] = {1, 2, 1};
    RvpiPyramidDownState* ds = nullptr;
    RvpiPyramidUpState* us = nullptr;
    RvpiPyramidDownState* d16 = nullptr;
    // Constructors.
    EXPECT_EQ(rvpiPyramidLayerDownInitAlloc_8u_C1R(nullptr, {8, 8}, 2.0f, k, 3, 2), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiPyramidLayerDownInitAlloc_8u_C1R(&ds, {8, 8}, 2.0f, nullptr, 3, 2), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiPyramidLayerDownInitAlloc_8u_C1R(&ds, {0, 8}, 2.0f, k, 3, 2), rvpStsSizeErr);
    EXPECT_EQ(rvpiPyramidLayerDownInitAlloc_8u_C1R(&ds, {8, 8}, 2.0f, k, 3, 1), rvpStsBadArgErr);
    EXPECT_EQ(rvpiPyramidLayerUpInitAlloc_8u_C1R(&us, {8, 8}, 1.0f, k, 3, 2), rvpStsBadArgErr);
    EXPECT_EQ(rvpiPyramidLayerUpInitAlloc_8u_C1R(&us, {8, 8}, 2.0f, k, 2, 2), rvpStsBadArgErr);
    EXPECT_EQ(rvpiPyramidLayerUpInitAlloc_8u_C1R(&us, {8, 8}, 2.0f, k, 1, 2), rvpStsBadArgErr);
    EXPECT_TRUE(ds == nullptr && us == nullptr);
    ASSERT_EQ(rvpiPyramidLayerDownInitAlloc_8u_C1R(&ds, {20, 20}, 2.0f, k, 3, 2), rvpStsNoErr);
    ASSERT_EQ(rvpiPyramidLayerUpInitAlloc_8u_C1R(&us, {20, 20}, 2.0f, k, 3, 2), rvpStsNoErr);
    ASSERT_EQ(rvpiPyramidLayerDownInitAlloc_16u_C1R(&d16, {20, 20}, 2.0f, k, 3, 2), rvpStsNoErr);
    Image<Rvp8u> src(24, 20), dst(40, 40);
    const Rvp8u* s = src.ptr();
    Rvp8u* o = dst.ptr();
    const int ss = src.step(), os = dst.step();
    struct Row { RvpStatus want; bool up; const Rvp8u* s; int ss; RvpiSize sr; Rvp8u* o; int os; RvpiSize dr; void* st; };
    const Row rows[] = {
        {rvpStsNullPtrErr, false, nullptr, ss, {20, 20}, o, os, {10, 10}, ds},
        {rvpStsNullPtrErr, true, s, ss, {20, 20}, o, os, {40, 40}, nullptr},
        {rvpStsSizeErr, false, s, ss, {0, 20}, o, os, {10, 10}, ds},
        {rvpStsStepErr, false, s, 19, {20, 20}, o, os, {10, 10}, ds},
        {rvpStsSizeErr, false, s, ss, {20, 20}, o, os, {11, 10}, ds},
        {rvpStsSizeErr, false, s, ss, {21, 20}, o, os, {11, 10}, ds},  // larger than the state's
        {rvpStsSizeErr, true, s, ss, {20, 20}, o, os, {40, 42}, us},
        {rvpStsBadArgErr, true, s, ss, {20, 20}, o, os, {40, 40}, ds},  // a down state to an up call
        {rvpStsBadArgErr, false, s, ss, {20, 20}, o, os, {10, 10}, us},
        {rvpStsBadArgErr, false, s, ss, {20, 20}, o, os, {10, 10}, d16},  // another type
    };
    for (const Row& r : rows) {
        const auto before = dst.raw();
        const RvpStatus st = r.up ? rvpiPyramidLayerUp_8u_C1R(r.s, r.ss, r.sr, r.o, r.os, r.dr, static_cast<RvpiPyramidUpState*>(r.st))
                                  : rvpiPyramidLayerDown_8u_C1R(r.s, r.ss, r.sr, r.o, r.os, r.dr, static_cast<RvpiPyramidDownState*>(r.st));
        EXPECT_EQ(st, r.want) << (&r - rows);
        EXPECT_EQ(dst.raw(), before) << (&r - rows);
    }
    EXPECT_EQ(rvpiPyramidLayerDownFree(nullptr), rvpStsNullPtrErr);
    rvpiPyramidLayerDownFree(ds);
    rvpiPyramidLayerUpFree(us);
    rvpiPyramidLayerDownFree(d16);
}

}  // namespace
