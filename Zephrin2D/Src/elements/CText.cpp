#include "CText.h"

#include "CDrawList.h"
#include "CTexturedChunk.h"

#include <BaseUtils.h>
#include <DebugMPI.h>

#include <algorithm>
#include <cstring>
#include <new>

namespace {

Tadwick::Vell::CFontMPI* gFontService = 0;
int gTextCount = 0;

const Tadwick::Vell::CDebugMPI& debug()
{
    static Tadwick::Vell::CDebugMPI d(0x285);
    return d;
}

Tadwick::Vell::CFontMPI& fonts() { return *gFontService; }

} // namespace

unsigned int CText::nextHighestPowerOfTwo(unsigned int n)
{
    --n;
    n |= n >> 1;
    n |= n >> 2;
    n |= n >> 4;
    n |= n >> 8;
    n |= n >> 16;
    ++n;
    return n == 0 ? 1 : n;
}

CText::CText() { construct(); }

CText::CText(Glib::ustring text, Glib::ustring& font, unsigned char size)
    : CText(text, static_cast<const Glib::ustring&>(font), size)
{
}

CText::CText(Glib::ustring text, const Glib::ustring& font, unsigned char size)
{
    construct();
    mText = text;
    mFontName = font;
    mFontProp.size = size;
}

CText::CText(const CText& other) : CGraphicElement(other)
{
    construct();
    copySettings(other);
}

void CText::copySettings(const CText& other)
{
    mShowDebugTextures = other.mShowDebugTextures;
    mFontProp = other.mFontProp;
    mFontAttr = other.mFontAttr;
    mText = other.mText;
    mFontName = other.mFontName;
    mForcedWidth = other.mForcedWidth;
    mForcedHeight = other.mForcedHeight;
    mAlignment = other.mAlignment;
}

CText& CText::operator=(const CText& other)
{
    if (this == &other)
        return *this;
    tChunkList own = mChunks;
    CGraphicElement::operator=(other);
    mChunks = own;
    copySettings(other);
    mFontNeedsLoading = true;
    changed();
    return *this;
}

void CText::construct()
{
    if (gTextCount++ == 0)
        gFontService = new Tadwick::Vell::CFontMPI();
    mDirty = true;
    mShowDebugTextures = false;
    memset(&mFontProp, 0, sizeof mFontProp);
    mFontProp.version = 2;
    mFontProp.size = 12;
    mFontProp.encoding = 0;
    memset(&mFontAttr, 0, sizeof mFontAttr);
    mFontAttr.version = 2;
    mFontAttr.color = 0xFFFFFFFF;
    mFontAttr.direction = 1;
    mFontAttr.antialias = 1;
    mTextureName = 0;
    glGenTextures(1, &mTextureName);
    mTextureWidth = 0;
    mTextureHeight = 0;
    mForcedWidth = 0;
    mForcedHeight = 0;
    mAlignment = ALIGN_LEFT;
    mFontNeedsLoading = true;
    mFontHandle = 0;
    buildChunk();
}

void CText::buildChunk()
{
    boost::shared_ptr<CTexturedChunk> chunk(new CTexturedChunk(4, 6));
    const uint16_t indices[6] = {0, 1, 2, 2, 1, 3};
    std::copy(indices, indices + 6, chunk->getIndices().begin());
    std::vector<tVect2>& st = chunk->getTexCoords();
    st[0] = tVect2{ZERO_X, ZERO_X};
    st[1] = tVect2{ONE_X, ZERO_X};
    st[2] = tVect2{ZERO_X, ONE_X};
    st[3] = tVect2{ONE_X, ONE_X};
    chunk->setTextureId(mTextureName, true);
    mChunks.assign(1, chunk);
}

CText::~CText()
{
    if (mTextureName)
        glDeleteTextures(1, &mTextureName);
    if (mFontHandle)
        fonts().UnloadFont(mFontHandle);
    if (--gTextCount == 0) {
        delete gFontService;
        gFontService = 0;
    }
}

void CText::changed()
{
    mDirty = true;
    if (mDrawManaged)
        remakeTexture();
}

void CText::setText(Glib::ustring text)
{
    mText = text;
    changed();
}

void CText::setFont(Glib::ustring& font) { setFont(static_cast<const Glib::ustring&>(font)); }

void CText::setFont(const Glib::ustring& font)
{
    if (font != mFontName)
        mFontNeedsLoading = true;
    mFontName = font;
    changed();
}

void CText::setSize(unsigned char size)
{
    if (size != mFontProp.size)
        mFontNeedsLoading = true;
    mFontProp.size = size;
    changed();
}

void CText::setEncoding(unsigned long encoding)
{
    if (encoding != mFontProp.encoding)
        mFontNeedsLoading = true;
    mFontProp.encoding = encoding;
    changed();
}

void CText::setFontAttributes(Tadwick::Vell::tFontAttr attributes)
{
    mFontAttr = attributes;
    changed();
}

void CText::forceRectSize(int width, int height)
{
    mForcedWidth = width;
    mForcedHeight = height;
    changed();
}

void CText::setAlignment(int alignment)
{
    mAlignment = alignment;
    changed();
}

void CText::setColor(tColor color)
{
    CGraphicElement::setColor(color);
    changed();
}

void CText::alphaTo(unsigned char alpha)
{
    CGraphicElement::alphaTo(alpha);
    if (drawsColor())
        changed();
}

void CText::alphaBy(tFixed factor)
{
    CGraphicElement::alphaBy(factor);
    if (drawsColor())
        changed();
}

void CText::showDebugTextures(bool show)
{
    mShowDebugTextures = show;
    changed();
}

void CText::prepareFont()
{
    mFontAttr.color = (static_cast<uint32_t>(mColor.a) << 24) | (static_cast<uint32_t>(mColor.r) << 16) |
                      (static_cast<uint32_t>(mColor.g) << 8) | mColor.b;
    fonts().SetFontAttr(mFontAttr);
    if (!mFontNeedsLoading && mFontHandle) {
        if (!fonts().SelectFont(mFontHandle))
            debug().DebugOut(3, "*** CText::setFont - could not select font.\n");
        return;
    }
    if (mFontHandle)
        fonts().UnloadFont(mFontHandle);
    mFontHandle = fonts().LoadFont(mFontName, mFontProp);
    if (mFontHandle)
        mFontNeedsLoading = false;
    else
        debug().DebugOut(3, "*** CText::setFont - could not load font.\n");
}

Tadwick::Vell::tFontMetrics CText::getFontMetrics()
{
    prepareFont();
    return fonts().GetFontMetrics();
}

int CText::getStringWidth()
{
    prepareFont();
    const Tadwick::Vell::tRect r = fonts().GetStringRect(mText);
    return r.right - r.left;
}

int CText::getFontCapHeight()
{
    prepareFont();
    const Tadwick::Vell::tRect r = fonts().GetStringRect("X");
    return r.top - r.bottom;
}

namespace {

int64_t widthOf(const Glib::ustring& text)
{
    const Tadwick::Vell::tRect r = fonts().GetStringRect(text);
    return int64_t(r.right) - r.left;
}

// Only the start of a long text can show in the widest texture: prefixes of
// doubling length are measured until one reaches past it, so the work stays
// proportional to what is drawn (twice the text at most).
Glib::ustring visiblePart(const Glib::ustring& text, int limit)
{
    const std::string& raw = text.raw();
    for (size_t n = 256; n < raw.size(); n *= 2) {
        size_t cut = n;
        while (cut < raw.size() && (static_cast<unsigned char>(raw[cut]) & 0xC0) == 0x80)
            ++cut;
        const Glib::ustring prefix(raw.substr(0, cut));
        if (fonts().GetStringRect(prefix).right > limit + 64)
            return prefix;
    }
    return text;
}

int64_t clampToInt(int64_t v, int64_t limit) { return v < -limit ? -limit : (v > limit ? limit : v); }

} // namespace

// No glyph is wider than the font's widest advance (with room for kerning
// and overhang), and every character takes a byte at least: a rest that
// cannot reach the forced width is one line, whatever its words.
bool CText::restFitsOneLine(size_t bytes, int widest) const
{
    const int64_t perByte = int64_t(widest > 0 ? widest : 0) + 8;
    return uint64_t(bytes) < (uint64_t(1) << 40) / uint64_t(perByte) &&
           int64_t(bytes) * perByte + 4 * perByte <= mForcedWidth;
}

// Drawn without measuring the words: left-aligned only the part that shows;
// centred or right-aligned a line that starts past the texture is skipped.
void CText::drawRestAsOneLine(Tadwick::Vell::tFontSurf& surface, const std::string& rest, int y)
{
    std::string line;
    line.reserve(rest.size());
    for (size_t start = 0; start < rest.size();) {
        size_t space = rest.find(' ', start);
        if (space == std::string::npos)
            space = rest.size();
        if (space > start) {
            if (!line.empty())
                line += ' ';
            line.append(rest, start, space - start);
        }
        start = space + 1;
    }
    if (line.empty())
        return;
    const Tadwick::Vell::tFontMetrics metrics = fonts().GetFontMetrics();
    const int64_t perByte = int64_t(metrics.advance > 0 ? metrics.advance : 0) + 8;
    const int64_t widest = int64_t(line.size()) * perByte + 4 * perByte;
    int64_t x = 0;
    if (mAlignment == ALIGN_CENTER || mAlignment == ALIGN_RIGHT) {
        const int64_t nearest = mAlignment == ALIGN_CENTER ? (mForcedWidth - widest) / 2 : mForcedWidth - widest;
        if (nearest >= surface.width)
            return;
        const int64_t room = int64_t(mForcedWidth) - widthOf(line);
        x = mAlignment == ALIGN_CENTER ? room / 2 : room;
    }
    fonts().DrawString(x == 0 ? visiblePart(line, surface.width) : Glib::ustring(line),
                       int(clampToInt(x, 1 << 30)), y, &surface, 0);
}

// Linear in the text: it is walked by bytes (a space is one byte in UTF-8),
// the line grows in place, each word is measured once on its own and the
// sums decide; only a line near the edge is measured whole, as it is drawn.
// Layout stops at the first line below the texture.
void CText::drawWrapped(Tadwick::Vell::tFontSurf& surface)
{
    const int64_t kNear = 32;
    const Tadwick::Vell::tFontMetrics metrics = fonts().GetFontMetrics();
    const int64_t advance = metrics.height;
    const std::string& text = mText.raw();
    int64_t y = 0;
    std::string line;
    int64_t lineWidth = 0;
    auto flush = [&]() {
        int64_t x = 0;
        if (mAlignment == ALIGN_CENTER || mAlignment == ALIGN_RIGHT) {
            const int64_t room = int64_t(mForcedWidth) - widthOf(line);
            x = mAlignment == ALIGN_CENTER ? room / 2 : room;
        }
        fonts().DrawString(line, int(clampToInt(x, 1 << 30)), int(y), &surface, 0);
        y += advance;
        line.clear();
        return y < surface.height;
    };
    size_t start = 0;
    while (start < text.size()) {
        if (line.empty() && restFitsOneLine(text.size() - start, metrics.advance))
            return drawRestAsOneLine(surface, text.substr(start), int(y));
        size_t space = text.find(' ', start);
        if (space == std::string::npos)
            space = text.size();
        const std::string word = text.substr(start, space - start);
        start = space + 1;
        if (word.empty())
            continue;
        if (line.empty()) {
            line = word;
            lineWidth = widthOf(word);
            continue;
        }
        const int64_t estimate = lineWidth + widthOf(" " + word);
        bool fits = estimate + kNear < mForcedWidth;
        if (!fits && estimate - kNear <= mForcedWidth)
            fits = widthOf(line + " " + word) <= mForcedWidth;
        if (fits) {
            line += ' ';
            line += word;
            lineWidth = estimate;
        } else {
            if (!flush())
                return;
            line = word;
            lineWidth = widthOf(word);
        }
    }
    if (!line.empty())
        flush();
}

void CText::remakeTexture()
{
    mDirty = false;
    if (mText.empty() || mFontName.empty())
        return;
    prepareFont();
    const Tadwick::Vell::tFontMetrics metrics = fonts().GetFontMetrics();
    const bool forced = mForcedWidth != 0 && mForcedHeight != 0;
    int width, height;
    const Glib::ustring visible = forced ? Glib::ustring() : visiblePart(mText, MAX_TEXTURE_SIZE);
    if (!forced) {
        const Tadwick::Vell::tRect r = fonts().GetStringRect(visible);
        width = r.right;
        height = metrics.ascent - metrics.descent;
    } else {
        width = mForcedWidth;
        height = mForcedHeight;
    }
    // Capped before rounding up: the power of two above INT_MAX is not an int.
    width = static_cast<int>(nextHighestPowerOfTwo(std::min(std::max(width, 0), int(MAX_TEXTURE_SIZE))));
    height = static_cast<int>(nextHighestPowerOfTwo(std::min(std::max(height, 0), int(MAX_TEXTURE_SIZE))));

    const int bytes = width * height * 4;
    unsigned char* buffer = new (std::nothrow) unsigned char[bytes];
    if (!buffer) {
        BaseUtils::Assert(false, "Zephrin2D/Src/CText", __LINE__,
                          "CText::remakeTexture - Error, unable to malloc %d bytes in CText\n", bytes);
        return;
    }
    const unsigned char fillAlpha = mShowDebugTextures ? 0x40 : 0;
    for (int p = 0; p < width * height; ++p) {
        buffer[p * 4] = mColor.r;
        buffer[p * 4 + 1] = mColor.g;
        buffer[p * 4 + 2] = mColor.b;
        buffer[p * 4 + 3] = fillAlpha;
    }
    Tadwick::Vell::tFontSurf surface;
    surface.width = width;
    surface.height = height;
    surface.pitch = width * 4;
    surface.buffer = buffer;
    surface.format = Tadwick::Vell::kPixelFormatRGBA8888;
    if (!forced)
        fonts().DrawString(visible, 0, 0, &surface, 0);
    else
        drawWrapped(surface);

    mTextureWidth = width;
    mTextureHeight = height;
    moveRegTo(tVect2{ZERO_X, tFixed(height - metrics.ascent)});

    glBindTexture(GL_TEXTURE_2D, mTextureName);
    glTexParameterx(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameterx(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexParameterx(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
    glTexParameterx(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, buffer);
    delete[] buffer;

    boost::shared_ptr<CDrawChunk> chunk = mChunks.empty() ? boost::shared_ptr<CDrawChunk>() : mChunks[0];
    if (!chunk)
        return;
    std::vector<tVect3>& v = chunk->getVertices();
    v[0] = tVect3{ZERO_X, tFixed(height), ZERO_X};
    v[1] = tVect3{tFixed(width), tFixed(height), ZERO_X};
    v[2] = tVect3{ZERO_X, ZERO_X, ZERO_X};
    v[3] = tVect3{tFixed(width), ZERO_X, ZERO_X};
    if (mDrawManaged) {
        boost::shared_ptr<CDrawList> list = chunk->getDrawList().lock();
        if (list)
            list->markDirtyVertices(shared_from_this(), chunk);
    }
}

CGraphicElement::tChunkList& CText::getChunks()
{
    if (mDirty)
        remakeTexture();
    return mChunks;
}

void CText::draw(tColor* color)
{
    if (!mVisible || mText.empty())
        return;
    if (mDirty)
        remakeTexture();
    pushTransform();
    applyColor(color);
    const GLfixed w = tFixed(mTextureWidth).raw();
    const GLfixed h = tFixed(mTextureHeight).raw();
    const GLfixed vertices[12] = {0, 0, 0, w, 0, 0, 0, h, 0, w, h, 0};
    const GLfixed texCoords[8] = {0, ONE_X.raw(), ONE_X.raw(), ONE_X.raw(), 0, 0, ONE_X.raw(), 0};
    glVertexPointer(3, GL_FIXED, 0, vertices);
    glTexCoordPointer(2, GL_FIXED, 0, texCoords);
    glBindTexture(GL_TEXTURE_2D, mTextureName);
    glAlphaFuncx(GL_GREATER, 0);
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
    const tColor saved = mColor;
    mColor = tColor{255, 255, 255, 255};
    popTransform();
    mColor = saved;
}
