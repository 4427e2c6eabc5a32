// The structuring-element state block and its mask analysis, shared with the
// families that apply a prepared state (inpainting) and with the tests.
#ifndef RVCV_MORPH_H
#define RVCV_MORPH_H

#include "rvpcv.h"

// The analysed shape. The run arrays exist for the run decomposition only;
// the rectangle keeps just the first six fields.
struct RvpiMorphShape {
    int width, height, anchorX, anchorY;
    int carried0, carried1;  // carried along, never read
    int rowCount, runCount;
    int* pRowIndex;   // each non-empty row, counted from the first one
    int* pRowRun;     // each row's entry in the run arrays
    int* pRunLength;  // strictly decreasing
    int* pRunOffset;  // anchor column minus the run's first column
};

struct RvpiMorphState {
    Rvp8u* pMaskCopy;
    void* pErodeMask;
    void* pDilateMask;
    void* pWork;
    RvpiMorphShape* pShape;
    int maskWidth, maskHeight;
    int anchorX, anchorY;
    int rightSpan, bottomSpan;
    int padStep;
    int stateSize;
    int sampleType;  // 1: 8u, 13: 32f
    int channels;
    int roiWidth;
    int reserved;  // -1
    int shapeKind;  // 0 general, 1 rectangle, 2 run decomposition, 3 empty
};

static_assert(sizeof(RvpiMorphShape) == 64, "shape fills bytes 96 to 160 of the block");
static_assert(sizeof(RvpiMorphState) == 96, "the head takes the first 96 bytes of the block");

namespace rvcv {

enum MorphKind { kMorphGeneral = 0, kMorphRect = 1, kMorphRuns = 2, kMorphEmpty = 3 };
constexpr int kSample8u = 1, kSample32f = 13;

// Result of the mask analysis; the arrays point into the caller's scratch.
struct MorphAnalysis {
    int kind;
    int width, height, anchorX, anchorY;
    int rowCount, runCount;
    const int* rowIndex;
    const int* rowRun;
    const int* runLength;
    const int* runOffset;
};

// rows: 6 * H ints of scratch; shape: 16 * H + 64 bytes of scratch.
MorphAnalysis ownCheckKernel(const Rvp8u* mask, int W, int H, int ax, int ay, int* rows, Rvp8u* shape);

// mode 0 reports the size, 1 builds in *ppState, 2 allocates and builds.
RvpStatus ownMorphologyInitAlloc(int sampleType, int channels, int roiWidth, const Rvp8u* pMask, RvpiSize maskSize,
                                 RvpiPoint anchor, RvpiMorphState** ppState, int* pSize, int mode);

}  // namespace rvcv

#endif
