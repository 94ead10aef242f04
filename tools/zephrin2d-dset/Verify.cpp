#include "Verify.h"

#include "CAvatarCostume.h"
#include "CTextureSheet.h"

#include <sstream>

namespace {

bool sameCostume(const AvatarCostume& a, const AvatarCostume& b, std::string& error)
{
    std::ostringstream why;
    if (a.getLODs().size() != b.getLODs().size())
        why << "LOD count " << a.getLODs().size() << " != " << b.getLODs().size();
    for (size_t i = 0; why.str().empty() && i < a.getLODs().size(); ++i) {
        const tAvatarLOD& x = a.getLODs()[i];
        const tAvatarLOD& y = b.getLODs()[i];
        if (x.size != y.size || x.textureURI != y.textureURI || x.componentOrder != y.componentOrder) {
            why << "LOD " << i << " differs";
            break;
        }
        for (const std::string& key : x.componentOrder) {
            const tAvatarComponent& cx = x.components.find(key)->second;
            const tAvatarComponent& cy = y.components.find(key)->second;
            bool same = cx.name == cy.name && cx.variations.size() == cy.variations.size();
            for (size_t v = 0; same && v < cx.variations.size(); ++v) {
                const tAvatarVariation& p = cx.variations[v];
                const tAvatarVariation& q = cy.variations[v];
                same = p.name == q.name && p.left == q.left && p.top == q.top && p.right == q.right &&
                       p.bottom == q.bottom && p.regX == q.regX && p.regY == q.regY;
            }
            if (!same) {
                why << "LOD " << x.size << " component " << cx.name << " differs";
                break;
            }
        }
    }
    if (why.str().empty() && a.getAudio() != b.getAudio())
        why << "audio lists differ";
    error = why.str();
    return error.empty();
}

} // namespace

bool verifyActor(const std::string& jsonPath, const std::string& dsetPath, AvatarCostume* costume,
                 CTextureSheet* sheet, std::string& error);

bool verifyDataset(DsetCompiler::tKind kind, const std::string& jsonPath, const std::string& dsetPath,
                   const std::string& costumePath, const std::vector<std::string>& sheetPaths, std::string& error)
{
    if (kind == DsetCompiler::KIND_COSTUME) {
        AvatarCostume fromJson, fromDset;
        fromJson.addFromJson(jsonPath, 0, 0);
        fromDset.addFromDset(dsetPath);
        return sameCostume(fromJson, fromDset, error);
    }
    AvatarCostume costume;
    if (!costumePath.empty())
        costume.addFromFile(costumePath, 0, 0);
    CTextureSheet sheet;
    for (const std::string& sheetPath : sheetPaths)
        sheet.addFromJson(sheetPath);
    return verifyActor(jsonPath, dsetPath, costumePath.empty() ? 0 : &costume, sheetPaths.empty() ? 0 : &sheet, error);
}
