// Row and column pipelines against the reference model: every form, kernel
// sizes 1 to 9 with every anchor, all border types, narrow and wide rows,
// padded steps, rows reached through shuffled pointers, and thread counts
// 1, 2, 3, 8 on images past the parallel threshold.
#include <algorithm>
#include <functional>

#include "reference/ref_filter.h"
#include "support/rvtest.h"

using namespace rvtest;

namespace {

template <class S, class D> struct RowForm {
    using Fn = RvpStatus (*)(const S*, int, D**, RvpiSize, const D*, int, int, int, S, int, Rvp8u*);
    using Query = RvpStatus (*)(RvpiSize, int, int*);
    Fn fn; Query query; ref::RowKind kind; int C;
};
template <class S, class D> struct RowForm32 {
    using Fn = RvpStatus (*)(const S*, int, D**, RvpiSize, const D*, int, int, int, S, Rvp8u*);
    using Query = RvpStatus (*)(RvpiSize, int, int*);
    Fn fn; Query query; int C;
};

std::vector<uint8_t> buffer(RvpStatus (*q)(RvpiSize, int, int*), RvpiSize roi, int k) {
    int size = -1;
    EXPECT_EQ(q(roi, k, &size), rvpStsNoErr);
    return std::vector<uint8_t>(static_cast<size_t>(size), 0xCD);
}

// Kernels with taps of mixed signs; every third one is symmetric so the
// mirrored-pair paths are reached.
template <class T> std::vector<T> kernelFor(int k, int lim, std::mt19937& rng) {
    std::uniform_int_distribution<int> d(-lim, lim);
    std::vector<T> v(k);
    for (auto& t : v) t = static_cast<T>(d(rng));
    if (rng() % 3 == 0)
        for (int i = 0; i < k / 2; ++i) v[k - 1 - i] = v[i];
    return v;
}

// Runs one row form on a w x h image and checks every output row; ppDst
// points at the destination rows in reverse order.
template <class S, class D, class Call>
void checkRowCase(int w, int h, int C, int k, int a, int type, S bv, const std::vector<double>& kern, int divisor,
                  ref::RowKind kind, Random<S>& rnd, Call call) {
    SCOPED_TRACE(testing::Message() << w << "x" << h << " C" << C << " k" << k << " a" << a << " type " << type
                                    << " div " << divisor);
    Image<S> src(w, h, C, (w % 3) * 4);
    src.fill(rnd);
    Image<D> dst(w, h, C, 8);
    std::vector<D*> pp(h);
    for (int y = 0; y < h; ++y) pp[y] = dst.row(h - 1 - y);
    ASSERT_EQ(call(src, pp.data()), rvpStsNoErr);
    ASSERT_TRUE(dst.guardsIntact());
    for (int y = 0; y < h; ++y) {
        std::vector<S> row(src.row(y), src.row(y) + w * C);
        const auto want = ref::pipelineRow<S, D>(kind, row, w, C, kern, a, type, bv, divisor);
        ASSERT_TRUE(sameBits(want.data(), pp[y], want.size() * sizeof(D))) << "row " << y;
    }
}

const int kWidths[] = {1, 2, 3, 4, 5, 8, 9, 11, 15, 16, 17, 18, 31, 33};

template <class S> S randomBorder(std::mt19937& rng) {
    if constexpr (std::is_floating_point<S>::value) return static_cast<S>(rng() % 200) - 100.5f;
    else return static_cast<S>(rng());
}

template <class S>
void sweepIntegerRows(const RowForm<S, Rvp16s>& f, int lim, uint32_t seed) {
    std::mt19937 rng(seed);
    Random<S> rnd(seed);
    const int divisors[] = {1, 2, 3, 5, -4, 16, 100};
    for (int w : kWidths)
        for (int k = 1; k <= 9; ++k) {
            const auto taps = kernelFor<Rvp16s>(k, lim, rng);
            const std::vector<double> kern(taps.begin(), taps.end());
            const int a = static_cast<int>(rng() % k), type = static_cast<int>(rng() % 5);
            const int divisor = divisors[rng() % 7];
            const S bv = randomBorder<S>(rng);
            const RvpiSize roi{w, 3};
            auto buf = buffer(f.query, roi, k);
            checkRowCase<S, Rvp16s>(w, 3, f.C, k, a, type, bv, kern, divisor, f.kind, rnd,
                                    [&](Image<S>& s, Rvp16s** pp) {
                                        return f.fn(s.ptr(), s.step(), pp, roi, taps.data(), k, a, type, bv, divisor,
                                                    buf.data());
                                    });
        }
}

void sweepFloatRows(const RowForm32<Rvp32f, Rvp32f>& f, uint32_t seed) {
    std::mt19937 rng(seed);
    Random<Rvp32f> rnd(seed);
    std::uniform_real_distribution<float> d(-2, 2);
    for (int w : kWidths)
        for (int k = 1; k <= 9; ++k) {
            std::vector<float> taps(k);
            for (auto& t : taps) t = d(rng);
            if (rng() % 2) for (int i = 0; i < k / 2; ++i) taps[k - 1 - i] = taps[i];
            const std::vector<double> kern(taps.begin(), taps.end());
            // The whole-image paths need the centred anchor, so favour it.
            const int a = rng() % 2 ? k / 2 : static_cast<int>(rng() % k);
            const int type = static_cast<int>(rng() % 5);
            const float bv = randomBorder<float>(rng);
            const RvpiSize roi{w, 2};
            auto buf = buffer(f.query, roi, k);
            checkRowCase<Rvp32f, Rvp32f>(w, 2, f.C, k, a, type, bv, kern, 1, ref::RowKind::F32, rnd,
                                         [&](Image<Rvp32f>& s, Rvp32f** pp) {
                                             return f.fn(s.ptr(), s.step(), pp, roi, taps.data(), k, a, type, bv,
                                                         buf.data());
                                         });
        }
}

const RowForm<Rvp8u, Rvp16s> k8u16s[] = {
    {rvpiFilterRowBorderPipeline_8u16s_C1R, rvpiFilterRowBorderPipelineGetBufferSize_8u16s_C1R, ref::RowKind::U8to16, 1},
    {rvpiFilterRowBorderPipeline_8u16s_C3R, rvpiFilterRowBorderPipelineGetBufferSize_8u16s_C3R, ref::RowKind::U8to16, 3}};
const RowForm<Rvp16s, Rvp16s> k16s[] = {
    {rvpiFilterRowBorderPipeline_16s_C1R, rvpiFilterRowBorderPipelineGetBufferSize_16s_C1R, ref::RowKind::S16, 1},
    {rvpiFilterRowBorderPipeline_16s_C3R, rvpiFilterRowBorderPipelineGetBufferSize_16s_C3R, ref::RowKind::S16, 3},
    {rvpiFilterRowBorderPipeline_Low_16s_C1R, rvpiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R, ref::RowKind::Low, 1},
    {rvpiFilterRowBorderPipeline_Low_16s_C3R, rvpiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R, ref::RowKind::Low, 3}};
const RowForm32<Rvp32f, Rvp32f> k32f[] = {
    {rvpiFilterRowBorderPipeline_32f_C1R, rvpiFilterRowBorderPipelineGetBufferSize_32f_C1R, 1},
    {rvpiFilterRowBorderPipeline_32f_C3R, rvpiFilterRowBorderPipelineGetBufferSize_32f_C3R, 3}};

TEST(RowPipeline, MatchesReference) {
    uint32_t seed = 100;
    for (const auto& f : k8u16s) sweepIntegerRows(f, 300, seed++);
    for (const auto& f : k16s) sweepIntegerRows(f, 40, seed++);
    for (const auto& f : k32f) sweepFloatRows(f, seed++);
    // Wide taps drive the 16-bit sums past their range: saturation.
    for (const auto& f : k16s) sweepIntegerRows(f, 30000, seed++);
}

// ---- Column stage ------------------------------------------------------------

// ppSrc repeats its first and last entries, as a caller does for borders.
template <class D, class Call>
void checkColumnCase(int w, int h, int C, int k, const std::vector<double>& kern, int divisor, ref::RowKind kind,
                     uint32_t seed, Call call) {
    using S = typename std::conditional<std::is_same<D, Rvp32f>::value, Rvp32f, Rvp16s>::type;
    SCOPED_TRACE(testing::Message() << w << "x" << h << " C" << C << " k" << k << " div " << divisor);
    Image<S> src(w, h, C, 4);
    Random<S> rnd(seed);
    src.fill(rnd);
    std::vector<const S*> pp(h + k - 1);
    for (int i = 0; i < h + k - 1; ++i) pp[i] = src.row(std::min(std::max(i - k / 2, 0), h - 1));
    Image<D> dst(w, h, C, 12);
    ASSERT_EQ(call(pp.data(), dst), rvpStsNoErr);
    ASSERT_TRUE(dst.guardsIntact());
    for (int y = 0; y < h; ++y) {
        const std::vector<const S*> rows(pp.begin() + y, pp.begin() + y + k);
        const auto want = ref::pipelineColumn<S, D>(kind, rows, w * C, kern, divisor);
        ASSERT_TRUE(sameBits(want.data(), dst.row(y), want.size() * sizeof(D))) << "row " << y;
    }
}

template <class D>
using ColFn = RvpStatus (*)(const Rvp16s**, D*, int, RvpiSize, const Rvp16s*, int, int, Rvp8u*);
using ColQuery = RvpStatus (*)(RvpiSize, int, int*);

template <class D>
void sweepIntegerColumns(ColFn<D> fn, ColQuery q, int C, ref::RowKind kind, int lim, uint32_t seed, int h = 5,
                         const std::vector<int>& widths = {1, 2, 7, 8, 9, 16, 17, 33}) {
    std::mt19937 rng(seed);
    for (int w : widths)
        for (int k = 1; k <= 9; ++k) {
            const auto taps = kernelFor<Rvp16s>(k, lim, rng);
            const std::vector<double> kern(taps.begin(), taps.end());
            const int divisor = std::vector<int>{1, 3, 4, -2, 9}[rng() % 5];
            const RvpiSize roi{w, h};
            auto buf = buffer(q, roi, k);
            checkColumnCase<D>(w, h, C, k, kern, divisor, kind, seed + k, [&](const Rvp16s** pp, Image<D>& d) {
                return fn(pp, d.ptr(), d.step(), roi, taps.data(), k, divisor, buf.data());
            });
        }
}

TEST(ColumnPipeline, MatchesReference) {
    sweepIntegerColumns<Rvp16s>(rvpiFilterColumnPipeline_16s_C1R, rvpiFilterColumnPipelineGetBufferSize_16s_C1R, 1,
                                ref::RowKind::S16, 300, 1);
    sweepIntegerColumns<Rvp16s>(rvpiFilterColumnPipeline_16s_C3R, rvpiFilterColumnPipelineGetBufferSize_16s_C3R, 3,
                                ref::RowKind::S16, 300, 2);
    sweepIntegerColumns<Rvp8s>(rvpiFilterColumnPipeline_16s8s_C1R, rvpiFilterColumnPipelineGetBufferSize_16s8s_C1R, 1,
                               ref::RowKind::S16, 5, 3);
    sweepIntegerColumns<Rvp8s>(rvpiFilterColumnPipeline_16s8s_C3R, rvpiFilterColumnPipelineGetBufferSize_16s8s_C3R, 3,
                               ref::RowKind::S16, 5, 4);
    sweepIntegerColumns<Rvp8u>(rvpiFilterColumnPipeline_16s8u_C1R, rvpiFilterColumnPipelineGetBufferSize_16s8u_C1R, 1,
                               ref::RowKind::S16, 5, 5);
    sweepIntegerColumns<Rvp8u>(rvpiFilterColumnPipeline_16s8u_C3R, rvpiFilterColumnPipelineGetBufferSize_16s8u_C3R, 3,
                               ref::RowKind::S16, 5, 6);
    sweepIntegerColumns<Rvp16s>(rvpiFilterColumnPipeline_Low_16s_C1R, rvpiFilterColumnPipelineGetBufferSize_Low_16s_C1R,
                                1, ref::RowKind::Low, 40, 7);
    sweepIntegerColumns<Rvp16s>(rvpiFilterColumnPipeline_Low_16s_C3R, rvpiFilterColumnPipelineGetBufferSize_Low_16s_C3R,
                                3, ref::RowKind::Low, 40, 8);
    std::mt19937 rng(9);
    std::uniform_real_distribution<float> d(-2, 2);
    for (int C : {1, 3})
        for (int w : {1, 5, 16, 17, 300})
            for (int k = 1; k <= 9; ++k) {
                std::vector<float> taps(k);
                for (auto& t : taps) t = d(rng);
                const std::vector<double> kern(taps.begin(), taps.end());
                const RvpiSize roi{w, 4};
                auto fn = C == 1 ? rvpiFilterColumnPipeline_32f_C1R : rvpiFilterColumnPipeline_32f_C3R;
                std::vector<uint8_t> buf(32);
                checkColumnCase<Rvp32f>(w, 4, C, k, kern, 1, ref::RowKind::F32, 10 + k,
                                        [&](const Rvp32f** pp, Image<Rvp32f>& dd) {
                                            return fn(pp, dd.ptr(), dd.step(), roi, taps.data(), k, buf.data());
                                        });
            }
}

// Images past the parallel threshold at 1, 2, 3 and 8 permitted threads give
// the reference result; kernel size 3 keeps the 16s row serial, 7 lets it go.
class PipelineThreads : public testing::TestWithParam<int> {};

TEST_P(PipelineThreads, SameResultAtEveryThreadCount) {
    ScopedThreads threads(GetParam());
    const int w = 700, h = 400;
    std::mt19937 rng(77);
    Random<Rvp16s> rnd16(78);
    Random<Rvp8u> rnd8(79);
    for (int k : {3, 7}) {
        const auto taps = kernelFor<Rvp16s>(k, 50, rng);
        const std::vector<double> kern(taps.begin(), taps.end());
        auto b16 = buffer(rvpiFilterRowBorderPipelineGetBufferSize_16s_C1R, {w, h}, k);
        checkRowCase<Rvp16s, Rvp16s>(w, h, 1, k, k / 2, 3, 0, kern, 3, ref::RowKind::S16, rnd16,
                                     [&](Image<Rvp16s>& s, Rvp16s** pp) {
                                         return rvpiFilterRowBorderPipeline_16s_C1R(s.ptr(), s.step(), pp, {w, h},
                                                                                    taps.data(), k, k / 2, 3, 0, 3,
                                                                                    b16.data());
                                     });
        auto b8 = buffer(rvpiFilterRowBorderPipelineGetBufferSize_8u16s_C3R, {w / 3, h}, k);
        checkRowCase<Rvp8u, Rvp16s>(w / 3, h, 3, k, 0, 2, 9, kern, 7, ref::RowKind::U8to16, rnd8,
                                    [&](Image<Rvp8u>& s, Rvp16s** pp) {
                                        return rvpiFilterRowBorderPipeline_8u16s_C3R(s.ptr(), s.step(), pp,
                                                                                     {w / 3, h}, taps.data(), k, 0, 2,
                                                                                     9, 7, b8.data());
                                    });
        std::vector<float> ft(kern.begin(), kern.end());
        auto bf = buffer(rvpiFilterRowBorderPipelineGetBufferSize_32f_C1R, {w, h}, k);
        Random<Rvp32f> rndf(80);
        checkRowCase<Rvp32f, Rvp32f>(w, h, 1, k, k / 2, 4, 0, kern, 1, ref::RowKind::F32, rndf,
                                     [&](Image<Rvp32f>& s, Rvp32f** pp) {
                                         return rvpiFilterRowBorderPipeline_32f_C1R(s.ptr(), s.step(), pp, {w, h},
                                                                                    ft.data(), k, k / 2, 4, 0,
                                                                                    bf.data());
                                     });
    }
    sweepIntegerColumns<Rvp16s>(rvpiFilterColumnPipeline_16s_C1R, rvpiFilterColumnPipelineGetBufferSize_16s_C1R, 1,
                                ref::RowKind::S16, 100, 81, h, {w});
    sweepIntegerColumns<Rvp8u>(rvpiFilterColumnPipeline_16s8u_C3R, rvpiFilterColumnPipelineGetBufferSize_16s8u_C3R, 3,
                               ref::RowKind::S16, 3, 82, h, {w / 3});
    sweepIntegerColumns<Rvp16s>(rvpiFilterColumnPipeline_Low_16s_C1R, rvpiFilterColumnPipelineGetBufferSize_Low_16s_C1R,
                                1, ref::RowKind::Low, 100, 83, h, {w});
}

INSTANTIATE_TEST_SUITE_P(Threads, PipelineThreads, testing::ValuesIn(threadCounts()));

// ---- Documented behaviour worth seeing spelled out --------------------------

// 16s, 3 taps: the middle rounds half to even, the first and last outputs
// truncate. A flat row of 7 with taps 0 1 0 / 2 gives 3.5 everywhere.
TEST(RowPipeline, EndsTruncateWhereTheMiddleRoundsToEven) {
    const Rvp16s k[3] = {0, 1, 0};
    Rvp16s src[6] = {7, 7, 7, 5, 5, 5};
    Rvp16s out[6];
    Rvp16s* pp[1] = {out};
    std::vector<uint8_t> buf = buffer(rvpiFilterRowBorderPipelineGetBufferSize_16s_C1R, {6, 1}, 3);
    ASSERT_EQ(rvpiFilterRowBorderPipeline_16s_C1R(src, 12, pp, {6, 1}, k, 3, 1, 1, 0, 2, buf.data()), rvpStsNoErr);
    const Rvp16s want[6] = {3, 4, 4, 2, 2, 2};  // 3.5 -> 3 at the head, 4 inside; 2.5 -> 2
    EXPECT_TRUE(sameBits(out, want, sizeof out));
    // The 8u16s form rounds every output alike.
    const Rvp8u s8[6] = {7, 7, 7, 5, 5, 5};
    ASSERT_EQ(rvpiFilterRowBorderPipeline_8u16s_C1R(s8, 6, pp, {6, 1}, k, 3, 1, 1, 0, 2, buf.data()), rvpStsNoErr);
    const Rvp16s want8[6] = {4, 4, 4, 2, 2, 2};
    EXPECT_TRUE(sameBits(out, want8, sizeof out));
}

// 16s saturates where _Low wraps.
TEST(RowPipeline, LowWrapsWhereScaledFormsSaturate) {
    const Rvp16s k[1] = {4};
    const Rvp16s src[2] = {10000, -10000};
    Rvp16s out[2];
    Rvp16s* pp[1] = {out};
    std::vector<uint8_t> buf = buffer(rvpiFilterRowBorderPipelineGetBufferSize_16s_C1R, {2, 1}, 1);
    ASSERT_EQ(rvpiFilterRowBorderPipeline_16s_C1R(src, 4, pp, {2, 1}, k, 1, 0, 0, 0, 1, buf.data()), rvpStsNoErr);
    EXPECT_EQ(out[0], 32767);
    EXPECT_EQ(out[1], -32768);
    ASSERT_EQ(rvpiFilterRowBorderPipeline_Low_16s_C1R(src, 4, pp, {2, 1}, k, 1, 0, 0, 0, 1, buf.data()), rvpStsNoErr);
    EXPECT_EQ(out[0], static_cast<Rvp16s>(40000));
    EXPECT_EQ(out[1], static_cast<Rvp16s>(-40000));
}

// A null ppDst entry stops the row stage after the rows before it; a null
// ppSrc entry fails before any row is written.
TEST(Pipelines, NullRowEntries) {
    const Rvp16s k[3] = {1, 2, 1};
    Image<Rvp16s> src(8, 4), dst(8, 4);
    src.fill(Random<Rvp16s>(5));
    std::vector<Rvp16s*> pp{dst.row(0), dst.row(1), nullptr, dst.row(3)};
    auto buf = buffer(rvpiFilterRowBorderPipelineGetBufferSize_16s_C1R, {8, 4}, 3);
    const auto before = dst.bytes();
    EXPECT_EQ(rvpiFilterRowBorderPipeline_16s_C1R(src.ptr(), src.step(), pp.data(), {8, 4}, k, 3, 1, 1, 0, 4,
                                                  buf.data()), rvpStsNullPtrErr);
    const auto after = dst.bytes();
    EXPECT_NE(std::vector<uint8_t>(after.begin(), after.begin() + 32), std::vector<uint8_t>(before.begin(), before.begin() + 32));
    EXPECT_EQ(std::vector<uint8_t>(after.begin() + 32, after.end()), std::vector<uint8_t>(before.begin() + 32, before.end()));

    std::vector<const Rvp16s*> ps{src.row(0), src.row(1), src.row(2), src.row(3), src.row(3), nullptr};
    auto cb = buffer(rvpiFilterColumnPipelineGetBufferSize_16s_C1R, {8, 4}, 3);
    const auto dstBefore = dst.raw();
    EXPECT_EQ(rvpiFilterColumnPipeline_16s_C1R(ps.data(), dst.ptr(), dst.step(), {8, 4}, k, 3, 4, cb.data()),
              rvpStsNullPtrErr);
    EXPECT_EQ(dst.raw(), dstBefore);
    std::vector<const Rvp32f*> pf(6, reinterpret_cast<const Rvp32f*>(src.ptr()));
    pf[5] = nullptr;
    const Rvp32f kf[3] = {1, 2, 1};
    EXPECT_EQ(rvpiFilterColumnPipeline_32f_C1R(pf.data(), reinterpret_cast<Rvp32f*>(dst.ptr()), dst.step(), {4, 4},
                                               kf, 3, cb.data()), rvpStsNullPtrErr);
    EXPECT_EQ(dst.raw(), dstBefore);
}

TEST(Pipelines, BufferSizes) {
    ScopedThreads threads(2);
    struct Row { RvpStatus (*q)(RvpiSize, int, int*); RvpiSize roi; int k; int want; };
    // 2 * 32 + (h + k) * 2 * 8 + 2 * perThread
    const Row rows[] = {
        {rvpiFilterRowBorderPipelineGetBufferSize_16s_C1R, {10, 20}, 5, 64 + 400 + 2 * 320},
        {rvpiFilterRowBorderPipelineGetBufferSize_8u16s_C1R, {10, 20}, 5, 64 + 400 + 2 * 292},
        {rvpiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R, {10, 20}, 5, 64 + 400 + 2 * 184},
        {rvpiFilterRowBorderPipelineGetBufferSize_32f_C1R, {10, 20}, 5, 64 + 400 + 2 * 704 + 32},
        {rvpiFilterRowBorderPipelineGetBufferSize_32f_C3R, {10, 20}, 5, 64 + 400 + 2 * 992},
        {rvpiFilterColumnPipelineGetBufferSize_16s_C1R, {10, 20}, 5, 64 + 400 + 2 * 176},
        {rvpiFilterColumnPipelineGetBufferSize_16s8u_C1R, {10, 20}, 5, 64 + 400 + 2 * 176},
        {rvpiFilterColumnPipelineGetBufferSize_16s_C3R, {10, 20}, 5, 64 + 400 + 2 * 464},
        {rvpiFilterColumnPipelineGetBufferSize_Low_16s_C1R, {10, 20}, 5, 64 + 400 + 2 * 224},
        {rvpiFilterColumnPipelineGetBufferSize_32f_C1R, {10, 20}, 5, 32},
        {rvpiFilterColumnPipelineGetBufferSize_32f_C3R, {1000, 20}, 9, 32},
    };
    for (const Row& r : rows) {
        int size = 0;
        EXPECT_EQ(r.q(r.roi, r.k, &size), rvpStsNoErr);
        EXPECT_EQ(size, r.want);
    }
    int size = 0;
    EXPECT_EQ(rvpiFilterRowBorderPipelineGetBufferSize_16s_C1R({10, 20}, 5, nullptr), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiFilterRowBorderPipelineGetBufferSize_16s_C1R({0, 20}, 5, &size), rvpStsSizeErr);
    EXPECT_EQ(rvpiFilterColumnPipelineGetBufferSize_32f_C1R({10, 20}, 0, &size), rvpStsSizeErr);
}

TEST(Pipelines, ValidationOrder) {
    Image<Rvp16s> src(8, 3), dst(8, 3);
    src.fill(Random<Rvp16s>(3));
    Rvp16s* pd[3] = {dst.row(0), dst.row(1), dst.row(2)};
    const Rvp16s* ps[5] = {src.row(0), src.row(0), src.row(1), src.row(2), src.row(2)};
    const Rvp16s k[3] = {1, 2, 1};
    std::vector<uint8_t> buf(4096);
    Rvp8u* b = buf.data();
    const Rvp16s* s = src.ptr();
    const auto* s8 = reinterpret_cast<const Rvp8u*>(s);
    const auto* sf = reinterpret_cast<const Rvp32f*>(s);
    auto** pf = reinterpret_cast<Rvp32f**>(pd);
    const Rvp32f kf[3] = {1, 2, 1};
    const auto before = dst.raw();
    struct Row { const char* what; std::function<RvpStatus()> call; RvpStatus want; };
    const Row rows[] = {
        {"null src", [&] { return rvpiFilterRowBorderPipeline_16s_C1R(nullptr, 16, pd, {8, 3}, k, 3, 1, 9, 0, 0, b); }, rvpStsNullPtrErr},
        {"null ppDst", [&] { return rvpiFilterRowBorderPipeline_16s_C1R(s, 16, nullptr, {8, 3}, k, 3, 1, 1, 0, 1, b); }, rvpStsNullPtrErr},
        {"null kernel", [&] { return rvpiFilterRowBorderPipeline_16s_C1R(s, 16, pd, {8, 3}, nullptr, 3, 1, 1, 0, 1, b); }, rvpStsNullPtrErr},
        {"null buffer", [&] { return rvpiFilterRowBorderPipeline_16s_C1R(s, 16, pd, {8, 3}, k, 3, 1, 1, 0, 1, nullptr); }, rvpStsNullPtrErr},
        {"zero height", [&] { return rvpiFilterRowBorderPipeline_16s_C1R(s, 16, pd, {8, 0}, k, 3, 9, 9, 0, 0, b); }, rvpStsSizeErr},
        {"zero kernel", [&] { return rvpiFilterRowBorderPipeline_16s_C1R(s, 16, pd, {8, 3}, k, 0, 0, 1, 0, 1, b); }, rvpStsSizeErr},
        {"anchor = size", [&] { return rvpiFilterRowBorderPipeline_16s_C1R(s, 1, pd, {8, 3}, k, 3, 3, 9, 0, 0, b); }, rvpStsAnchorErr},
        {"negative anchor", [&] { return rvpiFilterRowBorderPipeline_16s_C1R(s, 16, pd, {8, 3}, k, 3, -1, 1, 0, 1, b); }, rvpStsAnchorErr},
        {"short step", [&] { return rvpiFilterRowBorderPipeline_16s_C1R(s, 15, pd, {8, 3}, k, 3, 2, 9, 0, 0, b); }, rvpStsStepErr},
        {"odd step", [&] { return rvpiFilterRowBorderPipeline_16s_C1R(s, 17, pd, {8, 3}, k, 3, 2, 9, 0, 0, b); }, rvpStsNotEvenStepErr},
        {"border 5", [&] { return rvpiFilterRowBorderPipeline_16s_C1R(s, 16, pd, {8, 3}, k, 3, 2, 5, 0, 0, b); }, rvpStsBadArgErr},
        {"border flag", [&] { return rvpiFilterRowBorderPipeline_16s_C1R(s, 16, pd, {8, 3}, k, 3, 2, 0x11, 0, 1, b); }, rvpStsBadArgErr},
        {"divisor 0", [&] { return rvpiFilterRowBorderPipeline_16s_C1R(s, 16, pd, {8, 3}, k, 3, 2, 1, 0, 0, b); }, rvpStsBadArgErr},
        {"8u16s odd step passes to border", [&] { return rvpiFilterRowBorderPipeline_8u16s_C1R(s8, 9, pd, {8, 3}, k, 3, 2, 7, 0, 1, b); }, rvpStsBadArgErr},
        {"32f step", [&] { return rvpiFilterRowBorderPipeline_32f_C1R(sf, 30, pf, {4, 3}, kf, 3, 1, 0, 0, b); }, rvpStsNotEvenStepErr},
        {"C3 step counts channels", [&] { return rvpiFilterRowBorderPipeline_16s_C3R(s, 16, pd, {3, 3}, k, 3, 1, 1, 0, 1, b); }, rvpStsStepErr},
        {"col null src", [&] { return rvpiFilterColumnPipeline_16s_C1R(nullptr, dst.ptr(), 16, {8, 3}, k, 3, 0, b); }, rvpStsNullPtrErr},
        {"col size", [&] { return rvpiFilterColumnPipeline_16s_C1R(ps, dst.ptr(), 16, {8, 3}, k, 0, 0, nullptr); }, rvpStsSizeErr},
        {"col step", [&] { return rvpiFilterColumnPipeline_16s_C1R(ps, dst.ptr(), 14, {8, 3}, k, 3, 0, nullptr); }, rvpStsStepErr},
        {"col odd step", [&] { return rvpiFilterColumnPipeline_16s_C1R(ps, dst.ptr(), 17, {8, 3}, k, 3, 0, nullptr); }, rvpStsNotEvenStepErr},
        {"col null buffer after steps", [&] { return rvpiFilterColumnPipeline_16s_C1R(ps, dst.ptr(), 16, {8, 3}, k, 3, 0, nullptr); }, rvpStsNullPtrErr},
        {"col divisor", [&] { return rvpiFilterColumnPipeline_16s_C1R(ps, dst.ptr(), 16, {8, 3}, k, 3, 0, b); }, rvpStsBadArgErr},
        {"col 8u dst odd step fine", [&] { return rvpiFilterColumnPipeline_16s8u_C1R(ps, reinterpret_cast<Rvp8u*>(dst.ptr()), 9, {8, 3}, k, 3, 0, b); }, rvpStsBadArgErr},
        {"col 32f null buffer", [&] { return rvpiFilterColumnPipeline_32f_C1R(reinterpret_cast<const Rvp32f**>(ps), reinterpret_cast<Rvp32f*>(dst.ptr()), 16, {4, 3}, kf, 3, nullptr); }, rvpStsNullPtrErr},
    };
    for (const Row& r : rows) {
        EXPECT_EQ(r.call(), r.want) << r.what;
        EXPECT_EQ(dst.raw(), before) << r.what << " wrote";
    }
}

}  // namespace
