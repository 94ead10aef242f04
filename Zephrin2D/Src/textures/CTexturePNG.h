#ifndef ZEPHRIN2D_CTEXTUREPNG_H
#define ZEPHRIN2D_CTEXTUREPNG_H

#include "CTexture.h"

#include <glibmm/ustring.h>

typedef struct png_struct_def png_struct;
typedef struct png_info_def png_info;

/// A texture whose RAM image comes from a PNG file.
///
/// Paletted PNGs stay paletted, with 16-bit entries (RGBA4444 when the file
/// has a tRNS chunk, else RGB565); RGB and RGBA PNGs of 8 bits per channel
/// become RGB888 and RGBA8888 images. Grey, grey-with-alpha and 16-bit files
/// are refused, as are images larger than MAX_SIDE on a side: they leave no
/// RAM image. A file that cannot be opened is replaced by the art file
/// "missingAsset.png".
class CTexturePNG : public CTexture
{
public:
    /// Loads path, then uploads it (createGLTexture) and drops the RAM image
    /// (unless keepRAMImage). expandIndices stores 1-, 2- and 4-bit indices
    /// one per byte, as an 8-bit paletted image.
    CTexturePNG(const Glib::ustring& path, bool createGLTexture, bool keepRAMImage, bool expandIndices);

    /// Replaces the RAM image by the file's; on any failure there is none.
    void LoadPNG(const Glib::ustring& path, bool expandIndices);
    /// The image description of the file whose header png has read.
    tImageInfo LoadPNGInfo(png_struct* png, png_info* info);
    /// Writes the file's palette (with tRNS alphas) into the RAM image's palette.
    void LoadPNGPalette(png_struct* png, png_info* info);

private:
    struct tReadState;
    void decode(tReadState* state, bool expandIndices);
};

#endif
