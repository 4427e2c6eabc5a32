// Fuzz target over every function of the public header: each input is a
// short sequence of calls with arguments drawn from its bytes (sizes 0, 1,
// negative and huge, short, odd and negative steps, null pointers, NaN and
// infinities), the states a call needs made first by one of their
// constructors. A call must not crash or trip a sanitizer, must write
// nothing when it fails, nothing outside its images' rows, and never its
// inputs.
#include <cstdio>
#include <cstdlib>

#include "calltable.h"

using namespace calltable;

namespace {

void fail(const Function& f, const Outcome& o) {
    std::fprintf(stderr, "rvpcv_fuzz: %s: %s (status %d)\n", f.name, o.problem.c_str(), o.status);
    std::abort();
}

// Makes a state of type t with one of its constructors, plausible arguments.
void make(int t, Source& src, void** states) {
    std::vector<int> makers;
    for (int i = 0; i < kFunctionCount; ++i)
        for (int k = 0; k < kFunctions[i].count; ++k)
            if (kFunctions[i].params[k].kind == kStateOut && kFunctions[i].params[k].state == t) makers.push_back(i);
    if (makers.empty()) return;
    const Function& m = kFunctions[makers[src.below(static_cast<uint32_t>(makers.size()))]];
    Call c(m, src, Mode{false, false});
    if (!c.prepare(states)) return;
    const Outcome o = c.run(states);
    if (!o.problem.empty()) fail(m, o);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    ByteSource src(data, size);
    void* states[kStateTypeCount > 0 ? kStateTypeCount : 1] = {};
    rvpSetNumThreads(1 + static_cast<int>(src.below(3)));
    for (int n = 0; n < 3 && !src.empty(); ++n) {
        const Function& f = kFunctions[src.below(kFunctionCount)];
        for (int k = 0; k < f.count; ++k)
            if (f.params[k].kind == kStateIn && !states[f.params[k].state] && src.below(4) != 0)
                make(f.params[k].state, src, states);
        Call c(f, src, Mode{true, false});
        if (!c.prepare(states)) continue;
        const Outcome o = c.run(states);
        if (!o.problem.empty()) fail(f, o);
    }
    for (int t = 0; t < kStateTypeCount; ++t)
        if (states[t]) Call::release(t, states[t]);
    return 0;
}
