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

/// The largest picture the tools read or write: a side of kMaxSide pixels and
/// kMaxPixels in all. Larger ones are refused before memory is spent.
const int kMaxSide = 8192;
const long kMaxPixels = 16l << 20;

bool writePNG(const std::string& path, const tImage& image);
/// opaque: every pixel is written with alpha 255 (a saved frame is a picture, not a layer).
bool writePNG(const std::string& path, const tImage& image, bool opaque);
/// A 4-bit or 8-bit paletted PNG: palette entries 0xRRGGBBAA, one index per
/// pixel; a tRNS chunk only when some entry is not opaque.
bool writePalettedPNG(const std::string& path, int width, int height, int bits,
                      const std::vector<uint32_t>& palette, const std::vector<uint8_t>& indices);
/// Any PNG as 8-bit RGBA: 8-bit samples as stored, 16-bit ones reduced to
/// 8 bits (v * 255 / 65535, rounded; no gamma), palettes and grey expanded.
/// False with error (naming the limit when it is one) when it cannot be read.
bool readPNG(const std::string& path, tImage& image, std::string& error);
bool readPNG(const std::string& path, tImage& image);
/// Whether width x height is within the limits above; else error names them.
bool checkSize(long long width, long long height, std::string& error);

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
