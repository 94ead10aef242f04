#include "Demo.h"

#include "CActor2D.h"
#include "CAvatarCostume.h"
#include "CActorManager.h"
#include "CBillboard.h"
#include "CDrawManager.h"
#include "CSpriteCel.h"
#include "CTexture.h"

#include <boost/make_shared.hpp>
#include <SystemData.h>

#include <map>

/// Cel-animated actors built from code.
///
/// Three walkers loop "walk" through an exit jump; a trigger on each
/// foot-down cel moves the walker forward by the step in its argument, and
/// after eight steps the trigger callback switches to "look", which loops
/// through its own exit jump until the animation done callback sends the
/// walker back to "walk". A ball loops "bounce" from its animation done
/// callback, stops on its landing cel after every third bounce and is
/// started again by its update function after a pause.
///
/// The pictures are painted into one texture per colour; each cel is a
/// sprite cel of several billboards cut from it, merged into one chunk.
///
/// Bottom right, the example kid is dressed twice from its costume, at LOD
/// 32 and at LOD 128: the same size on screen, with four times the detail.
class DemoActors : public Demo
{
public:
    const char* summary() const override
    {
        return "walkers looping through exit jumps and moved by triggers, a ball stopped and restarted by its "
               "callbacks (--count: walkers, 3 by default)";
    }
    tColor clearColor() const override { return tColor{150, 200, 235, 255}; }

    void build(const DemoOptions& options) override
    {
        sDemo = this;
        mWidth = options.width;
        const int walkers = options.count > 0 ? options.count : 3;
        const tColor colours[] = {{220, 70, 60, 255}, {70, 170, 80, 255}, {80, 110, 220, 255}, {230, 150, 40, 255}};
        for (int i = 0; i < walkers; ++i) {
            boost::shared_ptr<CActor2D> walker = makeWalker(paint(colours[i % 4]));
            const int lane = 12 + (options.height - 100) * i / walkers;
            walker->moveTo(tVect3{tFixed(options.width * i / walkers), tFixed(lane), tFixed(i + 1)});
            add(walker);
            walker->update(70 * i); // out of step with each other
        }
        boost::shared_ptr<CActor2D> ball = makeBall(paint(tColor{250, 220, 60, 255}));
        ball->moveTo(tVect3{tFixed(options.width - 56), tFixed(options.height - 72), tFixed(walkers + 1)});
        add(ball);
        dressKids(options);
    }

    void frame(int, int dtMs) override
    {
        mActors.update(dtMs);
        CDrawManager::Instance()->drawAll();
    }

private:
    enum { ATLAS = 64, STEP = 6, STEPS_PER_WALK = 8, LOOKS = 2, BOUNCES = 3, PAUSE_MS = 900 };

    struct tState
    {
        int steps;
        int looks;
        int bounces;
        int stoppedMs;
    };

    // Callbacks are plain function pointers: they reach the demo through this.
    static DemoActors* sDemo;

    void add(const boost::shared_ptr<CActor2D>& actor)
    {
        mState[actor.get()] = tState{0, 0, 0, 0};
        CDrawManager::Instance()->add(actor);
        mActors.add(actor);
    }

    // -----------------------------------------------------------------------
    // Behaviour

    static void onStep(CBaseActor* actor, int step)
    {
        CActor2D* walker = static_cast<CActor2D*>(actor);
        walker->moveBy(tVect2{tFixed(step), ZERO_X});
        if (walker->getX() > tFixed(sDemo->mWidth))
            walker->moveTo(tVect2{tFixed(-32), walker->getY()});
        tState& s = sDemo->mState[actor];
        if (++s.steps % STEPS_PER_WALK == 0)
            walker->gotoAndPlay("look");
    }

    // The label argument is a collation key; the actor knows the label itself.
    static void onWalkerDone(CBaseActor* actor, Glib::ustring const&)
    {
        if (static_cast<CActor2D*>(actor)->getCurrentAnimationLabel() != "look")
            return;
        tState& s = sDemo->mState[actor];
        if (++s.looks % LOOKS == 0)
            static_cast<CActor2D*>(actor)->gotoAndPlay("walk");
    }

    static void onBallDone(CBaseActor* actor, Glib::ustring const&)
    {
        tState& s = sDemo->mState[actor];
        CActor2D* ball = static_cast<CActor2D*>(actor);
        if (++s.bounces % BOUNCES == 0)
            ball->stop();
        else
            ball->gotoAndPlay("bounce");
    }

    static void onBallUpdate(CBaseActor* actor, int elapsed)
    {
        CActor2D* ball = static_cast<CActor2D*>(actor);
        if (ball->isPlaying())
            return;
        tState& s = sDemo->mState[actor];
        s.stoppedMs += elapsed;
        if (s.stoppedMs >= PAUSE_MS) {
            s.stoppedMs = 0;
            ball->gotoAndPlay("bounce");
        }
    }

    // -----------------------------------------------------------------------
    // Actors

    /// Pupils: 0 ahead, -1 left, 1 right.
    boost::shared_ptr<CSpriteCel> walkerCel(const boost::shared_ptr<CTexture>& art, unsigned short duration,
                                            int legSpread, int lift, int pupils)
    {
        boost::shared_ptr<CSpriteCel> cel = boost::make_shared<CSpriteCel>();
        cel->attach(piece(art, 32, 8, 36, 24, 14 - legSpread, lift));
        cel->attach(piece(art, 32, 8, 36, 24, 14 + legSpread, 0));
        cel->attach(piece(art, 0, 0, 32, 32, 0, 12));
        const int eye = 40 + 8 * (pupils + 1);
        cel->attach(piece(art, eye, 0, eye + 8, 8, 7, 26));
        cel->attach(piece(art, eye, 0, eye + 8, 8, 17, 26));
        cel->duration = duration;
        return cel;
    }

    boost::shared_ptr<CActor2D> makeWalker(const boost::shared_ptr<CTexture>& art)
    {
        boost::shared_ptr<CActor2D> walker = boost::make_shared<CActor2D>();
        const int spread[4] = {8, 2, 8, 2};
        for (int i = 0; i < 4; ++i) {
            boost::shared_ptr<CSpriteCel> cel = walkerCel(art, 150, spread[i], i % 2 ? 3 : 0, 0);
            if (i % 2 == 0)
                cel->pushBackOperation(operation::TRIGGER, STEP);
            if (i == 3)
                cel->pushBackOperation(operation::GOTO_AND_PLAY, 0);
            if (i == 0)
                walker->appendSpriteCelStart(cel, "walk");
            else
                walker->appendSpriteCel(cel);
        }
        walker->appendSpriteCelStart(walkerCel(art, 350, 5, 0, -1), "look");
        boost::shared_ptr<CSpriteCel> right = walkerCel(art, 350, 5, 0, 1);
        right->pushBackOperation(operation::GOTO_AND_PLAY, walker->getAnimationStartOffset("look"));
        walker->appendSpriteCel(right);
        walker->setTriggerFunction(onStep);
        walker->setAnimationDoneFunction(onWalkerDone);
        return walker;
    }

    boost::shared_ptr<CActor2D> makeBall(const boost::shared_ptr<CTexture>& art)
    {
        boost::shared_ptr<CActor2D> ball = boost::make_shared<CActor2D>();
        const int heights[] = {14, 24, 30, 32, 30, 24, 14};
        for (int i = 0; i < 8; ++i) {
            boost::shared_ptr<CSpriteCel> cel = boost::make_shared<CSpriteCel>();
            if (i < 7)
                cel->attach(piece(art, 0, 0, 32, 32, 0, heights[i]));
            else
                cel->attach(piece(art, 0, 40, 40, 60, -4, 0)); // squashed on landing
            cel->duration = 70;
            if (i == 0)
                ball->appendSpriteCelStart(cel, "bounce");
            else
                ball->appendSpriteCel(cel);
        }
        ball->setAnimationDoneFunction(onBallDone);
        ball->setUpdateFunction(onBallUpdate);
        return ball;
    }

    /// The atlas rectangle (x1, y1)-(x2, y2), rows counted from the top,
    /// with its bottom-left corner at (x, y) of the cel.
    static boost::shared_ptr<CBillboard> piece(const boost::shared_ptr<CTexture>& art, int x1, int y1, int x2, int y2,
                                               int x, int y)
    {
        boost::shared_ptr<CBillboard> b = boost::make_shared<CBillboard>();
        b->setTexture(art);
        b->setTextureCoords(tFixed(x1), tFixed(y1), tFixed(x2), tFixed(y2));
        b->moveTo(tVect2{tFixed(x - x1), tFixed(y - (ATLAS - y2))});
        return b;
    }

    // -----------------------------------------------------------------------
    // Art

    /// Body (0, 0)-(32, 32), leg (32, 8)-(36, 24), eyes looking left, ahead
    /// and right at (40, 0), (48, 0), (56, 0), squashed body (0, 40)-(40, 60).
    static boost::shared_ptr<CTexture> paint(tColor colour)
    {
        tImageInfo info = {PAL_NONE, kPixelFormatRGBA8888, ATLAS, ATLAS};
        boost::shared_ptr<CTexture> art(new CTexture(info, true));
        const tColor dark = {static_cast<uint8_t>(colour.r / 3), static_cast<uint8_t>(colour.g / 3),
                             static_cast<uint8_t>(colour.b / 3), 255};
        const tColor white = {255, 255, 255, 255}, black = {20, 20, 20, 255};
        ellipse(*art, 16, 16, 15, 15, dark);
        ellipse(*art, 16, 16, 13, 13, colour);
        rect(*art, 32, 8, 36, 24, dark);
        for (int e = 0; e < 3; ++e) {
            ellipse(*art, 44 + 8 * e, 4, 3, 3, white);
            rect(*art, 43 + 8 * e + (e - 1), 3, 45 + 8 * e + (e - 1), 5, black);
        }
        ellipse(*art, 20, 50, 19, 9, dark);
        ellipse(*art, 20, 50, 17, 7, colour);
        art->InitGLTexture();
        return art;
    }

    static void put(CTexture& art, int x, int y, tColor c)
    {
        if (x < 0 || y < 0 || x >= ATLAS || y >= ATLAS)
            return;
        unsigned char* p = art.pixels + 4 * (y * ATLAS + x);
        p[0] = c.r;
        p[1] = c.g;
        p[2] = c.b;
        p[3] = c.a;
    }

    static void rect(CTexture& art, int x1, int y1, int x2, int y2, tColor c)
    {
        for (int y = y1; y < y2; ++y)
            for (int x = x1; x < x2; ++x)
                put(art, x, y, c);
    }

    /// Pixel centres inside the ellipse around (cx, cy) with radii rx, ry.
    static void ellipse(CTexture& art, int cx, int cy, int rx, int ry, tColor c)
    {
        for (int y = cy - ry; y < cy + ry; ++y)
            for (int x = cx - rx; x < cx + rx; ++x) {
                const long dx = 2 * (x - cx) + 1, dy = 2 * (y - cy) + 1;
                if (dx * dx * ry * ry + dy * dy * rx * rx <= 4L * rx * rx * ry * ry)
                    put(art, x, y, c);
            }
    }

    /// An example file: through the asset lookup, else from the example content.
    static Glib::ustring exampleFile(const char* name)
    {
        const Glib::ustring found = CSystemData::Instance()->FindArt(name);
        return found.empty() ? Glib::ustring(examplesDir() + "demo/" + name) : found;
    }

    void dressKids(const DemoOptions& options)
    {
        int lods[2] = {32, 128};
        for (int i = 0; i < 2; ++i) {
            mCostumes[i].reset(new AvatarCostume());
            mCostumes[i]->addFromJson(exampleFile("kid-costume.json"), &lods[i], 1);
            boost::shared_ptr<CActor2D> kid(new CActor2D(exampleFile("kid.json"), mCostumes[i].get(), 0));
            kid->moveTo(tVect3{tFixed(options.width - 120 + 56 * i), tFixed(58), tFixed(8)});
            add(kid);
        }
    }

    int mWidth = 320;
    boost::shared_ptr<AvatarCostume> mCostumes[2];
    CActorManager mActors;
    std::map<const CBaseActor*, tState> mState;
};

DemoActors* DemoActors::sDemo = 0;

Z2D_REGISTER_DEMO("actors", DemoActors);
