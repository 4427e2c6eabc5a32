// Fixed-kernel filters and the Gaussian against the peer's Sobel, Scharr,
// Laplacian, box blur and Gaussian blur, replicated borders, 3x3 and 5x5.
#include "benchutil.h"

namespace {

using namespace rvbench;

// The peer's call; without the peer the lambdas are dropped.
#ifdef RVPCV_HAVE_OPENCV
using Peer = std::function<void(const cv::Mat&, cv::Mat&)>;
#define PEER(...) __VA_ARGS__
#else
using Peer = std::nullptr_t;
#define PEER(...) nullptr
#endif

template <class D, class Fn, class Q>
void addFixed(const std::string& op, Fn fn, Q query, int mask, Peer peer) {
    (void)peer;
    for (Size s : hd()) {
        auto a = std::make_shared<Plane<Rvp8u>>(s, 1, 1);
        auto d = std::make_shared<Plane<D>>(s, 1, 2);
        const size_t moved = a->bytes() + d->bytes();
        add(op, "rvp", s, moved, [=](benchmark::State& st) {
            int bytes = 0;
            if constexpr (std::is_same<Q, RvpStatus (*)(RvpiSize, int*)>::value) query(a->size(), &bytes);
            else query(a->size(), mask, &bytes);
            std::vector<Rvp8u> buf(bytes);
            for (auto _ : st) {
                if constexpr (std::is_same<Q, RvpStatus (*)(RvpiSize, int*)>::value)
                    fn(a->ptr(), a->step, d->ptr(), d->step, a->size(), rvpBorderRepl, 0, buf.data());
                else
                    fn(a->ptr(), a->step, d->ptr(), d->step, a->size(), mask, rvpBorderRepl, 0, buf.data());
            }
        });
#ifdef RVPCV_HAVE_OPENCV
        add(op, "cv", s, moved, [=](benchmark::State& st) {
            cv::Mat ma = a->mat(), md = d->mat();
            for (auto _ : st) peer(ma, md);
        });
#endif
        addMemcpy(op, s, moved);
    }
}

void addGauss(const std::string& op, int k) {
    for (Size s : hd()) {
        auto a = std::make_shared<Plane<Rvp32f>>(s, 1, 1);
        auto d = std::make_shared<Plane<Rvp32f>>(s, 1, 2);
        const size_t moved = a->bytes() + d->bytes();
        const float sigma = 0.3f * ((k - 1) * 0.5f - 1) + 0.8f;
        add(op, "rvp", s, moved, [=](benchmark::State& st) {
            int bytes = 0;
            rvpiFilterGaussGetBufferSize_32f_C1R(a->size(), k, &bytes);
            std::vector<Rvp8u> buf(bytes);
            for (auto _ : st)
                rvpiFilterGaussBorder_32f_C1R(a->ptr(), a->step, d->ptr(), d->step, a->size(), k, sigma, rvpBorderRepl,
                                              0, buf.data());
        });
#ifdef RVPCV_HAVE_OPENCV
        add(op, "cv", s, moved, [=](benchmark::State& st) {
            cv::Mat ma = a->mat(), md = d->mat();
            for (auto _ : st) cv::GaussianBlur(ma, md, cv::Size(k, k), sigma, sigma, cv::BORDER_REPLICATE);
        });
#endif
        addMemcpy(op, s, moved);
    }
}

const int kRegistered = [] {
#ifdef RVPCV_HAVE_OPENCV
    const int R = cv::BORDER_REPLICATE;
#endif
    for (int n : {3, 5}) {
        const int mask = n == 3 ? 33 : 55;
        const std::string sz = n == 3 ? "3x3" : "5x5";
        addFixed<Rvp16s>("SobelHoriz_8u16s_" + sz, rvpiFilterSobelHorizBorder_8u16s_C1R,
                         rvpiFilterSobelHorizGetBufferSize_8u16s_C1R, mask,
                         PEER([n, R](const cv::Mat& s, cv::Mat& d) { cv::Sobel(s, d, CV_16S, 0, 1, n, 1, 0, R); }));
        addFixed<Rvp16s>("Laplacian_8u16s_" + sz, rvpiFilterLaplacianBorder_8u16s_C1R,
                         rvpiFilterLaplacianGetBufferSize_8u16s_C1R, mask,
                         PEER([n, R](const cv::Mat& s, cv::Mat& d) { cv::Laplacian(s, d, CV_16S, n, 1, 0, R); }));
        addFixed<Rvp8u>("Lowpass_8u_" + sz, rvpiFilterLowpassBorder_8u_C1R, rvpiFilterLowpassGetBufferSize_8u_C1R,
                        mask, PEER([n, R](const cv::Mat& s, cv::Mat& d) {
                            cv::blur(s, d, cv::Size(n, n), cv::Point(-1, -1), R);
                        }));
        addGauss("Gauss_32f_" + sz, n);
    }
    addFixed<Rvp16s>("ScharrHoriz_8u16s_3x3", rvpiFilterScharrHorizBorder_8u16s_C1R,
                     rvpiFilterScharrHorizGetBufferSize_8u16s_C1R, 33,
                     PEER([R](const cv::Mat& s, cv::Mat& d) { cv::Scharr(s, d, CV_16S, 0, 1, 1, 0, R); }));
    return 0;
}();

}  // namespace
