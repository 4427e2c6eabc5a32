// Flood fill and marker labelling against the peer's floodFill (fixed range
// for the exact and range rules, floating range for the gradient rule) and
// connectedComponents, on a thresholded photo-like scene (large smooth
// regions) and on a thresholded texture (many small regions). Both sides
// restore their input inside the timed loop.
#include <cmath>

#include "benchutil.h"

namespace {

using namespace rvbench;

// A photo-like gray scene: smooth shading, large discs and bars, mild noise.
std::shared_ptr<Plane<Rvp8u>> photo(Size s) {
    auto p = std::make_shared<Plane<Rvp8u>>(s, 1, 4);
    std::mt19937 rng(9);
    for (int y = 0; y < s.h; ++y)
        for (int x = 0; x < s.w; ++x) {
            double v = 90 + 40 * std::sin(x / 300.0) * std::cos(y / 210.0);
            for (int k = 0; k < 12; ++k) {
                const int cx = (k * 397) % s.w, cy = (k * 241) % s.h, r = 60 + 15 * k;
                if ((x - cx) * (x - cx) + (y - cy) * (y - cy) < r * r) v = 170 + 3 * k + (x + y) % 5;
            }
            if ((y / 40) % 6 == 0 && x % 300 < 200) v = 20;
            p->ptr()[static_cast<size_t>(y) * s.w + x] = static_cast<Rvp8u>(v + static_cast<int>(rng() % 3));
        }
    return p;
}

// A texture: smoothed noise, so that thresholding leaves many blobs.
std::shared_ptr<Plane<Rvp8u>> texture(Size s) {
    auto p = std::make_shared<Plane<Rvp8u>>(s, 1, 5);
    std::vector<int> a(p->ptr(), p->ptr() + static_cast<size_t>(s.w) * s.h);
    for (int y = 1; y < s.h - 1; ++y)
        for (int x = 1; x < s.w - 1; ++x) {
            int sum = 0;
            for (int dy = -1; dy <= 1; ++dy)
                for (int dx = -1; dx <= 1; ++dx) sum += a[static_cast<size_t>(y + dy) * s.w + x + dx];
            p->ptr()[static_cast<size_t>(y) * s.w + x] = static_cast<Rvp8u>(sum / 9);
        }
    return p;
}

std::shared_ptr<Plane<Rvp8u>> threshold(const Plane<Rvp8u>& src, int t) {
    auto p = std::make_shared<Plane<Rvp8u>>(Size{src.w, src.h}, 1, 1);
    for (size_t i = 0; i < src.bytes(); ++i) p->ptr()[i] = src.ptr()[i] > t ? 255 : 0;
    return p;
}

enum class Kind { Exact, Range, Grad };

// The seed: the first pixel of the middle row holding `value` (a pixel of
// the large region, so that the fill covers much of the image).
RvpiPoint seedOf(const Plane<Rvp8u>& img, int value) {
    const int y = img.h / 2;
    for (int x = 0; x < img.w; ++x)
        if (img.ptr()[static_cast<size_t>(y) * img.w + x] == value) return {x, y};
    return {0, y};
}

void addFill(const std::string& op, const std::shared_ptr<Plane<Rvp8u>>& img, Kind kind, bool eight, int lo, int hi,
             RvpiPoint seed) {
    const Size s{img->w, img->h};
    const RvpiSize roi{s.w, s.h};
    add(op, "rvp", s, img->bytes() * 2, [=](benchmark::State& st) {
        int bytes = 0;
        (kind == Kind::Grad ? rvpiFloodFillGetSize_Grad : rvpiFloodFillGetSize)(roi, &bytes);
        std::vector<Rvp8u> buf(bytes), work(img->bytes());
        RvpiConnectedComp r;
        const Rvp8u nv = static_cast<Rvp8u>(img->ptr()[static_cast<size_t>(seed.y) * s.w + seed.x] ^ 0x80);
        for (auto _ : st) {
            std::memcpy(work.data(), img->ptr(), work.size());
            if (kind == Kind::Exact)
                (eight ? rvpiFloodFill_8Con_8u_C1IR : rvpiFloodFill_4Con_8u_C1IR)(work.data(), s.w, roi, seed, nv, &r,
                                                                                  buf.data());
            else if (kind == Kind::Range)
                (eight ? rvpiFloodFill_Range8Con_8u_C1IR : rvpiFloodFill_Range4Con_8u_C1IR)(
                    work.data(), s.w, roi, seed, nv, static_cast<Rvp8u>(lo), static_cast<Rvp8u>(hi), &r, buf.data());
            else
                (eight ? rvpiFloodFill_Grad8Con_8u_C1IR : rvpiFloodFill_Grad4Con_8u_C1IR)(
                    work.data(), s.w, roi, seed, nv, static_cast<Rvp8u>(lo), static_cast<Rvp8u>(hi), &r, buf.data());
        }
        st.counters["area"] = r.area;
    });
#ifdef RVPCV_HAVE_OPENCV
    add(op, "cv", s, img->bytes() * 2, [=](benchmark::State& st) {
        cv::Mat src = img->mat(), work;
        const int flags = (eight ? 8 : 4) | (kind == Kind::Grad ? 0 : cv::FLOODFILL_FIXED_RANGE);
        const cv::Scalar nv(img->ptr()[static_cast<size_t>(seed.y) * s.w + seed.x] ^ 0x80);
        int area = 0;
        for (auto _ : st) {
            src.copyTo(work);
            area = cv::floodFill(work, cv::Point(seed.x, seed.y), nv, nullptr, cv::Scalar(lo), cv::Scalar(hi), flags);
        }
        st.counters["area"] = area;
    });
#endif
}

void addLabel(const std::string& op, const std::shared_ptr<Plane<Rvp8u>>& bin, bool eight) {
    const Size s{bin->w, bin->h};
    const RvpiSize roi{s.w, s.h};
    add(op, "rvp", s, bin->bytes() * 3, [=](benchmark::State& st) {
        int bytes = 0, count = 0;
        rvpiLabelMarkersGetBufferSize_16u_C1R(roi, &bytes);
        std::vector<Rvp8u> buf(bytes);
        std::vector<Rvp16u> lab(static_cast<size_t>(s.w) * s.h);
        for (auto _ : st) {
            for (size_t i = 0; i < lab.size(); ++i) lab[i] = bin->ptr()[i];
            rvpiLabelMarkers_16u_C1IR(lab.data(), 2 * s.w, roi, 1, 65534, eight ? 0 : 1, &count, buf.data());
        }
        st.counters["components"] = count;
    });
#ifdef RVPCV_HAVE_OPENCV
    add(op, "cv", s, bin->bytes() * 3, [=](benchmark::State& st) {
        cv::Mat src = bin->mat(), labels;
        int count = 0;
        for (auto _ : st) count = cv::connectedComponents(src, labels, eight ? 8 : 4, CV_32S);
        st.counters["components"] = count - 1;
    });
#endif
}

void addRuns() {
    const Size s = hd()[0];
    const auto ph = photo(s), tex = texture(s);
    const auto phBin = threshold(*ph, 140), texBin = threshold(*tex, 128), texFill = threshold(*tex, 110);
    const RvpiPoint bg = seedOf(*phBin, 0), inTex = seedOf(*texFill, 255), mid{s.w / 2, s.h / 2};
    addFill("FloodFill4_8u_photo", phBin, Kind::Exact, false, 0, 0, bg);
    addFill("FloodFill8_8u_photo", phBin, Kind::Exact, true, 0, 0, bg);
    addFill("FloodFill4_8u_texture", texFill, Kind::Exact, false, 0, 0, inTex);
    addFill("FloodFill8_8u_texture", texFill, Kind::Exact, true, 0, 0, inTex);
    addFill("FloodFillRange4_8u_photo", ph, Kind::Range, false, 60, 60, bg);
    addFill("FloodFillRange8_8u_texture", tex, Kind::Range, true, 30, 30, mid);
    addFill("FloodFillGrad4_8u_photo", ph, Kind::Grad, false, 3, 3, bg);
    addFill("FloodFillGrad8_8u_texture", tex, Kind::Grad, true, 16, 16, mid);
    addLabel("LabelMarkers4_photo", phBin, false);
    addLabel("LabelMarkers8_photo", phBin, true);
    addLabel("LabelMarkers4_texture", texBin, false);
    addLabel("LabelMarkers8_texture", texBin, true);
}

const int kRegistered = (addRuns(), 0);

}  // namespace
