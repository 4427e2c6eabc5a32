// fill and label: a flood fill of an 8- or 16-bit gray or RGB picture from
// one seed (exact value, a range around the seed, or a gradient limit
// between neighbours), written at the input's depth; and the labelling of
// the nonzero (or above-threshold) pixels of a picture, drawn in distinct
// colours with the count printed, or written as 16-bit labels.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "commands.h"

namespace tool {
namespace {

// "A,B" or "A" (then B = A) into two integers.
bool pair(const std::string& s, long& a, long& b) {
    char* end = nullptr;
    a = std::strtol(s.c_str(), &end, 10);
    if (end == s.c_str()) return false;
    if (*end == 0) {
        b = a;
        return true;
    }
    if (*end != ',') return false;
    const char* rest = end + 1;
    b = std::strtol(rest, &end, 10);
    return end != rest && *end == 0;
}

struct FillOptions {
    long sx = -1, sy = -1, lo = 0, hi = 0;
    int rule = 0;  // 0 exact, 1 range, 2 gradient
    bool eight = false;
    long value = -1;
    std::vector<std::string> files;
};

std::string parseFill(const Args& args, FillOptions& o) {
    bool seed = false;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a.rfind("--", 0) != 0) { o.files.push_back(a); continue; }
        if (a == "--8") { o.eight = true; continue; }
        if (i + 1 >= args.size()) return "option " + a + " needs a value";
        const std::string& v = args[++i];
        long x = 0, y = 0;
        if (a == "--seed") {
            if (!pair(v, x, y) || v.find(',') == std::string::npos) return "--seed takes X,Y";
            o.sx = x, o.sy = y, seed = true;
        } else if (a == "--range" || a == "--grad") {
            if (o.rule) return "--range and --grad exclude each other";
            if (!pair(v, x, y) || x < 0 || y < 0 || x > 65535 || y > 65535) return a + " takes LO,HI from 0 to 65535";
            o.rule = a == "--range" ? 1 : 2, o.lo = x, o.hi = y;
        } else if (a == "--value") {
            if (!pair(v, x, y) || x != y || x < 0 || x > 65535) return "--value takes 0 to 65535";
            o.value = x;
        } else {
            return "unknown option " + a;
        }
    }
    if (!seed) return "--seed X,Y is required";
    if (o.files.size() != 2) return "expected IN and OUT";
    return "";
}

// The fill entries of one sample type: [connectivity] for the exact rule,
// [range 0, gradient 1][connectivity] for the others.
template <class T> struct Entries;
#define RVPCV_FILL_ENTRIES(S, T)                                                                                 \
    template <> struct Entries<T> {                                                                              \
        decltype(&rvpiFloodFill_4Con_##S##_C1IR) e1[2] = {rvpiFloodFill_4Con_##S##_C1IR,                         \
                                                          rvpiFloodFill_8Con_##S##_C1IR};                        \
        decltype(&rvpiFloodFill_4Con_##S##_C3IR) e3[2] = {rvpiFloodFill_4Con_##S##_C3IR,                         \
                                                          rvpiFloodFill_8Con_##S##_C3IR};                        \
        decltype(&rvpiFloodFill_Range4Con_##S##_C1IR) d1[2][2] = {                                               \
            {rvpiFloodFill_Range4Con_##S##_C1IR, rvpiFloodFill_Range8Con_##S##_C1IR},                            \
            {rvpiFloodFill_Grad4Con_##S##_C1IR, rvpiFloodFill_Grad8Con_##S##_C1IR}};                             \
        decltype(&rvpiFloodFill_Range4Con_##S##_C3IR) d3[2][2] = {                                               \
            {rvpiFloodFill_Range4Con_##S##_C3IR, rvpiFloodFill_Range8Con_##S##_C3IR},                            \
            {rvpiFloodFill_Grad4Con_##S##_C3IR, rvpiFloodFill_Grad8Con_##S##_C3IR}};                             \
    };
RVPCV_FILL_ENTRIES(8u, Rvp8u)
RVPCV_FILL_ENTRIES(16u, Rvp16u)

template <class T>
RvpStatus fillAs(Picture& pic, const FillOptions& o, RvpiConnectedComp& r) {
    const Entries<T> e;
    constexpr bool b8 = sizeof(T) == 1;
    const RvpiSize roi{pic.width, pic.height};
    const RvpiPoint seed{static_cast<int>(o.sx), static_cast<int>(o.sy)};
    int bytes = 0;
    RvpStatus st = o.rule == 2 ? rvpiFloodFillGetSize_Grad(roi, &bytes) : rvpiFloodFillGetSize(roi, &bytes);
    if (st != rvpStsNoErr) return st;
    std::vector<Rvp8u> buf(static_cast<size_t>(bytes));
    const long top = b8 ? 255 : 65535;
    const T v = static_cast<T>(o.value < 0 ? top : o.value > top ? top : o.value);
    const T lo = static_cast<T>(o.lo > top ? top : o.lo), hi = static_cast<T>(o.hi > top ? top : o.hi);
    const T v3[3] = {v, v, v}, lo3[3] = {lo, lo, lo}, hi3[3] = {hi, hi, hi};
    T* p = reinterpret_cast<T*>(pic.data.data());
    const int k = o.eight ? 1 : 0;
    if (o.rule == 0)
        return pic.channels == 3 ? e.e3[k](p, pic.rowBytes(), roi, seed, v3, &r, buf.data())
                                 : e.e1[k](p, pic.rowBytes(), roi, seed, v, &r, buf.data());
    return pic.channels == 3 ? e.d3[o.rule - 1][k](p, pic.rowBytes(), roi, seed, v3, lo3, hi3, &r, buf.data())
                             : e.d1[o.rule - 1][k](p, pic.rowBytes(), roi, seed, v, lo, hi, &r, buf.data());
}

int cmdFill(const Args& args);
const Command kFill{"fill", "IN OUT --seed X,Y [--range LO,HI | --grad LO,HI] [--8] [--value V]",
                    "flood fill from a seed (exact, range or gradient rule)", cmdFill,
    "IN: 8- or 16-bit gray or RGB; OUT keeps its depth and channels.\n"
    "--seed X,Y      the seed pixel (required)\n"
    "--range LO,HI   fill pixels within seed - LO .. seed + HI (each channel)\n"
    "--grad LO,HI    fill pixels within -LO .. +HI of an already filled neighbour\n"
    "                (default: pixels equal to the seed)\n"
    "--8             8-connected (default 4)\n"
    "--value V       the new value of every channel (default: the largest sample)\n"
    "Prints the region's area and bounding box. A seed already holding the\n"
    "new value is an error for the exact and range rules: nothing to fill.\n"};

int cmdFill(const Args& args) {
    FillOptions o;
    const std::string err = parseFill(args, o);
    if (!err.empty()) return usageError(kFill, err);
    if (const std::string bad = checkPictureName(o.files[1]); !bad.empty()) return usageError(kFill, bad);
    Picture pic;
    if (!load(o.files[0], pic)) return 1;
    if (pic.channels != 1 && pic.channels != 3) return fail(o.files[0] + ": gray or RGB pictures only");
    if (o.sx >= pic.width || o.sy >= pic.height || o.sx < 0 || o.sy < 0)
        return fail("the seed lies outside the picture");
    RvpiConnectedComp r{};
    r.area = -1;
    const RvpStatus st = pic.depth == 8 ? fillAs<Rvp8u>(pic, o, r) : fillAs<Rvp16u>(pic, o, r);
    if (st != rvpStsNoErr) return fail(std::string("fill: ") + statusText(st));
    if (r.area < 0) return fail("fill: the seed already holds the new value");
    if (!store(o.files[1], pic)) return 1;
    std::printf("area %.0f, box %d,%d %dx%d\n", r.area, r.rect.x, r.rect.y, r.rect.width, r.rect.height);
    return 0;
}
const RegisterCommand kRegisterFill(kFill);

// Distinct colours for labels: a hash of the label into hue-like channels.
Picture drawLabels(const std::vector<Rvp16u>& lab, int w, int h) {
    Picture out = makePicture(w, h, 3, 8);
    for (size_t i = 0; i < lab.size(); ++i) {
        const uint32_t l = lab[i], hsh = l * 2654435761u;
        for (int c = 0; c < 3; ++c)
            out.data[3 * i + c] = l == 0 ? 0 : static_cast<Rvp8u>(64 + ((hsh >> (8 * c + 5)) % 192));
    }
    return out;
}

// Labels the pixels of gray8 above `threshold` (4 or 8 neighbours); returns
// the status, the labels and the count.
RvpStatus labelPicture(const Picture& gray8, int threshold, bool eight, std::vector<Rvp16u>& lab, int& count) {
    const RvpiSize roi{gray8.width, gray8.height};
    lab.assign(gray8.data.size(), 0);
    for (size_t i = 0; i < lab.size(); ++i) lab[i] = gray8.data[i] > threshold ? 1 : 0;
    int bytes = 0;
    RvpStatus st = rvpiLabelMarkersGetBufferSize_16u_C1R(roi, &bytes);
    if (st != rvpStsNoErr) return st;
    std::vector<Rvp8u> buf(static_cast<size_t>(bytes));
    return rvpiLabelMarkers_16u_C1IR(lab.data(), 2 * roi.width, roi, 1, 65534, eight ? 0 : 1, &count, buf.data());
}

int cmdLabel(const Args& args);
const Command kLabel{"label", "IN OUT [--8] [--threshold T] [--labels]",
                     "labels the connected components of the nonzero pixels", cmdLabel,
    "IN: a picture, taken as 8-bit gray.\n"
    "--threshold T   pixels above T are markers (default 0: every nonzero pixel)\n"
    "--8             8-connected components (default 4)\n"
    "--labels        write the 16-bit labels (1..65534, repeating) instead of colours\n"
    "Prints the number of components.\n"};

int cmdLabel(const Args& args) {
    std::vector<std::string> files;
    bool eight = false, labels = false;
    long threshold = 0;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a == "--8") eight = true;
        else if (a == "--labels") labels = true;
        else if (a == "--threshold") {
            long hi = 0;
            if (i + 1 >= args.size() || !pair(args[++i], threshold, hi) || threshold != hi || threshold < 0 ||
                threshold > 255)
                return usageError(kLabel, "--threshold takes 0 to 255");
        } else if (a.rfind("--", 0) == 0) return usageError(kLabel, "unknown option " + a);
        else files.push_back(a);
    }
    if (files.size() != 2) return usageError(kLabel, "expected IN and OUT");
    if (const std::string bad = checkPictureName(files[1]); !bad.empty()) return usageError(kLabel, bad);
    Picture pic;
    if (!load(files[0], pic)) return 1;
    const Picture gray = toGray8(pic);
    std::vector<Rvp16u> lab;
    int count = 0;
    const RvpStatus st = labelPicture(gray, static_cast<int>(threshold), eight, lab, count);
    if (st != rvpStsNoErr) return fail(std::string("label: ") + statusText(st));
    Picture out;
    if (labels) {
        out = makePicture(gray.width, gray.height, 1, 16);
        std::memcpy(out.data.data(), lab.data(), lab.size() * sizeof(Rvp16u));
    } else {
        out = drawLabels(lab, gray.width, gray.height);
    }
    if (!store(files[1], out)) return 1;
    std::printf("%d component%s\n", count, count == 1 ? "" : "s");
    return 0;
}
const RegisterCommand kRegisterLabel(kLabel);

// Demo: the background of the scene flood-filled from a corner by the
// gradient rule, and the bright parts of the scene labelled.
bool demo(const DemoContext& ctx, std::string& what) {
    Picture filled = ctx.gray;
    FillOptions o;
    o.sx = 0, o.sy = 0, o.rule = 2, o.lo = 3, o.hi = 3, o.eight = true, o.value = 255;
    RvpiConnectedComp r{};
    if (fillAs<Rvp8u>(filled, o, r) != rvpStsNoErr) return false;
    std::vector<Rvp16u> lab;
    int count = 0;
    if (labelPicture(ctx.gray, 160, true, lab, count) != rvpStsNoErr) return false;
    if (!ctx.save("fill.png", filled) || !ctx.save("label.png", drawLabels(lab, ctx.gray.width, ctx.gray.height)))
        return false;
    char text[160];
    std::snprintf(text, sizeof text, "fill.png (gradient fill from a corner, %.0f pixels), label.png (%d components)",
                  r.area, count);
    what = text;
    return true;
}
const RegisterDemoStep kDemo({82, "fill", demo});

}  // namespace
}  // namespace tool
