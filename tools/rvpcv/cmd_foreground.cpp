// foreground: a background model over a sequence of frames (8-bit gray or
// RGB, all of one size), writing one mask per frame after the first
// (mask-0001.png, ...: 255 where the frame differs from the learnt
// background). --model gauss (default) is the mixture of Gaussians, which
// also writes the background it holds (background.png, after the last
// frame); --model hist the histogram model, classified and then updated
// with each frame at --rate (default 0.005).
#include <cstdio>
#include <cstdlib>

#include "commands.h"

namespace tool {
namespace {

const char* const kUsage = "FRAMES... OUTDIR [--model gauss|hist] [--rate R]";

struct Options {
    bool gauss = true;
    float rate = -1.0f;
    std::vector<std::string> files;
};

std::string parse(const Args& args, Options& o) {
    for (size_t i = 0; i < args.size(); ++i) {
        if (args[i].rfind("--", 0) != 0) { o.files.push_back(args[i]); continue; }
        if (i + 1 >= args.size()) return "option " + args[i] + " needs a value";
        const std::string& v = args[++i];
        if (args[i - 1] == "--model") {
            if (v != "gauss" && v != "hist") return "--model takes gauss or hist";
            o.gauss = v == "gauss";
        } else if (args[i - 1] == "--rate") {
            char* end = nullptr;
            o.rate = std::strtof(v.c_str(), &end);
            if (*end || !(o.rate > 0.0f && o.rate <= 1.0f)) return "--rate takes a number above 0 and at most 1";
        } else {
            return "unknown option " + args[i - 1];
        }
    }
    if (o.files.size() < 3) return "expected at least two frames and OUTDIR";
    return "";
}

// Runs the model over the frames; mask(t, picture) receives each mask.
template <class Save>
RvpStatus run(const std::vector<Picture>& frames, const Options& o, Picture& background, Save&& save) {
    const Picture& f0 = frames[0];
    const RvpiSize roi{f0.width, f0.height};
    const bool c3 = f0.channels == 3;
    const int model = 0;
    Picture mask = makePicture(f0.width, f0.height, 1, 8);
    background = makePicture(f0.width, f0.height, f0.channels, 8);
    if (o.gauss) {
        RvpiFGGaussianState* g = nullptr;
        RvpStatus st = (c3 ? rvpiForegroundGaussianInitAlloc_8u_C3R : rvpiForegroundGaussianInitAlloc_8u_C1R)(
            f0.data.data(), f0.rowBytes(), roi, &model, &g);
        for (size_t t = 1; t < frames.size() && st == rvpStsNoErr; ++t) {
            st = (c3 ? rvpiForegroundGaussian_8u_C3R : rvpiForegroundGaussian_8u_C1R)(
                frames[t].data.data(), frames[t].rowBytes(), background.data.data(), background.rowBytes(),
                mask.data.data(), mask.rowBytes(), roi, g);
            if (st == rvpStsNoErr && !save(t, mask)) st = rvpStsMemAllocErr;
        }
        if (g) rvpiForegroundGaussianFree_8u_C1R(g);
        return st;
    }
    RvpiFGHistogramState* h = nullptr;
    RvpStatus st = (c3 ? rvpiForegroundHistogramInitAlloc_8u_C3R : rvpiForegroundHistogramInitAlloc_8u_C1R)(
        f0.data.data(), f0.rowBytes(), roi, &model, &h);
    for (size_t t = 1; t < frames.size() && st == rvpStsNoErr; ++t) {
        const Picture& f = frames[t];
        st = (c3 ? rvpiForegroundHistogram_8u_C3R : rvpiForegroundHistogram_8u_C1R)(
            f.data.data(), f.rowBytes(), mask.data.data(), mask.rowBytes(), roi, h);
        if (st == rvpStsNoErr)
            st = (c3 ? rvpiForegroundHistogramUpdate_8u_C3R : rvpiForegroundHistogramUpdate_8u_C1R)(
                f.data.data(), f.rowBytes(), roi, h, o.rate);
        if (st == rvpStsNoErr && !save(t, mask)) st = rvpStsMemAllocErr;
    }
    if (h) rvpiForegroundHistogramFree_8u_C1R(h);
    background = Picture();
    return st;
}

std::string maskName(size_t t) {
    char name[32];
    std::snprintf(name, sizeof name, "mask-%04zu.png", t);
    return name;
}

int cmdForeground(const Args& args);
const Command kForeground{"foreground", kUsage, "background model over frames: one mask per frame", cmdForeground,
    "FRAMES: 8-bit gray or RGB pictures of one size. OUTDIR gets mask-0001.png, ...\n"
    "(255 where a frame differs from the learnt background).\n"
    "--model gauss (default) mixture of Gaussians, also writes background.png;\n"
    "--model hist  colour histograms, updated with each frame at --rate (default 0.005)\n"};

int cmdForeground(const Args& args) {
    Options o;
    const std::string err = parse(args, o);
    if (!err.empty()) {
        fail(err);
        return usage(kForeground);
    }
    const std::string outDir = o.files.back();
    std::vector<Picture> frames(o.files.size() - 1);
    for (size_t i = 0; i < frames.size(); ++i) {
        if (!load(o.files[i], frames[i])) return 1;
        if (frames[i].depth != 8 || (frames[i].channels != 1 && frames[i].channels != 3))
            return fail(o.files[i] + ": foreground takes 8-bit gray or RGB frames");
        if (frames[i].width != frames[0].width || frames[i].height != frames[0].height ||
            frames[i].channels != frames[0].channels)
            return fail(o.files[i] + ": frames differ in size or channels");
    }
    // All masks are made before anything is written, so a failure leaves no output.
    std::vector<Picture> masks;
    Picture background;
    if (RvpStatus st = run(frames, o, background, [&](size_t, const Picture& m) { masks.push_back(m); return true; }))
        return fail("foreground: " + statusText(st));
    for (size_t t = 0; t < masks.size(); ++t)
        if (!store(outDir + "/" + maskName(t + 1), masks[t])) return 1;
    if (!background.data.empty() && !store(outDir + "/background.png", background)) return 1;
    return 0;
}

const RegisterCommand kRegister(kForeground);

// Demo: the mixture of Gaussians over the moving sample scene; the mask of
// the last frame and the background learnt.
bool demo(const DemoContext& ctx, std::string& what) {
    std::vector<Picture> frames;
    for (int t = 0; t < 12; ++t) frames.push_back(t < 6 ? ctx.gray : sampleScene(ctx.gray.width, ctx.gray.height, t - 5));
    Options o;
    Picture background, last;
    if (run(frames, o, background, [&](size_t, const Picture& m) { last = m; return true; }) != rvpStsNoErr)
        return false;
    if (!ctx.save("foreground-mask.png", last) || !ctx.save("foreground-background.png", background)) return false;
    what = "foreground-mask.png, foreground-background.png (mixture of Gaussians, 12 frames)";
    return true;
}
const RegisterDemoStep kDemo({95, "foreground", demo});

}  // namespace
}  // namespace tool
