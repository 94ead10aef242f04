#include "CBaseActor.h"

namespace {

template <typename Closure>
std::shared_ptr<const Closure> share(Closure closure)
{
    if (!closure)
        return nullptr;
    return std::make_shared<const Closure>(std::move(closure));
}

} // namespace

CBaseActor::CBaseActor()
    : mReserved(0), mElapsed(0), mUpdateFunction(0), mTriggerFunction(0), mAnimationDoneFunction(0)
{
}

CBaseActor::~CBaseActor() {}

void CBaseActor::setUpdateFunction(tUpdateFunction function)
{
    mUpdateFunction = function;
    mUpdateClosure.reset();
}

void CBaseActor::setTriggerFunction(tTriggerFunction function)
{
    mTriggerFunction = function;
    mTriggerClosure.reset();
}

void CBaseActor::setAnimationDoneFunction(tAnimationDoneFunction function)
{
    mAnimationDoneFunction = function;
    mAnimationDoneClosure.reset();
}

void CBaseActor::storeUpdate(tIntClosure closure)
{
    mUpdateFunction = 0;
    mUpdateClosure = share(std::move(closure));
}

void CBaseActor::storeTrigger(tIntClosure closure)
{
    mTriggerFunction = 0;
    mTriggerClosure = share(std::move(closure));
}

void CBaseActor::storeAnimationDone(tLabelClosure closure)
{
    mAnimationDoneFunction = 0;
    mAnimationDoneClosure = share(std::move(closure));
}

void CBaseActor::callUpdateFunction(int elapsed)
{
    if (mUpdateFunction) {
        mUpdateFunction(this, elapsed);
    } else if (mUpdateClosure) {
        const std::shared_ptr<const tIntClosure> running = mUpdateClosure;
        (*running)(this, elapsed);
    }
}

void CBaseActor::callTriggerFunction(int value)
{
    if (mTriggerFunction) {
        mTriggerFunction(this, value);
    } else if (mTriggerClosure) {
        const std::shared_ptr<const tIntClosure> running = mTriggerClosure;
        (*running)(this, value);
    }
}

void CBaseActor::callAnimationDoneFunction(Glib::ustring const& label)
{
    if (mAnimationDoneFunction) {
        mAnimationDoneFunction(this, label);
    } else if (mAnimationDoneClosure) {
        const std::shared_ptr<const tLabelClosure> running = mAnimationDoneClosure;
        (*running)(this, label);
    }
}
