#include "CTexturePNG.h"

#include <sys/stat.h>

#include <BaseUtils.h>
#include <DebugMPI.h>
#include <SystemData.h>

#include <png.h>

#include <cstdio>
#include <cstring>
#include <new>

namespace {

const char* const kFile = "Zephrin2D/Src/CTexturePNG";

const Tadwick::Vell::CDebugMPI& debug()
{
    static Tadwick::Vell::CDebugMPI d(0x28C);
    return d;
}

// libpng's default handlers print to stderr; ours log and return to the
// setjmp point in decode().
void onPngError(png_structp png, png_const_charp message)
{
    debug().DebugOut(3, "CTexturePNG: libpng error: %s\n", message);
    png_longjmp(png, 1);
}

void onPngWarning(png_structp, png_const_charp message)
{
    debug().DebugOut(3, "CTexturePNG: libpng warning: %s\n", message);
}

bool isDescribed(const tImageInfo& info)
{
    return info.palType >= PAL_PALETTE1 && info.palType <= PAL_NONE && info.pixelFormat >= kPixelFormatRGBA4444 &&
           info.pixelFormat <= kPixelFormatRGB888;
}

unsigned long bitsPerPixel(const tImageInfo& info)
{
    switch (info.palType) {
    case PAL_PALETTE1: return 1;
    case PAL_PALETTE2: return 2;
    case PAL_PALETTE4: return 4;
    case PAL_PALETTE8: return 8;
    default: return 8 * info.GetBytesPerEntry();
    }
}

} // namespace

/// Everything decode() touches across a libpng error lives here, in memory,
/// so that it is still right after the longjmp.
struct CTexturePNG::tReadState
{
    const char* path;
    FILE* file;
    png_structp png;
    png_infop info;
    png_bytep* volatile rows;
};

CTexturePNG::CTexturePNG(const Glib::ustring& path, bool createGLTexture, bool keepRAMImage, bool expandIndices)
{
    LoadPNG(path, expandIndices);
    // A file that gave no image gets no texture name either, so that the texture manager sees nothing was loaded.
    if (createGLTexture && inRAM)
        InitGLTexture();
    if (!keepRAMImage)
        DeleteRAMTexture();
}

namespace {

/// A directory opens like a file but reads like an error: only regular files count.
FILE* openImage(const char* path)
{
    FILE* file = std::fopen(path, "rb");
    struct stat info;
    if (file && (fstat(fileno(file), &info) != 0 || !S_ISREG(info.st_mode))) {
        std::fclose(file);
        file = 0;
    }
    return file;
}

} // namespace

void CTexturePNG::LoadPNG(const Glib::ustring& path, bool expandIndices)
{
    DeleteRAMTexture();
    FILE* file = openImage(path.c_str());
    if (!file) {
        const Glib::ustring placeholder = CSystemData::Instance()->FindArt("missingAsset.png");
        if (!placeholder.empty())
            file = openImage(placeholder.c_str());
        debug().DebugOut(3, "CTexturePNG::LoadPNG() failed to open file: %s\n", path.c_str());
        if (!file) {
            BaseUtils::Assert(false, kFile, __LINE__,
                              "CTexturePNG::LoadPNG() cannot open %s nor the placeholder missingAsset.png\n",
                              path.c_str());
            return;
        }
    }

    tReadState state = {path.c_str(), file, 0, 0, 0};
    state.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, 0, onPngError, onPngWarning);
    if (!state.png) {
        std::fclose(file);
        BaseUtils::Assert(false, kFile, __LINE__,
                          "CTexturePNG::LoadPNG() unable to create a read struct when reading: %s\n", path.c_str());
        return;
    }
    state.info = png_create_info_struct(state.png);
    if (!state.info) {
        std::fclose(file);
        png_destroy_read_struct(&state.png, 0, 0);
        BaseUtils::Assert(false, kFile, __LINE__,
                          "CTexturePNG::LoadPNG() unable to create a info struct when reading: %s\n", path.c_str());
        return;
    }

    decode(&state, expandIndices);

    std::fclose(state.file);
    png_destroy_read_struct(&state.png, &state.info, 0);
    delete[] state.rows;
}

void CTexturePNG::decode(tReadState* state, bool expandIndices)
{
    png_structp png = state->png;
    png_infop info = state->info;
    if (setjmp(png_jmpbuf(png))) {
        DeleteRAMTexture();
        BaseUtils::Assert(false, kFile, __LINE__, "CTexturePNG::LoadPNG() unexpected problem reading: %s\n",
                          state->path);
        return;
    }

    png_init_io(png, state->file);
    // Only the critical chunks and tRNS matter here. libpng reads an ancillary
    // chunk (text, ICC profile) whole into memory, so a corrupt length in a
    // few bytes of file would make it reserve up to 2 GiB: skip them unread.
    static const png_byte kKept[] = "tRNS";
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, 0, -1);
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_AS_DEFAULT, kKept, 1);
    // Asked before png_read_info, so no chunk has been read yet and no shift is ever set.
    png_color_8p significant = 0;
    if (png_get_sBIT(png, info, &significant))
        png_set_shift(png, significant);
    png_read_info(png, info);

    tImageInfo image = LoadPNGInfo(png, info);
    if (!isDescribed(image)) {
        BaseUtils::Assert(false, kFile, __LINE__,
                          "CTexturePNG::LoadPNG() cannot load %s: PNG colour type %d, bit depth %d is not supported\n",
                          state->path, png_get_color_type(png, info), png_get_bit_depth(png, info));
        return;
    }
    if (image.width > MAX_SIDE || image.height > MAX_SIDE || image.width == 0 || image.height == 0) {
        BaseUtils::Assert(false, kFile, __LINE__, "CTexturePNG::LoadPNG() %s is %u x %u, more than %u on a side\n",
                          state->path, image.width, image.height, MAX_SIDE);
        return;
    }
    if (expandIndices &&
        (image.palType == PAL_PALETTE1 || image.palType == PAL_PALETTE2 || image.palType == PAL_PALETTE4)) {
        png_set_packing(png);
        image.palType = PAL_PALETTE8;
    }
    // The RAM image has no row padding, so packed indices must end each row on a byte boundary.
    const unsigned long rowBits = image.width * bitsPerPixel(image);
    if (rowBits % 8 != 0) {
        BaseUtils::Assert(false, kFile, __LINE__,
                          "CTexturePNG::LoadPNG() %s: rows of %u pixels do not end on a byte boundary\n", state->path,
                          image.width);
        return;
    }

    InitRAMTexture(image, false);
    if (!inRAM)
        return;
    LoadPNGPalette(png, info);

    png_set_interlace_handling(png);
    png_read_update_info(png, info);
    const unsigned long stride = rowBits / 8;
    if (png_get_rowbytes(png, info) != stride) {
        DeleteRAMTexture();
        BaseUtils::Assert(false, kFile, __LINE__, "CTexturePNG::LoadPNG() %s: rows of %lu bytes, expected %lu\n",
                          state->path, static_cast<unsigned long>(png_get_rowbytes(png, info)), stride);
        return;
    }
    png_bytep* rows = new png_bytep[imageInfo.height];
    state->rows = rows;
    for (uint32_t i = 0; i < imageInfo.height; ++i)
        rows[i] = pixels + i * stride;
    png_read_image(png, rows);
    png_read_end(png, 0);
}

tImageInfo CTexturePNG::LoadPNGInfo(png_struct* png, png_info* info)
{
    png_uint_32 width = 0, height = 0;
    int bitDepth = 0, colorType = 0;
    png_get_IHDR(png, info, &width, &height, &bitDepth, &colorType, 0, 0, 0);
    png_colorp entries = 0;
    int numEntries = 0;
    const bool hasPalette = png_get_PLTE(png, info, &entries, &numEntries) != 0;
    // libpng only answers when given somewhere to put the answer.
    png_bytep alphas = 0;
    int numAlphas = 0;
    png_color_16p transparent = 0;
    const bool hasTRNS = png_get_tRNS(png, info, &alphas, &numAlphas, &transparent) != 0;

    tImageInfo result = tImageInfo();
    if (colorType == PNG_COLOR_TYPE_PALETTE) {
        BaseUtils::Assert(hasPalette, kFile, __LINE__, "CTexturePNG: Paletted PNG file missing PLTE chunk");
        switch (bitDepth) {
        case 1:
            BaseUtils::Assert(numEntries <= 2, kFile, __LINE__,
                              "CTexturePNG: Paletted 1-bit PNG file contains too many palette entries\n");
            result.palType = PAL_PALETTE1;
            break;
        case 2:
            BaseUtils::Assert(numEntries <= 4, kFile, __LINE__,
                              "CTexturePNG: Paletted 2-bit PNG file contains too many palette entries\n");
            result.palType = PAL_PALETTE2;
            break;
        case 4:
            BaseUtils::Assert(numEntries <= 16, kFile, __LINE__,
                              "CTexturePNG: Paletted 4-bit PNG file contains too many palette entries\n");
            result.palType = PAL_PALETTE4;
            break;
        case 8:
            BaseUtils::Assert(numEntries <= 256, kFile, __LINE__,
                              "CTexturePNG: Paletted 8-bit PNG file contains too many palette entries\n");
            result.palType = PAL_PALETTE8;
            break;
        default:
            // Reports the entry count, not the depth, as it always has.
            BaseUtils::Assert(false, kFile, __LINE__, "CTexturePNG: Unsupported paletted bit depth %d\n", numEntries);
            break;
        }
        result.pixelFormat = hasTRNS ? kPixelFormatRGBA4444 : kPixelFormatRGB565;
    } else if (colorType == PNG_COLOR_TYPE_RGB_ALPHA || colorType == PNG_COLOR_TYPE_RGB) {
        if (bitDepth == 8) {
            result.palType = PAL_NONE;
            result.pixelFormat = colorType == PNG_COLOR_TYPE_RGB ? kPixelFormatRGB888 : kPixelFormatRGBA8888;
        } else {
            BaseUtils::Assert(false, kFile, __LINE__, "CTexturePNG: Unsupported %d-bit depth for PNG type %d\n",
                              bitDepth, colorType);
        }
    } else {
        BaseUtils::Assert(false, kFile, __LINE__, "CTexturePNG: Unsupported PNG type %d", colorType);
    }
    result.width = width;
    result.height = height;
    return result;
}

void CTexturePNG::LoadPNGPalette(png_struct* png, png_info* info)
{
    if (imageInfo.palType == PAL_NONE || !palette)
        return;
    png_colorp entries = 0;
    int numEntries = 0;
    png_get_PLTE(png, info, &entries, &numEntries);
    png_bytep alphas = 0;
    int numAlphas = 0;
    png_get_tRNS(png, info, &alphas, &numAlphas, 0);
    if (!entries)
        numEntries = 0;
    if (!alphas)
        numAlphas = 0;

    const unsigned long count = imageInfo.GetNumPaletteEntries();
    tColor table[256];
    for (unsigned long i = 0; i < count && i < 256; ++i) {
        if (static_cast<int>(i) < numEntries) {
            const uint8_t alpha = static_cast<int>(i) < numAlphas ? alphas[i] : 255;
            table[i] = tColor{entries[i].red, entries[i].green, entries[i].blue, alpha};
        } else {
            table[i] = tColor{0, 0, 0, 0};
        }
    }

    const unsigned long bpe = imageInfo.GetBytesPerEntry();
    unsigned char* out = palette;
    switch (bpe) {
    case 3:
        BaseUtils::Assert(imageInfo.pixelFormat == kPixelFormatRGB888, kFile, __LINE__,
                          "CTexturePNG: Unknown 24-bit color mode");
        for (unsigned long i = 0; i < count; ++i, out += 3) {
            out[0] = table[i].r;
            out[1] = table[i].g;
            out[2] = table[i].b;
        }
        break;
    case 4:
        BaseUtils::Assert(imageInfo.pixelFormat == kPixelFormatRGBA8888, kFile, __LINE__,
                          "CTexturePNG: Unknown 32-bit color mode");
        std::memcpy(out, table, count * 4);
        break;
    case 2:
        for (unsigned long i = 0; i < count; ++i, out += 2) {
            const unsigned short packed = imageInfo.PackColor16(table[i]);
            std::memcpy(out, &packed, 2);
        }
        break;
    default:
        BaseUtils::Assert(false, kFile, __LINE__, "CTexturePNG: Unknown color mode");
        break;
    }
}
