// absdiff: |A - B| of two images of the same size and layout.
#include "commands.h"

namespace tool {
namespace {

RvpStatus absDiff(const Picture& a, const Picture& b, Picture& out) {
    const RvpiSize roi{a.width, a.height};
    if (a.depth == 16)
        return rvpiAbsDiff_16u_C1R(reinterpret_cast<const Rvp16u*>(a.data.data()), a.rowBytes(),
                                   reinterpret_cast<const Rvp16u*>(b.data.data()), b.rowBytes(),
                                   reinterpret_cast<Rvp16u*>(out.data.data()), out.rowBytes(),
                                   RvpiSize{a.width * a.channels, a.height});
    if (a.channels == 3)
        return rvpiAbsDiff_8u_C3R(a.data.data(), a.rowBytes(), b.data.data(), b.rowBytes(), out.data.data(),
                                  out.rowBytes(), roi);
    return rvpiAbsDiff_8u_C1R(a.data.data(), a.rowBytes(), b.data.data(), b.rowBytes(), out.data.data(),
                              out.rowBytes(), roi);
}

int run(const Args& args);
const Command kCommand{"absdiff", "A B OUT", "per-pixel absolute difference of two images", run,
    "A and B: pictures of one size, layout and depth (8 or 16 bits, gray or RGB).\n"
    "OUT keeps that layout and depth.\n"};

int run(const Args& args) {
    if (args.size() != 3) return usage(kCommand);
    Picture a, b;
    if (!load(args[0], a) || !load(args[1], b)) return 1;
    if (a.width != b.width || a.height != b.height || a.channels != b.channels || a.depth != b.depth)
        return fail("'" + args[0] + "' and '" + args[1] + "' differ in size or layout (" + std::to_string(a.width) +
                    "x" + std::to_string(a.height) + " against " + std::to_string(b.width) + "x" +
                    std::to_string(b.height) + ")");
    Picture out = makePicture(a.width, a.height, a.channels, a.depth);
    const RvpStatus st = absDiff(a, b, out);
    if (st != rvpStsNoErr) return fail("absdiff failed: " + statusText(st));
    return store(args[2], out) ? 0 : 1;
}

bool demo(const DemoContext& ctx, std::string& what) {
    Picture out = makePicture(ctx.gray.width, ctx.gray.height, 1, 8);
    if (absDiff(ctx.gray, ctx.grayNext, out) != rvpStsNoErr) return false;
    what = "absdiff.png (scene against the next frame)";
    return ctx.save("absdiff.png", out);
}

const RegisterCommand kReg(kCommand);
const RegisterDemoStep kStep({10, "absdiff", demo});

}  // namespace
}  // namespace tool
