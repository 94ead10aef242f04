// Imported content: a Tiled map and an Aseprite actor, as zephrin2d-import
// made them, drawn together. The knight walks along the path and idles.
//
//   zephrin2d-import examples/imported/meadow.tmx -o out
//   zephrin2d-import examples/imported/knight.json -o out
//   zephrin2d-imported out/ [FRAMES] [OUT.png]
#include "CActor2D.h"
#include "CActorManager.h"
#include "CDrawManager.h"
#include "CGraphics2D.h"
#include "CSceneLoaderJson.h"
#include "CTextureSheet.h"

#include <VellOpenGLConfig.h>

#include <boost/make_shared.hpp>
#include <cstdio>
#include <cstdlib>
#include <string>

int main(int argc, char** argv)
{
    const std::string dir = argc > 1 ? argv[1] : "./";
    const int frames = argc > 2 ? atoi(argv[2]) : 60;
    const char* out = argc > 3 ? argv[3] : "imported.png";

    Tadwick::Vell::VellOpenGLConfig::SetSurfaceSize(320, 240);
    CGraphics2D::Instance()->init(tVect2{tFixed(320), tFixed(240)}, tColor{0, 0, 0, 255}, 0, 0);
    bool written = false;
    {
        CTextureSheet mapSheet(dir + "meadow-sheet.json");
        CTextureSheet knightSheet(dir + "knight-sheet.json");
        CSceneLoaderJson loader;
        loader.setTextureSheet(&mapSheet);
        std::string scene = dir + "meadow.json";
        CSceneLoaderJson::tElementList map = loader.parseJsonFile(&scene[0]);
        CActorManager actors;
        for (const auto& element : map) {
            CDrawManager::Instance()->add(element);
            if (auto actor = boost::dynamic_pointer_cast<CBaseActor>(element))
                actors.add(actor);
        }
        // Above the map's two layers; the feet (the sheet's pivot) on the path.
        auto knight = boost::make_shared<CActor2D>(dir + "knight.json", nullptr, &knightSheet);
        knight->moveTo(tVect3{tFixed(20), tFixed(114), tFixed(2)});
        knight->gotoAndPlay("walk");
        CDrawManager::Instance()->add(knight);
        actors.add(knight);

        for (int frame = 0; frame <= frames; ++frame) {
            if (frame > 0) {
                actors.update(33);
                knight->moveBy(tVect2{tFixed(2), tFixed(0)});
            }
            if (frame == frames * 3 / 4)
                knight->gotoAndPlay("idle");
            CGraphics2D::Instance()->clearBuffer();
            CDrawManager::Instance()->drawAll();
            CGraphics2D::Instance()->swapBuffer();
        }
        written = Tadwick::Vell::VellOpenGLConfig::SaveFrame(out);
    }
    CGraphics2D::Instance()->cleanup();
    if (!written)
        return 1;
    printf("wrote %s (320x240)\n", out);
    return 0;
}
