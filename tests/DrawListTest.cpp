#include "TestSupport.h"
#include "AllocationCounter.h"
#include "DrawTestSupport.h"

#include "CDrawManager.h"
#include "CGraphics2D.h"
#include "CTexturedDrawList.h"

#include <GLES/gl.h>
#include <functional>

using namespace DrawTest;

namespace {

class DrawListTest : public GLTest
{
protected:
    CDrawManager* manager() { return CDrawManager::Instance(); }

    CTexturedDrawList* opaqueList(size_t i)
    {
        return dynamic_cast<CTexturedDrawList*>(manager()->getOpaqueLists().at(i).get());
    }

    /// Recorded uploads of one kind to one target.
    static std::vector<GLRecorder::tCall> uploads(const char* name, GLenum target)
    {
        std::vector<GLRecorder::tCall> out;
        for (const GLRecorder::tCall& c : GLRecorder::callsNamed(name))
            if (c.args[0] == static_cast<long>(target))
                out.push_back(c);
        return out;
    }
};

TEST_F(DrawListTest, BookkeepingOfAddRemoveShowHide)
{
    boost::shared_ptr<CTexture> texture = solidTexture(RED);
    boost::shared_ptr<Element> a = quadElement(texture, 0, 0, Z(0));
    boost::shared_ptr<Element> b = quadElement(texture, 10, 0, Z(0));
    b->setVisibility(false);
    boost::shared_ptr<Element> other = quadElement(solidTexture(BLUE), 0, 0, Z(0));
    boost::shared_ptr<CTexturedDrawList> list(new CTexturedDrawList());

    enum tOp { ADD, REMOVE, SHOW, HIDE };
    struct {
        tOp op;
        boost::shared_ptr<Element> e;
        bool result;
        int vertices, indices, hiddenIndices, visibleEntries, hiddenEntries;
    } steps[] = {
        {ADD, a, true, 4, 6, 0, 1, 0},
        {ADD, b, true, 8, 6, 6, 1, 1},       // b is hidden
        {ADD, a, true, 8, 6, 6, 1, 1},       // already held: nothing added
        {ADD, other, false, 8, 6, 6, 1, 1},  // another texture
        {HIDE, a, true, 8, 0, 12, 0, 2},
        {HIDE, a, true, 8, 0, 12, 0, 2},
        {SHOW, b, true, 8, 6, 6, 1, 1},
        {SHOW, other, false, 8, 6, 6, 1, 1},
        {REMOVE, a, true, 4, 6, 0, 1, 0},
        {REMOVE, a, false, 4, 6, 0, 1, 0},
        {REMOVE, other, false, 4, 6, 0, 1, 0},
        {REMOVE, b, true, 0, 0, 0, 0, 0},
    };
    int n = 0;
    for (const auto& s : steps) {
        boost::shared_ptr<CDrawChunk> chunk = s.e->getChunks()[0];
        bool result = false;
        switch (s.op) {
        case ADD: result = list->add(s.e, chunk); break;
        case REMOVE: result = list->remove(s.e, chunk); break;
        case SHOW: result = list->show(s.e, chunk); break;
        case HIDE: result = list->hide(s.e, chunk); break;
        }
        EXPECT_EQ(result, s.result) << "step " << n;
        EXPECT_EQ(list->getVertexCount(), s.vertices) << "step " << n;
        EXPECT_EQ(list->getIndexCount(), s.indices) << "step " << n;
        EXPECT_EQ(list->getHiddenIndexCount(), s.hiddenIndices) << "step " << n;
        EXPECT_EQ(list->getVisibleEntryCount(), (size_t)s.visibleEntries) << "step " << n;
        EXPECT_EQ(list->getHiddenEntryCount(), (size_t)s.hiddenEntries) << "step " << n;
        ++n;
    }
    EXPECT_TRUE(list->empty());
    EXPECT_TRUE(a->getChunks()[0]->getDrawList().expired()) << "a removed chunk belongs to no list";
}

TEST_F(DrawListTest, ChunkWithoutTextureIsReported)
{
    AssertCapture asserts;
    boost::shared_ptr<Element> e = element();
    e->getChunks().push_back(quad(boost::shared_ptr<CTexture>(), 4, 4));
    boost::shared_ptr<CTexturedDrawList> list(new CTexturedDrawList());
    EXPECT_TRUE(list->add(e, e->getChunks()[0]));
    EXPECT_TRUE(asserts.has("CTexturedDrawList::add adding item with no TextureId"));
    ASSERT_EQ(asserts.entries().size(), 1u);
    EXPECT_EQ(asserts.entries()[0].file, "Zephrin2D/Src/CTexturedDrawList");
}

TEST_F(DrawListTest, MovingOneOfAHundredUploadsOnlyItsPositions)
{
    boost::shared_ptr<CTexture> texture = solidTexture(RED);
    std::vector<boost::shared_ptr<Element> > elements;
    for (int i = 0; i < 100; ++i) {
        elements.push_back(quadElement(texture, (i % 10) * 6, (i / 10) * 6, Z(0), 4, 4));
        manager()->add(elements.back());
    }
    frame();
    EXPECT_EQ(pixel(7 * 6, 3 * 6), RED);
    GLRecorder::start();
    elements[37]->moveBy(tVect2{ONE_X, ONE_X});
    frame();
    GLRecorder::stop();

    EXPECT_EQ(GLRecorder::count("glBufferData"), 0u);
    std::vector<GLRecorder::tCall> sub = GLRecorder::callsNamed("glBufferSubData");
    ASSERT_EQ(sub.size(), 1u) << "no texture coordinates, no indices";
    EXPECT_EQ(sub[0].args[0], GL_ARRAY_BUFFER);
    EXPECT_EQ(sub[0].offset, 37 * 4 * 12);
    EXPECT_EQ(sub[0].size, 48);
    EXPECT_EQ(GLRecorder::count("glDrawElements"), 1u);
    EXPECT_EQ(pixel(7 * 6, 3 * 6), BLACK);
    EXPECT_EQ(pixel(7 * 6 + 4, 3 * 6 + 4), RED);

    // A copy shares the chunk and is held last: each move still finds its own entry.
    boost::shared_ptr<Element> copy = boost::make_shared<Element>(*elements[5]);
    manager()->add(copy);
    frame();
    for (int i : {5, 100}) {
        GLRecorder::clear();
        GLRecorder::start();
        (i == 100 ? copy : elements[i])->moveBy(tVect2{ONE_X, ZERO_X});
        frame();
        GLRecorder::stop();
        sub = GLRecorder::callsNamed("glBufferSubData");
        ASSERT_EQ(sub.size(), 1u) << i;
        EXPECT_EQ(sub[0].offset, i * 4 * 12) << i;
    }

    // Moves out of buffer order, or more than a list records, upload the same way, in buffer order.
    for (int count : {3, 40}) {
        GLRecorder::clear();
        GLRecorder::start();
        for (int i = count - 1; i >= 0; --i)
            elements[i * 2]->moveBy(tVect2{ONE_X, ZERO_X});
        frame();
        GLRecorder::stop();
        sub = GLRecorder::callsNamed("glBufferSubData");
        ASSERT_EQ(sub.size(), static_cast<size_t>(count));
        for (int i = 0; i < count; ++i)
            EXPECT_EQ(sub[i].offset, i * 2 * 4 * 12) << count;
    }

    const unsigned long before = AllocationCounter::count();
    for (int i = 0; i < 10; ++i)
        elements[i * 7]->moveBy(tVect2{ONE_X, ZERO_X});
    frame();
    EXPECT_EQ(AllocationCounter::count() - before, 0u) << "moving frames allocate nothing";
}

TEST_F(DrawListTest, TranslatedRotatedAndScaledQuadsDrawWhereTheirTransformPuts)
{
    // A 4 x 12 quad at (20, 20); moves rebuild only the translation of the cached matrix.
    boost::shared_ptr<Element> e = quadElement(solidTexture(RED), 20, 20, Z(0), 4, 12);
    manager()->add(e);
    struct {
        std::function<void(Element&)> op;
        int redX, redY, blackX, blackY;
    } steps[] = {
        {[](Element& q) { q.rotateTo(tFixed(90)); }, 10, 22, 22, 30},               // x 8..20, y 20..24
        {[](Element& q) { q.moveBy(tVect2{tFixed(20), ZERO_X}); }, 30, 22, 10, 22},  // x 28..40
        {[](Element& q) { q.scaleTo(tVect2{tFixed(2), ONE_X}); }, 30, 26, 30, 30},   // y 20..28
        {[](Element& q) { q.rotateTo(ZERO_X); q.moveBy(tVect2{tFixed(-20), ZERO_X}); }, 26, 30, 30, 22},
    };
    for (size_t i = 0; i < sizeof(steps) / sizeof(steps[0]); ++i) {
        steps[i].op(*e);
        frame();
        EXPECT_EQ(pixel(steps[i].redX, steps[i].redY), RED) << "step " << i;
        EXPECT_EQ(pixel(steps[i].blackX, steps[i].blackY), BLACK) << "step " << i;
    }
}

TEST_F(DrawListTest, RemovedPairKeepsItsRoomForItsReturn)
{
    boost::shared_ptr<CTexture> texture = solidTexture(RED);
    boost::shared_ptr<Element> a = quadElement(texture, 0, 0, Z(0));
    boost::shared_ptr<Element> b = quadElement(texture, 10, 0, Z(0));
    for (auto& e : {a, b})
        manager()->add(e);
    frame();
    enum tOp { REMOVE, ADD, MOVE_OUT, ADD_OTHER, READD, EDIT_HELD };
    struct {
        tOp op;
        long uploadOffset;   // of the positions, -1: no vertex upload
        bool grows, aShown;
    } steps[] = {
        {REMOVE, -1, false, false},    // the room stays, nothing moves
        {ADD, -1, false, true},        // back unchanged: drawn from the vertices kept
        {READD, -1, false, true},      // out and back again: the hash kept from its return serves
        {EDIT_HELD, 0, false, true},   // edited in place while held, unmarked: rewritten when it returns
        {MOVE_OUT, 0, false, true},    // moved while out: only its own range
        {ADD_OTHER, 8 * 12, true, true},  // a new pair is appended: the buffers grow
    };
    boost::shared_ptr<Element> d = quadElement(texture, 30, 0, Z(0));
    for (const auto& s : steps) {
        GLRecorder::start();
        if (s.op == REMOVE)
            manager()->remove(a);
        else if (s.op == ADD)
            manager()->add(a);
        else if (s.op == ADD_OTHER)
            manager()->add(d);
        else if (s.op == READD || s.op == EDIT_HELD) {
            for (tVect3& v : a->getChunks()[0]->getVertices())
                v.x = v.x + (s.op == EDIT_HELD ? ONE_X : ZERO_X);
            manager()->remove(a);
            manager()->add(a);
        } else {
            manager()->remove(a);
            a->moveBy(tVect2{ONE_X, ZERO_X});
            manager()->add(a);
        }
        frame();
        GLRecorder::stop();
        std::vector<GLRecorder::tCall> positions = uploads(s.grows ? "glBufferData" : "glBufferSubData",
                                                           GL_ARRAY_BUFFER);
        EXPECT_EQ(positions.empty(), s.uploadOffset < 0) << s.op;
        if (!positions.empty() && !s.grows) {
            EXPECT_EQ(positions[0].offset, s.uploadOffset) << s.op;
        }
        EXPECT_EQ(pixel(s.op == REMOVE ? 2 : 3, 2), s.aShown ? RED : BLACK) << s.op;
        EXPECT_EQ(pixel(12, 2), RED) << s.op;
        GLRecorder::clear();
    }
    EXPECT_EQ(pixel(32, 2), RED);
    EXPECT_EQ(opaqueList(0)->getEntryCount(), 3u);
}

TEST_F(DrawListTest, ShrinkAllDropsEmptyListsAndRebuildsOthersAtSize)
{
    boost::shared_ptr<CTexture> red = solidTexture(RED);
    boost::shared_ptr<CTexture> blue = solidTexture(BLUE);
    boost::shared_ptr<Element> gone = quadElement(red, 0, 0, Z(0));
    std::vector<boost::shared_ptr<Element> > kept;
    manager()->add(gone);
    for (int i = 0; i < 4; ++i) {
        kept.push_back(quadElement(blue, i * 10, 20, Z(0)));
        manager()->add(kept.back());
    }
    frame();
    manager()->remove(gone);
    manager()->remove(kept[2]);
    manager()->remove(kept[3]);
    frame();
    ASSERT_EQ(manager()->getOpaqueLists().size(), 2u) << "kept until shrinkAll";
    GLRecorder::start();
    manager()->shrinkAll();
    ASSERT_EQ(manager()->getOpaqueLists().size(), 1u);
    frame();
    GLRecorder::stop();
    std::vector<GLRecorder::tCall> vertexData = uploads("glBufferData", GL_ARRAY_BUFFER);
    ASSERT_EQ(vertexData.size(), 2u);
    EXPECT_EQ(vertexData[0].args[1], 2 * 48);
    EXPECT_EQ(vertexData[1].args[1], 2 * 32);
    std::vector<GLRecorder::tCall> indexData = uploads("glBufferData", GL_ELEMENT_ARRAY_BUFFER);
    ASSERT_EQ(indexData.size(), 1u);
    EXPECT_EQ(indexData[0].args[1], 12 * 2);
    EXPECT_EQ(pixel(12, 22), BLUE);
    EXPECT_EQ(pixel(22, 22), BLACK);
}

TEST_F(DrawListTest, ChunksPastSixteenBitCountsGoToAnotherList)
{
    struct {
        int vertices, indices, chunks;
        int firstVertices, firstIndices, secondVertices, secondIndices;
    } cases[] = {
        {4, 6, 16384, 43688, 65532, 21848, 32772},  // quads: the indices run out first
        {3000, 3, 22, 63000, 63, 3000, 3},          // the vertices run out first
        {3, 30000, 3, 6, 60000, 3, 30000},
    };
    for (const auto& c : cases) {
        AssertCapture asserts;
        boost::shared_ptr<CTexture> texture = solidTexture(RED);
        std::vector<boost::shared_ptr<Element> > elements;
        for (int i = 0; i < c.chunks; ++i) {
            boost::shared_ptr<CTexturedChunk> chunk(new CTexturedChunk(c.vertices, c.indices));
            chunk->setTexture(texture);
            elements.push_back(element());
            elements.back()->getChunks().push_back(chunk);
            manager()->add(elements.back());
        }
        ASSERT_EQ(manager()->getOpaqueLists().size(), 2u) << c.vertices;
        EXPECT_EQ(opaqueList(0)->getVertexCount(), c.firstVertices);
        EXPECT_EQ(opaqueList(0)->getIndexCount(), c.firstIndices);
        EXPECT_EQ(opaqueList(1)->getVertexCount(), c.secondVertices);
        EXPECT_EQ(opaqueList(1)->getIndexCount(), c.secondIndices);
        EXPECT_TRUE(asserts.entries().empty());
        manager()->deleteAll();
    }
}

TEST_F(DrawListTest, ChunkChangedInPlaceCannotOverrunTheBuffers)
{
    AssertCapture asserts;
    boost::shared_ptr<Element> e = quadElement(solidTexture(RED), 0, 0, Z(0));
    manager()->add(e);
    frame();
    boost::shared_ptr<CTexturedChunk> chunk = boost::dynamic_pointer_cast<CTexturedChunk>(e->getChunks()[0]);
    chunk->getVertices().resize(400, VECT3_0);
    chunk->getIndices().push_back(399);
    e->moveBy(tVect2{ONE_X, ZERO_X});
    manager()->hide(e, chunk);
    manager()->show(e, chunk);
    frame();
    EXPECT_TRUE(asserts.has("CTexturedDrawList::bufferVertices 2 vertex count mismatch"));
    EXPECT_TRUE(asserts.has("CTexturedDrawList::bufferIndices 3 index count mismatch"));
    EXPECT_EQ(pixel(3, 3), RED) << "drawn with the counts it was accepted with";
}

} // namespace
