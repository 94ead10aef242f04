#include "FuzzSupport.h"

#include "CActor2D.h"
#include "CAvatarCostume.h"
#include "CDrawManager.h"
#include "CGraphics2D.h"
#include "CTextureManager.h"
#include "CTextureSheet.h"

#include <BaseUtils.h>
#include <DebugMPI.h>
#include <VellOpenGLConfig.h>

#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fstream>
#include <unistd.h>
#include <vector>

#ifndef Z2D_EXAMPLES_DIR
#error "Z2D_EXAMPLES_DIR must name the examples directory"
#endif

namespace Fuzz {

namespace {

std::string gDir;

void removeScratch()
{
    if (gDir.empty())
        return;
    if (DIR* d = opendir(gDir.c_str())) {
        while (dirent* e = readdir(d))
            if (e->d_name[0] != '.')
                unlink((gDir + "/" + e->d_name).c_str());
        closedir(d);
    }
    rmdir(gDir.c_str());
}

void copyFile(const std::string& from, const std::string& to)
{
    std::ifstream in(from, std::ios::binary);
    std::ofstream out(to, std::ios::binary);
    out << in.rdbuf();
}

} // namespace

void quiet()
{
    BaseUtils::SetAssertHandler([](const char*, int, const std::string&) {});
    Tadwick::Vell::CDebugMPI::SetHandler([](int, int, const std::string&) {});
}

void initGL()
{
    static bool done = false;
    if (done)
        return;
    done = true;
    Tadwick::Vell::VellOpenGLConfig::SetSurfaceSize(16, 16);
    CGraphics2D::Instance()->init(tVect2{tFixed(16), tFixed(16)}, tColor{0, 0, 0, 255}, 0, 0);
    // Held for the whole run, so that the texture cache answers names of the
    // example art at once instead of decoding and uploading them per input.
    static std::vector<boost::shared_ptr<CTexture> > held;
    const std::string& dir = scratchDir();
    if (DIR* d = opendir(dir.c_str())) {
        while (dirent* e = readdir(d)) {
            std::string name = e->d_name;
            if (name.size() > 4 && name.compare(name.size() - 4, 4, ".png") == 0)
                held.push_back(CTextureManager::Instance()->load(dir + "/" + name, true, false, false));
        }
        closedir(d);
    }
}

const std::string& scratchDir()
{
    if (!gDir.empty())
        return gDir;
    const char* tmp = getenv("TMPDIR");
    std::string pattern = std::string(tmp && *tmp ? tmp : "/tmp") + "/z2d-fuzz-XXXXXX";
    if (!mkdtemp(&pattern[0])) {
        perror("mkdtemp");
        abort();
    }
    gDir = pattern;
    atexit(removeScratch);
    for (const char* sub : {"/art", "/demo"}) {
        const std::string art = std::string(Z2D_EXAMPLES_DIR) + sub;
        if (DIR* d = opendir(art.c_str())) {
            while (dirent* e = readdir(d)) {
                std::string name = e->d_name;
                if (name.size() > 4 && name.compare(name.size() - 4, 4, ".png") == 0)
                    copyFile(art + "/" + name, gDir + "/" + name);
            }
            closedir(d);
        }
    }
    return gDir;
}

std::string writeFile(const std::string& name, const uint8_t* data, size_t size)
{
    const std::string path = scratchDir() + "/" + name;
    FILE* f = fopen(path.c_str(), "wb");
    if (!f) {
        perror(path.c_str());
        abort();
    }
    if (size)
        fwrite(data, 1, size, f);
    fclose(f);
    return path;
}

std::string writeFile(const std::string& name, const std::string& text)
{
    return writeFile(name, reinterpret_cast<const uint8_t*>(text.data()), text.size());
}

std::string writeDataset(const std::string& base, const uint8_t* data, size_t size)
{
    Reader in(data, size);
    size_t relinkBytes = size_t(in.u16()) * 4;
    if (relinkBytes > in.restSize())
        relinkBytes = in.restSize();
    writeFile(base + ".relinkBin", in.rest(), relinkBytes);
    return writeFile(base + ".dsetBin", in.rest() + relinkBytes, in.restSize() - relinkBytes);
}

AvatarCostume* costume()
{
    static AvatarCostume* c = 0;
    if (!c) {
        initGL();
        const std::string path = writeFile("costume.json", R"({
  "AudioList": [{"Name": "giggle", "URI": "giggle.wav"}],
  "LODList": [
    {"Size": 64, "TextureURI": "sheet.png", "ComponentList": [
      {"Name": "head", "Variations": [
        {"Name": "round", "RectLeft": 9, "RectTop": 7, "RectRight": 59, "RectBottom": 56, "RegPointX": 25, "RegPointY": 49},
        {"Name": "heart", "RectLeft": 71, "RectTop": 10, "RectRight": 121, "RectBottom": 55, "RegPointX": 0, "RegPointY": 0}]},
      {"Name": "body", "Variations": [
        {"Name": "coin", "RectLeft": 12, "RectTop": 76, "RectRight": 52, "RectBottom": 116, "RegPointX": 20, "RegPointY": 0}]}]},
    {"Size": 128, "TextureURI": "bricks_rgb.png", "ComponentList": [
      {"Name": "head", "Variations": [
        {"Name": "round", "RectLeft": 0, "RectTop": 0, "RectRight": 64, "RectBottom": 64, "RegPointX": 32, "RegPointY": 60}]}]}]
})");
        c = new AvatarCostume;
        c->addFromJson(path, 0, 0);
    }
    return c;
}

CTextureSheet* sheet()
{
    static CTextureSheet* s = 0;
    if (!s) {
        initGL();
        const std::string path = scratchDir() + "/sheet.json";
        copyFile(std::string(Z2D_EXAMPLES_DIR) + "/art/sheet.json", path);
        s = new CTextureSheet(path);
    }
    return s;
}

void exercise(const boost::shared_ptr<CGraphicElement>& element, int frames)
{
    if (!element)
        return;
    CDrawManager* manager = CDrawManager::Instance();
    manager->add(element);
    CActor2D* actor = dynamic_cast<CActor2D*>(element.get());
    for (int i = 0; i < frames; ++i) {
        if (actor)
            actor->update(40 + 200 * i);
        CGraphics2D::Instance()->clearBuffer();
        manager->drawAll();
    }
    if (actor) {
        for (CActor2D::tAnimationMap::const_iterator it = actor->getAnimationMap().begin();
             it != actor->getAnimationMap().end(); ++it) {
            actor->gotoAndPlay(it->second.label);
            actor->update(1000);
        }
        actor->gotoAndStop(int(actor->getCelCount()) - 1);
        manager->drawAll();
    }
    manager->remove(element);
}

} // namespace Fuzz
