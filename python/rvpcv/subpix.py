"""Pyramids at any ratio, sub-pixel copies and line sampling."""
import numpy as np

from ._binding import ffi, lib
from ._support import Image, call, documented, output

_FORMS = {np.dtype(np.uint8): "8u", np.dtype(np.uint16): "16u", np.dtype(np.float32): "32f"}


def _form(a, name="img"):
    form = _FORMS.get(a.dtype)
    ch = 1 if a.ndim == 2 else a.shape[2] if a.ndim == 3 else 0
    if form is None or ch not in (1, 3):
        raise TypeError("%s: uint8, uint16 or float32 samples, one or three channels" % name)
    return form, ch


def _kernel(kernel, form):
    k = np.ascontiguousarray(kernel, dtype=np.float32 if form == "32f" else np.int16).ravel()
    return k, ffi.from_buffer("Rvp32f[]" if form == "32f" else "Rvp16s[]", k)


@documented("rvpiPyramidInitAlloc", "rvpiPyramidLayerDown_8u_C1R")
def pyramid_levels(img, levels=4, ratio=2.0, kernel=(1, 4, 6, 4, 1)):
    """The levels of img (uint8, uint16 or float32; one or three channels):
    a list starting with img itself, each next level filtered with the
    normalised symmetric kernel and taken at the nearest positions; fewer than
    `levels` below it when a level reaches 1 x 1."""
    a = np.asarray(img)
    form, ch = _form(a)
    if int(levels) < 1:
        return [np.ascontiguousarray(a)]
    sizes = [a.shape[1], a.shape[0]]
    rec = ffi.new("RvpiPyramid **")
    call("rvpiPyramidInitAlloc", rec, int(levels), sizes, float(ratio))
    p = ffi.gc(rec[0], lib.rvpiPyramidFree)
    rois = [(p.pRoi[i].width, p.pRoi[i].height) for i in range(p.level + 1)]
    k, kp = _kernel(kernel, form)
    state = ffi.new("RvpiPyramidDownState **")
    suffix = "%s_C%dR" % (form, ch)
    call("rvpiPyramidLayerDownInitAlloc_" + suffix, state, sizes, float(ratio), kp, k.size, 2)
    st = ffi.gc(state[0], lib.rvpiPyramidLayerDownFree)
    out = [np.ascontiguousarray(a)]
    for w, h in rois[1:]:
        s = Image(out[-1], a.dtype.type, ch, "level")
        d = np.empty((h, w) if ch == 1 else (h, w, ch), a.dtype)
        di = Image(d, a.dtype.type, ch, "level", writable=True)
        call("rvpiPyramidLayerDown_" + suffix, s.ptr, s.step, s.size, di.ptr, di.step, [w, h], st)
        out.append(d)
    return out


@documented("rvpiGetPyramidUpROI", "rvpiPyramidLayerUp_8u_C1R")
def pyramid_up(img, ratio=2.0, size=None, kernel=(1, 4, 6, 4, 1)):
    """img one level up: filtered with the normalised kernel and sampled
    bilinearly at x / ratio. `size` (width, height) defaults to the largest the
    ratio allows."""
    a = np.asarray(img)
    form, ch = _form(a)
    lo, hi = ffi.new("RvpiSize *"), ffi.new("RvpiSize *")
    call("rvpiGetPyramidUpROI", [a.shape[1], a.shape[0]], lo, hi, float(ratio))
    w, h = (hi.width, hi.height) if size is None else (int(size[0]), int(size[1]))
    k, kp = _kernel(kernel, form)
    state = ffi.new("RvpiPyramidUpState **")
    suffix = "%s_C%dR" % (form, ch)
    call("rvpiPyramidLayerUpInitAlloc_" + suffix, state, [a.shape[1], a.shape[0]], float(ratio), kp, k.size, 2)
    st = ffi.gc(state[0], lib.rvpiPyramidLayerUpFree)
    s = Image(a, a.dtype.type, ch)
    d = np.empty((h, w) if ch == 1 else (h, w, ch), a.dtype)
    di = Image(d, a.dtype.type, ch, "out", writable=True)
    call("rvpiPyramidLayerUp_" + suffix, s.ptr, s.step, s.size, di.ptr, di.step, [w, h], st)
    return d


_SUBPIX = {np.dtype(np.uint8): ("8u16u", np.uint16, "_Sfs"), np.dtype(np.uint16): ("16u32f", np.float32, ""),
           np.dtype(np.float32): ("32f", np.float32, "")}


@documented("rvpiCopySubpixIntersect_8u16u_C1R_Sfs")
def get_patch(img, center, size, scale_factor=0):
    """A (height, width) patch of a one-channel image centred on (x, y) with
    14-bit bilinear weights, positions outside taking the nearest sample.
    Returns (patch, min corner, max corner) of the part inside the image.
    uint8 gives uint16 scaled by 2**-scale_factor; uint16 and float32 give
    float32."""
    a = np.asarray(img)
    if a.dtype not in _SUBPIX or a.ndim != 2:
        raise TypeError("img: one channel of uint8, uint16 or float32")
    form, odt, sfs = _SUBPIX[a.dtype]
    w, h = int(size[0]), int(size[1])
    s = Image(a, a.dtype.type)
    d = np.empty((h, w), odt)
    di = Image(d, odt, 1, "patch", writable=True)
    lo, hi = ffi.new("RvpiPoint *"), ffi.new("RvpiPoint *")
    args = [s.ptr, s.step, s.size, di.ptr, di.step, [w, h], [float(center[0]), float(center[1])], lo, hi]
    call("rvpiCopySubpixIntersect_%s_C1R%s" % (form, sfs), *(args + ([int(scale_factor)] if sfs else [])))
    return d, (lo.x, lo.y), (hi.x, hi.y)


@documented("rvpiCopySubpix_8u16u_C1R_Sfs")
def copy_subpix(img, dx, dy, scale_factor=0):
    """The image moved by (dx, dy) in [0, 1): out[y, x] samples (x + dx,
    y + dy). The result is one column (row) smaller when dx (dy) is not 0."""
    a = np.asarray(img)
    if a.dtype not in _SUBPIX or a.ndim != 2:
        raise TypeError("img: one channel of uint8, uint16 or float32")
    form, odt, sfs = _SUBPIX[a.dtype]
    fx, fy = int(float(dx) * 16384.0 + 0.5) > 0, int(float(dy) * 16384.0 + 0.5) > 0
    w, h = a.shape[1] - fx, a.shape[0] - fy
    s = Image(a, a.dtype.type)
    d = output(None, (max(h, 0), max(w, 0)), odt)
    di = Image(d, odt, 1, "out", writable=True)
    args = [s.ptr, s.step, di.ptr, di.step, [w, h], float(dx), float(dy)]
    call("rvpiCopySubpix_%s_C1R%s" % (form, sfs), *(args + ([int(scale_factor)] if sfs else [])))
    return d


@documented("rvpiSampleLine_8u_C1R")
def sample_line(img, p1, p2):
    """The samples of a one-channel uint8 or float32 image along the line
    from p1 to p2 ((x, y) points inside the image)."""
    a = np.asarray(img)
    if a.dtype not in (np.uint8, np.float32) or a.ndim != 2:
        raise TypeError("img: one channel of uint8 or float32")
    form = "8u" if a.dtype == np.uint8 else "32f"
    p1, p2 = (int(p1[0]), int(p1[1])), (int(p2[0]), int(p2[1]))
    n = max(abs(p2[0] - p1[0]), abs(p2[1] - p1[1])) + 1
    s = Image(a, a.dtype.type)
    out = np.zeros(n, a.dtype)
    call("rvpiSampleLine_%s_C1R" % form, s.ptr, s.step, s.size,
         ffi.from_buffer(("Rvp8u[]" if form == "8u" else "Rvp32f[]"), out, require_writable=True), list(p1), list(p2))
    return out


def _gauss5(img, up):
    a = np.asarray(img)
    if a.dtype not in (np.uint8, np.float32):
        raise TypeError("img: uint8 or float32 samples")
    form, ch = _form(a)
    h, w = a.shape[:2]
    oh, ow = (2 * h, 2 * w) if up else ((h + 1) // 2, (w + 1) // 2)
    size = ffi.new("int *")
    call("rvpiPyr%sGetBufSize_Gauss5x5" % ("Up" if up else "Down"), w, 1 if form == "8u" else 13, ch, size)
    buf = np.empty(size[0], np.uint8)
    s = Image(a, a.dtype.type, ch)
    d = np.empty((oh, ow) if ch == 1 else (oh, ow, ch), a.dtype)
    di = Image(d, a.dtype.type, ch, "out", writable=True)
    call("rvpiPyr%s_Gauss5x5_%s_C%dR" % ("Up" if up else "Down", form, ch), s.ptr, s.step, di.ptr, di.step, s.size,
         ffi.from_buffer("Rvp8u[]", buf, require_writable=True))
    return d


@documented("rvpiPyrDown_Gauss5x5_8u_C1R")
def pyr_down_gauss5(img):
    """img (uint8 or float32, one or three channels) filtered with 1 4 6 4 1
    per axis and halved: ((h + 1) // 2, (w + 1) // 2)."""
    return _gauss5(img, False)


@documented("rvpiPyrUp_Gauss5x5_8u_C1R")
def pyr_up_gauss5(img):
    """img (uint8 or float32, one or three channels) doubled in each axis
    and filtered with 1 4 6 4 1 per axis (times 4)."""
    return _gauss5(img, True)
