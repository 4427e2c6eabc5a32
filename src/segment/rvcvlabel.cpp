// Marker labelling: every nonzero pixel becomes the top value of its type,
// which marks it unlabelled, and each top-valued pixel met in raster order
// seeds an exact fill with the next label. Labels stay below the top value,
// so a labelled pixel never seeds or joins again.
#include "segment/rvcvfill.h"

namespace rvcv {
namespace fill {
namespace {

template <class T>
RvpStatus labelMarkers(T* m, int step, RvpiSize roi, int minLabel, int maxLabel, int norm, int* pNumber,
                       Rvp8u* pBuffer) {
    constexpr int top = std::numeric_limits<T>::max();
    Check c;
    c.ptrs(m, pBuffer, pNumber).size(roi);
    const int64_t bytes = roi.width > 0 && roi.height > 0 ? stackBytes(roi) : 0;
    c.fail(!fitsInt(bytes), rvpStsSizeErr);
    checkImage<T>(c, roi, 1, step);
    if (RvpStatus st = c.fail(minLabel < 1 || maxLabel >= top || minLabel > maxLabel || (norm != 0 && norm != 1),
                              rvpStsBadArgErr))
        return st;
    for (int y = 0; y < roi.height; ++y) {
        T* r = rowPtr(m, step, y);
        for (int x = 0; x < roi.width; ++x) r[x] = r[x] ? static_cast<T>(top) : T{0};
    }
    int label = minLabel, count = 0;
    RvpiConnectedComp region;
    for (int y = 0; y < roi.height; ++y) {
        T* r = rowPtr(m, step, y);
        for (int x = 0; x < roi.width; ++x) {
            if (r[x] != top) continue;
            if (RvpStatus st = exactFillC1<T>(m, step, roi, RvpiPoint{x, y}, static_cast<T>(label), norm == 0,
                                              pBuffer, &region))
                return st;
            ++count;
            label = label == maxLabel ? minLabel : label + 1;
        }
    }
    *pNumber = count;
    return rvpStsNoErr;
}

RvpStatus querySize(RvpiSize roi, int* pSize) {
    if (RvpStatus st = Check().ptr(pSize).size(roi)) return st;
    return storeSize(stackBytes(roi), pSize);
}

}  // namespace
}  // namespace fill
}  // namespace rvcv

using namespace rvcv;

RVCV_EXPORT RvpStatus rvpiLabelMarkers_8u_C1IR(Rvp8u* pMarker, int markerStep, RvpiSize roiSize, int minLabel,
                                               int maxLabel, int norm, int* pNumber, Rvp8u* pBuffer) {
    return fill::labelMarkers(pMarker, markerStep, roiSize, minLabel, maxLabel, norm, pNumber, pBuffer);
}
RVCV_EXPORT RvpStatus rvpiLabelMarkers_16u_C1IR(Rvp16u* pMarker, int markerStep, RvpiSize roiSize, int minLabel,
                                                int maxLabel, int norm, int* pNumber, Rvp8u* pBuffer) {
    return fill::labelMarkers(pMarker, markerStep, roiSize, minLabel, maxLabel, norm, pNumber, pBuffer);
}
RVCV_EXPORT RvpStatus rvpiLabelMarkersGetBufferSize_8u_C1R(RvpiSize roiSize, int* pBufferSize) {
    return fill::querySize(roiSize, pBufferSize);
}
RVCV_EXPORT RvpStatus rvpiLabelMarkersGetBufferSize_16u_C1R(RvpiSize roiSize, int* pBufferSize) {
    return fill::querySize(roiSize, pBufferSize);
}
