// accumulate: the average of a sequence of images of one size and layout,
// either the plain mean or, with --alpha, the running (exponentially
// weighted) average that starts from the first image.
#include <cmath>
#include <cstdlib>

#include "commands.h"

namespace tool {
namespace {

// Channels are samples of a wider row: accumulation works sample by sample.
RvpiSize samples(const Picture& p) { return RvpiSize{p.width * p.channels, p.height}; }

RvpStatus addInto(const Picture& p, std::vector<float>& acc, float alpha, bool weighted) {
    const RvpiSize roi = samples(p);
    const int accStep = roi.width * 4;
    if (p.depth == 16) {
        auto s = reinterpret_cast<const Rvp16u*>(p.data.data());
        return weighted ? rvpiAddWeighted_16u32f_C1IR(s, p.rowBytes(), acc.data(), accStep, roi, alpha)
                        : rvpiAdd_16u32f_C1IR(s, p.rowBytes(), acc.data(), accStep, roi);
    }
    return weighted ? rvpiAddWeighted_8u32f_C1IR(p.data.data(), p.rowBytes(), acc.data(), accStep, roi, alpha)
                    : rvpiAdd_8u32f_C1IR(p.data.data(), p.rowBytes(), acc.data(), accStep, roi);
}

// Rounds the accumulator, times `scale`, into a picture shaped like `like`.
Picture toPicture(const std::vector<float>& acc, const Picture& like, float scale) {
    Picture out = makePicture(like.width, like.height, like.channels, like.depth);
    const float hi = like.depth == 16 ? 65535.0f : 255.0f;
    for (size_t i = 0; i < acc.size(); ++i) {
        float v = std::nearbyint(acc[i] * scale);
        v = v < 0 ? 0 : v > hi ? hi : v;
        if (like.depth == 16) reinterpret_cast<Rvp16u*>(out.data.data())[i] = static_cast<Rvp16u>(v);
        else out.data[i] = static_cast<Rvp8u>(v);
    }
    return out;
}

// Mean (alpha < 0) or running average of the frames.
bool average(const std::vector<Picture>& frames, float alpha, Picture& out, std::string& error) {
    const Picture& first = frames[0];
    const bool weighted = alpha >= 0;
    std::vector<float> acc(static_cast<size_t>(first.width) * first.channels * first.height, 0.0f);
    for (size_t i = 0; i < frames.size(); ++i) {
        // The running average starts from the first frame itself.
        const RvpStatus st = addInto(frames[i], acc, alpha, weighted && i > 0);
        if (st != rvpStsNoErr) {
            error = "accumulate failed: " + statusText(st);
            return false;
        }
    }
    out = toPicture(acc, first, weighted ? 1.0f : 1.0f / static_cast<float>(frames.size()));
    return true;
}

int run(const Args& args);
const Command kCommand{"accumulate", "[--alpha A] OUT IMAGE...",
                       "mean of images, or their running average with weight A (0..1) for each new image", run,
    "IMAGEs: one size and layout, 8-bit. Without --alpha OUT is the mean of them all;\n"
    "with --alpha A (0 to 1) the running average that starts from the first image\n"
    "and weighs each new one by A. OUT is rounded to 8 bits.\n"};

int run(const Args& args) {
    float alpha = -1;
    size_t at = 0;
    if (!args.empty() && args[0] == "--alpha") {
        if (args.size() < 2) return usage(kCommand);
        char* end = nullptr;
        alpha = std::strtof(args[1].c_str(), &end);
        if (*end != '\0' || !(alpha >= 0 && alpha <= 1)) return fail("--alpha takes a weight from 0 to 1"), 2;
        at = 2;
    }
    if (args.size() < at + 2) return usage(kCommand);
    const std::string outPath = args[at];
    std::vector<Picture> frames;
    for (size_t i = at + 1; i < args.size(); ++i) {
        Picture p;
        if (!load(args[i], p)) return 1;
        if (!frames.empty()) {
            const Picture& f = frames[0];
            if (p.width != f.width || p.height != f.height || p.channels != f.channels || p.depth != f.depth)
                return fail("'" + args[i] + "' differs in size or layout from '" + args[at + 1] + "'");
        }
        frames.push_back(std::move(p));
    }
    Picture out;
    std::string error;
    if (!average(frames, alpha, out, error)) return fail(error);
    return store(outPath, out) ? 0 : 1;
}

// Eight frames of the moving scene: the running average leaves trails
// behind the moving objects.
bool demo(const DemoContext& ctx, std::string& what) {
    std::vector<Picture> frames{ctx.gray, ctx.grayNext};
    for (int t = 2; t < 8; ++t) frames.push_back(sampleScene(ctx.gray.width, ctx.gray.height, t));
    Picture out;
    std::string error;
    if (!average(frames, 0.25f, out, error)) return false;
    what = "accumulate.png (running average of 8 frames, alpha 0.25)";
    return ctx.save("accumulate.png", out);
}

const RegisterCommand kReg(kCommand);
const RegisterDemoStep kStep({20, "accumulate", demo});

}  // namespace
}  // namespace tool
