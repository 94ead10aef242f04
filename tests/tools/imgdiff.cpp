// Compares two pictures, PNG or XWD (an X window dump, 32 bits a pixel),
// the top-left corner of the larger one against the smaller one.
//   z2d-imgdiff A B TOLERANCE MAX_PIXELS
#include "ImageIO.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

uint32_t be32(const unsigned char* p) { return (uint32_t(p[0]) << 24) | (p[1] << 16) | (p[2] << 8) | p[3]; }

unsigned shiftOf(uint32_t mask)
{
    unsigned s = 0;
    while (mask && !(mask & 1)) {
        mask >>= 1;
        ++s;
    }
    return s;
}

bool readXWD(const std::string& path, ImageIO::tImage& image)
{
    std::ifstream in(path, std::ios::binary);
    std::vector<unsigned char> d((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (d.size() < 100)
        return false;
    const uint32_t headerSize = be32(&d[0]), format = be32(&d[8]);
    const uint32_t width = be32(&d[16]), height = be32(&d[20]), byteOrder = be32(&d[28]);
    const uint32_t bitsPerPixel = be32(&d[44]), bytesPerLine = be32(&d[48]);
    const uint32_t red = be32(&d[56]), green = be32(&d[60]), blue = be32(&d[64]), colours = be32(&d[76]);
    const size_t start = size_t(headerSize) + size_t(colours) * 12;
    if (format != 2 || bitsPerPixel != 32 || width > 8192 || height > 8192 ||
        start + size_t(bytesPerLine) * height > d.size())
        return false;
    image.width = width;
    image.height = height;
    image.rgba.assign(size_t(width) * height * 4, 255);
    for (uint32_t y = 0; y < height; ++y)
        for (uint32_t x = 0; x < width; ++x) {
            const unsigned char* p = &d[start + size_t(y) * bytesPerLine + x * 4];
            const uint32_t v = byteOrder ? be32(p) : (uint32_t(p[3]) << 24) | (p[2] << 16) | (p[1] << 8) | p[0];
            uint8_t* o = image.at(x, y);
            o[0] = uint8_t((v & red) >> shiftOf(red));
            o[1] = uint8_t((v & green) >> shiftOf(green));
            o[2] = uint8_t((v & blue) >> shiftOf(blue));
        }
    return true;
}

bool load(const std::string& path, ImageIO::tImage& image)
{
    const bool xwd = path.size() > 4 && path.compare(path.size() - 4, 4, ".xwd") == 0;
    return xwd ? readXWD(path, image) : ImageIO::readPNG(path, image);
}

ImageIO::tImage crop(const ImageIO::tImage& image, int width, int height)
{
    ImageIO::tImage out;
    out.width = width;
    out.height = height;
    out.rgba.resize(size_t(width) * height * 4);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const uint8_t* p = image.at(x, y);
            uint8_t* o = out.at(x, y);
            o[0] = p[0];
            o[1] = p[1];
            o[2] = p[2];
            o[3] = 255;  // a window has no alpha to compare
        }
    return out;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 5) {
        std::fprintf(stderr, "usage: z2d-imgdiff A B TOLERANCE MAX_PIXELS\n");
        return 2;
    }
    ImageIO::tImage a, b;
    if (!load(argv[1], a) || !load(argv[2], b)) {
        std::fprintf(stderr, "z2d-imgdiff: cannot read %s or %s\n", argv[1], argv[2]);
        return 2;
    }
    const int width = std::min(a.width, b.width), height = std::min(a.height, b.height);
    const ImageIO::tDifference d = ImageIO::compare(crop(a, width, height), crop(b, width, height), std::atoi(argv[3]));
    std::printf("%dx%d compared: %ld pixels differ (max channel difference %d)\n", width, height, d.pixelsOver,
                d.maxChannelDiff);
    return d.pixelsOver <= std::atol(argv[4]) ? 0 : 1;
}
