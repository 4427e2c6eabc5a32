// canny: edge map of an image, from Sobel derivatives (3x3 or 5x5) through
// the library's Canny detector (L1 magnitude, hysteresis between two
// thresholds). Colour and 16-bit inputs are reduced to 8-bit gray first.
#include <cmath>
#include <cstdlib>
#include <cstdint>
#include <climits>

#include "commands.h"

namespace tool {
namespace {

struct Derivatives {
    int width = 0, height = 0;
    std::vector<Rvp16s> dx, dy;
};

// Horizontal and vertical Sobel derivatives (3x3 or 5x5), x to the right and
// y downwards, replicated border: the negated vertical-edge filter gives
// right minus left, the horizontal-edge filter below minus above.
RvpStatus derivatives(const Picture& gray, int size, Derivatives& d) {
    const RvpiSize roi{gray.width, gray.height};
    const int mask = size * 11;
    int nx = 0, ny = 0;
    RvpStatus st = rvpiFilterSobelNegVertGetBufferSize_8u16s_C1R(roi, mask, &nx);
    if (st == rvpStsNoErr) st = rvpiFilterSobelHorizGetBufferSize_8u16s_C1R(roi, mask, &ny);
    if (st != rvpStsNoErr) return st;
    std::vector<Rvp8u> buffer(static_cast<size_t>(nx > ny ? nx : ny));
    d.width = gray.width, d.height = gray.height;
    d.dx.resize(static_cast<size_t>(gray.width) * gray.height);
    d.dy.resize(d.dx.size());
    const int step = gray.width * static_cast<int>(sizeof(Rvp16s));
    st = rvpiFilterSobelNegVertBorder_8u16s_C1R(gray.data.data(), gray.rowBytes(), d.dx.data(), step, roi, mask,
                                                rvpBorderRepl, 0, buffer.data());
    if (st == rvpStsNoErr)
        st = rvpiFilterSobelHorizBorder_8u16s_C1R(gray.data.data(), gray.rowBytes(), d.dy.data(), step, roi, mask,
                                                  rvpBorderRepl, 0, buffer.data());
    return st;
}

// The detector's buffer, refused when its size does not fit an int.
RvpStatus detect(const Derivatives& d, float low, float high, Picture& edges, std::string& error) {
    const RvpiSize roi{d.width, d.height};
    const int64_t frame = (static_cast<int64_t>(d.width) + 2) * (static_cast<int64_t>(d.height) + 2);
    const bool wide = d.width >= 0xfffd || d.height >= 0xfffd;
    if (frame * (wide ? 9 : 5) + 160 + 16 * static_cast<int64_t>(d.width) > INT_MAX) {
        error = "image too large for the edge detector's buffer";
        return rvpStsSizeErr;
    }
    int size = 0;
    RvpStatus st = rvpiCannyGetSize(roi, &size);
    if (st != rvpStsNoErr) return st;
    std::vector<Rvp8u> buffer(static_cast<size_t>(size));
    edges = makePicture(d.width, d.height, 1, 8);
    const int step = d.width * static_cast<int>(sizeof(Rvp16s));
    return rvpiCanny_16s8u_C1R(d.dx.data(), step, d.dy.data(), step, edges.data.data(), edges.rowBytes(), roi, low,
                               high, buffer.data());
}

bool parseNumber(const std::string& text, float& out) {
    char* end = nullptr;
    out = std::strtof(text.c_str(), &end);
    return !text.empty() && *end == '\0' && !std::isnan(out);
}

int run(const Args& args);
const Command kCommand{"canny", "IN OUT --low L --high H [--sobel 3|5]",
                       "Canny edges from Sobel derivatives; edges below H continue down to L", run,
    "--low L --high H   hysteresis thresholds on the L1 gradient magnitude (required;\n"
    "                   edges start above H and continue down to L)\n"
    "--sobel 3|5        Sobel aperture of the derivatives (default 3)\n"
    "Colour and 16-bit inputs are made 8-bit gray first (luma weights). OUT is 0/255.\n"};

int run(const Args& args) {
    std::vector<std::string> files;
    float low = NAN, high = NAN, sobel = 3;  // the thresholds are required
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        float* target = a == "--low" ? &low : a == "--high" ? &high : a == "--sobel" ? &sobel : nullptr;
        if (target) {
            if (i + 1 >= args.size() || !parseNumber(args[i + 1], *target))
                return usageError(kCommand, a + " takes a number" + (i + 1 < args.size() ? ", not '" + args[i + 1] + "'" : ""));
            ++i;
        } else if (a.size() > 1 && a[0] == '-') {
            return fail("unknown option '" + a + "' for canny"), usage(kCommand);
        } else {
            files.push_back(a);
        }
    }
    if (files.size() != 2 || std::isnan(low) || std::isnan(high)) return usage(kCommand);
    if (low < 0 || high < low) return usageError(kCommand, "thresholds need 0 <= --low <= --high");
    if (sobel != 3 && sobel != 5) return usageError(kCommand, "--sobel takes 3 or 5");
    Picture in;
    if (!load(files[0], in)) return 1;
    Picture edges;
    std::string error;
    Derivatives d;
    RvpStatus st = derivatives(toGray8(in), static_cast<int>(sobel), d);
    if (st == rvpStsNoErr) st = detect(d, low, high, edges, error);
    if (st != rvpStsNoErr) return fail("canny failed: " + (error.empty() ? statusText(st) : error));
    return store(files[1], edges) ? 0 : 1;
}

bool demo(const DemoContext& ctx, std::string& what) {
    Picture edges;
    std::string error;
    Derivatives d;
    if (derivatives(ctx.gray, 3, d) != rvpStsNoErr || detect(d, 60, 180, edges, error) != rvpStsNoErr) return false;
    what = "canny.png (3x3 Sobel, thresholds 60 and 180)";
    return ctx.save("canny.png", edges);
}

const RegisterCommand kReg(kCommand);
const RegisterDemoStep kStep({60, "canny", demo});

}  // namespace

RvpStatus cannyEdges(const Picture& gray, float low, float high, Picture& edges, std::string& error) {
    Derivatives d;
    RvpStatus st = derivatives(gray, 3, d);
    if (st == rvpStsNoErr) st = detect(d, low, high, edges, error);
    return st;
}

}  // namespace tool
