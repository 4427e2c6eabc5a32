// sobel, scharr, laplacian, lowpass, gauss: the fixed-kernel filters and the
// Gaussian on a gray image. Derivatives are signed 16-bit results (16-bit
// PNG/PGM of value + 32768, or .npy/.pfm); the Gaussian's float result goes
// to .npy/.pfm, or rounded to an 8-bit picture.
#include <algorithm>
#include <cmath>
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
            const long n = std::strtol(v.c_str(), &end, 10);
            if (*end || n < 3 || n > 1001 || n % 2 == 0) return "--size takes an odd number from 3 to 1001";
            o.size = static_cast<int>(n);
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

// Runs a 16-bit derivative filter.
RvpStatus derivative(Fixed16s fn, Query16s query, const Picture& gray, int mask, int border, Result& out) {
    const RvpiSize roi{gray.width, gray.height};
    int bytes = 0;
    if (RvpStatus st = query(roi, mask == 3 ? 33 : 55, &bytes)) return st;
    if (bytes <= 0) return rvpStsSizeErr;
    std::vector<Rvp8u> buf(bytes);
    std::vector<Rvp16s> d(static_cast<size_t>(gray.width) * gray.height);
    const RvpStatus st = fn(gray.data.data(), gray.rowBytes(), d.data(), gray.width * 2, roi, mask == 3 ? 33 : 55,
                            border, 0, buf.data());
    if (st != rvpStsNoErr) return st;
    out = Result::of(Result::Int16, d.data(), gray.width, gray.height, gray.width);
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
    if (bytes <= 0) return rvpStsSizeErr;
    std::vector<Rvp8u> buf(bytes);
    out = makePicture(gray.width, gray.height, 1, 8);
    return rvpiFilterLowpassBorder_8u_C1R(gray.data.data(), gray.rowBytes(), out.data.data(), out.rowBytes(), roi,
                                          mask == 3 ? 33 : 55, border, 0, buf.data());
}

RvpStatus gauss(const Picture& gray, int size, float sigma, int border, Result& out) {
    const RvpiSize roi{gray.width, gray.height};
    int bytes = 0;
    if (RvpStatus st = rvpiFilterGaussGetBufferSize_32f_C1R(roi, size, &bytes)) return st;
    if (bytes <= 0) return rvpStsSizeErr;
    std::vector<Rvp8u> buf(bytes);
    const std::vector<float> src(gray.data.begin(), gray.data.end());
    std::vector<float> dst(src.size());
    if (sigma <= 0) sigma = 0.3f * ((size - 1) * 0.5f - 1) + 0.8f;
    const RvpStatus st = rvpiFilterGaussBorder_32f_C1R(src.data(), gray.width * 4, dst.data(), gray.width * 4, roi,
                                                       size, sigma, border, 0, buf.data());
    if (st != rvpStsNoErr) return st;
    out = Result::of(Result::Float32, dst.data(), gray.width, gray.height, gray.width);
    return rvpStsNoErr;
}

// A result that fits 8 bits as a picture (the Gaussian of an 8-bit image),
// rounded, when the output is a picture name.
void storeRounded(Outputs& o, const std::string& path, const Result& r) {
    if (!checkPictureName(path).empty() || settings().preview) {
        o.add(path, r);
        return;
    }
    Picture p = makePicture(r.width, r.height, 1, 8);
    for (size_t i = 0; i < r.values.size(); ++i)
        p.data[i] = static_cast<Rvp8u>(std::min(255.0, std::max(0.0, std::nearbyint(r.values[i]))));
    o.add(path, p);
}

// Loads IN as gray, runs op, stores OUT.
int runOn(const Command& c, const Args& args, const std::function<RvpStatus(const Options&, const Picture&, Outputs&,
                                                                            const std::string&)>& op) {
    Options o;
    const std::string err = parse(args, o);
    if (!err.empty()) return usageError(c, err);
    if (o.files.size() != 2) return usage(c);
    Picture in;
    if (!load(o.files[0], in)) return 1;
    const Picture gray = in.channels == 1 && in.depth == 8 ? in : toGray8(in);
    Outputs out;
    const RvpStatus st = op(o, gray, out, o.files[1]);
    if (st != rvpStsNoErr) return fail(std::string(c.name) + " failed: " + statusText(st));
    return out.commit() ? 0 : 1;
}

const char* const kBorders =
    "--border: const (0 outside), replicate (aaa|abcd|ddd, the default), wrap (bcd|abcd|abc), mirror "
    "(dcb|abcd|cba), mirror-repeat (cba|abcd|dcb). Colour pictures are made gray first (luma weights).";
const char* const kDerivativeHelp =
    "The result is signed: OUT.png or .pgm holds value + 32768 in 16 bits, OUT.npy the int16 values, OUT.pfm "
    "floats; with --preview an 8-bit picture from the minimum to the maximum. --dir h: taps 1 2 1 along the rows and "
    "-1 0 1 down the columns (positive where the image grows downwards); v: 1 0 -1 along the rows (negv its "
    "negation) and 1 2 1 down; hh, vv: second derivatives; cross: the mixed one. --mask 3 or 5 (default 3).";
int runSobel(const Args& args);
int runScharr(const Args& args);
int runLaplacian(const Args& args);
int runLowpass(const Args& args);
int runGauss(const Args& args);

std::string join(const char* a, const char* b) { return std::string(a) + " " + b; }
const std::string kSobelHelp = join(kDerivativeHelp, kBorders);
const std::string kGaussHelp = join(
    "--size K: an odd number of taps from 3 to 1001 (default 5); --sigma S (default 0.3 ((K - 1) / 2 - 1) + 0.8). "
    "OUT.png or .pgm holds the result rounded to 8 bits; OUT.npy or .pfm the floats.", kBorders);

const Command kSobel{"sobel", "[--dir h|v|negv|hh|vv|cross] [--mask 3|5] [--border B] IN OUT",
                     "Sobel derivative of a gray picture (signed 16-bit result)", runSobel, kSobelHelp.c_str()};
const Command kScharr{"scharr", "[--dir h|v] [--border B] IN OUT", "3x3 Scharr derivative (signed 16-bit result)",
                      runScharr, kSobelHelp.c_str()};
const Command kLaplacian{"laplacian", "[--mask 3|5] [--border B] IN OUT", "Laplacian (signed 16-bit result)",
                         runLaplacian, kSobelHelp.c_str()};
const Command kLowpass{"lowpass", "[--mask 3|5] [--border B] IN OUT", "box mean of 3x3 or 5x5 pixels", runLowpass,
                       kBorders};
const Command kGauss{"gauss", "[--size K] [--sigma S] [--border B] IN OUT", "Gaussian blur of K x K taps", runGauss,
                     kGaussHelp.c_str()};

int runSobel(const Args& args) {
    Options probe;
    if (parse(args, probe).empty()) {
        Fixed16s fn;
        Query16s q;
        if (!sobelByDir(probe.dir, fn, q)) return usageError(kSobel, "--dir takes h, v, negv, hh, vv or cross");
    }
    return runOn(kSobel, args, [](const Options& o, const Picture& g, Outputs& out, const std::string& path) {
        Fixed16s fn = nullptr;
        Query16s q = nullptr;
        if (!sobelByDir(o.dir, fn, q)) return static_cast<RvpStatus>(rvpStsBadArgErr);
        Result r;
        const RvpStatus st = derivative(fn, q, g, o.mask, o.border, r);
        if (st == rvpStsNoErr) out.add(path, r);
        return st;
    });
}

int runScharr(const Args& args) {
    Options probe;
    if (parse(args, probe).empty() && probe.dir != "h" && probe.dir != "v")
        return usageError(kScharr, "--dir takes h or v");
    return runOn(kScharr, args, [](const Options& o, const Picture& g, Outputs& out, const std::string& path) {
        Result r;
        const RvpStatus st =
            o.dir == "h" ? derivative(scharrAdapter<rvpiFilterScharrHorizBorder_8u16s_C1R>,
                                      scharrQuery<rvpiFilterScharrHorizGetBufferSize_8u16s_C1R>, g, 3, o.border, r)
                         : derivative(scharrAdapter<rvpiFilterScharrVertBorder_8u16s_C1R>,
                                      scharrQuery<rvpiFilterScharrVertGetBufferSize_8u16s_C1R>, g, 3, o.border, r);
        if (st == rvpStsNoErr) out.add(path, r);
        return st;
    });
}

int runLaplacian(const Args& args) {
    return runOn(kLaplacian, args, [](const Options& o, const Picture& g, Outputs& out, const std::string& path) {
        Result r;
        const RvpStatus st = derivative(rvpiFilterLaplacianBorder_8u16s_C1R, rvpiFilterLaplacianGetBufferSize_8u16s_C1R,
                                        g, o.mask, o.border, r);
        if (st == rvpStsNoErr) out.add(path, r);
        return st;
    });
}

int runLowpass(const Args& args) {
    return runOn(kLowpass, args, [](const Options& o, const Picture& g, Outputs& out, const std::string& path) {
        Picture p;
        const RvpStatus st = lowpass(g, o.mask, o.border, p);
        if (st == rvpStsNoErr) out.add(path, p);
        return st;
    });
}

int runGauss(const Args& args) {
    return runOn(kGauss, args, [](const Options& o, const Picture& g, Outputs& out, const std::string& path) {
        Result r;
        const RvpStatus st = gauss(g, o.size, o.sigma, o.border, r);
        if (st == rvpStsNoErr) storeRounded(out, path, r);
        return st;
    });
}

bool demo(const DemoContext& ctx, std::string& what) {
    Result sobel, lap, blur;
    Picture low;
    if (derivative(rvpiFilterSobelHorizBorder_8u16s_C1R, rvpiFilterSobelHorizGetBufferSize_8u16s_C1R, ctx.gray, 3,
                   rvpBorderRepl, sobel) != rvpStsNoErr ||
        derivative(rvpiFilterLaplacianBorder_8u16s_C1R, rvpiFilterLaplacianGetBufferSize_8u16s_C1R, ctx.gray, 5,
                   rvpBorderMirror, lap) != rvpStsNoErr ||
        lowpass(ctx.gray, 5, rvpBorderRepl, low) != rvpStsNoErr ||
        gauss(ctx.gray, 7, 0, rvpBorderMirrorR, blur) != rvpStsNoErr)
        return false;
    what = "sobel.png, laplacian.png (stretched), lowpass.png, gauss.png (derivatives and smoothing of the scene)";
    return ctx.save("sobel.png", preview(sobel)) && ctx.save("laplacian.png", preview(lap)) &&
           ctx.save("lowpass.png", low) && ctx.save("gauss.png", visualise(std::vector<float>(blur.values.begin(),
                                                                                              blur.values.end()).data(),
                                                                            blur.width, blur.height, blur.width, 0, 255));
}

const RegisterCommand kRegSobel(kSobel);
const RegisterCommand kRegScharr(kScharr);
const RegisterCommand kRegLaplacian(kLaplacian);
const RegisterCommand kRegLowpass(kLowpass);
const RegisterCommand kRegGauss(kGauss);
const RegisterDemoStep kStep({30, "filters", demo});

}  // namespace
}  // namespace tool
