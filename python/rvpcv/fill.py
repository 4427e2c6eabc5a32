"""Flood fill from a seed and labelling of connected components."""
import numpy as np

from ._binding import ffi
from ._support import Image, call, documented, point, scratch

_TYPES = {np.dtype(np.uint8): "8u", np.dtype(np.uint16): "16u", np.dtype(np.float32): "32f"}
_RULES = {"exact": "", "range": "Range", "grad": "Grad"}


@documented("rvpiFloodFill_4Con_8u_C1IR", "rvpiFloodFillGetSize")
def flood_fill(img, seed, value, rule="exact", delta=(0, 0), connectivity=4):
    """Flood fill of a copy of a uint8, uint16 or float32 gray or 3-channel
    image from seed (x, y) with value (a number, or three for 3 channels).
    rule 'exact' (pixels equal to the seed), 'range' (seed - delta[0] ..
    seed + delta[1]) or 'grad' (-delta[0] .. +delta[1] from a filled
    neighbour); delta holds a number each or three each. Returns (filled,
    region), region a dict of area, value and rect (x, y, width, height), or
    None when the seed already held the value (nothing filled)."""
    img = np.asarray(img)
    t = _TYPES.get(img.dtype)
    ch = 1 if img.ndim == 2 else img.shape[2]
    if t is None or ch not in (1, 3) or rule not in _RULES or connectivity not in (4, 8):
        raise ValueError("flood_fill: uint8, uint16 or float32 gray or 3-channel images; rule exact, range or grad; "
                         "connectivity 4 or 8")
    result = np.array(img, copy=True)
    im = Image(result, img.dtype, ch, "image", writable=True)
    ctype = {"8u": "Rvp8u", "16u": "Rvp16u", "32f": "Rvp32f"}[t]

    def values(v, name):
        v = np.broadcast_to(np.asarray(v, dtype=img.dtype), (ch,))
        return v[0].item() if ch == 1 else ffi.new("%s[3]" % ctype, [x.item() for x in v])

    region = ffi.new("RvpiConnectedComp *")
    region.area = -1.0
    name = "rvpiFloodFill_%s%dCon_%s_C%dIR" % (_RULES[rule], connectivity, t, ch)
    buf = scratch("rvpiFloodFillGetSize_Grad" if rule == "grad" else "rvpiFloodFillGetSize", im.size)
    seed = point(int(seed[0]), int(seed[1]))
    if rule == "exact":
        call(name, im.ptr, im.step, im.size, seed, values(value, "value"), region, buf)
    else:
        call(name, im.ptr, im.step, im.size, seed, values(value, "value"), values(delta[0], "delta"),
             values(delta[1], "delta"), region, buf)
    if region.area < 0:
        return result, None
    r = region.rect
    return result, {"area": int(region.area), "value": tuple(region.value[i] for i in range(ch)),
                    "rect": (r.x, r.y, r.width, r.height)}


@documented("rvpiLabelMarkers_8u_C1IR")
def label_markers(markers, connectivity=4, min_label=1, max_label=None):
    """Labels the connected components of the nonzero pixels of a uint8 or
    uint16 image (a copy); labels run from min_label to max_label (default:
    the largest below the type's top value) and repeat beyond it. Returns
    (labels, count)."""
    markers = np.asarray(markers)
    t = {np.dtype(np.uint8): "8u", np.dtype(np.uint16): "16u"}.get(markers.dtype)
    if t is None or connectivity not in (4, 8):
        raise ValueError("label_markers: uint8 or uint16 markers; connectivity 4 or 8")
    result = np.array(markers, copy=True)
    im = Image(result, markers.dtype, 1, "markers", writable=True)
    max_label = np.iinfo(markers.dtype).max - 1 if max_label is None else max_label
    buf = scratch("rvpiLabelMarkersGetBufferSize_%s_C1R" % t, im.size)
    n = ffi.new("int *")
    call("rvpiLabelMarkers_%s_C1IR" % t, im.ptr, im.step, im.size, int(min_label), int(max_label),
         1 if connectivity == 4 else 0, n, buf)
    return result, n[0]
