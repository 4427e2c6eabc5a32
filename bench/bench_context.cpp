// Puts the kernel level the library chose at load into the benchmark context
// (console header and JSON "context"), so that every table says which level
// it measured; RVPCV_ISA caps it, for example RVPCV_ISA=avx2.
#include <benchmark/benchmark.h>

#include "rvpcore.h"

namespace {
struct RecordLevel {
    RecordLevel() {
        Rvp64u detected = 0;
        rvpGetCpuFeatures(&detected, nullptr);
        benchmark::AddCustomContext("rvpcv_kernels", rvpDispatchLevelName(rvpDispatchLevel(rvpGetEnabledCpuFeatures())));
        benchmark::AddCustomContext("rvpcv_processor", rvpDispatchLevelName(rvpDispatchLevel(detected)));
    }
} recordLevel;
}  // namespace
