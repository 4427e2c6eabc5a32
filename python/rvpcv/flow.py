"""Pyramidal optical flow."""
import numpy as np

from ._binding import ffi, lib
from ._support import Image, call, documented
from .subpix import pyramid_levels

_FORMS = {np.dtype(np.uint8): "8u", np.dtype(np.uint16): "16u", np.dtype(np.float32): "32f"}


def _record(levels, keep):
    imgs = [Image(a, a.dtype.type, 1, "level") for a in levels]
    keep.extend(imgs)
    n = len(imgs)
    pimage = ffi.new("void *[]", [ffi.cast("void *", i.ptr) for i in imgs])
    proi = ffi.new("RvpiSize[]", [i.size for i in imgs])
    prate = ffi.new("Rvp64f[]", [0.5 ** l for l in range(n)])
    pstep = ffi.new("int[]", [i.step for i in imgs])
    keep.extend([pimage, proi, prate, pstep])
    rec = ffi.new("RvpiPyramid *", {"pImage": pimage, "pRoi": proi, "pRate": prate, "pStep": pstep,
                                     "pState": ffi.NULL, "level": n - 1})
    keep.append(rec)
    return rec


@documented("rvpiOpticalFlowPyrLK_8u_C1R")
def optical_flow(img1, img2, points, guesses=None, window=21, levels=3, max_iter=30, threshold=0.01):
    """Follows (N, 2) points (x, y) from img1 to img2 (same size, uint8,
    uint16 or float32, one channel) over pyramids at ratio 2 (1 4 6 4 1) with `levels`
    levels above the images. Returns (positions, status, error): status 0 for
    a tracked point, k > 0 for one lost at level k - 1."""
    a, b = np.asarray(img1), np.asarray(img2)
    form = _FORMS.get(a.dtype)
    if form is None or b.dtype != a.dtype or a.shape != b.shape or a.ndim != 2:
        raise TypeError("img1, img2: two one-channel images of the same size, uint8, uint16 or float32")
    pts = np.ascontiguousarray(points, dtype=np.float32).reshape(-1, 2)
    nxt = pts.copy() if guesses is None else np.ascontiguousarray(guesses, dtype=np.float32).reshape(-1, 2).copy()
    if nxt.shape != pts.shape:
        raise ValueError("guesses: one per point")
    n = pts.shape[0]
    status = np.zeros(n, np.int8)
    error = np.zeros(n, np.float32)
    if n == 0:
        return nxt, status, error
    keep = []
    pa, pb = pyramid_levels(a, levels, 2.0), pyramid_levels(b, levels, 2.0)
    ra, rb = _record(pa, keep), _record(pb, keep)
    state = ffi.new("RvpiOptFlowPyrLKState **")
    call("rvpiOpticalFlowPyrLKInitAlloc_%s_C1R" % form, state, [a.shape[1], a.shape[0]], int(window), 0)
    st = ffi.gc(state[0], getattr(lib, "rvpiOpticalFlowPyrLKFree_%s_C1R" % form))
    call("rvpiOpticalFlowPyrLK_%s_C1R" % form, ra, rb, ffi.from_buffer("RvpiPoint32f[]", pts),
         ffi.from_buffer("RvpiPoint32f[]", nxt, require_writable=True), ffi.from_buffer("Rvp8s[]", status, require_writable=True),
         ffi.from_buffer("Rvp32f[]", error, require_writable=True), n, int(window), len(pa) - 1, int(max_iter),
         float(threshold), st)
    return nxt, status, error
