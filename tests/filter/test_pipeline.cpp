// Row and column pipelines against the reference model: every form, kernel
// sizes 1 to 9 with random anchors, all border types, narrow and wide rows,
// padded steps, rows reached through shuffled pointers, and thread counts
// 1, 2, 3, 8 on images past the parallel threshold.
#include <functional>

#include "reference/ref_filter.h"
#include "support/rvtest.h"

using namespace rvtest;

namespace {

using Query = RvpStatus (*)(RvpiSize, int, int*);

std::vector<uint8_t> buffer(Query q, RvpiSize roi, int k) {
    int size = -1;
    EXPECT_EQ(q(roi, k, &size), rvpStsNoErr);
    return std::vector<uint8_t>(static_cast<size_t>(size), 0xCD);
}

// Taps of mixed signs within +-lim; every third kernel is symmetric so the
// mirrored-pair paths are reached.
template <class T> std::vector<T> kernelFor(int k, int lim, std::mt19937& rng) {
    std::uniform_real_distribution<double> d(-lim, lim);
    std::vector<T> v(k);
    for (auto& t : v) t = static_cast<T>(std::is_integral<T>::value ? std::round(d(rng)) : d(rng));
    if (rng() % 3 == 0)
        for (int i = 0; i < k / 2; ++i) v[k - 1 - i] = v[i];
    return v;
}

// A row form with the divisor argument made uniform (32f ignores it).
template <class S, class D> struct RowCase {
    ref::RowKind kind; int C; Query query;
    std::function<RvpStatus(const S*, int, D**, RvpiSize, const D*, int, int, int, S, int, Rvp8u*)> run;
};

#define ROW_INT(form, kind, C) \
    {kind, C, rvpiFilterRowBorderPipelineGetBufferSize_##form, rvpiFilterRowBorderPipeline_##form}
#define ROW_32F(form, C)                                                                                      \
    {ref::RowKind::F32, C, rvpiFilterRowBorderPipelineGetBufferSize_##form,                                   \
     [](const Rvp32f* s, int ss, Rvp32f** pp, RvpiSize roi, const Rvp32f* t, int k, int a, int bt, Rvp32f bv, \
        int, Rvp8u* b) { return rvpiFilterRowBorderPipeline_##form(s, ss, pp, roi, t, k, a, bt, bv, b); }}

const RowCase<Rvp8u, Rvp16s> k8u[] = {ROW_INT(8u16s_C1R, ref::RowKind::U8to16, 1),
                                      ROW_INT(8u16s_C3R, ref::RowKind::U8to16, 3)};
const RowCase<Rvp16s, Rvp16s> k16s[] = {ROW_INT(16s_C1R, ref::RowKind::S16, 1), ROW_INT(16s_C3R, ref::RowKind::S16, 3),
                                        ROW_INT(Low_16s_C1R, ref::RowKind::Low, 1),
                                        ROW_INT(Low_16s_C3R, ref::RowKind::Low, 3)};
const RowCase<Rvp32f, Rvp32f> k32f[] = {ROW_32F(32f_C1R, 1), ROW_32F(32f_C3R, 3)};

// Runs a form over the given widths and kernel sizes; ppDst points at the
// destination rows in reverse order. Every output row must match the model.
template <class S, class D>
void sweepRows(const RowCase<S, D>& f, int lim, uint32_t seed, const std::vector<int>& widths, int h,
               const std::vector<int>& sizes) {
    std::mt19937 rng(seed);
    Random<S> rnd(seed);
    for (int w : widths)
        for (int k : sizes) {
            const auto taps = kernelFor<D>(k, lim, rng);
            const std::vector<double> kern(taps.begin(), taps.end());
            // The whole-image float paths need the centred anchor: favour it.
            const int a = rng() % 2 ? k / 2 : static_cast<int>(rng() % k), type = static_cast<int>(rng() % 5);
            const int divisor = std::vector<int>{1, 2, 3, 5, -4, 16, 100}[rng() % 7];
            const S bv = static_cast<S>(std::is_integral<S>::value ? rng() : rng() % 200);
            SCOPED_TRACE(testing::Message() << w << "x" << h << " C" << f.C << " k" << k << " a" << a << " type "
                                            << type << " div " << divisor);
            Image<S> src(w, h, f.C, (w % 3) * 4);
            src.fill(rnd);
            Image<D> dst(w, h, f.C, 8);
            std::vector<D*> pp(h);
            for (int y = 0; y < h; ++y) pp[y] = dst.row(h - 1 - y);
            auto buf = buffer(f.query, {w, h}, k);
            ASSERT_EQ(f.run(src.ptr(), src.step(), pp.data(), {w, h}, taps.data(), k, a, type, bv, divisor, buf.data()),
                      rvpStsNoErr);
            ASSERT_TRUE(dst.guardsIntact());
            for (int y = 0; y < h; ++y) {
                const std::vector<S> row(src.row(y), src.row(y) + w * f.C);
                const auto want = ref::pipelineRow<S, D>(f.kind, row, w, f.C, kern, a, type, bv, divisor);
                ASSERT_TRUE(sameBits(want.data(), pp[y], want.size() * sizeof(D))) << "row " << y;
            }
        }
}

// A column form; ppSrc repeats its first and last entries, as a caller does
// for borders.
template <class S, class D> struct ColCase {
    ref::RowKind kind; int C; Query query;
    std::function<RvpStatus(const S**, D*, int, RvpiSize, const S*, int, int, Rvp8u*)> run;
};

#define COL_INT(form, kind, C) {kind, C, rvpiFilterColumnPipelineGetBufferSize_##form, rvpiFilterColumnPipeline_##form}
#define COL_32F(form, C)                                                                                              \
    {ref::RowKind::F32, C, rvpiFilterColumnPipelineGetBufferSize_##form,                                              \
     [](const Rvp32f** pp, Rvp32f* d, int ds, RvpiSize roi, const Rvp32f* t, int k, int, Rvp8u* b) {                  \
         return rvpiFilterColumnPipeline_##form(pp, d, ds, roi, t, k, b);                                             \
     }}

template <class S, class D>
void sweepColumns(const ColCase<S, D>& f, int lim, uint32_t seed, const std::vector<int>& widths, int h,
                  const std::vector<int>& sizes) {
    std::mt19937 rng(seed);
    Random<S> rnd(seed);
    for (int w : widths)
        for (int k : sizes) {
            const auto taps = kernelFor<S>(k, lim, rng);
            const std::vector<double> kern(taps.begin(), taps.end());
            const int divisor = std::vector<int>{1, 3, 4, -2, 9}[rng() % 5];
            SCOPED_TRACE(testing::Message() << w << "x" << h << " C" << f.C << " k" << k << " div " << divisor);
            Image<S> src(w, h, f.C, 4);
            src.fill(rnd);
            std::vector<const S*> pp(h + k - 1);
            for (int i = 0; i < h + k - 1; ++i) pp[i] = src.row(std::min(std::max(i - k / 2, 0), h - 1));
            Image<D> dst(w, h, f.C, 12);
            auto buf = buffer(f.query, {w, h}, k);
            ASSERT_EQ(f.run(pp.data(), dst.ptr(), dst.step(), {w, h}, taps.data(), k, divisor, buf.data()), rvpStsNoErr);
            ASSERT_TRUE(dst.guardsIntact());
            for (int y = 0; y < h; ++y) {
                const std::vector<const S*> rows(pp.begin() + y, pp.begin() + y + k);
                const auto want = ref::pipelineColumn<S, D>(f.kind, rows, w * f.C, kern, divisor);
                ASSERT_TRUE(sameBits(want.data(), dst.row(y), want.size() * sizeof(D))) << "row " << y;
            }
        }
}

const ColCase<Rvp16s, Rvp16s> kCol16[] = {COL_INT(16s_C1R, ref::RowKind::S16, 1), COL_INT(16s_C3R, ref::RowKind::S16, 3),
                                         COL_INT(Low_16s_C1R, ref::RowKind::Low, 1),
                                         COL_INT(Low_16s_C3R, ref::RowKind::Low, 3)};
const ColCase<Rvp16s, Rvp8s> kCol8s[] = {COL_INT(16s8s_C1R, ref::RowKind::S16, 1), COL_INT(16s8s_C3R, ref::RowKind::S16, 3)};
const ColCase<Rvp16s, Rvp8u> kCol8u[] = {COL_INT(16s8u_C1R, ref::RowKind::S16, 1), COL_INT(16s8u_C3R, ref::RowKind::S16, 3)};
const ColCase<Rvp32f, Rvp32f> kCol32f[] = {COL_32F(32f_C1R, 1), COL_32F(32f_C3R, 3)};

const std::vector<int> kWidths{1, 2, 3, 4, 5, 8, 9, 11, 15, 16, 17, 18, 31, 33};
const std::vector<int> kSizes{1, 2, 3, 4, 5, 6, 7, 8, 9};

TEST(RowPipeline, MatchesReference) {
    uint32_t seed = 100;
    for (const auto& f : k8u) sweepRows(f, 300, seed++, kWidths, 3, kSizes);
    for (const auto& f : k16s) sweepRows(f, 40, seed++, kWidths, 3, kSizes);
    for (rvcv::Isa isa : isaLevels()) {  // the float 3- and 5-tap kernels exist per level
        ScopedIsa scoped(isa);
        for (const auto& f : k32f) sweepRows(f, 2, seed++, kWidths, 2, kSizes);
    }
    for (const auto& f : k16s) sweepRows(f, 30000, seed++, kWidths, 2, kSizes);  // sums past 16 bits: saturation
}

TEST(ColumnPipeline, MatchesReference) {
    const std::vector<int> widths{1, 2, 7, 8, 9, 16, 17, 33};
    uint32_t seed = 1;
    for (const auto& f : kCol16) sweepColumns(f, f.kind == ref::RowKind::Low ? 40 : 300, seed++, widths, 5, kSizes);
    for (const auto& f : kCol8s) sweepColumns(f, 5, seed++, widths, 5, kSizes);
    for (const auto& f : kCol8u) sweepColumns(f, 5, seed++, widths, 5, kSizes);
    for (rvcv::Isa isa : isaLevels()) {
        ScopedIsa scoped(isa);
        for (const auto& f : kCol32f) sweepColumns(f, 2, seed++, widths, 4, kSizes);
    }
}

// Past the parallel threshold at 1, 2, 3 and 8 permitted threads: the same
// model result. Kernel size 3 keeps the 16s row serial, 7 lets it go.
class PipelineThreads : public testing::TestWithParam<int> {};

TEST_P(PipelineThreads, SameResultAtEveryThreadCount) {
    ScopedThreads threads(GetParam());
    sweepRows(k16s[0], 50, 77, {700}, 400, {3, 7});
    sweepRows(k8u[1], 50, 78, {233}, 400, {3, 7});
    sweepRows(k32f[0], 2, 79, {700}, 400, {5, 11});
    sweepColumns(kCol16[0], 100, 81, {700}, 400, {3, 7});
    sweepColumns(kCol8u[1], 3, 82, {233}, 400, {5});
    sweepColumns(kCol16[2], 100, 83, {700}, 400, {9});
}

INSTANTIATE_TEST_SUITE_P(Threads, PipelineThreads, testing::ValuesIn(threadCounts()));

// A null ppDst entry stops the row stage after the rows before it.
TEST(Pipelines, NullRowEntries) {
    const Rvp16s k[3] = {1, 2, 1};
    Image<Rvp16s> src(8, 4), dst(8, 4);
    src.fill(Random<Rvp16s>(5));
    std::vector<Rvp16s*> pp{dst.row(0), dst.row(1), nullptr, dst.row(3)};
    auto buf = buffer(rvpiFilterRowBorderPipelineGetBufferSize_16s_C1R, {8, 4}, 3);
    const std::vector<uint8_t> before = dst.raw();
    EXPECT_EQ(rvpiFilterRowBorderPipeline_16s_C1R(src.ptr(), src.step(), pp.data(), {8, 4}, k, 3, 1, 1, 0, 4, buf.data()),
              rvpStsNullPtrErr);
    const auto& after = dst.raw();
    const auto split = reinterpret_cast<const uint8_t*>(dst.row(2)) - after.data();
    EXPECT_FALSE(std::equal(after.begin(), after.begin() + split, before.begin()));
    EXPECT_TRUE(std::equal(after.begin() + split, after.end(), before.begin() + split));
}

// At 2 threads: 2 * 32 + (h + k) * 2 * 8 + 2 * perThread.
TEST(Pipelines, BufferSizes) {
    ScopedThreads threads(2);
    const struct { Query q; int width, k, want; } rows[] = {
        {rvpiFilterRowBorderPipelineGetBufferSize_16s_C1R, 10, 5, 464 + 2 * 320},
        {rvpiFilterRowBorderPipelineGetBufferSize_8u16s_C1R, 10, 5, 464 + 2 * 292},
        {rvpiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R, 10, 5, 464 + 2 * 184},
        {rvpiFilterRowBorderPipelineGetBufferSize_32f_C1R, 10, 5, 464 + 2 * 704 + 32},
        {rvpiFilterRowBorderPipelineGetBufferSize_32f_C3R, 10, 5, 464 + 2 * 992},
        {rvpiFilterColumnPipelineGetBufferSize_16s8u_C1R, 10, 5, 464 + 2 * 176},
        {rvpiFilterColumnPipelineGetBufferSize_16s_C3R, 10, 5, 464 + 2 * 464},
        {rvpiFilterColumnPipelineGetBufferSize_Low_16s_C1R, 10, 5, 464 + 2 * 224},
        {rvpiFilterColumnPipelineGetBufferSize_32f_C3R, 1000, 9, 32},
    };
    for (const auto& r : rows) {
        int size = 0;
        EXPECT_EQ(r.q({r.width, 20}, r.k, &size), rvpStsNoErr);
        EXPECT_EQ(size, r.want);
    }
    int size = 0;
    EXPECT_EQ(rvpiFilterRowBorderPipelineGetBufferSize_16s_C1R({10, 20}, 5, nullptr), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiFilterRowBorderPipelineGetBufferSize_16s_C1R({0, 20}, 5, &size), rvpStsSizeErr);
    EXPECT_EQ(rvpiFilterColumnPipelineGetBufferSize_32f_C1R({10, 20}, 0, &size), rvpStsSizeErr);
}

TEST(Pipelines, ValidationOrder) {
    Image<Rvp16s> src(8, 3), dst(8, 3);
    Rvp16s* pd[3] = {dst.row(0), dst.row(1), dst.row(2)};
    const Rvp16s* ps[5] = {src.row(0), src.row(0), src.row(1), src.row(2), src.row(2)};
    const Rvp16s* pn[5] = {src.row(0), src.row(0), src.row(1), src.row(2), nullptr};  // refused before any row is written
    const Rvp16s k[3] = {1, 2, 1};
    const Rvp32f kf[3] = {1, 2, 1};
    std::vector<uint8_t> buf(4096);
    Rvp8u* b = buf.data();
    const Rvp16s* s = src.ptr();
    Rvp16s* d = dst.ptr();
    auto** pf = reinterpret_cast<Rvp32f**>(pd);
    const auto before = dst.raw();
    const struct { const char* what; std::function<RvpStatus()> call; RvpStatus want; } rows[] = {
        {"null src", [&] { return rvpiFilterRowBorderPipeline_16s_C1R(nullptr, 16, pd, {8, 3}, k, 3, 1, 9, 0, 0, b); }, rvpStsNullPtrErr},
        {"null buffer", [&] { return rvpiFilterRowBorderPipeline_16s_C1R(s, 16, pd, {8, 3}, k, 3, 1, 1, 0, 1, nullptr); }, rvpStsNullPtrErr},
        {"zero height", [&] { return rvpiFilterRowBorderPipeline_16s_C1R(s, 16, pd, {8, 0}, k, 3, 9, 9, 0, 0, b); }, rvpStsSizeErr},
        {"anchor = size", [&] { return rvpiFilterRowBorderPipeline_16s_C1R(s, 1, pd, {8, 3}, k, 3, 3, 9, 0, 0, b); }, rvpStsAnchorErr},
        {"short step", [&] { return rvpiFilterRowBorderPipeline_16s_C1R(s, 15, pd, {8, 3}, k, 3, 2, 9, 0, 0, b); }, rvpStsStepErr},
        {"odd step", [&] { return rvpiFilterRowBorderPipeline_16s_C1R(s, 17, pd, {8, 3}, k, 3, 2, 9, 0, 0, b); }, rvpStsNotEvenStepErr},
        {"border 5", [&] { return rvpiFilterRowBorderPipeline_16s_C1R(s, 16, pd, {8, 3}, k, 3, 2, 5, 0, 0, b); }, rvpStsBadArgErr},
        {"divisor 0", [&] { return rvpiFilterRowBorderPipeline_16s_C1R(s, 16, pd, {8, 3}, k, 3, 2, 1, 0, 0, b); }, rvpStsBadArgErr},
        {"8u16s: no evenness test", [&] { return rvpiFilterRowBorderPipeline_8u16s_C1R(reinterpret_cast<const Rvp8u*>(s), 9, pd, {8, 3}, k, 3, 2, 7, 0, 1, b); }, rvpStsBadArgErr},
        {"32f: step x4", [&] { return rvpiFilterRowBorderPipeline_32f_C1R(reinterpret_cast<const Rvp32f*>(s), 30, pf, {4, 3}, kf, 3, 1, 0, 0, b); }, rvpStsNotEvenStepErr},
        {"C3 step counts channels", [&] { return rvpiFilterRowBorderPipeline_16s_C3R(s, 16, pd, {3, 3}, k, 3, 1, 1, 0, 1, b); }, rvpStsStepErr},
        {"col null src", [&] { return rvpiFilterColumnPipeline_16s_C1R(nullptr, d, 16, {8, 3}, k, 3, 0, b); }, rvpStsNullPtrErr},
        {"col null entry", [&] { return rvpiFilterColumnPipeline_16s_C1R(pn, d, 16, {8, 3}, k, 3, 4, b); }, rvpStsNullPtrErr},
        {"col 32f null entry", [&] { return rvpiFilterColumnPipeline_32f_C1R(reinterpret_cast<const Rvp32f**>(pn), reinterpret_cast<Rvp32f*>(d), 16, {4, 3}, kf, 3, b); }, rvpStsNullPtrErr},
        {"col step", [&] { return rvpiFilterColumnPipeline_16s_C1R(ps, d, 14, {8, 3}, k, 3, 0, nullptr); }, rvpStsStepErr},
        {"col null buffer after steps", [&] { return rvpiFilterColumnPipeline_16s_C1R(ps, d, 16, {8, 3}, k, 3, 0, nullptr); }, rvpStsNullPtrErr},
        {"col divisor", [&] { return rvpiFilterColumnPipeline_16s_C1R(ps, d, 16, {8, 3}, k, 3, 0, b); }, rvpStsBadArgErr},
        {"col 8u odd step fine", [&] { return rvpiFilterColumnPipeline_16s8u_C1R(ps, reinterpret_cast<Rvp8u*>(d), 9, {8, 3}, k, 3, 0, b); }, rvpStsBadArgErr},
        {"col 32f null buffer", [&] { return rvpiFilterColumnPipeline_32f_C1R(reinterpret_cast<const Rvp32f**>(ps), reinterpret_cast<Rvp32f*>(d), 16, {4, 3}, kf, 3, nullptr); }, rvpStsNullPtrErr},
    };
    for (const auto& r : rows) {
        EXPECT_EQ(r.call(), r.want) << r.what;
        EXPECT_EQ(dst.raw(), before) << r.what << " wrote";
    }
}

}  // namespace
