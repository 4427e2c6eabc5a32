// Mixture-of-Gaussians kernel, written once over the number of pixels taken
// side by side (a vector of doubles, or one for the row's tail) and the
// channel count, and compiled per instruction set. Every lane does the same
// double-precision operations in the same order as the single-pixel form,
// so the results do not depend on the path. Only the ranking leaves the
// vectors: a pixel whose keys are out of order is sorted on its own.
#include <cstring>
#include <type_traits>

#include "motion/rvcvfgauss.h"
#include "rvcvsimd.h"

namespace rvcv {
namespace RVCV_ISA_NS {
namespace {

template <class T, int L> struct PackOf { typedef T type __attribute__((vector_size(sizeof(T) * L))); };
template <int L> using D = typename PackOf<double, L>::type;
template <int L> using M = typename PackOf<int64_t, L>::type;   // lanes of a double comparison
template <int L> using U = typename PackOf<uint32_t, L>::type;  // counts
template <int L> using S = typename PackOf<int32_t, L>::type;

template <class V> inline V load(const void* p) { V v; std::memcpy(&v, p, sizeof v); return v; }
template <class V> inline void store(void* p, V v) { std::memcpy(p, &v, sizeof v); }
// One bit per lane of a comparison's lanes (all ones or all zeros).
template <int L> inline int bits(M<L> m) {
    if constexpr (L == 1) {
        return m[0] != 0;
#ifdef __AVX512F__
    } else if constexpr (L == 8) {
        __m512i x;
        std::memcpy(&x, &m, 64);
        return _mm512_movepi64_mask(x);
#endif
#ifdef __AVX__
    } else if constexpr (L == 4) {
        __m256d x;
        std::memcpy(&x, &m, 32);
        return _mm256_movemask_pd(x);
#endif
    } else {
        int b = 0;
        for (int o = 0; o < L; o += 2) {
            __m128d x;
            std::memcpy(&x, reinterpret_cast<const char*>(&m) + 8 * o, 16);
            b |= _mm_movemask_pd(x) << o;
        }
        return b;
    }
}
template <int L> inline bool none(M<L> m) { return bits<L>(m) == 0; }
template <int L> inline bool all(M<L> m) { return bits<L>(m) == (1 << L) - 1; }

// Correctly rounded square roots, the width of the instruction set at a time.
template <int L> inline D<L> vsqrt(D<L> v) {
    D<L> r;
    char* out = reinterpret_cast<char*>(&r);
    const char* in = reinterpret_cast<const char*>(&v);
    if constexpr (L == 1) {
        const __m128d x = _mm_set_sd(v[0]);
        r[0] = _mm_cvtsd_f64(_mm_sqrt_sd(x, x));
#ifdef __AVX512F__
    } else if constexpr (sizeof(r) % 64 == 0) {
        for (size_t o = 0; o < sizeof r; o += 64) {
            __m512d x;
            std::memcpy(&x, in + o, 64);
            x = _mm512_maskz_sqrt_pd(0xff, x);  // all lanes; the plain form trips a GCC warning
            std::memcpy(out + o, &x, 64);
        }
#endif
#ifdef __AVX__
    } else if constexpr (sizeof(r) % 32 == 0) {
        for (size_t o = 0; o < sizeof r; o += 32) {
            __m256d x;
            std::memcpy(&x, in + o, 32);
            x = _mm256_sqrt_pd(x);
            std::memcpy(out + o, &x, 32);
        }
#endif
    } else {
        for (size_t o = 0; o < sizeof r; o += 16) {
            __m128d x;
            std::memcpy(&x, in + o, 16);
            x = _mm_sqrt_pd(x);
            std::memcpy(out + o, &x, 16);
        }
    }
    return r;
}

// An estimate of 1 / sqrt(v) within 2^-11 of it (the conversion to single
// precision and the processor's reciprocal-root estimate, 1.5 * 2^-12):
// enough to tell keys apart by a clear margin, never used for a result.
template <int L> inline D<L> roughInvRoot(D<L> v) {
    using F = typename PackOf<float, L>::type;
    const F f = __builtin_convertvector(v, F);
    F r;
    if constexpr (L == 1) {
        r[0] = _mm_cvtss_f32(_mm_rsqrt_ss(_mm_set_ss(f[0])));
    } else {
        for (size_t o = 0; o < sizeof r; o += 16) {
            __m128 x;
            std::memcpy(&x, reinterpret_cast<const char*>(&f) + o, 16);
            x = _mm_rsqrt_ps(x);
            std::memcpy(reinterpret_cast<char*>(&r) + o, &x, 16);
        }
    }
    return __builtin_convertvector(r, D<L>);
}

// 1 / v for integer v, exactly as the division gives it: from the table of
// reciprocals where every lane is in it, else by dividing.
template <int L> inline D<L> reciprocal(S<L> v, const GaussFrame& f) {
    bool table = true;
    for (int l = 0; l < L; ++l) table = table && v[l] > 0 && v[l] < kReciprocals;
    if (!table) return 1.0 / __builtin_convertvector(v, D<L>);
    D<L> r;
    for (int l = 0; l < L; ++l) r[l] = f.reciprocal[v[l]];
    return r;
}

// The stable ranking of one pixel by descending key, records moved whole.
void rankPixel(const GaussPlanes& p, size_t i, int C, const double* keys) {
    int order[kGaussians];
    double k[kGaussians];
    for (int j = 0; j < kGaussians; ++j) { order[j] = j; k[j] = keys[j]; }
    for (int j = 1; j < kGaussians; ++j) {
        const double t = k[j];
        const int o = order[j];
        int m = j;
        while (m > 0 && k[m - 1] < t) {
            k[m] = k[m - 1];
            order[m] = order[m - 1];
            --m;
        }
        k[m] = t;
        order[m] = o;
    }
    const auto permute = [&](auto* plane, size_t stride) {
        using T = std::remove_reference_t<decltype(*plane)>;
        T tmp[kGaussians];
        for (int r = 0; r < kGaussians; ++r) tmp[r] = plane[order[r] * stride + i];
        for (int r = 0; r < kGaussians; ++r) plane[r * stride + i] = tmp[r];
    };
    permute(p.count, p.n);
    permute(p.weight, p.n);
    permute(p.invRoot, p.n);
    for (int c = 0; c < C; ++c) {
        permute(p.variance + c * p.n, C * p.n);
        permute(p.mean + c * p.n, C * p.n);
    }
}

// L pixels from plane index i; src holds their interleaved samples.
template <int L, int C>
void pixels(const GaussPlanes& p, size_t i, const uint8_t* src, uint8_t* bg, uint8_t* mask, const GaussFrame& f) {
    using DL = D<L>;
    using ML = M<L>;
    const size_t n = p.n;
    const auto varAt = [&](int k, int c) { return p.variance + (static_cast<size_t>(k) * C + c) * n + i; };
    const auto meanAt = [&](int k, int c) { return p.mean + (static_cast<size_t>(k) * C + c) * n + i; };

    DL I[C];
    if constexpr (C == 1) {
        I[0] = __builtin_convertvector(load<typename PackOf<uint8_t, L>::type>(src), DL);
    } else {
        for (int c = 0; c < C; ++c)
            for (int l = 0; l < L; ++l) I[c][l] = src[l * C + c];
    }

    // 1. Match: the first Gaussian in stored order within the factor. The
    // walk is unrolled so that its vectors stay in registers; Gaussians past
    // the point where every lane has matched are not read.
    DL mean[kGaussians][C], var[kGaussians][C];
    bool loaded[kGaussians];
    ML match[kGaussians];
    ML found = {};
#pragma GCC unroll 5
    for (int k = 0; k < kGaussians; ++k) {
        match[k] = ML{};
        loaded[k] = !all<L>(found);
        if (!loaded[k]) continue;
        ML within = ~ML{};
        for (int c = 0; c < C; ++c) {
            mean[k][c] = load<DL>(meanAt(k, c));
            var[k][c] = load<DL>(varAt(k, c));
            const DL d = mean[k][c] - I[c];
            within &= d * d < var[k][c] * f.matchFactor * f.matchFactor;
        }
        match[k] = within & ~found;
        found |= within;
    }
    const auto ensure = [&](int k) {
        if (loaded[k]) return;
        for (int c = 0; c < C; ++c) {
            mean[k][c] = load<DL>(meanAt(k, c));
            var[k][c] = load<DL>(varAt(k, c));
        }
        loaded[k] = true;
    };

    // 2, 3. The frame's rule, then the replacement of the last Gaussian.
    U<L> count[kGaussians];
    DL weight[kGaussians];
    for (int k = 0; k < kGaussians; ++k) {
        count[k] = load<U<L>>(p.count + k * n + i);
        weight[k] = load<DL>(p.weight + k * n + i);
    }
    // d = I - mean, mean += d * rho, variance += rho * (d * d - variance)
    // in the lanes of `sel`.
    const auto meanVar = [&](int k, ML sel, DL rho) {
        for (int c = 0; c < C; ++c) {
            const DL d = I[c] - mean[k][c];
            const DL m2 = mean[k][c] + d * rho;
            const DL v2 = var[k][c] + rho * (d * d - var[k][c]);
            mean[k][c] = sel ? m2 : mean[k][c];
            var[k][c] = sel ? v2 : var[k][c];
        }
    };
    bool dirty[kGaussians] = {false, false, false, false, false};
    if (f.historyRule) {
        for (int k = 0; k < kGaussians; ++k) {
            const DL m = match[k] ? DL{} + 1.0 : DL{};
            weight[k] += (m - weight[k]) * f.invHistory;
            if (none<L>(match[k])) continue;
            meanVar(k, match[k], m / (f.history * weight[k]));
            dirty[k] = true;
        }
    } else {
        U<L> sum = {};
        for (int k = 0; k < kGaussians; ++k) sum += count[k];
        const DL inv = reciprocal<L>(__builtin_convertvector(sum + 1u, S<L>), f);
        for (int k = 0; k < kGaussians; ++k) {
            const DL m = match[k] ? DL{} + 1.0 : DL{};
            count[k] += __builtin_convertvector(match[k], U<L>) & 1u;
            weight[k] += (m - weight[k]) * inv;
            if (none<L>(match[k])) continue;
            const S<L> signedCount = __builtin_convertvector(count[k], S<L>);
            meanVar(k, match[k] & __builtin_convertvector(signedCount > 0, ML), reciprocal<L>(signedCount, f));
            dirty[k] = true;
        }
    }
    const ML lost = ~found;
    if (!none<L>(lost)) {
        constexpr int last = kGaussians - 1;
        ensure(last);
        const U<L> lostU = __builtin_convertvector(lost, U<L>);
        count[last] = (lostU & 1u) | (~lostU & count[last]);
        U<L> sum = {};
        for (int k = 0; k < kGaussians; ++k) sum += count[k];
        const DL fresh = reciprocal<L>(__builtin_convertvector(sum, S<L>), f);
        weight[last] = lost ? fresh : weight[last];
        for (int c = 0; c < C; ++c) {
            var[last][c] = lost ? DL{} + f.initialVariance : var[last][c];
            mean[last][c] = lost ? I[c] : mean[last][c];
        }
        for (int k = 0; k < last; ++k) weight[k] = lost ? weight[k] * f.fade : weight[k];
        dirty[last] = true;
    }

    // 4. Rank. Each Gaussian keeps an estimate of 1 / sqrt(sum of its
    // variances), renewed where a variance changed. A pixel's keys
    // w / sqrt(v) are compared first as w times that estimate (within 2^-10
    // of them): where every neighbouring pair is in order by a clear margin,
    // or the later key is exactly 0, the exact keys are in order too and the
    // ranking moves nothing. Other pixels take the exact keys.
    DL approx[kGaussians];
    ML exactZero[kGaussians];
#pragma GCC unroll 5
    for (int k = 0; k < kGaussians; ++k) {
        DL inv;
        if (dirty[k]) {
            DL v = var[k][0];
            for (int c = 1; c < C; ++c) v = v + var[k][c];
            inv = roughInvRoot<L>(v);
            store(p.invRoot + k * n + i, inv);
        } else {
            inv = load<DL>(p.invRoot + k * n + i);
        }
        const ML live = __builtin_convertvector(__builtin_convertvector(count[k], S<L>) >= 1, ML);
        approx[k] = live ? weight[k] * inv : DL{};
        exactZero[k] = ~live | (weight[k] == 0.0);
    }
    constexpr double kMargin = 1.0 + 0x1p-8;  // well beyond twice the estimate's error
    ML unsure = {};
#pragma GCC unroll 4
    for (int k = 1; k < kGaussians; ++k) {
        const DL a = approx[k - 1], b = approx[k];
        const ML clear = (a > b * kMargin) & (b > 0.0) & (a < __builtin_huge_val());
        unsure |= ~(clear | exactZero[k]);
    }
#pragma GCC unroll 5
    for (int k = 0; k < kGaussians; ++k) {
        store(p.count + k * n + i, count[k]);
        store(p.weight + k * n + i, weight[k]);
        if (!dirty[k]) continue;
        for (int c = 0; c < C; ++c) {
            store(meanAt(k, c), mean[k][c]);
            store(varAt(k, c), var[k][c]);
        }
    }
    if (!none<L>(unsure)) {
        for (int l = 0; l < L; ++l) {
            if (!unsure[l]) continue;
            const size_t j = i + l;
            double keys[kGaussians];
            for (int k = 0; k < kGaussians; ++k) {
                double v = p.variance[k * C * n + j];
                for (int c = 1; c < C; ++c) v = v + p.variance[(k * C + c) * n + j];
                keys[k] = static_cast<int32_t>(p.count[k * n + j]) >= 1 ? p.weight[k * n + j] / vsqrt<1>(D<1>{v})[0]
                                                                       : 0.0;
            }
            rankPixel(p, j, C, keys);
        }
        for (int k = 0; k < kGaussians; ++k) weight[k] = load<DL>(p.weight + k * n + i);
        for (int c = 0; c < C; ++c) mean[0][c] = load<DL>(meanAt(0, c));
        loaded[0] = true;
    }

    // 5. Background from the first ranked mean; the mask walk reads the
    // match flags by place before the ranking.
    if (!loaded[0]) for (int c = 0; c < C; ++c) mean[0][c] = load<DL>(meanAt(0, c));
    DL sum = {};
    ML stopped = {}, background = {};
    for (int r = 0; r < kGaussians; ++r) {
        sum += weight[r];
        background |= match[r] & ~stopped;
        stopped |= sum > f.backgroundRatio;
    }
    for (int l = 0; l < L; ++l) {
        mask[l] = background[l] ? 0 : 255;
        for (int c = 0; c < C; ++c) {
            const double v = mean[0][c][l] + 0.5;
            bg[l * C + c] = static_cast<uint8_t>(v >= 255.0 ? 255 : v > 0.0 ? static_cast<int>(v) : 0);
        }
    }
}

template <int C>
void row(const GaussPlanes& p, size_t i0, const uint8_t* src, int count, uint8_t* bg, uint8_t* mask,
         const GaussFrame& f) {
    constexpr int L = kVecBytes / 8;
    int x = 0;
    for (; x + L <= count; x += L) pixels<L, C>(p, i0 + x, src + x * C, bg + x * C, mask + x, f);
    for (; x < count; ++x) pixels<1, C>(p, i0 + x, src + x * C, bg + x * C, mask + x, f);
}

}  // namespace

extern constexpr GaussKernels kGauss = {{row<1>, row<3>}};

}  // namespace RVCV_ISA_NS
}  // namespace rvcv
