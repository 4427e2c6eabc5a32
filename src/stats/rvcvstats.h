// Kernel table of the statistics family, one per instruction set.
#ifndef RVCV_STATS_H
#define RVCV_STATS_H

#include <cstdint>

namespace rvcv {

// Partial sums of a band: sum of x, of |x|, of x^2, the largest |x| (NaN
// passed over) and the count of selected pixels. Integer samples are summed
// exactly; floats in double, eight partial sums a row by position (x mod 8)
// added in a fixed tree, so every instruction set gives the same bits.
struct StatSums {
    double sum, abs, sq, inf;
    int64_t count;
};

// Extremes of a band and the first (x, y) of each; any: a selected sample
// that is not NaN was met.
struct StatExtremes {
    double lo, hi;
    int loX, loY, hiX, hiY;
    bool any;
};

// One channel of rows y0 .. y0 + rows - 1: a and b point at the channel of
// the region's first pixel (b null: x - center), C samples a pixel, m null
// for every pixel. Steps in bytes.
using StatSumBand = void (*)(const void* a, int aStep, const void* b, int bStep, const uint8_t* m, int mStep, int y0,
                             int rows, int w, double center, StatSums& s);
using StatExtBand = void (*)(const void* a, int aStep, const uint8_t* m, int mStep, int y0, int rows, int w,
                             StatExtremes& e);

// Indexed [type: 8u, 8s, 16u, 32f][C3][masked][b given] and [type][C3][masked].
struct StatsKernels {
    StatSumBand sums[4][2][2][2];
    StatExtBand extremes[4][2][2];
};

namespace m7 { extern const StatsKernels kStats; }
namespace avx2 { extern const StatsKernels kStats; }
namespace avx512 { extern const StatsKernels kStats; }

}  // namespace rvcv

#endif
