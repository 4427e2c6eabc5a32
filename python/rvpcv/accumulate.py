"""Accumulation into float32 images: sums, squares, products, running averages."""
import numpy as np

from ._support import Image, call, documented, same_size

_TYPES = {np.dtype(np.uint8): "8u32f", np.dtype(np.int8): "8s32f", np.dtype(np.uint16): "16u32f",
          np.dtype(np.float32): "32f"}


def _prepare(acc, img, mask):
    img = np.asarray(img)
    t = _TYPES.get(img.dtype)
    if t is None:
        raise TypeError("accumulate: uint8, int8, uint16 or float32 images")
    ia = Image(img, img.dtype, 1, "image")
    iacc = Image(acc, np.float32, 1, "acc", writable=True)
    same_size(ia, iacc, ("image", "acc"))
    im = None
    if mask is not None:
        im = Image(mask, np.uint8, 1, "mask")
        same_size(ia, im, ("image", "mask"))
    return t, ia, iacc, im


@documented("rvpiAdd_8u32f_C1IR", "rvpiAdd_8u32f_C1IMR")
def accumulate(acc, img, mask=None):
    """acc += img where the mask (if any) is not zero; acc is float32, in place."""
    t, ia, iacc, im = _prepare(acc, img, mask)
    if im is None:
        if t == "32f":
            im = Image(np.ones(ia.array.shape, np.uint8), np.uint8, 1, "mask")
        else:
            call("rvpiAdd_%s_C1IR" % t, ia.ptr, ia.step, iacc.ptr, iacc.step, ia.size)
            return acc
    call("rvpiAdd_%s_C1IMR" % t, ia.ptr, ia.step, im.ptr, im.step, iacc.ptr, iacc.step, ia.size)
    return acc


@documented("rvpiAddSquare_8u32f_C1IR")
def accumulate_square(acc, img, mask=None):
    """acc += img * img (in single precision) where the mask is not zero."""
    t, ia, iacc, im = _prepare(acc, img, mask)
    if im is None:
        call("rvpiAddSquare_%s_C1IR" % t, ia.ptr, ia.step, iacc.ptr, iacc.step, ia.size)
    else:
        call("rvpiAddSquare_%s_C1IMR" % t, ia.ptr, ia.step, im.ptr, im.step, iacc.ptr, iacc.step, ia.size)
    return acc


@documented("rvpiAddProduct_8u32f_C1IR")
def accumulate_product(acc, a, b, mask=None):
    """acc += a * b where the mask is not zero."""
    t, ia, iacc, im = _prepare(acc, a, mask)
    ib = Image(b, ia.array.dtype, 1, "b")
    same_size(ia, ib, ("a", "b"))
    if im is None:
        call("rvpiAddProduct_%s_C1IR" % t, ia.ptr, ia.step, ib.ptr, ib.step, iacc.ptr, iacc.step, ia.size)
    else:
        call("rvpiAddProduct_%s_C1IMR" % t, ia.ptr, ia.step, ib.ptr, ib.step, im.ptr, im.step, iacc.ptr, iacc.step,
             ia.size)
    return acc


@documented("rvpiAddWeighted_8u32f_C1IR")
def accumulate_weighted(acc, img, alpha, mask=None):
    """acc = acc + (img - acc) * alpha (a running average) where the mask is not zero."""
    t, ia, iacc, im = _prepare(acc, img, mask)
    if im is None:
        call("rvpiAddWeighted_%s_C1IR" % t, ia.ptr, ia.step, iacc.ptr, iacc.step, ia.size, float(alpha))
    else:
        call("rvpiAddWeighted_%s_C1IMR" % t, ia.ptr, ia.step, im.ptr, im.step, iacc.ptr, iacc.step, ia.size,
             float(alpha))
    return acc
