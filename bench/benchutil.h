// Benchmark support. Every operation registers under the name
// "<Op>/<impl>/<W>x<H>/t<threads>" with impl "rvp" (this library), "cv" (the
// peer) or "memcpy" (the bandwidth yardstick), once with one thread and once
// with all threads, timed in wall-clock time. bench/ratios.py turns the JSON
// output into ratio tables.
#ifndef RVPCV_BENCHUTIL_H
#define RVPCV_BENCHUTIL_H

#include <benchmark/benchmark.h>
#include <omp.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "rvpcore.h"
#include "rvpcv.h"
#ifdef RVPCV_HAVE_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace rvbench {

struct Size { int w, h; };
inline const std::vector<Size>& hd() { static const std::vector<Size> v{{1920, 1080}}; return v; }
inline const std::vector<Size>& hdAnd4k() { static const std::vector<Size> v{{1920, 1080}, {3840, 2160}}; return v; }

inline int allThreads() { return rvpGetNumCoresOnDie(); }

// Sets both libraries to n threads.
inline void setThreads(int n) {
    rvpSetNumThreads(n);
#ifdef RVPCV_HAVE_OPENCV
    cv::setNumThreads(n);
#endif
}

// 64-byte aligned, tightly packed image with seeded random content.
template <class T> struct Plane {
    Plane(Size s, int channels = 1, uint32_t seed = 1)
        : w(s.w), h(s.h), c(channels), step(static_cast<int>(s.w * channels * sizeof(T))),
          mem(static_cast<T*>(std::aligned_alloc(64, (static_cast<size_t>(step) * s.h + 63) / 64 * 64)), std::free) {
        std::mt19937 rng(seed);
        T* p = mem.get();
        for (size_t i = 0, n = static_cast<size_t>(w) * h * c; i < n; ++i) {
            if constexpr (std::is_floating_point<T>::value) p[i] = static_cast<T>(rng() % 10000) / 37;
            else p[i] = static_cast<T>(rng());
        }
    }
    T* ptr() const { return mem.get(); }
    size_t bytes() const { return static_cast<size_t>(step) * h; }
    RvpiSize size() const { return RvpiSize{w, h}; }
#ifdef RVPCV_HAVE_OPENCV
    cv::Mat mat() const { return cv::Mat(h, w, CV_MAKETYPE(cv::DataType<T>::depth, c), mem.get(), step); }
#endif
    int w, h, c, step;
    std::unique_ptr<T, void (*)(void*)> mem;
};

// Registers fn for one and for all threads. fn runs the timed loop itself;
// bytesMoved (reads plus writes per call) is reported as bytes per second.
inline void add(const std::string& op, const std::string& impl, Size s, size_t bytesMoved,
                std::function<void(benchmark::State&)> fn) {
    for (int n : {1, allThreads()}) {
        if (n == allThreads() && n == 1) continue;
        const std::string name = op + "/" + impl + "/" + std::to_string(s.w) + "x" + std::to_string(s.h) + "/t" + std::to_string(n);
        benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& st) {
            setThreads(n);
            fn(st);
            st.SetBytesProcessed(static_cast<int64_t>(st.iterations()) * static_cast<int64_t>(bytesMoved));
        })->UseRealTime()->Unit(benchmark::kMicrosecond);
    }
}

// The yardstick: memcpy of half the bytes an operation moves (a copy reads
// and writes each byte once), banded over the threads like the library.
inline void addMemcpy(const std::string& op, Size s, size_t bytesMoved) {
    auto src = std::make_shared<std::vector<uint8_t>>(bytesMoved / 2 + 64, 1);
    auto dst = std::make_shared<std::vector<uint8_t>>(bytesMoved / 2 + 64, 0);
    add(op, "memcpy", s, bytesMoved, [=](benchmark::State& st) {
        const size_t n = bytesMoved / 2;
        int threads = 1;
        rvpGetNumThreads(&threads);
        for (auto _ : st) {
#pragma omp parallel num_threads(threads)
            {
                const int id = omp_get_thread_num(), team = omp_get_num_threads();
                const size_t chunk = n / team, begin = chunk * id, len = id == team - 1 ? n - begin : chunk;
                std::memcpy(dst->data() + begin, src->data() + begin, len);
            }
            benchmark::ClobberMemory();
        }
    });
}

}  // namespace rvbench

#endif
