"""Norms and statistics over a mask and a channel of interest."""
import numpy as np

from ._binding import ffi
from ._support import Image, call, channels_of, documented, same_size

_TAGS = {np.dtype(np.uint8): "8u", np.dtype(np.int8): "8s", np.dtype(np.uint16): "16u", np.dtype(np.float32): "32f"}
_KINDS = {"inf": "Inf", "l1": "L1", "l2": "L2"}


def _source(img, name="image"):
    a = np.asarray(img)
    if a.dtype not in _TAGS:
        raise TypeError("%s: expected uint8, int8, uint16 or float32 samples, got %s" % (name, a.dtype.name))
    ch = channels_of(a)
    if ch not in (1, 3):
        raise ValueError("%s: one or three channels" % name)
    return Image(a, a.dtype.type, ch, name), _TAGS[a.dtype]


def _form(src, coi, masked):
    """The layout suffix and the coi arguments: C1 needs no coi, C3 one of 1..3."""
    if src.channels == 1:
        if coi not in (None, 1):
            raise ValueError("coi: a one-channel image has only channel 1")
        return ("C1MR" if masked else "C1R"), ()
    if coi is None:
        raise ValueError("coi: give the channel (1, 2 or 3) of a three-channel image")
    return ("C3CMR" if masked else "C3CR"), (int(coi),)


def _mask(src, mask):
    """The caller's mask, or one that selects every pixel."""
    m = Image(np.ones((src.height, src.width), np.uint8) if mask is None else mask, np.uint8, 1, "mask")
    same_size(src, m, ("image", "mask"))
    return m


def _kind(kind):
    try:
        return _KINDS[kind.lower()]
    except (KeyError, AttributeError):
        raise ValueError("kind: 'inf', 'l1' or 'l2'") from None


@documented("rvpiNorm_L2_8u_C1MR")
def norm(img, kind="l2", mask=None, coi=None):
    """The Inf, L1 or L2 norm of one channel over the nonzero pixels of
    `mask` (every pixel without one)."""
    s, tag = _source(img)
    m = _mask(s, mask)
    form, c = _form(s, coi, True)
    v = ffi.new("Rvp64f *")
    call("rvpiNorm_%s_%s_%s" % (_kind(kind), tag, form), s.ptr, s.step, m.ptr, m.step, s.size, *c, v)
    return v[0]


def _two(op, a, b, kind, mask, coi):
    s1, tag = _source(a, "first")
    s2, tag2 = _source(b, "second")
    if tag != tag2 or s1.channels != s2.channels:
        raise TypeError("the two images differ in type or channels")
    same_size(s1, s2)
    m = _mask(s1, mask)
    form, c = _form(s1, coi, True)
    v = ffi.new("Rvp64f *")
    call("rvpi%s_%s_%s_%s" % (op, _kind(kind), tag, form), s1.ptr, s1.step, s2.ptr, s2.step, m.ptr, m.step, s1.size,
         *c, v)
    return v[0]


@documented("rvpiNormDiff_L2_8u_C1MR")
def norm_diff(a, b, kind="l2", mask=None, coi=None):
    """The norm of a - b."""
    return _two("NormDiff", a, b, kind, mask, coi)


@documented("rvpiNormRel_L2_8u_C1MR")
def norm_rel(a, b, kind="l2", mask=None, coi=None):
    """norm(a - b) / norm(b); a zero denominator warns (StatusWarning) and
    gives inf or nan."""
    return _two("NormRel", a, b, kind, mask, coi)


@documented("rvpiMean_8u_C1MR")
def mean(img, mask=None, coi=None):
    """The mean of one channel over the selected pixels."""
    s, tag = _source(img)
    m = _mask(s, mask)
    form, c = _form(s, coi, True)
    v = ffi.new("Rvp64f *")
    call("rvpiMean_%s_%s" % (tag, form), s.ptr, s.step, m.ptr, m.step, s.size, *c, v)
    return v[0]


@documented("rvpiMean_StdDev_8u_C1MR")
def mean_std(img, mask=None, coi=None):
    """(mean, population deviation) of one channel."""
    s, tag = _source(img)
    form, c = _form(s, coi, mask is not None)
    mu, sd = ffi.new("Rvp64f *"), ffi.new("Rvp64f *")
    if mask is None:
        call("rvpiMean_StdDev_%s_%s" % (tag, form), s.ptr, s.step, s.size, *c, mu, sd)
    else:
        m = _mask(s, mask)
        call("rvpiMean_StdDev_%s_%s" % (tag, form), s.ptr, s.step, m.ptr, m.step, s.size, *c, mu, sd)
    return mu[0], sd[0]


@documented("rvpiMinMaxIndx_8u_C1MR")
def min_max(img, mask=None, coi=None):
    """(min, max, (x, y) of the min, (x, y) of the max): first occurrences in
    raster order; NaN is passed over."""
    s, tag = _source(img)
    form, c = _form(s, coi, mask is not None)
    lo, hi = ffi.new("Rvp32f *"), ffi.new("Rvp32f *")
    lp, hp = ffi.new("RvpiPoint *"), ffi.new("RvpiPoint *")
    if mask is None:
        call("rvpiMinMaxIndx_%s_%s" % (tag, form), s.ptr, s.step, s.size, *c, lo, hi, lp, hp)
    else:
        m = _mask(s, mask)
        call("rvpiMinMaxIndx_%s_%s" % (tag, form), s.ptr, s.step, m.ptr, m.step, s.size, *c, lo, hi, lp, hp)
    return lo[0], hi[0], (lp.x, lp.y), (hp.x, hp.y)
