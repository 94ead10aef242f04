#include "ImportLimits.h"
#include "TiledMap.h"

#include <tinyxml2.h>

#include <cstring>
#include <set>

using namespace ImportLimits;
using tinyxml2::XMLDocument;
using tinyxml2::XMLElement;

namespace {

class TmxFile
{
public:
    TmxFile(const std::string& path, Diagnostics& diag) : mPath(path), mDiag(diag) {}

    /// The root element when the file is XML whose root is `name`, else null (reported).
    const XMLElement* loadRoot(const char* name, const char* kind)
    {
        if (!load())
            return nullptr;
        const XMLElement* root = mDoc.RootElement();
        if (!root || strcmp(root->Name(), name) != 0) {
            mDiag.error(mPath, root ? root->GetLineNum() : 1, 1,
                        std::string("not a Tiled ") + kind + " (no <" + name + "> element)");
            return nullptr;
        }
        return root;
    }

    bool load()
    {
        std::string text, why;
        if (!readTextFile(mPath, text, why, ImportLimits::MAX_FILE_BYTES)) {
            mDiag.error(mPath, 1, 1, why);
            return false;
        }
        if (mDoc.Parse(text.data(), text.size()) != tinyxml2::XML_SUCCESS) {
            mDiag.error(mPath, mDoc.ErrorLineNum() > 0 ? mDoc.ErrorLineNum() : 1, 1,
                        std::string("not valid XML: ") + mDoc.ErrorStr());
            return false;
        }
        return true;
    }

    void error(const XMLElement* at, const std::string& message) { mDiag.error(mPath, at->GetLineNum(), 1, message); }
    void warning(const XMLElement* at, const std::string& message)
    {
        mDiag.warning(mPath, at->GetLineNum(), 1, message);
    }

    /// An integer attribute within [min, max]; an absent optional one leaves out as it is.
    bool integer(const XMLElement* e, const char* name, int& out, int min, int max, bool required = true)
    {
        if (!e->Attribute(name)) {
            if (required)
                error(e, std::string("<") + e->Name() + "> has no \"" + name + "\"");
            return !required;
        }
        int value = 0;
        if (e->QueryIntAttribute(name, &value) != tinyxml2::XML_SUCCESS || value < min || value > max) {
            error(e, std::string("\"") + name + "\" must be an integer from " + std::to_string(min) + " to " +
                         std::to_string(max));
            return false;
        }
        out = value;
        return true;
    }

    std::string attribute(const XMLElement* e, const char* name)
    {
        const char* v = e->Attribute(name);
        if (v && strlen(v) > MAX_STRING_BYTES) {
            error(e, atMost(std::string("\"") + name + "\"'s length", long(MAX_STRING_BYTES)));
            return "";
        }
        return v ? v : "";
    }

    /// Warns about each feature of the table that e has, naming what it belongs
    /// to; seen keeps one warning per feature and owner.
    void warnDropped(const XMLElement* e, const std::vector<tDroppedFeature>& features, const std::string& owner,
                     std::set<std::string>& seen)
    {
        for (const tDroppedFeature& f : features) {
            const char* value = e->Attribute(f.key);
            const bool present = value ? !f.defaultValue || strcmp(value, f.defaultValue) != 0
                                       : e->FirstChildElement(f.key) != nullptr;
            if (present && seen.insert(f.what).second)
                warning(e, droppedMessage(owner, f.what));
        }
    }
    void warnDropped(const XMLElement* e, const std::vector<tDroppedFeature>& features, const std::string& owner)
    {
        std::set<std::string> seen;
        warnDropped(e, features, owner, seen);
    }

    const std::string& path() const { return mPath; }
    Diagnostics& diagnostics() { return mDiag; }

private:
    std::string mPath;
    Diagnostics& mDiag;
    XMLDocument mDoc;
};

bool readTileAnimations(TmxFile& file, const XMLElement* e, tTiledTileset& ts)
{
    std::set<std::string> dropped;
    for (const XMLElement* tile = e->FirstChildElement("tile"); tile; tile = tile->NextSiblingElement("tile")) {
        int id = 0;
        if (!file.integer(tile, "id", id, 0, MAX_TOTAL_PIXELS))
            return false;
        file.warnDropped(tile, DROPPED_TILE_FEATURES, "tileset \"" + ts.name + "\"", dropped);
        const XMLElement* animation = tile->FirstChildElement("animation");
        if (!animation)
            continue;
        std::vector<tTiledTileset::tFrame>& frames = ts.animations[id];
        for (const XMLElement* f = animation->FirstChildElement("frame"); f; f = f->NextSiblingElement("frame")) {
            tTiledTileset::tFrame frame;
            if (frames.size() >= size_t(MAX_FRAMES)) {
                file.error(f, atMost("the number of frames of a tile animation", MAX_FRAMES));
                return false;
            }
            if (!file.integer(f, "tileid", frame.tile, 0, MAX_TOTAL_PIXELS) ||
                !file.integer(f, "duration", frame.duration, 0, 65535))
                return false;
            frames.push_back(frame);
        }
    }
    return true;
}

bool readTilesetImage(TmxFile& file, const XMLElement* e, tTiledTileset& ts)
{
    const XMLElement* image = e->FirstChildElement("image");
    if (!image) {
        file.error(e, "image-collection tilesets are not supported (tileset \"" + ts.name +
                          "\" has no single image): make the tiles one image");
        return false;
    }
    const std::string source = file.attribute(image, "source");
    if (source.empty()) {
        file.error(image, "the tileset image has no \"source\"");
        return false;
    }
    ts.image = source[0] == '/' ? source : directoryOf(file.path()) + source;
    const std::string trans = file.attribute(image, "trans");
    if (!trans.empty()) {
        uint8_t rgba[4];
        if (!parseTiledColor(trans, rgba)) {
            file.error(image, "\"trans\" must be a colour such as ff00ff");
            return false;
        }
        std::copy(rgba, rgba + 3, ts.transparent);
        ts.hasTransparentColor = true;
    }
    return true;
}

// The contents of a <tileset> element (embedded in a map, or the root of a .tsx).
bool readTilesetElement(TmxFile& file, const XMLElement* e, tTiledTileset& ts)
{
    ts.file = file.path();
    ts.line = e->GetLineNum();
    ts.name = file.attribute(e, "name");
    bool ok = file.integer(e, "tilewidth", ts.tileWidth, 1, MAX_TILE_SIDE) &&
              file.integer(e, "tileheight", ts.tileHeight, 1, MAX_TILE_SIDE);
    ok = ok && file.integer(e, "spacing", ts.spacing, 0, MAX_IMAGE_SIDE, false) &&
         file.integer(e, "margin", ts.margin, 0, MAX_IMAGE_SIDE, false);
    ok = ok && file.integer(e, "columns", ts.columns, 0, MAX_IMAGE_SIDE, false) &&
         file.integer(e, "tilecount", ts.tileCount, 0, MAX_TOTAL_PIXELS, false);
    if (!ok)
        return false;
    if (const XMLElement* off = e->FirstChildElement("tileoffset"))
        ok = file.integer(off, "x", ts.offsetX, -MAX_COORDINATE, MAX_COORDINATE, false) &&
             file.integer(off, "y", ts.offsetY, -MAX_COORDINATE, MAX_COORDINATE, false);
    file.warnDropped(e, DROPPED_TILESET_FEATURES, "tileset \"" + ts.name + "\"");
    return ok && readTilesetImage(file, e, ts) && readTileAnimations(file, e, ts);
}

bool readTileElements(TmxFile& file, const XMLElement* data, size_t count, tTiledLayer& layer)
{
    for (const XMLElement* t = data->FirstChildElement("tile"); t; t = t->NextSiblingElement("tile")) {
        if (layer.gids.size() == count) {
            file.error(t, "the layer holds more than the " + std::to_string(count) + " tiles its size asks for");
            return false;
        }
        layer.gids.push_back(t->UnsignedAttribute("gid", 0));
    }
    if (layer.gids.size() != count) {
        file.error(data, "the layer holds " + std::to_string(layer.gids.size()) + " tiles where its size asks for " +
                             std::to_string(count));
        return false;
    }
    return true;
}

bool readLayerData(TmxFile& file, const XMLElement* e, const tTiledMap& map, tTiledLayer& layer)
{
    const XMLElement* data = e->FirstChildElement("data");
    if (!data) {
        file.error(e, "the layer has no <data>");
        return false;
    }
    if (data->FirstChildElement("chunk")) {
        file.error(data, "infinite maps are not supported (layer \"" + layer.name + "\" is stored in chunks)");
        return false;
    }
    int w = 0, h = 0;
    if (!file.integer(e, "width", w, 1, MAX_MAP_SIDE) || !file.integer(e, "height", h, 1, MAX_MAP_SIDE))
        return false;
    const std::string limit = layerProblem(map, w, h);
    if (!limit.empty()) {
        file.error(e, limit);
        return false;
    }
    const std::string encoding = file.attribute(data, "encoding");
    const size_t count = static_cast<size_t>(w) * h;
    if (encoding.empty())
        return readTileElements(file, data, count, layer);
    std::string error;
    const char* text = data->GetText();
    if (!decodeTileData(encoding, file.attribute(data, "compression"), text ? text : "", count, layer.gids, error)) {
        file.error(data, error);
        return false;
    }
    return true;
}

// Visibility, opacity, tint and offset, combined with the group's.
bool readLayerLook(TmxFile& file, const XMLElement* e, const tTiledLayer& group, tTiledLayer& layer)
{
    layer.name = file.attribute(e, "name");
    layer.line = e->GetLineNum();
    layer.visible = file.attribute(e, "visible") != "0";
    uint8_t tint[4] = {255, 255, 255, 255};
    const std::string tintText = file.attribute(e, "tintcolor");
    if (!tintText.empty() && !parseTiledColor(tintText, tint)) {
        file.error(e, "\"tintcolor\" must be a colour such as #ff8000 or #80ff8000");
        return false;
    }
    std::string why;
    if (!inheritLayer(group, e->DoubleAttribute("opacity", 1.0), tint, e->DoubleAttribute("offsetx", 0),
                      e->DoubleAttribute("offsety", 0), layer, why)) {
        file.error(e, why);
        return false;
    }
    file.warnDropped(e, DROPPED_LAYER_FEATURES, "layer \"" + layer.name + "\"");
    return true;
}

bool readLayers(TmxFile& file, const XMLElement* parent, tTiledMap& map, const tTiledLayer& group)
{
    bool ok = true;
    for (const XMLElement* e = parent->FirstChildElement(); e; e = e->NextSiblingElement()) {
        const std::string kind = e->Name();
        const std::string dropped = droppedLayerMessage(kind, file.attribute(e, "name"));
        if (!dropped.empty())
            file.warning(e, dropped);
        if (kind != "layer" && kind != "group")
            continue;
        tTiledLayer layer;
        if (!readLayerLook(file, e, group, layer)) {
            ok = false;
            continue;
        }
        if (kind == "group") {
            ok = readLayers(file, e, map, layer) && ok;
            continue;
        }
        if (!readLayerData(file, e, map, layer))
            return false;
        map.layers.push_back(std::move(layer));
    }
    return ok;
}

bool readTilesets(TmxFile& file, const XMLElement* root, tTiledMap& map)
{
    bool ok = true;
    for (const XMLElement* e = root->FirstChildElement("tileset"); e; e = e->NextSiblingElement("tileset")) {
        tTiledTileset ts;
        if (map.tilesets.size() >= size_t(MAX_TILESETS)) {
            file.error(e, atMost("the number of tilesets", MAX_TILESETS));
            return false;
        }
        if (!file.integer(e, "firstgid", ts.firstGid, 1, int(TILED_GID_MASK))) {
            ok = false;
            continue;
        }
        const std::string source = file.attribute(e, "source");
        if (source.empty()) {
            ok = readTilesetElement(file, e, ts) && ok;
        } else {
            const std::string tsx = source[0] == '/' ? source : directoryOf(file.path()) + source;
            const int firstGid = ts.firstGid;
            ok = readExternalTileset(tsx, ts, file.diagnostics()) && ok;
            ts.firstGid = firstGid;
        }
        map.tilesets.push_back(ts);
    }
    return ok;
}

} // namespace

bool readTsxTileset(const std::string& path, tTiledTileset& tileset, Diagnostics& diag)
{
    TmxFile file(path, diag);
    const XMLElement* root = file.loadRoot("tileset", "tileset");
    return root && readTilesetElement(file, root, tileset);
}

bool readTmxMap(const std::string& path, tTiledMap& map, Diagnostics& diag)
{
    TmxFile file(path, diag);
    const XMLElement* root = file.loadRoot("map", "map");
    if (!root)
        return false;
    map.file = path;
    const std::string orientation = file.attribute(root, "orientation");
    if (orientation != "orthogonal") {
        file.error(root, orientation + " maps are not supported: only orthogonal maps are imported");
        return false;
    }
    if (file.attribute(root, "infinite") == "1") {
        file.error(root, "infinite maps are not supported: give the map a fixed size");
        return false;
    }
    if (!file.integer(root, "width", map.width, 1, MAX_MAP_SIDE) ||
        !file.integer(root, "height", map.height, 1, MAX_MAP_SIDE) ||
        !file.integer(root, "tilewidth", map.tileWidth, 1, MAX_TILE_SIDE) ||
        !file.integer(root, "tileheight", map.tileHeight, 1, MAX_TILE_SIDE))
        return false;
    if (!mapSizeProblem(map).empty()) {
        file.error(root, mapSizeProblem(map));
        return false;
    }
    file.warnDropped(root, DROPPED_MAP_FEATURES, "the map");
    const bool tilesetsOk = readTilesets(file, root, map);
    return readLayers(file, root, map, tTiledLayer()) && tilesetsOk;
}
