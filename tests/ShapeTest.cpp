#include "TestSupport.h"
#include "GLCallText.h"

#include "CGraphics2D.h"
#include "CGraphicCircle.h"
#include "CGraphicLine.h"
#include "CGraphicPoint.h"
#include "CGraphicRectangle.h"
#include "CGraphicTriangle.h"

#include <GLES/gl.h>
#include <boost/make_shared.hpp>
#include <cmath>
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

tRaw px(int x, int y) { return tRaw(x << 16, y << 16); }

tVect2 v2(int x, int y) { return tVect2{tFixed(x), tFixed(y)}; }

const tColor kRed{255, 0, 0, 255};
const tColor kGreen{0, 255, 0, 255};
const tColor kBlue{0, 0, 255, 255};

TEST(ShapeGeometry, CircleStartsAtTheTopAndTurnsCounterClockwise)
{
    CGraphicCircle circle;
    circle.setSides(4);
    circle.setRadius(tFixed(10));
    EXPECT_EQ(rawVertices(circle),
              (std::vector<tRaw>{px(0, 0), px(0, 10), px(-10, 0), px(0, -10), px(10, 0), px(0, 10)}));
    EXPECT_EQ(circle.getRadius(), tFixed(10));
}

TEST(ShapeGeometry, CircleHalvesMirrorEachOther)
{
    const int32_t r = 50 << 16;
    for (unsigned int sides : {3u, 4u, 5u, 6u, 7u, 8u, 9u, 16u, 31u, 32u, 100u}) {
        SCOPED_TRACE(sides);
        CGraphicCircle circle;
        circle.setSides(sides);
        circle.setRadius(tFixed::fromRaw(r));
        const std::vector<tRaw> v = rawVertices(circle);
        const size_t n = sides + 2;
        ASSERT_EQ(v.size(), n);
        EXPECT_EQ(v[0], tRaw(0, 0));
        EXPECT_EQ(v[1], tRaw(0, r));
        EXPECT_EQ(v[n - 1], tRaw(0, r));
        for (size_t k = 2; k + 1 < n; ++k) {
            EXPECT_EQ(v[k].first, -v[n - k].first) << k;
            EXPECT_EQ(v[k].second, v[n - k].second) << k;
            if (k > n / 2)
                continue;
            EXPECT_LE(v[k].first, 0) << "the first half runs left from the top, vertex " << k;
            const double len = std::hypot(v[k].first / 65536.0, v[k].second / 65536.0);
            EXPECT_NEAR(len, 50.0, 0.01) << k;
        }
        if (sides % 2 == 0 && DEGREES360_X.raw() % sides == 0) {
            EXPECT_EQ(v[1 + sides / 2], tRaw(0, -r));
        }
    }
}

TEST(ShapeGeometry, RectangleIsCentredWithTruncatedHalves)
{
    struct { int32_t w, h; int32_t hw, hh; } cases[] = {
        {3, 3, 1, 1},                       // the odd raw unit is dropped
        {10 << 16, 6 << 16, 5 << 16, 3 << 16},
        {-3, 5, -1, 2},                     // truncation toward zero
        {0, 0, 0, 0},
    };
    for (const auto& c : cases) {
        CGraphicRectangle rect;
        rect.setWidthHeight(tVect2{tFixed::fromRaw(c.w), tFixed::fromRaw(c.h)});
        EXPECT_EQ(rawVertices(rect), (std::vector<tRaw>{tRaw(-c.hw, -c.hh), tRaw(c.hw, -c.hh),
                                                        tRaw(-c.hw, c.hh), tRaw(c.hw, c.hh)}))
            << c.w << "x" << c.h;
    }
}

TEST(ShapeGeometry, RectangleReusesItsVertexArray)
{
    CGraphicRectangle rect;
    rect.setWidthHeight(v2(4, 4));
    rect.setColorArray(nullptr);
    rect.setColorN(3, kRed);
    rect.setWidthHeight(v2(8, 2));
    EXPECT_EQ(rect.getVertexN(3), v2(4, 1));
    EXPECT_EQ(rect.getColorN(3), kRed) << "a new size keeps the colours";
}

TEST(ShapeGeometry, FixedCountsAndCopiedVertices)
{
    tVect2 src[4] = {v2(1, 2), v2(3, 4), v2(5, 6), v2(7, 8)};
    CGraphicPoint point;
    CGraphicLine line;
    CGraphicTriangle triangle;
    CGraphicRectangle rect;
    point.setVertexArray(src);
    line.setVertexArray(src);
    triangle.setVertexArray(src);
    rect.setVertexArray(src);
    struct { CGraphicShape* shape; unsigned int count; } cases[] = {
        {&point, 1}, {&line, 2}, {&triangle, 3}, {&rect, 4}};
    for (const auto& c : cases) {
        ASSERT_EQ(c.shape->getVertexCount(), c.count);
        for (unsigned int i = 0; i < c.count; ++i)
            EXPECT_EQ(c.shape->getVertexN(i), src[i]);
    }
    src[0] = v2(9, 9);
    EXPECT_EQ(point.getVertexN(0), v2(1, 2)) << "the shape keeps its own copy";
    line.moveVertexNBy(1, tVect2{tFixed::fromRaw(1), MINUS_ONE_X});
    EXPECT_EQ(line.getVertexN(1), (tVect2{tFixed::fromRaw((3 << 16) + 1), tFixed(3)}));
    triangle.setVertexArray(nullptr);
    EXPECT_EQ(triangle.getVertexN(2), VECT2_0);
}

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
        {"CGraphicShape::setColorN colorIndex out of bounds", [&] { rect.setColorN(4, kRed); }},
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

TEST(ShapeChecks, ColourArrayShorterThanTheVerticesIsNeverPassed)
{
    CGraphicShape* shape = new CGraphicTriangle;
    boost::shared_ptr<CGraphicShape> owner(shape);
    shape->setVertexArray(2, nullptr);
    shape->setColorArray(nullptr);
    shape->setVertexArray(3, nullptr);
    AssertCapture asserts;
    shape->setColorN(2, kRed);
    EXPECT_EQ(asserts.messages(), std::vector<std::string>{"CGraphicShape::setColorN colorIndex out of bounds"});
    asserts.clear();
    shape->setColorN(1, kRed);
    EXPECT_EQ(shape->getColorN(1), kRed) << "the colour array stays in place";
    EXPECT_TRUE(asserts.entries().empty());
}

TEST(ShapeChecks, RadiusWithoutSidesWritesNothing)
{
    CGraphicCircle circle;
    circle.setVertexArray(0, nullptr);
    AssertCapture asserts;
    circle.setRadius(tFixed(10));
    const std::string m = "CGraphicShape::setVertexN vertexIndex out of bounds";
    EXPECT_EQ(asserts.messages(), (std::vector<std::string>{m, m, m})) << "vertices 0, 1 and n - 1 = -1";
    EXPECT_EQ(circle.getRadius(), tFixed(10));
}

TEST(ShapeChecks, NegativeVertexCountGivesAnEmptyArray)
{
    CGraphicTriangle triangle;
    AssertCapture asserts;
    triangle.CGraphicShape::setVertexArray(-5, nullptr);
    EXPECT_EQ(asserts.messages(), std::vector<std::string>{"CGraphicShape::setVertexArray negative count -5"});
    EXPECT_EQ(triangle.getVertexCount(), 0u);
}

TEST(ShapeChecks, OuterColourOfAFanWithoutRimChangesNothing)
{
    for (int count : {0, 1}) {
        CGraphicCircle circle;
        circle.setVertexArray(count, nullptr);
        circle.setColorArray(nullptr);
        AssertCapture asserts;
        if (count)
            circle.setColorN(0, kBlue);
        circle.setOuterColor(kRed);
        EXPECT_TRUE(asserts.entries().empty()) << count;
        if (count) {
            EXPECT_EQ(circle.getColorN(0), kBlue);
        }
    }
}

TEST(ShapeChecks, OuterColourLeavesTheCentre)
{
    CGraphicCircle circle;
    circle.setSides(6);
    circle.setRadius(tFixed(3));
    circle.setColorArray(nullptr);
    circle.setColorN(0, kBlue);
    circle.setOuterColor(kRed);
    EXPECT_EQ(circle.getColorN(0), kBlue);
    for (unsigned int i = 1; i < 8; ++i)
        EXPECT_EQ(circle.getColorN(i), kRed) << i;
}

// A missing array stops the program after the report, so these run in a child process.
TEST(ShapeDeathTest, MissingArrayStopsAfterTheReport)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    struct {
        const char* message;
        std::function<void()> call;
    } cases[] = {
        {"CGraphicShape::setVertexN null vertex pointer", [] { CGraphicTriangle().setVertexN(0, VECT2_0); }},
        {"CGraphicShape::getVertexN null vertex pointer", [] { CGraphicTriangle().getVertexN(0); }},
        {"CGraphicShape::moveVertexNBy null vertex pointer", [] { CGraphicTriangle().moveVertexNBy(0, VECT2_0); }},
        {"CGraphicShape::setColorN null color pointer",
         [] { CGraphicTriangle t; t.setVertexArray(nullptr); t.setColorN(0, kRed); }},
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
    typedef std::function<boost::shared_ptr<CGraphicShape>()> tMaker;

    static boost::shared_ptr<CGraphicShape> rectangle(bool colours)
    {
        boost::shared_ptr<CGraphicRectangle> r = boost::make_shared<CGraphicRectangle>();
        r->setWidthHeight(v2(20, 10));
        r->moveTo(v2(32, 32));
        if (colours) {
            tColor c[4] = {kRed, kRed, kGreen, kGreen};
            r->setColorArray(c);
        }
        return r;
    }
    static boost::shared_ptr<CGraphicShape> point()
    {
        boost::shared_ptr<CGraphicPoint> p = boost::make_shared<CGraphicPoint>();
        tVect2 v = v2(8, 8);
        p->setVertexArray(&v);
        p->setPointSize(tFixed(3));
        return p;
    }
    static boost::shared_ptr<CGraphicShape> line()
    {
        boost::shared_ptr<CGraphicLine> l = boost::make_shared<CGraphicLine>();
        tVect2 v[2] = {v2(2, 2), v2(60, 2)};
        l->setVertexArray(v);
        l->setLineWidth(tFixed(2));
        l->rotateTo(tFixed(30));
        return l;
    }
    static boost::shared_ptr<CGraphicShape> triangle(bool colours)
    {
        boost::shared_ptr<CGraphicTriangle> t = boost::make_shared<CGraphicTriangle>();
        tVect2 v[3] = {v2(4, 4), v2(60, 4), v2(4, 60)};
        t->setVertexArray(v);
        if (colours) {
            tColor c[3] = {kRed, kGreen, kBlue};
            t->setColorArray(c);
        }
        return t;
    }
    static boost::shared_ptr<CGraphicShape> circle(bool gradient)
    {
        boost::shared_ptr<CGraphicCircle> c = boost::make_shared<CGraphicCircle>();
        c->setSides(8);
        c->setRadius(tFixed(20));
        c->moveTo(v2(32, 32));
        c->scaleTo(tVect2{ONE_POINT_FIVE_X, ONE_X});
        if (gradient) {
            c->setColorArray(nullptr);
            c->setColorN(0, kBlue);
            c->setOuterColor(kRed);
        }
        return c;
    }
};

TEST_F(ShapeDrawTest, DrawLeavesTheTexturedStateOn)
{
    const tMaker makers[] = {
        [] { return point(); }, [] { return line(); }, [] { return triangle(false); },
        [] { return triangle(true); }, [] { return rectangle(false); }, [] { return rectangle(true); },
        [] { return circle(false); }, [] { return circle(true); },
    };
    for (size_t i = 0; i < sizeof(makers) / sizeof(makers[0]); ++i) {
        boost::shared_ptr<CGraphicShape> shape = makers[i]();
        shape->draw(nullptr);
        EXPECT_TRUE(glIsEnabled(GL_TEXTURE_2D)) << i;
        EXPECT_TRUE(glIsEnabled(GL_TEXTURE_COORD_ARRAY)) << i;
        EXPECT_FALSE(glIsEnabled(GL_COLOR_ARRAY)) << i;
        EXPECT_TRUE(glIsEnabled(GL_VERTEX_ARRAY)) << i;
        EXPECT_FALSE(gl_checkError()) << i;
    }
}

TEST_F(ShapeDrawTest, CallOrderOfADraw)
{
    struct {
        const char* name;
        tMaker make;
        tColor* color;
        std::vector<std::string> between;  // after the untextured state, before the restore
        bool colours;
    } cases[] = {
        {"point", [] { return point(); }, const_cast<tColor*>(&kGreen),
         {glCall("glColor4ub", {0, 255, 0, 255}), glCall("glPointSizex", {3 << 16}),
          glCall("glDrawArrays", {GL_POINTS, 0, 1})}, false},
        {"line", [] { return line(); }, nullptr,
         {glCall("glColor4ub", {255, 255, 255, 255}), glCall("glLineWidthx", {2 << 16}),
          glCall("glDrawArrays", {GL_LINES, 0, 2})}, false},
        {"triangle", [] { return triangle(true); }, nullptr,
         {glCall("glColor4ub", {255, 255, 255, 255}), glCall("glDrawArrays", {GL_TRIANGLES, 0, 3})}, true},
        {"rectangle", [] { return rectangle(true); }, nullptr,
         {glCall("glColor4ub", {255, 255, 255, 255}), glCall("glDrawArrays", {GL_TRIANGLE_STRIP, 0, 4})}, true},
        {"circle", [] { return circle(false); }, nullptr,
         {glCall("glColor4ub", {255, 255, 255, 255}), glCall("glDrawArrays", {GL_TRIANGLE_FAN, 0, 10})}, false},
    };
    for (const auto& c : cases) {
        boost::shared_ptr<CGraphicShape> shape = c.make();
        GLRecorder::clear();
        GLRecorder::start();
        shape->draw(c.color);
        GLRecorder::stop();
        std::vector<std::string> expected{glCall("glPushMatrix")};
        const tVect3 p = shape->getPos();
        if (p != VECT3_0)
            expected.push_back(glCall("glTranslatex", {p.x.raw(), p.y.raw(), p.z.raw()}));
        if (shape->getRotation() != ZERO_X)
            expected.push_back(glCall("glRotatex", {shape->getRotation().raw(), 0, 0, 1 << 16}));
        if (shape->getScale() != (tVect2{ONE_X, ONE_X}))
            expected.push_back(glCall("glScalex", {shape->getXscale().raw(), shape->getYscale().raw(), 1 << 16}));
        expected.push_back(glCall("glVertexPointer", {2, GL_FIXED, 0}));
        if (c.colours) {
            expected.push_back(glCall("glEnableClientState", {GL_COLOR_ARRAY}));
            expected.push_back(glCall("glColorPointer", {4, GL_UNSIGNED_BYTE, 0}));
        }
        expected.push_back(glCall("glDisable", {GL_TEXTURE_2D}));
        expected.push_back(glCall("glDisableClientState", {GL_TEXTURE_COORD_ARRAY}));
        expected.insert(expected.end(), c.between.begin(), c.between.end());
        expected.push_back(glCall("glEnableClientState", {GL_TEXTURE_COORD_ARRAY}));
        expected.push_back(glCall("glEnable", {GL_TEXTURE_2D}));
        if (c.colours)
            expected.push_back(glCall("glDisableClientState", {GL_COLOR_ARRAY}));
        expected.push_back(glCall("glPopMatrix"));
        EXPECT_EQ(recordedGLCalls(), expected) << c.name;
    }
}

TEST_F(ShapeDrawTest, HiddenShapeIssuesNoCall)
{
    boost::shared_ptr<CGraphicShape> shape = rectangle(true);
    shape->setVisibility(false);
    GLRecorder::start();
    shape->draw(nullptr);
    shape->draw();
    GLRecorder::stop();
    EXPECT_TRUE(GLRecorder::calls().empty());
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
        GLRecorder::clear();
        GLRecorder::start();
        c.shape->draw(nullptr);
        GLRecorder::stop();
        EXPECT_EQ(asserts.messages(), std::vector<std::string>{c.message});
        std::vector<GLRecorder::tCall> draws = GLRecorder::callsNamed("glDrawArrays");
        ASSERT_EQ(draws.size(), 1u);
        EXPECT_EQ(draws[0].args[2], c.drawn);
    }
}

TEST_F(ShapeDrawTest, ShortColourArrayFallsBackToOneColour)
{
    boost::shared_ptr<CGraphicRectangle> rect = boost::make_shared<CGraphicRectangle>();
    rect->CGraphicShape::setVertexArray(2, nullptr);
    rect->setColorArray(nullptr);
    rect->setVertexArray(nullptr);
    rect->setWidthHeight(v2(20, 20));
    rect->moveTo(v2(32, 32));
    rect->setColor(kBlue);
    AssertCapture asserts;
    GLRecorder::start();
    rect->draw(nullptr);
    GLRecorder::stop();
    EXPECT_EQ(asserts.messages(),
              std::vector<std::string>{"CGraphicShape::pushTransform color array shorter than vertex array"});
    EXPECT_EQ(GLRecorder::count("glColorPointer"), 0u);
    EXPECT_FALSE(glIsEnabled(GL_COLOR_ARRAY));
    EXPECT_EQ(pixel(32, 32), kBlue);
}

TEST_F(ShapeDrawTest, ColoursOnScreen)
{
    struct {
        const char* name;
        tMaker make;
        tColor* color;
        int x, y;
        tColor expected;
    } cases[] = {
        {"element colour", [] { auto r = rectangle(false); r->setColor(kBlue); return r; }, nullptr, 32, 32, kBlue},
        {"given colour wins", [] { auto r = rectangle(false); r->setColor(kBlue); return r; },
         const_cast<tColor*>(&kGreen), 41, 36, kGreen},
        {"outside the rectangle", [] { return rectangle(false); }, nullptr, 43, 32, tColor{0, 0, 0, 255}},
        {"bottom vertex colour", [] { return rectangle(true); }, nullptr, 32, 27, tColor{255, 0, 0, 255}},
        {"gradient centre", [] { return circle(true); }, nullptr, 32, 32, tColor{0, 0, 255, 255}},
        {"scaled circle reaches x + 28", [] { return circle(false); }, nullptr, 60, 32, tColor{255, 255, 255, 255}},
        {"point", [] { return point(); }, const_cast<tColor*>(&kRed), 8, 8, kRed},
    };
    for (const auto& c : cases) {
        CGraphics2D::Instance()->clearBuffer();
        c.make()->draw(c.color);
        const tColor got = pixel(c.x, c.y);
        for (int k = 0; k < 3; ++k)
            EXPECT_NEAR((&got.r)[k], (&c.expected.r)[k], 24) << c.name << " " << got;
    }
}

} // namespace
