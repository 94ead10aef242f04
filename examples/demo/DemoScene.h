// The demo scene: everything the library can load from files, plus a text
// and a cloud of point sprites that only code can make. Shared by the demo
// program (main.cpp) and the tests, so that both draw the same frames.
#ifndef ZEPHRIN2D_DEMO_DEMOSCENE_H
#define ZEPHRIN2D_DEMO_DEMOSCENE_H

#include "CActor2D.h"
#include "CActorManager.h"
#include "CAvatarCostume.h"
#include "CDrawManager.h"
#include "CGraphicPoints.h"
#include "CSceneLoaderJson.h"
#include "CText.h"
#include "CTextureSheet.h"

#include <boost/shared_ptr.hpp>
#include <string>

enum { DEMO_WIDTH = 320, DEMO_HEIGHT = 240, DEMO_FRAME_MS = 33, DEMO_SPARKLES = 24 };

struct tDemoScene
{
    AvatarCostume costume;
    CTextureSheet sheet;
    CSceneLoaderJson loader;
    CSceneLoaderJson::tElementList elements;  // scene.json, in file order
    boost::shared_ptr<CActor2D> hero;         // hero.json: walks across
    boost::shared_ptr<CActor2D> kid;          // kid.json: an actor of costume pieces
    boost::shared_ptr<CText> title;
    boost::shared_ptr<CGraphicPoints> sparkles;
    CActorManager actors;
    int elapsed = 0;
    int steps = 0;  // trigger 1 in hero.json
    int hops = 0;   // trigger 7 in the scene's critters
};

// Triggers have no user data: they reach the scene through this.
inline tDemoScene* gDemoScene = nullptr;

inline void demoShowCounts(tDemoScene& s)
{
    s.title->setText("Zephrin2D  steps " + std::to_string(s.steps) + "  hops " + std::to_string(s.hops));
}

inline void demoTrigger(CBaseActor*, int value)
{
    if (!gDemoScene)
        return;
    if (value == 1)
        gDemoScene->steps++;
    if (value == 7)
        gDemoScene->hops++;
    demoShowCounts(*gDemoScene);
}

inline void demoAddActor(tDemoScene& s, boost::shared_ptr<CActor2D> actor)
{
    actor->setTriggerFunction(demoTrigger);
    CDrawManager::Instance()->add(actor);
    s.actors.add(actor);
}

/// Advances the scene by ms milliseconds: actors play, the hero walks to
/// the right (wrapping round), the sparkles circle the coins.
inline void stepDemoScene(tDemoScene& s, int ms)
{
    s.elapsed += ms;
    s.actors.update(ms);

    const int x = (s.elapsed * 3 / 50 + 60) % 380 - 30;  // 60 pixels a second
    s.hero->moveTo(tVect3{tFixed(x), s.hero->getY(), s.hero->getZ()});

    for (int i = 0; i < DEMO_SPARKLES; ++i) {
        const int degrees = (i * 360 / DEMO_SPARKLES + s.elapsed / 20) % 360;
        const tFixed radius = tFixed(58) + tFixed(6) * sin(tFixed(degrees * 3 % 360));
        const tFixed x = radius * cos(tFixed(degrees));
        const tFixed y = radius * sin(tFixed(degrees)) * tFixed(2) / tFixed(5);  // a flat ellipse
        s.sparkles->setVertexN(i, tVect3{x, y, ZERO_X});
    }
}

/// dir holds the demo's files and ends with '/' ("examples/demo/"). The
/// graphics context must be up.
inline void buildDemoScene(tDemoScene& s, const std::string& dir)
{
    gDemoScene = &s;
    int lods[] = {32, 64, 128};
    s.costume.addFromJson(dir + "kid-costume.json", lods, 3);
    s.costume.setLOD(128);
    s.sheet.addFromJson(dir + "../art/sheet.json");

    s.loader.setCostume(&s.costume);
    s.loader.setTextureSheet(&s.sheet);
    s.loader.setDefaultPath(dir);
    s.elements = s.loader.parseJsonFile((dir + "scene.json").c_str());
    for (const auto& e : s.elements)
        if (e)
            CDrawManager::Instance()->add(e);
    for (const auto& actor : s.loader.getActors()) {
        actor->setTriggerFunction(demoTrigger);
        s.actors.add(actor);
    }

    s.hero.reset(new CActor2D(dir + "hero.json", &s.costume, 0));
    demoAddActor(s, s.hero);
    s.kid.reset(new CActor2D(dir + "kid.json", &s.costume, 0));
    demoAddActor(s, s.kid);

    Glib::ustring font = "DejaVu Sans";
    s.title.reset(new CText("", font, 14));
    s.title->setColor(tColor{40, 30, 90, 255});
    s.title->moveTo(tVect3{tFixed(8), tFixed(220), tFixed(5)});
    demoShowCounts(s);
    CDrawManager::Instance()->add(s.title);

    s.sparkles.reset(new CGraphicPoints(DEMO_SPARKLES, dir + "sparkle.png"));
    s.sparkles->moveTo(tVect3{tFixed(150), tFixed(184), tFixed(3)});
    CDrawManager::Instance()->add(s.sparkles);
    stepDemoScene(s, 0);
}

#endif
