#!/usr/bin/env python3
"""Cost of the Python layer: rvpcv.absdiff(a, b, out=o) against the bare C
call on the same 1920x1080 arrays, one thread, minimum of repeated runs.

    PYTHONPATH=build/release/python /usr/bin/python3 bench/python_overhead.py
"""
import timeit

import numpy as np

import rvpcv
from rvpcv import ffi, lib

a = np.random.randint(0, 255, (1080, 1920), np.uint8)
b = np.random.randint(0, 255, (1080, 1920), np.uint8)
o = np.empty_like(a)
rvpcv.set_num_threads(1)
pa, pb, po = (ffi.cast("Rvp8u *", x.ctypes.data) for x in (a, b, o))
c = min(timeit.repeat(lambda: lib.rvpiAbsDiff_8u_C1R(pa, 1920, pb, 1920, po, 1920, [1920, 1080]), number=200,
                      repeat=7)) / 200
p = min(timeit.repeat(lambda: rvpcv.absdiff(a, b, out=o), number=200, repeat=7)) / 200
print("C call %.1f us, rvpcv.absdiff(out=) %.1f us: the Python layer adds %.1f us (%.1f%%)"
      % (c * 1e6, p * 1e6, (p - c) * 1e6, (p - c) / c * 100))
