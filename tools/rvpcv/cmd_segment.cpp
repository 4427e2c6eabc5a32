// watershed and segment: marker-driven segmentation of a gray (watershed)
// or gray/colour (segment) picture. MARKERS is an 8-bit gray picture of the
// same size: 0 where a label is to be found, 1..254 seed labels, 255 walls.
// The output draws each region in its own colour over the picture (25%
// picture, 75% colour), with boundary pixels white; --labels writes the
// label image itself instead.
#include <cstdlib>

#include "commands.h"

namespace tool {
namespace {

struct Options {
    int engine = 1;  // 1 queue, 2 distance
    int norm = 0;
    int boundary = 0;
    bool labels = false;
    std::vector<std::string> files;
};

std::string parse(const Args& args, Options& o, bool watershed) {
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a.rfind("--", 0) != 0) { o.files.push_back(a); continue; }
        if (a == "--labels") { o.labels = true; continue; }
        if (watershed && a == "--queue") { o.engine = 1; continue; }
        if (watershed && a == "--distance") { o.engine = 2; continue; }
        if (i + 1 >= args.size()) return "option " + a + " needs a value";
        const std::string& v = args[++i];
        char* end = nullptr;
        const long n = std::strtol(v.c_str(), &end, 10);
        if (a == "--norm") {
            if (*end || n < 0 || n > 3) return "--norm takes 0 to 3";
            o.norm = static_cast<int>(n);
        } else if (a == "--boundary") {
            if (*end || (n != 4 && n != 8)) return "--boundary takes 4 or 8";
            o.boundary = n == 4 ? RVP_WATERSHED_BORDER_4 : RVP_WATERSHED_BORDER_8;
        } else {
            return "unknown option " + a;
        }
    }
    if (o.files.size() != 3) return "expected IN, MARKERS and OUT";
    if ((!watershed || o.engine == 1) && o.norm > 1) return "--norm takes 0 or 1 here";
    return "";
}

// Region colours over the picture; boundaries white, unassigned black.
Picture drawRegions(const Picture& img, const std::vector<Rvp8u>& lab) {
    Picture out = makePicture(img.width, img.height, 3, 8);
    for (size_t i = 0; i < lab.size(); ++i) {
        const int g = img.channels == 3 ? (img.data[3 * i] + 2 * img.data[3 * i + 1] + img.data[3 * i + 2]) / 4
                                        : img.data[i];
        const Rvp8u l = lab[i];
        for (int c = 0; c < 3; ++c) {
            const int hue = (l * (c == 0 ? 97 : c == 1 ? 57 : 31) + 40 * c) & 255;
            out.data[3 * i + c] = l == 255 ? 255 : l == 0 ? 0 : static_cast<Rvp8u>((g + 3 * hue) / 4);
        }
    }
    return out;
}

int run(const Args& args, const Command& cmd, bool watershed) {
    Options o;
    const std::string err = parse(args, o, watershed);
    if (!err.empty()) {
        fail(err);
        return usage(cmd);
    }
    Picture img, mk;
    if (!load(o.files[0], img) || !load(o.files[1], mk)) return 1;
    if (img.depth != 8 || (img.channels != 1 && img.channels != 3) || (watershed && img.channels != 1))
        return fail(o.files[0] + (watershed ? ": watershed takes an 8-bit gray picture" : ": 8-bit gray or RGB"));
    if (mk.depth != 8 || mk.channels != 1 || mk.width != img.width || mk.height != img.height)
        return fail(o.files[1] + ": markers are an 8-bit gray picture of the picture's size");
    const RvpiSize roi{img.width, img.height};
    std::vector<Rvp8u> lab = mk.data;
    int bytes = 0;
    RvpStatus st = watershed ? rvpiSegmentWatershedGetBufferSize_8u_C1R(roi, &bytes)
                             : rvpiSegmentGradientGetBufferSize_8u_C3R(roi, &bytes);
    if (st == rvpStsNoErr) {
        std::vector<Rvp8u> buf(bytes);
        if (watershed)
            st = rvpiSegmentWatershed_8u_C1IR(img.data.data(), img.rowBytes(), lab.data(), img.width, roi, o.norm,
                                              o.engine | o.boundary, buf.data());
        else
            st = (img.channels == 3 ? rvpiSegmentGradient_8u_C3IR : rvpiSegmentGradient_8u_C1IR)(
                img.data.data(), img.rowBytes(), lab.data(), img.width, roi, o.norm, o.boundary, buf.data());
    }
    if (st != rvpStsNoErr) return fail(std::string(cmd.name) + ": " + statusText(st));
    if (o.labels) {
        Picture out = makePicture(img.width, img.height, 1, 8);
        out.data = lab;
        return store(o.files[2], out) ? 0 : 1;
    }
    return store(o.files[2], drawRegions(img, lab)) ? 0 : 1;
}

int cmdWatershed(const Args& args);
int cmdSegment(const Args& args);
const Command kWatershed{"watershed", "IN MARKERS OUT [--queue|--distance] [--norm N] [--boundary 4|8] [--labels]",
                         "marker-driven watershed over the gray levels", cmdWatershed,
    "MARKERS: 8-bit gray, 0 where a label is to be found, 1..254 seeds, 255 walls.\n"
    "--queue (default) priority flooding; --distance relaxation by raster sweeps.\n"
    "--norm N        neighbour norm: 0 or 1 with --queue, 0..3 with --distance (default 0)\n"
    "--boundary 4|8  draw boundaries between regions with that connectivity\n"
    "--labels        write the label image instead of the coloured regions\n"};
const Command kSegment{"segment", "IN MARKERS OUT [--norm 0|1] [--boundary 4|8] [--labels]",
                       "regions grown from markers over the gradient (gray or RGB)", cmdSegment,
    "MARKERS: 8-bit gray, 0 where a label is to be found, 1..254 seeds, 255 walls.\n"
    "--norm 0|1      gradient over 8 (0, default) or 4 (1) neighbours\n"
    "--boundary 4|8  draw boundaries between regions with that connectivity\n"
    "--labels        write the label image instead of the coloured regions\n"};
int cmdWatershed(const Args& args) { return run(args, kWatershed, true); }
int cmdSegment(const Args& args) { return run(args, kSegment, false); }
const RegisterCommand kRegisterW(kWatershed);
const RegisterCommand kRegisterS(kSegment);

// Demo: touching coins; a marker in the inner half of each coin and on the
// top and bottom rows for the background; regions grown over the gradient.
bool demo(const DemoContext& ctx, std::string& what) {
    const int w = 320, h = 240;
    Picture coins = makePicture(w, h, 1, 8);
    const int cx[6] = {60, 105, 170, 230, 250, 140}, cy[6] = {70, 90, 80, 60, 160, 170}, r[6] = {35, 30, 38, 28, 40, 36};
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            int v = 40 + (x + y) % 7;
            for (int k = 0; k < 6; ++k) {
                const int d2 = (x - cx[k]) * (x - cx[k]) + (y - cy[k]) * (y - cy[k]);
                if (d2 <= r[k] * r[k]) v = 150 + 80 * (r[k] * r[k] - d2) / (r[k] * r[k]);
            }
            coins.data[static_cast<size_t>(y) * w + x] = static_cast<Rvp8u>(v);
        }
    std::vector<Rvp8u> lab(static_cast<size_t>(w) * h, 0);
    for (int k = 0; k < 6; ++k)  // the inner half of each coin
        for (int y = cy[k] - r[k] / 2; y <= cy[k] + r[k] / 2; ++y)
            for (int x = cx[k] - r[k] / 2; x <= cx[k] + r[k] / 2; ++x)
                if ((x - cx[k]) * (x - cx[k]) + (y - cy[k]) * (y - cy[k]) <= r[k] * r[k] / 4)
                    lab[static_cast<size_t>(y) * w + x] = static_cast<Rvp8u>(k + 2);
    for (int x = 0; x < w; ++x) lab[x] = lab[static_cast<size_t>(h - 1) * w + x] = 1;
    const RvpiSize roi{w, h};
    int bytes = 0;
    if (rvpiSegmentGradientGetBufferSize_8u_C1R(roi, &bytes) != rvpStsNoErr) return false;
    std::vector<Rvp8u> buf(bytes);
    if (rvpiSegmentGradient_8u_C1IR(coins.data.data(), w, lab.data(), w, roi, 0, RVP_WATERSHED_BORDER_8,
                                    buf.data()) != rvpStsNoErr)
        return false;
    if (!ctx.save("coins.png", coins) || !ctx.save("segment.png", drawRegions(coins, lab))) return false;
    what = "coins.png, segment.png (six touching coins grown from markers over the gradient)";
    return true;
}
const RegisterDemoStep kDemo({80, "segment", demo});

}  // namespace
}  // namespace tool
