// distance: the distance of every pixel of a picture to the nearest zero
// (black) pixel: chamfer (3x3 or 5x5 mask, standard weights of metric 0, 1
// or 2; 16-bit integer weights kept as 16-bit values, or float weights with
// --float), exact Euclidean, or fast marching (with --radius the zero set
// near its border gets negative distances). Results as .npy, 16-bit PNG or
// .pfm; --preview for a stretched 8-bit picture. Gray, colour or 16-bit
// pictures are made 8-bit gray first; a pixel counts as zero when its gray
// value is 0.
#include <algorithm>
#include <cstdlib>

#include "commands.h"
#include "results.h"

namespace tool {
namespace {

const char* const kUsage = "IN OUT [--chamfer 3|5 [--metric 0|1|2] [--float] | --exact | --fmm [--radius R]]";

struct Options {
    enum Method { Chamfer, Exact, Marching } method = Exact;
    int mask = 3, metric = 2;
    bool floatWeights = false;
    float radius = 0;
};

RvpStatus distanceMap(const Picture& gray, const Options& o, Result& out) {
    const RvpiSize roi{gray.width, gray.height};
    const size_t n = static_cast<size_t>(gray.width) * gray.height;
    const Rvp8u* src = gray.data.data();
    RvpStatus st = rvpStsNoErr;
    if (o.method == Options::Chamfer && !o.floatWeights) {
        Rvp32s m[3] = {};
        std::vector<Rvp16u> d(n);
        if ((st = rvpiGetDistanceTransformMask_32s(o.mask, o.metric, m)) == rvpStsNoErr)
            st = (o.mask == 3 ? rvpiDistanceTransform_3x3_8u16u_C1R : rvpiDistanceTransform_5x5_8u16u_C1R)(
                src, gray.width, d.data(), 2 * gray.width, roi, m);
        if (st == rvpStsNoErr) out = Result::of(Result::Int32, d.data(), gray.width, gray.height, gray.width);
        return st;
    }
    std::vector<Rvp32f> d(n);
    std::vector<Rvp8u> buffer;
    int bytes = 0;
    if (o.method == Options::Chamfer) {
        Rvp32f m[3] = {};
        if ((st = rvpiGetDistanceTransformMask_32f(o.mask, o.metric, m)) == rvpStsNoErr)
            st = (o.mask == 3 ? rvpiDistanceTransform_3x3_8u32f_C1R : rvpiDistanceTransform_5x5_8u32f_C1R)(
                src, gray.width, d.data(), 4 * gray.width, roi, m);
    } else if (o.method == Options::Exact) {
        if ((st = rvpiTrueDistanceTransformGetBufferSize_8u32f_C1R(roi, &bytes)) == rvpStsNoErr) {
            buffer.resize(static_cast<size_t>(bytes));
            st = rvpiTrueDistanceTransform_8u32f_C1R(src, gray.width, d.data(), 4 * gray.width, roi, buffer.data());
        }
    } else if ((st = rvpiFastMarchingGetBufferSize_8u32f_C1R(roi, &bytes)) == rvpStsNoErr) {
        buffer.resize(static_cast<size_t>(bytes));
        st = rvpiFastMarching_8u32f_C1R(src, gray.width, d.data(), 4 * gray.width, roi, o.radius, buffer.data());
    }
    if (st == rvpStsNoErr) out = Result::of(Result::Float32, d.data(), gray.width, gray.height, gray.width);
    return st;
}

int run(const Args& args);
const Command kCommand{"distance", kUsage, "distance of every pixel to the nearest zero pixel", run,
    "--exact         the Euclidean distance, exact (the default)\n"
    "--chamfer 3|5   chamfer distance over a 3x3 or 5x5 mask; --metric 0 (chessboard),\n"
    "                1 (city block) or 2 (Euclidean-like, the default); integer weights\n"
    "                give whole 16-bit values (OUT .npy), --float float weights\n"
    "--fmm           fast marching (the eikonal equation); --radius R > 0 also gives the\n"
    "                zero set within R of its border negative distances\n"
    "OUT: .npy or .pfm floats; with --preview an 8-bit picture from the minimum to the\n"
    "maximum.\n"};

// A whole-number option value; false when it is not one.
bool number(const std::string& v, long& out) {
    char* end = nullptr;
    out = std::strtol(v.c_str(), &end, 10);
    return !v.empty() && *end == 0;
}

int run(const Args& args) {
    std::vector<std::string> files;
    Options o;
    int methods = 0;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        const bool hasValue = i + 1 < args.size();
        long v = 0;
        if (a == "--exact") {
            o.method = Options::Exact, ++methods;
        } else if (a == "--fmm") {
            o.method = Options::Marching, ++methods;
        } else if (a == "--float") {
            o.floatWeights = true;
        } else if (a == "--chamfer") {
            if (!hasValue || !number(args[++i], v) || (v != 3 && v != 5)) return usageError(kCommand, "--chamfer takes 3 or 5");
            o.method = Options::Chamfer, o.mask = static_cast<int>(v), ++methods;
        } else if (a == "--metric") {
            if (!hasValue || !number(args[++i], v) || v < 0 || v > 2) return usageError(kCommand, "--metric takes 0, 1 or 2");
            o.metric = static_cast<int>(v);
        } else if (a == "--radius") {
            char* end = nullptr;
            if (hasValue) o.radius = std::strtof(args[++i].c_str(), &end);
            if (!end || *end != 0 || !(o.radius >= 0 && o.radius <= 1e6f))
                return usageError(kCommand, "--radius takes a number from 0 to 1e6");
        } else if (a.rfind("--", 0) == 0) {
            return usageError(kCommand, "unknown option " + a);
        } else {
            files.push_back(a);
        }
    }
    if (files.size() != 2 || methods > 1) return usage(kCommand);
    const bool sixteen = o.method == Options::Chamfer && !o.floatWeights;
    if (const std::string e = checkResultName(files[1], sixteen ? Result::Int32 : Result::Float32); !e.empty())
        return usageError(kCommand, e);
    Picture in;
    if (!load(files[0], in)) return 1;
    Result out;
    if (RvpStatus st = distanceMap(toGray8(in), o, out)) return fail("distance failed: " + statusText(st));
    Outputs outputs;
    outputs.add(files[1], out);
    return outputs.commit() ? 0 : 1;
}

// Demo: distances to the dark pixels of the scene (gray below 64), exact,
// chamfer 5x5 and fast marching.
bool demo(const DemoContext& ctx, std::string& what) {
    Picture dark = ctx.gray;
    for (auto& v : dark.data) v = v < 64 ? 0 : 255;
    Options o;
    for (const auto& [method, name] : {std::pair{Options::Exact, "distance.png"},
                                       std::pair{Options::Chamfer, "distance-chamfer.png"},
                                       std::pair{Options::Marching, "distance-fmm.png"}}) {
        o.method = method;
        o.mask = 5;
        Result out;
        if (distanceMap(dark, o, out) != rvpStsNoErr || !ctx.save(name, preview(out))) return false;
    }
    what = "distance*.png (exact, chamfer 5x5 and fast-marching distances to the pixels darker than 64)";
    return true;
}
const RegisterCommand kReg(kCommand);
const RegisterDemoStep kStep({84, "distance", demo});

}  // namespace
}  // namespace tool
