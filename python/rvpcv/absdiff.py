"""Absolute differences."""
import numpy as np

from ._binding import ffi, lib
from ._support import Image, call, check, documented, output, same_size

_TYPES = {np.dtype(np.uint8): "8u", np.dtype(np.uint16): "16u", np.dtype(np.float32): "32f"}
_CTYPE = {np.uint8: "Rvp8u", np.uint16: "Rvp16u", np.float32: "Rvp32f"}


def _suffix(a, channels):
    t = _TYPES.get(np.asarray(a).dtype)
    if t is None or (channels == 3 and t != "8u") or channels not in (1, 3):
        raise TypeError("absdiff: uint8 (gray or RGB), uint16 or float32 gray images")
    return "%s_C%dR" % (t, channels)


_FUNCTIONS = {}


@documented("rvpiAbsDiff_8u_C1R")
def absdiff(a, b, out=None):
    """|a - b| per sample, for uint8 (gray or RGB), uint16 and float32 images."""
    a = a if type(a) is np.ndarray else np.asarray(a)
    ch = 1 if a.ndim == 2 else a.shape[2]
    key = (a.dtype, ch)
    fn = _FUNCTIONS.get(key)
    if fn is None:
        fn = _FUNCTIONS[key] = (getattr(lib, "rvpiAbsDiff_" + _suffix(a, ch)), _CTYPE[a.dtype.type] + "[]")
    # Packed arrays of one shape and type go straight through.
    if (type(b) is np.ndarray and type(out) is np.ndarray and a.flags.c_contiguous and b.flags.c_contiguous
            and out.flags.c_contiguous and out.flags.writeable and a.shape == b.shape == out.shape
            and a.dtype == b.dtype == out.dtype and a.size):
        step = a.strides[0]
        check(fn[0](ffi.from_buffer(fn[1], a), step, ffi.from_buffer(fn[1], b), step, ffi.from_buffer(fn[1], out),
                    step, [a.shape[1], a.shape[0]]), "rvpiAbsDiff")
        return out
    ia, ib = Image(a, a.dtype, ch, "a"), Image(b, a.dtype, ch, "b")
    if ia.width != ib.width or ia.height != ib.height:
        same_size(ia, ib, ("a", "b"))
    if out is None:
        out = np.empty(ia.array.shape, a.dtype)
    io = Image(out, a.dtype, ch, "out", writable=True)
    if io.width != ia.width or io.height != ia.height:
        raise ValueError("out: expected shape %s" % (ia.array.shape,))
    check(fn[0](ia.ptr, ia.step, ib.ptr, ib.step, io.ptr, io.step, [ia.width, ia.height]), "rvpiAbsDiff")
    return out


@documented("rvpiAbsDiffC_8u_C1R")
def absdiff_scalar(a, value, out=None):
    """|a - value| per sample, for uint8, uint16 and float32 gray images."""
    a = np.asarray(a)
    suffix = _suffix(a, 1)
    ia = Image(a, a.dtype, 1, "a")
    out = output(out, ia.array.shape, a.dtype)
    io = Image(out, a.dtype, 1, "out", writable=True)
    v = float(value) if a.dtype == np.float32 else int(value)
    call("rvpiAbsDiffC_" + suffix, ia.ptr, ia.step, io.ptr, io.step, ia.size, v)
    return out
