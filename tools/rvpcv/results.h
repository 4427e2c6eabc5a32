// Numeric results of the tool that pictures cannot hold: signed 16-bit
// derivatives, 32-bit and float tables. They are written so that they keep
// their numbers: .npy (numpy) or .pfm (floats) by name, 16-bit results also
// as 16-bit PNG/PGM holding value + 32768; the stretched 8-bit picture of a
// result only with --preview. Several outputs are written as one: all or
// none.
#ifndef RVPCV_TOOL_RESULTS_H
#define RVPCV_TOOL_RESULTS_H

#include <cstdint>
#include <string>
#include <vector>

#include "imageio.h"

namespace tool {

struct Result {
    enum Type { Int16, Int32, Float32, Float64 } type = Float32;
    int width = 0, height = 0;
    std::vector<double> values;  // row by row
    template <class T> static Result of(Type t, const T* data, int w, int h, int stride) {
        Result r;
        r.type = t, r.width = w, r.height = h;
        r.values.reserve(static_cast<size_t>(w) * h);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) r.values.push_back(static_cast<double>(data[static_cast<size_t>(y) * stride + x]));
        return r;
    }
};

// The 8-bit picture of a result, its minimum to its maximum stretched.
Picture preview(const Result& r);

// Options every command takes (read by main from anywhere in the arguments).
struct Settings {
    bool preview = false;  // write results as stretched 8-bit pictures
    bool verbose = false;  // a timing line per step on stderr
};
Settings& settings();

// Whether a path names a format the tool writes; for a result, also whether
// that format holds it (or --preview asks for a picture). Empty: fine.
std::string checkPictureName(const std::string& path);
std::string checkResultName(const std::string& path, Result::Type type);

// All outputs of a command, written together: each goes to a temporary file
// beside its place, and only when all are written are they renamed; a
// failure leaves none of them behind.
class Outputs {
public:
    void add(const std::string& path, const Picture& pic);
    void add(const std::string& path, const Result& r);
    bool commit();  // prints the error itself

private:
    struct Item {
        std::string path;
        Picture pic;
        Result result;
        bool isResult;
    };
    std::vector<Item> items_;
};

}  // namespace tool

#endif
