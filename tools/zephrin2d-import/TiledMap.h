#ifndef ZEPHRIN2D_IMPORT_TILEDMAP_H
#define ZEPHRIN2D_IMPORT_TILEDMAP_H

#include "Diagnostics.h"

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
    int offsetX = 0, offsetY = 0;  ///< pixels, y downwards
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

/// Tile layer data as Tiled stores it: "csv", or "base64" with compression
/// "", "zlib" or "gzip". error is set when it cannot be decoded.
bool decodeTileData(const std::string& encoding, const std::string& compression, const std::string& text,
                    size_t count, std::vector<uint32_t>& gids, std::string& error);

#endif
