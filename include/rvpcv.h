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

/* ---- Corner responses ------------------------------------------------- */

/* ---- Integral images and rectangle deviation -------------------------- */
/* Upright summed-area table of an 8-bit image: (W+1) x (H+1) elements, row 0
 * and column 0 hold val, table[y+1][x+1] = table[y][x+1] + sum of row y up to
 * x. 32s wraps; 32f adds the integer row sum to the row above in float.
 * Table steps of at least 4W+4 bytes, multiples of 4.
 * Statuses: NullPtr, Size, Step, NotEvenStep. */
RVPAPI RvpStatus rvpiIntegral_8u32s_C1R(const Rvp8u* pSrc, int srcStep, Rvp32s* pDst, int dstStep,
                                        RvpiSize roiSize, Rvp32s val);
RVPAPI RvpStatus rvpiIntegral_8u32f_C1R(const Rvp8u* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                        RvpiSize roiSize, Rvp32f val);
/* Sum table and table of squares in one pass (squares start at valSqr; the
 * 64f table needs steps of at least 8W+8 bytes, multiples of 8).
 * Statuses: NullPtr, Size, Step, NotEvenStep. */
RVPAPI RvpStatus rvpiSqrIntegral_8u32s_C1R(const Rvp8u* pSrc, int srcStep, Rvp32s* pDst, int dstStep,
                                           Rvp32s* pSqr, int sqrStep, RvpiSize roiSize, Rvp32s val, Rvp32s valSqr);
RVPAPI RvpStatus rvpiSqrIntegral_8u32s64f_C1R(const Rvp8u* pSrc, int srcStep, Rvp32s* pDst, int dstStep,
                                              Rvp64f* pSqr, int sqrStep, RvpiSize roiSize, Rvp32s val,
                                              Rvp64f valSqr);
RVPAPI RvpStatus rvpiSqrIntegral_8u32f64f_C1R(const Rvp8u* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                              Rvp64f* pSqr, int sqrStep, RvpiSize roiSize, Rvp32f val,
                                              Rvp64f valSqr);
/* 45-degree table: (W+2) x (H+2) elements, rows 0 and 1 hold val. The 32f
 * forms add column W onto the destination's previous content (pass a zeroed
 * column W); rvpiTiltedSqrIntegral_8u32s_C1R reads the sample just right of
 * each source row (one byte past the image on the last row). Table steps of
 * at least 4W+8 (8W+16 for 64f) bytes. Statuses: NullPtr, Size, Step, NotEvenStep. */
RVPAPI RvpStatus rvpiTiltedIntegral_8u32s_C1R(const Rvp8u* pSrc, int srcStep, Rvp32s* pDst, int dstStep,
                                              RvpiSize roiSize, Rvp32s val);
RVPAPI RvpStatus rvpiTiltedIntegral_8u32f_C1R(const Rvp8u* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                              RvpiSize roiSize, Rvp32f val);
RVPAPI RvpStatus rvpiTiltedSqrIntegral_8u32s_C1R(const Rvp8u* pSrc, int srcStep, Rvp32s* pDst, int dstStep,
                                                 Rvp32s* pSqr, int sqrStep, RvpiSize roiSize, Rvp32s val,
                                                 Rvp32s valSqr);
RVPAPI RvpStatus rvpiTiltedSqrIntegral_8u32s64f_C1R(const Rvp8u* pSrc, int srcStep, Rvp32s* pDst, int dstStep,
                                                    Rvp64f* pSqr, int sqrStep, RvpiSize roiSize, Rvp32s val,
                                                    Rvp64f valSqr);
RVPAPI RvpStatus rvpiTiltedSqrIntegral_8u32f64f_C1R(const Rvp8u* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                                    Rvp64f* pSqr, int sqrStep, RvpiSize roiSize, Rvp32f val,
                                                    Rvp64f valSqr);
/* Standard deviation of the pixels under rect (relative to each output
 * position) from a sum table and a square table; roiSize is the output size.
 * Sfs forms scale by 2^-scaleFactor, add 0.5 and truncate (out of range gives
 * INT_MIN). The tilted forms measure rect along the diagonals and do not
 * check that the rectangle stays right of column 0. Statuses: NullPtr, Size,
 * Step, NotEvenStep, then Size for a rectangle with x or y below 0 or an
 * empty side. rvpiRectStdDev_32f_C1R runs in row bands. */
RVPAPI RvpStatus rvpiRectStdDev_32s_C1RSfs(const Rvp32s* pSrc, int srcStep, const Rvp32s* pSqr, int sqrStep,
                                           Rvp32s* pDst, int dstStep, RvpiSize roiSize, RvpiRect rect,
                                           int scaleFactor);
RVPAPI RvpStatus rvpiRectStdDev_32s32f_C1R(const Rvp32s* pSrc, int srcStep, const Rvp64f* pSqr, int sqrStep,
                                           Rvp32f* pDst, int dstStep, RvpiSize roiSize, RvpiRect rect);
RVPAPI RvpStatus rvpiRectStdDev_32f_C1R(const Rvp32f* pSrc, int srcStep, const Rvp64f* pSqr, int sqrStep,
                                        Rvp32f* pDst, int dstStep, RvpiSize roiSize, RvpiRect rect);
RVPAPI RvpStatus rvpiTiltedRectStdDev_32s_C1RSfs(const Rvp32s* pSrc, int srcStep, const Rvp32s* pSqr, int sqrStep,
                                                 Rvp32s* pDst, int dstStep, RvpiSize roiSize, RvpiRect rect,
                                                 int scaleFactor);
RVPAPI RvpStatus rvpiTiltedRectStdDev_32s32f_C1R(const Rvp32s* pSrc, int srcStep, const Rvp64f* pSqr, int sqrStep,
                                                 Rvp32f* pDst, int dstStep, RvpiSize roiSize, RvpiRect rect);
RVPAPI RvpStatus rvpiTiltedRectStdDev_32f_C1R(const Rvp32f* pSrc, int srcStep, const Rvp64f* pSqr, int sqrStep,
                                              Rvp32f* pDst, int dstStep, RvpiSize roiSize, RvpiRect rect);

/* ---- Haar classifiers ------------------------------------------------- */
/* One compiled stage of a cascade of rectangle features (opaque; one block
 * released by the matching Free function). The 32s state holds integer
 * weights, thresholds and contributions, the 32f state float ones. */
typedef struct RvpiHaarClassifier_32f RvpiHaarClassifier_32f;
typedef struct RvpiHaarClassifier_32s RvpiHaarClassifier_32s;

/* Builds a stage from `length` classifiers: classifier i has pNum[i]
 * rectangles (taken in turn from pFeature/pWeight), a threshold and the
 * contributions pVal1 (sum below threshold x norm) and pVal2. Records are
 * reordered: two-rectangle classifiers first, then three, then the rest.
 * Statuses: NullPtr, Size (length < 0 or a count < 1), BadArg (a rectangle
 * with x or y below 0 or an empty side; the 32s form then sets *ppState to
 * null), MemAlloc. */
RVPAPI RvpStatus rvpiHaarClassifierInitAlloc_32f(RvpiHaarClassifier_32f** ppState, const RvpiRect* pFeature,
                                                 const Rvp32f* pWeight, const Rvp32f* pThreshold, const Rvp32f* pVal1,
                                                 const Rvp32f* pVal2, const int* pNum, int length);
RVPAPI RvpStatus rvpiHaarClassifierInitAlloc_32s(RvpiHaarClassifier_32s** ppState, const RvpiRect* pFeature,
                                                 const Rvp32s* pWeight, const Rvp32s* pThreshold, const Rvp32s* pVal1,
                                                 const Rvp32s* pVal2, const int* pNum, int length);
/* The same with 45-degree rectangles, in the caller's order; a rectangle
 * with x + 1 < height is also refused (BadArg, *ppState set to null). */
RVPAPI RvpStatus rvpiTiltedHaarClassifierInitAlloc_32f(RvpiHaarClassifier_32f** ppState, const RvpiRect* pFeature,
                                                       const Rvp32f* pWeight, const Rvp32f* pThreshold,
                                                       const Rvp32f* pVal1, const Rvp32f* pVal2, const int* pNum,
                                                       int length);
RVPAPI RvpStatus rvpiTiltedHaarClassifierInitAlloc_32s(RvpiHaarClassifier_32s** ppState, const RvpiRect* pFeature,
                                                       const Rvp32s* pWeight, const Rvp32s* pThreshold,
                                                       const Rvp32s* pVal1, const Rvp32s* pVal2, const int* pNum,
                                                       int length);
/* Releases a state. Statuses: NullPtr. */
RVPAPI RvpStatus rvpiHaarClassifierFree_32f(RvpiHaarClassifier_32f* pState);
RVPAPI RvpStatus rvpiHaarClassifierFree_32s(RvpiHaarClassifier_32s* pState);
/* Window a stage reaches: the largest right and bottom corner coordinates.
 * Statuses: NullPtr. */
RVPAPI RvpStatus rvpiGetHaarClassifierSize_32f(const RvpiHaarClassifier_32f* pState, RvpiSize* pSize);
RVPAPI RvpStatus rvpiGetHaarClassifierSize_32s(const RvpiHaarClassifier_32s* pState, RvpiSize* pSize);
/* Turns the classifiers selected by pMask (one byte per classifier, caller's
 * order) into tilted ones; once per state. The 32s form is meant for square
 * rectangles. Statuses: NullPtr, BadArg (the state already holds tilted
 * rectangles). */
RVPAPI RvpStatus rvpiTiltHaarFeatures_32f(const Rvp8u* pMask, int flag, RvpiHaarClassifier_32f* pState);
RVPAPI RvpStatus rvpiTiltHaarFeatures_32s(const Rvp8u* pMask, int flag, RvpiHaarClassifier_32s* pState);
/* Runs a stage at every position whose pMask byte is non-zero; clears the
 * byte where the score is below threshold and writes the number of
 * survivors to *pPositive. pSrc points at the table element of the first
 * position; pNorm holds the per-position normalisation. The 32s form ignores
 * scaleFactor. Statuses: NullPtr, Size, Step, NotEvenStep, MemAlloc. */
RVPAPI RvpStatus rvpiApplyHaarClassifier_32f_C1R(const Rvp32f* pSrc, int srcStep, const Rvp32f* pNorm, int normStep,
                                                 Rvp8u* pMask, int maskStep, RvpiSize roiSize, int* pPositive,
                                                 Rvp32f threshold, RvpiHaarClassifier_32f* pState);
RVPAPI RvpStatus rvpiApplyHaarClassifier_32s32f_C1R(const Rvp32s* pSrc, int srcStep, const Rvp32f* pNorm,
                                                    int normStep, Rvp8u* pMask, int maskStep, RvpiSize roiSize,
                                                    int* pPositive, Rvp32f threshold, RvpiHaarClassifier_32f* pState);
RVPAPI RvpStatus rvpiApplyHaarClassifier_32s_C1RSfs(const Rvp32s* pSrc, int srcStep, const Rvp32s* pNorm,
                                                    int normStep, Rvp8u* pMask, int maskStep, RvpiSize roiSize,
                                                    int* pPositive, Rvp32s threshold, RvpiHaarClassifier_32s* pState,
                                                    int scaleFactor);
/* The same for stages mixing upright and tilted classifiers: tilted records
 * read pTilt (a tilted table, at the element of the first position). The
 * 32s form scales the weighted sums by 2^-scaleFactor. Statuses: NullPtr,
 * Size, Step, NotEvenStep, BadArg (scaleFactor > 0). */
RVPAPI RvpStatus rvpiApplyMixedHaarClassifier_32f_C1R(const Rvp32f* pSrc, int srcStep, const Rvp32f* pTilt,
                                                      int tiltStep, const Rvp32f* pNorm, int normStep, Rvp8u* pMask,
                                                      int maskStep, RvpiSize roiSize, int* pPositive,
                                                      Rvp32f threshold, RvpiHaarClassifier_32f* pState);
RVPAPI RvpStatus rvpiApplyMixedHaarClassifier_32s32f_C1R(const Rvp32s* pSrc, int srcStep, const Rvp32s* pTilt,
                                                         int tiltStep, const Rvp32f* pNorm, int normStep,
                                                         Rvp8u* pMask, int maskStep, RvpiSize roiSize, int* pPositive,
                                                         Rvp32f threshold, RvpiHaarClassifier_32f* pState);
RVPAPI RvpStatus rvpiApplyMixedHaarClassifier_32s_C1RSfs(const Rvp32s* pSrc, int srcStep, const Rvp32s* pTilt,
                                                         int tiltStep, const Rvp32s* pNorm, int normStep,
                                                         Rvp8u* pMask, int maskStep, RvpiSize roiSize, int* pPositive,
                                                         Rvp32s threshold, RvpiHaarClassifier_32s* pState,
                                                         int scaleFactor);

#ifdef __cplusplus
}
#endif

#endif /* RVPCV_H */
