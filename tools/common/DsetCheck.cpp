#include "DsetCheck.h"

#include "ContentCheck.h"

#include "CAvatarCostume.h"
#include "CDsetReader.h"
#include "tDsetCostume.h"
#include "tDsetRecords.h"

#include <Dataset.h>
#include <DebugMPI.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>
#include <vector>

namespace {

const char* const kExtension = ".dsetBin";

std::string quoted(const std::string& s) { return "\"" + s + "\""; }

} // namespace

DsetCheck::DsetCheck(Diagnostics& report, ContentCheck& content)
    : mReport(report), mContent(content), mReader(0), mWalkComplete(true)
{
}

DsetCheck::~DsetCheck() { delete mReader; }

void DsetCheck::error(uint32_t offset, const std::string& message)
{
    mReport.add(mPath, 1, static_cast<int>(offset) + 1, Diagnostics::Error, message);
}

void DsetCheck::error(const void* at, const std::string& message)
{
    error(static_cast<uint32_t>(static_cast<const char*>(at) - static_cast<const char*>(mDataset->base)), message);
}

void DsetCheck::warning(const void* at, const std::string& message)
{
    const uint32_t offset = static_cast<uint32_t>(static_cast<const char*>(at) - static_cast<const char*>(mDataset->base));
    mReport.add(mPath, 1, static_cast<int>(offset) + 1, Diagnostics::Warning, message);
}

uint32_t DsetCheck::pointer(const uint32_t& field)
{
    const uint32_t offset = static_cast<uint32_t>(reinterpret_cast<const char*>(&field) -
                                                  static_cast<const char*>(mDataset->base));
    mFields.insert(offset);
    if (field != 0 && !mRelink.count(offset)) {
        error(offset, "the pointer at byte " + std::to_string(offset) + " is not listed in the relink file " +
                          quoted(mRelinkPath));
        mWalkComplete = false;
        return 0;
    }
    return field;
}

bool DsetCheck::refused(const uint32_t& field) const
{
    const uint32_t offset = static_cast<uint32_t>(reinterpret_cast<const char*>(&field) -
                                                  static_cast<const char*>(mDataset->base));
    return field != 0 && !mRelink.count(offset);
}

const char* DsetCheck::string(const uint32_t& field, const char* what)
{
    const uint32_t p = pointer(field);
    if (p == 0)
        return 0;
    const char* s = mReader->string(p);
    if (!s) {
        error(&field, std::string(what) + " reaches outside the dataset");
        mWalkComplete = false;
    }
    return s;
}

bool DsetCheck::load()
{
    std::vector<std::string> refusals;
    Tadwick::Vell::CDebugMPI::tHandler previous =
        Tadwick::Vell::CDebugMPI::SetHandler([&refusals](int, int level, const std::string& text) {
            if (level <= 1)
                refusals.push_back(text);
        });
    mDataset = LoadDataset(mPath.c_str(), mRelinkPath.c_str());
    Tadwick::Vell::CDebugMPI::SetHandler(previous);
    if (!mDataset || !mDataset->data) {
        std::string reason = refusals.empty() ? std::string("it cannot be loaded") : refusals.front();
        const std::string lead = "LoadDataset: " + mPath + ": ";
        if (reason.compare(0, lead.size(), lead) == 0)
            reason = reason.substr(lead.size());
        else if (reason.compare(0, 13, "LoadDataset: ") == 0)
            reason = reason.substr(13);
        while (!reason.empty() && reason.back() == '\n')
            reason.pop_back();
        error(0u, "the dataset is refused: " + reason);
        return false;
    }
    std::ifstream relink(mRelinkPath.c_str(), std::ios::binary);
    unsigned char word[4];
    while (relink.read(reinterpret_cast<char*>(word), 4))
        mRelink.insert(word[0] | word[1] << 8 | word[2] << 16 | static_cast<uint32_t>(word[3]) << 24);
    mReader = new CDsetReader(mDataset);
    return true;
}

void DsetCheck::check(const std::string& path, ContentModel::FileKind role)
{
    mPath = path;
    const size_t at = path.rfind(kExtension);
    if (at == std::string::npos) {
        error(0u, "a dataset file name ends in \".dsetBin\": its relink file is found by that name");
        return;
    }
    mRelinkPath = path.substr(0, at) + ".relinkBin";
    mDirectory = ContentModel::actorPrefix(path);
    if (!load())
        return;
    const uint32_t* magic = mReader->record<uint32_t>(mDataset->data);
    using ContentModel::FileKind;
    const FileKind held = !magic ? FileKind::Unknown
                        : *magic == DSET_ACTOR_MAGIC ? FileKind::Actor
                        : *magic == DSET_COSTUME_MAGIC ? FileKind::Costume
                        : FileKind::Unknown;
    if (mContent.wrongKind(path, role, held))
        return;
    if (held == FileKind::Actor)
        checkActor(mDataset->data);
    else if (held == FileKind::Costume)
        checkCostume(mDataset->data);
    else {
        error(mDataset->data, "the root record is neither an actor (\"ACTR\") nor a costume (\"COST\")");
        return;
    }
    if (!mWalkComplete)
        return;
    for (uint32_t offset : mRelink)
        if (!mFields.count(offset))
            error(offset, "the relink file " + quoted(mRelinkPath) + " lists byte " + std::to_string(offset) +
                              ", which holds no pointer");
}

void DsetCheck::checkActor(const void* data)
{
    const tDsetActor* actor = mReader->record<tDsetActor>(data);
    if (!actor) {
        error(data, "the actor record reaches outside the dataset");
        return;
    }
    const tDsetSpriteCel* cels = mReader->array<tDsetSpriteCel>(pointer(actor->cels), actor->celCount);
    if (!cels) {
        if (actor->celCount != 0 && !refused(actor->cels))
            error(&actor->cels, "the " + std::to_string(actor->celCount) + " cels reach outside the dataset");
        mWalkComplete = actor->celCount == 0 && mWalkComplete;
        return;
    }
    std::map<std::string, uint32_t> labels;
    unsigned int billboards = 0, pieces = 0;
    for (uint32_t i = 0; i < actor->celCount; ++i) {
        const tDsetSpriteCel& cel = cels[i];
        if (const char* label = string(cel.label, "a label")) {
            if (labels.count(label))
                error(&cel.label, "animation label " + quoted(label) + " is already used by cel " +
                                      std::to_string(labels[label]) + ": this cel continues the animation before it");
            else
                labels[label] = i;
        }
        const tDsetOperation* ops = mReader->array<tDsetOperation>(pointer(cel.operations), cel.operationCount);
        for (uint32_t k = 0; ops && k < cel.operationCount; ++k) {
            const char* audio = string(ops[k].audioName1, "an audio name");
            string(ops[k].audioName2, "an audio name");
            if (ops[k].opcode < 1 || ops[k].opcode > 5)
                error(&ops[k], "opcode " + std::to_string(ops[k].opcode) +
                                   " does nothing: the actor runs 1 and 2 jump, 3 triggers, 4 stops, 5 plays audio");
            if ((ops[k].opcode == 1 || ops[k].opcode == 2) && ops[k].oparg >= actor->celCount)
                error(&ops[k].oparg, "jump to cel " + std::to_string(ops[k].oparg) + ", past the last cel (" +
                                         std::to_string(actor->celCount - 1) + ")");
            if (ops[k].opcode == 5 && audio)
                mContent.checkAudio(audio, mPath, 1, static_cast<int>(reinterpret_cast<const char*>(&ops[k].audioName1) -
                                                                      static_cast<const char*>(mDataset->base)) + 1);
        }
        if (!ops && cel.operationCount && !refused(cel.operations)) {
            error(&cel.operations, "the operations of cel " + std::to_string(i) + " reach outside the dataset");
            mWalkComplete = false;
        }
        checkChildren(cel, i, billboards, pieces);
    }
}

void DsetCheck::checkChildren(const tDsetSpriteCel& cel, uint32_t i, unsigned int& billboards, unsigned int& pieces)
{
    const tDsetBillboard* b = mReader->array<tDsetBillboard>(pointer(cel.billboards), cel.billboardCount);
    for (uint32_t k = 0; b && k < cel.billboardCount; ++k) {
        const char* url = string(b[k].url, "an image name");
        if (b[k].id < billboards)
            continue;
        if (b[k].id != billboards)
            error(&b[k].id, "billboard ID " + std::to_string(b[k].id) +
                                " is not the next billboard number: the loader makes it billboard " +
                                std::to_string(billboards));
        ++billboards;
        if (url) {
            const uint32_t offset = static_cast<uint32_t>(reinterpret_cast<const char*>(&b[k].url) -
                                                          static_cast<const char*>(mDataset->base));
            mContent.checkBillboardImage(url, mDirectory, mPath, 1, static_cast<int>(offset) + 1);
        }
    }
    if (!b && cel.billboardCount && !refused(cel.billboards)) {
        error(&cel.billboards, "the billboards of cel " + std::to_string(i) + " reach outside the dataset");
        mWalkComplete = false;
    }
    const tDsetAvatarPiece* p = mReader->array<tDsetAvatarPiece>(pointer(cel.avatarPieces), cel.avatarPieceCount);
    for (uint32_t k = 0; p && k < cel.avatarPieceCount; ++k) {
        const char* component = string(p[k].component, "a component name");
        const char* variation = string(p[k].variation, "a variation name");
        if (p[k].id < pieces)
            continue;
        if (p[k].id != pieces)
            error(&p[k].id, "avatar piece ID " + std::to_string(p[k].id) +
                                " is not the next avatar piece number: the loader makes it avatar piece " +
                                std::to_string(pieces));
        ++pieces;
        if (component && variation)
            mContent.checkPiece(component, variation, mPath, 1,
                                static_cast<int>(reinterpret_cast<const char*>(&p[k].component) -
                                                 static_cast<const char*>(mDataset->base)) + 1);
    }
    if (!p && cel.avatarPieceCount && !refused(cel.avatarPieces)) {
        error(&cel.avatarPieces, "the avatar pieces of cel " + std::to_string(i) + " reach outside the dataset");
        mWalkComplete = false;
    }
}

void DsetCheck::checkCostume(const void* data)
{
    const tDsetCostume* costume = mReader->record<tDsetCostume>(data);
    if (!costume) {
        error(data, "the costume record reaches outside the dataset");
        return;
    }
    const tDsetCostumeAudio* audio = mReader->array<tDsetCostumeAudio>(pointer(costume->audio), costume->audioCount);
    for (uint32_t i = 0; audio && i < costume->audioCount; ++i) {
        string(audio[i].name, "an audio name");
        string(audio[i].uri, "an audio URI");
    }
    const tDsetCostumeLOD* lods = mReader->array<tDsetCostumeLOD>(pointer(costume->lods), costume->lodCount);
    if (!lods) {
        if (!refused(costume->lods))
            error(&costume->lods, costume->lodCount ? "the LODs reach outside the dataset"
                                                : "the costume has no LOD: avatar pieces show nothing");
        mWalkComplete = costume->lodCount == 0 && mWalkComplete;
        return;
    }
    std::map<std::string, std::vector<std::string> > first;
    for (uint32_t l = 0; l < costume->lodCount; ++l) {
        const char* uri = string(lods[l].textureURI, "a texture name");
        if (!uri)
            error(&lods[l], "an LOD without a texture: its pieces show nothing");
        else
            mContent.checkImageFile(AvatarCostume::texturePath(mPath, uri).raw(), "texture", mPath, 1,
                                    static_cast<int>(reinterpret_cast<const char*>(&lods[l].textureURI) -
                                                     static_cast<const char*>(mDataset->base)) + 1);
        const tDsetCostumeComponent* components =
            mReader->array<tDsetCostumeComponent>(pointer(lods[l].components), lods[l].componentCount);
        for (uint32_t c = 0; components && c < lods[l].componentCount; ++c) {
            const char* name = string(components[c].name, "a component name");
            const tDsetCostumeVariation* variations =
                mReader->array<tDsetCostumeVariation>(pointer(components[c].variations), components[c].variationCount);
            if (!variations) {
                error(&components[c], "component " + quoted(name ? name : "") + " has no variations: its pieces show nothing");
                continue;
            }
            for (uint32_t v = 0; v < components[c].variationCount; ++v) {
                const char* variation = string(variations[v].name, "a variation name");
                if (l == 0 && name && variation)
                    first[name].push_back(variation);
            }
        }
    }
    mContent.setCostumeComponents(first);
}
