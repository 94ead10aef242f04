// The JSON Schemas and the key reference of docs/formats.md say what the
// tools' content model says, key by key.
#include "ContentModel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

namespace {

using namespace ContentModel;

struct tWhere
{
    Object object;
    const char* schema;
    const char* def;  ///< null: the schema's root
};

const tWhere kWhere[] = {
    {Object::Billboard, "scene", "billboard"}, {Object::Sprite, "scene", "sprite"},
    {Object::SpriteCel, "scene", "spriteCel"}, {Object::AnimationCel, "scene", "animationCel"},
    {Object::Actor, "scene", "actor"},         {Object::AvatarPiece, "scene", "avatarPiece"},
    {Object::Operation, "scene", "operation"}, {Object::ActorFile, "actor", 0},
    {Object::Sheet, "sheet", 0},               {Object::Bitmap, "sheet", "bitmap"},
    {Object::Picture, "sheet", "picture"},     {Object::Costume, "costume", 0},
    {Object::LOD, "costume", "lod"},           {Object::Component, "costume", "component"},
    {Object::Variation, "costume", "variation"}, {Object::Audio, "costume", "audio"},
};

Json::Value load(const std::string& path)
{
    std::ifstream in(path);
    Json::Value root;
    EXPECT_TRUE(Json::parseFromStream(Json::CharReaderBuilder(), in, &root, 0)) << path;
    return root;
}

/// A property with its "$ref" followed, its own members laid over the target's.
Json::Value resolved(const Json::Value& schema, Json::Value v)
{
    while (v.isMember("$ref")) {
        Json::Value target = schema["$defs"][v["$ref"].asString().substr(8)];
        for (const std::string& k : v.getMemberNames())
            if (k != "$ref")
                target[k] = v[k];
        v = target;
    }
    return v;
}

/// A range as the schema states it: minimum and maximum, or those of an enum.
void range(const Json::Value& v, long long& lo, long long& hi)
{
    lo = v.get("minimum", Json::Int64(INT_MIN)).asInt64();
    hi = v.get("maximum", Json::Int64(INT_MAX)).asInt64();
    if (v["enum"].size()) {
        lo = LLONG_MAX;
        hi = LLONG_MIN;
    }
    for (const Json::Value& e : v["enum"]) {
        lo = std::min<long long>(lo, e.asInt64());
        hi = std::max<long long>(hi, e.asInt64());
    }
}

bool sameValue(const Json::Value& a, const Json::Value& b)
{
    if (a.isNumeric() && b.isNumeric())
        return a.asDouble() == b.asDouble();
    if (!a.isArray() || !b.isArray() || a.size() != b.size())
        return false;
    for (Json::ArrayIndex i = 0; i < a.size(); ++i)
        if (!sameValue(a[i], b[i]))
            return false;
    return true;
}

void expectKey(const Json::Value& schema, const tKey& key, Json::Value p)
{
    SCOPED_TRACE(key.name);
    static const char* const types[] = {"integer", "number", "string", "array", 0};
    if (key.type == Type::IntegerOrNames)
        p = schema["$defs"]["oparg"];
    else
        EXPECT_EQ(p["type"].asString(), types[static_cast<int>(key.type)]);
    const Json::Value items = resolved(schema, p["items"]);
    long long lo, hi;
    range(key.type == Type::Array ? items : p, lo, hi);
    if (key.type == Type::Integer || key.type == Type::IntegerOrNames || key.itemType == Type::Integer) {
        EXPECT_EQ(lo, key.min);
        EXPECT_EQ(hi, key.max);
    }
    if (key.type == Type::Array) {
        EXPECT_EQ(p.get("minItems", 0).asUInt(), key.minItems);
        EXPECT_EQ(p.get("maxItems", 0xFFFFFFFFu).asUInt(), key.maxItems);
        if (key.itemType == Type::Array)
            EXPECT_TRUE(items["type"] == "object" || items.isMember("properties"));
        else
            EXPECT_EQ(items["type"].asString(), types[static_cast<int>(key.itemType)]);
    }
    Json::Value byDefault;
    if (key.byDefault)
        std::istringstream(key.byDefault) >> byDefault;
    EXPECT_TRUE(key.byDefault ? sameValue(p["default"], byDefault) : !p.isMember("default"))
        << p["default"] << " against " << (key.byDefault ? key.byDefault : "none");
}

TEST(ContentModel, SchemasHoldTheModelsKeys)
{
    for (const tWhere& w : kWhere) {
        SCOPED_TRACE(describe(w.object));
        const Json::Value schema = load(std::string(Z2D_SOURCE_DIR) + "/docs/schemas/" + w.schema + ".schema.json");
        const Json::Value def = w.def ? schema["$defs"][w.def] : schema;
        std::set<std::string> required;
        for (const Json::Value* list : {&def["required"], &def["else"]["required"]})
            for (const Json::Value& k : *list)
                required.insert(k.asString());
        if (w.def && w.schema == std::string("scene") && w.object != Object::AnimationCel &&
            w.object != Object::Operation)
            required.insert({"ElementType", "ID"});
        // A scene actor placing a copy of an earlier one has graphic keys and no "Animation":
        // the schema cannot tell it from a definition, which needs one.
        if (w.object == Object::Actor)
            required.insert("Animation");
        std::set<std::string> names, modelRequired;
        for (const tKey& key : keys(w.object)) {
            names.insert(key.name);
            if (key.required)
                modelRequired.insert(key.name);
            // Elements take their "ElementType" from the element definition that dispatches to them.
            const bool dispatched = !def["properties"].isMember(key.name) && key.name == std::string("ElementType");
            if (!dispatched)
                expectKey(schema, key, resolved(schema, def["properties"][key.name]));
        }
        for (const std::string& k : def["properties"].getMemberNames())
            EXPECT_TRUE(names.count(k)) << k << " is in the schema, not in the model";
        EXPECT_EQ(required, modelRequired);
    }
}

TEST(ContentModel, FormatsReferenceAgreesOnEveryKey)
{
    // A key's row in docs/formats.md: | "Key" | [Where |] Type | Required | Default | Meaning |
    std::ifstream doc(std::string(Z2D_SOURCE_DIR) + "/docs/formats.md");
    std::multimap<std::string, std::pair<std::string, std::string> > rows;
    for (std::string line; std::getline(doc, line);) {
        if (line.compare(0, 3, "| \"") != 0)
            continue;
        std::vector<std::string> cells;
        std::istringstream split(line.substr(1));
        for (std::string cell; std::getline(split, cell, '|');) {
            const size_t first = cell.find_first_not_of(' ');
            cells.push_back(first == std::string::npos ? "" : cell.substr(first, cell.find_last_not_of(' ') - first + 1));
        }
        if (cells.size() >= 5)
            rows.insert({cells[0], {cells[cells.size() - 3], cells[cells.size() - 2]}});
    }
    for (int o = 0; o < static_cast<int>(Object::Count); ++o)
        for (const tKey& key : keys(static_cast<Object>(o))) {
            const std::pair<std::string, std::string> cells(key.required ? "yes" : "no",
                                                            key.byDefault ? key.byDefault : "");
            bool found = false;
            for (auto row = rows.lower_bound("\"" + std::string(key.name) + "\"");
                 row != rows.end() && row->first == "\"" + std::string(key.name) + "\""; ++row)
                found = found || row->second == cells;
            EXPECT_TRUE(found) << describe(static_cast<Object>(o)) << ": no row for \"" << key.name << "\" with | "
                               << cells.first << " | " << cells.second << " |";
        }
}

} // namespace
