#ifndef ZEPHRIN2D_IMPORT_MAPIMPORTER_H
#define ZEPHRIN2D_IMPORT_MAPIMPORTER_H

#include "ImportResult.h"
#include "TiledMap.h"

/// A scene from a Tiled map: one sprite per tile layer, each one depth nearer
/// the viewer than the layer below, animated tiles as looping actors.
bool importTiledMap(const tTiledMap& map, tImportResult& result, Diagnostics& diag);

#endif
