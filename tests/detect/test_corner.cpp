// Corner responses against a reference built from the library's own filters
// and the finishing formulas: random and smooth images over many sizes, both
// source types, every filter choice, every thread count (the smoothing runs
// in place on one thread and out of place on more; 1x1 and single-row images
// are the flat cases), the buffer size, and validation order.
#include <algorithm>
#include <cmath>

#include "reference/ref_corner.h"
#include "support/rvtest.h"

using namespace rvtest;

namespace {

const ref::Corner kChoices[] = {{0, 3, 3}, {0, 3, 5}, {0, 5, 3}, {0, 5, 5}, {1, 3, 3}, {1, 3, 5}};

template <class T> RvpStatus bufferSize(bool vecs, const T*, RvpiSize s, const ref::Corner& k, int* n) {
    if constexpr (std::is_same<T, Rvp8u>::value)
        return (vecs ? rvpiEigenValsVecsGetBufferSize_8u32f_C1R : rvpiMinEigenValGetBufferSize_8u32f_C1R)(s, k.aperture, k.avg, n);
    else return (vecs ? rvpiEigenValsVecsGetBufferSize_32f_C1R : rvpiMinEigenValGetBufferSize_32f_C1R)(s, k.aperture, k.avg, n);
}
template <class T> RvpStatus corner(bool vecs, const T* p, int ps, Rvp32f* d, int ds, RvpiSize s, const ref::Corner& k, Rvp8u* b) {
    if constexpr (std::is_same<T, Rvp8u>::value)
        return (vecs ? rvpiEigenValsVecs_8u32f_C1R : rvpiMinEigenVal_8u32f_C1R)(p, ps, d, ds, s, k.kernType, k.aperture, k.avg, b);
    else return (vecs ? rvpiEigenValsVecs_32f_C1R : rvpiMinEigenVal_32f_C1R)(p, ps, d, ds, s, k.kernType, k.aperture, k.avg, b);
}

// Runs one function with a guarded, misaligned buffer of exactly the queried
// size and returns its output (region only).
template <class T>
std::vector<float> run(bool vecs, const Image<T>& src, const ref::Corner& k, int shift) {
    int size = 0;
    EXPECT_EQ(bufferSize(vecs, src.ptr(), src.size(), k, &size), rvpStsNoErr);
    std::vector<Rvp8u> buf(static_cast<size_t>(size) + shift + kGuard, kCanary);
    Image<Rvp32f> dst(src.width(), src.height(), vecs ? 6 : 1, 4 * (shift % 3));
    EXPECT_EQ(corner(vecs, src.ptr(), src.step(), dst.ptr(), dst.step(), src.size(), k, buf.data() + shift), rvpStsNoErr);
    EXPECT_TRUE(dst.guardsIntact());
    EXPECT_TRUE(std::all_of(buf.end() - kGuard, buf.end(), [](Rvp8u v) { return v == kCanary; }));
    std::vector<float> out(static_cast<size_t>(src.width()) * src.height() * (vecs ? 6 : 1));
    std::memcpy(out.data(), dst.bytes().data(), out.size() * 4);
    return out;
}

template <class T>
std::vector<float> expected(bool vecs, const Image<T>& src, const ref::Corner& k) {
    const ref::Tensor t = ref::cornerTensor(src.ptr(), src.step(), src.width(), src.height(), k);
    return vecs ? ref::eigenValsVecs(t, k) : ref::minEigenVal(t, k);
}

// Noise, or a smooth blob with noise, so the tests of the eigenvector finish
// take every branch.
template <class T> void fillScene(Image<T>& im, uint32_t seed, bool smooth) {
    std::mt19937 rng(seed);
    for (int y = 0; y < im.height(); ++y)
        for (int x = 0; x < im.width(); ++x) {
            const int noise = static_cast<int>(rng() % (smooth ? 4 : 256));
            const int base = smooth ? (x * x + 3 * y * y + 2 * x * y) % 240 : 0;
            im.at(x, y) = static_cast<T>(base + noise);
        }
}

class CornerPaths : public AcrossPaths {};

template <class T> void compareAll() {
    const RvpiSize sizes[] = {{1, 1}, {2, 3}, {5, 1}, {1, 6}, {7, 9}, {15, 4}, {16, 5}, {17, 8}, {33, 13}, {70, 31}};
    uint32_t seed = 11;
    for (const RvpiSize s : sizes)
        for (const ref::Corner& k : kChoices)
            for (int vecs = 0; vecs < 2; ++vecs) {
                Image<T> src(s.width, s.height, 1, static_cast<int>(seed % 3) * static_cast<int>(sizeof(T)));
                ++seed;
                fillScene(src, seed, seed % 2 == 0);
                const auto got = run(vecs != 0, src, k, static_cast<int>(seed % 7));
                ASSERT_TRUE(sameBits(got.data(), expected(vecs != 0, src, k).data(), got.size() * 4))
                    << s.width << "x" << s.height << " kern " << k.kernType << " ap " << k.aperture << " avg "
                    << k.avg << " vecs " << vecs << " seed " << seed;
            }
}

TEST_P(CornerPaths, MatchesReference8u) { compareAll<Rvp8u>(); }
TEST_P(CornerPaths, MatchesReference32f) { compareAll<Rvp32f>(); }

INSTANTIATE_TEST_SUITE_P(All, CornerPaths, testing::ValuesIn(pathConfigs()), pathName);

// Padded width x height x bytes of the five areas, alignment slack, and the
// largest filter buffer asked; Scharr is asked only for a 3x3 window.
TEST(Corner, BufferSize) {
    const RvpiSize s{37, 5};
    int n8 = 0, n32 = 0, sv = 0, sh = 0, cv = 0, ch = 0, lp = 0;
    ASSERT_EQ(rvpiMinEigenValGetBufferSize_8u32f_C1R(s, 5, 3, &n8), rvpStsNoErr);
    rvpiFilterSobelVertGetBufferSize_8u16s_C1R(s, 55, &sv);
    rvpiFilterSobelHorizGetBufferSize_8u16s_C1R(s, 55, &sh);
    rvpiFilterScharrVertGetBufferSize_8u16s_C1R(s, &cv);
    rvpiFilterScharrHorizGetBufferSize_8u16s_C1R(s, &ch);
    rvpiFilterLowpassGetBufferSize_32f_C1R(s, 33, &lp);
    EXPECT_EQ(n8, 48 * 5 * 16 + 224 + std::max({sv, sh, cv, ch, lp}));
    ASSERT_EQ(rvpiEigenValsVecsGetBufferSize_32f_C1R(s, 3, 5, &n32), rvpStsNoErr);
    rvpiFilterSobelVertGetBufferSize_32f_C1R(s, 33, &sv);
    rvpiFilterSobelHorizGetBufferSize_32f_C1R(s, 33, &sh);
    rvpiFilterLowpassGetBufferSize_32f_C1R(s, 55, &lp);
    EXPECT_EQ(n32, 48 * 5 * 20 + 224 + std::max({sv, sh, lp}));
    EXPECT_EQ(rvpiMinEigenValGetBufferSize_32f_C1R(s, 3, 3, nullptr), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiMinEigenValGetBufferSize_32f_C1R({0, 5}, 3, 3, &n32), rvpStsSizeErr);
    EXPECT_EQ(rvpiEigenValsVecsGetBufferSize_8u32f_C1R(s, 3, 7, &n32), rvpStsSizeErr);
}

// One row per bad argument, in checking order; the output stays untouched.
// nulls: 1 source, 2 output, 4 buffer.
TEST(Corner, Validation) {
    struct Row {
        const char* what;
        bool vecs, f32;
        int nulls, w, srcStep, dstStep, kern, ap, avg;
        RvpStatus want;
    };
    const Row rows[] = {
        {"null src", false, false, 1, 8, 8, 32, 0, 3, 3, rvpStsNullPtrErr},
        {"null dst before size", true, true, 2, 0, 32, 192, 0, 3, 3, rvpStsNullPtrErr},
        {"null buffer", false, true, 4, 8, 32, 32, 0, 3, 3, rvpStsNullPtrErr},
        {"zero width", false, false, 0, 0, 8, 32, 0, 3, 3, rvpStsSizeErr},
        {"8u src step", false, false, 0, 8, 7, 32, 0, 3, 3, rvpStsStepErr},
        {"32f src step", false, true, 0, 8, 31, 32, 0, 3, 3, rvpStsStepErr},
        {"min dst step", false, false, 0, 8, 8, 28, 0, 3, 3, rvpStsStepErr},
        {"8u vecs dst step", true, false, 0, 8, 8, 188, 0, 3, 3, rvpStsStepErr},
        {"32f vecs lax dst step", true, true, 0, 8, 32, 33, 0, 3, 3, rvpStsNotEvenStepErr},
        {"odd dst step", false, false, 0, 8, 8, 34, 0, 3, 3, rvpStsNotEvenStepErr},
        {"odd 32f src step", false, true, 0, 8, 34, 32, 0, 3, 3, rvpStsNotEvenStepErr},
        {"sobel aperture", false, false, 0, 8, 9, 32, 0, 7, 3, rvpStsSizeErr},
        {"scharr aperture 5", false, false, 0, 8, 9, 32, 1, 5, 3, rvpStsSizeErr},
        {"kernType 2", false, false, 0, 8, 9, 32, 2, 5, 3, rvpStsBadArgErr},
        {"kernType before window", true, true, 0, 8, 32, 32, -1, 3, 4, rvpStsBadArgErr},
        {"window", true, false, 0, 8, 9, 192, 0, 3, 4, rvpStsSizeErr},
    };
    std::vector<Rvp32f> src(1024, 1.0f);
    std::vector<Rvp8u> buf(1 << 16);
    for (const Row& r : rows) {
        std::vector<Rvp32f> dst(1024, 7.0f);
        const RvpiSize s{r.w, 4};
        const ref::Corner k{r.kern, r.ap, r.avg};
        Rvp32f* d = r.nulls & 2 ? nullptr : dst.data();
        Rvp8u* b = r.nulls & 4 ? nullptr : buf.data();
        const Rvp32f* p = r.nulls & 1 ? nullptr : src.data();
        const RvpStatus st = r.f32 ? corner(r.vecs, p, r.srcStep, d, r.dstStep, s, k, b)
                                   : corner(r.vecs, reinterpret_cast<const Rvp8u*>(p), r.srcStep, d, r.dstStep, s, k, b);
        EXPECT_EQ(st, r.want) << r.what;
        EXPECT_TRUE(std::all_of(dst.begin(), dst.end(), [](float v) { return v == 7.0f; })) << r.what;
    }
    // The lax step of the 32f eigenvector form: one float a pixel is enough.
    std::vector<Rvp32f> dst(1024);
    EXPECT_EQ(rvpiEigenValsVecs_32f_C1R(src.data(), 32, dst.data(), 32, {8, 4}, 0, 3, 3, buf.data()), rvpStsNoErr);
}

}  // namespace
