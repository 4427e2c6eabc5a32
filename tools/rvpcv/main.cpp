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

int usageError(const Command& c, const std::string& message) {
    fail(message);
    return usage(c);
}

bool load(const std::string& path, Picture& pic) {
    std::string err;
    if (readPicture(path, pic, err)) return true;
    fail(err);
    return false;
}

bool store(const std::string& path, const Picture& pic) {
    Outputs o;
    o.add(path, pic);
    return o.commit();
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

// Prints text wrapped to 99 columns, continuation lines indented by `indent`.
void wrapped(const std::string& text, size_t first, size_t indent) {
    size_t col = first;
    std::string word;
    const auto flush = [&] {
        if (word.empty()) return;
        if (col + 1 + word.size() > 99 && col > indent) {
            std::printf("\n%*s", static_cast<int>(indent), "");
            col = indent;
        } else if (col > indent && col != first) {
            std::printf(" ");
            ++col;
        } else if (col == first && first > indent) {
            std::printf(" ");
            ++col;
        }
        std::printf("%s", word.c_str());
        col += word.size();
        word.clear();
    };
    for (char ch : text) {
        if (ch == ' ' || ch == '\n') flush();
        else word += ch;
    }
    flush();
    std::printf("\n");
}

void printHelp() {
    std::printf("rvpcv - computer-vision primitives on image files (PNG, PGM, PPM)\n\n"
                "usage: rvpcv [--threads N] [--preview] [--verbose] COMMAND [ARGS]\n"
                "       rvpcv COMMAND --help\n\n"
                "  --version                 library name, version and kernel level\n"
                "  --help                    this text\n"
                "  --threads N               at most N threads (1 to 1024)\n"
                "  --preview                 write numeric results as stretched 8-bit pictures\n"
                "  --verbose                 the time each command or demo step takes, on stderr\n\n"
                "Colour pictures are made gray with the luma weights 0.299 R + 0.587 G + 0.114 B where\n"
                "a command takes gray. Exit codes: 0 done, 1 failed (nothing written), 2 bad usage.\n\n");
    std::vector<Command> cs = commands();
    cs.push_back({"demo", "[OUTDIR]", "every family on a built-in scene, pictures in OUTDIR (default demo-out)",
                  nullptr});
    std::sort(cs.begin(), cs.end(), [](const Command& a, const Command& b) { return std::strcmp(a.name, b.name) < 0; });
    for (const Command& c : cs) {
        std::printf("  %-16s", c.name);
        wrapped(c.summary, 18, 18);
    }
}

int commandHelp(const Command& c) {
    std::printf("usage: rvpcv %s %s\n\n", c.name, c.usage);
    wrapped(c.summary, 0, 0);
    if (c.help) {
        // Lines as written (option tables keep their columns); longer ones wrapped.
        std::printf("\n");
        std::string line;
        for (const char* p = c.help;; ++p) {
            if (*p && *p != '\n') {
                line += *p;
                continue;
            }
            if (line.size() <= 99) std::printf("%s\n", line.c_str());
            else wrapped(line, 0, 0);
            line.clear();
            if (!*p || !p[1]) break;
        }
    }
    return 0;
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
    Args args;
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        if (a == "--preview") settings().preview = true;
        else if (a == "--verbose") settings().verbose = true;
        else args.push_back(a);
    }
    if (args.size() >= 2 && args[0] == "--threads") {
        char* end = nullptr;
        const long n = std::strtol(args[1].c_str(), &end, 10);
        if (*end != '\0' || n < 1 || n > 1024 || rvpSetNumThreads(static_cast<int>(n)) != rvpStsNoErr)
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
    const bool help = std::find(args.begin(), args.end(), "--help") != args.end() ||
                      std::find(args.begin(), args.end(), "-h") != args.end();
    const auto t0 = std::chrono::steady_clock::now();
    int rc = -1;
    if (name == "demo") {
        if (help) return commandHelp({"demo", "[OUTDIR]", "runs every family on a built-in 640x480 scene and "
                                      "writes its pictures to OUTDIR (default demo-out), with a timing line per step",
                                      nullptr});
        rc = runDemo(args);
    }
    for (const Command& c : commands())
        if (rc == -1 && name == c.name) rc = help ? commandHelp(c) : c.run(args);
    if (rc == -1) {
        std::fprintf(stderr, "rvpcv: unknown command '%s' (see rvpcv --help)\n", name.c_str());
        return 2;
    }
    if (settings().verbose)
        std::fprintf(stderr, "rvpcv: %s took %.3f ms\n", name.c_str(),
                     std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - t0).count());
    return rc;
}
