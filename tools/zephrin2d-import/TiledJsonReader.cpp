#include "JsonFields.h"
#include "TiledMap.h"

#include <cstring>

bool readTsxTileset(const std::string& path, tTiledTileset& tileset, Diagnostics& diag);

namespace {

bool endsWith(const std::string& s, const char* suffix)
{
    const size_t n = strlen(suffix);
    return s.size() >= n && s.compare(s.size() - n, n, suffix) == 0;
}

bool readTilesetObject(JsonFields& f, const Json::Value& v, tTiledTileset& ts)
{
    ts.file = f.doc().path();
    ts.line = f.doc().lineOf(v);
    ts.name = v["name"].asString();
    bool ok = f.integer(v, "tilewidth", ts.tileWidth) && f.integer(v, "tileheight", ts.tileHeight);
    ok = ok && f.integer(v, "spacing", ts.spacing, false) && f.integer(v, "margin", ts.margin, false);
    f.integer(v, "columns", ts.columns, false);
    f.integer(v, "tilecount", ts.tileCount, false);
    if (!ok || f.diag().failed())
        return false;
    if (v.isMember("tileoffset") && f.member(v, "tileoffset", Json::objectValue)) {
        f.integer(v["tileoffset"], "x", ts.offsetX, false);
        f.integer(v["tileoffset"], "y", ts.offsetY, false);
    }
    if (!v.isMember("image")) {
        f.error(v, "image-collection tilesets are not supported (tileset \"" + ts.name +
                       "\" has no single image): make the tiles one image");
        return false;
    }
    std::string image;
    if (!f.string(v, "image", image))
        return false;
    ts.image = image[0] == '/' ? image : directoryOf(f.doc().path()) + image;
    std::string trans;
    if (v.isMember("transparentcolor") && f.string(v, "transparentcolor", trans)) {
        const std::string hex = trans[0] == '#' ? trans.substr(1) : trans;
        char* end = nullptr;
        const unsigned long c = strtoul(hex.c_str(), &end, 16);
        if (hex.size() != 6 || *end) {
            f.error(v["transparentcolor"], "\"transparentcolor\" must be a colour such as #ff00ff");
            return false;
        }
        ts.hasTransparentColor = true;
        ts.transparent[0] = (c >> 16) & 0xFF;
        ts.transparent[1] = (c >> 8) & 0xFF;
        ts.transparent[2] = c & 0xFF;
    }
    if (v.isMember("tiles") && f.member(v, "tiles", Json::arrayValue)) {
        for (const Json::Value& tile : v["tiles"]) {
            int id = 0;
            if (!f.integer(tile, "id", id) || !tile.isMember("animation"))
                continue;
            if (!f.member(tile, "animation", Json::arrayValue))
                return false;
            std::vector<tTiledTileset::tFrame>& frames = ts.animations[id];
            for (const Json::Value& fr : tile["animation"]) {
                tTiledTileset::tFrame frame;
                if (!f.integer(fr, "tileid", frame.tile) || !f.integer(fr, "duration", frame.duration))
                    return false;
                frames.push_back(frame);
            }
        }
    }
    return !f.diag().failed();
}

bool readLayerArray(JsonFields& f, const Json::Value& layers, tTiledMap& map, const tTiledLayer& inherited)
{
    bool ok = true;
    for (const Json::Value& v : layers) {
        std::string type;
        if (!f.string(v, "type", type)) {
            ok = false;
            continue;
        }
        if (type != "tilelayer" && type != "group") {
            f.doc().warning(v, type + " \"" + v["name"].asString() + "\" is left out: only tile layers are imported",
                            f.diag());
            continue;
        }
        tTiledLayer layer;
        layer.name = v["name"].asString();
        layer.line = f.doc().lineOf(v);
        layer.visible = inherited.visible && (!v.isMember("visible") || v["visible"].asBool());
        double opacity = 1.0, ox = 0, oy = 0;
        f.number(v, "opacity", opacity);
        f.number(v, "offsetx", ox);
        f.number(v, "offsety", oy);
        layer.opacity = inherited.opacity * opacity;
        layer.offsetX = inherited.offsetX + static_cast<int>(ox);
        layer.offsetY = inherited.offsetY + static_cast<int>(oy);
        if (type == "group") {
            if (f.member(v, "layers", Json::arrayValue))
                ok = readLayerArray(f, v["layers"], map, layer) && ok;
            continue;
        }
        if (v.isMember("chunks")) {
            f.error(v, "infinite maps are not supported (layer \"" + layer.name + "\" is stored in chunks)");
            ok = false;
            continue;
        }
        int w = 0, h = 0;
        if (!f.integer(v, "width", w) || !f.integer(v, "height", h) || !v.isMember("data")) {
            if (!v.isMember("data"))
                f.error(v, "the layer has no \"data\"");
            ok = false;
            continue;
        }
        if (w != map.width || h != map.height) {
            f.error(v, "the layer is " + std::to_string(w) + "x" + std::to_string(h) + " tiles, the map " +
                           std::to_string(map.width) + "x" + std::to_string(map.height));
            ok = false;
            continue;
        }
        const Json::Value& data = v["data"];
        const size_t count = static_cast<size_t>(w) * h;
        if (data.isArray()) {
            for (const Json::Value& gid : data) {
                if (!gid.isUInt()) {
                    f.error(gid, "a tile number must be an unsigned integer");
                    ok = false;
                    break;
                }
                layer.gids.push_back(gid.asUInt());
            }
            if (ok && layer.gids.size() != count) {
                f.error(data, "the layer holds " + std::to_string(layer.gids.size()) +
                                  " tiles where its size asks for " + std::to_string(count));
                ok = false;
            }
        } else {
            std::string encoding = "csv", compression, error;
            if (v.isMember("encoding"))
                f.string(v, "encoding", encoding);
            if (v.isMember("compression"))
                f.string(v, "compression", compression);
            if (!data.isString() || !decodeTileData(encoding, compression, data.asString(), count, layer.gids, error)) {
                f.error(data, data.isString() ? error : std::string("\"data\" must be an array or a string"));
                ok = false;
            }
        }
        map.layers.push_back(layer);
    }
    return ok;
}

} // namespace

bool isTiledJsonMap(const Json::Value& root)
{
    return root.isObject() && root.isMember("layers") && root.isMember("tilesets") &&
           (root["type"].asString() == "map" || root.isMember("orientation"));
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
    if (!f.string(root, "orientation", orientation))
        return false;
    if (orientation != "orthogonal") {
        f.error(root["orientation"], orientation + " maps are not supported: only orthogonal maps are imported");
        return false;
    }
    if (root["infinite"].asBool()) {
        f.error(root["infinite"], "infinite maps are not supported: give the map a fixed size");
        return false;
    }
    if (!f.integer(root, "width", map.width) || !f.integer(root, "height", map.height) ||
        !f.integer(root, "tilewidth", map.tileWidth) || !f.integer(root, "tileheight", map.tileHeight) ||
        !f.member(root, "tilesets", Json::arrayValue) || !f.member(root, "layers", Json::arrayValue))
        return false;
    if (!mapSizeProblem(map).empty()) {
        f.error(root, mapSizeProblem(map));
        return false;
    }
    bool ok = true;
    for (const Json::Value& v : root["tilesets"]) {
        tTiledTileset ts;
        if (!f.integer(v, "firstgid", ts.firstGid)) {
            ok = false;
            continue;
        }
        std::string source;
        if (v.isMember("source") && f.string(v, "source", source)) {
            const std::string path = source[0] == '/' ? source : directoryOf(doc.path()) + source;
            const int firstGid = ts.firstGid;
            ok = readExternalTileset(path, ts, diag) && ok;
            ts.firstGid = firstGid;
        } else {
            ok = readTilesetObject(f, v, ts) && ok;
        }
        map.tilesets.push_back(ts);
    }
    return readLayerArray(f, root["layers"], map, tTiledLayer()) && ok;
}
