"""Watershed, gradient segmentation and segment boundaries."""
import numpy as np

from ._binding import lib
from ._support import Image, call, documented, same_size, scratch

_BOUNDARY = {None: 0, 4: lib.RVP_WATERSHED_BORDER_4, 8: lib.RVP_WATERSHED_BORDER_8}


@documented("rvpiSegmentWatershed_8u_C1IR")
def watershed(gray, markers, engine="queue", norm=0, boundary=None):
    """Marker-driven watershed of a uint8 gray image. markers: uint8 or uint16
    labels (0: to assign, the largest value: boundary and walls); returns the
    new labels. engine 'queue' (norm 0: 8 neighbours, 1: 4) or 'distance'
    (norm 0 to 3); boundary None, 4 or 8."""
    markers = np.asarray(markers)
    t = {np.dtype(np.uint8): "8u", np.dtype(np.uint16): "8u16u"}.get(markers.dtype)
    if t is None or engine not in ("queue", "distance") or boundary not in _BOUNDARY:
        raise ValueError("watershed: uint8 or uint16 markers; engine queue or distance; boundary None, 4 or 8")
    ig = Image(gray, np.uint8, 1, "gray")
    result = np.array(markers, copy=True)
    im = Image(result, markers.dtype, 1, "markers", writable=True)
    same_size(ig, im, ("gray", "markers"))
    buf = scratch("rvpiSegmentWatershedGetBufferSize_%s_C1R" % t, ig.size)
    flag = (lib.RVP_WATERSHED_QUEUE if engine == "queue" else lib.RVP_WATERSHED_DISTANCE) | _BOUNDARY[boundary]
    call("rvpiSegmentWatershed_%s_C1IR" % t, ig.ptr, ig.step, im.ptr, im.step, ig.size, int(norm), flag, buf)
    return result


@documented("rvpiSegmentGradient_8u_C1IR")
def segment_gradient(img, markers, norm=0, boundary=None):
    """Regions grown from uint8 markers over the gradient of a uint8 gray or
    RGB image; returns the new labels."""
    img = np.asarray(img)
    ch = 1 if img.ndim == 2 else img.shape[2]
    if ch not in (1, 3) or boundary not in _BOUNDARY:
        raise ValueError("segment_gradient: gray or RGB images; boundary None, 4 or 8")
    ii = Image(img, np.uint8, ch, "image")
    result = np.array(markers, dtype=np.uint8, copy=True)
    im = Image(result, np.uint8, 1, "markers", writable=True)
    same_size(ii, im, ("image", "markers"))
    buf = scratch("rvpiSegmentGradientGetBufferSize_8u_C%dR" % ch, ii.size)
    call("rvpiSegmentGradient_8u_C%dIR" % ch, ii.ptr, ii.step, im.ptr, im.step, ii.size, int(norm), _BOUNDARY[boundary],
         buf)
    return result


@documented("rvpiBoundSegments_8u_C1IR")
def bound_segments(labels, value=None, connectivity=4):
    """Boundaries drawn into a copy of a uint8/uint16 label image with `value`
    (default: the largest label value)."""
    labels = np.asarray(labels)
    t = {np.dtype(np.uint8): "8u", np.dtype(np.uint16): "16u"}.get(labels.dtype)
    if t is None:
        raise TypeError("bound_segments: uint8 or uint16 labels")
    result = np.array(labels, copy=True)
    im = Image(result, labels.dtype, 1, "labels", writable=True)
    value = np.iinfo(labels.dtype).max if value is None else value
    call("rvpiBoundSegments_%s_C1IR" % t, im.ptr, im.step, im.size, int(value), 1 if connectivity == 4 else 0)
    return result
