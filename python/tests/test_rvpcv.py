"""The Python package against numpy/scipy computations of the same rules on
a real photograph, its errors and warnings, strided views, and calls from
several Python threads at once."""
import threading
import warnings

import numpy as np
import pytest

import rvpcv


def photo():
    try:
        from skimage import data
        return data.camera()
    except Exception:  # no sample data: a textured scene instead
        y, x = np.mgrid[0:512, 0:512]
        return ((np.sin(x / 9.0) * np.cos(y / 13.0) + 1) * 100 + (x * y) % 37).astype(np.uint8)


IMG = photo()


def test_every_exported_function_is_declared():
    names = [n for n in dir(rvpcv.lib) if n.startswith(("rvpi", "rvpcv"))]
    assert "rvpiAbsDiff_8u_C1R" in names and "rvpcvGetLibVersion" in names
    assert rvpcv.version()["version"].startswith("7.1.1")
    assert rvpcv.kernel_level() in ("sse3", "avx2", "avx512")


def test_pixelwise_and_accumulation_match_numpy():
    a, b = IMG, np.roll(IMG, 7, axis=1)
    assert np.array_equal(rvpcv.absdiff(a, b), np.abs(a.astype(int) - b).astype(np.uint8))
    acc = np.zeros(a.shape, np.float32)
    rvpcv.accumulate(acc, a)
    rvpcv.accumulate_weighted(acc, b, 0.25, mask=(a > 100).astype(np.uint8))
    want = a.astype(np.float32)
    sel = a > 100
    want[sel] = want[sel] + (b[sel].astype(np.float32) - want[sel]) * np.float32(0.25)
    assert np.array_equal(acc, want)


def test_filters_and_morphology_match_scipy():
    ndimage = pytest.importorskip("scipy.ndimage")
    f = IMG.astype(np.float32)
    # Sobel "h": 1 2 1 along the rows, -1 0 1 down the columns (correlation),
    # replicated border.
    k = np.array([[-1, -2, -1], [0, 0, 0], [1, 2, 1]], np.float32)
    assert np.array_equal(rvpcv.sobel(f), ndimage.correlate(f, k, mode="nearest"))
    assert np.array_equal(rvpcv.sobel(IMG), ndimage.correlate(IMG.astype(np.int32), k.astype(np.int32),
                                                              mode="nearest").astype(np.int16))
    disk = (np.add.outer(np.arange(-3, 4) ** 2, np.arange(-3, 4) ** 2) <= 9).astype(np.uint8)
    assert np.array_equal(rvpcv.erode(IMG, disk), ndimage.grey_erosion(IMG, footprint=disk, mode="nearest"))
    assert np.array_equal(rvpcv.max_filter(IMG, (9, 5)), ndimage.maximum_filter(IMG, size=(5, 9), mode="nearest"))
    table = rvpcv.integral(IMG)
    assert np.array_equal(table[1:, 1:], IMG.astype(np.int64).cumsum(0).cumsum(1).astype(np.int32))


def test_composite_and_gray_morphology_match_scipy():
    import scipy.ndimage as ndi
    disk = (np.add.outer(np.arange(-3, 4) ** 2, np.arange(-3, 4) ** 2) <= 9).astype(np.uint8)
    opened = rvpcv.morphology_ex("open", IMG, disk)
    assert np.array_equal(opened, ndi.grey_opening(IMG, footprint=disk, mode="nearest"))
    assert np.array_equal(rvpcv.morphology_ex("tophat", IMG, disk), IMG - opened)
    values = np.arange(9, dtype=np.int32).reshape(3, 3) - 4
    want = ndi.grey_dilation(IMG.astype(np.int32), structure=values, mode="nearest").clip(0, 255)
    assert np.array_equal(rvpcv.gray_dilate(IMG, values[::-1, ::-1]), want)


def test_true_distance_matches_scipy():
    import scipy.ndimage as ndi
    img = (IMG > 40).astype(np.uint8)
    want = ndi.distance_transform_edt(img).astype(np.float32)
    assert np.array_equal(rvpcv.true_distance(img), want)


def test_chamfer_matches_scipy_and_fast_marching_is_close():
    import scipy.ndimage as ndi
    img = (IMG > 40).astype(np.uint8)
    for norm, metric in ((0, "chessboard"), (1, "taxicab")):
        want = ndi.distance_transform_cdt(img, metric=metric)
        assert np.array_equal(rvpcv.chamfer_distance(img, 3, norm, dtype=np.uint16), want)
    exact = ndi.distance_transform_edt(img)
    assert np.allclose(rvpcv.fast_marching(img), exact, rtol=0.1, atol=1.0)
    with pytest.raises(ValueError):
        rvpcv.chamfer_distance(img, 5, weights=(1, 1))


def test_reconstruction_matches_scikit_image():
    morphology = pytest.importorskip("skimage.morphology")
    seed = np.maximum(IMG.astype(np.int16) - 40, 0).astype(np.uint8)
    want = morphology.reconstruction(seed, IMG, method="dilation").astype(np.uint8)
    assert np.array_equal(rvpcv.reconstruct(seed, IMG), want)


def test_strided_views_are_used_in_place_and_other_layouts_copied():
    big = np.zeros((IMG.shape[0] + 4, IMG.shape[1] + 16), np.uint8)
    big[2:-2, 8:-8] = IMG
    view = big[2:-2, 8:-8]
    out = np.zeros_like(big)
    rvpcv.absdiff(view, view * 0, out=out[2:-2, 8:-8])
    assert np.array_equal(out[2:-2, 8:-8], IMG) and not out[:2].any()
    assert np.array_equal(rvpcv.absdiff(IMG.T, IMG.T), np.zeros(IMG.T.shape, np.uint8))  # copied once
    assert np.array_equal(rvpcv.absdiff(IMG[::-1], IMG[::-1] * 0), IMG[::-1])


def test_errors_and_warnings():
    with pytest.raises(TypeError):
        rvpcv.absdiff(IMG.astype(np.int32), IMG.astype(np.int32))
    with pytest.raises(ValueError):
        rvpcv.absdiff(IMG, IMG[:10])
    with pytest.raises(rvpcv.BadArgumentError) as e:
        rvpcv.lib and rvpcv.gaussian(IMG.astype(np.float32), ksize=4)
    assert e.value.status == rvpcv.lib.rvpStsBadArgErr and "BadArgErr" in str(e.value)
    with pytest.raises(rvpcv.SizeError):
        rvpcv.absdiff(np.zeros((0, 5), np.uint8), np.zeros((0, 5), np.uint8))
    with pytest.raises(rvpcv.StatusError):
        rvpcv.set_num_threads(0)
    # A warning status: the state is made and usable.
    with warnings.catch_warnings(record=True) as w:
        warnings.simplefilter("always")
        rvpcv._support.check(rvpcv.lib.rvpStsLineListFullWrn, "test")
    assert w and issubclass(w[0].category, rvpcv.StatusWarning)


def test_segmentation_motion_geometry_and_inpainting():
    markers = np.zeros(IMG.shape, np.uint8)
    markers[10, 10], markers[-10, -10] = 1, 2
    labels = rvpcv.segment_gradient(IMG, markers, boundary=8)
    assert set(np.unique(labels)) <= {1, 2, 255} and (labels != 0).all()
    assert (rvpcv.watershed(IMG, markers, engine="distance", norm=2) != 0).all()
    model = rvpcv.GaussianBackground(IMG)
    mask, bg = model.apply(IMG)
    assert not mask.any() and np.array_equal(bg, IMG)
    hist = np.zeros(IMG.shape, np.float32)
    rvpcv.update_motion_history((IMG > 128).astype(np.uint8), hist, 5.0, 2.0)
    assert np.array_equal(hist, np.where(IMG > 128, 5.0, 0.0).astype(np.float32))
    assert np.array_equal(rvpcv.undistort(IMG, 500, 500, 255.5, 255.5, 0, 0)[:-1, :-1], IMG[:-1, :-1])
    damaged = IMG.copy()
    hole = np.zeros(IMG.shape, np.uint8)
    hole[200:210, 100:300] = 255
    dist = np.where(hole > 0, np.minimum(np.arange(IMG.shape[0])[:, None] - 199, 210 - np.arange(IMG.shape[0])[:, None]),
                    0).astype(np.float32)
    restored = rvpcv.inpaint(damaged, hole, dist)
    assert np.array_equal(restored[hole == 0], IMG[hole == 0])
    assert abs(int(restored[205, 200]) - int(IMG[205, 200])) < 60


def test_statistics_match_numpy():
    rng = np.random.default_rng(4)
    rgb = rng.integers(0, 65536, (61, 83, 3)).astype(np.uint16)
    other = rng.integers(0, 65536, rgb.shape).astype(np.uint16)
    mask = (rng.random(rgb.shape[:2]) < 0.6).astype(np.uint8)
    ch, sel = rgb[:, :, 1].astype(np.float64), mask > 0
    assert rvpcv.norm(rgb, "l1", mask, coi=2) == np.abs(ch[sel]).sum()
    assert rvpcv.norm_diff(rgb, other, "inf", mask, coi=2) == np.abs(ch - other[:, :, 1])[sel].max()
    assert np.isclose(rvpcv.mean_std(rgb, mask, coi=2)[1], ch[sel].std(), rtol=1e-12)
    f = rng.standard_normal((40, 50)).astype(np.float32)
    f[3, 4] = np.nan
    lo, hi, at_lo, at_hi = rvpcv.min_max(f)
    assert lo == np.nanmin(f) and at_lo == tuple(np.argwhere(f == lo)[0][::-1])
    assert np.isnan(rvpcv.norm(f)) and rvpcv.norm(f, "inf") == np.nanmax(np.abs(f))
    with pytest.warns(rvpcv.StatusWarning):
        assert np.isinf(rvpcv.norm_rel(f, np.zeros_like(f), "l1", (~np.isnan(f)).astype(np.uint8)))
    with pytest.raises(rvpcv.SizeError):
        rvpcv.mean(f, np.zeros(f.shape, np.uint8))
    with pytest.raises(ValueError):
        rvpcv.mean(rgb)


def test_threads_run_calls_at_once():
    rvpcv.set_num_threads(2)
    assert rvpcv.get_num_threads() == 2
    want = rvpcv.gaussian(IMG.astype(np.float32), 7, 2.0)
    results = [None] * 6

    def work(i):
        results[i] = rvpcv.gaussian(IMG.astype(np.float32), 7, 2.0)

    threads = [threading.Thread(target=work, args=(i,)) for i in range(6)]
    for t in threads:
        t.start()
    for t in threads:
        t.join()
    assert all(np.array_equal(r, want) for r in results)


def test_optical_flow_follows_a_shift():
    y, x = np.mgrid[0:120, 0:160].astype(np.float64)
    scene = lambda sx, sy: (128 + 40 * np.sin((x - sx) / 7.0) * np.cos((y - sy) / 9.0)).astype(np.float32)
    pts = np.array([[40.5, 30.25], [80.0, 60.0], [120.0, 90.5]], np.float32)
    nxt, status, error = rvpcv.optical_flow(scene(0, 0), scene(1.5, -0.75), pts, window=15, levels=2)
    assert (status == 0).all()
    assert np.abs(nxt - pts - [1.5, -0.75]).max() < 0.05


def test_flood_fill_and_labels_against_scipy():
    from scipy import ndimage
    binary = (IMG > 128).astype(np.uint8)
    for connectivity, structure in ((4, None), (8, np.ones((3, 3), bool))):
        labels, count = rvpcv.label_markers(binary.astype(np.uint16), connectivity)
        want, n = ndimage.label(binary, structure)
        # Components numbered in raster order of their first pixel, as scipy's are.
        assert count == n and np.array_equal(labels, want)
        seed = tuple(np.argwhere(binary)[0][::-1])
        filled, region = rvpcv.flood_fill(binary, seed, 7, connectivity=connectivity)
        comp = want == want[seed[1], seed[0]]
        assert np.array_equal(filled == 7, comp) and region["area"] == comp.sum()
    rgb = np.dstack([IMG, IMG, IMG]).astype(np.float32)
    filled, region = rvpcv.flood_fill(rgb, (0, 0), (1, 2, 3), "range", (5, 5), 8)
    assert region["value"] == (1.0, 2.0, 3.0) and (filled[0, 0] == (1, 2, 3)).all()
    _, none = rvpcv.flood_fill(binary, (0, 0), binary[0, 0])
    assert none is None
    with pytest.raises(rvpcv.RangeError):
        rvpcv.flood_fill(IMG, (IMG.shape[1], 0), 1, "grad", (2, 2))
    with pytest.raises(rvpcv.BadArgumentError):
        rvpcv.label_markers(binary, max_label=255)


def test_pyramid_levels_patches_and_lines():
    img = (np.arange(60 * 45) % 251).astype(np.uint8).reshape(45, 60)
    levels = rvpcv.pyramid_levels(img, levels=3, ratio=1.5)
    assert [lv.shape for lv in levels] == [(45, 60), (30, 40), (20, 27), (14, 18)]
    # A flat picture stays flat through the normalised kernel, down and up.
    flat = np.full((30, 41, 3), 77, np.uint8)
    assert np.all(rvpcv.pyramid_levels(flat, 2)[2] == 77)
    up = rvpcv.pyramid_up(np.full((10, 12), 3.5, np.float32), ratio=2.0)
    assert up.shape == (20, 24) and np.allclose(up, 3.5)
    # Integer centres copy exactly; half-way centres average their neighbours.
    f = np.random.default_rng(1).random((20, 30)).astype(np.float32)
    patch, lo, hi = rvpcv.get_patch(f, (10, 8), (5, 3))
    assert np.array_equal(patch, f[7:10, 8:13]) and lo == (0, 0) and hi == (4, 2)
    half = rvpcv.copy_subpix(f, 0.5, 0.0)
    assert half.shape == (20, 29) and np.allclose(half, (f[:, :-1] + f[:, 1:]) / 2, atol=1e-6)
    assert np.array_equal(rvpcv.sample_line(img, (0, 0), (9, 3)), img[[0, 0, 1, 1, 1, 2, 2, 2, 3, 3], np.arange(10)])
    # The 5x5 steps: a ramp stays a ramp inside, sizes halve and double.
    ramp = np.tile(np.arange(64, dtype=np.float32), (40, 1))
    down = rvpcv.pyr_down_gauss5(ramp)
    assert down.shape == (20, 32) and np.allclose(down[:, 2:-2], ramp[:20, 4:-4:2])
    assert rvpcv.pyr_up_gauss5(np.zeros((5, 7, 3), np.uint8)).shape == (10, 14, 3)


def _pyr_model(a, down):
    """The 5x5 Gaussian steps in numpy, straight from the rules: replicated
    border, exact integers for uint8, the stated float order for float32."""
    f = a.dtype == np.float32
    x = a.astype(np.float32 if f else np.int64)

    def axis(x, ax):
        n = x.shape[ax]
        pad = [(0, 0)] * x.ndim
        pad[ax] = (2, 2) if down else (1, 1)
        p = np.pad(x, pad, mode="edge")
        s = lambda i, m: np.take(p, range(i, i + m), axis=ax)
        if down:
            four = 4.0 if f else 4
            six = 6.0 if f else 6
            full = ((s(0, n) + s(4, n)) + (s(1, n) + s(3, n)) * four) + s(2, n) * six
            return np.take(full, range(0, n, 2), axis=ax)
        even = (s(0, n) + s(2, n)) + s(1, n) * (np.float32(6) if f else 6)
        odd = (s(1, n) + s(2, n)) * (np.float32(4) if f else 4)
        return np.stack([even, odd], axis=ax + 1).reshape(x.shape[:ax] + (2 * n,) + x.shape[ax + 1:])

    r = axis(axis(x, 0), 1)
    if f:
        return r * np.float32(1 / 256 if down else 1 / 64)
    return ((r + (128 if down else 32)) >> (8 if down else 6)).astype(np.uint8)


def test_gauss5_pyramid_steps_match_the_model():
    rgb = np.dstack([IMG[:301, :255], IMG[100:401, 7:262], IMG[1:302, 200:455]])
    for img in (IMG[:301, :255], rgb, IMG[:77, :93].astype(np.float32) / 7, rgb[:40, :31].astype(np.float32)):
        down, up = rvpcv.pyr_down_gauss5(img), rvpcv.pyr_up_gauss5(img)
        assert down.shape[:2] == ((img.shape[0] + 1) // 2, (img.shape[1] + 1) // 2)
        assert up.shape[:2] == (2 * img.shape[0], 2 * img.shape[1])
        np.testing.assert_array_equal(down, _pyr_model(img, True))
        np.testing.assert_array_equal(up, _pyr_model(img, False))
    with pytest.raises(TypeError):
        rvpcv.pyr_down_gauss5(IMG.astype(np.int16))


def test_hough_peaks_gradient_arctan():
    img = np.zeros((100, 120), np.uint8)
    img[40, :] = 255  # y = 40: rho 40 at theta pi / 2
    lines = rvpcv.hough_lines(img, threshold=50, max_lines=3)
    assert abs(lines[0, 0] - 40) <= 1 and abs(lines[0, 1] - np.pi / 2) <= np.pi / 180
    crossed = ((10, 1.0), (5, 2.0))
    with pytest.raises(rvpcv.RangeError):
        rvpcv.hough_lines(img, 50, region=crossed)
    resp = np.zeros((20, 20), np.float32)
    resp[5, 7], resp[12, 3] = 3.0, -4.0
    assert rvpcv.find_peaks(resp, 1.0).tolist() == [[7, 5], [3, 12]]
    g = rvpcv.gradient_color_to_gray(np.full((4, 5, 3), 255, np.uint8), norm=1)
    assert np.all(g == 255)
    a = rvpcv.fast_arctan(np.array([0, 1, 0], np.float32), np.array([1, 1, -1], np.float32))
    assert np.allclose(a, [-0.1405, 45.14, 180.14], atol=0.01)
