// inpaint: restores the pixels a mask marks (nonzero pixels of an 8-bit
// gray picture of the same size) in a gray or RGB picture, from the edge of
// the marked areas inward. --method 0 weighs known neighbours along the
// distance to the edge (the default), 1 along the picture's isophotes;
// --radius (default 5) is how far a pixel looks for known neighbours. The
// fill order is the fast-marching distance from the known pixels.
#include <algorithm>
#include <cstddef>
#include <cstdlib>

#include "commands.h"

namespace tool {
namespace {

const char* const kUsage = "IN MASK OUT [--method 0|1] [--radius R]";

// Fast-marching distance of each masked pixel to the nearest known one, 0
// outside.
RvpStatus distances(const std::vector<Rvp8u>& mask, int w, int h, std::vector<float>& d) {
    const RvpiSize roi{w, h};
    int bytes = 0;
    if (RvpStatus st = rvpiFastMarchingGetBufferSize_8u32f_C1R(roi, &bytes)) return st;
    std::vector<Rvp8u> buffer(static_cast<size_t>(bytes));
    d.resize(mask.size());
    return rvpiFastMarching_8u32f_C1R(mask.data(), w, d.data(), 4 * w, roi, 0.0f, buffer.data());
}

RvpStatus restore(const Picture& in, const std::vector<Rvp8u>& mask, int method, float radius, Picture& out) {
    const RvpiSize roi{in.width, in.height};
    std::vector<float> dist;
    if (RvpStatus st = distances(mask, in.width, in.height, dist)) return st;
    RvpiInpaintState* s = nullptr;
    const bool c3 = in.channels == 3;
    RvpStatus st = (c3 ? rvpiInpaintInitAlloc_8u_C3R : rvpiInpaintInitAlloc_8u_C1R)(
        &s, dist.data(), 4 * in.width, mask.data(), in.width, roi, radius, method);
    if (st != rvpStsNoErr) return st;
    out = makePicture(in.width, in.height, in.channels, 8);
    st = (c3 ? rvpiInpaint_8u_C3R : rvpiInpaint_8u_C1R)(in.data.data(), in.rowBytes(), out.data.data(), out.rowBytes(),
                                                         roi, s);
    rvpiInpaintFree_8u_C1R(s);
    return st;
}

int cmdInpaint(const Args& args);
const Command kInpaint{"inpaint", kUsage, "restore the masked pixels of a picture", cmdInpaint,
    "MASK: 8-bit gray, nonzero where pixels are to be restored. IN: 8-bit gray or RGB.\n"
    "--method 0|1  0 (default) weighs known neighbours along the distance to the edge,\n"
    "              1 along the picture's isophotes\n"
    "--radius R    how far a pixel looks for known neighbours (1..100, default 5)\n"};

int cmdInpaint(const Args& args) {
    std::vector<std::string> files;
    int method = 0;
    float radius = 5;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a.rfind("--", 0) != 0) { files.push_back(a); continue; }
        char* end = nullptr;
        if (a == "--method" && i + 1 < args.size()) {
            method = static_cast<int>(std::strtol(args[++i].c_str(), &end, 10));
            if (*end || (method != 0 && method != 1)) return fail("--method takes 0 or 1"), usage(kInpaint);
        } else if (a == "--radius" && i + 1 < args.size()) {
            radius = std::strtof(args[++i].c_str(), &end);
            if (*end || !(radius >= 1 && radius <= 100)) return fail("--radius takes a number from 1 to 100"), usage(kInpaint);
        } else {
            return fail("unknown option " + a), usage(kInpaint);
        }
    }
    if (files.size() != 3) return usage(kInpaint);
    Picture in, mk, out;
    if (!load(files[0], in) || !load(files[1], mk)) return 1;
    if (in.depth != 8 || (in.channels != 1 && in.channels != 3)) return fail(files[0] + ": 8-bit gray or RGB pictures");
    if (mk.depth != 8 || mk.channels != 1 || mk.width != in.width || mk.height != in.height)
        return fail(files[1] + ": the mask is an 8-bit gray picture of the picture's size");
    if (RvpStatus st = restore(in, mk.data, method, radius, out)) return fail("inpaint: " + statusText(st));
    return store(files[2], out) ? 0 : 1;
}

const RegisterCommand kRegister(kInpaint);

// Demo: scratches and a block of text-like strokes painted over the scene,
// then restored; the picture holds the damaged scene above the restored one.
bool demo(const DemoContext& ctx, std::string& what) {
    const Picture& g = ctx.gray;
    const int w = g.width, h = g.height;
    std::vector<Rvp8u> mask(static_cast<size_t>(w) * h, 0);
    for (int x = 0; x < w; ++x) {
        const int y1 = h / 3 + x / 8, y2 = 2 * h / 3 - x / 5;
        for (int t = 0; t < 3; ++t) mask[static_cast<size_t>(y1 + t) * w + x] = mask[static_cast<size_t>(y2 + t) * w + x] = 255;
    }
    for (int y = 40; y < 70; ++y)  // strokes of "text"
        for (int x = 380; x < 600; ++x)
            if ((x / 6) % 3 != 2 && ((y - 40) / 5) % 2 == 0) mask[static_cast<size_t>(y) * w + x] = 255;
    Picture damaged = g, restored;
    for (size_t i = 0; i < mask.size(); ++i)
        if (mask[i]) damaged.data[i] = 255;
    if (restore(damaged, mask, 0, 5, restored) != rvpStsNoErr) return false;
    Picture both = makePicture(w, 2 * h, 1, 8);
    std::copy(damaged.data.begin(), damaged.data.end(), both.data.begin());
    std::copy(restored.data.begin(), restored.data.end(), both.data.begin() + static_cast<ptrdiff_t>(w) * h);
    if (!ctx.save("inpaint.png", both)) return false;
    what = "inpaint.png (damaged above, restored below)";
    return true;
}
const RegisterDemoStep kDemo({85, "inpaint", demo});

}  // namespace
}  // namespace tool
