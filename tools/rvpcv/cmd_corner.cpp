// corners: corner strength (smaller eigenvalue of the smoothed structure
// tensor) of an image, a float result (.npy/.pfm, or a stretched picture
// with --preview). Colour and 16-bit inputs are reduced to 8-bit gray first.
#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>

#include "commands.h"

namespace tool {
namespace {

// Scratch needs about 16 bytes a pixel; its size must fit an int.
RvpStatus minEigen(const Picture& gray, int kernType, int aperture, int window, Result& out, std::string& error) {
    const RvpiSize roi{gray.width, gray.height};
    if ((static_cast<int64_t>(gray.width) + 15) * gray.height * 16 + (1 << 20) > INT_MAX) {
        error = "image too large for the corner buffer";
        return rvpStsSizeErr;
    }
    int size = 0;
    RvpStatus st = rvpiMinEigenValGetBufferSize_8u32f_C1R(roi, aperture, window, &size);
    if (st != rvpStsNoErr) return st;
    if (size <= 0) return rvpStsSizeErr;
    std::vector<Rvp8u> buffer(static_cast<size_t>(size));
    std::vector<Rvp32f> strength(static_cast<size_t>(gray.width) * gray.height);
    st = rvpiMinEigenVal_8u32f_C1R(gray.data.data(), gray.rowBytes(), strength.data(), gray.width * 4, roi, kernType,
                                   aperture, window, buffer.data());
    if (st == rvpStsNoErr) out = Result::of(Result::Float32, strength.data(), gray.width, gray.height, gray.width);
    return st;
}

int run(const Args& args);
const Command kCommand{"corners", "IN OUT [--scharr] [--aperture 3|5] [--window 3|5]",
                       "corner strength: smaller eigenvalue of the box-smoothed gradient tensor", run,
                       "Derivatives by the 3x3 or 5x5 Sobel filter (--aperture, default 3) or the 3x3 Scharr filter "
                       "(--scharr), smoothed over a 3x3 or 5x5 window (--window, default 3), replicated border. OUT "
                       "is .npy or .pfm (floats), or with --preview an 8-bit picture from the minimum to the "
                       "maximum."};

int run(const Args& args) {
    std::vector<std::string> files;
    int kernType = 0, aperture = 3, window = 3;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a == "--scharr") {
            kernType = 1;
        } else if (a == "--aperture" || a == "--window") {
            if (i + 1 >= args.size() || (args[i + 1] != "3" && args[i + 1] != "5"))
                return usageError(kCommand, a + " takes 3 or 5");
            (a == "--aperture" ? aperture : window) = args[++i][0] - '0';
        } else if (a.size() > 1 && a[0] == '-') {
            return fail("unknown option '" + a + "' for corners"), usage(kCommand);
        } else {
            files.push_back(a);
        }
    }
    if (files.size() != 2) return usage(kCommand);
    if (kernType == 1 && aperture != 3) return usageError(kCommand, "--scharr has aperture 3 only");
    if (const std::string e = checkResultName(files[1], Result::Float32); !e.empty()) return usageError(kCommand, e);
    Picture in;
    if (!load(files[0], in)) return 1;
    Result out;
    std::string error;
    const RvpStatus st = minEigen(toGray8(in), kernType, aperture, window, out, error);
    if (st != rvpStsNoErr) return fail("corners failed: " + (error.empty() ? statusText(st) : error));
    Outputs o;
    o.add(files[1], out);
    return o.commit() ? 0 : 1;
}

bool demo(const DemoContext& ctx, std::string& what) {
    Result out;
    std::string error;
    if (minEigen(ctx.gray, 0, 3, 3, out, error) != rvpStsNoErr) return false;
    // The strongest corners stand out on a square-root scale.
    for (double& v : out.values) v = std::sqrt(std::max(v, 0.0));
    what = "corners.png (3x3 Sobel, 3x3 window; square root of the strength, stretched)";
    return ctx.save("corners.png", preview(out));
}

const RegisterCommand kReg(kCommand);
const RegisterDemoStep kStep({70, "corners", demo});

}  // namespace
}  // namespace tool
