#ifndef ZEPHRIN2D_IMPORT_TILEDMAP_H
#define ZEPHRIN2D_IMPORT_TILEDMAP_H

#include "JsonDocument.h"
#include "Paths.h"

#include <stdint.h>
#include <map>
#include <string>
#include <vector>

/// A Tiled map as both of Tiled's file forms (.tmx and JSON) give it.
struct tTiledTileset
{
    struct tFrame
    {
        int tile = 0;
        int duration = 0;
    };

    int firstGid = 1;
    std::string name;
    std::string file;   ///< where it was read (the map, or its .tsx / JSON tileset)
    int line = 1;       ///< its place in that file
    int tileWidth = 0, tileHeight = 0;
    int spacing = 0, margin = 0;
    int columns = 0, tileCount = 0;
    int offsetX = 0, offsetY = 0;
    std::string image;  ///< path of the tileset image, resolved against its file
    bool hasTransparentColor = false;
    uint8_t transparent[3] = {0, 0, 0};
    std::map<int, std::vector<tFrame> > animations;  ///< local tile id -> its frames
};

struct tTiledLayer
{
    std::string name;
    int line = 1;
    bool visible = true;
    double opacity = 1.0;
    uint8_t tint[4] = {255, 255, 255, 255};  ///< rgba, a group's tint multiplied in
    int offsetX = 0, offsetY = 0;  ///< pixels, y downwards
    int depth = 0;                 ///< groups the layer is in
    std::vector<uint32_t> gids;    ///< width x height, rows from the top, flip bits kept
};

struct tTiledMap
{
    std::string file;
    int width = 0, height = 0;
    int tileWidth = 0, tileHeight = 0;
    std::vector<tTiledTileset> tilesets;
    std::vector<tTiledLayer> layers;  ///< tile layers, bottom first
};

/// A layer as it inherits from its group: visibility, opacity, tint and
/// offset combined. False with why set when the layer's offset is too large.
bool inheritLayer(const tTiledLayer& group, double opacity, const uint8_t tint[4], double offsetX, double offsetY,
                  tTiledLayer& layer, std::string& why);

/// Tiled's "#rrggbb" or "#aarrggbb" (the "#" optional) as rgba.
bool parseTiledColor(const std::string& text, uint8_t rgba[4]);

/// Map features the importer leaves out, each warned about by name: a key
/// (XML attribute or child element, JSON member) and what it is. A feature
/// whose value is its default ("1" for a parallax factor) is not warned about.
struct tDroppedFeature
{
    const char* key;
    const char* what;
    const char* defaultValue;  ///< nullptr: any value is dropped
};
extern const std::vector<tDroppedFeature> DROPPED_MAP_FEATURES;
extern const std::vector<tDroppedFeature> DROPPED_LAYER_FEATURES;
extern const std::vector<tDroppedFeature> DROPPED_TILESET_FEATURES;
extern const std::vector<tDroppedFeature> DROPPED_TILE_FEATURES;
/// The warning about a dropped feature: "not imported: WHAT of OWNER".
std::string droppedMessage(const std::string& owner, const char* what);
/// The warning about a layer of another kind than tiles ("objectgroup" or
/// "imagelayer", as both forms name them); empty for the kinds imported.
std::string droppedLayerMessage(const std::string& kind, const std::string& name);

/// Empty when one more tile layer of width x height tiles is the map's size
/// and fits the importer's limits (layer count, cells of all layers), else why not.
std::string layerProblem(const tTiledMap& map, int width, int height);

const uint32_t TILED_FLIP_H = 0x80000000u;
const uint32_t TILED_FLIP_V = 0x40000000u;
const uint32_t TILED_FLIP_D = 0x20000000u;
const uint32_t TILED_GID_MASK = 0x0FFFFFFFu;

/// Reads a .tmx map (XML), with its external .tsx tilesets.
bool readTmxMap(const std::string& path, tTiledMap& map, Diagnostics& diag);
/// Reads a map in Tiled's JSON form, with its external tilesets (.tsx or JSON).
bool readTiledJsonMap(const JsonDocument& doc, tTiledMap& map, Diagnostics& diag);
/// True when the JSON document looks like a Tiled map.
bool isTiledJsonMap(const Json::Value& root);
/// Reads an external tileset file (.tsx, or Tiled's JSON form) into tileset.
bool readExternalTileset(const std::string& path, tTiledTileset& tileset, Diagnostics& diag);

/// Empty when the map's size and tile size are usable, else why not.
std::string mapSizeProblem(const tTiledMap& map);
/// An integer from a number of pixels Tiled may write with decimals; false
/// when it lies outside the importer's coordinate limit.
bool pixelsFrom(double value, int& out);

/// Tile layer data as Tiled stores it: "csv", or "base64" with compression
/// "", "zlib" or "gzip". error is set when it cannot be decoded.
bool decodeTileData(const std::string& encoding, const std::string& compression, const std::string& text,
                    size_t count, std::vector<uint32_t>& gids, std::string& error);

#endif
