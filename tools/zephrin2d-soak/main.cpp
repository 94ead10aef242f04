// zephrin2d-soak: plays the soak scene headless for many frames at a small
// surface and samples resident memory, draw-list entries and texture-cache
// entries, which must stay flat after the warm-up; GL must never report an
// error.
//
// zephrin2d-soak --help lists the options.
#include "CommandLine.h"
#include "SoakSampler.h"
#include "SoakScene.h"

#include "CGraphics2D.h"

#include <VellOpenGLConfig.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

struct tOptions
{
    int frames = 100000;
    int every = 0;   // 0: about 200 samples
    int warmup = -1; // -1: a tenth of the run, at least 1000 frames
    int heapSlackKiB = 1024;
    int residentSlackKiB = 8 * 1024;
    int width = 32;
    int height = 32;
    std::string csv;
    bool check = false;
    std::string examples = Z2D_EXAMPLES_DIR;
};

const char* const kAbout =
    "Plays the soak scene headless for many frames at a small surface and samples\n"
    "resident memory, draw-list entries and texture-cache entries, which must stay\n"
    "flat after the warm-up; GL must never report an error.\n";

bool parse(int argc, char** argv, tOptions& o, int& status)
{
    CommandLine line("zephrin2d-soak", "", kAbout);
    line.number("--frames", "N", "frames to play (default 100000)", 1, 1 << 30, o.frames);
    line.number("--every", "N", "frames between samples (default: about 200 samples)", 1, 1 << 30, o.every);
    line.number("--warmup", "N", "frames before memory must stay flat (default: a tenth,\nat least 1000)", 0,
                1 << 30, o.warmup);
    line.number("--heap-slack-kib", "N", "heap growth allowed after the warm-up (1024)", 0, 1 << 30, o.heapSlackKiB);
    line.number("--resident-slack-kib", "N", "resident growth allowed after the warm-up (8192)", 0, 1 << 30,
                o.residentSlackKiB);
    line.add({"--size", "", "WxH", "surface size (default 32x32)", [&o](const std::string& v) {
                  char tail = 0;
                  return std::sscanf(v.c_str(), "%dx%d%c", &o.width, &o.height, &tail) == 2 && o.width > 0 &&
                                 o.height > 0 && o.width <= 4096 && o.height <= 4096
                             ? std::string()
                             : "--size needs WxH, each side 1 to 4096, got '" + v + "'";
              }});
    line.text("--csv", "FILE", "write the samples to FILE", o.csv);
    line.flag("--check", "the exit status says whether everything stayed flat", o.check);
    line.text("--examples", "DIR", "the example content (default: the source tree's)", o.examples);
    if (!line.parse(argc, argv, status))
        return false;
    if (o.every <= 0)
        o.every = o.frames / 200 > 0 ? o.frames / 200 : 1;
    if (o.warmup < 0)
        o.warmup = o.frames / 10 > 1000 ? o.frames / 10 : 1000;
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    tOptions o;
    int status = 0;
    if (!parse(argc, argv, o, status))
        return status;
    // Mesa's multi-threaded rasterizer keeps a pool of frames in flight whose
    // size follows the machine's load, which moves the driver's memory in
    // steps of tens of MiB; drawing on this thread makes it repeatable, so
    // that what is left to see is the library's.
    setenv("LP_NUM_THREADS", "0", 0);
    Tadwick::Vell::VellOpenGLConfig::SetSurfaceSize(o.width, o.height);
    CGraphics2D::Instance()->init(tVect2{tFixed(o.width), tFixed(o.height)}, tColor{0, 0, 0, 255}, 0, 0);

    SoakSampler sampler(o.warmup);
    long glErrors = 0;
    {
        SoakScene scene(o.examples);
        for (long frame = 0; frame < o.frames; ++frame) {
            scene.step(frame, DEMO_FRAME_MS);
            CGraphics2D::Instance()->clearBuffer();
            CDrawManager::Instance()->drawAll();
            CGraphics2D::Instance()->swapBuffer();
            if (gl_checkError())
                ++glErrors;
            sampler.observe(frame);
            if ((frame + 1) % o.every == 0)
                sampler.sample(frame + 1, glErrors);
        }
    }
    CGraphics2D::Instance()->cleanup();

    if (!o.csv.empty() && !sampler.writeCsv(o.csv)) {
        fprintf(stderr, "zephrin2d-soak: cannot write %s\n", o.csv.c_str());
        return 1;
    }
    const auto& s = sampler.samples();
    if (!s.empty())
        printf("%ld frames: resident %ld -> %ld KiB, heap %ld -> %ld KiB, %ld lists, %ld draw entries, %ld textures, %ld GL errors\n",
               static_cast<long>(o.frames), s.front().residentKiB, s.back().residentKiB, s.front().heapKiB, s.back().heapKiB, s.back().drawLists, s.back().drawEntries,
               s.back().textureEntries, glErrors);
    const std::vector<std::string> problems = sampler.check(o.heapSlackKiB, o.residentSlackKiB);
    for (const std::string& p : problems)
        fprintf(stderr, "zephrin2d-soak: not flat: %s\n", p.c_str());
    if (problems.empty())
        printf("flat after frame %d\n", o.warmup);
    return o.check && !problems.empty() ? 1 : 0;
}
