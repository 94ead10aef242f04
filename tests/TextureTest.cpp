#include "TestSupport.h"

#include "CTexture.h"

#include <GLES/gl.h>
#include <GLES/glext.h>

#include <cstring>
#include <memory>
#include <tuple>

namespace {

int bitsOf(tPalType pal)
{
    switch (pal) {
    case PAL_PALETTE1: return 1;
    case PAL_PALETTE2: return 2;
    case PAL_PALETTE4: return 4;
    default: return 8;
    }
}

/// Packs indices most significant bits first, as the RAM image stores them.
std::vector<uint8_t> packIndices(const std::vector<int>& indices, int bits)
{
    std::vector<uint8_t> out((indices.size() * bits + 7) / 8, 0);
    for (size_t i = 0; i < indices.size(); ++i)
        out[i * bits / 8] |= indices[i] << (8 - bits - (i * bits) % 8);
    return out;
}

/// A paletted RAM texture with entry i's byte b = f(i, b) and pixel (x, y)
/// holding index (3x + 5y) mod the entry count; indices gets the pixels' indices.
std::unique_ptr<CTexture> paletted(tPalType pal, kPixelFormat format, uint32_t w, uint32_t h, std::vector<int>& indices)
{
    tImageInfo info{pal, format, w, h};
    std::unique_ptr<CTexture> t(new CTexture(info, true));
    const unsigned long bpe = info.GetBytesPerEntry();
    for (unsigned long i = 0; i < info.GetNumPaletteEntries(); ++i)
        for (unsigned long b = 0; b < bpe; ++b)
            t->palette[i * bpe + b] = static_cast<uint8_t>(i * 29 + b * 7 + 1);
    for (uint32_t y = 0; y < h; ++y)
        for (uint32_t x = 0; x < w; ++x)
            indices.push_back((x * 3 + y * 5) % info.GetNumPaletteEntries());
    std::vector<uint8_t> packed = packIndices(indices, bitsOf(pal));
    std::memcpy(t->pixels, packed.data(), std::min<size_t>(packed.size(), info.GetImageSize()));
    return t;
}

TEST(Texture, RefusesDescriptionsItCannotHold)
{
    struct { tImageInfo info; const char* message; } cases[] = {
        {{PAL_NONE, kPixelFormatRGBA8888, 4096, 16},
         "CTexture::InitRAMTexture - cannot hold a 4096 x 16 image of palType 5, pixelFormat 3\n"},
        {{PAL_PALETTE8, kPixelFormatRGB565, 16, 100000},
         "CTexture::InitRAMTexture - cannot hold a 16 x 100000 image of palType 4, pixelFormat 2\n"},
        {{static_cast<tPalType>(0), kPixelFormatRGB565, 16, 16},
         "CTexture::InitRAMTexture - cannot hold a 16 x 16 image of palType 0, pixelFormat 2\n"},
        {{PAL_NONE, static_cast<kPixelFormat>(7), 16, 16},
         "CTexture::InitRAMTexture - cannot hold a 16 x 16 image of palType 5, pixelFormat 7\n"},
    };
    for (auto& c : cases) {
        AssertCapture asserts;
        tImageInfo small{PAL_NONE, kPixelFormatRGB888, 4, 4};
        CTexture t(small, true);
        t.InitRAMTexture(c.info, true);
        EXPECT_FALSE(t.inRAM);
        EXPECT_EQ(t.buffer, nullptr);
        EXPECT_EQ(asserts.messages(), std::vector<std::string>{c.message});
    }
}

TEST(Texture, DepalettizesEachIndexWidth)
{
    struct { tPalType pal; kPixelFormat format; uint32_t w, h; const char* log; } cases[] = {
        {PAL_PALETTE1, kPixelFormatRGB565, 16, 3, "Depalettizing a PAL_PALETTE1\n"},
        {PAL_PALETTE2, kPixelFormatRGB888, 8, 4, "Depalettizing a PAL_PALETTE2\n"},
        {PAL_PALETTE4, kPixelFormatRGBA8888, 16, 16, "Depalettizing a PAL_PALETTE4\n"},
        {PAL_PALETTE4, kPixelFormatRGBA4444, 4, 2, "Depalettizing a PAL_PALETTE4\n"},
        {PAL_PALETTE8, kPixelFormatRGB565, 16, 8, "Depalettizing a PAL_PALETTE8\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.log);
        tImageInfo info{c.pal, c.format, c.w, c.h};
        std::vector<int> indices;
        std::unique_ptr<CTexture> t = paletted(c.pal, c.format, c.w, c.h, indices);
        DebugCapture debug;
        tImageInfo out{};
        std::unique_ptr<unsigned char[]> rgb(t->ConvertImageToNoPalette(&out));
        ASSERT_NE(rgb, nullptr);
        EXPECT_TRUE(debug.has(3, c.log));
        EXPECT_EQ(std::make_tuple(out.palType, out.pixelFormat, out.width, out.height),
                  std::make_tuple(PAL_NONE, c.format, c.w, c.h));
        const unsigned long bpe = info.GetBytesPerEntry();
        for (size_t p = 0; p < indices.size(); ++p)
            ASSERT_EQ(0, std::memcmp(rgb.get() + p * bpe, t->palette + indices[p] * bpe, bpe)) << "pixel " << p;
        EXPECT_EQ(t->imageInfo.palType, c.pal) << "the RAM image stays paletted";
    }
}

TEST(Texture, DepalettizingAnUnevenWidthDropsTrailingPixels)
{
    AssertCapture asserts;
    tImageInfo info{PAL_PALETTE2, kPixelFormatRGB888, 6, 2};
    CTexture t(info, true);
    for (int i = 0; i < 12; ++i)
        t.palette[i] = static_cast<uint8_t>(i / 3 + 1);
    t.pixels[0] = 0x1B;  // 0 1 2 3
    t.pixels[1] = 0xE4;  // 3 2 1 0
    tImageInfo out{};
    std::unique_ptr<unsigned char[]> rgb(t.ConvertImageToNoPalette(&out));
    std::vector<uint8_t> expected;
    for (int index : {0, 1, 2, 3, 3, 2, 1, 0, -1, -1, -1, -1})
        expected.insert(expected.end(), 3, static_cast<uint8_t>(index + 1));
    EXPECT_EQ(std::vector<uint8_t>(rgb.get(), rgb.get() + 36), expected);
}

// ---- GL uploads ----

using TextureGLTest = GLTest;

// 4- and 8-bit palettes go up compressed; 1- and 2-bit ones have no GL format and are expanded.
TEST_F(TextureGLTest, UploadCallAndStateForEachKind)
{
    struct {
        tPalType pal;
        kPixelFormat format;
        const char* call;
        std::vector<long> args;
        std::vector<std::string> logs;
    } cases[] = {
        {PAL_PALETTE8, kPixelFormatRGBA4444, "glCompressedTexImage2D",
         {GL_TEXTURE_2D, 0, GL_PALETTE8_RGBA4_OES, 16, 16, 0, 512 + 256},
         {"Calling glCompressedTexImage2D with internalFormat 8b98\n"}},
        {PAL_PALETTE4, kPixelFormatRGB565, "glCompressedTexImage2D",
         {GL_TEXTURE_2D, 0, GL_PALETTE4_R5_G6_B5_OES, 16, 16, 0, 32 + 128},
         {"Calling glCompressedTexImage2D with internalFormat 8b92\n"}},
        {PAL_PALETTE1, kPixelFormatRGB565, "glTexImage2D",
         {GL_TEXTURE_2D, 0, GL_RGB, 16, 16, 0, GL_RGB, GL_UNSIGNED_SHORT_5_6_5},
         {"Warning: Unsupported compressed tex image format ffff, depalettizing\n",
          ">> Calling glTexImage2D with internalFormat 1907, type 8363\n"}},
        {PAL_NONE, kPixelFormatRGBA8888, "glTexImage2D",
         {GL_TEXTURE_2D, 0, GL_RGBA, 16, 16, 0, GL_RGBA, GL_UNSIGNED_BYTE}, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.pal << "/" << c.format);
        tImageInfo info{c.pal, c.format, 16, 16};
        CTexture t(info, true);
        DebugCapture debug;
        recordGL([&] { t.InitGLTexture(); });
        const auto uploads = GLRecorder::callsNamed(c.call);
        ASSERT_EQ(uploads.size(), 1u);
        EXPECT_EQ(uploads[0].args, c.args);
        EXPECT_EQ(GLRecorder::count("glTexImage2D") + GLRecorder::count("glCompressedTexImage2D"), 1u);
        for (const std::string& log : c.logs)
            EXPECT_TRUE(debug.has(3, log)) << log;
        EXPECT_FALSE(debug.has("CTexture::InitGLTexture 2 OpenGL Error 0x500, may have run out of memory\n"));

        GLint bound = 0;
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
        EXPECT_EQ(static_cast<GLuint>(bound), t.glTextureId);
        struct { GLenum pname; GLint value; } params[] = {
            {GL_TEXTURE_MIN_FILTER, GL_NEAREST}, {GL_TEXTURE_MAG_FILTER, GL_NEAREST},
            {GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE}, {GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE},
        };
        for (const auto& p : params) {
            GLint v = 0;
            glGetTexParameteriv(GL_TEXTURE_2D, p.pname, &v);
            EXPECT_EQ(v, p.value) << std::hex << p.pname;
        }
    }
}

TEST_F(TextureGLTest, CallsWithoutTheRightRAMImageAreReported)
{
    AssertCapture asserts;
    tImageInfo info{PAL_NONE, kPixelFormatRGB888, 4, 4}, out{};
    CTexture direct(info, true), empty;
    delete[] direct.ConvertImageToNoPalette(&out);
    EXPECT_EQ(empty.ConvertImageToNoPalette(&out), nullptr);
    recordGL([&] { empty.InitGLTexture(); });
    EXPECT_EQ(asserts.messages(), (std::vector<std::string>{"ConvertImageToNoPalette: image already non-paletted\n",
                                                            "ConvertImageToNoPalette: image not in RAM\n",
                                                            "CTexture::InitGLTexture - image not in RAM\n"}));
    EXPECT_NE(empty.glTextureId, 0u) << "an empty texture is made";
    EXPECT_EQ(GLRecorder::count("glTexImage2D") + GLRecorder::count("glCompressedTexImage2D"), 0u);
}

class TextureWithoutCompressionTest : public TextureGLTest
{
protected:
    void SetUp() override
    {
        GLRecorder::setHideCompressedFormats(true);
        TextureGLTest::SetUp();
    }
};

TEST_F(TextureWithoutCompressionTest, PalettedImagesAreExpandedForUpload)
{
    struct { kPixelFormat format; GLenum glFormat; GLenum type; } cases[] = {
        {kPixelFormatRGBA8888, GL_RGBA, GL_UNSIGNED_BYTE},
        {kPixelFormatRGB565, GL_RGB, GL_UNSIGNED_SHORT_5_6_5},
        {kPixelFormatRGBA4444, GL_RGBA, GL_UNSIGNED_SHORT_4_4_4_4},
        {kPixelFormatRGB888, GL_RGB, GL_UNSIGNED_BYTE},
    };
    for (const auto& c : cases) {
        tImageInfo info{PAL_PALETTE4, c.format, 16, 16};
        CTexture t(info, true);
        recordGL([&] { t.InitGLTexture(); });
        EXPECT_EQ(GLRecorder::count("glCompressedTexImage2D"), 0u);
        const auto uploads = GLRecorder::callsNamed("glTexImage2D");
        ASSERT_EQ(uploads.size(), 1u);
        EXPECT_EQ(uploads[0].args,
                  (std::vector<long>{GL_TEXTURE_2D, 0, (long)c.glFormat, 16, 16, 0, (long)c.glFormat, (long)c.type}));
        EXPECT_EQ(t.imageInfo.palType, PAL_PALETTE4);
        EXPECT_TRUE(t.inRAM);
        EXPECT_EQ(t.palette, t.buffer);
    }
}

// Rows of 2, 3 or 6 bytes are not padded to 4 in RAM; direct uploads and
// depalettized copies alike must come out unskewed, in the palette's colours.
TEST_F(TextureWithoutCompressionTest, NarrowRowsAreNotPadded)
{
    struct { tPalType pal; kPixelFormat format; uint32_t width; } cases[] = {
        {PAL_NONE, kPixelFormatRGB888, 1}, {PAL_NONE, kPixelFormatRGB888, 2},
        {PAL_NONE, kPixelFormatRGB565, 1}, {PAL_NONE, kPixelFormatRGBA4444, 1},
        {PAL_PALETTE8, kPixelFormatRGB888, 2}, {PAL_PALETTE8, kPixelFormatRGB565, 1},
        {PAL_PALETTE8, kPixelFormatRGBA4444, 2}, {PAL_PALETTE4, kPixelFormatRGBA4444, 2},
    };
    const uint32_t height = 4;
    auto colorOf = [](uint32_t x, uint32_t y) {
        const uint32_t i = (x + 3 * y) % 8;
        return tColor{uint8_t(i & 1 ? 255 : 0), uint8_t(i & 2 ? 255 : 0), uint8_t(i & 4 ? 255 : 0), 255};
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.pal << "/" << c.format << " width " << c.width);
        tImageInfo info{c.pal, c.format, c.width, height};
        CTexture t(info, true);
        const unsigned long bpe = info.GetBytesPerEntry();
        auto put = [&](uint8_t* at, tColor color) {
            if (bpe == 3) {
                at[0] = color.r, at[1] = color.g, at[2] = color.b;
            } else {
                const unsigned short v = info.PackColor16(color);
                std::memcpy(at, &v, 2);
            }
        };
        for (uint32_t i = 0; c.pal != PAL_NONE && i < 8; ++i)
            put(t.palette + i * bpe, colorOf(i, 0));
        std::vector<int> indices;
        for (uint32_t y = 0; y < height; ++y)
            for (uint32_t x = 0; x < c.width; ++x) {
                if (c.pal == PAL_NONE)
                    put(t.pixels + (y * c.width + x) * bpe, colorOf(x, y));
                indices.push_back((x + 3 * y) % 8);
            }
        const std::vector<uint8_t> packed = packIndices(indices, bitsOf(c.pal));
        if (c.pal != PAL_NONE)
            std::memcpy(t.pixels, packed.data(), packed.size());
        t.InitGLTexture();
        drawTexturedQuad(t.glTextureId, c.width, height);
        for (uint32_t y = 0; y < height; ++y)
            for (uint32_t x = 0; x < c.width; ++x)
                EXPECT_EQ(pixel(x, y), colorOf(x, y)) << "at " << x << "," << y;
    }
}

} // namespace
