// hough: straight lines of a picture by the Hough transform (distance step 1
// pixel, angle step 1 degree) over its edges: a two-valued picture is taken
// as it is, any other goes through the Canny detector first. Writes the
// picture with the lines drawn in red and lists rho, theta and the line's
// rank on stdout.
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "commands.h"

namespace tool {
namespace {

const char* const kUsage = "IN OUT [--threshold T] [--lines N]";

// Edges: non-zero pixels of a two-valued picture, else Canny edges.
RvpStatus edgesOf(const Picture& gray, Picture& edges, std::string& error) {
    int values[2] = {-1, -1};
    bool twoValued = true;
    for (uint8_t v : gray.data) {
        if (v == values[0] || v == values[1]) continue;
        if (values[0] < 0) values[0] = v;
        else if (values[1] < 0) values[1] = v;
        else {
            twoValued = false;
            break;
        }
    }
    if (twoValued) {
        edges = gray;
        const uint8_t off = static_cast<uint8_t>(values[1] < 0 ? 0 : std::min(values[0], values[1]));
        for (uint8_t& v : edges.data) v = v != off ? 255 : 0;
        return rvpStsNoErr;
    }
    return cannyEdges(gray, 50, 150, edges, error);
}

RvpStatus lines(const Picture& edges, int threshold, int count, std::vector<RvpPointPolar>& out) {
    const RvpiSize roi{edges.width, edges.height};
    const RvpPointPolar delta{1.0f, static_cast<float>(M_PI / 180)};
    int bytes = 0;
    if (RvpStatus st = rvpiHoughLineGetSize_8u_C1R(roi, delta, count, &bytes)) return st > 0 ? rvpStsSizeErr : st;
    std::vector<Rvp8u> buffer(static_cast<size_t>(bytes));
    out.resize(static_cast<size_t>(count));
    int found = 0;
    const RvpStatus st = rvpiHoughLine_8u32f_C1R(edges.data.data(), edges.rowBytes(), roi, delta, threshold, out.data(),
                                                 count, &found, buffer.data());
    out.resize(st < 0 ? 0 : static_cast<size_t>(found));
    return st;
}

// The picture in colour with each line drawn in red across it.
Picture drawing(const Picture& gray, const std::vector<RvpPointPolar>& ls) {
    Picture rgb = makePicture(gray.width, gray.height, 3, 8);
    for (size_t i = 0; i < gray.data.size(); ++i) rgb.data[3 * i] = rgb.data[3 * i + 1] = rgb.data[3 * i + 2] = gray.data[i];
    for (const RvpPointPolar& l : ls) {
        const double c = std::cos(l.theta), s = std::sin(l.theta);
        const auto plot = [&](int x, int y) {
            if (x < 0 || y < 0 || x >= rgb.width || y >= rgb.height) return;
            uint8_t* p = rgb.row(y) + 3 * x;
            p[0] = 255, p[1] = 0, p[2] = 0;
        };
        if (std::fabs(s) > std::fabs(c))
            for (int x = 0; x < rgb.width; ++x) plot(x, static_cast<int>(std::lround((l.rho - x * c) / s)));
        else
            for (int y = 0; y < rgb.height; ++y) plot(static_cast<int>(std::lround((l.rho - y * s) / c)), y);
    }
    return rgb;
}

int run(const Args& args);
const Command kCommand{"hough", kUsage, "find straight lines (Hough transform over the edges)", run,
    "--threshold T  votes a line needs, more than T (default 100)\n"
    "--lines N      most lines to keep, the strongest (default 10)\n"
    "IN: any picture; a two-valued one is taken as the edges, others go through the\n"
    "Canny detector (3x3 Sobel, thresholds 50 and 150). Distance step 1 pixel, angle\n"
    "step 1 degree. OUT: the picture with the lines in red; stdout: rank, rho, theta\n"
    "(radians) per line, strongest first.\n"};

int run(const Args& args) {
    std::vector<std::string> files;
    int threshold = 100, count = 10;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a == "--threshold" || a == "--lines") {
            char* end = nullptr;
            const long v = i + 1 < args.size() ? std::strtol(args[++i].c_str(), &end, 10) : -1;
            if (!end || *end != 0 || v < 1 || v > 100000)
                return usageError(kCommand, a + " takes a whole number from 1 to 100000");
            (a == "--threshold" ? threshold : count) = static_cast<int>(v);
        } else if (a.rfind("--", 0) == 0) {
            return usageError(kCommand, "unknown option " + a);
        } else {
            files.push_back(a);
        }
    }
    if (files.size() != 2) return usage(kCommand);
    if (const std::string e = checkPictureName(files[1]); !e.empty()) return usageError(kCommand, e);
    Picture in;
    if (!load(files[0], in)) return 1;
    const Picture gray = toGray8(in);
    Picture edges;
    std::string error;
    std::vector<RvpPointPolar> found;
    RvpStatus st = edgesOf(gray, edges, error);
    if (st == rvpStsNoErr) st = lines(edges, threshold, count, found);
    if (st != rvpStsNoErr) return fail("hough failed: " + (error.empty() ? statusText(st) : error));
    if (!store(files[1], drawing(gray, found))) return 1;
    for (size_t i = 0; i < found.size(); ++i) std::printf("%zu %.1f %.4f\n", i + 1, found[i].rho, found[i].theta);
    return 0;
}

bool demo(const DemoContext& ctx, std::string& what) {
    Picture edges;
    std::string error;
    std::vector<RvpPointPolar> found;
    if (edgesOf(ctx.gray, edges, error) != rvpStsNoErr || lines(edges, 80, 12, found) != rvpStsNoErr) return false;
    what = "hough.png (" + std::to_string(found.size()) + " lines over the Canny edges)";
    return ctx.save("hough.png", drawing(ctx.gray, found));
}

const RegisterCommand kReg(kCommand);
const RegisterDemoStep kStep({65, "hough", demo});

}  // namespace
}  // namespace tool
