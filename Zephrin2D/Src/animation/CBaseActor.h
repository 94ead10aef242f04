#ifndef ZEPHRIN2D_CBASEACTOR_H
#define ZEPHRIN2D_CBASEACTOR_H

#include "CGraphicElement.h"

#include <glibmm/ustring.h>
#include <stdint.h>

/// The base of every element that changes by itself over time.
///
/// update() is called once per frame with the elapsed time. The application
/// may set three callbacks; they are plain function pointers, so the
/// application finds its own state from the actor pointer. Setting a
/// callback replaces the previous one; null removes it.
class CBaseActor : public CGraphicElement
{
public:
    typedef void (*tUpdateFunction)(CBaseActor* actor, int elapsed);
    typedef void (*tTriggerFunction)(CBaseActor* actor, int value);
    typedef void (*tAnimationDoneFunction)(CBaseActor* actor, Glib::ustring const& label);

    CBaseActor();
    virtual ~CBaseActor();

    virtual void update(int elapsed) = 0;
    /// Called at the start of every update, with the elapsed time.
    virtual void setUpdateFunction(tUpdateFunction function);
    /// Called by trigger operations, with their argument.
    virtual void setTriggerFunction(tTriggerFunction function);
    /// Called when an animation has played its last cel, with its label.
    virtual void setAnimationDoneFunction(tAnimationDoneFunction function);

protected:
    int32_t mReserved; ///< for subclasses; zero after construction
    int32_t mElapsed;  ///< for subclasses; zero after construction
    tUpdateFunction mUpdateFunction;
    tTriggerFunction mTriggerFunction;
    tAnimationDoneFunction mAnimationDoneFunction;
};

#endif
