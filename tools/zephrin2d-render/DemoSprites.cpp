// "sprites": the batched draw path under load. Billboards over several PNG
// textures and a texture sheet, opaque and translucent, overlapping at
// several depths, a tenth of them moving every frame, and a drifting cloud
// of point sprites among them.
#include "Demo.h"

#include "CBillboard.h"
#include "CDrawManager.h"
#include "CGraphicPoints.h"
#include "CTextureSheet.h"

#include <SystemData.h>
#include <boost/make_shared.hpp>

#include <memory>
#include <vector>

namespace {

/// The example art: found through the asset lookup, else from the source tree's examples.
Glib::ustring art(const char* name)
{
    const Glib::ustring found = CSystemData::Instance()->FindArt(name);
    return found.empty() ? Glib::ustring("examples/art/") + name : found;
}

/// A small deterministic generator, so that every run draws the same scene.
class Random
{
public:
    explicit Random(unsigned seed) : mState(seed) {}
    int below(int n)
    {
        mState = mState * 1103515245u + 12345u;
        return static_cast<int>((mState >> 8) % static_cast<unsigned>(n));
    }

private:
    unsigned mState;
};

class DemoSprites : public Demo
{
public:
    const char* summary() const override
    {
        return "N billboards (--count, default 400) over PNG textures and a texture sheet, opaque and "
               "translucent at several depths, a tenth moving; a drifting point-sprite cloud";
    }
    tColor clearColor() const override { return tColor{24, 28, 48, 255}; }

    void build(const DemoOptions& options) override
    {
        mWidth = options.width;
        mHeight = options.height;
        const int count = options.count > 0 ? options.count : 400;
        mSheet.reset(new CTextureSheet(art("sheet.json")));
        // Opaque (RGB, 565 palettes) and translucent (RGBA, RGBA4444 palettes) files, then sheet pictures.
        const char* files[] = {"bricks_rgb.png", "tree_pal8.png", "ball_pal4.png",
                               "glow_rgba.png", "ghost_pal8_trns.png", "star_pal4_trns.png"};
        const char* pictures[] = {"hero", "heart", "coin", "mushroom"};
        const int kinds = 10;
        Random random(2024);
        for (int i = 0; i < count; ++i) {
            const int kind = i % kinds;
            boost::shared_ptr<CBillboard> b =
                kind < 6 ? boost::make_shared<CBillboard>(art(files[kind]), true)
                         : boost::make_shared<CBillboard>(pictures[kind - 6], mSheet.get(), true);
            // Quarter to half size, turned, at one of five depths.
            const tFixed scale = tFixed::fromRaw(0x4000 + random.below(0x4000));
            b->moveRegTo(tVect2{tFixed(16), tFixed(16)});
            b->scaleTo(tVect2{scale, scale});
            b->rotateTo(tFixed(random.below(360)));
            const tVect3 at = {tFixed(random.below(mWidth)), tFixed(random.below(mHeight)),
                               tFixed(random.below(5) * 2)};
            b->moveTo(at);
            CDrawManager::Instance()->add(b);
            mBillboards.push_back(b);
            mHomes.push_back(at);
        }

        const unsigned short points = 256;
        mCloud = boost::make_shared<CGraphicPoints>(points, art("glow_rgba.png"));
        mCloud->setPointSize(tFixed(12));
        mCloud->moveTo(tVect3{ZERO_X, ZERO_X, tFixed(5)});
        for (unsigned short i = 0; i < points; ++i) {
            mDrift.push_back(tVect3{tFixed(random.below(mWidth)), tFixed(random.below(mHeight)),
                                    tFixed::fromRaw(0x4000 + random.below(0x10000))});
        }
        CDrawManager::Instance()->add(mCloud);
    }

    void frame(int index, int dtMs) override
    {
        // 0.1 degree per millisecond: one turn every 3.6 seconds.
        mTime = ((mTime + dtMs) % 3600 + 3600) % 3600;
        const tFixed t = tFixed(mTime) * tFixed::fromRaw(0x1999);
        for (size_t i = 0; i < mBillboards.size(); i += 10) {
            const tFixed phase = t + tFixed(static_cast<int>(i * 7));
            const tVect3& home = mHomes[i];
            mBillboards[i]->moveTo(tVect3{home.x + tFixed(24) * cos(phase), home.y + tFixed(16) * sin(phase * tFixed(2)),
                                          home.z});
            mBillboards[i]->rotateBy(tFixed(3));
        }
        // Each point rises at its own speed, sways, and wraps round the screen.
        const tFixed height(mHeight);
        const tFixed elapsed = tFixed(dtMs) / tFixed(33);
        for (size_t i = 0; i < mDrift.size(); ++i) {
            tVect3& d = mDrift[i];
            d.y += d.z * elapsed;
            if (height > ZERO_X)
                d.y = tFixed::fromRaw(((d.y.raw() % height.raw()) + height.raw()) % height.raw());
            const tFixed x = d.x + tFixed(8) * sin(t * tFixed(3) + tFixed(static_cast<int>(i * 37)));
            mCloud->setVertexN(static_cast<unsigned short>(i), tVect3{x, d.y, ZERO_X});
        }
        CDrawManager::Instance()->drawAll();
    }

private:
    int mWidth = 320;
    int mHeight = 240;
    int mTime = 0;
    std::unique_ptr<CTextureSheet> mSheet;
    std::vector<boost::shared_ptr<CBillboard> > mBillboards;
    std::vector<tVect3> mHomes;
    boost::shared_ptr<CGraphicPoints> mCloud;
    /// Per point: x, current y, and rising speed (pixels per 33 ms) in z.
    std::vector<tVect3> mDrift;
};

} // namespace

Z2D_REGISTER_DEMO("sprites", DemoSprites);
