#include "tImageInfo.h"

#include <BaseUtils.h>
#include <DebugMPI.h>

#include <GLES/glext.h>

namespace {

const char* const kFile = "Zephrin2D/Src/CTexture";
const char* const kFallThrough = "Control unexpectedly reach the end of the function tImageInfo::GetBytesPerEntry";

const Tadwick::Vell::CDebugMPI& debug()
{
    static Tadwick::Vell::CDebugMPI d(0x28C);
    return d;
}

} // namespace

bool tImageInfo::IsPowerOf2(unsigned long n)
{
    if (n == 0)
        return false;
    while ((n & 1) == 0)
        n >>= 1;
    return n == 1;
}

unsigned long tImageInfo::GetNumPaletteEntries() const
{
    switch (palType) {
    case PAL_PALETTE1: return 2;
    case PAL_PALETTE2: return 4;
    case PAL_PALETTE4: return 16;
    case PAL_PALETTE8: return 256;
    case PAL_NONE: return 0;
    }
    BaseUtils::Assert(false, kFile, __LINE__, "tImageInfo incorrect type %d\n", static_cast<int>(palType));
    BaseUtils::Assert(false, kFile, __LINE__, "%s", kFallThrough);
    return static_cast<unsigned long>(-1);
}

unsigned long tImageInfo::GetBytesPerEntry() const
{
    switch (pixelFormat) {
    case kPixelFormatRGBA4444: return 2;
    case kPixelFormatRGB565: return 2;
    case kPixelFormatRGBA8888: return 4;
    case kPixelFormatRGB888: return 3;
    }
    BaseUtils::Assert(false, kFile, __LINE__, "kPixelFormat incorrect type %d\n", static_cast<int>(pixelFormat));
    BaseUtils::Assert(false, kFile, __LINE__, "%s", kFallThrough);
    return static_cast<unsigned long>(-1);
}

unsigned long tImageInfo::GetImageSize() const
{
    if (!IsPowerOf2(width) || !IsPowerOf2(height))
        debug().DebugOut(3, "tImageInfo::GetImageSize - texture is %d x %d, should be power of 2 on each side\n",
                         static_cast<int>(width), static_cast<int>(height));
    // 64-bit signed: the product of two 32-bit sides never overflows and divides as a signed count.
    const int64_t pixelCount = static_cast<int64_t>(width) * static_cast<int64_t>(height);
    switch (palType) {
    case PAL_PALETTE1:
        BaseUtils::Assert(width % 8 == 0, kFile, __LINE__, "1-bit paletted image not multiple of 8 in width\n");
        return static_cast<unsigned long>(pixelCount / 8);
    case PAL_PALETTE2:
        BaseUtils::Assert(width % 4 == 0, kFile, __LINE__, "2-bit paletted image not multiple of 4 in width\n");
        return static_cast<unsigned long>(pixelCount / 4);
    case PAL_PALETTE4:
        BaseUtils::Assert(width % 2 == 0, kFile, __LINE__, "4-bit paletted image not even width\n");
        return static_cast<unsigned long>(pixelCount / 2);
    case PAL_PALETTE8:
        return static_cast<unsigned long>(pixelCount);
    case PAL_NONE:
        return static_cast<unsigned long>(pixelCount) * GetBytesPerEntry();
    }
    BaseUtils::Assert(false, kFile, __LINE__, "palType incorrect type %d\n", static_cast<int>(palType));
    BaseUtils::Assert(false, kFile, __LINE__, "%s", kFallThrough);
    return static_cast<unsigned long>(-1);
}

unsigned long tImageInfo::GetPaletteSize() const
{
    return GetNumPaletteEntries() * GetBytesPerEntry();
}

unsigned long tImageInfo::GetTotalSize() const
{
    return GetPaletteSize() + GetImageSize();
}

GLenum tImageInfo::GetGLInternalFormat() const
{
    const GLenum none = 0xFFFF;
    switch (palType) {
    case PAL_PALETTE8:
        switch (pixelFormat) {
        case kPixelFormatRGBA4444: return GL_PALETTE8_RGBA4_OES;
        case kPixelFormatRGB565: return GL_PALETTE8_R5_G6_B5_OES;
        case kPixelFormatRGBA8888: return GL_PALETTE8_RGBA8_OES;
        case kPixelFormatRGB888: return GL_PALETTE8_RGB8_OES;
        }
        return none;
    case PAL_PALETTE4:
        switch (pixelFormat) {
        case kPixelFormatRGBA4444: return GL_PALETTE4_RGBA4_OES;
        case kPixelFormatRGB565: return GL_PALETTE4_R5_G6_B5_OES;
        case kPixelFormatRGBA8888: return GL_PALETTE4_RGBA8_OES;
        case kPixelFormatRGB888: return GL_PALETTE4_RGB8_OES;
        }
        return none;
    case PAL_NONE:
        switch (pixelFormat) {
        case kPixelFormatRGBA4444: return GL_RGBA;
        case kPixelFormatRGB565: return GL_RGB;
        case kPixelFormatRGBA8888: return GL_RGBA;
        case kPixelFormatRGB888: return GL_RGB;
        }
        return none;
    default:
        return none;
    }
}

GLenum tImageInfo::GetGLType() const
{
    if (palType == PAL_NONE) {
        switch (pixelFormat) {
        case kPixelFormatRGBA4444: return GL_UNSIGNED_SHORT_4_4_4_4;
        case kPixelFormatRGB565: return GL_UNSIGNED_SHORT_5_6_5;
        case kPixelFormatRGBA8888: return GL_UNSIGNED_BYTE;
        case kPixelFormatRGB888: return GL_UNSIGNED_BYTE;
        }
    } else {
        BaseUtils::Assert(false, kFile, __LINE__,
                          "tImageInfo - GetGLType should only be called for non-paletted images\n");
    }
    BaseUtils::Assert(false, kFile, __LINE__, "tImageInfo - unknown pixel format: %d\n", static_cast<int>(pixelFormat));
    return GL_INVALID_VALUE;
}

unsigned short tImageInfo::PackColor16(tColor c) const
{
    switch (pixelFormat) {
    case kPixelFormatRGBA4444:
        return static_cast<unsigned short>((c.r >> 4) << 12 | (c.g >> 4) << 8 | (c.b >> 4) << 4 | (c.a >> 4));
    case kPixelFormatRGB565:
        return static_cast<unsigned short>((c.r >> 3) << 11 | (c.g >> 2) << 5 | (c.b >> 3));
    default:
        break;
    }
    BaseUtils::Assert(false, kFile, __LINE__, "PackColor16 can only pack into 16-bit color format");
    BaseUtils::Assert(false, kFile, __LINE__, "%s", kFallThrough);
    return 0;
}

tColor tImageInfo::UnpackColor16(unsigned short v) const
{
    switch (pixelFormat) {
    case kPixelFormatRGBA4444:
        return tColor{static_cast<uint8_t>((v >> 8) & 0xF0), static_cast<uint8_t>((v >> 4) & 0xF0),
                      static_cast<uint8_t>(v & 0xF0), static_cast<uint8_t>((v << 4) & 0xF0)};
    case kPixelFormatRGB565:
        // An unpacked RGB565 colour is fully transparent: callers rely on a = 0.
        return tColor{static_cast<uint8_t>((v >> 8) & 0xF8), static_cast<uint8_t>((v >> 3) & 0xFC),
                      static_cast<uint8_t>((v << 3) & 0xF8), 0};
    default:
        break;
    }
    BaseUtils::Assert(false, kFile, __LINE__, "UnpackColor16 can only unpack from 16-bit color format");
    BaseUtils::Assert(false, kFile, __LINE__, "%s", kFallThrough);
    return tColor{0, 0, 0, 0};
}
