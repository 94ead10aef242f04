#ifndef ZEPHRIN2D_TIMAGEINFO_H
#define ZEPHRIN2D_TIMAGEINFO_H

#include "tVect.h"

#include <GLES/gl.h>

/// How pixels are stored: palette indices of 1, 2, 4 or 8 bits, or direct colours.
enum tPalType : int32_t
{
    PAL_PALETTE1 = 1,
    PAL_PALETTE2 = 2,
    PAL_PALETTE4 = 3,
    PAL_PALETTE8 = 4,
    PAL_NONE = 5
};

/// The layout of one colour: of a palette entry when paletted, of a pixel otherwise.
enum kPixelFormat : int32_t
{
    kPixelFormatRGBA4444 = 1,  ///< 16-bit word: red 15-12, green 11-8, blue 7-4, alpha 3-0
    kPixelFormatRGB565 = 2,    ///< 16-bit word: red 15-11, green 10-5, blue 4-0
    kPixelFormatRGBA8888 = 3,  ///< bytes R, G, B, A
    kPixelFormatRGB888 = 4     ///< bytes R, G, B
};

/// Describes a RAM image: one block holding the palette (entries in index
/// order) then the pixels (rows top to bottom, no padding, sub-byte indices
/// packed most significant bits first) - the layout of GL ES's paletted
/// compressed formats.
struct tImageInfo
{
    tPalType palType;
    kPixelFormat pixelFormat;
    uint32_t width;
    uint32_t height;

    static bool IsPowerOf2(unsigned long n);

    unsigned long GetNumPaletteEntries() const;
    /// Bytes per palette entry, or per pixel when not paletted.
    unsigned long GetBytesPerEntry() const;
    unsigned long GetImageSize() const;
    unsigned long GetPaletteSize() const;
    unsigned long GetTotalSize() const;
    /// The GL ES internal format, 0xFFFF when there is none (1- and 2-bit palettes).
    GLenum GetGLInternalFormat() const;
    /// The glTexImage2D pixel type; for non-paletted images only.
    GLenum GetGLType() const;
    unsigned short PackColor16(tColor c) const;
    tColor UnpackColor16(unsigned short v) const;
};

#endif
