// Norms and statistics against the reference on random images and masks,
// every type, one and three channels, padded steps, the team sizes that band
// the reduction (and one past the stack slots); the NaN rule, empty masks,
// zero denominators, first occurrences; validation.
#include <cmath>

#include "reference/ref_stats.h"
#include "support/rvtest.h"

using namespace rvtest;

namespace {

// Every function of one type, called through one signature: C 1 or 3, and
// the masked or unmasked form where both exist.
template <class T> struct Api {
    RvpStatus (*norm1[3])(const T*, int, const Rvp8u*, int, RvpiSize, Rvp64f*);
    RvpStatus (*norm3[3])(const T*, int, const Rvp8u*, int, RvpiSize, int, Rvp64f*);
    RvpStatus (*diff1[3])(const T*, int, const T*, int, const Rvp8u*, int, RvpiSize, Rvp64f*);
    RvpStatus (*diff3[3])(const T*, int, const T*, int, const Rvp8u*, int, RvpiSize, int, Rvp64f*);
    RvpStatus (*rel1[3])(const T*, int, const T*, int, const Rvp8u*, int, RvpiSize, Rvp64f*);
    RvpStatus (*rel3[3])(const T*, int, const T*, int, const Rvp8u*, int, RvpiSize, int, Rvp64f*);
    RvpStatus (*mean1)(const T*, int, const Rvp8u*, int, RvpiSize, Rvp64f*);
    RvpStatus (*mean3)(const T*, int, const Rvp8u*, int, RvpiSize, int, Rvp64f*);
    RvpStatus (*ms1)(const T*, int, const Rvp8u*, int, RvpiSize, Rvp64f*, Rvp64f*);
    RvpStatus (*ms3)(const T*, int, const Rvp8u*, int, RvpiSize, int, Rvp64f*, Rvp64f*);
    RvpStatus (*msU1)(const T*, int, RvpiSize, Rvp64f*, Rvp64f*);
    RvpStatus (*msU3)(const T*, int, RvpiSize, int, Rvp64f*, Rvp64f*);
    RvpStatus (*mm1)(const T*, int, const Rvp8u*, int, RvpiSize, Rvp32f*, Rvp32f*, RvpiPoint*, RvpiPoint*);
    RvpStatus (*mm3)(const T*, int, const Rvp8u*, int, RvpiSize, int, Rvp32f*, Rvp32f*, RvpiPoint*, RvpiPoint*);
    RvpStatus (*mmU1)(const T*, int, RvpiSize, Rvp32f*, Rvp32f*, RvpiPoint*, RvpiPoint*);
    RvpStatus (*mmU3)(const T*, int, RvpiSize, int, Rvp32f*, Rvp32f*, RvpiPoint*, RvpiPoint*);

    // Kind k of Norm (op 0), NormDiff (1) or NormRel (2).
    RvpStatus norm(int op, int k, int C, int coi, const Image<T>& a, const Image<T>& b, const Rvp8u* m, int ms,
                   Rvp64f* v) const {
        const RvpiSize r = a.size();
        if (op == 0) return C == 1 ? norm1[k](a.ptr(), a.step(), m, ms, r, v) : norm3[k](a.ptr(), a.step(), m, ms, r, coi, v);
        auto* f1 = op == 1 ? diff1[k] : rel1[k];
        auto* f3 = op == 1 ? diff3[k] : rel3[k];
        return C == 1 ? f1(a.ptr(), a.step(), b.ptr(), b.step(), m, ms, r, v)
                      : f3(a.ptr(), a.step(), b.ptr(), b.step(), m, ms, r, coi, v);
    }
    // Mean and deviation, masked (m non-null) or not.
    RvpStatus meanStd(int C, int coi, const Image<T>& a, const Rvp8u* m, int ms, Rvp64f* mu, Rvp64f* sd) const {
        const RvpiSize r = a.size();
        if (!m) return C == 1 ? msU1(a.ptr(), a.step(), r, mu, sd) : msU3(a.ptr(), a.step(), r, coi, mu, sd);
        return C == 1 ? ms1(a.ptr(), a.step(), m, ms, r, mu, sd) : ms3(a.ptr(), a.step(), m, ms, r, coi, mu, sd);
    }
    RvpStatus minMax(int C, int coi, const Image<T>& a, const Rvp8u* m, int ms, Rvp32f* lo, Rvp32f* hi, RvpiPoint* l,
                     RvpiPoint* h) const {
        const RvpiSize r = a.size();
        if (!m) return C == 1 ? mmU1(a.ptr(), a.step(), r, lo, hi, l, h) : mmU3(a.ptr(), a.step(), r, coi, lo, hi, l, h);
        return C == 1 ? mm1(a.ptr(), a.step(), m, ms, r, lo, hi, l, h) : mm3(a.ptr(), a.step(), m, ms, r, coi, lo, hi, l, h);
    }
};

#define RVT_KINDS(OP, TAG, F) {rvpi##OP##_Inf_##TAG##_##F, rvpi##OP##_L1_##TAG##_##F, rvpi##OP##_L2_##TAG##_##F}
#define RVT_API(TAG)                                                                                          \
    Api<Rvp##TAG> {                                                                                           \
        RVT_KINDS(Norm, TAG, C1MR), RVT_KINDS(Norm, TAG, C3CMR), RVT_KINDS(NormDiff, TAG, C1MR),              \
            RVT_KINDS(NormDiff, TAG, C3CMR), RVT_KINDS(NormRel, TAG, C1MR), RVT_KINDS(NormRel, TAG, C3CMR),   \
            rvpiMean_##TAG##_C1MR, rvpiMean_##TAG##_C3CMR, rvpiMean_StdDev_##TAG##_C1MR,                      \
            rvpiMean_StdDev_##TAG##_C3CMR, rvpiMean_StdDev_##TAG##_C1R, rvpiMean_StdDev_##TAG##_C3CR,         \
            rvpiMinMaxIndx_##TAG##_C1MR, rvpiMinMaxIndx_##TAG##_C3CMR, rvpiMinMaxIndx_##TAG##_C1R,            \
            rvpiMinMaxIndx_##TAG##_C3CR                                                                       \
    }

template <class T> const Api<T>& api();
template <> const Api<Rvp8u>& api() { static const auto a = RVT_API(8u); return a; }
template <> const Api<Rvp8s>& api() { static const auto a = RVT_API(8s); return a; }
template <> const Api<Rvp16u>& api() { static const auto a = RVT_API(16u); return a; }
template <> const Api<Rvp32f>& api() { static const auto a = RVT_API(32f); return a; }

// Integer sums are exact, so integer results must equal the reference's
// rounding of them; float sums differ from the long double reference by the
// summation order only.
template <class T> void near(double got, long double want, const char* what) {
    const double w = static_cast<double>(want);
    if (std::is_integral<T>::value && std::string(what) != "std" && std::string(what) != "rel") EXPECT_EQ(got, w) << what;
    else EXPECT_NEAR(got, w, 1e-12 * (std::fabs(w) + 1)) << what;
}

template <class T> void compare(RvpiSize sz, int C, uint32_t seed, bool masked) {
    const Api<T>& f = api<T>();
    Random<T> gen(seed);
    Image<T> a(sz.width, sz.height, C, 8), b(sz.width, sz.height, C, 4);
    a.fill(gen);
    b.fill(gen);
    Image<Rvp8u> mask(sz.width, sz.height, 1, 3);
    std::mt19937 rng(seed);
    mask.fill([&] { return static_cast<Rvp8u>(rng() % 4 ? rng() % 255 + 1 : 0); });
    mask.at(sz.width / 2, sz.height / 2) = 1;
    const Rvp8u* m = masked ? mask.ptr() : nullptr;
    for (int coi = 1; coi <= C; ++coi) {
        const auto on = [&](int x, int y) { return !masked || mask.at(x, y) != 0; };
        const auto A = [&](int x, int y) { return a.at(x, y, coi - 1); };
        const auto B = [&](int x, int y) { return b.at(x, y, coi - 1); };
        const auto zero = [](int, int) { return 0; };
        const ref::Stats s = ref::stats(sz.width, sz.height, A, zero, on);
        ASSERT_GT(s.count, 0);
        SCOPED_TRACE(testing::Message() << sz.width << "x" << sz.height << " C" << C << " coi " << coi);
        Rvp64f mu = 0, sd = 0;
        ASSERT_EQ(f.meanStd(C, coi, a, m, mask.step(), &mu, &sd), rvpStsNoErr);
        near<T>(mu, s.sum / s.count, "mean");
        near<T>(sd, s.stdDev, "std");
        Rvp32f lo, hi;
        RvpiPoint l, h;
        ASSERT_EQ(f.minMax(C, coi, a, m, mask.step(), &lo, &hi, &l, &h), rvpStsNoErr);
        EXPECT_EQ(lo, static_cast<Rvp32f>(s.lo));
        EXPECT_EQ(hi, static_cast<Rvp32f>(s.hi));
        EXPECT_TRUE(l.x == s.loX && l.y == s.loY && h.x == s.hiX && h.y == s.hiY);
        if (!masked) continue;
        Rvp64f mean = 0;
        ASSERT_EQ((C == 1 ? f.mean1(a.ptr(), a.step(), m, mask.step(), sz, &mean)
                          : f.mean3(a.ptr(), a.step(), m, mask.step(), sz, coi, &mean)),
                  rvpStsNoErr);
        EXPECT_EQ(mean, mu);
        const ref::Stats d = ref::stats(sz.width, sz.height, A, B, on);
        const ref::Stats n2 = ref::stats(sz.width, sz.height, B, zero, on);
        const long double kinds[3][3] = {{s.inf, s.l1, std::sqrt(s.l2sq)},
                                         {d.inf, d.l1, std::sqrt(d.l2sq)},
                                         {n2.inf, n2.l1, std::sqrt(n2.l2sq)}};
        for (int k = 0; k < 3; ++k) {
            Rvp64f v[3];
            for (int op = 0; op < 3; ++op) ASSERT_EQ(f.norm(op, k, C, coi, a, b, m, mask.step(), &v[op]), rvpStsNoErr);
            near<T>(v[0], kinds[0][k], "norm");
            near<T>(v[1], kinds[1][k], "diff");
            near<T>(v[2], kinds[1][k] / kinds[2][k], "rel");
        }
    }
    ASSERT_TRUE(a.guardsIntact() && b.guardsIntact() && mask.guardsIntact());
}

template <class T> void sweep() {
    uint32_t seed = 1;
    for (const PathConfig& path : pathConfigs()) {
        ScopedIsa isa(path.isa);
        ScopedThreads team(path.threads);
        for (const RvpiSize sz : {RvpiSize{1, 1}, RvpiSize{7, 3}, RvpiSize{33, 17}, RvpiSize{129, 130}})
            for (int C : {1, 3})
                for (bool masked : {true, false}) compare<T>(sz, C, ++seed, masked);
    }
    // Past the banding thresholds of two and three threads.
    for (int threads : {2, 3}) {
        ScopedThreads team(threads);
        compare<T>({613, 701}, 1, ++seed, true);
    }
}

TEST(Stats, MatchReference8u) { sweep<Rvp8u>(); }
TEST(Stats, MatchReference8s) { sweep<Rvp8s>(); }
TEST(Stats, MatchReference16u) { sweep<Rvp16u>(); }
TEST(Stats, MatchReference32f) { sweep<Rvp32f>(); }

// One team size gives one result at every dispatch level, float sums
// included; integer sums are the same for every team, including one too
// large for the stack slots.
TEST(Stats, TeamsAreDeterministic) {
    const RvpiSize sz{1031, 1100};
    Image<Rvp32f> f(sz.width, sz.height);
    Image<Rvp8u> u(sz.width, sz.height), mask(sz.width, sz.height);
    Random<Rvp32f> gf(5);
    Random<Rvp8u> gu(6);
    f.fill(gf);
    u.fill(gu);
    mask.fill([&] { return static_cast<Rvp8u>(gu() & 1); });
    Rvp64f first = 0, l1 = 0;
    for (int threads : {1, 2, 3, 8, 40}) {
        ScopedThreads team(threads);
        Rvp64f v1, v2, m1, s1, m2, s2;
        ASSERT_EQ(rvpiNorm_L2_32f_C1MR(f.ptr(), f.step(), mask.ptr(), mask.step(), sz, &v1), rvpStsNoErr);
        ASSERT_EQ(rvpiNorm_L2_32f_C1MR(f.ptr(), f.step(), mask.ptr(), mask.step(), sz, &v2), rvpStsNoErr);
        EXPECT_TRUE(sameBits(&v1, &v2, sizeof v1)) << threads;
        ASSERT_EQ(rvpiMean_StdDev_32f_C1R(f.ptr(), f.step(), sz, &m1, &s1), rvpStsNoErr);
        ASSERT_EQ(rvpiMean_StdDev_32f_C1R(f.ptr(), f.step(), sz, &m2, &s2), rvpStsNoErr);
        EXPECT_TRUE(m1 == m2 && s1 == s2) << threads;
        if (threads == 1) first = v1;
        EXPECT_NEAR(v1, first, 1e-12 * first);  // float sums: order only
        for (rvcv::Isa level : isaLevels()) {
            ScopedIsa isa(level);
            ASSERT_EQ(rvpiNorm_L2_32f_C1MR(f.ptr(), f.step(), mask.ptr(), mask.step(), sz, &v2), rvpStsNoErr);
            EXPECT_TRUE(sameBits(&v1, &v2, sizeof v1)) << rvcv::isaName(level);
        }
        Rvp64f n;
        ASSERT_EQ(rvpiNorm_L1_8u_C1MR(u.ptr(), u.step(), mask.ptr(), mask.step(), sz, &n), rvpStsNoErr);
        if (threads == 1) l1 = n;
        EXPECT_EQ(n, l1) << threads;
    }
    {
        // 40 permitted threads band only from 40 * 131072 pixels on.
        const RvpiSize big{2300, 2300};
        std::vector<Rvp8u> img(static_cast<size_t>(big.width) * big.height), on(img.size(), 1);
        std::mt19937 rng(9);
        int64_t sum = 0;
        for (auto& v : img) sum += v = static_cast<Rvp8u>(rng());
        ScopedThreads team(40);
        Rvp64f n;
        ASSERT_EQ(rvpiNorm_L1_8u_C1MR(img.data(), big.width, on.data(), big.width, big, &n), rvpStsNoErr);
        EXPECT_EQ(n, static_cast<double>(sum));
    }
}

TEST(Stats, NaNEmptyMaskZeroDenominatorTies) {
    const RvpiSize sz{4, 2};
    Rvp32f f[8] = {NAN, 3, -7, NAN, 2, -7, 3, 1};
    Rvp8u m[8] = {1, 1, 1, 1, 1, 1, 1, 1};
    Rvp64f v = 0;
    ASSERT_EQ(rvpiNorm_Inf_32f_C1MR(f, 16, m, 4, sz, &v), rvpStsNoErr);
    EXPECT_EQ(v, 7.0);  // the Inf norm passes NaN over
    ASSERT_EQ(rvpiNorm_L1_32f_C1MR(f, 16, m, 4, sz, &v), rvpStsNoErr);
    EXPECT_TRUE(std::isnan(v));  // sums propagate it
    Rvp32f lo, hi;
    RvpiPoint l, h;
    ASSERT_EQ(rvpiMinMaxIndx_32f_C1MR(f, 16, m, 4, sz, &lo, &hi, &l, &h), rvpStsNoErr);
    EXPECT_TRUE(lo == -7 && hi == 3 && l.x == 2 && l.y == 0 && h.x == 1 && h.y == 0);  // first occurrences
    const Rvp8u onlyNaN[8] = {0, 0, 0, 1, 1, 0, 0, 0};
    f[4] = NAN;
    ASSERT_EQ(rvpiMinMaxIndx_32f_C1MR(f, 16, onlyNaN, 4, sz, &lo, &hi, &l, &h), rvpStsNoErr);
    EXPECT_TRUE(std::isnan(lo) && std::isnan(hi) && l.x == 3 && l.y == 0 && h.x == 3 && h.y == 0);

    // Nothing selected: SizeErr, nothing written.
    const Rvp8u none[8] = {};
    Rvp64f mu = 5, sd = 6;
    EXPECT_EQ(rvpiMean_StdDev_32f_C1MR(f, 16, none, 4, sz, &mu, &sd), rvpStsSizeErr);
    EXPECT_EQ(rvpiMinMaxIndx_32f_C1MR(f, 16, none, 4, sz, &lo, &hi, &l, &h), rvpStsSizeErr);
    EXPECT_TRUE(mu == 5 && sd == 6 && l.x == 3);

    // A zero denominator: DivByZero with the quotient stored.
    const Rvp16u a[4] = {1, 2, 3, 4}, zero[4] = {0, 0, 0, 0};
    EXPECT_EQ(rvpiNormRel_L2_16u_C1MR(a, 8, zero, 8, m, 4, {4, 1}, &v), rvpStsDivByZero);
    EXPECT_TRUE(std::isinf(v));
    EXPECT_EQ(rvpiNormRel_Inf_16u_C1MR(zero, 8, zero, 8, m, 4, {4, 1}, &v), rvpStsDivByZero);
    EXPECT_TRUE(std::isnan(v));
}

TEST(Stats, Validation) {
    Rvp16u img[3 * 4 * 2] = {};
    Rvp8u mask[8] = {1, 1, 1, 1, 1, 1, 1, 1};
    Rvp64f out = 42;
    const RvpiSize sz{4, 2};
    const struct {
        const Rvp16u* a;
        int aStep;
        const Rvp16u* b;
        int bStep;
        const Rvp8u* m;
        int mStep;
        RvpiSize r;
        int coi;
        Rvp64f* out;
        RvpStatus st;
    } rows[] = {
        {nullptr, 24, img, 24, mask, 4, sz, 1, &out, rvpStsNullPtrErr},
        {img, 24, nullptr, 24, mask, 4, sz, 1, &out, rvpStsNullPtrErr},
        {img, 24, img, 24, nullptr, 4, sz, 1, &out, rvpStsNullPtrErr},
        {img, 24, img, 24, mask, 4, sz, 1, nullptr, rvpStsNullPtrErr},
        {nullptr, 24, img, 24, mask, 4, {0, 2}, 1, &out, rvpStsNullPtrErr},
        {img, 24, img, 24, mask, 4, {0, 2}, 1, &out, rvpStsSizeErr},
        {img, 24, img, 24, mask, 4, {4, -1}, 9, &out, rvpStsSizeErr},
        {img, 23, img, 24, mask, 4, sz, 1, &out, rvpStsStepErr},
        {img, 24, img, 22, mask, 4, sz, 1, &out, rvpStsStepErr},
        {img, 24, img, 24, mask, 3, sz, 1, &out, rvpStsStepErr},
        {img, 24, img, 24, mask, 3, {1 << 29, 1}, 1, &out, rvpStsStepErr},
        {img, 25, img, 24, mask, 4, sz, 1, &out, rvpStsNotEvenStepErr},
        {img, 24, img, 27, mask, 4, sz, 0, &out, rvpStsNotEvenStepErr},
        {img, 24, img, 24, mask, 4, sz, 0, &out, rvpStsCOIErr},
        {img, 24, img, 24, mask, 4, sz, 4, &out, rvpStsCOIErr},
    };
    for (const auto& r : rows) {
        EXPECT_EQ(rvpiNormRel_L1_16u_C3CMR(r.a, r.aStep, r.b, r.bStep, r.m, r.mStep, r.r, r.coi, r.out), r.st);
        if (r.b != nullptr && r.bStep == 24) {  // rows about the first source or the mask
            EXPECT_EQ(rvpiNorm_L1_16u_C3CMR(r.a, r.aStep, r.m, r.mStep, r.r, r.coi, r.out), r.st);
        }
    }
    Rvp32f lo = 1, hi = 2;
    RvpiPoint l{7, 7}, h{8, 8};
    Rvp64f sd = 43;
    EXPECT_EQ(rvpiMinMaxIndx_16u_C3CR(img, 24, sz, 1, &lo, &hi, &l, nullptr), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiMinMaxIndx_16u_C3CR(img, 24, sz, 4, &lo, &hi, &l, &h), rvpStsCOIErr);
    EXPECT_EQ(rvpiMean_StdDev_16u_C1R(img, 7, sz, &out, &sd), rvpStsStepErr);
    EXPECT_EQ(rvpiMean_StdDev_16u_C1MR(img, 8, mask, 4, sz, &out, nullptr), rvpStsNullPtrErr);
    EXPECT_TRUE(out == 42 && sd == 43 && lo == 1 && hi == 2 && l.x == 7 && h.x == 8);
}

}  // namespace
