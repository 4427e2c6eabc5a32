// track: follows corner points from picture A to picture B by pyramidal
// optical flow. Points are the strongest local maxima of the corner strength
// (smaller eigenvalue of the gradient tensor), at least 8 pixels apart; the
// pyramids halve each level with the 1 4 6 4 1 kernel. Writes A with the motion drawn
// (green line to the new position, red dot for a lost point) and with --csv
// prints one line per point.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "commands.h"

namespace tool {
namespace {

const char* const kUsage = "A B OUT [--points N] [--window W] [--levels L] [--csv]";

struct Options {
    int points = 500, window = 21, levels = 3;
    bool csv = false;
};

// The strongest local maxima of the corner strength, greedily kept at least
// 8 pixels apart.
RvpStatus corners(const Picture& gray, int count, std::vector<RvpiPoint32f>& out) {
    const RvpiSize roi{gray.width, gray.height};
    int bytes = 0;
    if (RvpStatus st = rvpiMinEigenValGetBufferSize_8u32f_C1R(roi, 3, 3, &bytes)) return st;
    std::vector<Rvp8u> scratch(static_cast<size_t>(bytes));
    std::vector<Rvp32f> s(static_cast<size_t>(gray.width) * gray.height);
    if (RvpStatus st = rvpiMinEigenVal_8u32f_C1R(gray.data.data(), gray.width, s.data(), 4 * gray.width, roi, 0, 3, 3,
                                                 scratch.data()))
        return st;
    std::vector<std::pair<float, int>> peaks;
    const int w = gray.width, h = gray.height;
    // Windows whose strength is below 1% of the strongest hold noise, not corners.
    const float floor = 0.01f * *std::max_element(s.begin(), s.end());
    for (int y = 1; y + 1 < h; ++y)
        for (int x = 1; x + 1 < w; ++x) {
            const float v = s[static_cast<size_t>(y) * w + x];
            bool peak = v > 0 && v >= floor;
            for (int dy = -1; dy <= 1 && peak; ++dy)
                for (int dx = -1; dx <= 1; ++dx) peak &= (dx == 0 && dy == 0) || v >= s[static_cast<size_t>(y + dy) * w + x + dx];
            if (peak) peaks.push_back({v, y * w + x});
        }
    std::sort(peaks.begin(), peaks.end(), [](const auto& a, const auto& b) { return a.first > b.first; });
    const int cell = 8;
    const int gw = (w + cell - 1) / cell, gh = (h + cell - 1) / cell;
    std::vector<std::vector<RvpiPoint32f>> grid(static_cast<size_t>(gw) * gh);
    for (const auto& [v, i] : peaks) {
        if (static_cast<int>(out.size()) >= count) break;
        const float x = static_cast<float>(i % w), y = static_cast<float>(i / w);
        const int cx = static_cast<int>(x) / cell, cy = static_cast<int>(y) / cell;
        bool near = false;
        for (int gy = std::max(0, cy - 1); gy <= std::min(gh - 1, cy + 1) && !near; ++gy)
            for (int gx = std::max(0, cx - 1); gx <= std::min(gw - 1, cx + 1) && !near; ++gx)
                for (const RvpiPoint32f& q : grid[static_cast<size_t>(gy) * gw + gx])
                    near |= (q.x - x) * (q.x - x) + (q.y - y) * (q.y - y) < cell * cell;
        if (near) continue;
        out.push_back({x, y});
        grid[static_cast<size_t>(cy) * gw + cx].push_back({x, y});
    }
    return rvpStsNoErr;
}

struct Flow {
    std::vector<RvpiPoint32f> from, to;
    std::vector<Rvp8s> status;
    std::vector<Rvp32f> error;
};

RvpStatus track(const Picture& a, const Picture& b, const Options& o, Flow& f) {
    if (RvpStatus st = corners(a, o.points, f.from)) return st;
    f.to = f.from;
    f.status.assign(f.from.size(), 0);
    f.error.assign(f.from.size(), 0);
    if (f.from.empty()) return rvpStsNoErr;
    std::vector<Picture> pa, pb;
    if (o.levels > 0) {
        if (RvpStatus st = binomialPyramid(a, o.levels, 2.0f, pa)) return st;
        if (RvpStatus st = binomialPyramid(b, o.levels, 2.0f, pb)) return st;
    } else {
        pa = {a}, pb = {b};
    }
    const int maxLev = static_cast<int>(pa.size()) - 1;
    std::vector<void*> ia, ib;
    std::vector<RvpiSize> rois;
    std::vector<Rvp64f> rates;
    std::vector<int> steps;
    for (int l = 0; l <= maxLev; ++l) {
        ia.push_back(const_cast<uint8_t*>(pa[l].data.data()));
        ib.push_back(const_cast<uint8_t*>(pb[l].data.data()));
        rois.push_back({pa[l].width, pa[l].height});
        rates.push_back(std::ldexp(1.0, -l));
        steps.push_back(pa[l].width);
    }
    const RvpiPyramid ra{ia.data(), rois.data(), rates.data(), steps.data(), nullptr, maxLev};
    const RvpiPyramid rb{ib.data(), rois.data(), rates.data(), steps.data(), nullptr, maxLev};
    RvpiOptFlowPyrLKState* st = nullptr;
    RvpStatus s = rvpiOpticalFlowPyrLKInitAlloc_8u_C1R(&st, rois[0], o.window, 0);
    if (s != rvpStsNoErr) return s;
    s = rvpiOpticalFlowPyrLK_8u_C1R(&ra, &rb, f.from.data(), f.to.data(), f.status.data(), f.error.data(),
                                    static_cast<int>(f.from.size()), o.window, maxLev, 30, 0.01f, st);
    rvpiOpticalFlowPyrLKFree_8u_C1R(st);
    return s;
}

void plot(Picture& rgb, int x, int y, uint8_t r, uint8_t g, uint8_t b) {
    if (x < 0 || y < 0 || x >= rgb.width || y >= rgb.height) return;
    uint8_t* p = rgb.row(y) + 3 * x;
    p[0] = r, p[1] = g, p[2] = b;
}

// A with the vectors drawn: green lines for tracked points, red dots for lost ones.
Picture drawing(const Picture& gray, const Flow& f) {
    Picture rgb = makePicture(gray.width, gray.height, 3, 8);
    for (size_t i = 0; i < gray.data.size(); ++i) rgb.data[3 * i] = rgb.data[3 * i + 1] = rgb.data[3 * i + 2] = gray.data[i];
    for (size_t i = 0; i < f.from.size(); ++i) {
        const float x0 = f.from[i].x, y0 = f.from[i].y;
        if (f.status[i] != 0) {
            for (int d = -1; d <= 1; ++d) plot(rgb, static_cast<int>(x0) + d, static_cast<int>(y0), 255, 0, 0), plot(rgb, static_cast<int>(x0), static_cast<int>(y0) + d, 255, 0, 0);
            continue;
        }
        const float dx = f.to[i].x - x0, dy = f.to[i].y - y0;
        const int n = static_cast<int>(std::ceil(std::max(std::fabs(dx), std::fabs(dy)))) + 1;
        for (int k = 0; k <= n && n < 4096; ++k)
            plot(rgb, static_cast<int>(std::lround(x0 + dx * k / n)), static_cast<int>(std::lround(y0 + dy * k / n)), 0, 255, 0);
    }
    return rgb;
}

int run(const Args& args);
const Command kCommand{"track", kUsage, "follow corner points from one picture to the next (pyramidal optical flow)", run,
    "--points N   corner points to follow (default 500), the strongest, 8 pixels apart\n"
    "--window W   side of the tracking window in pixels (default 21)\n"
    "--levels L   pyramid levels above the picture, each half the size (default 3)\n"
    "--csv        print x,y,new x,new y,status,error per point (status 0: tracked, k: lost\n"
    "             at level k - 1)\n"
    "OUT: picture A with green lines to the new positions and red dots for lost points.\n"};

int run(const Args& args) {
    std::vector<std::string> files;
    Options o;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a == "--csv") {
            o.csv = true;
        } else if (a == "--points" || a == "--window" || a == "--levels") {
            char* end = nullptr;
            const long v = i + 1 < args.size() ? std::strtol(args[++i].c_str(), &end, 10) : -1;
            const long lo = a == "--levels" ? 0 : 1, hi = a == "--points" ? 100000 : a == "--window" ? 255 : 10;
            if (!end || *end != 0 || v < lo || v > hi)
                return usageError(kCommand, a + " takes a whole number from " + std::to_string(lo) + " to " + std::to_string(hi));
            (a == "--points" ? o.points : a == "--window" ? o.window : o.levels) = static_cast<int>(v);
        } else if (a.rfind("--", 0) == 0) {
            return usageError(kCommand, "unknown option " + a);
        } else {
            files.push_back(a);
        }
    }
    if (files.size() != 3) return usage(kCommand);
    if (const std::string e = checkPictureName(files[2]); !e.empty()) return usageError(kCommand, e);
    Picture a, b;
    if (!load(files[0], a) || !load(files[1], b)) return 1;
    const Picture ga = toGray8(a), gb = toGray8(b);
    if (ga.width != gb.width || ga.height != gb.height) return fail("A and B differ in size");
    Flow f;
    if (RvpStatus st = track(ga, gb, o, f)) return fail("track failed: " + statusText(st));
    if (!store(files[2], drawing(ga, f))) return 1;
    if (o.csv) {
        std::printf("x,y,nx,ny,status,error\n");
        for (size_t i = 0; i < f.from.size(); ++i)
            std::printf("%.3f,%.3f,%.3f,%.3f,%d,%.3f\n", f.from[i].x, f.from[i].y, f.to[i].x, f.to[i].y, f.status[i], f.error[i]);
    }
    return 0;
}

// Demo: the scene and the same scene shifted by (2.6, -1.3) pixels.
bool demo(const DemoContext& ctx, std::string& what) {
    const Picture& a = ctx.gray;
    Picture b = makePicture(a.width, a.height, 1, 8);
    const double sx = 2.6, sy = -1.3;
    for (int y = 0; y < a.height; ++y)
        for (int x = 0; x < a.width; ++x) {
            const double fx = std::clamp(x - sx, 0.0, a.width - 1.0), fy = std::clamp(y - sy, 0.0, a.height - 1.0);
            const int x0 = std::min(static_cast<int>(fx), a.width - 2 < 0 ? 0 : a.width - 2);
            const int y0 = std::min(static_cast<int>(fy), a.height - 2 < 0 ? 0 : a.height - 2);
            const double u = fx - x0, v = fy - y0;
            const auto at = [&](int xx, int yy) { return static_cast<double>(a.data[static_cast<size_t>(std::min(yy, a.height - 1)) * a.width + std::min(xx, a.width - 1)]); };
            b.data[static_cast<size_t>(y) * a.width + x] = static_cast<uint8_t>(std::lround(
                (1 - v) * ((1 - u) * at(x0, y0) + u * at(x0 + 1, y0)) + v * ((1 - u) * at(x0, y0 + 1) + u * at(x0 + 1, y0 + 1))));
        }
    Flow f;
    if (track(a, b, Options{}, f) != rvpStsNoErr) return false;
    size_t good = 0;
    for (Rvp8s s : f.status) good += s == 0;
    what = "track.png (" + std::to_string(good) + " of " + std::to_string(f.from.size()) +
           " corner points followed across a shift of (2.6, -1.3))";
    return ctx.save("track.png", drawing(a, f));
}

const RegisterCommand kReg(kCommand);
const RegisterDemoStep kStep({88, "track", demo});

}  // namespace
}  // namespace tool
