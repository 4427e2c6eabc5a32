// PNG through libpng, PGM/PPM natively.
#include "imageio.h"

#include <png.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>

namespace tool {

namespace {

struct FileCloser { void operator()(FILE* f) const { if (f) std::fclose(f); } };
using File = std::unique_ptr<FILE, FileCloser>;

bool endsWith(const std::string& s, const char* suffix) {
    const size_t n = std::strlen(suffix);
    if (s.size() < n) return false;
    std::string tail = s.substr(s.size() - n);
    std::transform(tail.begin(), tail.end(), tail.begin(), [](unsigned char c) { return std::tolower(c); });
    return tail == suffix;
}

bool readPng(FILE* f, const std::string& path, Picture& out, std::string& error) {
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    if (!info) {
        png_destroy_read_struct(&png, nullptr, nullptr);
        error = "out of memory";
        return false;
    }
    std::vector<png_bytep> rows;
    if (setjmp(png_jmpbuf(png))) {
        png_destroy_read_struct(&png, &info, nullptr);
        error = "'" + path + "' is not a readable PNG image";
        return false;
    }
    png_init_io(png, f);
    png_read_info(png, info);
    const int color = png_get_color_type(png, info);
    const int bits = png_get_bit_depth(png, info);
    if (color == PNG_COLOR_TYPE_PALETTE) png_set_palette_to_rgb(png);
    if (color == PNG_COLOR_TYPE_GRAY && bits < 8) png_set_expand_gray_1_2_4_to_8(png);
    if (png_get_valid(png, info, PNG_INFO_tRNS)) png_set_strip_alpha(png);
    if (color & PNG_COLOR_MASK_ALPHA) png_set_strip_alpha(png);
    if (bits == 16) png_set_swap(png);  // PNG is big-endian; keep native order
    png_read_update_info(png, info);
    const int w = static_cast<int>(png_get_image_width(png, info));
    const int h = static_cast<int>(png_get_image_height(png, info));
    const int ch = png_get_channels(png, info);
    const int depth = png_get_bit_depth(png, info) == 16 ? 16 : 8;
    if (w <= 0 || h <= 0 || w > 65536 || h > 65536 || (ch != 1 && ch != 3)) {
        png_destroy_read_struct(&png, &info, nullptr);
        error = "'" + path + "' has an unsupported size or layout";
        return false;
    }
    out = makePicture(w, h, ch, depth);
    rows.resize(h);
    for (int y = 0; y < h; ++y) rows[y] = out.row(y);
    png_read_image(png, rows.data());
    png_read_end(png, nullptr);
    png_destroy_read_struct(&png, &info, nullptr);
    return true;
}

// Reads one header number of a PNM file, skipping white space and comments.
bool pnmNumber(FILE* f, long& v) {
    int c = std::fgetc(f);
    while (c == '#' || std::isspace(c)) {
        if (c == '#')
            while (c != '\n' && c != EOF) c = std::fgetc(f);
        c = std::fgetc(f);
    }
    if (!std::isdigit(c)) return false;
    v = 0;
    while (std::isdigit(c)) {
        v = v * 10 + (c - '0');
        if (v > 1000000) return false;
        c = std::fgetc(f);
    }
    return std::isspace(c) != 0;  // exactly one white-space byte ends the header field
}

bool readPnm(FILE* f, const std::string& path, int magic, Picture& out, std::string& error) {
    long w = 0, h = 0, maxval = 0;
    if (!pnmNumber(f, w) || !pnmNumber(f, h) || !pnmNumber(f, maxval) || w <= 0 || h <= 0 || w > 65536 ||
        h > 65536 || maxval <= 0 || maxval > 65535) {
        error = "'" + path + "' has a malformed PNM header";
        return false;
    }
    const int depth = maxval > 255 ? 16 : 8;
    out = makePicture(static_cast<int>(w), static_cast<int>(h), magic == '6' ? 3 : 1, depth);
    if (std::fread(out.data.data(), 1, out.data.size(), f) != out.data.size()) {
        error = "'" + path + "' is truncated";
        return false;
    }
    if (depth == 16)  // PNM stores 16-bit samples big-endian
        for (size_t i = 0; i + 1 < out.data.size(); i += 2) std::swap(out.data[i], out.data[i + 1]);
    return true;
}

}  // namespace

Picture makePicture(int width, int height, int channels, int depth) {
    Picture p;
    p.width = width;
    p.height = height;
    p.channels = channels;
    p.depth = depth;
    p.data.assign(static_cast<size_t>(p.rowBytes()) * height, 0);
    return p;
}

bool readPicture(const std::string& path, Picture& out, std::string& error) {
    File f(std::fopen(path.c_str(), "rb"));
    if (!f) {
        error = "cannot open '" + path + "': " + std::strerror(errno);
        return false;
    }
    unsigned char sig[8] = {0};
    const size_t got = std::fread(sig, 1, 8, f.get());
    if (got == 8 && png_sig_cmp(sig, 0, 8) == 0) {
        std::rewind(f.get());
        return readPng(f.get(), path, out, error);
    }
    if (got >= 3 && sig[0] == 'P' && (sig[1] == '5' || sig[1] == '6')) {
        std::fseek(f.get(), 2, SEEK_SET);
        return readPnm(f.get(), path, sig[1], out, error);
    }
    error = "'" + path + "' is not a PNG, PGM or PPM image";
    return false;
}

bool writePicture(const std::string& path, const Picture& pic, std::string& error) {
    return writePictureAs(path, path, pic, error);
}

bool writePictureAs(const std::string& name, const std::string& path, const Picture& pic, std::string& error) {
    File f(std::fopen(path.c_str(), "wb"));
    if (!f) {
        error = "cannot write '" + path + "': " + std::strerror(errno);
        return false;
    }
    if (endsWith(name, ".pgm") || endsWith(name, ".ppm")) {
        std::fprintf(f.get(), "P%c\n%d %d\n%d\n", pic.channels == 3 ? '6' : '5', pic.width, pic.height,
                     pic.depth == 16 ? 65535 : 255);
        std::vector<uint8_t> bytes = pic.data;
        if (pic.depth == 16)
            for (size_t i = 0; i + 1 < bytes.size(); i += 2) std::swap(bytes[i], bytes[i + 1]);
        if (std::fwrite(bytes.data(), 1, bytes.size(), f.get()) != bytes.size()) {
            error = "short write to '" + path + "'";
            return false;
        }
        return true;
    }
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    if (!info) {
        png_destroy_write_struct(&png, nullptr);
        error = "out of memory";
        return false;
    }
    if (setjmp(png_jmpbuf(png))) {
        png_destroy_write_struct(&png, &info);
        error = "cannot encode '" + path + "'";
        return false;
    }
    png_init_io(png, f.get());
    png_set_IHDR(png, info, pic.width, pic.height, pic.depth, pic.channels == 3 ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_GRAY,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    if (pic.depth == 16) png_set_swap(png);
    for (int y = 0; y < pic.height; ++y)
        png_write_row(png, const_cast<png_bytep>(pic.data.data() + static_cast<size_t>(pic.rowBytes()) * y));
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return true;
}

Picture visualise(const float* data, int width, int height, int stride, float lo, float hi) {
    if (lo == hi) {
        lo = INFINITY;
        hi = -INFINITY;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                const float v = data[static_cast<size_t>(y) * stride + x];
                if (std::isfinite(v)) { lo = std::min(lo, v); hi = std::max(hi, v); }
            }
        if (!(hi > lo)) { lo = 0; hi = 1; }
    }
    Picture p = makePicture(width, height, 1, 8);
    const float scale = 255.0f / (hi - lo);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const float v = (data[static_cast<size_t>(y) * stride + x] - lo) * scale;
            p.row(y)[x] = static_cast<uint8_t>(std::isnan(v) ? 0 : v < 0 ? 0 : v > 255 ? 255 : v + 0.5f);
        }
    return p;
}

// Luma weights 0.299, 0.587, 0.114 (gray pictures pass through, 16-bit
// samples keep their high byte).
Picture toGray8(const Picture& pic) {
    Picture g = makePicture(pic.width, pic.height, 1, 8);
    for (int y = 0; y < pic.height; ++y) {
        const uint8_t* r = pic.data.data() + static_cast<size_t>(pic.rowBytes()) * y;
        for (int x = 0; x < pic.width; ++x) {
            int s[3] = {0, 0, 0};
            for (int c = 0; c < pic.channels && c < 3; ++c) {
                const int i = x * pic.channels + c;
                s[c] = pic.depth == 16 ? (r[2 * i] | (r[2 * i + 1] << 8)) >> 8 : r[i];
            }
            g.row(y)[x] = pic.channels >= 3 ? static_cast<uint8_t>((299 * s[0] + 587 * s[1] + 114 * s[2] + 500) / 1000)
                                            : static_cast<uint8_t>(s[0]);
        }
    }
    return g;
}

}  // namespace tool
