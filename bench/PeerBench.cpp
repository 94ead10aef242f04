// Scenes (a) ... (g) drawn four ways in one run: the draw manager's
// drawAll ("Zephrin2D"), each element's immediate draw ("Immediate"), the
// driver's floor ("Floor": a minimal GL program drawing the same geometry)
// and SDL2's batched GLES2 renderer ("SDL2"); (a) ... (f) also with element
// colours on ("Colors"), which must cost nothing where no element is
// tinted. The timed region of a frame is the thread's CPU time from the
// scene update to the last GL call before the swap (for SDL2:
// SDL_RenderFlush); glFinish and the swap follow outside it. Counters:
// frame_us (median of the frames), draws and upload_B per frame.
#include "GLRecorder.h"
#include "PeerFloor.h"
#include "PeerGLCount.h"
#include "PeerSdl.h"
#include "PeerZephrin.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <time.h>

namespace {

using namespace PeerScenes;

double threadSeconds()
{
    timespec t;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return t.tv_sec + t.tv_nsec * 1e-9;
}

template <class S> void frames(benchmark::State& state, S& scene, bool peer)
{
    int frame = 0;
    // The first frames create and fill the buffers.
    for (int i = 0; i < 2; ++i) {
        scene.update(frame++);
        scene.draw();
        scene.finish();
    }
    GLRecorder::resetCounters();
    PeerGLCount::resetCounters();
    std::vector<double> times;
    times.reserve(1024);
    for (auto _ : state) {
        const double start = threadSeconds();
        scene.update(frame++);
        scene.draw();
        const double t = threadSeconds() - start;
        scene.finish();
        state.SetIterationTime(t);
        times.push_back(t);
    }
    std::sort(times.begin(), times.end());
    const double n = static_cast<double>(state.iterations());
    state.counters["frame_us"] = times.empty() ? 0.0 : times[times.size() / 2] * 1e6;
    if (peer) {
        const PeerGLCount::tCounters c = PeerGLCount::counters();
        state.counters["draws"] = c.wrappedLookups ? c.drawCalls / n : -1.0;
        state.counters["upload_B"] = c.wrappedLookups ? c.uploadBytes / n : -1.0;
    } else {
        const GLRecorder::tCounters c = GLRecorder::counters();
        state.counters["draws"] = c.drawCalls / n;
        state.counters["upload_B"] = c.uploadBytes / n;
    }
}

void zephrin(benchmark::State& state, char id, bool managed, bool colors)
{
    ZephrinScene scene(makeScene(id), managed, colors);
    frames(state, scene, false);
}

void floor(benchmark::State& state, char id)
{
    FloorScene scene(makeScene(id));
    frames(state, scene, false);
}

void sdl(benchmark::State& state, char id)
{
    SdlScene scene(makeScene(id));
    if (!scene.error().empty()) {
        state.SkipWithError(scene.error().c_str());
        for (auto _ : state) {
        }
        return;
    }
    frames(state, scene, true);
}

int registerAll()
{
    const char* ids = "abcdefg";
    for (const char* p = ids; *p; ++p) {
        const char id = *p;
        const std::string base = std::string("BM_Scene/") + id + "/";
        benchmark::RegisterBenchmark((base + "Zephrin2D").c_str(), zephrin, id, true, false)
            ->UseManualTime()->Unit(benchmark::kMicrosecond)->MinTime(0.5);
        if (id != 'g')
            benchmark::RegisterBenchmark((base + "Colors").c_str(), zephrin, id, true, true)
                ->UseManualTime()->Unit(benchmark::kMicrosecond)->MinTime(0.5);
        benchmark::RegisterBenchmark((base + "Immediate").c_str(), zephrin, id, false, false)
            ->UseManualTime()->Unit(benchmark::kMicrosecond)->MinTime(0.5);
        benchmark::RegisterBenchmark((base + "Floor").c_str(), floor, id)
            ->UseManualTime()->Unit(benchmark::kMicrosecond)->MinTime(0.5);
        benchmark::RegisterBenchmark((base + "SDL2").c_str(), sdl, id)
            ->UseManualTime()->Unit(benchmark::kMicrosecond)->MinTime(0.5);
    }
    return 0;
}

const int gRegistered = registerAll();

} // namespace
