// Index tables of the fixed-kernel filters' row and column routines, one set
// per instruction set (rvcvfixed_k.h). The band routine and the public
// functions live in rvcvfixed.cpp and pick a set once per call.
#ifndef RVCV_FIXED_H
#define RVCV_FIXED_H

#include "rvpcv.h"

namespace rvcv {
namespace filt {

// One row of the row stage; twin is the offset of the Laplacian's second row.
template <class S, class I> using RowFn = void (*)(const S* src, I* dst, int w, int type, int flags, S bv, S* work,
                                                  int twin);


template <class S, class I> struct RowEntry {
    RowFn<S, I> fn;
    int n;        // taps
    int tapSum;   // a constant row of v filters to tapSum * v
    bool twin;    // Laplacian twin rows (tap sum 8 for the second)
};

// count output rows; output row y reads r[y .. y + n - 1].
template <class I, class D> using ColFn = void (*)(I* const* r, D* d, int dstStep, int count, int w, int twin);

template <class I, class D> struct ColTable { ColFn<I, D> fn[13]; };


struct FixedTables {
    RowEntry<Rvp8u, Rvp16s> row8u[11];      // owntabRow_8u16s
    RowEntry<Rvp32f, Rvp32f> row32f[11];    // owntabRow_32f
    ColTable<Rvp16s, Rvp16s> col8u16s;      // owntabColumn_8u16s
    ColTable<Rvp16s, Rvp8s> col8u8s;        // owntabColumn_8u8s
    ColTable<Rvp32f, Rvp32f> col32f;        // owntabColumn_32f
    ColTable<Rvp16s, Rvp8u> col8u;          // owntabColumn_8u
};

namespace m7 { extern const FixedTables kFixed; }
namespace avx2 { extern const FixedTables kFixed; }

}  // namespace filt
}  // namespace rvcv

#endif
