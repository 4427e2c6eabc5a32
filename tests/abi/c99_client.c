/* A C99 program against the public headers and the shared objects: the
 * header compiles as C, the exported names resolve, and a call works. */
#include "rvpcore.h"
#include "rvpcv.h"

#include <stdio.h>
#include <string.h>

int main(void) {
    const RvpLibraryVersion* v = rvpcvGetLibVersion();
    Rvp8u a[6] = {1, 200, 3, 4, 5, 6}, b[6] = {3, 100, 3, 9, 0, 6}, d[6];
    RvpiSize roi = {3, 2};
    int n = 0;
    if (v == NULL || v->major != 7 || strcmp(v->name, "rvpCV SSE3 (m7)") != 0) return 1;
    if (rvpiAbsDiff_8u_C1R(a, 3, b, 3, d, 3, roi) != rvpStsNoErr) return 2;
    if (d[0] != 2 || d[1] != 100 || d[2] != 0 || d[3] != 5 || d[4] != 5 || d[5] != 0) return 3;
    if (rvpiAbsDiff_8u_C1R(NULL, 3, b, 3, d, 3, roi) != rvpStsNullPtrErr) return 4;
    if (rvpGetNumThreads(&n) != rvpStsNoErr || n < 1) return 5;
    printf("ok %s %s\n", v->name, v->version);
    return 0;
}
