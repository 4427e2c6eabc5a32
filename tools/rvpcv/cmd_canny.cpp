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

// Stand-in until the library's Sobel filters land: replace with
// rvpiFilterSobel*Border_8u16s_C1R (replicated border) once they are on main.
// Horizontal and vertical Sobel derivatives of an 8-bit image, y growing
// downwards, replicated border; 5x5 is the smoothing 1 4 6 4 1 across the
// derivative -1 -2 0 2 1.
Derivatives sobelPlaceholder(const Picture& gray, int size) {
    static const int smooth3[] = {1, 2, 1}, deriv3[] = {-1, 0, 1};
    static const int smooth5[] = {1, 4, 6, 4, 1}, deriv5[] = {-1, -2, 0, 2, 1};
    const int* smooth = size == 5 ? smooth5 : smooth3;
    const int* deriv = size == 5 ? deriv5 : deriv3;
    const int r = size / 2, w = gray.width, h = gray.height;
    Derivatives d;
    d.width = w, d.height = h;
    d.dx.resize(static_cast<size_t>(w) * h);
    d.dy.resize(d.dx.size());
    auto at = [&](int x, int y) {
        x = x < 0 ? 0 : x >= w ? w - 1 : x;
        y = y < 0 ? 0 : y >= h ? h - 1 : y;
        return static_cast<int>(gray.data[static_cast<size_t>(y) * w + x]);
    };
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            int gx = 0, gy = 0;
            for (int j = -r; j <= r; ++j)
                for (int i = -r; i <= r; ++i) {
                    const int p = at(x + i, y + j);
                    gx += smooth[j + r] * deriv[i + r] * p;
                    gy += deriv[j + r] * smooth[i + r] * p;
                }
            d.dx[static_cast<size_t>(y) * w + x] = static_cast<Rvp16s>(gx);
            d.dy[static_cast<size_t>(y) * w + x] = static_cast<Rvp16s>(gy);
        }
    return d;
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
                       "Canny edges from Sobel derivatives; edges below H continue down to L", run};

int run(const Args& args) {
    std::vector<std::string> files;
    float low = NAN, high = NAN, sobel = 3;  // the thresholds are required
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        float* target = a == "--low" ? &low : a == "--high" ? &high : a == "--sobel" ? &sobel : nullptr;
        if (target) {
            if (i + 1 >= args.size() || !parseNumber(args[i + 1], *target))
                return fail(a + " takes a number" + (i + 1 < args.size() ? ", not '" + args[i + 1] + "'" : ""));
            ++i;
        } else if (a.size() > 1 && a[0] == '-') {
            return fail("unknown option '" + a + "' for canny"), usage(kCommand);
        } else {
            files.push_back(a);
        }
    }
    if (files.size() != 2 || std::isnan(low) || std::isnan(high)) return usage(kCommand);
    if (low < 0 || high < low) return fail("thresholds need 0 <= --low <= --high");
    if (sobel != 3 && sobel != 5) return fail("--sobel takes 3 or 5");
    Picture in;
    if (!load(files[0], in)) return 1;
    Picture edges;
    std::string error;
    const RvpStatus st = detect(sobelPlaceholder(toGray8(in), static_cast<int>(sobel)), low, high, edges, error);
    if (st != rvpStsNoErr) return fail("canny failed: " + (error.empty() ? statusText(st) : error));
    return store(files[1], edges) ? 0 : 1;
}

bool demo(const DemoContext& ctx, std::string& what) {
    Picture edges;
    std::string error;
    if (detect(sobelPlaceholder(ctx.gray, 3), 60, 180, edges, error) != rvpStsNoErr) return false;
    what = "canny.png (3x3 Sobel, thresholds 60 and 180)";
    return ctx.save("canny.png", edges);
}

const RegisterCommand kReg(kCommand);
const RegisterDemoStep kStep({60, "canny", demo});

}  // namespace
}  // namespace tool
