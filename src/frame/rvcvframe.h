// The support layer every family stands on: export macro, 32-bit wrapping
// arithmetic, argument validation in the library's fixed order, the thread
// and scratch services, and the three shapes of OpenMP region (band,
// reduction, filter). A family never writes its own split.
#ifndef RVCV_FRAME_H
#define RVCV_FRAME_H

#ifndef RVPCV_BUILDING_LIBRARY
#define RVPCV_BUILDING_LIBRARY 1
#endif
#include "rvpcv.h"
#include "rvpcore.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <omp.h>
#include <type_traits>

#define RVCV_EXPORT extern "C" RVPAPI

// ---- Services (extern "C" so their names read as the library's own) --------
extern "C" {
int owncvGetIdThreads(void);      // thread number inside the current region
int owncvGetNumThreads(void);     // real team size inside the current region
int owncvGetMaxNumThreads(void);  // permitted thread count (core library)
int runomp(void);                 // nonzero when threads are worth starting
int runsepomp(int kernelSize);    // runomp() | 1, except for kernel sizes 3 and 5
int owncvGetCacheSize(void);      // largest cache in bytes (status ignored)
int owncvRowMatrAlErr(const void* const* rows, int count);  // 1 if a row is not 16-aligned
Rvp32f owncvGetScale_32s32f(int scaleFactor);                // 2^-scaleFactor from intfTable
extern const Rvp32f intfTable[279];

Rvp8u* rvpsMalloc_8u(int len);
Rvp16u* rvpsMalloc_16u(int len);
Rvp32s* rvpsMalloc_32s(int len);
Rvp32f* rvpsMalloc_32f(int len);
Rvp64f* rvpsMalloc_64f(int len);
void rvpsFree(void* ptr);

extern int rvpJumpIndexForMergedDLL;  // written at load, read by nothing here
int ownInitLibrary(void);             // the load-time routine
}

namespace rvcv {

// ---- 32-bit wrapping arithmetic ---------------------------------------------
// Widths, heights, pixel counts and offsets wrap like the library's 32-bit
// registers; spelled on unsigned types so the wrap is defined behaviour.
inline int32_t wadd(int32_t a, int32_t b) { return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b)); }
inline int32_t wsub(int32_t a, int32_t b) { return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b)); }
inline int32_t wmul(int32_t a, int32_t b) { return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b)); }
inline int32_t wmul(int32_t a, int32_t b, int32_t c) { return wmul(wmul(a, b), c); }

// Byte offset of row y for a step, computed in 32 bits and then widened.
inline ptrdiff_t rowOffset(int step, int y) { return static_cast<ptrdiff_t>(wmul(step, y)); }

template <class T> inline T* advance(T* p, ptrdiff_t bytes) {
    using B = typename std::conditional<std::is_const<T>::value, const char, char>::type;
    return reinterpret_cast<T*>(reinterpret_cast<B*>(p) + bytes);
}
template <class T> inline T* rowPtr(T* base, int step, int y) { return advance(base, rowOffset(step, y)); }

// ---- Validation in the documented order --------------------------------------
// Usage: RvpStatus st = Check().ptr(a).ptr(b).size(roi).step(s, rowBytes)...;
// The first failing test sticks; later tests are not evaluated.
class Check {
public:
    Check& ptr(const void* p) { if (st_ == rvpStsNoErr && p == nullptr) st_ = rvpStsNullPtrErr; return *this; }
    template <class... P> Check& ptrs(const P*... p) { (ptr(p), ...); return *this; }
    Check& size(RvpiSize s) { return size(s.width, s.height); }
    Check& size(int w, int h) {
        if (st_ == rvpStsNoErr && (w <= 0 || h <= 0)) st_ = rvpStsSizeErr;
        return *this;
    }
    // A step strictly smaller than the bytes of one row fails; equal passes.
    Check& step(int step, int rowBytes) { if (st_ == rvpStsNoErr && step < rowBytes) st_ = rvpStsStepErr; return *this; }
    template <class... S> Check& steps(int rowBytes, S... s) { (step(s, rowBytes), ...); return *this; }
    // The OR of the steps must be a multiple of the sample size.
    template <class... S> Check& evenSteps(int sampleBytes, S... s) {
        if (st_ == rvpStsNoErr && sampleBytes > 1 && ((s | ...) & (sampleBytes - 1)) != 0) st_ = rvpStsNotEvenStepErr;
        return *this;
    }
    Check& fail(bool bad, RvpStatus code) { if (st_ == rvpStsNoErr && bad) st_ = code; return *this; }
    operator RvpStatus() const { return st_; }

private:
    RvpStatus st_ = rvpStsNoErr;
};

// The usual image test for one sample type: sizes, steps against the row's
// bytes, then step alignment for samples wider than a byte.
template <class T, class... S>
inline Check& checkImage(Check& c, RvpiSize roi, int channels, S... steps) {
    const int rowBytes = wmul(roi.width, static_cast<int>(sizeof(T)) * channels);
    return c.size(roi).steps(rowBytes, steps...).evenSteps(static_cast<int>(sizeof(T)), steps...);
}

// ---- Buffer sizes ---------------------------------------------------------------
// Size queries compute in 64 bits. A size that does not fit an int is
// refused with rvpStsSizeErr and nothing stored (the functions that take the
// buffer refuse the same arguments); sizes that fit are stored as they are.
inline bool fitsInt(int64_t bytes) { return bytes >= 0 && bytes <= INT32_MAX; }
inline RvpStatus storeSize(int64_t bytes, int* pSize) {
    if (!fitsInt(bytes)) return rvpStsSizeErr;
    *pSize = static_cast<int>(bytes);
    return rvpStsNoErr;
}

// ---- Cache query for the store-kind choice ----------------------------------
// The variable starts at 0 so that a failed query reads as an empty cache.
inline int maxCacheBytes() {
    int c = 0;
    rvpGetMaxCacheSizeB(&c);
    return c;
}

// ---- Regions -----------------------------------------------------------------
// Every threaded family goes through splitRegion: one OpenMP region of the
// requested size in which the master reads the real team size and splits
// `height` into equal bands, the leftover rows all going to the last thread;
// the team meets at a barrier before anyone reads the split. A runtime that
// declines to fork runs the body once with n = 1.
struct BandSplit {
    int n = 1, rowsPerThread = 0, rowsLeft = 0;
    int firstRow(int id) const { return wmul(rowsPerThread, id); }
    int rows(int id) const { return id == n - 1 ? rowsPerThread + rowsLeft : rowsPerThread; }
};

// body(id, split) runs on every thread of the team; returns the split used.
template <class Body>
BandSplit splitRegion(int height, int requested, Body&& body) {
    BandSplit split;
#pragma omp parallel num_threads(requested > 0 ? requested : 1)
    {
#pragma omp master
        {
            split.n = owncvGetNumThreads();
            split.rowsPerThread = height / split.n;
            split.rowsLeft = height % split.n;
        }
#pragma omp barrier
        body(owncvGetIdThreads(), static_cast<const BandSplit&>(split));
    }
    return split;
}

// Band region: body(y0, rows) on each thread that has at least one row.
template <class Body>
void bandRegion(int height, int requested, Body&& body) {
    splitRegion(height, requested, [&](int id, const BandSplit& s) {
        if (s.rows(id) > 0) body(s.firstRow(id), s.rows(id));
    });
}

// Threshold of the pixel-wise families (absolute difference, accumulation):
// below 262144 pixels the call stays on the caller's thread. So does a call
// permitted one thread: a team of one would take the whole image as its band
// anyway, and opening the region costs a system call (measured at 25-30 us
// per 1080p call on a virtual machine).
constexpr int kPixelwiseParallelMin = 0x40000;

template <class Body>
void pixelwise(int width, int height, Body&& body) {
    if (wmul(width, height) < kPixelwiseParallelMin) {
        body(0, height);
        return;
    }
    const int threads = ownGetNumThreads();
    if (threads <= 1) body(0, height);
    else bandRegion(height, threads, body);
}

// Reduction region. Each thread owns a slot set to the identity; a thread
// with rows calls body(y0, rows, slot). Slots combine on the caller's thread
// in thread order: slot 0, then up to 16 further slots one by one, beyond
// that a fixed pairwise tree, so one team size always gives one result.
// Slots live on the stack up to 32 threads; a larger team takes them from the
// heap, and if that fails the team is capped at 32.
template <class T, class Body, class Combine>
T reductionRegion(int height, int requested, T identity, Body&& body, Combine&& combine) {
    constexpr int kStackSlots = 32;
    T stackSlots[kStackSlots];
    T* slots = stackSlots;
    void* heap = nullptr;
    if (requested > kStackSlots) {
        heap = rvpMalloc(wmul(requested, static_cast<int>(sizeof(T))));
        if (heap) slots = static_cast<T*>(heap);
        else requested = kStackSlots;
    }
    const int n = splitRegion(height, requested, [&](int id, const BandSplit& s) {
        slots[id] = identity;
        if (s.rows(id) > 0) body(s.firstRow(id), s.rows(id), slots[id]);
    }).n;
    T r = slots[0];
    if (n <= 17) {
        for (int i = 1; i < n; ++i) r = combine(r, slots[i]);
    } else {
        for (int width = 1; width < n; width *= 2)
            for (int i = 0; i + width < n; i += 2 * width) slots[i] = combine(slots[i], slots[i + width]);
        r = slots[0];
    }
    if (heap) rvpFree(heap);
    return r;
}

// Filter region. pBuffer was sized for the permitted thread count; each
// thread takes an equal share (bufferBytes / n) of it. Bands read real source
// rows across their seams: the first band gets the "rows below exist" flag,
// the last "rows above exist", inner bands both. body(y0, rows, slice, flags).
constexpr int kSeamAbove = rvpBorderInMemTop;
constexpr int kSeamBelow = rvpBorderInMemBottom;

template <class Body>
void filterRegion(int height, int requested, Rvp8u* pBuffer, int bufferBytes, Body&& body) {
    splitRegion(height, requested, [&](int id, const BandSplit& s) {
        const int share = bufferBytes / s.n;
        int flags = 0;
        if (s.n > 1) flags = id == 0 ? kSeamBelow : id == s.n - 1 ? kSeamAbove : (kSeamAbove | kSeamBelow);
        if (s.rows(id) > 0) body(s.firstRow(id), s.rows(id), pBuffer + rowOffset(share, id), flags);
    });
}

// ---- Scaled integer results ---------------------------------------------------
// 2^-s with round to nearest, ties to even (arithmetic shifts); negative s
// shifts left. Saturation to the destination type is the caller's next step.
inline int64_t scaleRound(int64_t v, int s) {
    if (s > 0) {
        if (s > 62) return 0;
        return (v + (int64_t(1) << (s - 1)) - 1 + ((v >> s) & 1)) >> s;
    }
    if (s < 0) {
        const int l = -s > 62 ? 62 : -s;
        const int64_t lim = INT64_MAX >> l;
        if (v > lim) return INT64_MAX;
        if (v < -lim) return INT64_MIN;
        return static_cast<int64_t>(static_cast<uint64_t>(v) << l);
    }
    return v;
}

template <class T> inline T saturate(int64_t v) {
    constexpr int64_t lo = static_cast<int64_t>(std::numeric_limits<T>::min());
    constexpr int64_t hi = static_cast<int64_t>(std::numeric_limits<T>::max());
    return static_cast<T>(v < lo ? lo : v > hi ? hi : v);
}

}  // namespace rvcv

#endif  // RVCV_FRAME_H
