#include "TestSupport.h"

#include "CActorManager.h"
#include "CBaseActor.h"

#include <boost/make_shared.hpp>

namespace {

class CountingActor : public CBaseActor
{
public:
    void update(int e) override { ++updates; elapsed += e; if (onUpdate) onUpdate(this); }
    void draw() override { ++draws; }
    void draw(tColor*) override {}
    int updates = 0;
    int draws = 0;
    int elapsed = 0;
    std::function<void(CountingActor*)> onUpdate;
};

typedef boost::shared_ptr<CountingActor> tActor;

TEST(ActorManagerTest, UpdateAndDrawPerEntry)
{
    struct { const char* name; std::vector<int> adds; std::vector<int> removes; bool removeAll; std::vector<int> updates; } cases[] = {
        {"empty", {}, {}, false, {0, 0}},
        {"once each", {0, 1}, {}, false, {1, 1}},
        {"duplicates update twice", {0, 0, 1}, {}, false, {2, 1}},
        {"remove takes every entry", {0, 1, 0}, {0}, false, {0, 1}},
        {"remove of a stranger changes nothing", {0}, {1}, false, {1, 0}},
        {"removeAll keeps everything", {0, 1, 1}, {}, true, {1, 2}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        tActor actors[2] = {boost::make_shared<CountingActor>(), boost::make_shared<CountingActor>()};
        CActorManager manager;
        for (int i : c.adds)
            EXPECT_TRUE(manager.add(actors[i]));
        for (int i : c.removes)
            EXPECT_TRUE(manager.remove(actors[i]));
        if (c.removeAll)
            manager.removeAll();
        manager.update(16);
        manager.draw();
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(actors[i]->updates, c.updates[i]);
            EXPECT_EQ(actors[i]->draws, c.updates[i]);
            EXPECT_EQ(actors[i]->elapsed, 16 * c.updates[i]);
        }
    }
}

TEST(ActorManagerTest, RemovingFromInsideUpdateWaitsForTheWalk)
{
    CActorManager manager;
    tActor a = boost::make_shared<CountingActor>();
    tActor b = boost::make_shared<CountingActor>();
    boost::weak_ptr<CountingActor> weakA = a;
    a->onUpdate = [&manager, &a](CountingActor*) { manager.remove(a); a.reset(); };
    manager.add(a);
    manager.add(b);
    manager.draw(); // a finished walk leaves nothing behind
    manager.update(1);
    EXPECT_TRUE(weakA.expired());
    EXPECT_EQ(b->updates, 1);
    EXPECT_EQ(manager.size(), 1u);
}

// Empty entries are reported when met; removing an empty reference drops them all.
TEST(ActorManagerTest, EmptyEntriesAreReportedAndRemovedTogether)
{
    AssertCapture asserts;
    CActorManager manager;
    tActor a = boost::make_shared<CountingActor>();
    manager.add(tActor());
    manager.add(a);
    manager.add(boost::shared_ptr<CBaseActor>());
    manager.update(1);
    manager.draw();
    EXPECT_EQ(a->updates, 1);
    EXPECT_TRUE(asserts.has("CActorManager::update empty actor reference\n"));
    EXPECT_TRUE(asserts.has("CActorManager::draw empty actor reference\n"));
    EXPECT_TRUE(manager.remove(boost::shared_ptr<CBaseActor>()));
    EXPECT_EQ(manager.size(), 1u);
}

} // namespace
