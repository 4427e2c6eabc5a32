// Motion history: stamps the silhouette into a float history and clears
// entries older than the duration. One branch-free rule per sample, on the
// calling thread.
#include "rvcvframe.h"

namespace rvcv {
namespace {

template <class T>
RvpStatus updateHistory(const T* sil, int silStep, Rvp32f* hist, int histStep, RvpiSize roi, Rvp32f timeStamp,
                        Rvp32f duration) {
    Check c;
    c.ptrs(sil, hist).size(roi);
    const int64_t silBytes = static_cast<int64_t>(roi.width) * static_cast<int64_t>(sizeof(T));
    c.fail(c == rvpStsNoErr && (silStep < silBytes || histStep < static_cast<int64_t>(roi.width) * 4), rvpStsStepErr);
    c.fail((silStep & static_cast<int>(sizeof(T) - 1)) != 0 || (histStep & 3) != 0, rvpStsNotEvenStepErr);
    if (RvpStatus st = c.fail(duration < 0.0f, rvpStsOutOfRangeErr)) return st;
    const Rvp32f limit = timeStamp - duration;
    for (int y = 0; y < roi.height; ++y) {
        const T* s = rowPtr(sil, silStep, y);
        Rvp32f* h = rowPtr(hist, histStep, y);
        for (int x = 0; x < roi.width; ++x) {
            const Rvp32f kept = limit <= h[x] ? h[x] : 0.0f;  // a NaN history is cleared
            h[x] = s[x] != 0 ? timeStamp : kept;
        }
    }
    return rvpStsNoErr;
}

}  // namespace
}  // namespace rvcv

using namespace rvcv;

RVCV_EXPORT RvpStatus rvpiUpdateMotionHistory_8u32f_C1IR(const Rvp8u* pSilhouette, int silhouetteStep,
                                                         Rvp32f* pMotionHistory, int motionHistoryStep,
                                                         RvpiSize roiSize, Rvp32f timeStamp, Rvp32f motionDuration) {
    return updateHistory(pSilhouette, silhouetteStep, pMotionHistory, motionHistoryStep, roiSize, timeStamp,
                         motionDuration);
}
RVCV_EXPORT RvpStatus rvpiUpdateMotionHistory_16u32f_C1IR(const Rvp16u* pSilhouette, int silhouetteStep,
                                                          Rvp32f* pMotionHistory, int motionHistoryStep,
                                                          RvpiSize roiSize, Rvp32f timeStamp, Rvp32f motionDuration) {
    return updateHistory(pSilhouette, silhouetteStep, pMotionHistory, motionHistoryStep, roiSize, timeStamp,
                         motionDuration);
}
RVCV_EXPORT RvpStatus rvpiUpdateMotionHistory_32f_C1IR(const Rvp32f* pSilhouette, int silhouetteStep,
                                                       Rvp32f* pMotionHistory, int motionHistoryStep,
                                                       RvpiSize roiSize, Rvp32f timeStamp, Rvp32f motionDuration) {
    return updateHistory(pSilhouette, silhouetteStep, pMotionHistory, motionHistoryStep, roiSize, timeStamp,
                         motionDuration);
}
