#include "TestSupport.h"
#include "GLCallText.h"

#include "CGraphics2D.h"
#include "CGraphicCircle.h"
#include "CGraphicPoint.h"
#include "CGraphicRectangle.h"
#include "CGraphicTriangle.h"

#include <GLES/gl.h>
#include <boost/make_shared.hpp>
#include <functional>

namespace {

typedef std::pair<int32_t, int32_t> tRaw;

std::vector<tRaw> rawVertices(CGraphicShape& shape)
{
    std::vector<tRaw> out;
    for (unsigned int i = 0; i < shape.getVertexCount(); ++i)
        out.push_back(tRaw(shape.getVertexN(i).x.raw(), shape.getVertexN(i).y.raw()));
    return out;
}

tRaw px(int x, int y) { return tRaw(x * 65536, y * 65536); }

tVect2 v2(int x, int y) { return tVect2{tFixed(x), tFixed(y)}; }

TEST(ShapeChecks, OutOfRangeIndexIsReportedAndHarmless)
{
    const tColor kGrey{9, 9, 9, 9};
    CGraphicRectangle rect;
    rect.setWidthHeight(v2(2, 2));
    rect.setColorArray(nullptr);
    for (unsigned int i = 0; i < 4; ++i)
        rect.setColorN(i, kGrey);
    struct {
        const char* message;
        std::function<void()> call;
    } cases[] = {
        {"CGraphicShape::setVertexN vertexIndex out of bounds", [&] { rect.setVertexN(4, v2(5, 5)); }},
        {"CGraphicShape::getVertexN vertexIndex out of bounds", [&] { EXPECT_EQ(rect.getVertexN(4), VECT2_0); }},
        {"CGraphicShape::moveVertexNBy vertexIndex out of bounds", [&] { rect.moveVertexNBy(0xFFFFFFFFu, v2(5, 5)); }},
        {"CGraphicShape::setColorN colorIndex out of bounds", [&] { rect.setColorN(4, RED); }},
        {"CGraphicShape::setColorN colorIndex out of bounds",
         [&] { EXPECT_EQ(rect.getColorN(7), (tColor{0, 0, 0, 0})); }},
    };
    for (const auto& c : cases) {
        AssertCapture asserts;
        c.call();
        ASSERT_EQ(asserts.entries().size(), 1u) << c.message;
        EXPECT_EQ(asserts.entries()[0].file, "Zephrin2D/Src/CGraphicShape");
        EXPECT_EQ(asserts.entries()[0].message, c.message);
    }
    EXPECT_EQ(rawVertices(rect), (std::vector<tRaw>{px(-1, -1), px(1, -1), px(-1, 1), px(1, 1)}));
    for (unsigned int i = 0; i < 4; ++i)
        EXPECT_EQ(rect.getColorN(i), kGrey);
}

// A missing array stops the program after the report, so these run in a child process.
TEST(ShapeDeathTest, MissingArrayStopsAfterTheReport)
{
    GTEST_FLAG_SET(death_test_style, Z2D_DEATH_TEST_STYLE);
    struct {
        const char* message;
        std::function<void()> call;
    } cases[] = {
        {"CGraphicShape::setVertexN null vertex pointer", [] { CGraphicTriangle().setVertexN(0, VECT2_0); }},
        {"CGraphicShape::getVertexN null vertex pointer", [] { CGraphicTriangle().getVertexN(0); }},
        {"CGraphicShape::moveVertexNBy null vertex pointer", [] { CGraphicTriangle().moveVertexNBy(0, VECT2_0); }},
        {"CGraphicShape::setColorN null color pointer",
         [] { CGraphicTriangle t; t.setVertexArray(nullptr); t.setColorN(0, RED); }},
        {"CGraphicShape::setColorN null color pointer",
         [] { CGraphicTriangle t; t.setVertexArray(nullptr); t.getColorN(0); }},
        // A circle's vertices come from setSides(): without it the first write meets no array.
        {"CGraphicShape::setVertexN vertexIndex out of bounds", [] { CGraphicCircle().setRadius(tFixed(10)); }},
    };
    for (const auto& c : cases)
        EXPECT_DEATH(c.call(), c.message);
}

class ShapeDrawTest : public GLTest
{
protected:
    typedef boost::shared_ptr<CGraphicShape> tShape;

    static tShape rectangle(bool colours)
    {
        boost::shared_ptr<CGraphicRectangle> r = boost::make_shared<CGraphicRectangle>();
        r->setWidthHeight(v2(20, 10));
        r->moveTo(v2(32, 32));
        tColor c[4] = {RED, RED, GREEN, GREEN};
        if (colours)
            r->setColorArray(c);
        return r;
    }
    static tShape point()
    {
        boost::shared_ptr<CGraphicPoint> p = boost::make_shared<CGraphicPoint>();
        p->setVertexArray(nullptr);
        p->setPointSize(tFixed(3));
        return p;
    }
    static tShape circle(bool gradient)
    {
        boost::shared_ptr<CGraphicCircle> c = boost::make_shared<CGraphicCircle>();
        c->setSides(8);
        c->setRadius(tFixed(20));
        c->moveTo(v2(32, 32));
        c->scaleTo(tVect2{ONE_POINT_FIVE_X, ONE_X});
        c->rotateTo(tFixed(90));
        if (gradient) {
            c->setColorArray(nullptr);
            c->setColorN(0, BLUE);
            c->setOuterColor(RED);
        }
        return c;
    }
};

TEST_F(ShapeDrawTest, CallOrderOfADraw)
{
    const long ONE = 1 << 16;
    const std::string untextured[] = {glCall("glDisable", {GL_TEXTURE_2D}),
                                      glCall("glDisableClientState", {GL_TEXTURE_COORD_ARRAY})};
    const std::string textured[] = {glCall("glEnableClientState", {GL_TEXTURE_COORD_ARRAY}),
                                    glCall("glEnable", {GL_TEXTURE_2D})};
    const std::string white = glCall("glColor4ub", {255, 255, 255, 255});
    struct {
        tShape shape;
        tColor* color;
        std::vector<std::string> calls;
    } cases[] = {
        {point(), const_cast<tColor*>(&GREEN),
         {glCall("glPushMatrix"), glCall("glVertexPointer", {2, GL_FIXED, 0}), untextured[0], untextured[1],
          glCall("glColor4ub", {0, 255, 0, 255}), glCall("glPointSizex", {3 * ONE}),
          glCall("glDrawArrays", {GL_POINTS, 0, 1}), textured[0], textured[1], glCall("glPopMatrix")}},
        {rectangle(true), nullptr,
         {glCall("glPushMatrix"), glCall("glTranslatex", {32 * ONE, 32 * ONE, 0}),
          glCall("glVertexPointer", {2, GL_FIXED, 0}), glCall("glEnableClientState", {GL_COLOR_ARRAY}),
          glCall("glColorPointer", {4, GL_UNSIGNED_BYTE, 0}), untextured[0], untextured[1], white,
          glCall("glDrawArrays", {GL_TRIANGLE_STRIP, 0, 4}), textured[0], textured[1],
          glCall("glDisableClientState", {GL_COLOR_ARRAY}), glCall("glPopMatrix")}},
        {circle(false), nullptr,
         {glCall("glPushMatrix"), glCall("glTranslatex", {32 * ONE, 32 * ONE, 0}),
          glCall("glRotatex", {90 * ONE, 0, 0, ONE}), glCall("glScalex", {ONE + ONE / 2, ONE, ONE}),
          glCall("glVertexPointer", {2, GL_FIXED, 0}), untextured[0], untextured[1], white,
          glCall("glDrawArrays", {GL_TRIANGLE_FAN, 0, 10}), textured[0], textured[1], glCall("glPopMatrix")}},
    };
    for (const auto& c : cases) {
        recordGL([&] { c.shape->draw(c.color); });
        EXPECT_EQ(recordedGLCalls(), c.calls);
    }
    tShape hidden = rectangle(true);
    hidden->setVisibility(false);
    recordGL([&] { hidden->draw(nullptr); hidden->draw(); });
    EXPECT_TRUE(GLRecorder::calls().empty()) << "a hidden shape draws nothing";
}

TEST_F(ShapeDrawTest, TooFewVerticesDrawOnlyWhatIsThere)
{
    boost::shared_ptr<CGraphicTriangle> triangle = boost::make_shared<CGraphicTriangle>();
    boost::shared_ptr<CGraphicPoint> point = boost::make_shared<CGraphicPoint>();
    triangle->CGraphicShape::setVertexArray(2, nullptr);
    struct { CGraphicShape* shape; long drawn; const char* message; } cases[] = {
        {triangle.get(), 2, "CGraphicShape::draw 3 vertices needed, 2 given"},
        {point.get(), 0, "CGraphicShape::draw 1 vertices needed, 0 given"},
    };
    for (const auto& c : cases) {
        AssertCapture asserts;
        recordGL([&] { c.shape->draw(nullptr); });
        EXPECT_EQ(asserts.messages(), std::vector<std::string>{c.message});
        std::vector<GLRecorder::tCall> draws = GLRecorder::callsNamed("glDrawArrays");
        ASSERT_EQ(draws.size(), 1u);
        EXPECT_EQ(draws[0].args[2], c.drawn);
    }
}

// A colour array made before the vertex count grew is too short for GL.
TEST_F(ShapeDrawTest, ShortColourArrayIsNeverPassed)
{
    boost::shared_ptr<CGraphicRectangle> rect = boost::make_shared<CGraphicRectangle>();
    rect->CGraphicShape::setVertexArray(2, nullptr);
    rect->setColorArray(nullptr);
    rect->setVertexArray(nullptr);
    rect->setWidthHeight(v2(20, 20));
    rect->moveTo(v2(32, 32));
    rect->setColor(BLUE);
    AssertCapture asserts;
    rect->setColorN(1, RED);
    rect->setColorN(2, RED);
    recordGL([&] { rect->draw(nullptr); });
    EXPECT_EQ(asserts.messages(),
              (std::vector<std::string>{"CGraphicShape::setColorN colorIndex out of bounds",
                                        "CGraphicShape::pushTransform color array shorter than vertex array"}));
    EXPECT_EQ(GLRecorder::count("glColorPointer"), 0u);
    EXPECT_FALSE(glIsEnabled(GL_COLOR_ARRAY));
    EXPECT_EQ(pixel(32, 32), BLUE) << "drawn in the element colour";
}

TEST_F(ShapeDrawTest, ColoursOnScreen)
{
    struct {
        const char* name;
        tShape shape;
        tColor* color;
        int x, y;
        tColor expected;
    } cases[] = {
        {"element colour", rectangle(false), nullptr, 32, 32, tColor{255, 255, 255, 255}},
        {"given colour wins", rectangle(false), const_cast<tColor*>(&GREEN), 41, 36, GREEN},
        {"vertex colours win", rectangle(true), const_cast<tColor*>(&BLUE), 32, 27, RED},
        {"gradient centre", circle(true), nullptr, 32, 32, BLUE},
        {"turned and scaled circle reaches y + 28", circle(false), nullptr, 32, 59, tColor{255, 255, 255, 255}},
    };
    for (const auto& c : cases) {
        CGraphics2D::Instance()->clearBuffer();
        c.shape->draw(c.color);
        const tColor got = pixel(c.x, c.y);
        for (int k = 0; k < 3; ++k)
            EXPECT_NEAR((&got.r)[k], (&c.expected.r)[k], 24) << c.name << " " << got;
    }
}

} // namespace
