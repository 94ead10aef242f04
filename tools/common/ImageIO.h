#ifndef ZEPHRIN2D_TOOLS_IMAGEIO_H
#define ZEPHRIN2D_TOOLS_IMAGEIO_H

#include <stdint.h>
#include <string>
#include <vector>

/// RGBA images for the tools and tests: rows top first, 4 bytes per pixel.
namespace ImageIO {

struct tImage
{
    int width = 0;
    int height = 0;
    std::vector<uint8_t> rgba;

    const uint8_t* at(int x, int y) const { return &rgba[(static_cast<size_t>(y) * width + x) * 4]; }
    uint8_t* at(int x, int y) { return &rgba[(static_cast<size_t>(y) * width + x) * 4]; }
};

bool writePNG(const std::string& path, const tImage& image);
/// A 4-bit or 8-bit paletted PNG: palette entries 0xRRGGBBAA, one index per
/// pixel; a tRNS chunk only when some entry is not opaque.
bool writePalettedPNG(const std::string& path, int width, int height, int bits,
                      const std::vector<uint32_t>& palette, const std::vector<uint8_t>& indices);
bool readPNG(const std::string& path, tImage& image);

struct tDifference
{
    bool sameSize = false;
    long pixelsOver = 0;   ///< pixels with a channel off by more than the tolerance
    int maxChannelDiff = 0;
};

tDifference compare(const tImage& a, const tImage& b, int tolerance);
/// An image showing where a and b differ (red) over a dimmed copy of a.
tImage differenceImage(const tImage& a, const tImage& b, int tolerance);

} // namespace ImageIO

#endif
