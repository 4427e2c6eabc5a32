// Test support: images placed inside larger buffers with canary bytes around
// and between rows, seeded random fills, the permitted thread count set for a
// scope, and the dispatch levels this processor offers.
#ifndef RVPCV_TEST_SUPPORT_H
#define RVPCV_TEST_SUPPORT_H

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <type_traits>
#include <string>
#include <vector>

#include "rvcvcpu.h"
#include "rvpcore.h"
#include "rvpcv.h"

namespace rvtest {

constexpr uint8_t kCanary = 0xA5;
constexpr int kGuard = 64;  // canary bytes before the first and after the last row

// A width x height image of T with `channels` samples a pixel, whose rows
// start `step` bytes apart inside a buffer guarded by canaries. Padding bytes
// between rows are canaries too, so any write outside the region is seen.
template <class T>
class Image {
public:
    Image(int width, int height, int channels = 1, int padBytes = 0)
        : w_(width), h_(height), c_(channels),
          step_(static_cast<int>(width * channels * sizeof(T)) + padBytes),
          buf_(static_cast<size_t>(step_) * (height > 0 ? height : 0) + 2 * kGuard, kCanary) {}

    T* ptr() { return reinterpret_cast<T*>(buf_.data() + kGuard); }
    const T* ptr() const { return reinterpret_cast<const T*>(buf_.data() + kGuard); }
    int step() const { return step_; }
    int width() const { return w_; }
    int height() const { return h_; }
    RvpiSize size() const { return RvpiSize{w_, h_}; }
    T* row(int y) { return reinterpret_cast<T*>(buf_.data() + kGuard + static_cast<size_t>(step_) * y); }
    const T* row(int y) const { return reinterpret_cast<const T*>(buf_.data() + kGuard + static_cast<size_t>(step_) * y); }
    T& at(int x, int y, int ch = 0) { return row(y)[x * c_ + ch]; }
    const T& at(int x, int y, int ch = 0) const { return row(y)[x * c_ + ch]; }

    template <class Gen> void fill(Gen&& gen) {  // by reference: successive fills continue the sequence
        for (int y = 0; y < h_; ++y)
            for (int x = 0; x < w_ * c_; ++x) row(y)[x] = gen();
    }
    // True when every byte outside the region still holds the canary.
    bool guardsIntact() const {
        const size_t rowBytes = static_cast<size_t>(w_) * c_ * sizeof(T);
        for (size_t i = 0; i < kGuard; ++i)
            if (buf_[i] != kCanary || buf_[buf_.size() - 1 - i] != kCanary) return false;
        for (int y = 0; y < h_; ++y)
            for (size_t i = kGuard + static_cast<size_t>(step_) * y + rowBytes; i < kGuard + static_cast<size_t>(step_) * (y + 1); ++i)
                if (buf_[i] != kCanary) return false;
        return true;
    }
    // Bytes of the region only (no padding), for exact comparisons.
    std::vector<uint8_t> bytes() const {
        std::vector<uint8_t> out;
        const size_t rowBytes = static_cast<size_t>(w_) * c_ * sizeof(T);
        for (int y = 0; y < h_; ++y) {
            const uint8_t* r = buf_.data() + kGuard + static_cast<size_t>(step_) * y;
            out.insert(out.end(), r, r + rowBytes);
        }
        return out;
    }
    const std::vector<uint8_t>& raw() const { return buf_; }

private:
    int w_, h_, c_, step_;
    std::vector<uint8_t> buf_;
};

// Random samples over the whole range of T (floats: a spread of magnitudes
// and signs, with occasional zeros of both signs, infinities and NaN when asked).
template <class T> struct Random {
    explicit Random(uint32_t seed) : rng(seed) {}
    std::mt19937 rng;
    T operator()() {
        if constexpr (std::is_floating_point<T>::value) {
            std::uniform_real_distribution<T> d(-1000, 1000);
            return d(rng);
        } else {
            std::uniform_int_distribution<long long> d(std::numeric_limits<T>::min(), std::numeric_limits<T>::max());
            return static_cast<T>(d(rng));
        }
    }
};

// Sets the permitted thread count for a scope.
class ScopedThreads {
public:
    explicit ScopedThreads(int n) { rvpGetNumThreads(&old_); rvpSetNumThreads(n); }
    ~ScopedThreads() { rvpSetNumThreads(old_); }
private:
    int old_ = 1;
};

// Forces a dispatch level for a scope (skips nothing: callers filter with available()).
class ScopedIsa {
public:
    explicit ScopedIsa(rvcv::Isa isa) : old_(rvcv::activeIsa()) { rvcv::forceIsa(isa); }
    ~ScopedIsa() { rvcv::forceIsa(old_); }
private:
    rvcv::Isa old_;
};

inline std::vector<rvcv::Isa> isaLevels() {
    std::vector<rvcv::Isa> v{rvcv::Isa::M7};
    for (rvcv::Isa isa : {rvcv::Isa::Avx2, rvcv::Isa::Avx512})
        if (rvcv::isaAvailable(isa)) v.push_back(isa);
    return v;
}

inline const std::vector<int>& threadCounts() {
    static const std::vector<int> v{1, 2, 3, 8};
    return v;
}

// One dispatch level and one permitted thread count; a suite derived from
// AcrossPaths runs each test once per pair, set for the test's scope.
struct PathConfig { rvcv::Isa isa; int threads; };

inline std::vector<PathConfig> pathConfigs() {
    std::vector<PathConfig> v;
    for (rvcv::Isa isa : isaLevels())
        for (int t : threadCounts()) v.push_back({isa, t});
    return v;
}

inline std::string pathName(const testing::TestParamInfo<PathConfig>& info) {
    return std::string(rvcv::isaName(info.param.isa)) + "_t" + std::to_string(info.param.threads);
}

class AcrossPaths : public testing::TestWithParam<PathConfig> {
protected:
    AcrossPaths() : isa_(GetParam().isa), threads_(GetParam().threads) {}
    ScopedIsa isa_;
    ScopedThreads threads_;
};

inline bool sameBits(const void* a, const void* b, size_t n) { return std::memcmp(a, b, n) == 0; }

}  // namespace rvtest

#endif
