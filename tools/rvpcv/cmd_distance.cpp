// distance: the Euclidean distance of every pixel of a picture to the
// nearest zero (black) pixel, exact, as floats (.npy or .pfm; --preview for
// a stretched 8-bit picture). Gray, colour or 16-bit pictures are made
// 8-bit gray first; a pixel counts as zero when its gray value is 0.
#include <algorithm>

#include "commands.h"
#include "results.h"

namespace tool {
namespace {

const char* const kUsage = "IN OUT --exact";

RvpStatus exact(const Picture& gray, Result& out) {
    const RvpiSize roi{gray.width, gray.height};
    int bytes = 0;
    if (RvpStatus st = rvpiTrueDistanceTransformGetBufferSize_8u32f_C1R(roi, &bytes)) return st;
    std::vector<Rvp8u> buffer(static_cast<size_t>(bytes));
    std::vector<Rvp32f> d(static_cast<size_t>(gray.width) * gray.height);
    const RvpStatus st = rvpiTrueDistanceTransform_8u32f_C1R(gray.data.data(), gray.width, d.data(), 4 * gray.width,
                                                             roi, buffer.data());
    if (st == rvpStsNoErr) out = Result::of(Result::Float32, d.data(), gray.width, gray.height, gray.width);
    return st;
}

int run(const Args& args);
const Command kCommand{"distance", kUsage, "distance of every pixel to the nearest zero pixel", run,
    "--exact   the Euclidean distance, exact (required: the only method so far)\n"
    "OUT: .npy or .pfm floats; with --preview an 8-bit picture from the minimum to the\n"
    "maximum. A picture without a zero pixel gives about 1.8e19 everywhere.\n"};

int run(const Args& args) {
    std::vector<std::string> files;
    bool exactMethod = false;
    for (const std::string& a : args) {
        if (a == "--exact") exactMethod = true;
        else if (a.rfind("--", 0) == 0) return usageError(kCommand, "unknown option " + a);
        else files.push_back(a);
    }
    if (files.size() != 2 || !exactMethod) return usage(kCommand);
    if (const std::string e = checkResultName(files[1], Result::Float32); !e.empty()) return usageError(kCommand, e);
    Picture in;
    if (!load(files[0], in)) return 1;
    Result out;
    if (RvpStatus st = exact(toGray8(in), out)) return fail("distance failed: " + statusText(st));
    Outputs o;
    o.add(files[1], out);
    return o.commit() ? 0 : 1;
}

// Demo: distances to the dark pixels of the scene (gray below 64).
bool demo(const DemoContext& ctx, std::string& what) {
    Picture dark = ctx.gray;
    for (auto& v : dark.data) v = v < 64 ? 0 : 255;
    Result out;
    if (exact(dark, out) != rvpStsNoErr) return false;
    what = "distance.png (exact distance to the pixels darker than 64, stretched)";
    return ctx.save("distance.png", preview(out));
}

const RegisterCommand kReg(kCommand);
const RegisterDemoStep kStep({84, "distance", demo});

}  // namespace
}  // namespace tool
