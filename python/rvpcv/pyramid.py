"""Image pyramids: the 2:1 Gaussian 5x5 steps."""
import numpy as np

from ._binding import lib
from ._support import Image, call, channels_of, documented, output, scratch

_TYPES = {np.dtype(np.uint8): ("8u", lib.RVP_SAMPLE_8U), np.dtype(np.float32): ("32f", lib.RVP_SAMPLE_32F)}


def _gauss5(direction, img, out):
    img = np.asarray(img)
    ch = channels_of(img)
    t = _TYPES.get(img.dtype)
    if t is None or ch not in (1, 3):
        raise TypeError("pyr_%s_gauss5: uint8 or float32 images, gray or with 3 channels" % direction.lower())
    ia = Image(img, img.dtype, ch, "image")
    if direction == "Down":
        w, h = (ia.width + 1) // 2, (ia.height + 1) // 2
    else:
        w, h = 2 * ia.width, 2 * ia.height
    out = output(out, (h, w) if ch == 1 else (h, w, ch), img.dtype)
    io = Image(out, img.dtype, ch, "out", writable=True)
    buf = scratch("rvpiPyr%sGetBufSize_Gauss5x5" % direction, ia.width, t[1], ch)
    call("rvpiPyr%s_Gauss5x5_%s_C%dR" % (direction, t[0], ch), ia.ptr, ia.step, io.ptr, io.step, ia.size, buf)
    return out


@documented("rvpiPyrDownGetBufSize_Gauss5x5")
def pyr_down_gauss5(img, out=None):
    """One level down a 2:1 Gaussian pyramid: a uint8 or float32 image, gray
    (h, w) or (h, w, 3), gives ((h + 1) // 2, (w + 1) // 2)."""
    return _gauss5("Down", img, out)


@documented("rvpiPyrUpGetBufSize_Gauss5x5")
def pyr_up_gauss5(img, out=None):
    """One level up a 2:1 Gaussian pyramid: (h, w) gives (2h, 2w)."""
    return _gauss5("Up", img, out)
