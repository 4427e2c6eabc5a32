// Erosion and dilation by rectangles and disks against the peer's erode and
// dilate with a replicated border and the same structuring element.
#include "benchutil.h"

namespace {

using namespace rvbench;

struct Element {
    std::string name;
    int w, h;
    std::vector<Rvp8u> cells;
};

std::vector<Element> elements() {
    std::vector<Element> v;
    for (int s : {3, 7, 15, 41}) v.push_back({"Rect" + std::to_string(s), s, s, std::vector<Rvp8u>(s * s, 1)});
    for (int r : {2, 7}) {
        Element e{"Disk" + std::to_string(r), 2 * r + 1, 2 * r + 1, {}};
        for (int y = -r; y <= r; ++y)
            for (int x = -r; x <= r; ++x) e.cells.push_back(x * x + y * y <= r * r);
        v.push_back(e);
    }
    return v;
}

template <class T>
void addMorph(const char* type, RvpStatus (*initAlloc)(int, const Rvp8u*, RvpiSize, RvpiPoint, RvpiMorphState**),
              RvpStatus (*erode)(const T*, int, T*, int, RvpiSize, int, RvpiMorphState*),
              RvpStatus (*dilate)(const T*, int, T*, int, RvpiSize, int, RvpiMorphState*)) {
    for (const Element& e : elements())
        for (bool isDilate : {false, true}) {
            const Size s = hd()[0];
            auto a = std::make_shared<Plane<T>>(s, 1, 1), d = std::make_shared<Plane<T>>(s, 1, 2);
            const std::string op = std::string(isDilate ? "Dilate" : "Erode") + e.name + "_" + type;
            RvpiMorphState* raw = nullptr;
            initAlloc(s.w, e.cells.data(), {e.w, e.h}, {e.w / 2, e.h / 2}, &raw);
            std::shared_ptr<RvpiMorphState> st(raw, [](RvpiMorphState* p) { rvpiMorphologyFree(p); });
            auto fn = isDilate ? dilate : erode;
            add(op, "rvp", s, 2 * a->bytes(), [=](benchmark::State& b) {
                for (auto _ : b) fn(a->ptr(), a->step, d->ptr(), d->step, a->size(), rvpBorderRepl, st.get());
            });
#ifdef RVPCV_HAVE_OPENCV
            cv::Mat kernel(e.h, e.w, CV_8U);
            std::memcpy(kernel.data, e.cells.data(), e.cells.size());
            add(op, "cv", s, 2 * a->bytes(), [=](benchmark::State& b) {
                cv::Mat ma = a->mat(), md = d->mat();
                for (auto _ : b) {
                    if (isDilate) cv::dilate(ma, md, kernel, cv::Point(-1, -1), 1, cv::BORDER_REPLICATE);
                    else cv::erode(ma, md, kernel, cv::Point(-1, -1), 1, cv::BORDER_REPLICATE);
                }
            });
#endif
        }
}

const int kRegistered = [] {
    addMorph<Rvp8u>("8u", rvpiMorphologyInitAlloc_8u_C1R, rvpiErodeBorderReplicate_8u_C1R,
                    rvpiDilateBorderReplicate_8u_C1R);
    addMorph<Rvp32f>("32f", rvpiMorphologyInitAlloc_32f_C1R, rvpiErodeBorderReplicate_32f_C1R,
                     rvpiDilateBorderReplicate_32f_C1R);
    return 0;
}();

}  // namespace
