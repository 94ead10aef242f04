#include "TestSupport.h"

#include "CTexturePNG.h"

#include <algorithm>
#include <cstring>
#include <tuple>

// The files come from tests/data/png/make_corpus.py; the patterns below are its own.
namespace {

std::string png(const std::string& name) { return testDataPath("png/" + name); }

tColor paletteEntry(int i) { return tColor{uint8_t(i * 37 + 11), uint8_t(i * 91 + 47), uint8_t(i * 53 + 101), 255}; }
int patternIndex(int x, int y, int n) { return (x * 3 + y * 5) % n; }
tColor rgbAt(int x, int y) { return tColor{uint8_t(x * 16 + 3), uint8_t(y * 16 + 5), uint8_t((x + y) * 8 + 7), 255}; }
uint8_t alphaAt(int x, int y) { return uint8_t(x * y * 4 + 9); }

int indexAt(const CTexture& t, int x, int y)
{
    const int bits = t.imageInfo.palType == PAL_PALETTE1 ? 1
                     : t.imageInfo.palType == PAL_PALETTE2 ? 2
                     : t.imageInfo.palType == PAL_PALETTE4 ? 4 : 8;
    const size_t bit = (static_cast<size_t>(y) * t.imageInfo.width + x) * bits;
    return (t.pixels[bit / 8] >> (8 - bits - bit % 8)) & ((1 << bits) - 1);
}

struct tGood
{
    const char* file;
    bool expand;
    tPalType pal;
    kPixelFormat format;
    uint32_t w, h;
    int entries;                // palette entries in the file (0: direct colour)
    std::vector<uint8_t> trns;  // alphas of the first entries
};

void expectImage(const CTexture& t, const tGood& c)
{
    ASSERT_TRUE(t.inRAM);
    EXPECT_EQ(std::make_tuple(t.imageInfo.palType, t.imageInfo.pixelFormat, t.imageInfo.width, t.imageInfo.height),
              std::make_tuple(c.pal, c.format, c.w, c.h));
    if (c.entries) {
        for (unsigned long i = 0; i < t.imageInfo.GetNumPaletteEntries(); ++i) {
            tColor e = tColor{0, 0, 0, 0};
            if (static_cast<int>(i) < c.entries) {
                e = paletteEntry(i);
                if (i < c.trns.size())
                    e.a = c.trns[i];
            }
            unsigned short entry;
            std::memcpy(&entry, t.palette + 2 * i, 2);
            ASSERT_EQ(entry, t.imageInfo.PackColor16(e)) << "entry " << i;
        }
        for (uint32_t y = 0; y < c.h; ++y)
            for (uint32_t x = 0; x < c.w; ++x)
                ASSERT_EQ(indexAt(t, x, y), patternIndex(x, y, c.entries)) << x << "," << y;
    } else {
        const int bpp = c.format == kPixelFormatRGBA8888 ? 4 : 3;
        for (uint32_t y = 0; y < c.h; ++y)
            for (uint32_t x = 0; x < c.w; ++x) {
                const uint8_t* p = t.pixels + (y * c.w + x) * bpp;
                const tColor want = rgbAt(x, y);
                const tColor got = tColor{p[0], p[1], p[2], bpp == 4 ? p[3] : uint8_t(255)};
                ASSERT_EQ(got, (tColor{want.r, want.g, want.b, bpp == 4 ? alphaAt(x, y) : uint8_t(255)}))
                    << x << "," << y;
            }
    }
}

TEST(TexturePNG, LoadsEachSupportedKind)
{
    const std::vector<uint8_t> trns3 = {0, 128, 200};
    std::vector<uint8_t> trns10;
    for (int i = 0; i < 10; ++i)
        trns10.push_back(uint8_t(i * 25));
    const tGood cases[] = {
        {"pal1.png", false, PAL_PALETTE1, kPixelFormatRGB565, 16, 4, 2, {}},
        {"pal2.png", false, PAL_PALETTE2, kPixelFormatRGB565, 8, 4, 4, {}},
        {"pal2_trns.png", false, PAL_PALETTE2, kPixelFormatRGBA4444, 8, 4, 3, {64}},
        {"pal4.png", false, PAL_PALETTE4, kPixelFormatRGB565, 16, 16, 16, {}},
        {"pal4_trns3.png", false, PAL_PALETTE4, kPixelFormatRGBA4444, 16, 16, 16, trns3},
        {"pal8.png", false, PAL_PALETTE8, kPixelFormatRGB565, 16, 8, 200, {}},
        {"pal8_trns.png", false, PAL_PALETTE8, kPixelFormatRGBA4444, 16, 8, 200, trns10},
        {"pal1.png", true, PAL_PALETTE8, kPixelFormatRGB565, 16, 4, 2, {}},
        {"pal2_trns.png", true, PAL_PALETTE8, kPixelFormatRGBA4444, 8, 4, 3, {64}},
        {"pal4_trns3.png", true, PAL_PALETTE8, kPixelFormatRGBA4444, 16, 16, 16, trns3},
        {"pal4_odd_width.png", true, PAL_PALETTE8, kPixelFormatRGB565, 3, 2, 16, {}},
        {"pal8.png", true, PAL_PALETTE8, kPixelFormatRGB565, 16, 8, 200, {}},
        {"rgb.png", false, PAL_NONE, kPixelFormatRGB888, 8, 8, 0, {}},
        {"rgb_interlaced.png", false, PAL_NONE, kPixelFormatRGB888, 8, 8, 0, {}},
        {"rgb_12x5.png", false, PAL_NONE, kPixelFormatRGB888, 12, 5, 0, {}},
        {"rgb_2048x1.png", false, PAL_NONE, kPixelFormatRGB888, 2048, 1, 0, {}},
        {"rgba.png", true, PAL_NONE, kPixelFormatRGBA8888, 8, 4, 0, {}},
    };
    for (const tGood& c : cases) {
        SCOPED_TRACE(testing::Message() << c.file << (c.expand ? " expanded" : ""));
        AssertCapture asserts;
        CTexturePNG t(png(c.file), false, true, c.expand);
        expectImage(t, c);
        EXPECT_TRUE(asserts.entries().empty()) << asserts.messages()[0];
    }
}

// Refused and broken files leave no image; a broken one ends in the reading
// assertion, with libpng's own message on the debug service.
TEST(TexturePNG, RefusedFilesLeaveNoImage)
{
    const std::vector<std::string> reading = {"CTexturePNG::LoadPNG() unexpected problem reading: %s\n"};
    struct { const char* file; std::vector<std::string> messages; } cases[] = {
        {"grey.png", {"CTexturePNG: Unsupported PNG type 0",
                      "CTexturePNG::LoadPNG() cannot load %s: PNG colour type 0, bit depth 8 is not supported\n"}},
        {"grey_alpha.png", {"CTexturePNG: Unsupported PNG type 4",
                            "CTexturePNG::LoadPNG() cannot load %s: PNG colour type 4, bit depth 8 is not supported\n"}},
        {"rgb16.png", {"CTexturePNG: Unsupported 16-bit depth for PNG type 2\n",
                       "CTexturePNG::LoadPNG() cannot load %s: PNG colour type 2, bit depth 16 is not supported\n"}},
        {"rgba16.png", {"CTexturePNG: Unsupported 16-bit depth for PNG type 6\n",
                        "CTexturePNG::LoadPNG() cannot load %s: PNG colour type 6, bit depth 16 is not supported\n"}},
        {"rgb_4096x1.png", {"CTexturePNG::LoadPNG() %s is 4096 x 1, more than 2048 on a side\n"}},
        {"rgb_1x4096.png", {"CTexturePNG::LoadPNG() %s is 1 x 4096, more than 2048 on a side\n"}},
        {"huge_100000.png", {"CTexturePNG::LoadPNG() %s is 100000 x 100000, more than 2048 on a side\n"}},
        {"pal4_odd_width.png", {"CTexturePNG::LoadPNG() %s: rows of 3 pixels do not end on a byte boundary\n"}},
        {"truncated.png", reading}, {"truncated_header.png", reading}, {"empty.png", reading},
        {"not_a_png.png", reading}, {"bad_crc_ihdr.png", reading}, {"bad_crc_idat.png", reading},
        {"bad_zlib.png", reading}, {"short_data.png", reading}, {"plte_after_idat.png", reading},
        {"idat_before_ihdr.png", reading}, {"pal8_257_entries.png", reading},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file);
        AssertCapture asserts;
        DebugCapture debug;
        CTexturePNG t(png(c.file), true, true, false);
        EXPECT_FALSE(t.inRAM);
        EXPECT_EQ(t.buffer, nullptr);
        EXPECT_EQ(t.glTextureId, 0u) << "no upload without an image";
        std::vector<std::string> expected;
        for (const std::string& m : c.messages) {
            char text[512];
            snprintf(text, sizeof text, m.c_str(), png(c.file).c_str());
            expected.push_back(text);
        }
        EXPECT_EQ(asserts.messages(), expected);
        for (const auto& e : asserts.entries())
            EXPECT_EQ(e.file, "Zephrin2D/Src/CTexturePNG");
        const bool logged = std::any_of(debug.entries().begin(), debug.entries().end(), [](const DebugCapture::tEntry& e) {
            return e.level == 3 && e.text.find("CTexturePNG: libpng error: ") == 0;
        });
        EXPECT_TRUE(logged || c.messages != reading) << "libpng's own message goes to the debug service";
    }
}

using TexturePNGGLTest = GLTest;

TEST_F(TexturePNGGLTest, TransparentEntriesAreNotDrawn)
{
    CTexturePNG t(png("pal4_trns3.png"), true, false, false);
    drawTexturedQuad(t.glTextureId, 16, 16);
    // Pixel (0, 0) has index 0 (alpha 0); pixel (1, 0) index 3 (opaque).
    EXPECT_EQ(pixel(0, 0), pixel(40, 40)) << "the background shows through";
    const tColor e = paletteEntry(3);
    EXPECT_EQ(pixel(1, 0), (tColor{uint8_t((e.r & 0xF0) | e.r >> 4), uint8_t((e.g & 0xF0) | e.g >> 4),
                                   uint8_t((e.b & 0xF0) | e.b >> 4), 255}));
}

} // namespace
