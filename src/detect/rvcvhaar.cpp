// One stage of a boosted cascade of rectangle features, run at every live
// position of a region: weighted rectangle sums from an integral table are
// compared with thresholds scaled by a per-position norm, the weak
// classifiers' contributions are added in record order, and positions whose
// score falls below the stage threshold are cleared from the mask. The
// upright constructors group the records by rectangle count (two, three,
// then the rest), so the score follows record order, not the caller's.
#include "detect/rvcvhaar.h"
#include "rvcvframe.h"

#include <emmintrin.h>

#include <algorithm>
#include <cstring>
#include <new>

namespace rvcv {
namespace {

template <class V> struct StateOf;
template <> struct StateOf<Rvp32s> { using type = RvpiHaarClassifier_32s; };
template <> struct StateOf<Rvp32f> { using type = RvpiHaarClassifier_32f; };

bool badRect(const RvpiRect& r, bool tilted) {
    return r.x < 0 || r.y < 0 || r.width < 1 || r.height < 1 || (tilted && wadd(r.x, 1) < r.height);
}

template <class V> HaarRect<V> cornersOf(const RvpiRect& r, V weight, bool tilted) {
    const int x = r.x, y = r.y, w = r.width, h = r.height;
    if (!tilted) return {wadd(x, w), wadd(y, h), x, wadd(y, h), wadd(x, w), y, x, y, weight};
    return {wsub(wadd(x, w), h), wadd(wadd(y, w), h), wsub(x, h), wadd(y, h), wadd(x, w), wadd(y, w), x, y, weight};
}

inline bool truncatesToMinusOne(Rvp32f w) { return w > -2.0f && w <= -1.0f; }
inline bool truncatesToMinusOne(Rvp32s w) { return w == -1; }

template <class S> void setFirstWeightsFlag(S&, bool) {}
template <> void setFirstWeightsFlag(RvpiHaarClassifier_32f& s, bool all) { s.allFirstWeightsMinusOne = all; }

constexpr int64_t alignUp(int64_t n, int64_t a) { return (n + a - 1) / a * a; }

// Bounding box as the stages record it: a width compared against a right edge.
struct Bounds {
    bool started = false;
    int x = 0, y = 0, w = 0, h = 0;
    void add(const RvpiRect& f, int ax, int ay, bool tilted) {
        if (!started) {
            started = true;
            x = f.x;
            y = f.y;
            w = tilted ? wsub(f.width, f.height) : f.width;
            h = tilted ? wadd(f.width, f.height) : f.height;
        }
        x = std::min(x, f.x);
        y = std::min(y, f.y);
        if (wadd(w, x) < ax) w = ax;
        if (wadd(h, y) < ay) h = ay;
    }
};

// upfront: test every rectangle before allocating (the 32f upright form);
// the others test while copying and free the block on a bad rectangle.
template <class V>
RvpStatus create(typename StateOf<V>::type** pp, const RvpiRect* feature, const V* weight, const V* thr,
                 const V* val1, const V* val2, const int* num, int length, bool tilted, bool upfront) {
    using State = typename StateOf<V>::type;
    Check c;
    c.ptrs(pp, feature, weight, thr, val1, val2, num).fail(length < 0, rvpStsSizeErr);
    if (RvpStatus st = c) return st;
    int total = 0;
    for (int i = 0; i < length; ++i) {
        if (num[i] < 1) return rvpStsSizeErr;
        total = wadd(total, num[i]);
    }
    if (upfront)
        for (int r = 0; r < total; ++r)
            if (badRect(feature[r], false)) return rvpStsBadArgErr;

    const int64_t recOff = alignUp(sizeof(State), alignof(HaarRecord<V>));
    const int64_t rectOff = alignUp(recOff + int64_t(length) * int64_t(sizeof(HaarRecord<V>)), alignof(HaarRect<V>));
    const int64_t bytes = rectOff + int64_t(total) * int64_t(sizeof(HaarRect<V>));
    Rvp8u* block = total >= 0 && bytes <= INT32_MAX ? rvpsMalloc_8u(static_cast<int>(bytes)) : nullptr;
    if (!block) return rvpStsMemAllocErr;

    State* s = new (block) State{};
    s->numClassifiers = length;
    s->numRects = total;
    s->pClassifiers = reinterpret_cast<HaarRecord<V>*>(block + recOff);
    s->flags = tilted ? 1u : 0u;
    HaarRect<V>* rects = reinterpret_cast<HaarRect<V>*>(block + rectOff);

    int rec = 0, used = 0;
    bool allMinusOne = true;
    Bounds box;
    // Copies classifier i, whose rectangles start at index `first`.
    auto copy = [&](int i, int first) {
        HaarRecord<V>* r = new (&s->pClassifiers[rec++]) HaarRecord<V>{};
        r->numRects = num[i];
        r->pRects = rects + used;
        r->threshold = thr[i];
        r->val1 = val1[i];
        r->val2 = val2[i];
        r->info = (static_cast<uint32_t>(i) << 8) | (tilted ? 1u : 0u);
        allMinusOne = allMinusOne && truncatesToMinusOne(weight[first]);
        for (int k = 0; k < num[i]; ++k) {
            const RvpiRect& f = feature[first + k];
            if (!upfront && badRect(f, tilted)) return false;
            const HaarRect<V> hr = cornersOf(f, weight[first + k], tilted);
            new (&rects[used++]) HaarRect<V>(hr);
            box.add(f, hr.ax, hr.ay, tilted);
        }
        return true;
    };
    // Upright: records with two rectangles, then three, then the rest.
    const int passes = tilted ? 1 : 3;
    for (int pass = 0; pass < passes; ++pass) {
        int first = 0;
        for (int i = 0; i < length; first = wadd(first, num[i]), ++i) {
            const bool take = tilted || (pass == 0 ? num[i] == 2 : pass == 1 ? num[i] == 3 : num[i] > 3 || num[i] < 2);
            if (take && !copy(i, first)) {
                rvpsFree(block);
                *pp = nullptr;
                return rvpStsBadArgErr;
            }
        }
    }
    s->boundX = box.x;
    s->boundY = box.y;
    s->boundWidth = wsub(box.w, box.x);
    s->boundHeight = wsub(box.h, box.y);
    s->numRectsUsed = used;
    if (!tilted) {
        for (int i = 0; i < length; ++i) {
            s->numTwoRect += num[i] == 2;
            s->numTwoThreeRect += num[i] == 2 || num[i] == 3;
        }
    }
    setFirstWeightsFlag(*s, allMinusOne);
    *pp = s;
    return rvpStsNoErr;
}

template <class S> RvpStatus release(S* s) {
    if (!s) return rvpStsNullPtrErr;
    rvpsFree(s);
    return rvpStsNoErr;
}

template <class S> RvpStatus classifierSize(const S* s, RvpiSize* size) {
    if (!s || !size) return rvpStsNullPtrErr;
    int w = 0, h = 0;
    for (int c = 0; c < s->numClassifiers; ++c) {
        const auto& r = s->pClassifiers[c];
        for (int k = 0; k < r.numRects; ++k) {
            w = std::max(w, r.pRects[k].cx);
            h = std::max(h, r.pRects[k].ay);
        }
    }
    *size = {w, h};
    return rvpStsNoErr;
}

// Turns the selected upright classifiers into tilted ones. The 32s form uses
// the width where the 32f form uses the height (a square-feature rule).
template <class V> void tiltRect(HaarRect<V>& r, bool flag, bool intRule) {
    const int x = r.dx, y = r.dy, w = wsub(r.ax, r.dx), h = wsub(r.ay, r.dy);
    int c[8];
    if (!intRule && !flag) {
        const int v[8] = {x, wadd(y, h), wsub(x, h), y, wadd(x, w), wsub(wadd(y, h), w), wsub(wadd(x, w), h), wsub(y, w)};
        std::copy(v, v + 8, c);
    } else if (!intRule) {
        const int v[8] = {wsub(wadd(x, w), h), wadd(wadd(y, w), h), wsub(x, h), wadd(y, h), wadd(x, w), wadd(y, w), x, y};
        std::copy(v, v + 8, c);
    } else if (!flag) {
        const int v[8] = {x, wadd(y, h), wsub(x, w), wsub(wadd(y, h), w), wadd(x, w), wsub(wadd(y, h), w), x,
                          wsub(wadd(y, h), wmul(2, w))};
        std::copy(v, v + 8, c);
    } else {
        const int v[8] = {x, wadd(y, wmul(2, w)), wsub(x, w), wadd(y, w), wadd(x, w), wadd(y, w), x, y};
        std::copy(v, v + 8, c);
    }
    r.ax = c[0]; r.ay = c[1]; r.bx = c[2]; r.by = c[3];
    r.cx = c[4]; r.cy = c[5]; r.dx = c[6]; r.dy = c[7];
}

template <class V> RvpStatus tiltFeatures(const Rvp8u* mask, int flag, typename StateOf<V>::type* s) {
    if (!s || !mask) return rvpStsNullPtrErr;
    if (s->flags & 1u) return rvpStsBadArgErr;
    bool any = false;
    for (int i = 0; i < s->numClassifiers; ++i) {
        if (!mask[i]) continue;
        any = true;
        for (int c = 0; c < s->numClassifiers; ++c) {
            HaarRecord<V>& r = s->pClassifiers[c];
            if ((r.info >> 8) != static_cast<uint32_t>(i)) continue;
            r.info = 1;  // the stored index is dropped, as the word becomes 1
            for (int k = 0; k < r.numRects; ++k) tiltRect(r.pRects[k], flag != 0, std::is_same<V, Rvp32s>::value);
            break;
        }
    }
    if (any) s->flags |= 1u;
    return rvpStsNoErr;
}

// ---- Stage evaluation ------------------------------------------------------------
// Arithmetic of one member: the rectangle sum from four table values, the
// weighted sum t, the weak decision and the stage score.
struct IntRule {  // 32-bit wrapping throughout
    using Table = Rvp32s; using Norm = Rvp32s; using V = Rvp32s; using T = int32_t;
    static int32_t rectSum(Table a, Table b, Table c, Table d) { return wsub(wsub(a, b), wsub(c, d)); }
    T acc(T t, int32_t sum, V w) const { return wadd(t, wmul(sum, w)); }
    bool below(T t, V thr, Norm n) const { return t < wmul(thr, n); }
    static V add(V score, V v) { return wadd(score, v); }
    static bool pass(V score, V stage) { return !(score < stage); }
};

struct MixedIntRule : IntRule {  // products summed in 64 bits, then scaled by 2^-scaleFactor
    using T = int64_t;
    unsigned shift = 0;
    T acc(T t, int32_t sum, V w) const { return t + wmul(sum, w); }
    bool below(T t, V thr, Norm n) const {
        return static_cast<int64_t>(static_cast<uint64_t>(t) << shift) < int64_t(thr) * int64_t(n);
    }
};

template <class Tab> struct FloatRule {  // threshold x norm <= t takes val2, so NaN takes val1
    using Table = Tab; using Norm = Rvp32f; using V = Rvp32f; using T = float;
    static float rectSum(Rvp32s a, Rvp32s b, Rvp32s c, Rvp32s d) { return static_cast<float>(IntRule::rectSum(a, b, c, d)); }
    static float rectSum(Rvp32f a, Rvp32f b, Rvp32f c, Rvp32f d) { return ((a - b) - c) + d; }
    T acc(T t, float sum, V w) const { return t + sum * w; }
    bool below(T t, V thr, Norm n) const { return !(thr * n <= t); }
    static V add(V score, V v) { return score + v; }
    static bool pass(V score, V stage) { return stage <= score; }
};

template <class Rule> using StateFor = typename StateOf<typename Rule::V>::type;

// The weak decisions are close to coin flips, so the contribution is picked
// by bits rather than by a branch.
template <class V> V pickIf(bool c, V a, V b) {
    static_assert(sizeof(V) == 4, "32-bit contributions");
    uint32_t ua, ub;
    std::memcpy(&ua, &a, 4);
    std::memcpy(&ub, &b, 4);
    const uint32_t m = 0u - static_cast<uint32_t>(c), r = (ua & m) | (ub & ~m);
    V v;
    std::memcpy(&v, &r, 4);
    return v;
}

// Adds the contributions of records [c0, c1) to the score; their rectangles
// start at index rectIndex. sumAt(record, rect index, rect) gives one sum.
template <class Rule, class SumAt>
typename Rule::V addRecords(const Rule& rule, const StateFor<Rule>* s, int c0, int c1, int rectIndex,
                            typename Rule::Norm n, typename Rule::V score, SumAt& sumAt) {
    for (int c = c0; c < c1; ++c) {
        const auto& r = s->pClassifiers[c];
        typename Rule::T t = 0;
        for (int k = 0; k < r.numRects; ++k, ++rectIndex)
            t = rule.acc(t, sumAt(r, rectIndex, r.pRects[k]), r.pRects[k].weight);
        score = Rule::add(score, pickIf(rule.below(t, r.threshold, n), r.val1, r.val2));
    }
    return score;
}

// Runs the stage over the live positions; scoreAt(i, j, norm) gives the
// score of one. Returns the number of positions that passed.
template <class Rule, class ScoreAt>
int runStage(const Rule&, RvpiSize roi, const typename Rule::Norm* norm, int normStep, Rvp8u* mask, int maskStep,
             typename Rule::V stage, ScoreAt&& scoreAt) {
    int positive = 0;
    for (int j = 0; j < roi.height; ++j) {
        Rvp8u* m = rowPtr(mask, maskStep, j);
        const typename Rule::Norm* n = rowPtr(norm, normStep, j);
        for (int i = 0; i < roi.width; ++i) {
            if (!m[i]) continue;
            if (Rule::pass(scoreAt(i, j, n[i]), stage)) ++positive;
            else m[i] = 0;
        }
    }
    return positive;
}

// Four neighbouring positions in SSE lanes. A corner's four table values
// are then adjacent, one load; each lane does the arithmetic of its position
// and sums its score in record order, so the lanes give the scalar results.
inline __m128i load4(const Rvp32s* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
inline __m128 load4(const Rvp32f* p) { return _mm_loadu_ps(p); }
// Low 32 bits of the lane products (the baseline has no 32-bit multiply).
inline __m128i mulLow(__m128i a, __m128i b) {
    const __m128i even = _mm_mul_epu32(a, b), odd = _mm_mul_epu32(_mm_srli_epi64(a, 32), _mm_srli_epi64(b, 32));
    return _mm_unpacklo_epi32(_mm_shuffle_epi32(even, 0x08), _mm_shuffle_epi32(odd, 0x08));
}
inline __m128i intSums(const Rvp32s* p, const int32_t* o) {
    return _mm_sub_epi32(_mm_sub_epi32(load4(p + o[0]), load4(p + o[1])), _mm_sub_epi32(load4(p + o[2]), load4(p + o[3])));
}

struct IntLanes {
    using Vec = __m128i;
    static Vec zero() { return _mm_setzero_si128(); }
    static Vec acc(Vec t, const Rvp32s* p, const int32_t* o, Rvp32s w) {
        return _mm_add_epi32(t, mulLow(intSums(p, o), _mm_set1_epi32(w)));
    }
    template <class R> static Vec add(Vec score, Vec t, const R& r, Vec norm) {
        const __m128i lower = _mm_cmpgt_epi32(mulLow(_mm_set1_epi32(r.threshold), norm), t);
        const __m128i v = _mm_or_si128(_mm_and_si128(lower, _mm_set1_epi32(r.val1)), _mm_andnot_si128(lower, _mm_set1_epi32(r.val2)));
        return _mm_add_epi32(score, v);
    }
    static int passBits(Vec score, Rvp32s stage) { return ~_mm_movemask_ps(_mm_castsi128_ps(_mm_cmplt_epi32(score, _mm_set1_epi32(stage)))) & 15; }
};

template <class Tab> struct FloatLanes {
    using Vec = __m128;
    static Vec zero() { return _mm_setzero_ps(); }
    static __m128 sums(const Rvp32s* p, const int32_t* o) { return _mm_cvtepi32_ps(intSums(p, o)); }
    static __m128 sums(const Rvp32f* p, const int32_t* o) {
        return _mm_add_ps(_mm_sub_ps(_mm_sub_ps(load4(p + o[0]), load4(p + o[1])), load4(p + o[2])), load4(p + o[3]));
    }
    static Vec acc(Vec t, const Tab* p, const int32_t* o, Rvp32f w) { return _mm_add_ps(t, _mm_mul_ps(sums(p, o), _mm_set1_ps(w))); }
    template <class R> static Vec add(Vec score, Vec t, const R& r, Vec norm) {
        const __m128 upper = _mm_cmple_ps(_mm_mul_ps(_mm_set1_ps(r.threshold), norm), t);  // NaN: val1
        const __m128 v = _mm_or_ps(_mm_and_ps(upper, _mm_set1_ps(r.val2)), _mm_andnot_ps(upper, _mm_set1_ps(r.val1)));
        return _mm_add_ps(score, v);
    }
    static int passBits(Vec score, Rvp32f stage) { return _mm_movemask_ps(_mm_cmple_ps(_mm_set1_ps(stage), score)); }
};

template <class Rule> struct LanesOf;
template <> struct LanesOf<IntRule> { using type = IntLanes; };
template <class Tab> struct LanesOf<FloatRule<Tab>> { using type = FloatLanes<Tab>; };

// Records [c0, c1), all of N rectangles (N = 0: any count), for four
// positions at p; off holds four offsets a rectangle from rectIndex on.
template <class L, int N, class Table, class Rec>
typename L::Vec addLanes(typename L::Vec score, const Rec* rec, int c0, int c1, const int32_t* off, const Table* p,
                         typename L::Vec norm) {
    for (int c = c0; c < c1; ++c) {
        const Rec& r = rec[c];
        const int n = N ? N : r.numRects;
        typename L::Vec t = L::zero();
        for (int k = 0; k < n; ++k, off += 4) t = L::acc(t, p, off, r.pRects[k].weight);
        score = L::add(score, t, r, norm);
    }
    return score;
}

template <class Rule>
RvpStatus applyStage(const Rule& rule, const typename Rule::Table* src, int srcStep, const typename Rule::Norm* norm,
                     int normStep, Rvp8u* mask, int maskStep, RvpiSize roi, int* pPositive, typename Rule::V stage,
                     const StateFor<Rule>* s, bool byteScratch) {
    using L = typename LanesOf<Rule>::type;
    Check c;
    c.ptrs(src, norm, mask, pPositive, s).size(roi);
    c.step(srcStep, wmul(roi.width, 4)).step(normStep, wmul(roi.width, 4)).step(maskStep, roi.width);
    if (RvpStatus st = c.evenSteps(4, srcStep, normStep)) return st;

    // Four element offsets per rectangle, in record order.
    const int total = s->numRects;
    int32_t* off = nullptr;
    if (total > 0) {
        off = byteScratch ? reinterpret_cast<int32_t*>(rvpsMalloc_8u(wmul(total, 16))) : rvpsMalloc_32s(wmul(total, 4));
        if (!off) return rvpStsMemAllocErr;
    }
    const int stepEl = srcStep / 4;
    int idx = 0;
    for (int k = 0; k < s->numClassifiers; ++k) {
        const auto& r = s->pClassifiers[k];
        for (int q = 0; q < r.numRects && idx < total; ++q, ++idx) {
            const auto& h = r.pRects[q];
            off[4 * idx + 0] = wadd(wmul(h.ay, stepEl), h.ax);
            off[4 * idx + 1] = wadd(wmul(h.by, stepEl), h.bx);
            off[4 * idx + 2] = wadd(wmul(h.cy, stepEl), h.cx);
            off[4 * idx + 3] = wadd(wmul(h.dy, stepEl), h.dx);
        }
    }
    // The upright constructors put the two-rectangle records first, then the
    // three-rectangle ones, and count them; a tilted state reports none.
    const int n2 = s->numTwoRect, n23 = s->numTwoThreeRect;
    const auto* rec = s->pClassifiers;
    int positive = 0;
    for (int j = 0; j < roi.height; ++j) {
        Rvp8u* m = rowPtr(mask, maskStep, j);
        const typename Rule::Norm* nrow = rowPtr(norm, normStep, j);
        const typename Rule::Table* row = rowPtr(src, srcStep, j);
        int i = 0;
        for (; i + 4 <= roi.width; i += 4) {
            uint32_t live;
            std::memcpy(&live, m + i, 4);
            if (!live) continue;  // most positions die early: skip dead groups untouched
            const typename Rule::Table* p = row + i;
            const typename L::Vec nv = load4(nrow + i);
            typename L::Vec score = L::zero();
            score = addLanes<L, 2>(score, rec, 0, n2, off, p, nv);
            score = addLanes<L, 3>(score, rec, n2, n23, off + 8 * n2, p, nv);
            score = addLanes<L, 0>(score, rec, n23, s->numClassifiers, off + 8 * n2 + 12 * (n23 - n2), p, nv);
            const int pass = L::passBits(score, stage);
            for (int k = 0; k < 4; ++k) {
                if (!m[i + k]) continue;
                if (pass >> k & 1) ++positive;
                else m[i + k] = 0;
            }
        }
        for (; i < roi.width; ++i) {  // the row's last positions one at a time
            if (!m[i]) continue;
            const typename Rule::Table* p = row + i;
            auto sumAt = [&](const auto&, int ri, const auto&) {
                const int32_t* o = off + 4 * ri;
                return Rule::rectSum(p[o[0]], p[o[1]], p[o[2]], p[o[3]]);
            };
            if (Rule::pass(addRecords(rule, s, 0, s->numClassifiers, 0, nrow[i], typename Rule::V(0), sumAt), stage)) ++positive;
            else m[i] = 0;
        }
    }
    *pPositive = positive;
    if (off) rvpsFree(off);
    return rvpStsNoErr;
}

// Mixed stages read tilted records from the tilted table (one row down and
// one element right, past its extra first rows and column) and upright
// records from the upright one, addressing every corner at each position.
template <class Rule>
RvpStatus applyMixed(const Rule& rule, const typename Rule::Table* src, int srcStep, const typename Rule::Table* tilt,
                     int tiltStep, const typename Rule::Norm* norm, int normStep, Rvp8u* mask, int maskStep,
                     RvpiSize roi, int* pPositive, typename Rule::V stage, const StateFor<Rule>* s, bool badScale) {
    Check c;
    c.ptrs(src, norm, mask, tilt, pPositive, s).size(roi);
    c.steps(wmul(roi.width, 4), srcStep, tiltStep, normStep).step(maskStep, roi.width);
    c.evenSteps(4, srcStep, tiltStep, normStep).fail(badScale, rvpStsBadArgErr);
    if (RvpStatus st = c) return st;
    const typename Rule::Table* tiltBase = rowPtr(tilt, tiltStep, 1) + 1;
    const int srcEl = srcStep / 4, tiltEl = tiltStep / 4;
    *pPositive = runStage(rule, roi, norm, normStep, mask, maskStep, stage, [&](int i, int j, typename Rule::Norm n) {
        auto sumAt = [&](const auto& r, int, const auto& h) {
            const bool tilted = r.info & 1u;
            const int stepEl = tilted ? tiltEl : srcEl;
            const typename Rule::Table* p = rowPtr(tilted ? tiltBase : src, tilted ? tiltStep : srcStep, j) + i;
            return Rule::rectSum(p[wadd(wmul(h.ay, stepEl), h.ax)], p[wadd(wmul(h.by, stepEl), h.bx)],
                                 p[wadd(wmul(h.cy, stepEl), h.cx)], p[wadd(wmul(h.dy, stepEl), h.dx)]);
        };
        return addRecords(rule, s, 0, s->numClassifiers, 0, n, typename Rule::V(0), sumAt);
    });
    return rvpStsNoErr;
}

}  // namespace
}  // namespace rvcv

using namespace rvcv;

RVCV_EXPORT RvpStatus rvpiHaarClassifierInitAlloc_32f(RvpiHaarClassifier_32f** ppState, const RvpiRect* pFeature,
                                                      const Rvp32f* pWeight, const Rvp32f* pThreshold,
                                                      const Rvp32f* pVal1, const Rvp32f* pVal2, const int* pNum,
                                                      int length) {
    return create(ppState, pFeature, pWeight, pThreshold, pVal1, pVal2, pNum, length, false, true);
}

RVCV_EXPORT RvpStatus rvpiHaarClassifierInitAlloc_32s(RvpiHaarClassifier_32s** ppState, const RvpiRect* pFeature,
                                                      const Rvp32s* pWeight, const Rvp32s* pThreshold,
                                                      const Rvp32s* pVal1, const Rvp32s* pVal2, const int* pNum,
                                                      int length) {
    return create(ppState, pFeature, pWeight, pThreshold, pVal1, pVal2, pNum, length, false, false);
}

RVCV_EXPORT RvpStatus rvpiTiltedHaarClassifierInitAlloc_32f(RvpiHaarClassifier_32f** ppState,
                                                            const RvpiRect* pFeature, const Rvp32f* pWeight,
                                                            const Rvp32f* pThreshold, const Rvp32f* pVal1,
                                                            const Rvp32f* pVal2, const int* pNum, int length) {
    return create(ppState, pFeature, pWeight, pThreshold, pVal1, pVal2, pNum, length, true, false);
}

RVCV_EXPORT RvpStatus rvpiTiltedHaarClassifierInitAlloc_32s(RvpiHaarClassifier_32s** ppState,
                                                            const RvpiRect* pFeature, const Rvp32s* pWeight,
                                                            const Rvp32s* pThreshold, const Rvp32s* pVal1,
                                                            const Rvp32s* pVal2, const int* pNum, int length) {
    return create(ppState, pFeature, pWeight, pThreshold, pVal1, pVal2, pNum, length, true, false);
}

RVCV_EXPORT RvpStatus rvpiHaarClassifierFree_32f(RvpiHaarClassifier_32f* pState) { return release(pState); }
RVCV_EXPORT RvpStatus rvpiHaarClassifierFree_32s(RvpiHaarClassifier_32s* pState) { return release(pState); }

RVCV_EXPORT RvpStatus rvpiGetHaarClassifierSize_32f(const RvpiHaarClassifier_32f* pState, RvpiSize* pSize) {
    return classifierSize(pState, pSize);
}
RVCV_EXPORT RvpStatus rvpiGetHaarClassifierSize_32s(const RvpiHaarClassifier_32s* pState, RvpiSize* pSize) {
    return classifierSize(pState, pSize);
}

RVCV_EXPORT RvpStatus rvpiTiltHaarFeatures_32f(const Rvp8u* pMask, int flag, RvpiHaarClassifier_32f* pState) {
    return tiltFeatures<Rvp32f>(pMask, flag, pState);
}
RVCV_EXPORT RvpStatus rvpiTiltHaarFeatures_32s(const Rvp8u* pMask, int flag, RvpiHaarClassifier_32s* pState) {
    return tiltFeatures<Rvp32s>(pMask, flag, pState);
}

RVCV_EXPORT RvpStatus rvpiApplyHaarClassifier_32f_C1R(const Rvp32f* pSrc, int srcStep, const Rvp32f* pNorm,
                                                      int normStep, Rvp8u* pMask, int maskStep, RvpiSize roiSize,
                                                      int* pPositive, Rvp32f threshold,
                                                      RvpiHaarClassifier_32f* pState) {
    return applyStage(FloatRule<Rvp32f>{}, pSrc, srcStep, pNorm, normStep, pMask, maskStep, roiSize, pPositive,
                      threshold, pState, true);
}

RVCV_EXPORT RvpStatus rvpiApplyHaarClassifier_32s32f_C1R(const Rvp32s* pSrc, int srcStep, const Rvp32f* pNorm,
                                                         int normStep, Rvp8u* pMask, int maskStep, RvpiSize roiSize,
                                                         int* pPositive, Rvp32f threshold,
                                                         RvpiHaarClassifier_32f* pState) {
    return applyStage(FloatRule<Rvp32s>{}, pSrc, srcStep, pNorm, normStep, pMask, maskStep, roiSize, pPositive,
                      threshold, pState, false);
}

// scaleFactor is accepted and not used: the integer score is unscaled.
RVCV_EXPORT RvpStatus rvpiApplyHaarClassifier_32s_C1RSfs(const Rvp32s* pSrc, int srcStep, const Rvp32s* pNorm,
                                                         int normStep, Rvp8u* pMask, int maskStep, RvpiSize roiSize,
                                                         int* pPositive, Rvp32s threshold,
                                                         RvpiHaarClassifier_32s* pState, int scaleFactor) {
    (void)scaleFactor;
    return applyStage(IntRule{}, pSrc, srcStep, pNorm, normStep, pMask, maskStep, roiSize, pPositive, threshold,
                      pState, false);
}

RVCV_EXPORT RvpStatus rvpiApplyMixedHaarClassifier_32f_C1R(const Rvp32f* pSrc, int srcStep, const Rvp32f* pTilt,
                                                           int tiltStep, const Rvp32f* pNorm, int normStep,
                                                           Rvp8u* pMask, int maskStep, RvpiSize roiSize,
                                                           int* pPositive, Rvp32f threshold,
                                                           RvpiHaarClassifier_32f* pState) {
    return applyMixed(FloatRule<Rvp32f>{}, pSrc, srcStep, pTilt, tiltStep, pNorm, normStep, pMask, maskStep, roiSize,
                      pPositive, threshold, pState, false);
}

RVCV_EXPORT RvpStatus rvpiApplyMixedHaarClassifier_32s32f_C1R(const Rvp32s* pSrc, int srcStep, const Rvp32s* pTilt,
                                                              int tiltStep, const Rvp32f* pNorm, int normStep,
                                                              Rvp8u* pMask, int maskStep, RvpiSize roiSize,
                                                              int* pPositive, Rvp32f threshold,
                                                              RvpiHaarClassifier_32f* pState) {
    return applyMixed(FloatRule<Rvp32s>{}, pSrc, srcStep, pTilt, tiltStep, pNorm, normStep, pMask, maskStep, roiSize,
                      pPositive, threshold, pState, false);
}

RVCV_EXPORT RvpStatus rvpiApplyMixedHaarClassifier_32s_C1RSfs(const Rvp32s* pSrc, int srcStep, const Rvp32s* pTilt,
                                                              int tiltStep, const Rvp32s* pNorm, int normStep,
                                                              Rvp8u* pMask, int maskStep, RvpiSize roiSize,
                                                              int* pPositive, Rvp32s threshold,
                                                              RvpiHaarClassifier_32s* pState, int scaleFactor) {
    MixedIntRule rule;
    rule.shift = (0u - static_cast<unsigned>(scaleFactor)) & 63u;
    return applyMixed(rule, pSrc, srcStep, pTilt, tiltStep, pNorm, normStep, pMask, maskStep, roiSize, pPositive,
                      threshold, pState, scaleFactor > 0);
}
