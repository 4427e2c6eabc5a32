// Marker-driven watershed: priority-queue flooding (shared with the gradient
// segmentation), or a distance relaxation by raster sweeps. Each pixel of
// the relaxation keeps a key (gray level << 23 plus the path cost), the
// neighbour it took its label from, and a dirty byte; rows keep a flag. The
// first sweep goes down, the second up, then check sweeps alternate over
// flagged rows and dirty pixels until one changes nothing. The sweeps run on
// the calling thread: bands sweeping at once would break ties between equal
// keys in another order, and the result must not depend on the team.
#include <cmath>

#include "segment/rvcvsegment.h"

namespace rvcv {
namespace seg {
namespace {

constexpr int32_t kUnreached = 0x7FC00000;

// What a two-neighbour solution of the eikonal equation at a step of 64
// saves against one neighbour, by the difference of the two keys.
struct FmmTable {
    int32_t v[65];
    FmmTable() {
        for (int d = 0; d <= 64; ++d)
            v[d] = static_cast<int32_t>(std::floor(64.0 - (d + std::sqrt(2.0 * 64 * 64 - d * d)) / 2.0 + 0.5));
    }
};

enum class Kind { Four, Eight, March };

// Neighbour codes: 1 right, 2 up-right, 3 up, 4 up-left, 5 left, 6 down-left,
// 7 down, 8 down-right; 0 a seed, 9 not reached yet.
constexpr int kDy[10] = {0, 0, -1, -1, -1, 0, 1, 1, 1, 0};
constexpr int kDx[10] = {0, 1, 1, 0, -1, -1, -1, 0, 1, 0};

template <class T> class Relaxation {
public:
    Relaxation(const Rvp8u* src, int srcStep, T* marker, int markerStep, RvpiSize roi, int norm, Rvp8u* buffer)
        : src_(src), srcStep_(srcStep), m_(marker), mStep_(markerStep), w_(roi.width), h_(roi.height) {
        pitch_ = sizeof(T) == 1 ? (w_ + 31) & ~31 : (2 * w_ + 31) & ~31;
        key_ = reinterpret_cast<int32_t*>((reinterpret_cast<uintptr_t>(buffer) + 31) & ~uintptr_t{31});
        dir_ = reinterpret_cast<Rvp8u*>(key_ + static_cast<int64_t>(pitch_) * h_);
        dirty_ = dir_ + static_cast<int64_t>(pitch_) * h_ + pitch_;  // row -1 exists
        flags_ = dirty_ + static_cast<int64_t>(pitch_) * (h_ + 1) + 1;  // so do flags[-1] and flags[h]
        kind_ = w_ == 1 || norm == 1 ? Kind::Four : norm == 3 ? Kind::March : Kind::Eight;
        side_ = w_ == 1 ? 0 : norm == 2 ? 10 : norm == 3 ? 63 : 0;
        diag_ = w_ == 1 ? 0 : norm == 2 ? 14 : 0;
    }

    int32_t* keys() const { return key_; }
    int keyStep() const { return 4 * pitch_; }

    void run() {
        std::memset(dir_, 9, static_cast<size_t>(pitch_) * h_);
        std::memset(dirty_ - pitch_, 0, static_cast<size_t>(pitch_) * (h_ + 2));
        std::memset(flags_ - 1, 1, static_cast<size_t>(h_) + 2);
        for (int y = 0; y < h_; ++y)
            for (int x = 0; x < w_; ++x) {
                const bool seed = label(y, x) != 0;
                key(y, x) = seed ? gray(y, x) << 23 : kUnreached;
                if (seed) dir(y, x) = 0;
            }
        for (int y = 0; y < h_; ++y) row(y, true, Rule::First);
        bool changed = false;
        for (int y = h_ - 1; y >= 0; --y) changed |= finishRow(y, row(y, false, Rule::Set));
        for (bool down = true; changed; down = !down) {
            changed = false;
            if (down) {
                for (int y = 0; y < h_; ++y)
                    if (flags_[y]) changed |= finishRow(y, row(y, true, Rule::Check));
            } else {
                for (int y = h_ - 1; y >= 0; --y)
                    if (flags_[y]) changed |= finishRow(y, row(y, false, Rule::Check));
            }
        }
    }

private:
    enum class Rule { First, Set, Check };

    int32_t& key(int y, int x) const { return key_[static_cast<int64_t>(pitch_) * y + x]; }
    Rvp8u& dir(int y, int x) const { return dir_[static_cast<int64_t>(pitch_) * y + x]; }
    Rvp8u& dirty(int y, int x) const { return dirty_[static_cast<int64_t>(pitch_) * y + x]; }
    T& label(int y, int x) const { return rowPtr(m_, mStep_, y)[x]; }
    int32_t gray(int y, int x) const { return rowPtr(src_, srcStep_, y)[x]; }
    bool inside(int y, int x) const { return y >= 0 && y < h_ && x >= 0 && x < w_; }

    int32_t cost(int code) const { return (code & 1) ? side_ : diag_; }

    // Applies the best of the candidates `codes` (earlier wins ties) to pixel
    // (y, x) under `rule`; returns true when the pixel changed.
    bool apply(int y, int x, const int* codes, int count, Rule rule) {
        if (dir(y, x) == 0) return false;  // seeds never change
        if (rule == Rule::Check && !dirty(y, x)) return false;
        int code = 0;
        int32_t best = 0;
        if (kind_ == Kind::March && count == 2) {
            // Left or right first, then up or down: the eikonal update.
            const int32_t c0 = key(y + kDy[codes[0]], x + kDx[codes[0]]) + side_;
            const int32_t c1 = key(y + kDy[codes[1]], x + kDx[codes[1]]) + side_;
            const int32_t a = c0 <= c1 ? c0 : c1, b = c0 <= c1 ? c1 : c0;
            code = c0 <= c1 ? codes[0] : codes[1];
            best = b - a <= 63 ? a - fmm_.v[b - a] : a;
        } else {
            for (int k = 0; k < count; ++k) {
                const int32_t c = key(y + kDy[codes[k]], x + kDx[codes[k]]) + cost(codes[k]);
                if (k == 0 || c < best) best = c, code = codes[k];
            }
        }
        const int32_t floor = gray(y, x) << 23;
        const int32_t fresh = best + 1 > floor ? best + 1 : floor;
        const T from = label(y + kDy[code], x + kDx[code]);
        if (rule == Rule::First) {
            key(y, x) = fresh;
            dir(y, x) = static_cast<Rvp8u>(code);
            label(y, x) = from;
            return true;
        }
        if (fresh < key(y, x)) {
            key(y, x) = fresh;
            dir(y, x) = static_cast<Rvp8u>(code);
            label(y, x) = from;
        } else {
            const int d = dir(y, x);
            if (d == 9 || label(y, x) == label(y + kDy[d], x + kDx[d])) {
                dirty(y, x) = 0;
                return false;
            }
            label(y, x) = label(y + kDy[d], x + kDx[d]);
        }
        dirty(y, x) = 0;
        if (x > 0) dirty(y, x - 1) = 1;
        if (x + 1 < w_) dirty(y, x + 1) = 1;
        dirty(y - 1, x) = dirty(y + 1, x) = 1;  // rows -1 and h exist
        return true;
    }

    // The improvement test alone, for the second pass along a row.
    bool tryOne(int y, int x, int code, Rule rule) {
        if (rule == Rule::First) {
            if (dir(y, x) == 0) return false;
            const int32_t c = key(y + kDy[code], x + kDx[code]) + cost(code);
            const int32_t floor = gray(y, x) << 23;
            const int32_t fresh = c + 1 > floor ? c + 1 : floor;
            if (!(fresh < key(y, x))) return false;
            key(y, x) = fresh;
            dir(y, x) = static_cast<Rvp8u>(code);
            label(y, x) = label(y + kDy[code], x + kDx[code]);
            return true;
        }
        const int codes[1] = {code};
        return apply(y, x, codes, 1, rule);
    }

    // One row of a sweep: down (candidates from the row above, left to right,
    // then the right neighbour right to left) or up (the mirror image).
    int row(int y, bool down, Rule rule) {
        int changes = 0;
        const int v = down ? 3 : 7;             // up or down
        const int h = down ? 5 : 1;             // left or right: the forward neighbour
        const int back = down ? 1 : 5;          // the neighbour of the return pass
        const int dv0 = down ? 4 : 8, dv1 = down ? 2 : 6;  // diagonals before and after the vertical
        const bool edgeRow = down ? y == 0 : y == h_ - 1;
        const int first = down ? 0 : w_ - 1, step = down ? 1 : -1;
        if (edgeRow) {
            for (int x = first + step; x >= 0 && x < w_; x += step) changes += tryCodes(y, x, &h, 1, rule);
        } else {
            changes += tryCodes(y, first, &v, 1, rule);
            for (int x = first + step; x >= 0 && x < w_; x += step) {
                int codes[4], n = 0;
                const bool lastColumn = x + step < 0 || x + step >= w_;
                if (kind_ == Kind::March) {
                    codes[n++] = h;
                    codes[n++] = v;
                } else {
                    codes[n++] = h;
                    if (kind_ == Kind::Eight) codes[n++] = dv0;
                    codes[n++] = v;
                    if (kind_ == Kind::Eight && !lastColumn) codes[n++] = dv1;
                }
                changes += apply(y, x, codes, n, rule);
            }
        }
        for (int x = first + (w_ - 2) * step; x >= 0 && x < w_; x -= step)
            changes += tryOne(y, x, back, rule);
        return changes;
    }

    int tryCodes(int y, int x, const int* codes, int n, Rule rule) {
        if (rule == Rule::First) {
            // The first sweep's edges take their neighbour outright.
            if (dir(y, x) == 0) return 0;
            const int32_t c = key(y + kDy[codes[0]], x + kDx[codes[0]]) + cost(codes[0]);
            const int32_t floor = gray(y, x) << 23;
            key(y, x) = c + 1 > floor ? c + 1 : floor;
            dir(y, x) = static_cast<Rvp8u>(codes[0]);
            label(y, x) = label(y + kDy[codes[0]], x + kDx[codes[0]]);
            return 1;
        }
        return apply(y, x, codes, n, rule);
    }

    // Row flags: a changed row wakes its neighbours and sleeps itself.
    bool finishRow(int y, int changes) {
        const Rvp8u c = changes ? 1 : 0;
        flags_[y - 1] |= c;
        flags_[y + 1] |= c;
        flags_[y] = 0;
        return changes != 0;
    }

    const Rvp8u* src_;
    int srcStep_;
    T* m_;
    int mStep_, w_, h_, pitch_;
    int32_t* key_;
    Rvp8u *dir_, *dirty_, *flags_;
    Kind kind_;
    int32_t side_, diag_;
    FmmTable fmm_;
};

int64_t distanceBytes(RvpiSize roi, int labelBytes) {
    const int64_t w = roi.width, h = roi.height;
    const int64_t pitch = labelBytes == 1 ? (w + 31) & ~int64_t{31} : (2 * w + 31) & ~int64_t{31};
    return h + 66 + 6 * h * pitch + 2 * pitch;
}

int64_t bufferBytes(RvpiSize roi, int labelBytes) {
    const int64_t a = distanceBytes(roi, labelBytes), b = queueBytes(roi, labelBytes);
    return a > b ? a : b;
}

template <class T>
RvpStatus watershed(const Rvp8u* src, int srcStep, T* marker, int markerStep, RvpiSize roi, int norm, int flag,
                    Rvp8u* buffer) {
    Check c;
    c.ptrs(src, marker, buffer).size(roi);
    if (c == rvpStsNoErr && bufferBytes(roi, sizeof(T)) > INT32_MAX) c.fail(true, rvpStsSizeErr);
    c.step(srcStep, roi.width).step(markerStep, wmul(roi.width, static_cast<int>(sizeof(T))));
    const bool queue = flag & 1;
    c.fail(!queue && (!(flag & 2) || norm < 0 || norm > 3), rvpStsBadArgErr);
    c.fail(queue && norm != 0 && norm != 1, rvpStsBadArgErr);
    if (c != rvpStsNoErr) return c;
    if (queue) {
        floodQueue(src, srcStep, marker, markerStep, roi, norm == 1, flag & (kBorder4 | kBorder8), buffer);
        return rvpStsNoErr;
    }
    Relaxation<T> r(src, srcStep, marker, markerStep, roi, norm, buffer);
    r.run();
    if (flag & (kBorder4 | kBorder8))
        boundPriority(marker, markerStep, r.keys(), r.keyStep(), roi, std::numeric_limits<T>::max(),
                      (flag & kBorder4) != 0);
    return rvpStsNoErr;
}

RvpStatus query(RvpiSize roi, int labelBytes, int* size) {
    Check c;
    if (RvpStatus st = c.ptr(size).size(roi).fail(bufferBytes(roi, labelBytes) > INT32_MAX, rvpStsSizeErr)) return st;
    *size = static_cast<int>(bufferBytes(roi, labelBytes));
    return rvpStsNoErr;
}

}  // namespace
}  // namespace seg
}  // namespace rvcv

using namespace rvcv;

RVCV_EXPORT RvpStatus rvpiSegmentWatershed_8u_C1IR(const Rvp8u* pSrc, int srcStep, Rvp8u* pMarker, int markerStep,
                                                   RvpiSize roiSize, int norm, int flag, Rvp8u* pBuffer) {
    return seg::watershed(pSrc, srcStep, pMarker, markerStep, roiSize, norm, flag, pBuffer);
}
RVCV_EXPORT RvpStatus rvpiSegmentWatershed_8u16u_C1IR(const Rvp8u* pSrc, int srcStep, Rvp16u* pMarker,
                                                      int markerStep, RvpiSize roiSize, int norm, int flag,
                                                      Rvp8u* pBuffer) {
    return seg::watershed(pSrc, srcStep, pMarker, markerStep, roiSize, norm, flag, pBuffer);
}
RVCV_EXPORT RvpStatus rvpiSegmentWatershedGetBufferSize_8u_C1R(RvpiSize roiSize, int* pBufferSize) {
    return seg::query(roiSize, 1, pBufferSize);
}
RVCV_EXPORT RvpStatus rvpiSegmentWatershedGetBufferSize_8u16u_C1R(RvpiSize roiSize, int* pBufferSize) {
    return seg::query(roiSize, 2, pBufferSize);
}
