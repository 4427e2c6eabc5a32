// motion-history: stamps the silhouettes of a sequence (nonzero pixels of
// 8- or 16-bit gray pictures), frame t at time t, into a history that
// forgets after --duration frames (default 5), and writes the final
// history as an 8-bit picture: the newest motion brightest, forgotten or
// never-moving pixels black.
#include <cstdlib>

#include "commands.h"

namespace tool {
namespace {

const char* const kUsage = "SILHOUETTES... OUT [--duration D]";

RvpStatus stamp(const Picture& s, std::vector<float>& hist, float t, float duration) {
    const RvpiSize roi{s.width, s.height};
    if (s.depth == 16)
        return rvpiUpdateMotionHistory_16u32f_C1IR(reinterpret_cast<const Rvp16u*>(s.data.data()), s.rowBytes(),
                                                   hist.data(), s.width * 4, roi, t, duration);
    return rvpiUpdateMotionHistory_8u32f_C1IR(s.data.data(), s.rowBytes(), hist.data(), s.width * 4, roi, t, duration);
}

Picture picture(const std::vector<float>& hist, int w, int h, float last, float duration) {
    Picture out = makePicture(w, h, 1, 8);
    for (size_t i = 0; i < hist.size(); ++i) {
        const float age = last - hist[i];
        out.data[i] = hist[i] > 0 && age <= duration ? static_cast<Rvp8u>(255 - age * 200 / (duration + 1)) : 0;
    }
    return out;
}

int cmdMotion(const Args& args);
const Command kMotion{"motion-history", kUsage, "stamp silhouettes into a motion history", cmdMotion,
    "SILHOUETTES: gray pictures (nonzero = moving), frame t stamped at time t.\n"
    "--duration D  frames before a stamp is forgotten (default 5)\n"
    "OUT: 8-bit, the newest motion brightest.\n"};

int cmdMotion(const Args& args) {
    std::vector<std::string> files;
    float duration = 5;
    for (size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--duration" && i + 1 < args.size()) {
            char* end = nullptr;
            duration = std::strtof(args[++i].c_str(), &end);
            if (*end || !(duration >= 0 && duration < 1e6f)) {
                fail("--duration takes a number of frames, 0 or more");
                return usage(kMotion);
            }
        } else if (args[i].rfind("--", 0) == 0) {
            fail("unknown option " + args[i]);
            return usage(kMotion);
        } else {
            files.push_back(args[i]);
        }
    }
    if (files.size() < 2) return usage(kMotion);
    std::vector<float> hist;
    Picture first;
    for (size_t t = 0; t + 1 < files.size(); ++t) {
        Picture s;
        if (!load(files[t], s)) return 1;
        if (s.channels != 1) return fail(files[t] + ": silhouettes are gray pictures");
        if (t == 0) {
            first = s;
            hist.assign(static_cast<size_t>(s.width) * s.height, 0.0f);
        } else if (s.width != first.width || s.height != first.height) {
            return fail(files[t] + ": silhouettes differ in size");
        }
        if (RvpStatus st = stamp(s, hist, static_cast<float>(t + 1), duration))
            return fail("motion-history: " + statusText(st));
    }
    const float last = static_cast<float>(files.size() - 1);
    return store(files.back(), picture(hist, first.width, first.height, last, duration)) ? 0 : 1;
}

const RegisterCommand kRegister(kMotion);

// Demo: silhouettes of the moving scene (where consecutive frames differ)
// stamped into a history over eight frames.
bool demo(const DemoContext& ctx, std::string& what) {
    const int w = ctx.gray.width, h = ctx.gray.height;
    std::vector<float> hist(static_cast<size_t>(w) * h, 0.0f);
    Picture prev = ctx.gray;
    for (int t = 1; t <= 8; ++t) {
        const Picture next = sampleScene(w, h, t);
        Picture sil = makePicture(w, h, 1, 8);
        for (size_t i = 0; i < sil.data.size(); ++i) sil.data[i] = std::abs(next.data[i] - prev.data[i]) > 24 ? 255 : 0;
        if (stamp(sil, hist, static_cast<float>(t), 5) != rvpStsNoErr) return false;
        prev = next;
    }
    if (!ctx.save("motion-history.png", picture(hist, w, h, 8, 5))) return false;
    what = "motion-history.png (8 frames, duration 5)";
    return true;
}
const RegisterDemoStep kDemo({96, "motion-history", demo});

}  // namespace
}  // namespace tool
