#ifndef ZEPHRIN2D_CPOINTSPRITEDRAWLIST_H
#define ZEPHRIN2D_CPOINTSPRITEDRAWLIST_H

#include "CChunkDrawList.h"
#include "CPointSpriteChunk.h"

/// One (element, chunk) pair held by a point-sprite draw list.
struct tElementPointSpriteChunkPairEntryStruct : tChunkEntry<CPointSpriteChunk>
{
    /// The chunk's revision when its points were last uploaded.
    uint32_t revision;
};

/// The draw list of the point-sprite chunks of one GL texture.
///
/// Points are transformed by their element's matrix on the CPU and kept in
/// one vertex buffer, re-uploaded for a chunk only when its element moved or
/// its points were written (its revision changed). Each chunk is drawn with
/// glDrawArrays(GL_POINTS) at its own point size, neighbours of equal size
/// in one call, with GL_POINT_SPRITE_OES and coordinate replacement on. An
/// opaque list draws in acceptance order; a translucent one depth by depth,
/// back to front, interleaved with the other translucent lists. At most
/// 65535 points per list.
class CPointSpriteDrawList : public CChunkDrawList<tElementPointSpriteChunkPairEntryStruct, CPointSpriteChunk>
{
public:
    CPointSpriteDrawList();

    void draw() override;
    int prepareAlphaDraw() override;
    int drawZDepth(int z) override;

private:
    bool streamEntry(tVertexStream& stream, tEntry& entry) override;
    size_t indexCountOf(const CPointSpriteChunk&) const override { return 0; }
    void entryAdded(tEntry& entry) override { entry.revision = entry.chunk->getRevision(); }
    /// Flags the entries whose points were written in place since their upload, then buffers.
    void prepare();
    void beginPoints();
    void endPoints();
};

#endif
