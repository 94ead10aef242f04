#include "CTexture.h"

#include "CGraphics2D.h"

#include <BaseUtils.h>
#include <DebugMPI.h>

#include <cstring>
#include <new>

namespace {

const char* const kFile = "Zephrin2D/Src/CTexture";

const Tadwick::Vell::CDebugMPI& debug()
{
    static Tadwick::Vell::CDebugMPI d(0x28C);
    return d;
}

bool canHold(const tImageInfo& info)
{
    return info.palType >= PAL_PALETTE1 && info.palType <= PAL_NONE && info.pixelFormat >= kPixelFormatRGBA4444 &&
           info.pixelFormat <= kPixelFormatRGB888 && info.width <= CTexture::MAX_SIDE &&
           info.height <= CTexture::MAX_SIDE;
}

/// Copies the palette entries of the indices in one row of packed indices.
unsigned char* expandRow(const unsigned char* in, unsigned long bytes, int bitsPerIndex, const unsigned char* palette,
                         unsigned long bpe, unsigned char* out)
{
    const int perByte = 8 / bitsPerIndex;
    const unsigned mask = (1u << bitsPerIndex) - 1;
    for (unsigned long i = 0; i < bytes; ++i)
        for (int k = perByte - 1; k >= 0; --k) {
            const unsigned index = (in[i] >> (k * bitsPerIndex)) & mask;
            std::memcpy(out, palette + index * bpe, bpe);
            out += bpe;
        }
    return out;
}

} // namespace

CTexture::CTexture()
    : imageInfo(), inRAM(false), buffer(0), palette(0), pixels(0), glTextureId(0)
{
}

CTexture::CTexture(tImageInfo& info, bool clear)
    : imageInfo(), inRAM(false), buffer(0), palette(0), pixels(0), glTextureId(0)
{
    InitRAMTexture(info, clear);
}

CTexture::~CTexture()
{
    DeleteRAMTexture();
    DeleteGLTexture();
}

void CTexture::InitRAMTexture(tImageInfo info, bool clear)
{
    DeleteRAMTexture();
    imageInfo = info;
    if (!canHold(info)) {
        BaseUtils::Assert(false, kFile, __LINE__,
                          "CTexture::InitRAMTexture - cannot hold a %u x %u image of palType %d, pixelFormat %d\n",
                          info.width, info.height, static_cast<int>(info.palType), static_cast<int>(info.pixelFormat));
        return;
    }
    const unsigned long size = imageInfo.GetTotalSize();
    buffer = new (std::nothrow) unsigned char[size];
    if (!buffer) {
        BaseUtils::Assert(false, kFile, __LINE__, "CTexture::InitRAMTexture - out of memory for %lu bytes\n", size);
        return;
    }
    if (imageInfo.palType == PAL_NONE) {
        palette = 0;
        pixels = buffer;
    } else {
        palette = buffer;
        pixels = buffer + imageInfo.GetNumPaletteEntries() * imageInfo.GetBytesPerEntry();
    }
    if (clear)
        std::memset(buffer, 0, size);
    inRAM = true;
}

unsigned char* CTexture::ConvertImageToNoPalette(tImageInfo* outInfo)
{
    *outInfo = imageInfo;
    outInfo->palType = PAL_NONE;
    if (!inRAM) {
        BaseUtils::Assert(false, kFile, __LINE__, "ConvertImageToNoPalette: image not in RAM\n");
        return 0;
    }
    unsigned char* out = new (std::nothrow) unsigned char[outInfo->GetTotalSize()]();
    if (!out)
        return 0;

    const unsigned long bpe = imageInfo.GetBytesPerEntry();
    const uint32_t width = imageInfo.width;
    int bits = 0;
    switch (imageInfo.palType) {
    case PAL_PALETTE1:
        debug().DebugOut(3, "Depalettizing a PAL_PALETTE1\n");
        bits = 1;
        break;
    case PAL_PALETTE2:
        debug().DebugOut(3, "Depalettizing a PAL_PALETTE2\n");
        bits = 2;
        break;
    case PAL_PALETTE4:
        debug().DebugOut(3, "Depalettizing a PAL_PALETTE4\n");
        bits = 4;
        break;
    case PAL_PALETTE8:
        debug().DebugOut(3, "Depalettizing a PAL_PALETTE8\n");
        bits = 8;
        break;
    case PAL_NONE:
        BaseUtils::Assert(false, kFile, __LINE__, "ConvertImageToNoPalette: image already non-paletted\n");
        return out;
    default:
        BaseUtils::Assert(false, kFile, __LINE__, "palType incorrect type %d\n", static_cast<int>(imageInfo.palType));
        return out;
    }

    // A width that is not a multiple of the indices per byte drops each row's trailing pixels.
    const unsigned long rowBytes = width / (8 / bits);
    const unsigned char* in = pixels;
    unsigned char* o = out;
    for (uint32_t y = 0; y < imageInfo.height; ++y) {
        o = expandRow(in, rowBytes, bits, palette, bpe, o);
        in += rowBytes;
    }
    return out;
}

void CTexture::InitGLTexture()
{
    BaseUtils::Assert(inRAM, kFile, __LINE__, "CTexture::InitGLTexture - image not in RAM\n");
    DeleteGLTexture();
    glGenTextures(1, &glTextureId);
    glBindTexture(GL_TEXTURE_2D, glTextureId);
    glTexParameterx(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameterx(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexParameterx(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameterx(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    if (!inRAM)
        return;

    const GLenum internal = imageInfo.GetGLInternalFormat();
    const GLsizei width = static_cast<GLsizei>(imageInfo.width);
    const GLsizei height = static_cast<GLsizei>(imageInfo.height);
    GLenum error;

    if (imageInfo.palType != PAL_NONE) {
        if (CGraphics2D::Instance()->IsSupportedCompressedTexFormat(static_cast<int>(internal))) {
            debug().DebugOut(3, "Calling glCompressedTexImage2D with internalFormat %x\n", internal);
            glCompressedTexImage2D(GL_TEXTURE_2D, 0, internal, width, height, 0,
                                   static_cast<GLsizei>(imageInfo.GetTotalSize()), buffer);
            if ((error = glGetError()) != GL_NO_ERROR)
                debug().DebugOut(3, "CTexture::InitGLTexture 2 OpenGL Error 0x%x, may have run out of memory\n", error);
            return;
        }
        debug().DebugOut(3, "Warning: Unsupported compressed tex image format %x, depalettizing\n", internal);
        tImageInfo info2;
        unsigned char* tmp = ConvertImageToNoPalette(&info2);
        const GLenum format = info2.GetGLInternalFormat();
        const GLenum type = info2.GetGLType();
        debug().DebugOut(3, ">> Calling glTexImage2D with internalFormat %x, type %x\n", format, type);
        glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(format), width, height, 0, format, type, tmp);
        if ((error = glGetError()) != GL_NO_ERROR)
            debug().DebugOut(3, "CTexture::InitGLTexture 3 OpenGL Error 0x%x, may have run out of memory\n", error);
        delete[] tmp;
        return;
    }

    if ((error = glGetError()) != GL_NO_ERROR)
        debug().DebugOut(3, "CTexture::InitGLTexture 1 OpenGL Error 0x%x, before calling glTexImage2D\n", error);
    glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(internal), width, height, 0, internal, imageInfo.GetGLType(),
                 buffer);
    if ((error = glGetError()) != GL_NO_ERROR)
        debug().DebugOut(3, "CTexture::InitGLTexture 1 OpenGL Error 0x%x, may have run out of memory\n", error);
}

void CTexture::DeleteGLTexture()
{
    if (glTextureId != 0) {
        glDeleteTextures(1, &glTextureId);
        glTextureId = 0;
    }
}

void CTexture::DeleteRAMTexture()
{
    if (!inRAM)
        return;
    delete[] buffer;
    buffer = 0;
    palette = 0;
    pixels = 0;
    inRAM = false;
}

bool isInList(int value, int* list, int count)
{
    for (int i = 0; i < count; ++i)
        if (list[i] == value)
            return true;
    return false;
}
