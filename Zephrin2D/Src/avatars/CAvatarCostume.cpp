#include "CAvatarCostume.h"
#include "CLoadReport.h"

#include "Avatar2DPiece.h"

#include "CDsetReader.h"
#include "CTexture.h"
#include "CTextureManager.h"
#include "tDsetCostume.h"

#include <BaseUtils.h>
#include <DebugMPI.h>
#include <QJN.h>
#include <SystemData.h>

#include <algorithm>
#include <sys/stat.h>

namespace {

const char* const kFile = "Zephrin2D/Src/CAvatarCostume";
const char* const kDsetExtension = ".dsetBin";

const Tadwick::Vell::CDebugMPI& debug()
{
    static Tadwick::Vell::CDebugMPI d(0x284);
    return d;
}

std::string key(const Glib::ustring& name) { return name.collate_key(); }

bool fileExists(const std::string& path)
{
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

tFixed fixedOf(const QJN::Value& v) { return tFixed::fromFloat(v.asDouble()); }

} // namespace

AvatarCostume::AvatarCostume() : mLOD(-1) {}

AvatarCostume::~AvatarCostume()
{
    for (Avatar2DPiece* piece : mPieces)
        piece->costumeGone();
}

void AvatarCostume::attachPiece(Avatar2DPiece* piece)
{
    if (std::find(mPieces.begin(), mPieces.end(), piece) == mPieces.end())
        mPieces.push_back(piece);
}

void AvatarCostume::detachPiece(Avatar2DPiece* piece)
{
    mPieces.erase(std::remove(mPieces.begin(), mPieces.end(), piece), mPieces.end());
}

void AvatarCostume::clear()
{
    mLODs.clear();
    mAudio.clear();
    mDatasets.clear();
    mLOD = -1;
}

void AvatarCostume::addFromFile(const Glib::ustring& path, int* lods, int count)
{
    const std::string p = path.raw();
    const size_t n = strlen(kDsetExtension);
    if (p.size() >= n && p.compare(p.size() - n, n, kDsetExtension) == 0)
        addFromDset(path);
    else
        addFromJson(path, lods, count);
}

int AvatarCostume::mapLOD(int requested, const std::vector<int>& sizes)
{
    int best = 9999;
    bool found = false;
    for (int s : sizes) {
        if (s >= requested && s < best) {
            best = s;
            found = true;
        }
    }
    if (found)
        return best;
    int largest = -1;
    for (int s : sizes)
        largest = std::max(largest, s);
    return largest;
}

Glib::ustring AvatarCostume::texturePath(const Glib::ustring& costumePath, const Glib::ustring& uri)
{
    if (uri.empty() || uri[0] == '/')
        return uri;
    const Glib::ustring::size_type slash = costumePath.rfind('/');
    const Glib::ustring beside = (slash == Glib::ustring::npos ? Glib::ustring() : costumePath.substr(0, slash + 1)) + uri;
    if (fileExists(beside))
        return beside;
    const Glib::ustring art = CSystemData::Instance()->FindArt(uri);
    return art.empty() ? beside : art;
}

void AvatarCostume::addAudio(const Glib::ustring& name, const Glib::ustring& uri)
{
    mAudio[key(name)] = std::make_pair(name, uri);
}

tAvatarLOD* AvatarCostume::addLOD(int size, const Glib::ustring& textureURI, const Glib::ustring& texturePath)
{
    size_t index = 0;
    while (index < mLODs.size() && mLODs[index].size != size)
        ++index;
    if (index == mLODs.size())
        mLODs.push_back(tAvatarLOD());
    tAvatarLOD& lod = mLODs[index];
    lod = tAvatarLOD();
    lod.size = size;
    lod.textureURI = textureURI;
    lod.texture = CTextureManager::Instance()->load(texturePath, true, false, false);
    return &lod;
}

void AvatarCostume::addFromJson(const Glib::ustring& path, int* lods, int count)
{
    debug().DebugOut(3, "creating Avatar from JSON file [%s]...\n", path.c_str());
    const CLoadReport::tScope scope(path, true);
    QJN::CJSonFile file(path, 0);
    file.Load();
    const QJN::Value& root = file.getRoot();
    if (!root["LODList"].isArray())
        CLoadReport::add(tLoadProblem::BAD_CONTENT, Glib::ustring(), "not a costume: no \"LODList\" array");

    const QJN::Value audio = root["AudioList"];
    for (unsigned int i = 0; i < audio.size(); ++i)
        addAudio(audio[i]["Name"].asString(), audio[i]["URI"].asString());

    if (count < 0 || !lods)
        count = 0;
    debug().DebugOut(5, "Received %d LODs:\n", count);
    if (count > MAX_REQUESTED_LODS) {
        BaseUtils::Assert(false, kFile, __LINE__, "AvatarCostume::addFromJson - received a list size of %d, but the max is %d.",
                          count, static_cast<int>(MAX_REQUESTED_LODS));
        count = MAX_REQUESTED_LODS;
    }

    const QJN::Value lodList = root["LODList"];
    std::vector<int> sizes;
    for (unsigned int i = 0; i < lodList.size(); ++i)
        sizes.push_back(lodList[i]["Size"].asInt());
    std::vector<int> mapped;
    for (int i = 0; i < count; ++i) {
        const int m = mapLOD(lods[i], sizes);
        debug().DebugOut(5, "Requested LOD of %d has been mapped to %d.\n", lods[i], m);
        mapped.push_back(m);
    }

    debug().DebugOut(5, "loading LODs... (%d total)\n", static_cast<int>(lodList.size()));
    for (unsigned int i = 0; i < lodList.size(); ++i) {
        const QJN::Value lodValue = lodList[i];
        const int size = lodValue["Size"].asInt();
        if (count > 0) {
            if (std::find(mapped.begin(), mapped.end(), size) == mapped.end()) {
                debug().DebugOut(5, "skipped LOD %d - not in the list.\n", size);
                continue;
            }
            debug().DebugOut(5, "Loading LOD %d - it's in the list.\n", size);
        }
        const Glib::ustring uri = lodValue["TextureURI"].asString();
        tAvatarLOD* lod = addLOD(size, uri, texturePath(path, uri));
        BaseUtils::Assert(lod->texture.get() != 0, kFile, __LINE__, "AvatarCostume::addFromJson could not find texture %s",
                          uri.c_str());
        const QJN::Value components = lodValue["ComponentList"];
        for (unsigned int c = 0; c < components.size(); ++c) {
            const Glib::ustring componentName = components[c]["Name"].asString();
            const std::string componentKey = key(componentName);
            if (!lod->components.count(componentKey))
                lod->componentOrder.push_back(componentKey);
            tAvatarComponent& component = lod->components[componentKey];
            component.name = componentName;
            const QJN::Value variations = components[c]["Variations"];
            for (unsigned int v = 0; v < variations.size(); ++v) {
                const QJN::Value var = variations[v];
                tAvatarVariation variation;
                variation.name = var["Name"].asString();
                debug().DebugOut(5, "---setting properties for [%s][%s]\n", componentName.c_str(), variation.name.c_str());
                variation.left = fixedOf(var["RectLeft"]);
                variation.top = fixedOf(var["RectTop"]);
                variation.right = fixedOf(var["RectRight"]);
                variation.bottom = fixedOf(var["RectBottom"]);
                variation.regX = fixedOf(var["RegPointX"]);
                variation.regY = fixedOf(var["RegPointY"]);
                component.variations.push_back(variation);
            }
        }
    }
    if (mLOD < 0 && !mLODs.empty())
        mLOD = mLODs.front().size;
}

void AvatarCostume::addFromDset(const Glib::ustring& path)
{
    debug().DebugOut(3, "creating Avatar from dataset file [%s]...\n", path.c_str());
    const CLoadReport::tScope scope(path, true);
    const std::string p = path.raw();
    const size_t at = p.rfind(kDsetExtension);
    boost::shared_ptr<CDataset> dataset;
    if (at != std::string::npos)
        dataset = LoadDataset(p.c_str(), (p.substr(0, at) + ".relinkBin").c_str());
    if (!dataset || !dataset->data) {
        BaseUtils::Assert(false, kFile, __LINE__, "AvatarCostume::addFromDset could not load dataset file: %s\n", path.c_str());
        return;
    }
    CDsetReader reader(dataset);
    const tDsetCostume* root = reader.record<tDsetCostume>(dataset->data);
    if (!root || root->magic != DSET_COSTUME_MAGIC) {
        BaseUtils::Assert(false, kFile, __LINE__, "AvatarCostume::addFromDset %s does not hold a costume\n", path.c_str());
        return;
    }
    const tDsetCostumeLOD* lods = reader.array<tDsetCostumeLOD>(root->lods, root->lodCount);
    const tDsetCostumeAudio* audio = reader.array<tDsetCostumeAudio>(root->audio, root->audioCount);
    if ((root->lodCount && !lods) || (root->audioCount && !audio)) {
        BaseUtils::Assert(false, kFile, __LINE__, "AvatarCostume::addFromDset %s: record reaches outside the dataset\n",
                          path.c_str());
        return;
    }
    for (uint32_t i = 0; i < root->audioCount; ++i) {
        const char* name = reader.string(audio[i].name);
        const char* uri = reader.string(audio[i].uri);
        if (name && uri)
            addAudio(name, uri);
    }
    for (uint32_t i = 0; i < root->lodCount; ++i) {
        const char* uri = reader.string(lods[i].textureURI);
        const tDsetCostumeComponent* components =
            reader.array<tDsetCostumeComponent>(lods[i].components, lods[i].componentCount);
        if (!uri || (lods[i].componentCount && !components)) {
            BaseUtils::Assert(false, kFile, __LINE__, "AvatarCostume::addFromDset %s: LOD %u reaches outside the dataset\n",
                              path.c_str(), i);
            continue;
        }
        tAvatarLOD* lod = addLOD(lods[i].size, uri, texturePath(path, uri));
        for (uint32_t c = 0; c < lods[i].componentCount; ++c) {
            const char* componentName = reader.string(components[c].name);
            const tDsetCostumeVariation* variations =
                reader.array<tDsetCostumeVariation>(components[c].variations, components[c].variationCount);
            if (!componentName || (components[c].variationCount && !variations)) {
                BaseUtils::Assert(false, kFile, __LINE__,
                                  "AvatarCostume::addFromDset %s: component %u reaches outside the dataset\n",
                                  path.c_str(), c);
                continue;
            }
            const std::string componentKey = key(componentName);
            if (!lod->components.count(componentKey))
                lod->componentOrder.push_back(componentKey);
            tAvatarComponent& component = lod->components[componentKey];
            component.name = componentName;
            for (uint32_t v = 0; v < components[c].variationCount; ++v) {
                const char* variationName = reader.string(variations[v].name);
                tAvatarVariation variation;
                variation.name = variationName ? variationName : "";
                variation.left = tFixed::fromRaw(variations[v].left);
                variation.top = tFixed::fromRaw(variations[v].top);
                variation.right = tFixed::fromRaw(variations[v].right);
                variation.bottom = tFixed::fromRaw(variations[v].bottom);
                variation.regX = tFixed::fromRaw(variations[v].regX);
                variation.regY = tFixed::fromRaw(variations[v].regY);
                component.variations.push_back(variation);
            }
        }
    }
    mDatasets.push_back(dataset);
    if (mLOD < 0 && !mLODs.empty())
        mLOD = mLODs.front().size;
}

void AvatarCostume::setLOD(int lod)
{
    if (lod == mLOD)
        return;
    mLOD = lod;
    // A piece may be showing an LOD that is no longer current: rebuild them all.
    const std::vector<Avatar2DPiece*> pieces = mPieces;
    for (Avatar2DPiece* piece : pieces)
        piece->refresh();
}

const tAvatarLOD* AvatarCostume::currentLOD() const
{
    if (mLODs.empty())
        return 0;
    std::vector<int> sizes;
    for (const tAvatarLOD& lod : mLODs) {
        if (lod.size == mLOD)
            return &lod;
        sizes.push_back(lod.size);
    }
    const int mapped = mapLOD(mLOD, sizes);
    for (const tAvatarLOD& lod : mLODs)
        if (lod.size == mapped)
            return &lod;
    return &mLODs.front();
}

tAvatarTexturePiece AvatarCostume::getAvatarTexturePiece(const Glib::ustring& component, const Glib::ustring& variation)
{
    tAvatarTexturePiece piece;
    piece.valid = false;
    piece.lodSize = 0;
    piece.variation = tAvatarVariation();
    const tAvatarLOD* lod = currentLOD();
    if (!lod) {
        BaseUtils::Assert(false, kFile, __LINE__, "AvatarCostume::getAvatarTexturePiece - List is empty.\n");
        return piece;
    }
    std::map<std::string, tAvatarComponent>::const_iterator c = lod->components.find(key(component));
    if (c == lod->components.end() || c->second.variations.empty()) {
        BaseUtils::Assert(false, kFile, __LINE__, "CAvatarCostume::getAvatarTexturePiece - Could not find component %s.\n",
                          component.c_str());
        return piece;
    }
    const std::vector<tAvatarVariation>& variations = c->second.variations;
    size_t index = 0;
    while (index < variations.size() && variations[index].name != variation)
        ++index;
    if (index == variations.size()) {
        debug().DebugOut(3,
                         "CAvatarCostume::getAvatarTexturePiece - could not find variation %s of component %s.  Falling back on variation 0.\n",
                         variation.c_str(), component.c_str());
        index = 0;
    }
    piece.valid = true;
    piece.lodSize = lod->size;
    piece.texture = lod->texture;
    piece.variation = variations[index];
    return piece;
}

Glib::ustring AvatarCostume::getAudioURI(const Glib::ustring& name) const
{
    std::map<std::string, std::pair<Glib::ustring, Glib::ustring> >::const_iterator a = mAudio.find(key(name));
    return a == mAudio.end() ? Glib::ustring() : a->second.second;
}

void AvatarCostume::debugDump()
{
    debug().DebugOut(3, "Current contents of avatar costume object:\n");
    debug().DebugOut(3, "Audio:\n");
    for (const auto& a : mAudio)
        debug().DebugOut(3, "%s: [%s]\n", a.second.first.c_str(), a.second.second.c_str());
    debug().DebugOut(3, "componentList:\n");
    for (const tAvatarLOD& lod : mLODs) {
        for (const std::string& k : lod.componentOrder) {
            const tAvatarComponent& component = lod.components.find(k)->second;
            for (const tAvatarVariation& v : component.variations) {
                debug().DebugOut(3, "component name:%s\n", component.name.c_str());
                debug().DebugOut(3, "variation name:%s\n", v.name.c_str());
                debug().DebugOut(3, "LOD:%d\n", lod.size);
                debug().DebugOut(3, "Rect:(%f, %f) - (%f, %f)\n", v.left.toDouble(), v.top.toDouble(),
                                 v.right.toDouble(), v.bottom.toDouble());
                debug().DebugOut(3, "RegPoint:(%f, %f)\n", v.regX.toDouble(), v.regY.toDouble());
            }
        }
    }
}
