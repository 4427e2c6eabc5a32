// Kernel table and scratch layout of the 2:1 Gaussian 5x5 pyramid steps.
#ifndef RVCV_GAUSS5_H
#define RVCV_GAUSS5_H

#include <cstdint>

namespace rvcv {

// A band routine writes the output of rows [y0, y0 + rows) of a w x h source
// image: down, those are output rows; up, source rows, each giving two output
// rows. Each row is cut into column chunks of `chunk` output pixels (down) or
// source pixels (up), whose intermediate rows lie in scratch (laid out by
// the rule below, from a 32-byte boundary).
using Gauss5Band = void (*)(const void* src, int64_t srcStep, int w, int h, void* dst, int64_t dstStep, int y0,
                            int rows, uint8_t* scratch, int chunk);

struct Gauss5Kernels {
    Gauss5Band down8uC1, down8uC3, down32fC1, down32fC3;
    Gauss5Band up8uC1, up8uC3, up32fC1, up32fC3;
};

namespace m7 { extern const Gauss5Kernels kGauss5; }
namespace avx2 { extern const Gauss5Kernels kGauss5; }

// Scratch layout, with internal linkage so that no copy is shared between
// units built for different instruction sets. A down chunk of p output
// pixels keeps one row of vertical sums over 2p + 3 source pixels and its
// even and odd pixels apart (p + 2 each); an up chunk of p source pixels two
// rows (even and odd output row) over p + 2. Each array has kGauss5Slack
// samples of room for the last vector's reads and starts 32-byte aligned.
namespace {
constexpr int64_t kGauss5Slack = 64;
constexpr int64_t gauss5DownSamples(int64_t p, int c) { return (2 * p + 3) * c + kGauss5Slack; }
constexpr int64_t gauss5UpSamples(int64_t p, int c) { return (p + 2) * c + kGauss5Slack; }
constexpr int64_t gauss5DownBytes(int64_t p, int c, int acc) {
    return acc * (gauss5DownSamples(p, c) + 2 * gauss5UpSamples(p, c)) + 96;
}
constexpr int64_t gauss5UpBytes(int64_t p, int c, int acc) { return 2 * acc * gauss5UpSamples(p, c) + 64; }
// The largest chunk whose scratch fits in `bytes`.
constexpr int gauss5DownChunk(int64_t bytes, int c, int acc) {
    return static_cast<int>((((bytes - 96) / acc - 3 * kGauss5Slack) / c - 7) / 4);
}
constexpr int gauss5UpChunk(int64_t bytes, int c, int acc) {
    return static_cast<int>(((bytes - 64) / (2 * acc) - kGauss5Slack) / c - 2);
}
}  // namespace

}  // namespace rvcv

#endif
