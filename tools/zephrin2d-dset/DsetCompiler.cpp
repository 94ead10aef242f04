#include "DsetCompiler.h"

#include "ContentModel.h"
#include "DsetWriter.h"
#include "tDsetCostume.h"
#include "tDsetRecords.h"
#include "tFixed.h"

#include <QJN.h>

#include <cstdlib>
#include <stdexcept>

namespace DsetCompiler {

namespace {

/// Raised with the JSON path of the offending value; caught at the top.
struct tCompileError : std::runtime_error
{
    explicit tCompileError(const std::string& what) : std::runtime_error(what) {}
};

std::string at(const std::string& path, const char* key) { return path.empty() ? key : path + "." + key; }
std::string at(const std::string& path, unsigned int i) { return path + "[" + std::to_string(i) + "]"; }

void fail(const std::string& path, const std::string& message) { throw tCompileError(path + ": " + message); }

bool load(const std::string& jsonPath, QJN::CJSonFile& file, std::string& error)
{
    if (!file.Load()) {
        error = jsonPath + ": " + (file.getError().empty() ? "cannot be read or parsed" : file.getError());
        return false;
    }
    return true;
}

using ContentModel::Object;
using ContentModel::tKey;

const tKey& model(Object object, const char* key) { return *ContentModel::key(object, key); }

int32_t number(const QJN::Value& v, const std::string& path)
{
    if (!v.isDouble())
        fail(path, "expected a number");
    if (v.asDouble() < ContentModel::kFixedMin || v.asDouble() >= ContentModel::kFixedMax + 1)
        fail(path, "out of range: 16.16 fixed point holds -32768 to 32767");
    return tFixed::fromFloat(v.asDouble()).raw();
}

/// A number key of an object, its default when it is absent and may be.
int32_t number(const QJN::Value& object, Object kind, const char* key, const std::string& path)
{
    const tKey& k = model(kind, key);
    if (!object.isMember(key) && !k.required && k.byDefault)
        return tFixed::fromFloat(std::atof(k.byDefault)).raw();
    return number(object[key], at(path, key));
}

int integer(const QJN::Value& v, const std::string& path)
{
    if (!v.isInt())
        fail(path, "expected an integer");
    return v.asInt();
}

/// An integer within the range the model gives the key (its items, for an array).
int integer(const QJN::Value& v, const std::string& path, const tKey& key)
{
    const int i = integer(v, path);
    if (i < key.min || i > key.max)
        fail(path, std::to_string(i) + " is out of range: it takes " + std::to_string(key.min) + " to " +
                       std::to_string(key.max));
    return i;
}

/// A definition number, kept as 16 bits in a dataset.
uint16_t id(const QJN::Value& v, const std::string& path)
{
    const int i = integer(v["ID"], at(path, "ID"));
    if (i < 0 || i > 65535)
        fail(at(path, "ID"), std::to_string(i) + " does not fit in the 16 bits a dataset keeps");
    return static_cast<uint16_t>(i);
}

std::string text(const QJN::Value& v, const std::string& path)
{
    if (!v.isString())
        fail(path, "expected a string");
    return v.asString();
}

const QJN::Value array(const QJN::Value& v, const std::string& path)
{
    if (!v.isArray())
        fail(path, "expected an array");
    return v;
}

tDsetGraphicElement element(const QJN::Value& v, const std::string& path)
{
    tDsetGraphicElement e;
    memset(&e, 0, sizeof e);
    e.scaleX = e.scaleY = ONE_X.raw();
    e.color = tDsetColor{255, 255, 255, 255};
    if (v.isMember("Position")) {
        const std::string p = at(path, "Position");
        const QJN::Value pos = array(v["Position"], p);
        if (pos.size() != 2 && pos.size() != 3)
            fail(p, "expected 2 or 3 numbers");
        e.positionX = number(pos[0u], at(p, 0u));
        e.positionY = number(pos[1u], at(p, 1u));
        if (pos.size() == 3)
            e.positionZ = number(pos[2u], at(p, 2u));
    }
    if (v.isMember("Rotation"))
        e.rotation = number(v["Rotation"], at(path, "Rotation"));
    const char* pairs[2] = {"Scale", "Reg"};
    for (int k = 0; k < 2; ++k) {
        if (!v.isMember(pairs[k]))
            continue;
        const std::string p = at(path, pairs[k]);
        const QJN::Value pair = array(v[pairs[k]], p);
        if (pair.size() != 2)
            fail(p, "expected 2 numbers");
        int32_t* dst = k == 0 ? &e.scaleX : &e.regX;
        dst[0] = number(pair[0u], at(p, 0u));
        dst[1] = number(pair[1u], at(p, 1u));
    }
    if (v.isMember("Color")) {
        const std::string p = at(path, "Color");
        const QJN::Value color = array(v["Color"], p);
        if (color.size() != 4)
            fail(p, "expected 4 integers");
        uint8_t* dst = &e.color.red;
        for (unsigned int i = 0; i < 4; ++i)
            dst[i] = static_cast<uint8_t>(integer(color[i], at(p, i), model(Object::Billboard, "Color")));
    }
    return e;
}

/// Children are numbered per kind as the loaders number them: an ID below the
/// count refers to an earlier definition, whose other keys are not read.
struct tCounts
{
    unsigned int billboards = 0;
    unsigned int avatarPieces = 0;
};

bool isReference(const QJN::Value& v, unsigned int& count, const std::string& path)
{
    if (id(v, path) < count)
        return true;
    ++count;
    return false;
}

/// A string field: required of a definition, read of a reference only when present (else null).
uint32_t stringField(DsetWriter& out, const QJN::Value& v, const char* key, const std::string& path, bool reference)
{
    return !reference || v.isMember(key) ? out.addString(text(v[key], at(path, key))) : 0;
}

void writeBillboard(DsetWriter& out, uint32_t offset, const QJN::Value& v, const std::string& path, tCounts& counts)
{
    tDsetBillboard b;
    memset(&b, 0, sizeof b);
    b.id = id(v, path);
    const bool reference = isReference(v, counts.billboards, path);
    if (!reference)
        b.element = element(v, path);
    b.url = stringField(out, v, "URL", path, reference);
    out.put(offset, b);
    if (b.url)
        out.setPointer(offset + offsetof(tDsetBillboard, url), b.url);
}

void writeAvatarPiece(DsetWriter& out, uint32_t offset, const QJN::Value& v, const std::string& path, tCounts& counts)
{
    tDsetAvatarPiece a;
    memset(&a, 0, sizeof a);
    a.id = id(v, path);
    const bool reference = isReference(v, counts.avatarPieces, path);
    if (!reference)
        a.element = element(v, path);
    a.component = stringField(out, v, "Component", path, reference);
    a.variation = stringField(out, v, "Variation", path, reference);
    out.put(offset, a);
    if (a.component)
        out.setPointer(offset + offsetof(tDsetAvatarPiece, component), a.component);
    if (a.variation)
        out.setPointer(offset + offsetof(tDsetAvatarPiece, variation), a.variation);
}

void writeOperations(DsetWriter& out, uint32_t celOffset, const QJN::Value& cel, const std::string& path)
{
    if (!cel.isMember("Operations"))
        return;
    const std::string p = at(path, "Operations");
    const QJN::Value ops = array(cel["Operations"], p);
    const uint32_t count = ops.size();
    const uint32_t base = out.reserve(count * sizeof(tDsetOperation));
    for (unsigned int i = 0; i < count; ++i) {
        const std::string op = at(p, i);
        tDsetOperation o;
        memset(&o, 0, sizeof o);
        // Opcodes the actor ignores are kept: the loaders drop them, as they do from JSON.
        const int opcode = integer(ops[i]["Opcode"], at(op, "Opcode"));
        if (opcode < -32768 || opcode > 32767)
            fail(at(op, "Opcode"), "out of range");
        o.opcode = static_cast<int16_t>(opcode);
        const QJN::Value arg = ops[i]["Oparg"];
        const uint32_t offset = base + i * sizeof(tDsetOperation);
        if (ops[i].isMember("Oparg")) {
            if (opcode == 5 && arg.isArray()) {
                if (arg.size() != 1 && arg.size() != 2)
                    fail(at(op, "Oparg"), "expected 1 or 2 audio names");
                o.audioName1 = out.addString(text(arg[0u], at(at(op, "Oparg"), 0u)));
                if (arg.size() == 2)
                    o.audioName2 = out.addString(text(arg[1u], at(at(op, "Oparg"), 1u)));
            } else {
                o.oparg = static_cast<uint16_t>(integer(arg, at(op, "Oparg"), model(Object::Operation, "Oparg")));
            }
        }
        out.put(offset, o);
        if (o.audioName1)
            out.setPointer(offset + offsetof(tDsetOperation, audioName1), o.audioName1);
        if (o.audioName2)
            out.setPointer(offset + offsetof(tDsetOperation, audioName2), o.audioName2);
    }
    out.put(celOffset + offsetof(tDsetSpriteCel, operationCount), count);
    out.setPointer(celOffset + offsetof(tDsetSpriteCel, operations), base);
}

void writeChildren(DsetWriter& out, uint32_t celOffset, const QJN::Value& cel, const std::string& path, tCounts& counts)
{
    if (!cel.isMember("Children"))
        return;
    const std::string p = at(path, "Children");
    const QJN::Value children = array(cel["Children"], p);
    std::vector<unsigned int> billboards, pieces;
    for (unsigned int i = 0; i < children.size(); ++i) {
        const int type = integer(children[i]["ElementType"], at(at(p, i), "ElementType"));
        const Object kind = ContentModel::objectOf(type);
        if (kind == Object::Billboard)
            billboards.push_back(i);
        else if (kind == Object::AvatarPiece)
            pieces.push_back(i);
        else
            fail(at(at(p, i), "ElementType"), "only billboards (0) and avatar pieces (4, 5) can be compiled into a cel");
    }
    if (!billboards.empty()) {
        const uint32_t base = out.reserve(billboards.size() * sizeof(tDsetBillboard));
        for (size_t k = 0; k < billboards.size(); ++k)
            writeBillboard(out, base + k * sizeof(tDsetBillboard), children[billboards[k]], at(p, billboards[k]), counts);
        out.put(celOffset + offsetof(tDsetSpriteCel, billboardCount), static_cast<uint32_t>(billboards.size()));
        out.setPointer(celOffset + offsetof(tDsetSpriteCel, billboards), base);
    }
    if (!pieces.empty()) {
        const uint32_t base = out.reserve(pieces.size() * sizeof(tDsetAvatarPiece));
        for (size_t k = 0; k < pieces.size(); ++k)
            writeAvatarPiece(out, base + k * sizeof(tDsetAvatarPiece), children[pieces[k]], at(p, pieces[k]), counts);
        out.put(celOffset + offsetof(tDsetSpriteCel, avatarPieceCount), static_cast<uint32_t>(pieces.size()));
        out.setPointer(celOffset + offsetof(tDsetSpriteCel, avatarPieces), base);
    }
}

void actor(const QJN::Value& root, DsetWriter& out)
{
    if (!root.isObject())
        fail("(root)", "expected an object");
    const uint32_t rootOffset = out.reserve(sizeof(tDsetActor));
    tDsetActor a;
    memset(&a, 0, sizeof a);
    a.magic = DSET_ACTOR_MAGIC;
    a.element = element(root, "");
    if (!root.isMember("Animation"))
        fail("Animation", "missing");
    const QJN::Value cels = array(root["Animation"], "Animation");
    a.celCount = cels.size();
    out.put(rootOffset, a);
    out.setRoot(rootOffset);
    if (a.celCount == 0)
        return;
    const uint32_t base = out.reserve(a.celCount * sizeof(tDsetSpriteCel));
    out.setPointer(rootOffset + offsetof(tDsetActor, cels), base);
    tCounts counts;
    for (unsigned int i = 0; i < a.celCount; ++i) {
        const std::string p = at(std::string("Animation"), i);
        const QJN::Value cel = cels[i];
        if (!cel.isObject())
            fail(p, "expected an object");
        const uint32_t offset = base + i * sizeof(tDsetSpriteCel);
        tDsetSpriteCel c;
        memset(&c, 0, sizeof c);
        c.id = id(cel, p);
        c.duration = static_cast<uint16_t>(
            integer(cel["Duration"], at(p, "Duration"), model(Object::AnimationCel, "Duration")));
        if (cel.isMember("Label"))
            c.label = out.addString(text(cel["Label"], at(p, "Label")));
        out.put(offset, c);
        if (c.label)
            out.setPointer(offset + offsetof(tDsetSpriteCel, label), c.label);
        writeOperations(out, offset, cel, p);
        writeChildren(out, offset, cel, p, counts);
    }
}

void writeVariations(DsetWriter& out, uint32_t compOffset, const QJN::Value& variations, const std::string& cp)
{
    const uint32_t count = variations.size();
    out.put(compOffset + offsetof(tDsetCostumeComponent, variationCount), count);
    if (!count)
        return;
    const uint32_t varBase = out.reserve(count * sizeof(tDsetCostumeVariation));
    out.setPointer(compOffset + offsetof(tDsetCostumeComponent, variations), varBase);
    for (unsigned int v = 0; v < count; ++v) {
        const std::string vp = at(at(cp, "Variations"), v);
        const QJN::Value var = variations[v];
        tDsetCostumeVariation r;
        r.name = 0;
        r.left = number(var, Object::Variation, "RectLeft", vp);
        r.top = number(var, Object::Variation, "RectTop", vp);
        r.right = number(var, Object::Variation, "RectRight", vp);
        r.bottom = number(var, Object::Variation, "RectBottom", vp);
        r.regX = number(var, Object::Variation, "RegPointX", vp);
        r.regY = number(var, Object::Variation, "RegPointY", vp);
        const uint32_t name = out.addString(text(var["Name"], at(vp, "Name")));
        const uint32_t offset = varBase + v * sizeof(tDsetCostumeVariation);
        out.put(offset, r);
        out.setPointer(offset, name);
    }
}

void costume(const QJN::Value& root, DsetWriter& out)
{
    if (!root.isObject())
        fail("(root)", "expected an object");
    const uint32_t rootOffset = out.reserve(sizeof(tDsetCostume));
    tDsetCostume c;
    memset(&c, 0, sizeof c);
    c.magic = DSET_COSTUME_MAGIC;
    const QJN::Value lods = root.isMember("LODList") ? array(root["LODList"], "LODList") : QJN::Value();
    const QJN::Value audio = root.isMember("AudioList") ? array(root["AudioList"], "AudioList") : QJN::Value();
    c.lodCount = lods.size();
    c.audioCount = audio.size();
    out.put(rootOffset, c);
    out.setRoot(rootOffset);
    if (c.audioCount) {
        const uint32_t base = out.reserve(c.audioCount * sizeof(tDsetCostumeAudio));
        out.setPointer(rootOffset + offsetof(tDsetCostume, audio), base);
        for (unsigned int i = 0; i < c.audioCount; ++i) {
            const std::string p = at(std::string("AudioList"), i);
            const uint32_t offset = base + i * sizeof(tDsetCostumeAudio);
            out.setPointer(offset, out.addString(text(audio[i]["Name"], at(p, "Name"))));
            out.setPointer(offset + 4, out.addString(text(audio[i]["URI"], at(p, "URI"))));
        }
    }
    if (!c.lodCount)
        return;
    const uint32_t lodBase = out.reserve(c.lodCount * sizeof(tDsetCostumeLOD));
    out.setPointer(rootOffset + offsetof(tDsetCostume, lods), lodBase);
    for (unsigned int i = 0; i < c.lodCount; ++i) {
        const std::string p = at(std::string("LODList"), i);
        const uint32_t lodOffset = lodBase + i * sizeof(tDsetCostumeLOD);
        tDsetCostumeLOD lod;
        memset(&lod, 0, sizeof lod);
        lod.size = integer(lods[i]["Size"], at(p, "Size"), model(Object::LOD, "Size"));
        const uint32_t uri = out.addString(text(lods[i]["TextureURI"], at(p, "TextureURI")));
        const QJN::Value components = array(lods[i]["ComponentList"], at(p, "ComponentList"));
        lod.componentCount = components.size();
        out.put(lodOffset, lod);
        out.setPointer(lodOffset + offsetof(tDsetCostumeLOD, textureURI), uri);
        if (!lod.componentCount)
            continue;
        const uint32_t compBase = out.reserve(lod.componentCount * sizeof(tDsetCostumeComponent));
        out.setPointer(lodOffset + offsetof(tDsetCostumeLOD, components), compBase);
        for (unsigned int k = 0; k < lod.componentCount; ++k) {
            const std::string cp = at(at(p, "ComponentList"), k);
            const uint32_t compOffset = compBase + k * sizeof(tDsetCostumeComponent);
            const QJN::Value variations = array(components[k]["Variations"], at(cp, "Variations"));
            out.setPointer(compOffset, out.addString(text(components[k]["Name"], at(cp, "Name"))));
            writeVariations(out, compOffset, variations, cp);
        }
    }
}

template <class F> bool run(const std::string& jsonPath, DsetWriter& out, std::string& error, F body)
{
    QJN::CJSonFile file(jsonPath, QJN::CJSonFile::kStrict);
    if (!load(jsonPath, file, error))
        return false;
    try {
        body(file.getRoot(), out);
    } catch (const tCompileError& e) {
        error = jsonPath + ": " + e.what();
        return false;
    }
    return true;
}

} // namespace

tKind detectKind(const std::string& jsonPath, std::string& error)
{
    QJN::CJSonFile file(jsonPath, 0);
    if (!load(jsonPath, file, error))
        return KIND_UNKNOWN;
    switch (ContentModel::kindOf(file.getRoot())) {
    case ContentModel::FileKind::Actor: return KIND_ACTOR;
    case ContentModel::FileKind::Costume: return KIND_COSTUME;
    default: break;
    }
    error = jsonPath + ": neither an actor (no \"Animation\") nor a costume (no \"LODList\")";
    return KIND_UNKNOWN;
}

bool compileActor(const std::string& jsonPath, DsetWriter& out, std::string& error)
{
    return run(jsonPath, out, error, actor);
}

bool compileCostume(const std::string& jsonPath, DsetWriter& out, std::string& error)
{
    return run(jsonPath, out, error, costume);
}

bool compileFile(const std::string& jsonPath, const std::string& outBase, tKind& kind, std::string& error)
{
    kind = detectKind(jsonPath, error);
    if (kind == KIND_UNKNOWN)
        return false;
    DsetWriter out;
    const bool ok = kind == KIND_ACTOR ? compileActor(jsonPath, out, error) : compileCostume(jsonPath, out, error);
    return ok && out.write(outBase + ".dsetBin", outBase + ".relinkBin", error);
}

} // namespace DsetCompiler
