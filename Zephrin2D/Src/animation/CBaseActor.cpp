#include "CBaseActor.h"

CBaseActor::CBaseActor()
    : mReserved(0), mElapsed(0), mUpdateFunction(0), mTriggerFunction(0), mAnimationDoneFunction(0)
{
}

CBaseActor::~CBaseActor() {}

void CBaseActor::setUpdateFunction(tUpdateFunction function) { mUpdateFunction = function; }
void CBaseActor::setTriggerFunction(tTriggerFunction function) { mTriggerFunction = function; }
void CBaseActor::setAnimationDoneFunction(tAnimationDoneFunction function) { mAnimationDoneFunction = function; }
