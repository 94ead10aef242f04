#include "ContactSheet.h"

#include <algorithm>
#include <cstdio>

namespace {

/// 3x5 digits, one row a byte (bit 2 leftmost).
const unsigned char kDigits[10][5] = {
    {7, 5, 5, 5, 7}, {2, 6, 2, 2, 7}, {7, 1, 7, 4, 7}, {7, 1, 7, 1, 7}, {5, 5, 7, 1, 1},
    {7, 4, 7, 1, 7}, {7, 4, 7, 5, 7}, {7, 1, 1, 1, 1}, {7, 5, 7, 5, 7}, {7, 5, 7, 1, 7},
};

void fill(ImageIO::tImage& image, int x, int y, int w, int h, const unsigned char rgb[3])
{
    for (int j = std::max(0, y); j < std::min(image.height, y + h); ++j)
        for (int i = std::max(0, x); i < std::min(image.width, x + w); ++i) {
            uint8_t* p = image.at(i, j);
            p[0] = rgb[0];
            p[1] = rgb[1];
            p[2] = rgb[2];
            p[3] = 255;
        }
}

void label(ImageIO::tImage& image, int x, int y, int number)
{
    char text[16];
    const int n = std::snprintf(text, sizeof text, "%d", number);
    const int scale = 2;
    const unsigned char black[3] = {0, 0, 0}, white[3] = {255, 255, 255};
    fill(image, x, y, n * 4 * scale + scale, 7 * scale, black);
    for (int c = 0; c < n; ++c)
        for (int row = 0; row < 5; ++row)
            for (int col = 0; col < 3; ++col)
                if (kDigits[text[c] - '0'][row] & (4 >> col))
                    fill(image, x + scale + (c * 4 + col) * scale, y + scale + row * scale, scale, scale, white);
}

} // namespace

void ContactSheet::add(int frameIndex, const ImageIO::tImage& frame) { mFrames.push_back(std::make_pair(frameIndex, frame)); }

ImageIO::tImage ContactSheet::compose() const
{
    ImageIO::tImage sheet;
    if (mFrames.empty())
        return sheet;
    const int border = 2;
    const int w = mFrames[0].second.width, h = mFrames[0].second.height;
    const int columns = std::min<int>(4, mFrames.size());
    const int rows = (static_cast<int>(mFrames.size()) + columns - 1) / columns;
    sheet.width = columns * (w + border) + border;
    sheet.height = rows * (h + border) + border;
    sheet.rgba.assign(static_cast<size_t>(sheet.width) * sheet.height * 4, 0);
    const unsigned char grey[3] = {64, 64, 64};
    fill(sheet, 0, 0, sheet.width, sheet.height, grey);
    for (size_t f = 0; f < mFrames.size(); ++f) {
        const int x0 = border + static_cast<int>(f % columns) * (w + border);
        const int y0 = border + static_cast<int>(f / columns) * (h + border);
        const ImageIO::tImage& frame = mFrames[f].second;
        for (int y = 0; y < std::min(h, frame.height); ++y)
            std::copy(frame.at(0, y), frame.at(0, y) + std::min(w, frame.width) * 4, sheet.at(x0, y0 + y));
        label(sheet, x0 + 2, y0 + 2, mFrames[f].first);
    }
    return sheet;
}
