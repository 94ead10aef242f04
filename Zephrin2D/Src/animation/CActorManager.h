#ifndef ZEPHRIN2D_CACTORMANAGER_H
#define ZEPHRIN2D_CACTORMANAGER_H

#include <boost/shared_ptr.hpp>
#include <list>

class CBaseActor;

/// Holds actors and forwards the per-frame update and draw to each, in the
/// order they were added.
///
/// The same actor may be added more than once; it is then updated and drawn
/// once per entry. Neither update nor draw looks at visibility: each actor
/// decides for itself. An actor removed from inside an update or draw is
/// taken out of the list when the walk is over.
class CActorManager
{
public:
    CActorManager();
    ~CActorManager();

    /// Appends the actor. Always true.
    bool add(boost::shared_ptr<CBaseActor> actor);
    /// Removes every entry holding this actor object. Always true.
    bool remove(boost::shared_ptr<CBaseActor> actor);
    /// Does nothing, on purpose: remove actors one by one, or destroy the manager.
    void removeAll();

    void update(int elapsed);
    void draw();

    size_t size() const { return mActors.size(); }

private:
    CActorManager(const CActorManager&);
    CActorManager& operator=(const CActorManager&);

    void endWalk();

    std::list<boost::shared_ptr<CBaseActor> > mActors;
    int mWalkDepth;
    bool mRemovedDuringWalk;
};

#endif
