// Accumulation against the peer's accumulate, accumulateSquare,
// accumulateProduct and accumulateWeighted (with and without mask), and the
// memcpy yardstick of the same bytes. Calls alternate between two source
// frames, as over a sequence of images: a weighted average of one frame
// repeated for ever would drive its zero pixels into subnormal numbers.
#include "benchutil.h"

namespace {

using namespace rvbench;

enum class Kind { Add, Square, Product, Weighted };

template <class T>
void addAccumulate(const std::string& op, Kind kind, bool masked) {
    constexpr float kAlpha = 0.25f;
    for (Size s : hd()) {
        auto a = std::make_shared<Plane<T>>(s, 1, 1), b = std::make_shared<Plane<T>>(s, 1, 2);
        auto m = std::make_shared<Plane<Rvp8u>>(s, 1, 3);
        auto acc = std::make_shared<Plane<Rvp32f>>(s, 1, 4);
        for (size_t i = 0; i < static_cast<size_t>(s.w) * s.h; ++i) m->ptr()[i] = m->ptr()[i] & 1;
        const size_t moved = a->bytes() * (kind == Kind::Product ? 2 : 1) + 2 * acc->bytes() + (masked ? m->bytes() : 0);
        add(op, "rvp", s, moved, [=](benchmark::State& st) {
            const RvpiSize roi = a->size();
            const T* pa = a->ptr();
            const T* pb = b->ptr();
            const T* frames[2] = {pa, pb};
            int frame = 0;
            const Rvp8u* pm = m->ptr();
            Rvp32f* pd = acc->ptr();
            const int sa = a->step, sm = m->step, sd = acc->step;
            for (auto _ : st) {
                pa = frames[frame];
                pb = frames[frame ^ 1];
                frame ^= 1;
                if constexpr (std::is_same<T, Rvp8u>::value) {
                    switch (kind) {
                    case Kind::Add: masked ? rvpiAdd_8u32f_C1IMR(pa, sa, pm, sm, pd, sd, roi) : rvpiAdd_8u32f_C1IR(pa, sa, pd, sd, roi); break;
                    case Kind::Square: masked ? rvpiAddSquare_8u32f_C1IMR(pa, sa, pm, sm, pd, sd, roi) : rvpiAddSquare_8u32f_C1IR(pa, sa, pd, sd, roi); break;
                    case Kind::Product: masked ? rvpiAddProduct_8u32f_C1IMR(pa, sa, pb, sa, pm, sm, pd, sd, roi) : rvpiAddProduct_8u32f_C1IR(pa, sa, pb, sa, pd, sd, roi); break;
                    case Kind::Weighted: masked ? rvpiAddWeighted_8u32f_C1IMR(pa, sa, pm, sm, pd, sd, roi, kAlpha) : rvpiAddWeighted_8u32f_C1IR(pa, sa, pd, sd, roi, kAlpha); break;
                    }
                } else {
                    switch (kind) {
                    case Kind::Add: rvpiAdd_32f_C1IMR(pa, sa, pm, sm, pd, sd, roi); break;
                    case Kind::Square: masked ? rvpiAddSquare_32f_C1IMR(pa, sa, pm, sm, pd, sd, roi) : rvpiAddSquare_32f_C1IR(pa, sa, pd, sd, roi); break;
                    case Kind::Product: masked ? rvpiAddProduct_32f_C1IMR(pa, sa, pb, sa, pm, sm, pd, sd, roi) : rvpiAddProduct_32f_C1IR(pa, sa, pb, sa, pd, sd, roi); break;
                    case Kind::Weighted: masked ? rvpiAddWeighted_32f_C1IMR(pa, sa, pm, sm, pd, sd, roi, kAlpha) : rvpiAddWeighted_32f_C1IR(pa, sa, pd, sd, roi, kAlpha); break;
                    }
                }
                benchmark::ClobberMemory();
            }
        });
#ifdef RVPCV_HAVE_OPENCV
        add(op, "cv", s, moved, [=](benchmark::State& st) {
            cv::Mat ma = a->mat(), mb = b->mat(), md = acc->mat();
            cv::Mat mm = masked ? m->mat() : cv::Mat();
            for (auto _ : st) {
                cv::swap(ma, mb);
                switch (kind) {
                case Kind::Add: cv::accumulate(ma, md, mm); break;
                case Kind::Square: cv::accumulateSquare(ma, md, mm); break;
                case Kind::Product: cv::accumulateProduct(ma, mb, md, mm); break;
                case Kind::Weighted: cv::accumulateWeighted(ma, md, kAlpha, mm); break;
                }
                benchmark::ClobberMemory();
            }
        });
#endif
        addMemcpy(op, s, moved);
    }
}

const int kRegistered = [] {
    for (bool masked : {false, true}) {
        const std::string sfx = masked ? "_mask" : "";
        addAccumulate<Rvp8u>("Add_8u32f" + sfx, Kind::Add, masked);
        addAccumulate<Rvp8u>("AddSquare_8u32f" + sfx, Kind::Square, masked);
        addAccumulate<Rvp8u>("AddProduct_8u32f" + sfx, Kind::Product, masked);
        addAccumulate<Rvp8u>("AddWeighted_8u32f" + sfx, Kind::Weighted, masked);
        addAccumulate<Rvp32f>("AddWeighted_32f" + sfx, Kind::Weighted, masked);
    }
    addAccumulate<Rvp32f>("Add_32f_mask", Kind::Add, true);
    return 0;
}();

}  // namespace
