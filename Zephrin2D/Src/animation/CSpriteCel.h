#ifndef ZEPHRIN2D_CSPRITECEL_H
#define ZEPHRIN2D_CSPRITECEL_H

#include "CSprite.h"

#include <vector>

/// One cel operation: what an actor does when it enters or leaves a cel.
struct operation
{
    enum
    {
        GOTO_AND_PLAY = 1, ///< exit: jump to cel oparg and play
        GOTO_AND_STOP = 2, ///< exit: jump to cel oparg and stop
        TRIGGER = 3,       ///< enter: call the actor's trigger function with oparg
        STOP = 4,          ///< enter: stop on this cel
        PLAY_AUDIO = 5     ///< enter: kept for the content, ignored by the actor
    };

    int opcode;
    unsigned short oparg;
};

typedef std::vector<operation> tOperationList;

/// A sprite that is one cel of an animation: a picture shown for a duration,
/// with operations run when an actor enters the cel and when it leaves it.
///
/// Operations are sorted by code as they are added: jumps (1, 2) are exit
/// operations, trigger, stop and audio (3, 4, 5) enter operations; any other
/// code is dropped.
class CSpriteCel : public CSprite
{
public:
    CSpriteCel();
    virtual ~CSpriteCel();

    void pushBackOperation(operation op);
    void pushBackOperation(int opcode, unsigned short oparg);

    /// The enter operations, in the order they were added.
    void getEnterOpcodeIterators(tOperationList::const_iterator& begin, tOperationList::const_iterator& end) const;
    /// The exit operations, in the order they were added.
    void getExitOpcodeIterators(tOperationList::const_iterator& begin, tOperationList::const_iterator& end) const;

    /// How long the cel shows, in the unit of the actor's update time.
    unsigned short duration;

private:
    tOperationList mEnterOperations;
    tOperationList mExitOperations;
};

#endif
