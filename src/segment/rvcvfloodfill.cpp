// Scan-line flood fills: exact, range and gradient rules over 4 or 8
// neighbours, one or three channels. The exact and range fills paint as they
// find runs; the gradient fill compares unpainted values, so it marks found
// pixels in a bordered visited mask and paints a span only after its
// neighbour rows are scanned. The order in which spans are scanned is part
// of the result wherever the stack is bounded or the rule is asymmetric.
#include <algorithm>
#include <cmath>
#include <emmintrin.h>

#include "segment/rvcvfill.h"

namespace rvcv {
namespace fill {

bool SpanStack::next() {
    if (cur_ + 1 < chunks_) {  // a chunk taken before and left by pops
        ++cur_;
        off_ = 0;
        return true;
    }
    if (chunks_ == 40) return false;
    const int64_t room = 2 * chunk_[cur_].room + 1024;
    const int64_t bytes = room * bytes_;
    Rvp8u* fresh = fitsInt(bytes) ? static_cast<Rvp8u*>(rvpMalloc(static_cast<int>(bytes))) : nullptr;
    if (!fresh) return false;
    chunk_[chunks_++] = Chunk{fresh, room};
    ++cur_;
    off_ = 0;
    return true;
}

namespace {

// ---- Pixel rules -----------------------------------------------------------

template <class T, int C> inline void paint(T* p, const T* v) {
    for (int c = 0; c < C; ++c) p[c] = v[c];
}

// Equal to the seed's value in every channel (floats: ordered, NaN fails).
template <class T, int C> struct ExactRule {
    T s[C];
    explicit ExactRule(const T* seed) {
        for (int c = 0; c < C; ++c) s[c] = seed[c];
    }
    bool operator()(const T* p) const {
        for (int c = 0; c < C; ++c)
            if (!(p[c] == s[c])) return false;
        return true;
    }
    // One-channel rows, 16 bytes at a time: a set bit per byte of a match.
    int block(const T* p) const {
        if constexpr (sizeof(T) == 4) {
            return _mm_movemask_epi8(_mm_castps_si128(_mm_cmpeq_ps(_mm_loadu_ps(p), _mm_set1_ps(s[0]))));
        } else {
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
            return _mm_movemask_epi8(sizeof(T) == 1 ? _mm_cmpeq_epi8(v, _mm_set1_epi8(static_cast<char>(s[0])))
                                                    : _mm_cmpeq_epi16(v, _mm_set1_epi16(static_cast<short>(s[0]))));
        }
    }
};

// Inside lo..hi in every channel, both ends included.
template <class T, int C> struct RangeRule {
    T lo[C], hi[C];
    RangeRule(const T* seed, const T* minDelta, const T* maxDelta) {
        for (int c = 0; c < C; ++c) {
            if constexpr (std::is_floating_point<T>::value) {
                lo[c] = seed[c] - minDelta[c];
                hi[c] = seed[c] + maxDelta[c];
            } else {
                const int top = std::numeric_limits<T>::max();
                const int l = int{seed[c]} - int{minDelta[c]}, h = int{seed[c]} + int{maxDelta[c]};
                lo[c] = static_cast<T>(l < 0 ? 0 : l);
                hi[c] = static_cast<T>(h > top ? top : h);
            }
        }
    }
    bool operator()(const T* p) const {
        for (int c = 0; c < C; ++c)
            if (!(lo[c] <= p[c] && p[c] <= hi[c])) return false;
        return true;
    }
    int block(const T* p) const {
        if constexpr (sizeof(T) == 4) {
            const __m128 v = _mm_loadu_ps(p);
            return _mm_movemask_epi8(
                _mm_castps_si128(_mm_and_ps(_mm_cmple_ps(_mm_set1_ps(lo[0]), v), _mm_cmple_ps(v, _mm_set1_ps(hi[0])))));
        } else if constexpr (sizeof(T) == 1) {
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
            const __m128i l = _mm_set1_epi8(static_cast<char>(lo[0])), h = _mm_set1_epi8(static_cast<char>(hi[0]));
            return _mm_movemask_epi8(
                _mm_and_si128(_mm_cmpeq_epi8(_mm_max_epu8(v, l), v), _mm_cmpeq_epi8(_mm_min_epu8(v, h), v)));
        } else {
            // Unsigned order through the sign flip: p < lo or p > hi fails.
            const __m128i flip = _mm_set1_epi16(static_cast<short>(0x8000));
            const __m128i v = _mm_xor_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)), flip);
            const __m128i l = _mm_xor_si128(_mm_set1_epi16(static_cast<short>(lo[0])), flip);
            const __m128i h = _mm_xor_si128(_mm_set1_epi16(static_cast<short>(hi[0])), flip);
            return 0xFFFF & ~_mm_movemask_epi8(_mm_or_si128(_mm_cmplt_epi16(v, l), _mm_cmpgt_epi16(v, h)));
        }
    }
};

// The run searches of the scan-line fill. One-channel rows go 16 bytes at a
// time through the rule's block test; three-channel rows pixel by pixel.
// Neither reads outside x..last.
template <class T, int C, class Match> struct Runs {
    static constexpr int kLanes = 16 / static_cast<int>(sizeof(T));
    // The last column of the run of matches that starts at x + 1 (x if none).
    static int right(const Match& m, const T* r, int x, int last) {
        if constexpr (C == 1) {
            for (; x + kLanes <= last; x += kLanes) {
                const int miss = ~m.block(r + x + 1) & 0xFFFF;
                if (miss) return x + __builtin_ctz(static_cast<unsigned>(miss)) / static_cast<int>(sizeof(T));
            }
        }
        while (x < last && m(r + (x + 1) * C)) ++x;
        return x;
    }
    // The first matching column in x..last, or last + 1.
    static int find(const Match& m, const T* r, int x, int last) {
        if constexpr (C == 1) {
            for (; x + kLanes - 1 <= last; x += kLanes)
                if (const int hit = m.block(r + x))
                    return x + __builtin_ctz(static_cast<unsigned>(hit)) / static_cast<int>(sizeof(T));
        }
        while (x <= last && !m(r + x * C)) ++x;
        return x;
    }
};

template <class T, int C> inline void paintRun(T* r, int left, int right, const T* v) {
    if constexpr (C == 1) {
        if (right - left < 16) {  // short runs, the common case in texture: no call
            for (int x = left; x <= right; ++x) r[x] = v[0];
            return;
        }
        std::fill(r + left, r + right + 1, v[0]);
    } else {
        for (int x = left; x <= right; ++x) paint<T, C>(r + x * C, v);
    }
}

// near(a, b): a may join next to b when -minDelta <= a - b <= maxDelta.
template <class T, int C, bool Float = std::is_floating_point<T>::value> struct GradRule;

template <class T, int C> struct GradRule<T, C, false> {
    uint32_t minD[C], span[C];
    GradRule(const T* minDelta, const T* maxDelta) {
        for (int c = 0; c < C; ++c) {
            minD[c] = minDelta[c];
            span[c] = uint32_t{minDelta[c]} + uint32_t{maxDelta[c]};
        }
    }
    bool operator()(const T* a, const T* b) const {
        for (int c = 0; c < C; ++c)
            if (uint32_t{a[c]} + minD[c] - uint32_t{b[c]} > span[c]) return false;
        return true;
    }
    // 8u, one channel, 16 pixels: bit i set where near(a[i], b[i]). The
    // difference a + minDelta - b lies in -255..510, so 16-bit lanes hold it.
    int block(const Rvp8u* a, const Rvp8u* b) const {
        const __m128i z = _mm_setzero_si128(), va = _mm_loadu_si128(reinterpret_cast<const __m128i*>(a));
        const __m128i vb = _mm_loadu_si128(reinterpret_cast<const __m128i*>(b));
        const __m128i md = _mm_set1_epi16(static_cast<short>(minD[0]));
        const __m128i above = _mm_set1_epi16(static_cast<short>(span[0] + 1)), below = _mm_set1_epi16(-1);
        const __m128i lo = _mm_sub_epi16(_mm_add_epi16(_mm_unpacklo_epi8(va, z), md), _mm_unpacklo_epi8(vb, z));
        const __m128i hi = _mm_sub_epi16(_mm_add_epi16(_mm_unpackhi_epi8(va, z), md), _mm_unpackhi_epi8(vb, z));
        const __m128i okLo = _mm_and_si128(_mm_cmpgt_epi16(lo, below), _mm_cmplt_epi16(lo, above));
        const __m128i okHi = _mm_and_si128(_mm_cmpgt_epi16(hi, below), _mm_cmplt_epi16(hi, above));
        return _mm_movemask_epi8(_mm_packs_epi16(okLo, okHi));
    }
};

// The first unmarked column of a mask row in x..last, or last + 1.
inline int nextUnmarked(const Rvp8u* m, int x, int last) {
    for (; x + 15 <= last; x += 16) {
        const __m128i v = _mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(m + x)), _mm_setzero_si128());
        if (const int hit = _mm_movemask_epi8(v)) return x + __builtin_ctz(static_cast<unsigned>(hit));
    }
    while (x <= last && m[x]) ++x;
    return x;
}

template <class T, int C> struct GradRule<T, C, true> {
    Rvp32f half[C], radius[C];
    GradRule(const T* minDelta, const T* maxDelta) {
        for (int c = 0; c < C; ++c) {
            half[c] = (minDelta[c] - maxDelta[c]) * 0.5f;
            radius[c] = (minDelta[c] + maxDelta[c]) * 0.5f;
        }
    }
    bool operator()(const T* a, const T* b) const {
        for (int c = 0; c < C; ++c)
            if (!(std::fabs((a[c] + half[c]) - b[c]) <= radius[c])) return false;
        return true;
    }
};

// ---- Region record -----------------------------------------------------------

struct Box {
    int minX, maxX, minY, maxY;
    Box(int l, int r, int y) : minX(l), maxX(r), minY(y), maxY(y) {}
    void widen(const Span& s) {
        if (s.left < minX) minX = s.left;
        if (s.right > maxX) maxX = s.right;
        if (s.y < minY) minY = s.y;
        if (s.y > maxY) maxY = s.y;
    }
};

template <class T, int C> void writeRegion(RvpiConnectedComp* r, int32_t area, const Box& b, const T* v) {
    r->area = area;
    for (int c = 0; c < 3; ++c) r->value[c] = c < C ? static_cast<Rvp64f>(v[c]) : 0.0;
    r->rect = RvpiRect{b.minX, b.minY, b.maxX - b.minX + 1, b.maxY - b.minY + 1};
}

// ---- Exact and range fills -----------------------------------------------------

template <class T, int C, bool Eight, class Match> class ScanFill {
public:
    ScanFill(T* img, int step, RvpiSize roi, const T* newVal, const Match& match, SpanStack& stack, int64_t limit)
        : img_(img), step_(step), w_(roi.width), h_(roi.height), nv_(newVal), match_(match), stack_(stack),
          limit_(limit) {}

    // Fills from the seed; false when the stack could not grow.
    bool run(RvpiPoint seed, Box& box, int32_t& area) {
        T* r = row(seed.y);
        int left, right;
        extend(r, seed.x, left, right);
        area_ = right - left + 1;
        counted_ = area_;
        box = Box(left, right, seed.y);
        bool ok = true;
        if (h_ > 1) {
            ok = stack_.push(Span{seed.y, left, right, right + 1, right, seed.y == h_ - 1 ? -1 : 1});
            while (ok && !stack_.empty() && counted_ <= limit_) {
                const Span s = stack_.pop();
                box.widen(s);
                const int lo = Eight ? (s.left > 0 ? s.left - 1 : 0) : s.left;
                const int hi = Eight ? (s.right < w_ - 1 ? s.right + 1 : w_ - 1) : s.right;
                const int fwd = s.y - s.dir, back = s.y + s.dir;
                if (static_cast<unsigned>(fwd) < static_cast<unsigned>(h_)) ok = scan(fwd, lo, hi, s.left, s.right, s.dir);
                ok = ok && scan(back, lo, s.parentLeft - 1, s.left, s.right, -s.dir);
                ok = ok && scan(back, s.parentRight + 1, hi, s.left, s.right, -s.dir);
            }
        }
        area = area_;
        return ok;
    }

private:
    T* row(int y) const { return rowPtr(img_, step_, y); }

    // The run through x, which matched: left pixel by pixel, right by the
    // run search; then painted. The walks read only unpainted pixels, so
    // painting afterwards is painting as they go.
    void extend(T* r, int x, int& left, int& right) const {
        left = x;
        while (left > 0 && match_(r + (left - 1) * C)) --left;
        right = Runs<T, C, Match>::right(match_, r, x, w_ - 1);
        paintRun<T, C>(r, left, right, nv_);
    }

    // Runs of row y in x0..x1, children of the popped span pl..pr.
    bool scan(int y, int x0, int x1, int pl, int pr, int dir) {
        T* r = row(y);
        for (int x = x0;;) {
            x = Runs<T, C, Match>::find(match_, r, x, x1);
            if (x > x1) break;
            int left, right;
            extend(r, x, left, right);
            if (!stack_.push(Span{y, left, right, pl, pr, dir})) return false;
            area_ = wadd(area_, right - left + 1);
            counted_ += right - left + 1;
            x = right + 2;
        }
        return true;
    }

    T* img_;
    int step_, w_, h_;
    const T* nv_;
    Match match_;
    SpanStack& stack_;
    int64_t limit_;
    int32_t area_ = 0;
    int64_t counted_ = 0;
};

template <class T, int C, bool Eight, class Match>
RvpStatus scanFill(T* img, int step, RvpiSize roi, RvpiPoint seed, const T* newVal, const Match& match,
                   int32_t wrapAt, int64_t limit, RvpiConnectedComp* region, Rvp8u* pBuffer) {
    Rvp8u* base = alignStack(pBuffer);
    SpanStack stack(base, stackBytes(roi) - (base - pBuffer), wrapAt, compactSpans(roi));
    Box box(0, 0, 0);
    int32_t area = 0;
    ScanFill<T, C, Eight, Match> f(img, step, roi, newVal, match, stack, limit);
    if (!f.run(seed, box, area)) return rvpStsMemAllocErr;
    writeRegion<T, C>(region, area, box, newVal);
    return rvpStsNoErr;
}

// ---- Gradient fill ---------------------------------------------------------------

template <class T, int C, bool Eight> class GradFill {
public:
    GradFill(T* img, int step, RvpiSize roi, const GradRule<T, C>& near, Rvp8u* mask, SpanStack& stack)
        : img_(img), step_(step), w_(roi.width), h_(roi.height), near_(near), mask_(mask), stack_(stack) {}

    bool run(RvpiPoint seed, const T* newVal, Box& box, int32_t& area) {
        const int ms = w_ + 2;
        std::memset(mask_, 1, static_cast<size_t>(ms));
        std::memset(mrow(h_) - 1, 1, static_cast<size_t>(ms));
        for (int y = 0; y < h_; ++y) {
            Rvp8u* m = mrow(y);
            m[-1] = m[w_] = 1;
            std::memset(m, 0, static_cast<size_t>(w_));
        }
        const T* r = row(seed.y);
        Rvp8u* m = mrow(seed.y);
        m[seed.x] = 1;
        int left = seed.x, right = seed.x;
        while (!m[right + 1] && near_(r + (right + 1) * C, r + right * C)) m[++right] = 1;
        while (!m[left - 1] && near_(r + (left - 1) * C, r + left * C)) m[--left] = 1;
        box = Box(left, right, seed.y);
        int32_t painted = 0;
        Span first = Eight ? Span{seed.y, left, right, right + 2 < w_ ? right + 2 : w_, right + 2, 1}
                           : Span{seed.y, left, right, right + 1, right, 1};
        bool ok = stack_.push(first);
        while (ok && !stack_.empty()) {
            const Span s = stack_.pop();
            box.widen(s);
            const int e = Eight ? 1 : 0;
            ok = scan(s.y - s.dir, s.left - e, s.right + e, s.y, s.left, s.right, s.dir) &&
                 scan(s.y + s.dir, s.left - e, s.parentLeft - 1, s.y, s.left, s.right, -s.dir) &&
                 scan(s.y + s.dir, s.parentRight + 1, s.right + e, s.y, s.left, s.right, -s.dir);
            paintRun<T, C>(row(s.y), s.left, s.right, newVal);
            painted = wadd(painted, s.right - s.left + 1);
        }
        area = painted;
        return ok;
    }

private:
    T* row(int y) const { return rowPtr(img_, step_, y); }
    Rvp8u* mrow(int y) const { return mask_ + static_cast<ptrdiff_t>(w_ + 2) * (y + 1) + 1; }

    // Scans columns x0..x1 of row y for pixels joining the popped span
    // (row sy, columns sl..sr; passed as numbers, which stay in registers).
    // Everything the loops read is copied to locals first: the mask and
    // 8-bit pixels are written through byte pointers, which may alias any
    // member, and would force every member to be read again after a store.
    bool scan(int y, int x0, int x1, int sy, int sl, int sr, int dir) {
        // Rows outside the image are all marked: nothing there can join.
        if (static_cast<unsigned>(y) >= static_cast<unsigned>(h_)) return true;
        const struct { int y, left, right; } s{sy, sl, sr};
        const GradRule<T, C> near = near_;
        const int w = w_;
        T* c = row(y);
        const T* cur = row(s.y);
        Rvp8u* m = mrow(y);
        // Candidate at column x against the popped span in `cur`.
        const auto joins = [&](int x) {
            if (Eight) {
                for (int k = x - 1; k <= x + 1; ++k)
                    if (k >= s.left && k <= s.right && near(c + x * C, cur + k * C)) return true;
                return false;
            }
            return x >= s.left && x <= s.right && near(c + x * C, cur + x * C);
        };
        // The right walk from the marked pixel x: a pixel joins when unmarked
        // and near its left neighbour or joining the popped span; marks and
        // returns the last. One-channel 8u rows take 16 pixels at a time where
        // the block lies wholly inside the span's reach or wholly beyond it.
        const auto walkRight = [&](int x) {
            int p = x + 1;
            if constexpr (C == 1 && sizeof(T) == 1) {
                const int e = Eight ? 1 : 0;
                for (;;) {
                    const bool inside = p - e >= s.left && p + 15 + e <= s.right, beyond = p - e > s.right;
                    if (p + 15 <= w - 1 && (inside || beyond)) {
                        int ok = near.block(c + p, c + p - 1);
                        if (inside) {
                            ok |= near.block(c + p, cur + p);
                            if (Eight) ok |= near.block(c + p, cur + p - 1) | near.block(c + p, cur + p + 1);
                        }
                        const __m128i mv = _mm_loadu_si128(reinterpret_cast<const __m128i*>(m + p));
                        ok &= _mm_movemask_epi8(_mm_cmpeq_epi8(mv, _mm_setzero_si128()));
                        const int n = ok == 0xFFFF ? 16 : __builtin_ctz(static_cast<unsigned>(~ok));
                        std::memset(m + p, 1, static_cast<size_t>(n));
                        p += n;
                        if (n < 16) return p - 1;
                    } else if (!m[p] && (near(c + p * C, c + (p - 1) * C) || joins(p))) {
                        m[p++] = 1;
                    } else {
                        return p - 1;
                    }
                }
            }
            while (!m[p] && (near(c + p * C, c + (p - 1) * C) || joins(p))) m[p++] = 1;
            return p - 1;
        };
        for (int x = x0;;) {
            x = nextUnmarked(m, x, x1);
            if (x > x1) break;
            if (!joins(x)) {
                ++x;
                continue;
            }
            m[x] = 1;
            int left = x;
            while (!m[left - 1] && near(c + (left - 1) * C, c + left * C)) m[--left] = 1;
            const int right = walkRight(x);
            if (!stack_.push(Span{y, left, right, s.left, s.right, dir})) return false;
            x = right + 2;
        }
        return true;
    }

    T* img_;
    int step_, w_, h_;
    GradRule<T, C> near_;
    Rvp8u* mask_;
    SpanStack& stack_;
};

// ---- Entry frames ------------------------------------------------------------------

enum class Rule { Exact, Grad, Range };

template <class T, int C> int minStep(int w) {
    return sizeof(T) == 2 ? wmul(w, 2 * C) : wmul(w, static_cast<int>(sizeof(T)));
}

int64_t gradBytes(RvpiSize roi) {
    return (int64_t{roi.width} + 2) * (int64_t{roi.height} + 2) + stackBytes(roi);
}

template <Rule R, class T, int C>
RvpStatus validate(const T* img, int step, RvpiSize roi, RvpiPoint seed, const T* nv, const T* minD, const T* maxD,
                   const RvpiConnectedComp* region, const Rvp8u* buf) {
    Check c;
    c.ptrs(img, region, buf, nv, minD, maxD).size(roi);
    const int64_t bytes = roi.width > 0 && roi.height > 0 ? (R == Rule::Grad ? gradBytes(roi) : stackBytes(roi)) : 0;
    c.fail(!fitsInt(bytes), rvpStsSizeErr)
        .step(step, minStep<T, C>(roi.width))
        .evenSteps(static_cast<int>(sizeof(T)), step);
    bool badDelta = false;
    if constexpr (R == Rule::Grad && std::is_floating_point<T>::value)
        if (c == rvpStsNoErr)  // the deltas are read only once the pointers passed
            for (int k = 0; k < C; ++k) badDelta |= minD[k] < 0.0f || maxD[k] < 0.0f;
    return c.fail(seed.x < 0 || seed.x >= roi.width || seed.y < 0 || seed.y >= roi.height || badDelta,
                  rvpStsOutOfRangeErr);
}

template <Rule R, bool Eight, class T, int C>
RvpStatus floodFill(T* img, int step, RvpiSize roi, RvpiPoint seed, const T* nv, const T* minD, const T* maxD,
                    RvpiConnectedComp* region, Rvp8u* buf) {
    if (RvpStatus st = validate<R, T, C>(img, step, roi, seed, nv, minD, maxD, region, buf)) return st;
    const T* s = rowPtr(img, step, seed.y) + seed.x * C;
    if constexpr (R == Rule::Grad) {
        Rvp8u* stackAt = alignStack(buf + (int64_t{roi.width} + 2) * (roi.height + 2));
        SpanStack stack(stackAt, gradBytes(roi) - (stackAt - buf), 0, compactSpans(roi));
        GradFill<T, C, Eight> f(img, step, roi, GradRule<T, C>(minD, maxD), buf, stack);
        Box box(0, 0, 0);
        int32_t area = 0;
        if (!f.run(seed, nv, box, area)) return rvpStsMemAllocErr;
        writeRegion<T, C>(region, area, box, nv);
        return rvpStsNoErr;
    } else {
        bool same = true;
        for (int k = 0; k < C; ++k) same &= s[k] == nv[k];
        if (same) return rvpStsNoErr;
        if constexpr (R == Rule::Exact) {
            const ExactRule<T, C> rule(s);
            return scanFill<T, C, Eight>(img, step, roi, seed, nv, rule, 0, INT64_MAX, region, buf);
        } else {
            const RangeRule<T, C> rule(s, minD, maxD);
            // A new value inside the range keeps matching once painted; such
            // a fill may find its own pixels forever, so it has a budget.
            const int64_t limit = rule(nv) ? 16 * int64_t{roi.width} * roi.height : INT64_MAX;
            return scanFill<T, C, Eight>(img, step, roi, seed, nv, rule, wmul(roi.width, roi.height) / 4, limit,
                                         region, buf);
        }
    }
}

RvpStatus querySize(RvpiSize roi, int* pSize, bool grad) {
    if (RvpStatus st = Check().ptr(pSize).size(roi)) return st;
    return storeSize(grad ? gradBytes(roi) : stackBytes(roi), pSize);
}

}  // namespace

}  // namespace fill
}  // namespace rvcv

using namespace rvcv;
using fill::Rule;

RVCV_EXPORT RvpStatus rvpiFloodFillGetSize(RvpiSize roiSize, int* pBufferSize) {
    return fill::querySize(roiSize, pBufferSize, false);
}
RVCV_EXPORT RvpStatus rvpiFloodFillGetSize_Grad(RvpiSize roiSize, int* pBufferSize) {
    return fill::querySize(roiSize, pBufferSize, true);
}

// One C1 and one C3 entry per rule, connectivity and type.
#define RVCV_FILL_EXACT(CON, EIGHT, SUF, T)                                                                      \
    RVCV_EXPORT RvpStatus rvpiFloodFill_##CON##_##SUF##_C1IR(T* pSrcDst, int srcDstStep, RvpiSize roiSize,       \
                                                             RvpiPoint seed, T newVal, RvpiConnectedComp* pRegion, \
                                                             Rvp8u* pBuffer) {                                   \
        return fill::floodFill<Rule::Exact, EIGHT, T, 1>(pSrcDst, srcDstStep, roiSize, seed, &newVal, &newVal,   \
                                                         &newVal, pRegion, pBuffer);                             \
    }                                                                                                            \
    RVCV_EXPORT RvpStatus rvpiFloodFill_##CON##_##SUF##_C3IR(T* pSrcDst, int srcDstStep, RvpiSize roiSize,       \
                                                             RvpiPoint seed, const T* pNewVal,                   \
                                                             RvpiConnectedComp* pRegion, Rvp8u* pBuffer) {       \
        return fill::floodFill<Rule::Exact, EIGHT, T, 3>(pSrcDst, srcDstStep, roiSize, seed, pNewVal, pNewVal,   \
                                                         pNewVal, pRegion, pBuffer);                             \
    }

#define RVCV_FILL_DELTA(RULE, CON, EIGHT, SUF, T)                                                                 \
    RVCV_EXPORT RvpStatus rvpiFloodFill_##RULE##CON##_##SUF##_C1IR(                                               \
        T* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed, T newVal, T minDelta, T maxDelta,          \
        RvpiConnectedComp* pRegion, Rvp8u* pBuffer) {                                                            \
        return fill::floodFill<Rule::RULE, EIGHT, T, 1>(pSrcDst, srcDstStep, roiSize, seed, &newVal, &minDelta,   \
                                                        &maxDelta, pRegion, pBuffer);                            \
    }                                                                                                            \
    RVCV_EXPORT RvpStatus rvpiFloodFill_##RULE##CON##_##SUF##_C3IR(                                               \
        T* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed, const T* pNewVal, const T* pMinDelta,      \
        const T* pMaxDelta, RvpiConnectedComp* pRegion, Rvp8u* pBuffer) {                                        \
        return fill::floodFill<Rule::RULE, EIGHT, T, 3>(pSrcDst, srcDstStep, roiSize, seed, pNewVal, pMinDelta,   \
                                                        pMaxDelta, pRegion, pBuffer);                            \
    }

#define RVCV_FILL_TYPES(M, ...) M(__VA_ARGS__, 8u, Rvp8u) M(__VA_ARGS__, 16u, Rvp16u) M(__VA_ARGS__, 32f, Rvp32f)

RVCV_FILL_TYPES(RVCV_FILL_EXACT, 4Con, false)
RVCV_FILL_TYPES(RVCV_FILL_EXACT, 8Con, true)
RVCV_FILL_TYPES(RVCV_FILL_DELTA, Grad, 4Con, false)
RVCV_FILL_TYPES(RVCV_FILL_DELTA, Grad, 8Con, true)
RVCV_FILL_TYPES(RVCV_FILL_DELTA, Range, 4Con, false)
RVCV_FILL_TYPES(RVCV_FILL_DELTA, Range, 8Con, true)
