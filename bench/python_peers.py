#!/usr/bin/env python3
"""Timings against the Python peers, at 1920x1080 on one thread each:
inpainting (scikit-image biharmonic), composite morphology (SciPy grey
opening and white top-hat), the exact distance transform (SciPy), fast
marching (scikit-fmm, Debian's python3-scikit-fmm, when installed). Run from
the build tree: PYTHONPATH=build/release/python bench/python_peers.py"""
import time

import numpy as np

import rvpcv


def best(f, repeat=3):
    t = []
    for _ in range(repeat):
        s = time.perf_counter()
        f()
        t.append(time.perf_counter() - s)
    return min(t) * 1e3


def main():
    rvpcv.set_num_threads(1)
    rng = np.random.default_rng(1)
    h, w = 1080, 1920
    y, x = np.mgrid[0:h, 0:w]
    img = ((np.sin(x / 37.0) + np.cos(y / 23.0)) * 60 + 128 + rng.integers(0, 20, (h, w))).clip(0, 255).astype(np.uint8)
    rows = []

    import scipy.ndimage as ndi
    disk = (np.add.outer(np.arange(-7, 8) ** 2, np.arange(-7, 8) ** 2) <= 49).astype(np.uint8)
    rows.append(("opening 8u disk 7", best(lambda: rvpcv.morphology_ex("open", img, disk)),
                 best(lambda: ndi.grey_opening(img, footprint=disk, mode="nearest"), 1), "scipy grey_opening"))
    rows.append(("top-hat 8u disk 7", best(lambda: rvpcv.morphology_ex("tophat", img, disk)),
                 best(lambda: ndi.white_tophat(img, footprint=disk, mode="nearest"), 1), "scipy white_tophat"))
    zeros = (img > 60).astype(np.uint8)
    rows.append(("exact distance", best(lambda: rvpcv.true_distance(zeros)),
                 best(lambda: ndi.distance_transform_edt(zeros), 1), "scipy distance_transform_edt"))

    try:
        import skfmm
        phi = np.where(zeros > 0, 1.0, -1.0)
        rows.append(("fast marching", best(lambda: rvpcv.fast_marching(zeros)),
                     best(lambda: skfmm.distance(phi), 1), "skfmm distance"))
    except ImportError:
        pass

    try:
        from skimage.feature import canny as sk_canny, peak_local_max
        from skimage.transform import hough_line, hough_line_peaks
        edges = sk_canny(img.astype(float), sigma=2).astype(np.uint8)
        angles = np.deg2rad(np.arange(0, 180))

        def sk_hough():
            acc, th, d = hough_line(edges, theta=angles)
            return hough_line_peaks(acc, th, d, num_peaks=32, threshold=150)
        rows.append(("hough lines, 32", best(lambda: rvpcv.hough_lines(edges, 150, 32)), best(sk_hough, 1),
                     "skimage hough_line + hough_line_peaks"))
        resp = (img.astype(np.float32) - 128.0)
        rows.append(("peaks 3x3, 32f", best(lambda: rvpcv.find_peaks(resp, 100.0, 100000)),
                     best(lambda: peak_local_max(resp, min_distance=1, threshold_abs=100.0), 1),
                     "skimage peak_local_max"))
    except ImportError:
        pass

    from skimage.restoration import inpaint_biharmonic
    try:
        from skimage.transform import pyramid_gaussian
        rows.append(("pyramid 8u ratio 1.5, 4 levels", best(lambda: rvpcv.pyramid_levels(img, 4, 1.5)),
                     best(lambda: list(pyramid_gaussian(img, max_layer=4, downscale=1.5)), 1),
                     "skimage pyramid_gaussian"))
    except ImportError:
        pass
    mask = np.zeros((h, w), np.uint8)
    mask[rng.random((h, w)) < 0.0025] = 1
    mask = ndi.binary_dilation(mask, iterations=1).astype(np.uint8)  # about 1% of the pixels
    dist = ndi.distance_transform_cdt(mask, metric="taxicab").astype(np.float32)
    rows.append(("inpaint 8u %.1f%%" % (100 * mask.mean()), best(lambda: rvpcv.inpaint(img, mask, dist)),
                 best(lambda: inpaint_biharmonic(img, mask.astype(bool)), 1), "skimage inpaint_biharmonic"))

    print("| operation | rvpcv (ms) | peer (ms) | ratio | peer |")
    print("|---|---|---|---|---|")
    for name, ours, peer, who in rows:
        print("| %s | %.1f | %.1f | %.3f | %s |" % (name, ours, peer, ours / peer, who))


if __name__ == "__main__":
    main()
