#include "MapImporter.h"

#include "ActorJson.h"
#include "ImageFiles.h"
#include "ImportLimits.h"
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

// The layer's tint times its opacity; the library draws texel x colour.
void setLayerColor(JsonText::Object& o, const tTiledLayer& layer)
{
    const int alpha = static_cast<int>(std::lround(layer.tint[3] * layer.opacity));
    if (layer.tint[0] == 255 && layer.tint[1] == 255 && layer.tint[2] == 255 && alpha == 255)
        return;
    o.set("Color", JsonText::array(std::to_string(layer.tint[0]) + ", " + std::to_string(layer.tint[1]) + ", " +
                                   std::to_string(layer.tint[2]) + ", " + std::to_string(alpha)));
}

// The layer's name on the element that stands for it: its sprite, or its
// actors when it has only animated tiles.
void setName(JsonText::Object& o, const tTiledLayer& layer)
{
    if (!layer.name.empty())
        o.setString("Name", layer.name);
}

// The scene of a map, written layer by layer; tile pictures are cut from
// the tileset images as the layers first use them.
class MapWriter
{
public:
    MapWriter(const tTiledMap& map, tImportResult& result, Diagnostics& diag)
        : mMap(map), mResult(result), mDiag(diag), mSets(map.tilesets.size())
    {
    }

    bool loadTilesets();
    bool writeLayers();

private:
    bool loadTileset(size_t i, int64_t& pixels);
    bool tilesFit(size_t i);
    int tilesetOf(uint32_t gid) const;
    std::string picture(int set, int id);
    bool writeLayer(size_t l);
    bool placeTile(const tTiledLayer& layer, int r, int c, std::string& tiles, std::vector<tAnimatedTile>& animated);
    bool writeActor(const tTiledLayer& layer, int depth, bool named, const tAnimatedTile& a);
    void append(const std::string& element)
    {
        if (!mElements.empty())
            mElements += ", ";
        mElements += element;
    }

    const tTiledMap& mMap;
    tImportResult& mResult;
    Diagnostics& mDiag;
    std::vector<tTilesetPictures> mSets;
    std::set<std::string> mMade;
    tDefinitionCounts mIds;
    std::map<std::string, int> mActorOf;  // animated tile picture -> its actor's number
    std::string mElements;
};

bool MapWriter::loadTilesets()
{
    std::set<std::string> prefixes;
    int64_t pixels = 0;
    for (size_t i = 0; i < mMap.tilesets.size(); ++i) {
        const tTiledTileset& ts = mMap.tilesets[i];
        const std::string prefix = ts.name.empty() ? "tileset" : ts.name;
        mSets[i].prefix = prefix;
        for (int n = 2; !prefixes.insert(mSets[i].prefix).second; ++n)
            mSets[i].prefix = prefix + "-" + std::to_string(n);
        if (!loadTileset(i, pixels))
            return false;
    }
    return !mDiag.failed();
}

bool MapWriter::loadTileset(size_t i, int64_t& pixels)
{
    const tTiledTileset& ts = mMap.tilesets[i];
    tTilesetPictures& set = mSets[i];
    std::string why;
    if (ts.tileWidth <= 0 || ts.tileHeight <= 0) {
        mDiag.error(ts.file, ts.line, 1, "tileset \"" + ts.name + "\": the tile size must be at least 1 pixel");
        return false;
    }
    if (!ImageFiles::read(ts.image, set.image, why)) {
        mDiag.error(ts.file, ts.line, 1, "tileset \"" + ts.name + "\": the image \"" + ts.image + "\" " + why);
        return false;
    }
    pixels += int64_t(set.image.width) * set.image.height;
    if (pixels > ImportLimits::MAX_TOTAL_PIXELS) {
        mDiag.error(ts.file, ts.line, 1,
                    ImportLimits::atMost("the pixel count of all tileset images together", ImportLimits::MAX_TOTAL_PIXELS));
        return false;
    }
    if (ts.hasTransparentColor) {
        for (size_t p = 0; p < set.image.rgba.size(); p += 4)
            if (std::equal(ts.transparent, ts.transparent + 3, &set.image.rgba[p]))
                set.image.rgba[p + 3] = 0;
    }
    return tilesFit(i);
}

// Every tile's rectangle, the last one's included, lies inside the image.
bool MapWriter::tilesFit(size_t i)
{
    const tTiledTileset& ts = mMap.tilesets[i];
    tTilesetPictures& set = mSets[i];
    const int64_t stepX = int64_t(ts.tileWidth) + ts.spacing, stepY = int64_t(ts.tileHeight) + ts.spacing;
    const int64_t columns = ts.columns > 0 ? ts.columns : (set.image.width - 2 * int64_t(ts.margin) + ts.spacing) / stepX;
    const int64_t rows = (set.image.height - 2 * int64_t(ts.margin) + ts.spacing) / stepY;
    const int64_t count = ts.tileCount > 0 ? ts.tileCount : std::max<int64_t>(0, columns * rows);
    const int64_t lastRow = columns > 0 ? (count - 1) / columns : 0;
    const int64_t lastColumn = std::min(columns, count) - 1;
    if (columns <= 0 || count <= 0 || ts.margin + lastColumn * stepX + ts.tileWidth > set.image.width ||
        ts.margin + lastRow * stepY + ts.tileHeight > set.image.height) {
        mDiag.error(ts.file, ts.line, 1, "tileset \"" + ts.name + "\": the image \"" + ts.image + "\" (" +
                                             std::to_string(set.image.width) + "x" + std::to_string(set.image.height) +
                                             ") is too small for its tiles");
        return false;
    }
    set.columns = static_cast<int>(columns);
    set.tileCount = static_cast<int>(count);
    return true;
}

// The tileset of a tile number: the one with the greatest first number not above it.
int MapWriter::tilesetOf(uint32_t gid) const
{
    int found = -1;
    for (size_t i = 0; i < mMap.tilesets.size(); ++i)
        if (static_cast<uint32_t>(mMap.tilesets[i].firstGid) <= gid &&
            (found < 0 || mMap.tilesets[i].firstGid > mMap.tilesets[found].firstGid))
            found = static_cast<int>(i);
    return found;
}

std::string MapWriter::picture(int set, int id)
{
    const std::string name = mSets[set].prefix + "/" + std::to_string(id);
    if (!mMade.insert(name).second)
        return name;
    const tTiledTileset& ts = mMap.tilesets[set];
    const ImageIO::tImage& image = mSets[set].image;
    tImportPicture p;
    p.name = name;
    p.image.width = ts.tileWidth;
    p.image.height = ts.tileHeight;
    p.image.rgba.resize(static_cast<size_t>(ts.tileWidth) * ts.tileHeight * 4);
    const int x0 = ts.margin + (id % mSets[set].columns) * (ts.tileWidth + ts.spacing);
    const int y0 = ts.margin + (id / mSets[set].columns) * (ts.tileHeight + ts.spacing);
    for (int y = 0; y < ts.tileHeight; ++y)
        std::copy(image.at(x0, y0 + y), image.at(x0, y0 + y) + ts.tileWidth * 4, p.image.at(0, y));
    p.regX = ts.tileWidth / 2;
    p.regY = ts.tileHeight / 2;
    mResult.pictures.push_back(std::move(p));
    return name;
}

bool MapWriter::placeTile(const tTiledLayer& layer, int r, int c, std::string& tiles,
                          std::vector<tAnimatedTile>& animated)
{
    const uint32_t raw = layer.gids[static_cast<size_t>(r) * mMap.width + c];
    const uint32_t gid = raw & TILED_GID_MASK;
    const int set = tilesetOf(gid);
    const int64_t id = set < 0 ? -1 : int64_t(gid) - mMap.tilesets[set].firstGid;
    if (set < 0 || id >= mSets[set].tileCount) {
        mDiag.error(mMap.file, layer.line, 1, "layer \"" + layer.name + "\": tile number " + std::to_string(gid) +
                                                  " at column " + std::to_string(c) + ", row " + std::to_string(r) +
                                                  " is in no tileset");
        return false;
    }
    const tTiledTileset& ts = mMap.tilesets[set];
    const tTransform t = flipTransform(raw);
    // The tile's image stands on the cell's bottom edge; its centre is the registration point.
    const int x = c * mMap.tileWidth + ts.tileWidth / 2 + ts.offsetX;
    const int y = (mMap.height - 1 - r) * mMap.tileHeight + (ts.tileHeight - ts.tileHeight / 2) - ts.offsetY;
    const std::string name = picture(set, int(id));
    auto animation = ts.animations.find(int(id));
    if (animation != ts.animations.end() && !animation->second.empty()) {
        // Actors follow the layer's sprite in the file, so they are written after it.
        animated.push_back({name, set, int(id), x, y, t});
        return true;
    }
    JsonText::Object tile;
    tile.set("ElementType", 0).set("ID", mIds.billboards++).setString("URL", name);
    place(tile, t, x, y, -1);
    if (!tiles.empty())
        tiles += ", ";
    tiles += tile.text();
    return true;
}

bool MapWriter::writeActor(const tTiledLayer& layer, int depth, bool named, const tAnimatedTile& a)
{
    const tTiledTileset& ts = mMap.tilesets[a.set];
    JsonText::Object actor;
    actor.set("ElementType", 3);
    auto known = mActorOf.find(a.name);
    const bool defined = known != mActorOf.end();
    actor.set("ID", defined ? known->second : (mActorOf[a.name] = mIds.actors++));
    if (named)
        setName(actor, layer);
    place(actor, a.transform, a.x + layer.offsetX, a.y - layer.offsetY, depth);
    setLayerColor(actor, layer);
    if (!defined) {
        tAnimationPlan plan;
        plan.label = a.name;
        for (const tTiledTileset::tFrame& frame : ts.animations.at(a.id)) {
            if (frame.tile < 0 || frame.tile >= mSets[a.set].tileCount) {
                mDiag.error(ts.file, ts.line, 1, "tileset \"" + ts.name + "\": tile " + std::to_string(a.id) +
                                                     "'s animation has a frame outside the tileset");
                return false;
            }
            plan.cels.push_back({picture(a.set, frame.tile), frame.duration});
        }
        actor.set("Animation", animationArray({plan}, mIds));
    }
    append(actor.text());
    return true;
}

bool MapWriter::writeLayer(size_t l)
{
    const tTiledLayer& layer = mMap.layers[l];
    const int depth = static_cast<int>(l);
    if (layer.gids.size() != static_cast<size_t>(mMap.width) * mMap.height) {
        mDiag.error(mMap.file, layer.line, 1, "layer \"" + layer.name + "\" does not hold one tile per cell");
        return false;
    }
    if (!layer.visible) {
        mResult.notes.push_back("layer \"" + layer.name + "\" is hidden: left out");
        return true;
    }
    std::string tiles;
    std::vector<tAnimatedTile> animated;
    int tileCount = 0;
    for (int r = 0; r < mMap.height; ++r)
        for (int c = 0; c < mMap.width; ++c)
            if (layer.gids[static_cast<size_t>(r) * mMap.width + c] & TILED_GID_MASK) {
                if (!placeTile(layer, r, c, tiles, animated))
                    return false;
                ++tileCount;
            }
    if (!tiles.empty()) {
        JsonText::Object sprite;
        sprite.set("ElementType", 1).set("ID", mIds.sprites++);
        setName(sprite, layer);
        sprite.set("Position", JsonText::array(JsonText::real(layer.offsetX) + ", " + JsonText::real(-layer.offsetY) +
                                               ", " + JsonText::real(depth)));
        setLayerColor(sprite, layer);
        sprite.set("Children", JsonText::array(tiles));
        append(sprite.text());
    }
    for (const tAnimatedTile& a : animated)
        if (!writeActor(layer, depth, tiles.empty(), a))
            return false;
    mResult.notes.push_back("layer \"" + layer.name + "\": " + std::to_string(tileCount) + " tiles at depth " +
                            std::to_string(depth) +
                            (animated.empty() ? "" : ", " + std::to_string(animated.size()) + " of them animated"));
    return true;
}

bool MapWriter::writeLayers()
{
    for (size_t l = 0; l < mMap.layers.size(); ++l)
        if (!writeLayer(l))
            return false;
    mResult.kind = "scene";
    mResult.content = JsonText::pretty(JsonText::array(mElements), 120);
    return true;
}

} // namespace

bool importTiledMap(const tTiledMap& map, tImportResult& result, Diagnostics& diag)
{
    if (!mapSizeProblem(map).empty()) {
        diag.error(map.file, 1, 1, mapSizeProblem(map));
        return false;
    }
    MapWriter writer(map, result, diag);
    return writer.loadTilesets() && writer.writeLayers() && !diag.failed();
}
