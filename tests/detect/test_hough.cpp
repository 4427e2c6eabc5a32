// Hough lines against the full-accumulator model on random sparse images in
// both forms, lines drawn at known angles and distances found within a bin;
// peaks, colour gradients and the fast arctangent against their rules;
// statuses.
#include <cfloat>
#include <cmath>

#include "reference/ref_hough.h"
#include "support/rvtest.h"

using namespace rvtest;

namespace {

std::vector<RvpPointPolar> runHough(const std::vector<uint8_t>& img, int W, int H, RvpPointPolar delta, int threshold,
                                    int maxLines, RvpPointPolar* region, RvpStatus& st) {
    int bytes = 0;
    EXPECT_EQ(rvpiHoughLineGetSize_8u_C1R({W, H}, delta, maxLines, &bytes), rvpStsNoErr);
    std::vector<Rvp8u> buf(static_cast<size_t>(bytes));
    std::vector<RvpPointPolar> lines(static_cast<size_t>(maxLines) + 1, RvpPointPolar{-7, -7});
    int count = -1;
    st = region ? rvpiHoughLine_Region_8u32f_C1R(img.data(), W, {W, H}, lines.data(), region, maxLines, &count, delta, threshold, buf.data())
                : rvpiHoughLine_8u32f_C1R(img.data(), W, {W, H}, delta, threshold, lines.data(), maxLines, &count, buf.data());
    EXPECT_EQ(lines[maxLines].rho, -7.0f);  // nothing past the list
    lines.resize(count < 0 ? 0 : static_cast<size_t>(count));
    return lines;
}

TEST(Hough, MatchesModel) {
    std::mt19937 rng(17);
    for (int t = 0; t < 40; ++t) {
        const int W = std::uniform_int_distribution<int>(1, t > 34 ? 160 : 50)(rng);
        const int H = std::uniform_int_distribution<int>(1, t > 34 ? 120 : 40)(rng);
        std::vector<uint8_t> img(static_cast<size_t>(W) * H);
        const int density = std::uniform_int_distribution<int>(2, 30)(rng);
        for (auto& p : img) p = rng() % 100 < static_cast<unsigned>(density) ? static_cast<uint8_t>(1 + rng() % 255) : 0;
        const RvpPointPolar delta{std::uniform_real_distribution<float>(0.5f, 3.0f)(rng),
                                  std::uniform_real_distribution<float>(0.01f, 0.3f)(rng)};
        const int threshold = std::uniform_int_distribution<int>(1, 6)(rng), maxLines = std::uniform_int_distribution<int>(1, 25)(rng);
        RvpStatus st;
        const auto got = runHough(img, W, H, delta, threshold, maxLines, nullptr, st);
        ASSERT_EQ(st, rvpStsNoErr);
        const auto want = ref::hough(img, W, H, delta, threshold, maxLines, {});
        ASSERT_EQ(got.size(), want.size()) << t;
        for (size_t i = 0; i < got.size(); ++i)
            ASSERT_TRUE(got[i].rho == want[i].rho && got[i].theta == want[i].theta) << t << " line " << i;
        // The region form over a random window of distances and angles.
        RvpPointPolar roi[2] = {{std::uniform_real_distribution<float>(-60, 10)(rng), std::uniform_real_distribution<float>(-0.5f, 1.5f)(rng)},
                                {std::uniform_real_distribution<float>(10, 80)(rng), std::uniform_real_distribution<float>(1.5f, 3.5f)(rng)}};
        ref::HoughRegion r{true, std::max(roi[0].theta, 0.0f), std::min(roi[1].theta, 3.14159f), roi[0].rho, roi[1].rho};
        const auto gotR = runHough(img, W, H, delta, threshold, maxLines, roi, st);
        ASSERT_EQ(st, rvpStsNoErr);
        EXPECT_TRUE(roi[0].theta == r.thetaLo && roi[1].theta == r.thetaHi);  // clamped, written back
        const auto wantR = ref::hough(img, W, H, delta, threshold, maxLines, r);
        ASSERT_EQ(gotR.size(), wantR.size()) << t;
        for (size_t i = 0; i < gotR.size(); ++i)
            ASSERT_TRUE(gotR[i].rho == wantR[i].rho && gotR[i].theta == wantR[i].theta) << t << " region line " << i;
    }
}

TEST(Hough, DrawnLinesFoundWithinABin) {
    const int W = 200, H = 150;
    const float step = static_cast<float>(M_PI / 180);
    for (const auto& [rho, theta] : std::vector<std::pair<double, double>>{{40, 0.3}, {90, 1.2}, {-30, 2.5}, {120, 1.5708}}) {
        std::vector<uint8_t> img(static_cast<size_t>(W) * H, 0);
        const double c = std::cos(theta), s = std::sin(theta);
        for (double u = -400; u < 400; u += 0.25) {
            const int x = static_cast<int>(std::lround(rho * c - u * s)), y = static_cast<int>(std::lround(rho * s + u * c));
            if (x >= 0 && y >= 0 && x < W && y < H) img[static_cast<size_t>(y) * W + x] = 255;
        }
        RvpStatus st;
        const auto lines = runHough(img, W, H, {1.0f, step}, 40, 5, nullptr, st);
        ASSERT_EQ(st, rvpStsNoErr);
        ASSERT_FALSE(lines.empty()) << rho << "," << theta;
        EXPECT_NEAR(lines[0].rho, rho, 1.01) << theta;
        EXPECT_NEAR(lines[0].theta, theta, step * 1.01) << rho;
    }
}

TEST(Hough, Statuses) {
    std::vector<uint8_t> img(100, 0);
    img[55] = 1;
    int bytes = 0;
    const RvpPointPolar d{1.0f, 0.1f};
    ASSERT_EQ(rvpiHoughLineGetSize_8u_C1R({10, 10}, d, 4, &bytes), rvpStsNoErr);
    EXPECT_EQ(rvpiHoughLineGetSize_8u_C1R({10, 10}, {0.0f, 0.1f}, 4, &bytes), rvpStsBadArgErr);
    EXPECT_EQ(rvpiHoughLineGetSize_8u_C1R({46341, 46341}, d, 4, &bytes), rvpStsBufferSizeWrn);
    std::vector<Rvp8u> buf(static_cast<size_t>(1) << 16);
    RvpPointPolar lines[4];
    int count = -1;
    struct Row { RvpStatus want; const Rvp8u* s; int step; RvpiSize r; RvpPointPolar d; int thr; int max; };
    const Row rows[] = {{rvpStsNullPtrErr, nullptr, 10, {10, 10}, d, 1, 4},
                        {rvpStsStepErr, img.data(), 0, {10, 10}, d, 1, 4},
                        {rvpStsSizeErr, img.data(), 10, {10, 10}, d, 1, 0},
                        {rvpStsBadArgErr, img.data(), 10, {10, 10}, {21.0f, 0.1f}, 1, 4},
                        {rvpStsBadArgErr, img.data(), 10, {10, 10}, {1.0f, 3.14159f}, 1, 4},  // just above the limit
                        {rvpStsBadArgErr, img.data(), 10, {10, 10}, d, 0, 4},
                        {rvpStsNoErr, img.data(), 10, {10, 10}, d, 1, 4}};  // one pixel: no line
    for (const Row& r : rows) {
        EXPECT_EQ(rvpiHoughLine_8u32f_C1R(r.s, r.step, r.r, r.d, r.thr, lines, r.max, &count, buf.data()), r.want) << (&r - rows);
        EXPECT_EQ(count, r.want == rvpStsNoErr ? 0 : -1);
    }
    RvpPointPolar crossed[2] = {{5, 0}, {1, 1}};
    count = 3;
    EXPECT_EQ(rvpiHoughLine_Region_8u32f_C1R(img.data(), 10, {10, 10}, lines, crossed, 4, &count, d, 1, buf.data()), rvpStsRangeErr);
    EXPECT_EQ(count, 0);
}

TEST(Peaks, MatchModelAndStop) {
    std::mt19937 rng(4);
    for (int t = 0; t < 30; ++t) {
        const int W = std::uniform_int_distribution<int>(2, 40)(rng), H = std::uniform_int_distribution<int>(2, 30)(rng);
        const int border = std::uniform_int_distribution<int>(1, 3)(rng), norm = t % 2, maxPeaks = t % 5 == 0 ? 3 : 1000;
        Image<Rvp32f> f(W, H, 1, 4);
        Image<Rvp32s> s(W, H, 1, 8);
        for (int y = 0; y < H; ++y)
            for (int x = 0; x < W; ++x) {
                const int v = static_cast<int>(rng() % 7) - 3;  // plateaus and both signs
                f.at(x, y) = static_cast<float>(v), s.at(x, y) = t == 7 && x == 1 && y == 1 ? INT32_MIN : v;
            }
        int bytes = 0;
        ASSERT_EQ(rvpiFindPeaks3x3GetBufferSize_32f_C1R(W, &bytes), rvpStsNoErr);
        std::vector<Rvp8u> buf(static_cast<size_t>(bytes));
        std::vector<RvpiPoint> pf(1000), ps(1000);
        int nf = -1, ns = -1;
        const RvpStatus sf = rvpiFindPeaks3x3_32f_C1R(f.ptr(), f.step(), f.size(), 1.5f, pf.data(), maxPeaks, &nf, norm, border, buf.data());
        const RvpStatus ss = rvpiFindPeaks3x3_32s_C1R(s.ptr(), s.step(), s.size(), 1, ps.data(), maxPeaks, &ns, norm, border, buf.data());
        if (2 * border > W || 2 * border > H) {
            EXPECT_EQ(sf, rvpStsSizeErr);
            continue;
        }
        ASSERT_TRUE(sf == rvpStsNoErr && ss == rvpStsNoErr);
        std::vector<RvpiPoint> want;
        for (int y = border; y < H - border; ++y)
            for (int x = border; x < W - border && static_cast<int>(want.size()) < maxPeaks; ++x) {
                const int v = s.at(x, y);
                int mx = v, mn = v;
                for (int dy = -1; dy <= 1; ++dy)
                    for (int dx = -1; dx <= 1; ++dx)
                        if (norm == 0 || dx == 0 || dy == 0) mx = std::max(mx, s.at(x + dx, y + dy)), mn = std::min(mn, s.at(x + dx, y + dy));
                if (v != INT32_MIN && std::abs(v) > 1 && (v >= 1 ? v == mx : v == mn)) want.push_back({x, y});
            }
        ASSERT_EQ(ns, static_cast<int>(want.size())) << t;
        for (int i = 0; i < ns; ++i) ASSERT_TRUE(ps[i].x == want[i].x && ps[i].y == want[i].y) << t;
        if (t != 7) {
            ASSERT_EQ(nf, ns);
            for (int i = 0; i < nf; ++i) ASSERT_TRUE(pf[i].x == ps[i].x && pf[i].y == ps[i].y);
        }
    }
    int n = 0;
    RvpiPoint p[1];
    std::vector<Rvp8u> buf(256);
    Image<Rvp32f> f(4, 4);
    EXPECT_EQ(rvpiFindPeaks3x3_32f_C1R(f.ptr(), f.step(), f.size(), 0, p, 1, &n, 2, 1, buf.data()), rvpStsBadArgErr);
    EXPECT_EQ(rvpiFindPeaks3x3_32f_C1R(f.ptr(), 14, f.size(), 0, p, 1, &n, 0, 1, buf.data()), rvpStsStepErr);
    EXPECT_EQ(rvpiFindPeaks3x3_32f_C1R(f.ptr(), f.step(), f.size(), 0, p, 1, &n, 0, 3, buf.data()), rvpStsSizeErr);
}

TEST(GradientColorToGray, Norms) {
    const Rvp8u w8[3] = {255, 255, 255};
    Rvp8u g8 = 0;
    ASSERT_EQ(rvpiGradientColorToGray_8u_C3C1R(w8, 3, &g8, 1, {1, 1}, 1), rvpStsNoErr);
    EXPECT_EQ(g8, 255);
    std::mt19937 rng(8);
    Image<Rvp16u> s(61, 70, 3, 6);
    Image<Rvp32f> f(61, 70, 3);
    for (int y = 0; y < 70; ++y)
        for (int x = 0; x < 183; ++x) s.row(y)[x] = static_cast<Rvp16u>(rng()), f.row(y)[x] = static_cast<float>(static_cast<int>(rng() % 2001) - 1000) / 7;
    for (int norm = 0; norm < 3; ++norm)
        for (int inRegion = 0; inRegion < 2; ++inRegion) {
            Image<Rvp16u> d(61, 70);
            Image<Rvp32f> e(61, 70);
            // Inside a parallel region the call splits its rows over the team.
#pragma omp parallel num_threads(inRegion ? 3 : 1)
            {
#pragma omp master
                {
                    EXPECT_EQ(rvpiGradientColorToGray_16u_C3C1R(s.ptr(), s.step(), d.ptr(), d.step(), s.size(), norm), rvpStsNoErr);
                    EXPECT_EQ(rvpiGradientColorToGray_32f_C3C1R(f.ptr(), f.step(), e.ptr(), e.step(), f.size(), norm), rvpStsNoErr);
                }
            }
            for (int y = 0; y < 70; ++y)
                for (int x = 0; x < 61; ++x) {
                    const double a = s.at(x, y, 0), b = s.at(x, y, 1), c = s.at(x, y, 2);
                    const int want = norm == 0 ? static_cast<int>(std::max({a, b, c}))
                                     : norm == 1 ? (static_cast<int>(a + b + c) * 0x1555 + 0x2000) >> 14
                                                 : static_cast<int>(std::sqrt((a * a + b * b + c * c) / 3.0) + 0.5);
                    ASSERT_EQ(d.at(x, y), want) << norm;
                    const float fa = f.at(x, y, 0), fb = f.at(x, y, 1), fc = f.at(x, y, 2);
                    const float fw = norm == 0 ? std::max({std::fabs(fa), std::fabs(fb), std::fabs(fc)})
                                     : norm == 1 ? std::fabs(fa) + std::fabs(fb) + std::fabs(fc)
                                                 : std::sqrt(fa * fa + fb * fb + fc * fc);
                    ASSERT_EQ(e.at(x, y), fw) << norm;
                }
        }
    Rvp8u out = 9;
    EXPECT_EQ(rvpiGradientColorToGray_8u_C3C1R(w8, 2, &out, 1, {1, 1}, 0), rvpStsStepErr);
    EXPECT_EQ(rvpiGradientColorToGray_8u_C3C1R(w8, 3, &out, 1, {1, 1}, 3), rvpStsBadArgErr);
    EXPECT_EQ(out, 9);
}

float arctanModel(float y, float x) {
    const float ax = std::fabs(x), ay = std::fabs(y);
    float d = ax > ay ? ax : ay;
    d = d > 1e-8f ? d : 1e-8f;
    const float n = ax < ay ? ax : ay, r0 = 1.0f / d, r = 2.0f * r0 - d * r0 * r0, t = n * r;
    float a = (t * -15.8131895f + 61.09419632f) * t - 0.14050041f;
    if (ax < ay) a = 90.0f - a;
    if (x < 0) a = 180.0f - a;
    if (y < 0) a = 360.0f - a;
    return a;
}

TEST(FastArctan, RuleAndTails) {
    std::mt19937 rng(2);
    std::vector<float> y(103), x(103), out(103);
    for (int i = 0; i < 103; ++i) y[i] = static_cast<float>(static_cast<int>(rng() % 201) - 100) / 3, x[i] = static_cast<float>(static_cast<int>(rng() % 201) - 100) / 3;
    y[0] = 0, x[0] = 1, y[1] = 1, x[1] = 1, y[2] = 0, x[2] = -1, y[3] = 0, x[3] = 0;
    for (rvcv::Isa isa : isaLevels()) {
        ScopedIsa level(isa);
        for (int len : {103, 1, 2, 3, 5, 16, 17}) {
            ASSERT_EQ(rvpibFastArctan_32f(y.data(), x.data(), out.data(), len), rvpStsNoErr);
            for (int i = 0; i < len; ++i) ASSERT_EQ(out[i], arctanModel(y[i], x[i])) << i;
        }
    }
    EXPECT_NEAR(out[0], -0.1405, 1e-4);
    EXPECT_NEAR(out[2], 180.1405, 1e-3);
    EXPECT_EQ(rvpibFastArctan_32f(y.data(), x.data(), out.data(), 0), rvpStsSizeErr);
    EXPECT_EQ(rvpibFastArctan_32f(y.data(), nullptr, out.data(), 4), rvpStsNullPtrErr);
}

}  // namespace
