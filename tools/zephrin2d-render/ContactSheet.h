#ifndef ZEPHRIN2D_RENDER_CONTACTSHEET_H
#define ZEPHRIN2D_RENDER_CONTACTSHEET_H

#include "ImageIO.h"

#include <vector>

/// Frames tiled into one picture, each with its number, so that an animation
/// can be seen at a glance.
class ContactSheet
{
public:
    void add(int frameIndex, const ImageIO::tImage& frame);
    bool empty() const { return mFrames.empty(); }
    /// Up to 4 frames a row, a 2-pixel border, frame numbers in the top-left corners.
    ImageIO::tImage compose() const;

private:
    std::vector<std::pair<int, ImageIO::tImage> > mFrames;
};

#endif
