// Segmentation: the boundary rule and the queue flooding against their
// reference models on random labels and images; both watershed engines and
// the gradient segmentation on a picture of known regions (every reachable
// pixel labelled, regions meeting only across boundary pixels); the
// priority boundary rule's tie cases; validation.
#include "reference/ref_segment.h"
#include "segment/rvcvsegment.h"
#include "support/rvtest.h"

using namespace rvtest;

namespace {

template <class T> ref::Labels<T> labelsOf(const Image<T>& img) {
    ref::Labels<T> l{img.width(), img.height(), {}};
    for (int y = 0; y < img.height(); ++y) l.v.insert(l.v.end(), img.row(y), img.row(y) + img.width());
    return l;
}

template <class T> void checkBound(RvpStatus (*fn)(T*, int, RvpiSize, T, int)) {
    std::mt19937 rng(3);
    for (const RvpiSize sz : {RvpiSize{1, 1}, RvpiSize{1, 6}, RvpiSize{9, 1}, RvpiSize{17, 11}, RvpiSize{40, 3}})
        for (int norm : {0, 1}) {
            Image<T> m(sz.width, sz.height, 1, 2 * sizeof(T));
            m.fill([&] { return static_cast<T>(rng() % 4 == 0 ? 7 : rng() % 3); });  // 7: the boundary value
            ref::Labels<T> want = labelsOf(m);
            ref::bound<T>(want, 7, norm == 1);
            ASSERT_EQ(fn(m.ptr(), m.step(), sz, 7, norm), rvpStsNoErr);
            ASSERT_TRUE(m.guardsIntact());
            EXPECT_EQ(labelsOf(m).v, want.v) << sz.width << "x" << sz.height << " norm " << norm;
        }
    Image<T> row(4, 1);
    const T in[4] = {1, 1, 2, 2};
    std::copy(in, in + 4, row.ptr());
    ASSERT_EQ(fn(row.ptr(), row.step(), {4, 1}, 9, 1), rvpStsNoErr);
    EXPECT_EQ(std::vector<T>(row.ptr(), row.ptr() + 4), (std::vector<T>{1, 1, 9, 2}));
    const auto kept = row.raw();
    const struct { T* p; int step; RvpiSize r; int norm; RvpStatus st; } rows[] = {
        {nullptr, 8, {4, 1}, 0, rvpStsNullPtrErr},     {row.ptr(), 8, {0, 1}, 0, rvpStsSizeErr},
        {row.ptr(), 8, {4, -1}, 0, rvpStsSizeErr},     {row.ptr(), 4 * sizeof(T) - 1, {4, 1}, 0, rvpStsStepErr},
        {row.ptr(), 8, {4, 1}, 2, rvpStsBadArgErr},
    };
    for (const auto& r : rows) EXPECT_EQ(fn(r.p, r.step, r.r, 9, r.norm), r.st);
    if (sizeof(T) == 2) {
        EXPECT_EQ(fn(row.ptr(), 9, {4, 1}, 9, 0), rvpStsNotEvenStepErr);
    }
    EXPECT_EQ(row.raw(), kept);
}

TEST(BoundSegments, MatchesReference) {
    checkBound<Rvp8u>(rvpiBoundSegments_8u_C1IR);
    checkBound<Rvp16u>(rvpiBoundSegments_16u_C1IR);
}

// Of two conflicting pixels the one with the larger priority takes the
// boundary; ties go to the right or lower pixel; a pixel holding the
// boundary value paints nothing in later rows.
TEST(BoundSegments, PriorityRuleTies) {
    Rvp8u m[2][3] = {{1, 2, 2}, {1, 1, 2}};
    const int32_t d[2][3] = {{5, 5, 1}, {3, 7, 7}};
    rvcv::seg::boundPriority<Rvp8u>(&m[0][0], 3, &d[0][0], 12, {3, 2}, 9, true);
    // Row 0: the 1|2 pair ties: the right pixel takes it, and the next pixel is skipped.
    // Row 1: x 0 has no conflict; x 1 sits under the boundary value (no vertical test)
    // and ties with its right neighbour, which takes it and so has no test of its own.
    const Rvp8u want[2][3] = {{1, 9, 2}, {1, 1, 9}};
    EXPECT_EQ(0, std::memcmp(m, want, sizeof m));
}

// Random labels over a random gray image: the queue engine and the gradient
// flooding against the reference flooding.
TEST(Watershed, QueueEngineMatchesReference) {
    std::mt19937 rng(11);
    for (const RvpiSize sz : {RvpiSize{1, 1}, RvpiSize{7, 1}, RvpiSize{1, 9}, RvpiSize{23, 17}, RvpiSize{64, 40}})
        for (int norm : {0, 1})
            for (int flag : {1, 1 | 64, 1 | 128, 3 | 64 | 128}) {
                SCOPED_TRACE(testing::Message() << sz.width << "x" << sz.height << " norm " << norm << " flag " << flag);
                Image<Rvp8u> gray(sz.width, sz.height, 1, 3);
                Image<Rvp16u> mk(sz.width, sz.height, 1, 4);
                gray.fill([&] { return static_cast<Rvp8u>(rng() % 64 + (rng() % 8) * 24); });
                mk.fill([&] { const int r = rng() % 40; return static_cast<Rvp16u>(r == 0 ? 65535 : r < 4 ? r : 0); });
                ref::Labels<Rvp16u> want = labelsOf(mk);
                std::vector<uint8_t> g = labelsOf(gray).v;
                const int border = flag & 64 ? 4 : flag & 128 ? 8 : 0;
                ref::flood<Rvp16u>(g, want, norm == 1, border);
                int bytes = 0;
                ASSERT_EQ(rvpiSegmentWatershedGetBufferSize_8u16u_C1R(sz, &bytes), rvpStsNoErr);
                std::vector<Rvp8u> buf(bytes);
                ASSERT_EQ(rvpiSegmentWatershed_8u16u_C1IR(gray.ptr(), gray.step(), mk.ptr(), mk.step(), sz, norm, flag,
                                                          buf.data()),
                          rvpStsNoErr);
                ASSERT_TRUE(mk.guardsIntact());
                EXPECT_EQ(labelsOf(mk).v, want.v);
            }
}

// Three blobs and the background, each with a marker; returns the picture.
struct Scene {
    int w = 97, h = 71;
    std::vector<Rvp8u> gray, truth, ridges;  // ridges: high where the regions meet
    Scene() : gray(static_cast<size_t>(w) * h), truth(gray.size()), ridges(gray.size()) {
        const int cx[3] = {20, 50, 75}, cy[3] = {20, 45, 20}, r[3] = {12, 16, 10}, level[3] = {200, 120, 160};
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                Rvp8u t = 1, g = static_cast<Rvp8u>(30 + (x * 7 + y * 3) % 9);
                for (int k = 0; k < 3; ++k)
                    if ((x - cx[k]) * (x - cx[k]) + (y - cy[k]) * (y - cy[k]) <= r[k] * r[k])
                        t = static_cast<Rvp8u>(k + 2), g = static_cast<Rvp8u>(level[k] + (x + y) % 5);
                truth[static_cast<size_t>(y) * w + x] = t;
                gray[static_cast<size_t>(y) * w + x] = g;
            }
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                bool edge = false;
                for (int dy = -1; dy <= 1; ++dy)
                    for (int dx = -1; dx <= 1; ++dx)
                        edge = edge || (inside(x + dx, y + dy) && label(x + dx, y + dy) != label(x, y));
                ridges[static_cast<size_t>(y) * w + x] = static_cast<Rvp8u>(edge ? 200 : 30 + (x * 7 + y * 3) % 9);
            }
    }
    bool inside(int x, int y) const { return x >= 0 && y >= 0 && x < w && y < h; }
    Rvp8u label(int x, int y) const { return truth[static_cast<size_t>(y) * w + x]; }
    std::vector<Rvp8u> markers() const {
        std::vector<Rvp8u> m(gray.size(), 0);
        m[static_cast<size_t>(2) * w + 2] = 1;
        const int cx[3] = {20, 50, 75}, cy[3] = {20, 45, 20};
        for (int k = 0; k < 3; ++k) m[static_cast<size_t>(cy[k]) * w + cx[k]] = static_cast<Rvp8u>(k + 2);
        return m;
    }
    // Every pixel labelled, each off the edges with its own region's label;
    // with boundaries, no two 4-neighbours carry different region labels.
    void check(const std::vector<Rvp8u>& m, bool bounded) const {
        int off = 0;
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                const Rvp8u l = m[static_cast<size_t>(y) * w + x];
                ASSERT_NE(l, 0) << x << "," << y;
                if (l != 255 && ridges[static_cast<size_t>(y) * w + x] < 200 && l != label(x, y)) ++off;
                if (!bounded || l == 255) continue;
                if (x + 1 < w) {
                    const Rvp8u r = m[static_cast<size_t>(y) * w + x + 1];
                    ASSERT_TRUE(r == 255 || r == l) << x << "," << y;
                }
                if (y + 1 < h) {
                    const Rvp8u d = m[static_cast<size_t>(y + 1) * w + x];
                    ASSERT_TRUE(d == 255 || d == l) << x << "," << y;
                }
            }
        EXPECT_EQ(off, 0);
    }
};

TEST(Watershed, EnginesSegmentKnownRegions) {
    const Scene s;
    const RvpiSize roi{s.w, s.h};
    int bytes = 0;
    ASSERT_EQ(rvpiSegmentWatershedGetBufferSize_8u_C1R(roi, &bytes), rvpStsNoErr);
    std::vector<Rvp8u> buf(bytes);
    struct Run { int norm, flag; };
    const Run runs[] = {{0, 1}, {1, 1 | 128}, {0, 2}, {1, 2}, {2, 2 | 64}, {3, 2}, {3, 2 | 128}, {0, 2 | 64}};
    std::vector<Rvp8u> serial;
    for (const Run& r : runs)
        for (int threads : threadCounts()) {
            SCOPED_TRACE(testing::Message() << "norm " << r.norm << " flag " << r.flag << " threads " << threads);
            ScopedThreads scope(threads);
            std::vector<Rvp8u> m = s.markers();
            ASSERT_EQ(rvpiSegmentWatershed_8u_C1IR(s.ridges.data(), s.w, m.data(), s.w, roi, r.norm, r.flag,
                                                   buf.data()),
                      rvpStsNoErr);
            s.check(m, (r.flag & 192) != 0);
            if (threads == 1) serial = m;
            else EXPECT_EQ(m, serial);
        }
}

TEST(SegmentGradient, GrowsRegionsToTheirEdges) {
    const Scene s;
    const RvpiSize roi{s.w, s.h};
    std::vector<Rvp8u> colour(s.gray.size() * 3);
    for (size_t i = 0; i < s.gray.size(); ++i)
        for (int c = 0; c < 3; ++c) colour[i * 3 + c] = static_cast<Rvp8u>(c == 1 ? 255 - s.gray[i] : s.gray[i]);
    for (int flag : {0, 64, 128})
        for (int norm : {0, 1}) {
            SCOPED_TRACE(testing::Message() << "flag " << flag << " norm " << norm);
            int bytes = 0;
            ASSERT_EQ(rvpiSegmentGradientGetBufferSize_8u_C3R(roi, &bytes), rvpStsNoErr);
            std::vector<Rvp8u> buf(bytes), m = s.markers(), m3 = s.markers();
            ASSERT_EQ(rvpiSegmentGradient_8u_C1IR(s.gray.data(), s.w, m.data(), s.w, roi, norm, flag, buf.data()),
                      rvpStsNoErr);
            s.check(m, flag != 0);
            ASSERT_EQ(rvpiSegmentGradient_8u_C3IR(colour.data(), 3 * s.w, m3.data(), s.w, roi, norm, flag, buf.data()),
                      rvpStsNoErr);
            EXPECT_EQ(m3, m);  // the same edges in colour
        }
}

TEST(Watershed, Validation) {
    Image<Rvp8u> g(8, 4), m(8, 4);
    std::vector<Rvp8u> buf(4096);
    const auto kept = m.raw();
    const struct { const Rvp8u* s; Rvp8u* mk; Rvp8u* b; RvpiSize r; int ss, ms, norm, flag; RvpStatus st; } rows[] = {
        {nullptr, m.ptr(), buf.data(), {8, 4}, 8, 8, 0, 1, rvpStsNullPtrErr},
        {g.ptr(), m.ptr(), nullptr, {8, 4}, 8, 8, 0, 1, rvpStsNullPtrErr},
        {g.ptr(), m.ptr(), buf.data(), {8, 0}, 8, 8, 0, 1, rvpStsSizeErr},
        {g.ptr(), m.ptr(), buf.data(), {1 << 20, 1 << 12}, 1 << 20, 1 << 20, 0, 1, rvpStsSizeErr},
        {g.ptr(), m.ptr(), buf.data(), {8, 4}, 7, 8, 0, 1, rvpStsStepErr},
        {g.ptr(), m.ptr(), buf.data(), {8, 4}, 8, 7, 0, 1, rvpStsStepErr},
        {g.ptr(), m.ptr(), buf.data(), {8, 4}, 8, 8, 0, 0, rvpStsBadArgErr},
        {g.ptr(), m.ptr(), buf.data(), {8, 4}, 8, 8, 2, 1, rvpStsBadArgErr},
        {g.ptr(), m.ptr(), buf.data(), {8, 4}, 8, 8, 4, 2, rvpStsBadArgErr},
    };
    for (const auto& r : rows)
        EXPECT_EQ(rvpiSegmentWatershed_8u_C1IR(r.s, r.ss, r.mk, r.ms, r.r, r.norm, r.flag, r.b), r.st);
    EXPECT_EQ(m.raw(), kept);
    int n = -1;
    EXPECT_EQ(rvpiSegmentWatershedGetBufferSize_8u_C1R({1 << 20, 1 << 12}, &n), rvpStsSizeErr);
    EXPECT_EQ(rvpiSegmentWatershedGetBufferSize_8u_C1R({8, 4}, nullptr), rvpStsNullPtrErr);
    EXPECT_EQ(n, -1);
    EXPECT_EQ(rvpiSegmentGradient_8u_C3IR(g.ptr(), 23, m.ptr(), 8, {8, 4}, 0, 0, buf.data()), rvpStsStepErr);
    EXPECT_EQ(rvpiSegmentGradient_8u_C1IR(g.ptr(), 8, m.ptr(), 8, {8, 4}, 0, 1, buf.data()), rvpStsBadArgErr);
    EXPECT_EQ(m.raw(), kept);
    // No seed at all: nothing to flood, the image stays 0.
    m.fill([] { return Rvp8u{0}; });
    ASSERT_EQ(rvpiSegmentWatershed_8u_C1IR(g.ptr(), 8, m.ptr(), 8, {8, 4}, 0, 1, buf.data()), rvpStsNoErr);
    EXPECT_EQ(std::count(m.ptr(), m.ptr() + 32, 0), 32);
}

}  // namespace
