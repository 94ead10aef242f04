#include "TestSupport.h"
#include "DrawTestSupport.h"

#include "CActor2D.h"
#include "CDrawManager.h"
#include "CBillboard.h"
#include "CGraphicCircle.h"
#include "CSpriteCel.h"
#include "CText.h"
#include "CTextureSheet.h"

#include <algorithm>
#include <functional>

using namespace DrawTest;

namespace {

typedef boost::shared_ptr<CGraphicElement> tElement;

struct tPlace
{
    const char* what;
    int x, y, quarterTurns, sx, sy, regX, regY;
};

const tPlace kPlaces[] = {
    {"as made", 0, 0, 0, 1, 1, 0, 0},        {"moved", 10, 20, 0, 1, 1, 0, 0},
    {"turned 90", 0, 0, 1, 1, 1, 0, 0},      {"turned 270 and moved", 5, -5, 3, 1, 1, 0, 0},
    {"scaled 2, -1", 0, 0, 0, 2, -1, 0, 0},  {"registration point moved", 100, 100, 0, 1, 1, 32, 16},
    {"all at once", 100, 100, 1, 2, 3, 4, 8},
};

void place(CGraphicElement& e, const tPlace& p)
{
    e.moveRegTo(tVect2{tFixed(p.regX), tFixed(p.regY)});
    e.scaleTo(tVect2{tFixed(p.sx), tFixed(p.sy)});
    e.rotateTo(tFixed(90 * p.quarterTurns));
    e.moveTo(tVect2{tFixed(p.x), tFixed(p.y)});
}

// The expectation in whole pixels, by quarter turns: independent of the matrix code.
tRect2 expected(const tRect2& local, const tPlace& p)
{
    tRect2 r = tRect2::Empty();
    const tFixed xs[] = {local.left, local.right}, ys[] = {local.bottom, local.top};
    for (tFixed lx : xs)
        for (tFixed ly : ys) {
            int x = (lx.toInt() - p.regX) * p.sx, y = (ly.toInt() - p.regY) * p.sy;
            for (int q = 0; q < p.quarterTurns; ++q) {
                const int t = x;
                x = -y;
                y = t;
            }
            r.Include(tVect2{tFixed(x + p.x), tFixed(y + p.y)});
        }
    return r;
}

bool near(const tRect2& a, const tRect2& b)
{
    const int32_t d[] = {a.left.raw() - b.left.raw(), a.bottom.raw() - b.bottom.raw(), a.right.raw() - b.right.raw(),
                         a.top.raw() - b.top.raw()};
    return std::all_of(d, d + 4, [](int32_t v) { return v >= -8 && v <= 8; });
}

tRect2 box(int l, int b, int r, int t) { return tRect2{tFixed(l), tFixed(b), tFixed(r), tFixed(t)}; }

class BoundsTest : public GLTest
{
protected:
    boost::shared_ptr<CBillboard> billboard(int w, int h, int x = 0, int y = 0)
    {
        boost::shared_ptr<CBillboard> b = boost::make_shared<CBillboard>();
        b->setTexture(makeTexture(w, h, kPixelFormatRGB888, [](int, int) { return RED; }));
        b->moveTo(tVect2{tFixed(x), tFixed(y)});
        return b;
    }
    boost::shared_ptr<CSpriteCel> cel(int w, int h, int x)
    {
        boost::shared_ptr<CSpriteCel> c = boost::make_shared<CSpriteCel>();
        c->attach(billboard(w, h, x, 0));
        c->duration = 100;
        return c;
    }
};

TEST_F(BoundsTest, EveryKindUnderEveryPlacement)
{
    struct tKind
    {
        const char* what;
        std::function<tElement()> make;
        tRect2 local;
    };
    boost::shared_ptr<CText> text(new CText("Hello", "DejaVu Sans", 16));
    text->getChunks();
    const tKind kinds[] = {
        {"billboard", [&] { return billboard(64, 32); }, box(0, 0, 64, 32)},
        {"text", [&] { return text; }, box(0, 0, text->getTextureWidth(), text->getTextureHeight())},
        {"circle of 4 sides",
         [&] {
             boost::shared_ptr<CGraphicCircle> c = boost::make_shared<CGraphicCircle>();
             c->setSides(4);
             c->setRadius(tFixed(10));
             return c;
         },
         box(-10, -10, 10, 10)},
        {"sprite of two",
         [&] {
             boost::shared_ptr<CSprite> s = boost::make_shared<CSprite>();
             s->attach(billboard(8, 8));
             s->attach(billboard(8, 8, 20, 10));
             return s;
         },
         box(0, 0, 28, 18)},
        {"actor", [&] {
             boost::shared_ptr<CActor2D> a = boost::make_shared<CActor2D>();
             a->appendSpriteCel(cel(8, 16, -4));
             return a;
         },
         box(-4, 0, 4, 16)},
    };
    for (const tKind& k : kinds)
        for (const tPlace& p : kPlaces) {
            tElement e = k.make();
            place(*e, p);
            const tRect2 want = expected(k.local, p);
            EXPECT_TRUE(near(e->getBounds(), want)) << k.what << ", " << p.what;
            const tVect2 inside{want.left + ONE_X, want.bottom + ONE_X};
            EXPECT_TRUE(e->contains(inside) && !e->contains(tVect2{want.right, inside.y})) << k.what << ", " << p.what;
        }
}

TEST_F(BoundsTest, ActorFollowsItsCurrentCelAndFlipsStayInPlace)
{
    boost::shared_ptr<CActor2D> actor = boost::make_shared<CActor2D>();
    actor->appendSpriteCelStart(cel(8, 16, 0), "small");
    actor->appendSpriteCel(cel(32, 8, -16));
    actor->moveTo(tVect2{tFixed(50), tFixed(60)});
    EXPECT_TRUE(near(actor->getBounds(), box(50, 60, 58, 76)));
    actor->update(100);
    EXPECT_EQ(actor->getCurrentCelOffset(), 1);
    EXPECT_TRUE(near(actor->getBounds(), box(34, 60, 66, 68)));

    boost::shared_ptr<CSprite> sprite = boost::make_shared<CSprite>();
    sprite->attach(billboard(8, 8));
    sprite->attach(billboard(16, 4, 10, 20));
    const tElement flipped[] = {billboard(64, 32), sprite, actor};
    for (const tElement& e : flipped)
        for (const tPlace& p : kPlaces) {
            place(*e, p);
            const tRect2 before = e->getBounds();
            const tVect2 reg = e->getReg();
            e->flipHorizontal();
            const bool horizontal = near(e->getBounds(), before) && e->getXscale() == tFixed(-p.sx);
            e->flipVertical();
            EXPECT_TRUE(horizontal && near(e->getBounds(), before)) << p.what;
            e->flipVertical();
            e->flipHorizontal();
            EXPECT_TRUE(e->getReg() == reg && e->getXscale() == tFixed(p.sx)) << p.what;
        }
}

TEST_F(BoundsTest, SheetPictureSize)
{
    CTextureSheet sheet(examplesPath("getting-started/art/sheet.json"));
    CBillboard b("coin", &sheet, true);
    EXPECT_EQ(b.getPictureSize(), sheet.getPictureSize("coin"));
    EXPECT_EQ(b.getPictureSize(), (tVect2{tFixed(40), tFixed(40)}));
    EXPECT_EQ(sheet.getPictureSize("no such picture"), VECT2_0);
    EXPECT_EQ(CBillboard().getPictureSize(), VECT2_0);
}

} // namespace
