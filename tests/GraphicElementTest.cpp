#include "TestSupport.h"
#include "GLCallText.h"

#include "CGraphicElement.h"

#include <GLES/gl.h>
#include <boost/make_shared.hpp>
#include <functional>

namespace {

class PlainElement : public CGraphicElement
{
public:
    using CGraphicElement::draw;
    void draw(tColor*) override {}
};

tFixed X(int v) { return tFixed(v); }

TEST(GraphicElement, AlphaByTruncatesToEightBits)
{
    struct { tFixed factor; unsigned char before; unsigned char after; } cases[] = {
        {ONE_HALF_X, 255, 127},
        {tFixed(2), 200, 144},  // 400 wraps
        {ZERO_X, 200, 0},
    };
    for (const auto& c : cases) {
        PlainElement e;
        e.alphaTo(c.before);
        e.alphaBy(c.factor);
        EXPECT_EQ(int(e.getAlpha()), int(c.after)) << c.factor.raw() << " x " << int(c.before);
        EXPECT_EQ(int(e.getColor().r), 255) << "only the alpha byte changes";
    }
}

TEST(GraphicElement, AssignmentTakesPlacementColourAndVisibility)
{
    PlainElement from, to;
    from.moveTo(tVect3{X(3), X(4), X(5)});
    from.rotateTo(X(30));
    from.setColor(tColor{1, 2, 3, 4});
    from.setVisibility(false);
    to = from;
    EXPECT_EQ(to.getPos(), (tVect3{X(3), X(4), X(5)}));
    EXPECT_EQ(to.getRotation(), X(30));
    EXPECT_EQ(to.getColor(), (tColor{1, 2, 3, 4}));
    EXPECT_FALSE(to.getVisibility());
}

TEST(GraphicElement, CachedMatrixMatchesAFreshOneAfterEveryChange)
{
    // Moves keep the rotation and scale part of the cached matrix; the other changes rebuild it.
    const std::function<void(CGraphicElement&)> steps[] = {
        [](CGraphicElement& e) { e.moveTo(tVect3{X(5), X(6), X(1)}); },
        [](CGraphicElement& e) { e.rotateTo(X(30)); },
        [](CGraphicElement& e) { e.moveBy(tVect2{X(-3), X(2)}); },
        [](CGraphicElement& e) { e.moveRegTo(tVect2{X(4), X(2)}); },
        [](CGraphicElement& e) { e.scaleXBy(X(3)); },
        [](CGraphicElement& e) { e.moveBy(tVect3{X(1), X(1), X(1)}); },
        [](CGraphicElement& e) { e.rotateBy(X(45)); e.moveTo(tVect2{X(7), X(8)}); },
        [](CGraphicElement& e) { PlainElement o; o.scaleTo(tVect2{X(2), X(3)}); o.getMatrix(); e = o; },
        [](CGraphicElement& e) { e.moveRegBy(tVect2{X(1), X(1)}); },
        [](CGraphicElement& e) { e = PlainElement(); e.moveRegTo(tVect2{X(4), X(2)}); e.scaleBy(tVect2{X(2), X(2)}); },
    };
    const auto fields = [](const tMatrix23& m) {
        return std::vector<int32_t>{m.m00.raw(), m.m01.raw(), m.m02.raw(), m.m10.raw(), m.m11.raw(), m.m12.raw(), m.z.raw()};
    };
    PlainElement e;
    for (size_t i = 0; i < sizeof(steps) / sizeof(steps[0]); ++i) {
        steps[i](e);
        EXPECT_EQ(fields(e.getMatrix()), fields(tMatrix23(e.getReg(), e.getScale(), e.getRotation(), e.getPos())))
            << "step " << i;
    }
    // The last step's values: scale 2 about the registration point (4, 2).
    EXPECT_EQ(fields(e.getMatrix()), (std::vector<int32_t>{2 << 16, 0, -(8 << 16), 0, 2 << 16, -(4 << 16), 0}));
}

TEST(GraphicElement, PushTransformSkipsIdentitySteps)
{
    const long ONE = 1 << 16;
    struct {
        const char* name;
        std::function<void(CGraphicElement&)> op;
        std::vector<std::string> steps;
    } cases[] = {
        {"identity", [](CGraphicElement&) {}, {}},
        {"rotation", [](CGraphicElement& e) { e.rotateTo(X(45)); }, {glCall("glRotatex", {45 * ONE, 0, 0, ONE})}},
        {"one scale", [](CGraphicElement& e) { e.scaleYTo(X(3)); }, {glCall("glScalex", {ONE, 3 * ONE, ONE})}},
        {"registration point", [](CGraphicElement& e) { e.moveRegTo(tVect2{ZERO_X, X(5)}); },
         {glCall("glTranslatex", {0, -5 * ONE, 0})}},
        {"all, in order",
         [](CGraphicElement& e) {
             e.moveTo(tVect2{X(10), X(20)});
             e.rotateTo(X(30));
             e.scaleTo(tVect2{X(2), X(2)});
             e.moveRegTo(tVect2{X(1), X(1)});
         },
         {glCall("glTranslatex", {10 * ONE, 20 * ONE, 0}), glCall("glRotatex", {30 * ONE, 0, 0, ONE}),
          glCall("glScalex", {2 * ONE, 2 * ONE, ONE}), glCall("glTranslatex", {-ONE, -ONE, 0})}},
    };
    for (const auto& c : cases) {
        PlainElement e;
        c.op(e);
        GLRecorder::clear();
        GLRecorder::start();
        e.pushTransform();
        GLRecorder::stop();
        std::vector<std::string> expected{glCall("glPushMatrix")};
        expected.insert(expected.end(), c.steps.begin(), c.steps.end());
        EXPECT_EQ(recordedGLCalls(), expected) << c.name;
    }
    GLRecorder::clear();
}

} // namespace
