// Load times: a JSON scene of 5,000 billboards, and one actor of 500 cels
// from JSON and from its compiled dataset. The 8 textures stay cached (held
// by the benchmark), so the figures are the loaders' own work: reading,
// parsing, building elements and chunks.
#include "CActor2D.h"
#include "CGraphics2D.h"
#include "CSceneLoaderJson.h"
#include "CTextureManager.h"
#include "DsetCompiler.h"
#include "PeerScenes.h"

#include <VellOpenGLConfig.h>
#include <benchmark/benchmark.h>
#include <boost/make_shared.hpp>
#include <fstream>

namespace {

const int SCENE_ELEMENTS = 5000;
const int ACTOR_CELS = 500;

std::string opaqueName(int t) { return "opaque" + std::to_string(t) + ".png"; }

/// The art, the scene file, the actor file and its dataset, written once.
struct tLoadFiles
{
    std::string scene;
    std::string actorJson;
    std::string actorDset;
    std::string error;

    tLoadFiles()
    {
        const std::string dir = PeerScenes::artDirectory();
        PeerScenes::makeScene('a');   // writes the opaque textures
        scene = dir + "/scene5000.json";
        std::ofstream s(scene.c_str());
        s << "[\n";
        for (int i = 0; i < SCENE_ELEMENTS; ++i)
            s << "  {\"ElementType\": 0, \"ID\": " << i << ", \"URL\": \"" << opaqueName(i % 8)
              << "\", \"Position\": [" << (i * 7) % 320 << ".0, " << (i * 13) % 240 << ".0, " << (i % 50) * 0.125
              << "], \"Rotation\": " << (i % 4) * 90 << ".0}" << (i + 1 < SCENE_ELEMENTS ? ",\n" : "\n");
        s << "]\n";
        s.close();
        actorJson = dir + "/actor500.json";
        std::ofstream a(actorJson.c_str());
        a << "{\n  \"Position\": [30.0, 54.0, 1.5],\n  \"Animation\": [\n";
        for (int i = 0; i < ACTOR_CELS; ++i) {
            a << "    {\"ID\": " << i;
            if (i % 50 == 0)
                a << ", \"Label\": \"run" << i / 50 << "\"";
            a << ", \"Duration\": 100, \"Children\": [{\"ElementType\": 0, \"ID\": " << i << ", \"URL\": \""
              << opaqueName(i % 8) << "\", \"Position\": [-4.0, 0.0]}]}" << (i + 1 < ACTOR_CELS ? ",\n" : "\n");
        }
        a << "  ]\n}\n";
        a.close();
        DsetCompiler::tKind kind;
        if (!DsetCompiler::compileFile(actorJson, dir + "/actor500", kind, error))
            return;
        actorDset = dir + "/actor500.dsetBin";
    }
};

const tLoadFiles& files()
{
    static tLoadFiles f;
    return f;
}

/// A context and the cached textures.
class LoadContext
{
public:
    LoadContext()
    {
        Tadwick::Vell::VellOpenGLConfig::SetSurfaceSize(16, 16);
        CGraphics2D::Instance()->init(tVect2{tFixed(16), tFixed(16)}, tColor{0, 0, 0, 255}, 0, 0);
        for (int t = 0; t < 8; ++t)
            mTextures.push_back(CTextureManager::Instance()->load(
                (PeerScenes::artDirectory() + "/" + opaqueName(t)).c_str(), true, false, false));
    }
    ~LoadContext()
    {
        mTextures.clear();
        CGraphics2D::Instance()->cleanup();
    }

private:
    std::vector<boost::shared_ptr<CTexture> > mTextures;
};

void BM_LoadSceneJson5000(benchmark::State& state)
{
    const tLoadFiles& f = files();
    LoadContext context;
    size_t elements = 0;
    for (auto _ : state) {
        CSceneLoaderJson loader;
        loader.setDefaultPath((PeerScenes::artDirectory() + "/").c_str());
        CSceneLoaderJson::tElementList list = loader.parseJsonFile(f.scene.c_str());
        elements = list.size();
    }
    state.counters["elements"] = static_cast<double>(elements);
}

void actorLoad(benchmark::State& state, bool dataset)
{
    const tLoadFiles& f = files();
    if (dataset && f.actorDset.empty()) {
        state.SkipWithError(("dataset not compiled: " + f.error).c_str());
        for (auto _ : state) {
        }
        return;
    }
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
BENCHMARK(BM_LoadActorJson500)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_LoadActorDset500)->Unit(benchmark::kMicrosecond);

} // namespace
