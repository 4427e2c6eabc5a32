// Absolute difference against the peer's absdiff and the memcpy yardstick.
#include "benchutil.h"

namespace {

using namespace rvbench;

template <class T>
void addAbsDiff(const char* op, RvpStatus (*fn)(const T*, int, const T*, int, T*, int, RvpiSize)) {
    for (Size s : hdAnd4k()) {
        auto a = std::make_shared<Plane<T>>(s, 1, 1), b = std::make_shared<Plane<T>>(s, 1, 2),
             d = std::make_shared<Plane<T>>(s, 1, 3);
        const size_t moved = 3 * a->bytes();
        add(op, "rvp", s, moved, [=](benchmark::State& st) {
            for (auto _ : st) fn(a->ptr(), a->step, b->ptr(), b->step, d->ptr(), d->step, a->size());
        });
#ifdef RVPCV_HAVE_OPENCV
        add(op, "cv", s, moved, [=](benchmark::State& st) {
            cv::Mat ma = a->mat(), mb = b->mat(), md = d->mat();
            for (auto _ : st) cv::absdiff(ma, mb, md);
        });
#endif
        addMemcpy(op, s, moved);
    }
}

const int kRegistered = [] {
    addAbsDiff<Rvp8u>("AbsDiff_8u", rvpiAbsDiff_8u_C1R);
    addAbsDiff<Rvp16u>("AbsDiff_16u", rvpiAbsDiff_16u_C1R);
    addAbsDiff<Rvp32f>("AbsDiff_32f", rvpiAbsDiff_32f_C1R);
    return 0;
}();

}  // namespace
