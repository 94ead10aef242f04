// zephrin2d-render: draws a demo headless and writes its frames as PNG.
#include "ContactSheet.h"
#include "Demo.h"
#include "SceneDemo.h"

#include "CommandLine.h"
#include "GLRecorder.h"
#include "ImageIO.h"
#include "OutputSet.h"
#include "Paths.h"
#include "ContentCheck.h"
#include "LoadReport.h"

#include "CDrawManager.h"
#include "CGraphics2D.h"
#include <VellOpenGLConfig.h>

#include <algorithm>
#include <dirent.h>
#include <map>
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
    bool noColors = false;
};

bool usageError(const std::string& message)
{
    std::fprintf(stderr, "%s: %s (see --help)\n", kTool, message.c_str());
    return false;
}

std::string demoList()
{
    std::string text = "Demos:\n";
    for (const std::string& name : DemoRegistry::names()) {
        std::unique_ptr<Demo> demo = DemoRegistry::create(name);
        char line[160];
        std::snprintf(line, sizeof line, "  %-12s %s\n", name.c_str(), demo->summary());
        text += line;
    }
    return text;
}

const char* const kAbout =
    "Draws frames with Zephrin2D on a headless GL surface and writes them as PNG.\n"
    "SCENE.json is a scene file to draw instead of a demo; its actors play.\n"
    "--actor files alone are drawn without a scene file. The content options\n"
    "(--sheet, --costume, --art-path, --default-path, --actor) go with them.\n";

/// --size WxH, each side 1 to limit.
CommandLine::tTake sizeTaker(int& width, int& height, int limit)
{
    return [&width, &height, limit](const std::string& v) {
        int w = 0, h = 0;
        char tail = 0;
        if (std::sscanf(v.c_str(), "%dx%d%c", &w, &h, &tail) != 2 || w < 1 || h < 1 || w > limit || h > limit)
            return "--size needs WxH with each side 1 to " + std::to_string(limit) + ", got '" + v + "'";
        width = w;
        height = h;
        return std::string();
    };
}

bool parseOptions(int argc, char** argv, tOptions& o, int& status)
{
    std::vector<std::string> scenes;
    CommandLine line(kTool, "[SCENE.json]", kAbout);
    line.add({"--size", "", "WxH", "surface size in pixels (default 320x240)", sizeTaker(o.demo.width, o.demo.height, 8192)});
    line.number("--frames", "N", "number of frames to draw (default 1)", 1, 1000000, o.demo.frames);
    line.number("--dt", "MS", "milliseconds between two frames (default 33)", 0, 3600000, o.demo.dtMs);
    line.text("--out", "PATH", "FILE.png: write the last frame to FILE.png\nDIR/: write every frame as "
              "DIR/frame-0000.png, ...\n(a path ending in '/' or an existing directory is a\ndirectory; it is made "
              "when missing). Without --out\nnothing is written. Frames are written opaque.", o.out);
    line.flag("--stats", "print one JSON object per frame on standard output:\n"
              "{\"frame\":i,\"drawCalls\":n,\"uploadBytes\":n,\"cpuMicros\":n}\n"
              "drawCalls and uploadBytes count GL draw calls and bytes\nsent to GL buffers; cpuMicros is the CPU "
              "time of the\nframe before the swap", o.stats);
    line.flag("--no-colors", "ignore element colours in batched drawing: \"Color\"\ntints and fades only immediate draws", o.noColors);
    line.text("--demo", "NAME", "the demo to draw (default shapes)", o.demoName);
    line.number("--count", "N", "a number for the demo, see below (default: the demo's own)", 0, 1000000, o.demo.count);
    line.text("--contact-sheet", "FILE.png", "also tile every Nth frame, numbered, into one picture", o.contactSheet);
    line.number("--every", "N", "the N of --contact-sheet (default: about 12 frames in all)", 1, 1000000, o.every);
    line.content(o.sceneFiles);
    line.operands("scene file", 0, 1, scenes);
    line.epilog(demoList());
    if (!line.parse(argc, argv, status))
        return false;
    o.scene = scenes.empty() ? std::string() : scenes[0];
    return true;
}

bool isDirectory(const std::string& path)
{
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
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

/// The pictures the run writes: one set per folder, put in place when the run has drawn every frame.
class Outputs
{
public:
    /// The content files read: no picture may replace one.
    explicit Outputs(const SceneOptions& inputs) : mInputs(inputs.sheets)
    {
        mInputs.insert(mInputs.end(), inputs.actors.begin(), inputs.actors.end());
        mInputs.push_back(inputs.costume);
        mInputs.push_back(inputs.scene);
    }

    /// The temporary file to write path to; empty (with a message) when it cannot be.
    std::string add(const std::string& path)
    {
        OutputSet* set = folder(directoryOf(path));
        const std::string temp = set ? set->add(path) : std::string();
        if (set && temp.empty())
            std::fprintf(stderr, "%s: %s\n", kTool, set->error().c_str());
        return temp;
    }
    /// Frames of a longer earlier run go once the new ones are in place.
    void retireFrames(const std::string& dir)
    {
        OutputSet* set = folder(dir);
        DIR* d = set ? opendir(set->dir().c_str()) : 0;
        for (struct dirent* e = d ? readdir(d) : 0; e; e = readdir(d)) {
            unsigned index = 0;
            char tail = 0;
            if (std::sscanf(e->d_name, "frame-%4u.pn%c", &index, &tail) == 2 && tail == 'g' &&
                std::strlen(e->d_name) == 14)
                set->retire(e->d_name);
        }
        if (d)
            closedir(d);
    }
    bool commit()
    {
        for (auto& set : mSets)
            if (!set.second->commit()) {
                std::fprintf(stderr, "%s: %s\n", kTool, set.second->error().c_str());
                return false;
            }
        return true;
    }

private:
    OutputSet* folder(const std::string& dir)
    {
        std::unique_ptr<OutputSet>& set = mSets[dir];
        if (!set) {
            set.reset(new OutputSet());
            for (const std::string& input : mInputs)
                set->protect(input);
            if (!set->open(dir)) {
                std::fprintf(stderr, "%s: %s\n", kTool, set->error().c_str());
                return 0;
            }
        }
        return set.get();
    }

    std::vector<std::string> mInputs;
    std::map<std::string, std::unique_ptr<OutputSet> > mSets;
};

/// The frame just drawn, opaque: a saved frame is a picture, not a layer.
bool writeFrame(Outputs& outputs, const std::string& path)
{
    ImageIO::tImage frame;
    const std::string temp = outputs.add(path);
    if (temp.empty())
        return false;
    if (!readFrame(frame) || !ImageIO::writePNG(temp, frame, true)) {
        std::fprintf(stderr, "%s: %s: cannot be written\n", kTool, path.c_str());
        return false;
    }
    return true;
}

/// What draws the frames: a demo, or later a scene file.
std::unique_ptr<Demo> makeSource(const tOptions& options)
{
    if (!options.scene.empty() || !options.sceneFiles.actors.empty()) {
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

void printStats(int frame, long micros)
{
    const GLRecorder::tCounters c = GLRecorder::counters();
    std::printf("{\"frame\":%d,\"drawCalls\":%lu,\"uploadBytes\":%lu,\"cpuMicros\":%ld}\n", frame, c.drawCalls,
                c.uploadBytes, micros);
    std::fflush(stdout);
}

int run(const tOptions& options, Demo& demo)
{
    const bool toDirectory = !options.out.empty() && (options.out.back() == '/' || isDirectory(options.out));
    const std::string frameDir = toDirectory ? options.out + (options.out.back() == '/' ? "" : "/") : std::string();
    SceneOptions inputs = options.sceneFiles;
    inputs.scene = options.scene;
    Outputs outputs(inputs);
    if (toDirectory)
        outputs.retireFrames(frameDir);
    const DemoOptions& o = options.demo;
    Tadwick::Vell::VellOpenGLConfig::SetSurfaceSize(o.width, o.height);
    CGraphics2D* graphics = CGraphics2D::Instance();
    graphics->init(tVect2{tFixed(o.width), tFixed(o.height)}, demo.clearColor(), 0, 0);
    if (!graphics->getConfig() || !graphics->getConfig()->isValid()) {
        std::fprintf(stderr, "%s: no OpenGL ES context\n", kTool);
        return 1;
    }
    CDrawManager::Instance()->setColorsEnabled(!options.noColors);
    // A scene that loads with problems still draws (with its fallbacks) but fails the run.
    // What the loaders let pass (a misspelt optional key) counts as well: the checker finds it first.
    SceneOptions sceneFiles = options.sceneFiles;
    sceneFiles.scene = options.scene;
    std::string firstFound;
    const bool content = !options.scene.empty() || !sceneFiles.actors.empty();
    const int found = content ? ContentCheck::errorsIn(sceneFiles, firstFound) : 0;
    std::unique_ptr<LoadReport> report(content ? new LoadReport() : 0);
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
        if (options.stats)
            printStats(i, micros);
        if (toDirectory && !writeFrame(outputs, framePath(options.out, i)))
            return 1;
        ImageIO::tImage frame;
        if (!options.contactSheet.empty() && i % every == 0 && readFrame(frame))
            sheet.add(i, frame);
    }
    std::string temp;
    if (!options.contactSheet.empty() &&
        ((temp = outputs.add(options.contactSheet)).empty() || !ImageIO::writePNG(temp, sheet.compose(), true))) {
        std::fprintf(stderr, "%s: %s: cannot be written\n", kTool, options.contactSheet.c_str());
        return 1;
    }
    if ((!options.out.empty() && !toDirectory && !writeFrame(outputs, options.out)) || !outputs.commit())
        return 1;
    if (report && report->count() > 0) {
        std::fprintf(stderr, "%s: %s\n", kTool, report->summary(content && options.scene.empty() ? sceneFiles.actors[0] : options.scene, sceneFiles.checkArguments()).c_str());
        return 1;
    }
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    tOptions options;
    int status = 0;
    if (!parseOptions(argc, argv, options, status))
        return status;
    std::unique_ptr<Demo> demo = makeSource(options);
    if (!demo)
        return 2;
    status = run(options, *demo);
    demo.reset();  // its elements go before the context
    CGraphics2D::Instance()->cleanup();
    return status;
}
