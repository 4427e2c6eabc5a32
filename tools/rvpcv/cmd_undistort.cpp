// undistort: removes radial (and, with --p1/--p2, tangential) lens
// distortion from an 8- or 16-bit gray or colour picture. The radial model
// runs in the library in one call; the tangential one builds the library's
// coordinate maps and samples them bilinearly here. Pixels whose source
// point falls outside the picture come out black.
#include <cmath>
#include <cstdlib>

#include "commands.h"

namespace tool {
namespace {

struct Lens {
    float fx = 0, fy = 0, cx = NAN, cy = NAN, k1 = 0, k2 = 0, p1 = 0, p2 = 0;
};

const char* const kUsage = "IN OUT --fx F --fy F [--cx X --cy Y] --k1 K --k2 K [--p1 P --p2 P]";

std::string parse(const Args& args, Lens& l, std::vector<std::string>& files) {
    struct Opt { const char* name; float* value; } opts[] = {{"--fx", &l.fx}, {"--fy", &l.fy}, {"--cx", &l.cx},
                                                            {"--cy", &l.cy}, {"--k1", &l.k1}, {"--k2", &l.k2},
                                                            {"--p1", &l.p1}, {"--p2", &l.p2}};
    for (size_t i = 0; i < args.size(); ++i) {
        if (args[i].rfind("--", 0) != 0) { files.push_back(args[i]); continue; }
        Opt* o = nullptr;
        for (Opt& c : opts)
            if (args[i] == c.name) o = &c;
        if (!o) return "unknown option " + args[i];
        if (i + 1 >= args.size()) return "option " + args[i] + " needs a value";
        char* end = nullptr;
        *o->value = std::strtof(args[++i].c_str(), &end);
        if (*end || !std::isfinite(*o->value)) return std::string(o->name) + " takes a number, not '" + args[i] + "'";
    }
    if (files.size() != 2) return "expected IN and OUT";
    if (l.fx == 0 || l.fy == 0) return "--fx and --fy are required and not zero";
    return "";
}

template <class T>
RvpStatus radial(const Picture& in, Picture& out, const Lens& l, std::vector<Rvp8u>& buf) {
    const RvpiSize roi{in.width, in.height};
    const auto* s = reinterpret_cast<const T*>(in.data.data());
    auto* d = reinterpret_cast<T*>(out.data.data());
    const bool c3 = in.channels == 3;
    if constexpr (sizeof(T) == 1)
        return (c3 ? rvpiUndistortRadial_8u_C3R : rvpiUndistortRadial_8u_C1R)(
            s, in.rowBytes(), d, out.rowBytes(), roi, l.fx, l.fy, l.cx, l.cy, l.k1, l.k2, buf.data());
    else
        return (c3 ? rvpiUndistortRadial_16u_C3R : rvpiUndistortRadial_16u_C1R)(
            s, in.rowBytes(), d, out.rowBytes(), roi, l.fx, l.fy, l.cx, l.cy, l.k1, l.k2, buf.data());
}

// Bilinear sampling of the maps, with the library's inside rule.
template <class T> void remap(const Picture& in, Picture& out, const std::vector<float>& mx, const std::vector<float>& my) {
    const int w = in.width, h = in.height, c = in.channels;
    const auto* s = reinterpret_cast<const T*>(in.data.data());
    auto* d = reinterpret_cast<T*>(out.data.data());
    for (size_t i = 0; i < mx.size(); ++i) {
        const float u = mx[i], v = my[i];
        if (!(u >= 0 && v >= 0 && u < w - 1 && v < h - 1)) continue;
        const int iu = static_cast<int>(u), iv = static_cast<int>(v);
        const float fu = u - iu, fv = v - iv;
        const T* p = s + (static_cast<size_t>(iv) * w + iu) * c;
        for (int k = 0; k < c; ++k) {
            const float r = (p[k] * (1 - fu) + p[c + k] * fu) * (1 - fv) +
                            (p[w * c + k] * (1 - fu) + p[w * c + c + k] * fu) * fv;
            d[i * c + k] = static_cast<T>(sizeof(T) == 4 ? r : r + 0.5f);
        }
    }
}

RvpStatus run(const Picture& in, Picture& out, Lens l) {
    if (std::isnan(l.cx)) l.cx = (in.width - 1) / 2.0f;
    if (std::isnan(l.cy)) l.cy = (in.height - 1) / 2.0f;
    out = makePicture(in.width, in.height, in.channels, in.depth);  // black where nothing maps
    const RvpiSize roi{in.width, in.height};
    int bytes = 0;
    if (RvpStatus st = rvpiUndistortGetSize(roi, &bytes)) return st;
    std::vector<Rvp8u> buf(bytes);
    if (l.p1 == 0 && l.p2 == 0)
        return in.depth == 8 ? radial<Rvp8u>(in, out, l, buf) : radial<Rvp16u>(in, out, l, buf);
    std::vector<float> mx(static_cast<size_t>(in.width) * in.height), my(mx.size());
    if (RvpStatus st = rvpiCreateMapCameraUndistort_32f_C1R(mx.data(), in.width * 4, my.data(), in.width * 4, roi, l.fx,
                                                            l.fy, l.cx, l.cy, l.k1, l.k2, l.p1, l.p2, buf.data()))
        return st;
    if (in.depth == 8) remap<Rvp8u>(in, out, mx, my);
    else remap<Rvp16u>(in, out, mx, my);
    return rvpStsNoErr;
}

int cmdUndistort(const Args& args);
const Command kUndistort{"undistort", kUsage, "remove radial (and tangential) lens distortion", cmdUndistort,
    "--fx --fy   focal lengths in pixels (required); --cx --cy the principal point\n"
    "            (default: the picture's centre)\n"
    "--k1 --k2   radial coefficients; --p1 --p2 tangential ones (default 0)\n"
    "IN: 8- or 16-bit, gray or RGB. Points that fall outside the picture come out black.\n"};

int cmdUndistort(const Args& args) {
    Lens l;
    std::vector<std::string> files;
    const std::string err = parse(args, l, files);
    if (!err.empty()) {
        fail(err);
        return usage(kUndistort);
    }
    Picture in, out;
    if (!load(files[0], in)) return 1;
    if (in.channels != 1 && in.channels != 3) return fail("undistort takes gray or RGB pictures");
    if (RvpStatus st = run(in, out, l)) return fail("undistort: " + statusText(st));
    return store(files[1], out) ? 0 : 1;
}

const RegisterCommand kRegister(kUndistort);

// Demo: the scene resampled by the correction of a barrel lens (straight
// edges of the scene bend outwards, as a barrel lens would have bent them in).
bool demo(const DemoContext& ctx, std::string& what) {
    const Picture& g = ctx.gray;
    Lens lens;
    lens.fx = lens.fy = 0.8f * g.width;
    lens.k1 = -0.3f;
    lens.k2 = 0.08f;
    Picture out;
    if (run(g, out, lens) != rvpStsNoErr || !ctx.save("undistort.png", out)) return false;
    what = "undistort.png (barrel coefficients -0.3, 0.08)";
    return true;
}
const RegisterDemoStep kDemo({90, "undistort", demo});

}  // namespace
}  // namespace tool
