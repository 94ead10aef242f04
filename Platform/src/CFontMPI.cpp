#include "FontMPI.h"
#include "DebugMPI.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <map>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace Tadwick {
namespace Vell {

namespace {

int32_t ceil26_6(FT_Pos v) { return int32_t(v >= 0 ? (v + 63) / 64 : -((-v) / 64)); }
int32_t floor26_6(FT_Pos v) { return int32_t(v >= 0 ? v / 64 : -((-v + 63) / 64)); }

// Decodes UTF-8, skipping every byte that does not start a valid sequence
// (overlong forms, surrogates and values past U+10FFFF included).
void decodeUtf8(const std::string& text, std::vector<uint32_t>& out)
{
    const unsigned char* s = reinterpret_cast<const unsigned char*>(text.data());
    const size_t n = text.size();
    size_t i = 0;
    while (i < n) {
        unsigned char c = s[i];
        if (c < 0x80) {
            out.push_back(c);
            ++i;
            continue;
        }
        size_t len = c >= 0xF0 ? 4 : c >= 0xE0 ? 3 : c >= 0xC0 ? 2 : 0;
        uint32_t cp = len == 4 ? (c & 0x07) : len == 3 ? (c & 0x0F) : (c & 0x1F);
        bool ok = len != 0 && c < 0xF5 && i + len <= n;
        for (size_t k = 1; ok && k < len; ++k) {
            if ((s[i + k] & 0xC0) != 0x80)
                ok = false;
            else
                cp = cp << 6 | (s[i + k] & 0x3F);
        }
        static const uint32_t kMin[5] = {0, 0, 0x80, 0x800, 0x10000};
        if (ok && (cp < kMin[len] || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)))
            ok = false;
        if (ok) {
            out.push_back(cp);
            i += len;
        } else {
            ++i;
        }
    }
}

bool isFile(const std::string& path)
{
    struct stat info;
    return !path.empty() && stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

bool hasFamily(FcPattern* font, FcChar8* family, const char* object)
{
    FcChar8* value = 0;
    for (int i = 0; FcPatternGetString(font, object, i, &value) == FcResultMatch; ++i)
        if (FcStrCmpIgnoreCase(value, family) == 0)
            return true;
    return false;
}

// The file of the font whose family (or full name, such as "DejaVu Sans
// Bold") is name. fontconfig always offers some fallback; we refuse it so
// that a misspelt name fails instead of silently drawing in another face.
bool resolveFamily(const std::string& name, std::string& file, int& index)
{
    if (!FcInit())
        return false;
    FcChar8* family = reinterpret_cast<FcChar8*>(const_cast<char*>(name.c_str()));
    bool found = false;
    FcPattern* pattern = FcPatternCreate();
    if (!pattern)
        return false;
    FcPatternAddString(pattern, FC_FAMILY, family);
    FcConfigSubstitute(0, pattern, FcMatchPattern);
    FcDefaultSubstitute(pattern);
    FcResult result;
    FcPattern* match = FcFontMatch(0, pattern, &result);
    FcChar8* path = 0;
    if (match && hasFamily(match, family, FC_FAMILY) &&
        FcPatternGetString(match, FC_FILE, 0, &path) == FcResultMatch) {
        file = reinterpret_cast<const char*>(path);
        if (FcPatternGetInteger(match, FC_INDEX, 0, &index) != FcResultMatch)
            index = 0;
        found = true;
    }
    if (match)
        FcPatternDestroy(match);
    FcPatternDestroy(pattern);
    if (found)
        return true;

    pattern = FcPatternCreate();
    FcObjectSet* objects = FcObjectSetBuild(FC_FILE, FC_INDEX, FC_FULLNAME, (char*)0);
    FcFontSet* fonts = (pattern && objects) ? FcFontList(0, pattern, objects) : 0;
    for (int i = 0; fonts && i < fonts->nfont && !found; ++i) {
        if (hasFamily(fonts->fonts[i], family, FC_FULLNAME) &&
            FcPatternGetString(fonts->fonts[i], FC_FILE, 0, &path) == FcResultMatch) {
            file = reinterpret_cast<const char*>(path);
            if (FcPatternGetInteger(fonts->fonts[i], FC_INDEX, 0, &index) != FcResultMatch)
                index = 0;
            found = true;
        }
    }
    if (fonts)
        FcFontSetDestroy(fonts);
    if (objects)
        FcObjectSetDestroy(objects);
    if (pattern)
        FcPatternDestroy(pattern);
    return found;
}

} // namespace

struct CFontMPI::Impl
{
    FT_Library library;
    std::map<tFontHndl, FT_Face> faces;
    tFontHndl nextHandle;
    tFontHndl selected;
    tFontAttr attr;
    CDebugMPI debug;

    Impl() : library(0), nextHandle(1), selected(0), debug(0) {}

    FT_Face face() const
    {
        std::map<tFontHndl, FT_Face>::const_iterator it = faces.find(selected);
        return it == faces.end() ? 0 : it->second;
    }

    FT_Int32 loadFlags() const
    {
        return attr.antialias ? FT_LOAD_TARGET_NORMAL : FT_LOAD_TARGET_MONO;
    }

    // Lays out the string from pen position 0 and calls glyph(penPixels,
    // slot) with each rendered glyph. Returns the final pen position in pixels.
    template <class F> int64_t layout(const Glib::ustring& str, F glyph) const
    {
        FT_Face f = face();
        if (!f)
            return 0;
        std::vector<uint32_t> codes;
        decodeUtf8(str.raw(), codes);
        const bool kerning = FT_HAS_KERNING(f);
        const FT_Render_Mode mode = attr.antialias ? FT_RENDER_MODE_NORMAL : FT_RENDER_MODE_MONO;
        int64_t pen = 0;  // 26.6
        FT_UInt previous = 0;
        for (size_t i = 0; i < codes.size(); ++i) {
            if (codes[i] < 0x20 || codes[i] == 0x7F)
                continue;  // control characters take no room
            FT_UInt index = FT_Get_Char_Index(f, codes[i]);
            if (kerning && previous && index) {
                FT_Vector delta;
                if (FT_Get_Kerning(f, previous, index, FT_KERNING_DEFAULT, &delta) == 0)
                    pen += delta.x;
            }
            previous = index;
            if (FT_Load_Glyph(f, index, FT_LOAD_DEFAULT | loadFlags()) != 0)
                continue;
            if (f->glyph->format != FT_GLYPH_FORMAT_BITMAP && FT_Render_Glyph(f->glyph, mode) != 0)
                continue;
            glyph((pen + 32) >> 6, f->glyph);
            pen += f->glyph->advance.x;
        }
        return (pen + 32) >> 6;
    }
};

CFontMPI::CFontMPI() : mImpl(new Impl)
{
    mImpl->attr.version = 1;
    mImpl->attr.color = 0xFFFFFFFFu;
    mImpl->attr.direction = 1;
    mImpl->attr.antialias = 1;
    mImpl->attr.reserved = 0;
    if (FT_Init_FreeType(&mImpl->library) != 0) {
        mImpl->library = 0;
        mImpl->debug.DebugOut(1, "CFontMPI: could not initialise FreeType\n");
    }
}

CFontMPI::~CFontMPI()
{
    for (std::map<tFontHndl, FT_Face>::iterator it = mImpl->faces.begin(); it != mImpl->faces.end(); ++it)
        FT_Done_Face(it->second);
    if (mImpl->library)
        FT_Done_FreeType(mImpl->library);
    delete mImpl;
}

tFontHndl CFontMPI::LoadFont(const Glib::ustring& name, tFontProp prop)
{
    const std::string raw = name.raw();
    if (!mImpl->library)
        return 0;
    if (prop.size == 0) {
        mImpl->debug.DebugOut(1, "CFontMPI::LoadFont - size 0 for font %s\n", raw.c_str());
        return 0;
    }
    std::string file = raw;
    int index = 0;
    if (!isFile(raw) && (raw.empty() || !resolveFamily(raw, file, index))) {
        mImpl->debug.DebugOut(1, "CFontMPI::LoadFont - no font named %s\n", raw.c_str());
        return 0;
    }
    FT_Face face = 0;
    if (FT_New_Face(mImpl->library, file.c_str(), index, &face) != 0) {
        mImpl->debug.DebugOut(1, "CFontMPI::LoadFont - could not open font file %s\n", file.c_str());
        return 0;
    }
    FT_Select_Charmap(face, FT_ENCODING_UNICODE);
    if (FT_Set_Pixel_Sizes(face, 0, prop.size) != 0) {
        mImpl->debug.DebugOut(1, "CFontMPI::LoadFont - font %s has no size %u\n", raw.c_str(), unsigned(prop.size));
        FT_Done_Face(face);
        return 0;
    }
    tFontHndl handle = mImpl->nextHandle++;
    if (mImpl->nextHandle == 0)
        mImpl->nextHandle = 1;
    mImpl->faces[handle] = face;
    mImpl->selected = handle;
    return handle;
}

bool CFontMPI::UnloadFont(tFontHndl handle)
{
    std::map<tFontHndl, FT_Face>::iterator it = mImpl->faces.find(handle);
    if (it == mImpl->faces.end())
        return false;
    FT_Done_Face(it->second);
    mImpl->faces.erase(it);
    if (mImpl->selected == handle)
        mImpl->selected = 0;
    return true;
}

bool CFontMPI::SelectFont(tFontHndl handle)
{
    if (mImpl->faces.find(handle) == mImpl->faces.end())
        return false;
    mImpl->selected = handle;
    return true;
}

bool CFontMPI::SetFontAttr(tFontAttr attr)
{
    mImpl->attr = attr;
    return true;
}

tFontAttr CFontMPI::GetFontAttr() const
{
    return mImpl->attr;
}

tFontMetrics CFontMPI::GetFontMetrics() const
{
    tFontMetrics metrics = {0, 0, 0, 0};
    FT_Face f = mImpl->face();
    if (!f)
        return metrics;
    const FT_Size_Metrics& m = f->size->metrics;
    metrics.ascent = ceil26_6(m.ascender);
    metrics.descent = floor26_6(m.descender);
    metrics.height = ceil26_6(m.height);
    metrics.advance = ceil26_6(m.max_advance);
    return metrics;
}

tRect CFontMPI::GetStringRect(const Glib::ustring& str) const
{
    tRect rect = {0, 0, 0, 0};
    bool ink = false;
    int64_t right = 0, top = 0, bottom = 0;
    int64_t pen = mImpl->layout(str, [&](int64_t x, FT_GlyphSlot slot) {
        if (slot->bitmap.width == 0 || slot->bitmap.rows == 0)
            return;
        int64_t glyphTop = slot->bitmap_top;
        int64_t glyphBottom = glyphTop - int64_t(slot->bitmap.rows);
        int64_t glyphRight = x + slot->bitmap_left + int64_t(slot->bitmap.width);
        top = ink ? std::max(top, glyphTop) : glyphTop;
        bottom = ink ? std::min(bottom, glyphBottom) : glyphBottom;
        right = std::max(right, glyphRight);
        ink = true;
    });
    const int64_t kMax = 0x7FFFFFFF;
    rect.right = int32_t(std::min(std::max(pen, right), kMax));
    rect.top = int32_t(top);
    rect.bottom = int32_t(bottom);
    return rect;
}

bool CFontMPI::DrawString(const Glib::ustring& str, int x, int y, tFontSurf* surf, int flag)
{
    if (!surf || !surf->buffer || surf->format != kPixelFormatRGBA8888 || surf->width <= 0 ||
        surf->height <= 0 || int64_t(surf->pitch) < int64_t(surf->width) * 4)
        return false;
    FT_Face f = mImpl->face();
    if (!f)
        return false;
    const uint32_t color = mImpl->attr.color;
    const uint8_t r = uint8_t(color >> 16), g = uint8_t(color >> 8), b = uint8_t(color);
    const uint32_t alpha = color >> 24;
    const int64_t baseline = int64_t(y) + GetFontMetrics().ascent;
    const int64_t width = surf->width, height = surf->height;
    mImpl->layout(str, [&](int64_t pen, FT_GlyphSlot slot) {
        const FT_Bitmap& bm = slot->bitmap;
        const bool mono = bm.pixel_mode == FT_PIXEL_MODE_MONO;
        if ((!mono && bm.pixel_mode != FT_PIXEL_MODE_GRAY) || bm.pitch < 0 || !bm.buffer)
            return;
        const int64_t left = int64_t(x) + pen + slot->bitmap_left;
        const int64_t top = baseline - slot->bitmap_top;
        const int64_t c0 = std::max<int64_t>(0, -left), c1 = std::min<int64_t>(bm.width, width - left);
        const int64_t r0 = std::max<int64_t>(0, -top), r1 = std::min<int64_t>(bm.rows, height - top);
        for (int64_t row = r0; row < r1; ++row) {
            const uint8_t* src = bm.buffer + row * bm.pitch;
            uint8_t* dst = surf->buffer + (top + row) * int64_t(surf->pitch) + (left + c0) * 4;
            for (int64_t col = c0; col < c1; ++col, dst += 4) {
                uint32_t coverage = mono ? ((src[col >> 3] >> (7 - (col & 7))) & 1) * 255 : src[col];
                if (!coverage)
                    continue;
                dst[0] = r;
                dst[1] = g;
                dst[2] = b;
                uint8_t a = uint8_t((coverage * alpha + 127) / 255);
                if (a > dst[3])
                    dst[3] = a;
            }
        }
    });
    return true;
}

} // namespace Vell
} // namespace Tadwick
