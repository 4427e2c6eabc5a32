"""Lens undistortion."""
import numpy as np

from ._support import Image, call, documented, output, scratch, size

_TYPES = {np.dtype(np.uint8): "8u", np.dtype(np.uint16): "16u", np.dtype(np.float32): "32f"}


@documented("rvpiUndistortRadial_8u_C1R")
def undistort(img, fx, fy, cx, cy, k1, k2, out=None):
    """Removes two-coefficient radial distortion (bilinear). Pixels whose
    source falls outside keep the value of `out` (zeros for a new one)."""
    img = np.asarray(img)
    ch = 1 if img.ndim == 2 else img.shape[2]
    t = _TYPES.get(img.dtype)
    if t is None or ch not in (1, 3):
        raise TypeError("undistort: uint8, uint16 or float32 gray or RGB images")
    ii = Image(img, img.dtype, ch, "image")
    if out is None:
        out = np.zeros(ii.array.shape, img.dtype)
    out = output(out, ii.array.shape, img.dtype)
    io = Image(out, img.dtype, ch, "out", writable=True)
    buf = scratch("rvpiUndistortGetSize", ii.size)
    call("rvpiUndistortRadial_%s_C%dR" % (t, ch), ii.ptr, ii.step, io.ptr, io.step, ii.size, float(fx), float(fy),
         float(cx), float(cy), float(k1), float(k2), buf)
    return out


@documented("rvpiCreateMapCameraUndistort_32f_C1R")
def undistort_maps(width, height, fx, fy, cx, cy, k1, k2, p1=0.0, p2=0.0):
    """Source coordinates (xmap, ymap) of every pixel under the radial and
    tangential model, for a remap."""
    xm, ym = np.empty((height, width), np.float32), np.empty((height, width), np.float32)
    ix, iy = Image(xm, np.float32, 1, "xmap", True), Image(ym, np.float32, 1, "ymap", True)
    buf = scratch("rvpiUndistortGetSize", size(width, height))
    call("rvpiCreateMapCameraUndistort_32f_C1R", ix.ptr, ix.step, iy.ptr, iy.step, ix.size, float(fx), float(fy),
         float(cx), float(cy), float(k1), float(k2), float(p1), float(p2), buf)
    return xm, ym
