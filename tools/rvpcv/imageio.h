// Image files for the command-line tool: PNG (through libpng), PGM and PPM
// (binary, 8 or 16 bits). Errors come back as text, never as a crash.
#ifndef RVPCV_TOOL_IMAGEIO_H
#define RVPCV_TOOL_IMAGEIO_H

#include <cstdint>
#include <string>
#include <vector>

namespace tool {

// Interleaved samples, rows packed. depth is 8 or 16 (16-bit samples are
// stored in native order in `data`).
struct Picture {
    int width = 0, height = 0, channels = 1, depth = 8;
    std::vector<uint8_t> data;
    int rowBytes() const { return width * channels * (depth / 8); }
    uint8_t* row(int y) { return data.data() + static_cast<size_t>(rowBytes()) * y; }
};

Picture makePicture(int width, int height, int channels, int depth);
// Reads PNG, PGM (P5) or PPM (P6) by content; false with a message on failure.
bool readPicture(const std::string& path, Picture& out, std::string& error);
// Writes PNG, or PGM/PPM when the name ends in .pgm/.ppm.
bool writePicture(const std::string& path, const Picture& pic, std::string& error);
// The same into `path` in the format `name` asks for (a temporary file).
bool writePictureAs(const std::string& name, const std::string& path, const Picture& pic, std::string& error);
// A float plane mapped linearly from [lo, hi] (min..max when lo == hi) to 8 bits.
Picture visualise(const float* data, int width, int height, int stride, float lo = 0, float hi = 0);
// The gray version of a picture (8-bit, one channel); averages RGB.
Picture toGray8(const Picture& pic);

}  // namespace tool

#endif
