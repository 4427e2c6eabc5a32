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

/* ---- Min and max filters ---------------------------------------------- */

/* ---- Morphological reconstruction ------------------------------------- */

/* ---- Canny edge detector ---------------------------------------------- */
/* Bytes of scratch that rvpiCanny_* needs for a roiSize region (32-bit,
 * wrapping; sides of 0xfffd or more need the larger, 32-bit-stack size).
 * Statuses: NullPtr, Size. */
RVPAPI RvpStatus rvpiCannyGetSize(RvpiSize roiSize, int* pBufferSize);
/* Edge map (0xFF edge, 0 elsewhere) from x and y derivatives: L1 magnitude,
 * non-maximum suppression, hysteresis between lowThresh and highThresh
 * (16s form: thresholds truncated to integers). pBuffer holds
 * rvpiCannyGetSize bytes; runs on the calling thread. Statuses: NullPtr,
 * Size, Step, NotEvenStep (the derivative steps), BadArg (lowThresh < 0 or
 * highThresh < lowThresh). */
RVPAPI RvpStatus rvpiCanny_16s8u_C1R(const Rvp16s* pSrcDx, int srcDxStep, const Rvp16s* pSrcDy, int srcDyStep,
                                     Rvp8u* pDstEdges, int dstEdgeStep, RvpiSize roiSize, Rvp32f lowThresh,
                                     Rvp32f highThresh, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiCanny_32f8u_C1R(const Rvp32f* pSrcDx, int srcDxStep, const Rvp32f* pSrcDy, int srcDyStep,
                                     Rvp8u* pDstEdges, int dstEdgeStep, RvpiSize roiSize, Rvp32f lowThresh,
                                     Rvp32f highThresh, Rvp8u* pBuffer);

/* ---- Corner responses ------------------------------------------------- */

/* ---- Integral images and rectangle deviation -------------------------- */

/* ---- Haar classifiers ------------------------------------------------- */

#ifdef __cplusplus
}
#endif

#endif /* RVPCV_H */
