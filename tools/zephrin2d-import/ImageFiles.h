#ifndef ZEPHRIN2D_IMPORT_IMAGEFILES_H
#define ZEPHRIN2D_IMPORT_IMAGEFILES_H

#include "ImageIO.h"

#include <string>

/// The images a sheet or a tileset names.
namespace ImageFiles {

/// Reads the PNG at path. On failure why says what is wrong, as the end of a
/// sentence about the image ("is not there", "is a JPEG image: ...", ...).
/// The size is checked against the importer's limits before pixels are read.
bool read(const std::string& path, ImageIO::tImage& image, std::string& why);

/// Where an image named inside the file `from` is: name as written,
/// relative to from's directory; when nothing is there, the file name alone
/// beside from (exports often keep the path of the machine they came from,
/// "G:\art\hero.png").
std::string locate(const std::string& from, const std::string& name);

} // namespace ImageFiles

#endif
