#include "CSprite.h"

#include "CDrawChunk.h"
#include "CDrawList.h"
#include "CDrawManager.h"

#include <BaseUtils.h>

namespace {
const char* const SOURCE = "Zephrin2D/Src/CSprite";
}

CSprite::CSprite() {}

CSprite::~CSprite() {}

void CSprite::attach(boost::shared_ptr<CGraphicElement> child)
{
    if (!child) {
        BaseUtils::Assert(false, SOURCE, __LINE__, "CSprite::attach empty element\n");
        return;
    }
    boost::shared_ptr<CGraphicElement> self;
    if (mDrawManaged) {
        self = weak_from_this().lock();
        BaseUtils::Assert(self.get() != 0, SOURCE, __LINE__,
                          "CSprite::attach draw-managed sprite is not held by a shared_ptr\n");
    }
    // The child's list is copied: a child that is this sprite must not see its own chunks grow.
    const tChunkList childChunks = child->getChunks();
    for (size_t i = 0; i < childChunks.size(); ++i) {
        const boost::shared_ptr<CDrawChunk>& c = childChunks[i];
        if (!c)
            continue;
        boost::shared_ptr<CDrawChunk> old;
        boost::shared_ptr<CDrawChunk> made;
        for (size_t j = 0; j < mChunks.size(); ++j) {
            if (mChunks[j] && mChunks[j]->canMerge(child, c)) {
                old = mChunks[j];
                made = old->createMergedChunk(child, c);
                mChunks[j] = made;
                break;
            }
        }
        if (!made) {
            made = c->createTransformedChunk(child);
            mChunks.push_back(made);
        }
        if (self) {
            if (old) {
                boost::shared_ptr<CDrawList> list = old->getDrawList().lock();
                if (list)
                    list->remove(self, old);
            }
            CDrawManager::Instance()->add(self, made);
        }
    }
}

void CSprite::attach(const tElementList& children)
{
    for (size_t i = 0; i < children.size(); ++i)
        attach(children[i]);
}

void CSprite::draw(tColor*) {}
