#include "TestSupport.h"

#include "SheetPacker.h"

#include "CBillboard.h"
#include "CDrawManager.h"
#include "CTextureManager.h"
#include "CTextureSheet.h"

#include <GLES/glext.h>
#include <boost/make_shared.hpp>
#include <cstring>
#include <unistd.h>

namespace {

using SheetPacker::ePalette;

/// A w x h picture: a border of `margin` transparent pixels around blocks of
/// colours from `palette`, with a marked top-left pixel.
SheetPacker::tPicture picture(const std::string& name, int w, int h, int margin, int regX, int regY,
                              const std::vector<tColor>& palette, int seed)
{
    SheetPacker::tPicture p;
    p.name = name;
    p.source = name + ".png";
    p.regX = regX;
    p.regY = regY;
    p.image.width = w;
    p.image.height = h;
    p.image.rgba.assign(static_cast<size_t>(w) * h * 4, 0);
    for (int y = margin; y < h - margin; ++y)
        for (int x = margin; x < w - margin; ++x) {
            const tColor c = palette[(x / 3 + y / 2 * 5 + seed + (x == margin && y == margin ? 7 : 0)) % palette.size()];
            uint8_t* px = p.image.at(x, y);
            px[0] = c.r, px[1] = c.g, px[2] = c.b, px[3] = c.a;
        }
    return p;
}

/// Distinct colours that 16-bit palette entries hold exactly: RGBA4444 ones
/// (some translucent when asked), or opaque RGB565 ones.
std::vector<tColor> exactColours(int count, bool rgb565, bool translucent = false)
{
    const uint8_t five[] = {0, 8, 16, 33, 41, 49, 66, 74, 82, 90, 99, 107, 115, 123, 132, 140, 148, 156, 165, 173};
    const uint8_t six[] = {0, 4, 8, 12, 16, 20, 24, 28, 32, 36, 40, 65, 69, 73, 77, 81, 85, 89, 93, 97, 101, 105};
    std::vector<tColor> colours;
    for (int i = 0; i < count; ++i)
        colours.push_back(rgb565 ? tColor{five[i % 20], six[i / 20 % 22], 255, 255}
                                 : tColor{uint8_t(17 * (i % 16)), uint8_t(255 - 17 * (i / 16 % 16)),
                                          uint8_t(17 * (i * 7 % 16)), uint8_t(translucent && i % 3 == 0 ? 0x88 : 255)});
    return colours;
}

class SheetPackerTest : public GLTest
{
protected:
    ImageIO::tImage draw(boost::shared_ptr<CBillboard> b, int x, int y)
    {
        b->moveTo(tVect2{tFixed(x), tFixed(y)});
        CDrawManager::Instance()->add(b);
        frame();
        CDrawManager::Instance()->remove(b);
        return readFrame();
    }
};

TEST_F(SheetPackerTest, EveryPictureLandsWhereItsLoosePictureWould)
{
    struct
    {
        const char* label;
        SheetPacker::tOptions options;  // maxSize, padding, extrude, trim, palette
        bool severalPages;
    } cases[] = {
        {"trimmed, padded, paletted", {64, 2, 0, true, ePalette::Auto}, false},
        {"untrimmed, several pages", {32, 0, 0, false, ePalette::Off}, true},
        {"trimmed, extruded, several 8-bit pages", {32, 3, 1, true, ePalette::Bits8}, true},
    };
    frame();
    const ImageIO::tImage blank = readFrame();
    const std::vector<tColor> colours = exactColours(12, false);
    const std::vector<SheetPacker::tPicture> pictures = {
        picture("hero", 16, 16, 3, 8, 16, colours, 0),   picture("tall/one", 8, 16, 0, 0, 16, colours, 1),
        picture("wide", 32, 8, 2, 16, 4, colours, 2),     picture("dot", 4, 4, 1, 2, 2, colours, 3),
        picture("corner", 16, 8, 0, 0, 0, colours, 4),    picture("ghost", 8, 8, 4, 4, 4, colours, 5),
        picture("full", 16, 16, 0, 5, 11, colours, 6),
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        const std::string dir = scratchDir(std::string("sheet-packer-") + std::to_string(c.options.maxSize) + c.label[0]);
        SheetPacker::tSheet sheet;
        std::vector<std::string> errors;
        ASSERT_TRUE(SheetPacker::pack(pictures, c.options, sheet, errors) && SheetPacker::write(sheet, dir + "/s", errors))
            << testing::PrintToString(errors);
        EXPECT_EQ(sheet.pages.size() > 1, c.severalPages) << sheet.pages.size();
        for (const SheetPacker::tPage& page : sheet.pages)
            EXPECT_EQ(page.paletteBits != 0, c.options.palette != ePalette::Off);

        CTextureSheet textureSheet(dir + "/s.json");
        for (const SheetPacker::tPicture& p : pictures) {
            SCOPED_TRACE(p.name);
            const std::string loose = dir + "/" + std::to_string(&p - pictures.data()) + ".png";
            ASSERT_TRUE(ImageIO::writePNG(loose, p.image));
            const ImageIO::tImage expected =
                draw(boost::make_shared<CBillboard>(loose, true), 30 - p.regX, 30 - (p.image.height - p.regY));
            const ImageIO::tImage packed = draw(boost::make_shared<CBillboard>(p.name, &textureSheet, true), 30, 30);
            EXPECT_EQ(ImageIO::compare(expected, blank, 0).pixelsOver > 0, p.name != "ghost") << "only the invisible picture draws nothing";
            EXPECT_EQ(ImageIO::compare(expected, packed, 0).pixelsOver, 0);
        }
        CTextureManager::Instance()->deleteAll();
    }
}

TEST_F(SheetPackerTest, PalettesNeverChangeAPixel)
{
    struct
    {
        int colours;
        bool translucent;
        ePalette palette;
        int bits;          // -1: refused
        GLenum format;     // of the upload
    } cases[] = {
        {12, true, ePalette::Auto, 4, GL_PALETTE4_RGBA4_OES},
        {200, false, ePalette::Auto, 8, GL_PALETTE8_R5_G6_B5_OES},
        {300, false, ePalette::Auto, 0, GL_RGBA},
        {300, false, ePalette::Bits8, -1, 0},
        {12, true, ePalette::Off, 0, GL_RGBA},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.colours << " colours, palette " << int(c.palette));
        std::vector<tColor> colours = exactColours(std::min(c.colours, 256), !c.translucent, c.translucent);
        for (int i = 256; i < c.colours; ++i)
            colours.push_back(tColor{uint8_t(i), 1, 2, 255});
        SheetPacker::tPicture p = picture("p", 32, 32, 0, 0, 0, colours, 0);
        for (int i = 0; i < c.colours; ++i)  // every colour at least once
            memcpy(p.image.at(i % 32, i / 32), &colours[i], 4);
        SheetPacker::tOptions options;
        options.palette = c.palette;
        SheetPacker::tSheet sheet;
        std::vector<std::string> errors;
        const std::string dir = scratchDir("sheet-palette-" + std::to_string(&c - cases));
        const bool packed = SheetPacker::pack({p}, options, sheet, errors) && SheetPacker::write(sheet, dir + "/s", errors);
        if (c.bits < 0) {
            EXPECT_FALSE(packed);
            EXPECT_EQ(errors, std::vector<std::string>{
                "sheet-0.png:1:1: error: the page uses more than 256 colours; an 8-bit palette cannot hold it"});
            EXPECT_NE(access((dir + "/s.json").c_str(), F_OK), 0) << "nothing written";
            continue;
        }
        ASSERT_TRUE(packed) << testing::PrintToString(errors);
        ASSERT_EQ(sheet.pages.size(), 1u);
        EXPECT_EQ(sheet.pages[0].paletteBits, c.bits);
        const std::string page = dir + "/" + SheetPacker::pageName(sheet, 0, "s");
        const std::string png = readFile(page);
        EXPECT_EQ(png[24], c.bits ? c.bits : 8) << "bit depth";
        EXPECT_EQ(png[25], c.bits ? 3 : 6) << "colour type";
        EXPECT_EQ(png.find("tRNS") != std::string::npos, c.bits && c.translucent);
        ImageIO::tImage back;
        ASSERT_TRUE(ImageIO::readPNG(page, back));
        EXPECT_EQ(back.rgba, p.image.rgba);

        recordGL([&] { CTextureSheet textureSheet(dir + "/s.json"); });
        const auto uploads = GLRecorder::callsNamed(c.bits ? "glCompressedTexImage2D" : "glTexImage2D");
        ASSERT_EQ(uploads.size(), 1u);
        EXPECT_EQ(uploads[0].args[2], static_cast<long>(c.format));
        CTextureManager::Instance()->deleteAll();
    }
}

// What the tools read from PNG files: 8-bit samples as stored, 16-bit ones
// without gamma, and no memory for a size past the limits; frames saved opaque.
TEST(ToolPNG, ReadsAsStoredAndRefusesSizesPastTheLimits)
{
    const struct
    {
        const char* file;
        const char* error;  // empty: read, first pixel below
        uint8_t first[4];
    } cases[] = {
        {"rgb16_gamma.png", "", {70, 160, 70, 255}},
        {"rgb.png", "", {3, 5, 7, 255}},
        {"huge_30000.png", "is 30000x30000 pixels; the limit is 8192 pixels a side", {}},
        {"huge_16000.png", "is 16000x16000 pixels; the limit is 8192 pixels a side", {}},
        {"not_a_png.png", "not a PNG file", {}},
        {"truncated.png", "the PNG file is damaged", {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file);
        ImageIO::tImage image;
        std::string error;
        const bool read = ImageIO::readPNG(std::string(Z2D_TEST_DATA_DIR) + "/png/" + c.file, image, error);
        EXPECT_EQ(read, !*c.error) << error;
        EXPECT_NE(error.find(c.error), std::string::npos) << error;
        if (read)
            EXPECT_EQ(std::vector<uint8_t>(image.rgba.begin(), image.rgba.begin() + 4),
                      std::vector<uint8_t>(c.first, c.first + 4));
        else
            EXPECT_TRUE(image.rgba.empty());
    }
    ImageIO::tImage frame;
    frame.width = frame.height = 1;
    frame.rgba = {10, 20, 30, 40};
    const std::string path = scratchDir("tool-png") + "/frame.png";
    ImageIO::tImage back;
    ASSERT_TRUE(ImageIO::writePNG(path, frame, true) && ImageIO::readPNG(path, back));
    EXPECT_EQ(back.rgba, (std::vector<uint8_t>{10, 20, 30, 255}));
}

} // namespace
