// Composite morphology against the peer's morphologyEx with the same
// element and a replicated border.
#include "benchutil.h"

namespace {

using namespace rvbench;

struct Elem {
    const char* name;
    int w, h;
    std::vector<Rvp8u> cells;
};

Elem rect(int side) { return {nullptr, side, side, std::vector<Rvp8u>(static_cast<size_t>(side) * side, 1)}; }
Elem disk(int r) {
    Elem e{nullptr, 2 * r + 1, 2 * r + 1, {}};
    for (int y = -r; y <= r; ++y)
        for (int x = -r; x <= r; ++x) e.cells.push_back(x * x + y * y <= r * r);
    return e;
}

template <class T>
void addOp(const std::string& op, int opIndex, int C, const std::string& shape, const Elem& e,
           RvpStatus (*init)(int, const Rvp8u*, RvpiSize, RvpiPoint, RvpiMorphAdvState**),
           RvpStatus (*fn)(const T*, int, T*, int, RvpiSize, int, RvpiMorphAdvState*)) {
    const Size s = hd()[0];
    auto src = std::make_shared<Plane<T>>(s, C, 1), dst = std::make_shared<Plane<T>>(s, C, 2);
    const std::string name = op + "_" + shape;
    add(name, "rvp", s, src->bytes() * 2, [=](benchmark::State& st) {
        RvpiMorphAdvState* state = nullptr;
        init(s.w, e.cells.data(), RvpiSize{e.w, e.h}, RvpiPoint{e.w / 2, e.h / 2}, &state);
        for (auto _ : st) fn(src->ptr(), src->step, dst->ptr(), dst->step, src->size(), rvpBorderRepl, state);
        rvpiMorphAdvFree(state);
    });
#ifdef RVPCV_HAVE_OPENCV
    static const int kCv[5] = {cv::MORPH_OPEN, cv::MORPH_CLOSE, cv::MORPH_TOPHAT, cv::MORPH_BLACKHAT, cv::MORPH_GRADIENT};
    add(name, "cv", s, src->bytes() * 2, [=](benchmark::State& st) {
        cv::Mat a = src->mat(), b = dst->mat();
        cv::Mat k(e.h, e.w, CV_8U, const_cast<Rvp8u*>(e.cells.data()));
        for (auto _ : st) cv::morphologyEx(a, b, kCv[opIndex], k, cv::Point(-1, -1), 1, cv::BORDER_REPLICATE);
    });
#endif
}

void addRuns() {
    addOp<Rvp8u>("Open_8u", 0, 1, "rect3", rect(3), rvpiMorphAdvInitAlloc_8u_C1R, rvpiMorphOpenBorder_8u_C1R);
    addOp<Rvp8u>("Open_8u", 0, 1, "rect41", rect(41), rvpiMorphAdvInitAlloc_8u_C1R, rvpiMorphOpenBorder_8u_C1R);
    addOp<Rvp8u>("Open_8u", 0, 1, "disk7", disk(7), rvpiMorphAdvInitAlloc_8u_C1R, rvpiMorphOpenBorder_8u_C1R);
    addOp<Rvp8u>("Tophat_8u", 2, 1, "disk7", disk(7), rvpiMorphAdvInitAlloc_8u_C1R, rvpiMorphTophatBorder_8u_C1R);
    addOp<Rvp8u>("Close_8u_C3", 1, 3, "rect5", rect(5), rvpiMorphAdvInitAlloc_8u_C3R, rvpiMorphCloseBorder_8u_C3R);
    addOp<Rvp32f>("Gradient_32f", 4, 1, "rect3", rect(3), rvpiMorphAdvInitAlloc_32f_C1R,
                  rvpiMorphGradientBorder_32f_C1R);
    addOp<Rvp32f>("Blackhat_32f", 3, 1, "disk3", disk(3), rvpiMorphAdvInitAlloc_32f_C1R,
                  rvpiMorphBlackhatBorder_32f_C1R);
}

const int kRegistered = (addRuns(), 0);

}  // namespace
