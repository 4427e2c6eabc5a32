"""rvpcv: computer-vision primitives on numpy arrays.

Every C function of the library is reachable as rvpcv.lib.<name> (the
declarations come from the library's own header); the functions below wrap
them for numpy: they take arrays by dtype and channel count, allocate their
outputs (or fill out=), hide size queries and scratch buffers, raise
StatusError subclasses for failed calls and StatusWarning for warnings, and
release the interpreter lock while the C code runs.
"""
from ._binding import core, docs, ffi, lib
from ._support import (BadArgumentError, MemoryAllocationError, NullPointerError, RangeError, SizeError,
                       StatusError, StatusWarning, StepError)
from .absdiff import absdiff, absdiff_scalar
from .accumulate import accumulate, accumulate_product, accumulate_square, accumulate_weighted
from .distance import chamfer_distance, fast_marching, true_distance
from .detect import canny, eigenvalues_vectors, integral, min_eigenvalue
from .fill import flood_fill, label_markers
from .filters import box_blur, gaussian, laplacian, scharr, sobel
from .geometry import undistort, undistort_maps
from .flow import optical_flow
from .hough import fast_arctan, find_peaks, gradient_color_to_gray, hough_lines
from .inpaint import inpaint
from .morphology import (dilate, erode, gray_dilate, gray_erode, max_filter, min_filter, morphology_ex,
                         reconstruct)
from .motion import GaussianBackground, HistogramBackground, update_motion_history
from .segment import bound_segments, segment_gradient, watershed
from .subpix import (copy_subpix, get_patch, pyr_down_gauss5, pyr_up_gauss5, pyramid_levels, pyramid_up,
                     sample_line)
from .stats import mean, mean_std, min_max, norm, norm_diff, norm_rel


def set_num_threads(n):
    """Threads the library may use inside one call (1 to 1024)."""
    from ._support import check
    check(core.rvpSetNumThreads(int(n)), "rvpSetNumThreads")


def get_num_threads():
    n = ffi.new("int *")
    core.rvpGetNumThreads(n)
    return n[0]


def version():
    """The library's version record as a dict."""
    v = lib.rvpcvGetLibVersion()
    return {"major": v.major, "minor": v.minor, "build": v.build, "name": ffi.string(v.name).decode(),
            "version": ffi.string(v.version).decode(), "target": ffi.string(v.targetCpu, 4).decode()}


def kernel_level():
    """The instruction-set level the library runs: sse3, avx2 or avx512."""
    enabled = core.rvpGetEnabledCpuFeatures()
    wide = (core.rvpCpuFeature_AVX2 | core.rvpCpuFeature_AVX512F | core.rvpCpuFeature_AVX512BW |
            core.rvpCpuFeature_AVX512DQ | core.rvpCpuFeature_AVX512VL)
    if enabled & wide == wide:
        return "avx512"
    return "avx2" if enabled & core.rvpCpuFeature_AVX2 else "sse3"
