// The built-in sample scene: a lit background, a few solid shapes, a ring,
// fine stripes and a little seeded noise, so that every operation has edges,
// flat areas and texture to work on. `t` shifts the moving objects.
#include <cmath>
#include <cstdint>

#include "commands.h"

namespace tool {

Picture sampleScene(int width, int height, int t) {
    Picture p = makePicture(width, height, 1, 8);
    uint32_t noise = 12345u;
    const double cx = width * (0.30 + 0.02 * t), cy = height * 0.45, r = height * 0.18;
    const double rx = width * 0.70, ry = height * (0.60 - 0.03 * t);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            double v = 60 + 100.0 * x / width + 40.0 * y / height;  // lit background
            const double d = std::hypot(x - cx, y - cy);
            if (d < r) v = 210 - 0.3 * d;                            // bright disk
            const double dr = std::hypot(x - rx, y - ry);
            if (dr > height * 0.08 && dr < height * 0.13) v = 30;    // dark ring
            if (x > width * 0.08 && x < width * 0.22 && y > height * 0.68 && y < height * 0.90)
                v = (x / 4 + y / 4) % 2 ? 240 : 20;                   // checker patch
            if (y > height * 0.08 && y < height * 0.2 && x > width * 0.55 && x < width * 0.92)
                v = ((x + 3 * t) / 3) % 2 ? 180 : 90;                 // stripes
            noise = noise * 1664525u + 1013904223u;
            v += static_cast<int>(noise >> 29) - 3;                  // noise in -3..4
            p.row(y)[x] = static_cast<uint8_t>(v < 0 ? 0 : v > 255 ? 255 : v);
        }
    return p;
}

}  // namespace tool
