// Accumulation against the reference model: every member, sizes from 1x1 to
// past the parallel threshold, padded steps, random masks, negative zeros and
// NaN in masked-out pixels, every dispatch level and thread counts 1, 2, 3, 8.
#include <cmath>
#include <functional>
#include <string>
#include <type_traits>

#include "reference/ref_accumulate.h"
#include "accumulate/rvcvaccum.h"
#include "support/rvtest.h"

using namespace rvtest;
using ref::AccOp;

namespace {

// The arguments of one call; each form takes those it has.
struct Args { const void *s1, *s2; int st1, st2; const Rvp8u* m; int sm; Rvp32f* d; int sd; RvpiSize r; float alpha; };

// Calls a member with the arguments its form takes; Two marks the products,
// whose 8u masked one-source twin has the same type.
template <class T, bool Two, class F> RvpStatus invoke(F f, const Args& a) {
    const T *s1 = static_cast<const T*>(a.s1), *s2 = static_cast<const T*>(a.s2);
    if constexpr (Two && std::is_invocable_v<F, const T*, int, const T*, int, Rvp32f*, int, RvpiSize>)
        return f(s1, a.st1, s2, a.st2, a.d, a.sd, a.r);
    else if constexpr (Two) return f(s1, a.st1, s2, a.st2, a.m, a.sm, a.d, a.sd, a.r);
    else if constexpr (std::is_invocable_v<F, const T*, int, Rvp32f*, int, RvpiSize>) return f(s1, a.st1, a.d, a.sd, a.r);
    else if constexpr (std::is_invocable_v<F, const T*, int, Rvp32f*, int, RvpiSize, Rvp32f>)
        return f(s1, a.st1, a.d, a.sd, a.r, a.alpha);
    else if constexpr (std::is_invocable_v<F, const T*, int, const Rvp8u*, int, Rvp32f*, int, RvpiSize>)
        return f(s1, a.st1, a.m, a.sm, a.d, a.sd, a.r);
    else return f(s1, a.st1, a.m, a.sm, a.d, a.sd, a.r, a.alpha);
}

// outOfPlace: pDst = pSrc2 + (pSrc1 - pSrc2) * alpha, the accumulator read from s2.
struct Member {
    const char* name; AccOp op; bool masked; int type; std::function<RvpStatus(const Args&)> call; bool outOfPlace = false;
};
#define MEMBER(fn, op, masked, type, T, two) {#fn, AccOp::op, masked, type, [](const Args& a) { return invoke<T, two>(fn, a); }}
#define FAMILY(sfx, type, T)                                                                                          \
    MEMBER(rvpiAdd_##sfx##_C1IMR, Add, true, type, T, false),                                                         \
    MEMBER(rvpiAddSquare_##sfx##_C1IR, Square, false, type, T, false),                                                \
    MEMBER(rvpiAddSquare_##sfx##_C1IMR, Square, true, type, T, false),                                                \
    MEMBER(rvpiAddProduct_##sfx##_C1IR, Product, false, type, T, true),                                             \
    MEMBER(rvpiAddProduct_##sfx##_C1IMR, Product, true, type, T, true),                                             \
    MEMBER(rvpiAddWeighted_##sfx##_C1IR, Weighted, false, type, T, false),                                            \
    MEMBER(rvpiAddWeighted_##sfx##_C1IMR, Weighted, true, type, T, false)
const Member kMembers[] = {
    MEMBER(rvpiAdd_8u32f_C1IR, Add, false, 0, Rvp8u, false),   FAMILY(8u32f, 0, Rvp8u),
    MEMBER(rvpiAdd_8s32f_C1IR, Add, false, 1, Rvp8s, false),   FAMILY(8s32f, 1, Rvp8s),
    MEMBER(rvpiAdd_16u32f_C1IR, Add, false, 2, Rvp16u, false), FAMILY(16u32f, 2, Rvp16u),
    FAMILY(32f, 3, Rvp32f),
    {"rvpiAddWeighted_32f_C1R", AccOp::Weighted, false, 3, [](const Args& a) {
         return rvpiAddWeighted_32f_C1R(static_cast<const Rvp32f*>(a.s1), a.st1, static_cast<const Rvp32f*>(a.s2), a.st2,
                                        a.d, a.sd, a.r, a.alpha); }, true},
};
#undef FAMILY
#undef MEMBER

// Unpadded images (pad 0) with widths that are multiples of 4 are one run of pixels.
struct Case { int w, h, pad; };
const Case kCases[] = {{1, 1, 0}, {1, 6, 4}, {2, 3, 0}, {3, 4, 8}, {4, 1, 0}, {5, 3, 4}, {7, 2, 0}, {8, 2, 12},
                       {9, 3, 0}, {11, 4, 4}, {12, 1, 0}, {15, 3, 8}, {16, 2, 0}, {17, 3, 4}, {35, 5, 0},
                       {64, 3, 0}, {101, 37, 4}, {513, 520, 8}};

template <class T>
void checkMember(const Member& m, uint32_t seed) {
    const float alpha = 0.3f;
    for (const Case& c : kCases) {
        SCOPED_TRACE(testing::Message() << m.name << " " << c.w << "x" << c.h << " pad " << c.pad << " seed " << seed);
        std::mt19937 rng(seed + c.w * 977u + c.h);
        Random<T> rnd(seed ^ (c.w * 31u + c.h)), rnd2(seed + 7);  // fill() copies its generator
        const int pad2 = c.pad ? c.pad + 2 * static_cast<int>(sizeof(T)) : 0;
        Image<T> s1(c.w, c.h, 1, c.pad), s2(c.w, c.h, 1, pad2);
        Image<Rvp8u> mask(c.w, c.h, 1, c.pad ? c.pad + 3 : 0);
        Image<Rvp32f> acc(c.w, c.h, 1, c.pad);
        s1.fill(rnd);
        s2.fill(rnd2);
        mask.fill([&] { return static_cast<Rvp8u>(rng() % 3 == 0 ? 0 : rng() % 256); });
        acc.fill([&] {  // ordinary numbers with a sprinkling of zeros of both signs
            const unsigned k = rng() % 8;
            return k == 0 ? -0.0f : k == 1 ? 0.0f : std::uniform_real_distribution<float>(-500, 500)(rng);
        });
        // Masked-out float sources carry NaN and infinities: they must not reach the sum.
        if constexpr (std::is_same<T, Rvp32f>::value)
            if (m.masked)
                for (int y = 0; y < c.h; ++y)
                    for (int x = 0; x < c.w; ++x)
                        if (mask.at(x, y) == 0) s1.at(x, y) = (x + y) % 2 ? NAN : -INFINITY;
        Image<Rvp32f> want = acc;
        for (int y = 0; y < c.h; ++y)
            for (int x = 0; x < c.w; ++x)
                want.at(x, y) = ref::accumulate<T>(m.op, s1.at(x, y), s2.at(x, y), m.masked ? &mask.at(x, y) : nullptr,
                                                   m.outOfPlace ? static_cast<float>(s2.at(x, y)) : acc.at(x, y), alpha,
                                                   x, c.w);
        ASSERT_EQ(m.call({s1.ptr(), s2.ptr(), s1.step(), s2.step(), mask.ptr(), mask.step(), acc.ptr(), acc.step(),
                          acc.size(), alpha}),
                  rvpStsNoErr);
        ASSERT_TRUE(acc.guardsIntact());
        for (int y = 0; y < c.h; ++y)
            for (int x = 0; x < c.w; ++x)
                ASSERT_TRUE(sameBits(&want.at(x, y), &acc.at(x, y), 4))
                    << "at " << x << "," << y << ": " << acc.at(x, y) << " want " << want.at(x, y);
    }
}

class AccumulateAcross : public AcrossPaths {};

TEST_P(AccumulateAcross, MatchesReference) {
    uint32_t seed = 100;
    for (const Member& m : kMembers) {
        switch (m.type) {
        case 0: checkMember<Rvp8u>(m, ++seed); break;
        case 1: checkMember<Rvp8s>(m, ++seed); break;
        case 2: checkMember<Rvp16u>(m, ++seed); break;
        default: checkMember<Rvp32f>(m, ++seed); break;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Paths, AccumulateAcross, testing::ValuesIn(pathConfigs()), pathName);

// Runs kernel k twice on one input, the second time with a choice that may
// change only the speed (nt: bypassing stores, else the large-image path),
// and expects the same bytes. Sizes: rows alone (odd and even counts, rows
// of several chunks), and unpadded multiples of 4 as one long row.
template <class T>
void expectSameBits(rvcv::AccumKernel k, bool nt, bool outOfPlace, const std::string& what) {
    const int sizes[][2] = {{93, 3}, {100, 3}, {1100, 3}, {1101, 4}};
    for (const auto& size : sizes)
        for (int pad : {0, 4}) {
            const int w = size[0], h = size[1];
            Image<T> s(w, h, 1, pad), s2(w, h, 1, pad);
            Image<Rvp8u> m(w, h, 1, pad);
            Image<Rvp32f> acc(w, h, 1, pad);
            s.fill(Random<T>(1));
            s2.fill(Random<T>(2));
            m.fill(Random<Rvp8u>(3));
            acc.fill(Random<Rvp32f>(4));
            Image<Rvp32f> out[2] = {acc, acc};
            for (bool on : {false, true}) {
                Image<Rvp32f>& d = out[on];
                const Image<Rvp32f>& a = outOfPlace ? acc : d;
                rvcv::AccumArgs g{s.ptr(), s.step(), s2.ptr(), s2.step(), m.ptr(), m.step(),
                                  a.ptr(), a.step(), d.ptr(), d.step(), 0.5f, nt && on, !nt && on};
                k(g, h, w);
            }
            EXPECT_EQ(out[0].bytes(), out[1].bytes()) << what << " " << w << "x" << h << " pad " << pad;
            EXPECT_TRUE(out[1].guardsIntact()) << what;
        }
}

TEST(AccumulateKernels, SpeedChoicesGiveSameBits) {
    for (rvcv::Isa isa : isaLevels()) {
        ScopedIsa scoped(isa);
        const rvcv::AccumKernels& k = rvcv::pick(rvcv::m7::kAccum, rvcv::avx2::kAccum, rvcv::avx512::kAccum);
        const std::string level = rvcv::isaName(isa);
        for (int masked : {0, 1})
            expectSameBits<Rvp8u>(k.k[rvcv::kAccProduct][rvcv::kAcc8u][masked], true, false,
                                  level + " bypassing stores, masked " + std::to_string(masked));
        for (int op : {rvcv::kAccSquare, rvcv::kAccProduct, rvcv::kAccWeighted})
            expectSameBits<Rvp32f>(k.k[op][rvcv::kAcc32f][0], false, false, level + " large, op " + std::to_string(op));
        expectSameBits<Rvp32f>(k.k[rvcv::kAccWeighted][rvcv::kAcc32f][0], false, true, level + " large, out of place");
    }
}

// Each row: a bad argument set, the status it must give, and nothing written.
TEST(Accumulate, ValidationOrder) {
    const int w = 8, h = 2;
    Image<Rvp32f> acc(w, h, 1, 16);
    acc.fill(Random<Rvp32f>(5));
    const auto before = acc.raw();
    std::vector<uint8_t> mem(4096, 1);
    const Rvp8u *u8 = mem.data(), *mk = u8;  // sources and masks
    const Rvp8s* s8 = reinterpret_cast<const Rvp8s*>(mem.data());
    const Rvp16u* u16 = reinterpret_cast<const Rvp16u*>(mem.data());
    const Rvp32f* f32 = reinterpret_cast<const Rvp32f*>(mem.data());
    Rvp32f* d = acc.ptr();
    const RvpiSize r{w, h};
    struct Row { const char* what; std::function<RvpStatus()> call; RvpStatus want; };
    const Row rows[] = {
        {"null src", [&] { return rvpiAdd_8u32f_C1IR(nullptr, 8, d, 32, r); }, rvpStsNullPtrErr},
        {"null mask", [&] { return rvpiAdd_8u32f_C1IMR(u8, 8, nullptr, 8, d, 32, r); }, rvpStsNullPtrErr},
        {"null src2", [&] { return rvpiAddProduct_8s32f_C1IR(s8, 8, nullptr, 8, d, 32, r); }, rvpStsNullPtrErr},
        {"zero width", [&] { return rvpiAdd_8u32f_C1IR(u8, 8, d, 32, {0, h}); }, rvpStsSizeErr},
        {"size before step", [&] { return rvpiAdd_8u32f_C1IR(u8, 1, d, 1, {w, -1}); }, rvpStsSizeErr},
        {"8u acc step not x4", [&] { return rvpiAdd_8u32f_C1IR(u8, 9, d, 34, r); }, rvpStsNotEvenStepErr},
        {"8u sizes before x4", [&] { return rvpiAddWeighted_8u32f_C1IMR(u8, 8, mk, 8, d, 30, r, 1.0f); }, rvpStsStepErr},
        {"8s acc x4 after sizes", [&] { return rvpiAddProduct_8s32f_C1IMR(s8, 9, s8, 9, mk, 9, d, 33, r); }, rvpStsNotEvenStepErr},
        {"16u odd src before acc size", [&] { return rvpiAdd_16u32f_C1IR(u16, 17, d, 4, r); }, rvpStsNotEvenStepErr},
        {"16u odd src before mask size", [&] { return rvpiAdd_16u32f_C1IMR(u16, 17, mk, 1, d, 32, r); }, rvpStsNotEvenStepErr},
        {"16u mask size after src", [&] { return rvpiAddSquare_16u32f_C1IMR(u16, 16, mk, 7, d, 33, r); }, rvpStsStepErr},
        {"16u odd src2 before acc", [&] { return rvpiAddProduct_16u32f_C1IR(u16, 16, u16, 19, d, 4, r); }, rvpStsNotEvenStepErr},
        {"16u acc not x4", [&] { return rvpiAddWeighted_16u32f_C1IMR(u16, 16, mk, 9, d, 34, r, 0.5f); }, rvpStsNotEvenStepErr},
        {"32f sizes first", [&] { return rvpiAdd_32f_C1IMR(f32, 34, mk, 8, d, 28, r); }, rvpStsStepErr},
        {"32f src not x4", [&] { return rvpiAdd_32f_C1IMR(f32, 34, mk, 9, d, 32, r); }, rvpStsNotEvenStepErr},
        {"32f src2 not x4", [&] { return rvpiAddProduct_32f_C1IR(f32, 32, f32, 33, d, 32, r); }, rvpStsNotEvenStepErr},
        {"two-source weighted sizes", [&] { return rvpiAddWeighted_32f_C1R(f32, 33, f32, 32, d, 31, r, 0.5f); }, rvpStsStepErr},
        {"two-source weighted x4", [&] { return rvpiAddWeighted_32f_C1R(f32, 32, f32, 34, d, 32, r, 0.5f); }, rvpStsNotEvenStepErr},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.call(), row.want) << row.what;
        EXPECT_EQ(acc.raw(), before) << row.what << " wrote to the accumulator";
    }
    // Byte steps need no alignment: odd source and mask steps pass.
    EXPECT_EQ(rvpiAdd_8u32f_C1IMR(u8, 9, mk, 11, d, 32, r), rvpStsNoErr);
    EXPECT_EQ(rvpiAdd_16u32f_C1IMR(u16, 18, mk, 9, d, 36, r), rvpStsNoErr);
}

}  // namespace
