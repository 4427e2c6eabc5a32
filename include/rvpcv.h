/*
 * rvpCV: computer-vision primitives over images held in the caller's memory.
 *
 * Every function returns an RvpStatus (0 success, negative error with nothing
 * written, positive warning with a usable result), except rvpcvGetLibVersion.
 * Arguments are tested in the order: null pointers, sizes, steps, step
 * alignment, other values; the first failing test decides. Steps are signed
 * byte counts between row starts whatever the sample type.
 *
 * This header compiles as C99 and as C++.
 */
#ifndef RVPCV_H
#define RVPCV_H

#ifdef __cplusplus
extern "C" {
#endif

#if defined(RVPCV_BUILDING_LIBRARY)
#  define RVPAPI __attribute__((visibility("default")))
#else
#  define RVPAPI
#endif

/* ---- Sample types ---------------------------------------------------- */
typedef unsigned char      Rvp8u;
typedef signed char        Rvp8s;
typedef unsigned short     Rvp16u;
typedef short              Rvp16s;
typedef unsigned int       Rvp32u;
typedef int                Rvp32s;
typedef float              Rvp32f;
typedef long long          Rvp64s;
typedef unsigned long long Rvp64u;
typedef double             Rvp64f;

/* ---- Geometry --------------------------------------------------------- */
typedef struct { int width; int height; } RvpiSize;
typedef struct { int x; int y; } RvpiPoint;
typedef struct { int x; int y; int width; int height; } RvpiRect;

/* ---- Version record --------------------------------------------------- */
typedef struct {
    int         major;
    int         minor;
    int         majorBuild;
    int         build;
    char        targetCpu[4];
    const char* name;
    const char* version;
    const char* buildDate;
} RvpLibraryVersion;

/* ---- Status codes ----------------------------------------------------- */
typedef int RvpStatus;

enum {
    rvpStsSymKernelWrn       = 38,    /* pyramid layer kernel not symmetric; state valid */
    rvpStsLineListFullWrn    = 33,    /* more lines found than the list holds */
    rvpStsBufferSizeWrn      = 12,    /* a computed buffer size does not fit 32 bits */
    rvpStsDivByZero          = 6,     /* relative norm with zero denominator */
    rvpStsSqrtNegArg         = 3,     /* square root of a negative element */
    rvpStsNoErr              = 0,
    rvpStsLineLengthErr      = -2,
    rvpStsBadArgErr          = -5,
    rvpStsSizeErr            = -6,
    rvpStsRangeErr           = -7,
    rvpStsNullPtrErr         = -8,
    rvpStsMemAllocErr        = -9,
    rvpStsOutOfRangeErr      = -11,
    rvpStsInterpolationErr   = -12,
    rvpStsStepErr            = -14,
    rvpStsMaskSizeErr        = -33,
    rvpStsAnchorErr          = -34,
    rvpStsCOIErr             = -52,
    rvpStsChannelErr         = -53,
    rvpStsMetricErr          = -56,
    rvpStsNotEvenStepErr     = -108,
    rvpStsUnsupportedModeErr = -9999
};

/* ---- Border types ----------------------------------------------------- */
/* Low four bits pick the extension; the flags say which sides are real
 * memory that may be read instead of extended.
 *   constant   vvv|abcd|vvv     replicate  aaa|abcd|ddd
 *   wrap       bcd|abcd|abc     mirror     dcb|abcd|cba (edge not repeated)
 *   mirror-repeat  cba|abcd|dcb (edge repeated)
 * On a one-sample axis mirror acts like mirror-repeat. */
enum {
    rvpBorderConst     = 0,
    rvpBorderRepl      = 1,
    rvpBorderWrap      = 2,
    rvpBorderMirror    = 3,
    rvpBorderMirrorR   = 4,
    rvpBorderInMem     = 6,
    rvpBorderInMemTop    = 0x10,
    rvpBorderInMemBottom = 0x20,
    rvpBorderInMemLeft   = 0x40,
    rvpBorderInMemRight  = 0x80
};

/* ---- Version ---------------------------------------------------------- */
/* Pointer to the library's constant version record; never freed. */
RVPAPI const RvpLibraryVersion* rvpcvGetLibVersion(void);

/* ---- Absolute difference ---------------------------------------------- */
/* pDst = |pSrc1 - pSrc2| per sample (32f: the difference with its sign bit
 * cleared). Statuses: NullPtr, Size, Step, NotEvenStep (16u, 32f). */
RVPAPI RvpStatus rvpiAbsDiff_8u_C1R(const Rvp8u* pSrc1, int src1Step, const Rvp8u* pSrc2, int src2Step,
                                    Rvp8u* pDst, int dstStep, RvpiSize roiSize);
RVPAPI RvpStatus rvpiAbsDiff_8u_C3R(const Rvp8u* pSrc1, int src1Step, const Rvp8u* pSrc2, int src2Step,
                                    Rvp8u* pDst, int dstStep, RvpiSize roiSize);
RVPAPI RvpStatus rvpiAbsDiff_16u_C1R(const Rvp16u* pSrc1, int src1Step, const Rvp16u* pSrc2, int src2Step,
                                     Rvp16u* pDst, int dstStep, RvpiSize roiSize);
RVPAPI RvpStatus rvpiAbsDiff_32f_C1R(const Rvp32f* pSrc1, int src1Step, const Rvp32f* pSrc2, int src2Step,
                                     Rvp32f* pDst, int dstStep, RvpiSize roiSize);
/* pDst = |pSrc - value|; 8u clamps value to 0..255, 16u to 0..65535 (no status). */
RVPAPI RvpStatus rvpiAbsDiffC_8u_C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                     RvpiSize roiSize, int value);
RVPAPI RvpStatus rvpiAbsDiffC_16u_C1R(const Rvp16u* pSrc, int srcStep, Rvp16u* pDst, int dstStep,
                                      RvpiSize roiSize, int value);
RVPAPI RvpStatus rvpiAbsDiffC_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                      RvpiSize roiSize, Rvp32f value);

/* ---- Accumulation ----------------------------------------------------- */

/* ---- Row and column pipelines ----------------------------------------- */

/* ---- Fixed-kernel border filters -------------------------------------- */

/* ---- Structuring-element morphology ----------------------------------- */
/* A mask analysed once into a state block that holds pointers into itself
 * (never copy or move it). Records made by InitAlloc go back through
 * rvpiMorphologyFree; Init builds in the caller's memory. */
typedef struct RvpiMorphState RvpiMorphState;
/* Bytes of the state for this mask analysed with the centred anchor
 * (maskSize.width / 2, maskSize.height / 2). Another anchor given to Init can
 * need more. Statuses: NullPtr (pMask, then pSize), Size (roiWidth or mask
 * size below 1), MemAlloc. */
RVPAPI RvpStatus rvpiMorphologyGetSize_8u_C1R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, int* pSize);
RVPAPI RvpStatus rvpiMorphologyGetSize_8u_C3R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, int* pSize);
RVPAPI RvpStatus rvpiMorphologyGetSize_8u_C4R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, int* pSize);
RVPAPI RvpStatus rvpiMorphologyGetSize_32f_C1R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, int* pSize);
RVPAPI RvpStatus rvpiMorphologyGetSize_32f_C3R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, int* pSize);
RVPAPI RvpStatus rvpiMorphologyGetSize_32f_C4R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, int* pSize);
/* Build the state in the caller's memory (Init) or in a new block (InitAlloc).
 * roiWidth is the widest image the state accepts. The mask is one byte a cell,
 * set when non-zero, also for 32f. Statuses: NullPtr (pMask), Size (roiWidth
 * or mask size below 1), Anchor (anchor outside the mask), MemAlloc, NullPtr
 * (pState / ppState), MemAlloc. */
RVPAPI RvpStatus rvpiMorphologyInit_8u_C1R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, RvpiPoint anchor,
                                          RvpiMorphState* pState);
RVPAPI RvpStatus rvpiMorphologyInitAlloc_8u_C1R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, RvpiPoint anchor,
                                               RvpiMorphState** ppState);
RVPAPI RvpStatus rvpiMorphologyInit_8u_C3R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, RvpiPoint anchor,
                                          RvpiMorphState* pState);
RVPAPI RvpStatus rvpiMorphologyInitAlloc_8u_C3R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, RvpiPoint anchor,
                                               RvpiMorphState** ppState);
RVPAPI RvpStatus rvpiMorphologyInit_8u_C4R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, RvpiPoint anchor,
                                          RvpiMorphState* pState);
RVPAPI RvpStatus rvpiMorphologyInitAlloc_8u_C4R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, RvpiPoint anchor,
                                               RvpiMorphState** ppState);
RVPAPI RvpStatus rvpiMorphologyInit_32f_C1R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, RvpiPoint anchor,
                                          RvpiMorphState* pState);
RVPAPI RvpStatus rvpiMorphologyInitAlloc_32f_C1R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, RvpiPoint anchor,
                                               RvpiMorphState** ppState);
RVPAPI RvpStatus rvpiMorphologyInit_32f_C3R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, RvpiPoint anchor,
                                          RvpiMorphState* pState);
RVPAPI RvpStatus rvpiMorphologyInitAlloc_32f_C3R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, RvpiPoint anchor,
                                               RvpiMorphState** ppState);
RVPAPI RvpStatus rvpiMorphologyInit_32f_C4R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, RvpiPoint anchor,
                                          RvpiMorphState* pState);
RVPAPI RvpStatus rvpiMorphologyInitAlloc_32f_C4R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, RvpiPoint anchor,
                                               RvpiMorphState** ppState);
/* Releases a block made by InitAlloc. Statuses: NullPtr. */
RVPAPI RvpStatus rvpiMorphologyFree(RvpiMorphState* pState);
/* dst(x, y) = max (dilate) or min (erode) of src(clamp(x + c - ax), clamp(y + r - ay))
 * over the set cells (c, r); the mask is not mirrored. An empty mask copies.
 * pSrc and pDst must not overlap. borderType must be rvpBorderRepl. Statuses:
 * NullPtr, Size, Step, NotEvenStep (32f), BadArg (borderType, state of another
 * layout), Size (width above the state's roiWidth). */
RVPAPI RvpStatus rvpiDilateBorderReplicate_8u_C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep, RvpiSize roiSize,
                                                 int borderType, RvpiMorphState* pState);
RVPAPI RvpStatus rvpiErodeBorderReplicate_8u_C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep, RvpiSize roiSize,
                                                int borderType, RvpiMorphState* pState);
RVPAPI RvpStatus rvpiDilateBorderReplicate_8u_C3R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep, RvpiSize roiSize,
                                                 int borderType, RvpiMorphState* pState);
RVPAPI RvpStatus rvpiErodeBorderReplicate_8u_C3R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep, RvpiSize roiSize,
                                                int borderType, RvpiMorphState* pState);
RVPAPI RvpStatus rvpiDilateBorderReplicate_8u_C4R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep, RvpiSize roiSize,
                                                 int borderType, RvpiMorphState* pState);
RVPAPI RvpStatus rvpiErodeBorderReplicate_8u_C4R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep, RvpiSize roiSize,
                                                int borderType, RvpiMorphState* pState);
RVPAPI RvpStatus rvpiDilateBorderReplicate_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep, RvpiSize roiSize,
                                                 int borderType, RvpiMorphState* pState);
RVPAPI RvpStatus rvpiErodeBorderReplicate_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep, RvpiSize roiSize,
                                                int borderType, RvpiMorphState* pState);
RVPAPI RvpStatus rvpiDilateBorderReplicate_32f_C3R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep, RvpiSize roiSize,
                                                 int borderType, RvpiMorphState* pState);
RVPAPI RvpStatus rvpiErodeBorderReplicate_32f_C3R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep, RvpiSize roiSize,
                                                int borderType, RvpiMorphState* pState);
RVPAPI RvpStatus rvpiDilateBorderReplicate_32f_C4R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep, RvpiSize roiSize,
                                                 int borderType, RvpiMorphState* pState);
RVPAPI RvpStatus rvpiErodeBorderReplicate_32f_C4R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep, RvpiSize roiSize,
                                                int borderType, RvpiMorphState* pState);

/* ---- Min and max filters ---------------------------------------------- */
/* Scratch bytes for the filters below: 2*H*(roiWidth*pixelBytes + 32) + 32 + 32*H
 * for a mask of height H, the same for Min and Max. Statuses: NullPtr, Size
 * (roiWidth below 1), MaskSize. */
RVPAPI RvpStatus rvpiFilterMaxGetBufferSize_8u_C1R(int roiWidth, RvpiSize maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterMaxGetBufferSize_8u_C3R(int roiWidth, RvpiSize maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterMaxGetBufferSize_8u_C4R(int roiWidth, RvpiSize maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterMaxGetBufferSize_32f_C1R(int roiWidth, RvpiSize maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterMaxGetBufferSize_32f_C3R(int roiWidth, RvpiSize maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterMaxGetBufferSize_32f_C4R(int roiWidth, RvpiSize maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterMinGetBufferSize_8u_C1R(int roiWidth, RvpiSize maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterMinGetBufferSize_8u_C3R(int roiWidth, RvpiSize maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterMinGetBufferSize_8u_C4R(int roiWidth, RvpiSize maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterMinGetBufferSize_32f_C1R(int roiWidth, RvpiSize maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterMinGetBufferSize_32f_C3R(int roiWidth, RvpiSize maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterMinGetBufferSize_32f_C4R(int roiWidth, RvpiSize maskSize, int* pBufferSize);
/* dst(x, y) = max or min of src over columns x - ax .. x - ax + W - 1 and rows
 * y - ay .. y - ay + H - 1, clamped to the image (replicated border). On
 * images of at most 16384 bytes the 8u C4 and 32f C1 forms shorten masks of
 * even width 8 to 14 by their rightmost column (to the left of the anchor
 * when the anchor is the last column, the first output column then holding
 * 255 / FLT_MAX for Min, 0 / -FLT_MAX for Max), and masks of width 16 or more
 * to 15 columns, when the image is at least twice as wide as the mask.
 * Statuses: NullPtr, Size, MaskSize, Anchor, Step, NotEvenStep (32f). */
RVPAPI RvpStatus rvpiFilterMaxBorderReplicate_8u_C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
        RvpiSize roiSize, RvpiSize maskSize, RvpiPoint anchor, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterMaxBorderReplicate_8u_C3R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
        RvpiSize roiSize, RvpiSize maskSize, RvpiPoint anchor, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterMaxBorderReplicate_8u_C4R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
        RvpiSize roiSize, RvpiSize maskSize, RvpiPoint anchor, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterMaxBorderReplicate_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
        RvpiSize roiSize, RvpiSize maskSize, RvpiPoint anchor, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterMaxBorderReplicate_32f_C3R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
        RvpiSize roiSize, RvpiSize maskSize, RvpiPoint anchor, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterMaxBorderReplicate_32f_C4R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
        RvpiSize roiSize, RvpiSize maskSize, RvpiPoint anchor, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterMinBorderReplicate_8u_C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
        RvpiSize roiSize, RvpiSize maskSize, RvpiPoint anchor, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterMinBorderReplicate_8u_C3R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
        RvpiSize roiSize, RvpiSize maskSize, RvpiPoint anchor, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterMinBorderReplicate_8u_C4R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
        RvpiSize roiSize, RvpiSize maskSize, RvpiPoint anchor, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterMinBorderReplicate_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
        RvpiSize roiSize, RvpiSize maskSize, RvpiPoint anchor, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterMinBorderReplicate_32f_C3R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
        RvpiSize roiSize, RvpiSize maskSize, RvpiPoint anchor, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterMinBorderReplicate_32f_C4R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
        RvpiSize roiSize, RvpiSize maskSize, RvpiPoint anchor, Rvp8u* pBuffer);

/* ---- Morphological reconstruction ------------------------------------- */

/* ---- Canny edge detector ---------------------------------------------- */

/* ---- Corner responses ------------------------------------------------- */

/* ---- Integral images and rectangle deviation -------------------------- */

/* ---- Haar classifiers ------------------------------------------------- */

#ifdef __cplusplus
}
#endif

#endif /* RVPCV_H */
