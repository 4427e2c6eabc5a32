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
// count restarts at 0 when a push makes it reach wrapAt (the records stay
// in the caller's buffer then, which holds wrapAt of them). Records go to
// `base` while they fit; beyond that into chunks taken from the heap, each
// twice the last, kept until the stack is destroyed: nothing is copied.
// Images with sides below 65534 keep their records in 12 bytes instead of
// 24, which halves the memory a deep stack walks through.
class SpanStack {
public:
    SpanStack(Rvp8u* base, int64_t roomBytes, int32_t wrapAt, bool compact)
        : bytes_(compact ? 12 : 24), wrap_(wrapAt) {
        chunk_[0] = Chunk{base, roomBytes > 0 ? roomBytes / bytes_ : 0};
    }
    ~SpanStack() {
        for (int i = 1; i < chunks_; ++i) rvpFree(chunk_[i].at);
    }
    SpanStack(const SpanStack&) = delete;
    SpanStack& operator=(const SpanStack&) = delete;

    // False when a chunk was needed and no memory was left.
    bool push(const Span& s) {
        if (off_ == chunk_[cur_].room && !next()) return false;
        Rvp8u* at = chunk_[cur_].at + off_++ * bytes_;
        if (bytes_ == 12) {
            const Packed p{static_cast<uint16_t>(s.y), static_cast<uint16_t>(s.left), static_cast<uint16_t>(s.right),
                           static_cast<uint16_t>(s.parentLeft), static_cast<uint16_t>(s.parentRight),
                           static_cast<int16_t>(s.dir)};
            std::memcpy(at, &p, sizeof p);
        } else {
            std::memcpy(at, &s, sizeof s);
        }
        if (++size_ == wrap_) size_ = 0, off_ = 0, cur_ = 0;
        return true;
    }
    bool empty() const { return size_ == 0; }
    Span pop() {
        if (off_ == 0) off_ = chunk_[--cur_].room;
        --size_;
        const Rvp8u* at = chunk_[cur_].at + --off_ * bytes_;
        Span s;
        if (bytes_ == 12) {
            Packed p;
            std::memcpy(&p, at, sizeof p);
            s = Span{p.y, p.left, p.right, p.parentLeft, p.parentRight, p.dir};
        } else {
            std::memcpy(&s, at, sizeof s);
        }
        return s;
    }

private:
    struct Packed {
        uint16_t y, left, right, parentLeft, parentRight;
        int16_t dir;
    };
    struct Chunk {
        Rvp8u* at;
        int64_t room;  // records
    };
    bool next();
    Chunk chunk_[40];
    int chunks_ = 1, cur_ = 0;
    int64_t bytes_, off_ = 0, size_ = 0, wrap_;
};

// Whether an image's spans fit the 12-byte records (columns up to width + 1).
inline bool compactSpans(RvpiSize roi) { return roi.width < 65534 && roi.height < 65534; }

// Where the span stack begins: `at` rounded up to 8 bytes.
inline Rvp8u* alignStack(Rvp8u* at) {
    return reinterpret_cast<Rvp8u*>((reinterpret_cast<uintptr_t>(at) + 7) & ~uintptr_t{7});
}

// 6 * w * h + 32, the bytes of the exact and range fills (and labelling).
inline int64_t stackBytes(RvpiSize roi) { return ((24 * int64_t{roi.width} * roi.height) >> 2) + 32; }

}  // namespace fill
}  // namespace rvcv

#endif
