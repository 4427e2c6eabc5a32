// The companion core library: thread count, core count, cache size, aligned
// allocation and CPU detection. The permitted thread count and the enabled
// feature mask are the only settings; both are atomics, so concurrent readers
// never see a torn value.
#define RVPCORE_BUILDING_LIBRARY 1
#include "rvpcore.h"

#include <atomic>
#include <cpuid.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sched.h>
#include <unistd.h>

namespace {

std::atomic<int> g_numThreads{0};  // 0: not set, use the default

int processorsAvailable() {
    cpu_set_t set;
    CPU_ZERO(&set);
    if (sched_getaffinity(0, sizeof(set), &set) == 0) {
        int n = CPU_COUNT(&set);
        if (n > 0) return n;
    }
    long n = sysconf(_SC_NPROCESSORS_ONLN);
    return n > 0 ? static_cast<int>(n) : 1;
}

// Largest "size" of /sys/devices/system/cpu/cpu0/cache/index*/ that is a
// data or unified cache; 0 when none can be read.
int cacheFromSysfs() {
    long best = 0;
    for (int i = 0; i < 16; ++i) {
        char path[96], type[32] = {0};
        std::snprintf(path, sizeof path, "/sys/devices/system/cpu/cpu0/cache/index%d/type", i);
        FILE* f = std::fopen(path, "r");
        if (!f) continue;
        int ok = std::fscanf(f, "%31s", type);
        std::fclose(f);
        if (ok != 1 || type[0] == 'I') continue;  // instruction caches do not count
        std::snprintf(path, sizeof path, "/sys/devices/system/cpu/cpu0/cache/index%d/size", i);
        f = std::fopen(path, "r");
        if (!f) continue;
        long v = 0;
        char unit = 0;
        int got = std::fscanf(f, "%ld%c", &v, &unit);
        std::fclose(f);
        if (got < 1 || v <= 0) continue;
        if (got == 2 && (unit == 'K' || unit == 'k')) v *= 1024;
        else if (got == 2 && (unit == 'M' || unit == 'm')) v *= 1024 * 1024;
        if (v > best) best = v;
    }
    return best > 0x7fffffffL ? 0x7fffffff : static_cast<int>(best);
}

int largestCache() {
    int s = cacheFromSysfs();
    if (s > 0) return s;
#ifdef _SC_LEVEL3_CACHE_SIZE
    long l3 = sysconf(_SC_LEVEL3_CACHE_SIZE), l2 = sysconf(_SC_LEVEL2_CACHE_SIZE);
    long b = l3 > l2 ? l3 : l2;
    if (b > 0) return b > 0x7fffffffL ? 0x7fffffff : static_cast<int>(b);
#endif
    return 8 * 1024 * 1024;
}

Rvp64u detectFeatures(Rvp32u regs[4]) {
    unsigned a = 0, b = 0, c = 0, d = 0;
    Rvp64u m = 0;
    if (!__get_cpuid(1, &a, &b, &c, &d)) return 0;
    regs[0] = a; regs[1] = b; regs[2] = c; regs[3] = d;
    if (d & (1u << 23)) m |= rvpCpuFeature_MMX;
    if (d & (1u << 25)) m |= rvpCpuFeature_SSE;
    if (d & (1u << 26)) m |= rvpCpuFeature_SSE2;
    if (c & (1u << 0))  m |= rvpCpuFeature_SSE3;
    if (c & (1u << 9))  m |= rvpCpuFeature_SSSE3;
    if (c & (1u << 19)) m |= rvpCpuFeature_SSE41;
    if (c & (1u << 20)) m |= rvpCpuFeature_SSE42;
    if (c & (1u << 23)) m |= rvpCpuFeature_POPCNT;
    bool osxsave = (c & (1u << 27)) != 0;
    unsigned long long xcr0 = 0;
    if (osxsave) {
        unsigned lo, hi;
        __asm__ volatile("xgetbv" : "=a"(lo), "=d"(hi) : "c"(0));
        xcr0 = (static_cast<unsigned long long>(hi) << 32) | lo;
    }
    bool ymm = osxsave && (xcr0 & 0x6) == 0x6;
    bool zmm = ymm && (xcr0 & 0xe0) == 0xe0;
    if (ymm && (c & (1u << 28))) m |= rvpCpuFeature_AVX;
    if (ymm && (c & (1u << 12))) m |= rvpCpuFeature_FMA;
    if (__get_cpuid_count(7, 0, &a, &b, &c, &d)) {
        if ((m & rvpCpuFeature_AVX) && (b & (1u << 5))) m |= rvpCpuFeature_AVX2;
        if (zmm && (b & (1u << 16))) m |= rvpCpuFeature_AVX512F;
        if (zmm && (b & (1u << 30))) m |= rvpCpuFeature_AVX512BW;
        if (zmm && (b & (1u << 17))) m |= rvpCpuFeature_AVX512DQ;
        if (zmm && (b & (1u << 31))) m |= rvpCpuFeature_AVX512VL;
    }
    return m;
}

// Features at or below the level RVPCV_ISA names; all of them when the
// variable is unset or names no level.
Rvp64u capFromEnvironment() {
    const Rvp64u all = ~Rvp64u(0);
    const Rvp64u avx512 = rvpCpuFeature_AVX512F | rvpCpuFeature_AVX512BW | rvpCpuFeature_AVX512DQ |
                          rvpCpuFeature_AVX512VL;
    const Rvp64u aboveSse3 = rvpCpuFeature_SSSE3 | rvpCpuFeature_SSE41 | rvpCpuFeature_SSE42 | rvpCpuFeature_AVX |
                             rvpCpuFeature_AVX2 | rvpCpuFeature_FMA | rvpCpuFeature_POPCNT | avx512;
    const char* v = std::getenv("RVPCV_ISA");
    if (!v) return all;
    if (std::strcmp(v, "sse3") == 0) return ~aboveSse3;
    if (std::strcmp(v, "avx2") == 0) return ~avx512;
    return all;  // "avx512" caps nothing this library knows of
}

struct Cpu {
    Rvp64u detected = 0;
    Rvp64u cap = 0;
    Rvp32u regs[4] = {0, 0, 0, 0};
    Cpu() {
        detected = detectFeatures(regs);
        cap = capFromEnvironment();
    }
};

const Cpu& cpu() {
    static const Cpu c;  // thread-safe one-time detection
    return c;
}

std::atomic<Rvp64u> g_disabled{0};

}  // namespace

extern "C" {

int ownGetNumThreads(void) {
    int n = g_numThreads.load(std::memory_order_relaxed);
    if (n > 0) return n;
    static const int def = processorsAvailable();
    return def;
}

RvpStatus rvpSetNumThreads(int numThreads) {
    if (numThreads < 1 || numThreads > 1024) return rvpStsBadArgErr;
    g_numThreads.store(numThreads, std::memory_order_relaxed);
    return rvpStsNoErr;
}

RvpStatus rvpGetNumThreads(int* pNumThreads) {
    if (!pNumThreads) return rvpStsNullPtrErr;
    *pNumThreads = ownGetNumThreads();
    return rvpStsNoErr;
}

// Read once: the query reads a system file (about 6 us), and threaded calls
// ask for it every time.
int rvpGetNumCoresOnDie(void) {
    static const int cores = [] {
        const long n = sysconf(_SC_NPROCESSORS_ONLN);
        return n > 0 ? static_cast<int>(n) : 1;
    }();
    return cores;
}

RvpStatus rvpGetMaxCacheSizeB(int* pSizeByte) {
    if (!pSizeByte) return rvpStsNullPtrErr;
    static const int size = largestCache();
    *pSizeByte = size;
    return rvpStsNoErr;
}

void* rvpMalloc(int length) {
    if (length <= 0) return nullptr;
    void* p = nullptr;
    if (posix_memalign(&p, 64, static_cast<size_t>(length)) != 0) return nullptr;
    return p;
}

void rvpFree(void* ptr) { std::free(ptr); }

RvpStatus rvpGetCpuFeatures(Rvp64u* pFeaturesMask, Rvp32u* pCpuidInfoRegs) {
    const Cpu& c = cpu();
    if (pCpuidInfoRegs)
        for (int i = 0; i < 4; ++i) pCpuidInfoRegs[i] = c.regs[i];
    if (!pFeaturesMask) return rvpStsNullPtrErr;
    *pFeaturesMask = c.detected;
    return rvpStsNoErr;
}

Rvp64u rvpGetEnabledCpuFeatures(void) {
    const Cpu& c = cpu();
    return c.detected & c.cap & ~g_disabled.load(std::memory_order_relaxed);
}

RvpStatus rvpSetCpuFeatures(Rvp64u mask) {
    g_disabled.store(~mask, std::memory_order_relaxed);
    return rvpStsNoErr;
}

}  // extern "C"
