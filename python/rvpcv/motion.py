"""Background models and motion history."""
import numpy as np

from ._binding import ffi, lib
from ._support import Image, call, documented, same_size


class _Model:
    _kind = None

    def __init__(self, first):
        first = np.asarray(first)
        self.channels = 1 if first.ndim == 2 else first.shape[2]
        if first.dtype != np.uint8 or self.channels not in (1, 3):
            raise TypeError("%s: uint8 gray or RGB frames" % type(self).__name__)
        img = Image(first, np.uint8, self.channels, "frame")
        self.shape = img.array.shape
        state = ffi.new("RvpiFG%sState **" % self._kind)
        model = ffi.new("int *")
        call("rvpiForeground%sInitAlloc_8u_C%dR" % (self._kind, self.channels), img.ptr, img.step, img.size, model,
             state)
        self._state = ffi.gc(state[0], getattr(lib, "rvpiForeground%sFree_8u_C1R" % self._kind))

    def _frame(self, frame):
        img = Image(frame, np.uint8, self.channels, "frame")
        if img.array.shape != self.shape:
            raise ValueError("frame: expected shape %s, got %s" % (self.shape, img.array.shape))
        return img


class GaussianBackground(_Model):
    """Mixture of five Gaussians per pixel (history 200, background share 0.7,
    match within 2.5 deviations), made from the first frame."""
    _kind = "Gaussian"

    @documented("rvpiForegroundGaussian_8u_C1R")
    def apply(self, frame):
        """Updates the model; returns (mask, background): mask 255 on the
        foreground, background the model's picture of the scene."""
        img = self._frame(frame)
        bg = np.empty(self.shape, np.uint8)
        mask = np.empty(self.shape[:2], np.uint8)
        ib, im = Image(bg, np.uint8, self.channels, "bg", True), Image(mask, np.uint8, 1, "mask", True)
        call("rvpiForegroundGaussian_8u_C%dR" % self.channels, img.ptr, img.step, ib.ptr, ib.step, im.ptr, im.step,
             img.size, self._state)
        return mask, bg


class HistogramBackground(_Model):
    """Two weighted colour histograms per pixel (bins of 4 and 8 levels)."""
    _kind = "Histogram"

    @documented("rvpiForegroundHistogram_8u_C1R")
    def classify(self, frame):
        """The mask of a frame (255 foreground); the model is not changed."""
        img = self._frame(frame)
        mask = np.empty(self.shape[:2], np.uint8)
        im = Image(mask, np.uint8, 1, "mask", True)
        call("rvpiForegroundHistogram_8u_C%dR" % self.channels, img.ptr, img.step, im.ptr, im.step, img.size,
             self._state)
        return mask

    @documented("rvpiForegroundHistogramUpdate_8u_C1R")
    def update(self, frame, rate=-1.0):
        """Adapts the model (rate in (0, 1]; negative: the default 0.005)."""
        img = self._frame(frame)
        call("rvpiForegroundHistogramUpdate_8u_C%dR" % self.channels, img.ptr, img.step, img.size, self._state,
             float(rate))

    def apply(self, frame, rate=-1.0):
        mask = self.classify(frame)
        self.update(frame, rate)
        return mask


@documented("rvpiUpdateMotionHistory_8u32f_C1IR")
def update_motion_history(silhouette, history, timestamp, duration):
    """Stamps a silhouette (uint8, uint16 or float32) into a float32 history
    in place."""
    silhouette = np.asarray(silhouette)
    t = {np.dtype(np.uint8): "8u32f", np.dtype(np.uint16): "16u32f", np.dtype(np.float32): "32f"}.get(silhouette.dtype)
    if t is None:
        raise TypeError("update_motion_history: uint8, uint16 or float32 silhouettes")
    isil, ih = Image(silhouette, silhouette.dtype, 1, "silhouette"), Image(history, np.float32, 1, "history", True)
    same_size(isil, ih, ("silhouette", "history"))
    call("rvpiUpdateMotionHistory_%s_C1IR" % t, isil.ptr, isil.step, ih.ptr, ih.step, isil.size, float(timestamp),
         float(duration))
    return history
