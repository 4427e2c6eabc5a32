// The frame's services: version record, core library, thread decisions, the
// band/reduction/filter region shapes, scratch allocation and the scale table.
#include <cmath>
#include <mutex>
#include <vector>

#include "rvcvframe.h"
#include "support/rvtest.h"

using namespace rvtest;

namespace {

TEST(Version, RecordIsExact) {
    const RvpLibraryVersion* v = rvpcvGetLibVersion();
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v->major, 7);
    EXPECT_EQ(v->minor, 1);
    EXPECT_EQ(v->majorBuild, 1);
    EXPECT_EQ(v->build, 37466);
    EXPECT_EQ(std::memcmp(v->targetCpu, "m7\0\0", 4), 0);
    EXPECT_STREQ(v->name, "rvpCV SSE3 (m7)");
    EXPECT_STREQ(v->version, "7.1.1 (r37466)");
    EXPECT_STREQ(v->buildDate, "Sep 24 2012");
}

TEST(Core, ThreadCountSetting) {
    int n = 0;
    EXPECT_EQ(rvpGetNumThreads(nullptr), rvpStsNullPtrErr);
    ASSERT_EQ(rvpGetNumThreads(&n), rvpStsNoErr);
    EXPECT_GE(n, 1);
    ScopedThreads t(5);
    for (int bad : {0, -3}) EXPECT_EQ(rvpSetNumThreads(bad), rvpStsBadArgErr);
    EXPECT_EQ(owncvGetMaxNumThreads(), 5);  // a refused value changes nothing
}

TEST(Core, MachineQueries) {
    int cache = -1;
    EXPECT_EQ(rvpGetMaxCacheSizeB(nullptr), rvpStsNullPtrErr);
    EXPECT_EQ(rvpGetMaxCacheSizeB(&cache), rvpStsNoErr);
    EXPECT_GT(cache, 0);
    EXPECT_EQ(owncvGetCacheSize(), cache);
    Rvp64u mask = 0;
    EXPECT_EQ(rvpGetCpuFeatures(nullptr, nullptr), rvpStsNullPtrErr);
    ASSERT_EQ(rvpGetCpuFeatures(&mask, nullptr), rvpStsNoErr);
    EXPECT_TRUE(mask & rvpCpuFeature_SSE3);
    EXPECT_EQ(rvpGetEnabledCpuFeatures() & ~mask, 0u);
}

// Both allocators give 32-byte aligned blocks and refuse empty or negative lengths.
TEST(Services, ScratchAndAlignment) {
    for (int len : {0, -5}) EXPECT_EQ(rvpMalloc(len), nullptr);
    EXPECT_EQ(rvpsMalloc_8u(-1), nullptr);
    EXPECT_EQ(rvpsMalloc_64f(0), nullptr);
    void* blocks[] = {rvpMalloc(3), rvpMalloc(1 << 20), rvpsMalloc_64f(100)};
    for (void* p : blocks) EXPECT_TRUE(p && reinterpret_cast<uintptr_t>(p) % 32 == 0);
    static_cast<Rvp64f*>(blocks[2])[99] = 1.0;  // lengths count elements, not bytes
    rvpFree(blocks[0]);
    rvpFree(blocks[1]);
    rvpsFree(static_cast<Rvp64f*>(blocks[2]));
    alignas(16) char buf[64];
    const void* rows[3] = {buf, buf + 16, buf + 48};
    EXPECT_EQ(owncvRowMatrAlErr(rows, 3), 0);
    rows[1] = buf + 8;
    EXPECT_EQ(owncvRowMatrAlErr(rows, 3), 1);
    EXPECT_EQ(owncvRowMatrAlErr(rows, 0), 0);
    EXPECT_EQ(owncvRowMatrAlErr(rows, -2), 0);
}

TEST(Services, ThreadWorthiness) {
    const int cores = rvpGetNumCoresOnDie();
    EXPECT_EQ(runomp(), cores == 1 ? 0 : cores);
    EXPECT_EQ(runsepomp(3), runomp());
    EXPECT_EQ(runsepomp(5), runomp());
    EXPECT_EQ(runsepomp(7), runomp() | 1);
}

TEST(Services, ScaleTable) {
    EXPECT_EQ(owncvGetScale_32s32f(-128), INFINITY);
    EXPECT_EQ(owncvGetScale_32s32f(-200), INFINITY);
    EXPECT_EQ(owncvGetScale_32s32f(-127), std::ldexp(1.0f, 127));
    EXPECT_EQ(owncvGetScale_32s32f(149), std::ldexp(1.0f, -149));
    EXPECT_EQ(owncvGetScale_32s32f(150), 0.0f);
    for (int i = 1; i < 278; ++i) EXPECT_EQ(intfTable[i], std::ldexp(1.0f, 128 - i)) << i;
}

struct Band { int id, y0, rows; };

std::vector<Band> bandsFor(int height, int team) {
    std::vector<Band> got;
    std::mutex m;
    rvcv::bandRegion(height, team, [&](int y0, int rows) {
        std::lock_guard<std::mutex> lock(m);
        got.push_back({owncvGetIdThreads(), y0, rows});
    });
    std::sort(got.begin(), got.end(), [](const Band& a, const Band& b) { return a.id < b.id; });
    return got;
}

// The leftover rows all go to the last thread; threads without rows do nothing.
TEST(Regions, BandSplit) {
    auto b = bandsFor(10, 4);
    ASSERT_EQ(b.size(), 4u);
    for (int i = 0; i < 4; ++i) EXPECT_TRUE(b[i].y0 == 2 * i && b[i].rows == (i == 3 ? 4 : 2)) << i;
    b = bandsFor(2, 4);
    ASSERT_EQ(b.size(), 1u);
    EXPECT_TRUE(b[0].id == 3 && b[0].y0 == 0 && b[0].rows == 2);
}

// Exactly 262144 pixels take the parallel path; one row fewer stays serial.
TEST(Regions, PixelwiseThreshold) {
    ScopedThreads t(3);
    auto teams = [](int w, int h) {
        int calls = 0;
        std::mutex m;
        rvcv::pixelwise(w, h, [&](int, int) { std::lock_guard<std::mutex> l(m); ++calls; });
        return calls;
    };
    EXPECT_EQ(teams(512, 511), 1);
    EXPECT_EQ(teams(512, 512), 3);
}

TEST(Regions, ReductionIsStableForOneTeamSize) {
    std::vector<double> v(1000);
    for (size_t i = 0; i < v.size(); ++i) v[i] = 1.0 / (1.0 + i * 0.37);
    for (int team : {1, 2, 3, 8, 17, 18, 40}) {
        auto run = [&] {
            return rvcv::reductionRegion<double>(1000, team, 0.0, [&](int y0, int rows, double& s) {
                for (int i = y0; i < y0 + rows; ++i) s += v[i];
            }, [](double a, double b) { return a + b; });
        };
        const double first = run();
        EXPECT_NEAR(first, std::accumulate(v.begin(), v.end(), 0.0), 1e-9) << team;
        EXPECT_EQ(run(), first) << team;  // same team size, same bits
    }
}

TEST(Regions, FilterSlicesAndSeams) {
    alignas(32) Rvp8u buf[4 * 100];
    struct Seen { int id, y0, rows, flags; Rvp8u* slice; };
    std::vector<Seen> got;
    std::mutex m;
    rvcv::filterRegion(20, 4, buf, 400, [&](int y0, int rows, Rvp8u* slice, int flags) {
        std::lock_guard<std::mutex> l(m);
        got.push_back({owncvGetIdThreads(), y0, rows, flags, slice});
    });
    ASSERT_EQ(got.size(), 4u);
    for (const Seen& s : got) {
        EXPECT_EQ(s.slice, buf + 100 * s.id);
        EXPECT_EQ(s.y0, 5 * s.id);
        const int want = s.id == 0 ? 0x20 : s.id == 3 ? 0x10 : 0x30;
        EXPECT_EQ(s.flags, want) << s.id;
    }
}

TEST(Arithmetic, WrapsLike32BitRegisters) {
    EXPECT_EQ(rvcv::wmul(65536, 65536), 0);
    EXPECT_EQ(rvcv::wmul(0x40000000, 2), INT32_MIN);
    EXPECT_EQ(rvcv::wadd(INT32_MAX, 1), INT32_MIN);
    EXPECT_EQ(rvcv::rowOffset(-4, 3), -12);
}

}  // namespace
