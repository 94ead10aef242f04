// Load times: a scene of 5,000 billboards and an actor of 500 cels, each from
// JSON and from its dataset (bench/LoadFiles.h). The 8 textures stay cached
// (held by the benchmark), so the figures are the loaders' own work: reading,
// parsing, building elements and chunks.
#include "CActor2D.h"
#include "CSceneLoaderJson.h"
#include "LoadFiles.h"

#include <benchmark/benchmark.h>
#include <boost/make_shared.hpp>

namespace {

using namespace LoadFiles;

bool skipWithoutDataset(benchmark::State& state, const std::string& path)
{
    if (!path.empty())
        return false;
    state.SkipWithError(("dataset not written: " + files().error).c_str());
    for (auto _ : state) {
    }
    return true;
}

void BM_LoadSceneJson5000(benchmark::State& state)
{
    const tLoadFiles& f = files();
    LoadContext context;
    size_t elements = 0;
    for (auto _ : state) {
        CSceneLoaderJson loader;
        loader.setDefaultPath(defaultPath());
        CSceneLoaderJson::tElementList list = loader.parseJsonFile(f.scene.c_str());
        elements = list.size();
    }
    state.counters["elements"] = static_cast<double>(elements);
}

void BM_LoadSceneDset5000(benchmark::State& state)
{
    const tLoadFiles& f = files();
    if (skipWithoutDataset(state, f.sceneDset))
        return;
    LoadContext context;
    size_t elements = 0;
    for (auto _ : state) {
        elements = loadSceneDset(f.sceneDset).size();
    }
    state.counters["elements"] = static_cast<double>(elements);
}

void actorLoad(benchmark::State& state, bool dataset)
{
    const tLoadFiles& f = files();
    if (dataset && skipWithoutDataset(state, f.actorDset))
        return;
    LoadContext context;
    unsigned cels = 0;
    for (auto _ : state) {
        boost::shared_ptr<CActor2D> actor = boost::make_shared<CActor2D>();
        if (dataset)
            actor->loadDset(f.actorDset.c_str(), 0, 0);
        else
            actor->loadJson(f.actorJson.c_str(), 0, 0);
        cels = actor->getCelCount();
    }
    state.counters["cels"] = cels;
}

void BM_LoadActorJson500(benchmark::State& state) { actorLoad(state, false); }
void BM_LoadActorDset500(benchmark::State& state) { actorLoad(state, true); }

BENCHMARK(BM_LoadSceneJson5000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadSceneDset5000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadActorJson500)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_LoadActorDset500)->Unit(benchmark::kMicrosecond);

} // namespace
