#ifndef ZEPHRIN2D_TESTS_RECORDINGCHUNK_H
#define ZEPHRIN2D_TESTS_RECORDINGCHUNK_H

#include "CDrawChunk.h"
#include "CDrawList.h"
#include "CDrawManager.h"
#include "CGraphicElement.h"

#include <algorithm>
#include <boost/make_shared.hpp>
#include <vector>

/// A draw list that only records the pairs the draw manager gives it.
class RecordingList : public CDrawList
{
public:
    struct tEntry
    {
        CGraphicElement* element;
        CDrawChunk* chunk;
        bool operator==(const tEntry& o) const { return element == o.element && chunk == o.chunk; }
    };

    explicit RecordingList(bool translucent) : mTranslucent(translucent), adds(0), removes(0), moves(0) {}

    bool add(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk) override
    {
        entries.push_back(tEntry{element.get(), chunk.get()});
        chunk->setDrawList(shared_from_this());
        ++adds;
        return true;
    }
    bool remove(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk) override
    {
        std::vector<tEntry>::iterator it = std::find(entries.begin(), entries.end(), tEntry{element.get(), chunk.get()});
        if (it == entries.end())
            return false;
        entries.erase(it);
        chunk->setDrawList(boost::weak_ptr<CDrawList>());
        ++removes;
        return true;
    }
    bool show(boost::shared_ptr<CGraphicElement>, boost::shared_ptr<CDrawChunk>) override { return true; }
    bool hide(boost::shared_ptr<CGraphicElement>, boost::shared_ptr<CDrawChunk>) override { return true; }
    void markDirtyVertices(boost::shared_ptr<CGraphicElement>, boost::shared_ptr<CDrawChunk>) override { ++moves; }
    void shrink() override {}
    void clear() override { entries.clear(); }
    void bufferVertices() override {}
    void draw() override {}
    int prepareAlphaDraw() override { return NO_MORE_DEPTHS; }
    int drawZDepth(int) override { return NO_MORE_DEPTHS; }
    bool empty() override { return entries.empty(); }
    bool isTranslucent() const override { return mTranslucent; }
    bool contains(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> chunk) const override
    {
        return std::find(entries.begin(), entries.end(), tEntry{element.get(), chunk.get()}) != entries.end();
    }

    /// The chunks held for element, in the order they arrived.
    std::vector<CDrawChunk*> chunksOf(const CGraphicElement* element) const
    {
        std::vector<CDrawChunk*> out;
        for (size_t i = 0; i < entries.size(); ++i)
            if (entries[i].element == element)
                out.push_back(entries[i].chunk);
        return out;
    }

    std::vector<tEntry> entries;
    bool mTranslucent;
    int adds;
    int removes;
    int moves;
};

/// A chunk without GL behind it, for checking what elements register.
/// Chunks that share a merge key merge (vertices appended).
class RecordingChunk : public CDrawChunk
{
public:
    explicit RecordingChunk(int mergeKey = -1, unsigned short vertexCount = 1)
        : CDrawChunk(vertexCount), mMergeKey(mergeKey)
    {
    }

    boost::shared_ptr<CDrawList> createDrawList() override
    {
        return boost::make_shared<RecordingList>(isTranslucent());
    }
    bool canMerge(boost::shared_ptr<CGraphicElement>, boost::shared_ptr<CDrawChunk> other) const override
    {
        const RecordingChunk* o = dynamic_cast<const RecordingChunk*>(other.get());
        return o && mMergeKey >= 0 && o->mMergeKey == mMergeKey;
    }
    boost::shared_ptr<CDrawChunk> createMergedChunk(boost::shared_ptr<CGraphicElement> element,
                                                    boost::shared_ptr<CDrawChunk> other) const override
    {
        boost::shared_ptr<RecordingChunk> copy = boost::make_shared<RecordingChunk>(*this);
        copy->setDrawList(boost::weak_ptr<CDrawList>());
        copy->merge(element, other);
        return copy;
    }
    boost::shared_ptr<CDrawChunk> createTransformedChunk(boost::shared_ptr<CGraphicElement> element) const override
    {
        boost::shared_ptr<RecordingChunk> copy = boost::make_shared<RecordingChunk>(*this);
        copy->setDrawList(boost::weak_ptr<CDrawList>());
        copy->transformVertices(element->getMatrix());
        return copy;
    }
    void merge(boost::shared_ptr<CGraphicElement> element, boost::shared_ptr<CDrawChunk> other) override
    {
        const tMatrix23 m = element->getMatrix();
        for (size_t i = 0; i < other->getVertices().size(); ++i)
            mVertices.push_back(m * other->getVertices()[i]);
    }

    int mMergeKey;
};

/// Every chunk the draw manager's recording lists hold for element.
inline std::vector<CDrawChunk*> registeredChunks(const CGraphicElement* element)
{
    std::vector<CDrawChunk*> out;
    const std::deque<boost::shared_ptr<CDrawList> >* queues[2] = {&CDrawManager::Instance()->getOpaqueLists(),
                                                                  &CDrawManager::Instance()->getTranslucentLists()};
    for (int q = 0; q < 2; ++q) {
        for (size_t i = 0; i < queues[q]->size(); ++i) {
            if (RecordingList* list = dynamic_cast<RecordingList*>((*queues[q])[i].get())) {
                std::vector<CDrawChunk*> some = list->chunksOf(element);
                out.insert(out.end(), some.begin(), some.end());
            }
        }
    }
    return out;
}

#endif
