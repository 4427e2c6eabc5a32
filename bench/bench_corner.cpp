// Corner responses (minimum eigenvalue, eigenvalues and vectors) at matching
// aperture and smoothing window, replicated border on both sides.
#include "benchutil.h"

namespace {

using namespace rvbench;

template <class T>
void addCorner(bool vecs, int aperture, int avg, Size s) {
    auto src = std::make_shared<Plane<T>>(s);
    auto dst = std::make_shared<Plane<Rvp32f>>(s, vecs ? 6 : 1);
    constexpr bool u8 = std::is_same<T, Rvp8u>::value;
    int size = 0;
    if (vecs)
        u8 ? rvpiEigenValsVecsGetBufferSize_8u32f_C1R(src->size(), aperture, avg, &size)
           : rvpiEigenValsVecsGetBufferSize_32f_C1R(src->size(), aperture, avg, &size);
    else
        u8 ? rvpiMinEigenValGetBufferSize_8u32f_C1R(src->size(), aperture, avg, &size)
           : rvpiMinEigenValGetBufferSize_32f_C1R(src->size(), aperture, avg, &size);
    auto buf = std::make_shared<std::vector<Rvp8u>>(static_cast<size_t>(size));
    const std::string op = std::string(vecs ? "EigenValsVecs_" : "MinEigenVal_") + (u8 ? "8u32f" : "32f") + "_a" +
                           std::to_string(aperture) + "w" + std::to_string(avg);
    const size_t moved = src->bytes() + dst->bytes();
    add(op, "rvp", s, moved, [=](benchmark::State& st) {
        for (auto _ : st) {
            if constexpr (u8) {
                if (vecs)
                    rvpiEigenValsVecs_8u32f_C1R(src->ptr(), src->step, dst->ptr(), dst->step, src->size(), 0, aperture,
                                                avg, buf->data());
                else
                    rvpiMinEigenVal_8u32f_C1R(src->ptr(), src->step, dst->ptr(), dst->step, src->size(), 0, aperture,
                                              avg, buf->data());
            } else {
                if (vecs)
                    rvpiEigenValsVecs_32f_C1R(src->ptr(), src->step, dst->ptr(), dst->step, src->size(), 0, aperture,
                                              avg, buf->data());
                else
                    rvpiMinEigenVal_32f_C1R(src->ptr(), src->step, dst->ptr(), dst->step, src->size(), 0, aperture,
                                            avg, buf->data());
            }
        }
    });
#ifdef RVPCV_HAVE_OPENCV
    add(op, "cv", s, moved, [=](benchmark::State& st) {
        cv::Mat ms = src->mat(), md = dst->mat();
        for (auto _ : st) {
            if (vecs)
                cv::cornerEigenValsAndVecs(ms, md, avg, aperture, cv::BORDER_REPLICATE);
            else
                cv::cornerMinEigenVal(ms, md, avg, aperture, cv::BORDER_REPLICATE);
        }
    });
#endif
}

const int kRegistered = [] {
    for (Size s : hd()) {
        addCorner<Rvp8u>(false, 3, 3, s);
        addCorner<Rvp8u>(false, 5, 5, s);
        addCorner<Rvp32f>(false, 3, 3, s);
        addCorner<Rvp8u>(true, 3, 3, s);
        addCorner<Rvp32f>(true, 3, 3, s);
    }
    return 0;
}();

}  // namespace
