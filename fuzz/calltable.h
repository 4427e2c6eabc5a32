// The library's functions as a table read from the public header: each
// parameter classified, an invoker, the size query of a scratch buffer; and
// a call builder that turns a stream of choices into arguments and buffers
// (each image with slack rows around it, filled with a pattern, so a write
// outside the described region is seen), runs the call and checks it.
#ifndef RVPCV_FUZZ_CALLTABLE_H
#define RVPCV_FUZZ_CALLTABLE_H

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "rvpcore.h"
#include "rvpcv.h"

namespace calltable {

enum Kind { kInt, kU8, kS8, kU16, kS16, kF32, kF64, kSize, kPoint, kRect, kPoint32f, kPolar, kData, kRows, kScratch, kStateIn, kStateOut };

struct Param {
    Kind kind;
    int elem;      // bytes of one sample (data and row pointers)
    int channels;  // samples a pixel
    int step;      // index of the step parameter, -1 for none
    int size;      // index of the size parameter that describes the image
    int isConst;
    int state;     // index into kStateTypes for states
    int real;      // float or double samples
    const char* name;
};

union Arg {
    void* p;
    int i;
    Rvp8u u8;
    Rvp8s s8;
    Rvp16u u16;
    Rvp16s s16;
    float f;
    double d;
    RvpiSize size;
    RvpiPoint pt;
    RvpiRect rect;
    RvpiPoint32f pt32f;
    RvpPointPolar polar;
};

struct Function {
    const char* name;
    int count;
    const Param* params;
    int (*call)(Arg*);
    int query;          // index of the scratch buffer's size query, -1 for none
    const int* queryArgs;  // for each query parameter but the last: the function's parameter (1000 + i: width of size i)
};

#include "calls.inc"

// Where the choices come from: the fuzzer's bytes, or a seeded generator.
class Source {
public:
    virtual ~Source() = default;
    virtual uint32_t next() = 0;
    virtual bool empty() const { return false; }
    uint32_t below(uint32_t n) { return n ? next() % n : 0; }
};

class ByteSource : public Source {
public:
    ByteSource(const uint8_t* d, size_t n) : d_(d), n_(n) {}
    uint32_t next() override {
        uint32_t v = 0;
        for (int k = 0; k < 4; ++k) v = (v << 8) | (i_ < n_ ? d_[i_++] : 0);
        return v;
    }
    bool empty() const override { return i_ >= n_; }

private:
    const uint8_t* d_;
    size_t n_, i_ = 0;
};

class SeededSource : public Source {
public:
    explicit SeededSource(uint64_t seed) : s_(seed * 0x9E3779B97F4A7C15ull + 1) {}
    uint32_t next() override {
        s_ ^= s_ << 13, s_ ^= s_ >> 7, s_ ^= s_ << 17;
        return static_cast<uint32_t>(s_ >> 16);
    }

private:
    uint64_t s_;
};

// Outputs larger than roiSize and its layout says: the summed-area tables,
// the six values a pixel of the eigen-decomposition.
struct Extent {
    const char* prefix;
    int columns, rows, channels, scale = 1;  // outputs of scale x the size, plus columns and rows
};
constexpr Extent kExtents[] = {{"rvpiIntegral_", 1, 1, 0},       {"rvpiSqrIntegral_", 1, 1, 0},
                               {"rvpiTiltedIntegral_", 2, 2, 0}, {"rvpiTiltedSqrIntegral_", 2, 2, 0},
                               {"rvpiEigenValsVecs_", 0, 0, 6},  {"rvpiPyrUp_Gauss5x5_", 0, 0, 0, 2}};

constexpr uint8_t kPattern = 0x5A;
constexpr int kSlackRows = 32;
constexpr int kSlackBytes = 256;
constexpr int64_t kMaxImageBytes = 4 << 20;
constexpr int kArrayBytes = 1 << 20;

// One buffer of a call: its bytes, where the argument points, and which
// bytes the call may write (the described rows).
struct Buffer {
    std::vector<uint8_t> mem;
    size_t origin = 0;
    int64_t step = 0, rowBytes = 0, rows = 0;
    bool image = false;
    bool mayWrite(size_t i) const {
        if (!image) return true;
        const int64_t off = static_cast<int64_t>(i) - static_cast<int64_t>(origin);
        if (off < 0 || step <= 0) return false;
        const int64_t y = off / step, x = off % step;
        return y < rows && x < rowBytes;
    }
};

// Arguments that describe valid images (plausible) or anything (hostile).
struct Mode {
    bool hostile;
    bool bigImages;  // plausible sizes past the threading thresholds
};

struct Outcome {
    bool called = false;
    int status = 0;
    std::string problem;  // empty when the checks passed
};

class Call {
public:
    Call(const Function& f, Source& src, Mode mode) : f_(f), src_(src), mode_(mode), args_(f.count), bufs_(f.count) {}

    // Draws scalars, then sizes the buffers; false when the arguments
    // describe more memory than the harness gives (the call is skipped).
    bool prepare(void* const* states) {
        for (int i = 0; i < f_.count; ++i) drawScalar(i);
        const std::string name = f_.name;
        bool arrays = false;
        for (int i = 0; i < f_.count; ++i)
            arrays |= f_.params[i].kind == kData && f_.params[i].isConst && f_.params[i].step < 0;
        for (int i = 0; i < f_.count; ++i) {
            const Param& p = f_.params[i];
            Arg& a = args_[i];
            // Array lengths and capacities describe the harness's arrays.
            const std::string pn = p.name;
            if (p.kind == kInt && (pn.find("ength") != std::string::npos || pn == "tableSize"))
                a.i = static_cast<int>(src_.below(64));
            if (p.kind == kInt && (pn.find("Count") != std::string::npos || pn == "numFeat")) a.i = static_cast<int>(src_.below(256));
            // Kernels of kernelSize weights are read from arrays of the harness's size.
            if (p.kind == kInt && pn == "kernelSize" && arrays && a.i > kArrayBytes / 8) return false;
            // Masks and kernels read from arrays of the harness's size.
            if (p.kind == kSize && arrays &&
                static_cast<int64_t>(a.size.width) * a.size.height > kArrayBytes / 8)
                return false;
        }
        // Anchors of plausible kernels lie inside them.
        if (!mode_.hostile)
            for (int i = 0; i < f_.count; ++i)
                if (std::string(f_.params[i].name) == "xAnchor")
                    for (int k = 0; k < f_.count; ++k)
                        if (std::string(f_.params[k].name) == "kernelSize") args_[i].i = args_[k].i / 2;
        // A state built in place is sized for the centred anchor.
        if (name.find("Init_") != std::string::npos)
            for (int i = 0; i < f_.count; ++i)
                if (f_.params[i].kind == kPoint && std::string(f_.params[i].name) == "anchor")
                    for (int k = 0; k < f_.count; ++k)
                        if (f_.params[k].kind == kSize && std::string(f_.params[k].name) == "maskSize")
                            args_[i].pt = RvpiPoint{args_[k].size.width / 2, args_[k].size.height / 2};
        for (int i = 0; i < f_.count; ++i)
            if (!makeBuffer(i, states)) return false;
        return true;
    }

    Outcome run(void** states) {
        Outcome o;
        std::vector<std::vector<uint8_t>> before(f_.count);
        for (int i = 0; i < f_.count; ++i) before[i] = bufs_[i].mem;
        void* made = nullptr;
        for (int i = 0; i < f_.count; ++i)
            if (f_.params[i].kind == kStateOut && args_[i].p) {
                made = nullptr;
                args_[i].p = &stateSlot_;
            }
        stateSlot_ = nullptr;
        o.status = f_.call(args_.data());
        o.called = true;
        // A release function took the pooled state.
        if (f_.count == 1 && f_.params[0].kind == kStateIn && o.status >= 0 && args_[0].p &&
            std::string(f_.name).find("Free") != std::string::npos)
            states[f_.params[0].state] = nullptr;
        for (int i = 0; i < f_.count && o.problem.empty(); ++i) {
            const Param& p = f_.params[i];
            const Buffer& b = bufs_[i];
            for (size_t k = 0; k < b.mem.size(); ++k) {
                if (b.mem[k] == before[i][k]) continue;
                if (p.isConst || (o.status < 0 && !writesOnError(p.name, o.status)) || !b.mayWrite(k)) {
                    o.problem = std::string(p.isConst ? "wrote an input" : o.status < 0 ? "wrote on error" : "wrote outside the region") +
                                " (" + p.name + ", byte " + std::to_string(static_cast<int64_t>(k) - static_cast<int64_t>(b.origin)) + ")";
                    break;
                }
            }
        }
        if (stateSlot_) {
            if (o.status < 0 && o.problem.empty()) o.problem = "made a state on error";
            made = stateSlot_;
            for (int i = 0; i < f_.count; ++i)
                if (f_.params[i].kind == kStateOut) {
                    const int t = f_.params[i].state;
                    if (states[t]) release(t, states[t]);
                    states[t] = made;
                }
        }
        return o;
    }

    // The one documented write on an error: the region Hough transform sets
    // its line count to 0 before it reports a range whose limits cross.
    bool writesOnError(const char* param, int status) const {
        return status == rvpStsRangeErr && std::string(f_.name).rfind("rvpiHoughLine_Region_", 0) == 0 &&
               std::string(param) == "pLineCount";
    }

    // Output bytes, for comparing runs of the same call.
    std::vector<uint8_t> outputs() const {
        std::vector<uint8_t> v;
        for (int i = 0; i < f_.count; ++i)
            if (!f_.params[i].isConst && f_.params[i].kind != kScratch) v.insert(v.end(), bufs_[i].mem.begin(), bufs_[i].mem.end());
        return v;
    }
    const Arg* args() const { return args_.data(); }

    // Frees a state with the function whose one parameter is a state of that type.
    static void release(int type, void* state) {
        for (const Function& g : kFunctions)
            if (g.count == 1 && g.params[0].kind == kStateIn && g.params[0].state == type &&
                std::string(g.name).find("Free") != std::string::npos) {
                Arg a;
                a.p = state;
                g.call(&a);
                return;
            }
    }

private:
    int drawInt() {
        static const int kHostile[] = {0, 1, 2, 3, 4, 5, -1, 7, 8, 9, 15, 16, 31, 255, 256, 65535, 65536, -2,
                                       std::numeric_limits<int>::max(), std::numeric_limits<int>::min(), 1 << 20, 0x40};
        static const int kPlausible[] = {0, 1, 2, 3, 4, 5, 1, 3, 5, 7, 9, 15, 2, 1, 0, 3};
        if (mode_.hostile) {
            const uint32_t r = src_.below(4);
            return r == 0 ? static_cast<int>(src_.next()) : kHostile[src_.below(sizeof kHostile / sizeof(int))];
        }
        return kPlausible[src_.below(16)];
    }
    double drawReal() {
        static const double kHostile[] = {0, 1, -1, 0.5, 3, 1e30, -1e30, NAN, INFINITY, -INFINITY, 1e-40, 255, 2.5};
        if (mode_.hostile && src_.below(3) == 0) return kHostile[src_.below(13)];
        return static_cast<double>(src_.below(2001)) / 100.0 - 5.0;
    }
    int drawExtent(bool width, bool roi) {
        if (mode_.hostile) {
            static const int kSizes[] = {0, 1, 2, 3, 7, 16, 33, 64, 130, -1, -7, std::numeric_limits<int>::max(),
                                         1 << 16, 1 << 20, 46341, 4097};
            const uint32_t r = src_.below(4);
            return r == 0 ? static_cast<int>(src_.below(300)) : kSizes[src_.below(16)];
        }
        if (mode_.bigImages && roi) return width ? 600 + static_cast<int>(src_.below(120)) : 430 + static_cast<int>(src_.below(60));
        return 1 + static_cast<int>(src_.below(width ? 70 : 50));
    }

    void drawScalar(int i) {
        const Param& p = f_.params[i];
        Arg& a = args_[i];
        std::memset(&a, 0, sizeof a);
        if (!mode_.hostile && p.kind == kInt && plausibleByName(p.name, a.i)) return;
        switch (p.kind) {
        case kInt: a.i = drawInt(); break;
        case kU8: a.u8 = static_cast<Rvp8u>(src_.next()); break;
        case kS8: a.s8 = static_cast<Rvp8s>(src_.next()); break;
        case kU16: a.u16 = static_cast<Rvp16u>(drawInt()); break;
        case kS16: a.s16 = static_cast<Rvp16s>(drawInt()); break;
        case kF32: a.f = static_cast<float>(drawReal()); break;
        case kF64: a.d = drawReal(); break;
        case kSize: {
            const bool roi = std::string(p.name).find("oi") != std::string::npos;
            a.size = RvpiSize{drawExtent(true, roi), drawExtent(false, roi)};
            break;
        }
        case kPoint: a.pt = RvpiPoint{drawInt(), drawInt()}; break;
        case kRect: a.rect = RvpiRect{drawInt(), drawInt(), drawInt(), drawInt()}; break;
        case kPoint32f: a.pt32f = RvpiPoint32f{static_cast<float>(drawReal()), static_cast<float>(drawReal())}; break;
        case kPolar: a.polar = RvpPointPolar{static_cast<float>(drawReal()), static_cast<float>(drawReal())}; break;
        default: break;
        }
    }

    // Plausible values of the integer parameters whose names say what they
    // are; the rest draw from small numbers.
    bool plausibleByName(const std::string& n, int& v) {
        static const int kMasks[] = {33, 55}, kBorders[] = {0, 1, 2, 3, 4, 1, 6, 1}, kKernels[] = {3, 5, 7, 3};
        if (n == "maskSize") v = kMasks[src_.below(2)];
        else if (n == "borderType") v = std::string(f_.name).find("Border") != std::string::npos &&
                                             std::string(f_.name).find("Filter") == std::string::npos
                                         ? (src_.below(4) ? 1 : 0)  // morphology: replicated only
                                         : kBorders[src_.below(8)];
        else if (n == "kernelSize") v = kKernels[src_.below(4)];
        else if (n == "roiWidth") v = 4096;
        else if (n == "divisor") v = 1 << src_.below(3);
        else if (n == "coi") v = 1 + static_cast<int>(src_.below(3));
        else if (n == "apertureSize" || n == "avgWindow") v = src_.below(2) ? 3 : 5;
        else if (n == "kernType") v = static_cast<int>(src_.below(2));
        else return false;
        return true;
    }

    // Steps follow their images: valid ones in plausible mode; in hostile
    // mode mostly valid, sometimes short, odd, zero or negative.
    int drawStep(int64_t rowBytes, int elem) {
        const int64_t valid = rowBytes + elem * static_cast<int64_t>(src_.below(4));
        int64_t step = valid;
        if (mode_.hostile) {
            switch (src_.below(8)) {
            case 0: step = rowBytes - 1; break;
            case 1: step = valid + 1; break;
            case 2: step = 0; break;
            case 3: step = -valid; break;
            default: break;
            }
        }
        return static_cast<int>(std::max<int64_t>(INT32_MIN, std::min<int64_t>(INT32_MAX, step)));
    }

    // Bulk contents come from a generator seeded by one choice.
    void fill(Buffer& b, const Param& p, size_t from, size_t to) {
        SeededSource bulk(src_.next());
        if (p.real) {
            // Finite and small, with a NaN now and then in hostile mode.
            for (size_t k = from; k + p.elem <= to; k += p.elem) {
                double v = static_cast<double>(bulk.below(2000)) / 8.0 - 100.0;
                if (mode_.hostile && bulk.below(64) == 0) v = NAN;
                if (p.elem == 4) {
                    const float f = static_cast<float>(v);
                    std::memcpy(&b.mem[k], &f, 4);
                } else {
                    std::memcpy(&b.mem[k], &v, 8);
                }
            }
        } else if (p.elem == 4 && !b.image) {
            // Integer arrays hold counts and lengths: small.
            for (size_t k = from; k + 4 <= to; k += 4) {
                const int32_t v = static_cast<int32_t>(bulk.below(4));
                std::memcpy(&b.mem[k], &v, 4);
            }
        } else {
            for (size_t k = from; k < to; ++k) b.mem[k] = static_cast<uint8_t>(bulk.next());
        }
    }

    bool makeBuffer(int i, void* const* states) {
        const Param& p = f_.params[i];
        Buffer& b = bufs_[i];
        Arg& a = args_[i];
        const bool null = mode_.hostile && src_.below(24) == 0;
        switch (p.kind) {
        case kStateIn: a.p = null ? nullptr : states[p.state]; return true;
        case kStateOut: a.p = null ? nullptr : reinterpret_cast<void*>(1); return true;  // the slot is set at run time
        case kScratch: return makeScratch(i, null);
        case kRows: return makeRows(i, null);
        case kData: break;
        default: return true;
        }
        if (p.step >= 0 && p.size >= 0) {
            RvpiSize s = args_[p.size].size;
            int channels = p.channels;
            if (!p.isConst && s.width > 0 && s.height > 0)
                for (const Extent& e : kExtents)
                    if (std::string(f_.name).rfind(e.prefix, 0) == 0)
                        s.width = s.width * e.scale + e.columns, s.height = s.height * e.scale + e.rows,
                        channels = e.channels ? e.channels : channels;
            const int64_t rowBytes = static_cast<int64_t>(s.width) * channels * p.elem;
            args_[p.step].i = drawStep(rowBytes, p.elem);
            const int64_t step = args_[p.step].i;
            if (s.width > 0 && s.height > 0) {
                if (step <= 0 || step < rowBytes) {
                    // An invalid step: the call must refuse it without reading.
                    b.mem.assign(64, kPattern);
                } else {
                    const int64_t bytes = step * (static_cast<int64_t>(s.height) + 2 * kSlackRows) + 2 * kSlackBytes;
                    if (bytes > kMaxImageBytes) return false;
                    b.mem.assign(static_cast<size_t>(bytes), kPattern);
                    b.image = true;
                    b.origin = static_cast<size_t>(step * kSlackRows + kSlackBytes);
                    b.step = step, b.rowBytes = rowBytes, b.rows = s.height;
                    for (int64_t y = 0; y < s.height; ++y)
                        fill(b, p, b.origin + static_cast<size_t>(y * step), b.origin + static_cast<size_t>(y * step + rowBytes));
                    if (p.isConst) fill(b, p, 0, b.mem.size());
                }
            } else {
                b.mem.assign(64, kPattern);
            }
        } else {
            // An array or a small output: generous, filled for inputs; an
            // output of kernelSize entries (a generated kernel) that long.
            int64_t bytes = p.isConst ? kArrayBytes : 4096;
            for (int k = 0; k < f_.count; ++k)
                if (!p.isConst && std::string(f_.params[k].name) == "kernelSize" && args_[k].i > 0) {
                    // (Generating one takes time in the square of its length: long ones are skipped.)
                    if (args_[k].i > 8191) return false;
                    bytes = std::max<int64_t>(bytes, static_cast<int64_t>(args_[k].i) * p.elem);
                }
            // A sampled line holds up to the image's longer side plus one samples.
            if (!p.isConst && std::string(f_.name).rfind("rvpiSampleLine_", 0) == 0)
                for (int k = 0; k < f_.count; ++k)
                    if (f_.params[k].kind == kSize)
                        bytes = std::max<int64_t>(bytes, (std::max<int64_t>(args_[k].size.width, args_[k].size.height) + 1) * p.elem);
            b.mem.assign(static_cast<size_t>(bytes), kPattern);
            if (p.isConst) fill(b, p, 0, b.mem.size());
        }
        a.p = null ? nullptr : b.mem.data() + b.origin;
        return true;
    }

    bool makeScratch(int i, bool null) {
        Buffer& b = bufs_[i];
        int64_t bytes = 4 << 20;
        if (f_.query >= 0) {
            const Function& q = kFunctions[f_.query];
            std::vector<Arg> qa(q.count);
            for (int k = 0; k + 1 < q.count; ++k) {
                const int j = f_.queryArgs[k];
                if (j >= 2000) qa[k].i = j - 2000;  // a value the function's name gives
                else if (j >= 1000) qa[k].i = args_[j - 1000].size.width;
                else qa[k] = args_[j];
            }
            int size = -1;
            qa[q.count - 1].p = &size;
            bytes = q.call(qa.data()) < 0 ? 16 : size;
        }
        b.mem.assign(static_cast<size_t>(bytes > 0 ? bytes : 1), kPattern);
        args_[i].p = null ? nullptr : b.mem.data();
        return true;
    }

    // Row-pointer arrays: the height of the image plus the kernel's length,
    // each row its own block.
    bool makeRows(int i, bool null) {
        const Param& p = f_.params[i];
        int64_t width = 0, count = 0;
        for (int k = 0; k < f_.count; ++k) {
            if (f_.params[k].kind == kSize && width == 0) width = args_[k].size.width, count += args_[k].size.height;
            if (f_.params[k].kind == kInt && std::string(f_.params[k].name) == "kernelSize") count += args_[k].i;
        }
        const int64_t rowBytes = width * p.channels * p.elem;
        if (width <= 0 || count <= 0 || count > 4096 || rowBytes * count > kMaxImageBytes) {
            bufs_[i].mem.assign(64, kPattern);
            args_[i].p = null ? nullptr : bufs_[i].mem.data();
            return width <= 0 || count <= 0;  // sizes the call must refuse; anything larger is skipped
        }
        rows_.emplace_back(static_cast<size_t>(count));
        std::vector<void*>& ptrs = rows_.back();
        for (int64_t r = 0; r < count; ++r) {
            rowMem_.emplace_back(static_cast<size_t>(rowBytes), kPattern);
            if (p.isConst) for (auto& v : rowMem_.back()) v = static_cast<uint8_t>(src_.below(256) & (p.elem == 4 ? 0x3F : 0xFF));
            ptrs[static_cast<size_t>(r)] = rowMem_.back().data();
        }
        args_[i].p = null ? nullptr : ptrs.data();
        return true;
    }

    const Function& f_;
    Source& src_;
    Mode mode_;
    std::vector<Arg> args_;
    std::vector<Buffer> bufs_;
    std::vector<std::vector<void*>> rows_;
    std::vector<std::vector<uint8_t>> rowMem_;
    void* stateSlot_ = nullptr;
};

}  // namespace calltable

#endif
