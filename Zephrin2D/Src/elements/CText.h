#ifndef ZEPHRIN2D_CTEXT_H
#define ZEPHRIN2D_CTEXT_H

#include "CGraphicElement.h"

#include <FontMPI.h>
#include <GLES/gl.h>
#include <glibmm/ustring.h>

/// A string shown as one textured quad.
///
/// The platform font service renders the string into the element's own RGBA
/// texture (power-of-two sides, at most 512), which the draw manager batches
/// like any other quad. The texture is rebuilt when the text, font, size,
/// encoding, attributes, colour or forced rectangle change: at once for a
/// text registered for drawing, otherwise at the next getChunks() or draw().
/// The element's origin sits on the baseline at the left edge.
class CText : public CGraphicElement
{
public:
    enum { MAX_TEXTURE_SIZE = 512 };
    enum tAlignment { ALIGN_LEFT = 0, ALIGN_CENTER = 1, ALIGN_RIGHT = 2 };

    CText();
    CText(Glib::ustring text, Glib::ustring& font, unsigned char size);
    /// The same, for a font given as a string literal or a temporary:
    /// CText("Score", "DejaVu Sans", 16).
    CText(Glib::ustring text, const Glib::ustring& font, unsigned char size);
    /// Copies the settings; the copy has its own texture and is rebuilt when next used.
    CText(const CText& other);
    CText& operator=(const CText& other);
    ~CText() override;

    void setText(Glib::ustring text);
    void setFont(Glib::ustring& font);
    void setFont(const Glib::ustring& font);
    void setSize(unsigned char size);
    void setEncoding(unsigned long encoding);
    void setFontAttributes(Tadwick::Vell::tFontAttr attributes);
    /// Both non-zero: the text wraps at spaces inside width x height, aligned by setAlignment.
    void forceRectSize(int width, int height);
    void setAlignment(int alignment);
    /// The text colour follows the element colour.
    void setColor(tColor color) override;
    /// With element colours on, the alpha is drawn into the texture as the colour is.
    void alphaTo(unsigned char alpha) override;
    void alphaBy(tFixed factor) override;
    /// White: the texture carries the colour and its alpha.
    tColor getBatchedColor() const override { return tColor{255, 255, 255, 255}; }
    /// Fills the texture's background faintly so that its extent shows.
    void showDebugTextures(bool show);

    Glib::ustring getText() const { return mText; }
    Tadwick::Vell::tFontAttr getFontAttributes() const { return mFontAttr; }
    Tadwick::Vell::tFontMetrics getFontMetrics();
    int getStringWidth();
    int getFontCapHeight();
    int getTextureWidth() const { return mTextureWidth; }
    int getTextureHeight() const { return mTextureHeight; }
    GLuint getTextureName() const { return mTextureName; }
    bool isDirty() const { return mDirty; }

    static unsigned int nextHighestPowerOfTwo(unsigned int n);

    void remakeTexture();
    tChunkList& getChunks() override;
    using CGraphicElement::draw;
    void draw(tColor* color) override;

private:
    void construct();
    /// Everything a text is set up with, but its texture and font handle.
    void copySettings(const CText& other);
    void prepareFont();
    void changed();
    void drawWrapped(Tadwick::Vell::tFontSurf& surface);
    bool restFitsOneLine(size_t bytes, int widest) const;
    void drawRestAsOneLine(Tadwick::Vell::tFontSurf& surface, const std::string& rest, int y);
    void buildChunk();

    bool mDirty;
    bool mShowDebugTextures;
    Tadwick::Vell::tFontProp mFontProp;
    Tadwick::Vell::tFontAttr mFontAttr;
    GLuint mTextureName;
    Glib::ustring mText;
    Glib::ustring mFontName;
    int mTextureWidth;
    int mTextureHeight;
    int mForcedWidth;
    int mForcedHeight;
    int mAlignment;
    bool mFontNeedsLoading;
    Tadwick::Vell::tFontHndl mFontHandle;
};

#endif
