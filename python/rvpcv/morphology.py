"""Structuring-element morphology, min/max filters and reconstruction."""
import numpy as np

from ._binding import ffi, lib
from ._support import Image, call, documented, output, point, scratch, size

_TYPES = {np.dtype(np.uint8): "8u", np.dtype(np.float32): "32f"}


def _element(mask):
    m = np.ascontiguousarray(np.asarray(mask, dtype=np.uint8))
    if m.ndim != 2 or m.size == 0:
        raise ValueError("mask: a 2-D array of 0 and 1")
    return m


def _apply(kind, fn, img, mask, anchor, out, channels=(1, 3, 4), values=None):
    """Builds a state of `kind` (Morphology, MorphAdv, MorphGray) for the mask,
    runs rvpi<fn>_<type>_C<n>R with it and releases it."""
    img = np.asarray(img)
    t = _TYPES.get(img.dtype)
    ch = 1 if img.ndim == 2 else img.shape[2]
    if t is None or ch not in channels:
        raise TypeError("%s: uint8 or float32 images with %s channels" % (fn, " or ".join(map(str, channels))))
    if values is None:
        m, ctype = _element(mask), "Rvp8u *"
    else:
        m = np.ascontiguousarray(values, dtype=np.int32 if t == "8u" else np.float32)
        if m.ndim != 2 or m.size == 0:
            raise ValueError("values: a 2-D array")
        ctype = "Rvp32s *" if t == "8u" else "Rvp32f *"
    ia = Image(img, img.dtype, ch, "image")
    out = output(out, ia.array.shape, img.dtype)
    io = Image(out, img.dtype, ch, "out", writable=True)
    h, w = m.shape
    anchor = anchor or (w // 2, h // 2)
    state = ffi.new("Rvpi%sState **" % ("Morph" if kind == "Morphology" else kind))
    suffix = "%s_C%dR" % (t, ch)
    call("rvpi%sInitAlloc_%s" % (kind, suffix), ia.width, ffi.cast(ctype, m.ctypes.data), size(w, h), point(*anchor),
         state)
    try:
        call("rvpi%s_%s" % (fn, suffix), ia.ptr, ia.step, io.ptr, io.step, ia.size, lib.rvpBorderRepl, state[0])
    finally:
        getattr(lib, "rvpi%sFree" % kind)(state[0])
    return out


def _morph(op, img, mask, anchor, out):
    return _apply("Morphology", op + "BorderReplicate", img, mask, anchor, out)


_COMPOSITE = {"open": "Open", "close": "Close", "tophat": "Tophat", "blackhat": "Blackhat", "gradient": "Gradient"}


@documented("rvpiMorphOpenBorder_8u_C1R")
def morphology_ex(op, img, mask, anchor=None, out=None):
    """Composite morphology by the set cells of `mask`: op is 'open',
    'close', 'tophat' (img - opening), 'blackhat' (closing - img) or
    'gradient' (dilation - erosion); replicated border."""
    if op not in _COMPOSITE:
        raise ValueError("op: one of %s" % ", ".join(_COMPOSITE))
    return _apply("MorphAdv", "Morph%sBorder" % _COMPOSITE[op], img, mask, anchor, out)


@documented("rvpiGrayDilateBorder_8u_C1R")
def gray_dilate(img, values, anchor=None, out=None):
    """Maximum of sample + value over a non-flat element (int values for
    uint8 images, float32 for float32; -inf leaves a cell out)."""
    return _apply("MorphGray", "GrayDilateBorder", img, None, anchor, out, (1,), values)


@documented("rvpiGrayErodeBorder_8u_C1R")
def gray_erode(img, values, anchor=None, out=None):
    """Minimum of sample - value over a non-flat element."""
    return _apply("MorphGray", "GrayErodeBorder", img, None, anchor, out, (1,), values)


@documented("rvpiErodeBorderReplicate_8u_C1R")
def erode(img, mask, anchor=None, out=None):
    """Minimum over the set cells of `mask` (a 2-D array), replicated border;
    anchor (x, y) defaults to the centre."""
    return _morph("Erode", img, mask, anchor, out)


@documented("rvpiDilateBorderReplicate_8u_C1R")
def dilate(img, mask, anchor=None, out=None):
    """Maximum over the set cells of `mask`, replicated border."""
    return _morph("Dilate", img, mask, anchor, out)


def _minmax(op, img, ksize, anchor, out):
    img = np.asarray(img)
    t = _TYPES.get(img.dtype)
    ch = 1 if img.ndim == 2 else img.shape[2]
    if t is None:
        raise TypeError("filter_%s: uint8 or float32 images" % op.lower())
    w, h = (ksize, ksize) if np.isscalar(ksize) else ksize
    anchor = anchor or (w // 2, h // 2)
    ia = Image(img, img.dtype, ch, "image")
    out = output(out, ia.array.shape, img.dtype)
    io = Image(out, img.dtype, ch, "out", writable=True)
    suffix = "%s_C%dR" % (t, ch)
    buf = scratch("rvpiFilter%sGetBufferSize_%s" % (op, suffix), ia.width, size(w, h))
    call("rvpiFilter%sBorderReplicate_%s" % (op, suffix), ia.ptr, ia.step, io.ptr, io.step, ia.size, size(w, h),
         point(*anchor), buf)
    return out


@documented("rvpiFilterMaxBorderReplicate_8u_C1R")
def max_filter(img, ksize, anchor=None, out=None):
    """Maximum over a ksize (or (width, height)) rectangle, replicated border."""
    return _minmax("Max", img, ksize, anchor, out)


@documented("rvpiFilterMinBorderReplicate_8u_C1R")
def min_filter(img, ksize, anchor=None, out=None):
    """Minimum over a ksize (or (width, height)) rectangle, replicated border."""
    return _minmax("Min", img, ksize, anchor, out)


_RTYPES = {np.dtype(np.uint8): "8u", np.dtype(np.uint16): "16u", np.dtype(np.float32): "32f",
           np.dtype(np.float64): "64f"}


@documented("rvpiMorphReconstructDilate_8u_C1IR")
def reconstruct(marker, mask, method="dilate", connectivity=8):
    """Morphological reconstruction of `marker` under (dilate) or above
    (erode) `mask`; returns a new array. connectivity 8 or 4."""
    mask = np.asarray(mask)
    t = _RTYPES.get(mask.dtype)
    if t is None or method not in ("dilate", "erode") or connectivity not in (4, 8):
        raise ValueError("reconstruct: uint8, uint16, float32 or float64; dilate or erode; 4 or 8")
    result = np.array(marker, dtype=mask.dtype, copy=True)
    im, ir = Image(mask, mask.dtype, 1, "mask"), Image(result, mask.dtype, 1, "marker", writable=True)
    buf = scratch("rvpiMorphReconstructGetBufferSize_%s_C1" % t, im.size)
    call("rvpiMorphReconstruct%s_%s_C1IR" % (method.capitalize(), t), im.ptr, im.step, ir.ptr, ir.step, im.size, buf,
         lib.rvpiNormInf if connectivity == 8 else lib.rvpiNormL1)
    return result
