// integral: the summed-area table of an image and the standard deviation
// under a sliding square read back from it: float results (.npy/.pfm, or
// stretched pictures with --preview), written together or not at all.
#include <cstdio>
#include <cstdlib>

#include "commands.h"

namespace tool {
namespace {

// Table and deviation pictures of a gray image; side is the square's side.
RvpStatus integralResults(const Picture& gray, int side, Result& table, Result& dev) {
    const int w = gray.width, h = gray.height;
    std::vector<Rvp32f> sum(static_cast<size_t>(w + 1) * (h + 1));
    std::vector<Rvp64f> sqr(sum.size());
    RvpStatus st = rvpiSqrIntegral_8u32f64f_C1R(gray.data.data(), gray.rowBytes(), sum.data(), (w + 1) * 4, sqr.data(),
                                                (w + 1) * 8, RvpiSize{w, h}, 0.0f, 0.0);
    if (st != rvpStsNoErr) return st;
    const RvpiSize out{w + 1 - side, h + 1 - side};
    std::vector<Rvp32f> d(static_cast<size_t>(out.width) * out.height);
    st = rvpiRectStdDev_32f_C1R(sum.data(), (w + 1) * 4, sqr.data(), (w + 1) * 8, d.data(), out.width * 4, out,
                                RvpiRect{0, 0, side, side});
    if (st != rvpStsNoErr) return st;
    table = Result::of(Result::Float32, sum.data(), w + 1, h + 1, w + 1);
    dev = Result::of(Result::Float32, d.data(), out.width, out.height, out.width);
    return rvpStsNoErr;
}

int run(const Args& args);
const Command kCommand{"integral", "IN TABLE_OUT STDDEV_OUT [SIDE]",
                       "summed-area table and the deviation under a SIDE x SIDE square (default 15)", run,
                       "TABLE_OUT: the (W + 1) x (H + 1) table of sums in single precision; STDDEV_OUT: the standard "
                       "deviation of the pixels under the square at each position. Both .npy or .pfm (floats), or "
                       "with --preview 8-bit pictures from the minimum to the maximum; nothing is written unless both "
                       "can be."};

int run(const Args& args) {
    if (args.size() != 3 && args.size() != 4) return usage(kCommand);
    int side = 15;
    if (args.size() == 4) {
        char* end = nullptr;
        const long v = std::strtol(args[3].c_str(), &end, 10);
        if (end == args[3].c_str() || *end != '\0' || v < 1 || v > 4096) {
            std::fprintf(stderr, "rvpcv: SIDE must be a whole number from 1 to 4096, not '%s'\n", args[3].c_str());
            return usage(kCommand);
        }
        side = static_cast<int>(v);
    }
    for (int k = 1; k <= 2; ++k)
        if (const std::string e = checkResultName(args[k], Result::Float32); !e.empty()) return usageError(kCommand, e);
    Picture in;
    if (!load(args[0], in)) return 1;
    const Picture gray = toGray8(in);
    if (gray.width < side || gray.height < side)
        return fail("'" + args[0] + "' (" + std::to_string(gray.width) + "x" + std::to_string(gray.height) +
                    ") is smaller than the " + std::to_string(side) + "x" + std::to_string(side) + " square");
    Result table, dev;
    const RvpStatus st = integralResults(gray, side, table, dev);
    if (st != rvpStsNoErr) return fail("integral failed: " + statusText(st));
    Outputs o;
    o.add(args[1], table);
    o.add(args[2], dev);
    return o.commit() ? 0 : 1;
}

bool demo(const DemoContext& ctx, std::string& what) {
    Result table, dev;
    if (integralResults(ctx.gray, 15, table, dev) != rvpStsNoErr) return false;
    what = "integral.png (summed-area table), rectstddev.png (deviation under a 15x15 square), stretched";
    return ctx.save("integral.png", preview(table)) && ctx.save("rectstddev.png", preview(dev));
}

const RegisterCommand kReg(kCommand);
const RegisterDemoStep kStep({60, "integral", demo});

}  // namespace
}  // namespace tool
