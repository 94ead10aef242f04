#include "ImageCheck.h"

#include "CTexturePNG.h"

#include <BaseUtils.h>

#include <cstdio>
#include <cstring>
#include <sys/stat.h>

bool ImageCheck::exists(const std::string& path)
{
    struct stat st;
    return !path.empty() && stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

ImageCheck::tResult& ImageCheck::result(const std::string& path, bool& seen)
{
    std::map<std::string, tResult>::iterator it = mResults.find(path);
    seen = it != mResults.end();
    if (!seen)
        it = mResults.insert(std::make_pair(path, decode(path))).first;
    return it->second;
}

const std::vector<std::string>& ImageCheck::problems(const std::string& path, bool& seen)
{
    return result(path, seen).problems;
}

bool ImageCheck::size(const std::string& path, unsigned int& width, unsigned int& height)
{
    if (!exists(path))
        return false;
    bool seen = false;
    const tResult& r = result(path, seen);
    width = r.width;
    height = r.height;
    return r.height != 0;
}

namespace {

std::string trimmed(std::string text)
{
    while (!text.empty() && (text.back() == '\n' || text.back() == ' '))
        text.pop_back();
    return text;
}

bool powerOfTwo(unsigned int n) { return n != 0 && (n & (n - 1)) == 0; }

} // namespace

ImageCheck::tResult ImageCheck::decode(const std::string& path)
{
    tResult result;
    std::vector<std::string>& found = result.problems;
    unsigned char signature[8] = {0};
    FILE* file = std::fopen(path.c_str(), "rb");
    const size_t got = file ? std::fread(signature, 1, sizeof signature, file) : 0;
    if (file)
        std::fclose(file);
    static const unsigned char kPng[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
    if (got != sizeof signature || std::memcmp(signature, kPng, sizeof kPng) != 0) {
        found.push_back("\"" + path + "\" is not a PNG file");
        return result;
    }
    BaseUtils::tAssertHandler previous = BaseUtils::SetAssertHandler(
        [&found, &path](const char*, int, const std::string& message) {
            if (found.empty())
                found.push_back("\"" + path + "\" is refused by the PNG loader: " + trimmed(message));
        });
    CTexturePNG texture(path, false, true, false);
    BaseUtils::SetAssertHandler(previous);
    if (found.empty() && !texture.inRAM)
        found.push_back("\"" + path + "\" is refused by the PNG loader");
    if (found.empty()) {
        result.width = texture.imageInfo.width;
        result.height = texture.imageInfo.height;
    }
    if (found.empty() && (!powerOfTwo(texture.imageInfo.width) || !powerOfTwo(texture.imageInfo.height)))
        found.push_back("\"" + path + "\" is " + std::to_string(texture.imageInfo.width) + " x " +
                        std::to_string(texture.imageInfo.height) +
                        " pixels: OpenGL ES 1.1 needs each side a power of two");
    return result;
}
