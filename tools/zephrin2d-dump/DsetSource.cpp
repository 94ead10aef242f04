#include "DsetSource.h"

#include "CDsetReader.h"
#include "tDsetCostume.h"
#include "tDsetRecords.h"

#include <json/json.h>

#include <stdexcept>

namespace DsetSource {
namespace {

/// Records that reach outside the dataset: the dump stops with this message.
struct tOutside : std::runtime_error
{
    explicit tOutside(const std::string& what) : std::runtime_error(what) {}
};

/// The array of count records at pointer; none may be missing from a dump.
template <class T> const T* records(const CDsetReader& r, uint32_t pointer, uint32_t count, const char* what)
{
    const T* list = r.array<T>(pointer, count);
    if (!list && count != 0)
        throw tOutside("its " + std::to_string(count) + " " + what + " reach outside the dataset");
    return list;
}

// Every 16.16 value is a multiple of 1/65536: exact as a double.
double fixed(int32_t raw) { return raw / 65536.0; }

void putElement(Json::Value& v, const tDsetGraphicElement& e)
{
    v["Position"].append(fixed(e.positionX));
    v["Position"].append(fixed(e.positionY));
    v["Position"].append(fixed(e.positionZ));
    v["Rotation"] = fixed(e.rotation);
    v["Scale"].append(fixed(e.scaleX));
    v["Scale"].append(fixed(e.scaleY));
    v["Reg"].append(fixed(e.regX));
    v["Reg"].append(fixed(e.regY));
    for (int c : {e.color.red, e.color.green, e.color.blue, e.color.alpha})
        v["Color"].append(c);
}

std::string text(const CDsetReader& r, uint32_t pointer)
{
    const char* s = r.string(pointer);
    return s ? s : "";
}

/// Children in the order the loaders number them: an ID below the count of
/// its kind is a reference and carries nothing else.
Json::Value actor(const CDsetReader& r, const tDsetActor& a)
{
    Json::Value root(Json::objectValue);
    putElement(root, a.element);
    root["Animation"] = Json::Value(Json::arrayValue);
    unsigned int billboards = 0, pieces = 0;
    const tDsetSpriteCel* cels = records<tDsetSpriteCel>(r, a.cels, a.celCount, "cels");
    for (uint32_t i = 0; cels && i < a.celCount; ++i) {
        const tDsetSpriteCel& c = cels[i];
        Json::Value cel(Json::objectValue);
        if (c.label)
            cel["Label"] = text(r, c.label);
        cel["ID"] = c.id;
        cel["Duration"] = c.duration;
        const tDsetOperation* ops = records<tDsetOperation>(r, c.operations, c.operationCount, "operations");
        for (uint32_t k = 0; ops && k < c.operationCount; ++k) {
            Json::Value op(Json::objectValue);
            op["Opcode"] = ops[k].opcode;
            if (ops[k].audioName1 || ops[k].audioName2) {
                op["Oparg"].append(text(r, ops[k].audioName1));
                op["Oparg"].append(text(r, ops[k].audioName2));
            } else {
                op["Oparg"] = ops[k].oparg;
            }
            cel["Operations"].append(op);
        }
        Json::Value& children = cel["Children"] = Json::Value(Json::arrayValue);
        const tDsetBillboard* b = records<tDsetBillboard>(r, c.billboards, c.billboardCount, "billboards");
        for (uint32_t k = 0; b && k < c.billboardCount; ++k) {
            Json::Value child(Json::objectValue);
            child["ElementType"] = 0;
            child["ID"] = b[k].id;
            if (b[k].id >= billboards) {
                ++billboards;
                putElement(child, b[k].element);
            }
            if (b[k].url)
                child["URL"] = text(r, b[k].url);
            children.append(child);
        }
        const tDsetAvatarPiece* p = records<tDsetAvatarPiece>(r, c.avatarPieces, c.avatarPieceCount, "avatar pieces");
        for (uint32_t k = 0; p && k < c.avatarPieceCount; ++k) {
            Json::Value child(Json::objectValue);
            child["ElementType"] = 4;
            child["ID"] = p[k].id;
            if (p[k].id >= pieces) {
                ++pieces;
                putElement(child, p[k].element);
            }
            if (p[k].component)
                child["Component"] = text(r, p[k].component);
            if (p[k].variation)
                child["Variation"] = text(r, p[k].variation);
            children.append(child);
        }
        root["Animation"].append(cel);
    }
    return root;
}

Json::Value costume(const CDsetReader& r, const tDsetCostume& c)
{
    Json::Value root(Json::objectValue);
    root["LODList"] = Json::Value(Json::arrayValue);
    root["AudioList"] = Json::Value(Json::arrayValue);
    const tDsetCostumeLOD* lods = records<tDsetCostumeLOD>(r, c.lods, c.lodCount, "LODs");
    for (uint32_t i = 0; lods && i < c.lodCount; ++i) {
        Json::Value lod(Json::objectValue);
        lod["Size"] = lods[i].size;
        lod["TextureURI"] = text(r, lods[i].textureURI);
        lod["ComponentList"] = Json::Value(Json::arrayValue);
        const tDsetCostumeComponent* comps = records<tDsetCostumeComponent>(r, lods[i].components, lods[i].componentCount, "components");
        for (uint32_t k = 0; comps && k < lods[i].componentCount; ++k) {
            Json::Value comp(Json::objectValue);
            comp["Name"] = text(r, comps[k].name);
            comp["Variations"] = Json::Value(Json::arrayValue);
            const tDsetCostumeVariation* vars =
                records<tDsetCostumeVariation>(r, comps[k].variations, comps[k].variationCount, "variations");
            for (uint32_t n = 0; vars && n < comps[k].variationCount; ++n) {
                const tDsetCostumeVariation& v = vars[n];
                Json::Value var(Json::objectValue);
                var["Name"] = text(r, v.name);
                var["RectLeft"] = fixed(v.left);
                var["RectTop"] = fixed(v.top);
                var["RectRight"] = fixed(v.right);
                var["RectBottom"] = fixed(v.bottom);
                var["RegPointX"] = fixed(v.regX);
                var["RegPointY"] = fixed(v.regY);
                comp["Variations"].append(var);
            }
            lod["ComponentList"].append(comp);
        }
        root["LODList"].append(lod);
    }
    const tDsetCostumeAudio* audio = records<tDsetCostumeAudio>(r, c.audio, c.audioCount, "audio clips");
    for (uint32_t i = 0; audio && i < c.audioCount; ++i) {
        Json::Value a(Json::objectValue);
        a["Name"] = text(r, audio[i].name);
        a["URI"] = text(r, audio[i].uri);
        root["AudioList"].append(a);
    }
    return root;
}

} // namespace

static tKind walk(const CDsetReader& reader, const void* data, Json::Value& root);

tKind read(const std::string& path, std::string& json, std::string& error)
{
    std::string relink = path;
    relink.replace(relink.rfind(".dsetBin"), 8, ".relinkBin");
    const boost::shared_ptr<CDataset> dataset = LoadDataset(path.c_str(), relink.c_str());
    if (!dataset) {
        error = "cannot load the dataset with " + relink + " (see the message above)";
        return KIND_NONE;
    }
    const CDsetReader reader(dataset);
    Json::Value root;
    tKind kind = KIND_NONE;
    try {
        kind = walk(reader, dataset->data, root);
    } catch (const tOutside& e) {
        error = e.what();
        return KIND_NONE;
    }
    if (kind == KIND_NONE) {
        error = "neither an actor nor a costume dataset";
        return kind;
    }
    Json::StreamWriterBuilder writer;
    writer["precision"] = 17;
    json = Json::writeString(writer, root);
    return kind;
}

static tKind walk(const CDsetReader& reader, const void* data, Json::Value& root)
{
    tKind kind = KIND_NONE;
    if (const tDsetActor* a = reader.record<tDsetActor>(data)) {
        if (a->magic == DSET_ACTOR_MAGIC) {
            root = actor(reader, *a);
            kind = KIND_ACTOR;
        }
    }
    if (kind == KIND_NONE) {
        if (const tDsetCostume* c = reader.record<tDsetCostume>(data)) {
            if (c->magic == DSET_COSTUME_MAGIC) {
                root = costume(reader, *c);
                kind = KIND_COSTUME;
            }
        }
    }
    return kind;
}

} // namespace DsetSource
