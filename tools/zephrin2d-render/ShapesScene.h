#ifndef ZEPHRIN2D_RENDER_SHAPESSCENE_H
#define ZEPHRIN2D_RENDER_SHAPESSCENE_H

#include "CGraphicCircle.h"
#include "CGraphicLine.h"
#include "CGraphicPoint.h"
#include "CGraphicRectangle.h"
#include "CGraphicTriangle.h"

#include <boost/make_shared.hpp>
#include <vector>

/// Every kind of shape, some turning and pulsing: the "shapes" demo, also
/// drawn by the tests against golden images. Laid out for 320x240 and
/// scaled to other sizes. Frames depend on the time only, so any frame can
/// be drawn on its own.
class ShapesScene
{
public:
    static tColor background() { return tColor{18, 22, 38, 255}; }

    /// pointCount points in the top row (8 when 0 or less).
    void build(int width, int height, int pointCount = 0)
    {
        mWidth = width;
        mHeight = height;
        buildPoints(pointCount > 0 ? pointCount : 8);
        buildLines();
        buildTriangle();
        buildCircles();
        buildRectangles();
    }

    void frame(int index, int dtMs)
    {
        const int64_t ms = static_cast<int64_t>(index) * dtMs;
        animate(ms);
        for (size_t i = 0; i < mShapes.size(); ++i)
            mShapes[i]->draw(0);
        for (size_t i = 0; i < mMarked.size(); ++i)
            mMarked[i]->drawRegPoint(tFixed(4), 0);
    }

private:
    typedef boost::shared_ptr<CGraphicShape> tShape;

    /// Degrees turned after ms at degreesPerSecond, kept below a full turn.
    static tFixed turned(int64_t ms, int degreesPerSecond)
    {
        const int64_t milliDegrees = (ms * degreesPerSecond) % (360 * 1000);
        return tFixed::fromRaw(static_cast<int32_t>(milliDegrees * 65536 / 1000));
    }
    /// 1.0 swinging by amount either side, one swing every periodMs.
    static tFixed pulse(int64_t ms, int periodMs, tFixed amount)
    {
        return ONE_X + sin(turned(ms, 360 * 1000 / periodMs)) * amount;
    }

    /// x, y in the 320x240 layout, scaled to the surface.
    tVect2 at(int x, int y) const { return tVect2{tFixed(x * mWidth / 320), tFixed(y * mHeight / 240)}; }
    tFixed unit(int v) const { return tFixed(v * (mWidth < mHeight * 4 / 3 ? mWidth * 3 : mHeight * 4) / 960); }

    void add(const tShape& shape, bool marked)
    {
        mShapes.push_back(shape);
        if (marked)
            mMarked.push_back(shape);
    }

    void buildPoints(int count)
    {
        static const tColor colours[] = {{255, 90, 90, 255},  {255, 170, 60, 255}, {250, 230, 80, 255},
                                         {120, 230, 110, 255}, {80, 220, 220, 255}, {100, 150, 255, 255},
                                         {190, 120, 255, 255}, {255, 120, 200, 255}};
        static const int sizes[] = {1, 2, 3, 4, 6, 8, 10, 12};
        const int perRow = count < 12 ? count : 12;
        for (int i = 0; i < count; ++i) {
            boost::shared_ptr<CGraphicPoint> p = boost::make_shared<CGraphicPoint>();
            p->setVertexArray(0);
            p->setPointSize(unit(sizes[i % 8]));
            p->setColor(colours[i % 8]);
            const int row = i / perRow;
            p->moveTo(at(20 + (i % perRow) * 280 / (perRow > 1 ? perRow - 1 : 1), 216 - row * 16));
            add(p, false);
        }
    }

    void buildLines()
    {
        static const int widths[] = {1, 2, 4, 6};
        static const tColor ends[][2] = {{{255, 255, 255, 255}, {90, 140, 255, 255}},
                                         {{255, 220, 90, 255}, {255, 90, 60, 255}},
                                         {{120, 255, 160, 255}, {40, 150, 120, 255}},
                                         {{255, 140, 220, 255}, {140, 70, 200, 255}}};
        for (int i = 0; i < 4; ++i) {
            boost::shared_ptr<CGraphicLine> l = boost::make_shared<CGraphicLine>();
            const tFixed half = unit(34);
            tVect2 ends2[2] = {tVect2{-half, ZERO_X}, tVect2{half, ZERO_X}};
            l->setVertexArray(ends2);
            tColor c[2] = {ends[i][0], ends[i][1]};
            l->setColorArray(c);
            l->setLineWidth(unit(widths[i]));
            l->moveTo(at(50, 130));
            mLines.push_back(l);
            add(l, i == 0);
        }
    }

    void buildTriangle()
    {
        mTriangle = boost::make_shared<CGraphicTriangle>();
        const tFixed r = unit(46);
        // Corners at 90, 210 and 330 degrees: the centroid is the origin.
        tVect2 corners[3] = {tVect2{ZERO_X, r}, tVect2{-(cos(tFixed(30)) * r), -(r * ONE_HALF_X)},
                             tVect2{cos(tFixed(30)) * r, -(r * ONE_HALF_X)}};
        tColor colours[3] = {{255, 60, 60, 255}, {60, 230, 90, 255}, {70, 110, 255, 255}};
        mTriangle->setVertexArray(corners);
        mTriangle->setColorArray(colours);
        mTriangle->moveTo(at(140, 128));
        add(mTriangle, true);
    }

    void buildCircles()
    {
        mSun = boost::make_shared<CGraphicCircle>();
        mSun->setSides(40);
        mSun->setRadius(unit(40));
        mSun->setColorArray(0);
        mSun->setColorN(0, tColor{255, 250, 200, 255});
        mSun->setOuterColor(tColor{230, 70, 30, 255});
        mSun->moveTo(at(250, 128));
        add(mSun, true);

        mHexagon = boost::make_shared<CGraphicCircle>();
        mHexagon->setSides(6);
        mHexagon->setRadius(unit(11));
        mHexagon->setColorArray(0);
        mHexagon->setColorN(0, tColor{255, 255, 255, 255});
        mHexagon->setOuterColor(tColor{60, 200, 255, 200});
        mHexagon->moveTo(at(250, 128));
        mHexagon->moveRegTo(tVect2{ZERO_X, -unit(50)});  // circles the sun
        add(mHexagon, false);
    }

    void buildRectangles()
    {
        mPanel = boost::make_shared<CGraphicRectangle>();
        mPanel->setWidthHeight(tVect2{unit(84), unit(46)});
        tColor shade[4] = {{20, 60, 140, 255}, {20, 60, 140, 255}, {90, 210, 240, 255}, {90, 210, 240, 255}};
        mPanel->setColorArray(shade);
        mPanel->moveTo(at(58, 44));
        add(mPanel, false);

        mSpinner = boost::make_shared<CGraphicRectangle>();
        mSpinner->setWidthHeight(tVect2{unit(44), unit(44)});
        mSpinner->setColor(tColor{250, 160, 40, 255});
        mSpinner->moveTo(at(150, 44));
        add(mSpinner, true);

        mGlass = boost::make_shared<CGraphicRectangle>();
        mGlass->setWidthHeight(tVect2{unit(60), unit(26)});
        mGlass->setColor(tColor{90, 255, 140, 128});
        mGlass->moveTo(at(176, 36));
        add(mGlass, false);

        mBar = boost::make_shared<CGraphicRectangle>();
        mBar->setWidthHeight(tVect2{unit(72), unit(24)});
        mBar->setColor(tColor{220, 80, 200, 255});
        mBar->moveTo(at(220, 44));
        mBar->moveRegTo(tVect2{-unit(36), ZERO_X});  // grows from its left end
        add(mBar, true);
    }

    void animate(int64_t ms)
    {
        for (size_t i = 0; i < mLines.size(); ++i)
            mLines[i]->rotateTo(tFixed(static_cast<int>(i) * 45) + turned(ms, 30 + 15 * static_cast<int>(i)));
        mTriangle->rotateTo(turned(ms, 60));
        const tFixed s = pulse(ms, 2000, tFixed::fromRaw(0x2000));
        mSun->scaleTo(tVect2{s, s});
        mHexagon->rotateTo(turned(ms, 90));
        mSpinner->rotateTo(tFixed(15) + turned(ms, 45));
        mBar->scaleXTo(pulse(ms, 1500, tFixed::fromRaw(0x4000)));
    }

    int mWidth = 320;
    int mHeight = 240;
    std::vector<tShape> mShapes;
    std::vector<tShape> mMarked;
    std::vector<boost::shared_ptr<CGraphicLine> > mLines;
    boost::shared_ptr<CGraphicTriangle> mTriangle;
    boost::shared_ptr<CGraphicCircle> mSun;
    boost::shared_ptr<CGraphicCircle> mHexagon;
    boost::shared_ptr<CGraphicRectangle> mPanel;
    boost::shared_ptr<CGraphicRectangle> mSpinner;
    boost::shared_ptr<CGraphicRectangle> mGlass;
    boost::shared_ptr<CGraphicRectangle> mBar;
};

#endif
