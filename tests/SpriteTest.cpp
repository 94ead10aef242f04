#include "TestSupport.h"
#include "RecordingChunk.h"

#include "CSprite.h"
#include "CSpriteCel.h"

#include <boost/make_shared.hpp>

namespace {

/// An element with the chunks it is given.
class Piece : public CGraphicElement
{
public:
    explicit Piece(std::vector<int> mergeKeys)
    {
        for (int k : mergeKeys)
            mChunks.push_back(boost::make_shared<RecordingChunk>(k));
    }
    void draw(tColor*) override {}
};

boost::shared_ptr<Piece> piece(std::vector<int> keys, int x = 0)
{
    boost::shared_ptr<Piece> p = boost::make_shared<Piece>(keys);
    p->moveTo(tVect2{tFixed(x), ZERO_X});
    return p;
}

int keyOf(const boost::shared_ptr<CDrawChunk>& c) { return static_cast<RecordingChunk*>(c.get())->mMergeKey; }

class SpriteTest : public ::testing::Test
{
protected:
    void SetUp() override { CDrawManager::Destroy(); }
    void TearDown() override { CDrawManager::Destroy(); }
};

TEST_F(SpriteTest, AttachMergesWhatCanMergeInAttachOrder)
{
    struct { const char* name; std::vector<std::vector<int> > children; std::vector<int> keys; std::vector<size_t> vertices; } cases[] = {
        {"same kind twice", {{1}, {1}}, {1}, {2}},
        {"different kinds", {{1}, {2}}, {1, 2}, {1, 1}},
        {"merge into the first that takes it", {{2}, {1}, {2, 1}}, {2, 1}, {2, 2}},
        {"chunks that never merge", {{-1}, {-1}}, {-1, -1}, {1, 1}},
        {"one child, several chunks", {{3, 3}}, {3}, {2}},
        {"no chunks", {{}}, {}, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        boost::shared_ptr<CSprite> sprite = boost::make_shared<CSprite>();
        CSprite::tElementList children;
        for (const auto& keys : c.children)
            children.push_back(piece(keys));
        sprite->attach(children);
        std::vector<int> keys;
        std::vector<size_t> vertices;
        for (const auto& chunk : sprite->getChunks()) {
            keys.push_back(keyOf(chunk));
            vertices.push_back(chunk->getVertices().size());
        }
        EXPECT_EQ(keys, c.keys);
        EXPECT_EQ(vertices, c.vertices);
    }
}

TEST_F(SpriteTest, AttachWhileRegisteredSwapsChunksInTheLists)
{
    boost::shared_ptr<CSprite> sprite = boost::make_shared<CSprite>();
    sprite->attach(piece({1}));
    CDrawManager::Instance()->add(sprite);
    ASSERT_TRUE(sprite->isDrawManaged());
    sprite->attach(piece({1}));
    sprite->attach(piece({2}));
    std::vector<CDrawChunk*> expected;
    for (const auto& chunk : sprite->getChunks())
        expected.push_back(chunk.get());
    EXPECT_EQ(registeredChunks(sprite.get()), expected);
    // A list of another kind is reached through a locked reference, once per chunk.
    RecordingList& list = *boost::dynamic_pointer_cast<RecordingList>(expected[0]->getDrawList().lock());
    const int moves = list.moves;
    sprite->moveBy(tVect2{ONE_X, ZERO_X});
    EXPECT_EQ(list.moves - moves, 2);

    AssertCapture asserts;
    sprite->attach(boost::shared_ptr<CGraphicElement>());
    EXPECT_TRUE(asserts.has("CSprite::attach empty element\n"));
    EXPECT_EQ(sprite->getChunks().size(), 2u) << "attaching nothing changes nothing";
}

TEST_F(SpriteTest, CelSortsOperationsByCode)
{
    struct { int opcode; const char* list; } cases[] = {
        {0, ""}, {1, "exit"}, {2, "exit"}, {3, "enter"}, {4, "enter"}, {5, "enter"}, {6, ""}, {-1, ""},
    };
    for (const auto& c : cases) {
        CSpriteCel cel;
        cel.pushBackOperation(c.opcode, 4);
        operation op = {c.opcode, 5};
        cel.pushBackOperation(op);
        tOperationList::const_iterator enterBegin, enterEnd, exitBegin, exitEnd;
        cel.getEnterOpcodeIterators(enterBegin, enterEnd);
        cel.getExitOpcodeIterators(exitBegin, exitEnd);
        const std::string list = c.list;
        EXPECT_EQ(enterEnd - enterBegin, list == "enter" ? 2 : 0) << c.opcode;
        EXPECT_EQ(exitEnd - exitBegin, list == "exit" ? 2 : 0) << c.opcode;
        tOperationList::const_iterator first = list == "exit" ? exitBegin : enterBegin;
        if (!list.empty()) {
            EXPECT_EQ(first[0].oparg, 4);
            EXPECT_EQ(first[1].oparg, 5);
        }
    }
}

} // namespace
