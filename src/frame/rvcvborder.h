// Border extension: where a sample outside an axis of length n is read from.
// One rule for every border-aware family.
//   constant   vvv|abcd|vvv   (index -1: the caller uses its border value)
//   replicate  aaa|abcd|ddd
//   wrap       bcd|abcd|abc
//   mirror     dcb|abcd|cba   edge not repeated; on a one-sample axis acts as mirror-repeat
//   mirror-repeat cba|abcd|dcb edge repeated
// An axis narrower than the extension reflects on into the extended samples,
// bouncing between the two ends (the reflection is periodic).
#ifndef RVCV_BORDER_H
#define RVCV_BORDER_H

#include "rvpcv.h"

namespace rvcv {

inline int positiveMod(long long p, long long m) {
    long long r = p % m;
    return static_cast<int>(r < 0 ? r + m : r);
}

// Index in [0, n) for position p under border code `type` (low four bits),
// or -1 for a constant border outside the axis. n must be positive.
inline int borderIndex(long long p, int n, int type) {
    if (p >= 0 && p < n) return static_cast<int>(p);
    switch (type & 0xF) {
    case rvpBorderConst: return -1;
    case rvpBorderRepl: return p < 0 ? 0 : n - 1;
    case rvpBorderWrap: return positiveMod(p, n);
    case rvpBorderMirror:
        if (n > 1) {
            const int q = positiveMod(p, 2LL * n - 2);
            return q < n ? q : 2 * n - 2 - q;
        }
        return 0;
    case rvpBorderMirrorR: {
        const int q = positiveMod(p, 2LL * n);
        return q < n ? q : 2 * n - 1 - q;
    }
    default: return p < 0 ? 0 : n - 1;  // callers validate the code first
    }
}

}  // namespace rvcv

#endif
