// Runs frames of one scene one way, for callgrind: after the warm-up frames
// only the frame region (the scene update up to the last GL call before the
// swap) is collected; glFinish and the swap are not. Run it as
//   valgrind --tool=callgrind --instr-atstart=no --collect-atstart=no
//            Zephrin2DFrameCount SCENE WAY [FRAMES]
// bench/count_instructions.py does, and splits the counts by object file.
#include "PeerFloor.h"
#include "PeerScenes.h"
#include "PeerSdl.h"
#include "PeerZephrin.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <valgrind/callgrind.h>

namespace {

using namespace PeerScenes;

// Two cycles of scene (e)'s four cels: every cel has left its list and come
// back at least once, so the counted frames are the steady state of a game
// that runs the animation for long, not its first showing.
const int WARM_UP = 8;

template <class S> int run(S& scene, int frames)
{
    int frame = 0;
    for (int i = 0; i < WARM_UP; ++i) {
        scene.update(frame++);
        scene.draw();
        scene.finish();
    }
    CALLGRIND_START_INSTRUMENTATION;
    for (int i = 0; i < frames; ++i) {
        CALLGRIND_TOGGLE_COLLECT;
        scene.update(frame++);
        scene.draw();
        CALLGRIND_TOGGLE_COLLECT;
        scene.finish();
    }
    CALLGRIND_STOP_INSTRUMENTATION;
    return 0;
}

int usage(FILE* out, int status)
{
    fprintf(out, "usage: Zephrin2DFrameCount SCENE WAY [FRAMES]\n"
                 "  SCENE   a, b, c, d, e, f or g\n"
                 "  WAY     zephrin2d, colors (zephrin2d with element colours on), immediate, sdl2 or floor\n"
                 "  FRAMES  frames counted after %d warm-up frames (default 4)\n",
            WARM_UP);
    return status;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc > 1 && strcmp(argv[1], "--help") == 0)
        return usage(stdout, 0);
    if (argc < 3 || argc > 4 || strlen(argv[1]) != 1 || !strchr("abcdefg", argv[1][0]))
        return usage(stderr, 2);
    const int frames = argc == 4 ? atoi(argv[3]) : 4;
    if (frames <= 0)
        return usage(stderr, 2);
    const tScene scene = makeScene(argv[1][0]);
    const char* way = argv[2];
    if (strcmp(way, "zephrin2d") == 0 || strcmp(way, "colors") == 0 || strcmp(way, "immediate") == 0) {
        ZephrinScene z(scene, strcmp(way, "immediate") != 0, strcmp(way, "colors") == 0);
        return run(z, frames);
    }
    if (strcmp(way, "floor") == 0) {
        FloorScene f(scene);
        return run(f, frames);
    }
    if (strcmp(way, "sdl2") == 0) {
        SdlScene s(scene);
        if (!s.error().empty()) {
            fprintf(stderr, "Zephrin2DFrameCount: %s\n", s.error().c_str());
            return 1;
        }
        return run(s, frames);
    }
    return usage(stderr, 2);
}
