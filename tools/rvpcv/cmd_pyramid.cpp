// pyramid: the levels of a picture's pyramid at any ratio, each filtered with
// the 5-tap binomial kernel (1 4 6 4 1) and taken at the nearest positions,
// written into a directory as level0.png (the picture) to levelN.png.
#include <cstdlib>
#include <filesystem>

#include "commands.h"

namespace tool {

// Levels of an 8-bit gray or colour picture: level 0 itself, then each from
// the one before with the library's layer state (sizes as the pyramid record
// gives them). Fewer levels than asked when the picture reaches 1 x 1.
RvpStatus binomialPyramid(const Picture& pic, int levels, float ratio, std::vector<Picture>& out) {
    const RvpiSize roi{pic.width, pic.height};
    RvpiPyramid* rec = nullptr;
    if (RvpStatus st = rvpiPyramidInitAlloc(&rec, levels < 1 ? 1 : levels, roi, ratio)) return st;
    const int n = levels < 1 ? 0 : rec->level;
    std::vector<RvpiSize> sizes(rec->pRoi, rec->pRoi + n + 1);
    rvpiPyramidFree(rec);
    static const Rvp16s kKernel[] = {1, 4, 6, 4, 1};
    const bool colour = pic.channels == 3;
    RvpiPyramidDownState* state = nullptr;
    RvpStatus st = colour ? rvpiPyramidLayerDownInitAlloc_8u_C3R(&state, roi, ratio, kKernel, 5, 2)
                          : rvpiPyramidLayerDownInitAlloc_8u_C1R(&state, roi, ratio, kKernel, 5, 2);
    if (st != rvpStsNoErr) return st;
    out.assign(1, pic);
    for (int l = 1; l <= n && st == rvpStsNoErr; ++l) {
        const Picture& s = out.back();
        Picture d = makePicture(sizes[l].width, sizes[l].height, pic.channels, 8);
        st = colour ? rvpiPyramidLayerDown_8u_C3R(s.data.data(), s.rowBytes(), sizes[l - 1], d.data.data(), d.rowBytes(), sizes[l], state)
                    : rvpiPyramidLayerDown_8u_C1R(s.data.data(), s.rowBytes(), sizes[l - 1], d.data.data(), d.rowBytes(), sizes[l], state);
        out.push_back(std::move(d));
    }
    rvpiPyramidLayerDownFree(state);
    return st;
}

namespace {

const char* const kUsage = "IN OUTDIR [--levels N] [--ratio R]";

int run(const Args& args);
const Command kCommand{"pyramid", kUsage, "write the levels of a picture's pyramid at any ratio", run,
    "--levels N   levels below the picture (default 4, at most 64); fewer when it reaches 1 x 1\n"
    "--ratio R    size ratio between levels, above 1 and at most 10 (default 2)\n"
    "IN: an 8-bit gray or colour picture (others are taken as gray). OUTDIR is made if\n"
    "missing; it receives level0.png (the picture) to levelN.png, each level filtered\n"
    "with the 1 4 6 4 1 kernel and taken at the nearest source positions.\n"};

int run(const Args& args) {
    std::vector<std::string> files;
    int levels = 4;
    float ratio = 2.0f;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a == "--levels" || a == "--ratio") {
            char* end = nullptr;
            const char* text = i + 1 < args.size() ? args[++i].c_str() : "";
            const double v = a == "--levels" ? static_cast<double>(std::strtol(text, &end, 10)) : std::strtod(text, &end);
            if (!end || end == text || *end != 0) return usageError(kCommand, a + " takes a number");
            if (a == "--levels" && (v < 1 || v > 64)) return usageError(kCommand, "--levels takes a whole number from 1 to 64");
            if (a == "--ratio" && !(v > 1.0 && v <= 10.0)) return usageError(kCommand, "--ratio takes a number above 1 and at most 10");
            (a == "--levels" ? levels = static_cast<int>(v) : (ratio = static_cast<float>(v), 0));
        } else if (a.rfind("--", 0) == 0) {
            return usageError(kCommand, "unknown option " + a);
        } else {
            files.push_back(a);
        }
    }
    if (files.size() != 2) return usage(kCommand);
    Picture pic;
    if (!load(files[0], pic)) return 1;
    if (pic.depth != 8 || (pic.channels != 1 && pic.channels != 3)) pic = toGray8(pic);
    std::vector<Picture> out;
    if (RvpStatus st = binomialPyramid(pic, levels, ratio, out)) return fail("pyramid failed: " + statusText(st));
    std::error_code ec;
    std::filesystem::create_directories(files[1], ec);
    if (ec) return fail("cannot make " + files[1] + ": " + ec.message());
    std::vector<std::string> written;
    for (size_t l = 0; l < out.size(); ++l) {
        const std::string path = (std::filesystem::path(files[1]) / ("level" + std::to_string(l) + ".png")).string();
        if (!store(path, out[l])) {
            for (const std::string& w : written) std::filesystem::remove(w, ec);  // all or none
            return 1;
        }
        written.push_back(path);
        std::printf("%s %dx%d\n", path.c_str(), out[l].width, out[l].height);
    }
    return 0;
}

// Demo: the scene's levels at ratio 1.5, side by side.
bool demo(const DemoContext& ctx, std::string& what) {
    std::vector<Picture> levels;
    if (binomialPyramid(ctx.gray, 5, 1.5f, levels) != rvpStsNoErr) return false;
    int width = 0;
    for (const Picture& p : levels) width += p.width;
    Picture sheet = makePicture(width, ctx.gray.height, 1, 8);
    int x0 = 0;
    for (const Picture& p : levels) {
        for (int y = 0; y < p.height; ++y)
            std::copy(p.data.begin() + static_cast<ptrdiff_t>(y) * p.width, p.data.begin() + static_cast<ptrdiff_t>(y + 1) * p.width,
                      sheet.row(y) + x0);
        x0 += p.width;
    }
    what = "pyramid.png (" + std::to_string(levels.size()) + " levels at ratio 1.5, side by side)";
    return ctx.save("pyramid.png", sheet);
}

const RegisterCommand kReg(kCommand);
const RegisterDemoStep kStep({87, "pyramid", demo});

}  // namespace
}  // namespace tool
