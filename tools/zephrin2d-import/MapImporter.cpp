#include "MapImporter.h"

#include "ActorJson.h"
#include "JsonText.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace {

struct tTransform
{
    int rotation = 0;
    int scaleX = 1, scaleY = 1;
};

// Tiled flips the tile's image diagonally first, then horizontally and
// vertically (in image space, y down). Here the same picture is made by a
// scale and a counter-clockwise rotation about the tile's centre, y up.
tTransform flipTransform(uint32_t gid)
{
    int m[2][2] = {{1, 0}, {0, 1}};
    auto apply = [&m](int a, int b, int c, int d) {
        const int r[2][2] = {{a * m[0][0] + b * m[1][0], a * m[0][1] + b * m[1][1]},
                             {c * m[0][0] + d * m[1][0], c * m[0][1] + d * m[1][1]}};
        m[0][0] = r[0][0], m[0][1] = r[0][1], m[1][0] = r[1][0], m[1][1] = r[1][1];
    };
    // Image-space flips seen in y-up space: a mirror stays one, the diagonal
    // becomes the anti-diagonal.
    if (gid & TILED_FLIP_D)
        apply(0, -1, -1, 0);
    if (gid & TILED_FLIP_H)
        apply(-1, 0, 0, 1);
    if (gid & TILED_FLIP_V)
        apply(1, 0, 0, -1);
    static const int cosines[4] = {1, 0, -1, 0};
    static const int sines[4] = {0, 1, 0, -1};
    for (int q = 0; q < 4; ++q) {
        for (int sy = 1; sy >= -1; sy -= 2) {
            for (int sx = 1; sx >= -1; sx -= 2) {
                // R(q * 90) * diag(sx, sy)
                if (cosines[q] * sx == m[0][0] && -sines[q] * sy == m[0][1] && sines[q] * sx == m[1][0] &&
                    cosines[q] * sy == m[1][1]) {
                    tTransform t;
                    t.rotation = q * 90;
                    t.scaleX = sx;
                    t.scaleY = sy;
                    return t;
                }
            }
        }
    }
    return tTransform();
}

struct tTilesetPictures
{
    std::string prefix;
    ImageIO::tImage image;
    int columns = 0;
    int tileCount = 0;
};

struct tAnimatedTile
{
    std::string name;
    int set, id, x, y;
    tTransform transform;
};

// Position (with the depth when one is given), rotation and scale of a placed tile.
void place(JsonText::Object& o, const tTransform& t, int x, int y, int depth)
{
    std::string pos = JsonText::real(x) + ", " + JsonText::real(y);
    if (depth >= 0)
        pos += ", " + JsonText::real(depth);
    o.set("Position", JsonText::array(pos));
    if (t.rotation)
        o.set("Rotation", JsonText::real(t.rotation));
    if (t.scaleX != 1 || t.scaleY != 1)
        o.set("Scale", JsonText::array(JsonText::real(t.scaleX) + ", " + JsonText::real(t.scaleY)));
}

std::string colorFor(double opacity)
{
    const int alpha = static_cast<int>(std::lround(std::max(0.0, std::min(1.0, opacity)) * 255));
    return JsonText::array("255, 255, 255, " + std::to_string(alpha));
}

} // namespace

bool importTiledMap(const tTiledMap& map, tImportResult& result, Diagnostics& diag)
{
    if (!mapSizeProblem(map).empty()) {
        diag.error(map.file, 1, 1, mapSizeProblem(map));
        return false;
    }
    std::vector<tTilesetPictures> sets(map.tilesets.size());
    std::set<std::string> prefixes;
    for (size_t i = 0; i < map.tilesets.size(); ++i) {
        const tTiledTileset& ts = map.tilesets[i];
        tTilesetPictures& set = sets[i];
        std::string prefix = ts.name.empty() ? "tileset" : ts.name;
        set.prefix = prefix;
        for (int n = 2; !prefixes.insert(set.prefix).second; ++n)
            set.prefix = prefix + "-" + std::to_string(n);
        if (ts.tileWidth <= 0 || ts.tileHeight <= 0 || ts.tileWidth > 4096 || ts.tileHeight > 4096 ||
            ts.margin < 0 || ts.spacing < 0) {
            diag.error(ts.file, ts.line, 1, "tileset \"" + ts.name +
                                                "\": the tile size must lie between 1 and 4096 pixels, the margin "
                                                "and spacing must not be negative");
            continue;
        }
        if (!ImageIO::readPNG(ts.image, set.image)) {
            diag.error(ts.file, ts.line, 1, "tileset \"" + ts.name + "\": the image \"" + ts.image +
                                                "\" is not there or is not a PNG");
            continue;
        }
        if (ts.hasTransparentColor) {
            for (size_t p = 0; p < set.image.rgba.size(); p += 4)
                if (std::equal(ts.transparent, ts.transparent + 3, &set.image.rgba[p]))
                    set.image.rgba[p + 3] = 0;
        }
        set.columns = ts.columns > 0 ? ts.columns
                                     : (set.image.width - 2 * ts.margin + ts.spacing) / (ts.tileWidth + ts.spacing);
        const int rows = (set.image.height - 2 * ts.margin + ts.spacing) / (ts.tileHeight + ts.spacing);
        set.tileCount = ts.tileCount > 0 ? ts.tileCount : set.columns * rows;
        // The last tile's rectangle must lie inside the image.
        const long lastRow = set.columns > 0 ? (set.tileCount - 1L) / set.columns : 0;
        const long lastColumn = std::min<long>(set.columns, set.tileCount) - 1;
        if (set.columns <= 0 || set.tileCount <= 0 ||
            ts.margin + lastColumn * (ts.tileWidth + ts.spacing) + ts.tileWidth > set.image.width ||
            ts.margin + lastRow * (ts.tileHeight + ts.spacing) + ts.tileHeight > set.image.height) {
            diag.error(ts.file, ts.line, 1, "tileset \"" + ts.name + "\": the image \"" + ts.image + "\" (" +
                                                std::to_string(set.image.width) + "x" +
                                                std::to_string(set.image.height) + ") is too small for its tiles");
            set.image = ImageIO::tImage();
        }
    }
    if (diag.failed())
        return false;

    // The tileset of a tile number: the one with the greatest first number not above it.
    auto tilesetOf = [&map](uint32_t gid) {
        int found = -1;
        for (size_t i = 0; i < map.tilesets.size(); ++i)
            if (static_cast<uint32_t>(map.tilesets[i].firstGid) <= gid &&
                (found < 0 || map.tilesets[i].firstGid > map.tilesets[found].firstGid))
                found = static_cast<int>(i);
        return found;
    };
    std::set<std::string> made;
    auto picture = [&](int set, int id) {
        const std::string name = sets[set].prefix + "/" + std::to_string(id);
        if (made.insert(name).second) {
            const tTiledTileset& ts = map.tilesets[set];
            tImportPicture p;
            p.name = name;
            p.image.width = ts.tileWidth;
            p.image.height = ts.tileHeight;
            p.image.rgba.resize(static_cast<size_t>(ts.tileWidth) * ts.tileHeight * 4);
            const int x0 = ts.margin + (id % sets[set].columns) * (ts.tileWidth + ts.spacing);
            const int y0 = ts.margin + (id / sets[set].columns) * (ts.tileHeight + ts.spacing);
            for (int y = 0; y < ts.tileHeight; ++y)
                std::copy(sets[set].image.at(x0, y0 + y), sets[set].image.at(x0, y0 + y) + ts.tileWidth * 4,
                          p.image.at(0, y));
            p.regX = ts.tileWidth / 2;
            p.regY = ts.tileHeight / 2;
            result.pictures.push_back(p);
        }
        return name;
    };

    tDefinitionCounts ids;
    std::map<std::string, int> actorOf;  // animated tile picture -> its actor's number
    std::string elements;
    auto append = [&elements](const std::string& element) {
        if (!elements.empty())
            elements += ", ";
        elements += element;
    };
    for (size_t l = 0; l < map.layers.size(); ++l) {
        const tTiledLayer& layer = map.layers[l];
        const int depth = static_cast<int>(l);
        if (!layer.visible) {
            result.notes.push_back("layer \"" + layer.name + "\" is hidden: left out");
            continue;
        }
        std::string tiles;
        std::vector<tAnimatedTile> animated;
        int tileCount = 0;
        for (int r = 0; r < map.height; ++r) {
            for (int c = 0; c < map.width; ++c) {
                const uint32_t raw = layer.gids[static_cast<size_t>(r) * map.width + c];
                const uint32_t gid = raw & TILED_GID_MASK;
                if (gid == 0)
                    continue;
                const int set = tilesetOf(gid);
                const int id = set < 0 ? -1 : static_cast<int>(gid - map.tilesets[set].firstGid);
                if (set < 0 || id >= sets[set].tileCount) {
                    diag.error(map.file, layer.line, 1, "layer \"" + layer.name + "\": tile number " +
                                                            std::to_string(gid) + " at column " + std::to_string(c) +
                                                            ", row " + std::to_string(r) + " is in no tileset");
                    continue;
                }
                const tTiledTileset& ts = map.tilesets[set];
                const tTransform t = flipTransform(raw);
                // The tile's image stands on the cell's bottom edge; its centre is the registration point.
                const int x = c * map.tileWidth + ts.tileWidth / 2 + ts.offsetX;
                const int y = (map.height - 1 - r) * map.tileHeight + (ts.tileHeight - ts.tileHeight / 2) - ts.offsetY;
                const std::string name = picture(set, id);
                auto animation = ts.animations.find(id);
                if (animation != ts.animations.end() && !animation->second.empty()) {
                    // Actors follow the layer's sprite in the file, so they are written after it.
                    animated.push_back({name, set, id, x, y, t});
                } else {
                    JsonText::Object tile;
                    tile.set("ElementType", 0).set("ID", ids.billboards++).setString("URL", name);
                    place(tile, t, x, y, -1);
                    if (!tiles.empty())
                        tiles += ", ";
                    tiles += tile.text();
                }
                ++tileCount;
            }
        }
        if (!tiles.empty()) {
            JsonText::Object sprite;
            sprite.set("ElementType", 1).set("ID", ids.sprites++);
            sprite.set("Position", JsonText::array(JsonText::real(layer.offsetX) + ", " +
                                                   JsonText::real(-layer.offsetY) + ", " + JsonText::real(depth)));
            if (layer.opacity < 1.0)
                sprite.set("Color", colorFor(layer.opacity));
            sprite.set("Children", JsonText::array(tiles));
            append(sprite.text());
        }
        for (const tAnimatedTile& a : animated) {
            const tTiledTileset& ts = map.tilesets[a.set];
            const std::vector<tTiledTileset::tFrame>& frames = ts.animations.at(a.id);
            JsonText::Object actor;
            actor.set("ElementType", 3);
            auto known = actorOf.find(a.name);
            const bool defined = known != actorOf.end();
            actor.set("ID", defined ? known->second : (actorOf[a.name] = ids.actors++));
            place(actor, a.transform, a.x + layer.offsetX, a.y - layer.offsetY, depth);
            if (layer.opacity < 1.0)
                actor.set("Color", colorFor(layer.opacity));
            if (!defined) {
                tAnimationSpec spec;
                spec.label = a.name;
                for (const tTiledTileset::tFrame& frame : frames) {
                    if (frame.tile < 0 || frame.tile >= sets[a.set].tileCount || frame.duration < 0 ||
                        frame.duration > 65535) {
                        diag.error(ts.file, ts.line, 1, "tileset \"" + ts.name + "\": tile " + std::to_string(a.id) +
                                                            "'s animation has a frame outside the tileset or a "
                                                            "duration outside 0 to 65535");
                        return false;
                    }
                    spec.cels.push_back({picture(a.set, frame.tile), frame.duration});
                }
                actor.set("Animation", animationArray({spec}, ids));
            }
            append(actor.text());
        }
        result.notes.push_back("layer \"" + layer.name + "\": " + std::to_string(tileCount) + " tiles at depth " +
                               std::to_string(depth) + (animated.empty() ? "" : ", " + std::to_string(animated.size()) +
                                                                                   " of them animated"));
    }
    if (diag.failed())
        return false;
    result.kind = "scene";
    result.content = JsonText::pretty(JsonText::array(elements), 120);
    return true;
}
