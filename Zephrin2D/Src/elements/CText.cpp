#include "CText.h"

#include "CDrawList.h"
#include "CTexturedChunk.h"

#include <BaseUtils.h>
#include <DebugMPI.h>

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

void CText::drawWrapped(Tadwick::Vell::tFontSurf& surface)
{
    const int advance = fonts().GetFontMetrics().height;
    int y = 0;
    Glib::ustring line;
    auto flush = [&](const Glib::ustring& text) {
        const Tadwick::Vell::tRect r = fonts().GetStringRect(text);
        const int width = r.right - r.left;
        int x = 0;
        if (mAlignment == ALIGN_CENTER)
            x = (mForcedWidth - width) / 2;
        else if (mAlignment == ALIGN_RIGHT)
            x = mForcedWidth - width;
        fonts().DrawString(text, x, y, &surface, 0);
        y += advance;
    };
    Glib::ustring::size_type start = 0;
    while (start <= mText.size()) {
        Glib::ustring::size_type space = mText.find(' ', start);
        if (space == Glib::ustring::npos)
            space = mText.size();
        const Glib::ustring word = mText.substr(start, space - start);
        start = space + 1;
        if (word.empty())
            continue;
        const Glib::ustring candidate = line.empty() ? word : line + " " + word;
        const Tadwick::Vell::tRect r = fonts().GetStringRect(candidate);
        if (line.empty() || r.right - r.left <= mForcedWidth) {
            line = candidate;
        } else {
            flush(line);
            line = word;
        }
    }
    if (!line.empty())
        flush(line);
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
    if (!forced) {
        const Tadwick::Vell::tRect r = fonts().GetStringRect(mText);
        width = r.right;
        height = metrics.ascent - metrics.descent;
    } else {
        width = mForcedWidth;
        height = mForcedHeight;
    }
    width = static_cast<int>(nextHighestPowerOfTwo(width > 0 ? width : 0));
    height = static_cast<int>(nextHighestPowerOfTwo(height > 0 ? height : 0));
    if (width > MAX_TEXTURE_SIZE)
        width = MAX_TEXTURE_SIZE;
    if (height > MAX_TEXTURE_SIZE)
        height = MAX_TEXTURE_SIZE;

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
        fonts().DrawString(mText, 0, 0, &surface, 0);
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
