// stats: the norms, mean, deviation and extremes of a picture (8-bit or
// 16-bit, gray or RGB), over the pixels a mask selects (nonzero pixels of an
// 8-bit gray picture of the same size) or over every pixel.
#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "commands.h"

namespace tool {
namespace {

const char* const kUsage = "IN [--mask M] [--coi C]";
const char* const kHelp =
    "Prints, for each channel (or the one --coi C picks, 1 to 3, in an RGB\n"
    "picture): the count of pixels taken, mean and population deviation, the\n"
    "smallest and largest values with the (x, y) of their first occurrence in\n"
    "raster order, and the Inf, L1 and L2 norms.\n"
    "--mask M   an 8-bit gray picture of the same size; only its nonzero pixels\n"
    "           are taken (without it, every pixel)\n";

struct Line {
    double mean = 0, dev = 0, norms[3] = {};
    float lo = 0, hi = 0;
    RvpiPoint loAt{}, hiAt{};
};

// The statistics of channel coi (1 for gray) through the masked forms; a
// missing mask is a mask of ones.
template <class T, class F>
RvpStatus measure(const Picture& in, const Rvp8u* mask, int coi, const F& fns, Line& out) {
    const RvpiSize roi{in.width, in.height};
    const T* p = reinterpret_cast<const T*>(in.data.data());
    const int step = in.rowBytes(), c3 = in.channels == 3;
    RvpStatus st = c3 ? fns.ms3(p, step, mask, in.width, roi, coi, &out.mean, &out.dev)
                      : fns.ms1(p, step, mask, in.width, roi, &out.mean, &out.dev);
    if (st == rvpStsNoErr)
        st = c3 ? fns.mm3(p, step, mask, in.width, roi, coi, &out.lo, &out.hi, &out.loAt, &out.hiAt)
                : fns.mm1(p, step, mask, in.width, roi, &out.lo, &out.hi, &out.loAt, &out.hiAt);
    for (int k = 0; k < 3 && st == rvpStsNoErr; ++k)
        st = c3 ? fns.n3[k](p, step, mask, in.width, roi, coi, &out.norms[k])
                : fns.n1[k](p, step, mask, in.width, roi, &out.norms[k]);
    return st;
}

template <class T> struct Fns {
    RvpStatus (*ms1)(const T*, int, const Rvp8u*, int, RvpiSize, Rvp64f*, Rvp64f*);
    RvpStatus (*ms3)(const T*, int, const Rvp8u*, int, RvpiSize, int, Rvp64f*, Rvp64f*);
    RvpStatus (*mm1)(const T*, int, const Rvp8u*, int, RvpiSize, Rvp32f*, Rvp32f*, RvpiPoint*, RvpiPoint*);
    RvpStatus (*mm3)(const T*, int, const Rvp8u*, int, RvpiSize, int, Rvp32f*, Rvp32f*, RvpiPoint*, RvpiPoint*);
    RvpStatus (*n1[3])(const T*, int, const Rvp8u*, int, RvpiSize, Rvp64f*);
    RvpStatus (*n3[3])(const T*, int, const Rvp8u*, int, RvpiSize, int, Rvp64f*);
};
#define RVT_FNS(TAG)                                                                                          \
    Fns<Rvp##TAG> {                                                                                           \
        rvpiMean_StdDev_##TAG##_C1MR, rvpiMean_StdDev_##TAG##_C3CMR, rvpiMinMaxIndx_##TAG##_C1MR,             \
            rvpiMinMaxIndx_##TAG##_C3CMR, {rvpiNorm_Inf_##TAG##_C1MR, rvpiNorm_L1_##TAG##_C1MR,               \
                                           rvpiNorm_L2_##TAG##_C1MR},                                         \
            {rvpiNorm_Inf_##TAG##_C3CMR, rvpiNorm_L1_##TAG##_C3CMR, rvpiNorm_L2_##TAG##_C3CMR}               \
    }

RvpStatus measureAny(const Picture& in, const Rvp8u* mask, int coi, Line& out) {
    return in.depth == 8 ? measure<Rvp8u>(in, mask, coi, RVT_FNS(8u), out)
                         : measure<Rvp16u>(in, mask, coi, RVT_FNS(16u), out);
}

void print(const char* label, const Line& l) {
    std::printf("%s mean %.6g  stddev %.6g  min %g at (%d,%d)  max %g at (%d,%d)  norms Inf %.6g L1 %.10g L2 %.6g\n",
                label, l.mean, l.dev, l.lo, l.loAt.x, l.loAt.y, l.hi, l.hiAt.x, l.hiAt.y, l.norms[0], l.norms[1],
                l.norms[2]);
}

int cmdStats(const Args& args);
const Command kStats{"stats", kUsage, "norms, mean, deviation and extremes of a picture", cmdStats, kHelp};

int cmdStats(const Args& args) {
    std::vector<std::string> files;
    std::string maskFile;
    int coi = 0;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a.rfind("--", 0) != 0) {
            files.push_back(a);
        } else if (a == "--mask" && i + 1 < args.size()) {
            maskFile = args[++i];
        } else if (a == "--coi" && i + 1 < args.size()) {
            char* end = nullptr;
            coi = static_cast<int>(std::strtol(args[++i].c_str(), &end, 10));
            if (*end || coi < 1 || coi > 3) return usageError(kStats, "--coi takes 1, 2 or 3");
        } else {
            return usageError(kStats, "unknown option " + a);
        }
    }
    if (files.size() != 1) return usage(kStats);
    Picture in, mk;
    if (!load(files[0], in)) return 1;
    if (in.channels != 1 && in.channels != 3) return fail(files[0] + ": gray or RGB pictures");
    if (coi > 1 && in.channels == 1) return usageError(kStats, "--coi above 1 needs an RGB picture");
    std::vector<Rvp8u> ones;
    const Rvp8u* mask = nullptr;
    if (!maskFile.empty()) {
        if (!load(maskFile, mk)) return 1;
        if (mk.depth != 8 || mk.channels != 1 || mk.width != in.width || mk.height != in.height)
            return fail(maskFile + ": the mask is an 8-bit gray picture of the picture's size");
        mask = mk.data.data();
    } else {
        ones.assign(static_cast<size_t>(in.width) * in.height, 1);
        mask = ones.data();
    }
    size_t taken = 0;
    for (size_t i = 0; i < static_cast<size_t>(in.width) * in.height; ++i) taken += mask[i] != 0;
    std::printf("%dx%d, %d channel%s, %d-bit; %zu pixels taken\n", in.width, in.height, in.channels,
                in.channels == 1 ? "" : "s", in.depth, taken);
    if (taken == 0) return fail("the mask selects no pixel");
    const int first = coi ? coi : 1, last = coi ? coi : in.channels;
    for (int c = first; c <= last; ++c) {
        Line l;
        if (RvpStatus st = measureAny(in, mask, c, l)) return fail("stats: " + statusText(st));
        const std::string label = in.channels == 1 ? "gray:" : "channel " + std::to_string(c) + ":";
        print(label.c_str(), l);
    }
    return 0;
}

const RegisterCommand kRegister(kStats);

// Demo: the scene's statistics over all of it and over its upper half.
bool demo(const DemoContext& ctx, std::string& what) {
    const Picture& g = ctx.gray;
    std::vector<Rvp8u> half(static_cast<size_t>(g.width) * g.height, 0);
    std::fill(half.begin(), half.begin() + static_cast<ptrdiff_t>(g.width) * (g.height / 2), 1);
    Line all, top;
    std::vector<Rvp8u> ones(half.size(), 1);
    if (measureAny(g, ones.data(), 1, all) != rvpStsNoErr || measureAny(g, half.data(), 1, top) != rvpStsNoErr)
        return false;
    char buf[160];
    std::snprintf(buf, sizeof buf, "mean %.2f, stddev %.2f, min %g, max %g (upper half: mean %.2f, stddev %.2f)",
                  all.mean, all.dev, all.lo, all.hi, top.mean, top.dev);
    what = buf;
    return true;
}
const RegisterDemoStep kDemo({60, "stats", demo});

}  // namespace
}  // namespace tool
