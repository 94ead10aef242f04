#include "LoadFiles.h"

#include "CGraphics2D.h"
#include "CDsetReader.h"
#include "CSceneLoaderDset.h"
#include "CBillboard.h"
#include "CTextureManager.h"
#include "DsetCompiler.h"
#include "DsetWriter.h"
#include "PeerScenes.h"
#include "tDsetRecords.h"

#include <VellOpenGLConfig.h>
#include <cstddef>
#include <fstream>

namespace LoadFiles {

namespace {

std::string opaqueName(int t) { return "opaque" + std::to_string(t) + ".png"; }

int32_t raw(int units, int eighths = 0) { return units * 65536 + eighths * 8192; }

void writeScene(tLoadFiles& f, const std::string& dir)
{
    f.scene = dir + "/scene5000.json";
    std::ofstream s(f.scene.c_str());
    s << "[\n";
    for (int i = 0; i < SCENE_ELEMENTS; ++i)
        s << "  {\"ElementType\": 0, \"ID\": " << i << ", \"URL\": \"" << opaqueName(i % 8) << "\", \"Position\": ["
          << (i * 7) % 320 << ".0, " << (i * 13) % 240 << ".0, " << (i % 50) * 0.125
          << "], \"Rotation\": " << (i % 4) * 90 << ".0}" << (i + 1 < SCENE_ELEMENTS ? ",\n" : "\n");
    s << "]\n";
    s.close();

    DsetWriter out;
    const uint32_t cel = out.reserve(sizeof(tDsetSpriteCel));
    const uint32_t records = out.reserve(sizeof(tDsetBillboard) * SCENE_ELEMENTS);
    tDsetSpriteCel c = tDsetSpriteCel();
    c.billboardCount = SCENE_ELEMENTS;
    out.put(cel, c);
    out.setPointer(cel + offsetof(tDsetSpriteCel, billboards), records);
    for (int i = 0; i < SCENE_ELEMENTS; ++i) {
        tDsetBillboard b = tDsetBillboard();
        b.id = static_cast<uint16_t>(i);
        b.element.positionX = raw((i * 7) % 320);
        b.element.positionY = raw((i * 13) % 240);
        b.element.positionZ = raw(0, i % 50);
        b.element.rotation = raw((i % 4) * 90);
        b.element.scaleX = b.element.scaleY = raw(1);
        b.element.color = tDsetColor{255, 255, 255, 255};
        const uint32_t at = records + static_cast<uint32_t>(sizeof(tDsetBillboard)) * i;
        out.put(at, b);
        out.setPointer(at + offsetof(tDsetBillboard, url), out.addString(opaqueName(i % 8)));
    }
    out.setRoot(cel);
    if (out.write(dir + "/scene5000.dsetBin", dir + "/scene5000.relinkBin", f.error))
        f.sceneDset = dir + "/scene5000.dsetBin";
}

void writeActor(tLoadFiles& f, const std::string& dir)
{
    f.actorJson = dir + "/actor500.json";
    std::ofstream a(f.actorJson.c_str());
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
    if (DsetCompiler::compileFile(f.actorJson, dir + "/actor500", kind, f.error))
        f.actorDset = dir + "/actor500.dsetBin";
}

tLoadFiles make()
{
    tLoadFiles f;
    const std::string dir = PeerScenes::artDirectory();
    PeerScenes::makeScene('a');  // writes the opaque textures
    writeScene(f, dir);
    writeActor(f, dir);
    return f;
}

} // namespace

const tLoadFiles& files()
{
    static const tLoadFiles f = make();
    return f;
}

std::string defaultPath() { return PeerScenes::artDirectory() + "/"; }

std::vector<boost::shared_ptr<CGraphicElement> > loadSceneDset(const std::string& path)
{
    std::vector<boost::shared_ptr<CGraphicElement> > elements;
    CSceneLoaderDset loader;
    loader.setDefaultPath(defaultPath());
    void* data = 0;
    const boost::shared_ptr<CDataset> dataset = loader.LoadDset(path, data);
    const CDsetReader* reader = loader.getReader();
    const tDsetSpriteCel* root = data && reader ? reader->record<tDsetSpriteCel>(data) : 0;
    const tDsetBillboard* records = root ? reader->array<tDsetBillboard>(root->billboards, root->billboardCount) : 0;
    if (!records)
        return elements;
    elements.reserve(root->billboardCount);
    for (uint32_t i = 0; i < root->billboardCount; ++i)
        elements.push_back(loader.parseBillboard(&records[i]));
    return elements;
}

LoadContext::LoadContext()
{
    Tadwick::Vell::VellOpenGLConfig::SetSurfaceSize(16, 16);
    CGraphics2D::Instance()->init(tVect2{tFixed(16), tFixed(16)}, tColor{0, 0, 0, 255}, 0, 0);
    for (int t = 0; t < 8; ++t)
        mTextures.push_back(
            CTextureManager::Instance()->load((defaultPath() + opaqueName(t)).c_str(), true, false, false));
}

LoadContext::~LoadContext()
{
    mTextures.clear();
    CGraphics2D::Instance()->cleanup();
}

} // namespace LoadFiles
