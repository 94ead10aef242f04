#ifndef ZEPHRIN2D_CACTOR2D_H
#define ZEPHRIN2D_CACTOR2D_H

#include "CBaseActor.h"
#include "CSpriteCel.h"
#include "tRect2.h"

#include <AudioMPI.h>
#include <boost/shared_ptr.hpp>
#include <glibmm/ustring.h>
#include <map>
#include <string>
#include <vector>

class AvatarCostume;
class CTextureSheet;

/// One cel as an actor holds it. Copies share the chunks and copy the lists.
struct tActor2DFrameStruct
{
    unsigned short duration;
    tOperationList enterOperations;
    tOperationList exitOperations;
    CGraphicElement::tChunkList chunks;
};

/// A named run of consecutive cels.
struct tActor2DAnimationStruct
{
    unsigned int startOffset;
    unsigned int endOffset;    ///< inclusive
    Glib::ustring next;        ///< label of the animation appended after this one, or empty
    std::string nextKey;       ///< collation key of next
    Glib::ustring label;
};

/// A flip-book animation made of cels.
///
/// Each cel is a set of chunks shown for a duration, with operations run
/// when the cel is entered and when it is left. Consecutive cels form named
/// animations, which play one after another in cel order; looping and
/// holding are cel operations or the work of the animation done callback.
///
/// update(elapsed) moves on from cel to cel as their durations run out
/// (a cel is left when its time is reached exactly). A skippable actor may
/// pass several cels in one update, but never past an animation end or a
/// trigger; otherwise it changes cel at most once per update and keeps the
/// rest of the time for later. At the last cel of the whole list the actor
/// stops. When the actor is registered with the draw manager, each cel
/// change swaps the old cel's chunks for the new cel's.
///
/// Callbacks run inside update and may call gotoAndPlay, gotoAndStop or
/// stop; the change is honoured at once.
class CActor2D : public CBaseActor
{
public:
    typedef std::map<std::string, tActor2DAnimationStruct> tAnimationMap;

    /// State flags.
    enum
    {
        PLAYING = 0x01,
        SKIPPABLE = 0x02,
        GOTO = 0x04,      ///< an explicit gotoAndPlay or gotoAndStop ran
        TRIGGERED = 0x10,
        JUMPED = 0x20,    ///< an exit operation went to another cel
        ENDED = 0x40      ///< the current animation just ended
    };

    /// No cels; one animation with the empty label; playing and skippable.
    CActor2D();
    /// A new actor loaded from an actor JSON file or dataset (see loadFile).
    CActor2D(Glib::ustring path, AvatarCostume* costume, CTextureSheet* sheet);
    /// Copies cels (sharing their chunks), animations, position in the
    /// animation, flags and callbacks. The copy is not draw managed.
    CActor2D(const CActor2D& other);
    /// As the copy; a draw-managed actor swaps its shown cel for the new one.
    CActor2D& operator=(const CActor2D& other);
    virtual ~CActor2D();

    virtual void update(int elapsed);
    /// The current cel's chunks, or the element's own when there are no cels.
    virtual tChunkList& getChunks();
    /// Actors draw through the draw manager only: this does nothing.
    virtual void draw(tColor* color);

    /// Appends the cels of an actor file: a path ending in ".dsetBin" is a
    /// dataset, anything else JSON. Image names are relative to the file's directory.
    bool loadFile(Glib::ustring path, AvatarCostume* costume, CTextureSheet* sheet);
    virtual bool loadJson(Glib::ustring path, AvatarCostume* costume, CTextureSheet* sheet);
    virtual bool loadDset(Glib::ustring path, AvatarCostume* costume, CTextureSheet* sheet);

    /// Plays from the first cel of the animation.
    virtual void gotoAndPlay(Glib::ustring const& label);
    virtual void gotoAndPlay(int cel);
    /// Shows the first cel of the animation and stops.
    virtual void gotoAndStop(Glib::ustring const& label);
    virtual void gotoAndStop(int cel);
    virtual void play();
    virtual void stop();
    virtual bool isPlaying() const;
    virtual void setSkippable(bool skippable);
    /// Always (10, 10).
    virtual tVect2 getWidthHeight();

    /// The "Name" of the actor file it was loaded from (empty when none);
    /// a copy takes it too. Kept beside the actor, not in it.
    Glib::ustring getName() const;
    void setName(const Glib::ustring& name);

    /// Starts a new animation at the next cel offset. Labels must be unique.
    void appendAnimationStart(Glib::ustring const& label);
    /// Appends a cel to the last animation.
    void appendFrame(tActor2DFrameStruct& frame);
    /// Appends a cel that starts a new animation.
    void appendFrameStart(tActor2DFrameStruct& frame, Glib::ustring const& label);
    void appendSpriteCel(boost::shared_ptr<CSpriteCel> cel);
    void appendSpriteCelStart(boost::shared_ptr<CSpriteCel> cel, Glib::ustring const& label);
    /// Jumps (1, 2) become exit operations of the cel, 0 is ignored, anything else an enter operation.
    void pushBackOperation(unsigned short cel, int opcode, unsigned short oparg);

    /// Shows cel without running operations or touching flags and time.
    void gotoCel(unsigned int cel);
    /// Shows the first cel of the animation without running operations.
    void gotoAnimation(Glib::ustring const& label);

    unsigned int getAnimationStartOffset(Glib::ustring const& label);
    unsigned int getAnimationEndOffset(Glib::ustring const& label);
    /// Around the current cel's vertices, each transformed; empty (min above max) without vertices.
    tRect2 getBoundingBoxAccurate();
    /// Around the transformed corners of the current cel's local box; larger when rotated.
    tRect2 getBoundingBox();

    unsigned int getCelCount() const { return mCels.size(); }
    /// An empty cel when there is no such cel.
    const tActor2DFrameStruct& getCel(unsigned int cel) const;
    unsigned short getCurrentCelOffset() const { return mCurrentCelOffset; }
    /// Time spent in the current cel so far.
    int getElapsedInCel() const { return mElapsed; }
    unsigned int getStateFlags() const { return mStateFlags; }
    /// Empty when the current animation is unknown.
    const Glib::ustring& getCurrentAnimationLabel() const;
    const tAnimationMap& getAnimationMap() const { return mAnimationMap; }

protected:
    /// Makes current the first animation, in key order, that holds the current cel.
    void findCurrentAnimation();
    /// Runs the exit (true) or enter (false) operations of the current cel.
    void executeOperations(bool exit);
    void addCurrentFrameToDrawManager();
    void removeCurrentFrameFromDrawManager();

private:
    /// executeOperations for a cel that has some.
    __attribute__((noinline)) void runOperations(bool exit);
    bool isCurrentAnimationValid() const { return mCurrentAnimationIterator != mAnimationMap.end(); }
    tAnimationMap::iterator findAnimation(Glib::ustring const& label);
    /// The animation if it exists and holds a cel, else end() after a report.
    tAnimationMap::iterator playableAnimation(Glib::ustring const& label);
    bool celExists(unsigned int cel);
    void showCel(unsigned int cel);
    void showAnimation(tAnimationMap::iterator it);
    bool startAnimation(Glib::ustring const& label);
    bool appendCel(tActor2DFrameStruct frame);
    /// appendFrameStart with a label, else appendFrame, moving frame's lists in.
    void appendLoadedFrame(tActor2DFrameStruct& frame, const char* label);
    static bool frameFromCel(boost::shared_ptr<CSpriteCel> cel, tActor2DFrameStruct& frame);
    static void widen(tRect2& box, const tVect3& p);
    tAnimationMap::iterator repoint(const CActor2D& other, tAnimationMap::const_iterator it);
    boost::shared_ptr<CGraphicElement> managedSelf();
    /// The same, for a cel change: self found once for the removal and the add (empty when unmanaged).
    boost::shared_ptr<CGraphicElement> celChangeSelf();
    void addCurrentFrameToDrawManager(const boost::shared_ptr<CGraphicElement>& self);
    void removeCurrentFrameFromDrawManager(const boost::shared_ptr<CGraphicElement>& self);

    std::vector<tActor2DFrameStruct> mCels;
    tAnimationMap mAnimationMap;
    tAnimationMap::iterator mLastAppendedAnimation;
    tAnimationMap::iterator mCurrentAnimationIterator;
    unsigned short mCurrentCelOffset;
    uint32_t mStateFlags;
    Tadwick::Vell::CAudioMPI mAudio;
    Glib::ustring mDoneLabel;
};

#endif
