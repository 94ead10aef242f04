// Frames of the batched draw path against the same scene drawn element by
// element, on a small surface so that rasterisation stays cheap and the CPU
// side of the frame dominates. Times are the CPU time of the drawing thread.
#include "CBillboard.h"
#include "CDrawManager.h"
#include "CGraphicPoints.h"
#include "CGraphics2D.h"
#include "CPointSpriteChunk.h"
#include "CTexture.h"
#include "GLRecorder.h"

#include <GLES/gl.h>
#include <VellOpenGLConfig.h>
#include <benchmark/benchmark.h>
#include <boost/make_shared.hpp>
#include <vector>

namespace {

const int BILLBOARDS = 10000;
const int TEXTURES = 8;
const int MOVING = 1000;
const int POINTS = 8192;

boost::shared_ptr<CTexture> makeTexture(int seed)
{
    boost::shared_ptr<CTexture> texture = boost::make_shared<CTexture>();
    tImageInfo info;
    info.palType = PAL_NONE;
    info.pixelFormat = kPixelFormatRGB888;
    info.width = 8;
    info.height = 8;
    texture->InitRAMTexture(info, true);
    for (int i = 0; i < 64 * 3; ++i)
        texture->pixels[i] = static_cast<unsigned char>(seed * 31 + i);
    texture->InitGLTexture();
    return texture;
}

/// A fresh 64 x 64 context with 10,000 billboards over 8 textures, at
/// scattered positions and depths.
class Scene
{
public:
    explicit Scene(bool managed)
    {
        Tadwick::Vell::VellOpenGLConfig::SetSurfaceSize(64, 64);
        CGraphics2D::Instance()->init(tVect2{tFixed(64), tFixed(64)}, tColor{0, 0, 0, 255}, 0, 0);
        for (int t = 0; t < TEXTURES; ++t)
            mTextures.push_back(makeTexture(t));
        unsigned seed = 12345;
        for (int i = 0; i < BILLBOARDS; ++i) {
            seed = seed * 1103515245u + 12345u;
            boost::shared_ptr<CBillboard> b = boost::make_shared<CBillboard>();
            b->setTexture(mTextures[i % TEXTURES]);
            b->moveTo(tVect3{tFixed(static_cast<int>((seed >> 8) % 60)), tFixed(static_cast<int>((seed >> 16) % 60)),
                             tFixed(static_cast<int>((seed >> 4) % 8))});
            if (managed)
                CDrawManager::Instance()->add(b);
            mBillboards.push_back(b);
        }
    }
    ~Scene()
    {
        mBillboards.clear();
        mTextures.clear();
        CGraphics2D::Instance()->cleanup();
    }

    /// Every tenth billboard steps back and forth by one pixel.
    void move(int frame)
    {
        const tFixed step = (frame & 1) ? ONE_X : MINUS_ONE_X;
        for (int i = 0; i < MOVING; ++i)
            mBillboards[i * (BILLBOARDS / MOVING)]->moveBy(tVect2{step, ZERO_X});
    }

    void drawImmediate()
    {
        glDisable(GL_BLEND);
        for (size_t i = 0; i < mBillboards.size(); ++i) {
            mBillboards[i]->pushTransform();
            mBillboards[i]->draw(0);
            mBillboards[i]->popTransform();
        }
        glEnable(GL_BLEND);
    }

private:
    std::vector<boost::shared_ptr<CTexture> > mTextures;
    std::vector<boost::shared_ptr<CBillboard> > mBillboards;
};

void frame(benchmark::State& state, Scene& scene, bool managed, bool moving)
{
    int n = 0;
    GLRecorder::resetCounters();
    for (auto _ : state) {
        if (moving)
            scene.move(n++);
        CGraphics2D::Instance()->clearBuffer();
        if (managed)
            CDrawManager::Instance()->drawAll();
        else
            scene.drawImmediate();
        glFinish();
    }
    const GLRecorder::tCounters c = GLRecorder::counters();
    state.counters["draws/frame"] = benchmark::Counter(static_cast<double>(c.drawCalls) / state.iterations());
    state.counters["uploadKB/frame"] =
        benchmark::Counter(static_cast<double>(c.uploadBytes) / 1024.0 / state.iterations());
}

void BM_DrawAllStatic(benchmark::State& state)
{
    Scene scene(true);
    frame(state, scene, true, false);
}

void BM_DrawAllMoving1000(benchmark::State& state)
{
    Scene scene(true);
    frame(state, scene, true, true);
}

void BM_ImmediateStatic(benchmark::State& state)
{
    Scene scene(false);
    frame(state, scene, false, false);
}

void BM_ImmediateMoving1000(benchmark::State& state)
{
    Scene scene(false);
    frame(state, scene, false, true);
}

/// A cloud of 8192 points: still, or every point written in place each frame.
void pointFrames(benchmark::State& state, bool moving)
{
    Tadwick::Vell::VellOpenGLConfig::SetSurfaceSize(64, 64);
    CGraphics2D::Instance()->init(tVect2{tFixed(64), tFixed(64)}, tColor{0, 0, 0, 255}, 0, 0);
    {
        boost::shared_ptr<CGraphicPoints> cloud = boost::make_shared<CGraphicPoints>();
        cloud->setNumberVertices(POINTS);
        boost::dynamic_pointer_cast<CPointSpriteChunk>(cloud->getChunks()[0])->setTexture(makeTexture(1));
        cloud->setPointSize(tFixed(2));
        for (int i = 0; i < POINTS; ++i)
            cloud->setVertexN(static_cast<unsigned short>(i), tVect3{tFixed(i % 64), tFixed(i / 128), ZERO_X});
        CDrawManager::Instance()->add(cloud);
        int n = 0;
        GLRecorder::resetCounters();
        for (auto _ : state) {
            if (moving) {
                const tVect3 d = {(n++ & 1) ? ONE_X : MINUS_ONE_X, ZERO_X, ZERO_X};
                for (int i = 0; i < POINTS; ++i)
                    cloud->moveVertexNBy(static_cast<unsigned>(i), d);
            }
            CGraphics2D::Instance()->clearBuffer();
            CDrawManager::Instance()->drawAll();
            glFinish();
        }
        const GLRecorder::tCounters c = GLRecorder::counters();
        state.counters["uploadKB/frame"] =
            benchmark::Counter(static_cast<double>(c.uploadBytes) / 1024.0 / state.iterations());
    }
    CGraphics2D::Instance()->cleanup();
}

void BM_PointsStill8192(benchmark::State& state) { pointFrames(state, false); }
void BM_PointsAllMoving8192(benchmark::State& state) { pointFrames(state, true); }

BENCHMARK(BM_DrawAllStatic)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_DrawAllMoving1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ImmediateStatic)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ImmediateMoving1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_PointsStill8192)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_PointsAllMoving8192)->Unit(benchmark::kMicrosecond);

} // namespace
