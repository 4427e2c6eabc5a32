// Every function of the public header on plausible arguments (small images,
// and images past the threading thresholds): the same status and the same
// bytes at thread counts 1, 2, 3, 8 and 64, and from 8 application threads
// calling at once on their own buffers. Float sums of the statistics may
// change their last bits with the team size (documented) and are compared
// for status only.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <thread>

#include "calltable.h"

using namespace calltable;

namespace {

struct Result {
    bool called = false;
    int status = 0;
    std::vector<uint8_t> out;
    std::string problem;
};

// The state a function needs, made from a fixed seed by a constructor of
// the same sample type and layout where there is one.
void makeStates(const Function& f, uint64_t seed, void** states) {
    const std::string name = f.name, layout = name.substr(name.find('_') + 1);
    for (int k = 0; k < f.count; ++k) {
        if (f.params[k].kind != kStateIn) continue;
        const int t = f.params[k].state;
        const Function* maker = nullptr;
        for (const Function& m : kFunctions) {
            bool makes = false;
            for (int j = 0; j < m.count; ++j) makes |= m.params[j].kind == kStateOut && m.params[j].state == t;
            const std::string mn = m.name;
            if (makes && (!maker || mn.substr(mn.find('_') + 1) == layout)) maker = &m;
        }
        if (!maker) continue;
        SeededSource src(seed);
        Call c(*maker, src, Mode{false, false});
        if (c.prepare(states)) c.run(states);
    }
}

Result runOnce(int index, uint64_t seed, bool big) {
    const Function& f = kFunctions[index];
    void* states[kStateTypeCount > 0 ? kStateTypeCount : 1] = {};
    makeStates(f, seed, states);
    SeededSource src(seed);
    Call c(f, src, Mode{false, big});
    Result r;
    if (c.prepare(states)) {
        const Outcome o = c.run(states);
        r = Result{true, o.status, c.outputs(), o.problem};
    }
    for (int t = 0; t < kStateTypeCount; ++t)
        if (states[t]) Call::release(t, states[t]);
    return r;
}

// Compared by status only: float sums of the statistics, and the size
// queries, whose sizes grow with the permitted threads.
bool statusOnly(const std::string& name) {
    return ((name.find("Norm") != std::string::npos || name.find("Mean") != std::string::npos) &&
            name.find("_32f_") != std::string::npos) ||
           name.find("Size") != std::string::npos;
}

class Threads {
public:
    explicit Threads(int n) { rvpGetNumThreads(&old_), rvpSetNumThreads(n); }
    ~Threads() { rvpSetNumThreads(old_); }

private:
    int old_ = 1;
};

TEST(Reliability, SameBytesAtEveryThreadCount) {
    int compared = 0;
    std::vector<int> succeeded(kFunctionCount, 0);
    for (int i = 0; i < kFunctionCount; ++i)
        for (const int run : {0, 1, 2}) {
            const bool big = run == 1;
            const uint64_t seed = 7919u * i + run;
            Result first;
            {
                Threads t(1);
                first = runOnce(i, seed, big);
            }
            EXPECT_TRUE(first.problem.empty()) << kFunctions[i].name << ": " << first.problem;
            if (!first.called) continue;
            ++compared;
            succeeded[i] |= first.status >= 0;
            for (const int n : {2, 3, 8, 64}) {
                Threads t(n);
                const Result r = runOnce(i, seed, big);
                EXPECT_TRUE(r.problem.empty()) << kFunctions[i].name << ": " << r.problem;
                EXPECT_EQ(r.status, first.status) << kFunctions[i].name << " threads " << n;
                if (!statusOnly(kFunctions[i].name))
                    EXPECT_TRUE(r.out == first.out) << kFunctions[i].name << " threads " << n << (big ? " big" : "");
            }
        }
    EXPECT_GT(compared, kFunctionCount);
    int ok = 0;
    for (int v : succeeded) ok += v;
    std::printf("%d calls compared; %d of %d functions succeeded on at least one\n", compared, ok, kFunctionCount);
    if (std::getenv("RVPCV_LIST_FAILING"))
        for (int i = 0; i < kFunctionCount; ++i)
            if (!succeeded[i]) std::printf("  never succeeded: %s\n", kFunctions[i].name);
}

TEST(Reliability, EightCallersAtOnce) {
    for (int i = 0; i < kFunctionCount; ++i) {
        const uint64_t seed = 104729u * i + 3;
        const Result serial = runOnce(i, seed, false);
        if (!serial.called) continue;
        std::vector<Result> got(8);
        std::vector<std::thread> callers;
        for (int k = 0; k < 8; ++k) callers.emplace_back([&, k] { got[k] = runOnce(i, seed, false); });
        for (auto& c : callers) c.join();
        for (const Result& r : got) {
            EXPECT_EQ(r.status, serial.status) << kFunctions[i].name;
            EXPECT_TRUE(r.out == serial.out) << kFunctions[i].name;
        }
    }
}

}  // namespace
