// zephrin2d-soak: plays the soak scene headless for many frames at a small
// surface and samples resident memory, draw-list entries and texture-cache
// entries, which must stay flat after the warm-up; GL must never report an
// error.
//
//   zephrin2d-soak [--frames N] [--every N] [--warmup N] [--heap-slack-kib N]
//                  [--resident-slack-kib N]
//                  [--size WxH] [--csv FILE] [--check] [--examples DIR]
//
// --check makes the exit status say whether everything stayed flat.
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
    long frames = 100000;
    long every = 0;   // 0: about 200 samples
    long warmup = -1; // -1: a tenth of the run, at least 1000 frames
    long heapSlackKiB = 1024;
    long residentSlackKiB = 8 * 1024;
    int width = 32;
    int height = 32;
    std::string csv;
    bool check = false;
    std::string examples = Z2D_EXAMPLES_DIR;
};

[[noreturn]] void usage()
{
    fprintf(stderr, "usage: zephrin2d-soak [--frames N] [--every N] [--warmup N] [--heap-slack-kib N]\n"
                    "                      [--resident-slack-kib N] [--size WxH] [--csv FILE] [--check]\n"
                    "                      [--examples DIR]\n");
    exit(2);
}

tOptions parse(int argc, char** argv)
{
    tOptions o;
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        const bool hasValue = i + 1 < argc;
        if (a == "--check")
            o.check = true;
        else if (a == "--frames" && hasValue)
            o.frames = atol(argv[++i]);
        else if (a == "--every" && hasValue)
            o.every = atol(argv[++i]);
        else if (a == "--warmup" && hasValue)
            o.warmup = atol(argv[++i]);
        else if (a == "--heap-slack-kib" && hasValue)
            o.heapSlackKiB = atol(argv[++i]);
        else if (a == "--resident-slack-kib" && hasValue)
            o.residentSlackKiB = atol(argv[++i]);
        else if (a == "--csv" && hasValue)
            o.csv = argv[++i];
        else if (a == "--examples" && hasValue)
            o.examples = argv[++i];
        else if (a == "--size" && hasValue) {
            if (sscanf(argv[++i], "%dx%d", &o.width, &o.height) != 2 || o.width <= 0 || o.height <= 0)
                usage();
        } else
            usage();
    }
    if (o.frames <= 0)
        usage();
    if (o.every <= 0)
        o.every = o.frames / 200 > 0 ? o.frames / 200 : 1;
    if (o.warmup < 0)
        o.warmup = o.frames / 10 > 1000 ? o.frames / 10 : 1000;
    return o;
}

} // namespace

int main(int argc, char** argv)
{
    const tOptions o = parse(argc, argv);
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
               o.frames, s.front().residentKiB, s.back().residentKiB, s.front().heapKiB, s.back().heapKiB, s.back().drawLists, s.back().drawEntries,
               s.back().textureEntries, glErrors);
    const std::vector<std::string> problems = sampler.check(o.heapSlackKiB, o.residentSlackKiB);
    for (const std::string& p : problems)
        fprintf(stderr, "zephrin2d-soak: not flat: %s\n", p.c_str());
    if (problems.empty())
        printf("flat after frame %ld\n", o.warmup);
    return o.check && !problems.empty() ? 1 : 0;
}
