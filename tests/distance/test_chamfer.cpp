// Chamfer transforms against a shortest-path search (Dijkstra) over the same
// steps and weights, saturated at the form's largest value: every result
// type, both masks, standard, diagonal-cheap, no-diagonal, knight-free and
// irregular weights, shapes from 1x1 to rows longer than the scan chunk,
// padded steps and in place. Then the mask queries and validation.
#include <cfloat>
#include <queue>

#include "support/rvtest.h"

using namespace rvtest;

namespace {

struct Step { int dx, dy; double w; };

// Shortest ways from the zero pixels; sums accumulate in the result's own
// arithmetic (float for 32f), so the float results compare exactly.
template <class A>
std::vector<A> dijkstra(const Image<Rvp8u>& src, const std::vector<Step>& steps, const std::vector<Step>& outerRows) {
    const int w = src.width(), h = src.height();
    const A inf = std::numeric_limits<A>::has_infinity ? std::numeric_limits<A>::infinity() : std::numeric_limits<A>::max();
    std::vector<A> d(static_cast<size_t>(w) * h, inf);
    using Item = std::pair<A, int>;
    std::priority_queue<Item, std::vector<Item>, std::greater<Item>> q;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            if (src.at(x, y) == 0) d[static_cast<size_t>(y) * w + x] = 0, q.push({A(0), y * w + x});
    while (!q.empty()) {
        const auto [dist, i] = q.top();
        q.pop();
        if (dist != d[i]) continue;
        const int x = i % w, y = i / w;
        const auto relax = [&](const Step& s) {
            const int nx = x + s.dx, ny = y + s.dy;
            if (nx < 0 || ny < 0 || nx >= w || ny >= h) return;
            const A nd = dist + static_cast<A>(s.w);
            if (nd < d[ny * w + nx]) d[ny * w + nx] = nd, q.push({nd, ny * w + nx});
        };
        for (const Step& s : steps) relax(s);
        if (y == 0 || y == h - 1)
            for (const Step& s : outerRows) relax(s);
    }
    return d;
}

// The steps and weights a transform works with, from the caller's weights.
void stepsFor(int mask, const double* m, std::vector<Step>& steps, std::vector<Step>& outer) {
    const auto add = [&](int dx, int dy, double w) {
        for (const int sx : {1, -1})
            for (const int sy : {1, -1}) steps.push_back({sx * dx, sy * dy, w}), steps.push_back({sy * dy, sx * dx, w});
    };
    double a = m[0], b = m[1];
    if (mask == 5) {
        const double c = m[2], bd = std::min(2 * a, b);
        if (c < a + bd) {
            if (!(a < bd && 2 * a < c && 3 * bd < 2 * c)) {
                a = std::min(3 * c, a);
                b = std::min(2 * c, bd);
                const double two = std::min({2 * b, 2 * a, 2 * c});
                outer = {{2, 0, two}, {-2, 0, two}};
            }
            add(1, 2, c);
        }
    }
    add(1, 0, a);
    add(1, 1, b);
}

template <class T, class W>
RvpStatus transform(int mask, const Image<Rvp8u>& src, Image<T>& dst, const W* m) {
    if constexpr (std::is_same<T, Rvp8u>::value)
        return (mask == 3 ? rvpiDistanceTransform_3x3_8u_C1R : rvpiDistanceTransform_5x5_8u_C1R)(
            src.ptr(), src.step(), dst.ptr(), dst.step(), src.size(), m);
    else if constexpr (std::is_same<T, Rvp16u>::value)
        return (mask == 3 ? rvpiDistanceTransform_3x3_8u16u_C1R : rvpiDistanceTransform_5x5_8u16u_C1R)(
            src.ptr(), src.step(), dst.ptr(), dst.step(), src.size(), m);
    else
        return (mask == 3 ? rvpiDistanceTransform_3x3_8u32f_C1R : rvpiDistanceTransform_5x5_8u32f_C1R)(
            src.ptr(), src.step(), dst.ptr(), dst.step(), src.size(), m);
}

template <class T> void sweep(int mask, const std::vector<std::vector<double>>& weightSets) {
    using A = typename std::conditional<std::is_floating_point<T>::value, float, int64_t>::type;
    using W = typename std::conditional<std::is_floating_point<T>::value, Rvp32f, Rvp32s>::type;
    const A maxVal = std::is_floating_point<T>::value ? A(FLT_MAX) : A(std::numeric_limits<T>::max());
    std::mt19937 rng(mask * 100 + sizeof(T));
    const RvpiSize sizes[] = {{1, 1}, {1, 7}, {7, 1}, {2, 5}, {5, 2}, {3, 4}, {13, 9}, {300, 6}, {41, 37}, {700, 9}};
    for (const auto& ws : weightSets) {
        W m[3];
        for (int i = 0; i < 3; ++i) m[i] = static_cast<W>(ws[i]);
        std::vector<Step> steps, outer;
        const double used[3] = {double(m[0]), double(m[1]), double(m[2])};
        stepsFor(mask, used, steps, outer);
        for (const RvpiSize sz : sizes)
            for (const int density : {0, 3, 60}) {
                Image<Rvp8u> src(sz.width, sz.height, 1, 3);
                src.fill([&] { return static_cast<Rvp8u>(density && rng() % density == 0 ? 0 : 1 + rng() % 255); });
                Image<T> dst(sz.width, sz.height, 1, 2 * sizeof(T));
                ASSERT_EQ(transform(mask, src, dst, m), rvpStsNoErr);
                ASSERT_TRUE(dst.guardsIntact());
                const std::vector<A> want = dijkstra<A>(src, steps, outer);
                for (int y = 0; y < sz.height; ++y)
                    for (int x = 0; x < sz.width; ++x) {
                        A v = want[static_cast<size_t>(y) * sz.width + x];
                        v = v < maxVal ? v : maxVal;
                        // Float sums of ways of equal length differ in their last bits with
                        // the order the steps are added: a relative tolerance of 1e-6.
                        const A got = static_cast<A>(dst.at(x, y));
                        if (std::is_floating_point<A>::value && v != maxVal && got != v) v = std::fabs(got - v) <= 1e-6f * v ? got : v;
                        ASSERT_EQ(got, v)
                            << mask << "x" << mask << " weights " << ws[0] << "," << ws[1] << "," << ws[2] << " at "
                            << x << "," << y << " of " << sz.width << "x" << sz.height << " density " << density;
                    }
                if constexpr (std::is_same<T, Rvp8u>::value) {  // in place gives the same bytes
                    Image<Rvp8u> inplace = src;
                    ASSERT_EQ((mask == 3 ? rvpiDistanceTransform_3x3_8u_C1IR : rvpiDistanceTransform_5x5_8u_C1IR)(
                                  inplace.ptr(), inplace.step(), inplace.size(), m),
                              rvpStsNoErr);
                    for (int y = 0; y < sz.height; ++y)
                        for (int x = 0; x < sz.width; ++x) ASSERT_EQ(inplace.at(x, y), dst.at(x, y));
                }
            }
    }
}

// Standard weights, a diagonal cheaper than a side (the last-row zigzag),
// diagonals that never win, large integer weights that saturate.
const std::vector<std::vector<double>> kWeights3 = {{1, 1, 0}, {1, 2, 0}, {2, 3, 0}, {3, 2, 0}, {1, 5, 0}, {200, 200, 0}};
const std::vector<std::vector<double>> kWeights3f = {{1, 1, 0}, {0.955, 1.3693, 0}, {3, 2, 0}, {1, 2.5, 0}, {1e38, 3e38, 0}};
// Regular, knight never wins (runs as 3x3), and two irregular sets.
const std::vector<std::vector<double>> kWeights5 = {{1, 1, 2}, {5, 7, 11}, {1, 1, 5}, {5, 4, 3}, {2, 3, 3}, {300, 40, 70000}};
const std::vector<std::vector<double>> kWeights5f = {{1, 1.4, 2.1969}, {1, 2, 3}, {5, 4, 3}, {2, 3, 3.5}};

TEST(Chamfer, MatchesShortestWays) {
    sweep<Rvp8u>(3, kWeights3);
    sweep<Rvp16u>(3, kWeights3);
    sweep<Rvp32f>(3, kWeights3f);
    sweep<Rvp8u>(5, kWeights5);
    sweep<Rvp16u>(5, kWeights5);
    sweep<Rvp32f>(5, kWeights5f);
}

TEST(Chamfer, MasksAndValidation) {
    Rvp32s m32s[3] = {};
    Rvp32f m32f[3] = {};
    ASSERT_EQ(rvpiGetDistanceTransformMask_32s(5, 2, m32s), rvpStsNoErr);
    EXPECT_EQ(m32s[2], 11);
    ASSERT_EQ(rvpiGetDistanceTransformMask(32, m32f), rvpStsNoErr);
    Rvp32u bits;
    std::memcpy(&bits, &m32f[1], 4);
    EXPECT_EQ(bits, 0x3FAF4539u);
    ASSERT_EQ(rvpiGetDistanceTransformMask_32f(5, 2, m32f), rvpStsNoErr);
    std::memcpy(&bits, &m32f[2], 4);
    EXPECT_EQ(bits, 0x400C9A02u);
    EXPECT_EQ(rvpiGetDistanceTransformMask(33, m32f), rvpStsBadArgErr);
    EXPECT_EQ(rvpiGetDistanceTransformMask(40, m32f), rvpStsSizeErr);
    EXPECT_EQ(rvpiGetDistanceTransformMask(41, nullptr), rvpStsNullPtrErr);
    EXPECT_EQ(rvpiGetDistanceTransformMask_32s(4, 0, m32s), rvpStsSizeErr);
    EXPECT_EQ(rvpiGetDistanceTransformMask_32f(3, 3, m32f), rvpStsBadArgErr);

    Image<Rvp8u> src(8, 4);
    Image<Rvp16u> dst(8, 4);
    src.fill([] { return Rvp8u{1}; });
    const auto kept = dst.raw();
    const Rvp32s ok[3] = {1, 1, 2}, zero[3] = {1, 0, 2}, noKnight[3] = {1, 1, 0};
    const struct { const Rvp8u* s; int ss; Rvp16u* d; int ds; RvpiSize r; const Rvp32s* m; int mask; RvpStatus want; } rows[] = {
        {nullptr, 8, dst.ptr(), 16, {8, 4}, ok, 3, rvpStsNullPtrErr},
        {src.ptr(), 8, dst.ptr(), 16, {8, 4}, nullptr, 5, rvpStsNullPtrErr},
        {src.ptr(), 8, dst.ptr(), 16, {8, 0}, ok, 3, rvpStsSizeErr},
        {src.ptr(), 7, dst.ptr(), 16, {8, 4}, ok, 3, rvpStsStepErr},
        {src.ptr(), 8, dst.ptr(), 15, {8, 4}, ok, 3, rvpStsStepErr},
        {src.ptr(), 8, dst.ptr(), 17, {8, 4}, ok, 5, rvpStsNotEvenStepErr},
        {src.ptr(), 8, dst.ptr(), 16, {8, 4}, zero, 3, rvpStsMetricErr},
        {src.ptr(), 8, dst.ptr(), 16, {8, 4}, noKnight, 5, rvpStsMetricErr},
    };
    for (const auto& r : rows)
        EXPECT_EQ((r.mask == 3 ? rvpiDistanceTransform_3x3_8u16u_C1R : rvpiDistanceTransform_5x5_8u16u_C1R)(
                      r.s, r.ss, r.d, r.ds, r.r, r.m),
                  r.want);
    EXPECT_EQ(dst.raw(), kept);
    Image<Rvp32f> fdst(8, 4);
    const Rvp32f nanWeights[2] = {std::nanf(""), 1.0f}, negative[2] = {1.0f, -0.0f};
    EXPECT_EQ(rvpiDistanceTransform_3x3_8u32f_C1R(src.ptr(), 8, fdst.ptr(), 32, {8, 4}, negative), rvpStsMetricErr);
    EXPECT_EQ(rvpiDistanceTransform_3x3_8u32f_C1R(src.ptr(), 8, fdst.ptr(), 32, {8, 4}, nanWeights), rvpStsNoErr);
}

}  // namespace
