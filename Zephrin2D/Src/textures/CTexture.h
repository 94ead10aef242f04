#ifndef ZEPHRIN2D_CTEXTURE_H
#define ZEPHRIN2D_CTEXTURE_H

#include "tImageInfo.h"

/// An image in RAM (palette and pixels in one block) and as a GL texture.
///
/// Producers fill the RAM image, then InitGLTexture() uploads it: paletted
/// images go up as paletted compressed textures when the GPU takes the
/// format, and are expanded to direct colour for the upload otherwise.
/// Textures are nearest-filtered and clamped. Shared through
/// boost::shared_ptr; not copyable.
class CTexture
{
public:
    /// The largest width or height a RAM image may have; larger ones are refused.
    static constexpr uint32_t MAX_SIDE = 2048;

    CTexture();
    CTexture(tImageInfo& info, bool clear);
    virtual ~CTexture();

    /// Allocates the RAM block for info (zeroed when clear); the GL texture is
    /// left alone. A description that cannot be held (bad enumerations, a side
    /// above MAX_SIDE) is reported and leaves no RAM image.
    void InitRAMTexture(tImageInfo info, bool clear);
    /// A direct-colour copy of the paletted RAM image; the caller frees it with
    /// delete[]. Bytes not produced are zero; null when there is no RAM image.
    unsigned char* ConvertImageToNoPalette(tImageInfo* outInfo);
    /// (Re)creates the GL texture from the RAM image; leaves it bound. Without
    /// a RAM image the texture name is made but nothing is uploaded.
    void InitGLTexture();
    void DeleteGLTexture();
    void DeleteRAMTexture();

    tImageInfo imageInfo;
    bool inRAM;
    unsigned char* buffer;
    unsigned char* palette;
    unsigned char* pixels;
    GLuint glTextureId;

private:
    CTexture(const CTexture&);
    CTexture& operator=(const CTexture&);
};

/// Whether value is one of the first count entries of list.
bool isInList(int value, int* list, int count);

#endif
