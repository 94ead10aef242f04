#include "ImportLimits.h"
#include "JsonFields.h"
#include "TiledMap.h"

#include <cstdlib>
#include <cstring>
#include <set>

using namespace ImportLimits;

bool readTsxTileset(const std::string& path, tTiledTileset& tileset, Diagnostics& diag);

namespace {

bool isDefault(const Json::Value& v, const char* defaultValue)
{
    if (!defaultValue)
        return false;
    if (v.isNumeric())
        return v.asDouble() == atof(defaultValue);
    return v.isString() && v.asString() == defaultValue;
}

void warnDropped(JsonFields& f, const Json::Value& v, const std::vector<tDroppedFeature>& features,
                 const std::string& owner, std::set<std::string>& seen)
{
    for (const tDroppedFeature& feature : features) {
        const Json::Value& value = JsonFields::at(v, feature.key);
        if (!value.isNull() && !isDefault(value, feature.defaultValue) && seen.insert(feature.what).second)
            f.warning(value, droppedMessage(owner, feature.what));
    }
}

void warnDropped(JsonFields& f, const Json::Value& v, const std::vector<tDroppedFeature>& features,
                 const std::string& owner)
{
    std::set<std::string> seen;
    warnDropped(f, v, features, owner, seen);
}

bool readTileFrames(JsonFields& f, const Json::Value& list, std::vector<tTiledTileset::tFrame>& frames)
{
    if (list.size() > unsigned(MAX_FRAMES)) {
        f.error(list, atMost("the number of frames of a tile animation", MAX_FRAMES));
        return false;
    }
    for (const Json::Value& fr : list) {
        tTiledTileset::tFrame frame;
        if (!f.integer(fr, "tileid", frame.tile, 0, MAX_TOTAL_PIXELS) ||
            !f.integer(fr, "duration", frame.duration, 0, 65535))
            return false;
        frames.push_back(frame);
    }
    return true;
}

bool readTiles(JsonFields& f, const Json::Value& v, tTiledTileset& ts)
{
    if (!v.isMember("tiles"))
        return true;
    if (!f.member(v, "tiles", Json::arrayValue))
        return false;
    std::set<std::string> dropped;
    for (const Json::Value& tile : v["tiles"]) {
        int id = 0;
        if (!f.integer(tile, "id", id, 0, MAX_TOTAL_PIXELS))
            return false;
        warnDropped(f, tile, DROPPED_TILE_FEATURES, "tileset \"" + ts.name + "\"", dropped);
        if (!tile.isMember("animation"))
            continue;
        if (!f.member(tile, "animation", Json::arrayValue) || !readTileFrames(f, tile["animation"], ts.animations[id]))
            return false;
    }
    return true;
}

bool readTilesetImage(JsonFields& f, const Json::Value& v, tTiledTileset& ts)
{
    if (!v.isMember("image")) {
        f.error(v, "image-collection tilesets are not supported (tileset \"" + ts.name +
                       "\" has no single image): make the tiles one image");
        return false;
    }
    std::string image, trans;
    if (!f.string(v, "image", image) || !f.string(v, "transparentcolor", trans, false))
        return false;
    if (image.empty()) {
        f.error(v["image"], "the tileset image has no name");
        return false;
    }
    ts.image = image[0] == '/' ? image : directoryOf(f.doc().path()) + image;
    if (trans.empty())
        return true;
    uint8_t rgba[4];
    if (!parseTiledColor(trans, rgba)) {
        f.error(v["transparentcolor"], "\"transparentcolor\" must be a colour such as #ff00ff");
        return false;
    }
    std::copy(rgba, rgba + 3, ts.transparent);
    ts.hasTransparentColor = true;
    return true;
}

bool readTilesetObject(JsonFields& f, const Json::Value& v, tTiledTileset& ts)
{
    ts.file = f.doc().path();
    ts.line = f.doc().lineOf(v);
    bool ok = f.string(v, "name", ts.name, false);
    ok = ok && f.integer(v, "tilewidth", ts.tileWidth, 1, MAX_TILE_SIDE) &&
         f.integer(v, "tileheight", ts.tileHeight, 1, MAX_TILE_SIDE);
    // Tiled leaves out a spacing or margin of 0.
    ok = ok && f.integer(v, "spacing", ts.spacing, 0, MAX_IMAGE_SIDE, false) &&
         f.integer(v, "margin", ts.margin, 0, MAX_IMAGE_SIDE, false);
    ok = ok && f.integer(v, "columns", ts.columns, 0, MAX_IMAGE_SIDE, false) &&
         f.integer(v, "tilecount", ts.tileCount, 0, MAX_TOTAL_PIXELS, false);
    if (ok && v.isMember("tileoffset")) {
        const Json::Value& off = v["tileoffset"];
        ok = f.member(v, "tileoffset", Json::objectValue) &&
             f.integer(off, "x", ts.offsetX, -MAX_COORDINATE, MAX_COORDINATE, false) &&
             f.integer(off, "y", ts.offsetY, -MAX_COORDINATE, MAX_COORDINATE, false);
    }
    if (!ok)
        return false;
    warnDropped(f, v, DROPPED_TILESET_FEATURES, "tileset \"" + ts.name + "\"");
    return readTilesetImage(f, v, ts) && readTiles(f, v, ts);
}

bool readGidArray(JsonFields& f, const Json::Value& data, size_t count, tTiledLayer& layer)
{
    if (data.size() != count) {
        f.error(data, "the layer holds " + std::to_string(data.size()) + " tiles where its size asks for " +
                          std::to_string(count));
        return false;
    }
    layer.gids.reserve(count);
    for (const Json::Value& gid : data) {
        if (!gid.isUInt()) {
            f.error(gid, "a tile number must be an unsigned integer");
            return false;
        }
        layer.gids.push_back(gid.asUInt());
    }
    return true;
}

bool readLayerData(JsonFields& f, const Json::Value& v, const tTiledMap& map, tTiledLayer& layer)
{
    if (v.isMember("chunks")) {
        f.error(v, "infinite maps are not supported (layer \"" + layer.name + "\" is stored in chunks)");
        return false;
    }
    int w = 0, h = 0;
    if (!f.integer(v, "width", w, 1, MAX_MAP_SIDE) || !f.integer(v, "height", h, 1, MAX_MAP_SIDE))
        return false;
    if (!v.isMember("data")) {
        f.error(v, "the layer has no \"data\"");
        return false;
    }
    const std::string limit = layerProblem(map, w, h);
    if (!limit.empty()) {
        f.error(v, limit);
        return false;
    }
    const Json::Value& data = v["data"];
    const size_t count = static_cast<size_t>(w) * h;
    if (data.isArray())
        return readGidArray(f, data, count, layer);
    std::string encoding = "csv", compression, error;
    if (!f.string(v, "encoding", encoding, false) || !f.string(v, "compression", compression, false))
        return false;
    if (!data.isString() || !decodeTileData(encoding, compression, data.asString(), count, layer.gids, error)) {
        f.error(data, data.isString() ? error : std::string("\"data\" must be an array or a string"));
        return false;
    }
    return true;
}

// Visibility, opacity, tint and offset, combined with the group's.
bool readLayerLook(JsonFields& f, const Json::Value& v, const tTiledLayer& group, tTiledLayer& layer)
{
    layer.line = f.doc().lineOf(v);
    double opacity = 1.0, ox = 0, oy = 0;
    std::string tintText;
    if (!f.string(v, "name", layer.name, false) || !f.boolean(v, "visible", layer.visible) ||
        !f.number(v, "opacity", opacity) || !f.number(v, "offsetx", ox) || !f.number(v, "offsety", oy) ||
        !f.string(v, "tintcolor", tintText, false))
        return false;
    uint8_t tint[4] = {255, 255, 255, 255};
    if (!tintText.empty() && !parseTiledColor(tintText, tint)) {
        f.error(v["tintcolor"], "\"tintcolor\" must be a colour such as #ff8000 or #80ff8000");
        return false;
    }
    std::string why;
    if (!inheritLayer(group, opacity, tint, ox, oy, layer, why)) {
        f.error(v, why);
        return false;
    }
    warnDropped(f, v, DROPPED_LAYER_FEATURES, "layer \"" + layer.name + "\"");
    return true;
}

bool readLayerArray(JsonFields& f, const Json::Value& layers, tTiledMap& map, const tTiledLayer& group)
{
    bool ok = true;
    for (const Json::Value& v : layers) {
        std::string type, name;
        if (!f.string(v, "type", type) || !f.string(v, "name", name, false)) {
            ok = false;
            continue;
        }
        if (!droppedLayerMessage(type, name).empty())
            f.warning(v, droppedLayerMessage(type, name));
        if (type != "tilelayer" && type != "group")
            continue;
        tTiledLayer layer;
        if (!readLayerLook(f, v, group, layer)) {
            ok = false;
            continue;
        }
        if (type == "group") {
            ok = f.member(v, "layers", Json::arrayValue) && readLayerArray(f, v["layers"], map, layer) && ok;
            continue;
        }
        if (!readLayerData(f, v, map, layer))
            return false;
        map.layers.push_back(std::move(layer));
    }
    return ok;
}

bool readTilesetList(JsonFields& f, const Json::Value& list, tTiledMap& map)
{
    if (list.size() > unsigned(MAX_TILESETS)) {
        f.error(list, atMost("the number of tilesets", MAX_TILESETS));
        return false;
    }
    bool ok = true;
    for (const Json::Value& v : list) {
        tTiledTileset ts;
        std::string source;
        if (!f.integer(v, "firstgid", ts.firstGid, 1, int(TILED_GID_MASK)) || !f.string(v, "source", source, false)) {
            ok = false;
            continue;
        }
        if (!source.empty()) {
            const int firstGid = ts.firstGid;
            const std::string path = source[0] == '/' ? source : directoryOf(f.doc().path()) + source;
            ok = readExternalTileset(path, ts, f.diag()) && ok;
            ts.firstGid = firstGid;
        } else {
            ok = readTilesetObject(f, v, ts) && ok;
        }
        map.tilesets.push_back(ts);
    }
    return ok;
}

} // namespace

bool isTiledJsonMap(const Json::Value& root)
{
    const Json::Value& type = JsonFields::at(root, "type");
    return JsonFields::has(root, "layers") && JsonFields::has(root, "tilesets") &&
           ((type.isString() && type.asString() == "map") || root.isMember("orientation"));
}

bool readExternalTileset(const std::string& path, tTiledTileset& tileset, Diagnostics& diag)
{
    if (endsWith(path, ".tsx"))
        return readTsxTileset(path, tileset, diag);
    JsonDocument doc;
    if (!doc.load(path, diag))
        return false;
    JsonFields f(doc, diag);
    if (!doc.root().isObject()) {
        doc.error(doc.root(), "not a Tiled tileset", diag);
        return false;
    }
    return readTilesetObject(f, doc.root(), tileset);
}

bool readTiledJsonMap(const JsonDocument& doc, tTiledMap& map, Diagnostics& diag)
{
    JsonFields f(doc, diag);
    const Json::Value& root = doc.root();
    map.file = doc.path();
    std::string orientation;
    bool infinite = false;
    if (!f.string(root, "orientation", orientation) || !f.boolean(root, "infinite", infinite))
        return false;
    if (orientation != "orthogonal") {
        f.error(root["orientation"], orientation + " maps are not supported: only orthogonal maps are imported");
        return false;
    }
    if (infinite) {
        f.error(root["infinite"], "infinite maps are not supported: give the map a fixed size");
        return false;
    }
    if (!f.integer(root, "width", map.width, 1, MAX_MAP_SIDE) || !f.integer(root, "height", map.height, 1, MAX_MAP_SIDE) ||
        !f.integer(root, "tilewidth", map.tileWidth, 1, MAX_TILE_SIDE) ||
        !f.integer(root, "tileheight", map.tileHeight, 1, MAX_TILE_SIDE) ||
        !f.member(root, "tilesets", Json::arrayValue) || !f.member(root, "layers", Json::arrayValue))
        return false;
    if (!mapSizeProblem(map).empty()) {
        f.error(root, mapSizeProblem(map));
        return false;
    }
    warnDropped(f, root, DROPPED_MAP_FEATURES, "the map");
    const bool tilesetsOk = readTilesetList(f, root["tilesets"], map);
    return readLayerArray(f, root["layers"], map, tTiledLayer()) && tilesetsOk;
}
