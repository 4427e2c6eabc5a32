// Reconstruction by dilation and erosion against the iterate-until-stable
// reference: every sample type, both norms, shapes from one row or column up,
// markers above the mask, equal images, one thread and the two-thread form
// (from 11x11 up), the exact-size buffer, and the validation order.
#include <vector>

#include "morph_support.h"
#include "reference/ref_reconstruct.h"
#include "support/rvtest.h"

using namespace rvtest;

namespace {

template <class T> using ReconFn = RvpStatus (*)(const T*, int, T*, int, RvpiSize, Rvp8u*, int);
using SizeFn = RvpStatus (*)(RvpiSize, int*);

template <class T> struct Forms;
#define FORMS(T, S, LEVEL)                                                                                  \
    template <> struct Forms<T> {                                                                            \
        static constexpr ReconFn<T> fn[2] = {rvpiMorphReconstructErode_##S##_C1IR,                          \
                                             rvpiMorphReconstructDilate_##S##_C1IR};                        \
        static constexpr SizeFn size = rvpiMorphReconstructGetBufferSize_##S##_C1;                           \
        static T level(int i) { return static_cast<T>(LEVEL); }                                             \
    };
FORMS(Rvp8u, 8u, i * 60)
FORMS(Rvp16u, 16u, i * 16000)
FORMS(Rvp32f, 32f, i * 250.5f - 500)
FORMS(Rvp64f, 64f, i * 250.25 - 500)
#undef FORMS

enum class Kind { Sparse, Random, Equal };

// A mask of few levels (so plateaus join into long winding regions) mixed
// with noise, and a marker of sparse seeds, of free noise, or equal to the mask.
template <class T> void makeInputs(Image<T>& mask, Image<T>& marker, Kind kind, bool dilate, uint32_t seed) {
    std::mt19937 rng(seed);
    Random<T> noise(seed ^ 0x5bd1e995u);
    mask.fill([&] { return rng() % 4 ? Forms<T>::level(static_cast<int>(rng() % 5)) : noise(); });
    const T far = Forms<T>::level(dilate ? 0 : 4);
    for (int y = 0; y < marker.height(); ++y)
        for (int x = 0; x < marker.width(); ++x) {
            T& v = marker.at(x, y);
            if (kind == Kind::Equal) v = mask.at(x, y);
            else if (kind == Kind::Random) v = noise();
            else v = rng() % 23 == 0 ? noise() : far;
        }
}

template <class T> std::vector<T> packed(const Image<T>& im) { return morphtest::planeOf(im, 1).v; }

// Runs one reconstruction with a buffer of exactly the queried size inside
// canaries, at an odd address.
template <class T> RvpStatus runOnce(bool dilate, const Image<T>& mask, Image<T>& marker, int norm) {
    int bytes = 0;
    EXPECT_EQ(Forms<T>::size(marker.size(), &bytes), rvpStsNoErr);
    std::vector<Rvp8u> buf(static_cast<size_t>(bytes) + 2 * kGuard + 1, kCanary);
    const RvpStatus st = Forms<T>::fn[dilate](mask.ptr(), mask.step(), marker.ptr(), marker.step(), marker.size(),
                                              buf.data() + kGuard + 1, norm);
    for (int i = 0; i <= kGuard; ++i) EXPECT_EQ(buf[i], kCanary) << "before the buffer";
    for (size_t i = kGuard + 1 + bytes; i < buf.size(); ++i) EXPECT_EQ(buf[i], kCanary) << "past the buffer";
    return st;
}

template <class T> class Reconstruct : public testing::Test {};
using SampleTypes = testing::Types<Rvp8u, Rvp16u, Rvp32f, Rvp64f>;
TYPED_TEST_SUITE(Reconstruct, SampleTypes);

TYPED_TEST(Reconstruct, MatchesReference) {
    using T = TypeParam;
    const RvpiSize shapes[] = {{1, 1},  {1, 23}, {29, 1},  {2, 3},  {3, 9},   {4, 4},   {5, 2},
                               {10, 10}, {11, 11}, {12, 40}, {37, 21}, {64, 13}, {70, 70}, {160, 121}};
    uint32_t seed = 1;
    for (rvcv::Isa isa : isaLevels())
        for (int threads : {1, 2}) {
            ScopedIsa si(isa);
            ScopedThreads st(threads);
            for (RvpiSize s : shapes)
                for (int dilate = 0; dilate < 2; ++dilate)
                    for (int norm = 0; norm < 2; ++norm)
                        for (Kind kind : {Kind::Sparse, Kind::Random, Kind::Equal}) {
                            ++seed;
                            SCOPED_TRACE(testing::Message() << s.width << "x" << s.height << (dilate ? " dilate" : " erode")
                                                            << " norm " << norm << " kind " << int(kind) << " threads "
                                                            << threads << " seed " << seed);
                            Image<T> mask(s.width, s.height, 1, 8 * (seed % 3)), marker(s.width, s.height, 1, 8);
                            makeInputs(mask, marker, kind, dilate, seed);
                            const std::vector<T> want =
                                ref::reconstruct(packed(marker), packed(mask), s.width, s.height, dilate, norm == 0);
                            const std::vector<Rvp8u> maskBytes = mask.raw();
                            ASSERT_EQ(runOnce<T>(dilate, mask, marker, norm), rvpStsNoErr);
                            ASSERT_TRUE(marker.guardsIntact());
                            ASSERT_TRUE(mask.raw() == maskBytes) << "the mask was written";
                            ASSERT_TRUE(packed(marker) == want);
                        }
        }
}

TYPED_TEST(Reconstruct, ValidationOrder) {
    using T = TypeParam;
    constexpr int B = sizeof(T);
    Image<T> mask(8, 6, 1, 2 * B), marker(8, 6, 1, 2 * B);
    makeInputs(mask, marker, Kind::Random, true, 7);
    std::vector<Rvp8u> buf(4096);
    const int ms = mask.step(), ks = marker.step(), row = 8 * B;
    struct Case { const T* src; int srcStep; T* dst; int dstStep; RvpiSize roi; Rvp8u* buffer; int norm; RvpStatus want; };
    T* d = marker.ptr();
    const T* s = mask.ptr();
    Rvp8u* b = buf.data();
    std::vector<Case> cases = {
        {nullptr, ms, d, ks, {0, 6}, b, 5, rvpStsNullPtrErr},
        {s, ms, nullptr, ks, {8, 6}, b, 0, rvpStsNullPtrErr},
        {s, ms, d, ks, {8, 6}, nullptr, 0, rvpStsNullPtrErr},
        {s, 0, d, ks, {0, 6}, b, 5, rvpStsSizeErr},
        {s, ms, d, ks, {8, -1}, b, 0, rvpStsSizeErr},
        {s, row - 1, d, ks, {8, 6}, b, 5, rvpStsStepErr},
        {s, ms, d, row - 1, {8, 6}, b, 0, rvpStsStepErr},
        {s, ms, d, ks, {8, 6}, b, 2, rvpStsBadArgErr},
        {s, ms, d, ks, {8, 6}, b, -1, rvpStsBadArgErr},
    };
    if (B > 1) {
        cases.push_back({s, row + 1, d, ks, {8, 6}, b, 5, rvpStsNotEvenStepErr});
        cases.push_back({s, ms, d, row + B + 1, {8, 6}, b, 0, rvpStsNotEvenStepErr});
    }
    const std::vector<Rvp8u> before = marker.raw();
    for (size_t i = 0; i < cases.size(); ++i) {
        const Case& c = cases[i];
        for (int dilate = 0; dilate < 2; ++dilate)
            EXPECT_EQ(Forms<T>::fn[dilate](c.src, c.srcStep, c.dst, c.dstStep, c.roi, c.buffer, c.norm), c.want)
                << "case " << i;
        EXPECT_TRUE(marker.raw() == before) << "case " << i;
    }
}

TYPED_TEST(Reconstruct, BufferSize) {
    using T = TypeParam;
    int n = -1;
    EXPECT_EQ(Forms<T>::size({5, 5}, nullptr), rvpStsNullPtrErr);
    EXPECT_EQ(Forms<T>::size({0, 5}, &n), rvpStsSizeErr);
    EXPECT_EQ(Forms<T>::size({5, 0}, &n), rvpStsSizeErr);
    EXPECT_EQ(n, -1);
    ASSERT_EQ(Forms<T>::size({100, 7}, &n), rvpStsNoErr);
    const int perWidth = std::is_same<T, Rvp16u>::value ? 8 : 4 * static_cast<int>(sizeof(T));
    const int extra = std::is_same<T, Rvp16u>::value ? 2 * 7 + 322 : 7 + 160 + static_cast<int>(sizeof(T));
    EXPECT_EQ(n, perWidth * 100 + extra);
}

// Hand-checkable: a seed fills its basin but not across a wall of zeros, and
// it passes a corner contact only with the 8-neighbourhood.
TEST(ReconstructSmall, NormDecidesCornerContact) {
    const Rvp8u maskData[16] = {9, 9, 0, 5, 9, 9, 0, 5, 0, 0, 7, 0, 4, 0, 0, 9};
    for (int norm = 0; norm < 2; ++norm) {
        std::vector<Rvp8u> mask(maskData, maskData + 16), marker(16, 0), buf(1024);
        marker[0] = 8;
        ASSERT_EQ(rvpiMorphReconstructDilate_8u_C1IR(mask.data(), 4, marker.data(), 4, {4, 4}, buf.data(), norm), rvpStsNoErr);
        const Rvp8u c = norm == 0 ? 7 : 0, e = norm == 0 ? 5 : 0;
        EXPECT_EQ(marker, (std::vector<Rvp8u>{8, 8, 0, e, 8, 8, 0, e, 0, 0, c, 0, 0, 0, 0, c})) << "norm " << norm;
    }
}

}  // namespace
