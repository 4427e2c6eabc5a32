// Gaussian 5x5 pyramid steps against the reference model: both directions,
// 8u and 32f, one and three channels, sizes from 1x1 past the thread
// threshold, padded steps, every dispatch level and thread counts 1, 2, 3, 8;
// column chunks of any width; validation in order with nothing written.
#include <climits>
#include <map>
#include <string>

#include "pyramid/rvcvgauss5.h"
#include "reference/ref_gauss5.h"
#include "support/rvtest.h"

using namespace rvtest;

namespace {

template <class T> using StepFn = RvpStatus (*)(const T*, int, T*, int, RvpiSize, Rvp8u*);

template <class T> constexpr int dataType() { return sizeof(T) == 1 ? RVP_SAMPLE_8U : RVP_SAMPLE_32F; }

RvpiSize dstSize(bool down, RvpiSize s) {
    return down ? RvpiSize{(s.width + 1) / 2, (s.height + 1) / 2} : RvpiSize{2 * s.width, 2 * s.height};
}

template <class T> std::vector<uint8_t> asBytes(const std::vector<T>& v) {
    std::vector<uint8_t> b(v.size() * sizeof(T));
    std::memcpy(b.data(), v.data(), b.size());
    return b;
}

struct Case { int w, h, pad; };
// Small and odd shapes, then one per form past the thread threshold (131072
// output samples, 16 rows a band).
const Case kSmall[] = {{1, 1, 0}, {1, 7, 4}, {7, 1, 0},  {2, 2, 8},   {3, 5, 0},   {5, 3, 4},  {16, 9, 0},
                       {17, 4, 12}, {31, 6, 0}, {33, 3, 4}, {47, 10, 0}, {65, 2, 20}, {100, 37, 8}};

template <class T>
void check(bool down, StepFn<T> fn, int C, Case big, uint32_t seed) {
    std::vector<Case> cases(std::begin(kSmall), std::end(kSmall));
    cases.push_back(big);
    static std::map<std::string, std::vector<uint8_t>> cache;  // the model's results, shared by all paths
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << (down ? "down " : "up ") << c.w << "x" << c.h << "x" << C << " pad "
                                        << c.pad << " seed " << seed);
        Image<T> src(c.w, c.h, C, c.pad);
        Random<T> rnd(seed + 977 * c.w + c.h);
        src.fill(rnd);
        const RvpiSize ds = dstSize(down, src.size());
        Image<T> dst(ds.width, ds.height, C, c.pad + 4);
        int bytes = 0;
        ASSERT_EQ((down ? rvpiPyrDownGetBufSize_Gauss5x5 : rvpiPyrUpGetBufSize_Gauss5x5)(c.w, dataType<T>(), C, &bytes),
                  rvpStsNoErr);
        std::vector<Rvp8u> buf(static_cast<size_t>(bytes));
        ASSERT_EQ(fn(src.ptr(), src.step(), dst.ptr(), dst.step(), src.size(), buf.data()), rvpStsNoErr);
        ASSERT_TRUE(dst.guardsIntact());
        const std::string key = std::to_string(down) + "/" + std::to_string(sizeof(T)) + "/" + std::to_string(C) + "/" +
                                std::to_string(c.w) + "x" + std::to_string(c.h) + "/" + std::to_string(seed);
        auto it = cache.find(key);
        if (it == cache.end()) {
            const ref::Src<T> s{src.ptr(), src.step(), c.w, c.h, C};
            it = cache.emplace(key, asBytes(down ? ref::pyrDown(s) : ref::pyrUp(s))).first;
        }
        ASSERT_TRUE(dst.bytes() == it->second);
    }
}

class Gauss5Across : public AcrossPaths {};

TEST_P(Gauss5Across, MatchesReference) {
    check<Rvp8u>(true, rvpiPyrDown_Gauss5x5_8u_C1R, 1, {1030, 520, 4}, 1);
    check<Rvp8u>(true, rvpiPyrDown_Gauss5x5_8u_C3R, 3, {601, 300, 0}, 2);
    check<Rvp32f>(true, rvpiPyrDown_Gauss5x5_32f_C1R, 1, {1030, 521, 8}, 3);
    check<Rvp32f>(true, rvpiPyrDown_Gauss5x5_32f_C3R, 3, {599, 301, 4}, 4);
    check<Rvp8u>(false, rvpiPyrUp_Gauss5x5_8u_C1R, 1, {261, 260, 4}, 5);
    check<Rvp8u>(false, rvpiPyrUp_Gauss5x5_8u_C3R, 3, {151, 150, 0}, 6);
    check<Rvp32f>(false, rvpiPyrUp_Gauss5x5_32f_C1R, 1, {259, 261, 8}, 7);
    check<Rvp32f>(false, rvpiPyrUp_Gauss5x5_32f_C3R, 3, {150, 151, 4}, 8);
}

INSTANTIATE_TEST_SUITE_P(Paths, Gauss5Across, testing::ValuesIn(pathConfigs()), pathName);

// Bands of threads other than the caller's cut rows into column chunks that
// fit their stack; every chunk width gives the bits of whole rows.
TEST(Gauss5Kernels, ChunksGiveSameBits) {
    for (rvcv::Isa isa : isaLevels()) {
        ScopedIsa scoped(isa);
        const rvcv::Gauss5Kernels& k = rvcv::pick(rvcv::m7::kGauss5, rvcv::avx2::kGauss5);
        const rvcv::Gauss5Band bands[] = {k.down8uC1, k.down8uC3, k.down32fC1, k.down32fC3,
                                          k.up8uC1,   k.up8uC3,   k.up32fC1,   k.up32fC3};
        for (int f = 0; f < 8; ++f) {
            const bool down = f < 4, is8u = f % 4 < 2;
            const int C = f % 2 ? 3 : 1, sz = is8u ? 1 : 4, w = 53, h = 9;
            std::vector<uint8_t> src(static_cast<size_t>(w) * h * C * sz);
            std::mt19937 rng(f);
            for (size_t i = 0; i < src.size(); i += sz) {
                if (is8u) src[i] = static_cast<uint8_t>(rng());
                else { const float v = static_cast<float>(rng() % 20001) / 7 - 1000; std::memcpy(&src[i], &v, 4); }
            }
            const RvpiSize ds = dstSize(down, {w, h});
            const int64_t dstStep = int64_t{ds.width} * C * sz;
            const int rows = down ? ds.height : h;
            std::vector<uint8_t> whole(static_cast<size_t>(dstStep * ds.height)), part(whole.size());
            std::vector<uint8_t> scratch(1 << 16);
            bands[f](src.data(), int64_t{w} * C * sz, w, h, whole.data(), dstStep, 0, rows, scratch.data(), w);
            for (int chunk : {1, 2, 5, 16}) {
                std::fill(part.begin(), part.end(), 0);
                bands[f](src.data(), int64_t{w} * C * sz, w, h, part.data(), dstStep, 0, rows, scratch.data(), chunk);
                EXPECT_EQ(part, whole) << "form " << f << " chunk " << chunk << " " << rvcv::isaName(isa);
            }
        }
    }
}

// Each row: a bad argument, the status it must give, and nothing written.
TEST(Gauss5, Validation) {
    struct Q { int w, type, ch; bool null; RvpStatus want; };
    const Q queries[] = {{8, 1, 1, true, rvpStsNullPtrErr},       {0, 99, 7, false, rvpStsSizeErr},
                         {8, 5, 7, false, rvpStsInterpolationErr}, {8, 13, 2, false, rvpStsChannelErr},
                         {INT_MAX, 1, 1, false, rvpStsSizeErr},    {715827882, 13, 3, false, rvpStsSizeErr}};
    for (auto q : queries)
        for (auto fn : {rvpiPyrDownGetBufSize_Gauss5x5, rvpiPyrUpGetBufSize_Gauss5x5}) {
            int size = -7;
            EXPECT_EQ(fn(q.w, q.type, q.ch, q.null ? nullptr : &size), q.want) << q.w << " " << q.type << " " << q.ch;
            EXPECT_EQ(size, -7);
        }
    int size = 0;
    ASSERT_EQ(rvpiPyrDownGetBufSize_Gauss5x5(1920, RVP_SAMPLE_8U, 1, &size), rvpStsNoErr);
    EXPECT_EQ(size, 2 * ((4 * 960 + 7) + 192) + 96);
    ASSERT_EQ(rvpiPyrUpGetBufSize_Gauss5x5(640, RVP_SAMPLE_32F, 3, &size), rvpStsNoErr);
    EXPECT_EQ(size, 2 * 4 * ((640 + 2) * 3 + 64) + 64);

    Image<Rvp32f> src(8, 4), dst(16, 8);
    src.fill(Random<Rvp32f>(3));
    std::vector<Rvp8u> buf(1 << 12);
    Rvp8u* b = buf.data();
    const Rvp32f* s = src.ptr();
    Rvp32f* d = dst.ptr();
    const int ss = src.step(), dsd = 32, dsu = dst.step();
    const RvpiSize r = src.size();
    struct Row { StepFn<Rvp32f> fn; const Rvp32f* s; int ss; Rvp32f* d; int ds; RvpiSize r; Rvp8u* b; RvpStatus want; };
    const auto down = rvpiPyrDown_Gauss5x5_32f_C1R, up = rvpiPyrUp_Gauss5x5_32f_C1R;
    const Row rows[] = {
        {down, nullptr, ss, d, dsd, r, b, rvpStsNullPtrErr},       {up, s, ss, nullptr, dsu, r, b, rvpStsNullPtrErr},
        {down, s, ss, d, dsd, r, nullptr, rvpStsNullPtrErr},       {down, s, 0, d, dsd, {0, 4}, b, rvpStsSizeErr},
        {up, s, ss, d, dsu, {8, -1}, b, rvpStsSizeErr},            {down, s, ss - 4, d, dsd, r, b, rvpStsStepErr},
        {down, s, ss, d, 12, r, b, rvpStsStepErr},                 {up, s, ss, d, 60, r, b, rvpStsStepErr},
        {down, s, ss + 2, d, dsd, r, b, rvpStsNotEvenStepErr},     {up, s, ss, d, dsu + 1, r, b, rvpStsNotEvenStepErr},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.fn(row.s, row.ss, row.d, row.ds, row.r, row.b), row.want) << &row - rows;
        EXPECT_TRUE(dst.guardsIntact());
        for (Rvp8u v : dst.bytes()) ASSERT_EQ(v, kCanary);
    }
    // Widths whose buffer would not fit an int, with steps that could hold
    // them: refused before anything is read.
    const Rvp8u one = 0;
    Rvp8u out = 0x5A;
    EXPECT_EQ(rvpiPyrDown_Gauss5x5_8u_C1R(&one, 1500000000, &out, 750000000, {1500000000, 1}, b), rvpStsSizeErr);
    EXPECT_EQ(rvpiPyrUp_Gauss5x5_8u_C1R(&one, 600000000, &out, 1200000000, {600000000, 1}, b), rvpStsSizeErr);
    EXPECT_EQ(out, 0x5A);
}

}  // namespace
