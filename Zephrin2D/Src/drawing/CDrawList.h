#ifndef ZEPHRIN2D_CDRAWLIST_H
#define ZEPHRIN2D_CDRAWLIST_H

#include <boost/enable_shared_from_this.hpp>
#include <boost/shared_ptr.hpp>
#include <stdint.h>
#include <utility>
#include <vector>

class CDrawChunk;
class CGraphicElement;

/// The interface the draw manager drives: a list owns the GL buffers of all
/// chunks that share one texture and draws them with as few calls as it can.
/// A list is opaque or translucent, fixed by the first chunk it accepts.
class CDrawList : public boost::enable_shared_from_this<CDrawList>
{
public:
    /// Depth returned when a translucent list has nothing more to draw.
    enum { NO_MORE_DEPTHS = 2147483647 };
    /// What recolor did.
    enum tRecolor { RECOLORED, NOT_HELD, MISPLACED };
    typedef std::vector<std::pair<boost::shared_ptr<CGraphicElement>, boost::shared_ptr<CDrawChunk> > > tPairs;

    CDrawList() : mTextureKey(0), mMovesInPlace(false) {}
    virtual ~CDrawList() {}

    /// Accepts the pair, or refuses it (false) so the manager tries another list.
    virtual bool add(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk) = 0;
    virtual bool remove(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk) = 0;
    virtual bool show(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk) = 0;
    virtual bool hide(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk) = 0;
    /// The element moved: its vertices are rebuilt before the next draw.
    virtual void markDirtyVertices(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk) = 0;
    /// The next draw re-creates the buffers at their exact sizes.
    virtual void shrink() = 0;
    /// Drops every entry and deletes the GL buffers.
    virtual void clear() = 0;
    virtual void bufferVertices() = 0;
    /// Draws an opaque list (one call).
    virtual void draw() = 0;
    /// Starts a translucent pass; returns the first pending depth.
    virtual int prepareAlphaDraw() = 0;
    /// Draws the entries at depth z; returns the next pending depth or NO_MORE_DEPTHS.
    virtual int drawZDepth(int z) = 0;
    virtual bool empty() = 0;

    // Operations beyond the ones above come after them, so that the slots
    // of those stay where lists built against the library expect them.

    /// markDirtyVertices, called by the element itself (held by a shared owner, as
    /// every element in a list is); lists that find pairs by address
    /// override it and spare the reference counting of every move.
    virtual void markMoved(CGraphicElement& element, const boost::shared_ptr<CDrawChunk>& chunk);

    /// Whether markMoved and recolorTinted release nothing (no list, element
    /// or chunk): the element then calls them through
    /// CDrawChunk::peekDrawList, without locking the chunk's reference to the list.
    bool movesInPlace() const { return mMovesInPlace; }

    /// Whether the list takes translucent chunks (fixed by its first chunk).
    virtual bool isTranslucent() const = 0;
    /// False when the list surely refuses chunks of this texture: the
    /// manager asks it before add, which costs more to refuse.
    bool mayTake(uint32_t textureId) const { return mTextureKey == 0 || mTextureKey == textureId; }
    /// Whether the list holds this very pair.
    virtual bool contains(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk) const = 0;
    /// The element's colour changed: takes it at the next draw, or answers
    /// MISPLACED when the pair now belongs in a list of the other kind
    /// (opaque or translucent), which the caller then moves it to.
    virtual tRecolor recolor(const boost::shared_ptr<CGraphicElement>&, const boost::shared_ptr<CDrawChunk>&)
    {
        return RECOLORED;
    }
    /// The same, called by the element itself, as markMoved is.
    virtual tRecolor recolorHeld(CGraphicElement& element, const boost::shared_ptr<CDrawChunk>& chunk);
    /// Element colours were turned on or off for all: every entry takes its
    /// colour again; the pairs that belong in a list of the other kind are added to misplaced.
    virtual void recolorAll(tPairs& /*misplaced*/) {}
    /// add and remove for a caller that holds both references for the whole
    /// call (the draw manager on a cel change); lists override them to spare the copies.
    virtual bool addHeld(const boost::shared_ptr<CGraphicElement>& element, const boost::shared_ptr<CDrawChunk>& chunk)
    {
        return add(element, chunk);
    }
    virtual bool removeHeld(const boost::shared_ptr<CGraphicElement>& element,
                            const boost::shared_ptr<CDrawChunk>& chunk)
    {
        return remove(element, chunk);
    }
    /// recolorHeld for a colour change that leaves the element tinted and
    /// translucent, its alpha between 1 and 254 before and after: where the
    /// pair draws and whether it draws at all stay, only the colour is new.
    virtual tRecolor recolorTinted(CGraphicElement& element, const boost::shared_ptr<CDrawChunk>& chunk)
    {
        return recolorHeld(element, chunk);
    }

protected:
    /// The one texture a list holds chunks of, once it knows it (0 until then, or for any).
    uint32_t mTextureKey;
    /// See movesInPlace(); set by lists whose markMoved only flags entries.
    bool mMovesInPlace;
};

#endif
