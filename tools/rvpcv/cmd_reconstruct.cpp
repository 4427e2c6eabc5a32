// reconstruct: grey-scale reconstruction of a marker under (or, with --erode,
// above) a mask, 8- or 16-bit gray; the demo step fills the holes of the scene.
#include <cstring>

#include "commands.h"

namespace tool {
namespace {

RvpStatus apply(bool erode, const Picture& mask, Picture& marker, int norm) {
    const RvpiSize roi{mask.width, mask.height};
    const bool wide = mask.depth == 16;
    int bytes = 0;
    RvpStatus st = wide ? rvpiMorphReconstructGetBufferSize_16u_C1(roi, &bytes)
                        : rvpiMorphReconstructGetBufferSize_8u_C1(roi, &bytes);
    if (st != rvpStsNoErr) return st;
    std::vector<Rvp8u> buffer(static_cast<size_t>(bytes));
    if (wide) {
        auto fn = erode ? rvpiMorphReconstructErode_16u_C1IR : rvpiMorphReconstructDilate_16u_C1IR;
        return fn(reinterpret_cast<const Rvp16u*>(mask.data.data()), mask.rowBytes(),
                  reinterpret_cast<Rvp16u*>(marker.data.data()), marker.rowBytes(), roi, buffer.data(), norm);
    }
    auto fn = erode ? rvpiMorphReconstructErode_8u_C1IR : rvpiMorphReconstructDilate_8u_C1IR;
    return fn(mask.data.data(), mask.rowBytes(), marker.data.data(), marker.rowBytes(), roi, buffer.data(), norm);
}

int runReconstruct(const Args& args);
const Command kReconstruct{"reconstruct", "MARKER MASK OUT [--erode] [--norm 4|8]",
                           "grows the marker under the mask (shrinks it above, with --erode) until stable",
                           runReconstruct,
    "MARKER and MASK: gray pictures of one size and depth (8 or 16 bits). Dilation\n"
    "(default) needs MARKER <= MASK; --erode reconstructs by erosion from above.\n"
    "--norm 4|8   neighbours (default 8).\n"};

int runReconstruct(const Args& args) {
    if (args.size() < 3) return usage(kReconstruct);
    bool erode = false;
    int norm = rvpiNormInf;
    for (size_t i = 3; i < args.size(); ++i) {
        if (args[i] == "--erode") {
            erode = true;
        } else if (args[i] == "--norm" && i + 1 < args.size()) {
            const std::string& n = args[++i];
            if (n != "4" && n != "8") return usageError(kReconstruct, "--norm takes 4 or 8 (neighbours), not '" + n + "'");
            norm = n == "4" ? rvpiNormL1 : rvpiNormInf;
        } else {
            return usage(kReconstruct);
        }
    }
    Picture marker, mask;
    if (!load(args[0], marker) || !load(args[1], mask)) return 1;
    if (marker.channels != 1 && marker.depth == 8) marker = toGray8(marker);
    if (mask.channels != 1 && mask.depth == 8) mask = toGray8(mask);
    if (marker.channels != 1 || mask.channels != 1) return fail("reconstruct takes gray images");
    if (marker.width != mask.width || marker.height != mask.height || marker.depth != mask.depth)
        return fail("marker and mask must have the same size and sample depth");
    const RvpStatus st = apply(erode, mask, marker, norm);
    if (st != rvpStsNoErr) return fail("reconstruct failed: " + statusText(st));
    return store(args[2], marker) ? 0 : 1;
}

// Hole filling: a marker at the maximum everywhere but on the frame, where it
// equals the image, shrinks above the image and stops at every basin that
// does not reach the frame; the difference shows the holes.
bool demo(const DemoContext& ctx, std::string& what) {
    const Picture& g = ctx.gray;
    Picture filled = makePicture(g.width, g.height, 1, 8);
    for (int y = 0; y < g.height; ++y)
        for (int x = 0; x < g.width; ++x) {
            const bool frame = x == 0 || y == 0 || x == g.width - 1 || y == g.height - 1;
            filled.row(y)[x] = frame ? g.data[static_cast<size_t>(y) * g.rowBytes() + x] : 255;
        }
    if (apply(true, g, filled, rvpiNormL1) != rvpStsNoErr) return false;
    Picture holes = makePicture(g.width, g.height, 1, 8);
    for (int y = 0; y < g.height; ++y)
        for (int x = 0; x < g.width; ++x)
            holes.row(y)[x] = static_cast<uint8_t>(filled.row(y)[x] - g.data[static_cast<size_t>(y) * g.rowBytes() + x]);
    what = "holes-filled.png, holes.png (reconstruction by erosion from the frame)";
    return ctx.save("holes-filled.png", filled) && ctx.save("holes.png", holes);
}

const RegisterCommand kReg(kReconstruct);
const RegisterDemoStep kStep({45, "reconstruct", demo});

}  // namespace
}  // namespace tool
