"""The layer between numpy and the C calls: statuses as exceptions and
warnings, images as (pointer, step, size), outputs allocated or checked,
scratch buffers from the size queries. Calls release the interpreter lock
(cffi does so for every C call), so Python threads run them in parallel.
"""
import warnings

import numpy as np

from ._binding import docs, ffi, lib


class StatusError(RuntimeError):
    """A negative status: the call failed and wrote nothing."""

    def __init__(self, status, name, function):
        self.status, self.name, self.function = status, name, function
        super().__init__("%s: %s (%d)" % (function, name, status))


class NullPointerError(StatusError, ValueError): pass
class SizeError(StatusError, ValueError): pass
class StepError(StatusError, ValueError): pass
class BadArgumentError(StatusError, ValueError): pass
class RangeError(StatusError, ValueError): pass
class MemoryAllocationError(StatusError, MemoryError): pass


class StatusWarning(UserWarning):
    """A positive status: the result stands, with a remark."""


_STATUSES = {}
for _name in dir(lib):
    if _name.startswith("rvpSts"):
        _STATUSES[getattr(lib, _name)] = _name[len("rvpSts"):]
_CLASSES = {
    "NullPtrErr": NullPointerError, "SizeErr": SizeError, "StepErr": StepError, "NotEvenStepErr": StepError,
    "BadArgErr": BadArgumentError, "MaskSizeErr": BadArgumentError, "AnchorErr": BadArgumentError,
    "COIErr": BadArgumentError, "ChannelErr": BadArgumentError, "MetricErr": BadArgumentError,
    "UnsupportedModeErr": BadArgumentError, "InterpolationErr": BadArgumentError, "RangeErr": RangeError,
    "OutOfRangeErr": RangeError, "LineLengthErr": RangeError, "MemAllocErr": MemoryAllocationError,
}


def check(status, function):
    """Raises for a negative status, warns for a positive one."""
    if status == 0:
        return
    name = _STATUSES.get(status, "status %d" % status)
    if status < 0:
        raise _CLASSES.get(name, StatusError)(status, name, function)
    warnings.warn("%s: %s (%d)" % (function, name, status), StatusWarning, stacklevel=3)


def call(function, *args):
    """lib.<function>(*args), its status checked."""
    check(getattr(lib, function)(*args), function)


_CTYPES = {np.uint8: "Rvp8u", np.int8: "Rvp8s", np.uint16: "Rvp16u", np.int16: "Rvp16s", np.int32: "Rvp32s",
           np.float32: "Rvp32f", np.float64: "Rvp64f"}


class Image:
    """A numpy array as the C functions see it: its first pixel, the byte
    step between rows and its size. Arrays whose rows are contiguous are used
    in place (a step of any size); others are copied once."""

    __slots__ = ("array", "channels", "height", "width", "step", "ptr")

    def __init__(self, array, dtype, channels=1, name="image", writable=False):
        a = array if type(array) is np.ndarray else np.asarray(array)
        if a.dtype != dtype:
            raise TypeError("%s: expected %s samples, got %s" % (name, np.dtype(dtype).name, a.dtype.name))
        if channels == 1 and a.ndim == 3 and a.shape[2] == 1:
            a = a[:, :, 0]
        if a.ndim != (2 if channels == 1 else 3) or (channels > 1 and a.shape[2] != channels):
            raise ValueError("%s: expected shape (height, width%s), got %s"
                             % (name, "" if channels == 1 else ", %d" % channels, a.shape))
        contiguous = a.flags.c_contiguous
        if not contiguous and a.size:
            item = a.itemsize
            inner = (a.strides[1] == channels * item) and (channels == 1 or a.strides[2] == item)
            if not inner or a.strides[0] < a.shape[1] * channels * item:
                if writable:
                    raise ValueError("%s: an output needs contiguous rows" % name)
                a, contiguous = np.ascontiguousarray(a), True
        if writable and not a.flags.writeable:
            raise ValueError("%s: the array is read-only" % name)
        self.array, self.channels = a, channels
        self.height, self.width = a.shape[0], a.shape[1]
        self.step = a.strides[0] if a.shape[0] > 1 and a.size else a.shape[1] * channels * a.itemsize
        ctype = _CTYPES[a.dtype.type]
        if contiguous and a.size:
            self.ptr = ffi.from_buffer(ctype + "[]", a, require_writable=writable)
        else:
            self.ptr = ffi.cast(ctype + " *", a.ctypes.data)

    @property
    def size(self):
        return [self.width, self.height]


def size(width, height):
    return [width, height]  # cffi takes a list for a structure passed by value


def point(x, y):
    return [x, y]


def output(out, shape, dtype, name="out"):
    """The caller's out= array, checked, or a new one."""
    if out is None:
        return np.empty(shape, dtype)
    if out.shape != tuple(shape) or out.dtype != np.dtype(dtype):
        raise ValueError("%s: expected %s %s, got %s %s" % (name, np.dtype(dtype).name, tuple(shape), out.dtype.name,
                                                            out.shape))
    return out


def same_size(a, b, names=("first", "second")):
    if (a.width, a.height) != (b.width, b.height):
        raise ValueError("%s and %s differ in size: %dx%d and %dx%d" % (names + (a.width, a.height, b.width, b.height)))


def scratch(query, *args):
    """A buffer of the size a query gives: query(*args, int*)."""
    n = ffi.new("int *")
    call(query, *args, n)
    return ffi.new("Rvp8u[]", max(n[0], 1))


def channels_of(a):
    a = np.asarray(a)
    return 1 if a.ndim == 2 else a.shape[2]


def documented(*functions):
    """Appends the header's comments of the C functions to a wrapper's doc."""
    def wrap(f):
        parts = [f.__doc__ or ""]
        seen = set()
        for fn in functions:
            d = docs.get(fn, "")
            if d and d not in seen:
                seen.add(d)
                parts.append("%s: %s" % (fn, d))
        f.__doc__ = "\n\n".join(p.strip() for p in parts if p)
        return f
    return wrap


BORDERS = {"const": 0, "constant": 0, "replicate": 1, "wrap": 2, "mirror": 3, "mirror-repeat": 4, "memory": 6}


def border(name):
    try:
        return BORDERS[name]
    except KeyError:
        raise ValueError("border: one of %s, not %r" % (", ".join(sorted(BORDERS)), name)) from None
