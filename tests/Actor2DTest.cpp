#include "TestSupport.h"
#include "RecordingChunk.h"

#include "CActor2D.h"
#include "CDrawManager.h"

#include <boost/make_shared.hpp>
#include <clocale>
#include <string>
#include <vector>

namespace {

// Callbacks are plain function pointers: what they see and do goes through these.
std::vector<int> gTriggers;
std::vector<std::string> gDone;
std::vector<int> gUpdates;
enum tDoneAction { DONE_NOTHING, DONE_PLAY_FIRST, DONE_STOP_FIRST, DONE_STOP } gDoneAction;
int gTriggerJump;  ///< the cel a trigger sends the actor to; -1: none

void onTrigger(CBaseActor* actor, int value)
{
    gTriggers.push_back(value);
    if (gTriggerJump >= 0)
        static_cast<CActor2D*>(actor)->gotoAndPlay(gTriggerJump);
}
void onUpdate(CBaseActor*, int elapsed) { gUpdates.push_back(elapsed); }

void onDone(CBaseActor* actor, Glib::ustring const& label)
{
    gDone.push_back(label.raw());
    CActor2D* a = static_cast<CActor2D*>(actor);
    switch (gDoneAction) {
    case DONE_PLAY_FIRST: a->gotoAndPlay(0); break;
    case DONE_STOP_FIRST: a->gotoAndStop(0); break;
    case DONE_STOP: a->stop(); break;
    case DONE_NOTHING: break;
    }
}

std::string key(const char* label) { return Glib::ustring(label).collate_key(); }

struct tCel
{
    unsigned short duration;
    const char* label; ///< starts an animation; null continues the last one
    std::vector<operation> enter;
    std::vector<operation> exit;
};

class Actor2DTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        CDrawManager::Destroy();
        gTriggers.clear();
        gDone.clear();
        gUpdates.clear();
        gDoneAction = DONE_NOTHING;
        gTriggerJump = -1;
    }
    void TearDown() override { CDrawManager::Destroy(); }

    /// An actor with one chunk of its own per cel, registered with the draw manager.
    boost::shared_ptr<CActor2D> build(const std::vector<tCel>& cels)
    {
        boost::shared_ptr<CActor2D> actor = boost::make_shared<CActor2D>();
        for (size_t i = 0; i < cels.size(); ++i) {
            tActor2DFrameStruct frame;
            frame.duration = cels[i].duration;
            frame.enterOperations = cels[i].enter;
            frame.exitOperations = cels[i].exit;
            frame.chunks.push_back(boost::make_shared<RecordingChunk>());
            if (cels[i].label)
                actor->appendFrameStart(frame, cels[i].label);
            else
                actor->appendFrame(frame);
        }
        actor->setTriggerFunction(onTrigger);
        actor->setAnimationDoneFunction(onDone);
        CDrawManager::Instance()->add(actor);
        return actor;
    }

    static std::vector<CDrawChunk*> shown(const boost::shared_ptr<CActor2D>& actor)
    {
        return std::vector<CDrawChunk*>(1, actor->getCel(actor->getCurrentCelOffset()).chunks[0].get());
    }
};

const operation TRIGGER7 = {operation::TRIGGER, 7};
const operation STOP = {operation::STOP, 0};
const operation AUDIO = {operation::PLAY_AUDIO, 3};
const operation PLAY0 = {operation::GOTO_AND_PLAY, 0};
const operation HOLD1 = {operation::GOTO_AND_STOP, 1};
const operation JUMP3 = {operation::GOTO_AND_PLAY, 3};
const operation TRIGGER9 = {operation::TRIGGER, 9};

enum tAction { UPDATE, GOTO_AND_PLAY, GOTO_AND_STOP };

struct tStep
{
    tAction action;
    int arg;
    unsigned short cel;
    unsigned int flags;
    int elapsed;
};

struct tScript
{
    const char* name;
    bool skippable;
    tDoneAction onDone;
    std::vector<tCel> cels;
    std::vector<tStep> steps;
    std::vector<int> triggers;
    std::vector<const char*> done;
    int triggerJump = -1;
};

TEST_F(Actor2DTest, Timelines)
{
    const std::vector<tCel> three = {{100, "a", {}, {}}, {100, 0, {}, {}}, {100, 0, {}, {}}};
    const std::vector<tCel> twoAnimations = {{100, "a", {}, {}}, {100, "b", {}, {}}, {100, 0, {}, {}}};
    const tScript scripts[] = {
        {"one cel per update when not skippable", false, DONE_NOTHING, three,
         {{UPDATE, 250, 1, 0x01, 150}, {UPDATE, 0, 2, 0x01, 50}, {UPDATE, 49, 2, 0x01, 99},
          {UPDATE, 1, 2, 0x00, 0}, {UPDATE, 500, 2, 0x00, 0}},
         {}, {"a"}},
        {"skippable passes several cels", true, DONE_NOTHING, three,
         {{UPDATE, 250, 2, 0x03, 50}, {UPDATE, 50, 2, 0x02, 0}}, {}, {"a"}},
        {"a cel is left when its time is reached exactly", true, DONE_NOTHING, three,
         {{UPDATE, 99, 0, 0x03, 99}, {UPDATE, 1, 1, 0x03, 0}}, {}, {}},
        {"skipping stops at an animation end and follows next", true, DONE_NOTHING, twoAnimations,
         {{UPDATE, 250, 1, 0x03, 150}, {UPDATE, 0, 2, 0x03, 50}}, {}, {"a"}},
        {"skipping stops at a trigger", true, DONE_NOTHING,
         {{100, "a", {}, {}}, {100, 0, {TRIGGER7}, {}}, {100, 0, {}, {}}},
         {{UPDATE, 250, 1, 0x13, 150}, {UPDATE, 0, 2, 0x03, 50}}, {7}, {}},
        {"stop operation halts on the cel it enters", true, DONE_NOTHING,
         {{100, "a", {}, {}}, {100, 0, {STOP}, {}}, {100, 0, {}, {}}},
         {{UPDATE, 250, 1, 0x02, 150}, {UPDATE, 1000, 1, 0x02, 150}}, {}, {}},
        {"play audio changes nothing", true, DONE_NOTHING,
         {{100, "a", {}, {}}, {100, 0, {AUDIO}, {}}, {100, 0, {}, {}}}, {{UPDATE, 250, 2, 0x03, 50}}, {}, {}},
        {"exit jump loops the animation", true, DONE_NOTHING,
         {{100, "loop", {}, {}}, {100, 0, {}, {PLAY0}}, {100, "after", {}, {}}},
         {{UPDATE, 150, 1, 0x03, 50}, {UPDATE, 50, 0, 0x03, 0}, {UPDATE, 350, 0, 0x03, 150}}, {}, {"loop", "loop"}},
        {"exit jump runs the enter operations of its target", false, DONE_NOTHING,
         {{100, "a", {TRIGGER7}, {}}, {100, 0, {}, {PLAY0}}},
         {{UPDATE, 100, 1, 0x01, 0}, {UPDATE, 100, 0, 0x11, 0}}, {7}, {"a"}},
        {"a jump does not switch the operation list being run", true, DONE_NOTHING,
         {{100, "a", {}, {}}, {100, 0, {}, {JUMP3, TRIGGER9}}, {100, 0, {}, {}}, {100, 0, {}, {PLAY0}}},
         {{UPDATE, 100, 1, 0x03, 0}, {UPDATE, 100, 3, 0x13, 0}}, {9}, {}},
        {"hold jumps and stops", true, DONE_NOTHING, {{100, "hold", {}, {}}, {100, 0, {}, {HOLD1}}},
         {{UPDATE, 250, 1, 0x62, 50}, {UPDATE, 250, 1, 0x22, 50}}, {}, {"hold"}},
        {"the last cel of the list stops", false, DONE_NOTHING, {{100, "a", {}, {}}, {100, 0, {}, {}}},
         {{UPDATE, 100, 1, 0x01, 0}, {UPDATE, 100, 1, 0x00, 0}, {UPDATE, 100, 1, 0x00, 0}}, {}, {"a"}},
        {"gotoAndStop then update advances nothing", true, DONE_NOTHING, three,
         {{GOTO_AND_STOP, 1, 1, 0x06, 0}, {UPDATE, 500, 1, 0x06, 0}, {GOTO_AND_PLAY, 0, 0, 0x07, 0},
          {UPDATE, 100, 1, 0x03, 0}}, {}, {}},
        {"done callback restarting keeps playing", true, DONE_PLAY_FIRST, twoAnimations,
         {{UPDATE, 100, 0, 0x07, 0}, {UPDATE, 250, 0, 0x07, 0}}, {}, {"a", "a"}},
        {"done callback stopping returns at once and keeps ended", true, DONE_STOP_FIRST, twoAnimations,
         {{UPDATE, 100, 0, 0x46, 0}, {UPDATE, 100, 0, 0x06, 0}}, {}, {"a"}},
        {"done callback stop halts before the advance", true, DONE_STOP, twoAnimations,
         {{UPDATE, 120, 0, 0x42, 20}, {UPDATE, 100, 0, 0x02, 20}}, {}, {"a"}},
        {"a trigger callback may jump: only the cel jumped to stays registered", true, DONE_NOTHING,
         {{100, "a", {}, {}}, {100, 0, {TRIGGER7}, {}}, {100, 0, {}, {}}, {100, 0, {}, {}}},
         {{UPDATE, 100, 3, 0x17, 0}}, {7}, {}, 3},
    };
    for (const tScript& s : scripts) {
        SCOPED_TRACE(s.name);
        SetUp();
        gDoneAction = s.onDone;
        gTriggerJump = s.triggerJump;
        boost::shared_ptr<CActor2D> actor = build(s.cels);
        actor->setSkippable(s.skippable);
        for (size_t i = 0; i < s.steps.size(); ++i) {
            const tStep& step = s.steps[i];
            SCOPED_TRACE(i);
            if (step.action == UPDATE)
                actor->update(step.arg);
            else if (step.action == GOTO_AND_PLAY)
                actor->gotoAndPlay(step.arg);
            else
                actor->gotoAndStop(step.arg);
            EXPECT_EQ(actor->getCurrentCelOffset(), step.cel);
            EXPECT_EQ(actor->getStateFlags(), step.flags);
            EXPECT_EQ(actor->getElapsedInCel(), step.elapsed);
            EXPECT_EQ(registeredChunks(actor.get()), shown(actor));
        }
        EXPECT_EQ(gTriggers, s.triggers);
        std::vector<std::string> done;
        for (const char* label : s.done)
            done.push_back(key(label));
        EXPECT_EQ(gDone, done);
    }
}

TEST_F(Actor2DTest, CurrentAnimationFollowsNextAtItsEnd)
{
    boost::shared_ptr<CActor2D> actor =
        build({{100, "walk", {}, {}}, {100, 0, {}, {}}, {100, "jump", {}, {}}, {100, "sit", {}, {}}});
    actor->setSkippable(false);
    const char* expected[] = {"walk", "walk", "jump", "sit", "sit"};
    for (const char* label : expected) {
        EXPECT_EQ(actor->getCurrentAnimationLabel(), label);
        actor->update(100);
    }
    actor->gotoAndStop("jump");
    EXPECT_EQ(actor->getCurrentCelOffset(), 2u);
    EXPECT_EQ(registeredChunks(actor.get()), shown(actor));
}

// The pointer setters take plain functions and captureless lambdas; closures go to their overloads.
// The update function runs on every call, stopped or without cels.
TEST_F(Actor2DTest, CallbacksTakeFunctionsLambdasAndClosures)
{
    boost::shared_ptr<CActor2D> actor = build({{10, "walk", {}, {TRIGGER7}}, {10, "jump", {}, {}}});
    std::vector<std::string> seen;
    auto note = [&seen](const std::string& s) { seen.push_back(s); };
    std::function<void(CBaseActor*, int)> record = [&](CBaseActor*, int v) { note("function " + std::to_string(v)); };
    actor->setUpdateFunction(onUpdate);
    actor->update(0);
    actor->setUpdateFunction([](CBaseActor*, int v) { gUpdates.push_back(v + 100); });
    actor->update(1);
    actor->setUpdateFunction(record);
    actor->update(2);
    actor->setUpdateFunction(nullptr);
    actor->update(3);
    actor->setUpdateFunction([&](CBaseActor* a, int) { note("once"); a->setUpdateFunction(nullptr); });
    actor->setTriggerFunction([&](CBaseActor*, int v) { note("trigger " + std::to_string(v)); });
    actor->setAnimationDoneFunction([&](CBaseActor* a, Glib::ustring const&) {
        note("done " + static_cast<CActor2D*>(a)->getCurrentAnimationLabel().raw());
    });
    actor->update(4);
    actor->update(0);
    EXPECT_EQ(seen, (std::vector<std::string>{"function 2", "once", "trigger 7", "done walk"}));
    actor->stop();
    boost::shared_ptr<CActor2D> empty = boost::make_shared<CActor2D>();
    for (CActor2D* a : {actor.get(), empty.get()}) {
        a->setUpdateFunction(onUpdate);
        a->update(7);
    }
    EXPECT_EQ(gUpdates, (std::vector<int>{0, 101, 7, 7}));
    EXPECT_EQ(actor->getElapsedInCel(), 0);
}

// Under a real locale the done callback's label is a sorting key; the actor still knows the label.
TEST_F(Actor2DTest, LabelsSurviveARealLocale)
{
    const std::string previous = setlocale(LC_ALL, nullptr);
    if (!setlocale(LC_ALL, "en_US.UTF-8"))
        GTEST_SKIP() << "no en_US.UTF-8 locale";
    boost::shared_ptr<CActor2D> actor = build({{10, "walk", {}, {}}, {10, "look", {}, {}}});
    std::string key, label;
    actor->setAnimationDoneFunction([&](CBaseActor* a, Glib::ustring const& k) {
        CActor2D* actor2D = static_cast<CActor2D*>(a);
        key = k.raw();
        label = actor2D->getCurrentAnimationLabel().raw();
        actor2D->gotoAndPlay(actor2D->getCurrentAnimationLabel());
    });
    actor->update(10);
    setlocale(LC_ALL, previous.c_str());
    EXPECT_NE(key, "walk");
    EXPECT_EQ(label, "walk");
    EXPECT_EQ(actor->getCurrentCelOffset(), 0) << "the label leads back to the animation";
}

TEST_F(Actor2DTest, BuildingOffsetsAndOperations)
{
    // Frames appended after a bare animation start belong to it; the first animation drops the placeholder.
    CActor2D actor;
    tActor2DFrameStruct frame = {10, {}, {}, {}};
    actor.appendAnimationStart("a");
    actor.appendFrame(frame);
    actor.appendFrame(frame);
    actor.appendAnimationStart("b");
    actor.appendFrame(frame);
    actor.appendFrameStart(frame, "c");
    actor.appendFrame(frame);
    EXPECT_EQ(actor.getAnimationMap().count(key("")), 0u);
    struct { const char* label; unsigned int start, end; } expected[] = {{"a", 0, 1}, {"b", 2, 2}, {"c", 3, 4}};
    for (const auto& e : expected) {
        EXPECT_EQ(actor.getAnimationStartOffset(e.label), e.start) << e.label;
        EXPECT_EQ(actor.getAnimationEndOffset(e.label), e.end) << e.label;
    }
    EXPECT_EQ(actor.getAnimationMap().find(key("b"))->second.next, "c");
    EXPECT_EQ(actor.getCurrentAnimationLabel(), "a");

    // An operation goes to the exit or the enter list by its code.
    for (int opcode : {1, 2, 3, 4, 5, 9, -1, 0})
        actor.pushBackOperation(0, opcode, 42);
    std::vector<int> enter, exit;
    for (const operation& op : actor.getCel(0).enterOperations)
        enter.push_back(op.opcode);
    for (const operation& op : actor.getCel(0).exitOperations)
        exit.push_back(op.opcode);
    EXPECT_EQ(exit, (std::vector<int>{1, 2}));
    EXPECT_EQ(enter, (std::vector<int>{3, 4, 5, 9, -1}));
}

TEST_F(Actor2DTest, BadInputIsReportedAndChangesNothing)
{
    boost::shared_ptr<CActor2D> actor = build({{100, "a", {}, {}}, {100, 0, {}, {}}});
    actor->appendAnimationStart("empty");
    actor->update(150);
    AssertCapture asserts;
    const std::vector<CDrawChunk*> before = registeredChunks(actor.get());
    actor->gotoCel(2);
    actor->gotoAndPlay(-1);
    actor->gotoAndStop(7);
    actor->gotoAndPlay("nothing");
    actor->gotoAnimation("nothing");
    actor->gotoAndStop("empty");
    actor->pushBackOperation(9, 1, 0);
    EXPECT_EQ(actor->getAnimationStartOffset("nothing"), 0u);
    EXPECT_EQ(actor->getAnimationEndOffset("nothing"), 0u);
    EXPECT_EQ(actor->getCurrentCelOffset(), 1);
    EXPECT_EQ(actor->getCurrentAnimationLabel(), "a");
    EXPECT_EQ(actor->getStateFlags(), 0x03u);
    EXPECT_EQ(actor->getElapsedInCel(), 50);
    EXPECT_EQ(registeredChunks(actor.get()), before);
    const char* messages[] = {
        "CActor2D::gotoCel celOffset 2 out of bounds\n", "CActor2D::gotoCel celOffset -1 out of bounds\n",
        "CActor2D::gotoCel celOffset 7 out of bounds\n", "CActor2D::gotoAnimation anim nothing not found\n",
        "CActor2D::getAnimationStartOffset animation nothing not found\n",
        "CActor2D::getAnimationEndOffset animation nothing not found\n",
        "CActor2D::gotoAnimation currentSpriteCellOffset 2 out of bounds\n",
    };
    for (const char* m : messages)
        EXPECT_TRUE(asserts.has(m)) << m;
    for (const auto& e : asserts.entries())
        EXPECT_EQ(e.file, "Zephrin2D/Src/CActor2D");

    asserts.clear();
    tActor2DFrameStruct frame = {1, {}, {}, {}};
    actor->appendFrameStart(frame, "a");
    EXPECT_TRUE(asserts.has("CActor2D::pushBackSpriteCelStart duplicate animation name a\n"));
}

TEST_F(Actor2DTest, CelsWithoutDurationThatLoopDoNotHang)
{
    boost::shared_ptr<CActor2D> actor = build({{0, "a", {}, {}}, {0, 0, {}, {PLAY0}}, {100, 0, {}, {}}});
    AssertCapture asserts;
    actor->update(10);
    EXPECT_EQ(asserts.entries().size(), 1u);
    actor->gotoAndPlay(0);
    actor->setSkippable(false);
    actor->update(0);
    EXPECT_EQ(actor->getCurrentCelOffset(), 1);
}

TEST_F(Actor2DTest, CopyHasItsOwnAnimations)
{
    boost::shared_ptr<CActor2D> source = build({{100, "a", {}, {}}, {100, "b", {}, {}}, {100, 0, {}, {}}});
    source->update(100);
    source->update(30);
    boost::shared_ptr<CActor2D> copy = boost::make_shared<CActor2D>(*source);
    EXPECT_FALSE(copy->isDrawManaged());
    EXPECT_EQ(copy->getCurrentCelOffset(), 1);
    EXPECT_EQ(copy->getElapsedInCel(), 30);
    EXPECT_EQ(copy->getCurrentAnimationLabel(), "b");
    EXPECT_EQ(copy->getCel(2).chunks[0], source->getCel(2).chunks[0]) << "cels share their chunks";
    // Assigning to a registered actor swaps the cel it shows.
    boost::shared_ptr<CActor2D> assigned = build({{100, "x", {}, {}}});
    *assigned = *copy;
    EXPECT_TRUE(assigned->isDrawManaged());
    EXPECT_EQ(registeredChunks(assigned.get()), shown(assigned));
    EXPECT_EQ(assigned->getCurrentAnimationLabel(), "b");
    EXPECT_EQ(assigned->getCelCount(), 3u);
    CActor2D plain;
    plain = *copy;
    EXPECT_EQ(plain.getCelCount(), 3u) << "an actor without cels takes them";

    // Appending to the copy goes through its own last animation, not the source's.
    tActor2DFrameStruct frame = {100, {}, {}, {}};
    copy->appendFrame(frame);
    EXPECT_EQ(copy->getAnimationEndOffset("b"), 3u);
    EXPECT_EQ(source->getAnimationEndOffset("b"), 2u);
    source.reset();
    copy->update(170);
    EXPECT_EQ(copy->getCurrentCelOffset(), 3);
    EXPECT_EQ(copy->getCurrentAnimationLabel(), "b");
}

TEST_F(Actor2DTest, BoundingBoxes)
{
    boost::shared_ptr<CActor2D> actor = boost::make_shared<CActor2D>();
    EXPECT_TRUE(actor->getBoundingBoxAccurate().left > actor->getBoundingBoxAccurate().right);
    boost::shared_ptr<RecordingChunk> chunk = boost::make_shared<RecordingChunk>(-1, 4);
    const tVect3 corners[] = {{tFixed(0), tFixed(0), ZERO_X}, {tFixed(10), tFixed(0), ZERO_X},
                              {tFixed(0), tFixed(20), ZERO_X}, {tFixed(10), tFixed(20), ZERO_X}};
    std::copy(corners, corners + 4, chunk->getVertices().begin());
    tActor2DFrameStruct frame = {100, {}, {}, {chunk}};
    actor->appendFrame(frame);
    actor->moveTo(tVect2{tFixed(5), tFixed(7)});
    tRect2 fast = actor->getBoundingBox();
    tRect2 exact = actor->getBoundingBoxAccurate();
    for (const tRect2& r : {fast, exact})
        EXPECT_EQ((std::vector<tFixed>{r.left, r.bottom, r.right, r.top}),
                  (std::vector<tFixed>{tFixed(5), tFixed(7), tFixed(15), tFixed(27)}));
    // A diamond rotated by 45 degrees: its own box is tight, the box of its rotated box is not.
    const tVect3 diamond[] = {{tFixed(-10), ZERO_X, ZERO_X}, {tFixed(10), ZERO_X, ZERO_X},
                              {ZERO_X, tFixed(-10), ZERO_X}, {ZERO_X, tFixed(10), ZERO_X}};
    std::copy(diamond, diamond + 4, chunk->getVertices().begin());
    actor->moveTo(tVect2{ZERO_X, ZERO_X});
    actor->rotateTo(tFixed(45));
    fast = actor->getBoundingBox();
    exact = actor->getBoundingBoxAccurate();
    EXPECT_LT(exact.right.raw(), tFixed(8).raw());
    EXPECT_GT(fast.right.raw(), tFixed(13).raw());
    EXPECT_EQ(actor->getWidthHeight(), (tVect2{tFixed(10), tFixed(10)}));
}

} // namespace
