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
/* pSrcDst += pSrc per pixel, in single precision (integers convert exactly).
 * Masked forms (IMR) add where the mask byte is not zero; a masked-out pixel
 * may have a negative zero turned positive. Statuses: NullPtr, Size, Step,
 * NotEvenStep (accumulator step not a multiple of 4; 16u32f: odd source step). */
RVPAPI RvpStatus rvpiAdd_8u32f_C1IR(const Rvp8u* pSrc, int srcStep, Rvp32f* pSrcDst, int srcDstStep,
                                    RvpiSize roiSize);
RVPAPI RvpStatus rvpiAdd_8s32f_C1IR(const Rvp8s* pSrc, int srcStep, Rvp32f* pSrcDst, int srcDstStep,
                                    RvpiSize roiSize);
RVPAPI RvpStatus rvpiAdd_16u32f_C1IR(const Rvp16u* pSrc, int srcStep, Rvp32f* pSrcDst, int srcDstStep,
                                     RvpiSize roiSize);
RVPAPI RvpStatus rvpiAdd_8u32f_C1IMR(const Rvp8u* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                     Rvp32f* pSrcDst, int srcDstStep, RvpiSize roiSize);
RVPAPI RvpStatus rvpiAdd_8s32f_C1IMR(const Rvp8s* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                     Rvp32f* pSrcDst, int srcDstStep, RvpiSize roiSize);
RVPAPI RvpStatus rvpiAdd_16u32f_C1IMR(const Rvp16u* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                      Rvp32f* pSrcDst, int srcDstStep, RvpiSize roiSize);
RVPAPI RvpStatus rvpiAdd_32f_C1IMR(const Rvp32f* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                   Rvp32f* pSrcDst, int srcDstStep, RvpiSize roiSize);
/* pSrcDst += pSrc * pSrc, the square formed in float. Statuses as rvpiAdd. */
RVPAPI RvpStatus rvpiAddSquare_8u32f_C1IR(const Rvp8u* pSrc, int srcStep, Rvp32f* pSrcDst, int srcDstStep,
                                          RvpiSize roiSize);
RVPAPI RvpStatus rvpiAddSquare_8s32f_C1IR(const Rvp8s* pSrc, int srcStep, Rvp32f* pSrcDst, int srcDstStep,
                                          RvpiSize roiSize);
RVPAPI RvpStatus rvpiAddSquare_16u32f_C1IR(const Rvp16u* pSrc, int srcStep, Rvp32f* pSrcDst, int srcDstStep,
                                           RvpiSize roiSize);
RVPAPI RvpStatus rvpiAddSquare_32f_C1IR(const Rvp32f* pSrc, int srcStep, Rvp32f* pSrcDst, int srcDstStep,
                                        RvpiSize roiSize);
RVPAPI RvpStatus rvpiAddSquare_8u32f_C1IMR(const Rvp8u* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                           Rvp32f* pSrcDst, int srcDstStep, RvpiSize roiSize);
RVPAPI RvpStatus rvpiAddSquare_8s32f_C1IMR(const Rvp8s* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                           Rvp32f* pSrcDst, int srcDstStep, RvpiSize roiSize);
RVPAPI RvpStatus rvpiAddSquare_16u32f_C1IMR(const Rvp16u* pSrc, int srcStep, const Rvp8u* pMask,
                                            int maskStep, Rvp32f* pSrcDst, int srcDstStep, RvpiSize roiSize);
RVPAPI RvpStatus rvpiAddSquare_32f_C1IMR(const Rvp32f* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                         Rvp32f* pSrcDst, int srcDstStep, RvpiSize roiSize);
/* pSrcDst += pSrc1 * pSrc2, both converted to float first. Statuses as rvpiAdd. */
RVPAPI RvpStatus rvpiAddProduct_8u32f_C1IR(const Rvp8u* pSrc1, int src1Step, const Rvp8u* pSrc2,
                                           int src2Step, Rvp32f* pSrcDst, int srcDstStep, RvpiSize roiSize);
RVPAPI RvpStatus rvpiAddProduct_8s32f_C1IR(const Rvp8s* pSrc1, int src1Step, const Rvp8s* pSrc2,
                                           int src2Step, Rvp32f* pSrcDst, int srcDstStep, RvpiSize roiSize);
RVPAPI RvpStatus rvpiAddProduct_16u32f_C1IR(const Rvp16u* pSrc1, int src1Step, const Rvp16u* pSrc2,
                                            int src2Step, Rvp32f* pSrcDst, int srcDstStep, RvpiSize roiSize);
RVPAPI RvpStatus rvpiAddProduct_32f_C1IR(const Rvp32f* pSrc1, int src1Step, const Rvp32f* pSrc2,
                                         int src2Step, Rvp32f* pSrcDst, int srcDstStep, RvpiSize roiSize);
RVPAPI RvpStatus rvpiAddProduct_8u32f_C1IMR(const Rvp8u* pSrc1, int src1Step, const Rvp8u* pSrc2,
                                            int src2Step, const Rvp8u* pMask, int maskStep, Rvp32f* pSrcDst,
                                            int srcDstStep, RvpiSize roiSize);
RVPAPI RvpStatus rvpiAddProduct_8s32f_C1IMR(const Rvp8s* pSrc1, int src1Step, const Rvp8s* pSrc2,
                                            int src2Step, const Rvp8u* pMask, int maskStep, Rvp32f* pSrcDst,
                                            int srcDstStep, RvpiSize roiSize);
RVPAPI RvpStatus rvpiAddProduct_16u32f_C1IMR(const Rvp16u* pSrc1, int src1Step, const Rvp16u* pSrc2,
                                             int src2Step, const Rvp8u* pMask, int maskStep, Rvp32f* pSrcDst,
                                             int srcDstStep, RvpiSize roiSize);
RVPAPI RvpStatus rvpiAddProduct_32f_C1IMR(const Rvp32f* pSrc1, int src1Step, const Rvp32f* pSrc2,
                                          int src2Step, const Rvp8u* pMask, int maskStep, Rvp32f* pSrcDst,
                                          int srcDstStep, RvpiSize roiSize);
/* pSrcDst = pSrcDst + (pSrc - pSrcDst) * alpha: a running average; alpha is
 * used as given, without a range test. Statuses as rvpiAdd. */
RVPAPI RvpStatus rvpiAddWeighted_8u32f_C1IR(const Rvp8u* pSrc, int srcStep, Rvp32f* pSrcDst, int srcDstStep,
                                            RvpiSize roiSize, Rvp32f alpha);
RVPAPI RvpStatus rvpiAddWeighted_8s32f_C1IR(const Rvp8s* pSrc, int srcStep, Rvp32f* pSrcDst, int srcDstStep,
                                            RvpiSize roiSize, Rvp32f alpha);
RVPAPI RvpStatus rvpiAddWeighted_16u32f_C1IR(const Rvp16u* pSrc, int srcStep, Rvp32f* pSrcDst,
                                             int srcDstStep, RvpiSize roiSize, Rvp32f alpha);
RVPAPI RvpStatus rvpiAddWeighted_32f_C1IR(const Rvp32f* pSrc, int srcStep, Rvp32f* pSrcDst, int srcDstStep,
                                          RvpiSize roiSize, Rvp32f alpha);
RVPAPI RvpStatus rvpiAddWeighted_8u32f_C1IMR(const Rvp8u* pSrc, int srcStep, const Rvp8u* pMask,
                                             int maskStep, Rvp32f* pSrcDst, int srcDstStep, RvpiSize roiSize,
                                             Rvp32f alpha);
RVPAPI RvpStatus rvpiAddWeighted_8s32f_C1IMR(const Rvp8s* pSrc, int srcStep, const Rvp8u* pMask,
                                             int maskStep, Rvp32f* pSrcDst, int srcDstStep, RvpiSize roiSize,
                                             Rvp32f alpha);
RVPAPI RvpStatus rvpiAddWeighted_16u32f_C1IMR(const Rvp16u* pSrc, int srcStep, const Rvp8u* pMask,
                                              int maskStep, Rvp32f* pSrcDst, int srcDstStep,
                                              RvpiSize roiSize, Rvp32f alpha);
RVPAPI RvpStatus rvpiAddWeighted_32f_C1IMR(const Rvp32f* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                           Rvp32f* pSrcDst, int srcDstStep, RvpiSize roiSize, Rvp32f alpha);
/* pDst = pSrc2 + (pSrc1 - pSrc2) * alpha, on the calling thread.
 * Statuses: NullPtr, Size, Step, NotEvenStep. */
RVPAPI RvpStatus rvpiAddWeighted_32f_C1R(const Rvp32f* pSrc1, int src1Step, const Rvp32f* pSrc2,
                                         int src2Step, Rvp32f* pDst, int dstStep, RvpiSize roiSize,
                                         Rvp32f alpha);

/* ---- Row and column pipelines ----------------------------------------- */

/* ---- Fixed-kernel border filters -------------------------------------- */

/* ---- Structuring-element morphology ----------------------------------- */

/* ---- Min and max filters ---------------------------------------------- */

/* ---- Morphological reconstruction ------------------------------------- */

/* ---- Canny edge detector ---------------------------------------------- */

/* ---- Corner responses ------------------------------------------------- */

/* ---- Integral images and rectangle deviation -------------------------- */

/* ---- Haar classifiers ------------------------------------------------- */

#ifdef __cplusplus
}
#endif

#endif /* RVPCV_H */
