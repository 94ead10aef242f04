#ifndef ZEPHRIN2D_CBASEACTOR_H
#define ZEPHRIN2D_CBASEACTOR_H

#include "CGraphicElement.h"

#include <glibmm/ustring.h>
#include <functional>
#include <memory>
#include <stdint.h>
#include <type_traits>

class CBaseActor;

/// Whether F is a callable to hold as a closure: not a plain function or a
/// captureless lambda (those convert to Pointer and go to the pointer setter).
template <typename F, typename Pointer, typename Arg>
constexpr bool isActorClosure =
    !std::is_convertible<F, Pointer>::value && std::is_invocable<F&, CBaseActor*, Arg>::value;

/// The base of every element that changes by itself over time.
///
/// update() is called once per frame with the elapsed time. The application
/// may set three callbacks; they are plain function pointers, so the
/// application finds its own state from the actor pointer. Overloads of the
/// setters also take closures (a lambda that captures, a std::function), so
/// the state can travel with the callback:
///
///     actor->setTriggerFunction([&game](CBaseActor*, int value) { game.score += value; });
///
/// Setting a callback, in either form, replaces the previous one; null (or an
/// empty std::function) removes it. A callback may replace or remove itself.
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
    /// Called when an animation has played its last cel. The label passed is
    /// the animation's collation key (Glib::ustring::collate_key()), which
    /// equals the label only in the "C" locale: once the program sets a real
    /// locale (setlocale(LC_ALL, "") under en_US.UTF-8, say) it is a byte
    /// string meant for sorting. Compare labels through the actor instead:
    /// static_cast<CActor2D*>(actor)->getCurrentAnimationLabel() is the
    /// label of the animation that ended.
    virtual void setAnimationDoneFunction(tAnimationDoneFunction function);

    template <typename F, typename = std::enable_if_t<isActorClosure<F, tUpdateFunction, int>>>
    void setUpdateFunction(F function) { storeUpdate(std::function<void(CBaseActor*, int)>(std::move(function))); }
    template <typename F, typename = std::enable_if_t<isActorClosure<F, tTriggerFunction, int>>>
    void setTriggerFunction(F function) { storeTrigger(std::function<void(CBaseActor*, int)>(std::move(function))); }
    template <typename F, typename = std::enable_if_t<isActorClosure<F, tAnimationDoneFunction, Glib::ustring const&>>>
    void setAnimationDoneFunction(F function)
    {
        storeAnimationDone(std::function<void(CBaseActor*, Glib::ustring const&)>(std::move(function)));
    }

protected:
    int32_t mReserved; ///< for subclasses; zero after construction
    int32_t mElapsed;  ///< for subclasses; zero after construction
    tUpdateFunction mUpdateFunction;
    tTriggerFunction mTriggerFunction;
    tAnimationDoneFunction mAnimationDoneFunction;

    /// Call whichever form of the callback is set, if any.
    void callUpdateFunction(int elapsed);
    void callTriggerFunction(int value);
    bool hasAnimationDoneFunction() const { return mAnimationDoneFunction || mAnimationDoneClosure; }
    /// Whether callUpdateFunction has anything to call (checked inline on every update).
    bool hasUpdateFunction() const { return mUpdateFunction || mUpdateClosure; }
    void callAnimationDoneFunction(Glib::ustring const& label);

private:
    typedef std::function<void(CBaseActor*, int)> tIntClosure;
    typedef std::function<void(CBaseActor*, Glib::ustring const&)> tLabelClosure;
    void storeUpdate(tIntClosure closure);
    void storeTrigger(tIntClosure closure);
    void storeAnimationDone(tLabelClosure closure);

    // Shared, so that a closure that replaces itself stays alive until it returns.
    std::shared_ptr<const tIntClosure> mUpdateClosure;
    std::shared_ptr<const tIntClosure> mTriggerClosure;
    std::shared_ptr<const tLabelClosure> mAnimationDoneClosure;
};

#endif
