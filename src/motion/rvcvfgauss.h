// Mixture-of-Gaussians background model: the state and the kernel table.
// Records are kept as planes per field (structure of arrays): a frame reads
// the counts and weights of every Gaussian but the means and variances only
// of the Gaussians it tests, matches or replaces, and whole vectors of
// pixels run the same arithmetic side by side.
#ifndef RVCV_FGAUSS_H
#define RVCV_FGAUSS_H

#include <cstddef>
#include <cstdint>

#include "rvpcv.h"

namespace rvcv {

constexpr int kGaussians = 5;

// Plane layout for n pixels (n padded to a multiple of 8): count[k][n]
// (32-bit, wrapping), weight[k][n], variance[k][c][n], mean[k][c][n], and
// invRoot[k][n]: an estimate of 1 / sqrt(sum of the variances over the
// channels), renewed only where a variance changed; it serves to see that a
// pixel's ranking needs no work, never as a result.
struct GaussPlanes {
    uint32_t* count;
    double* weight;
    double* variance;
    double* mean;
    double* invRoot;
    size_t n;  // padded pixel count: the distance between planes
    const uint32_t* countOf(int k) const { return count + k * n; }
};

// Constants of one frame: the frame rule and the model's numbers.
struct GaussFrame {
    bool historyRule;  // this frame's number equals the history
    double history, invHistory, fade;  // 1/history, 1 - 1/history
    double matchFactor, backgroundRatio, initialVariance;
    const double* reciprocal;  // 1 / i for 0 < i < kReciprocals
};

// Reciprocals of the integers below kReciprocals, as the division gives
// them: counts and their sums are divided by table look-up.
constexpr int kReciprocals = 1 << 16;
const double* reciprocalTable();

// Updates pixels [x0, x0 + count) of one row (plane index i0 for x0):
// src holds the row's samples, bg and mask the row's output planes.
using GaussRowFn = void (*)(const GaussPlanes& p, size_t i0, const uint8_t* src, int count, uint8_t* bg,
                            uint8_t* mask, const GaussFrame& f);

struct GaussKernels {
    GaussRowFn row[2];  // [C1, C3]
};

namespace m7 { extern const GaussKernels kGauss; }
namespace avx2 { extern const GaussKernels kGauss; }
namespace avx512 { extern const GaussKernels kGauss; }

}  // namespace rvcv

#endif
