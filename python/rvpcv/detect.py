"""Edges, corners and integral images."""
import numpy as np

from ._support import Image, call, documented, output, same_size, scratch


@documented("rvpiCanny_16s8u_C1R")
def canny(dx, dy, low, high, out=None):
    """Edge map (255 on edges) from x and y derivatives (int16 or float32)."""
    dx = np.asarray(dx)
    t = {np.dtype(np.int16): "16s8u", np.dtype(np.float32): "32f8u"}.get(dx.dtype)
    if t is None:
        raise TypeError("canny: int16 or float32 derivatives")
    ix, iy = Image(dx, dx.dtype, 1, "dx"), Image(dy, dx.dtype, 1, "dy")
    same_size(ix, iy, ("dx", "dy"))
    out = output(out, ix.array.shape, np.uint8)
    io = Image(out, np.uint8, 1, "out", writable=True)
    buf = scratch("rvpiCannyGetSize", ix.size)
    call("rvpiCanny_" + t + "_C1R", ix.ptr, ix.step, iy.ptr, iy.step, io.ptr, io.step, ix.size, float(low),
         float(high), buf)
    return out


def _corner(fn, img, kernel, aperture, window, width):
    img = np.asarray(img)
    t = {np.dtype(np.uint8): "8u32f", np.dtype(np.float32): "32f"}.get(img.dtype)
    if t is None or kernel not in ("sobel", "scharr"):
        raise TypeError("%s: uint8 or float32 images, kernel 'sobel' or 'scharr'" % fn)
    ia = Image(img, img.dtype, 1, "image")
    out = np.empty((ia.height, ia.width * width), np.float32)
    io = Image(out, np.float32, 1, "out", writable=True)
    buf = scratch("rvpi%sGetBufferSize_%s_C1R" % (fn, t), ia.size, aperture, window)
    call("rvpi%s_%s_C1R" % (fn, t), ia.ptr, ia.step, io.ptr, io.step, ia.size, 0 if kernel == "sobel" else 1,
         aperture, window, buf)
    return out


@documented("rvpiMinEigenVal_8u32f_C1R")
def min_eigenvalue(img, kernel="sobel", aperture=3, window=3):
    """The smaller eigenvalue of the smoothed structure tensor (corner strength)."""
    return _corner("MinEigenVal", img, kernel, aperture, window, 1)


@documented("rvpiEigenValsVecs_8u32f_C1R")
def eigenvalues_vectors(img, kernel="sobel", aperture=3, window=3):
    """Per pixel l1, l2, x1, y1, x2, y2: shape (height, width, 6)."""
    out = _corner("EigenValsVecs", img, kernel, aperture, window, 6)
    return out.reshape(out.shape[0], -1, 6)


@documented("rvpiIntegral_8u32s_C1R")
def integral(img, dtype=np.int32, offset=0):
    """Summed-area table of a uint8 image: (height + 1, width + 1), row and
    column 0 hold `offset`; int32 (wrapping) or float32."""
    ia = Image(img, np.uint8, 1, "image")
    dtype = np.dtype(dtype)
    t = {np.dtype(np.int32): "8u32s", np.dtype(np.float32): "8u32f"}.get(dtype)
    if t is None:
        raise TypeError("integral: int32 or float32 tables")
    out = np.empty((ia.height + 1, ia.width + 1), dtype)
    io = Image(out, dtype, 1, "out", writable=True)
    call("rvpiIntegral_" + t + "_C1R", ia.ptr, ia.step, io.ptr, io.step, ia.size,
         int(offset) if t == "8u32s" else float(offset))
    return out
