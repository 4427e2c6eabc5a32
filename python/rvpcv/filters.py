"""Fixed-kernel derivative and smoothing filters, and the Gaussian."""
import numpy as np

from ._support import Image, border as border_code, call, documented, output, scratch

_SOBEL = {"h": "SobelHoriz", "v": "SobelVert", "-v": "SobelNegVert", "hh": "SobelHorizSecond",
          "vv": "SobelVertSecond", "cross": "SobelCross"}
_OUT = {np.dtype(np.int16): "8u16s", np.dtype(np.int8): "8u8s", np.dtype(np.float32): "32f"}


def _fixed(name, img, ksize, border, border_value, dtype, out, sized=True):
    img = np.asarray(img)
    if img.dtype == np.float32:
        types = "32f"
        dtype = np.float32
    elif img.dtype == np.uint8:
        dtype = np.dtype(dtype or np.int16)
        types = _OUT.get(dtype) if name != "Lowpass" else "8u"
        if types is None or types == "32f":
            raise TypeError("%s: uint8 images give int16 or int8 results" % name)
        if name == "Lowpass":
            dtype = np.uint8
    else:
        raise TypeError("%s: uint8 or float32 images" % name)
    if ksize not in (3, 5) or (not sized and ksize != 3):
        raise ValueError("%s: ksize 3%s" % (name, " or 5" if sized else ""))
    ia = Image(img, img.dtype, 1, "image")
    out = output(out, ia.array.shape, dtype)
    io = Image(out, dtype, 1, "out", writable=True)
    mask = 33 if ksize == 3 else 55
    bv = float(border_value) if types == "32f" else int(border_value)
    if sized:
        buf = scratch("rvpiFilter%sGetBufferSize_%s_C1R" % (name, types), ia.size, mask)
        call("rvpiFilter%sBorder_%s_C1R" % (name, types), ia.ptr, ia.step, io.ptr, io.step, ia.size, mask,
             border_code(border), bv, buf)
    else:
        buf = scratch("rvpiFilter%sGetBufferSize_%s_C1R" % (name, types), ia.size)
        call("rvpiFilter%sBorder_%s_C1R" % (name, types), ia.ptr, ia.step, io.ptr, io.step, ia.size,
             border_code(border), bv, buf)
    return out


@documented("rvpiFilterSobelHorizBorder_8u16s_C1R")
def sobel(img, direction="h", ksize=3, border="replicate", border_value=0, dtype=None, out=None):
    """Sobel derivative of a uint8 (int16 or int8 result) or float32 image.

    direction: 'h' (1 2 1 along the rows, -1 0 1 down the columns: the
    vertical derivative, which responds to horizontal edges),
    'v' (rows 1 0 -1, columns 1 2 1), '-v' (its negation), 'hh', 'vv' (second
    derivatives), 'cross'. border: const, replicate, wrap, mirror,
    mirror-repeat."""
    if direction not in _SOBEL:
        raise ValueError("sobel: direction one of %s" % ", ".join(_SOBEL))
    return _fixed(_SOBEL[direction], img, ksize, border, border_value, dtype, out)


@documented("rvpiFilterScharrHorizBorder_8u16s_C1R")
def scharr(img, direction="h", border="replicate", border_value=0, dtype=None, out=None):
    """3x3 Scharr derivative ('h' or 'v')."""
    if direction not in ("h", "v"):
        raise ValueError("scharr: direction 'h' or 'v'")
    return _fixed("ScharrHoriz" if direction == "h" else "ScharrVert", img, 3, border, border_value, dtype, out,
                  sized=False)


@documented("rvpiFilterLaplacianBorder_8u16s_C1R")
def laplacian(img, ksize=3, border="replicate", border_value=0, dtype=None, out=None):
    """Laplacian of a uint8 or float32 image."""
    return _fixed("Laplacian", img, ksize, border, border_value, dtype, out)


@documented("rvpiFilterLowpassBorder_8u_C1R")
def box_blur(img, ksize=3, border="replicate", border_value=0, out=None):
    """3x3 or 5x5 box mean of a uint8 or float32 image."""
    return _fixed("Lowpass", img, ksize, border, border_value, None, out)


@documented("rvpiFilterGaussBorder_32f_C1R")
def gaussian(img, ksize=5, sigma=0.0, border="replicate", border_value=0.0, out=None):
    """Gaussian blur of a float32 image with an odd ksize (3 or more); sigma 0
    takes 0.3 ((ksize - 1) / 2 - 1) + 0.8."""
    ia = Image(img, np.float32, 1, "image")
    out = output(out, ia.array.shape, np.float32)
    io = Image(out, np.float32, 1, "out", writable=True)
    buf = scratch("rvpiFilterGaussGetBufferSize_32f_C1R", ia.size, int(ksize))
    call("rvpiFilterGaussBorder_32f_C1R", ia.ptr, ia.step, io.ptr, io.step, ia.size, int(ksize), float(sigma),
         border_code(border), float(border_value), buf)
    return out
