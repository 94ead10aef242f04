#include "TiledMap.h"

#include <tinyxml2.h>

#include <cstring>

using tinyxml2::XMLDocument;
using tinyxml2::XMLElement;

namespace {

class TmxFile
{
public:
    TmxFile(const std::string& path, Diagnostics& diag) : mPath(path), mDiag(diag) {}

    bool load()
    {
        std::string text;
        if (!readTextFile(mPath, text)) {
            mDiag.error(mPath, 1, 1, "cannot be read");
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

    bool integer(const XMLElement* e, const char* name, int& out, bool required = true)
    {
        const char* v = e->Attribute(name);
        if (!v) {
            if (required)
                error(e, std::string("<") + e->Name() + "> has no \"" + name + "\"");
            return !required;
        }
        if (e->QueryIntAttribute(name, &out) != tinyxml2::XML_SUCCESS) {
            error(e, std::string("\"") + name + "\" must be an integer");
            return false;
        }
        return true;
    }

    std::string attribute(const XMLElement* e, const char* name)
    {
        const char* v = e->Attribute(name);
        return v ? v : "";
    }

    const std::string& path() const { return mPath; }
    XMLDocument& doc() { return mDoc; }

private:
    std::string mPath;
    Diagnostics& mDiag;
    XMLDocument mDoc;
};

bool parseColor(const std::string& text, uint8_t rgb[3])
{
    std::string hex = text[0] == '#' ? text.substr(1) : text;
    if (hex.size() != 6)
        return false;
    char* end = nullptr;
    const unsigned long v = strtoul(hex.c_str(), &end, 16);
    if (*end)
        return false;
    rgb[0] = (v >> 16) & 0xFF;
    rgb[1] = (v >> 8) & 0xFF;
    rgb[2] = v & 0xFF;
    return true;
}

// The contents of a <tileset> element (embedded in a map, or the root of a .tsx).
bool readTilesetElement(TmxFile& file, const XMLElement* e, tTiledTileset& ts)
{
    ts.file = file.path();
    ts.line = e->GetLineNum();
    ts.name = file.attribute(e, "name");
    bool ok = file.integer(e, "tilewidth", ts.tileWidth) && file.integer(e, "tileheight", ts.tileHeight);
    ok = ok && file.integer(e, "spacing", ts.spacing, false) && file.integer(e, "margin", ts.margin, false);
    ok = ok && file.integer(e, "columns", ts.columns, false) && file.integer(e, "tilecount", ts.tileCount, false);
    if (!ok)
        return false;
    if (const XMLElement* off = e->FirstChildElement("tileoffset"))
        ok = file.integer(off, "x", ts.offsetX, false) && file.integer(off, "y", ts.offsetY, false);
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
        if (!parseColor(trans, ts.transparent)) {
            file.error(image, "\"trans\" must be a colour such as ff00ff");
            return false;
        }
        ts.hasTransparentColor = true;
    }
    for (const XMLElement* tile = e->FirstChildElement("tile"); tile; tile = tile->NextSiblingElement("tile")) {
        int id = 0;
        if (!file.integer(tile, "id", id))
            return false;
        const XMLElement* animation = tile->FirstChildElement("animation");
        if (!animation)
            continue;
        std::vector<tTiledTileset::tFrame>& frames = ts.animations[id];
        for (const XMLElement* f = animation->FirstChildElement("frame"); f; f = f->NextSiblingElement("frame")) {
            tTiledTileset::tFrame frame;
            if (!file.integer(f, "tileid", frame.tile) || !file.integer(f, "duration", frame.duration))
                return false;
            frames.push_back(frame);
        }
    }
    return ok;
}

bool readLayers(TmxFile& file, const XMLElement* parent, tTiledMap& map, const tTiledLayer& inherited)
{
    bool ok = true;
    for (const XMLElement* e = parent->FirstChildElement(); e; e = e->NextSiblingElement()) {
        const std::string kind = e->Name();
        if (kind != "layer" && kind != "group") {
            if (kind == "objectgroup" || kind == "imagelayer")
                file.warning(e, "<" + kind + "> \"" + file.attribute(e, "name") + "\" is left out: only tile layers are imported");
            continue;
        }
        tTiledLayer layer;
        layer.name = file.attribute(e, "name");
        layer.line = e->GetLineNum();
        layer.visible = inherited.visible && file.attribute(e, "visible") != "0";
        layer.opacity = inherited.opacity * e->DoubleAttribute("opacity", 1.0);
        int ox = 0, oy = 0;
        ok = file.integer(e, "offsetx", ox, false) && file.integer(e, "offsety", oy, false) && ok;
        layer.offsetX = inherited.offsetX + ox;
        layer.offsetY = inherited.offsetY + oy;
        if (kind == "group") {
            ok = readLayers(file, e, map, layer) && ok;
            continue;
        }
        const XMLElement* data = e->FirstChildElement("data");
        if (!data) {
            file.error(e, "the layer has no <data>");
            ok = false;
            continue;
        }
        if (data->FirstChildElement("chunk")) {
            file.error(data, "infinite maps are not supported (layer \"" + layer.name + "\" is stored in chunks)");
            ok = false;
            continue;
        }
        int w = 0, h = 0;
        if (!file.integer(e, "width", w) || !file.integer(e, "height", h))
            return false;
        if (w != map.width || h != map.height) {
            file.error(e, "the layer is " + std::to_string(w) + "x" + std::to_string(h) + " tiles, the map " +
                              std::to_string(map.width) + "x" + std::to_string(map.height));
            ok = false;
            continue;
        }
        const std::string encoding = file.attribute(data, "encoding");
        const size_t count = static_cast<size_t>(w) * h;
        if (encoding.empty()) {
            // Tiles as <tile gid=".."/> elements.
            for (const XMLElement* t = data->FirstChildElement("tile"); t; t = t->NextSiblingElement("tile"))
                layer.gids.push_back(t->UnsignedAttribute("gid", 0));
            if (layer.gids.size() != count) {
                file.error(data, "the layer holds " + std::to_string(layer.gids.size()) + " tiles where its size asks for " +
                                     std::to_string(count));
                ok = false;
            }
        } else {
            std::string error;
            const char* text = data->GetText();
            if (!decodeTileData(encoding, file.attribute(data, "compression"), text ? text : "", count, layer.gids,
                                error)) {
                file.error(data, error);
                ok = false;
            }
        }
        map.layers.push_back(layer);
    }
    return ok;
}

} // namespace

bool readExternalTileset(const std::string& path, tTiledTileset& tileset, Diagnostics& diag);

bool readTsxTileset(const std::string& path, tTiledTileset& tileset, Diagnostics& diag)
{
    TmxFile file(path, diag);
    if (!file.load())
        return false;
    const XMLElement* root = file.doc().RootElement();
    if (!root || strcmp(root->Name(), "tileset") != 0) {
        diag.error(path, root ? root->GetLineNum() : 1, 1, "not a Tiled tileset (no <tileset> element)");
        return false;
    }
    return readTilesetElement(file, root, tileset);
}

bool readTmxMap(const std::string& path, tTiledMap& map, Diagnostics& diag)
{
    TmxFile file(path, diag);
    if (!file.load())
        return false;
    const XMLElement* root = file.doc().RootElement();
    if (!root || strcmp(root->Name(), "map") != 0) {
        diag.error(path, root ? root->GetLineNum() : 1, 1, "not a Tiled map (no <map> element)");
        return false;
    }
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
    if (!file.integer(root, "width", map.width) || !file.integer(root, "height", map.height) ||
        !file.integer(root, "tilewidth", map.tileWidth) || !file.integer(root, "tileheight", map.tileHeight))
        return false;
    if (!mapSizeProblem(map).empty()) {
        file.error(root, mapSizeProblem(map));
        return false;
    }
    bool ok = true;
    for (const XMLElement* e = root->FirstChildElement("tileset"); e; e = e->NextSiblingElement("tileset")) {
        tTiledTileset ts;
        if (!file.integer(e, "firstgid", ts.firstGid)) {
            ok = false;
            continue;
        }
        const std::string source = file.attribute(e, "source");
        if (source.empty()) {
            ok = readTilesetElement(file, e, ts) && ok;
        } else {
            const std::string tsx = source[0] == '/' ? source : directoryOf(path) + source;
            ok = readExternalTileset(tsx, ts, diag) && ok;
        }
        map.tilesets.push_back(ts);
    }
    tTiledLayer top;
    return readLayers(file, root, map, top) && ok;
}
