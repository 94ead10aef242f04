#include "CDrawManager.h"

#include "CDrawChunk.h"
#include "CDrawList.h"
#include "CGraphicElement.h"

#include <GLES/gl.h>
#include <alloca.h>
#include <algorithm>
#include <new>

namespace {

typedef std::deque<boost::shared_ptr<CDrawList> > tListQueue;

/// Heap order: the smallest pending depth on top; at equal depths the list created first.
bool SortAlphaDrawLists(const tAlphaDrawList* a, const tAlphaDrawList* b)
{
    return a->depth != b->depth ? a->depth > b->depth : a > b;
}

bool CheckEmpty(const boost::shared_ptr<CDrawList>& list) { return list->empty(); }

boost::shared_ptr<CDrawList> holderOf(const tListQueue& queue, const boost::shared_ptr<CGraphicElement>& element,
                                      const boost::shared_ptr<CDrawChunk>& chunk)
{
    for (size_t i = 0; i < queue.size(); ++i)
        if (queue[i]->contains(element, chunk))
            return queue[i];
    return boost::shared_ptr<CDrawList>();
}

} // namespace

CDrawManager* CDrawManager::mInstance = 0;
bool CDrawManager::mColorsEnabled = false;

CDrawManager::CDrawManager() {}
CDrawManager::~CDrawManager() {}

CDrawManager* CDrawManager::Instance()
{
    if (!mInstance)
        mInstance = new CDrawManager();
    return mInstance;
}

void CDrawManager::Destroy()
{
    delete mInstance;
    mInstance = 0;
    mColorsEnabled = false;
}

void CDrawManager::add(boost::shared_ptr<CGraphicElement> element)
{
    if (!element)
        return;
    CGraphicElement::tChunkList& chunks = element->getChunks();
    for (size_t i = 0; i < chunks.size(); ++i)
        add(element, chunks[i]);
    element->setDrawManaged(true);
}

void CDrawManager::remove(boost::shared_ptr<CGraphicElement> element)
{
    if (!element)
        return;
    CGraphicElement::tChunkList& chunks = element->getChunks();
    for (size_t i = 0; i < chunks.size(); ++i)
        remove(element, chunks[i]);
    element->setDrawManaged(false);
}

void CDrawManager::add(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk)
{
    addPair(element, chunk);
}

void CDrawManager::addPair(const boost::shared_ptr<CGraphicElement>& element,
                           const boost::shared_ptr<CDrawChunk>& chunk)
{
    if (!element || !chunk)
        return;
    element->setDrawManaged(true);
    // A pair already held is not added twice.
    boost::shared_ptr<CDrawList> holder = chunk->getDrawList().lock();
    if (holder && holder->contains(element, chunk))
        return;
    tListQueue& queue = chunk->isTranslucentFor(*element) ? mTranslucentLists : mOpaqueLists;
    const uint32_t textureId = chunk->getTextureId();
    for (tListQueue::const_iterator it = queue.begin(); it != queue.end(); ++it)
        if ((*it)->mayTake(textureId) && (*it)->addHeld(element, chunk))
            return;
    boost::shared_ptr<CDrawList> list = chunk->createDrawList();
    if (list && list->addHeld(element, chunk))
        queue.push_back(list);
}

boost::shared_ptr<CDrawList> CDrawManager::listOf(const boost::shared_ptr<CGraphicElement>& element,
                                                  const boost::shared_ptr<CDrawChunk>& chunk) const
{
    if (!element || !chunk)
        return boost::shared_ptr<CDrawList>();
    boost::shared_ptr<CDrawList> list = chunk->getDrawList().lock();
    if (!list)
        return list;
    if (list->contains(element, chunk))
        return list;
    // A chunk shared by several elements names only the last list that took it.
    boost::shared_ptr<CDrawList> holder = holderOf(mOpaqueLists, element, chunk);
    return holder ? holder : holderOf(mTranslucentLists, element, chunk);
}

void CDrawManager::setColorsEnabled(bool enabled)
{
    if (enabled == mColorsEnabled)
        return;
    mColorsEnabled = enabled;
    CDrawList::tPairs misplaced;
    tListQueue* queues[2] = {&mOpaqueLists, &mTranslucentLists};
    for (int q = 0; q < 2; ++q)
        for (size_t i = 0; i < queues[q]->size(); ++i)
            (*queues[q])[i]->recolorAll(misplaced);
    for (size_t i = 0; i < misplaced.size(); ++i) {
        remove(misplaced[i].first, misplaced[i].second);
        add(misplaced[i].first, misplaced[i].second);
    }
}

void CDrawManager::recolor(const boost::shared_ptr<CGraphicElement>& element,
                           const boost::shared_ptr<CDrawChunk>& chunk)
{
    if (!element || !chunk)
        return;
    boost::shared_ptr<CDrawList> list = chunk->getDrawList().lock();
    CDrawList::tRecolor result = list ? list->recolor(element, chunk) : CDrawList::NOT_HELD;
    if (result == CDrawList::NOT_HELD) {
        list = listOf(element, chunk);
        if (!list)
            return;
        result = list->recolor(element, chunk);
    }
    if (result == CDrawList::MISPLACED) {
        list->remove(element, chunk);
        add(element, chunk);
    }
}

void CDrawManager::remove(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk)
{
    removePair(element, chunk);
}

void CDrawManager::removePair(const boost::shared_ptr<CGraphicElement>& element,
                              const boost::shared_ptr<CDrawChunk>& chunk)
{
    if (!element || !chunk)
        return;
    // The list the chunk names refuses a pair it does not hold; only then is there a search.
    boost::shared_ptr<CDrawList> list = chunk->getDrawList().lock();
    if (list && list->removeHeld(element, chunk))
        return;
    list = listOf(element, chunk);
    if (list)
        list->removeHeld(element, chunk);
}

void CDrawManager::show(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk)
{
    boost::shared_ptr<CDrawList> list = listOf(element, chunk);
    if (list)
        list->show(element, chunk);
}

void CDrawManager::hide(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk)
{
    boost::shared_ptr<CDrawList> list = listOf(element, chunk);
    if (list)
        list->hide(element, chunk);
}

void CDrawManager::addList(boost::shared_ptr<CDrawList> list)
{
    if (!list)
        return;
    (list->isTranslucent() ? mTranslucentLists : mOpaqueLists).push_back(list);
}

void CDrawManager::removeList(boost::shared_ptr<CDrawList> list)
{
    tListQueue* queues[2] = {&mOpaqueLists, &mTranslucentLists};
    for (int q = 0; q < 2; ++q)
        queues[q]->erase(std::remove(queues[q]->begin(), queues[q]->end(), list), queues[q]->end());
}

void CDrawManager::drawAll()
{
    glDisable(GL_BLEND);
    for (size_t i = 0; i < mOpaqueLists.size(); ++i)
        mOpaqueLists[i]->draw();
    glEnable(GL_BLEND);

    const size_t count = mTranslucentLists.size();
    if (count == 0)
        return;
    // The frame's records live on the stack.
    tAlphaDrawList* records = static_cast<tAlphaDrawList*>(alloca(count * sizeof(tAlphaDrawList)));
    tAlphaDrawList** heap = static_cast<tAlphaDrawList**>(alloca(count * sizeof(tAlphaDrawList*)));
    size_t size = 0;
    for (size_t i = 0; i < count; ++i) {
        tAlphaDrawList* record = new (&records[i]) tAlphaDrawList();
        record->list = mTranslucentLists[i];
        record->depth = record->list->prepareAlphaDraw();
        if (record->depth != CDrawList::NO_MORE_DEPTHS)
            heap[size++] = record;
    }
    std::make_heap(heap, heap + size, SortAlphaDrawLists);
    while (size > 0) {
        std::pop_heap(heap, heap + size, SortAlphaDrawLists);
        tAlphaDrawList* record = heap[--size];
        const int next = size > 0 ? heap[0]->depth : static_cast<int>(CDrawList::NO_MORE_DEPTHS);
        int depth = record->depth;
        do
            depth = record->list->drawZDepth(depth);
        while (depth != CDrawList::NO_MORE_DEPTHS && depth <= next);
        if (depth != CDrawList::NO_MORE_DEPTHS) {
            record->depth = depth;
            heap[size++] = record;
            std::push_heap(heap, heap + size, SortAlphaDrawLists);
        }
    }
    for (size_t i = 0; i < count; ++i)
        records[i].~tAlphaDrawList();
}

void CDrawManager::shrinkAll()
{
    tListQueue* queues[2] = {&mOpaqueLists, &mTranslucentLists};
    for (int q = 0; q < 2; ++q) {
        tListQueue& queue = *queues[q];
        queue.erase(std::remove_if(queue.begin(), queue.end(), CheckEmpty), queue.end());
        for (size_t i = 0; i < queue.size(); ++i)
            queue[i]->shrink();
    }
}

void CDrawManager::deleteAll()
{
    tListQueue* queues[2] = {&mOpaqueLists, &mTranslucentLists};
    for (int q = 0; q < 2; ++q) {
        for (size_t i = 0; i < queues[q]->size(); ++i)
            (*queues[q])[i]->clear();
        queues[q]->clear();
    }
}
