// Heap bytes per static billboard, per actor cel and per point of a cloud:
// mallinfo2 around creating the elements and registering them with the
// draw manager (textures are loaded before, they are shared). One
// iteration each; the figures are counters, not times.
#include "CActor2D.h"
#include "CBillboard.h"
#include "CDrawManager.h"
#include "CGraphicPoints.h"
#include "CGraphics2D.h"
#include "CPointSpriteChunk.h"
#include "CTextureManager.h"
#include "CTexturedDrawList.h"
#include "PeerScenes.h"

#include <VellOpenGLConfig.h>
#include <benchmark/benchmark.h>
#include <boost/make_shared.hpp>
#include <malloc.h>
#include <vector>

namespace {

using namespace PeerScenes;

const int BILLBOARDS = 10000;

double heapInUse()
{
    const struct mallinfo2 m = mallinfo2();
    return static_cast<double>(m.uordblks + m.hblkhd);
}

/// Scene (a)'s textures in a fresh context, loaded before anything is measured.
tScene openScene(char id)
{
    const tScene scene = makeScene(id);
    Tadwick::Vell::VellOpenGLConfig::SetSurfaceSize(scene.width, scene.height);
    CGraphics2D::Instance()->init(tVect2{tFixed(scene.width), tFixed(scene.height)}, tColor{0, 0, 0, 255}, 0, 0);
    for (size_t t = 0; t < scene.textures.size(); ++t)
        CTextureManager::Instance()->load(scene.textures[t].path, true, false, false);
    return scene;
}

void BM_MemoryBillboard(benchmark::State& state)
{
    for (auto _ : state) {
        const tScene scene = openScene('a');
        std::vector<boost::shared_ptr<CBillboard> > billboards;
        billboards.reserve(BILLBOARDS);
        const double start = heapInUse();
        for (int i = 0; i < BILLBOARDS; ++i) {
            const tSpriteDef& d = scene.sprites[i];
            boost::shared_ptr<CBillboard> b = boost::make_shared<CBillboard>(scene.textures[d.texture].path, true);
            b->moveRegTo(tVect2{tFixed(4), tFixed(4)});
            b->rotateTo(tFixed(d.angle));
            b->moveTo(tVect3{tFixed(d.x), tFixed(d.y), tFixed::fromRaw(d.z)});
            billboards.push_back(b);
        }
        const double created = heapInUse();
        for (int i = 0; i < BILLBOARDS; ++i)
            CDrawManager::Instance()->add(billboards[i]);
        const double registered = heapInUse();
        state.counters["B_per_billboard"] = (registered - start) / BILLBOARDS;
        state.counters["B_element_chunk"] = (created - start) / BILLBOARDS;
        state.counters["B_draw_lists"] = (registered - created) / BILLBOARDS;
        state.counters["sizeof_billboard"] = sizeof(CBillboard);
        state.counters["sizeof_chunk"] = sizeof(CTexturedChunk);
        state.counters["sizeof_entry"] = sizeof(tElementTexturedChunkPairEntryStruct);
        billboards.clear();
        CGraphics2D::Instance()->cleanup();
    }
}

/// Scene (e)'s 500 actors of 4 cels, each cel a billboard's quad (the billboards are let go).
void BM_MemoryActorCel(benchmark::State& state)
{
    for (auto _ : state) {
        const tScene scene = openScene('e');
        std::vector<boost::shared_ptr<CActor2D> > actors;
        actors.reserve(scene.sprites.size());
        const double start = heapInUse();
        for (size_t i = 0; i < scene.sprites.size(); ++i) {
            boost::shared_ptr<CActor2D> actor = boost::make_shared<CActor2D>();
            for (int c = 0; c < scene.cels; ++c) {
                const int t = (scene.sprites[i].texture + c) % static_cast<int>(scene.textures.size());
                tActor2DFrameStruct frame;
                frame.duration = 1;
                frame.chunks = boost::make_shared<CBillboard>(scene.textures[t].path, true)->getChunks();
                actor->appendFrame(frame);
            }
            actor->pushBackOperation(static_cast<unsigned short>(scene.cels - 1), 1, 0);
            actor->gotoAndPlay(0);
            CDrawManager::Instance()->add(actor);
            actors.push_back(actor);
        }
        const double cels = static_cast<double>(scene.sprites.size()) * scene.cels;
        state.counters["B_per_cel"] = (heapInUse() - start) / cels;
        actors.clear();
        CGraphics2D::Instance()->cleanup();
    }
}

void BM_MemoryCloudPoint(benchmark::State& state)
{
    const int points = 8192;
    for (auto _ : state) {
        const tScene scene = openScene('a');
        const boost::shared_ptr<CTexture> texture =
            CTextureManager::Instance()->load(scene.textures[0].path, true, false, false);
        const double start = heapInUse();
        {
            boost::shared_ptr<CGraphicPoints> cloud = boost::make_shared<CGraphicPoints>();
            cloud->setNumberVertices(points);
            boost::dynamic_pointer_cast<CPointSpriteChunk>(cloud->getChunks()[0])->setTexture(texture);
            CDrawManager::Instance()->add(cloud);
            state.counters["B_per_point"] = (heapInUse() - start) / points;
        }
        CGraphics2D::Instance()->cleanup();
    }
}

BENCHMARK(BM_MemoryBillboard)->Iterations(1);
BENCHMARK(BM_MemoryActorCel)->Iterations(1);
BENCHMARK(BM_MemoryCloudPoint)->Iterations(1);

} // namespace
