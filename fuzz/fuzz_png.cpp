// PNG files through CTexturePNG, with sub-byte indices kept and expanded.
#include "CTexturePNG.h"
#include "FuzzSupport.h"

#include <cstdio>
#include <sys/mman.h>
#include <unistd.h>

namespace {

int gFd = -1;
std::string gPath;

// Reads every byte of the RAM image, so that a wrong size shows up here.
unsigned checksum(const CTexture& t)
{
    if (!t.inRAM)
        return 0;
    unsigned sum = 0;
    const unsigned long total = t.imageInfo.GetTotalSize();
    for (unsigned long i = 0; i < total; ++i)
        sum += t.buffer[i];
    return sum;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    Fuzz::quiet();
    gFd = memfd_create("fuzz.png", 0);
    if (gFd < 0) {
        perror("memfd_create");
        return 1;
    }
    gPath = "/proc/self/fd/" + std::to_string(gFd);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (ftruncate(gFd, 0) != 0 || pwrite(gFd, data, size, 0) != ssize_t(size))
        return 0;
    volatile unsigned sink = 0;
    for (bool expand : {false, true}) {
        CTexturePNG texture(gPath, false, true, expand);
        sink += checksum(texture);
        tImageInfo info;
        if (unsigned char* rgb = texture.ConvertImageToNoPalette(&info)) {
            sink += rgb[info.GetImageSize() - 1];
            delete[] rgb;
        }
    }
    (void)sink;
    return 0;
}
