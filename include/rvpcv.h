/*
 * rvpCV: computer-vision primitives over images held in the caller's memory.
 *
 * Every function returns an RvpStatus (0 success, negative error with nothing
 * written, positive warning with a usable result), except rvpcvGetLibVersion.
 * Arguments are tested in the order: null pointers, sizes, steps, step
 * alignment, other values; the first failing test decides. Steps are signed
 * byte counts between row starts whatever the sample type.
 *
 * Buffer sizes: every size query computes in 64 bits, and a size that does
 * not fit an int gives rvpStsSizeErr with nothing stored (where the 32-bit
 * formulas these queries describe would wrap); the functions that take the
 * buffer refuse the same arguments with the same status before touching
 * memory. Sizes that fit are the ones the formulas give. A row whose bytes
 * do not fit an int fails the step test (no step can hold it).
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
/* Row stage: ppDst[y][x] = sum over k of pKernel[k] * ext[x + k - xAnchor]
 * for each source row, ext being the row extended by borderType (0..4,
 * constant with borderValue, replicate, wrap, mirror, mirror-repeat).
 * Integer forms scale the taps by 1/divisor and round to nearest even with
 * saturation; the 16s one-channel form truncates its first xAnchor and last
 * kernelSize-1-xAnchor outputs of each row. _Low: 16-bit wrapping sums
 * shifted right by log2 of |divisor| (highest bit), negated for a negative
 * divisor. A null ppDst entry stops the call with NullPtr, rows before it
 * written. Statuses: NullPtr, Size, Anchor, Step, NotEvenStep (not 8u16s),
 * BadArg (border, divisor 0). */
RVPAPI RvpStatus rvpiFilterRowBorderPipeline_8u16s_C1R(const Rvp8u* pSrc, int srcStep, Rvp16s** ppDst, RvpiSize roiSize,
    const Rvp16s* pKernel, int kernelSize, int xAnchor, int borderType, Rvp8u borderValue, int divisor, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterRowBorderPipeline_8u16s_C3R(const Rvp8u* pSrc, int srcStep, Rvp16s** ppDst, RvpiSize roiSize,
    const Rvp16s* pKernel, int kernelSize, int xAnchor, int borderType, Rvp8u borderValue, int divisor, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterRowBorderPipeline_16s_C1R(const Rvp16s* pSrc, int srcStep, Rvp16s** ppDst, RvpiSize roiSize,
    const Rvp16s* pKernel, int kernelSize, int xAnchor, int borderType, Rvp16s borderValue, int divisor, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterRowBorderPipeline_16s_C3R(const Rvp16s* pSrc, int srcStep, Rvp16s** ppDst, RvpiSize roiSize,
    const Rvp16s* pKernel, int kernelSize, int xAnchor, int borderType, Rvp16s borderValue, int divisor, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterRowBorderPipeline_Low_16s_C1R(const Rvp16s* pSrc, int srcStep, Rvp16s** ppDst, RvpiSize roiSize,
    const Rvp16s* pKernel, int kernelSize, int xAnchor, int borderType, Rvp16s borderValue, int divisor, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterRowBorderPipeline_Low_16s_C3R(const Rvp16s* pSrc, int srcStep, Rvp16s** ppDst, RvpiSize roiSize,
    const Rvp16s* pKernel, int kernelSize, int xAnchor, int borderType, Rvp16s borderValue, int divisor, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterRowBorderPipeline_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f** ppDst, RvpiSize roiSize,
    const Rvp32f* pKernel, int kernelSize, int xAnchor, int borderType, Rvp32f borderValue, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterRowBorderPipeline_32f_C3R(const Rvp32f* pSrc, int srcStep, Rvp32f** ppDst, RvpiSize roiSize,
    const Rvp32f* pKernel, int kernelSize, int xAnchor, int borderType, Rvp32f borderValue, Rvp8u* pBuffer);
/* Column stage: pDst[y][x] = sum over k of pKernel[k] * ppSrc[y + k][x];
 * ppSrc holds height + kernelSize - 1 row pointers (entries may repeat).
 * Statuses: NullPtr (also for any null entry, before anything is written),
 * Size, Step, NotEvenStep, BadArg (divisor 0). */
RVPAPI RvpStatus rvpiFilterColumnPipeline_16s_C1R(const Rvp16s** ppSrc, Rvp16s* pDst, int dstStep, RvpiSize roiSize,
    const Rvp16s* pKernel, int kernelSize, int divisor, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterColumnPipeline_16s_C3R(const Rvp16s** ppSrc, Rvp16s* pDst, int dstStep, RvpiSize roiSize,
    const Rvp16s* pKernel, int kernelSize, int divisor, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterColumnPipeline_16s8s_C1R(const Rvp16s** ppSrc, Rvp8s* pDst, int dstStep, RvpiSize roiSize,
    const Rvp16s* pKernel, int kernelSize, int divisor, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterColumnPipeline_16s8s_C3R(const Rvp16s** ppSrc, Rvp8s* pDst, int dstStep, RvpiSize roiSize,
    const Rvp16s* pKernel, int kernelSize, int divisor, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterColumnPipeline_16s8u_C1R(const Rvp16s** ppSrc, Rvp8u* pDst, int dstStep, RvpiSize roiSize,
    const Rvp16s* pKernel, int kernelSize, int divisor, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterColumnPipeline_16s8u_C3R(const Rvp16s** ppSrc, Rvp8u* pDst, int dstStep, RvpiSize roiSize,
    const Rvp16s* pKernel, int kernelSize, int divisor, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterColumnPipeline_Low_16s_C1R(const Rvp16s** ppSrc, Rvp16s* pDst, int dstStep, RvpiSize roiSize,
    const Rvp16s* pKernel, int kernelSize, int divisor, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterColumnPipeline_Low_16s_C3R(const Rvp16s** ppSrc, Rvp16s* pDst, int dstStep, RvpiSize roiSize,
    const Rvp16s* pKernel, int kernelSize, int divisor, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterColumnPipeline_32f_C1R(const Rvp32f** ppSrc, Rvp32f* pDst, int dstStep, RvpiSize roiSize,
    const Rvp32f* pKernel, int kernelSize, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterColumnPipeline_32f_C3R(const Rvp32f** ppSrc, Rvp32f* pDst, int dstStep, RvpiSize roiSize,
    const Rvp32f* pKernel, int kernelSize, Rvp8u* pBuffer);
/* Scratch bytes for the pipelines at the permitted thread count. Statuses: NullPtr, Size. */
RVPAPI RvpStatus rvpiFilterRowBorderPipelineGetBufferSize_8u16s_C1R(RvpiSize roiSize, int kernelSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterRowBorderPipelineGetBufferSize_8u16s_C3R(RvpiSize roiSize, int kernelSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterRowBorderPipelineGetBufferSize_16s_C1R(RvpiSize roiSize, int kernelSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterRowBorderPipelineGetBufferSize_16s_C3R(RvpiSize roiSize, int kernelSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R(RvpiSize roiSize, int kernelSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R(RvpiSize roiSize, int kernelSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterRowBorderPipelineGetBufferSize_32f_C1R(RvpiSize roiSize, int kernelSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterRowBorderPipelineGetBufferSize_32f_C3R(RvpiSize roiSize, int kernelSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterColumnPipelineGetBufferSize_16s_C1R(RvpiSize roiSize, int kernelSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterColumnPipelineGetBufferSize_16s_C3R(RvpiSize roiSize, int kernelSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterColumnPipelineGetBufferSize_16s8s_C1R(RvpiSize roiSize, int kernelSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterColumnPipelineGetBufferSize_16s8s_C3R(RvpiSize roiSize, int kernelSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterColumnPipelineGetBufferSize_16s8u_C1R(RvpiSize roiSize, int kernelSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterColumnPipelineGetBufferSize_16s8u_C3R(RvpiSize roiSize, int kernelSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterColumnPipelineGetBufferSize_Low_16s_C1R(RvpiSize roiSize, int kernelSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterColumnPipelineGetBufferSize_Low_16s_C3R(RvpiSize roiSize, int kernelSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterColumnPipelineGetBufferSize_32f_C1R(RvpiSize roiSize, int kernelSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterColumnPipelineGetBufferSize_32f_C3R(RvpiSize roiSize, int kernelSize, int* pBufferSize);

/* ---- Fixed-kernel border filters -------------------------------------- */
/* Separable filters with fixed taps, maskSize 33 (3x3) or 55 (5x5):
 * SobelHoriz (rows 1 2 1, columns -1 0 1), SobelVert (rows 1 0 -1, columns
 * 1 2 1), SobelNegVert (its negation), SobelHorizSecond, SobelVertSecond,
 * SobelCross, Laplacian; Scharr 3x3 only (no maskSize). borderType: 0..4
 * or 6 (all sides in memory), plus flags 0x10 above, 0x20 below, 0x40 left,
 * 0x80 right for sides that exist in memory. 8u8s results saturate.
 * Statuses: NullPtr, Size, Step, NotEvenStep (16s/32f destinations, 32f
 * sources), BadArg (border), MaskSize. */
RVPAPI RvpStatus rvpiFilterSobelHorizBorder_8u16s_C1R(const Rvp8u* pSrc, int srcStep, Rvp16s* pDst, int dstStep, RvpiSize roiSize,
    int maskSize, int borderType, Rvp8u borderValue, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterSobelHorizBorder_8u8s_C1R(const Rvp8u* pSrc, int srcStep, Rvp8s* pDst, int dstStep, RvpiSize roiSize,
    int maskSize, int borderType, Rvp8u borderValue, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterSobelHorizBorder_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep, RvpiSize roiSize,
    int maskSize, int borderType, Rvp32f borderValue, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterSobelVertBorder_8u16s_C1R(const Rvp8u* pSrc, int srcStep, Rvp16s* pDst, int dstStep, RvpiSize roiSize,
    int maskSize, int borderType, Rvp8u borderValue, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterSobelVertBorder_8u8s_C1R(const Rvp8u* pSrc, int srcStep, Rvp8s* pDst, int dstStep, RvpiSize roiSize,
    int maskSize, int borderType, Rvp8u borderValue, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterSobelVertBorder_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep, RvpiSize roiSize,
    int maskSize, int borderType, Rvp32f borderValue, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterSobelNegVertBorder_8u16s_C1R(const Rvp8u* pSrc, int srcStep, Rvp16s* pDst, int dstStep, RvpiSize roiSize,
    int maskSize, int borderType, Rvp8u borderValue, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterSobelNegVertBorder_8u8s_C1R(const Rvp8u* pSrc, int srcStep, Rvp8s* pDst, int dstStep, RvpiSize roiSize,
    int maskSize, int borderType, Rvp8u borderValue, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterSobelNegVertBorder_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep, RvpiSize roiSize,
    int maskSize, int borderType, Rvp32f borderValue, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterSobelHorizSecondBorder_8u16s_C1R(const Rvp8u* pSrc, int srcStep, Rvp16s* pDst, int dstStep, RvpiSize roiSize,
    int maskSize, int borderType, Rvp8u borderValue, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterSobelHorizSecondBorder_8u8s_C1R(const Rvp8u* pSrc, int srcStep, Rvp8s* pDst, int dstStep, RvpiSize roiSize,
    int maskSize, int borderType, Rvp8u borderValue, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterSobelHorizSecondBorder_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep, RvpiSize roiSize,
    int maskSize, int borderType, Rvp32f borderValue, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterSobelVertSecondBorder_8u16s_C1R(const Rvp8u* pSrc, int srcStep, Rvp16s* pDst, int dstStep, RvpiSize roiSize,
    int maskSize, int borderType, Rvp8u borderValue, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterSobelVertSecondBorder_8u8s_C1R(const Rvp8u* pSrc, int srcStep, Rvp8s* pDst, int dstStep, RvpiSize roiSize,
    int maskSize, int borderType, Rvp8u borderValue, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterSobelVertSecondBorder_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep, RvpiSize roiSize,
    int maskSize, int borderType, Rvp32f borderValue, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterSobelCrossBorder_8u16s_C1R(const Rvp8u* pSrc, int srcStep, Rvp16s* pDst, int dstStep, RvpiSize roiSize,
    int maskSize, int borderType, Rvp8u borderValue, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterSobelCrossBorder_8u8s_C1R(const Rvp8u* pSrc, int srcStep, Rvp8s* pDst, int dstStep, RvpiSize roiSize,
    int maskSize, int borderType, Rvp8u borderValue, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterSobelCrossBorder_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep, RvpiSize roiSize,
    int maskSize, int borderType, Rvp32f borderValue, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterLaplacianBorder_8u16s_C1R(const Rvp8u* pSrc, int srcStep, Rvp16s* pDst, int dstStep, RvpiSize roiSize,
    int maskSize, int borderType, Rvp8u borderValue, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterLaplacianBorder_8u8s_C1R(const Rvp8u* pSrc, int srcStep, Rvp8s* pDst, int dstStep, RvpiSize roiSize,
    int maskSize, int borderType, Rvp8u borderValue, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterLaplacianBorder_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep, RvpiSize roiSize,
    int maskSize, int borderType, Rvp32f borderValue, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterScharrHorizBorder_8u16s_C1R(const Rvp8u* pSrc, int srcStep, Rvp16s* pDst, int dstStep, RvpiSize roiSize,
    int borderType, Rvp8u borderValue, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterScharrHorizBorder_8u8s_C1R(const Rvp8u* pSrc, int srcStep, Rvp8s* pDst, int dstStep, RvpiSize roiSize,
    int borderType, Rvp8u borderValue, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterScharrHorizBorder_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep, RvpiSize roiSize,
    int borderType, Rvp32f borderValue, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterScharrVertBorder_8u16s_C1R(const Rvp8u* pSrc, int srcStep, Rvp16s* pDst, int dstStep, RvpiSize roiSize,
    int borderType, Rvp8u borderValue, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterScharrVertBorder_8u8s_C1R(const Rvp8u* pSrc, int srcStep, Rvp8s* pDst, int dstStep, RvpiSize roiSize,
    int borderType, Rvp8u borderValue, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterScharrVertBorder_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep, RvpiSize roiSize,
    int borderType, Rvp32f borderValue, Rvp8u* pBuffer);
/* Box mean; 8u divides by fixed-point products (3x3: ((sum+5)*7280)>>16, 5x5: (sum*2621)>>16). */
RVPAPI RvpStatus rvpiFilterLowpassBorder_8u_C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep, RvpiSize roiSize,
    int maskSize, int borderType, Rvp8u borderValue, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFilterLowpassBorder_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep, RvpiSize roiSize,
    int maskSize, int borderType, Rvp32f borderValue, Rvp8u* pBuffer);
/* Gaussian of kernelSize (odd, >= 3) taps exp(-d^2 / (2 sigma^2)), normalised.
 * A zero or NaN sigma is replaced by 0.3 ((K - 1) / 2 - 1) + 0.8.
 * borderType 0..4 plus flags 0x10 / 0x20. Steps are compared with the width
 * in samples. Statuses: NullPtr, Size, Step, BadArg, and those of the
 * pipelines it runs. */
RVPAPI RvpStatus rvpiFilterGaussBorder_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep, RvpiSize roiSize,
    int kernelSize, Rvp32f sigma, int borderType, Rvp32f borderValue, Rvp8u* pBuffer);
/* Scratch bytes at the permitted thread count. Statuses: NullPtr, Size, MaskSize (Gauss: BadArg). */
RVPAPI RvpStatus rvpiFilterSobelHorizGetBufferSize_8u16s_C1R(RvpiSize roiSize, int maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterSobelHorizGetBufferSize_8u8s_C1R(RvpiSize roiSize, int maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterSobelHorizGetBufferSize_32f_C1R(RvpiSize roiSize, int maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterSobelVertGetBufferSize_8u16s_C1R(RvpiSize roiSize, int maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterSobelVertGetBufferSize_8u8s_C1R(RvpiSize roiSize, int maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterSobelVertGetBufferSize_32f_C1R(RvpiSize roiSize, int maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterSobelNegVertGetBufferSize_8u16s_C1R(RvpiSize roiSize, int maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterSobelNegVertGetBufferSize_8u8s_C1R(RvpiSize roiSize, int maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterSobelNegVertGetBufferSize_32f_C1R(RvpiSize roiSize, int maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterSobelHorizSecondGetBufferSize_8u16s_C1R(RvpiSize roiSize, int maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterSobelHorizSecondGetBufferSize_8u8s_C1R(RvpiSize roiSize, int maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterSobelHorizSecondGetBufferSize_32f_C1R(RvpiSize roiSize, int maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterSobelVertSecondGetBufferSize_8u16s_C1R(RvpiSize roiSize, int maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterSobelVertSecondGetBufferSize_8u8s_C1R(RvpiSize roiSize, int maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterSobelVertSecondGetBufferSize_32f_C1R(RvpiSize roiSize, int maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterSobelCrossGetBufferSize_8u16s_C1R(RvpiSize roiSize, int maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterSobelCrossGetBufferSize_8u8s_C1R(RvpiSize roiSize, int maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterSobelCrossGetBufferSize_32f_C1R(RvpiSize roiSize, int maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterLaplacianGetBufferSize_8u16s_C1R(RvpiSize roiSize, int maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterLaplacianGetBufferSize_8u8s_C1R(RvpiSize roiSize, int maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterLaplacianGetBufferSize_32f_C1R(RvpiSize roiSize, int maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterScharrHorizGetBufferSize_8u16s_C1R(RvpiSize roiSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterScharrHorizGetBufferSize_8u8s_C1R(RvpiSize roiSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterScharrHorizGetBufferSize_32f_C1R(RvpiSize roiSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterScharrVertGetBufferSize_8u16s_C1R(RvpiSize roiSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterScharrVertGetBufferSize_8u8s_C1R(RvpiSize roiSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterScharrVertGetBufferSize_32f_C1R(RvpiSize roiSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterLowpassGetBufferSize_8u_C1R(RvpiSize roiSize, int maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterLowpassGetBufferSize_32f_C1R(RvpiSize roiSize, int maskSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFilterGaussGetBufferSize_32f_C1R(RvpiSize roiSize, int kernelSize, int* pBufferSize);
/* Sobel kernel of kernelSize (odd) taps, derivative order dx < kernelSize; sign < 0 negates. Statuses: NullPtr, Size. */
RVPAPI RvpStatus rvpiGenSobelKernel_16s(Rvp16s* pDst, int kernelSize, int dx, int sign);
RVPAPI RvpStatus rvpiGenSobelKernel_32f(Rvp32f* pDst, int kernelSize, int dx, int sign);

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
 * NullPtr (pSrc, pDst, and the state, tested first like the others: a
 * deliberate addition), Size, Step, NotEvenStep (32f), BadArg (borderType,
 * state of another layout), Size (width above the state's roiWidth). */
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
/* Connectivity of the reconstruction: rvpiNormInf joins the 8 neighbours of a
 * pixel, rvpiNormL1 the 4 that share a side. */
typedef enum { rvpiNormInf = 0, rvpiNormL1 = 1 } RvpiNorm;
/* Scratch bytes for a roiSize reconstruction: 8u 4w + h + 161, 16u 2(4w + h) + 322,
 * 32f 16w + h + 164, 64f 32w + h + 168 (32-bit, wrapping). Statuses: NullPtr, Size. */
RVPAPI RvpStatus rvpiMorphReconstructGetBufferSize_8u_C1(RvpiSize roiSize, int* pBufferSize);
RVPAPI RvpStatus rvpiMorphReconstructGetBufferSize_16u_C1(RvpiSize roiSize, int* pBufferSize);
RVPAPI RvpStatus rvpiMorphReconstructGetBufferSize_32f_C1(RvpiSize roiSize, int* pBufferSize);
RVPAPI RvpStatus rvpiMorphReconstructGetBufferSize_64f_C1(RvpiSize roiSize, int* pBufferSize);
/* Dilate: grows the marker pSrcDst under the mask pSrc until stable (the result
 * is the reconstruction of min(marker, mask)); Erode: shrinks it above the mask
 * (of max(marker, mask)). norm is rvpiNormInf or rvpiNormL1; pBuffer is scratch.
 * NaN: a comparison with NaN is false, so a NaN sample acts where the scans
 * meet it; float images that hold a NaN are reconstructed by the single-thread
 * scans whatever the thread count, so the result never depends on it.
 * Statuses: NullPtr, Size, Step, NotEvenStep (16u, 32f, 64f), BadArg (norm). */
RVPAPI RvpStatus rvpiMorphReconstructDilate_8u_C1IR(const Rvp8u* pSrc, int srcStep, Rvp8u* pSrcDst, int srcDstStep,
        RvpiSize roiSize, Rvp8u* pBuffer, int norm);
RVPAPI RvpStatus rvpiMorphReconstructDilate_16u_C1IR(const Rvp16u* pSrc, int srcStep, Rvp16u* pSrcDst, int srcDstStep,
        RvpiSize roiSize, Rvp8u* pBuffer, int norm);
RVPAPI RvpStatus rvpiMorphReconstructDilate_32f_C1IR(const Rvp32f* pSrc, int srcStep, Rvp32f* pSrcDst, int srcDstStep,
        RvpiSize roiSize, Rvp8u* pBuffer, int norm);
RVPAPI RvpStatus rvpiMorphReconstructDilate_64f_C1IR(const Rvp64f* pSrc, int srcStep, Rvp64f* pSrcDst, int srcDstStep,
        RvpiSize roiSize, Rvp8u* pBuffer, int norm);
RVPAPI RvpStatus rvpiMorphReconstructErode_8u_C1IR(const Rvp8u* pSrc, int srcStep, Rvp8u* pSrcDst, int srcDstStep,
        RvpiSize roiSize, Rvp8u* pBuffer, int norm);
RVPAPI RvpStatus rvpiMorphReconstructErode_16u_C1IR(const Rvp16u* pSrc, int srcStep, Rvp16u* pSrcDst, int srcDstStep,
        RvpiSize roiSize, Rvp8u* pBuffer, int norm);
RVPAPI RvpStatus rvpiMorphReconstructErode_32f_C1IR(const Rvp32f* pSrc, int srcStep, Rvp32f* pSrcDst, int srcDstStep,
        RvpiSize roiSize, Rvp8u* pBuffer, int norm);
RVPAPI RvpStatus rvpiMorphReconstructErode_64f_C1IR(const Rvp64f* pSrc, int srcStep, Rvp64f* pSrcDst, int srcDstStep,
        RvpiSize roiSize, Rvp8u* pBuffer, int norm);

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
/* Bytes of scratch for the corner functions at roiSize, apertureSize and
 * avgWindow (3 or 5). Statuses: NullPtr, Size, and those of the filters asked. */
RVPAPI RvpStatus rvpiEigenValsVecsGetBufferSize_8u32f_C1R(RvpiSize roiSize, int apertureSize, int avgWindow, int* pBufferSize);
RVPAPI RvpStatus rvpiEigenValsVecsGetBufferSize_32f_C1R(RvpiSize roiSize, int apertureSize, int avgWindow, int* pBufferSize);
RVPAPI RvpStatus rvpiMinEigenValGetBufferSize_8u32f_C1R(RvpiSize roiSize, int apertureSize, int avgWindow, int* pBufferSize);
RVPAPI RvpStatus rvpiMinEigenValGetBufferSize_32f_C1R(RvpiSize roiSize, int apertureSize, int avgWindow, int* pBufferSize);
/* Per pixel, six floats l1, l2, x1, y1, x2, y2: eigenvalues (larger first) and
 * unit eigenvectors of the avgWindow box-smoothed structure tensor of the
 * derivatives (kernType 0 Sobel of apertureSize 3 or 5, 1 Scharr 3x3),
 * replicated border. Statuses: NullPtr, Size, Step, NotEvenStep, BadArg
 * (kernType), and those of the filters it runs. */
RVPAPI RvpStatus rvpiEigenValsVecs_8u32f_C1R(const Rvp8u* pSrc, int srcStep, Rvp32f* pEigenVV, int eigenVVStep,
    RvpiSize roiSize, int kernType, int apertureSize, int avgWindow, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiEigenValsVecs_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pEigenVV, int eigenVVStep,
    RvpiSize roiSize, int kernType, int apertureSize, int avgWindow, Rvp8u* pBuffer);
/* The smaller eigenvalue only (corner strength); arguments and statuses as above. */
RVPAPI RvpStatus rvpiMinEigenVal_8u32f_C1R(const Rvp8u* pSrc, int srcStep, Rvp32f* pMinEigenVal, int minValStep,
    RvpiSize roiSize, int kernType, int apertureSize, int avgWindow, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiMinEigenVal_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pMinEigenVal, int minValStep,
    RvpiSize roiSize, int kernType, int apertureSize, int avgWindow, Rvp8u* pBuffer);

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

/* ---- Lens undistortion ------------------------------------------------- */
/* Two-coefficient radial model, all in single precision. With a = 1/(fx*fx),
 * b = 1/(fy*fy), for the destination pixel (x, y):
 *   dy = y - cy, yy = b*dy*dy, A = 2*k2*yy, B = (k2*yy + k1)*yy   (per row)
 *   dx = x - cx, xx = a*dx*dx
 *   m = (k2*xx + k1)*xx + A*xx + B        (k1 r^2 + k2 r^4, r^2 = xx + yy)
 *   u = dx*m + x, v = dy*m + y
 * each expression evaluated left to right as written. The pixel is written
 * only when 0 <= u < W - 1 and 0 <= v < H - 1 (NaN fails); otherwise, and
 * always in the last column and row, the destination keeps what it held, so
 * clear it first. With iu, iv the truncated coordinates, fu = u - iu,
 * fv = v - iv and s00, s10, s01, s11 the samples at (iu, iv), (iu+1, iv),
 * (iu, iv+1), (iu+1, iv+1):
 *   t11 = s11*fv*fu, t01 = s01*(1-fu)*fv, t10 = s10*fu*(1-fv),
 *   t00 = s00*(1-fv)*(1-fu)
 *   32f: ((t11 + t01) + t10) + t00
 *   8u, 16u: ((t11 + t01) + (t10 + t00)) + 0.5, truncated (a convex mix: no
 *            saturation needed).
 * C3 forms share one (u, v) and one set of weights over the three channels.
 * pBuffer (may be null) holds column terms computed once per call; the
 * results are the same with and without it. Everything runs on the calling
 * thread. */

/* Bytes of the optional buffer: ((W + 3) & ~3) * 24 + 32. Statuses: NullPtr,
 * Size (also when the size does not fit an int). */
RVPAPI RvpStatus rvpiUndistortGetSize(RvpiSize roiSize, int* pBufSize);
/* Statuses: NullPtr (pSrc, pDst), Size (also a width whose buffer size would
 * not fit an int, when pBuffer is given), Step (below the row's bytes),
 * NotEvenStep (16u, 32f: a step not a multiple of the sample size), BadArg
 * (fx or fy is 0). */
RVPAPI RvpStatus rvpiUndistortRadial_8u_C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                            RvpiSize roiSize, Rvp32f fx, Rvp32f fy, Rvp32f cx, Rvp32f cy,
                                            Rvp32f k1, Rvp32f k2, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiUndistortRadial_8u_C3R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                            RvpiSize roiSize, Rvp32f fx, Rvp32f fy, Rvp32f cx, Rvp32f cy,
                                            Rvp32f k1, Rvp32f k2, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiUndistortRadial_16u_C1R(const Rvp16u* pSrc, int srcStep, Rvp16u* pDst, int dstStep,
                                             RvpiSize roiSize, Rvp32f fx, Rvp32f fy, Rvp32f cx, Rvp32f cy,
                                             Rvp32f k1, Rvp32f k2, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiUndistortRadial_16u_C3R(const Rvp16u* pSrc, int srcStep, Rvp16u* pDst, int dstStep,
                                             RvpiSize roiSize, Rvp32f fx, Rvp32f fy, Rvp32f cx, Rvp32f cy,
                                             Rvp32f k1, Rvp32f k2, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiUndistortRadial_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                             RvpiSize roiSize, Rvp32f fx, Rvp32f fy, Rvp32f cx, Rvp32f cy,
                                             Rvp32f k1, Rvp32f k2, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiUndistortRadial_32f_C3R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                             RvpiSize roiSize, Rvp32f fx, Rvp32f fy, Rvp32f cx, Rvp32f cy,
                                             Rvp32f k1, Rvp32f k2, Rvp8u* pBuffer);
/* Source coordinates of every destination pixel, for a remap step. When p1
 * or p2 is not zero (a NaN counts as not zero), with ifx = 1/fx, ify = 1/fy,
 * Fx = fx*p2, Fy = fy*p1:
 *   yn = (y - cy)*ify, yy = yn*yn, T = yn*(2*p1)                  (per row)
 *   dx = x - cx, xn = dx*ifx, r2 = xn*xn + yy
 *   m = (k2*r2 + k1)*r2 + xn*(2*p2) + T
 *   pxMap = m*dx + (Fx*r2 + x), pyMap = m*dy + r2*Fy + y
 * Otherwise pxMap = u and pyMap = v of the radial model above, bit for bit.
 * Statuses: NullPtr, Size, Step (below 4 * W), NotEvenStep, BadArg (fx or fy
 * is 0). */
RVPAPI RvpStatus rvpiCreateMapCameraUndistort_32f_C1R(Rvp32f* pxMap, int xStep, Rvp32f* pyMap, int yStep,
                                                      RvpiSize roiSize, Rvp32f fx, Rvp32f fy, Rvp32f cx,
                                                      Rvp32f cy, Rvp32f k1, Rvp32f k2, Rvp32f p1, Rvp32f p2,
                                                      Rvp8u* pBuffer);

/* ---- Super-resolution gradient ----------------------------------------- */
/* A high-resolution float image is observed through a point spread function
 * with one coefficient table entry per sub-pixel phase. A sample list is
 * three parallel arrays: pOffsets, the element offset of the sample's
 * top-left tap in the image; pPhases, its table entry; the samples or
 * residuals. With s = step / 4 the taps of a 2x2 entry c00 c01 c10 c11 are
 * h[o], h[o+1], h[o+s], h[o+s+1]; a 3x3 entry has nine, row by row.
 * Offsets are the caller's to keep inside the image (the functions know no
 * image size); a phase at or beyond the table's size is refused with
 * OutOfRange before anything is written. Everything runs on the calling
 * thread. */
typedef struct RvpiSRHNSpec_PSF2x2 RvpiSRHNSpec_PSF2x2;
typedef struct RvpiSRHNSpec_PSF3x3 RvpiSRHNSpec_PSF3x3;

/* Makes a state holding a copy of pcTable: tableSize entries of four floats
 * (2x2) or nine floats (3x3, row by row). Release it with the matching Free.
 * Statuses: NullPtr, Size (tableSize < 1, or a table whose bytes do not fit
 * an int), MemAlloc. */
RVPAPI RvpStatus rvpiSRHNInitAlloc_PSF2x2(RvpiSRHNSpec_PSF2x2** ppPSF, const Rvp32f* pcTable, int tableSize);
RVPAPI RvpStatus rvpiSRHNInitAlloc_PSF3x3(RvpiSRHNSpec_PSF3x3** ppPSF, const Rvp32f* pcTable, int tableSize);
/* Statuses: NullPtr. */
RVPAPI RvpStatus rvpiSRHNFree_PSF2x2(RvpiSRHNSpec_PSF2x2* pPSF);
RVPAPI RvpStatus rvpiSRHNFree_PSF3x3(RvpiSRHNSpec_PSF3x3* pPSF);
/* pResidual[i] = (sum of tap * coefficient, left to right) - pLowRes[i], in
 * float, for i from 0 to length - 1. Statuses: NullPtr, Size (length < 1),
 * Step (hiResStep, as an unsigned 64-bit value after sign extension, not
 * above 7 (2x2) or 11 (3x3), or not a multiple of 4), OutOfRange (a phase
 * outside the table). */
RVPAPI RvpStatus rvpiSRHNCalcResidual_PSF2x2_8u32f_C1R(const Rvp32f* pHiRes, int hiResStep, const Rvp8u* pLowRes,
                                                       const Rvp32s* pOffsets, const Rvp16u* pPhases,
                                                       Rvp32f* pResidual, int length,
                                                       const RvpiSRHNSpec_PSF2x2* pPSF);
RVPAPI RvpStatus rvpiSRHNCalcResidual_PSF2x2_16u32f_C1R(const Rvp32f* pHiRes, int hiResStep,
                                                        const Rvp16u* pLowRes, const Rvp32s* pOffsets,
                                                        const Rvp16u* pPhases, Rvp32f* pResidual, int length,
                                                        const RvpiSRHNSpec_PSF2x2* pPSF);
RVPAPI RvpStatus rvpiSRHNCalcResidual_PSF3x3_8u32f_C1R(const Rvp32f* pHiRes, int hiResStep, const Rvp8u* pLowRes,
                                                       const Rvp32s* pOffsets, const Rvp16u* pPhases,
                                                       Rvp32f* pResidual, int length,
                                                       const RvpiSRHNSpec_PSF3x3* pPSF);
RVPAPI RvpStatus rvpiSRHNCalcResidual_PSF3x3_16u32f_C1R(const Rvp32f* pHiRes, int hiResStep,
                                                        const Rvp16u* pLowRes, const Rvp32s* pOffsets,
                                                        const Rvp16u* pPhases, Rvp32f* pResidual, int length,
                                                        const RvpiSRHNSpec_PSF3x3* pPSF);
/* For each i in ascending order: f = pWeights[pWeightIndex[i]] * pResidual[i],
 * then g[tap] = coefficient * f + g[tap] for every tap of the entry, in
 * place (samples sharing taps add in order of i). Statuses: NullPtr, Size,
 * Step and OutOfRange as for the residual. */
RVPAPI RvpStatus rvpiSRHNUpdateGradient_PSF2x2_32f_C1R(Rvp32f* pGrad, int gradStep, const Rvp32s* pOffsets,
                                                       const Rvp16u* pPhases, const Rvp32f* pResidual,
                                                       const Rvp8u* pWeightIndex, int length,
                                                       const Rvp32f* pWeights, const RvpiSRHNSpec_PSF2x2* pPSF);
RVPAPI RvpStatus rvpiSRHNUpdateGradient_PSF3x3_32f_C1R(Rvp32f* pGrad, int gradStep, const Rvp32s* pOffsets,
                                                       const Rvp16u* pPhases, const Rvp32f* pResidual,
                                                       const Rvp8u* pWeightIndex, int length,
                                                       const Rvp32f* pWeights, const RvpiSRHNSpec_PSF3x3* pPSF);

/* ---- Foreground models ------------------------------------------------- */
/* Per-pixel background models of 8-bit gray (C1) or colour (C3) video. Each
 * model is an opaque state made from the first frame (pModel must not be
 * null; its contents are not read) and released with its Free function; a
 * state serves one call at a time. Statuses of the InitAlloc functions, in
 * order: NullPtr (pSrc, pModel, ppState), Size, Step (srcStep below the row's
 * bytes), MemAlloc (nothing is left allocated), Size also when the model's
 * memory would not fit an int. Free: NullPtr. */
typedef struct RvpiFGGaussianState RvpiFGGaussianState;
typedef struct RvpiFGHistogramState RvpiFGHistogramState;

/* Mixture of five Gaussians per pixel, in double precision, with fixed
 * defaults: history 200 frames, background share 0.7, match within 2.5
 * standard deviations, replacement variance 900. Creation: Gaussian 0 of
 * each pixel has count 1, weight 1, variance 12.5 and the pixel's value as
 * mean; the others count 0, weight 0, variance 12.5, mean 0. Each call counts
 * the frame (frameCount + 1, never capped), then for each pixel of value I:
 *  1. Match: the first Gaussian in stored order with
 *     (mean - I)^2 < variance * 2.5 * 2.5 matches (match = 1; others 0).
 *  2. On the frame whose number equals the history (200), with a = 1/200:
 *     weight += (match - weight) * a for each Gaussian; the matched one then
 *     takes rho = match / (200 * weight), d = I - mean, mean += d * rho,
 *     variance += rho * (d * d - variance).
 *  3. On every other frame, with n the sum of the counts: count += match,
 *     weight += (match - weight) * (1 / (n + 1)) for each Gaussian; the
 *     matched one (count > 0) takes rho = 1 / count and the same mean and
 *     variance update.
 *  In 2 and 3, when nothing matched, the last Gaussian is replaced: count 1,
 *  weight 1 / (sum of the counts), variance 900, mean I, and the other
 *  weights are multiplied by 1 - 1/200.
 *  4. Rank: key = weight / sqrt(variance) for Gaussians with count >= 1,
 *     else 0; a stable sort by descending key (equal keys keep their order).
 *  5. Background = (int)(mean of the first ranked Gaussian + 0.5). The mask
 *     starts at 255; walking the ranked Gaussians, their weights are summed;
 *     at rank r the mask becomes 0 if the Gaussian that stood at place r
 *     BEFORE the ranking had matched; the walk stops once the sum exceeds
 *     0.7. All arithmetic is double precision, in the order written.
 * C3: one count and one weight per Gaussian, a mean and a variance per
 * channel. A Gaussian matches when all three channels pass the test of 1;
 * each channel's mean and variance are updated with the shared rho; the key
 * is weight / sqrt(variance0 + variance1 + variance2); the background is
 * written per channel. The mask has one channel either way.
 * Results do not depend on the thread count. */
RVPAPI RvpStatus rvpiForegroundGaussianInitAlloc_8u_C1R(const Rvp8u* pSrc, int srcStep, RvpiSize roiSize,
                                                        const void* pModel, RvpiFGGaussianState** ppState);
RVPAPI RvpStatus rvpiForegroundGaussianInitAlloc_8u_C3R(const Rvp8u* pSrc, int srcStep, RvpiSize roiSize,
                                                        const void* pModel, RvpiFGGaussianState** ppState);
/* Updates the model with a frame; pRef receives the background (C1: one
 * channel, C3: three), pDst the mask (0 background, 255 foreground, one
 * channel). roiSize must equal the state's size (otherwise Size). Statuses:
 * NullPtr (pSrc, pRef, pDst, pState), Size, Step (srcStep below the row's
 * bytes; refStep and dstStep are the caller's to size). */
RVPAPI RvpStatus rvpiForegroundGaussian_8u_C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pRef, int refStep, Rvp8u* pDst,
                                               int dstStep, RvpiSize roiSize, RvpiFGGaussianState* pState);
RVPAPI RvpStatus rvpiForegroundGaussian_8u_C3R(const Rvp8u* pSrc, int srcStep, Rvp8u* pRef, int refStep, Rvp8u* pDst,
                                               int dstStep, RvpiSize roiSize, RvpiFGGaussianState* pState);
RVPAPI RvpStatus rvpiForegroundGaussianFree_8u_C1R(RvpiFGGaussianState* pState);
RVPAPI RvpStatus rvpiForegroundGaussianFree_8u_C3R(RvpiFGGaussianState* pState);

/* Two weighted colour histograms per pixel: a fine one (bins of 4 levels per
 * channel, at most 25 bins) and a coarse one (bins of 8 levels, at most 40
 * bins). The first frame gives its bins weight 1. Classification: a pixel is
 * background when its coarse bin, or the coarse bins within one bin of it
 * in every channel, hold at least 0.1 of the weight, or its fine bin holds
 * at least 0.1; otherwise it is foreground (255). The update fades every
 * weight by (1 - rate), adds rate to the pixel's bins, and when a bin is not
 * in a full table gives the lightest bin's place to it (ties: the later
 * place). Weights are single precision; bins are kept in first-seen order. */
RVPAPI RvpStatus rvpiForegroundHistogramInitAlloc_8u_C1R(const Rvp8u* pSrc, int srcStep, RvpiSize roiSize,
                                                         const void* pModel, RvpiFGHistogramState** ppState);
RVPAPI RvpStatus rvpiForegroundHistogramInitAlloc_8u_C3R(const Rvp8u* pSrc, int srcStep, RvpiSize roiSize,
                                                         const void* pModel, RvpiFGHistogramState** ppState);
/* Classifies a frame into pDst (0 background, 255 foreground); the model is
 * not changed. Statuses: NullPtr (pSrc, pDst, pState), Size (also a size
 * other than the state's), Step (srcStep or dstStep below the row's bytes). */
RVPAPI RvpStatus rvpiForegroundHistogram_8u_C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                                RvpiSize roiSize, RvpiFGHistogramState* pState);
RVPAPI RvpStatus rvpiForegroundHistogram_8u_C3R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                                RvpiSize roiSize, RvpiFGHistogramState* pState);
/* Adapts the model to a frame with learning rate `rate` (0 < rate <= 1; a
 * negative rate takes the default 0.005). Statuses: NullPtr (pSrc, pState),
 * Size (also a size other than the state's), Step, BadArg (rate 0, NaN or
 * above 1). */
RVPAPI RvpStatus rvpiForegroundHistogramUpdate_8u_C1R(const Rvp8u* pSrc, int srcStep, RvpiSize roiSize,
                                                      RvpiFGHistogramState* pState, Rvp32f rate);
RVPAPI RvpStatus rvpiForegroundHistogramUpdate_8u_C3R(const Rvp8u* pSrc, int srcStep, RvpiSize roiSize,
                                                      RvpiFGHistogramState* pState, Rvp32f rate);
RVPAPI RvpStatus rvpiForegroundHistogramFree_8u_C1R(RvpiFGHistogramState* pState);
RVPAPI RvpStatus rvpiForegroundHistogramFree_8u_C3R(RvpiFGHistogramState* pState);

/* ---- Motion history ------------------------------------------------------ */
/* With limit = timeStamp - motionDuration (one single-precision
 * subtraction), each history value h becomes timeStamp where the silhouette
 * is not zero, stays where it is zero and limit <= h, and becomes 0 where it
 * is zero and limit > h (a NaN history is cleared). In the 32f form the test
 * against zero is a float one: -0 is zero, NaN is not. Runs on the calling
 * thread. Statuses: NullPtr, Size, Step (silhouette row's bytes, 4 * width
 * for the history), NotEvenStep (16u, 32f silhouette; history step not a
 * multiple of 4), OutOfRange (motionDuration < 0; NaN passes). */
RVPAPI RvpStatus rvpiUpdateMotionHistory_8u32f_C1IR(const Rvp8u* pSilhouette, int silhouetteStep,
                                                    Rvp32f* pMotionHistory, int motionHistoryStep, RvpiSize roiSize,
                                                    Rvp32f timeStamp, Rvp32f motionDuration);
RVPAPI RvpStatus rvpiUpdateMotionHistory_16u32f_C1IR(const Rvp16u* pSilhouette, int silhouetteStep,
                                                     Rvp32f* pMotionHistory, int motionHistoryStep, RvpiSize roiSize,
                                                     Rvp32f timeStamp, Rvp32f motionDuration);
RVPAPI RvpStatus rvpiUpdateMotionHistory_32f_C1IR(const Rvp32f* pSilhouette, int silhouetteStep,
                                                  Rvp32f* pMotionHistory, int motionHistoryStep, RvpiSize roiSize,
                                                  Rvp32f timeStamp, Rvp32f motionDuration);

/* ---- Segment boundaries ------------------------------------------------ */
/* Draws boundaries into a label image in place, in scan order (rows from
 * the top, pixels from the left; a test reads what earlier tests wrote).
 * norm 1, or a one-column image: row 0 sets p[x + 1] = val where p[x] is not
 * val and differs from p[x + 1]; in later rows a pixel becomes val when its
 * left or upper neighbour is not val and differs from it. norm 0 adds the
 * upper-left and upper-right neighbours to that test. So the boundary lies
 * on the right and lower side of a change. Runs on the calling thread.
 * Statuses: NullPtr, Size, Step, NotEvenStep (16u odd step), BadArg (norm). */
RVPAPI RvpStatus rvpiBoundSegments_8u_C1IR(Rvp8u* pMarker, int markerStep, RvpiSize roiSize, Rvp8u val, int norm);
RVPAPI RvpStatus rvpiBoundSegments_16u_C1IR(Rvp16u* pMarker, int markerStep, RvpiSize roiSize, Rvp16u val,
                                            int norm);

/* ---- Watershed ---------------------------------------------------------- */
/* flag bits: */
#define RVP_WATERSHED_QUEUE    1   /* priority-queue flooding; wins over bit 2 */
#define RVP_WATERSHED_DISTANCE 2   /* distance relaxation by raster sweeps */
#define RVP_WATERSHED_BORDER_4 64  /* mark boundaries testing 4 neighbours; wins over 128 */
#define RVP_WATERSHED_BORDER_8 128 /* mark boundaries testing 8 neighbours */
/* Marker-driven watershed, in place on pMarker: nonzero pixels are seeds,
 * zero pixels are assigned; the largest label (255, or 65535 for 16-bit
 * markers) is the boundary label, and seeds of that label are walls.
 * Queue engine (norm 0: 8 neighbours, 1: 4): seeds next to an unlabelled
 * pixel enter 256 first-in first-out queues by gray level; the lowest
 * non-empty queue is popped and each unlabelled neighbour (left, right, up,
 * down, then the diagonals) takes the popped label and enters queue
 * max(its gray, current level). With a boundary bit a pixel that touches
 * two regions takes the boundary label (seeds included, in raster order);
 * pixels no seed reaches stay 0.
 * Distance engine (norm 0: 8 neighbours at cost 0; 1: 4 at 0; 2: 8 at 10
 * side / 14 diagonal; 3: 4 at 63 with a fast-marching update; a one-column
 * image acts as norm 1): keys gray << 23 plus the path cost relax over a
 * down sweep, an up sweep, then alternating check sweeps until nothing
 * changes; each pixel takes the label of the neighbour that gave its key
 * (earlier candidates win ties). Boundaries are then drawn with the keys
 * deciding which pixel of a pair takes them (the larger key; ties: the right
 * or lower pixel). Results do not depend on the thread count.
 * Statuses: NullPtr, Size (also a size whose buffer would not fit an int),
 * Step (srcStep below width, markerStep below the marker row's bytes),
 * BadArg (no engine bit; queue engine with norm other than 0, 1; distance
 * engine with norm outside 0..3). */
RVPAPI RvpStatus rvpiSegmentWatershed_8u_C1IR(const Rvp8u* pSrc, int srcStep, Rvp8u* pMarker, int markerStep,
                                              RvpiSize roiSize, int norm, int flag, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiSegmentWatershed_8u16u_C1IR(const Rvp8u* pSrc, int srcStep, Rvp16u* pMarker, int markerStep,
                                                 RvpiSize roiSize, int norm, int flag, Rvp8u* pBuffer);
/* max(height + 66 + 6 * height * pitch + 2 * pitch,
 *     16 * width * height + 48 + (width + 2) * (height + 2) * labelBytes),
 * pitch = (width + 31) & ~31, or (2 * width + 31) & ~31 for 16-bit labels.
 * Statuses: NullPtr, Size (also when the size does not fit an int). */
RVPAPI RvpStatus rvpiSegmentWatershedGetBufferSize_8u_C1R(RvpiSize roiSize, int* pBufferSize);
RVPAPI RvpStatus rvpiSegmentWatershedGetBufferSize_8u16u_C1R(RvpiSize roiSize, int* pBufferSize);

/* ---- Gradient segmentation ---------------------------------------------- */
/* Region growing from markers over the image's gradient, in place on
 * pMarker with the watershed's conventions (0: to assign, 255: boundary
 * label and walls). The gradient of a pixel is the largest absolute
 * difference to any of its 8 neighbours, over the channels for colour; the
 * labels then flood as the watershed's queue engine does over that gradient
 * (norm 1: 4 neighbours, 0: 8): every pixel a seed can reach without crossing a wall
 * is labelled, low gradients first, so regions meet along edges. flag 0, or
 * RVP_WATERSHED_BORDER_4 / _8 to mark the pixels where regions meet.
 * Statuses: NullPtr, Size, Step (srcStep below the row's bytes, markerStep
 * below width), BadArg (norm, or other flag bits). */
RVPAPI RvpStatus rvpiSegmentGradient_8u_C1IR(const Rvp8u* pSrc, int srcStep, Rvp8u* pMarker, int markerStep,
                                             RvpiSize roiSize, int norm, int flag, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiSegmentGradient_8u_C3IR(const Rvp8u* pSrc, int srcStep, Rvp8u* pMarker, int markerStep,
                                             RvpiSize roiSize, int norm, int flag, Rvp8u* pBuffer);
/* width * height + the watershed queue engine's bytes + 16. Statuses:
 * NullPtr, Size (also when the size does not fit an int). */
RVPAPI RvpStatus rvpiSegmentGradientGetBufferSize_8u_C1R(RvpiSize roiSize, int* pBufferSize);
RVPAPI RvpStatus rvpiSegmentGradientGetBufferSize_8u_C3R(RvpiSize roiSize, int* pBufferSize);

/* ---- Flood fill ---------------------------------------------------------- */
/* Region record of a fill: pixels counted (the 32-bit count, as a double),
 * the fill value (C1 forms: value[0], then 0.0 twice) and the bounding box. */
typedef struct {
    Rvp64f   area;
    Rvp64f   value[3];
    RvpiRect rect;
} RvpiConnectedComp;
/* Scan-line flood fill from one seed, in place, on the calling thread; the
 * spans waiting to be scanned live in pBuffer (24-byte records, the stack at
 * pBuffer rounded up to 8 bytes; behind a visited mask of (w + 2) * (h + 2)
 * bytes for the gradient fills). A C3 pixel passes a test when all three
 * channels do, and each channel has its own value and deltas.
 * Rules:
 *  - exact (4Con, 8Con): pixels equal to the seed's first value (32f: an
 *    ordered compare, a NaN never matches, so a NaN seed paints only itself);
 *  - Range: lo = seed - minDelta .. hi = seed + maxDelta, both inclusive,
 *    clamped to the type's range for 8u and 16u, unclamped for 32f (NaN fails);
 *  - Grad: a pixel a joins next to an accepted pixel b when
 *    -minDelta <= a - b <= maxDelta, for integers (a + minDelta) - b <=
 *    minDelta + maxDelta in unsigned 32 bits; for 32f |(a + h) - b| <= r with
 *    h = (minDelta - maxDelta) * 0.5, r = (minDelta + maxDelta) * 0.5 in
 *    single precision (NaN fails). A run grows to the left by its own
 *    neighbours only and to the right also by the row it was reached from.
 * The exact and range fills return at once, with pRegion unwritten, when the
 * seed already holds the new value; a one-row image is filled by the seed
 * row's run. The spans of each row are scanned in a fixed order (the row
 * away from the one a span grew from, then the stretches of that row beyond
 * its parent), last found first scanned; the gradient fills mark pixels as
 * they find them and paint a span once its neighbours are scanned, counting
 * area then. The range fills keep at most w * h / 4 spans: the stack index
 * restarts at 0 when it reaches that count, older spans are overwritten and
 * the fill may end with spans never scanned (area counts them, rect misses
 * them), and with exactly one place (w * h from 4 to 7) and two rows or more
 * only the seed row is filled. Their painted pixels keep matching when the
 * new value lies inside lo..hi and may be counted again; such a fill also
 * stops once it has counted 16 * w * h pixels, since it might never end.
 * Deviation, for memory safety: an exact or gradient fill whose waiting spans
 * outgrow pBuffer (tangled patterns only) continues on memory it allocates
 * and frees, and if that fails stops with rvpStsMemAllocErr, the image
 * partly filled.
 * Statuses: NullPtr (pSrcDst, pRegion, pBuffer; pNewVal, pMinDelta,
 * pMaxDelta), Size (also a size whose buffer would not fit an int), Step
 * (below width for 8u, 2 * width 16u C1, 6 * width 16u C3, 4 * width 32f),
 * NotEvenStep (16u odd, 32f not a multiple of 4), OutOfRange (seed outside
 * the image; Grad 32f: a delta below 0, NaN passes), MemAlloc. */
RVPAPI RvpStatus rvpiFloodFill_4Con_8u_C1IR(Rvp8u* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                            Rvp8u newVal, RvpiConnectedComp* pRegion, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_4Con_8u_C3IR(Rvp8u* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                            const Rvp8u* pNewVal, RvpiConnectedComp* pRegion, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_4Con_16u_C1IR(Rvp16u* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                             Rvp16u newVal, RvpiConnectedComp* pRegion, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_4Con_16u_C3IR(Rvp16u* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                             const Rvp16u* pNewVal, RvpiConnectedComp* pRegion, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_4Con_32f_C1IR(Rvp32f* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                             Rvp32f newVal, RvpiConnectedComp* pRegion, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_4Con_32f_C3IR(Rvp32f* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                             const Rvp32f* pNewVal, RvpiConnectedComp* pRegion, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_8Con_8u_C1IR(Rvp8u* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                            Rvp8u newVal, RvpiConnectedComp* pRegion, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_8Con_8u_C3IR(Rvp8u* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                            const Rvp8u* pNewVal, RvpiConnectedComp* pRegion, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_8Con_16u_C1IR(Rvp16u* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                             Rvp16u newVal, RvpiConnectedComp* pRegion, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_8Con_16u_C3IR(Rvp16u* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                             const Rvp16u* pNewVal, RvpiConnectedComp* pRegion, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_8Con_32f_C1IR(Rvp32f* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                             Rvp32f newVal, RvpiConnectedComp* pRegion, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_8Con_32f_C3IR(Rvp32f* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                             const Rvp32f* pNewVal, RvpiConnectedComp* pRegion, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_Grad4Con_8u_C1IR(Rvp8u* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                                Rvp8u newVal, Rvp8u minDelta, Rvp8u maxDelta,
                                                RvpiConnectedComp* pRegion, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_Grad4Con_8u_C3IR(Rvp8u* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                                const Rvp8u* pNewVal, const Rvp8u* pMinDelta, const Rvp8u* pMaxDelta,
                                                RvpiConnectedComp* pRegion, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_Grad4Con_16u_C1IR(Rvp16u* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                                 Rvp16u newVal, Rvp16u minDelta, Rvp16u maxDelta,
                                                 RvpiConnectedComp* pRegion, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_Grad4Con_16u_C3IR(Rvp16u* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                                 const Rvp16u* pNewVal, const Rvp16u* pMinDelta,
                                                 const Rvp16u* pMaxDelta, RvpiConnectedComp* pRegion, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_Grad4Con_32f_C1IR(Rvp32f* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                                 Rvp32f newVal, Rvp32f minDelta, Rvp32f maxDelta,
                                                 RvpiConnectedComp* pRegion, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_Grad4Con_32f_C3IR(Rvp32f* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                                 const Rvp32f* pNewVal, const Rvp32f* pMinDelta,
                                                 const Rvp32f* pMaxDelta, RvpiConnectedComp* pRegion, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_Grad8Con_8u_C1IR(Rvp8u* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                                Rvp8u newVal, Rvp8u minDelta, Rvp8u maxDelta,
                                                RvpiConnectedComp* pRegion, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_Grad8Con_8u_C3IR(Rvp8u* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                                const Rvp8u* pNewVal, const Rvp8u* pMinDelta, const Rvp8u* pMaxDelta,
                                                RvpiConnectedComp* pRegion, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_Grad8Con_16u_C1IR(Rvp16u* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                                 Rvp16u newVal, Rvp16u minDelta, Rvp16u maxDelta,
                                                 RvpiConnectedComp* pRegion, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_Grad8Con_16u_C3IR(Rvp16u* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                                 const Rvp16u* pNewVal, const Rvp16u* pMinDelta,
                                                 const Rvp16u* pMaxDelta, RvpiConnectedComp* pRegion, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_Grad8Con_32f_C1IR(Rvp32f* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                                 Rvp32f newVal, Rvp32f minDelta, Rvp32f maxDelta,
                                                 RvpiConnectedComp* pRegion, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_Grad8Con_32f_C3IR(Rvp32f* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                                 const Rvp32f* pNewVal, const Rvp32f* pMinDelta,
                                                 const Rvp32f* pMaxDelta, RvpiConnectedComp* pRegion, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_Range4Con_8u_C1IR(Rvp8u* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                                 Rvp8u newVal, Rvp8u minDelta, Rvp8u maxDelta,
                                                 RvpiConnectedComp* pRegion, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_Range4Con_8u_C3IR(Rvp8u* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                                 const Rvp8u* pNewVal, const Rvp8u* pMinDelta, const Rvp8u* pMaxDelta,
                                                 RvpiConnectedComp* pRegion, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_Range4Con_16u_C1IR(Rvp16u* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                                  Rvp16u newVal, Rvp16u minDelta, Rvp16u maxDelta,
                                                  RvpiConnectedComp* pRegion, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_Range4Con_16u_C3IR(Rvp16u* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                                  const Rvp16u* pNewVal, const Rvp16u* pMinDelta,
                                                  const Rvp16u* pMaxDelta, RvpiConnectedComp* pRegion,
                                                  Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_Range4Con_32f_C1IR(Rvp32f* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                                  Rvp32f newVal, Rvp32f minDelta, Rvp32f maxDelta,
                                                  RvpiConnectedComp* pRegion, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_Range4Con_32f_C3IR(Rvp32f* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                                  const Rvp32f* pNewVal, const Rvp32f* pMinDelta,
                                                  const Rvp32f* pMaxDelta, RvpiConnectedComp* pRegion,
                                                  Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_Range8Con_8u_C1IR(Rvp8u* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                                 Rvp8u newVal, Rvp8u minDelta, Rvp8u maxDelta,
                                                 RvpiConnectedComp* pRegion, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_Range8Con_8u_C3IR(Rvp8u* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                                 const Rvp8u* pNewVal, const Rvp8u* pMinDelta, const Rvp8u* pMaxDelta,
                                                 RvpiConnectedComp* pRegion, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_Range8Con_16u_C1IR(Rvp16u* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                                  Rvp16u newVal, Rvp16u minDelta, Rvp16u maxDelta,
                                                  RvpiConnectedComp* pRegion, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_Range8Con_16u_C3IR(Rvp16u* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                                  const Rvp16u* pNewVal, const Rvp16u* pMinDelta,
                                                  const Rvp16u* pMaxDelta, RvpiConnectedComp* pRegion,
                                                  Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_Range8Con_32f_C1IR(Rvp32f* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                                  Rvp32f newVal, Rvp32f minDelta, Rvp32f maxDelta,
                                                  RvpiConnectedComp* pRegion, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFloodFill_Range8Con_32f_C3IR(Rvp32f* pSrcDst, int srcDstStep, RvpiSize roiSize, RvpiPoint seed,
                                                  const Rvp32f* pNewVal, const Rvp32f* pMinDelta,
                                                  const Rvp32f* pMaxDelta, RvpiConnectedComp* pRegion,
                                                  Rvp8u* pBuffer);
/* Buffer of the exact and range fills: 6 * width * height + 32 bytes; of the
 * gradient fills: (width + 2) * (height + 2) + 6 * width * height + 32.
 * Statuses: NullPtr, Size (also when the size does not fit an int). */
RVPAPI RvpStatus rvpiFloodFillGetSize(RvpiSize roiSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFloodFillGetSize_Grad(RvpiSize roiSize, int* pBufferSize);

/* ---- Marker labelling ----------------------------------------------------- */
/* Labels the connected components of the nonzero pixels in place: every
 * nonzero pixel first becomes the top value (255 or 65535, which marks an
 * unlabelled pixel); rows are then scanned from the top, pixels from the
 * left, and each top-valued pixel seeds an exact fill (norm 1: 4 neighbours,
 * norm 0: 8) with the next label, starting at minLabel and returning to
 * minLabel after maxLabel, so labels repeat when components outnumber them.
 * *pNumber receives the number of components, however many labels there are.
 * pBuffer: rvpiLabelMarkersGetBufferSize bytes, 6 * width * height + 32.
 * Runs on the calling thread.
 * Statuses: NullPtr (pMarker, pBuffer, pNumber), Size (also a size whose
 * buffer would not fit an int), Step, NotEvenStep (16u odd step), BadArg
 * (minLabel < 1, maxLabel not below the top value, minLabel > maxLabel, norm
 * other than 0 and 1). */
RVPAPI RvpStatus rvpiLabelMarkers_8u_C1IR(Rvp8u* pMarker, int markerStep, RvpiSize roiSize, int minLabel, int maxLabel, int norm, int* pNumber, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiLabelMarkers_16u_C1IR(Rvp16u* pMarker, int markerStep, RvpiSize roiSize, int minLabel, int maxLabel, int norm, int* pNumber, Rvp8u* pBuffer);
/* Statuses: NullPtr, Size (also when the size does not fit an int). */
RVPAPI RvpStatus rvpiLabelMarkersGetBufferSize_8u_C1R(RvpiSize roiSize, int* pBufferSize);
RVPAPI RvpStatus rvpiLabelMarkersGetBufferSize_16u_C1R(RvpiSize roiSize, int* pBufferSize);

/* ---- Inpainting ---------------------------------------------------------- */
/* Fills the pixels a mask marks (nonzero), from the outer edge inward in the
 * order of a distance map (a fast-marching map suits: 0 outside the mask,
 * growing inward); masked pixels of distance 0 or below, or NaN, are not
 * filled. The state holds what depends only on mask, distances and radius:
 * the work region (the mask's box grown by (int)radius + 1, clamped to the
 * image), the neighbours within the radius and the fill list sorted by
 * distance, then by index. Each call copies pSrc to pDst and fills in pDst,
 * every filled pixel becoming known to the later ones. A neighbour q at
 * distance r = |q - p| (r <= radius) that is known adds, with weight w,
 *   flags 0 (distance-directed): g = gradient of the distances at p (x64),
 *     w = |2^-12 / (|T(q) - T(p)| + 1) * r^-3 * (g . (p - q))|, and a
 *     correction term from the image gradient at q;
 *   flags 1 (isophote-directed): g = image gradient at p,
 *     w = |g . (p - q)| / (|g| * r * (r^4 + 1)), or 1e-6 when the dot is 0;
 * with 1/r and 1/|g| as a reciprocal root refined by one Newton step from
 * the rounded value (the same on every processor). A pixel whose weights sum
 * below 0.0001 takes the mean of its known 4-neighbours (0 without any).
 * C3: the weights are shared, each channel has its own sum (and its own
 * gradients; the isophote method's g is their sum). Single precision.
 * Statuses: NullPtr, Size (also a work region of 2^28 pixels or more, or a
 * state that would not fit an int), Step, NotEvenStep (distStep), BadArg
 * (flags other than 0, 1; radius below 1, at or above 4096, or NaN),
 * MemAlloc (nothing is left allocated). */
typedef struct RvpiInpaintState RvpiInpaintState;
RVPAPI RvpStatus rvpiInpaintInitAlloc_8u_C1R(RvpiInpaintState** ppState, const Rvp32f* pDist, int distStep,
                                             const Rvp8u* pMask, int maskStep, RvpiSize roiSize, Rvp32f radius,
                                             int flags);
RVPAPI RvpStatus rvpiInpaintInitAlloc_8u_C3R(RvpiInpaintState** ppState, const Rvp32f* pDist, int distStep,
                                             const Rvp8u* pMask, int maskStep, RvpiSize roiSize, Rvp32f radius,
                                             int flags);
/* Statuses: NullPtr, Size (also a size or channel count other than the
 * state's), Step (srcStep or dstStep below the row's bytes). pSrc and pDst
 * may be the same image. */
RVPAPI RvpStatus rvpiInpaint_8u_C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep, RvpiSize roiSize,
                                    RvpiInpaintState* pState);
RVPAPI RvpStatus rvpiInpaint_8u_C3R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep, RvpiSize roiSize,
                                    RvpiInpaintState* pState);
/* Statuses: NullPtr. Either form releases either state. */
RVPAPI RvpStatus rvpiInpaintFree_8u_C1R(RvpiInpaintState* pState);
RVPAPI RvpStatus rvpiInpaintFree_8u_C3R(RvpiInpaintState* pState);

/* ---- Composite morphology ------------------------------------------------- */
/* Opening (erosion, then dilation), closing (dilation, then erosion),
 * top-hat (source - opening), black-hat (closing - source) and gradient
 * (dilation - erosion) by one structuring element, each pass with the rules
 * of rvpiDilateBorderReplicate / rvpiErodeBorderReplicate (replicated
 * border); the differences saturate at 0 for 8u. The state holds the
 * analysed mask and two band images (the image is processed in bands of
 * rows, so no image of the full size is made); it is built like the
 * structuring-element state: GetSize reports the bytes for the centred
 * anchor, Init builds in the caller's memory, InitAlloc allocates, and
 * rvpiMorphAdvFree releases. Statuses of GetSize/Init/InitAlloc: NullPtr
 * (pMask, then pSize / pState / ppState), Size (roiWidth or mask size below 1,
 * or a state that would not fit an int), Anchor, MemAlloc. */
typedef struct RvpiMorphAdvState RvpiMorphAdvState;
RVPAPI RvpStatus rvpiMorphAdvGetSize_8u_C1R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, int* pSize);
RVPAPI RvpStatus rvpiMorphAdvGetSize_8u_C3R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, int* pSize);
RVPAPI RvpStatus rvpiMorphAdvGetSize_8u_C4R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, int* pSize);
RVPAPI RvpStatus rvpiMorphAdvGetSize_32f_C1R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, int* pSize);
RVPAPI RvpStatus rvpiMorphAdvGetSize_32f_C3R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, int* pSize);
RVPAPI RvpStatus rvpiMorphAdvGetSize_32f_C4R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, int* pSize);
RVPAPI RvpStatus rvpiMorphAdvInit_8u_C1R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, RvpiPoint anchor,
                                         RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphAdvInitAlloc_8u_C1R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, RvpiPoint anchor,
                                              RvpiMorphAdvState** ppState);
RVPAPI RvpStatus rvpiMorphAdvInit_8u_C3R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, RvpiPoint anchor,
                                         RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphAdvInitAlloc_8u_C3R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, RvpiPoint anchor,
                                              RvpiMorphAdvState** ppState);
RVPAPI RvpStatus rvpiMorphAdvInit_8u_C4R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, RvpiPoint anchor,
                                         RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphAdvInitAlloc_8u_C4R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, RvpiPoint anchor,
                                              RvpiMorphAdvState** ppState);
RVPAPI RvpStatus rvpiMorphAdvInit_32f_C1R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, RvpiPoint anchor,
                                          RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphAdvInitAlloc_32f_C1R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, RvpiPoint anchor,
                                               RvpiMorphAdvState** ppState);
RVPAPI RvpStatus rvpiMorphAdvInit_32f_C3R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, RvpiPoint anchor,
                                          RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphAdvInitAlloc_32f_C3R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, RvpiPoint anchor,
                                               RvpiMorphAdvState** ppState);
RVPAPI RvpStatus rvpiMorphAdvInit_32f_C4R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, RvpiPoint anchor,
                                          RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphAdvInitAlloc_32f_C4R(int roiWidth, const Rvp8u* pMask, RvpiSize maskSize, RvpiPoint anchor,
                                               RvpiMorphAdvState** ppState);
/* Statuses: NullPtr. */
RVPAPI RvpStatus rvpiMorphAdvFree(RvpiMorphAdvState* pState);
/* pSrc and pDst must not overlap. Statuses: NullPtr (pSrc, pDst, pState), Size,
 * Step, NotEvenStep (32f), BadArg (borderType other than rvpBorderRepl, a
 * state of another layout), Size (width above the state's roiWidth). */
RVPAPI RvpStatus rvpiMorphOpenBorder_8u_C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                            RvpiSize roiSize, int borderType, RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphOpenBorder_8u_C3R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                            RvpiSize roiSize, int borderType, RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphOpenBorder_8u_C4R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                            RvpiSize roiSize, int borderType, RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphOpenBorder_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                             RvpiSize roiSize, int borderType, RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphOpenBorder_32f_C3R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                             RvpiSize roiSize, int borderType, RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphOpenBorder_32f_C4R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                             RvpiSize roiSize, int borderType, RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphCloseBorder_8u_C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                             RvpiSize roiSize, int borderType, RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphCloseBorder_8u_C3R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                             RvpiSize roiSize, int borderType, RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphCloseBorder_8u_C4R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                             RvpiSize roiSize, int borderType, RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphCloseBorder_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                              RvpiSize roiSize, int borderType, RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphCloseBorder_32f_C3R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                              RvpiSize roiSize, int borderType, RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphCloseBorder_32f_C4R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                              RvpiSize roiSize, int borderType, RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphTophatBorder_8u_C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                              RvpiSize roiSize, int borderType, RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphTophatBorder_8u_C3R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                              RvpiSize roiSize, int borderType, RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphTophatBorder_8u_C4R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                              RvpiSize roiSize, int borderType, RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphTophatBorder_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                               RvpiSize roiSize, int borderType, RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphTophatBorder_32f_C3R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                               RvpiSize roiSize, int borderType, RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphTophatBorder_32f_C4R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                               RvpiSize roiSize, int borderType, RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphBlackhatBorder_8u_C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                                RvpiSize roiSize, int borderType, RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphBlackhatBorder_8u_C3R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                                RvpiSize roiSize, int borderType, RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphBlackhatBorder_8u_C4R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                                RvpiSize roiSize, int borderType, RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphBlackhatBorder_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                                 RvpiSize roiSize, int borderType, RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphBlackhatBorder_32f_C3R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                                 RvpiSize roiSize, int borderType, RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphBlackhatBorder_32f_C4R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                                 RvpiSize roiSize, int borderType, RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphGradientBorder_8u_C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                                RvpiSize roiSize, int borderType, RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphGradientBorder_8u_C3R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                                RvpiSize roiSize, int borderType, RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphGradientBorder_8u_C4R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                                RvpiSize roiSize, int borderType, RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphGradientBorder_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                                 RvpiSize roiSize, int borderType, RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphGradientBorder_32f_C3R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                                 RvpiSize roiSize, int borderType, RvpiMorphAdvState* pState);
RVPAPI RvpStatus rvpiMorphGradientBorder_32f_C4R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                                 RvpiSize roiSize, int borderType, RvpiMorphAdvState* pState);

/* ---- Gray-scale morphology -------------------------------------------------- */
/* Dilation and erosion by a non-flat structuring element: a value in each of
 * the maskSize cells (Rvp32s for 8u images, Rvp32f for 32f), anchor at
 * anchor. With the replicated border s(x, y) = src(clamp(x), clamp(y)):
 *   dilation: dst(x, y) = max over cells (c, r) of s(x + c - ax, y + r - ay) + v(c, r)
 *   erosion:  dst(x, y) = min over cells of s(x + c - ax, y + r - ay) - v(c, r)
 * 8u: each sum saturates to 0..255 (so values beyond +-255 act as +-255, and
 * a cell of -255 or less never changes a result); 32f: single precision, a
 * cell of -infinity is left out of the element, NaN samples are passed over
 * (a pixel that sees only NaN gets -inf or +inf), and a value of 0 takes the
 * sample itself. An element of zeros gives the binary-mask result of
 * rvpiDilateBorderReplicate / rvpiErodeBorderReplicate over its rectangle.
 * State functions as for composite morphology; GetSize/Init/InitAlloc
 * statuses: NullPtr, Size, Anchor, BadArg (a NaN value, or no cell left),
 * MemAlloc. */
typedef struct RvpiMorphGrayState RvpiMorphGrayState;
RVPAPI RvpStatus rvpiMorphGrayGetSize_8u_C1R(int roiWidth, const Rvp32s* pMask, RvpiSize maskSize, int* pSize);
RVPAPI RvpStatus rvpiMorphGrayInit_8u_C1R(int roiWidth, const Rvp32s* pMask, RvpiSize maskSize, RvpiPoint anchor,
                                          RvpiMorphGrayState* pState);
RVPAPI RvpStatus rvpiMorphGrayInitAlloc_8u_C1R(int roiWidth, const Rvp32s* pMask, RvpiSize maskSize, RvpiPoint anchor,
                                               RvpiMorphGrayState** ppState);
RVPAPI RvpStatus rvpiMorphGrayGetSize_32f_C1R(int roiWidth, const Rvp32f* pMask, RvpiSize maskSize, int* pSize);
RVPAPI RvpStatus rvpiMorphGrayInit_32f_C1R(int roiWidth, const Rvp32f* pMask, RvpiSize maskSize, RvpiPoint anchor,
                                           RvpiMorphGrayState* pState);
RVPAPI RvpStatus rvpiMorphGrayInitAlloc_32f_C1R(int roiWidth, const Rvp32f* pMask, RvpiSize maskSize,
                                                RvpiPoint anchor, RvpiMorphGrayState** ppState);
RVPAPI RvpStatus rvpiMorphGrayFree(RvpiMorphGrayState* pState);
/* Statuses as for the composite operations (one channel). */
RVPAPI RvpStatus rvpiGrayDilateBorder_8u_C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                             RvpiSize roiSize, int borderType, RvpiMorphGrayState* pState);
RVPAPI RvpStatus rvpiGrayDilateBorder_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                              RvpiSize roiSize, int borderType, RvpiMorphGrayState* pState);
RVPAPI RvpStatus rvpiGrayErodeBorder_8u_C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                            RvpiSize roiSize, int borderType, RvpiMorphGrayState* pState);
RVPAPI RvpStatus rvpiGrayErodeBorder_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                             RvpiSize roiSize, int borderType, RvpiMorphGrayState* pState);

/* ---- Norms and statistics ------------------------------------------------ */
/* Reductions over the pixels whose mask byte is nonzero (every pixel in the
 * unmasked C1R and C3CR forms), of one channel: coi 1, 2 or 3 in the C3C
 * forms. Inf is the largest |x|, L1 the sum of |x|, L2 the root of the sum
 * of x^2; NormDiff works on x1 - x2, NormRel is NormDiff(x1, x2) / Norm(x2)
 * of the same kind. Mean is the sum over the count, the deviation the
 * population one (divided by the count; floats in a second pass around the
 * mean). MinMaxIndx gives the extremes as floats and the (x, y) of their first
 * occurrence in raster order.
 * Integer samples are summed exactly; float samples in double precision.
 * Images of maxThreads * 131072 pixels and more (16384 for MinMaxIndx) are
 * reduced in bands, one partial result per thread combined in thread order:
 * one team size gives one result, another team size may change the last bits
 * of a float sum.
 * NaN: a NaN sample makes the L1 and L2 norms, the mean and the deviation
 * NaN; the Inf norm and the extremes pass it over (all-NaN selections give
 * an Inf norm of 0 and extremes of NaN at the first selected pixel).
 * Statuses: NullPtr, Size (also no selected pixel, nothing written), Step
 * (a source step below the row's bytes, maskStep below the width),
 * NotEvenStep (a source step not a multiple of the sample size), COI, and
 * DivByZero from NormRel when the denominator is 0 (the quotient, an
 * infinity or NaN, is still stored). */
RVPAPI RvpStatus rvpiNorm_Inf_8u_C1MR(const Rvp8u* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                      RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormDiff_Inf_8u_C1MR(const Rvp8u* pSrc1, int src1Step, const Rvp8u* pSrc2, int src2Step,
                                          const Rvp8u* pMask, int maskStep, RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormRel_Inf_8u_C1MR(const Rvp8u* pSrc1, int src1Step, const Rvp8u* pSrc2, int src2Step,
                                         const Rvp8u* pMask, int maskStep, RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNorm_Inf_8u_C3CMR(const Rvp8u* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                       RvpiSize roiSize, int coi, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormDiff_Inf_8u_C3CMR(const Rvp8u* pSrc1, int src1Step, const Rvp8u* pSrc2, int src2Step,
                                           const Rvp8u* pMask, int maskStep, RvpiSize roiSize, int coi,
                                           Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormRel_Inf_8u_C3CMR(const Rvp8u* pSrc1, int src1Step, const Rvp8u* pSrc2, int src2Step,
                                          const Rvp8u* pMask, int maskStep, RvpiSize roiSize, int coi,
                                          Rvp64f* pValue);
RVPAPI RvpStatus rvpiNorm_L1_8u_C1MR(const Rvp8u* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                     RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormDiff_L1_8u_C1MR(const Rvp8u* pSrc1, int src1Step, const Rvp8u* pSrc2, int src2Step,
                                         const Rvp8u* pMask, int maskStep, RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormRel_L1_8u_C1MR(const Rvp8u* pSrc1, int src1Step, const Rvp8u* pSrc2, int src2Step,
                                        const Rvp8u* pMask, int maskStep, RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNorm_L1_8u_C3CMR(const Rvp8u* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                      RvpiSize roiSize, int coi, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormDiff_L1_8u_C3CMR(const Rvp8u* pSrc1, int src1Step, const Rvp8u* pSrc2, int src2Step,
                                          const Rvp8u* pMask, int maskStep, RvpiSize roiSize, int coi,
                                          Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormRel_L1_8u_C3CMR(const Rvp8u* pSrc1, int src1Step, const Rvp8u* pSrc2, int src2Step,
                                         const Rvp8u* pMask, int maskStep, RvpiSize roiSize, int coi,
                                         Rvp64f* pValue);
RVPAPI RvpStatus rvpiNorm_L2_8u_C1MR(const Rvp8u* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                     RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormDiff_L2_8u_C1MR(const Rvp8u* pSrc1, int src1Step, const Rvp8u* pSrc2, int src2Step,
                                         const Rvp8u* pMask, int maskStep, RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormRel_L2_8u_C1MR(const Rvp8u* pSrc1, int src1Step, const Rvp8u* pSrc2, int src2Step,
                                        const Rvp8u* pMask, int maskStep, RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNorm_L2_8u_C3CMR(const Rvp8u* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                      RvpiSize roiSize, int coi, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormDiff_L2_8u_C3CMR(const Rvp8u* pSrc1, int src1Step, const Rvp8u* pSrc2, int src2Step,
                                          const Rvp8u* pMask, int maskStep, RvpiSize roiSize, int coi,
                                          Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormRel_L2_8u_C3CMR(const Rvp8u* pSrc1, int src1Step, const Rvp8u* pSrc2, int src2Step,
                                         const Rvp8u* pMask, int maskStep, RvpiSize roiSize, int coi,
                                         Rvp64f* pValue);
RVPAPI RvpStatus rvpiNorm_Inf_8s_C1MR(const Rvp8s* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                      RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormDiff_Inf_8s_C1MR(const Rvp8s* pSrc1, int src1Step, const Rvp8s* pSrc2, int src2Step,
                                          const Rvp8u* pMask, int maskStep, RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormRel_Inf_8s_C1MR(const Rvp8s* pSrc1, int src1Step, const Rvp8s* pSrc2, int src2Step,
                                         const Rvp8u* pMask, int maskStep, RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNorm_Inf_8s_C3CMR(const Rvp8s* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                       RvpiSize roiSize, int coi, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormDiff_Inf_8s_C3CMR(const Rvp8s* pSrc1, int src1Step, const Rvp8s* pSrc2, int src2Step,
                                           const Rvp8u* pMask, int maskStep, RvpiSize roiSize, int coi,
                                           Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormRel_Inf_8s_C3CMR(const Rvp8s* pSrc1, int src1Step, const Rvp8s* pSrc2, int src2Step,
                                          const Rvp8u* pMask, int maskStep, RvpiSize roiSize, int coi,
                                          Rvp64f* pValue);
RVPAPI RvpStatus rvpiNorm_L1_8s_C1MR(const Rvp8s* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                     RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormDiff_L1_8s_C1MR(const Rvp8s* pSrc1, int src1Step, const Rvp8s* pSrc2, int src2Step,
                                         const Rvp8u* pMask, int maskStep, RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormRel_L1_8s_C1MR(const Rvp8s* pSrc1, int src1Step, const Rvp8s* pSrc2, int src2Step,
                                        const Rvp8u* pMask, int maskStep, RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNorm_L1_8s_C3CMR(const Rvp8s* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                      RvpiSize roiSize, int coi, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormDiff_L1_8s_C3CMR(const Rvp8s* pSrc1, int src1Step, const Rvp8s* pSrc2, int src2Step,
                                          const Rvp8u* pMask, int maskStep, RvpiSize roiSize, int coi,
                                          Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormRel_L1_8s_C3CMR(const Rvp8s* pSrc1, int src1Step, const Rvp8s* pSrc2, int src2Step,
                                         const Rvp8u* pMask, int maskStep, RvpiSize roiSize, int coi,
                                         Rvp64f* pValue);
RVPAPI RvpStatus rvpiNorm_L2_8s_C1MR(const Rvp8s* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                     RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormDiff_L2_8s_C1MR(const Rvp8s* pSrc1, int src1Step, const Rvp8s* pSrc2, int src2Step,
                                         const Rvp8u* pMask, int maskStep, RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormRel_L2_8s_C1MR(const Rvp8s* pSrc1, int src1Step, const Rvp8s* pSrc2, int src2Step,
                                        const Rvp8u* pMask, int maskStep, RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNorm_L2_8s_C3CMR(const Rvp8s* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                      RvpiSize roiSize, int coi, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormDiff_L2_8s_C3CMR(const Rvp8s* pSrc1, int src1Step, const Rvp8s* pSrc2, int src2Step,
                                          const Rvp8u* pMask, int maskStep, RvpiSize roiSize, int coi,
                                          Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormRel_L2_8s_C3CMR(const Rvp8s* pSrc1, int src1Step, const Rvp8s* pSrc2, int src2Step,
                                         const Rvp8u* pMask, int maskStep, RvpiSize roiSize, int coi,
                                         Rvp64f* pValue);
RVPAPI RvpStatus rvpiNorm_Inf_16u_C1MR(const Rvp16u* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                       RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormDiff_Inf_16u_C1MR(const Rvp16u* pSrc1, int src1Step, const Rvp16u* pSrc2, int src2Step,
                                           const Rvp8u* pMask, int maskStep, RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormRel_Inf_16u_C1MR(const Rvp16u* pSrc1, int src1Step, const Rvp16u* pSrc2, int src2Step,
                                          const Rvp8u* pMask, int maskStep, RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNorm_Inf_16u_C3CMR(const Rvp16u* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                        RvpiSize roiSize, int coi, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormDiff_Inf_16u_C3CMR(const Rvp16u* pSrc1, int src1Step, const Rvp16u* pSrc2, int src2Step,
                                            const Rvp8u* pMask, int maskStep, RvpiSize roiSize, int coi,
                                            Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormRel_Inf_16u_C3CMR(const Rvp16u* pSrc1, int src1Step, const Rvp16u* pSrc2, int src2Step,
                                           const Rvp8u* pMask, int maskStep, RvpiSize roiSize, int coi,
                                           Rvp64f* pValue);
RVPAPI RvpStatus rvpiNorm_L1_16u_C1MR(const Rvp16u* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                      RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormDiff_L1_16u_C1MR(const Rvp16u* pSrc1, int src1Step, const Rvp16u* pSrc2, int src2Step,
                                          const Rvp8u* pMask, int maskStep, RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormRel_L1_16u_C1MR(const Rvp16u* pSrc1, int src1Step, const Rvp16u* pSrc2, int src2Step,
                                         const Rvp8u* pMask, int maskStep, RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNorm_L1_16u_C3CMR(const Rvp16u* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                       RvpiSize roiSize, int coi, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormDiff_L1_16u_C3CMR(const Rvp16u* pSrc1, int src1Step, const Rvp16u* pSrc2, int src2Step,
                                           const Rvp8u* pMask, int maskStep, RvpiSize roiSize, int coi,
                                           Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormRel_L1_16u_C3CMR(const Rvp16u* pSrc1, int src1Step, const Rvp16u* pSrc2, int src2Step,
                                          const Rvp8u* pMask, int maskStep, RvpiSize roiSize, int coi,
                                          Rvp64f* pValue);
RVPAPI RvpStatus rvpiNorm_L2_16u_C1MR(const Rvp16u* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                      RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormDiff_L2_16u_C1MR(const Rvp16u* pSrc1, int src1Step, const Rvp16u* pSrc2, int src2Step,
                                          const Rvp8u* pMask, int maskStep, RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormRel_L2_16u_C1MR(const Rvp16u* pSrc1, int src1Step, const Rvp16u* pSrc2, int src2Step,
                                         const Rvp8u* pMask, int maskStep, RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNorm_L2_16u_C3CMR(const Rvp16u* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                       RvpiSize roiSize, int coi, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormDiff_L2_16u_C3CMR(const Rvp16u* pSrc1, int src1Step, const Rvp16u* pSrc2, int src2Step,
                                           const Rvp8u* pMask, int maskStep, RvpiSize roiSize, int coi,
                                           Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormRel_L2_16u_C3CMR(const Rvp16u* pSrc1, int src1Step, const Rvp16u* pSrc2, int src2Step,
                                          const Rvp8u* pMask, int maskStep, RvpiSize roiSize, int coi,
                                          Rvp64f* pValue);
RVPAPI RvpStatus rvpiNorm_Inf_32f_C1MR(const Rvp32f* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                       RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormDiff_Inf_32f_C1MR(const Rvp32f* pSrc1, int src1Step, const Rvp32f* pSrc2, int src2Step,
                                           const Rvp8u* pMask, int maskStep, RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormRel_Inf_32f_C1MR(const Rvp32f* pSrc1, int src1Step, const Rvp32f* pSrc2, int src2Step,
                                          const Rvp8u* pMask, int maskStep, RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNorm_Inf_32f_C3CMR(const Rvp32f* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                        RvpiSize roiSize, int coi, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormDiff_Inf_32f_C3CMR(const Rvp32f* pSrc1, int src1Step, const Rvp32f* pSrc2, int src2Step,
                                            const Rvp8u* pMask, int maskStep, RvpiSize roiSize, int coi,
                                            Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormRel_Inf_32f_C3CMR(const Rvp32f* pSrc1, int src1Step, const Rvp32f* pSrc2, int src2Step,
                                           const Rvp8u* pMask, int maskStep, RvpiSize roiSize, int coi,
                                           Rvp64f* pValue);
RVPAPI RvpStatus rvpiNorm_L1_32f_C1MR(const Rvp32f* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                      RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormDiff_L1_32f_C1MR(const Rvp32f* pSrc1, int src1Step, const Rvp32f* pSrc2, int src2Step,
                                          const Rvp8u* pMask, int maskStep, RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormRel_L1_32f_C1MR(const Rvp32f* pSrc1, int src1Step, const Rvp32f* pSrc2, int src2Step,
                                         const Rvp8u* pMask, int maskStep, RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNorm_L1_32f_C3CMR(const Rvp32f* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                       RvpiSize roiSize, int coi, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormDiff_L1_32f_C3CMR(const Rvp32f* pSrc1, int src1Step, const Rvp32f* pSrc2, int src2Step,
                                           const Rvp8u* pMask, int maskStep, RvpiSize roiSize, int coi,
                                           Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormRel_L1_32f_C3CMR(const Rvp32f* pSrc1, int src1Step, const Rvp32f* pSrc2, int src2Step,
                                          const Rvp8u* pMask, int maskStep, RvpiSize roiSize, int coi,
                                          Rvp64f* pValue);
RVPAPI RvpStatus rvpiNorm_L2_32f_C1MR(const Rvp32f* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                      RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormDiff_L2_32f_C1MR(const Rvp32f* pSrc1, int src1Step, const Rvp32f* pSrc2, int src2Step,
                                          const Rvp8u* pMask, int maskStep, RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormRel_L2_32f_C1MR(const Rvp32f* pSrc1, int src1Step, const Rvp32f* pSrc2, int src2Step,
                                         const Rvp8u* pMask, int maskStep, RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNorm_L2_32f_C3CMR(const Rvp32f* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                       RvpiSize roiSize, int coi, Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormDiff_L2_32f_C3CMR(const Rvp32f* pSrc1, int src1Step, const Rvp32f* pSrc2, int src2Step,
                                           const Rvp8u* pMask, int maskStep, RvpiSize roiSize, int coi,
                                           Rvp64f* pValue);
RVPAPI RvpStatus rvpiNormRel_L2_32f_C3CMR(const Rvp32f* pSrc1, int src1Step, const Rvp32f* pSrc2, int src2Step,
                                          const Rvp8u* pMask, int maskStep, RvpiSize roiSize, int coi,
                                          Rvp64f* pValue);
RVPAPI RvpStatus rvpiMean_8u_C1MR(const Rvp8u* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                  RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiMean_StdDev_8u_C1MR(const Rvp8u* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                         RvpiSize roiSize, Rvp64f* pMean, Rvp64f* pStdDev);
RVPAPI RvpStatus rvpiMinMaxIndx_8u_C1MR(const Rvp8u* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                        RvpiSize roiSize, Rvp32f* pMinVal, Rvp32f* pMaxVal, RvpiPoint* pMinIndex,
                                        RvpiPoint* pMaxIndex);
RVPAPI RvpStatus rvpiMean_8u_C3CMR(const Rvp8u* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                   RvpiSize roiSize, int coi, Rvp64f* pValue);
RVPAPI RvpStatus rvpiMean_StdDev_8u_C3CMR(const Rvp8u* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                          RvpiSize roiSize, int coi, Rvp64f* pMean, Rvp64f* pStdDev);
RVPAPI RvpStatus rvpiMinMaxIndx_8u_C3CMR(const Rvp8u* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                         RvpiSize roiSize, int coi, Rvp32f* pMinVal, Rvp32f* pMaxVal,
                                         RvpiPoint* pMinIndex, RvpiPoint* pMaxIndex);
RVPAPI RvpStatus rvpiMean_StdDev_8u_C1R(const Rvp8u* pSrc, int srcStep, RvpiSize roiSize, Rvp64f* pMean,
                                        Rvp64f* pStdDev);
RVPAPI RvpStatus rvpiMinMaxIndx_8u_C1R(const Rvp8u* pSrc, int srcStep, RvpiSize roiSize, Rvp32f* pMinVal,
                                       Rvp32f* pMaxVal, RvpiPoint* pMinIndex, RvpiPoint* pMaxIndex);
RVPAPI RvpStatus rvpiMean_StdDev_8u_C3CR(const Rvp8u* pSrc, int srcStep, RvpiSize roiSize, int coi, Rvp64f* pMean,
                                         Rvp64f* pStdDev);
RVPAPI RvpStatus rvpiMinMaxIndx_8u_C3CR(const Rvp8u* pSrc, int srcStep, RvpiSize roiSize, int coi, Rvp32f* pMinVal,
                                        Rvp32f* pMaxVal, RvpiPoint* pMinIndex, RvpiPoint* pMaxIndex);
RVPAPI RvpStatus rvpiMean_8s_C1MR(const Rvp8s* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                  RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiMean_StdDev_8s_C1MR(const Rvp8s* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                         RvpiSize roiSize, Rvp64f* pMean, Rvp64f* pStdDev);
RVPAPI RvpStatus rvpiMinMaxIndx_8s_C1MR(const Rvp8s* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                        RvpiSize roiSize, Rvp32f* pMinVal, Rvp32f* pMaxVal, RvpiPoint* pMinIndex,
                                        RvpiPoint* pMaxIndex);
RVPAPI RvpStatus rvpiMean_8s_C3CMR(const Rvp8s* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                   RvpiSize roiSize, int coi, Rvp64f* pValue);
RVPAPI RvpStatus rvpiMean_StdDev_8s_C3CMR(const Rvp8s* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                          RvpiSize roiSize, int coi, Rvp64f* pMean, Rvp64f* pStdDev);
RVPAPI RvpStatus rvpiMinMaxIndx_8s_C3CMR(const Rvp8s* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                         RvpiSize roiSize, int coi, Rvp32f* pMinVal, Rvp32f* pMaxVal,
                                         RvpiPoint* pMinIndex, RvpiPoint* pMaxIndex);
RVPAPI RvpStatus rvpiMean_StdDev_8s_C1R(const Rvp8s* pSrc, int srcStep, RvpiSize roiSize, Rvp64f* pMean,
                                        Rvp64f* pStdDev);
RVPAPI RvpStatus rvpiMinMaxIndx_8s_C1R(const Rvp8s* pSrc, int srcStep, RvpiSize roiSize, Rvp32f* pMinVal,
                                       Rvp32f* pMaxVal, RvpiPoint* pMinIndex, RvpiPoint* pMaxIndex);
RVPAPI RvpStatus rvpiMean_StdDev_8s_C3CR(const Rvp8s* pSrc, int srcStep, RvpiSize roiSize, int coi, Rvp64f* pMean,
                                         Rvp64f* pStdDev);
RVPAPI RvpStatus rvpiMinMaxIndx_8s_C3CR(const Rvp8s* pSrc, int srcStep, RvpiSize roiSize, int coi, Rvp32f* pMinVal,
                                        Rvp32f* pMaxVal, RvpiPoint* pMinIndex, RvpiPoint* pMaxIndex);
RVPAPI RvpStatus rvpiMean_16u_C1MR(const Rvp16u* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                   RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiMean_StdDev_16u_C1MR(const Rvp16u* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                          RvpiSize roiSize, Rvp64f* pMean, Rvp64f* pStdDev);
RVPAPI RvpStatus rvpiMinMaxIndx_16u_C1MR(const Rvp16u* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                         RvpiSize roiSize, Rvp32f* pMinVal, Rvp32f* pMaxVal, RvpiPoint* pMinIndex,
                                         RvpiPoint* pMaxIndex);
RVPAPI RvpStatus rvpiMean_16u_C3CMR(const Rvp16u* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                    RvpiSize roiSize, int coi, Rvp64f* pValue);
RVPAPI RvpStatus rvpiMean_StdDev_16u_C3CMR(const Rvp16u* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                           RvpiSize roiSize, int coi, Rvp64f* pMean, Rvp64f* pStdDev);
RVPAPI RvpStatus rvpiMinMaxIndx_16u_C3CMR(const Rvp16u* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                          RvpiSize roiSize, int coi, Rvp32f* pMinVal, Rvp32f* pMaxVal,
                                          RvpiPoint* pMinIndex, RvpiPoint* pMaxIndex);
RVPAPI RvpStatus rvpiMean_StdDev_16u_C1R(const Rvp16u* pSrc, int srcStep, RvpiSize roiSize, Rvp64f* pMean,
                                         Rvp64f* pStdDev);
RVPAPI RvpStatus rvpiMinMaxIndx_16u_C1R(const Rvp16u* pSrc, int srcStep, RvpiSize roiSize, Rvp32f* pMinVal,
                                        Rvp32f* pMaxVal, RvpiPoint* pMinIndex, RvpiPoint* pMaxIndex);
RVPAPI RvpStatus rvpiMean_StdDev_16u_C3CR(const Rvp16u* pSrc, int srcStep, RvpiSize roiSize, int coi, Rvp64f* pMean,
                                          Rvp64f* pStdDev);
RVPAPI RvpStatus rvpiMinMaxIndx_16u_C3CR(const Rvp16u* pSrc, int srcStep, RvpiSize roiSize, int coi,
                                         Rvp32f* pMinVal, Rvp32f* pMaxVal, RvpiPoint* pMinIndex,
                                         RvpiPoint* pMaxIndex);
RVPAPI RvpStatus rvpiMean_32f_C1MR(const Rvp32f* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                   RvpiSize roiSize, Rvp64f* pValue);
RVPAPI RvpStatus rvpiMean_StdDev_32f_C1MR(const Rvp32f* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                          RvpiSize roiSize, Rvp64f* pMean, Rvp64f* pStdDev);
RVPAPI RvpStatus rvpiMinMaxIndx_32f_C1MR(const Rvp32f* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                         RvpiSize roiSize, Rvp32f* pMinVal, Rvp32f* pMaxVal, RvpiPoint* pMinIndex,
                                         RvpiPoint* pMaxIndex);
RVPAPI RvpStatus rvpiMean_32f_C3CMR(const Rvp32f* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                    RvpiSize roiSize, int coi, Rvp64f* pValue);
RVPAPI RvpStatus rvpiMean_StdDev_32f_C3CMR(const Rvp32f* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                           RvpiSize roiSize, int coi, Rvp64f* pMean, Rvp64f* pStdDev);
RVPAPI RvpStatus rvpiMinMaxIndx_32f_C3CMR(const Rvp32f* pSrc, int srcStep, const Rvp8u* pMask, int maskStep,
                                          RvpiSize roiSize, int coi, Rvp32f* pMinVal, Rvp32f* pMaxVal,
                                          RvpiPoint* pMinIndex, RvpiPoint* pMaxIndex);
RVPAPI RvpStatus rvpiMean_StdDev_32f_C1R(const Rvp32f* pSrc, int srcStep, RvpiSize roiSize, Rvp64f* pMean,
                                         Rvp64f* pStdDev);
RVPAPI RvpStatus rvpiMinMaxIndx_32f_C1R(const Rvp32f* pSrc, int srcStep, RvpiSize roiSize, Rvp32f* pMinVal,
                                        Rvp32f* pMaxVal, RvpiPoint* pMinIndex, RvpiPoint* pMaxIndex);
RVPAPI RvpStatus rvpiMean_StdDev_32f_C3CR(const Rvp32f* pSrc, int srcStep, RvpiSize roiSize, int coi, Rvp64f* pMean,
                                          Rvp64f* pStdDev);
RVPAPI RvpStatus rvpiMinMaxIndx_32f_C3CR(const Rvp32f* pSrc, int srcStep, RvpiSize roiSize, int coi,
                                         Rvp32f* pMinVal, Rvp32f* pMaxVal, RvpiPoint* pMinIndex,
                                         RvpiPoint* pMaxIndex);

/* ---- Chamfer distance transforms ------------------------------------------ */
/* Each nonzero pixel of pSrc gets the distance to the nearest zero pixel
 * along steps of the mask: side and diagonal (3x3: pMetrics m0, m1), and
 * knight steps (5x5: side a, diagonal b, knight c). A forward pass (rows
 * down, left to right) and a backward pass (rows up, right to left); the
 * result saturates at MAX = 255 (8u), 65535 (8u16u) or the largest float
 * 0x7F7FFFFF (8u32f, the value of pixels no zero reaches). Zero pixels get 0.
 * Rules for the weights:
 *  - 3x3: diagonals take no part when m1 >= 2 * m0; when m0 > m1 and both
 *    sides are at least 2, the last row also takes (2, 0) steps of 2 * m1
 *    (the way up a diagonal and back down).
 *  - 5x5: bd = min(2a, b); when c >= a + bd the 3x3 form runs with a and b.
 *    Weights are regular when a < bd, 2a < c and 3bd < 2c: one pass each way.
 *    Otherwise effective weights a' = min(3c, a), b' = min(2c, bd), knight c,
 *    (2, 0) steps of min(2b', 2a', 2c) along the first and last rows, and the
 *    two passes repeat until nothing changes: the result is the shortest way
 *    over those steps.
 *  - Integer sums are exact (weights act as at most MAX + 1); float sums are
 *    single precision, and a NaN sum never wins a minimum.
 * Results equal the shortest way from the nearest zero over the steps above.
 * The in-place 8u forms read each source pixel before writing it. No threads,
 * no heap.
 * Statuses: NullPtr, Size, Step (srcStep below the width, dstStep below one
 * row of results), NotEvenStep (dstStep of 16u or 32f results), Metric (an
 * integer weight below 1, a float weight not above 0; a NaN passes).
 * Standard weights (kernelSize 3 or 5, norm 0, 1, 2): 3x3 {1,1} {1,2} {2,3}
 * and {1,1} {1,2} {0.955,1.3693}; 5x5 {1,1,2} {1,2,3} {5,7,11} and {1,1,2}
 * {1,2,3} {1,1.4,2.1969}. Statuses: NullPtr, Size (kernelSize), BadArg (norm);
 * rvpiGetDistanceTransformMask takes maskType = kernelSize * 10 + norm and
 * tests the norm (BadArg) before the pointer and the mask size (Size). */
RVPAPI RvpStatus rvpiGetDistanceTransformMask_32s(int kernelSize, int norm, Rvp32s* pMetrics);
RVPAPI RvpStatus rvpiGetDistanceTransformMask_32f(int kernelSize, int norm, Rvp32f* pMetrics);
RVPAPI RvpStatus rvpiGetDistanceTransformMask(int maskType, Rvp32f* pMetrics);
RVPAPI RvpStatus rvpiDistanceTransform_3x3_8u_C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                                  RvpiSize roiSize, const Rvp32s* pMetrics);
RVPAPI RvpStatus rvpiDistanceTransform_5x5_8u_C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                                  RvpiSize roiSize, const Rvp32s* pMetrics);
RVPAPI RvpStatus rvpiDistanceTransform_3x3_8u_C1IR(Rvp8u* pSrcDst, int srcDstStep, RvpiSize roiSize,
                                                   const Rvp32s* pMetrics);
RVPAPI RvpStatus rvpiDistanceTransform_5x5_8u_C1IR(Rvp8u* pSrcDst, int srcDstStep, RvpiSize roiSize,
                                                   const Rvp32s* pMetrics);
RVPAPI RvpStatus rvpiDistanceTransform_3x3_8u16u_C1R(const Rvp8u* pSrc, int srcStep, Rvp16u* pDst, int dstStep,
                                                     RvpiSize roiSize, const Rvp32s* pMetrics);
RVPAPI RvpStatus rvpiDistanceTransform_5x5_8u16u_C1R(const Rvp8u* pSrc, int srcStep, Rvp16u* pDst, int dstStep,
                                                     RvpiSize roiSize, const Rvp32s* pMetrics);
RVPAPI RvpStatus rvpiDistanceTransform_3x3_8u32f_C1R(const Rvp8u* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                                     RvpiSize roiSize, const Rvp32f* pMetrics);
RVPAPI RvpStatus rvpiDistanceTransform_5x5_8u32f_C1R(const Rvp8u* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                                     RvpiSize roiSize, const Rvp32f* pMetrics);

/* ---- Exact distance transform --------------------------------------------- */
/* Each pixel of pDst gets the Euclidean distance from its pixel of pSrc to
 * the nearest zero pixel: a column pass of squared vertical distances (the
 * largest float, 0x7F7FFFFF, for a column without a zero), the lower
 * envelope of the parabolas f(q) + (x - q)^2 of each row in single
 * precision, s = (((f[q] + q^2) - f[v]) - v^2) * (0.5 / (q - v)) in that
 * order, then the square root. An image without a zero pixel gives about
 * 1.8446743e19 everywhere. The row pass runs on several threads when the
 * library may use more than one and the image has 256 columns or more.
 * pBuffer: rvpiTrueDistanceTransformGetBufferSize bytes, (max(w4, h4) * 24 +
 * 56) * the permitted threads, w4 and h4 the sides rounded up to 4.
 * Statuses: NullPtr, Size (also a buffer that would not fit an int), Step
 * (srcStep below the width, dstStep below 4 * width), NotEvenStep (dstStep). */
RVPAPI RvpStatus rvpiTrueDistanceTransformGetBufferSize_8u32f_C1R(RvpiSize roiSize, int* pBufferSize);
RVPAPI RvpStatus rvpiTrueDistanceTransform_8u32f_C1R(const Rvp8u* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                                     RvpiSize roiSize, Rvp8u* pBuffer);

/* ---- Fast marching ---------------------------------------------------------- */
/* Solves the eikonal equation with unit grid step on a mask: each nonzero
 * pixel of pSrc gets its distance to the zero set in pDst. The update of two
 * neighbours a, b (d = a - b) is min(a, b) + 1 when |d| >= 1, else
 * (a + b + sqrt(2 - d * d)) * 0.5, in single precision. A first pixel with no
 * zero before it starts at 999999.0. With radius > 0, zero-set pixels within
 * radius of the border get negative distances (-1e-10 next to it), those
 * farther in 0; without (radius 0 or NaN) the zero set is 0.
 * Row sweeps stand in for a heap: a first sweep and a sweep back, then sweeps
 * down and up repeated where a mark plane says a pixel may still improve,
 * until no mark is left. Images of 6 rows or more are cut at a seam row
 * where half the nonzero pixels lie above; the halves are swept on two
 * threads when the library may use more than one (never more than two), or
 * in turn on one, so the result is the same for every thread count.
 * pBuffer: rvpiFastMarchingGetBufferSize bytes, (height + 34) * (pitch + 5) +
 * 40 with pitch the width rounded up to 32; its contents on entry do not
 * matter.
 * Statuses: NullPtr, Size (also a buffer that would not fit an int), Step
 * (srcStep below the width, dstStep below 4 * width), NotEvenStep (dstStep),
 * BadArg (radius below 0). */
RVPAPI RvpStatus rvpiFastMarchingGetBufferSize_8u32f_C1R(RvpiSize roiSize, int* pBufferSize);
RVPAPI RvpStatus rvpiFastMarching_8u32f_C1R(const Rvp8u* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                            RvpiSize roiSize, Rvp32f radius, Rvp8u* pBuffer);

/* ---- Hough lines -------------------------------------------------------------- */
/* A line in polar form (rho from the region's origin, theta in radians), also
 * the step sizes and the limits of a search region. */
typedef struct { Rvp32f rho; Rvp32f theta; } RvpPointPolar;
/* Standard Hough transform of the non-zero pixels of an 8-bit image: votes in
 * numRho = int(float(2 (W + H) + 1) / delta.rho) distance bins (bin of x, y:
 * ((int(x cos' + y sin') + 512) >> 10) + half, half = (numRho - 1) >> 1, with
 * cos' and sin' the 1/1024-bin tables int(cos(a) * double(1.0f / delta.rho)
 * * 1024.0), the sum in float) by numTheta = int(3.14159 / delta.theta) + 1
 * angles (entry 0 is 0, entry 1 delta.theta, each later one two steps after
 * the one before it, added in float; the range stops short of pi). A bin is
 * a line when its votes exceed threshold, reach the list's cut-off, exceed
 * its earlier neighbours (rho - 1, the previous angle) and are not below its
 * later ones (rho + 1, the next angle); the angles do not wrap. Lines go into
 * a list of at most maxLineCount entries sorted by votes (equal votes: the
 * earlier found first); once it is full, a row's peaks must reach the
 * weakest entry as it stood when the row was scanned (the last angle's
 * insertions do not raise it), and a peak equal to the weakest is dropped.
 * pLine[i] = (float(bin - half) * delta.rho, float(angle) * delta.theta);
 * *pLineCount the number of lines. A full list is not an error.
 * Region form: only angles with dstRoi[0].theta <= float(t) * delta.theta <=
 * dstRoi[1].theta take part, both thetas first clamped to 0..3.14159 and
 * written back; bins in int(dstRoi[0].rho / delta.rho + half) ..
 * int(half + dstRoi[1].rho / delta.rho) count, each computed in 32-bit
 * integers (x cos' + y sin' + 512) >> 10 (wrapping) plus half; a NaN rho
 * limit admits nothing. Bins outside the accumulator are never counted.
 * Size query: H (4 W + 64) + 16 maxLineCount + 8 (int(3.14159 / delta.theta)
 * + 1) + 16 numRho + 288 bytes; past 2^31 - 1 it stores the value wrapped to
 * 32 bits and returns rvpStsBufferSizeWrn (12), and the transforms refuse
 * those arguments with rvpStsSizeErr.
 * Statuses: query: NullPtr, Size, BadArg (a step not above 0). Transforms:
 * NullPtr (pSrc, pLine, pLineCount, pBuffer; dstRoi), Step (srcStep below 1
 * or below the width), Size (width, height, maxLineCount below 1; the
 * buffer as above), BadArg (delta.rho not above 0 or above W + H, delta.theta
 * not above 0 or above 3.14159, threshold below 1), Range (region: a low
 * limit above its high one; *pLineCount is set to 0). */
RVPAPI RvpStatus rvpiHoughLineGetSize_8u_C1R(RvpiSize roiSize, RvpPointPolar delta, int maxLineCount, int* pBufSize);
RVPAPI RvpStatus rvpiHoughLine_8u32f_C1R(const Rvp8u* pSrc, int srcStep, RvpiSize roiSize, RvpPointPolar delta, int threshold, RvpPointPolar* pLine, int maxLineCount, int* pLineCount, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiHoughLine_Region_8u32f_C1R(const Rvp8u* pSrc, int srcStep, RvpiSize roiSize, RvpPointPolar* pLine, RvpPointPolar dstRoi[2], int maxLineCount, int* pLineCount, RvpPointPolar delta, int threshold, Rvp8u* pBuffer);

/* ---- Peaks, colour gradient, fast arctangent ---------------------------------- */
/* Local extrema in raster order, rows and columns border .. size - border - 1:
 * a pixel v with |v| > threshold is a peak when v > 0 and v is the maximum of
 * its neighbourhood (32f: within 1.1754944e-38), or v <= 0 (32s: v < 1) and
 * it is the minimum; norm 0: the 3x3 square, 1: the 5-pixel cross. A
 * plateau gives every pixel. The scan stops quietly at maxPeakCount peaks;
 * *pPeakCount the number written to pPeak (x, y). 32s: |v| in 32 bits, so
 * -2^31 never passes a non-negative threshold.
 * Buffer: ((roiWidth + 5) & ~3) * 32 + 32 bytes.
 * Statuses: query: NullPtr, Size (also a size past an int). FindPeaks: NullPtr
 * (pSrc, pPeak, pPeakCount, pBuffer), Size (size, maxPeakCount or border
 * below 1, border above half the width or height in float), Step (srcStep / 4
 * below the width), NotEvenStep, BadArg (norm). */
RVPAPI RvpStatus rvpiFindPeaks3x3GetBufferSize_32f_C1R(int roiWidth, int* pBufferSize);
RVPAPI RvpStatus rvpiFindPeaks3x3GetBufferSize_32s_C1R(int roiWidth, int* pBufferSize);
RVPAPI RvpStatus rvpiFindPeaks3x3_32f_C1R(const Rvp32f* pSrc, int srcStep, RvpiSize roiSize, Rvp32f threshold, RvpiPoint* pPeak, int maxPeakCount, int* pPeakCount, int norm, int border, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiFindPeaks3x3_32s_C1R(const Rvp32s* pSrc, int srcStep, RvpiSize roiSize, Rvp32s threshold, RvpiPoint* pPeak, int maxPeakCount, int* pPeakCount, int norm, int border, Rvp8u* pBuffer);
/* One channel from three under a norm (0 infinity, 1 L1, 2 L2). 8u: max,
 * ((a + b + c) * 0x555 + 0x800) >> 12, int(sqrt((a^2 + b^2 + c^2) / 3.0) +
 * 0.5); 16u: max, ((a + b + c) * 0x1555 + 0x2000) >> 14, the same root (the
 * integer forms are means); 32f: the plain norms, not divided by 3: the
 * largest magnitude (a NaN in the first channel gives NaN, in the others it
 * is passed over), |a| + |b| + |c|, sqrtf(a^2 + b^2 + c^2). Threads only when
 * called inside a parallel region (the team of the calling region).
 * Statuses: NullPtr, Size, Step (srcStep below 3 W samples, dstStep below W),
 * NotEvenStep, BadArg (norm). */
RVPAPI RvpStatus rvpiGradientColorToGray_8u_C3C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep, RvpiSize roiSize, int norm);
RVPAPI RvpStatus rvpiGradientColorToGray_16u_C3C1R(const Rvp16u* pSrc, int srcStep, Rvp16u* pDst, int dstStep, RvpiSize roiSize, int norm);
RVPAPI RvpStatus rvpiGradientColorToGray_32f_C3C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep, RvpiSize roiSize, int norm);
/* Angles of (x, y) in degrees, 0 to 360, by a quadratic: d the larger of |x|
 * and |y| (at least 1e-8), n the smaller, r = 2 r0 - d r0 r0 with r0 the
 * float quotient 1 / d (the same on every processor), t = n r,
 * a = (t * -15.8131895 + 61.09419632) * t - 0.14050041; then 90 - a when
 * |x| < |y|, 180 - a when x < 0, 360 - a when y < 0. (0, 0) gives
 * -0.14050041. Statuses: NullPtr, Size (length below 1). */
RVPAPI RvpStatus rvpibFastArctan_32f(const Rvp32f* pSrcY, const Rvp32f* pSrcX, Rvp32f* pDst, int length);

/* ---- Pyramids: level geometry, records, layer states and resampling ------- */
/* Sample-type codes of the pyramid layer states and the Gaussian step queries. */
#define RVP_SAMPLE_8U  1
#define RVP_SAMPLE_16U 5
#define RVP_SAMPLE_32F 13

/* An image pyramid, one block from rvpiPyramidInitAlloc: per level its image
 * (set to null; the caller fills it, the record does not own it), size
 * (entry 0 the caller's roiSize), scale relative to level 0 (1.0, then each
 * entry the previous times 1.0 / rate in double precision, rate widened from
 * single precision) and step (set to 0; the caller fills it); pState is null
 * for the caller's use; level is the index of the last level. The four
 * arrays lie inside the block (52 * level + 152 bytes), after the record,
 * each at an 8-byte boundary and 16 bytes apart. */
typedef struct {
    void**    pImage;
    RvpiSize* pRoi;
    Rvp64f*   pRate;
    int*      pStep;
    void*     pState;
    int       level;
} RvpiPyramid;

/* Layer states, read-only for the caller. pKernel: the normalised kernel
 * (Rvp16s for 8u and 16u layers, Rvp32f for 32f), at a 32-byte boundary in
 * the block; pWork: scratch after it. Down states only: pThreadWork, the
 * per-thread records (present when kernelSize is below both the width and
 * the height; the first one flags a rate strictly between 1.99998 and
 * 2.00002 and holds the kernel with each weight repeated 8 (16s) or 4 (32f)
 * times, twice), and pLevelRoi, the levelCount + 1 sizes from the source size
 * down to 1 x 1. sampleType: RVP_SAMPLE_*; mode: always 2. A down state's
 * block is filled with 0xFF bytes before its fields are written. */
typedef struct {
    void*     pKernel;
    void*     pWork;
    void*     pThreadWork;
    RvpiSize* pLevelRoi;
    int       levelCount;
    int       kernelSize;
    int       sampleType;
    int       srcWidth, srcHeight;
    int       mode;
    Rvp32f    rate;
} RvpiPyramidDownState;
typedef RvpiPyramidDownState RvpiPyramidUpState;

/* Size of the level below: per dimension int(n / rate + 0.5) in single
 * precision (at least 1), then stepped by one until the upward range of the
 * answer holds the source (height first; a change of width unsettles the
 * height), so that going down and up again is consistent.
 * Statuses: NullPtr, Size (width or height below 1), BadArg (rate not above
 * 1.0 or above 10.0; also NaN). */
RVPAPI RvpStatus rvpiGetPyramidDownROI(RvpiSize srcRoi, RvpiSize* pDstRoi, Rvp32f rate);
/* Range of sizes of the level above, per dimension n (products in single
 * precision, truncated): smallest 1 if n is 1, else the larger of
 * int((n - 1) * rate) + 1 and n + 1; largest the larger of int(n * rate) and
 * n + 1. Statuses: as for the level below, both pointers tested; Size also
 * when a size would not fit an int (nothing written). */
RVPAPI RvpStatus rvpiGetPyramidUpROI(RvpiSize srcRoi, RvpiSize* pDstRoiMin, RvpiSize* pDstRoiMax, Rvp32f rate);
/* A pyramid record for roiSize: the levels below it walked with
 * rvpiGetPyramidDownROI until a level is 1 x 1, at most `level` of them; read
 * the levels granted from the record's level.
 * Statuses: NullPtr, Size, BadArg (rate as above, level < 1), MemAlloc. */
RVPAPI RvpStatus rvpiPyramidInitAlloc(RvpiPyramid** ppPyr, int level, RvpiSize roiSize, Rvp32f rate);
/* Statuses: NullPtr. */
RVPAPI RvpStatus rvpiPyramidFree(RvpiPyramid* pPyr);

/* Layer states for a source of roiSize at ratio rate (just above 1 to 10),
 * with a kernel of kernelSize weights (odd, at least 3) copied and
 * normalised: only its left half and centre are used, mirrored. Down
 * (integer): S = c + 2 (k0 + ... + k(h-1)), weights ((k << 14) / S) >> 1 with
 * a 64-bit division (sum about 8192); up (integer): S = 4 c + 8 (k0 + ...) in
 * single precision, weights int((4 k) / (S / 2) * 8192.0 + 0.5) narrowed to 16
 * bits and halved. Float layers: k / S with S = c + 2 (k0 + ...). A zero sum
 * (float: magnitude at most 1.1754944e-38) keeps the weights as given; the
 * float centre is then the value of the byte at offset h of the kernel.
 * States serve sources of roiSize or smaller, one call at a time; per-thread
 * scratch is sized for the threads permitted when the state is made, and a
 * call uses at most that many.
 * Statuses: NullPtr (ppState, pKernel), Size, BadArg (mode other than 2,
 * rate, kernelSize below 3 or even), MemAlloc (also a state past an int);
 * rvpStsSymKernelWrn (38) when the kernel is not symmetric (integers differ;
 * floats differ by more than 1.1754944e-38): the state is valid. */
RVPAPI RvpStatus rvpiPyramidLayerDownInitAlloc_8u_C1R(RvpiPyramidDownState** ppState, RvpiSize roiSize, Rvp32f rate, const Rvp16s* pKernel, int kernelSize, int mode);
RVPAPI RvpStatus rvpiPyramidLayerDownInitAlloc_8u_C3R(RvpiPyramidDownState** ppState, RvpiSize roiSize, Rvp32f rate, const Rvp16s* pKernel, int kernelSize, int mode);
RVPAPI RvpStatus rvpiPyramidLayerDownInitAlloc_16u_C1R(RvpiPyramidDownState** ppState, RvpiSize roiSize, Rvp32f rate, const Rvp16s* pKernel, int kernelSize, int mode);
RVPAPI RvpStatus rvpiPyramidLayerDownInitAlloc_16u_C3R(RvpiPyramidDownState** ppState, RvpiSize roiSize, Rvp32f rate, const Rvp16s* pKernel, int kernelSize, int mode);
RVPAPI RvpStatus rvpiPyramidLayerDownInitAlloc_32f_C1R(RvpiPyramidDownState** ppState, RvpiSize roiSize, Rvp32f rate, const Rvp32f* pKernel, int kernelSize, int mode);
RVPAPI RvpStatus rvpiPyramidLayerDownInitAlloc_32f_C3R(RvpiPyramidDownState** ppState, RvpiSize roiSize, Rvp32f rate, const Rvp32f* pKernel, int kernelSize, int mode);
RVPAPI RvpStatus rvpiPyramidLayerUpInitAlloc_8u_C1R(RvpiPyramidUpState** ppState, RvpiSize roiSize, Rvp32f rate, const Rvp16s* pKernel, int kernelSize, int mode);
RVPAPI RvpStatus rvpiPyramidLayerUpInitAlloc_8u_C3R(RvpiPyramidUpState** ppState, RvpiSize roiSize, Rvp32f rate, const Rvp16s* pKernel, int kernelSize, int mode);
RVPAPI RvpStatus rvpiPyramidLayerUpInitAlloc_16u_C1R(RvpiPyramidUpState** ppState, RvpiSize roiSize, Rvp32f rate, const Rvp16s* pKernel, int kernelSize, int mode);
RVPAPI RvpStatus rvpiPyramidLayerUpInitAlloc_16u_C3R(RvpiPyramidUpState** ppState, RvpiSize roiSize, Rvp32f rate, const Rvp16s* pKernel, int kernelSize, int mode);
RVPAPI RvpStatus rvpiPyramidLayerUpInitAlloc_32f_C1R(RvpiPyramidUpState** ppState, RvpiSize roiSize, Rvp32f rate, const Rvp32f* pKernel, int kernelSize, int mode);
RVPAPI RvpStatus rvpiPyramidLayerUpInitAlloc_32f_C3R(RvpiPyramidUpState** ppState, RvpiSize roiSize, Rvp32f rate, const Rvp32f* pKernel, int kernelSize, int mode);
/* Release a layer state; the typed names are the same two functions.
 * Statuses: NullPtr. */
RVPAPI RvpStatus rvpiPyramidLayerDownFree(RvpiPyramidDownState* pState);
RVPAPI RvpStatus rvpiPyramidLayerUpFree(RvpiPyramidUpState* pState);
RVPAPI RvpStatus rvpiPyramidLayerDownFree_8u_C1R(RvpiPyramidDownState* pState);
RVPAPI RvpStatus rvpiPyramidLayerDownFree_8u_C3R(RvpiPyramidDownState* pState);
RVPAPI RvpStatus rvpiPyramidLayerDownFree_16u_C1R(RvpiPyramidDownState* pState);
RVPAPI RvpStatus rvpiPyramidLayerDownFree_16u_C3R(RvpiPyramidDownState* pState);
RVPAPI RvpStatus rvpiPyramidLayerDownFree_32f_C1R(RvpiPyramidDownState* pState);
RVPAPI RvpStatus rvpiPyramidLayerDownFree_32f_C3R(RvpiPyramidDownState* pState);
RVPAPI RvpStatus rvpiPyramidLayerUpFree_8u_C1R(RvpiPyramidUpState* pState);
RVPAPI RvpStatus rvpiPyramidLayerUpFree_8u_C3R(RvpiPyramidUpState* pState);
RVPAPI RvpStatus rvpiPyramidLayerUpFree_16u_C1R(RvpiPyramidUpState* pState);
RVPAPI RvpStatus rvpiPyramidLayerUpFree_16u_C3R(RvpiPyramidUpState* pState);
RVPAPI RvpStatus rvpiPyramidLayerUpFree_32f_C1R(RvpiPyramidUpState* pState);
RVPAPI RvpStatus rvpiPyramidLayerUpFree_32f_C3R(RvpiPyramidUpState* pState);

/* One level down: the source is filtered with the state's kernel (columns of
 * rows first, then along the row; replicated border) at the source positions
 * p(x) = floor(x * rate + 0.5), capped at the last sample, and those filtered
 * samples form the destination. A rate strictly between 1.99998 and 2.00002
 * counts as exactly 2 (p(x) = 2x). Integer layers round each pass as
 * (sum + 4096) >> 13 and saturate the result; float layers sum the taps in
 * order. dstRoi must be the entry after srcRoi in the state's pLevelRoi
 * (found by its height), or else rvpiGetPyramidDownROI(srcRoi).
 * One level up: the source is filtered the same way (along the rows first,
 * then the columns; integers saturated to the sample range), then the
 * destination takes bilinear samples of it at (x / rate, y / rate) with the
 * 14-bit weights of the sub-pixel copies (integers rounded to nearest, ties
 * to even; floats summed as there), positions past the last sample taking
 * it. dstRoi must lie in the range of rvpiGetPyramidUpROI(srcRoi).
 * Statuses: NullPtr (pSrc, pDst, pState), Size (a size below 1, srcRoi larger
 * than the state's, dstRoi not as above), Step, NotEvenStep, BadArg (a state
 * of another type or channel count, or whose rate is out of range). */
RVPAPI RvpStatus rvpiPyramidLayerDown_8u_C1R(const Rvp8u* pSrc, int srcStep, RvpiSize srcRoi, Rvp8u* pDst, int dstStep, RvpiSize dstRoi, RvpiPyramidDownState* pState);
RVPAPI RvpStatus rvpiPyramidLayerDown_8u_C3R(const Rvp8u* pSrc, int srcStep, RvpiSize srcRoi, Rvp8u* pDst, int dstStep, RvpiSize dstRoi, RvpiPyramidDownState* pState);
RVPAPI RvpStatus rvpiPyramidLayerDown_16u_C1R(const Rvp16u* pSrc, int srcStep, RvpiSize srcRoi, Rvp16u* pDst, int dstStep, RvpiSize dstRoi, RvpiPyramidDownState* pState);
RVPAPI RvpStatus rvpiPyramidLayerDown_16u_C3R(const Rvp16u* pSrc, int srcStep, RvpiSize srcRoi, Rvp16u* pDst, int dstStep, RvpiSize dstRoi, RvpiPyramidDownState* pState);
RVPAPI RvpStatus rvpiPyramidLayerDown_32f_C1R(const Rvp32f* pSrc, int srcStep, RvpiSize srcRoi, Rvp32f* pDst, int dstStep, RvpiSize dstRoi, RvpiPyramidDownState* pState);
RVPAPI RvpStatus rvpiPyramidLayerDown_32f_C3R(const Rvp32f* pSrc, int srcStep, RvpiSize srcRoi, Rvp32f* pDst, int dstStep, RvpiSize dstRoi, RvpiPyramidDownState* pState);
RVPAPI RvpStatus rvpiPyramidLayerUp_8u_C1R(const Rvp8u* pSrc, int srcStep, RvpiSize srcRoi, Rvp8u* pDst, int dstStep, RvpiSize dstRoi, RvpiPyramidUpState* pState);
RVPAPI RvpStatus rvpiPyramidLayerUp_8u_C3R(const Rvp8u* pSrc, int srcStep, RvpiSize srcRoi, Rvp8u* pDst, int dstStep, RvpiSize dstRoi, RvpiPyramidUpState* pState);
RVPAPI RvpStatus rvpiPyramidLayerUp_16u_C1R(const Rvp16u* pSrc, int srcStep, RvpiSize srcRoi, Rvp16u* pDst, int dstStep, RvpiSize dstRoi, RvpiPyramidUpState* pState);
RVPAPI RvpStatus rvpiPyramidLayerUp_16u_C3R(const Rvp16u* pSrc, int srcStep, RvpiSize srcRoi, Rvp16u* pDst, int dstStep, RvpiSize dstRoi, RvpiPyramidUpState* pState);
RVPAPI RvpStatus rvpiPyramidLayerUp_32f_C1R(const Rvp32f* pSrc, int srcStep, RvpiSize srcRoi, Rvp32f* pDst, int dstStep, RvpiSize dstRoi, RvpiPyramidUpState* pState);
RVPAPI RvpStatus rvpiPyramidLayerUp_32f_C3R(const Rvp32f* pSrc, int srcStep, RvpiSize srcRoi, Rvp32f* pDst, int dstStep, RvpiSize dstRoi, RvpiPyramidUpState* pState);

/* ---- Gaussian 5x5 pyramid steps ---------------------------------------------- */
/* One level down or up a 2:1 pyramid with the kernel k = 1 4 6 4 1 on both
 * axes and a replicated border (aa|abcd|dd: positions outside the image take
 * the nearest sample; one sample replicates on both sides). roiSize is the
 * source's size, w x h; channels are filtered independently.
 * Down: pDst is ((w + 1) / 2) x ((h + 1) / 2) and
 *   dst(x, y) = sum over i, j in -2..2 of k[i] k[j] src(2x + i, 2y + j) / 256.
 * Up: pDst is 2w x 2h: the source with zeros between its samples, filtered
 * with 4k on both axes; per axis an even output 2x takes (1 6 1) / 8 of
 * sources x - 1, x, x + 1 and an odd output 2x + 1 takes (4 4) / 8 of x and
 * x + 1.
 * 8u: the integer sum of the 2-D weights, rounded as (sum + 128) >> 8 (down)
 * or (sum + 32) >> 6 (up); the result is always within 0..255.
 * 32f, in single precision and in this order: the vertical pass
 * v = ((a + e) + (b + d) * 4) + c * 6 over rows 2y - 2 .. 2y + 2 (down), or
 * v = (a + c) + b * 6 for even and v = (b + c) * 4 for odd output rows over
 * rows y - 1, y, y + 1 (up); then the same formula horizontally over those
 * v; then times 1/256 (down) or 1/64 (up). A NaN or an infinity in a window
 * spreads by these operations, the same for every thread count and
 * instruction set.
 * The 8u down step differs from the 1 4 6 4 1 pyramid found in common image
 * libraries only in the outer ring of outputs (x = 0, y = 0, and the last
 * column and row, whose window passes the edge): those mirror without
 * repeating the edge sample (cb|abcd|cb), here the edge sample repeats
 * (aa|abcd|dd), so the edge weighs more. Inside the ring the results are the
 * same bits; in the ring they differ where the image changes next to its
 * edge (up to 23 grey levels on 8-bit test photographs, none elsewhere).
 * pBuffer: scratch of rvpiPyrDownGetBufSize_Gauss5x5 /
 * rvpiPyrUpGetBufSize_Gauss5x5 bytes for the source width, sample type and
 * channels (undefined contents on return). The calling thread works in it;
 * further threads (images of 131072 output samples and more, 16 rows a
 * thread at least) use their own stack, so the size does not depend on the
 * thread count. With A = 2 for 8u and 4 for 32f and C the channels:
 *   down: A * ((4 * ((w + 1) / 2) + 7) * C + 192) + 96 bytes,
 *   up:   2 * A * ((w + 2) * C + 64) + 64 bytes.
 * Query statuses, in this order: NullPtr; Size (roiWidth below 1, or a size
 * that does not fit an int: nothing is stored); Interpolation (dataType not
 * RVP_SAMPLE_8U or RVP_SAMPLE_32F); Channel (channels not 1 or 3).
 * Step statuses, in this order: NullPtr (pSrc, pDst, pBuffer); Size (width or
 * height below 1); Step (srcStep below the source row's bytes, dstStep below
 * the destination row's bytes); NotEvenStep (32f steps not a multiple of 4);
 * Size (a width whose buffer the query refuses). Nothing is written on
 * failure. */
RVPAPI RvpStatus rvpiPyrDownGetBufSize_Gauss5x5(int roiWidth, int dataType, int channels, int* pBufferSize);
RVPAPI RvpStatus rvpiPyrUpGetBufSize_Gauss5x5(int roiWidth, int dataType, int channels, int* pBufferSize);
RVPAPI RvpStatus rvpiPyrDown_Gauss5x5_8u_C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                             RvpiSize roiSize, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiPyrDown_Gauss5x5_8u_C3R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                             RvpiSize roiSize, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiPyrDown_Gauss5x5_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                              RvpiSize roiSize, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiPyrDown_Gauss5x5_32f_C3R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                              RvpiSize roiSize, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiPyrUp_Gauss5x5_8u_C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                           RvpiSize roiSize, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiPyrUp_Gauss5x5_8u_C3R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep,
                                           RvpiSize roiSize, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiPyrUp_Gauss5x5_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                            RvpiSize roiSize, Rvp8u* pBuffer);
RVPAPI RvpStatus rvpiPyrUp_Gauss5x5_32f_C3R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep,
                                            RvpiSize roiSize, Rvp8u* pBuffer);

/* ---- Sub-pixel copies and line sampling ------------------------------------ */
/* A point in pixel coordinates. */
typedef struct { Rvp32f x; Rvp32f y; } RvpiPoint32f;
/* Bilinear samples with 14-bit weights: for fractions a and b (14 bits each)
 * the four weights are the products of the axis weights (16384 - a, a) and
 * (16384 - b, b), plus 8192, shifted right by 14; fractions of 0 copy the
 * samples exactly. 8u16u: the weighted sum scaled by 2^-(14 + scaleFactor),
 * rounded to nearest (ties to even) and saturated; 16u32f and 32f: the
 * weights divided by 16384 and summed as w0 s00 + w1 s01 + (w2 s10 + w3 s11).
 *
 * CopySubpix: dst(x, y) is the sample at (x + dx, y + dy), dx and dy in
 * [0, 1) with fractions int(d * 16384.0 + 0.5). The source holds one column
 * more than roiSize when dx's fraction is not 0, one row more when dy's is not.
 * Statuses: NullPtr, Size, Step (the source's row including that column),
 * NotEvenStep, BadArg (dx or dy outside [0, 1), or NaN). */
RVPAPI RvpStatus rvpiCopySubpix_8u16u_C1R_Sfs(const Rvp8u* pSrc, int srcStep, Rvp16u* pDst, int dstStep, RvpiSize roiSize, Rvp32f dx, Rvp32f dy, int scaleFactor);
RVPAPI RvpStatus rvpiCopySubpix_16u32f_C1R(const Rvp16u* pSrc, int srcStep, Rvp32f* pDst, int dstStep, RvpiSize roiSize, Rvp32f dx, Rvp32f dy);
RVPAPI RvpStatus rvpiCopySubpix_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep, RvpiSize roiSize, Rvp32f dx, Rvp32f dy);
/* CopySubpixIntersect: a patch of dstRoiSize centred on point in the source
 * image. Per axis, with n the patch's samples: f = c - (n - 1) * 0.5 (double),
 * i0 = int(n + f) - n, fraction int((f - i0) * 16384.0 + 0.5); patch index k
 * reads source samples i0 + k and i0 + k + 1, positions outside the image
 * taking the nearest sample. *pMin and *pMax are the corners of the part of
 * the patch whose samples lie inside: min = -i0 if i0 < 0 (at most n), else
 * 0; max = n - 1, or size - i0 - 2 when i0 + n - 1 > size - 2; a patch wholly
 * beyond the image (i0 >= size) gives min 0 and max -1, one wholly before it
 * min n and max n - 1 (the window is then clamped so that every position
 * reads the edge sample; a NaN centre counts as beyond).
 * Statuses: NullPtr (also pMin, pMax), Size, Step, NotEvenStep. */
RVPAPI RvpStatus rvpiCopySubpixIntersect_8u16u_C1R_Sfs(const Rvp8u* pSrc, int srcStep, RvpiSize srcRoiSize, Rvp16u* pDst, int dstStep, RvpiSize dstRoiSize, RvpiPoint32f point, RvpiPoint* pMin, RvpiPoint* pMax, int scaleFactor);
RVPAPI RvpStatus rvpiCopySubpixIntersect_16u32f_C1R(const Rvp16u* pSrc, int srcStep, RvpiSize srcRoiSize, Rvp32f* pDst, int dstStep, RvpiSize dstRoiSize, RvpiPoint32f point, RvpiPoint* pMin, RvpiPoint* pMax);
RVPAPI RvpStatus rvpiCopySubpixIntersect_32f_C1R(const Rvp32f* pSrc, int srcStep, RvpiSize srcRoiSize, Rvp32f* pDst, int dstStep, RvpiSize dstRoiSize, RvpiPoint32f point, RvpiPoint* pMin, RvpiPoint* pMax);
/* SampleLine: the samples along the line from pt1 to pt2 into pDst, m + 1 of
 * them with m the longer of |dx| and |dy|: sample i lies i steps along the
 * longer axis from pt1 and floor((2 i |d| + m) / (2 m)) steps along the other
 * (rounded, halves away from pt1). pDst holds m + 1 samples.
 * Statuses: NullPtr, Size, Step, NotEvenStep, LineLength (the count, the
 * longer extent plus 1 in 32-bit arithmetic with wrapping differences, is
 * negative), OutOfRange (an end point outside the image). */
RVPAPI RvpStatus rvpiSampleLine_8u_C1R(const Rvp8u* pSrc, int srcStep, RvpiSize roiSize, Rvp8u* pDst, RvpiPoint pt1, RvpiPoint pt2);
RVPAPI RvpStatus rvpiSampleLine_32f_C1R(const Rvp32f* pSrc, int srcStep, RvpiSize roiSize, Rvp32f* pDst, RvpiPoint pt1, RvpiPoint pt2);

/* ---- Pyramidal optical flow ------------------------------------------------ */
typedef struct RvpiOptFlowPyrLKState RvpiOptFlowPyrLKState;
/* Follows numFeat points from the image of pPyr1 to that of pPyr2 (pyramids
 * built by the caller, the sizes and scales of pPyr1 taken for both) by the
 * iterative gradient method, from level maxLev down to 0, with a window of
 * winSize x winSize pixels. pNext holds the initial guesses on entry and the
 * positions in the second image on return; pStatus[i] is 0 for a point
 * tracked through level 0, k > 0 for a point lost at level k - 1 (a flat
 * window, or one that left the image); pError[i] the root mean square
 * difference of the windows at the start of the last iteration (0 for a
 * lost point).
 * Levels smaller than the state's size take their gradients from two Scharr
 * planes of the whole level (replicated border, 8u: x4 in 16 bits, 16u and
 * 32f: x0.03125 in floats); the others from each point's own patch. Windows
 * are sampled with 14-bit bilinear weights, positions outside the image
 * taking the nearest sample, and only the part of a window inside both images
 * counts. Each level iterates at most maxIter times: it stops when the step's
 * squared length falls below threshold^2, or when a step undoes the previous
 * one (half of it is then taken back); a point is lost when the window's
 * gradient matrix has a determinant below 2^-52. When maxLev is 1 and level 1
 * is taken from patches, the guess is not rescaled between levels 1 and 0.
 * Points go in bands over the state's team: the threads running the call
 * that made the state (1 outside a parallel region). Results do not depend on
 * the team.
 * State: rvpiOpticalFlowPyrLKInitAlloc_<type>(&state, largest level-0 size,
 * winSize, hint (kept, unused)); scratch only, one call at a time per state.
 * Statuses: InitAlloc: NullPtr, Size (winSize, height, width below 1; a state
 * that would not fit an int), MemAlloc. Free: NullPtr. OpticalFlowPyrLK:
 * NullPtr (pyramids, state, point arrays, status, error), Size (numFeat < 1,
 * winSize < 1 or not the state's), BadArg (maxLev < 0, maxIter < 1,
 * threshold < 0; a NaN passes). The levels inside the pyramids are not
 * checked. */
RVPAPI RvpStatus rvpiOpticalFlowPyrLKInitAlloc_8u_C1R(RvpiOptFlowPyrLKState** ppState, RvpiSize roiSize, int winSize,
                                                      int hint);
RVPAPI RvpStatus rvpiOpticalFlowPyrLKInitAlloc_16u_C1R(RvpiOptFlowPyrLKState** ppState, RvpiSize roiSize, int winSize,
                                                       int hint);
RVPAPI RvpStatus rvpiOpticalFlowPyrLKInitAlloc_32f_C1R(RvpiOptFlowPyrLKState** ppState, RvpiSize roiSize, int winSize,
                                                       int hint);
RVPAPI RvpStatus rvpiOpticalFlowPyrLKFree_8u_C1R(RvpiOptFlowPyrLKState* pState);
RVPAPI RvpStatus rvpiOpticalFlowPyrLKFree_16u_C1R(RvpiOptFlowPyrLKState* pState);
RVPAPI RvpStatus rvpiOpticalFlowPyrLKFree_32f_C1R(RvpiOptFlowPyrLKState* pState);
RVPAPI RvpStatus rvpiOpticalFlowPyrLK_8u_C1R(const RvpiPyramid* pPyr1, const RvpiPyramid* pPyr2,
                                             const RvpiPoint32f* pPrev, RvpiPoint32f* pNext, Rvp8s* pStatus,
                                             Rvp32f* pError, int numFeat, int winSize, int maxLev, int maxIter,
                                             Rvp32f threshold, RvpiOptFlowPyrLKState* pState);
RVPAPI RvpStatus rvpiOpticalFlowPyrLK_16u_C1R(const RvpiPyramid* pPyr1, const RvpiPyramid* pPyr2,
                                              const RvpiPoint32f* pPrev, RvpiPoint32f* pNext, Rvp8s* pStatus,
                                              Rvp32f* pError, int numFeat, int winSize, int maxLev, int maxIter,
                                              Rvp32f threshold, RvpiOptFlowPyrLKState* pState);
RVPAPI RvpStatus rvpiOpticalFlowPyrLK_32f_C1R(const RvpiPyramid* pPyr1, const RvpiPyramid* pPyr2,
                                              const RvpiPoint32f* pPrev, RvpiPoint32f* pNext, Rvp8s* pStatus,
                                              Rvp32f* pError, int numFeat, int winSize, int maxLev, int maxIter,
                                              Rvp32f threshold, RvpiOptFlowPyrLKState* pState);

#ifdef __cplusplus
}
#endif

#endif /* RVPCV_H */
