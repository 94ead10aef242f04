#include "ActorCompare.h"

#include "CActor2D.h"
#include "CTexturedChunk.h"

#include <sstream>

namespace {

bool sameOperations(const tOperationList& a, const tOperationList& b)
{
    if (a.size() != b.size())
        return false;
    // A Play Audio argument is not carried by datasets (it loads as 0) and no actor reads it.
    for (size_t i = 0; i < a.size(); ++i)
        if (a[i].opcode != b[i].opcode || (a[i].opcode != operation::PLAY_AUDIO && a[i].oparg != b[i].oparg))
            return false;
    return true;
}

std::string sameChunk(const CDrawChunk* a, const CDrawChunk* b)
{
    const CTexturedChunk* x = dynamic_cast<const CTexturedChunk*>(a);
    const CTexturedChunk* y = dynamic_cast<const CTexturedChunk*>(b);
    if (!x || !y)
        return x == y && a->getVertices() == b->getVertices() ? "" : "chunk kinds differ";
    if (x->getVertices() != y->getVertices())
        return "vertices differ";
    if (x->getTexCoords() != y->getTexCoords())
        return "texture coordinates differ";
    if (x->getIndices() != y->getIndices())
        return "indices differ";
    if (x->getTexture() != y->getTexture())
        return "textures differ";
    if (x->isTranslucent() != y->isTranslucent())
        return "translucency differs";
    return "";
}

} // namespace

bool sameActor(CActor2D& a, CActor2D& b, std::string& why)
{
    std::ostringstream out;
    if (a.getPos() != b.getPos() || a.getRotation() != b.getRotation() || a.getScale() != b.getScale() ||
        a.getReg() != b.getReg() || a.getColor() != b.getColor())
        out << "actor transform or colour differs";
    else if (a.getCelCount() != b.getCelCount())
        out << "cel count " << a.getCelCount() << " != " << b.getCelCount();
    for (unsigned int i = 0; out.str().empty() && i < a.getCelCount(); ++i) {
        const tActor2DFrameStruct& x = a.getCel(i);
        const tActor2DFrameStruct& y = b.getCel(i);
        if (x.duration != y.duration)
            out << "cel " << i << ": duration " << x.duration << " != " << y.duration;
        else if (!sameOperations(x.enterOperations, y.enterOperations))
            out << "cel " << i << ": enter operations differ";
        else if (!sameOperations(x.exitOperations, y.exitOperations))
            out << "cel " << i << ": exit operations differ";
        else if (x.chunks.size() != y.chunks.size())
            out << "cel " << i << ": " << x.chunks.size() << " chunks != " << y.chunks.size();
        for (size_t c = 0; out.str().empty() && c < x.chunks.size(); ++c) {
            const std::string d = sameChunk(x.chunks[c].get(), y.chunks[c].get());
            if (!d.empty())
                out << "cel " << i << " chunk " << c << ": " << d;
        }
    }
    if (out.str().empty()) {
        const CActor2D::tAnimationMap& x = a.getAnimationMap();
        const CActor2D::tAnimationMap& y = b.getAnimationMap();
        if (x.size() != y.size())
            out << "animation count " << x.size() << " != " << y.size();
        for (CActor2D::tAnimationMap::const_iterator i = x.begin(), j = y.begin();
             out.str().empty() && i != x.end() && j != y.end(); ++i, ++j) {
            if (i->first != j->first || i->second.label != j->second.label)
                out << "animation labels differ: " << i->second.label << " / " << j->second.label;
            else if (i->second.startOffset != j->second.startOffset || i->second.endOffset != j->second.endOffset ||
                     i->second.next != j->second.next)
                out << "animation " << i->second.label << " differs";
        }
    }
    why = out.str();
    return why.empty();
}
