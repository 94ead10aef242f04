#include "TestSupport.h"

#include "tImageInfo.h"

#include <GLES/glext.h>

#include <functional>

namespace {

const char* const kFallThrough = "Control unexpectedly reach the end of the function tImageInfo::GetBytesPerEntry";
const unsigned long kAllBits = static_cast<unsigned long>(-1);

tImageInfo info(int pal, int format, uint32_t w, uint32_t h)
{
    return tImageInfo{static_cast<tPalType>(pal), static_cast<kPixelFormat>(format), w, h};
}

TEST(TextureImageInfo, NonPowerOfTwoSideIsOnlyAWarning)
{
    DebugCapture debug;
    AssertCapture asserts;
    EXPECT_EQ(info(PAL_NONE, kPixelFormatRGB888, 100, 64).GetImageSize(), 19200u);
    EXPECT_TRUE(debug.has(3, "tImageInfo::GetImageSize - texture is 100 x 64, should be power of 2 on each side\n"));
    EXPECT_TRUE(asserts.entries().empty());
    debug.clear();
    info(PAL_NONE, kPixelFormatRGB888, 64, 64).GetImageSize();
    EXPECT_TRUE(debug.entries().empty());
}

TEST(TextureImageInfo, SubByteWidthsAssertButStillCount)
{
    struct { tImageInfo info; const char* message; unsigned long size; } cases[] = {
        {info(PAL_PALETTE1, kPixelFormatRGB565, 12, 2), "1-bit paletted image not multiple of 8 in width\n", 3},
        {info(PAL_PALETTE2, kPixelFormatRGB565, 6, 2), "2-bit paletted image not multiple of 4 in width\n", 3},
        {info(PAL_PALETTE4, kPixelFormatRGB565, 3, 2), "4-bit paletted image not even width\n", 3},
    };
    for (const auto& c : cases) {
        AssertCapture asserts;
        EXPECT_EQ(c.info.GetImageSize(), c.size) << c.message;
        EXPECT_EQ(asserts.messages(), std::vector<std::string>{c.message});
    }
}

TEST(TextureImageInfo, BadEnumerationsAssertAndGiveSentinels)
{
    struct {
        const char* what;
        std::function<unsigned long()> call;
        std::vector<std::string> messages;
        unsigned long expected;
    } cases[] = {
        {"bytes per entry", [] { return info(PAL_NONE, 9, 4, 4).GetBytesPerEntry(); },
         {"kPixelFormat incorrect type 9\n", kFallThrough}, kAllBits},
        {"palette entries", [] { return info(0, kPixelFormatRGB565, 4, 4).GetNumPaletteEntries(); },
         {"tImageInfo incorrect type 0\n", kFallThrough}, kAllBits},
        {"image size", [] { return info(7, kPixelFormatRGB565, 4, 4).GetImageSize(); },
         {"palType incorrect type 7\n", kFallThrough}, kAllBits},
        {"GL type of a paletted image", [] { return (unsigned long)info(PAL_PALETTE8, kPixelFormatRGB565, 4, 4).GetGLType(); },
         {"tImageInfo - GetGLType should only be called for non-paletted images\n",
          "tImageInfo - unknown pixel format: 2\n"}, 0x501},
        {"GL type of an unknown format", [] { return (unsigned long)info(PAL_NONE, 0, 4, 4).GetGLType(); },
         {"tImageInfo - unknown pixel format: 0\n"}, 0x501},
        {"pack into 32 bits", [] { return (unsigned long)info(PAL_NONE, kPixelFormatRGBA8888, 4, 4).PackColor16(tColor{1, 2, 3, 4}); },
         {"PackColor16 can only pack into 16-bit color format", kFallThrough}, 0},
        {"unpack from 24 bits", [] {
             tColor c = info(PAL_NONE, kPixelFormatRGB888, 4, 4).UnpackColor16(0xFFFF);
             return (unsigned long)(c.r | c.g | c.b | c.a);
         },
         {"UnpackColor16 can only unpack from 16-bit color format", kFallThrough}, 0},
    };
    for (const auto& c : cases) {
        AssertCapture asserts;
        EXPECT_EQ(c.call(), c.expected) << c.what;
        EXPECT_EQ(asserts.messages(), c.messages) << c.what;
        for (const auto& e : asserts.entries())
            EXPECT_EQ(e.file, "Zephrin2D/Src/CTexture") << c.what;
    }
}

TEST(TextureImageInfo, UnpacksSixteenBitColours)
{
    const tImageInfo rgba4 = info(PAL_NONE, kPixelFormatRGBA4444, 1, 1);
    const tImageInfo rgb565 = info(PAL_NONE, kPixelFormatRGB565, 1, 1);
    struct { tImageInfo info; unsigned short v; tColor c; } unpacks[] = {
        {rgba4, 0xFFFF, {240, 240, 240, 240}}, {rgb565, 0xFFFF, {248, 252, 248, 0}},
        {rgba4, 0x1234, {0x10, 0x20, 0x30, 0x40}}, {rgb565, 0x07E0, {0, 252, 0, 0}},
        {rgb565, 0xF800, {248, 0, 0, 0}},
    };
    for (const auto& u : unpacks)
        EXPECT_EQ(u.info.UnpackColor16(u.v), u.c) << std::hex << u.v;
}

} // namespace
