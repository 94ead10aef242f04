#include "ContentCheck.h"

#include "DsetCheck.h"
#include "Paths.h"

#include "CAvatarCostume.h"
#include "CTextureSheet.h"

#include <BaseUtils.h>
#include <DebugMPI.h>
#include <SystemData.h>

#include <algorithm>
#include <cstdio>
#include <glibmm/ustring.h>

struct ContentCheck::tCel
{
    const Json::Value* at;
    long long target;
};

namespace {

using namespace ContentModel;

const char* const kTableNames[] = {"billboard", "sprite", "sprite cel", "actor", "avatar piece"};

std::string quoted(const std::string& s) { return "\"" + s + "\""; }

std::string lower(std::string s)
{
    for (char& c : s)
        c = static_cast<char>(tolower(static_cast<unsigned char>(c)));
    return s;
}

/// Edits (insert, delete, replace, swap of neighbours) from a to b, ignoring case.
size_t distance(const std::string& a0, const std::string& b0)
{
    const std::string a = lower(a0), b = lower(b0);
    std::vector<std::vector<size_t> > d(a.size() + 1, std::vector<size_t>(b.size() + 1));
    for (size_t i = 0; i <= a.size(); ++i)
        d[i][0] = i;
    for (size_t j = 0; j <= b.size(); ++j)
        d[0][j] = j;
    for (size_t i = 1; i <= a.size(); ++i)
        for (size_t j = 1; j <= b.size(); ++j) {
            d[i][j] = std::min({d[i - 1][j] + 1, d[i][j - 1] + 1, d[i - 1][j - 1] + (a[i - 1] != b[j - 1])});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
        }
    return d[a.size()][b.size()];
}

std::string opcodeList() { return "1 and 2 jump, 3 triggers, 4 stops, 5 plays audio"; }

} // namespace

ContentCheck::ContentCheck(Diagnostics& report, const SceneOptions& options) : mReport(report), mOptions(options)
{
    for (const std::string& dir : mOptions.artPaths)
        CSystemData::Instance()->AddArtPath(dir);
    loadSheetNames();
    mHasCostume = !mOptions.costume.empty();
}

int ContentCheck::errorsIn(const SceneOptions& options, std::string& first)
{
    Diagnostics report;
    std::vector<std::string> files;
    if (!options.scene.empty())
        files.push_back(options.scene);
    quietly(options, files, options.scene.empty() ? Unknown : Scene, report);
    first = report.firstError();
    return report.errors();
}

void ContentCheck::quietly(const ContentOptions& options, const std::vector<std::string>& files, Kind kind,
                           Diagnostics& found)
{
    using Tadwick::Vell::CDebugMPI;
    const CDebugMPI::tHandler handler = CDebugMPI::SetHandler([](int, int, const std::string&) {});
    const CDebugMPI::tHandler listener = CDebugMPI::SetListener(CDebugMPI::tHandler());
    const BaseUtils::tAssertHandler assertListener = BaseUtils::SetAssertListener(BaseUtils::tAssertHandler());
    {
        SceneOptions scene;
        static_cast<ContentOptions&>(scene) = options;
        ContentCheck check(found, scene);
        check.checkAll(files, kind);
    }
    BaseUtils::SetAssertListener(assertListener);
    CDebugMPI::SetListener(listener);
    CDebugMPI::SetHandler(handler);
}

void ContentCheck::loadSheetNames()
{
    mHasSheet = !mOptions.sheets.empty();
    for (const std::string& sheet : mOptions.sheets) {
        JsonDocument doc;
        if (!doc.load(sheet))
            continue;
        const Json::Value& bitmaps = member(doc.root(), "ImageData");
        for (Json::ArrayIndex b = 0; bitmaps.isArray() && b < bitmaps.size(); ++b) {
            const Json::Value& images = member(bitmaps[b], "Images");
            for (Json::ArrayIndex i = 0; images.isArray() && i < images.size(); ++i)
                if (member(images[i], "Name").isString())
                    mSheetNames.insert(Glib::ustring(images[i]["Name"].asString()).collate_key());
        }
    }
}

void ContentCheck::loadCostumeComponents()
{
    if (mCostumeLoaded || !mHasCostume)
        return;
    mCostumeLoaded = true;
    const std::string& path = mOptions.costume;
    if (datasetKindOf(path) == Dataset) {
        Diagnostics ignored;
        DsetCheck dset(ignored, *this);
        dset.check(path, Costume);
        return;
    }
    JsonDocument doc;
    if (!doc.load(path))
        return;
    mCostumeUsable = ContentModel::kindOf(doc.root()) == Costume;
    const Json::Value& lods = member(doc.root(), "LODList");
    if (!lods.isArray() || lods.empty())
        return;
    // Pieces show the first LOD loaded: with every LOD loaded, the file's first.
    const Json::Value& components = member(lods[0u], "ComponentList");
    for (Json::ArrayIndex c = 0; components.isArray() && c < components.size(); ++c) {
        const Json::Value& name = member(components[c], "Name");
        std::vector<std::string>& names = mCostumeComponents[name.isString() ? name.asString() : ""];
        const Json::Value& variations = member(components[c], "Variations");
        for (Json::ArrayIndex v = 0; variations.isArray() && v < variations.size(); ++v)
            if (member(variations[v], "Name").isString())
                names.push_back(variations[v]["Name"].asString());
    }
}

ContentCheck::Kind ContentCheck::roleOf(const std::string& path) const
{
    if (std::find(mOptions.sheets.begin(), mOptions.sheets.end(), path) != mOptions.sheets.end())
        return Sheet;
    if (path == mOptions.costume)
        return Costume;
    return std::find(mOptions.actors.begin(), mOptions.actors.end(), path) != mOptions.actors.end() ? Actor
                                                                                                     : Unknown;
}

bool ContentCheck::wrongKind(const std::string& path, Kind role, Kind held)
{
    if (role == Unknown || held == Unknown || role == held)
        return false;
    if (role == Costume)
        mCostumeUsable = false;
    mReport.add(path, 1, 1, Diagnostics::Error,
                quoted(path) + " is given as " + (role == Actor ? "an actor" : std::string("a ") + kindName(role)) +
                    " but holds " + (held == Actor ? "an actor" : std::string("a ") + kindName(held)) +
                    ": it is not " + (role == Actor ? "an actor" : std::string("a ") + kindName(role)));
    return true;
}

void ContentCheck::checkAll(const std::vector<std::string>& files, Kind kind)
{
    std::vector<std::string> extras = mOptions.sheets;
    extras.push_back(mOptions.costume);
    extras.insert(extras.end(), mOptions.actors.begin(), mOptions.actors.end());
    for (size_t i = 0; i < extras.size(); ++i)
        if (!extras[i].empty() && std::find(files.begin(), files.end(), extras[i]) == files.end())
            check(extras[i], i < mOptions.sheets.size() ? Sheet : Unknown);
    for (const std::string& file : files)
        check(file, kind);
}

void ContentCheck::check(const std::string& path, Kind kind)
{
    if (!mChecked.insert(path).second)
        return;
    mReport.fileChecked();
    // Whatever the file holds, the checker reports it; nothing it meets may stop the tool.
    try {
        if (kind == Dataset || (kind == Unknown && datasetKindOf(path) == Dataset)) {
            loadCostumeComponents();
            DsetCheck(mReport, *this).check(path, roleOf(path));
            return;
        }
        checkJson(path, kind);
    } catch (const std::exception& e) {
        mReport.add(path, 1, 1, Diagnostics::Error, std::string("cannot be checked: ") + e.what());
    }
    mDoc = 0;
}

void ContentCheck::checkJson(const std::string& path, Kind kind)
{
    JsonDocument doc;
    if (!doc.load(path)) {
        mReport.add(path, doc.errorPlace().line, doc.errorPlace().column, Diagnostics::Error, doc.error());
        return;
    }
    mDoc = &doc;
    mPath = path;
    for (std::vector<std::string>& table : mDefinedAt)
        table.clear();
    mToldNoCostume = false;
    const Json::Value& root = doc.root();
    if (kind == Unknown) {
        kind = ContentModel::kindOf(root);
        if (wrongKind(path, roleOf(path), kind))
            return;
    }
    switch (kind) {
    case Scene:
        mPrefix = scenePrefix(path, mOptions.hasDefaultPath, mOptions.defaultPath);
        loadCostumeComponents();
        checkScene(root);
        break;
    case Actor:
        // Actor files name their images relative to their own directory, whatever the default path.
        mPrefix = actorPrefix(path);
        loadCostumeComponents();
        checkActorFile(root);
        break;
    case Sheet: checkSheet(root); break;
    case Costume: checkCostume(root); break;
    default:
        error(root, "cannot tell what this file is: a scene is an array, an actor has \"Animation\", a texture "
                    "sheet \"ImageData\", a costume \"LODList\" (or give --kind)");
    }
}

// ---------------------------------------------------------------------------
// Reporting

void ContentCheck::error(const Json::Value& at, const std::string& message)
{
    const JsonDocument::tPlace p = mDoc->place(at);
    mReport.add(mPath, p.line, p.column, Diagnostics::Error, message);
}

void ContentCheck::warning(const Json::Value& at, const std::string& message)
{
    const JsonDocument::tPlace p = mDoc->place(at);
    mReport.add(mPath, p.line, p.column, Diagnostics::Warning, message);
}

void ContentCheck::keyError(const Json::Value& object, const std::string& key, Diagnostics::Severity severity,
                            const std::string& message)
{
    const JsonDocument::tPlace p = mDoc->keyPlace(object, key);
    mReport.add(mPath, p.line, p.column, severity, message);
}

std::string ContentCheck::placeText(const Json::Value& v) const
{
    const JsonDocument::tPlace p = mDoc->place(v);
    return std::to_string(p.line) + ":" + std::to_string(p.column);
}

// ---------------------------------------------------------------------------
// Values

void ContentCheck::keys(const Json::Value& object, Object kind, std::initializer_list<const char*> extra)
{
    std::vector<const char*> known(extra);
    for (const tKey& k : ContentModel::keys(kind))
        known.push_back(k.name);
    for (const std::string& key : object.getMemberNames()) {
        if (std::find_if(known.begin(), known.end(), [&key](const char* k) { return key == k; }) != known.end())
            continue;
        const char* nearest = 0;
        size_t best = 3;
        for (const char* k : known) {
            const size_t d = distance(key, k);
            if (d < best && d < std::string(k).size()) {
                best = d;
                nearest = k;
            }
        }
        std::string message = "unknown key " + quoted(key) + " in " + describe(kind);
        if (nearest)
            message += "; did you mean " + quoted(nearest) + "?";
        keyError(object, key, Diagnostics::Error, message);
    }
}

void ContentCheck::members(const Json::Value& object, Object kind, std::initializer_list<const char*> handled)
{
    for (const tKey& k : ContentModel::keys(kind)) {
        if (std::find_if(handled.begin(), handled.end(), [&k](const char* h) { return !strcmp(h, k.name); }) !=
            handled.end())
            continue;
        if (object.isMember(k.name))
            shape(object, k);
        else if (k.required)
            require(object, k.name, describe(kind));
    }
}

void ContentCheck::shape(const Json::Value& object, const tKey& key)
{
    const Json::Value& v = object[key.name];
    const std::string name = quoted(key.name);
    if (key.type != Type::Array) {
        static const char* const expected[] = {" must be an integer", " must be a number", " must be a string", "",
                                               ""};
        if (!hasShape(v, key))
            error(v, name + expected[static_cast<int>(key.type)]);
        else if (key.type == Type::Number && (v.asDouble() < kFixedMin || v.asDouble() >= kFixedMax + 1))
            error(v, name + " " + v.asString() + " is outside -32768 to 32767: fixed point cannot hold it");
        return;
    }
    if (key.itemType == Type::Array) {
        if (!v.isArray())
            error(v, name + " must be an array");
        return;
    }
    const std::string sizes = key.minItems == key.maxItems
                                  ? std::to_string(key.minItems)
                                  : std::to_string(key.minItems) + " or " + std::to_string(key.maxItems);
    const bool integers = key.itemType == Type::Integer;
    const std::string items = integers ? " integers" : " numbers";
    if (!v.isArray()) {
        error(v, name + " must be an array of " + sizes + items);
        return;
    }
    if (v.size() < key.minItems || v.size() > key.maxItems) {
        error(v, name + " has " + std::to_string(v.size()) + (v.size() == 1 ? " item" : " items") + "; it takes " +
                     sizes + items);
        return;
    }
    for (Json::ArrayIndex i = 0; i < v.size(); ++i) {
        const bool ok = integers ? isInteger(v[i]) : v[i].isNumeric();
        if (!ok)
            error(v[i], name + " item " + std::to_string(i) + " must be " + (integers ? "an integer" : "a number"));
        else if (!integers && (v[i].asDouble() < kFixedMin || v[i].asDouble() >= kFixedMax + 1))
            error(v[i], name + " item " + std::to_string(i) + " is outside -32768 to 32767: fixed point cannot hold it");
    }
}

bool ContentCheck::require(const Json::Value& object, const char* key, const char* what)
{
    if (object.isMember(key))
        return true;
    error(object, std::string(what) + " without " + quoted(key));
    return false;
}

bool ContentCheck::stringMember(const Json::Value& object, const char* key, const char* what, bool required,
                                std::string& out)
{
    if (!object.isMember(key)) {
        if (required)
            require(object, key, what);
        return false;
    }
    const Json::Value& v = object[key];
    if (!v.isString()) {
        error(v, quoted(key) + " must be a string");
        return false;
    }
    out = v.asString();
    return true;
}

bool ContentCheck::integerMember(const Json::Value& object, const char* key, bool required, const char* what,
                                 long long& out)
{
    if (!object.isMember(key)) {
        if (required)
            require(object, key, what);
        return false;
    }
    const Json::Value& v = object[key];
    if (!isInteger(v)) {
        error(v, quoted(key) + " must be an integer");
        return false;
    }
    out = v.asInt64();
    return true;
}

bool ContentCheck::objectArray(const Json::Value& object, const char* key, bool required, const char* what)
{
    if (!object.isMember(key)) {
        if (required)
            require(object, key, what);
        return false;
    }
    const Json::Value& v = object[key];
    if (!v.isArray()) {
        error(v, quoted(key) + " must be an array");
        return false;
    }
    return true;
}

// ---------------------------------------------------------------------------
// Scenes and actors

void ContentCheck::checkScene(const Json::Value& root)
{
    if (!root.isArray()) {
        error(root, "a scene file is an array of elements");
        return;
    }
    for (Json::ArrayIndex i = 0; i < root.size(); ++i) {
        const Json::Value& entry = root[i];
        if (isInteger(member(entry, "ElementType")) && entry["ElementType"].asInt() == int(ElementKind::Actor))
            actor(entry, true);
        else
            element(entry);
    }
}

void ContentCheck::checkActorFile(const Json::Value& root)
{
    if (!root.isObject()) {
        error(root, "an actor file is an object with \"Animation\"");
        return;
    }
    keys(root, Object::ActorFile, {"Children"});
    if (root.isMember("Children"))
        keyError(root, "Children", Diagnostics::Warning,
                 "an actor's \"Children\" are not loaded: put them in the cels of \"Animation\"");
    members(root, Object::ActorFile);
    colors(root);
    if (root["Animation"].isArray())
        animation(root["Animation"]);
}

void ContentCheck::element(const Json::Value& v)
{
    if (!v.isObject()) {
        error(v, "an element must be an object");
        return;
    }
    long long type = 0;
    if (!integerMember(v, "ElementType", true, "an element", type))
        return;
    switch (objectOf(type)) {
    case Object::Billboard: billboard(v); break;
    case Object::Sprite: sprite(v); break;
    case Object::SpriteCel: cel(v, false, 0); break;
    case Object::Actor: actor(v, false); break;
    case Object::AvatarPiece: piece(v); break;
    default:
        error(v["ElementType"], "unknown \"ElementType\" " + std::to_string(type) +
                                    ": the entry loads as nothing (0 billboard, 1 sprite, 2 sprite cel, 3 actor, "
                                    "4 and 5 avatar piece)");
    }
}

bool ContentCheck::definition(const Json::Value& v, Table table, const char* what)
{
    long long id = 0;
    const bool given = integerMember(v, "ID", true, what, id);
    std::vector<std::string>& defined = mDefinedAt[table];
    const unsigned int number = static_cast<unsigned int>(static_cast<int>(id));
    if (number < defined.size()) {
        std::vector<std::string> extra;
        for (const std::string& key : v.getMemberNames())
            if (key != "ElementType" && key != "ID" && (table != Cels || key != "Label"))
                extra.push_back(key);
        if (!extra.empty())
            error(given ? v["ID"] : v, quoted("ID") + " " + std::to_string(number) + " refers to " +
                                           kTableNames[table] + " " + std::to_string(number) + " (defined at " +
                                           defined[number] + "): this entry shares it and its other keys (" +
                                           quoted(extra.front()) + (extra.size() > 1 ? ", ..." : "") +
                                           ") are not read");
        return false;
    }
    if (given && number != defined.size())
        error(v["ID"], quoted("ID") + " " + std::to_string(id) + " is not the next " + kTableNames[table] +
                           " number: the loader makes it " + kTableNames[table] + " " +
                           std::to_string(defined.size()));
    defined.push_back(placeText(v));
    return true;
}

void ContentCheck::colors(const Json::Value& v)
{
    const Json::Value& color = v["Color"];
    const tKey& model = *key(Object::Billboard, "Color");
    if (color.isArray() && color.size() == model.minItems)
        for (Json::ArrayIndex i = 0; i < color.size(); ++i)
            if (isInteger(color[i]) && (color[i].asInt() < model.min || color[i].asInt() > model.max))
                error(color[i], "\"Color\" item " + std::to_string(i) + " is " + std::to_string(color[i].asInt()) +
                                    ": channels run from " + std::to_string(model.min) + " to " +
                                    std::to_string(model.max));
}

void ContentCheck::children(const Json::Value& v)
{
    const Json::Value& list = member(v, "Children");
    for (Json::ArrayIndex i = 0; list.isArray() && i < list.size(); ++i)
        element(list[i]);
}

void ContentCheck::billboard(const Json::Value& v)
{
    keys(v, Object::Billboard);
    if (!definition(v, Billboards, describe(Object::Billboard)))
        return;
    members(v, Object::Billboard, {"ElementType", "ID"});
    colors(v);
    if (v["URL"].isString()) {
        const JsonDocument::tPlace p = mDoc->place(v["URL"]);
        checkBillboardImage(v["URL"].asString(), mPrefix, mPath, p.line, p.column);
    }
}

void ContentCheck::sprite(const Json::Value& v)
{
    keys(v, Object::Sprite);
    if (!definition(v, Sprites, describe(Object::Sprite)))
        return;
    members(v, Object::Sprite, {"ElementType", "ID"});
    colors(v);
    children(v);
}

void ContentCheck::cel(const Json::Value& v, bool inActor, std::vector<tCel>* jumps)
{
    if (!v.isObject()) {
        error(v, "a sprite cel must be an object");
        return;
    }
    const Object kind = inActor ? Object::AnimationCel : Object::SpriteCel;
    keys(v, kind);
    if (!definition(v, Cels, describe(Object::SpriteCel)))
        return;
    members(v, kind, {"ElementType", "ID", "Label"});
    colors(v);
    children(v);
    const tKey& model = *key(kind, "Duration");
    const Json::Value& duration = v["Duration"];
    if (isInteger(duration) && (duration.asInt() < model.min || duration.asInt() > model.max))
        error(duration, "\"Duration\" " + duration.asString() + " is not a duration: cels last " +
                            std::to_string(model.min) + " to " + std::to_string(model.max) + " ms");
    if (v["Operations"].isArray())
        operations(v["Operations"], jumps);
}

void ContentCheck::operations(const Json::Value& list, std::vector<tCel>* jumps)
{
    for (Json::ArrayIndex i = 0; i < list.size(); ++i) {
        const Json::Value& op = list[i];
        if (!op.isObject()) {
            error(op, "an operation must be an object");
            continue;
        }
        keys(op, Object::Operation);
        long long opcode = 0;
        if (!integerMember(op, "Opcode", true, describe(Object::Operation), opcode))
            continue;
        const tKey& opcodes = *key(Object::Operation, "Opcode");
        if (opcode < opcodes.min || opcode > opcodes.max)
            error(op["Opcode"], "opcode " + std::to_string(opcode) + " does nothing: the actor runs " + opcodeList());
        if (!op.isMember("Oparg"))
            continue;
        const Json::Value& arg = op["Oparg"];
        if (opcode == 5 && arg.isArray()) {
            if (arg.size() < 1 || arg.size() > 2) {
                error(arg, "a Play Audio \"Oparg\" array holds 1 or 2 strings, not " + std::to_string(arg.size()));
                continue;
            }
            for (Json::ArrayIndex k = 0; k < arg.size(); ++k)
                if (!arg[k].isString())
                    error(arg[k], "a Play Audio \"Oparg\" array holds strings");
            if (arg[0u].isString()) {
                const JsonDocument::tPlace p = mDoc->place(arg[0u]);
                checkAudio(arg[0u].asString(), mPath, p.line, p.column);
            }
            continue;
        }
        if (!isInteger(arg)) {
            error(arg, opcode == 5 ? "a Play Audio \"Oparg\" must be an integer or an array of 1 or 2 strings"
                                   : "\"Oparg\" must be an integer");
            continue;
        }
        const tKey& opargs = *key(Object::Operation, "Oparg");
        if (arg.asInt() < opargs.min || arg.asInt() > opargs.max)
            error(arg, "\"Oparg\" " + std::to_string(arg.asInt()) + " does not fit in 16 bits: it is read as " +
                           std::to_string(static_cast<unsigned short>(arg.asInt())));
        if ((opcode == 1 || opcode == 2) && jumps)
            jumps->push_back(tCel{&arg, static_cast<unsigned short>(arg.asInt())});
    }
}

void ContentCheck::actor(const Json::Value& v, bool topLevel)
{
    keys(v, Object::Actor, {"Children"});
    if (v.isMember("Children"))
        keyError(v, "Children", Diagnostics::Warning,
                 "an actor's \"Children\" are not loaded: put them in the cels of \"Animation\"");
    long long id = 0;
    const std::vector<std::string>& defined = mDefinedAt[Actors];
    if (topLevel && integerMember(v, "ID", true, describe(Object::Actor), id) &&
        static_cast<unsigned int>(static_cast<int>(id)) < defined.size()) {
        // A placement of an earlier actor: a copy, placed by its own graphic keys.
        if (v.isMember("Animation"))
            keyError(v, "Animation", Diagnostics::Error,
                     quoted("ID") + " " + std::to_string(id) + " places a copy of actor " + std::to_string(id) +
                         " (defined at " + defined[static_cast<size_t>(id)] + "): its \"Animation\" is not read");
        members(v, Object::Actor, {"ElementType", "ID", "Animation"});
        colors(v);
        return;
    }
    if (!definition(v, Actors, describe(Object::Actor)))
        return;
    members(v, Object::Actor, {"ElementType", "ID"});
    colors(v);
    if (v["Animation"].isArray())
        animation(v["Animation"]);
}

void ContentCheck::animation(const Json::Value& list)
{
    std::vector<tCel> jumps;
    std::map<std::string, const Json::Value*> labels;
    for (Json::ArrayIndex i = 0; i < list.size(); ++i) {
        const Json::Value& entry = list[i];
        if (entry.isObject() && entry.isMember("Label")) {
            const Json::Value& label = entry["Label"];
            if (!label.isString()) {
                error(label, "\"Label\" must be a string");
            } else {
                const std::string key = Glib::ustring(label.asString()).collate_key();
                if (labels.count(key))
                    error(label, "animation label " + quoted(label.asString()) + " is already used at " +
                                     placeText(*labels[key]) + ": this cel continues the animation before it");
                else
                    labels[key] = &label;
            }
        }
        cel(entry, true, &jumps);
    }
    for (const tCel& jump : jumps)
        if (jump.target >= static_cast<long long>(list.size()))
            error(*jump.at, "jump to cel " + std::to_string(jump.target) + ", past the last cel (" +
                                std::to_string(static_cast<long long>(list.size()) - 1) + ")");
}

void ContentCheck::piece(const Json::Value& v)
{
    keys(v, Object::AvatarPiece);
    if (!mHasCostume && !mToldNoCostume) {
        mToldNoCostume = true;
        error(v, "avatar pieces need a costume: give --costume");
    }
    if (!definition(v, Pieces, describe(Object::AvatarPiece)))
        return;
    members(v, Object::AvatarPiece, {"ElementType", "ID"});
    colors(v);
    if (v["Component"].isString() && v["Variation"].isString() && mHasCostume) {
        const JsonDocument::tPlace p = mDoc->place(v["Component"]);
        checkPiece(v["Component"].asString(), v["Variation"].asString(), mPath, p.line, p.column);
    }
}

// ---------------------------------------------------------------------------
// What content names

void ContentCheck::checkBillboardImage(const std::string& name, const std::string& prefix, const std::string& file,
                                       int line, int column)
{
    if (mHasSheet && mSheetNames.count(Glib::ustring(name).collate_key()))
        return;
    const std::string path = billboardFile(prefix, name);
    if (!ImageCheck::exists(path)) {
        std::string sheets;
        for (const std::string& sheet : mOptions.sheets)
            sheets += (sheets.empty() ? "" : " or ") + quoted(sheet);
        std::string message = mHasSheet ? "image " + quoted(name) + " is neither a picture of the sheet " + sheets +
                                              " nor a file (" + quoted(path) + ")"
                                        : "image file " + quoted(path) + " not found";
        message += ": the placeholder is shown";
        if (!prefix.empty() && prefix.back() != '/' && ImageCheck::exists(prefix + "/" + name))
            message += " (the default path " + quoted(prefix) + " has no trailing \"/\")";
        mReport.add(file, line, column, Diagnostics::Error, message);
        return;
    }
    checkImageFile(path, "image", file, line, column);
}

void ContentCheck::checkImageFile(const std::string& path, const std::string& usedFor, const std::string& file,
                                  int line, int column)
{
    if (!ImageCheck::exists(path)) {
        mReport.add(file, line, column, Diagnostics::Error, usedFor + " file " + quoted(path) + " not found");
        return;
    }
    bool seen = false;
    const std::vector<std::string>& problems = mImages.problems(path, seen);
    if (seen)
        return;
    for (const std::string& problem : problems)
        mReport.add(file, line, column, Diagnostics::Error, problem);
}

void ContentCheck::checkPiece(const std::string& component, const std::string& variation, const std::string& file,
                              int line, int column)
{
    loadCostumeComponents();
    if (!mCostumeUsable)
        return;
    std::map<std::string, std::vector<std::string> >::const_iterator it = mCostumeComponents.find(component);
    if (it == mCostumeComponents.end()) {
        mReport.add(file, line, column, Diagnostics::Error,
                    "component " + quoted(component) + " is not in the costume " + quoted(mOptions.costume) +
                        ": the piece shows nothing");
        return;
    }
    const std::vector<std::string>& variations = it->second;
    if (!variations.empty() && std::find(variations.begin(), variations.end(), variation) == variations.end())
        mReport.add(file, line, column, Diagnostics::Error,
                    "variation " + quoted(variation) + " of " + quoted(component) +
                        " is not in the costume: variation " + quoted(variations.front()) + " is shown instead");
}

void ContentCheck::checkAudio(const std::string& name, const std::string& file, int line, int column)
{
    if (CSystemData::Instance()->FindAudio(name).empty())
        mReport.add(file, line, column, Diagnostics::Warning, "audio " + quoted(name) + " not found by the asset lookup");
}

// ---------------------------------------------------------------------------
// Texture sheets and costumes

void ContentCheck::checkSheet(const Json::Value& root)
{
    if (!root.isObject()) {
        error(root, "a texture sheet is an object with \"ImageData\"");
        return;
    }
    keys(root, Object::Sheet);
    members(root, Object::Sheet);
    const Json::Value& bitmaps = root["ImageData"];
    std::map<std::string, std::string> names;
    for (Json::ArrayIndex b = 0; bitmaps.isArray() && b < bitmaps.size(); ++b) {
        const Json::Value& bitmap = bitmaps[b];
        if (!bitmap.isObject()) {
            error(bitmap, "a bitmap entry must be an object");
            continue;
        }
        keys(bitmap, Object::Bitmap);
        members(bitmap, Object::Bitmap);
        std::string file;
        if (bitmap["Bitmap"].isString()) {
            file = sheetBitmapFile(mPath, bitmap["Bitmap"].asString());
            const JsonDocument::tPlace p = mDoc->place(bitmap["Bitmap"]);
            checkImageFile(file, "bitmap", mPath, p.line, p.column);
        }
        const Json::Value& images = bitmap["Images"];
        for (Json::ArrayIndex i = 0; images.isArray() && i < images.size(); ++i) {
            if (!images[i].isObject())
                error(images[i], "a picture must be an object");
            else
                checkPicture(images[i], file, names);
        }
    }
}

void ContentCheck::checkPicture(const Json::Value& picture, const std::string& bitmapFile,
                                std::map<std::string, std::string>& names)
{
    keys(picture, Object::Picture);
    members(picture, Object::Picture);
    const Json::Value& name = picture["Name"];
    if (name.isString()) {
        const std::string key = Glib::ustring(name.asString()).collate_key();
        if (names.count(key))
            warning(name, "picture " + quoted(name.asString()) + " is named again: it replaces the one at " +
                              names[key]);
        names[key] = placeText(name);
    }
    const Json::Value& p1 = picture["P1"];
    const Json::Value& p2 = picture["P2"];
    std::string size;
    if (!bitmapFile.empty() && hasShape(p1, *key(Object::Picture, "P1")) &&
        hasShape(p2, *key(Object::Picture, "P2")) &&
        !fitsImage(bitmapFile, p1[0u].asDouble(), p1[1u].asDouble(), p2[0u].asDouble(), p2[1u].asDouble(), size))
        error(p1, "picture " + quoted(name.isString() ? name.asString() : "") + " from [" + p1[0u].asString() + ", " +
                      p1[1u].asString() + "] to [" + p2[0u].asString() + ", " + p2[1u].asString() +
                      "] lies outside its bitmap (" + size + "): the wrong part of the page is drawn");
}

bool ContentCheck::fitsImage(const std::string& imageFile, double left, double top, double right, double bottom,
                             std::string& size)
{
    unsigned int width = 0, height = 0;
    if (!mImages.size(imageFile, width, height))
        return true;
    size = std::to_string(width) + " x " + std::to_string(height) + " pixels";
    for (double x : {left, right})
        if (x < 0 || x > width)
            return false;
    for (double y : {top, bottom})
        if (y < 0 || y > height)
            return false;
    return true;
}

void ContentCheck::checkCostume(const Json::Value& root)
{
    if (!root.isObject()) {
        error(root, "a costume is an object with \"LODList\"");
        return;
    }
    keys(root, Object::Costume);
    members(root, Object::Costume);
    const Json::Value& audio = root["AudioList"];
    for (Json::ArrayIndex i = 0; audio.isArray() && i < audio.size(); ++i) {
        if (!audio[i].isObject()) {
            error(audio[i], "an audio entry must be an object");
            continue;
        }
        keys(audio[i], Object::Audio);
        members(audio[i], Object::Audio);
    }
    const Json::Value& lods = root["LODList"];
    if (!lods.isArray())
        return;
    if (lods.empty())
        error(lods, "\"LODList\" is empty: avatar pieces show nothing");
    for (Json::ArrayIndex l = 0; l < lods.size(); ++l) {
        if (!lods[l].isObject())
            error(lods[l], "an LOD must be an object");
        else
            checkLOD(lods[l]);
    }
}

void ContentCheck::checkLOD(const Json::Value& lod)
{
    keys(lod, Object::LOD);
    members(lod, Object::LOD, {"TextureURI", "ComponentList"});
    const tKey& sizes = *key(Object::LOD, "Size");
    if (isInteger(lod["Size"]) && lod["Size"].asInt() < sizes.min)
        error(lod["Size"], "\"Size\" " + lod["Size"].asString() + " is not a size: pieces are scaled by 100 / \"Size\"");
    std::string texture;
    if (!lod.isMember("TextureURI"))
        error(lod, "an LOD without \"TextureURI\": its pieces show nothing");
    else if (!lod["TextureURI"].isString())
        error(lod["TextureURI"], "\"TextureURI\" must be a string");
    else {
        texture = costumeTextureFile(mPath, lod["TextureURI"].asString());
        const JsonDocument::tPlace p = mDoc->place(lod["TextureURI"]);
        checkImageFile(texture, "texture", mPath, p.line, p.column);
    }
    if (!objectArray(lod, "ComponentList", true, describe(Object::LOD)))
        return;
    const Json::Value& components = lod["ComponentList"];
    for (Json::ArrayIndex c = 0; c < components.size(); ++c) {
        const Json::Value& component = components[c];
        if (!component.isObject()) {
            error(component, "a component must be an object");
            continue;
        }
        keys(component, Object::Component);
        members(component, Object::Component, {"Variations"});
        const std::string name = component["Name"].isString() ? component["Name"].asString() : "";
        const Json::Value& variations = component["Variations"];
        if (!variations.isArray() || variations.empty()) {
            if (component.isMember("Variations") && !variations.isArray())
                error(variations, "\"Variations\" must be an array");
            else
                error(component, "component " + quoted(name) + " has no variations: its pieces show nothing");
            continue;
        }
        for (Json::ArrayIndex v = 0; v < variations.size(); ++v) {
            if (!variations[v].isObject())
                error(variations[v], "a variation must be an object");
            else
                checkVariation(variations[v], name, texture);
        }
    }
}

void ContentCheck::checkVariation(const Json::Value& variation, const std::string& component,
                                  const std::string& textureFile)
{
    keys(variation, Object::Variation);
    members(variation, Object::Variation);
    const char* const edges[] = {"RectLeft", "RectTop", "RectRight", "RectBottom"};
    double rect[4];
    for (int i = 0; i < 4; ++i) {
        if (!variation[edges[i]].isNumeric())
            return;
        rect[i] = variation[edges[i]].asDouble();
    }
    std::string size;
    if (!textureFile.empty() && !fitsImage(textureFile, rect[0], rect[1], rect[2], rect[3], size)) {
        const Json::Value& name = variation["Name"];
        error(variation[edges[0]], "variation " + quoted(name.isString() ? name.asString() : "") + " of " +
                                       quoted(component) + " lies outside its texture (" + size +
                                       "): the wrong part of the texture is drawn");
    }
}
