#ifndef ZEPHRIN2D_FUZZ_FUZZSUPPORT_H
#define ZEPHRIN2D_FUZZ_FUZZSUPPORT_H

#include <stddef.h>
#include <stdint.h>
#include <string>

#include <boost/shared_ptr.hpp>

class AvatarCostume;
class CGraphicElement;
class CTextureSheet;

/// What the fuzz targets share: silence, a GL context, and a scratch
/// directory holding copies of the example art.
namespace Fuzz {

/// Drops every assertion report and debug message: a fuzzer feeds bad input
/// on purpose, and printing each report would make it crawl.
void quiet();

/// A current GL context on a tiny headless surface, made once per process.
void initGL();

/// A directory of this process (removed at exit) that holds the PNG files of
/// examples/art and examples/demo, so that names inside fuzzed files find
/// real images.
const std::string& scratchDir();

/// Writes bytes to dir/name and returns the full path.
std::string writeFile(const std::string& name, const uint8_t* data, size_t size);
std::string writeFile(const std::string& name, const std::string& text);

/// A dataset input: a little-endian 16-bit count of relink entries, those
/// entries (4 bytes each, as much of them as there is), then the dataset
/// file. Writes base.dsetBin and base.relinkBin; returns the .dsetBin path.
std::string writeDataset(const std::string& base, const uint8_t* data, size_t size);

/// A costume (two LODs over sheet.png, components "head" and "body") and the
/// example texture sheet, both made once, for the loaders to use.
AvatarCostume* costume();
CTextureSheet* sheet();

/// Puts the element on screen for a few frames, as a host would: registered
/// with the draw manager, drawn, advanced when it is an actor, removed.
void exercise(const boost::shared_ptr<CGraphicElement>& element, int frames = 3);

/// Reads bytes from the front of the input, zero once it is used up.
class Reader
{
public:
    Reader(const uint8_t* data, size_t size) : mData(data), mSize(size) {}
    uint8_t byte() { return mSize ? (--mSize, *mData++) : 0; }
    uint16_t u16() { uint16_t lo = byte(); return uint16_t(lo | byte() << 8); }
    int32_t i32() { uint32_t v = u16(); return int32_t(v | uint32_t(u16()) << 16); }
    const uint8_t* rest() const { return mData; }
    size_t restSize() const { return mSize; }
    std::string restString() const { return std::string(reinterpret_cast<const char*>(mData), mSize); }
private:
    const uint8_t* mData;
    size_t mSize;
};

} // namespace Fuzz

#endif
