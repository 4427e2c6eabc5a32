// Writers for numeric results and the all-or-none output set.
#include "results.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>

#include "commands.h"

namespace tool {
namespace {

bool endsWith(const std::string& s, const char* suffix) {
    const size_t n = std::strlen(suffix);
    return s.size() >= n && s.compare(s.size() - n, n, suffix) == 0;
}

const char* numpyType(Result::Type t) {
    switch (t) {
    case Result::Int16: return "<i2";
    case Result::Int32: return "<i4";
    case Result::Float32: return "<f4";
    case Result::Float64: return "<f8";
    }
    return "<f8";
}

template <class T> void append(std::string& out, T v) { out.append(reinterpret_cast<const char*>(&v), sizeof v); }

// numpy's .npy, version 1.0: magic, header length, a dict padded to 64 bytes.
std::string npy(const Result& r) {
    std::string head = "{'descr': '" + std::string(numpyType(r.type)) + "', 'fortran_order': False, 'shape': (" +
                       std::to_string(r.height) + ", " + std::to_string(r.width) + "), }";
    while ((10 + head.size() + 1) % 64) head += ' ';
    head += '\n';
    std::string out("\x93NUMPY\x01\x00", 8);
    append(out, static_cast<uint16_t>(head.size()));
    out += head;
    for (double v : r.values) {
        switch (r.type) {
        case Result::Int16: append(out, static_cast<int16_t>(v)); break;
        case Result::Int32: append(out, static_cast<int32_t>(v)); break;
        case Result::Float32: append(out, static_cast<float>(v)); break;
        case Result::Float64: append(out, v); break;
        }
    }
    return out;
}

// Portable float map, gray: rows from the bottom, little-endian.
std::string pfm(const Result& r) {
    std::string out = "Pf\n" + std::to_string(r.width) + " " + std::to_string(r.height) + "\n-1.0\n";
    for (int y = r.height - 1; y >= 0; --y)
        for (int x = 0; x < r.width; ++x) append(out, static_cast<float>(r.values[static_cast<size_t>(y) * r.width + x]));
    return out;
}

bool writeBytes(const std::string& path, const std::string& bytes, std::string& error) {
    std::unique_ptr<FILE, int (*)(FILE*)> f(std::fopen(path.c_str(), "wb"), std::fclose);
    if (!f || std::fwrite(bytes.data(), 1, bytes.size(), f.get()) != bytes.size()) {
        error = "cannot write '" + path + "': " + std::strerror(errno);
        return false;
    }
    return true;
}

// Writes to `file` in the format that `name` asks for.
bool writeResult(const std::string& name, const std::string& file, const Result& r, std::string& error) {
    if (endsWith(name, ".npy")) return writeBytes(file, npy(r), error);
    if (endsWith(name, ".pfm")) return writeBytes(file, pfm(r), error);
    if (settings().preview) return writePictureAs(name, file, preview(r), error);
    // 16-bit picture of value + 32768 (checked to be an Int16 result).
    Picture p = makePicture(r.width, r.height, 1, 16);
    auto* d = reinterpret_cast<uint16_t*>(p.data.data());
    for (size_t i = 0; i < r.values.size(); ++i) d[i] = static_cast<uint16_t>(static_cast<int>(r.values[i]) + 32768);
    return writePictureAs(name, file, p, error);
}

}  // namespace

Settings& settings() {
    static Settings s;
    return s;
}

Picture preview(const Result& r) {
    std::vector<float> f(r.values.begin(), r.values.end());
    return visualise(f.data(), r.width, r.height, r.width);
}

std::string checkPictureName(const std::string& path) {
    for (const char* ext : {".png", ".pgm", ".ppm", ".PNG"})
        if (endsWith(path, ext)) return "";
    return "'" + path + "': outputs are .png, .pgm or .ppm" ;
}

std::string checkResultName(const std::string& path, Result::Type type) {
    if (endsWith(path, ".npy") || endsWith(path, ".pfm")) return "";
    if (const std::string e = checkPictureName(path); !e.empty()) return e + " (or .npy, .pfm for the numbers)";
    if (type == Result::Int16 || settings().preview) return "";
    return "'" + path + "': a " + (type == Result::Int32 ? "32-bit" : "float") +
           " result is written as .npy or .pfm; --preview writes a stretched 8-bit picture instead";
}

void Outputs::add(const std::string& path, const Picture& pic) { items_.push_back({path, pic, Result(), false}); }
void Outputs::add(const std::string& path, const Result& r) { items_.push_back({path, Picture(), r, true}); }

bool Outputs::commit() {
    for (const Item& it : items_) {
        const std::string e = it.isResult ? checkResultName(it.path, it.result.type) : checkPictureName(it.path);
        if (!e.empty()) return fail(e), false;
    }
    std::vector<std::string> written;
    std::string error;
    bool ok = true;
    for (size_t i = 0; i < items_.size() && ok; ++i) {
        const Item& it = items_[i];
        const std::string tmp = it.path + ".partial-" + std::to_string(i);
        ok = it.isResult ? writeResult(it.path, tmp, it.result, error) : writePictureAs(it.path, tmp, it.pic, error);
        written.push_back(tmp);
    }
    for (size_t i = 0; ok && i < items_.size(); ++i)
        if (std::rename(written[i].c_str(), items_[i].path.c_str()) != 0) {
            error = "cannot write '" + items_[i].path + "': " + std::strerror(errno);
            ok = false;
        }
    if (!ok) {
        for (const std::string& t : written) std::remove(t.c_str());
        // Error texts name the temporary file: name the output instead.
        for (size_t i = 0; i < items_.size(); ++i) {
            const std::string tmp = items_[i].path + ".partial-" + std::to_string(i);
            for (size_t at; (at = error.find(tmp)) != std::string::npos;) error.replace(at, tmp.size(), items_[i].path);
        }
        fail(error);
    }
    return ok;
}

}  // namespace tool
