// zephrin2d-render: draws a demo headless and writes its frames as PNG.
#include "ContactSheet.h"
#include "Demo.h"
#include "SceneDemo.h"

#include "GLRecorder.h"
#include "ImageIO.h"
#include "ContentCheck.h"
#include "LoadReport.h"

#include "CGraphics2D.h"
#include <VellOpenGLConfig.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/stat.h>

namespace {

const char* const kTool = "zephrin2d-render";

struct tOptions
{
    DemoOptions demo;
    std::string demoName = "shapes";
    std::string out;
    std::string scene;
    SceneOptions sceneFiles;
    std::string contactSheet;
    int every = 0;
    bool stats = false;
    bool help = false;
};

void printHelp()
{
    std::printf(
        "Usage: %s [OPTIONS] [SCENE.json]\n"
        "Draws frames with Zephrin2D on a headless GL surface and writes them as PNG.\n"
        "\n"
        "  --size WxH     surface size in pixels (default 320x240)\n"
        "  --frames N     number of frames to draw (default 1)\n"
        "  --dt MS        milliseconds between two frames (default 33)\n"
        "  --out FILE.png write the last frame to FILE.png\n"
        "  --out DIR/     write every frame as DIR/frame-0000.png, DIR/frame-0001.png, ...\n"
        "                 (a path ending in '/' or an existing directory is a directory;\n"
        "                 it is made when missing). Without --out nothing is written.\n"
        "  --stats        print one JSON object per frame on standard output:\n"
        "                 {\"frame\":i,\"drawCalls\":n,\"uploadBytes\":n,\"cpuMicros\":n}\n"
        "                 drawCalls and uploadBytes count GL draw calls and bytes sent to GL\n"
        "                 buffers; cpuMicros is the CPU time of the frame before the swap\n"
        "  --demo NAME    the demo to draw (default shapes)\n"
        "  --count N      a number for the demo, see below (default: the demo's own)\n"
        "  --contact-sheet FILE.png\n"
        "                 also tile every Nth frame, numbered, into one picture\n"
        "  --every N      the N of --contact-sheet (default: about 12 frames in all)\n"
        "  --help         show this text\n"
        "\n"
        "  SCENE.json     a scene file to draw instead of a demo; its actors play.\n"
        "                 With a scene file:\n"
        "%s"
        "\n"
        "Options also take the form --name=value. Bad options exit with status 2.\n"
        "\n"
        "Demos:\n",
        kTool, SceneOptions::help());
    for (const std::string& name : DemoRegistry::names()) {
        std::unique_ptr<Demo> demo = DemoRegistry::create(name);
        std::printf("  %-12s %s\n", name.c_str(), demo->summary());
    }
}

bool usageError(const std::string& message)
{
    std::fprintf(stderr, "%s: %s\n%s: try --help\n", kTool, message.c_str(), kTool);
    return false;
}

bool parseInt(const std::string& text, int low, int high, int& value)
{
    if (text.empty())
        return false;
    char* end = 0;
    errno = 0;
    const long v = std::strtol(text.c_str(), &end, 10);
    if (errno != 0 || *end != '\0' || v < low || v > high)
        return false;
    value = static_cast<int>(v);
    return true;
}

bool parseSize(const std::string& text, int& width, int& height)
{
    const size_t x = text.find('x');
    return x != std::string::npos && parseInt(text.substr(0, x), 1, 8192, width) &&
           parseInt(text.substr(x + 1), 1, 8192, height);
}

bool parseOptions(int argc, char** argv, tOptions& options)
{
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        if (arg.compare(0, 2, "--") != 0 || arg == "--") {
            if (arg.size() > 1 && arg[0] == '-')
                return usageError("unknown option '" + arg + "'");
            if (!options.scene.empty())
                return usageError("one scene file at most, got '" + options.scene + "' and '" + arg + "'");
            options.scene = arg;
            continue;
        }
        std::string sceneError;
        const int taken = options.sceneFiles.parse(argc, argv, i, sceneError);
        if (taken < 0)
            return usageError(sceneError);
        if (taken > 0)
            continue;
        std::string value;
        const bool hasValue = SceneOptions::splitValue(arg, value);
        if (arg == "--help" || arg == "--stats") {
            if (hasValue)
                return usageError(arg + " takes no value");
            (arg == "--help" ? options.help : options.stats) = true;
            continue;
        }
        if (arg != "--size" && arg != "--frames" && arg != "--dt" && arg != "--out" && arg != "--demo" &&
            arg != "--count" && arg != "--contact-sheet" && arg != "--every")
            return usageError("unknown option '" + arg + "'");
        if (!hasValue) {
            if (i + 1 >= argc)
                return usageError(arg + " needs a value");
            value = argv[++i];
        }
        if (arg == "--size") {
            if (!parseSize(value, options.demo.width, options.demo.height))
                return usageError("--size needs WxH with each side 1 to 8192, got '" + value + "'");
        } else if (arg == "--frames") {
            if (!parseInt(value, 1, 1000000, options.demo.frames))
                return usageError("--frames needs a number from 1 to 1000000, got '" + value + "'");
        } else if (arg == "--dt") {
            if (!parseInt(value, 0, 3600000, options.demo.dtMs))
                return usageError("--dt needs milliseconds from 0 to 3600000, got '" + value + "'");
        } else if (arg == "--count") {
            if (!parseInt(value, 0, 1000000, options.demo.count))
                return usageError("--count needs a number from 0 to 1000000, got '" + value + "'");
        } else if (arg == "--every") {
            if (!parseInt(value, 1, 1000000, options.every))
                return usageError("--every needs a number from 1 to 1000000, got '" + value + "'");
        } else if (arg == "--contact-sheet") {
            if (value.empty())
                return usageError("--contact-sheet needs a file name");
            options.contactSheet = value;
        } else if (arg == "--out") {
            if (value.empty())
                return usageError("--out needs a file or directory name");
            options.out = value;
        } else {
            options.demoName = value;
        }
    }
    return true;
}

bool isDirectory(const std::string& path)
{
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

bool makeDirectories(const std::string& path)
{
    for (size_t slash = path.find('/', 1); ; slash = path.find('/', slash + 1)) {
        const std::string part = path.substr(0, slash);
        if (!part.empty() && !isDirectory(part) && mkdir(part.c_str(), 0755) != 0 && errno != EEXIST)
            return false;
        if (slash == std::string::npos)
            return true;
    }
}

std::string framePath(const std::string& dir, int index)
{
    char name[32];
    std::snprintf(name, sizeof(name), "frame-%04d.png", index);
    return (dir.back() == '/' ? dir : dir + "/") + name;
}

bool readFrame(ImageIO::tImage& image)
{
    Tadwick::Vell::VellOpenGLConfig* config = CGraphics2D::Instance()->getConfig();
    return config && config->readPixels(image.rgba, image.width, image.height);
}

bool writeFrame(const std::string& path)
{
    Tadwick::Vell::VellOpenGLConfig* config = CGraphics2D::Instance()->getConfig();
    if (!config || !config->writePNG(path.c_str())) {
        std::fprintf(stderr, "%s: cannot write %s\n", kTool, path.c_str());
        return false;
    }
    return true;
}

/// What draws the frames: a demo, or later a scene file.
std::unique_ptr<Demo> makeSource(const tOptions& options)
{
    if (!options.scene.empty()) {
        SceneOptions files = options.sceneFiles;
        files.scene = options.scene;
        return std::unique_ptr<Demo>(new SceneDemo(files));
    }
    std::unique_ptr<Demo> demo = DemoRegistry::create(options.demoName);
    if (!demo) {
        std::string known;
        for (const std::string& name : DemoRegistry::names())
            known += " " + name;
        usageError("unknown demo '" + options.demoName + "'; demos:" + known);
    }
    return demo;
}

int run(const tOptions& options, Demo& demo)
{
    const bool toDirectory = !options.out.empty() && (options.out.back() == '/' || isDirectory(options.out));
    if (toDirectory && !makeDirectories(options.out)) {
        std::fprintf(stderr, "%s: cannot make directory %s: %s\n", kTool, options.out.c_str(), std::strerror(errno));
        return 1;
    }
    // The directories of the files to write are made when missing.
    const std::string files[2] = {toDirectory ? std::string() : options.out, options.contactSheet};
    for (const std::string& file : files) {
        const size_t slash = file.rfind('/');
        if (slash != std::string::npos && slash > 0 && !makeDirectories(file.substr(0, slash))) {
            std::fprintf(stderr, "%s: cannot make directory for %s: %s\n", kTool, file.c_str(), std::strerror(errno));
            return 1;
        }
    }
    const DemoOptions& o = options.demo;
    Tadwick::Vell::VellOpenGLConfig::SetSurfaceSize(o.width, o.height);
    CGraphics2D* graphics = CGraphics2D::Instance();
    graphics->init(tVect2{tFixed(o.width), tFixed(o.height)}, demo.clearColor(), 0, 0);
    if (!graphics->getConfig() || !graphics->getConfig()->isValid()) {
        std::fprintf(stderr, "%s: no OpenGL ES context\n", kTool);
        return 1;
    }
    // A scene that loads with problems still draws (with its fallbacks) but fails the run.
    // What the loaders let pass (a misspelt optional key) counts as well: the checker finds it first.
    SceneOptions sceneFiles = options.sceneFiles;
    sceneFiles.scene = options.scene;
    std::string firstFound;
    const int found = options.scene.empty() ? 0 : ContentCheck::errorsIn(sceneFiles, firstFound);
    std::unique_ptr<LoadReport> report(options.scene.empty() ? 0 : new LoadReport());
    if (report)
        report->add(found, firstFound);
    demo.build(o);
    if (demo.failed())
        return 1;
    ContactSheet sheet;
    const int every = options.every > 0 ? options.every : std::max(1, (o.frames + 11) / 12);
    for (int i = 0; i < o.frames; ++i) {
        GLRecorder::resetCounters();
        const std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
        graphics->clearBuffer();
        demo.frame(i, o.dtMs);
        const long micros = static_cast<long>(
            std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start).count());
        graphics->swapBuffer();
        if (options.stats) {
            const GLRecorder::tCounters c = GLRecorder::counters();
            std::printf("{\"frame\":%d,\"drawCalls\":%lu,\"uploadBytes\":%lu,\"cpuMicros\":%ld}\n", i, c.drawCalls,
                        c.uploadBytes, micros);
            std::fflush(stdout);
        }
        if (toDirectory && !writeFrame(framePath(options.out, i)))
            return 1;
        ImageIO::tImage frame;
        if (!options.contactSheet.empty() && i % every == 0 && readFrame(frame))
            sheet.add(i, frame);
    }
    if (!options.contactSheet.empty() && !ImageIO::writePNG(options.contactSheet, sheet.compose())) {
        std::fprintf(stderr, "%s: cannot write %s\n", kTool, options.contactSheet.c_str());
        return 1;
    }
    if (!options.out.empty() && !toDirectory && !writeFrame(options.out))
        return 1;
    if (report && report->count() > 0) {
        std::fprintf(stderr, "%s: %s\n", kTool, report->summary(options.scene, sceneFiles.checkArguments()).c_str());
        return 1;
    }
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    tOptions options;
    if (!parseOptions(argc, argv, options))
        return 2;
    if (options.help) {
        printHelp();
        return 0;
    }
    std::unique_ptr<Demo> demo = makeSource(options);
    if (!demo)
        return 2;
    const int status = run(options, *demo);
    demo.reset();  // its elements go before the context
    CGraphics2D::Instance()->cleanup();
    return status;
}
