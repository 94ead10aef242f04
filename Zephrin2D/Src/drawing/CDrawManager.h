#ifndef ZEPHRIN2D_CDRAWMANAGER_H
#define ZEPHRIN2D_CDRAWMANAGER_H

#include <boost/shared_ptr.hpp>
#include <deque>
#include <utility>
#include <vector>

class CDrawChunk;
class CDrawList;
class CGraphicElement;

/// One entry of a frame's translucent pass: a list and its next pending depth.
struct tAlphaDrawList
{
    boost::shared_ptr<CDrawList> list;
    int depth;
};

/// Owns every draw list and draws the frame.
///
/// Elements register their (element, chunk) pairs; each pair goes to the
/// first list of its kind (opaque or translucent) that accepts it, and a new
/// list is made when none does. drawAll() draws the opaque lists, then the
/// translucent ones merged back to front by depth.
///
/// Element colours are off unless a program turns them on, for all elements
/// here or per element (CGraphicElement::setColorEnabled); lists holding
/// only opaque white elements then draw exactly as without them.
class CDrawManager
{
public:
    static CDrawManager* Instance();
    /// The same, inline, for the library's own per-frame callers.
    static CDrawManager* instanceInline() { return mInstance ? mInstance : Instance(); }
    static void Destroy();

    void add(boost::shared_ptr<CGraphicElement> element);
    void remove(boost::shared_ptr<CGraphicElement> element);
    void add(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk);
    void remove(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk);
    /// The same as add and remove of a pair, for callers that hold the
    /// references already (a cel change): no reference count is touched on the way in.
    void addPair(const boost::shared_ptr<CGraphicElement>& element, const boost::shared_ptr<CDrawChunk>& chunk);
    void removePair(const boost::shared_ptr<CGraphicElement>& element, const boost::shared_ptr<CDrawChunk>& chunk);
    void show(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk);
    void hide(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk);

    void addList(boost::shared_ptr<CDrawList> list);
    void removeList(boost::shared_ptr<CDrawList> list);

    /// Turns element colours on or off for every element; the lists take the
    /// change at the next frame. Off until a program turns it on, and again after Destroy().
    void setColorsEnabled(bool enabled);
    static bool colorsEnabled() { return mColorsEnabled; }
    /// The element's colour changed: the list holding the pair takes it at
    /// the next frame, or the pair moves to a list of the other kind when
    /// the element turns translucent or opaque.
    void recolor(const boost::shared_ptr<CGraphicElement>& element, const boost::shared_ptr<CDrawChunk>& chunk);

    void drawAll();
    /// Removes empty lists and makes the others re-create their buffers at exact size.
    void shrinkAll();
    /// Clears every list and empties both queues.
    void deleteAll();

    const std::deque<boost::shared_ptr<CDrawList> >& getOpaqueLists() const { return mOpaqueLists; }
    const std::deque<boost::shared_ptr<CDrawList> >& getTranslucentLists() const { return mTranslucentLists; }

private:
    /// The list that holds the pair, or empty.
    boost::shared_ptr<CDrawList> listOf(const boost::shared_ptr<CGraphicElement>& element,
                                        const boost::shared_ptr<CDrawChunk>& chunk) const;

    CDrawManager();
    ~CDrawManager();
    CDrawManager(const CDrawManager&);
    CDrawManager& operator=(const CDrawManager&);

    std::deque<boost::shared_ptr<CDrawList> > mOpaqueLists;
    std::deque<boost::shared_ptr<CDrawList> > mTranslucentLists;

    static CDrawManager* mInstance;
    static bool mColorsEnabled;
};

#endif
