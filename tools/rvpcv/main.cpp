// rvpcv: runs the library's operations on image files, and a demo on a
// built-in sample scene. Exit codes: 0 success, 1 failure, 2 bad usage.
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <sys/stat.h>

#include "commands.h"
#include "rvpcore.h"

namespace tool {

namespace {
std::vector<Command>& commandList() { static std::vector<Command> v; return v; }
std::vector<DemoStep>& stepList() { static std::vector<DemoStep> v; return v; }
}  // namespace

RegisterCommand::RegisterCommand(const Command& c) { commandList().push_back(c); }
RegisterDemoStep::RegisterDemoStep(const DemoStep& s) { stepList().push_back(s); }
const std::vector<Command>& commands() { return commandList(); }
const std::vector<DemoStep>& demoSteps() { return stepList(); }

int fail(const std::string& message) {
    std::fprintf(stderr, "rvpcv: %s\n", message.c_str());
    return 1;
}

int usage(const Command& c) {
    std::fprintf(stderr, "usage: rvpcv %s %s\n", c.name, c.usage);
    return 2;
}

bool load(const std::string& path, Picture& pic) {
    std::string err;
    if (readPicture(path, pic, err)) return true;
    fail(err);
    return false;
}

bool store(const std::string& path, const Picture& pic) {
    std::string err;
    if (writePicture(path, pic, err)) return true;
    fail(err);
    return false;
}

bool DemoContext::save(const std::string& name, const Picture& pic) const {
    return store(outDir + "/" + name, pic);
}

std::string statusText(RvpStatus st) {
    switch (st) {
    case rvpStsNoErr: return "success";
    case rvpStsNullPtrErr: return "null pointer";
    case rvpStsSizeErr: return "bad size";
    case rvpStsStepErr: return "bad row step";
    case rvpStsNotEvenStepErr: return "row step not a multiple of the sample size";
    case rvpStsBadArgErr: return "bad argument";
    case rvpStsMaskSizeErr: return "bad mask size";
    case rvpStsAnchorErr: return "anchor outside the mask";
    case rvpStsMemAllocErr: return "out of memory";
    default: return "status " + std::to_string(st);
    }
}

namespace {

void printHelp() {
    std::printf("rvpcv - computer-vision primitives on image files (PNG, PGM, PPM)\n\n"
                "usage: rvpcv COMMAND [ARGS]\n\n"
                "  --version              library name and version\n"
                "  --help                 this text\n"
                "  --threads N COMMAND    run COMMAND with at most N threads\n");
    std::vector<Command> cs = commands();
    std::sort(cs.begin(), cs.end(), [](const Command& a, const Command& b) { return std::strcmp(a.name, b.name) < 0; });
    for (const Command& c : cs) {
        std::string head = std::string(c.name) + " " + c.usage;
        std::printf("  %-22s %s\n", head.c_str(), c.summary);
    }
}

int runDemo(const Args& args) {
    DemoContext ctx;
    ctx.outDir = args.empty() ? "demo-out" : args[0];
    if (args.size() > 1) return fail("demo takes at most one argument, the output folder");
    if (mkdir(ctx.outDir.c_str(), 0755) != 0 && errno != EEXIST)
        return fail("cannot create '" + ctx.outDir + "': " + std::strerror(errno));
    ctx.gray = sampleScene(640, 480, 0);
    ctx.grayNext = sampleScene(640, 480, 1);
    if (!ctx.save("scene.png", ctx.gray) || !ctx.save("scene-next.png", ctx.grayNext)) return 1;
    const RvpLibraryVersion* v = rvpcvGetLibVersion();
    int threads = 0;
    rvpGetNumThreads(&threads);
    std::printf("%s %s, %s kernels, %d threads, sample scene 640x480 -> %s/\n", v->name, v->version,
                rvpDispatchLevelName(rvpDispatchLevel(rvpGetEnabledCpuFeatures())), threads, ctx.outDir.c_str());
    std::vector<DemoStep> steps = demoSteps();
    std::stable_sort(steps.begin(), steps.end(), [](const DemoStep& a, const DemoStep& b) { return a.order < b.order; });
    int failed = 0;
    for (const DemoStep& s : steps) {
        std::string what;
        const auto t0 = std::chrono::steady_clock::now();
        const bool ok = s.run(ctx, what);
        const double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - t0).count();
        std::printf("%-14s %9.3f ms  %s%s\n", s.name, ms, ok ? "" : "FAILED ", what.c_str());
        failed += ok ? 0 : 1;
    }
    return failed ? 1 : 0;
}

}  // namespace
}  // namespace tool

int main(int argc, char** argv) {
    using namespace tool;
    Args args(argv + 1, argv + argc);
    if (args.size() >= 2 && args[0] == "--threads") {
        char* end = nullptr;
        const long n = std::strtol(args[1].c_str(), &end, 10);
        if (*end != '\0' || rvpSetNumThreads(static_cast<int>(n)) != rvpStsNoErr)
            return fail("--threads takes a count from 1 to 1024"), 2;
        args.erase(args.begin(), args.begin() + 2);
    }
    if (args.empty() || args[0] == "--help" || args[0] == "-h" || args[0] == "help") {
        printHelp();
        return args.empty() ? 2 : 0;
    }
    if (args[0] == "--version") {
        const RvpLibraryVersion* v = rvpcvGetLibVersion();
        std::printf("%s %s (%d.%d.%d.%d, built %s)\n", v->name, v->version, v->major, v->minor, v->majorBuild,
                    v->build, v->buildDate);
        // The level the library chose at load; RVPCV_ISA may hold it below the processor's.
        Rvp64u detected = 0;
        rvpGetCpuFeatures(&detected, nullptr);
        std::printf("kernels: %s (processor: %s)\n", rvpDispatchLevelName(rvpDispatchLevel(rvpGetEnabledCpuFeatures())),
                    rvpDispatchLevelName(rvpDispatchLevel(detected)));
        return 0;
    }
    const std::string name = args[0];
    args.erase(args.begin());
    if (name == "demo") return runDemo(args);
    for (const Command& c : commands())
        if (name == c.name) return c.run(args);
    std::fprintf(stderr, "rvpcv: unknown command '%s' (see rvpcv --help)\n", name.c_str());
    return 2;
}
