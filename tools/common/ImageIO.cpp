#include "ImageIO.h"

#include <cstdio>
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>
#include <png.h>

namespace ImageIO {

namespace {

// Only plain values live in the functions that call setjmp.
bool writeRGBA(FILE* f, const tImage& image, bool opaque, std::vector<uint8_t>& row)
{
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, 0, 0, 0);
    png_infop info = png ? png_create_info_struct(png) : 0;
    if (!png || !info || setjmp(png_jmpbuf(png))) {
        png_destroy_write_struct(&png, &info);
        return false;
    }
    png_init_io(png, f);
    png_set_IHDR(png, info, image.width, image.height, 8, PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    for (int y = 0; y < image.height; ++y) {
        memcpy(row.data(), image.at(0, y), row.size());
        for (size_t a = 3; opaque && a < row.size(); a += 4)
            row[a] = 255;
        png_write_row(png, row.data());
    }
    png_write_end(png, 0);
    png_destroy_write_struct(&png, &info);
    return true;
}

} // namespace

bool writePNG(const std::string& path, const tImage& image, bool opaque)
{
    if (image.width < 1 || image.height < 1 ||
        image.rgba.size() != static_cast<size_t>(image.width) * static_cast<size_t>(image.height) * 4)
        return false;
    FILE* f = fopen(path.c_str(), "wb");
    if (!f)
        return false;
    std::vector<uint8_t> row(static_cast<size_t>(image.width) * 4);
    const bool written = writeRGBA(f, image, opaque, row);
    return fclose(f) == 0 && written;
}

bool writePNG(const std::string& path, const tImage& image)
{
    return writePNG(path, image, false);
}

namespace {

// Only plain values live in the function that calls setjmp.
bool writePaletted(FILE* f, int width, int height, int bits, const png_color* plte, int entries,
                   const png_byte* alpha, int alphas, const png_byte* packed, size_t stride)
{
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, 0, 0, 0);
    png_infop info = png ? png_create_info_struct(png) : 0;
    if (!png || !info || setjmp(png_jmpbuf(png))) {
        png_destroy_write_struct(&png, &info);
        return false;
    }
    png_init_io(png, f);
    png_set_IHDR(png, info, width, height, bits, PNG_COLOR_TYPE_PALETTE, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_PLTE(png, info, plte, entries);
    if (alphas > 0)
        png_set_tRNS(png, info, alpha, alphas, 0);
    png_write_info(png, info);
    for (int y = 0; y < height; ++y)
        png_write_row(png, packed + y * stride);
    png_write_end(png, 0);
    png_destroy_write_struct(&png, &info);
    return true;
}

} // namespace

bool writePalettedPNG(const std::string& path, int width, int height, int bits,
                      const std::vector<uint32_t>& palette, const std::vector<uint8_t>& indices)
{
    if ((bits != 4 && bits != 8) || palette.empty() || palette.size() > (1u << bits) ||
        indices.size() != static_cast<size_t>(width) * height)
        return false;
    std::vector<png_color> plte(palette.size());
    std::vector<png_byte> alpha;
    for (size_t i = 0; i < palette.size(); ++i) {
        plte[i].red = palette[i] >> 24;
        plte[i].green = palette[i] >> 16 & 255;
        plte[i].blue = palette[i] >> 8 & 255;
        if ((palette[i] & 255) != 255)
            alpha.resize(i + 1, 255);
        if (i < alpha.size())
            alpha[i] = palette[i] & 255;
    }
    const size_t stride = (static_cast<size_t>(width) * bits + 7) / 8;
    std::vector<png_byte> packed(stride * height, 0);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const png_byte index = indices[static_cast<size_t>(y) * width + x];
            png_byte& b = packed[y * stride + (bits == 8 ? x : x / 2)];
            b |= bits == 8 ? index : (x % 2 ? index : index << 4);
        }
    FILE* f = fopen(path.c_str(), "wb");
    if (!f)
        return false;
    const bool written = writePaletted(f, width, height, bits, plte.data(), static_cast<int>(plte.size()),
                                       alpha.data(), static_cast<int>(alpha.size()), packed.data(), stride);
    return fclose(f) == 0 && written;
}

bool checkSize(long long width, long long height, std::string& error)
{
    if (width < 1 || height < 1) {
        error = "has no pixels";
        return false;
    }
    if (width > kMaxSide || height > kMaxSide || width * height > kMaxPixels) {
        error = "is " + std::to_string(width) + "x" + std::to_string(height) + " pixels; the limit is " +
                std::to_string(kMaxSide) + " pixels a side and " + std::to_string(kMaxPixels) + " pixels in all";
        return false;
    }
    return true;
}

namespace {

struct tReadState
{
    char message[160];
};

void readError(png_structp png, png_const_charp text)
{
    tReadState* state = static_cast<tReadState*>(png_get_error_ptr(png));
    snprintf(state->message, sizeof state->message, "%s", text);
    png_longjmp(png, 1);
}

void readWarning(png_structp, png_const_charp) {}

// The header is read and the size checked before the pixels get any memory.
bool readRGBA(FILE* f, tImage& image, tReadState& state, std::string& limit, std::vector<png_bytep>& rows)
{
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &state, readError, readWarning);
    png_infop info = png ? png_create_info_struct(png) : 0;
    if (!png || !info || setjmp(png_jmpbuf(png))) {
        png_destroy_read_struct(&png, &info, 0);
        return false;
    }
    png_set_chunk_malloc_max(png, 8u << 20);
    png_init_io(png, f);
    png_read_info(png, info);
    const png_uint_32 width = png_get_image_width(png, info), height = png_get_image_height(png, info);
    if (!checkSize(width, height, limit)) {
        png_destroy_read_struct(&png, &info, 0);
        return false;
    }
    png_set_scale_16(png);
    png_set_packing(png);
    png_set_palette_to_rgb(png);
    png_set_expand_gray_1_2_4_to_8(png);
    png_set_tRNS_to_alpha(png);
    png_set_gray_to_rgb(png);
    png_set_add_alpha(png, 0xff, PNG_FILLER_AFTER);
    png_set_interlace_handling(png);
    png_read_update_info(png, info);
    image.width = static_cast<int>(width);
    image.height = static_cast<int>(height);
    image.rgba.assign(static_cast<size_t>(width) * height * 4, 0);
    rows.resize(height);
    for (png_uint_32 y = 0; y < height; ++y)
        rows[y] = &image.rgba[static_cast<size_t>(y) * width * 4];
    png_read_image(png, rows.data());
    png_read_end(png, 0);
    png_destroy_read_struct(&png, &info, 0);
    return true;
}

} // namespace

bool readPNG(const std::string& path, tImage& image, std::string& error)
{
    FILE* f = fopen(path.c_str(), "rb");
    if (!f) {
        error = "cannot be read";
        return false;
    }
    unsigned char signature[8] = {0};
    const bool isPNG = fread(signature, 1, 8, f) == 8 && png_sig_cmp(signature, 0, 8) == 0;
    rewind(f);
    tReadState state;
    state.message[0] = 0;
    std::string limit;
    std::vector<png_bytep> rows;
    const bool ok = isPNG && readRGBA(f, image, state, limit, rows);
    fclose(f);
    if (!ok) {
        error = !isPNG ? "not a PNG file"
                : !limit.empty() ? limit
                : "the PNG file is damaged or of an unsupported kind" +
                      (state.message[0] ? " (" + std::string(state.message) + ")" : std::string());
        image = tImage();
    }
    return ok;
}

bool readPNG(const std::string& path, tImage& image)
{
    std::string error;
    return readPNG(path, image, error);
}

tDifference compare(const tImage& a, const tImage& b, int tolerance)
{
    tDifference d;
    d.sameSize = a.width == b.width && a.height == b.height && a.rgba.size() == b.rgba.size();
    if (!d.sameSize)
        return d;
    for (size_t p = 0; p + 3 < a.rgba.size(); p += 4) {
        int worst = 0;
        for (int c = 0; c < 4; ++c)
            worst = std::max(worst, std::abs(int(a.rgba[p + c]) - int(b.rgba[p + c])));
        d.maxChannelDiff = std::max(d.maxChannelDiff, worst);
        if (worst > tolerance)
            ++d.pixelsOver;
    }
    return d;
}

tImage differenceImage(const tImage& a, const tImage& b, int tolerance)
{
    tImage out = a;
    if (a.width != b.width || a.height != b.height)
        return out;
    for (size_t p = 0; p + 3 < a.rgba.size(); p += 4) {
        int worst = 0;
        for (int c = 0; c < 4; ++c)
            worst = std::max(worst, std::abs(int(a.rgba[p + c]) - int(b.rgba[p + c])));
        if (worst > tolerance) {
            out.rgba[p] = 255; out.rgba[p + 1] = 0; out.rgba[p + 2] = 0;
        } else {
            for (int c = 0; c < 3; ++c) out.rgba[p + c] = a.rgba[p + c] / 3;
        }
        out.rgba[p + 3] = 255;
    }
    return out;
}

} // namespace ImageIO
