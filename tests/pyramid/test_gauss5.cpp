// Gaussian 5x5 pyramid steps against a direct sum over the clamped 5x5 (down)
// or 3x3 (up) neighbourhood in every form, sizes from 1x1 past the thread
// threshold, padded steps, several teams; the queries and validation.
#include "support/rvtest.h"

using namespace rvtest;

namespace {

inline int cl(int v, int n) { return v < 0 ? 0 : v >= n ? n - 1 : v; }

// Weights per axis: down 1 4 6 4 1 at 2x - 2 .. 2x + 2; up, even outputs
// 1 6 1 at x - 1 .. x + 1, odd ones 4 4 at x, x + 1.
struct Taps {
    int first, n, w[5];
};
Taps down(int x) { return {2 * x - 2, 5, {1, 4, 6, 4, 1}}; }
Taps up(int x) { return x % 2 ? Taps{x / 2, 2, {4, 4}} : Taps{x / 2 - 1, 3, {1, 6, 1}}; }

// 8u: the exact integer sum. 32f: along x first, then y, each pass in the
// documented order (outer taps, then the 4-weighted pair, then the centre).
template <class T, int C>
std::vector<T> model(const Image<T>& s, int dw, int dh, bool isUp) {
    std::vector<T> out(static_cast<size_t>(dw) * dh * C);
    const auto combine = [&](const Taps& t, auto&& at) {
        if (t.n == 5) return (at(t.first) + at(t.first + 4)) + T(4) * (at(t.first + 1) + at(t.first + 3)) + T(6) * at(t.first + 2);
        if (t.n == 3) return (at(t.first) + at(t.first + 2)) + T(6) * at(t.first + 1);
        return T(4) * (at(t.first) + at(t.first + 1));
    };
    for (int y = 0; y < dh; ++y)
        for (int x = 0; x < dw; ++x)
            for (int c = 0; c < C; ++c) {
                const Taps tx = isUp ? up(x) : down(x), ty = isUp ? up(y) : down(y);
                if constexpr (std::is_same<T, Rvp8u>::value) {
                    int sum = 0;
                    for (int j = 0; j < ty.n; ++j)
                        for (int i = 0; i < tx.n; ++i)
                            sum += ty.w[j] * tx.w[i] * s.at(cl(tx.first + i, s.width()), cl(ty.first + j, s.height()), c);
                    out[(static_cast<size_t>(y) * dw + x) * C + c] = static_cast<Rvp8u>(isUp ? (sum + 32) >> 6 : (sum + 128) >> 8);
                } else {
                    const auto row = [&](int sy) {
                        return combine(tx, [&](int sx) { return s.at(cl(sx, s.width()), cl(sy, s.height()), c); });
                    };
                    out[(static_cast<size_t>(y) * dw + x) * C + c] = combine(ty, row) * (isUp ? 1.0f / 64 : 1.0f / 256);
                }
            }
    return out;
}

template <class T, int C, class F> void stepsMatchModel(F down8, F up8, int dataType) {
    std::mt19937 rng(21 + C);
    for (int t = 0; t < 16; ++t) {
        const int w = t < 4 ? 1 + t : std::uniform_int_distribution<int>(1, t > 12 ? 900 : 80)(rng);
        const int h = t < 4 ? 1 + 2 * t : std::uniform_int_distribution<int>(1, t > 12 ? 500 : 60)(rng);
        Image<T> src(w, h, C, (t % 3) * 16);
        Random<T> gen(t);
        if constexpr (std::is_floating_point<T>::value) src.fill(gen);
        else src.fill([&] { return static_cast<T>(gen()); });
        for (bool isUp : {false, true}) {
            const int dw = isUp ? 2 * w : (w + 1) / 2, dh = isUp ? 2 * h : (h + 1) / 2;
            const std::vector<T> want = model<T, C>(src, dw, dh, isUp);
            int bytes = 0;
            ASSERT_EQ((isUp ? rvpiPyrUpGetBufSize_Gauss5x5 : rvpiPyrDownGetBufSize_Gauss5x5)(w, dataType, C, &bytes), rvpStsNoErr);
            std::vector<Rvp8u> buf(static_cast<size_t>(bytes));
            for (int threads : threadCounts()) {
                ScopedThreads scope(threads);
                Image<T> dst(dw, dh, C, 8);
                ASSERT_EQ((isUp ? up8 : down8)(src.ptr(), src.step(), dst.ptr(), dst.step(), src.size(), buf.data()), rvpStsNoErr);
                std::vector<T> got;
                for (int y = 0; y < dh; ++y) got.insert(got.end(), dst.row(y), dst.row(y) + dw * C);
                ASSERT_TRUE(sameBits(got.data(), want.data(), want.size() * sizeof(T)))
                    << w << "x" << h << "x" << C << (isUp ? " up" : " down") << " threads " << threads;
                ASSERT_TRUE(dst.guardsIntact());
            }
        }
    }
}

TEST(Gauss5, MatchesModel8uC1) { stepsMatchModel<Rvp8u, 1>(rvpiPyrDown_Gauss5x5_8u_C1R, rvpiPyrUp_Gauss5x5_8u_C1R, RVP_SAMPLE_8U); }
TEST(Gauss5, MatchesModel8uC3) { stepsMatchModel<Rvp8u, 3>(rvpiPyrDown_Gauss5x5_8u_C3R, rvpiPyrUp_Gauss5x5_8u_C3R, RVP_SAMPLE_8U); }
TEST(Gauss5, MatchesModel32fC1) { stepsMatchModel<Rvp32f, 1>(rvpiPyrDown_Gauss5x5_32f_C1R, rvpiPyrUp_Gauss5x5_32f_C1R, RVP_SAMPLE_32F); }
TEST(Gauss5, MatchesModel32fC3) { stepsMatchModel<Rvp32f, 3>(rvpiPyrDown_Gauss5x5_32f_C3R, rvpiPyrUp_Gauss5x5_32f_C3R, RVP_SAMPLE_32F); }

TEST(Gauss5, QueriesAndValidation) {
    int bytes = -1;
    struct Query { RvpStatus want; int width, type, channels; int* out; };
    const Query queries[] = {{rvpStsNullPtrErr, 8, 1, 1, nullptr}, {rvpStsSizeErr, 0, 1, 1, &bytes},
                             {rvpStsInterpolationErr, 8, 5, 1, &bytes}, {rvpStsChannelErr, 8, 13, 2, &bytes},
                             {rvpStsSizeErr, INT32_MAX, 13, 3, &bytes}};
    for (const Query& q : queries) {
        EXPECT_EQ(rvpiPyrDownGetBufSize_Gauss5x5(q.width, q.type, q.channels, q.out), q.want);
        EXPECT_EQ(rvpiPyrUpGetBufSize_Gauss5x5(q.width, q.type, q.channels, q.out), q.want);
    }
    EXPECT_EQ(bytes, -1);
    Image<Rvp8u> src(10, 10), dst(20, 20);
    std::vector<Rvp8u> buf(4096);
    struct Row { RvpStatus want; const Rvp8u* s; int ss; Rvp8u* d; int ds; RvpiSize r; Rvp8u* b; };
    const Row rows[] = {{rvpStsNullPtrErr, nullptr, 10, dst.ptr(), 20, {10, 10}, buf.data()},
                        {rvpStsNullPtrErr, src.ptr(), 10, dst.ptr(), 20, {10, 10}, nullptr},
                        {rvpStsSizeErr, src.ptr(), 10, dst.ptr(), 20, {10, 0}, buf.data()},
                        {rvpStsStepErr, src.ptr(), 9, dst.ptr(), 20, {10, 10}, buf.data()},
                        {rvpStsStepErr, src.ptr(), 10, dst.ptr(), 19, {10, 10}, buf.data()}};
    for (const Row& r : rows) {
        const auto before = dst.raw();
        EXPECT_EQ(rvpiPyrUp_Gauss5x5_8u_C1R(r.s, r.ss, r.d, r.ds, r.r, r.b), r.want) << (&r - rows);
        EXPECT_EQ(dst.raw(), before);
    }
    Image<Rvp32f> f(4, 4);
    EXPECT_EQ(rvpiPyrDown_Gauss5x5_32f_C1R(f.ptr(), 18, f.ptr(), 16, f.size(), buf.data()), rvpStsNotEvenStepErr);
}

}  // namespace
