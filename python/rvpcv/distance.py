"""Distance transforms."""
import numpy as np

from ._binding import ffi
from ._support import Image, call, documented, output, scratch


@documented("rvpiTrueDistanceTransform_8u32f_C1R")
def true_distance(img, out=None):
    """Exact Euclidean distance of every pixel of a uint8 image to the
    nearest zero pixel, as float32."""
    ii = Image(img, np.uint8, 1, "image")
    out = output(out, (ii.height, ii.width), np.float32)
    io = Image(out, np.float32, 1, "out", writable=True)
    buf = scratch("rvpiTrueDistanceTransformGetBufferSize_8u32f_C1R", ii.size)
    call("rvpiTrueDistanceTransform_8u32f_C1R", ii.ptr, ii.step, io.ptr, io.step, ii.size, buf)
    return out


_CHAMFER_TYPES = {np.dtype(np.uint8): ("8u", "32s"), np.dtype(np.uint16): ("8u16u", "32s"),
                  np.dtype(np.float32): ("8u32f", "32f")}


@documented("rvpiDistanceTransform_3x3_8u_C1R", "rvpiGetDistanceTransformMask_32s")
def chamfer_distance(img, mask=3, norm=2, weights=None, dtype=np.float32, out=None):
    """Chamfer distance of every pixel of a uint8 image to the nearest zero
    pixel, with a 3x3 or 5x5 mask: the standard weights of `norm` (0, 1, 2)
    or the caller's `weights` (two for 3x3, three for 5x5). `dtype` is
    uint8, uint16 (saturating) or float32."""
    if mask not in (3, 5):
        raise ValueError("mask must be 3 or 5")
    kinds = _CHAMFER_TYPES.get(np.dtype(dtype))
    if kinds is None:
        raise TypeError("dtype must be uint8, uint16 or float32")
    suffix, wtype = kinds
    ii = Image(img, np.uint8, 1, "image")
    out = output(out, (ii.height, ii.width), dtype)
    io = Image(out, dtype, 1, "out", writable=True)
    m = ffi.new("Rvp%s[3]" % wtype)
    if weights is None:
        call("rvpiGetDistanceTransformMask_%s" % wtype, mask, norm, m)
    else:
        if len(weights) != (2 if mask == 3 else 3):
            raise ValueError("a %dx%d mask takes %d weights" % (mask, mask, 2 if mask == 3 else 3))
        for i, v in enumerate(weights):
            m[i] = v
    call("rvpiDistanceTransform_%dx%d_%s_C1R" % (mask, mask, suffix), ii.ptr, ii.step, io.ptr, io.step, ii.size, m)
    return out


@documented("rvpiFastMarching_8u32f_C1R")
def fast_marching(img, radius=0.0, out=None):
    """Eikonal distance (fast marching) of every nonzero pixel of a uint8
    image to the zero set, as float32; with radius > 0 the zero set within
    radius of its border gets negative distances."""
    ii = Image(img, np.uint8, 1, "image")
    out = output(out, (ii.height, ii.width), np.float32)
    io = Image(out, np.float32, 1, "out", writable=True)
    buf = scratch("rvpiFastMarchingGetBufferSize_8u32f_C1R", ii.size)
    call("rvpiFastMarching_8u32f_C1R", ii.ptr, ii.step, io.ptr, io.step, ii.size, float(radius), buf)
    return out
