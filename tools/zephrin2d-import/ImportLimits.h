#ifndef ZEPHRIN2D_IMPORT_IMPORTLIMITS_H
#define ZEPHRIN2D_IMPORT_IMPORTLIMITS_H

#include <stddef.h>
#include <stdint.h>
#include <string>

/// What the importer accepts, far beyond what handheld content needs. Each
/// is checked before anything is allocated for it, so a hostile file is
/// refused in moments; docs/importing.md lists them.
namespace ImportLimits {

const size_t MAX_FILE_BYTES = 64u << 20;    ///< any input file: map, tileset, sheet JSON
const int MAX_IMAGE_SIDE = 4096;            ///< sheet and tileset images, Aseprite frames
const long MAX_TOTAL_PIXELS = 1L << 24;     ///< all frames of a sheet, all tileset images of a map
const int MAX_COORDINATE = 1 << 20;         ///< rectangles, pivots, offsets, margins (pixels)
const size_t MAX_STRING_BYTES = 4096;       ///< any string read: names, paths, encodings
const int MAX_FRAMES = 4096;                ///< Aseprite frames; tiles of one tile animation
const int MAX_TAGS = 1024;
const long MAX_CELS = 65535;                ///< cels of one actor, all passes of all tags
const int MAX_MAP_SIDE = 1024;              ///< tiles
const long MAX_MAP_CELLS = 1L << 18;        ///< width x height of a map
const int MAX_TILE_SIDE = 1024;             ///< pixels
const int MAX_LAYERS = 64;                  ///< tile layers, groups included
const int MAX_TILESETS = 256;
const long MAX_ALL_LAYER_CELLS = 1L << 18;  ///< cells of every tile layer together
const int MAX_GROUP_DEPTH = 16;

/// "the X may be at most N" worded the same everywhere.
inline std::string atMost(const std::string& what, long long limit)
{
    return what + " may be at most " + std::to_string(limit) + " (a limit of the importer)";
}

/// True when v lies within [-MAX_COORDINATE, MAX_COORDINATE].
inline bool coordinateOk(long long v)
{
    return v >= -MAX_COORDINATE && v <= MAX_COORDINATE;
}

} // namespace ImportLimits

#endif
