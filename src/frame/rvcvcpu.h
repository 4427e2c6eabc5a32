// Instruction-set dispatch. The level is chosen once, when the library is
// loaded, from the core library's enabled features; every path gives the same
// bits. Tests may force a lower level (never a level the CPU lacks).
#ifndef RVCV_CPU_H
#define RVCV_CPU_H

namespace rvcv {

// M7: the SSE3 baseline; Avx512 means F, BW, DQ and VL together. Numbered
// as rvpDispatchLevel (rvpcore.h) numbers the level for an enabled feature set.
enum class Isa : int { M7 = 0, Avx2 = 1, Avx512 = 2 };

Isa activeIsa();
bool isaAvailable(Isa isa);
// Test hook: selects a level the processor has; returns false otherwise.
bool forceIsa(Isa isa);

// Picks the entry of a per-level table: tables list the baseline first. A
// family without a 512-bit table runs its AVX2 table at that level.
template <class Table> const Table& pick(const Table& m7, const Table& avx2) {
    return activeIsa() >= Isa::Avx2 ? avx2 : m7;
}
template <class Table> const Table& pick(const Table& m7, const Table& avx2, const Table& avx512) {
    const Isa isa = activeIsa();
    return isa == Isa::Avx512 ? avx512 : isa == Isa::Avx2 ? avx2 : m7;
}

inline const char* isaName(Isa isa) { return isa == Isa::Avx512 ? "avx512" : isa == Isa::Avx2 ? "avx2" : "m7"; }

}  // namespace rvcv

#endif
