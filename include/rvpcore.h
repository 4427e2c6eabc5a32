/*
 * rvpcore: the machine services rvpCV asks for: permitted thread count,
 * core count, largest cache size, aligned allocation and CPU features.
 * The thread count is the one setting a user may change; it is read by
 * every threaded call at its start.
 */
#ifndef RVPCORE_H
#define RVPCORE_H

#include "rvpcv.h"

#ifdef __cplusplus
extern "C" {
#endif

#if defined(RVPCORE_BUILDING_LIBRARY)
#  define RVPCOREAPI __attribute__((visibility("default")))
#else
#  define RVPCOREAPI
#endif

/* CPU feature bits of rvpGetCpuFeatures / rvpGetEnabledCpuFeatures. */
#define rvpCpuFeature_MMX      0x00000001ULL
#define rvpCpuFeature_SSE      0x00000002ULL
#define rvpCpuFeature_SSE2     0x00000004ULL
#define rvpCpuFeature_SSE3     0x00000008ULL
#define rvpCpuFeature_SSSE3    0x00000010ULL
#define rvpCpuFeature_SSE41    0x00000020ULL
#define rvpCpuFeature_SSE42    0x00000040ULL
#define rvpCpuFeature_AVX      0x00000080ULL  /* includes OS support of the YMM state */
#define rvpCpuFeature_AVX2     0x00000100ULL
#define rvpCpuFeature_FMA      0x00000200ULL
#define rvpCpuFeature_POPCNT   0x00000400ULL
#define rvpCpuFeature_AVX512F  0x00000800ULL  /* includes OS support of the ZMM state */
#define rvpCpuFeature_AVX512BW 0x00001000ULL
#define rvpCpuFeature_AVX512DQ 0x00002000ULL
#define rvpCpuFeature_AVX512VL 0x00004000ULL

/* Threads the library may use. Default: the processors this process may run on. */
RVPCOREAPI int       ownGetNumThreads(void);
/* Sets the permitted thread count, 1..1024; otherwise rvpStsBadArgErr. */
RVPCOREAPI RvpStatus rvpSetNumThreads(int numThreads);
/* Reads the permitted thread count; rvpStsNullPtrErr for a null pointer. */
RVPCOREAPI RvpStatus rvpGetNumThreads(int* pNumThreads);
/* Number of processors on line (at least 1). */
RVPCOREAPI int       rvpGetNumCoresOnDie(void);
/* Size in bytes of the largest data cache; falls back to 8 MiB when the
 * machine does not tell. rvpStsNullPtrErr for a null pointer. */
RVPCOREAPI RvpStatus rvpGetMaxCacheSizeB(int* pSizeByte);
/* At least 32-byte aligned block of length bytes; null for length <= 0 or failure. */
RVPCOREAPI void*     rvpMalloc(int length);
RVPCOREAPI void      rvpFree(void* ptr);
/* Detects the processor (once) and stores the detected feature bits in
 * *pFeaturesMask and, when pCpuidInfoRegs is not null, the four registers of
 * CPUID leaf 1. A null mask pointer still detects and gives rvpStsNullPtrErr. */
RVPCOREAPI RvpStatus rvpGetCpuFeatures(Rvp64u* pFeaturesMask, Rvp32u* pCpuidInfoRegs);
/* Detected features, less those disabled with rvpSetCpuFeatures and those
 * above the cap named by the environment variable RVPCV_ISA. */
RVPCOREAPI Rvp64u    rvpGetEnabledCpuFeatures(void);
/* Restricts the enabled features to mask & detected. rvpCV reads the enabled
 * set once, when it is loaded. */
RVPCOREAPI RvpStatus rvpSetCpuFeatures(Rvp64u mask);

/* Dispatch levels. rvpCV runs one kernel level, chosen when it is loaded from
 * the enabled features: "avx512" when AVX-512 F, BW, DQ and VL are all
 * enabled, else "avx2" when AVX2 is, else the SSE3 baseline "sse3"; every
 * level gives the same results.
 * RVPCV_ISA=sse3|avx2|avx512 in the environment caps the enabled features
 * at that level (read once, at the first detection): a cap above what the
 * processor has, and any other value, change nothing. */
#define rvpCpuFeatures_AVX512Set \
    (rvpCpuFeature_AVX2 | rvpCpuFeature_AVX512F | rvpCpuFeature_AVX512BW | rvpCpuFeature_AVX512DQ | \
     rvpCpuFeature_AVX512VL)
/* The level rvpCV runs for an enabled feature set: 0 sse3, 1 avx2, 2 avx512. */
static inline int rvpDispatchLevel(Rvp64u enabled) {
    if ((enabled & rvpCpuFeatures_AVX512Set) == rvpCpuFeatures_AVX512Set) return 2;
    return (enabled & rvpCpuFeature_AVX2) ? 1 : 0;
}
static inline const char* rvpDispatchLevelName(int level) {
    return level == 2 ? "avx512" : level == 1 ? "avx2" : "sse3";
}

#ifdef __cplusplus
}
#endif

#endif /* RVPCORE_H */
