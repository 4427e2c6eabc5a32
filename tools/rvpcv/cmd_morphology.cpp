// erode, dilate, morph: structuring-element morphology of 8-bit gray or
// colour images with a rectangle, disk or cross, anchored at the centre;
// morph runs the composite operations (opening, closing, top-hat,
// black-hat, gradient).
#include <cstdlib>
#include <cstring>

#include "commands.h"

namespace tool {
namespace {

struct Element {
    int w = 0, h = 0;
    std::vector<Rvp8u> cells;
};

// "rect:WxH", "disk:R" (cells within distance R of the centre) or "cross:R"
// (the centre row and column of a (2R+1)-square).
bool parseMask(const std::string& text, Element& e, std::string& error) {
    const size_t colon = text.find(':');
    const std::string kind = text.substr(0, colon), arg = colon == std::string::npos ? "" : text.substr(colon + 1);
    char* end = nullptr;
    const long a = std::strtol(arg.c_str(), &end, 10);
    if (kind == "rect") {
        const long b = *end == 'x' ? std::strtol(end + 1, &end, 10) : 0;
        if (a < 1 || b < 1 || a > 1000 || b > 1000 || *end) {
            error = "a rectangle is rect:WxH with sides from 1 to 1000, not '" + text + "'";
            return false;
        }
        e.w = static_cast<int>(a), e.h = static_cast<int>(b);
        e.cells.assign(static_cast<size_t>(a * b), 1);
        return true;
    }
    if ((kind == "disk" || kind == "cross") && !arg.empty() && !*end && a >= 0 && a <= 200) {
        const int r = static_cast<int>(a);
        e.w = e.h = 2 * r + 1;
        for (int y = -r; y <= r; ++y)
            for (int x = -r; x <= r; ++x)
                e.cells.push_back(kind == "disk" ? (x * x + y * y <= r * r) : (x == 0 || y == 0));
        return true;
    }
    error = "unknown mask '" + text + "': use rect:WxH, disk:R or cross:R (R from 0 to 200)";
    return false;
}

RvpStatus apply(bool dilate, const Picture& in, Picture& out, const Element& e) {
    const RvpiSize roi{in.width, in.height}, mask{e.w, e.h};
    const RvpiPoint anchor{e.w / 2, e.h / 2};
    RvpiMorphState* st = nullptr;
    RvpStatus s = in.channels == 3 ? rvpiMorphologyInitAlloc_8u_C3R(in.width, e.cells.data(), mask, anchor, &st)
                  : in.channels == 4 ? rvpiMorphologyInitAlloc_8u_C4R(in.width, e.cells.data(), mask, anchor, &st)
                                     : rvpiMorphologyInitAlloc_8u_C1R(in.width, e.cells.data(), mask, anchor, &st);
    if (s != rvpStsNoErr) return s;
    auto fn = in.channels == 3 ? (dilate ? rvpiDilateBorderReplicate_8u_C3R : rvpiErodeBorderReplicate_8u_C3R)
              : in.channels == 4 ? (dilate ? rvpiDilateBorderReplicate_8u_C4R : rvpiErodeBorderReplicate_8u_C4R)
                                 : (dilate ? rvpiDilateBorderReplicate_8u_C1R : rvpiErodeBorderReplicate_8u_C1R);
    s = fn(in.data.data(), in.rowBytes(), out.data.data(), out.rowBytes(), roi, rvpBorderRepl, st);
    rvpiMorphologyFree(st);
    return s;
}

int run(bool dilate, const Command& cmd, const Args& args) {
    if (args.size() != 4 || args[2] != "--mask") return usage(cmd);
    Element e;
    std::string error;
    if (!parseMask(args[3], e, error)) return usageError(cmd, error);
    Picture in;
    if (!load(args[0], in)) return 1;
    if (in.depth != 8) return fail("'" + args[0] + "' has 16-bit samples; " + cmd.name + " takes 8-bit images");
    Picture out = makePicture(in.width, in.height, in.channels, 8);
    const RvpStatus st = apply(dilate, in, out, e);
    if (st != rvpStsNoErr) return fail(std::string(cmd.name) + " failed: " + statusText(st));
    return store(args[1], out) ? 0 : 1;
}

int runErode(const Args& args);
int runDilate(const Args& args);
const Command kErode{"erode", "IN OUT --mask rect:WxH|disk:R|cross:R",
                     "minimum over a structuring element centred on each pixel", runErode,
    "--mask rect:WxH (sides 1..1000), disk:R or cross:R (R 0..200), centred on each\n"
    "pixel. 8-bit gray, RGB or RGBA; the border is replicated.\n"};
const Command kDilate{"dilate", "IN OUT --mask rect:WxH|disk:R|cross:R",
                      "maximum over a structuring element centred on each pixel", runDilate,
    "--mask rect:WxH (sides 1..1000), disk:R or cross:R (R 0..200), centred on each\n"
    "pixel. 8-bit gray, RGB or RGBA; the border is replicated.\n"};
int runErode(const Args& args) { return run(false, kErode, args); }
int runDilate(const Args& args) { return run(true, kDilate, args); }

const char* const kOps[] = {"open", "close", "tophat", "blackhat", "gradient"};

RvpStatus applyComposite(int op, const Picture& in, Picture& out, const Element& e) {
    const RvpiSize roi{in.width, in.height}, mask{e.w, e.h};
    const RvpiPoint anchor{e.w / 2, e.h / 2};
    const int ci = in.channels == 3 ? 1 : in.channels == 4 ? 2 : 0;
    using Init = RvpStatus (*)(int, const Rvp8u*, RvpiSize, RvpiPoint, RvpiMorphAdvState**);
    using Fn = RvpStatus (*)(const Rvp8u*, int, Rvp8u*, int, RvpiSize, int, RvpiMorphAdvState*);
    const Init inits[3] = {rvpiMorphAdvInitAlloc_8u_C1R, rvpiMorphAdvInitAlloc_8u_C3R, rvpiMorphAdvInitAlloc_8u_C4R};
    const Fn fns[5][3] = {
        {rvpiMorphOpenBorder_8u_C1R, rvpiMorphOpenBorder_8u_C3R, rvpiMorphOpenBorder_8u_C4R},
        {rvpiMorphCloseBorder_8u_C1R, rvpiMorphCloseBorder_8u_C3R, rvpiMorphCloseBorder_8u_C4R},
        {rvpiMorphTophatBorder_8u_C1R, rvpiMorphTophatBorder_8u_C3R, rvpiMorphTophatBorder_8u_C4R},
        {rvpiMorphBlackhatBorder_8u_C1R, rvpiMorphBlackhatBorder_8u_C3R, rvpiMorphBlackhatBorder_8u_C4R},
        {rvpiMorphGradientBorder_8u_C1R, rvpiMorphGradientBorder_8u_C3R, rvpiMorphGradientBorder_8u_C4R}};
    RvpiMorphAdvState* st = nullptr;
    RvpStatus s = inits[ci](in.width, e.cells.data(), mask, anchor, &st);
    if (s != rvpStsNoErr) return s;
    s = fns[op][ci](in.data.data(), in.rowBytes(), out.data.data(), out.rowBytes(), roi, rvpBorderRepl, st);
    rvpiMorphAdvFree(st);
    return s;
}

int runMorph(const Args& args);
const Command kMorph{"morph", "open|close|tophat|blackhat|gradient IN OUT --mask rect:WxH|disk:R|cross:R",
                     "composite morphology: opening, closing, top-hat, black-hat, gradient", runMorph,
                     "open: erosion then dilation; close: dilation then erosion; tophat: IN - open;\n"
                     "blackhat: close - IN; gradient: dilation - erosion (differences stop at 0).\n"
                     "The element is centred on each pixel; borders are replicated.\n"};
int runMorph(const Args& args) {
    if (args.size() != 5 || args[3] != "--mask") return usage(kMorph);
    int op = 0;
    while (op < 5 && args[0] != kOps[op]) ++op;
    if (op == 5) return usageError(kMorph, "unknown operation '" + args[0] + "'");
    Element e;
    std::string error;
    if (!parseMask(args[4], e, error)) return usageError(kMorph, error);
    Picture in;
    if (!load(args[1], in)) return 1;
    if (in.depth != 8) return fail("'" + args[1] + "' has 16-bit samples; morph takes 8-bit images");
    Picture out = makePicture(in.width, in.height, in.channels, 8);
    const RvpStatus st = applyComposite(op, in, out, e);
    if (st != rvpStsNoErr) return fail(std::string("morph failed: ") + statusText(st));
    return store(args[2], out) ? 0 : 1;
}

bool demoComposite(const DemoContext& ctx, std::string& what) {
    Element e;
    std::string error;
    if (!parseMask("disk:7", e, error)) return false;
    Picture tophat = makePicture(ctx.gray.width, ctx.gray.height, 1, 8), gradient = tophat;
    if (applyComposite(2, ctx.gray, tophat, e) != rvpStsNoErr || applyComposite(4, ctx.gray, gradient, e) != rvpStsNoErr)
        return false;
    what = "tophat.png, gradient.png (disk of radius 7)";
    return ctx.save("tophat.png", tophat) && ctx.save("gradient.png", gradient);
}

bool demo(const DemoContext& ctx, std::string& what) {
    Element e;
    std::string error;
    if (!parseMask("disk:3", e, error)) return false;
    Picture eroded = makePicture(ctx.gray.width, ctx.gray.height, 1, 8), dilated = eroded;
    if (apply(false, ctx.gray, eroded, e) != rvpStsNoErr || apply(true, ctx.gray, dilated, e) != rvpStsNoErr)
        return false;
    what = "erode.png, dilate.png (disk of radius 3)";
    return ctx.save("erode.png", eroded) && ctx.save("dilate.png", dilated);
}

const RegisterCommand kRegErode(kErode);
const RegisterCommand kRegDilate(kDilate);
const RegisterCommand kRegMorph(kMorph);
const RegisterDemoStep kStep({40, "morphology", demo});
const RegisterDemoStep kStepComposite({41, "composite", demoComposite});

}  // namespace
}  // namespace tool
