// Load-time routine: makes the core library detect the processor, records
// whether the CPU could run a merged multi-build object (a flag nothing here
// reads), and chooses this build's kernel level once.
#include "rvcvcpu.h"
#include "rvcvframe.h"

extern "C" {
int rvpJumpIndexForMergedDLL = 0;
}

namespace rvcv {
namespace {
int g_isa = 0;            // set at load; changed only by the test hook
bool g_loaded = false;

// The enabled set already carries the RVPCV_ISA cap and rvpSetCpuFeatures.
Isa bestIsa() { return static_cast<Isa>(rvpDispatchLevel(rvpGetEnabledCpuFeatures())); }
}  // namespace

Isa activeIsa() { return static_cast<Isa>(g_isa); }

bool isaAvailable(Isa isa) {
    return isa == Isa::M7 || (isa >= Isa::M7 && isa <= bestIsa());
}

bool forceIsa(Isa isa) {
    if (!isaAvailable(isa)) return false;
    g_isa = static_cast<int>(isa);
    return true;
}
}  // namespace rvcv

extern "C" int ownInitLibrary(void) {
    rvpGetCpuFeatures(nullptr, nullptr);  // result ignored: this only makes the core detect
    const Rvp64u enabled = rvpGetEnabledCpuFeatures();
    rvpJumpIndexForMergedDLL = ((enabled & 0x10) && (enabled & 0x20)) ? 1 : 0;
    if (!rvcv::g_loaded) {
        rvcv::g_isa = static_cast<int>(rvcv::bestIsa());
        rvcv::g_loaded = true;
    }
    return 1;
}

__attribute__((constructor)) static void rvcvOnLoad() { ownInitLibrary(); }
