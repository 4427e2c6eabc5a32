// Internal image and vector primitives that the families share: copies,
// fills, border copies, subtraction, thresholds, element-wise minimum and
// maximum, conversions, square roots and a sort. None is exported; the names
// read as the library's own so that any family can call them by name.
#ifndef RVCV_PRIM_H
#define RVCV_PRIM_H

#include "rvpcv.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Region copies. Null, size, then steps shorter than a row fail. Rows merge
 * into one when both steps equal the row's bytes. */
RvpStatus rvpiCopy_8u_C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep, RvpiSize roiSize);
RvpStatus rvpiCopy_8u_C3R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep, RvpiSize roiSize);
RvpStatus rvpiCopy_8u_C4R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep, RvpiSize roiSize);
RvpStatus rvpiCopy_16s_C1R(const Rvp16s* pSrc, int srcStep, Rvp16s* pDst, int dstStep, RvpiSize roiSize);
RvpStatus rvpiCopy_16u_C1R(const Rvp16u* pSrc, int srcStep, Rvp16u* pDst, int dstStep, RvpiSize roiSize);
RvpStatus rvpiCopy_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep, RvpiSize roiSize);
RvpStatus rvpiCopy_32f_C3R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep, RvpiSize roiSize);
RvpStatus rvpiCopy_32f_C4R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep, RvpiSize roiSize);

/* Fills a region with one byte. Null, size, step. */
RvpStatus rvpiSet_8u_C1R(Rvp8u value, Rvp8u* pDst, int dstStep, RvpiSize roiSize);

/* Copies pSrc into pDst at (leftBorderWidth, topBorderHeight) and replicates
 * the edge pixels out to dstRoiSize. pSrc == pDst selects the in-place form:
 * the source region already lies inside the destination, whose origin is
 * topBorderHeight rows up and leftBorderWidth pixels left of pSrc; srcStep
 * is then the one step. Order: null, steps below 1, sizes and borders. */
RvpStatus rvpiCopyReplicateBorder_8u_C1R(const Rvp8u* pSrc, int srcStep, RvpiSize srcRoiSize, Rvp8u* pDst,
                                         int dstStep, RvpiSize dstRoiSize, int topBorderHeight, int leftBorderWidth);
RvpStatus rvpiCopyReplicateBorder_8u_C3R(const Rvp8u* pSrc, int srcStep, RvpiSize srcRoiSize, Rvp8u* pDst,
                                         int dstStep, RvpiSize dstRoiSize, int topBorderHeight, int leftBorderWidth);
RvpStatus rvpiCopyReplicateBorder_8u_C4R(const Rvp8u* pSrc, int srcStep, RvpiSize srcRoiSize, Rvp8u* pDst,
                                         int dstStep, RvpiSize dstRoiSize, int topBorderHeight, int leftBorderWidth);
RvpStatus rvpiCopyReplicateBorder_32s_C1R(const Rvp32s* pSrc, int srcStep, RvpiSize srcRoiSize, Rvp32s* pDst,
                                          int dstStep, RvpiSize dstRoiSize, int topBorderHeight, int leftBorderWidth);
RvpStatus rvpiCopyReplicateBorder_32s_C3R(const Rvp32s* pSrc, int srcStep, RvpiSize srcRoiSize, Rvp32s* pDst,
                                          int dstStep, RvpiSize dstRoiSize, int topBorderHeight, int leftBorderWidth);
RvpStatus rvpiCopyReplicateBorder_32s_C4R(const Rvp32s* pSrc, int srcStep, RvpiSize srcRoiSize, Rvp32s* pDst,
                                          int dstStep, RvpiSize dstRoiSize, int topBorderHeight, int leftBorderWidth);
/* In place: pSrc is the source region inside the destination image. */
RvpStatus rvpiCopyReplicateBorder_8u_C1IR(const Rvp8u* pSrc, int srcDstStep, RvpiSize srcRoiSize,
                                          RvpiSize dstRoiSize, int topBorderHeight, int leftBorderWidth);
RvpStatus rvpiCopyReplicateBorder_8u_C3IR(const Rvp8u* pSrc, int srcDstStep, RvpiSize srcRoiSize,
                                          RvpiSize dstRoiSize, int topBorderHeight, int leftBorderWidth);
RvpStatus rvpiCopyReplicateBorder_8u_C4IR(const Rvp8u* pSrc, int srcDstStep, RvpiSize srcRoiSize,
                                          RvpiSize dstRoiSize, int topBorderHeight, int leftBorderWidth);
RvpStatus rvpiCopyReplicateBorder_32s_C1IR(const Rvp32s* pSrc, int srcDstStep, RvpiSize srcRoiSize,
                                           RvpiSize dstRoiSize, int topBorderHeight, int leftBorderWidth);
RvpStatus rvpiCopyReplicateBorder_32s_C3IR(const Rvp32s* pSrc, int srcDstStep, RvpiSize srcRoiSize,
                                           RvpiSize dstRoiSize, int topBorderHeight, int leftBorderWidth);
RvpStatus rvpiCopyReplicateBorder_32s_C4IR(const Rvp32s* pSrc, int srcDstStep, RvpiSize srcRoiSize,
                                           RvpiSize dstRoiSize, int topBorderHeight, int leftBorderWidth);

/* Copies pSrc into pDst at (leftBorderWidth, topBorderHeight), the rest of
 * pDst set to value. Same validation as the replicating copy. */
RvpStatus rvpiCopyConstBorder_8u_C1R(const Rvp8u* pSrc, int srcStep, RvpiSize srcRoiSize, Rvp8u* pDst, int dstStep,
                                     RvpiSize dstRoiSize, int topBorderHeight, int leftBorderWidth, Rvp8u value);
RvpStatus rvpiCopyConstBorder_16s_C1R(const Rvp16s* pSrc, int srcStep, RvpiSize srcRoiSize, Rvp16s* pDst,
                                      int dstStep, RvpiSize dstRoiSize, int topBorderHeight, int leftBorderWidth,
                                      Rvp16s value);
RvpStatus rvpiCopyConstBorder_16u_C1R(const Rvp16u* pSrc, int srcStep, RvpiSize srcRoiSize, Rvp16u* pDst,
                                      int dstStep, RvpiSize dstRoiSize, int topBorderHeight, int leftBorderWidth,
                                      Rvp16u value);

/* pDst = pSrc2 - pSrc1. 8u: negative differences clamp to 0, then the scaled
 * result rule. Null and size tests only: steps are the caller's. */
RvpStatus rvpiSub_8u_C1RSfs(const Rvp8u* pSrc1, int src1Step, const Rvp8u* pSrc2, int src2Step, Rvp8u* pDst,
                            int dstStep, RvpiSize roiSize, int scaleFactor);
RvpStatus rvpiSub_8u_C3RSfs(const Rvp8u* pSrc1, int src1Step, const Rvp8u* pSrc2, int src2Step, Rvp8u* pDst,
                            int dstStep, RvpiSize roiSize, int scaleFactor);
RvpStatus rvpiSub_8u_C4RSfs(const Rvp8u* pSrc1, int src1Step, const Rvp8u* pSrc2, int src2Step, Rvp8u* pDst,
                            int dstStep, RvpiSize roiSize, int scaleFactor);
RvpStatus rvpiSub_32f_C1R(const Rvp32f* pSrc1, int src1Step, const Rvp32f* pSrc2, int src2Step, Rvp32f* pDst,
                          int dstStep, RvpiSize roiSize);
RvpStatus rvpiSub_32f_C3R(const Rvp32f* pSrc1, int src1Step, const Rvp32f* pSrc2, int src2Step, Rvp32f* pDst,
                          int dstStep, RvpiSize roiSize);
RvpStatus rvpiSub_32f_C4R(const Rvp32f* pSrc1, int src1Step, const Rvp32f* pSrc2, int src2Step, Rvp32f* pDst,
                          int dstStep, RvpiSize roiSize);

/* Comparison codes of the thresholds. */
enum { rvpCmpLess = 0, rvpCmpGreater = 4 };

/* Thresholds; the comparison is strict, so a sample equal to the threshold
 * is kept. Order: cmpOp (UnsupportedMode), null, size, steps below 1.
 * Non-Val: less -> max(x, threshold), greater -> min(x, threshold).
 * Val: a sample that compares true becomes value. */
RvpStatus rvpiThreshold_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep, RvpiSize roiSize,
                                Rvp32f threshold, int cmpOp);
RvpStatus rvpiThreshold_LT_32f_C1R(const Rvp32f* pSrc, int srcStep, Rvp32f* pDst, int dstStep, RvpiSize roiSize,
                                   Rvp32f threshold);
RvpStatus rvpiThreshold_Val_8u_C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep, RvpiSize roiSize,
                                   Rvp8u threshold, Rvp8u value, int cmpOp);
RvpStatus rvpiThreshold_Val_16u_C1R(const Rvp16u* pSrc, int srcStep, Rvp16u* pDst, int dstStep, RvpiSize roiSize,
                                    Rvp16u threshold, Rvp16u value, int cmpOp);
RvpStatus rvpiThreshold_GTVal_8u_C1R(const Rvp8u* pSrc, int srcStep, Rvp8u* pDst, int dstStep, RvpiSize roiSize,
                                     Rvp8u threshold, Rvp8u value);
RvpStatus rvpiThreshold_GTVal_16u_C1R(const Rvp16u* pSrc, int srcStep, Rvp16u* pDst, int dstStep,
                                      RvpiSize roiSize, Rvp16u threshold, Rvp16u value);

/* Vector primitives: null pointers (NullPtr), then len < 1 (Size). */
RvpStatus rvpsCopy_8u(const Rvp8u* pSrc, Rvp8u* pDst, int len);
RvpStatus rvpsCopy_16s(const Rvp16s* pSrc, Rvp16s* pDst, int len);
RvpStatus rvpsCopy_32f(const Rvp32f* pSrc, Rvp32f* pDst, int len);
RvpStatus rvpsSet_8u(Rvp8u val, Rvp8u* pDst, int len);
RvpStatus rvpsSet_32s(Rvp32s val, Rvp32s* pDst, int len);
RvpStatus rvpsSet_32f(Rvp32f val, Rvp32f* pDst, int len);
RvpStatus rvpsZero_8u(Rvp8u* pDst, int len);
RvpStatus rvpsZero_16s(Rvp16s* pDst, int len);
RvpStatus rvpsZero_32s(Rvp32s* pDst, int len);
RvpStatus rvpsZero_32f(Rvp32f* pDst, int len);

/* Element-wise minimum and maximum. Floats: a NaN in pSrc1 (in the _I form,
 * pSrcDst) is kept, a NaN in the other operand loses to it. */
RvpStatus rvpsMinEvery_8u(const Rvp8u* pSrc1, const Rvp8u* pSrc2, Rvp8u* pDst, int len);
RvpStatus rvpsMinEvery_16u(const Rvp16u* pSrc1, const Rvp16u* pSrc2, Rvp16u* pDst, int len);
RvpStatus rvpsMinEvery_32f(const Rvp32f* pSrc1, const Rvp32f* pSrc2, Rvp32f* pDst, int len);
RvpStatus rvpsMinEvery_64f(const Rvp64f* pSrc1, const Rvp64f* pSrc2, Rvp64f* pDst, int len);
RvpStatus rvpsMaxEvery_8u(const Rvp8u* pSrc1, const Rvp8u* pSrc2, Rvp8u* pDst, int len);
RvpStatus rvpsMaxEvery_16u(const Rvp16u* pSrc1, const Rvp16u* pSrc2, Rvp16u* pDst, int len);
RvpStatus rvpsMaxEvery_32f(const Rvp32f* pSrc1, const Rvp32f* pSrc2, Rvp32f* pDst, int len);
RvpStatus rvpsMaxEvery_64f(const Rvp64f* pSrc1, const Rvp64f* pSrc2, Rvp64f* pDst, int len);
RvpStatus rvpsMinEvery_8u_I(const Rvp8u* pSrc, Rvp8u* pSrcDst, int len);
RvpStatus rvpsMinEvery_16u_I(const Rvp16u* pSrc, Rvp16u* pSrcDst, int len);
RvpStatus rvpsMinEvery_32f_I(const Rvp32f* pSrc, Rvp32f* pSrcDst, int len);
RvpStatus rvpsMinEvery_64f_I(const Rvp64f* pSrc, Rvp64f* pSrcDst, int len);
RvpStatus rvpsMaxEvery_8u_I(const Rvp8u* pSrc, Rvp8u* pSrcDst, int len);
RvpStatus rvpsMaxEvery_16u_I(const Rvp16u* pSrc, Rvp16u* pSrcDst, int len);
RvpStatus rvpsMaxEvery_32f_I(const Rvp32f* pSrc, Rvp32f* pSrcDst, int len);
RvpStatus rvpsMaxEvery_64f_I(const Rvp64f* pSrc, Rvp64f* pSrcDst, int len);

RvpStatus rvpsConvert_16u32f(const Rvp16u* pSrc, Rvp32f* pDst, int len);
/* val 1 copies, val 0 zeroes (even NaN and infinity), else multiplies. */
RvpStatus rvpsMulC_32f(const Rvp32f* pSrc, Rvp32f val, Rvp32f* pDst, int len);
/* The 32-bit product under the scaled-result rule, saturated to 16 bits. */
RvpStatus rvpsMulC_16s_Sfs(const Rvp16s* pSrc, Rvp16s val, Rvp16s* pDst, int len, int scaleFactor);
/* Square roots; a negative element gives NaN there and the warning SqrtNegArg. */
RvpStatus rvpsSqrt_32f(const Rvp32f* pSrc, Rvp32f* pDst, int len);
/* Ascending in place; NaNs go to the end. One element: success at once. */
RvpStatus rvpsSortAscend_64f_I(Rvp64f* pSrcDst, int len);

#ifdef __cplusplus
}
#endif

#endif
