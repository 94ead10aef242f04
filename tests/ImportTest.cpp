#include "TestSupport.h"

#include "Importer.h"
#include "TiledMap.h"

#include "CActor2D.h"
#include "CDrawManager.h"
#include "CSceneLoaderJson.h"
#include "CTextureSheet.h"

#include <boost/make_shared.hpp>
#include <algorithm>
#include <memory>

namespace {

const tColor WHITE{255, 255, 255, 255};
const tColor YELLOW{255, 255, 0, 255};
const tColor DARK{0, 0, 0, 255};

/// Imports a file of tests/data/import, or a file written in the scratch
/// directory, into that directory and loads its sheet.
class ImportTest : public GLTest
{
protected:
    std::string import(const std::string& input, const std::string& name)
    {
        tImportOptions options;
        options.input = input[0] == '/' ? input : testDataPath("import/" + input);
        options.outDir = scratchDir("import");
        options.name = name;
        Diagnostics diag;
        std::vector<std::string> report;
        EXPECT_EQ(runImport(options, diag, report), 0) << (diag.lines().empty() ? "" : diag.lines()[0]);
        sheet.reset(new CTextureSheet(options.outDir + "/" + name + "-sheet.json"));
        return options.outDir + "/" + name + ".json";
    }
    /// Imports the map NAME.tmx, written from tmx when given, and adds its elements to the draw manager.
    void show(const std::string& name, const std::string& tmx = "")
    {
        std::string input = name + ".tmx";
        if (!tmx.empty())
            writeFile(input = scratchDir("import") + "/" + input, tmx);
        const std::string scene = import(input, name);
        loader.setTextureSheet(sheet.get());
        for (const auto& e : loader.parseJsonFile(scene.c_str()))
            CDrawManager::Instance()->add(e);
    }
    std::unique_ptr<CTextureSheet> sheet;
    CSceneLoaderJson loader;
};

TEST_F(ImportTest, MapDrawsItsTilesLayerByLayer)
{
    show("map");
    ASSERT_EQ(loader.getActors().size(), 1u);
    CActor2D* water = static_cast<CActor2D*>(loader.getActors()[0].get());
    EXPECT_TRUE(loader.find("ground") && loader.find("top") && !loader.find("nothing")) << "layers by name";

    GLRecorder::resetCounters();
    frame();
    EXPECT_EQ(GLRecorder::counters().drawCalls, 2u) << "two layers on one page";
    // Cells are 8 pixels; the map's top row is at the top. Tiles carry a white
    // and a dark pixel at their top-left and a transparent one at their bottom-right.
    const struct { int x, y; tColor colour; const char* what; } pixels[] = {
        {4, 20, RED, "ground, top row"},           {28, 12, GREEN, "ground, right"},
        {4, 4, BLUE, "ground, bottom row"},        {28, 4, GREEN, "rotated tile over the ground"},
        {0, 23, WHITE, "upright marker"},          {1, 23, DARK, "upright marker"},
        {15, 23, WHITE, "mirrored marker"},        {14, 23, DARK, "mirrored marker"},
        {8, 16, RED, "ground through the flipped tile's hole"},
        {24, 0, WHITE, "diagonal and vertical flip"}, {24, 1, DARK, "diagonal and vertical flip"},
        {20, 12, YELLOW, "animated tile, first frame"}, {40, 30, BLACK, "outside the map"},
    };
    for (const auto& p : pixels)
        EXPECT_EQ(pixel(p.x, p.y), p.colour) << p.what << " at " << p.x << ", " << p.y;
    const struct { int dt; tColor colour; } steps[] = {{99, YELLOW}, {1, BLUE}, {199, BLUE}, {1, YELLOW}};
    for (const auto& s : steps) {
        water->update(s.dt);
        frame();
        EXPECT_EQ(pixel(20, 12), s.colour) << "after " << s.dt << " ms more";
    }
}

TEST_F(ImportTest, AsepriteTagsPlayInTheirDirection)
{
    const std::string actorFile = import("hero-hash.json", "hero");
    boost::shared_ptr<CActor2D> actor = boost::make_shared<CActor2D>(actorFile, nullptr, sheet.get());
    actor->moveTo(tVect2{tFixed(20), tFixed(20)});
    CDrawManager::Instance()->add(actor);
    const tColor frames[4] = {RED, GREEN, BLUE, YELLOW};
    const int durations[4] = {10, 20, 30, 40};
    const struct { const char* tag; std::vector<int> order; } tags[] = {
        {"walk", {0, 1, 2, 0}},
        {"back", {3, 2, 1, 3}},
        {"bounce", {0, 1, 2, 3, 2, 1, 0}},
        {"twice", {3, 2, 3, 2, 2}},  // three passes, then it holds
    };
    for (const auto& t : tags) {
        SCOPED_TRACE(t.tag);
        actor->gotoAndPlay(t.tag);
        for (size_t i = 0; i < t.order.size(); ++i) {
            const int f = t.order[i];
            frame();
            // The slice's pivot, pixel (2, 5) of every frame, is white at the actor's position.
            EXPECT_EQ(pixel(20, 19), WHITE) << "cel " << i;
            EXPECT_EQ(pixel(23, 21), frames[f]) << "cel " << i;
            actor->update(durations[f] - 1);
            frame();
            EXPECT_EQ(pixel(23, 21), frames[f]) << "cel " << i << " one millisecond early";
            actor->update(1);
        }
    }
    EXPECT_FALSE(actor->isPlaying());
}

TEST_F(ImportTest, EveryFlipOfATileDrawsAsTiledShowsIt)
{
    // Eight cells in a row: the green tile under each combination of the horizontal,
    // vertical and diagonal bits.
    std::string gids;
    for (uint32_t i = 0; i < 8; ++i)
        gids += (i ? "," : "") + std::to_string(2u | (i & 4 ? TILED_FLIP_H : 0) | (i & 2 ? TILED_FLIP_V : 0) |
                                                 (i & 1 ? TILED_FLIP_D : 0));
    show("flips", "<map orientation=\"orthogonal\" width=\"8\" height=\"1\" tilewidth=\"8\" tileheight=\"8\">"
                  "<tileset firstgid=\"1\" source=\"" + testDataPath("import/tiles.tsx") + "\"/>"
                  "<layer name=\"l\" width=\"8\" height=\"1\"><data encoding=\"csv\">" + gids + "</data></layer></map>");
    frame();
    for (int i = 0; i < 8; ++i) {
        // Tiled's order: the diagonal flip (a transpose) first, then the mirrors, in image pixels.
        const struct { int x, y; tColor colour; } markers[] = {{0, 0, WHITE}, {1, 0, DARK}};
        for (const auto& m : markers) {
            int x = m.x, y = m.y;
            if (i & 1)
                std::swap(x, y);
            if (i & 4)
                x = 7 - x;
            if (i & 2)
                y = 7 - y;
            EXPECT_EQ(pixel(i * 8 + x, 7 - y), m.colour) << "flips " << i << ", marker at " << x << ", " << y;
        }
    }
}

TEST_F(ImportTest, LayerOpacityAndTintDrawAsTiledShowsThem)
{
    // Red ground; green over it at opacity 0.5 in the first cell; yellow tinted orange in the second.
    const std::string tiles = testDataPath("import/tiles.png");
    show("look", "<map orientation=\"orthogonal\" width=\"2\" height=\"1\" tilewidth=\"8\" tileheight=\"8\">"
              "<tileset firstgid=\"1\" name=\"t\" tilewidth=\"8\" tileheight=\"8\"><image source=\"" + tiles + "\"/></tileset>"
              "<layer name=\"ground\" width=\"2\" height=\"1\"><data encoding=\"csv\">1,1</data></layer>"
              "<layer name=\"half\" opacity=\"0.5\" width=\"2\" height=\"1\"><data encoding=\"csv\">2,0</data></layer>"
              "<layer name=\"tinted\" tintcolor=\"#ff8000\" width=\"2\" height=\"1\"><data encoding=\"csv\">0,4</data></layer></map>");
    CDrawManager::Instance()->setColorsEnabled(true);
    frame();
    CDrawManager::Instance()->setColorsEnabled(false);
    // The expectation from the source picture: tile n's pixel (4, 4), blended and modulated as Tiled does.
    ImageIO::tImage source;
    ASSERT_TRUE(ImageIO::readPNG(tiles, source));
    auto texel = [&source](int tile, int c) { return int(source.at(tile % 2 * 8 + 4, tile / 2 * 8 + 4)[c]); };
    const int alpha = 128, tint[3] = {255, 128, 0};
    const tColor faded = pixel(4, 3), tinted = pixel(12, 3);
    const uint8_t fadedChannels[3] = {faded.r, faded.g, faded.b}, tintedChannels[3] = {tinted.r, tinted.g, tinted.b};
    for (int c = 0; c < 3; ++c) {
        EXPECT_NEAR(fadedChannels[c], (texel(0, c) * (255 - alpha) + texel(1, c) * alpha) / 255, 3) << "channel " << c;
        EXPECT_NEAR(tintedChannels[c], texel(3, c) * tint[c] / 255, 3) << "channel " << c;
    }
}

TEST(TileData, EncodingsGiveTheSameTiles)
{
    const std::vector<uint32_t> tiles = {1, 2, 0x80000003u};
    const struct { const char* encoding; const char* compression; const char* text; const char* error; } cases[] = {
        {"csv", "", "1,2,\n2147483651\n", ""},
        {"base64", "", " AQAAAAIAAAADAACA\n", ""},
        {"base64", "zlib", "eJxjZGBgYAJiZgaGBgAAtACH", ""},
        {"base64", "gzip", "H4sIAAAAAAACA2NkYGBgAmJmBoYGALOhWF0MAAAA", ""},
        {"csv", "", "1,2", "holds 2 tiles where its size asks for 3"},
        {"base64", "zlib", "AQAAAAIAAAADAACA", "cannot be uncompressed"},
        {"base64", "zstd", "AQAAAAIAAAADAACA", "zstd-compressed tile data is not supported"},
        {"base64", "", "AQ*A", "not base64"},
    };
    for (const auto& c : cases) {
        std::vector<uint32_t> out;
        std::string error;
        const bool ok = decodeTileData(c.encoding, c.compression, c.text, 3, out, error);
        EXPECT_EQ(ok, !*c.error) << c.encoding << " " << c.compression;
        if (ok)
            EXPECT_EQ(out, tiles) << c.encoding << " " << c.compression;
        else
            EXPECT_NE(error.find(c.error), std::string::npos) << error;
    }
}

// What the importer keeps of a map or sheet, what it warns about, and where
// it finds a sheet image that was exported elsewhere.
TEST(ImportMapping, LayerLookWarningsAndImageFallback)
{
    const std::string dir = scratchDir("import-mapping");
    for (const char* png : {"hero.png", "tiles.png"})
        writeFile(dir + "/" + png, readFile(testDataPath(std::string("import/") + png)));
    const std::string tmx = "<map orientation=\"orthogonal\" width=\"1\" height=\"1\" tilewidth=\"8\" tileheight=\"8\"";
    const std::string tsx = "<tileset firstgid=\"1\" name=\"t\" tilewidth=\"8\" tileheight=\"8\"><image source=\"tiles.png\"/></tileset>";
    const std::string cell = " width=\"1\" height=\"1\"><data encoding=\"csv\">1</data></layer>";
    const std::string jsonSet = "\"tilesets\": [{\"firstgid\": 1, \"name\": \"t\", \"tilewidth\": 8, \"tileheight\": 8, "
                                "\"image\": \"tiles.png\", \"columns\": 2, \"tilecount\": 4}]";
    const std::string frame = "{\"frames\": [{\"frame\": {\"x\": 0, \"y\": 0, \"w\": 8, \"h\": 8}}], \"meta\": {\"image\": ";
    const struct { const char* name; std::string text; std::vector<const char*> content, warnings; } cases[] = {
        {"half.tmx", tmx + ">" + tsx + "<layer name=\"l\" opacity=\"0.5\"" + cell + "</map>", {"\"Name\": \"l\"", "\"Color\": [255, 255, 255, 128]"}, {}},
        {"tinted.tmx", tmx + ">" + tsx + "<group tintcolor=\"#808080\" offsetx=\"2\"><layer name=\"l\" tintcolor=\"#80ff0000\" "
                       "opacity=\"0.5\" offsety=\"-3\"" + cell + "</group></map>", {"\"Position\": [2.0, 3.0, 0.0]", "\"Color\": [128, 0, 0, 64]"}, {}},
        {"dropped.tmx", tmx + " backgroundcolor=\"#000\"><properties/>" + tsx + "<layer name=\"l\" parallaxx=\"0.5\" parallaxy=\"1\"" + cell +
                        "<objectgroup name=\"o\"/><imagelayer name=\"i\"/></map>", {"\"URL\": \"t/0\""},
         {"not imported: the background colour of the map", "not imported: custom properties of the map",
          "not imported: the parallax factor of layer \"l\"", "object layer \"o\" is left out", "image layer \"i\" is left out"}},
        {"nospacing.json", "{\"type\": \"map\", \"orientation\": \"orthogonal\", \"width\": 1, \"height\": 1, \"tilewidth\": 8, "
                           "\"tileheight\": 8, " + jsonSet + ", \"layers\": [{\"type\": \"tilelayer\", \"name\": \"l\", \"width\": 1, "
                           "\"height\": 1, \"data\": [1], \"tintcolor\": \"#00ff00\", \"properties\": []}]}",
         {"\"Color\": [0, 255, 0, 255]"}, {"not imported: custom properties of layer \"l\""}},
        {"windows.json", frame + "\"G:\\\\art\\\\hero.png\"}}", {"\"URL\": \"windows/0\""}, {}},
        {"relative.json", frame + "\"examples/hero.png\"}}", {"\"URL\": \"relative/0\""}, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        tImportOptions options;
        options.input = dir + "/" + c.name;
        options.outDir = dir + "/out";
        writeFile(options.input, c.text);
        Diagnostics diag;
        std::vector<std::string> report;
        ASSERT_EQ(runImport(options, diag, report), 0) << (diag.lines().empty() ? "" : diag.lines()[0]);
        const std::string name = c.name;
        const std::string content = readFile(options.outDir + "/" + name.substr(0, name.find('.')) + ".json");
        for (const char* part : c.content)
            EXPECT_NE(content.find(part), std::string::npos) << part << " in\n" << content;
        EXPECT_EQ(diag.lines().size(), c.warnings.size());
        for (const char* w : c.warnings)
            EXPECT_TRUE(std::any_of(diag.lines().begin(), diag.lines().end(), [w](const std::string& line) {
                return line.find(": warning: ") != std::string::npos && line.find(w) != std::string::npos;
            })) << w;
    }
}

} // namespace
