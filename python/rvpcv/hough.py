"""Hough lines, peaks, colour gradients and the fast arctangent."""
import math

import numpy as np

from ._binding import ffi
from ._support import Image, call, documented, output


@documented("rvpiHoughLine_8u32f_C1R", "rvpiHoughLine_Region_8u32f_C1R")
def hough_lines(edges, threshold, max_lines=16, delta_rho=1.0, delta_theta=math.pi / 180, region=None):
    """Lines (N, 2) of (rho, theta) among the non-zero pixels of a uint8
    image, strongest first. region: ((rho_lo, theta_lo), (rho_hi, theta_hi))
    limits the search (thetas clamped to 0..3.14159)."""
    s = Image(np.asarray(edges), np.uint8, 1, "edges")
    delta = [float(delta_rho), float(delta_theta)]
    size = ffi.new("int *")
    call("rvpiHoughLineGetSize_8u_C1R", s.size, delta, int(max_lines), size)
    buf = np.empty(size[0], np.uint8)
    lines = np.zeros((int(max_lines), 2), np.float32)
    pl = ffi.from_buffer("RvpPointPolar[]", lines, require_writable=True)
    count = ffi.new("int *")
    pb = ffi.from_buffer("Rvp8u[]", buf, require_writable=True)
    if region is None:
        call("rvpiHoughLine_8u32f_C1R", s.ptr, s.step, s.size, delta, int(threshold), pl, int(max_lines), count, pb)
    else:
        roi = ffi.new("RvpPointPolar[2]", [list(map(float, region[0])), list(map(float, region[1]))])
        call("rvpiHoughLine_Region_8u32f_C1R", s.ptr, s.step, s.size, pl, roi, int(max_lines), count, delta,
             int(threshold), pb)
    return lines[:count[0]].copy()


@documented("rvpiFindPeaks3x3_32f_C1R")
def find_peaks(img, threshold, max_peaks=1000, norm=0, border=1):
    """(x, y) of the local extrema of a float32 or int32 image whose
    magnitude exceeds threshold, in raster order (norm 0: 3x3 square, 1:
    cross)."""
    a = np.asarray(img)
    form = {np.dtype(np.float32): "32f", np.dtype(np.int32): "32s"}.get(a.dtype)
    if form is None:
        raise TypeError("img: float32 or int32 samples")
    s = Image(a, a.dtype.type)
    size = ffi.new("int *")
    call("rvpiFindPeaks3x3GetBufferSize_%s_C1R" % form, s.width, size)
    buf = np.empty(size[0], np.uint8)
    peaks = np.zeros((int(max_peaks), 2), np.int32)
    count = ffi.new("int *")
    thr = float(threshold) if form == "32f" else int(threshold)
    call("rvpiFindPeaks3x3_%s_C1R" % form, s.ptr, s.step, s.size, thr,
         ffi.from_buffer("RvpiPoint[]", peaks, require_writable=True), int(max_peaks), count, int(norm), int(border),
         ffi.from_buffer("Rvp8u[]", buf, require_writable=True))
    return peaks[:count[0]].copy()


@documented("rvpiGradientColorToGray_8u_C3C1R")
def gradient_color_to_gray(img, norm=2, out=None):
    """One channel from a (h, w, 3) uint8, uint16 or float32 gradient image
    (norm 0: largest, 1: L1, 2: L2; integer forms give means)."""
    a = np.asarray(img)
    form = {np.dtype(np.uint8): "8u", np.dtype(np.uint16): "16u", np.dtype(np.float32): "32f"}.get(a.dtype)
    if form is None:
        raise TypeError("img: uint8, uint16 or float32 samples")
    s = Image(a, a.dtype.type, 3)
    d = output(out, (s.height, s.width), a.dtype)
    di = Image(d, a.dtype.type, 1, "out", writable=True)
    call("rvpiGradientColorToGray_%s_C3C1R" % form, s.ptr, s.step, di.ptr, di.step, s.size, int(norm))
    return d


@documented("rvpibFastArctan_32f")
def fast_arctan(y, x):
    """Angles of (x, y) in degrees, 0 to 360, by the library's quadratic."""
    yy = np.ascontiguousarray(y, dtype=np.float32).ravel()
    xx = np.ascontiguousarray(x, dtype=np.float32).ravel()
    if yy.shape != xx.shape:
        raise ValueError("y and x: the same number of elements")
    out = np.empty_like(yy)
    if out.size:
        call("rvpibFastArctan_32f", ffi.from_buffer("Rvp32f[]", yy), ffi.from_buffer("Rvp32f[]", xx),
             ffi.from_buffer("Rvp32f[]", out, require_writable=True), out.size)
    return out.reshape(np.shape(y))
