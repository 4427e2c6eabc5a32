// Command and demo-step registry of the rvpcv tool. A family adds one file,
// cmd_<topic>.cpp, holding its commands and demo steps; both register
// themselves at start-up, so no central table needs editing.
#ifndef RVPCV_TOOL_COMMANDS_H
#define RVPCV_TOOL_COMMANDS_H

#include <string>
#include <vector>

#include "imageio.h"
#include "results.h"
#include "rvpcv.h"

namespace tool {

using Args = std::vector<std::string>;

struct Command {
    const char* name;
    const char* usage;    // arguments, e.g. "A B OUT"
    const char* summary;  // one line
    int (*run)(const Args& args);  // args after the command name; returns the exit code
    const char* help = nullptr;    // more for COMMAND --help: options, defaults, formats
};

// What the demo hands each step: the built-in sample scene and where to write.
struct DemoContext {
    Picture gray;      // 8-bit gray scene
    Picture grayNext;  // the same scene a moment later (objects moved)
    std::string outDir;
    // Writes a picture into outDir; reports failure on stderr.
    bool save(const std::string& name, const Picture& pic) const;
};

struct DemoStep {
    int order;  // steps run by increasing order
    const char* name;
    // Runs the step, writes its pictures, sets `what` to a short description
    // of the output (file names); returns false on failure.
    bool (*run)(const DemoContext& ctx, std::string& what);
};

struct RegisterCommand { explicit RegisterCommand(const Command& c); };
struct RegisterDemoStep { explicit RegisterDemoStep(const DemoStep& s); };

const std::vector<Command>& commands();
const std::vector<DemoStep>& demoSteps();

// Shared helpers for command implementations.
int fail(const std::string& message);  // prints "rvpcv: message", returns 1
int usage(const Command& c);           // prints the command's usage, returns 2
int usageError(const Command& c, const std::string& message);  // the message and the usage; returns 2
bool load(const std::string& path, Picture& pic);  // prints the error itself
// Writes through a temporary file beside it: a failure leaves nothing.
bool store(const std::string& path, const Picture& pic);
// Explains a status code in words for error messages.
std::string statusText(RvpStatus st);
// The built-in sample scene: a gray 8-bit image with shapes, gradients and
// texture; `t` moves its objects.
Picture sampleScene(int width, int height, int t);
// Canny edges (3x3 Sobel, hysteresis between low and high) of an 8-bit gray
// picture; `error` explains a refusal the status alone would not.
RvpStatus cannyEdges(const Picture& gray, float low, float high, Picture& edges, std::string& error);
// Levels 0..levels of an 8-bit gray or colour picture at the given ratio
// (1 4 6 4 1 kernel, the library's layer states); fewer at 1 x 1.
RvpStatus binomialPyramid(const Picture& pic, int levels, float ratio, std::vector<Picture>& out);

}  // namespace tool

#endif
