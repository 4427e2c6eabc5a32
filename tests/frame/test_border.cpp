// Border extension drawn out on small axes, including bouncing reflection.
#include <string>

#include "rvcvborder.h"
#include "support/rvtest.h"

namespace {

// Extends "abcd"-style axes by `ext` on each side and spells the result.
std::string extend(int n, int type, int ext) {
    std::string s;
    for (int p = -ext; p < n + ext; ++p) {
        if (p == 0 || p == n) s += '|';
        const int i = rvcv::borderIndex(p, n, type);
        s += i < 0 ? 'v' : static_cast<char>('a' + i);
    }
    return s;
}

TEST(Border, Rules) {
    EXPECT_EQ(extend(4, rvpBorderConst, 3), "vvv|abcd|vvv");
    EXPECT_EQ(extend(4, rvpBorderRepl, 3), "aaa|abcd|ddd");
    EXPECT_EQ(extend(4, rvpBorderWrap, 3), "bcd|abcd|abc");
    EXPECT_EQ(extend(4, rvpBorderMirror, 3), "dcb|abcd|cba");
    EXPECT_EQ(extend(4, rvpBorderMirrorR, 3), "cba|abcd|dcb");
    // Narrow axes bounce between the ends.
    EXPECT_EQ(extend(2, rvpBorderMirror, 4), "abab|ab|abab");
    EXPECT_EQ(extend(2, rvpBorderMirrorR, 4), "abba|ab|baab");
    EXPECT_EQ(extend(3, rvpBorderWrap, 5), "bcabc|abc|abcab");
    // One sample: replicate, mirror and mirror-repeat all read it.
    for (int t : {rvpBorderRepl, rvpBorderMirror, rvpBorderMirrorR, rvpBorderWrap})
        EXPECT_EQ(extend(1, t, 2), "aa|a|aa") << t;
}

}  // namespace
