// Buffer sizes that would wrap past an int: every query refuses them with
// SizeErr and stores nothing, and the function taking the buffer refuses the
// same arguments before touching memory; a null morphology state is refused;
// a reconstruction with NaN gives one result for every thread count.
#include <cmath>

#include "support/rvtest.h"

using namespace rvtest;

namespace {

TEST(BufferSizes, QueriesThatWouldWrapAreRefused) {
    struct Row { const char* what; int threads; std::function<RvpStatus(int*)> query; };
    const Row rows[] = {
        {"gauss 8192^2 k65535", 2, [](int* n) { return rvpiFilterGaussGetBufferSize_32f_C1R({8192, 8192}, 65535, n); }},
        {"gauss 13x59 k65535", 2, [](int* n) { return rvpiFilterGaussGetBufferSize_32f_C1R({13, 59}, 65535, n); }},
        {"scharr 65536x4 64t", 64, [](int* n) { return rvpiFilterScharrVertGetBufferSize_8u16s_C1R({65536, 4}, n); }},
        {"sobel INT_MAX", 1, [](int* n) { return rvpiFilterSobelHorizGetBufferSize_32f_C1R({INT32_MAX, 1}, 33, n); }},
        {"column C3 65536x4 1024t", 1024,
         [](int* n) { return rvpiFilterColumnPipelineGetBufferSize_16s_C3R({65536, 4}, 3, n); }},
        {"column INT_MAX", 1, [](int* n) { return rvpiFilterColumnPipelineGetBufferSize_16s_C1R({INT32_MAX, 1}, 3, n); }},
        {"row k65535 256t", 256, [](int* n) { return rvpiFilterRowBorderPipelineGetBufferSize_32f_C1R({640, 480}, 65535, n); }},
        {"corners INT_MAX", 1, [](int* n) { return rvpiMinEigenValGetBufferSize_8u32f_C1R({INT32_MAX, 2}, 3, 3, n); }},
        {"max filter", 1, [](int* n) { return rvpiFilterMaxGetBufferSize_32f_C1R(INT32_MAX, {3, 3}, n); }},
        {"reconstruct", 1, [](int* n) { return rvpiMorphReconstructGetBufferSize_64f_C1({INT32_MAX, 1}, n); }},
        {"canny", 1, [](int* n) { return rvpiCannyGetSize({0xfffc, 0xfffd}, n); }},
    };
    for (const Row& r : rows) {
        ScopedThreads t(r.threads);
        int n = -7;
        EXPECT_EQ(r.query(&n), rvpStsSizeErr) << r.what;
        EXPECT_EQ(n, -7) << r.what;
    }
}

// The functions refuse what their queries refuse, before any access: the
// buffers and images here are far too small to be touched safely.
TEST(BufferSizes, FunctionsRefuseTheSameArguments) {
    std::vector<Rvp32f> img(16);
    std::vector<Rvp8u> buf(64);
    EXPECT_EQ(rvpiFilterGaussBorder_32f_C1R(img.data(), 52, img.data(), 52, {13, 59}, 65535, 0, rvpBorderRepl, 0,
                                            buf.data()),
              rvpStsSizeErr);
    {
        ScopedThreads t(64);
        std::vector<Rvp8u> src(16);
        std::vector<Rvp16s> dst(16);
        EXPECT_EQ(rvpiFilterScharrVertBorder_8u16s_C1R(src.data(), 65536, dst.data(), 131072, {65536, 4}, rvpBorderRepl,
                                                       0, buf.data()),
                  rvpStsSizeErr);
    }
    std::vector<Rvp32f*> rows(4, img.data());
    ScopedThreads t(256);
    EXPECT_EQ(rvpiFilterRowBorderPipeline_32f_C1R(img.data(), 2560, rows.data(), {640, 480}, img.data(), 65535, 0,
                                                  rvpBorderRepl, 0, buf.data()),
              rvpStsSizeErr);
}

TEST(BufferSizes, NullMorphologyStateIsRefused) {
    Rvp8u px[4] = {};
    EXPECT_EQ(rvpiDilateBorderReplicate_8u_C1R(nullptr, 0, nullptr, 0, {0, 0}, 0, nullptr), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiErodeBorderReplicate_8u_C1R(px, 2, px, 2, {2, 2}, rvpBorderRepl, nullptr), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiDilateBorderReplicate_32f_C3R(nullptr, 0, nullptr, 0, {1, 1}, rvpBorderRepl, nullptr),
              rvpStsNullPtrErr);
}

TEST(Reconstruction, NaNGivesOneResultForEveryThreadCount) {
    const int w = 286, h = 400;
    Image<Rvp64f> mask(w, h), marker(w, h);
    std::mt19937 rng(3);
    std::uniform_real_distribution<double> d(0, 100);
    mask.fill([&] { return rng() % 100 == 0 ? NAN : d(rng); });
    marker.fill([&] { return rng() % 100 == 0 ? NAN : d(rng) * 0.5; });
    int bytes = 0;
    ASSERT_EQ(rvpiMorphReconstructGetBufferSize_64f_C1({w, h}, &bytes), rvpStsNoErr);
    std::vector<Rvp8u> buf(bytes);
    std::vector<uint8_t> first[2];
    for (int threads : {1, 2, 3, 8})
        for (bool erode : {false, true}) {
            ScopedThreads t(threads);
            Image<Rvp64f> m = marker;
            ASSERT_EQ((erode ? rvpiMorphReconstructErode_64f_C1IR : rvpiMorphReconstructDilate_64f_C1IR)(
                          mask.ptr(), mask.step(), m.ptr(), m.step(), {w, h}, buf.data(), 0),
                      rvpStsNoErr);
            if (threads == 1) first[erode] = m.bytes();
            EXPECT_EQ(m.bytes(), first[erode]) << threads << (erode ? " erode" : " dilate");
        }
}

}  // namespace
