#ifndef ZEPHRIN2D_CDRAWCHUNK_H
#define ZEPHRIN2D_CDRAWCHUNK_H

#include "tMatrix23.h"

#include <boost/shared_ptr.hpp>
#include <boost/weak_ptr.hpp>
#include <stdint.h>
#include <vector>

class CDrawList;
class CGraphicElement;

namespace boost {
/// Reads the pointer a weak reference keeps without taking a strong one
/// (every weak_ptr is a friend of every other): what a moved element uses
/// to reach its lists, which are used from one thread.
struct tDrawListPeek;
template <> class weak_ptr<tDrawListPeek>
{
public:
    template <class T> static T* peek(const weak_ptr<T>& ref) { return ref.expired() ? 0 : ref.px; }
};
} // namespace boost

/// A piece of an element's geometry in the element's local space, in the
/// form the batched renderer consumes. The draw manager hands each
/// (element, chunk) pair to a draw list chosen by the chunk.
class CDrawChunk
{
public:
    CDrawChunk();
    explicit CDrawChunk(unsigned short vertexCount);
    virtual ~CDrawChunk();

    /// A new, empty list of the kind that can hold this chunk.
    virtual boost::shared_ptr<CDrawList> createDrawList() = 0;
    virtual bool canMerge(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> other) const = 0;
    /// A copy of this chunk with other (placed by element) merged in; this chunk is unchanged.
    virtual boost::shared_ptr<CDrawChunk> createMergedChunk(boost::shared_ptr<CGraphicElement> element,
                                                            boost::shared_ptr<CDrawChunk> other) const = 0;
    /// A copy whose vertices are transformed by the element's matrix.
    virtual boost::shared_ptr<CDrawChunk> createTransformedChunk(boost::shared_ptr<CGraphicElement> element) const = 0;
    /// Appends other's geometry, transformed by the element's matrix.
    virtual void merge(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> other) = 0;

    /// Replaces every vertex v by m * v.
    void transformVertices(tMatrix23 m);

    std::vector<tVect3>& getVertices() { return mVertices; }
    const std::vector<tVect3>& getVertices() const { return mVertices; }
    const boost::weak_ptr<CDrawList>& getDrawList() const { return mDrawList; }
    void setDrawList(boost::weak_ptr<CDrawList> list) { mDrawList.swap(list); }
    /// The list getDrawList() refers to while it lives, else null; no
    /// reference is taken, so the list must not be released while the
    /// pointer is used (CDrawList::movesInPlace says when that is sure).
    CDrawList* peekDrawList() const { return boost::weak_ptr<boost::tDrawListPeek>::peek(mDrawList); }
    bool isTranslucent() const { return mTranslucent; }
    /// Whether the chunk draws translucent when this element places it (its
    /// own translucency, or the element's alpha where colours apply).
    virtual bool isTranslucentFor(const CGraphicElement&) const { return mTranslucent; }
    void setTranslucent(bool translucent) { mTranslucent = translucent; }
    /// Where the list that last took or found the chunk keeps its entry: a
    /// hint that spares a moved element's list the lookup. Lists check it
    /// against the pair before they trust it.
    uint16_t getListSlot() const { return mListSlot; }
    /// The GL texture the chunk shows (0: none); draw lists batch by it.
    uint32_t getTextureId() const { return mTextureId; }
    void setListSlot(uint16_t slot) { mListSlot = slot; }
    /// Draw-list entries holding the chunk, kept by the lists: the chunk's
    /// list reference is let go when the last of them goes. Once at
    /// MAX_HOLDS the count stays there and the reference is kept.
    static constexpr unsigned MAX_HOLDS = 127;
    unsigned getHoldCount() const { return mHolds; }
    void setHoldCount(unsigned holds) { mHolds = holds < MAX_HOLDS ? holds : MAX_HOLDS; }

protected:
    std::vector<tVect3> mVertices;
    boost::weak_ptr<CDrawList> mDrawList;
    // The flag, the count and the hint share room the layout leaves anyway.
    bool mTranslucent : 1;
    uint8_t mHolds : 7;
    uint16_t mListSlot;
    uint32_t mTextureId;
};

#endif
