#ifndef ZEPHRIN2D_TOOLS_SHEETPACKER_H
#define ZEPHRIN2D_TOOLS_SHEETPACKER_H

// Packs named RGBA pictures into power-of-two pages and writes them as a
// texture sheet (NAME.json) with its pages (NAME-0.png, NAME-1.png, ...).
//
//     std::vector<SheetPacker::tPicture> pictures(1);
//     pictures[0].name = "hero/idle";            // the name billboards ask for
//     pictures[0].source = "art/hero/idle.png";  // named in error messages
//     ImageIO::readPNG(pictures[0].source, pictures[0].image);
//     pictures[0].regX = 16;                     // registration point, image pixels
//     pictures[0].regY = 30;                     // from the top-left corner, y down
//
//     SheetPacker::tOptions options;             // 1024 pages, padding 2, trimmed, palette auto
//     SheetPacker::tSheet sheet;
//     std::vector<std::string> errors;           // "FILE:1:1: error: message" lines
//     if (!SheetPacker::pack(pictures, options, sheet, errors) ||
//         !SheetPacker::write(sheet, "out/hero", errors))   // out/hero.json, out/hero-0-HASH.png ...
//         for (auto& e : errors) fprintf(stderr, "%s\n", e.c_str());
//     for (auto& page : sheet.pages) ... page.width, page.paletteBits, page.gpuBytes
//
// The result depends on the pictures and options only (not on their order),
// so the same input gives the same bytes. A billboard showing a picture of
// the sheet puts it exactly where the untrimmed image would be with its
// registration point at the element's origin. write() puts the sheet and its
// pages in place as one set, or leaves the previous sheet as it was.

#include "ImageIO.h"
#include "OutputSet.h"

#include <stdint.h>
#include <string>
#include <vector>

namespace SheetPacker {

enum class ePalette
{
    Auto,   ///< 4-bit or 8-bit when the page's colours allow it, else RGBA
    Bits8,  ///< 8-bit paletted or an error
    Bits4,  ///< 4-bit paletted or an error
    Off     ///< always RGBA
};

struct tOptions
{
    int maxSize = 1024;  ///< largest page side, a power of two up to 2048
    int padding = 2;     ///< transparent pixels between pictures
    int extrude = 0;     ///< edge pixels repeated around each picture
    bool trim = true;    ///< cut fully transparent borders
    ePalette palette = ePalette::Auto;
    std::string output = "sheet";  ///< the base name that messages give pages
};

struct tPicture
{
    std::string name;
    std::string source;
    ImageIO::tImage image;
    int regX = 0;
    int regY = 0;
};

/// One picture as placed, with the values the sheet file holds.
struct tPlaced
{
    std::string name;
    int page = 0;
    int x1 = 0, y1 = 0, x2 = 0, y2 = 0;  ///< rectangle in the page ("P1", "P2")
    int regX = 0, regY = 0;              ///< "RegPoint"
    int crop[4] = {0, 0, 0, 0};          ///< "CropRect"
};

struct tPage
{
    ImageIO::tImage image;
    int paletteBits = 0;             ///< 0 (RGBA), 4 or 8
    std::vector<uint32_t> palette;   ///< 0xRRGGBBAA, when paletted
    std::vector<uint8_t> indices;    ///< one palette index per pixel, when paletted
    int colours = 0;                 ///< distinct colours, counted up to 257
    unsigned long gpuBytesRGBA = 0;  ///< texture memory as an RGBA texture
    unsigned long gpuBytes = 0;      ///< texture memory as written
};

struct tSheet
{
    std::vector<tPage> pages;
    std::vector<tPlaced> pictures;  ///< by page, then by name
};

/// False with messages in errors when a picture is too large, two share a
/// name, or a page cannot take the palette asked for.
bool pack(const std::vector<tPicture>& pictures, const tOptions& options, tSheet& sheet,
          std::vector<std::string>& errors);

/// Writes base + ".json" and its pages base + "-N-HASH.png" as one set (see
/// OutputSet); the sheet names its pages relative to its own directory.
/// HASH is of the page's content, so a page never replaces a different page
/// the previous sheet still names, and the same input gives the same files.
bool write(const tSheet& sheet, const std::string& base, std::vector<std::string>& errors);
/// Adds the pages and then the sheet to an open set, and retires the pages of
/// the sheet it replaces; the caller commits.
bool write(const tSheet& sheet, const std::string& base, OutputSet& out, std::vector<std::string>& errors);

/// The file name of page i of the sheet written as base.
std::string pageName(const tSheet& sheet, size_t i, const std::string& base);
/// The sheet description, pages named as pageName() gives them.
std::string sheetJson(const tSheet& sheet, const std::string& baseName);

} // namespace SheetPacker

#endif
