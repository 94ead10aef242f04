#ifndef ZEPHRIN2D_PLATFORM_FONTMPI_H
#define ZEPHRIN2D_PLATFORM_FONTMPI_H

#include <glibmm/ustring.h>
#include <stdint.h>

namespace Tadwick {
namespace Vell {

typedef uint32_t tFontHndl;

/// What LoadFont needs: size is the em's pixel size.
struct tFontProp
{
    uint32_t version;
    uint8_t size;
    unsigned long encoding;
    uint32_t reserved;
};

/// How strings are drawn. color is a<<24 | r<<16 | g<<8 | b.
struct tFontAttr
{
    uint32_t version;
    uint32_t color;
    uint8_t direction;   ///< 1 left to right (the only direction drawn here)
    uint8_t antialias;   ///< 1 smooth glyph edges, 0 hard edges
    uint32_t reserved;
};

/// Metrics of the selected font in pixels: descent is negative.
struct tFontMetrics
{
    int32_t ascent;
    int32_t descent;
    int32_t height;      ///< line advance
    int32_t advance;     ///< widest glyph advance
};

enum { kPixelFormatRGBA8888 = 3 };

/// A surface to draw into: format 3 is 32-bit RGBA, bytes R, G, B, A.
struct tFontSurf
{
    int32_t width;
    int32_t height;
    int32_t pitch;       ///< bytes per row
    uint8_t* buffer;
    int32_t format;
};

/// A string's extent in pixels: y grows upwards from the baseline, so top is
/// the ink's height above it and bottom (usually negative) its depth below;
/// left is 0 and right the pen advance (or the ink's right edge if further).
struct tRect
{
    int32_t left;
    int32_t top;
    int32_t right;
    int32_t bottom;
};

/// The font service on FreeType; fontconfig resolves family names such as
/// "DejaVu Sans", a file path is taken as it is.
class CFontMPI
{
public:
    CFontMPI();
    ~CFontMPI();

    tFontHndl LoadFont(const Glib::ustring& name, tFontProp prop);  ///< 0 on failure
    bool UnloadFont(tFontHndl handle);
    bool SelectFont(tFontHndl handle);
    bool SetFontAttr(tFontAttr attr);
    tFontAttr GetFontAttr() const;
    tFontMetrics GetFontMetrics() const;
    tRect GetStringRect(const Glib::ustring& str) const;
    /// Draws with (x, y) the top-left of the line, row 0 the top row. Glyphs
    /// outside the surface are clipped. Returns false without a font or surface.
    bool DrawString(const Glib::ustring& str, int x, int y, tFontSurf* surf, int flag = 0);

private:
    CFontMPI(const CFontMPI&);
    CFontMPI& operator=(const CFontMPI&);
    struct Impl;
    Impl* mImpl;
};

} // namespace Vell
} // namespace Tadwick

#endif
