#include "ImportLimits.h"
#include "TiledMap.h"

#include <cmath>
#include <cstdlib>

using namespace ImportLimits;

const std::vector<tDroppedFeature> DROPPED_MAP_FEATURES = {
    {"backgroundcolor", "the background colour", nullptr},
    {"parallaxoriginx", "the parallax origin", "0"},
    {"parallaxoriginy", "the parallax origin", "0"},
    {"properties", "custom properties", nullptr},
    {"class", "the class", ""},
};

const std::vector<tDroppedFeature> DROPPED_LAYER_FEATURES = {
    {"parallaxx", "the parallax factor", "1"},
    {"parallaxy", "the parallax factor", "1"},
    {"properties", "custom properties", nullptr},
    {"class", "the class", ""},
    {"mode", "the blend mode", "normal"},
};

const std::vector<tDroppedFeature> DROPPED_TILESET_FEATURES = {
    {"properties", "custom properties", nullptr},
    {"wangsets", "Wang sets", nullptr},
    {"terraintypes", "terrains", nullptr},
    {"terrains", "terrains", nullptr},
    {"tilerendersize", "the tile render size", "tile"},
    {"fillmode", "the fill mode", "stretch"},
    {"class", "the class", ""},
};

const std::vector<tDroppedFeature> DROPPED_TILE_FEATURES = {
    {"properties", "tile properties", nullptr},
    {"objectgroup", "tile collision shapes", nullptr},
    {"type", "tile classes", ""},
    {"class", "tile classes", ""},
};

std::string droppedMessage(const std::string& owner, const char* what)
{
    return std::string("not imported: ") + what + " of " + owner;
}

std::string droppedLayerMessage(const std::string& kind, const std::string& name)
{
    if (kind != "objectgroup" && kind != "imagelayer")
        return std::string();
    return (kind == "imagelayer" ? "image layer \"" : "object layer \"") + name +
           "\" is left out: only tile layers are imported";
}

bool parseTiledColor(const std::string& text, uint8_t rgba[4])
{
    const std::string hex = !text.empty() && text[0] == '#' ? text.substr(1) : text;
    if (hex.size() != 6 && hex.size() != 8)
        return false;
    if (hex.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
        return false;
    const unsigned long v = strtoul(hex.c_str(), nullptr, 16);
    rgba[0] = (v >> 16) & 0xFF;
    rgba[1] = (v >> 8) & 0xFF;
    rgba[2] = v & 0xFF;
    rgba[3] = hex.size() == 8 ? (v >> 24) & 0xFF : 0xFF;
    return true;
}

bool pixelsFrom(double value, int& out)
{
    if (!(value >= -MAX_COORDINATE && value <= MAX_COORDINATE))
        return false;
    out = static_cast<int>(std::lround(value));
    return true;
}

bool inheritLayer(const tTiledLayer& group, double opacity, const uint8_t tint[4], double offsetX, double offsetY,
                  tTiledLayer& layer, std::string& why)
{
    layer.visible = group.visible && layer.visible;
    layer.opacity = group.opacity * std::max(0.0, std::min(1.0, opacity));
    for (int c = 0; c < 4; ++c)
        layer.tint[c] = static_cast<uint8_t>((group.tint[c] * tint[c] + 127) / 255);
    layer.depth = group.depth + 1;
    int x = 0, y = 0;
    if (!pixelsFrom(offsetX, x) || !pixelsFrom(offsetY, y) || !pixelsFrom(double(group.offsetX) + x, layer.offsetX) ||
        !pixelsFrom(double(group.offsetY) + y, layer.offsetY)) {
        why = "the layer's offset must lie between -" + std::to_string(MAX_COORDINATE) + " and " +
              std::to_string(MAX_COORDINATE) + " pixels";
        return false;
    }
    if (layer.depth > MAX_GROUP_DEPTH) {
        why = atMost("the depth of nested groups", MAX_GROUP_DEPTH);
        return false;
    }
    return true;
}

std::string mapSizeProblem(const tTiledMap& map)
{
    if (map.width <= 0 || map.height <= 0 || map.width > MAX_MAP_SIDE || map.height > MAX_MAP_SIDE)
        return "the map must be 1 to " + std::to_string(MAX_MAP_SIDE) + " tiles on each side (a limit of the importer)";
    if (int64_t(map.width) * map.height > MAX_MAP_CELLS)
        return atMost("the map's width x height", MAX_MAP_CELLS);
    if (map.tileWidth <= 0 || map.tileHeight <= 0 || map.tileWidth > MAX_TILE_SIDE || map.tileHeight > MAX_TILE_SIDE)
        return "the tile size must lie between 1 and " + std::to_string(MAX_TILE_SIDE) + " pixels";
    return std::string();
}

std::string layerProblem(const tTiledMap& map, int width, int height)
{
    if (width != map.width || height != map.height)
        return "the layer is " + std::to_string(width) + "x" + std::to_string(height) + " tiles, the map " +
               std::to_string(map.width) + "x" + std::to_string(map.height);
    if (map.layers.size() >= size_t(MAX_LAYERS))
        return atMost("the number of tile layers", MAX_LAYERS);
    if ((int64_t(map.layers.size()) + 1) * map.width * map.height > MAX_ALL_LAYER_CELLS)
        return atMost("the number of cells of all tile layers together", MAX_ALL_LAYER_CELLS);
    return std::string();
}
