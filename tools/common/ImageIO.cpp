#include "ImageIO.h"

#include <cstdio>
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <png.h>

namespace ImageIO {

bool writePNG(const std::string& path, const tImage& image)
{
    FILE* f = fopen(path.c_str(), "wb");
    if (!f)
        return false;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, 0, 0, 0);
    png_infop info = png ? png_create_info_struct(png) : 0;
    if (!png || !info || setjmp(png_jmpbuf(png))) {
        png_destroy_write_struct(&png, &info);
        fclose(f);
        return false;
    }
    png_init_io(png, f);
    png_set_IHDR(png, info, image.width, image.height, 8, PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    for (int y = 0; y < image.height; ++y)
        png_write_row(png, const_cast<png_bytep>(image.at(0, y)));
    png_write_end(png, 0);
    png_destroy_write_struct(&png, &info);
    return fclose(f) == 0;
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

bool readPNG(const std::string& path, tImage& image)
{
    png_image img;
    memset(&img, 0, sizeof img);
    img.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&img, path.c_str()))
        return false;
    img.format = PNG_FORMAT_RGBA;
    image.width = img.width;
    image.height = img.height;
    image.rgba.assign(PNG_IMAGE_SIZE(img), 0);
    if (!png_image_finish_read(&img, 0, image.rgba.data(), 0, 0)) {
        png_image_free(&img);
        return false;
    }
    return true;
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
