#include "CActorManager.h"

#include "CBaseActor.h"

#include <BaseUtils.h>

namespace {
const char* const SOURCE = "Zephrin2D/Src/CActorManager";
}

CActorManager::CActorManager() : mWalkDepth(0), mRemovedDuringWalk(false) {}

CActorManager::~CActorManager() {}

bool CActorManager::add(boost::shared_ptr<CBaseActor> actor)
{
    mActors.push_back(actor);
    return true;
}

bool CActorManager::remove(boost::shared_ptr<CBaseActor> actor)
{
    CBaseActor* target = actor.get();
    for (std::list<boost::shared_ptr<CBaseActor> >::iterator it = mActors.begin(); it != mActors.end();) {
        if (it->get() != target) {
            ++it;
        } else if (mWalkDepth > 0) {
            // The walk may stand on this entry: empty it now, erase it when the walk is over.
            it->reset();
            mRemovedDuringWalk = true;
            ++it;
        } else {
            it = mActors.erase(it);
        }
    }
    return true;
}

void CActorManager::removeAll() {}

void CActorManager::update(int elapsed)
{
    ++mWalkDepth;
    for (std::list<boost::shared_ptr<CBaseActor> >::iterator it = mActors.begin(); it != mActors.end(); ++it) {
        if (*it) {
            boost::shared_ptr<CBaseActor> actor = *it; // survives its own removal from a callback
            actor->update(elapsed);
        }
        else if (!mRemovedDuringWalk)
            BaseUtils::Assert(false, SOURCE, __LINE__, "CActorManager::update empty actor reference\n");
    }
    endWalk();
}

void CActorManager::draw()
{
    ++mWalkDepth;
    for (std::list<boost::shared_ptr<CBaseActor> >::iterator it = mActors.begin(); it != mActors.end(); ++it) {
        if (*it) {
            boost::shared_ptr<CBaseActor> actor = *it;
            actor->draw();
        }
        else if (!mRemovedDuringWalk)
            BaseUtils::Assert(false, SOURCE, __LINE__, "CActorManager::draw empty actor reference\n");
    }
    endWalk();
}

void CActorManager::endWalk()
{
    if (--mWalkDepth > 0 || !mRemovedDuringWalk)
        return;
    mRemovedDuringWalk = false;
    for (std::list<boost::shared_ptr<CBaseActor> >::iterator it = mActors.begin(); it != mActors.end();) {
        if (*it)
            ++it;
        else
            it = mActors.erase(it);
    }
}
