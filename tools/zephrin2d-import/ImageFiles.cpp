#include "ImageFiles.h"

#include "Paths.h"
#include "ImportLimits.h"

#include <cstdio>
#include <cstring>
#include <sys/stat.h>

namespace {

struct tKind
{
    const char* magic;
    size_t size;
    const char* name;
};

const tKind OTHER_KINDS[] = {
    {"\xFF\xD8\xFF", 3, "JPEG"}, {"GIF8", 4, "GIF"}, {"BM", 2, "BMP"}, {"RIFF", 4, "WebP"},
    {"II*\0", 4, "TIFF"},        {"MM\0*", 4, "TIFF"}, {"8BPS", 4, "Photoshop"}, {"\0\0\0\x0C" "jP", 6, "JPEG 2000"},
};

bool exists(const std::string& path)
{
    struct stat s;
    return stat(path.c_str(), &s) == 0 && S_ISREG(s.st_mode);
}

uint32_t bigEndian(const unsigned char* p)
{
    return uint32_t(p[0]) << 24 | uint32_t(p[1]) << 16 | uint32_t(p[2]) << 8 | p[3];
}

// What the first bytes say, before libpng spends anything on the pixels.
bool headerOk(const std::string& path, std::string& why)
{
    unsigned char head[24] = {0};
    FILE* f = fopen(path.c_str(), "rb");
    if (!f) {
        why = exists(path) ? "cannot be read" : "is not there";
        return false;
    }
    const size_t got = fread(head, 1, sizeof head, f);
    fclose(f);
    if (got < sizeof head || memcmp(head, "\x89PNG\r\n\x1A\n", 8) != 0 || memcmp(head + 12, "IHDR", 4) != 0) {
        why = "is not a PNG image";
        for (const tKind& k : OTHER_KINDS)
            if (got >= k.size && memcmp(head, k.magic, k.size) == 0)
                why = std::string("is a ") + k.name + " image: only PNG images are read";
        return false;
    }
    const uint32_t w = bigEndian(head + 16), h = bigEndian(head + 20);
    if (w == 0 || h == 0 || w > uint32_t(ImportLimits::MAX_IMAGE_SIDE) || h > uint32_t(ImportLimits::MAX_IMAGE_SIDE)) {
        why = "is " + std::to_string(w) + "x" + std::to_string(h) + " pixels: " +
              ImportLimits::atMost("an image side", ImportLimits::MAX_IMAGE_SIDE);
        return false;
    }
    return true;
}

} // namespace

namespace ImageFiles {

bool read(const std::string& path, ImageIO::tImage& image, std::string& why)
{
    if (!headerOk(path, why))
        return false;
    if (!ImageIO::readPNG(path, image)) {
        why = "is not a valid PNG image";
        return false;
    }
    return true;
}

std::string locate(const std::string& from, const std::string& name)
{
    const std::string dir = directoryOf(from);
    const std::string asWritten = !name.empty() && name[0] == '/' ? name : dir + name;
    if (exists(asWritten))
        return asWritten;
    const size_t cut = name.find_last_of("/\\");
    if (cut == std::string::npos || cut + 1 == name.size())
        return asWritten;
    const std::string beside = dir + name.substr(cut + 1);
    return exists(beside) ? beside : asWritten;
}

} // namespace ImageFiles
