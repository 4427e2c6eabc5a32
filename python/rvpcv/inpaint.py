"""Inpainting."""
import numpy as np

from ._binding import ffi, lib
from ._support import Image, call, documented, same_size


@documented("rvpiInpaintInitAlloc_8u_C1R", "rvpiInpaint_8u_C1R")
def inpaint(img, mask, distance, radius=5.0, method=0):
    """Restores the pixels where `mask` is nonzero in a uint8 gray or RGB
    image, in the order of `distance` (float32, 0 outside the mask, growing
    inward). method 0: distance-directed, 1: isophote-directed."""
    img = np.asarray(img)
    ch = 1 if img.ndim == 2 else img.shape[2]
    ii = Image(img, np.uint8, ch, "image")
    im, idist = Image(mask, np.uint8, 1, "mask"), Image(distance, np.float32, 1, "distance")
    same_size(ii, im, ("image", "mask"))
    same_size(ii, idist, ("image", "distance"))
    state = ffi.new("RvpiInpaintState **")
    call("rvpiInpaintInitAlloc_8u_C%dR" % ch, state, idist.ptr, idist.step, im.ptr, im.step, ii.size, float(radius),
         int(method))
    try:
        out = np.empty(ii.array.shape, np.uint8)
        io = Image(out, np.uint8, ch, "out", True)
        call("rvpiInpaint_8u_C%dR" % ch, ii.ptr, ii.step, io.ptr, io.step, ii.size, state[0])
    finally:
        lib.rvpiInpaintFree_8u_C1R(state[0])
    return out
