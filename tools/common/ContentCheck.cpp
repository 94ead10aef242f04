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

const char* const kTableNames[] = {"billboard", "sprite", "sprite cel", "actor", "avatar piece"};

const std::vector<const char*> kGraphic = {"Position", "Rotation", "Scale", "Reg", "Color"};

std::vector<const char*> with(std::vector<const char*> keys, std::initializer_list<const char*> more)
{
    keys.insert(keys.end(), more.begin(), more.end());
    return keys;
}

const std::vector<const char*> kBillboardKeys = with(kGraphic, {"ElementType", "ID", "URL"});
const std::vector<const char*> kSpriteKeys = with(kGraphic, {"ElementType", "ID", "Children"});
const std::vector<const char*> kCelKeys = with(kSpriteKeys, {"Duration", "Operations"});
const std::vector<const char*> kAnimationCelKeys = with(kCelKeys, {"Label"});
const std::vector<const char*> kActorKeys = with(kGraphic, {"ElementType", "ID", "Animation"});
const std::vector<const char*> kActorFileKeys = with(kGraphic, {"Animation", "$schema"});
const std::vector<const char*> kPieceKeys = with(kGraphic, {"ElementType", "ID", "Component", "Variation"});
const std::vector<const char*> kOperationKeys = {"Opcode", "Oparg"};
const std::vector<const char*> kSheetKeys = {"ImageData", "$schema"};
const std::vector<const char*> kBitmapKeys = {"Bitmap", "Images"};
const std::vector<const char*> kPictureKeys = {"Name", "P1", "P2", "RegPoint", "CropRect"};
const std::vector<const char*> kCostumeKeys = {"LODList", "AudioList", "$schema"};
const std::vector<const char*> kLODKeys = {"Size", "TextureURI", "ComponentList"};
const std::vector<const char*> kComponentKeys = {"Name", "Variations"};
const std::vector<const char*> kVariationKeys = {"Name",     "RectLeft",  "RectTop",  "RectRight",
                                                 "RectBottom", "RegPointX", "RegPointY"};
const std::vector<const char*> kAudioKeys = {"Name", "URI"};

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

ContentCheck::Kind ContentCheck::kindOf(const std::string& name)
{
    return name == "scene" ? Scene
         : name == "actor" ? Actor
         : name == "sheet" ? Sheet
         : name == "costume" ? Costume
         : name == "dataset" ? Dataset
         : Unknown;
}

ContentCheck::ContentCheck(Diagnostics& report, const SceneOptions& options) : mReport(report), mOptions(options)
{
    for (const std::string& dir : mOptions.artPaths)
        CSystemData::Instance()->AddArtPath(dir);
    loadSheetNames();
    mHasCostume = !mOptions.costume.empty();
}

int ContentCheck::errorsIn(const SceneOptions& options, std::string& first)
{
    using Tadwick::Vell::CDebugMPI;
    const CDebugMPI::tHandler handler = CDebugMPI::SetHandler([](int, int, const std::string&) {});
    const CDebugMPI::tHandler listener = CDebugMPI::SetListener(CDebugMPI::tHandler());
    const BaseUtils::tAssertHandler assertListener = BaseUtils::SetAssertListener(BaseUtils::tAssertHandler());
    Diagnostics report;
    {
        ContentCheck check(report, options);
        check.check(options.scene, Scene);
    }
    BaseUtils::SetAssertListener(assertListener);
    CDebugMPI::SetListener(listener);
    CDebugMPI::SetHandler(handler);
    first = report.firstError();
    return report.errors();
}

void ContentCheck::loadSheetNames()
{
    mHasSheet = !mOptions.sheets.empty();
    for (const std::string& sheet : mOptions.sheets) {
        JsonDocument doc;
        if (!doc.load(sheet) || !doc.root().isObject())
            continue;
        const Json::Value& bitmaps = doc.root()["ImageData"];
        for (Json::ArrayIndex b = 0; bitmaps.isArray() && b < bitmaps.size(); ++b) {
            const Json::Value& images = bitmaps[b].isObject() ? bitmaps[b]["Images"] : Json::Value::nullSingleton();
            for (Json::ArrayIndex i = 0; images.isArray() && i < images.size(); ++i)
                if (images[i].isObject() && images[i]["Name"].isString())
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
    if (path.size() > 8 && path.compare(path.size() - 8, 8, ".dsetBin") == 0) {
        Diagnostics ignored;
        DsetCheck dset(ignored, *this);
        dset.check(path);
        return;
    }
    JsonDocument doc;
    if (!doc.load(path))
        return;
    const Json::Value& lods = doc.root()["LODList"];
    if (!lods.isArray() || lods.empty())
        return;
    // Pieces show the first LOD loaded: with every LOD loaded, the file's first.
    const Json::Value& components = lods[0u]["ComponentList"];
    for (Json::ArrayIndex c = 0; components.isArray() && c < components.size(); ++c) {
        std::vector<std::string>& names = mCostumeComponents[components[c]["Name"].asString()];
        const Json::Value& variations = components[c]["Variations"];
        for (Json::ArrayIndex v = 0; variations.isArray() && v < variations.size(); ++v)
            names.push_back(variations[v]["Name"].asString());
    }
}

void ContentCheck::check(const std::string& path, Kind kind)
{
    mReport.fileChecked();
    if (kind == Dataset || (kind == Unknown && DsetCheck::looksLikeDataset(path))) {
        loadCostumeComponents();
        DsetCheck(mReport, *this).check(path);
        return;
    }
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
    if (kind == Unknown)
        kind = root.isArray() ? Scene
             : root.isMember("Animation") ? Actor
             : root.isMember("ImageData") ? Sheet
             : root.isMember("LODList") ? Costume
             : Unknown;
    switch (kind) {
    case Scene:
        mPrefix = mOptions.hasDefaultPath ? mOptions.defaultPath : directoryOf(path);
        loadCostumeComponents();
        checkScene(root);
        break;
    case Actor:
        // Actor files name their images relative to their own directory, whatever the default path.
        mPrefix = directoryOf(path);
        loadCostumeComponents();
        checkActorFile(root);
        break;
    case Sheet: checkSheet(root); break;
    case Costume: checkCostume(root); break;
    default:
        error(root, "cannot tell what this file is: a scene is an array, an actor has \"Animation\", a texture "
                    "sheet \"ImageData\", a costume \"LODList\" (or give --kind)");
    }
    mDoc = 0;
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

void ContentCheck::keys(const Json::Value& object, const char* what, const std::vector<const char*>& known)
{
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
        std::string message = "unknown key " + quoted(key) + " in " + what;
        if (nearest)
            message += "; did you mean " + quoted(nearest) + "?";
        keyError(object, key, Diagnostics::Error, message);
    }
}

bool ContentCheck::require(const Json::Value& object, const char* key, const char* what)
{
    if (object.isMember(key))
        return true;
    error(object, std::string(what) + " without " + quoted(key));
    return false;
}

bool ContentCheck::isInteger(const Json::Value& v) const
{
    return (v.type() == Json::intValue || v.type() == Json::uintValue) && v.isInt();
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

void ContentCheck::numberArray(const Json::Value& object, const char* key, size_t sizeA, size_t sizeB,
                               bool integers, bool required, const char* what)
{
    if (!object.isMember(key)) {
        if (required)
            require(object, key, what);
        return;
    }
    const Json::Value& v = object[key];
    const std::string sizes = sizeA == sizeB ? std::to_string(sizeA)
                                             : std::to_string(sizeA) + " or " + std::to_string(sizeB);
    const std::string items = integers ? " integers" : " numbers";
    if (!v.isArray()) {
        error(v, quoted(key) + " must be an array of " + sizes + items);
        return;
    }
    if (v.size() != sizeA && v.size() != sizeB) {
        error(v, quoted(key) + " has " + std::to_string(v.size()) + (v.size() == 1 ? " item" : " items") + "; it takes " + sizes + items);
        return;
    }
    for (Json::ArrayIndex i = 0; i < v.size(); ++i) {
        const bool ok = integers ? isInteger(v[i]) : v[i].isNumeric();
        if (!ok)
            error(v[i], quoted(key) + " item " + std::to_string(i) + " must be " + (integers ? "an integer" : "a number"));
    }
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
        if (entry.isObject() && isInteger(entry["ElementType"]) && entry["ElementType"].asInt() == 3)
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
    std::vector<const char*> known = kActorFileKeys;
    known.push_back("Children");
    keys(root, "an actor", known);
    if (root.isMember("Children"))
        keyError(root, "Children", Diagnostics::Warning,
                 "an actor's \"Children\" are not loaded: put them in the cels of \"Animation\"");
    graphic(root);
    if (objectArray(root, "Animation", true, "an actor"))
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
    switch (type) {
    case 0: billboard(v); break;
    case 1: sprite(v); break;
    case 2: cel(v, false, 0); break;
    case 3: actor(v, false); break;
    case 4:
    case 5: piece(v); break;
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

void ContentCheck::graphic(const Json::Value& v)
{
    numberArray(v, "Position", 2, 3, false, false, "");
    if (v.isMember("Rotation") && !v["Rotation"].isNumeric())
        error(v["Rotation"], "\"Rotation\" must be a number");
    numberArray(v, "Scale", 2, 2, false, false, "");
    numberArray(v, "Reg", 2, 2, false, false, "");
    numberArray(v, "Color", 4, 4, true, false, "");
    const Json::Value& color = v["Color"];
    if (color.isArray() && color.size() == 4)
        for (Json::ArrayIndex i = 0; i < 4; ++i)
            if (isInteger(color[i]) && (color[i].asInt() < 0 || color[i].asInt() > 255))
                error(color[i], "\"Color\" item " + std::to_string(i) + " is " + std::to_string(color[i].asInt()) +
                                    ": channels run from 0 to 255");
}

void ContentCheck::children(const Json::Value& v)
{
    if (!objectArray(v, "Children", false, ""))
        return;
    const Json::Value& list = v["Children"];
    for (Json::ArrayIndex i = 0; i < list.size(); ++i)
        element(list[i]);
}

void ContentCheck::billboard(const Json::Value& v)
{
    keys(v, "a billboard", kBillboardKeys);
    if (!definition(v, Billboards, "a billboard"))
        return;
    graphic(v);
    std::string url;
    if (stringMember(v, "URL", "a billboard", true, url)) {
        const JsonDocument::tPlace p = mDoc->place(v["URL"]);
        checkBillboardImage(url, mPrefix, mPath, p.line, p.column);
    }
}

void ContentCheck::sprite(const Json::Value& v)
{
    keys(v, "a sprite", kSpriteKeys);
    if (!definition(v, Sprites, "a sprite"))
        return;
    graphic(v);
    children(v);
}

void ContentCheck::cel(const Json::Value& v, bool inActor, std::vector<tCel>* jumps)
{
    if (!v.isObject()) {
        error(v, "a sprite cel must be an object");
        return;
    }
    keys(v, inActor ? "a cel of \"Animation\"" : "a sprite cel", inActor ? kAnimationCelKeys : kCelKeys);
    if (!definition(v, Cels, "a sprite cel"))
        return;
    graphic(v);
    children(v);
    long long duration = 0;
    if (integerMember(v, "Duration", true, "a sprite cel", duration) && (duration < 0 || duration > 65535))
        error(v["Duration"], "\"Duration\" " + std::to_string(duration) + " is not a duration: cels last 0 to 65535 ms");
    if (objectArray(v, "Operations", false, ""))
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
        keys(op, "an operation", kOperationKeys);
        long long opcode = 0;
        if (!integerMember(op, "Opcode", true, "an operation", opcode))
            continue;
        if (opcode < 1 || opcode > 5)
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
        if (arg.asInt() < 0 || arg.asInt() > 65535)
            error(arg, "\"Oparg\" " + std::to_string(arg.asInt()) + " does not fit in 16 bits: it is read as " +
                           std::to_string(static_cast<unsigned short>(arg.asInt())));
        if ((opcode == 1 || opcode == 2) && jumps)
            jumps->push_back(tCel{&arg, static_cast<unsigned short>(arg.asInt())});
    }
}

void ContentCheck::actor(const Json::Value& v, bool topLevel)
{
    std::vector<const char*> known = kActorKeys;
    known.push_back("Children");
    keys(v, "an actor", known);
    if (v.isMember("Children"))
        keyError(v, "Children", Diagnostics::Warning,
                 "an actor's \"Children\" are not loaded: put them in the cels of \"Animation\"");
    long long id = 0;
    const std::vector<std::string>& defined = mDefinedAt[Actors];
    if (topLevel && integerMember(v, "ID", true, "an actor", id) &&
        static_cast<unsigned int>(static_cast<int>(id)) < defined.size()) {
        // A placement of an earlier actor: a copy, placed by its own graphic keys.
        if (v.isMember("Animation"))
            keyError(v, "Animation", Diagnostics::Error,
                     quoted("ID") + " " + std::to_string(id) + " places a copy of actor " + std::to_string(id) +
                         " (defined at " + defined[static_cast<size_t>(id)] + "): its \"Animation\" is not read");
        graphic(v);
        return;
    }
    if (!definition(v, Actors, "an actor"))
        return;
    graphic(v);
    if (objectArray(v, "Animation", true, "an actor"))
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
    keys(v, "an avatar piece", kPieceKeys);
    if (!mHasCostume && !mToldNoCostume) {
        mToldNoCostume = true;
        error(v, "avatar pieces need a costume: give --costume");
    }
    if (!definition(v, Pieces, "an avatar piece"))
        return;
    graphic(v);
    std::string component, variation;
    const bool hasComponent = stringMember(v, "Component", "an avatar piece", true, component);
    const bool hasVariation = stringMember(v, "Variation", "an avatar piece", true, variation);
    if (hasComponent && hasVariation && mHasCostume) {
        const JsonDocument::tPlace p = mDoc->place(v["Component"]);
        checkPiece(component, variation, mPath, p.line, p.column);
    }
}

// ---------------------------------------------------------------------------
// What content names

void ContentCheck::checkBillboardImage(const std::string& name, const std::string& prefix, const std::string& file,
                                       int line, int column)
{
    if (mHasSheet && mSheetNames.count(Glib::ustring(name).collate_key()))
        return;
    const std::string path = prefix + name;
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
    keys(root, "a texture sheet", kSheetKeys);
    if (!objectArray(root, "ImageData", true, "a texture sheet"))
        return;
    std::map<std::string, std::string> names;
    const Json::Value& bitmaps = root["ImageData"];
    for (Json::ArrayIndex b = 0; b < bitmaps.size(); ++b) {
        const Json::Value& bitmap = bitmaps[b];
        if (!bitmap.isObject()) {
            error(bitmap, "a bitmap entry must be an object");
            continue;
        }
        keys(bitmap, "a bitmap entry", kBitmapKeys);
        std::string file;
        if (stringMember(bitmap, "Bitmap", "a bitmap entry", true, file)) {
            const JsonDocument::tPlace p = mDoc->place(bitmap["Bitmap"]);
            checkImageFile(CTextureSheet::bitmapPath(mPath, file).raw(), "bitmap", mPath, p.line, p.column);
        }
        if (!objectArray(bitmap, "Images", true, "a bitmap entry"))
            continue;
        const Json::Value& images = bitmap["Images"];
        for (Json::ArrayIndex i = 0; i < images.size(); ++i) {
            const Json::Value& picture = images[i];
            if (!picture.isObject()) {
                error(picture, "a picture must be an object");
                continue;
            }
            keys(picture, "a picture", kPictureKeys);
            std::string name;
            if (stringMember(picture, "Name", "a picture", true, name)) {
                const std::string key = Glib::ustring(name).collate_key();
                if (names.count(key))
                    warning(picture["Name"], "picture " + quoted(name) + " is named again: it replaces the one at " +
                                                 names[key]);
                names[key] = placeText(picture["Name"]);
            }
            numberArray(picture, "P1", 2, 2, true, true, "a picture");
            numberArray(picture, "P2", 2, 2, true, true, "a picture");
            numberArray(picture, "RegPoint", 2, 2, true, false, "a picture");
            numberArray(picture, "CropRect", 4, 4, true, false, "a picture");
        }
    }
}

void ContentCheck::checkCostume(const Json::Value& root)
{
    if (!root.isObject()) {
        error(root, "a costume is an object with \"LODList\"");
        return;
    }
    keys(root, "a costume", kCostumeKeys);
    if (objectArray(root, "AudioList", false, "")) {
        const Json::Value& audio = root["AudioList"];
        for (Json::ArrayIndex i = 0; i < audio.size(); ++i) {
            if (!audio[i].isObject()) {
                error(audio[i], "an audio entry must be an object");
                continue;
            }
            keys(audio[i], "an audio entry", kAudioKeys);
            std::string ignored;
            stringMember(audio[i], "Name", "an audio entry", true, ignored);
            stringMember(audio[i], "URI", "an audio entry", true, ignored);
        }
    }
    if (!objectArray(root, "LODList", true, "a costume"))
        return;
    const Json::Value& lods = root["LODList"];
    if (lods.empty())
        error(lods, "\"LODList\" is empty: avatar pieces show nothing");
    for (Json::ArrayIndex l = 0; l < lods.size(); ++l) {
        const Json::Value& lod = lods[l];
        if (!lod.isObject()) {
            error(lod, "an LOD must be an object");
            continue;
        }
        keys(lod, "an LOD", kLODKeys);
        long long size = 0;
        if (integerMember(lod, "Size", true, "an LOD", size) && size <= 0)
            error(lod["Size"], "\"Size\" " + std::to_string(size) + " is not a size: pieces are scaled by 100 / \"Size\"");
        std::string uri;
        if (!lod.isMember("TextureURI"))
            error(lod, "an LOD without \"TextureURI\": its pieces show nothing");
        else if (stringMember(lod, "TextureURI", "an LOD", true, uri)) {
            const JsonDocument::tPlace p = mDoc->place(lod["TextureURI"]);
            checkImageFile(AvatarCostume::texturePath(mPath, uri).raw(), "texture", mPath, p.line, p.column);
        }
        if (!objectArray(lod, "ComponentList", true, "an LOD"))
            continue;
        const Json::Value& components = lod["ComponentList"];
        for (Json::ArrayIndex c = 0; c < components.size(); ++c) {
            const Json::Value& component = components[c];
            if (!component.isObject()) {
                error(component, "a component must be an object");
                continue;
            }
            keys(component, "a component", kComponentKeys);
            std::string name;
            stringMember(component, "Name", "a component", true, name);
            const Json::Value& variations = component["Variations"];
            if (!variations.isArray() || variations.empty()) {
                if (component.isMember("Variations") && !variations.isArray())
                    error(variations, "\"Variations\" must be an array");
                else
                    error(component, "component " + quoted(name) + " has no variations: its pieces show nothing");
                continue;
            }
            for (Json::ArrayIndex v = 0; v < variations.size(); ++v) {
                const Json::Value& variation = variations[v];
                if (!variation.isObject()) {
                    error(variation, "a variation must be an object");
                    continue;
                }
                keys(variation, "a variation", kVariationKeys);
                std::string ignored;
                stringMember(variation, "Name", "a variation", true, ignored);
                for (size_t k = 1; k < kVariationKeys.size(); ++k) {
                    const char* key = kVariationKeys[k];
                    // The registration point defaults to the rectangle's corner; the rectangle is needed.
                    const bool present = k <= 4 ? require(variation, key, "a variation") : variation.isMember(key);
                    if (present && !variation[key].isNumeric())
                        error(variation[key], quoted(key) + " must be a number");
                }
            }
        }
    }
}
