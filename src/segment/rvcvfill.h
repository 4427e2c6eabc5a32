// Pieces of the scan-line flood fill that the labelling and the tests share:
// the span record, the span stack that lives in the caller's buffer (and
// moves to the heap only when a tangled image outgrows it), the stack's
// alignment and the buffer size.
#ifndef RVCV_FILL_H
#define RVCV_FILL_H

#include <cstdint>

#include "rvcvframe.h"

namespace rvcv {
namespace fill {

// A run of filled pixels waiting for its neighbour rows to be scanned. The
// row it grew from is y + dir, the row still to look at is y - dir.
struct Span {
    int32_t y, left, right, parentLeft, parentRight, dir;
};
static_assert(sizeof(Span) == 24, "24-byte span records");

// Last in, first out. wrapAt > 0 gives the range fills' bounded stack: the
// index restarts at 0 when a push makes it reach wrapAt. Records go to
// `base` while `room` of them fit; beyond that the stack moves to the heap.
class SpanStack {
public:
    SpanStack(Rvp8u* base, int64_t roomBytes, int32_t wrapAt)
        : base_(reinterpret_cast<Span*>(base)), room_(roomBytes > 0 ? roomBytes / 24 : 0), wrap_(wrapAt) {}
    ~SpanStack() {
        if (heap_) rvpFree(heap_);
    }
    SpanStack(const SpanStack&) = delete;
    SpanStack& operator=(const SpanStack&) = delete;

    // False when the stack had to grow and no memory was left.
    bool push(const Span& s) {
        if (top_ == room_ && !grow()) return false;
        base_[top_++] = s;
        if (top_ == wrap_) top_ = 0;
        return true;
    }
    bool empty() const { return top_ == 0; }
    Span pop() { return base_[--top_]; }

private:
    bool grow();
    Span* base_;
    int64_t room_;
    int64_t top_ = 0;
    int64_t wrap_;
    void* heap_ = nullptr;
};

// Where the span stack begins: `at` rounded up to 8 bytes.
inline Rvp8u* alignStack(Rvp8u* at) {
    return reinterpret_cast<Rvp8u*>((reinterpret_cast<uintptr_t>(at) + 7) & ~uintptr_t{7});
}

// 6 * w * h + 32, the bytes of the exact and range fills (and labelling).
inline int64_t stackBytes(RvpiSize roi) { return ((24 * int64_t{roi.width} * roi.height) >> 2) + 32; }

}  // namespace fill
}  // namespace rvcv

#endif
