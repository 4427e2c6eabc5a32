// Segment boundaries: wherever two neighbouring pixels carry different
// labels, one of them takes the boundary value, in place and in scan order
// (a test reads what earlier tests wrote). The plain rule puts the boundary
// on the right and lower side of a change; the priority rule gives it to the
// pixel with the larger priority (ties: the right or the lower one). Always
// one pass on the calling thread: a banded pass would see other values at
// its seams.
#include "segment/rvcvsegment.h"

namespace rvcv {
namespace seg {

template <class T> void boundPlain(T* m, int step, RvpiSize roi, T val, bool four) {
    const int w = roi.width;
    four = four || w == 1;
    for (int x = 0; x + 1 < w; ++x)
        if (m[x] != val && m[x] != m[x + 1]) m[x + 1] = val;
    for (int y = 1; y < roi.height; ++y) {
        T* p = rowPtr(m, step, y);
        const T* a = rowPtr(m, step, y - 1);
        const auto conflict = [&](T n, T c) { return n != val && n != c; };
        for (int x = 0; x < w; ++x) {
            const T c = p[x];
            bool hit = conflict(a[x], c) || (x > 0 && conflict(p[x - 1], c));
            if (!four) hit = hit || (x > 0 && conflict(a[x - 1], c)) || (x + 1 < w && conflict(a[x + 1], c));
            if (hit) p[x] = val;
        }
    }
}

template <class T>
void boundPriority(T* m, int step, const int32_t* d, int dStep, RvpiSize roi, T val, bool four) {
    const int w = roi.width;
    four = four || w == 1;
    {  // Row 0 has no test against the boundary value.
        for (int x = 0; x + 1 < w; ++x) {
            if (m[x] == m[x + 1]) continue;
            if (d[x + 1] < d[x]) m[x] = val;
            else m[x + 1] = val, ++x;
        }
    }
    for (int y = 1; y < roi.height; ++y) {
        T* p = rowPtr(m, step, y);
        T* a = rowPtr(m, step, y - 1);
        const int32_t* dp = rowPtr(d, dStep, y);
        const int32_t* da = rowPtr(d, dStep, y - 1);
        // Vertical test; true when the pixel itself took the boundary.
        const auto vertical = [&](int x) {
            if (a[x] == val || a[x] == p[x]) return false;
            if (dp[x] < da[x]) {
                a[x] = val;
                return false;
            }
            p[x] = val;
            return true;
        };
        int x = 0;
        for (; x + 1 < w; ++x) {
            if (vertical(x)) continue;
            if (p[x] == p[x + 1]) continue;
            if (dp[x + 1] < dp[x]) p[x] = val;
            else p[x + 1] = val, ++x;
        }
        if (four) {
            if (x == w - 1) vertical(x);
            continue;
        }
        // Diagonals, on the same two rows.
        if (w < 2) continue;
        if (p[0] != val && a[1] != val && p[0] != a[1]) {
            if (dp[0] < da[1]) a[1] = val;
            else p[0] = val;
        }
        for (x = 1; x + 1 < w; ++x) {
            if (p[x] == val) continue;
            if (a[x - 1] != val && a[x - 1] != p[x]) {
                if (dp[x] < da[x - 1]) {
                    a[x - 1] = val;
                } else {
                    p[x] = val;
                    continue;
                }
            }
            if (a[x + 1] != val && a[x + 1] != p[x]) {
                if (da[x + 1] <= dp[x]) p[x] = val;
                else a[x + 1] = val;
            }
        }
        x = w - 1;
        if (p[x] != val && a[x - 1] != val && p[x] != a[x - 1]) {
            if (dp[x] < da[x - 1]) a[x - 1] = val;
            else p[x] = val;
        }
    }
}

template void boundPlain<Rvp8u>(Rvp8u*, int, RvpiSize, Rvp8u, bool);
template void boundPlain<Rvp16u>(Rvp16u*, int, RvpiSize, Rvp16u, bool);
template void boundPriority<Rvp8u>(Rvp8u*, int, const int32_t*, int, RvpiSize, Rvp8u, bool);
template void boundPriority<Rvp16u>(Rvp16u*, int, const int32_t*, int, RvpiSize, Rvp16u, bool);

namespace {

template <class T> RvpStatus boundSegments(T* m, int step, RvpiSize roi, T val, int norm) {
    Check c;
    c.ptr(m);
    if (RvpStatus st = checkImage<T>(c, roi, 1, step).fail(norm != 0 && norm != 1, rvpStsBadArgErr)) return st;
    boundPlain(m, step, roi, val, norm == 1);
    return rvpStsNoErr;
}

}  // namespace
}  // namespace seg
}  // namespace rvcv

using namespace rvcv;

RVCV_EXPORT RvpStatus rvpiBoundSegments_8u_C1IR(Rvp8u* pMarker, int markerStep, RvpiSize roiSize, Rvp8u val,
                                                int norm) {
    return seg::boundSegments(pMarker, markerStep, roiSize, val, norm);
}
RVCV_EXPORT RvpStatus rvpiBoundSegments_16u_C1IR(Rvp16u* pMarker, int markerStep, RvpiSize roiSize, Rvp16u val,
                                                 int norm) {
    return seg::boundSegments(pMarker, markerStep, roiSize, val, norm);
}
