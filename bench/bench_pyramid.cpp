// Gaussian 5x5 pyramid steps against the peer's pyrDown and pyrUp (the peer
// mirrors at the border, this library replicates; the work is the same).
#include "benchutil.h"

namespace {

using namespace rvbench;

template <class T>
void addPyr(const char* op, bool down, int channels,
            RvpStatus (*fn)(const T*, int, T*, int, RvpiSize, Rvp8u*)) {
    for (Size s : hd()) {
        const Size ds = down ? Size{(s.w + 1) / 2, (s.h + 1) / 2} : Size{2 * s.w, 2 * s.h};
        auto a = std::make_shared<Plane<T>>(s, channels, 1);
        auto d = std::make_shared<Plane<T>>(ds, channels, 2);
        int bytes = 0;
        (down ? rvpiPyrDownGetBufSize_Gauss5x5 : rvpiPyrUpGetBufSize_Gauss5x5)(
            s.w, sizeof(T) == 1 ? RVP_SAMPLE_8U : RVP_SAMPLE_32F, channels, &bytes);
        auto buf = std::make_shared<std::vector<Rvp8u>>(static_cast<size_t>(bytes));
        const size_t moved = a->bytes() + d->bytes();
        add(op, "rvp", s, moved, [=](benchmark::State& st) {
            for (auto _ : st) fn(a->ptr(), a->step, d->ptr(), d->step, a->size(), buf->data());
        });
#ifdef RVPCV_HAVE_OPENCV
        add(op, "cv", s, moved, [=](benchmark::State& st) {
            cv::Mat ma = a->mat(), md = d->mat();
            for (auto _ : st) {
                if (down) cv::pyrDown(ma, md, md.size());
                else cv::pyrUp(ma, md, md.size());
            }
        });
#endif
    }
}

const int kRegistered = [] {
    addPyr<Rvp8u>("PyrDown_8u_C1", true, 1, rvpiPyrDown_Gauss5x5_8u_C1R);
    addPyr<Rvp8u>("PyrDown_8u_C3", true, 3, rvpiPyrDown_Gauss5x5_8u_C3R);
    addPyr<Rvp32f>("PyrDown_32f_C1", true, 1, rvpiPyrDown_Gauss5x5_32f_C1R);
    addPyr<Rvp8u>("PyrUp_8u_C1", false, 1, rvpiPyrUp_Gauss5x5_8u_C1R);
    addPyr<Rvp8u>("PyrUp_8u_C3", false, 3, rvpiPyrUp_Gauss5x5_8u_C3R);
    addPyr<Rvp32f>("PyrUp_32f_C1", false, 1, rvpiPyrUp_Gauss5x5_32f_C1R);
    return 0;
}();

}  // namespace
