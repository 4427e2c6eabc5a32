// Super-resolution residual and gradient against the reference sums, with
// samples that share taps (order matters), negative steps, and the
// validation rules of the step and the phase.
#include "reference/ref_undistort.h"
#include "support/rvtest.h"

using namespace rvtest;

namespace {

template <int N, class Kernel, class Init, class Residual8, class Update, class Free>
void checkPsf(Init init, Residual8 residual, Update update, Free release) {
    constexpr int kEntries = 5, kW = 12, kH = 9;
    std::mt19937 rng(N);
    std::uniform_real_distribution<float> d(-2, 2);
    std::vector<float> table(kEntries * N * N);
    for (float& t : table) t = d(rng);
    Kernel* psf = nullptr;
    ASSERT_EQ(init(&psf, table.data(), kEntries), rvpStsNoErr);

    std::vector<float> hi(kW * kH), grad(kW * kH), wantGrad;
    for (float& v : hi) v = d(rng);
    for (float& v : grad) v = d(rng);
    wantGrad = grad;
    const int len = 40;
    std::vector<Rvp32s> off(len);
    std::vector<Rvp16u> ph(len);
    std::vector<Rvp8u> low(len), wi(len);
    std::vector<float> res(len), weights{0.5f, -1.25f, 3.0f};
    for (int i = 0; i < len; ++i) {
        off[i] = static_cast<Rvp32s>(rng() % (kH - N + 1)) * kW + static_cast<Rvp32s>(rng() % (kW - N + 1));
        ph[i] = static_cast<Rvp16u>(rng() % kEntries);
        low[i] = static_cast<Rvp8u>(rng());
        wi[i] = static_cast<Rvp8u>(rng() % 3);
    }
    ASSERT_EQ(residual(hi.data(), kW * 4, low.data(), off.data(), ph.data(), res.data(), len, psf), rvpStsNoErr);
    for (int i = 0; i < len; ++i) {
        const float want = ref::srResidual(hi.data() + off[i], kW, N, table.data() + ph[i] * N * N, low[i]);
        ASSERT_TRUE(sameBits(&want, &res[i], 4)) << i;
    }
    ASSERT_EQ(update(grad.data(), kW * 4, off.data(), ph.data(), res.data(), wi.data(), len, weights.data(), psf),
              rvpStsNoErr);
    for (int i = 0; i < len; ++i)
        ref::srUpdate(wantGrad.data() + off[i], kW, N, table.data() + ph[i] * N * N, weights[wi[i]] * res[i]);
    ASSERT_EQ(0, std::memcmp(grad.data(), wantGrad.data(), grad.size() * 4));

    // A bottom-up image: the last row first, a negative step.
    std::vector<float> flipped(kW * kH), res2(len);
    for (int y = 0; y < kH; ++y) std::copy_n(hi.data() + y * kW, kW, flipped.data() + (kH - 1 - y) * kW);
    std::vector<Rvp32s> off2(len);
    for (int i = 0; i < len; ++i) off2[i] = (kH - 1 - off[i] / kW) * kW + off[i] % kW;
    ASSERT_EQ(residual(flipped.data(), -kW * 4, low.data(), off2.data(), ph.data(), res2.data(), len, psf), rvpStsNoErr);
    EXPECT_EQ(res, res2);

    // Validation: nothing written on any failure.
    const std::vector<float> kept = res;
    const Rvp16u bad[1] = {kEntries};
    const struct { int step, len; const Rvp16u* ph; Kernel* psf; RvpStatus st; } rows[] = {
        {kW * 4, len, ph.data(), nullptr, rvpStsNullPtrErr},
        {kW * 4, 0, ph.data(), psf, rvpStsSizeErr},
        {N == 2 ? 4 : 8, len, ph.data(), psf, rvpStsStepErr},
        {10, len, ph.data(), psf, rvpStsStepErr},
        {kW * 4, 1, bad, psf, rvpStsOutOfRangeErr},
    };
    for (const auto& r : rows) {
        EXPECT_EQ(residual(hi.data(), r.step, low.data(), off.data(), r.ph, res.data(), r.len, r.psf), r.st);
        EXPECT_EQ(update(grad.data(), r.step, off.data(), r.ph, res.data(), wi.data(), r.len, weights.data(), r.psf),
                  r.st);
    }
    EXPECT_EQ(res, kept);
    EXPECT_EQ(residual(hi.data(), N == 2 ? 8 : 12, low.data(), off.data(), ph.data(), res.data(), 1, psf), rvpStsNoErr);
    EXPECT_EQ(init(&psf, nullptr, 1), rvpStsNullPtrErr);
    EXPECT_EQ(init(&psf, table.data(), 0), rvpStsSizeErr);
    EXPECT_EQ(init(&psf, table.data(), INT32_MAX / 16 + 1), rvpStsSizeErr);
    EXPECT_EQ(release(psf), rvpStsNoErr);
    EXPECT_EQ(release(nullptr), rvpStsNullPtrErr);
}

TEST(SuperResolution, Psf2x2MatchesReference) {
    checkPsf<2, RvpiSRHNSpec_PSF2x2>(rvpiSRHNInitAlloc_PSF2x2, rvpiSRHNCalcResidual_PSF2x2_8u32f_C1R,
                                     rvpiSRHNUpdateGradient_PSF2x2_32f_C1R, rvpiSRHNFree_PSF2x2);
}

TEST(SuperResolution, Psf3x3MatchesReference) {
    checkPsf<3, RvpiSRHNSpec_PSF3x3>(rvpiSRHNInitAlloc_PSF3x3, rvpiSRHNCalcResidual_PSF3x3_8u32f_C1R,
                                     rvpiSRHNUpdateGradient_PSF3x3_32f_C1R, rvpiSRHNFree_PSF3x3);
}

// The 16-bit residual reads 16-bit samples: a one-tap entry gives h[o] - s.
TEST(SuperResolution, SixteenBitSamples) {
    const float one[9] = {1, 0, 0, 0, 0, 0, 0, 0, 0};
    RvpiSRHNSpec_PSF3x3* psf = nullptr;
    ASSERT_EQ(rvpiSRHNInitAlloc_PSF3x3(&psf, one, 1), rvpStsNoErr);
    const float hi[12] = {70000, 1, 2, 0, 3, 4, 5, 0, 6, 7, 8, 0};
    const Rvp16u low[1] = {65535};
    const Rvp32s off[1] = {0};
    const Rvp16u ph[1] = {0};
    float r = 0;
    ASSERT_EQ(rvpiSRHNCalcResidual_PSF3x3_16u32f_C1R(hi, 16, low, off, ph, &r, 1, psf), rvpStsNoErr);
    EXPECT_EQ(r, 70000.0f - 65535.0f);
    rvpiSRHNFree_PSF3x3(psf);
}

}  // namespace
