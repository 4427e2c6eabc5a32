// sobel, scharr, laplacian, lowpass, gauss: the fixed-kernel filters and the
// Gaussian on a gray image. Signed derivative results are written as 8-bit
// pictures mapped linearly from their minimum to their maximum.
#include <cstdlib>
#include <functional>

#include "commands.h"

namespace tool {
namespace {

struct Options {
    int mask = 3;
    int border = rvpBorderRepl;
    std::string dir = "h";
    int size = 5;
    float sigma = 0;  // 0: derived from the size
    std::vector<std::string> files;
};

bool parseBorder(const std::string& s, int& out) {
    const char* names[] = {"const", "replicate", "wrap", "mirror", "mirror-repeat"};
    for (int i = 0; i < 5; ++i)
        if (s == names[i]) { out = i; return true; }
    return false;
}

// Options come before the files; returns an error text, empty on success.
std::string parse(const Args& args, Options& o) {
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a.rfind("--", 0) != 0) { o.files.push_back(a); continue; }
        if (i + 1 >= args.size()) return "option " + a + " needs a value";
        const std::string& v = args[++i];
        char* end = nullptr;
        if (a == "--mask") {
            o.mask = static_cast<int>(std::strtol(v.c_str(), &end, 10));
            if (*end || (o.mask != 3 && o.mask != 5)) return "--mask takes 3 or 5, not '" + v + "'";
        } else if (a == "--border") {
            if (!parseBorder(v, o.border)) return "--border takes const, replicate, wrap, mirror or mirror-repeat";
        } else if (a == "--dir") {
            o.dir = v;
        } else if (a == "--size") {
            o.size = static_cast<int>(std::strtol(v.c_str(), &end, 10));
            if (*end || o.size < 3 || o.size % 2 == 0) return "--size takes an odd number of at least 3";
        } else if (a == "--sigma") {
            o.sigma = std::strtof(v.c_str(), &end);
            if (*end || !(o.sigma > 0)) return "--sigma takes a positive number";
        } else {
            return "unknown option " + a;
        }
    }
    return "";
}

using Fixed16s = RvpStatus (*)(const Rvp8u*, int, Rvp16s*, int, RvpiSize, int, int, Rvp8u, Rvp8u*);
using Query16s = RvpStatus (*)(RvpiSize, int, int*);

// Runs a 16-bit derivative filter and maps the result to 8 bits.
RvpStatus derivative(Fixed16s fn, Query16s query, const Picture& gray, int mask, int border, Picture& out) {
    const RvpiSize roi{gray.width, gray.height};
    int bytes = 0;
    if (RvpStatus st = query(roi, mask == 3 ? 33 : 55, &bytes)) return st;
    std::vector<Rvp8u> buf(bytes);
    std::vector<Rvp16s> d(static_cast<size_t>(gray.width) * gray.height);
    const RvpStatus st = fn(gray.data.data(), gray.rowBytes(), d.data(), gray.width * 2, roi, mask == 3 ? 33 : 55,
                            border, 0, buf.data());
    if (st != rvpStsNoErr) return st;
    const std::vector<float> f(d.begin(), d.end());
    out = visualise(f.data(), gray.width, gray.height, gray.width);
    return rvpStsNoErr;
}

// Scharr has no mask size; adapt it to the common shape.
template <RvpStatus (*F)(const Rvp8u*, int, Rvp16s*, int, RvpiSize, int, Rvp8u, Rvp8u*)>
RvpStatus scharrAdapter(const Rvp8u* s, int ss, Rvp16s* d, int ds, RvpiSize roi, int, int bt, Rvp8u bv, Rvp8u* b) {
    return F(s, ss, d, ds, roi, bt, bv, b);
}
template <RvpStatus (*Q)(RvpiSize, int*)> RvpStatus scharrQuery(RvpiSize roi, int, int* size) { return Q(roi, size); }

bool sobelByDir(const std::string& dir, Fixed16s& fn, Query16s& q) {
    struct Entry { const char* name; Fixed16s fn; Query16s q; };
    const Entry table[] = {
        {"h", rvpiFilterSobelHorizBorder_8u16s_C1R, rvpiFilterSobelHorizGetBufferSize_8u16s_C1R},
        {"v", rvpiFilterSobelVertBorder_8u16s_C1R, rvpiFilterSobelVertGetBufferSize_8u16s_C1R},
        {"negv", rvpiFilterSobelNegVertBorder_8u16s_C1R, rvpiFilterSobelNegVertGetBufferSize_8u16s_C1R},
        {"hh", rvpiFilterSobelHorizSecondBorder_8u16s_C1R, rvpiFilterSobelHorizSecondGetBufferSize_8u16s_C1R},
        {"vv", rvpiFilterSobelVertSecondBorder_8u16s_C1R, rvpiFilterSobelVertSecondGetBufferSize_8u16s_C1R},
        {"cross", rvpiFilterSobelCrossBorder_8u16s_C1R, rvpiFilterSobelCrossGetBufferSize_8u16s_C1R},
    };
    for (const Entry& e : table)
        if (dir == e.name) { fn = e.fn; q = e.q; return true; }
    return false;
}

RvpStatus lowpass(const Picture& gray, int mask, int border, Picture& out) {
    const RvpiSize roi{gray.width, gray.height};
    int bytes = 0;
    if (RvpStatus st = rvpiFilterLowpassGetBufferSize_8u_C1R(roi, mask == 3 ? 33 : 55, &bytes)) return st;
    std::vector<Rvp8u> buf(bytes);
    out = makePicture(gray.width, gray.height, 1, 8);
    return rvpiFilterLowpassBorder_8u_C1R(gray.data.data(), gray.rowBytes(), out.data.data(), out.rowBytes(), roi,
                                          mask == 3 ? 33 : 55, border, 0, buf.data());
}

RvpStatus gauss(const Picture& gray, int size, float sigma, int border, Picture& out) {
    const RvpiSize roi{gray.width, gray.height};
    int bytes = 0;
    if (RvpStatus st = rvpiFilterGaussGetBufferSize_32f_C1R(roi, size, &bytes)) return st;
    std::vector<Rvp8u> buf(bytes);
    const std::vector<float> src(gray.data.begin(), gray.data.end());
    std::vector<float> dst(src.size());
    if (sigma <= 0) sigma = 0.3f * ((size - 1) * 0.5f - 1) + 0.8f;
    const RvpStatus st = rvpiFilterGaussBorder_32f_C1R(src.data(), gray.width * 4, dst.data(), gray.width * 4, roi,
                                                       size, sigma, border, 0, buf.data());
    if (st != rvpStsNoErr) return st;
    out = visualise(dst.data(), gray.width, gray.height, gray.width, 0, 255);
    return rvpStsNoErr;
}

// Loads IN as gray, runs op, stores OUT.
int runOn(const Command& c, const Args& args, const std::function<RvpStatus(const Options&, const Picture&, Picture&)>& op) {
    Options o;
    const std::string err = parse(args, o);
    if (!err.empty()) {
        fail(err);
        return usage(c);
    }
    if (o.files.size() != 2) return usage(c);
    Picture in, out;
    if (!load(o.files[0], in)) return 1;
    const Picture gray = in.channels == 1 && in.depth == 8 ? in : toGray8(in);
    const RvpStatus st = op(o, gray, out);
    if (st != rvpStsNoErr) return fail(std::string(c.name) + " failed: " + statusText(st));
    return store(o.files[1], out) ? 0 : 1;
}

int runSobel(const Args& args);
int runScharr(const Args& args);
int runLaplacian(const Args& args);
int runLowpass(const Args& args);
int runGauss(const Args& args);

const Command kSobel{"sobel", "[--dir h|v|negv|hh|vv|cross] [--mask 3|5] [--border B] IN OUT",
                     "Sobel derivative (h: across rows, v: along rows), mapped to 8 bits", runSobel};
const Command kScharr{"scharr", "[--dir h|v] [--border B] IN OUT", "3x3 Scharr derivative, mapped to 8 bits",
                      runScharr};
const Command kLaplacian{"laplacian", "[--mask 3|5] [--border B] IN OUT", "Laplacian, mapped to 8 bits",
                         runLaplacian};
const Command kLowpass{"lowpass", "[--mask 3|5] [--border B] IN OUT", "box mean of 3x3 or 5x5 pixels", runLowpass};
const Command kGauss{"gauss", "[--size K] [--sigma S] [--border B] IN OUT", "Gaussian blur of K x K taps", runGauss};

int runSobel(const Args& args) {
    return runOn(kSobel, args, [](const Options& o, const Picture& g, Picture& out) {
        Fixed16s fn;
        Query16s q;
        if (!sobelByDir(o.dir, fn, q)) return static_cast<RvpStatus>(rvpStsBadArgErr);
        return derivative(fn, q, g, o.mask, o.border, out);
    });
}

int runScharr(const Args& args) {
    return runOn(kScharr, args, [](const Options& o, const Picture& g, Picture& out) {
        if (o.dir != "h" && o.dir != "v") return static_cast<RvpStatus>(rvpStsBadArgErr);
        if (o.dir == "h")
            return derivative(scharrAdapter<rvpiFilterScharrHorizBorder_8u16s_C1R>,
                              scharrQuery<rvpiFilterScharrHorizGetBufferSize_8u16s_C1R>, g, 3, o.border, out);
        return derivative(scharrAdapter<rvpiFilterScharrVertBorder_8u16s_C1R>,
                          scharrQuery<rvpiFilterScharrVertGetBufferSize_8u16s_C1R>, g, 3, o.border, out);
    });
}

int runLaplacian(const Args& args) {
    return runOn(kLaplacian, args, [](const Options& o, const Picture& g, Picture& out) {
        return derivative(rvpiFilterLaplacianBorder_8u16s_C1R, rvpiFilterLaplacianGetBufferSize_8u16s_C1R, g, o.mask,
                          o.border, out);
    });
}

int runLowpass(const Args& args) {
    return runOn(kLowpass, args,
                 [](const Options& o, const Picture& g, Picture& out) { return lowpass(g, o.mask, o.border, out); });
}

int runGauss(const Args& args) {
    return runOn(kGauss, args, [](const Options& o, const Picture& g, Picture& out) {
        return gauss(g, o.size, o.sigma, o.border, out);
    });
}

bool demo(const DemoContext& ctx, std::string& what) {
    Picture sobel, lap, low, blur;
    if (derivative(rvpiFilterSobelHorizBorder_8u16s_C1R, rvpiFilterSobelHorizGetBufferSize_8u16s_C1R, ctx.gray, 3,
                   rvpBorderRepl, sobel) != rvpStsNoErr ||
        derivative(rvpiFilterLaplacianBorder_8u16s_C1R, rvpiFilterLaplacianGetBufferSize_8u16s_C1R, ctx.gray, 5,
                   rvpBorderMirror, lap) != rvpStsNoErr ||
        lowpass(ctx.gray, 5, rvpBorderRepl, low) != rvpStsNoErr ||
        gauss(ctx.gray, 7, 0, rvpBorderMirrorR, blur) != rvpStsNoErr)
        return false;
    what = "sobel.png, laplacian.png, lowpass.png, gauss.png (derivatives and smoothing of the scene)";
    return ctx.save("sobel.png", sobel) && ctx.save("laplacian.png", lap) && ctx.save("lowpass.png", low) &&
           ctx.save("gauss.png", blur);
}

const RegisterCommand kRegSobel(kSobel);
const RegisterCommand kRegScharr(kScharr);
const RegisterCommand kRegLaplacian(kLaplacian);
const RegisterCommand kRegLowpass(kLowpass);
const RegisterCommand kRegGauss(kGauss);
const RegisterDemoStep kStep({30, "filters", demo});

}  // namespace
}  // namespace tool
