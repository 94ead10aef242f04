#include "SheetPacker.h"

#include "JsonDocument.h"
#include "Paths.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <map>
#include <set>
#include <stdlib.h>

struct stbrp_rect;
// stb sorts with qsort, whose order of equal rectangles is not fixed; a
// stable sort keeps the packing the same on every C library.
static void stableSort(void* base, size_t count, size_t size, int (*less)(const void*, const void*));
#define STBRP_SORT stableSort
#define STB_RECT_PACK_IMPLEMENTATION
#include <stb/stb_rect_pack.h>

static void stableSort(void* base, size_t count, size_t, int (*compare)(const void*, const void*))
{
    stbrp_rect* rects = static_cast<stbrp_rect*>(base);
    std::stable_sort(rects, rects + count,
                     [compare](const stbrp_rect& a, const stbrp_rect& b) { return compare(&a, &b) < 0; });
}

namespace SheetPacker {
namespace {

struct tItem
{
    const tPicture* picture;
    int left, top, width, height;  // the kept part of the image
};

std::string fileError(const std::string& file, const std::string& message)
{
    return file + ":1:1: error: " + message;
}

std::string format(const char* fmt, ...) __attribute__((format(printf, 1, 2)));
std::string format(const char* fmt, ...)
{
    char text[512];
    va_list args;
    va_start(args, fmt);
    vsnprintf(text, sizeof text, fmt, args);
    va_end(args);
    return text;
}

bool isPowerOf2(int n) { return n > 0 && (n & (n - 1)) == 0; }

tItem trimmed(const tPicture& picture, bool trim)
{
    const ImageIO::tImage& image = picture.image;
    tItem item = {&picture, 0, 0, image.width, image.height};
    if (!trim)
        return item;
    int x1 = image.width, y1 = image.height, x2 = -1, y2 = -1;
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x)
            if (image.at(x, y)[3] != 0) {
                x1 = std::min(x1, x); x2 = std::max(x2, x);
                y1 = std::min(y1, y); y2 = std::max(y2, y);
            }
    if (x2 < 0)
        return tItem{&picture, 0, 0, 1, 1};  // nothing visible: one transparent pixel
    return tItem{&picture, x1, y1, x2 - x1 + 1, y2 - y1 + 1};
}

/// Rectangles carry their padding on the right and below; none is needed past the page's edge.
bool packInto(std::vector<stbrp_rect>& rects, int width, int height, int padding)
{
    std::vector<stbrp_node> nodes(width + padding);
    stbrp_context context;
    stbrp_init_target(&context, width + padding, height + padding, nodes.data(), width + padding);
    for (stbrp_rect& r : rects)
        r.was_packed = 0;
    return stbrp_pack_rects(&context, rects.data(), static_cast<int>(rects.size())) == 1;
}

/// Page sizes from the smallest area up; at equal area the wider first.
std::vector<std::pair<int, int>> pageSizes(int maxSize)
{
    std::vector<std::pair<int, int>> sizes;
    for (int w = 1; w <= maxSize; w *= 2)
        for (int h = 1; h <= maxSize; h *= 2)
            sizes.push_back({w, h});
    std::stable_sort(sizes.begin(), sizes.end(), [](const std::pair<int, int>& a, const std::pair<int, int>& b) {
        long areaA = long(a.first) * a.second, areaB = long(b.first) * b.second;
        return areaA != areaB ? areaA < areaB : a.first > b.first;
    });
    return sizes;
}

/// The smallest page that takes every rectangle, or (0, 0).
std::pair<int, int> smallestPage(std::vector<stbrp_rect>& rects, const std::vector<std::pair<int, int>>& sizes,
                                 int padding)
{
    long area = 0;
    int widest = 0, tallest = 0;
    for (const stbrp_rect& r : rects) {
        area += long(r.w - padding) * (r.h - padding);
        widest = std::max(widest, r.w - padding);
        tallest = std::max(tallest, r.h - padding);
    }
    for (const std::pair<int, int>& size : sizes)
        if (long(size.first) * size.second >= area && size.first >= widest && size.second >= tallest &&
            packInto(rects, size.first, size.second, padding))
            return size;
    return {0, 0};
}

bool exactIn16Bits(uint32_t colour, bool withAlpha)
{
    const int channel[4] = {int(colour >> 24), int(colour >> 16 & 255), int(colour >> 8 & 255), int(colour & 255)};
    if (withAlpha) {
        for (int c : channel)
            if (c != (c >> 4) * 17)
                return false;
        return true;
    }
    for (int i = 0; i < 3; ++i) {
        const int bits = i == 1 ? 6 : 5, max = (1 << bits) - 1, v = channel[i] >> (8 - bits);
        // Drivers widen a 5- or 6-bit channel by bit replication or by rounding.
        if (channel[i] != (v << (8 - bits) | v >> (2 * bits - 8)) || channel[i] != (v * 255 + max / 2) / max)
            return false;
    }
    return true;
}

uint32_t pixelColour(const uint8_t* p) { return uint32_t(p[0]) << 24 | p[1] << 16 | p[2] << 8 | p[3]; }

/// Chooses the page's storage; false with a message when the asked-for palette cannot hold it.
bool choosePalette(tPage& page, const tOptions& options, int index, std::vector<std::string>& errors)
{
    const ImageIO::tImage& image = page.image;
    std::map<uint32_t, int> firstSeen;
    std::vector<uint32_t> colours;
    for (int y = 0; y < image.height && colours.size() <= 256; ++y)
        for (int x = 0; x < image.width && colours.size() <= 256; ++x)
            if (firstSeen.emplace(pixelColour(image.at(x, y)), int(colours.size())).second)
                colours.push_back(pixelColour(image.at(x, y)));
    page.colours = static_cast<int>(colours.size());
    const bool transparent = std::any_of(colours.begin(), colours.end(), [](uint32_t c) { return (c & 255) != 255; });
    const bool exact = std::all_of(colours.begin(), colours.end(), [&](uint32_t c) { return exactIn16Bits(c, transparent); });
    page.gpuBytesRGBA = page.gpuBytes = static_cast<unsigned long>(image.width) * image.height * 4;

    int bits = 0;
    const std::string file = format("%s-%d.png", options.output.c_str(), index);
    if (options.palette == ePalette::Auto) {
        if (exact && colours.size() <= 16 && image.width % 2 == 0)
            bits = 4;
        else if (exact && colours.size() <= 256)
            bits = 8;
    } else if (options.palette != ePalette::Off) {
        bits = options.palette == ePalette::Bits4 ? 4 : 8;
        const size_t most = bits == 4 ? 16 : 256;
        if (colours.size() > most) {
            errors.push_back(fileError(file, format("the page uses more than %zu colours; %s %d-bit palette cannot hold it",
                                                    most, bits == 8 ? "an" : "a", bits)));
            return false;
        }
        if (!exact) {
            errors.push_back(fileError(file, format("the page has colours that a %s palette entry would change",
                                                    transparent ? "16-bit RGBA4444" : "16-bit RGB565")));
            return false;
        }
        if (bits == 4 && image.width % 2 != 0) {
            errors.push_back(fileError(file, "a 4-bit page needs an even width"));
            return false;
        }
    }
    if (bits == 0)
        return true;

    // Transparent entries first, so that the tRNS chunk stays short.
    std::stable_partition(colours.begin(), colours.end(), [](uint32_t c) { return (c & 255) != 255; });
    std::map<uint32_t, uint8_t> indexOf;
    for (size_t i = 0; i < colours.size(); ++i)
        indexOf[colours[i]] = static_cast<uint8_t>(i);
    page.paletteBits = bits;
    page.palette = colours;
    page.indices.resize(static_cast<size_t>(image.width) * image.height);
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x)
            page.indices[static_cast<size_t>(y) * image.width + x] = indexOf[pixelColour(image.at(x, y))];
    // The runtime keeps 16-bit palette entries, a full table of them.
    page.gpuBytes = (1ul << bits) * 2 + static_cast<unsigned long>(image.width) * image.height * bits / 8;
    return true;
}

void copyPicture(ImageIO::tImage& page, const tItem& item, int x, int y, int extrude)
{
    const ImageIO::tImage& image = item.picture->image;
    for (int dy = -extrude; dy < item.height + extrude; ++dy)
        for (int dx = -extrude; dx < item.width + extrude; ++dx) {
            const int sx = item.left + std::min(std::max(dx, 0), item.width - 1);
            const int sy = item.top + std::min(std::max(dy, 0), item.height - 1);
            const int px = x + dx, py = y + dy;
            if (px >= 0 && py >= 0 && px < page.width && py < page.height)
                memcpy(page.at(px, py), image.at(sx, sy), 4);
        }
}

std::string jsonString(const std::string& text)
{
    std::string out = "\"";
    for (unsigned char c : text) {
        if (c == '"' || c == '\\')
            out += '\\', out += char(c);
        else if (c < 0x20)
            out += format("\\u%04x", c);
        else
            out += char(c);
    }
    return out + "\"";
}

std::string baseName(const std::string& path)
{
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

bool writeFile(const std::string& path, const std::string& text)
{
    FILE* f = fopen(path.c_str(), "wb");
    if (!f)
        return false;
    const bool written = fwrite(text.data(), 1, text.size(), f) == text.size();
    return (fclose(f) == 0) && written;
}

// The pictures by name, trimmed, as rectangles to pack; problems go to errors.
void collectItems(const std::vector<tPicture>& pictures, const tOptions& options, std::vector<tItem>& items,
                  std::vector<stbrp_rect>& rects, std::vector<std::string>& errors)
{
    std::vector<const tPicture*> sorted;
    for (const tPicture& p : pictures)
        sorted.push_back(&p);
    std::stable_sort(sorted.begin(), sorted.end(), [](const tPicture* a, const tPicture* b) { return a->name < b->name; });

    for (size_t i = 0; i < sorted.size(); ++i) {
        const tPicture& p = *sorted[i];
        if (i > 0 && sorted[i - 1]->name == p.name) {
            errors.push_back(fileError(p.source, format("a second picture named \"%s\" (the first is %s)",
                                                        p.name.c_str(), sorted[i - 1]->source.c_str())));
            continue;
        }
        if (p.image.width <= 0 || p.image.height <= 0 ||
            p.image.rgba.size() != static_cast<size_t>(p.image.width) * p.image.height * 4) {
            errors.push_back(fileError(p.source, "the picture has no pixels"));
            continue;
        }
        const tItem item = trimmed(p, options.trim);
        const int w = item.width + 2 * options.extrude, h = item.height + 2 * options.extrude;
        if (w > options.maxSize || h > options.maxSize) {
            errors.push_back(fileError(p.source, format("the picture needs %dx%d pixels, more than a %dx%d page",
                                                        w, h, options.maxSize, options.maxSize)));
            continue;
        }
        stbrp_rect r;
        memset(&r, 0, sizeof r);
        r.id = static_cast<int>(items.size());
        r.w = w + options.padding;
        r.h = h + options.padding;
        items.push_back(item);
        rects.push_back(r);
    }
}

// Where a picture's kept part landed, and its registration point from the
// untrimmed image's bottom-left corner, y down.
tPlaced placedAt(const tItem& item, int x, int y, int page)
{
    const tPicture& p = *item.picture;
    tPlaced pl;
    pl.name = p.name;
    pl.page = page;
    pl.x1 = x; pl.y1 = y; pl.x2 = x + item.width; pl.y2 = y + item.height;
    pl.regX = p.regX;
    pl.regY = p.regY - p.image.height;
    pl.crop[0] = -item.left;
    pl.crop[1] = -item.top;
    pl.crop[2] = p.image.width - item.left - item.width;
    pl.crop[3] = p.image.height - item.top - item.height;
    return pl;
}

} // namespace

bool pack(const std::vector<tPicture>& pictures, const tOptions& options, tSheet& sheet,
          std::vector<std::string>& errors)
{
    sheet = tSheet();
    const size_t errorsBefore = errors.size();
    if (!isPowerOf2(options.maxSize) || options.maxSize > 2048 || options.padding < 0 || options.extrude < 0) {
        errors.push_back(fileError(options.output, "page size must be a power of two up to 2048, padding and "
                                                    "extrusion not negative"));
        return false;
    }
    std::vector<tItem> items;
    std::vector<stbrp_rect> rects;
    collectItems(pictures, options, items, rects, errors);
    if (errors.size() != errorsBefore)
        return false;

    const std::vector<std::pair<int, int>> sizes = pageSizes(options.maxSize);
    while (!rects.empty()) {
        std::vector<stbrp_rect> page = rects, rest;
        std::pair<int, int> size = smallestPage(page, sizes, options.padding);
        if (size.first == 0) {
            packInto(page, options.maxSize, options.maxSize, options.padding);
            std::vector<stbrp_rect> taken;
            for (const stbrp_rect& r : page)
                (r.was_packed ? taken : rest).push_back(r);
            page = taken;
            size = smallestPage(page, sizes, options.padding);
        }
        tPage out;
        out.image.width = size.first;
        out.image.height = size.second;
        out.image.rgba.assign(static_cast<size_t>(size.first) * size.second * 4, 0);
        std::vector<tPlaced> placed;
        for (const stbrp_rect& r : page) {
            const int x = r.x + options.extrude, y = r.y + options.extrude;
            copyPicture(out.image, items[r.id], x, y, options.extrude);
            placed.push_back(placedAt(items[r.id], x, y, static_cast<int>(sheet.pages.size())));
        }
        std::sort(placed.begin(), placed.end(), [](const tPlaced& a, const tPlaced& b) { return a.name < b.name; });
        sheet.pictures.insert(sheet.pictures.end(), placed.begin(), placed.end());
        if (!choosePalette(out, options, static_cast<int>(sheet.pages.size()), errors))
            return false;
        sheet.pages.push_back(std::move(out));
        rects.swap(rest);
    }
    return true;
}

std::string sheetJson(const tSheet& sheet, const std::string& base)
{
    std::string out = "{\"ImageData\": [\n";
    for (size_t page = 0; page < sheet.pages.size(); ++page) {
        out += format("  {\"Bitmap\": %s, \"Images\": [\n", jsonString(pageName(sheet, page, base)).c_str());
        bool first = true;
        for (const tPlaced& p : sheet.pictures) {
            if (p.page != static_cast<int>(page))
                continue;
            out += first ? "" : ",\n";
            first = false;
            out += format("    {\"Name\": %s, \"P1\": [%d, %d], \"P2\": [%d, %d], \"RegPoint\": [%d, %d], "
                          "\"CropRect\": [%d, %d, %d, %d]}",
                          jsonString(p.name).c_str(), p.x1, p.y1, p.x2, p.y2, p.regX, p.regY, p.crop[0], p.crop[1],
                          p.crop[2], p.crop[3]);
        }
        out += page + 1 < sheet.pages.size() ? "\n  ]},\n" : "\n  ]}\n";
    }
    return out + "]}\n";
}

std::string pageName(const tSheet& sheet, size_t i, const std::string& base)
{
    // FNV-1a over what the page file is made from.
    const tPage& page = sheet.pages[i];
    uint64_t hash = 14695981039346656037ull;
    auto mix = [&hash](const uint8_t* bytes, size_t size) {
        for (size_t k = 0; k < size; ++k)
            hash = (hash ^ bytes[k]) * 1099511628211ull;
    };
    const int header[3] = {page.image.width, page.image.height, page.paletteBits};
    mix(reinterpret_cast<const uint8_t*>(header), sizeof header);
    if (page.paletteBits) {
        mix(reinterpret_cast<const uint8_t*>(page.palette.data()), page.palette.size() * sizeof(uint32_t));
        mix(page.indices.data(), page.indices.size());
    } else {
        mix(page.image.rgba.data(), page.image.rgba.size());
    }
    return format("%s-%zu-%08x.png", base.c_str(), i, static_cast<unsigned>(hash ^ (hash >> 32)));
}

namespace {

// The pages the sheet at jsonPath names that this packer wrote: BASE-N.png or BASE-N-HASH.png beside it.
std::vector<std::string> previousPages(const std::string& jsonPath, const std::string& base)
{
    std::vector<std::string> pages;
    JsonDocument doc;
    if (!doc.load(jsonPath) || !doc.root().isObject() || !doc.root()["ImageData"].isArray())
        return pages;
    for (const Json::Value& bitmap : doc.root()["ImageData"]) {
        const std::string name = bitmap.isObject() && bitmap["Bitmap"].isString() ? bitmap["Bitmap"].asString() : "";
        const std::string rest = name.compare(0, base.size() + 1, base + "-") == 0 ? name.substr(base.size() + 1) : "";
        const size_t digits = rest.find_first_not_of("0123456789");
        if (digits > 0 && digits != std::string::npos && endsWith(rest, ".png") &&
            (digits + 4 == rest.size() || (rest[digits] == '-' && rest.find_first_not_of(
                "0123456789abcdef", digits + 1) == rest.size() - 4)))
            pages.push_back(name);
    }
    return pages;
}

} // namespace

bool write(const tSheet& sheet, const std::string& base, OutputSet& out, std::vector<std::string>& errors)
{
    const std::string name = baseName(base);
    for (const std::string& old : previousPages(base + ".json", name))
        out.retire(old);
    for (size_t i = 0; i < sheet.pages.size(); ++i) {
        const tPage& page = sheet.pages[i];
        const std::string path = directoryOf(base) + pageName(sheet, i, name), tmp = out.add(path);
        const bool ok = !tmp.empty() && (page.paletteBits ? ImageIO::writePalettedPNG(tmp, page.image.width, page.image.height,
                                                                     page.paletteBits, page.palette, page.indices)
                                                          : ImageIO::writePNG(tmp, page.image));
        if (!ok) {
            errors.push_back(fileError(path, tmp.empty() ? out.errorMessage() : "cannot be written: " + std::string(strerror(errno))));
            return false;
        }
    }
    const std::string tmp = out.add(base + ".json");
    if (tmp.empty() || !writeFile(tmp, sheetJson(sheet, name))) {
        errors.push_back(fileError(base + ".json", tmp.empty() ? out.errorMessage() : "cannot be written: " + std::string(strerror(errno))));
        return false;
    }
    return true;
}

bool write(const tSheet& sheet, const std::string& base, std::vector<std::string>& errors)
{
    OutputSet out;
    if (!out.open(directoryOf(base))) {
        errors.push_back(fileError(out.errorFile(), out.errorMessage()));
        return false;
    }
    if (!write(sheet, base, out, errors))
        return false;
    if (!out.commit()) {
        errors.push_back(fileError(out.errorFile(), out.errorMessage()));
        return false;
    }
    return true;
}

} // namespace SheetPacker
