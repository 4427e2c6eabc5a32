// The library's constant version record.
#include "rvcvframe.h"

namespace {
const RvpLibraryVersion kVersion = {
    7, 1, 1, 37466, {'m', '7', '\0', '\0'}, "rvpCV SSE3 (m7)", "7.1.1 (r37466)", "Sep 24 2012",
};
}

RVCV_EXPORT const RvpLibraryVersion* rvpcvGetLibVersion(void) { return &kVersion; }
