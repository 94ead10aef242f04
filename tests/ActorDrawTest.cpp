#include "TestSupport.h"
#include "AllocationCounter.h"
#include "DrawTestSupport.h"
#include "RecordingChunk.h"

#include "CActor2D.h"
#include "CDrawManager.h"
#include "CTexturedChunk.h"
#include "CTexturedDrawList.h"

#include <GLES/gl.h>
#include <boost/make_shared.hpp>

namespace {

class ActorDrawTest : public GLTest
{
protected:
    void TearDown() override
    {
        mTextures.clear();
        GLTest::TearDown();
    }

    GLuint texture(tColor c)
    {
        mTextures.push_back(DrawTest::solidTexture(c));
        return mTextures.back()->glTextureId;
    }

    static tActor2DFrameStruct cel(unsigned short duration, GLuint texture, int size = 32)
    {
        boost::shared_ptr<CTexturedChunk> chunk = DrawTest::quad(boost::shared_ptr<CTexture>(), size, size);
        chunk->setTextureId(texture, false);
        tActor2DFrameStruct frame = {duration, {}, {}, {chunk}};
        return frame;
    }

    /// Entries of the textured list for this GL texture (0 when it has none).
    static size_t entries(GLuint texture)
    {
        size_t n = 0;
        for (const auto& list : CDrawManager::Instance()->getOpaqueLists()) {
            CTexturedDrawList* textured = dynamic_cast<CTexturedDrawList*>(list.get());
            if (textured && textured->getTextureId() == texture)
                n += textured->getEntryCount();
        }
        return n;
    }

    std::vector<boost::shared_ptr<CTexture> > mTextures;
};

TEST_F(ActorDrawTest, CelChangeSwapsListEntriesAndPixels)
{
    const GLuint red = texture(RED), green = texture(GREEN);
    boost::shared_ptr<CActor2D> actor = boost::make_shared<CActor2D>();
    tActor2DFrameStruct first = cel(100, red), second = cel(100, green);
    actor->appendFrameStart(first, "blink");
    actor->appendFrame(second);
    actor->pushBackOperation(1, operation::GOTO_AND_PLAY, 0);
    CDrawManager::Instance()->add(actor);
    frame();
    EXPECT_EQ(pixel(10, 10), RED);

    // A cel shown again is drawn from the vertices its list kept: no vertex upload.
    struct { int elapsed; GLuint shown, hidden; tColor color; size_t vertexUploads; } steps[] = {
        {99, red, green, RED, 0}, {1, green, red, GREEN, 2}, {100, red, green, RED, 0}, {150, green, red, GREEN, 0},
    };
    for (const auto& s : steps) {
        actor->update(s.elapsed);
        EXPECT_EQ(entries(s.shown), 1u);
        EXPECT_EQ(entries(s.hidden), 0u);
        GLRecorder::clear();
        GLRecorder::start();
        frame();
        GLRecorder::stop();
        std::vector<long> bound;
        for (const auto& call : GLRecorder::callsNamed("glBindTexture"))
            bound.push_back(call.args[1]);
        EXPECT_EQ(std::count(bound.begin(), bound.end(), long(s.shown)), 1);
        EXPECT_EQ(std::count(bound.begin(), bound.end(), long(s.hidden)), 0);
        EXPECT_EQ(GLRecorder::count("glDrawElements"), 1u);
        size_t uploads = 0;
        for (const char* name : {"glBufferData", "glBufferSubData"})
            for (const auto& call : GLRecorder::callsNamed(name))
                uploads += call.args[0] == GL_ARRAY_BUFFER;
        EXPECT_EQ(uploads, s.vertexUploads) << s.elapsed;
        EXPECT_EQ(pixel(10, 10), s.color);
    }
}

TEST_F(ActorDrawTest, ColourAndAlphaFollowTheActorAcrossCels)
{
    const GLuint white = texture(tColor{255, 255, 255, 255}), grey = texture(tColor{128, 128, 128, 255});
    boost::shared_ptr<CActor2D> actor = boost::make_shared<CActor2D>();
    tActor2DFrameStruct first = cel(100, white), second = cel(100, grey);
    actor->appendFrameStart(first, "blink");
    actor->appendFrame(second);
    actor->pushBackOperation(1, operation::GOTO_AND_PLAY, 0);
    CDrawManager::Instance()->add(actor);
    actor->setColorEnabled(true);
    actor->setColor(tColor{255, 0, 0, 128});
    // Red over the black clear colour: white, then grey texels.
    struct { int elapsed; unsigned char alpha; int red; } steps[] = {{0, 128, 128}, {100, 128, 64}, {100, 0, 0}, {100, 255, 128}};
    for (const auto& s : steps) {
        actor->update(s.elapsed);
        actor->alphaTo(s.alpha);
        frame();
        EXPECT_NEAR(pixel(10, 10).r, s.red, 3) << s.elapsed;
        EXPECT_EQ(pixel(10, 10).g, 0);
    }
}

TEST_F(ActorDrawTest, CopiesSharingChunksAdvanceIndependently)
{
    // Placed copies of one actor share their cels' chunks.
    const GLuint red = texture(RED), green = texture(GREEN), blue = texture(BLUE);
    boost::shared_ptr<CActor2D> left = boost::make_shared<CActor2D>();
    tActor2DFrameStruct a = cel(100, red, 16), b = cel(100, green, 16), c = cel(100, blue, 16);
    left->appendFrameStart(a, "run");
    left->appendFrame(b);
    left->appendFrame(c);
    left->setSkippable(false);
    boost::shared_ptr<CActor2D> right = boost::make_shared<CActor2D>(*left);
    right->moveTo(tVect2{tFixed(32), ZERO_X});
    CDrawManager::Instance()->add(left);
    CDrawManager::Instance()->add(right);
    struct { CActor2D* actor; tColor left, right; } steps[] = {
        {left.get(), GREEN, RED}, {right.get(), GREEN, GREEN}, {right.get(), GREEN, BLUE}, {left.get(), BLUE, BLUE},
    };
    for (const auto& s : steps) {
        s.actor->update(100);
        frame();
        EXPECT_EQ(pixel(8, 8), s.left);
        EXPECT_EQ(pixel(40, 8), s.right);
        EXPECT_EQ(entries(red) + entries(green) + entries(blue), 2u);
    }
}

/// Twenty actors flipping between two cels on every update.
class ActorHeapTest : public ActorDrawTest
{
protected:
    void flip(std::vector<boost::shared_ptr<CActor2D> >& actors, int updates)
    {
        for (int i = 0; i < updates; ++i)
            for (auto& a : actors)
                a->update(1);
    }

    std::vector<boost::shared_ptr<CActor2D> > flippers(const tActor2DFrameStruct& on, const tActor2DFrameStruct& off)
    {
        std::vector<boost::shared_ptr<CActor2D> > actors;
        for (int i = 0; i < 20; ++i) {
            boost::shared_ptr<CActor2D> actor = boost::make_shared<CActor2D>();
            tActor2DFrameStruct first = on, second = off;
            actor->appendFrameStart(first, "flip");
            actor->appendFrame(second);
            actor->pushBackOperation(1, operation::GOTO_AND_PLAY, 0);
            actor->moveTo(tVect2{tFixed(i * 3), ZERO_X});
            CDrawManager::Instance()->add(actor);
            actors.push_back(actor);
        }
        return actors;
    }
};

TEST_F(ActorHeapTest, CelChangesAllocateNothingInTheActor)
{
    const GLuint red = texture(RED), green = texture(GREEN);
    struct { tActor2DFrameStruct on, off; } kinds[] = {
        {{1, {}, {}, {boost::make_shared<RecordingChunk>()}}, {1, {}, {}, {boost::make_shared<RecordingChunk>()}}},
        {cel(1, red), cel(1, green)},   // textured lists park and take up the entries, and draw
    };
    for (auto& k : kinds) {
        std::vector<boost::shared_ptr<CActor2D> > actors = flippers(k.on, k.off);
        for (int i = 0; i < 10; ++i) {
            flip(actors, 1);
            CDrawManager::Instance()->drawAll();
        }
        const unsigned long before = AllocationCounter::count();
        for (int i = 0; i < 100; ++i) {
            flip(actors, 1);
            CDrawManager::Instance()->drawAll();
        }
        EXPECT_EQ(AllocationCounter::count() - before, 0u);
    }
}

} // namespace
