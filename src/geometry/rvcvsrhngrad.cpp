// Super-resolution gradient: the two inner loops of an iterative method that
// observes a high-resolution float image through a point spread function,
// one coefficient entry per sub-pixel phase. The residual predicts each
// low-resolution sample and subtracts the measured one; the update spreads
// weighted residuals back through the same coefficients. Samples come as a
// flat list, so the loops do no geometry; they run on the calling thread.
#include "rvcvframe.h"

// A 3x3 entry keeps each row of three coefficients in four floats, so a row
// starts on a 16-byte boundary; a 2x2 entry is four floats.
struct RvpiSRHNSpec_PSF2x2 {
    Rvp32f* table;
    int tableSize;
};
struct RvpiSRHNSpec_PSF3x3 {
    Rvp32f* table;
    int tableSize;
};

namespace rvcv {
namespace {

template <class Kernel> struct Psf;
template <> struct Psf<RvpiSRHNSpec_PSF2x2> {
    static constexpr int kTaps = 2, kGiven = 4, kStored = 4, kMinStep = 8;
};
template <> struct Psf<RvpiSRHNSpec_PSF3x3> {
    static constexpr int kTaps = 3, kGiven = 9, kStored = 12, kMinStep = 12;
};

template <class Kernel> RvpStatus initAlloc(Kernel** pp, const Rvp32f* table, int size) {
    using P = Psf<Kernel>;
    Check c;
    const int64_t bytes = static_cast<int64_t>(size) * P::kStored * static_cast<int64_t>(sizeof(Rvp32f));
    if (RvpStatus st = c.ptrs(pp, table).fail(size < 1 || bytes > INT32_MAX, rvpStsSizeErr)) return st;
    auto* psf = static_cast<Kernel*>(rvpMalloc(static_cast<int>(sizeof(Kernel))));
    if (!psf) return rvpStsMemAllocErr;
    psf->table = static_cast<Rvp32f*>(rvpMalloc(static_cast<int>(bytes)));
    if (!psf->table) {
        rvpFree(psf);
        return rvpStsMemAllocErr;
    }
    psf->tableSize = size;
    for (int64_t e = 0; e < size; ++e)
        for (int j = 0; j < P::kTaps; ++j) {
            Rvp32f* row = psf->table + e * P::kStored + j * (P::kStored / P::kTaps);
            for (int k = 0; k < P::kTaps; ++k) row[k] = table[e * P::kGiven + j * P::kTaps + k];
            if (P::kTaps == 3) row[3] = 0.0f;
        }
    *pp = psf;
    return rvpStsNoErr;
}

template <class Kernel> RvpStatus release(Kernel* psf) {
    if (!psf) return rvpStsNullPtrErr;
    rvpFree(psf->table);
    rvpFree(psf);
    return rvpStsNoErr;
}

// Steps are tested as unsigned 64-bit values after sign extension, so a
// negative step passes the minimum; the multiple-of-4 failure is a step
// error here too. Phases outside the table are refused before any write.
template <class Kernel>
RvpStatus checkList(Check& c, int step, const Rvp16u* phases, int length, const Kernel* psf) {
    const uint64_t s = static_cast<uint64_t>(static_cast<int64_t>(step));
    c.fail(length < 1, rvpStsSizeErr).fail(s < static_cast<uint64_t>(Psf<Kernel>::kMinStep) || (s & 3u) != 0,
                                           rvpStsStepErr);
    if (c != rvpStsNoErr) return c;
    for (int i = 0; i < length; ++i)
        if (phases[i] >= psf->tableSize) return rvpStsOutOfRangeErr;
    return rvpStsNoErr;
}

// Sum of the taps of one entry, row by row, left to right.
template <class Kernel> inline float predict(const Rvp32f* h, int64_t s, const Rvp32f* coef) {
    using P = Psf<Kernel>;
    float sum = h[0] * coef[0];
    for (int j = 0; j < P::kTaps; ++j)
        for (int k = (j == 0 ? 1 : 0); k < P::kTaps; ++k)
            sum = sum + h[j * s + k] * coef[j * (P::kStored / P::kTaps) + k];
    return sum;
}

template <class Kernel, class T>
RvpStatus residual(const Rvp32f* hi, int step, const T* low, const Rvp32s* offsets, const Rvp16u* phases,
                   Rvp32f* res, int length, const Kernel* psf) {
    Check c;
    c.ptrs(hi, low, offsets, phases, res, psf);
    if (c != rvpStsNoErr) return c;
    if (RvpStatus st = checkList(c, step, phases, length, psf)) return st;
    const int64_t s = static_cast<int64_t>(step) / 4;
    for (int i = 0; i < length; ++i)
        res[i] = predict<Kernel>(hi + offsets[i], s, psf->table + static_cast<int64_t>(phases[i]) * Psf<Kernel>::kStored) -
                 static_cast<float>(low[i]);
    return rvpStsNoErr;
}

template <class Kernel>
RvpStatus update(Rvp32f* grad, int step, const Rvp32s* offsets, const Rvp16u* phases, const Rvp32f* res,
                 const Rvp8u* weightIndex, int length, const Rvp32f* weights, const Kernel* psf) {
    using P = Psf<Kernel>;
    Check c;
    c.ptrs(grad, offsets, phases, res, weightIndex, weights, psf);
    if (c != rvpStsNoErr) return c;
    if (RvpStatus st = checkList(c, step, phases, length, psf)) return st;
    const int64_t s = static_cast<int64_t>(step) / 4;
    for (int i = 0; i < length; ++i) {
        const float f = weights[weightIndex[i]] * res[i];
        const Rvp32f* coef = psf->table + static_cast<int64_t>(phases[i]) * P::kStored;
        Rvp32f* g = grad + offsets[i];
        for (int j = 0; j < P::kTaps; ++j)
            for (int k = 0; k < P::kTaps; ++k) {
                Rvp32f& t = g[j * s + k];
                t = coef[j * (P::kStored / P::kTaps) + k] * f + t;
            }
    }
    return rvpStsNoErr;
}

}  // namespace
}  // namespace rvcv

using namespace rvcv;

RVCV_EXPORT RvpStatus rvpiSRHNInitAlloc_PSF2x2(RvpiSRHNSpec_PSF2x2** ppPSF, const Rvp32f* pcTable, int tableSize) {
    return initAlloc(ppPSF, pcTable, tableSize);
}
RVCV_EXPORT RvpStatus rvpiSRHNInitAlloc_PSF3x3(RvpiSRHNSpec_PSF3x3** ppPSF, const Rvp32f* pcTable, int tableSize) {
    return initAlloc(ppPSF, pcTable, tableSize);
}
RVCV_EXPORT RvpStatus rvpiSRHNFree_PSF2x2(RvpiSRHNSpec_PSF2x2* pPSF) { return release(pPSF); }
RVCV_EXPORT RvpStatus rvpiSRHNFree_PSF3x3(RvpiSRHNSpec_PSF3x3* pPSF) { return release(pPSF); }

#define RVCV_SRHN_RESIDUAL(psf, T, types)                                                                          \
    RVCV_EXPORT RvpStatus rvpiSRHNCalcResidual_##psf##_##types##_C1R(                                              \
        const Rvp32f* pHiRes, int hiResStep, const T* pLowRes, const Rvp32s* pOffsets, const Rvp16u* pPhases,      \
        Rvp32f* pResidual, int length, const RvpiSRHNSpec_##psf* pPSF) {                                           \
        return residual(pHiRes, hiResStep, pLowRes, pOffsets, pPhases, pResidual, length, pPSF);                   \
    }
RVCV_SRHN_RESIDUAL(PSF2x2, Rvp8u, 8u32f)
RVCV_SRHN_RESIDUAL(PSF2x2, Rvp16u, 16u32f)
RVCV_SRHN_RESIDUAL(PSF3x3, Rvp8u, 8u32f)
RVCV_SRHN_RESIDUAL(PSF3x3, Rvp16u, 16u32f)
#undef RVCV_SRHN_RESIDUAL

RVCV_EXPORT RvpStatus rvpiSRHNUpdateGradient_PSF2x2_32f_C1R(Rvp32f* pGrad, int gradStep, const Rvp32s* pOffsets,
                                                            const Rvp16u* pPhases, const Rvp32f* pResidual,
                                                            const Rvp8u* pWeightIndex, int length,
                                                            const Rvp32f* pWeights, const RvpiSRHNSpec_PSF2x2* pPSF) {
    return update(pGrad, gradStep, pOffsets, pPhases, pResidual, pWeightIndex, length, pWeights, pPSF);
}
RVCV_EXPORT RvpStatus rvpiSRHNUpdateGradient_PSF3x3_32f_C1R(Rvp32f* pGrad, int gradStep, const Rvp32s* pOffsets,
                                                            const Rvp16u* pPhases, const Rvp32f* pResidual,
                                                            const Rvp8u* pWeightIndex, int length,
                                                            const Rvp32f* pWeights, const RvpiSRHNSpec_PSF3x3* pPSF) {
    return update(pGrad, gradStep, pOffsets, pPhases, pResidual, pWeightIndex, length, pWeights, pPSF);
}
