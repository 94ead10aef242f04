#ifndef ZEPHRIN2D_TESTS_DRAWTESTSUPPORT_H
#define ZEPHRIN2D_TESTS_DRAWTESTSUPPORT_H

#include "CGraphicElement.h"
#include "CTexture.h"
#include "CTexturedChunk.h"

#include <boost/make_shared.hpp>
#include <cstring>
#include <functional>

namespace DrawTest {

/// A direct-colour GL texture whose pixel (x, y), row 0 on top, is colour(x, y).
inline boost::shared_ptr<CTexture> makeTexture(int width, int height, kPixelFormat format,
                                               std::function<tColor(int, int)> colour)
{
    boost::shared_ptr<CTexture> texture = boost::make_shared<CTexture>();
    const tImageInfo info{PAL_NONE, format, uint32_t(width), uint32_t(height)};
    texture->InitRAMTexture(info, true);
    const unsigned long bpp = info.GetBytesPerEntry();
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const tColor c = colour(x, y);
            unsigned char* p = texture->pixels + (y * width + x) * bpp;
            if (bpp == 2) {
                const unsigned short v = info.PackColor16(c);
                std::memcpy(p, &v, 2);
            } else {
                const unsigned char bytes[4] = {c.r, c.g, c.b, c.a};
                std::memcpy(p, bytes, bpp);
            }
        }
    texture->InitGLTexture();
    return texture;
}

/// One colour all over: RGBA8888 (translucent) when its alpha is below 255, else RGB888.
inline boost::shared_ptr<CTexture> solidTexture(tColor c, int size = 8)
{
    return makeTexture(size, size, c.a < 255 ? kPixelFormatRGBA8888 : kPixelFormatRGB888,
                       [c](int, int) { return c; });
}

/// A RAM-only texture, enough for what depends on the format alone.
inline boost::shared_ptr<CTexture> formatOnlyTexture(tPalType palType, kPixelFormat format)
{
    boost::shared_ptr<CTexture> texture = boost::make_shared<CTexture>();
    texture->InitRAMTexture(tImageInfo{palType, format, 8, 8}, true);
    return texture;
}

/// An element with nothing of its own to draw.
class Element : public CGraphicElement
{
public:
    void draw(tColor*) override {}
};

inline boost::shared_ptr<Element> element(int x = 0, int y = 0, tFixed z = ZERO_X)
{
    boost::shared_ptr<Element> e = boost::make_shared<Element>();
    e->moveTo(tVect3{tFixed(x), tFixed(y), z});
    return e;
}

/// A w x h quad with its bottom-left corner on the origin, showing the whole texture.
inline boost::shared_ptr<CTexturedChunk> quad(boost::shared_ptr<CTexture> texture, int w, int h, tFixed z = ZERO_X)
{
    boost::shared_ptr<CTexturedChunk> c = boost::make_shared<CTexturedChunk>(4, 6);
    const tFixed W(w), H(h);
    const tVect3 corners[4] = {{ZERO_X, H, z}, {W, H, z}, {ZERO_X, ZERO_X, z}, {W, ZERO_X, z}};
    const tVect2 coords[4] = {{ZERO_X, ZERO_X}, {ONE_X, ZERO_X}, {ZERO_X, ONE_X}, {ONE_X, ONE_X}};
    const uint16_t indices[6] = {0, 1, 2, 2, 1, 3};
    for (int i = 0; i < 4; ++i) {
        c->getVertices()[i] = corners[i];
        c->getTexCoords()[i] = coords[i];
    }
    for (int i = 0; i < 6; ++i)
        c->getIndices()[i] = indices[i];
    if (texture)
        c->setTexture(texture);
    return c;
}

/// An element at (x, y, z) holding one quad chunk.
inline boost::shared_ptr<Element> quadElement(boost::shared_ptr<CTexture> texture, int x, int y, tFixed z, int w = 8,
                                              int h = 8)
{
    boost::shared_ptr<Element> e = element(x, y, z);
    e->getChunks().push_back(quad(texture, w, h));
    return e;
}

inline tFixed Z(int z) { return tFixed(z); }

} // namespace DrawTest

#endif
