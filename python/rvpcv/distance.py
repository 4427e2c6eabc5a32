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
